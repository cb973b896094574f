#include "platform/kernel.h"
#include "platform/user.h"
#include "support/MessageWindow.h"

#include <algorithm>
#include <array>
#include <climits>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace
{
using zb::test::MessageWindowClass;
using zb::test::PlatformThread;
using zb::test::Procedure;
using zb::test::ServingThread;
using zb::test::TestEvent;

constexpr DWORD windowGone = 1400;

/// Writes down what its windows get.
struct Recorder
{
    std::vector<std::pair<HWND, UINT>> heard;
    Procedure procedure = [this](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        heard.emplace_back(window, message);
        return DefWindowProcW(window, message, wParam, lParam);
    };
    std::vector<UINT> messages() const
    {
        std::vector<UINT> result;
        for (const auto &entry : heard)
        {
            result.push_back(entry.second);
        }
        return result;
    }
};

TEST(WindowClasses, AreKnownByNameWithoutCaseAndByAtom)
{
    const MessageWindowClass type(u"Case Test");
    EXPECT_NE(type.atom(), 0);
    for (const WCHAR *name : {u"Case Test", u"CASE TEST", reinterpret_cast<const WCHAR *>(std::uintptr_t{type.atom()})})
    {
        const HWND window = CreateWindowExW(0, name, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(window, nullptr);
        EXPECT_TRUE(DestroyWindow(window));
    }
}

TEST(WindowClasses, AreRegisteredOnce)
{
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.lpszClassName = u"OnceOnly";
    const ATOM atom = RegisterClassW(&type);
    EXPECT_NE(atom, 0);
    type.lpszClassName = u"ONCEONLY";
    SetLastError(0);
    EXPECT_EQ(RegisterClassW(&type), 0);
    EXPECT_EQ(GetLastError(), 1410U);
    EXPECT_TRUE(UnregisterClassW(u"OnceOnly", nullptr));
    EXPECT_NE(RegisterClassW(&type), 0) << "and anew after that";
    EXPECT_TRUE(UnregisterClassW(u"OnceOnly", nullptr));
    SetLastError(0);
    EXPECT_FALSE(UnregisterClassW(u"OnceOnly", nullptr));
    EXPECT_EQ(GetLastError(), 1411U);
}

TEST(WindowClasses, StayWhileTheyHaveWindows)
{
    Procedure procedure = DefWindowProcW;
    const MessageWindowClass type(u"InUse");
    const HWND window = type.make(&procedure);
    EXPECT_FALSE(UnregisterClassW(u"InUse", nullptr));
    EXPECT_EQ(GetLastError(), 1412U);
    DestroyWindow(window);
    EXPECT_TRUE(UnregisterClassW(u"InUse", nullptr));
}

TEST(WindowClasses, NeedANameAndAProcedure)
{
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    const auto refused = [&]
    {
        SetLastError(0);
        return RegisterClassW(&type) == 0 && GetLastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_TRUE(refused());
    type.lpszClassName = u"";
    EXPECT_TRUE(refused());
    type.lpszClassName = u"NoProcedure";
    type.lpfnWndProc = nullptr;
    EXPECT_TRUE(refused());
    type.lpfnWndProc = DefWindowProcW;
    type.cbWndExtra = -1;
    EXPECT_TRUE(refused());
    EXPECT_EQ(RegisterClassW(nullptr), 0);
}

TEST(Windows, HearOfTheirCreationAndTheirEnd)
{
    Recorder recorder;
    const MessageWindowClass type;
    const HWND window = type.make(&recorder.procedure);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(recorder.messages(), (std::vector<UINT>{0x81, 0x01, 0x02, 0x82}));
    EXPECT_FALSE(DestroyWindow(window));
    EXPECT_EQ(GetLastError(), windowGone);
}

TEST(Windows, AreToldHowTheyWereAskedFor)
{
    CREATESTRUCTW seen{};
    Procedure procedure = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        if (message == WM_CREATE)
        {
            seen = *reinterpret_cast<CREATESTRUCTW *>(lParam);
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    const MessageWindowClass type(u"Asked");
    const HWND parent = type.make(&procedure);
    const WCHAR *title = u"title";
    const auto menu = reinterpret_cast<void *>(42);
    const auto instance = reinterpret_cast<HINSTANCE>(4242);
    const HWND window = CreateWindowExW(7, u"Asked", title, 0x40000000, 1, 2, 3, 4, parent, menu, instance, &procedure);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(seen.lpCreateParams, &procedure);
    EXPECT_EQ(seen.hInstance, instance);
    EXPECT_EQ(seen.hMenu, menu);
    EXPECT_EQ(seen.hwndParent, parent);
    EXPECT_EQ((std::array{seen.x, seen.y, seen.cx, seen.cy}), (std::array{1, 2, 3, 4}));
    EXPECT_EQ(seen.style, 0x40000000);
    EXPECT_EQ(seen.dwExStyle, 7U);
    EXPECT_EQ(seen.lpszName, title);
    EXPECT_EQ(GetParent(window), parent);
    EXPECT_EQ(GetParent(parent), nullptr);
    EXPECT_EQ(GetWindowLongW(window, GWL_STYLE), 0x40000000);
    EXPECT_EQ(GetWindowLongW(window, GWL_EXSTYLE), 7);
    EXPECT_EQ(GetWindowLongW(window, GWL_ID), 42);
    DestroyWindow(parent);
}

TEST(Windows, OfAnUnknownClassAreRefused)
{
    SetLastError(0);
    EXPECT_EQ(CreateWindowExW(0, u"NoSuchClass", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), 1407U);
    EXPECT_EQ(CreateWindowExW(0, nullptr, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), 1407U);
}

TEST(Windows, MayRefuseToBeMade)
{
    const MessageWindowClass type;
    for (const UINT refusing : {WM_NCCREATE, WM_CREATE})
    {
        Recorder recorder;
        HWND seen = nullptr;
        Procedure procedure = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
        {
            seen = window;
            const LRESULT usual = recorder.procedure(window, message, wParam, lParam);
            return message != refusing ? usual : refusing == WM_CREATE ? -1 : 0;
        };
        EXPECT_EQ(type.make(&procedure), nullptr);
        EXPECT_FALSE(IsWindow(seen));
        EXPECT_EQ(recorder.messages().back(), WM_NCDESTROY) << "so that it can clean up";
        EXPECT_EQ(recorder.messages().size(), refusing == WM_CREATE ? 4U : 2U);
    }
}

TEST(Windows, DestroyedInTheirCreationAreNotHandedOut)
{
    const MessageWindowClass type;
    Procedure procedure = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        if (message == WM_CREATE)
        {
            DestroyWindow(window);
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    EXPECT_EQ(type.make(&procedure), nullptr);
}

TEST(Windows, WhoseCreationThrowsAreGone)
{
    const MessageWindowClass type;
    HWND seen = nullptr;
    Procedure procedure = [&](HWND window, UINT message, WPARAM, LPARAM) -> LRESULT
    {
        seen = window;
        if (message == WM_CREATE)
        {
            throw std::runtime_error("create");
        }
        return 1;
    };
    EXPECT_THROW(type.make(&procedure), std::runtime_error);
    EXPECT_NE(seen, nullptr);
    EXPECT_FALSE(IsWindow(seen));
}

TEST(Windows, TakeTheirChildrenAlong)
{
    Recorder recorder;
    const MessageWindowClass type;
    const HWND parent = type.make(&recorder.procedure);
    const HWND first = type.make(&recorder.procedure, parent);
    const HWND grandchild = type.make(&recorder.procedure, first);
    const HWND second = type.make(&recorder.procedure, parent);
    recorder.heard.clear();
    EXPECT_TRUE(DestroyWindow(parent));
    const std::vector<std::pair<HWND, UINT>> expected{
        {grandchild, WM_DESTROY}, {grandchild, WM_NCDESTROY}, {first, WM_DESTROY},  {first, WM_NCDESTROY},
        {second, WM_DESTROY},     {second, WM_NCDESTROY},     {parent, WM_DESTROY}, {parent, WM_NCDESTROY}};
    EXPECT_EQ(recorder.heard, expected);
    for (HWND window : {parent, first, grandchild, second})
    {
        EXPECT_FALSE(IsWindow(window));
    }
}

TEST(Windows, TakeChildrenOfOtherThreadsAlongThroughThem)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND parent = type.make(&plain);
    HWND child = nullptr;
    DWORD destroyedOn = 0;
    Procedure childs = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY)
        {
            destroyedOn = GetCurrentThreadId();
            PostQuitMessage(0);
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    const TestEvent ready;
    const PlatformThread other(
        [&]
        {
            child = type.make(&childs, parent);
            ready.set();
            zb::test::runMessages();
        });
    ASSERT_TRUE(ready.wait());
    EXPECT_TRUE(DestroyWindow(parent));
    EXPECT_TRUE(other.ended());
    EXPECT_EQ(destroyedOn, other.id());
    EXPECT_FALSE(IsWindow(child));
}

TEST(Windows, AreStillThereWhileTheyHearOfTheirEnd)
{
    const MessageWindowClass type;
    int asked = 0;
    Procedure procedure = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY || message == WM_NCDESTROY)
        {
            asked += IsWindow(window);
            DestroyWindow(window);
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    EXPECT_TRUE(DestroyWindow(type.make(&procedure)));
    EXPECT_EQ(asked, 2) << "and destroying once more inside changes nothing";
}

TEST(Windows, TakeNoChildrenWhileTheyGo)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    HWND late = nullptr;
    Procedure procedure = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY)
        {
            late = type.make(&plain, window);
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    EXPECT_TRUE(DestroyWindow(type.make(&procedure)));
    EXPECT_EQ(late, nullptr);
}

TEST(Windows, NestUpTo100Levels)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    std::vector<HWND> chain{type.make(&plain)};
    while (HWND next = type.make(&plain, chain.back()))
    {
        chain.push_back(next);
    }
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(chain.size(), 101U);
    EXPECT_TRUE(DestroyWindow(chain.front()));
    EXPECT_FALSE(IsWindow(chain.back()));
}

TEST(Windows, NeedALivingParent)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND gone = type.make(&plain);
    DestroyWindow(gone);
    SetLastError(0);
    EXPECT_EQ(type.make(&plain, gone), nullptr);
    EXPECT_EQ(GetLastError(), windowGone);
}

TEST(Windows, BelongToTheThreadThatMadeThem)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND window = type.make(&plain);
    DWORD process = 0;
    EXPECT_EQ(GetWindowThreadProcessId(window, &process), GetCurrentThreadId());
    EXPECT_EQ(process, static_cast<DWORD>(getpid()));
    const PlatformThread other(
        [&]
        {
            EXPECT_EQ(GetWindowThreadProcessId(window, nullptr), GetWindowThreadProcessId(window, nullptr));
            EXPECT_NE(GetWindowThreadProcessId(window, nullptr), GetCurrentThreadId());
            SetLastError(0);
            EXPECT_FALSE(DestroyWindow(window));
            EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        });
    EXPECT_TRUE(other.ended());
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_EQ(GetWindowThreadProcessId(window, &process), 0U);
    EXPECT_EQ(GetLastError(), windowGone);
}

