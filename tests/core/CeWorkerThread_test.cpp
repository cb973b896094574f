// The worker frame: start, restart, stop, messages, suspending.
#include "core/CeWorkerThread.h"

#include "core/TestWindow.h"
#include "core/TestWorker.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace
{
using namespace zb::test;

// --- Starting and ending -----------------------------------------------------------------------------------------

TEST(CeWorkerThread, DefaultsAreThoseOfEveryLoader)
{
    Worker worker(obedient);
    EXPECT_EQ(CeWorkerThread::STOP_TIMEOUT, 6000U);
    EXPECT_EQ(worker.GetStopTimeout(), 6000U);
    EXPECT_EQ(worker.GetNotifyWindow(), nullptr);
    EXPECT_EQ(worker.GetId(), 0U);
    EXPECT_EQ(worker.GetHandle(), nullptr);
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_FALSE(worker.IsStopSet());
    EXPECT_FALSE(worker.isAsked());
    EXPECT_EQ(worker.GetExitCode(), 0xFFFFFFFFU);
}

TEST(CeWorkerThread, RunsItsBodyOnAnotherThread)
{
    std::atomic<DWORD> thread = 0;
    std::atomic<bool> running = false;
    Worker worker(
        [&](Worker &self)
        {
            running = self.IsRunning();
            thread = GetCurrentThreadId();
            return DWORD{0};
        });
    EXPECT_TRUE(worker.Start());
    EXPECT_TRUE(waitUntil([&] { return hasEnded(worker); }));
    EXPECT_TRUE(running);
    EXPECT_EQ(thread, worker.GetId()) << "the id stays after the run";
    EXPECT_NE(thread, GetCurrentThreadId());
}

TEST(CeWorkerThread, EndOfARunPosts0x800WithResultAndId)
{
    TestWindow window;
    Worker worker([](Worker &) { return DWORD{42}; }, window.handle());
    worker.Start();
    EXPECT_TRUE(TestWindow::pumpUntil([&] { return !window.received(0x800).empty(); }));
    const auto messages = window.received(0x800);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].wParam, 42U);
    EXPECT_EQ(messages[0].lParam, static_cast<LPARAM>(worker.GetId()));
}

TEST(CeWorkerThread, ANewRunAfterEachEndOfItsOwn)
{
    std::atomic<int> runs = 0;
    Worker worker([&](Worker &) { return static_cast<DWORD>(++runs); });
    for (int i = 1; i <= 200; ++i)
    {
        ASSERT_TRUE(worker.Start());
        ASSERT_TRUE(waitUntil([&] { return runs == i; }));
    }
    worker.Stop(FALSE);
    EXPECT_TRUE(hasEnded(worker));
}

TEST(CeWorkerThread, StartOnARunStopsItAndBeginsANewOne)
{
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    std::atomic<bool> clear = true;
    Worker worker(
        [&](Worker &self)
        {
            clear = clear && !self.isAsked();
            ++begun;
            obedient(self);
            ++ended;
            return DWORD{0};
        });
    for (int i = 1; i <= 200; ++i)
    {
        ASSERT_TRUE(worker.Start());
        ASSERT_TRUE(waitUntil([&] { return begun == i; }));
        ASSERT_EQ(ended, i - 1);
        ASSERT_TRUE(worker.IsRunning());
    }
    worker.Stop(TRUE);
    EXPECT_EQ(ended, 200);
    EXPECT_TRUE(clear) << "the stop event is clear when a body begins";
    EXPECT_TRUE(hasEnded(worker));
}

TEST(CeWorkerThread, StopAndStartInTurn)
{
    Worker worker(obedient);
    for (int i = 0; i < 200; ++i)
    {
        ASSERT_TRUE(worker.Start());
        worker.Stop(i % 2);
        ASSERT_TRUE(hasEnded(worker));
        ASSERT_FALSE(worker.isAsked());
        ASSERT_FALSE(worker.IsStopSet());
    }
}

TEST(CeWorkerThread, StopComesFromAnyThread)
{
    Worker worker(obedient);
    for (int i = 0; i < 30; ++i)
    {
        worker.Start();
        std::thread([&worker] { worker.Stop(FALSE); }).join();
        ASSERT_TRUE(hasEnded(worker));
    }
    worker.Start();
    std::thread first([&worker] { worker.Stop(FALSE); });
    std::thread second([&worker] { worker.Stop(TRUE); });
    first.join();
    second.join();
    EXPECT_TRUE(hasEnded(worker));
}

