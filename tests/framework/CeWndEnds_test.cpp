// Objects that end in the middle of their own operations, and operations that fail.
#include "framework/CeDialog.h"
#include "framework/MessageRecorder.h"
#include "platform/controls.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/screen.h"
#include "support/OpenHandles.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace
{
using zb::internal::countHandles;
using zb::internal::HandleCount;
using zb::test::Calls;
using zb::test::Recorder;
using zb::test::ScreenWindow;
using zb::test::settle;

constexpr UINT windowMessages[] = {
    WM_CHAR,    WM_CLOSE,           WM_COMMAND,       WM_NOTIFY,      WM_ENABLE,         WM_ERASEBKGND,
    WM_KEYDOWN, WM_KEYUP,           WM_LBUTTONDBLCLK, WM_LBUTTONDOWN, WM_LBUTTONUP,      WM_MOUSEMOVE,
    WM_MOVE,    WM_PAINT,           WM_SHOWWINDOW,    WM_SIZE,        WM_TIMER,          WM_SETTINGCHANGE,
    WM_USER,    WM_SETFOCUS,        WM_KILLFOCUS,     WM_NCPAINT,     WM_CAPTURECHANGED, WM_SETTEXT,
    WM_VSCROLL, WM_WINDOWPOSCHANGED};

class CeWndEnds : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(CeWndEnds &self)
    {
        zb::DeviceOptions options;
        options.screen = {300, 400, 96};
        options.messageBox = [&self](std::u16string_view text, std::u16string_view caption, UINT flags)
        {
            self.shown.push_back(std::u16string(caption) + u"|" + std::u16string(text));
            EXPECT_EQ(flags, 0x10U);
            if (self.meanwhile)
            {
                self.meanwhile();
            }
            return IDOK;
        };
        return options;
    }
    CeWndEnds() : module(LoadLibraryW(u"ZBTestModule"))
    {
    }
    ~CeWndEnds() override
    {
        FreeLibrary(module);
        MSG quit{};
        PeekMessageW(&quit, nullptr, 0, 0, PM_REMOVE);
    }
    static bool hasQuit()
    {
        MSG message{};
        return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE;
    }

    std::vector<std::u16string> shown;
    std::function<void()> meanwhile; ///< while the user reads a message
    zb::test::TestDevice device{options(*this)};
    HMODULE module;
    const WCHAR *const usable = MAKEINTRESOURCEW(7);
};

/// Ends its window at one message, and itself with it.
class Fleeting : public CeWnd
{
  public:
    Fleeting(UINT fatal, bool &gone) : m_fatal(fatal), m_gone(gone)
    {
    }
    ~Fleeting() override
    {
        m_gone = true;
    }
    LRESULT ProcessMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        handled = false;
        if (message == m_fatal)
        {
            DestroyWindow(m_hWnd);
            return 3;
        }
        return CeWnd::ProcessMessage(message, wParam, lParam, handled);
    }
    void OnFinalMessage(HWND) override
    {
        delete this;
    }

  private:
    UINT m_fatal;
    bool &m_gone;
};

/// The same for a dialog.
class FleetingDialog : public CeDialog
{
  public:
    FleetingDialog(UINT fatal, bool &gone) : m_fatal(fatal), m_gone(gone)
    {
    }
    ~FleetingDialog() override
    {
        m_gone = true;
    }
    LRESULT OnInitDialog(HWND focus, LPARAM lParam) override
    {
        const HWND self = m_hWnd;
        const bool endsNow = m_fatal == WM_INITDIALOG;
        SetDefaultSize(120, 60); // so that it scrolls
        const LRESULT result = CeDialog::OnInitDialog(focus, lParam);
        SetTimer(self, 1, 1, nullptr); // of a window that is gone it is none
        if (endsNow)
        {
            DestroyWindow(self);
        }
        return result;
    }
    LRESULT ProcessMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        handled = false;
        if (message == m_fatal && message != WM_INITDIALOG)
        {
            DestroyWindow(m_hWnd);
            return 0;
        }
        return CeDialog::ProcessMessage(message, wParam, lParam, handled);
    }
    void OnFinalMessage(HWND) override
    {
        delete this;
    }

  private:
    UINT m_fatal;
    bool &m_gone;
};
} // namespace

