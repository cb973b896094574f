// Steps, limits and bars of the grid's scrolling in numbers, and heights that become known on the way.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
class GridScroll : public GridTest
{
  protected:
    /// Twelve columns of 40, of which five show.
    TestGrid &makeWide(USHORT rows)
    {
        makePlain(rows, 12);
        setWidths();
        return *grid;
    }
    void setWidths(USHORT width = 40)
    {
        grid->BeginUpdate();
        for (USHORT col = 0; col < grid->GetColCount(); ++col)
        {
            grid->SetColWidth(col, width);
        }
        grid->EndUpdate();
    }
    bool isAsPaintedWhole()
    {
        const Picture before = shown();
        grid->Invalidate();
        return before == shown();
    }
    void update(const std::function<void()> &changes)
    {
        grid->BeginUpdate();
        changes();
        grid->EndUpdate();
    }
    std::string places(int which)
    {
        const SCROLLINFO info = bar(which);
        return std::to_string(info.nMin) + ' ' + std::to_string(info.nMax) + ' ' + std::to_string(info.nPage) + ' ' +
               std::to_string(info.nPos);
    }
};

// --- Steps -------------------------------------------------------------------------------------------------------

TEST_F(GridScroll, pageStepsGoByWhatFits)
{
    makePlain(40, 1, 200, 105); // seven rows exactly
    grid->ScrollByPageDown();
    EXPECT_EQ(grid->GetTopRow(), 5) << "the one before the last";
    grid->SetTopRow(20);
    grid->ScrollByPageUp();
    EXPECT_EQ(grid->GetTopRow(), 14) << "13 to 19 fill the area, 12 passes it";
    makePlain(40, 1).SetFixedRowCount(2); // 70 pixels are left
    grid->SetTopRow(20);
    grid->ScrollByPageUp();
    EXPECT_EQ(grid->GetTopRow(), 17) << "16 to 19 are 60, 15 passes";
    grid->SetBarsScrollMode(1);
    SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(grid->GetTopRow(), 20) << "17 to 21 show, the last one cut";
    SendMessageW(*grid, WM_VSCROLL, SB_LINEUP, 0);
    EXPECT_EQ(grid->GetTopRow(), 17);
    grid->SetTopRow(4);
    grid->ScrollByPageUp();
    EXPECT_EQ(grid->GetTopRow(), 2);
    grid->SetTopRow(35);
    grid->ScrollByPageDown();
    EXPECT_EQ(grid->GetTopRow(), 36) << "the largest";
    grid->ScrollByPageDown();
    EXPECT_EQ(grid->GetTopRow(), 36);
    grid->ScrollByRowUp(100);
    EXPECT_EQ(grid->GetTopRow(), 2);
}

TEST_F(GridScroll, pagesOfHighRowsGoOnByARow)
{
    makePlain(10, 1).SetMinRowHeight(60); // of 100
    for (const USHORT top : {1, 2, 3})
    {
        grid->ScrollByPageDown();
        EXPECT_EQ(grid->GetTopRow(), top);
    }
    grid->ScrollByPageUp();
    EXPECT_EQ(grid->GetTopRow(), 2);
    grid->SetMinRowHeight(150); // which pages can't pass
    grid->ScrollByPageDown();
    grid->ScrollByPageUp();
    EXPECT_EQ(grid->GetTopRow(), 2);
    grid->ScrollByRowUp(1);
    EXPECT_EQ(grid->GetTopRow(), 1);
}

