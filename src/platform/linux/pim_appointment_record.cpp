#include "platform/linux/pim_appointment_record.h"

#include "platform/linux/civil_date.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_series_days.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Some programs keep all-day items in UTC: behind noon they mean the next day.
constexpr LONGLONG lastHourOfDay = 13 * ticksPerHour;

AppointmentTimes singleTimes(const StoredItem &record)
{
    AppointmentTimes times;
    const LONGLONG start = record.ticks(appointmentStart).value_or(0);
    times.minutes = std::max<LONG>(0, record.number(appointmentDuration, 0));
    times.allDay = record.number(appointmentDurationType, 0) == durationTypeAllDay;
    if (!times.allDay)
    {
        const LONGLONG wall = WallClock::ofDevice().wallOf(start);
        times.start = wall - wall % ticksPerSecond;
        return times;
    }
    const LONGLONG inDay = start % ticksPerDay;
    times.start = start - inDay + (inDay >= lastHourOfDay ? ticksPerDay : 0);
    times.minutes = wholeDays(times.minutes) * LONGLONG{minutesOfDay} - 1;
    return times;
}

void takeStoredTimes(AppointmentItem &item, const AppointmentValues &values, const StoredItem &record)
{
    item.allDay = values.times.allDay;
    item.recurrence = record.blob(appointmentRecurrence);
    item.zone = record.blob(appointmentZone);
    item.partOfSeries = record.shortNumber(appointmentRecurringFlag, 0) != 0;
    item.start = fileTimeOf(record.ticks(appointmentStart).value_or(0));
    item.durationMinutes = record.number(appointmentDuration, 0);
    item.days = wholeDays(item.durationMinutes);
    if (item.allDay && item.recurrence.empty())
    {
        item.start = fileTimeOf(values.times.firstMoment());
        item.days = values.times.days();
    }
}

void takeTimes(AppointmentItem &item, const AppointmentTimes &times)
{
    item.allDay = times.allDay;
    item.days = times.allDay ? times.days() : 1;
    item.durationMinutes = times.storedMinutes();
    item.start = fileTimeOf(times.allDay ? times.firstMoment() : WallClock::ofDevice().utcOf(times.start));
}

OccurrenceTimes occurrenceTimes(const AppointmentTimes &times)
{
    if (times.allDay)
    {
        return {0, times.storedMinutes(), true}; // a minute less than the days, as in all records
    }
    return {minuteOfTicks(times.start), static_cast<LONG>(times.minutes), false};
}

/// Days from the weekdays of one pattern to those of another that has the same ones, each as many days later or
/// earlier: -3 to 3; 0 when there are none.
int daysBetween(DWORD from, DWORD to)
{
    for (const int days : {1, -1, 2, -2, 3, -3})
    {
        if (from != to && rotatedWeekdays(from, days) == to)
        {
            return days;
        }
    }
    return 0;
}

/// Days that are named otherwise, in the same weeks, months or years.
bool isMovedInside(const RecurrencePattern &old, const RecurrencePattern &pattern)
{
    if (old.frequency != pattern.frequency || old.type != pattern.type || old.interval != pattern.interval)
    {
        return false;
    }
    switch (pattern.type)
    {
    case RecurrenceType::Weekdays:
        return daysBetween(old.weekdays, pattern.weekdays) != 0;
    case RecurrenceType::DayOfMonth:
        return old.dayOfMonth != pattern.dayOfMonth || old.month != pattern.month;
    case RecurrenceType::NthWeekday:
        return old.weekdays != pattern.weekdays || old.instance != pattern.instance;
    default:
        return false;
    }
}

/// The day in the place of one of the former pattern's, so that what was said about single days stays with them.
/// Nothing where there is none.
std::optional<int> dayInPlaceOf(int day, const RecurrencePattern &old, const RecurrencePattern &pattern)
{
    const SeriesDays days(pattern);
    if (!isMovedInside(old, pattern))
    {
        return days.isNear(day) ? std::optional(day) : std::nullopt;
    }
    if (pattern.type == RecurrenceType::Weekdays)
    {
        const int moved = day + daysBetween(old.weekdays, pattern.weekdays);
        return days.contains(moved) ? std::optional(moved) : std::nullopt;
    }
    const CivilDate date = civilDate(day);
    const bool yearly = pattern.frequency == RecurrenceFrequency::Yearly;
    const int month = yearly ? static_cast<int>(pattern.month) : date.month;
    const int first = dayNumber(date.year, month, 1);
    const std::optional<int> moved = days.onOrAfter(first);
    return moved && *moved < first + daysInMonth(date.year, month) ? moved : std::nullopt;
}

