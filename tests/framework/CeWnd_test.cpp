// Windows as objects: which operation a message reaches, the default behind it, and exceptions.
#include "core/SharedState.h"
#include "framework/MessageRecorder.h"
#include "platform/controls.h"
#include "platform/kernel.h"
#include "platform/screen.h"
#include "support/OperationSlots.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::Calls;
using zb::test::pair;
using zb::test::Recorder;
using zb::test::ScreenWindow;
using zb::test::settle;

class CeWndTest : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options()
    {
        zb::DeviceOptions options;
        options.screen = {300, 400, 96};
        return options;
    }

    zb::test::TestDevice device{options()};
};
} // namespace

TEST_F(CeWndTest, EveryMessageReachesItsOperationWithItsArguments)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.claims = true;
    window.answer = 77;
    window.taken();
    const struct
    {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        const char *call;
        LRESULT result;
    } cases[] = {{258, 65, pair(2, 3), "OnChar 65 2 3", 0},
                 {16, 0, 0, "OnClose", 0},
                 {273, 5, 6, "OnCommand 5 6", 77},
                 {78, 7, 8, "OnNotify 7 8", 77},
                 {10, 1, 0, "OnEnable 1", 0},
                 {20, 9, 0, "OnEraseBkgnd 9", 77},
                 {256, 40, pair(1, 2), "OnKeyDown 40 1 2", 0},
                 {257, 40, pair(1, 49152), "OnKeyUp 40 1 49152", 0},
                 {515, 1, pair(3, 4), "OnLButtonDblClk 1 3 4", 0},
                 {513, 1, pair(3, 4), "OnLButtonDown 1 3 4", 0},
                 {514, 0, pair(3, 4), "OnLButtonUp 0 3 4", 0},
                 {512, 1, pair(3, 4), "OnMouseMove 1 3 4", 0},
                 {3, 0, pair(30, 40), "OnMove 30 40", 0},
                 {3, 0, pair(-30, -40), "OnMove -30 -40", 0},
                 {15, 0, 0, "OnPaint", 0},
                 {24, 1, 3, "OnShowWindow 1 3", 0},
                 {5, 0, pair(90, 40), "OnSize 0 90 40", 0},
                 {275, 12, 0, "OnTimer 12", 0},
                 {26, 0x12345, 6, "OnSettingChange 9029 6", 0},
                 {0x0401, 1, 2, "OnMessage 1025 1 2", 77}};
    for (const auto &one : cases)
    {
        EXPECT_EQ(SendMessageW(window, one.message, one.wParam, one.lParam), one.result) << one.message;
        EXPECT_EQ(window.taken(), Calls{one.call}) << one.message;
    }
}

#if defined(__x86_64__)
TEST_F(CeWndTest, TheOperationsStandInTheOrderThatHostsExpect)
{
    using zb::test::slotOf;
    const std::ptrdiff_t slots[] = {
        slotOf(&CeMsgWnd::Default),         slotOf(&CeMsgWnd::ProcessMessage), slotOf(&CeMsgWnd::OnChar),
        slotOf(&CeMsgWnd::OnClose),         slotOf(&CeMsgWnd::OnCreate),       slotOf(&CeMsgWnd::OnCommand),
        slotOf(&CeMsgWnd::OnNotify),        slotOf(&CeMsgWnd::OnDestroy),      slotOf(&CeMsgWnd::OnEnable),
        slotOf(&CeMsgWnd::OnEraseBkgnd),    slotOf(&CeMsgWnd::OnKeyDown),      slotOf(&CeMsgWnd::OnKeyUp),
        slotOf(&CeMsgWnd::OnLButtonDblClk), slotOf(&CeMsgWnd::OnLButtonDown),  slotOf(&CeMsgWnd::OnLButtonUp),
        slotOf(&CeMsgWnd::OnMouseMove),     slotOf(&CeMsgWnd::OnMove),         slotOf(&CeMsgWnd::OnPaint),
        slotOf(&CeMsgWnd::OnShowWindow),    slotOf(&CeMsgWnd::OnSize),         slotOf(&CeMsgWnd::OnTimer),
        slotOf(&CeMsgWnd::OnSettingChange), slotOf(&CeMsgWnd::OnOrientationChange),
        slotOf(&CeMsgWnd::OnMessage),       slotOf(&CeMsgWnd::OnFirstMessage), slotOf(&CeMsgWnd::OnFinalMessage)};
    std::ptrdiff_t expected = 0;
    for (const std::ptrdiff_t slot : slots)
    {
        EXPECT_EQ(slot, ++expected);
    }
    EXPECT_EQ(expected, 26);
}
#endif

