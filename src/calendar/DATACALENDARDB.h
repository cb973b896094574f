// The loader's scratch row: a calendar row with the pattern of the record that is being read. One is used for a whole
// load and belongs to the loader's thread.
#pragma once

#include "calendar/DATACALENDAR.h"
#include "calendar/RECUREXCEPTION.h"

#include <vector>

/// A series, as the recurrence reader takes it from a record.
struct RECURPATTERN
{
    WORD m_wFrequency = 0;     ///< 0x200A daily, 0x200B weekly, 0x200C monthly, 0x200D yearly; 0 not recurring
    WORD m_wPatternType = 0;   ///< 0 every N days, 1 weekly or every weekday, 2 day of month, 3 nth weekday
    LONG m_nPeriodMinutes = 0; ///< daily
    ULONG m_dwWeekDays = 0;    ///< day mask, bit 0 Sunday
    LONG m_nPeriodWeeks = 0;
    WORD m_wDayOfMonth = 0;
    LONG m_nPeriodMonths = 0; ///< 12 times the years of a yearly pattern
    WORD m_wNthMask = 0;      ///< day mask of an nth pattern; holds that of a weekly one too
    WORD m_wNth = 0;          ///< 5 is the last one of the month
    ULONG m_dwYearDay = 0;    ///< day of a yearly pattern
    ULONG m_dwFirstDate = 0;  ///< minutes within the year, tells the month of a yearly pattern
    LONG m_nOccurrences = 0;  ///< carried along; the last date alone bounds a series
    WORD m_wStartHour = 0;    ///< times of an occurrence in the record's zone
    WORD m_wEndHour = 0;      ///< may pass 23
    WORD m_wStartMinute = 0;
    WORD m_wEndMinute = 0;
    std::vector<RECUREXCEPTION> m_lstExceptions;
    /// Minute dates of the occurrences that the exceptions take the place of.
    std::vector<DWORD> m_lstModified;
};

/// After the recurrence reader has run, m_dtStart is the first date of the series as a variant date and m_dtEnd its
/// last date as minutes since 1601, until the row is timed.
class ZBTOOLS_API DATACALENDARDB : public DATACALENDAR, public RECURPATTERN
{
  public:
    /// Clears pattern, lists and the record's zone as well.
    void NullData() override;

    /// True when the record has a zone of its own. The mark lies in place of the standard name.
    bool HasOwnZone() const
    {
        return m_tzRecord.StandardName[0] != 0;
    }
    void SetOwnZone(bool own)
    {
        m_tzRecord.StandardName[0] = own ? WCHAR{1} : WCHAR{0};
    }

    SYSTEMTIME m_stStart{}; ///< device-local
    TIME_ZONE_INFORMATION m_tzRecord{};
};
