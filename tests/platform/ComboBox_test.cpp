// The combo box: its messages, what the parent hears, the list that drops down, keys and pen, in dialogs.
#include "platform/controls.h"
#include "support/DialogBytes.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::liftPen;
using zb::test::pressKey;
using zb::test::putPenDown;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::tapAt;
using zb::test::typeText;

class ComboBoxes : public zb::test::TextTest
{
  protected:
    ~ComboBoxes() override
    {
        zb::keyUp(VK_MENU);
        DeleteObject(font);
    }
    /// Its field is 100 wide and 22 high at 10, 10: a row of 20 and a border. Room for five rows is asked for.
    HWND make(DWORD style, std::initializer_list<const WCHAR *> rows = {})
    {
        combo = CreateWindowExW(0, u"COMBOBOX", u"", style | WS_CHILD | WS_VISIBLE | WS_VSCROLL, 10, 10, 100, 22 + 102,
                                parent.window, reinterpret_cast<void *>(static_cast<LONG_PTR>(5)), nullptr, nullptr);
        SendMessageW(combo, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        for (const WCHAR *row : rows)
        {
            send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row));
        }
        SetFocus(combo);
        settle();
        parent.clear();
        return combo;
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(combo, message, wParam, lParam);
    }
    LRESULT sendText(UINT message, int row, const WCHAR *text) const
    {
        return send(message, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
    }
    std::u16string text() const
    {
        WCHAR buffer[100];
        GetWindowTextW(combo, buffer, 100);
        return buffer;
    }
    bool isOpen() const
    {
        return send(CB_GETDROPPEDSTATE) != 0;
    }
    /// A row of the list below the field: its frame shares a line with the field's.
    static int yOfRow(int row)
    {
        return 32 + row * 20 + 5;
    }
    std::vector<int> codes()
    {
        return parent.takeCodes(5, combo);
    }
    using Codes = std::vector<int>;
    static inline const Codes chosen{CBN_SELENDOK, CBN_CLOSEUP, CBN_SELCHANGE};
    static inline const Codes leftAlone{CBN_SELENDCANCEL, CBN_CLOSEUP};

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 240, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND combo = nullptr;
};

constexpr std::initializer_list<const WCHAR *> fruit = {u"apple", u"banana", u"blueberry", u"cherry"};
} // namespace

TEST_F(ComboBoxes, TheNumbersThatHostsSend)
{
    EXPECT_EQ(CB_ADDSTRING, 323U);
    EXPECT_EQ(CB_GETCURSEL, 327U);
    EXPECT_EQ(CB_RESETCONTENT, 331U);
    EXPECT_EQ(CB_SETCURSEL, 334U);
    EXPECT_EQ(CBN_DROPDOWN, 7);
}

TEST_F(ComboBoxes, RowsAndWhatIsChosenOfThem)
{
    make(CBS_DROPDOWNLIST);
    EXPECT_EQ(sendText(CB_ADDSTRING, 0, u"b"), 0);
    EXPECT_EQ(sendText(CB_INSERTSTRING, 0, u"a"), 0);
    EXPECT_EQ(sendText(CB_INSERTSTRING, -1, u"c"), 2);
    EXPECT_EQ(send(CB_GETCOUNT), 3);
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(text(), u"");
    EXPECT_EQ(send(CB_SETCURSEL, 1), 1);
    EXPECT_EQ(text(), u"b");
    EXPECT_EQ(GetWindowTextLengthW(combo), 1);
    EXPECT_EQ(send(CB_GETLBTEXTLEN, 2), 1);
    WCHAR buffer[10];
    EXPECT_EQ(send(CB_GETLBTEXT, 2, reinterpret_cast<LPARAM>(buffer)), 1);
    EXPECT_EQ(std::u16string(buffer), u"c");
    EXPECT_EQ(send(CB_SETITEMDATA, 1, 77), 0);
    EXPECT_EQ(send(CB_GETITEMDATA, 1), 77);
    EXPECT_EQ(send(CB_GETITEMDATA, 9), CB_ERR);
    EXPECT_EQ(send(CB_DELETESTRING, 0), 2);
    EXPECT_EQ(send(CB_GETCURSEL), 0);
    EXPECT_EQ(sendText(CB_FINDSTRING, -1, u"C"), 1);
    EXPECT_EQ(sendText(CB_FINDSTRINGEXACT, -1, u"cc"), CB_ERR);
    EXPECT_EQ(sendText(CB_SELECTSTRING, -1, u"c"), 1);
    EXPECT_EQ(text(), u"c");
    EXPECT_EQ(SetWindowTextW(combo, u"b"), CB_ERR) << "no edit";
    EXPECT_EQ(send(CB_SETCURSEL, 7), CB_ERR);
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR) << "what is no row chooses none";
    send(CB_RESETCONTENT);
    EXPECT_EQ(send(CB_GETCOUNT), 0);
    EXPECT_EQ(codes(), Codes{}) << "messages are silent";
}

