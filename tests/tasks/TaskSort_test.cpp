// Sorting a list: every key as first and second, groups in both directions, and the place of hidden rows.
#include "core/CRegistry.h"
#include "tasks/TaskListTest.h"

#include "platform/text.h"

#include <thread>

namespace
{
using namespace zb::test;

class TaskSort : public TaskListTest
{
  protected:
    std::string sorted(DWORD first, bool descending = false, DWORD second = 42136, bool secondDescending = false)
    {
        set(u"TV_Sort0", first);
        set(u"TV_SortDescending0", descending ? 1 : 0);
        set(u"TV_Sort1", second);
        set(u"TV_SortDescending1", secondDescending ? 1 : 0);
        loader().SortDataList();
        return shown();
    }
    void addVaried()
    {
        set(u"bShowCompleted", 1);
        addTask({.subject = u"C3: one", .due = 1, .start = -5, .importance = 2, .categories = categoryBlob({workBit})});
        addTask({.subject = u"A2: two",
                 .due = 3,
                 .complete = SHORT{1},
                 .completed = -3,
                 .importance = 3,
                 .categories = categoryBlob({homeBit})});
        addTask({.subject = u"B: three", .start = 1, .importance = 1, .categories = categoryBlob({gardenBit})});
        addTask({.subject = u"four", .due = 2, .start = -7, .complete = SHORT{1}, .completed = -1, .importance = 1});
        load();
    }
};

TEST_F(TaskSort, everyFirstKeyInBothDirections)
{
    addVaried();
    EXPECT_EQ(sorted(42126), "four, one, three, two");
    EXPECT_EQ(sorted(42126, true), "two, three, one, four");
    EXPECT_EQ(sorted(42127), "one, four, two, three") << "no due date last";
    EXPECT_EQ(sorted(42127, true), "two, four, one, three") << "in both directions";
    EXPECT_EQ(sorted(42129), "three, four, one, two") << "importance, then letter";
    EXPECT_EQ(sorted(42129, true), "two, one, four, three");
    EXPECT_EQ(sorted(42130), "one, three, four, two") << "the latest completed first of the complete ones";
    EXPECT_EQ(sorted(42130, true), "four, two, one, three") << "here too";
    EXPECT_EQ(sorted(42354), "two, three, one, four") << "letters";
    EXPECT_EQ(sorted(42354, true), "four, one, three, two");
    EXPECT_EQ(sorted(42358), "four, three, two, one") << "categories";
    EXPECT_EQ(sorted(42358, true), "one, two, three, four");
    EXPECT_EQ(sorted(42128), "four, one, three, two") << "start date";
    EXPECT_EQ(sorted(42128, true), "three, one, four, two");
    EXPECT_EQ(sorted(12345), "four, one, three, two");
}

TEST_F(TaskSort, everySecondKeyInBothDirections)
{
    // All equal by completion, the first key.
    addTask({.subject = u"B: b", .due = 2, .start = 3, .importance = 1, .categories = categoryBlob({homeBit})});
    addTask({.subject = u"A: c", .due = 3, .start = 1, .importance = 3, .categories = categoryBlob({workBit})});
    addTask({.subject = u"C: a", .due = 1, .start = 2, .importance = 2, .categories = categoryBlob({gardenBit})});
    load();
    const std::tuple<DWORD, const char *, const char *> cases[] = {
        {42136, "a, b, c", "c, b, a"}, {42137, "a, b, c", "c, b, a"}, {42139, "b, a, c", "c, a, b"},
        {42355, "c, b, a", "a, b, c"}, {42359, "a, b, c", "c, b, a"}, {42138, "c, a, b", "b, a, c"}};
    for (const auto &[key, ascending, descending] : cases)
    {
        EXPECT_EQ(sorted(42130, false, key), ascending) << key;
        EXPECT_EQ(sorted(42130, false, key, true), descending) << key;
    }
    set(u"bShowCompleted", 1);
    addTask({.subject = u"0", .complete = SHORT{1}, .importance = 1});
    load();
    EXPECT_EQ(sorted(12345, true, 42140), "b, a, c, 0");
    for (DATATASKS *row : {loader().GetList().GetAt(1), loader().GetList().GetAt(2), loader().GetList().GetAt(3)})
    {
        row->m_dtStart = 949998.0;
    }
    EXPECT_EQ(sorted(12345, false, 42140), "a, b, c, 0");
    EXPECT_EQ(sorted(12345, false, 42140, true), "0, c, b, a") << "and the subject follows the second key";
}

TEST_F(TaskSort, tasksEqualOnBothKeysGoBySubjectThenById)
{
    const CEOID second = addTask({.subject = u"b", .due = 1});
    const CEOID third = addTask({.subject = u"b", .due = 1});
    addTask({.subject = u"a", .due = 1});
    set(u"TV_Sort1", 42139);
    set(u"TV_Sort0", 42127);
    EXPECT_EQ(load(), "a, b, b");
    EXPECT_EQ(loader().GetList().GetAt(2)->m_oid, std::min(second, third));
    EXPECT_EQ(loader().GetList().GetAt(3)->m_oid, std::max(second, third));
}

TEST_F(TaskSort, aFlatListShowsAllItsRows)
{
    addVaried();
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 4);
    EXPECT_EQ(loader().GetList().m_nPublished, 4);
    EXPECT_EQ(loader().GetList().GetBase(), 1);
}

