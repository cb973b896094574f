// Zones: conversions of any zone record, the dates of its changes, and the offsets of days.
#include "core/datetools.h"

#include "core/LocalTimeConverter.h"
#include "platform/clock.h"
#include "platform/locale.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{
/// A change: week 5 is the last one of the month.
SYSTEMTIME rule(int month, int week, int weekday, int hour, int minute = 0)
{
    return SYSTEMTIME{0,
                      static_cast<WORD>(month),
                      static_cast<WORD>(weekday),
                      static_cast<WORD>(week),
                      static_cast<WORD>(hour),
                      static_cast<WORD>(minute),
                      0,
                      0};
}

SYSTEMTIME dateOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int milliseconds = 0)
{
    return SYSTEMTIME{static_cast<WORD>(year),   static_cast<WORD>(month),       0,
                      static_cast<WORD>(day),    static_cast<WORD>(hour),        static_cast<WORD>(minute),
                      static_cast<WORD>(second), static_cast<WORD>(milliseconds)};
}

TIME_ZONE_INFORMATION zoneOf(LONG bias, LONG daylightBias, SYSTEMTIME toDaylight, SYSTEMTIME toStandard,
                             LONG standardBias = 0)
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = bias;
    zone.DaylightBias = daylightBias;
    zone.StandardBias = standardBias;
    zone.DaylightDate = toDaylight;
    zone.StandardDate = toStandard;
    return zone;
}

TIME_ZONE_INFORMATION london()
{
    return zoneOf(0, -60, rule(3, 5, 0, 1), rule(10, 5, 0, 2));
}

TIME_ZONE_INFORMATION berlin()
{
    return zoneOf(-60, -60, rule(3, 5, 0, 2), rule(10, 5, 0, 3));
}

TIME_ZONE_INFORMATION sydney()
{
    return zoneOf(-600, -60, rule(10, 1, 0, 2), rule(4, 1, 0, 3));
}

std::string text(const SYSTEMTIME &t)
{
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d.%03d", t.wYear, t.wMonth, t.wDay, t.wHour,
                  t.wMinute, t.wSecond, t.wMilliseconds);
    return buffer;
}

std::string toLocal(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &utc)
{
    SYSTEMTIME local{};
    int isDst = 7;
    EXPECT_EQ(CeSystemTimeToTzSpecificLocalTime(&zone, &utc, &local, &isDst), 1);
    return text(local) + (isDst == 1 ? " D" : isDst == 0 ? " S" : " ?");
}

std::string toUtc(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &local, int isDst)
{
    SYSTEMTIME utc{};
    EXPECT_EQ(CeTzSpecificLocalTimeToSystemTime(&zone, &local, isDst, &utc), 1);
    return text(utc);
}

LONGLONG ticks(const SYSTEMTIME &time)
{
    FILETIME moment{};
    EXPECT_TRUE(SystemTimeToFileTime(&time, &moment)) << text(time);
    return zb::ticksOf(moment);
}

TEST(DateToolsZone, TheInstantOfTheSpringChangeCountsAsChanged)
{
    EXPECT_EQ(toLocal(london(), dateOf(2026, 3, 29, 0, 59, 59)), "2026-03-29 00:59:59.000 S");
    EXPECT_EQ(toLocal(london(), dateOf(2026, 3, 29, 1, 0, 0)), "2026-03-29 02:00:00.000 D");
    EXPECT_EQ(toLocal(berlin(), dateOf(2026, 3, 29, 0, 59, 59, 999)), "2026-03-29 01:59:59.999 S");
    EXPECT_EQ(toLocal(berlin(), dateOf(2026, 3, 29, 1, 0, 0)), "2026-03-29 03:00:00.000 D");
}

TEST(DateToolsZone, TheInstantOfTheAutumnChangeCountsAsChanged)
{
    EXPECT_EQ(toLocal(london(), dateOf(2026, 10, 25, 0, 59, 59)), "2026-10-25 01:59:59.000 D");
    EXPECT_EQ(toLocal(london(), dateOf(2026, 10, 25, 1, 0, 0)), "2026-10-25 01:00:00.000 S");
}

