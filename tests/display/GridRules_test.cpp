// Numbers, orders and rare cases of the grid that stand for themselves.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
const COLORREF white = RGB(255, 255, 255);

class GridRules : public GridTest
{
  protected:
    /// By the pen, at one place.
    void tap(POINT point)
    {
        tick(84); // two are never a double one
        notified.clear();
        lastTarget.clear();
        draw({point});
    }
    void addFloater(USHORT row, DWORD id, USHORT rows, const std::u16string &text)
    {
        floaterText = text;
        grid->AddFloater(0, row, id, rows, 100, 0, RGB(255, 0, 255), false);
        settle();
    }
};

TEST_F(GridRules, aGridMadeLateStartsWithItsDefaults)
{
    grid = std::make_unique<TestGrid>();
    grid->SetMultiSelect(true, true);
    grid->SetRowSelect(true);
    grid->SetKeysScrollMode(0);
    grid->SetBarsScrollMode(1);
    grid->SetThumbTrack(false);
    grid->SetAllowAutoScroll(false);
    grid->SetSelectionMode(2);
    grid->SetRowHeightFixed(true);
    grid->SetShowHLines(true);
    grid->SetShowFixedVLines(false);
    grid->SetFloaterOptions(false, false);
    grid->SetShowScrollBars(false, false, false);
    grid->SetMinRowHeight(99);
    ASSERT_TRUE(grid->InitWindow(parent.window, RECT{0, 0, 100, 60}, false));
    bool multi = true;
    bool tip = true;
    grid->GetMultiSelect(multi, tip);
    EXPECT_FALSE(multi || tip);
    EXPECT_FALSE(grid->GetRowSelect());
    EXPECT_FALSE(grid->GetDragAllowed());
    EXPECT_EQ(grid->GetKeysScrollMode(), 2);
    EXPECT_EQ(grid->GetBarsScrollMode(), 0);
    EXPECT_TRUE(grid->GetThumbTrack());
    EXPECT_TRUE(grid->GetAllowAutoScroll());
    EXPECT_EQ(grid->GetSelectionMode(), 0);
    EXPECT_FALSE(grid->GetRowHeightFixed());
    EXPECT_FALSE(grid->GetShowHLines());
    EXPECT_TRUE(grid->GetShowFixedVLines());
    grid->GetFloaterOptions(multi, tip);
    EXPECT_TRUE(multi && tip) << "text and strip";
    bool scrollTip = true;
    grid->GetShowScrollBars(multi, tip, scrollTip);
    EXPECT_TRUE(multi && tip && !scrollTip) << "both bars";
    EXPECT_EQ(grid->GetMinRowHeight(), 15);
    EXPECT_EQ(grid->GetScrollRegion(), 20);
}

// --- Hot spots of floaters ---------------------------------------------------------------------------------------

TEST_F(GridRules, eachFloaterHasItsOwnHotSpots)
{
    makePlain(6, 1); // slots of 100, rows of 15
    addFloater(0, 1, 3, u"<FONT SIZE=-1><A=one>hot</A>");
    addFloater(0, 2, 3, u"<FONT SIZE=-1>a<BR>b<BR><A=two>hot</A>");
    tap({7 + 5, 6});
    EXPECT_EQ(lastTarget, u"one");
    EXPECT_EQ(lastNotify.dwCookie, 1U);
    const std::unique_ptr<WCHAR[]> key(grid->GetCellHotSpot(0, 0, 0));
    ASSERT_NE(key, nullptr) << "the cell has those of what was painted last in it";
    EXPECT_EQ(grid->GetCellHotSpot(0, 0, 1), nullptr);
    tap({100 + 7 + 5, 25}); // in its second row
    EXPECT_EQ(lastTarget, u"two");
    EXPECT_EQ(lastNotify.dwCookie, 2U);
    tap({7 + 5, 25});
    EXPECT_EQ(notified, (std::vector<int>{2047, -114})) << "the other's spot is not here";
}

TEST_F(GridRules, aFloaterThatBeginsAboveTheViewKeepsItsHotSpotsInPlace)
{
    makePlain(40, 1);
    addFloater(2, 5, 4, u"<FONT SIZE=-1>a<BR>b<BR>c<BR><A=key>hot</A>");
    grid->SetTopRow(3);
    settle();
    tap({7 + 5, -15 + 35});
    EXPECT_EQ(lastTarget, u"key");
}

// --- Painting ----------------------------------------------------------------------------------------------------

TEST_F(GridRules, aRightMarginBelowZeroWidensTheCell)
{
    makePlain(1, 1).SetColWidth(0, 50);
    grid->SetLinesColor(RGB(255, 0, 0));
    grid->SetCellText(0, 0, u"<BODY=#00FF00>", RECT{0, 0, -10, 0});
    settle();
    EXPECT_EQ(screenPixel(59, 7), RGB(0, 255, 0));
    EXPECT_EQ(screenPixel(60, 7), RGB(255, 0, 0)) << "10 and a pixel, of which the line is the last";
    EXPECT_EQ(screenPixel(61, 7), white);
}

