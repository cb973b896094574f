// Series against an independent expansion: random rules that the format can say go through the mapping of rules to
// patterns and the walks of the calendar loader, and must name the days that libical's iterator names, over several
// ranges each.
//
// Deliberate differences, none of which a rule mapped by the import meets:
// - "every weekday" of the format skips the Friday on which a range begins and ignores its own first date: the mapping
//   uses the weekly pattern with five days instead;
// - days 29 to 31 and 29 February fall on the last day of shorter months: such rules are refused and unrolled;
// - weeks begin on Sunday: rules that would differ are refused;
// - a yearly pattern repeats every year, and an nth weekday can lose its month: the mapping uses months instead;
// - a day that no month has, a period of nothing, an empty mask: no rule says them;
// - a daily, weekly or monthly walk may begin in front of its range, for occurrences that reach into it: such days are
//   left out of the comparison;
// - a monthly series can show a date in front of its first one when that is not the pattern's day: a mapped rule's
//   first date always is.
#include "calendar/RecurrenceWalk.h"
#include "interchange/recurrence_rules.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <set>

namespace
{
using namespace zb;
using namespace zb::interchange;

constexpr int variantDayOf1601 = -109205;

struct Collector final : RecurrenceVisitor
{
    std::set<int> days;
    int doubled = 0;
    void occurrence(const CalendarDay &date, double) override
    {
        doubled += days.insert(date.variantDay()).second ? 0 : 1;
    }
};

/// What the recurrence reader takes from the blob of a pattern.
RECURPATTERN asRead(const RecurrencePattern &pattern)
{
    RECURPATTERN read;
    read.m_wFrequency = static_cast<WORD>(pattern.frequency);
    read.m_wPatternType = static_cast<WORD>(pattern.type);
    read.m_nPeriodMinutes = static_cast<LONG>(pattern.interval * 1440);
    read.m_nPeriodWeeks = static_cast<LONG>(pattern.interval);
    read.m_nPeriodMonths = static_cast<LONG>(pattern.interval);
    read.m_wNthMask = static_cast<WORD>(pattern.weekdays);
    read.m_dwWeekDays = pattern.weekdays;
    read.m_wNth = static_cast<WORD>(pattern.instance);
    read.m_wDayOfMonth = static_cast<WORD>(pattern.dayOfMonth);
    read.m_dwYearDay = pattern.dayOfMonth;
    static const DWORD before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    read.m_dwFirstDate = pattern.frequency == RecurrenceFrequency::Yearly ? before[pattern.month - 1] * 1440 : 0;
    return read;
}

std::set<int> daysOfWalk(const RecurrencePattern &pattern, int from, int to)
{
    const RECURPATTERN read = asRead(pattern);
    Collector collector;
    const RecurrenceRange range{CalendarDay::fromVariantDay(from), static_cast<double>(from), static_cast<double>(to)};
    double working = 0.0;
    const double first = static_cast<double>(pattern.firstDate) / 1440 + variantDayOf1601;
    RecurrenceWalk walk(read, range, collector, first, pattern.lastDate, 60, working);
    const bool yearly = pattern.frequency == RecurrenceFrequency::Yearly;
    switch (pattern.type)
    {
    case RecurrenceType::EveryNDays:
        walk.daily();
        break;
    case RecurrenceType::Weekdays:
        walk.weekly();
        break;
    case RecurrenceType::DayOfMonth:
        yearly ? walk.yearlyByDay() : walk.monthlyByDay();
        break;
    case RecurrenceType::NthWeekday:
        walk.monthlyByWeekday();
        break;
    }
    EXPECT_EQ(collector.doubled, 0);
    // A walk may begin in front of the range, for occurrences that reach into it.
    std::set<int> inside;
    for (const int day : collector.days)
    {
        if (day >= from)
        {
            inside.insert(day);
        }
    }
    return inside;
}

/// All days up to one, by the independent expansion.
std::set<int> daysOfIterator(const icalrecurrencetype &rule, const icaltimetype &start, int to)
{
    std::set<int> days;
    icalrecur_iterator *iterator = icalrecur_iterator_new(rule, start);
    for (icaltimetype next = icalrecur_iterator_next(iterator); !icaltime_is_null_time(next);
         next = icalrecur_iterator_next(iterator))
    {
        const int day = static_cast<int>(minutesSince1601(next) / 1440) + variantDayOf1601;
        if (day > to)
        {
            break;
        }
        days.insert(day);
    }
    icalrecur_iterator_free(iterator);
    return days;
}

class RuleMaker
{
  public:
    explicit RuleMaker(std::uint32_t seed) : m_random(seed)
    {
    }

    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(m_random);
    }

