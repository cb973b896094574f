// Painting of windows: when they are asked to, on what, and that the screen always shows the topmost one.
#include "support/Picture.h"
#include "support/PlatformThread.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include "platform/image.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace
{
using zb::test::is;
using zb::test::screenPixel;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::TestDevice;

constexpr COLORREF red = RGB(200, 0, 0);
constexpr COLORREF green = RGB(0, 150, 0);
constexpr COLORREF blue = RGB(0, 0, 200);

class WindowPaint : public ::testing::Test
{
  protected:
    TestDevice device{zb::test::withScreen(160, 120)};
};
} // namespace

TEST_F(WindowPaint, AShownWindowPaintsItselfOnceAsAWhole)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 10, 10, 50, 40);
    EXPECT_EQ(window.count(WM_PAINT), 0) << "when nothing else waits";
    settle();
    ASSERT_EQ(window.painted.size(), 1U);
    EXPECT_TRUE(is(window.painted[0], 0, 0, 50, 40));
    EXPECT_EQ(screenPixel(10, 10), red);
    EXPECT_EQ(screenPixel(59, 49), red);
    EXPECT_NE(screenPixel(60, 50), red);
    settle();
    EXPECT_EQ(window.painted.size(), 1U);
}

TEST_F(WindowPaint, AHiddenWindowIsNotAskedAndPaintsAllWhenShown)
{
    ScreenWindow window(red, WS_POPUP, 10, 10, 50, 40);
    InvalidateRect(window.window, nullptr, TRUE);
    settle();
    EXPECT_EQ(window.count(WM_PAINT), 0);
    ShowWindow(window.window, SW_SHOW);
    settle();
    EXPECT_EQ(window.painted.size(), 1U);
}

TEST_F(WindowPaint, WhatIsInvalidAddsUpAndBoundsTheContext)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    settle();
    window.clear();
    const RECT one{10, 10, 20, 20};
    const RECT other{30, 40, 200, 50};
    InvalidateRect(window.window, &one, FALSE);
    InvalidateRect(window.window, &other, FALSE);
    RECT due{};
    EXPECT_TRUE(GetUpdateRect(window.window, &due, FALSE));
    EXPECT_TRUE(is(due, 10, 10, 100, 50));
    window.before = [&](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message != WM_PAINT)
        {
            return false;
        }
        PAINTSTRUCT paint{};
        const HDC context = BeginPaint(window.window, &paint);
        window.painted.push_back(paint.rcPaint);
        const RECT all{0, 0, 100, 100};
        const HBRUSH brush = CreateSolidBrush(blue);
        FillRect(context, &all, brush);
        DeleteObject(brush);
        EndPaint(window.window, &paint);
        return true;
    };
    settle();
    ASSERT_EQ(window.painted.size(), 1U);
    EXPECT_TRUE(is(window.painted[0], 10, 10, 100, 50));
    EXPECT_EQ(screenPixel(15, 15), blue);
    EXPECT_EQ(screenPixel(99, 49), blue);
    EXPECT_EQ(screenPixel(25, 25), red) << "between the two parts";
    EXPECT_FALSE(GetUpdateRect(window.window, &due, FALSE));
    EXPECT_TRUE(is(due, 0, 0, 0, 0));
}

TEST_F(WindowPaint, ValidatedPartsAreNotPainted)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    settle();
    window.clear();
    InvalidateRect(window.window, nullptr, TRUE);
    const RECT most{0, 0, 100, 90};
    ValidateRect(window.window, &most);
    settle();
    ASSERT_EQ(window.painted.size(), 1U);
    EXPECT_TRUE(is(window.painted[0], 0, 90, 100, 100));
    window.clear();
    InvalidateRect(window.window, nullptr, TRUE);
    ValidateRect(window.window, nullptr);
    settle();
    EXPECT_EQ(window.count(WM_PAINT), 0);
}

TEST_F(WindowPaint, UpdateWindowPaintsAtOnceAndOnlyWhenDue)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    EXPECT_TRUE(UpdateWindow(window.window));
    EXPECT_EQ(window.painted.size(), 1U);
    UpdateWindow(window.window);
    EXPECT_EQ(window.painted.size(), 1U);
}

