// When an event of a calendar file takes place, as a record tells it.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/zone_book.h"
#include "platform/types.h"

#include <cstddef>
#include <string>

namespace zb::interchange
{
/// Thrown for an event that no record can hold.
struct EventLeftOut
{
    std::string reason; ///< the end of a sentence: "its start is missing"
    std::size_t line;   ///< in the file
};

struct EventTimes
{
    /// Timed: UTC. All-day: midnight of the first day, in no zone.
    FILETIME start{};
    LONG minutes = 0; ///< of a timed event
    bool allDay = false;
    LONG days = 1; ///< of an all-day event
    /// The day of its series that the event changes, the same however its writer spells it; empty for none.
    std::string changedDay;
    std::string unknownZone; ///< the first zone that nobody knows
    std::size_t unknownZoneLine = 0;
};

/// Throws EventLeftOut.
EventTimes readEventTimes(const CalendarComponent &event, ZoneBook &zones);
} // namespace zb::interchange
