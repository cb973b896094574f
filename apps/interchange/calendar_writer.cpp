#include "interchange/calendar_writer.h"

#include "interchange/calendar_text.h"
#include "interchange/content_writer.h"
#include "interchange/date_fields.h"
#include "interchange/event_item.h"
#include "interchange/event_series.h"
#include "interchange/event_times.h"
#include "interchange/rule_text.h"
#include "interchange/task_item.h"
#include "interchange/text_source.h"
#include "interchange/zone_text.h"
#include "platform/locale.h"
#include "platform/pim_recurrence.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <functional>

namespace zb::interchange
{
namespace
{
constexpr LONGLONG minutesPerDay = 1440;
constexpr LONG usualReminder = 15;
constexpr std::size_t longestUid = 255;

std::string dayText(LONGLONG ticks)
{
    return utcText(ticks).substr(0, 8);
}

std::string wallText(LONGLONG ticks)
{
    return utcText(ticks).substr(0, 15);
}

std::string joinedCategories(const std::u16string &names)
{
    // The commas between names are the list's own; names have none.
    std::string list;
    std::size_t from = 0;
    while (from < names.size())
    {
        const std::size_t end = std::min(names.find(u", ", from), names.size());
        list += (list.empty() ? "" : ",") + escapedText(names.substr(from, end - from));
        from = end + 2;
    }
    return list;
}

/// A component without its END, read back as an import reads it.
std::vector<CalendarComponent> readBack(const std::string &components)
{
    const std::string calendar = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + components + "END:VCALENDAR\r\n";
    const auto bytes = openMemory(calendar);
    CalendarReader reader(*bytes);
    std::vector<CalendarComponent> all;
    CalendarComponent one;
    while (reader.next(one))
    {
        all.push_back(one);
    }
    return all;
}

std::string ended(std::string text, const char *kind)
{
    return text + "END:" + kind + "\r\n";
}

/// The component, with the line that keeps what reading it would not give.
std::string withRecord(const std::string &open, const char *kind, const std::optional<ExactRecord> &record,
                       const Fingerprint &said)
{
    if (!record)
    {
        return ended(open, kind);
    }
    ContentWriter line;
    line.line(std::string(exactRecordName) + ":" + record->value(said));
    return ended(open + line.written(), kind);
}

RecordProperties told(const AppointmentItem &item)
{
    return encodeAppointment(item);
}

struct Span
{
    LONGLONG start = 0; ///< wall clock, or UTC of a single appointment
    LONGLONG end = 0;
    bool allDay = false;
};
} // namespace

/// Lines of one event.
class EventText
{
  public:
    EventText(CalendarWriter &writer, const ExportedRecord &event) : m_writer(writer), m_event(event)
    {
    }

    void begin(const std::string &uid)
    {
        m_lines.line("BEGIN:VEVENT");
        m_lines.line("UID:" + uid);
        m_lines.line("DTSTAMP:" + utcText(m_writer.m_now));
    }
    /// Times are walls of this zone; none: UTC.
    void inZone(const std::string &name)
    {
        m_zone = name;
    }
    void moment(const std::string &name, LONGLONG ticks, bool isDate)
    {
        m_lines.line(name + (isDate            ? ";VALUE=DATE:" + dayText(ticks)
                             : m_zone.empty() ? ":" + utcText(ticks)
                                              : ";TZID=" + m_zone + ":" + wallText(ticks)));
    }
    void span(const Span &span)
    {
        moment("DTSTART", span.start, span.allDay);
        moment("DTEND", span.end, span.allDay);
    }
    void texts(const RecordView &record, const std::u16string &subject, const std::u16string &location, SHORT busy)
    {
        m_lines.line("SUMMARY:" + escapedText(subject));
        const std::vector<BYTE> notes = record.blob(itemNotes);
        if (m_isChange || !location.empty())
        {
            m_lines.line("LOCATION:" + escapedText(location));
        }
        m_lines.text("DESCRIPTION", decodeNotes(notes.data(), notes.size()));
        if (const std::string names = joinedCategories(m_event.categories); !names.empty())
        {
            m_lines.line("CATEGORIES:" + names);
        }
        constexpr std::array<const char *, 4> words = {"FREE", "TENTATIVE", "BUSY", "OOF"};
        m_lines.line(busy == static_cast<SHORT>(BusyStatus::Free) ? "TRANSP:TRANSPARENT" : "TRANSP:OPAQUE");
        m_lines.line(std::string("X-MICROSOFT-CDO-BUSYSTATUS:") + words[static_cast<unsigned>(busy) & 3U]);
        m_lines.line(record.shortNumber(itemSensitivity, 0) != 0 ? "CLASS:PRIVATE" : "CLASS:PUBLIC");
        if (record.shortNumber(appointmentReminderSet, 0) != 0)
        {
            alarm(record.number(itemReminderMinutes, usualReminder));
        }
    }
    void ofChange()
    {
        m_isChange = true;
    }
    void line(const std::string &text)
    {
        m_lines.line(text);
    }
    const std::string &written() const
    {
        return m_lines.written();
    }