TEST_F(GridRules, cellsThatNobodyHasShowBackgroundSelectionAndLines)
{
    makeOnDemand(3, 2, 100, 60).SetBackColor(RGB(0, 255, 255));
    grid->SetLinesColor(RGB(255, 0, 0));
    grid->SetFixedRowCount(1);
    grid->SetSelection(1, 1, 1, 1);
    settle();
    EXPECT_EQ(screenPixel(20, 7), GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(screenPixel(20, 14), RGB(255, 0, 0)) << "fixed ones have both lines";
    EXPECT_EQ(screenPixel(20, 22), RGB(0, 255, 255));
    EXPECT_EQ(screenPixel(20, 29), RGB(0, 255, 255)) << "others only that on the right";
    EXPECT_EQ(screenPixel(49, 22), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(70, 22), GetSysColor(COLOR_HIGHLIGHT));
}

TEST_F(GridRules, aFloaterEndsABitAboveItsLastRow)
{
    makePlain(6, 1, 100, 120).SetLinesColor(RGB(255, 0, 0));
    addFloater(1, 5, 4, u"<BODY=#FFFF00>");
    // From 15 to 75: 60 less 1, and 1 less for vertical lines; its outline is not copied.
    EXPECT_EQ(screenPixel(50, 70), RGB(255, 255, 0));
    EXPECT_EQ(screenPixel(50, 71), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(50, 72), white);
    grid->SetShowVLines(false);
    settle();
    EXPECT_EQ(screenPixel(50, 72), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(50, 73), white);
}

TEST_F(GridRules, aFloaterTooNarrowForItsStripHasNone)
{
    const COLORREF strip = RGB(255, 0, 255);
    makePlain(6, 1, 100, 120).SetColWidth(0, 10); // more than 7 and 2
    addFloater(1, 5, 4, u"a");
    EXPECT_EQ(screenPixel(1, 40), strip);
    grid->SetColWidth(0, 9);
    settle();
    EXPECT_NE(screenPixel(1, 40), strip);
}

// --- Scroll bars -------------------------------------------------------------------------------------------------

TEST_F(GridRules, barsMayMoveTheCurrentCell)
{
    makePlain(40, 2).SetBarsScrollMode(2);
    grid->SetSelection(0, 3, 0, 3);
    SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(current(), "0,4");
    EXPECT_EQ(selection(), "none");
    EXPECT_EQ(grid->GetTopRow(), 0);
    SendMessageW(*grid, WM_VSCROLL, SB_LINEUP, 0);
    SendMessageW(*grid, WM_VSCROLL, SB_LINEUP, 0);
    SendMessageW(*grid, WM_HSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(current(), "1,2");
    grid->SetRow(6);
    SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(current(), "1,7");
    EXPECT_TRUE(grid->IsCellVisible(1, 7, false)) << "in view";
}

TEST_F(GridRules, acrossTheBarStepsByColumns)
{
    makePlain(2, 12).BeginUpdate();
    for (USHORT col = 0; col < 12; ++col)
    {
        grid->SetColWidth(col, 40);
    }
    grid->EndUpdate();
    const auto after = [this](UINT code)
    {
        SendMessageW(*grid, WM_HSCROLL, code, 0);
        return grid->GetLeftCol();
    };
    EXPECT_EQ(after(SB_LINEDOWN), 1);
    EXPECT_EQ(after(SB_LINEDOWN), 2);
    EXPECT_EQ(after(SB_LINEUP), 1);
    EXPECT_EQ(after(SB_BOTTOM), 7) << "five of 40 fill 200";
    EXPECT_EQ(after(SB_TOP), 0);
    EXPECT_EQ(after(SB_PAGEDOWN), 3) << "the one before the last that shows";
    EXPECT_EQ(after(SB_PAGEUP), 0);
    EXPECT_EQ(scrolled.back(), (Scrolled{SB_PAGEUP, 0}));
    grid->SetDelayedScrolling(1000);
    EXPECT_EQ(after(SB_LINEDOWN), 0);
    EXPECT_EQ(after(SB_LINEDOWN), 0);
    tick(85);
    EXPECT_EQ(grid->GetLeftCol(), 1);
    EXPECT_EQ(after(SB_LINEUP), 1);
    tick(85);
    EXPECT_EQ(grid->GetLeftCol(), 0);
}

// --- Layout ------------------------------------------------------------------------------------------------------

TEST_F(GridRules, theBarAcrossMayTakeTheRoomOfARow)
{
    const int across = 200 - GetSystemMetrics(SM_CXVSCROLL);
    const int down = 100 - GetSystemMetrics(SM_CYHSCROLL);
    makePlain(6, 2); // 90 high: they fit, until there is a bar below
    grid->SetColWidth(0, 150);
    grid->SetColWidth(1, 150);
    struct Case
    {
        bool vertical, horizontal;
        int width, height;
    };
    for (const Case &one : {Case{true, true, across, down}, Case{true, false, 200, 100}, Case{false, true, 200, down},
                            Case{false, false, 200, 100}})
    {
        grid->SetShowScrollBars(one.vertical, one.horizontal, false);
        RECT client{};
        GetClientRect(*grid, &client);
        EXPECT_EQ(client.right, one.width) << one.vertical << one.horizontal;
        EXPECT_EQ(client.bottom, one.height) << one.vertical << one.horizontal;
    }
}

TEST_F(GridRules, onDemandTheEndOfAnUpdateShowsTheRowThatWasAskedFor)
{
    onCell = [](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"<FONT SIZE=-1>a<BR>b<BR>c"; // 31 high
        request.nRowHeight = HIWORD(request.hdr.idFrom) == 60 ? 150 : GRID_NONE;
    };
    makeOnDemand(100, 1);
    // Three of 31 fit into 100 pixels; the row of 150 does not.
    for (const auto &[row, top] : {std::pair<USHORT, USHORT>{50, 50}, {98, 97}, {60, 60}, {0, 0}})
    {
        grid->BeginUpdate();
        grid->MakeRowTopMost(row, true);
        grid->EndUpdate();
        EXPECT_EQ(grid->GetTopRow(), top) << row;
    }
    EXPECT_LT(asked.size(), 20U);
}

TEST_F(GridRules, aRowThatFillsTheViewIsVisibleEitherWay)
{
    makePlain(3, 1).SetRowHeight(1, 150);
    grid->SetTopRow(1);
    EXPECT_TRUE(grid->IsCellVisible(0, 1, true));
    EXPECT_TRUE(grid->IsCellVisible(0, 1, false));
    EXPECT_FALSE(grid->IsCellVisible(0, 2, true));
    grid->SetTopRow(3);
    EXPECT_EQ(grid->GetTopRow(), 1) << "out of range";
}

TEST_F(GridRules, aTextOfARowOfFixedHeightMovesNothingButPaintsAll)
{
    static int cells;
    makePlain(3, 2).SetRowHeightFixed(true);
    grid->SetCellOwnerDrawProc(
        [](tagDRAWITEMSTRUCT *, tagCELLINFO *)
        {
            ++cells;
            return 0;
        });
    settle();
    cells = 0;
    grid->SetCellText(0, 0, u"a<BR>b<BR>c");
    settle();
    EXPECT_EQ(cells, 6);
    EXPECT_EQ(grid->GetRowHeight(0, false), 15);
}

// --- Selection ---------------------------------------------------------------------------------------------------

TEST_F(GridRules, endsOfASelectionAreHeldAtTheLastCell)
{
    makePlain(6, 4);
    EXPECT_TRUE(grid->SetSelection(GRID_NONE, GRID_NONE, 50, 50));
    EXPECT_EQ(selection(), "0,0 3,5");
    EXPECT_EQ(current(), "3,5");
    EXPECT_TRUE(grid->SetSelection(2, 4, GRID_NONE, 1));
    EXPECT_EQ(selection(), "0,1 2,4");
    EXPECT_EQ(current(), "0,1") << "where it ends";
    grid->SetCol(4);
    grid->SetRow(6);
    EXPECT_EQ(current(), "0,1") << "out of range";
    grid->SetFixedRowCount(1);
    EXPECT_FALSE(grid->SetSelection(0, 0, 2, 2));
    EXPECT_FALSE(grid->SetSelection(2, 2, 0, 0));
    grid->SetSelectionMode(3);
    EXPECT_FALSE(grid->SetSelection(1, 1, 1, 1));
    EXPECT_EQ(selection(), "0,1 0,1") << "as the fixed row left it";
}

// --- Rest --------------------------------------------------------------------------------------------------------

TEST_F(GridRules, namesOfOneHashShareABitmap)
{
    makePlain(1, 1).SetResourcesRootPath(u"\\Pictures");
    std::filesystem::create_directories(device.files() / "Pictures");
    for (const char *name : {"aq.bmp", "ba.bmp", "bb.bmp"})
    {
        ASSERT_TRUE(savePng({1, 1, {0xFF0000}}, device.files() / "Pictures" / name));
    }
    // 16 times the first letter and the second: 97 and 113, 98 and 97, 98 and 98.
    const HBITMAP first = grid->AddBitmapToCache(u"aq.bmp", 6);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(grid->AddBitmapToCache(u"ba.bmp", 6), first);
    EXPECT_NE(grid->AddBitmapToCache(u"bb.bmp", 6), first);
}

TEST_F(GridRules, menusOfContextAreLeftToKindsOfGrid)
{
    class MenuGrid : public TestGrid
    {
      public:
        using TestGrid::TestGrid;
        void OnContextMenuNotify(NMHDR *header, bool &) override
        {
            codes.push_back(header->code);
        }
        std::vector<UINT> codes;
    };
    MenuGrid menus(parent.window, RECT{0, 0, 50, 50}, false);
    for (const UINT code : {1000U, 1131U, 1132U})
    {
        NMHDR header = {menus, 0, code};
        SendMessageW(menus, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header));
    }
    EXPECT_EQ(menus.codes, (std::vector<UINT>{1000, 1131}));
}
} // namespace
} // namespace zb::test
