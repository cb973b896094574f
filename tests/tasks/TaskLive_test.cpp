// Edits after a load, one record at a time: rows that come, change, move and go, and the counts that follow them.
#include "tasks/TaskListTest.h"

#include "platform/propdb.h"
#include "platform/text.h"

#include <tuple>

namespace
{
using namespace zb::test;

class TaskLive : public TaskListTest
{
  protected:
    const CTasksThread::Counts &counts()
    {
        return loader().GetCounts();
    }
    DATATASKS *group(int index)
    {
        return loader().GetGroups().GetAt(index);
    }
};

TEST_F(TaskLive, aNewTaskIsAppendedAndSortedWhenAsked)
{
    addTask({.subject = u"b"});
    load();
    const CEOID oid = addTask({.subject = u"a", .due = 0, .importance = 1});
    EXPECT_EQ(live(oid, -1), 1);
    EXPECT_TRUE(passed);
    EXPECT_EQ(rows(), "b, a");
    EXPECT_EQ(shown(), "b") << "the display count is that of the last sort";
    loader().SortDataList();
    EXPECT_EQ(shown(), "a, b");
    EXPECT_EQ(counts().shown, 2);
    EXPECT_EQ(counts().total, 2);
    EXPECT_EQ(counts().high, 1);
    EXPECT_EQ(counts().dueToday, 1);
}

TEST_F(TaskLive, aChangedTaskKeepsItsRow)
{
    const CEOID oid = addTask({.subject = u"A1: old", .due = -1, .importance = 1, .icon = u"i.bmp"});
    load();
    const DATATASKS *before = row(oid);
    changeTask(oid, {.subject = u"new", .due = 1});
    EXPECT_EQ(live(oid, 1), 1);
    EXPECT_EQ(row(oid), before);
    EXPECT_EQ(utf8(before->m_pszSubject), "new");
    EXPECT_EQ(utf8(before->m_szPriorityLetter), "");
    EXPECT_EQ(before->m_pszIcon, nullptr);
    EXPECT_EQ(before->m_nImportance, 1);
    EXPECT_FALSE(before->m_bOverdue);
    EXPECT_EQ(counts().shown, 1);
    EXPECT_EQ(counts().total, 1);
    EXPECT_EQ(counts().overdue, 0);
    EXPECT_EQ(counts().high, 0);
    EXPECT_EQ(counts().normal, 1);
}

TEST_F(TaskLive, aTaskThatTheFiltersNowRefuseLosesItsRow)
{
    const CEOID oid = addTask({.subject = u"x", .due = 0});
    addTask({.subject = u"y"});
    load();
    changeTask(oid, {.subject = u"x", .due = 0, .complete = SHORT{1}});
    passed = true;
    EXPECT_EQ(live(oid, indexOf(oid)), 0);
    EXPECT_FALSE(passed);
    EXPECT_EQ(rows(), "y");
    EXPECT_EQ(counts().dueToday, 0);
    EXPECT_EQ(counts().normal, 1);
}

TEST_F(TaskLive, everyRefusalTakesTheRow)
{
    const TaskRecord shownFirst{.subject = u"x", .due = 0};
    struct Case
    {
        const char16_t *setting;
        DWORD value;
        TaskRecord changed;
    };
    const Case cases[] = {
        {u"bShowUndated", 0, {.subject = u"x"}},
        {u"TV_FilterPriority", 1, {.subject = u"x", .due = 0, .importance = 3}},
        {u"TV_FilterData", 42251, {.subject = u"x", .due = 3}},
        {u"bShowCompleted", 0, {.subject = u"x", .due = 0, .complete = SHORT{1}}},
        {u"bHideCategories", 0xFFFFFFFF, {.subject = u"x", .due = 0, .categories = categoryBlob({1})}},
        {u"TV_ShowPrivate", 1, {.subject = u"x", .due = 401760 - today}}};
    for (const auto &[name, value, changed] : cases)
    {
        SCOPED_TRACE(utf8(name));
        set(name, value);
        const CEOID oid = addTask(shownFirst);
        EXPECT_EQ(load(), "x");
        changeTask(oid, changed);
        EXPECT_EQ(live(oid, 1), 0);
        EXPECT_FALSE(passed);
        EXPECT_EQ(rows(), "");
        EXPECT_EQ(live(oid, -1), 0) << "and none comes";
        EXPECT_EQ(rows(), "");
        // Forced, it stays.
        EXPECT_EQ(live(oid, -1, true), 1);
        EXPECT_TRUE(passed);
        EXPECT_EQ(rows(), "x");
        EXPECT_TRUE(row(oid)->m_bParentOnly);
        changeTask(oid, shownFirst);
        EXPECT_EQ(live(oid, 1), 1);
        EXPECT_FALSE(row(oid)->m_bParentOnly);
        removeTask(oid);
        set(u"bShowUndated", 1);
        set(u"TV_FilterPriority", 4);
        set(u"TV_FilterData", 42250);
        set(u"bHideCategories", 0);
    }
}

TEST_F(TaskLive, aForcedRowThatPassesIsAnOrdinaryOne)
{
    const CEOID oid = addTask({.subject = u"x"});
    load();
    EXPECT_EQ(live(oid, 1, true), 1);
    EXPECT_FALSE(row(oid)->m_bParentOnly);
    EXPECT_EQ(counts().shown, 1);
}

TEST_F(TaskLive, theTotalFollowsTheTasksThatAreThere)
{
    const CEOID oid = addTask({.subject = u"x"});
    load();
    refresh(oid);
    refresh(oid);
    EXPECT_EQ(counts().total, 1);
    EXPECT_EQ(counts().shown, 1);
    loader().DeleteTaskFromThread(1);
    EXPECT_EQ(counts().total, 0);
    EXPECT_EQ(counts().shown, 0);
    const CEOID refused = addTask({.subject = u"done", .complete = SHORT{1}});
    live(refused, -1);
    EXPECT_EQ(counts().total, 1) << "as a load would count it";
    const CEOID asTemplate = addTask({.subject = u"t", .due = 401760 - today});
    live(asTemplate, -1);
    EXPECT_EQ(counts().total, 1);
}

TEST_F(TaskLive, countsLoseWhatTheRowHadGiven)
{
    DATATASKS row;
    addTask({.subject = u"x"});
    load();
    row.m_bComplete = 1;
    row.m_bOverdue = row.m_bDueToday = true;
    for (const LONG importance : {0, 1, 2})
    {
        row.m_nImportance = importance;
        loader().PreTaskUpdateCountChange(&row);
    }
    EXPECT_EQ(counts().shown, -2);
    EXPECT_EQ(counts().total, -2);
    EXPECT_EQ(counts().completed, -3);
    EXPECT_EQ(counts().overdue, -3);
    EXPECT_EQ(counts().dueToday, -3);
    EXPECT_EQ(counts().low, -1);
    EXPECT_EQ(counts().normal, 0);
    EXPECT_EQ(counts().high, -1);
    loader().PreTaskUpdateCountChange(nullptr);
    EXPECT_EQ(counts().total, -2);
}

TEST_F(TaskLive, todayIsLookedUp)
{
    const CEOID oid = addTask({.subject = u"x", .due = 1});
    load();
    EXPECT_FALSE(row(oid)->m_bDueToday);
    device.advanceClock(zb::ticksPerDay);
    refresh(oid);
    EXPECT_TRUE(row(oid)->m_bDueToday);
    EXPECT_EQ(loader().GetToday(), today + 1);
}

TEST_F(TaskLive, linksAndJournalAreLookedUp)
{
    const CEOID oid = addTask({.subject = u"x"});
    load();
    makeIdDatabase(u"ZembrikLinks", 0x00010003, {static_cast<LONG>(oid)});
    refresh(oid);
    EXPECT_EQ(row(oid)->m_bHasLinks, 1);
    EXPECT_EQ(row(oid)->m_bHasJournal, 0);
    // Both are closed again: a database that is open could not be deleted.
    CEOID database = 0;
    CloseHandle(CeOpenDatabase(&database, u"ZembrikLinks", 0, 0, nullptr));
    EXPECT_NE(CeDeleteDatabase(database), FALSE);
}

TEST_F(TaskLive, anIndexWithoutRowMakesOne)
{
    addTask({.subject = u"a"});
    load();
    const CEOID b = addTask({.subject = u"b"});
    EXPECT_EQ(live(b, 2), 1);
    const CEOID c = addTask({.subject = u"c"});
    EXPECT_EQ(live(c, 700), 1);
    const CEOID d = addTask({.subject = u"d"});
    EXPECT_EQ(live(d, 0), 1);
    EXPECT_EQ(rows(), "a, b, c, d");
    EXPECT_EQ(loader().AddNewTask(nullptr, &passed, -1, true, true), 0);
    EXPECT_EQ(loader().AddNewTask(readTask(d).get(), nullptr, 4, true, false), 1);
}

TEST_F(TaskLive, aHeaderIsNeverTurnedIntoATask)
{
    const CEOID oid = addTask({.subject = u"x"});
    groupBy(taskGroupImportance);
    load();
    loader().DeleteTaskFromThread(1);
    EXPECT_EQ(rows(), "[High-], [Normal-], [Low-], x");
    live(oid, 1);
    loader().SortDataList();
    EXPECT_EQ(shown(), "[High-], [Normal-], [Low-]");
}

// --- Groups ------------------------------------------------------------------------------------------------------

TEST_F(TaskLive, aChangedTaskMovesToItsNewGroup)
{
    const CEOID oid = addTask({.subject = u"x", .importance = 1});
    groupBy(taskGroupImportance);
    openGroup(u"0");
    openGroup(u"2");
    EXPECT_EQ(load(), "[High+], x, [Normal-], [Low+]");
    changeTask(oid, {.subject = u"x", .importance = 3});
    EXPECT_EQ(live(oid, indexOf(oid)), 1);
    loader().SortDataList();
    EXPECT_EQ(shown(), "[High+], [Normal-], [Low+], x");
    changeTask(oid, {.subject = u"x", .importance = 2});
    EXPECT_EQ(live(oid, indexOf(oid)), 0) << "that group is closed";
    loader().SortDataList();
    EXPECT_EQ(shown(), "[High+], [Normal-], [Low+]");
}

TEST_F(TaskLive, aRefreshedRowKeepsItsPlaceInTheGroupUntilTheNextSort)
{
    addTask({.subject = u"a"});
    const CEOID b = addTask({.subject = u"b"});
    addTask({.subject = u"c"});
    groupBy(taskGroupImportance);
    openGroup(u"1");
    load();
    changeTask(b, {.subject = u"z"});
    live(b, indexOf(b));
    EXPECT_EQ(group(1)->m_lstChildren.GetAt(1)->m_oid, b);
    loader().SortDataList();
    EXPECT_EQ(shown(), "[High-], [Normal+], a, c, z, [Low-]");
}

TEST_F(TaskLive, anEmptiedGroupOnDemandStaysUntilTheNextSort)
{
    const std::tuple<TaskGrouping, TaskRecord, TaskRecord, const char *> cases[] = {
        {taskGroupCategory, {.subject = u"x", .categories = categoryBlob({workBit})}, {.subject = u"x"}, "[Work-]"},
        {taskGroupLetter, {.subject = u"A: x"}, {.subject = u"x"}, "[A-]"},
        {taskGroupDueDate, {.subject = u"x", .due = 1}, {.subject = u"x"}, "[3/3/26-]"}};
    for (const auto &[grouping, before, after, emptied] : cases)
    {
        groupBy(grouping);
        const CEOID oid = addTask(before);
        EXPECT_EQ(load(), emptied);
        changeTask(oid, after);
        live(oid, indexOf(oid));
        EXPECT_EQ(loader().GetGroups().GetCount(), 2);
        EXPECT_EQ(group(0)->m_nDepth, -99);
        EXPECT_NE(rows().find(emptied), std::string::npos);
        loader().SortDataList();
        EXPECT_EQ(shown(), "[None-]");
        EXPECT_EQ(loader().GetGroups().GetCount(), 1);
        // The key makes a new group.
        changeTask(oid, before);
        refresh(oid);
        EXPECT_EQ(shown(), emptied);
        removeTask(oid);
    }
}

TEST_F(TaskLive, anEmptiedGroupThatFillsAgainBeforeTheSortStays)
{
    const CEOID a = addTask({.subject = u"A: x"});
    const CEOID b = addTask({.subject = u"B: x"});
    groupBy(taskGroupLetter);
    load();
    changeTask(a, {.subject = u"B: x"});
    live(a, indexOf(a));
    EXPECT_EQ(group(0)->m_nDepth, -99);
    changeTask(b, {.subject = u"A: x"});
    live(b, indexOf(b));
    EXPECT_EQ(group(0)->m_nDepth, 0);
    loader().SortDataList();
    EXPECT_EQ(shown(), "[A-], [B-]");
}

TEST_F(TaskLive, anEmptiedFixedGroupStays)
{
    const CEOID oid = addTask({.subject = u"x", .importance = 1});
    addTask({.subject = u"y"});
    groupBy(taskGroupImportance);
    load();
    loader().DeleteTaskFromThread(indexOf(oid));
    EXPECT_EQ(group(0)->m_nDepth, 0);
    loader().SortDataList();
    EXPECT_EQ(shown(), "[High-], [Normal-], [Low-]");
}

TEST_F(TaskLive, aTaskThatChangesItsCategoriesChangesItsRows)
{
    const CEOID oid = addTask({.subject = u"x", .categories = categoryBlob({workBit, homeBit, gardenBit})});
    groupBy(taskGroupCategory);
    openGroup(u"Work");
    openGroup(u"Urgent");
    EXPECT_EQ(load(), "[Garden-], [Home-], [Work+], x");
    EXPECT_EQ(rowsOf(oid), 3);
    changeTask(oid, {.subject = u"x", .categories = categoryBlob({workBit, urgentBit})});
    refresh(oid);
    EXPECT_EQ(shown(), "[Urgent+], x, [Work+], x");
    EXPECT_EQ(rowsOf(oid), 2);
    EXPECT_EQ(counts().shown, 1);
    EXPECT_EQ(counts().total, 1);
}

TEST_F(TaskLive, anyRowOfATaskOfSeveralCategoriesMayBeTheOneThatIsRefreshed)
{
    const CEOID oid = addTask({.subject = u"x", .categories = categoryBlob({workBit, homeBit})});
    groupBy(taskGroupCategory);
    openGroup(u"Work");
    openGroup(u"Home");
    load();
    changeTask(oid, {.subject = u"y", .categories = categoryBlob({workBit, homeBit})});
    live(oid, 4); // the second of [Home] x [Work] x
    loader().SortDataList();
    EXPECT_EQ(shown(), "[Home+], y, [Work+], y");
}

// --- Priority manager --------------------------------------------------------------------------------------------

TEST_F(TaskLive, theManualOrderSurvivesARefresh)
{
    addTask({.subject = u"A1: a"});
    const CEOID b = addTask({.subject = u"A2: b"});
    addTask({.subject = u"A3: c"});
    groupBy(taskGroupPriorityManager);
    openGroup(u"A");
    load();
    EXPECT_EQ(row(b)->m_nManualOrder, 2);
    changeTask(b, {.subject = u"A9: b"});
    refresh(b);
    EXPECT_EQ(row(b)->m_nManualOrder, 2);
    EXPECT_TRUE(shown().starts_with("[None-], [A+], a, b, c, [B-], ")) << shown();
    // One that comes is numbered behind the others at once.
    const CEOID d = addTask({.subject = u"A: d"});
    live(d, -1);
    EXPECT_EQ(row(d)->m_nManualOrder, 4);
}

TEST_F(TaskLive, aRowOutsideThePriorityManagerLosesItsManualOrder)
{
    const CEOID oid = addTask({.subject = u"x"});
    load();
    loader().GetList().GetAt(1)->m_nManualOrder = 5;
    refresh(oid);
    EXPECT_EQ(row(oid)->m_nManualOrder, 0);
}

TEST_F(TaskLive, inThePriorityManagerADeletedTaskLeavesItsGroupButStaysBehindTheListUntilTheNextLoad)
{
    const CEOID a = addTask({.subject = u"A1: a"});
    const CEOID b = addTask({.subject = u"A2: b"});
    groupBy(taskGroupPriorityManager);
    openGroup(u"A");
    load();
    const int count = loader().GetList().GetCount();
    loader().DeleteTaskFromThread(indexOf(a));
    EXPECT_EQ(loader().GetList().GetCount(), count);
    EXPECT_EQ(row(b)->m_nManualOrder, 1);
    loader().SortDataList();
    EXPECT_EQ(loader().GetList().GetCount(), count);
    EXPECT_EQ(loader().GetList().GetDisplayCount(), count - 1);
    EXPECT_EQ(loader().GetList().GetTail()->m_oid, a);
    EXPECT_TRUE(shown().starts_with("[None-], [A+], b, [B-], ")) << shown();
    removeTask(a);
    load();
    EXPECT_EQ(indexOf(a), 0);
}

TEST_F(TaskLive, aRowThatThePriorityManagerKeptIsNotCountedOutTwice)
{
    const CEOID a = addTask({.subject = u"A1: a", .due = -1, .importance = 1});
    addTask({.subject = u"A2: b"});
    groupBy(taskGroupPriorityManager);
    load();
    loader().DeleteTaskFromThread(indexOf(a));
    loader().DeleteTaskFromThread(indexOf(a));
    EXPECT_EQ(counts().shown, 1);
    EXPECT_EQ(counts().total, 1);
    EXPECT_EQ(counts().overdue, 0);
    EXPECT_EQ(counts().high, 0);
    live(a, indexOf(a));
    EXPECT_EQ(counts().shown, 2);
    EXPECT_EQ(counts().high, 1);
    EXPECT_EQ(counts().overdue, 1);
}

TEST_F(TaskLive, inSeveralGroupsTheLastPlaceCountsForAll)
{
    addTask({.subject = u"a", .categories = categoryBlob({workBit})});
    const CEOID b = addTask({.subject = u"b", .categories = categoryBlob({workBit, homeBit})});
    addTask({.subject = u"c", .categories = categoryBlob({homeBit})});
    groupBy(taskGroupCategory);
    load();
    ASSERT_EQ(utf8(group(0)->m_pszSubject), "Work");
    ASSERT_EQ(group(0)->m_lstChildren.GetAt(1)->m_oid, b);
    ASSERT_EQ(group(1)->m_lstChildren.GetAt(0)->m_oid, b);
    live(b, indexOf(b));
    EXPECT_EQ(group(0)->m_lstChildren.GetAt(0)->m_oid, b);
    EXPECT_EQ(group(1)->m_lstChildren.GetAt(0)->m_oid, b);
}
} // namespace