TEST_F(GridScroll, linesThatCantComeFirstAreRefused)
{
    makeWide(40).SetFixedRowCount(2);
    grid->SetFixedColCount(1);
    grid->SetTopRow(10);
    grid->SetLeftCol(3);
    for (const int row : {0, 1, 40})
    {
        grid->SetTopRow(static_cast<USHORT>(row));
        grid->MakeRowTopMost(static_cast<USHORT>(row), true);
        EXPECT_EQ(grid->GetTopRow(), 10) << row;
    }
    grid->MakeRowTopMost(GRID_NONE, false);
    EXPECT_EQ(grid->GetTopRow(), 10) << "that is row 0, which is fixed";
    grid->SetLeftCol(0);
    grid->SetLeftCol(12);
    EXPECT_EQ(grid->GetLeftCol(), 3);
    EXPECT_EQ(rectOf(2, 10), "no 0,0 0,0") << "left of what shows";
    EXPECT_EQ(rectOf(3, 10), "40,30 80,45");
    EXPECT_EQ(rectOf(0, 0), "0,0 40,15");
    grid->ScrollToLeft();
    EXPECT_EQ(grid->GetLeftCol(), 1);
}

TEST_F(GridScroll, aCellComesIntoViewAsFarAsNeeded)
{
    makeWide(40).SetRowHeight(20, 150);
    MoveWindow(*grid, 0, 0, 200 + GetSystemMetrics(SM_CXVSCROLL), 105 + GetSystemMetrics(SM_CYHSCROLL), TRUE);
    settle(); // 200 by 105
    grid->MakeCellVisible(0, 7, false);
    EXPECT_EQ(grid->GetTopRow(), 1) << "1 to 7 fill the area";
    grid->MakeCellVisible(0, 20, false);
    EXPECT_EQ(grid->GetTopRow(), 20) << "higher than the area";
    grid->MakeCellVisible(0, 2, false);
    EXPECT_EQ(grid->GetTopRow(), 2);
    grid->MakeCellVisible(6, 2, false);
    EXPECT_EQ(grid->GetLeftCol(), 2) << "2 to 6 fill the area";
    grid->MakeCellVisible(1, 2, false);
    EXPECT_EQ(grid->GetLeftCol(), 1);
    grid->MakeCellVisible(40, 2, false);
    grid->MakeCellVisible(2, 50, false);
    EXPECT_EQ(grid->GetLeftCol(), 1);
    EXPECT_EQ(grid->GetTopRow(), 2);
}

TEST_F(GridScroll, theLastRowCountsAsItIsAskedFor)
{
    makePlain(40, 1);
    EXPECT_TRUE(grid->IsCellVisible(0, 6, true)) << "cut";
    EXPECT_FALSE(grid->IsCellVisible(0, 6, false));
    grid->MakeCellVisible(0, 6, true);
    EXPECT_EQ(grid->GetTopRow(), 0);
    makePlain(4, 1);
    EXPECT_FALSE(grid->IsCellVisible(0, 3, true)) << "whole";
    EXPECT_TRUE(grid->IsCellVisible(0, 3, false));
    EXPECT_TRUE(grid->IsCellVisible(0, 2, true));
    grid->MakeCellVisible(0, 3, true);
    EXPECT_EQ(grid->GetTopRow(), 0);
}

TEST_F(GridScroll, theLastScrollInsideAnUpdateCounts)
{
    makePlain(40, 1).BeginUpdate();
    for (USHORT row = 0; row < 40; row = static_cast<USHORT>(row + 3))
    {
        grid->SetCellText(0, row, u"<BODY=#00FF00>");
    }
    grid->EndUpdate();
    struct Case
    {
        USHORT from;
        USHORT top;
        std::function<void(TestGrid &)> scrolls;
    };
    const Case cases[] = {
        {0, 0, [](TestGrid &made) { made.MakeRowTopMost(30, false), made.ScrollToTop(); }},
        {0, 0, [](TestGrid &made) { made.MakeRowTopMost(30, false), made.MakeRowTopMost(0, false); }},
        {0, 0, [](TestGrid &made) { made.SetTopRow(30), made.SetTopRow(0); }},
        {0, 0, [](TestGrid &made) { made.ScrollByRowDown(12, false), made.ScrollByRowUp(3); }},
        {10, 7, [](TestGrid &made) { made.ScrollByRowDown(12, false), made.ScrollByRowUp(3); }},
        {0, 5, [](TestGrid &made) { made.MakeRowTopMost(30, false), made.MakeCellVisible(0, 5, false); }},
        {0, 34, [](TestGrid &made) { made.MakeRowTopMost(39, true); }}, // limited to the largest
        {10, 0, [](TestGrid &made) { made.ScrollToBottom(), made.MakeRowTopMost(GRID_NONE, false); }},
    };
    for (const Case &one : cases)
    {
        grid->SetTopRow(one.from);
        update(
            [&]
            {
                one.scrolls(*grid);
                EXPECT_EQ(grid->GetTopRow(), one.from);
            });
        EXPECT_EQ(grid->GetTopRow(), one.top) << &one - cases;
        EXPECT_EQ(bar(SB_VERT).nPos, one.top == 34 ? 501 : one.top * 15) << &one - cases;
        EXPECT_EQ(grid->GetBottomRow(), std::min(one.top + 6, 39)) << &one - cases;
        EXPECT_TRUE(isAsPaintedWhole()) << &one - cases;
    }
    for (const bool toEnd : {false, true})
    {
        update(
            [&]
            {
                grid->SetDimensions(2, 12); // of which nothing is known yet
                setWidths();
                toEnd ? grid->ScrollToRight() : grid->ScrollByColRight(3);
            });
        EXPECT_EQ(grid->GetLeftCol(), toEnd ? 7 : 3);
    }
}

