// Keys: those that scroll or move the current cell, and Escape.
#include "display/CHTMLGrid.h"

#include <algorithm>

namespace
{
constexpr UINT delayKey = 32;
constexpr BYTE keysByPage = 1;
constexpr BYTE keysMoveCell = 2;
constexpr UINT_PTR firstKeyTimer = 80;
constexpr UINT_PTR lastKeyTimer = 83;
constexpr UINT keyTime = 500;

bool isNavigationKey(UINT key)
{
    return key >= static_cast<UINT>(VK_PRIOR) && key <= static_cast<UINT>(VK_DOWN);
}
} // namespace

/// A message that stands for several presses is left alone; each of them comes by itself where it counts.
void CHTMLGrid::OnKeyDown(UINT nKey, UINT nRepeat, UINT, bool &handled)
{
    if (nKey == static_cast<UINT>(VK_ESCAPE) && m_bDragging)
    {
        handled = true;
        FinishDragOperation();
    }
    else if (!isNavigationKey(nKey))
    {
        handled = false;
    }
    else if (m_nDelayMs != 0)
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
    for (UINT_PTR timer = firstKeyTimer; timer <= lastKeyTimer; ++timer)
    {
        KillTimer(m_hWnd, timer);
    }
    m_nKeyStep = 1;
}

/// The longer a key is held, the further a press goes. A host that wants that starts the first timer.
void CHTMLGrid::StepKeyTimers(UINT_PTR nTimer)
{
    constexpr USHORT steps[] = {2, 3, 5, 7};
    KillTimer(m_hWnd, nTimer);
    m_nKeyStep = steps[nTimer - firstKeyTimer];
    if (nTimer < lastKeyTimer)
    {
        SetTimer(m_hWnd, nTimer + 1, keyTime, nullptr);
    }
}

/// In mode 2 the arrows move the current cell, else they scroll by steps or pages. False for another key.
bool CHTMLGrid::HandleNavigationKey(UINT nKey)
{
    const bool rows = nKey == static_cast<UINT>(VK_UP) || nKey == static_cast<UINT>(VK_DOWN);
    const bool forward = nKey == static_cast<UINT>(VK_RIGHT) || nKey == static_cast<UINT>(VK_DOWN);
    const bool pages = nKey == static_cast<UINT>(VK_PRIOR) || nKey == static_cast<UINT>(VK_NEXT);
    if (m_nKeysMode == keysMoveCell && !pages && !CancelEdit())
    {
        return true;
    }
    bool moved = false;
    switch (static_cast<int>(nKey))
    {
    case VK_PRIOR:
        ScrollByPageUp();
        return true;
    case VK_NEXT:
        ScrollByPageDown();
        return true;
    case VK_END:
        moved = NavigateEnd();
        break;
    case VK_HOME:
        moved = NavigateHome();
        break;
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        moved = NavigateBy(rows, forward);
        break;
    default:
        return false;
    }
    if (moved)
    {
        SendMessageW(m_hParent, GRID_CELLMOVED, m_Selection.cells.nLeft, m_Selection.cells.nTop);
    }
    return true;
}

/// Makes the cell current and alone selected. Where nothing is ever selected, keys still move the current cell, or they
/// could not scroll.
bool CHTMLGrid::NavigateTo(USHORT nCol, USHORT nRow)
{
    const USHORT col = m_nCurCol;
    const USHORT row = m_nCurRow;
    if (!SetSelection(nCol, nRow, nCol, nRow))
    {
        m_nCurCol = nCol;
        m_nCurRow = nRow;
    }
    return m_nCurCol != col || m_nCurRow != row;
}

bool CHTMLGrid::NavigateEnd()
{
    bool moved = false;
    if (m_nKeysMode == keysMoveCell && m_nRows > m_nFixedRows && m_nCols > m_nFixedCols)
    {
        moved = NavigateTo(m_nCurCol == GRID_NONE ? m_nFixedCols : m_nCurCol, static_cast<USHORT>(m_nRows - 1));
    }
    ScrollToBottom();
    return moved;
}

bool CHTMLGrid::NavigateHome()
{
    bool moved = false;
    if (m_nKeysMode == keysMoveCell && m_nRows > m_nFixedRows && m_nCols > m_nFixedCols)
    {
        moved = NavigateTo(m_nCurCol == GRID_NONE ? m_nFixedCols : m_nCurCol, m_nFixedRows);
    }
    ScrollToTop();
    return moved;
}

bool CHTMLGrid::NavigateBy(bool bRows, bool bForward)
{
    if (m_nKeysMode == 0)
    {
        bForward ? ScrollForward(bRows, m_nKeyStep, false) : ScrollBack(bRows, m_nKeyStep);
        return false;
    }
    if (m_nKeysMode == keysByPage)
    {
        bForward ? PageForward(bRows) : PageBack(bRows);
        return false;
    }
    const bool none = m_nCurCol == GRID_NONE || m_nCurRow == GRID_NONE;
    if ((none && !bForward) || m_nRows <= m_nFixedRows || m_nCols <= m_nFixedCols)
    {
        return false;
    }
    const int step = none ? 0 : bForward ? 1 : -1;
    const int col = none ? m_nFixedCols : m_nCurCol + (bRows ? 0 : step);
    const int row = none ? m_nFixedRows : m_nCurRow + (bRows ? step : 0);
    const auto toCol = static_cast<USHORT>(std::clamp<int>(col, m_nFixedCols, m_nCols - 1));
    const auto toRow = static_cast<USHORT>(std::clamp<int>(row, m_nFixedRows, m_nRows - 1));
    if (toCol == m_nCurCol && toRow == m_nCurRow)
    {
        return false;
    }
    BeginUpdate();
    MakeCellVisible(toCol, toRow, false);
    const bool moved = NavigateTo(toCol, toRow);
    RecalcScreenCells(false, false);
    EndUpdate();
    return moved;
}
