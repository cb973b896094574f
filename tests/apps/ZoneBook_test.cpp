// Zones of calendar files: tzdata first, the file's own definitions for other names, the device's zone for the rest.
#include "apps/CalendarText.h"
#include "interchange/zone_book.h"
#include "platform/locale.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <chrono>

namespace
{
using namespace zb::interchange;
using zb::test::describe;
using zb::test::makeSystemTime;
using zb::test::withCrLf;

class ZoneBookTest : public zb::test::DeviceTest
{
  protected:
    static std::string utc(CalendarZone &zone, const SYSTEMTIME &local)
    {
        const auto time = zone.toUtc(local);
        return time ? describe(*time) : "none";
    }

    ZoneBook book{"Europe/Berlin"};
};

std::string definition(const std::string &id)
{
    // Daylight time from the second Sunday of March to the first of November, seven hours behind UTC in winter.
    return withCrLf("BEGIN:VTIMEZONE\nTZID:" + id +
                    "\nBEGIN:STANDARD\nDTSTART:20071104T020000\nRRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\n"
                    "TZOFFSETFROM:-0600\nTZOFFSETTO:-0700\nEND:STANDARD\n"
                    "BEGIN:DAYLIGHT\nDTSTART:20070311T020000\nRRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\n"
                    "TZOFFSETFROM:-0700\nTZOFFSETTO:-0600\nEND:DAYLIGHT\nEND:VTIMEZONE\n");
}

TEST_F(ZoneBookTest, NamesOfTzdataHaveItsRules)
{
    EXPECT_EQ(utc(book.find("Europe/Berlin"), makeSystemTime(2026, 1, 15, 12)), "2026-01-15 11:00:00");
    EXPECT_EQ(utc(book.find("Europe/Berlin"), makeSystemTime(2026, 7, 15, 12)), "2026-07-15 10:00:00");
    EXPECT_EQ(utc(book.find("America/New_York"), makeSystemTime(2026, 11, 21, 12)), "2026-11-21 17:00:00");
    EXPECT_EQ(utc(book.find("Asia/Kolkata"), makeSystemTime(2026, 11, 21, 12)), "2026-11-21 06:30:00");
    EXPECT_EQ(utc(book.find("UTC"), makeSystemTime(2026, 11, 21, 12)), "2026-11-21 12:00:00");
    EXPECT_TRUE(book.find("Asia/Kolkata").isKnown());
}

TEST_F(ZoneBookTest, AnHourThatComesTwiceIsItsFirstAndOneThatNeverComesCountsFromBefore)
{
    EXPECT_EQ(utc(book.find("Europe/Berlin"), makeSystemTime(2026, 10, 25, 2, 30)), "2026-10-25 00:30:00");
    EXPECT_EQ(utc(book.find("Europe/Berlin"), makeSystemTime(2026, 3, 29, 2, 30)), "2026-03-29 01:30:00");
}

TEST_F(ZoneBookTest, NamesOfOtherSystemsHaveTheRulesOfTzdata)
{
    EXPECT_EQ(book.find("W. Europe Standard Time").name(), "Europe/Berlin");
    EXPECT_EQ(book.find("Eastern Standard Time").name(), "America/New_York");
    EXPECT_EQ(book.find("Tokyo Standard Time").name(), "Asia/Tokyo");
    EXPECT_EQ(book.find("(UTC+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna").name(), "Europe/Amsterdam");
    EXPECT_EQ(book.find("(UTC-05:00) Eastern Time (US & Canada)").name(), "America/New_York");
    EXPECT_EQ(book.find("(GMT+05:30) Chennai, Kolkata, Mumbai, New Delhi").name(), "Asia/Kolkata");
    EXPECT_EQ(book.find("Nowhere we know, Lisbon").name(), "Europe/Lisbon");
    EXPECT_EQ(book.find("/mozilla.org/20050126_1/Europe/Berlin").name(), "Europe/Berlin");
    EXPECT_FALSE(book.find("(UTC+01:00)").isKnown());
    EXPECT_FALSE(book.find("Standard Time").isKnown());
    EXPECT_FALSE(book.find("(UTC+01:00").isKnown());
    EXPECT_EQ(zb::zoneNameOf(""), "");
    EXPECT_EQ(zb::zoneNameOf("Europe/Berlin"), "");
    EXPECT_EQ(zb::zoneNameOf(std::string(5000, 'x')), "");
}

TEST_F(ZoneBookTest, EveryShownNameLeadsToAZoneOfTzdata)
{
    for (const char *shown : {"Greenland", "Kyiv", "Astana", "Hanoi", "Newfoundland", "Saskatchewan"})
    {
        EXPECT_TRUE(book.find(shown).isKnown()) << shown;
    }
}

TEST_F(ZoneBookTest, DefinitionsGoBeforeShownNames)
{
    book.define("Berlin", definition("Berlin"));
    EXPECT_EQ(book.find("Berlin").name(), "");
    EXPECT_EQ(utc(book.find("Berlin"), makeSystemTime(2026, 1, 15, 12)), "2026-01-15 19:00:00");
}

TEST_F(ZoneBookTest, ADefinitionGivesOffsetsAndARecord)
{
    book.define("Ship", definition("Ship"));
    CalendarZone &ship = book.find("Ship");
    EXPECT_EQ(ship.offsetMinutes(zb::test::makeFileTime(2026, 1, 15)), -420);
    EXPECT_EQ(ship.offsetMinutes(zb::test::makeFileTime(2026, 7, 15)), -360);
    EXPECT_EQ(ship.offsetMinutes(zb::test::makeFileTime(2062, 7, 15)), -360);
    const TIME_ZONE_INFORMATION record = ship.record(2026);
    EXPECT_EQ(record.Bias, 420);
    EXPECT_EQ(record.DaylightBias, -60);
    EXPECT_EQ(record.DaylightDate.wMonth, 3);
    EXPECT_EQ(record.DaylightDate.wDay, 2);
    EXPECT_EQ(record.DaylightDate.wDayOfWeek, 0);
    EXPECT_EQ(record.DaylightDate.wHour, 2);
    EXPECT_EQ(record.StandardDate.wMonth, 11);
    EXPECT_EQ(record.StandardDate.wDay, 1);
    EXPECT_EQ(record.StandardDate.wYear, 0);
}

TEST_F(ZoneBookTest, TheDevicesZoneIsKnownByItsName)
{
    EXPECT_TRUE(book.isDevice(book.device()));
    EXPECT_TRUE(book.isDevice(book.find("Europe/Berlin")));
    EXPECT_TRUE(book.isDevice(book.find("W. Europe Standard Time")));
    EXPECT_TRUE(book.isDevice(book.find("Nobody knows this")));
    EXPECT_FALSE(book.isDevice(book.utc()));
    EXPECT_FALSE(book.isDevice(book.find("Europe/Paris")));
}

TEST_F(ZoneBookTest, TimesWithoutZoneAreTheDevices)
{
    EXPECT_EQ(utc(book.device(), makeSystemTime(2026, 7, 15, 12)), "2026-07-15 10:00:00");
    EXPECT_EQ(utc(book.utc(), makeSystemTime(2026, 7, 15, 12)), "2026-07-15 12:00:00");
}

TEST_F(ZoneBookTest, RegisteredNamesAreKnownByTheirEnd)
{
    for (const char *const id : {"/example.org/20260101_1/Europe/Lisbon", "/Europe/Lisbon"})
    {
        EXPECT_TRUE(book.find(id).isKnown()) << id;
        EXPECT_EQ(utc(book.find(id), makeSystemTime(2026, 7, 15, 12)), "2026-07-15 11:00:00") << id;
    }
    EXPECT_EQ(utc(book.find("/x/America/Argentina/Buenos_Aires"), makeSystemTime(2026, 7, 15, 12)),
              "2026-07-15 15:00:00");
    EXPECT_FALSE(book.find("x/Europe/Lisbon").isKnown());
}

TEST_F(ZoneBookTest, ADefinitionServesANameThatTzdataDoesNotKnow)
{
    book.define("Mountain, mine", definition("Mountain, mine"));
    CalendarZone &zone = book.find("Mountain, mine");
    EXPECT_TRUE(zone.isKnown());
    EXPECT_EQ(utc(zone, makeSystemTime(2026, 11, 21, 12)), "2026-11-21 19:00:00");
    EXPECT_EQ(utc(zone, makeSystemTime(2026, 7, 15, 12)), "2026-07-15 18:00:00");
    EXPECT_EQ(utc(zone, makeSystemTime(2026, 3, 8, 1, 59)), "2026-03-08 08:59:00");
    EXPECT_EQ(utc(zone, makeSystemTime(2026, 3, 8, 3)), "2026-03-08 09:00:00");
    // Long after the years that definitions are expanded for; 8 March 3000 is a Saturday, so the change is on the 9th.
    EXPECT_EQ(utc(zone, makeSystemTime(3000, 7, 15, 12)), "3000-07-15 18:00:00");
    EXPECT_EQ(utc(zone, makeSystemTime(3000, 3, 8, 12)), "3000-03-08 19:00:00");
    EXPECT_EQ(utc(zone, makeSystemTime(3000, 3, 9, 12)), "3000-03-09 18:00:00");
}

TEST_F(ZoneBookTest, TzdataWinsOverADefinitionOfTheSameName)
{
    book.define("Europe/Berlin", definition("Europe/Berlin"));
    EXPECT_EQ(utc(book.find("Europe/Berlin"), makeSystemTime(2026, 1, 15, 12)), "2026-01-15 11:00:00");
}

TEST_F(ZoneBookTest, AnUnknownNameIsTheDevicesZoneAndSaysSo)
{
    for (const char *const id : {"Nowhere/Atlantis", "", "../../etc/passwd", "/", "//", "/etc/localtime", "Europe/",
                                 "Europe/Berlin\n", "tzdata.zi", "leapseconds"})
    {
        CalendarZone &zone = book.find(id);
        EXPECT_FALSE(zone.isKnown()) << id;
        EXPECT_EQ(utc(zone, makeSystemTime(2026, 7, 15, 12)), "2026-07-15 10:00:00") << id;
    }
}

TEST_F(ZoneBookTest, ABrokenDefinitionCountsAsNone)
{
    book.define("A", "BEGIN:VTIMEZONE\r\nTZID:A\r\nEND:VTIMEZONE\r\n");
    book.define("B", "garbage TZOFFSETTO");
    book.define("C", withCrLf("BEGIN:VEVENT\nSUMMARY:TZOFFSETTO\nEND:VEVENT\n"));
    for (const char *const id : {"A", "B", "C"})
    {
        EXPECT_FALSE(book.find(id).isKnown()) << id;
    }
}

TEST_F(ZoneBookTest, FieldsThatAreNoDateGiveNothing)
{
    book.define("Mine", definition("Mine"));
    SYSTEMTIME bad = makeSystemTime(2026, 2, 28, 12);
    bad.wDay = 30;
    for (CalendarZone *const zone : {&book.utc(), &book.device(), &book.find("Europe/Berlin"), &book.find("Mine")})
    {
        EXPECT_FALSE(zone->toUtc(bad));
    }
}
} // namespace
