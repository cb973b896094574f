// Taps: what the pen selects where it comes down, and what the parent is told of it.
//
// A tap begins in OnLButtonDown and is over when the pen goes up. What comes between makes it a sweep
// (CHTMLGrid_sweep.cpp), a floater's move (CHTMLGrid_floaterpen.cpp) or a drag (CHTMLGrid_drag.cpp), and each of these
// then has it alone. A parent that is told of anything may change everything: nothing about cells is kept over that,
// and where something follows, it is looked whether the grid is still there.
#include "display/CHTMLGrid.h"

#include "platform/gesture.h"

#include <algorithm>

namespace
{
constexpr UINT_PTR doubleTapTimer = 84;
constexpr UINT doubleTapTime = 200;
constexpr UINT tapNotify = static_cast<UINT>(-114);
constexpr UINT sweepNotify = static_cast<UINT>(-13);
constexpr UINT clickNotify = static_cast<UINT>(-2);
constexpr BYTE modeNone = 3;
} // namespace

// --- Records -----------------------------------------------------------------------------------------------------

/// With the point on the screen.
tagNM_GRIDVIEW CHTMLGrid::TapRecord(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater) const
{
    ClientToScreen(m_hWnd, &point);
    tagNM_GRIDVIEW record{};
    record.hdr = {m_hWnd, 0, uCode};
    record.dwCookie = dwFloater;
    record.pt = point;
    record.nRow = nRow;
    record.nCol = nCol;
    return record;
}

LRESULT CHTMLGrid::NotifyParent(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater)
{
    tagNM_GRIDVIEW record = TapRecord(uCode, point, nCol, nRow, dwFloater);
    return SendMessageW(m_hParent, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&record));
}

/// Null where there is none. Spots count from the cell's text, those of a floater from behind its strip.
const HOTSPOT *CHTMLGrid::HotSpotAt(USHORT nCol, USHORT nRow, POINT point, DWORD dwFloater) const
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr)
    {
        return nullptr;
    }
    POINT place = PlaceOf(nCol, nRow);
    const HotSpotArray *spots = &cell->HotSpots;
    if (dwFloater != 0)
    {
        const auto at = cell->Floaters.find(dwFloater);
        if (at == cell->Floaters.end())
        {
            return nullptr;
        }
        const tagFLOATERINFO &floater = *at->second;
        const auto rows = zb::floaterBounds(ColumnCells(nCol), nRow, floater, m_nRows);
        spots = &floater.HotSpots;
        place.x += GetColWidth(nCol) * floater.nSlot / std::max<LONG>(floater.nSlots, 1) + m_nStripWidth;
        place.y -= static_cast<LONG>(zb::sumOfLines(m_RowHeights, rows.first, nRow));
    }
    const POINT inside = {point.x - place.x - cell->rcMargins.left, point.y - place.y - cell->rcMargins.top};
    const auto found = std::find_if(spots->begin(), spots->end(),
                                    [&](const HOTSPOT &spot) { return PtInRect(&spot.rcArea, inside) != FALSE; });
    return found == spots->end() ? nullptr : &*found;
}

/// To the grid itself, which tells the parent. There must be a hot spot.
void CHTMLGrid::SendHotSpot(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater)
{
    // The spots may be painted anew while the parent answers.
    const HOTSPOT kept = *HotSpotAt(nCol, nRow, point, dwFloater);
    tagNM_GRIDVIEW record = TapRecord(uCode, point, nCol, nRow, dwFloater);
    record.szTarget = kept.szKey;
    SendMessageW(m_hWnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&record));
}

// --- Pen down ----------------------------------------------------------------------------------------------------

