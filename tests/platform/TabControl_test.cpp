// The tab control: its messages, places of tabs, choosing by pen and keys, tabs that do not fit.
#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/tab_control.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::pressKey;
using zb::test::ScreenWindow;
using zb::test::settle;

/// In the test face a letter is 5 wide at 10 pixels, so a tab of "aaaa" is 20 and twice the padding of 9.
class TabControls : public zb::test::TextTest
{
  protected:
    ~TabControls() override
    {
        DeleteObject(font);
    }
    void make(DWORD style, std::initializer_list<const WCHAR *> words)
    {
        tabs = CreateWindowExW(0, WC_TABCONTROLW, u"", style | WS_CHILD | WS_VISIBLE, 10, 10, 150, 100, parent.window,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(5)), nullptr, nullptr);
        SendMessageW(tabs, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        for (const WCHAR *one : words)
        {
            insert(99, one);
        }
        settle();
        parent.clear();
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(tabs, message, wParam, lParam);
    }
    LRESULT insert(int before, std::u16string text, LPARAM data = 0) const
    {
        const TCITEMW item{TCIF_TEXT | TCIF_PARAM, 0, 0, text.data(), 0, -1, data};
        return send(TCM_INSERTITEMW, static_cast<WPARAM>(before), reinterpret_cast<LPARAM>(&item));
    }
    std::u16string text(int index) const
    {
        WCHAR buffer[50];
        TCITEMW item{TCIF_TEXT, 0, 0, buffer, 50, 0, 0};
        EXPECT_TRUE(send(TCM_GETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item)));
        return buffer;
    }
    RECT box(int index) const
    {
        RECT box{};
        EXPECT_TRUE(send(TCM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&box)));
        return box;
    }
    static void tap(int x, int y)
    {
        zb::test::tapAt(10 + x, 10 + y);
    }
    /// The codes of all notifications, and what was chosen when each came.
    void listen()
    {
        parent.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            if (message != WM_NOTIFY)
            {
                return false;
            }
            const auto &header = *reinterpret_cast<const NMHDR *>(lParam);
            EXPECT_EQ(wParam, 5U);
            EXPECT_EQ(header.hwndFrom, tabs);
            EXPECT_EQ(header.idFrom, 5U);
            if (header.code != TCN_KEYDOWN)
            {
                heard.emplace_back(header.code, send(TCM_GETCURSEL));
            }
            result = header.code == TCN_SELCHANGING && refuses ? TRUE : FALSE;
            return true;
        };
    }
    using Heard = std::vector<std::pair<UINT, LRESULT>>;

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 240, 200};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND tabs = nullptr;
    Heard heard;
    bool refuses = false;
};
} // namespace

TEST_F(TabControls, TheNumbersThatHostsSend)
{
    EXPECT_EQ(TCM_GETITEMCOUNT, 0x1304U);
    EXPECT_EQ(TCM_GETCURSEL, 0x130BU);
    EXPECT_EQ(TCM_SETCURSEL, 0x130CU);
    EXPECT_EQ(TCM_ADJUSTRECT, 0x1328U);
    EXPECT_EQ(TCM_INSERTITEMW, 0x133EU);
    EXPECT_EQ(static_cast<int>(TCN_SELCHANGE), -551);
    EXPECT_EQ(static_cast<int>(TCN_SELCHANGING), -552);
}

TEST_F(TabControls, TabsComeAndGo)
{
    make(0, {});
    EXPECT_EQ(send(TCM_GETCURSEL), -1);
    EXPECT_EQ(send(TCM_GETROWCOUNT), 0);
    EXPECT_EQ(insert(0, u"b", 7), 0);
    EXPECT_EQ(send(TCM_GETCURSEL), 0) << "the first is chosen";
    EXPECT_EQ(insert(0, u"a"), 0);
    EXPECT_EQ(send(TCM_GETCURSEL), 1) << "the same tab";
    EXPECT_EQ(insert(50, u"c"), 2);
    EXPECT_EQ(insert(-1, u"d"), -1);
    EXPECT_EQ(send(TCM_GETITEMCOUNT), 3);
    EXPECT_EQ(send(TCM_GETROWCOUNT), 1);
    EXPECT_EQ(text(1), u"b");
    WCHAR changed[] = u"changed";
    TCITEMW item{TCIF_TEXT, 0, 0, changed, 0, 0, 0};
    EXPECT_TRUE(send(TCM_SETITEMW, 1, reinterpret_cast<LPARAM>(&item)));
    EXPECT_EQ(text(1), u"changed");
    WCHAR few[4];
    item = {TCIF_TEXT | TCIF_PARAM | TCIF_IMAGE, 0, 0, few, 4, 0, 0};
    EXPECT_TRUE(send(TCM_GETITEMW, 1, reinterpret_cast<LPARAM>(&item)));
    EXPECT_EQ(std::u16string(few), u"cha");
    EXPECT_EQ(item.lParam, 7);
    EXPECT_EQ(item.iImage, -1);
    EXPECT_FALSE(send(TCM_GETITEMW, 3, reinterpret_cast<LPARAM>(&item)));
    EXPECT_EQ(send(TCM_SETCURSEL, 2), 1);
    EXPECT_EQ(send(TCM_SETCURSEL, 3), -1);
    EXPECT_EQ(send(TCM_GETCURSEL), 2);
    EXPECT_TRUE(send(TCM_DELETEITEM, 0));
    EXPECT_EQ(send(TCM_GETCURSEL), 1);
    EXPECT_TRUE(send(TCM_DELETEITEM, 1));
    EXPECT_EQ(send(TCM_GETCURSEL), -1);
    EXPECT_FALSE(send(TCM_DELETEITEM, 1));
    EXPECT_TRUE(send(TCM_DELETEALLITEMS));
    EXPECT_EQ(send(TCM_GETITEMCOUNT), 0);
    EXPECT_EQ(parent.count(WM_NOTIFY), 0) << "messages are silent";
}

