// Civil dates by integer arithmetic: days since 1601-01-01 against year, month and day of the Gregorian calendar.
//
// Years are counted from March, so that a leap day is the last day of its year and a month's length follows from its
// number alone. Valid for years from 0 on.
#pragma once

#include "platform/clock.h"

namespace zb::internal
{
inline constexpr int secondsPerDay = 86'400;
inline constexpr int daysPer400Years = 146'097;
/// Days from 0000-03-01 to 1601-01-01.
inline constexpr int daysTo1601 = 584'694;
inline constexpr int daysFrom1601To1970 = 134'774;

constexpr bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

constexpr int daysInMonth(int year, int month)
{
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : lengths[month - 1];
}

/// Days since 1601-01-01; below 0 for years before.
constexpr int dayNumber(int year, int month, int day)
{
    const int marchYear = month <= 2 ? year - 1 : year;
    const int marchMonth = month <= 2 ? month + 9 : month - 3;
    const int dayOfYear = (153 * marchMonth + 2) / 5 + day - 1;
    return marchYear * 365 + marchYear / 4 - marchYear / 100 + marchYear / 400 + dayOfYear - daysTo1601;
}

struct CivilDate
{
    int year;
    int month;
    int day;
};

constexpr CivilDate civilDate(int days)
{
    const int shifted = days + daysTo1601;
    const int era = shifted / daysPer400Years;
    const int dayOfEra = shifted % daysPer400Years;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int marchMonth = (5 * dayOfYear + 2) / 153;
    const int month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    return {era * 400 + yearOfEra + (month <= 2 ? 1 : 0), month, dayOfYear - (153 * marchMonth + 2) / 5 + 1};
}

/// 0 Sunday ... 6 Saturday; 1601-01-01 was a Monday.
constexpr int weekdayOf(int days)
{
    return ((days + 1) % 7 + 7) % 7;
}

static_assert(dayNumber(1601, 1, 1) == 0);
static_assert(dayNumber(1970, 1, 1) == daysFrom1601To1970);
static_assert(dayNumber(1899, 12, 30) == daysFrom1601ToVariantZero);
} // namespace zb::internal
