// The scroll bars of a window: range, page and position, what shows, and what the pen does with them.
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::TestDevice;

constexpr COLORREF red = RGB(200, 0, 0);
constexpr int thick = 13; // of a bar at 96 dots an inch

class ScrollBars : public ::testing::Test
{
  protected:
    TestDevice device{zb::test::withScreen(300, 200)};
    /// 100 by 126: the bar of it has a track of 100 between its arrows.
    ScreenWindow window{red, WS_POPUP | WS_VISIBLE | WS_VSCROLL, 0, 0, 100, 126};

    int set(int low, int high, UINT page, int position, UINT mask = SIF_RANGE | SIF_PAGE | SIF_POS)
    {
        const SCROLLINFO info{sizeof(SCROLLINFO), mask, low, high, page, position, 0};
        return SetScrollInfo(window.window, SB_VERT, &info, TRUE);
    }
    SCROLLINFO get()
    {
        SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
        EXPECT_TRUE(GetScrollInfo(window.window, SB_VERT, &info));
        return info;
    }
    /// The codes and positions of all that was sent, and then nothing.
    std::vector<std::pair<int, int>> scrolled()
    {
        std::vector<std::pair<int, int>> all;
        for (const auto &one : window.told)
        {
            if (one.message == WM_VSCROLL)
            {
                all.emplace_back(LOWORD(one.wParam), HIWORD(one.wParam));
            }
        }
        window.clear();
        return all;
    }
    using Codes = std::vector<std::pair<int, int>>;
};
} // namespace

TEST_F(ScrollBars, RangePageAndPositionAreKept)
{
    EXPECT_EQ(set(0, 99, 10, 20), 20);
    const SCROLLINFO info = get();
    EXPECT_EQ(info.nMin, 0);
    EXPECT_EQ(info.nMax, 99);
    EXPECT_EQ(info.nPage, 10U);
    EXPECT_EQ(info.nPos, 20);
    EXPECT_EQ(set(0, 0, 0, 30, SIF_POS), 30);
    EXPECT_EQ(get().nMax, 99) << "only what the mask names changes";
}

TEST_F(ScrollBars, ThePositionStaysBetweenTheEnds)
{
    EXPECT_EQ(set(0, 99, 10, 95), 90);
    EXPECT_EQ(set(0, 99, 10, -5), 0);
    EXPECT_EQ(set(5, 99, 0, 200), 99);
    EXPECT_EQ(set(5, 3, 0, 4), 5) << "a range the wrong way round is one place";
    set(0, 9, 50, 0, SIF_RANGE | SIF_PAGE);
    EXPECT_EQ(get().nPage, 10U);
}

TEST_F(ScrollBars, ABarWithNothingToScrollIsHiddenOrDisabled)
{
    RECT client{};
    set(0, 99, 10, 0);
    GetClientRect(window.window, &client);
    EXPECT_EQ(client.right, 100 - thick);
    set(0, 9, 10, 0);
    GetClientRect(window.window, &client);
    EXPECT_EQ(client.right, 100);
    EXPECT_EQ(GetWindowLongW(window.window, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL), 0);
    EXPECT_EQ(LOWORD(static_cast<DWORD_PTR>(window.last(WM_SIZE).lParam)), 100);
    set(0, 9, 10, 0, SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL);
    GetClientRect(window.window, &client);
    EXPECT_EQ(client.right, 100 - thick);
    settle();
    scrolled();
    zb::penDown(95, 120);
    zb::penUp(95, 120);
    settle();
    EXPECT_EQ(scrolled(), Codes{}) << "it is disabled";
}

TEST_F(ScrollBars, ShowScrollBarShowsAndHides)
{
    RECT client{};
    EXPECT_TRUE(ShowScrollBar(window.window, SB_BOTH, TRUE));
    GetClientRect(window.window, &client);
    EXPECT_EQ(client.right, 100 - thick);
    EXPECT_EQ(client.bottom, 126 - thick);
    EXPECT_TRUE(ShowScrollBar(window.window, SB_VERT, FALSE));
    GetClientRect(window.window, &client);
    EXPECT_EQ(client.right, 100);
    EXPECT_FALSE(ShowScrollBar(window.window, 7, FALSE));
}

TEST_F(ScrollBars, ArrowsStepByLines)
{
    set(0, 99, 10, 50);
    settle();
    window.clear();
    zb::penDown(90, 5);
    zb::penUp(90, 5);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_LINEUP, 0}, {SB_ENDSCROLL, 0}}));
    zb::penDown(90, 120);
    zb::penUp(90, 120);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_LINEDOWN, 0}, {SB_ENDSCROLL, 0}}));
}

TEST_F(ScrollBars, TheTrackStepsByPages)
{
    set(0, 99, 20, 40); // a thumb of 20 in a track of 100: 13 + 80 * 40 / 80 = 53 to 73
    settle();
    window.clear();
    zb::penDown(90, 52);
    zb::penUp(90, 52);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_PAGEUP, 0}, {SB_ENDSCROLL, 0}}));
    zb::penDown(90, 73);
    zb::penUp(90, 73);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_PAGEDOWN, 0}, {SB_ENDSCROLL, 0}}));
}

TEST_F(ScrollBars, TheThumbFollowsThePen)
{
    set(0, 99, 20, 40);
    settle();
    window.clear();
    std::vector<int> tracked;
    window.before = [&](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_VSCROLL && LOWORD(wParam) == SB_THUMBTRACK)
        {
            tracked.push_back(get().nTrackPos);
        }
        return false;
    };
    zb::penDown(90, 60);
    zb::penMove(90, 70); // ten pixels of 80 are ten of 80 positions
    zb::penMove(5, 70);
    zb::penMove(90, 500);
    zb::penUp(90, 500);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_THUMBTRACK, 50},
                                 {SB_THUMBTRACK, 80},
                                 {SB_THUMBPOSITION, 80},
                                 {SB_ENDSCROLL, 0}}));
    EXPECT_EQ(tracked, (std::vector<int>{50, 80}));
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(ScrollBars, TheThumbNeverGetsTooSmallForAFinger)
{
    set(0, 9999, 1, 0); // a page of a hundredth of a pixel
    settle();
    window.clear();
    zb::penDown(90, 13 + thick - 1); // the last pixel of a thumb as long as the bar is thick
    zb::penUp(90, 13 + thick - 1);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_ENDSCROLL, 0}}));
    zb::penDown(90, 13 + thick);
    zb::penUp(90, 13 + thick);
    settle();
    EXPECT_EQ(scrolled(), (Codes{{SB_PAGEDOWN, 0}, {SB_ENDSCROLL, 0}}));
}

TEST_F(ScrollBars, BadArgumentsAreRefused)
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 10, 1, 5, 0};
    EXPECT_EQ(SetScrollInfo(window.window, 2, &info, TRUE), 0);
    EXPECT_EQ(SetScrollInfo(window.window, SB_VERT, nullptr, TRUE), 0);
    EXPECT_FALSE(GetScrollInfo(nullptr, SB_VERT, &info));
    EXPECT_FALSE(GetScrollInfo(window.window, 9, &info));
}
