// A floater under the pen: by its strip it is moved from cell to cell, elsewhere it is tapped.
//
// While it moves the current cell is the one in which it begins. The pen keeps its place in it: what was grabbed in its
// third row stays there, and where the grid or the parent holds it back it is met again when the pen returns.
#include "display/CHTMLGrid.h"

#include <algorithm>

namespace
{
constexpr UINT tapNotify = static_cast<UINT>(-114);
constexpr LRESULT moveNowhere = 0;
constexpr LRESULT moveAcross = 1;
constexpr LRESULT moveAlong = 2;

/// What is left of the window or above it comes without its sign.
LONG inWindow(LONG place)
{
    constexpr LONG largest = 32767;
    return place < 0 || place > largest ? 0 : place;
}

/// x is the column, y the row.
DWORD cellWord(POINT cell)
{
    return static_cast<DWORD>(MAKELONG(cell.y, cell.x));
}
} // namespace

void CHTMLGrid::MoveArmedFloater(POINT point)
{
    point = {inWindow(point.x), inWindow(point.y)};
    m_ptLast = point;
    if (m_bFloaterStripHit)
    {
        HoldPen();
        CheckDragScroll(point);
        MoveFloaterTo(point);
    }
    else if (!m_bTapConsumed)
    {
        m_bFloaterArmed = false;
        m_bPenDown = false;
        NotifyParent(tapNotify, point, m_nCurCol, m_nCurRow, m_dwFloaterID);
    }
}

/// Looked for anew each time: the parent may have taken it away. Null when it has, or the pen has been taken away.
tagFLOATERINFO *CHTMLGrid::FloaterUnderPen() const
{
    return m_bFloaterArmed ? FloaterAt(m_nCurCol, m_nCurRow, m_dwFloaterID) : nullptr;
}

/// False when the floater stays where it is, or the grid has gone.
bool CHTMLGrid::AskFloaterMove(POINT from, POINT &to)
{
    const HWND window = m_hWnd;
    const GRIDSPANREQUEST request = {{m_hWnd, m_dwFloaterID, GRID_CANMOVEFLOATER}, cellWord(from), cellWord(to)};
    const LRESULT answer =
        SendMessageW(m_hParent, GRID_CANMOVEFLOATER, m_dwFloaterID, reinterpret_cast<LPARAM>(&request));
    if (IsWindow(window) == FALSE)
    {
        return false;
    }
    const tagFLOATERINFO *floater = FloaterUnderPen();
    if (answer == moveNowhere || floater == nullptr || floater->bLocked != 0)
    {
        m_pMovingFloater = nullptr;
        return false;
    }
    to.y = answer == moveAcross ? from.y : to.y;
    to.x = answer == moveAlong ? from.x : to.x;
    return to.x != from.x || to.y != from.y;
}

void CHTMLGrid::MoveFloaterTo(POINT point)
{
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    const tagFLOATERINFO *floater = FloaterUnderPen();
    if (floater == nullptr || !GetCellFromPoint(point, col, row))
    {
        return;
    }
    const auto rows = zb::floaterBounds(ColumnCells(m_nCurCol), m_nCurRow, *floater, m_nRows);
    const LONG last = std::max<LONG>(m_nRows - floater->nRows, m_nFixedRows);
    const POINT from = {m_nCurCol, rows.first};
    POINT to = {std::max(col, m_nFixedCols), std::clamp<LONG>(row - m_nGrabbedRow, m_nFixedRows, last)};
    if ((to.x == from.x && to.y == from.y) || !AskFloaterMove(from, to))
    {
        return;
    }
    const HWND window = m_hWnd;
    BeginUpdate();
    if (MoveFloater(m_nCurCol, static_cast<USHORT>(from.y), static_cast<USHORT>(to.x), static_cast<USHORT>(to.y),
                    m_dwFloaterID))
    {
        m_nCurCol = static_cast<USHORT>(to.x);
        m_nCurRow = static_cast<USHORT>(to.y);
        m_pMovingFloater = FloaterUnderPen();
        m_bFloaterMoved = true;
        if (!ToolTip(m_pFloaterTip).IsShown())
        {
            ShowTipAt(m_pFloaterTip, point, ToolTipCorner::RightBottom);
        }
        const POINT end = {to.x, std::min<LONG>(to.y + m_pMovingFloater->nRows, m_nRows) - 1};
        const GRIDSPANREQUEST request = {{m_hWnd, m_dwFloaterID, GRID_GETFLOATERTIP}, cellWord(to), cellWord(end)};
        AskTip(m_pFloaterTip, GRID_GETFLOATERTIP, &request);
    }
    if (IsWindow(window) != FALSE)
    {
        EndUpdate();
    }
}

/// The parent that hears of it may ask the user something, so the pen is free by then. False when the grid has gone.
bool CHTMLGrid::LetFloaterGo()
{
    if (m_pFloaterTip != nullptr)
    {
        m_pFloaterTip->HideToolTip();
    }
    const HWND window = m_hWnd;
    const USHORT col = m_nCurCol;
    const USHORT row = m_nCurRow;
    const DWORD id = m_dwFloaterID;
    ClearPen();
    const GRIDSPANREQUEST request = {{window, id, GRID_FLOATERMOVED}, cellWord({col, row}), 0};
    SendMessageW(m_hParent, GRID_FLOATERMOVED, id, reinterpret_cast<LPARAM>(&request));
    if (IsWindow(window) == FALSE)
    {
        return false;
    }
    BeginUpdate();
    if (FloaterAt(col, row, id) != nullptr && !RenewFloaterText(col, row, id))
    {
        return false;
    }
    EndUpdate();
    RepaintAll();
    return true;
}

/// A text may tell the floater's time; without a new one it keeps the old. False when the grid has gone.
bool CHTMLGrid::RenewFloaterText(USHORT nCol, USHORT nRow, DWORD dwID)
{
    const HWND window = m_hWnd;
    const auto text = RequestFloaterText(dwID);
    if (IsWindow(window) == FALSE)
    {
        return false;
    }
    tagFLOATERINFO *floater = FloaterAt(nCol, nRow, dwID);
    if (floater == nullptr)
    {
        return true;
    }
    if (text != nullptr)
    {
        floater->Parser.SetHTML(text.get());
        floater->Parser.ParseHTML(m_hWnd);
    }
    InvalidateBlock(nCol, nRow);
    return true;
}
