#include "interchange/calendar_reader.h"

#include "interchange/calendar_text.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
// No sane writer nests deeper than an alarm in an event; what does is passed over without remembering every level.
constexpr std::size_t deepestNesting = 16;
constexpr std::size_t longestName = 64;
// The longest definitions in use list some hundred changes.
constexpr std::size_t mostZoneLines = 10'000;
// Some ten thousand days that are taken out of a series or added to it.
constexpr std::size_t mostRepetitionBytes = 1024 * 1024;

struct FieldName
{
    std::string_view name;
    EventField field;
};

constexpr std::array<FieldName, static_cast<std::size_t>(EventField::Count)> fieldNames = {{
    {"UID", EventField::Uid},
    {"RECURRENCE-ID", EventField::RecurrenceId},
    {"SUMMARY", EventField::Summary},
    {"LOCATION", EventField::Location},
    {"DESCRIPTION", EventField::Description},
    {"DTSTART", EventField::Start},
    {"DTEND", EventField::End},
    {"DURATION", EventField::Duration},
    {"CLASS", EventField::Class},
    {"TRANSP", EventField::Transparency},
    {"STATUS", EventField::Status},
    {"X-MICROSOFT-CDO-BUSYSTATUS", EventField::BusyStatus},
    {"X-MICROSOFT-CDO-ALLDAYEVENT", EventField::AllDayEvent},
    {"SEQUENCE", EventField::Sequence},
    {"DTSTAMP", EventField::Stamp},
    {"LAST-MODIFIED", EventField::LastModified},
    {"RRULE", EventField::Rule},
    {"RDATE", EventField::RepeatDates},
    {"EXDATE", EventField::ExceptionDates},
    {"EXRULE", EventField::ExceptionRule},
}};

// None of these ever stands inside another of them.
constexpr std::array<std::string_view, 5> flatNames = {"VEVENT", "VTODO", "VJOURNAL", "VFREEBUSY", "VTIMEZONE"};

// Of to-dos alone: what is read, and what is only told to be lost.
constexpr std::array<std::string_view, 7> taskNames = {"DUE",        "COMPLETED", "PRIORITY", "PERCENT-COMPLETE",
                                                       "CATEGORIES", "RELATED-TO", "X-ZB-RECORD"};
constexpr std::array<std::string_view, 3> eventNames = {"CATEGORIES", "COLOR", "X-ZB-RECORD"};
constexpr std::array<std::string_view, 8> lostNames = {"GEO", "ATTACH",  "ATTENDEE", "ORGANIZER",
                                                       "URL", "COMMENT", "CONTACT",  "RESOURCES"};

constexpr std::array<std::string_view, 6> zoneNames = {"TZID",       "DTSTART", "TZOFFSETFROM",
                                                       "TZOFFSETTO", "RRULE",   "RDATE"};

template <typename Names>
bool contains(const Names &names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

void makeUpper(std::string &text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char ch) { return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch; });
}

std::string upper(std::string_view text)
{
    std::string copy(text);
    makeUpper(copy);
    return copy;
}

/// Position of the colon that ends the parameters, which begin at `from`; quoted values may hold colons of their own.
std::size_t colonOf(std::string_view text, std::size_t from)
{
    bool quoted = false;
    for (std::size_t at = from; at < text.size(); ++at)
    {
        if (text[at] == '"')
        {
            quoted = !quoted;
        }
        else if (text[at] == ':' && !quoted)
        {
            return at;
        }
    }
    // A quote that is never closed: the first colon is the best guess.
    return quoted ? text.find(':', from) : std::string_view::npos;
}

/// Length of a parameter up to the semicolon that ends it.
std::size_t endOfParameter(std::string_view text)
{
    bool quoted = false;
    std::size_t at = 0;
    for (; at < text.size() && (quoted || text[at] != ';'); ++at)
    {
        quoted = quoted != (text[at] == '"');
    }
    return at;
}

/// The character of a property's name in upper case; 0 for one that no name holds.
char nameCharacter(char ch)
{
    if (ch >= 'a' && ch <= 'z')
    {
        return static_cast<char>(ch - 'a' + 'A');
    }
    const bool fits = (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') || ch == '-' || ch == '_' || ch == '.';
    return fits ? ch : '\0';
}

/// The rules of real zones come once or twice a year. A rule by the second would keep a parser busy for hours.
bool isZoneRule(std::string_view rule)
{
    const std::string text = upper(rule);
    return text.find("FREQ=YEARLY") != std::string::npos && text.find("BYHOUR") == std::string::npos &&
           text.find("BYMINUTE") == std::string::npos && text.find("BYSECOND") == std::string::npos;
}
} // namespace

