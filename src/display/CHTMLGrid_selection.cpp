// The current cell and the selection.
#include "display/CHTMLGrid.h"

#include <algorithm>

namespace
{
constexpr BYTE modeRectangle = 0;
constexpr BYTE modeByRows = 2;
constexpr BYTE modeNone = 3;

bool isBetween(USHORT value, USHORT one, USHORT other)
{
    return std::min(one, other) <= value && value <= std::max(one, other);
}
} // namespace

void CHTMLGrid::SetMultiSelect(bool bMulti, bool bTip)
{
    m_bMultiSelect = bMulti;
    m_bSelectTip = bTip;
}

void CHTMLGrid::GetMultiSelect(bool &bMulti, bool &bTip) const
{
    bMulti = m_bMultiSelect;
    bTip = m_bSelectTip;
}

void CHTMLGrid::SetRowSelect(bool bRowSelect)
{
    m_bRowSelect = bRowSelect;
}

bool CHTMLGrid::GetRowSelect() const
{
    return m_bRowSelect;
}

void CHTMLGrid::SetSelectionMode(BYTE nMode)
{
    if (nMode <= modeNone)
    {
        m_nSelectionMode = nMode;
        RepaintAll();
    }
}

BYTE CHTMLGrid::GetSelectionMode() const
{
    return m_nSelectionMode;
}

void CHTMLGrid::SetShowFocus(bool bShow)
{
    m_bShowFocus = bShow;
}

bool CHTMLGrid::GetShowFocus() const
{
    return m_bShowFocus;
}

void CHTMLGrid::SetAllowAutoScroll(bool bAllow)
{
    m_bAutoScroll = bAllow;
}

bool CHTMLGrid::GetAllowAutoScroll() const
{
    return m_bAutoScroll;
}

void CHTMLGrid::SetDragAllowed(bool bAllow)
{
    m_bDragAllowed = bAllow;
}

bool CHTMLGrid::GetDragAllowed() const
{
    return m_bDragAllowed;
}

USHORT CHTMLGrid::GetCol() const
{
    return m_nCurCol;
}

USHORT CHTMLGrid::GetRow() const
{
    return m_nCurRow;
}

void CHTMLGrid::SetCol(USHORT nCol)
{
    if (nCol < m_nCols)
    {
        m_nCurCol = nCol;
        EmptySelection();
        MakeCellVisible(m_nCurCol, m_nCurRow, false);
    }
}

void CHTMLGrid::SetRow(USHORT nRow)
{
    if (nRow < m_nRows)
    {
        m_nCurRow = nRow;
        EmptySelection();
        MakeCellVisible(m_nCurCol, m_nCurRow, false);
    }
}

void CHTMLGrid::GetSelection(USHORT &nLeft, USHORT &nTop, USHORT &nRight, USHORT &nBottom) const
{
    nLeft = m_Selection.cells.nLeft;
    nTop = m_Selection.cells.nTop;
    nRight = m_Selection.cells.nRight;
    nBottom = m_Selection.cells.nBottom;
}

/// For the paint of the cells that change from here on.
void CHTMLGrid::SaveSelection()
{
    SetPaintMode(PaintSelection);
    m_PrevSelection = m_Selection;
}

bool CHTMLGrid::SetSelection(USHORT nLeft, USHORT nTop, USHORT nRight, USHORT nBottom)
{
    if (!CancelEdit() || m_nSelectionMode == modeNone || m_nRows == 0 || m_nCols == 0)
    {
        return false;
    }
    const auto plain = [](USHORT line) { return line == GRID_NONE ? USHORT{0} : line; };
    const USHORT left = std::min(plain(nLeft), static_cast<USHORT>(m_nCols - 1));
    const USHORT top = std::min(plain(nTop), static_cast<USHORT>(m_nRows - 1));
    const USHORT right = std::min(plain(nRight), static_cast<USHORT>(m_nCols - 1));
    const USHORT bottom = std::min(plain(nBottom), static_cast<USHORT>(m_nRows - 1));
    if (std::min(left, right) < m_nFixedCols || std::min(top, bottom) < m_nFixedRows)
    {
        return false;
    }
    SaveSelection();
    m_nCurCol = right;
    m_nCurRow = bottom;
    m_Selection.nAnchorCol = left;
    m_Selection.nAnchorRow = top;
    m_Selection.cells = {m_bRowSelect ? m_nFixedCols : std::min(left, right), std::min(top, bottom),
                         m_bRowSelect ? static_cast<USHORT>(m_nCols - 1) : std::max(left, right),
                         std::max(top, bottom)};
    Invalidate(nullptr);
    return true;
}

