// Remembered daylight days say what IsInDST says, whichever zones and days come in whatever order.
#include "core/DaylightDays.h"

#include "core/datetools.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
TIME_ZONE_INFORMATION zoneOf(SYSTEMTIME toDaylight, SYSTEMTIME toStandard)
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    zone.DaylightDate = toDaylight;
    zone.StandardDate = toStandard;
    return zone;
}

std::vector<TIME_ZONE_INFORMATION> zones()
{
    return {zoneOf({0, 3, 0, 5, 2, 0, 0, 0}, {0, 10, 0, 5, 3, 0, 0, 0}), // Berlin
            zoneOf({0, 3, 0, 2, 2, 0, 0, 0}, {0, 11, 0, 1, 2, 0, 0, 0}), // New York
            zoneOf({0, 10, 0, 1, 2, 0, 0, 0}, {0, 4, 0, 1, 3, 0, 0, 0}), // Sydney: daylight over the new year
            zoneOf({0, 3, 0, 5, 2, 0, 0, 0}, {0, 2, 3, 5, 3, 0, 0, 0}), // to standard time in the last week of February
            zoneOf({}, {})};
}

TEST(DaylightDays, knowsTheDaysOfTheChangesInBerlin)
{
    zb::DaylightDays days;
    const TIME_ZONE_INFORMATION berlin = zones()[0];
    EXPECT_FALSE(days.holds(berlin, {2025, 3, 0, 29, 12, 0, 0, 0}));
    EXPECT_TRUE(days.holds(berlin, {2025, 3, 0, 30, 0, 0, 0, 0}));
    EXPECT_TRUE(days.holds(berlin, {2025, 10, 0, 25, 0, 0, 0, 0}));
    EXPECT_FALSE(days.holds(berlin, {2025, 10, 0, 26, 12, 0, 0, 0}));
}

TEST(DaylightDays, tellsZonesApartThatComeInTurns)
{
    zb::DaylightDays days;
    const SYSTEMTIME march{2025, 3, 0, 20, 12, 0, 0, 0};
    for (int turn = 0; turn < 3; ++turn)
    {
        EXPECT_FALSE(days.holds(zones()[0], march));
        EXPECT_TRUE(days.holds(zones()[1], march));
        EXPECT_FALSE(days.holds(zones()[4], march));
    }
}

TEST(DaylightDays, saysWhatThePlainQuestionSays)
{
    std::mt19937 random(20'251'121);
    const auto below = [&](unsigned limit) { return static_cast<WORD>(random() % limit); };
    const std::vector<TIME_ZONE_INFORMATION> all = zones();
    zb::DaylightDays days;
    std::size_t zone = 0;
    for (int step = 0; step < 200'000; ++step)
    {
        zone = below(50) == 0 ? below(static_cast<unsigned>(all.size())) : zone;
        // Also dates that do not exist, and years that share their place with others.
        const SYSTEMTIME date{static_cast<WORD>(1990 + below(60)), below(14), 0, below(34), below(24), 0, 0, 0};
        const bool plain = IsInDST(date.wYear, date.wMonth, date.wDay, &all[zone]) != 0;
        ASSERT_EQ(days.holds(all[zone], date), plain)
            << date.wYear << '-' << date.wMonth << '-' << date.wDay << " in zone " << zone;
    }
}
} // namespace
