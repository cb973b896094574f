// Messages by number, questions that can be silenced, and lists of what was typed before.
#include "core/CRegistry.h"
#include "core/ShowError.h"
#include "dialogs/CKelvoMBox.h"
#include "dialogs/CShowError.h"
#include "dialogs/MRU.h"
#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/screen.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;

constexpr const WCHAR *ignoreKey = u"Software\\Kelvo\\Zembrik\\Ignore";
// "Delete this task?", "Delete", "Send", "Don't send" among the system's texts.
constexpr DWORD question = 41081;
constexpr DWORD yes = 40410;
constexpr DWORD no = 44338;
constexpr DWORD unused = 44124;
constexpr DWORD longText = 40003; // of the tests' module: 300 characters

struct Shown
{
    std::u16string text;
    std::u16string caption;
    UINT flags;
};

/// A device whose dialogs are answered by a timer: it runs once the dialog's loop does.
class MessageBoxes : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(std::vector<Shown> &shown)
    {
        zb::DeviceOptions options;
        options.screen = {480, 640, 96};
        options.messageBox = [&shown](std::u16string_view text, std::u16string_view caption, UINT flags)
        {
            shown.push_back({std::u16string(text), std::u16string(caption), flags});
            return IDYES;
        };
        return options;
    }
    /// Does this to the dialog that comes up next.
    static void answer(std::function<void(HWND)> act)
    {
        s_act = std::move(act);
        SetTimer(nullptr, 0, 1,
                 [](HWND, UINT, UINT_PTR id, DWORD)
                 {
                     const HWND dialog = GetForegroundWindow();
                     if (dialog != nullptr && GetWindow(dialog, GW_CHILD) != nullptr && s_act)
                     {
                         KillTimer(nullptr, id);
                         std::exchange(s_act, nullptr)(dialog);
                     }
                 });
    }
    static void press(HWND dialog, int id)
    {
        SendMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0);
    }
    static int ask(const WCHAR *key, bool noStaysQuestion = false)
    {
        return CKelvoMBox::MessageBoxW(key, u"Subject", question, yes, no, unused, nullptr, noStaysQuestion);
    }
    static DWORD kept(const WCHAR *key)
    {
        DWORD value = 0;
        return GetFromRegistry(HKEY_CURRENT_USER, ignoreKey, key, &value) == 0 ? value : 0;
    }
    static std::u16string textOf(HWND dialog, int id)
    {
        WCHAR text[256] = {};
        GetDlgItemTextW(dialog, id, text, 256);
        return text;
    }

    std::vector<Shown> shown;
    zb::test::TestDevice device{options(shown)};
    static inline std::function<void(HWND)> s_act;
};
} // namespace

TEST_F(MessageBoxes, AMessageByNumber)
{
    const HINSTANCE resources = LoadLibraryW(u"ZBResources.dll");
    const CShowError error(40450, resources, 0x40010);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].text, u"This task could not be found. It may have been deleted.");
    EXPECT_EQ(shown[0].caption, u"ZB Message");
    EXPECT_EQ(shown[0].flags, 0x40010U);
    EXPECT_EQ(error.GetResult(), IDYES);
    const CShowError missing(9, resources, 0);
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[1].text, u"Resource Error text was not found. \r\rResource 9 not loaded.");
    const CShowError nowhere(40450, nullptr, 0);
    EXPECT_EQ(shown.size(), 2U);
    EXPECT_EQ(nowhere.GetResult(), 0);
    FreeLibrary(resources);
    const HINSTANCE module = LoadLibraryW(u"ZBTestModule");
    const CShowError empty(2, module, 0);
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_EQ(shown[2].text, u"Resource Error text was not found. \r\rResource 2 not loaded.")
        << "an empty text is none";
    FreeLibrary(module);
}

