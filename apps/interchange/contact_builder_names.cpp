// What a contact is called: the parts of its name, its company, the name it is filed under.
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
/// A name whose words are looked at.
constexpr std::size_t longestComparedName = 4000;

/// Words without what stands between them, in upper case.
std::vector<Text> wordsOf(const Text &text)
{
    std::vector<Text> words;
    Text upper = text;
    _wcsupr(upper.data());
    for (std::size_t from = 0; from < upper.size();)
    {
        const std::size_t end = std::min(upper.find_first_of(u" ,;()\"'\u3000", from), upper.size());
        if (end > from)
        {
            words.push_back(upper.substr(from, end - from));
        }
        from = end + 1;
    }
    return words;
}
} // namespace

void ContactBuilder::takeName(const CardProperty &property, CardRole role)
{
    switch (role)
    {
    case CardRole::Name:
        m_hasName ? lose("second N") : takeNameParts(property);
        break;
    case CardRole::FormattedName:
        m_formatted.empty() ? void(m_formatted = line(property.value)) : lose("second FN");
        break;
    case CardRole::FileAs:
        fill(m_item.fileAs, line(property.value), property, "file-as name");
        break;
    case CardRole::Organization:
        takeOrganization(property);
        break;
    case CardRole::JobTitle:
        fill(m_item.jobTitle, line(property.value), property, "job title");
        break;
    case CardRole::Profession:
        m_profession.empty() ? void(m_profession = line(property.value)) : lose("second ROLE");
        break;
    case CardRole::Office:
        fill(m_item.office, line(property.value), property, "office");
        break;
    case CardRole::ShowAs:
        m_showsCompany = upperCase(trimmed(property.value)) == "COMPANY";
        break;
    default:
        takeKind(upperCase(trimmed(property.value)));
        break;
    }
}

void ContactBuilder::takeKind(std::string_view kind)
{
    m_reading.isGroup = kind == "GROUP";
    m_showsCompany = m_showsCompany || kind == "ORG" || kind == "ORGANIZATION";
}

void ContactBuilder::takeNameParts(const CardProperty &property)
{
    const std::vector<std::string_view> parts = cardParts(m_card, property.value, ';');
    const auto part = [&](std::size_t index, const char16_t *between)
    { return index < parts.size() ? listed(parts[index], between) : Text(); };
    m_hasName = true;
    m_item.lastName = part(0, u" ");
    m_item.firstName = part(1, u" ");
    m_item.middleName = part(2, u" ");
    m_item.title = part(3, u" ");
    m_item.suffix = part(4, u", ");
    for (std::size_t index = 5; index < parts.size(); ++index)
    {
        trimmed(parts[index]).empty() ? void() : lose("further parts of N");
    }
}

void ContactBuilder::takeOrganization(const CardProperty &property)
{
    const std::vector<std::string_view> parts = cardParts(m_card, property.value, ';');
    const Text company = line(parts[0]);
    Text units;
    for (std::size_t index = 1; index < parts.size(); ++index)
    {
        // One of the big exporters keeps the office in the third place.
        const bool isOffice = m_isEvolution && index == 2;
        isOffice ? fill(m_item.office, line(parts[index]), property, "office")
                 : joinTo(units, line(parts[index]), u", ");
    }
    fill(m_item.company, company, property, "company");
    fill(m_item.department, units, property, "department");
}

bool ContactBuilder::hasNameParts() const
{
    return !m_item.firstName.empty() || !m_item.lastName.empty() || !m_item.middleName.empty();
}

/// Once all is known.
void ContactBuilder::nameIt()
{
    if (!m_profession.empty())
    {
        m_item.jobTitle.empty() ? void(m_item.jobTitle = m_profession) : looseUnlessSame(m_profession);
    }
    if (m_showsCompany && m_item.company.empty() && !hasNameParts())
    {
        m_item.company = m_formatted;
    }
    const bool companyOnly = !hasNameParts() && !m_item.company.empty() &&
                             (m_formatted.empty() || wordsOf(m_formatted) == wordsOf(m_item.company));
    if (!hasNameParts() && !companyOnly)
    {
        breakUp(m_formatted);
    }
    else if (!isTold(m_formatted))
    {
        lose("FN");
    }
    if (m_showsCompany && m_item.fileAs.empty())
    {
        m_item.fileAs = m_item.company;
    }
}

void ContactBuilder::looseUnlessSame(const Text &profession)
{
    if (profession != m_item.jobTitle)
    {
        lose("ROLE");
    }
}

/// Whether the parts of the name say all words of the whole one.
bool ContactBuilder::isTold(const Text &whole) const
{
    Text known;
    for (const Text *part : {&m_item.title, &m_item.firstName, &m_item.middleName, &m_item.lastName, &m_item.suffix,
                             &m_item.company, &m_item.fileAs})
    {
        joinTo(known, *part, u" ");
    }
    if (whole.size() > longestComparedName || known.size() > longestComparedName)
    {
        return false;
    }
    const std::vector<Text> words = wordsOf(known);
    const std::vector<Text> told = wordsOf(whole);
    const auto isKnown = [&](const Text &word) { return std::find(words.begin(), words.end(), word) != words.end(); };
    // Names of scripts without blanks are put together without them.
    Text joined;
    std::for_each(told.begin(), told.end(), [&](const Text &word) { joined += word; });
    const auto glued = [&](const Text &a, const Text &b)
    {
        Text text = a + b;
        _wcsupr(text.data());
        return text == joined;
    };
    return std::all_of(told.begin(), told.end(), isKnown) || glued(m_item.lastName, m_item.firstName) ||
           glued(m_item.firstName, m_item.lastName);
}

/// "Last, First"; else the last word is the last name, what stands in between the middle one. One word is a first
/// name.
void ContactBuilder::breakUp(const Text &name)
{
    const std::size_t comma = name.find(u',');
    if (comma != Text::npos && comma + 1 < name.size() && comma > 0)
    {
        m_item.lastName = oneLine(name.substr(0, comma));
        m_item.firstName = oneLine(name.substr(comma + 1));
        return;
    }
    const std::size_t first = std::min(name.find(u' '), name.size());
    m_item.firstName = name.substr(0, first);
    if (first < name.size())
    {
        const std::size_t last = name.rfind(u' ');
        m_item.lastName = name.substr(last + 1);
        m_item.middleName = first < last ? oneLine(name.substr(first, last - first)) : Text();
    }
}
} // namespace zb::interchange
