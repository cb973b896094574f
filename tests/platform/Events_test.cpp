// Events, mutexes and semaphores.
#include "platform/kernel.h"
#include "support/PlatformThread.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::PlatformThread;
using zb::test::TestEvent;

bool isSignalled(HANDLE handle)
{
    return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
}

/// Closes its handle.
struct Owned
{
    HANDLE handle;
    ~Owned()
    {
        CloseHandle(handle);
    }
};

TEST(Events, OfManualResetStaySetUntilReset)
{
    const TestEvent event(true, false);
    EXPECT_FALSE(isSignalled(event.handle()));
    EXPECT_TRUE(EventModify(event.handle(), EVENT_SET));
    EXPECT_TRUE(isSignalled(event.handle()));
    EXPECT_TRUE(isSignalled(event.handle()));
    EXPECT_TRUE(EventModify(event.handle(), EVENT_RESET));
    EXPECT_FALSE(isSignalled(event.handle()));
}

TEST(Events, OfAutomaticResetLetOneWaitPass)
{
    const TestEvent event(false, false);
    event.set();
    event.set();
    EXPECT_TRUE(isSignalled(event.handle()));
    EXPECT_FALSE(isSignalled(event.handle()));
}

TEST(Events, StartAsTold)
{
    EXPECT_TRUE(isSignalled(TestEvent(true, true).handle()));
    EXPECT_TRUE(isSignalled(TestEvent(false, true).handle()));
}

