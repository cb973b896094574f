// How a series repeats, as iCalendar says it.
#pragma once

#include "platform/pim_recurrence.h"

#include <string>

namespace zb::interchange
{
/// The value of RRULE. `until` is the moment of the last day as the start is written; it counts for a series that ends
/// on a day. Where months lack the pattern's day the rule takes their last one, as lists do.
///
/// Worked example: weekly, interval 2, mask 10 (Monday and Wednesday), 3 times: FREQ=WEEKLY;INTERVAL=2;WKST=SU;
/// BYDAY=MO,WE;COUNT=3.
std::string ruleText(const RecurrencePattern &pattern, const std::string &until);
} // namespace zb::interchange
