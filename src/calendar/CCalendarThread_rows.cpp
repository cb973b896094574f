// From the scratch row to the rows of the list.
#include "calendar/CCalendarThread.h"

#include "platform/text.h"

#include <algorithm>
#include <cmath>

namespace
{
/// Characters of an age text, its terminator included.
constexpr std::size_t ageTextSize = 1100;
/// Characters more that the categories get for the mark of a birthday or anniversary.
constexpr std::size_t markRoom = 50;

constexpr LONGLONG secondsPerDay = 86'400;

/// A variant date by day and second. Ends are sums of fractions, so the last digit may be off: whole seconds decide.
struct DayAndSecond
{
    explicit DayAndSecond(double date)
    {
        const LONGLONG seconds = std::llround(date * static_cast<double>(secondsPerDay));
        day = static_cast<int>(seconds / secondsPerDay);
        second = static_cast<int>(seconds % secondsPerDay);
        if (second < 0)
        {
            second += secondsPerDay;
            --day;
        }
    }
    int day;
    int second;
};
} // namespace

void CCalendarThread::fFillNonRecurrEvnt()
{
    if (m_bRestRead || fReadRestOfRecord())
    {
        fFillExtraAgendaInfo(m_pRow->Copy());
    }
}

/// The last step of every row, which the list owns from here on: ages, and a row for each further day.
void CCalendarThread::fFillExtraAgendaInfo(DATACALENDAR *row)
{
    row->m_bComplete = true;
    if (row->m_wAnniversaryYear != 0)
    {
        AddAge(*row, row->m_wAnniversaryYear, u"~Anniversary");
    }
    else if (row->m_wBirthdayYear != 0)
    {
        AddAge(*row, row->m_wBirthdayYear, u"~Birthday");
    }
    m_list.AddTail(row);
    if (m_filter <= CalendarFilter::Range)
    {
        AddFurtherDays(row, LastDayOf(*row) - row->m_nDay);
    }
}

void CCalendarThread::AddAge(DATACALENDAR &row, WORD firstYear, const WCHAR *mark) const
{
    if (WCHAR *categories = zb::copyCategories(row.m_pszCategories, markRoom); categories != nullptr)
    {
        if (*categories != 0)
        {
            wcscat(categories, u", ");
        }
        wcscat(categories, mark);
        std::free(row.m_pszCategories);
        row.m_pszCategories = categories;
    }
    const int years = (m_bExpand ? m_stOccurrence.wYear : GetToday().wYear) - firstYear;
    if (years <= 0)
    {
        return;
    }
    std::array<WCHAR, ageTextSize> text{};
    _snwprintf(text.data(), text.size(), u"(%i %s) %s", years, m_szYears.data(), row.m_bstrSubject);
    SysFreeString(row.m_bstrSubject);
    row.m_bstrSubject = SysAllocString(text.data());
    row.m_bRecurring = 0;
}

bool CCalendarThread::IsCutByRange(const DATACALENDAR &row) const
{
    return m_filter == CalendarFilter::Range && DayAndSecond(row.m_dtEnd).day > m_nRangeEnd;
}

int CCalendarThread::LastDayOf(const DATACALENDAR &row) const
{
    const DayAndSecond end(row.m_dtEnd);
    int last = end.day;
    if (IsCutByRange(row))
    {
        last = m_nRangeEnd;
    }
    else if (end.second == 0 && row.m_bAllDay == 0)
    {
        --last;
    }
    return std::min(last, lastDay);
}

bool CCalendarThread::EndsEarly(const DATACALENDAR &row) const
{
    const LONGLONG limit = m_settings.AppointmentSingleIfEndsEarly;
    const DayAndSecond end(row.m_dtEnd);
    const int hour = end.second / 3600;
    const int minute = end.second / 60 % 60;
    return row.m_bAllDay == 0 && limit != 0 && (hour < limit || (hour == limit && minute == 0));
}

void CCalendarThread::AddFurtherDays(DATACALENDAR *row, int count)
{
    // Where the range ends first, the event's own last day is not among its rows.
    const bool endsEarly = !IsCutByRange(*row) && EndsEarly(*row);
    DATACALENDAR *made = row;
    for (int n = 1; n <= count; ++n)
    {
        if (n == count && endsEarly)
        {
            made->m_bEndsEarly = true;
            return;
        }
        made = row->Copy();
        made->m_nDay = row->m_nDay + n;
        // The cursor is on the row made last, which is the tail.
        m_list.AddTail(made);
    }
}
