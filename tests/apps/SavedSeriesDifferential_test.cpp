// Series saved as objects against an independent expansion: random patterns, with days that are deleted, changed and
// moved through their occurrences, must show in the calendar's rows, and be found as occurrences, on just the days that
// libical's iterator names for the rule that means the same.
//
// Deliberate differences, which the patterns here stay clear of:
// - days 29 to 31 and 29 February are the last day of shorter months, where libical has none (and what lists show of
//   them depends on the range);
// - monthly weekdays whose occurrences run over midnight: lists look for them on their own day alone.
#include "apps/ListedRows.h"
#include "platform/PimObjects.h"
#include "support/QuickDevice.h"

#include <gtest/gtest.h>
#include <libical/ical.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <set>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr const char *dayNames[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

struct Made
{
    Counted<IAppointment> item;
    std::string rule;
    int startDay = 0; ///< since 1899-12-30
    int startMinute = 0;
    int minutes = 0;
};

icaltimetype timeOf(int day)
{
    return icaltime_from_timet_with_zone((static_cast<time_t>(day) - 25569) * 86400, 1, nullptr);
}

int dayOf(const icaltimetype &time)
{
    return dayNumberOf(time.year, time.month, time.day);
}

std::set<int> daysOfRule(const std::string &rule, int startDay, int to)
{
    std::set<int> days;
    icalrecur_iterator *iterator =
        icalrecur_iterator_new(icalrecurrencetype_from_string(rule.c_str()), timeOf(startDay));
    for (icaltimetype next = icalrecur_iterator_next(iterator); !icaltime_is_null_time(next) && dayOf(next) <= to;
         next = icalrecur_iterator_next(iterator))
    {
        days.insert(dayOf(next));
    }
    icalrecur_iterator_free(iterator);
    return days;
}

