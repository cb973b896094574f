// Controls that keep their place when their window changes its size, and the frame of two panes.
#include "framework/CeChildMgr.h"
#include "framework/CeSplitFrame.h"
#include "platform/dialog.h"
#include "support/Scaling.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;

constexpr COLORREF white = RGB(255, 255, 255);

::testing::AssertionResult lies(const ScreenWindow &window, int left, int top, int right, int bottom)
{
    RECT place = window.place();
    MapWindowPoints(nullptr, GetParent(window.window), reinterpret_cast<POINT *>(&place), 2);
    return zb::test::is(place, left, top, right, bottom);
}

zb::DeviceOptions screen()
{
    zb::DeviceOptions options;
    options.screen = {640, 480, 96};
    return options;
}

class ChildLayout : public ::testing::Test
{
  protected:
    void resize(CeChildMgr &manager, int cx, int cy)
    {
        SetWindowPos(parent.window, nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER);
        manager.OnSize(0, cx, cy);
    }
    zb::test::TestDevice device{screen()};
    ScreenWindow parent{white, WS_POPUP | WS_VISIBLE, 0, 0, 200, 100};
};

class SplitFrame : public ::testing::Test
{
  protected:
    SplitFrame() : frame(false)
    {
        frame.SetBarSize(4);
        frame.Create(nullptr, u"", WS_POPUP | WS_VISIBLE, 0, 0, 0, 200, 100, nullptr);
        frame.SetPanes(one.window, two.window);
    }
    void size(int cx, int cy)
    {
        SetWindowPos(frame, nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER);
    }
    zb::test::TestDevice device{screen()};
    zb::test::Scaling scaling;
    CeSplitFrame frame;
    ScreenWindow one{RGB(255, 0, 0), WS_CHILD | WS_VISIBLE, 0, 0, 10, 10};
    ScreenWindow two{RGB(0, 0, 255), WS_CHILD | WS_VISIBLE, 0, 0, 10, 10};
};
} // namespace

TEST_F(ChildLayout, EveryRuleOfItsOwn)
{
    const struct
    {
        UINT flags;
        int left, top, right, bottom; // after the parent has become 300 by 200
    } cases[] = {{0, 20, 10, 120, 50},
                 {0x0002, 120, 10, 220, 50},
                 {0x0008, 20, 110, 120, 150},
                 {0x0010, 20, 10, 220, 50},
                 {0x0020, 20, 10, 120, 150},
                 {0x0040, 20, 10, 170, 50},
                 {0x0080, 20, 10, 120, 90},
                 {0x0100, 30, 10, 130, 50},
                 {0x0200, 20, 20, 120, 60},
                 {0x0012, 20, 10, 220, 50},
                 {0x003A, 20, 10, 220, 150}};
    for (const auto &one : cases)
    {
        SetWindowPos(parent.window, nullptr, 0, 0, 200, 100, SWP_NOMOVE | SWP_NOZORDER);
        const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 20, 10, 100, 40, parent.window);
        CeChildMgr manager(parent.window);
        EXPECT_EQ(manager.Manage(child.window, one.flags), 0);
        resize(manager, 300, 200);
        EXPECT_TRUE(lies(child, one.left, one.top, one.right, one.bottom)) << one.flags;
    }
}

TEST_F(ChildLayout, SiblingsMoveAlong)
{
    const ScreenWindow label(white, WS_CHILD | WS_VISIBLE, 5, 12, 30, 20, parent.window);
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 40, 10, 60, 24, parent.window);
    const ScreenWindow button(white, WS_CHILD | WS_VISIBLE, 104, 8, 16, 16, parent.window);
    CeChildMgr manager(parent.window);
    manager.Manage(child.window, CHILD_KEEP_RIGHT | CHILD_KEEP_BOTTOM | 0x1000 | CHILD_WITH_NEXT);
    resize(manager, 250, 130);
    EXPECT_TRUE(lies(child, 90, 40, 150, 64));
    EXPECT_TRUE(lies(label, 55, 42, 85, 62));
    EXPECT_TRUE(lies(button, 154, 38, 170, 54));
    manager.UnManage(child.window);
    manager.Manage(child.window, CHILD_KEEP_RIGHT | 0x2000);
    resize(manager, 260, 130);
    EXPECT_TRUE(lies(label, 65, 42, 95, 62)) << "either bit";
    EXPECT_TRUE(lies(button, 154, 38, 170, 54)) << "and without the other one it stays";
}

