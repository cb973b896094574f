// Calendar arithmetic. Expected values are known dates, or worked out with std::chrono.
#include "core/datetools.h"

#include "platform/clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <random>
#include <set>

namespace
{
using namespace std::chrono;

SYSTEMTIME dateOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int milliseconds = 0)
{
    return SYSTEMTIME{static_cast<WORD>(year),   static_cast<WORD>(month),       0,
                      static_cast<WORD>(day),    static_cast<WORD>(hour),        static_cast<WORD>(minute),
                      static_cast<WORD>(second), static_cast<WORD>(milliseconds)};
}

SYSTEMTIME fieldsOf(sys_days day)
{
    const year_month_day date(day);
    SYSTEMTIME fields = dateOf(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                               static_cast<int>(static_cast<unsigned>(date.day())));
    fields.wDayOfWeek = static_cast<WORD>(weekday(day).c_encoding());
    return fields;
}

void expectFields(const SYSTEMTIME &actual, const SYSTEMTIME &expected)
{
    EXPECT_EQ(actual.wYear, expected.wYear);
    EXPECT_EQ(actual.wMonth, expected.wMonth);
    EXPECT_EQ(actual.wDay, expected.wDay);
    EXPECT_EQ(actual.wDayOfWeek, expected.wDayOfWeek);
    EXPECT_EQ(actual.wHour, expected.wHour);
    EXPECT_EQ(actual.wMinute, expected.wMinute);
    EXPECT_EQ(actual.wSecond, expected.wSecond);
    EXPECT_EQ(actual.wMilliseconds, expected.wMilliseconds);
}

/// The week by the international standard, from the Thursday of the day's week.
int isoWeek(sys_days day)
{
    const unsigned fromMonday = (weekday(day).iso_encoding() - 1);
    const sys_days thursday = day - days(fromMonday) + days(3);
    const sys_days newYear = year_month_day(thursday).year() / January / 1;
    return static_cast<int>((thursday - newYear).count() / 7 + 1);
}

TEST(DateTools, LeapYearsFollowTheJulianRuleUpTo1752)
{
    EXPECT_TRUE(isleapyear(1700));
    EXPECT_TRUE(isleapyear(1752));
    EXPECT_FALSE(isleapyear(1751));
    EXPECT_TRUE(isleapyear(1500));
}

TEST(DateTools, LeapYearsFollowTheGregorianRuleAfter1752)
{
    EXPECT_TRUE(isleapyear(2000));
    EXPECT_TRUE(isleapyear(2400));
    EXPECT_TRUE(isleapyear(2024));
    EXPECT_FALSE(isleapyear(1800));
    EXPECT_FALSE(isleapyear(1900));
    EXPECT_FALSE(isleapyear(2100));
    EXPECT_FALSE(isleapyear(2023));
}

TEST(DateTools, MultiplesOf4000AreNoLeapYears)
{
    EXPECT_FALSE(isleapyear(4000));
    EXPECT_FALSE(isleapyear(8000));
}

TEST(DateTools, DayOfYearCountsFromOneThroughAllMonths)
{
    static constexpr int firstDays[] = {1, 32, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335};
    for (int month = 1; month <= 12; ++month)
    {
        EXPECT_EQ(getdayofyear(dateOf(2023, month, 1)), firstDays[month - 1]) << month;
        EXPECT_EQ(getdayofyear(dateOf(2024, month, 1)), firstDays[month - 1] + (month > 2 ? 1 : 0)) << month;
    }
    EXPECT_EQ(getdayofyear(dateOf(2023, 12, 31)), 365);
    EXPECT_EQ(getdayofyear(dateOf(2024, 12, 31)), 366);
    EXPECT_EQ(getdayofyear(dateOf(2024, 2, 29)), 60);
    EXPECT_EQ(getdayofyear(dateOf(4000, 12, 31)), 365);
}

TEST(DateTools, DayOfYearOfAMonthThatDoesNotExistIsZero)
{
    EXPECT_EQ(getdayofyear(dateOf(2023, 0, 10)), 0);
    EXPECT_EQ(getdayofyear(dateOf(2023, 13, 10)), 0);
}

