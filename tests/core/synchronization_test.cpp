// The wrappers of what threads wait for.
#include "core/synchronization.h"

#include "core/TestWindow.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace
{
using zb::test::TestWindow;
using Clock = std::chrono::steady_clock;

LONGLONG millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

TEST(CeCriticalSection, IsRecursiveForItsThreadAlone)
{
    CeCriticalSection section;
    section.Enter();
    EXPECT_TRUE(section.TryEnter());
    std::thread([&section] { EXPECT_FALSE(section.TryLock()); }).join();
    section.Leave();
    section.Unlock();
    std::thread(
        [&section]
        {
            EXPECT_TRUE(section.TryLock());
            section.Leave();
        })
        .join();
    section.Lock();
    section.Unlock();
}

TEST(CeManualEvent, StaysSetUntilReset)
{
    CeManualEvent event;
    EXPECT_FALSE(event.IsSet());
    EXPECT_EQ(event.WaitFor(0), 258U);
    EXPECT_TRUE(event.Set());
    EXPECT_TRUE(event.IsSet());
    EXPECT_EQ(event.WaitFor(), 0U);
    EXPECT_EQ(event.WaitFor(5), 0U);
    EXPECT_TRUE(event.Reset());
    EXPECT_FALSE(event.IsSet());
    EXPECT_TRUE(event.Pulse());
    EXPECT_FALSE(event.IsSet());
    CeManualEvent initiallySet(true);
    EXPECT_TRUE(initiallySet.IsSet());
}

TEST(CeManualEvent, PulseReleasesWhoWaitsAndIsClearAgain)
{
    EXPECT_EQ(EVENT_PULSE, 1U);
    EXPECT_EQ(EVENT_RESET, 2U);
    EXPECT_EQ(EVENT_SET, 3U);
    CeManualEvent event;
    std::atomic<bool> over = false;
    DWORD waited = WAIT_FAILED;
    std::thread waiter(
        [&]
        {
            waited = event.WaitFor(10000);
            over = true;
        });
    while (!over)
    {
        EXPECT_TRUE(event.Pulse());
        Sleep(1);
    }
    waiter.join();
    EXPECT_EQ(waited, 0U);
    EXPECT_FALSE(event.IsSet());
}

TEST(CeManualEvent, CountsAsSetWithoutAHandle)
{
    CeManualEvent event;
    event.Close();
    EXPECT_EQ(event.GetHandle(), nullptr);
    EXPECT_TRUE(event.IsSet());
    EXPECT_FALSE(event.Set());
    EXPECT_EQ(event.WaitFor(0), WAIT_FAILED);
}

TEST(CeAutoEvent, ReleasesOneWaiter)
{
    CeAutoEvent event(true);
    EXPECT_EQ(event.WaitFor(0), 0U);
    EXPECT_EQ(event.WaitFor(0), 258U);
    event.Set();
    EXPECT_EQ(event.WaitFor(0), 0U);
    EXPECT_EQ(event.WaitFor(0), 258U);
}

TEST(CeEvents, SharedByName)
{
    CeManualEvent one(u"a manual event of this test");
    CeManualEvent two(u"a manual event of this test", nullptr);
    EXPECT_FALSE(two.IsSet());
    one.Set();
    EXPECT_TRUE(two.IsSet());
    CeAutoEvent autoOne(u"an auto event of this test");
    CeAutoEvent autoTwo(u"an auto event of this test");
    autoOne.Set();
    EXPECT_EQ(autoTwo.WaitFor(0), 0U);
    EXPECT_EQ(autoOne.WaitFor(0), 258U);
}

TEST(CeWaitableHandle, ConvertsToItsHandle)
{
    CeManualEvent event;
    const HANDLE handle = event;
    EXPECT_EQ(handle, event.GetHandle());
    EXPECT_NE(handle, nullptr);
}

TEST(CeWaitableHandle, TimedWaitIsOneWait)
{
    CeManualEvent event;
    const auto start = Clock::now();
    EXPECT_EQ(event.WaitFor(60), 258U);
    EXPECT_GE(millisecondsSince(start), 55);
}

TEST(CeWaitableHandle, ClosingEndsEveryWait)
{
    for (const bool pumping : {false, true})
    {
        CeManualEvent event;
        std::atomic<DWORD> result = 0;
        std::thread waiter([&] { result = pumping ? event.MsgWaitFor(INFINITE) : event.WaitFor(INFINITE); });
        Sleep(200); // past the first slice of the wait
        event.Close();
        waiter.join();
        EXPECT_EQ(result, WAIT_FAILED);
        EXPECT_EQ(event.WaitFor(INFINITE), WAIT_FAILED);
        EXPECT_EQ(event.MsgWaitFor(INFINITE), WAIT_FAILED);
    }
}

TEST(CeWaitableHandle, MsgWaitForDispatchesMeanwhile)
{
    TestWindow window;
    CeManualEvent event;
    window.m_onMessage = [&event](UINT message)
    {
        if (message == WM_APP + 2)
        {
            event.Set();
        }
    };
    PostMessageW(window.handle(), WM_APP + 1, 1, 0);
    PostMessageW(window.handle(), WM_APP + 2, 2, 0);
    EXPECT_EQ(event.MsgWaitFor(10000), 0U);
    EXPECT_EQ(window.received(WM_APP + 1).size(), 1U);
    event.Reset();
    EXPECT_EQ(event.MsgWaitFor(20), 258U);
}

TEST(CeWaitableHandle, EveryMessageStartsTheTimeAnew)
{
    TestWindow window;
    CeManualEvent event;
    std::thread poster(
        [&window]
        {
            for (int i = 0; i < 6; ++i)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(40));
                PostMessageW(window.handle(), WM_APP, 0, 0);
            }
        });
    const auto start = Clock::now();
    EXPECT_EQ(event.MsgWaitFor(150), 258U);
    EXPECT_GE(millisecondsSince(start), 6 * 40 + 140);
    poster.join();
    EXPECT_EQ(window.received(WM_APP).size(), 6U);
}