TEST(Windows, GoWithTheirThread)
{
    const MessageWindowClass type;
    Recorder recorder;
    HWND window = nullptr;
    const PlatformThread owner([&] { window = type.make(&recorder.procedure); });
    EXPECT_TRUE(owner.ended());
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(recorder.messages(), (std::vector<UINT>{WM_NCCREATE, WM_CREATE})) << "without messages";
}

TEST(Windows, StandAloneWhenTheirParentsThreadEnds)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const TestEvent ready;
    HWND parent = nullptr;
    const PlatformThread owner(
        [&, window = &parent]
        {
            *window = type.make(&plain);
            ready.set();
            Sleep(INFINITE);
        });
    ASSERT_TRUE(ready.wait());
    const HWND child = type.make(&plain, parent);
    EXPECT_EQ(GetParent(child), parent);
    EXPECT_TRUE(TerminateThread(owner.handle(), 1));
    EXPECT_TRUE(IsWindow(child));
    EXPECT_EQ(GetParent(child), nullptr);
    EXPECT_TRUE(DestroyWindow(child));
}

TEST(Windows, KeepAText)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND window = type.make(&plain, nullptr, u"first");
    std::array<WCHAR, 10> buffer{};
    EXPECT_EQ(GetWindowTextW(window, buffer.data(), 10), 5);
    EXPECT_EQ(std::u16string(buffer.data()), u"first");
    EXPECT_TRUE(SetWindowTextW(window, u"longer text"));
    EXPECT_EQ(GetWindowTextLengthW(window), 11);
    EXPECT_EQ(GetWindowTextW(window, buffer.data(), 10), 9) << "cut to the room there is";
    EXPECT_EQ(std::u16string(buffer.data()), u"longer te");
    EXPECT_EQ(GetWindowTextW(window, buffer.data(), 1), 0);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(GetWindowTextW(window, buffer.data(), 0), 0);
    EXPECT_EQ(GetWindowTextW(window, nullptr, 10), 0);
    EXPECT_TRUE(SetWindowTextW(window, nullptr));
    EXPECT_EQ(GetWindowTextLengthW(window), 0);
    DestroyWindow(window);
    buffer[0] = u'x';
    EXPECT_EQ(GetWindowTextW(window, buffer.data(), 10), 0);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_FALSE(SetWindowTextW(window, u"x"));
    EXPECT_EQ(GetLastError(), windowGone);
}

