// The grid of the month: six weeks of days with marks or words for what they hold.
//
// Threads: the window's own.
#pragma once

#include "common/agenda_rows.h"
#include "zembrik/flick_grid.h"

#include <span>

namespace zb::screens
{
class MonthGrid final : public FlickGrid
{
  public:
    using Items = std::function<std::span<const host::AgendaRow>(USHORT row, USHORT col)>;
    using Chosen = std::function<bool(USHORT row, USHORT col)>;
    void setSources(Items items, Chosen chosen)
    {
        m_items = std::move(items);
        m_chosen = std::move(chosen);
    }
    /// Room that the number of the day takes at the top of its cell, in pixels of the screen.
    int numberHeight() const;

    void OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState) override;
    void OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect) override;

  private:
    void drawWords(HDC hdc, RECT box, std::span<const host::AgendaRow> items) const;
    void drawMarks(HDC hdc, RECT box, std::span<const host::AgendaRow> items) const;

    Items m_items;
    Chosen m_chosen;
};
} // namespace zb::screens