TEST(DateToolsZone, SouthernZonesHaveDaylightTimeOverNewYear)
{
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 1, 1, 0, 0)), "2026-01-01 11:00:00.000 D");
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 7, 1, 0, 0)), "2026-07-01 10:00:00.000 S");
    EXPECT_EQ(toLocal(sydney(), dateOf(2025, 12, 31, 12, 59)), "2025-12-31 23:59:00.000 D");
    EXPECT_EQ(toLocal(sydney(), dateOf(2025, 12, 31, 13, 30)), "2026-01-01 00:30:00.000 D");
    // First Sundays: 5 April 03:00 daylight time, 4 October 02:00 standard time; both are 16:00 UTC the day before.
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 4, 4, 15, 59)), "2026-04-05 02:59:00.000 D");
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 4, 4, 16, 0)), "2026-04-05 02:00:00.000 S");
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 10, 3, 15, 59)), "2026-10-04 01:59:00.000 S");
    EXPECT_EQ(toLocal(sydney(), dateOf(2026, 10, 3, 16, 0)), "2026-10-04 03:00:00.000 D");
}

TEST(DateToolsZone, NorthernStandardTimeHoldsOverNewYear)
{
    EXPECT_EQ(toLocal(berlin(), dateOf(2025, 12, 31, 22, 59)), "2025-12-31 23:59:00.000 S");
    EXPECT_EQ(toLocal(berlin(), dateOf(2025, 12, 31, 23, 30)), "2026-01-01 00:30:00.000 S");
    EXPECT_EQ(toLocal(berlin(), dateOf(2025, 12, 31, 22, 30)), "2025-12-31 23:30:00.000 S");
}

TEST(DateToolsZone, AZoneWithoutChangesGetsItsBiasAlone)
{
    const TIME_ZONE_INFORMATION zone = zoneOf(-330, -60, rule(3, 5, 0, 2), SYSTEMTIME{}, 15);
    EXPECT_EQ(toLocal(zone, dateOf(2026, 7, 1, 20, 0)), "2026-07-02 01:30:00.000 S");
    EXPECT_EQ(toLocal(zone, dateOf(2026, 3, 29, 20, 0)), "2026-03-30 01:30:00.000 S");
}

TEST(DateToolsZone, EqualMonthsGiveStandardTimeWithItsBias)
{
    const TIME_ZONE_INFORMATION zone = zoneOf(0, -60, rule(5, 1, 0, 2), rule(5, 5, 0, 2), -20);
    EXPECT_EQ(toLocal(zone, dateOf(2026, 5, 15, 12, 0)), "2026-05-15 12:20:00.000 S");
}

TEST(DateToolsZone, AMomentThatDoesNotExistLeavesTheTarget)
{
    SYSTEMTIME local = dateOf(2001, 2, 3);
    int isDst = 7;
    const TIME_ZONE_INFORMATION zone = berlin();
    const SYSTEMTIME bad = dateOf(2026, 2, 30);
    EXPECT_EQ(CeSystemTimeToTzSpecificLocalTime(&zone, &bad, &local, &isDst), 1);
    EXPECT_EQ(text(local), "2001-02-03 00:00:00.000");
    EXPECT_EQ(isDst, 0);
    EXPECT_EQ(CeTzSpecificLocalTimeToSystemTime(&zone, &bad, 0, &local), 1);
    EXPECT_EQ(text(local), "2001-02-03 00:00:00.000");
    const SYSTEMTIME good = dateOf(2026, 7, 1, 10);
    CeSystemTimeToTzSpecificLocalTime(&zone, &good, &local, nullptr);
    EXPECT_EQ(text(local), "2026-07-01 12:00:00.000");
}

TEST(DateToolsZone, BackToUtcAddsTheBiasesThatTheCallerNames)
{
    const TIME_ZONE_INFORMATION zone = zoneOf(-60, -60, rule(3, 5, 0, 2), rule(10, 5, 0, 3), 5);
    EXPECT_EQ(toUtc(zone, dateOf(2026, 7, 1, 12, 0), 1), "2026-07-01 10:00:00.000");
    EXPECT_EQ(toUtc(zone, dateOf(2026, 1, 1, 0, 30), 0), "2025-12-31 23:35:00.000");
}

