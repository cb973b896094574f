// The calendar loader's frame: construction, range, and the run from the first record to the last.
#include "calendar/CCalendarThread.h"
#include "calendar/CCalendarThread_lock.h"

#include "core/CRegistry.h"
#include "platform/clock.h"
#include "platform/pim.h"
#include "platform/resources.h"
#include "platform/user.h"

namespace
{
/// "years", the word behind the number in an age.
constexpr UINT textYears = 44038;
/// The stop event is looked at once in so many records.
constexpr DWORD recordsPerPoll = 20;

template <int (*compare)(DATACALENDAR *const &, DATACALENDAR *const &, DWORD_PTR)>
int forList(DATACALENDAR *const *a, DATACALENDAR *const *b, DWORD_PTR user)
{
    return compare(*a, *b, user);
}

double wholeDayOf(const SYSTEMTIME &date)
{
    double moment = noDate;
    SystemTimeToVariantTime(&date, &moment);
    return static_cast<int>(moment);
}
} // namespace

std::atomic<DWORD> CCalendarThread::s_dwTaskSort{taskSortComplete};
std::atomic<bool> CCalendarThread::s_bTaskSortDescending{false};

const std::array<CEPROPID, CCalendarThread::APPT_PROPERTY_COUNT> CCalendarThread::APPOINTMENT_PROPERTIES{
    zb::appointmentStart,
    zb::appointmentDuration,
    zb::appointmentDurationType,
    zb::appointmentReminderSet,
    zb::appointmentRecurringFlag,
    zb::itemSensitivity,
    zb::appointmentBusyStatus,
    zb::itemSubject,
    zb::appointmentLocation,
    zb::itemExtraText,
    zb::itemNotes,
    zb::itemCategories,
    zb::appointmentRecurrence,
    zb::appointmentAttendees,
    zb::appointmentZone};

CCalendarThread::CCalendarThread(const WCHAR *settingsKey)
    : CeWorkerThread(false, nullptr, STOP_TIMEOUT), m_list(1, CEOWN_DELETE, forList<CompareFunc>),
      m_lstSelected(1, CEOWN_DELETE)
{
    m_categoryRestrict.m_pSelected = &m_lstSelected;
    SetSettingsKey(settingsKey);
    LoadStringW(nullptr, textYears, m_szYears.data(), static_cast<int>(m_szYears.size()));
    SettingChange();
}

CCalendarThread::~CCalendarThread()
{
    Stop(TRUE);
    LocalFree(m_categoryRestrict.m_blobFilter.lpb);
    if (!m_bBufferTaken)
    {
        LocalFree(m_pReadBuffer);
    }
}

void CCalendarThread::SetSettingsKey(const WCHAR *path)
{
    m_strSettingsKey = path != nullptr ? path : DEFAULT_SETTINGS_KEY;
}

void CCalendarThread::SetRestrict(const SYSTEMTIME *start, const SYSTEMTIME *end)
{
    Range range{*start, wholeDayOf(*start), wholeDayOf(*end)};
    if (range.dtEnd == noDate)
    {
        // A date that does not exist is no end: without range rather than one that goes on for thousands of years.
        range = Range{};
    }
    const std::lock_guard guard(m_rangeGuard);
    m_range = range;
}

CCalendarThread::Range CCalendarThread::CurrentRange() const
{
    const std::lock_guard guard(m_rangeGuard);
    return m_range;
}

void CCalendarThread::GetCategoryRestrict(CCategoryFilterInfo *&restriction)
{
    restriction = &m_categoryRestrict;
}

void CCalendarThread::SetCategoryRestrict(bool save)
{
    Categories2BLOB(&m_categoryRestrict.m_blobFilter, *m_categoryRestrict.m_pSelected);
    if (save)
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, DEFAULT_SETTINGS_KEY);
        registry.SetValue(u"m_bIncludeNoCat", m_categoryRestrict.m_bIncludeNoCat);
        registry.SetValue(u"bHideCategories", static_cast<DWORD>(m_categoryRestrict.bHideCategories));
        registry.SetValue(u"CategoryANDOR", m_categoryRestrict.CategoryANDOR);
    }
}

void CCalendarThread::SetNoHeaderDates(bool noHeaders)
{
    m_bNoHeaderDates = noHeaders;
}

bool CCalendarThread::IsInCache(double date) const
{
    const Range range = CurrentRange();
    const double day = static_cast<int>(date);
    return range.isSet() && day >= range.dtStart && day <= range.dtEnd;
}

bool CCalendarThread::IsInCache(const SYSTEMTIME *date) const
{
    return IsInCache(wholeDayOf(*date));
}

bool CCalendarThread::IsInCache(const SYSTEMTIME *date, int days) const
{
    const Range range = CurrentRange();
    double moment = noDate;
    SystemTimeToVariantTime(date, &moment);
    return range.isSet() && moment >= range.dtStart && moment + days <= range.dtEnd;
}

CePtrList<DATACALENDAR *>::CompareCallback CCalendarThread::CompareForFilter() const
{
    const bool birthdays = m_settings.CAV_FilterAppointments == CalendarFilter::Birthdays ||
                           m_settings.CAV_FilterAppointments == CalendarFilter::Anniversaries;
    return birthdays ? forList<CompareFuncBirthday> : forList<CompareFunc>;
}

void CCalendarThread::SortDataList(bool ascending)
{
    if (!m_csList.TryEnter())
    {
        return;
    }
    ListLockHold hold(m_csList);
    m_list.SetCompare(CompareForFilter());
    m_list.Sort(ascending);
}

