// The grid's cells: their making, requests, texts, and the deletion of rows and columns.
#include "display/CHTMLGrid.h"

#include <algorithm>

namespace
{
void eraseLines(zb::GridSizes &sizes, USHORT first, USHORT count)
{
    sizes.erase(sizes.begin() + first, sizes.begin() + first + count);
}

/// Places are reckoned with them, so they are held at sizes that no screen has.
RECT heldMargins(const RECT &margins)
{
    const auto held = [](LONG side)
    {
        constexpr LONG most = 32000;
        return std::clamp(side, -most, most);
    };
    return {held(margins.left), held(margins.top), held(margins.right), held(margins.bottom)};
}
} // namespace

DWORD CHTMLGrid::CellKey(USHORT nRow, USHORT nCol)
{
    return MAKELONG(nCol, nRow);
}

tagCELLINFO *CHTMLGrid::FindCell(USHORT nRow, USHORT nCol) const
{
    const auto found = m_Cells.find(CellKey(nRow, nCol));
    return found == m_Cells.end() ? nullptr : found->second.get();
}

std::unique_ptr<tagCELLINFO> CHTMLGrid::NewCell() const
{
    auto cell = std::make_unique<tagCELLINFO>();
    cell->SetFontQuality(m_bFontQuality);
    return cell;
}

/// Null when the parent has none.
std::unique_ptr<tagCELLINFO> CHTMLGrid::RequestCell(USHORT nRow, USHORT nCol)
{
    GRIDCELLREQUEST request{};
    request.hdr = {m_hWnd, CellKey(nRow, nCol), GRID_GETCELL};
    request.dwRowUserID = m_RowUserIDs[nRow];
    request.nColWidth = GRID_NONE;
    request.nRowHeight = GRID_NONE;
    request.nFontQuality = m_bFontQuality;
    WhileOthersAct([&] { SendMessageW(m_hParent, GRID_GETCELL, 0, reinterpret_cast<LPARAM>(&request)); });
    if (request.pszHTML == nullptr)
    {
        return nullptr;
    }
    auto cell = std::make_unique<tagCELLINFO>();
    cell->dwData = request.dwData;
    cell->bSingleLine = request.bSingleLine != 0 ? 1 : 0;
    cell->rcMargins = heldMargins(request.rcMargins);
    cell->nIndent = request.nIndent;
    cell->SetFontQuality(static_cast<BYTE>(request.nFontQuality));
    cell->SetHTML(request.pszHTML);
    cell->ParseHTML(m_hWnd);
    if (request.nColWidth != GRID_NONE && nCol < m_nCols)
    {
        m_ColWidthsAsked[nCol] = request.nColWidth;
    }
    if (request.nRowHeight != GRID_NONE && nRow < m_nRows)
    {
        m_RowHeightsAsked[nRow] = request.nRowHeight;
    }
    return cell;
}

tagCELLINFO *CHTMLGrid::GetCell(USHORT nRow, USHORT nCol)
{
    if (nRow >= m_nRows || nCol >= m_nCols)
    {
        return nullptr;
    }
    if (tagCELLINFO *cell = FindCell(nRow, nCol))
    {
        return cell;
    }
    // What the parent does meanwhile may come here again: the cell is not there yet, and nobody asks twice.
    if (!m_AskedNow.insert(CellKey(nRow, nCol)).second)
    {
        return nullptr;
    }
    auto cell = RequestCell(nRow, nCol);
    m_AskedNow.erase(CellKey(nRow, nCol));
    if (nRow >= m_nRows || nCol >= m_nCols)
    {
        return nullptr;
    }
    return cell == nullptr ? FindCell(nRow, nCol) : StoreCell(nRow, nCol, std::move(cell));
}

