// Recurrence rules of iCalendar into the patterns that an appointment record can hold.
//
// A record knows fewer series than a rule can describe, and the loader has ways of its own with some of them. A rule
// becomes a pattern only where the loader then shows the very days that the rule names; any other is refused with the
// reason, and the caller unrolls it into single appointments.
#pragma once

#include "platform/pim_recurrence.h"

#include <libical/ical.h>

#include <optional>
#include <string>

namespace zb::interchange
{
struct PatternResult
{
    std::optional<RecurrencePattern> pattern;
    std::string reason; ///< one English clause, when there is no pattern
};

/// `start` is the first occurrence in the series' own zone (its wall clock). The pattern's days, interval, first and
/// last date, end kind and count are filled; times of day, deleted days and exceptions are the caller's.
PatternResult patternFromRule(const icalrecurrencetype &rule, const icaltimetype &start);

/// Minutes since 1601 of a wall-clock time.
DWORD minutesSince1601(const icaltimetype &time);
} // namespace zb::interchange
