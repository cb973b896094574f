#include "platform/kernel.h"
#include "support/PlatformThread.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{
using zb::test::PlatformThread;
using zb::test::TestEvent;

class Section
{
  public:
    Section()
    {
        InitializeCriticalSection(&m_section);
    }
    ~Section()
    {
        DeleteCriticalSection(&m_section);
    }
    Section(const Section &) = delete;
    Section &operator=(const Section &) = delete;
    void enter()
    {
        EnterCriticalSection(&m_section);
    }
    bool tryEnter()
    {
        return TryEnterCriticalSection(&m_section) != FALSE;
    }
    void leave()
    {
        LeaveCriticalSection(&m_section);
    }
    /// Whether another thread could enter now.
    bool isFree()
    {
        const PlatformThread other(
            [this]
            {
                const bool entered = tryEnter();
                if (entered)
                {
                    leave();
                }
                return DWORD{entered};
            });
        other.ended();
        return other.exitCode() != 0;
    }

  private:
    CRITICAL_SECTION m_section{};
};

TEST(CriticalSections, AreEnteredAsOftenAsLeft)
{
    Section section;
    EXPECT_TRUE(section.isFree());
    section.enter();
    section.enter();
    EXPECT_TRUE(section.tryEnter());
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_FALSE(section.isFree());
        section.leave();
    }
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, LetOthersWaitUntilTheLastLeave)
{
    Section section;
    section.enter();
    section.enter();
    std::atomic<bool> inside = false;
    const PlatformThread other(
        [&]
        {
            section.enter();
            inside = true;
            section.leave();
        });
    Sleep(10);
    section.leave();
    Sleep(10);
    EXPECT_FALSE(inside);
    section.leave();
    EXPECT_TRUE(other.ended());
    EXPECT_TRUE(inside);
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, AreNotLeftForALivingOwner)
{
    Section section;
    section.enter();
    const PlatformThread other([&] { section.leave(); });
    EXPECT_TRUE(other.ended());
    EXPECT_FALSE(section.isFree());
    section.leave();
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, LeavingAFreeOneDoesNothing)
{
    Section section;
    section.leave();
    section.leave();
    EXPECT_TRUE(section.isFree());
    section.enter();
    EXPECT_FALSE(section.isFree());
    section.leave();
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, AreLeftOnBehalfOfATerminatedThread)
{
    for (int depth : {1, 3})
    {
        Section section;
        const TestEvent inside;
        const PlatformThread owner(
            [&]
            {
                for (int i = 0; i < depth; ++i)
                {
                    section.enter();
                }
                inside.set();
                Sleep(INFINITE);
            });
        ASSERT_TRUE(inside.wait());
        section.leave();
        EXPECT_FALSE(section.tryEnter()) << "the owner still lives";
        EXPECT_TRUE(TerminateThread(owner.handle(), 1));
        EXPECT_FALSE(section.tryEnter()) << "terminating alone frees nothing";
        section.leave();
        EXPECT_TRUE(section.tryEnter());
        section.leave();
        EXPECT_TRUE(section.isFree());
    }
}

TEST(CriticalSections, AreLeftOnBehalfOfAThreadThatEnded)
{
    Section section;
    const PlatformThread owner([&] { section.enter(); });
    EXPECT_TRUE(owner.ended());
    EXPECT_FALSE(section.tryEnter());
    section.leave();
    EXPECT_TRUE(section.tryEnter());
    section.leave();
}

