// Calendar files cut into components, whole and damaged.
#include "apps/CalendarText.h"
#include "apps/FileReading.h"
#include "interchange/calendar_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using zb::test::calendarOf;
using zb::test::eventOf;
using zb::test::withCrLf;

struct Reading
{
    std::vector<CalendarComponent> components;
    ReaderNotes notes;
};

Reading readAll(std::string_view bytes)
{
    const auto source = openMemory(bytes);
    CalendarReader reader(*source);
    Reading reading;
    CalendarComponent component;
    while (reader.next(component))
    {
        reading.components.push_back(component);
    }
    reading.notes = reader.notes();
    return reading;
}

/// The error that reading ends with.
CalendarFileError errorOf(std::string_view bytes)
{
    const auto error = zb::test::errorOf([bytes] { readAll(bytes); });
    EXPECT_TRUE(error) << "no error";
    return error.value_or(CalendarFileError(FileFault::Unreadable, 0, ""));
}

TEST(CalendarReader, AnEventKeepsWhatARecordCanHold)
{
    const Reading reading = readAll(calendarOf(eventOf("UID:a@test\n"
                                                       "DTSTART;TZID=Europe/Berlin:20261121T100000\n"
                                                       "SUMMARY;LANGUAGE=de:Gr\n ün\\, ja\n"
                                                       "ATTENDEE;CN=\"A: B\":mailto:a@test\n"
                                                       "X-OTHER:none\n"
                                                       "DTSTAMP:20260101T000000Z\n"
                                                       "SEQUENCE:3\n"
                                                       "RRULE:FREQ=DAILY\n")));
    ASSERT_EQ(reading.components.size(), 1U);
    const CalendarComponent &event = reading.components[0];
    EXPECT_EQ(event.kind, ComponentKind::Event);
    EXPECT_EQ(event.name, "VEVENT");
    EXPECT_EQ(event.line, 4U);
    EXPECT_EQ(event.text, withCrLf("BEGIN:VEVENT\nUID:a@test\nDTSTART;TZID=Europe/Berlin:20261121T100000\n"
                                   "SUMMARY;LANGUAGE=de:Grün\\, ja\nEND:VEVENT\n"));
    EXPECT_EQ(event.rawValue(EventField::Uid), "a@test");
    EXPECT_EQ(event.rawValue(EventField::Start), "20261121T100000");
    EXPECT_EQ(event.rawValue(EventField::Summary), "Grün\\, ja");
    EXPECT_EQ(event.rawValue(EventField::Sequence), "3");
    EXPECT_EQ(event.rawValue(EventField::Rule), "FREQ=DAILY");
    EXPECT_EQ(event.rawValue(EventField::Location), "");
    EXPECT_EQ(event.lineOf(EventField::Start), 6U);
    EXPECT_EQ(event.lineOf(EventField::Rule), 13U);
    EXPECT_EQ(event.lineOf(EventField::End), 0U);
    EXPECT_FALSE(event.hasAlarm);
    EXPECT_FALSE(event.unended);
}

TEST(CalendarReader, NamesAreTakenInAnyCaseAndTheFirstOfEachCounts)
{
    const Reading reading = readAll(withCrLf("begin:vcalendar\nBegin:VEvent\nuid:one\nSummary:first\nSUMMARY:second\n"
                                             "end:vevent\nEnd:Vcalendar\n"));
    ASSERT_EQ(reading.components.size(), 1U);
    EXPECT_EQ(reading.components[0].rawValue(EventField::Uid), "one");
    EXPECT_EQ(reading.components[0].rawValue(EventField::Summary), "first");
}

TEST(CalendarReader, QuotedParametersMayHoldColonsAndBrokenQuotesDoNotSwallowTheValue)
{
    const Reading reading = readAll(calendarOf(eventOf(
        "DTSTART;TZID=\"GMT+1: odd; zone\":20261121T100000\nSUMMARY;X=\"open:text\nLOCATION;ALTREP=\"a:b\":here\n")));
    EXPECT_EQ(reading.components[0].rawValue(EventField::Start), "20261121T100000");
    EXPECT_EQ(reading.components[0].rawValue(EventField::Summary), "text");
    EXPECT_EQ(reading.components[0].rawValue(EventField::Location), "here");
}

TEST(CalendarReader, WhatStandsInAnAlarmIsNotTheEvents)
{
    const Reading reading = readAll(calendarOf(eventOf("BEGIN:VALARM\nSUMMARY:alarm\nDURATION:PT5M\nEND:VALARM\n"
                                                       "SUMMARY:event\n")));
    EXPECT_TRUE(reading.components[0].hasAlarm);
    EXPECT_EQ(reading.components[0].rawValue(EventField::Summary), "event");
    EXPECT_FALSE(reading.components[0].has(EventField::Duration));
}

