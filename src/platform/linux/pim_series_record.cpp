#include "platform/linux/pim_series_record.h"

#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_series_days.h"

#include <algorithm>
#include <cstdlib>

namespace zb::internal
{
namespace
{
/// Days around a local day on which an occurrence of another zone may have its own.
constexpr int daysOfZones = 2;
/// How many days in front of a range lists look for the beginning of an occurrence.
constexpr int longestReach = 2;
constexpr int mostDaysMoved = 27;

LONGLONG wallOfMinutes(DWORD minutes)
{
    return minutes * ticksPerMinute;
}

DWORD minutesOfWall(LONGLONG wall)
{
    return static_cast<DWORD>(wall / ticksPerMinute);
}

} // namespace

std::optional<SeriesRecord> SeriesRecord::of(const StoredItem &record)
{
    const std::vector<BYTE> blob = record.blob(appointmentRecurrence);
    std::optional<RecurrencePattern> pattern = decodeRecurrence(blob.data(), blob.size());
    if (!pattern)
    {
        return std::nullopt;
    }
    return SeriesRecord(record, std::move(*pattern));
}

SeriesRecord::SeriesRecord(const StoredItem &record, RecurrencePattern pattern)
    : m_pattern(std::move(pattern)), m_device(WallClock::ofDevice()),
      m_allDay(record.number(appointmentDurationType, 0) == durationTypeAllDay)
{
    const std::vector<BYTE> bytes = record.blob(appointmentZone);
    if (const auto zone = decodeZone(bytes.data(), bytes.size()))
    {
        m_zone.emplace(*zone);
    }
    readPlainValues(record, m_series);
    const auto first = static_cast<int>(m_pattern.firstDate / minutesOfDay);
    m_series.times = regularTimes(SeriesDays(m_pattern).onOrAfter(first).value_or(first));
    m_series.rule = ruleOf(devicePattern());
}

LONGLONG SeriesRecord::toDevice(LONGLONG recordWall, bool allDay) const
{
    return !m_zone || allDay ? recordWall : m_device.wallOf(m_zone->utcOfOccurrence(recordWall));
}

LONGLONG SeriesRecord::toRecord(LONGLONG deviceWall, bool allDay) const
{
    return !m_zone || allDay ? deviceWall : m_zone->occurrenceOf(m_device.utcOf(deviceWall));
}

AppointmentTimes SeriesRecord::regularTimes(int day) const
{
    AppointmentTimes times;
    times.allDay = m_allDay;
    if (m_allDay)
    {
        times.start = ticksOfDay(day);
        times.minutes = wholeDays(m_pattern.endMinute) * LONGLONG{minutesOfDay} - 1;
        return times;
    }
    const LONGLONG end = toDevice(ticksOfDay(day) + wallOfMinutes(m_pattern.endMinute), false);
    times.start = toDevice(ticksOfDay(day) + wallOfMinutes(m_pattern.startMinute), false);
    times.minutes = std::max<LONGLONG>(0, (end - times.start) / ticksPerMinute);
    return times;
}

AppointmentTimes SeriesRecord::timesOf(const RecurrenceException &exception) const
{
    AppointmentTimes times;
    times.allDay = exception.allDay.value_or(m_allDay);
    const LONGLONG end = toDevice(wallOfMinutes(exception.newEnd), times.allDay);
    times.start = toDevice(wallOfMinutes(exception.newStart), times.allDay);
    times.minutes = std::max<LONGLONG>(0, (end - times.start) / ticksPerMinute);
    if (times.allDay)
    {
        // An end at midnight means the day that ends there.
        times.start = ticksOfDay(dayOfTicks(times.start));
        times.minutes = wholeDays((end - times.start) / ticksPerMinute) * LONGLONG{minutesOfDay} - 1;
    }
    return times;
}

RecurrencePattern SeriesRecord::devicePattern() const
{
    if (!m_zone || m_allDay)
    {
        return m_pattern;
    }
    RecurrencePattern pattern = m_pattern;
    const auto firstDate = static_cast<int>(m_pattern.firstDate / minutesOfDay);
    const int first = SeriesDays(m_pattern).onOrAfter(firstDate).value_or(firstDate);
    const AppointmentTimes times = regularTimes(first);
    const int shift = dayOfTicks(times.start) - first;
    const auto moved = [=](DWORD minutes)
    { return static_cast<DWORD>(static_cast<int>(minutes / minutesOfDay) + shift) * minutesOfDay; };
    pattern.firstDate = moved(pattern.firstDate);
    pattern.lastDate = pattern.lastDate < endlessSeriesDate ? moved(pattern.lastDate) : pattern.lastDate;
    pattern.startMinute = static_cast<DWORD>(minuteOfTicks(times.start));
    pattern.endMinute = pattern.startMinute + static_cast<DWORD>(times.minutes);
    pattern.weekdays = rotatedWeekdays(pattern.weekdays, shift);
    pattern.dayOfMonth = static_cast<DWORD>(std::clamp(static_cast<int>(pattern.dayOfMonth) + shift, 1, 31));
    std::transform(pattern.deleted.begin(), pattern.deleted.end(), pattern.deleted.begin(), moved);
    for (RecurrenceException &exception : pattern.exceptions)
    {
        const bool allDay = exception.allDay.value_or(false);
        exception.newStart = minutesOfWall(toDevice(wallOfMinutes(exception.newStart), allDay));
        exception.newEnd = minutesOfWall(toDevice(wallOfMinutes(exception.newEnd), allDay));
        exception.originalStart = moved(exception.originalStart) + pattern.startMinute;
    }
    return pattern;
}

const RecurrenceException *SeriesRecord::exceptionOn(int day) const
{
    // Of several the last counts, as in lists.
    const auto found = std::find_if(m_pattern.exceptions.rbegin(), m_pattern.exceptions.rend(),
                                    [=](const RecurrenceException &each)
                                    { return static_cast<int>(each.originalStart / minutesOfDay) == day; });
    return found == m_pattern.exceptions.rend() ? nullptr : &*found;
}

bool SeriesRecord::isDeleted(int day) const
{
    const auto date = static_cast<DWORD>(day) * minutesOfDay;
    return std::any_of(m_pattern.deleted.begin(), m_pattern.deleted.end(),
                       [=](DWORD each) { return each - each % minutesOfDay == date; });
}

bool SeriesRecord::has(int day) const
{
    return exceptionOn(day) != nullptr || (!isDeleted(day) && SeriesDays(m_pattern).isNear(day));
}

std::optional<int> SeriesRecord::find(LONGLONG wall) const
{
    std::vector<int> days;
    for (const RecurrenceException &each : m_pattern.exceptions)
    {
        days.push_back(static_cast<int>(each.originalStart / minutesOfDay));
    }
    // A day that the pattern names goes before one that lists may show in its place.
    const SeriesDays named(m_pattern);
    const int around = dayOfTicks(wall);
    for (const bool exact : {true, false})
    {
        for (int day = around - daysOfZones; day <= around + daysOfZones; ++day)
        {
            if (exact == named.contains(day) && has(day) && exceptionOn(day) == nullptr)
            {
                days.push_back(day);
            }
        }
    }
    std::optional<int> onDay;
    for (const int day : days)
    {
        const LONGLONG start = valuesOf(day).times.firstMoment();
        if (start == wall)
        {
            return day;
        }
        onDay = onDay || dayOfTicks(start) != around ? onDay : std::optional(day);
    }
    return onDay;
}

AppointmentValues SeriesRecord::valuesOf(int day) const
{
    AppointmentValues values = m_series;
    values.rule.reset();
    const RecurrenceException *const exception = exceptionOn(day);
    if (exception == nullptr)
    {
        values.times = regularTimes(day);
        return values;
    }
    values.times = timesOf(*exception);
    values.subject = exception->subject.value_or(values.subject);
    values.location = exception->location.value_or(values.location);
    values.busy = exception->busy ? std::min<LONG>(*exception->busy, olOutOfOffice) : values.busy;
    return values;
}

SeriesRecord::Span SeriesRecord::spanOf(const AppointmentTimes &times) const
{
    return {toRecord(times.firstMoment(), times.allDay), toRecord(times.lastMoment(), times.allDay)};
}

SeriesRecord::Span SeriesRecord::spanOf(int day) const
{
    if (const RecurrenceException *const exception = exceptionOn(day))
    {
        return spanOf(timesOf(*exception));
    }
    return {ticksOfDay(day) + wallOfMinutes(m_pattern.startMinute),
            ticksOfDay(day) + wallOfMinutes(m_pattern.endMinute)};
}

/// The day of the pattern next to one, passing over deleted ones.
std::optional<int> SeriesRecord::neighbour(int day, bool next) const
{
    const SeriesDays days(m_pattern);
    std::optional<int> other = next ? days.onOrAfter(day + 1) : days.before(day);
    while (other && !has(*other))
    {
        other = next ? days.onOrAfter(*other + 1) : days.before(*other);
    }
    return other;
}

HRESULT SeriesRecord::checkNeighbours(int day, const AppointmentTimes &times) const
{
    const Span span = spanOf(times);
    const std::optional<int> previous = neighbour(day, false);
    const std::optional<int> next = neighbour(day, true);
    if ((previous && dayOfTicks(spanOf(*previous).start) >= dayOfTicks(span.start)) ||
        (next && dayOfTicks(spanOf(*next).start) <= dayOfTicks(span.start)))
    {
        return PIM_E_OCCURRENCE_MOVED;
    }
    return next && spanOf(*next).start < span.end ? PIM_E_OCCURRENCE_LENGTH : S_OK;
}

/// Lists look for the original day from some days in front of a range on, by the kind of the pattern: a change that
/// would carry the new day further, or back, would be lost in some ranges.
bool SeriesRecord::listsFind(int day, const AppointmentTimes &times) const
{
    const Span span = spanOf(times);
    const int startDay = dayOfTicks(span.start);
    const bool overMidnight = dayOfTicks(span.end) != startDay;
    const LONGLONG last = std::max(times.firstMoment(), times.lastMoment() - 1);
    const int firstReach = dayOfTicks(times.firstMoment()) - startDay;
    const int lastReach = dayOfTicks(last) - startDay;
    if (firstReach < 0 || lastReach > longestReach)
    {
        return false;
    }
    const auto interval = static_cast<int>(m_pattern.interval);
    const int moved = startDay - day;
    if (moved == 0)
    {
        int reach = longestReach;
        if (m_pattern.type == RecurrenceType::EveryNDays)
        {
            reach = std::min(reach, interval - 1);
        }
        else if (m_pattern.type == RecurrenceType::NthWeekday)
        {
            reach = std::min(reach, static_cast<int>(m_series.times.storedMinutes() / minutesOfDay));
        }
        return lastReach <= reach;
    }
    int most = 0;
    if (m_pattern.frequency == RecurrenceFrequency::Weekly)
    {
        most = std::min(7 * interval, mostDaysMoved);
    }
    else if (m_pattern.type == RecurrenceType::DayOfMonth)
    {
        most = mostDaysMoved;
    }
    const bool inSeries = startDay <= static_cast<int>(m_pattern.lastDate / minutesOfDay) + 1;
    return moved > 0 && moved + lastReach <= most && inSeries && !overMidnight;
}

bool SeriesRecord::canChange(int day, const AppointmentValues &values) const
{
    return values.sensitivity == m_series.sensitivity && values.reminder == m_series.reminder &&
           values.reminderMinutes == m_series.reminderMinutes && values.notes == m_series.notes &&
           values.categories == m_series.categories && values.recipients == m_series.recipients &&
           values.cancelled == m_series.cancelled && listsFind(day, values.times);
}

void SeriesRecord::removeException(int day)
{
    std::erase_if(m_pattern.exceptions, [=](const RecurrenceException &each)
                  { return static_cast<int>(each.originalStart / minutesOfDay) == day; });
}

void SeriesRecord::change(int day, const AppointmentValues &values)
{
    RecurrenceException changed;
    if (const RecurrenceException *const before = exceptionOn(day))
    {
        changed = *before;
    }
    removeException(day);
    const Span span = spanOf(values.times);
    changed.newStart = minutesOfWall(span.start);
    changed.newEnd = minutesOfWall(span.end);
    changed.originalStart = static_cast<DWORD>(day) * minutesOfDay + m_pattern.startMinute;
    const AppointmentValues &own = m_series;
    changed.subject = values.subject != own.subject ? std::optional(values.subject) : std::nullopt;
    changed.location = values.location != own.location ? std::optional(values.location) : std::nullopt;
    changed.busy = values.busy != own.busy ? std::optional(static_cast<WORD>(values.busy)) : std::nullopt;
    changed.allDay = values.times.allDay != m_allDay ? std::optional(values.times.allDay) : std::nullopt;
    // A day that is as the pattern has it again needs no word of its own, unless another program left some there.
    const bool foreign = changed.notesChanged || changed.part4 || changed.part8;
    if (!(valuesOf(day) == values) || foreign)
    {
        m_pattern.exceptions.push_back(std::move(changed));
    }
}

void SeriesRecord::deleteDay(int day)
{
    removeException(day);
    if (!isDeleted(day))
    {
        m_pattern.deleted.push_back(static_cast<DWORD>(day) * minutesOfDay);
    }
}

std::optional<std::vector<BYTE>> SeriesRecord::blob() const
{
    return encodeRecurrence(m_pattern);
}

LONGLONG SeriesRecord::originalStart(int day) const
{
    const LONGLONG wall = ticksOfDay(day) + wallOfMinutes(m_pattern.startMinute);
    if (m_allDay)
    {
        return ticksOfDay(day);
    }
    return m_zone ? m_zone->utcOfOccurrence(wall) : m_device.utcOf(wall);
}
} // namespace zb::internal
