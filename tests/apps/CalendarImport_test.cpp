// Whole files into the device's appointments: what is taken, changed, left alone and left out.
#include "apps/CalendarText.h"
#include "apps/StoredRecords.h"
#include "interchange/appointment_store.h"
#include "interchange/calendar_import.h"
#include "platform/kernel.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>

namespace
{
using namespace zb::interchange;
using zb::test::calendarOf;
using zb::test::eventOf;
using zb::test::plainEvent;
using zb::test::recordWithSubject;
using zb::test::storedRecords;
using zb::test::withCrLf;

class CalendarImportTest : public zb::test::DeviceTest
{
  protected:
    static ImportReport import(const std::string &bytes, bool dryRun = false)
    {
        const auto source = openMemory(bytes);
        ImportOptions options;
        options.dryRun = dryRun;
        return importCalendar(*source, "test.ics", options);
    }

    static std::string counts(const ImportReport &report)
    {
        return summary(report);
    }
};

TEST_F(CalendarImportTest, AnEventBecomesARecord)
{
    const ImportReport report =
        import(calendarOf(eventOf("UID:one@test\nDTSTART;TZID=America/New_York:20260302T093000\nDURATION:PT45M\n"
                                  "SUMMARY:Talk\nLOCATION:Room 7\nDESCRIPTION:Bring\\nnotes\nCLASS:PRIVATE\n"
                                  "STATUS:TENTATIVE\nBEGIN:VALARM\nTRIGGER:-PT5M\nEND:VALARM\n")));
    EXPECT_EQ(counts(report), "test.ics: 1 new, 0 changed, 0 unchanged, 0 left out");
    const auto record = recordWithSubject("Talk");
    EXPECT_EQ(record.value(zb::appointmentStart), "2026-03-02 14:30:00");
    EXPECT_EQ(record.value(zb::appointmentDuration), "45");
    EXPECT_NE(record.value(zb::appointmentDurationType), "1");
    EXPECT_EQ(record.value(zb::appointmentLocation), "Room 7");
    EXPECT_EQ(record.value(zb::itemSensitivity) != "0", true);
    EXPECT_EQ(record.value(zb::appointmentBusyStatus), "1");
    EXPECT_EQ(record.value(zb::appointmentReminderSet), "1");
    EXPECT_EQ(record.value(zb::itemInterchangeId), "one@test");
    const std::string notes = record.value(zb::itemNotes);
    EXPECT_EQ(zb::test::utf8(zb::decodeNotes(reinterpret_cast<const BYTE *>(notes.data()), notes.size())),
              "Bring\r\nnotes");
}

TEST_F(CalendarImportTest, WholeDaysEndAMinuteBeforeMidnight)
{
    import(calendarOf(eventOf("UID:a\nSUMMARY:One\nDTSTART;VALUE=DATE:20260302\n") +
                      eventOf("UID:b\nSUMMARY:Three\nDTSTART;VALUE=DATE:20260302\nDTEND;VALUE=DATE:20260305\n")));
    EXPECT_EQ(recordWithSubject("One").value(zb::appointmentDuration), "1439");
    EXPECT_EQ(recordWithSubject("Three").value(zb::appointmentDuration), "4319");
    EXPECT_EQ(recordWithSubject("Three").value(zb::appointmentDurationType), "1");
    EXPECT_EQ(recordWithSubject("Three").value(zb::appointmentStart), "2026-03-02 00:00:00");
}

TEST_F(CalendarImportTest, ASecondImportChangesNothing)
{
    const std::string text =
        calendarOf(plainEvent(1) + plainEvent(2) + eventOf("DTSTART:20260302T100000Z\nSUMMARY:No identity\n") +
                   eventOf("UID:s\nDTSTART:20260302T100000Z\nSUMMARY:Series\nRRULE:FREQ=DAILY\n") +
                   eventOf("UID:s\nRECURRENCE-ID:20260303T100000Z\nDTSTART:20260303T110000Z\nSUMMARY:Moved\n") +
                   eventOf("UID:d\nSEQUENCE:1\nDTSTART:20260302T110000Z\nSUMMARY:Newer\n") +
                   eventOf("UID:d\nSEQUENCE:0\nDTSTART:20260302T100000Z\nSUMMARY:Older\n"));
    EXPECT_EQ(counts(import(text)), "test.ics: 5 new, 0 changed, 0 unchanged, 1 left out");
    const auto before = storedRecords();
    EXPECT_EQ(counts(import(text)), "test.ics: 0 new, 0 changed, 5 unchanged, 1 left out");
    const auto after = storedRecords();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t n = 0; n < before.size(); ++n)
    {
        EXPECT_EQ(after[n].id, before[n].id);
        EXPECT_EQ(after[n].values, before[n].values);
    }
}

