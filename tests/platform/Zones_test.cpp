// Zones of the system's tzdata: offsets against the C library's own reading of the same files, and records that give
// the same local times within their year.
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{
namespace fs = std::filesystem;
using zb::test::describe;
using zb::test::makeFileTime;
using zb::test::makeSystemTime;

constexpr LONGLONG ticksFrom1601To1970 = 116'444'736'000'000'000;

FILETIME momentOf(std::int64_t secondsSince1970)
{
    return zb::fileTimeOf(secondsSince1970 * zb::ticksPerSecond + ticksFrom1601To1970);
}

std::int64_t secondsOf(const FILETIME &time)
{
    return (zb::ticksOf(time) - ticksFrom1601To1970) / zb::ticksPerSecond;
}

/// Sets an environment variable and puts back what was there.
class EnvironmentScope
{
  public:
    EnvironmentScope(const char *name, const std::string &value) : m_name(name)
    {
        const char *before = std::getenv(name);
        m_before = before != nullptr ? std::optional<std::string>(before) : std::nullopt;
        setenv(name, value.c_str(), 1);
    }
    ~EnvironmentScope()
    {
        m_before ? setenv(m_name, m_before->c_str(), 1) : unsetenv(m_name);
    }
    EnvironmentScope(const EnvironmentScope &) = delete;
    EnvironmentScope &operator=(const EnvironmentScope &) = delete;

  private:
    const char *m_name;
    std::optional<std::string> m_before;
};

/// The C library in another zone.
class LibraryZone
{
  public:
    explicit LibraryZone(const std::string &name) : m_scope("TZ", ":" + name)
    {
        tzset();
    }
    long offsetAt(std::int64_t moment) const
    {
        const std::time_t time = moment;
        std::tm fields{};
        localtime_r(&time, &fields);
        return fields.tm_gmtoff;
    }

  private:
    EnvironmentScope m_scope;
};

const std::vector<std::string> &someZones()
{
    static const std::vector<std::string> zones = {
        "Europe/Berlin",    "Europe/London",   "Europe/Dublin",       "Europe/Istanbul",  "Europe/Moscow",
        "America/New_York", "America/Nuuk",    "America/Sao_Paulo",   "America/Santiago", "America/St_Johns",
        "America/Caracas",  "Asia/Kolkata",    "Asia/Gaza",           "Asia/Jerusalem",   "Asia/Kathmandu",
        "Asia/Pyongyang",   "Asia/Tehran",     "Africa/Casablanca",   "Africa/Cairo",     "Africa/Monrovia",
        "Australia/Sydney", "Australia/Eucla", "Australia/Lord_Howe", "Pacific/Apia",     "Pacific/Kiritimati",
        "Pacific/Chatham",  "Pacific/Norfolk", "Antarctica/Troll",    "Etc/GMT+12",       "UTC"};
    return zones;
}

/// In seconds; the offset in minutes is to the nearest.
long nearestMinute(long seconds)
{
    return std::lround(static_cast<double>(seconds) / 60.0);
}

TEST(Zones, OffsetsAgreeWithTheCLibrary)
{
    std::mt19937_64 random(17);
    std::uniform_int_distribution<std::int64_t> past(0, 67 * 31'556'952LL);
    std::uniform_int_distribution<std::int64_t> future(67 * 31'556'952LL, 400 * 31'556'952LL);
    for (const std::string &name : someZones())
    {
        const LibraryZone library(name);
        for (int i = 0; i < 3'000; ++i)
        {
            const std::int64_t moment = i % 3 == 0 ? future(random) : past(random);
            const auto offset = zb::zoneOffsetMinutes(name, momentOf(moment));
            ASSERT_TRUE(offset) << name;
            ASSERT_EQ(*offset, nearestMinute(library.offsetAt(moment))) << name << ' ' << moment;
        }
    }
}

/// Moments at which the C library's offset changes, by halving the days in which it does.
std::vector<std::int64_t> libraryChanges(const LibraryZone &library, int firstYear, int lastYear)
{
    std::vector<std::int64_t> changes;
    const std::int64_t day = 86'400;
    for (std::int64_t at = secondsOf(makeFileTime(firstYear, 1, 1)); at < secondsOf(makeFileTime(lastYear, 12, 31));
         at += day)
    {
        std::int64_t low = at;
        std::int64_t high = at + day;
        const long before = library.offsetAt(low);
        if (before == library.offsetAt(high))
        {
            continue;
        }
        while (high - low > 1)
        {
            const std::int64_t middle = (low + high) / 2;
            (library.offsetAt(middle) == before ? low : high) = middle;
        }
        changes.push_back(high);
    }
    return changes;
}

TEST(Zones, OffsetsChangeAtTheVerySecond)
{
    for (const char *name : {"Europe/Dublin", "America/Nuuk", "Australia/Lord_Howe", "Asia/Gaza", "Europe/Istanbul"})
    {
        const LibraryZone library(name);
        const std::vector<std::int64_t> changes = libraryChanges(library, 2010, 2045);
        EXPECT_FALSE(changes.empty()) << name;
        for (const std::int64_t change : changes)
        {
            EXPECT_EQ(zb::zoneOffsetMinutes(name, momentOf(change - 1)), library.offsetAt(change - 1) / 60) << name;
            EXPECT_EQ(zb::zoneOffsetMinutes(name, momentOf(change)), library.offsetAt(change) / 60) << name;
        }
    }
}

std::string toUtc(const char *zone, const SYSTEMTIME &local)
{
    const auto utc = zb::zoneLocalToUtc(zone, local);
    return utc ? describe(*utc) : "(none)";
}

TEST(Zones, LocalTimesComeBack)
{
    std::mt19937_64 random(19);
    std::uniform_int_distribution<std::int64_t> seconds(0, 100 * 31'556'952LL);
    for (const std::string &name : someZones())
    {
        const LibraryZone library(name);
        for (int i = 0; i < 1'000; ++i)
        {
            const std::int64_t moment = seconds(random);
            const FILETIME wall = momentOf(moment + library.offsetAt(moment));
            SYSTEMTIME local{};
            ASSERT_TRUE(FileTimeToSystemTime(&wall, &local));
            const auto utc = zb::zoneLocalToUtc(name, local);
            ASSERT_TRUE(utc);
            // A time that stands twice is the first of the two, so it may come back earlier, but with the same wall.
            const std::int64_t back = secondsOf(*utc);
            ASSERT_LE(back, moment) << name;
            ASSERT_EQ(back + library.offsetAt(back), moment + library.offsetAt(moment)) << name << ' ' << moment;
            if (back != moment)
            {
                ASSERT_GT(library.offsetAt(back), library.offsetAt(moment)) << name << ' ' << moment;
            }
        }
    }
}

TEST(Zones, ASkippedTimeCountsWithTheOffsetBeforeTheChange)
{
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 3, 29, 1, 59, 59)), "2026-03-29 00:59:59");
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 3, 29, 2)), "2026-03-29 01:00:00");
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 3, 29, 2, 30)), "2026-03-29 01:30:00");
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 3, 29, 3)), "2026-03-29 01:00:00");
    EXPECT_EQ(toUtc("America/New_York", makeSystemTime(2060, 3, 14, 2, 30)), "2060-03-14 07:30:00");
    EXPECT_EQ(toUtc("Pacific/Apia", makeSystemTime(2011, 12, 30, 12)), "2011-12-30 22:00:00") << "a day left out";
}