TEST_F(CeWndTest, AnObjectHasTwoPartsTheWindowBeforeTheMessages)
{
    CeWnd window;
    EXPECT_EQ(static_cast<void *>(static_cast<CeBaseWnd *>(&window)), static_cast<void *>(&window));
    EXPECT_GT(static_cast<void *>(static_cast<CeMsgWnd *>(&window)), static_cast<void *>(&window));
}

TEST_F(CeWndTest, OperationsDoNothingOfThemselves)
{
    class Bare : public CeWnd
    {
      public:
        int defaults = 0;
        LRESULT Default() override
        {
            ++defaults;
            return 5;
        }
    };
    Bare window;
    const UINT messages[] = {WM_CHAR,          WM_CLOSE,   WM_CREATE, WM_COMMAND,       WM_NOTIFY,      WM_ENABLE,
                             WM_ERASEBKGND,    WM_KEYDOWN, WM_KEYUP,  WM_LBUTTONDBLCLK, WM_LBUTTONDOWN, WM_LBUTTONUP,
                             WM_MOUSEMOVE,     WM_MOVE,    WM_PAINT,  WM_SHOWWINDOW,    WM_SIZE,        WM_TIMER,
                             WM_SETTINGCHANGE, WM_USER,    WM_DESTROY};
    for (const UINT message : messages)
    {
        bool handled = true;
        EXPECT_EQ(window.ProcessMessage(message, 0, 0, handled), 0) << message;
        EXPECT_FALSE(handled) << message;
    }
    ASSERT_TRUE(window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP));
    window.defaults = 0;
    EXPECT_EQ(SendMessageW(window, WM_USER, 0, 0), 5) << "what nobody handled has the default's result";
    EXPECT_EQ(window.defaults, 1);
    DestroyWindow(window);
}

TEST_F(CeWndTest, AWindowGetsItsObjectAsParameterAndCantRefuseToBeMade)
{
    class Refusing : public CeWnd
    {
      public:
        void *parameter = nullptr;
        LRESULT OnCreate(const CREATESTRUCTW *create, bool &handled) override
        {
            parameter = create->lpCreateParams;
            handled = true;
            return -1;
        }
    };
    Refusing window;
    EXPECT_TRUE(window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP));
    EXPECT_EQ(window.parameter, &window);
    DestroyWindow(window);
}

TEST_F(CeWndTest, WindowsOfItsClassesWithoutAnObjectAreOrdinaryOnes)
{
    ASSERT_TRUE(CeWnd::CreateGenericWndClass());
    const HWND plain =
        CreateWindowExW(0, u"CeWnd:GENERIC", u"Title", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(GetWindowTextLengthW(plain), 5);
    DestroyWindow(plain);
    Recorder window;
    ASSERT_TRUE(window.make());
    window.taken();
    SetWindowLongW(window, GWL_USERDATA, 0);
    EXPECT_EQ(GetWindowTextLengthW(window), 5);
    EXPECT_EQ(window.taken(), Calls{});
    SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(static_cast<CeWnd *>(&window)));
    DestroyWindow(window);
}

