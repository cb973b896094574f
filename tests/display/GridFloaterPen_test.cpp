// Floaters under the pen.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;
using Codes = std::vector<int>;

/// Columns of 50, rows of 15; floater 7 over rows 1 to 3 of column 1.
class GridFloaterPen : public GridTest
{
  protected:
    TestGrid &prepare(bool locked = false, USHORT rows = 6, USHORT fixedRows = 0)
    {
        TestGrid &made = makePlain(rows, 4);
        made.SetFixedRowCount(fixedRows);
        made.AddFloater(1, 1, 7, 3, 100, 0, RGB(0, 0, 255), locked);
        made.EmptySelection();
        settle();
        answers[2025] = 3;
        return made;
    }
    static POINT strip(int col, int row)
    {
        return {col * 50 + 3, row * 15 + 7};
    }
    static POINT body(int col, int row)
    {
        return {col * 50 + 30, row * 15 + 7};
    }
    /// "col,row" of its first cell.
    std::string place(DWORD id = 7)
    {
        for (USHORT row = 0; row < grid->GetRowCount(); ++row)
        {
            for (USHORT col = 0; col < grid->GetColCount(); ++col)
            {
                const tagCELLINFO *cell = grid->FindCell(row, col);
                if (cell != nullptr && cell->OwnFloaters.contains(id))
                {
                    return std::to_string(col) + ',' + std::to_string(row);
                }
            }
        }
        return "none";
    }
};

TEST_F(GridFloaterPen, aTapOnItsBodyTellsItAndKeepsTheSelection)
{
    prepare().SetSelection(3, 5, 3, 5);
    draw({body(1, 2)});
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.dwCookie, 7U);
    EXPECT_EQ(lastNotify.nCol, 1U);
    EXPECT_EQ(lastNotify.nRow, 2U);
    EXPECT_EQ(selection(), "3,5 3,5");
    EXPECT_EQ(current(), "1,2");
}

TEST_F(GridFloaterPen, theFirstMoveOnItsBodyEndsTheTap)
{
    prepare().SetMultiSelect(true, false);
    draw({body(1, 2), {body(1, 2).x + 1, body(1, 2).y}}, false);
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.dwCookie, 7U);
    notified.clear();
    penMove(body(3, 5).x, body(3, 5).y);
    penUp(body(3, 5).x, body(3, 5).y);
    settle();
    EXPECT_TRUE(notified.empty());
    EXPECT_EQ(place(), "1,1");
    EXPECT_EQ(selection(), "none");
    tick(84);
    draw({body(1, 2), body(3, 5)}, false);
    EXPECT_EQ(notified, (Codes{2047, -114}));
    EXPECT_EQ(lastNotify.nCol, 1U) << "where it came down";
    EXPECT_EQ(lastNotify.nRow, 2U);
    penUp(body(3, 5).x, body(3, 5).y);
    settle();
}

