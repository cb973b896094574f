// Menus on the screen: pen, keys, what the owner is told, where they stand.
#include "platform/menu.h"
#include "support/LoopScript.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;
using Steps = std::vector<LoopScript::Step>;

constexpr COLORREF white = RGB(255, 255, 255);
constexpr int row = 26;

/// At 96 dots an inch: a frame of 1 and 2 pixels above the first entry, entries of 26 and lines of 7.
class MenuTracking : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(const std::filesystem::path &folder)
    {
        zb::DeviceOptions options;
        options.screen = {240, 320, 96};
        options.fonts = testFonts(folder);
        return options;
    }
    MenuTracking()
    {
        AppendMenuW(menu, MF_STRING, 11, u"&Open");
        AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        AppendMenuW(menu, MF_GRAYED, 12, u"&Paste");
        AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(more), u"&More");
        AppendMenuW(menu, MF_STRING, 13, u"Close");
        AppendMenuW(more, MF_STRING, 21, u"First");
        AppendMenuW(more, MF_STRING, 22, u"Second");
    }
    ~MenuTracking() override
    {
        DestroyMenu(menu);
    }
    int run(Steps steps, UINT flags = TPM_RETURNCMD, int x = 0, int y = 0, const TPMPARAMS *parameters = nullptr)
    {
        settle();
        owner.clear();
        const LoopScript script(std::move(steps));
        const int result = TrackPopupMenuEx(menu, flags, x, y, owner.window, parameters);
        EXPECT_TRUE(script.isDone());
        settle();
        EXPECT_EQ(GetCapture(), nullptr);
        return result;
    }
    /// The topmost window of the screen: the menu that opened last.
    static RECT topPlace()
    {
        RECT place{};
        POINT here{};
        GetCursorPos(&here);
        GetWindowRect(GetWindow(GetForegroundWindow(), GW_HWNDFIRST), &place);
        return place;
    }
    static constexpr int openMiddle = 3 + row / 2;
    static constexpr int pasteMiddle = 3 + row + 7 + row / 2;
    static constexpr int moreMiddle = pasteMiddle + row;
    static constexpr int closeMiddle = moreMiddle + row;
    static constexpr int height = 3 + row + 7 + 3 * row + 3;

    TemporaryFolder faces;
    TestDevice device{options(faces.path())};
    ScreenWindow owner{white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    HMENU menu = CreatePopupMenu();
    HMENU more = CreatePopupMenu();
};
} // namespace

TEST_F(MenuTracking, ATapGivesTheId)
{
    EXPECT_EQ(run({tap(10, openMiddle)}), 11);
    EXPECT_EQ(run({tap(10, closeMiddle)}), 13);
    EXPECT_EQ(owner.count(WM_COMMAND), 0) << "the caller has it already";
    EXPECT_EQ(owner.count(WM_LBUTTONDOWN), 0);
}

TEST_F(MenuTracking, WithoutTheFlagTheOwnerGetsTheCommand)
{
    EXPECT_EQ(run({tap(10, openMiddle)}, 0), 1);
    EXPECT_EQ(owner.count(WM_COMMAND), 1);
    EXPECT_EQ(owner.last(WM_COMMAND).wParam, 11U);
    EXPECT_EQ(owner.last(WM_COMMAND).lParam, 0);
    EXPECT_EQ(run({key(VK_ESCAPE)}, 0), 1) << "it was shown";
    EXPECT_EQ(owner.count(WM_COMMAND), 0);
}

TEST_F(MenuTracking, ATapBesideItLeavesAndDoesNothingElse)
{
    EXPECT_EQ(run({tap(200, 300)}), 0);
    EXPECT_EQ(owner.count(WM_LBUTTONDOWN), 0);
    EXPECT_EQ(GetFocus(), owner.window);
}

TEST_F(MenuTracking, DisabledEntriesAndLinesKeepItOpen)
{
    EXPECT_EQ(run({tap(10, pasteMiddle), tap(10, 3 + row + 3), tap(10, openMiddle)}), 11);
}

TEST_F(MenuTracking, TheTapThatOpenedItChoosesNothing)
{
    zb::penDown(10, openMiddle);
    settle();
    EXPECT_EQ(run({up(10, openMiddle), tap(10, closeMiddle)}), 13);
}

TEST_F(MenuTracking, ThePenMayBeDrawnToAnEntryAndLifted)
{
    zb::penDown(10, openMiddle);
    settle();
    EXPECT_EQ(run({move(10, closeMiddle), up(10, closeMiddle)}), 13);
}

TEST_F(MenuTracking, APenLiftedBesideItLeavesItOpen)
{
    EXPECT_EQ(run({down(10, openMiddle), move(200, 300), up(200, 300), key(VK_ESCAPE)}), 0);
}

