// Dialogs as objects: from the template to the end, what reaches them and when.
#include "framework/CeDialog.h"
#include "framework/CeGetAppWindow.h"
#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/screen.h"
#include "platform/shell.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;

const WCHAR *const usable = MAKEINTRESOURCEW(7);
constexpr int other = 11;

class Probe : public CeDialog
{
  public:
    using CeDialog::CeDialog;
    std::vector<std::string> calls;
    std::function<void()> atInit;
    bool throws = false;

    bool isInInit() const
    {
        return m_bInInit;
    }
    LRESULT OnInitDialog(HWND focus, LPARAM lParam) override
    {
        calls.push_back("init");
        const LRESULT result = CeDialog::OnInitDialog(focus, lParam);
        if (atInit)
        {
            atInit();
        }
        return result;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM, bool &handled) override
    {
        calls.push_back("command " + std::to_string(LOWORD(wParam)) + " " + std::to_string(HIWORD(wParam)));
        if (throws)
        {
            throw std::runtime_error("trouble");
        }
        handled = true;
        return 55;
    }
    std::vector<std::pair<WPARAM, LPARAM>> *nextControl = nullptr;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        if (message == 40 && nextControl != nullptr)
        {
            nextControl->emplace_back(wParam, lParam);
        }
        return CeDialog::OnMessage(message, wParam, lParam, handled);
    }
    LRESULT OnNotify(WPARAM, LPARAM, bool &handled) override
    {
        calls.push_back("notify");
        handled = true;
        return 66;
    }
    void OnOK() override
    {
        calls.push_back("ok");
        CeDialog::OnOK();
    }
    void OnCancel() override
    {
        calls.push_back("cancel");
        CeDialog::OnCancel();
    }
    LRESULT OnCtlColorStatic(HDC, HWND, bool &handled) override
    {
        handled = true;
        return reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH));
    }
    void OnFinalMessage(HWND) override
    {
        calls.push_back("final");
    }
};

using Calls = std::vector<std::string>;

class CeDialogTest : public ::testing::Test
{
  protected:
    CeDialogTest() : module(LoadLibraryW(u"ZBTestModule"))
    {
    }
    ~CeDialogTest() override
    {
        FreeLibrary(module);
    }
    static zb::DeviceOptions options(std::vector<std::u16string> &shown)
    {
        zb::DeviceOptions options;
        options.screen = {640, 480, 96};
        options.messageBox = [&shown](std::u16string_view text, std::u16string_view caption, UINT flags)
        {
            shown.push_back(std::u16string(caption) + u"|" + std::u16string(text));
            EXPECT_EQ(flags, 0x10U);
            return IDOK;
        };
        return options;
    }

    std::vector<std::u16string> shown;
    zb::test::TestDevice device{options(shown)};
    HMODULE module;
};
} // namespace

TEST_F(CeDialogTest, AModelessDialogLivesUntilItIsDestroyed)
{
    Probe dialog;
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    EXPECT_EQ(dialog.calls, Calls{"init"});
    EXPECT_NE(GetDlgItem(dialog, other), nullptr);
    SendMessageW(GetDlgItem(dialog, other), BM_CLICK, 0, 0);
    EXPECT_EQ(dialog.calls.back(), "command 11 0");
    EXPECT_EQ(SendMessageW(dialog, WM_COMMAND, other, 0), 55);
    EXPECT_EQ(SendMessageW(dialog, WM_NOTIFY, 0, 0), 66);
    DestroyWindow(dialog);
    EXPECT_EQ(dialog.calls.back(), "final");
    EXPECT_EQ(dialog.GetHwnd(), nullptr);
    EXPECT_FALSE(dialog.Create(MAKEINTRESOURCEW(999), nullptr, module));
}

TEST_F(CeDialogTest, NothingReachesItWhileItIsInitialised)
{
    Probe dialog;
    dialog.atInit = [&dialog]
    {
        EXPECT_TRUE(dialog.isInInit());
        EXPECT_EQ(SendMessageW(dialog, WM_COMMAND, other, 0), 0);
        EXPECT_EQ(SendMessageW(dialog, WM_NOTIFY, 0, 0), 0);
    };
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    EXPECT_EQ(dialog.calls, Calls{"init"});
    EXPECT_FALSE(dialog.isInInit());
    DestroyWindow(dialog);
}

TEST_F(CeDialogTest, ButItsEndIsHeardThen)
{
    for (const int id : {IDOK, IDCANCEL})
    {
        Probe dialog;
        dialog.atInit = [&dialog, id] { SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0); };
        EXPECT_EQ(dialog.DoModal(usable, nullptr, module), id);
        EXPECT_EQ(dialog.calls, (Calls{"init", id == IDOK ? "ok" : "cancel", "final"}));
    }
}

