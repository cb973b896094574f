// Dialogs: made from templates, modal and not, and their keys.
#include "platform/controls.h"
#include "platform/kernel.h"
#include "support/DialogBytes.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <gtest/gtest.h>

namespace
{
using zb::DIALOG_BUTTON;
using zb::DIALOG_STATIC;
using zb::test::DialogBytes;
using zb::test::DialogHost;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::TestDevice;

using Ids = std::vector<int>;
constexpr COLORREF red = RGB(200, 0, 0);

class Dialogs : public ::testing::Test
{
  protected:
    HWND make(const DialogBytes &bytes, HWND parent = nullptr)
    {
        return CreateDialogIndirectParamW(nullptr, bytes.data(), parent, DialogHost::procedure,
                                          reinterpret_cast<LPARAM>(&host));
    }
    /// A message loop's turn for one key, pressed and let go.
    void press(HWND dialog, int key, WCHAR character = 0)
    {
        zb::keyDown(key);
        if (character != 0)
        {
            zb::typeCharacter(character);
        }
        zb::keyUp(key);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            if (IsDialogMessageW(dialog, &message) == FALSE)
            {
                DispatchMessageW(&message);
            }
        }
    }
    static DialogBytes threeButtons(DWORD style = WS_POPUP | WS_VISIBLE)
    {
        DialogBytes bytes(style, 0, 0, 100, 60);
        bytes.item(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, 0, 0, 40, 12, 11, u"&One")
            .item(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 14, 40, 12, 12, u"T&wo")
            .item(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, 0, 28, 40, 12, 13, u"Three");
        return bytes;
    }
    static int idOfFocus()
    {
        return GetDlgCtrlID(GetFocus());
    }

    TestDevice device{zb::test::withScreen(400, 300)};
    DialogHost host;
};
} // namespace

TEST_F(Dialogs, UnitsAreAQuarterAndAnEighthOfTheFontsCharacter)
{
    const HWND dialog = make(DialogBytes(WS_POPUP, 0, 0, 100, 60));
    ASSERT_NE(dialog, nullptr);
    const LONG units = GetDialogBaseUnits();
    const int width = LOWORD(static_cast<DWORD_PTR>(units));
    const int height = HIWORD(static_cast<DWORD_PTR>(units));
    EXPECT_EQ(height, 13) << "the system's font of 13 pixels";
    RECT rectangle{4, 8, 40, 80};
    EXPECT_TRUE(MapDialogRect(dialog, &rectangle));
    EXPECT_EQ(rectangle.left, width);
    EXPECT_EQ(rectangle.top, height);
    EXPECT_EQ(rectangle.right, 10 * width);
    EXPECT_EQ(rectangle.bottom, 10 * height);
    RECT client{};
    GetClientRect(dialog, &client);
    EXPECT_EQ(client.right, 25 * width) << "the template tells the client area";
    EXPECT_EQ(client.bottom, (60 * height + 4) / 8);
    DestroyWindow(dialog);
    EXPECT_FALSE(MapDialogRect(nullptr, &rectangle));
}

TEST_F(Dialogs, ControlsLieWhereTheTemplateSaysAndHaveItsFont)
{
    const HWND dialog = make(threeButtons());
    ASSERT_NE(dialog, nullptr);
    const HWND two = GetDlgItem(dialog, 12);
    RECT place{0, 14, 40, 26};
    MapDialogRect(dialog, &place);
    RECT really{};
    GetWindowRect(two, &really);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT *>(&really), 2);
    EXPECT_EQ(really.left, place.left);
    EXPECT_EQ(really.top, place.top);
    EXPECT_EQ(really.right, place.right);
    EXPECT_EQ(really.bottom, place.bottom);
    EXPECT_NE(SendMessageW(two, WM_GETFONT, 0, 0), 0);
    EXPECT_EQ(SendMessageW(two, WM_GETFONT, 0, 0), SendMessageW(dialog, WM_GETFONT, 0, 0));
    WCHAR text[16];
    EXPECT_EQ(GetDlgItemTextW(dialog, 11, text, 16), 4U);
    EXPECT_EQ(std::u16string(text), u"&One");
    DestroyWindow(dialog);
}