TEST_F(GridScroll, onDemandAnUpdateEndsWithTheLastRowsThatFillTheArea)
{
    onCell = [](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        request.nRowHeight = 25; // four fill 100 exactly
    };
    makeOnDemand(100, 1);
    for (const auto &[row, top] : {std::pair<USHORT, USHORT>{50, 50}, {96, 96}, {97, 96}, {99, 96}})
    {
        grid->BeginUpdate();
        grid->MakeRowTopMost(row, true);
        grid->EndUpdate();
        EXPECT_EQ(grid->GetTopRow(), top) << row;
    }
    grid->ScrollByRowDown(1, false);
    EXPECT_EQ(grid->GetTopRow(), 96) << "the largest";
}

TEST_F(GridScroll, scrollsInsideAnUpdateThatDeletesAreHarmless)
{
    makeWide(100).SetTopRow(50);
    grid->SetLeftCol(6);
    update(
        [this]
        {
            grid->DeleteRows(10, 90);
            grid->DeleteCols(3, 9);
            for (const UINT code : {SB_PAGEDOWN, SB_PAGEUP, SB_THUMBPOSITION, SB_LINEDOWN})
            {
                SendMessageW(*grid, WM_VSCROLL, code, 0);
                SendMessageW(*grid, WM_HSCROLL, code, 0);
            }
            grid->MakeCellVisible(2, 9, false);
        });
    EXPECT_EQ(grid->GetBottomRow(), 9);
    EXPECT_EQ(grid->GetLeftCol(), 0);
    EXPECT_TRUE(isAsPaintedWhole());
}

// --- Heights that become known -----------------------------------------------------------------------------------

TEST_F(GridScroll, aShortListOnDemandGetsItsBarWithItsHeights)
{
    std::u16string text = u"<FONT SIZE=-1>a";
    onCell = [&](GRIDCELLREQUEST &request) { request.pszHTML = text.c_str(); };
    makeOnDemand(5, 1);
    EXPECT_EQ(places(SB_VERT), "0 0 0 0");
    EXPECT_EQ(grid->GetColWidth(0), 200);
    text = u"<FONT SIZE=-1>a<BR>b<BR>c"; // 31 high
    makeOnDemand(5, 1);
    EXPECT_EQ(grid->GetTopRow(), 0);
    EXPECT_EQ(grid->GetColWidth(0), 200 - GetSystemMetrics(SM_CXVSCROLL));
    EXPECT_EQ(places(SB_VERT), "0 139 100 0") << "four were seen, one counts 15";
    grid->ScrollToBottom();
    EXPECT_EQ(grid->GetTopRow(), 2);
    EXPECT_EQ(places(SB_VERT), "0 155 100 56") << "at the end";
}

