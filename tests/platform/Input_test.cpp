// Pen and keys: which window they reach, the focus, the capture, the active window.
#include "support/PlatformThread.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;
using zb::test::pair;
using zb::test::settle;
using zb::test::TestDevice;

constexpr COLORREF red = RGB(200, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 200);

class Input : public ::testing::Test
{
  protected:
    TestDevice device{zb::test::withScreen(300, 200)};
};
} // namespace

TEST_F(Input, ThePenReachesTheWindowBelowItInItsOwnCoordinates)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 10, 20, 100, 100);
    ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 6, 30, 30, parent.window);
    zb::penDown(20, 30);
    zb::penMove(21, 31);
    zb::penUp(22, 32);
    settle();
    EXPECT_EQ(child.last(WM_LBUTTONDOWN), (ScreenWindow::Told{WM_LBUTTONDOWN, MK_LBUTTON, pair(5, 4)}));
    EXPECT_EQ(child.last(WM_MOUSEMOVE), (ScreenWindow::Told{WM_MOUSEMOVE, MK_LBUTTON, pair(6, 5)}));
    EXPECT_EQ(child.last(WM_LBUTTONUP), (ScreenWindow::Told{WM_LBUTTONUP, 0, pair(7, 6)}));
    EXPECT_EQ(parent.count(WM_LBUTTONDOWN), 0);
    POINT place{};
    GetCursorPos(&place);
    EXPECT_EQ(place.x, 22);
    EXPECT_EQ(place.y, 32);
}

TEST_F(Input, TheCaptureTakesAllOfThePenAlsoOutside)
{
    ScreenWindow one(red, WS_POPUP | WS_VISIBLE, 10, 20, 50, 50);
    ScreenWindow other(blue, WS_POPUP | WS_VISIBLE, 100, 20, 50, 50);
    SetCapture(one.window);
    EXPECT_EQ(GetCapture(), one.window);
    zb::penDown(110, 30);
    zb::penMove(0, 0);
    settle();
    EXPECT_EQ(one.last(WM_LBUTTONDOWN).lParam, pair(100, 10));
    EXPECT_EQ(one.last(WM_MOUSEMOVE).lParam, pair(-10, -20));
    EXPECT_EQ(other.count(WM_LBUTTONDOWN), 0);
    SetCapture(other.window);
    EXPECT_EQ(one.last(WM_CAPTURECHANGED).lParam, reinterpret_cast<LPARAM>(other.window));
    ReleaseCapture();
    EXPECT_EQ(other.last(WM_CAPTURECHANGED).lParam, 0);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Input, TwoTapsMakeADoubleOneAndAThirdBeginsAnew)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    for (int tap = 0; tap < 3; ++tap)
    {
        zb::penDown(30, 30);
        zb::penUp(30, 30);
    }
    settle();
    EXPECT_EQ(window.count(WM_LBUTTONDOWN), 2);
    EXPECT_EQ(window.count(WM_LBUTTONDBLCLK), 1);
    window.clear();
    zb::penDown(80, 80);
    zb::penUp(80, 80);
    zb::penDown(10, 10);
    settle();
    EXPECT_EQ(window.count(WM_LBUTTONDOWN), 2) << "too far from each other";
    EXPECT_EQ(window.count(WM_LBUTTONDBLCLK), 0);
}

