// Threads that are terminated: wherever they are, they stop, take nothing and leave nothing locked.
#include "platform/kernel.h"
#include "platform/user.h"
#include "support/PlatformThread.h"

#include <chrono>
#include <gtest/gtest.h>

namespace
{
using zb::test::PlatformThread;
using zb::test::TestEvent;

/// What a thread may be doing when it is terminated, for ever.
struct Occupation
{
    std::string name;
    std::function<void()> work;
};

HANDLE neverSet()
{
    static HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

/// A mutex and a section that the main thread holds, and a window that it never serves.
struct Held
{
    HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
    HANDLE semaphore = CreateSemaphoreW(nullptr, 0, 1, nullptr);
    CRITICAL_SECTION section{};
    HWND window = nullptr;

    Held()
    {
        InitializeCriticalSection(&section);
        EnterCriticalSection(&section);
        WNDCLASSW type{};
        type.lpfnWndProc = DefWindowProcW;
        type.lpszClassName = u"TerminationTest";
        RegisterClassW(&type);
        window = CreateWindowExW(0, u"TerminationTest", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    }
};

Held &held()
{
    static Held instance;
    return instance;
}

std::vector<Occupation> occupations()
{
    return {
        {"WaitForOne", [] { WaitForSingleObject(neverSet(), INFINITE); }},
        {"WaitForALongTime", [] { WaitForSingleObject(neverSet(), 3'600'000); }},
        {"WaitForAny",
         []
         {
             const std::array handles{neverSet(), held().semaphore};
             WaitForMultipleObjects(2, handles.data(), FALSE, INFINITE);
         }},
        {"WaitForAll",
         []
         {
             const std::array handles{neverSet(), held().semaphore};
             WaitForMultipleObjects(2, handles.data(), TRUE, INFINITE);
         }},
        {"WaitForMutex", [] { WaitForSingleObject(held().mutex, INFINITE); }},
        {"WaitForSemaphore", [] { WaitForSingleObject(held().semaphore, INFINITE); }},
        {"WaitForMessages",
         []
         {
             HANDLE event = neverSet();
             MsgWaitForMultipleObjectsEx(1, &event, INFINITE, QS_ALLINPUT, 0);
         }},
        {"WaitForMessagesAlone", [] { MsgWaitForMultipleObjectsEx(0, nullptr, INFINITE, QS_ALLINPUT, 0); }},
        {"GetMessage",
         []
         {
             MSG message;
             GetMessageW(&message, nullptr, 0, 0);
         }},
        {"SendMessage", [] { SendMessageW(held().window, WM_USER, 0, 0); }},
        {"EnterSection", [] { EnterCriticalSection(&held().section); }},
        {"SleepLong", [] { Sleep(3'600'000); }},
        {"SleepForEver", [] { Sleep(INFINITE); }},
        {"SleepZero", [] { Sleep(0); }},
        {"PollEvent", [] { WaitForSingleObject(neverSet(), 0); }},
        {"PollMessages",
         []
         {
             MSG message;
             PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
         }},
        {"PostMessages", [] { PostMessageW(nullptr, WM_USER, 0, 0); }},
        {"TryEnterSection", [] { TryEnterCriticalSection(&held().section); }},
        {"Allocate", [] { LocalFree(LocalAlloc(LMEM_FIXED, 100)); }},
        {"SetEvents", [] { EventModify(neverSet(), EVENT_RESET); }},
        {"StoppingPoint", [] { zb::stoppingPoint(); }},
    };
}

class Termination : public testing::TestWithParam<Occupation>
{
};

TEST_P(Termination, StopsTheThreadForGood)
{
    held();
    auto begun = std::make_shared<TestEvent>();
    auto beats = std::make_shared<std::atomic<int>>(0);
    const PlatformThread thread(
        [begun, beats, work = GetParam().work]
        {
            begun->set();
            for (;;)
            {
                work();
                ++*beats;
            }
        });
    ASSERT_TRUE(begun->wait());
    Sleep(3);
    EXPECT_TRUE(TerminateThread(thread.handle(), 123));
    EXPECT_TRUE(thread.ended(0));
    EXPECT_EQ(thread.exitCode(), 123U);
    EXPECT_TRUE(zb::isThreadTerminated(thread.id()));
    const int before = *beats;
    EventModify(neverSet(), EVENT_SET);
    Sleep(3);
    EventModify(neverSet(), EVENT_RESET);
    EXPECT_EQ(*beats, before);
    EXPECT_FALSE(TerminateThread(thread.handle(), 5));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(thread.exitCode(), 123U);
    EXPECT_FALSE(PostThreadMessageW(thread.id(), WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), 1444U);
}

INSTANTIATE_TEST_SUITE_P(Anywhere, Termination, testing::ValuesIn(occupations()),
                         [](const auto &info) { return info.param.name; });

TEST(TerminatedThreads, LeavesWhatTheThreadWaitedForToOthers)
{
    const TestEvent event(false);
    const HANDLE semaphore = CreateSemaphoreW(nullptr, 0, 1, nullptr);
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
    std::vector<std::unique_ptr<PlatformThread>> threads;
    for (HANDLE handle : {event.handle(), semaphore, mutex})
    {
        threads.push_back(std::make_unique<PlatformThread>([handle] { WaitForSingleObject(handle, INFINITE); }));
    }
    Sleep(10);
    for (const auto &thread : threads)
    {
        EXPECT_TRUE(TerminateThread(thread->handle(), 1));
    }
    event.set();
    EXPECT_TRUE(event.wait(0));
    EXPECT_FALSE(event.wait(0));
    EXPECT_TRUE(ReleaseSemaphore(semaphore, 1, nullptr));
    EXPECT_EQ(WaitForSingleObject(semaphore, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    CloseHandle(semaphore);
    CloseHandle(mutex);
}

TEST(TerminatedThreads, AbandonsMutexes)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const TestEvent owned;
    const PlatformThread thread(
        [&, mutex]
        {
            WaitForSingleObject(mutex, INFINITE);
            WaitForSingleObject(mutex, INFINITE);
            owned.set();
            Sleep(INFINITE);
        });
    ASSERT_TRUE(owned.wait());
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(TerminateThread(thread.handle(), 1));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_FALSE(ReleaseMutex(mutex));
    CloseHandle(mutex);
}

TEST(TerminatedThreads, ReachesAThreadThatOnlyComputesAtItsNextCall)
{
    auto stage = std::make_shared<std::atomic<int>>(0);
    const PlatformThread thread(
        [stage]
        {
            *stage = 1;
            while (*stage == 1)
            {
            }
            *stage = 3;
            zb::stoppingPoint();
            *stage = 4;
        });
    while (*stage != 1)
    {
        Sleep(1);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(TerminateThread(thread.handle(), 9));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(49)) << "a grace is given";
    EXPECT_LT(waited, std::chrono::seconds(5)) << "but no more than that";
    EXPECT_EQ(thread.exitCode(), 9U);
    *stage = 2;
    while (*stage != 3)
    {
        Sleep(1);
    }
    Sleep(20);
    EXPECT_EQ(*stage, 3);
}

TEST(TerminatedThreads, ReachesSuspendedThreads)
{
    auto ran = std::make_shared<std::atomic<bool>>(false);
    const PlatformThread unborn([ran] { *ran = true; }, CREATE_SUSPENDED);
    EXPECT_TRUE(TerminateThread(unborn.handle(), 4));
    EXPECT_EQ(unborn.exitCode(), 4U);
    EXPECT_EQ(ResumeThread(unborn.handle()), 0xFFFFFFFFU);

    const PlatformThread waiting([] { WaitForSingleObject(neverSet(), INFINITE); });
    Sleep(3);
    SuspendThread(waiting.handle());
    Sleep(3);
    EXPECT_TRUE(TerminateThread(waiting.handle(), 5));
    EXPECT_EQ(waiting.exitCode(), 5U);
    Sleep(5);
    EXPECT_FALSE(*ran);
}

TEST(TerminatedThreads, MayBeOfTheThreadItself)
{
    auto handle = std::make_shared<std::atomic<HANDLE>>(nullptr);
    auto after = std::make_shared<std::atomic<bool>>(false);
    const PlatformThread thread(
        [handle, after]
        {
            TerminateThread(*handle, 31);
            *after = true;
        },
        CREATE_SUSPENDED);
    *handle = thread.handle();
    ResumeThread(thread.handle());
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 31U);
    EXPECT_FALSE(*after);
    EXPECT_TRUE(zb::isThreadTerminated(thread.id()));
}

TEST(TerminatedThreads, OfAThreadThatHasEndedIsRefused)
{
    const PlatformThread thread([] { return DWORD{3}; });
    EXPECT_TRUE(thread.ended());
    EXPECT_FALSE(TerminateThread(thread.handle(), 1));
    EXPECT_EQ(thread.exitCode(), 3U);
    EXPECT_FALSE(zb::isThreadTerminated(thread.id()));
    EXPECT_FALSE(zb::isThreadTerminated(0));
}

TEST(TerminatedThreads, AgainstTheThreadsOwnEndHasOneWinner)
{
    for (int round = 0; round < 200; ++round)
    {
        const PlatformThread thread([] { return DWORD{1}; });
        if (round % 2 != 0)
        {
            Sleep(0);
        }
        const bool killed = TerminateThread(thread.handle(), 2) != FALSE;
        EXPECT_TRUE(thread.ended());
        EXPECT_EQ(thread.exitCode(), killed ? 2U : 1U);
        EXPECT_EQ(zb::isThreadTerminated(thread.id()), killed);
    }
}

TEST(TerminatedThreads, TakesTheWindowsOfTheThreadAlong)
{
    held();
    auto window = std::make_shared<std::atomic<HWND>>(nullptr);
    const TestEvent made;
    const PlatformThread thread(
        [&, window]
        {
            *window =
                CreateWindowExW(0, u"TerminationTest", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
            made.set();
            Sleep(INFINITE);
        });
    ASSERT_TRUE(made.wait());
    EXPECT_TRUE(IsWindow(*window));
    EXPECT_TRUE(TerminateThread(thread.handle(), 1));
    EXPECT_FALSE(IsWindow(*window));
    EXPECT_FALSE(PostMessageW(*window, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
}

TEST(TerminatedThreads, LeavesNothingAmongTheWindowsOfTheScreenOrOfAParent)
{
    held(); // registers the class
    const auto make = [](DWORD style, HWND parent)
    {
        return CreateWindowExW(0, u"TerminationTest", nullptr, style, 0, 0, 4, 4, parent, nullptr, nullptr, nullptr);
    };
    const HWND lowest = make(WS_POPUP, nullptr);
    const HWND child = make(WS_CHILD, lowest);
    for (unsigned round = 0; round < 300; ++round)
    {
        const PlatformThread thread(
            [=]
            {
                for (;;)
                {
                    DestroyWindow(make(WS_POPUP, nullptr));
                    DestroyWindow(make(WS_CHILD, lowest));
                }
            });
        Sleep(round % 4);
        EXPECT_TRUE(TerminateThread(thread.handle(), 1));
    }
    Sleep(5); // the last one may be in the midst of its steps to the next stop
    SetWindowPos(lowest, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    HWND one = GetWindow(lowest, GW_HWNDFIRST);
    while (one != nullptr && one != lowest)
    {
        ASSERT_TRUE(IsWindow(one));
        one = GetWindow(one, GW_HWNDNEXT);
    }
    EXPECT_EQ(one, lowest) << "every window below another is found from it";
    EXPECT_EQ(GetWindow(lowest, GW_CHILD), child);
    EXPECT_EQ(GetWindow(child, GW_HWNDNEXT), nullptr);
    EXPECT_TRUE(DestroyWindow(lowest));
}

TEST(TerminatedThreads, DoesNotHoldUpTheEndOfTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const PlatformThread thread([] { Sleep(INFINITE); });
            Sleep(5);
            TerminateThread(thread.handle(), 1);
            std::exit(17);
        },
        testing::ExitedWithCode(17), "");
}
} // namespace
