// Events as appointments: times, lengths, texts, flags, identities, and what can't be kept.
#include "apps/CalendarText.h"
#include "interchange/event_item.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
using namespace zb::interchange;
using zb::BusyStatus;
using zb::test::calendarOf;
using zb::test::describe;
using zb::test::eventOf;
using zb::test::utf8;

class EventItemTest : public zb::test::DeviceTest
{
  protected:
    EventReading read(const std::string &lines)
    {
        const std::string text = calendarOf(eventOf(lines));
        const auto bytes = openMemory(text);
        CalendarReader reader(*bytes);
        CalendarComponent component;
        EXPECT_TRUE(reader.next(component));
        return readEvent(component, zones);
    }

    zb::AppointmentItem item(const std::string &lines)
    {
        EventReading reading = read(lines);
        EXPECT_TRUE(reading.item) << reading.reason;
        return reading.item.value_or(zb::AppointmentItem());
    }

    /// "reason, line"
    std::string reason(const std::string &lines)
    {
        const EventReading reading = read(lines);
        EXPECT_FALSE(reading.item);
        return reading.reason + ", " + std::to_string(reading.line);
    }

    ZoneBook zones{"Europe/Berlin"};
};

TEST_F(EventItemTest, ATimedEventHasItsStartInUtcAndItsMinutes)
{
    const auto timed =
        item("DTSTART;TZID=America/New_York:20261121T093000\nDTEND;TZID=America/New_York:20261121T104500\n");
    EXPECT_EQ(describe(timed.start), "2026-11-21 14:30:00");
    EXPECT_EQ(timed.durationMinutes, 75);
    EXPECT_FALSE(timed.allDay);
}

TEST_F(EventItemTest, StartsAreUtcZonedOrTheDevices)
{
    EXPECT_EQ(describe(item("DTSTART:20260701T080000Z\n").start), "2026-07-01 08:00:00");
    EXPECT_EQ(describe(item("DTSTART:20260701T080000\n").start), "2026-07-01 06:00:00");
    EXPECT_EQ(describe(item("DTSTART;TZID=Asia/Tokyo:20260701T080000\n").start), "2026-06-30 23:00:00");
    EXPECT_EQ(describe(item("DTSTART;TZID=UTC:20260701T080000\n").start), "2026-07-01 08:00:00");
}

TEST_F(EventItemTest, AnEndMayStandInAnotherZone)
{
    const auto flight = item("DTSTART;TZID=Europe/Berlin:20261110T064500\nDTEND;TZID=Europe/Lisbon:20261110T092500\n");
    EXPECT_EQ(flight.durationMinutes, 3 * 60 + 40);
}

TEST_F(EventItemTest, AChangeOfDaylightTimeCountsInTheLength)
{
    EXPECT_EQ(item("DTSTART:20261024T220000\nDTEND:20261025T060000\n").durationMinutes, 9 * 60);
    EXPECT_EQ(item("DTSTART:20260328T220000\nDTEND:20260329T060000\n").durationMinutes, 7 * 60);
    // A day is a day of the calendar, an hour is an hour.
    EXPECT_EQ(item("DTSTART:20261024T120000\nDURATION:P1D\n").durationMinutes, 25 * 60);
    EXPECT_EQ(item("DTSTART:20261024T120000\nDURATION:PT24H\n").durationMinutes, 24 * 60);
}

TEST_F(EventItemTest, LengthsOfEveryFormAreTaken)
{
    const std::string start = "DTSTART:20261121T100000Z\n";
    EXPECT_EQ(item(start).durationMinutes, 0);
    EXPECT_EQ(item(start + "DTEND:20261121T100000Z\n").durationMinutes, 0);
    EXPECT_EQ(item(start + "DURATION:PT0S\n").durationMinutes, 0);
    EXPECT_EQ(item(start + "DURATION:-PT0S\n").durationMinutes, 0);
    EXPECT_EQ(item(start + "DURATION:PT1H30M\n").durationMinutes, 90);
    EXPECT_EQ(item(start + "DURATION:P2W\n").durationMinutes, 14 * 1440);
    EXPECT_EQ(item(start + "DURATION:+P1DT1M\n").durationMinutes, 1441);
    EXPECT_EQ(item(start + "DTEND:20261121T105959Z\n").durationMinutes, 60) << "to the nearest minute";
    EXPECT_EQ(item(start + "DTEND:20261121T100029Z\n").durationMinutes, 0);
    EXPECT_EQ(item(start + "DTEND;VALUE=DATE:20261122\n").durationMinutes, 14 * 60)
        << "to midnight in the zone of the start";
    EXPECT_EQ(item(start + "DTEND:20261121T110000Z\nDURATION:PT5H\n").durationMinutes, 60) << "the end counts";
}

