#include "platform/linux/pim_series_days.h"

#include "platform/linux/civil_date.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr DWORD minutesPerDay = 1440;
constexpr DWORD mondayToFriday = 62;
constexpr DWORD everyDay = 127;
constexpr DWORD lastInstance = 5;
constexpr int closestLooked = 50;
/// Periods without a day that are passed over before a pattern counts as one that names none.
constexpr int mostEmptyPeriods = 60;

bool isIn(DWORD mask, int weekday)
{
    return (mask >> static_cast<unsigned>(weekday) & 1U) != 0;
}

/// Weeks begin on Sunday; day -1 was one.
int weekOf(int day)
{
    return (day + 1) / 7;
}
} // namespace

SeriesDays::SeriesDays(const RecurrencePattern &pattern)
    : m_pattern(pattern), m_first(static_cast<int>(pattern.firstDate / minutesPerDay)),
      m_last(static_cast<int>(pattern.lastDate / minutesPerDay)), m_interval(static_cast<int>(pattern.interval)),
      m_weekdays(pattern.weekdays & everyDay)
{
    if (pattern.frequency == RecurrenceFrequency::Daily && pattern.type == RecurrenceType::Weekdays)
    {
        m_weekdays = mondayToFriday;
        m_interval = 1;
    }
    if (pattern.frequency == RecurrenceFrequency::Yearly)
    {
        m_interval = 12;
    }
}

int SeriesDays::periodOf(int day) const
{
    switch (m_pattern.type)
    {
    case RecurrenceType::EveryNDays:
        return day;
    case RecurrenceType::Weekdays:
        return weekOf(day);
    default:
        break;
    }
    const CivilDate date = civilDate(day);
    return date.year * 12 + date.month - 1;
}

/// The nth of the days of the mask, counted in the month; 5 is the last.
int SeriesDays::nthWeekday(int year, int month) const
{
    const int first = dayNumber(year, month, 1);
    const int last = first + daysInMonth(year, month) - 1;
    if (m_pattern.instance >= lastInstance)
    {
        int day = last;
        while (!isIn(m_weekdays, weekdayOf(day)))
        {
            --day;
        }
        return day;
    }
    int day = first - 1;
    for (DWORD n = 0; n < m_pattern.instance; ++n)
    {
        do
        {
            ++day;
        } while (!isIn(m_weekdays, weekdayOf(day)));
    }
    return day;
}

std::optional<int> SeriesDays::dayInMonth(int year, int month) const
{
    if (m_pattern.type == RecurrenceType::NthWeekday)
    {
        return m_weekdays == 0 ? std::nullopt : std::optional(nthWeekday(year, month));
    }
    return dayNumber(year, month, std::min(static_cast<int>(m_pattern.dayOfMonth), daysInMonth(year, month)));
}

std::optional<int> SeriesDays::inPeriod(int number, int from) const
{
    switch (m_pattern.type)
    {
    case RecurrenceType::EveryNDays:
        return number >= from ? std::optional(number) : std::nullopt;
    case RecurrenceType::Weekdays:
        for (int day = std::max(from, number * 7 - 1); weekOf(day) == number; ++day)
        {
            if (isIn(m_weekdays, weekdayOf(day)))
            {
                return day;
            }
        }
        return std::nullopt;
    default:
        break;
    }
    const std::optional<int> day = dayInMonth(number / 12, number % 12 + 1);
    return day && *day >= from ? day : std::nullopt;
}

std::optional<int> SeriesDays::onOrAfter(int day) const
{
    const int from = std::max(day, m_first);
    int origin = periodOf(m_first);
    if (m_pattern.frequency == RecurrenceFrequency::Yearly)
    {
        origin = civilDate(m_first).year * 12 + static_cast<int>(m_pattern.month) - 1;
    }
    const int passed = std::max(periodOf(from) - origin, 0) / m_interval;
    int number = origin + passed * m_interval;
    for (int tries = 0; tries < mostEmptyPeriods && number <= periodOf(m_last); ++tries, number += m_interval)
    {
        if (const std::optional<int> found = inPeriod(number, from))
        {
            return *found <= m_last ? found : std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<int> SeriesDays::before(int day) const
{
    // Backwards by ever larger steps until something lies between, then forward from there.
    for (int step = 40;; step *= 2)
    {
        const int from = std::max(day - step, m_first);
        std::optional<int> found;
        for (std::optional<int> next = onOrAfter(from); next && *next < day; next = onOrAfter(*next + 1))
        {
            found = next;
        }
        if (found || from == m_first)
        {
            return found;
        }
    }
}

bool SeriesDays::contains(int day) const
{
    return onOrAfter(day) == day;
}

bool SeriesDays::isNear(int day) const
{
    constexpr int shortestMonth = 28;
    if (m_pattern.type != RecurrenceType::DayOfMonth || m_pattern.dayOfMonth <= shortestMonth)
    {
        return contains(day);
    }
    const CivilDate date = civilDate(day);
    const int ownDay = std::min(static_cast<int>(m_pattern.dayOfMonth), daysInMonth(date.year, date.month));
    return date.day >= shortestMonth && date.day <= ownDay && day >= m_first && day <= m_last &&
           contains(day + ownDay - date.day);
}

std::optional<int> SeriesDays::nth(DWORD n) const
{
    if (m_pattern.type == RecurrenceType::EveryNDays)
    {
        const LONGLONG day = m_first + LONGLONG{m_interval} * (LONGLONG{n} - 1);
        return n > 0 && day <= m_last ? std::optional(static_cast<int>(day)) : std::nullopt;
    }
    std::optional<int> day = onOrAfter(m_first);
    for (DWORD i = 1; i < n && day; ++i)
    {
        day = onOrAfter(*day + 1);
    }
    return n > 0 ? day : std::nullopt;
}

std::optional<int> SeriesDays::shortestGap() const
{
    std::optional<int> shortest;
    std::optional<int> day = onOrAfter(m_first);
    for (int i = 0; i < closestLooked && day; ++i)
    {
        const std::optional<int> next = onOrAfter(*day + 1);
        if (next && (!shortest || *next - *day < *shortest))
        {
            shortest = *next - *day;
        }
        day = next;
    }
    return shortest;
}
} // namespace zb::internal