TEST(DateToolsZone, LaterThanTheChangeIsStrict)
{
    const SYSTEMTIME change = rule(3, 5, 0, 2);
    const auto later = [&](const SYSTEMTIME &t) { return LocalGreaterThanTransition(&t, &change); };
    EXPECT_FALSE(later(dateOf(2026, 2, 28, 23, 59)));
    EXPECT_TRUE(later(dateOf(2026, 4, 1)));
    EXPECT_FALSE(later(dateOf(2026, 3, 29, 1, 59, 59)));
    EXPECT_FALSE(later(dateOf(2026, 3, 29, 2, 0, 0)));
    EXPECT_TRUE(later(dateOf(2026, 3, 29, 2, 0, 0, 1)));
    EXPECT_TRUE(later(dateOf(2026, 3, 30)));
}

TEST(DateToolsZone, LaterThanAnAbsoluteChangeComparesItsOwnYear)
{
    const SYSTEMTIME change = dateOf(2025, 3, 30, 2);
    const SYSTEMTIME sameMonthNextYear = dateOf(2026, 3, 1);
    const SYSTEMTIME sameMonthBefore = dateOf(2024, 3, 31);
    EXPECT_TRUE(LocalGreaterThanTransition(&sameMonthNextYear, &change));
    EXPECT_FALSE(LocalGreaterThanTransition(&sameMonthBefore, &change));
}

TEST(DateToolsZone, RelativeChangesBecomeDates)
{
    const auto absolute = [](int year, SYSTEMTIME change)
    {
        SYSTEMTIME out{};
        ConvertToAbsolute(year, &change, &out);
        return text(out);
    };
    EXPECT_EQ(absolute(2026, rule(3, 5, 0, 2, 30)), "2026-03-29 02:30:00.000");
    // March 2025 has five Sundays, the 30th is the fifth; February 2026 has four, and the fifth means the last.
    EXPECT_EQ(absolute(2025, rule(3, 5, 0, 2)), "2025-03-30 02:00:00.000");
    EXPECT_EQ(absolute(2026, rule(2, 5, 0, 2)), "2026-02-22 02:00:00.000");
    EXPECT_EQ(absolute(2026, rule(4, 1, 0, 3)), "2026-04-05 03:00:00.000");
    EXPECT_EQ(absolute(2026, rule(11, 1, 0, 2)), "2026-11-01 02:00:00.000");
    EXPECT_EQ(absolute(2026, rule(9, 4, 6, 0)), "2026-09-26 00:00:00.000");
    EXPECT_EQ(absolute(2026, dateOf(2011, 5, 6, 7)), "2011-05-06 07:00:00.000");
}

TEST(DateToolsZone, FebruaryKeeps29DaysForChangesOnceALeapYearWasMet)
{
    // 1 February 2032 is a Sunday, so that the fifth Sunday is the 29th; it exists in that leap year, and from then on
    // the 29th is taken for there in a common year too: 2015's February begins on a Sunday.
    SYSTEMTIME out{};
    const SYSTEMTIME change = rule(2, 5, 0, 2);
    ConvertToAbsolute(2032, &change, &out);
    EXPECT_EQ(text(out), "2032-02-29 02:00:00.000");
    ConvertToAbsolute(2015, &change, &out);
    EXPECT_EQ(text(out), "2015-02-29 02:00:00.000");
}

TEST(DateToolsZone, WildRulesDoNoHarm)
{
    SYSTEMTIME out{};
    for (const WORD month : {WORD{0}, WORD{13}, WORD{65535}})
    {
        SYSTEMTIME change{0, month, 65535, 65535, 99, 99, 99, 9999};
        ConvertToAbsolute(2026, &change, &out);
        const TIME_ZONE_INFORMATION zone = zoneOf(-60, -60, change, rule(10, 5, 0, 3));
        toLocal(zone, dateOf(2026, 5, 1));
        zb::LocalTimeConverter converter(zone);
        LONGLONG local = 0;
        bool isDst = false;
        EXPECT_TRUE(converter.toLocal(ticks(dateOf(2026, 5, 1)), local, isDst));
    }
}

struct DayCase
{
    int month;
    int day;
    int start;
    int end;
    int isDst;
};

void expectOffsets(const TIME_ZONE_INFORMATION &zone, const DayCase &c)
{
    int start = 0;
    int end = 0;
    int isDst = 7;
    EXPECT_EQ(GetDayOffsets(2026, c.month, c.day, &zone, &start, &end, &isDst), 1);
    EXPECT_EQ(start, c.start) << c.month << '/' << c.day;
    EXPECT_EQ(end, c.end) << c.month << '/' << c.day;
    EXPECT_EQ(isDst, c.isDst) << c.month << '/' << c.day;
    EXPECT_EQ(IsInDST(2026, c.month, c.day, &zone), c.isDst) << c.month << '/' << c.day;
}

