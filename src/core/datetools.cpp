// Calendar arithmetic: leap years, day and week numbers, moving a date and measuring between two.
#include "core/datetools.h"

#include "platform/clock.h"

#include <array>

namespace
{
constexpr std::array<int, 12> daysBeforeMonth{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

/// Days of the date since a fixed day, and the minute within it.
struct MinuteOfDay
{
    LONGLONG day = 0;
    int minute = 0;
};

bool minuteOfDay(const SYSTEMTIME &time, MinuteOfDay &out)
{
    FILETIME moment{};
    if (!SystemTimeToFileTime(&time, &moment))
    {
        return false;
    }
    out.day = zb::ticksOf(moment) / zb::ticksPerDay;
    out.minute = time.wHour * 60 + time.wMinute;
    return true;
}

/// Serial number of a day as weeknumber counts; divisible by 7 on Mondays from 1901 to 2099.
int linearDay(int year, int month, int day)
{
    int number = 365 * year + (year - 1) / 4 + 31 * month + day - 27;
    if (month >= 3)
    {
        number += year % 4 == 0 ? 1 : 0;
        number -= (month >= 8 ? (month - 4) / 2 : (month - 3) / 2) + 3;
    }
    return number;
}

/// Week of a day that lies before the first week of its year: it belongs to the last one of the year before.
/// The two days more after a leap year make the count run over on some of them, which stays so.
int weekOfPreviousYear(int number, int start, int year)
{
    const int previousStart = start - 365;
    const int monday = previousStart / 7 * 7;
    const int extra = (year - 1) % 4 == 0 ? 2 : 0;
    const int week = (number + extra - monday) / 7;
    return previousStart - monday < 4 ? week + 1 : week;
}
} // namespace

bool isleapyear(int year)
{
    if (year > 1752)
    {
        if (year % 4000 == 0)
        {
            return false;
        }
        if (year % 400 == 0)
        {
            return true;
        }
        if (year % 100 == 0)
        {
            return false;
        }
    }
    return year % 4 == 0;
}

int getdayofyear(const SYSTEMTIME &date)
{
    if (date.wMonth < 1 || date.wMonth > 12)
    {
        return 0;
    }
    const int leapDay = date.wMonth > 2 && isleapyear(date.wYear) ? 1 : 0;
    return daysBeforeMonth[date.wMonth - 1U] + date.wDay + leapDay;
}

int dayspermonth(int month, int year)
{
    switch (month)
    {
    case 2:
        return isleapyear(year) ? 29 : 28;
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    default:
        return 31;
    }
}

int weeknumber(int year, int month, int day)
{
    const int number = linearDay(year, month, day);
    const int nextYear = 365 * year + year / 4 + 369;
    const int daysLeft = nextYear % 7;
    if (daysLeft < 3 && nextYear - number <= daysLeft)
    {
        return 1;
    }
    const int start = 365 * year + (year - 1) / 4 + 5;
    const int monday = start / 7 * 7;
    if (start - monday <= 3)
    {
        return (number - monday) / 7 + 1;
    }
    if (number >= monday + 7)
    {
        return (number - monday) / 7;
    }
    return weekOfPreviousYear(number, start, year);
}

void SystemTimeIncrement(SYSTEMTIME *date, LONGLONG ticks)
{
    FILETIME moment{};
    if (!SystemTimeToFileTime(date, &moment))
    {
        return;
    }
    LONGLONG moved = 0;
    if (__builtin_add_overflow(zb::ticksOf(moment), ticks, &moved))
    {
        return;
    }
    const FILETIME target = zb::fileTimeOf(moved);
    FileTimeToSystemTime(&target, date);
}

void SystemTimeDecrement(SYSTEMTIME *date, LONGLONG ticks)
{
    // The one value without an opposite is further away than any date can be moved.
    if (ticks != INT64_MIN)
    {
        SystemTimeIncrement(date, -ticks);
    }
}

void incrementday(SYSTEMTIME *date, int days)
{
    SystemTimeIncrement(date, days * zb::ticksPerDay);
}

void addtime(SYSTEMTIME *date, int seconds)
{
    SystemTimeIncrement(date, seconds * zb::ticksPerSecond);
}

void subtractsec(SYSTEMTIME *date, int seconds)
{
    SystemTimeDecrement(date, seconds * zb::ticksPerSecond);
}

void subtract5sec(SYSTEMTIME *date)
{
    subtractsec(date, 5);
}

LONGLONG SystemTimeDiff(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    FILETIME first{};
    FILETIME second{};
    if (!SystemTimeToFileTime(&a, &first) || !SystemTimeToFileTime(&b, &second))
    {
        return 0;
    }
    return zb::ticksOf(first) - zb::ticksOf(second);
}

SYSTEMTIME subtractsystemtime(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    SYSTEMTIME difference{1601, 1, 1, 1, 0, 0, 0, 0};
    const FILETIME ticks = zb::fileTimeOf(SystemTimeDiff(b, a));
    FileTimeToSystemTime(&ticks, &difference);
    return difference;
}

int TimeDiffInMinutes(const SYSTEMTIME *a, const SYSTEMTIME *b)
{
    MinuteOfDay first;
    MinuteOfDay second;
    if (!minuteOfDay(*a, first) || !minuteOfDay(*b, second))
    {
        return 0;
    }
    return static_cast<int>((first.day - second.day) * 1440 + first.minute - second.minute);
}

int TimeDiffInMinutes(double a, double b)
{
    SYSTEMTIME first{};
    SYSTEMTIME second{};
    VariantTimeToSystemTime(a, &first);
    VariantTimeToSystemTime(b, &second);
    return TimeDiffInMinutes(&first, &second);
}

bool IsOneDay(double a, double b, int flag)
{
    return flag == 0 && static_cast<LONGLONG>(a) == static_cast<LONGLONG>(b);
}
