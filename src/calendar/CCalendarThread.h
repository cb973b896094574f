// The background loader of every calendar list.
//
//     CCalendarThread loader(nullptr);
//     loader.m_hWndHost = window;
//     loader.SetRestrict(&first, &last);
//     loader.Start();
//     ... on message 1274: loader.GetList() holds the rows, sorted.
//
// A run walks the appointments from first to last, makes a row (or several) of each that the filters let pass, adds the
// headers of the days, sorts and publishes. Messages to m_hWndHost, all posted: 32802 when it begins, 1274 (wParam 1,
// lParam the number of rows) when the list is complete, 32803 when it is done. A run that is stopped leaves out 1274
// and keeps the rows read so far; one that is killed posts 32803 alone and publishes nothing.
//
// Ownership: the list owns its rows; they stay valid until the next full run begins. Threads: an object belongs to its
// host's thread, but for what a run does on the loader's. The run holds the list lock throughout; a host that walks the
// list while a run may be going enters the lock with the try form. SetRestrict may be called at any time and counts
// from the next run on; settings and restriction are set while no run is going. A second run that finds the lock held
// is dropped.
//
// Failures are silent: a record that can't be read is left out.
#pragma once

#include "calendar/CRecurrenceReader.h"
#include "calendar/CalendarDay.h"
#include "calendar/CalendarSettings.h"
#include "calendar/DATACALENDAR.h"
#include "calendar/DATACALENDARDB.h"
#include "core/CePtrList.h"
#include "core/CeWorkerThread.h"
#include "core/DaylightDays.h"
#include "core/LoaderMessages.h"
#include "core/LocalTimeConverter.h"
#include "core/synchronization.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class ZBTOOLS_API CCalendarThread : public CeWorkerThread
{
  public:
    /// The properties of a record as a load asks for them; the index is their place there.
    enum AppointmentProperty : int
    {
        APPT_START,         ///< 0x420d FILETIME, UTC; of a single all-day event, the date itself
        APPT_DURATION,      ///< 0x4213 long, minutes
        APPT_DURATION_TYPE, ///< 0x4215 long, 1 all-day
        APPT_REMINDER,      ///< 0x4503 short
        APPT_UNUSED,        ///< 0x4223 short, read and not used
        APPT_SENSITIVITY,   ///< 0x0004 short, not 0 private
        APPT_BUSY_STATUS,   ///< 0x000f short
        APPT_SUBJECT,       ///< 0x0037 string
        APPT_LOCATION,      ///< 0x4208 string
        APPT_EXTRA,         ///< 0x2a08 string
        APPT_NOTES,         ///< 0x0017 blob, notes from 5 bytes on
        APPT_CATEGORIES,    ///< 0x0016 blob
        APPT_RECURRENCE,    ///< 0x4015 blob, not empty in a series
        APPT_ATTENDEES,     ///< 0x0030 blob, attendees from 5 bytes on
        APPT_ZONE,          ///< 0x0001 blob, zone of a series
        APPT_PROPERTY_COUNT
    };
    static const std::array<CEPROPID, APPT_PROPERTY_COUNT> APPOINTMENT_PROPERTIES;
    /// A record whose properties take more does not appear.
    static constexpr DWORD READ_BUFFER_SIZE = 0x20000;
    static constexpr const WCHAR *DEFAULT_SETTINGS_KEY = u"Software\\Kelvo\\Zembrik\\CAV";

    /// settingsKey names the key of this list's settings; null takes the default. The device must be open.
    explicit CCalendarThread(const WCHAR *settingsKey = nullptr);
    ~CCalendarThread() override;

    // --- Before a run ---------------------------------------------------------------------------------------------

    /// Where the messages go; null sends none.
    HWND m_hWndHost = nullptr;
    /// Settings of a host for this list alone. Without them, the usual case, each full load reads those of the store.
    std::optional<CalendarSettings> m_ownSettings;

    /// Key of the settings in the text store; null takes the default. Counts from the next load on.
    void SetSettingsKey(const WCHAR *path);
    const WCHAR *GetSettingsKey() const
    {
        return m_strSettingsKey.c_str();
    }
    /// The range of dates, by whole days, both included. Without one a run ends at once.
    void SetRestrict(const SYSTEMTIME *start, const SYSTEMTIME *end);
    /// Hands out the restriction for editing; SetCategoryRestrict makes the edited choice count.
    void GetCategoryRestrict(CCategoryFilterInfo *&restriction);
    /// Takes the chosen categories over. The three numbers of the restriction are settings, which a full load reads
    /// again: they last only when they are saved. `save` writes them under DEFAULT_SETTINGS_KEY, also for a list with a
    /// key of its own (kept: hosts read them there).
    void SetCategoryRestrict(bool save);
    /// No headers of days; the list then stays in the order of reading.
    void SetNoHeaderDates(bool noHeaders);
    /// Reads the settings: names in lower case, zone, today, task sort key, restriction, short date format. A full load
    /// does it first of all.
    void SettingChange();
    /// The settings that the last SettingChange found.
    const CalendarSettings &GetSettings() const
    {
        return m_settings;
    }

    // --- The list -------------------------------------------------------------------------------------------------

    CePtrList<DATACALENDAR *> &GetList()
    {
        return m_list;
    }
    CeCriticalSection &GetListLock()
    {
        return m_csList;
    }
    /// Whether a day lies in the range; false without range.
    bool IsInCache(const SYSTEMTIME *date) const;
    bool IsInCache(double date) const;
    /// Whether the date and `days` more lie in the range, to the minute.
    bool IsInCache(const SYSTEMTIME *date, int days) const;
    /// Sorts anew, by the order that goes with the filter; does nothing while a run goes on.
    void SortDataList(bool ascending);
    /// Picture of short dates for GetDateFormatW, without the year: "M/dd", "dd.M"; empty for an unknown order.
    const WCHAR *GetShortDateFormat() const
    {
        return m_strShortDate.c_str();
    }

    /// Headers first, then all-day events, then by start, subject and id; tasks behind the appointments of their day.
    static int CompareFunc(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR user);
    /// By start alone.
    static int CompareFuncDate(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR user);
    /// By month and day without the year, then by subject and id.
    static int CompareFuncBirthday(DATACALENDAR *const &a, DATACALENDAR *const &b, DWORD_PTR user);

    // --- A run ----------------------------------------------------------------------------------------------------

    /// The body of a run, on the calling thread: a full load, or, with an id, that one record read again and added to
    /// the list (unsorted, without messages). stop may be null. Returns 0.
    DWORD CalendarThreadProc(CeManualEvent *stop, CEOID oid);

    /// Part of a full run: the tasks, when one of the ShowTasks settings is on in the list of the range. Those that the
    /// list has go first. Returns the number of rows. For a thread that holds the list lock; so are the two below.
    int AddTasks(CeManualEvent *stop);
    /// Adds the rows of one task, which was read with the properties of SetTaskProps, at the end of the list: 0 to 3,
    /// one for each day on which it shows. *shown tells whether it shows. `single` opens and closes the link and
    /// journal databases for it.
    int AddNewTask(const CeDbRecord &record, bool *shown, bool single);
    void DeleteTasksInList();
    /// The properties of a task as AddNewTask wants them, 12 of them; returns their number.
    static int SetTaskProps(CEPROPID *ids);
    /// For the host's thread: reads settings and tasks anew and sorts. 0 while a run goes on, else the number of rows.
    int AddTasksToThread(CeManualEvent *stop);
    /// For the host's thread: takes the tasks out and sorts; nothing while a run goes on.
    void RemoveTasksFromThread();
    /// Present for hosts that call it, and does nothing: headers go with the next run.
    void DeleteDateHeadersInList()
    {
    }
    /// Part of a full run: birthdays and anniversaries of the contacts, when ReadBirthdays is on and the list is none of
    /// 2, 3 and 4. In the list of the range one row for each of its years, also where the day lies outside of it (kept:
    /// hosts look at m_nDay); in the others one for this year. Returns the number of rows.
    int AddContactInfo(CeManualEvent *stop);

    /// Part of a full run: sorts, and puts the headers of days in (for every day of the range in the list of the range,
    /// else in front of each day that has rows; rows that are there twice then go). Returns the number of headers. Only
    /// for a thread that holds the list lock; so do the two below, which do not sort.
    int AddCalendarDate();
    int AddCalendarDatesForRange();
    int AddCalendarDatesForData();
    /// Opens the link and journal databases, which tell whether a row has links or a journal. One that does not open
    /// leaves its flag off. A run opens and closes them itself.
    void InitiateLinksDB();
    void CloseLinksDB();

    /// Today, process-wide, as the last SettingChange of any loader found it; device-local.
    static SYSTEMTIME GetToday();
    /// Order of the tasks in all calendar lists of the process.
    static std::atomic<DWORD> s_dwTaskSort;
    static std::atomic<bool> s_bTaskSortDescending;

  protected:
    DWORD ThreadProc() override;
    void PostKill() override;

    /// Names of the categories in a record's blob, joined by ", ", as malloc text (see CategoryAssembler); never null
    /// but without memory. Called once for each record that comes so far, on the thread of the run.
    virtual WCHAR *AssembleCategories(const CEBLOB &blob);

  private:
    struct Range
    {
        SYSTEMTIME start{};
        double dtStart = noDate;
        double dtEnd = noDate;
        bool isSet() const
        {
            return dtStart != noDate;
        }
    };

    // Frame of a run (CCalendarThread.cpp).
    void BeginFullLoad();
    void ChooseMode();
    bool ReadAppointments(CeManualEvent *stop, CEOID oid);
    bool WalkRecords(CeManualEvent *stop, CEOID oid);
    void fReadOneRecord();
    void FillAsOneRow();
    Range CurrentRange() const;
    void PostToHost(UINT message, WPARAM wParam, LPARAM lParam);

    // One record (CCalendarThread_record.cpp, CCalendarThread_text.cpp).
    bool fReadRecord();
    bool MayAppear();
    bool fCrossCheck();
    bool fReadRestOfRecord();
    bool PassesStatusAndCategory() const;
    bool PassesFilter() const;
    void ReadScalars();
    bool ReadStart(const FILETIME &start);
    bool LiesInRange() const;
    bool OverlapsRange() const;
    void FillStart();
    void ReadZone();
    void ReadTexts();
    void ReadCategories();
    bool DropFloatingPrefix();
    void RecogniseYears();
    bool BelongsToList() const;
    void ReadLinkFlags();
    bool HasLink(CEOID oid);
    bool HasJournal(CEOID oid);
    const WCHAR *TextAt(int index) const;
    CEBLOB BlobAt(int index) const;
    bool FlagAt(int index) const;

    // Rows (CCalendarThread_rows.cpp, CCalendarThread_timing.cpp).
    void fFillNonRecurrEvnt();
    void fFillExtraAgendaInfo(DATACALENDAR *row);
    void AddAge(DATACALENDAR &row, WORD firstYear, const WCHAR *mark) const;
    int LastDayOf(const DATACALENDAR &row) const;
    void AddFurtherDays(DATACALENDAR *row, int count);
    bool IsCutByRange(const DATACALENDAR &row) const;
    bool EndsEarly(const DATACALENDAR &row) const;
    void SetOccurrence(const SYSTEMTIME &date);
    void fGetRecurTimingStr(const TIME_ZONE_INFORMATION *zone, int startHour, int startMinute, int endHour,
                            int endMinute, DATACALENDAR *row);
    double TimeOfOccurrence(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date, bool allDay);
    bool TimeOnOccurrenceDay(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date, bool convert, double &moment);

    // Series (CCalendarThread_recurrence.cpp).
    class OccurrenceMaker;
    void fFillEventList();
    void fFillEventInfo();
    bool fCheckExp(const SYSTEMTIME &date);
    bool fCheckDeleteExp(const zb::CalendarDay &date) const;
    void FillException(const RECUREXCEPTION &exception);
    bool OccurrenceReachesRange() const;

    // Tasks and contacts (CCalendarThread_tasks.cpp, CCalendarThread_contacts.cpp).
    class ListLockHold;
    static bool IsStopped(CeManualEvent *stop)
    {
        return stop != nullptr && stop->IsSet();
    }
    bool ShowsTasks() const;
    int AddContactDay(const CeDbRecord &record, int index, const WCHAR *mark);
    DATACALENDAR *NewContactRow(const CeDbRecord &record, const SYSTEMTIME &date, int year, const WCHAR *mark) const;
    static int YearOf(int day);

    // Settings (CCalendarThread_extras.cpp).
    void TakeToday();
    void BuildShortDateFormat();
    CePtrList<DATACALENDAR *>::CompareCallback CompareForFilter() const;

    CePtrList<DATACALENDAR *> m_list;
    CeCriticalSection m_csList;
    mutable std::mutex m_rangeGuard; // of m_range; held for copies alone
    Range m_range;

    std::u16string m_strSettingsKey;
    CalendarSettings m_settings;
    CCategoryFilterInfo m_categoryRestrict;
    CePtrList<CFullCategory *> m_lstSelected;
    bool m_bNoHeaderDates = false;
    std::u16string m_strAnniversaryName; // lower case
    std::u16string m_strBirthdayName;    // lower case
    std::u16string m_strShortDate;
    std::array<WCHAR, 16> m_szYears{}; // unit word of ages
    TIME_ZONE_INFORMATION m_tzDevice{};
    zb::LocalTimeConverter m_toLocal;
    double m_dtToday = noDate;

    // What follows belongs to the run.
    CalendarFilter m_filter = CalendarFilter::Range;
    bool m_bExpand = true;
    bool m_bTestStatus = false;
    SYSTEMTIME m_stRangeStart{}; // the range of this run, whatever SetRestrict says meanwhile
    int m_nRangeStart = noDay;
    int m_nRangeEnd = noDay;
    std::unique_ptr<DATACALENDARDB> m_pRow;
    std::vector<DWORD> m_lstDeletedDates;
    BYTE *m_pReadBuffer = nullptr;
    bool m_bBufferTaken = false; // m_record owns the buffer since it was read into
    CeDbRecord m_record;
    CeDb m_dbAppointments;
    std::unique_ptr<CeDb> m_pDbLinks;
    std::unique_ptr<CeDb> m_pDbJournal;
    CEPROPVAL m_keyLinks{};
    CEPROPVAL m_keyJournal{};
    bool m_bLinksOpen = false;
    CRecurrenceReader m_reader;
    /// Where the last weekly or monthly series of the run placed its start; what "every weekday" goes by. Early at the
    /// start of a run: a later range that was shown before must not hide the working days of this one.
    double m_dtWorking = 0.0;
    std::u16string m_strWork;
    bool m_bRestRead = false;  // texts of the current record are in the scratch row
    LONGLONG m_startTicks = 0; // device-local start of the current record
    int m_nStartDay = 0;       // its whole day, and that of its end
    int m_nEndDay = 0;
    SYSTEMTIME m_stOccurrence{}; // the occurrence that a row is made for
    double m_dtOccurrence = noDate;
    bool m_bOccurrenceExists = false; // m_dtOccurrence is that of m_stOccurrence
    zb::DaylightDays m_daylightDays;
};
