// What the grid paints and how it scrolls; above all that a part painted by itself leaves the pixels of a whole paint.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
std::vector<DWORD> drawnCells;

int countDrawn(tagDRAWITEMSTRUCT *item, tagCELLINFO *)
{
    drawnCells.push_back(item->CtlID);
    return 0;
}

class GridPaint : public GridTest
{
  protected:
    /// What is on the screen, and what a paint of all leaves.
    testing::AssertionResult isAsPaintedWhole()
    {
        const Picture partial = shown();
        grid->DestroyBitmapBuffer();
        grid->Invalidate();
        const Picture whole = shown();
        if (partial == whole)
        {
            return testing::AssertionSuccess();
        }
        int count = 0;
        std::string first;
        for (int y = 0; y < whole.height; ++y)
        {
            for (int x = 0; x < whole.width; ++x)
            {
                if (partial.at(x, y) != whole.at(x, y) && count++ == 0)
                {
                    first = std::to_string(x) + ',' + std::to_string(y);
                }
            }
        }
        return testing::AssertionFailure() << count << " pixels differ, the first at " << first;
    }

    std::u16string randomMarkup(std::mt19937 &random)
    {
        static const std::vector<std::u16string> pieces = {
            u"word ",     u"WWm ",         u"<B>bold</B> ",      u"<BR>",
            u"<A=key>hot</A> ", u"<BODY=#FFE0C0>", u"<FONT COLOR=#C00000>", u"<P ALIGN=right>right ",
            u"long words of a text that wraps ", u"<FONT SIZE=-1>small "};
        std::u16string markup;
        for (unsigned count = random() % 5; count > 0; --count)
        {
            markup += pieces[random() % pieces.size()];
        }
        return markup;
    }

    void changeCell(std::mt19937 &random)
    {
        const auto row = static_cast<USHORT>(random() % std::max<unsigned>(grid->GetRowCount(), 1));
        const auto col = static_cast<USHORT>(random() % std::max<unsigned>(grid->GetColCount(), 1));
        switch (random() % 4)
        {
        case 0:
            grid->SetCellText(col, row, randomMarkup(random).c_str(),
                              RECT{static_cast<LONG>(random() % 4), static_cast<LONG>(random() % 4),
                                   static_cast<LONG>(random() % 12) - 6, static_cast<LONG>(random() % 4)});
            break;
        case 1:
            grid->SetCellSingleLine(col, row, random() % 2 == 0);
            break;
        case 2:
            grid->AddFloater(col, row, 1 + random() % 9, static_cast<USHORT>(1 + random() % 6),
                             static_cast<USHORT>(random() % 101), static_cast<USHORT>(random() % 60),
                             RGB(0, 160, 0), false);
            break;
        default:
            grid->DeleteFloater(col, row, 1 + random() % 9);
            break;
        }
    }
    void scroll(std::mt19937 &random)
    {
        const auto some = static_cast<USHORT>(1 + random() % 4);
        switch (random() % 11)
        {
        case 0:
        case 1:
            grid->ScrollByRowDown(some, random() % 4 == 0);
            break;
        case 2:
        case 3:
            grid->ScrollByRowUp(some);
            break;
        case 4:
            grid->ScrollByColRight(1);
            break;
        case 5:
            grid->ScrollByColLeft(1);
            break;
        case 6:
            random() % 2 == 0 ? grid->ScrollByPageDown() : grid->ScrollByPageUp();
            break;
        case 7:
            random() % 2 == 0 ? grid->ScrollToTop() : grid->ScrollToBottom();
            break;
        case 8:
            SendMessageW(*grid, WM_VSCROLL, random() % 4, 0);
            break;
        case 9:
            SendMessageW(*grid, WM_HSCROLL, random() % 4, 0);
            break;
        default:
            grid->MakeCellVisible(static_cast<USHORT>(random() % grid->GetColCount()),
                                  static_cast<USHORT>(random() % grid->GetRowCount()), false);
            break;
        }
    }
    void select(std::mt19937 &random)
    {
        const auto row = [&] { return static_cast<USHORT>(random() % grid->GetRowCount()); };
        const auto col = [&] { return static_cast<USHORT>(random() % grid->GetColCount()); };
        switch (random() % 6)
        {
        case 0:
            grid->EmptySelection();
            break;
        case 1:
            grid->SetSelectionMode(static_cast<BYTE>(random() % 3));
            break;
        case 2:
            grid->SetRowSelect(random() % 2 == 0);
            break;
        default:
            grid->SetSelection(col(), row(), col(), row());
            break;
        }
    }
    void runRandomly(unsigned seed, int steps)
    {
        std::mt19937 random(seed);
        for (int step = 0; step < steps; ++step)
        {
            const unsigned kind = random() % 10;
            if (kind < 6)
            {
                scroll(random);
            }
            else if (kind < 9)
            {
                select(random);
            }
            else
            {
                changeCell(random);
            }
            settle();
            ASSERT_TRUE(isAsPaintedWhole()) << "seed " << seed << " step " << step << " kind " << kind;
        }
    }
    void prepare(unsigned seed)
    {
        std::mt19937 random(seed);
        grid->SetShowHLines(random() % 2 == 0);
        grid->SetShowVLines(random() % 2 == 0);
        grid->SetFloaterOptions(random() % 2 == 0, random() % 2 == 0);
        grid->SetFixedRowCount(static_cast<USHORT>(random() % 3));
        grid->SetFixedColCount(static_cast<USHORT>(random() % 2));
        for (USHORT col = 0; random() % 2 == 0 && col < grid->GetColCount(); ++col)
        {
            grid->SetColWidth(col, static_cast<USHORT>(20 + random() % 90));
        }
    }
};

