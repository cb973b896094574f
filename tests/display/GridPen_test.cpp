// Taps, sweeps and scrolling by itself: what the pen selects, and what the parent is told.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
class GridPen : public FourColumnTest
{
  protected:
    static POINT moved(POINT point, int x, int y)
    {
        return {point.x + x, point.y + y};
    }
};

using Log = std::vector<std::string>;
using Codes = std::vector<int>;

// --- Taps --------------------------------------------------------------------------------------------------------

TEST_F(GridPen, aTapBesideTheCellsClearsSelectionAndCurrentCell)
{
    four(2);
    tap(at(1, 1));
    EXPECT_EQ(current(), "1,1");
    EXPECT_EQ(selection(), "1,1 1,1");
    notified.clear();
    tap({100, 80});
    EXPECT_EQ(current(), "none");
    EXPECT_EQ(selection(), "none");
    EXPECT_TRUE(notified.empty());
}

TEST_F(GridPen, aSweepFromBesideTheCellsSelectsNothing)
{
    four(2).SetMultiSelect(true, false);
    tap(at(1, 1));
    draw({{100, 80}, at(2, 1), at(2, 0)});
    EXPECT_EQ(selection(), "none");
}

TEST_F(GridPen, aTapTellsItsCellAndPlaceOnTheScreen)
{
    MoveWindow(four(), 20, 30, 200, 100, TRUE);
    settle();
    tap(moved(at(2, 3), 20, 30));
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.hdr.hwndFrom, grid->GetHwnd());
    EXPECT_EQ(lastNotify.hdr.idFrom, 0U);
    EXPECT_EQ(lastNotify.nCol, 2U);
    EXPECT_EQ(lastNotify.nRow, 3U);
    EXPECT_EQ(lastNotify.pt.x, at(2, 3).x + 20);
    EXPECT_EQ(lastNotify.pt.y, at(2, 3).y + 30);
    EXPECT_EQ(lastNotify.dwCookie, 0U);
}

TEST_F(GridPen, withoutSelectionTapsAreStillTold)
{
    four();
    tap(at(0, 1));
    grid->SetSelectionMode(3);
    notified.clear();
    tap(at(2, 2));
    EXPECT_EQ(selection(), "0,1 0,1");
    EXPECT_FALSE(grid->IsCellSelected(1, 0));
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.nCol, 2U);
}

TEST_F(GridPen, aFixedCellIsToldAndSelectsNothing)
{
    four().SetMultiSelect(true, false);
    grid->SetFixedRowCount(1);
    tap(at(2, 2));
    notified.clear();
    draw({at(1, 0), at(1, 3)});
    EXPECT_EQ(selection(), "2,2 2,2");
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.nRow, 3U);
}

TEST_F(GridPen, rowSelectCoversAllFreeColumns)
{
    four().SetRowSelect(true);
    grid->SetFixedColCount(1);
    tap(at(2, 3));
    EXPECT_EQ(selection(), "1,3 3,3");
    EXPECT_EQ(current(), "2,3");
}

TEST_F(GridPen, withoutMultiSelectTheCurrentCellKeepsTheSelection)
{
    four();
    tap(at(1, 1));
    grid->SetRow(2); // current, but not selected
    EXPECT_EQ(selection(), "none");
    tap(at(1, 2));
    EXPECT_EQ(selection(), "none");
    tap(at(2, 2));
    EXPECT_EQ(selection(), "2,2 2,2");
}

TEST_F(GridPen, aTapOnWhatIsSelectedKeepsIt)
{
    four().SetMultiSelect(true, false);
    grid->SetSelection(0, 1, 3, 4);
    tap(at(2, 2));
    EXPECT_EQ(selection(), "0,1 3,4");
    tap(at(2, 5));
    EXPECT_EQ(selection(), "2,5 2,5");
}

TEST_F(GridPen, shiftExtendsUpAndDownAndCollapsesInside)
{
    struct Case
    {
        int col, row;
        const char *selection;
    };
    four().SetMultiSelect(true, false);
    tap(at(1, 2));
    keyDown(VK_SHIFT);
    notified.clear();
    for (const Case &one : {Case{1, 4, "1,2 1,4"}, Case{2, 1, "2,1 2,4"}, Case{0, 3, "0,3 0,3"}})
    {
        tap(at(one.col, one.row));
        EXPECT_EQ(selection(), one.selection);
    }
    EXPECT_EQ(notified, (Codes{2047, 2047, 2047})) << "a tap with SHIFT is told no further";
    grid->EmptySelection();
    tap(at(3, 3)); // no bottom yet
    EXPECT_EQ(selection(), "3,3 3,3");
    keyUp(VK_SHIFT);
    grid->SetMultiSelect(false, false);
    tap(at(0, 0));
    EXPECT_EQ(selection(), "0,0 0,0");
}

