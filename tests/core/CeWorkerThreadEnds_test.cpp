// How a run ends other than by its body's return: killed, from inside, by itself, by an exception.
#include "core/CeWorkerThread.h"

#include "core/TestWindow.h"
#include "core/TestWorker.h"
#include "support/TestDevice.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace zb::test;

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

TEST_F(CeWorkerThreadException, AReportWithoutMemoryDoesNotTakeTheProcessAlong)
{
    zb::setDebugSink([](const WCHAR *) { throw std::bad_alloc(); });
    Worker worker([](Worker &) -> DWORD { throw std::bad_alloc(); }, nullptr, 500);
    ASSERT_TRUE(worker.Start());
    ASSERT_TRUE(waitUntil([&] { return worker.GetExitCode() == 0; }));
    zb::setDebugSink({});
    EXPECT_EQ(worker.diary.notes(), std::vector<std::string>{"PostKill"});
    EXPECT_TRUE(worker.IsRunning());
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
} // namespace