TEST(DateToolsZone, DaysOfChangesHave23And25Hours)
{
    for (const DayCase &c : {DayCase{3, 29, -60, 1320, 1},   // 1,380 minutes
                             DayCase{10, 25, -120, 1380, 0}, // 1,500 minutes
                             DayCase{3, 28, -60, 1380, 0}, DayCase{3, 30, -120, 1320, 1}, DayCase{7, 1, -120, 1320, 1},
                             DayCase{10, 24, -120, 1320, 1}, DayCase{10, 26, -60, 1380, 0}, DayCase{1, 1, -60, 1380, 0},
                             DayCase{12, 31, -60, 1380, 0}})
    {
        expectOffsets(berlin(), c);
    }
}

TEST(DateToolsZone, DayOffsetsOfSouthernZones)
{
    for (const DayCase &c : {DayCase{1, 1, -660, 780, 1}, DayCase{4, 5, -660, 840, 0}, DayCase{4, 6, -600, 840, 0},
                             DayCase{7, 1, -600, 840, 0}, DayCase{10, 4, -600, 780, 1}, DayCase{12, 31, -660, 780, 1}})
    {
        expectOffsets(sydney(), c);
    }
}

TEST(DateToolsZone, DayOffsetsCountTheStandardBiasOnlyWithChanges)
{
    TIME_ZONE_INFORMATION zone = berlin();
    zone.StandardBias = 10;
    expectOffsets(zone, {1, 1, -50, 1390, 0});
    expectOffsets(zone, {3, 29, -50, 1320, 1});
    expectOffsets(zone, {10, 25, -120, 1390, 0});
    zone.StandardDate.wMonth = 0;
    expectOffsets(zone, {7, 1, -60, 1380, 0});
}

TEST(DateToolsZone, ConversionAgreesWithTheFullZoneDataWithinTheYear)
{
    std::mt19937 random(23);
    for (const char *name : {"Europe/Berlin", "Europe/London", "America/New_York", "America/St_Johns", "Asia/Kolkata",
                             "Australia/Sydney", "Australia/Lord_Howe", "Pacific/Chatham", "Pacific/Auckland", "UTC",
                             "America/Santiago", "America/Los_Angeles"})
    {
        for (const int year : {2015, 2019, 2024, 2026})
        {
            const auto zone = zb::zoneRecord(name, year);
            ASSERT_TRUE(zone) << name;
            // The record holds the rules of one year, and a moment belongs to a year by its local date.
            const LONGLONG begin = ticks(dateOf(year, 1, 2));
            const LONGLONG end = ticks(dateOf(year, 12, 31));
            std::uniform_int_distribution<LONGLONG> seconds(begin / zb::ticksPerSecond, end / zb::ticksPerSecond);
            for (int i = 0; i < 300; ++i)
            {
                const FILETIME utc = zb::fileTimeOf(seconds(random) * zb::ticksPerSecond);
                SYSTEMTIME fields{};
                SYSTEMTIME local{};
                int isDst = 0;
                FileTimeToSystemTime(&utc, &fields);
                CeSystemTimeToTzSpecificLocalTime(&*zone, &fields, &local, &isDst);
                const auto offset = zb::zoneOffsetMinutes(name, utc);
                ASSERT_TRUE(offset);
                ASSERT_EQ(ticks(local) - zb::ticksOf(utc), *offset * zb::ticksPerMinute) << name << ' ' << text(fields);
            }
        }
    }
}

// --- The fast conversion -----------------------------------------------------------------------------------------

class ConverterCheck
{
  public:
    explicit ConverterCheck(const TIME_ZONE_INFORMATION &zone) : m_zone(zone), m_converter(zone)
    {
    }

    /// True when both ways give the same for a moment.
    ::testing::AssertionResult agrees(LONGLONG utc)
    {
        const FILETIME moment = zb::fileTimeOf(utc);
        SYSTEMTIME fields{};
        SYSTEMTIME expected{};
        int expectedDst = 0;
        if (!FileTimeToSystemTime(&moment, &fields))
        {
            return ::testing::AssertionFailure() << "bad moment";
        }
        CeSystemTimeToTzSpecificLocalTime(&m_zone, &fields, &expected, &expectedDst);
        LONGLONG local = 0;
        bool isDst = false;
        if (!m_converter.toLocal(utc, local, isDst))
        {
            return ::testing::AssertionFailure() << "refused " << text(fields);
        }
        FILETIME expectedTicks{};
        SystemTimeToFileTime(&expected, &expectedTicks);
        if (zb::ticksOf(expectedTicks) != local || isDst != (expectedDst != 0))
        {
            return ::testing::AssertionFailure() << text(fields) << " UTC is " << text(expected) << ' ' << expectedDst;
        }
        return ::testing::AssertionSuccess();
    }

