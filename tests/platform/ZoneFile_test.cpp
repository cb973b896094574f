// Zone files made by hand: versions, rules at their end, and damage of every kind.
#include "platform/linux/zone_history.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::internal::ZoneHistory;
using zb::internal::ZonePeriod;

std::string bigEndian(std::int64_t value, int size)
{
    std::string bytes;
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
    {
        bytes += static_cast<char>(static_cast<std::uint64_t>(value) >> static_cast<unsigned>(shift) & 0xFFU);
    }
    return bytes;
}

struct Kind
{
    int offset;
    bool daylight;
    int name;
};

struct Change
{
    std::int64_t time;
    int kind;
};

struct Leap
{
    std::int64_t time;
    int correction;
};

/// A zone file in the making; the names are "LMT", "STD" and "DST" at 0, 4 and 8.
struct Draft
{
    std::vector<Kind> kinds = {{3600, false, 4}};
    std::vector<Change> changes;
    std::vector<Leap> leaps;
    std::string names = std::string("LMT\0STD\0DST\0", 12);

    std::string block(char version, int timeSize) const
    {
        std::string bytes = "TZif" + std::string(1, version) + std::string(15, '\0') + bigEndian(0, 4) +
                            bigEndian(0, 4) + bigEndian(static_cast<int>(leaps.size()), 4) +
                            bigEndian(static_cast<int>(changes.size()), 4) +
                            bigEndian(static_cast<int>(kinds.size()), 4) + bigEndian(static_cast<int>(names.size()), 4);
        for (const Change &change : changes)
        {
            bytes += bigEndian(change.time, timeSize);
        }
        for (const Change &change : changes)
        {
            bytes += static_cast<char>(change.kind);
        }
        for (const Kind &kind : kinds)
        {
            bytes += bigEndian(kind.offset, 4) + static_cast<char>(kind.daylight) + static_cast<char>(kind.name);
        }
        bytes += names;
        for (const Leap &leap : leaps)
        {
            bytes += bigEndian(leap.time, timeSize) + bigEndian(leap.correction, 4);
        }
        return bytes;
    }

    std::string file(const std::string &rule = "") const
    {
        return Draft().block('2', 4) + block('2', 8) + "\n" + rule + "\n";
    }
};

int offsetAt(const std::string &file, std::int64_t moment)
{
    const auto history = ZoneHistory::read(file);
    EXPECT_TRUE(history);
    return history ? history->periodAt(moment).offset : -1;
}

TEST(ZoneFile, TheFirstVersionHasShortTimes)
{
    Draft draft;
    draft.kinds = {{0, false, 0}, {3600, false, 4}};
    draft.changes = {{-1000, 1}};
    const std::string file = draft.block('\0', 4);
    EXPECT_EQ(offsetAt(file, -1001), 0);
    EXPECT_EQ(offsetAt(file, -1000), 3600);
    EXPECT_EQ(offsetAt(file, 1LL << 40), 3600);
}

TEST(ZoneFile, LaterVersionsCountByTheirLongTimes)
{
    Draft draft;
    draft.kinds = {{0, false, 0}, {7200, false, 4}};
    draft.changes = {{1LL << 33, 1}};
    for (const char version : {'2', '3', '4', '5'})
    {
        std::string file = draft.file();
        file[4] = version;
        EXPECT_EQ(offsetAt(file, (1LL << 33) - 1), 0);
        EXPECT_EQ(offsetAt(file, 1LL << 33), 7200);
    }
}

