// Days as hosts' arguments name them, and weeks as the device's locale counts them.
//
// A day is the whole part of a variant date: days since 1899-12-30, in device-local time.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>

namespace zb::host
{
/// The last day that calendar lists reach, 2999-12-31, and the first, 1601-01-01.
inline constexpr int lastListedDay = 401768;
inline constexpr int firstListedDay = -109205;

/// Today by the device's clock and zone.
int today();
/// "2026-11-21", "today", "tomorrow", "yesterday", "+3" and "-3" (days from today); nothing for anything else, for
/// dates that do not exist, and for days that no list reaches.
std::optional<int> dayFromText(const std::string &text, int today);
/// The first day of the week that holds `day`.
int weekStart(int day);

SYSTEMTIME dateOf(int day);
/// Day number of a date that exists.
int dayOf(const SYSTEMTIME &date);

/// The locale's long and short forms: "Saturday, November 21, 2026", "11/21/2026".
std::string longDate(int day);
std::string shortDate(int day);
/// "9:30 AM".
std::string timeText(const SYSTEMTIME &time);
} // namespace zb::host
