// Moments: fields, ticks and variant dates against the standard library's calendar, day by day.
#include "platform/clock.h"
#include "platform/kernel.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <thread>

namespace
{
using namespace std::chrono;
using zb::test::describe;
using zb::test::makeFileTime;
using zb::test::makeSystemTime;

constexpr SYSTEMTIME untouched{7, 7, 7, 7, 7, 7, 7, 7};

SYSTEMTIME fieldsOf(sys_days day)
{
    const year_month_day date(day);
    return SYSTEMTIME{static_cast<WORD>(int(date.year())),
                      static_cast<WORD>(unsigned(date.month())),
                      static_cast<WORD>(weekday(day).c_encoding()),
                      static_cast<WORD>(unsigned(date.day())),
                      0,
                      0,
                      0,
                      0};
}

bool same(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Whether `holds(day, fields)` for each day of the years. One plain answer a day, since there are millions of them.
template <typename Check>
testing::AssertionResult forEachDay(int firstYear, int lastYear, Check holds)
{
    const sys_days end = sys_days(year(lastYear) / 12 / 31);
    for (sys_days day = sys_days(year(firstYear) / 1 / 1); day <= end; day += days(1))
    {
        if (!holds(day, fieldsOf(day)))
        {
            return testing::AssertionFailure() << describe(fieldsOf(day));
        }
    }
    return testing::AssertionSuccess();
}

void setSecondOfDay(SYSTEMTIME &fields, int second)
{
    fields.wHour = static_cast<WORD>(second / 3600);
    fields.wMinute = static_cast<WORD>(second / 60 % 60);
    fields.wSecond = static_cast<WORD>(second % 60);
}

/// Another time of day each day, through all of them.
int secondFor(std::int64_t days)
{
    return static_cast<int>(std::abs(days * 7919) % 86'400);
}

TEST(Clock, EveryDayFrom1601To9999HasItsTicksAndComesBack)
{
    const sys_days first = sys_days(year(1601) / 1 / 1);
    const auto holds = [&](sys_days day, SYSTEMTIME fields)
    {
        const int second = secondFor((day - first).count());
        setSecondOfDay(fields, second);
        fields.wMilliseconds = static_cast<WORD>(second % 1000);
        const LONGLONG expected = ((day - first).count() * 86'400LL + second) * 10'000'000 + second % 1000 * 10'000LL;
        FILETIME time{};
        SYSTEMTIME back = untouched;
        return SystemTimeToFileTime(&fields, &time) != 0 && zb::ticksOf(time) == expected &&
               FileTimeToSystemTime(&time, &back) != 0 && same(back, fields);
    };
    EXPECT_TRUE(forEachDay(1601, 9999, holds));
}

TEST(Clock, EveryDayFrom100To9999HasItsVariantDateAndComesBack)
{
    const sys_days zero = sys_days(year(1899) / 12 / 30);
    const auto holds = [&](sys_days day, SYSTEMTIME fields)
    {
        const auto days = (day - zero).count();
        const int second = secondFor(days);
        setSecondOfDay(fields, second);
        const double fraction = second / 86'400.0;
        double date = 0;
        SYSTEMTIME back = untouched;
        return SystemTimeToVariantTime(&fields, &date) != 0 &&
               date == (days >= 0 ? days + fraction : days - fraction) && VariantTimeToSystemTime(date, &back) != 0 &&
               same(back, fields);
    };
    EXPECT_TRUE(forEachDay(100, 9999, holds));
}

TEST(Clock, EverySecondOfADayComesBackFromItsVariantDate)
{
    for (const int yearNumber : {100, 1899, 1900, 2026, 9999})
    {
        SYSTEMTIME fields = fieldsOf(sys_days(year(yearNumber) / 12 / 31));
        for (int second = 0; second < 86'400; ++second)
        {
            setSecondOfDay(fields, second);
            double date = 0;
            SYSTEMTIME back = untouched;
            const bool converted =
                SystemTimeToVariantTime(&fields, &date) != 0 && VariantTimeToSystemTime(date, &back) != 0;
            if (!converted || !same(back, fields))
            {
                FAIL() << describe(fields) << ' ' << describe(back);
            }
        }
    }
}

TEST(Clock, VariantDatesCountFrom1899)
{
    double date = 0;
    SYSTEMTIME fields = makeSystemTime(1899, 12, 30, 12);
    ASSERT_TRUE(SystemTimeToVariantTime(&fields, &date));
    EXPECT_EQ(date, 0.5);
    fields = makeSystemTime(1899, 12, 29, 18);
    ASSERT_TRUE(SystemTimeToVariantTime(&fields, &date));
    EXPECT_EQ(date, -1.75) << "before day 0 the fraction counts away from zero";
    fields = makeSystemTime(2026, 3, 2, 9);
    ASSERT_TRUE(SystemTimeToVariantTime(&fields, &date));
    EXPECT_EQ(date, 46'083.375);
    fields.wMilliseconds = 999;
    ASSERT_TRUE(SystemTimeToVariantTime(&fields, &date));
    EXPECT_EQ(date, 46'083.375) << "milliseconds are left out";
    EXPECT_EQ(zb::daysFrom1601ToVariantZero, 109'205);
}

std::string ofVariant(double date)
{
    SYSTEMTIME fields = untouched;
    return VariantTimeToSystemTime(date, &fields) != 0 ? describe(fields) : same(fields, untouched) ? "no" : "touched";
}

TEST(Clock, VariantDatesRoundToTheNearestSecond)
{
    EXPECT_EQ(ofVariant(1 + 0.4 / 86'400), "1899-12-31 00:00:00");
    EXPECT_EQ(ofVariant(1 + 0.6 / 86'400), "1899-12-31 00:00:01");
    EXPECT_EQ(ofVariant(1 - 0.4 / 86'400), "1899-12-31 00:00:00") << "up into the next day";
    EXPECT_EQ(ofVariant(-1 - 86'399.6 / 86'400), "1899-12-30 00:00:00");
    EXPECT_EQ(ofVariant(-0.25), "1899-12-30 06:00:00");
    EXPECT_EQ(ofVariant(949998.0), "4501-01-01 00:00:00");
}

TEST(Clock, VariantDatesOutsideTheYears100To9999AreRefused)
{
    EXPECT_EQ(ofVariant(-657'434.0), "0100-01-01 00:00:00");
    EXPECT_EQ(ofVariant(-657'434.5), "0100-01-01 12:00:00");
    EXPECT_EQ(ofVariant(-657'435.0), "no");
    EXPECT_EQ(ofVariant(2'958'465.0), "9999-12-31 00:00:00");
    EXPECT_EQ(ofVariant(2'958'465.0 + 86'399.0 / 86'400), "9999-12-31 23:59:59");
    EXPECT_EQ(ofVariant(2'958'465.0 + 86'399.8 / 86'400), "no") << "rounds into the year 10000";
    EXPECT_EQ(ofVariant(2'958'466.0), "no");
    EXPECT_EQ(ofVariant(std::numeric_limits<double>::quiet_NaN()), "no");
    EXPECT_EQ(ofVariant(std::numeric_limits<double>::infinity()), "no");
    EXPECT_EQ(ofVariant(-1e300), "no");
    EXPECT_EQ(VariantTimeToSystemTime(1, nullptr), 0);
}

/// Fields that name no moment in any form.
std::vector<SYSTEMTIME> impossibleFields()
{
    std::vector<SYSTEMTIME> all;
    const auto add = [&](auto change)
    {
        SYSTEMTIME fields = makeSystemTime(2026, 3, 2, 9);
        change(fields);
        all.push_back(fields);
    };
    add([](SYSTEMTIME &f) { f.wMonth = 0; });
    add([](SYSTEMTIME &f) { f.wMonth = 13; });
    add([](SYSTEMTIME &f) { f.wDay = 0; });
    add([](SYSTEMTIME &f) { f.wDay = 32; });
    add([](SYSTEMTIME &f) { f.wMonth = 2, f.wDay = 30; });
    add([](SYSTEMTIME &f) { f.wMonth = 2, f.wDay = 29; });
    add([](SYSTEMTIME &f) { f.wYear = 2100, f.wMonth = 2, f.wDay = 29; });
    add([](SYSTEMTIME &f) { f.wMonth = 4, f.wDay = 31; });
    add([](SYSTEMTIME &f) { f.wHour = 24; });
    add([](SYSTEMTIME &f) { f.wMinute = 60; });
    add([](SYSTEMTIME &f) { f.wSecond = 60; });
    add([](SYSTEMTIME &f) { f.wMilliseconds = 1000; });
    add([](SYSTEMTIME &f) { f.wYear = 0; });
    add([](SYSTEMTIME &f) { f.wYear = 65535; });
    return all;
}

TEST(Clock, FieldsThatNameNoMomentAreRefusedAndTheTargetStays)
{
    for (const SYSTEMTIME &fields : impossibleFields())
    {
        FILETIME time{11, 22};
        SetLastError(0);
        EXPECT_FALSE(SystemTimeToFileTime(&fields, &time)) << describe(fields);
        EXPECT_EQ(GetLastError(), 87U);
        EXPECT_EQ(time.dwLowDateTime, 11U);
        EXPECT_EQ(time.dwHighDateTime, 22U);
        double date = 4.5;
        EXPECT_FALSE(SystemTimeToVariantTime(&fields, &date)) << describe(fields);
        EXPECT_EQ(date, 4.5);
    }
}

bool hasTicks(int yearNumber)
{
    SYSTEMTIME fields{static_cast<WORD>(yearNumber), 6, 0, 1, 0, 0, 0, 0};
    FILETIME time{};
    return SystemTimeToFileTime(&fields, &time) != 0;
}

bool hasVariantDate(int yearNumber)
{
    SYSTEMTIME fields{static_cast<WORD>(yearNumber), 6, 0, 1, 0, 0, 0, 0};
    double date = 0;
    return SystemTimeToVariantTime(&fields, &date) != 0;
}

TEST(Clock, EachFormHasItsYears)
{
    EXPECT_FALSE(hasTicks(1600));
    EXPECT_TRUE(hasTicks(1601));
    EXPECT_TRUE(hasTicks(30'827));
    EXPECT_FALSE(hasTicks(30'828));
    EXPECT_FALSE(hasVariantDate(99));
    EXPECT_TRUE(hasVariantDate(100));
    EXPECT_TRUE(hasVariantDate(9'999));
    EXPECT_FALSE(hasVariantDate(10'000));
}

TEST(Clock, TheDayOfWeekIsNotLookedAtAndAlwaysFilled)
{
    SYSTEMTIME fields = makeSystemTime(2026, 3, 2);
    fields.wDayOfWeek = 99;
    FILETIME time{};
    ASSERT_TRUE(SystemTimeToFileTime(&fields, &time));
    ASSERT_TRUE(FileTimeToSystemTime(&time, &fields));
    EXPECT_EQ(fields.wDayOfWeek, 1) << "a Monday";
}

TEST(Clock, TimesWithTheHighestBitAreRefused)
{
    SYSTEMTIME fields = untouched;
    const FILETIME last{0xFFFFFFFFU, 0x7FFFFFFFU};
    EXPECT_TRUE(FileTimeToSystemTime(&last, &fields));
    EXPECT_EQ(describe(fields), "30828-09-14 02:48:05");
    fields = untouched;
    const FILETIME beyond{0, 0x80000000U};
    SetLastError(0);
    EXPECT_FALSE(FileTimeToSystemTime(&beyond, &fields));
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_TRUE(same(fields, untouched));
    EXPECT_FALSE(FileTimeToSystemTime(nullptr, &fields));
    EXPECT_FALSE(SystemTimeToFileTime(nullptr, nullptr));
}

TEST(Clock, ComparesTicksAsUnsignedNumbers)
{
    const FILETIME small{5, 0};
    const FILETIME middle{0, 1};
    const FILETIME large{0, 0x80000000U};
    EXPECT_EQ(CompareFileTime(&small, &middle), -1);
    EXPECT_EQ(CompareFileTime(&middle, &small), 1);
    EXPECT_EQ(CompareFileTime(&middle, &middle), 0);
    EXPECT_EQ(CompareFileTime(&large, &middle), 1);
}

TEST(Clock, TicksJoinTheirHalves)
{
    EXPECT_EQ(zb::ticksOf(FILETIME{1, 2}), 0x200000001LL);
    EXPECT_EQ(zb::fileTimeOf(0x200000001LL).dwLowDateTime, 1U);
    EXPECT_EQ(zb::fileTimeOf(0x200000001LL).dwHighDateTime, 2U);
    EXPECT_EQ(zb::ticksPerDay, 864'000'000'000LL);
}

TEST(Clock, TickCountCountsMilliseconds)
{
    const DWORD before = GetTickCount();
    std::this_thread::sleep_for(milliseconds(30));
    const DWORD passed = GetTickCount() - before;
    EXPECT_GE(passed, 29U);
    EXPECT_LT(passed, 10'000U);
}

class DeviceClock : public zb::test::DeviceTest
{
};

TEST_F(DeviceClock, NowIsTheDevicesClock)
{
    SYSTEMTIME now{};
    GetSystemTime(&now);
    EXPECT_EQ(describe(now), "2026-03-02 09:00:00");
    EXPECT_EQ(now.wDayOfWeek, 1);
    GetLocalTime(&now);
    EXPECT_EQ(describe(now), "2026-03-02 10:00:00") << "Berlin, winter";
    device.setClock(makeFileTime(2026, 7, 1, 22, 30));
    GetLocalTime(&now);
    EXPECT_EQ(describe(now), "2026-07-02 00:30:00") << "Berlin, summer";
    FILETIME ticks{};
    GetSystemTimeAsFileTime(&ticks);
    EXPECT_EQ(describe(ticks), "2026-07-01 22:30:00");
    device.setZone("America/St_Johns");
    GetLocalTime(&now);
    EXPECT_EQ(describe(now), "2026-07-01 20:00:00");
}

TEST_F(DeviceClock, LocalTicksMoveByTheOffsetThatHoldsNow)
{
    const FILETIME summer = makeFileTime(2026, 7, 1, 12);
    FILETIME moved{};
    ASSERT_TRUE(FileTimeToLocalFileTime(&summer, &moved));
    EXPECT_EQ(describe(moved), "2026-07-01 13:00:00") << "it is winter now";
    ASSERT_TRUE(LocalFileTimeToFileTime(&moved, &moved));
    EXPECT_EQ(describe(moved), "2026-07-01 12:00:00");
    device.setClock(summer);
    ASSERT_TRUE(FileTimeToLocalFileTime(&summer, &moved));
    EXPECT_EQ(describe(moved), "2026-07-01 14:00:00");
}

TEST_F(DeviceClock, LocalTicksThatCannotBeAreRefused)
{
    FILETIME target{1, 2};
    const FILETIME beyond{0, 0x80000000U};
    const FILETIME early{0, 0};
    const FILETIME late{0xFFFFFFFFU, 0x7FFFFFFFU};
    EXPECT_FALSE(FileTimeToLocalFileTime(&beyond, &target));
    EXPECT_FALSE(LocalFileTimeToFileTime(&early, &target)) << "before 1601";
    EXPECT_FALSE(FileTimeToLocalFileTime(&late, &target));
    SetLastError(0);
    EXPECT_FALSE(FileTimeToLocalFileTime(nullptr, &target));
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(target.dwLowDateTime, 1U);
    EXPECT_EQ(target.dwHighDateTime, 2U);
}
} // namespace
