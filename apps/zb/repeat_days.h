// The days of --on: "tuesday,thursday", "weekdays", "second tuesday", "last friday".
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>

namespace zb::cli
{
struct RepeatDays
{
    LONG mask = 0;     ///< bit 0 Sunday
    LONG instance = 0; ///< 1 to 4, 5 the last; 0 where none is told
    bool operator==(const RepeatDays &) const = default;
};

/// Words in any case: names of days, or at least three letters of them; weekday (Monday to Friday), weekend, day (any);
/// at most one of first, second, third, fourth, last, 1st to 4th. Commas and blanks between. Nothing for anything else.
std::optional<RepeatDays> repeatDaysFromText(const std::string &text);
} // namespace zb::cli
