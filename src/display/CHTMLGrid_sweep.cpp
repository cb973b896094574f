// The pen on its way over the grid: what its first movements make of a tap, selections that are swept, and scrolling by
// itself while the pen is at an edge or beyond.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr UINT_PTR scrollTimer = 77;
constexpr UINT scrollTime = 300;
constexpr LONG dragSlip = 5;
constexpr int sweepDistance = 12;
constexpr BYTE modeNone = 3;
constexpr BYTE scrollUp = 1;
constexpr BYTE scrollDown = 2;
constexpr BYTE scrollLeft = 4;
constexpr BYTE scrollRight = 8;

/// Points come without a sign: beyond 32,767 they lie left of the window or above it.
LONG withSign(LONG place)
{
    return static_cast<SHORT>(static_cast<WORD>(place));
}

LONG notBelowZero(LONG place)
{
    constexpr LONG largest = 32767;
    return place < 0 || place > largest ? 0 : place;
}
} // namespace

void CHTMLGrid::OnMouseMove(WPARAM uKeys, POINT point, bool &handled)
{
    handled = true;
    if (m_bPenDown && (uKeys & MK_LBUTTON) == 0)
    {
        // It went up elsewhere.
        CancelPen();
    }
    else if (m_bFloaterArmed)
    {
        MoveArmedFloater(point);
    }
    else if (m_bSweeping || StartsSweep(point))
    {
        SweepTo(point);
    }
    else if (m_bDragging)
    {
        DragTo(point);
    }
    else if (StartsDrag(point))
    {
        StartDrag(point);
    }
}

// --- Sweeps ------------------------------------------------------------------------------------------------------

/// Where drags are allowed too, moving sideways drags and moving up or down selects.
bool CHTMLGrid::StartsSweep(POINT point) const
{
    if (!m_bPenDown || !m_bMultiSelect || m_bDragging || m_bTapConsumed || m_bPenOnFixed)
    {
        return false;
    }
    const LONG across = std::abs(withSign(point.x) - m_ptDown.x);
    const LONG along = std::abs(withSign(point.y) - m_ptDown.y);
    if (m_bDragAllowed)
    {
        return across <= dragSlip && along > m_nMinRowHeight;
    }
    return across > HIDPI_SCALEX(sweepDistance) || along > HIDPI_SCALEY(sweepDistance);
}

void CHTMLGrid::SweepTo(POINT point)
{
    m_bSweeping = true;
    HoldPen();
    point = {notBelowZero(point.x), notBelowZero(point.y)};
    CheckDragScroll(point);
    const HWND window = m_hWnd;
    if (UpdateSelection(point) && IsWindow(window) != FALSE)
    {
        m_ptLast = point;
    }
}

/// Makes the cell current and selects from the anchor to it.
void CHTMLGrid::SelectFromAnchor(USHORT nCol, USHORT nRow)
{
    SaveSelection();
    m_nCurCol = nCol;
    m_nCurRow = nRow;
    const USHORT col = m_Selection.nAnchorCol;
    const USHORT row = m_Selection.nAnchorRow;
    if (m_nSelectionMode != modeNone && col != GRID_NONE && row != GRID_NONE)
    {
        m_Selection.cells = {m_bRowSelect ? m_nFixedCols : std::min(col, nCol), std::min(row, nRow),
                             m_bRowSelect ? static_cast<USHORT>(m_nCols - 1) : std::max(col, nCol),
                             std::max(row, nRow)};
    }
}

/// False when the point is in no other cell. The parent that gives the tip's text may end the grid.
bool CHTMLGrid::UpdateSelection(POINT point)
{
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    if (!GetCellFromPoint(point, col, row) || (col == m_nCurCol && row == m_nCurRow) || col < m_nFixedCols ||
        row < m_nFixedRows)
    {
        return false;
    }
    SelectFromAnchor(col, row);
    Invalidate(nullptr);
    if (m_bSelectTip && m_nSelectionMode != modeNone)
    {
        if (!ToolTip(m_pSelectTip).IsShown())
        {
            ShowTipAt(m_pSelectTip, m_ptSelectTip, ToolTipCorner::RightBottom);
        }
        const CellRange &cells = m_Selection.cells;
        const GRIDSPANREQUEST request = {{m_hWnd, 0, GRID_GETSELECTIONTIP},
                                         static_cast<DWORD>(MAKELONG(cells.nTop, cells.nLeft)),
                                         static_cast<DWORD>(MAKELONG(cells.nBottom, cells.nRight))};
        AskTip(m_pSelectTip, GRID_GETSELECTIONTIP, &request);
    }
    return true;
}