TEST_F(MenuTracking, ArrowsGoAroundPastLines)
{
    EXPECT_EQ(run({key(VK_DOWN), key(VK_RETURN)}), 11);
    EXPECT_EQ(run({key(VK_UP), key(VK_RETURN)}), 13);
    EXPECT_EQ(run({key(VK_DOWN), key(VK_UP), key(VK_RETURN)}), 13);
    EXPECT_EQ(run({key(VK_END), key(VK_DOWN), key(VK_RETURN)}), 11);
    EXPECT_EQ(run({key(VK_UP), key(VK_HOME), key(VK_SPACE)}), 11);
    EXPECT_EQ(run({key(VK_DOWN), key(VK_DOWN), key(VK_RETURN), key(VK_DOWN), key(VK_DOWN), key(VK_RETURN)}), 13)
        << "the second is disabled, and Enter does nothing there";
    EXPECT_EQ(owner.count(WM_KEYDOWN), 0);
}

TEST_F(MenuTracking, EnterWithNothingSelectedDoesNothing)
{
    EXPECT_EQ(run({key(VK_RETURN), key(VK_ESCAPE)}), 0);
}

TEST_F(MenuTracking, SubMenusOpenByKeyWithTheirFirstEntrySelected)
{
    const Steps toMore = {key(VK_DOWN), key(VK_DOWN), key(VK_DOWN)};
    const auto then = [&](Steps more)
    {
        Steps all = toMore;
        all.insert(all.end(), more.begin(), more.end());
        return run(all);
    };
    EXPECT_EQ(then({key(VK_RIGHT), key(VK_RETURN)}), 21);
    EXPECT_EQ(then({key(VK_RETURN), key(VK_DOWN), key(VK_RETURN)}), 22);
    EXPECT_EQ(then({key(VK_RIGHT), key(VK_LEFT), key(VK_DOWN), key(VK_RETURN)}), 13);
    EXPECT_EQ(then({key(VK_RIGHT), key(VK_ESCAPE), key(VK_ESCAPE)}), 0) << "a level at a time";
    EXPECT_EQ(then({key(VK_RIGHT), key(VK_MENU)}), 0) << "all at once";
}

TEST_F(MenuTracking, SubMenusOpenByATap)
{
    RECT place{};
    EXPECT_EQ(run({tap(10, moreMiddle), [&] { place = topPlace(); },
                   [&] { tap(place.left + 10, place.top + 3 + row + row / 2)(); }}),
              22);
    EXPECT_EQ(place.top, moreMiddle - row / 2);
    EXPECT_GT(place.left, 20);
    EXPECT_EQ(run({tap(10, moreMiddle), tap(10, openMiddle)}), 11) << "another entry of the outer menu";
}

TEST_F(MenuTracking, LettersChooseByMnemonicThenByFirstLetter)
{
    EXPECT_EQ(run({letter(u'o')}), 11);
    EXPECT_EQ(run({letter(u'C')}), 13);
    EXPECT_EQ(run({letter(u'm'), letter(u's')}), 22);
    EXPECT_EQ(run({letter(u'p'), letter(u'x'), key(VK_ESCAPE)}), 0) << "disabled; none";
    AppendMenuW(menu, 0, 14, u"&Other");
    EXPECT_EQ(run({letter(u'o'), letter(u'o'), key(VK_RETURN)}), 14) << "with several, from one to the next";
}

TEST_F(MenuTracking, TheOwnerHearsOfEachMenuBeforeItAppears)
{
    owner.before = [&](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_INITMENUPOPUP && reinterpret_cast<HMENU>(wParam) == more)
        {
            AppendMenuW(more, 0, 23, u"Third");
        }
        return false;
    };
    EXPECT_EQ(run({letter(u'm'), key(VK_END), key(VK_RETURN)}), 23);
    std::vector<std::pair<UINT, LPARAM>> told;
    for (const auto &one : owner.told)
    {
        if (one.message == WM_INITMENUPOPUP || one.message == WM_ENTERMENULOOP || one.message == WM_EXITMENULOOP)
        {
            told.emplace_back(one.message, one.lParam);
        }
    }
    EXPECT_EQ(told, (std::vector<std::pair<UINT, LPARAM>>{
                        {WM_ENTERMENULOOP, 0}, {WM_INITMENUPOPUP, 0}, {WM_INITMENUPOPUP, 3}, {WM_EXITMENULOOP, 0}}));
    run({key(VK_ESCAPE)}, TPM_RETURNCMD | TPM_NONOTIFY);
    EXPECT_EQ(owner.count(WM_INITMENUPOPUP), 0);
    EXPECT_EQ(owner.count(WM_ENTERMENULOOP), 0);
}

