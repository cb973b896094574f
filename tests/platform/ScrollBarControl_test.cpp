// The scroll bar as a control: what it keeps, what its parent hears from pen and keys.
#include "platform/controls.h"
#include "platform/dialog.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;

struct Heard
{
    UINT message;
    int code;
    int position;
    bool operator==(const Heard &) const = default;
};
void PrintTo(const Heard &heard, std::ostream *out)
{
    *out << heard.message << ": " << heard.code << " at " << heard.position;
}

/// 13 thick, 126 long: a track of 100 between the arrows.
class ScrollBarControls : public ::testing::TestWithParam<bool>
{
  protected:
    ScrollBarControls()
    {
        const bool vertical = GetParam();
        bar = CreateWindowExW(0, u"SCROLLBAR", u"", WS_CHILD | WS_VISIBLE | (vertical ? SBS_VERT : SBS_HORZ), 10, 10,
                              vertical ? 13 : 126, vertical ? 126 : 13, parent.window, nullptr, nullptr, nullptr);
        const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, 20, 40, 0};
        EXPECT_EQ(SetScrollInfo(bar, SB_CTL, &info, TRUE), 40);
        settle();
        parent.clear();
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(bar, message, wParam, lParam);
    }
    static POINT at(int along)
    {
        return GetParam() ? POINT{15, 10 + along} : POINT{10 + along, 15};
    }
    static void down(int along)
    {
        zb::penDown(at(along).x, at(along).y);
        settle();
    }
    static void move(int along)
    {
        zb::penMove(at(along).x, at(along).y);
        settle();
    }
    static void up(int along)
    {
        zb::penUp(at(along).x, at(along).y);
        settle();
    }
    std::vector<Heard> heard()
    {
        std::vector<Heard> all;
        for (const auto &one : parent.told)
        {
            if (one.message == WM_HSCROLL || one.message == WM_VSCROLL)
            {
                EXPECT_EQ(reinterpret_cast<HWND>(one.lParam), bar);
                all.push_back({one.message, LOWORD(one.wParam), HIWORD(one.wParam)});
            }
        }
        parent.clear();
        return all;
    }
    static Heard told(WORD code, int position = 0)
    {
        return {GetParam() ? WM_VSCROLL : WM_HSCROLL, code, position};
    }
    using All = std::vector<Heard>;

    zb::test::TestDevice device;
    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 200, 200};
    HWND bar = nullptr;
};
} // namespace

TEST_P(ScrollBarControls, KeepsWhatItIsGiven)
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_TRUE(GetScrollInfo(bar, SB_CTL, &info));
    EXPECT_EQ(info.nMax, 99);
    EXPECT_EQ(info.nPage, 20U);
    EXPECT_EQ(info.nPos, 40);
    EXPECT_EQ(send(SBM_SETPOS, 95, TRUE), 40) << "the former one";
    EXPECT_EQ(send(SBM_GETPOS), 80) << "the last page begins there";
    EXPECT_EQ(send(SBM_SETRANGE, 5, 50), 80);
    EXPECT_EQ(send(SBM_GETPOS), 31);
    int low = 0;
    int high = 0;
    send(SBM_GETRANGE, reinterpret_cast<WPARAM>(&low), reinterpret_cast<LPARAM>(&high));
    EXPECT_EQ(low, 5);
    EXPECT_EQ(high, 50);
    info = {sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, 7, 0};
    EXPECT_EQ(send(SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info)), 7);
    info = {sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, 0, 0};
    EXPECT_TRUE(send(SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info)));
    EXPECT_EQ(info.nPos, 7);
    EXPECT_EQ(heard(), All{});
}