TEST_F(TabControls, PlacesAboveAndBelow)
{
    make(0, {u"aaaa", u"aa"});
    EXPECT_TRUE(zb::test::is(box(0), 0, 0, 38, 24)) << "never too low for a finger";
    EXPECT_TRUE(zb::test::is(box(1), 38, 0, 38 + 28, 24));
    RECT area{0, 0, 150, 100};
    send(TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    EXPECT_TRUE(zb::test::is(area, 0, 24, 150, 100));
    send(TCM_ADJUSTRECT, TRUE, reinterpret_cast<LPARAM>(&area));
    EXPECT_TRUE(zb::test::is(area, 0, 0, 150, 100));
    DestroyWindow(tabs);
    make(TCS_BOTTOM, {u"aaaa", u"aa"});
    EXPECT_TRUE(zb::test::is(box(1), 38, 76, 66, 100));
    send(TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    EXPECT_TRUE(zb::test::is(area, 0, 0, 150, 76));
    TCHITTESTINFO hit{{40, 80}, 0};
    EXPECT_EQ(send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)), 1);
    EXPECT_EQ(hit.flags, TCHT_ONITEMLABEL);
    hit = {{40, 50}, 0};
    EXPECT_EQ(send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)), -1);
    EXPECT_EQ(hit.flags, TCHT_NOWHERE);
    send(TCM_SETPADDING, 0, MAKELONG(20, 3));
    EXPECT_EQ(box(0).right, 60);
}

TEST_F(TabControls, PicturesStandLeftOfTheWords)
{
    make(0, {u"aaaa", u"aaaa"});
    const HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32, 1, 1);
    EXPECT_EQ(send(TCM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images)), 0);
    EXPECT_EQ(send(TCM_GETIMAGELIST), reinterpret_cast<LRESULT>(images));
    const TCITEMW item{TCIF_IMAGE, 0, 0, nullptr, 0, 0, 0};
    EXPECT_TRUE(send(TCM_SETITEMW, 1, reinterpret_cast<LPARAM>(&item)));
    EXPECT_EQ(box(0).right, 38) << "without one";
    EXPECT_EQ(box(1).right, 38 + 38 + 16 + 4);
    TCHITTESTINFO hit{{38 + 9 + 15, 10}, 0};
    EXPECT_EQ(send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)), 1);
    EXPECT_EQ(hit.flags, TCHT_ONITEMICON);
    hit = {{38 + 9 + 16, 10}, 0};
    send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    EXPECT_EQ(hit.flags, TCHT_ONITEMLABEL);
    EXPECT_EQ(send(TCM_SETIMAGELIST, 0, 0), reinterpret_cast<LRESULT>(images));
    EXPECT_EQ(box(1).right, 76);
    ImageList_Destroy(images);
}

TEST_F(TabControls, TabsOfOneWidth)
{
    make(TCS_FIXEDWIDTH, {u"aaaa", u"a"});
    EXPECT_EQ(box(1).right, 76) << "that of the widest";
    EXPECT_EQ(send(TCM_SETITEMSIZE, 0, MAKELONG(50, 30)), MAKELONG(0, 24));
    EXPECT_TRUE(zb::test::is(box(1), 50, 0, 100, 30));
}