class SavedSeries : public ::testing::Test
{
  protected:
    FaultyFileLayer layer;
    TestDevice device{quickOptions(layer)};
    Counted<IPOutlookApp> app = application();
    std::uint32_t seed =
        std::getenv("ZB_SEED") != nullptr ? static_cast<std::uint32_t>(std::atoi(std::getenv("ZB_SEED"))) : 20261121;
    std::mt19937 random{seed};

    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    }

    static std::string list(int mask)
    {
        std::string days;
        for (int day = 0; day < 7; ++day)
        {
            days += (mask >> day & 1) != 0 ? (days.empty() ? "" : ",") + std::string(dayNames[day]) : "";
        }
        return days;
    }

    Counted<IRecurrencePattern> patternOf(const Counted<IAppointment> &item)
    {
        Counted<IRecurrencePattern> pattern;
        EXPECT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
        return pattern;
    }

    /// Puts a random pattern and gives the rule that means the same.
    std::string putPattern(const Counted<IRecurrencePattern> &pattern)
    {
        const int interval = number(1, 4);
        const std::string every = ";INTERVAL=" + std::to_string(interval);
        const int mask = number(1, 127);
        const int weekday = number(0, 6);
        const int instance = number(1, 5);
        const int day = number(1, 28);
        const int month = number(1, 12);
        const std::string nth = (instance == 5 ? "-1" : std::to_string(instance)) + dayNames[weekday];
        static constexpr LONG types[] = {0, 1, 1, 2, 3, 5, 6};
        const LONG type = types[number(0, 6)];
        pattern->put_RecurrenceType(type);
        if (type <= olRecursMonthNth)
        {
            pattern->put_Interval(interval);
        }
        switch (type)
        {
        case olRecursDaily:
            return "FREQ=DAILY" + every;
        case olRecursWeekly:
            pattern->put_DayOfWeekMask(mask);
            return "FREQ=WEEKLY;WKST=SU" + every + ";BYDAY=" + list(mask);
        case olRecursMonthly:
            pattern->put_DayOfMonth(day);
            return "FREQ=MONTHLY" + every + ";BYMONTHDAY=" + std::to_string(day);
        case olRecursMonthNth:
            pattern->put_DayOfWeekMask(1 << weekday);
            pattern->put_Instance(instance);
            return "FREQ=MONTHLY" + every + ";BYDAY=" + nth;
        case olRecursYearly:
            pattern->put_DayOfMonth(day);
            pattern->put_MonthOfYear(month);
            return "FREQ=YEARLY;BYMONTH=" + std::to_string(month) + ";BYMONTHDAY=" + std::to_string(day);
        default:
            pattern->put_DayOfWeekMask(1 << weekday);
            pattern->put_Instance(instance);
            pattern->put_MonthOfYear(month);
            return "FREQ=YEARLY;BYMONTH=" + std::to_string(month) + ";BYDAY=" + nth;
        }
    }

    void putEnd(const Counted<IRecurrencePattern> &pattern, Made &made)
    {
        const int kind = number(0, 3);
        if (kind == 0)
        {
            const int count = number(1, 40);
            pattern->put_Occurrences(count);
            made.rule += ";COUNT=" + std::to_string(count);
        }
        else if (kind == 1)
        {
            const int last = made.startDay + number(0, 800);
            pattern->put_PatternEndDate(last);
            const icaltimetype end = timeOf(last);
            made.rule += ";UNTIL=" + std::string(icaltime_as_ical_string(end));
        }
    }

    Made make(int n)
    {
        Made made;
        made.item = newItem<IAppointment>(app);
        made.startDay = dayNumberOf(2026, 1, 1) + number(0, 364);
        made.startMinute = number(0, 95) * 15;
        made.minutes = number(0, std::min(1439 - made.startMinute, 300));
        made.item->put_Subject(Text(u"Series " + utf16(std::to_string(n))));
        made.item->put_Start(made.startDay + made.startMinute / 1440.0);
        made.item->put_Duration(made.minutes);
        const Counted<IRecurrencePattern> pattern = patternOf(made.item);
        made.rule = putPattern(pattern);
        putEnd(pattern, made);
        return made;
    }

    /// What a day shows: its new day, minute and subject.
    struct Shown
    {
        int day;
        int minute;
        std::string subject;
        bool left = false; ///< an appointment of its own by now, and nobody's neighbour
        bool operator<(const Shown &other) const
        {
            return std::tie(day, minute, subject) < std::tie(other.day, other.minute, other.subject);
        }
        bool operator==(const Shown &other) const
        {
            return day == other.day && minute == other.minute && subject == other.subject;
        }
        friend void PrintTo(const Shown &shown, std::ostream *out)
        {
            *out << shown.day << " " << shown.minute << " " << shown.subject;
        }
    };

    /// Deletes, changes and moves some of the days, and tells what each shows then; by the day of the pattern.
    std::map<int, Shown> spoil(const Made &made, const std::set<int> &named, const std::set<int> &days,
                               const std::string &subject)
    {
        std::map<int, Shown> shown;
        for (const int day : named)
        {
            shown[day] = {day, made.startMinute, subject, false};
        }
        for (const int day : days)
        {
            const int what = number(0, 11);
            if (what > 3)
            {
                continue;
            }
            Counted<IAppointment> occurrence;
            EXPECT_EQ(
                patternOf(made.item)->GetOccurrence(day + number(0, 1) * made.startMinute / 1440.0, occurrence.out()),
                S_OK);
            if (!occurrence)
            {
                continue;
            }
            change(occurrence, what, day, shown, oidOf(made.item));
        }
        return shown;
    }

    /// The neighbour in the series, before or behind.
    static const Shown *neighbour(const std::map<int, Shown> &shown, int day, int step)
    {
        auto at = shown.find(day);
        do
        {
            if (step < 0 ? at == shown.begin() : std::next(at) == shown.end())
            {
                return nullptr;
            }
            std::advance(at, step);
        } while (at->second.left);
        return &at->second;
    }

    void change(const Counted<IAppointment> &occurrence, int what, int day, std::map<int, Shown> &shown, LONG series)
    {
        if (what == 0)
        {
            EXPECT_EQ(occurrence->Delete(), S_OK);
            shown.erase(day);
            return;
        }
        Shown wanted = shown[day];
        if (what == 1)
        {
            wanted.subject += " changed";
            occurrence->put_Subject(Text(utf16(wanted.subject)));
        }
        if (what >= 2)
        {
            wanted.minute = number(0, 20) * 60;
            wanted.day += what == 3 ? number(-6, 6) : 0;
            occurrence->put_Start(wanted.day + wanted.minute / 1440.0);
            occurrence->put_Duration(30);
        }
        const Shown *const previous = neighbour(shown, day, -1);
        const Shown *const next = neighbour(shown, day, 1);
        const bool pastPrevious = previous != nullptr && previous->day >= wanted.day;
        const bool pastNext = next != nullptr && next->day <= wanted.day;
        const HRESULT expected = pastPrevious || pastNext ? PIM_E_OCCURRENCE_MOVED : S_OK;
        EXPECT_EQ(occurrence->Save(), expected) << day << " to " << wanted.day;
        if (expected == S_OK)
        {
            wanted.left = oidOf(occurrence) != series;
            shown[day] = wanted;
        }
    }

    static std::multiset<Shown> rowsOf(int from, int to, const std::string &subject)
    {
        std::multiset<Shown> rows;
        for (const ListedRow &row : listedRows(from, to))
        {
            if (row.day == row.startDay && row.subject.rfind(subject, 0) == 0)
            {
                rows.insert({row.startDay, row.startMinute, row.subject, false});
            }
        }
        return rows;
    }
};

