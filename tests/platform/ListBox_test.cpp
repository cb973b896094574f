// The list box: every message, what the parent hears, keys and pen.
#include "platform/controls.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::pressKey;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::typeText;

class ListBoxes : public zb::test::TextTest
{
  protected:
    ~ListBoxes() override
    {
        zb::keyUp(VK_SHIFT);
        zb::keyUp(VK_CONTROL);
        DeleteObject(font);
    }
    HWND make(DWORD style, std::initializer_list<const WCHAR *> rows = {})
    {
        list = CreateWindowExW(0, u"LISTBOX", u"", style | WS_CHILD | WS_VISIBLE, 10, 10, 100, 80, parent.window,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(5)), nullptr, nullptr);
        SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        for (const WCHAR *row : rows)
        {
            send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row));
        }
        SetFocus(list);
        settle();
        parent.clear();
        return list;
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(list, message, wParam, lParam);
    }
    LRESULT sendText(UINT message, int row, const WCHAR *text) const
    {
        return send(message, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
    }
    std::u16string text(int row) const
    {
        const LRESULT length = send(LB_GETTEXTLEN, static_cast<WPARAM>(row));
        std::u16string text(static_cast<std::size_t>(length), u'\0');
        EXPECT_EQ(send(LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data())), length);
        return text;
    }
    void tapRow(int row) const
    {
        zb::test::tapAt(20, 10 + row * 20 + 5);
    }
    std::vector<int> chosen() const
    {
        std::vector<int> rows(static_cast<std::size_t>(send(LB_GETSELCOUNT)));
        EXPECT_EQ(send(LB_GETSELITEMS, rows.size(), reinterpret_cast<LPARAM>(rows.data())),
                  static_cast<LRESULT>(rows.size()));
        return rows;
    }
    std::vector<int> codes()
    {
        return parent.takeCodes(5, list);
    }
    using Codes = std::vector<int>;

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND list = nullptr;
};
} // namespace

TEST_F(ListBoxes, TheNumbersThatHostsSend)
{
    EXPECT_EQ(LB_ADDSTRING, 384U);
    EXPECT_EQ(LB_SETCURSEL, 390U);
    EXPECT_EQ(LB_GETCURSEL, 392U);
}

TEST_F(ListBoxes, RowsComeAndGo)
{
    make(LBS_NOTIFY);
    EXPECT_EQ(sendText(LB_ADDSTRING, 0, u"b"), 0);
    EXPECT_EQ(sendText(LB_ADDSTRING, 0, u"a"), 1);
    EXPECT_EQ(sendText(LB_INSERTSTRING, 1, u"c"), 1);
    EXPECT_EQ(sendText(LB_INSERTSTRING, -1, u"d"), 3);
    EXPECT_EQ(sendText(LB_INSERTSTRING, 9, u"e"), LB_ERR);
    EXPECT_EQ(send(LB_GETCOUNT), 4);
    EXPECT_EQ(text(1), u"c");
    EXPECT_EQ(send(LB_GETTEXTLEN, 4), LB_ERR);
    EXPECT_EQ(send(LB_SETITEMDATA, 1, 77), 0);
    EXPECT_EQ(send(LB_GETITEMDATA, 1), 77);
    EXPECT_EQ(send(LB_GETITEMDATA, 0), 0);
    EXPECT_EQ(send(LB_SETITEMDATA, 4, 1), LB_ERR);
    send(LB_SETCURSEL, 2);
    EXPECT_EQ(send(LB_DELETESTRING, 0), 3);
    EXPECT_EQ(send(LB_GETCURSEL), 1) << "the same row, under its new number";
    EXPECT_EQ(send(LB_GETITEMDATA, 0), 77);
    EXPECT_EQ(send(LB_DELETESTRING, 1), 2);
    EXPECT_EQ(send(LB_GETCURSEL), LB_ERR);
    EXPECT_EQ(send(LB_DELETESTRING, 5), LB_ERR);
    send(LB_RESETCONTENT);
    EXPECT_EQ(send(LB_GETCOUNT), 0);
    EXPECT_EQ(codes(), Codes{}) << "messages are silent";
}