TEST(Zones, ATimeThatStandsTwiceIsTheFirst)
{
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 10, 25, 2, 30)), "2026-10-25 00:30:00");
    EXPECT_EQ(toUtc("Europe/Berlin", makeSystemTime(2026, 10, 25, 3)), "2026-10-25 02:00:00");
    EXPECT_EQ(toUtc("America/New_York", makeSystemTime(2026, 11, 1, 1, 30)), "2026-11-01 05:30:00");
    EXPECT_EQ(toUtc("Australia/Lord_Howe", makeSystemTime(2026, 4, 5, 1, 45)), "2026-04-04 14:45:00");
}

TEST(Zones, LocalTimesKeepTheirMilliseconds)
{
    SYSTEMTIME local = makeSystemTime(2026, 7, 1, 12);
    local.wMilliseconds = 321;
    const auto utc = zb::zoneLocalToUtc("Europe/Berlin", local);
    ASSERT_TRUE(utc);
    EXPECT_EQ(zb::ticksOf(*utc) % zb::ticksPerSecond, 321 * 10'000);
}

TEST(Zones, WhatIsNoDateOrNoZoneGivesNothing)
{
    SYSTEMTIME local = makeSystemTime(2026, 2, 28);
    local.wDay = 30;
    EXPECT_FALSE(zb::zoneLocalToUtc("Europe/Berlin", local));
    EXPECT_FALSE(zb::zoneLocalToUtc("Asia/Tokyo", makeSystemTime(1601, 1, 1))) << "before the first tick";
    EXPECT_TRUE(zb::zoneLocalToUtc("Asia/Tokyo", makeSystemTime(1601, 1, 2)));
    EXPECT_FALSE(zb::zoneLocalToUtc("Europe/Nowhere", makeSystemTime(2026, 1, 1)));
    EXPECT_FALSE(zb::zoneOffsetMinutes("Europe/Nowhere", momentOf(0)));
    EXPECT_FALSE(zb::zoneOffsetMinutes("UTC", FILETIME{0, 0x80000000U}));
    EXPECT_FALSE(zb::zoneRecord("Europe/Berlin", 1600));
    EXPECT_FALSE(zb::zoneRecord("Europe/Berlin", 40'000));
}

TEST(Zones, NamesNeverLeadOutOfTheFolder)
{
    for (const char *name : {"", "/", "/usr/share/zoneinfo/UTC", "../zoneinfo/UTC", "Europe/../UTC", "./UTC", "Europe",
                             "Europe/", "tzdata.zi", "zone.tab", "UTC ", "UTC\n", "Europe/Berlin\\", "%2e%2e/UTC"})
    {
        EXPECT_FALSE(zb::zoneRecord(name, 2026)) << name;
    }
    EXPECT_FALSE(zb::zoneRecord(std::string_view("UTC\0x", 5), 2026));
    EXPECT_FALSE(zb::zoneRecord(std::string(100'000, 'a'), 2026));
}

TEST(Zones, AnotherFolderIsTakenFromTheEnvironment)
{
    const zb::test::TemporaryFolder folder;
    fs::create_directories(folder.path() / "Own");
    fs::copy_file("/usr/share/zoneinfo/Asia/Kolkata", folder.path() / "Own" / "Place");
    std::ofstream(folder.path() / "Own" / "Text") << "no zone";
    fs::create_directories(folder.path() / "UTC");
    const EnvironmentScope scope("TZDIR", folder.path().string());
    EXPECT_EQ(zb::zoneOffsetMinutes("Own/Place", momentOf(0)), 330);
    EXPECT_FALSE(zb::zoneOffsetMinutes("Own/Text", momentOf(0)));
    EXPECT_EQ(zb::zoneOffsetMinutes("UTC", momentOf(0)), 0) << "known without tzdata";
}

// --- Records -----------------------------------------------------------------------------------------------------

/// "month/week/weekday hh:mm", "-" for none.
std::string rule(const SYSTEMTIME &date)
{
    if (date.wMonth == 0)
    {
        return "-";
    }
    char text[48];
    std::snprintf(text, sizeof text, "%s%d/%d/%d %02d:%02d", date.wYear == 0 ? "" : "absolute ", date.wMonth, date.wDay,
                  date.wDayOfWeek, date.wHour, date.wMinute);
    return text;
}

std::string record(const char *name, int year = 2026)
{
    const auto zone = zb::zoneRecord(name, year);
    if (!zone)
    {
        return "(none)";
    }
    EXPECT_EQ(zone->StandardBias, 0);
    return std::to_string(zone->Bias) + " " + std::to_string(zone->DaylightBias) + " D " + rule(zone->DaylightDate) +
           " S " + rule(zone->StandardDate) + " " + zb::toUtf8(zone->StandardName) + " " +
           zb::toUtf8(zone->DaylightName);
}

TEST(ZoneRecords, NorthernZones)
{
    EXPECT_EQ(record("Europe/Berlin"), "-60 -60 D 3/5/0 02:00 S 10/5/0 03:00 CET CEST");
    EXPECT_EQ(record("Europe/London"), "0 -60 D 3/5/0 01:00 S 10/5/0 02:00 GMT BST");
    EXPECT_EQ(record("America/New_York"), "300 -60 D 3/2/0 02:00 S 11/1/0 02:00 EST EDT");
    EXPECT_EQ(record("America/St_Johns"), "210 -60 D 3/2/0 02:00 S 11/1/0 02:00 NST NDT");
}

TEST(ZoneRecords, SouthernZones)
{
    EXPECT_EQ(record("Australia/Sydney"), "-600 -60 D 10/1/0 02:00 S 4/1/0 03:00 AEST AEDT");
    EXPECT_EQ(record("Pacific/Auckland"), "-720 -60 D 9/5/0 02:00 S 4/1/0 03:00 NZST NZDT");
    EXPECT_EQ(record("Pacific/Chatham"), "-765 -60 D 9/5/0 02:45 S 4/1/0 03:45 +1245 +1345");
    EXPECT_EQ(record("Australia/Lord_Howe"), "-630 -30 D 10/1/0 02:00 S 4/1/0 02:00 +1030 +11") << "half an hour";
}

TEST(ZoneRecords, ZonesWithoutDaylightTimeHaveTheirOffsetAlone)
{
    EXPECT_EQ(record("UTC"), "0 0 D - S - UTC UTC");
    EXPECT_EQ(record("Asia/Kolkata"), "-330 0 D - S - IST IST");
    EXPECT_EQ(record("Asia/Kathmandu"), "-345 0 D - S - +0545 +0545");
    EXPECT_EQ(record("America/Phoenix"), "420 0 D - S - MST MST");
    EXPECT_EQ(record("Etc/GMT+12"), "720 0 D - S - -12 -12");
}

TEST(ZoneRecords, DaylightTimeIsTheGreaterOffsetWhateverItIsCalled)
{
    EXPECT_EQ(record("Europe/Dublin"), "0 -60 D 3/5/0 01:00 S 10/5/0 02:00 GMT IST");
    EXPECT_EQ(record("Europe/Dublin", 2050), "0 -60 D 3/5/0 01:00 S 10/5/0 02:00 GMT IST");
}

TEST(ZoneRecords, RulesHoldBehindTheListedChanges)
{
    EXPECT_EQ(record("Europe/Berlin", 2100), "-60 -60 D 3/5/0 02:00 S 10/5/0 03:00 CET CEST");
    EXPECT_EQ(record("Australia/Sydney", 2400), "-600 -60 D 10/1/0 02:00 S 4/1/0 03:00 AEST AEDT");
}

TEST(ZoneRecords, ChangesOnOtherDaysThanTheyAreCountedFrom)
{
    EXPECT_EQ(record("America/Nuuk"), "120 -60 D 3/5/6 23:00 S 10/5/0 00:00 -02 -01") << "an hour before the Sunday";
    EXPECT_EQ(record("America/Nuuk", 2029), "120 -60 D 3/4/6 23:00 S 10/5/0 00:00 -02 -01");
    // The same moments as by today's rule, but by another wall clock: a Saturday that is not the last.
    EXPECT_EQ(record("America/Nuuk", 2015), "180 -60 D 3/5/6 22:00 S 10/4/6 23:00 -03 -02");
    EXPECT_EQ(record("America/Santiago"), "240 -60 D 9/1/0 00:00 S 4/1/0 00:00 -04 -03") << "24:00 of the Saturday";
    EXPECT_EQ(record("America/Santiago", 2080), "240 -60 D 9/2/0 00:00 S 4/1/0 00:00 -04 -03");
    EXPECT_EQ(record("Africa/Cairo"), "-120 -60 D 4/5/5 00:00 S 10/5/5 00:00 EET EEST");
}

TEST(ZoneRecords, TheLastOfTheMonthGoesAsFiveUnlessTheZonesRuleSaysFour)
{
    // 29 March 2026 is the fifth Sunday, 25 October the fourth and last.
    EXPECT_EQ(zb::zoneRecord("Europe/Berlin", 2026)->StandardDate.wDay, 5);
    // 29 October 2000 was the fifth Sunday, 28 October 2001 the fourth and last.
    EXPECT_EQ(record("America/New_York", 2000), "300 -60 D 4/1/0 02:00 S 10/5/0 02:00 EST EDT");
    EXPECT_EQ(record("America/New_York", 2001), "300 -60 D 4/1/0 02:00 S 10/5/0 02:00 EST EDT");
}

TEST(ZoneRecords, EachYearHasItsOwnRules)
{
    EXPECT_EQ(record("America/New_York", 2006), "300 -60 D 4/1/0 02:00 S 10/5/0 02:00 EST EDT");
    EXPECT_EQ(record("America/New_York", 2007), "300 -60 D 3/2/0 02:00 S 11/1/0 02:00 EST EDT");
    EXPECT_EQ(record("Europe/Moscow", 2010), "-180 -60 D 3/5/0 02:00 S 10/5/0 03:00 MSK MSD");
    EXPECT_EQ(record("Europe/Moscow", 2020), "-180 0 D - S - MSK MSK");
    EXPECT_EQ(record("America/New_York", 1950), "300 -60 D 4/5/0 02:00 S 9/5/0 02:00 EST EDT") << "before 1970";
}

TEST(ZoneRecords, YearsThatAreNoPairOfChangesGetTheStandardOffsetAlone)
{
    // One change to daylight time, which was then made the standard.
    EXPECT_EQ(record("Europe/Istanbul", 2016), "-180 0 D - S - +03 +03");
    // Four changes: daylight time was left for Ramadan.
    EXPECT_EQ(record("Africa/Cairo", 2010), "-120 0 D - S - EET EET");
    // A standard time of its own half a year, then another.
    EXPECT_EQ(record("Europe/Moscow", 2011), "-240 0 D - S - MSK MSK");
    // An offset with seconds counts to the nearest minute.
    EXPECT_EQ(record("Africa/Monrovia", 1971), "45 0 D - S - MMT MMT");
}

/// The local time that a record gives, worked out from its definition alone.
LONG offsetByRecord(const TIME_ZONE_INFORMATION &zone, int year, std::int64_t moment)
{
    const auto changeAt = [&](const SYSTEMTIME &date, LONG biasBefore)
    {
        int day = 1;
        int found = 0;
        for (int candidate = 1; candidate <= 31; ++candidate)
        {
            const std::chrono::year_month_day civil{std::chrono::year(year), std::chrono::month(date.wMonth),
                                                    std::chrono::day(static_cast<unsigned>(candidate))};
            const bool fits =
                civil.ok() && std::chrono::weekday(std::chrono::sys_days(civil)).c_encoding() == date.wDayOfWeek;
            if (fits && found < date.wDay)
            {
                day = candidate;
                ++found;
            }
        }
        return secondsOf(makeFileTime(year, date.wMonth, day, date.wHour, date.wMinute, date.wSecond)) +
               biasBefore * 60;
    };
    if (zone.StandardDate.wMonth == 0)
    {
        return -zone.Bias;
    }
    const std::int64_t toDaylight = changeAt(zone.DaylightDate, zone.Bias);
    const std::int64_t toStandard = changeAt(zone.StandardDate, zone.Bias + zone.DaylightBias);
    const bool daylight = toDaylight < toStandard ? moment >= toDaylight && moment < toStandard
                                                  : moment >= toDaylight || moment < toStandard;
    return -zone.Bias - (daylight ? zone.DaylightBias : 0);
}

TEST(ZoneRecords, GiveTheOffsetsOfTheirYearToTheSecond)
{
    for (const std::string &name : someZones())
    {
        const LibraryZone library(name);
        for (const int year : {1995, 2015, 2024, 2026, 2027, 2029, 2032, 2037, 2044, 2080})
        {
            const auto zone = zb::zoneRecord(name, year);
            ASSERT_TRUE(zone);
            if (zone->StandardDate.wMonth == 0)
            {
                continue;
            }
            for (const std::int64_t change : libraryChanges(library, year, year))
            {
                EXPECT_EQ(offsetByRecord(*zone, year, change - 1), library.offsetAt(change - 1) / 60) << name << year;
                EXPECT_EQ(offsetByRecord(*zone, year, change), library.offsetAt(change) / 60) << name << ' ' << year;
            }
        }
    }
}

TEST(ZoneRecords, EveryZoneOfTheSystemHasOne)
{
    int count = 0;
    const fs::path root("/usr/share/zoneinfo");
    for (const char *folder :
         {"Africa", "America", "Antarctica", "Asia", "Atlantic", "Australia", "Europe", "Indian", "Pacific", "Etc"})
    {
        for (const auto &entry : fs::recursive_directory_iterator(root / folder))
        {
            if (entry.is_regular_file())
            {
                const std::string name = fs::relative(entry.path(), root).string();
                EXPECT_TRUE(zb::zoneRecord(name, 2026)) << name;
                ++count;
            }
        }
    }
    EXPECT_GT(count, 300);
}

TEST(Zones, MayBeAskedFromManyThreads)
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&wrong]
            {
                for (const std::string &name : someZones())
                {
                    wrong += zb::zoneOffsetMinutes(name, momentOf(1'000'000'000)) && zb::zoneRecord(name, 2026) ? 0 : 1;
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

// --- The device's zone -------------------------------------------------------------------------------------------

class DeviceZone : public zb::test::DeviceTest
{
};

TEST_F(DeviceZone, GivesTheRulesOfThisYearAndWhatHoldsNow)
{
    TIME_ZONE_INFORMATION zone{};
    EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_STANDARD);
    EXPECT_EQ(zone.Bias, -60);
    EXPECT_EQ(rule(zone.DaylightDate), "3/5/0 02:00");
    device.setClock(makeFileTime(2026, 3, 29, 1));
    EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_DAYLIGHT);
    EXPECT_EQ(zb::deviceZoneName(), "Europe/Berlin");
}

TEST_F(DeviceZone, SaysWhenThereIsNoDaylightTime)
{
    device.setZone("Asia/Tokyo");
    TIME_ZONE_INFORMATION zone{};
    EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_UNKNOWN);
    EXPECT_EQ(zone.Bias, -540);
    EXPECT_EQ(zb::toUtf8(zone.StandardName), "JST");
}

TEST_F(DeviceZone, TheYearIsThatOfTheLocalDate)
{
    device.setZone("America/New_York");
    device.setClock(makeFileTime(2007, 1, 1, 3));
    TIME_ZONE_INFORMATION zone{};
    GetTimeZoneInformation(&zone);
    EXPECT_EQ(rule(zone.DaylightDate), "4/1/0 02:00") << "still 2006 there";
    device.setClock(makeFileTime(2007, 1, 1, 6));
    GetTimeZoneInformation(&zone);
    EXPECT_EQ(rule(zone.DaylightDate), "3/2/0 02:00");
}

TEST_F(DeviceZone, WithoutAPairOfChangesTheOffsetIsThatOfNow)
{
    device.setZone("Europe/Istanbul");
    device.setClock(makeFileTime(2016, 2, 1));
    TIME_ZONE_INFORMATION zone{};
    EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_UNKNOWN);
    EXPECT_EQ(zone.Bias, -120);
    device.setClock(makeFileTime(2016, 5, 1));
    GetTimeZoneInformation(&zone);
    EXPECT_EQ(zone.Bias, -180);
}
} // namespace