TEST_F(GridPaint, partsOfPlainGridsEqualTheWhole)
{
    for (unsigned seed = 0; seed < 8; ++seed)
    {
        makePlain(24, 5, 200, 150);
        std::mt19937 random(seed + 100);
        grid->BeginUpdate();
        for (USHORT row = 0; row < 24; ++row)
        {
            for (USHORT col = 0; col < 5; ++col)
            {
                grid->SetCellText(col, row, randomMarkup(random).c_str());
            }
        }
        prepare(seed);
        grid->EndUpdate();
        runRandomly(seed, 130);
        if (HasFatalFailure())
        {
            return;
        }
    }
}

TEST_F(GridPaint, partsOfGridsOnDemandEqualTheWhole)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        static std::u16string text;
        std::mt19937 random(static_cast<unsigned>(request.hdr.idFrom));
        text = randomMarkup(random);
        request.pszHTML = random() % 9 == 0 ? nullptr : text.c_str();
        request.bSingleLine = random() % 5 == 0 ? 1 : 0;
    };
    for (unsigned seed = 24; seed < 32; ++seed)
    {
        makeOnDemand(60, 4, 200, 150);
        prepare(seed);
        runRandomly(seed, 130);
        if (HasFatalFailure())
        {
            return;
        }
    }
}

// --- What is painted ---------------------------------------------------------------------------------------------

TEST_F(GridPaint, aLargerSelectionPaintsOnlyTheRowThatCame)
{
    TestGrid &made = makePlain(10, 2, 200, 150);
    made.SetSelection(0, 1, 1, 5);
    made.SetCellOwnerDrawProc(countDrawn);
    drawnCells.clear();
    made.SetSelection(0, 1, 1, 6);
    settle();
    EXPECT_EQ(drawnCells, (std::vector<DWORD>{0x60000, 0x60001}));
    drawnCells.clear();
    made.SetSelection(0, 1, 1, 6);
    settle();
    EXPECT_TRUE(drawnCells.empty());
    made.SetSelection(0, 3, 1, 6);
    settle();
    EXPECT_EQ(drawnCells, (std::vector<DWORD>{0x10000, 0x10001, 0x20000, 0x20001}));
    EXPECT_EQ(made.SetCellOwnerDrawProc(nullptr), &countDrawn);
}