TEST_F(CeWndEnds, AWindowEndedInAnyOperationHearsTheFinalMessageLast)
{
    for (const UINT fatal : windowMessages)
    {
        const HandleCount before = countHandles();
        Recorder window;
        ASSERT_TRUE(window.make(WS_POPUP | WS_VISIBLE));
        SetTimer(window, 7, 1000, nullptr);
        settle();
        window.taken();
        window.meanwhile = [&window, fatal](UINT message)
        {
            if (message == fatal)
            {
                DestroyWindow(window);
            }
        };
        const HWND handle = window;
        WINDOWPOS place{handle, nullptr, 0, 0, 0, 0, 0};
        SendMessageW(window, fatal, 0, fatal == WM_WINDOWPOSCHANGED ? reinterpret_cast<LPARAM>(&place) : 0);
        const Calls calls = window.taken();
        ASSERT_GE(calls.size(), 4U) << fatal;
        EXPECT_EQ(Calls(calls.end() - 3, calls.end()), (Calls{"OnDestroy", "Default", "OnFinalMessage"})) << fatal;
        EXPECT_EQ(window.GetHwnd(), nullptr) << fatal;
        EXPECT_FALSE(IsWindow(handle)) << fatal;
        EXPECT_EQ(countHandles(), before) << fatal;
    }
}

TEST_F(CeWndEnds, AnObjectMayGoWithItsWindowInAnyMessage)
{
    for (const UINT fatal : windowMessages)
    {
        bool gone = false;
        auto *window = new Fleeting(fatal, gone);
        const bool made = window->Create(nullptr, {0, 0, 50, 50}, WS_POPUP | WS_VISIBLE | WS_VSCROLL);
        if (made)
        {
            SendMessageW(*window, fatal, 0, 0);
        }
        EXPECT_TRUE(gone) << fatal;
        EXPECT_FALSE(hasQuit()) << fatal;
    }
    bool gone = false;
    auto *window = new Fleeting(WM_CREATE, gone);
    EXPECT_FALSE(window->Create(nullptr, {0, 0, 50, 50}, WS_POPUP));
    EXPECT_TRUE(gone);
}

TEST_F(CeWndEnds, AWindowMayEndBetweenTheTwoEndsOfItsPainting)
{
    class Painter : public CeWnd
    {
      public:
        void OnPaint(bool &handled) override
        {
            handled = true;
            PAINTSTRUCT paint{};
            const HDC context = BeginPaint(m_hWnd, &paint);
            const HWND self = m_hWnd;
            DestroyWindow(self);
            FillRect(context, &paint.rcPaint, GetSysColorBrush(COLOR_WINDOW));
            EXPECT_TRUE(EndPaint(self, &paint));
        }
    };
    const HandleCount before = countHandles();
    Painter window;
    ASSERT_TRUE(window.Create(nullptr, {0, 0, 50, 50}, WS_POPUP | WS_VISIBLE));
    UpdateWindow(window);
    EXPECT_EQ(window.GetHwnd(), nullptr);
    EXPECT_EQ(countHandles(), before);
}

