// Repeating events of calendar files as the device keeps and lists them. The test's device stands in Berlin at
// 2026-03-02 09:00 UTC.
#include "apps/CalendarText.h"
#include "apps/ListedRows.h"
#include "apps/StoredRecords.h"
#include "interchange/calendar_import.h"
#include "platform/locale.h"
#include "platform/pim_recurrence.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using namespace zb::test;
using Times = std::vector<std::string>;

class SeriesImportTest : public DeviceTest
{
  protected:
    static ImportReport import(const std::string &components)
    {
        const std::string text = calendarOf(components);
        const auto bytes = openMemory(text);
        return importCalendar(*bytes, "test.ics", {});
    }
    static std::string counts(const std::string &components)
    {
        return summary(import(components)).substr(10);
    }
    /// A weekly talk on Mondays from 2 March 2026 on, 10:00 to 11:00 in Berlin.
    static std::string talk(const std::string &lines)
    {
        return eventOf("UID:talk\nSUMMARY:Talk\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n" + lines);
    }
    static std::string change(const std::string &day, const std::string &lines)
    {
        return eventOf("UID:talk\nRECURRENCE-ID;TZID=Europe/Berlin:" + day + "\n" + lines);
    }
    /// March 2026.
    static Times march(const std::string &subject)
    {
        return listedTimes(dayNumberOf(2026, 3, 1), dayNumberOf(2026, 3, 31), subject);
    }
    static std::vector<ListedRow> rowsOf(int year, int month, int day)
    {
        return listedRows(dayNumberOf(year, month, day), dayNumberOf(year, month, day));
    }
};

const Times mondays = {"2026-03-02 10:00-11:00", "2026-03-09 10:00-11:00", "2026-03-16 10:00-11:00",
                       "2026-03-23 10:00-11:00", "2026-03-30 10:00-11:00"};