TEST_F(MessageBoxes, AMessageByNumberStandsBeforeTheForegroundWindowAndTheShortestBeforeNone)
{
    device.options().messageBox = nullptr;
    device.options().screen.dialogs = true;
    device.reopen();
    const HINSTANCE resources = LoadLibraryW(u"ZBResources.dll");
    const ScreenWindow foreground(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ASSERT_EQ(GetForegroundWindow(), foreground.window);
    HWND owner = nullptr;
    const auto close = [&owner](HWND dialog)
    {
        owner = GetWindow(dialog, GW_OWNER);
        press(dialog, IDOK);
    };
    answer(close);
    const CShowError error(40450, resources, 0);
    EXPECT_EQ(owner, foreground.window);
    EXPECT_EQ(error.GetResult(), IDOK);
    answer(close);
    ShowError(u"It failed.", 0);
    EXPECT_EQ(owner, nullptr);
    FreeLibrary(resources);
}

TEST_F(MessageBoxes, AQuestionShowsItsWordsAndAnswersByItsButtons)
{
    answer(
        [](HWND dialog)
        {
            EXPECT_EQ(textOf(dialog, 1000), u"Delete this task?");
            EXPECT_EQ(textOf(dialog, 1001), u"Delete");
            EXPECT_EQ(textOf(dialog, 1003), u"Don't send");
            EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, 1001)));
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, 1002))) << "the second button never appears";
            EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, 1003)));
            EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog, 1004)));
            EXPECT_EQ(textOf(dialog, 1004), u"Don't ask again");
            WCHAR title[32] = {};
            GetWindowTextW(dialog, title, 32);
            EXPECT_EQ(std::u16string(title), u"Subject");
            press(dialog, 1001);
        });
    EXPECT_EQ(ask(u"Delete_Task"), 1);
    EXPECT_EQ(kept(u"Delete_Task"), 0U) << "the box was not checked";
    answer([](HWND dialog) { press(dialog, 1003); });
    EXPECT_EQ(ask(u"Delete_Task"), 0);
}

TEST_F(MessageBoxes, WithoutAKeyItAlwaysAsks)
{
    answer(
        [](HWND dialog)
        {
            EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, 1004)));
            press(dialog, 1001);
        });
    EXPECT_EQ(ask(nullptr), 1);
}

TEST_F(MessageBoxes, TheCheckedBoxKeepsYesAndNo)
{
    const auto checkAnd = [](int button)
    {
        answer(
            [button](HWND dialog)
            {
                press(dialog, 1004);
                press(dialog, button);
            });
    };
    checkAnd(1001);
    EXPECT_EQ(ask(u"A"), 1);
    EXPECT_EQ(kept(u"A"), 12U);
    EXPECT_EQ(ask(u"A"), 1) << "with no dialog: nobody would answer it";
    checkAnd(1003);
    EXPECT_EQ(ask(u"B"), 0);
    EXPECT_EQ(kept(u"B"), 11U);
    EXPECT_EQ(ask(u"B"), 0);
    checkAnd(1003);
    EXPECT_EQ(ask(u"C", true), 0);
    EXPECT_EQ(kept(u"C"), 10U);
}

TEST_F(MessageBoxes, TheSecondButtonKeepsNothing)
{
    int check = 0;
    answer(
        [](HWND dialog)
        {
            press(dialog, 1004);
            press(dialog, 1002);
        });
    EXPECT_EQ(CKelvoMBox::MakeKelvoMBox(nullptr, u"Text", u"Title", u"a", u"b", u"c", &check), 1);
    EXPECT_EQ(check, 1);
    answer(
        [](HWND dialog)
        {
            press(dialog, 1004);
            SendMessageW(dialog, WM_COMMAND, 1002, 0); // its place is hidden, its number is heard
        });
    EXPECT_EQ(ask(u"Second"), 0);
    DWORD stored = 0;
    EXPECT_NE(GetFromRegistry(HKEY_CURRENT_USER, ignoreKey, u"Second", &stored), 0) << "nothing was stored";
}