TEST(Windows, GiveTheirTextToOtherThreads)
{
    const MessageWindowClass type;
    const ServingThread server(type, DefWindowProcW);
    EXPECT_TRUE(SetWindowTextW(server.window(), u"across"));
    std::array<WCHAR, 10> buffer{};
    EXPECT_EQ(GetWindowTextW(server.window(), buffer.data(), 10), 6);
    EXPECT_EQ(std::u16string(buffer.data()), u"across");
}

TEST(Windows, KeepPointerWideWords)
{
    constexpr int extra = 2 * sizeof(LONG_PTR);
    const MessageWindowClass type(u"Words", extra);
    const HWND window = type.make(nullptr);
    const LONG_PTR wide = std::numeric_limits<LONG_PTR>::min() + 5;
    for (int index : {GWL_USERDATA, GWL_STYLE, GWL_EXSTYLE, GWL_ID, 0, static_cast<int>(sizeof(LONG_PTR))})
    {
        EXPECT_EQ(SetWindowLongW(window, index, wide), 0) << index;
        EXPECT_EQ(GetWindowLongW(window, index), wide) << index;
        EXPECT_EQ(SetWindowLongW(window, index, 0), wide) << index;
    }
    for (int index : {extra - static_cast<int>(sizeof(LONG_PTR)) + 1, extra, -1, -5, 1'000'000, INT_MAX, INT_MIN})
    {
        SetLastError(0);
        EXPECT_EQ(GetWindowLongW(window, index), 0);
        EXPECT_EQ(GetLastError(), 1413U) << index;
        SetLastError(0);
        EXPECT_EQ(SetWindowLongW(window, index, 1), 0);
        EXPECT_EQ(GetLastError(), 1413U) << index;
    }
    DestroyWindow(window);
    EXPECT_EQ(GetWindowLongW(window, GWL_USERDATA), 0);
    EXPECT_EQ(GetLastError(), windowGone);
}

