// Appointments and tasks as iCalendar.
#include "platform/item_identity.h"
#include "platform/linux/pim_appointment_record.h"
#include "platform/linux/pim_category_names.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_outbox.h"
#include "platform/linux/pim_outbox_lines.h"
#include "platform/linux/pim_series_record.h"

#include <algorithm>
#include <array>

namespace zb::internal
{
namespace
{
constexpr std::array<const char *, 7> dayNames = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

/// A getter's text.
template <typename Item>
std::u16string textFrom(Item &item, HRESULT (Item::*getter)(BSTR *))
{
    BSTR text = nullptr;
    (item.*getter)(&text);
    std::u16string copy = textOf(text);
    SysFreeString(text);
    return copy;
}

template <typename Value, typename Item>
Value valueFrom(Item &item, HRESULT (Item::*getter)(Value *))
{
    Value value{};
    (item.*getter)(&value);
    return value;
}

std::string weekdayList(LONG mask, const std::string &number)
{
    std::string list;
    for (std::size_t day = 0; day < dayNames.size(); ++day)
    {
        if ((mask >> day & 1) != 0)
        {
            list += (list.empty() ? "" : ",") + number + dayNames[day];
        }
    }
    return list;
}

/// Days up to the pattern's of which a month has the last: where it lacks the pattern's, lists show that.
std::string monthDays(LONG day)
{
    if (day <= 28)
    {
        return ";BYMONTHDAY=" + std::to_string(day);
    }
    std::string list = ";BYMONTHDAY=28";
    for (LONG each = 29; each <= day; ++each)
    {
        list += "," + std::to_string(each);
    }
    return list + ";BYSETPOS=-1";
}

std::string nthDays(LONG mask, LONG instance)
{
    const std::string number = instance == 5 ? "-1" : std::to_string(instance);
    const bool single = (mask & (mask - 1)) == 0;
    return single ? ";BYDAY=" + weekdayList(mask, number) : ";BYDAY=" + weekdayList(mask, "") + ";BYSETPOS=" + number;
}

std::string ruleText(IRecurrencePattern &pattern, bool wholeDays)
{
    const LONG type = valueFrom(pattern, &IRecurrencePattern::get_RecurrenceType);
    const LONG mask = valueFrom(pattern, &IRecurrencePattern::get_DayOfWeekMask);
    const LONG instance = valueFrom(pattern, &IRecurrencePattern::get_Instance);
    const LONG day = valueFrom(pattern, &IRecurrencePattern::get_DayOfMonth);
    const std::string month = ";BYMONTH=" + std::to_string(valueFrom(pattern, &IRecurrencePattern::get_MonthOfYear));
    const std::string interval = ";INTERVAL=" + std::to_string(valueFrom(pattern, &IRecurrencePattern::get_Interval));
    std::string rule;
    switch (type)
    {
    case olRecursDaily:
        rule = "FREQ=DAILY" + interval;
        break;
    case olRecursWeekly:
        rule = "FREQ=WEEKLY" + interval + ";WKST=SU;BYDAY=" + weekdayList(mask, "");
        break;
    case olRecursMonthly:
        rule = "FREQ=MONTHLY" + interval + monthDays(day);
        break;
    case olRecursMonthNth:
        rule = "FREQ=MONTHLY" + interval + nthDays(mask, instance);
        break;
    case olRecursYearly:
        rule = "FREQ=YEARLY" + month + monthDays(day);
        break;
    default:
        rule = "FREQ=YEARLY" + month + nthDays(mask, instance);
        break;
    }
    const LONG count = valueFrom(pattern, &IRecurrencePattern::get_Occurrences);
    const DATE end = valueFrom(pattern, &IRecurrencePattern::get_PatternEndDate);
    if (count > 0)
    {
        return rule + ";COUNT=" + std::to_string(count);
    }
    return end == PIM_NO_DATE ? rule : rule + ";UNTIL=" + dayText(ticksOfDate(end)) + (wholeDays ? "" : "T235959");
}

/// The times of an appointment or of one of its days.
class TimeWriter
{
  public:
    TimeWriter(OutboxLines &lines, bool floating) : m_lines(lines), m_floating(floating)
    {
    }
    void moment(const std::string &name, LONGLONG wall, bool wholeDay) const
    {
        if (wholeDay)
        {
            m_lines.add(name + ";VALUE=DATE:" + dayText(wall));
        }
        else
        {
            m_lines.add(name + ":" + (m_floating ? momentText(wall) : momentText(m_device.utcOf(wall)) + "Z"));
        }
    }
    void span(const AppointmentTimes &times) const
    {
        moment("DTSTART", times.firstMoment(), times.allDay);
        moment("DTEND", times.allDay ? times.lastMoment() + ticksPerMinute : times.lastMoment(), times.allDay);
    }