TEST_F(CeWndTest, CreationFailsWhenTheWindowIsNotTheObjects)
{
    class Leaving : public CeWnd
    {
      public:
        HWND left = nullptr;
        LRESULT OnCreate(const CREATESTRUCTW *, bool &) override
        {
            left = Unsubclass();
            return 0;
        }
    };
    Leaving window;
    EXPECT_FALSE(window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP));
    EXPECT_TRUE(IsWindow(window.left));
    DestroyWindow(window.left);
    Recorder child;
    EXPECT_FALSE(child.Create(u"BUTTON", window.left, {0, 0, 10, 10})) << "its parent is gone";
    ASSERT_TRUE(child.make());
    SendMessageW(child, BM_SETCHECK, 1, 0);
    EXPECT_EQ(SendMessageW(child, BM_GETCHECK, 0, 0), 0) << "the button's procedure is forgotten";
    DestroyWindow(child);
}

TEST_F(CeWndTest, APointIsNotSignExtended)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.claims = true;
    window.taken();
    SendMessageW(window, WM_MOUSEMOVE, 0, pair(-1, -5));
    EXPECT_EQ(window.taken(), Calls{"OnMouseMove 0 65535 65531"});
}

TEST_F(CeWndTest, WhatNobodyHandledGoesToTheDefault)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.taken();
    window.answer = 77;
    WCHAR text[16] = {};
    EXPECT_EQ(SendMessageW(window, WM_GETTEXT, 16, reinterpret_cast<LPARAM>(text)), 5);
    EXPECT_EQ(std::u16string(text), u"Title");
    const Calls calls = window.taken();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[1], "Default");
}

TEST_F(CeWndTest, TheOrderFromFirstToFinalMessage)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    Calls calls = window.taken();
    ASSERT_GE(calls.size(), 3U);
    EXPECT_EQ(calls[0], "OnFirstMessage");
    EXPECT_EQ(calls[1], "OnCreate 100 50");
    EXPECT_EQ(calls[2], "Default");
    DestroyWindow(window);
    EXPECT_EQ(window.taken(), (Calls{"OnDestroy", "Default", "OnFinalMessage"}));
    EXPECT_EQ(window.GetHwnd(), nullptr);
}

TEST_F(CeWndTest, AWindowEndedInItsOwnOperationHearsTheFinalMessageLast)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.taken();
    window.meanwhile = [&window](UINT message)
    {
        if (message == WM_COMMAND)
        {
            DestroyWindow(window);
        }
    };
    SendMessageW(window, WM_COMMAND, 1, 2);
    EXPECT_EQ(window.taken(), (Calls{"OnCommand 1 2", "OnDestroy", "Default", "OnFinalMessage"}));
}

TEST_F(CeWndTest, AnObjectMayDeleteItselfInItsFinalMessage)
{
    class Fleeting : public CeWnd
    {
      public:
        explicit Fleeting(bool &gone) : m_gone(gone)
        {
        }
        ~Fleeting() override
        {
            m_gone = true;
        }
        LRESULT OnCommand(WPARAM, LPARAM, bool &) override
        {
            DestroyWindow(m_hWnd);
            return 3;
        }
        void OnFinalMessage(HWND) override
        {
            delete this;
        }

      private:
        bool &m_gone;
    };
    bool gone = false;
    auto *window = new Fleeting(gone);
    ASSERT_TRUE(window->Create(nullptr, {0, 0, 10, 10}, WS_POPUP));
    EXPECT_EQ(SendMessageW(*window, WM_COMMAND, 0, 0), 3);
    EXPECT_TRUE(gone);
}

TEST_F(CeWndTest, AnObjectThatGoesFirstLetsItsWindowStand)
{
    HWND window = nullptr;
    {
        Recorder recorder;
        ASSERT_TRUE(recorder.make());
        window = recorder;
    }
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(SendMessageW(window, WM_COMMAND, 1, 2), 0);
    DestroyWindow(window);
}

