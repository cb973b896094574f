// The walks over a range, one for each kind of series.
#include "calendar/RecurrenceWalk.h"
#include "core/datetools.h"

#include <algorithm>
#include <cmath>

namespace zb
{
namespace
{
constexpr int minutesPerDay = 1440;
constexpr int friday = 5;
constexpr int saturday = 6;
/// Days from 1601-01-01 to 1899-12-30.
constexpr double daysTo1899 = 109205.0;
/// No row can lie behind this year, so no walk goes on behind it.
constexpr int lastYear = 9999;

double whole(double date)
{
    return std::trunc(date);
}

/// How many steps of `stride` days bring `from` to `bound` or behind it.
int stepsUpTo(double from, double bound, int stride)
{
    return from < bound ? static_cast<int>(std::ceil((bound - from) / stride)) : 0;
}
} // namespace

RecurrenceWalk::RecurrenceWalk(const RECURPATTERN &pattern, const RecurrenceRange &range, RecurrenceVisitor &visitor,
                               double first, double lastMinute, int durationMinutes, double &workingDay)
    : m_pattern(pattern), m_range(range), m_visitor(visitor), m_first(first),
      m_last(lastMinute / minutesPerDay - daysTo1899), m_durationMinutes(durationMinutes), m_workingDay(workingDay)
{
    const double day = whole(first);
    m_firstDate = CalendarDay::fromVariantDay(static_cast<int>(day),
                                              static_cast<int>(std::lround(std::fabs(first - day) * 86400.0)));
}

bool RecurrenceWalk::isOver(const CalendarDay &date) const
{
    if (date.year > lastYear)
    {
        return true;
    }
    if (!date.exists())
    {
        return false;
    }
    const double x = date.variantDate();
    return x > m_range.lastDay || whole(x) > m_last;
}

bool RecurrenceWalk::emits(const CalendarDay &date, double x, Bound bound) const
{
    const bool likeRangeStart = date.day == m_range.start.day && date.year == m_range.start.year;
    return x >= m_first || (bound == Bound::WithRange && likeRangeStart);
}

void RecurrenceWalk::firstDateAlone()
{
    if (!isOver(m_firstDate))
    {
        m_visitor.occurrence(m_firstDate, m_first);
    }
}

/// Tells the next every-weekday walk where this one began. A series that begins inside the range begins, for that, with
/// the range; else it would hide the working days before its own first date.
void RecurrenceWalk::placeWorkingDay(const CalendarDay &walk)
{
    if (walk.exists() && walk.year <= lastYear)
    {
        m_workingDay = std::min(walk.variantDate(), whole(m_range.firstDay));
    }
}

/// Monthly series count the whole of their last day.
void RecurrenceWalk::endAt23()
{
    const double day = whole(m_last);
    const double minutes = std::fmod(std::round((m_last - day) * minutesPerDay), 60.0);
    m_last = day + (23.0 * 60.0 + minutes) / minutesPerDay;
}

void RecurrenceWalk::daily()
{
    const int interval = m_pattern.m_nPeriodMinutes / minutesPerDay;
    if (interval <= 0)
    {
        firstDateAlone();
        return;
    }
    CalendarDay date = m_firstDate;
    date.addDays(stepsUpTo(m_first, whole(m_range.firstDay), interval) * interval);
    if (date.variantDate() > whole(m_range.firstDay))
    {
        date.addDays(-interval);
    }
    // Both upper ends by whole days, whatever the time of day of the first date.
    for (; whole(date.variantDate()) <= m_range.lastDay && date.variantDay() <= whole(m_last); date.addDays(interval))
    {
        const double x = date.variantDate();
        if (x >= m_first)
        {
            m_visitor.occurrence(date, x);
        }
    }
}

void RecurrenceWalk::everyWeekday()
{
    const double lowerBound = whole(m_workingDay);
    CalendarDay date = m_range.start;
    date.addDays(date.weekday() == friday ? 3 : date.weekday() == saturday ? 2 : 0);
    while (!isOver(date))
    {
        const double x = date.variantDate();
        const bool emitted = x >= lowerBound;
        if (emitted)
        {
            m_visitor.occurrence(date, x);
            date.secondOfDay = 0;
        }
        date.addDays(1);
        // Kept: in front of the bound it is the Friday, not the Saturday, that is stepped over.
        date.addDays(date.weekday() == (emitted ? saturday : friday) ? 2 : 0);
    }
}

void RecurrenceWalk::fCheckNextWeekDay(CalendarDay &date, int lowestWeekday) const
{
    const int weekday = date.weekday();
    for (int next = weekday + 1; next < 7; ++next)
    {
        if ((m_pattern.m_wNthMask >> static_cast<unsigned>(next) & 1U) != 0)
        {
            date.addDays(next - weekday);
            return;
        }
    }
    date.addDays(7 * m_pattern.m_nPeriodWeeks + lowestWeekday - weekday);
}

void RecurrenceWalk::weekly()
{
    // Behind this many weeks the range is over wherever it began; it keeps the arithmetic in bounds.
    constexpr LONG mostWeeks = 500'000;
    const LONG period = m_pattern.m_nPeriodWeeks;
    if (period <= 0 || period > mostWeeks)
    {
        firstDateAlone();
        return;
    }
    int lowest = 0;
    while (lowest < 7 && (m_pattern.m_wNthMask >> static_cast<unsigned>(lowest) & 1U) == 0)
    {
        ++lowest;
    }
    const int stride = 7 * period;
    CalendarDay walk = m_firstDate;
    walk.addDays(lowest - walk.weekday());
    CalendarDay date = m_range.start;
    date.addDays(lowest - date.weekday());
    const double limit = whole(date.variantDate()) - stride;
    walk.addDays(stepsUpTo(walk.variantDate(), limit, stride) * stride);
    const double start = whole(m_range.firstDay);
    walk.addDays(-stepsUpTo(start, walk.variantDate(), stride) * stride);
    placeWorkingDay(walk);
    for (date = walk; !isOver(date); fCheckNextWeekDay(date, lowest))
    {
        const double x = date.variantDate();
        if (emits(date, x, Bound::Exact))
        {
            m_visitor.occurrence(date, x);
        }
    }
}

void RecurrenceWalk::monthlyByDay()
{
    const LONG period = m_pattern.m_nPeriodMonths;
    if (period <= 0 || !hasDayOfMonth())
    {
        firstDateAlone();
        return;
    }
    const auto advance = [&](CalendarDay &date)
    {
        for (LONG month = 0; month < period && date.year <= lastYear; ++month)
        {
            fIncrementMonth(date);
        }
    };
    CalendarDay walk = firstOfMonth(m_firstDate);
    fDateAdjust(walk);
    CalendarDay start = firstOfMonth(m_range.start);
    fDateAdjust(start);
    const double limit = whole(start.variantDate()) - 31.0 * period;
    while (walk.year <= lastYear && (!walk.exists() || walk.variantDate() < limit))
    {
        advance(walk);
    }
    placeWorkingDay(walk);
    endAt23();
    for (CalendarDay date = walk; !isOver(date); advance(date))
    {
        if (date.exists() && emits(date, date.variantDate(), Bound::WithRange))
        {
            m_visitor.occurrence(date, date.variantDate());
        }
    }
}

bool RecurrenceWalk::inWindow(double x) const
{
    const double days = static_cast<double>(m_durationMinutes) / minutesPerDay;
    return x + days >= whole(m_range.firstDay) && x <= whole(m_range.lastDay);
}

void RecurrenceWalk::addMonths(CalendarDay &date, int months) const
{
    const int index = date.month - 1 + months;
    date.year += index / 12;
    date.month = index % 12 + 1;
    date.day = std::min(date.day, dayspermonth(date.month, date.year));
}

void RecurrenceWalk::monthlyByWeekday()
{
    constexpr LONG mostMonths = 12 * lastYear;
    const LONG period = m_pattern.m_nPeriodMonths;
    if (period <= 0 || period > mostMonths)
    {
        firstDateAlone();
        return;
    }
    CalendarDay walk = firstOfMonth(m_firstDate);
    const double limit = whole(firstOfMonth(m_range.start).variantDate()) - 31.0 * period;
    while (walk.year <= lastYear && walk.variantDate() < limit)
    {
        addMonths(walk, period);
    }
    walk = fGetNthWeekDay(walk);
    placeWorkingDay(walk);
    endAt23();
    const bool hasExceptions = !m_pattern.m_lstExceptions.empty();
    for (CalendarDay date = walk; !isOver(date);)
    {
        const double x = date.variantDate();
        const bool shows = (hasExceptions && inWindow(x - 31.0 * period)) || inWindow(x);
        if (shows && emits(date, x, Bound::WithRange))
        {
            m_visitor.occurrence(date, x);
        }
        addMonths(date, period);
        date = fGetNthWeekDay(date);
    }
}

void RecurrenceWalk::yearlyByDay()
{
    if (!hasDayOfMonth())
    {
        firstDateAlone();
        return;
    }
    const int month = fGetMonthInNum(m_pattern.m_dwFirstDate);
    CalendarDay date = firstOfMonth(m_firstDate);
    date.month = month;
    fDateAdjust(date);
    date.year = m_range.start.year - 1;
    for (; !isOver(date); fIncrementByYear(date, month))
    {
        if (date.exists() && emits(date, date.variantDate(), Bound::Exact))
        {
            m_visitor.occurrence(date, date.variantDate());
        }
    }
}

void RecurrenceWalk::yearlyByWeekday()
{
    const int month = fGetMonthInNum(m_pattern.m_dwFirstDate);
    CalendarDay walk = firstOfMonth(m_firstDate);
    walk.month = month;
    CalendarDay start = firstOfMonth(m_range.start);
    start.month = month;
    const double bound = whole(start.variantDate());
    while (walk.variantDate() < bound)
    {
        walk.addDays(isleapyear(walk.year) ? 366 : 365);
    }
    if (walk.variantDate() > start.variantDate())
    {
        walk.day = walk.month == 2 && walk.day == 29 ? 28 : walk.day;
        --walk.year;
    }
    walk = fGetNthWeekDay(walk);
    endAt23();
    for (CalendarDay date = walk; !isOver(date);)
    {
        const double x = date.variantDate();
        const bool reached = emits(date, x, Bound::Exact);
        if (reached)
        {
            m_visitor.occurrence(date, x);
        }
        date.addDays(isleapyear((reached ? date.year : walk.year) + 1) ? 366 : 365);
        date = fGetNthWeekDay(date);
    }
}
} // namespace zb
