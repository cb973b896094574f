#include "platform/kernel.h"
#include "platform/user.h"
#include "support/PlatformThread.h"

#include <chrono>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <thread>

namespace
{
using zb::test::PlatformThread;
using zb::test::TestEvent;
using Clock = std::chrono::steady_clock;

DWORD doubled(void *argument)
{
    return *static_cast<DWORD *>(argument) * 2;
}

struct SetsOnExit
{
    std::atomic<bool> &flag;
    ~SetsOnExit()
    {
        flag = true;
    }
};

TEST(Threads, EndWithTheValueOfTheirStart)
{
    DWORD value = 21;
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, doubled, &value, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_NE(id, 0U);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 42U);
    EXPECT_TRUE(CloseHandle(thread));
}

TEST(Threads, AreRefusedWithoutAStart)
{
    SetLastError(0);
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Threads, RunOnAStackThatIsNamedTooSmall)
{
    const auto start = [](void *) -> DWORD
    {
        std::array<char volatile, 200'000> room{};
        room[150'000] = 7;
        return static_cast<DWORD>(room[150'000]);
    };
    HANDLE thread = CreateThread(nullptr, 4096, start, nullptr, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, 7U);
    CloseHandle(thread);
}

TEST(Threads, KnowTheirIdBeforeTheFirstStep)
{
    DWORD id = 0;
    const auto start = [](void *told) -> DWORD { return *static_cast<DWORD *>(told) == GetCurrentThreadId() ? 1 : 0; };
    HANDLE thread = CreateThread(nullptr, 0, start, &id, 0, &id);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, 1U);
    CloseHandle(thread);
}

TEST(Threads, NeverUseAnIdAgain)
{
    std::set<DWORD> ids{GetCurrentThreadId()};
    for (int i = 0; i < 200; ++i)
    {
        const PlatformThread thread([] { return DWORD{0}; });
        EXPECT_TRUE(ids.insert(thread.id()).second);
    }
    DWORD foreign = 0;
    std::thread([&] { foreign = GetCurrentThreadId(); }).join();
    EXPECT_TRUE(ids.insert(foreign).second);
}

TEST(Threads, AreStillActiveUntilTheyEnd)
{
    const TestEvent go;
    const PlatformThread thread(
        [&]
        {
            go.wait();
            return DWORD{5};
        });
    EXPECT_EQ(thread.exitCode(), STILL_ACTIVE);
    EXPECT_FALSE(thread.ended(0));
    go.set();
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 5U);
}

TEST(Threads, KeepTheirOwnLastError)
{
    SetLastError(11);
    DWORD other = 99;
    const PlatformThread thread(
        [&]
        {
            other = GetLastError();
            SetLastError(12);
        });
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(other, 0U);
    EXPECT_EQ(GetLastError(), 11U);
}

TEST(Threads, UnwindTheirStackAtExitThread)
{
    std::atomic<bool> unwound = false;
    std::atomic<bool> taken = false;
    const PlatformThread thread(
        [&]
        {
            const SetsOnExit guard{unwound};
            try
            {
                ExitThread(77);
            }
            catch (const std::exception &)
            {
                taken = true;
            }
        });
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 77U);
    EXPECT_TRUE(unwound);
    EXPECT_FALSE(taken);
}

TEST(Threads, LetExitThreadPassACatchAllThatAsks)
{
    std::atomic<bool> reported = false;
    const PlatformThread thread(
        [&]
        {
            try
            {
                ExitThread(78);
            }
            catch (...)
            {
                zb::rethrowThreadExit();
                reported = true;
            }
            return DWORD{1};
        });
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 78U);
    EXPECT_FALSE(reported);
}

TEST(Threads, KeepOtherExceptionsInACatchAllThatAsks)
{
    zb::rethrowThreadExit();
    bool reported = false;
    try
    {
        throw std::runtime_error("body");
    }
    catch (...)
    {
        zb::rethrowThreadExit();
        reported = true;
    }
    EXPECT_TRUE(reported);
}

TEST(Threads, ExitThreadEndsThreadsOfOtherMakers)
{
    std::atomic<bool> unwound = false;
    std::atomic<bool> after = false;
    std::thread(
        [&]
        {
            const SetsOnExit guard{unwound};
            ExitThread(1);
            after = true;
        })
        .join();
    EXPECT_TRUE(unwound);
    EXPECT_FALSE(after);
}

TEST(Threads, MadeSuspendedRunOnceResumed)
{
    std::atomic<bool> ran = false;
    const PlatformThread thread([&] { ran = true; }, CREATE_SUSPENDED);
    EXPECT_FALSE(thread.ended(30));
    EXPECT_FALSE(ran);
    EXPECT_EQ(ResumeThread(thread.handle()), 1U);
    EXPECT_TRUE(thread.ended());
    EXPECT_TRUE(ran);
}

TEST(Threads, CountSuspensions)
{
    std::atomic<bool> ran = false;
    const PlatformThread thread([&] { ran = true; }, CREATE_SUSPENDED);
    EXPECT_EQ(SuspendThread(thread.handle()), 1U);
    EXPECT_EQ(SuspendThread(thread.handle()), 2U);
    EXPECT_EQ(ResumeThread(thread.handle()), 3U);
    EXPECT_EQ(ResumeThread(thread.handle()), 2U);
    EXPECT_FALSE(thread.ended(20));
    EXPECT_EQ(ResumeThread(thread.handle()), 1U);
    EXPECT_TRUE(thread.ended());
}

TEST(Threads, AreSuspendedAtMost127Times)
{
    const PlatformThread thread([] {}, CREATE_SUSPENDED);
    for (DWORD count = 1; count < 127; ++count)
    {
        ASSERT_EQ(SuspendThread(thread.handle()), count);
    }
    EXPECT_EQ(SuspendThread(thread.handle()), 0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), 156U);
    while (ResumeThread(thread.handle()) != 1)
    {
    }
    EXPECT_TRUE(thread.ended());
}

