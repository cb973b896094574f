// Scroll steps: which line comes first for each of them.
#include "display/CHTMLGrid.h"

#include <algorithm>

USHORT CHTMLGrid::GetLeftCol() const
{
    return m_nLeftCol;
}

USHORT CHTMLGrid::GetTopRow() const
{
    return m_nTopRow;
}

USHORT CHTMLGrid::GetBottomRow() const
{
    return m_ScreenRows.last;
}

void CHTMLGrid::SetLeftCol(USHORT nCol)
{
    if (nCol < m_nCols && nCol >= m_nFixedCols && nCol != m_nLeftCol)
    {
        ScrollTo(false, nCol, PaintAll);
    }
}

void CHTMLGrid::SetTopRow(USHORT nRow)
{
    if (nRow < m_nRows && nRow >= m_nFixedRows && (nRow != m_nTopRow || m_nUpdateLock > 0))
    {
        ScrollTo(true, nRow, PaintAll);
    }
}

/// Puts a line first. Inside an update a row waits for its end, when it is known what the rows are; the last request
/// counts, also one for the row that is on top now.
void CHTMLGrid::ScrollTo(bool bRows, USHORT nTarget, PaintMode mode, bool bKeepTop)
{
    if (m_nUpdateLock > 0 && bRows)
    {
        m_nPendingRow = nTarget;
        if (nTarget != m_nTopRow)
        {
            m_uDeferred |= DeferScrollToRow;
        }
        return;
    }
    const USHORT top = m_nTopRow;
    const USHORT left = m_nLeftCol;
    const zb::GridView rows = m_ScreenRows;
    const zb::GridView cols = m_ScreenCols;
    (bRows ? m_nTopRow : m_nLeftCol) = nTarget;
    RecalcScreenCells(false, bKeepTop);
    // A row that has become higher meanwhile moves what lies below it by more than the scroll does.
    const LONGLONG down = zb::distanceOfLines(m_RowHeights, m_nTopRow, top);
    const LONGLONG across = zb::distanceOfLines(m_ColWidths, m_nLeftCol, left);
    const bool moved = zb::movedBy(rows, m_ScreenRows, m_nFixedRows, down) &&
                       zb::movedBy(cols, m_ScreenCols, m_nFixedCols, across);
    SetPaintMode(moved ? mode : PaintAll);
    m_nPrevTop = top;
    m_nPrevLeft = left;
    UpdateScrollBars(bRows ? SB_VERT : SB_HORZ);
    Invalidate(nullptr);
}

void CHTMLGrid::ScrollForward(bool bRows, USHORT nLines, bool bUnclamped)
{
    const USHORT count = bRows ? m_nRows : m_nCols;
    const USHORT first = bRows ? m_nTopRow : m_nLeftCol;
    const USHORT largest = bRows ? m_nMaxTopRow : m_nMaxLeftCol;
    // Inside an update the largest may be that of former lines; the end of the update limits.
    const bool limited = !bUnclamped && m_nUpdateLock == 0;
    const int end = limited ? largest : count - 1;
    if (count == 0 || first >= end)
    {
        return;
    }
    const auto target = static_cast<USHORT>(std::min(first + nLines, end));
    ScrollTo(bRows, target, target > largest ? PaintAll : PaintScrolled, target > largest);
}

void CHTMLGrid::ScrollBack(bool bRows, USHORT nLines)
{
    const USHORT first = bRows ? m_nTopRow : m_nLeftCol;
    const int target = std::max<int>(first - nLines, FirstFree(bRows));
    if (target < first || m_nUpdateLock > 0)
    {
        ScrollTo(bRows, static_cast<USHORT>(target), PaintScrolled);
    }
}

