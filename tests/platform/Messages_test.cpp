// Posting, sending and taking messages, on one thread and across threads.
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/user.h"
#include "support/MessageWindow.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{
using zb::test::drainMessages;
using zb::test::MessageWindowClass;
using zb::test::PlatformThread;
using zb::test::Procedure;
using zb::test::runMessages;
using zb::test::ServingThread;
using zb::test::TestEvent;

constexpr DWORD windowGone = 1400;
constexpr DWORD threadGone = 1444;

/// A window of this thread that adds up what it gets.
class Messages : public testing::Test
{
  protected:
    void SetUp() override
    {
        drainMessages();
        window = type.make(&procedure);
        heard.clear();
    }
    void TearDown() override
    {
        DestroyWindow(window);
        drainMessages();
    }

    const MessageWindowClass type{u"Messages"};
    std::vector<MSG> heard;
    Procedure procedure = [this](HWND target, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        heard.push_back({target, message, wParam, lParam, 0, {}});
        return message >= WM_USER ? static_cast<LRESULT>(wParam) * 2 : DefWindowProcW(target, message, wParam, lParam);
    };
    HWND window = nullptr;
    MSG message{};
};

TEST_F(Messages, SentOnTheOwnThreadAreCalls)
{
    EXPECT_EQ(SendMessageW(window, WM_USER + 3, 21, -5), 42);
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].hwnd, window);
    EXPECT_EQ(heard[0].message, WM_USER + 3);
    EXPECT_EQ(heard[0].lParam, -5);
}

TEST_F(Messages, PostedComeInOrderWithAllTheirParts)
{
    const auto wide = reinterpret_cast<LPARAM>(&message);
    EXPECT_TRUE(PostMessageW(window, WM_USER, 1, wide));
    EXPECT_TRUE(PostMessageW(nullptr, WM_USER + 1, 2, 0));
    EXPECT_TRUE(PostThreadMessageW(GetCurrentThreadId(), WM_USER + 2, 3, 0));
    EXPECT_TRUE(heard.empty()) << "not before they are taken";
    ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.hwnd, window);
    EXPECT_EQ(message.message, WM_USER);
    EXPECT_EQ(message.wParam, 1U);
    EXPECT_EQ(message.lParam, wide);
    EXPECT_FALSE(TranslateMessage(&message));
    EXPECT_EQ(DispatchMessageW(&message), 2);
    EXPECT_EQ(heard.size(), 1U);
    ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.message, WM_USER + 1);
    EXPECT_EQ(message.hwnd, nullptr);
    EXPECT_EQ(DispatchMessageW(&message), 0);
    ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.message, WM_USER + 2);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, CarryTheTimeOfTheirPosting)
{
    PostMessageW(nullptr, WM_USER, 0, 0);
    Sleep(20);
    PostMessageW(nullptr, WM_USER, 0, 0);
    MSG second{};
    GetMessageW(&message, nullptr, 0, 0);
    GetMessageW(&second, nullptr, 0, 0);
    EXPECT_GE(second.time - message.time, 19U);
    EXPECT_LT(second.time - message.time, 10'000U);
    EXPECT_LT(GetTickCount() - second.time, 10'000U) << "on the scale of the tick count";
}

TEST_F(Messages, StayWhenOnlyLookedAt)
{
    PostMessageW(window, WM_USER, 0, 0);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, AreBoundByNumber)
{
    for (UINT offset : {0U, 5U, 10U})
    {
        PostMessageW(window, WM_USER + offset, 0, 0);
    }
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_USER + 1, WM_USER + 4, PM_REMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_USER + 5, WM_USER + 10, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 5);
    EXPECT_EQ(GetMessageW(&message, nullptr, WM_USER + 10, WM_USER + 10), 1);
    EXPECT_EQ(message.message, WM_USER + 10);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER);
}

TEST_F(Messages, AreBoundByWindow)
{
    const HWND other = type.make(&procedure);
    const HWND child = type.make(&procedure, window);
    PostMessageW(nullptr, WM_USER, 0, 0);
    PostMessageW(other, WM_USER + 1, 0, 0);
    PostMessageW(child, WM_USER + 2, 0, 0);
    EXPECT_TRUE(PeekMessageW(&message, window, 0, 0, PM_REMOVE)) << "children's messages are the parent's as well";
    EXPECT_EQ(message.hwnd, child);
    EXPECT_FALSE(PeekMessageW(&message, window, 0, 0, PM_REMOVE));
    const auto windowless = reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1));
    EXPECT_TRUE(PeekMessageW(&message, windowless, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER);
    EXPECT_FALSE(PeekMessageW(&message, windowless, 0, 0, PM_REMOVE));
    EXPECT_TRUE(PeekMessageW(&message, other, 0, 0, PM_REMOVE));
    DestroyWindow(other);
}