/// A parent that sets the cell's text while it is asked has made it already; the answer wins, floaters stay.
tagCELLINFO *CHTMLGrid::StoreCell(USHORT nRow, USHORT nCol, std::unique_ptr<tagCELLINFO> cell)
{
    std::unique_ptr<tagCELLINFO> &place = m_Cells[CellKey(nRow, nCol)];
    if (place != nullptr)
    {
        cell->Floaters = std::move(place->Floaters);
        cell->OwnFloaters = std::move(place->OwnFloaters);
        for (const auto &[id, floater] : cell->OwnFloaters)
        {
            floater->pOwner = cell.get();
        }
    }
    place = std::move(cell);
    return place.get();
}

// --- Dimensions --------------------------------------------------------------------------------------------------

void CHTMLGrid::CreateCells(USHORT nRows, USHORT nCols)
{
    if (nRows == 0 || nCols == 0)
    {
        return;
    }
    m_nRows = nRows;
    m_nCols = nCols;
    m_ColWidthsAsked.assign(nCols, GRID_NONE);
    m_ColWidths.assign(nCols, 0);
    m_RowHeightsAsked.assign(nRows, GRID_NONE);
    m_RowHeights.assign(nRows, 0);
    m_RowUserIDs.assign(nRows, 0);
    for (USHORT row = 0; !m_bOnDemand && row < nRows; ++row)
    {
        for (USHORT col = 0; col < nCols; ++col)
        {
            m_Cells.emplace_hint(m_Cells.end(), CellKey(row, col), NewCell());
        }
    }
}

void CHTMLGrid::DestroyCells()
{
    // Of a grid that has lost its last row the columns are still there.
    if (m_nRows == 0 && m_nCols == 0)
    {
        return;
    }
    m_nCurCol = GRID_NONE;
    m_nCurRow = GRID_NONE;
    m_Selection = {};
    m_pMovingFloater = nullptr;
    m_Cells.clear();
    m_nFloaters = 0;
    m_bFloaterGaps = false;
    m_nRows = m_nCols = m_nFixedRows = m_nFixedCols = 0;
    m_nTopRow = m_nLeftCol = m_nMaxTopRow = m_nMaxLeftCol = 0;
    m_dwTotalHeight = m_dwTotalWidth = 0;
    m_nFixedHeight = m_nFixedWidth = 0;
    for (zb::GridSizes *sizes : {&m_ColWidthsAsked, &m_ColWidths, &m_RowHeightsAsked, &m_RowHeights})
    {
        sizes->clear();
    }
    m_RowUserIDs.clear();
    m_ScreenRows = {};
    m_ScreenCols = {};
}

void CHTMLGrid::SetDimensions(USHORT nRows, USHORT nCols)
{
    if (!CancelEdit())
    {
        return;
    }
    DestroyCells();
    CreateCells(nRows, nCols);
    RefreshAll();
}

USHORT CHTMLGrid::GetRowCount() const
{
    return m_nRows;
}

USHORT CHTMLGrid::GetColCount() const
{
    return m_nCols;
}

void CHTMLGrid::MoveToFirstFreeCell()
{
    m_nTopRow = std::max(m_nTopRow, m_nFixedRows);
    m_nLeftCol = std::max(m_nLeftCol, m_nFixedCols);
    const bool any = m_nFixedRows < m_nRows && m_nFixedCols < m_nCols;
    m_nCurRow = any ? m_nFixedRows : GRID_NONE;
    m_nCurCol = any ? m_nFixedCols : GRID_NONE;
    const USHORT right = any && m_bRowSelect ? static_cast<USHORT>(m_nCols - 1) : m_nCurCol;
    m_Selection = {{m_nCurCol, m_nCurRow, right, m_nCurRow}, m_nCurCol, m_nCurRow};
    RefreshAll();
}

/// A view of the beginning stays one.
void CHTMLGrid::SetFixedRowCount(USHORT nRows)
{
    const bool atTop = m_nTopRow == m_nFixedRows;
    m_nFixedRows = std::min(nRows, m_nRows);
    m_nTopRow = atTop ? m_nFixedRows : m_nTopRow;
    MoveToFirstFreeCell();
}

