// What days hold, for a view of their hours: blocks at their times, and what stands on top of the day.
#pragma once

#include "zembrik/calendar_list.h"

#include <vector>

namespace zb::screens
{
inline constexpr int slotsOfDay = 48;
inline constexpr int slotMinutes = 30;
inline constexpr int minutesOfDay = 24 * 60;

/// An appointment of a time of the day, as far as it lies on the day of its column.
struct HoursBlock
{
    std::size_t row; ///< of the list
    int column;
    int from; ///< minutes from midnight
    int to;

    int firstSlot() const
    {
        return from / slotMinutes;
    }
    int slots() const
    {
        return std::max((to + slotMinutes - 1) / slotMinutes - firstSlot(), 1);
    }
};

struct HoursRows
{
    std::vector<HoursBlock> blocks;
    /// By column: whole days, what takes a day or more (as a block it would fill the hours without telling anything of
    /// them), tasks. The rows are the list's.
    std::vector<std::vector<const AgendaRow *>> wholeDays;
};
HoursRows hoursRows(const CalendarList &list, const DaySpan &days);

int minutesOf(const SYSTEMTIME &time);
/// Minutes from start to end by the clock on the wall.
int lengthOf(const AgendaRow &row);
} // namespace zb::screens