  private:
    void alarm(LONG minutes)
    {
        m_lines.line("BEGIN:VALARM");
        m_lines.line("ACTION:DISPLAY");
        m_lines.line("DESCRIPTION:Reminder");
        m_lines.line("TRIGGER:-PT" + std::to_string(std::max<LONG>(0, minutes)) + "M");
        m_lines.line("END:VALARM");
    }

    CalendarWriter &m_writer;
    const ExportedRecord &m_event;
    ContentWriter m_lines;
    std::string m_zone;
    bool m_isChange = false;
};

namespace
{
/// Times of a record that is no series, as import reads them.
Span singleSpan(const RecordView &record)
{
    Span span;
    span.start = record.ticks(appointmentStart).value_or(0);
    span.allDay = record.number(appointmentDurationType, 0) == durationTypeAllDay;
    const LONGLONG minutes = std::max<LONG>(0, record.number(appointmentDuration, 0));
    if (span.allDay)
    {
        span.start -= span.start % ticksPerDay;
        span.end = span.start + std::max<LONGLONG>(1, (minutes + minutesPerDay - 1) / minutesPerDay) * ticksPerDay;
        return span;
    }
    span.end = span.start + minutes * ticksPerMinute;
    return span;
}

void addSingle(EventText &text, const RecordView &record)
{
    text.span(singleSpan(record));
    text.texts(record, record.text(itemSubject), record.text(appointmentLocation),
               record.shortNumber(appointmentBusyStatus, 0));
}

/// The identity as UID: that of a day of a series has a line feed in it, which the format can say.
std::string uidText(const std::u16string &identity)
{
    return escapedText(identity);
}

void addRecurrenceId(EventText &text, const std::u16string &day)
{
    const std::string raw = toUtf8(std::u16string_view(day));
    text.line((raw.size() == 8 ? "RECURRENCE-ID;VALUE=DATE:" : "RECURRENCE-ID:") + raw);
}

/// One series with all its parts.
class SeriesText
{
  public:
    SeriesText(CalendarWriter &writer, const ExportedRecord &series, RecurrencePattern pattern, std::string zone)
        : m_writer(writer), m_series(series), m_pattern(std::move(pattern)), m_zone(std::move(zone)),
          m_allDay(series.record.number(appointmentDurationType, 0) == durationTypeAllDay),
          m_uid(uidText(series.record.text(itemInterchangeId)))
    {
    }

    /// `utcOf` turns walls of the zone into UTC.
    std::string open(const std::function<LONGLONG(LONGLONG)> &utcOf) const
    {
        EventText text(m_writer, m_series);
        text.begin(m_uid);
        text.inZone(m_zone);
        const LONGLONG first = (LONGLONG{m_pattern.firstDate} + m_pattern.startMinute) * ticksPerMinute;
        text.span(spanOf(first, first + (LONGLONG{m_pattern.endMinute} - m_pattern.startMinute) * ticksPerMinute,
                         m_allDay));
        const LONGLONG last = (LONGLONG{m_pattern.lastDate} + m_pattern.startMinute) * ticksPerMinute;
        const std::string until = m_allDay || m_pattern.lastDate >= endlessSeriesDate ? dayText(last)
                                                                                      : utcText(utcOf(last));
        text.line("RRULE:" + ruleText(m_pattern, until));
        for (const DWORD day : m_pattern.deleted)
        {
            text.moment("EXDATE", (LONGLONG{day} + m_pattern.startMinute) * ticksPerMinute, m_allDay);
        }
        const RecordView &record = m_series.record;
        text.texts(record, record.text(itemSubject), record.text(appointmentLocation),
                   record.shortNumber(appointmentBusyStatus, 0));
        return text.written();
    }

