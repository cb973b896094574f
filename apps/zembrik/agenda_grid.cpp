#include "zembrik/agenda_grid.h"

#include "framework/HIDPI.h"
#include "zembrik/paint.h"

namespace zb::screens
{
namespace
{
// At 96 dots an inch.
constexpr int stripWidth = 4;
constexpr int gap = 6;
constexpr int inset = 2;
} // namespace

int AgendaGrid::stripRoom()
{
    return HIDPI_SCALEX(stripWidth + 2 * gap);
}

void AgendaGrid::OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState)
{
    const RowLook look = m_looks ? m_looks(nRow) : RowLook{};
    if (look.spread)
    {
        rect.left -= nCol == 0 ? 0 : GetColWidth(0);
        CHTMLGrid::OnCellDraw(hdc, nRow, nCol, rect, 0);
        return;
    }
    CHTMLGrid::OnCellDraw(hdc, nRow, nCol, rect, uState);
    if (nCol == 0 && look.strip != CLR_INVALID)
    {
        const LONG right = rect.right - HIDPI_SCALEX(gap);
        fillBox(hdc, {right - HIDPI_SCALEX(stripWidth), rect.top + HIDPI_SCALEY(inset), right, rect.bottom - HIDPI_SCALEY(inset)},
                look.strip);
    }
    if (nCol == 1 && look.ruled)
    {
        fillBox(hdc, {rect.left, rect.bottom - g_HIDPI_BorderPixels, rect.right, rect.bottom}, ruleColor);
    }
}

void AgendaGrid::OnPaint(bool &handled)
{
    CHTMLGrid::OnPaint(handled);
    if (GetTopRow() != m_toldTop)
    {
        m_toldTop = GetTopRow();
        PostMessageW(GetParent(m_hWnd), agendaScrolled, 0, 0);
    }
}
} // namespace zb::screens
