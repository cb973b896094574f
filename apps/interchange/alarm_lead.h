// How long before an event or a to-do its alarm goes off.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/event_times.h"

#include <optional>

namespace zb::interchange
{
/// Minutes from the first alarm of the event to its start, whole and rounded up; 0 for one behind the start, since
/// records know none of these. Nothing without an alarm, or with one whose trigger can't be read.
std::optional<LONG> alarmLead(const CalendarComponent &event, const EventTimes &times);

/// Minutes from the first alarm of a to-do to midnight of its due date, below 0 for one behind that; never 0, which
/// records take for none. `start` and `due` are ticks of the device's wall clock.
std::optional<LONG> alarmLead(const CalendarComponent &task, std::optional<LONGLONG> start, LONGLONG due);
} // namespace zb::interchange
