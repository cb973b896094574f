// The bar at the bottom of a window: its place, pen and keys, what it sends.
#include "platform/menu.h"
#include "support/LoopScript.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

constexpr int barHeight = 26;

class MenuBar : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(const std::filesystem::path &folder)
    {
        zb::DeviceOptions options;
        options.screen = {240, 320, 96};
        options.fonts = testFonts(folder);
        return options;
    }
    MenuBar()
    {
        AppendMenuW(bar, 0, 31, u"New");
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), u"Menu");
        AppendMenuW(popup, 0, 41, u"One");
        AppendMenuW(popup, 0, 42, u"Two");
    }
    ~MenuBar() override
    {
        DestroyMenu(bar);
    }
    std::vector<WPARAM> commands()
    {
        settle();
        std::vector<WPARAM> all;
        for (const auto &one : owner.told)
        {
            if (one.message == WM_COMMAND)
            {
                EXPECT_EQ(one.lParam, 0);
                all.push_back(one.wParam);
            }
        }
        owner.clear();
        return all;
    }
    /// Runs what the pen or a key began together with these steps.
    void play(std::vector<LoopScript::Step> steps)
    {
        const LoopScript script(std::move(steps));
        MSG message{};
        while (!script.isDone() && GetMessageW(&message, nullptr, 0, 0) > 0)
        {
            DispatchMessageW(&message);
        }
        settle();
    }
    using Commands = std::vector<WPARAM>;

    TemporaryFolder faces;
    TestDevice device{options(faces.path())};
    ScreenWindow owner{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    HMENU bar = CreateMenu();
    HMENU popup = CreatePopupMenu();
};
} // namespace

TEST_F(MenuBar, TakesItsHeightOffTheClientAreaAndGivesItBack)
{
    EXPECT_EQ(owner.client().bottom, 320);
    owner.clear();
    EXPECT_TRUE(zb::setMenuBar(owner.window, bar));
    EXPECT_EQ(zb::menuBarOf(owner.window), bar);
    EXPECT_EQ(owner.client().bottom, 320 - barHeight);
    EXPECT_EQ(HIWORD(static_cast<DWORD_PTR>(owner.last(WM_SIZE).lParam)), 320 - barHeight);
    settle();
    EXPECT_EQ(screenPixel(5, 320 - barHeight - 1), RGB(255, 255, 255));
    EXPECT_EQ(screenPixel(5, 320 - barHeight), GetSysColor(COLOR_WINDOWFRAME));
    EXPECT_EQ(screenPixel(5, 320 - 3), GetSysColor(COLOR_BTNFACE));
    EXPECT_TRUE(zb::setMenuBar(owner.window, nullptr));
    EXPECT_EQ(owner.client().bottom, 320);
    settle();
    EXPECT_EQ(screenPixel(5, 320 - 3), RGB(255, 255, 255));
}

TEST_F(MenuBar, LiesBelowAScrollBar)
{
    const ScreenWindow window(RGB(255, 255, 255), WS_POPUP | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | WS_BORDER, 0, 0,
                              240, 320);
    zb::setMenuBar(window.window, bar);
    EXPECT_EQ(window.client().right, 240 - 2 - 13);
    EXPECT_EQ(window.client().bottom, 320 - 2 - 13 - barHeight);
}

TEST_F(MenuBar, IsForWindowsOfTheScreen)
{
    const ScreenWindow child(RGB(0, 0, 0), WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, owner.window);
    EXPECT_FALSE(zb::setMenuBar(child.window, bar));
    EXPECT_FALSE(zb::setMenuBar(nullptr, bar));
    EXPECT_FALSE(zb::setMenuBar(owner.window, reinterpret_cast<HMENU>(owner.window)));
    EXPECT_EQ(zb::menuBarOf(owner.window), nullptr);
}

TEST_F(MenuBar, ATapOnAnEntrySendsItsCommandWhenThePenIsLiftedThere)
{
    zb::setMenuBar(owner.window, bar);
    settle();
    play({down(60, 310), [this] { EXPECT_EQ(commands(), Commands{}); }, up(60, 310)});
    EXPECT_EQ(commands(), Commands{31});
    play({down(60, 310), move(60, 200), up(60, 200)});
    EXPECT_EQ(commands(), Commands{});
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(owner.count(WM_LBUTTONDOWN), 0);
}

TEST_F(MenuBar, APopUpOpensAboveItsHalf)
{
    zb::setMenuBar(owner.window, bar);
    settle();
    RECT place{};
    play({tap(180, 310), [&] { GetWindowRect(GetWindow(owner.window, GW_HWNDFIRST), &place); },
          [&] { tap(place.left + 10, place.bottom - 10)(); }, [] {}});
    EXPECT_EQ(place.bottom, 320 - barHeight);
    EXPECT_EQ(place.right, 240);
    EXPECT_EQ(commands(), Commands{42});
}

TEST_F(MenuBar, TheTwoKeysPressTheHalvesOfTheActiveWindow)
{
    zb::setMenuBar(owner.window, bar);
    settle();
    owner.clear();
    play({key(VK_F1), [] {}});
    EXPECT_EQ(commands(), Commands{31});
    play({key(VK_F2), key(VK_DOWN), key(VK_RETURN), [] {}});
    EXPECT_EQ(commands(), Commands{41});
    EXPECT_EQ(owner.count(WM_KEYDOWN), 0);
    zb::setMenuBar(owner.window, nullptr);
    play({key(VK_F1), [] {}});
    EXPECT_EQ(owner.last(WM_KEYDOWN).wParam, static_cast<WPARAM>(VK_F1)) << "an ordinary key without a bar";
}

TEST_F(MenuBar, ADisabledHalfAndAMissingOneDoNothing)
{
    EnableMenuItem(bar, 31, MF_GRAYED);
    DeleteMenu(bar, 1, MF_BYPOSITION);
    zb::setMenuBar(owner.window, bar);
    settle();
    owner.clear();
    play({tap(60, 310), tap(180, 310), key(VK_F1), key(VK_F2), [] {}});
    EXPECT_EQ(commands(), Commands{});
}

TEST_F(MenuBar, SurvivesItsMenu)
{
    const HMENU gone = CreateMenu();
    AppendMenuW(gone, 0, 1, u"Gone");
    zb::setMenuBar(owner.window, gone);
    DestroyMenu(gone);
    settle();
    owner.clear();
    play({tap(60, 310), key(VK_F1), [] {}});
    EXPECT_EQ(commands(), Commands{});
}