TEST_F(CeWndEnds, ADialogMayEndInAnyOfItsMessages)
{
    const UINT messages[] = {WM_INITDIALOG, WM_COMMAND,    WM_NOTIFY,          WM_CTLCOLORSTATIC, WM_CTLCOLORDLG,
                             WM_PAINT,      WM_ERASEBKGND, WM_SHOWWINDOW,      WM_SIZE,           WM_MOVE,
                             WM_ACTIVATE,   WM_SETFOCUS,   WM_KILLFOCUS,       WM_TIMER,          WM_CLOSE,
                             WM_VSCROLL,    WM_HSCROLL,    WM_LBUTTONDOWN,     WM_ENABLE,         WM_USER,
                             WM_DESTROY,    WM_NCPAINT,    WM_WINDOWPOSCHANGED};
    const HandleCount before = countHandles();
    for (const UINT fatal : messages)
    {
        bool gone = false;
        auto *dialog = new FleetingDialog(fatal, gone);
        if (dialog->Create(usable, nullptr, module))
        {
            const HWND handle = *dialog;
            ShowWindow(handle, SW_SHOW);
            settle();
            WINDOWPOS place{handle, nullptr, 0, 0, 0, 0, 0};
            SendMessageW(handle, fatal, 0, fatal == WM_WINDOWPOSCHANGED ? reinterpret_cast<LPARAM>(&place) : 0);
            DestroyWindow(handle);
        }
        EXPECT_TRUE(gone) << fatal;
        MSG message{nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {0, 0}};
        EXPECT_FALSE(CeBaseDialog::IsDialogMsg(&message)) << fatal;

        gone = false;
        auto *modal = new FleetingDialog(fatal, gone);
        const auto send = [](HWND, UINT, UINT_PTR id, DWORD)
        {
            KillTimer(nullptr, id);
            if (const HWND dialog = GetForegroundWindow())
            {
                DestroyWindow(dialog); // for messages that did not come by themselves
            }
        };
        SetTimer(nullptr, 0, 30, send);
        EXPECT_EQ(modal->DoModal(usable, nullptr, module), -1) << fatal;
        EXPECT_TRUE(gone) << fatal;
        settle();
    }
    for (int turn = 0; turn < 100 && countHandles().timers > before.timers; ++turn)
    {
        settle(); // a timer of a dialog that never ran
        Sleep(5);
    }
    EXPECT_EQ(countHandles().timers, before.timers);
    const HandleCount after = countHandles();
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_EQ(after.contexts, before.contexts);
    EXPECT_EQ(after.fonts, before.fonts);
    EXPECT_FALSE(hasQuit());
}

TEST_F(CeWndEnds, AnExceptionIsToldLoggedAndAsksTheProgramToEnd)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.answer = 44;
    window.meanwhile = [](UINT message)
    {
        if (message == WM_COMMAND)
        {
            throw std::runtime_error("trouble");
        }
    };
    std::u16string heard;
    zb::setDebugSink([&](const WCHAR *text) { heard += text; });
    EXPECT_EQ(SendMessageW(window, WM_COMMAND, 1, 2), 0);
    zb::setDebugSink({});
    // 09:00 UTC in Berlin.
    EXPECT_EQ(shown, (std::vector<std::u16string>{
                         u"Fatal|Title (0x0111) terminated abnormally by an exception at 10:00:00. Closing program."}));
    ASSERT_GE(heard.size(), 11U);
    EXPECT_EQ(heard.substr(heard.size() - 11), u"Exception\n\r");
    std::ifstream file(device.files() / "My Documents" / "ZembrikDebugLog.txt");
    std::stringstream log;
    log << file.rdbuf();
    ASSERT_GE(log.str().size(), 11U);
    EXPECT_EQ(log.str().substr(log.str().size() - 11), "Exception\r\n");
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 0U);
    EXPECT_TRUE(IsWindow(window));
}

TEST_F(CeWndEnds, WhatWasTheResultBeforeTheFailureStays)
{
    class Failing : public CeWnd
    {
      public:
        LRESULT Default() override
        {
            throw std::runtime_error("trouble");
        }
        LRESULT OnCommand(WPARAM, LPARAM, bool &) override
        {
            return 44;
        }
        LRESULT OnCreate(const CREATESTRUCTW *, bool &handled) override
        {
            handled = true;
            return 0;
        }
    };
    Failing window;
    window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP);
    shown.clear();
    EXPECT_EQ(SendMessageW(window, WM_COMMAND, 1, 2), 44);
    EXPECT_EQ(shown.size(), 1U);
    EXPECT_TRUE(hasQuit());
    DestroyWindow(window.Unsubclass());
}

TEST_F(CeWndEnds, TheTitleInTheTextHas255CharactersAtMost)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    SetWindowTextW(window, std::u16string(300, u'T').c_str());
    window.meanwhile = [](UINT message)
    {
        if (message == WM_USER)
        {
            throw 1;
        }
    };
    SendMessageW(window, WM_USER, 0, 0);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].substr(6), std::u16string(255, u'T') +
                                      u" (0x0400) terminated abnormally by an exception at 10:00:00. Closing program.");
    EXPECT_TRUE(hasQuit());
}

