// Drags out of a grid and over others.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;

/// Columns of 50, rows of 15; on the right a window that may take drops, below a second grid.
class GridDrag : public GridTest
{
  protected:
    TestGrid &prepare()
    {
        TestGrid &made = makePlain(6, 4);
        made.SetDragAllowed(true);
        settle();
        answers[2031] = 1;
        answers[2029] = 1;
        takes = true;
        asked2028.clear();
        target.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            if (message != 2028)
            {
                return false;
            }
            asked2028.push_back(*reinterpret_cast<POINT *>(wParam));
            auto &drag = *reinterpret_cast<tagGRIDDRAG *>(lParam);
            EXPECT_EQ(drag.nRow, 0xFFFF);
            EXPECT_EQ(drag.nCol, 0xFFFF);
            drag.nRow = 12;
            drag.nCol = 3;
            result = takes ? 1 : 0;
            return true;
        };
        return made;
    }
    static POINT at(int col, int row)
    {
        return {col * 50 + 25, row * 15 + 7};
    }
    void move(POINT point)
    {
        penMove(point.x, point.y);
        settle();
    }
    void up(POINT point)
    {
        penUp(point.x, point.y);
        settle();
    }
    /// Pen down in 1,2 and eleven pixels to the right.
    void start()
    {
        draw({at(1, 2), {at(1, 2).x + 11, at(1, 2).y}}, false);
    }

    bool takes = true;
    std::vector<POINT> asked2028;
    ScreenWindow target{RGB(1, 2, 3), WS_CHILD | WS_VISIBLE, 210, 0, 30, 100, parent.window};
};

const POINT overTarget = {220, 40};

TEST_F(GridDrag, moreThanTenPixelsSidewaysDrag)
{
    struct Case
    {
        int x, y;
        bool drags;
    };
    prepare();
    for (const Case &one :
         {Case{10, 0, false}, Case{11, 0, true}, Case{-11, 3, true}, Case{0, 40, false}, Case{20, 0, true}})
    {
        tick(84);
        log.clear();
        draw({at(1, 2), {at(1, 2).x + one.x, at(1, 2).y + one.y}}, false);
        EXPECT_EQ(takeLog(), one.drags ? (Log{"2031 1,2", "2033 1,2"}) : Log{}) << one.x << ' ' << one.y;
        EXPECT_EQ(GetCapture() == grid->GetHwnd(), one.drags);
        up({at(1, 2).x + one.x, at(1, 2).y + one.y});
    }
    grid->SetDragAllowed(false);
    log.clear();
    tick(84);
    draw({at(1, 2), at(3, 2)});
    EXPECT_TRUE(takeLog().empty());
}

TEST_F(GridDrag, aParentThatRefusesTheStartHasATap)
{
    prepare();
    answers[2031] = 0;
    start();
    EXPECT_EQ(takeLog(), (Log{"2031 1,2"}));
    EXPECT_EQ(GetCapture(), nullptr);
    up(at(1, 2));
    EXPECT_EQ(notified.back(), -114);
}

TEST_F(GridDrag, overAWindowThatTakesItTheParentIsAskedAndGivesATip)
{
    prepare();
    HWND askedFor = nullptr;
    parent.before = [&, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        askedFor = message == 2029 ? reinterpret_cast<HWND>(wParam) : askedFor;
        return others(message, wParam, lParam, result);
    };
    texts[2032] = u"<FONT SIZE=-1>move";
    start();
    takeLog();
    move(overTarget);
    EXPECT_EQ(askedFor, target.window);
    EXPECT_EQ(asked2028.size(), 1U);
    EXPECT_EQ(asked2028[0].x, overTarget.x);
    EXPECT_EQ(asked2028[0].y, overTarget.y);
    EXPECT_EQ(takeLog(), (Log{"2029 3,12", "2032 3,12"}));
    const HWND tip = GetWindow(*grid, GW_CHILD);
    EXPECT_TRUE(IsWindowVisible(tip));
    RECT place{};
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.right, 200);
    EXPECT_EQ(place.top, 5);
    answers[2032] = 1;
    move({221, 41});
    EXPECT_FALSE(IsWindowVisible(tip)) << "1 is no tip";
    answers[2032] = 0;
    move({222, 41});
    EXPECT_TRUE(IsWindowVisible(tip));
    takeLog();
    answers[2029] = 0;
    move({223, 41});
    EXPECT_FALSE(IsWindowVisible(tip));
    EXPECT_EQ(takeLog(), (Log{"2029 3,12"}));
    takes = false;
    move({224, 41});
    EXPECT_TRUE(takeLog().empty()) << "the window itself comes first";
    up(overTarget);
}