TEST_F(ComboBoxes, SortedRows)
{
    make(CBS_DROPDOWNLIST | CBS_SORT, {u"b", u"C", u"a"});
    EXPECT_EQ(sendText(CB_FINDSTRINGEXACT, -1, u"a"), 0);
    EXPECT_EQ(sendText(CB_FINDSTRINGEXACT, -1, u"c"), 2);
}

TEST_F(ComboBoxes, TheEditAndItsText)
{
    make(CBS_DROPDOWN, fruit);
    typeText(u"ba");
    EXPECT_EQ(text(), u"ba");
    EXPECT_EQ(codes(), (Codes{CBN_EDITUPDATE, CBN_EDITCHANGE, CBN_EDITUPDATE, CBN_EDITCHANGE}));
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
    typeText(u"nana");
    EXPECT_EQ(send(CB_GETCURSEL), 1) << "the text is a row";
    typeText(u"s");
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
    codes();
    send(CB_SETCURSEL, 3);
    EXPECT_EQ(text(), u"cherry");
    EXPECT_EQ(send(CB_GETEDITSEL), MAKELONG(0, 6)) << "ready to be replaced";
    EXPECT_EQ(send(CB_SETEDITSEL, 0, MAKELONG(1, 3)), 1);
    EXPECT_EQ(send(CB_GETEDITSEL), MAKELONG(1, 3));
    send(CB_SETEDITSEL, 0, MAKELONG(2, static_cast<WORD>(-1)));
    EXPECT_EQ(send(CB_GETEDITSEL), MAKELONG(2, 6));
    SetWindowTextW(combo, u"apple");
    EXPECT_EQ(send(CB_GETCURSEL), 0);
    SetWindowTextW(combo, u"plum");
    EXPECT_EQ(text(), u"plum");
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
    send(CB_LIMITTEXT, 3);
    send(CB_SETEDITSEL, 0, MAKELONG(0, static_cast<WORD>(-1)));
    EXPECT_EQ(codes(), Codes{});
    typeText(u"pear");
    EXPECT_EQ(text(), u"pea");
    send(CB_RESETCONTENT);
    EXPECT_EQ(text(), u"");
}

TEST_F(ComboBoxes, LettersOfOneCase)
{
    make(CBS_DROPDOWN | CBS_UPPERCASE);
    typeText(u"ab");
    EXPECT_EQ(text(), u"AB");
}