TEST_F(CeWndEnds, WhatFailsWhileAFailureIsToldIsNotToldAgain)
{
    Recorder window;
    ASSERT_TRUE(window.make(WS_POPUP | WS_VISIBLE));
    settle();
    window.meanwhile = [](UINT) { throw std::runtime_error("at everything"); };
    meanwhile = [&]
    {
        InvalidateRect(window, nullptr, TRUE);
        settle(); // would never come back if a paint that failed were asked for again
        SendMessageW(window, WM_TIMER, 1, 0);
    };
    InvalidateRect(window, nullptr, TRUE);
    UpdateWindow(window);
    EXPECT_EQ(shown, (std::vector<std::u16string>{
                         u"Fatal| (0x000f) terminated abnormally by an exception at 10:00:00. Closing program."}))
        << "its title could not be asked for either";
    EXPECT_TRUE(hasQuit());
    meanwhile = nullptr;
    SendMessageW(window, WM_USER, 0, 0);
    EXPECT_EQ(shown.size(), 2U) << "the next one is told again";
    EXPECT_TRUE(hasQuit());
    window.meanwhile = nullptr;
    DestroyWindow(window);
}

TEST_F(CeWndEnds, AnEndThatFailsIsAnEndAllTheSame)
{
    Recorder window;
    ASSERT_TRUE(window.make());
    window.taken();
    window.meanwhile = [](UINT message)
    {
        if (message == WM_DESTROY)
        {
            throw std::runtime_error("trouble");
        }
    };
    const HWND handle = window;
    DestroyWindow(handle);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(window.GetHwnd(), nullptr);
    EXPECT_EQ(window.taken().back(), "OnFinalMessage");
    EXPECT_EQ(shown.size(), 1U);
    EXPECT_TRUE(hasQuit());

    class Strange : public CeWnd
    {
      public:
        void OnFirstMessage(HWND) override
        {
            throw 1;
        }
        void OnFinalMessage(HWND) override
        {
            throw 2;
        }
    };
    Strange strange;
    EXPECT_TRUE(strange.Create(nullptr, {0, 0, 10, 10}, WS_POPUP));
    DestroyWindow(strange);
    EXPECT_EQ(shown.size(), 3U);
    EXPECT_TRUE(hasQuit());
}

TEST_F(CeWndEnds, ADialogWhoseInitFailsGoesOnAndHearsItsCommands)
{
    class Failing : public CeDialog
    {
      public:
        int commands = 0;
        bool fails = true;
        LRESULT OnInitDialog(HWND, LPARAM) override
        {
            throw std::runtime_error("trouble");
        }
        LRESULT OnCommand(WPARAM, LPARAM, bool &) override
        {
            ++commands;
            return 0;
        }
        void OnPaint(bool &) override
        {
            if (fails)
            {
                throw 1;
            }
        }
        void OnFirstMessage(HWND) override
        {
            throw 2;
        }
        void OnFinalMessage(HWND) override
        {
            throw 3;
        }
    };
    Failing dialog;
    ASSERT_TRUE(dialog.Create(usable, nullptr, module));
    EXPECT_EQ(shown, std::vector<std::u16string>(
                         2, u"Fatal|Window message terminated abnormally by an exception"));
    SendMessageW(dialog, WM_COMMAND, 11, 0);
    EXPECT_EQ(dialog.commands, 1);
    shown.clear();
    ShowWindow(dialog, SW_SHOW);
    meanwhile = [&]
    {
        InvalidateRect(dialog, nullptr, TRUE);
        settle();
    };
    UpdateWindow(dialog);
    EXPECT_EQ(shown.size(), 1U);
    EXPECT_FALSE(hasQuit()) << "a dialog goes on";
    meanwhile = nullptr;
    dialog.fails = false;
    shown.clear();
    DestroyWindow(dialog);
    EXPECT_EQ(shown.size(), 1U);
    EXPECT_EQ(dialog.GetHwnd(), nullptr);
}