TEST_F(CeWndTest, AControlsOwnProcedureStandsBehindTheObject)
{
    Recorder parent;
    ASSERT_TRUE(parent.make(WS_POPUP | WS_VISIBLE));
    Recorder button;
    ASSERT_TRUE(
        button.Create(u"BUTTON", parent, {0, 0, 40, 20}, u"Push", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX, 0, 5));
    parent.taken();
    SendMessageW(button, BM_CLICK, 0, 0);
    EXPECT_EQ(SendMessageW(button, BM_GETCHECK, 0, 0), 1);
    const Calls heard = parent.taken();
    EXPECT_NE(std::find(heard.begin(), heard.end(),
                        "OnCommand 5 " + std::to_string(reinterpret_cast<LPARAM>(button.GetHwnd()))),
              heard.end());
    WNDCLASSW type{};
    EXPECT_TRUE(GetClassInfoW(nullptr, u"CeWnd:BUTTON", &type));
    EXPECT_TRUE(CeWnd::IsCeWndProc(u"CeWnd:BUTTON"));
    EXPECT_FALSE(CeWnd::IsCeWndProc(u"BUTTON"));
    Recorder second;
    EXPECT_TRUE(second.Create(u"BUTTON", parent, {0, 30, 40, 50}, u"Again", WS_CHILD)) << "the copy is there already";
    DestroyWindow(parent);
    EXPECT_EQ(second.GetHwnd(), nullptr);
}

TEST_F(CeWndTest, SuperclassingAnUnknownClassDoesNothingAndItsWindowFails)
{
    WNDPROC former = nullptr;
    bool registered = true;
    EXPECT_TRUE(CeWnd::RegisterWndSuperclass(u"NoSuchClass", &former, &registered));
    EXPECT_FALSE(registered);
    EXPECT_EQ(former, nullptr);
    Recorder window;
    EXPECT_FALSE(window.make(WS_POPUP, u"NoSuchClass"));
}

TEST_F(CeWndTest, TheCopyOfAClassIsNoGlobalOneAndStandsBeforeItsProcedure)
{
    WNDCLASSW type{};
    type.style = 0x4000 | CS_DBLCLKS;
    type.cbWndExtra = 24;
    type.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    { return message == WM_USER ? 31 : DefWindowProcW(window, message, wParam, lParam); };
    type.lpszClassName = u"Original";
    ASSERT_NE(::RegisterClassW(&type), 0);
    WNDPROC former = nullptr;
    bool registered = false;
    EXPECT_TRUE(CeWnd::RegisterWndSuperclass(u"Original", &former, &registered));
    EXPECT_TRUE(registered);
    EXPECT_EQ(former, type.lpfnWndProc);
    WNDCLASSW copy{};
    ASSERT_TRUE(GetClassInfoW(nullptr, u"CeWnd:Original", &copy));
    EXPECT_EQ(copy.style, CS_DBLCLKS);
    EXPECT_EQ(copy.cbWndExtra, 24);
    EXPECT_EQ(copy.hInstance, CeGetAppInstance());
    EXPECT_TRUE(CeWnd::RegisterWndSuperclass(u"Original", &former, &registered));
    EXPECT_FALSE(registered) << "once";
    Recorder window;
    ASSERT_TRUE(window.make(WS_POPUP, u"Original"));
    EXPECT_EQ(SendMessageW(window, WM_USER, 0, 0), 31);
    const HWND left = window.Unsubclass();
    EXPECT_EQ(SendMessageW(left, WM_USER, 0, 0), 31) << "the class's own procedure is back";
    DestroyWindow(left);
    UnregisterClassW(u"CeWnd:Original", nullptr);
    UnregisterClassW(u"Original", nullptr);
}

TEST_F(CeWndTest, APlainWindowUsesTheGenericClassOnce)
{
    Recorder window;
    ASSERT_TRUE(window.make(WS_POPUP, u""));
    EXPECT_TRUE(CeWnd::IsCeWndProc(u"CeWnd:GENERIC"));
    EXPECT_TRUE(CeWnd::CreateGenericWndClass());
}