TEST(Events, HaveTheFunctionNumbersOfTheDevice)
{
    EXPECT_EQ(EVENT_PULSE, 1U);
    EXPECT_EQ(EVENT_RESET, 2U);
    EXPECT_EQ(EVENT_SET, 3U);
    const TestEvent event;
    for (DWORD unknown : {0U, 4U})
    {
        SetLastError(0);
        EXPECT_FALSE(EventModify(event.handle(), unknown));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
}

/// Threads that wait for an event, and how many of them passed.
class Crowd
{
  public:
    Crowd(const TestEvent &event, int size)
    {
        for (int i = 0; i < size; ++i)
        {
            m_threads.push_back(std::make_unique<PlatformThread>(
                [&]
                {
                    ++m_waiting;
                    event.wait();
                    ++m_passed;
                }));
        }
        while (m_waiting < size)
        {
            Sleep(1);
        }
        Sleep(20);
    }
    int passedSoon(int expected) const
    {
        for (int i = 0; i < 2000 && m_passed < expected; ++i)
        {
            Sleep(1);
        }
        Sleep(10);
        return m_passed;
    }

  private:
    std::atomic<int> m_waiting = 0;
    std::atomic<int> m_passed = 0;
    std::vector<std::unique_ptr<PlatformThread>> m_threads;
};

TEST(Events, OfManualResetLetAllWaitersPass)
{
    const TestEvent event(true);
    const Crowd crowd(event, 4);
    event.set();
    EXPECT_EQ(crowd.passedSoon(4), 4);
}

TEST(Events, OfAutomaticResetLetOneWaiterPassAtATime)
{
    const TestEvent event(false);
    const Crowd crowd(event, 3);
    for (int passed = 1; passed <= 3; ++passed)
    {
        event.set();
        EXPECT_EQ(crowd.passedSoon(passed), passed);
    }
    EXPECT_FALSE(isSignalled(event.handle()));
}

TEST(Events, OfManualResetPulseForAllThatWaitNow)
{
    const TestEvent event(true);
    const Crowd crowd(event, 3);
    EXPECT_TRUE(EventModify(event.handle(), EVENT_PULSE));
    EXPECT_EQ(crowd.passedSoon(3), 3);
    EXPECT_FALSE(isSignalled(event.handle()));
}

TEST(Events, OfAutomaticResetPulseForOneThatWaitsNow)
{
    const TestEvent event(false);
    {
        const Crowd crowd(event, 2);
        EXPECT_TRUE(EventModify(event.handle(), EVENT_PULSE));
        EXPECT_EQ(crowd.passedSoon(1), 1);
        EXPECT_TRUE(EventModify(event.handle(), EVENT_PULSE));
        EXPECT_EQ(crowd.passedSoon(2), 2);
    }
    EXPECT_TRUE(EventModify(event.handle(), EVENT_PULSE));
    EXPECT_FALSE(isSignalled(event.handle())) << "nobody waited, so nothing is left";
}

TEST(Events, WithANameAreShared)
{
    SetLastError(5);
    const Owned first{CreateEventW(nullptr, TRUE, FALSE, u"shared event")};
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    const Owned second{CreateEventW(nullptr, FALSE, TRUE, u"shared event")};
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    ASSERT_NE(second.handle, nullptr);
    EXPECT_NE(first.handle, second.handle);
    EXPECT_FALSE(isSignalled(second.handle)) << "the state of the first maker stands";
    EventModify(first.handle, EVENT_SET);
    EXPECT_TRUE(isSignalled(second.handle));
    EXPECT_TRUE(isSignalled(second.handle)) << "and its kind of reset";
}

TEST(Events, LiveOnByTheirOtherHandle)
{
    HANDLE first = CreateEventW(nullptr, TRUE, TRUE, u"outliving event");
    const Owned second{CreateEventW(nullptr, TRUE, FALSE, u"outliving event")};
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_TRUE(isSignalled(second.handle));
}

TEST(Events, FreeTheirNameWithTheLastHandle)
{
    CloseHandle(CreateEventW(nullptr, TRUE, TRUE, u"short event"));
    const Owned again{CreateEventW(nullptr, TRUE, FALSE, u"short event")};
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_FALSE(isSignalled(again.handle));
}

TEST(Events, WithoutANameAreNotShared)
{
    const Owned first{CreateEventW(nullptr, TRUE, FALSE, u"")};
    const Owned second{CreateEventW(nullptr, TRUE, FALSE, u"")};
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EventModify(first.handle, EVENT_SET);
    EXPECT_FALSE(isSignalled(second.handle));
}

TEST(Events, DoNotTakeTheNameOfAnotherKind)
{
    const Owned event{CreateEventW(nullptr, TRUE, FALSE, u"a name for one")};
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, u"a name for one"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(CreateSemaphoreW(nullptr, 0, 1, u"a name for one"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Events, WithManyPassingNamesKeepTheLivingOnes)
{
    const Owned kept{CreateEventW(nullptr, TRUE, TRUE, u"kept among many")};
    for (int i = 0; i < 500; ++i)
    {
        CloseHandle(CreateEventW(nullptr, TRUE, FALSE, (u"passing " + std::u16string(1, char16_t(0x100 + i))).c_str()));
    }
    const Owned again{CreateEventW(nullptr, TRUE, FALSE, u"kept among many")};
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_TRUE(isSignalled(again.handle));
}

TEST(Events, RefuseStaleAndForeignHandles)
{
    HANDLE stale = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    EXPECT_TRUE(CloseHandle(stale));
    const Owned mutex{CreateMutexW(nullptr, FALSE, nullptr)};
    for (HANDLE bad :
         {stale, mutex.handle, HANDLE{nullptr}, INVALID_HANDLE_VALUE, reinterpret_cast<HANDLE>(0x77777777)})
    {
        SetLastError(0);
        EXPECT_FALSE(EventModify(bad, EVENT_SET));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(stale));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Events, NeverShareAHandleWithAClosedOne)
{
    HANDLE stale = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    CloseHandle(stale);
    for (int i = 0; i < 1000; ++i)
    {
        const TestEvent event;
        EXPECT_NE(event.handle(), stale);
    }
}

TEST(Mutexes, BelongToOneThreadManyTimes)
{
    const Owned mutex{CreateMutexW(nullptr, TRUE, nullptr)};
    EXPECT_TRUE(isSignalled(mutex.handle));
    const auto othersWait = [&]
    {
        const PlatformThread other([&] { return WaitForSingleObject(mutex.handle, 0); });
        other.ended();
        return other.exitCode();
    };
    EXPECT_EQ(othersWait(), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex.handle));
    EXPECT_EQ(othersWait(), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex.handle));
    EXPECT_EQ(othersWait(), WAIT_OBJECT_0);
    EXPECT_EQ(othersWait(), WAIT_ABANDONED) << "the other one ended as its owner";
    SetLastError(0);
    EXPECT_FALSE(ReleaseMutex(mutex.handle));
    EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
}

TEST(Mutexes, AreReleasedByTheirOwnerAlone)
{
    const Owned mutex{CreateMutexW(nullptr, TRUE, nullptr)};
    const PlatformThread other(
        [&]
        {
            EXPECT_FALSE(ReleaseMutex(mutex.handle));
            EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
        });
    EXPECT_TRUE(other.ended());
    EXPECT_TRUE(ReleaseMutex(mutex.handle));
}

TEST(Mutexes, AreAbandonedByThreadsOfOtherMakersToo)
{
    const Owned mutex{CreateMutexW(nullptr, FALSE, nullptr)};
    std::thread([&] { WaitForSingleObject(mutex.handle, INFINITE); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex.handle, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex.handle));
}

TEST(Mutexes, ThatExistAreNotOwnedByASecondMaker)
{
    const Owned first{CreateMutexW(nullptr, FALSE, u"two makers")};
    const Owned second{CreateMutexW(nullptr, TRUE, u"two makers")};
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(ReleaseMutex(second.handle));
    EXPECT_EQ(GetLastError(), ERROR_NOT_OWNER);
}

TEST(Mutexes, ClosedWhileOwnedFreeTheirName)
{
    CloseHandle(CreateMutexW(nullptr, TRUE, u"closed while owned"));
    const Owned again{CreateMutexW(nullptr, TRUE, u"closed while owned")};
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_TRUE(ReleaseMutex(again.handle));
}

TEST(Mutexes, GuardWhatTheyShould)
{
    const Owned mutex{CreateMutexW(nullptr, FALSE, nullptr)};
    int unguarded = 0;
    {
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (int i = 0; i < 4; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>(
                [&]
                {
                    for (int step = 0; step < 2000; ++step)
                    {
                        WaitForSingleObject(mutex.handle, INFINITE);
                        ++unguarded;
                        ReleaseMutex(mutex.handle);
                    }
                }));
        }
    }
    EXPECT_EQ(unguarded, 8000);
}