TEST_F(MessageBoxes, TheDialogIsNumber103AndItsButtonsHaveThreeWords)
{
    const HWND dialog = CreateDialogIndirectParamW(
        nullptr, LockResource(LoadResource(nullptr, FindResourceW(nullptr, MAKEINTRESOURCEW(103), RT_DIALOG))), nullptr,
        [](HWND, UINT, WPARAM, LPARAM) -> LONG_PTR { return 0; }, 0);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(textOf(dialog, 1001), u"Button1");
    EXPECT_EQ(textOf(dialog, 1002), u"Button2");
    EXPECT_EQ(textOf(dialog, 1003), u"Button3");
    EXPECT_NE(GetDlgItem(dialog, 1004), nullptr);
    DestroyWindow(dialog);
}

TEST_F(MessageBoxes, TextsOfAQuestionHave249CharactersAtMost)
{
    const HINSTANCE module = LoadLibraryW(u"ZBTestModule");
    WCHAR any[8];
    LoadStringW(nullptr, question, any, 8); // the system's resources are loaded with the first text
    zb::setApplicationResources(module);
    std::u16string shownText;
    answer(
        [&shownText](HWND dialog)
        {
            WCHAR text[512] = {};
            GetDlgItemTextW(dialog, 1000, text, 512);
            shownText = text;
            SendMessageW(dialog, WM_COMMAND, 1001, 0);
        });
    CKelvoMBox::MessageBoxW(nullptr, nullptr, longText, longText, longText, 0, nullptr, false);
    zb::setApplicationResources(nullptr);
    FreeLibrary(module);
    EXPECT_EQ(shownText, std::u16string(249, u'x'));
}

TEST_F(MessageBoxes, TheShortestMessageHasNoCaption)
{
    ShowError(u"It failed.", showErrorFlags);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].text, u"It failed.");
    EXPECT_EQ(shown[0].caption, u"");
    EXPECT_EQ(shown[0].flags, 0x40010U);
}

TEST_F(MessageBoxes, AStoredValueOutsideTheThreeAsksAgain)
{
    for (const DWORD value : {9U, 13U, 0U})
    {
        SetToRegistry(HKEY_CURRENT_USER, ignoreKey, u"Odd", value);
        answer([](HWND dialog) { press(dialog, 1001); });
        EXPECT_EQ(ask(u"Odd"), 1) << value;
    }
    SetToRegistry(HKEY_CURRENT_USER, ignoreKey, u"Odd", 10);
    answer([](HWND dialog) { press(dialog, 1003); });
    EXPECT_EQ(ask(u"Odd"), 0);
}

TEST_F(MessageBoxes, EscapeIsTheLastButtonAndEnterTheFirst)
{
    answer([](HWND dialog) { SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0); });
    EXPECT_EQ(CKelvoMBox::MakeKelvoMBox(nullptr, u"Text", u"Title", u"a", u"b", nullptr, nullptr), 1);
    answer([](HWND dialog) { SendMessageW(dialog, WM_COMMAND, IDOK, 0); });
    EXPECT_EQ(CKelvoMBox::MakeKelvoMBox(nullptr, u"Text", u"Title", u"a", u"b", nullptr, nullptr), 0);
}

TEST_F(MessageBoxes, TheDialogGrowsWithItsText)
{
    const auto heightFor = [](const WCHAR *text)
    {
        int height = 0;
        answer(
            [&height](HWND dialog)
            {
                RECT client{};
                GetClientRect(dialog, &client);
                height = client.bottom;
                RECT button{};
                GetWindowRect(GetDlgItem(dialog, 1001), &button);
                MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT *>(&button), 2);
                EXPECT_LE(button.bottom, client.bottom);
                press(dialog, 1001);
            });
        CKelvoMBox::MakeKelvoMBox(nullptr, text, u"Title", u"OK", nullptr, nullptr, nullptr);
        return height;
    };
    const int one = heightFor(u"Short");
    const int many = heightFor(u"A text that is so long that it can't possibly stand on one line of such a dialog, and "
                               u"goes on for a while, so that everybody can see how it is laid out.");
    EXPECT_GT(many, one + 20);
}

