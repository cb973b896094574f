// Buttons and statics: states, pen, keys, what the parent hears, and how they look.
#include "platform/controls.h"
#include "platform/image_list.h"
#include "platform/resources.h"
#include "support/DialogBytes.h"
#include "support/PenAndKeys.h"
#include "support/Picture.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::tapAt;
using zb::test::TestDevice;

constexpr COLORREF white = RGB(255, 255, 255);

class Buttons : public ::testing::Test
{
  protected:
    HWND make(DWORD style, int x = 10, int y = 10, int id = 5, const WCHAR *className = u"BUTTON",
              const WCHAR *text = u"Text")
    {
        return CreateWindowExW(0, className, text, style | WS_CHILD | WS_VISIBLE, x, y, 60, 20, parent.window,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(id)), nullptr, nullptr);
    }
    /// Notification codes of WM_COMMAND from control 5, and then nothing.
    std::vector<int> codes()
    {
        return parent.takeCodes(5);
    }
    using Codes = std::vector<int>;

    TestDevice device{zb::test::withScreen(200, 150)};
    ScreenWindow parent{white, WS_POPUP | WS_VISIBLE, 0, 0, 200, 150};
};
} // namespace

TEST_F(Buttons, ATapClicksWhenItEndsInside)
{
    const HWND button = make(BS_PUSHBUTTON | BS_NOTIFY);
    settle();
    zb::penDown(20, 20);
    settle();
    EXPECT_EQ(SendMessageW(button, BM_GETSTATE, 0, 0), static_cast<LRESULT>(BST_PUSHED | BST_FOCUS));
    EXPECT_EQ(GetFocus(), button);
    zb::penMove(150, 100);
    settle();
    EXPECT_EQ(SendMessageW(button, BM_GETSTATE, 0, 0), static_cast<LRESULT>(BST_FOCUS));
    zb::penMove(20, 20);
    settle();
    zb::penUp(20, 20);
    settle();
    EXPECT_EQ(codes(), (Codes{BN_SETFOCUS, BN_CLICKED}));
    zb::penDown(20, 20);
    settle();
    zb::penUp(150, 100);
    settle();
    EXPECT_EQ(codes(), Codes{});
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(Buttons, TheSpaceBarClicksWhenItIsLetGo)
{
    const HWND button = make(BS_PUSHBUTTON | BS_NOTIFY);
    SetFocus(button);
    codes();
    zb::keyDown(VK_SPACE);
    settle();
    EXPECT_EQ(codes(), Codes{});
    EXPECT_NE(SendMessageW(button, BM_GETSTATE, 0, 0) & BST_PUSHED, 0);
    zb::keyUp(VK_SPACE);
    settle();
    EXPECT_EQ(codes(), Codes{BN_CLICKED});
    zb::keyDown(VK_SPACE);
    settle();
    SetFocus(parent.window);
    zb::keyUp(VK_SPACE);
    settle();
    EXPECT_EQ(codes(), Codes{BN_KILLFOCUS});
}

TEST_F(Buttons, TheFocusIsToldOnlyWhenAsked)
{
    const HWND button = make(BS_PUSHBUTTON);
    SetFocus(button);
    SetFocus(parent.window);
    EXPECT_EQ(codes(), Codes{});
}

TEST_F(Buttons, ADisabledButtonTakesNothing)
{
    const HWND button = make(BS_PUSHBUTTON);
    EnableWindow(button, FALSE);
    tapAt(20, 20);
    EXPECT_EQ(codes(), Codes{});
}

TEST_F(Buttons, CheckBoxesChangeByThemselvesOrNot)
{
    const HWND automatic = make(BS_AUTOCHECKBOX);
    tapAt(20, 20);
    EXPECT_EQ(SendMessageW(automatic, BM_GETCHECK, 0, 0), 1);
    Sleep(600); // no double tap
    tapAt(20, 20);
    EXPECT_EQ(SendMessageW(automatic, BM_GETCHECK, 0, 0), 0);
    SendMessageW(automatic, BM_SETCHECK, 2, 0);
    EXPECT_EQ(SendMessageW(automatic, BM_GETCHECK, 0, 0), 1) << "it has two states";
    DestroyWindow(automatic);
    const HWND plain = make(BS_CHECKBOX);
    SendMessageW(plain, BM_CLICK, 0, 0);
    EXPECT_EQ(SendMessageW(plain, BM_GETCHECK, 0, 0), 0);
    DestroyWindow(plain);
    const HWND three = make(BS_AUTO3STATE);
    for (const LRESULT expected : {1, 2, 0, 1})
    {
        SendMessageW(three, BM_CLICK, 0, 0);
        EXPECT_EQ(SendMessageW(three, BM_GETCHECK, 0, 0), expected);
    }
}

TEST_F(Buttons, OnlyOneRadioButtonOfAGroupIsChosen)
{
    const HWND a = make(BS_AUTORADIOBUTTON | WS_GROUP, 10, 10, 1);
    const HWND b = make(BS_AUTORADIOBUTTON, 10, 40, 2);
    const HWND other = make(BS_AUTORADIOBUTTON | WS_GROUP, 10, 70, 3);
    SendMessageW(other, BM_SETCHECK, 1, 0);
    SendMessageW(a, BM_CLICK, 0, 0);
    EXPECT_EQ(SendMessageW(a, BM_GETCHECK, 0, 0), 1);
    SendMessageW(b, BM_CLICK, 0, 0);
    EXPECT_EQ(SendMessageW(a, BM_GETCHECK, 0, 0), 0);
    EXPECT_EQ(SendMessageW(b, BM_GETCHECK, 0, 0), 1);
    EXPECT_EQ(SendMessageW(other, BM_GETCHECK, 0, 0), 1) << "of another group";
}

TEST_F(Buttons, WhatAButtonTellsItsDialog)
{
    const std::pair<DWORD, LRESULT> cases[] = {{BS_PUSHBUTTON, DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON},
                                               {BS_DEFPUSHBUTTON, DLGC_BUTTON | DLGC_DEFPUSHBUTTON},
                                               {BS_AUTOCHECKBOX, DLGC_BUTTON},
                                               {BS_AUTORADIOBUTTON, DLGC_BUTTON | DLGC_RADIOBUTTON},
                                               {BS_GROUPBOX, DLGC_STATIC},
                                               {BS_OWNERDRAW, DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON}};
    for (const auto &[style, code] : cases)
    {
        const HWND button = make(style);
        EXPECT_EQ(SendMessageW(button, WM_GETDLGCODE, 0, 0), code) << style;
        DestroyWindow(button);
    }
    const HWND button = make(BS_PUSHBUTTON);
    SendMessageW(button, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    EXPECT_EQ(SendMessageW(button, WM_GETDLGCODE, 0, 0), DLGC_BUTTON | DLGC_DEFPUSHBUTTON);
}

TEST_F(Buttons, TheParentDrawsAnOwnerDrawnButton)
{
    DRAWITEMSTRUCT last{};
    int drawn = 0;
    parent.before = [&](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &)
    {
        if (message == WM_DRAWITEM)
        {
            last = *reinterpret_cast<const DRAWITEMSTRUCT *>(lParam);
            EXPECT_EQ(wParam, 5U);
            const HBRUSH brush = CreateSolidBrush(RGB(9, 8, 7));
            FillRect(last.hDC, &last.rcItem, brush);
            DeleteObject(brush);
            ++drawn;
        }
        return false;
    };
    const HWND button = make(BS_OWNERDRAW);
    settle();
    EXPECT_EQ(drawn, 1);
    EXPECT_EQ(last.CtlType, ODT_BUTTON);
    EXPECT_EQ(last.hwndItem, button);
    EXPECT_EQ(last.itemState, 0U);
    EXPECT_EQ(last.rcItem.right, 60);
    EXPECT_EQ(zb::test::screenPixel(15, 15), RGB(9, 8, 7));
    zb::penDown(20, 20);
    settle();
    EXPECT_EQ(last.itemState, ODS_SELECTED | ODS_FOCUS);
    zb::penUp(20, 20);
    settle();
    EXPECT_EQ(last.itemAction, ODA_SELECT);
    EnableWindow(button, FALSE);
    settle();
    EXPECT_NE(last.itemState & ODS_DISABLED, 0U);
}

TEST_F(Buttons, TheParentMayChooseColoursAndBackground)
{
    const HBRUSH yellow = CreateSolidBrush(RGB(255, 255, 0));
    parent.before = [yellow](UINT message, WPARAM, LPARAM, LRESULT &result)
    {
        result = reinterpret_cast<LRESULT>(yellow);
        return message == WM_CTLCOLORSTATIC;
    };
    make(SS_LEFT, 10, 10, 5, u"STATIC", u"");
    make(BS_AUTOCHECKBOX, 10, 40, 6, u"BUTTON", u"");
    settle();
    EXPECT_EQ(zb::test::screenPixel(60, 15), RGB(255, 255, 0));
    EXPECT_EQ(zb::test::screenPixel(60, 45), RGB(255, 255, 0));
    DeleteObject(yellow);
}

TEST_F(Buttons, AStaticShowsAPictureByNumberAndGivesTheFormerBack)
{
    const HWND control = make(SS_BITMAP, 10, 10, 5, u"STATIC", u"#503");
    settle();
    EXPECT_NE(zb::test::screenPixel(18, 17), white) << "the triangle";
    const auto former = reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
    ASSERT_NE(former, nullptr);
    const HDC screen = GetDC(nullptr);
    const HBITMAP other = CreateCompatibleBitmap(screen, 8, 8);
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(other)),
              reinterpret_cast<LRESULT>(former));
    settle();
    EXPECT_EQ(zb::test::screenPixel(11, 11), RGB(0, 0, 0));
    DestroyWindow(control);
    EXPECT_TRUE(DeleteObject(former)) << "the caller's";
    EXPECT_TRUE(DeleteObject(other)) << "and not the control's";
}

TEST_F(Buttons, AStaticTellsOfTapsOnlyWhenAsked)
{
    make(SS_LEFT, 10, 10, 5, u"STATIC");
    tapAt(20, 20);
    EXPECT_EQ(codes(), Codes{});
    DestroyWindow(GetDlgItem(parent.window, 5));
    make(SS_LEFT | SS_NOTIFY, 10, 10, 5, u"STATIC");
    tapAt(20, 20);
    EXPECT_EQ(codes(), Codes{STN_CLICKED});
}

TEST_F(Buttons, AButtonMayEndItselfInItsClick)
{
    const HWND button = make(BS_PUSHBUTTON);
    parent.before = [button](UINT message, WPARAM wParam, LPARAM, LRESULT &)
    {
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
        {
            DestroyWindow(button);
        }
        return false;
    };
    tapAt(20, 20);
    EXPECT_FALSE(IsWindow(button));
    const HWND again = make(BS_AUTORADIOBUTTON);
    SendMessageW(again, BM_CLICK, 0, 0);
    settle();
}