TEST_F(Messages, AreNotTakenForBadWindows)
{
    const HWND gone = type.make(&procedure);
    DestroyWindow(gone);
    const ServingThread server(type, DefWindowProcW);
    for (HWND bad : {gone, server.window(), reinterpret_cast<HWND>(0x5A5A)})
    {
        SetLastError(0);
        EXPECT_EQ(GetMessageW(&message, bad, 0, 0), -1);
        EXPECT_EQ(GetLastError(), windowGone);
        EXPECT_FALSE(PeekMessageW(&message, bad, 0, 0, PM_REMOVE));
    }
    EXPECT_EQ(GetMessageW(nullptr, nullptr, 0, 0), -1);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(PeekMessageW(nullptr, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, ToWindowsThatAreGoneFail)
{
    const HWND gone = type.make(&procedure);
    DestroyWindow(gone);
    SetLastError(0);
    EXPECT_FALSE(PostMessageW(gone, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), windowGone);
    SetLastError(0);
    EXPECT_EQ(SendMessageW(gone, WM_USER, 5, 0), 0);
    EXPECT_EQ(GetLastError(), windowGone);
    const MSG stale{gone, WM_USER, 5, 0, 0, {}};
    EXPECT_EQ(DispatchMessageW(&stale), 0);
    EXPECT_EQ(DispatchMessageW(nullptr), 0);
}

TEST_F(Messages, InTheQueueGoWithTheirWindow)
{
    const HWND other = type.make(&procedure);
    PostMessageW(other, WM_USER, 0, 0);
    PostMessageW(window, WM_USER + 1, 0, 0);
    PostMessageW(other, WM_USER, 0, 0);
    DestroyWindow(other);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 1);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Messages, ToThreadsThatAreGoneFail)
{
    DWORD ended = 0;
    {
        const PlatformThread thread([] {});
        ended = thread.id();
    }
    for (DWORD id : {ended, DWORD{0}, DWORD{0xFFFFFFFF}})
    {
        SetLastError(0);
        EXPECT_FALSE(PostThreadMessageW(id, WM_USER, 0, 0));
        EXPECT_EQ(GetLastError(), threadGone);
    }
}

TEST_F(Messages, WaitForAThreadThatHasNotBegun)
{
    const PlatformThread thread([] { return static_cast<DWORD>(runMessages()); }, CREATE_SUSPENDED);
    EXPECT_TRUE(PostThreadMessageW(thread.id(), WM_QUIT, 77, 0));
    ResumeThread(thread.handle());
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 77U);
}