TEST_F(ChildLayout, AChildThatWouldGetSmallerThanItsFrameStopsTheWholeLayout)
{
    const ScreenWindow other(white, WS_CHILD | WS_VISIBLE, 0, 60, 10, 10, parent.window);
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE | WS_BORDER | WS_VSCROLL, 20, 10, 100, 40, parent.window);
    CeChildMgr manager(parent.window);
    manager.Manage(other.window, CHILD_KEEP_RIGHT);
    manager.Manage(child.window, CHILD_GROW_WIDTH | CHILD_KEEP_RIGHT);
    resize(manager, 114, 100); // a width of 14, below 2 of border and 13 of the bar
    EXPECT_TRUE(lies(child, 20, 10, 120, 50));
    EXPECT_TRUE(lies(other, 0, 60, 10, 70));
    resize(manager, 115, 100);
    EXPECT_TRUE(lies(child, 20, 10, 35, 50));
}

TEST_F(ChildLayout, TheHeightStopsItAsWell)
{
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE | WS_BORDER | WS_HSCROLL, 20, 10, 100, 40, parent.window);
    CeChildMgr manager(parent.window);
    manager.Manage(child.window, CHILD_GROW_HEIGHT);
    resize(manager, 200, 74); // a height of 14
    EXPECT_TRUE(lies(child, 20, 10, 120, 50));
    resize(manager, 200, 75);
    EXPECT_TRUE(lies(child, 20, 10, 120, 25));
}

TEST_F(ChildLayout, ACollisionKeepsAllChildrenAndHereThereIsNone)
{
    class Careful : public CeChildMgr
    {
      public:
        using CeChildMgr::CeChildMgr;
        bool collides = true;
        bool DetectCollision() override
        {
            EXPECT_FALSE(CeChildMgr::DetectCollision());
            return collides;
        }
    };
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 20, 10, 100, 40, parent.window);
    Careful manager(parent.window);
    manager.Manage(child.window, CHILD_KEEP_RIGHT);
    resize(manager, 300, 100);
    EXPECT_TRUE(lies(child, 20, 10, 120, 50));
    manager.collides = false;
    resize(manager, 300, 100);
    EXPECT_TRUE(lies(child, 120, 10, 220, 50));
}

TEST_F(ChildLayout, TheSizesThatRulesGiveAreToldWithoutMovingAnything)
{
    const CeChildMgr manager(parent.window);
    CeChildInfo child;
    child.rcOriginal = {20, 10, 120, 50};
    child.rcParent = {0, 0, 200, 100};
    const struct
    {
        UINT flags;
        int cx, cy;
    } cases[] = {{0, 0, 0}, {0x0002, 0, 0}, {0x0010, 150, 0}, {0x0020, 0, 60}, {0x0040, 125, 0}, {0x0080, 0, 48}};
    for (const auto &one : cases)
    {
        child.uFlags = one.flags;
        const SIZE size = manager.CalcSize(child, 250, 120);
        EXPECT_EQ(size.cx, one.cx) << one.flags;
        EXPECT_EQ(size.cy, one.cy) << one.flags;
    }
}

TEST_F(ChildLayout, MinimisedWindowsAndLostOnesAreLeftAlone)
{
    CeChildMgr manager(parent.window);
    {
        const ScreenWindow gone(white, WS_CHILD | WS_VISIBLE, 0, 60, 10, 10, parent.window);
        manager.Manage(gone.window, CHILD_KEEP_RIGHT);
    }
    const ScreenWindow label(white, WS_CHILD | WS_VISIBLE, 0, 80, 30, 10, parent.window);
    {
        const ScreenWindow gone(white, WS_CHILD | WS_VISIBLE, 40, 80, 10, 10, parent.window);
        manager.Manage(gone.window, CHILD_WITH_PREVIOUS | CHILD_KEEP_RIGHT);
    }
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 20, 10, 100, 40, parent.window);
    EXPECT_EQ(manager.Manage(child.window, CHILD_KEEP_RIGHT), 2);
    manager.OnSize(1, 300, 100);
    EXPECT_TRUE(lies(child, 20, 10, 120, 50));
    manager.OnSize(0, 300, 100);
    EXPECT_TRUE(lies(child, 120, 10, 220, 50));
    EXPECT_TRUE(lies(label, 0, 80, 30, 90)) << "beside one that is gone";
    manager.UnManage(child.window);
    manager.OnSize(0, 200, 100);
    EXPECT_TRUE(lies(child, 120, 10, 220, 50));
    EXPECT_EQ(manager.Manage(parent.window, 0), -1) << "no child";
}

