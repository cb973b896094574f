// The rule that a zone follows from its last listed change on, as it ends every zone file:
//
//     CET-1CEST,M3.5.0,M10.5.0/3
//
// standard name and offset, daylight name and offset (an hour ahead when left out), and the two changes: month, week,
// weekday / seconds after midnight of the wall clock before the change. Offsets in the text count westward.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zb::internal
{
/// One yearly change.
struct ChangeRule
{
    enum class Kind
    {
        WeekOfMonth,    ///< Mm.w.d: week 1 to 5, 5 the last; weekday 0 Sunday
        DayWithoutLeap, ///< Jn: 1 to 365, 29 February is never counted
        DayOfYear,      ///< n: 0 to 365
    };
    Kind kind = Kind::DayOfYear;
    int month = 0;
    int week = 0;
    int weekday = 0;
    int day = 0;
    int secondOfDay = 7200; ///< may be negative or beyond a day

    /// Wall clock time before the change, in seconds since 1970 as if it were UTC.
    std::int64_t localTime(int year) const;
};

struct ZoneRule
{
    struct Time
    {
        std::string name;
        int offset = 0; ///< seconds to add to UTC
    };
    Time standard;
    Time daylight;
    bool changes = false; ///< whether there is daylight time
    ChangeRule toDaylight;
    ChangeRule toStandard;

    /// The moments of a year's changes, in seconds since 1970.
    std::int64_t daylightBegins(int year) const
    {
        return toDaylight.localTime(year) - standard.offset;
    }
    std::int64_t standardBegins(int year) const
    {
        return toStandard.localTime(year) - daylight.offset;
    }
};

/// Nothing for a text that is no whole rule, or whose daylight time has no changes.
std::optional<ZoneRule> parseZoneRule(std::string_view text);
} // namespace zb::internal