TEST(DateTools, MonthsHaveTheirLengths)
{
    static constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; ++month)
    {
        EXPECT_EQ(dayspermonth(month, 2023), lengths[month - 1]) << month;
    }
    EXPECT_EQ(dayspermonth(2, 2024), 29);
    EXPECT_EQ(dayspermonth(2, 2000), 29);
    EXPECT_EQ(dayspermonth(2, 2100), 28);
    EXPECT_EQ(dayspermonth(2, 1700), 29);
}

TEST(DateTools, IncrementDayRollsOverTheMonthWithTheWeekday)
{
    SYSTEMTIME date = dateOf(2006, 1, 31, 9, 30, 15, 250);
    incrementday(&date, 1);
    SYSTEMTIME expected = dateOf(2006, 2, 1, 9, 30, 15, 250);
    expected.wDayOfWeek = 3; // a Wednesday
    expectFields(date, expected);
}

TEST(DateTools, IncrementDayGoesBackOverNewYear)
{
    SYSTEMTIME date = dateOf(2024, 1, 1);
    incrementday(&date, -1);
    SYSTEMTIME expected = dateOf(2023, 12, 31);
    expected.wDayOfWeek = 0;
    expectFields(date, expected);
}

TEST(DateTools, IncrementDayAgreesWithTheCalendarForRandomSteps)
{
    std::mt19937 random(17);
    std::uniform_int_distribution<int> start(-100'000, 100'000);
    std::uniform_int_distribution<int> step(-30'000, 30'000);
    for (int i = 0; i < 2'000; ++i)
    {
        const sys_days from{days(start(random))};
        const int by = step(random);
        SYSTEMTIME date = fieldsOf(from);
        incrementday(&date, by);
        expectFields(date, fieldsOf(from + days(by)));
    }
}

TEST(DateTools, IncrementDayLeavesADateThatDoesNotExist)
{
    SYSTEMTIME date = dateOf(2023, 2, 30);
    incrementday(&date, 5);
    expectFields(date, dateOf(2023, 2, 30));
}

TEST(DateTools, AMoveBeyondTheCalendarLeavesTheDate)
{
    SYSTEMTIME date = dateOf(1601, 1, 1);
    date.wDayOfWeek = 1;
    const SYSTEMTIME before = date;
    incrementday(&date, -1);
    expectFields(date, before);
    SystemTimeDecrement(&date, INT64_MAX);
    SystemTimeDecrement(&date, INT64_MIN);
    SYSTEMTIME late = dateOf(2006, 1, 1);
    SystemTimeIncrement(&late, INT64_MAX);
    EXPECT_EQ(late.wYear, 2006);
    expectFields(date, before);
}

TEST(DateTools, SecondsAreAddedAndTakenAway)
{
    SYSTEMTIME date = dateOf(2023, 12, 31, 23, 59, 58);
    addtime(&date, 3);
    SYSTEMTIME expected = dateOf(2024, 1, 1, 0, 0, 1);
    expected.wDayOfWeek = 1;
    expectFields(date, expected);
    subtract5sec(&date);
    expected = dateOf(2023, 12, 31, 23, 59, 56);
    expected.wDayOfWeek = 0;
    expectFields(date, expected);
    subtractsec(&date, 86'400);
    expected = dateOf(2023, 12, 30, 23, 59, 56);
    expected.wDayOfWeek = 6;
    expectFields(date, expected);
}

TEST(DateTools, TicksAreAddedAndTakenAway)
{
    SYSTEMTIME date = dateOf(2006, 5, 17);
    SystemTimeIncrement(&date, 864'000'000'000 + 600'000'000 + 10'000'000 + 10'000);
    SYSTEMTIME expected = dateOf(2006, 5, 18, 0, 1, 1, 1);
    expected.wDayOfWeek = 4;
    expectFields(date, expected);
    SystemTimeDecrement(&date, 864'000'000'000);
    expected.wDay = 17;
    expected.wDayOfWeek = 3;
    expectFields(date, expected);
}

TEST(DateTools, DifferenceIsFirstLessSecondInTicks)
{
    EXPECT_EQ(SystemTimeDiff(dateOf(2006, 5, 18), dateOf(2006, 5, 17)), 864'000'000'000);
    EXPECT_EQ(SystemTimeDiff(dateOf(2006, 5, 17), dateOf(2006, 5, 17, 0, 1)), -600'000'000);
    EXPECT_EQ(SystemTimeDiff(dateOf(2006, 2, 30), dateOf(2006, 5, 17)), 0);
}

TEST(DateTools, SubtractedTimesReadAsADateOf1601)
{
    SYSTEMTIME expected = dateOf(1601, 1, 2);
    expected.wDayOfWeek = 2;
    expectFields(subtractsystemtime(dateOf(2006, 5, 17), dateOf(2006, 5, 18)), expected);

    expected = dateOf(1601, 1, 4, 2, 30);
    expected.wDayOfWeek = 4;
    expectFields(subtractsystemtime(dateOf(2006, 5, 30, 22, 0), dateOf(2006, 6, 3, 0, 30)), expected);

    expected = dateOf(1601, 1, 1);
    expected.wDayOfWeek = 1;
    expectFields(subtractsystemtime(dateOf(2006, 5, 18), dateOf(2006, 5, 17)), expected);
}

TEST(DateTools, MinutesBetweenDoNotCountSeconds)
{
    const SYSTEMTIME late = dateOf(2006, 5, 17, 10, 1, 0);
    const SYSTEMTIME early = dateOf(2006, 5, 17, 10, 0, 59);
    EXPECT_EQ(TimeDiffInMinutes(&late, &early), 1);
    EXPECT_EQ(TimeDiffInMinutes(&early, &late), -1);
    const SYSTEMTIME dayBefore = dateOf(2006, 5, 16, 23, 50, 30);
    EXPECT_EQ(TimeDiffInMinutes(&late, &dayBefore), 611);
    EXPECT_EQ(TimeDiffInMinutes(&dayBefore, &late), -611);
}

TEST(DateTools, MinutesBetweenVariantDatesAreRoundedToTheSecondFirst)
{
    EXPECT_EQ(TimeDiffInMinutes(39000.5, 39000.25), 360);
    EXPECT_EQ(TimeDiffInMinutes(39000.25, 39001.5), -1800);
    // The last digits of 10:10 less than the exact value must not cost a minute.
    const double tenPastTen = 39000.0 + (10.0 * 60 + 10) / 1440 - 1e-9;
    EXPECT_EQ(TimeDiffInMinutes(tenPastTen, 39000.0), 610);
}

TEST(DateTools, OneDayIsTheSameWholeDayWithoutFlag)
{
    EXPECT_TRUE(IsOneDay(39000.1, 39000.9, 0));
    EXPECT_FALSE(IsOneDay(39000.1, 39000.9, 1));
    EXPECT_FALSE(IsOneDay(39000.9, 39001.0, 0));
    EXPECT_TRUE(IsOneDay(39000.0, 39000.0, 0));
}

TEST(DateTools, WeekNumbersAreIsoButForFiveDaysFrom1990To2030)
{
    const std::map<sys_days, int> runningOver{
        {1993y / 1 / 2, 54}, {1993y / 1 / 3, 54}, {2021y / 1 / 2, 54}, {2021y / 1 / 3, 54}, {2017y / 1 / 1, 53}};
    for (sys_days day = 1990y / 1 / 1; day <= sys_days(2030y / 12 / 31); day += days(1))
    {
        const SYSTEMTIME date = fieldsOf(day);
        const auto odd = runningOver.find(day);
        const int expected = odd == runningOver.end() ? isoWeek(day) : odd->second;
        ASSERT_EQ(weeknumber(date.wYear, date.wMonth, date.wDay), expected)
            << date.wYear << '-' << date.wMonth << '-' << date.wDay;
        if (odd != runningOver.end())
        {
            EXPECT_NE(isoWeek(day), odd->second);
        }
    }
}
} // namespace
