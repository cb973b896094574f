// The grid's floaters: in which cells they are, who owns them, which one is under a point.
#include "display/CHTMLGrid.h"

#include <algorithm>
#include <cstdlib>

zb::GridColumnCells CHTMLGrid::ColumnCells(USHORT nCol) const
{
    return [this, nCol](USHORT row) { return FindCell(row, nCol); };
}

/// By any of its cells; null when it is not there.
tagFLOATERINFO *CHTMLGrid::FloaterAt(USHORT nCol, USHORT nRow, DWORD dwID) const
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    const auto found = cell == nullptr ? GridFloaterMap::const_iterator() : cell->Floaters.find(dwID);
    return cell == nullptr || found == cell->Floaters.end() ? nullptr : found->second;
}

std::unique_ptr<WCHAR, void (*)(void *)> CHTMLGrid::RequestFloaterText(DWORD dwID)
{
    WCHAR *text = nullptr;
    NMHDR header = {m_hWnd, dwID, GRID_GETFLOATERTEXT};
    SendMessageW(m_hParent, GRID_GETFLOATERTEXT, reinterpret_cast<WPARAM>(&text), reinterpret_cast<LPARAM>(&header));
    return {text, std::free};
}

/// Asks for those of a floater's rows that are not there, before anything of it is kept: the parent may change cells
/// and floaters meanwhile.
void CHTMLGrid::AskForCells(USHORT nCol, USHORT nRow, USHORT nRows)
{
    for (int row = nRow; row < std::min<int>(nRow + nRows, m_nRows); ++row)
    {
        GetCell(static_cast<USHORT>(row), nCol);
    }
}

/// Into the cells of its rows; rows without a cell are left out.
void CHTMLGrid::InsertFloater(USHORT nCol, USHORT nRow, tagFLOATERINFO &floater)
{
    for (int row = nRow; row < std::min<int>(nRow + floater.nRows, m_nRows); ++row)
    {
        const auto at = static_cast<USHORT>(row);
        if (tagCELLINFO *cell = FindCell(at, nCol))
        {
            const auto former = cell->Floaters.find(floater.dwID);
            if (former != cell->Floaters.end() && former->second != &floater)
            {
                DestroyFloater(nCol, at, *former->second);
            }
            cell->Floaters[floater.dwID] = &floater;
        }
        else
        {
            m_bFloaterGaps = true;
        }
    }
}

void CHTMLGrid::RemoveFloater(USHORT nCol, USHORT nFirst, const tagFLOATERINFO &floater)
{
    for (int row = nFirst; row < std::min<int>(nFirst + std::max<int>(floater.nRows, 1), m_nRows); ++row)
    {
        tagCELLINFO *cell = FindCell(static_cast<USHORT>(row), nCol);
        const auto found = cell == nullptr ? GridFloaterMap::iterator() : cell->Floaters.find(floater.dwID);
        if (cell != nullptr && found != cell->Floaters.end() && found->second == &floater)
        {
            cell->Floaters.erase(found);
        }
    }
}

/// Of one that is there no longer as it was: its cells work their slots out again.
void CHTMLGrid::InvalidateBlock(USHORT nCol, USHORT nRow)
{
    zb::GridRowSpan block{};
    zb::floaterBlockBounds(ColumnCells(nCol), nRow, m_nRows, block);
    for (int row = block.first; row <= block.last; ++row)
    {
        if (tagCELLINFO *cell = FindCell(static_cast<USHORT>(row), nCol))
        {
            cell->bFloatersValid = 0;
        }
    }
}

/// From all cells of its rows, of which nRow is one.
void CHTMLGrid::DestroyFloater(USHORT nCol, USHORT nRow, tagFLOATERINFO &floater)
{
    InvalidateBlock(nCol, nRow);
    const auto rows = zb::floaterBounds(ColumnCells(nCol), nRow, floater, m_nRows);
    RemoveFloater(nCol, rows.first, floater);
    if (m_pMovingFloater == &floater)
    {
        m_pMovingFloater = nullptr;
    }
    --m_nFloaters;
    floater.pOwner->OwnFloaters.erase(floater.dwID);
}

/// Those that begin in the cell; those from above stay.
void CHTMLGrid::ClearCellFloaters(USHORT nRow, USHORT nCol)
{
    tagCELLINFO *cell = FindCell(nRow, nCol);
    while (cell != nullptr && !cell->OwnFloaters.empty())
    {
        DestroyFloater(nCol, nRow, *cell->OwnFloaters.begin()->second);
    }
}

void CHTMLGrid::ValidateCellFloaters(USHORT nRow, USHORT nCol)
{
    zb::assignFloaterSlots(ColumnCells(nCol), nRow, m_nRows);
}

void CHTMLGrid::RepaintFloaters()
{
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferRepaint | DeferScreenCells;
        return;
    }
    RepaintAll();
}