TEST_F(CalendarImportTest, AnUnchangedImportDoesNotTouchTheDatabase)
{
    const auto lastChange = []
    {
        CEOID id = 0;
        const HANDLE handle = CeOpenDatabase(&id, zb::appointmentsDatabase, 0, 0, nullptr);
        CEOIDINFO info{};
        CeOidGetInfo(id, &info);
        CloseHandle(handle);
        return zb::ticksOf(info.infDatabase.ftLastModified);
    };
    import(calendarOf(plainEvent(1)));
    const LONGLONG first = lastChange();
    device.advanceClock(zb::ticksPerHour);
    import(calendarOf(plainEvent(1)));
    EXPECT_EQ(lastChange(), first);
}

TEST_F(CalendarImportTest, AChangedEventChangesItsRecord)
{
    import(calendarOf(plainEvent(1) + plainEvent(2)));
    const CEOID id = recordWithSubject("Event 1").id;
    const ImportReport report =
        import(calendarOf(eventOf("UID:plain-1@test\nDTSTART:20260305T090000Z\nSUMMARY:Moved\n") + plainEvent(2)));
    EXPECT_EQ(counts(report), "test.ics: 0 new, 1 changed, 1 unchanged, 0 left out");
    const auto record = recordWithSubject("Moved");
    EXPECT_EQ(record.id, id);
    EXPECT_EQ(record.value(zb::appointmentStart), "2026-03-05 09:00:00");
    EXPECT_FALSE(record.has(zb::appointmentLocation)) << "what the event no longer says is gone";
    EXPECT_FALSE(record.has(zb::itemNotes));
    EXPECT_EQ(storedRecords().size(), 2U);
}

TEST_F(CalendarImportTest, WhatTheOwnerAddedStays)
{
    import(calendarOf(plainEvent(1)));
    const auto record = recordWithSubject("Event 1");
    CEOID id = 0;
    const HANDLE handle = CeOpenDatabase(&id, zb::appointmentsDatabase, 0, 0, nullptr);
    zb::RecordProperties extra;
    extra.set(zb::itemCategories, std::vector<BYTE>{1, 2, 3, 4});
    ASSERT_EQ(CeWriteRecordProps(handle, record.id, extra.count(), extra.values()), record.id);
    CloseHandle(handle);
    EXPECT_EQ(counts(import(calendarOf(plainEvent(1)))), "test.ics: 0 new, 0 changed, 1 unchanged, 0 left out");
    import(calendarOf(eventOf("UID:plain-1@test\nDTSTART:20260305T090000Z\nSUMMARY:Moved\n")));
    EXPECT_EQ(recordWithSubject("Moved").value(zb::itemCategories), "\x01\x02\x03\x04");
}

TEST_F(CalendarImportTest, OfSeveralVersionsTheLatestCounts)
{
    const auto version = [](const std::string &more) { return eventOf("UID:v\nDTSTART:20260302T100000Z\n" + more); };
    const ImportReport bySequence =
        import(calendarOf(version("SEQUENCE:2\nDTSTAMP:20260101T000000Z\nSUMMARY:two\n") +
                          version("SEQUENCE:10\nDTSTAMP:20250101T000000Z\nSUMMARY:ten\n") +
                          version("SEQUENCE:3\nDTSTAMP:20270101T000000Z\nSUMMARY:three\n")));
    EXPECT_EQ(bySequence.superseded, 2U);
    EXPECT_EQ(storedRecords().at(0).value(zb::itemSubject), "ten");
    import(calendarOf(version("LAST-MODIFIED:20260102T000000Z\nDTSTAMP:20250101T000000Z\nSUMMARY:later\n") +
                      version("LAST-MODIFIED:20260101T000000Z\nDTSTAMP:20270101T000000Z\nSUMMARY:earlier\n")));
    EXPECT_EQ(storedRecords().at(0).value(zb::itemSubject), "later");
    import(calendarOf(version("SUMMARY:above\n") + version("SUMMARY:below\n")));
    EXPECT_EQ(storedRecords().at(0).value(zb::itemSubject), "below");
    EXPECT_EQ(storedRecords().size(), 1U);
}

TEST_F(CalendarImportTest, CancelledEventsAndOtherComponentsAreLeftOutWithACount)
{
    const ImportReport report =
        import(calendarOf(eventOf("UID:a\nDTSTART:20260302\nSTATUS:CANCELLED\n") + plainEvent(1) +
                          "BEGIN:VJOURNAL\nEND:VJOURNAL\n"
                          "BEGIN:VJOURNAL\nEND:VJOURNAL\nBEGIN:VFREEBUSY\nEND:VFREEBUSY\n"
                          "BEGIN:X-ODD\nEND:X-ODD\n"));
    EXPECT_EQ(report.cancelled, 1U);
    EXPECT_TRUE(report.isWhole());
    EXPECT_EQ(remarks(report), (std::vector<std::string>{
                                   "test.ics: 1 cancelled event was left out",
                                   "test.ics: 1 free/busy list was left out", "test.ics: 2 journal entries were left out", "test.ics: 1 X-ODD component was left out"}));
}