TEST_F(EventItemTest, WholeDaysStandInNoZone)
{
    const auto check = [this](const std::string &lines, LONG days)
    {
        const auto whole = item("DTSTART;VALUE=DATE:20261120\n" + lines);
        EXPECT_TRUE(whole.allDay) << lines;
        EXPECT_EQ(describe(whole.start), "2026-11-20 00:00:00") << lines;
        EXPECT_EQ(whole.days, days) << lines;
    };
    check("", 1);
    check("DTEND;VALUE=DATE:20261121\n", 1);
    check("DTEND;VALUE=DATE:20261123\n", 3);
    check("DTEND;VALUE=DATE:20261120\n", 1);
    check("DTEND;VALUE=DATE:20270101\n", 42);
    check("DURATION:P5D\n", 5);
    check("DURATION:P1W\n", 7);
    check("DURATION:PT24H\n", 1);
    check("DURATION:PT25H\n", 2);
    check("DTEND:20261121T120000\n", 2);
}

TEST_F(EventItemTest, ADateWithoutItsMarkIsAWholeDayToo)
{
    EXPECT_TRUE(item("DTSTART:20261120\nDTEND:20261122\n").allDay);
    EXPECT_EQ(item("DTSTART:20261120\nDTEND:20261122\n").days, 2);
}

TEST_F(EventItemTest, MidnightToMidnightMarkedAsWholeDaysIs)
{
    const std::string mark = "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE\n";
    const auto whole =
        item(mark + "DTSTART;TZID=Europe/Berlin:20261024T000000\nDTEND;TZID=Europe/Berlin:20261026T000000\n");
    EXPECT_TRUE(whole.allDay);
    EXPECT_EQ(whole.days, 2);
    EXPECT_EQ(describe(whole.start), "2026-10-24 00:00:00");
    EXPECT_FALSE(item("DTSTART:20261024T000000\nDTEND:20261025T000000\n").allDay) << "without the mark";
    EXPECT_FALSE(item(mark + "DTSTART:20261024T010000\nDTEND:20261025T010000\n").allDay) << "not from midnight";
    EXPECT_FALSE(item(mark + "DTSTART:20261024T000000\nDTEND:20261024T120000\n").allDay) << "half a day";
}

TEST_F(EventItemTest, TheEndOfADayAndLeapSecondsAreTimes)
{
    EXPECT_EQ(item("DTSTART:20261121T230000Z\nDTEND:20261121T240000Z\n").durationMinutes, 60);
    EXPECT_EQ(describe(item("DTSTART:20261231T235960Z\n").start), "2026-12-31 23:59:59");
}

TEST_F(EventItemTest, WhatIsNoTimeIsLeftOutWithItsLine)
{
    EXPECT_EQ(reason("UID:1\nSUMMARY:x\n"), "its start is missing, 4");
    EXPECT_EQ(reason("UID:1\nDTSTART:20261345T120000Z\n"), "its start \"20261345T120000Z\" is no date, 6");
    EXPECT_EQ(reason("DTSTART:20260230\n"), "its start \"20260230\" is no date, 5");
    EXPECT_EQ(reason("DTSTART:20261121T250000\n"), "its start \"20261121T250000\" is no date, 5");
    EXPECT_EQ(reason("DTSTART:tomorrow\n"), "its start \"tomorrow\" is no date, 5");
    EXPECT_EQ(reason("DTSTART:\n"), "its start \"\" is no date, 5");
    EXPECT_EQ(reason("DTSTART;VALUE=PERIOD:20261121T100000Z/PT1H\n"),
              "its start \"20261121T100000Z/PT1H\" is no date, 5");
    EXPECT_EQ(reason("DTSTART:20261121T100000Z\nDTEND:soon\n"), "its end \"soon\" is no date, 6");
    EXPECT_EQ(reason("DTSTART:20261121T100000Z\nDURATION:long\n"), "its duration \"long\" is no span of time, 6");
}

TEST_F(EventItemTest, WhatEndsBeforeItStartsIsLeftOut)
{
    EXPECT_EQ(reason("DTSTART:20261121T100000Z\nDTEND:20261121T095959Z\n"), "it ends before it starts, 6");
    EXPECT_EQ(reason("DTSTART;VALUE=DATE:20261121\nDTEND;VALUE=DATE:20261120\n"), "it ends before it starts, 6");
    EXPECT_EQ(reason("DTSTART:20261121T100000Z\nDURATION:-PT1H\n"), "its duration is negative, 6");
    EXPECT_EQ(reason("DTSTART;VALUE=DATE:20261121\nDURATION:-P1D\n"), "its duration is negative, 6");
}