TEST(CalendarReader, AToDoHasTheFieldsOfEventsAndSomeOfItsOwn)
{
    const Reading reading = readAll(calendarOf("BEGIN:VTODO\nSUMMARY:x\nDUE;TZID=Z:20260302T090000\nATTACH:long\n"
                                               "CATEGORIES:a\nCATEGORIES:b\nX-ODD:1\nBEGIN:VALARM\nDUE:1\nEND:VALARM\n"
                                               "END:VTODO\n" +
                                               eventOf("DUE:20260302\nSUMMARY:event\n")));
    ASSERT_EQ(reading.components.size(), 2U);
    const CalendarComponent &task = reading.components[0];
    EXPECT_EQ(task.kind, ComponentKind::Task);
    EXPECT_EQ(task.rawValue(EventField::Summary), "x");
    EXPECT_TRUE(task.hasAlarm);
    ASSERT_EQ(task.more.size(), 4U);
    EXPECT_EQ(task.more[0].name, "DUE");
    EXPECT_EQ(task.more[0].parameters, ";TZID=Z");
    EXPECT_EQ(task.more[0].value, "20260302T090000");
    EXPECT_EQ(task.more[0].line, 6U);
    EXPECT_EQ(task.more[1].name, "ATTACH");
    EXPECT_EQ(task.more[1].value, "") << "nobody keeps it";
    EXPECT_EQ(task.more[3].value, "b");
    EXPECT_TRUE(reading.components[1].more.empty());
}

TEST(CalendarReader, OtherComponentsAreNamedAndPassedOver)
{
    const Reading reading = readAll(calendarOf("BEGIN:VFREEBUSY\nSUMMARY:x\nBEGIN:VALARM\nEND:VALARM\nEND:VFREEBUSY\n"
                                               "BEGIN:X-ODD\nA:1\nEND:X-ODD\nBEGIN:VJOURNAL\nEND:VJOURNAL\n"));
    ASSERT_EQ(reading.components.size(), 3U);
    EXPECT_EQ(reading.components[0].name, "VFREEBUSY");
    EXPECT_EQ(reading.components[1].name, "X-ODD");
    EXPECT_EQ(reading.components[2].name, "VJOURNAL");
    EXPECT_EQ(reading.components[2].kind, ComponentKind::Other);
    EXPECT_EQ(reading.notes.strayLines, 0U);
}

TEST(CalendarReader, AZoneKeepsItsRulesButNoneByTheSecond)
{
    const Reading reading = readAll(calendarOf("BEGIN:VTIMEZONE\nTZID:Mine\nX-A:1\nBEGIN:STANDARD\nTZNAME:M\n"
                                               "DTSTART:19700101T000000\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\n"
                                               "TZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nEND:STANDARD\n"
                                               "BEGIN:DAYLIGHT\nDTSTART:19700101T000000\nRRULE:FREQ=SECONDLY\n"
                                               "RRULE:FREQ=YEARLY;BYSECOND=1,2\n"
                                               "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:DAYLIGHT\nEND:VTIMEZONE\n"));
    ASSERT_EQ(reading.components.size(), 1U);
    EXPECT_EQ(reading.components[0].kind, ComponentKind::Zone);
    EXPECT_EQ(reading.components[0].zoneId, "Mine");
    EXPECT_EQ(reading.components[0].text,
              withCrLf("BEGIN:VTIMEZONE\nTZID:Mine\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                       "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\nTZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nEND:STANDARD\n"
                       "BEGIN:DAYLIGHT\nDTSTART:19700101T000000\nTZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:DAYLIGHT\n"
                       "END:VTIMEZONE\n"));
}