TEST_F(Dialogs, InitDialogComesWithAllControlsMadeAndBeforeItShows)
{
    host.onInit = [](DialogHost &self)
    {
        EXPECT_NE(GetDlgItem(self.dialog, 13), nullptr);
        EXPECT_FALSE(IsWindowVisible(self.dialog));
    };
    const HWND dialog = make(threeButtons());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(host.parameter, reinterpret_cast<LPARAM>(&host));
    EXPECT_EQ(GetDlgCtrlID(host.firstFocus), 11);
    EXPECT_TRUE(IsWindowVisible(dialog));
    EXPECT_EQ(idOfFocus(), 11);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, AnInitAnswerOfZeroKeepsTheFocusThatItSet)
{
    host.initAnswer = 0;
    host.onInit = [](DialogHost &self) { SetFocus(GetDlgItem(self.dialog, 13)); };
    const HWND dialog = make(threeButtons());
    EXPECT_EQ(idOfFocus(), 13);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, CentredAndAbsoluteDialogsLieOnTheScreenOthersByTheirParent)
{
    const ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 50, 40, 200, 200);
    RECT place{};
    HWND dialog = make(DialogBytes(WS_POPUP, 0, 0, 40, 40), parent.window);
    GetWindowRect(dialog, &place);
    EXPECT_EQ(place.left, 50);
    EXPECT_EQ(place.top, 40);
    DestroyWindow(dialog);
    dialog = make(DialogBytes(WS_POPUP | DS_ABSALIGN, 0, 0, 40, 40), parent.window);
    GetWindowRect(dialog, &place);
    EXPECT_EQ(place.left, 0);
    DestroyWindow(dialog);
    dialog = make(DialogBytes(WS_POPUP | DS_CENTER, 0, 0, 40, 40), parent.window);
    GetWindowRect(dialog, &place);
    EXPECT_EQ(place.left + place.right, 400);
    EXPECT_LE(std::abs(place.top + place.bottom - 300), 1);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, ATemplateWithAnUnknownControlMakesNoDialog)
{
    DialogBytes bytes(WS_POPUP, 0, 0, 40, 40);
    bytes.item(u"NoSuchClass", 0, 0, 0, 10, 10, 5);
    EXPECT_EQ(make(bytes), nullptr);
    EXPECT_EQ(GetLastError(), 1407U);
    EXPECT_EQ(CreateDialogIndirectParamW(nullptr, nullptr, nullptr, DialogHost::procedure, 0), nullptr);
    EXPECT_EQ(GetLastError(), 87U);
}

TEST_F(Dialogs, AModalDialogDisablesItsOwnerAndGivesItsResult)
{
    ScreenWindow owner(red, WS_POPUP | WS_VISIBLE, 0, 0, 100, 100);
    ScreenWindow child(red, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, owner.window);
    host.endsOnCommand = true;
    static HWND ownerWindow;
    ownerWindow = owner.window;
    host.onInit = [](DialogHost &self)
    {
        EXPECT_EQ(GetWindow(self.dialog, GW_OWNER), ownerWindow);
        PostMessageW(self.dialog, WM_COMMAND, 13, 0);
        PostMessageW(self.dialog, WM_COMMAND, 11, 0);
    };
    int enabledThen = 2;
    owner.before = [&](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_ENABLE)
        {
            enabledThen = static_cast<int>(wParam);
            EXPECT_EQ(IsWindow(host.dialog), TRUE) << "enabled before the dialog goes";
        }
        return false;
    };
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, threeButtons(WS_POPUP).data(), child.window, DialogHost::procedure,
                                      reinterpret_cast<LPARAM>(&host)),
              13);
    EXPECT_EQ(enabledThen, 1);
    EXPECT_FALSE(IsWindow(host.dialog));
    EXPECT_TRUE(IsWindowEnabled(owner.window));
    EXPECT_EQ(GetForegroundWindow(), owner.window);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, nullptr, nullptr, DialogHost::procedure, 0), -1);
    EXPECT_TRUE(IsWindowEnabled(owner.window));
}

