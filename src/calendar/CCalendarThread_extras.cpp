// What a load adds around the appointments: headers of days, the link and journal databases, settings and today.
#include "calendar/CCalendarThread.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

namespace
{
constexpr const WCHAR *linksDatabase = u"ZembrikLinks";
constexpr const WCHAR *journalDatabase = u"ZembrikJournal";
constexpr CEPROPID linksItem = MakePropId(0x0001, CEVT_I4);
constexpr CEPROPID journalItem = MakePropId(0x002e, CEVT_I4);

/// Today of the whole process, in ticks: one word, so that a loader may write it while another compares.
std::atomic<LONGLONG> today{0};

std::unique_ptr<CeDb> openOrNull(const WCHAR *name, CEPROPID sortProperty)
{
    auto database = std::make_unique<CeDb>();
    return database->Open(name, sortProperty, 0, nullptr) ? std::move(database) : nullptr;
}

/// The name of a category as it is searched for. A name that is the other one's default counts as this one's.
std::u16string searchedName(const std::u16string &name, const WCHAR *otherDefault, const WCHAR *ownDefault)
{
    std::u16string searched = name == otherDefault ? ownDefault : name;
    _wcslwr(searched.data());
    return searched;
}

DATACALENDAR *newDateHeader(int day)
{
    auto *header = new DATACALENDAR;
    header->m_nDay = day;
    header->m_bComplete = true;
    return header;
}

bool isSameRow(const DATACALENDAR &a, const DATACALENDAR &b)
{
    return a.m_oid == b.m_oid && a.m_nDay == b.m_nDay && a.m_dtStart == b.m_dtStart && a.m_nDuration == b.m_nDuration;
}
} // namespace

SYSTEMTIME CCalendarThread::GetToday()
{
    SYSTEMTIME fields{};
    const FILETIME moment = zb::fileTimeOf(today.load(std::memory_order_relaxed));
    FileTimeToSystemTime(&moment, &fields);
    return fields;
}

void CCalendarThread::SettingChange()
{
    m_settings = m_ownSettings ? *m_ownSettings : CalendarSettings::read(m_strSettingsKey.c_str());
    m_categoryRestrict.bHideCategories = static_cast<LONG>(m_settings.bHideCategories);
    m_categoryRestrict.m_bIncludeNoCat = m_settings.m_bIncludeNoCat;
    m_categoryRestrict.CategoryANDOR = m_settings.CategoryANDOR;
    m_strAnniversaryName = searchedName(m_settings.AnnCatName, u"Birthdays", u"Anniversaries");
    m_strBirthdayName = searchedName(m_settings.BDayCatName, u"Anniversaries", u"Birthdays");
    s_dwTaskSort.store(m_settings.TaskSort, std::memory_order_relaxed);
    s_bTaskSortDescending.store(m_settings.TaskSortDescending != 0, std::memory_order_relaxed);
    GetTimeZoneInformation(&m_tzDevice);
    m_toLocal = zb::LocalTimeConverter(m_tzDevice);
    TakeToday();
    BuildShortDateFormat();
}

void CCalendarThread::TakeToday()
{
    SYSTEMTIME now{};
    FILETIME moment{};
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &moment);
    today.store(zb::ticksOf(moment), std::memory_order_relaxed);
    SystemTimeToVariantTime(&now, &m_dtToday);
}

void CCalendarThread::BuildShortDateFormat()
{
    const std::u16string dateOrder = zb::localeText(LOCALE_IDATE);
    const std::u16string separator = zb::localeText(LOCALE_SDATE);
    m_strShortDate.clear();
    if (dateOrder == u"0")
    {
        m_strShortDate = u"M" + separator + u"dd";
    }
    else if (dateOrder == u"1" || dateOrder == u"2")
    {
        m_strShortDate = u"dd" + separator + u"M";
    }
}

void CCalendarThread::InitiateLinksDB()
{
    if (m_bLinksOpen)
    {
        return;
    }
    m_pDbLinks = openOrNull(linksDatabase, linksItem);
    m_pDbJournal = openOrNull(journalDatabase, journalItem);
    m_keyLinks.propid = linksItem;
    m_keyJournal.propid = journalItem;
    m_bLinksOpen = true;
}

void CCalendarThread::CloseLinksDB()
{
    m_pDbLinks.reset();
    m_pDbJournal.reset();
    m_bLinksOpen = false;
}

/// Sorts, and puts the headers of days in; the number of headers.
int CCalendarThread::AddCalendarDate()
{
    if (m_bNoHeaderDates)
    {
        return 0;
    }
    if (m_filter == CalendarFilter::Range)
    {
        const int headers = AddCalendarDatesForRange();
        m_list.Sort(true);
        return headers;
    }
    m_list.Sort(true);
    return AddCalendarDatesForData();
}

/// One header for each day of the range, also for those without rows.
int CCalendarThread::AddCalendarDatesForRange()
{
    int headers = 0;
    for (int day = m_nRangeStart; day <= m_nRangeEnd; ++day, ++headers)
    {
        m_list.AddTail(newDateHeader(day));
    }
    m_list.m_nPublished = m_list.GetCount();
    return headers;
}

/// One header in front of each day that has rows, in a sorted list; rows that are there twice go.
int CCalendarThread::AddCalendarDatesForData()
{
    int headers = 0;
    for (int i = m_list.GetLastIndex(); i >= m_list.GetBase(); --i)
    {
        const DATACALENDAR *before = m_list.GetAt(i - 1);
        const DATACALENDAR *row = m_list.GetAt(i);
        const bool mayBegin = row->m_oid != 0 && !row->m_bTrailer;
        if (before != nullptr && row->m_pTask == nullptr && isSameRow(*before, *row))
        {
            m_list.RemoveAt(i);
        }
        else if (mayBegin && (before == nullptr || before->m_nDay != row->m_nDay))
        {
            m_list.InsertAt(i, newDateHeader(row->m_nDay));
            ++headers;
        }
    }
    m_list.m_nPublished = m_list.GetCount();
    return headers;
}