TEST_F(GridDrag, theTipStandsInTheLeftTopCornerAtFirst)
{
    prepare();
    start();
    RECT place{};
    const HWND tip = GetWindow(*grid, GW_CHILD);
    ASSERT_TRUE(IsWindowVisible(tip));
    static_cast<CHTMLToolTip *>(reinterpret_cast<CeWnd *>(GetWindowLongW(tip, GWL_USERDATA)))
        ->UpdateToolTip(u"<FONT SIZE=-1>a", false);
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.left, 5);
    EXPECT_EQ(place.top, 5);
    up(at(1, 2));
    EXPECT_EQ(IsWindow(tip), FALSE);
}

TEST_F(GridDrag, aDropIsToldWithItsPlaceOrAsRefused)
{
    prepare();
    tagGRIDDRAG dropped{};
    parent.before = [&, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        if (message == 2030)
        {
            dropped = *reinterpret_cast<tagGRIDDRAG *>(lParam);
            EXPECT_TRUE(wParam == 0 || wParam == static_cast<WPARAM>(lParam));
        }
        return others(message, wParam, lParam, result);
    };
    start();
    takeLog();
    up(overTarget);
    EXPECT_EQ(takeLog(), (Log{"2029 3,12", "2032 3,12", "2030 3,12"}));
    EXPECT_EQ(dropped.hdr.code, 2030U);
    EXPECT_EQ(dropped.hdr.hwndFrom, grid->GetHwnd());
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(notified, std::vector<int>{2047}) << "no tap";
    takes = false;
    tick(84);
    start();
    takeLog();
    up(overTarget);
    EXPECT_EQ(takeLog(), (Log{"2030 3,12 refused"}));
}

TEST_F(GridDrag, aDragThatIsGivenUpDropsNothing)
{
    for (const int how : {0, 1, 2, 3, 4})
    {
        prepare();
        SetFocus(*grid);
        grid->SetDelayedScrolling(how == 4 ? 1000 : 0);
        start();
        takeLog();
        notified.clear();
        if (how == 0 || how == 4)
        {
            keyDown(VK_ESCAPE);
            keyUp(VK_ESCAPE);
            settle();
        }
        else if (how == 1)
        {
            SendMessageW(*grid, WM_CANCELMODE, 0, 0);
        }
        else if (how == 2)
        {
            SetFocus(parent.window);
        }
        else
        {
            SetCapture(target.window);
            ReleaseCapture();
        }
        EXPECT_EQ(GetCapture(), nullptr) << how;
        EXPECT_EQ(GetWindow(*grid, GW_CHILD), nullptr) << "the tip has gone";
        move(at(3, 2));
        up(overTarget);
        EXPECT_TRUE(takeLog().empty()) << how;
        EXPECT_TRUE(notified.empty()) << how;
    }
}

TEST_F(GridDrag, theCaptureGoesBackToWhoHadIt)
{
    prepare();
    draw({at(1, 2)}, false);
    SetCapture(target.window);
    SendMessageW(*grid, WM_MOUSEMOVE, MK_LBUTTON, pair(at(1, 2).x + 11, at(1, 2).y));
    EXPECT_EQ(GetCapture(), grid->GetHwnd());
    SendMessageW(*grid, WM_CANCELMODE, 0, 0);
    EXPECT_EQ(GetCapture(), target.window);
    ReleaseCapture();
}

TEST_F(GridDrag, whoTakesTheCaptureFromADragKeepsIt)
{
    prepare();
    draw({at(1, 2)}, false);
    SetCapture(target.window);
    SendMessageW(*grid, WM_MOUSEMOVE, MK_LBUTTON, pair(at(1, 2).x + 11, at(1, 2).y));
    SetCapture(parent.window);
    EXPECT_EQ(GetCapture(), parent.window);
    EXPECT_EQ(GetWindow(*grid, GW_CHILD), nullptr);
    ReleaseCapture();
}

TEST_F(GridDrag, aTipWithoutATextStaysHidden)
{
    prepare();
    texts[2032] = u"<FONT SIZE=-1>move";
    start();
    move(overTarget);
    const HWND tip = GetWindow(*grid, GW_CHILD);
    EXPECT_TRUE(IsWindowVisible(tip));
    texts.clear();
    move({221, 41});
    EXPECT_FALSE(IsWindowVisible(tip)) << "not with the words of before";
    up(overTarget);
}

