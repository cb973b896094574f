// The seven walks and their steps, with dates counted by hand on a calendar.
#include "calendar/RecurrenceWalk.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace zb;

constexpr unsigned sunday = 1;
constexpr unsigned monday = 2;
constexpr unsigned wednesday = 8;
constexpr unsigned thursday = 16;
constexpr unsigned friday = 32;
constexpr unsigned saturday = 64;

CalendarDay day(int year, int month, int dayOfMonth)
{
    return {year, month, dayOfMonth, 0};
}

std::string text(const CalendarDay &date)
{
    char buffer[40];
    std::snprintf(buffer, sizeof(buffer), "%04d-%02d-%02d", date.year, date.month, date.day);
    return buffer;
}

/// A series and a range, and the dates that a walk names.
class WalkTest : public ::testing::Test, public RecurrenceVisitor
{
  protected:
    void occurrence(const CalendarDay &date, double x) override
    {
        EXPECT_DOUBLE_EQ(x, date.variantDate());
        m_dates.push_back(text(date));
    }

    void series(WORD frequency, const CalendarDay &first, const CalendarDay &last = {2999, 12, 31, 0})
    {
        m_pattern.m_wFrequency = frequency;
        m_first = first.variantDate();
        m_lastMinute = (last.variantDay() + 109205.0) * 1440.0;
    }

    using Walk = void (RecurrenceWalk::*)();

    std::vector<std::string> dates(Walk walk, const CalendarDay &from, const CalendarDay &to)
    {
        m_dates.clear();
        const RecurrenceRange range{from, from.variantDate(), to.variantDate()};
        RecurrenceWalk made(m_pattern, range, *this, m_first, m_lastMinute, m_duration, m_working);
        (made.*walk)();
        return m_dates;
    }

    RecurrenceWalk steps()
    {
        return RecurrenceWalk(m_pattern, m_range, *this, m_first, m_lastMinute, m_duration, m_working);
    }

    RECURPATTERN m_pattern;
    RecurrenceRange m_range{};
    double m_first = 0.0;
    double m_lastMinute = 0.0;
    int m_duration = 60;
    double m_working = 0.0;
    std::vector<std::string> m_dates;
};

using Dates = std::vector<std::string>;

// --- Daily -------------------------------------------------------------------------------------------------------

TEST_F(WalkTest, dailyBeginsOnTheFirstMatchingDateAtOrJustBeforeTheRange)
{
    series(0x200A, day(2026, 3, 1));
    m_pattern.m_nPeriodMinutes = 2 * 1440;
    EXPECT_EQ(dates(&RecurrenceWalk::daily, day(2026, 3, 10), day(2026, 3, 14)),
              (Dates{"2026-03-09", "2026-03-11", "2026-03-13"}));
    EXPECT_EQ(dates(&RecurrenceWalk::daily, day(2026, 3, 11), day(2026, 3, 13)), (Dates{"2026-03-11", "2026-03-13"}));
}

TEST_F(WalkTest, dailyBeginsWithTheSeriesAndEndsOnItsLastDay)
{
    series(0x200A, day(2026, 3, 10), day(2026, 3, 12));
    m_pattern.m_nPeriodMinutes = 1440;
    EXPECT_EQ(dates(&RecurrenceWalk::daily, day(2026, 3, 1), day(2026, 3, 31)),
              (Dates{"2026-03-10", "2026-03-11", "2026-03-12"}));
}

TEST_F(WalkTest, aPeriodBelowADayShowsTheFirstDateAlone)
{
    series(0x200A, day(2026, 3, 10));
    for (const LONG minutes : {0, 1, 1439, -1440})
    {
        m_pattern.m_nPeriodMinutes = minutes;
        EXPECT_EQ(dates(&RecurrenceWalk::daily, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-10"})) << minutes;
    }
    m_pattern.m_nPeriodMinutes = 0x7FFFFFFF;
    EXPECT_EQ(dates(&RecurrenceWalk::daily, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-10"}));
}

// --- Every weekday -----------------------------------------------------------------------------------------------

TEST_F(WalkTest, everyWeekdayGoesFromMondayToFridayWhateverTheMask)
{
    series(0x200A, day(2026, 3, 1));
    m_pattern.m_dwWeekDays = sunday;
    // 2026-03-04 is a Wednesday.
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 4), day(2026, 3, 10)),
              (Dates{"2026-03-04", "2026-03-05", "2026-03-06", "2026-03-09", "2026-03-10"}));
}

TEST_F(WalkTest, everyWeekdaySkipsTheFridayOnWhichTheRangeBegins)
{
    series(0x200A, day(2026, 3, 1));
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 6), day(2026, 3, 9)), (Dates{"2026-03-09"}));
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 7), day(2026, 3, 9)), (Dates{"2026-03-09"}));
}

