// One record, first stage: its scalars and its place in time, which most records of a large database don't get past.
#include "calendar/CCalendarThread.h"

#include "platform/clock.h"
#include "platform/pim.h"

#include <algorithm>
#include <cstring>

namespace
{
/// Blobs up to this size count as empty notes and as no attendees.
constexpr DWORD emptyBlobSize = 4;
/// 10000-01-01: variant dates end before it, and the longest duration added to it still fits 64 bits.
constexpr LONGLONG behindLastYear = (2'958'466 + zb::daysFrom1601ToVariantZero) * zb::ticksPerDay;

/// Floor division: days before the first one are negative.
int dayOfTicks(LONGLONG ticks)
{
    LONGLONG day = ticks / zb::ticksPerDay;
    if (ticks % zb::ticksPerDay < 0)
    {
        --day;
    }
    return static_cast<int>(day - zb::daysFrom1601ToVariantZero);
}

/// Single all-day events are stored as UTC from the zone they were made in: one that stands in the afternoon was made
/// east of Greenwich and means the next day.
LONGLONG correctedAllDay(LONGLONG ticks)
{
    const LONGLONG hour = ticks % zb::ticksPerDay / zb::ticksPerHour;
    return hour > 12 ? ticks - hour * zb::ticksPerHour + zb::ticksPerDay : ticks;
}

SYSTEMTIME fieldsAt(const BYTE *bytes)
{
    WORD fields[8];
    for (int i = 0; i < 8; ++i)
    {
        fields[i] = static_cast<WORD>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    }
    return SYSTEMTIME{fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], fields[6], fields[7]};
}

LONG longAt(const BYTE *bytes)
{
    return static_cast<LONG>(bytes[0] | (bytes[1] << 8U) | (bytes[2] << 16U) | (static_cast<DWORD>(bytes[3]) << 24U));
}
} // namespace

CEBLOB CCalendarThread::BlobAt(int index) const
{
    return m_record.IsPresent(index) ? m_record.GetProps()[index].val.blob : CEBLOB{};
}

bool CCalendarThread::FlagAt(int index) const
{
    SHORT value = 0;
    m_record.GetIndexVal(index, value);
    return value != 0;
}

/// A look at the few properties that turn most records of a large database away: single appointments elsewhere in time
/// are not taken apart any further.
bool CCalendarThread::MayAppear()
{
    enum Glance : int
    {
        START,
        DURATION,
        DURATION_TYPE,
        RECURRENCE,
        GLANCE_COUNT
    };
    static constexpr std::array<CEPROPID, GLANCE_COUNT> ids{zb::appointmentStart, zb::appointmentDuration,
                                                            zb::appointmentDurationType, zb::appointmentRecurrence};
    if (!m_dbAppointments.ReadRec(m_record, m_pReadBuffer, READ_BUFFER_SIZE, GLANCE_COUNT, ids.data()))
    {
        return false;
    }
    LONG durationType = 0;
    FILETIME start{};
    m_record.GetIndexVal(DURATION, m_pRow->m_nDuration);
    m_record.GetIndexVal(DURATION_TYPE, durationType);
    m_record.GetIndexVal(START, start);
    m_pRow->m_bAllDay = durationType == 1 ? 1 : 0;
    m_pRow->m_bRecurring = BlobAt(RECURRENCE).dwCount != 0 ? 1 : 0;
    return ReadStart(start) && LiesInRange();
}

/// False for a record that the list does not show, as far as scalars tell. All tests are free of side effects, so the
/// one that turns most records away, their place in time, comes first.
bool CCalendarThread::fReadRecord()
{
    m_bRestRead = false;
    m_bBufferTaken = true;
    // Lists that do not expand show nearly every record.
    if ((m_bExpand && !MayAppear()) || !m_dbAppointments.ReadRec(m_record, m_pReadBuffer, READ_BUFFER_SIZE,
                                                                 APPT_PROPERTY_COUNT, APPOINTMENT_PROPERTIES.data()))
    {
        return false;
    }
    ReadScalars();
    FILETIME start{};
    m_record.GetIndexVal(APPT_START, start);
    if (!ReadStart(start) || !LiesInRange() || !PassesFilter() || (m_bTestStatus && !PassesStatusAndCategory()))
    {
        return false;
    }
    FillStart();
    ReadZone();
    m_pRow->m_nDay = m_nStartDay;
    m_pRow->m_oid = m_record.GetOid();
    return true;
}

void CCalendarThread::ReadScalars()
{
    LONG durationType = 0;
    SHORT busy = 0;
    m_record.GetIndexVal(APPT_DURATION, m_pRow->m_nDuration);
    m_record.GetIndexVal(APPT_DURATION_TYPE, durationType);
    m_record.GetIndexVal(APPT_BUSY_STATUS, busy);
    m_pRow->m_nBusyStatus = busy;
    m_pRow->m_bAllDay = durationType == 1 ? 1 : 0;
    m_pRow->m_bHasAttendees = BlobAt(APPT_ATTENDEES).dwCount > emptyBlobSize ? 1 : 0;
    m_pRow->m_bRecurring = BlobAt(APPT_RECURRENCE).dwCount != 0 ? 1 : 0;
}