TEST(CriticalSections, LeftOnBehalfGoToThoseWhoWait)
{
    Section section;
    const TestEvent inside;
    const PlatformThread owner(
        [&]
        {
            section.enter();
            inside.set();
            Sleep(INFINITE);
        });
    ASSERT_TRUE(inside.wait());
    std::vector<std::unique_ptr<PlatformThread>> waiters;
    std::atomic<int> passed = 0;
    for (int i = 0; i < 3; ++i)
    {
        waiters.push_back(std::make_unique<PlatformThread>(
            [&]
            {
                section.enter();
                ++passed;
                section.leave();
            }));
    }
    Sleep(10);
    TerminateThread(owner.handle(), 1);
    section.leave();
    waiters.clear();
    EXPECT_EQ(passed, 3);
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, DoNotWaitForATerminatedWaiter)
{
    Section section;
    section.enter();
    std::vector<std::unique_ptr<PlatformThread>> waiters;
    std::atomic<int> passed = 0;
    for (int i = 0; i < 4; ++i)
    {
        waiters.push_back(std::make_unique<PlatformThread>(
            [&]
            {
                section.enter();
                ++passed;
                section.leave();
            }));
        Sleep(5);
    }
    TerminateThread(waiters[0]->handle(), 1);
    TerminateThread(waiters[2]->handle(), 1);
    section.leave();
    waiters.clear();
    EXPECT_EQ(passed, 2);
    EXPECT_TRUE(section.isFree());
}

TEST(CriticalSections, ASuspendedWaiterDoesNotHoldUpTheOthers)
{
    Section section;
    section.enter();
    std::atomic<int> passed = 0;
    const auto pass = [&]
    {
        section.enter();
        ++passed;
        section.leave();
    };
    const PlatformThread first(pass);
    Sleep(5);
    const PlatformThread second(pass);
    Sleep(5);
    SuspendThread(first.handle());
    section.leave();
    EXPECT_TRUE(second.ended());
    EXPECT_EQ(passed, 1);
    ResumeThread(first.handle());
    EXPECT_TRUE(first.ended());
    EXPECT_EQ(passed, 2);
}

TEST(CriticalSections, KilledContendersNeverJamThem)
{
    for (int round = 0; round < 60; ++round)
    {
        Section section;
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (int i = 0; i < 3; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>(
                [&]
                {
                    for (;;)
                    {
                        section.enter();
                        section.leave();
                    }
                }));
        }
        Sleep(round % 3 == 0 ? 1 : 0);
        for (const auto &thread : threads)
        {
            EXPECT_TRUE(TerminateThread(thread->handle(), 1));
            section.leave();
            section.enter();
            section.leave();
        }
        EXPECT_TRUE(section.isFree());
    }
}

TEST(CriticalSections, ReleaseTheirWaitersWhenDeleted)
{
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    EnterCriticalSection(&section);
    const PlatformThread waiter([&] { EnterCriticalSection(&section); });
    Sleep(10);
    DeleteCriticalSection(&section);
    EXPECT_TRUE(waiter.ended());
    DeleteCriticalSection(&section);
    EXPECT_FALSE(TryEnterCriticalSection(&section));
    LeaveCriticalSection(&section);
}

TEST(CriticalSections, GuardWhatTheyShould)
{
    Section section;
    int unguarded = 0;
    {
        std::vector<std::unique_ptr<PlatformThread>> threads;
        for (int i = 0; i < 4; ++i)
        {
            threads.push_back(std::make_unique<PlatformThread>(
                [&, i]
                {
                    for (int step = 0; step < 20'000; ++step)
                    {
                        if (i != 0 || !section.tryEnter())
                        {
                            section.enter();
                        }
                        ++unguarded;
                        section.leave();
                    }
                }));
        }
    }
    EXPECT_EQ(unguarded, 80'000);
}

TEST(CriticalSections, StarveNobody)
{
    Section section;
    std::atomic<bool> end = false;
    std::array<std::atomic<int>, 3> turns{};
    std::vector<std::unique_ptr<PlatformThread>> threads;
    for (auto &count : turns)
    {
        threads.push_back(std::make_unique<PlatformThread>(
            [&]
            {
                while (!end)
                {
                    section.enter();
                    ++count;
                    section.leave();
                }
            }));
    }
    for (int i = 0; i < 2000; ++i)
    {
        Sleep(1);
        if (std::ranges::all_of(turns, [](const auto &count) { return count >= 100; }))
        {
            break;
        }
    }
    end = true;
    threads.clear();
    for (const auto &count : turns)
    {
        EXPECT_GE(count, 100);
    }
}
} // namespace
