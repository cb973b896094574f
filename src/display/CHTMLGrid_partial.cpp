// Paints of a part: cells whose selection changed, and what scrolling uncovered.
//
// Invariant: afterwards the bitmap holds the very pixels that a paint of all would leave. So parts are drawn in their
// place, under a clip, by the same code; and where what stands beside them could differ, all is painted.
#include "display/CHTMLGrid.h"

#include <algorithm>

// --- Cells -------------------------------------------------------------------------------------------------------

/// What is last on the screen takes what lies right of it along: its text may reach there.
void CHTMLGrid::UpdateRange(HDC hdc, const CellRange &cells, RECT &out)
{
    out = {};
    m_rcUpdatedCells = cells;
    const POINT at = PlaceOf(cells.nLeft, cells.nTop);
    const auto width = static_cast<LONG>(zb::sumOfLines(m_ColWidths, cells.nLeft, cells.nRight + 1U));
    const auto height = static_cast<LONG>(zb::sumOfLines(m_RowHeights, cells.nTop, cells.nBottom + 1U));
    if (width == 0 || height == 0)
    {
        return;
    }
    out = {at.x, at.y, cells.nRight == m_ScreenCols.last ? std::max(m_BufferSize.cx, at.x + width) : at.x + width,
           at.y + height};
    const int saved = SaveDC(hdc);
    IntersectClipRect(hdc, out.left, out.top, out.right, out.bottom);
    FillBackground(hdc, out);
    DrawRange(hdc, cells, at);
    if (cells.nTop >= m_nFixedRows && cells.nLeft >= m_nFixedCols)
    {
        m_nPassTop = cells.nTop;
        DrawFloatersOf(hdc, cells, at);
    }
    RestoreDC(hdc, saved);
}

void CHTMLGrid::UpdateCellsRect(HDC hdc, const CellRange &cells, RECT &out)
{
    UpdateRange(hdc, cells, out);
}

void CHTMLGrid::UpdateFixedCellsRect(HDC hdc, const CellRange &cells, RECT &out)
{
    UpdateRange(hdc, cells, out);
}

void CHTMLGrid::UpdateCell(HDC hdc)
{
    RECT out{};
    UpdateCellsRect(hdc, m_rcUpdatedCells, out);
}

/// Rows with all their columns.
void CHTMLGrid::UpdateRows(HDC hdc, LONG nFirst, LONG nLast)
{
    RECT out{};
    const auto first = static_cast<USHORT>(nFirst);
    const auto last = static_cast<USHORT>(nLast);
    if (nFirst > nLast)
    {
        return;
    }
    if (m_nLeftCol <= m_ScreenCols.last && m_nLeftCol < m_nCols)
    {
        UpdateCellsRect(hdc, {m_nLeftCol, first, m_ScreenCols.last, last}, out);
    }
    if (m_nFixedCols > 0)
    {
        UpdateFixedCellsRect(hdc, {0, first, static_cast<USHORT>(m_nFixedCols - 1), last}, out);
    }
}

void CHTMLGrid::UpdateCols(HDC hdc, LONG nFirst, LONG nLast)
{
    RECT out{};
    const auto first = static_cast<USHORT>(nFirst);
    const auto last = static_cast<USHORT>(nLast);
    if (nFirst > nLast)
    {
        return;
    }
    if (m_nTopRow <= m_ScreenRows.last && m_nTopRow < m_nRows)
    {
        UpdateCellsRect(hdc, {first, m_nTopRow, last, m_ScreenRows.last}, out);
    }
    if (m_nFixedRows > 0)
    {
        UpdateFixedCellsRect(hdc, {first, 0, last, static_cast<USHORT>(m_nFixedRows - 1)}, out);
    }
}

void CHTMLGrid::UpdateAllAnew(HDC hdc)
{
    m_bPaintedOnce = false;
    UpdateScreen(hdc);
}

// --- Selection ---------------------------------------------------------------------------------------------------

/// Cells that show and are selected in one of the two selections alone, in runs along the rows.
void CHTMLGrid::UpdateSelection(HDC hdc)
{
    if (!m_bPaintedOnce)
    {
        UpdateScreen(hdc);
        return;
    }
    const auto changed = [this](int row, int col)
    {
        const auto atRow = static_cast<USHORT>(row);
        const auto atCol = static_cast<USHORT>(col);
        return IsSelectedIn(m_PrevSelection, atRow, atCol) != IsSelectedIn(m_Selection, atRow, atCol);
    };
    const int right = std::min<int>(m_ScreenCols.last, m_nCols - 1);
    for (int row = m_nTopRow; row <= m_ScreenRows.last && row < m_nRows; ++row)
    {
        for (int col = m_nLeftCol; col <= right; ++col)
        {
            const int first = col;
            while (col <= right && changed(row, col))
            {
                ++col;
            }
            if (col > first)
            {
                RECT out{};
                UpdateCellsRect(hdc,
                                {static_cast<USHORT>(first), static_cast<USHORT>(row), static_cast<USHORT>(col - 1),
                                 static_cast<USHORT>(row)},
                                out);
            }
        }
    }
}