std::string_view CalendarComponent::rawValue(EventField field) const
{
    const Place &found = place(field);
    const std::string &store = field < EventField::Sequence ? text : m_aside;
    return std::string_view(store).substr(std::min(found.offset, store.size()), found.length);
}

std::string_view CalendarComponent::parameter(EventField field, std::string_view name) const
{
    const Place &found = place(field);
    if (found.parameters == 0)
    {
        return {};
    }
    return parameterOf(std::string_view(text).substr(found.offset - 1 - found.parameters, found.parameters), name);
}

std::string_view parameterOf(std::string_view rest, std::string_view name)
{
    while (!rest.empty())
    {
        rest.remove_prefix(1); // the semicolon
        const std::string_view item = rest.substr(0, endOfParameter(rest));
        rest.remove_prefix(item.size());
        const std::size_t equals = item.find('=');
        if (equals != std::string_view::npos && upper(trimmed(item.substr(0, equals))) == name)
        {
            std::string_view value = trimmed(item.substr(equals + 1));
            const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
            return quoted ? value.substr(1, value.size() - 2) : value;
        }
    }
    return {};
}

bool CalendarComponent::says(EventField field, std::string_view word) const
{
    const std::string_view value = trimmed(rawValue(field));
    return value.size() == word.size() && upper(value) == word;
}

void CalendarComponent::clear()
{
    kind = ComponentKind::Other;
    name.clear();
    text.clear();
    line = 0;
    unended = false;
    hasAlarm = false;
    alarmTrigger.clear();
    alarmParameters.clear();
    oversized = false;
    zoneId.clear();
    repetition.clear();
    more.clear();
    m_places.fill({});
    m_aside.clear();
}

CalendarReader::CalendarReader(ByteSource &bytes) : m_text(bytes), m_lines(m_text)
{
}

void CalendarReader::rewind()
{
    m_lines.rewind();
    m_pending = false;
    m_calendar = 0;
    m_inner.clear();
    m_notes = {};
}

const ReaderNotes &CalendarReader::notes()
{
    m_notes.encoding = m_lines.notes();
    return m_notes;
}

bool CalendarReader::readLine()
{
    if (m_pending)
    {
        m_pending = false;
        return true;
    }
    if (!m_lines.next(m_line))
    {
        return false;
    }
    split();
    return true;
}

void CalendarReader::split()
{
    constexpr std::string_view mark = "\xEF\xBB\xBF"; // files put one behind the other keep their marks
    std::string_view text = m_line.text;
    if (text.substr(0, mark.size()) == mark)
    {
        text.remove_prefix(mark.size());
    }
    m_parts = {};
    const std::size_t nameEnd = takeName(text);
    if (nameEnd == std::string_view::npos)
    {
        return;
    }
    const std::size_t colon = text[nameEnd] == ':' ? nameEnd : colonOf(text, nameEnd);
    if (colon == std::string_view::npos)
    {
        return;
    }
    m_parts.whole = text;
    m_parts.name = m_name;
    m_parts.parameters = text.substr(nameEnd, colon - nameEnd);
    m_parts.value = text.substr(colon + 1);
    m_parts.isProperty = true;
}

/// Puts the name in upper case into m_name and returns where it ends, npos when the line begins with none.
std::size_t CalendarReader::takeName(std::string_view text)
{
    m_name.clear();
    std::size_t at = 0;
    for (; at < text.size() && m_name.size() <= longestName; ++at)
    {
        const char ch = nameCharacter(text[at]);
        if (ch != '\0')
        {
            m_name.push_back(ch);
        }
        else if (text[at] != ' ' && text[at] != '\t')
        {
            break;
        }
    }
    const bool ends = at < text.size() && (text[at] == ':' || text[at] == ';');
    return ends && !m_name.empty() ? at : std::string_view::npos;
}

void CalendarReader::stray()
{
    m_notes.strayFirst = m_notes.strayLines++ == 0 ? m_line.line : m_notes.strayFirst;
}