TEST_F(GridScroll, aBarThatIsNotThereTakesNoRoom)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
    makeOnDemand(2, 12);
    setWidths(47); // the fifth begins in the last pixels, where a bar would stand
    USHORT col = 0;
    USHORT row = 0;
    EXPECT_TRUE(grid->GetCellFromPoint(195, 5, col, row));
    EXPECT_EQ(col, 4);
    EXPECT_EQ(places(SB_VERT), "0 0 0 0");
    EXPECT_EQ(bar(SB_HORZ).nPage, 200U);
}

TEST_F(GridScroll, aHeightThatBecomesKnownCountsInTheWhole)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"<FONT SIZE=-1>a<BR>b<BR>c"; }; // 31 high
    makeOnDemand(100, 1).SetFixedRowCount(1);
    EXPECT_EQ(grid->GetTotalHeight(), 4 * 31 + 96 * 15U);
    EXPECT_EQ(bar(SB_VERT).nPage, 100U - 31) << "beside the fixed row";
    EXPECT_EQ(grid->GetRowHeight(50, false), 31);
    EXPECT_EQ(grid->GetTotalHeight(), 5 * 31 + 95 * 15U);
    grid->ScrollByRowDown(1, false);
    EXPECT_EQ(bar(SB_VERT).nMax, 6 * 31 + 94 * 15);
    EXPECT_EQ(bar(SB_VERT).nPos, 31);
    make(true).BeginUpdate();
    grid->SetDimensions(100, 1);
    grid->SetFixedRowCount(1);
    grid->EndUpdate();
    EXPECT_EQ(rectOf(0, 1), "0,31 187,62") << "a fixed row, too";
    EXPECT_EQ(bar(SB_VERT).nPage, 100U - 31);
}

TEST_F(GridScroll, theEndOfAListIsThatOfItsRealHeights)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"<FONT SIZE=-1>a<BR>b<BR>c"; }; // 31 high
    makeOnDemand(100, 1).SetTopRow(99);
    EXPECT_EQ(grid->GetTopRow(), 97) << "three of 31 fit";
    EXPECT_EQ(grid->GetBottomRow(), 99);
    makeOnDemand(100, 1).MakeCellVisible(0, 98, false);
    EXPECT_EQ(grid->GetTopRow(), 96) << "no further than needed";
}

TEST_F(GridScroll, aRowThatGrowsBetweenPaintsIsShownSoByTheNextScroll)
{
    bool known = false;
    onCell = [&](GRIDCELLREQUEST &request)
    {
        const bool late = HIWORD(request.hdr.idFrom) == 3;
        request.pszHTML = !late ? u"a" : known ? u"<FONT SIZE=-1>a<BR>b<BR>c" : nullptr;
    };
    makeOnDemand(40, 1);
    known = true;
    grid->Invalidate(); // which asks again
    grid->ScrollByRowDown(1, false);
    EXPECT_EQ(grid->GetRowHeight(3, false), 31);
    EXPECT_TRUE(isAsPaintedWhole());
}

// --- Bars --------------------------------------------------------------------------------------------------------

TEST_F(GridScroll, barsCountAllLinesAndThePageWithoutTheFixedOnes)
{
    makePlain(40, 1).SetFixedRowCount(2);
    EXPECT_EQ(places(SB_VERT), "0 600 70 0");
    grid->SetTopRow(10);
    EXPECT_EQ(places(SB_VERT), "0 600 70 120") << "from the first free row";
    grid->ScrollToBottom();
    EXPECT_EQ(places(SB_VERT), "0 600 70 531") << "the end, 600, as far as the page lets it";
    EXPECT_EQ(places(SB_HORZ), "0 0 0 0");
    makeWide(2).SetFixedColCount(1);
    EXPECT_EQ(places(SB_HORZ), "0 480 160 0");
    grid->SetLeftCol(3);
    EXPECT_EQ(places(SB_HORZ), "0 480 160 80");
    grid->ScrollToRight();
    EXPECT_EQ(grid->GetLeftCol(), 8) << "four of 40 fill 160";
    EXPECT_EQ(places(SB_HORZ), "0 480 160 321");
    EXPECT_EQ(places(SB_VERT), "0 0 0 0");
    grid->SetShowScrollBars(true, false, false);
    EXPECT_EQ(places(SB_HORZ), "0 0 0 0");
}

