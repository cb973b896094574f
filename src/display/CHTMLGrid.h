// The control that shows lists, agendas and the columns of days and weeks: a table of cells of marked-up text, with
// fixed rows and columns, rows as high as their text, a selection, and floaters, blocks of markup that lie over a run
// of rows and share the width of their column.
//
// A grid is defined by its operations and by the messages with which it asks its parent for content and reports to it
// (GridRecords.h). It runs in one of two modes, fixed when it is made:
// - plain: every cell is there from SetDimensions on and is filled by SetCellText;
// - on demand: a cell is asked for (GRID_GETCELL) the first time that it has to be measured or painted, and kept. Rows
//   that nobody has seen count with the least height, so a list of any length opens at once.
//
// Columns come before rows in the public operations. What is out of range is ignored, or gives null, 0 or false.
//
// Painting: one bitmap holds what the grid shows. A change paints it anew as a whole, but for changes of the selection,
// which paint the cells that changed, and scrolling, which moves what stays; both leave the very pixels that a whole
// paint would.
//
// Who owns what: the grid owns cells, floaters and the bitmaps of its images. The parent must outlive the grid and must
// not change its dimensions from inside a request.
// Threads: the window's own.
#pragma once

#include "display/CHTMLToolTip.h"
#include "display/GridLayout.h"
#include "display/GridRecords.h"
#include "display/GridSlots.h"
#include "framework/CeWnd.h"

#include <functional>
#include <set>
#include <string>
#include <unordered_map>

class ZBTOOLS_API CHTMLGrid : public CeWnd
{
  public:
    CHTMLGrid();
    /// Makes the window at once.
    CHTMLGrid(HWND hParent, const RECT &rect, bool bOnDemand);
    ~CHTMLGrid() override;

    // Drawing and handlers that a kind of grid of its own may replace. Hosts expect them in this order.

