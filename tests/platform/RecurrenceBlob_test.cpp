// The writer of recurrence patterns, byte by byte. Expected bytes are written down by hand from the layout.
#include "platform/pim_recurrence.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
using namespace zb;

DWORD dwordAt(const std::vector<BYTE> &bytes, std::size_t offset)
{
    return static_cast<DWORD>(bytes.at(offset)) | (static_cast<DWORD>(bytes.at(offset + 1)) << 8U) |
           (static_cast<DWORD>(bytes.at(offset + 2)) << 16U) | (static_cast<DWORD>(bytes.at(offset + 3)) << 24U);
}

WORD wordAt(const std::vector<BYTE> &bytes, std::size_t offset)
{
    return static_cast<WORD>(bytes.at(offset) | (bytes.at(offset + 1) << 8));
}

/// 2026-03-02, a Monday: 155,288 days after 1601-01-01.
constexpr DWORD monday = 155288U * 1440U;

RecurrencePattern series(RecurrenceFrequency frequency, RecurrenceType type)
{
    RecurrencePattern pattern;
    pattern.frequency = frequency;
    pattern.type = type;
    pattern.firstDate = monday;
    pattern.lastDate = monday + 100 * 1440;
    pattern.startMinute = 600;
    pattern.endMinute = 660;
    return pattern;
}

TEST(RecurrenceBlob, aDailyIntervalIsInMinutesAndHasNoPatternData)
{
    RecurrencePattern pattern = series(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays);
    pattern.interval = 3;
    const auto blob = encodeRecurrence(pattern);
    ASSERT_TRUE(blob);
    EXPECT_EQ(dwordAt(*blob, 0), 0x30043004U);
    EXPECT_EQ(wordAt(*blob, 4), 0x200A);
    EXPECT_EQ(wordAt(*blob, 6), 0);
    EXPECT_EQ(wordAt(*blob, 8), 0);
    EXPECT_EQ(dwordAt(*blob, 10), 0U);
    EXPECT_EQ(dwordAt(*blob, 14), 3U * 1440U);
    EXPECT_EQ(dwordAt(*blob, 18), 0U);
    EXPECT_EQ(dwordAt(*blob, 34), 0U); // deleted
    EXPECT_EQ(dwordAt(*blob, 38), 0U); // modified
    EXPECT_EQ(dwordAt(*blob, 42), monday);
    EXPECT_EQ(dwordAt(*blob, 46), monday + 100U * 1440U);
    EXPECT_EQ(dwordAt(*blob, 50), 0x3005U);
    EXPECT_EQ(dwordAt(*blob, 54), 0x3005U);
    EXPECT_EQ(dwordAt(*blob, 58), 600U);
    EXPECT_EQ(dwordAt(*blob, 62), 660U);
    EXPECT_EQ(wordAt(*blob, 66), 0);
    EXPECT_EQ(blob->size(), 76U); // at least two bytes must follow the last count
}

TEST(RecurrenceBlob, eachPatternHasItsDataAndItsDeletedCountInItsPlace)
{
    struct Row
    {
        RecurrenceFrequency frequency;
        RecurrenceType type;
        std::size_t deletedCountAt;
        std::vector<DWORD> data;
    };
    const std::vector<Row> rows = {
        {RecurrenceFrequency::Daily, RecurrenceType::Weekdays, 38, {42}},
        {RecurrenceFrequency::Weekly, RecurrenceType::Weekdays, 38, {42}},
        {RecurrenceFrequency::Monthly, RecurrenceType::DayOfMonth, 38, {17}},
        {RecurrenceFrequency::Monthly, RecurrenceType::NthWeekday, 42, {42, 4}},
        {RecurrenceFrequency::Yearly, RecurrenceType::DayOfMonth, 38, {17}},
        {RecurrenceFrequency::Yearly, RecurrenceType::NthWeekday, 42, {42, 4}},
    };
    for (const Row &row : rows)
    {
        RecurrencePattern pattern = series(row.frequency, row.type);
        pattern.weekdays = 42;
        pattern.dayOfMonth = 17;
        pattern.instance = 4;
        pattern.month = 6;
        pattern.deleted = {monday + 7 * 1440 + 600};
        const auto blob = encodeRecurrence(pattern);
        ASSERT_TRUE(blob);
        EXPECT_EQ(wordAt(*blob, 4), static_cast<WORD>(row.frequency));
        EXPECT_EQ(wordAt(*blob, 6), static_cast<WORD>(row.type));
        for (std::size_t i = 0; i < row.data.size(); ++i)
        {
            EXPECT_EQ(dwordAt(*blob, 22 + 4 * i), row.data[i]);
        }
        EXPECT_EQ(dwordAt(*blob, row.deletedCountAt), 1U);
        EXPECT_EQ(dwordAt(*blob, row.deletedCountAt + 4), monday + 7U * 1440U);
    }
}

