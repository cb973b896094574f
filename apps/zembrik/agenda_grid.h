// The grid of the agenda: times, strips of colour, items, and the heads of days across both columns.
//
// What a row is decides how it is drawn; the owner tells it by agendaRowKind. Threads: the window's own.
#pragma once

#include "zembrik/flick_grid.h"

namespace zb::screens
{
/// Posted to the parent when another row has come to the top.
inline constexpr UINT agendaScrolled = WM_USER + 0x100;

class AgendaGrid final : public FlickGrid
{
  public:
    /// How a row is drawn besides its text.
    struct RowLook
    {
        bool spread = false; ///< its second cell takes the whole width, and it can't be chosen
        bool ruled = false;  ///< a fine line stands below the text
        COLORREF strip = CLR_INVALID;
    };
    using Looks = std::function<RowLook(USHORT row)>;
    void setLooks(Looks looks)
    {
        m_looks = std::move(looks);
    }
    /// Room that the strip takes at the right of the first column, in pixels of the screen.
    static int stripRoom();

    void OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState) override;
    void OnPaint(bool &handled) override;

  private:
    Looks m_looks;
    USHORT m_toldTop = GRID_NONE;
};
} // namespace zb::screens
