// Runs: messages, stopping, killing, starting anew, the list lock, single records, large databases.
#include "calendar/CalendarTest.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/text.h"

#include <random>
#include <set>
#include <thread>

namespace zb::test
{
namespace
{
using Numbers = std::vector<UINT>;

/// A loader whose run waits at the first record with categories.
class WaitingLoader : public TestLoader
{
  public:
    ~WaitingLoader() override
    {
        release();
        Stop(TRUE);
    }
    /// Until the run has come to that record.
    bool waitUntilReached()
    {
        return m_reached.WaitFor(10'000) == 0;
    }
    void release()
    {
        m_go.Set();
    }
    /// The run goes on as soon as it is asked to stop.
    bool m_goOnWhenStopped = false;

  protected:
    WCHAR *AssembleCategories(const CEBLOB &blob) override
    {
        m_reached.Set();
        if (m_goOnWhenStopped)
        {
            GetStopEvent().WaitFor(10'000);
        }
        else
        {
            m_go.WaitFor(INFINITE);
        }
        return TestLoader::AssembleCategories(blob);
    }

  private:
    CeManualEvent m_reached;
    CeManualEvent m_go;
};

class CalendarRun : public CalendarTest
{
  protected:
    void addMany(int count)
    {
        BulkWrite bulk;
        for (int i = 0; i < count; ++i)
        {
            AppointmentRecord record = timed(u"x", makeFileTime(2026, 3, 1 + i % 28, 9, i / 28 % 60), 30);
            if (i == 0)
            {
                record.categories = categoryBlob({workBit});
            }
            add(record);
        }
        ASSERT_TRUE(bulk.commit());
    }
    template <typename Loader>
    void start(Loader &runner)
    {
        runner.m_hWndHost = window.handle();
        runner.setRange(2026, 3, 1, 31);
        runner.setFilter(CalendarFilter::RangeWithoutDays);
        ASSERT_TRUE(runner.Start());
    }

    HostWindow window;
};

TEST_F(CalendarRun, PostsItsThreeMessagesInOrder)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    add(timed(u"b", makeFileTime(2026, 3, 11, 9), 30));
    start(loader());
    ASSERT_TRUE(window.waitFor(32803));
    const std::vector<HostWindow::Message> expected{{32802, 0, 0}, {1274, 1, 4}, {32803, 0, 0}};
    EXPECT_EQ(window.messages(), expected);
    EXPECT_EQ(loader().GetList().m_nPublished, 4);
    EXPECT_EQ(loader().GetList().GetCount(), 4);
}

TEST_F(CalendarRun, WithoutARangeNothingHappens)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    TestLoader unset;
    unset.m_hWndHost = window.handle();
    ASSERT_TRUE(unset.Start());
    unset.WaitForComplete();
    window.pump();
    EXPECT_EQ(window.numbers(), Numbers{});
    EXPECT_EQ(unset.GetList().GetCount(), 0);
    EXPECT_EQ(unset.GetList().m_nPublished, 0);
}

TEST_F(CalendarRun, WithoutAWindowItRunsSilently)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    start(loader());
    loader().Stop(TRUE);
    loader().m_hWndHost = nullptr;
    window.pump();
    window.clear();
    ASSERT_TRUE(loader().Start());
    loader().WaitForComplete();
    window.pump();
    EXPECT_EQ(window.numbers(), Numbers{});
    EXPECT_EQ(loader().rowCount(), 1);
}

TEST_F(CalendarRun, ABodyOnTheHostsThreadPostsNothing)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    loader().m_hWndHost = window.handle();
    load();
    window.pump();
    EXPECT_EQ(window.numbers(), Numbers{});
    EXPECT_EQ(loader().GetList().m_nPublished, 2);
}

TEST_F(CalendarRun, AStoppedRunKeepsItsRowsAndSendsNoList)
{
    addMany(100);
    WaitingLoader waiting;
    waiting.m_goOnWhenStopped = true;
    start(waiting);
    ASSERT_TRUE(waiting.waitUntilReached());
    waiting.Stop(TRUE);
    window.pump();
    EXPECT_EQ(window.numbers(), (Numbers{32802, 32803}));
    // Looked at once in twenty records, and no headers are added.
    EXPECT_EQ(waiting.GetList().GetCount(), 20);
    EXPECT_EQ(waiting.GetList().m_nPublished, 20);
    EXPECT_EQ(waiting.rowCount(), 20);
}