LRESULT answersSeven(HWND, UINT, WPARAM, LPARAM)
{
    return 7;
}

TEST(Windows, CanBeGivenAnotherProcedure)
{
    const MessageWindowClass type;
    Procedure plain = [](HWND, UINT message, WPARAM, LPARAM) -> LRESULT { return message == WM_NCCREATE ? 1 : 5; };
    const HWND window = type.make(&plain);
    EXPECT_EQ(SendMessageW(window, WM_USER, 0, 0), 5);
    const LONG_PTR former = SetWindowLongW(window, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(answersSeven));
    EXPECT_EQ(GetWindowLongW(window, GWL_WNDPROC), reinterpret_cast<LONG_PTR>(answersSeven));
    EXPECT_EQ(SendMessageW(window, WM_USER, 0, 0), 7);
    EXPECT_EQ(CallWindowProcW(reinterpret_cast<WNDPROC>(former), window, WM_USER, 0, 0), 5);
    EXPECT_EQ(CallWindowProcW(nullptr, window, WM_USER, 0, 0), 0);
    DestroyWindow(window);
}

TEST(Windows, AreDestroyedByDefaultWhenAskedToClose)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND window = type.make(&plain);
    EXPECT_EQ(SendMessageW(window, WM_CLOSE, 0, 0), 0);
    EXPECT_FALSE(IsWindow(window));
}