TEST(ZoneFile, TheRuleHoldsBehindTheLastChangeAlone)
{
    Draft draft;
    draft.kinds = {{0, false, 0}, {3600, false, 4}};
    draft.changes = {{0, 1}};
    const std::string file = draft.file("XXX-3");
    EXPECT_EQ(offsetAt(file, -1), 0);
    EXPECT_EQ(offsetAt(file, 0), 10'800);
}

TEST(ZoneFile, ARuleThatCannotBeReadLeavesTheLastKind)
{
    for (const char *rule :
         {"", "X-3", "XXX", "XXX-3YYY", "XXX-3YYY,M3.2.0", "XXX-3YYY,M13.1.0,M11.1.0", "XXX-3YYY,M3.6.0,M11.1.0",
          "XXX-3YYY,M3.2.7,M11.1.0", "XXX-168", "XXX-3:60", "<XX>-3", "<XXX-3", "XXX-3 ", "XXX-3YYY,J0,J5",
          "XXX-3YYY,J366,J5", "XXX-3YYY,366,5", "XXX-3YYY,M3.2.0/168,M11.1.0", "XXX99999999999999999999"})
    {
        EXPECT_EQ(offsetAt(Draft().file(rule), 0), 3600) << rule;
    }
}

std::int64_t yearStart(int year)
{
    std::int64_t days = 0;
    for (int y = 1970; y < year; ++y)
    {
        days += (y % 4 == 0 && y % 100 != 0) || y % 400 == 0 ? 366 : 365;
    }
    return days * 86'400;
}

TEST(ZoneFile, RulesCountDaysWithAndWithoutLeapDays)
{
    // Day 60 of the year: 1 March without leap day counted; 29 February in a leap year, 1 March in another, from 0.
    const std::string julian = Draft().file("XXX0YYY,J60/0,J300/0");
    const std::string plain = Draft().file("XXX0YYY,59/0,300/0");
    const std::int64_t march2025 = yearStart(2025) + 59 * 86'400;
    const std::int64_t march2024 = yearStart(2024) + 60 * 86'400;
    for (const auto &[file, change] : {std::pair(julian, march2025), std::pair(julian, march2024),
                                       std::pair(plain, march2025), std::pair(plain, march2024 - 86'400)})
    {
        EXPECT_EQ(offsetAt(file, change - 1), 0);
        EXPECT_EQ(offsetAt(file, change), 3600);
    }
}

TEST(ZoneFile, RulesMayTellOffsetsToTheSecondAndDaylightTimeOfAnySize)
{
    const std::string file = Draft().file("<-1:2>1:02:03<+0930>-9:30,J1/0,J100/0");
    EXPECT_EQ(offsetAt(file, yearStart(2025) + 150 * 86'400), -3723);
    EXPECT_EQ(offsetAt(file, yearStart(2025) + 50 * 86'400), 34'200);
}

TEST(ZoneFile, DaylightTimeThatNeverEndsIsOnePeriod)
{
    const std::string file = Draft().file("XXX3EDT4,0/0,J365/23");
    for (int day = 0; day < 800; ++day)
    {
        ASSERT_EQ(offsetAt(file, yearStart(2024) + day * 86'400), -4 * 3600) << day;
    }
}

TEST(ZoneFile, ChangesOfAYearGoByTheWallClockBefore)
{
    Draft draft;
    draft.kinds = {{36'000, false, 4}, {39'600, true, 8}};
    // 1 January 2025 00:30 wall clock, which is 31 December in UTC.
    draft.changes = {{yearStart(2025) + 1800 - 36'000, 1}, {yearStart(2025) + 100 * 86'400, 0}};
    const auto history = ZoneHistory::read(draft.file());
    ASSERT_TRUE(history);
    EXPECT_EQ(history->changesOf(2024).size(), 0U);
    ASSERT_EQ(history->changesOf(2025).size(), 2U);
    EXPECT_EQ(history->changesOf(2025)[0].after.offset, 39'600);
    EXPECT_EQ(history->changesOf(2025)[1].after.name, "STD");
}

TEST(ZoneFile, ChangesOfTheNameAloneAreNoChanges)
{
    Draft draft;
    draft.kinds = {{3600, false, 4}, {3600, true, 8}};
    draft.changes = {{yearStart(2025) + 86'400, 1}};
    const auto history = ZoneHistory::read(draft.file());
    ASSERT_TRUE(history);
    EXPECT_TRUE(history->changesOf(2025).empty());
}

TEST(ZoneFile, LeapSecondsAreTakenOut)
{
    Draft draft;
    draft.kinds = {{0, false, 0}, {3600, false, 4}};
    draft.leaps = {{100, 1}, {200, 2}};
    draft.changes = {{302, 1}};
    EXPECT_EQ(offsetAt(draft.file(), 299), 0);
    EXPECT_EQ(offsetAt(draft.file(), 300), 3600);
}

TEST(ZoneFile, NumbersThatContradictEachOtherAreRefused)
{
    Draft draft;
    draft.changes = {{5, 0}, {5, 0}};
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "not ascending";
    draft.changes = {{5, 1}};
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "no such kind";
    draft.changes.clear();
    draft.kinds.clear();
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "no kind at all";
    draft.kinds = {{0, false, 12}};
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "a name behind the names";
    draft.kinds = {{30 * 3600, false, 0}};
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "an offset beyond a day";
    draft.kinds = {{std::numeric_limits<int>::min(), false, 0}};
    EXPECT_FALSE(ZoneHistory::read(draft.file()));
    draft.kinds = {{0, false, 0}};
    draft.names = "ABC";
    EXPECT_FALSE(ZoneHistory::read(draft.file())) << "a name without end";
}

TEST(ZoneFile, CountsBeyondTheFileAreRefused)
{
    for (const std::size_t place : {20U, 24U, 28U, 32U, 36U, 40U})
    {
        std::string file = Draft().block('\0', 4);
        file.replace(place, 4, "\xFF\xFF\xFF\xFF");
        EXPECT_FALSE(ZoneHistory::read(file)) << place;
    }
}

TEST(ZoneFile, EveryCutIsRefusedOrReadAsFarAsItGoes)
{
    Draft draft;
    draft.kinds = {{0, false, 0}, {3600, true, 8}};
    draft.changes = {{10, 1}, {20, 0}};
    const std::string file = draft.file("XXX-3");
    const std::size_t needed = file.size() - std::string("\nXXX-3\n").size();
    for (std::size_t length = 0; length < file.size(); ++length)
    {
        EXPECT_EQ(ZoneHistory::read(file.substr(0, length)).has_value(), length >= needed) << length;
    }
    EXPECT_FALSE(ZoneHistory::read("no zone"));
    EXPECT_FALSE(ZoneHistory::read(""));
}

TEST(ZoneFile, DamagedFilesNeverHang)
{
    std::ifstream input("/usr/share/zoneinfo/Africa/Cairo", std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
    ASSERT_GT(file.size(), 1000U);
    std::mt19937 random(29);
    for (int i = 0; i < 3'000; ++i)
    {
        std::string damaged = file;
        for (int n = 0; n < 4; ++n)
        {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        const auto history = ZoneHistory::read(damaged);
        if (history)
        {
            const ZonePeriod period = history->periodAt(yearStart(2026));
            EXPECT_LT(period.start, period.end);
            history->fromLocal(yearStart(2040));
            history->changesOf(2045);
        }
    }
}

TEST(ZoneFile, MomentsFarOutsideAreAnswered)
{
    const auto history = ZoneHistory::read(Draft().file("XXX-3YYY,M3.5.0,M10.5.0"));
    ASSERT_TRUE(history);
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(history->periodAt(lowest).offset, 10'800);
    EXPECT_EQ(history->periodAt(highest).offset, 10'800);
    EXPECT_LT(history->fromLocal(lowest), 0);
    EXPECT_GT(history->fromLocal(highest), 0);
}

TEST(ZoneFile, UtcNeedsNoFile)
{
    const ZoneHistory utc;
    EXPECT_EQ(utc.periodAt(0).offset, 0);
    EXPECT_EQ(utc.periodAt(0).name, "UTC");
    EXPECT_EQ(utc.fromLocal(12'345), 12'345);
    EXPECT_TRUE(utc.changesOf(2026).empty());
}
} // namespace
