#include "interchange/recurrence_rules.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

namespace zb::interchange
{
namespace
{
constexpr DWORD everyDay = 127;
constexpr DWORD mondayToFriday = 62;
constexpr DWORD weekend = 65;
constexpr DWORD lastInstance = 5;
/// No series is followed further than this to find where its count ends.
constexpr int mostOccurrences = 100'000;
constexpr int mostYears = 200;
constexpr int lastListedYear = 2999;
/// From day 29 on, a month without that day would show its last day, where the rule names none.
constexpr int lastDayOfEveryMonth = 28;

PatternResult refuse(std::string reason)
{
    return {std::nullopt, std::move(reason)};
}

template <std::size_t Size>
std::vector<int> listOf(const short (&values)[Size])
{
    const auto *end = std::find(std::begin(values), std::end(values), static_cast<short>(ICAL_RECURRENCE_ARRAY_MAX));
    return {std::begin(values), end};
}

/// The parts of a rule as ordinary lists.
struct Parts
{
    explicit Parts(const icalrecurrencetype &rule)
        : days(listOf(rule.by_day)), monthDays(listOf(rule.by_month_day)), months(listOf(rule.by_month)),
          positions(listOf(rule.by_set_pos)),
          others(!listOf(rule.by_second).empty() || !listOf(rule.by_minute).empty() || !listOf(rule.by_hour).empty() ||
                 !listOf(rule.by_year_day).empty() || !listOf(rule.by_week_no).empty())
    {
    }

    std::vector<int> days;
    std::vector<int> monthDays;
    std::vector<int> months;
    std::vector<int> positions;
    bool others;

