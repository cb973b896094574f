// A pen that is held.
#include "platform/gesture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

namespace zb::test
{
namespace
{
class Gesture : public ::testing::Test
{
  protected:
    Gesture()
    {
        window.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &)
        {
            if (message == WM_LBUTTONDOWN)
            {
                SHRGINFO info{sizeof info,
                              window.window,
                              {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam))),
                               static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam)))},
                              SHRG_RETURNCMD};
                answer = SHRecognizeGesture(&info);
            }
            if (message == WM_TIMER && wParam == 1)
            {
                // Each tick lets time go by.
                skipTime(50);
                ++ticks;
                dots = dots || screenPixel(100, 100 - 18) == GetSysColor(COLOR_HIGHLIGHT);
                if (onTick)
                {
                    onTick();
                }
                if (ticks == 40)
                {
                    KillTimer(window.window, 1);
                }
            }
            return message == WM_LBUTTONDOWN || message == WM_TIMER;
        };
        settle();
    }
    void down()
    {
        penDown(100, 100);
        SetTimer(window.window, 1, 1, nullptr);
        settle();
    }

    TestDevice device;
    ScreenWindow window{RGB(10, 20, 30), WS_POPUP | WS_VISIBLE, 0, 0, 200, 200};
    DWORD answer = 77;
    int ticks = 0;
    bool dots = false;
    std::function<void()> onTick;
};

TEST_F(Gesture, aHeldPenIsToldAndItsDotsLeaveNothing)
{
    down();
    EXPECT_EQ(answer, GN_CONTEXTMENU);
    EXPECT_EQ(GN_CONTEXTMENU, 1000U);
    EXPECT_TRUE(dots);
    for (int y = 70; y < 130; ++y)
    {
        for (int x = 70; x < 130; ++x)
        {
            ASSERT_EQ(screenPixel(x, y), RGB(10, 20, 30)) << x << ' ' << y;
        }
    }
    penUp(100, 100);
    settle();
}

TEST_F(Gesture, aPenThatGoesUpOrAwayIsNot)
{
    onTick = [this]
    {
        if (ticks == 5)
        {
            penUp(100, 100);
        }
    };
    down();
    EXPECT_EQ(answer, 0U);
    EXPECT_EQ(window.count(WM_LBUTTONUP), 1) << "what ended it is still told";
    onTick = [this]
    {
        if (ticks == 3)
        {
            penMove(110, 100);
        }
    };
    ticks = 0;
    down();
    EXPECT_EQ(answer, 0U);
    EXPECT_EQ(window.count(WM_MOUSEMOVE), 1);
    penUp(110, 100);
    settle();
}

TEST_F(Gesture, aHandThatTremblesHolds)
{
    onTick = [this] { penMove(100 + ticks % 3, 101); };
    down();
    EXPECT_EQ(answer, GN_CONTEXTMENU);
    penUp(100, 100);
    settle();
}

TEST_F(Gesture, whatIsNoHoldIsNoneAtOnce)
{
    SHRGINFO info{sizeof info, window.window, {100, 100}, SHRG_RETURNCMD};
    EXPECT_EQ(SHRecognizeGesture(&info), 0U) << "no pen is down";
    EXPECT_EQ(SHRecognizeGesture(nullptr), 0U);
    info.cbSize = 1;
    EXPECT_EQ(SHRecognizeGesture(&info), 0U);
    info = {sizeof info, nullptr, {100, 100}, SHRG_RETURNCMD};
    EXPECT_EQ(SHRecognizeGesture(&info), 0U);
}
} // namespace
} // namespace zb::test