/// To the BEGIN of the next calendar. False at the end of the file; throws when the file does not begin with one.
bool CalendarReader::openCalendar()
{
    while (readLine())
    {
        if (m_parts.name == "BEGIN" && upper(trimmed(m_parts.value)) == "VCALENDAR")
        {
            m_calendar = m_line.line;
            ++m_notes.calendars;
            return true;
        }
        if (m_notes.calendars == 0)
        {
            throw CalendarFileError(FileFault::NotCalendar, m_line.line,
                                    "is no iCalendar file: it does not begin with BEGIN:VCALENDAR");
        }
        stray();
    }
    if (m_notes.calendars == 0)
    {
        throw CalendarFileError(FileFault::NotCalendar, 0, "is no iCalendar file: it is empty");
    }
    return false;
}

void CalendarReader::torn(const CalendarComponent *component) const
{
    const std::string place =
        component == nullptr ? "the calendar that begins at line " + std::to_string(m_calendar)
                             : "the " + component->name + " that begins at line " + std::to_string(component->line);
    throw CalendarFileError(FileFault::Torn, m_lines.lineNumber(), "is cut off: it ends inside " + place);
}

bool CalendarReader::next(CalendarComponent &component)
{
    for (;;)
    {
        if (m_calendar == 0 && !openCalendar())
        {
            return false;
        }
        if (!readLine())
        {
            torn(nullptr);
        }
        const bool begins = m_parts.name == "BEGIN";
        const std::string value = begins || m_parts.name == "END" ? upper(trimmed(m_parts.value)) : std::string();
        if (begins && value == "VCALENDAR")
        {
            m_notes.unendedCalendarFirst = m_notes.unendedCalendars++ == 0 ? m_calendar : m_notes.unendedCalendarFirst;
            m_calendar = m_line.line;
            ++m_notes.calendars;
        }
        else if (begins)
        {
            begin(component);
            readComponent(component);
            return true;
        }
        else if (m_parts.name == "END" && value == "VCALENDAR")
        {
            m_calendar = 0;
        }
        else if (m_parts.name == "VERSION" && trimmed(m_parts.value) == "1.0")
        {
            throw CalendarFileError(FileFault::NotCalendar, m_line.line,
                                    "is a vCalendar 1.0 file, an older form than iCalendar 2.0");
        }
        else if (!m_parts.isProperty || m_parts.name == "END")
        {
            stray();
        }
    }
}

void CalendarReader::begin(CalendarComponent &component)
{
    component.clear();
    component.name = upper(trimmed(m_parts.value)).substr(0, longestName);
    component.line = m_line.line;
    component.kind = component.name == "VEVENT"      ? ComponentKind::Event
                     : component.name == "VTODO"     ? ComponentKind::Task
                     : component.name == "VTIMEZONE" ? ComponentKind::Zone
                                                     : ComponentKind::Other;
    component.text = "BEGIN:" + component.name + "\r\n";
    m_inner.clear();
    m_deeper = 0;
    m_zoneLines = 0;
    m_repetitionBytes = 0;
}

void CalendarReader::readComponent(CalendarComponent &component)
{
    while (readLine())
    {
        if (leavesUnended(component))
        {
            component.unended = true;
            m_pending = true;
            return;
        }
        if (m_parts.name == "BEGIN")
        {
            openInner(component);
        }
        else if (m_parts.name == "END")
        {
            if (closes(component))
            {
                return;
            }
        }
        else if (!m_parts.isProperty)
        {
            stray();
        }
        else if (component.kind == ComponentKind::Zone)
        {
            takeZoneLine(component);
        }
        else if (component.kind != ComponentKind::Other && m_inner.empty())
        {
            takeEventLine(component);
            takeFurtherLine(component);
        }
        else if (m_parts.name == "TRIGGER" && m_deeper == 0 && !m_inner.empty() && m_inner.back() == "VALARM" &&
                 component.alarmTrigger.empty())
        {
            component.alarmTrigger = m_parts.value.substr(0, longestName);
            component.alarmParameters = m_parts.parameters.substr(0, longestName);
        }
    }
    torn(&component);
}

/// True at a line that can only stand outside the component: its own END was lost.
bool CalendarReader::leavesUnended(const CalendarComponent &component) const
{
    if (m_parts.name != "BEGIN" && m_parts.name != "END")
    {
        return false;
    }
    const std::string value = upper(trimmed(m_parts.value));
    return value == "VCALENDAR" ||
           (m_parts.name == "BEGIN" && contains(flatNames, value) && contains(flatNames, component.name));
}