TEST_F(CalendarRun, ASecondStartStopsTheFirstRunAndLoadsAnew)
{
    addMany(100);
    WaitingLoader waiting;
    waiting.m_goOnWhenStopped = true;
    start(waiting);
    ASSERT_TRUE(waiting.waitUntilReached());
    // The new range leaves the record out at which the first run waits.
    const SYSTEMTIME first = makeSystemTime(2026, 3, 2);
    waiting.SetRestrict(&first, &first);
    ASSERT_TRUE(waiting.Start());
    ASSERT_TRUE(window.waitFor(1274));
    waiting.WaitForComplete();
    window.pump();
    EXPECT_EQ(window.numbers(), (Numbers{32802, 32803, 32802, 1274, 32803}));
    EXPECT_EQ(waiting.rowCount(), 4); // records 1, 29, 57 and 85 lie on 2 March
}

TEST_F(CalendarRun, AKilledRunPublishesNothingAndFreesTheList)
{
    addMany(30);
    WaitingLoader waiting;
    start(waiting);
    ASSERT_TRUE(waiting.waitUntilReached());
    EXPECT_FALSE(waiting.GetListLock().TryEnter());
    EXPECT_TRUE(waiting.Kill(1));
    window.pump();
    EXPECT_EQ(window.numbers(), (Numbers{32802, 32803}));
    EXPECT_EQ(waiting.GetList().m_nPublished, 0);
    ASSERT_TRUE(waiting.GetListLock().TryEnter());
    waiting.GetListLock().Leave();

    // The object serves again.
    waiting.release();
    window.clear();
    ASSERT_TRUE(waiting.Start());
    ASSERT_TRUE(window.waitFor(32803));
    waiting.WaitForComplete();
    EXPECT_EQ(waiting.rowCount(), 30);
}

TEST_F(CalendarRun, KillingAnIdleLoaderLeavesTheHostsLockAlone)
{
    loader();
    ASSERT_TRUE(loader().GetListLock().TryEnter());
    loader().Kill(1);
    bool entered = true;
    std::thread other([&] { entered = loader().GetListLock().TryEnter(); });
    other.join();
    EXPECT_FALSE(entered);
    loader().GetListLock().Leave();
}

TEST_F(CalendarRun, AListThatIsLockedIsLeftAlone)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    load();
    add(timed(u"b", makeFileTime(2026, 3, 11, 9), 30));
    ASSERT_TRUE(loader().GetListLock().TryEnter());
    std::thread other(
        [&]
        {
            loader().CalendarThreadProc(nullptr, 0);
            loader().SortDataList(false);
        });
    other.join();
    loader().GetListLock().Leave();
    EXPECT_EQ(loader().subjects(), "a");
    EXPECT_EQ(loader().GetList().m_nPublished, 2);
    EXPECT_EQ(load().size(), 4U);
}

TEST_F(CalendarRun, OneRecordIsReadAgainIntoTheList)
{
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    add(timed(u"c", makeFileTime(2026, 3, 12, 9), 30));
    load();
    const CEOID oid = add(timed(u"b", makeFileTime(2026, 3, 11, 9), 30));
    loader().m_hWndHost = window.handle();
    EXPECT_EQ(loader().CalendarThreadProc(nullptr, oid), 0U);
    EXPECT_EQ(loader().subjects(), "a, c, b");
    EXPECT_EQ(loader().GetList().m_nPublished, 5);
    window.pump();
    EXPECT_EQ(window.numbers(), Numbers{});

    loader().CalendarThreadProc(nullptr, 0x7FFFFFF0);
    EXPECT_EQ(loader().subjects(), "a, c, b");
}

TEST_F(CalendarRun, ASingleRecordOutOfRangeAddsNothing)
{
    const CEOID oid = add(timed(u"b", makeFileTime(2026, 5, 11, 9), 30));
    load();
    loader().CalendarThreadProc(nullptr, oid);
    EXPECT_EQ(loader().rowCount(), 0);
}

TEST_F(CalendarRun, AStopEventWithoutHandleStopsAfterTwentyRecords)
{
    addMany(50);
    CeManualEvent closed;
    closed.Close();
    loader().CalendarThreadProc(&closed, 0);
    EXPECT_EQ(loader().rowCount(), 20);
}

TEST_F(CalendarRun, AStopEventThatIsClearStopsNothing)
{
    addMany(50);
    CeManualEvent clear;
    loader().CalendarThreadProc(&clear, 0);
    EXPECT_EQ(loader().rowCount(), 50);
}

TEST_F(CalendarRun, ALoadClearsTheRowsOfTheOneBefore)
{
    const CEOID oid = add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    load();
    add(timed(u"b", makeFileTime(2026, 3, 11, 9), 30));
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Appointments Database", 0, 0, nullptr);
    EXPECT_TRUE(CeDeleteRecord(handle, oid));
    CloseHandle(handle);
    load();
    EXPECT_EQ(loader().subjects(), "b");
}

