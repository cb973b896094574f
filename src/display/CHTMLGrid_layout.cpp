// How large rows and columns are, what of them shows, and the update lock that puts such work off.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

#include <algorithm>

namespace
{
bool sameMargins(const RECT &a, const RECT &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

bool isMeasureOf(const GridMeasure &known, const tagCELLINFO &cell, USHORT width)
{
    return known.nHeight != 0 && known.nWidth == width && known.nIndent == cell.nIndent &&
           known.bSingleLine == cell.bSingleLine && sameMargins(known.rcMargins, cell.rcMargins);
}

/// Fixed lines higher than any screen leave no room for others, however high they are.
LONG lengthOf(const zb::GridSizes &sizes, USHORT count)
{
    constexpr LONGLONG longest = 0x3FFFFFFF;
    return static_cast<LONG>(std::min(zb::sumOfLines(sizes, 0, count), longest));
}
} // namespace

// --- Update lock -------------------------------------------------------------------------------------------------

void CHTMLGrid::BeginUpdate()
{
    if (m_nUpdateLock++ == 0)
    {
        SendMessageW(m_hWnd, WM_SETREDRAW, FALSE, 0);
    }
}

void CHTMLGrid::EndUpdate()
{
    if (m_nUpdateLock == 0 || --m_nUpdateLock > 0)
    {
        return;
    }
    m_uDeferred |= std::exchange(m_uCaused, 0);
    RunDeferredLayout();
    SendMessageW(m_hWnd, WM_SETREDRAW, TRUE, 0);
    if ((m_uDeferred & DeferRepaint) != 0 || m_uCaused != 0)
    {
        RepaintAll();
    }
    m_uDeferred = 0;
}

void CHTMLGrid::RunDeferredLayout()
{
    const auto due = [this](UINT work) { return (m_uDeferred & work) != 0; };
    if (due(DeferRecalc))
    {
        RecalcGrid();
    }
    if (due(DeferScrollToRow))
    {
        EndUpdateScrollToRow(m_nPendingRow);
    }
    if (due(DeferSetupBars))
    {
        SetupScrollBars();
    }
    if (due(DeferScreenCells))
    {
        RecalcScreenCells(false, false);
    }
    if (due(DeferHorzBar))
    {
        UpdateScrollBars(SB_HORZ);
    }
    if (due(DeferVertBar))
    {
        UpdateScrollBars(SB_VERT);
    }
}

/// Others act on the way, a parent that is asked for a cell or an owner that draws it, and may change what they like.
/// That waits: a layout inside of a layout would ask for the next cell inside of this request, and so on, and a paint
/// inside of a paint would come to the screen before the older one. An open update takes it along, or the next paint.
void CHTMLGrid::WhileOthersAct(const std::function<void()> &act)
{
    struct Turn
    {
        CHTMLGrid &grid;
        const UINT lock = grid.m_nUpdateLock++;
        const UINT before = std::exchange(grid.m_uDeferred, 0);
        ~Turn()
        {
            grid.m_nUpdateLock = lock;
            const UINT caused = std::exchange(grid.m_uDeferred, before);
            (lock > 0 ? grid.m_uDeferred : grid.m_uCaused) |= caused;
        }
    };
    {
        const Turn turn{*this};
        act();
    }
    AskForPaintOfChanges();
}

/// A parent that changes something each time it is asked, and leaves the cell out each time, would be asked for ever.
void CHTMLGrid::AskForPaintOfChanges()
{
    if (m_uCaused != 0 && m_nUpdateLock == 0 && m_nCausedPaints < mostCausedPaints)
    {
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

void CHTMLGrid::TakeUpChanges()
{
    if (m_uCaused == 0 || m_nUpdateLock > 0)
    {
        return;
    }
    const UINT before = std::exchange(m_uDeferred, std::exchange(m_uCaused, 0));
    RunDeferredLayout();
    m_uDeferred = before;
    m_nPaintMode = PaintAll;
    DestroyBitmapBuffer();
}

// --- Sizes -------------------------------------------------------------------------------------------------------

zb::GridSizes &CHTMLGrid::Sizes(bool bRows)
{
    return bRows ? m_RowHeights : m_ColWidths;
}

USHORT CHTMLGrid::FirstFree(bool bRows) const
{
    return bRows ? m_nFixedRows : m_nFixedCols;
}

/// Room for what scrolls.
LONG CHTMLGrid::AvailableFor(bool bRows) const
{
    return bRows ? m_nClientHeight - m_nFixedHeight : m_nClientWidth - m_nFixedWidth;
}

void CHTMLGrid::SetColWidth(USHORT nCol, USHORT nWidth)
{
    if (nCol < m_nCols)
    {
        m_ColWidthsAsked[nCol] = nWidth;
        RefreshAll();
    }
}

USHORT CHTMLGrid::GetColWidth(USHORT nCol) const
{
    return nCol < m_ColWidths.size() ? m_ColWidths[nCol] : 0;
}

void CHTMLGrid::SetRowHeight(USHORT nRow, USHORT nHeight)
{
    if (nRow < m_nRows)
    {
        m_RowHeightsAsked[nRow] = nHeight;
        RefreshAll();
    }
}

void CHTMLGrid::SetMinRowHeight(USHORT nHeight)
{
    m_nMinRowHeight = nHeight;
    m_nScrollRegion = nHeight;
    RefreshAll();
}

USHORT CHTMLGrid::GetMinRowHeight() const
{
    return m_nMinRowHeight;
}

void CHTMLGrid::SetRowHeightFixed(bool bFixed)
{
    m_bRowHeightFixed = bFixed;
    RefreshAll();
}

bool CHTMLGrid::GetRowHeightFixed() const
{
    return m_bRowHeightFixed;
}

DWORD CHTMLGrid::GetTotalHeight() const
{
    return static_cast<DWORD>(zb::sumOfLines(m_RowHeights, 0, m_RowHeights.size()));
}

/// What its markup takes in a column of that width, kept until something about it changes.
USHORT CHTMLGrid::MeasureCell(tagCELLINFO &cell, USHORT nWidth)
{
    for (const GridMeasure &known : cell.Measured)
    {
        if (isMeasureOf(known, cell, nWidth))
        {
            return known.nHeight;
        }
    }
    const RECT &margins = cell.rcMargins;
    RECT area = {margins.left, margins.top, nWidth - margins.right + (cell.bSingleLine != 0 ? noWrapWidth : 0),
                 margins.top};
    const HDC context = GetDC(m_hWnd);
    MeasureHTML(context, &area, cell.nIndent, &cell);
    ReleaseDC(m_hWnd, context);
    const LONG height = std::clamp<LONG>(area.bottom + margins.bottom, 1, GRID_NONE - 1);
    cell.Measured[1] = cell.Measured[0];
    cell.Measured[0] = {static_cast<USHORT>(height), nWidth, margins, cell.nIndent, cell.bSingleLine};
    return static_cast<USHORT>(height);
}

USHORT CHTMLGrid::GetCellHeight(USHORT nRow, USHORT nCol)
{
    tagCELLINFO *cell = GetCell(nRow, nCol);
    if (cell == nullptr)
    {
        return m_nMinRowHeight;
    }
    // After the request, since an answer may bring a height.
    if (m_RowHeightsAsked[nRow] != GRID_NONE)
    {
        return m_RowHeightsAsked[nRow];
    }
    return m_bRowHeightFixed ? m_nMinRowHeight : std::max(m_nMinRowHeight, MeasureCell(*cell, m_ColWidths[nCol]));
}

USHORT CHTMLGrid::GetRowHeight(USHORT nRow, bool bForce)
{
    if (nRow >= m_nRows)
    {
        return 0;
    }
    if (!m_bOnDemand)
    {
        return m_RowHeights[nRow];
    }
    USHORT height = m_RowHeights[nRow];
    for (USHORT col = 0; col < m_nCols; ++col)
    {
        if (tagCELLINFO *cell = bForce ? FindCell(nRow, col) : nullptr)
        {
            cell->Measured = {};
        }
        height = std::max(height, GetCellHeight(nRow, col));
    }
    if (nRow < m_nRows && height > m_RowHeights[nRow])
    {
        m_dwTotalHeight += static_cast<DWORD>(height - m_RowHeights[nRow]);
        m_RowHeights[nRow] = height;
        m_nFixedHeight = nRow < m_nFixedRows ? lengthOf(m_RowHeights, m_nFixedRows) : m_nFixedHeight;
    }
    return height;
}

DWORD CHTMLGrid::RecalcCols(LONG nWidth)
{
    m_ColWidths = zb::sharedWidths(m_ColWidthsAsked, nWidth);
    m_nFixedWidth = lengthOf(m_ColWidths, m_nFixedCols);
    m_dwTotalWidth = static_cast<DWORD>(zb::sumOfLines(m_ColWidths, 0, m_nCols));
    return m_dwTotalWidth;
}

/// Cells that were never asked for count with the least height, so only those that are there cost anything.
DWORD CHTMLGrid::RecalcRows()
{
    m_RowHeights.assign(m_nRows, m_nMinRowHeight);
    for (auto at = m_Cells.begin(); !m_bRowHeightFixed && at != m_Cells.end(); ++at)
    {
        const USHORT row = HIWORD(at->first);
        if (m_RowHeightsAsked[row] == GRID_NONE)
        {
            m_RowHeights[row] = std::max(m_RowHeights[row], MeasureCell(*at->second, m_ColWidths[LOWORD(at->first)]));
        }
    }
    for (USHORT row = 0; row < m_nRows; ++row)
    {
        m_RowHeights[row] = m_RowHeightsAsked[row] == GRID_NONE ? m_RowHeights[row] : m_RowHeightsAsked[row];
    }
    m_nFixedHeight = lengthOf(m_RowHeights, m_nFixedRows);
    m_dwTotalHeight = GetTotalHeight();
    return m_dwTotalHeight;
}

// --- The whole ---------------------------------------------------------------------------------------------------

/// The client area as if it had no bars. The two metrics are crossed; they are equal on every screen. Kept.
LONG CHTMLGrid::ClientWidthWithoutBars(RECT &client) const
{
    RECT window{};
    GetClientRect(m_hWnd, &client);
    GetWindowRect(m_hWnd, &window);
    POINT corner = {client.right, client.bottom};
    ClientToScreen(m_hWnd, &corner);
    client.right += window.right - corner.x >= GetSystemMetrics(SM_CXVSCROLL) ? GetSystemMetrics(SM_CYHSCROLL) : 0;
    client.bottom += window.bottom - corner.y >= GetSystemMetrics(SM_CYHSCROLL) ? GetSystemMetrics(SM_CXVSCROLL) : 0;
    return client.right;
}

void CHTMLGrid::RecalcGrid()
{
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferRecalc;
        return;
    }
    RECT client{};
    m_nClientWidth = ClientWidthWithoutBars(client);
    m_nClientHeight = client.bottom;
    m_bHBarOn = false;
    m_bVBarOn = false;
    const bool colsFit = static_cast<LONGLONG>(RecalcCols(m_nClientWidth)) <= m_nClientWidth;
    const bool rowsFit = static_cast<LONGLONG>(RecalcRows()) <= m_nClientHeight;
    const bool fits = colsFit && rowsFit;
    if ((m_bShowVBar || m_bShowHBar) && !fits && m_nRows > 0)
    {
        LayoutWithBars();
    }
    RecalcMaxScrolls();
}

void CHTMLGrid::LayoutWithBars()
{
    const auto rowsOverflow = [this] { return static_cast<LONGLONG>(m_dwTotalHeight) > m_nClientHeight; };
    const auto takeVertical = [this]
    {
        m_bVBarOn = m_bShowVBar;
        m_nClientWidth -= m_bShowVBar ? GetSystemMetrics(SM_CXVSCROLL) : 0;
        RecalcCols(m_nClientWidth);
        RecalcRows();
    };
    const auto takeHorizontal = [this]
    {
        m_bHBarOn = m_bShowHBar;
        m_nClientHeight -= m_bShowHBar ? GetSystemMetrics(SM_CYHSCROLL) : 0;
        RecalcRows();
    };
    if (rowsOverflow())
    {
        takeVertical();
        if (static_cast<LONGLONG>(m_dwTotalWidth) > m_nClientWidth)
        {
            takeHorizontal();
        }
        return;
    }
    takeHorizontal();
    if (rowsOverflow())
    {
        takeVertical();
    }
}

void CHTMLGrid::RecalcMaxScrolls()
{
    m_nMaxTopRow = zb::largestFirstLine(m_RowHeights, m_nFixedRows, AvailableFor(true));
    m_nMaxLeftCol = zb::largestFirstLine(m_ColWidths, m_nFixedCols, AvailableFor(false));
}

// --- What shows --------------------------------------------------------------------------------------------------

void CHTMLGrid::RecalcScreenRows(bool bForce, bool bKeepTop, bool &bEnd)
{
    const auto last = static_cast<USHORT>(m_nRows == 0 ? 0 : m_nRows - 1);
    m_nTopRow = std::max(std::min(m_nTopRow, last), m_nFixedRows);
    const USHORT largest = std::max(m_nMaxTopRow, m_nFixedRows);
    if (!bKeepTop && m_nTopRow > largest)
    {
        m_nTopRow = largest;
        bEnd = true;
    }
    m_ScreenRows = zb::viewOfLines(m_nRows, m_nFixedRows, m_nTopRow, m_nClientHeight,
                                   [this, bForce](USHORT row) { return GetRowHeight(row, bForce); });
}

void CHTMLGrid::RecalcScreenCols()
{
    const auto last = std::max(m_nMaxLeftCol, m_nFixedCols);
    m_nLeftCol = std::max(std::min(m_nLeftCol, last), m_nFixedCols);
    m_ScreenCols = zb::viewOfLines(m_nCols, m_nFixedCols, m_nLeftCol, m_nClientWidth,
                                   [this](USHORT col) { return m_ColWidths[col]; });
}

void CHTMLGrid::RecalcScreenCells(bool bForce, bool bKeepTop)
{
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferScreenCells;
        return;
    }
    bool end = false;
    RecalcScreenRows(bForce, bKeepTop, end);
    RecalcScreenCols();
    if (!m_bOnDemand)
    {
        return;
    }
    if (!m_bVBarOn && m_bShowVBar && static_cast<LONGLONG>(m_dwTotalHeight) > m_nClientHeight)
    {
        // What was seen turned out higher than the area, so there must be a bar after all.
        RecalcGrid();
        SetupScrollBars();
        RecalcScreenRows(false, bKeepTop, end);
        RecalcScreenCols();
    }
    // Heights have become known: a walk that ended at the end of the list may have to end further down.
    RecalcMaxScrolls();
    for (int again = 0; end && !bKeepTop && m_nTopRow < m_nMaxTopRow && again < m_nRows; ++again)
    {
        m_nTopRow = m_nMaxTopRow;
        RecalcScreenRows(false, false, end);
        const USHORT before = m_nMaxTopRow;
        RecalcMaxScrolls();
        if (m_nMaxTopRow == before)
        {
            break;
        }
    }
    RefreshVertRange();
}

bool CHTMLGrid::GetCellFromPoint(POINT point, USHORT &nCol, USHORT &nRow) const
{
    return GetCellFromPoint(point.x, point.y, nCol, nRow);
}

bool CHTMLGrid::GetCellFromPoint(int x, int y, USHORT &nCol, USHORT &nRow) const
{
    nRow = m_ScreenRows.lineAt(y);
    nCol = m_ScreenCols.lineAt(x);
    return nRow != GRID_NONE && nCol != GRID_NONE;
}

/// Left top of a cell that is fixed or not before the first one shown.
POINT CHTMLGrid::PlaceOf(USHORT nCol, USHORT nRow) const
{
    const LONGLONG x = nCol < m_nFixedCols ? zb::sumOfLines(m_ColWidths, 0, nCol)
                                           : m_nFixedWidth + zb::sumOfLines(m_ColWidths, m_nLeftCol, nCol);
    const LONGLONG y = nRow < m_nFixedRows ? zb::sumOfLines(m_RowHeights, 0, nRow)
                                           : m_nFixedHeight + zb::sumOfLines(m_RowHeights, m_nTopRow, nRow);
    return {static_cast<LONG>(x), static_cast<LONG>(y)};
}

bool CHTMLGrid::IsCellVisible(USHORT nCol, USHORT nRow, bool bPartial) const
{
    if (nRow >= m_nRows || nCol >= m_nCols)
    {
        return false;
    }
    if (nRow < m_nFixedRows)
    {
        return true;
    }
    const USHORT bottom = m_ScreenRows.last;
    if (nRow < m_nTopRow || nRow > bottom)
    {
        return false;
    }
    return nRow < bottom || bPartial == m_ScreenRows.partial || m_nTopRow == bottom;
}

bool CHTMLGrid::GetCellRect(USHORT nCol, USHORT nRow, RECT &rect)
{
    rect = {};
    const bool hiddenLeft = nCol >= m_nFixedCols && nCol < m_nLeftCol;
    if (hiddenLeft || (!IsCellVisible(nCol, nRow, true) && !IsCellVisible(nCol, nRow, false)))
    {
        return false;
    }
    const POINT place = PlaceOf(nCol, nRow);
    rect = {place.x, place.y, place.x + m_ColWidths[nCol], place.y + m_RowHeights[nRow]};
    return true;
}

bool CHTMLGrid::GetPointFromCell(USHORT nCol, USHORT nRow, POINT &point)
{
    RECT rect{};
    const bool shown = GetCellRect(nCol, nRow, rect);
    // The edge itself belongs to the cell before.
    point = shown ? POINT{rect.left + 1, rect.top + 1} : POINT{};
    return shown;
}
