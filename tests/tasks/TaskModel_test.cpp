// Random edits, one record at a time, leave the list that a fresh load makes of the same records.
//
// What may differ, and is left out here:
// - the priority manager keeps the order of its rows, and the rows of deleted tasks behind the list; so only which rows
//   lie in which group is compared there;
// - which of the groups "a" and "A" a small letter joins depends on which was made first; the tasks here have capitals;
// - a record that has no row (refused by a filter) and is edited counts once more in total and shown, since nothing
//   tells it from a new one; the counts that come from rows are compared. With shown above 0 a list that has lost its
//   last row keeps its fixed headers, where a load would make none.
#include "tasks/TaskListTest.h"

#include "platform/pim.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace
{
using namespace zb::test;

/// One row with all that it shows.
std::string whole(const DATATASKS &row)
{
    const std::string group = row.m_pParent != nullptr ? utf8(row.m_pParent->m_pszSubject) : "";
    return std::to_string(row.m_oid) + " " + describe(row) + " " + utf8(row.m_szPriorityLetter) +
           utf8(row.m_szPriorityNumber) + " {" + utf8(row.m_pszCategories) + "} due " + std::to_string(row.m_dtDue) +
           " done " + std::to_string(row.m_bComplete) + " importance " + std::to_string(row.m_nImportance) + " depth " +
           std::to_string(row.m_nDepth) + " under " + group + (row.m_bHidden ? " hidden" : "") +
           (row.m_bOverdue ? " overdue" : "") + (row.m_bDueToday ? " today" : "");
}

std::vector<std::string> wholeList(CTasksThread &list)
{
    std::vector<std::string> all{"displayed " + std::to_string(list.GetList().GetDisplayCount())};
    for (int i = 1; i <= list.GetList().GetCount(); ++i)
    {
        all.push_back(whole(*list.GetList().GetAt(i)));
    }
    return all;
}

/// Header to the rows under it, in no order.
std::map<std::string, std::multiset<std::string>> membersOf(CTasksThread &list)
{
    std::map<std::string, std::multiset<std::string>> all;
    for (int i = 0; i < list.GetGroups().GetCount(); ++i)
    {
        DATATASKS *group = list.GetGroups().GetAt(i);
        auto &members = all[whole(*group)];
        for (int child = 0; child < group->NumChildren(); ++child)
        {
            members.insert(whole(*group->m_lstChildren.GetAt(child)));
        }
    }
    return all;
}

/// Rows of tasks under a header, or anywhere in a list without groups.
int taskRows(CTasksThread &list)
{
    int count = 0;
    for (int i = 1; i <= list.GetList().GetCount(); ++i)
    {
        const DATATASKS &row = *list.GetList().GetAt(i);
        count += !row.IsGroupHeader() && (list.GetGroupBy() == taskGroupNone || row.m_pParent != nullptr) ? 1 : 0;
    }
    return count;
}

std::vector<LONG> countsOfRows(const CTasksThread::Counts &counts)
{
    return {counts.high, counts.normal, counts.low, counts.overdue, counts.dueToday};
}

class TaskModel : public TaskListTest, public ::testing::WithParamInterface<int>
{
  protected:
    unsigned pick(unsigned below)
    {
        return static_cast<unsigned>(random() % below);
    }
    TaskRecord anyRecord()
    {
        static constexpr const char16_t *subjects[] = {u"A1: pay", u"A: call", u"B2: write",  u"plain",
                                                       u"B: read", u"other",   u"C12|7: run", u""};
        TaskRecord record{.subject = subjects[pick(std::size(subjects))]};
        if (pick(3) != 0)
        {
            record.due = static_cast<int>(pick(80)) - 20;
        }
        if (pick(4) == 0)
        {
            record.complete = SHORT{1};
            record.completed = -static_cast<int>(pick(60));
        }
        record.start = pick(2) == 0 ? std::optional(static_cast<int>(pick(9)) - 4) : std::nullopt;
        record.importance = static_cast<LONG>(pick(4));
        record.categories = categoryBlob({static_cast<int>(pick(5)), static_cast<int>(pick(5))});
        return record;
    }
    void add()
    {
        const CEOID oid = addTask(anyRecord());
        oids.push_back(oid);
        live(oid, -1);
    }
    void change()
    {
        const CEOID oid = oids[pick(static_cast<unsigned>(oids.size()))];
        changeTask(oid, anyRecord());
        const int index = indexOf(oid);
        live(oid, index > 0 ? index : -1);
    }
    void remove()
    {
        const std::size_t at = pick(static_cast<unsigned>(oids.size()));
        const int index = indexOf(oids[at]);
        if (index > 0)
        {
            loader().DeleteTaskFromThread(index);
        }
        removeTask(oids[at]);
        oids.erase(oids.begin() + static_cast<std::ptrdiff_t>(at));
    }
    void step()
    {
        const unsigned kind = oids.empty() ? 0 : pick(10);
        kind < 3 ? add() : kind < 8 ? change() : remove();
        if (pick(4) == 0)
        {
            loader().SortDataList();
        }
    }
    void compare()
    {
        loader().SortDataList();
        CTasksThread fresh;
        fresh.TasksThreadProc(nullptr);
        if (fresh.GetList().IsEmpty())
        {
            EXPECT_EQ(taskRows(loader()), 0);
        }
        else if (GetParam() == taskGroupPriorityManager)
        {
            EXPECT_EQ(membersOf(loader()), membersOf(fresh));
        }
        else
        {
            EXPECT_EQ(wholeList(loader()), wholeList(fresh));
        }
        EXPECT_EQ(countsOfRows(loader().GetCounts()), countsOfRows(fresh.GetCounts()));
    }
    void chooseSettings()
    {
        static constexpr DWORD rules[] = {42250, 42251, 42255, 42256, 42259};
        static constexpr DWORD keys[] = {42126, 42127, 42129, 42130, 42354, 42358, 42128};
        static constexpr DWORD seconds[] = {42136, 42137, 42139, 42140, 42355, 42359, 42138};
        set(u"GroupBy", static_cast<DWORD>(GetParam()));
        set(u"TV_FilterData", rules[pick(std::size(rules))]);
        set(u"TV_DaysFuture", 10);
        set(u"bShowCompleted", pick(2));
        set(u"bShowUndated", pick(4) == 0 ? 0 : 1);
        set(u"TV_Sort0", keys[pick(std::size(keys))]);
        set(u"TV_Sort1", seconds[pick(std::size(seconds))]);
        set(u"TV_SortDescending0", pick(2));
        set(u"TV_SortDescending1", pick(2));
        for (const WCHAR *name : {u"Work", u"A", u"1", u"GRPPROG-0", u"Complete", u""})
        {
            setSetting(groupStateKey, name, DWORD{pick(2)});
        }
    }

    std::mt19937 random;
    std::vector<CEOID> oids;
};

TEST_P(TaskModel, randomEditsLeaveTheListOfAFreshLoad)
{
    for (unsigned seed = 1; seed <= 4; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        random.seed(seed * 100 + static_cast<unsigned>(GetParam()));
        chooseSettings();
        load();
        for (int i = 0; i < 60 && !HasFailure(); ++i)
        {
            SCOPED_TRACE("step " + std::to_string(i));
            step();
            if (i % 6 == 5)
            {
                compare();
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Groupings, TaskModel, ::testing::Range(0, 8));

class LargeTaskList : public TaskListTest
{
};

TEST_F(LargeTaskList, twentyThousandTasksOfThreeCategoriesStandInOrderUnderEach)
{
    constexpr int count = 20'000;
    {
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
        zb::BulkWrite bulk;
        std::mt19937 numbers(7);
        for (int i = 0; i < count; ++i)
        {
            zb::RecordProperties properties;
            properties.set(0x0037001f, utf16("task " + std::to_string(numbers())));
            properties.set(0x41050040, dayTime(today + static_cast<int>(numbers() % 2000)));
            properties.set(0x00160041, categoryBlob({workBit, homeBit, gardenBit}));
            CeWriteRecordProps(handle, 0, properties.count(), properties.values());
        }
        bulk.commit();
        CloseHandle(handle);
    }
    set(u"TV_Sort0", 42127);
    groupBy(taskGroupCategory);
    for (const WCHAR *name : {u"Work", u"Home", u"Garden"})
    {
        openGroup(name);
    }
    load();
    ASSERT_EQ(loader().GetList().GetDisplayCount(), 3 * count + 3);
    ASSERT_EQ(loader().GetCounts().total, count);
    const DATATASKS *before = nullptr;
    for (int i = 1; i <= loader().GetList().GetCount(); ++i)
    {
        const DATATASKS *row = loader().GetList().GetAt(i);
        if (before != nullptr && !before->IsGroupHeader() && !row->IsGroupHeader())
        {
            const bool sameDay = before->m_dtDue == row->m_dtDue;
            ASSERT_TRUE(before->m_dtDue < row->m_dtDue ||
                        (sameDay && lstrcmpW(before->m_pszSubject, row->m_pszSubject) <= 0));
        }
        before = row;
    }
    // By due date there are 2,000 groups.
    groupBy(taskGroupDueDate);
    load();
    EXPECT_EQ(loader().GetList().GetCount(), count + loader().GetGroups().GetCount());
    EXPECT_EQ(loader().GetList().GetDisplayCount(), loader().GetGroups().GetCount());
}
} // namespace
