// What a load makes of a record: each property of the row, what is left out, and which databases it looks at.
#include "tasks/TaskListTest.h"

#include "platform/pim.h"
#include "platform/text.h"

namespace
{
using namespace zb::test;

class TaskLoader : public TaskListTest
{
};

TEST_F(TaskLoader, readsTwelvePropertiesInThisOrder)
{
    ULONG ids[12] = {};
    CTasksThread::SetPropIds(ids);
    const ULONG expected[12] = {0x00040002, 0x410f0002, 0x41040040, 0x41050040, 0x00260003, 0x2a08001f,
                                0x0037001f, 0x41260002, 0x45030002, 0x410f0040, 0x00170041, 0x00160041};
    EXPECT_TRUE(std::equal(std::begin(ids), std::end(ids), std::begin(expected)));
}

TEST_F(TaskLoader, fillsARowFromEveryProperty)
{
    set(u"bShowCompleted", 1);
    const CEOID oid = addTask({.subject = u"A12|7: Pay",
                               .due = 3,
                               .start = -2,
                               .complete = SHORT{5},
                               .completed = -1,
                               .importance = 1,
                               .sensitivity = SHORT{2},
                               .recurring = SHORT{-3},
                               .reminder = SHORT{-1},
                               .icon = u"coin.bmp",
                               .notes = Bytes(5),
                               .categories = categoryBlob({workBit, homeBit})});
    EXPECT_EQ(load(), "Pay");
    const DATATASKS &row = *this->row(oid);
    EXPECT_EQ(row.m_oid, oid);
    EXPECT_EQ(utf8(row.m_szPriorityLetter), "A");
    EXPECT_EQ(utf8(row.m_szPriorityNumber), "12");
    EXPECT_EQ(row.m_nRepeatDays, 7);
    EXPECT_EQ(row.m_dtDue, today + 3);
    EXPECT_EQ(row.m_dtStart, today - 2);
    EXPECT_EQ(row.m_dtCompleted, today - 1);
    EXPECT_EQ(row.m_bComplete, 1);
    EXPECT_EQ(row.m_nImportance, 2);
    EXPECT_EQ(row.m_nSensitivity, 2);
    EXPECT_EQ(row.m_bRecurring, 3);
    EXPECT_EQ(row.m_bReminder, 1);
    EXPECT_EQ(utf8(row.m_pszIcon), "coin.bmp");
    EXPECT_EQ(row.m_bHasNotes, 1);
    EXPECT_EQ(utf8(row.m_pszCategories), "Work, Home");
    EXPECT_TRUE(row.m_bLoaded);
    EXPECT_TRUE(row.m_bShowable);
    EXPECT_FALSE(row.m_bParentOnly);
    EXPECT_FALSE(row.m_bHidden);
    EXPECT_EQ(row.m_nManualOrder, 0);
    EXPECT_EQ(row.m_oidParent, 0U);
}

TEST_F(TaskLoader, aBareRecordGivesARowOfDefaults)
{
    const CEOID oid = addTask({.sensitivity = SHORT{0}});
    load();
    const DATATASKS &row = *this->row(oid);
    EXPECT_EQ(utf8(row.m_pszSubject), "");
    EXPECT_EQ(utf8(row.m_pszCategories), "");
    EXPECT_EQ(row.m_pszIcon, nullptr);
    EXPECT_EQ(row.m_dtDue, 949998.0);
    EXPECT_EQ(row.m_dtStart, 949998.0);
    EXPECT_EQ(row.m_dtCompleted, 949998.0);
    EXPECT_EQ(row.m_nImportance, 1);
    EXPECT_EQ(row.m_bComplete, 0);
    EXPECT_EQ(row.m_bHasNotes, 0);
    EXPECT_FALSE(row.m_bOverdue);
    EXPECT_FALSE(row.m_bDueToday);
}

TEST_F(TaskLoader, mapsStoredImportance)
{
    const std::pair<LONG, LONG> cases[] = {{1, 2}, {2, 1}, {3, 0}, {0, 1}, {4, 1}, {-1, 1}};
    for (const auto &[stored, expected] : cases)
    {
        const CEOID oid = addTask({.subject = u"x", .importance = stored});
        load();
        EXPECT_EQ(row(oid)->m_nImportance, expected) << stored;
        removeTask(oid);
    }
}

TEST_F(TaskLoader, theDateOfCompletionCountsOnlyInCompleteTasks)
{
    const CEOID oid = addTask({.subject = u"open", .complete = SHORT{0}, .completed = -1});
    load();
    EXPECT_EQ(row(oid)->m_dtCompleted, 949998.0);
}

TEST_F(TaskLoader, notesCountFrom5Bytes)
{
    const CEOID four = addTask({.subject = u"four", .notes = Bytes(4)});
    const CEOID five = addTask({.subject = u"five", .notes = Bytes(5)});
    load();
    EXPECT_EQ(row(four)->m_bHasNotes, 0);
    EXPECT_EQ(row(five)->m_bHasNotes, 1);
}

TEST_F(TaskLoader, datesBeyondTheCalendarAreNone)
{
    zb::RecordProperties properties;
    properties.set(0x0037001f, std::u16string(u"far"));
    properties.set(0x41050040, FILETIME{0, 0x7FFFFFFF});
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    CloseHandle(handle);
    load();
    EXPECT_EQ(row(oid)->m_dtDue, 949998.0);
}

TEST_F(TaskLoader, overdueAndDueTodayAreTheOpenTasksUpToToday)
{
    set(u"bShowCompleted", 1);
    const CEOID past = addTask({.subject = u"past", .due = -1});
    const CEOID now = addTask({.subject = u"now", .due = 0});
    const CEOID next = addTask({.subject = u"next", .due = 1});
    const CEOID pastDone = addTask({.subject = u"past done", .due = -1, .complete = SHORT{1}});
    const CEOID nowDone = addTask({.subject = u"now done", .due = 0, .complete = SHORT{1}});
    load();
    EXPECT_TRUE(row(past)->m_bOverdue);
    EXPECT_FALSE(row(past)->m_bDueToday);
    EXPECT_FALSE(row(now)->m_bOverdue);
    EXPECT_TRUE(row(now)->m_bDueToday);
    for (const CEOID oid : {next, pastDone, nowDone})
    {
        EXPECT_FALSE(row(oid)->m_bOverdue);
        EXPECT_FALSE(row(oid)->m_bDueToday);
    }
}

TEST_F(TaskLoader, todayIsTheDevicesOwn)
{
    // 23:30 UTC is already the next day in Berlin.
    device.setClock(makeFileTime(2026, 3, 2, 23, 30));
    const CEOID oid = addTask({.subject = u"x", .due = 1});
    load();
    EXPECT_EQ(loader().GetToday(), today + 1);
    EXPECT_TRUE(row(oid)->m_bDueToday);
}

TEST_F(TaskLoader, templatesNeverShowAndDoNotCount)
{
    const int first = 401734 - today;
    const int last = 401768 - today;
    addTask({.subject = u"before", .due = first - 1});
    addTask({.subject = u"first", .due = first});
    addTask({.subject = u"last", .due = last, .importance = 1});
    addTask({.subject = u"behind", .due = last + 1});
    EXPECT_EQ(load(), "before, behind");
    EXPECT_EQ(loader().GetCounts().total, 2);
    EXPECT_EQ(loader().GetCounts().shown, 2);
    // Also where another filter refuses it as well.
    set(u"TV_FilterPriority", 0);
    load();
    EXPECT_EQ(loader().GetCounts().total, 2);
}

TEST_F(TaskLoader, theLastDayOf2999IsATemplate)
{
    zb::TaskItem item;
    item.subject = u"template";
    item.due = makeFileTime(2999, 12, 31);
    const zb::RecordProperties properties = zb::encodeTask(item);
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    CloseHandle(handle);
    EXPECT_EQ(load(), "");
    EXPECT_EQ(loader().GetCounts().total, 0);
}

TEST_F(TaskLoader, linksAndJournalAreLookedUpById)
{
    const CEOID both = addTask({.subject = u"both"});
    const CEOID none = addTask({.subject = u"none"});
    makeIdDatabase(u"ZembrikLinks", 0x00010003, {5, static_cast<LONG>(both)});
    makeIdDatabase(u"ZembrikJournal", 0x002e0003, {static_cast<LONG>(both), 7});
    load();
    EXPECT_EQ(row(both)->m_bHasLinks, 1);
    EXPECT_EQ(row(both)->m_bHasJournal, 1);
    EXPECT_EQ(row(none)->m_bHasLinks, 0);
    EXPECT_EQ(row(none)->m_bHasJournal, 0);
}

TEST_F(TaskLoader, withoutTheDatabaseOfLinksOnlyTheJournalCounts)
{
    const CEOID oid = addTask({.subject = u"x"});
    makeIdDatabase(u"ZembrikJournal", 0x002e0003, {static_cast<LONG>(oid)});
    load();
    EXPECT_EQ(row(oid)->m_bHasLinks, 0);
    EXPECT_EQ(row(oid)->m_bHasJournal, 1);
}

TEST_F(TaskLoader, rowsAreReadInOrderOfSubject)
{
    // All equal by priority and second key, so only the order of the ids is left; they were added the other way round.
    addTask({.subject = u"b"});
    addTask({.subject = u"A"});
    addTask({.subject = u"c"});
    EXPECT_EQ(load(), "A, b, c");
}

TEST_F(TaskLoader, aRecordTooLargeForTheBufferIsLeftOut)
{
    addTask({.subject = u"huge", .notes = Bytes(0x20000)});
    addTask({.subject = u"small"});
    EXPECT_EQ(load(), "small");
    EXPECT_EQ(loader().GetCounts().total, 2);
}

TEST_F(TaskLoader, theCountsOfALoad)
{
    set(u"bShowCompleted", 1);
    addTask({.subject = u"1", .due = -1, .importance = 1});
    addTask({.subject = u"2", .due = 0, .importance = 1});
    addTask({.subject = u"3", .importance = 2});
    addTask({.subject = u"4", .importance = 3});
    addTask({.subject = u"5", .due = -1, .complete = SHORT{1}, .importance = 3});
    addTask({.subject = u"6", .due = 401740 - today});
    load();
    const CTasksThread::Counts &counts = loader().GetCounts();
    EXPECT_EQ(counts.total, 5);
    EXPECT_EQ(counts.shown, 5);
    EXPECT_EQ(counts.completed, 1);
    EXPECT_EQ(counts.overdue, 1);
    EXPECT_EQ(counts.dueToday, 1);
    EXPECT_EQ(counts.high, 2);
    EXPECT_EQ(counts.normal, 1);
    EXPECT_EQ(counts.low, 2);
    load();
    EXPECT_EQ(counts.total, 5) << "every load counts from zero";
    EXPECT_EQ(counts.shown, 5);
    EXPECT_EQ(counts.low, 2);
}

TEST_F(TaskLoader, completeTasksThatDoNotShowStillCountAsShownAndCompleted)
{
    addTask({.subject = u"done", .complete = SHORT{1}, .importance = 1});
    addTask({.subject = u"open"});
    EXPECT_EQ(load(), "open");
    EXPECT_EQ(loader().GetCounts().shown, 2);
    EXPECT_EQ(loader().GetCounts().completed, 1);
    EXPECT_EQ(loader().GetCounts().high, 0);
    EXPECT_EQ(loader().GetCounts().normal, 1);
}

TEST_F(TaskLoader, anOldMasterListIsNotThereAnyMore)
{
    EXPECT_EQ(loader().LoadMasterList(), 0);
    EXPECT_EQ(rows(), "");
}
} // namespace
