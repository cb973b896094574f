// Where windows lie, their order, and what they are told of it.
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{
using zb::test::ScreenWindow;
using zb::test::is;
using zb::test::pair;
using zb::test::settle;
using zb::test::TestDevice;

constexpr COLORREF red = RGB(200, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 200);

class WindowPlace : public ::testing::Test
{
  protected:
    TestDevice device{zb::test::withScreen(300, 200)};
};
} // namespace

TEST_F(WindowPlace, AWindowOfTheScreenLiesWhereItWasMade)
{
    const ScreenWindow window(red, WS_POPUP, 10, 20, 100, 50);
    EXPECT_TRUE(is(window.place(), 10, 20, 110, 70));
    EXPECT_TRUE(is(window.client(), 0, 0, 100, 50));
    EXPECT_EQ(window.last(WM_SIZE).lParam, pair(100, 50));
    EXPECT_EQ(window.last(WM_MOVE).lParam, pair(10, 20));
    EXPECT_EQ(window.count(WM_PAINT), 0);
}

TEST_F(WindowPlace, UseDefaultIsTheWholeScreenAndFromAPlaceToItsEdges)
{
    const ScreenWindow whole(red, WS_POPUP, CW_USEDEFAULT, 5, CW_USEDEFAULT, CW_USEDEFAULT);
    EXPECT_TRUE(is(whole.place(), 0, 0, 300, 200));
    const ScreenWindow rest(red, WS_POPUP, 40, 30, CW_USEDEFAULT, CW_USEDEFAULT);
    EXPECT_TRUE(is(rest.place(), 40, 30, 300, 200));
}

TEST_F(WindowPlace, ChildrenCountFromTheirParentsClientArea)
{
    const ScreenWindow parent(red, WS_POPUP | WS_BORDER | WS_VISIBLE, 10, 20, 100, 80);
    EXPECT_TRUE(is(parent.client(), 0, 0, 98, 78)); // a border of one pixel
    const ScreenWindow child(blue, WS_CHILD, 5, 6, 30, 20, parent.window);
    EXPECT_TRUE(is(child.place(), 16, 27, 46, 47));
    EXPECT_EQ(child.last(WM_MOVE).lParam, pair(5, 6));
    MoveWindow(parent.window, 50, 60, 100, 80, TRUE);
    EXPECT_TRUE(is(child.place(), 56, 67, 86, 87));
}

TEST_F(WindowPlace, FrameTitleAndBarsTakeFromTheClientArea)
{
    const struct
    {
        DWORD style;
        DWORD exStyle;
        int left, top, width, height;
    } cases[] = {{0, 0, 0, 0, 100, 80},
                 {WS_BORDER, 0, 1, 1, 98, 78},
                 {WS_DLGFRAME, 0, GetSystemMetrics(SM_CXDLGFRAME), GetSystemMetrics(SM_CXDLGFRAME),
                  100 - 2 * GetSystemMetrics(SM_CXDLGFRAME), 80 - 2 * GetSystemMetrics(SM_CXDLGFRAME)},
                 {WS_CAPTION, 0, 1, 1 + GetSystemMetrics(SM_CYCAPTION), 98, 78 - GetSystemMetrics(SM_CYCAPTION)},
                 {WS_VSCROLL, 0, 0, 0, 100 - GetSystemMetrics(SM_CXVSCROLL), 80},
                 {WS_HSCROLL, 0, 0, 0, 100, 80 - GetSystemMetrics(SM_CYHSCROLL)},
                 {0, WS_EX_CLIENTEDGE, 2, 2, 96, 76},
                 {WS_BORDER, WS_EX_CLIENTEDGE, 3, 3, 94, 74}};
    for (const auto &one : cases)
    {
        const ScreenWindow window(red, WS_POPUP | one.style, 0, 0, 100, 80, nullptr, 0, one.exStyle);
        EXPECT_TRUE(is(window.client(), 0, 0, one.width, one.height)) << one.style;
        POINT corner{0, 0};
        ClientToScreen(window.window, &corner);
        EXPECT_EQ(corner.x, one.left) << one.style;
        EXPECT_EQ(corner.y, one.top) << one.style;
    }
}

