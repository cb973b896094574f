// Numbers, mail addresses and web pages of a card, and the places that the preferred ones get.
#include "interchange/contact_builder.h"

#include "interchange/calendar_text.h"
#include "interchange/card_values.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
using Text = std::u16string;

namespace
{
/// A web page as people write it and as links do.
std::u16string_view withoutScheme(std::u16string_view link)
{
    for (const std::u16string_view scheme : {u"http://", u"https://", u"HTTP://", u"HTTPS://"})
    {
        if (link.substr(0, scheme.size()) == scheme)
        {
            link.remove_prefix(scheme.size());
            break;
        }
    }
    return !link.empty() && link.back() == u'/' ? link.substr(0, link.size() - 1) : link;
}
} // namespace

void ContactBuilder::takeNumber(const CardProperty &property, CardRole role)
{
    CardNumber number;
    std::string_view raw = trimmed(property.value);
    std::string extension;
    if (startsWith(raw, "TEL:"))
    {
        raw.remove_prefix(4);
        const std::size_t parameters = std::min(raw.find(';'), raw.size());
        const std::string_view told = raw.substr(parameters);
        extension = startsWith(told, ";EXT=") ? " ext. " + std::string(told.substr(5)) : "";
        raw = raw.substr(0, parameters);
    }
    number.text = line(std::string(raw) + extension);
    const std::string label = labelOf(property);
    number.kind = role == CardRole::AssistantPhone ? NumberKind::Assistant : numberKindOf(property.types, label);
    number.label = labelFor(property, label);
    number.rank = rankOf(property);
    number.preferred = property.hasType("PREF") || !property.parameter("PREF").empty();
    number.line = property.line;
    if (!number.text.empty())
    {
        m_numbers.push_back(std::move(number));
    }
}

std::string ContactBuilder::labelFor(const CardProperty &property, const std::string &label)
{
    std::string words = label;
    for (const std::string &type : property.types)
    {
        if (type != "PREF" && type != "VOICE")
        {
            words += (words.empty() ? "" : ", ") + type;
        }
    }
    return toUtf8(std::u16string_view(oneLine(toUtf16(words))));
}

void ContactBuilder::takeLink(const CardProperty &property, std::vector<Ranked> &links) const
{
    std::string_view raw = trimmed(property.value);
    raw.remove_prefix(startsWith(raw, "MAILTO:") ? 7 : 0);
    Text text = line(raw);
    const auto same = [&](const Ranked &each) { return withoutScheme(each.text) == withoutScheme(text); };
    if (!text.empty() && std::none_of(links.begin(), links.end(), same))
    {
        links.push_back({std::move(text), rankOf(property), property.line});
    }
}

void ContactBuilder::placeTexts()
{
    const auto byRank = [](const Ranked &a, const Ranked &b) { return a.rank < b.rank; };
    std::stable_sort(m_emails.begin(), m_emails.end(), byRank);
    std::stable_sort(m_links.begin(), m_links.end(), byRank);
    const std::array emails = {&m_item.email1, &m_item.email2, &m_item.email3};
    for (std::size_t n = 0; n < m_emails.size(); ++n)
    {
        n < emails.size() ? void(*emails[n] = m_emails[n].text)
                          : noPlace("mail address", m_emails[n].text, m_emails[n].line);
    }
    for (std::size_t n = 0; n < m_links.size(); ++n)
    {
        n == 0 ? void(m_item.webPage = m_links[n].text) : noPlace("web page", m_links[n].text, m_links[n].line);
    }
}
} // namespace zb::interchange