void CHTMLGrid::SetFixedColCount(USHORT nCols)
{
    const bool atLeft = m_nLeftCol == m_nFixedCols;
    m_nFixedCols = std::min(nCols, m_nCols);
    m_nLeftCol = atLeft ? m_nFixedCols : m_nLeftCol;
    MoveToFirstFreeCell();
}

USHORT CHTMLGrid::GetFixedRowCount() const
{
    return m_nFixedRows;
}

USHORT CHTMLGrid::GetFixedColCount() const
{
    return m_nFixedCols;
}

// --- Content -----------------------------------------------------------------------------------------------------

void CHTMLGrid::RefreshAll()
{
    RecalcGrid();
    SetupScrollBars();
    RecalcScreenCells(false, false);
    UpdateScrollBars(SB_BOTH);
    RepaintAll();
}

/// After a change of what is in the cell: a row as high as its text may move all others.
void CHTMLGrid::RefreshCell(USHORT nRow, USHORT nCol)
{
    if (nRow >= m_nRows || (m_RowHeightsAsked[nRow] == GRID_NONE && !m_bRowHeightFixed))
    {
        RefreshAll();
        return;
    }
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferRepaint;
        return;
    }
    m_rcUpdatedCells = {nCol, nRow, nCol, nRow};
    SetPaintMode(PaintCell);
    Invalidate(nullptr);
}

void CHTMLGrid::SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML)
{
    SetCellText(nCol, nRow, pszHTML, m_bFontQuality, RECT{});
}

void CHTMLGrid::SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, BYTE bQuality)
{
    SetCellText(nCol, nRow, pszHTML, bQuality, RECT{});
}

void CHTMLGrid::SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, const RECT &margins)
{
    SetCellText(nCol, nRow, pszHTML, m_bFontQuality, margins);
}

void CHTMLGrid::SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, BYTE bQuality, const RECT &margins)
{
    if (pszHTML == nullptr || nRow >= m_nRows || nCol >= m_nCols)
    {
        return;
    }
    tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr && !m_bOnDemand)
    {
        return;
    }
    if (cell == nullptr)
    {
        cell = (m_Cells[CellKey(nRow, nCol)] = NewCell()).get();
    }
    cell->rcMargins = heldMargins(margins);
    cell->SetFontQuality(bQuality);
    cell->SetHTML(pszHTML);
    cell->ParseHTML(m_hWnd);
    cell->Measured = {};
    RefreshCell(nRow, nCol);
}

/// First rows and ids of the floaters that lie over the cell and begin above it.
std::vector<std::pair<USHORT, DWORD>> CHTMLGrid::FloatersFromAbove(USHORT nRow, USHORT nCol) const
{
    std::vector<std::pair<USHORT, DWORD>> found;
    if (const tagCELLINFO *cell = FindCell(nRow, nCol))
    {
        for (const auto &[id, floater] : cell->Floaters)
        {
            found.emplace_back(zb::floaterBounds(ColumnCells(nCol), nRow, *floater, m_nRows).first, id);
        }
    }
    return found;
}

void CHTMLGrid::UpdateCellText(USHORT nCol, USHORT nRow)
{
    if (!m_bOnDemand || nRow >= m_nRows || nCol >= m_nCols)
    {
        return;
    }
    ClearCellFloaters(nRow, nCol);
    const auto fromAbove = FloatersFromAbove(nRow, nCol);
    m_Cells.erase(CellKey(nRow, nCol));
    tagCELLINFO *renewed = GetCell(nRow, nCol);
    for (const auto &[first, id] : fromAbove)
    {
        const tagCELLINFO *owner = FindCell(first, nCol);
        const auto found = owner == nullptr ? OwnFloaterMap::const_iterator() : owner->OwnFloaters.find(id);
        if (owner == nullptr || found == owner->OwnFloaters.end())
        {
            continue; // the parent has taken it away while it was asked
        }
        if (renewed != nullptr)
        {
            renewed->Floaters[id] = found->second.get();
        }
        m_bFloaterGaps = m_bFloaterGaps || renewed == nullptr;
    }
    RefreshCell(nRow, nCol);
}