TEST_F(WindowPaint, PaintComesAfterPostedMessagesAndBeforeTimers)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    settle();
    window.clear();
    SetTimer(window.window, 1, 1, nullptr);
    Sleep(5);
    InvalidateRect(window.window, nullptr, FALSE);
    PostMessageW(window.window, WM_USER, 0, 0);
    std::vector<UINT> order;
    MSG message{};
    while (order.size() < 3 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        order.push_back(message.message);
        DispatchMessageW(&message);
    }
    EXPECT_EQ(order, (std::vector<UINT>{WM_USER, WM_PAINT, WM_TIMER}));
    KillTimer(window.window, 1);
}

TEST_F(WindowPaint, TheBackgroundIsErasedWhenAskedAndByTheClassesBrush)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    settle();
    window.clear();
    InvalidateRect(window.window, nullptr, FALSE);
    settle();
    EXPECT_EQ(window.count(WM_ERASEBKGND), 0);
    InvalidateRect(window.window, nullptr, TRUE);
    settle();
    EXPECT_EQ(window.count(WM_ERASEBKGND), 1);

    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.lpszClassName = u"WithBrush";
    type.hbrBackground = reinterpret_cast<void *>(static_cast<LONG_PTR>(COLOR_HIGHLIGHT + 1));
    RegisterClassW(&type);
    const HWND plain = CreateWindowExW(0, u"WithBrush", u"", WS_POPUP | WS_VISIBLE, 10, 10, 30, 30, nullptr, nullptr,
                                       nullptr, nullptr);
    settle();
    EXPECT_EQ(screenPixel(15, 15), GetSysColor(COLOR_HIGHLIGHT));
    DestroyWindow(plain);
    UnregisterClassW(u"WithBrush", nullptr);
}