TEST_F(GridPen, aTapTakesTheFocusWhereThatIsWanted)
{
    four();
    EXPECT_FALSE(grid->GetShowFocus());
    tap(at(0, 0));
    EXPECT_NE(GetFocus(), grid->GetHwnd());
    grid->SetShowFocus(true);
    tap(at(0, 1));
    EXPECT_EQ(GetFocus(), grid->GetHwnd());
}

// --- Hot spots ---------------------------------------------------------------------------------------------------

TEST_F(GridPen, hotSpotsAreToldOnTheWayDownOnlyToThoseWhoAsk)
{
    four().SetCellText(1, 2, u"<FONT SIZE=-1><A=key>hot</A>", RECT{4, 2, 0, 0});
    settle();
    const POINT spot = {45 + 4 + 3, 30 + 2 + 5};
    tap(spot);
    EXPECT_EQ(notified, (Codes{2047, 1125}));
    notified.clear();
    testHotSpots = true;
    tap(spot);
    EXPECT_EQ(notified, (Codes{2047, 2046, 1125}));
    EXPECT_EQ(lastTarget, u"key");
    notified.clear();
    tap({45 + 4 + 30, 30 + 7}); // behind the word
    tap({45 + 2, 30 + 7});      // in the margin
    tap({45 + 4 + 3, 30 + 1});  // in that above
    EXPECT_EQ(notified, (Codes{2047, -114, 2047, -114, 2047, -114}));
}

TEST_F(GridPen, shiftTakesAHotSpotsTap)
{
    four().SetCellText(0, 0, u"<FONT SIZE=-1><A=key>hot</A>");
    settle();
    testHotSpots = true;
    keyDown(VK_SHIFT);
    tap({3, 5});
    keyUp(VK_SHIFT);
    EXPECT_EQ(notified, (Codes{2047, 2046}));
}

TEST_F(GridPen, aParentMayEndTheGridWhenItIsTold)
{
    for (const int code : {2047, 2046, 1125, -114})
    {
        four().SetCellText(0, 0, u"<FONT SIZE=-1><A=key>hot</A>");
        settle();
        testHotSpots = true;
        parent.before = [&, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            const bool known = others(message, wParam, lParam, result);
            if (message == WM_NOTIFY && static_cast<int>(reinterpret_cast<NMHDR *>(lParam)->code) == code)
            {
                grid.reset();
            }
            return known;
        };
        tap(code == -114 ? at(1, 1) : POINT{3, 5});
        EXPECT_EQ(grid, nullptr) << code;
    }
}

// --- Sweeps ------------------------------------------------------------------------------------------------------

TEST_F(GridPen, aSweepBeginsBeyondTwelvePixelsEitherWay)
{
    struct Case
    {
        int x, y;
        bool swept;
    };
    four().SetMultiSelect(true, false);
    for (const Case &one :
         {Case{12, 0, false}, Case{13, 0, true}, Case{-12, 12, false}, Case{0, 13, true}, Case{0, -13, true}})
    {
        notified.clear();
        draw({at(1, 2), moved(at(1, 2), one.x, one.y)});
        EXPECT_EQ(notified.back(), one.swept ? -13 : -114) << one.x << ' ' << one.y;
    }
    grid->SetMultiSelect(false, false);
    grid->EmptySelection();
    tap(at(3, 3));
    draw({at(1, 2), at(1, 5)});
    EXPECT_EQ(notified.back(), -114);
    EXPECT_EQ(selection(), "1,2 1,2");
}

TEST_F(GridPen, aSweepSelectsFromWhereItBeganToThePen)
{
    four().SetMultiSelect(true, false);
    draw({at(1, 2), at(2, 3), at(3, 4)}, false);
    EXPECT_EQ(selection(), "1,2 3,4");
    EXPECT_EQ(current(), "3,4");
    penMove(at(0, 1).x, at(0, 1).y);
    settle();
    EXPECT_EQ(selection(), "0,1 1,2");
    penUp(at(0, 3).x, at(0, 3).y);
    settle();
    EXPECT_EQ(selection(), "0,2 1,3");
    EXPECT_EQ(notified.back(), -13);
    EXPECT_EQ(lastNotify.nCol, 0U);
    EXPECT_EQ(lastNotify.nRow, 3U);
    EXPECT_EQ(GetCapture(), nullptr);
    grid->SetRowSelect(true);
    draw({at(1, 4), at(2, 5)});
    EXPECT_EQ(selection(), "0,4 3,5");
}