void CCalendarThread::PostToHost(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_hWndHost != nullptr && IsRunning())
    {
        PostMessageW(m_hWndHost, message, wParam, lParam);
    }
}

DWORD CCalendarThread::ThreadProc()
{
    if (GetStopEvent().IsSet() || !CurrentRange().isSet())
    {
        return 0;
    }
    PostToHost(loaderBegun, 0, 0);
    CalendarThreadProc(&GetStopEvent(), 0);
    PostToHost(loaderDone, 0, 0);
    return 0;
}

DWORD CCalendarThread::CalendarThreadProc(CeManualEvent *stop, CEOID oid)
{
    if (!m_csList.TryEnter())
    {
        return 0;
    }
    ListLockHold hold(m_csList);
    InitiateLinksDB();
    if (oid == 0)
    {
        BeginFullLoad();
    }
    ChooseMode();
    const bool stopped = ReadAppointments(stop, oid);
    CloseLinksDB();
    m_list.m_nPublished = m_list.GetCount();
    if (stopped || oid != 0)
    {
        return 0;
    }
    AddTasks(stop);
    AddContactInfo(stop);
    AddCalendarDate();
    const int published = m_list.m_nPublished;
    hold.leave();
    PostToHost(loaderListComplete, 1, published);
    return 0;
}

void CCalendarThread::BeginFullLoad()
{
    m_list.m_nPublished = 0;
    m_list.RemoveAll();
    SettingChange();
}

/// What the filter means for the run: whether series are expanded, which order the rows get, and whether each record
/// has to be tested for status and categories at all.
void CCalendarThread::ChooseMode()
{
    const Range range = CurrentRange();
    m_stRangeStart = range.start;
    m_nRangeStart = static_cast<int>(range.dtStart);
    m_nRangeEnd = static_cast<int>(range.dtEnd);
    m_reader.SetRange(range.dtStart, range.dtEnd);
    m_dtWorking = 0.0;
    m_filter = m_settings.CAV_FilterAppointments;
    m_bExpand = m_filter >= CalendarFilter::WithAttendees;
    m_bTestStatus =
        m_bExpand && (m_categoryRestrict.m_blobFilter.dwCount != 0 || m_settings.CAV_StatusFilter != statusFilterAll ||
                      m_categoryRestrict.bHideCategories != categoriesShow);
    m_list.SetCompare(CompareForFilter());
}

bool CCalendarThread::ReadAppointments(CeManualEvent *stop, CEOID oid)
{
    if (m_pReadBuffer == nullptr)
    {
        m_pReadBuffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, READ_BUFFER_SIZE));
    }
    m_pRow = std::make_unique<DATACALENDARDB>();
    bool stopped = false;
    if (m_pReadBuffer != nullptr && m_dbAppointments.Open(zb::appointmentsDatabase, zb::appointmentStart, 0, nullptr))
    {
        stopped = WalkRecords(stop, oid);
    }
    m_dbAppointments.Close();
    m_lstDeletedDates.clear();
    m_pRow.reset();
    return stopped;
}

/// True when it was stopped.
bool CCalendarThread::WalkRecords(CeManualEvent *stop, CEOID oid)
{
    // The count of a database is 16 bits and held at its largest value, which then means that many or more. Such a
    // walk goes on until no record follows, so that large databases are read to their end.
    const DWORD count = oid != 0 ? 1 : m_dbAppointments.GetNumRecords();
    const bool openEnd = oid == 0 && count == 0xFFFF;
    bool more = (oid != 0 ? m_dbAppointments.SeekTo(oid) : m_dbAppointments.SeekFirst()) != 0;
    for (DWORD i = 1; more; ++i)
    {
        m_lstDeletedDates.clear();
        fReadOneRecord();
        m_pRow->NullData();
        if (i % recordsPerPoll == 0 && stop != nullptr && stop->IsSet())
        {
            return true;
        }
        more = (openEnd || i < count) && m_dbAppointments.SeekNext() != 0;
    }
    return false;
}

void CCalendarThread::fReadOneRecord()
{
    if (!fReadRecord())
    {
        return;
    }
    if (fCrossCheck())
    {
        if (m_bExpand)
        {
            fFillEventList();
        }
        else
        {
            FillAsOneRow();
        }
        return;
    }
    if (m_pRow->m_wFrequency == 0 && (!m_bExpand || OverlapsRange()))
    {
        fFillNonRecurrEvnt();
    }
}

/// A series in a list that doesn't expand: one row on the day of its start.
void CCalendarThread::FillAsOneRow()
{
    if (!fReadRestOfRecord())
    {
        return;
    }
    SetOccurrence(m_pRow->m_stStart);
    // A pattern that could not be read has no times; the record's own start and duration then stand.
    if (m_pRow->m_wFrequency != 0)
    {
        fGetRecurTimingStr(&m_pRow->m_tzRecord, m_pRow->m_wStartHour, m_pRow->m_wStartMinute, m_pRow->m_wEndHour,
                           m_pRow->m_wEndMinute, m_pRow.get());
    }
    fFillNonRecurrEvnt();
}

/// On the thread that killed a run, or on the loader's own when an exception ended it.
void CCalendarThread::PostKill()
{
    CloseLinksDB();
    m_dbAppointments.Close();
    m_lstDeletedDates.clear();
    m_list.m_nPublished = 0;
    // The lock may be the dead run's, free, or this thread's own. When it can be had it was one of the latter two and
    // is given back as it was; when not, leaving it works for a dead owner alone.
    m_csList.TryEnter();
    m_csList.Leave();
    if (m_hWndHost != nullptr)
    {
        PostMessageW(m_hWndHost, loaderDone, 0, 0);
    }
}
