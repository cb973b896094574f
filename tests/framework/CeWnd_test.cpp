// Windows as objects: which operation a message reaches, the default behind it, and exceptions.
#include "framework/CeWnd.h"
#include "platform/controls.h"
#include "platform/kernel.h"
#include "platform/screen.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace
{
using zb::test::pair;
using zb::test::settle;

/// Writes down each operation with its arguments; does nothing else.
class Recorder : public CeWnd
{
  public:
    std::vector<std::string> calls;
    bool claims = false; ///< every operation says that it has dealt with the message
    LRESULT answer = 0;
    std::function<void(UINT)> meanwhile;

    LRESULT Default() override
    {
        calls.push_back("Default");
        return CeWnd::Default();
    }
    void OnChar(UINT c, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnChar", c, repeat, flags);
    }
    void OnClose(bool &handled) override
    {
        note(handled, "OnClose");
    }
    LRESULT OnCreate(const CREATESTRUCTW *create, bool &handled) override
    {
        note(handled, "OnCreate", create->cx, create->cy);
        return answer;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnCommand", wParam, lParam);
        return answer;
    }
    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnNotify", wParam, lParam);
        return answer;
    }
    void OnDestroy(bool &handled) override
    {
        note(handled, "OnDestroy");
    }
    void OnEnable(bool enable, bool &handled) override
    {
        note(handled, "OnEnable", enable);
    }
    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override
    {
        note(handled, "OnEraseBkgnd", reinterpret_cast<std::uintptr_t>(hdc));
        return answer;
    }
    void OnKeyDown(UINT key, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnKeyDown", key, repeat, flags);
    }
    void OnKeyUp(UINT key, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnKeyUp", key, repeat, flags);
    }
    void OnLButtonDblClk(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonDblClk", keys, point.x, point.y);
    }
    void OnLButtonDown(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonDown", keys, point.x, point.y);
    }
    void OnLButtonUp(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonUp", keys, point.x, point.y);
    }
    void OnMouseMove(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnMouseMove", keys, point.x, point.y);
    }
    void OnMove(int x, int y, bool &handled) override
    {
        note(handled, "OnMove", x, y);
    }
    void OnPaint(bool &handled) override
    {
        note(handled, "OnPaint");
    }
    void OnShowWindow(bool show, LPARAM status, bool &handled) override
    {
        note(handled, "OnShowWindow", show, status);
    }
    void OnSize(UINT type, int cx, int cy, bool &handled) override
    {
        CeWnd::OnSize(type, cx, cy, handled);
        note(handled, "OnSize", type, cx, cy);
    }
    void OnTimer(UINT_PTR id, bool &handled) override
    {
        note(handled, "OnTimer", id);
    }
    void OnSettingChange(UINT flags, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnSettingChange", flags, lParam);
    }
    void OnOrientationChange(UINT type, int cx, int cy, bool &handled) override
    {
        note(handled, "OnOrientationChange", type, cx, cy);
    }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnMessage", message, wParam, lParam);
        return answer;
    }
    void OnFirstMessage(HWND window) override
    {
        calls.push_back(m_hWnd == nullptr && IsWindow(window) ? "OnFirstMessage" : "OnFirstMessage too late");
    }
    void OnFinalMessage(HWND) override
    {
        calls.push_back(m_hWnd == nullptr ? "OnFinalMessage" : "OnFinalMessage too early");
    }

    bool make(DWORD style = WS_POPUP, const WCHAR *className = nullptr)
    {
        return Create(className, u"Title", style, 0, 10, 20, 100, 50, nullptr);
    }
    /// The calls since the last time.
    std::vector<std::string> taken()
    {
        return std::exchange(calls, {});
    }
    UINT message() const
    {
        return m_uMsg;
    }

  private:
    template <typename... Arguments>
    void note(bool &handled, const char *name, Arguments... arguments)
    {
        std::ostringstream text;
        text << name;
        ((text << " " << arguments), ...);
        calls.push_back(text.str());
        handled = claims;
        if (meanwhile)
        {
            meanwhile(m_uMsg);
        }
    }
};

using Calls = std::vector<std::string>;

class CeWndTest : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(std::vector<std::u16string> &shown)
    {
        zb::DeviceOptions options;
        options.screen = {300, 400, 96};
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
    ASSERT_TRUE(button.Create(u"BUTTON", parent, {0, 0, 40, 20}, u"Push", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX, 0, 5));
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
    EXPECT_FALSE(outer.Subclass(nullptr));
}

TEST_F(CeWndTest, AnExceptionIsToldLoggedAndAsksTheProgramToEnd)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.meanwhile = [](UINT message)
    {
        if (message == WM_COMMAND)
        {
            throw std::runtime_error("trouble");
        }
    };
    SendMessageW(window, WM_COMMAND, 1, 2);
    // 09:00 UTC in Berlin.
    EXPECT_EQ(shown, (std::vector<std::u16string>{
                         u"Fatal|Title (0x0111) terminated abnormally by an exception at 10:00:00. Closing program."}));
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 0U);
    EXPECT_TRUE(std::filesystem::exists(device.files() / "My Documents" / "ZembrikDebugLog.txt"));
    EXPECT_TRUE(IsWindow(window));
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
