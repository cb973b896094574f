// Windows under load: many threads that send to each other, windows that end in the middle of their own messages, and
// thousands of random steps that leave nothing behind.
#include "support/OpenHandles.h"
#include "support/PlatformThread.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <random>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::TestDevice;

constexpr COLORREF red = RGB(200, 0, 0);

/// Works in so many threads at once, each with its number, until all are done.
void runThreads(int threads, const std::function<void(int)> &work)
{
    std::vector<std::unique_ptr<zb::test::PlatformThread>> all;
    for (int n = 0; n < threads; ++n)
    {
        all.push_back(std::make_unique<zb::test::PlatformThread>([&work, n] { work(n); }));
    }
    for (const auto &one : all)
    {
        ASSERT_TRUE(one->ended(120'000));
    }
}
} // namespace

TEST(WindowStress, NoSentMessageIsLostOrDoubled)
{
    const TestDevice device(zb::test::withScreen(200, 150));
    constexpr int threads = 4;
    constexpr int sends = 25'000; // each: 100,000 in all
    std::array<std::atomic<HWND>, threads> windows{};
    std::array<std::atomic<int>, threads> received{};
    std::array<std::atomic<int>, threads> sent{};
    std::atomic<int> wrong{0};
    std::atomic<int> ready{0};
    std::atomic<int> done{0};
    const auto work = [&](int self)
    {
        ScreenWindow window(red, WS_POPUP, 0, 0, 10, 10);
        window.before = [&](UINT message, WPARAM wParam, LPARAM, LRESULT &result)
        {
            if (message == WM_USER)
            {
                window.told.clear();
                ++received[static_cast<std::size_t>(self)];
                result = static_cast<LRESULT>(wParam) + 1;
                return true;
            }
            return false;
        };
        windows[static_cast<std::size_t>(self)] = window.window;
        ++ready;
        while (ready < threads)
        {
            settle();
            Sleep(1);
        }
        std::mt19937 random(static_cast<unsigned>(self) + 1);
        for (int n = 0; n < sends; ++n)
        {
            const std::size_t target = random() % threads;
            if (SendMessageW(windows[target], WM_USER, static_cast<WPARAM>(n), 0) != n + 1)
            {
                ++wrong;
            }
            ++sent[target];
        }
        ++done;
        while (done < threads)
        {
            settle();
            Sleep(1);
        }
    };
    ASSERT_NO_FATAL_FAILURE(runThreads(threads, work));
    EXPECT_EQ(wrong, 0);
    for (std::size_t n = 0; n < threads; ++n)
    {
        EXPECT_EQ(received[n], sent[n]);
    }
}

TEST(WindowStress, AWindowMayEndInAnyOfItsMessages)
{
    const TestDevice device(zb::test::withScreen(200, 150));
    const UINT messages[] = {WM_NCCREATE,   WM_CREATE,    WM_SIZE,         WM_MOVE,           WM_SHOWWINDOW,
                             WM_SETFOCUS,   WM_KILLFOCUS, WM_PAINT,        WM_NCPAINT,
                             WM_ERASEBKGND, WM_ENABLE,    WM_LBUTTONDOWN,  WM_MOUSEMOVE,      WM_LBUTTONUP,
                             WM_KEYDOWN,    WM_CHAR,      WM_TIMER,        WM_CAPTURECHANGED, WM_WINDOWPOSCHANGED,
                             WM_VSCROLL,    WM_SETREDRAW, WM_NCLBUTTONDOWN, WM_CLOSE,          WM_DESTROY,
                             WM_NCDESTROY,  WM_SETTEXT,   WM_COMMAND};
    for (const UINT fatal : messages)
    {
        ScreenWindow parent(red, WS_POPUP | WS_VISIBLE, 0, 0, 150, 120);
        settle();
        // The class of these windows writes down what they are told in the object, which stays.
        ScreenWindow child(red, WS_CHILD, 0, 0, 0, 0, parent.window);
        DestroyWindow(child.window);
        bool ended = false;
        const auto act = [&](HWND window)
        {
            ScreenWindow *self = &child;
            self->window = window;
            self->before = [&ended, self, fatal](UINT message, WPARAM, LPARAM, LRESULT &)
            {
                if (message == fatal && !ended)
                {
                    ended = true;
                    DestroyWindow(self->window);
                }
                return false;
            };
        };
        act(nullptr);
        const HWND window =
            CreateWindowExW(0, u"ScreenWindow", u"", WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER, 10, 10, 60, 60,
                            parent.window, nullptr, nullptr, &child);
        settle();
        const SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 99, 10, 0, 0};
        SetScrollInfo(window, SB_VERT, &info, TRUE);
        SetFocus(window);
        if (window != nullptr)
        {
            SetTimer(window, 1, 1, nullptr); // of none it would be the thread's
        }
        zb::penDown(20, 20);
        zb::penMove(25, 25);
        zb::penUp(25, 25);
        zb::keyDown(VK_DOWN);
        zb::keyUp(VK_DOWN);
        zb::typeCharacter(u'x');
        settle();
        Sleep(2);
        settle();
        zb::penDown(65, 15);
        zb::penUp(65, 15);
        settle();
        SetCapture(window);
        ReleaseCapture();
        SetWindowTextW(window, u"text");
        MoveWindow(window, 20, 20, 50, 50, TRUE);
        InvalidateRect(window, nullptr, TRUE);
        UpdateWindow(window);
        SendMessageW(window, WM_SETREDRAW, TRUE, 0);
        SendMessageW(window, WM_COMMAND, 1, 0);
        EnableWindow(window, FALSE);
        SetFocus(parent.window);
        SendMessageW(window, WM_CLOSE, 0, 0);
        settle();
        EXPECT_TRUE(ended) << "message " << fatal << " never came";
        EXPECT_FALSE(IsWindow(window)) << fatal;
        EXPECT_EQ(GetWindow(parent.window, GW_CHILD), nullptr) << fatal;
    }
}

