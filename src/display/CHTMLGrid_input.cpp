// Keys, taps and what the grid tells of them.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

#include <algorithm>

namespace
{
constexpr UINT delayKey = 32;
constexpr UINT tapNotify = static_cast<UINT>(-114);
constexpr UINT clickNotify = static_cast<UINT>(-2);
constexpr BYTE modeNone = 3;
constexpr BYTE keysMoveCell = 2;

bool isNavigationKey(UINT key)
{
    return key >= static_cast<UINT>(VK_PRIOR) && key <= static_cast<UINT>(VK_DOWN);
}
} // namespace

// --- Keys --------------------------------------------------------------------------------------------------------

void CHTMLGrid::OnKeyDown(UINT nKey, UINT nRepeat, UINT, bool &handled)
{
    if (!isNavigationKey(nKey))
    {
        return;
    }
    if (m_nDelayMs != 0)
    {
        handled = true;
        StartDelayedScrolling(delayKey, nKey);
    }
    else if (nRepeat <= 1)
    {
        handled = HandleNavigationKey(nKey);
    }
}

void CHTMLGrid::OnKeyUp(UINT, UINT, UINT, bool &)
{
    m_nKeyStep = 1;
}

void CHTMLGrid::NavigateEnd()
{
    if (m_nKeysMode == keysMoveCell && m_nRows > m_nFixedRows)
    {
        const auto last = static_cast<USHORT>(m_nRows - 1);
        const USHORT col = m_nCurCol == GRID_NONE ? m_nFixedCols : m_nCurCol;
        SetSelection(col, last, col, last);
    }
    ScrollToBottom();
}

void CHTMLGrid::NavigateHome()
{
    if (m_nKeysMode == keysMoveCell && m_nRows > m_nFixedRows)
    {
        const USHORT col = m_nCurCol == GRID_NONE ? m_nFixedCols : m_nCurCol;
        SetSelection(col, m_nFixedRows, col, m_nFixedRows);
    }
    ScrollToTop();
}

/// In mode 2 the arrows move the current cell, else they scroll by steps or pages. False for another key.
bool CHTMLGrid::HandleNavigationKey(UINT nKey)
{
    const bool rows = nKey == static_cast<UINT>(VK_UP) || nKey == static_cast<UINT>(VK_DOWN);
    const bool forward = nKey == static_cast<UINT>(VK_RIGHT) || nKey == static_cast<UINT>(VK_DOWN);
    switch (static_cast<int>(nKey))
    {
    case VK_PRIOR:
        ScrollByPageUp();
        return true;
    case VK_NEXT:
        ScrollByPageDown();
        return true;
    case VK_END:
        NavigateEnd();
        break;
    case VK_HOME:
        NavigateHome();
        break;
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        NavigateBy(rows, forward);
        break;
    default:
        return false;
    }
    if (m_nKeysMode == keysMoveCell)
    {
        SendMessageW(m_hParent, GRID_CELLMOVED, m_Selection.cells.nLeft, m_Selection.cells.nTop);
    }
    return true;
}

void CHTMLGrid::NavigateBy(bool bRows, bool bForward)
{
    if (m_nKeysMode == 0)
    {
        bForward ? ScrollForward(bRows, m_nKeyStep, false) : ScrollBack(bRows, m_nKeyStep);
        return;
    }
    if (m_nKeysMode == 1)
    {
        bForward ? PageForward(bRows) : PageBack(bRows);
        return;
    }
    const USHORT col = m_nCurCol;
    const USHORT row = m_nCurRow;
    const bool none = col == GRID_NONE || row == GRID_NONE;
    if (none && !bForward)
    {
        return;
    }
    m_nCurCol = none ? m_nFixedCols : col;
    m_nCurRow = none ? m_nFixedRows : row;
    if (!none)
    {
        MoveCurrentBy(bRows, bForward);
    }
    if (m_nCurCol == col && m_nCurRow == row)
    {
        return;
    }
    BeginUpdate();
    MakeCellVisible(m_nCurCol, m_nCurRow, false);
    SetSelection(m_nCurCol, m_nCurRow, m_nCurCol, m_nCurRow);
    RecalcScreenCells(false, false);
    EndUpdate();
}

// --- Taps --------------------------------------------------------------------------------------------------------

LRESULT CHTMLGrid::NotifyParent(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater)
{
    ClientToScreen(m_hWnd, &point);
    tagNM_GRIDVIEW notify{};
    notify.hdr = {m_hWnd, 0, uCode};
    notify.dwCookie = dwFloater;
    notify.pt = point;
    notify.nRow = nRow;
    notify.nCol = nCol;
    return SendMessageW(m_hParent, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
}

/// Null where there is none. Spots count from the cell's text, those of a floater from behind its strip.
const HOTSPOT *CHTMLGrid::HotSpotAt(USHORT nCol, USHORT nRow, POINT point, DWORD dwFloater)
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr)
    {
        return nullptr;
    }
    const POINT place = PlaceOf(nCol, nRow);
    const POINT inside = {point.x - place.x - cell->rcMargins.left - (dwFloater != 0 ? m_nStripWidth : 0),
                          point.y - place.y - cell->rcMargins.top};
    const auto found = std::find_if(cell->HotSpots.begin(), cell->HotSpots.end(),
                                    [&](const HOTSPOT &spot) { return PtInRect(&spot.rcArea, inside) != FALSE; });
    return found == cell->HotSpots.end() ? nullptr : &*found;
}

