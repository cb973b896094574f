// Keys of the grid.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;

class GridKeys : public GridTest
{
  protected:
    /// Ten rows show of 40; the columns are wider than the grid.
    TestGrid &prepare()
    {
        make(false, 200, 150);
        grid->BeginUpdate();
        grid->SetDimensions(40, 6);
        for (USHORT col = 0; col < 6; ++col)
        {
            grid->SetColWidth(col, 60);
        }
        grid->EndUpdate();
        settle();
        return *grid;
    }
    std::string top()
    {
        return std::to_string(grid->GetLeftCol()) + ',' + std::to_string(grid->GetTopRow());
    }
};

TEST_F(GridKeys, inModeZeroTheyScrollByLinesAndPages)
{
    prepare().SetKeysScrollMode(0);
    struct Case
    {
        int key;
        const char *top;
    };
    // Above the bar, 137 pixels: nine rows and a part. A page puts the last whole one on top.
    const Case cases[] = {{VK_DOWN, "0,1"},  {VK_DOWN, "0,2"},  {VK_UP, "0,1"},   {VK_RIGHT, "1,1"},
                          {VK_RIGHT, "2,1"}, {VK_LEFT, "1,1"},  {VK_NEXT, "1,9"}, {VK_PRIOR, "1,0"},
                          {VK_END, "1,31"},  {VK_DOWN, "1,31"}, {VK_HOME, "1,0"}};
    for (const Case &one : cases)
    {
        press(one.key);
        EXPECT_EQ(top(), one.top) << one.key;
    }
    EXPECT_EQ(current(), "none");
    EXPECT_TRUE(takeLog().empty());
}

TEST_F(GridKeys, inModeOneArrowsScrollByPages)
{
    prepare().SetKeysScrollMode(1);
    press(VK_DOWN);
    const std::string down = top();
    EXPECT_EQ(down, "0,8");
    press(VK_UP);
    EXPECT_EQ(top(), "0,0");
    press(VK_NEXT);
    EXPECT_EQ(top(), down);
    press(VK_RIGHT);
    EXPECT_NE(grid->GetLeftCol(), 0);
    press(VK_LEFT);
    EXPECT_EQ(grid->GetLeftCol(), 0);
    press(VK_END);
    EXPECT_EQ(grid->GetBottomRow(), 39);
    press(VK_HOME);
    EXPECT_EQ(top(), "0,0");
}

TEST_F(GridKeys, inModeTwoArrowsMoveTheCurrentCell)
{
    prepare();
    ASSERT_EQ(grid->GetKeysScrollMode(), 2);
    press(VK_UP);
    press(VK_LEFT);
    EXPECT_EQ(current(), "none") << "nothing to go back from";
    EXPECT_TRUE(takeLog().empty());
    press(VK_DOWN);
    EXPECT_EQ(current(), "0,0");
    press(VK_DOWN);
    press(VK_RIGHT);
    EXPECT_EQ(selection(), "1,1 1,1");
    press(VK_LEFT);
    press(VK_LEFT); // at the first column
    press(VK_UP);
    press(VK_UP);
    EXPECT_EQ(takeLog(), (Log{"2045 0,0", "2045 0,1", "2045 1,1", "2045 0,1", "2045 0,0"}));
    press(VK_END);
    EXPECT_EQ(selection(), "0,39 0,39");
    EXPECT_EQ(grid->GetBottomRow(), 39);
    press(VK_DOWN);
    EXPECT_EQ(current(), "0,39");
    press(VK_HOME);
    EXPECT_EQ(selection(), "0,0 0,0");
    EXPECT_EQ(top(), "0,0");
    EXPECT_EQ(takeLog(), (Log{"2045 0,39", "2045 0,0"}));
    press(VK_NEXT);
    EXPECT_EQ(current(), "0,0") << "pages leave the current cell";
    EXPECT_EQ(top(), "0,8");
    press(VK_PRIOR);
    EXPECT_EQ(top(), "0,0");
    EXPECT_TRUE(takeLog().empty());
}

TEST_F(GridKeys, theCurrentCellStaysInViewAndAmongTheFree)
{
    prepare().SetFixedRowCount(2);
    grid->SetFixedColCount(1);
    EXPECT_EQ(current(), "1,2");
    press(VK_UP);
    press(VK_LEFT);
    EXPECT_EQ(current(), "1,2");
    for (int i = 0; i < 30; ++i)
    {
        press(VK_DOWN);
        EXPECT_TRUE(grid->IsCellVisible(1, grid->GetRow(), false)) << i;
    }
    for (int i = 0; i < 10; ++i)
    {
        press(VK_RIGHT);
    }
    EXPECT_EQ(current(), "5,32");
    RECT place{};
    EXPECT_TRUE(grid->GetCellRect(5, 32, place));
    EXPECT_LE(place.right, 200);
    press(VK_HOME);
    EXPECT_EQ(current(), "5,2");
    EXPECT_EQ(grid->GetTopRow(), 2);
}