TEST_F(Dialogs, AModalDialogThatEndsWhileItIsMadeIsNeverRun)
{
    host.onInit = [](DialogHost &self) { EndDialog(self.dialog, 77); };
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, threeButtons(WS_POPUP).data(), nullptr, DialogHost::procedure,
                                      reinterpret_cast<LPARAM>(&host)),
              77);
}

TEST_F(Dialogs, AQuitEndsAModalDialogAndStaysForTheOuterLoop)
{
    host.onInit = [](DialogHost &) { PostQuitMessage(9); };
    DialogBoxIndirectParamW(nullptr, threeButtons(WS_POPUP).data(), nullptr, DialogHost::procedure,
                            reinterpret_cast<LPARAM>(&host));
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 9U);
}

TEST_F(Dialogs, TabGoesAroundTheControlsThatCanTakeTheFocus)
{
    const HWND dialog = make(threeButtons());
    EXPECT_EQ(idOfFocus(), 11);
    press(dialog, VK_TAB, u'\t');
    EXPECT_EQ(idOfFocus(), 12);
    EnableWindow(GetDlgItem(dialog, 13), FALSE);
    press(dialog, VK_TAB, u'\t');
    EXPECT_EQ(idOfFocus(), 11);
    EnableWindow(GetDlgItem(dialog, 13), TRUE);
    zb::keyDown(VK_SHIFT);
    press(dialog, VK_TAB, u'\t');
    zb::keyUp(VK_SHIFT);
    EXPECT_EQ(idOfFocus(), 13);
    EXPECT_EQ(GetDlgCtrlID(GetNextDlgTabItem(dialog, GetDlgItem(dialog, 13), FALSE)), 11);
    EXPECT_EQ(GetDlgCtrlID(GetNextDlgTabItem(dialog, GetDlgItem(dialog, 11), TRUE)), 13);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, EnterPressesTheFocusedButtonElseTheDefaultOne)
{
    DialogBytes bytes = threeButtons();
    bytes.item(DIALOG_BUTTON, BS_AUTOCHECKBOX | WS_TABSTOP, 0, 42, 40, 10, 14, u"Check");
    const HWND dialog = make(bytes);
    press(dialog, VK_RETURN, u'\r');
    EXPECT_EQ(host.clicked(), Ids{11});
    SetFocus(GetDlgItem(dialog, 14));
    press(dialog, VK_RETURN, u'\r');
    EXPECT_EQ(host.clicked(), Ids{12});
    SendMessageW(dialog, DM_SETDEFID, 13, 0);
    EXPECT_EQ(SendMessageW(dialog, DM_GETDEFID, 0, 0), static_cast<LRESULT>(MAKELONG(13, DC_HASDEFID)));
    press(dialog, VK_RETURN, u'\r');
    EXPECT_EQ(host.clicked(), Ids{13});
    EnableWindow(GetDlgItem(dialog, 13), FALSE);
    press(dialog, VK_RETURN, u'\r');
    EXPECT_EQ(host.clicked(), Ids{}) << "a disabled button is not pressed";
    DestroyWindow(dialog);
}

TEST_F(Dialogs, EscapeIsCancelAndSoIsClosing)
{
    const HWND dialog = make(threeButtons());
    press(dialog, VK_ESCAPE, 0x1B);
    EXPECT_EQ(host.clicked(), Ids{IDCANCEL});
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    settle();
    EXPECT_EQ(host.clicked(), Ids{IDCANCEL});
    EXPECT_TRUE(IsWindow(dialog));
    DestroyWindow(dialog);
}