TEST_F(Messages, WaitTenThousandAtMost)
{
    for (WPARAM i = 0; i < 10'000; ++i)
    {
        ASSERT_TRUE(PostMessageW(window, WM_USER, i, 0));
    }
    SetLastError(0);
    EXPECT_FALSE(PostMessageW(window, WM_USER, 10'000, 0));
    EXPECT_EQ(GetLastError(), ERROR_TOO_MANY_POSTS);
    EXPECT_FALSE(PostMessageW(nullptr, WM_USER, 0, 0)) << "the limit is the queue's, not the window's";
    ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_TRUE(PostMessageW(window, WM_USER, 10'000, 0));
    WPARAM expected = 1;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        ASSERT_EQ(message.wParam, expected++);
    }
    EXPECT_EQ(expected, 10'001U);
}

TEST_F(Messages, EndWithAQuitAfterAllThatWasPosted)
{
    PostQuitMessage(9);
    PostMessageW(window, WM_USER, 0, 0);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.message, WM_USER);
    EXPECT_EQ(GetMessageW(&message, nullptr, WM_USER, WM_USER), 0) << "a quit passes every bound";
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 9U);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    PostMessageW(nullptr, WM_QUIT, 4, 0);
    EXPECT_EQ(runMessages(), 4) << "a posted quit is one too";
}

TEST_F(Messages, OfAQuitComeBeforeDueTimers)
{
    const UINT_PTR timer = SetTimer(nullptr, 0, 1, nullptr);
    Sleep(10);
    PostQuitMessage(1);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.message, WM_TIMER);
    KillTimer(nullptr, timer);
}

TEST_F(Messages, FromOtherThreadsRunOnTheOwnersThread)
{
    DWORD ranOn = 0;
    const ServingThread server(type,
                               [&](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
                               {
                                   ranOn = number == WM_USER ? GetCurrentThreadId() : ranOn;
                                   return number == WM_USER ? static_cast<LRESULT>(wParam) + lParam
                                                            : DefWindowProcW(target, number, wParam, lParam);
                               });
    EXPECT_EQ(SendMessageW(server.window(), WM_USER, 40, 2), 42);
    EXPECT_EQ(ranOn, server.thread().id());
}

TEST_F(Messages, SentComeBeforePosted)
{
    std::atomic<bool> posted = false;
    const PlatformThread sender(
        [&]
        {
            PostMessageW(window, WM_USER + 1, 0, 0);
            posted = true;
            SendMessageW(window, WM_USER + 2, 0, 0);
        });
    while (!posted)
    {
        Sleep(1);
    }
    Sleep(20);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.message, WM_USER + 1);
    ASSERT_EQ(heard.size(), 1U) << "the sent one was run meanwhile";
    EXPECT_EQ(heard[0].message, WM_USER + 2);
    EXPECT_TRUE(sender.ended());
}

TEST_F(Messages, SentFromAThreadThatIsServedComeBackNested)
{
    HWND serverWindow = nullptr;
    Procedure nested = [&](HWND target, UINT number, WPARAM depth, LPARAM lParam) -> LRESULT
    {
        if (number != WM_USER)
        {
            return DefWindowProcW(target, number, depth, lParam);
        }
        const HWND next = target == window ? serverWindow : window;
        return depth == 0 ? 1 : SendMessageW(next, WM_USER, depth - 1, 0) + 1;
    };
    procedure = nested;
    const ServingThread server(type, nested);
    serverWindow = server.window();
    EXPECT_EQ(SendMessageW(serverWindow, WM_USER, 20, 0), 21) << "twenty times to and fro, each inside the last";
}

TEST_F(Messages, SentByTwoThreadsToEachOtherDoNotLock)
{
    std::array<std::atomic<HWND>, 2> windows{};
    std::array<int, 2> answered{};
    std::array<std::unique_ptr<PlatformThread>, 2> threads;
    std::atomic<int> done = 0;
    for (std::size_t i = 0; i < 2; ++i)
    {
        threads[i] = std::make_unique<PlatformThread>(
            [&, i]
            {
                Procedure answer = [&](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
                { return number == WM_USER ? 1 : DefWindowProcW(target, number, wParam, lParam); };
                windows[i] = type.make(&answer);
                while (windows[1 - i] == nullptr)
                {
                    Sleep(0);
                }
                for (int round = 0; round < 2000; ++round)
                {
                    answered[i] += static_cast<int>(SendMessageW(windows[1 - i], WM_USER, 0, 0));
                }
                for (++done; done < 2;)
                {
                    drainMessages();
                    Sleep(0);
                }
            });
    }
    EXPECT_TRUE(threads[0]->ended());
    EXPECT_TRUE(threads[1]->ended());
    EXPECT_EQ(answered[0], 2000);
    EXPECT_EQ(answered[1], 2000);
}

TEST_F(Messages, SentToAWindowThatIsDestroyedFail)
{
    std::atomic<bool> sent = false;
    DWORD error = 0;
    const PlatformThread sender(
        [&]
        {
            sent = true;
            const LRESULT result = SendMessageW(window, WM_USER, 5, 0);
            error = GetLastError();
            return static_cast<DWORD>(result);
        });
    while (!sent)
    {
        Sleep(1);
    }
    Sleep(20);
    DestroyWindow(window);
    EXPECT_TRUE(sender.ended());
    EXPECT_EQ(sender.exitCode(), 0U);
    EXPECT_EQ(error, windowGone);
    EXPECT_TRUE(std::ranges::none_of(heard, [](const MSG &entry) { return entry.message == WM_USER; }));
}

TEST_F(Messages, AnsweredByTheWindowsEndStillGiveTheirResult)
{
    const ServingThread server(type,
                               [](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
                               {
                                   if (number != WM_USER)
                                   {
                                       return DefWindowProcW(target, number, wParam, lParam);
                                   }
                                   DestroyWindow(target);
                                   return 6;
                               });
    EXPECT_EQ(SendMessageW(server.window(), WM_USER, 0, 0), 6);
}

/// A thread that owns a window, does not serve it for a while and then ends in some way.
TEST_F(Messages, SentToAThreadThatEndsFail)
{
    for (const int way : {0, 1, 2})
    {
        auto target = std::make_shared<std::atomic<HWND>>(nullptr);
        auto go = std::make_shared<TestEvent>();
        const PlatformThread owner(
            [target, go, way]
            {
                *target = CreateWindowExW(0, u"Messages", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
                go->wait();
                if (way == 1)
                {
                    ExitThread(3);
                }
                if (way == 2)
                {
                    Sleep(INFINITE);
                }
            });
        while (*target == nullptr)
        {
            Sleep(1);
        }
        DWORD error = 0;
        const PlatformThread sender(
            [&]
            {
                const LRESULT result = SendMessageW(*target, WM_USER, 5, 0);
                error = GetLastError();
                return static_cast<DWORD>(result);
            });
        Sleep(10);
        go->set();
        if (way == 2)
        {
            Sleep(5);
            EXPECT_TRUE(TerminateThread(owner.handle(), 1));
        }
        EXPECT_TRUE(sender.ended());
        EXPECT_EQ(sender.exitCode(), 0U);
        EXPECT_EQ(error, windowGone);
    }
}

TEST_F(Messages, WhoseProcedureEndsTheThreadFail)
{
    for (const bool terminated : {false, true})
    {
        auto inside = std::make_shared<TestEvent>();
        auto body = std::make_shared<Procedure>(
            [inside, terminated](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
            {
                if (number != WM_USER)
                {
                    return DefWindowProcW(target, number, wParam, lParam);
                }
                inside->set();
                if (!terminated)
                {
                    ExitThread(8);
                }
                Sleep(INFINITE);
                return 1;
            });
        auto target = std::make_shared<std::atomic<HWND>>(nullptr);
        const PlatformThread owner(
            [this, body, target]
            {
                *target = type.make(body.get());
                runMessages();
            });
        while (*target == nullptr)
        {
            Sleep(1);
        }
        const PlatformThread sender([&] { return static_cast<DWORD>(SendMessageW(*target, WM_USER, 0, 0)); });
        ASSERT_TRUE(inside->wait());
        if (terminated)
        {
            TerminateThread(owner.handle(), 1);
        }
        EXPECT_TRUE(sender.ended());
        EXPECT_EQ(sender.exitCode(), 0U);
        EXPECT_TRUE(owner.ended());
        EXPECT_EQ(owner.exitCode(), terminated ? 1U : 8U);
    }
}

TEST_F(Messages, WhoseProcedureThrowsFailForTheSenderAndThrowInTheOwner)
{
    std::atomic<bool> caught = false;
    Procedure thrower = [](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        if (number == WM_USER)
        {
            throw std::runtime_error("procedure");
        }
        return DefWindowProcW(target, number, wParam, lParam);
    };
    std::atomic<HWND> target = nullptr;
    const PlatformThread owner(
        [&]
        {
            target = type.make(&thrower);
            try
            {
                runMessages();
            }
            catch (const std::runtime_error &)
            {
                caught = true;
            }
            DestroyWindow(target);
        });
    while (target == nullptr)
    {
        Sleep(1);
    }
    EXPECT_EQ(SendMessageW(target, WM_USER, 0, 0), 0);
    EXPECT_TRUE(owner.ended());
    EXPECT_TRUE(caught);
}

TEST_F(Messages, OfATerminatedSenderAreDropped)
{
    std::atomic<bool> sent = false;
    const HWND target = window;
    const PlatformThread sender(
        [&sent, target]
        {
            sent = true;
            SendMessageW(target, WM_USER, 5, 0);
        });
    while (!sent)
    {
        Sleep(1);
    }
    Sleep(20);
    EXPECT_TRUE(TerminateThread(sender.handle(), 1));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(heard.empty());
}

TEST_F(Messages, SentInsideASenderThatEndsLeaveNothingOpen)
{
    // The middle thread waits for this thread, serves the far one meanwhile, and ends in that procedure.
    const HWND end = window;
    std::atomic<HWND> middleWindow = nullptr;
    Procedure middle = [&](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        if (number == WM_USER)
        {
            ExitThread(12);
        }
        return DefWindowProcW(target, number, wParam, lParam);
    };
    const PlatformThread owner(
        [&]
        {
            middleWindow = type.make(&middle);
            SendMessageW(end, WM_USER + 1, 0, 0);
        });
    while (middleWindow == nullptr)
    {
        Sleep(1);
    }
    const PlatformThread far([&] { return static_cast<DWORD>(SendMessageW(middleWindow, WM_USER, 0, 0)) + 1; });
    EXPECT_TRUE(owner.ended());
    EXPECT_EQ(owner.exitCode(), 12U);
    EXPECT_TRUE(far.ended());
    EXPECT_EQ(far.exitCode(), 1U);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(heard.empty()) << "the send of the thread that ended is not run";
}

TEST_F(Messages, ToForeignThreadsWorkAndEndWithThem)
{
    std::atomic<HWND> target = nullptr;
    std::atomic<DWORD> id = 0;
    Procedure answer = [](HWND hwnd, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
    { return number == WM_USER ? 3 : DefWindowProcW(hwnd, number, wParam, lParam); };
    std::thread foreign(
        [&]
        {
            target = type.make(&answer);
            id = GetCurrentThreadId();
            runMessages();
        });
    while (id == 0)
    {
        Sleep(1);
    }
    EXPECT_EQ(SendMessageW(target, WM_USER, 0, 0), 3);
    EXPECT_TRUE(PostThreadMessageW(id, WM_QUIT, 0, 0));
    foreign.join();
    EXPECT_FALSE(IsWindow(target));
    EXPECT_FALSE(PostThreadMessageW(id, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), threadGone);
}

/// Four threads, each with a window, send and post to each other at random; every message is counted.
TEST_F(Messages, OfFourThreadsAllArriveOnce)
{
    constexpr std::size_t size = 4;
    constexpr int perThread = 25'000;
    constexpr int sendEvery = 8;
    std::array<std::atomic<HWND>, size> windows{};
    std::array<long, size> posted{};
    std::array<long, size> received{};
    std::array<long, size> wrong{};
    std::atomic<std::size_t> ready = 0;
    std::atomic<std::size_t> finished = 0;
    std::array<std::unique_ptr<PlatformThread>, size> threads;
    const auto body = [&](std::size_t self)
    {
        Procedure answer = [&, self](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
        {
            if (number == WM_USER)
            {
                ++received[self];
                return static_cast<LRESULT>(wParam * 3);
            }
            return DefWindowProcW(target, number, wParam, lParam);
        };
        windows[self] = type.make(&answer);
        for (++ready; ready < size;)
        {
            Sleep(0);
        }
        std::mt19937 random(static_cast<unsigned>(self));
        for (int i = 0; i < perThread; ++i)
        {
            const std::size_t to = random() % size;
            const auto value = static_cast<WPARAM>(random());
            if (i % sendEvery == 0)
            {
                wrong[self] += SendMessageW(windows[to], WM_USER, value, 0) != static_cast<LRESULT>(value * 3);
            }
            else
            {
                while (!PostMessageW(windows[to], WM_USER, value, 0))
                {
                    drainMessages();
                    Sleep(0);
                }
            }
            ++posted[self];
            if (i % 64 == 0)
            {
                drainMessages();
            }
        }
        for (++finished; finished < size;)
        {
            drainMessages();
            Sleep(0);
        }
        drainMessages();
    };
    for (std::size_t i = 0; i < size; ++i)
    {
        threads[i] = std::make_unique<PlatformThread>([&, i] { body(i); });
    }
    for (const auto &thread : threads)
    {
        EXPECT_TRUE(thread->ended(60'000));
    }
    EXPECT_EQ(std::accumulate(received.begin(), received.end(), 0L), 100'000L);
    EXPECT_EQ(std::accumulate(posted.begin(), posted.end(), 0L), 100'000L);
    EXPECT_EQ(wrong, (std::array<long, size>{}));
}

TEST_F(Messages, SurviveThreadsThatAreKilledWhileTheyTalk)
{
    for (int round = 0; round < 40; ++round)
    {
        auto windows = std::make_shared<std::array<std::atomic<HWND>, 3>>();
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (std::size_t i = 0; i < 3; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>(
                [windows, i]
                {
                    (*windows)[i] =
                        CreateWindowExW(0, u"Messages", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
                    for (std::size_t next = i;; next = (next + 1) % 3)
                    {
                        SendMessageW((*windows)[next], WM_USER, 1, 0);
                        PostMessageW((*windows)[next], WM_USER, 1, 0);
                        MSG taken;
                        PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE);
                    }
                }));
        }
        Sleep(2);
        for (const auto &thread : threads)
        {
            EXPECT_TRUE(TerminateThread(thread->handle(), 1));
        }
        for (const auto &target : *windows)
        {
            EXPECT_FALSE(IsWindow(target));
        }
    }
}
} // namespace