TEST(CeWorkerThread, MayBeDeletedAsSoonAsStopHasReturned)
{
    for (int i = 0; i < 200; ++i)
    {
        auto worker = std::make_unique<Worker>([i](Worker &self) { return i % 3 == 0 ? DWORD{0} : obedient(self); });
        worker->Start();
        if (i % 2 == 0)
        {
            Sleep(1);
        }
        worker.reset(); // its destructor stops
    }
}

TEST(CeWorkerThread, StopReturnsAfterTheThreadsLastUseOfTheWorker)
{
    for (const bool obeys : {true, false})
    {
        std::atomic<bool> last = false;
        Worker worker([obeys](Worker &self) { return obeys ? obedient(self) : DWORD{0}; });
        worker.m_onDelete = [&]
        {
            // The handle is closed and the run lock free by now.
            EXPECT_EQ(worker.GetHandle(), nullptr);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            last = true;
        };
        worker.Start();
        if (!obeys)
        {
            ASSERT_TRUE(waitUntil([&] { return worker.GetHandle() == nullptr; }));
        }
        worker.Stop(FALSE);
        EXPECT_TRUE(last);
        worker.m_onDelete = nullptr;
    }
}

TEST(CeWorkerThread, StopOnAWorkerThatNeverRanReturnsAtOnce)
{
    Worker worker(obedient);
    const auto start = Clock::now();
    worker.Stop(TRUE);
    worker.Stop(FALSE);
    EXPECT_LT(millisecondsSince(start), 1000);
    EXPECT_FALSE(worker.isAsked());
    EXPECT_TRUE(worker.diary.notes().empty()) << "no hook is called";
    EXPECT_TRUE(worker.Start());
}

TEST(CeWorkerThread, StopShowsWhileItWaits)
{
    std::atomic<bool> seen = false;
    Worker worker(
        [&](Worker &self)
        {
            obedient(self);
            Sleep(20);
            seen = self.IsStopSet() && self.IsRunning();
            return DWORD{0};
        });
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.IsRunning(); }));
    worker.Stop(FALSE);
    EXPECT_TRUE(seen);
    EXPECT_FALSE(worker.IsStopSet());
    EXPECT_EQ(worker.diary.notes(), std::vector<std::string>{"OnStop"});
}

TEST(CeWorkerThread, PumpingStopKeepsTheHostsMessagesGoing)
{
    TestWindow window;
    Worker worker(
        [&](Worker &self)
        {
            obedient(self);
            // Would never return if the host did not dispatch meanwhile.
            SendMessageW(window.handle(), WM_APP, 0, 0);
            return DWORD{0};
        });
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.IsRunning(); }));
    worker.Stop(TRUE);
    EXPECT_EQ(window.received(WM_APP).size(), 1U);
    EXPECT_EQ(worker.diary.notes(), std::vector<std::string>{"OnStop"}) << "it was not killed";
}

TEST(CeWorkerThread, WaitForCompleteDispatchesUntilTheEnd)
{
    TestWindow window;
    Worker worker(
        [&](Worker &)
        {
            Sleep(30);
            SendMessageW(window.handle(), WM_APP, 0, 0);
            return DWORD{0};
        });
    worker.Start();
    worker.WaitForComplete();
    EXPECT_EQ(window.received(WM_APP).size(), 1U);
}

// --- The rest ----------------------------------------------------------------------------------------------------

TEST(CeWorkerThread, RunInlineNeedsAWorkerThatWasStarted)
{
    TestWindow window;
    std::vector<DWORD> threads;
    Worker worker(
        [&](Worker &self)
        {
            EXPECT_TRUE(self.IsRunning());
            threads.push_back(GetCurrentThreadId());
            return DWORD{6};
        },
        window.handle());
    EXPECT_EQ(worker.RunInline(), 0U);
    EXPECT_TRUE(threads.empty());
    worker.Start();
    worker.Stop(TRUE);
    EXPECT_EQ(worker.RunInline(), 6U);
    ASSERT_EQ(threads.size(), 2U);
    EXPECT_EQ(threads[1], GetCurrentThreadId());
    EXPECT_FALSE(worker.IsRunning());
    TestWindow::pump();
    EXPECT_EQ(window.received(0x800).size(), 2U);
    EXPECT_TRUE(worker.Start());
}