    icaltimetype start()
    {
        icaltimetype time = icaltime_null_time();
        time.year = number(1970, 2060);
        time.month = number(1, 12);
        time.day = number(1, 28 + (number(0, 9) == 0 ? 2 : 0));
        time.hour = number(0, 23);
        time.minute = number(0, 59);
        return icaltime_normalize(time);
    }

    std::string rule(const icaltimetype &start)
    {
        static const char *days[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
        const std::string own = days[icaltime_day_of_week(start) - 1];
        const int nth = (start.day - 1) / 7 + 1;
        const std::string interval = ";INTERVAL=" + std::to_string(number(1, 6));
        std::string text;
        switch (number(0, 7))
        {
        case 0:
            text = "FREQ=DAILY" + interval;
            break;
        case 1:
        case 2:
            text = "FREQ=WEEKLY" + interval + ";BYDAY=" + own;
            for (const char *day : days)
            {
                text += number(0, 2) == 0 && day != own ? std::string(",") + day : std::string();
            }
            text += number(0, 1) == 0 ? ";WKST=SU" : "";
            break;
        case 3:
            text = "FREQ=MONTHLY" + interval;
            break;
        case 4:
            text = "FREQ=MONTHLY" + interval + ";BYDAY=" + std::to_string(nth) + own;
            break;
        case 5:
            text = "FREQ=MONTHLY" + interval + ";BYDAY=MO,TU,WE,TH,FR;BYSETPOS=" + (number(0, 1) == 0 ? "-1" : "1");
            break;
        case 6:
            text = "FREQ=YEARLY" + (number(0, 1) == 0 ? interval : std::string());
            break;
        default:
            text = "FREQ=YEARLY;BYMONTH=" + std::to_string(start.month) + ";BYDAY=" + std::to_string(nth) + own;
            break;
        }
        switch (number(0, 3))
        {
        case 0:
            return text + ";COUNT=" + std::to_string(number(1, 200));
        case 1:
            return text + ";UNTIL=" + until(start);
        default:
            return text;
        }
    }

  private:
    /// The end of any day, or of one that the rule is likely to name.
    std::string until(const icaltimetype &start)
    {
        icaltimetype last = start;
        last.year += number(0, 8);
        last.month = number(0, 1) == 0 ? number(1, 12) : start.month;
        last.day = number(0, 1) == 0 ? number(1, 28) : std::min(start.day, 28);
        last.hour = 23;
        last.minute = last.second = 59;
        return icaltime_as_ical_string(icaltime_compare(last, start) < 0 ? start : last);
    }

    std::mt19937 m_random;
};

TEST(RecurrenceDifferential, randomRulesNameTheDaysThatAnIndependentExpansionNames)
{
    const char *given = std::getenv("ZB_SEED");
    const std::uint32_t seed = given != nullptr ? static_cast<std::uint32_t>(std::atoi(given)) : 20261121;
    RuleMaker maker(seed);
    int compared = 0;
    int refused = 0;
    for (int round = 0; compared < 20'000; ++round)
    {
        ASSERT_LT(round, 200'000);
        const icaltimetype start = maker.start();
        const std::string text = maker.rule(start);
        const icalrecurrencetype rule = icalrecurrencetype_from_string(text.c_str());
        const PatternResult result = patternFromRule(rule, start);
        if (!result.pattern)
        {
            ASSERT_FALSE(result.reason.empty());
            ++refused;
            continue;
        }
        ++compared;
        const int startDay = static_cast<int>(minutesSince1601(start) / 1440) + variantDayOf1601;
        const std::set<int> named = daysOfIterator(rule, start, startDay + 2200);
        for (int range = 0; range < 3; ++range)
        {
            int from = startDay + maker.number(-40, 2000);
            int to = from + maker.number(0, 120);
            const auto begin = named.lower_bound(from);
            if (range == 2 && begin != named.end())
            {
                // From one named day, or the one behind it, to another, or the one before it.
                const auto end = named.lower_bound(*begin + maker.number(0, 120));
                from = *begin + maker.number(0, 1);
                to = std::max(from, (end != named.end() ? *end : *begin) - maker.number(0, 1));
            }
            ASSERT_EQ(daysOfWalk(*result.pattern, from, to),
                      std::set<int>(named.lower_bound(from), named.upper_bound(to)))
                << text << " from " << icaltime_as_ical_string(start) << ", range " << from << " to " << to << ", seed "
                << seed;
        }
    }
    EXPECT_GT(refused, 0);
}
} // namespace
