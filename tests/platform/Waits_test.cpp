// Waiting for one, any, all, and for messages.
#include "platform/kernel.h"
#include "platform/user.h"
#include "support/PlatformThread.h"

#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace
{
using zb::test::patience;
using zb::test::PlatformThread;
using zb::test::TestEvent;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

TEST(Waits, HaveTheResultNumbersOfTheDevice)
{
    EXPECT_EQ(WAIT_OBJECT_0, 0U);
    EXPECT_EQ(WAIT_ABANDONED, 0x80U);
    EXPECT_EQ(WAIT_TIMEOUT, 258U);
    EXPECT_EQ(WAIT_FAILED, 0xFFFFFFFFU);
    EXPECT_EQ(QS_ALLINPUT, 127U);
}

TEST(Waits, TimeOutAfterTheTimeTold)
{
    const TestEvent event;
    const auto start = Clock::now();
    EXPECT_EQ(WaitForSingleObject(event.handle(), 30), WAIT_TIMEOUT);
    EXPECT_GE(Clock::now() - start, milliseconds(30));
    HANDLE handle = event.handle();
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, 10, QS_ALLINPUT, 0), WAIT_TIMEOUT);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 10, QS_ALLINPUT, 0), WAIT_TIMEOUT);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, 0, QS_ALLINPUT, 0), WAIT_TIMEOUT);
}

TEST(Waits, WakeWhenTheThingIsGivenMeanwhile)
{
    const TestEvent event(false);
    const PlatformThread other(
        [&]
        {
            Sleep(10);
            event.set();
        });
    EXPECT_EQ(WaitForSingleObject(event.handle(), patience), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event.handle(), 0), WAIT_TIMEOUT);
}

