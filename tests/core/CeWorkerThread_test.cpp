// The worker frame: start, restart, stop, kill, the ends of a run, messages.
#include "core/CeWorkerThread.h"

#include "core/TestWindow.h"
#include "platform/files.h"
#include "support/TestDevice.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace
{
using zb::test::TestWindow;
using Clock = std::chrono::steady_clock;

LONGLONG millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

/// What happened, from any thread, in order.
class Diary
{
  public:
    void note(const std::string &what)
    {
        const std::lock_guard lock(m_guard);
        m_notes.push_back(what);
    }
    std::vector<std::string> notes() const
    {
        const std::lock_guard lock(m_guard);
        return m_notes;
    }

  private:
    mutable std::mutex m_guard;
    std::vector<std::string> m_notes;
};

class Worker : public CeWorkerThread
{
  public:
    using Body = std::function<DWORD(Worker &)>;
    explicit Worker(Body body, HWND window = nullptr, DWORD stopTimeout = STOP_TIMEOUT, bool selfDelete = false)
        : CeWorkerThread(selfDelete, window, stopTimeout), m_body(std::move(body))
    {
    }
    ~Worker() override
    {
        Stop(TRUE);
        if (m_onDestroy)
        {
            m_onDestroy();
        }
    }
    bool isAsked()
    {
        return GetStopEvent().IsSet();
    }
    Diary diary;
    std::function<void()> m_onDestroy;
    std::function<void()> m_onStop;
    std::atomic<DWORD> postKillThread = 0;

  protected:
    DWORD ThreadProc() override
    {
        return m_body(*this);
    }
    void OnStop() override
    {
        diary.note("OnStop");
        if (m_onStop)
        {
            m_onStop();
        }
    }
    void OnSuspend() override
    {
        diary.note("OnSuspend");
    }
    void OnResume() override
    {
        diary.note("OnResume");
    }
    void OnKill() override
    {
        diary.note("OnKill");
    }
    void PostKill() override
    {
        postKillThread = GetCurrentThreadId();
        diary.note("PostKill");
    }

  private:
    Body m_body;
};

/// Runs until it is asked to stop.
DWORD obedient(Worker &worker)
{
    while (!worker.isAsked())
    {
        Sleep(1);
    }
    return 1;
}

/// Runs for ever, as far as the stop event goes.
DWORD deaf(Worker &)
{
    for (;;)
    {
        Sleep(1);
    }
}

bool waitUntil(const std::function<bool()> &condition)
{
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (!condition() && Clock::now() < end)
    {
        Sleep(1);
    }
    return condition();
}

bool hasEnded(const CeWorkerThread &worker)
{
    return !worker.IsRunning() && worker.GetHandle() == nullptr;
}

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

// --- Killing -----------------------------------------------------------------------------------------------------

TEST(CeWorkerThread, BodyThatIgnoresTheEventIsKilled)
{
    TestWindow window;
    Worker worker(deaf, window.handle(), 60);
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.IsRunning(); }));
    const auto start = Clock::now();
    worker.Stop(FALSE);
    EXPECT_GE(millisecondsSince(start), 55);
    EXPECT_EQ(worker.diary.notes(), (std::vector<std::string>{"OnStop", "OnKill", "PostKill"}));
    EXPECT_EQ(worker.postKillThread, GetCurrentThreadId());
    EXPECT_TRUE(hasEnded(worker));
    EXPECT_FALSE(worker.isAsked());
    EXPECT_TRUE(zb::isThreadTerminated(worker.GetId()));
    TestWindow::pump();
    EXPECT_TRUE(window.received(0x800).empty()) << "a killed run posts nothing";
}

TEST(CeWorkerThread, KilledWorkerStartsAnewAndMayGo)
{
    std::atomic<int> runs = 0;
    for (int i = 0; i < 5; ++i)
    {
        Worker worker(
            [&](Worker &self)
            {
                ++runs;
                return deaf(self);
            },
            nullptr, 20);
        const int before = runs;
        worker.Start();
        ASSERT_TRUE(waitUntil([&] { return runs == before + 1; }));
        ASSERT_TRUE(worker.Start()) << "kills the first run";
        ASSERT_TRUE(waitUntil([&] { return runs == before + 2; }));
    }
}