TEST_F(CalendarImportTest, WhatCannotBeKeptIsToldWithItsLine)
{
    const ImportReport report =
        import(calendarOf(plainEvent(1) + eventOf("UID:a\nDTSTART:20260302T100000Z\nDTEND:20260302T090000Z\n")));
    EXPECT_EQ(report.refused, 1U);
    EXPECT_FALSE(report.isWhole());
    EXPECT_EQ(report.added, 1U);
    EXPECT_EQ(remarks(report),
              std::vector<std::string>{"test.ics:16: an event was left out: it ends before it starts"});
}

TEST_F(CalendarImportTest, ADamagedEventCostsItselfAlone)
{
    const ImportReport report = import(calendarOf(plainEvent(1) + "BEGIN:VEVENT\nUID:x\n" + plainEvent(2)));
    EXPECT_EQ(report.added, 2U);
    EXPECT_EQ(report.refused, 1U);
    EXPECT_EQ(remarks(report),
              std::vector<std::string>{"test.ics:13: an event was left out: it has no end (END:VEVENT)"});
}

TEST_F(CalendarImportTest, AZoneMayBeDefinedBehindItsEvents)
{
    import(calendarOf(eventOf("UID:a\nSUMMARY:Ship\nDTSTART;TZID=Ship:20260302T120000\n") +
                      "BEGIN:VTIMEZONE\nTZID:Ship\nBEGIN:STANDARD\nDTSTART:20200101T000000\nTZOFFSETFROM:-0330\n"
                      "TZOFFSETTO:-0330\nEND:STANDARD\nEND:VTIMEZONE\n"));
    EXPECT_EQ(recordWithSubject("Ship").value(zb::appointmentStart), "2026-03-02 15:30:00");
}

TEST_F(CalendarImportTest, AnUnknownZoneIsToldOnce)
{
    const ImportReport report = import(calendarOf(eventOf("UID:a\nDTSTART;TZID=Atlantis:20260302T120000\n") +
                                                  eventOf("UID:b\nDTSTART;TZID=Atlantis:20260303T120000\n")));
    EXPECT_EQ(remarks(report), std::vector<std::string>{"test.ics:6: the time zone \"Atlantis\" is unknown; its times "
                                                        "were taken as the device's own"});
    EXPECT_TRUE(report.isWhole());
}

TEST_F(CalendarImportTest, OddBytesAreToldWithTheirFirstLine)
{
    const ImportReport report =
        import(calendarOf(eventOf("UID:a\nDTSTART:20260302\nSUMMARY:caf\xE9\nLOCATION:\xFC\n") +
                          eventOf(std::string("UID:b\nDTSTART:20260302\nSUMMARY:x") + '\0' + "\n")));
    EXPECT_EQ(remarks(report),
              (std::vector<std::string>{"test.ics:7: 2 lines from here on are no UTF-8 and were taken as Windows-1252",
                                        "test.ics:13: the line holds zero bytes, which were dropped"}));
    EXPECT_EQ(recordWithSubject("café").value(zb::appointmentLocation), "ü");
}