TEST_F(GridPaint, aScrollPaintsOnlyTheRowsThatCame)
{
    TestGrid &made = makePlain(40, 1, 200, 150); // ten rows of 15
    settle();
    made.SetCellOwnerDrawProc(countDrawn);
    drawnCells.clear();
    made.ScrollByRowDown(2, false);
    settle();
    EXPECT_EQ(drawnCells, (std::vector<DWORD>{0xA0000, 0xB0000}));
    drawnCells.clear();
    made.ScrollByRowUp(1);
    settle();
    EXPECT_EQ(drawnCells, (std::vector<DWORD>{0x10000}));
    drawnCells.clear();
    made.ScrollByRowDown(20, false); // more than a screen
    settle();
    EXPECT_EQ(drawnCells.size(), 10U);
}

TEST_F(GridPaint, aPaintAfterACoverUpDrawsNothingAnew)
{
    TestGrid &made = makePlain(5, 1);
    settle();
    made.SetCellOwnerDrawProc(countDrawn);
    drawnCells.clear();
    InvalidateRect(made, nullptr, FALSE);
    settle();
    EXPECT_TRUE(drawnCells.empty());
    ShowWindow(made, SW_HIDE);
    SetWindowPos(made, nullptr, 0, 0, 0, 0, SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
    settle();
    EXPECT_EQ(drawnCells.size(), 5U);
}

TEST_F(GridPaint, linesLieAtTheRightAndTheBottomOfCells)
{
    TestGrid &made = makePlain(2, 2, 100, 60);
    made.SetLinesColor(RGB(255, 0, 0));
    made.SetShowHLines(true);
    settle();
    EXPECT_EQ(screenPixel(49, 7), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(49, 29), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(48, 7), RGB(255, 255, 255));
    EXPECT_EQ(screenPixel(20, 14), RGB(255, 0, 0));
    EXPECT_EQ(screenPixel(20, 13), RGB(255, 255, 255));
    EXPECT_EQ(screenPixel(49, 30), RGB(255, 255, 255)); // below the last row
    made.SetShowVLines(false);
    made.SetShowHLines(false);
    settle();
    EXPECT_EQ(screenPixel(49, 7), RGB(255, 255, 255));
}

TEST_F(GridPaint, cellsHaveTheirBodyColourOrThatOfTheSelection)
{
    TestGrid &made = makePlain(2, 2, 100, 60);
    made.SetCellText(0, 0, u"<BODY=#00FF00>");
    made.SetSelection(1, 1, 1, 1);
    settle();
    EXPECT_EQ(screenPixel(20, 7), RGB(0, 255, 0));
    EXPECT_EQ(screenPixel(70, 7), RGB(255, 255, 255));
    EXPECT_EQ(screenPixel(70, 22), GetSysColor(COLOR_HIGHLIGHT));
    made.SetSelectionMode(3);
    settle();
    EXPECT_EQ(screenPixel(70, 22), RGB(255, 255, 255));
}

TEST_F(GridPaint, aFloaterHasItsStripAndItsSlot)
{
    TestGrid &made = makePlain(6, 1, 100, 120); // rows of 15
    floaterText = u"<BODY=#FFFF00>";
    made.AddFloater(0, 1, 5, 4, 50, 25, RGB(255, 0, 255), false);
    settle();
    // 60 high: the strip from 15 down, 30 - 1 long, in the first 7 columns, of which the outermost is not copied.
    EXPECT_EQ(screenPixel(1, 15 + 15), RGB(255, 0, 255));
    EXPECT_EQ(screenPixel(6, 15 + 43), RGB(255, 0, 255));
    EXPECT_NE(screenPixel(1, 15 + 14), RGB(255, 0, 255));
    EXPECT_NE(screenPixel(1, 15 + 44), RGB(255, 0, 255));
    EXPECT_EQ(screenPixel(7, 15 + 20), GetSysColor(COLOR_WINDOWFRAME));
    EXPECT_EQ(screenPixel(50, 40), RGB(255, 255, 0));
    made.SetFloaterOptions(false, false);
    settle();
    EXPECT_EQ(screenPixel(50, 40), GetSysColor(COLOR_HIGHLIGHT));
}

// --- Layout and scrolling ----------------------------------------------------------------------------------------

TEST_F(GridPaint, columnsShareTheWidthThatTheBarLeaves)
{
    TestGrid &made = makePlain(3, 4, 241, 100);
    made.SetColWidth(0, 100);
    EXPECT_EQ(made.GetColWidth(1), 47);
    EXPECT_EQ(made.GetColWidth(3), 47);
    TestGrid &wider = makePlain(3, 4, 242, 100);
    wider.SetColWidth(0, 100);
    EXPECT_EQ(wider.GetColWidth(1), 48);
    EXPECT_EQ(wider.GetColWidth(2), 47);
    makePlain(50, 1, 200, 100);
    EXPECT_EQ(grid->GetColWidth(0), 200 - GetSystemMetrics(SM_CXVSCROLL));
    RECT client{};
    GetClientRect(*grid, &client);
    EXPECT_EQ(client.right, 200 - GetSystemMetrics(SM_CXVSCROLL));
    EXPECT_EQ(bar(SB_VERT).nMax, 750);
    EXPECT_EQ(bar(SB_VERT).nPage, 100U);
    grid->SetShowScrollBars(false, false, false);
    EXPECT_EQ(grid->GetColWidth(0), 200);
}

TEST_F(GridPaint, whereAllRowsFitNothingScrolls)
{
    TestGrid &made = makePlain(4, 1, 200, 100);
    made.SetFixedRowCount(1);
    made.ScrollByRowDown(1, false);
    made.ScrollByPageDown();
    made.ScrollToBottom();
    EXPECT_EQ(made.GetTopRow(), 1);
    EXPECT_EQ(bar(SB_VERT).nMax, 0);
}

TEST_F(GridPaint, stepsStopAtTheLargestTopRow)
{
    TestGrid &made = makePlain(20, 1, 200, 100); // 15 each: six and a part show, the largest top row is 14
    EXPECT_EQ(made.GetBottomRow(), 6);
    made.ScrollByRowDown(5, false);
    EXPECT_EQ(made.GetTopRow(), 5);
    made.ScrollByRowDown(50, false);
    EXPECT_EQ(made.GetTopRow(), 14);
    EXPECT_EQ(made.GetBottomRow(), 19);
    EXPECT_EQ(bar(SB_VERT).nPos, 300 - 100 + 1);
    made.ScrollByRowDown(3, true);
    EXPECT_EQ(made.GetTopRow(), 17);
    made.ScrollByRowUp(4);
    EXPECT_EQ(made.GetTopRow(), 13);
    EXPECT_EQ(bar(SB_VERT).nPos, 13 * 15);
    made.ScrollByRowUp(50);
    EXPECT_EQ(made.GetTopRow(), 0);
    made.ScrollToBottom();
    EXPECT_EQ(made.GetTopRow(), 14);
    made.ScrollToTop();
    EXPECT_EQ(made.GetTopRow(), 0);
}

TEST_F(GridPaint, pagesKeepALineOfTheOneBefore)
{
    TestGrid &made = makePlain(40, 1, 200, 100);
    made.ScrollByPageDown(); // row 6 is cut: row 5 comes on top
    EXPECT_EQ(made.GetTopRow(), 5);
    made.ScrollByPageDown();
    EXPECT_EQ(made.GetTopRow(), 10);
    made.ScrollByPageUp(); // seven rows above pass 100 at row 3; two below that
    EXPECT_EQ(made.GetTopRow(), 5);
    made.ScrollByPageUp();
    EXPECT_EQ(made.GetTopRow(), 0);
}

TEST_F(GridPaint, aRowTallerThanTheAreaTakesTheRowStep)
{
    TestGrid &made = makePlain(3, 1, 200, 100);
    made.SetRowHeight(1, 150);
    made.ScrollByRowDown(1, false);
    EXPECT_EQ(made.GetTopRow(), 1);
    made.ScrollByPageDown();
    EXPECT_EQ(made.GetTopRow(), 1);
    made.ScrollByRowDown(1, false);
    EXPECT_EQ(made.GetTopRow(), 2);
    TestGrid &single = makePlain(1, 1, 200, 100);
    single.SetRowHeight(0, 150);
    single.ScrollToBottom();
    EXPECT_EQ(single.GetTopRow(), 0);
}

TEST_F(GridPaint, placesOfCellsFollowTheScrolling)
{
    TestGrid &made = makePlain(20, 2, 200, 100);
    made.SetFixedRowCount(1);
    const int half = (200 - GetSystemMetrics(SM_CXVSCROLL) + 1) / 2;
    made.ScrollByRowDown(3, false);
    EXPECT_EQ(made.GetTopRow(), 4);
    EXPECT_EQ(rectOf(0, 0), "0,0 " + std::to_string(half) + ",15");
    EXPECT_EQ(rectOf(0, 4), "0,15 " + std::to_string(half) + ",30");
    EXPECT_EQ(rectOf(0, 2), "no 0,0 0,0");
    EXPECT_EQ(rectOf(0, 15), "no 0,0 0,0");
    USHORT col = 0;
    USHORT row = 0;
    EXPECT_TRUE(made.GetCellFromPoint(10, 30, col, row)); // the edge belongs to the row that ends there
    EXPECT_EQ(row, 4);
    EXPECT_TRUE(made.GetCellFromPoint(POINT{10, 31}, col, row));
    EXPECT_EQ(row, 5);
    for (USHORT wanted = 4; wanted < 9; ++wanted)
    {
        POINT point{};
        ASSERT_TRUE(made.GetPointFromCell(1, wanted, point));
        EXPECT_TRUE(made.GetCellFromPoint(point, col, row));
        EXPECT_EQ(row, wanted);
        EXPECT_EQ(col, 1);
    }
    // 15 to 90 are five whole rows, the sixth is cut.
    EXPECT_TRUE(made.IsCellVisible(0, 8, false));
    EXPECT_FALSE(made.IsCellVisible(0, 9, false));
    EXPECT_TRUE(made.IsCellVisible(0, 9, true));
    EXPECT_TRUE(made.IsCellVisible(1, 0, false));
    EXPECT_FALSE(made.IsCellVisible(0, 3, true));
}

TEST_F(GridPaint, aCellIsBroughtIntoView)
{
    TestGrid &made = makePlain(20, 1, 200, 100);
    made.MakeCellVisible(0, 6, false); // cut: 0 to 6 pass 100, so 1 comes on top
    EXPECT_EQ(made.GetTopRow(), 1);
    made.MakeCellVisible(0, 12, false);
    EXPECT_EQ(made.GetTopRow(), 7);
    made.MakeCellVisible(0, 3, false);
    EXPECT_EQ(made.GetTopRow(), 3);
    made.MakeCellVisible(0xFFFF, 0xFFFF, false);
    EXPECT_EQ(made.GetTopRow(), 0);
    made.MakeRowTopMost(9, false);
    EXPECT_EQ(made.GetTopRow(), 9);
    made.MakeRowTopMost(18, true);
    EXPECT_EQ(made.GetTopRow(), 18);
    made.MakeRowTopMost(0xFFFF, false);
    EXPECT_EQ(made.GetTopRow(), 0);
}

TEST_F(GridPaint, onDemandTheEndIsThatOfTheRealHeights)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"<FONT SIZE=-1>a<BR>b<BR>c"; }; // 31 high
    TestGrid &made = makeOnDemand(100, 1, 200, 100);
    settle();
    EXPECT_EQ(made.GetTopRow(), 0);
    made.ScrollToBottom();
    EXPECT_EQ(made.GetTopRow(), 97); // three of 31 fit, the fourth passes
    EXPECT_EQ(made.GetBottomRow(), 99);
    EXPECT_LT(asked.size(), 12U);
}