  private:
    OutboxLines &m_lines;
    bool m_floating;
    WallClock m_device = WallClock::ofDevice();
};

AppointmentTimes timesFrom(IAppointment &item)
{
    AppointmentTimes times;
    times.allDay = valueFrom(item, &IAppointment::get_AllDayEvent) != VARIANT_FALSE;
    times.start = ticksOfDate(valueFrom(item, &IAppointment::get_Start));
    times.minutes = valueFrom(item, &IAppointment::get_Duration);
    const LONGLONG end = ticksOfDate(valueFrom(item, &IAppointment::get_End));
    if (!times.allDay && times.start != badTime && end > times.start)
    {
        times.minutes = (end - times.start) / ticksPerMinute; // by the clock, which may change between the two
    }
    return times;
}

void addStatus(OutboxLines &lines, LONG busy)
{
    lines.add(busy == olFree ? "TRANSP:TRANSPARENT" : "TRANSP:OPAQUE");
    const char *status = busy == olFree ? "FREE" : busy == olTentative ? "TENTATIVE" : busy == olBusy ? "BUSY" : "OOF";
    lines.add(std::string("X-MICROSOFT-CDO-BUSYSTATUS:") + status);
}

void addPeople(OutboxLines &lines, IAppointment &item)
{
    Counted<IRecipients> people;
    int count = 0;
    if (FAILED(item.get_Recipients(people.out())) || FAILED(people->get_Count(&count)))
    {
        return;
    }
    for (int i = 1; i <= count; ++i)
    {
        Counted<IRecipient> person;
        if (FAILED(people->Item(i, person.out())))
        {
            continue;
        }
        std::string name = toUtf8(textFrom(*person.get(), &IRecipient::get_Name));
        std::erase(name, '"');
        const std::string address = toUtf8(textFrom(*person.get(), &IRecipient::get_Address));
        lines.add("ATTENDEE;CN=\"" + name + "\":" + (address.empty() ? "invalid:nomail" : "mailto:" + address));
    }
}

void addPlain(OutboxLines &lines, IAppointment &item)
{
    lines.addText("SUMMARY", textFrom(item, &IAppointment::get_Subject));
    lines.addText("LOCATION", textFrom(item, &IAppointment::get_Location));
    lines.addText("DESCRIPTION", textFrom<IPOutlookItem>(item, &IPOutlookItem::get_Body));
    lines.addCategories(textFrom<IPOutlookItem>(item, &IPOutlookItem::get_Categories));
    addStatus(lines, valueFrom(item, &IAppointment::get_BusyStatus));
    lines.add(valueFrom(item, &IAppointment::get_Sensitivity) == olNormal ? "CLASS:PUBLIC" : "CLASS:PRIVATE");
    if (valueFrom(item, &IAppointment::get_ReminderSet) != VARIANT_FALSE)
    {
        const LONG minutes = valueFrom(item, &IAppointment::get_ReminderMinutesBeforeStart);
        lines.add("BEGIN:VALARM");
        lines.add("ACTION:DISPLAY");
        lines.add("DESCRIPTION:Reminder");
        lines.add("TRIGGER:-PT" + std::to_string(minutes) + "M");
        lines.add("END:VALARM");
    }
}

/// How others know an item.
struct Identity
{
    std::string uid;
    std::string day; ///< of a series, as in interchange ids; empty: all of it
};

Identity identityFrom(const std::u16string &id)
{
    const std::size_t end = std::min(id.find(u'\n'), id.size());
    return {toUtf8(id.substr(0, end)), toUtf8(id.substr(std::min(end + 1, id.size())))};
}

/// That of the record, which gets one where it lacks it; an item without a record has one for this time alone.
HRESULT identityOf(PimKind kind, LONG oid, const StoredItem &record, Identity &identity)
{
    std::u16string id = record.text(itemInterchangeId);
    if (id.empty())
    {
        id = newItemIdentity();
        RecordProperties properties;
        properties.set(itemInterchangeId, id);
        auto written = static_cast<CEOID>(oid);
        if (const HRESULT result = oid == 0 ? S_OK : PimStore().write(kind, properties, written); FAILED(result))
        {
            return result;
        }
    }
    identity = identityFrom(id);
    return S_OK;
}

bool isDayOfSeries(IAppointment &item)
{
    Counted<IRecurrencePattern> pattern;
    return item.GetRecurrencePattern(pattern.out()) == PIM_E_SERIES;
}

/// An occurrence whose start was put and not saved is none of its series that others could know.
HRESULT identityOfDay(LONG oid, const StoredItem &record, LONGLONG start, Identity &identity)
{
    const std::optional<SeriesRecord> series = SeriesRecord::of(record);
    const std::optional<int> day = series ? series->find(start) : std::nullopt;
    if (!day || series->valuesOf(*day).times.firstMoment() != start)
    {
        identity = identityFrom(newItemIdentity());
        return S_OK;
    }
    const HRESULT result = identityOf(PimKind::Appointment, oid, record, identity);
    identity.day = toUtf8(dayIdentity(series->originalStart(*day), series->series().times.allDay));
    return result;
}

void addIdentity(OutboxLines &lines, const Identity &identity)
{
    constexpr std::size_t wholeDay = 8;
    lines.add("UID:" + escapedText(toUtf16(identity.uid)));
    if (!identity.day.empty())
    {
        lines.add((identity.day.size() == wholeDay ? "RECURRENCE-ID;VALUE=DATE:" : "RECURRENCE-ID:") + identity.day);
    }
    lines.add("DTSTAMP:" + nowText());
}

void addDeleted(const TimeWriter &times, const SeriesRecord &series, const RecurrencePattern &pattern)
{
    const bool wholeDays = series.series().times.allDay;
    for (const DWORD day : pattern.deleted)
    {
        const LONGLONG minutes = LONGLONG{day} + (wholeDays ? 0 : pattern.startMinute);
        times.moment("EXDATE", minutes * ticksPerMinute, wholeDays);
    }
}

void addChanged(OutboxLines &lines, const TimeWriter &times, const SeriesRecord &series, const Identity &identity)
{
    const bool wholeDays = series.series().times.allDay;
    for (const RecurrenceException &exception : series.devicePattern().exceptions)
    {
        const LONGLONG original = LONGLONG{exception.originalStart} * ticksPerMinute;
        const AppointmentTimes spanOf{LONGLONG{exception.newStart} * ticksPerMinute,
                                      LONGLONG{exception.newEnd} - exception.newStart,
                                      exception.allDay.value_or(wholeDays), false};
        const AppointmentValues &own = series.series();
        lines.add("BEGIN:VEVENT");
        addIdentity(lines, identity);
        times.moment("RECURRENCE-ID", original, wholeDays);
        times.span(spanOf);
        lines.addText("SUMMARY", exception.subject.value_or(own.subject));
        lines.addText("LOCATION", exception.location.value_or(own.location));
        addStatus(lines, exception.busy ? LONG{*exception.busy} : own.busy);
        lines.add("END:VEVENT");
    }
}

void begin(OutboxLines &lines, const char *method)
{
    lines.add("BEGIN:VCALENDAR");
    lines.add("VERSION:2.0");
    lines.add("PRODID:-//ZBTools//EN");
    lines.add(std::string("METHOD:") + method);
}

void readRecord(PimKind kind, LONG oid, StoredItem &record)
{
    if (oid != 0)
    {
        PimStore().read(kind, static_cast<CEOID>(oid), record);
    }
}

/// The rule of a series, its deleted days and, behind END:VEVENT, its changed ones.
void addSeries(OutboxLines &lines, IAppointment &item, const TimeWriter &times,
               const std::optional<SeriesRecord> &series)
{
    Counted<IRecurrencePattern> pattern;
    if (FAILED(item.GetRecurrencePattern(pattern.out())))
    {
        return;
    }
    lines.add("RRULE:" + ruleText(*pattern.get(), timesFrom(item).allDay));
    if (series)
    {
        addDeleted(times, *series, series->devicePattern());
    }
}
} // namespace

HRESULT outboxAppointment(IAppointment &item, OutboxMethod method, OutboxItem &made)
{
    const AppointmentTimes span = timesFrom(item);
    if (span.start == badTime || span.minutes < 0)
    {
        return PIM_E_DATE;
    }
    StoredItem record;
    const LONG oid = valueFrom<LONG, IPOutlookItem>(item, &IPOutlookItem::get_Oid);
    readRecord(PimKind::Appointment, oid, record);
    const bool recurring = valueFrom(item, &IAppointment::get_IsRecurring) != VARIANT_FALSE;
    const std::optional<SeriesRecord> series = recurring ? SeriesRecord::of(record) : std::nullopt;
    Identity identity;
    if (const HRESULT result = isDayOfSeries(item) ? identityOfDay(oid, record, span.start, identity)
                                                   : identityOf(PimKind::Appointment, oid, record, identity);
        FAILED(result))
    {
        return result;
    }
    OutboxLines lines;
    const TimeWriter times(lines, recurring);
    begin(lines, method == OutboxMethod::Request ? "REQUEST" : method == OutboxMethod::Cancel ? "CANCEL" : "PUBLISH");
    lines.add("BEGIN:VEVENT");
    addIdentity(lines, identity);
    times.span(span);
    if (recurring)
    {
        addSeries(lines, item, times, series);
    }
    addPeople(lines, item);
    if (method == OutboxMethod::Cancel)
    {
        lines.add("STATUS:CANCELLED");
    }
    addPlain(lines, item);
    lines.add("END:VEVENT");
    if (series)
    {
        addChanged(lines, times, *series, identity);
    }
    lines.add("END:VCALENDAR");
    made = {textFrom(item, &IAppointment::get_Subject), u".ics", lines.text()};
    return S_OK;
}

HRESULT outboxTask(ITask &task, OutboxItem &made)
{
    StoredItem record;
    const LONG oid = valueFrom<LONG, IPOutlookItem>(task, &IPOutlookItem::get_Oid);
    readRecord(PimKind::Task, oid, record);
    Identity identity;
    if (const HRESULT result = identityOf(PimKind::Task, oid, record, identity); FAILED(result))
    {
        return result;
    }
    OutboxLines lines;
    begin(lines, "PUBLISH");
    lines.add("BEGIN:VTODO");
    addIdentity(lines, identity);
    for (const auto &[name, date] : {std::pair("DTSTART", valueFrom(task, &ITask::get_StartDate)),
                                     std::pair("DUE", valueFrom(task, &ITask::get_DueDate))})
    {
        if (date != PIM_NO_DATE)
        {
            lines.add(std::string(name) + ";VALUE=DATE:" + dayText(ticksOfDate(date)));
        }
    }
    const LONG importance = valueFrom(task, &ITask::get_Importance);
    lines.addText("SUMMARY", textFrom(task, &ITask::get_Subject));
    lines.addText("DESCRIPTION", textFrom<IPOutlookItem>(task, &IPOutlookItem::get_Body));
    lines.addCategories(textFrom<IPOutlookItem>(task, &IPOutlookItem::get_Categories));
    lines.add(importance == olImportanceHigh  ? "PRIORITY:1"
              : importance == olImportanceLow ? "PRIORITY:9"
                                              : "PRIORITY:5");
    lines.add(valueFrom(task, &ITask::get_Sensitivity) == olNormal ? "CLASS:PUBLIC" : "CLASS:PRIVATE");
    if (valueFrom(task, &ITask::get_Complete) != VARIANT_FALSE)
    {
        lines.add("STATUS:COMPLETED");
        const DATE completed = valueFrom(task, &ITask::get_DateCompleted);
        if (completed != PIM_NO_DATE)
        {
            // Noon, so that every zone reads the day that is meant, or nearly every one.
            lines.add("COMPLETED:" + momentText(ticksOfDate(completed) + 12 * ticksPerHour) + "Z");
        }
    }
    lines.add("END:VTODO");
    lines.add("END:VCALENDAR");
    made = {textFrom(task, &ITask::get_Subject), u".ics", lines.text()};
    return S_OK;
}
} // namespace zb::internal
