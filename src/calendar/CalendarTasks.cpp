#include "calendar/CalendarTasks.h"

#include "platform/text.h"
#include "tasks/DATATASKS.h"

#include <algorithm>

namespace zb
{
namespace
{
template <typename Value>
int order(Value a, Value b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

int orderOfTexts(const WCHAR *a, const WCHAR *b)
{
    const int result = CompareStringW(LOCALE_USER_DEFAULT, 0, a != nullptr ? a : u"", -1, b != nullptr ? b : u"", -1);
    return result == 0 ? 0 : result - CSTR_EQUAL;
}

/// A missing date is the largest one, so it comes last by itself; dates behind it would still come after.
int orderOfDates(double a, double b)
{
    if ((a == noDate) != (b == noDate))
    {
        return a == noDate ? 1 : -1;
    }
    return order(a, b);
}

int orderOfPriorities(const DATATASKS &a, const DATATASKS &b)
{
    const bool hasLetterA = a.m_szPriorityLetter[0] != 0;
    const bool hasLetterB = b.m_szPriorityLetter[0] != 0;
    if (hasLetterA != hasLetterB)
    {
        return hasLetterA ? -1 : 1;
    }
    if (const int result = lstrcmpW(a.m_szPriorityLetter, b.m_szPriorityLetter); hasLetterA && result != 0)
    {
        return result;
    }
    const bool hasNumberA = a.m_szPriorityNumber[0] != 0;
    const bool hasNumberB = b.m_szPriorityNumber[0] != 0;
    if (hasNumberA != hasNumberB)
    {
        return hasNumberA ? 1 : -1;
    }
    const int result = order(_wtol(a.m_szPriorityNumber), _wtol(b.m_szPriorityNumber));
    return result != 0 ? result : orderOfTexts(a.m_pszSubject, b.m_pszSubject);
}

int orderOfImportance(const DATATASKS &a, const DATATASKS &b)
{
    const int result = order(b.m_nImportance, a.m_nImportance);
    return result != 0 ? result : orderOfPriorities(a, b);
}

int orderOfCompletion(const DATATASKS &a, const DATATASKS &b)
{
    if (const int result = order(a.m_bComplete != 0, b.m_bComplete != 0); result != 0)
    {
        return result;
    }
    if (const int result = orderOfDates(a.m_dtDue, b.m_dtDue); result != 0)
    {
        return result;
    }
    const int result = orderOfImportance(a, b);
    return result != 0 ? result : orderOfTexts(a.m_pszSubject, b.m_pszSubject);
}

int wholeDay(double date)
{
    return static_cast<int>(date);
}

/// Due behind the range, and begun before today or, in a range without today, before the range.
bool reachesOverRange(int due, int start, const CalendarTaskView &view)
{
    return due > view.lastDay && start < (view.hasToday() ? view.today : view.firstDay);
}

CalendarTaskDays daysOfRunningTask(const TaskDates &task, const CalendarTaskView &view)
{
    const int due = wholeDay(task.due);
    const int start = wholeDay(task.start);
    const bool startsInRange = view.contains(start);
    CalendarTaskDays days;
    days.add(startsInRange ? start : due);
    if (startsInRange && view.contains(due) && due != start)
    {
        days.add(due);
    }
    const bool isUnderWay = start < view.today || (!startsInRange && task.start == noDate);
    if (view.inProgressToday && view.hasToday() && due != view.today && isUnderWay)
    {
        days.add(view.today);
    }
    return days;
}
} // namespace

bool taskShows(const TaskDates &task, const CalendarTaskView &view)
{
    if (task.isTemplate())
    {
        return false;
    }
    if (task.isComplete)
    {
        return view.showCompleted && view.contains(wholeDay(task.completed));
    }
    if (view.showUndated && task.due == noDate)
    {
        return true;
    }
    const int due = wholeDay(task.due);
    const int start = wholeDay(task.start);
    return (view.hasToday() && due <= view.today) || view.contains(due) || view.contains(start) ||
           reachesOverRange(due, start, view);
}

CalendarTaskDays taskDays(const TaskDates &task, const CalendarTaskView &view)
{
    const int due = wholeDay(task.due);
    CalendarTaskDays days;
    if (task.isComplete)
    {
        days.add(std::max(wholeDay(task.completed), view.firstDay));
    }
    else if (task.due == noDate)
    {
        days.add(view.lastResort());
    }
    else if (due < view.today)
    {
        days.add(view.lastResort());
        if (view.contains(due))
        {
            days.add(due);
        }
    }
    else if ((view.inProgressToday || !view.hasToday()) && reachesOverRange(due, wholeDay(task.start), view))
    {
        days.add(view.lastResort());
    }
    else
    {
        days = daysOfRunningTask(task, view);
    }
    return days;
}

int compareTasks(const DATATASKS &a, const DATATASKS &b, DWORD key)
{
    switch (key)
    {
    case 42227:
        return orderOfCompletion(a, b);
    case 42228:
        return orderOfTexts(a.m_pszSubject, b.m_pszSubject);
    case 42229:
        return orderOfDates(a.m_dtDue, b.m_dtDue);
    case 42230:
        return orderOfDates(a.m_dtStart, b.m_dtStart);
    case 42231:
        return orderOfImportance(a, b);
    case 42232:
        return order(b.m_bComplete != 0, a.m_bComplete != 0);
    case 42356:
        return orderOfPriorities(a, b);
    case 42360:
        return orderOfTexts(a.m_pszCategories, b.m_pszCategories);
    default:
        return 0;
    }
}
} // namespace zb