TEST_F(ComboBoxes, ItsOwnHeightIsThatOfTheField)
{
    make(CBS_DROPDOWNLIST, fruit);
    RECT box{};
    GetWindowRect(combo, &box);
    EXPECT_TRUE(zb::test::is(box, 10, 10, 110, 32));
    EXPECT_EQ(send(CB_GETITEMHEIGHT, 0), 20);
    EXPECT_EQ(send(CB_GETITEMHEIGHT, static_cast<WPARAM>(-1)), 20);
    send(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&box));
    EXPECT_TRUE(zb::test::is(box, 10, 10, 110, 31 + 4 * 20 + 2)) << "four rows and a frame";
    EXPECT_EQ(send(CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), 30), CB_OKAY);
    GetWindowRect(combo, &box);
    EXPECT_EQ(box.bottom, 42);
    EXPECT_EQ(send(CB_SETITEMHEIGHT, 0, 0), CB_ERR);
    EXPECT_EQ(send(CB_SETITEMHEIGHT, 0, 25), CB_OKAY);
    send(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&box));
    EXPECT_EQ(box.bottom, 41 + 3 * 25 + 2) << "what was asked for has room for three of these";
    EXPECT_EQ(send(CB_GETDROPPEDWIDTH), 100);
    EXPECT_EQ(send(CB_SETDROPPEDWIDTH, 150), 150);
    send(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&box));
    EXPECT_EQ(box.right, 160);
    MoveWindow(combo, 10, 10, 80, 42, TRUE);
    send(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&box));
    EXPECT_EQ(box.bottom, 41 + 3 * 25 + 2) << "a move of the field leaves the list its room";
}

TEST_F(ComboBoxes, TheListOpensUpwardsWhereThereIsMoreRoom)
{
    make(CBS_DROPDOWNLIST, fruit);
    SetWindowPos(parent.window, nullptr, 0, GetSystemMetrics(SM_CYSCREEN) - 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    RECT field{};
    RECT both{};
    GetWindowRect(combo, &field);
    send(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&both));
    EXPECT_EQ(both.bottom, field.bottom);
    EXPECT_EQ(both.top, field.top + 1 - 4 * 20 - 2);
}

TEST_F(ComboBoxes, KeysOfAClosedList)
{
    make(CBS_DROPDOWNLIST, fruit);
    pressKey(VK_DOWN);
    EXPECT_EQ(send(CB_GETCURSEL), 0);
    EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
    pressKey(VK_END);
    EXPECT_EQ(send(CB_GETCURSEL), 3);
    pressKey(VK_UP);
    EXPECT_EQ(text(), u"blueberry");
    typeText(u"b");
    EXPECT_EQ(text(), u"banana") << "the next that begins so";
    EXPECT_FALSE(isOpen());
}

TEST_F(ComboBoxes, KeysOpenAndChoose)
{
    make(CBS_DROPDOWNLIST, fruit);
    send(CB_SETCURSEL, 1);
    pressKey(VK_F4);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(codes(), Codes{CBN_DROPDOWN});
    pressKey(VK_DOWN);
    EXPECT_EQ(codes(), Codes{}) << "nothing is chosen yet";
    pressKey(VK_RETURN);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"blueberry");
    EXPECT_EQ(codes(), chosen);
    pressKey(VK_SPACE);
    EXPECT_TRUE(isOpen());
    pressKey(VK_UP);
    pressKey(VK_ESCAPE);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"blueberry") << "as before";
    EXPECT_EQ(codes(), (Codes{CBN_DROPDOWN, CBN_SELENDCANCEL, CBN_CLOSEUP}));
    pressKey(VK_DOWN, {VK_MENU});
    EXPECT_TRUE(isOpen());
    pressKey(VK_UP, {VK_MENU});
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(codes(), (Codes{CBN_DROPDOWN, CBN_SELENDOK, CBN_CLOSEUP, CBN_SELCHANGE}));
}

TEST_F(ComboBoxes, KeysOfTheExtendedInterface)
{
    make(CBS_DROPDOWNLIST, fruit);
    EXPECT_EQ(send(CB_GETEXTENDEDUI), 0);
    EXPECT_EQ(send(CB_SETEXTENDEDUI, 1), CB_OKAY);
    EXPECT_EQ(send(CB_GETEXTENDEDUI), 1);
    pressKey(VK_F4);
    EXPECT_FALSE(isOpen());
    pressKey(VK_DOWN);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
}

