// Birthdays and anniversaries of the contacts in a calendar list.
#include "calendar/CCalendarThread.h"

#include "core/bstrtools.h"
#include "core/datetools.h"
#include "platform/clock.h"
#include "platform/pim.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdlib>

namespace
{
/// Characters of a contact's row, terminator included.
constexpr std::size_t subjectSize = 2'047;
constexpr int wholeDayMinutes = 1440;
/// Bytes of the block of a row's categories, however short the text: hosts may count on the room behind it.
constexpr std::size_t markBytes = 100;
constexpr WORD allDay = 0xFFFF;

enum ContactProperty : int
{
    CONTACT_FIRST_NAME,
    CONTACT_LAST_NAME,
    CONTACT_BIRTHDAY,
    CONTACT_ANNIVERSARY,
    CONTACT_PROPERTY_COUNT
};

constexpr std::array<CEPROPID, CONTACT_PROPERTY_COUNT> contactProperties = {
    MakePropId(0x3a06, CEVT_LPWSTR), MakePropId(0x3a11, CEVT_LPWSTR), MakePropId(0x4001, CEVT_FILETIME),
    MakePropId(0x4003, CEVT_FILETIME)};

const WCHAR *textAt(const CeDbRecord &record, int index)
{
    const WCHAR *text = record.IsPresent(index) ? record.GetProps()[index].val.lpwstr : nullptr;
    return text != nullptr ? text : u"";
}

WCHAR *newMark(const WCHAR *mark)
{
    auto *text = static_cast<WCHAR *>(std::calloc(1, markBytes));
    return text != nullptr ? wcscpy(text, mark) : nullptr;
}

/// The day in a year; who was born on 29 February has 28 February in the others.
double dayInYear(const SYSTEMTIME &date, int year)
{
    SYSTEMTIME day{};
    day.wYear = static_cast<WORD>(year);
    day.wMonth = date.wMonth;
    day.wDay = static_cast<WORD>(std::min<int>(date.wDay, dayspermonth(date.wMonth, year)));
    double moment = noDate;
    SystemTimeToVariantTime(&day, &moment);
    return moment;
}
} // namespace

DATACALENDAR *CCalendarThread::NewContactRow(const CeDbRecord &record, const SYSTEMTIME &date, int year,
                                             const WCHAR *mark) const
{
    auto row = std::make_unique<DATACALENDAR>();
    const double day = dayInYear(date, year);
    row->m_oid = record.GetOid();
    row->m_bContact = true;
    row->m_bAllDay = allDay;
    row->m_nDuration = wholeDayMinutes;
    row->m_nDay = static_cast<int>(day);
    row->m_dtStart = day;
    row->m_dtEnd = day;
    std::array<WCHAR, subjectSize> subject{};
    _snwprintf(subject.data(), subject.size(), u"(%i %s) %s %s", std::max(0, year - date.wYear), m_szYears.data(),
               textAt(record, CONTACT_FIRST_NAME), textAt(record, CONTACT_LAST_NAME));
    row->m_bstrSubject = AllocBSTR(subject.data());
    row->m_bstrLocation = AllocBSTR(nullptr);
    row->m_pszCategories = newMark(mark);
    row->m_bComplete = true;
    return row.release();
}

int CCalendarThread::AddContactDay(const CeDbRecord &record, int index, const WCHAR *mark)
{
    FILETIME time{};
    SYSTEMTIME date{};
    if (!record.GetIndexVal(index, time) || FileTimeToSystemTime(&time, &date) == FALSE)
    {
        return 0;
    }
    const bool byRange = m_filter == CalendarFilter::Range;
    const int firstYear = byRange ? YearOf(m_nRangeStart) : GetToday().wYear;
    const int lastYear = std::max(firstYear, byRange ? YearOf(m_nRangeEnd) : 0);
    for (int year = firstYear; year <= lastYear; ++year)
    {
        m_list.AddTail(NewContactRow(record, date, year, mark));
    }
    return lastYear - firstYear + 1;
}

int CCalendarThread::YearOf(int day)
{
    SYSTEMTIME date{};
    VariantTimeToSystemTime(day, &date);
    return date.wYear;
}

int CCalendarThread::AddContactInfo(CeManualEvent *stop)
{
    const bool isOtherList = m_filter == CalendarFilter::Holidays || m_filter == CalendarFilter::Recurring ||
                             m_filter == CalendarFilter::WithAttendees;
    CeDb contacts;
    if (m_settings.ReadBirthdays == 0 || isOtherList || !contacts.Open(zb::contactsDatabase, 0, 0, nullptr))
    {
        return 0;
    }
    int rows = 0;
    CeDbRecord record;
    for (CEOID oid = contacts.SeekFirst(); oid != 0 && !IsStopped(stop); oid = contacts.SeekNext())
    {
        if (!contacts.ReadRec(record, CONTACT_PROPERTY_COUNT, contactProperties.data()))
        {
            continue;
        }
        if (m_filter != CalendarFilter::Anniversaries)
        {
            rows += AddContactDay(record, CONTACT_BIRTHDAY, u"~Birthday");
        }
        if (m_filter != CalendarFilter::Birthdays)
        {
            rows += AddContactDay(record, CONTACT_ANNIVERSARY, u"~Anniversary");
        }
    }
    m_list.m_nPublished = m_list.GetCount();
    return rows;
}