TEST_F(WindowPaint, AWindowNeverDrawsOverWhatLiesAboveIt)
{
    ScreenWindow below(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow child(green, WS_CHILD | WS_VISIBLE, 10, 10, 20, 20, below.window);
    ScreenWindow above(blue, WS_POPUP | WS_VISIBLE, 50, 50, 30, 30);
    settle();
    const HDC context = GetDC(below.window);
    const RECT all{0, 0, 100, 100};
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    FillRect(context, &all, brush);
    DeleteObject(brush);
    RECT box{};
    EXPECT_EQ(GetClipBox(context, &box), COMPLEXREGION);
    ReleaseDC(below.window, context);
    EXPECT_EQ(screenPixel(5, 5), RGB(1, 2, 3));
    EXPECT_EQ(screenPixel(15, 15), green);
    EXPECT_EQ(screenPixel(60, 60), blue);
}

TEST_F(WindowPaint, OnlyWhatIsUncoveredIsPainted)
{
    ScreenWindow below(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow above(blue, WS_POPUP | WS_VISIBLE, 50, 50, 30, 30);
    settle();
    below.clear();
    above.clear();
    MoveWindow(above.window, 60, 50, 30, 30, TRUE);
    settle();
    ASSERT_EQ(below.painted.size(), 1U);
    EXPECT_TRUE(is(below.painted[0], 50, 50, 60, 80));
    below.clear();
    ShowWindow(above.window, SW_HIDE);
    settle();
    ASSERT_EQ(below.painted.size(), 1U);
    EXPECT_TRUE(is(below.painted[0], 60, 50, 90, 80));
    EXPECT_EQ(screenPixel(70, 60), red);
}

TEST_F(WindowPaint, TheBareScreenHasItsColour)
{
    {
        ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
        settle();
        EXPECT_EQ(screenPixel(5, 5), red);
    }
    EXPECT_EQ(screenPixel(5, 5), GetSysColor(COLOR_BACKGROUND));
}

TEST_F(WindowPaint, AWindowWithoutRedrawingDrawsNothing)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    settle();
    SendMessageW(window.window, WM_SETREDRAW, FALSE, 0);
    const HDC context = GetDC(window.window);
    RECT box{};
    EXPECT_EQ(GetClipBox(context, &box), NULLREGION);
    ReleaseDC(window.window, context);
    SendMessageW(window.window, WM_SETREDRAW, TRUE, 0);
    const HDC again = GetDC(window.window);
    EXPECT_EQ(GetClipBox(again, &box), SIMPLEREGION);
    EXPECT_TRUE(is(box, 0, 0, 50, 50));
    ReleaseDC(window.window, again);
}

TEST_F(WindowPaint, AnotherThreadMayNotBeginAPaint)
{
    ScreenWindow window(red, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    HDC context = nullptr;
    DWORD error = 0;
    zb::test::PlatformThread thread(
        [&]
        {
            PAINTSTRUCT paint{};
            context = BeginPaint(window.window, &paint);
            error = GetLastError();
        });
    EXPECT_EQ(WaitForSingleObject(thread.handle(), INFINITE), 0U);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(error, 5U);
}

namespace
{
/// A window of the model below: what a screen of such windows must show can be worked out pixel by pixel.
struct Modelled
{
    std::unique_ptr<ScreenWindow> window;
    COLORREF color = 0;
};

COLORREF expectedAt(HWND window, int x, int y, const std::vector<Modelled> &all)
{
    // From the top down: the first shown child that holds the point, else the window itself.
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    {
        RECT box{};
        GetWindowRect(child, &box);
        RECT outer{};
        GetWindowRect(window, &outer);
        const bool shown = (GetWindowLongW(child, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE)) != 0;
        if (shown && PtInRect(&box, {x, y}) != FALSE && PtInRect(&outer, {x, y}) != FALSE)
        {
            return expectedAt(child, x, y, all);
        }
    }
    for (const Modelled &one : all)
    {
        if (one.window != nullptr && one.window->window == window)
        {
            return one.color;
        }
    }
    return 0;
}

COLORREF expectedOnScreen(int x, int y, const std::vector<Modelled> &all)
{
    HWND any = nullptr;
    for (const Modelled &one : all)
    {
        if (one.window != nullptr && IsWindow(one.window->window) != FALSE && GetParent(one.window->window) == nullptr)
        {
            any = one.window->window;
        }
    }
    for (HWND top = any == nullptr ? nullptr : GetWindow(any, GW_HWNDFIRST); top != nullptr;
         top = GetWindow(top, GW_HWNDNEXT))
    {
        RECT box{};
        GetWindowRect(top, &box);
        if (IsWindowVisible(top) != FALSE && PtInRect(&box, {x, y}) != FALSE)
        {
            return expectedAt(top, x, y, all);
        }
    }
    return GetSysColor(COLOR_BACKGROUND);
}

void randomStep(std::vector<Modelled> &all, std::mt19937 &random)
{
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    Modelled &one = all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
    const bool alive = one.window != nullptr && IsWindow(one.window->window) != FALSE;
    if (!alive)
    {
        HWND parent = nullptr;
        const Modelled &other = all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
        if (below(3) != 0 && &other != &one && other.window != nullptr && IsWindow(other.window->window) != FALSE)
        {
            parent = other.window->window;
        }
        one.color = RGB(static_cast<BYTE>(random()), static_cast<BYTE>(random()), static_cast<BYTE>(random() | 1));
        one.window = std::make_unique<ScreenWindow>(one.color, (parent != nullptr ? WS_CHILD : WS_POPUP) |
                                                                   (below(4) != 0 ? WS_VISIBLE : 0U),
                                                    below(150) - 20, below(110) - 20, below(90), below(70), parent);
        return;
    }
    const HWND window = one.window->window;
    switch (below(7))
    {
    case 0:
        one.window.reset();
        break;
    case 1:
        ShowWindow(window, below(2) != 0 ? SW_SHOW : SW_HIDE);
        break;
    case 2:
        SetWindowPos(window, below(2) != 0 ? HWND_TOP : HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        break;
    case 3:
        settle();
        break;
    default:
        MoveWindow(window, below(150) - 20, below(110) - 20, below(90), below(70), TRUE);
        break;
    }
}
} // namespace

TEST_F(WindowPaint, TheScreenAlwaysShowsTheTopmostWindows)
{
    for (unsigned seed = 1; seed <= 40; ++seed)
    {
        std::mt19937 random(seed);
        std::vector<Modelled> all(9);
        InvalidateRect(nullptr, nullptr, TRUE);
        for (int step = 0; step < 60; ++step)
        {
            randomStep(all, random);
            if (step % 10 != 9)
            {
                continue;
            }
            settle();
            const HBITMAP shown = zb::captureScreen();
            const std::vector<std::uint32_t> pixels = zb::pixelsOf(shown);
            DeleteObject(shown);
            for (int y = 0; y < 120; y += 3)
            {
                for (int x = 0; x < 160; x += 3)
                {
                    const COLORREF color = expectedOnScreen(x, y, all);
                    const std::uint32_t expected = GetRValue(color) << 16U | GetGValue(color) << 8U | GetBValue(color);
                    ASSERT_EQ(pixels[static_cast<std::size_t>(y * 160 + x)], expected)
                        << "seed " << seed << ", step " << step << ", at " << x << ", " << y;
                }
            }
        }
    }
}
