// Now, and the forms of a moment: fields, ticks and variant dates.
#include "platform/clock.h"

#include "platform/kernel.h"
#include "platform/linux/civil_date.h"
#include "platform/linux/device_state.h"
#include "platform/linux/skipped_time.h"

#include <cmath>

namespace
{
using zb::ticksPerDay;
using zb::ticksPerSecond;
using zb::internal::civilDate;
using zb::internal::CivilDate;
using zb::internal::dayNumber;
using zb::internal::daysInMonth;
using zb::internal::secondsPerDay;

constexpr int firstVariantYear = 100;
constexpr int lastVariantYear = 9999;
constexpr int lastFileYear = 30827;

bool isTimeOfDay(const SYSTEMTIME &fields)
{
    return fields.wHour < 24 && fields.wMinute < 60 && fields.wSecond < 60 && fields.wMilliseconds < 1000;
}

bool isDate(const SYSTEMTIME &fields, int firstYear, int lastYear)
{
    return fields.wYear >= firstYear && fields.wYear <= lastYear && fields.wMonth >= 1 && fields.wMonth <= 12 &&
           fields.wDay >= 1 && fields.wDay <= daysInMonth(fields.wYear, fields.wMonth);
}

BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

int secondOfDay(const SYSTEMTIME &fields)
{
    return (fields.wHour * 60 + fields.wMinute) * 60 + fields.wSecond;
}

/// Fills date and weekday. Days may lie before 1601.
void putDate(int days, SYSTEMTIME &fields)
{
    const CivilDate date = civilDate(days);
    fields.wYear = static_cast<WORD>(date.year);
    fields.wMonth = static_cast<WORD>(date.month);
    fields.wDay = static_cast<WORD>(date.day);
    fields.wDayOfWeek = static_cast<WORD>(zb::internal::weekdayOf(days));
}

void putTime(int seconds, SYSTEMTIME &fields)
{
    fields.wHour = static_cast<WORD>(seconds / 3600);
    fields.wMinute = static_cast<WORD>(seconds / 60 % 60);
    fields.wSecond = static_cast<WORD>(seconds % 60);
}
} // namespace

BOOL SystemTimeToFileTime(const SYSTEMTIME *fields, FILETIME *time)
{
    if (fields == nullptr || time == nullptr || !isTimeOfDay(*fields) || !isDate(*fields, 1601, lastFileYear))
    {
        return refuse();
    }
    const LONGLONG ticks = dayNumber(fields->wYear, fields->wMonth, fields->wDay) * ticksPerDay +
                           secondOfDay(*fields) * ticksPerSecond + fields->wMilliseconds * (ticksPerSecond / 1000);
    *time = zb::fileTimeOf(ticks);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME *time, SYSTEMTIME *fields)
{
    if (time == nullptr || fields == nullptr || zb::ticksOf(*time) < 0)
    {
        return refuse();
    }
    const LONGLONG ticks = zb::ticksOf(*time);
    putDate(static_cast<int>(ticks / ticksPerDay), *fields);
    const LONGLONG ofDay = ticks % ticksPerDay;
    putTime(static_cast<int>(ofDay / ticksPerSecond), *fields);
    fields->wMilliseconds = static_cast<WORD>(ofDay % ticksPerSecond / (ticksPerSecond / 1000));
    return TRUE;
}

LONG CompareFileTime(const FILETIME *a, const FILETIME *b)
{
    const auto left = static_cast<ULONGLONG>(zb::ticksOf(*a));
    const auto right = static_cast<ULONGLONG>(zb::ticksOf(*b));
    return left < right ? -1 : static_cast<LONG>(left > right);
}

int SystemTimeToVariantTime(const SYSTEMTIME *fields, double *date)
{
    if (fields == nullptr || date == nullptr || !isTimeOfDay(*fields) ||
        !isDate(*fields, firstVariantYear, lastVariantYear))
    {
        return FALSE;
    }
    const auto days =
        static_cast<int>(dayNumber(fields->wYear, fields->wMonth, fields->wDay) - zb::daysFrom1601ToVariantZero);
    const double fraction = static_cast<double>(secondOfDay(*fields)) / secondsPerDay;
    *date = days >= 0 ? days + fraction : days - fraction;
    return TRUE;
}

int VariantTimeToSystemTime(double date, SYSTEMTIME *fields)
{
    // 0100-01-01 and 10000-01-01, as days from 1899-12-30.
    constexpr double first = -657'434.0;
    constexpr double behindLast = 2'958'466.0;
    if (fields == nullptr || !(date > first - 1.0) || !(date < behindLast))
    {
        return FALSE;
    }
    auto days = static_cast<int>(date); // towards zero
    auto seconds = static_cast<int>(std::fabs(date - days) * secondsPerDay + 0.5);
    if (seconds == secondsPerDay)
    {
        // Rounded up into the next day.
        seconds = 0;
        ++days;
    }
    if (days < static_cast<int>(first) || days >= static_cast<int>(behindLast))
    {
        return FALSE;
    }
    putDate(days + static_cast<int>(zb::daysFrom1601ToVariantZero), *fields);
    putTime(seconds, *fields);
    fields->wMilliseconds = 0;
    return TRUE;
}

void GetSystemTimeAsFileTime(FILETIME *time)
{
    *time = zb::fileTimeOf(zb::internal::currentTicks());
}

void GetSystemTime(SYSTEMTIME *time)
{
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    FileTimeToSystemTime(&now, time);
}

DWORD GetTickCount()
{
    return static_cast<DWORD>(zb::internal::timerNow() / 1'000'000);
}