    /// Mask of the weekdays; nothing when one of them has an ordinal.
    std::optional<DWORD> plainWeekdays() const
    {
        DWORD mask = 0;
        for (const int day : days)
        {
            if (icalrecurrencetype_day_position(static_cast<short>(day)) != 0)
            {
                return std::nullopt;
            }
            mask |= 1U << (static_cast<unsigned>(icalrecurrencetype_day_day_of_week(static_cast<short>(day))) - 1U);
        }
        return mask;
    }
};

DWORD weekdayBit(const icaltimetype &date)
{
    return 1U << (static_cast<unsigned>(icaltime_day_of_week(date)) - 1U);
}

/// A record's weeks begin on Sunday. With an interval above one week that only equals a rule whose weeks begin on
/// another day when all its weekdays lie on the same side of both week starts.
bool weekStartMatters(DWORD mask, DWORD startBit, const icalrecurrencetype &rule)
{
    const unsigned weekStart = rule.week_start == ICAL_NO_WEEKDAY ? 1U : static_cast<unsigned>(rule.week_start) - 1U;
    if (rule.interval <= 1 || weekStart == 0)
    {
        return false;
    }
    const DWORD before = (1U << weekStart) - 1U; // the days from Sunday up to the rule's week start
    const DWORD all = mask | startBit;
    return (all & before) != 0 && (all & ~before) != 0;
}

PatternResult daily(const icalrecurrencetype &rule, const Parts &parts, const icaltimetype &start)
{
    RecurrencePattern pattern;
    pattern.interval = static_cast<DWORD>(rule.interval);
    if (!parts.monthDays.empty() || !parts.months.empty() || !parts.positions.empty())
    {
        return refuse("it repeats daily, but only in some months or on some days of the month");
    }
    if (parts.days.empty())
    {
        return {pattern, {}};
    }
    const auto mask = parts.plainWeekdays();
    if (rule.interval != 1 || !mask || (*mask & weekdayBit(start)) == 0)
    {
        return refuse("it repeats every few days, but only on some weekdays");
    }
    pattern.frequency = RecurrenceFrequency::Weekly;
    pattern.type = RecurrenceType::Weekdays;
    pattern.weekdays = *mask;
    return {pattern, {}};
}

PatternResult weekly(const icalrecurrencetype &rule, const Parts &parts, const icaltimetype &start)
{
    if (!parts.monthDays.empty() || !parts.months.empty() || !parts.positions.empty())
    {
        return refuse("it repeats weekly, but only in some months");
    }
    const auto mask = parts.plainWeekdays();
    const DWORD startBit = weekdayBit(start);
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Weekly;
    pattern.type = RecurrenceType::Weekdays;
    pattern.interval = static_cast<DWORD>(rule.interval);
    pattern.weekdays = mask.value_or(0) != 0 ? *mask : startBit;
    if (!mask || (pattern.weekdays & startBit) == 0)
    {
        return refuse("its first day is none of the weekdays it repeats on");
    }
    if (weekStartMatters(pattern.weekdays, startBit, rule))
    {
        return refuse("its weeks begin on another day than Sunday, and it repeats on both sides of that");
    }
    return {pattern, {}};
}

std::optional<DWORD> instanceOf(int position)
{
    if (position == -1)
    {
        return lastInstance;
    }
    return position >= 1 && position <= 4 ? std::optional<DWORD>(static_cast<DWORD>(position)) : std::nullopt;
}

bool isSingleDay(DWORD mask)
{
    return mask != 0 && (mask & (mask - 1)) == 0;
}

/// "The second Tuesday", "the last working day": one instance of a set of weekdays in a month.
PatternResult nthWeekday(const Parts &parts)
{
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Monthly;
    pattern.type = RecurrenceType::NthWeekday;
    std::optional<DWORD> instance;
    const auto plain = parts.plainWeekdays();
    if (plain && parts.positions.size() == 1)
    {
        pattern.weekdays = *plain;
        instance = instanceOf(parts.positions.front());
    }
    else if (!plain && parts.days.size() == 1 && parts.positions.empty())
    {
        const auto day = static_cast<short>(parts.days.front());
        pattern.weekdays = 1U << (static_cast<unsigned>(icalrecurrencetype_day_day_of_week(day)) - 1U);
        instance = instanceOf(icalrecurrencetype_day_position(day));
    }
    const DWORD mask = pattern.weekdays;
    if (!instance || !(isSingleDay(mask) || mask == mondayToFriday || mask == weekend || mask == everyDay))
    {
        return refuse("it repeats on several weekdays of a month, or on one counted in a way records cannot hold");
    }
    pattern.instance = *instance;
    return {pattern, {}};
}

PatternResult dayOfMonth(const Parts &parts, const icaltimetype &start)
{
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Monthly;
    if (parts.monthDays.size() > 1 || !parts.positions.empty())
    {
        return refuse("it repeats on several days of a month");
    }
    const int day = parts.monthDays.empty() ? start.day : parts.monthDays.front();
    if (day == -1)
    {
        pattern.type = RecurrenceType::NthWeekday;
        pattern.weekdays = everyDay;
        pattern.instance = lastInstance;
        return {pattern, {}};
    }
    if (day != start.day)
    {
        return refuse("its first day is not the day of the month it repeats on");
    }
    pattern.type = RecurrenceType::DayOfMonth;
    pattern.dayOfMonth = static_cast<DWORD>(day);
    return {pattern, {}};
}

PatternResult monthly(const icalrecurrencetype &rule, const Parts &parts, const icaltimetype &start)
{
    if (!parts.months.empty() || (!parts.days.empty() && !parts.monthDays.empty()))
    {
        return refuse("it repeats monthly, but only in some months or on days that meet two conditions");
    }
    PatternResult result = parts.days.empty() ? dayOfMonth(parts, start) : nthWeekday(parts);
    if (!result.pattern)
    {
        return result;
    }
    if (result.pattern->type == RecurrenceType::DayOfMonth && start.day > lastDayOfEveryMonth)
    {
        return refuse("it repeats on a day that some months do not have");
    }
    result.pattern->interval = static_cast<DWORD>(rule.interval);
    return result;
}

PatternResult yearly(const icalrecurrencetype &rule, const Parts &parts, const icaltimetype &start)
{
    const bool monthGiven = parts.months.size() == 1 && parts.months.front() == start.month;
    if ((!parts.months.empty() && !monthGiven) || (!monthGiven && !parts.days.empty()) ||
        (!parts.days.empty() && !parts.monthDays.empty()))
    {
        return refuse("it repeats yearly in several months or on days counted over the whole year");
    }
    PatternResult result = parts.days.empty() ? dayOfMonth(parts, start) : nthWeekday(parts);
    if (!result.pattern)
    {
        return result;
    }
    RecurrencePattern &pattern = *result.pattern;
    // The loader repeats a yearly pattern every year whatever its interval, and can lose the month of an nth weekday
    // at the turn of the year; a monthly one of twelve months and more says the same and has neither trouble.
    const bool byDay = pattern.type == RecurrenceType::DayOfMonth;
    const bool plain = byDay && rule.interval == 1;
    if (byDay && ((start.month == 2 && start.day == 29) || (!plain && start.day > lastDayOfEveryMonth)))
    {
        return refuse("it repeats every few years on a day that some months do not have, or on 29 February");
    }
    pattern.frequency = plain ? RecurrenceFrequency::Yearly : RecurrenceFrequency::Monthly;
    pattern.interval = 12U * static_cast<DWORD>(rule.interval);
    pattern.month = static_cast<DWORD>(start.month);
    return result;
}

PatternResult daysOf(const icalrecurrencetype &rule, const Parts &parts, const icaltimetype &start)
{
    switch (rule.freq)
    {
    case ICAL_DAILY_RECURRENCE:
        return daily(rule, parts, start);
    case ICAL_WEEKLY_RECURRENCE:
        return weekly(rule, parts, start);
    case ICAL_MONTHLY_RECURRENCE:
        return monthly(rule, parts, start);
    case ICAL_YEARLY_RECURRENCE:
        return yearly(rule, parts, start);
    default:
        return refuse("it repeats within a day");
    }
}

using Iterator = std::unique_ptr<icalrecur_iterator, void (*)(icalrecur_iterator *)>;

Iterator occurrencesOf(const icalrecurrencetype &rule, const icaltimetype &start)
{
    return {icalrecur_iterator_new(rule, start), icalrecur_iterator_free};
}

/// The last occurrence of a rule with a count or an end; nothing when it has none at all or no end in reach.
std::optional<icaltimetype> lastOccurrence(const icalrecurrencetype &rule, const icaltimetype &start)
{
    const Iterator iterator = occurrencesOf(rule, start);
    std::optional<icaltimetype> last;
    for (int count = 0; iterator && count < mostOccurrences; ++count)
    {
        const icaltimetype next = icalrecur_iterator_next(iterator.get());
        if (icaltime_is_null_time(next))
        {
            return last;
        }
        last = next;
    }
    return std::nullopt;
}

/// The day of the last occurrence; one that lies behind some centuries counts as none.
DWORD lastDateOf(const icalrecurrencetype &rule, const icaltimetype &start)
{
    const bool hasCount = rule.count > 0;
    const bool inReach = hasCount ? rule.count <= mostOccurrences : rule.until.year < start.year + mostYears;
    const auto last = inReach ? lastOccurrence(rule, start) : std::nullopt;
    if (last)
    {
        return minutesSince1601(*last) / 1440 * 1440;
    }
    if (hasCount || rule.until.year >= lastListedYear)
    {
        return endlessSeriesDate;
    }
    const bool endsEarlier = rule.until.hour * 60 + rule.until.minute < start.hour * 60 + start.minute;
    return (minutesSince1601(rule.until) / 1440 - (endsEarlier ? 1 : 0)) * 1440;
}

bool firstOccurrenceIsStart(const icalrecurrencetype &rule, const icaltimetype &start)
{
    const Iterator iterator = occurrencesOf(rule, start);
    return iterator && icaltime_compare(icalrecur_iterator_next(iterator.get()), start) == 0;
}
} // namespace

DWORD minutesSince1601(const icaltimetype &time)
{
    using namespace std::chrono;
    const sys_days day = year(time.year) / time.month / time.day;
    const auto days = (day - sys_days(year(1601) / 1 / 1)).count();
    return static_cast<DWORD>(days * 1440 + time.hour * 60 + time.minute);
}

PatternResult patternFromRule(const icalrecurrencetype &rule, const icaltimetype &start)
{
    const Parts parts(rule);
    if (parts.others || rule.interval < 1 || rule.rscale != nullptr)
    {
        return refuse("its rule counts hours, weeks or days of the year, or uses another calendar");
    }
    PatternResult result = daysOf(rule, parts, start);
    if (!result.pattern)
    {
        return result;
    }
    if (!firstOccurrenceIsStart(rule, start))
    {
        return refuse("its first day is none of the days it repeats on");
    }
    RecurrencePattern &pattern = *result.pattern;
    pattern.firstDate = minutesSince1601(start) / 1440 * 1440;
    pattern.lastDate = endlessSeriesDate;
    if (rule.count > 0 || !icaltime_is_null_time(rule.until))
    {
        pattern.end = rule.count > 0 ? RecurrenceEnd::AfterCount : RecurrenceEnd::OnDate;
        pattern.occurrences = rule.count > 0 ? static_cast<DWORD>(rule.count) : 0;
        pattern.lastDate = lastDateOf(rule, start);
    }
    return result;
}
} // namespace zb::interchange
