// How the grid draws: cells, their lines, floaters, and the bitmap that holds it all between paints.
//
// A cell's text never leaves the rows of its cell, but may run on to the right, where later cells draw over it. So
// what stands in a row depends on that row alone, and rows and runs of cells can be painted by themselves.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"
#include "framework/MemoryBitmap.h"

#include <algorithm>

namespace
{
constexpr UINT stateSelected = 1;
constexpr int farRight = 32767;

/// Selected for as long as the object lives, and ended with it.
class SelectedTool
{
  public:
    SelectedTool(HDC hdc, HGDIOBJ tool) : m_hdc(hdc), m_tool(tool), m_former(SelectObject(hdc, tool))
    {
    }
    ~SelectedTool()
    {
        SelectObject(m_hdc, m_former);
        DeleteObject(m_tool);
    }
    SelectedTool(const SelectedTool &) = delete;
    SelectedTool &operator=(const SelectedTool &) = delete;

  private:
    HDC m_hdc;
    HGDIOBJ m_tool;
    HGDIOBJ m_former;
};

void fillWith(HDC hdc, const RECT &rect, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(hdc, &rect, brush);
    DeleteObject(brush);
}

void drawLine(HDC hdc, POINT from, POINT to)
{
    const POINT points[] = {from, to};
    Polyline(hdc, points, 2);
}
} // namespace

// --- When to paint -----------------------------------------------------------------------------------------------

void CHTMLGrid::DestroyBitmapBuffer()
{
    DeleteObject(std::exchange(m_hBackBuffer, nullptr));
}

void CHTMLGrid::Invalidate(const RECT *pRect)
{
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferRepaint;
        return;
    }
    if (m_nPaintMode != PaintSelection && m_nPaintMode != PaintScrolled)
    {
        DestroyBitmapBuffer();
    }
    InvalidateRect(m_hWnd, pRect, FALSE);
    if (pRect == nullptr)
    {
        UpdateWindow(m_hWnd);
    }
}

/// A part can be painted only onto what is up to date: where a former change still waits, all is painted.
void CHTMLGrid::SetPaintMode(PaintMode mode)
{
    if (m_nPaintMode != PaintAll || m_nUpdateLock > 0 || (m_bFloaterGaps && m_nFloaters > 0))
    {
        DestroyBitmapBuffer();
        mode = PaintAll;
    }
    m_nPaintMode = mode;
}

void CHTMLGrid::RepaintAll()
{
    m_nPaintMode = PaintAll;
    Invalidate(nullptr);
}

LRESULT CHTMLGrid::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true;
    return 1;
}

/// False when there was none: all of the new one has to be painted.
bool CHTMLGrid::MakeBackBuffer(HDC hdc)
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    if (m_hBackBuffer != nullptr && client.right == m_BufferSize.cx && client.bottom == m_BufferSize.cy)
    {
        return true;
    }
    DestroyBitmapBuffer();
    m_hBackBuffer = CreateCompatibleBitmap(hdc, client.right, client.bottom);
    m_BufferSize = {client.right, client.bottom};
    return false;
}

void CHTMLGrid::OnPaint(bool &handled)
{
    handled = true;
    TakeUpChanges();
    PAINTSTRUCT paint{};
    const HDC hdc = BeginPaint(m_hWnd, &paint);
    if (!MakeBackBuffer(hdc))
    {
        m_nPaintMode = PaintAll;
        m_bPaintedOnce = false;
    }
    {
        const zb::MemoryContext buffer(m_hBackBuffer);
        WhileOthersAct([&] { RunPaintMode(buffer.context()); });
        if (buffer.isValid())
        {
            ShowBuffer(hdc, buffer.context());
        }
    }
    EndPaint(m_hWnd, &paint);
    m_nCausedPaints = m_uCaused == 0 ? 0 : std::min(m_nCausedPaints + 1, mostCausedPaints);
    AskForPaintOfChanges();
    if (m_pfnBackground != nullptr)
    {
        DestroyBitmapBuffer();
    }
}

