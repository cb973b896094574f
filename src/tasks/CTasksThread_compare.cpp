// The orders of task rows.
#include "tasks/CTasksThread.h"

#include "platform/text.h"

namespace
{
template <typename Value>
int order(Value a, Value b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

int turned(int result, const TaskSortState &state)
{
    return state.currentDescending ? -result : result;
}

TaskSortState &stateOf(DWORD_PTR user)
{
    // A comparison leaves the state as it found it, so this one stays the default.
    thread_local TaskSortState usual;
    return user != 0 ? *reinterpret_cast<TaskSortState *>(user) : usual;
}

/// What the orders begin with: the same row, and, while the first key is compared, hidden rows behind visible ones.
bool decidedByPlace(const DATATASKS *a, const DATATASKS *b, const TaskSortState &state, int &result)
{
    result = a == b ? 0 : order(a->m_bHidden, b->m_bHidden);
    return a == b || (state.level == 0 && result != 0);
}

int orderOfTexts(const WCHAR *a, const WCHAR *b)
{
    return CompareStringW(LOCALE_USER_DEFAULT, 0, a != nullptr ? a : u"", -1, b != nullptr ? b : u"", -1) - CSTR_EQUAL;
}

int orderOfIds(const DATATASKS &a, const DATATASKS &b)
{
    return order(static_cast<LONG>(a.m_oid), static_cast<LONG>(b.m_oid));
}

bool headsNoValue(const DATATASKS &row)
{
    return row.IsGroupHeader() && row.m_nImportance == taskImportanceNoValue;
}

/// Whole days; what has no date comes behind, in both directions.
int orderOfDates(double a, double b, const TaskSortState &state)
{
    if ((a == noDate) != (b == noDate))
    {
        return a == noDate ? 1 : -1;
    }
    return turned(order(static_cast<int>(a), static_cast<int>(b)), state);
}

/// What is set comes first.
int orderOfLetters(const WCHAR *a, const WCHAR *b)
{
    const int set = order(*b != 0, *a != 0);
    return set != 0 || *a == 0 ? set : lstrcmpW(a, b);
}

/// Kept: here what is set comes last.
int orderOfNumbers(const WCHAR *a, const WCHAR *b)
{
    const int set = order(*a != 0, *b != 0);
    return set != 0 || *a == 0 ? set : order(_wtol(a), _wtol(b));
}

bool comparesImportance(const DATATASKS &a, const TaskSortState &state)
{
    return a.IsGroupHeader() || (state.level == 0 ? state.first == taskSortPriority
                                                  : state.level == 1 && state.second == taskSortPrioritySecond);
}
} // namespace

int CTasksThread::TasksCompareSubject(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    if (headsNoValue(*a) != headsNoValue(*b))
    {
        return headsNoValue(*a) ? -1 : 1;
    }
    result = turned(orderOfTexts(a->m_pszSubject, b->m_pszSubject), state);
    return result != 0 ? result : TasksCompareSecond(a, b, user);
}

int CTasksThread::TasksCompareCategory(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    result = turned(orderOfTexts(a->m_pszCategories, b->m_pszCategories), state);
    return result != 0 ? result : TasksCompareSecond(a, b, user);
}

int CTasksThread::TasksCompareDueDate(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    result = orderOfDates(a->m_dtDue, b->m_dtDue, state);
    return result != 0 ? result : TasksCompareSecond(a, b, user);
}

int CTasksThread::TasksCompareStartDate(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    result = orderOfDates(a->m_dtStart, b->m_dtStart, state);
    return result != 0 ? result : TasksCompareSecond(a, b, user);
}

/// Kept: of complete tasks the one completed last leads in both directions.
int CTasksThread::TasksCompareCompletion(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    const bool aComplete = a->m_bComplete != 0;
    const bool bComplete = b->m_bComplete != 0;
    result = turned(order(aComplete, bComplete), state);
    if (aComplete && bComplete)
    {
        result = order(static_cast<int>(b->m_dtCompleted), static_cast<int>(a->m_dtCompleted));
    }
    return result != 0 ? result : TasksCompareSecond(a, b, user);
}

int CTasksThread::TasksComparePriority(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    const TaskSortState &state = stateOf(user);
    int result = 0;
    if (decidedByPlace(a, b, state, result))
    {
        return result;
    }
    result = comparesImportance(*a, state) ? order(b->m_nImportance, a->m_nImportance) : 0;
    result = result != 0 ? result : orderOfLetters(a->m_szPriorityLetter, b->m_szPriorityLetter);
    result = result != 0 ? result : orderOfNumbers(a->m_szPriorityNumber, b->m_szPriorityNumber);
    return result != 0 ? turned(result, state) : TasksCompareSecond(a, b, user);
}

int CTasksThread::TasksCompareSecond(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    TaskSortState &state = stateOf(user);
    if (state.level != 0 || state.first == state.second)
    {
        return 0;
    }
    state.level = 1;
    state.currentDescending = state.secondDescending;
    int result = CompareBySecondKey(a, b, user);
    if (result == 0 && state.second != taskSortSubjectSecond && state.first != taskSortSubject)
    {
        result = TasksCompareSubject(a, b, user);
    }
    if (result == 0)
    {
        result = orderOfIds(*a, *b);
    }
    state.level = 0;
    state.currentDescending = state.firstDescending;
    return result;
}

int CTasksThread::CompareBySecondKey(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user)
{
    switch (stateOf(user).second)
    {
    case taskSortSubjectSecond:
        return TasksCompareSubject(a, b, user);
    case taskSortDueDateSecond:
        return TasksCompareDueDate(a, b, user);
    case taskSortPrioritySecond:
    case taskSortLetterSecond:
        return TasksComparePriority(a, b, user);
    case taskSortCompletionSecond:
        return TasksCompareCompletion(a, b, user);
    case taskSortCategorySecond:
        return TasksCompareCategory(a, b, user);
    default:
        return TasksCompareStartDate(a, b, user);
    }
}

int CTasksThread::TasksCompareTPM(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR)
{
    if (a == b)
    {
        return 0;
    }
    if (a == nullptr || b == nullptr)
    {
        return a == nullptr ? -1 : 1;
    }
    int result = order(a->m_bHidden, b->m_bHidden);
    result = result != 0 ? result : order(a->m_nManualOrder, b->m_nManualOrder);
    result = result != 0 ? result : orderOfNumbers(a->m_szPriorityNumber, b->m_szPriorityNumber);
    return result != 0 ? result : orderOfIds(*a, *b);
}

int CTasksThread::TasksCompareOID(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR)
{
    if (a == nullptr || b == nullptr)
    {
        return order(a != nullptr, b != nullptr);
    }
    return orderOfIds(*a, *b);
}