TEST_F(CeWndTest, ASecondRegistrationReplacesTheFirst)
{
    ASSERT_TRUE(CeWnd::RegisterClassW(u"Mine", CS_DBLCLKS));
    WNDCLASSW type{};
    ASSERT_TRUE(GetClassInfoW(nullptr, u"Mine", &type));
    EXPECT_EQ(type.style, CS_DBLCLKS);
    EXPECT_EQ(type.hbrBackground, GetStockObject(0));
    EXPECT_EQ(type.hInstance, CeGetAppInstance());
    ASSERT_TRUE(CeWnd::RegisterClassW(u"Mine", 0, 0, 12));
    ASSERT_TRUE(GetClassInfoW(nullptr, u"Mine", &type));
    EXPECT_EQ(type.style, 0U);
    EXPECT_EQ(type.cbWndExtra, 12);
    Recorder window;
    EXPECT_TRUE(window.make(WS_POPUP, u"Mine"));
    DestroyWindow(window);
    UnregisterClassW(u"Mine", nullptr);
}

TEST_F(CeWndTest, SubclassingStandsBeforeAWindowAndGoesAgain)
{
    const zb::test::ScreenWindow inner(RGB(1, 2, 3), WS_POPUP, 0, 0, 10, 10);
    const LONG_PTR word = GetWindowLongW(inner.window, GWL_USERDATA);
    SetWindowLongW(inner.window, GWL_USERDATA, 0);
    Recorder outer;
    ASSERT_TRUE(outer.Subclass(inner.window));
    outer.claims = true;
    SendMessageW(inner.window, WM_COMMAND, 1, 2);
    EXPECT_EQ(outer.taken(), Calls{"OnCommand 1 2"});
    Recorder another;
    EXPECT_FALSE(another.Subclass(inner.window)) << "it has an object";
    EXPECT_EQ(outer.Unsubclass(), inner.window);
    EXPECT_EQ(outer.GetHwnd(), nullptr);
    SetWindowLongW(inner.window, GWL_USERDATA, word);
    ASSERT_TRUE(outer.Subclass(inner.window));
    outer.Unsubclass();
    EXPECT_EQ(GetWindowLongW(inner.window, GWL_USERDATA), word) << "with what stood there";
    EXPECT_FALSE(outer.Subclass(nullptr));
}

TEST_F(CeWndTest, ATurnedScreenIsToldWithTheNextSize)
{
    Recorder window;
    window.claims = true;
    ASSERT_TRUE(window.make());
    window.taken();
    device.options().screen = {400, 300, 96};
    device.reopen();
    SendMessageW(window, WM_SIZE, 0, pair(400, 300));
    EXPECT_EQ(window.taken(), (Calls{"OnOrientationChange 0 400 300", "OnSize 0 400 300"}));
    SendMessageW(window, WM_SIZE, 0, pair(400, 300));
    EXPECT_EQ(window.taken(), Calls{"OnSize 0 400 300"});
}

TEST_F(CeWndTest, StylesScrollBarsTitleAndPlaceByShortForms)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    EXPECT_TRUE(window.ModifyStyle(0, WS_BORDER, SWP_FRAMECHANGED));
    EXPECT_FALSE(window.ModifyStyle(0, WS_BORDER));
    EXPECT_TRUE(window.ModifyStyle(WS_BORDER, 0));
    EXPECT_TRUE(window.ModifyStyleEx(0, WS_EX_TOPMOST));
    EXPECT_EQ(window.CopyWindowText(), CeString(u"Title"));
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 2, 99, 10, 20, 0};
    SetScrollInfo(window, SB_VERT, &info, TRUE);
    int low = 0;
    int high = 0;
    EXPECT_TRUE(window.GetScrollRange(SB_VERT, &low, &high));
    EXPECT_EQ(low, 2);
    EXPECT_EQ(high, 99);
    EXPECT_EQ(window.GetScrollPos(SB_VERT), 20);
    EXPECT_EQ(window.GetScrollLimit(SB_VERT), 90);
    EXPECT_EQ(window.GetScrollLimit(SB_HORZ), 0);
    window.CenterWindow();
    RECT place{};
    GetWindowRect(window, &place);
    EXPECT_EQ(place.left, 100);
    EXPECT_EQ(place.top, 175);
    SetWindowPos(window, nullptr, 0, 0, 500, 500, SWP_NOZORDER);
    window.CenterWindow();
    GetWindowRect(window, &place);
    EXPECT_EQ(place.left, 0) << "its corner stays on the screen";
    EXPECT_EQ(place.top, 0);
}