  private:
    TIME_ZONE_INFORMATION m_zone;
    zb::LocalTimeConverter m_converter;
};

LONG pick(std::mt19937 &random, std::initializer_list<LONG> values)
{
    return values.begin()[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random)];
}

TIME_ZONE_INFORMATION randomZone(std::mt19937 &random)
{
    const auto number = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    const auto change = [&]
    {
        SYSTEMTIME date = rule(number(1, 12), number(1, 5), number(0, 6), number(0, 23), number(0, 1) * 30);
        if (number(0, 9) == 0)
        {
            date = dateOf(number(2000, 2040), number(1, 12), number(1, 28), number(0, 23));
        }
        return date;
    };
    return zoneOf(15 * number(-56, 56), pick(random, {-60, -60, -60, -30, -120, 0, 60, -1440, 3000}), change(),
                  change(), pick(random, {0, 0, 0, -20, 60}));
}

TEST(LocalTimeConverter, GivesExactlyWhatThePlainConversionGives)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<LONGLONG> anywhere(ticks(dateOf(1990, 1, 1)), ticks(dateOf(2050, 1, 1)));
    std::uniform_int_distribution<LONGLONG> near(-4 * zb::ticksPerHour, 4 * zb::ticksPerHour);
    for (int i = 0; i < 150; ++i)
    {
        const TIME_ZONE_INFORMATION zone = randomZone(random);
        ConverterCheck check(zone);
        for (int j = 0; j < 60; ++j)
        {
            const LONGLONG moment = anywhere(random);
            ASSERT_TRUE(check.agrees(moment)) << "zone " << i;
            // The hours around each change and around New Year are where the two could part.
            SYSTEMTIME fields{};
            const FILETIME asFileTime = zb::fileTimeOf(moment);
            FileTimeToSystemTime(&asFileTime, &fields);
            const LONGLONG bias = zone.Bias * zb::ticksPerMinute;
            for (const LONGLONG place :
                 {zb::ticksOfChange(fields.wYear, zone.DaylightDate) + bias,
                  zb::ticksOfChange(fields.wYear, zone.StandardDate) + bias, ticks(dateOf(fields.wYear, 1, 1)) + bias})
            {
                if (place > ticks(dateOf(1700, 1, 1)))
                {
                    ASSERT_TRUE(check.agrees(place + near(random))) << "zone " << i;
                    ASSERT_TRUE(check.agrees(place)) << "zone " << i;
                }
            }
        }
    }
}

TEST(LocalTimeConverter, AgreesAtTheEndsOfTheCalendar)
{
    ConverterCheck check(berlin());
    for (const SYSTEMTIME &place : {dateOf(1601, 1, 3), dateOf(1601, 12, 31, 23, 30), dateOf(1602, 1, 1),
                                    dateOf(1899, 12, 30), dateOf(9998, 12, 31, 23, 30), dateOf(20000, 6, 1)})
    {
        EXPECT_TRUE(check.agrees(ticks(place)));
    }
}

TEST(LocalTimeConverter, CutsMillisecondsOff)
{
    zb::LocalTimeConverter converter(berlin());
    LONGLONG local = 0;
    bool isDst = true;
    ASSERT_TRUE(converter.toLocal(ticks(dateOf(2026, 1, 5, 12, 0, 0, 3)) + 9'999, local, isDst));
    EXPECT_EQ(local, ticks(dateOf(2026, 1, 5, 13, 0, 0, 3)));
    EXPECT_FALSE(isDst);
}

TEST(LocalTimeConverter, RefusesMomentsBeyondTheCalendar)
{
    zb::LocalTimeConverter converter(berlin());
    LONGLONG local = 42;
    bool isDst = true;
    EXPECT_FALSE(converter.toLocal(-1, local, isDst));
    EXPECT_EQ(local, 42);
    EXPECT_TRUE(isDst);
}
} // namespace