/// Makes the cell under the pen current; a miss clears all. With SHIFT and multi-select the selection grows to it.
void CHTMLGrid::SelectTapped(USHORT nCol, USHORT nRow)
{
    const bool same = !m_bMultiSelect && nCol == m_nCurCol && nRow == m_nCurRow;
    const bool fixed = nCol < m_nFixedCols || nRow < m_nFixedRows;
    if (m_nSelectionMode == modeNone || same || fixed || IsCellSelected(nRow, nCol))
    {
        return;
    }
    const CellRange &cells = m_Selection.cells;
    const bool grow = m_bMultiSelect && GetKeyState(VK_SHIFT) != 0 && cells.nBottom != GRID_NONE;
    const bool outside = nRow < cells.nTop || nRow > cells.nBottom;
    const USHORT top = grow && outside ? std::min(nRow, cells.nTop) : nRow;
    const USHORT bottom = grow && outside ? std::max(nRow, cells.nBottom) : nRow;
    SetSelection(nCol, top, nCol, bottom);
    m_nCurCol = nCol;
    m_nCurRow = nRow;
    m_Selection.nAnchorCol = nCol;
    m_Selection.nAnchorRow = nRow;
    m_bTapConsumed = grow;
}

void CHTMLGrid::OnLButtonDown(WPARAM, POINT point, bool &handled)
{
    handled = true;
    m_bPenDown = true;
    m_bTapConsumed = false;
    m_bFloaterArmed = false;
    m_dwFloaterID = 0;
    if (m_bShowFocus)
    {
        SetFocus(m_hWnd);
    }
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    if (!GetCellFromPoint(point, col, row))
    {
        m_nCurCol = GRID_NONE;
        m_nCurRow = GRID_NONE;
        EmptySelection();
        return;
    }
    POINT offset{};
    bool strip = false;
    m_dwFloaterID = GetFloaterFromPoint(point, col, row, offset, strip);
    m_bFloaterArmed = m_dwFloaterID != 0;
    if (m_bFloaterArmed)
    {
        m_nCurCol = col;
        m_nCurRow = row;
    }
    else
    {
        SelectTapped(col, row);
    }
    if (NotifyParent(NM_TESTHOTSPOT, point, col, row, m_dwFloaterID) != 0)
    {
        SendHotSpot(NM_HOTSPOTDOWN, point, col, row);
    }
    POINT screen = point;
    ClientToScreen(m_hWnd, &screen);
    tagNM_GRIDVIEW click{{m_hWnd, 0, clickNotify}, nullptr, nullptr, m_dwFloaterID, screen, row, col};
    SendMessageW(m_hWnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
}

/// To the grid itself, which tells the parent. False where there is no hot spot.
bool CHTMLGrid::SendHotSpot(UINT uCode, POINT point, USHORT nCol, USHORT nRow)
{
    const HOTSPOT *spot = HotSpotAt(nCol, nRow, point, m_dwFloaterID);
    if (spot == nullptr)
    {
        return false;
    }
    // The spots may be painted anew while the parent answers.
    const HOTSPOT kept = *spot;
    ClientToScreen(m_hWnd, &point);
    tagNM_GRIDVIEW notify{{m_hWnd, 0, uCode}, kept.szKey, nullptr, m_dwFloaterID, point, nRow, nCol};
    SendMessageW(m_hWnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
    return true;
}

void CHTMLGrid::OnLButtonUp(WPARAM, POINT point, bool &handled)
{
    handled = true;
    const bool down = std::exchange(m_bPenDown, false);
    const bool consumed = std::exchange(m_bTapConsumed, false);
    const DWORD floater = m_bFloaterArmed ? m_dwFloaterID : 0;
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    if (down && !consumed && GetCellFromPoint(point, col, row) && !SendHotSpot(NM_HOTSPOT, point, col, row))
    {
        NotifyParent(tapNotify, point, col, row, floater);
    }
    m_bFloaterArmed = false;
    m_dwFloaterID = 0;
}

void CHTMLGrid::OnClick(tagNM_GRIDVIEW *, bool &)
{
}

LRESULT CHTMLGrid::OnHotspotNotify(tagNM_GRIDVIEW *pNotify, bool &handled)
{
    const LRESULT result = SendMessageW(m_hParent, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(pNotify));
    OnClick(pNotify, handled);
    handled = true;
    return result;
}

// --- Drops -------------------------------------------------------------------------------------------------------

/// Another grid's pen is over this one: which cell is there. The point is the screen's.
bool CHTMLGrid::OnDragQuery(POINT point, tagGRIDDRAG *pDrag)
{
    ScreenToClient(m_hWnd, &point);
    GetCellFromPoint(point, pDrag->nCol, pDrag->nRow);
    pDrag->nRows = m_nRows;
    pDrag->nCols = m_nCols;
    pDrag->pt = point;
    GetClientRect(m_hWnd, &pDrag->rcClient);
    return true;
}
