// Series in the loader: which walk a pattern takes, and from a date that it names to a row.
#include "calendar/CCalendarThread.h"
#include "calendar/RecurrenceWalk.h"

#include "core/bstrtools.h"
#include "platform/clock.h"

#include <algorithm>

namespace
{
constexpr WORD daily = 0x200A;
constexpr WORD weekly = 0x200B;
constexpr WORD monthly = 0x200C;
constexpr WORD yearly = 0x200D;
/// Occurrences that begin more days than this in front of the range have no row, however long they are.
constexpr double reachBeforeRange = 2.0;

SYSTEMTIME dateOfMinutes(DWORD minutes)
{
    SYSTEMTIME date{};
    const FILETIME time = zb::fileTimeOf(minutes * zb::ticksPerMinute);
    FileTimeToSystemTime(&time, &date);
    return date;
}

bool isSameDate(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    return a.wDay == b.wDay && a.wMonth == b.wMonth && a.wYear == b.wYear;
}

/// The day that a changed occurrence takes the place of.
SYSTEMTIME keyOf(const RECUREXCEPTION &exception)
{
    if (exception.m_bMoved)
    {
        return dateOfMinutes(exception.m_dwMovedFrom);
    }
    return exception.m_bSeveralDays ? exception.m_stStart : dateOfMinutes(exception.m_dwDate);
}

void replaceText(BSTR &text, const WCHAR *replacement)
{
    if (replacement != nullptr)
    {
        FreeBSTR(text);
        text = AllocBSTR(replacement);
    }
}
} // namespace

/// Makes rows of the dates that a walk names.
class CCalendarThread::OccurrenceMaker final : public zb::RecurrenceVisitor
{
  public:
    explicit OccurrenceMaker(CCalendarThread &loader) : m_loader(loader)
    {
    }

    void occurrence(const zb::CalendarDay &date, double) override
    {
        const SYSTEMTIME fields = date.systemTime();
        if (m_loader.fCheckDeleteExp(date))
        {
            return;
        }
        m_loader.SetOccurrence(fields);
        if (!m_loader.fCheckExp(fields))
        {
            m_loader.fFillEventInfo();
        }
    }

  private:
    CCalendarThread &m_loader;
};

/// A known frequency with a pattern type that does not go with it has no row.
void CCalendarThread::fFillEventList()
{
    using Walk = void (zb::RecurrenceWalk::*)();
    struct Way
    {
        WORD frequency;
        WORD type;
        Walk walk;
    };
    static constexpr std::array<Way, 7> ways = {{{daily, 0, &zb::RecurrenceWalk::daily},
                                                 {daily, 1, &zb::RecurrenceWalk::everyWeekday},
                                                 {weekly, 1, &zb::RecurrenceWalk::weekly},
                                                 {monthly, 2, &zb::RecurrenceWalk::monthlyByDay},
                                                 {monthly, 3, &zb::RecurrenceWalk::monthlyByWeekday},
                                                 {yearly, 2, &zb::RecurrenceWalk::yearlyByDay},
                                                 {yearly, 3, &zb::RecurrenceWalk::yearlyByWeekday}}};
    const DATACALENDARDB &row = *m_pRow;
    if (row.m_wFrequency < daily || row.m_wFrequency > yearly)
    {
        fFillNonRecurrEvnt();
        return;
    }
    const auto way =
        std::find_if(ways.begin(), ways.end(),
                     [&](const Way &candidate)
                     { return candidate.frequency == row.m_wFrequency && candidate.type == row.m_wPatternType; });
    if (way == ways.end())
    {
        return;
    }
    const zb::RecurrenceRange days{zb::CalendarDay::fromSystemTime(m_stRangeStart), static_cast<double>(m_nRangeStart),
                                   static_cast<double>(m_nRangeEnd)};
    OccurrenceMaker maker(*this);
    zb::RecurrenceWalk walk(row, days, maker, row.m_dtStart, row.m_dtEnd, row.m_nDuration, m_dtWorking);
    (walk.*(way->walk))();
}

bool CCalendarThread::fCheckDeleteExp(const zb::CalendarDay &date) const
{
    constexpr DWORD minutesPerDay = 1440;
    const auto day = static_cast<DWORD>(date.variantDay() + zb::daysFrom1601ToVariantZero);
    return std::any_of(m_lstDeletedDates.begin(), m_lstDeletedDates.end(),
                       [&](DWORD deleted) { return deleted / minutesPerDay == day; });
}

/// True when a changed occurrence took care of the date; its row is then made. The last of several counts.
bool CCalendarThread::fCheckExp(const SYSTEMTIME &date)
{
    const auto &exceptions = m_pRow->m_lstExceptions;
    const auto found =
        std::find_if(exceptions.rbegin(), exceptions.rend(),
                     [&](const RECUREXCEPTION &exception) { return isSameDate(keyOf(exception), date); });
    if (found == exceptions.rend())
    {
        return false;
    }
    if (found->m_bMoved)
    {
        SetOccurrence(dateOfMinutes(found->m_dwMovedTo));
    }
    if (!OccurrenceReachesRange())
    {
        return false;
    }
    if (m_bRestRead || fReadRestOfRecord())
    {
        FillException(*found);
    }
    return true;
}

bool CCalendarThread::OccurrenceReachesRange() const
{
    return static_cast<int>(m_dtOccurrence) >= static_cast<int>(m_nRangeStart - reachBeforeRange);
}

void CCalendarThread::FillException(const RECUREXCEPTION &exception)
{
    DATACALENDAR *row = m_pRow->Copy();
    if (exception.m_nAllDay >= 0)
    {
        row->m_bAllDay = static_cast<WORD>(exception.m_nAllDay);
    }
    fGetRecurTimingStr(&m_pRow->m_tzRecord, exception.m_nStartHour, exception.m_nStartMinute, exception.m_nEndHour,
                       exception.m_nEndMinute, row);
    replaceText(row->m_bstrSubject, exception.m_bstrSubject);
    replaceText(row->m_bstrLocation, exception.m_bstrLocation);
    row->m_bHasNotes = exception.m_bNotes ? 1 : row->m_bHasNotes;
    row->m_nBusyStatus = exception.m_nBusy >= 0 ? exception.m_nBusy : row->m_nBusyStatus;
    row->m_bException = 1;
    fFillExtraAgendaInfo(row);
}

/// The row of an ordinary occurrence, if it reaches into the range.
void CCalendarThread::fFillEventInfo()
{
    if (!OccurrenceReachesRange() || !(m_bRestRead || fReadRestOfRecord()))
    {
        return;
    }
    std::unique_ptr<DATACALENDAR> row(m_pRow->Copy());
    fGetRecurTimingStr(&m_pRow->m_tzRecord, m_pRow->m_wStartHour, m_pRow->m_wStartMinute, m_pRow->m_wEndHour,
                       m_pRow->m_wEndMinute, row.get());
    if (static_cast<int>(row->m_dtEnd) >= m_nRangeStart && static_cast<int>(row->m_dtStart) <= m_nRangeEnd)
    {
        fFillExtraAgendaInfo(row.release());
    }
}