void CHTMLGrid::EmptySelection()
{
    CellRange &cells = m_Selection.cells;
    if (cells.nTop == GRID_NONE && cells.nBottom == GRID_NONE)
    {
        return;
    }
    SaveSelection();
    const bool whole = m_bRowSelect && m_nCols > 0;
    cells = {whole ? m_nFixedCols : m_nCurCol, GRID_NONE, whole ? static_cast<USHORT>(m_nCols - 1) : m_nCurCol,
             GRID_NONE};
    Invalidate(nullptr);
}

bool CHTMLGrid::IsCellSelected(USHORT nRow, USHORT nCol) const
{
    return IsSelectedIn(m_Selection, nRow, nCol);
}

bool CHTMLGrid::IsSelectedIn(const Selection &selection, USHORT nRow, USHORT nCol) const
{
    const CellRange &cells = selection.cells;
    if (cells.nLeft == GRID_NONE || cells.nTop == GRID_NONE || cells.nBottom == GRID_NONE ||
        cells.nRight == GRID_NONE || m_nSelectionMode == modeNone)
    {
        return false;
    }
    if (m_nSelectionMode == modeRectangle)
    {
        return isBetween(nCol, cells.nLeft, cells.nRight) && isBetween(nRow, cells.nTop, cells.nBottom);
    }
    return IsInStream(selection, nRow, nCol, m_nSelectionMode == modeByRows);
}

/// Like text that flows along the lines (rows, or columns): the first line from where the selection begins in it, the
/// last one up to where it ends, those between whole.
bool CHTMLGrid::IsInStream(const Selection &selection, USHORT nRow, USHORT nCol, bool bByRows) const
{
    const CellRange &cells = selection.cells;
    const USHORT line = bByRows ? nRow : nCol;
    const USHORT place = bByRows ? nCol : nRow;
    const USHORT firstLine = bByRows ? cells.nTop : cells.nLeft;
    const USHORT lastLine = bByRows ? cells.nBottom : cells.nRight;
    const USHORT low = bByRows ? cells.nLeft : cells.nTop;
    const USHORT high = bByRows ? cells.nRight : cells.nBottom;
    if (line < firstLine || line > lastLine)
    {
        return false;
    }
    if (firstLine == lastLine)
    {
        return isBetween(place, low, high);
    }
    const USHORT anchorLine = bByRows ? selection.nAnchorRow : selection.nAnchorCol;
    const USHORT anchor = bByRows ? selection.nAnchorCol : selection.nAnchorRow;
    const USHORT other = anchor == low ? high : low;
    const USHORT start = anchorLine == firstLine ? anchor : other;
    const USHORT end = start == low ? high : low;
    if (line == firstLine)
    {
        return place >= start;
    }
    return line < lastLine || place <= end;
}

void CHTMLGrid::MoveCurrentBy(bool bRows, bool bForward)
{
    USHORT &current = bRows ? m_nCurRow : m_nCurCol;
    const USHORT count = bRows ? m_nRows : m_nCols;
    const USHORT free = FirstFree(bRows);
    if (count <= free)
    {
        return;
    }
    const int target = current == GRID_NONE ? free : current + (bForward ? 1 : -1);
    current = static_cast<USHORT>(std::clamp<int>(target, free, count - 1));
}
