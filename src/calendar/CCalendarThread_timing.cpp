// When an occurrence of a series is: its times in the record's zone, seen from the device's.
#include "calendar/CCalendarThread.h"

#include "core/datetools.h"
#include "platform/clock.h"

namespace
{
constexpr double secondInDays = 1.1574074074074073e-5;
} // namespace

void CCalendarThread::SetOccurrence(const SYSTEMTIME &date)
{
    m_stOccurrence = date;
    SystemTimeToVariantTime(&date, &m_dtOccurrence);
}

/// The moment of a time in the record's zone; a date that does not exist gives the midnight of the occurrence.
double CCalendarThread::TimeOfOccurrence(const TIME_ZONE_INFORMATION &zone, SYSTEMTIME date, bool allDay) const
{
    if (!allDay && m_pRow->HasOwnZone())
    {
        const int isDst = IsInDST(date.wYear, date.wMonth, date.wDay, &zone);
        SYSTEMTIME utc = date;
        CeTzSpecificLocalTimeToSystemTime(&zone, &date, isDst, &utc);
        CeSystemTimeToTzSpecificLocalTime(&m_tzDevice, &utc, &date, nullptr);
    }
    double moment = static_cast<int>(m_dtOccurrence);
    SystemTimeToVariantTime(&date, &moment);
    return moment;
}

/// Sets start, end, duration and day of a row for the occurrence date, from times of day in the record's zone. An end
/// hour of 24 and more lies on a later day: 26 is 2 o'clock on the next one.
void CCalendarThread::fGetRecurTimingStr(const TIME_ZONE_INFORMATION *zone, int startHour, int startMinute, int endHour,
                                         int endMinute, DATACALENDAR *row)
{
    const bool allDay = row->m_bAllDay != 0;
    SYSTEMTIME date = m_stOccurrence;
    date.wSecond = date.wMilliseconds = 0;
    date.wHour = static_cast<WORD>(startHour);
    date.wMinute = static_cast<WORD>(startMinute);
    row->m_dtStart = TimeOfOccurrence(*zone, date, allDay);

    date = m_stOccurrence;
    date.wSecond = date.wMilliseconds = 0;
    // The end of an all-day event is midnight or the minute before it; both mean the day that ends there.
    int hour = allDay && endMinute != 0 ? endHour + 24 : endHour;
    hour -= allDay && hour >= 24 ? 24 : 0;
    if (hour >= 24)
    {
        incrementday(&date, hour / 24);
        hour %= 24;
    }
    date.wHour = static_cast<WORD>(hour);
    date.wMinute = static_cast<WORD>(endMinute);
    row->m_dtEnd = TimeOfOccurrence(*zone, date, allDay);

    if (allDay)
    {
        row->m_dtStart = static_cast<int>(row->m_dtStart);
        row->m_dtEnd = static_cast<int>(row->m_dtEnd);
        row->m_nDuration = static_cast<int>((row->m_dtEnd - row->m_dtStart + 1) * 1440);
    }
    else
    {
        row->m_nDuration = static_cast<int>((row->m_dtEnd - row->m_dtStart) / secondInDays / 60 + 0.5);
    }
    row->m_nDay = static_cast<int>(row->m_dtStart);
}
