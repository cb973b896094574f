#include "interchange/contact_card.h"

#include "interchange/calendar_text.h"
#include "interchange/card_roles.h"
#include "interchange/card_values.h"
#include "interchange/contact_numbers.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace zb::interchange
{
namespace
{
using Text = std::u16string;

/// Of one contact.
constexpr std::size_t mostCategories = 200;
/// A name whose words are looked at.
constexpr std::size_t longestComparedName = 4000;

/// For messages.
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

/// 1 to 100 in 4.0, a bare word before; what says nothing comes behind.
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

class ContactReader
{
  public:
    ContactReader(const Card &card, ContactReading &reading) : m_card(card), m_reading(reading), m_item(reading.item)
    {
    }

    void read()
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

  private:
    struct Ranked
    {
        Text text;
        std::size_t rank;
        std::size_t line;
    };
    struct RankedAddress
    {
        PostalAddress address;
        PostalAddress ContactItem::*place;
        std::size_t rank;
        std::size_t line;
    };

    Text line(std::string_view raw) const
    {
        return cardLine(m_card, raw);
    }

    void take(const CardProperty &property)
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

    void takeMore(const CardProperty &property, CardRole role)
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

    // --- names ---

    void takeName(const CardProperty &property, CardRole role)
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

    void takeKind(std::string_view kind)
    {
        m_reading.isGroup = kind == "GROUP";
        m_showsCompany = m_showsCompany || kind == "ORG" || kind == "ORGANIZATION";
    }

    /// One field; a second value that differs has no place.
    void fill(Text &field, const Text &value, const CardProperty &property, const char *what)
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

    void noPlace(const char *what, const Text &value, std::size_t at)
    {
        m_reading.findings.push_back({at, std::string("the ") + what + " \"" + shownText(value) +
                                              "\" was left out: a contact has no place for more"});
    }

    /// A part may be a list from 3.0 on.
    Text listed(std::string_view part, const char16_t *between) const
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

    void takeNameParts(const CardProperty &property)
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

    void takeOrganization(const CardProperty &property)
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

    bool hasNameParts() const
    {
        return !m_item.firstName.empty() || !m_item.lastName.empty() || !m_item.middleName.empty();
    }

    /// Once all is known.
    void nameIt()
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

    void looseUnlessSame(const Text &profession)
    {
        if (profession != m_item.jobTitle)
        {
            lose("ROLE");
        }
    }

    /// Whether the parts of the name say all words of the whole one.
    bool isTold(const Text &whole) const
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
        const auto isKnown = [&](const Text &word)
        { return std::find(words.begin(), words.end(), word) != words.end(); };
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
    void breakUp(const Text &name)
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

    // --- labels ---

    /// The label that a property of the same group carries, in upper case.
    std::string labelOf(const CardProperty &property) const
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
    void takeLabel(const CardProperty &property)
    {
        const std::string label = upperCase(toUtf8(std::u16string_view(line(property.value))));
        const bool isOwn = plainLabel(label) == label;
        if (isOwn && numberKindOf({}, label) == NumberKind::Unknown && relationOf(label) == CardRole::Lost &&
            label != "ANNIVERSARY" && label != "BIRTHDAY")
        {
            lose("own label (X-ABLABEL)");
        }
    }

    // --- numbers, mail addresses, web pages ---

    void takeNumber(const CardProperty &property, CardRole role)
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

    static std::string labelFor(const CardProperty &property, const std::string &label)
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

    void takeLink(const CardProperty &property, std::vector<Ranked> &links) const
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

    void placeTexts()
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

    // --- addresses ---

    void takeAddress(const CardProperty &property, CardRole role)
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

    PostalAddress readAddress(const CardProperty &property, bool work)
    {
        const std::vector<std::string_view> parts = cardParts(m_card, property.value, ';');
        const auto part = [&](std::size_t index)
        { return index < parts.size() ? listed(parts[index], u", ") : Text(); };
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

    void placeAddresses()
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

    static Text whole(const PostalAddress &address)
    {
        Text text;
        for (const Text *part : {&address.street, &address.city, &address.state, &address.postalCode, &address.country})
        {
            joinTo(text, *part, u", ");
        }
        return text;
    }

    // --- dates ---

    void takeDate(const CardProperty &property, CardRole role)
    {
        const std::string label = role == CardRole::LabelledDate ? labelOf(property) : std::string();
        const bool birthday = role == CardRole::Birthday || label == "BIRTHDAY";
        if (role == CardRole::LabelledDate && !birthday && label != "ANNIVERSARY")
        {
            noPlace("date", toUtf16(label + " " + property.value), property.line);
            return;
        }
        setDate(birthday, property.value, property.parameter("X-APPLE-OMIT-YEAR"), property);
    }

    void setDate(bool birthday, std::string_view value, std::string_view omittedYear, const CardProperty &property)
    {
        const std::string what = birthday ? "birthday" : "anniversary";
        std::optional<FILETIME> &field = birthday ? m_item.birthday : m_item.anniversary;
        const std::optional<CardDate> date = readCardDate(value, omittedYear);
        if (!date)
        {
            m_reading.findings.push_back({property.line, "the " + what + " \"" + shownText(line(value)) +
                                                             "\" is no day of a year and was left out"});
            return;
        }
        const auto ticks = [](const FILETIME &time) { return std::pair(time.dwHighDateTime, time.dwLowDateTime); };
        if (field)
        {
            ticks(*field) == ticks(date->day) ? void() : noPlace(what.c_str(), line(value), property.line);
            return;
        }
        field = date->day;
        if (!date->hasYear)
        {
            m_reading.findings.push_back({property.line, "the " + what + " has no year and came in with the year " +
                                                             std::to_string(yearOfNoYear)});
        }
        if (date->hasTime)
        {
            lose("time of day of " + property.name);
        }
    }

    // --- people ---

    void takePerson(const std::string &name, CardRole role, const Text &who, std::size_t at)
    {
        Text &field = role == CardRole::Spouse  ? m_item.spouse
                      : role == CardRole::Child ? m_item.children
                                                : m_item.assistant;
        if (who.empty() || field == who)
        {
            return;
        }
        if (role == CardRole::Child || field.empty())
        {
            joinTo(field, who, u", ");
            return;
        }
        m_reading.findings.push_back(
            {at, "the " + name + " \"" + shownText(who) + "\" was left out: a contact has no place for more"});
    }

    void takeRelation(const CardProperty &property)
    {
        CardRole role = relationOf(labelOf(property));
        for (const std::string &type : property.types)
        {
            role = role == CardRole::Lost ? relationOf(type) : role;
        }
        const std::string_view value = trimmed(property.value);
        const bool isLink = startsWith(value, "URN:") || startsWith(value, "HTTP:") || startsWith(value, "HTTPS:") ||
                            startsWith(value, "MAILTO:");
        if (role == CardRole::Lost || isLink)
        {
            lose(property.name);
            return;
        }
        takePerson(property.name, role, line(property.value), property.line);
    }

    /// "vnd.android.cursor.item/contact_event;1999-05-17;1;;": a kind of data, its value, a number for what it is.
    void takeAndroidCustom(const CardProperty &property)
    {
        const std::vector<std::string_view> parts = cardParts(m_card, property.value, ';');
        const std::string_view kind = parts[0].substr(std::min(parts[0].rfind('/') + 1, parts[0].size()));
        const std::string_view number = parts.size() > 2 ? parts[2] : std::string_view();
        const Text value = parts.size() > 1 ? line(parts[1]) : Text();
        const CardRole person = number == "14" || number == "4" || number == "10" ? CardRole::Spouse
                                : number == "3"                                   ? CardRole::Child
                                : number == "1"                                   ? CardRole::Assistant
                                                                                  : CardRole::Lost;
        if (kind == "contact_event" && (number == "1" || number == "3"))
        {
            setDate(number == "3", parts[1], {}, property);
        }
        else if (kind == "relation" && person != CardRole::Lost)
        {
            takePerson("relation", person, value, property.line);
        }
        else
        {
            lose(property.name + " " + shown(kind));
        }
    }

    /// Who acts for somebody is the assistant; the rest of that card has no place.
    void takeAgents()
    {
        bool taken = false;
        for (const Card &agent : m_card.agents)
        {
            ContactReading reading;
            ContactReader(agent, reading).read();
            const CardProperty *const name = agent.find("FN");
            const Text who = name != nullptr ? cardLine(agent, name->value) : fileAsOf(reading.item);
            const bool here = !taken && m_item.assistant.empty() && !who.empty();
            if (here)
            {
                m_item.assistant = who;
                takeAgentNumber(reading.item, agent.line);
            }
            taken = taken || here;
            lose(here ? "rest of the AGENT's card" : "AGENT");
        }
        for (const CardProperty &property : m_card.properties)
        {
            const std::string_view value = trimmed(property.value);
            if (property.name == "AGENT" && !value.empty() && m_card.agents.empty())
            {
                lose("AGENT");
            }
        }
    }

    void takeAgentNumber(const ContactItem &agent, std::size_t at)
    {
        for (const Text *number : {&agent.businessPhone, &agent.mobilePhone, &agent.homePhone})
        {
            if (!number->empty())
            {
                CardNumber told;
                told.kind = NumberKind::Assistant;
                told.text = *number;
                told.rank = 2000; // behind the card's own
                told.line = at;
                m_numbers.push_back(std::move(told));
                return;
            }
        }
    }

    // --- the rest ---

    void takeCategories(const CardProperty &property)
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
            const auto known = [&](const CardCategory &each) { return each.name == name; };
            if (!name.empty() && std::none_of(m_reading.categories.begin(), m_reading.categories.end(), known))
            {
                m_reading.categories.push_back({std::move(name), property.line});
            }
        }
    }

    void takeNote(const CardProperty &property)
    {
        const Text note = manyLines(cardText(m_card, property.value));
        if (std::find(m_notes.begin(), m_notes.end(), note) == m_notes.end())
        {
            joinTo(m_item.notes, note, u"\r\n\r\n");
            m_notes.push_back(note);
        }
    }

    void lose(const std::string &name)
    {
        if (std::find(m_reading.lost.begin(), m_reading.lost.end(), name) == m_reading.lost.end())
        {
            m_reading.lost.push_back(name);
        }
    }

    const Card &m_card;
    ContactReading &m_reading;
    ContactItem &m_item;
    bool m_isEvolution = false;
    bool m_hasName = false;
    bool m_showsCompany = false;
    Text m_formatted;
    Text m_profession;
    std::vector<CardNumber> m_numbers;
    std::vector<Ranked> m_emails;
    std::vector<Ranked> m_links;
    std::vector<RankedAddress> m_addresses;
    std::vector<RankedAddress> m_addressTexts;
    std::vector<Text> m_notes;
};
} // namespace

ContactReading readContact(const Card &card)
{
    ContactReading reading;
    ContactReader(card, reading).read();
    return reading;
}

std::u16string identityOf(const Card &card)
{
    constexpr std::string_view scheme = "URN:UUID:";
    for (const char *const name : {"UID", "X-ABUID"})
    {
        const CardProperty *const property = card.find(name);
        std::string_view value = property != nullptr ? trimmed(property->value) : std::string_view();
        value.remove_prefix(startsWith(value, scheme) ? scheme.size() : 0);
        if (!value.empty())
        {
            return identityOf(value);
        }
    }
    return {};
}

std::u16string personOf(const ContactItem &item)
{
    Text person =
        item.firstName + u"\n" + item.middleName + u"\n" + item.lastName + u"\n" + item.suffix + u"\n" + item.company;
    if (person.size() == 4)
    {
        ContactItem unnamed = item;
        unnamed.fileAs.clear();
        person = fileAsOf(unnamed);
    }
    _wcsupr(person.data());
    return person;
}
} // namespace zb::interchange