TEST_F(CeDialogTest, WhatADialogLeavesToItsDefaultsEndsIt)
{
    class Plain : public CeBaseDialog
    {
      public:
        LRESULT OnInitDialog(HWND focus, LPARAM lParam) override
        {
            EXPECT_NE(CeBaseDialog::OnInitDialog(focus, lParam), 0) << "the first control is to get the focus";
            bool handled = false;
            EXPECT_EQ(OnCtlColorStatic(nullptr, nullptr, handled), 0);
            EXPECT_FALSE(handled);
            PostMessageW(m_hWnd, WM_COMMAND, IDOK, 0);
            return 1;
        }
    };
    Plain dialog;
    EXPECT_EQ(dialog.DoModal(usable, nullptr, module), IDOK);
}

TEST_F(CeDialogTest, AModalDialogIsCentredAndEndsWithOkOrCancel)
{
    for (const int button : {IDOK, IDCANCEL})
    {
        Probe dialog;
        dialog.atInit = [&dialog, button]
        {
            RECT place{};
            GetWindowRect(dialog, &place);
            EXPECT_LE(std::abs(place.left + place.right - 640), 1);
            EXPECT_LE(std::abs(place.top + place.bottom - 480), 1);
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
        };
        EXPECT_EQ(dialog.DoModal(usable, nullptr, module), button);
        EXPECT_EQ(dialog.calls, (Calls{"init", button == IDOK ? "ok" : "cancel", "final"}));
    }
    Probe none;
    EXPECT_EQ(none.DoModal(MAKEINTRESOURCEW(999), nullptr, module), -1);
}

TEST_F(CeDialogTest, TheOwnerOfAModalDialogIsTheTopLevelWindowOrTheApplications)
{
    ScreenWindow application(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 200, 200);
    ScreenWindow child(RGB(2, 2, 2), WS_CHILD | WS_VISIBLE, 0, 0, 100, 100, application.window);
    for (const HWND parent : {static_cast<HWND>(nullptr), child.window})
    {
        Probe dialog;
        HWND owner = nullptr;
        dialog.atInit = [&]
        {
            owner = GetWindow(dialog, GW_OWNER);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        };
        dialog.DoModal(usable, parent, module);
        EXPECT_EQ(owner, application.window);
    }
    ScreenWindow owned(RGB(2, 2, 2), WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, application.window);
    EXPECT_EQ(GetActiveWindow(), owned.window);
    EXPECT_EQ(CeGetAppWindow(), application.window);
}

TEST_F(CeDialogTest, AnExceptionIsToldAndTheDialogGoesOn)
{
    Probe dialog;
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    dialog.throws = true;
    SendMessageW(dialog, WM_COMMAND, other, 0);
    EXPECT_EQ(shown,
              std::vector<std::u16string>{u"Fatal|Window message terminated abnormally by an exception"});
    MSG message{};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    dialog.throws = false;
    EXPECT_EQ(SendMessageW(dialog, WM_COMMAND, other, 0), 55);
    DestroyWindow(dialog);
}

TEST_F(CeDialogTest, MessagesAreOfferedToAllModelessDialogs)
{
    Probe one;
    Probe two;
    ASSERT_TRUE(one.Create(usable, nullptr, module));
    ASSERT_TRUE(two.Create(usable, nullptr, module));
    SetFocus(GetDlgItem(one, IDOK));
    MSG tab{GetDlgItem(one, IDOK), WM_KEYDOWN, VK_TAB, 1, 0, {0, 0}};
    EXPECT_TRUE(CeBaseDialog::IsDialogMsg(&tab));
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), IDCANCEL);
    const ScreenWindow elsewhere(RGB(1, 1, 1), WS_POPUP, 0, 0, 10, 10);
    tab.hwnd = elsewhere.window;
    EXPECT_FALSE(CeBaseDialog::IsDialogMsg(&tab));
    const HWND gone = one;
    DestroyWindow(one);
    tab.hwnd = gone;
    EXPECT_FALSE(CeBaseDialog::IsDialogMsg(&tab));
    DestroyWindow(two);
}

TEST_F(CeDialogTest, AnInputPanelsNextKeyMovesTheFocus)
{
    Probe dialog;
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    ShowWindow(dialog, SW_SHOW);
    const HWND from = GetDlgItem(dialog, other);
    const HWND next = GetWindow(from, 2);
    ASSERT_NE(next, nullptr);
    SetFocus(from);
    std::vector<std::pair<WPARAM, LPARAM>> moves;
    dialog.nextControl = &moves;
    SendMessageW(dialog, WM_COMMAND, MAKELONG(other, 0xFFFF), 0);
    EXPECT_EQ(moves, (std::vector<std::pair<WPARAM, LPARAM>>{{reinterpret_cast<WPARAM>(next), TRUE}}));
    EXPECT_EQ(GetFocus(), next);
    EXPECT_EQ(dialog.calls, Calls{"init"}) << "no command";
    SendMessageW(dialog, WM_COMMAND, MAKELONG(IDCANCEL, 0xFFFF), 0); // Cancel itself stays Cancel
    EXPECT_EQ(dialog.calls.back(), "cancel");
    DestroyWindow(dialog);
}

TEST_F(CeDialogTest, StaticsTakeTheirColourFromTheDialog)
{
    Probe dialog;
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    EXPECT_EQ(SendMessageW(dialog, WM_CTLCOLORSTATIC, 0, 0), reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH)));
    DestroyWindow(dialog);
}