TEST_F(ChildLayout, ThePresentPlaceMayBecomeTheOriginalOne)
{
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 20, 10, 100, 40, parent.window);
    CeChildMgr manager(parent.window);
    manager.Manage(child.window, CHILD_GROW_WIDTH | CHILD_GROW_HEIGHT);
    MoveWindow(child.window, 30, 20, 50, 30, TRUE);
    manager.UpdateChild(child.window, 16);
    resize(manager, 210, 110);
    EXPECT_TRUE(lies(child, 30, 20, 90, 70)) << "60 wide from 50, but 50 high from 40";
    manager.UpdateChild(child.window, 32);
    resize(manager, 220, 120);
    EXPECT_TRUE(lies(child, 30, 20, 100, 80));
}

TEST_F(ChildLayout, ADialogTakesASizeInItsUnitsAndAllChildrenMove)
{
    const LONG units = GetDialogBaseUnits();
    CeChildMgr manager(parent.window);
    manager.SizeDialogToScreen(40, 80);
    EXPECT_EQ(parent.client().right, 10 * (units & 0xFFFF));
    EXPECT_EQ(parent.client().bottom, 10 * (units >> 16));
    const ScreenWindow a(white, WS_CHILD | WS_VISIBLE, 5, 6, 10, 10, parent.window);
    const ScreenWindow b(white, WS_CHILD | WS_VISIBLE, 25, 26, 10, 10, parent.window);
    CeChildMgr::OffsetChildren(parent.window, {3, -4});
    EXPECT_TRUE(lies(a, 8, 2, 18, 12));
    EXPECT_TRUE(lies(b, 28, 22, 38, 32));
}

TEST_F(ChildLayout, ChildrenAreKeptOutOfTheBackground)
{
    const ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 20, 10, 100, 40, parent.window);
    CeChildMgr manager(parent.window);
    manager.Manage(child.window, 0);
    const HDC memory = CreateCompatibleDC(nullptr);
    const HDC window = GetDC(parent.window);
    const HBITMAP bitmap = CreateCompatibleBitmap(window, 200, 100);
    ReleaseDC(parent.window, window);
    const HGDIOBJ former = SelectObject(memory, bitmap);
    manager.ValidateChildBkgnd(memory);
    const RECT inside{30, 20, 40, 30};
    const RECT outside{0, 0, 5, 5};
    EXPECT_FALSE(RectVisible(memory, &inside));
    EXPECT_TRUE(RectVisible(memory, &outside));
    SelectObject(memory, former);
    DeleteDC(memory);
    DeleteObject(bitmap);
}

TEST_F(ChildLayout, UpdatesAreCountedForTheWholeProcess)
{
    EXPECT_FALSE(CeChildMgr::IsUpdating());
    CeChildMgr::BeginUpdate();
    CeChildMgr::BeginUpdate();
    CeChildMgr::EndUpdate();
    EXPECT_TRUE(CeChildMgr::IsUpdating());
    CeChildMgr::EndUpdate();
    EXPECT_FALSE(CeChildMgr::IsUpdating());
}

TEST_F(SplitFrame, TheBarBeginsInTheMiddle)
{
    EXPECT_EQ(frame.GetSplitter(), 50);
    EXPECT_TRUE(lies(one, 0, 0, 200, 46));
    EXPECT_TRUE(lies(two, 0, 54, 200, 100));
    EXPECT_EQ(GetParent(one.window), frame.GetHwnd());
}

TEST_F(SplitFrame, TheBarKeepsItsProportion)
{
    frame.SetSplitter(30);
    EXPECT_EQ(frame.GetSplitter(), 30);
    EXPECT_TRUE(lies(one, 0, 0, 200, 26));
    size(100, 200);
    EXPECT_EQ(frame.GetSplitter(), 60);
    EXPECT_TRUE(lies(one, 0, 0, 100, 56));
    EXPECT_TRUE(lies(two, 0, 64, 100, 200));
    size(200, 100);
    EXPECT_EQ(frame.GetSplitter(), 30) << "turned there and back";
    size(150, 100);
    EXPECT_EQ(frame.GetSplitter(), 30) << "the width alone changes nothing";
    // In doubles: however it is turned, nothing is lost on the way.
    for (const int height : {7, 33, 3, 479, 61, 100})
    {
        size(150, height);
        EXPECT_EQ(frame.GetSplitter(), 30 * height / 100) << height;
    }
}