TEST_F(TaskSort, hiddenRowsWaitBehindTheOthersInReverseOrder)
{
    addTask({.subject = u"h1", .importance = 1});
    addTask({.subject = u"h2", .importance = 1});
    addTask({.subject = u"n1"});
    addTask({.subject = u"n2"});
    groupBy(taskGroupImportance);
    openGroup(u"1");
    EXPECT_EQ(load(), "[High-], [Normal+], n1, n2, [Low-]");
    EXPECT_EQ(rows(), "[High-], [Normal+], n1, n2, [Low-], h2, h1");
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 5);
    EXPECT_EQ(loader().GetList().GetCount(), 7);
    EXPECT_EQ(loader().GetList().m_nPublished, 7);
}

TEST_F(TaskSort, openingAGroupIsASort)
{
    const CEOID oid = addTask({.subject = u"x"});
    groupBy(taskGroupImportance);
    load();
    removeTask(oid); // no database is looked at
    const LONG change = loader().ExpandTreeNode(true, loader().GetGroups().GetAt(1), true);
    EXPECT_EQ(change, -1);
    EXPECT_EQ(shown(), "[High-], [Normal+], x, [Low-]");
    EXPECT_EQ(loader().ExpandTreeNode(false, loader().GetGroups().GetAt(1), true), 1);
    EXPECT_EQ(shown(), "[High-], [Normal-], [Low-]");
}

TEST_F(TaskSort, rowsOfAGroupGoByTheSortKeys)
{
    addTask({.subject = u"a", .due = 1});
    addTask({.subject = u"b", .due = 3});
    addTask({.subject = u"c", .due = 2});
    groupBy(taskGroupImportance);
    openGroup(u"1");
    load();
    EXPECT_EQ(sorted(42127), "[High-], [Normal+], a, c, b, [Low-]");
    EXPECT_EQ(sorted(42127, true), "[High-], [Normal+], b, c, a, [Low-]");
}

TEST_F(TaskSort, headersKeepTheirOrderWhenTheFirstKeyDescends)
{
    addTask({.subject = u"A: x", .due = 1, .importance = 1, .categories = categoryBlob({workBit})});
    addTask({.subject = u"B: y", .due = 2, .importance = 2, .categories = categoryBlob({homeBit})});
    groupBy(taskGroupImportance);
    load();
    EXPECT_EQ(sorted(42126, true), "[High-], [Normal-], [Low-]");
    groupBy(taskGroupLetter);
    load();
    EXPECT_EQ(sorted(42126, true), "[A-], [B-]");
    groupBy(taskGroupCategory);
    load();
    EXPECT_EQ(sorted(42126, true), "[Home-], [Work-]");
    groupBy(taskGroupDueDate);
    load();
    EXPECT_EQ(sorted(42126, true), "[3/3/26-], [3/4/26-]");
}