/// What of it the screen lacks.
void CHTMLGrid::ShowBuffer(HDC hdc, HDC hBuffer) const
{
    RECT box{};
    GetClipBox(hdc, &box);
    if (IsRectEmpty(&box) != FALSE)
    {
        box = {0, 0, m_BufferSize.cx, m_BufferSize.cy};
    }
    BitBlt(hdc, box.left, box.top, box.right - box.left, box.bottom - box.top, hBuffer, box.left, box.top, SRCCOPY);
}

void CHTMLGrid::RunPaintMode(HDC hdc)
{
    switch (m_nPaintMode)
    {
    case PaintSelection:
        UpdateSelection(hdc);
        break;
    case PaintScrolled:
        UpdateScrolled(hdc);
        break;
    case PaintCell:
        UpdateCell(hdc);
        break;
    case PaintAll:
        UpdateScreen(hdc);
        break;
    }
    m_nPaintMode = PaintAll;
}

void CHTMLGrid::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    if (cx == m_LastSize.cx && cy == m_LastSize.cy)
    {
        return;
    }
    const bool heightChanged = cy != m_LastSize.cy;
    m_LastSize = {cx, cy};
    CeWnd::OnSize(nType, cx, cy, handled);
    // A bar that comes or goes while bars are set up has been reckoned with already.
    if (m_bSettingBars || (m_nUpdateLock == 0 && (m_uDeferred & DeferSetupBars) != 0))
    {
        return;
    }
    RecalcGrid();
    SetupScrollBars();
    RecalcScreenCells(heightChanged, false);
    UpdateScrollBars(SB_BOTH);
    RepaintAll();
    if (m_bDragging)
    {
        MoveDragImages(ScreenPointOfDrag(m_ptLast));
    }
}

// --- All of it ---------------------------------------------------------------------------------------------------

void CHTMLGrid::FillBackground(HDC hdc, const RECT &rect)
{
    if (m_pfnBackground != nullptr)
    {
        const int saved = SaveDC(hdc);
        IntersectClipRect(hdc, rect.left, rect.top, rect.right, rect.bottom);
        m_pfnBackground(hdc);
        RestoreDC(hdc, saved);
        return;
    }
    FillRect(hdc, &rect, m_hBackBrush);
}

void CHTMLGrid::FillSelectionColor(HDC hdc, const RECT &rect)
{
    FillRect(hdc, &rect, m_hSelBrush);
}

void CHTMLGrid::UpdateScreen(HDC hdc)
{
    if (m_bPaintedOnce && m_pfnBackground == nullptr)
    {
        return;
    }
    m_bPaintedOnce = true;
    FillBackground(hdc, {0, 0, m_BufferSize.cx, m_BufferSize.cy});
    if (m_ScreenRows.edges.empty() || m_ScreenCols.edges.empty() || m_nRows == 0)
    {
        return;
    }
    const auto fixedRow = static_cast<USHORT>(m_nFixedRows - 1);
    const auto fixedCol = static_cast<USHORT>(m_nFixedCols - 1);
    const USHORT bottom = m_ScreenRows.last;
    const USHORT right = m_ScreenCols.last;
    if (m_nFixedRows > 0)
    {
        if (m_nFixedCols > 0)
        {
            DrawRange(hdc, {0, 0, fixedCol, fixedRow}, {0, 0});
        }
        DrawRange(hdc, {m_nLeftCol, 0, right, fixedRow}, {m_nFixedWidth, 0});
    }
    if (m_nFixedCols > 0)
    {
        DrawRange(hdc, {0, m_nTopRow, fixedCol, bottom}, {0, m_nFixedHeight});
    }
    const CellRange free = {m_nLeftCol, m_nTopRow, right, bottom};
    const POINT at = {m_nFixedWidth, m_nFixedHeight};
    DrawRange(hdc, free, at);
    m_nPassTop = m_nTopRow;
    m_rcUpdatedCells = free;
    DrawFloatersOf(hdc, free, at);
}