TEST_F(SeriesImportTest, ARepeatingEventIsOneRecord)
{
    const ImportReport report = import(talk("RRULE:FREQ=WEEKLY\n"));
    EXPECT_EQ(summary(report), "test.ics: 1 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(report.series, 1U);
    EXPECT_TRUE(remarks(report).empty());
    const auto record = recordWithSubject("Talk");
    EXPECT_EQ(record.value(zb::itemInterchangeId), "talk");
    EXPECT_EQ(record.value(zb::appointmentStart), "2026-03-02 09:00:00");
    EXPECT_EQ(record.value(zb::appointmentRecurringFlag), "1");
    EXPECT_TRUE(record.has(zb::appointmentRecurrence));
    EXPECT_FALSE(record.has(zb::appointmentZone)) << "it goes by the device's zone";
    EXPECT_EQ(march("Talk"), mondays);
}

TEST_F(SeriesImportTest, TheRecordHoldsThePatternItself)
{
    import(talk("RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;COUNT=3\n"));
    zb::RecurrencePattern pattern;
    pattern.frequency = zb::RecurrenceFrequency::Weekly;
    pattern.type = zb::RecurrenceType::Weekdays;
    pattern.interval = 2;
    pattern.weekdays = 2 + 8;
    pattern.end = zb::RecurrenceEnd::AfterCount;
    pattern.occurrences = 3;
    const auto minutes = [](int month, int day)
    { return static_cast<DWORD>(zb::ticksOf(makeFileTime(2026, month, day)) / zb::ticksPerMinute); };
    pattern.firstDate = minutes(3, 2);
    pattern.lastDate = minutes(3, 16);
    pattern.startMinute = 600;
    pattern.endMinute = 660;
    const auto bytes = zb::encodeRecurrence(pattern);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(recordWithSubject("Talk").value(zb::appointmentRecurrence), std::string(bytes->begin(), bytes->end()));
}

TEST_F(SeriesImportTest, AnEndTakesItsLastDayIn)
{
    import(eventOf("UID:a\nSUMMARY:Until\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n"
                   "RRULE:FREQ=WEEKLY;UNTIL=20260316T090000Z\n") +
           eventOf("UID:b\nSUMMARY:Just before\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n"
                   "RRULE:FREQ=WEEKLY;UNTIL=20260316T085959Z\n") +
           eventOf("UID:c\nSUMMARY:Date\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n"
                   "RRULE:FREQ=WEEKLY;UNTIL=20260316\n") +
           eventOf("UID:d\nSUMMARY:Count\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n"
                   "RRULE:FREQ=WEEKLY;COUNT=3\n"));
    const Times three(mondays.begin(), mondays.begin() + 3);
    EXPECT_EQ(march("Until"), three);
    EXPECT_EQ(march("Just before"), Times(mondays.begin(), mondays.begin() + 2));
    EXPECT_EQ(march("Date"), three);
    EXPECT_EQ(march("Count"), three);
}

TEST_F(SeriesImportTest, AnEndBeyondAllListsIsNone)
{
    EXPECT_EQ(import(talk("RRULE:FREQ=DAILY;UNTIL=99991231T235959Z\n")).series, 1U);
    EXPECT_EQ(listedTimes(dayNumberOf(2900, 1, 1), dayNumberOf(2900, 1, 1), "Talk").size(), 1U);
    import(talk("RRULE:FREQ=DAILY;COUNT=2000000000\n"));
    EXPECT_EQ(listedTimes(dayNumberOf(2900, 1, 1), dayNumberOf(2900, 1, 1), "Talk").size(), 1U);
    import(talk("RRULE:FREQ=DAILY;UNTIL=23001231T085959Z\n"));
    EXPECT_EQ(listedTimes(dayNumberOf(2300, 12, 29), dayNumberOf(2301, 1, 5), "Talk").size(), 2U)
        << "29 and 30 December";
}

TEST_F(SeriesImportTest, WholeDaysBeginAtTheDevicesMidnight)
{
    import(eventOf("UID:b\nSUMMARY:Name day\nDTSTART;VALUE=DATE:20200310\nRRULE:FREQ=YEARLY\n") +
           eventOf("UID:f\nSUMMARY:Fair\nDTSTART;VALUE=DATE:20260330\nDTEND;VALUE=DATE:20260401\n"
                   "RRULE:FREQ=YEARLY;COUNT=2\n"));
    const auto record = recordWithSubject("Name day");
    EXPECT_EQ(record.value(zb::appointmentStart), "2020-03-09 23:00:00") << "midnight in Berlin";
    EXPECT_EQ(record.value(zb::appointmentDuration), "1439");
    EXPECT_FALSE(record.has(zb::appointmentZone));
    EXPECT_EQ(march("Name day"), Times{"2026-03-10"});
    EXPECT_EQ(march("Fair"), (Times{"2026-03-30", "2026-03-31"}));
    EXPECT_EQ(listedTimes(dayNumberOf(2027, 3, 31), dayNumberOf(2027, 4, 2), "Fair"), Times{"2027-03-31"});
}

TEST_F(SeriesImportTest, AnotherZoneGoesWithTheRecord)
{
    import(eventOf("UID:n\nSUMMARY:New York\nDTSTART;TZID=America/New_York:20260302T090000\nDURATION:PT30M\n"
                   "RRULE:FREQ=WEEKLY\n"));
    const std::string blob = recordWithSubject("New York").value(zb::appointmentZone);
    const auto zone = zb::zoneRecord("America/New_York", 2026);
    ASSERT_TRUE(zone);
    const auto expected = zb::encodeZone(*zone);
    EXPECT_EQ(blob, std::string(expected.begin(), expected.end()));
    // Daylight time begins on 8 March there and on 29 March in Berlin.
    EXPECT_EQ(march("New York"), (Times{"2026-03-02 15:00-15:30", "2026-03-09 14:00-14:30", "2026-03-16 14:00-14:30",
                                        "2026-03-23 14:00-14:30", "2026-03-30 15:00-15:30"}));
}

TEST_F(SeriesImportTest, ASeriesInUtcKeepsUtc)
{
    import(eventOf("UID:u\nSUMMARY:Utc\nDTSTART:20260302T120000Z\nDURATION:PT1H\nRRULE:FREQ=DAILY\n"));
    EXPECT_TRUE(recordWithSubject("Utc").has(zb::appointmentZone));
    EXPECT_EQ(listedTimes(dayNumberOf(2026, 3, 28), dayNumberOf(2026, 3, 30), "Utc"),
              (Times{"2026-03-28 13:00-14:00", "2026-03-29 14:00-15:00", "2026-03-30 14:00-15:00"}));
}

TEST_F(SeriesImportTest, AZoneByTheFilesOwnRulesGoesWithTheRecord)
{
    const std::string zone = "BEGIN:VTIMEZONE\nTZID:Our ship\nBEGIN:STANDARD\nDTSTART:20071104T020000\n"
                             "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\nTZOFFSETFROM:-0600\nTZOFFSETTO:-0700\n"
                             "END:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:20070311T020000\n"
                             "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\nTZOFFSETFROM:-0700\nTZOFFSETTO:-0600\n"
                             "END:DAYLIGHT\nEND:VTIMEZONE\n";
    import(zone + eventOf("UID:s\nSUMMARY:Ship\nDTSTART;TZID=Our ship:20260302T080000\nDURATION:PT1H\n"
                          "RRULE:FREQ=WEEKLY;COUNT=3\n"));
    TIME_ZONE_INFORMATION expected{};
    expected.Bias = 420;
    expected.DaylightBias = -60;
    expected.DaylightDate = SYSTEMTIME{0, 3, 0, 2, 2, 0, 0, 0};
    expected.StandardDate = SYSTEMTIME{0, 11, 0, 1, 2, 0, 0, 0};
    const auto bytes = zb::encodeZone(expected);
    EXPECT_EQ(recordWithSubject("Ship").value(zb::appointmentZone), std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ(march("Ship"), (Times{"2026-03-02 16:00-17:00", "2026-03-09 15:00-16:00", "2026-03-16 15:00-16:00"}));
}

TEST_F(SeriesImportTest, DeletedDaysAreLeftOutHoweverTheyAreWritten)
{
    import(talk("RRULE:FREQ=WEEKLY\nEXDATE:20260309T090000Z\n"
                "EXDATE;TZID=America/New_York:20260316T050000,20260323T050000\nEXDATE;VALUE=DATE:20260330\n"
                "EXDATE;TZID=Europe/Berlin:20260302T110000\n"));
    EXPECT_EQ(march("Talk"), Times{mondays[0]}) << "an hour beside the start deletes nothing";
}

TEST_F(SeriesImportTest, AChangedDayIsPartOfTheRecord)
{
    const ImportReport report =
        import(talk("LOCATION:Hall\nRRULE:FREQ=WEEKLY\n") +
               change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260309T140000\nDURATION:PT2H\nSUMMARY:Late\n"
                                         "LOCATION:Attic\nX-MICROSOFT-CDO-BUSYSTATUS:OOF\n"));
    EXPECT_EQ(report.added, 1U);
    EXPECT_EQ(report.changedDays, 1U);
    EXPECT_EQ(march("Late"), Times{"2026-03-09 14:00-16:00"});
    EXPECT_EQ(march("Talk").size(), 4U);
    const auto rows = rowsOf(2026, 3, 9);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_TRUE(rows[0].exception);
    EXPECT_EQ(rows[0].location, "Attic");
    EXPECT_EQ(rows[0].busy, 3);
    EXPECT_EQ(rowsOf(2026, 3, 16).at(0).location, "Hall");
}

TEST_F(SeriesImportTest, WhatAChangedDayLeavesOutStaysAsInTheSeries)
{
    import(talk("LOCATION:Hall\nDESCRIPTION:Slides\nCLASS:PRIVATE\nRRULE:FREQ=WEEKLY\nBEGIN:VALARM\nEND:VALARM\n") +
           change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260309T140000\nDURATION:PT1H\n"));
    const auto rows = rowsOf(2026, 3, 9);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].subject, "Talk");
    EXPECT_EQ(rows[0].location, "Hall");
    EXPECT_TRUE(rows[0].isPrivate);
    EXPECT_TRUE(rows[0].reminder);
}