TEST_F(GridFloaterPen, itsStripMovesItFromCellToCell)
{
    prepare();
    texts[2024] = u"<FONT SIZE=-1>there";
    draw({strip(1, 1), {strip(1, 1).x + 9, strip(1, 1).y}, strip(2, 2), strip(3, 2)}, false);
    EXPECT_EQ(takeLog(), (Log{"2025 7 1,1 2,2", "2024 2,2 2,4", "2025 7 2,2 3,2", "2024 3,2 3,4"}));
    EXPECT_EQ(place(), "3,2");
    EXPECT_EQ(current(), "3,2");
    const HWND tip = GetWindow(*grid, GW_CHILD);
    EXPECT_TRUE(IsWindowVisible(tip));
    RECT shown{};
    GetWindowRect(tip, &shown);
    EXPECT_EQ(shown.right, strip(2, 2).x) << "it stays where it was shown first";
    EXPECT_EQ(shown.bottom, strip(2, 2).y);
    EXPECT_EQ(GetCapture(), grid->GetHwnd());
    notified.clear();
    askedFloaters.clear();
    floaterText = u"<BODY=#00FF00>";
    penUp(strip(3, 2).x, strip(3, 2).y);
    settle();
    EXPECT_EQ(takeLog(), (Log{"2027 7 3,2"}));
    EXPECT_EQ(askedFloaters, std::vector<DWORD>{7});
    EXPECT_EQ(screenPixel(180, 52), RGB(0, 255, 0)) << "with its new text";
    EXPECT_TRUE(notified.empty());
    EXPECT_FALSE(IsWindowVisible(tip));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(GridFloaterPen, withoutANewTextItKeepsTheOldOne)
{
    floaterText = u"<BODY=#FFFF00>";
    prepare();
    draw({strip(1, 1), strip(2, 2)}, false);
    floaterHasText = false;
    penUp(strip(2, 2).x, strip(2, 2).y);
    settle();
    EXPECT_EQ(askedFloaters, (std::vector<DWORD>{7, 7}));
    EXPECT_EQ(screenPixel(130, 52), RGB(255, 255, 0));
}

TEST_F(GridFloaterPen, theParentSaysWhichWayItMayGo)
{
    struct Case
    {
        LRESULT answer;
        const char *place;
    };
    for (const Case &one : {Case{0, "1,1"}, Case{1, "2,1"}, Case{2, "1,3"}, Case{3, "2,3"}, Case{-1, "2,3"}})
    {
        prepare();
        answers[2025] = one.answer;
        draw({strip(1, 1), strip(2, 3)});
        EXPECT_EQ(place(), one.place) << one.answer;
    }
}

TEST_F(GridFloaterPen, alongAColumnOnlyItFollowsAPenThatLeavesIt)
{
    prepare();
    answers[2025] = 2;
    draw({strip(1, 1), strip(2, 2), strip(3, 3), strip(0, 0)});
    EXPECT_EQ(place(), "1,0");
}

TEST_F(GridFloaterPen, aLockedOneIsAskedForAndStays)
{
    prepare(true);
    draw({strip(1, 1), strip(2, 2)});
    EXPECT_EQ(takeLog(), (Log{"2025 7 1,1 2,2"}));
    EXPECT_EQ(place(), "1,1");
    EXPECT_EQ(notified.back(), -114);
}

TEST_F(GridFloaterPen, backInItsOldPlaceItHasMovedAllTheSame)
{
    prepare();
    draw({strip(1, 1), strip(1, 2), strip(1, 1)});
    EXPECT_EQ(takeLog(), (Log{"2025 7 1,1 1,2", "2024 1,2 1,4", "2025 7 1,2 1,1", "2024 1,1 1,3", "2027 7 1,1"}));
    EXPECT_EQ(place(), "1,1");
    log.clear();
    draw({strip(1, 1), {strip(1, 1).x + 2, strip(1, 1).y}});
    EXPECT_TRUE(takeLog().empty()) << "it did not leave its cell";
}

TEST_F(GridFloaterPen, grabbedFurtherDownItKeepsItsPlaceUnderThePen)
{
    prepare(false, 9);
    grid->SetMinRowHeight(11);
    const auto low = [](int col, int row) { return POINT{col * 50 + 3, row * 11 + 5}; };
    draw({low(1, 3), low(1, 4), low(2, 5)}, false);
    EXPECT_EQ(place(), "2,3");
    for (const POINT &point : {low(2, 8), low(2, 0), low(2, 4)})
    {
        penMove(point.x, point.y);
        settle();
    }
    EXPECT_EQ(place(), "2,2") << "also after the edges held it";
}

TEST_F(GridFloaterPen, itStaysAmongTheFreeCells)
{
    prepare(false, 6, 1);
    grid->SetFixedColCount(1);
    draw({strip(1, 1), strip(0, 0)}, false);
    EXPECT_EQ(place(), "1,1");
    for (const POINT &point : {strip(3, 5), POINT{-300, 80}})
    {
        penMove(point.x, point.y);
        settle();
    }
    EXPECT_EQ(place(), "1,3") << "its three rows end with the last one";
    penMove(60, -100);
    settle();
    EXPECT_EQ(place(), "1,1");
}

TEST_F(GridFloaterPen, atAnEdgeTheGridScrollsUnderIt)
{
    prepare(false, 40);
    draw({strip(1, 1), {53, 90}}, false);
    EXPECT_EQ(place(), "1,5");
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 1);
    EXPECT_EQ(place(), "1,6");
    tick(77);
    EXPECT_EQ(place(), "1,7");
    penUp(53, 90);
    settle();
    EXPECT_EQ(log.back(), "2027 7 1,7");
}

TEST_F(GridFloaterPen, oneThatIsTakenAwayMeanwhileEndsTheMove)
{
    prepare();
    onAsked = [this](UINT message)
    {
        if (message == 2025)
        {
            grid->DeleteFloater(1, 1, 7);
        }
    };
    draw({strip(1, 1), strip(2, 2), strip(3, 3)});
    EXPECT_EQ(place(), "none");
    EXPECT_EQ(takeLog(), (Log{"2025 7 1,1 2,2"}));
}

TEST_F(GridFloaterPen, aMoveThatIsCancelledLetsItGoWhereItIs)
{
    prepare();
    draw({strip(1, 1), strip(2, 2)}, false);
    log.clear();
    SendMessageW(*grid, WM_CANCELMODE, 0, 0);
    EXPECT_EQ(takeLog(), (Log{"2027 7 2,2"}));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(GridFloaterPen, thePenIsFreeWhenItsEndIsToldAndItsTextIsAskedForAllTheSame)
{
    prepare();
    HWND capture = parent.window;
    onAsked = [&](UINT message)
    {
        if (message == 2027)
        {
            capture = GetCapture();
            SetCapture(parent.window); // as a question to the user does
            ReleaseCapture();
        }
    };
    draw({strip(1, 1), strip(2, 2)}, false);
    askedFloaters.clear();
    penUp(strip(2, 2).x, strip(2, 2).y);
    settle();
    EXPECT_EQ(capture, nullptr);
    EXPECT_EQ(askedFloaters, std::vector<DWORD>{7});
}

TEST_F(GridFloaterPen, aSpotOfItsTextCountsFromBehindTheStrip)
{
    prepare();
    floaterText = u"<FONT SIZE=-1><A=key>hot</A>";
    grid->AddFloater(1, 1, 7, 3, 100, 0, RGB(0, 0, 255), false);
    settle();
    draw({{50 + 7 + 5, 15 + 6}});
    EXPECT_EQ(notified, (Codes{2047, 1125}));
    EXPECT_EQ(lastTarget, u"key");
    EXPECT_EQ(lastNotify.dwCookie, 7U);
    tick(84);
    notified.clear();
    draw({{50 + 7 + 14, 15 + 6}}); // the last of its 15 pixels
    draw({{50 + 7 + 15, 15 + 6}});
    EXPECT_EQ(notified, (Codes{2047, 1125, 2047, -114}));
    tick(84);
    notified.clear();
    testHotSpots = true;
    keyDown(VK_SHIFT);
    draw({{50 + 7 + 5, 15 + 6}, {50 + 7 + 9, 15 + 6}});
    keyUp(VK_SHIFT);
    EXPECT_EQ(notified, (Codes{2047, 2046})) << "a tap that has been used up is told no more by a move";
}
} // namespace
} // namespace zb::test