TEST_F(MessageBoxes, WhatWasTypedIsKeptOnceInOrder)
{
    MRUSave(u"Find", u"first");
    MRUSave(u"Find", u"second");
    MRUSave(u"Find", u"first");
    MRUSave(u"Find", u"");
    MRUSave(u"Find", nullptr);
    const WCHAR *path = u"Software\\Kelvo\\Zembrik\\Menus\\Find\\MRU";
    DWORD keys = 0;
    DWORD values = 0;
    ASSERT_EQ(QueryKey(HKEY_CURRENT_USER, path, &keys, &values), 0);
    EXPECT_EQ(values, 2U);
    CRegistry registry(RegistryTypeRegistry);
    ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, path), 0);
    WCHAR text[32] = {};
    EXPECT_EQ(registry.QueryValue(u"1", text, 32), 0);
    EXPECT_EQ(std::u16string(text), u"first");
    EXPECT_EQ(registry.QueryValue(u"2", text, 32), 0);
    EXPECT_EQ(std::u16string(text), u"second");
}

namespace
{
/// A stand-in for a list: writes down what it is told.
struct ListWindow
{
    explicit ListWindow(HWND parent)
        : window(RGB(1, 1, 1), WS_CHILD, 0, 0, 10, 10, parent, 77)
    {
        window.before = [this](UINT message, WPARAM, LPARAM lParam, LRESULT &)
        {
            if (message == 331 || message == 323 || message == 384)
            {
                told.emplace_back(message, message == 331 ? std::u16string()
                                                          : std::u16string(reinterpret_cast<const WCHAR *>(lParam)));
            }
            return false;
        };
    }
    std::vector<std::pair<UINT, std::u16string>> told;
    ScreenWindow window;
};
using Told = std::vector<std::pair<UINT, std::u16string>>;
} // namespace

