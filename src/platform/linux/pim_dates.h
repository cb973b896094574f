// Dates of item objects against ticks of local time.
#pragma once

#include "platform/automation.h"
#include "platform/clock.h"

#include <cmath>

namespace zb::internal
{
/// Stands for a date that was put and is none.
inline constexpr LONGLONG badTime = -1;
/// 1601-01-02 and 4501-01-01, which means "no date", as variant dates.
inline constexpr DATE firstDate = -109204.0;
inline constexpr DATE behindDates = 949998.0;

/// To the second; badTime for what is no date.
inline LONGLONG ticksOfDate(DATE date)
{
    // A negated comparison, so that what is no number is refused.
    if (!(date >= firstDate && date < behindDates))
    {
        return badTime;
    }
    const double day = std::trunc(date);
    const double seconds = std::round(std::fabs(date - day) * 86'400.0);
    return (static_cast<LONGLONG>(day) + daysFrom1601ToVariantZero) * ticksPerDay +
           static_cast<LONGLONG>(seconds) * ticksPerSecond;
}

inline DATE dateOfTicks(LONGLONG ticks)
{
    if (ticks < 0)
    {
        return behindDates;
    }
    const LONGLONG day = ticks / ticksPerDay - daysFrom1601ToVariantZero;
    const double fraction = static_cast<double>(ticks % ticksPerDay / ticksPerSecond) / 86'400.0;
    return day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
}

inline int dayOfTicks(LONGLONG ticks)
{
    return static_cast<int>(ticks / ticksPerDay);
}

inline LONGLONG ticksOfDay(int day)
{
    return day * ticksPerDay;
}

inline LONG minuteOfTicks(LONGLONG ticks)
{
    return static_cast<LONG>(ticks % ticksPerDay / ticksPerMinute);
}
} // namespace zb::internal
