// The steps from one date of a series to the next.
#include "calendar/RecurrenceWalk.h"
#include "core/datetools.h"

#include <algorithm>
#include <array>

namespace zb
{
namespace
{
constexpr WORD yearly = 0x200D;
constexpr unsigned mondayToFriday = 62;
constexpr unsigned weekend = 65;
constexpr unsigned everyDay = 127;
constexpr int lastInstance = 5;
constexpr int saturday = 6;

/// Stepping counts every fourth year as a leap year, 2100 too.
bool isFourthYear(int year)
{
    return year % 4 == 0;
}

int steppingMonthLength(const CalendarDay &date)
{
    static constexpr std::array<int, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const int index = std::clamp(date.month, 1, 12) - 1;
    return index == 1 && isFourthYear(date.year) ? 29 : lengths[static_cast<std::size_t>(index)];
}

CalendarDay lastOfMonth(const CalendarDay &date)
{
    CalendarDay last = date;
    last.day = dayspermonth(date.month, date.year);
    // The leap rule of dayspermonth differs from the calendar's in the years divisible by 4,000 and before 1753.
    last.day -= last.exists() ? 0 : 1;
    return last;
}

bool isWeekend(const CalendarDay &date)
{
    return date.weekday() == 0 || date.weekday() == saturday;
}

CalendarDay nthSingleWeekday(CalendarDay first, int weekday, int instance)
{
    if (instance == lastInstance)
    {
        CalendarDay last = lastOfMonth(first);
        last.addDays(-((last.weekday() - weekday + 7) % 7));
        return last;
    }
    CalendarDay date = first;
    date.addDays((weekday - first.weekday() + 7) % 7 + 7 * (std::max(instance, 1) - 1));
    while (date.month != first.month || date.year != first.year)
    {
        date.addDays(-7);
    }
    return date;
}

CalendarDay nthWorkingDay(const CalendarDay &first, int instance)
{
    if (instance == lastInstance)
    {
        CalendarDay last = lastOfMonth(first);
        last.addDays(last.weekday() == 0 ? -2 : last.weekday() == saturday ? -1 : 0);
        return last;
    }
    CalendarDay date = first;
    date.addDays(date.weekday() == saturday ? 2 : date.weekday() == 0 ? 1 : 0);
    for (int count = 1; count < instance; ++count)
    {
        date.addDays(1);
        date.addDays(date.weekday() == saturday ? 2 : 0);
    }
    return date;
}

CalendarDay nthWeekendDay(const CalendarDay &first, int instance)
{
    if (instance == lastInstance)
    {
        CalendarDay last = lastOfMonth(first);
        while (!isWeekend(last))
        {
            last.addDays(-1);
        }
        return last;
    }
    CalendarDay date = first;
    while (!isWeekend(date))
    {
        date.addDays(1);
    }
    for (int count = 1; count < instance; ++count)
    {
        date.addDays(date.weekday() == saturday ? 1 : 6);
    }
    return date;
}

/// Masks that no item dialog makes: the nth of their days.
CalendarDay nthOfMask(const CalendarDay &first, unsigned mask, int instance)
{
    const auto in = [&](const CalendarDay &date) { return (mask >> static_cast<unsigned>(date.weekday()) & 1U) != 0; };
    if ((mask & everyDay) == 0)
    {
        return first;
    }
    if (instance == lastInstance)
    {
        CalendarDay last = lastOfMonth(first);
        for (; !in(last); last.addDays(-1))
        {
        }
        return last;
    }
    CalendarDay date = first;
    for (int count = in(date) ? 1 : 0; count < instance; count += in(date) ? 1 : 0)
    {
        date.addDays(1);
    }
    return date;
}

int singleWeekday(unsigned mask)
{
    for (int weekday = 0; weekday < 7; ++weekday)
    {
        if (mask == 1U << static_cast<unsigned>(weekday))
        {
            return weekday;
        }
    }
    return -1;
}
} // namespace

int RecurrenceWalk::patternDay() const
{
    return m_pattern.m_wFrequency == yearly ? static_cast<int>(m_pattern.m_dwYearDay) : m_pattern.m_wDayOfMonth;
}

bool RecurrenceWalk::hasDayOfMonth() const
{
    const int day = patternDay();
    return day >= 1 && day <= 31;
}

CalendarDay RecurrenceWalk::firstOfMonth(const CalendarDay &date) const
{
    CalendarDay first = date;
    first.day = 1;
    return first;
}

void RecurrenceWalk::fDateAdjust(CalendarDay &date) const
{
    const int length = steppingMonthLength(date);
    const int day = patternDay();
    const bool tooLate = ((day == 29 || day == 30) && length <= 29) || (day == 31 && length <= 30);
    date.addDays((tooLate ? length : day) - 1);
}

void RecurrenceWalk::fIncrementMonth(CalendarDay &date) const
{
    constexpr int december = 12;
    const int length = steppingMonthLength(date);
    const int day = patternDay();
    if (date.month != december && length < day)
    {
        date.day = length;
        ++date.month;
        return;
    }
    date.addDays(date.month == december ? 31 : length);
    date.day = day;
}

void RecurrenceWalk::fIncrementByYear(CalendarDay &date, int month) const
{
    constexpr int february = 2;
    const bool plain =
        (isleapyear(date.year + 1) && date.month > february) || (isleapyear(date.year) && date.month == 1);
    ++date.year;
    if (!plain && month == february && patternDay() == 29 && isleapyear(date.year))
    {
        date.day = 29;
    }
    if (month == february && date.day == 29 && !isleapyear(date.year))
    {
        date.day = 28;
    }
}

CalendarDay RecurrenceWalk::fGetNthWeekDay(const CalendarDay &date) const
{
    const CalendarDay first = firstOfMonth(date);
    if (!first.exists())
    {
        return first;
    }
    const unsigned mask = m_pattern.m_wNthMask;
    const int instance = m_pattern.m_wNth;
    const int single = singleWeekday(mask);
    if (single >= 0)
    {
        return nthSingleWeekday(first, single, std::min(instance, 6));
    }
    // None, or one beyond a month's days, can only come from a foreign record. A day in front of the month would lead
    // the walk back to where it came from, for ever; a month's worth of steps bounds the other end.
    const int bounded = std::clamp(instance, 1, 31);
    switch (mask)
    {
    case mondayToFriday:
        return nthWorkingDay(first, bounded);
    case weekend:
        return nthWeekendDay(first, bounded);
    case everyDay:
    {
        CalendarDay result = bounded == lastInstance ? lastOfMonth(first) : first;
        result.addDays(bounded == lastInstance ? 0 : bounded - 1);
        return result;
    }
    default:
        return nthOfMask(first, mask, bounded);
    }
}

int RecurrenceWalk::fGetMonthInNum(ULONG firstDateWord)
{
    // Bounds between the firsts of the months, wide enough for common and leap years alike.
    static constexpr std::array<ULONG, 11> bounds = {40'000,  80'000,  120'000, 170'000, 210'000, 250'000,
                                                     295'000, 340'000, 385'000, 430'000, 475'000};
    return static_cast<int>(std::upper_bound(bounds.begin(), bounds.end(), firstDateWord) - bounds.begin()) + 1;
}
} // namespace zb