TEST_F(MessageBoxes, ListsAndCombosAreFilledAndShown)
{
    const ScreenWindow parent(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ListWindow list(parent.window);
    MRU(parent.window, u"Find", 77, false);
    EXPECT_EQ(list.told, Told{});
    EXPECT_FALSE(IsWindowVisible(list.window.window)) << "an empty list stays hidden";
    MRUSave(u"Find", u"one");
    MRUSave(u"Find", u"two");
    MRU(parent.window, u"Find", 77, false);
    EXPECT_EQ(list.told, (Told{{384, u"one"}, {384, u"two"}}));
    EXPECT_TRUE(IsWindowVisible(list.window.window));
    list.told.clear();
    MRU(parent.window, u"Find", 77, true);
    EXPECT_EQ(list.told, (Told{{331, u""}, {323, u"one"}, {323, u"two"}}));
}

TEST_F(MessageBoxes, EntriesThatDifferInCaseAreTwoAndLongOnesStayWhole)
{
    const std::u16string longest(5000, u'x');
    MRUSave(u"Find", u"one");
    MRUSave(u"Find", u"One");
    MRUSave(u"Find", longest.c_str());
    MRUSave(u"Find", longest.c_str());
    const ScreenWindow parent(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ListWindow list(parent.window);
    MRU(parent.window, u"Find", 77, false);
    EXPECT_EQ(list.told, (Told{{384, u"one"}, {384, u"One"}, {384, longest}}));
}

TEST_F(MessageBoxes, AListOfNothingReadableStaysHidden)
{
    SetToRegistry(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik\\Menus\\Find\\MRU", u"1", 5);
    const ScreenWindow parent(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ListWindow list(parent.window);
    MRU(parent.window, u"Find", 77, true);
    EXPECT_EQ(list.told, (Told{{331, u""}}));
    EXPECT_FALSE(IsWindowVisible(list.window.window));
}

TEST_F(MessageBoxes, NothingIsLostBehindAnEntryThatIsDeleted)
{
    const WCHAR *path = u"Software\\Kelvo\\Zembrik\\Menus\\Find\\MRU";
    for (const WCHAR *text : {u"one", u"two", u"three", u"four"})
    {
        MRUSave(u"Find", text);
    }
    SetToRegistry(HKEY_CURRENT_USER, path, u"2", 5);
    const ScreenWindow parent(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ListWindow list(parent.window);
    MRU(parent.window, u"Find", 77, false);
    MRUSave(u"Find", u"five");
    MRU(parent.window, u"Find", 77, true);
    const Told all{{384, u"one"}, {384, u"three"}, {384, u"four"}, {331, u""},
                   {323, u"one"}, {323, u"three"}, {323, u"four"}, {323, u"five"}};
    EXPECT_EQ(list.told, all);
    DeleteRegistryValue(HKEY_CURRENT_USER, path, u"2"); // by somebody who leaves a gap
    MRUSave(u"Find", u"six");
    WCHAR text[201] = {};
    CRegistry registry(RegistryTypeRegistry);
    ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, path), 0);
    EXPECT_EQ(registry.QueryValue(u"4", text, 200), 0);
    EXPECT_EQ(std::u16string(text), u"five") << "not written over";
    EXPECT_EQ(registry.QueryValue(u"5", text, 200), 0);
    EXPECT_EQ(std::u16string(text), u"six");
}

TEST_F(MessageBoxes, AnEntryThatCantBeReadIsDeleted)
{
    const WCHAR *path = u"Software\\Kelvo\\Zembrik\\Menus\\Find\\MRU";
    MRUSave(u"Find", u"one");
    SetToRegistry(HKEY_CURRENT_USER, path, u"2", 5); // a number is no text
    const ScreenWindow parent(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ListWindow list(parent.window);
    MRU(parent.window, u"Find", 77, false);
    EXPECT_EQ(list.told, (Told{{384, u"one"}}));
    DWORD keys = 0;
    DWORD values = 0;
    QueryKey(HKEY_CURRENT_USER, path, &keys, &values);
    EXPECT_EQ(values, 1U);
}

TEST_F(MessageBoxes, TheArrayOfAListHoldsItsFirstEntryAlone)
{
    WCHAR **strings = nullptr;
    int count = 7;
    MRUStrings(u"Find", &strings, &count);
    ASSERT_NE(strings, nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::u16string(strings[0]), u"");
    CleanupMRUStrings(&strings, count);
    EXPECT_EQ(strings, nullptr);
    MRUSave(u"Find", u"one");
    MRUSave(u"Find", u"two");
    MRUStrings(u"Find", &strings, &count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(std::u16string(strings[0]), u"one");
    CleanupMRUStrings(&strings, count);
    CleanupMRUStrings(&strings, 0);
}

TEST(MessageBoxesOfNarrowScreens, QuestionsAndTheirButtonsStayInside)
{
    zb::DeviceOptions options;
    options.screen = {240, 320, 96};
    const zb::test::TestDevice device(options);
    struct Place
    {
        RECT dialog{};
        RECT buttons[3]{};
    };
    static Place place;
    SetTimer(nullptr, 0, 1,
             [](HWND, UINT, UINT_PTR id, DWORD)
             {
                 if (const HWND dialog = GetForegroundWindow())
                 {
                     KillTimer(nullptr, id);
                     GetWindowRect(dialog, &place.dialog);
                     for (int n = 0; n < 3; ++n)
                     {
                         GetWindowRect(GetDlgItem(dialog, 1001 + n), &place.buttons[n]);
                     }
                     SendMessageW(dialog, WM_CLOSE, 0, 0);
                 }
             });
    CKelvoMBox::MakeKelvoMBox(nullptr, u"Some words that need more than one line on a screen as narrow as this one",
                              u"Title", u"Every one of them", u"Only this one", u"None of them", nullptr);
    EXPECT_GE(place.dialog.left, 0);
    EXPECT_LE(place.dialog.right, 240);
    EXPECT_GT(place.dialog.right - place.dialog.left, 200);
    LONG end = place.dialog.left;
    for (const RECT &button : place.buttons)
    {
        EXPECT_GE(button.left, end);
        EXPECT_GT(button.right - button.left, 40);
        end = button.right;
    }
    EXPECT_LE(end, place.dialog.right);
}
