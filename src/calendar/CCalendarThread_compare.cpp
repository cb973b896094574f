// The orders of calendar rows.
#include "calendar/CCalendarThread.h"

#include "calendar/CalendarTasks.h"
#include "platform/text.h"

#include <chrono>

namespace
{
template <typename Value>
int order(Value a, Value b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

/// True first.
int whoHas(bool a, bool b)
{
    return order(b, a);
}

int orderOfTexts(const WCHAR *a, const WCHAR *b)
{
    const int result = CompareStringW(LOCALE_USER_DEFAULT, 0, a != nullptr ? a : u"", -1, b != nullptr ? b : u"", -1);
    return result == 0 ? 0 : result - CSTR_EQUAL;
}

int orderOfIds(const DATACALENDAR &a, const DATACALENDAR &b)
{
    return order(static_cast<LONG>(a.m_oid), static_cast<LONG>(b.m_oid));
}

/// What all orders begin with: the same row, no row at all, and trailers at the end. True when that decides.
bool decidedByPlace(const DATACALENDAR *a, const DATACALENDAR *b, int &result)
{
    if (a == b)
    {
        result = 0;
        return true;
    }
    if (a == nullptr || b == nullptr)
    {
        result = a == nullptr ? 1 : -1;
        return true;
    }
    if (a->m_bTrailer || b->m_bTrailer)
    {
        result = order(a->m_bTrailer, b->m_bTrailer);
        return true;
    }
    return false;
}

int orderOfTasks(const DATACALENDAR &a, const DATACALENDAR &b)
{
    const DWORD key = CCalendarThread::s_dwTaskSort.load(std::memory_order_relaxed);
    const bool descending = CCalendarThread::s_bTaskSortDescending.load(std::memory_order_relaxed);
    int result = zb::compareTasks(*a.m_pTask, *b.m_pTask, key);
    result = descending ? -result : result;
    if (result == 0 && key != taskSortImportance)
    {
        result = zb::compareTasks(*a.m_pTask, *b.m_pTask, taskSortImportance);
    }
    return result != 0 ? result : orderOfIds(a, b);
}

int orderOfAppointments(const DATACALENDAR &a, const DATACALENDAR &b)
{
    if (const int result = whoHas(a.m_bAllDay != 0, b.m_bAllDay != 0); result != 0)
    {
        return result;
    }
    if (const int result = order(a.m_dtStart, b.m_dtStart); result != 0)
    {
        return result;
    }
    const int result = orderOfTexts(a.m_bstrSubject, b.m_bstrSubject);
    return result != 0 ? result : orderOfIds(a, b);
}

/// Month times 100 plus day, of a whole day counted from 1899-12-30.
int monthAndDay(int day)
{
    constexpr int daysToUnixEpoch = 25569;
    const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day - daysToUnixEpoch}}};
    return static_cast<int>(static_cast<unsigned>(date.month()) * 100 + static_cast<unsigned>(date.day()));
}
} // namespace

int CCalendarThread::CompareFunc(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR)
{
    int result = 0;
    if (decidedByPlace(a, b, result))
    {
        return result;
    }
    if (a->m_nDay != b->m_nDay)
    {
        return order(a->m_nDay, b->m_nDay);
    }
    if ((a->m_oid == 0) != (b->m_oid == 0))
    {
        return whoHas(a->m_oid == 0, b->m_oid == 0);
    }
    if (a->m_pTask != nullptr && b->m_pTask != nullptr)
    {
        return orderOfTasks(*a, *b);
    }
    if (a->m_pTask != nullptr || b->m_pTask != nullptr)
    {
        return order(a->m_pTask != nullptr, b->m_pTask != nullptr);
    }
    return orderOfAppointments(*a, *b);
}

int CCalendarThread::CompareFuncDate(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR)
{
    return order(a->m_dtStart, b->m_dtStart);
}

int CCalendarThread::CompareFuncBirthday(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR)
{
    int result = 0;
    if (decidedByPlace(a, b, result))
    {
        return result;
    }
    const int first = monthAndDay(a->m_nDay);
    const int second = monthAndDay(b->m_nDay);
    if (first != second)
    {
        return order(first, second);
    }
    if ((a->m_oid == 0) != (b->m_oid == 0))
    {
        return whoHas(a->m_oid == 0, b->m_oid == 0);
    }
    result = orderOfTexts(a->m_bstrSubject, b->m_bstrSubject);
    return result != 0 ? result : orderOfIds(*a, *b);
}