TEST_F(ListBoxes, SortedRowsStandInTheOrderOfTheLocale)
{
    make(LBS_SORT, {u"b", u"C", u"a"});
    EXPECT_EQ(text(0), u"a");
    EXPECT_EQ(text(1), u"b");
    EXPECT_EQ(text(2), u"C");
    EXPECT_EQ(sendText(LB_ADDSTRING, 0, u"B"), 2) << "behind its equals";
    EXPECT_EQ(sendText(LB_INSERTSTRING, 0, u"z"), 0);
}

TEST_F(ListBoxes, FindingByBeginningAndByTheWhole)
{
    make(0, {u"alpha", u"beta", u"Alps"});
    EXPECT_EQ(sendText(LB_FINDSTRING, -1, u"AL"), 0);
    EXPECT_EQ(sendText(LB_FINDSTRING, 0, u"al"), 2);
    EXPECT_EQ(sendText(LB_FINDSTRING, 2, u"al"), 0) << "around at the end";
    EXPECT_EQ(sendText(LB_FINDSTRING, -1, u"x"), LB_ERR);
    EXPECT_EQ(sendText(LB_FINDSTRINGEXACT, -1, u"alp"), LB_ERR);
    EXPECT_EQ(sendText(LB_FINDSTRINGEXACT, -1, u"ALPS"), 2);
    EXPECT_EQ(sendText(LB_SELECTSTRING, -1, u"be"), 1);
    EXPECT_EQ(send(LB_GETCURSEL), 1);
}

TEST_F(ListBoxes, ChoosingOneByMessages)
{
    make(LBS_NOTIFY, {u"a", u"b"});
    EXPECT_EQ(send(LB_GETCURSEL), LB_ERR);
    EXPECT_EQ(send(LB_SETCURSEL, 1), 1);
    EXPECT_EQ(send(LB_GETSEL, 1), 1);
    EXPECT_EQ(send(LB_GETSEL, 0), 0);
    EXPECT_EQ(send(LB_SETCURSEL, 2), LB_ERR);
    EXPECT_EQ(send(LB_GETCURSEL), 1);
    EXPECT_EQ(send(LB_SETCURSEL, static_cast<WPARAM>(-1)), LB_ERR);
    EXPECT_EQ(send(LB_GETCURSEL), LB_ERR);
    EXPECT_EQ(send(LB_GETSELCOUNT), LB_ERR) << "of one choice";
    EXPECT_EQ(send(LB_SETSEL, 1, 0), LB_ERR);
    EXPECT_EQ(codes(), Codes{});
}

TEST_F(ListBoxes, ManyChoicesByMessages)
{
    make(LBS_MULTIPLESEL, {u"a", u"b", u"c", u"d"});
    EXPECT_EQ(send(LB_SETSEL, 1, 2), 0);
    EXPECT_EQ(send(LB_GETCARETINDEX), 2);
    EXPECT_EQ(chosen(), (Codes{2}));
    send(LB_SELITEMRANGE, 1, MAKELONG(0, 1));
    EXPECT_EQ(chosen(), (Codes{0, 1, 2}));
    send(LB_SELITEMRANGEEX, 2, 1);
    EXPECT_EQ(chosen(), (Codes{0}));
    send(LB_SETSEL, 1, -1);
    EXPECT_EQ(chosen(), (Codes{0, 1, 2, 3}));
    EXPECT_EQ(send(LB_SETSEL, 1, 4), LB_ERR);
    EXPECT_EQ(send(LB_SETCURSEL, 1), LB_ERR);
}

