// A pen that is held on the grid, and pictures that go with a drag.
#include "display/GridStage.h"
#include "platform/image_list.h"

namespace zb::test
{
namespace
{
class GridHold : public GridTest
{
  protected:
    TestGrid &prepare()
    {
        TestGrid &made = makePlain(6, 4);
        settle();
        skipsHold = false;
        return made;
    }
    static POINT at(int col, int row)
    {
        return {col * 50 + 25, row * 15 + 7};
    }
    /// Down, and the time of a hold goes by.
    void hold(POINT point)
    {
        penDown(point.x, point.y);
        // Ticks of another window let it go by.
        static int ticks;
        ticks = 0;
        SetTimer(parent.window, 1, 1,
                 [](HWND window, UINT, UINT_PTR id, DWORD)
                 {
                     skipTime(50);
                     if (++ticks == 30)
                     {
                         KillTimer(window, id);
                     }
                 });
        settle();
    }
};

TEST_F(GridHold, isToldWithItsCellAndPlace)
{
    prepare().SetMultiSelect(true, false);
    MoveWindow(*grid, 10, 20, 200, 100, TRUE);
    settle();
    hold({10 + at(2, 3).x, 20 + at(2, 3).y});
    EXPECT_EQ(notified, std::vector<int>{1000});
    EXPECT_EQ(lastHold.hdr.hwndFrom, grid->GetHwnd());
    EXPECT_EQ(lastHold.hdr.idFrom, 0x30002U);
    EXPECT_EQ(lastHold.ptAction.x, 10 + at(2, 3).x);
    EXPECT_EQ(lastHold.ptAction.y, 20 + at(2, 3).y);
    EXPECT_EQ(lastHold.dwItemSpec, 0U);
    EXPECT_EQ(selection(), "2,3 2,3");
    EXPECT_EQ(screenPixel(10 + 2 * 50 + 20, 20 + 3 * 15 + 3), GetSysColor(COLOR_HIGHLIGHT));
    penMove(50, 80);
    settle();
    EXPECT_EQ(selection(), "2,3 2,3") << "nor does it become a sweep";
    penUp(50, 50);
    settle();
    EXPECT_EQ(notified, std::vector<int>{1000}) << "the tap has been used up";
}

TEST_F(GridHold, aShortTapIsOne)
{
    prepare();
    penDown(at(1, 1).x, at(1, 1).y);
    penUp(at(1, 1).x, at(1, 1).y);
    settle();
    EXPECT_EQ(notified, (std::vector<int>{2047, -114}));
    EXPECT_EQ(holdsAsked, 1);
}

TEST_F(GridHold, aParentMayLeaveItOut)
{
    prepare();
    skipsHold = true;
    hold(at(1, 1));
    EXPECT_EQ(notified, std::vector<int>{2047});
    EXPECT_EQ(holdsAsked, 1);
    penUp(at(1, 1).x, at(1, 1).y);
    settle();
}

TEST_F(GridHold, isOnlyLookedForOnWhatIsSelectedOrAFloatersBody)
{
    prepare();
    grid->AddFloater(1, 1, 7, 3, 100, 0, RGB(0, 0, 255), false);
    settle();
    hold({53, 22}); // on its strip
    EXPECT_EQ(holdsAsked, 0);
    penUp(53, 22);
    settle();
    notified.clear();
    hold({80, 22});
    EXPECT_EQ(notified, std::vector<int>{1000});
    EXPECT_EQ(lastHold.dwItemSpec, 7U);
    penUp(80, 22);
    settle();
}

TEST_F(GridHold, aPenThatMovesAwayGoesOn)
{
    prepare().SetMultiSelect(true, false);
    penDown(at(1, 1).x, at(1, 1).y);
    penMove(at(1, 1).x, at(1, 1).y + 3); // as a hand does
    penMove(at(1, 3).x, at(1, 3).y);
    penMove(at(1, 4).x, at(1, 4).y);
    settle();
    EXPECT_EQ(holdsAsked, 1) << "several may be selected, and this one is now";
    EXPECT_EQ(selection(), "1,1 1,4");
    penUp(at(1, 4).x, at(1, 4).y);
    settle();
    EXPECT_EQ(notified, (std::vector<int>{2047, -13}));
}

TEST_F(GridHold, aGridThatChangesOrGoesWhileThePenIsHeldEndsTheTap)
{
    for (const bool goes : {false, true})
    {
        prepare();
        penDown(at(3, 5).x, at(3, 5).y);
        PostMessageW(parent.window, WM_USER, 0, 0);
        parent.before = [&, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            if (message == WM_USER)
            {
                goes ? grid.reset() : grid->SetDimensions(1, 1);
                penUp(at(3, 5).x, at(3, 5).y);
            }
            return others(message, wParam, lParam, result);
        };
        settle();
        EXPECT_TRUE(notified.empty());
    }
}

// --- Pictures of a drag ------------------------------------------------------------------------------------------

TEST_F(GridHold, aDragTakesTheParentsPictureAlong)
{
    const auto others = parent.before;
    prepare().SetDragAllowed(true);
    skipsHold = true;
    answers[2031] = 1;
    const HIMAGELIST list = ImageList_Create(20, 12, ILC_COLOR, 2, 1);
    const MemoryBitmap blank(20, 12);
    const MemoryBitmap red(20, 12);
    const RECT all = {0, 0, 20, 12};
    const HBRUSH brush = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(red.context(), &all, brush);
    DeleteObject(brush);
    ASSERT_EQ(ImageList_Add(list, reinterpret_cast<HBITMAP>(blank.bitmap()), nullptr), 0);
    ASSERT_EQ(ImageList_Add(list, reinterpret_cast<HBITMAP>(red.bitmap()), nullptr), 1);
    parent.before = [&](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        if (message == 2033)
        {
            *reinterpret_cast<int *>(wParam) = 1;
        }
        return others(message, wParam, lParam, result);
    };
    answers[2033] = reinterpret_cast<LRESULT>(list);
    draw({at(1, 2), {at(1, 2).x + 11, at(1, 2).y}}, false);
    const auto pictureAt = []
    {
        POINT place{-1, -1};
        POINT hotSpot{-1, -1};
        EXPECT_NE(ImageList_GetDragImage(&place, &hotSpot), nullptr);
        EXPECT_EQ(hotSpot.x, 2);
        EXPECT_EQ(hotSpot.y, 6); // half its height
        return std::pair(place.x, place.y);
    };
    EXPECT_EQ(pictureAt(), std::pair(at(1, 2).x + 11, at(1, 2).y));
    EXPECT_EQ(shown().at(at(1, 2).x + 11, at(1, 2).y), 0xFF0000U);
    penMove(150, 90);
    settle();
    EXPECT_EQ(pictureAt(), std::pair(150, 90));
    MoveWindow(*grid, 0, 0, 190, 100, TRUE);
    settle();
    EXPECT_EQ(pictureAt(), std::pair(150, 90));
    penUp(150, 90);
    settle();
    EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
    EXPECT_EQ(ImageList_GetImageCount(list), -1) << "the list was the grid's to destroy";
}
} // namespace
} // namespace zb::test