    /// Bit 0 of the state: selected.
    virtual void OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState);
    virtual void OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect);
    virtual void OnCellFloatersDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState);
    virtual void OnSetFocus(HWND hOther, bool &handled);
    virtual void OnKillFocus(HWND hOther, bool &handled);
    virtual void OnHScroll(UINT uCode, UINT uPos, bool &handled);
    using CeWnd::OnNotify;
    virtual LRESULT OnNotify(NMHDR *pHeader, bool &handled);
    virtual void OnVScroll(UINT uCode, UINT uPos, bool &handled);
    virtual void OnClick(tagNM_GRIDVIEW *pNotify, bool &handled);
    virtual void OnContextMenuNotify(NMHDR *pHeader, bool &handled);
    virtual LRESULT OnHotspotNotify(tagNM_GRIDVIEW *pNotify, bool &handled);
    /// Answers with the bitmap in dwCookie; `handled` says whether there was one.
    virtual void OnInlineImageNotify(NM_HTMLVIEW *pNotify, bool &handled);
    /// Of the window that a drag may end in: fills in the cell there. The point is the screen's.
    virtual bool OnDragQuery(POINT point, tagGRIDDRAG *pDrag);
    /// The pen of a drag is at a point of the client area: what lies there, and whether it takes the drop.
    virtual void OnDragOver(POINT point, HWND &hWnd, tagGRIDDRAG *pDrag, bool &allowed);
    /// May the current cell, whose column is x and whose row is y, be dragged?
    virtual bool OnDragStart(POINT cell);
    /// What comes to the edit box over a cell.
    virtual LRESULT OnProcessEditMessage(UINT uMsg, WPARAM wParam, LPARAM lParam);

    LRESULT ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags, bool &handled) override;
    void OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags, bool &handled) override;
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;
    void OnMouseMove(WPARAM uKeys, POINT point, bool &handled) override;
    void OnPaint(bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    void OnTimer(UINT_PTR nId, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

    /// Sets all to its defaults and makes the child window. False when it can't be made, or is there already.
    bool InitWindow(HWND hParent, const RECT &rect, bool bOnDemand);

    // --- Dimensions and cells ------------------------------------------------------------------------------------

    /// All cells and floaters go; without rows or columns the grid is empty.
    void SetDimensions(USHORT nRows, USHORT nCols);
    USHORT GetRowCount() const;
    USHORT GetColCount() const;
    /// Held at the dimensions. The current cell and the selection move to the first free cell.
    void SetFixedRowCount(USHORT nRows);
    void SetFixedColCount(USHORT nCols);
    USHORT GetFixedRowCount() const;
    USHORT GetFixedColCount() const;

    /// GRID_NONE shares the free width.
    void SetColWidth(USHORT nCol, USHORT nWidth);
    /// As worked out; 0 past the end.
    USHORT GetColWidth(USHORT nCol) const;
    /// GRID_NONE takes it from the content.
    void SetRowHeight(USHORT nRow, USHORT nHeight);
    /// On demand the row's cells are asked for and measured, and the height grows to theirs; with bForce anew.
    USHORT GetRowHeight(USHORT nRow, bool bForce);
    /// Also the height of rows that were not seen, and the edge zone of automatic scrolling.
    void SetMinRowHeight(USHORT nHeight);
    USHORT GetMinRowHeight() const;
    /// All rows have the least height, whatever is in them.
    void SetRowHeightFixed(bool bFixed);
    bool GetRowHeightFixed() const;
    /// Of all rows.
    DWORD GetTotalHeight() const;

    /// Without margins they are 0, without quality it is the grid's. On demand this makes the cell.
    void SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML);
    void SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, BYTE bQuality);
    void SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, const RECT &margins);
    void SetCellText(USHORT nCol, USHORT nRow, const WCHAR *pszHTML, BYTE bQuality, const RECT &margins);
    /// On demand alone: forgets the cell and asks again.
    void UpdateCellText(USHORT nCol, USHORT nRow);
    void SetCellData(USHORT nCol, USHORT nRow, DWORD_PTR dwData);
    DWORD_PTR GetCellData(USHORT nCol, USHORT nRow) const;
    void SetRowUserID(USHORT nRow, DWORD dwID);
    void SetCellSingleLine(USHORT nCol, USHORT nRow, bool bSingle);
    /// The count is cut to what is left. There is no insertion: a host that gains rows calls SetDimensions.
    void DeleteRows(USHORT nFirst, USHORT nCount);
    void DeleteCols(USHORT nFirst, USHORT nCount);

    /// Between the two nothing is worked out or painted; they nest, and one End too many does nothing.
    void BeginUpdate();
    void EndUpdate();

    // --- Looks ---------------------------------------------------------------------------------------------------

    void SetBackColor(COLORREF color);
    COLORREF GetBackColor() const;
    void SetLinesColor(COLORREF color);
    /// Does nothing: fixed cells have their own body colour. Kept.
    void SetFixedBackColor(COLORREF color);
    COLORREF GetFixedBackColor() const;
    void SetShowHLines(bool bShow);
    bool GetShowHLines() const;
    void SetShowVLines(bool bShow);
    bool GetShowVLines() const;
    void SetShowFixedHLines(bool bShow);
    bool GetShowFixedHLines() const;
    void SetShowFixedVLines(bool bShow);
    bool GetShowFixedVLines() const;
    /// Adds a border, whatever the argument says. Kept.
    void SetBorder(bool bBorder);
    /// For parses from here on.
    void SetFontQuality(BYTE bQuality);
    GridOwnerDrawProc SetCellOwnerDrawProc(GridOwnerDrawProc proc);
    GridOwnerDrawProc SetFixedCellOwnerDrawProc(GridOwnerDrawProc proc);
    void SetBackgroundDrawProc(GridBackgroundProc proc);
    void SetToolTipParent(HWND hParent);
    /// The grid without another.
    HWND GetToolTipParent() const;

    // --- Images --------------------------------------------------------------------------------------------------

    void SetResourcesInstance(HINSTANCE hInstance);
    HINSTANCE GetResourcesInstance() const;
    /// Of 260 characters or more: ignored. A backslash is appended.
    void SetResourcesRootPath(const WCHAR *pszPath);
    /// The bitmap stays the grid's; null, and nothing kept, when it can't be loaded.
    HBITMAP AddBitmapToCache(USHORT nId);
    HBITMAP AddBitmapToCache(const WCHAR *pszName, int nLength);
    void ClearBitmapCache();

    // --- Floaters ------------------------------------------------------------------------------------------------

    /// Asks for the markup. False without a cell or a text. One of the same id that stands in the way goes first. It
    /// covers its first row at least.
    bool AddFloater(USHORT nCol, USHORT nRow, DWORD dwID, USHORT nRows, USHORT nStripLength, USHORT nStripOffset,
                    COLORREF crStrip, bool bLocked);
    /// By any of its cells.
    void DeleteFloater(USHORT nCol, USHORT nRow, DWORD dwID);
    USHORT FloaterCount(USHORT nCol, USHORT nRow) const;
    bool CellHasFloaters(USHORT nCol, USHORT nRow) const;
    void SetFloaterOptions(bool bText, bool bStrip);
    void GetFloaterOptions(bool &bText, bool &bStrip) const;
    /// Id of the floater at a point of the client area, 0 for none; offset is the point's place in it.
    DWORD GetFloaterFromPoint(POINT point, USHORT &nCol, USHORT &nRow, POINT &offset, bool &bStripHit);
    DWORD GetFloaterFromPoint(int x, int y, USHORT &nCol, USHORT &nRow, POINT &offset, bool &bStripHit);

    /// A new text (delete[]), null out of range.
    WCHAR *GetCellHotSpot(USHORT nCol, USHORT nRow, USHORT nIndex) const;
    /// A new bitmap (DeleteObject) of what the screen shows at the cell.
    HBITMAP GetCellBitmap(USHORT nCol, USHORT nRow);

    // --- Layout and scrolling ------------------------------------------------------------------------------------

    void RecalcGrid();
    /// False, and an empty rectangle, when the row isn't on screen, or the column lies left of what shows.
    bool GetCellRect(USHORT nCol, USHORT nRow, RECT &rect);
    /// By the row alone; the last one shown counts when bPartial says whether it is cut.
    bool IsCellVisible(USHORT nCol, USHORT nRow, bool bPartial) const;
    /// A point on an edge is in the cell that ends there. False, and GRID_NONE in what was missed, past the last cell.
    bool GetCellFromPoint(POINT point, USHORT &nCol, USHORT &nRow) const;
    bool GetCellFromPoint(int x, int y, USHORT &nCol, USHORT &nRow) const;
    /// The first point of a cell that GetCellFromPoint takes for it.
    bool GetPointFromCell(USHORT nCol, USHORT nRow, POINT &point);
    void SetLeftCol(USHORT nCol);
    void SetTopRow(USHORT nRow);
    USHORT GetLeftCol() const;
    USHORT GetTopRow() const;
    USHORT GetBottomRow() const;
    void ScrollByRowUp(USHORT nRows);
    void ScrollByRowDown(USHORT nRows, bool bUnclamped);
    void ScrollByColLeft(USHORT nCols);
    void ScrollByColRight(USHORT nCols);
    void ScrollByPageUp();
    void ScrollByPageDown();
    void ScrollByPageLeft();
    void ScrollByPageRight();
    void ScrollToTop();
    void ScrollToBottom();
    void ScrollToLeft();
    void ScrollToRight();
    /// GRID_NONE counts as 0; fixed rows are refused.
    void MakeRowTopMost(USHORT nRow, bool bUnclamped);
    void MakeCellVisible(USHORT nCol, USHORT nRow, bool bPartial);
    /// Milliseconds; 0 turns it off.
    void SetDelayedScrolling(UINT nMilliseconds);
    UINT GetDelayedScrolling() const;
    /// 0 by rows or columns, 1 by pages, 2 the current cell moves; others are ignored.
    void SetBarsScrollMode(BYTE nMode);
    BYTE GetBarsScrollMode() const;
    void SetKeysScrollMode(BYTE nMode);
    BYTE GetKeysScrollMode() const;
    void SetThumbTrack(bool bTrack);
    bool GetThumbTrack() const;
    void SetScrollRegion(USHORT nWidth);
    USHORT GetScrollRegion() const;
    void SetShowScrollBars(bool bVertical, bool bHorizontal, bool bTip);
    void GetShowScrollBars(bool &bVertical, bool &bHorizontal, bool &bTip) const;
    /// Without a rectangle the paint comes at once.
    void Invalidate(const RECT *pRect = nullptr);
    void DestroyBitmapBuffer();
    void FillSelectionColor(HDC hdc, const RECT &rect);

    // --- Current cell and selection ------------------------------------------------------------------------------

    /// GRID_NONE counts as 0, ends are held at the last cell. False in mode 3 and for fixed cells.
    bool SetSelection(USHORT nLeft, USHORT nTop, USHORT nRight, USHORT nBottom);
    void GetSelection(USHORT &nLeft, USHORT &nTop, USHORT &nRight, USHORT &nBottom) const;
    void EmptySelection();
    void SetCol(USHORT nCol);
    USHORT GetCol() const;
    void SetRow(USHORT nRow);
    USHORT GetRow() const;
    bool IsCellSelected(USHORT nRow, USHORT nCol) const;
    void SetMultiSelect(bool bMulti, bool bTip);
    void GetMultiSelect(bool &bMulti, bool &bTip) const;
    void SetRowSelect(bool bRowSelect);
    bool GetRowSelect() const;
    /// 0 rectangle, 1 stream by columns, 2 stream by rows, 3 no selection; others are ignored.
    void SetSelectionMode(BYTE nMode);
    BYTE GetSelectionMode() const;
    void SetShowFocus(bool bShow);
    bool GetShowFocus() const;
    void SetAllowAutoScroll(bool bAllow);
    bool GetAllowAutoScroll() const;
    void SetDragAllowed(bool bAllow);
    bool GetDragAllowed() const;
    /// Opens an edit box over the cell when the parent agrees; its size is that of the selection.
    void EnableCellEdit(USHORT nCol, USHORT nRow);

  protected:
    /// What the next paint has to do.
    enum PaintMode : BYTE
    {
        PaintAll = 0,
        PaintSelection = 1,
        PaintScrolled = 2,
        PaintCell = 4
    };
    /// Work that waits for the end of an update.
    enum Deferred : UINT
    {
        DeferRecalc = 1,
        DeferSetupBars = 2,
        DeferHorzBar = 4,
        DeferVertBar = 8,
        DeferRepaint = 16,
        DeferScreenCells = 32,
        DeferScrollToRow = 64
    };
    /// Cells by their numbers, ends inclusive.
    struct CellRange
    {
        USHORT nLeft;
        USHORT nTop;
        USHORT nRight;
        USHORT nBottom;
    };
    struct Selection
    {
        CellRange cells = {GRID_NONE, GRID_NONE, GRID_NONE, GRID_NONE};
        USHORT nAnchorCol = GRID_NONE;
        USHORT nAnchorRow = GRID_NONE;
    };

    // Cells.
    static DWORD CellKey(USHORT nRow, USHORT nCol);
    /// The cell as it is, never asked for.
    tagCELLINFO *FindCell(USHORT nRow, USHORT nCol) const;
    /// Asks the parent for a cell that isn't there; null when it has none.
    tagCELLINFO *GetCell(USHORT nRow, USHORT nCol);
    USHORT GetCellHeight(USHORT nRow, USHORT nCol);
    bool MoveFloater(USHORT nFromCol, USHORT nFromRow, USHORT nToCol, USHORT nToRow, DWORD dwID);

    // Layout.
    DWORD RecalcCols(LONG nWidth);
    DWORD RecalcRows();
    void RecalcMaxScrolls();
    void RecalcScreenCells(bool bForce, bool bKeepTop);
    void RecalcScreenRows(bool bForce, bool bKeepTop, bool &bEnd);
    void RecalcScreenCols();
    void SetupScrollBars();
    void UpdateScrollBars(int nWhich);

    // Painting.
    void UpdateScreen(HDC hdc);
    void UpdateSelection(HDC hdc);
    void UpdateScrolled(HDC hdc);
    void UpdateCell(HDC hdc);
    /// Paints these cells, which scroll or are fixed, and what lies over them; `out` gets their place.
    void UpdateCellsRect(HDC hdc, const CellRange &cells, RECT &out);
    void UpdateFixedCellsRect(HDC hdc, const CellRange &cells, RECT &out);

    void StartDelayedScrolling(UINT uKind, UINT uCode);
    void ProcessDelayedScrolling();

  private:
    void SetDefaults();

    // Cells.
    std::unique_ptr<tagCELLINFO> NewCell() const;
    void CreateCells(USHORT nRows, USHORT nCols);
    void DestroyCells();
    std::unique_ptr<tagCELLINFO> RequestCell(USHORT nRow, USHORT nCol);
    tagCELLINFO *StoreCell(USHORT nRow, USHORT nCol, std::unique_ptr<tagCELLINFO> cell);
    USHORT MeasureCell(tagCELLINFO &cell, USHORT nWidth);
    void RefreshAll();
    void RefreshCell(USHORT nRow, USHORT nCol);
    void EraseRows(USHORT nFirst, USHORT nCount);
    void EraseCols(USHORT nFirst, USHORT nCount);
    void ShiftCells(bool bRows, USHORT nFirst, USHORT nCount);
    void ShortenFloatersOver(USHORT nFirst, USHORT nCount);
    void ClampAfterDeletion();
    void MoveToFirstFreeCell();

    // Floaters.
    zb::GridColumnCells ColumnCells(USHORT nCol) const;
    tagFLOATERINFO *FloaterAt(USHORT nCol, USHORT nRow, DWORD dwID) const;
    std::vector<std::pair<USHORT, DWORD>> FloatersFromAbove(USHORT nRow, USHORT nCol) const;
    void AskForCells(USHORT nCol, USHORT nRow, USHORT nRows);
    void InsertFloater(USHORT nCol, USHORT nRow, tagFLOATERINFO &floater);
    void RemoveFloater(USHORT nCol, USHORT nFirst, const tagFLOATERINFO &floater);
    void DestroyFloater(USHORT nCol, USHORT nRow, tagFLOATERINFO &floater);
    void ClearCellFloaters(USHORT nRow, USHORT nCol);
    void InvalidateBlock(USHORT nCol, USHORT nRow);
    void ValidateCellFloaters(USHORT nRow, USHORT nCol);
    std::unique_ptr<WCHAR, void (*)(void *)> RequestFloaterText(DWORD dwID);
    void RepaintFloaters();
    bool PaintsFloater(USHORT nRow, USHORT nCol, const tagFLOATERINFO &floater) const;
    void MeasureFloaterRows(USHORT nRow, USHORT nCol);
    void DrawFloater(HDC hdc, USHORT nRow, USHORT nCol, const RECT &rect, tagFLOATERINFO &floater);
    void DrawFloaterBlock(HDC hdc, const SIZE &size, LONG nTotal, tagCELLINFO &cell, tagFLOATERINFO &floater);

    // Layout.
    void RunDeferredLayout();
    void WhileOthersAct(const std::function<void()> &act);
    void TakeUpChanges();
    void AskForPaintOfChanges();
    LONG ClientWidthWithoutBars(RECT &client) const;
    void LayoutWithBars();
    USHORT FirstFree(bool bRows) const;
    zb::GridSizes &Sizes(bool bRows);

    // Painting.
    void SetPaintMode(PaintMode mode);
    void RepaintAll();
    bool MakeBackBuffer(HDC hdc);
    void ShowBuffer(HDC hdc, HDC hBuffer) const;
    void RunPaintMode(HDC hdc);
    void FillBackground(HDC hdc, const RECT &rect);
    void DrawLines(HDC hdc, RECT &rect, bool bVertical, bool bHorizontal) const;
    void DrawCellText(HDC hdc, tagCELLINFO &cell, const RECT &rect, UINT uState);
    bool CallOwnerDraw(GridOwnerDrawProc proc, HDC hdc, USHORT nRow, USHORT nCol, const RECT &rect, UINT uState,
                       tagCELLINFO *pCell, bool &bFill);
    void DrawAnyCell(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState, bool bFixed);
    void FillCell(HDC hdc, const RECT &rect, tagCELLINFO *pCell, UINT uState, bool bFixed);
    template <typename Draw>
    void ForEachCell(const CellRange &cells, POINT at, Draw draw);
    void DrawRange(HDC hdc, const CellRange &cells, POINT at);
    void DrawFloatersOf(HDC hdc, const CellRange &cells, POINT at);
    POINT PlaceOf(USHORT nCol, USHORT nRow) const;
    void UpdateRange(HDC hdc, const CellRange &cells, RECT &out);
    void UpdateRows(HDC hdc, LONG nFirst, LONG nLast);
    void UpdateCols(HDC hdc, LONG nFirst, LONG nLast);
    bool ScrollRowsInBuffer(HDC hdc);
    bool ScrollColsInBuffer(HDC hdc);
    void PaintUncoveredRows(HDC hdc, LONG nFrom);
    void PaintUncoveredCols(HDC hdc, LONG nFrom);
    void UpdateAllAnew(HDC hdc);

    // Scrolling.
    void ScrollTo(bool bRows, USHORT nTarget, PaintMode mode, bool bKeepTop = false);
    void ScrollForward(bool bRows, USHORT nLines, bool bUnclamped);
    void ScrollBack(bool bRows, USHORT nLines);
    void PageForward(bool bRows);
    void PageBack(bool bRows);
    void ScrollToEnd(bool bRows);
    void EndUpdateScrollToRow(USHORT nRow);
    void MeasureLargestTopRow();
    USHORT FirstLineToShow(bool bRows, USHORT nLine, LONG nAvailable);
    bool HandleScroll(bool bRows, UINT uCode);
    void StepByBar(bool bRows, bool bForward);
    bool FollowThumb(bool bRows, UINT uCode);
    USHORT ThumbTarget(bool bRows, bool &atEnd);
    void ShowScrollTip(USHORT nRow);
    void RefreshVertRange();
    LONG AvailableFor(bool bRows) const;

    // Selection.
    bool IsSelectedIn(const Selection &selection, USHORT nRow, USHORT nCol) const;
    bool IsInStream(const Selection &selection, USHORT nRow, USHORT nCol, bool bByRows) const;
    void SaveSelection();
    void MoveCurrentBy(bool bRows, bool bForward);
    bool HandleNavigationKey(UINT nKey);
    bool NavigateEnd();
    bool NavigateHome();
    bool NavigateBy(bool bRows, bool bForward);

    // Pen: taps.
    bool BeginTap(POINT point);
    bool RecognizeHold(POINT point, USHORT nCol, USHORT nRow, bool changed);
    void CountTap(USHORT nCol, USHORT nRow);
    bool ArmFloater(POINT point, bool &kept);
    bool SelectTapped(USHORT nCol, USHORT nRow, bool bShift, bool &changed);
    bool TestHotSpot(POINT point, USHORT nCol, USHORT nRow);
    void SendHotSpot(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater);
    const HOTSPOT *HotSpotAt(USHORT nCol, USHORT nRow, POINT point, DWORD dwFloater) const;
    tagNM_GRIDVIEW TapRecord(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater) const;
    LRESULT NotifyParent(UINT uCode, POINT point, USHORT nCol, USHORT nRow, DWORD dwFloater);
    void ClearPen();
    bool CancelPen();
    bool CancelEdit();

    // Pen: sweeps, floaters, drags.
    bool StartsSweep(POINT point) const;
    void SweepTo(POINT point);
    bool UpdateSelection(POINT point);
    void SelectFromAnchor(USHORT nCol, USHORT nRow);
    void FinishSweep(POINT point);
    void CheckDragScroll(POINT point);
    void StartScrollTimer(BYTE nDirection);
    void StopScrollTimer();
    void HoldPen();
    void AutoScroll();
    void MoveArmedFloater(POINT point);
    void MoveFloaterTo(POINT point);
    tagFLOATERINFO *FloaterUnderPen() const;
    bool AskFloaterMove(POINT from, POINT &to);
    bool LetFloaterGo();
    bool RenewFloaterText(USHORT nCol, USHORT nRow, DWORD dwID);
    bool StartsDrag(POINT point) const;
    void StartDrag(POINT point);
    void DragTo(POINT point);
    void Drop(POINT point);
    void FinishDragOperation();
    POINT ScreenPointOfDrag(POINT point) const;
    void ShowDragTip(tagGRIDDRAG *pDrag);
    bool StartDragImages(POINT cell, POINT point);
    void MoveDragImages(POINT screen);
    void EndDragImages();

    // Tool tips.
    CHTMLToolTip &ToolTip(std::unique_ptr<CHTMLToolTip> &tip);
    void ShowTipAt(std::unique_ptr<CHTMLToolTip> &tip, POINT point, ToolTipCorner corner);
    LRESULT AskTip(const std::unique_ptr<CHTMLToolTip> &tip, UINT uMessage, const void *request);

    // Editing.
    static LRESULT EditWndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    bool MakeEditBox(USHORT nCol, USHORT nRow);
    void EndEdit();
    void BringRowsBack();
    void StepKeyTimers(UINT_PTR nTimer);
    bool NavigateTo(USHORT nCol, USHORT nRow);

    HWND m_hParent = nullptr;
    HWND m_hTipParent = nullptr;
    bool m_bOnDemand = false;
    bool m_bClassCounted = false;
    COLORREF m_crLines = 0;
    COLORREF m_crBack = 0;
    COLORREF m_crFixedBack = 0;
    HBRUSH m_hBackBrush = nullptr;
    HBRUSH m_hSelBrush = nullptr;
    bool m_bHLines = false;
    bool m_bVLines = true;
    bool m_bFixedHLines = true;
    bool m_bFixedVLines = true;

    USHORT m_nCols = 0;
    USHORT m_nRows = 0;
    USHORT m_nFixedCols = 0;
    USHORT m_nFixedRows = 0;
    UINT m_nFloaters = 0;
    std::map<DWORD, std::unique_ptr<tagCELLINFO>> m_Cells;
    /// Keys of those that the parent is being asked for.
    std::set<DWORD> m_AskedNow;
    zb::GridSizes m_ColWidthsAsked;
    zb::GridSizes m_ColWidths;
    zb::GridSizes m_RowHeightsAsked;
    zb::GridSizes m_RowHeights;
    std::vector<DWORD> m_RowUserIDs;
    std::unordered_map<DWORD, HBITMAP> m_Bitmaps;
    HINSTANCE m_hResources = nullptr;
    std::u16string m_szResourcesRoot;
    USHORT m_nMinRowHeight = 0;
    bool m_bRowHeightFixed = false;
    UINT m_nUpdateLock = 0;
    UINT m_uDeferred = 0;
    /// What others have changed while they were asked; the next paint works it out.
    UINT m_uCaused = 0;
    /// Paints in a row that others have caused so; behind the most there is none until something else asks for one.
    static constexpr int mostCausedPaints = 16;
    int m_nCausedPaints = 0;
    BYTE m_bFontQuality = DEFAULT_QUALITY;
    bool m_bFloaterText = true;
    bool m_bFloaterStrip = true;
    USHORT m_nStripWidth = 0;

    USHORT m_nTopRow = 0;
    USHORT m_nLeftCol = 0;
    USHORT m_nMaxTopRow = 0;
    USHORT m_nMaxLeftCol = 0;
    zb::GridView m_ScreenRows;
    zb::GridView m_ScreenCols;
    LONG m_nClientHeight = 0;
    LONG m_nClientWidth = 0;
    DWORD m_dwTotalHeight = 0;
    DWORD m_dwTotalWidth = 0;
    LONG m_nFixedHeight = 0;
    LONG m_nFixedWidth = 0;
    bool m_bHBarOn = false;
    bool m_bVBarOn = false;
    bool m_bShowVBar = true;
    bool m_bShowHBar = true;
    bool m_bScrollTip = false;
    /// While bars come and go the sizes that follow are known already.
    bool m_bSettingBars = false;

    HBITMAP m_hBackBuffer = nullptr;
    SIZE m_BufferSize{};
    bool m_bPaintedOnce = false;
    PaintMode m_nPaintMode = PaintAll;
    CellRange m_rcUpdatedCells{};
    /// First scrolling row of the present pass; it paints the floaters that come from above.
    USHORT m_nPassTop = 0;
    /// A floater lies over rows without a cell, which know nothing of it: all is painted then, never a part.
    bool m_bFloaterGaps = false;
    Selection m_PrevSelection;
    USHORT m_nPrevTop = 0;
    USHORT m_nPrevLeft = 0;
    USHORT m_nPendingRow = 0;
    SIZE m_LastSize = {-1, -1};
    GridOwnerDrawProc m_pfnCellDraw = nullptr;
    GridOwnerDrawProc m_pfnFixedCellDraw = nullptr;
    GridBackgroundProc m_pfnBackground = nullptr;

    BYTE m_nBarsMode = 0;
    BYTE m_nKeysMode = 2;
    bool m_bThumbTrack = true;
    USHORT m_nScrollRegion = 0;
    UINT m_nDelayMs = 0;
    UINT m_uDelayKind = 0;
    UINT m_nDelayCode = 0;
    UINT_PTR m_nDelayTimer = 0;
    USHORT m_nKeyStep = 1;

    USHORT m_nCurCol = GRID_NONE;
    USHORT m_nCurRow = GRID_NONE;
    Selection m_Selection;
    BYTE m_nSelectionMode = 0;
    bool m_bMultiSelect = false;
    bool m_bSelectTip = false;
    bool m_bRowSelect = false;
    bool m_bShowFocus = false;
    bool m_bAutoScroll = true;
    bool m_bDragAllowed = false;
    USHORT m_nLastTapCol = GRID_NONE;
    USHORT m_nLastTapRow = GRID_NONE;
    /// 1: a tap within the time of a double one, 2: the second within it.
    BYTE m_nTapCount = 0;
    /// The cell that the first of them met.
    USHORT m_nFirstTapCol = GRID_NONE;
    USHORT m_nFirstTapRow = GRID_NONE;
    POINT m_ptLast{};
    POINT m_ptDown{};
    bool m_bPenDown = false;
    /// A hot spot, SHIFT or a gesture has taken the tap.
    bool m_bTapConsumed = false;
    /// It came down on a fixed cell, from which nothing is swept or dragged.
    bool m_bPenOnFixed = false;
    bool m_bSweeping = false;
    BYTE m_nScrollDir = 0;
    UINT_PTR m_nScrollTimer = 0;

    bool m_bFloaterArmed = false;
    bool m_bFloaterStripHit = false;
    bool m_bFloaterMoved = false;
    /// Rows between the floater's first and the one that was hit.
    USHORT m_nGrabbedRow = 0;
    DWORD m_dwFloaterID = 0;
    tagFLOATERINFO *m_pMovingFloater = nullptr;

    bool m_bDragging = false;
    HIMAGELIST m_hDragImages = nullptr;
    HWND m_hPrevCapture = nullptr;

    HWND m_hEdit = nullptr;
    WNDPROC m_pfnEditProc = nullptr;
    bool m_bEditClosing = false;
    USHORT m_nEditCol = GRID_NONE;
    USHORT m_nEditRow = GRID_NONE;
    HWND m_hFocusBeforeEdit = nullptr;

    POINT m_ptSelectTip{};
    std::unique_ptr<CHTMLToolTip> m_pSelectTip;
    std::unique_ptr<CHTMLToolTip> m_pFloaterTip;
    std::unique_ptr<CHTMLToolTip> m_pDragTip;
    std::unique_ptr<CHTMLToolTip> m_pScrollTip;
};