void CHTMLGrid::FinishSweep(POINT point)
{
    USHORT col = GRID_NONE;
    USHORT row = GRID_NONE;
    if (GetCellFromPoint(point, col, row) && col >= m_nFixedCols && row >= m_nFixedRows)
    {
        if (m_bAutoScroll)
        {
            MakeCellVisible(col, row, false);
        }
        SelectFromAnchor(col, row);
    }
    if (m_pSelectTip != nullptr)
    {
        m_pSelectTip->HideToolTip();
    }
    Invalidate(nullptr);
}

// --- Scrolling by itself -----------------------------------------------------------------------------------------

/// In the edge zone on the left the fixed columns don't count.
void CHTMLGrid::CheckDragScroll(POINT point)
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    const LONG zone = m_nScrollRegion;
    if (point.y < zone)
    {
        StartScrollTimer(scrollUp);
    }
    else if (point.y > client.bottom - zone)
    {
        StartScrollTimer(scrollDown);
    }
    else if (point.x < zone + m_nFixedWidth)
    {
        StartScrollTimer(scrollLeft);
    }
    else if (point.x > client.right - zone)
    {
        StartScrollTimer(scrollRight);
    }
    else
    {
        StopScrollTimer();
    }
}

void CHTMLGrid::StartScrollTimer(BYTE nDirection)
{
    if (!m_bAutoScroll)
    {
        return;
    }
    m_nScrollDir = nDirection;
    if (m_nScrollTimer == 0)
    {
        HoldPen();
        m_nScrollTimer = SetTimer(m_hWnd, scrollTimer, scrollTime, nullptr);
    }
}

/// The pen is held until it goes up: what it has begun must hear of that, wherever it is.
void CHTMLGrid::StopScrollTimer()
{
    if (m_nScrollTimer != 0)
    {
        KillTimer(m_hWnd, scrollTimer);
        m_nScrollTimer = 0;
    }
    m_nScrollDir = 0;
    if (!m_bPenDown && !m_bDragging && m_hWnd != nullptr && GetCapture() == m_hWnd)
    {
        ReleaseCapture();
    }
}

void CHTMLGrid::HoldPen()
{
    if (GetCapture() != m_hWnd)
    {
        SetCapture(m_hWnd);
    }
}

/// A tick: one step in the direction, after which the pen, which stands still, is over another cell.
void CHTMLGrid::AutoScroll()
{
    switch (m_nScrollDir)
    {
    case scrollUp:
        ScrollByRowUp(1);
        break;
    case scrollDown:
        ScrollByRowDown(1, false);
        break;
    case scrollLeft:
        ScrollByColLeft(1);
        break;
    case scrollRight:
        ScrollByColRight(1);
        break;
    default:
        break;
    }
    const HWND window = m_hWnd;
    m_ptLast = {std::max<LONG>(m_ptLast.x, 1), std::max<LONG>(m_ptLast.y, 1)};
    if (m_bSweeping)
    {
        UpdateSelection(m_ptLast);
    }
    else if (m_bFloaterArmed)
    {
        bool handled = false;
        OnMouseMove(MK_LBUTTON, m_ptLast, handled);
    }
    if (IsWindow(window) != FALSE)
    {
        ProcessDelayedScrolling();
    }
}

// --- Tool tips ---------------------------------------------------------------------------------------------------

/// Made when it is needed, or when its window has gone.
CHTMLToolTip &CHTMLGrid::ToolTip(std::unique_ptr<CHTMLToolTip> &tip)
{
    if (tip == nullptr || tip->GetHwnd() == nullptr || GetParent(*tip) != GetToolTipParent())
    {
        tip = std::make_unique<CHTMLToolTip>();
        tip->Create(GetToolTipParent());
    }
    return *tip;
}

/// The point is one of the grid's.
void CHTMLGrid::ShowTipAt(std::unique_ptr<CHTMLToolTip> &tip, POINT point, ToolTipCorner corner)
{
    MapWindowPoints(m_hWnd, GetToolTipParent(), &point, 1);
    ToolTip(tip).ShowToolTip(point, corner);
}

/// The parent's text goes into the tip and is freed; none hides it. The parent may end what the tip belongs to, and the
/// grid too.
LRESULT CHTMLGrid::AskTip(const std::unique_ptr<CHTMLToolTip> &tip, UINT uMessage, const void *request)
{
    const HWND window = m_hWnd;
    WCHAR *text = nullptr;
    const LRESULT result =
        SendMessageW(m_hParent, uMessage, reinterpret_cast<WPARAM>(&text), reinterpret_cast<LPARAM>(request));
    const std::unique_ptr<WCHAR, void (*)(void *)> owned(text, std::free);
    if (IsWindow(window) != FALSE && tip != nullptr)
    {
        tip->UpdateToolTip(text, false);
    }
    return result;
}