/// Calls draw(row, col, rect) for the cells of a range whose first one lies at `at`, up to the edge of the bitmap; a
/// cell that the edge cuts has its whole rectangle.
template <typename Draw>
void CHTMLGrid::ForEachCell(const CellRange &cells, POINT at, Draw draw)
{
    LONG top = at.y;
    for (int row = cells.nTop; row <= cells.nBottom && row < m_nRows && top < m_BufferSize.cy; ++row)
    {
        const LONG bottom = top + m_RowHeights[static_cast<std::size_t>(row)];
        LONG left = at.x;
        for (int col = cells.nLeft; col <= cells.nRight && col < m_nCols && left < m_BufferSize.cx; ++col)
        {
            const RECT rect = {left, top, left + m_ColWidths[static_cast<std::size_t>(col)], bottom};
            draw(static_cast<USHORT>(row), static_cast<USHORT>(col), rect);
            left = rect.right;
        }
        top = bottom;
    }
}

void CHTMLGrid::DrawRange(HDC hdc, const CellRange &cells, POINT at)
{
    ForEachCell(cells, at,
                [this, hdc](USHORT row, USHORT col, const RECT &rect)
                {
                    if (row < m_nFixedRows || col < m_nFixedCols)
                    {
                        OnFixedCellDraw(hdc, row, col, rect);
                    }
                    else
                    {
                        OnCellDraw(hdc, row, col, rect, IsCellSelected(row, col) ? stateSelected : 0);
                    }
                });
}

/// On top of the cells.
void CHTMLGrid::DrawFloatersOf(HDC hdc, const CellRange &cells, POINT at)
{
    if (m_nFloaters != 0)
    {
        ForEachCell(cells, at, [this, hdc](USHORT row, USHORT col, const RECT &rect)
                    { OnCellFloatersDraw(hdc, row, col, rect, IsCellSelected(row, col) ? stateSelected : 0); });
    }
}

// --- A cell ------------------------------------------------------------------------------------------------------

void CHTMLGrid::OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState)
{
    DrawAnyCell(hdc, nRow, nCol, rect, uState, false);
}

void CHTMLGrid::OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect)
{
    DrawAnyCell(hdc, nRow, nCol, rect, 0, true);
}

/// True when the procedure drew all.
bool CHTMLGrid::CallOwnerDraw(GridOwnerDrawProc proc, HDC hdc, USHORT nRow, USHORT nCol, const RECT &rect, UINT uState,
                              tagCELLINFO *pCell, bool &bFill)
{
    tagDRAWITEMSTRUCT item{};
    item.CtlID = CellKey(nRow, nCol);
    item.itemState = uState & stateSelected;
    item.hwndItem = m_hWnd;
    item.hDC = hdc;
    item.rcItem = rect;
    item.itemData = pCell == nullptr ? 0 : pCell->dwData;
    const int result = proc(&item, pCell);
    bFill = bFill && result == 0;
    return result == 1;
}

/// Along the right and the bottom, which the rectangle then has less.
void CHTMLGrid::DrawLines(HDC hdc, RECT &rect, bool bVertical, bool bHorizontal) const
{
    if (!bVertical && !bHorizontal)
    {
        return;
    }
    const SelectedTool pen(hdc, CreatePen(PS_SOLID, 1, m_crLines));
    if (bVertical)
    {
        --rect.right;
        drawLine(hdc, {rect.right, rect.top}, {rect.right, rect.bottom});
    }
    if (bHorizontal)
    {
        --rect.bottom;
        drawLine(hdc, {rect.left, rect.bottom}, {rect.right, rect.bottom});
    }
}

void CHTMLGrid::FillCell(HDC hdc, const RECT &rect, tagCELLINFO *pCell, UINT uState, bool bFixed)
{
    if ((uState & stateSelected) != 0)
    {
        FillSelectionColor(hdc, rect);
    }
    else if (pCell != nullptr)
    {
        fillWith(hdc, rect, pCell->GetBackColor(true));
    }
    else if (bFixed)
    {
        fillWith(hdc, rect, m_crFixedBack);
    }
    else
    {
        FillRect(hdc, &rect, m_hBackBrush);
    }
}