TEST_F(SplitFrame, TheMiddleIsTruncatedAndTheFramesSizeGoesOnToTheDefault)
{
    size(200, 101);
    frame.ResetSplitter();
    EXPECT_EQ(frame.GetSplitter(), 50);
    bool handled = true;
    frame.OnSize(0, 200, 101, handled);
    EXPECT_FALSE(handled);
    frame.OnSize(0, 0, 0, handled);
    EXPECT_EQ(frame.GetSplitter(), 50) << "an empty area says nothing";
}

TEST_F(SplitFrame, DockingHidesAPaneAndComesBackToTheOldSplitter)
{
    frame.SetSplitter(30);
    frame.SetDocked(SPLIT_FIRST);
    EXPECT_FALSE(IsWindowVisible(two.window));
    EXPECT_TRUE(lies(one, 0, 0, 200, 100));
    EXPECT_EQ(frame.GetDocked(), 1);
    frame.SetDocked(SPLIT_SECOND);
    EXPECT_FALSE(IsWindowVisible(one.window));
    EXPECT_TRUE(lies(two, 0, 0, 200, 100));
    frame.SetDocked(SPLIT_BOTH);
    EXPECT_TRUE(IsWindowVisible(one.window));
    EXPECT_TRUE(lies(one, 0, 0, 200, 26));
    EXPECT_TRUE(lies(two, 0, 34, 200, 100));
    frame.SetDocked(SPLIT_FIRST);
    size(200, 200);
    frame.SetDocked(SPLIT_BOTH);
    EXPECT_EQ(frame.GetSplitter(), 60) << "in proportion, though nobody saw it meanwhile";
    EXPECT_TRUE(lies(two, 0, 64, 200, 200));
}

TEST_F(SplitFrame, PlacingTheSplitterEndsDocking)
{
    frame.SetSplitter(30);
    frame.SetDocked(SPLIT_FIRST);
    frame.SetSplitter(30); // where it was
    EXPECT_EQ(frame.GetDocked(), SPLIT_BOTH);
    EXPECT_TRUE(IsWindowVisible(two.window));
    EXPECT_TRUE(lies(one, 0, 0, 200, 26));
    EXPECT_TRUE(lies(two, 0, 34, 200, 100));
    frame.BeginUpdate();
    frame.SetDocked(SPLIT_SECOND);
    EXPECT_FALSE(IsWindowVisible(one.window));
    EXPECT_TRUE(lies(two, 0, 34, 200, 100)) << "held back";
    frame.EndUpdate();
    EXPECT_TRUE(lies(two, 0, 0, 200, 100));
}

TEST_F(SplitFrame, ThePlaceOfTheSplitterIsMeantForTheSizeThatADockedFrameHas)
{
    for (const bool held : {false, true})
    {
        for (const int place : {80, 30})
        {
            size(200, 100);
            frame.SetSplitter(30);
            frame.SetDocked(SPLIT_FIRST);
            size(200, 200);
            if (held)
            {
                frame.BeginUpdate();
            }
            frame.SetSplitter(place);
            frame.EndUpdate();
            EXPECT_EQ(frame.GetSplitter(), place) << held;
            EXPECT_TRUE(lies(two, 0, place + 4, 200, 200)) << held;
        }
    }
}

TEST_F(SplitFrame, APaneThatIsGoneLeavesTheOther)
{
    DestroyWindow(one.window);
    frame.SetSplitter(30);
    size(200, 200);
    EXPECT_TRUE(lies(two, 0, 64, 200, 200));
}

TEST_F(SplitFrame, APaneAloneKeepsOffsetsAndItsMinimum)
{
    frame.SetOffsets(10, 5);
    frame.SetBarMins(20, 30);
    frame.SetDocked(SPLIT_FIRST);
    EXPECT_TRUE(lies(one, 0, 10, 200, 95));
    size(200, 32);
    EXPECT_TRUE(lies(one, 0, 10, 200, 30)) << "20, though there is room for 17";
    frame.SetDocked(SPLIT_SECOND);
    EXPECT_TRUE(lies(two, 0, 10, 200, 40));
}