TEST(Waits, ForAnyGiveTheLowestThatIsThere)
{
    const TestEvent a(false);
    const TestEvent b(false);
    const TestEvent c(false);
    const std::array handles{a.handle(), b.handle(), c.handle()};
    c.set();
    b.set();
    EXPECT_EQ(WaitForMultipleObjects(3, handles.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(WaitForMultipleObjects(3, handles.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 2);
    EXPECT_EQ(WaitForMultipleObjects(3, handles.data(), FALSE, 0), WAIT_TIMEOUT);
}

TEST(Waits, ForAnyTakeOneThingOnly)
{
    const TestEvent a(false, true);
    const TestEvent b(false, true);
    const std::array handles{a.handle(), b.handle()};
    EXPECT_EQ(WaitForMultipleObjects(2, handles.data(), FALSE, 0), WAIT_OBJECT_0);
    EXPECT_FALSE(a.wait(0));
    EXPECT_TRUE(b.wait(0));
}

TEST(Waits, ForAllTakeNothingUntilAllIsThere)
{
    const TestEvent a(false);
    const TestEvent b(false);
    const std::array handles{a.handle(), b.handle()};
    a.set();
    EXPECT_EQ(WaitForMultipleObjects(2, handles.data(), TRUE, 10), WAIT_TIMEOUT);
    EXPECT_TRUE(a.wait(0)) << "not taken by the wait that failed";
    const PlatformThread waiter([&] { return WaitForMultipleObjects(2, handles.data(), TRUE, patience); });
    Sleep(5);
    a.set();
    Sleep(5);
    EXPECT_TRUE(a.wait(0)) << "not taken while the other is missing";
    b.set();
    Sleep(5);
    EXPECT_FALSE(waiter.ended(0));
    a.set();
    EXPECT_TRUE(waiter.ended());
    EXPECT_EQ(waiter.exitCode(), WAIT_OBJECT_0);
    EXPECT_FALSE(a.wait(0));
    EXPECT_FALSE(b.wait(0));
}

TEST(Waits, ForAllRefuseOneThingTwice)
{
    const HANDLE first = CreateSemaphoreW(nullptr, 1, 1, u"waits: one thing twice");
    const HANDLE second = CreateSemaphoreW(nullptr, 1, 1, u"waits: one thing twice");
    for (const std::array handles : {std::array{first, first}, std::array{first, second}})
    {
        SetLastError(0);
        EXPECT_EQ(WaitForMultipleObjects(2, handles.data(), TRUE, 0), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(WaitForMultipleObjects(2, handles.data(), FALSE, 0), WAIT_OBJECT_0) << "for any it is no matter";
        EXPECT_TRUE(ReleaseSemaphore(first, 1, nullptr));
    }
    CloseHandle(first);
    CloseHandle(second);
}

TEST(Waits, TellAnAbandonedMutex)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const TestEvent set(true, true);
    const TestEvent unset;
    const auto abandon = [&]
    {
        const PlatformThread owner([&] { WaitForSingleObject(mutex, INFINITE); });
        owner.ended();
    };
    abandon();
    const std::array any{unset.handle(), mutex};
    EXPECT_EQ(WaitForMultipleObjects(2, any.data(), FALSE, 0), WAIT_ABANDONED + 1);
    ReleaseMutex(mutex);
    abandon();
    const std::array all{set.handle(), mutex};
    EXPECT_EQ(WaitForMultipleObjects(2, all.data(), TRUE, 0), WAIT_ABANDONED);
    ReleaseMutex(mutex);
    EXPECT_EQ(WaitForMultipleObjects(2, all.data(), TRUE, 0), WAIT_OBJECT_0);
    CloseHandle(mutex);
}

TEST(Waits, TakeUpTo64Handles)
{
    const TestEvent unset;
    const TestEvent set(true, true);
    std::vector<HANDLE> handles(65, unset.handle());
    handles[63] = set.handle();
    EXPECT_EQ(WaitForMultipleObjects(64, handles.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 63);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(63, handles.data(), 0, QS_ALLINPUT, 0), WAIT_TIMEOUT);
    const auto refused = [] { return GetLastError() == ERROR_INVALID_PARAMETER && (SetLastError(0), true); };
    SetLastError(0);
    EXPECT_TRUE(WaitForMultipleObjects(65, handles.data(), FALSE, 0) == WAIT_FAILED && refused());
    EXPECT_TRUE(WaitForMultipleObjects(0, handles.data(), FALSE, 0) == WAIT_FAILED && refused());
    EXPECT_TRUE(WaitForMultipleObjects(1, nullptr, FALSE, 0) == WAIT_FAILED && refused());
    EXPECT_TRUE(MsgWaitForMultipleObjectsEx(64, handles.data(), 0, QS_ALLINPUT, 0) == WAIT_FAILED && refused());
    EXPECT_TRUE(MsgWaitForMultipleObjectsEx(1, nullptr, 0, QS_ALLINPUT, 0) == WAIT_FAILED && refused());
}

TEST(Waits, FailForHandlesThatCantBeWaitedFor)
{
    HANDLE stale = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    CloseHandle(stale);
    const TestEvent good(true, true);
    for (HANDLE bad : {stale, HANDLE{nullptr}, INVALID_HANDLE_VALUE, reinterpret_cast<HANDLE>(0x12345678)})
    {
        SetLastError(0);
        EXPECT_EQ(WaitForSingleObject(bad, 0), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        SetLastError(0);
        const std::array handles{good.handle(), bad};
        EXPECT_EQ(WaitForMultipleObjects(2, handles.data(), FALSE, INFINITE), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

TEST(Waits, FailWhenTheHandleIsClosedUnderThem)
{
    for (const bool withMessages : {false, true})
    {
        HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        DWORD error = 0;
        const PlatformThread waiter(
            [&]
            {
                const DWORD result = withMessages ? MsgWaitForMultipleObjectsEx(1, &event, INFINITE, QS_ALLINPUT, 0)
                                                  : WaitForSingleObject(event, INFINITE);
                error = GetLastError();
                return result;
            });
        Sleep(10);
        EXPECT_TRUE(CloseHandle(event));
        EXPECT_TRUE(waiter.ended());
        EXPECT_EQ(waiter.exitCode(), WAIT_FAILED);
        EXPECT_EQ(error, ERROR_INVALID_HANDLE);
    }
}

TEST(Waits, GoOnWhenAnotherHandleToTheSameThingIsClosed)
{
    HANDLE first = CreateEventW(nullptr, TRUE, FALSE, u"waits: two handles");
    HANDLE second = CreateEventW(nullptr, TRUE, FALSE, u"waits: two handles");
    const PlatformThread waiter([&] { return WaitForSingleObject(first, patience); });
    Sleep(10);
    EXPECT_TRUE(EventModify(second, EVENT_RESET));
    EXPECT_TRUE(CloseHandle(second));
    EXPECT_FALSE(waiter.ended(10));
    EventModify(first, EVENT_SET);
    EXPECT_TRUE(waiter.ended());
    EXPECT_EQ(waiter.exitCode(), WAIT_OBJECT_0);
    CloseHandle(first);
}

TEST(Waits, ForAThreadEndWithIt)
{
    const TestEvent go;
    const PlatformThread thread([&] { go.wait(); });
    EXPECT_EQ(WaitForSingleObject(thread.handle(), 5), WAIT_TIMEOUT);
    const PlatformThread second([&] { return WaitForSingleObject(thread.handle(), INFINITE); });
    go.set();
    EXPECT_TRUE(second.ended());
    EXPECT_EQ(WaitForSingleObject(thread.handle(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(thread.handle(), INFINITE), WAIT_OBJECT_0) << "it stays signalled";
}

TEST(Waits, AThreadsHandleMayBeClosedWhileItRuns)
{
    const TestEvent go;
    const TestEvent done;
    std::function<void()> body = [&]
    {
        go.wait();
        done.set();
    };
    const auto start = [](void *function) -> DWORD
    {
        (*static_cast<std::function<void()> *>(function))();
        return 0;
    };
    EXPECT_TRUE(CloseHandle(CreateThread(nullptr, 0, start, &body, 0, nullptr)));
    go.set();
    EXPECT_TRUE(done.wait());
}

TEST(MessageWaits, EndForMessagesThatAreThereAlready)
{
    const TestEvent event;
    HANDLE handle = event.handle();
    ASSERT_TRUE(PostMessageW(nullptr, WM_USER, 1, 2));
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, INFINITE, QS_ALLINPUT, 0), WAIT_OBJECT_0 + 1)
            << "as long as it is not taken";
    }
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, INFINITE, QS_ALLINPUT, 0), WAIT_OBJECT_0);
    event.set();
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, INFINITE, QS_ALLINPUT, 0), WAIT_OBJECT_0) << "handles first";
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST(MessageWaits, EndForAQuit)
{
    PostQuitMessage(3);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, INFINITE, QS_ALLINPUT, 0), WAIT_OBJECT_0);
    MSG message;
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
}

TEST(MessageWaits, EndForAPostFromAnotherThread)
{
    const TestEvent event;
    HANDLE handle = event.handle();
    const DWORD id = GetCurrentThreadId();
    const PlatformThread other(
        [id]
        {
            Sleep(10);
            PostThreadMessageW(id, WM_USER + 1, 0, 0);
        });
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, patience, QS_ALLINPUT, 0), WAIT_OBJECT_0 + 1);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 1);
}