void CHTMLGrid::OnLButtonDown(WPARAM, POINT point, bool &handled)
{
    handled = true;
    if (!BeginTap(point))
    {
        return;
    }
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    if (!GetCellFromPoint(point, col, row))
    {
        m_bPenDown = false;
        m_nCurCol = GRID_NONE;
        m_nCurRow = GRID_NONE;
        EmptySelection();
        return;
    }
    m_bPenOnFixed = col < m_nFixedCols || row < m_nFixedRows;
    const bool shift = GetKeyState(VK_SHIFT) != 0;
    bool kept = false;
    bool changed = false;
    if (!ArmFloater(point, kept))
    {
        kept = SelectTapped(col, row, shift, changed);
        m_ptSelectTip = changed ? point : m_ptSelectTip;
    }
    if (kept && RecognizeHold(point, col, row, changed))
    {
        return;
    }
    CountTap(col, row);
    if (!TestHotSpot(point, col, row))
    {
        return;
    }
    m_bTapConsumed = m_bTapConsumed && shift;
    if (changed)
    {
        Invalidate(nullptr);
    }
    tagNM_GRIDVIEW click = TapRecord(clickNotify, point, col, row, m_dwFloaterID);
    SendMessageW(m_hWnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
}

/// False when the grid has gone with what the pen or the focus had before.
bool CHTMLGrid::BeginTap(POINT point)
{
    // The end of the one before may have been lost.
    if (!CancelPen())
    {
        return false;
    }
    m_ptDown = point;
    m_ptLast = point;
    m_bPenDown = true;
    if (m_hEdit != nullptr || m_bShowFocus)
    {
        const HWND window = m_hWnd;
        SetFocus(window);
        if (IsWindow(window) == FALSE)
        {
            return false;
        }
    }
    m_nLastTapCol = m_nCurCol;
    m_nLastTapRow = m_nCurRow;
    return true;
}

/// True when the tap ends here: the pen was held, and the parent has been told so for its menu, or the cell has gone
/// while that was asked or waited for.
bool CHTMLGrid::RecognizeHold(POINT point, USHORT nCol, USHORT nRow, bool changed)
{
    const HWND window = m_hWnd;
    const bool skips = SendMessageW(m_hParent, GRID_SKIPHOLD, reinterpret_cast<WPARAM>(window), 0) != 0;
    if (skips || IsWindow(window) == FALSE)
    {
        return IsWindow(window) == FALSE;
    }
    SHRGINFO gesture{};
    gesture.cbSize = sizeof gesture;
    gesture.hwndClient = window;
    gesture.ptDown = point;
    gesture.dwFlags = SHRG_RETURNCMD;
    const DWORD answer = SHRecognizeGesture(&gesture);
    // Others' messages were dispatched meanwhile.
    if (IsWindow(window) == FALSE)
    {
        return true;
    }
    if (nRow >= m_nRows || nCol >= m_nCols)
    {
        ClearPen();
        return true;
    }
    if (answer != GN_CONTEXTMENU)
    {
        return false;
    }
    const DWORD floater = m_dwFloaterID;
    ClearPen();
    m_bTapConsumed = true;
    if (changed)
    {
        RepaintAll();
    }
    ClientToScreen(m_hWnd, &point);
    const NMRGINFO record = {{m_hWnd, CellKey(nRow, nCol), NM_CONTEXTMENU}, point, floater};
    SendMessageW(m_hParent, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&record));
    return true;
}

/// The first of two taps starts the time in which the second makes them a double one.
void CHTMLGrid::CountTap(USHORT nCol, USHORT nRow)
{
    if (m_nTapCount == 1)
    {
        m_nTapCount = 2;
        return;
    }
    m_nTapCount = 1;
    m_nFirstTapCol = nCol;
    m_nFirstTapRow = nRow;
    SetTimer(m_hWnd, doubleTapTimer, doubleTapTime, nullptr);
}

/// True when there is a floater under the pen; the selection stays then. `kept` is set off its strip, by which it
/// moves.
bool CHTMLGrid::ArmFloater(POINT point, bool &kept)
{
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    POINT offset{};
    bool strip = false;
    m_dwFloaterID = GetFloaterFromPoint(point, col, row, offset, strip);
    m_bFloaterArmed = m_dwFloaterID != 0;
    if (!m_bFloaterArmed)
    {
        return false;
    }
    kept = !strip;
    m_pMovingFloater = nullptr;
    m_bFloaterStripHit = strip;
    m_nCurCol = col;
    m_nCurRow = row;
    const auto rows = zb::floaterBounds(ColumnCells(col), row, *FloaterAt(col, row, m_dwFloaterID), m_nRows);
    m_nGrabbedRow = static_cast<USHORT>(row - rows.first);
    return true;
}

/// Makes the cell under the pen the current and selected one, unless it is already, or is fixed. With SHIFT and
/// multi-select the selection grows up or down to it; where it holds the row, it shrinks to that. Returns whether the
/// selection may now be held for its menu.
bool CHTMLGrid::SelectTapped(USHORT nCol, USHORT nRow, bool bShift, bool &changed)
{
    const bool same = !m_bMultiSelect && nCol == m_nCurCol && nRow == m_nCurRow;
    if (m_nSelectionMode == modeNone || m_bPenOnFixed || same || IsCellSelected(nRow, nCol))
    {
        return true;
    }
    SaveSelection();
    CellRange &cells = m_Selection.cells;
    const bool outside = cells.nBottom != GRID_NONE && (nRow < cells.nTop || nRow > cells.nBottom);
    const bool grow = m_bMultiSelect && bShift && outside;
    m_nCurCol = nCol;
    m_nCurRow = nRow;
    cells = {m_bRowSelect ? m_nFixedCols : nCol, grow ? std::min(nRow, cells.nTop) : nRow,
             m_bRowSelect ? static_cast<USHORT>(m_nCols - 1) : nCol, grow ? std::max(nRow, cells.nBottom) : nRow};
    m_Selection.nAnchorCol = nCol;
    m_Selection.nAnchorRow = nRow;
    changed = true;
    m_bTapConsumed = bShift;
    return !m_bMultiSelect || IsCellSelected(nRow, nCol);
}

