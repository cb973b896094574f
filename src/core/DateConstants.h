// The variant dates that carry a meaning, the same in every row, setting and list.
#pragma once

/// 4501-01-01: no date. An unset range, a row without a date, an undated task.
inline constexpr double noDate = 949998.0;
inline constexpr int noDay = 949998;
/// 2999-12-31: the last day that a row may have.
inline constexpr int lastDay = 401768;
/// One minute in days.
inline constexpr double minuteInDays = 0.0006944444444444444;