TEST(CeWaitableHandle, MsgWaitForKeepsAQuitForTheHostsLoop)
{
    TestWindow window;
    CeManualEvent event;
    PostQuitMessage(5);
    EXPECT_EQ(event.MsgWaitFor(20), 258U);
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 5U);
}

TEST(CeSemaphore, StartsAt0AndStopsAtItsMaximum)
{
    CeSemaphore semaphore(3);
    EXPECT_EQ(semaphore.WaitFor(0), 258U);
    EXPECT_TRUE(semaphore.Release());
    EXPECT_EQ(semaphore.Release(2), 1) << "the count before";
    EXPECT_FALSE(semaphore.Release());
    EXPECT_EQ(semaphore.Release(1), -1);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(semaphore.WaitFor(0), 0U);
    }
    EXPECT_EQ(semaphore.WaitFor(0), 258U);
}

TEST(CeMutex, StartsEmptyAndIsOwnedOnceCreated)
{
    CeMutex mutex;
    EXPECT_EQ(mutex.GetHandle(), nullptr);
    ASSERT_TRUE(mutex.Create(u"a mutex of this test"));
    for (const bool pump : {false, true})
    {
        std::thread(
            [pump]
            {
                CeMutex other;
                EXPECT_FALSE(other.Create(u"a mutex of this test", 30, pump));
                EXPECT_EQ(other.GetHandle(), nullptr);
            })
            .join();
    }
    mutex.Release();
    EXPECT_EQ(mutex.GetHandle(), nullptr);
    std::thread(
        []
        {
            CeMutex other;
            EXPECT_TRUE(other.Create(u"a mutex of this test", 30));
            other.Release();
        })
        .join();
}

TEST(CeMutex, CreateWaitsForTheOwnerOfTheName)
{
    CeMutex mutex;
    ASSERT_TRUE(mutex.Create(u"another mutex of this test"));
    std::atomic<bool> owned = false;
    std::thread waiter(
        [&owned]
        {
            CeMutex other;
            EXPECT_TRUE(other.Create(u"another mutex of this test", 10000));
            owned = true;
            other.Release();
        });
    Sleep(30);
    EXPECT_FALSE(owned);
    mutex.Release();
    waiter.join();
    EXPECT_TRUE(owned);
}

TEST(CeMutex, CreatedAgainUnderItsNameIsOwnedOnce)
{
    const HANDLE watcher =
        CreateMutexW(nullptr, FALSE, u"a name used twice"); // the mutex outlives the wrapper's handle
    CeMutex mutex;
    ASSERT_TRUE(mutex.Create(u"a name used twice"));
    ASSERT_TRUE(mutex.Create(u"a name used twice"));
    std::thread([watcher] { EXPECT_EQ(WaitForSingleObject(watcher, 0), 258U); }).join();
    mutex.Release();
    std::thread(
        [watcher]
        {
            EXPECT_EQ(WaitForSingleObject(watcher, 0), 0U) << "one release gives it up";
            ReleaseMutex(watcher);
        })
        .join();
    CloseHandle(watcher);
}

TEST(CeMutex, CreatedAgainIsTheNewOneAlone)
{
    CeMutex mutex;
    ASSERT_TRUE(mutex.Create(u"first name"));
    ASSERT_TRUE(mutex.Create(u"second name"));
    std::thread(
        []
        {
            CeMutex other;
            EXPECT_TRUE(other.Create(u"first name", 0));
            other.Release();
            EXPECT_FALSE(other.Create(u"second name", 0));
        })
        .join();
    mutex.Release();
}
} // namespace