/// Start and whole days in the device's zone; false for a start beyond the calendar. Whole numbers throughout: an end
/// at midnight lies exactly there, whatever minutes it was reached by.
bool CCalendarThread::ReadStart(const FILETIME &start)
{
    m_startTicks = zb::ticksOf(start);
    if (m_startTicks < 0 || m_startTicks >= behindLastYear)
    {
        return false;
    }
    if (m_pRow->m_bAllDay != 0 && m_pRow->m_bRecurring == 0)
    {
        m_startTicks = correctedAllDay(m_startTicks);
    }
    else
    {
        bool isDst = false;
        m_toLocal.toLocal(m_startTicks, m_startTicks, isDst);
    }
    m_nStartDay = dayOfTicks(m_startTicks);
    // Seconds count in variant dates, parts of them don't.
    const LONGLONG startSecond = m_startTicks - m_startTicks % zb::ticksPerSecond;
    m_nEndDay = dayOfTicks(startSecond + m_pRow->m_nDuration * zb::ticksPerMinute);
    return true;
}

bool CCalendarThread::OverlapsRange() const
{
    return m_nEndDay >= m_nRangeStart && m_nStartDay <= m_nRangeEnd && m_nEndDay <= lastDay && m_nStartDay <= lastDay &&
           m_nEndDay >= 0 && m_nStartDay >= 0;
}

bool CCalendarThread::LiesInRange() const
{
    // The day before is allowed for, since a series may have its start in a zone further east.
    const int dayBefore = m_nStartDay - 1;
    if (m_filter == CalendarFilter::Range && (dayBefore > m_nRangeEnd || dayBefore < 0 || dayBefore > lastDay))
    {
        return false;
    }
    return !m_bExpand || m_pRow->m_bRecurring != 0 || OverlapsRange();
}

bool CCalendarThread::PassesFilter() const
{
    switch (m_filter)
    {
    case CalendarFilter::Birthdays:
    case CalendarFilter::Anniversaries:
        return m_pRow->m_bAllDay != 0 && m_pRow->m_bRecurring != 0;
    case CalendarFilter::Holidays:
        return m_pRow->m_bAllDay != 0;
    case CalendarFilter::Recurring:
        return m_pRow->m_bRecurring != 0;
    case CalendarFilter::WithAttendees:
        return m_pRow->m_bHasAttendees != 0;
    default:
        return true;
    }
}

bool CCalendarThread::PassesStatusAndCategory() const
{
    const int status = m_pRow->m_nBusyStatus;
    switch (m_settings.CAV_StatusFilter)
    {
    case statusFilterBusy:
        if (status != 2)
        {
            return false;
        }
        break;
    case statusFilterFree:
        if (status != 0)
        {
            return false;
        }
        break;
    case statusFilterOutOfOffice:
        if (status != 3)
        {
            return false;
        }
        break;
    case statusFilterTentative:
        if (status != 1)
        {
            return false;
        }
        break;
    default:
        break;
    }
    const CEBLOB categories = BlobAt(APPT_CATEGORIES);
    return CategoryFilterHighLevel(&categories, &m_categoryRestrict);
}

void CCalendarThread::FillStart()
{
    const FILETIME start = zb::fileTimeOf(m_startTicks);
    FileTimeToSystemTime(&start, &m_pRow->m_stStart);
    SystemTimeToVariantTime(&m_pRow->m_stStart, &m_pRow->m_dtStart);
    m_pRow->m_dtEnd = m_pRow->m_dtStart + m_pRow->m_nDuration * minuteInDays;
}

/// The zone of a series, from its blob: biases (plain, standard, daylight) at 0, 4 and 8, the change to standard time
/// at 14, that to daylight time at 32. What a short blob lacks is 0.
void CCalendarThread::ReadZone()
{
    constexpr DWORD zoneSize = 48;
    const CEBLOB blob = BlobAt(APPT_ZONE);
    if (m_pRow->m_bRecurring == 0 || blob.dwCount == 0)
    {
        return;
    }
    BYTE bytes[zoneSize] = {};
    std::memcpy(bytes, blob.lpb, std::min(blob.dwCount, zoneSize));
    TIME_ZONE_INFORMATION &zone = m_pRow->m_tzRecord;
    zone.Bias = longAt(bytes);
    zone.StandardBias = longAt(bytes + 4);
    zone.DaylightBias = longAt(bytes + 8);
    zone.StandardDate = fieldsAt(bytes + 14);
    zone.DaylightDate = fieldsAt(bytes + 32);
    m_pRow->SetOwnZone(true);
}

/// True for a series. One whose pattern can't be read, or lies out of range, is a single appointment where series are
/// expanded; lists that don't expand take it as it is.
bool CCalendarThread::fCrossCheck()
{
    m_pRow->m_wFrequency = 0;
    if (m_pRow->m_bRecurring == 0)
    {
        return false;
    }
    const CEBLOB blob = BlobAt(APPT_RECURRENCE);
    const int result =
        m_reader.Read(blob.lpb, blob.dwCount, m_pRow->m_oid, *m_pRow, m_lstDeletedDates, m_pRow->m_bAllDay != 0);
    return result != CRecurrenceReader::FAILURE || !m_bExpand;
}