TEST_F(EventItemTest, TimesEndWhereRecordsEnd)
{
    EXPECT_EQ(reason("DTSTART:16001231T235959Z\n"), "its start lies before the year 1601, 5");
    EXPECT_EQ(reason("DTSTART:00010101\n"), "its start lies before the year 1601, 5");
    EXPECT_EQ(describe(item("DTSTART:16010101T000000Z\n").start), "1601-01-01 00:00:00");
    EXPECT_EQ(reason("DTSTART;TZID=Asia/Tokyo:16010101T000000\n"), "its start lies before the year 1601, 5");
    EXPECT_EQ(describe(item("DTSTART;VALUE=DATE:99991231\n").start), "9999-12-31 00:00:00");
    EXPECT_EQ(describe(item("DTSTART:99991231T235900Z\n").start), "9999-12-31 23:59:00");
    EXPECT_EQ(reason("DTSTART;TZID=America/New_York:99991231T235900\n"), "its start lies beyond the year 9999, 5");
    EXPECT_EQ(reason("DTSTART:99991231T120000Z\nDURATION:P1D\n"), "its end lies beyond the year 9999, 6");
    EXPECT_EQ(reason("DTSTART:99991231T235900Z\nDURATION:PT1H\n"), "its end lies beyond the year 9999, 6");
    EXPECT_EQ(reason("DTSTART;VALUE=DATE:99991231\nDURATION:P2D\n"), "its end lies beyond the year 9999, 6");
    EXPECT_EQ(describe(item("DTSTART:30000101T120000Z\n").start), "3000-01-01 12:00:00");
    EXPECT_EQ(describe(item("DTSTART:45000101T120000Z\n").start), "4500-01-01 12:00:00");
}