TEST_F(ComboBoxes, KeysOfAnEditWithAList)
{
    make(CBS_DROPDOWN, fruit);
    typeText(u"bl");
    pressKey(VK_DOWN);
    EXPECT_EQ(text(), u"blueberry") << "from the row that begins as the text does";
    pressKey(VK_UP);
    EXPECT_EQ(text(), u"banana");
    pressKey(VK_HOME);
    pressKey(VK_RIGHT);
    EXPECT_EQ(send(CB_GETEDITSEL), MAKELONG(1, 1)) << "these move the caret";
    pressKey(VK_F4);
    codes();
    pressKey(VK_DOWN);
    EXPECT_EQ(text(), u"blueberry");
    pressKey(VK_ESCAPE);
    EXPECT_EQ(text(), u"banana");
    EXPECT_EQ(codes(), leftAlone);
    pressKey(VK_F4);
    send(CB_SETEDITSEL, 0, MAKELONG(0, static_cast<WORD>(-1)));
    typeText(u"plum");
    codes();
    pressKey(VK_RETURN);
    EXPECT_EQ(text(), u"plum") << "what was typed stays";
    EXPECT_EQ(send(CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(codes(), leftAlone);
}

TEST_F(ComboBoxes, ATapOnTheFieldOpensAndOneOnARowChooses)
{
    make(CBS_DROPDOWNLIST, fruit);
    tapAt(30, 20);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(codes(), Codes{CBN_DROPDOWN});
    EXPECT_EQ(zb::test::screenPixel(60, yOfRow(3) + 10), RGB(255, 255, 255));
    tapAt(60, yOfRow(1));
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"banana");
    EXPECT_EQ(codes(), chosen);
    tapAt(30, 20);
    tapAt(60, yOfRow(1));
    EXPECT_EQ(codes(), (Codes{CBN_DROPDOWN, CBN_SELENDOK, CBN_CLOSEUP, CBN_SELCHANGE}))
        << "told even when it is the same";
}

TEST_F(ComboBoxes, OneStrokeOpensAndChooses)
{
    make(CBS_DROPDOWNLIST, fruit);
    putPenDown(100, 20);
    zb::penMove(60, yOfRow(2));
    settle();
    liftPen(60, yOfRow(2));
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(text(), u"blueberry");
}

TEST_F(ComboBoxes, ATapBesideTheListClosesItAndIsNotPassedOn)
{
    make(CBS_DROPDOWNLIST, fruit);
    send(CB_SETCURSEL, 2);
    tapAt(30, 20);
    pressKey(VK_UP);
    codes();
    tapAt(200, 250);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(parent.count(WM_LBUTTONDOWN), 0);
    EXPECT_EQ(codes(), leftAlone);
    EXPECT_EQ(text(), u"blueberry");
    EXPECT_EQ(GetCapture(), nullptr);
    tapAt(30, 20);
    tapAt(30, 20);
    EXPECT_FALSE(isOpen()) << "a second tap on the field closes";
    tapAt(200, 250);
    EXPECT_EQ(parent.count(WM_LBUTTONDOWN), 1);
}

TEST_F(ComboBoxes, TheListLiesOverOtherWindows)
{
    make(CBS_DROPDOWNLIST, fruit);
    ScreenWindow other(RGB(9, 9, 9), WS_POPUP | WS_VISIBLE, 0, 40, 240, 200);
    SetFocus(combo);
    send(CB_SHOWDROPDOWN, TRUE);
    settle();
    EXPECT_EQ(zb::test::screenPixel(60, yOfRow(3) + 10), RGB(255, 255, 255));
    send(CB_SHOWDROPDOWN, FALSE);
    BringWindowToTop(other.window);
    settle();
    EXPECT_EQ(zb::test::screenPixel(60, yOfRow(3) + 10), RGB(9, 9, 9));
}

TEST_F(ComboBoxes, ATapOnTheEditBesideTheOpenListGoesThere)
{
    make(CBS_DROPDOWN, fruit);
    SetWindowTextW(combo, u"abc");
    tapAt(100, 20);
    EXPECT_TRUE(isOpen());
    tapAt(80, 20);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(send(CB_GETEDITSEL), MAKELONG(3, 3));
    typeText(u"d");
    EXPECT_EQ(text(), u"abcd");
}

TEST_F(ComboBoxes, TheListMayBeFilledWhenItOpens)
{
    make(CBS_DROPDOWN, {u"old"});
    SetWindowTextW(combo, u"two");
    parent.before = [this](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_COMMAND && HIWORD(wParam) == CBN_DROPDOWN)
        {
            send(CB_RESETCONTENT);
            sendText(CB_ADDSTRING, 0, u"one");
            sendText(CB_ADDSTRING, 0, u"two");
            SetWindowTextW(combo, u"two");
        }
        return false;
    };
    pressKey(VK_F4);
    EXPECT_EQ(send(CB_GETCOUNT), 2);
    EXPECT_EQ(send(CB_GETCURSEL), 1);
    pressKey(VK_UP);
    pressKey(VK_RETURN);
    EXPECT_EQ(text(), u"one");
}

