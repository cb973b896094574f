#include "platform/linux/pim_series_rule.h"

#include "platform/linux/civil_date.h"
#include "platform/linux/pim_series_days.h"

#include <limits>

namespace zb::internal
{
namespace
{
constexpr LONG mondayToFriday = 62;
constexpr LONG weekend = 65;
constexpr LONG everyDay = 127;
constexpr LONG lastInstance = 5;
constexpr LONG monthsOfYear = 12;
constexpr LONG mostPeriods = 0xFFFF;
constexpr int endlessDay = static_cast<int>(endlessSeriesDate / minutesOfDay);

bool isYearly(LONG type)
{
    return type == olRecursYearly || type == olRecursYearNth;
}

bool isNth(LONG type)
{
    return type == olRecursMonthNth || type == olRecursYearNth;
}

bool isByDay(LONG type)
{
    return type == olRecursMonthly || type == olRecursYearly;
}

bool isType(LONG type)
{
    return type == olRecursDaily || type == olRecursWeekly || isByDay(type) || isNth(type);
}

LONG bitOf(int day)
{
    return 1 << weekdayOf(day);
}

/// Lists count single days, working days, days of weekends, and all days.
bool canBeCounted(LONG weekdays)
{
    const bool single = weekdays > 0 && weekdays < everyDay && (weekdays & (weekdays - 1)) == 0;
    return single || weekdays == mondayToFriday || weekdays == weekend || weekdays == everyDay;
}

bool isIn(LONG value, LONG least, LONG most)
{
    return value >= least && value <= most;
}

bool isIntervalValid(const SeriesRule &rule)
{
    if (isYearly(rule.type))
    {
        return rule.interval == 1;
    }
    const LONG most = rule.type == olRecursDaily ? std::numeric_limits<LONG>::max() / minutesOfDay / 2 : mostPeriods;
    return isIn(rule.interval, 1, most);
}

bool areDaysValid(const SeriesRule &rule, int startDay)
{
    const LONG weekdays = weekdaysOf(rule, startDay);
    return (rule.type != olRecursWeekly || isIn(weekdays, 1, everyDay)) &&
           (!isNth(rule.type) || (canBeCounted(weekdays) && isIn(instanceOf(rule, startDay), 1, lastInstance))) &&
           (!isByDay(rule.type) || isIn(dayOfMonthOf(rule, startDay), 1, 31)) &&
           (!isYearly(rule.type) || isIn(monthOf(rule, startDay), 1, monthsOfYear));
}

void setKind(const SeriesRule &rule, RecurrencePattern &pattern)
{
    switch (rule.type)
    {
    case olRecursDaily:
        pattern.frequency = RecurrenceFrequency::Daily;
        pattern.type = RecurrenceType::EveryNDays;
        break;
    case olRecursWeekly:
        pattern.frequency = RecurrenceFrequency::Weekly;
        pattern.type = RecurrenceType::Weekdays;
        break;
    case olRecursYearly:
        pattern.frequency = RecurrenceFrequency::Yearly;
        pattern.type = RecurrenceType::DayOfMonth;
        break;
    default:
        pattern.frequency = RecurrenceFrequency::Monthly;
        pattern.type = isNth(rule.type) ? RecurrenceType::NthWeekday : RecurrenceType::DayOfMonth;
        break;
    }
}

/// Where counting begins: for a weekday of a month of the year the first of these months that can hold one.
int originOf(const SeriesRule &rule, int startDay)
{
    const CivilDate start = civilDate(startDay);
    const auto month = static_cast<int>(monthOf(rule, startDay));
    if (rule.type != olRecursYearNth || start.month == month)
    {
        return startDay;
    }
    return dayNumber(start.month < month ? start.year : start.year + 1, month, 1);
}

HRESULT setEnd(const SeriesRule &rule, int startDay, RecurrencePattern &pattern)
{
    const auto first = static_cast<int>(pattern.firstDate / minutesOfDay);
    if (rule.end == RecurrenceEnd::Never || (rule.end == RecurrenceEnd::OnDate && rule.lastDay >= endlessDay))
    {
        return S_OK;
    }
    std::optional<int> last = rule.lastDay;
    if (rule.end == RecurrenceEnd::AfterCount)
    {
        if (rule.occurrences < 1)
        {
            return PIM_E_RECURRENCE;
        }
        last = SeriesDays(pattern).nth(static_cast<DWORD>(rule.occurrences));
        pattern.occurrences = static_cast<DWORD>(rule.occurrences);
    }
    if (rule.end == RecurrenceEnd::OnDate && rule.lastDay < startDay)
    {
        return rule.lastDay < 0 ? PIM_E_DATE : PIM_E_SERIES_END;
    }
    if (!last || *last < first)
    {
        return PIM_E_RECURRENCE;
    }
    pattern.end = rule.end;
    pattern.lastDate = static_cast<DWORD>(*last) * minutesOfDay;
    return S_OK;
}

void findOverMidnight(const OccurrenceTimes &times, RecurrencePattern &pattern)
{
    if (!times.allDay && pattern.type == RecurrenceType::EveryNDays && pattern.interval == 1 &&
        pattern.endMinute > static_cast<DWORD>(minutesOfDay))
    {
        pattern.frequency = RecurrenceFrequency::Weekly;
        pattern.type = RecurrenceType::Weekdays;
        pattern.weekdays = everyDay;
    }
}
} // namespace

LONG weekdaysOf(const SeriesRule &rule, int startDay)
{
    const bool counts = rule.type == olRecursWeekly || isNth(rule.type);
    return counts ? rule.weekdays.value_or(bitOf(startDay)) : 0;
}

LONG dayOfMonthOf(const SeriesRule &rule, int startDay)
{
    return isByDay(rule.type) ? rule.dayOfMonth.value_or(civilDate(startDay).day) : 0;
}

LONG instanceOf(const SeriesRule &rule, int startDay)
{
    return isNth(rule.type) ? rule.instance.value_or((civilDate(startDay).day - 1) / 7 + 1) : 0;
}

LONG monthOf(const SeriesRule &rule, int startDay)
{
    return isYearly(rule.type) ? rule.month.value_or(civilDate(startDay).month) : 0;
}

HRESULT patternOf(const SeriesRule &rule, int startDay, const OccurrenceTimes &times, RecurrencePattern &pattern)
{
    if (!isType(rule.type) || !isIntervalValid(rule) || !areDaysValid(rule, startDay))
    {
        return PIM_E_RECURRENCE;
    }
    pattern = RecurrencePattern();
    setKind(rule, pattern);
    pattern.interval = static_cast<DWORD>(isYearly(rule.type) ? monthsOfYear : rule.interval);
    pattern.weekdays = static_cast<DWORD>(weekdaysOf(rule, startDay));
    pattern.dayOfMonth = static_cast<DWORD>(isByDay(rule.type) ? dayOfMonthOf(rule, startDay) : 1);
    pattern.instance = static_cast<DWORD>(isNth(rule.type) ? instanceOf(rule, startDay) : 1);
    pattern.month = static_cast<DWORD>(rule.type == olRecursYearly ? monthOf(rule, startDay) : 1);
    pattern.startMinute = static_cast<DWORD>(times.startMinute);
    pattern.endMinute = static_cast<DWORD>(times.startMinute + times.minutes);
    pattern.firstDate = static_cast<DWORD>(originOf(rule, startDay)) * minutesOfDay;
    pattern.lastDate = endlessSeriesDate;
    const std::optional<int> first = SeriesDays(pattern).onOrAfter(startDay);
    if (!first || *first >= endlessDay)
    {
        return rule.end == RecurrenceEnd::OnDate && rule.lastDay < startDay ? PIM_E_SERIES_END : PIM_E_RECURRENCE;
    }
    pattern.firstDate = static_cast<DWORD>(*first) * minutesOfDay;
    if (const HRESULT result = setEnd(rule, startDay, pattern); FAILED(result))
    {
        return result;
    }
    const std::optional<int> gap = SeriesDays(pattern).shortestGap();
    if (gap && times.minutes > LONGLONG{*gap} * minutesOfDay)
    {
        return PIM_E_OCCURRENCE_LENGTH;
    }
    findOverMidnight(times, pattern);
    return S_OK;
}

namespace
{
/// Whether a series that began there would have that day itself.
bool canBegin(SeriesRule rule, int day)
{
    rule.end = RecurrenceEnd::Never;
    RecurrencePattern pattern;
    return SUCCEEDED(patternOf(rule, day, {0, 0, true}, pattern)) &&
           static_cast<int>(pattern.firstDate / minutesOfDay) == day;
}

void followNth(SeriesRule &rule, int to)
{
    const CivilDate date = civilDate(to);
    const bool single = rule.weekdays && (*rule.weekdays & (*rule.weekdays - 1)) == 0;
    if (!single)
    {
        return;
    }
    const bool inLastWeek = date.day + 7 > daysInMonth(date.year, date.month);
    const bool last = rule.instance == lastInstance && inLastWeek;
    rule.weekdays = bitOf(to);
    rule.instance = last ? lastInstance : (date.day - 1) / 7 + 1;
    rule.month = rule.month ? std::optional<LONG>(date.month) : std::nullopt;
}
} // namespace

DWORD rotatedWeekdays(DWORD weekdays, int days)
{
    DWORD result = 0;
    for (int day = 0; day < 7; ++day)
    {
        const bool isIn = (weekdays >> static_cast<unsigned>(day) & 1U) != 0;
        result |= isIn ? 1U << static_cast<unsigned>((day + days % 7 + 7) % 7) : 0U;
    }
    return result;
}

void followStart(SeriesRule &rule, int from, int to)
{
    if (from == to || !canBegin(rule, from) || canBegin(rule, to))
    {
        return;
    }
    const CivilDate date = civilDate(to);
    if (rule.type == olRecursWeekly)
    {
        const auto former = static_cast<DWORD>(rule.weekdays.value_or(bitOf(from)));
        rule.weekdays = static_cast<LONG>(rotatedWeekdays(former, to - from));
    }
    else if (isByDay(rule.type))
    {
        rule.dayOfMonth = date.day;
        rule.month = rule.month ? std::optional<LONG>(date.month) : std::nullopt;
    }
    else
    {
        followNth(rule, to);
    }
}

SeriesRule ruleOf(const RecurrencePattern &pattern)
{
    SeriesRule rule;
    rule.interval = static_cast<LONG>(pattern.interval);
    const bool yearly = pattern.frequency == RecurrenceFrequency::Yearly;
    const auto first = static_cast<int>(pattern.firstDate / minutesOfDay);
    switch (pattern.type)
    {
    case RecurrenceType::EveryNDays:
        rule.type = olRecursDaily;
        break;
    case RecurrenceType::Weekdays:
        rule.weekdays = static_cast<LONG>(pattern.weekdays);
        if (pattern.frequency == RecurrenceFrequency::Daily)
        {
            rule.weekdays = mondayToFriday;
            rule.interval = 1;
        }
        else if (pattern.weekdays == static_cast<DWORD>(everyDay) && pattern.interval == 1 &&
                 pattern.endMinute > static_cast<DWORD>(minutesOfDay))
        {
            rule.type = olRecursDaily;
            rule.weekdays.reset();
        }
        break;
    case RecurrenceType::DayOfMonth:
        rule.type = yearly ? olRecursYearly : olRecursMonthly;
        rule.dayOfMonth = static_cast<LONG>(pattern.dayOfMonth);
        break;
    case RecurrenceType::NthWeekday:
        rule.type = yearly || pattern.interval == static_cast<DWORD>(monthsOfYear) ? olRecursYearNth : olRecursMonthNth;
        rule.weekdays = static_cast<LONG>(pattern.weekdays);
        rule.instance = static_cast<LONG>(pattern.instance);
        break;
    }
    if (isYearly(rule.type))
    {
        rule.interval = 1;
        rule.month = yearly ? static_cast<LONG>(pattern.month) : civilDate(first).month;
    }
    rule.end = pattern.end;
    rule.occurrences = pattern.end == RecurrenceEnd::AfterCount ? static_cast<LONG>(pattern.occurrences) : -1;
    rule.lastDay = pattern.end == RecurrenceEnd::OnDate ? static_cast<int>(pattern.lastDate / minutesOfDay) : 0;
    return rule;
}

std::optional<int> lastDayOf(const RecurrencePattern &pattern)
{
    return pattern.end == RecurrenceEnd::Never ? std::nullopt
                                               : std::optional(static_cast<int>(pattern.lastDate / minutesOfDay));
}
} // namespace zb::internal