TEST_F(SeriesImportTest, AChangedDayMayBecomeAWholeDay)
{
    import(talk("RRULE:FREQ=WEEKLY\n") + change("20260309T100000", "DTSTART;VALUE=DATE:20260309\nSUMMARY:Talk\n"));
    EXPECT_EQ(march("Talk")[1], "2026-03-09");
    EXPECT_EQ(storedRecords().size(), 1U);
}

TEST_F(SeriesImportTest, ADayThatMovesLaterStaysInTheRecordAndShowsInEveryRange)
{
    const ImportReport report =
        import(talk("RRULE:FREQ=WEEKLY\n") + change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260311T150000\n"
                                                                       "DURATION:PT1H\nSUMMARY:Talk\n"));
    EXPECT_EQ(report.added, 1U);
    EXPECT_EQ(report.changedDays, 1U);
    EXPECT_EQ(march("Talk"), (Times{mondays[0], "2026-03-11 15:00-16:00", mondays[2], mondays[3], mondays[4]}));
    EXPECT_EQ(rowsOf(2026, 3, 11).size(), 1U);
    EXPECT_EQ(rowsOf(2026, 3, 9).size(), 0U);
}

TEST_F(SeriesImportTest, WhatTheRecordCannotSayOfAChangedDayIsAnAppointmentOfItsOwn)
{
    const ImportReport report = import(
        talk("DESCRIPTION:Slides\nRRULE:FREQ=WEEKLY\n") +
        change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260305T100000\nDURATION:PT1H\nSUMMARY:Earlier\n") +
        change("20260316T100000",
               "DTSTART;TZID=Europe/Berlin:20260316T100000\nDURATION:PT1H\nSUMMARY:Noted\nDESCRIPTION:Other\n") +
        change("20260323T100000",
               "DTSTART;TZID=Europe/Berlin:20260323T100000\nDURATION:PT1H\nSUMMARY:Secret\nCLASS:PRIVATE\n"));
    EXPECT_EQ(report.added, 4U);
    EXPECT_EQ(report.changedDays, 0U);
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[4]}));
    EXPECT_EQ(march("Earlier"), Times{"2026-03-05 10:00-11:00"}) << "lists look for nothing behind their range";
    EXPECT_EQ(rowsOf(2026, 3, 5).size(), 1U);
    EXPECT_TRUE(rowsOf(2026, 3, 23).at(0).isPrivate);
    EXPECT_EQ(recordWithSubject("Noted").value(zb::itemInterchangeId), "talk\n20260316T090000Z");
    EXPECT_EQ(recordWithSubject("Noted").value(zb::appointmentRecurringFlag), "1");
}