void CHTMLGrid::PageForward(bool bRows)
{
    const USHORT first = bRows ? m_nTopRow : m_nLeftCol;
    const USHORT largest = bRows ? m_nMaxTopRow : m_nMaxLeftCol;
    if (first >= largest)
    {
        return;
    }
    int target = (bRows ? m_ScreenRows : m_ScreenCols).last - 1;
    // Lines of more than half the area would stand still; one of more than all of it takes the single step.
    target = target <= first && Sizes(bRows)[first] <= AvailableFor(bRows) ? first + 1 : target;
    target = std::min<int>(target, largest);
    if (target > first)
    {
        ScrollTo(bRows, static_cast<USHORT>(target), PaintAll);
    }
}

void CHTMLGrid::PageBack(bool bRows)
{
    const USHORT first = bRows ? m_nTopRow : m_nLeftCol;
    const USHORT free = FirstFree(bRows);
    if (first <= free)
    {
        return;
    }
    const LONG available = AvailableFor(bRows);
    LONGLONG sum = 0;
    for (int line = first - 1; line >= free; --line)
    {
        sum += bRows ? GetRowHeight(static_cast<USHORT>(line), false) : m_ColWidths[static_cast<std::size_t>(line)];
        if (sum > available)
        {
            int target = std::max<int>(line + 2, free);
            target = target >= first && line < first - 1 ? first - 1 : target;
            if (target < first)
            {
                ScrollTo(bRows, static_cast<USHORT>(target), PaintAll);
            }
            return;
        }
    }
    ScrollTo(bRows, free, PaintScrolled);
}

/// With the heights of the last rows, which are asked for on the way.
void CHTMLGrid::MeasureLargestTopRow()
{
    LONGLONG sum = 0;
    for (int row = m_nRows - 1; row >= m_nFixedRows && sum < AvailableFor(true); --row)
    {
        sum += GetRowHeight(static_cast<USHORT>(row), false);
    }
    RecalcMaxScrolls();
}

void CHTMLGrid::ScrollToEnd(bool bRows)
{
    if (m_nUpdateLock > 0)
    {
        if (const USHORT count = bRows ? m_nRows : m_nCols)
        {
            ScrollTo(bRows, static_cast<USHORT>(count - 1), PaintScrolled);
        }
        return;
    }
    if (bRows && m_bOnDemand)
    {
        MeasureLargestTopRow();
    }
    const USHORT largest = std::max(bRows ? m_nMaxTopRow : m_nMaxLeftCol, FirstFree(bRows));
    if ((bRows ? m_nTopRow : m_nLeftCol) == largest)
    {
        Invalidate(nullptr);
        return;
    }
    ScrollTo(bRows, largest, PaintScrolled);
}

void CHTMLGrid::ScrollByRowUp(USHORT nRows)
{
    ScrollBack(true, nRows);
}

void CHTMLGrid::ScrollByRowDown(USHORT nRows, bool bUnclamped)
{
    ScrollForward(true, nRows, bUnclamped);
}

void CHTMLGrid::ScrollByColLeft(USHORT nCols)
{
    ScrollBack(false, nCols);
}

void CHTMLGrid::ScrollByColRight(USHORT nCols)
{
    ScrollForward(false, nCols, false);
}

void CHTMLGrid::ScrollByPageUp()
{
    PageBack(true);
}

void CHTMLGrid::ScrollByPageDown()
{
    PageForward(true);
}

void CHTMLGrid::ScrollByPageLeft()
{
    PageBack(false);
}

void CHTMLGrid::ScrollByPageRight()
{
    PageForward(false);
}

void CHTMLGrid::ScrollToTop()
{
    if (m_nTopRow != m_nFixedRows || m_nUpdateLock > 0)
    {
        ScrollTo(true, m_nFixedRows, PaintScrolled);
    }
}

void CHTMLGrid::ScrollToBottom()
{
    ScrollToEnd(true);
}

void CHTMLGrid::ScrollToLeft()
{
    if (m_nLeftCol != m_nFixedCols)
    {
        ScrollTo(false, m_nFixedCols, PaintScrolled);
    }
}

void CHTMLGrid::ScrollToRight()
{
    ScrollToEnd(false);
}