TEST(CalendarReader, AZoneOfEndlessRulesIsOversized)
{
    std::string body = "BEGIN:VTIMEZONE\nTZID:Mine\nBEGIN:STANDARD\n";
    for (int n = 0; n < 10'001; ++n)
    {
        body += "RDATE:20260101T000000\n";
    }
    const Reading reading = readAll(calendarOf(body + "END:STANDARD\nEND:VTIMEZONE\n"));
    EXPECT_TRUE(reading.components.at(0).oversized);
    EXPECT_LT(reading.components[0].text.size(), 300'000U);
}

TEST(CalendarReader, AFileMayHoldSeveralCalendarsWithMarks)
{
    const std::string one = calendarOf(eventOf("UID:1\n"));
    const Reading reading = readAll("\xEF\xBB\xBF" + one + "\r\n\xEF\xBB\xBF" + one);
    EXPECT_EQ(reading.components.size(), 2U);
    EXPECT_EQ(reading.notes.calendars, 2U);
    EXPECT_EQ(reading.notes.strayLines, 0U);
}

TEST(CalendarReader, AFileThatIsNoCalendarIsRefusedWithItsLine)
{
    EXPECT_EQ(errorOf("").fault(), FileFault::NotCalendar);
    EXPECT_EQ(errorOf("").line(), 0U);
    EXPECT_EQ(errorOf("\n\n  \n").fault(), FileFault::NotCalendar);
    const CalendarFileError error = errorOf("\n\nDear diary\nBEGIN:VCALENDAR\nEND:VCALENDAR\n");
    EXPECT_EQ(error.fault(), FileFault::NotCalendar);
    EXPECT_EQ(error.line(), 3U);
    EXPECT_EQ(errorOf(std::string(3'000'000, '\0')).fault(), FileFault::NotCalendar);
    EXPECT_EQ(errorOf("BEGIN:VCARD\nEND:VCARD\n").fault(), FileFault::NotCalendar);
    EXPECT_EQ(errorOf(calendarOf(eventOf("UID:1\n")).substr(1)).fault(), FileFault::NotCalendar);
}

TEST(CalendarReader, TheOlderFormOneZeroIsRefused)
{
    const CalendarFileError error =
        errorOf(withCrLf("BEGIN:VCALENDAR\nVERSION:1.0\n" + eventOf("SUMMARY:x\n") + "END:VCALENDAR\n"));
    EXPECT_EQ(error.fault(), FileFault::NotCalendar);
    EXPECT_EQ(error.line(), 2U);
    EXPECT_NE(std::string(error.what()).find("vCalendar 1.0"), std::string::npos);
}

TEST(CalendarReader, AFileTornAtAnyLengthSaysSo)
{
    const std::string whole =
        calendarOf("BEGIN:VTIMEZONE\nTZID:M\nBEGIN:STANDARD\nEND:STANDARD\nEND:VTIMEZONE\n" +
                   eventOf("UID:1\nSUMMARY:first\n of two\nBEGIN:VALARM\nEND:VALARM\n") + eventOf("UID:2\n"));
    for (std::size_t length = 0; length < whole.size() - 2; ++length)
    {
        const FileFault fault = errorOf(std::string_view(whole).substr(0, length)).fault();
        // Torn inside its very first line it is no calendar yet.
        ASSERT_EQ(fault, length < 15 ? FileFault::NotCalendar : FileFault::Torn) << length;
    }
    for (std::size_t length = whole.size() - 2; length <= whole.size(); ++length)
    {
        ASSERT_EQ(readAll(std::string_view(whole).substr(0, length)).components.size(), 3U) << length;
    }
}

TEST(CalendarReader, ATornFileNamesWhatItEndsInside)
{
    const CalendarFileError event =
        errorOf(withCrLf("BEGIN:VCALENDAR\n" + eventOf("UID:1\n") + "BEGIN:VEVENT\nUID:2\n"));
    EXPECT_STREQ(event.what(), "is cut off: it ends inside the VEVENT that begins at line 5");
    EXPECT_EQ(event.line(), 6U);
    const CalendarFileError calendar = errorOf(withCrLf("\nBEGIN:VCALENDAR\n" + eventOf("UID:1\n")));
    EXPECT_STREQ(calendar.what(), "is cut off: it ends inside the calendar that begins at line 2");
}

TEST(CalendarReader, AnEventWithoutEndCostsItselfAlone)
{
    const Reading reading = readAll(calendarOf("BEGIN:VEVENT\nUID:1\n" + eventOf("UID:2\n") + "BEGIN:VEVENT\nUID:3\n"));
    ASSERT_EQ(reading.components.size(), 3U);
    EXPECT_TRUE(reading.components[0].unended);
    EXPECT_EQ(reading.components[0].line, 4U);
    EXPECT_FALSE(reading.components[1].unended);
    EXPECT_EQ(reading.components[1].rawValue(EventField::Uid), "2");
    EXPECT_TRUE(reading.components[2].unended);
}

TEST(CalendarReader, AnAlarmWithoutEndEndsWithItsEvent)
{
    const Reading reading = readAll(calendarOf(eventOf("UID:1\nBEGIN:VALARM\nSUMMARY:x\n") + eventOf("UID:2\n")));
    ASSERT_EQ(reading.components.size(), 2U);
    EXPECT_FALSE(reading.components[0].unended);
    EXPECT_TRUE(reading.components[0].hasAlarm);
    EXPECT_FALSE(reading.components[1].hasAlarm);
}

TEST(CalendarReader, ACalendarWithoutEndIsNotedWhenAnotherFollows)
{
    const Reading reading =
        readAll(withCrLf("BEGIN:VCALENDAR\n" + eventOf("UID:1\n")) + calendarOf(eventOf("UID:2\n")));
    EXPECT_EQ(reading.components.size(), 2U);
    EXPECT_EQ(reading.notes.unendedCalendars, 1U);
    EXPECT_EQ(reading.notes.unendedCalendarFirst, 1U);
}

TEST(CalendarReader, LinesThatBelongToNothingAreNoted)
{
    const Reading reading =
        readAll(calendarOf("garbage\n" + eventOf("UID:1\nmore of the description\nEND:NOTHING\n") + "END:VEVENT\n") +
                "-- \r\nA mailing list\r\n");
    EXPECT_EQ(reading.components.size(), 1U);
    EXPECT_EQ(reading.notes.strayLines, 6U);
    EXPECT_EQ(reading.notes.strayFirst, 4U);
}

TEST(CalendarReader, NestingOfAnyDepthTakesNoMemory)
{
    std::string body;
    for (int n = 0; n < 100'000; ++n)
    {
        body += "BEGIN:DEEP\n";
    }
    body += "SUMMARY:inner\n";
    for (int n = 0; n < 100'000; ++n)
    {
        body += "END:DEEP\n";
    }
    const Reading reading = readAll(calendarOf(eventOf(body + "SUMMARY:outer\n")));
    ASSERT_EQ(reading.components.size(), 1U);
    EXPECT_EQ(reading.components[0].rawValue(EventField::Summary), "outer");
    EXPECT_EQ(reading.notes.strayLines, 0U);
}

TEST(CalendarReader, ALineOfAMillionCharactersIsCutAndNotHeldWhereNobodyWantsIt)
{
    const std::string million(1'000'000, 'x');
    const Reading reading = readAll(calendarOf(eventOf("ATTACH:" + million + "\nSUMMARY:" + million + "\nUID:1\n")));
    ASSERT_EQ(reading.components.size(), 1U);
    EXPECT_TRUE(reading.components[0].wasCut(EventField::Summary));
    EXPECT_EQ(reading.components[0].text.size(),
              ContentLines::defaultLimit + std::string("BEGIN:VEVENT\r\n\r\nUID:1\r\nEND:VEVENT\r\n").size());
    EXPECT_EQ(reading.components[0].rawValue(EventField::Uid), "1");
}

TEST(CalendarReader, RewindingReadsTheSameAgain)
{
    const std::string text = calendarOf(eventOf("UID:1\n") + eventOf("UID:2\n"));
    const auto source = openMemory(text);
    CalendarReader reader(*source);
    CalendarComponent component;
    ASSERT_TRUE(reader.next(component));
    reader.rewind();
    for (const char *const uid : {"1", "2"})
    {
        ASSERT_TRUE(reader.next(component));
        EXPECT_EQ(component.rawValue(EventField::Uid), uid);
    }
    EXPECT_FALSE(reader.next(component));
    EXPECT_EQ(reader.notes().calendars, 1U);
    EXPECT_EQ(reader.position(), reader.size());
}

TEST(CalendarReader, RandomDamageEndsInComponentsOrInAnError)
{
    const std::string whole = calendarOf(
        "BEGIN:VTIMEZONE\nTZID:M\nBEGIN:STANDARD\nDTSTART:19700101T000000\nEND:STANDARD\nEND:VTIMEZONE\n" +
        eventOf("UID:1\nSUMMARY:ümlaut\n folded\nBEGIN:VALARM\nTRIGGER:-PT5M\nEND:VALARM\n") + eventOf("UID:2\n"));
    constexpr unsigned seed = 20261121;
    std::mt19937 random(seed);
    for (int round = 0; round < 3000; ++round)
    {
        const std::string text = zb::test::damaged(whole, random);
        const auto error = zb::test::errorOf(
            [&] { ASSERT_LT(readAll(text).components.size(), 60U) << "seed " << seed << " round " << round; });
        ASSERT_TRUE(!error || *error->what() != 0) << "seed " << seed << " round " << round;
    }
}
} // namespace