/// Each thread has a strip of the screen to itself, and asks and tells the windows of the others.
TEST(WindowStress, ThreadsShareTheScreen)
{
    const TestDevice device(zb::test::withScreen(200, 150));
    const zb::internal::HandleCount before = zb::internal::countHandles();
    constexpr int threads = 3;
    constexpr int strip = 60;
    std::array<std::atomic<HWND>, threads> latest{};
    std::atomic<int> done{0};
    const auto work = [&](int self)
    {
        std::mt19937 random(static_cast<unsigned>(self) + 11);
        const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
        std::vector<std::unique_ptr<ScreenWindow>> own;
        const auto x = [&] { return self * strip + below(20); };
        for (int step = 0; step < 400; ++step)
        {
            const HWND any =
                own.empty() ? nullptr : own[static_cast<std::size_t>(below(static_cast<int>(own.size())))]->window;
            const HWND other = latest[static_cast<std::size_t>(below(threads))];
            RECT place{};
            switch (below(9))
            {
            case 0:
                own.push_back(std::make_unique<ScreenWindow>(red, WS_POPUP | WS_VISIBLE, x(), below(100), 30, 30));
                own.push_back(std::make_unique<ScreenWindow>(red, WS_CHILD | WS_VISIBLE | WS_VSCROLL, 5, 5, 20, 20,
                                                             own.back()->window));
                latest[static_cast<std::size_t>(self)] = own.back()->window;
                break;
            case 1:
                own.clear();
                break;
            case 2:
                SetWindowPos(any, HWND_TOP, below(20) + (IsChild(GetParent(any), any) != FALSE ? 0 : self * strip),
                             below(90), 30, 30, 0);
                break;
            case 3:
                ShowWindow(any, below(2) != 0 ? SW_SHOW : SW_HIDE);
                break;
            case 4:
                SetFocus(any);
                SetTimer(other, 3, 1, nullptr);
                break;
            case 5:
                InvalidateRect(other, nullptr, TRUE);
                PostMessageW(other, WM_USER, 1, 2);
                SendMessageW(other, WM_USER, 1, 2);
                break;
            case 6:
                GetWindowRect(other, &place);
                GetWindow(other, GW_HWNDNEXT);
                WindowFromPoint({below(180), below(150)});
                EnableWindow(any, below(2));
                break;
            case 7:
                SetCapture(any);
                SetWindowTextW(any, u"text");
                SetForegroundWindow(other);
                ReleaseCapture();
                break;
            default:
                settle();
                break;
            }
        }
        own.clear();
        for (++done; done < threads;)
        {
            settle();
            Sleep(1);
        }
    };
    ASSERT_NO_FATAL_FAILURE(runThreads(threads, work));
    EXPECT_EQ(zb::internal::countHandles(), before);
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

TEST(WindowStress, RandomStepsLeaveNothingBehind)
{
    const TestDevice device(zb::test::withScreen(200, 150));
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.lpszClassName = u"Stress";
    ASSERT_NE(RegisterClassW(&type), 0);
    PeekMessageW(nullptr, nullptr, 0, 0, 0); // the thread has its queue
    const zb::internal::HandleCount before = zb::internal::countHandles();
    std::mt19937 random(7);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    std::vector<HWND> all;
    for (int step = 0; step < 10'000; ++step)
    {
        std::erase_if(all, [](HWND window) { return IsWindow(window) == FALSE; });
        const HWND any = all.empty() ? nullptr : all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
        switch (below(11))
        {
        case 0:
        case 1:
        {
            const bool child = any != nullptr && below(3) != 0;
            const HWND made = CreateWindowExW(
                0, u"Stress", u"", (child ? WS_CHILD : WS_POPUP) | (below(2) != 0 ? WS_VISIBLE : 0U), below(200) - 50,
                below(150) - 50, below(120), below(100), child ? any : nullptr, nullptr, nullptr, nullptr);
            if (made != nullptr)
            {
                all.push_back(made);
            }
            break;
        }
        case 2:
            if (any != nullptr && all.size() > 20)
            {
                DestroyWindow(any);
            }
            break;
        case 3:
            MoveWindow(any, below(200) - 50, below(150) - 50, below(120), below(100), TRUE);
            break;
        case 4:
            SetParent(any, all.empty() || below(3) == 0
                               ? nullptr
                               : all[static_cast<std::size_t>(below(static_cast<int>(all.size())))]);
            break;
        case 5:
            ShowWindow(any, below(2) != 0 ? SW_SHOW : SW_HIDE);
            break;
        case 6:
            SetFocus(any);
            SetWindowPos(any, below(2) != 0 ? HWND_TOP : HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
            break;
        case 7:
            if (any != nullptr)
            {
                SetTimer(any, static_cast<UINT_PTR>(below(5)) + 1, 1, nullptr);
            }
            break;
        case 8:
            if (const HDC context = GetDC(any))
            {
                RECT box{0, 0, below(100), below(100)};
                DrawFrameControl(context, &box, DFC_BUTTON, DFCS_BUTTONPUSH);
                if (below(10) == 0)
                {
                    DestroyWindow(any); // the context is the caller's all the same
                }
                ReleaseDC(any, context);
            }
            break;
        case 9:
        {
            const RECT box{below(50), below(50), below(100), below(100)};
            InvalidateRect(any, &box, TRUE);
            break;
        }
        default:
            settle();
            break;
        }
    }
    while (!all.empty())
    {
        if (IsWindow(all.back()) != FALSE)
        {
            DestroyWindow(all.back());
        }
        all.pop_back();
    }
    settle();
    const zb::internal::HandleCount after = zb::internal::countHandles();
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_EQ(after.contexts, before.contexts);
    EXPECT_EQ(after.timers, before.timers);
    EXPECT_EQ(after, before);
    EXPECT_TRUE(UnregisterClassW(u"Stress", nullptr)) << "the class has windows left";
    EXPECT_EQ(GetForegroundWindow(), nullptr);
    EXPECT_EQ(WindowFromPoint({10, 10}), nullptr);
}