TEST_F(SeriesImportTest, ACancelledDayIsDeleted)
{
    const ImportReport report = import(talk("RRULE:FREQ=WEEKLY\n") + change("20260309T100000", "STATUS:CANCELLED\n"));
    EXPECT_EQ(report.cancelledDays, 1U);
    EXPECT_EQ(report.added, 1U);
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[2], mondays[3], mondays[4]}));
}

TEST_F(SeriesImportTest, TheOrderInTheFileDoesNotMatter)
{
    const std::string moved =
        change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260309T140000\nDURATION:PT1H\nSUMMARY:Late\n");
    EXPECT_EQ(counts(moved + plainEvent(1) + talk("RRULE:FREQ=WEEKLY\n")), "2 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY\n") + moved + plainEvent(1)), "0 new, 0 changed, 2 unchanged, 0 left out");
}

TEST_F(SeriesImportTest, AChangedDayWithoutItsSeriesIsASingleAppointment)
{
    EXPECT_EQ(counts(change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260309T140000\nDURATION:PT1H\n"
                                               "SUMMARY:Late\n")),
              "1 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(recordWithSubject("Late").value(zb::itemInterchangeId), "talk\n20260309T090000Z");
    EXPECT_EQ(recordWithSubject("Late").value(zb::appointmentRecurringFlag), "0");
    // Later the series comes in with the same change: the record tells it now, and the appointment goes.
    EXPECT_EQ(
        counts(talk("RRULE:FREQ=WEEKLY\n") +
               change("20260309T100000", "DTSTART;TZID=Europe/Berlin:20260309T140000\nDURATION:PT1H\nSUMMARY:Late\n")),
        "1 new, 0 changed, 0 unchanged, 0 left out, 1 removed");
    EXPECT_EQ(march("Late").size(), 1U);
    EXPECT_EQ(storedRecords().size(), 1U);
}

TEST_F(SeriesImportTest, AChangedDayOfAnotherFileSurvivesAnImportOfItsSeriesAlone)
{
    import(change("20260310T100000", "DTSTART;TZID=Europe/Berlin:20260310T140000\nDURATION:PT1H\nSUMMARY:Extra\n"));
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY\n")), "1 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(march("Extra").size(), 1U);
}