TEST(Threads, ResumingARunningOneGivesZero)
{
    const TestEvent go;
    const PlatformThread thread([&] { go.wait(); });
    EXPECT_EQ(ResumeThread(thread.handle()), 0U);
    go.set();
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(SuspendThread(thread.handle()), 0xFFFFFFFFU);
    EXPECT_EQ(ResumeThread(thread.handle()), 0xFFFFFFFFU);
}

TEST(Threads, StopWhileSuspended)
{
    std::atomic<bool> end = false;
    std::atomic<int> beats = 0;
    const PlatformThread thread(
        [&]
        {
            while (!end)
            {
                ++beats;
                zb::stoppingPoint();
            }
        });
    while (beats < 10)
    {
        Sleep(1);
    }
    EXPECT_EQ(SuspendThread(thread.handle()), 0U);
    int before = beats;
    for (int now = -1; now != before; before = std::exchange(now, beats.load()))
    {
        Sleep(20);
    }
    Sleep(30);
    EXPECT_EQ(beats, before);
    EXPECT_EQ(ResumeThread(thread.handle()), 1U);
    while (beats == before)
    {
        Sleep(1);
    }
    end = true;
    EXPECT_TRUE(thread.ended());
}

TEST(Threads, SuspendThemselves)
{
    const TestEvent ready;
    std::atomic<HANDLE> self = nullptr;
    std::atomic<bool> after = false;
    const PlatformThread thread(
        [&]
        {
            ready.wait();
            SuspendThread(self);
            after = true;
        });
    self = thread.handle();
    ready.set();
    DWORD count = 0;
    while ((count = ResumeThread(thread.handle())) == 0)
    {
        EXPECT_FALSE(after);
        Sleep(1);
    }
    EXPECT_EQ(count, 1U);
    EXPECT_TRUE(thread.ended());
    EXPECT_TRUE(after);
}

TEST(Threads, KeepWhatTheyWereGivenWhileSuspendedInAWait)
{
    const TestEvent event(false);
    std::atomic<bool> after = false;
    const PlatformThread thread(
        [&]
        {
            event.wait();
            after = true;
        });
    Sleep(10);
    SuspendThread(thread.handle());
    event.set();
    Sleep(20);
    EXPECT_FALSE(after);
    ResumeThread(thread.handle());
    EXPECT_TRUE(thread.ended());
    EXPECT_TRUE(after);
}

TEST(Threads, RememberTheirPriority)
{
    const TestEvent go;
    const PlatformThread thread([&] { go.wait(); });
    EXPECT_EQ(GetThreadPriority(thread.handle()), THREAD_PRIORITY_NORMAL);
    for (int priority : {4, 7, 0, 3})
    {
        EXPECT_TRUE(SetThreadPriority(thread.handle(), priority));
        EXPECT_EQ(GetThreadPriority(thread.handle()), priority);
    }
    EXPECT_FALSE(SetThreadPriority(thread.handle(), 8));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(SetThreadPriority(thread.handle(), -1));
    EXPECT_EQ(GetThreadPriority(thread.handle()), 3);
    go.set();
}

TEST(Threads, RefuseHandlesThatAreNotTheirs)
{
    const TestEvent event;
    HANDLE stale = CreateThread(
        nullptr, 0, [](void *) { return DWORD{0}; }, nullptr, 0, nullptr);
    WaitForSingleObject(stale, INFINITE);
    EXPECT_TRUE(CloseHandle(stale));
    for (HANDLE bad : {event.handle(), stale, HANDLE{nullptr}, INVALID_HANDLE_VALUE, reinterpret_cast<HANDLE>(0x1234)})
    {
        const auto refused = [] { return GetLastError() == ERROR_INVALID_HANDLE && (SetLastError(0), true); };
        SetLastError(0);
        DWORD code = 0;
        EXPECT_TRUE(!GetExitCodeThread(bad, &code) && refused());
        EXPECT_TRUE(!TerminateThread(bad, 0) && refused());
        EXPECT_TRUE(SuspendThread(bad) == 0xFFFFFFFFU && refused());
        EXPECT_TRUE(ResumeThread(bad) == 0xFFFFFFFFU && refused());
        EXPECT_TRUE(!SetThreadPriority(bad, 3) && refused());
        EXPECT_TRUE(GetThreadPriority(bad) == 0x7FFFFFFF && refused());
    }
    EXPECT_FALSE(CloseHandle(stale));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Threads, SleepAtLeastTheTimeTold)
{
    const auto start = Clock::now();
    Sleep(25);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(25));
    Sleep(0);
}

TEST(Threads, ComeAndGoInGreatNumber)
{
    std::atomic<int> ran = 0;
    for (int round = 0; round < 40; ++round)
    {
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (int i = 0; i < 16; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>([&] { ++ran; }));
        }
    }
    EXPECT_EQ(ran, 640);
}

TEST(InterlockedCalls, GiveTheNewOrTheFormerValue)
{
    LONG value = 5;
    EXPECT_EQ(InterlockedIncrement(&value), 6);
    EXPECT_EQ(InterlockedDecrement(&value), 5);
    EXPECT_EQ(InterlockedExchange(&value, 9), 5);
    EXPECT_EQ(value, 9);
    LONG shared = 0;
    {
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (int i = 0; i < 4; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>(
                [&]
                {
                    for (int step = 0; step < 10'000; ++step)
                    {
                        InterlockedIncrement(&shared);
                    }
                }));
        }
    }
    EXPECT_EQ(shared, 40'000);
}
} // namespace