TEST_F(ComboBoxes, ManyRowsScroll)
{
    make(CBS_DROPDOWNLIST);
    for (int i = 0; i < 40; ++i)
    {
        sendText(CB_ADDSTRING, 0, u"row");
    }
    send(CB_SETCURSEL, 30);
    pressKey(VK_F4);
    EXPECT_EQ(send(CB_GETTOPINDEX), 28) << "the chosen one in the middle of five";
    // The arrow at the lower end of the bar.
    zb::penDown(103, 31 + 102 - 5);
    zb::penUp(103, 31 + 102 - 5);
    settle();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(send(CB_GETTOPINDEX), 29);
    EXPECT_EQ(send(CB_SETTOPINDEX, 3), 0);
    tapAt(60, yOfRow(1));
    EXPECT_EQ(send(CB_GETCURSEL), 4);
}

TEST_F(ComboBoxes, FocusIsToldOnceForAllItsParts)
{
    make(CBS_DROPDOWN, fruit);
    EXPECT_EQ(GetParent(GetFocus()), combo) << "the edit has it";
    pressKey(VK_F4);
    codes();
    SetFocus(parent.window);
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(codes(), (Codes{CBN_SELENDCANCEL, CBN_CLOSEUP, CBN_KILLFOCUS}));
    SetFocus(combo);
    EXPECT_EQ(codes(), Codes{CBN_SETFOCUS});
}

TEST_F(ComboBoxes, ASimpleOneShowsItsListAlways)
{
    make(CBS_SIMPLE, fruit);
    RECT box{};
    GetWindowRect(combo, &box);
    EXPECT_EQ(box.bottom, 10 + 124);
    pressKey(VK_DOWN);
    EXPECT_EQ(text(), u"apple");
    EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
    tapAt(60, yOfRow(2));
    EXPECT_EQ(text(), u"blueberry");
    EXPECT_EQ(codes(), (Codes{CBN_SELENDOK, CBN_SELCHANGE}));
    tapAt(60, yOfRow(2));
    EXPECT_EQ(codes(), Codes{CBN_DBLCLK});
    pressKey(VK_F4);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(GetParent(GetFocus()), combo);
}

TEST_F(ComboBoxes, ADisabledOneTakesNothing)
{
    make(CBS_DROPDOWNLIST, fruit);
    pressKey(VK_F4);
    EnableWindow(combo, FALSE);
    EXPECT_FALSE(isOpen());
    tapAt(30, 20);
    EXPECT_FALSE(isOpen());
}

