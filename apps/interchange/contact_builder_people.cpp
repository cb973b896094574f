// Days of a contact's life and the people that a card names: spouse, children, assistant, agents.
#include "common/year_of_no_year.h"
#include "interchange/contact_builder.h"

#include "interchange/calendar_text.h"
#include "interchange/card_values.h"
#include "platform/text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zb::interchange
{
using Text = std::u16string;

void ContactBuilder::takeDate(const CardProperty &property, CardRole role)
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

void ContactBuilder::setDate(bool birthday, std::string_view value, std::string_view omittedYear,
                             const CardProperty &property)
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
        m_reading.findings.push_back(
            {property.line, "the " + what + " has no year and came in with the year " + std::to_string(host::yearOfNoYear)});
    }
    if (date->hasTime)
    {
        lose("time of day of " + property.name);
    }
}

void ContactBuilder::takePerson(const std::string &name, CardRole role, const Text &who, std::size_t at)
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

void ContactBuilder::takeRelation(const CardProperty &property)
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
void ContactBuilder::takeAndroidCustom(const CardProperty &property)
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
void ContactBuilder::takeAgents()
{
    bool taken = false;
    for (const Card &agent : m_card.agents)
    {
        ContactReading reading;
        ContactBuilder(agent, reading).read();
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

void ContactBuilder::takeAgentNumber(const ContactItem &agent, std::size_t at)
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
} // namespace zb::interchange