TEST_F(GridPen, aSweepLeavesFixedCellsOutAndComesBackFromOutside)
{
    four().SetMultiSelect(true, false);
    grid->SetFixedRowCount(1);
    draw({at(1, 2), at(1, 3), at(1, 0)}, false);
    EXPECT_EQ(selection(), "1,2 1,3");
    penMove(-40, at(0, 3).y); // left of the window: its first column
    settle();
    EXPECT_EQ(selection(), "0,2 1,3");
    penMove(at(3, 0).x, 500);
    settle();
    EXPECT_EQ(selection(), "0,2 1,3");
    notified.clear();
    penUp(at(3, 0).x, 500);
    settle();
    EXPECT_EQ(selection(), "0,2 1,3");
    EXPECT_TRUE(notified.empty()) << "no cell, nothing to tell";
}

TEST_F(GridPen, whereDragsAreAllowedOnlyMovesAlongTheRowsSweep)
{
    four().SetMultiSelect(true, false);
    grid->SetDragAllowed(true);
    struct Case
    {
        int x, y;
        const char *ends;
    };
    // 15 is the least height of a row.
    for (const Case &one :
         {Case{3, 40, "sweep"}, Case{5, 16, "sweep"}, Case{6, 16, "tap"}, Case{5, 15, "tap"}, Case{20, 0, "drag"}})
    {
        tick(84); // no double taps here
        notified.clear();
        log.clear();
        draw({at(1, 2), moved(at(1, 2), one.x, one.y)});
        const std::string end = !log.empty() ? "drag" : notified.back() == -13 ? "sweep" : "tap";
        EXPECT_EQ(end, one.ends) << one.x << ' ' << one.y;
    }
}

TEST_F(GridPen, theTipOfASweepStandsLeftAboveItsBeginning)
{
    four().SetMultiSelect(true, true);
    texts[2022] = u"<FONT SIZE=-1>two";
    draw({at(1, 3), at(1, 4)}, false);
    EXPECT_EQ(takeLog(), (Log{"2022 1,3 1,4"}));
    const HWND tip = GetWindow(*grid, GW_CHILD);
    ASSERT_NE(tip, nullptr);
    EXPECT_TRUE(IsWindowVisible(tip));
    RECT place{};
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.right, at(1, 3).x);
    EXPECT_EQ(place.bottom, at(1, 3).y);
    penMove(at(2, 4).x, at(2, 4).y);
    penMove(at(2, 4).x + 1, at(2, 4).y);
    settle();
    EXPECT_EQ(takeLog(), (Log{"2022 1,3 2,4"})) << "once for each cell";
    penUp(at(2, 4).x, at(2, 4).y);
    settle();
    EXPECT_FALSE(IsWindowVisible(tip));
    EXPECT_TRUE(takeLog().empty());
    grid->SetMultiSelect(true, false);
    draw({at(1, 3), at(1, 4)});
    EXPECT_TRUE(takeLog().empty());
}

// --- Scrolling by itself -----------------------------------------------------------------------------------------

TEST_F(GridPen, aSweepAtTheLowerEdgeScrollsOn)
{
    four(40).SetMultiSelect(true, false);
    draw({at(1, 2), at(1, 3), {60, 92}}, false); // the zone is 20 of 100
    EXPECT_EQ(GetCapture(), grid->GetHwnd());
    EXPECT_EQ(selection(), "1,2 1,6");
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 1);
    EXPECT_EQ(selection(), "1,2 1,7");
    penMove(60, 200);
    settle();
    tick(77);
    EXPECT_EQ(selection(), "1,2 1,8") << "on, with the pen far below";
    penMove(60, 50);
    settle();
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 2) << "the middle stops it";
    penUp(60, 50);
    settle();
    EXPECT_EQ(GetCapture(), nullptr);
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 2);
}

