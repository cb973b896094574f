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
    const HWND window = m_hWnd;
    POINT cell = {m_nCurCol, m_nCurRow};
    if (!OnDragStart(cell) || IsWindow(window) == FALSE || !m_bPenDown)
    {
        return;
    }
    m_ptLast = point;
    if (!StartDragImages(cell, point))
    {
        return;
    }
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

/// Whoever is asked may give the drag up, with a question to the user for example, and may end the grid.
void CHTMLGrid::OnDragOver(POINT point, HWND &hWnd, tagGRIDDRAG *pDrag, bool &allowed)
{
    const auto goesOn = [this, window = m_hWnd, dragging = m_bDragging]
    { return IsWindow(window) != FALSE && m_bDragging == dragging; };
    const auto agrees = [&goesOn, pDrag](HWND asked, UINT message, WPARAM wParam)
    { return SendMessageW(asked, message, wParam, reinterpret_cast<LPARAM>(pDrag)) != 0 && goesOn(); };
    POINT screen = ScreenPointOfDrag(point);
    hWnd = WindowFromPoint(screen);
    if (m_pDragTip != nullptr && hWnd != nullptr && hWnd == m_pDragTip->GetHwnd())
    {
        // The drag's own tip is in the way of what lies below it.
        hWnd = GetParent(hWnd);
    }
    allowed = hWnd != nullptr && agrees(hWnd, GRID_QUERYDROP, reinterpret_cast<WPARAM>(&screen)) &&
              agrees(m_hParent, GRID_CANDROP, reinterpret_cast<WPARAM>(hWnd));
    if (allowed)
    {
        ShowDragTip(pDrag);
        allowed = goesOn();
    }
    else if (goesOn() && m_pDragTip != nullptr)
    {
        m_pDragTip->HideToolTip();
    }
    if (goesOn())
    {
        MoveDragImages(screen);
    }
}

void CHTMLGrid::ShowDragTip(tagGRIDDRAG *pDrag)
{
    const HWND window = m_hWnd;
    ToolTip(m_pDragTip);
    const LRESULT answer = AskTip(m_pDragTip, GRID_GETDRAGTIP, pDrag);
    if (IsWindow(window) == FALSE || m_pDragTip == nullptr)
    {
        return;
    }
    if (answer == noTip)
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
    const HWND window = m_hWnd;
    OnDragOver(point, target, &record, allowed);
    if (IsWindow(window) == FALSE || !m_bDragging)
    {
        return;
    }
    const auto taken = allowed && target != nullptr ? reinterpret_cast<WPARAM>(&record) : 0;
    SendMessageW(m_hParent, GRID_DROP, taken, reinterpret_cast<LPARAM>(&record));
    if (IsWindow(window) != FALSE)
    {
        FinishDragOperation();
    }
}

/// The capture goes back unless somebody has taken it.
void CHTMLGrid::FinishDragOperation()
{
    if (!m_bDragging)
    {
        return;
    }
    m_bDragging = false;
    const HWND former = std::exchange(m_hPrevCapture, nullptr);
    ClearPen();
    if (former != m_hWnd && IsWindow(former) != FALSE && GetCapture() == nullptr)
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
    if (!GetCellFromPoint(point, pDrag->nCol, pDrag->nRow))
    {
        pDrag->nCol = GRID_NONE;
        pDrag->nRow = GRID_NONE;
    }
    pDrag->nRows = m_nRows;
    pDrag->nCols = m_nCols;
    pDrag->pt = point;
    GetClientRect(m_hWnd, &pDrag->rcClient);
    return true;
}