TEST_F(CalendarImportTest, ADryRunTellsAllAndWritesNothing)
{
    EXPECT_EQ(counts(import(calendarOf(plainEvent(1)), true)), "test.ics: 1 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_TRUE(storedRecords().empty());
}

TEST_F(CalendarImportTest, AFileThatIsNoneOrTornLeavesNothing)
{
    const std::string whole = calendarOf(plainEvent(1) + plainEvent(2));
    for (std::size_t length = 0; length < whole.size() - 2; ++length)
    {
        const ImportReport report = import(whole.substr(0, length));
        ASSERT_TRUE(report.failure) << length;
        ASSERT_EQ(report.added, 0U) << length;
    }
    EXPECT_TRUE(storedRecords().empty());
    const ImportReport torn = import(whole.substr(0, whole.size() - 15));
    EXPECT_EQ(remarks(torn),
              std::vector<std::string>{"test.ics:21: is cut off: it ends inside the calendar that begins at line 1"});
}

TEST_F(CalendarImportTest, FilesThatCannotBeReadSayWhy)
{
    EXPECT_EQ(importCalendar(std::filesystem::path("/nonexistent/x.ics"), {}).failure->text,
              "can't be opened: No such file or directory");
    EXPECT_EQ(importCalendar(device.path(), {}).failure->text, "is a folder");
    EXPECT_EQ(importCalendar(device.path(), {}).failure->fault, FileFault::Unreadable);
}

TEST_F(CalendarImportTest, TextsBeyondARecordAreCutNotesFirst)
{
    const ImportReport report = import(calendarOf(
        eventOf("UID:a\nDTSTART:20260302\nSUMMARY:Long notes\nDESCRIPTION:" + std::string(200'000, 'n') + "\n") +
        eventOf("UID:b\nDTSTART:20260302\nSUMMARY:" + std::string(150'000, 's') +
                "\nLOCATION:" + std::string(1000, 'l') + "\nDESCRIPTION:note\n") +
        eventOf("UID:c\nDTSTART:20260302\nSUMMARY:" + std::string(2000, 'q') + "\n")));
    EXPECT_EQ(report.added, 3U);
    EXPECT_EQ(report.shortened, 4U);
    EXPECT_FALSE(report.isWhole());
    ASSERT_EQ(report.findings.size(), 4U);
    EXPECT_EQ(report.findings[0].line, 8U);
    EXPECT_EQ(report.findings[0].text.substr(0, 33), "the notes of an event was cut to ");
    EXPECT_EQ(report.findings[1].text, "the notes of an event was cut to 0 characters, all a record holds");
    EXPECT_EQ(report.findings[2].text, "the location of an event was cut to 0 characters, all a record holds");
    for (const auto &record : storedRecords())
    {
        std::size_t bytes = 15 * sizeof(CEPROPVAL);
        for (const auto &[id, value] : record.values)
        {
            bytes += TypeFromPropID(id) == CEVT_LPWSTR ? (value.size() + 1) * 2 : value.size() + value.size() % 2;
        }
        EXPECT_LE(bytes, largestReadableRecord);
    }
    EXPECT_FALSE(recordWithSubject("Long notes").value(zb::itemNotes).size() < 50'000) << "no more than needed";
    EXPECT_EQ(recordWithSubject(std::string(2000, 'q')).value(zb::itemSubject).size(), 2000U);
}

TEST_F(CalendarImportTest, ACutNeverHalvesAPair)
{
    zb::AppointmentItem item;
    item.subject = u"s";
    for (int n = 0; n < 100'000; ++n)
    {
        item.notes += u"\U0001F388";
    }
    item.notes.insert(0, u"x");
    ASSERT_EQ(shortenToRecord(item).size(), 1U);
    EXPECT_EQ(item.notes.size() % 2, 1U);
}

TEST_F(CalendarImportTest, EndlessRemarksAreCountedNotKept)
{
    std::string body;
    for (int n = 0; n < 1500; ++n)
    {
        body += eventOf("UID:" + std::to_string(n) + "\n");
    }
    const ImportReport report = import(calendarOf(body));
    EXPECT_EQ(report.refused, 1500U);
    EXPECT_EQ(report.findings.size(), 1000U);
    EXPECT_EQ(report.moreFindings, 500U);
}

TEST_F(CalendarImportTest, ProgressRisesToTheEnd)
{
    const std::string text = zb::test::manyEvents(1000);
    const auto source = openMemory(text);
    std::vector<double> told;
    ImportOptions options;
    options.progress = [&](double fraction) { told.push_back(fraction); };
    importCalendar(*source, "x", options);
    ASSERT_GT(told.size(), 5U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_GE(told.front(), 0.0);
    EXPECT_LE(told.back(), 1.0);
}

TEST_F(CalendarImportTest, MutatedSamplesNeverCrashAndImportingAgainIsQuiet)
{
    std::vector<std::string> samples;
    for (const auto &entry : std::filesystem::directory_iterator(std::filesystem::path(ZB_SOURCE_DIR) / "data/samples"))
    {
        std::ifstream stream(entry.path(), std::ios::binary);
        samples.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    ASSERT_FALSE(samples.empty());
    constexpr unsigned seed = 4711;
    std::mt19937 random(seed);
    for (int round = 0; round < 60; ++round)
    {
        std::string text = samples[random() % samples.size()];
        for (unsigned hits = random() % 30 + 1; hits > 0; --hits)
        {
            const std::size_t at = random() % text.size();
            random() % 2 == 0 ? text.erase(at, random() % 50) : text.insert(at, 1, static_cast<char>(random()));
        }
        const ImportReport first = import(text);
        const ImportReport second = import(text);
        ASSERT_EQ(second.failure.has_value(), first.failure.has_value()) << "seed " << seed << " round " << round;
        ASSERT_EQ(second.added, 0U) << "seed " << seed << " round " << round;
        ASSERT_EQ(second.updated, 0U) << "seed " << seed << " round " << round;
        ASSERT_EQ(second.unchanged, first.added + first.updated + first.unchanged) << "round " << round;
    }
}
} // namespace