TEST_F(SavedSeries, randomSeriesShowOnTheDaysThatAnIndependentExpansionNames)
{
    int changed = 0;
    for (int n = 0; n < 250; ++n)
    {
        const Made made = make(n);
        SCOPED_TRACE(made.rule + " from day " + std::to_string(made.startDay) + ", seed " + std::to_string(seed));
        const std::string subject = "Series " + std::to_string(n);
        const std::set<int> named = daysOfRule(made.rule, made.startDay, made.startDay + 1000);
        const HRESULT saved = made.item->Save();
        if (named.empty() && saved == PIM_E_RECURRENCE)
        {
            continue; // ends before the first day that it names
        }
        ASSERT_EQ(saved, S_OK);
        std::set<int> nearDays(named.begin(), named.upper_bound(made.startDay + 500));
        const std::map<int, Shown> shown = spoil(made, named, nearDays, subject);
        changed += static_cast<int>(nearDays.size());
        for (int range = 0; range < 4; ++range)
        {
            const int from = made.startDay + number(-20, 500);
            const int to = from + (range == 0 ? 0 : number(0, 90));
            std::multiset<Shown> expected;
            for (const auto &[day, each] : shown)
            {
                if (each.day >= from && each.day <= to)
                {
                    expected.insert(each);
                }
            }
            ASSERT_EQ(rowsOf(from, to, subject), expected) << from << " to " << to;
        }
        made.item->Delete();
    }
    EXPECT_GT(changed, 1000);
}

TEST_F(SavedSeries, everyDayOfTheYearIsAnOccurrenceOrIsNone)
{
    for (int n = 0; n < 60; ++n)
    {
        const Made made = make(n);
        SCOPED_TRACE(made.rule + " from day " + std::to_string(made.startDay) + ", seed " + std::to_string(seed));
        const std::set<int> named = daysOfRule(made.rule, made.startDay, made.startDay + 400);
        if (made.item->Save() != S_OK)
        {
            EXPECT_TRUE(named.empty());
            continue;
        }
        const Counted<IRecurrencePattern> pattern = patternOf(made.item);
        for (int day = made.startDay - 30; day <= made.startDay + 400; ++day)
        {
            Counted<IAppointment> occurrence;
            const HRESULT result = pattern->GetOccurrence(day, occurrence.out());
            ASSERT_EQ(result, named.count(day) != 0 ? S_OK : PIM_E_NO_OCCURRENCE) << day;
            if (occurrence)
            {
                EXPECT_NEAR(valueOf<DATE>(occurrence, &IAppointment::get_Start), day + made.startMinute / 1440.0, 1e-6);
                EXPECT_EQ(valueOf<LONG>(occurrence, &IAppointment::get_Duration), made.minutes);
            }
        }
    }
}
} // namespace