TEST_F(CalendarRun, ARecordTooLargeForTheBufferIsLeftOut)
{
    add(timed(u"before", makeFileTime(2026, 3, 1, 9), 30));
    AppointmentRecord record = timed(u"large", makeFileTime(2026, 3, 2, 9), 30);
    record.notes = Bytes(0x20000, 1);
    add(record);
    record.subject = u"fits";
    record.notes = Bytes(0x20000 - 1000, 1);
    add(record);
    add(timed(u"after", makeFileTime(2026, 3, 3, 9), 30));
    load();
    EXPECT_EQ(loader().subjects(), "before, fits, after");
    load();
    EXPECT_EQ(loader().subjects(), "before, fits, after");
}

TEST_F(CalendarRun, ADeviceWithoutAppointmentsGivesAnEmptyList)
{
    start(loader());
    ASSERT_TRUE(window.waitFor(32803));
    const std::vector<HostWindow::Message> expected{{32802, 0, 0}, {1274, 1, 0}, {32803, 0, 0}};
    EXPECT_EQ(window.messages(), expected);
}

TEST_F(CalendarRun, ThousandsOfRandomRecordsAgreeWithAPlainCalculation)
{
    std::mt19937 random(20260302);
    const LONGLONG from = ticksOf(makeFileTime(2026, 1, 1)) / ticksPerMinute;
    const LONGLONG rangeBegin = ticksOf(makeFileTime(2026, 3, 10)) / ticksPerMinute;
    const LONGLONG rangeEnd = ticksOf(makeFileTime(2026, 3, 20)) / ticksPerMinute; // the day behind the last
    std::uniform_int_distribution<LONGLONG> start(from, from + 150 * 1440);
    std::uniform_int_distribution<int> length(0, 5000);
    std::multiset<std::string> expected;
    {
        BulkWrite bulk;
        for (int i = 0; i < 5000; ++i)
        {
            const LONGLONG begin = start(random);
            const int minutes = length(random);
            const LONGLONG end = begin + minutes;
            add(timed(u"x", fileTimeOf(begin * ticksPerMinute), minutes));
            if (begin >= rangeEnd || end < rangeBegin)
            {
                continue;
            }
            // On each day that has a minute of it, up to the end of the range; on its first day in any case.
            const LONGLONG last = std::min(end > begin ? (end - 1) / 1440 : begin / 1440, rangeEnd / 1440 - 1);
            for (LONGLONG day = begin / 1440; day <= std::max(last, begin / 1440); ++day)
            {
                expected.insert(dayText(static_cast<int>(day - daysFrom1601ToVariantZero)) + " " +
                                std::to_string(begin % 1440) + "+" + std::to_string(minutes));
            }
        }
        ASSERT_TRUE(bulk.commit());
    }
    loader().setRange(2026, 3, 10, 10);
    loader().setFilter(CalendarFilter::Range);
    load();
    std::multiset<std::string> actual;
    for (int i = 0; const DATACALENDAR *row = loader().row(i); ++i)
    {
        const double minute = (row->m_dtStart - std::floor(row->m_dtStart)) * 1440;
        actual.insert(dayText(row->m_nDay) + " " + std::to_string(std::lround(minute)) + "+" +
                      std::to_string(row->m_nDuration));
    }
    EXPECT_GT(actual.size(), 500U);
    EXPECT_EQ(actual, expected);
}

TEST_F(CalendarRun, DatabasesBeyondTheSixteenBitCountAreReadToTheirEnd)
{
    {
        BulkWrite bulk;
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, u"Appointments Database", 0, 0, nullptr);
        const LONGLONG first = ticksOf(makeFileTime(2000, 1, 1));
        for (int i = 0; i < 66'000; ++i)
        {
            RecordProperties properties;
            properties.set(0x420d0040, fileTimeOf(first + i * ticksPerHour));
            CeWriteRecordProps(handle, 0, properties.count(), properties.values());
        }
        CloseHandle(handle);
        ASSERT_TRUE(bulk.commit());
    }
    add(timed(u"last", makeFileTime(2026, 3, 10, 9), 30));
    load();
    EXPECT_EQ(loader().subjects(), "last");
}

TEST_F(CalendarRun, SettingsOfTheDeviceAreTakenAtEachLoad)
{
    loader();
    EXPECT_EQ(describe(CCalendarThread::GetToday()), "2026-03-02 09:00:00");
    device.setClock(makeFileTime(2026, 7, 1, 23, 30));
    load();
    EXPECT_EQ(describe(CCalendarThread::GetToday()), "2026-07-01 23:30:00");
    loader().set(u"TaskSort", 42228U);
    loader().set(u"TaskSortDescending", 1U);
    load();
    EXPECT_EQ(CCalendarThread::s_dwTaskSort, 42228U);
    EXPECT_TRUE(CCalendarThread::s_bTaskSortDescending);
    loader().unset(u"TaskSort");
    loader().unset(u"TaskSortDescending");
    load();
    EXPECT_EQ(CCalendarThread::s_dwTaskSort, 42227U);
    EXPECT_FALSE(CCalendarThread::s_bTaskSortDescending);
}
} // namespace
} // namespace zb::test
