// A repeating event as single appointments, one for each of its days around today.
#pragma once

#include "interchange/series_calendar.h"

#include <map>
#include <string>

namespace zb::interchange
{
struct UnrolledDays
{
    /// By the wall clock of the series; a length of -1 is that of the series.
    std::map<LONGLONG, LONG> days;
    bool whole = true; ///< all the days that the event has
    LONGLONG from = 0; ///< the window, UTC midnights
    LONGLONG to = 0;
};

/// Without deleted days; changed ones are in it under their original day.
UnrolledDays unrolledDays(const SeriesCalendar &series, LONGLONG now);

/// "2026-11-21"
std::string dateText(LONGLONG ticks);
} // namespace zb::interchange