TEST(CeWorkerThread, SuspendsAndResumesWithItsHooks)
{
    std::atomic<int> steps = 0;
    Worker worker(
        [&steps](Worker &self)
        {
            while (!self.isAsked())
            {
                ++steps;
                Sleep(1);
            }
            return DWORD{0};
        });
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return steps > 2; }));
    EXPECT_EQ(worker.Pause(), 0U);
    EXPECT_EQ(worker.Suspend(), 1U);
    Sleep(20);
    const int held = steps;
    Sleep(50);
    EXPECT_EQ(steps, held);
    EXPECT_EQ(worker.Resume(), 2U);
    EXPECT_EQ(worker.Resume(), 1U);
    EXPECT_TRUE(waitUntil([&] { return steps > held; }));
    EXPECT_EQ(worker.diary.notes(), (std::vector<std::string>{"OnSuspend", "OnSuspend", "OnResume", "OnResume"}));
}

TEST(CeWorkerThread, CanBeStartedSuspendedAndWithAPriority)
{
    std::atomic<bool> ran = false;
    Worker worker(
        [&ran](Worker &self)
        {
            ran = true;
            return obedient(self);
        });
    ASSERT_TRUE(worker.Start(5, 0, CREATE_SUSPENDED));
    Sleep(20);
    EXPECT_FALSE(ran);
    EXPECT_EQ(worker.GetPriority(), 5);
    EXPECT_TRUE(worker.SetPriority(6));
    EXPECT_EQ(worker.GetPriority(), 6);
    worker.Resume();
    EXPECT_TRUE(waitUntil([&] { return ran.load(); }));
    EXPECT_EQ(worker.GetExitCode(), STILL_ACTIVE);
}

TEST(CeWorkerThread, PostsToItsThreadAndItsWindow)
{
    std::atomic<UINT> got = 0;
    std::atomic<bool> ready = false;
    Worker worker(
        [&](Worker &)
        {
            MSG message{};
            PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
            ready = true;
            GetMessageW(&message, nullptr, 0, 0);
            got = message.message;
            return DWORD{0};
        });
    EXPECT_FALSE(worker.PostThreadMessageW(WM_APP, 0, 0)) << "no thread yet";
    EXPECT_FALSE(worker.PostWindowMessage(WM_APP, 0, 0)) << "no window";
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return ready.load(); }));
    EXPECT_TRUE(worker.PostThreadMessageW(WM_APP + 3, 0, 0));
    EXPECT_TRUE(waitUntil([&] { return got == WM_APP + 3; }));
    TestWindow window;
    worker.SetNotifyWindow(window.handle());
    EXPECT_TRUE(worker.PostWindowMessage(WM_APP + 4, 5, 6));
    TestWindow::pump();
    ASSERT_EQ(window.received(WM_APP + 4).size(), 1U);
    EXPECT_EQ(window.received(WM_APP + 4)[0].wParam, 5U);
    EXPECT_EQ(window.received(WM_APP + 4)[0].lParam, 6);
}

/// Lets no more memory be mapped than is now, and a little.
class AddressLimit
{
  public:
    AddressLimit()
    {
        getrlimit(RLIMIT_AS, &m_before);
        std::ifstream statm("/proc/self/statm");
        rlim_t pages = 0;
        statm >> pages;
        rlimit limit = m_before;
        limit.rlim_cur = pages * 4096 + (rlim_t{512} << 20U);
        setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressLimit()
    {
        setrlimit(RLIMIT_AS, &m_before);
    }

  private:
    rlimit m_before{};
};

TEST(CeWorkerThread, AStartThatFailsCanBeTriedAgain)
{
    Worker worker([](Worker &) { return DWORD{0}; });
    {
        const AddressLimit limit;
        EXPECT_FALSE(worker.Start(THREAD_PRIORITY_NORMAL, 0xF0000000U));
        EXPECT_FALSE(worker.Start(THREAD_PRIORITY_NORMAL, 0xF0000000U));
    }
    EXPECT_TRUE(worker.Start());
}
} // namespace