TEST_P(ScrollBarControls, TapsOnArrowsAndTrack)
{
    // The thumb is 20 long and stands at 13 + 40 of 80 positions in a room of 80.
    const std::pair<int, WORD> parts[] = {{5, SB_LINEUP}, {30, SB_PAGEUP}, {100, SB_PAGEDOWN}, {120, SB_LINEDOWN}};
    for (const auto &[along, code] : parts)
    {
        down(along);
        up(along);
        EXPECT_EQ(heard(), (All{told(code), told(SB_ENDSCROLL)})) << along;
        EXPECT_EQ(send(SBM_GETPOS), 40) << "the parent's to set";
    }
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_P(ScrollBarControls, TheThumbIsDrawnAlong)
{
    down(60);
    EXPECT_EQ(heard(), All{});
    move(70);
    move(70);
    move(500);
    up(500);
    EXPECT_EQ(heard(),
              (All{told(SB_THUMBTRACK, 50), told(SB_THUMBTRACK, 80), told(SB_THUMBPOSITION, 80), told(SB_ENDSCROLL)}));
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(bar, SB_CTL, &info);
    EXPECT_EQ(info.nTrackPos, 80);
    EXPECT_EQ(send(SBM_GETPOS), 40);
}

TEST_P(ScrollBarControls, AHeldPenRepeatsUntilTheThumbIsUnderIt)
{
    parent.before = [this](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if ((message == WM_HSCROLL || message == WM_VSCROLL) && LOWORD(wParam) == SB_PAGEDOWN)
        {
            send(SBM_SETPOS, static_cast<WPARAM>(send(SBM_GETPOS) + 20));
        }
        return false;
    };
    down(110);
    EXPECT_EQ(send(SBM_GETPOS), 60);
    for (int i = 0; i < 100 && send(SBM_GETPOS) < 80; ++i)
    {
        Sleep(10);
        settle();
    }
    Sleep(130);
    settle();
    up(110);
    EXPECT_EQ(heard(), (All{told(SB_PAGEDOWN), told(SB_PAGEDOWN), told(SB_ENDSCROLL)}));
}

TEST_P(ScrollBarControls, Keys)
{
    SetFocus(bar);
    settle();
    parent.clear();
    const std::pair<int, WORD> keys[] = {{VK_UP, SB_LINEUP},      {VK_DOWN, SB_LINEDOWN}, {VK_LEFT, SB_LINEUP},
                                         {VK_RIGHT, SB_LINEDOWN}, {VK_PRIOR, SB_PAGEUP},  {VK_NEXT, SB_PAGEDOWN},
                                         {VK_HOME, SB_TOP},       {VK_END, SB_BOTTOM}};
    for (const auto &[key, code] : keys)
    {
        zb::keyDown(key);
        zb::keyUp(key);
        settle();
        EXPECT_EQ(heard(), (All{told(code), told(SB_ENDSCROLL)})) << key;
    }
    EXPECT_EQ(send(WM_GETDLGCODE), DLGC_WANTARROWS);
}

TEST_P(ScrollBarControls, WithNothingToScrollItDoesNothing)
{
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE, 0, 9, 20, 0, 0};
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
    down(120);
    up(120);
    SetFocus(bar);
    zb::keyDown(VK_DOWN);
    zb::keyUp(VK_DOWN);
    settle();
    EXPECT_EQ(heard(), All{});
    EXPECT_TRUE(IsWindowVisible(bar)) << "unlike a window's own";
}

TEST_P(ScrollBarControls, ArrowsThatAreOff)
{
    EXPECT_TRUE(send(SBM_ENABLE_ARROWS, ESB_DISABLE_LTUP));
    down(5);
    up(5);
    EXPECT_EQ(heard(), All{});
    down(120);
    up(120);
    EXPECT_EQ(heard(), (All{told(SB_LINEDOWN), told(SB_ENDSCROLL)}));
    send(SBM_ENABLE_ARROWS, ESB_DISABLE_BOTH);
    down(60);
    move(70);
    up(70);
    EXPECT_EQ(heard(), All{});
}

TEST_P(ScrollBarControls, AParentMayEndItInAnswer)
{
    parent.before = [this](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message == WM_HSCROLL || message == WM_VSCROLL)
        {
            DestroyWindow(bar);
        }
        return false;
    };
    down(60);
    move(70);
    up(70);
    EXPECT_FALSE(IsWindow(bar));
}

INSTANTIATE_TEST_SUITE_P(Both, ScrollBarControls, ::testing::Bool());