TEST_F(GridScroll, whatIsHigherThanABarCanCountStillHasOne)
{
    makeOnDemand(65535, 1).SetRowHeightFixed(true);
    grid->SetMinRowHeight(65534);
    EXPECT_EQ(grid->GetTotalHeight(), 65535U * 65534U);
    EXPECT_EQ(bar(SB_VERT).nMax, 0x7FFFFFFF);
    grid->SetFixedRowCount(65535);
    EXPECT_EQ(rectOf(0, 0).substr(0, 4), "0,0 ");
}

TEST_F(GridScroll, whileScrollingIsDelayedABarsLastRequestIsDoneAtTheTick)
{
    makePlain(40, 1);
    grid->SetDelayedScrolling(1000);
    struct Case
    {
        UINT code;
        USHORT top;
    };
    // From row 20, of which the page before begins with 15 and the next with 25.
    for (const Case &one : {Case{SB_LINEUP, 19}, Case{SB_LINEDOWN, 21}, Case{SB_PAGEUP, 15}, Case{SB_PAGEDOWN, 25},
                            Case{SB_TOP, 0}, Case{SB_BOTTOM, 34}})
    {
        grid->SetTopRow(20);
        scrolled.clear();
        SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
        SendMessageW(*grid, WM_VSCROLL, one.code, 0);
        EXPECT_EQ(grid->GetTopRow(), 20) << one.code;
        EXPECT_TRUE(scrolled.empty()) << one.code;
        tick(85);
        EXPECT_EQ(grid->GetTopRow(), one.top) << one.code;
        EXPECT_EQ(scrolled, (std::vector<Scrolled>{{one.code, 0}}));
    }
    scrolled.clear();
    for (const UINT code : {SB_THUMBPOSITION, SB_THUMBTRACK, SB_ENDSCROLL})
    {
        SendMessageW(*grid, WM_VSCROLL, static_cast<WPARAM>(MAKELONG(code, 3)), 0);
    }
    EXPECT_EQ(scrolled, (std::vector<Scrolled>{{SB_THUMBPOSITION, 3}, {SB_THUMBTRACK, 3}, {SB_ENDSCROLL, 3}}));
}

TEST_F(GridScroll, theTimerOfDelaysRunsWhileThereIsSomethingToDo)
{
    makePlain(40, 1);
    grid->SetDelayedScrolling(1000);
    const auto runs = [this]
    {
        const bool found = KillTimer(*grid, 85) != FALSE;
        if (found)
        {
            SetTimer(*grid, 85, 1000, nullptr);
        }
        return found;
    };
    EXPECT_TRUE(runs());
    tick(85);
    EXPECT_FALSE(runs()) << "an idle tick ends it";
    SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
    settle();
    EXPECT_EQ(grid->GetTopRow(), 0);
    skipTime(1000);
    settle();
    EXPECT_EQ(grid->GetTopRow(), 1) << "its own time";
    EXPECT_TRUE(runs()) << "until the idle tick";
    SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
    grid->SetDelayedScrolling(0);
    EXPECT_FALSE(runs());
    tick(85);
    EXPECT_EQ(grid->GetTopRow(), 1) << "what waited is forgotten";
    grid->SetDelayedScrolling(1000);
    for (int i = 0; i < 2; ++i)
    {
        SendMessageW(*grid, WM_VSCROLL, SB_LINEDOWN, 0);
        skipTime(600);
        settle();
    }
    EXPECT_EQ(grid->GetTopRow(), 2) << "further requests do not put it off";
    TestGrid none;
    none.SetDelayedScrolling(5);
    EXPECT_EQ(none.GetDelayedScrolling(), 0U) << "there is no timer without a window";
}
} // namespace
} // namespace zb::test