void CHTMLGrid::SetCellData(USHORT nCol, USHORT nRow, DWORD_PTR dwData)
{
    if (tagCELLINFO *cell = FindCell(nRow, nCol))
    {
        cell->dwData = dwData;
    }
}

DWORD_PTR CHTMLGrid::GetCellData(USHORT nCol, USHORT nRow) const
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    return cell == nullptr ? 0 : cell->dwData;
}

void CHTMLGrid::SetRowUserID(USHORT nRow, DWORD dwID)
{
    if (nRow < m_nRows)
    {
        m_RowUserIDs[nRow] = dwID;
    }
}

void CHTMLGrid::SetCellSingleLine(USHORT nCol, USHORT nRow, bool bSingle)
{
    if (tagCELLINFO *cell = FindCell(nRow, nCol))
    {
        cell->bSingleLine = bSingle ? 1 : 0;
        RefreshCell(nRow, nCol);
    }
}

WCHAR *CHTMLGrid::GetCellHotSpot(USHORT nCol, USHORT nRow, USHORT nIndex) const
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr || nIndex >= cell->HotSpots.size())
    {
        return nullptr;
    }
    const std::u16string_view key = cell->HotSpots[nIndex].szKey;
    auto text = std::make_unique<WCHAR[]>(key.size() + 1);
    key.copy(text.get(), key.size());
    return text.release();
}

// --- Deletion ----------------------------------------------------------------------------------------------------

/// Takes the cells of the lines out and moves those behind them up, in one pass over the map.
void CHTMLGrid::ShiftCells(bool bRows, USHORT nFirst, USHORT nCount)
{
    std::map<DWORD, std::unique_ptr<tagCELLINFO>> kept;
    for (auto &[key, cell] : m_Cells)
    {
        USHORT row = HIWORD(key);
        USHORT col = LOWORD(key);
        USHORT &line = bRows ? row : col;
        if (line >= nFirst && line < nFirst + nCount)
        {
            continue;
        }
        line = static_cast<USHORT>(line < nFirst ? line : line - nCount);
        kept.emplace_hint(kept.end(), CellKey(row, col), std::move(cell));
    }
    m_Cells = std::move(kept);
}

/// Floaters that begin above rows that go and reach into them lose those rows.
void CHTMLGrid::ShortenFloatersOver(USHORT nFirst, USHORT nCount)
{
    const int end = nFirst + nCount;
    for (auto at = m_Cells.begin(); at != m_Cells.end() && HIWORD(at->first) < nFirst; ++at)
    {
        for (const auto &[id, floater] : at->second->OwnFloaters)
        {
            const int lost = std::min(HIWORD(at->first) + floater->nRows, end) - nFirst;
            floater->nRows = static_cast<USHORT>(floater->nRows - std::max(lost, 0));
        }
    }
}

void CHTMLGrid::EraseRows(USHORT nFirst, USHORT nCount)
{
    for (int round = 0; round < nCount; ++round)
    {
        // Compared with what the rounds before have left. Kept.
        m_nFixedRows = static_cast<USHORT>(m_nFixedRows - (nFirst + round < m_nFixedRows ? 1 : 0));
    }
    if (m_nFloaters > 0)
    {
        ShortenFloatersOver(nFirst, nCount);
        for (USHORT row = nFirst; row < nFirst + nCount; ++row)
        {
            for (USHORT col = 0; col < m_nCols; ++col)
            {
                ClearCellFloaters(row, col);
            }
        }
    }
    ShiftCells(true, nFirst, nCount);
    eraseLines(m_RowHeightsAsked, nFirst, nCount);
    eraseLines(m_RowHeights, nFirst, nCount);
    m_RowUserIDs.erase(m_RowUserIDs.begin() + nFirst, m_RowUserIDs.begin() + nFirst + nCount);
    m_nRows = static_cast<USHORT>(m_nRows - nCount);
    m_nFixedRows = std::min(m_nFixedRows, m_nRows);
    // Inside an update these are worked out at its end, and may be used before.
    m_nMaxTopRow = std::min(m_nMaxTopRow, m_nRows);
}