TEST_F(MenuTracking, AlignmentCountsFromThePointAndEndsAtTheScreen)
{
    RECT place{};
    const auto placeAt = [&](UINT flags, int x, int y, const TPMPARAMS *parameters = nullptr)
    {
        run({[&] { place = topPlace(); }, key(VK_ESCAPE)}, flags | TPM_RETURNCMD, x, y, parameters);
        return std::pair<int, int>{place.left, place.top};
    };
    const auto at = [](int x, int y) { return std::pair<int, int>{x, y}; };
    EXPECT_EQ(placeAt(0, 30, 40), at(30, 40));
    const int width = place.right - place.left;
    EXPECT_EQ(place.bottom - place.top, height);
    EXPECT_EQ(placeAt(276, 120, 160), at(120 - width / 2, 160 - height / 2));
    EXPECT_EQ(placeAt(TPM_RIGHTALIGN | TPM_BOTTOMALIGN, 200, 300), at(200 - width, 300 - height));
    EXPECT_EQ(placeAt(0, 500, 500), at(240 - width, 320 - height));
    EXPECT_EQ(placeAt(276, -50, -50), at(0, 0));
    const TPMPARAMS away{sizeof(TPMPARAMS), {30, 40, 90, 60}};
    EXPECT_EQ(placeAt(TPM_VERTICAL, 30, 40, &away), at(30, 60));
    EXPECT_EQ(placeAt(0, 30, 40, &away), at(90, 40));
}

TEST_F(MenuTracking, AHighMenuScrollsByPenAndKeys)
{
    while (GetMenuItemCount(menu) < 40)
    {
        AppendMenuW(menu, 0, static_cast<UINT>(100 + GetMenuItemCount(menu)), u"Entry");
    }
    RECT place{};
    EXPECT_EQ(run({[&] { place = topPlace(); }, key(VK_END), key(VK_RETURN)}), 139);
    EXPECT_EQ(place.top, 0);
    EXPECT_EQ(place.bottom, 320);
    // The strip of 16 pixels at the bottom scrolls 26 pixels a tap. "Close" begins at 88 in the menu, so after two taps
    // at 88 + 16 - 52; before them "Paste" lies there.
    EXPECT_EQ(run({tap(10, 310), tap(10, 310), tap(10, 60)}), 13);
    EXPECT_EQ(run({tap(10, 60), key(VK_ESCAPE)}), 0);
    EXPECT_EQ(run({tap(10, 310), tap(10, 310), tap(10, 10), tap(10, 10), tap(10, 10), tap(10, 16 + openMiddle)}), 11);
    EXPECT_EQ(run({move(10, 60), [] { zb::turnWheel(-1); }, [] { zb::turnWheel(-1); }, tap(10, 60)}), 13);
}

TEST_F(MenuTracking, ColumnsLieBesideEachOtherUnlessTheScreenIsTooNarrow)
{
    HMENU columns = CreatePopupMenu();
    for (UINT i = 0; i < 4; ++i)
    {
        AppendMenuW(columns, i == 2 ? MF_MENUBREAK : 0, i + 1, u"A");
    }
    std::swap(menu, columns);
    RECT place{};
    const Steps look = {[&] { place = topPlace(); }, key(VK_ESCAPE)};
    run(look);
    EXPECT_EQ(place.bottom - place.top, 3 + 2 * row + 3);
    const int two = place.right - place.left;
    EXPECT_EQ(run({tap(two - 10, openMiddle)}), 3);
    EXPECT_EQ(run({key(VK_DOWN), key(VK_RIGHT), key(VK_RETURN)}), 3);
    EXPECT_EQ(run({key(VK_END), key(VK_LEFT), key(VK_RETURN)}), 2);
    for (UINT i = 5; i < 12; ++i)
    {
        AppendMenuW(menu, MF_MENUBREAK, i, u"A");
    }
    run(look);
    EXPECT_EQ(place.bottom - place.top, 3 + 11 * row + 3) << "one column, all of it in reach";
    std::swap(menu, columns);
    DestroyMenu(columns);
}

TEST_F(MenuTracking, WhatIsNoMenuOrHasNoOwnerShowsNothing)
{
    EXPECT_FALSE(TrackPopupMenuEx(menu, TPM_RETURNCMD, 0, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(TrackPopupMenuEx(nullptr, TPM_RETURNCMD, 0, 0, owner.window, nullptr));
    EXPECT_EQ(GetLastError(), 1401U);
    const HMENU empty = CreatePopupMenu();
    EXPECT_EQ(TrackPopupMenuEx(empty, 0, 0, 0, owner.window, nullptr), 0);
    DestroyMenu(empty);
}

TEST_F(MenuTracking, ItEndsWithItsOwnerOrWhenAnotherTakesTheCapture)
{
    EXPECT_EQ(run({[&] { SetCapture(owner.window); ReleaseCapture(); }}), 0);
    auto *other = new ScreenWindow(white, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50);
    const LoopScript script({[&] { DestroyWindow(other->window); }});
    EXPECT_EQ(TrackPopupMenuEx(menu, TPM_RETURNCMD, 0, 0, other->window, nullptr), 0);
    EXPECT_TRUE(script.isDone());
    delete other;
}

TEST_F(MenuTracking, AQuitEndsItAndStays)
{
    const LoopScript script({[] { PostQuitMessage(5); }});
    EXPECT_EQ(TrackPopupMenuEx(menu, TPM_RETURNCMD, 0, 0, owner.window, nullptr), 0);
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 5U);
}