void CalendarReader::openInner(CalendarComponent &component)
{
    if (m_inner.size() == deepestNesting)
    {
        ++m_deeper;
        return;
    }
    m_inner.push_back(upper(trimmed(m_parts.value)).substr(0, longestName));
    component.hasAlarm = component.hasAlarm || m_inner.back() == "VALARM";
    if (component.kind == ComponentKind::Zone)
    {
        component.text += "BEGIN:" + m_inner.back() + "\r\n";
    }
}

/// Takes an END line; true when it is the component's own. Parts inside whose END was lost end with what holds them; an
/// END that closes nothing is stray.
bool CalendarReader::closes(CalendarComponent &component)
{
    if (m_deeper > 0)
    {
        --m_deeper;
        return false;
    }
    const std::string value = upper(trimmed(m_parts.value));
    const auto open = std::find(m_inner.rbegin(), m_inner.rend(), value);
    const bool own = open == m_inner.rend() && value == component.name;
    if (open == m_inner.rend() && !own)
    {
        stray();
        return false;
    }
    const auto last = own ? 0 : m_inner.rend() - open - 1;
    while (static_cast<std::ptrdiff_t>(m_inner.size()) > last)
    {
        if (component.kind == ComponentKind::Zone)
        {
            component.text += "END:" + m_inner.back() + "\r\n";
        }
        m_inner.pop_back();
    }
    if (own)
    {
        component.text += "END:" + component.name + "\r\n";
    }
    return own;
}

void CalendarReader::takeRepetitionLine(CalendarComponent &component, EventField kind)
{
    m_repetitionBytes += m_parts.whole.size() + sizeof(RepetitionLine);
    if (m_repetitionBytes > mostRepetitionBytes)
    {
        component.oversized = true;
        return;
    }
    component.repetition.push_back(
        {kind, std::string(m_parts.parameters), std::string(m_parts.value), m_line.line, m_line.cut});
}

void CalendarReader::takeEventLine(CalendarComponent &component)
{
    const auto *const found = std::find_if(fieldNames.begin(), fieldNames.end(),
                                           [this](const FieldName &entry) { return entry.name == m_parts.name; });
    if (found == fieldNames.end())
    {
        return;
    }
    if (found->field >= EventField::Rule)
    {
        takeRepetitionLine(component, found->field);
    }
    if (component.has(found->field))
    {
        return;
    }
    CalendarComponent::Place &place = component.m_places[static_cast<std::size_t>(found->field)];
    place.line = m_line.line;
    place.cut = m_line.cut;
    const bool aside = found->field >= EventField::Sequence;
    std::string &store = aside ? component.m_aside : component.text;
    // Versions and rules are short; a long one is not worth its memory.
    const std::string_view value = aside ? m_parts.value.substr(0, longestName) : m_parts.value;
    store += aside ? value : m_parts.whole;
    place.length = value.size();
    place.offset = store.size() - place.length;
    place.parameters = aside ? 0 : m_parts.parameters.size();
    store += "\r\n";
}

void CalendarReader::takeFurtherLine(CalendarComponent &component)
{
    const bool isTask = component.kind == ComponentKind::Task;
    const bool lost = isTask && contains(lostNames, m_parts.name);
    if (!lost && !(isTask ? contains(taskNames, m_parts.name) : contains(eventNames, m_parts.name)))
    {
        return;
    }
    m_repetitionBytes += m_parts.whole.size() + sizeof(PropertyLine);
    if (m_repetitionBytes > mostRepetitionBytes)
    {
        component.oversized = true;
        return;
    }
    component.more.push_back({m_name, lost ? "" : std::string(m_parts.parameters),
                              lost ? "" : std::string(m_parts.value), m_line.line, m_line.cut});
}

void CalendarReader::takeZoneLine(CalendarComponent &component)
{
    if (!contains(zoneNames, m_parts.name) || m_line.cut || (m_parts.name == "RRULE" && !isZoneRule(m_parts.value)))
    {
        return;
    }
    if (m_parts.name == "TZID" && m_inner.empty() && component.zoneId.empty())
    {
        component.zoneId = trimmed(m_parts.value);
    }
    if (++m_zoneLines > mostZoneLines || component.text.size() > ContentLines::defaultLimit)
    {
        component.oversized = true;
        return;
    }
    component.text += m_parts.whole;
    component.text += "\r\n";
}
} // namespace zb::interchange
