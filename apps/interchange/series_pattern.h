// A repeating event as one record: pattern, deleted days, changed days.
#pragma once

#include "interchange/series_calendar.h"
#include "platform/pim_recurrence.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zb::interchange
{
/// The record of a series, and what stands beside it.
struct SeriesPlan
{
    AppointmentItem item;
    std::set<LONGLONG> singleDays;              ///< days of the series that the pattern lacks, by the wall clock
    std::vector<const ChangedDay *> ownRecords; ///< changed days that are appointments of their own
    std::vector<const ChangedDay *> covered;    ///< changed or cancelled days that the record tells
    std::size_t changedDays = 0;
    std::size_t cancelledDays = 0;
    std::set<LONGLONG> ruleDays; ///< of the days that somebody asked for, those that the rule names
};

/// Nothing, with the reason as a clause, for a series that lists would not show as the file tells it. `now` is UTC.
std::optional<SeriesPlan> planSeries(const SeriesCalendar &series, LONGLONG now, std::string &reason);
} // namespace zb::interchange
