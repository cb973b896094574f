// The grid of the day and week views: half hours below each other, a column a day, heads and whole days on top.
//
// Rows from firstSlot() on are half hours of the day, from midnight on. Blocks that lie within a day are floaters, which
// the grid moves by itself. What reaches over its day is carried here: whole days from day to day, and the first part of
// what crosses midnight to any time; where it would lie shows below the pen, up to its end. Threads: the window's own.
#pragma once

#include "display/CHTMLToolTip.h"
#include "zembrik/flick_grid.h"
#include "zembrik/hours_rows.h"

#include <optional>
#include <span>

namespace zb::screens
{
class HoursGrid final : public FlickGrid
{
  public:
    /// What the grid asks its view.
    struct Sources
    {
        /// What stands on top of a day.
        std::function<std::span<const AgendaRow *const>(int column)> wholeDays;
        std::function<bool(const AgendaRow &row)> isChosen;
        /// Minutes from midnight where a column is today's.
        std::function<std::optional<int>(int column)> now;
    };
    void setSources(Sources sources)
    {
        m_sources = std::move(sources);
    }

    /// What the pen carries, counted in slots of half hours from the first one of the first column on; of whole days
    /// the slots are days.
    struct Load
    {
        DWORD floater = 0; ///< 0: the whole day at this place of its column
        std::size_t place = 0;
        int column = 0; ///< where it was taken
        int first = 0;  ///< where it begins, which may lie outside of what shows
        int count = 0;
    };
    struct Carrier
    {
        /// What would be carried; nothing for what stays, or is the grid's to move.
        std::function<std::optional<Load>(int column, std::size_t place)> wholeDay;
        std::function<std::optional<Load>(DWORD floater)> floater;
        std::function<std::u16string(const Load &load, int first)> tip;
        std::function<void(const Load &load, int first)> dropped;
    };
    void setCarrier(Carrier carrier)
    {
        m_carrier = std::move(carrier);
    }
    /// What is carried stays where it was: another content comes.
    void letGo();

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
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnMouseMove(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;
    void OnTimer(UINT_PTR nId, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  private:
    /// What is under way.
    struct Carrying
    {
        Load load;
        int grabbed; ///< slot, or day, under the pen when it came down
        int target;  ///< where it would begin now
        POINT from;
        POINT last;
        bool moved = false;
    };

    int columns() const
    {
        return GetColCount() - 1;
    }
    int chipHeight() const;
    void drawWholeDays(HDC hdc, int column, const RECT &rect) const;
    void drawChip(HDC hdc, const RECT &box, const AgendaRow &row) const;
    bool covers(bool wholeDay, int slot) const;
    std::optional<Load> loadAt(POINT point);
    int unitAt(POINT point, bool wholeDay) const;
    void carryTo(POINT point);
    void scrollAtEdges();

    Sources m_sources;
    Carrier m_carrier;
    std::optional<Carrying> m_carrying;
    CHTMLToolTip m_tip;
    int m_heads = -1;
    int m_wholeDayRow = -1;
};
} // namespace zb::screens