bool CHTMLGrid::AddFloater(USHORT nCol, USHORT nRow, DWORD dwID, USHORT nRows, USHORT nStripLength, USHORT nStripOffset,
                           COLORREF crStrip, bool bLocked)
{
    const bool any = GetCell(nRow, nCol) != nullptr;
    const auto text = any ? RequestFloaterText(dwID) : decltype(RequestFloaterText(0)){nullptr, std::free};
    if (text == nullptr)
    {
        return false;
    }
    auto floater = std::make_unique<tagFLOATERINFO>();
    floater->bLocked = bLocked ? 1 : 0;
    floater->nRows = std::max<USHORT>(nRows, 1);
    floater->nStripLength = nStripLength;
    floater->nStripOffset = nStripOffset;
    floater->crStrip = crStrip;
    floater->dwID = dwID;
    floater->Parser.SetFontQuality(m_bFontQuality);
    floater->Parser.SetHTML(text.get());
    floater->Parser.ParseHTML(m_hWnd);
    AskForCells(nCol, nRow, floater->nRows);
    tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr)
    {
        return false;
    }
    if (tagFLOATERINFO *former = FloaterAt(nCol, nRow, dwID))
    {
        DestroyFloater(nCol, nRow, *former);
    }
    ++m_nFloaters;
    floater->pOwner = cell;
    tagFLOATERINFO &added = *(cell->OwnFloaters[dwID] = std::move(floater));
    InsertFloater(nCol, nRow, added);
    InvalidateBlock(nCol, nRow);
    RepaintFloaters();
    return true;
}

bool CHTMLGrid::MoveFloater(USHORT nFromCol, USHORT nFromRow, USHORT nToCol, USHORT nToRow, DWORD dwID)
{
    const tagFLOATERINFO *known = FloaterAt(nFromCol, nFromRow, dwID);
    if (known == nullptr)
    {
        return false;
    }
    AskForCells(nToCol, nToRow, known->nRows);
    tagFLOATERINFO *floater = FloaterAt(nFromCol, nFromRow, dwID);
    tagCELLINFO *target = FindCell(nToRow, nToCol);
    if (floater == nullptr || target == nullptr)
    {
        return false;
    }
    InvalidateBlock(nFromCol, nFromRow);
    const auto rows = zb::floaterBounds(ColumnCells(nFromCol), nFromRow, *floater, m_nRows);
    RemoveFloater(nFromCol, rows.first, *floater);
    if (tagFLOATERINFO *other = FloaterAt(nToCol, nToRow, dwID))
    {
        DestroyFloater(nToCol, nToRow, *other);
    }
    auto own = floater->pOwner->OwnFloaters.extract(dwID);
    floater->pOwner = target;
    target->OwnFloaters.insert(std::move(own));
    InsertFloater(nToCol, nToRow, *floater);
    InvalidateBlock(nToCol, nToRow);
    RepaintFloaters();
    return true;
}

void CHTMLGrid::DeleteFloater(USHORT nCol, USHORT nRow, DWORD dwID)
{
    if (tagFLOATERINFO *floater = FloaterAt(nCol, nRow, dwID))
    {
        DestroyFloater(nCol, nRow, *floater);
        RepaintFloaters();
    }
}

USHORT CHTMLGrid::FloaterCount(USHORT nCol, USHORT nRow) const
{
    const tagCELLINFO *cell = FindCell(nRow, nCol);
    return cell == nullptr ? 0 : static_cast<USHORT>(cell->Floaters.size());
}

bool CHTMLGrid::CellHasFloaters(USHORT nCol, USHORT nRow) const
{
    return FloaterCount(nCol, nRow) != 0;
}

DWORD CHTMLGrid::GetFloaterFromPoint(POINT point, USHORT &nCol, USHORT &nRow, POINT &offset, bool &bStripHit)
{
    return GetFloaterFromPoint(point.x, point.y, nCol, nRow, offset, bStripHit);
}

DWORD CHTMLGrid::GetFloaterFromPoint(int x, int y, USHORT &nCol, USHORT &nRow, POINT &offset, bool &bStripHit)
{
    offset = {0, 0};
    bStripHit = false;
    if (!GetCellFromPoint(x, y, nCol, nRow))
    {
        return 0;
    }
    tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr || cell->Floaters.empty())
    {
        return 0;
    }
    if (cell->bFloatersValid == 0)
    {
        ValidateCellFloaters(nRow, nCol);
    }
    const POINT place = PlaceOf(nCol, nRow);
    const LONG inside = x - place.x;
    const LONG width = GetColWidth(nCol) / std::max<LONG>(cell->Floaters.begin()->second->nSlots, 1);
    for (const auto &[id, floater] : cell->Floaters)
    {
        const LONG left = width * floater->nSlot;
        if (left <= inside && inside < left + width * floater->nSlotWidth)
        {
            const auto rows = zb::floaterBounds(ColumnCells(nCol), nRow, *floater, m_nRows);
            const LONGLONG above = zb::sumOfLines(m_RowHeights, rows.first, nRow);
            offset = {inside - left, static_cast<LONG>(y - place.y + above)};
            bStripHit = !m_bFloaterStrip || inside - left < m_nStripWidth;
            return id;
        }
    }
    return 0;
}
