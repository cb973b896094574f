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
    m_bOccurrenceExists = SystemTimeToVariantTime(&date, &m_dtOccurrence) != 0;
}

/// The moment of a time on the day of the occurrence, by whole numbers alone. False where that may not say the same as
/// the plain way: for times that are none, and at the ends of the calendar.
bool CCalendarThread::TimeOnOccurrenceDay(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date, bool convert,
                                          double &moment)
{
    if (!m_bOccurrenceExists || m_dtOccurrence < 1.0 || m_dtOccurrence >= lastDay || date.wHour > 23 ||
        date.wMinute > 59 || date.wDay != m_stOccurrence.wDay || date.wMonth != m_stOccurrence.wMonth ||
        date.wYear != m_stOccurrence.wYear)
    {
        return false;
    }
    LONGLONG ticks = (static_cast<int>(m_dtOccurrence) + zb::daysFrom1601ToVariantZero) * zb::ticksPerDay +
                     (date.wHour * 60 + date.wMinute) * zb::ticksPerMinute;
    if (convert)
    {
        const LONG seasonal = m_daylightDays.holds(zone, date) ? zone.DaylightBias : zone.StandardBias;
        bool isDst = false;
        if (!m_toLocal.toLocal(ticks + (LONGLONG{zone.Bias} + seasonal) * zb::ticksPerMinute, ticks, isDst))
        {
            return false;
        }
    }
    const LONGLONG day = ticks / zb::ticksPerDay - zb::daysFrom1601ToVariantZero;
    if (ticks < 0 || day < 0 || day > lastDay)
    {
        return false;
    }
    moment = static_cast<double>(day) + static_cast<double>(ticks % zb::ticksPerDay / zb::ticksPerSecond) / 86400.0;
    return true;
}

/// The moment of a time in the record's zone; a date that does not exist gives the midnight of the occurrence.
double CCalendarThread::TimeOfOccurrence(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date, bool allDay)
{
    const bool convert = !allDay && m_pRow->HasOwnZone();
    double moment = static_cast<int>(m_dtOccurrence);
    if (TimeOnOccurrenceDay(zone, date, convert, moment))
    {
        return moment;
    }
    SYSTEMTIME local = date;
    if (convert)
    {
        const int isDst = IsInDST(date.wYear, date.wMonth, date.wDay, &zone);
        SYSTEMTIME utc = date;
        CeTzSpecificLocalTimeToSystemTime(&zone, &date, isDst, &utc);
        CeSystemTimeToTzSpecificLocalTime(&m_tzDevice, &utc, &local, nullptr);
    }
    SystemTimeToVariantTime(&local, &moment);
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