TEST_F(Dialogs, MnemonicsPressButtonsAndLabelsLeadToTheNextControl)
{
    DialogBytes bytes = threeButtons();
    bytes.item(DIALOG_STATIC, SS_LEFT, 50, 0, 40, 10, 20, u"&Label")
        .item(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP, 50, 14, 40, 10, 21, u"R&&D");
    const HWND dialog = make(bytes);
    press(dialog, 'W', u'w');
    EXPECT_EQ(host.clicked(), Ids{12});
    EXPECT_EQ(idOfFocus(), 12);
    press(dialog, 'L', u'l');
    EXPECT_EQ(idOfFocus(), 21);
    press(dialog, 'D', u'd');
    EXPECT_EQ(host.clicked(), Ids{}) << "two ampersands are one, not a mnemonic";
    DestroyWindow(dialog);
}

TEST_F(Dialogs, ArrowsMoveInTheGroupAndChooseRadioButtons)
{
    DialogBytes bytes(WS_POPUP | WS_VISIBLE, 0, 0, 100, 60);
    bytes.item(DIALOG_BUTTON, BS_AUTORADIOBUTTON | WS_TABSTOP | WS_GROUP, 0, 0, 40, 10, 1, u"a")
        .item(DIALOG_BUTTON, BS_AUTORADIOBUTTON, 0, 10, 40, 10, 2, u"b")
        .item(DIALOG_BUTTON, BS_AUTORADIOBUTTON, 0, 20, 40, 10, 3, u"c")
        .item(DIALOG_BUTTON, BS_PUSHBUTTON | WS_TABSTOP | WS_GROUP, 0, 30, 40, 10, 4, u"d");
    const HWND dialog = make(bytes);
    CheckRadioButton(dialog, 1, 3, 1);
    press(dialog, VK_DOWN);
    EXPECT_EQ(idOfFocus(), 2);
    EXPECT_EQ(IsDlgButtonChecked(dialog, 1), 0U);
    EXPECT_EQ(IsDlgButtonChecked(dialog, 2), 1U);
    press(dialog, VK_RIGHT);
    press(dialog, VK_DOWN);
    EXPECT_EQ(idOfFocus(), 1) << "around at the end of the group";
    press(dialog, VK_UP);
    EXPECT_EQ(idOfFocus(), 3);
    EXPECT_EQ(IsDlgButtonChecked(dialog, 3), 1U);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, TextsAndNumbersOfControls)
{
    const HWND dialog = make(threeButtons());
    EXPECT_TRUE(SetDlgItemInt(dialog, 11, static_cast<UINT>(-42), TRUE));
    WCHAR text[16];
    GetDlgItemTextW(dialog, 11, text, 16);
    EXPECT_EQ(std::u16string(text), u"-42");
    BOOL good = FALSE;
    EXPECT_EQ(static_cast<int>(GetDlgItemInt(dialog, 11, &good, TRUE)), -42);
    EXPECT_TRUE(good);
    EXPECT_EQ(GetDlgItemInt(dialog, 11, &good, FALSE), 0U);
    EXPECT_FALSE(good) << "a sign, where there is none";
    for (const WCHAR *bad : {u"", u"12x", u"4294967296", u"x", u"- 4"})
    {
        SetDlgItemTextW(dialog, 11, bad);
        EXPECT_EQ(GetDlgItemInt(dialog, 11, &good, FALSE), 0U);
        EXPECT_FALSE(good);
    }
    SetDlgItemTextW(dialog, 11, u" 4294967295 ");
    EXPECT_EQ(GetDlgItemInt(dialog, 11, &good, FALSE), 0xFFFFFFFFU);
    EXPECT_TRUE(good);
    EXPECT_EQ(GetDlgItemTextW(dialog, 99, text, 16), 0U);
    EXPECT_EQ(text[0], 0);
    DestroyWindow(dialog);
}

TEST_F(Dialogs, APlainDialogIsHiddenByItsEnd)
{
    const HWND dialog = make(threeButtons());
    EXPECT_TRUE(EndDialog(dialog, 5));
    EXPECT_TRUE(IsWindow(dialog));
    EXPECT_FALSE(IsWindowVisible(dialog));
    DestroyWindow(dialog);
    EXPECT_FALSE(EndDialog(dialog, 5));
    const ScreenWindow other(red, WS_POPUP, 0, 0, 10, 10);
    EXPECT_FALSE(EndDialog(other.window, 5));
}