void CHTMLGrid::DrawAnyCell(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState, bool bFixed)
{
    tagCELLINFO *cell = GetCell(nRow, nCol);
    bool fill = m_pfnBackground == nullptr;
    if (const auto proc = bFixed ? m_pfnFixedCellDraw : m_pfnCellDraw)
    {
        if (CallOwnerDraw(proc, hdc, nRow, nCol, rect, uState, cell, fill))
        {
            return;
        }
        // It may have had the cell made anew.
        cell = FindCell(nRow, nCol);
    }
    const bool vertical = bFixed ? m_bFixedVLines : m_bVLines;
    const bool horizontal = bFixed ? m_bFixedHLines : m_bHLines;
    if (cell == nullptr)
    {
        DrawLines(hdc, rect, vertical, horizontal);
        if (fill)
        {
            FillCell(hdc, rect, nullptr, uState, bFixed);
        }
        return;
    }
    rect.right += cell->rcMargins.right < 0 ? 1 - cell->rcMargins.right : 0;
    if (fill)
    {
        FillCell(hdc, rect, cell, uState, bFixed);
    }
    const RECT whole = rect;
    DrawLines(hdc, rect, vertical, horizontal);
    DrawCellText(hdc, *cell, whole, uState);
}

void CHTMLGrid::DrawCellText(HDC hdc, tagCELLINFO &cell, const RECT &rect, UINT uState)
{
    const RECT &margins = cell.rcMargins;
    RECT area = {rect.left + margins.left, rect.top + margins.top, rect.right, rect.bottom - margins.bottom};
    if (cell.bSingleLine != 0)
    {
        area.right += noWrapWidth;
    }
    else if (margins.right >= 1)
    {
        area.right -= margins.right;
    }
    const int saved = SaveDC(hdc);
    IntersectClipRect(hdc, rect.left, rect.top, farRight, rect.bottom);
    DrawHTML(hdc, &area, cell.nIndent, &cell, &cell.HotSpots, uState & stateSelected);
    RestoreDC(hdc, saved);
}

// --- Floaters ----------------------------------------------------------------------------------------------------

/// The first of its cells that is painted in this pass paints all of a floater from there on.
bool CHTMLGrid::PaintsFloater(USHORT nRow, USHORT nCol, const tagFLOATERINFO &floater) const
{
    bool first = true;
    for (USHORT row = m_nPassTop; first && row < nRow; ++row)
    {
        const tagCELLINFO *cell = FindCell(row, nCol);
        const auto found = cell == nullptr ? GridFloaterMap::const_iterator() : cell->Floaters.find(floater.dwID);
        first = cell == nullptr || found == cell->Floaters.end() || found->second != &floater;
    }
    return first;
}

/// The heights of all rows of those that the cell paints. The parent that is asked for cells on the way may change
/// others and their floaters, so none is held meanwhile.
void CHTMLGrid::MeasureFloaterRows(USHORT nRow, USHORT nCol)
{
    std::vector<zb::GridRowSpan> spans;
    if (const tagCELLINFO *cell = m_bOnDemand ? FindCell(nRow, nCol) : nullptr)
    {
        for (const auto &[id, floater] : cell->Floaters)
        {
            if (PaintsFloater(nRow, nCol, *floater))
            {
                spans.push_back(zb::floaterBounds(ColumnCells(nCol), nRow, *floater, m_nRows));
            }
        }
    }
    for (const zb::GridRowSpan &rows : spans)
    {
        for (int row = rows.first; row <= rows.last; ++row)
        {
            GetRowHeight(static_cast<USHORT>(row), false);
        }
    }
}

void CHTMLGrid::OnCellFloatersDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT)
{
    MeasureFloaterRows(nRow, nCol);
    // Its own paint has asked for it.
    tagCELLINFO *cell = FindCell(nRow, nCol);
    if (cell == nullptr || cell->Floaters.empty())
    {
        return;
    }
    if (cell->bFloatersValid == 0)
    {
        ValidateCellFloaters(nRow, nCol);
    }
    for (const auto &[id, floater] : cell->Floaters)
    {
        if (PaintsFloater(nRow, nCol, *floater))
        {
            DrawFloater(hdc, nRow, nCol, rect, *floater);
        }
    }
}