/// A changed day keeps what was changed about it; where only its texts were, its times follow those of the series.
RecurrenceException carried(RecurrenceException exception, const RecurrencePattern &old, bool wasAllDay,
                            const RecurrencePattern &pattern, bool isAllDay, int moved)
{
    const DWORD shift = static_cast<DWORD>(moved * minutesOfDay);
    exception.originalStart += shift;
    exception.newStart += shift;
    exception.newEnd += shift;
    const DWORD day = exception.originalStart - exception.originalStart % minutesOfDay;
    const DWORD length = exception.newEnd - exception.newStart;
    const bool regular = exception.newStart == day + old.startMinute &&
                         (length == old.endMinute - old.startMinute || (wasAllDay && length + 1 == old.endMinute)) &&
                         !exception.allDay;
    if (regular)
    {
        exception.newStart = day + pattern.startMinute;
        exception.newEnd = day + pattern.endMinute;
    }
    else
    {
        const bool allDay = exception.allDay.value_or(wasAllDay);
        exception.allDay = allDay != isAllDay ? std::optional(allDay) : std::nullopt;
    }
    exception.originalStart = day + pattern.startMinute;
    return exception;
}

void carryChanges(const RecurrencePattern &old, bool wasAllDay, RecurrencePattern &pattern, bool isAllDay)
{
    for (const DWORD date : old.deleted)
    {
        if (const std::optional<int> day = dayInPlaceOf(static_cast<int>(date / minutesOfDay), old, pattern))
        {
            pattern.deleted.push_back(static_cast<DWORD>(*day * minutesOfDay));
        }
    }
    for (const RecurrenceException &exception : old.exceptions)
    {
        const auto original = static_cast<int>(exception.originalStart / minutesOfDay);
        if (const std::optional<int> day = dayInPlaceOf(original, old, pattern))
        {
            pattern.exceptions.push_back(carried(exception, old, wasAllDay, pattern, isAllDay, *day - original));
        }
    }
}

HRESULT takeSeries(AppointmentItem &item, const AppointmentValues &values, bool wasAllDay,
                   const std::optional<RecurrencePattern> &old)
{
    const AppointmentTimes &times = values.times;
    RecurrencePattern pattern;
    const HRESULT result = patternOf(*values.rule, dayOfTicks(times.firstMoment()), occurrenceTimes(times), pattern);
    if (FAILED(result))
    {
        return result;
    }
    if (old)
    {
        carryChanges(*old, wasAllDay, pattern, times.allDay);
    }
    std::optional<std::vector<BYTE>> blob = encodeRecurrence(pattern);
    if (!blob)
    {
        return PIM_E_RECURRENCE;
    }
    takeTimes(item, times);
    const LONGLONG first = (LONGLONG{pattern.firstDate} + pattern.startMinute) * ticksPerMinute;
    item.start = fileTimeOf(WallClock::ofDevice().utcOf(first));
    item.recurrence = std::move(*blob);
    return S_OK;
}

bool sameTexts(const AppointmentValues &a, const AppointmentValues &b)
{
    return a.subject == b.subject && a.location == b.location && a.notes == b.notes && a.recipients == b.recipients &&
           a.rule == b.rule;
}
} // namespace

AppointmentValues decodeAppointmentValues(const StoredItem &record)
{
    if (const std::optional<SeriesRecord> series = SeriesRecord::of(record))
    {
        return series->series();
    }
    AppointmentValues values;
    readPlainValues(record, values);
    values.times = singleTimes(record);
    return values;
}

HRESULT encodeAppointmentValues(const AppointmentValues &values, const AppointmentValues &before,
                                const StoredItem &record, const std::optional<RecurrencePattern> &copied,
                                RecordProperties &properties)
{
    AppointmentItem item = plainItem(values, record);
    const bool stored = record.count() != 0;
    if (stored && values.times == before.times && values.rule == before.rule)
    {
        takeStoredTimes(item, values, record);
    }
    else if (values.rule)
    {
        std::optional<RecurrencePattern> old = copied;
        if (const std::optional<SeriesRecord> series = SeriesRecord::of(record))
        {
            old = series->devicePattern();
        }
        const bool wasAllDay = stored ? before.times.allDay : values.times.allDay;
        if (const HRESULT result = takeSeries(item, values, wasAllDay, old); FAILED(result))
        {
            return result;
        }
    }
    else
    {
        takeTimes(item, values.times);
        if (!item.allDay)
        {
            item.durationMinutes = static_cast<LONG>(values.times.minutesGoneBy(WallClock::ofDevice()));
        }
        item.partOfSeries = !before.rule && record.shortNumber(appointmentRecurringFlag, 0) != 0;
    }
    properties = encodeAppointment(item);
    setFurtherValues(properties, values, before);
    return stored && sameTexts(values, before) ? S_OK : checkSize(properties);
}
} // namespace zb::internal
