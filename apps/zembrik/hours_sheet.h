// What the day and week views put into the cells of their grid: heads of the days, hours, room for whole days, blocks.
// Threads: the main thread.
#pragma once

#include "zembrik/hours_grid.h"

#include <string>

namespace zb::screens
{
class HoursSheet
{
  public:
    /// Of one day, or of the seven of a week.
    HoursSheet(HoursGrid &grid, int days) : m_grid(grid), m_days(days)
    {
    }

    bool isWeek() const
    {
        return m_days > 1;
    }
    /// Everything but the blocks, from the first day on; `most` whole days need room, or the words in their place.
    void fill(int firstDay, std::size_t most, const std::u16string &said);
    void add(const HoursBlock &block, const AgendaRow &row, DWORD floater, bool locked);

    /// There is no room for words, and little for strips.
    bool isNarrow() const;
    bool isRoomy() const;
    /// Of the heads, in pixels.
    int headHeight();

  private:
    int columnWidth() const;
    void layOut(std::size_t most, const std::u16string &said);
    void fillHeads(int firstDay);
    void fillHours(int firstDay);

    HoursGrid &m_grid;
    int m_days;
};
} // namespace zb::screens