TEST_F(WalkTest, everyWeekdayShowsTheSundayOnWhichTheRangeBegins)
{
    series(0x200A, day(2026, 3, 1));
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 8), day(2026, 3, 9)),
              (Dates{"2026-03-08", "2026-03-09"}));
}

TEST_F(WalkTest, everyWeekdayIsBoundByTheLastWorkingDateAndNotByItsOwnFirstDate)
{
    series(0x200A, day(2026, 3, 31));
    m_working = day(2026, 3, 5).variantDate() + 0.5;
    // In front of the bound the step from Thursday to Friday goes on to the Sunday.
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 4), day(2026, 3, 6)),
              (Dates{"2026-03-05", "2026-03-06"}));
    m_working = day(2026, 3, 7).variantDate();
    EXPECT_EQ(dates(&RecurrenceWalk::everyWeekday, day(2026, 3, 4), day(2026, 3, 9)),
              (Dates{"2026-03-08", "2026-03-09"}));
}

TEST_F(WalkTest, weeklyAndMonthlyWalksLeaveWhereTheyBegan)
{
    series(0x200B, day(2026, 1, 5));
    m_pattern.m_nPeriodWeeks = 1;
    m_pattern.m_wNthMask = monday;
    dates(&RecurrenceWalk::weekly, day(2026, 3, 4), day(2026, 3, 31));
    // The first Monday of the series not more than a period in front of the Monday of the range's week.
    EXPECT_EQ(m_working, day(2026, 2, 23).variantDate());
    m_pattern.m_nPeriodMonths = 1;
    m_pattern.m_wDayOfMonth = 5;
    series(0x200C, day(2026, 1, 5));
    dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 4), day(2026, 3, 31));
    // The first month not more than 31 days in front of 5 March.
    EXPECT_EQ(m_working, day(2026, 2, 5).variantDate());
}

TEST_F(WalkTest, aSeriesThatBeginsInsideTheRangeLeavesTheStartOfTheRange)
{
    m_working = day(2020, 1, 1).variantDate();
    m_pattern.m_nPeriodMonths = 1;
    m_pattern.m_wDayOfMonth = 20;
    m_pattern.m_wNthMask = monday;
    m_pattern.m_wNth = 3;
    series(0x200C, day(2026, 3, 20));
    for (const Walk walk : {&RecurrenceWalk::monthlyByDay, &RecurrenceWalk::monthlyByWeekday})
    {
        m_working = day(2026, 12, 1).variantDate();
        dates(walk, day(2026, 3, 4), day(2026, 3, 31));
        EXPECT_EQ(m_working, day(2026, 3, 4).variantDate());
    }
}

TEST_F(WalkTest, otherWalksLeaveTheWorkingDateAlone)
{
    m_working = 5.0;
    series(0x200A, day(2026, 1, 5));
    m_pattern.m_nPeriodMinutes = 1440;
    m_pattern.m_dwYearDay = 5;
    m_pattern.m_wNthMask = monday;
    m_pattern.m_wNth = 1;
    for (const Walk walk : {&RecurrenceWalk::daily, &RecurrenceWalk::everyWeekday, &RecurrenceWalk::yearlyByDay,
                            &RecurrenceWalk::yearlyByWeekday})
    {
        dates(walk, day(2026, 3, 4), day(2026, 3, 31));
        EXPECT_EQ(m_working, 5.0);
    }
}

// --- Weekly ------------------------------------------------------------------------------------------------------

TEST_F(WalkTest, weeklyNamesTheDaysOfTheMaskEachPeriod)
{
    // 2026-03-02 is a Monday.
    series(0x200B, day(2026, 3, 2));
    m_pattern.m_nPeriodWeeks = 2;
    m_pattern.m_wNthMask = monday | thursday;
    EXPECT_EQ(dates(&RecurrenceWalk::weekly, day(2026, 3, 1), day(2026, 4, 1)),
              (Dates{"2026-03-02", "2026-03-05", "2026-03-16", "2026-03-19", "2026-03-30"}));
}

TEST_F(WalkTest, weeksBeginOnSunday)
{
    // Begins on a Wednesday; the Sunday of the next period comes first in its week.
    series(0x200B, day(2026, 3, 4));
    m_pattern.m_nPeriodWeeks = 2;
    m_pattern.m_wNthMask = sunday | wednesday;
    EXPECT_EQ(dates(&RecurrenceWalk::weekly, day(2026, 3, 1), day(2026, 3, 20)),
              (Dates{"2026-03-04", "2026-03-15", "2026-03-18"}));
}

