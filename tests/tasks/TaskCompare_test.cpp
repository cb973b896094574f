// The orders of task rows, one comparison at a time: both directions, both levels, and what each falls back on.
#include "tasks/TaskListTest.h"

#include "platform/text.h"

#include <cstdlib>
#include <deque>

namespace
{
using namespace zb::test;

using Compare = int (*)(DATATASKS *const &, DATATASKS *const &, DWORD_PTR);

int sign(int result)
{
    return (result > 0) - (result < 0);
}

class TaskCompare : public DeviceTest
{
  protected:
    DATATASKS &row(const char16_t *subject = u"same")
    {
        DATATASKS &made = rows.emplace_back();
        made.m_pszSubject = _wcsdup(subject);
        made.m_pszCategories = _wcsdup(u"");
        made.m_oid = static_cast<CEOID>(rows.size());
        return made;
    }
    DATATASKS &header(const char16_t *title, LONG importance = 1)
    {
        DATATASKS &made = row(title);
        made.m_oid = taskGroupHeader;
        made.m_nImportance = importance;
        return made;
    }
    /// Sign of the comparison; the reverse must have the other sign, and the state must be as before.
    int order(Compare compare, DATATASKS &a, DATATASKS &b)
    {
        const TaskSortState before = state;
        const auto user = reinterpret_cast<DWORD_PTR>(&state);
        const int result = sign(compare(&a, &b, user));
        EXPECT_EQ(sign(compare(&b, &a, user)), -result);
        EXPECT_EQ(compare(&a, &a, user), 0);
        EXPECT_EQ(state.level, before.level);
        EXPECT_EQ(state.currentDescending, before.currentDescending);
        return result;
    }
    void descend()
    {
        state.firstDescending = state.currentDescending = true;
    }

    std::deque<DATATASKS> rows;
    TaskSortState state;
};

const Compare allWithOpening[] = {CTasksThread::TasksCompareSubject,    CTasksThread::TasksCompareCategory,
                                  CTasksThread::TasksCompareDueDate,    CTasksThread::TasksCompareStartDate,
                                  CTasksThread::TasksCompareCompletion, CTasksThread::TasksComparePriority};

TEST_F(TaskCompare, hiddenRowsComeBehindVisibleOnesWhileTheFirstKeyIsCompared)
{
    DATATASKS &hidden = row(u"a");
    DATATASKS &visible = row(u"b");
    hidden.m_bHidden = true;
    for (const Compare compare : allWithOpening)
    {
        state = TaskSortState();
        EXPECT_EQ(order(compare, hidden, visible), 1);
        descend();
        EXPECT_EQ(order(compare, hidden, visible), 1);
    }
    state = TaskSortState();
    state.level = 1;
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, hidden, visible), -1);
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, hidden, visible), 0);
}

TEST_F(TaskCompare, subjectsByTheLocale)
{
    DATATASKS &small = row(u"apple");
    DATATASKS &capital = row(u"Bread");
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, small, capital), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, small, capital), 1);
}

TEST_F(TaskCompare, theHeaderWithoutValueComesFirstInBothDirections)
{
    DATATASKS &none = header(u"zzz", 3);
    DATATASKS &other = header(u"aaa");
    state.level = 1;
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, none, other), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, none, other), -1);
    // A task is no header, whatever its importance.
    state = TaskSortState();
    DATATASKS &task = row(u"zzz");
    task.m_nImportance = 3;
    EXPECT_EQ(order(CTasksThread::TasksCompareSubject, task, other), 1);
}

TEST_F(TaskCompare, categories)
{
    DATATASKS &home = row(u"b");
    DATATASKS &work = row(u"a");
    std::free(home.m_pszCategories);
    std::free(work.m_pszCategories);
    home.m_pszCategories = _wcsdup(u"Home");
    work.m_pszCategories = _wcsdup(u"Work");
    EXPECT_EQ(order(CTasksThread::TasksCompareCategory, home, work), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksCompareCategory, home, work), 1);
}

TEST_F(TaskCompare, datesByWholeDayAndNoDateLastInBothDirections)
{
    for (const auto &[compare, member] :
         {std::pair<Compare, double DATATASKS::*>(CTasksThread::TasksCompareDueDate, &DATATASKS::m_dtDue),
          std::pair<Compare, double DATATASKS::*>(CTasksThread::TasksCompareStartDate, &DATATASKS::m_dtStart)})
    {
        state = TaskSortState();
        DATATASKS &early = row(u"b");
        DATATASKS &late = row(u"a");
        DATATASKS &lateToo = row(u"c");
        DATATASKS &none = row();
        early.*member = 100.9;
        late.*member = 101.1;
        lateToo.*member = 101.9;
        EXPECT_EQ(order(compare, early, late), -1);
        EXPECT_EQ(order(compare, late, none), -1);
        EXPECT_EQ(order(compare, late, lateToo), -1) << "the same day, so by subject";
        descend();
        EXPECT_EQ(order(compare, early, late), 1);
        EXPECT_EQ(order(compare, late, none), -1);
        EXPECT_EQ(order(compare, late, lateToo), -1) << "the second key does not descend";
    }
}