TEST(CeWorkerThread, DefaultTimeoutIsSixSeconds)
{
    Worker worker(deaf);
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.IsRunning(); }));
    const auto start = Clock::now();
    worker.Stop(TRUE);
    const LONGLONG took = millisecondsSince(start);
    EXPECT_GE(took, 5990);
    EXPECT_LT(took, 9000);
    EXPECT_EQ(worker.diary.notes(), (std::vector<std::string>{"OnStop", "OnKill", "PostKill"}));
}

TEST(CeWorkerThread, KillReturnsWhatTerminateReturned)
{
    Worker worker(deaf, nullptr, 20);
    EXPECT_FALSE(worker.Kill(9)) << "nothing runs";
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.IsRunning(); }));
    EXPECT_TRUE(worker.Kill(9));
    EXPECT_EQ(worker.diary.notes(), (std::vector<std::string>{"OnKill", "PostKill", "OnKill", "PostKill"}));
    EXPECT_TRUE(hasEnded(worker));
    EXPECT_TRUE(worker.Start());
}

TEST(CeWorkerThread, KillRacesWithTheNaturalEnd)
{
    for (int i = 0; i < 100; ++i)
    {
        auto worker = std::make_unique<Worker>(
            [i](Worker &)
            {
                std::this_thread::sleep_for(std::chrono::microseconds(i * 10));
                return DWORD{0};
            },
            nullptr, 1000);
        worker->Start();
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        worker->Kill(1);
        EXPECT_TRUE(hasEnded(*worker));
        worker.reset();
    }
}

// --- Other ends --------------------------------------------------------------------------------------------------

TEST(CeWorkerThread, ExitEndsARunFromInside)
{
    TestWindow window;
    std::atomic<bool> cameBack = false;
    std::atomic<bool> unwound = false;
    Worker worker(
        [&](Worker &self) -> DWORD
        {
            struct Mark
            {
                std::atomic<bool> &flag;
                ~Mark()
                {
                    flag = true;
                }
            } mark{unwound};
            self.Exit(7);
            cameBack = true;
            return 0;
        },
        window.handle());
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_TRUE(worker.Start());
        ASSERT_TRUE(waitUntil([&] { return worker.GetExitCode() == 7; }));
        EXPECT_FALSE(worker.IsRunning());
    }
    EXPECT_TRUE(unwound);
    EXPECT_FALSE(cameBack);
    TestWindow::pump();
    const auto messages = window.received(0x800);
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0].wParam, 0U);
    EXPECT_EQ(messages[0].lParam, 0);
    for (const std::string &note : worker.diary.notes())
    {
        EXPECT_EQ(note, "OnStop") << "nothing was killed";
    }
}

TEST(CeWorkerThread, EndingTheThreadPastTheWorkerDoesNotHangTheNextStart)
{
    Worker worker([](Worker &) -> DWORD { ExitThread(3); });
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_TRUE(worker.Start());
        ASSERT_TRUE(waitUntil([&] { return worker.GetExitCode() == 3; }));
    }
}

TEST(CeWorkerThread, SelfDeletingWorkerGoesAtTheEndOfItsRun)
{
    std::atomic<int> destroyed = 0;
    for (int i = 0; i < 50; ++i)
    {
        const bool exits = i % 2 == 0;
        auto *worker = new Worker(
            [exits](Worker &self)
            {
                if (exits)
                {
                    self.Exit(1);
                }
                return DWORD{0};
            },
            nullptr, 1000, true);
        worker->m_onDestroy = [&destroyed] { ++destroyed; };
        worker->Start();
    }
    EXPECT_TRUE(waitUntil([&] { return destroyed == 50; }));
}