TEST_F(TabControls, ATapChoosesAndIsToldBeforeAndAfter)
{
    make(TCS_BOTTOM, {u"aaaa", u"aa"});
    listen();
    tap(40, 80);
    EXPECT_EQ(heard, (Heard{{TCN_SELCHANGING, 0}, {TCN_SELCHANGE, 1}}));
    heard.clear();
    tap(40, 80);
    tap(40, 50);
    EXPECT_EQ(heard, Heard{}) << "the same one, and none";
    refuses = true;
    tap(10, 80);
    EXPECT_EQ(heard, (Heard{{TCN_SELCHANGING, 1}}));
    EXPECT_EQ(send(TCM_GETCURSEL), 1);
}

TEST_F(TabControls, KeysChoose)
{
    make(0, {u"a", u"b", u"c"});
    SetFocus(tabs);
    listen();
    pressKey(VK_RIGHT);
    EXPECT_EQ(heard, (Heard{{TCN_SELCHANGING, 0}, {TCN_SELCHANGE, 1}}));
    pressKey(VK_END);
    EXPECT_EQ(send(TCM_GETCURSEL), 2);
    pressKey(VK_RIGHT);
    EXPECT_EQ(send(TCM_GETCURSEL), 2) << "not around";
    pressKey(VK_LEFT);
    EXPECT_EQ(send(TCM_GETCURSEL), 1);
    pressKey(VK_HOME);
    EXPECT_EQ(send(TCM_GETCURSEL), 0);
    heard.clear();
    send(TCM_SETCURFOCUS, 2);
    EXPECT_EQ(heard, (Heard{{TCN_SELCHANGING, 0}, {TCN_SELCHANGE, 2}}));
    MSG about{tabs, WM_KEYDOWN, VK_LEFT, 0, 0, {}};
    EXPECT_EQ(send(WM_GETDLGCODE, VK_LEFT, reinterpret_cast<LPARAM>(&about)), DLGC_WANTARROWS);
    about.wParam = VK_DOWN;
    EXPECT_EQ(send(WM_GETDLGCODE, VK_DOWN, reinterpret_cast<LPARAM>(&about)), 0) << "leads on to other controls";
}

TEST_F(TabControls, ATapBringsTheFocusOnlyWhereThatIsAskedFor)
{
    make(0, {u"a", u"b"});
    SetFocus(parent.window);
    tap(40, 10);
    EXPECT_EQ(GetFocus(), parent.window);
    SetWindowLongW(tabs, GWL_STYLE, GetWindowLongW(tabs, GWL_STYLE) | static_cast<LONG_PTR>(TCS_FOCUSONBUTTONDOWN));
    tap(10, 10);
    EXPECT_EQ(GetFocus(), tabs);
}

TEST_F(TabControls, TabsThatDoNotFitGiveUpRoomFirst)
{
    make(0, {u"aaaaa", u"aaaaa", u"aaaaa", u"aaaaa"});
    // Four of 25 with 9 on each side are 172; in 150 there is room for 6 on each side.
    EXPECT_EQ(box(1).left, 37);
    EXPECT_EQ(box(3).right, 148);
}

TEST_F(TabControls, TabsThatDoNotFitAtAllScroll)
{
    make(0, {u"aaaaaa", u"bbbbbb", u"cccccc", u"dddddd", u"eeeeee"});
    // Each is 30 and 5 on each side; two arrows of 20 leave 110.
    EXPECT_EQ(box(1).left, 40);
    tap(140, 10);
    EXPECT_EQ(box(1).left, 0);
    EXPECT_EQ(send(TCM_GETCURSEL), 0) << "scrolling chooses none";
    for (int i = 0; i < 6; ++i)
    {
        tap(140, 10);
    }
    EXPECT_EQ(box(3).left, 0) << "no farther than the last one needs";
    tap(120, 10);
    EXPECT_EQ(box(2).left, 0);
    send(TCM_SETCURSEL, 0);
    EXPECT_EQ(box(0).left, 0) << "what is chosen is seen";
    send(TCM_SETCURSEL, 2);
    EXPECT_EQ(box(2).right, 80) << "whole";
    tap(90, 10);
    EXPECT_EQ(send(TCM_GETCURSEL), 3);
    MoveWindow(tabs, 10, 10, 210, 100, TRUE);
    EXPECT_EQ(box(0).left, 0) << "all fit now";
}

TEST_F(TabControls, AHostMayEndItInAnswer)
{
    for (const UINT code : {TCN_SELCHANGING, TCN_SELCHANGE, TCN_KEYDOWN})
    {
        make(0, {u"a", u"b"});
        SetFocus(tabs);
        parent.before = [this, code](UINT message, WPARAM, LPARAM lParam, LRESULT &)
        {
            if (message == WM_NOTIFY && reinterpret_cast<const NMHDR *>(lParam)->code == code)
            {
                DestroyWindow(tabs);
            }
            return false;
        };
        pressKey(VK_RIGHT);
        EXPECT_FALSE(IsWindow(tabs)) << code;
    }
}