TEST_F(TaskCompare, twoUndatedTasksFallThroughToTheSecondKey)
{
    state.first = taskSortDueDate;
    state.second = taskSortPrioritySecond;
    DATATASKS &low = row(u"a");
    DATATASKS &high = row(u"b");
    low.m_nImportance = 0;
    high.m_nImportance = 2;
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, high, low), -1);
    state.secondDescending = true;
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, high, low), 1);
}

TEST_F(TaskCompare, openTasksBeforeCompleteOnes)
{
    DATATASKS &open = row(u"b");
    DATATASKS &done = row(u"a");
    done.m_bComplete = 1;
    EXPECT_EQ(order(CTasksThread::TasksCompareCompletion, open, done), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksCompareCompletion, open, done), 1);
}

TEST_F(TaskCompare, theTaskCompletedLastLeadsInBothDirections)
{
    DATATASKS &earlier = row(u"a");
    DATATASKS &later = row(u"b");
    earlier.m_bComplete = later.m_bComplete = 1;
    earlier.m_dtCompleted = 100.0;
    later.m_dtCompleted = 101.0;
    EXPECT_EQ(order(CTasksThread::TasksCompareCompletion, later, earlier), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksCompareCompletion, later, earlier), -1);
    later.m_dtCompleted = 100.5;
    EXPECT_EQ(order(CTasksThread::TasksCompareCompletion, later, earlier), 1) << "one day, so by subject";
}

TEST_F(TaskCompare, importanceCountsOnlyWhereItsKeyIsCompared)
{
    DATATASKS &low = row(u"a");
    DATATASKS &high = row(u"b");
    low.m_nImportance = 0;
    high.m_nImportance = 2;
    state.first = taskSortPriority;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), 1);

    state = TaskSortState();
    state.first = taskSortLetter;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), 1) << "letter and number alone: by subject";

    state.level = 1;
    state.first = taskSortPriority;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), 0);
    state.second = taskSortPrioritySecond;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), -1);
}

TEST_F(TaskCompare, headersCompareTheirImportanceAlways)
{
    DATATASKS &high = header(u"High", 2);
    DATATASKS &low = header(u"Low", 0);
    state.level = 1;
    state.first = taskSortSubject;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), -1);
    descend();
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, high, low), 1);
}

TEST_F(TaskCompare, lettersThenNumbers)
{
    const auto priority = [&](const char16_t *letter, const char16_t *number) -> DATATASKS &
    {
        DATATASKS &made = row();
        wcscpy(made.m_szPriorityLetter, letter);
        wcscpy(made.m_szPriorityNumber, number);
        return made;
    };
    state.first = taskSortLetter;
    DATATASKS &a = priority(u"A", u"");
    DATATASKS &a2 = priority(u"A", u"2");
    DATATASKS &a10 = priority(u"A", u"10");
    DATATASKS &b1 = priority(u"B", u"1");
    DATATASKS &none = priority(u"", u"");
    DATATASKS *expected[] = {&a, &a2, &a10, &b1, &none};
    for (int i = 0; i < 5; ++i)
    {
        for (int j = i + 1; j < 5; ++j)
        {
            state.currentDescending = state.firstDescending = false;
            EXPECT_EQ(order(CTasksThread::TasksComparePriority, *expected[i], *expected[j]), -1) << i << j;
            descend();
            EXPECT_EQ(order(CTasksThread::TasksComparePriority, *expected[i], *expected[j]), 1) << i << j;
        }
    }
}

TEST_F(TaskCompare, tasksEqualOnBothKeysGoBySubjectThenById)
{
    state.first = taskSortDueDate;
    state.second = taskSortPrioritySecond;
    DATATASKS &a = row(u"a");
    DATATASKS &b = row(u"b");
    DATATASKS &b2 = row(u"b");
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, a, b), -1);
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, b, b2), -1);
    state.secondDescending = true;
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, a, b), 1) << "the subject follows the second key";
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, b, b2), -1) << "the id does not";
}

TEST_F(TaskCompare, idsAreSigned)
{
    state.first = taskSortDueDate;
    DATATASKS &large = row();
    DATATASKS &small = row();
    large.m_oid = 0x80000001;
    EXPECT_EQ(order(CTasksThread::TasksCompareDueDate, large, small), -1);
}