TEST_F(Input, ATouchedWindowOfTheScreenBecomesActiveAndComesToTheTop)
{
    ScreenWindow one(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    ScreenWindow other(blue, WS_POPUP | WS_VISIBLE, 30, 30, 50, 50);
    EXPECT_EQ(GetForegroundWindow(), other.window);
    one.clear();
    other.clear();
    zb::penDown(5, 5);
    settle();
    EXPECT_EQ(GetForegroundWindow(), one.window);
    EXPECT_EQ(GetActiveWindow(), one.window);
    EXPECT_EQ(GetWindow(other.window, GW_HWNDFIRST), one.window);
    EXPECT_EQ(other.last(WM_ACTIVATE).wParam, 0U);
    EXPECT_EQ(one.last(WM_ACTIVATE).wParam, 1U);
    EXPECT_EQ(one.last(WM_ACTIVATE).lParam, reinterpret_cast<LPARAM>(other.window));
    EXPECT_EQ(GetFocus(), one.window);
}

TEST_F(Input, ShyAndDisabledWindowsStayInactive)
{
    ScreenWindow one(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    ScreenWindow shy(blue, WS_POPUP | WS_VISIBLE, 60, 0, 50, 50, nullptr, 0, WS_EX_NOACTIVATE);
    ScreenWindow disabled(blue, WS_POPUP | WS_VISIBLE | WS_DISABLED, 120, 0, 50, 50);
    EXPECT_EQ(GetForegroundWindow(), one.window);
    zb::penDown(65, 5);
    zb::penUp(65, 5);
    zb::penDown(125, 5);
    settle();
    EXPECT_EQ(GetForegroundWindow(), one.window);
    EXPECT_EQ(shy.count(WM_LBUTTONDOWN), 1);
    EXPECT_EQ(disabled.count(WM_LBUTTONDOWN), 0);
    EXPECT_FALSE(SetForegroundWindow(disabled.window));
}

TEST_F(Input, AChildOfADisabledWindowTakesNoPen)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE | WS_DISABLED, 0, 0, 50, 50);
    ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
    zb::penDown(10, 10);
    settle();
    EXPECT_EQ(child.count(WM_LBUTTONDOWN), 0);
}

TEST_F(Input, TheFocusIsToldOfBothSides)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow one(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
    ScreenWindow other(blue, WS_CHILD | WS_VISIBLE, 30, 5, 20, 20, parent.window);
    SetFocus(one.window);
    EXPECT_EQ(GetFocus(), one.window);
    EXPECT_EQ(SetFocus(other.window), one.window);
    EXPECT_EQ(one.last(WM_KILLFOCUS).wParam, reinterpret_cast<WPARAM>(other.window));
    EXPECT_EQ(other.last(WM_SETFOCUS).wParam, reinterpret_cast<WPARAM>(one.window));
    const int count = other.count(WM_SETFOCUS);
    SetFocus(other.window);
    EXPECT_EQ(other.count(WM_SETFOCUS), count) << "it had it";
    EnableWindow(one.window, FALSE);
    EXPECT_EQ(SetFocus(one.window), nullptr);
    EXPECT_EQ(GetFocus(), other.window);
    SetFocus(nullptr);
    EXPECT_EQ(GetFocus(), nullptr);
}

TEST_F(Input, AWindowThatBecomesActiveAgainGivesTheFocusBack)
{
    ScreenWindow one(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, one.window);
    SetFocus(child.window);
    {
        ScreenWindow dialog(blue, WS_POPUP | WS_VISIBLE, 60, 0, 50, 50, one.window);
        EXPECT_EQ(GetFocus(), dialog.window);
    }
    EXPECT_EQ(GetForegroundWindow(), one.window);
    EXPECT_EQ(GetFocus(), child.window);
}

TEST_F(Input, HidingDisablingAndEndingGiveUpFocusAndCapture)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    {
        ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
        SetFocus(child.window);
        SetCapture(child.window);
    }
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(GetCapture(), nullptr);
    ScreenWindow other(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
    SetFocus(other.window);
    ShowWindow(other.window, SW_HIDE);
    EXPECT_EQ(GetFocus(), nullptr);
    ShowWindow(other.window, SW_SHOW);
    SetFocus(other.window);
    EnableWindow(other.window, FALSE);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(other.count(WM_KILLFOCUS), 2);
}

TEST_F(Input, KeysAreHeldAsOfTheMessagesThatWereTaken)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    SetFocus(window.window);
    settle();
    zb::keyDown(VK_CONTROL);
    zb::keyDown('Q');
    zb::keyUp('Q');
    zb::keyUp(VK_CONTROL);
    const auto held = [](int key) { return (GetKeyState(key) & 0x8000) != 0; };
    EXPECT_FALSE(held(VK_CONTROL)) << "nothing was taken yet";
    const std::vector<std::pair<bool, bool>> expected = {{true, false}, {true, true}, {true, false}, {false, false}};
    MSG message{};
    for (const auto &[control, letter] : expected)
    {
        ASSERT_TRUE(PeekMessageW(&message, window.window, WM_KEYDOWN, WM_KEYUP, PM_REMOVE));
        EXPECT_EQ(held(VK_CONTROL), control);
        EXPECT_EQ(held('Q'), letter);
    }
    zb::keyDown(VK_SHIFT);
    zb::penDown(5, 5);
    zb::keyUp(VK_SHIFT);
    ASSERT_TRUE(PeekMessageW(&message, window.window, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE));
    ASSERT_TRUE(PeekMessageW(&message, window.window, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE));
    EXPECT_TRUE(held(VK_SHIFT)) << "the tap came before the key was let go";
    zb::penUp(5, 5);
    settle();
    EXPECT_FALSE(held(VK_SHIFT));
    ShowWindow(window.window, SW_HIDE);
    zb::keyDown(VK_SHIFT);
    EXPECT_TRUE(held(VK_SHIFT)) << "of what nobody hears";
    zb::keyUp(VK_SHIFT);
    EXPECT_FALSE(held(VK_SHIFT));
}