void CHTMLGrid::EraseCols(USHORT nFirst, USHORT nCount)
{
    for (int round = 0; round < nCount; ++round)
    {
        m_nFixedCols = static_cast<USHORT>(m_nFixedCols - (nFirst + round < m_nFixedCols ? 1 : 0));
    }
    for (USHORT row = 0; m_nFloaters > 0 && row < m_nRows; ++row)
    {
        for (USHORT col = nFirst; col < nFirst + nCount; ++col)
        {
            ClearCellFloaters(row, col);
        }
    }
    ShiftCells(false, nFirst, nCount);
    eraseLines(m_ColWidthsAsked, nFirst, nCount);
    eraseLines(m_ColWidths, nFirst, nCount);
    m_nCols = static_cast<USHORT>(m_nCols - nCount);
    m_nFixedCols = std::min(m_nFixedCols, m_nCols);
    m_nMaxLeftCol = std::min(m_nMaxLeftCol, m_nCols);
}

/// None stays none, and none is left where no line is.
void CHTMLGrid::ClampAfterDeletion()
{
    m_nTopRow = std::min(m_nTopRow, m_nMaxTopRow);
    m_nLeftCol = std::min(m_nLeftCol, m_nMaxLeftCol);
    const auto clamp = [](USHORT &line, USHORT count)
    {
        if (line != GRID_NONE)
        {
            line = count == 0 ? GRID_NONE : std::min(line, static_cast<USHORT>(count - 1));
        }
    };
    CellRange &cells = m_Selection.cells;
    for (USHORT *row : {&m_nCurRow, &cells.nTop, &cells.nBottom, &m_Selection.nAnchorRow})
    {
        clamp(*row, m_nRows);
    }
    for (USHORT *col : {&m_nCurCol, &cells.nLeft, &cells.nRight, &m_Selection.nAnchorCol})
    {
        clamp(*col, m_nCols);
    }
}

void CHTMLGrid::DeleteRows(USHORT nFirst, USHORT nCount)
{
    if (nFirst >= m_nRows || nCount == 0)
    {
        return;
    }
    // The text of a box over a cell is told with the numbers that the parent knows the cell by.
    if (!CancelEdit() || nFirst >= m_nRows)
    {
        return;
    }
    EraseRows(nFirst, std::min(nCount, static_cast<USHORT>(m_nRows - nFirst)));
    for (const auto &[key, cell] : m_Cells)
    {
        cell->bFloatersValid = 0;
    }
    m_ScreenRows = {};
    RecalcGrid();
    SetupScrollBars();
    ClampAfterDeletion();
    RecalcScreenCells(false, false);
    RecalcMaxScrolls();
    UpdateScrollBars(SB_BOTH);
    RepaintAll();
}

void CHTMLGrid::DeleteCols(USHORT nFirst, USHORT nCount)
{
    if (nFirst >= m_nCols || nCount == 0)
    {
        return;
    }
    // The text of a box over a cell is told with the numbers that the parent knows the cell by.
    if (!CancelEdit() || nFirst >= m_nCols)
    {
        return;
    }
    EraseCols(nFirst, std::min(nCount, static_cast<USHORT>(m_nCols - nFirst)));
    m_ScreenRows = {};
    m_ScreenCols = {};
    RecalcGrid();
    SetupScrollBars();
    ClampAfterDeletion();
    RecalcScreenCells(false, false);
    RecalcMaxScrolls();
    UpdateScrollBars(SB_BOTH);
    RepaintAll();
}