TEST_F(WindowPlace, TheFrameGrowsWithTheDensity)
{
    device.close();
    zb::DeviceOptions fine;
    fine.screen = {600, 400, 192};
    TestDevice other(fine);
    const ScreenWindow window(red, WS_POPUP | WS_BORDER | WS_VSCROLL, 0, 0, 100, 80);
    EXPECT_TRUE(is(window.client(), 0, 0, 100 - 4 - 26, 76));
}

TEST_F(WindowPlace, AWindowSmallerThanItsFrameHasNoClientArea)
{
    const ScreenWindow window(red, WS_POPUP | WS_CAPTION, 0, 0, 10, 5);
    EXPECT_TRUE(is(window.client(), 0, 0, 8, 0));
}

TEST_F(WindowPlace, AdjustWindowRectUndoesTheFrame)
{
    RECT rectangle{0, 0, 100, 50};
    EXPECT_TRUE(AdjustWindowRectEx(&rectangle, WS_POPUP | WS_CAPTION | WS_VSCROLL, FALSE, 0));
    EXPECT_TRUE(is(rectangle, -1, -1 - GetSystemMetrics(SM_CYCAPTION), 101, 51));
    EXPECT_FALSE(AdjustWindowRectEx(nullptr, 0, FALSE, 0));
}

TEST_F(WindowPlace, PointsMapBetweenWindowsAndScreen)
{
    const ScreenWindow one(red, WS_POPUP | WS_BORDER, 10, 20, 100, 80);
    const ScreenWindow other(blue, WS_POPUP, 50, 70, 100, 80);
    POINT points[2] = {{1, 2}, {3, 4}};
    EXPECT_EQ(MapWindowPoints(one.window, other.window, points, 2), static_cast<int>(pair(-39, -49)));
    EXPECT_EQ(points[0].x, -38);
    EXPECT_EQ(points[0].y, -47);
    EXPECT_EQ(points[1].x, -36);
    POINT point{0, 0};
    MapWindowPoints(one.window, nullptr, &point, 1);
    EXPECT_EQ(point.x, 11);
    EXPECT_TRUE(ScreenToClient(one.window, &point));
    EXPECT_EQ(point.x, 0);
    EXPECT_FALSE(ClientToScreen(nullptr, &point));
}