TEST(Windows, AreNotOtherHandles)
{
    const MessageWindowClass type;
    Procedure plain = DefWindowProcW;
    const HWND window = type.make(&plain);
    EXPECT_FALSE(CloseHandle(window));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(WaitForSingleObject(window, 0), WAIT_FAILED);
    const TestEvent event;
    EXPECT_FALSE(IsWindow(static_cast<HWND>(event.handle())));
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_FALSE(IsWindow(reinterpret_cast<HWND>(0x10002)));
    DestroyWindow(window);
}

/// Random making and destroying in a forest, beside a plain list of what should be there.
TEST(Windows, LeaveNothingBehindAfterTenThousandRandomSteps)
{
    const MessageWindowClass type(u"Forest");
    std::mt19937 random(20260302);
    struct Node
    {
        HWND window;
        HWND parent;
    };
    std::vector<Node> living;
    std::size_t destroyed = 0;
    std::size_t made = 0;
    Procedure procedure = [&](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_DESTROY)
        {
            ++destroyed;
            std::erase_if(living, [&](const Node &node) { return node.window == window; });
        }
        return DefWindowProcW(window, message, wParam, lParam);
    };
    for (int step = 0; step < 10'000; ++step)
    {
        const std::size_t pick = living.empty() ? 0 : random() % living.size();
        if (living.empty() || random() % 100 < 55)
        {
            const HWND parent = !living.empty() && random() % 3 != 0 ? living[pick].window : nullptr;
            if (HWND window = type.make(&procedure, parent))
            {
                living.push_back({window, parent});
                PostMessageW(window, WM_USER, 0, 0);
                ++made;
            }
        }
        else
        {
            const HWND window = living[pick].window;
            ASSERT_TRUE(DestroyWindow(window));
            ASSERT_FALSE(IsWindow(window));
        }
        if (step % 500 == 0)
        {
            for (const Node &node : living)
            {
                ASSERT_TRUE(IsWindow(node.window));
                ASSERT_EQ(GetParent(node.window), node.parent);
            }
        }
    }
    EXPECT_EQ(made - destroyed, living.size());
    while (!living.empty())
    {
        DestroyWindow(living.front().window);
    }
    EXPECT_EQ(made, destroyed);
    EXPECT_EQ(zb::test::drainMessages(), 0) << "posts to them went with them";
    EXPECT_TRUE(UnregisterClassW(u"Forest", nullptr)) << "no window of the class is left";
}
} // namespace