TEST_F(SeriesImportTest, ASeriesThatBecomesSingleAndBack)
{
    const std::string rule = talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=2,16;COUNT=4\n");
    EXPECT_EQ(counts(rule), "4 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(counts(talk("")), "0 new, 1 changed, 0 unchanged, 0 left out, 3 removed");
    EXPECT_EQ(march("Talk"), Times{mondays[0]});
    EXPECT_EQ(recordWithSubject("Talk").value(zb::appointmentRecurringFlag), "0");
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY\n")), "0 new, 1 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(march("Talk"), mondays);
    EXPECT_EQ(counts(rule), "3 new, 1 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[2]}));
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY\n")), "0 new, 1 changed, 0 unchanged, 0 left out, 3 removed");
    EXPECT_EQ(counts(talk("")), "0 new, 1 changed, 0 unchanged, 0 left out");
    EXPECT_FALSE(recordWithSubject("Talk").has(zb::appointmentRecurrence));
}

TEST_F(SeriesImportTest, AStartThatTheRuleDoesNotNameIsTheFirstDayNevertheless)
{
    // Tuesdays from a Monday on: the Monday counts as the first of four.
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY;BYDAY=TU;COUNT=4\n")), "2 new, 0 changed, 0 unchanged, 0 left out");
    const Times expected = {mondays[0], "2026-03-03 10:00-11:00", "2026-03-10 10:00-11:00", "2026-03-17 10:00-11:00"};
    EXPECT_EQ(march("Talk"), expected);
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY;BYDAY=TU;COUNT=4\n")), "0 new, 0 changed, 2 unchanged, 0 left out");
    import(talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=10,17;COUNT=3\n"));
    EXPECT_EQ(march("Talk"), (Times{expected[0], expected[2], expected[3]})) << "unrolled, by the same count";
}

TEST_F(SeriesImportTest, DaysListedOneByOneStandBesideTheSeries)
{
    const std::string file =
        talk("RRULE:FREQ=WEEKLY;COUNT=2\nRDATE;TZID=Europe/Berlin:20260304T100000,20260309T100000\n"
             "RDATE;VALUE=PERIOD:20260305T120000Z/20260305T150000Z,20260306T120000Z/PT30M\n"
             "RDATE;VALUE=DATE:20260307\n");
    EXPECT_EQ(counts(file), "5 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_EQ(march("Talk"), (Times{mondays[0], "2026-03-04 10:00-11:00", "2026-03-05 13:00-16:00",
                                    "2026-03-06 13:00-13:30", "2026-03-07 10:00-11:00", mondays[1]}));
    EXPECT_EQ(counts(file), "0 new, 0 changed, 5 unchanged, 0 left out");
    EXPECT_EQ(counts(talk("RRULE:FREQ=WEEKLY;COUNT=2\n")), "0 new, 0 changed, 1 unchanged, 0 left out, 4 removed");
}

TEST_F(SeriesImportTest, RulesThatNoRecordHoldsAreUnrolledAroundToday)
{
    const ImportReport report = import(talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=2,16\n"));
    EXPECT_EQ(report.unrolled, 1U);
    // 2 and 16 of each month from 2 March 2026 to the eve of five years later.
    EXPECT_EQ(report.added, 120U);
    EXPECT_EQ(report.unrolledAppointments, 120U);
    EXPECT_TRUE(report.isWhole());
    EXPECT_EQ(remarks(report),
              (Times{"test.ics:9: a repeating event came in as 120 single appointments, those from 2025-03-02 to "
                     "2031-03-01: it repeats on several days of a month",
                     "test.ics: 1 repeating event came in as 120 single appointments"}));
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[2]}));
    EXPECT_EQ(rowsOf(2026, 3, 2).at(0).recurring, false);
    EXPECT_EQ(counts(talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=2,16\n")), "0 new, 0 changed, 120 unchanged, 0 left out");
}

TEST_F(SeriesImportTest, AnUnrolledEventHasAThousandDaysAtMostAndItsFirstAlways)
{
    const ImportReport report = import(eventOf("UID:h\nSUMMARY:Hourly\nDTSTART:20190101T000000Z\nDURATION:PT5M\n"
                                               "RRULE:FREQ=HOURLY\n"));
    EXPECT_EQ(report.added, 1000U);
    EXPECT_NE(report.findings.at(0).text.find("(1,000 at most)"), std::string::npos);
    EXPECT_EQ(listedTimes(dayNumberOf(2019, 1, 1), dayNumberOf(2019, 1, 2), "Hourly").size(), 1U);
    EXPECT_EQ(listedTimes(dayNumberOf(2026, 3, 10), dayNumberOf(2026, 3, 10), "Hourly").size(), 24U);
}

TEST_F(SeriesImportTest, DaysOfThePastStayWhenTheWindowMovesOn)
{
    const std::string file = talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=2,16\n");
    import(file);
    device.advanceClock(2 * 365 * zb::ticksPerDay);
    const ImportReport later = import(file);
    EXPECT_EQ(later.removed, 0U);
    EXPECT_EQ(later.added, 48U);
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[2]}));
}