TEST_F(ComboBoxes, AHostMayEndItInAnswer)
{
    using Steps = std::function<void()>;
    const auto go = [](std::initializer_list<int> keys)
    {
        for (const int one : keys)
        {
            pressKey(one);
        }
    };
    const std::tuple<WORD, DWORD, Steps> ways[] = {
        {CBN_DROPDOWN, CBS_DROPDOWN, [&] { go({VK_F4}); }},
        {CBN_SELENDOK, CBS_DROPDOWN,
         [&] {
             go({VK_F4, VK_DOWN, VK_RETURN});
         }},
        {CBN_CLOSEUP, CBS_DROPDOWN,
         [&] {
             go({VK_F4, VK_ESCAPE});
         }},
        {CBN_SELCHANGE, CBS_DROPDOWN,
         [&] {
             go({VK_F4, VK_DOWN, VK_RETURN});
         }},
        {CBN_SELCHANGE, CBS_DROPDOWNLIST, [&] { go({VK_END}); }},
        {CBN_SELENDOK, CBS_DROPDOWNLIST, [&] { typeText(u"c"); }},
        {CBN_SELCHANGE, CBS_SIMPLE, [&] { tapAt(60, yOfRow(2)); }},
        {CBN_SELENDCANCEL, CBS_DROPDOWNLIST, [&] { tapAt(30, 20), tapAt(200, 250); }},
        {CBN_SELCHANGE, CBS_DROPDOWNLIST, [&] { tapAt(30, 20), tapAt(60, yOfRow(1)); }},
        {CBN_EDITUPDATE, CBS_DROPDOWN, [&] { typeText(u"a"); }},
        {CBN_EDITCHANGE, CBS_DROPDOWN, [&] { typeText(u"a"); }},
        {CBN_CLOSEUP, CBS_DROPDOWNLIST, [&] { go({VK_F4}), EnableWindow(combo, FALSE); }},
        {CBN_KILLFOCUS, CBS_DROPDOWN, [&] { SetFocus(parent.window); }}};
    for (const auto &[code, style, steps] : ways)
    {
        make(style, fruit);
        const HWND ended = combo;
        parent.before = [code = code, ended](UINT message, WPARAM wParam, LPARAM, LRESULT &)
        {
            if (message == WM_COMMAND && HIWORD(wParam) == code)
            {
                DestroyWindow(ended);
            }
            return false;
        };
        steps();
        settle();
        EXPECT_FALSE(IsWindow(ended)) << code;
        parent.before = nullptr;
    }
}

TEST_F(ComboBoxes, InADialogEnterAndEscapeAreTheOpenListsOwn)
{
    zb::test::DialogHost host;
    zb::test::DialogBytes bytes(WS_POPUP | WS_VISIBLE, 0, 0, 100, 60);
    bytes.item(zb::DIALOG_COMBOBOX, CBS_DROPDOWNLIST | WS_TABSTOP, 4, 4, 60, 50, 7)
        .item(zb::DIALOG_COMBOBOX, CBS_DROPDOWN | WS_TABSTOP, 4, 24, 60, 50, 8)
        .item(zb::DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, 70, 4, 20, 12, 1, u"OK");
    const HWND dialog = CreateDialogIndirectParamW(nullptr, bytes.data(), nullptr, zb::test::DialogHost::procedure,
                                                   reinterpret_cast<LPARAM>(&host));
    for (const int id : {7, 8})
    {
        SendDlgItemMessageW(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"one"));
        SendDlgItemMessageW(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"two"));
    }
    const auto press = [dialog](int number)
    {
        zb::keyDown(number);
        zb::keyUp(number);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            if (IsDialogMessageW(dialog, &message) == FALSE)
            {
                DispatchMessageW(&message);
            }
        }
    };
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 7));
    host.clicked();
    press(VK_F4);
    press(VK_DOWN);
    press(VK_RETURN);
    EXPECT_EQ(host.clicked().size(), 0U);
    EXPECT_EQ(SendDlgItemMessageW(dialog, 7, CB_GETCURSEL, 0, 0), 0);
    press(VK_TAB);
    EXPECT_EQ(GetParent(GetFocus()), GetDlgItem(dialog, 8));
    press(VK_F4);
    press(VK_DOWN);
    press(VK_ESCAPE);
    EXPECT_EQ(host.clicked().size(), 0U);
    press(VK_F4);
    press(VK_DOWN);
    press(VK_TAB);
    EXPECT_EQ(SendDlgItemMessageW(dialog, 8, CB_GETCURSEL, 0, 0), 0) << "leaving keeps what keys came to";
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1));
    press(VK_ESCAPE);
    EXPECT_EQ(host.clicked(), std::vector<int>{IDCANCEL});
    DestroyWindow(dialog);
}
