// Drags out of the grid, and what a grid answers to those of others that come over it.
//
// The parent agrees to the drag and to its end; where the pen is, the window there is asked first. Of a drop the parent
// is told, whether anybody takes it or not; of a drag that was given up nobody is.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

#include <cstdlib>

namespace
{
constexpr int dragDistance = 10;
constexpr int tipDistance = 5;
/// A place in the client area beyond this is one left of it or above it, without its sign.
constexpr LONG largestPlace = 32000;
constexpr LONG wrappedBy = 65535;
/// What an answer to GRID_GETDRAGTIP means that brings no text.
constexpr LRESULT noTip = 1;

LONG withSign(LONG place)
{
    return static_cast<SHORT>(static_cast<WORD>(place));
}

tagGRIDDRAG emptyRecord(HWND grid, UINT code)
{
    tagGRIDDRAG record{};
    record.hdr = {grid, 0, code};
    record.nRow = GRID_NONE;
    record.nCol = GRID_NONE;
    return record;
}
} // namespace

// --- Beginning ---------------------------------------------------------------------------------------------------

bool CHTMLGrid::StartsDrag(POINT point) const
{
    return m_bDragAllowed && m_bPenDown && !m_bTapConsumed && !m_bPenOnFixed &&
           std::abs(withSign(point.x) - m_ptDown.x) > HIDPI_SCALEX(dragDistance);
}

bool CHTMLGrid::OnDragStart(POINT cell)
{
    return SendMessageW(m_hParent, GRID_CANDRAG, reinterpret_cast<WPARAM>(m_hWnd), reinterpret_cast<LPARAM>(&cell)) !=
           0;
}

void CHTMLGrid::StartDrag(POINT point)
{
    POINT cell = {m_nCurCol, m_nCurRow};
    if (!OnDragStart(cell) || !m_bPenDown)
    {
        return;
    }
    m_ptLast = point;
    StartDragImages(cell, point);
    m_hPrevCapture = SetCapture(m_hWnd);
    m_bDragging = true;
    ShowTipAt(m_pDragTip, {HIDPI_SCALEX(tipDistance), HIDPI_SCALEY(tipDistance)}, ToolTipCorner::LeftTop);
}

// --- On the way --------------------------------------------------------------------------------------------------

void CHTMLGrid::DragTo(POINT point)
{
    m_ptLast = point;
    CheckDragScroll({withSign(point.x), withSign(point.y)});
    HWND target = nullptr;
    bool allowed = false;
    tagGRIDDRAG record = emptyRecord(m_hWnd, 0);
    OnDragOver(point, target, &record, allowed);
}

/// One that has lost its sign is off by a pixel. Kept: so is what targets were told of it.
POINT CHTMLGrid::ScreenPointOfDrag(POINT point) const
{
    POINT lost{};
    if (point.x > largestPlace)
    {
        lost.x = wrappedBy;
    }
    if (point.y > largestPlace)
    {
        lost.y = wrappedBy;
    }
    point = {point.x - lost.x, point.y - lost.y};
    ClientToScreen(m_hWnd, &point);
    return point;
}

void CHTMLGrid::OnDragOver(POINT point, HWND &hWnd, tagGRIDDRAG *pDrag, bool &allowed)
{
    POINT screen = ScreenPointOfDrag(point);
    hWnd = WindowFromPoint(screen);
    if (m_pDragTip != nullptr && hWnd != nullptr && hWnd == m_pDragTip->GetHwnd())
    {
        // The drag's own tip is in the way of what lies below it.
        hWnd = GetParent(hWnd);
    }
    const auto record = reinterpret_cast<LPARAM>(pDrag);
    allowed = hWnd != nullptr && SendMessageW(hWnd, GRID_QUERYDROP, reinterpret_cast<WPARAM>(&screen), record) != 0 &&
              SendMessageW(m_hParent, GRID_CANDROP, reinterpret_cast<WPARAM>(hWnd), record) != 0;
    if (allowed)
    {
        ShowDragTip(pDrag);
    }
    else if (m_pDragTip != nullptr)
    {
        m_pDragTip->HideToolTip();
    }
    MoveDragImages(screen);
}

void CHTMLGrid::ShowDragTip(tagGRIDDRAG *pDrag)
{
    if (AskTip(ToolTip(m_pDragTip), GRID_GETDRAGTIP, pDrag) == noTip)
    {
        m_pDragTip->HideToolTip();
        return;
    }
    RECT client{};
    GetClientRect(m_hWnd, &client);
    ShowTipAt(m_pDragTip, {client.right, HIDPI_SCALEY(tipDistance)}, ToolTipCorner::RightTop);
}

// --- End ---------------------------------------------------------------------------------------------------------

void CHTMLGrid::Drop(POINT point)
{
    tagGRIDDRAG record = emptyRecord(m_hWnd, GRID_DROP);
    HWND target = nullptr;
    bool allowed = false;
    OnDragOver(point, target, &record, allowed);
    const auto taken = allowed && target != nullptr ? reinterpret_cast<WPARAM>(&record) : 0;
    const HWND window = m_hWnd;
    SendMessageW(m_hParent, GRID_DROP, taken, reinterpret_cast<LPARAM>(&record));
    if (IsWindow(window) != FALSE)
    {
        FinishDragOperation();
    }
}

void CHTMLGrid::FinishDragOperation()
{
    if (!m_bDragging)
    {
        return;
    }
    m_bDragging = false;
    const HWND former = std::exchange(m_hPrevCapture, nullptr);
    ClearPen();
    if (former != nullptr && former != m_hWnd && IsWindow(former) != FALSE)
    {
        SetCapture(former);
    }
    m_pDragTip.reset();
    EndDragImages();
    RepaintAll();
}

// --- As a target -------------------------------------------------------------------------------------------------

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