TEST_F(SplitFrame, ThePenMovesTheBar)
{
    settle();
    zb::penDown(100, 50);
    settle();
    EXPECT_EQ(GetCapture(), frame.GetHwnd());
    zb::penMove(100, 75);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 70) << "the pen less the bar's size and one";
    EXPECT_TRUE(lies(one, 0, 0, 200, 70)) << "the bar takes no place while it is held";
    EXPECT_TRUE(lies(two, 0, 70, 200, 100));
    zb::penUp(100, 75);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 70);
    EXPECT_TRUE(lies(one, 0, 0, 200, 66));
    EXPECT_TRUE(lies(two, 0, 74, 200, 100));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(SplitFrame, ThePenCantGoBelowTheMinimums)
{
    frame.SetBarMins(20, 30);
    zb::penDown(100, 50);
    settle();
    zb::penMove(100, 19);
    zb::penMove(100, 71);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 50);
    zb::penMove(100, 70);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 65);
    zb::penUp(100, 70);
    settle();
}

TEST_F(SplitFrame, WhoTakesThePenEndsTheDragging)
{
    zb::penDown(100, 50);
    settle();
    zb::penMove(100, 75);
    settle();
    SetCapture(one.window);
    EXPECT_TRUE(lies(one, 0, 0, 200, 66)) << "the bar has its place again";
    zb::penMove(100, 30);
    settle();
    ReleaseCapture();
    zb::penMove(100, 72);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 70);
    zb::penUp(100, 72);
    settle();
    EXPECT_EQ(frame.GetSplitter(), 70);
}

TEST_F(SplitFrame, ATapOnADockedFrameDragsNothing)
{
    frame.SetDocked(SPLIT_FIRST);
    bool handled = false;
    frame.OnLButtonDown(0, {10, 10}, handled);
    EXPECT_TRUE(handled);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(SplitFrame, AnUpdateHoldsTheLayoutBack)
{
    frame.BeginUpdate();
    frame.SetSplitter(80);
    EXPECT_EQ(frame.GetSplitter(), 80);
    EXPECT_TRUE(lies(one, 0, 0, 200, 46)) << "not yet";
    frame.EndUpdate();
    EXPECT_TRUE(lies(one, 0, 0, 200, 76));
}

TEST_F(SplitFrame, OffsetsLeaveRoomAtBothEnds)
{
    frame.SetOffsets(10, 5);
    frame.ResetSplitter();
    EXPECT_EQ(frame.GetSplitter(), 55);
    EXPECT_TRUE(lies(one, 0, 10, 200, 51));
    EXPECT_TRUE(lies(two, 0, 59, 200, 95));
}

TEST_F(SplitFrame, AnUprightBarSplitsTheWidth)
{
    CeSplitFrame upright(true);
    upright.SetBarSize(4);
    ASSERT_TRUE(upright.Create(nullptr, u"", WS_POPUP | WS_VISIBLE, 0, 0, 0, 200, 100, nullptr));
    const ScreenWindow left(white, WS_CHILD | WS_VISIBLE, 0, 0, 10, 10);
    const ScreenWindow right(white, WS_CHILD | WS_VISIBLE, 0, 0, 10, 10);
    upright.SetPanes(left.window, right.window);
    EXPECT_TRUE(lies(left, 0, 0, 96, 100));
    EXPECT_TRUE(lies(right, 104, 0, 200, 100));
    upright.SetSplitter(60);
    SetWindowPos(upright, nullptr, 0, 0, 100, 200, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(upright.GetSplitter(), 30) << "30 of 100, turned";
    EXPECT_TRUE(lies(left, 0, 0, 26, 200));
    EXPECT_TRUE(lies(right, 34, 0, 100, 200));
    DestroyWindow(upright);
}

TEST_F(SplitFrame, TheBarIsBlackWhileItIsHeld)
{
    settle();
    const COLORREF idle = zb::test::screenPixel(100, 50);
    EXPECT_NE(idle, RGB(0, 0, 0));
    zb::penDown(100, 50);
    settle();
    // Two bar sizes, from 46 to 53, with 2 pixels free at each end.
    const struct
    {
        int x, y;
        bool bar;
    } points[] = {{100, 46, true}, {100, 53, true}, {2, 50, true}, {197, 50, true}, {1, 50, false}, {198, 50, false}};
    for (const auto &[x, y, bar] : points)
    {
        EXPECT_EQ(zb::test::screenPixel(x, y) == RGB(0, 0, 0), bar) << x << ", " << y;
    }
    EXPECT_EQ(zb::test::screenPixel(100, 45), RGB(255, 0, 0));
    EXPECT_EQ(zb::test::screenPixel(100, 54), RGB(0, 0, 255));
    zb::penUp(100, 50);
    settle();
    frame.SetDocked(SPLIT_FIRST);
    settle();
    EXPECT_EQ(zb::test::screenPixel(100, 50), RGB(255, 0, 0)) << "no bar beside a pane alone";
}