TEST_F(TaskCompare, whereOneKeyIsTheSubjectItIsNotComparedAgain)
{
    DATATASKS &a = row(u"a");
    DATATASKS &b = row(u"b");
    // By priority, then by due date: the subject decides before the id.
    b.m_oid = 0;
    state.first = taskSortPriority;
    state.second = taskSortDueDateSecond;
    EXPECT_EQ(order(CTasksThread::TasksComparePriority, a, b), -1);
    // First key subject: a tie there goes to the second key and then to the id. Asked without the first comparison,
    // the second falls to the id at once.
    state.first = taskSortSubject;
    EXPECT_EQ(order(CTasksThread::TasksCompareSecond, a, b), 1);
}

TEST_F(TaskCompare, theSecondKeyIsNotAskedAtLevel1OrWhenItIsTheFirst)
{
    DATATASKS &a = row(u"a");
    DATATASKS &b = row(u"b");
    state.level = 1;
    EXPECT_EQ(order(CTasksThread::TasksCompareSecond, a, b), 0);
    state = TaskSortState();
    state.first = state.second = taskSortSubject;
    EXPECT_EQ(order(CTasksThread::TasksCompareSecond, a, b), 0);
}

TEST_F(TaskCompare, everySecondKey)
{
    DATATASKS &a = row(u"z");
    DATATASKS &b = row(u"a");
    std::free(a.m_pszCategories);
    std::free(b.m_pszCategories);
    a.m_pszCategories = _wcsdup(u"1");
    b.m_pszCategories = _wcsdup(u"2");
    a.m_dtDue = 1;
    b.m_dtDue = 2;
    a.m_dtStart = 1;
    b.m_dtStart = 2;
    b.m_bComplete = 1;
    a.m_nImportance = 2;
    wcscpy(a.m_szPriorityLetter, u"A");
    const std::pair<ULONG, int> cases[] = {{42136, 1},  {42137, -1}, {42139, -1}, {42140, -1},
                                           {42355, -1}, {42359, -1}, {42138, -1}, {0, -1}};
    for (const auto &[key, expected] : cases)
    {
        state = TaskSortState();
        state.second = key;
        EXPECT_EQ(order(CTasksThread::TasksCompareSecond, a, b), expected) << key;
        state.secondDescending = true;
        EXPECT_EQ(order(CTasksThread::TasksCompareSecond, a, b), -expected) << key;
    }
}

TEST_F(TaskCompare, manualOrderThenNumberThenId)
{
    DATATASKS &first = row();
    DATATASKS &second = row();
    DATATASKS &numbered = row();
    DATATASKS &hidden = row();
    first.m_nManualOrder = 1;
    second.m_nManualOrder = 2;
    numbered.m_nManualOrder = 2;
    wcscpy(numbered.m_szPriorityNumber, u"1");
    hidden.m_bHidden = true;
    for (const int level : {0, 1})
    {
        for (const bool descending : {false, true})
        {
            state.level = level;
            state.currentDescending = descending;
            EXPECT_EQ(order(CTasksThread::TasksCompareTPM, first, second), -1);
            EXPECT_EQ(order(CTasksThread::TasksCompareTPM, second, numbered), -1);
            EXPECT_EQ(order(CTasksThread::TasksCompareTPM, numbered, hidden), -1);
        }
    }
    DATATASKS &ten = row();
    DATATASKS &nine = row();
    wcscpy(ten.m_szPriorityNumber, u"10");
    wcscpy(nine.m_szPriorityNumber, u"9");
    EXPECT_EQ(order(CTasksThread::TasksCompareTPM, nine, ten), -1);
    DATATASKS &older = row();
    DATATASKS &newer = row();
    EXPECT_EQ(order(CTasksThread::TasksCompareTPM, older, newer), -1);
    EXPECT_EQ(CTasksThread::TasksCompareTPM(nullptr, &ten, 0), -1);
    EXPECT_EQ(CTasksThread::TasksCompareTPM(&ten, nullptr, 0), 1);
}

TEST_F(TaskCompare, byIdNullFirst)
{
    DATATASKS &one = row();
    DATATASKS &two = row();
    DATATASKS &header = this->header(u"x");
    EXPECT_EQ(order(CTasksThread::TasksCompareOID, one, two), -1);
    EXPECT_EQ(order(CTasksThread::TasksCompareOID, header, one), -1);
    EXPECT_EQ(CTasksThread::TasksCompareOID(nullptr, &one, 0), -1);
    EXPECT_EQ(CTasksThread::TasksCompareOID(&one, nullptr, 0), 1);
}

TEST_F(TaskCompare, withoutStateTheDefaultKeysCount)
{
    DATATASKS &high = row(u"b");
    DATATASKS &normal = row(u"a");
    DATATASKS &normalToo = row(u"c");
    high.m_nImportance = 2;
    EXPECT_LT(CTasksThread::TasksComparePriority(&high, &normal, 0), 0);
    EXPECT_LT(CTasksThread::TasksComparePriority(&normal, &normalToo, 0), 0);
    EXPECT_LT(CTasksThread::TasksComparePriority(&high, &normal, 0), 0);
}
} // namespace
