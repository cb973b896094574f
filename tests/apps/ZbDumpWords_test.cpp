// zb dump in words: what the pattern of a series and the zone of a record mean.
#include "apps/ZbFixture.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/pim_recurrence.h"

namespace
{
using zb::RecurrenceException;
using zb::RecurrenceFrequency;
using zb::RecurrencePattern;
using zb::RecurrenceType;
using Words = std::vector<std::string>;

DWORD minutes(int year, int month, int day, int hour = 0, int minute = 0)
{
    return static_cast<DWORD>(zb::ticksOf(zb::test::makeFileTime(year, month, day, hour, minute)) / zb::ticksPerMinute);
}

class ZbDumpWordsTest : public zb::test::ZbTest
{
  protected:
    /// The words beside a blob that the device holds.
    Words words(CEPROPID property, const std::vector<BYTE> &blob) const
    {
        std::filesystem::remove_all(device());
        {
            zb::DeviceOptions options;
            options.root = device();
            const auto opened = zb::OpenDevice(options);
            zb::RecordProperties properties;
            properties.set(property, blob);
            CEOID database = 0;
            const HANDLE handle = CeOpenDatabase(&database, zb::appointmentsDatabase, 0, 0, nullptr);
            EXPECT_NE(CeWriteRecordProps(handle, 0, properties.count(), properties.values()), 0U);
            CloseHandle(handle);
        }
        const nlohmann::json found =
            json({"dump", "Appointments Database", "--json"})["records"][0]["properties"][0]["words"];
        Words lines = found.is_null() ? Words() : found.get<Words>();
        const std::string text = zb({"dump", "Appointments Database"}).out;
        for (const std::string &line : lines)
        {
            EXPECT_NE(text.find("\n" + std::string(42, ' ') + line + "\n"), std::string::npos) << line << "\n" << text;
        }
        return lines;
    }
    Words words(const RecurrencePattern &pattern) const
    {
        return words(zb::appointmentRecurrence, zb::encodeRecurrence(pattern).value());
    }
    std::string rule(const RecurrencePattern &pattern) const
    {
        const Words lines = words(pattern);
        return lines.empty() ? std::string() : lines[0];
    }
};

RecurrencePattern series(RecurrenceFrequency frequency, RecurrenceType type, DWORD interval)
{
    RecurrencePattern pattern;
    pattern.frequency = frequency;
    pattern.type = type;
    pattern.interval = interval;
    pattern.firstDate = minutes(2026, 3, 2);
    pattern.lastDate = zb::endlessSeriesDate;
    pattern.startMinute = 9 * 60 + 5;
    pattern.endMinute = 10 * 60;
    return pattern;
}

TEST_F(ZbDumpWordsTest, EveryKindOfRuleHasItsWords)
{
    using enum RecurrenceFrequency;
    EXPECT_EQ(rule(series(Daily, RecurrenceType::EveryNDays, 1)), "every day");
    EXPECT_EQ(rule(series(Daily, RecurrenceType::EveryNDays, 3)), "every 3 days");
    RecurrencePattern pattern = series(Daily, RecurrenceType::Weekdays, 1);
    pattern.weekdays = 62;
    EXPECT_EQ(rule(pattern), "every weekday, Monday to Friday");
    pattern = series(Weekly, RecurrenceType::Weekdays, 2);
    pattern.weekdays = 0b0100101;
    EXPECT_EQ(rule(pattern), "every 2 weeks on Sunday, Tuesday, Friday");
    pattern = series(Monthly, RecurrenceType::DayOfMonth, 1);
    pattern.dayOfMonth = 31;
    EXPECT_EQ(rule(pattern), "day 31 of every month");
    pattern = series(Monthly, RecurrenceType::NthWeekday, 3);
    pattern.weekdays = 62;
    pattern.instance = 5;
    EXPECT_EQ(rule(pattern), "the last weekday of every 3 months");
    pattern = series(Yearly, RecurrenceType::DayOfMonth, 12);
    pattern.dayOfMonth = 29;
    pattern.month = 2;
    EXPECT_EQ(rule(pattern), "29 February, every year");
    pattern = series(Yearly, RecurrenceType::NthWeekday, 12);
    pattern.weekdays = 16;
    pattern.instance = 4;
    pattern.month = 11;
    EXPECT_EQ(rule(pattern), "the fourth Thursday of November, every year");
}

TEST_F(ZbDumpWordsTest, DatesAndTimesFollow)
{
    RecurrencePattern pattern = series(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays, 1);
    EXPECT_EQ(words(pattern), (Words{"every day", "from 2026-03-02 without end, 09:05 to 10:00"}));
    pattern.lastDate = minutes(2026, 4, 30);
    pattern.startMinute = 22 * 60;
    pattern.endMinute = 26 * 60;
    EXPECT_EQ(words(pattern)[1], "from 2026-03-02 to 2026-04-30, 22:00 to 02:00 1 day later");
}

TEST_F(ZbDumpWordsTest, DeletedAndChangedOccurrencesAreTold)
{
    RecurrencePattern pattern = series(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays, 1);
    pattern.deleted = {minutes(2026, 3, 5)};
    RecurrenceException moved;
    moved.originalStart = minutes(2026, 3, 9, 9, 5);
    moved.newStart = minutes(2026, 3, 10, 14);
    moved.newEnd = minutes(2026, 3, 10, 15, 30);
    moved.subject = u"Moved";
    moved.location = u"Hall";
    moved.busy = WORD{3};
    moved.notesChanged = true;
    RecurrenceException whole;
    whole.originalStart = minutes(2026, 3, 12, 9, 5);
    whole.newStart = minutes(2026, 3, 12, 9, 5);
    whole.newEnd = minutes(2026, 3, 12, 10);
    whole.allDay = true;
    pattern.exceptions = {moved, whole};
    const Words lines = words(pattern);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[2], "2026-03-05 deleted");
    EXPECT_EQ(lines[3], "2026-03-09 changed: 2026-03-10 14:00 to 2026-03-10 15:30, subject \"Moved\", location "
                        "\"Hall\", out of office, notes of its own");
    EXPECT_EQ(lines[4], "2026-03-12 changed: 2026-03-12 09:05 to 2026-03-12 10:00, all day");
}

TEST_F(ZbDumpWordsTest, WhatIsNoPatternIsCalledSo)
{
    EXPECT_EQ(words(zb::appointmentRecurrence, {1, 2, 3}),
              (Words{"no pattern that can be read; counts as a single appointment"}));
    std::vector<BYTE> torn =
        zb::encodeRecurrence(series(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays, 1)).value();
    torn.resize(40);
    EXPECT_EQ(words(zb::appointmentRecurrence, torn).size(), 1U);
}

TEST_F(ZbDumpWordsTest, AZoneTellsItsChanges)
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    zone.StandardDate.wMonth = 10;
    zone.StandardDate.wDay = 5;
    zone.StandardDate.wHour = 3;
    zone.DaylightDate.wMonth = 3;
    zone.DaylightDate.wDay = 5;
    zone.DaylightDate.wHour = 2;
    EXPECT_EQ(words(zb::appointmentZone, zb::encodeZone(zone)),
              (Words{"UTC+01:00 from the last Sunday of October at 03:00",
                     "UTC+02:00 from the last Sunday of March at 02:00"}));
    zone = {};
    zone.Bias = 210;
    EXPECT_EQ(words(zb::appointmentZone, zb::encodeZone(zone)), (Words{"UTC-03:30 all year"}));
    EXPECT_EQ(words(zb::appointmentZone, std::vector<BYTE>(20)), (Words{"a zone that was cut off"}));
}
} // namespace