/// A parent that wants to know of hot spots before the pen goes up says so first. False when the grid has gone.
bool CHTMLGrid::TestHotSpot(POINT point, USHORT nCol, USHORT nRow)
{
    const HWND window = m_hWnd;
    const DWORD floater = m_dwFloaterID;
    const bool asked = NotifyParent(NM_TESTHOTSPOT, point, nCol, nRow, floater) != 0;
    if (IsWindow(window) != FALSE && asked && HotSpotAt(nCol, nRow, point, floater) != nullptr)
    {
        m_bTapConsumed = true;
        SendHotSpot(NM_HOTSPOTDOWN, point, nCol, nRow, floater);
    }
    return IsWindow(window) != FALSE;
}

// --- Clicks ------------------------------------------------------------------------------------------------------

/// A double tap on one cell edits it. Taps that select nothing leave the current cell where it is, so it does not tell
/// alone where they were: those on headers, or on two cells of a larger selection, are none.
void CHTMLGrid::OnClick(tagNM_GRIDVIEW *pNotify, bool &)
{
    const CellRange &cells = m_Selection.cells;
    const bool again = m_nTapCount == 2 && m_nCurCol == m_nLastTapCol && m_nCurRow == m_nLastTapRow &&
                       pNotify->nCol == m_nFirstTapCol && pNotify->nRow == m_nFirstTapRow &&
                       IsCellSelected(m_nFirstTapRow, m_nFirstTapCol);
    if (again && cells.nLeft == cells.nRight && cells.nTop < m_nRows)
    {
        // A tap on a hot spot is a click twice over; it is one double tap all the same.
        m_nTapCount = 0;
        EnableCellEdit(cells.nLeft, cells.nTop);
    }
}

LRESULT CHTMLGrid::OnHotspotNotify(tagNM_GRIDVIEW *pNotify, bool &handled)
{
    const HWND window = m_hWnd;
    const LRESULT result = SendMessageW(m_hParent, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(pNotify));
    if (IsWindow(window) != FALSE)
    {
        OnClick(pNotify, handled);
    }
    handled = true;
    return result;
}

// --- Pen up ------------------------------------------------------------------------------------------------------

/// The tap is over: of it nothing is left.
void CHTMLGrid::ClearPen()
{
    m_bPenDown = false;
    m_bPenOnFixed = false;
    m_bSweeping = false;
    m_bTapConsumed = false;
    m_bFloaterArmed = false;
    m_bFloaterStripHit = false;
    m_bFloaterMoved = false;
    m_dwFloaterID = 0;
    m_pMovingFloater = nullptr;
    StopScrollTimer();
}

void CHTMLGrid::OnLButtonUp(WPARAM, POINT point, bool &handled)
{
    handled = true;
    StopScrollTimer();
    m_ptDown = {};
    if (m_bDragging)
    {
        Drop(point);
        return;
    }
    if (m_bFloaterMoved)
    {
        LetFloaterGo();
        return;
    }
    const bool down = m_bPenDown;
    const bool swept = m_bSweeping;
    const bool consumed = m_bTapConsumed;
    const DWORD floater = m_bFloaterArmed ? m_dwFloaterID : 0;
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    const bool inCell = GetCellFromPoint(point, col, row);
    if (down && swept)
    {
        FinishSweep(point);
    }
    ClearPen();
    if (!down || consumed || !inCell)
    {
        return;
    }
    if (!swept && HotSpotAt(col, row, point, floater) != nullptr)
    {
        m_bTapConsumed = true;
        SendHotSpot(NM_HOTSPOT, point, col, row, floater);
        return;
    }
    NotifyParent(swept ? sweepNotify : tapNotify, point, col, row, floater);
}

/// What the pen has begun can't go on. A selection stays as far as it was swept, and a floater where it was moved to.
/// False when the grid has gone, since the parent is told of the floater.
bool CHTMLGrid::CancelPen()
{
    if (m_bDragging)
    {
        FinishDragOperation();
    }
    if (m_bFloaterMoved && !LetFloaterGo())
    {
        return false;
    }
    if (m_bSweeping && m_pSelectTip != nullptr)
    {
        m_pSelectTip->HideToolTip();
    }
    ClearPen();
    return true;
}

// --- Timers ------------------------------------------------------------------------------------------------------

void CHTMLGrid::OnTimer(UINT_PTR nId, bool &handled)
{
    constexpr UINT_PTR scrollTimer = 77;
    constexpr UINT_PTR firstKeyTimer = 80;
    constexpr UINT_PTR lastKeyTimer = 83;
    constexpr UINT_PTR delayTimer = 85;
    handled = true;
    if (nId == delayTimer)
    {
        ProcessDelayedScrolling();
    }
    else if (nId == doubleTapTimer)
    {
        KillTimer(m_hWnd, doubleTapTimer);
        m_nTapCount = 0;
    }
    else if (nId == scrollTimer)
    {
        AutoScroll();
    }
    else if (nId >= firstKeyTimer && nId <= lastKeyTimer)
    {
        StepKeyTimers(nId);
    }
    else
    {
        handled = false;
    }
}
