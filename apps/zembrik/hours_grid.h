// The grid of the day and week views: half hours below each other, a column a day, heads and whole days on top.
//
// Rows from firstSlot() on are half hours of the day, from midnight on. Threads: the window's own.
#pragma once

#include "common/agenda_rows.h"
#include "zembrik/flick_grid.h"

#include <optional>
#include <span>

namespace zb::screens
{
inline constexpr int slotsOfDay = 48;
inline constexpr int slotMinutes = 30;

class HoursGrid final : public FlickGrid
{
  public:
    /// What stands on top of a day: whole days and tasks.
    using WholeDays = std::function<std::span<const host::AgendaRow *const>(int column)>;
    /// Minutes from midnight where a column is today's.
    using Now = std::function<std::optional<int>(int column)>;
    void setSources(WholeDays wholeDays, Now now)
    {
        m_wholeDays = std::move(wholeDays);
        m_now = std::move(now);
    }
    /// Rows above the half hours: the heads, then the whole days. -1 for none.
    void setTopRows(int heads, int wholeDays)
    {
        m_heads = heads;
        m_wholeDayRow = wholeDays;
    }
    int firstSlot() const
    {
        return GetFixedRowCount();
    }
    int wholeDayRow() const
    {
        return m_wholeDayRow;
    }
    int headRow() const
    {
        return m_heads;
    }
    /// Pixels that so many whole days take, and how many of them show; more are counted in a last line.
    int wholeDayHeight(std::size_t count) const;
    static std::size_t shownOf(std::size_t count);
    /// The place of the whole day at a point of the grid below the top of its row; past the end for the last line.
    std::size_t wholeDayAt(int y) const;

    void OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState) override;
    void OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect) override;
    void OnCellFloatersDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState) override;

  private:
    int chipHeight() const;
    void drawWholeDays(HDC hdc, int column, const RECT &rect) const;

    WholeDays m_wholeDays;
    Now m_now;
    int m_heads = -1;
    int m_wholeDayRow = -1;
};
} // namespace zb::screens