TEST_F(SeriesImportTest, SeveralRulesAndRulesOfExceptionsAreUnrolled)
{
    import(talk("RRULE:FREQ=WEEKLY;COUNT=3\nRRULE:FREQ=DAILY;COUNT=2\nEXRULE:FREQ=WEEKLY;INTERVAL=2;COUNT=2\n"));
    EXPECT_EQ(march("Talk"), (Times{"2026-03-03 10:00-11:00", mondays[1]}));
}

TEST_F(SeriesImportTest, AChangeOfAllLaterDaysIsFollowed)
{
    const ImportReport report =
        import(talk("RRULE:FREQ=WEEKLY;COUNT=5\n") +
               eventOf("UID:talk\nRECURRENCE-ID;RANGE=THISANDFUTURE;TZID=Europe/Berlin:20260316T100000\n"
                       "DTSTART;TZID=Europe/Berlin:20260317T150000\nDURATION:PT2H\nSUMMARY:Seminar\n"));
    EXPECT_EQ(march("Talk"), Times(mondays.begin(), mondays.begin() + 2));
    EXPECT_EQ(march("Seminar"), (Times{"2026-03-17 15:00-17:00", "2026-03-24 15:00-17:00", "2026-03-31 15:00-17:00"}));
    EXPECT_NE(report.findings.at(0).text.find("all it has: it changes for good from one of its days on"),
              std::string::npos)
        << report.findings.at(0).text;
}

TEST_F(SeriesImportTest, SeriesThatListsWouldLoseAreUnrolled)
{
    // Eight in the morning in Auckland is the evening before in Berlin, behind the end of a list of that day.
    const auto reasonOf = [](const std::string &lines)
    {
        const ImportReport report = import(eventOf("UID:x\nSUMMARY:X\n" + lines));
        return report.unrolled == 1 ? report.findings.at(0).text : "one record";
    };
    EXPECT_NE(reasonOf("DTSTART;TZID=Pacific/Auckland:20260303T080000\nDURATION:PT1H\nRRULE:FREQ=WEEKLY;COUNT=3\n")
                  .find("so far ahead"),
              std::string::npos);
    EXPECT_EQ(listedTimes(dayNumberOf(2026, 3, 9), dayNumberOf(2026, 3, 9), "X"), Times{"2026-03-09 20:00-21:00"});
    EXPECT_NE(reasonOf("DTSTART;VALUE=DATE:20260303\nDURATION:P4D\nRRULE:FREQ=MONTHLY;COUNT=3\n").find("look back"),
              std::string::npos);
    EXPECT_EQ(reasonOf("DTSTART;VALUE=DATE:20260303\nDURATION:P3D\nRRULE:FREQ=MONTHLY;COUNT=3\n"), "one record");
    EXPECT_NE(reasonOf("DTSTART:20260303T080000\nDURATION:P2DT1H\nRRULE:FREQ=DAILY;INTERVAL=2;COUNT=3\n")
                  .find("begins again"),
              std::string::npos);
}

TEST_F(SeriesImportTest, ANightShiftOfEveryDayShowsOnItsMorningToo)
{
    EXPECT_EQ(
        import(eventOf("UID:n\nSUMMARY:Night\nDTSTART:20260302T220000\nDURATION:PT8H\nRRULE:FREQ=DAILY\n")).series, 1U);
    EXPECT_EQ(listedTimes(dayNumberOf(2026, 3, 10), dayNumberOf(2026, 3, 10), "Night"),
              (Times{"2026-03-10 22:00-06:00", "2026-03-10 22:00-06:00"}))
        << "the one that ends on this day, and the one that begins";
}