TEST(CeWorkerThread, SelfDeletingWorkerIsAskedButNotWaitedFor)
{
    std::atomic<bool> destroyed = false;
    std::atomic<bool> released = false;
    auto *worker = new Worker(
        [&](Worker &)
        {
            while (!released)
            {
                Sleep(1);
            }
            return DWORD{0};
        },
        nullptr, 10, true);
    worker->m_onDestroy = [&destroyed] { destroyed = true; };
    worker->Start();
    ASSERT_TRUE(waitUntil([&] { return worker->IsRunning(); }));
    worker->Stop(FALSE);
    Sleep(30);
    EXPECT_TRUE(worker->IsRunning()) << "and not killed";
    released = true;
    EXPECT_TRUE(waitUntil([&] { return destroyed.load(); }));
}

TEST(CeWorkerThread, SelfDeletingWorkerWaitsForAStopThatIsInIt)
{
    for (int i = 0; i < 50; ++i)
    {
        std::atomic<bool> destroyed = false;
        std::atomic<bool> bodyEnds = false;
        auto *worker = new Worker(
            [&bodyEnds](Worker &self)
            {
                obedient(self);
                bodyEnds = true;
                return DWORD{0};
            },
            nullptr, 1000, true);
        worker->m_onDestroy = [&destroyed] { destroyed = true; };
        // Stop is held until the body has seen the event, so the thread ends while Stop still uses the worker.
        worker->m_onStop = [&bodyEnds] { waitUntil([&bodyEnds] { return bodyEnds.load(); }); };
        worker->Start();
        worker->Stop(FALSE);
        EXPECT_TRUE(waitUntil([&destroyed] { return destroyed.load(); }));
    }
}

TEST(CeWorkerThread, DeleteDoesNothingToOtherWorkers)
{
    Worker worker(obedient);
    worker.Delete();
    EXPECT_TRUE(worker.Start());
}

class CeWorkerThreadException : public zb::test::DeviceTest
{
  protected:
    std::string log() const
    {
        std::ifstream in(device.files() / "My Documents" / "ZembrikDebugLog.txt", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
};

TEST_F(CeWorkerThreadException, IsCaughtToldAndLeavesTheWorkerMarked)
{
    std::filesystem::create_directories(device.files() / "My Documents");
    std::string debug;
    std::mutex guard;
    zb::setDebugSink(
        [&](const WCHAR *text)
        {
            const std::lock_guard lock(guard);
            debug += zb::test::utf8(text);
        });
    TestWindow window;
    Worker worker([](Worker &) -> DWORD { throw std::runtime_error("body"); }, window.handle(), 500);
    ASSERT_TRUE(worker.Start());
    ASSERT_TRUE(waitUntil([&] { return worker.GetExitCode() == 0; })) << "the value held so far";
    zb::setDebugSink({});
    EXPECT_EQ(worker.postKillThread, worker.GetId());
    EXPECT_EQ(worker.diary.notes(), std::vector<std::string>{"PostKill"});
    EXPECT_TRUE(worker.IsRunning());
    EXPECT_NE(worker.GetHandle(), nullptr);
    TestWindow::pump();
    EXPECT_TRUE(window.received(0x800).empty());
    EXPECT_TRUE(log().ends_with("Exception-thread\r\n")) << log();
    EXPECT_TRUE(debug.ends_with("Exception-thread\r\n")) << debug;
    EXPECT_FALSE(worker.Start()) << "used up, but no hang";
    worker.Stop(TRUE);
    EXPECT_TRUE(worker.IsRunning());
    EXPECT_FALSE(worker.Start());
}

TEST_F(CeWorkerThreadException, OfAnyTypeAndKillClearsIt)
{
    std::atomic<int> runs = 0;
    Worker worker(
        [&runs](Worker &) -> DWORD
        {
            if (++runs == 1)
            {
                throw 1;
            }
            return 5;
        },
        nullptr, 500);
    worker.Start();
    ASSERT_TRUE(waitUntil([&] { return worker.GetExitCode() == 0; }));
    EXPECT_FALSE(worker.Kill(1)) << "its thread has ended already";
    EXPECT_TRUE(hasEnded(worker));
    EXPECT_TRUE(worker.Start());
    EXPECT_TRUE(waitUntil([&] { return runs == 2; }));
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
