// A screen that gets another size: its pixels, where windows go and what they are told.
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

namespace
{
using zb::test::is;
using zb::test::pair;
using zb::test::screenPixel;
using zb::test::ScreenWindow;
using zb::test::settle;

constexpr COLORREF red = RGB(0xFF, 0, 0);
constexpr COLORREF green = RGB(0, 0xFF, 0);

zb::DeviceOptions small()
{
    zb::DeviceOptions options;
    options.screen.width = 240;
    options.screen.height = 320;
    return options;
}

class ScreenSize : public ::testing::Test
{
  protected:
    /// Windows that earlier tests have left are told of sizes too.
    void TearDown() override
    {
        settle();
    }

    zb::test::TestDevice device{small()};
};
} // namespace

TEST_F(ScreenSize, MetricsContextsAndOrientationTellIt)
{
    EXPECT_EQ(zb::screenOrientation(), 0);
    ASSERT_TRUE(zb::setScreenSize(320, 240));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 320);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 240);
    EXPECT_EQ(zb::screenOrientation(), 1);
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, HORZRES), 320);
    EXPECT_EQ(GetDeviceCaps(screen, VERTRES), 240);
    ReleaseDC(nullptr, screen);
    const HBITMAP picture = zb::captureScreen();
    BITMAP size{};
    GetObjectW(picture, sizeof size, &size);
    EXPECT_EQ(size.bmWidth, 320);
    EXPECT_EQ(size.bmHeight, 240);
    DeleteObject(picture);
    EXPECT_EQ(screenPixel(319, 0), GetSysColor(COLOR_BACKGROUND)) << "the bare screen is painted";
    device.reopen();
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 240) << "it lasts as long as the device is open";
}

TEST_F(ScreenSize, SizesThatNoScreenHasAreRefused)
{
    for (const auto &[width, height] : {std::pair{0, 240}, {240, 0}, {-1, 240}, {32768, 240}, {240, 32768}})
    {
        SetLastError(0);
        EXPECT_FALSE(zb::setScreenSize(width, height));
        EXPECT_EQ(GetLastError(), 87U);
    }
    device.close();
    EXPECT_FALSE(zb::setScreenSize(240, 320));
    device.open();
}

TEST_F(ScreenSize, WindowsThatFillTheScreenGoOnFillingIt)
{
    ScreenWindow whole(red, WS_VISIBLE, -1, -1, 242, 322);
    ScreenWindow strip(green, WS_VISIBLE, 0, 300, 240, 20);
    settle();
    ASSERT_TRUE(zb::setScreenSize(400, 200));
    EXPECT_TRUE(is(whole.place(), -1, -1, 401, 201));
    EXPECT_TRUE(is(strip.place(), 0, 180, 400, 200)) << "at the lower edge it stays there";
    settle();
    EXPECT_EQ(screenPixel(399, 179), red);
    EXPECT_EQ(screenPixel(399, 180), green);
}

TEST_F(ScreenSize, OthersKeepTheirSizeAndTheirPlaceInProportion)
{
    struct Case
    {
        int x, y, width, height;
        int left, top; ///< at 320 by 200
    };
    for (const Case &one : {Case{70, 110, 100, 100, 110, 50}, // in the middle
                            Case{0, 0, 100, 100, 0, 0},
                            Case{140, 220, 100, 100, 220, 100},       // in the corner
                            Case{20, 40, 40, 280, 28, 0},             // higher than the new screen: its top shows
                            Case{200, 300, 100, 100, 220, 100},       // reached beyond: comes in
                            Case{-30, 10, 100, 100, -30, 5}})         // begins before the screen: goes on so
    {
        ScreenWindow window(red, WS_VISIBLE, one.x, one.y, one.width, one.height);
        ASSERT_TRUE(zb::setScreenSize(320, 200));
        EXPECT_TRUE(is(window.place(), one.left, one.top, one.left + one.width, one.top + one.height))
            << one.x << ", " << one.y;
        ASSERT_TRUE(zb::setScreenSize(240, 320));
    }
}

TEST_F(ScreenSize, WindowsAreToldOfTheirSizeAndThenOfTheSetting)
{
    ScreenWindow whole(red, WS_VISIBLE, 0, 0, 240, 320);
    ScreenWindow child(green, WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, whole.window);
    ScreenWindow hidden(green, 0, 0, 0, 240, 320);
    settle();
    whole.clear();
    child.clear();
    hidden.clear();
    ASSERT_TRUE(zb::setScreenSize(320, 240));
    EXPECT_EQ(whole.last(WM_SIZE).lParam, pair(320, 240));
    EXPECT_EQ(whole.count(WM_SETTINGCHANGE), 0) << "behind the sizes of all";
    settle();
    EXPECT_EQ(whole.count(WM_SIZE), 1);
    EXPECT_EQ(whole.count(WM_SETTINGCHANGE), 1);
    EXPECT_EQ(hidden.count(WM_SIZE), 1);
    EXPECT_EQ(hidden.count(WM_SETTINGCHANGE), 1);
    EXPECT_EQ(child.count(WM_SETTINGCHANGE), 0);
    EXPECT_GE(whole.painted.size(), 1U);
    EXPECT_GE(child.painted.size(), 1U);
    whole.clear();
    ASSERT_TRUE(zb::setScreenSize(320, 240));
    settle();
    EXPECT_EQ(whole.count(WM_SIZE) + whole.count(WM_SETTINGCHANGE), 0) << "nothing has changed";
}

TEST_F(ScreenSize, TheCaptureEnds)
{
    ScreenWindow whole(red, WS_VISIBLE, 0, 0, 240, 320);
    SetCapture(whole.window);
    ASSERT_TRUE(zb::setScreenSize(320, 240));
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(whole.count(WM_CAPTURECHANGED), 1);
}

TEST_F(ScreenSize, TimeThatIsSkippedMakesTimersDueAndTicksHigher)
{
    ScreenWindow window(red, WS_VISIBLE, 0, 0, 20, 20);
    SetTimer(window.window, 7, 3'600'000, nullptr);
    settle();
    EXPECT_EQ(window.count(WM_TIMER), 0);
    const DWORD before = GetTickCount();
    zb::skipTime(3'600'001);
    settle();
    EXPECT_EQ(window.last(WM_TIMER).wParam, 7U);
    EXPECT_EQ(window.count(WM_TIMER), 1) << "counted anew from there";
    EXPECT_GE(GetTickCount() - before, 3'600'001U);
    EXPECT_LT(GetTickCount() - before, 3'900'000U);
}