    std::string changes() const
    {
        std::string all;
        for (const RecurrenceException &exception : m_pattern.exceptions)
        {
            const RecordView &record = m_series.record;
            EventText text(m_writer, m_series);
            text.ofChange();
            text.begin(m_uid);
            text.inZone(m_zone);
            text.moment("RECURRENCE-ID", LONGLONG{exception.originalStart} * ticksPerMinute, m_allDay);
            text.span(spanOf(LONGLONG{exception.newStart} * ticksPerMinute,
                             LONGLONG{exception.newEnd} * ticksPerMinute, exception.allDay.value_or(m_allDay)));
            const auto busy = static_cast<SHORT>(exception.busy.value_or(
                static_cast<WORD>(record.shortNumber(appointmentBusyStatus, 0))));
            text.texts(record, exception.subject.value_or(record.text(itemSubject)),
                       exception.location.value_or(record.text(appointmentLocation)), busy);
            all += ended(text.written(), "VEVENT");
        }
        return all;
    }

  private:
    static Span spanOf(LONGLONG start, LONGLONG end, bool allDay)
    {
        if (!allDay)
        {
            return {start, std::max(start, end), false};
        }
        const LONGLONG day = start - start % ticksPerDay;
        const LONGLONG days = std::max<LONGLONG>(1, (end - day + ticksPerDay - 1) / ticksPerDay);
        return {day, day + days * ticksPerDay, true};
    }