TEST_F(ListBoxes, KeysChooseAndAreTold)
{
    make(LBS_NOTIFY, {u"a", u"b", u"c", u"d", u"e", u"f", u"g"});
    pressKey(VK_DOWN);
    EXPECT_EQ(send(LB_GETCURSEL), 0) << "the first step chooses the first";
    pressKey(VK_DOWN);
    EXPECT_EQ(send(LB_GETCURSEL), 1);
    EXPECT_EQ(codes(), (Codes{LBN_SELCHANGE, LBN_SELCHANGE}));
    pressKey(VK_END);
    EXPECT_EQ(send(LB_GETCURSEL), 6);
    EXPECT_EQ(send(LB_GETTOPINDEX), 3) << "four rows of 20 can be seen";
    pressKey(VK_PRIOR);
    EXPECT_EQ(send(LB_GETCURSEL), 3);
    pressKey(VK_HOME);
    codes();
    pressKey(VK_UP);
    EXPECT_EQ(codes(), Codes{}) << "already the first";
    SetFocus(parent.window);
    EXPECT_EQ(codes(), Codes{LBN_KILLFOCUS});
}

TEST_F(ListBoxes, TypedLettersGoToRows)
{
    make(LBS_NOTIFY, {u"apple", u"banana", u"blueberry", u"cherry"});
    typeText(u"b");
    EXPECT_EQ(send(LB_GETCURSEL), 1);
    typeText(u"b");
    EXPECT_EQ(send(LB_GETCURSEL), 2) << "the same letter goes on";
    Sleep(1100);
    typeText(u"bl");
    EXPECT_EQ(send(LB_GETCURSEL), 2);
    Sleep(1100);
    typeText(u"C");
    EXPECT_EQ(send(LB_GETCURSEL), 3);
}

TEST_F(ListBoxes, ThePenChooses)
{
    make(LBS_NOTIFY, {u"a", u"b", u"c"});
    tapRow(1);
    EXPECT_EQ(send(LB_GETCURSEL), 1);
    EXPECT_EQ(codes(), Codes{LBN_SELCHANGE});
    tapRow(1);
    EXPECT_EQ(codes(), Codes{LBN_DBLCLK});
    tapRow(3);
    EXPECT_EQ(codes(), Codes{}) << "behind the rows";
    EXPECT_EQ(send(LB_GETCURSEL), 1);
}

TEST_F(ListBoxes, ExtendedChoices)
{
    make(LBS_NOTIFY | LBS_EXTENDEDSEL, {u"a", u"b", u"c", u"d"});
    tapRow(1);
    EXPECT_EQ(chosen(), (Codes{1}));
    pressKey(VK_DOWN, {VK_SHIFT});
    EXPECT_EQ(chosen(), (Codes{1, 2}));
    zb::keyDown(VK_CONTROL);
    tapRow(3);
    zb::keyUp(VK_CONTROL);
    EXPECT_EQ(chosen(), (Codes{1, 2, 3}));
    tapRow(0);
    EXPECT_EQ(chosen(), (Codes{0}));
}

TEST_F(ListBoxes, PlacesOfRows)
{
    make(0, {u"a", u"b", u"c", u"d", u"e", u"f"});
    EXPECT_EQ(send(LB_GETITEMHEIGHT), 20) << "never too low for a finger";
    RECT box{};
    EXPECT_EQ(send(LB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&box)), 1);
    EXPECT_EQ(box.top, 20);
    EXPECT_EQ(box.bottom, 40);
    EXPECT_EQ(send(LB_ITEMFROMPOINT, 0, MAKELONG(5, 25)), MAKELONG(1, 0));
    EXPECT_EQ(send(LB_ITEMFROMPOINT, 0, MAKELONG(500, 25)), MAKELONG(1, 1));
    EXPECT_EQ(send(LB_SETTOPINDEX, 1), 0);
    EXPECT_EQ(send(LB_GETTOPINDEX), 1);
    send(LB_SETTOPINDEX, 5);
    EXPECT_EQ(send(LB_GETTOPINDEX), 2) << "no empty rows";
    EXPECT_EQ(send(LB_SETITEMHEIGHT, 0, 10), 0);
    EXPECT_EQ(send(LB_GETITEMHEIGHT), 10);
    EXPECT_EQ(send(LB_SETITEMHEIGHT, 0, 0), LB_ERR);
}