TEST_F(WindowPlace, EachFlagOfSetWindowPosLeavesItsPart)
{
    ScreenWindow window(red, WS_POPUP, 10, 20, 100, 50);
    window.clear();
    SetWindowPos(window.window, nullptr, 1, 2, 30, 40, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(is(window.place(), 10, 20, 40, 60));
    EXPECT_EQ(window.count(WM_MOVE), 0);
    EXPECT_EQ(window.last(WM_SIZE).lParam, pair(30, 40));
    window.clear();
    SetWindowPos(window.window, nullptr, 1, 2, 5, 5, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(is(window.place(), 1, 2, 31, 42));
    EXPECT_EQ(window.count(WM_SIZE), 0);
    EXPECT_EQ(window.last(WM_MOVE).lParam, pair(1, 2));
    window.clear();
    SetWindowPos(window.window, nullptr, 1, 2, 30, 40, SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_EQ(window.count(WM_WINDOWPOSCHANGED), 1);
    EXPECT_EQ(window.count(WM_SIZE) + window.count(WM_MOVE), 0) << "nothing changed";
    SetWindowPos(window.window, nullptr, 0, 0, -5, 100000, SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(is(window.place(), 0, 0, 0, 32767));
    EXPECT_FALSE(SetWindowPos(nullptr, nullptr, 0, 0, 0, 0, 0));
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST_F(WindowPlace, WindowPosChangedTellsTheNewPlace)
{
    ScreenWindow window(red, WS_POPUP, 10, 20, 100, 50);
    WINDOWPOS seen{};
    window.before = [&seen](UINT message, WPARAM, LPARAM lParam, LRESULT &)
    {
        if (message == WM_WINDOWPOSCHANGED)
        {
            seen = *reinterpret_cast<const WINDOWPOS *>(lParam);
        }
        return false;
    };
    MoveWindow(window.window, 3, 4, 100, 60, TRUE);
    EXPECT_EQ(seen.hwnd, window.window);
    EXPECT_EQ(seen.x, 3);
    EXPECT_EQ(seen.y, 4);
    EXPECT_EQ(seen.cx, 100);
    EXPECT_EQ(seen.cy, 60);
    EXPECT_EQ(seen.flags & (SWP_NOMOVE | SWP_NOSIZE), 0U);
}

TEST_F(WindowPlace, ChildrenStandInTheOrderInWhichTheyWereMade)
{
    const ScreenWindow parent(red, WS_POPUP, 0, 0, 100, 100);
    const ScreenWindow a(blue, WS_CHILD, 0, 0, 10, 10, parent.window, 7);
    const ScreenWindow b(blue, WS_CHILD, 0, 0, 10, 10, parent.window, 8);
    const ScreenWindow c(blue, WS_CHILD, 0, 0, 10, 10, parent.window, 9);
    EXPECT_EQ(GetWindow(parent.window, GW_CHILD), a.window);
    EXPECT_EQ(GetWindow(a.window, GW_HWNDNEXT), b.window);
    EXPECT_EQ(GetWindow(b.window, GW_HWNDPREV), a.window);
    EXPECT_EQ(GetWindow(a.window, GW_HWNDLAST), c.window);
    EXPECT_EQ(GetWindow(c.window, GW_HWNDFIRST), a.window);
    EXPECT_EQ(GetWindow(c.window, GW_HWNDNEXT), nullptr);
    EXPECT_EQ(GetWindow(a.window, GW_HWNDPREV), nullptr);
    EXPECT_EQ(GetWindow(a.window, GW_OWNER), nullptr);
    SetWindowPos(c.window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(GetWindow(parent.window, GW_CHILD), c.window);
    SetWindowPos(c.window, a.window, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(GetWindow(a.window, GW_HWNDNEXT), c.window);
    SetWindowPos(a.window, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(GetWindow(c.window, GW_HWNDLAST), a.window);
    EXPECT_EQ(GetDlgItem(parent.window, 8), b.window);
    EXPECT_EQ(GetDlgCtrlID(b.window), 8);
    EXPECT_EQ(GetDlgItem(parent.window, 5), nullptr);
    EXPECT_TRUE(IsChild(parent.window, b.window));
    EXPECT_FALSE(IsChild(b.window, parent.window));
    EXPECT_FALSE(IsChild(b.window, b.window));
}

TEST_F(WindowPlace, WindowsOfTheScreenStandNewestFirstBelowThoseThatStayOnTop)
{
    const ScreenWindow first(red, WS_POPUP, 0, 0, 10, 10);
    const ScreenWindow top(red, WS_POPUP, 0, 0, 10, 10, nullptr, 0, WS_EX_TOPMOST);
    const ScreenWindow last(red, WS_POPUP, 0, 0, 10, 10);
    EXPECT_EQ(GetWindow(first.window, GW_HWNDFIRST), top.window);
    EXPECT_EQ(GetWindow(top.window, GW_HWNDNEXT), last.window);
    EXPECT_EQ(GetWindow(last.window, GW_HWNDNEXT), first.window);
    BringWindowToTop(first.window);
    EXPECT_EQ(GetWindow(top.window, GW_HWNDNEXT), first.window);
    SetWindowPos(top.window, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    BringWindowToTop(first.window);
    EXPECT_EQ(GetWindow(top.window, GW_HWNDFIRST), first.window);
}

TEST_F(WindowPlace, OwnedWindowsStayAboveTheirOwner)
{
    const ScreenWindow owner(red, WS_POPUP, 0, 0, 10, 10);
    const ScreenWindow owned(blue, WS_POPUP, 0, 0, 10, 10, owner.window);
    const ScreenWindow other(red, WS_POPUP, 0, 0, 10, 10);
    EXPECT_EQ(GetWindow(owned.window, GW_OWNER), owner.window);
    BringWindowToTop(owner.window);
    EXPECT_EQ(GetWindow(owner.window, GW_HWNDFIRST), owned.window);
    EXPECT_EQ(GetWindow(owned.window, GW_HWNDNEXT), owner.window);
    EXPECT_EQ(GetWindow(owner.window, GW_HWNDNEXT), other.window);
    EXPECT_EQ(GetWindow(owner.window, GW_CHILD), nullptr) << "it lies on the screen";
}

TEST_F(WindowPlace, SeveralChangesTakeEffectTogetherOrNotAtAll)
{
    ScreenWindow parent(red, WS_POPUP, 0, 0, 100, 100);
    ScreenWindow a(blue, WS_CHILD, 0, 0, 10, 10, parent.window);
    ScreenWindow b(blue, WS_CHILD, 20, 0, 10, 10, parent.window);
    RECT whereBWas{};
    a.before = [&](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message == WM_WINDOWPOSCHANGED)
        {
            GetWindowRect(b.window, &whereBWas);
        }
        return false;
    };
    HDWP changes = BeginDeferWindowPos(2);
    changes = DeferWindowPos(changes, a.window, nullptr, 1, 1, 5, 5, SWP_NOZORDER);
    changes = DeferWindowPos(changes, b.window, nullptr, 50, 50, 5, 5, SWP_NOZORDER);
    EXPECT_TRUE(is(a.place(), 0, 0, 10, 10)) << "not yet";
    EXPECT_TRUE(EndDeferWindowPos(changes));
    EXPECT_TRUE(is(a.place(), 1, 1, 6, 6));
    EXPECT_TRUE(is(whereBWas, 50, 50, 55, 55)) << "when the first hears of it, the second is there";
    changes = BeginDeferWindowPos(2);
    changes = DeferWindowPos(changes, a.window, nullptr, 9, 9, 5, 5, SWP_NOZORDER);
    EXPECT_EQ(DeferWindowPos(changes, reinterpret_cast<HWND>(12), nullptr, 0, 0, 0, 0, 0), nullptr);
    EXPECT_FALSE(EndDeferWindowPos(nullptr));
    EXPECT_TRUE(is(a.place(), 1, 1, 6, 6));
}

TEST_F(WindowPlace, ShowingAnnouncesItselfFirst)
{
    ScreenWindow window(red, WS_POPUP, 0, 0, 10, 10);
    bool shownThen = true;
    window.before = [&](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message == WM_SHOWWINDOW)
        {
            shownThen = IsWindowVisible(window.window) != FALSE;
        }
        return false;
    };
    EXPECT_FALSE(ShowWindow(window.window, SW_SHOW));
    EXPECT_FALSE(shownThen);
    EXPECT_EQ(window.last(WM_SHOWWINDOW).wParam, 1U);
    EXPECT_TRUE(IsWindowVisible(window.window));
    EXPECT_TRUE(ShowWindow(window.window, SW_SHOW));
    EXPECT_EQ(window.count(WM_SHOWWINDOW), 1);
    EXPECT_TRUE(ShowWindow(window.window, SW_HIDE));
    EXPECT_EQ(window.last(WM_SHOWWINDOW).wParam, 0U);
    EXPECT_FALSE(IsWindowVisible(window.window));
}

TEST_F(WindowPlace, AShownChildOfAHiddenParentIsNotVisible)
{
    const ScreenWindow parent(red, WS_POPUP, 0, 0, 100, 100);
    const ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, parent.window);
    EXPECT_FALSE(IsWindowVisible(child.window));
    ShowWindow(parent.window, SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(child.window));
}

TEST_F(WindowPlace, EnablingIsToldWhenItChanges)
{
    ScreenWindow window(red, WS_POPUP, 0, 0, 10, 10);
    EXPECT_TRUE(IsWindowEnabled(window.window));
    EXPECT_FALSE(EnableWindow(window.window, TRUE));
    EXPECT_EQ(window.count(WM_ENABLE), 0);
    EXPECT_FALSE(EnableWindow(window.window, FALSE));
    EXPECT_EQ(window.last(WM_ENABLE).wParam, 0U);
    EXPECT_TRUE(EnableWindow(window.window, TRUE));
    EXPECT_EQ(window.last(WM_ENABLE).wParam, 1U);
}

TEST_F(WindowPlace, ThePointFindsTheTopmostShownEnabledWindow)
{
    const ScreenWindow below(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    const ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 10, 10, 20, 20, below.window);
    const ScreenWindow above(red, WS_POPUP | WS_VISIBLE, 50, 50, 100, 100);
    EXPECT_EQ(WindowFromPoint({15, 15}), child.window);
    EXPECT_EQ(WindowFromPoint({30, 30}), below.window) << "right and bottom are outside";
    EXPECT_EQ(WindowFromPoint({60, 60}), above.window);
    EXPECT_EQ(WindowFromPoint({200, 10}), nullptr);
    EXPECT_EQ(ChildWindowFromPoint(below.window, {15, 15}), child.window);
    EXPECT_EQ(ChildWindowFromPoint(below.window, {5, 5}), below.window);
    EXPECT_EQ(ChildWindowFromPoint(below.window, {100, 5}), nullptr);
    EnableWindow(child.window, FALSE);
    EXPECT_EQ(WindowFromPoint({15, 15}), below.window);
    ShowWindow(above.window, SW_HIDE);
    EXPECT_EQ(WindowFromPoint({60, 60}), below.window);
}

TEST_F(WindowPlace, AChildOutsideItsParentIsNotFoundThere)
{
    const ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    const ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 40, 40, 40, 40, parent.window);
    EXPECT_EQ(WindowFromPoint({45, 45}), child.window);
    EXPECT_EQ(WindowFromPoint({60, 60}), nullptr);
}

TEST_F(WindowPlace, AWindowMovesToAnotherParent)
{
    const ScreenWindow one(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    const ScreenWindow other(red, WS_POPUP | WS_VISIBLE, 100, 100, 50, 50);
    const ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 10, 10, one.window);
    EXPECT_EQ(SetParent(child.window, other.window), one.window);
    EXPECT_EQ(GetParent(child.window), other.window);
    EXPECT_TRUE(is(child.place(), 105, 105, 115, 115));
    EXPECT_EQ(GetWindow(one.window, GW_CHILD), nullptr);
    EXPECT_EQ(SetParent(other.window, child.window), nullptr) << "no circles";
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(SetParent(child.window, nullptr), other.window);
    EXPECT_TRUE(is(child.place(), 5, 5, 15, 15));
}

TEST_F(WindowPlace, NeitherCirclesNorTowersComeFromNewParents)
{
    constexpr std::size_t levels = 60;
    std::vector<std::unique_ptr<ScreenWindow>> towers[2];
    for (auto &tower : towers)
    {
        for (std::size_t level = 0; level < levels; ++level)
        {
            const HWND below = level == 0 ? nullptr : tower.back()->window;
            tower.push_back(
                std::make_unique<ScreenWindow>(red, level == 0 ? WS_POPUP : WS_CHILD, 0, 0, 10, 10, below));
        }
    }
    const HWND top = towers[0][59]->window; // level 59, counted from 0
    SetLastError(0);
    EXPECT_EQ(SetParent(towers[0][5]->window, towers[0][40]->window), nullptr) << "in itself";
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(SetParent(towers[1][18]->window, top), nullptr) << "60, and 41 below it";
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(SetParent(towers[1][19]->window, top), towers[1][18]->window);
    EXPECT_EQ(ScreenWindow(red, WS_CHILD, 0, 0, 10, 10, towers[1][59]->window).window, nullptr) << "level 101";
    EXPECT_EQ(SetParent(top, towers[0][57]->window), towers[0][58]->window);
    const ScreenWindow one(red, WS_CHILD, 0, 0, 10, 10, towers[1][59]->window);
    EXPECT_NE(one.window, nullptr) << "one level has come free";
    EXPECT_EQ(ScreenWindow(red, WS_CHILD, 0, 0, 10, 10, one.window).window, nullptr);
}

TEST_F(WindowPlace, CallsForWindowsThatAreGoneAreRefused)
{
    HWND gone = nullptr;
    {
        const ScreenWindow window(red, WS_POPUP, 0, 0, 10, 10);
        gone = window.window;
    }
    RECT rectangle{};
    EXPECT_FALSE(GetWindowRect(gone, &rectangle));
    EXPECT_EQ(GetLastError(), 1400U);
    EXPECT_FALSE(GetClientRect(gone, &rectangle));
    EXPECT_FALSE(MoveWindow(gone, 0, 0, 1, 1, TRUE));
    EXPECT_FALSE(ShowWindow(gone, SW_SHOW));
    EXPECT_FALSE(IsWindowVisible(gone));
    EXPECT_FALSE(IsWindowEnabled(gone));
    EXPECT_EQ(GetWindow(gone, GW_CHILD), nullptr);
    EXPECT_EQ(GetDC(gone), nullptr);
    EXPECT_FALSE(InvalidateRect(gone, nullptr, TRUE));
}