    CalendarWriter &m_writer;
    const ExportedRecord &m_series;
    RecurrencePattern m_pattern;
    std::string m_zone;
    bool m_allDay;
    std::string m_uid;
};

/// What the file alone gives for a series that has no days with records of their own.
std::optional<RecordProperties> toldOfSeries(const std::vector<CalendarComponent> &components, ZoneBook &zones,
                                             LONGLONG now)
{
    std::vector<RecordProperties> items;
    const std::vector<CalendarComponent> changes(components.begin() + 1, components.end());
    const auto take = [&](AppointmentItem &item, const CalendarComponent &, const ExactRecord *)
    { items.push_back(told(item)); };
    const SeriesReading reading = readSeries(components.front(), changes, zones, now, take);
    const bool whole = reading.form == SeriesForm::Pattern && items.size() == 1;
    return whole ? std::optional(std::move(items.front())) : std::nullopt;
}
} // namespace

CalendarWriter::CalendarWriter(LONGLONG now) : m_now(now), m_deviceZone(deviceZoneName()), m_zones(m_deviceZone)
{
}

/// A record of one day of a series.
std::string CalendarWriter::dayOfSeries(const std::u16string &series, const ExportedRecord &day)
{
    const std::u16string identity = day.record.text(itemInterchangeId);
    EventText lines(*this, day);
    lines.ofChange();
    lines.begin(uidText(series));
    addRecurrenceId(lines, identity.substr(identity.find(u'\n') + 1));
    addSingle(lines, day.record);
    const std::vector<CalendarComponent> read = readBack(ended(lines.written(), "VEVENT"));
    EventReading reading = readEvent(read.front(), m_zones);
    RecordProperties properties;
    if (reading.item)
    {
        reading.item->partOfSeries = true;
        properties = told(*reading.item);
    }
    return withRecord(lines.written(), "VEVENT",
                      ExactRecord::between(day.record.values(), day.record.count(), properties),
                      fingerprint(saidBy(read.front())));
}

/// The name of a series' zone, defined where its record brings rules of its own.
std::string CalendarWriter::nameZone(const RecordView &series)
{
    TIME_ZONE_INFORMATION rules{};
    const std::vector<BYTE> blob = series.blob(appointmentZone);
    if (!decodeZone(blob, rules))
    {
        return m_deviceZone;
    }
    const std::string_view bytes(reinterpret_cast<const char *>(blob.data()), blob.size());
    const std::string name = "Rules-" + fingerprint(bytes).hex().substr(0, 16);
    const auto [own, isNew] = m_own.emplace(name, ruleZoneText(name, rules));
    for (const CalendarComponent &each : readBack(isNew ? own->second : std::string()))
    {
        m_zones.define(each.zoneId, each.text);
    }
    return name;
}

/// A series with days of their own always has its pattern beside it, since reading would make such days part of it
/// where a pattern can say them.
std::string CalendarWriter::withPattern(const ExportedRecord &series, const std::string &open,
                                        const std::string &changes, bool daysApart)
{
    const std::vector<CalendarComponent> read = readBack(ended(open, "VEVENT") + changes);
    const std::optional<RecordProperties> asSeries =
        daysApart ? std::nullopt : toldOfSeries(read, m_zones, m_now);
    const RecordView &record = series.record;
    std::optional<ExactRecord> exact;
    if (asSeries)
    {
        exact = ExactRecord::between(record.values(), record.count(), *asSeries);
    }
    // A pattern that is kept takes the place of the rule: the rest is then read as a single appointment.
    if (!asSeries || (exact && exact->has(appointmentRecurrence)))
    {
        const EventReading reading = readEvent(read.front(), m_zones);
        exact = ExactRecord::between(record.values(), record.count(),
                                     reading.item ? told(*reading.item) : RecordProperties());
    }
    std::string said;
    for (const CalendarComponent &each : read)
    {
        said += saidBy(each);
    }
    return withRecord(open, "VEVENT", exact, fingerprint(said));
}

std::string CalendarWriter::series(const ExportedRecord &series, const std::vector<ExportedRecord> &days)
{
    const std::vector<BYTE> blob = series.record.blob(appointmentRecurrence);
    const std::optional<RecurrencePattern> pattern = decodeRecurrence(blob.data(), blob.size());
    if (!pattern)
    {
        return event(series);
    }
    const std::string zone = nameZone(series.record);
    const bool allDay = series.record.number(appointmentDurationType, 0) == durationTypeAllDay;
    if (zone == m_deviceZone && !allDay)
    {
        m_names.insert(zone);
    }
    CalendarZone &calendarZone = zone == m_deviceZone ? m_zones.device() : m_zones.find(zone);
    const SeriesText text(*this, series, *pattern, zone);
    const std::string open = text.open(
        [&](LONGLONG wall)
        {
            const auto utc = calendarZone.toUtc(fieldsOf(wall));
            return utc ? ticksOf(*utc) : wall;
        });
    const std::string changes = text.changes();
    std::string own;
    for (const ExportedRecord &day : days)
    {
        own += dayOfSeries(series.record.text(itemInterchangeId), day);
    }
    return withPattern(series, open, changes, !days.empty()) + changes + own;
}

std::string CalendarWriter::event(const ExportedRecord &event)
{
    const std::u16string identity = event.record.text(itemInterchangeId);
    const std::size_t day = identity.find(u'\n');
    EventText lines(*this, event);
    if (day != std::u16string::npos && identity.size() > longestUid)
    {
        lines.begin(uidText(identity.substr(0, day)));
        addRecurrenceId(lines, identity.substr(day + 1));
    }
    else
    {
        lines.begin(uidText(identity));
    }
    addSingle(lines, event.record);
    const std::vector<CalendarComponent> read = readBack(ended(lines.written(), "VEVENT"));
    const EventReading reading = readEvent(read.front(), m_zones);
    const RecordProperties properties = reading.item ? told(*reading.item) : RecordProperties();
    return withRecord(lines.written(), "VEVENT",
                      ExactRecord::between(event.record.values(), event.record.count(), properties),
                      fingerprint(saidBy(read.front())));
}

namespace
{
void addTaskDates(ContentWriter &lines, const RecordView &record, ZoneBook &zones)
{
    for (const auto &[name, id] : {std::pair("DTSTART", taskStartDate), std::pair("DUE", taskDueDate)})
    {
        if (const auto ticks = record.ticks(id))
        {
            lines.line(std::string(name) + ";VALUE=DATE:" + dayText(*ticks));
        }
    }
    if (record.shortNumber(taskCompleteFlag, 0) == 0)
    {
        return;
    }
    lines.line("STATUS:COMPLETED");
    if (const auto ticks = record.ticks(taskDateCompleted))
    {
        // Noon here, which is the same day nearly everywhere.
        const LONGLONG noon = *ticks - *ticks % ticksPerDay + ticksPerDay / 2;
        const auto utc = zones.device().toUtc(fieldsOf(noon));
        lines.line("COMPLETED:" + utcText(utc ? ticksOf(*utc) : noon));
    }
}

void addTaskTexts(ContentWriter &lines, const ExportedRecord &task)
{
    const RecordView &record = task.record;
    const std::vector<BYTE> notes = record.blob(itemNotes);
    lines.text("SUMMARY", record.text(itemSubject));
    lines.text("DESCRIPTION", decodeNotes(notes.data(), notes.size()));
    if (const std::string names = joinedCategories(task.categories); !names.empty())
    {
        lines.line("CATEGORIES:" + names);
    }
    const LONG importance = record.number(taskImportance, static_cast<LONG>(TaskImportance::Normal));
    lines.line(importance == static_cast<LONG>(TaskImportance::High)  ? "PRIORITY:1"
               : importance == static_cast<LONG>(TaskImportance::Low) ? "PRIORITY:9"
                                                                      : "PRIORITY:5");
    lines.line(record.shortNumber(itemSensitivity, 0) != 0 ? "CLASS:PRIVATE" : "CLASS:PUBLIC");
    if (!task.parent.empty())
    {
        lines.line("RELATED-TO:" + uidText(task.parent));
    }
    if (record.shortNumber(taskReminderSet, 0) != 0)
    {
        lines.line("BEGIN:VALARM");
        lines.line("ACTION:DISPLAY");
        lines.line("DESCRIPTION:Reminder");
        lines.line("TRIGGER;RELATED=END:-PT" +
                   std::to_string(std::max<LONG>(0, record.number(itemReminderMinutes, 0))) + "M");
        lines.line("END:VALARM");
    }
}

/// A rule needs a day to begin on.
void addTaskRule(ContentWriter &lines, const RecordView &record)
{
    const std::vector<BYTE> blob = record.blob(taskRecurrence);
    const std::optional<RecurrencePattern> pattern = decodeRecurrence(blob.data(), blob.size());
    if (pattern)
    {
        lines.line("RRULE:" + ruleText(*pattern, dayText(LONGLONG{pattern->lastDate} * ticksPerMinute)));
    }
}
} // namespace

std::string CalendarWriter::task(const ExportedRecord &task)
{
    ContentWriter lines;
    lines.line("BEGIN:VTODO");
    lines.line("UID:" + uidText(task.record.text(itemInterchangeId)));
    lines.line("DTSTAMP:" + utcText(m_now));
    addTaskDates(lines, task.record, m_zones);
    addTaskRule(lines, task.record);
    addTaskTexts(lines, task);
    const std::vector<CalendarComponent> read = readBack(ended(lines.written(), "VTODO"));
    const TaskReading reading = readTask(read.front(), m_zones);
    RecordProperties properties = reading.item ? encodeTask(*reading.item) : RecordProperties();
    if (reading.repeats)
    {
        properties.set(taskRecurringFlag, SHORT{1});
    }
    return withRecord(lines.written(), "VTODO",
                      ExactRecord::between(task.record.values(), task.record.count(), properties),
                      fingerprint(saidBy(read.front())));
}

std::string CalendarWriter::zones() const
{
    std::string text;
    for (const std::string &name : m_names)
    {
        text += systemZoneText(name);
    }
    for (const auto &[name, definition] : m_own)
    {
        text += definition;
    }
    return text;
}
} // namespace zb::interchange
