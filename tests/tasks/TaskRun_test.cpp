// A load on the worker thread: its messages and their order, stopping, killing, the lock, and what fails.
#include "platform/pim.h"
#include "support/LoaderHost.h"
#include "support/PropertyRecords.h"
#include "tasks/TaskListTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace
{
using namespace zb::test;

class TaskRun : public TaskListTest
{
  protected:
    TaskRun()
    {
        loader().m_hWndHost = host.window();
    }
    ~TaskRun() override
    {
        loader().Stop(TRUE);
    }
    void addMany(int count)
    {
        zb::BulkWrite bulk;
        for (int i = 0; i < count; ++i)
        {
            addTask({.subject = utf16("task " + std::to_string(10'000 + i))});
        }
        bulk.commit();
    }

    LoaderHost host{u"TaskListHost"};
    LoaderMessages &messages = host.messages;
};

TEST_F(TaskRun, tellsItsBeginTheListAndItsEnd)
{
    addTask({.subject = u"a"});
    addTask({.subject = u"b"});
    int displayed = -1;
    host.onMessage = [&](UINT number)
    {
        if (number == 1274)
        {
            displayed = loader().GetList().GetDisplayCount();
        }
    };
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    EXPECT_EQ(host.ordered(), (LoaderMessages{{32802, 0, 0}, {1274, 1, 2}, {32803, 0, 0}}));
    EXPECT_EQ(displayed, 2);
    EXPECT_EQ(shown(), "a, b");
    loader().WaitForComplete();
    EXPECT_FALSE(loader().IsBusy());
}

TEST_F(TaskRun, theListBelongsToTheHostWhileItHandlesTheMessage)
{
    // The message is sent: the worker waits until the host has taken the list over.
    const CEOID oid = addTask({.subject = u"a"});
    std::string rowsInside;
    host.onMessage = [&](UINT number)
    {
        if (number == 1274)
        {
            changeTask(oid, {.subject = u"b"});
            live(oid, 1);
            rowsInside = rows();
        }
    };
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    EXPECT_EQ(rowsInside, "b");
}

TEST_F(TaskRun, theCountOfTheMessageIsThatOfTheRowsThatShow)
{
    addTask({.subject = u"a"});
    groupBy(taskGroupImportance);
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    EXPECT_EQ(host.ordered()[1], (LoaderMessage{1274, 1, 3}));
}

TEST_F(TaskRun, aSecondStartLoadsAnew)
{
    addTask({.subject = u"a"});
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    addTask({.subject = u"b"});
    messages.clear();
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    EXPECT_EQ(shown(), "a, b");
}

TEST_F(TaskRun, aLoadOnTheCallersThreadSendsOnlyTheList)
{
    addTask({.subject = u"a"});
    load();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 1}}));
}

TEST_F(TaskRun, aStopWhileTheHostIsToldOfTheBeginningLeavesOutTheList)
{
    addMany(2000);
    loader().Start();
    // The host is asked to stop before it has dispatched anything; the run may be anywhere.
    loader().Stop(TRUE);
    drainMessages();
    for (const LoaderMessage &message : messages)
    {
        EXPECT_TRUE(message == (LoaderMessage{32802, 0, 0}) || message == (LoaderMessage{32803, 0, 0}) ||
                    message.number == 1274);
    }
    const auto has = [&](UINT number)
    {
        return std::any_of(messages.begin(), messages.end(),
                           [&](const LoaderMessage &each) { return each.number == number; });
    };
    EXPECT_EQ(has(32802), has(32803));
    messages.clear();
    loader().Start();
    ASSERT_TRUE(host.waitFor(LoaderHost::done)) << "the next run is not held up by the one that was stopped";
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 2000);
}

TEST_F(TaskRun, anEventThatIsNotSetCancelsBeforeTheFirstRecord)
{
    addTask({.subject = u"a"});
    load();
    messages.clear();
    CeManualEvent run(false);
    EXPECT_EQ(loader().TasksThreadProc(&run), 0U);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 0);
    EXPECT_FALSE(loader().IsBusy());
    run.Set();
    EXPECT_EQ(loader().TasksThreadProc(&run), 0U);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 1}}));
    EXPECT_EQ(shown(), "a");
}

TEST_F(TaskRun, aClosedEventCancels)
{
    addTask({.subject = u"a"});
    CeManualEvent run(true);
    run.Close();
    loader().TasksThreadProc(&run);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(rows(), "");
}