TEST_F(Input, KeysGoToTheFocusOrTheActiveWindow)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
    SetFocus(child.window);
    zb::keyDown(VK_DOWN);
    zb::keyDown(VK_DOWN);
    zb::keyUp(VK_DOWN);
    zb::typeCharacter(u'ä');
    settle();
    ASSERT_EQ(child.count(WM_KEYDOWN), 2);
    EXPECT_EQ(child.last(WM_KEYDOWN).wParam, static_cast<WPARAM>(VK_DOWN));
    EXPECT_EQ(child.last(WM_KEYDOWN).lParam, 1 | 1 << 30) << "held down";
    EXPECT_EQ(child.last(WM_KEYUP).wParam, static_cast<WPARAM>(VK_DOWN));
    EXPECT_EQ(child.last(WM_CHAR).wParam, static_cast<WPARAM>(u'ä'));
    SetFocus(nullptr);
    zb::keyDown(VK_UP);
    zb::keyUp(VK_UP);
    settle();
    EXPECT_EQ(parent.last(WM_KEYDOWN).wParam, static_cast<WPARAM>(VK_UP));
}

TEST_F(Input, ShiftAndControlGoWithThePen)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    zb::keyDown(VK_SHIFT);
    zb::keyDown(VK_CONTROL);
    zb::penDown(5, 5);
    zb::keyUp(VK_SHIFT);
    zb::keyUp(VK_CONTROL);
    zb::penUp(5, 5);
    settle();
    EXPECT_EQ(window.last(WM_LBUTTONDOWN).wParam, MK_LBUTTON | MK_SHIFT | MK_CONTROL);
    EXPECT_EQ(window.last(WM_LBUTTONUP).wParam, 0U);
}

TEST_F(Input, TheWheelTurnsWhatScrollsAboveAChild)
{
    ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow child(blue, WS_CHILD | WS_VISIBLE, 5, 5, 20, 20, parent.window);
    zb::penMove(10, 10);
    zb::turnWheel(-2);
    settle();
    EXPECT_EQ(child.count(WM_MOUSEWHEEL), 1);
    EXPECT_EQ(static_cast<SHORT>(HIWORD(parent.last(WM_MOUSEWHEEL).wParam)), -240);
}

TEST_F(Input, OtherThreadsSeeTheirOwnFocusOnly)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    SetFocus(window.window);
    HWND focus = window.window;
    HWND foreground = nullptr;
    zb::test::PlatformThread thread(
        [&]
        {
            focus = GetFocus();
            foreground = GetForegroundWindow();
        });
    ASSERT_TRUE(thread.ended());
    EXPECT_EQ(focus, nullptr);
    EXPECT_EQ(foreground, window.window);
}

TEST_F(Input, TheCloseButtonAsksTheWindow)
{
    ScreenWindow window(red, WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 0, 0, 100, 100);
    bool asked = false;
    window.before = [&asked](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        asked = asked || message == WM_CLOSE;
        return message == WM_CLOSE;
    };
    zb::penDown(95, 5);
    zb::penUp(95, 5);
    settle();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(IsWindow(window.window));
}

TEST_F(Input, TheTitleMovesTheWindow)
{
    ScreenWindow window(red, WS_POPUP | WS_CAPTION | WS_VISIBLE, 10, 10, 100, 100);
    zb::penDown(30, 15);
    zb::penMove(60, 45);
    zb::penUp(61, 46);
    settle();
    RECT place{};
    GetWindowRect(window.window, &place);
    EXPECT_EQ(place.left, 41);
    EXPECT_EQ(place.top, 41);
    EXPECT_EQ(GetCapture(), nullptr);
}