TEST(RecurrenceBlob, aYearlySeriesTellsItsMonthInMinutesOfTheYear)
{
    RecurrencePattern pattern = series(RecurrenceFrequency::Yearly, RecurrenceType::DayOfMonth);
    const DWORD expected[12] = {0,      44640,  84960,  129600, 172800, 217440,
                                260640, 305280, 349920, 393120, 437760, 480960};
    for (DWORD month = 1; month <= 12; ++month)
    {
        pattern.month = month;
        const auto blob = encodeRecurrence(pattern);
        ASSERT_TRUE(blob);
        EXPECT_EQ(dwordAt(*blob, 10), expected[month - 1]) << month;
    }
}

TEST(RecurrenceBlob, aChangedOccurrenceStandsInBothListsAndInTheExceptions)
{
    RecurrencePattern pattern = series(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays);
    RecurrenceException exception;
    exception.originalStart = monday + 2 * 1440 + 600;
    exception.newStart = monday + 3 * 1440 + 720;
    exception.newEnd = monday + 3 * 1440 + 780;
    exception.subject = u"New";
    exception.location = u"Here";
    exception.busy = WORD{3};
    exception.allDay = false;
    exception.notesChanged = true;
    pattern.exceptions = {exception};
    const auto blob = encodeRecurrence(pattern);
    ASSERT_TRUE(blob);
    EXPECT_EQ(dwordAt(*blob, 34), 1U);
    EXPECT_EQ(dwordAt(*blob, 38), monday + 2U * 1440U);
    EXPECT_EQ(dwordAt(*blob, 42), 1U);
    EXPECT_EQ(dwordAt(*blob, 46), monday + 3U * 1440U);
    const std::size_t count = 46 + 4 + 8 + 8 + 8;
    EXPECT_EQ(wordAt(*blob, count), 1);
    std::size_t at = count + 2;
    EXPECT_EQ(dwordAt(*blob, at), exception.newStart);
    EXPECT_EQ(dwordAt(*blob, at + 4), exception.newEnd);
    EXPECT_EQ(dwordAt(*blob, at + 8), exception.originalStart);
    EXPECT_EQ(wordAt(*blob, at + 12), 0x01B1);
    EXPECT_EQ(wordAt(*blob, at + 14), 4);
    EXPECT_EQ(wordAt(*blob, at + 16), 3);
    EXPECT_EQ(wordAt(*blob, at + 18), u'N');
    at += 18 + 6;
    EXPECT_EQ(wordAt(*blob, at), 5);
    EXPECT_EQ(wordAt(*blob, at + 2), 4);
    at += 4 + 8;
    EXPECT_EQ(dwordAt(*blob, at), 3U);
    EXPECT_EQ(dwordAt(*blob, at + 4), 2U);
    EXPECT_EQ(wordAt(*blob, at + 8), 0);
    EXPECT_EQ(blob->size(), at + 10 + 8);
}

TEST(RecurrenceBlob, whatTheFormatCannotSayIsRefused)
{
    const RecurrencePattern good = series(RecurrenceFrequency::Weekly, RecurrenceType::Weekdays);
    const auto refused = [](RecurrencePattern pattern, auto change)
    {
        change(pattern);
        return !encodeRecurrence(pattern).has_value();
    };
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 0; }));
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 128; }));
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 1, p.interval = 0; }));
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 1, p.interval = 0x10000; }));
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 1, p.type = RecurrenceType::DayOfMonth; }));
    EXPECT_TRUE(refused(good, [](auto &p) { p.weekdays = 1, p.type = RecurrenceType::EveryNDays; }));
    EXPECT_FALSE(refused(good, [](auto &p) { p.weekdays = 1, p.interval = 0xFFFF; }));
    const RecurrencePattern yearly = series(RecurrenceFrequency::Yearly, RecurrenceType::DayOfMonth);
    EXPECT_TRUE(refused(yearly, [](auto &p) { p.month = 13; }));
    EXPECT_TRUE(refused(yearly, [](auto &p) { p.dayOfMonth = 32; }));
    const RecurrencePattern nth = series(RecurrenceFrequency::Monthly, RecurrenceType::NthWeekday);
    EXPECT_TRUE(refused(nth, [](auto &p) { p.weekdays = 2, p.instance = 6; }));
    EXPECT_FALSE(refused(nth, [](auto &p) { p.weekdays = 2, p.instance = 5; }));
}

TEST(RecurrenceBlob, aZoneHasItsBiasesInFrontAndItsChangesAtTheirOffsets)
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    zone.StandardDate = {0, 10, 0, 5, 3, 0, 0, 0};
    zone.DaylightDate = {0, 3, 0, 5, 2, 0, 0, 0};
    const auto blob = encodeZone(zone);
    ASSERT_EQ(blob.size(), 48U);
    EXPECT_EQ(dwordAt(blob, 0), static_cast<DWORD>(-60));
    EXPECT_EQ(dwordAt(blob, 4), 0U);
    EXPECT_EQ(dwordAt(blob, 8), static_cast<DWORD>(-60));
    EXPECT_EQ(wordAt(blob, 16), 10);
    EXPECT_EQ(wordAt(blob, 20), 5);
    EXPECT_EQ(wordAt(blob, 22), 3);
    EXPECT_EQ(wordAt(blob, 34), 3);
    EXPECT_EQ(wordAt(blob, 40), 2);
}
} // namespace
