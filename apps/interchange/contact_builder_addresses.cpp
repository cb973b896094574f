// The postal addresses of a card, in parts or as a label's text, and the three places that a contact has for them.
#include "interchange/contact_builder.h"

#include "interchange/calendar_text.h"
#include "interchange/card_values.h"
#include "platform/text.h"

#include <algorithm>

namespace zb::interchange
{
using Text = std::u16string;

namespace
{
bool isEmpty(const PostalAddress &address)
{
    return address.street.empty() && address.city.empty() && address.state.empty() && address.postalCode.empty() &&
           address.country.empty();
}

bool isSame(const PostalAddress &a, const PostalAddress &b)
{
    return a.street == b.street && a.city == b.city && a.state == b.state && a.postalCode == b.postalCode &&
           a.country == b.country;
}
} // namespace

void ContactBuilder::takeAddress(const CardProperty &property, CardRole role)
{
    const std::string label = labelOf(property);
    const bool work = property.hasType("WORK") || label == "WORK";
    const bool home = property.hasType("HOME") || label == "HOME";
    PostalAddress ContactItem::*const place = work   ? &ContactItem::business
                                              : home ? &ContactItem::home
                                                     : &ContactItem::other;
    if (role == CardRole::AddressText)
    {
        PostalAddress address;
        address.street = manyLines(cardText(m_card, property.value));
        m_addressTexts.push_back({std::move(address), place, rankOf(property), property.line});
        return;
    }
    PostalAddress address = readAddress(property, work);
    if (isEmpty(address))
    {
        address.street = manyLines(toUtf16(property.parameter("LABEL")));
    }
    if (!isEmpty(address))
    {
        m_addresses.push_back({std::move(address), place, rankOf(property), property.line});
    }
}

PostalAddress ContactBuilder::readAddress(const CardProperty &property, bool work)
{
    const std::vector<std::string_view> parts = cardParts(m_card, property.value, ';');
    const auto part = [&](std::size_t index) { return index < parts.size() ? listed(parts[index], u", ") : Text(); };
    const auto lines = [&](std::size_t index)
    { return index < parts.size() ? manyLines(cardText(m_card, parts[index])) : Text(); };
    PostalAddress address;
    Text extended = lines(1);
    // What stands in front of the street at work is the office.
    if (work && m_item.office.empty() && extended.find(u'\n') == Text::npos)
    {
        m_item.office = std::move(extended);
        extended.clear();
    }
    joinTo(address.street, extended, u"\r\n");
    joinTo(address.street, lines(2), u"\r\n");
    joinTo(address.street, lines(0), u"\r\n");
    address.city = part(3);
    address.state = part(4);
    address.postalCode = part(5);
    address.country = part(6);
    return address;
}

void ContactBuilder::placeAddresses()
{
    std::stable_sort(m_addresses.begin(), m_addresses.end(),
                     [](const auto &a, const auto &b) { return a.rank < b.rank; });
    std::vector<RankedAddress> left;
    for (RankedAddress &each : m_addresses)
    {
        PostalAddress &place = m_item.*each.place;
        isEmpty(place) ? void(place = std::move(each.address)) : left.push_back(std::move(each));
    }
    for (const RankedAddress &each : left)
    {
        if (isSame(m_item.*each.place, each.address) || isSame(m_item.other, each.address))
        {
            continue;
        }
        if (isEmpty(m_item.other))
        {
            m_item.other = each.address;
            m_reading.findings.push_back({each.line, "the second address of a kind came in as other address"});
            continue;
        }
        noPlace("address", whole(each.address), each.line);
    }
    // A label is the same address as it is written on a letter; it counts where there is no other form.
    for (const RankedAddress &each : m_addressTexts)
    {
        PostalAddress &place = m_item.*each.place;
        place = isEmpty(place) ? each.address : place;
    }
}

Text ContactBuilder::whole(const PostalAddress &address)
{
    Text text;
    for (const Text *part : {&address.street, &address.city, &address.state, &address.postalCode, &address.country})
    {
        joinTo(text, *part, u", ");
    }
    return text;
}
} // namespace zb::interchange