TEST(MessageWaits, EndForADueTimer)
{
    const TestEvent event;
    HANDLE handle = event.handle();
    const UINT_PTR timer = SetTimer(nullptr, 0, 15, nullptr);
    const auto start = Clock::now();
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(1, &handle, patience, QS_ALLINPUT, 0), WAIT_OBJECT_0 + 1);
    EXPECT_GE(Clock::now() - start, milliseconds(14));
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_TIMER);
    EXPECT_TRUE(KillTimer(nullptr, timer));
}

TEST(MessageWaits, EndForASentMessage)
{
    WNDCLASSW type{};
    type.lpfnWndProc = [](HWND, UINT, WPARAM wParam, LPARAM) -> LRESULT { return static_cast<LRESULT>(wParam) + 1; };
    type.lpszClassName = u"MessageWaits";
    RegisterClassW(&type);
    const HWND window = CreateWindowExW(0, u"MessageWaits", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    const PlatformThread sender([&] { return static_cast<DWORD>(SendMessageW(window, WM_USER, 41, 0)); });
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, patience, QS_ALLINPUT, 0), WAIT_OBJECT_0);
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "a sent message is run, not taken";
    EXPECT_TRUE(sender.ended());
    EXPECT_EQ(sender.exitCode(), 42U);
    DestroyWindow(window);
    UnregisterClassW(u"MessageWaits", nullptr);
}

TEST(MessageWaits, LookOnlyForKindsInTheMask)
{
    ASSERT_TRUE(PostMessageW(nullptr, WM_USER, 0, 0));
    constexpr DWORD timers = 0x10;
    constexpr DWORD posts = 0x08;
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 5, timers, 0), WAIT_TIMEOUT);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 5, posts, 0), WAIT_OBJECT_0);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

/// Random gives and takes against a count of what must come out.
TEST(Waits, LoseAndDoubleNothingUnderLoad)
{
    constexpr int givers = 3;
    constexpr int takers = 3;
    constexpr int gifts = 4000;
    const HANDLE semaphore = CreateSemaphoreW(nullptr, 0, 0x7FFFFFFF, nullptr);
    const TestEvent never;
    const TestEvent finished;
    std::atomic<int> taken = 0;
    std::vector<std::unique_ptr<PlatformThread>> threads;
    for (int i = 0; i < takers; ++i)
    {
        threads.push_back(std::make_unique<PlatformThread>(
            [&, i]
            {
                const std::array handles{never.handle(), semaphore, finished.handle()};
                for (;;)
                {
                    const DWORD result = i == 0
                                             ? MsgWaitForMultipleObjectsEx(3, handles.data(), 1, QS_ALLINPUT, 0)
                                             : WaitForMultipleObjects(3, handles.data(), FALSE, i == 1 ? 1 : INFINITE);
                    if (result == WAIT_OBJECT_0 + 1)
                    {
                        ++taken;
                    }
                    else if (result == WAIT_OBJECT_0 + 2)
                    {
                        return;
                    }
                }
            }));
    }
    {
        std::vector<std::unique_ptr<PlatformThread>> giving;
        for (int i = 0; i < givers; ++i)
        {
            giving.push_back(std::make_unique<PlatformThread>(
                [&]
                {
                    for (int gift = 0; gift < gifts; ++gift)
                    {
                        ReleaseSemaphore(semaphore, 1, nullptr);
                    }
                }));
        }
    }
    while (taken < givers * gifts)
    {
        Sleep(1);
    }
    finished.set();
    threads.clear();
    EXPECT_EQ(taken, givers * gifts);
    EXPECT_EQ(WaitForSingleObject(semaphore, 0), WAIT_TIMEOUT);
    CloseHandle(semaphore);
}

TEST(Waits, SurviveClosingAtRandomMoments)
{
    for (int round = 0; round < 300; ++round)
    {
        HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        const PlatformThread waiter([event] { return WaitForSingleObject(event, INFINITE); });
        if (round % 3 == 0)
        {
            Sleep(0);
        }
        EXPECT_TRUE(CloseHandle(event));
        EXPECT_TRUE(waiter.ended());
        EXPECT_EQ(waiter.exitCode(), WAIT_FAILED);
    }
}
} // namespace