TEST_F(GridPaint, scrollBarsAskForSteps)
{
    TestGrid &made = makePlain(40, 1, 200, 100);
    SendMessageW(made, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(made.GetTopRow(), 1);
    SendMessageW(made, WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_EQ(made.GetTopRow(), 6);
    SendMessageW(made, WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(made.GetTopRow(), 34);
    SendMessageW(made, WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(made.GetTopRow(), 0);
    SendMessageW(made, WM_VSCROLL, SB_ENDSCROLL, 0);
    const std::vector<Scrolled> expected = {{SB_LINEDOWN, 0}, {SB_PAGEDOWN, 0}, {SB_BOTTOM, 0}, {SB_TOP, 0},
                                            {SB_ENDSCROLL, 0}};
    EXPECT_EQ(scrolled, expected);
    made.SetBarsScrollMode(1);
    SendMessageW(made, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(made.GetTopRow(), 5);
}

TEST_F(GridPaint, delayedRequestsOfOneIntervalAreOne)
{
    TestGrid &made = makePlain(40, 1, 200, 100);
    made.SetDelayedScrolling(5);
    EXPECT_EQ(made.GetDelayedScrolling(), 5U);
    for (int i = 0; i < 10; ++i)
    {
        SendMessageW(made, WM_VSCROLL, SB_LINEDOWN, 0);
    }
    EXPECT_EQ(made.GetTopRow(), 0);
    SendMessageW(made, WM_TIMER, 85, 0);
    EXPECT_EQ(made.GetTopRow(), 1);
    SendMessageW(made, WM_TIMER, 85, 0);
    EXPECT_EQ(made.GetTopRow(), 1);
    made.SetDelayedScrolling(0);
    SendMessageW(made, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(made.GetTopRow(), 2);
}

TEST_F(GridPaint, aGridThatGrowsShowsItsBeginning)
{
    TestGrid &made = makePlain(10, 1, 200, 60);
    made.ScrollToBottom();
    EXPECT_GT(made.GetTopRow(), 0);
    MoveWindow(made, 0, 0, 200, 200, TRUE);
    settle();
    EXPECT_EQ(made.GetTopRow(), 0);
    EXPECT_EQ(made.GetColWidth(0), 200);
    EXPECT_TRUE(isAsPaintedWhole());
}

TEST_F(GridPaint, aTapSelectsAndIsTold)
{
    TestGrid &made = makePlain(5, 2, 200, 100);
    made.SetCellText(1, 2, u"<FONT SIZE=-1><A=key>hot</A>");
    settle();
    penDown(50, 20);
    penUp(50, 20);
    settle();
    EXPECT_EQ(made.GetRow(), 1);
    EXPECT_EQ(made.GetCol(), 0);
    EXPECT_TRUE(made.IsCellSelected(1, 0));
    EXPECT_EQ(notified, (std::vector<int>{2047, -114}));
    EXPECT_EQ(lastNotify.nRow, 1U);
    EXPECT_EQ(lastNotify.nCol, 0U);
    notified.clear();
    penDown(103, 34);
    penUp(103, 34);
    settle();
    EXPECT_EQ(notified, (std::vector<int>{2047, 1125}));
    EXPECT_EQ(lastTarget, u"key");
    penDown(50, 95);
    penUp(50, 95);
    settle();
    EXPECT_EQ(made.GetRow(), 0xFFFF);
    EXPECT_FALSE(made.IsCellSelected(2, 1));
}

TEST_F(GridPaint, streamsFlowAlongTheRows)
{
    TestGrid &made = makePlain(6, 5, 200, 100);
    made.SetSelectionMode(2);
    made.SetSelection(3, 2, 1, 4);
    std::string marks;
    for (USHORT row = 1; row <= 5; ++row)
    {
        for (USHORT col = 0; col < 5; ++col)
        {
            marks += made.IsCellSelected(row, col) ? 'x' : '.';
        }
        marks += ' ';
    }
    EXPECT_EQ(marks, "..... ...xx xxxxx xx... ..... ");
    EXPECT_TRUE(isAsPaintedWhole());
}
} // namespace
} // namespace zb::test
