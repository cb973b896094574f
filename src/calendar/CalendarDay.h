// A working date of the recurrence expansions: civil fields that may name a day that does not exist (31 June), and the
// day arithmetic on them. Stepping a series goes through such dates, so they must be held without being repaired.
#pragma once

#include "platform/types.h"

#include <chrono>

namespace zb
{
/// Days since 1899-12-30.
using VariantDay = int;

struct CalendarDay
{
    int year = 1900;
    int month = 1;
    int day = 1;
    int secondOfDay = 0;

    static CalendarDay fromSystemTime(const SYSTEMTIME &time)
    {
        return {time.wYear, time.wMonth, time.wDay, (time.wHour * 60 + time.wMinute) * 60 + time.wSecond};
    }

    static CalendarDay fromVariantDay(VariantDay day, int secondOfDay = 0)
    {
        const std::chrono::year_month_day date(dayZero() + std::chrono::days(day));
        return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                static_cast<int>(static_cast<unsigned>(date.day())), secondOfDay};
    }

    bool exists() const
    {
        return date().ok();
    }

    /// Of a date that exists.
    VariantDay variantDay() const
    {
        return static_cast<VariantDay>((std::chrono::sys_days(date()) - dayZero()).count());
    }

    double variantDate() const
    {
        const VariantDay whole = variantDay();
        const double fraction = secondOfDay / 86400.0;
        return whole >= 0 ? whole + fraction : whole - fraction;
    }

    /// 0 is Sunday.
    int weekday() const
    {
        // Day 0 was a Saturday.
        return ((variantDay() + 6) % 7 + 7) % 7;
    }

    /// Moves on by days, negative too; a date that does not exist stays as it is.
    void addDays(int days)
    {
        if (exists())
        {
            *this = fromVariantDay(variantDay() + days, secondOfDay);
        }
    }

    SYSTEMTIME systemTime() const
    {
        return {static_cast<WORD>(year),
                static_cast<WORD>(month),
                static_cast<WORD>(exists() ? weekday() : 0),
                static_cast<WORD>(day),
                static_cast<WORD>(secondOfDay / 3600),
                static_cast<WORD>(secondOfDay / 60 % 60),
                static_cast<WORD>(secondOfDay % 60),
                0};
    }

  private:
    static constexpr std::chrono::sys_days dayZero()
    {
        return std::chrono::sys_days(std::chrono::year(1899) / 12 / 30);
    }
    std::chrono::year_month_day date() const
    {
        return std::chrono::year(year) / month / day;
    }
};
} // namespace zb