TEST_F(SeriesImportTest, SeriesFromBeforeTheListsBeginWithThem)
{
    EXPECT_EQ(import(eventOf("UID:o\nSUMMARY:Old\nDTSTART;VALUE=DATE:17890714\nRRULE:FREQ=YEARLY\n")).series, 1U);
    EXPECT_EQ(listedTimes(dayNumberOf(2026, 7, 1), dayNumberOf(2026, 7, 31), "Old"), Times{"2026-07-14"});
}

TEST_F(SeriesImportTest, RulesThatCannotBeFollowedLeaveTheFirstDayAndSaySo)
{
    for (const char *rule : {"", "FREQ=", "DAILY", "FREQ=SOMETIMES", "FREQ=DAILY;INTERVAL=0", "FREQ=DAILY;COUNT=-1",
                             "FREQ=DAILY;UNTIL=garbage", "FREQ=WEEKLY;BYDAY=XX", "FREQ=MONTHLY;INTERVAL=99999",
                             "FREQ=YEARLY;RSCALE=CHINESE", "FREQ=SECONDLY;BYMONTH=2", "FREQ=HOURLY;INTERVAL=5;BYHOUR=3",
                             "FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=MONTHLY;BYDAY=6MO"})
    {
        const ImportReport report = import(talk(std::string("RRULE:") + rule + "\n"));
        EXPECT_EQ(report.repeating, 1U) << rule;
        EXPECT_EQ(report.findings.size(), 1U) << rule;
        EXPECT_EQ(report.findings.at(0).line, 9U);
        EXPECT_EQ(report.findings.at(0).text,
                  std::string("the rule \"") + rule + "\" can't be followed; the event came in as its first day only");
        EXPECT_EQ(march("Talk"), Times{mondays[0]}) << rule;
    }
    const ImportReport report = import(talk("RRULE:FREQ=DAILY;\x01X=" + std::string(200, 'y') + "\n"));
    EXPECT_EQ(report.findings.at(0).text.size(), 3 + 7 + 80 + 3 + 60U) << report.findings.at(0).text;
}

TEST_F(SeriesImportTest, DaysThatCannotBeReadArePassedOver)
{
    const ImportReport report = import(talk("RRULE:FREQ=WEEKLY\nEXDATE:garbage,,20260309T090000Z\nRDATE:20269999\n"));
    EXPECT_EQ(march("Talk"), (Times{mondays[0], mondays[2], mondays[3], mondays[4]}));
    ASSERT_EQ(report.findings.size(), 2U);
    EXPECT_EQ(report.findings[0].line, 10U);
    EXPECT_EQ(report.findings[1].line, 11U);
}

TEST_F(SeriesImportTest, AChangeThatNoRecordHoldsLeavesItsDayAlone)
{
    const ImportReport report = import(talk("RRULE:FREQ=WEEKLY\n") + change("20260309T100000", "DTSTART:garbage\n"));
    EXPECT_EQ(report.refused, 1U);
    EXPECT_EQ(march("Talk"), mondays);
}

TEST_F(SeriesImportTest, ACancelledSeriesIsLeftOutWithItsChanges)
{
    const ImportReport report = import(talk("STATUS:CANCELLED\nRRULE:FREQ=WEEKLY\n") +
                                       change("20260309T100000", "DTSTART:20260309T140000\nSUMMARY:Late\n"));
    EXPECT_EQ(report.cancelled, 2U);
    EXPECT_EQ(storedRecords().size(), 0U);
}

TEST_F(SeriesImportTest, ASeriesWithoutADayLeftIsRefused)
{
    const ImportReport report =
        import(talk("RDATE;TZID=Europe/Berlin:20260309T100000\nEXDATE:20260302T090000Z,20260309T090000Z\n"));
    EXPECT_EQ(report.refused, 1U);
    EXPECT_EQ(report.findings.at(0).text, "an event was left out: none of its days is left");
}

TEST_F(SeriesImportTest, ADryRunWritesNothing)
{
    const std::string text = calendarOf(talk("RRULE:FREQ=MONTHLY;BYMONTHDAY=2,16\n"));
    const auto bytes = openMemory(text);
    ImportOptions options;
    options.dryRun = true;
    EXPECT_EQ(importCalendar(*bytes, "test.ics", options).added, 120U);
    EXPECT_EQ(storedRecords().size(), 0U);
}
} // namespace