TEST_F(GridDrag, oneThatIsGivenUpWhileSomebodyIsAskedIsOver)
{
    for (const UINT question : {2031U, 2033U, 2028U, 2029U, 2032U})
    {
        for (const bool late : {false, true})
        {
            prepare();
            bool asked = !late;
            const auto giveUp = [&](UINT message)
            {
                if (message == question && asked)
                {
                    SendMessageW(*grid, WM_CANCELMODE, 0, 0);
                }
            };
            onAsked = giveUp;
            target.before = [&, others = target.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
            {
                giveUp(message);
                return others(message, wParam, lParam, result);
            };
            tick(84);
            start();
            move(overTarget);
            asked = true;
            log.clear();
            up(overTarget);
            const bool goesOn = late && question > 2030U && question != 2032U;
            EXPECT_EQ(!log.empty() && log.back().starts_with("2030"), goesOn) << question << ' ' << late;
            EXPECT_EQ(GetCapture(), nullptr) << question;
            EXPECT_EQ(GetWindow(*grid, GW_CHILD), nullptr) << question;
            onAsked = nullptr;
            target.before = nullptr;
        }
    }
}

TEST_F(GridDrag, theWindowUnderItMayEndTheGrid)
{
    prepare();
    start();
    target.before = [this](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message == 2028)
        {
            grid.reset();
        }
        return false;
    };
    move(overTarget);
    EXPECT_EQ(grid, nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
    target.before = nullptr;
    up(overTarget);
}

TEST_F(GridDrag, aGridTellsTheCellUnderADrag)
{
    prepare();
    TestGrid other(parent.window, RECT{20, 120, 220, 220}, false);
    other.SetDimensions(5, 2);
    settle();
    tagGRIDDRAG dropped{};
    parent.before = [&, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        dropped = message == 2030 ? *reinterpret_cast<tagGRIDDRAG *>(lParam) : dropped;
        return others(message, wParam, lParam, result);
    };
    start();
    takeLog();
    up({20 + 150, 120 + 40});
    EXPECT_EQ(takeLog(), (Log{"2029 1,2", "2032 1,2", "2030 1,2"}));
    EXPECT_EQ(dropped.nRows, 5);
    EXPECT_EQ(dropped.nCols, 2);
    EXPECT_EQ(dropped.pt.x, 150);
    EXPECT_EQ(dropped.pt.y, 40);
    EXPECT_EQ(describe(dropped.rcClient), "0,0 200,100");
    tick(84);
    start();
    takeLog();
    up({20 + 150, 120 + 90}); // below its rows
    EXPECT_EQ(takeLog(), (Log{"2029 65535,65535", "2032 65535,65535", "2030 65535,65535"}));
}

TEST_F(GridDrag, placesLeftOfTheGridAndAboveItAreUnderstood)
{
    prepare();
    MoveWindow(*grid, 40, 120, 150, 100, TRUE);
    MoveWindow(target.window, 0, 0, 240, 100, TRUE);
    settle();
    draw({{60, 150}, {72, 150}}, false);
    move({50, 20}); // 100 above: 65,436 without its sign, and off by one
    ASSERT_EQ(asked2028.size(), 1U);
    EXPECT_EQ(asked2028[0].x, 50);
    EXPECT_EQ(asked2028[0].y, 21);
    move({10, 90});
    ASSERT_EQ(asked2028.size(), 2U);
    EXPECT_EQ(asked2028[1].x, 11);
    EXPECT_EQ(asked2028[1].y, 91);
    up({50, 20});
}

TEST_F(GridDrag, atAnEdgeTheGridScrollsOnAndKeepsThePen)
{
    makePlain(40, 2);
    prepare();
    grid->SetDimensions(40, 2);
    grid->SetDragAllowed(true);
    settle();
    draw({at(1, 2), {at(1, 2).x + 11, at(1, 2).y}, {60, 95}}, false);
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 1);
    move({60, -50}); // above is not far below
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 0);
    move({60, 95});
    tick(77);
    move({60, 50}); // the middle stops that
    EXPECT_EQ(GetCapture(), grid->GetHwnd());
    tick(77);
    EXPECT_EQ(grid->GetTopRow(), 1);
    up({60, 50});
}

TEST_F(GridDrag, fromAFixedCellNothingIsDragged)
{
    prepare().SetFixedRowCount(1);
    draw({at(1, 0), at(3, 0)});
    EXPECT_TRUE(takeLog().empty());
}
} // namespace
} // namespace zb::test
