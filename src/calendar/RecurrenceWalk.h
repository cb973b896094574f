// The seven expansions of a series: which dates of a range it names, in rising order.
//
// Plain calendar arithmetic on a pattern that the recurrence reader took apart; rows, deleted dates and changed
// occurrences are the visitor's. Each expansion puts itself on or in front of the start of the range in step with the
// pattern, then walks until the end of the range or of the series.
//
// Traits that hosts and stored series rely on, and that are kept:
// - "every weekday" goes Monday to Friday whatever its mask; a range that begins on a Friday has no row for that
//   Friday; its lower bound is not the first date of its own series but where the last weekly or monthly series began;
// - weeks begin on Sunday; a yearly series repeats every year whatever its interval;
// - a monthly series also shows a date in front of its first one that has the day of the month and the year of the
//   range start;
// - a monthly series on day 31 takes the last day of a shorter month where it enters the range, and steps over or
//   through shorter months as fIncrementMonth tells.
// A period that cannot advance (0, or below one day) shows the first date of the series alone; so does a day that no
// month has.
#pragma once

#include "calendar/CalendarDay.h"
#include "calendar/DATACALENDARDB.h"
#include "core/api.h"

namespace zb
{
/// What to do with the dates of a series.
class RecurrenceVisitor
{
  public:
    /// A date that the series names. x is its variant date.
    virtual void occurrence(const CalendarDay &date, double x) = 0;

  protected:
    ~RecurrenceVisitor() = default;
};

/// The range of a load: the date that it begins with as the host gave it, and both whole days.
struct RecurrenceRange
{
    CalendarDay start;
    double firstDay = 0.0;
    double lastDay = 0.0;
};

class ZBTOOLS_API RecurrenceWalk
{
  public:
    /// `pattern` and `visitor` must outlive the walk. `first` is the variant date that the series begins with,
    /// `lastMinute` its last date in minutes since 1601, `durationMinutes` the length of the record's own occurrence.
    /// `workingDay` is where the last weekly or monthly walk of the load placed its start, at or in front of the
    /// range's; it is read by the every-weekday walk; weekly and monthly walks set it.
    RecurrenceWalk(const RECURPATTERN &pattern, const RecurrenceRange &range, RecurrenceVisitor &visitor, double first,
                   double lastMinute, int durationMinutes, double &workingDay);

    void daily();
    void everyWeekday();
    void weekly();
    void monthlyByDay();
    void monthlyByWeekday();
    void yearlyByDay();
    void yearlyByWeekday();

    // The steps, each on a date of its own; public because they are worth testing by themselves.

    /// From the 1st of a month to the pattern's day, or the month's last.
    void fDateAdjust(CalendarDay &date) const;
    /// One month on, by the pattern's day; may end on a date that does not exist.
    void fIncrementMonth(CalendarDay &date) const;
    void fIncrementByYear(CalendarDay &date, int month) const;
    /// The nth day of the pattern in the date's month.
    CalendarDay fGetNthWeekDay(const CalendarDay &date) const;
    /// Month of a yearly pattern by the minutes from the start of the year to its first.
    static int fGetMonthInNum(ULONG firstDateWord);

  private:
    enum class Bound
    {
        Exact,    ///< the series' first date
        WithRange ///< or the day of the month and the year of the range start
    };

    bool isOver(const CalendarDay &date) const;
    bool emits(const CalendarDay &date, double x, Bound bound) const;
    bool inWindow(double x) const;
    /// Emits the first date alone, for a period that cannot advance.
    void firstDateAlone();
    int patternDay() const;
    /// False for a day that no month has: from it the steps would lead nowhere.
    bool hasDayOfMonth() const;
    void fCheckNextWeekDay(CalendarDay &date, int lowestWeekday) const;
    void addMonths(CalendarDay &date, int months) const;
    CalendarDay firstOfMonth(const CalendarDay &date) const;
    void placeWorkingDay(const CalendarDay &walk);
    void endAt23();

    const RECURPATTERN &m_pattern;
    const RecurrenceRange &m_range;
    RecurrenceVisitor &m_visitor;
    CalendarDay m_firstDate;
    double m_first;
    double m_last;
    int m_durationMinutes;
    double &m_workingDay;
};
} // namespace zb
