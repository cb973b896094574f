// Civil dates by integer arithmetic: days since 1601-01-01 against year, month and day of the Gregorian calendar.
//
// Years are counted from March, so that a leap day is the last day of its year and a month's length follows from its
// number alone. Valid for years from 0 on.
#pragma once

#include "platform/clock.h"

#include <cstdint>

namespace zb::internal
{
inline constexpr int secondsPerDay = 86'400;
inline constexpr unsigned daysPer400Years = 146'097;
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

/// Two divisions by multiplication give year and day of a century, one gives month and day: the numbers are those of
/// which the rounding never fails in this range.
constexpr CivilDate civilDate(int days)
{
    const auto quarters = 4 * static_cast<unsigned>(days + daysTo1601) + 3;
    const unsigned century = quarters / daysPer400Years;
    const unsigned quartersOfCentury = quarters % daysPer400Years | 3U;
    const std::uint64_t years = std::uint64_t{2'939'745} * quartersOfCentury; // 2^32 / 1461, rounded up
    const auto dayOfYear = static_cast<unsigned>(static_cast<std::uint32_t>(years) / 2'939'745 / 4);
    const unsigned months = 2141 * dayOfYear + 197'913; // 2^16 for each month, from March as 3 on
    const bool nextYear = dayOfYear >= 306;
    const auto year = static_cast<int>(100 * century + static_cast<unsigned>(years >> 32U));
    const auto month = static_cast<int>(months >> 16U);
    return {year + (nextYear ? 1 : 0), nextYear ? month - 12 : month, static_cast<int>((months & 0xFFFFU) / 2141) + 1};
}

/// 0 Sunday ... 6 Saturday; 0000-03-01 was a Wednesday.
constexpr int weekdayOf(int days)
{
    return static_cast<int>(static_cast<unsigned>(days + daysTo1601 + 3) % 7);
}

static_assert(dayNumber(1601, 1, 1) == 0);
static_assert(dayNumber(1970, 1, 1) == daysFrom1601To1970);
static_assert(dayNumber(1899, 12, 30) == daysFrom1601ToVariantZero);
} // namespace zb::internal