TEST_F(WalkTest, weeklyStaysInStepFarFromItsFirstDate)
{
    series(0x200B, day(2000, 1, 3)); // a Monday
    m_pattern.m_nPeriodWeeks = 3;
    m_pattern.m_wNthMask = monday;
    // 2026-03-02 is 1,365 weeks later, a multiple of 3; the walk begins one period in front of the range's week.
    EXPECT_EQ(dates(&RecurrenceWalk::weekly, day(2026, 2, 20), day(2026, 3, 25)),
              (Dates{"2026-02-09", "2026-03-02", "2026-03-23"}));
}

TEST_F(WalkTest, aWeeklyPeriodThatCannotAdvanceShowsTheFirstDateAlone)
{
    series(0x200B, day(2026, 3, 2));
    m_pattern.m_wNthMask = monday;
    for (const LONG period : {0, -1, 0x7FFFFFFF})
    {
        m_pattern.m_nPeriodWeeks = period;
        EXPECT_EQ(dates(&RecurrenceWalk::weekly, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-02"})) << period;
    }
}

// --- Monthly -----------------------------------------------------------------------------------------------------

TEST_F(WalkTest, aMonthlySeriesOnDay31EntersShortMonthsOnTheirLastDay)
{
    series(0x200C, day(2026, 1, 31));
    m_pattern.m_nPeriodMonths = 1;
    m_pattern.m_wDayOfMonth = 31;
    const RecurrenceWalk walk = steps();
    CalendarDay april = day(2026, 4, 1);
    walk.fDateAdjust(april);
    EXPECT_EQ(text(april), "2026-04-30");
    walk.fIncrementMonth(april);
    EXPECT_EQ(text(april), "2026-05-30");
    walk.fIncrementMonth(april);
    EXPECT_EQ(text(april), "2026-06-31"); // does not exist, names no row, and the stepping goes on
    EXPECT_FALSE(april.exists());
    walk.fIncrementMonth(april);
    EXPECT_EQ(text(april), "2026-07-30");
}

TEST_F(WalkTest, adjustingADateFollowsTheMonthsLength)
{
    struct Row
    {
        int day;
        CalendarDay month;
        const char *expected;
    };
    const std::vector<Row> rows = {{28, day(2026, 2, 1), "2026-02-28"}, {29, day(2026, 2, 1), "2026-02-28"},
                                   {29, day(2028, 2, 1), "2028-02-29"}, {30, day(2028, 2, 1), "2028-02-29"},
                                   {30, day(2026, 4, 1), "2026-04-30"}, {31, day(2026, 4, 1), "2026-04-30"},
                                   {31, day(2026, 5, 1), "2026-05-31"}, {1, day(2026, 5, 1), "2026-05-01"}};
    for (const Row &row : rows)
    {
        m_pattern.m_wDayOfMonth = static_cast<WORD>(row.day);
        CalendarDay date = row.month;
        steps().fDateAdjust(date);
        EXPECT_EQ(text(date), row.expected);
    }
}

TEST_F(WalkTest, monthlyByDayStepsByItsPeriodOverTheYear)
{
    series(0x200C, day(2025, 10, 15));
    m_pattern.m_nPeriodMonths = 5;
    m_pattern.m_wDayOfMonth = 15;
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 1, 1), day(2027, 1, 31)),
              (Dates{"2025-10-15", "2026-03-15", "2026-08-15", "2027-01-15"}));
}

TEST_F(WalkTest, aMonthlySeriesShowsADateInFrontOfItsFirstThatLooksLikeTheRangeStart)
{
    // The first date is not the pattern's day.
    series(0x200C, day(2026, 3, 20));
    m_pattern.m_nPeriodMonths = 1;
    m_pattern.m_wDayOfMonth = 15;
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 15), day(2026, 4, 30)),
              (Dates{"2026-03-15", "2026-04-15"}));
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 14), day(2026, 4, 30)), (Dates{"2026-04-15"}));
}

TEST_F(WalkTest, aMonthlyPeriodThatCannotAdvanceShowsTheFirstDateAlone)
{
    series(0x200C, day(2026, 3, 2));
    m_pattern.m_wDayOfMonth = 2;
    m_pattern.m_wNthMask = monday;
    m_pattern.m_wNth = 1;
    for (const LONG period : {0, -3})
    {
        m_pattern.m_nPeriodMonths = period;
        EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-02"}));
        EXPECT_EQ(dates(&RecurrenceWalk::monthlyByWeekday, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-02"}));
    }
    m_pattern.m_nPeriodMonths = 0x7FFFFFFF;
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 1), day(2026, 3, 31)), (Dates{"2026-03-02"}));
}