TEST_F(CeWndTest, TheShellIsAskedForTheWindow)
{
    Recorder window;
    EXPECT_FALSE(window.SHSipPreference(SIP_UP)) << "no window yet";
    EXPECT_EQ(GetLastError(), 1400U);
    ASSERT_TRUE(window.make(WS_POPUP | WS_CAPTION));
    const struct
    {
        int state;
        bool wanted;
    } panel[] = {{0, true}, {3, true}, {1, false}, {3, false}, {0, true}, {2, false}};
    for (const auto &[state, wanted] : panel)
    {
        EXPECT_TRUE(window.SHSipPreference(static_cast<SIPSTATE>(state)));
        EXPECT_EQ(zb::isInputPanelWanted(), wanted) << state;
    }
    EXPECT_FALSE(window.SHSipPreference(static_cast<SIPSTATE>(9)));
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_TRUE(window.SHDoneButton(SHDB_SHOW));
    EXPECT_NE(GetWindowLongW(window, GWL_STYLE) & static_cast<LONG_PTR>(WS_SYSMENU), 0);
    EXPECT_TRUE(window.SHDoneButton(SHDB_HIDE));
    EXPECT_EQ(GetWindowLongW(window, GWL_STYLE) & static_cast<LONG_PTR>(WS_SYSMENU), 0);
    EXPECT_FALSE(window.SHDoneButton(9));
    EXPECT_TRUE(window.SHSetNavBarText(u"Tasks"));
    EXPECT_EQ(window.CopyWindowText(), CeString(u"Tasks"));
    EXPECT_TRUE(window.SHSetNavBarText(nullptr));
    EXPECT_EQ(window.CopyWindowText(), CeString(u""));
    EXPECT_TRUE(window.SHFullScreen(SHFS_HIDETASKBAR | SHFS_HIDESIPBUTTON | SHFS_HIDESTARTICON));
    EXPECT_FALSE(window.SHFullScreen(0));
    EXPECT_FALSE(window.SHFullScreen(0x40));
    DestroyWindow(window);
    Recorder plain;
    ASSERT_TRUE(plain.make());
    EXPECT_TRUE(plain.SHDoneButton(SHDB_SHOW));
    EXPECT_EQ(GetWindowLongW(plain, GWL_STYLE) & static_cast<LONG_PTR>(WS_SYSMENU), 0) << "no title, no place for it";
}

TEST_F(CeWndTest, CentringGoesByAnyWindowAndKeepsChildrenInTheirParent)
{
    Recorder parent;
    ASSERT_TRUE(parent.make(WS_POPUP | WS_VISIBLE)); // from 10, 20, of 100 by 50
    const ScreenWindow other(RGB(1, 2, 3), WS_POPUP, 200, 300, 60, 40);
    Recorder window;
    ASSERT_TRUE(window.Create(nullptr, {0, 0, 20, 10}, WS_POPUP));
    window.CenterWindow(other.window);
    RECT place{};
    GetWindowRect(window, &place);
    EXPECT_TRUE(zb::test::is(place, 220, 315, 240, 325));
    Recorder child;
    ASSERT_TRUE(child.Create(parent, {0, 0, 20, 10}));
    child.CenterWindow();
    GetWindowRect(child, &place);
    EXPECT_TRUE(zb::test::is(place, 50, 40, 70, 50));
    child.CenterWindow(other.window);
    GetWindowRect(child, &place);
    EXPECT_TRUE(zb::test::is(place, 90, 60, 110, 70)) << "no further than its parent goes";
    child.ShowScrollBar(SB_BOTH);
    EXPECT_EQ(GetWindowLongW(child, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL | WS_HSCROLL),
              static_cast<LONG_PTR>(WS_VSCROLL | WS_HSCROLL));
    child.ShowScrollBar(SB_VERT, false);
    EXPECT_EQ(GetWindowLongW(child, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL | WS_HSCROLL),
              static_cast<LONG_PTR>(WS_HSCROLL));
    DestroyWindow(parent);
}
