// Cuts a calendar file into its components, one at a time, so that a file of any size is read in bounded memory and
// every complaint can name a line.
//
// Of an event only the properties that a record can keep are held (the first of each name), unfolded and as UTF-8, in a
// form that a parser takes; of a time zone definition its rules. Everything else is passed over and counted. Damage
// inside a calendar (a component without end, a stray line) costs that component or line alone and is noted; a file
// that is no calendar, or that ends inside one, throws.
#pragma once

#include "interchange/calendar_file_error.h"
#include "interchange/content_lines.h"

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
/// Properties of an event that are looked at.
enum class EventField : std::size_t
{
    Uid,
    RecurrenceId,
    Summary,
    Location,
    Description,
    Start,
    End,
    Duration,
    Class,
    Transparency,
    Status,
    BusyStatus,
    AllDayEvent,
    // The rest tell versions and repetition; they are not part of the text that is parsed.
    Sequence,
    Stamp,
    LastModified,
    Rule,
    RepeatDates,
    ExceptionDates,
    ExceptionRule,
    Count
};

/// One line that tells on which days an event repeats.
struct RepetitionLine
{
    EventField kind;        ///< Rule, RepeatDates, ExceptionDates, ExceptionRule
    std::string parameters; ///< with their semicolons
    std::string value;
    std::size_t line = 0;
    bool cut = false; ///< longer than the limit of lines
};

/// One line beyond the fields above: of a to-do, or the categories and colour of an event. What no record holds has its
/// name alone.
struct PropertyLine
{
    std::string name;       ///< upper case
    std::string parameters; ///< with their semicolons
    std::string value;
    std::size_t line = 0;
    bool cut = false;
};

enum class ComponentKind
{
    Event,
    Task, ///< a to-do
    Zone,
    Other
};

/// One component of a calendar.
class CalendarComponent
{
  public:
    ComponentKind kind = ComponentKind::Other;
    std::string name;     ///< upper case: VEVENT, VTIMEZONE, VTODO ...
    std::string text;     ///< BEGIN to END, one line a property, each ended by CR LF
    std::size_t line = 0; ///< of its BEGIN
    bool unended = false; ///< its END is missing
    bool hasAlarm = false;
    /// The trigger of its first alarm that has one, and the parameters of that.
    std::string alarmTrigger;
    std::string alarmParameters;
    std::string zoneId;     ///< TZID of a zone definition
    bool oversized = false; ///< a zone definition with more rules than any real one, an event with more repetition
    /// All lines of an event that tell its repetition.
    std::vector<RepetitionLine> repetition;
    /// What a to-do says beside the fields that events have too, and the categories and colour of an event.
    std::vector<PropertyLine> more;

    bool has(EventField field) const
    {
        return place(field).line != 0;
    }
    /// Line of a property in the file; 0 when it is missing.
    std::size_t lineOf(EventField field) const
    {
        return place(field).line;
    }
    /// True when the property was too long and is not whole.
    bool wasCut(EventField field) const
    {
        return place(field).cut;
    }
    /// Value as it stands in the file, escapes and all; empty when missing.
    std::string_view rawValue(EventField field) const;
    /// Value of a parameter (its name in upper case) without quotes; empty when missing. The fields from Sequence on
    /// have none.
    std::string_view parameter(EventField field, std::string_view name) const;

    /// Whether the event has days of its own beside the first.
    bool repeats() const
    {
        return has(EventField::Rule) || has(EventField::RepeatDates);
    }

    /// Whether the value is this word, which is in upper case, in any case and with blanks around it.
    bool says(EventField field, std::string_view word) const;

    void clear();

  private:
    friend class CalendarReader;
    struct Place
    {
        std::size_t offset = 0; ///< of the value, in `text` or `m_aside`
        std::size_t length = 0;
        std::size_t parameters = 0; ///< characters between name and value, in front of the colon
        std::size_t line = 0;
        bool cut = false;
    };
    const Place &place(EventField field) const
    {
        return m_places[static_cast<std::size_t>(field)];
    }

    std::array<Place, static_cast<std::size_t>(EventField::Count)> m_places{};
    std::string m_aside; ///< values that are kept beside the text
};

/// What was passed over, each kind with the line of the first (0: none).
struct ReaderNotes
{
    std::size_t strayLines = 0;
    std::size_t strayFirst = 0;
    std::size_t calendars = 0;
    std::size_t unendedCalendars = 0;
    std::size_t unendedCalendarFirst = 0;
    EncodingNotes encoding;
};

/// Value of a parameter in a line's parameters, as CalendarComponent::parameter gives it.
std::string_view parameterOf(std::string_view parameters, std::string_view name);

class CalendarReader
{
  public:
    explicit CalendarReader(ByteSource &bytes);

    /// The next component of any calendar in the file; false at the end. `component` is reused. Throws
    /// CalendarFileError.
    bool next(CalendarComponent &component);
    /// Back to the beginning, notes included.
    void rewind();

    const ReaderNotes &notes();
    std::uint64_t position() const
    {
        return m_text.position();
    }
    std::uint64_t size() const
    {
        return m_text.size();
    }

  private:
    /// A content line seen as name, parameters and value.
    struct Parts
    {
        std::string_view whole;
        std::string_view name;       ///< upper case
        std::string_view parameters; ///< with their semicolons
        std::string_view value;
        bool isProperty = false;
    };

    bool readLine();
    void split();
    std::size_t takeName(std::string_view text);
    bool openCalendar();
    void readComponent(CalendarComponent &component);
    bool leavesUnended(const CalendarComponent &component) const;
    void begin(CalendarComponent &component);
    void openInner(CalendarComponent &component);
    bool closes(CalendarComponent &component);
    void takeEventLine(CalendarComponent &component);
    void takeRepetitionLine(CalendarComponent &component, EventField kind);
    void takeFurtherLine(CalendarComponent &component);
    void takeZoneLine(CalendarComponent &component);
    void stray();
    [[noreturn]] void torn(const CalendarComponent *component) const;

    TextSource m_text;
    ContentLines m_lines;
    ContentLine m_line;
    std::string m_name; ///< storage of Parts::name
    Parts m_parts;
    bool m_pending = false;           ///< m_line waits to be read again
    std::size_t m_calendar = 0;       ///< line of the open calendar's BEGIN, 0 outside
    std::vector<std::string> m_inner; ///< open components inside the current one
    std::size_t m_deeper = 0;         ///< levels open below the deepest that is remembered
    std::size_t m_zoneLines = 0;
    std::size_t m_repetitionBytes = 0;
    ReaderNotes m_notes;
};
} // namespace zb::interchange