TEST_F(GridPen, eachEdgeHasItsDirectionInTheirOrder)
{
    make(false).BeginUpdate();
    grid->SetDimensions(40, 12);
    grid->SetFixedColCount(1);
    for (USHORT col = 0; col < 12; ++col)
    {
        grid->SetColWidth(col, 40);
    }
    grid->SetMultiSelect(true, false);
    grid->EndUpdate();
    RECT client{};
    GetClientRect(*grid, &client);
    struct Case
    {
        POINT pen;
        int rows, cols;
    };
    const Case cases[] = {
        {{100, 19}, -1, 0},
        {{100, 20}, 0, 0},
        {{100, client.bottom - 20}, 0, 0},
        {{100, client.bottom - 19}, 1, 0},
        {{59, 50}, 0, -1}, // the fixed column's 40 and 20
        {{60, 50}, 0, 0},
        {{client.right - 20, 50}, 0, 0},
        {{client.right - 19, 50}, 0, 1},
        {{10, 10}, -1, 0}, // up goes before left
        {{10, client.bottom - 1}, 1, 0},
    };
    for (const Case &one : cases)
    {
        grid->SetTopRow(5);
        grid->SetLeftCol(3);
        draw({{100, 50}, {120, 50}, one.pen}, false);
        tick(77);
        EXPECT_EQ(grid->GetTopRow() - 5, one.rows) << one.pen.x << ' ' << one.pen.y;
        EXPECT_EQ(grid->GetLeftCol() - 3, one.cols) << one.pen.x << ' ' << one.pen.y;
        penUp(100, 50);
        settle();
    }
    grid->SetAllowAutoScroll(false);
    grid->SetTopRow(5);
    draw({{100, 50}, {120, 50}, {100, 5}}, false);
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 5);
}

TEST_F(GridPen, theZoneIsSettableAndTheLeastHeightSetsItToo)
{
    four(40).SetMultiSelect(true, false);
    grid->SetScrollRegion(40);
    draw({{60, 50}, {60, 66}, {60, 61}}, false);
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 1);
    penUp(60, 61);
    settle();
    grid->SetMinRowHeight(16);
    EXPECT_EQ(grid->GetScrollRegion(), 16);
}

TEST_F(GridPen, theRowWhereASweepEndsComesWholeIntoView)
{
    four(40).SetMultiSelect(true, false);
    draw({at(1, 2), {60, 75}, {60, 97}});
    EXPECT_EQ(selection(), "1,2 1,6");
    EXPECT_EQ(grid->GetTopRow(), 1);
    EXPECT_TRUE(grid->IsCellVisible(1, 6, false));
    grid->ScrollToTop();
    grid->SetAllowAutoScroll(false);
    draw({at(1, 2), {60, 75}, {60, 97}});
    EXPECT_EQ(grid->GetTopRow(), 0);
}

// --- What ends it ------------------------------------------------------------------------------------------------

TEST_F(GridPen, aSweepThatLosesThePenIsOver)
{
    for (const int how : {0, 1, 2})
    {
        four(40).SetMultiSelect(true, true);
        texts[2022] = u"tip";
        draw({at(1, 2), at(1, 3)}, false);
        const HWND tip = GetWindow(*grid, GW_CHILD);
        notified.clear();
        if (how == 0)
        {
            SendMessageW(*grid, WM_CANCELMODE, 0, 0);
        }
        else if (how == 1)
        {
            SetCapture(parent.window);
            ReleaseCapture();
        }
        else
        {
            SendMessageW(*grid, WM_MOUSEMOVE, 0, pair(60, 60)); // no pen is down any more
        }
        EXPECT_FALSE(IsWindowVisible(tip)) << how;
        EXPECT_EQ(GetCapture(), nullptr);
        penMove(at(1, 5).x, at(1, 5).y);
        penUp(at(1, 5).x, at(1, 5).y);
        settle();
        EXPECT_EQ(selection(), "1,2 1,3") << how;
        EXPECT_TRUE(notified.empty()) << how;
    }
}

TEST_F(GridPen, timersGoOffInTheirOrder)
{
    four(40).SetMultiSelect(true, false);
    static std::vector<UINT_PTR> fired;
    fired.clear();
    // Markers of our own on both sides of each: whichever is due first comes first, however late all are.
    parent.before = [](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_TIMER)
        {
            fired.push_back(wParam);
        }
        return message == WM_TIMER;
    };
    SendMessageW(*grid, WM_LBUTTONDOWN, MK_LBUTTON, pair(60, 40)); // 84 at 200
    SendMessageW(*grid, WM_MOUSEMOVE, MK_LBUTTON, pair(60, 95));   // 77 at 300
    SendMessageW(*grid, WM_TIMER, 80, 0);                          // 81 at 500
    for (const UINT marker : {100U, 250U, 400U, 600U})
    {
        SetTimer(parent.window, marker, marker, nullptr);
    }
    skipTime(700);
    MSG message{};
    while (fired.empty() || fired.back() != 600)
    {
        ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
        if (message.message == WM_TIMER && message.hwnd == *grid)
        {
            fired.push_back(message.wParam);
        }
        KillTimer(message.hwnd, message.message == WM_TIMER ? message.wParam : 0);
        if (message.hwnd == parent.window)
        {
            DispatchMessageW(&message);
        }
    }
    EXPECT_EQ(fired, (std::vector<UINT_PTR>{100, 84, 250, 77, 400, 81, 600}));
}
} // namespace
} // namespace zb::test