TEST_F(TaskSort, headersWithoutValueChangeSidesWhenTheFirstKeyDescends)
{
    addTask({.subject = u"x", .due = 1, .categories = categoryBlob({workBit})});
    addTask({.subject = u"y"});
    groupBy(taskGroupCategory);
    load();
    EXPECT_EQ(sorted(42126), "[None-], [Work-]");
    EXPECT_EQ(sorted(42126, true), "[Work-], [None-]");
    groupBy(taskGroupDueDate);
    load();
    EXPECT_EQ(sorted(42126), "[3/3/26-], [None-]");
    EXPECT_EQ(sorted(42126, true), "[None-], [3/3/26-]");
    groupBy(taskGroupProgress);
    load();
    EXPECT_EQ(sorted(42126, true), "[Completed-], [Overdue-], [Due today-], [Due within 7 days-], "
                                   "[Due within a month-], [Due later-], [No due date-]");
}

TEST_F(TaskSort, thePriorityManagerGoesByItsOwnOrderWhateverTheKeys)
{
    addTask({.subject = u"A3: a", .due = 1});
    addTask({.subject = u"A1: b", .due = 2});
    addTask({.subject = u"A: c", .due = 3});
    groupBy(taskGroupPriorityManager);
    openGroup(u"A");
    load();
    EXPECT_EQ(sorted(42127, true).substr(0, 28), "[None-], [A+], c, b, a, [B-]");
    loader().GetList().GetAt(5)->m_nManualOrder = -1; // what the host does when a row is moved
    EXPECT_EQ(sorted(42127, true).substr(0, 28), "[None-], [A+], a, c, b, [B-]");
}

TEST_F(TaskSort, anEmptiedGroupedListShowsNothing)
{
    const CEOID oid = addTask({.subject = u"x"});
    for (DWORD grouping = taskGroupCategory; grouping <= taskGroupDueDate; ++grouping)
    {
        set(u"GroupBy", grouping);
        load();
        EXPECT_GT(loader().GetList().GetDisplayCount(), 0);
        loader().DeleteTaskFromThread(indexOf(oid));
        loader().SortDataList();
        EXPECT_EQ(loader().GetList().GetDisplayCount(), 0);
        EXPECT_EQ(loader().GetList().GetCount(), 0);
        EXPECT_EQ(loader().GetGroups().GetCount(), 0);
        EXPECT_EQ(loader().GetDisplayedTreeCount(), 0);
        // And it fills again.
        EXPECT_EQ(live(oid, -1), 0);
        loader().SortDataList();
        EXPECT_GT(loader().GetList().GetDisplayCount(), 0);
    }
}

TEST_F(TaskSort, twoListsSortAtTheSameMomentByTheirOwnKeys)
{
    for (int i = 0; i < 200; ++i)
    {
        addTask({.subject = zb::test::utf16("task " + std::to_string(1000 + i)), .due = 200 - i});
    }
    const WCHAR *other = u"Software\\Kelvo\\Zembrik\\Other";
    setSetting(other, u"TV_Sort0", DWORD{42126});
    set(u"TV_Sort0", 42127);
    CTasksThread second;
    second.Override(other);
    second.TasksThreadProc(nullptr);
    load();
    const auto sortOften = [](CTasksThread &list)
    {
        for (int i = 0; i < 100; ++i)
        {
            list.SortDataList();
        }
    };
    std::thread thread([&] { sortOften(second); });
    sortOften(loader());
    thread.join();
    for (int i = 1; i <= 200; ++i)
    {
        ASSERT_EQ(utf8(second.GetList().GetAt(i)->m_pszSubject), "task " + std::to_string(999 + i));
        ASSERT_EQ(utf8(loader().GetList().GetAt(i)->m_pszSubject), "task " + std::to_string(1200 - i));
    }
}
} // namespace
