// How an item repeats as its owner says it, and the pattern that its record gets.
#pragma once

#include "platform/pim_objects.h"
#include "platform/pim_recurrence.h"

#include <optional>

namespace zb::internal
{
inline constexpr LONG minutesOfDay = 1440;

/// What has no value follows from the day with which the series begins.
struct SeriesRule
{
    LONG type = olRecursWeekly;
    LONG interval = 1;
    std::optional<LONG> weekdays;
    std::optional<LONG> dayOfMonth;
    std::optional<LONG> instance;
    std::optional<LONG> month;
    RecurrenceEnd end = RecurrenceEnd::Never;
    LONG occurrences = -1; ///< counts for an end by number alone
    int lastDay = 0;       ///< since 1601; counts for an end by date alone. Below 0: no valid date
    bool operator==(const SeriesRule &) const = default;
};

// What goes by the day of the start where the rule does not tell it; 0 where the type has no use for it.
LONG weekdaysOf(const SeriesRule &rule, int startDay);
LONG dayOfMonthOf(const SeriesRule &rule, int startDay);
LONG instanceOf(const SeriesRule &rule, int startDay);
LONG monthOf(const SeriesRule &rule, int startDay);

/// When an occurrence is, minutes after midnight of its day.
struct OccurrenceTimes
{
    LONG startMinute = 0;
    LONG minutes = 0; ///< whole days for all-day
    bool allDay = false;
};

/// The pattern of a series, without deleted or changed days: its first date is the first that the rule names from
/// `startDay` on. Yearly nth weekdays are written as every twelfth month, and a daily series that runs over midnight as
/// weekly on all days, since lists find all their days then. The codes of PIM_E_ for what is not valid.
HRESULT patternOf(const SeriesRule &rule, int startDay, const OccurrenceTimes &times, RecurrencePattern &pattern);

/// What is told about days follows the start of the series to another day, where that is none of the rule's and the
/// former one was: Mondays and Wednesdays become Tuesdays and Thursdays, the 10th of a month the 12th, the last Friday
/// the last Thursday. Days that are counted together (the first working day) stay.
void followStart(SeriesRule &rule, int from, int to);

/// A mask of weekdays, each `days` later; below 0 earlier.
DWORD rotatedWeekdays(DWORD weekdays, int days);

/// The way back.
SeriesRule ruleOf(const RecurrencePattern &pattern);
/// The last day of a series; nothing without end.
std::optional<int> lastDayOf(const RecurrencePattern &pattern);
} // namespace zb::internal