TEST_F(CeDialogTest, WithFlagsTheShellPlacesIt)
{
    Probe dialog(SHIDIF_SIZEDLGFULLSCREEN | SHIDIF_DONEBUTTON);
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    RECT place{};
    GetWindowRect(dialog, &place);
    EXPECT_EQ(place.right, 640);
    EXPECT_EQ(place.bottom, 480);
    DestroyWindow(dialog);
    SHINITDLGINFO wrong{2, nullptr, 0};
    EXPECT_FALSE(SHInitDialog(&wrong));
    EXPECT_EQ(GetLastError(), 87U);
    wrong.dwMask = SHIDIM_FLAGS;
    EXPECT_FALSE(SHInitDialog(&wrong));
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST_F(CeDialogTest, ADefaultSizeMakesItScroll)
{
    Probe natural;
    ASSERT_TRUE(natural.Create(usable, nullptr, module));
    RECT whole{};
    GetWindowRect(natural, &whole);
    RECT client{};
    GetClientRect(natural, &client);
    DestroyWindow(natural);

    Probe dialog;
    dialog.SetDefaultSize(0, 80);
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    RECT place{};
    GetWindowRect(dialog, &place);
    EXPECT_EQ(place.right - place.left, whole.right - whole.left + GetSystemMetrics(SM_CXVSCROLL));
    EXPECT_EQ(place.bottom - place.top, 80);
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(GetScrollInfo(dialog, SB_VERT, &info));
    EXPECT_EQ(info.nMax, client.bottom - 1);
    EXPECT_EQ(GetWindowLongW(dialog, GWL_STYLE) & static_cast<LONG_PTR>(WS_HSCROLL), 0) << "there is room across";
    RECT before{};
    GetWindowRect(GetDlgItem(dialog, 12), &before);
    SendMessageW(dialog, WM_VSCROLL, SB_LINEDOWN, 0);
    RECT after{};
    GetWindowRect(GetDlgItem(dialog, 12), &after);
    EXPECT_EQ(after.top, before.top - 10);
    SendMessageW(dialog, WM_VSCROLL, SB_BOTTOM, 0);
    GetScrollInfo(dialog, SB_VERT, &info);
    EXPECT_EQ(info.nPos, info.nMax - static_cast<int>(info.nPage) + 1);
    SetWindowPos(dialog, nullptr, 0, 0, 600, 400, SWP_NOMOVE | SWP_NOZORDER);
    GetWindowRect(GetDlgItem(dialog, 12), &after);
    EXPECT_EQ(after.top, before.top) << "with room for all it comes back";
    DestroyWindow(dialog);
}

TEST_F(CeDialogTest, EachSideMayHaveADefaultSizeAndAModalOneIsCentredWithIt)
{
    Probe natural;
    ASSERT_TRUE(natural.Create(usable, nullptr, module));
    RECT whole{};
    GetWindowRect(natural, &whole);
    DestroyWindow(natural);
    const int width = whole.right - whole.left;
    const int height = whole.bottom - whole.top;
    const struct
    {
        int cx, cy, width, height;
    } cases[] = {{0, 0, width, height},
                 {150, 0, 150, height + GetSystemMetrics(SM_CYHSCROLL)},
                 {0, 80, width + GetSystemMetrics(SM_CXVSCROLL), 80},
                 {150, 90, 150, 90}};
    for (const auto &one : cases)
    {
        Probe dialog;
        dialog.SetDefaultSize(one.cx, one.cy);
        RECT place{};
        dialog.atInit = [&]
        {
            GetWindowRect(dialog, &place);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        };
        dialog.DoModal(usable, nullptr, module);
        EXPECT_EQ(place.right - place.left, one.width) << one.cx << " " << one.cy;
        EXPECT_EQ(place.bottom - place.top, one.height) << one.cx << " " << one.cy;
        EXPECT_LE(std::abs(place.left + place.right - 640), 1);
        EXPECT_LE(std::abs(place.top + place.bottom - 480), 1);
    }
    Probe placed(SHIDIF_SIZEDLGFULLSCREEN);
    placed.SetDefaultSize(150, 90);
    ASSERT_TRUE(placed.Create(usable, nullptr, module));
    RECT place{};
    GetWindowRect(placed, &place);
    EXPECT_EQ(place.right, 640) << "the shell's flags win";
    DestroyWindow(placed);
}

TEST_F(CeDialogTest, AnObjectMayBeADialogOnceMoreAndBeginsUnscrolled)
{
    Probe dialog;
    dialog.SetDefaultSize(0, 80);
    RECT first{};
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(dialog.Create(usable, nullptr, module));
        RECT place{};
        GetWindowRect(GetDlgItem(dialog, 12), &place);
        if (round == 0)
        {
            first = place;
        }
        EXPECT_EQ(place.top, first.top);
        SendMessageW(dialog, WM_VSCROLL, SB_LINEDOWN, 0);
        DestroyWindow(dialog);
    }
}