TEST_F(WalkTest, theNthDayOfAMonthByItsMask)
{
    struct Row
    {
        unsigned mask;
        int instance;
        CalendarDay month;
        const char *expected;
    };
    // March 2026 begins on a Sunday and ends on a Tuesday; May 2026 begins on a Friday and ends on a Sunday; August
    // 2026 begins on a Saturday and ends on a Monday.
    const std::vector<Row> rows = {{monday, 1, day(2026, 3, 9), "2026-03-02"},
                                   {sunday, 1, day(2026, 3, 9), "2026-03-01"},
                                   {sunday, 4, day(2026, 3, 9), "2026-03-22"},
                                   {sunday, 5, day(2026, 3, 9), "2026-03-29"},
                                   {wednesday, 5, day(2026, 3, 9), "2026-03-25"},
                                   {sunday, 5, day(2026, 5, 9), "2026-05-31"},
                                   {saturday, 5, day(2026, 5, 9), "2026-05-30"},
                                   {62, 1, day(2026, 3, 9), "2026-03-02"},
                                   {62, 1, day(2026, 8, 9), "2026-08-03"},
                                   {62, 2, day(2026, 5, 9), "2026-05-04"},
                                   {62, 5, day(2026, 5, 9), "2026-05-29"},
                                   {62, 5, day(2026, 3, 9), "2026-03-31"},
                                   {62, 5, day(2026, 2, 9), "2026-02-27"},
                                   {65, 1, day(2026, 3, 9), "2026-03-01"},
                                   {65, 2, day(2026, 3, 9), "2026-03-07"},
                                   {65, 2, day(2026, 8, 9), "2026-08-02"},
                                   {65, 5, day(2026, 3, 9), "2026-03-29"},
                                   {127, 0, day(2026, 3, 9), "2026-03-01"},
                                   {127, 3, day(2026, 3, 9), "2026-03-03"},
                                   {127, 5, day(2028, 2, 9), "2028-02-29"},
                                   {127, 5, day(2026, 2, 9), "2026-02-28"},
                                   {friday | monday, 2, day(2026, 5, 9), "2026-05-04"}};
    for (const Row &row : rows)
    {
        m_pattern.m_wNthMask = static_cast<WORD>(row.mask);
        m_pattern.m_wNth = static_cast<WORD>(row.instance);
        EXPECT_EQ(text(steps().fGetNthWeekDay(row.month)), row.expected) << row.mask << " " << row.instance;
    }
}

TEST_F(WalkTest, monthlyByWeekdayShowsWhatReachesIntoTheRange)
{
    series(0x200C, day(2026, 1, 1));
    m_pattern.m_nPeriodMonths = 1;
    m_pattern.m_wNthMask = monday;
    m_pattern.m_wNth = 1;
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByWeekday, day(2026, 3, 3), day(2026, 5, 10)),
              (Dates{"2026-04-06", "2026-05-04"}));
    m_duration = 1440;
    EXPECT_EQ(dates(&RecurrenceWalk::monthlyByWeekday, day(2026, 3, 3), day(2026, 4, 10)),
              (Dates{"2026-03-02", "2026-04-06"}));
}

// --- Yearly ------------------------------------------------------------------------------------------------------

TEST_F(WalkTest, theMonthOfAYearlySeriesComesFromTheMinutesToItsFirst)
{
    const ULONG firsts[12] = {0, 44640, 84960, 129600, 172800, 217440, 260640, 305280, 349920, 393120, 437760, 480960};
    for (int month = 1; month <= 12; ++month)
    {
        EXPECT_EQ(RecurrenceWalk::fGetMonthInNum(firsts[month - 1]), month);
        // In a leap year everything behind February lies a day later.
        EXPECT_EQ(RecurrenceWalk::fGetMonthInNum(firsts[month - 1] + (month > 2 ? 1440 : 0)), month);
    }
    const ULONG bounds[11] = {40000, 80000, 120000, 170000, 210000, 250000, 295000, 340000, 385000, 430000, 475000};
    for (int month = 1; month <= 11; ++month)
    {
        EXPECT_EQ(RecurrenceWalk::fGetMonthInNum(bounds[month - 1] - 1), month);
        EXPECT_EQ(RecurrenceWalk::fGetMonthInNum(bounds[month - 1]), month + 1);
    }
}

