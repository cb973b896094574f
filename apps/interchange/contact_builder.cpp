// The way through a card, what all parts of it need, and what belongs to none: categories, notes, lost properties.
#include "interchange/contact_builder.h"

#include "interchange/calendar_text.h"
#include "interchange/card_values.h"
#include "platform/text.h"

#include <algorithm>
#include <charconv>

namespace zb::interchange
{
using Text = std::u16string;

namespace
{
/// Of one contact.
constexpr std::size_t mostCategories = 200;
} // namespace

std::string shownText(const Text &text)
{
    constexpr std::size_t longest = 60;
    return shown(toUtf8(std::u16string_view(oneLine(text).substr(0, longest))), 4 * longest);
}

bool startsWith(std::string_view text, std::string_view upperCaseHead)
{
    return upperCase(text.substr(0, upperCaseHead.size())) == upperCaseHead;
}

void joinTo(Text &text, const Text &more, const char16_t *between)
{
    if (!more.empty())
    {
        text += (text.empty() ? u"" : between) + more;
    }
}

std::size_t rankOf(const CardProperty &property)
{
    constexpr std::size_t unranked = 1000;
    const std::string_view told = property.parameter("PREF");
    std::size_t rank = 0;
    if (std::from_chars(told.data(), told.data() + told.size(), rank).ec == std::errc() && rank > 0)
    {
        return std::min(rank, unranked);
    }
    return property.hasType("PREF") ? 1 : unranked;
}

void ContactBuilder::read()
{
    m_isEvolution = std::any_of(m_card.properties.begin(), m_card.properties.end(),
                                [](const auto &each) { return each.name.compare(0, 12, "X-EVOLUTION-") == 0; });
    for (const CardProperty &property : m_card.properties)
    {
        if (!trimmed(property.value).empty())
        {
            take(property);
        }
    }
    takeAgents();
    nameIt();
    placeAddresses();
    placeTexts();
    placeNumbers(std::move(m_numbers), m_item, m_reading.findings);
    m_reading.shortened = shortenToRecord(m_item);
}

Text ContactBuilder::line(std::string_view raw) const
{
    return cardLine(m_card, raw);
}

void ContactBuilder::take(const CardProperty &property)
{
    const CardRole role = cardRoleOf(property.name);
    switch (role)
    {
    case CardRole::Name:
    case CardRole::FormattedName:
    case CardRole::FileAs:
    case CardRole::Organization:
    case CardRole::JobTitle:
    case CardRole::Profession:
    case CardRole::Office:
    case CardRole::Kind:
    case CardRole::ShowAs:
        takeName(property, role);
        break;
    case CardRole::Phone:
    case CardRole::AssistantPhone:
        takeNumber(property, role);
        break;
    case CardRole::Email:
    case CardRole::WebPage:
        takeLink(property, role == CardRole::Email ? m_emails : m_links);
        break;
    case CardRole::Address:
    case CardRole::AddressText:
        takeAddress(property, role);
        break;
    default:
        takeMore(property, role);
        break;
    }
}

void ContactBuilder::takeMore(const CardProperty &property, CardRole role)
{
    switch (role)
    {
    case CardRole::Birthday:
    case CardRole::Anniversary:
    case CardRole::LabelledDate:
        takeDate(property, role);
        break;
    case CardRole::Spouse:
    case CardRole::Child:
    case CardRole::Assistant:
        takePerson(property.name, role, line(property.value), property.line);
        break;
    case CardRole::Related:
    case CardRole::LabelledName:
        takeRelation(property);
        break;
    case CardRole::AndroidCustom:
        takeAndroidCustom(property);
        break;
    case CardRole::Categories:
        takeCategories(property);
        break;
    case CardRole::Note:
        takeNote(property);
        break;
    case CardRole::Photo:
        m_reading.photo == nullptr ? void(m_reading.photo = &property) : lose("second PHOTO");
        break;
    case CardRole::Label:
        takeLabel(property);
        break;
    case CardRole::Class:
        upperCase(trimmed(property.value)) == "PUBLIC" ? void() : lose(property.name);
        break;
    case CardRole::Silent:
        break;
    default:
        lose(property.name);
        break;
    }
}

/// One field; a second value that differs has no place.
void ContactBuilder::fill(Text &field, const Text &value, const CardProperty &property, const char *what)
{
    if (field.empty())
    {
        field = value;
    }
    else if (!value.empty() && field != value)
    {
        noPlace(what, value, property.line);
    }
}

void ContactBuilder::noPlace(const char *what, const Text &value, std::size_t at)
{
    m_reading.findings.push_back({at, std::string("the ") + what + " \"" + shownText(value) +
                                          "\" was left out: a contact has no place for more"});
}

/// A part may be a list from 3.0 on.
Text ContactBuilder::listed(std::string_view part, const char16_t *between) const
{
    if (m_card.isVersion21())
    {
        return line(part);
    }
    Text text;
    for (const std::string_view each : cardParts(m_card, part, ','))
    {
        joinTo(text, line(each), between);
    }
    return text;
}

/// The label that a property of the same group carries, in upper case.
std::string ContactBuilder::labelOf(const CardProperty &property) const
{
    if (!property.group.empty())
    {
        for (const CardProperty &each : m_card.properties)
        {
            if (each.name == "X-ABLABEL" && each.group == property.group)
            {
                const std::string label = upperCase(toUtf8(std::u16string_view(line(each.value))));
                return std::string(plainLabel(label));
            }
        }
    }
    return {};
}

/// Words of its owner for a kind, which the kinds of a record can't say.
void ContactBuilder::takeLabel(const CardProperty &property)
{
    const std::string label = upperCase(toUtf8(std::u16string_view(line(property.value))));
    const bool isOwn = plainLabel(label) == label;
    if (isOwn && numberKindOf({}, label) == NumberKind::Unknown && relationOf(label) == CardRole::Lost &&
        label != "ANNIVERSARY" && label != "BIRTHDAY")
    {
        lose("own label (X-ABLABEL)");
    }
}

void ContactBuilder::takeCategories(const CardProperty &property)
{
    std::string raw = property.value;
    if (m_card.isVersion21())
    {
        std::replace(raw.begin(), raw.end(), ';', ',');
    }
    for (const std::string_view part : cardParts(m_card, raw, ','))
    {
        if (m_reading.categories.size() >= mostCategories)
        {
            lose("further CATEGORIES");
            return;
        }
        Text name = line(part);
        const auto known = [&](const NamedLine &each) { return each.name == name; };
        if (!name.empty() && std::none_of(m_reading.categories.begin(), m_reading.categories.end(), known))
        {
            m_reading.categories.push_back({std::move(name), property.line});
        }
    }
}

void ContactBuilder::takeNote(const CardProperty &property)
{
    const Text note = manyLines(cardText(m_card, property.value));
    if (std::find(m_notes.begin(), m_notes.end(), note) == m_notes.end())
    {
        joinTo(m_item.notes, note, u"\r\n\r\n");
        m_notes.push_back(note);
    }
}

void ContactBuilder::lose(const std::string &name)
{
    if (std::find(m_reading.lost.begin(), m_reading.lost.end(), name) == m_reading.lost.end())
    {
        m_reading.lost.push_back(name);
    }
}
} // namespace zb::interchange