TEST_F(EventItemTest, ALengthBeyondAllMinutesIsLeftOut)
{
    EXPECT_EQ(reason("DTSTART:17000101T000000Z\nDTEND:90000101T000000Z\n"),
              "it lasts longer than a record can tell, 6");
    EXPECT_EQ(reason("DTSTART;VALUE=DATE:17000101\nDTEND;VALUE=DATE:90000101\n"),
              "it lasts longer than a record can tell, 6");
    EXPECT_EQ(reason("DTSTART:20260101T000000Z\nDURATION:P99999999D\n"), "it lasts longer than a record can tell, 6");
    EXPECT_EQ(item("DTSTART:20260101T000000Z\nDTEND:60000101T000000Z\n").durationMinutes, 2'090'121'120);
}

TEST_F(EventItemTest, TextsAreUnescapedAndHarmless)
{
    const auto texts = item("DTSTART:20261121\n"
                            "SUMMARY:a\\, b\\; c\\\\ d\\nsecond\\N\\nthird \n"
                            "LOCATION: Straße 漢字 🎈\tx\n"
                            "DESCRIPTION:one\\ntwo\\n\\n\\tthree\x01\\n\n");
    EXPECT_EQ(utf8(texts.subject), "a, b; c\\ d second third");
    EXPECT_EQ(utf8(texts.location), "Straße 漢字 🎈 x");
    EXPECT_EQ(utf8(texts.notes), "one\r\ntwo\r\n\r\n\\tthree");
}

TEST_F(EventItemTest, MissingTextsAreEmpty)
{
    const auto bare = item("DTSTART:20261121\nSUMMARY:\nLOCATION:   \n");
    EXPECT_TRUE(bare.subject.empty());
    EXPECT_TRUE(bare.location.empty());
    EXPECT_TRUE(bare.notes.empty());
}

TEST_F(EventItemTest, LongSubjectsStayWhole)
{
    const std::string subject(2000, 'x');
    EXPECT_EQ(utf8(item("DTSTART:20261121\nSUMMARY:" + subject + "\n").subject), subject);
}

TEST_F(EventItemTest, BusyStatusComesFromWhatSaysMost)
{
    const auto busy = [this](const std::string &lines) { return item("DTSTART:20261121\n" + lines).busy; };
    EXPECT_EQ(busy(""), BusyStatus::Busy);
    EXPECT_EQ(busy("TRANSP:OPAQUE\n"), BusyStatus::Busy);
    EXPECT_EQ(busy("TRANSP:TRANSPARENT\n"), BusyStatus::Free);
    EXPECT_EQ(busy("STATUS:TENTATIVE\n"), BusyStatus::Tentative);
    EXPECT_EQ(busy("STATUS:CONFIRMED\n"), BusyStatus::Busy);
    EXPECT_EQ(busy("STATUS:TENTATIVE\nTRANSP:TRANSPARENT\n"), BusyStatus::Free);
    EXPECT_EQ(busy("X-MICROSOFT-CDO-BUSYSTATUS:OOF\nTRANSP:TRANSPARENT\n"), BusyStatus::OutOfOffice);
    EXPECT_EQ(busy("X-MICROSOFT-CDO-BUSYSTATUS:tentative\n"), BusyStatus::Tentative);
    EXPECT_EQ(busy("X-MICROSOFT-CDO-BUSYSTATUS:BUSY\nSTATUS:TENTATIVE\n"), BusyStatus::Busy);
    EXPECT_EQ(busy("X-MICROSOFT-CDO-BUSYSTATUS:FREE\n"), BusyStatus::Free);
    EXPECT_EQ(busy("X-MICROSOFT-CDO-BUSYSTATUS:ODD\nTRANSP:TRANSPARENT\n"), BusyStatus::Free);
}

TEST_F(EventItemTest, ClassesOtherThanPublicArePrivate)
{
    const auto isPrivate = [this](const std::string &lines) { return item("DTSTART:20261121\n" + lines).isPrivate; };
    EXPECT_FALSE(isPrivate(""));
    EXPECT_FALSE(isPrivate("CLASS:PUBLIC\n"));
    EXPECT_TRUE(isPrivate("CLASS:PRIVATE\n"));
    EXPECT_TRUE(isPrivate("CLASS:CONFIDENTIAL\n"));
    EXPECT_TRUE(isPrivate("CLASS:X-FAMILY\n"));
}

TEST_F(EventItemTest, AnAlarmSetsTheReminder)
{
    EXPECT_FALSE(item("DTSTART:20261121\n").reminder);
    EXPECT_TRUE(item("DTSTART:20261121\nBEGIN:VALARM\nTRIGGER:-PT5M\nEND:VALARM\n").reminder);
}

TEST_F(EventItemTest, TheIdentityIsTheUid)
{
    EXPECT_EQ(utf8(item("UID: a\\,b@test \nDTSTART:20261121\n").interchangeId), "a,b@test");
}

TEST_F(EventItemTest, AChangedDayOfASeriesHasItsDayInItsIdentity)
{
    const auto id = [this](const std::string &day)
    { return utf8(item("UID:s\nDTSTART:20261121T100000Z\nRECURRENCE-ID" + day + "\n").interchangeId); };
    EXPECT_EQ(id(":20261120T090000Z"), "s\n20261120T090000Z");
    EXPECT_EQ(id(";TZID=Europe/Berlin:20261120T100000"), "s\n20261120T090000Z") << "the same moment, the same day";
    EXPECT_EQ(id(";VALUE=DATE:20261120"), "s\n20261120");
    EXPECT_EQ(id(":20261120T100000"), "s\n20261120T100000") << "the device's zone may change, the identity may not";
    EXPECT_EQ(id(":odd"), "s\nodd");
}

TEST_F(EventItemTest, WithoutUidTheContentIsTheIdentity)
{
    const std::string lines = "DTSTART:20261121\nSUMMARY:x\n";
    const std::string id = utf8(item(lines).interchangeId);
    EXPECT_EQ(id.substr(0, 8), "content-");
    EXPECT_EQ(id.size(), 40U);
    EXPECT_EQ(utf8(item("DTSTAMP:20260101T000000Z\nSEQUENCE:4\n" + lines).interchangeId), id)
        << "when it was written is not what it says";
    EXPECT_NE(utf8(item(lines + "LOCATION:y\n").interchangeId), id);
}

TEST_F(EventItemTest, IdentitiesOfAbsurdLengthAreShortenedAndStillDiffer)
{
    const std::string uid(5000, 'u');
    const std::string one = utf8(item("UID:" + uid + "1\nDTSTART:20261121\n").interchangeId);
    const std::string two = utf8(item("UID:" + uid + "2\nDTSTART:20261121\n").interchangeId);
    EXPECT_LE(one.size(), 255U);
    EXPECT_NE(one, two);
    EXPECT_EQ(utf8(item("UID:" + std::string(255, 'u') + "\nDTSTART:20261121\n").interchangeId), std::string(255, 'u'));
}

TEST_F(EventItemTest, AnUnknownZoneIsTold)
{
    const EventReading reading = read("UID:1\nDTSTART;TZID=Nowhere/Atlantis:20260701T120000\n");
    ASSERT_TRUE(reading.item);
    EXPECT_EQ(describe(reading.item->start), "2026-07-01 10:00:00");
    EXPECT_EQ(reading.unknownZone, "Nowhere/Atlantis");
    EXPECT_EQ(reading.unknownZoneLine, 6U);
}

TEST(Fingerprint, StaysTheSameForEver)
{
    // Stores keep identities made from it. Values from a separate calculation.
    EXPECT_EQ(fingerprint("calendar").hex(), "9d58cc10211fa594b89816b42bc97465");
    EXPECT_EQ(fingerprint("").hex(), "ecba3df2c3383c52877e2011d918dd23");
    EXPECT_NE(fingerprint("ab"), fingerprint("ba"));
    EXPECT_NE(fingerprint(""), fingerprint(std::string_view("\0", 1)));
}
} // namespace