TEST_F(WalkTest, aYearlySeriesRepeatsEveryYearWhateverItsInterval)
{
    series(0x200D, day(2020, 5, 7));
    m_pattern.m_dwFirstDate = 172800;
    m_pattern.m_dwYearDay = 7;
    m_pattern.m_nPeriodMonths = 36;
    EXPECT_EQ(dates(&RecurrenceWalk::yearlyByDay, day(2026, 1, 1), day(2027, 12, 31)),
              (Dates{"2025-05-07", "2026-05-07", "2027-05-07"}));
}

TEST_F(WalkTest, the29thOfFebruaryFallsOnThe28thInOtherYears)
{
    series(0x200D, day(2024, 2, 29));
    m_pattern.m_dwFirstDate = 44640;
    m_pattern.m_dwYearDay = 29;
    EXPECT_EQ(dates(&RecurrenceWalk::yearlyByDay, day(2026, 1, 1), day(2029, 12, 31)),
              (Dates{"2026-02-28", "2027-02-28", "2028-02-29", "2029-02-28"}));
}

TEST_F(WalkTest, aYearlyWeekdayIsFoundInItsMonthEachYear)
{
    // The second Sunday of May. Counting years as 365 or 366 days has come to 2 May 2026 by then, which lies behind the
    // 1st, so the walk begins a year early.
    series(0x200D, day(2020, 5, 10));
    m_pattern.m_dwFirstDate = 172800;
    m_pattern.m_wNthMask = sunday;
    m_pattern.m_wNth = 2;
    EXPECT_EQ(dates(&RecurrenceWalk::yearlyByWeekday, day(2026, 1, 1), day(2028, 12, 31)),
              (Dates{"2025-05-11", "2026-05-10", "2027-05-09", "2028-05-14"}));
}

TEST_F(WalkTest, aYearlyWeekdayCanLoseItsMonthAtTheTurnOfTheYear)
{
    // The first Saturday of January: 365 days behind 2028-01-01 lies 2028-12-31, and the month is then December.
    series(0x200D, day(2026, 1, 3));
    m_pattern.m_dwFirstDate = 0;
    m_pattern.m_wNthMask = saturday;
    m_pattern.m_wNth = 1;
    EXPECT_EQ(dates(&RecurrenceWalk::yearlyByWeekday, day(2026, 1, 1), day(2028, 12, 31)),
              (Dates{"2026-01-03", "2027-01-02", "2028-01-01", "2028-12-02"}));
}

TEST_F(WalkTest, aDayThatNoMonthHasShowsTheFirstDateAlone)
{
    m_pattern.m_nPeriodMonths = 1;
    for (const ULONG number : {0U, 32U, 0xFFFFU})
    {
        series(0x200C, day(2026, 3, 2));
        m_pattern.m_wDayOfMonth = static_cast<WORD>(number);
        EXPECT_EQ(dates(&RecurrenceWalk::monthlyByDay, day(2026, 3, 1), day(2026, 6, 30)), (Dates{"2026-03-02"}));
    }
    for (const ULONG number : {0U, 32U, 0x10001U, 0x80000000U, 0xFFFFFFFFU})
    {
        series(0x200D, day(2026, 3, 2));
        m_pattern.m_dwYearDay = number;
        EXPECT_EQ(dates(&RecurrenceWalk::yearlyByDay, day(2026, 3, 1), day(2027, 6, 30)), (Dates{"2026-03-02"}));
    }
}

TEST_F(WalkTest, hostileNumbersEndAndStayInBounds)
{
    series(0x200C, day(2026, 3, 2));
    for (const unsigned number : {0U, 1U, 5U, 6U, 31U, 32U, 127U, 255U, 0xFFFFU})
    {
        m_pattern.m_nPeriodMonths = static_cast<LONG>(number);
        m_pattern.m_nPeriodWeeks = static_cast<LONG>(number);
        m_pattern.m_nPeriodMinutes = static_cast<LONG>(number * 1440);
        m_pattern.m_wDayOfMonth = static_cast<WORD>(number);
        m_pattern.m_wNth = static_cast<WORD>(number);
        m_pattern.m_wNthMask = static_cast<WORD>(number);
        m_pattern.m_dwYearDay = number;
        m_pattern.m_dwFirstDate = number * 65537;
        for (const Walk walk : {&RecurrenceWalk::daily, &RecurrenceWalk::everyWeekday, &RecurrenceWalk::weekly,
                                &RecurrenceWalk::monthlyByDay, &RecurrenceWalk::monthlyByWeekday,
                                &RecurrenceWalk::yearlyByDay, &RecurrenceWalk::yearlyByWeekday})
        {
            EXPECT_LE(dates(walk, day(2026, 1, 1), day(2026, 12, 31)).size(), 1000U) << number;
        }
    }
}
} // namespace
