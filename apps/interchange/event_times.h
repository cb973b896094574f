// When an event of a calendar file takes place, as a record tells it.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/zone_book.h"
#include "platform/types.h"

#include <cstddef>
#include <optional>
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
    /// Timed: the zone of its start, in the book, and the start by its wall clock, in ticks.
    CalendarZone *zone = nullptr;
    LONGLONG wallStart = 0;
    /// The day of its series that the event changes, the same however its writer spells it; empty for none.
    std::string changedDay;
    std::string unknownZone; ///< the first zone that nobody knows
    std::size_t unknownZoneLine = 0;
};

/// A moment in a list of days.
struct ListedMoment
{
    bool isDate = false;
    LONGLONG ticks = 0; ///< UTC; of a date its midnight, in no zone
};

/// One value of a list, or the day that an event changes; `zone` is its TZID, empty for none. Nothing for a text that
/// is no date or lies outside the years of records.
std::optional<ListedMoment> readMoment(std::string_view value, std::string_view zone, ZoneBook &zones);

/// The UTC form of a moment: "20261121T093000Z".
std::string utcText(LONGLONG ticks);

/// Throws EventLeftOut.
EventTimes readEventTimes(const CalendarComponent &event, ZoneBook &zones);
} // namespace zb::interchange