/// Loads on a thread of its own; the event is cleared as soon as the first records have been read.
TEST_F(TaskRun, aCancelledLoadKeepsTheRowsReadSoFarAndShowsNone)
{
    addMany(5000);
    bool cut = false;
    int wait = 5000; // microseconds, longer when nothing was read and shorter when all was
    for (int attempt = 0; attempt < 200 && !cut; ++attempt)
    {
        messages.clear();
        CeManualEvent run(true);
        std::atomic<bool> ended = false;
        std::thread worker(
            [&]
            {
                loader().TasksThreadProc(&run);
                ended = true;
            });
        std::this_thread::sleep_for(std::chrono::microseconds(wait));
        run.Reset();
        while (!ended)
        {
            drainMessages(); // a load that got to its end sends its message
        }
        worker.join();
        const int read = loader().GetList().GetCount();
        cut = read > 0 && read < 5000;
        wait = read == 0 ? wait + wait / 3 : wait - wait / 4;
        if (cut)
        {
            EXPECT_EQ(read % 25, 0) << "the event is looked at once in 25 records";
            EXPECT_EQ(loader().GetList().GetDisplayCount(), 0);
            EXPECT_TRUE(messages.empty());
        }
    }
    EXPECT_TRUE(cut);
    load();
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 5000);
}

TEST_F(TaskRun, aLoadThatMeetsAnotherGivesUp)
{
    addTask({.subject = u"a"});
    load();
    messages.clear();
    addTask({.subject = u"b"});
    std::thread other([&] { loader().GetListLock().Enter(); });
    other.join();
    EXPECT_EQ(loader().TasksThreadProc(nullptr), 0U);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(shown(), "a");
}

TEST_F(TaskRun, withoutTheDatabaseTheListIsEmptyAndStillTold)
{
    addTask({.subject = u"a"});
    load();
    messages.clear();
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"Tasks Database", 0, 0, nullptr));
    ASSERT_NE(CeDeleteDatabase(oid), FALSE);
    loader().TasksThreadProc(nullptr);
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 0}}));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(loader().GetCounts().total, 0);
    EXPECT_EQ(loader().GetCounts().shown, 0);
}

TEST_F(TaskRun, aDatabaseWithoutTheOrderOfSubjectsIsReadInTheOrderItHas)
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"Tasks Database", 0, 0, nullptr));
    ASSERT_NE(CeDeleteDatabase(oid), FALSE);
    const SORTORDERSPEC byDue{0x41050040, 0};
    ASSERT_NE(CeCreateDatabase(u"Tasks Database", 0, 1, &byDue), 0U);
    addTask({.subject = u"b"});
    addTask({.subject = u"a"});
    EXPECT_EQ(load(), "a, b");
}

TEST_F(TaskRun, withoutHostNobodyIsTold)
{
    addTask({.subject = u"a"});
    loader().m_hWndHost = nullptr;
    loader().Start();
    loader().WaitForComplete();
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(shown(), "a");
}

TEST_F(TaskRun, aHostThatIsBusyForTooLongGetsItsLoaderKilledAndCanLoadAgain)
{
    addTask({.subject = u"a"});
    CTasksThread &list = loader();
    list.Start();
    // The worker waits for an answer to 1274 that never comes while this thread pumps nothing.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    list.Kill(1);
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    messages.clear();
    EXPECT_EQ(load(), "a") << "the lock was given back";
}

TEST_F(TaskRun, aLoadKilledInItsMiddleHoldsUpNoLaterOne)
{
    addMany(5000);
    for (int attempt = 0; attempt < 5; ++attempt)
    {
        messages.clear();
        loader().Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(5 + 10 * attempt));
        loader().Kill(1);
        ASSERT_TRUE(host.waitFor(LoaderHost::done));
        load();
        ASSERT_EQ(loader().GetList().GetDisplayCount(), 5000);
    }
}

TEST_F(TaskRun, moreThan65535RecordsAreReadToTheEnd)
{
    constexpr int count = 66'000;
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    zb::BulkWrite bulk;
    for (int i = 0; i < count; ++i)
    {
        const std::u16string subject = utf16("task " + std::to_string(100'000 + i));
        const CEPROPVAL value = textValue(0x0037001f, subject);
        CeWriteRecordProps(handle, 0, 1, &value);
    }
    bulk.commit();
    CloseHandle(handle);
    load();
    EXPECT_EQ(loader().GetList().GetDisplayCount(), count);
    EXPECT_EQ(loader().GetCounts().total, count);
    EXPECT_EQ(describe(*loader().GetList().GetTail()), "task " + std::to_string(100'000 + count - 1));
}
} // namespace