void CHTMLGrid::DrawFloater(HDC hdc, USHORT nRow, USHORT nCol, const RECT &rect, tagFLOATERINFO &floater)
{
    tagCELLINFO &cell = *FindCell(nRow, nCol);
    const LONG column = rect.right - rect.left;
    const LONG slots = std::max<LONG>(floater.nSlots, 1);
    const LONG left = rect.left + column * floater.nSlot / slots;
    const auto rows = zb::floaterBounds(ColumnCells(nCol), nRow, floater, m_nRows);
    constexpr LONGLONG highest = 32000;
    const LONGLONG total = std::min(zb::sumOfLines(m_RowHeights, rows.first, rows.last + 1U), highest);
    const auto above = static_cast<LONG>(zb::sumOfLines(m_RowHeights, rows.first, nRow));
    const SIZE size = {column * floater.nSlotWidth / slots, static_cast<LONG>(total) - (m_bVLines ? 2 : 1)};
    // The block's outline is not copied; a later row goes on directly below the row before.
    const LONG skipped = floater.pOwner == &cell ? 1 : 0;
    const SIZE shown = {size.cx - 2, size.cy - above - 1 - skipped};
    if (shown.cx <= 0 || shown.cy <= 0)
    {
        return;
    }
    const zb::MemoryBitmap block(size.cx, size.cy);
    DrawFloaterBlock(block.context(), size, static_cast<LONG>(total), cell, floater);
    BitBlt(hdc, left + 1, rect.top + skipped, shown.cx, shown.cy, block.context(), 1, above + skipped, SRCCOPY);
}

void CHTMLGrid::DrawFloaterBlock(HDC hdc, const SIZE &size, LONG nTotal, tagCELLINFO &cell, tagFLOATERINFO &floater)
{
    const bool moving = &floater == m_pMovingFloater;
    const bool plain = !moving && m_bFloaterText;
    floater.HotSpots.clear();
    floater.Parser.FirstToken();
    const COLORREF back = plain ? floater.Parser.GetBackColor(false) : GetSysColor(COLOR_HIGHLIGHT);
    const SelectedTool brush(hdc, CreateSolidBrush(back));
    {
        const SelectedTool pen(hdc, CreatePen(PS_SOLID, 1, cell.GetBackColor(true)));
        Rectangle(hdc, 0, 0, size.cx, size.cy);
    }
    if (m_bFloaterStrip && size.cx > m_nStripWidth + HIDPI_SCALEX(2))
    {
        const auto top = static_cast<LONG>(floater.nStripOffset / 100.0 * nTotal);
        const auto length = static_cast<LONG>(floater.nStripLength / 100.0 * nTotal);
        fillWith(hdc, {0, top, m_nStripWidth, top + length - 1}, floater.crStrip);
    }
    if (m_bFloaterStrip && size.cx <= m_nStripWidth)
    {
        return;
    }
    RECT body = {m_bFloaterStrip ? m_nStripWidth : 1, 1, size.cx - 1, size.cy - 1};
    {
        const SelectedTool pen(hdc, CreatePen(PS_SOLID, 1, m_crLines));
        Rectangle(hdc, body.left, body.top, body.right, body.bottom);
    }
    InflateRect(&body, -2, -2);
    if (plain)
    {
        DrawHTML(hdc, &body, 0, &floater.Parser, &cell.HotSpots, 0);
        floater.HotSpots = cell.HotSpots;
    }
    else if (moving && !m_bFloaterText)
    {
        DrawFocusRect(hdc, &body);
    }
}

HBITMAP CHTMLGrid::GetCellBitmap(USHORT nCol, USHORT nRow)
{
    RECT rect{};
    if (!GetCellRect(nCol, nRow, rect))
    {
        return nullptr;
    }
    zb::MemoryBitmap copy(rect.right - rect.left, rect.bottom - rect.top);
    const HDC screen = GetDC(m_hWnd);
    BitBlt(copy.context(), 0, 0, rect.right - rect.left, rect.bottom - rect.top, screen, rect.left, rect.top, SRCCOPY);
    ReleaseDC(m_hWnd, screen);
    return copy.release();
}