TEST(Semaphores, CountUpToTheirMaximum)
{
    const Owned semaphore{CreateSemaphoreW(nullptr, 1, 3, nullptr)};
    LONG previous = -1;
    EXPECT_TRUE(ReleaseSemaphore(semaphore.handle, 2, &previous));
    EXPECT_EQ(previous, 1);
    SetLastError(0);
    previous = -1;
    EXPECT_FALSE(ReleaseSemaphore(semaphore.handle, 1, &previous));
    EXPECT_EQ(GetLastError(), ERROR_TOO_MANY_POSTS);
    EXPECT_EQ(previous, -1);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_TRUE(isSignalled(semaphore.handle));
    }
    EXPECT_FALSE(isSignalled(semaphore.handle));
    EXPECT_FALSE(ReleaseSemaphore(semaphore.handle, 4, nullptr)) << "more than fits changes nothing";
    EXPECT_FALSE(isSignalled(semaphore.handle));
    EXPECT_TRUE(ReleaseSemaphore(semaphore.handle, 3, nullptr));
}

TEST(Semaphores, RefuseCountsThatMakeNoSense)
{
    for (const auto &[initial, maximum] : {std::pair<LONG, LONG>{-1, 1}, {2, 1}, {0, 0}, {0, -1}})
    {
        SetLastError(0);
        EXPECT_EQ(CreateSemaphoreW(nullptr, initial, maximum, nullptr), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    const Owned semaphore{CreateSemaphoreW(nullptr, 0, 0x7FFFFFFF, nullptr)};
    EXPECT_FALSE(ReleaseSemaphore(semaphore.handle, 0, nullptr));
    EXPECT_FALSE(ReleaseSemaphore(semaphore.handle, -1, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(ReleaseSemaphore(semaphore.handle, 0x7FFFFFFF, nullptr));
    EXPECT_FALSE(ReleaseSemaphore(semaphore.handle, 0x7FFFFFFF, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_TOO_MANY_POSTS);
}

TEST(Semaphores, MayBeReleasedByAnyThread)
{
    const Owned gate{CreateSemaphoreW(nullptr, 0, 1, nullptr)};
    const PlatformThread other([&] { ReleaseSemaphore(gate.handle, 1, nullptr); });
    EXPECT_EQ(WaitForSingleObject(gate.handle, zb::test::patience), WAIT_OBJECT_0);
}
} // namespace