void CHTMLGrid::MakeRowTopMost(USHORT nRow, bool bUnclamped)
{
    const USHORT row = nRow == GRID_NONE ? 0 : nRow;
    if (row < m_nFixedRows || row >= m_nRows)
    {
        return;
    }
    if (m_nUpdateLock > 0)
    {
        ScrollTo(true, row, PaintScrolled);
    }
    else if (row > m_nTopRow)
    {
        ScrollByRowDown(static_cast<USHORT>(row - m_nTopRow), bUnclamped);
    }
    else if (row < m_nTopRow)
    {
        ScrollByRowUp(static_cast<USHORT>(m_nTopRow - row));
    }
}

/// The first line with which a line further on shows whole; the present one where it does already.
USHORT CHTMLGrid::FirstLineToShow(bool bRows, USHORT nLine, LONG nAvailable)
{
    const USHORT first = bRows ? m_nTopRow : m_nLeftCol;
    if (nLine < first)
    {
        return nLine;
    }
    LONGLONG sum = 0;
    for (USHORT line = nLine; line > first; --line)
    {
        sum += bRows ? GetRowHeight(line, false) : m_ColWidths[line];
        if (sum >= nAvailable)
        {
            return static_cast<USHORT>(line + (sum > nAvailable && line != nLine ? 1 : 0));
        }
    }
    sum += bRows ? GetRowHeight(first, false) : m_ColWidths[first];
    return static_cast<USHORT>(first + (sum > nAvailable && nLine > first ? 1 : 0));
}

void CHTMLGrid::MakeCellVisible(USHORT nCol, USHORT nRow, bool bPartial)
{
    const USHORT row = nRow == GRID_NONE ? 0 : nRow;
    const USHORT col = nCol == GRID_NONE ? 0 : nCol;
    if (row >= m_nRows || col >= m_nCols)
    {
        return;
    }
    if (m_nUpdateLock > 0 && (m_uDeferred & (DeferRecalc | DeferScrollToRow)) != 0)
    {
        // Nothing is known of the rows yet, or of which of them will show.
        ScrollTo(true, row, PaintAll);
        return;
    }
    const bool rowShown = row < m_nFixedRows || IsCellVisible(col, row, bPartial);
    const USHORT top = rowShown ? m_nTopRow : FirstLineToShow(true, row, AvailableFor(true));
    const USHORT left = col < m_nFixedCols ? m_nLeftCol : FirstLineToShow(false, col, AvailableFor(false));
    if (top == m_nTopRow && left == m_nLeftCol)
    {
        return;
    }
    m_nTopRow = top;
    m_nLeftCol = left;
    RecalcMaxScrolls();
    RecalcScreenCells(false, false);
    UpdateScrollBars(SB_BOTH);
    RepaintAll();
}

/// What EndUpdate does for a scroll that waited. On demand it asks for the rows that will show, since the end of the
/// list may lie elsewhere than the least heights say.
void CHTMLGrid::EndUpdateScrollToRow(USHORT nRow)
{
    const USHORT last = static_cast<USHORT>(m_nRows == 0 ? 0 : m_nRows - 1);
    const USHORT row = std::max(std::min(nRow, last), m_nFixedRows);
    m_nTopRow = std::max(m_nFixedRows, std::min(row, m_nMaxTopRow));
    if (m_bOnDemand && m_nRows > 0)
    {
        const LONG available = AvailableFor(true);
        LONGLONG sum = GetRowHeight(row, true);
        for (int below = row + 1; below < m_nRows && sum < available; ++below)
        {
            sum += GetRowHeight(static_cast<USHORT>(below), false);
        }
        int top = row;
        for (; sum < available && top > m_nFixedRows; --top)
        {
            sum += GetRowHeight(static_cast<USHORT>(top - 1), false);
        }
        m_nTopRow = static_cast<USHORT>(top + (sum > available && top < row ? 1 : 0));
        RecalcMaxScrolls();
    }
    m_uDeferred |= DeferScreenCells | DeferRepaint | (m_bShowVBar ? DeferVertBar : 0U);
}