// --- Scrolling ---------------------------------------------------------------------------------------------------

void CHTMLGrid::UpdateScrolled(HDC hdc)
{
    if (!m_bPaintedOnce)
    {
        UpdateScreen(hdc);
        return;
    }
    // With room that no bar takes, more may show than the lines that are reckoned with.
    const bool exact = m_nClientWidth == m_BufferSize.cx && m_nClientHeight == m_BufferSize.cy;
    const bool both = m_nTopRow != m_nPrevTop && m_nLeftCol != m_nPrevLeft;
    if (!exact || both || !ScrollRowsInBuffer(hdc) || !ScrollColsInBuffer(hdc))
    {
        UpdateAllAnew(hdc);
    }
}

/// From a height on down to the foot.
void CHTMLGrid::PaintUncoveredRows(HDC hdc, LONG nFrom)
{
    LONG bottom = m_nFixedHeight;
    LONG first = m_nTopRow;
    const LONG last = std::min<LONG>(m_ScreenRows.last, m_nRows - 1);
    for (; first <= last && bottom + m_RowHeights[static_cast<std::size_t>(first)] <= nFrom; ++first)
    {
        bottom += m_RowHeights[static_cast<std::size_t>(first)];
    }
    const LONG foot = m_ScreenRows.edges.empty() ? m_nFixedHeight : m_ScreenRows.edges.back().first;
    if (foot < m_BufferSize.cy)
    {
        FillBackground(hdc, {0, std::max(foot, nFrom), m_BufferSize.cx, m_BufferSize.cy});
    }
    UpdateRows(hdc, first, last);
}

void CHTMLGrid::PaintUncoveredCols(HDC hdc, LONG nFrom)
{
    LONG right = m_nFixedWidth;
    LONG first = m_nLeftCol;
    const LONG last = std::min<LONG>(m_ScreenCols.last, m_nCols - 1);
    for (; first <= last && right + m_ColWidths[static_cast<std::size_t>(first)] <= nFrom; ++first)
    {
        right += m_ColWidths[static_cast<std::size_t>(first)];
    }
    const LONG edge = m_ScreenCols.edges.empty() ? m_nFixedWidth : m_ScreenCols.edges.back().first;
    if (edge < m_BufferSize.cx)
    {
        FillBackground(hdc, {std::max(edge, nFrom), 0, m_BufferSize.cx, m_BufferSize.cy});
    }
    UpdateCols(hdc, first, last);
}

/// False when too little stays.
bool CHTMLGrid::ScrollRowsInBuffer(HDC hdc)
{
    const bool down = m_nTopRow > m_nPrevTop;
    const LONGLONG delta =
        zb::sumOfLines(m_RowHeights, std::min(m_nTopRow, m_nPrevTop), std::max(m_nTopRow, m_nPrevTop));
    const LONG room = m_BufferSize.cy - m_nFixedHeight;
    if (delta == 0)
    {
        return m_nTopRow == m_nPrevTop;
    }
    if (delta > room)
    {
        return false;
    }
    const auto moved = static_cast<LONG>(delta);
    const LONG from = m_nFixedHeight + (down ? moved : 0);
    const LONG to = m_nFixedHeight + (down ? 0 : moved);
    BitBlt(hdc, 0, to, m_BufferSize.cx, room - moved, hdc, 0, from, SRCCOPY);
    if (down)
    {
        PaintUncoveredRows(hdc, m_BufferSize.cy - moved);
    }
    else
    {
        UpdateRows(hdc, m_nTopRow, std::min<LONG>(m_nPrevTop - 1, m_ScreenRows.last));
    }
    return true;
}

bool CHTMLGrid::ScrollColsInBuffer(HDC hdc)
{
    const bool right = m_nLeftCol > m_nPrevLeft;
    const LONGLONG delta =
        zb::sumOfLines(m_ColWidths, std::min(m_nLeftCol, m_nPrevLeft), std::max(m_nLeftCol, m_nPrevLeft));
    const LONG room = m_BufferSize.cx - m_nFixedWidth;
    if (delta == 0)
    {
        return m_nLeftCol == m_nPrevLeft;
    }
    if (delta > room)
    {
        return false;
    }
    const auto moved = static_cast<LONG>(delta);
    const LONG from = m_nFixedWidth + (right ? moved : 0);
    const LONG to = m_nFixedWidth + (right ? 0 : moved);
    BitBlt(hdc, to, 0, room - moved, m_BufferSize.cy, hdc, from, 0, SRCCOPY);
    if (right)
    {
        PaintUncoveredCols(hdc, m_BufferSize.cx - moved);
    }
    else
    {
        UpdateCols(hdc, m_nLeftCol, std::min<LONG>(m_nPrevLeft - 1, m_ScreenCols.last));
    }
    return true;
}