TEST_F(GridKeys, fromNoCellForwardGoesToTheFirstFreeOne)
{
    prepare();
    for (const int key : {VK_RIGHT, VK_DOWN})
    {
        SendMessageW(*grid, WM_LBUTTONDOWN, MK_LBUTTON, pair(10, 10));
        SendMessageW(*grid, WM_LBUTTONUP, 0, pair(10, 10));
        grid->SetDimensions(3, 2);
        grid->SetFixedColCount(1);
        SendMessageW(*grid, WM_LBUTTONDOWN, MK_LBUTTON, pair(10, 140));
        EXPECT_EQ(current(), "none");
        press(key);
        EXPECT_EQ(current(), "1,0");
    }
}

TEST_F(GridKeys, otherKeysAreNotTheGrids)
{
    prepare();
    bool handled = true;
    for (const int key : {VK_ESCAPE, VK_RETURN, VK_SPACE, VK_TAB, VK_F1, int{'A'}})
    {
        grid->OnKeyDown(static_cast<UINT>(key), 0, 0, handled);
        EXPECT_FALSE(handled) << key;
    }
    grid->OnKeyDown(VK_DOWN, 0, 0, handled);
    EXPECT_TRUE(handled);
    handled = false;
    grid->OnKeyDown(VK_DOWN, 2, 0, handled); // several presses in one
    EXPECT_FALSE(handled);
    EXPECT_EQ(current(), "0,0");
}

TEST_F(GridKeys, withDelayTheLastKeyOfAnIntervalActs)
{
    prepare().SetKeysScrollMode(0);
    grid->SetDelayedScrolling(1000);
    for (const int key : {VK_DOWN, VK_END, VK_DOWN})
    {
        bool handled = false;
        grid->OnKeyDown(static_cast<UINT>(key), 5, 0, handled);
        EXPECT_TRUE(handled);
    }
    bool handled = true;
    grid->OnKeyDown(VK_RETURN, 0, 0, handled);
    EXPECT_FALSE(handled);
    EXPECT_EQ(top(), "0,0");
    tick(85);
    EXPECT_EQ(top(), "0,1");
    tick(85);
    EXPECT_EQ(top(), "0,1");
    press(VK_DOWN);
    tick(77); // the other timer looks for requests as well
    EXPECT_EQ(top(), "0,2");
}

TEST_F(GridKeys, aKeyThatIsHeldGoesFurtherOnceAHostStartsThat)
{
    prepare().SetKeysScrollMode(0);
    const auto step = [this]
    {
        grid->ScrollToTop();
        press(VK_DOWN);
        return grid->GetTopRow();
    };
    EXPECT_EQ(step(), 1);
    EXPECT_EQ(KillTimer(*grid, 80), FALSE) << "nobody has started it";
    const int steps[] = {2, 3, 5, 7};
    for (UINT_PTR timer = 80; timer < 84; ++timer)
    {
        SetTimer(*grid, timer, 10000, nullptr);
        tick(timer);
        EXPECT_EQ(KillTimer(*grid, timer), FALSE) << "each goes off once";
        EXPECT_EQ(step(), steps[timer - 80]);
        EXPECT_EQ(KillTimer(*grid, timer + 1), timer < 83 ? TRUE : FALSE) << timer;
        SetTimer(*grid, timer, 10000, nullptr);
    }
    tick(80); // two lines again
    grid->ScrollToTop();
    constexpr std::pair<int, const char *> places[] = {
        {VK_RIGHT, "2,0"}, {VK_LEFT, "0,0"}, {VK_DOWN, "0,2"}, {VK_UP, "0,0"}};
    for (const auto &[key, place] : places)
    {
        press(key);
        EXPECT_EQ(top(), place) << key;
    }
    SendMessageW(*grid, WM_KEYUP, VK_DOWN, 1);
    EXPECT_EQ(step(), 1);
    for (UINT_PTR timer = 80; timer < 84; ++timer)
    {
        EXPECT_EQ(KillTimer(*grid, timer), FALSE) << timer;
    }
}
} // namespace
} // namespace zb::test
