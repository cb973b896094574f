// Recurrence blobs, written here byte by byte: what the reader takes from them, and what it does with bad ones.
#include "calendar/CRecurrenceReader.h"

#include "core/bstrtools.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::test::utf8;
using Bytes = std::vector<BYTE>;

/// Minutes since 1601, by the standard calendar.
DWORD minutes(int year, int month, int day, int hour = 0, int minute = 0)
{
    using namespace std::chrono;
    const auto days = sys_days(std::chrono::year(year) / month / day) - sys_days(1601y / 1 / 1);
    return static_cast<DWORD>(days.count() * 1440 + hour * 60 + minute);
}

/// Whole day as a variant date.
double variant(int year, int month, int day)
{
    using namespace std::chrono;
    return static_cast<double>((sys_days(std::chrono::year(year) / month / day) - sys_days(1899y / 12 / 30)).count());
}

class BlobWriter
{
  public:
    BlobWriter &word(unsigned value)
    {
        bytes.push_back(static_cast<BYTE>(value));
        bytes.push_back(static_cast<BYTE>(value >> 8U));
        return *this;
    }
    BlobWriter &dword(DWORD value)
    {
        return word(value & 0xFFFFU).word(value >> 16U);
    }
    BlobWriter &text(const char16_t *value)
    {
        const std::u16string text(value);
        word(static_cast<unsigned>(text.size()) + 1).word(static_cast<unsigned>(text.size()));
        for (const char16_t ch : text)
        {
            word(ch);
        }
        return *this;
    }
    Bytes bytes;
};

/// What a test says of a blob; the rest is a plain series of 2026 from 09:00 to 09:45.
struct Blob
{
    DWORD magic = 0x30043004;
    unsigned frequency = 0x200B;
    unsigned type = 1;
    unsigned zero8 = 0;
    DWORD first = 0;
    DWORD period = 1;
    DWORD zero18 = 0;
    std::vector<DWORD> data{0x22};
    unsigned endType = 1;
    unsigned zeroEnd = 0;
    DWORD occurrences = 7;
    std::vector<DWORD> deleted;
    std::vector<DWORD> modified;
    DWORD start = minutes(2026, 1, 1);
    DWORD end = minutes(2026, 12, 31);
    DWORD version1 = 0x3005;
    DWORD version2 = 0x3005;
    DWORD startMinute = 540;
    DWORD endMinute = 585;
    std::optional<unsigned> exceptionCount;
    Bytes exceptions;
    std::size_t tail = 8;

    Bytes bytes() const
    {
        BlobWriter out;
        out.dword(magic).word(frequency).word(type).word(zero8).dword(first).dword(period).dword(zero18);
        for (const DWORD value : data)
        {
            out.dword(value);
        }
        out.word(endType).word(zeroEnd).dword(occurrences).dword(1);
        for (const auto *list : {&deleted, &modified})
        {
            out.dword(static_cast<DWORD>(list->size()));
            for (const DWORD date : *list)
            {
                out.dword(date);
            }
        }
        out.dword(start).dword(end).dword(version1).dword(version2).dword(startMinute).dword(endMinute);
        out.word(exceptionCount.value_or(static_cast<unsigned>(modified.size())));
        out.bytes.insert(out.bytes.end(), exceptions.begin(), exceptions.end());
        out.bytes.resize(out.bytes.size() + tail);
        return out.bytes;
    }
};

class RecurrenceReader : public ::testing::Test
{
  protected:
    int read(const Blob &blob)
    {
        return read(blob.bytes());
    }
    int read(const Bytes &bytes)
    {
        row.NullData();
        deleted.clear();
        return reader.Read(bytes.data(), static_cast<DWORD>(bytes.size()), 5, row, deleted, false);
    }

    CRecurrenceReader reader;
    DATACALENDARDB row;
    std::vector<DWORD> deleted;
};

TEST_F(RecurrenceReader, DailyPatterns)
{
    Blob blob;
    blob.frequency = 0x200A;
    blob.type = 0;
    blob.data = {};
    blob.period = 200'000;
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wFrequency, 0x200A);
    EXPECT_EQ(row.m_wPatternType, 0);
    EXPECT_EQ(row.m_nPeriodMinutes, 200'000);

    blob.type = 1;
    blob.data = {0x3E};
    blob.period = 1;
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wPatternType, 1);
    EXPECT_EQ(row.m_dwWeekDays, 0x3EU);
}

TEST_F(RecurrenceReader, WeeklyPatternsHaveTheMaskInBothPlaces)
{
    Blob blob;
    blob.period = 3;
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wFrequency, 0x200B);
    EXPECT_EQ(row.m_nPeriodWeeks, 3);
    EXPECT_EQ(row.m_dwWeekDays, 0x22U);
    EXPECT_EQ(row.m_wNthMask, 0x22);
}

TEST_F(RecurrenceReader, MonthlyPatterns)
{
    Blob blob;
    blob.frequency = 0x200C;
    blob.type = 2;
    blob.period = 2;
    blob.data = {31};
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wDayOfMonth, 31);
    EXPECT_EQ(row.m_nPeriodMonths, 2);

    blob.type = 3;
    blob.data = {62, 5};
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wNthMask, 62);
    EXPECT_EQ(row.m_wNth, 5);
    EXPECT_EQ(row.m_nPeriodMonths, 2);
}

TEST_F(RecurrenceReader, YearlyPatterns)
{
    Blob blob;
    blob.frequency = 0x200D;
    blob.type = 2;
    blob.period = 12;
    blob.first = 44'640;
    blob.data = {29};
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wDayOfMonth, 29);
    EXPECT_EQ(row.m_dwYearDay, 29U);
    EXPECT_EQ(row.m_dwFirstDate, 44'640U);
    EXPECT_EQ(row.m_nPeriodMonths, 12);

    blob.type = 3;
    blob.data = {1, 2};
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_wNthMask, 1);
    EXPECT_EQ(row.m_wNth, 2);
    EXPECT_EQ(row.m_dwFirstDate, 44'640U);
}

TEST_F(RecurrenceReader, SeriesDatesTimesAndCount)
{
    Blob blob;
    blob.endMinute = 26 * 60 + 5;
    ASSERT_EQ(read(blob), 0);
    EXPECT_EQ(row.m_dtStart, variant(2026, 1, 1));
    EXPECT_EQ(row.m_dtEnd, static_cast<double>(minutes(2026, 12, 31)));
    EXPECT_EQ(row.m_wStartHour, 9);
    EXPECT_EQ(row.m_wStartMinute, 0);
    EXPECT_EQ(row.m_wEndHour, 26);
    EXPECT_EQ(row.m_wEndMinute, 5);
    EXPECT_EQ(row.m_nOccurrences, 7);
    EXPECT_TRUE(row.m_lstExceptions.empty());
    EXPECT_TRUE(row.m_lstModified.empty());
    EXPECT_TRUE(deleted.empty());
}

TEST_F(RecurrenceReader, FailuresTouchNothing)
{
    row.m_wFrequency = 0x7777;
    row.m_dtStart = 5.0;
    deleted = {9};
    Blob bad;
    bad.magic = 0x30043005;
    const Bytes bytes = bad.bytes();
    EXPECT_EQ(reader.Read(bytes.data(), static_cast<DWORD>(bytes.size()), 5, row, deleted, false), 1);
    EXPECT_EQ(reader.Read(nullptr, 10, 5, row, deleted, false), 1);
    EXPECT_EQ(reader.Read(bytes.data(), 0, 5, row, deleted, false), 1);
    EXPECT_EQ(row.m_wFrequency, 0x7777);
    EXPECT_EQ(row.m_dtStart, 5.0);
    EXPECT_EQ(deleted, (std::vector<DWORD>{9}));
}

TEST_F(RecurrenceReader, OnlyKnownPairsArePatterns)
{
    for (unsigned frequency = 0x2009; frequency <= 0x200E; ++frequency)
    {
        for (unsigned type = 0; type <= 4; ++type)
        {
            Blob blob;
            blob.frequency = frequency;
            blob.type = type;
            blob.data = type == 0 ? std::vector<DWORD>{} : type == 3 ? std::vector<DWORD>{1, 1} : std::vector<DWORD>{1};
            const bool known = (frequency == 0x200A && type <= 1) || (frequency == 0x200B && type == 1) ||
                               ((frequency == 0x200C || frequency == 0x200D) && (type == 2 || type == 3));
            EXPECT_EQ(read(blob), known ? 0 : 1) << std::hex << frequency << ' ' << type;
        }
    }
}

TEST_F(RecurrenceReader, BothVersionWordsMustBeThere)
{
    Blob blob;
    blob.version1 = 0x3006;
    EXPECT_EQ(read(blob), 1);
    blob = {};
    blob.version2 = 0x3004;
    EXPECT_EQ(read(blob), 1);
}

TEST_F(RecurrenceReader, WordsThatShouldBeZeroRaiseDoubtsAlone)
{
    const auto doubtful = [this](auto change)
    {
        Blob blob;
        change(blob);
        const int result = read(blob);
        EXPECT_EQ(row.m_wFrequency, blob.frequency);
        return result;
    };
    EXPECT_EQ(doubtful([](Blob &b) { b.zero8 = 1; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.zero18 = 1; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.zero18 = 0x10000; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.zeroEnd = 1; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.period = 0x10001; }), 2);
    EXPECT_EQ(row.m_nPeriodWeeks, 1);
    EXPECT_EQ(doubtful([](Blob &b) { b.exceptionCount = 1; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.tail = 1; }), 2);
    EXPECT_EQ(doubtful([](Blob &b) { b.tail = 2; }), 0);
    EXPECT_EQ(doubtful([](Blob &b) { b.deleted = {minutes(2026, 1, 5)}; }), 2);
}

TEST_F(RecurrenceReader, ASeriesOutsideTheRangeIsNotRead)
{
    const Blob blob;
    reader.SetRange(variant(2027, 1, 3), variant(2027, 1, 31));
    EXPECT_EQ(read(blob), 0); // its last date lies just 3 days before
    reader.SetRange(variant(2027, 1, 4), variant(2027, 1, 31));
    EXPECT_EQ(read(blob), 1);
    reader.SetRange(variant(2025, 12, 1), variant(2025, 12, 29));
    EXPECT_EQ(read(blob), 0); // its first date just 3 days behind
    reader.SetRange(variant(2025, 12, 1), variant(2025, 12, 28));
    EXPECT_EQ(read(blob), 1);
}

TEST_F(RecurrenceReader, DeletedDatesAreThoseWithoutAChangedOccurrence)
{
    Blob blob;
    blob.deleted = {minutes(2026, 1, 5), minutes(2026, 1, 12), minutes(2026, 1, 19)};
    ASSERT_EQ(read(blob), 2);
    EXPECT_EQ(deleted, blob.deleted);

    // A changed date counts by its day.
    blob.modified = {minutes(2026, 1, 12, 9, 0)};
    blob.exceptions = BlobWriter()
                          .dword(minutes(2026, 1, 12, 11))
                          .dword(minutes(2026, 1, 12, 12))
                          .dword(minutes(2026, 1, 12, 9))
                          .word(0)
                          .bytes;
    ASSERT_EQ(read(blob), 2);
    EXPECT_EQ(deleted, (std::vector<DWORD>{minutes(2026, 1, 5), minutes(2026, 1, 19)}));
    EXPECT_EQ(row.m_lstModified, (std::vector<DWORD>{minutes(2026, 1, 12, 9, 0)}));
    EXPECT_EQ(row.m_lstExceptions.size(), 1U);
}

TEST_F(RecurrenceReader, TimesStandBehindListsOfAnyLength)
{
    Blob blob;
    blob.deleted = {minutes(2026, 1, 5), minutes(2026, 1, 12)};
    ASSERT_EQ(read(blob), 2);
    EXPECT_EQ(row.m_wStartHour, 9);
    EXPECT_EQ(row.m_wEndMinute, 45);
    EXPECT_EQ(row.m_dtStart, variant(2026, 1, 1));
}

// --- Exceptions --------------------------------------------------------------------------------------------------

class RecurrenceExceptions : public RecurrenceReader
{
  protected:
    /// A series in which 12 January was changed, as these bytes tell.
    int readOne(const Bytes &exception)
    {
        Blob blob;
        blob.deleted = {minutes(2026, 1, 12)};
        blob.modified = {modifiedDate};
        blob.exceptions = exception;
        return read(blob);
    }
    const RECUREXCEPTION &only()
    {
        EXPECT_EQ(row.m_lstExceptions.size(), 1U);
        return row.m_lstExceptions.front();
    }
    static BlobWriter times(DWORD newStart, DWORD newEnd, DWORD original)
    {
        BlobWriter out;
        out.dword(newStart).dword(newEnd).dword(original);
        return out;
    }

    DWORD modifiedDate = minutes(2026, 1, 12);
    const DWORD start = minutes(2026, 1, 12, 11, 15);
    const DWORD end = minutes(2026, 1, 12, 12, 45);
    const DWORD original = minutes(2026, 1, 12, 9);
};

TEST_F(RecurrenceExceptions, AnotherTimeOfTheSameDay)
{
    ASSERT_EQ(readOne(times(start, end, original).word(0).bytes), 0);
    const RECUREXCEPTION &exception = only();
    EXPECT_EQ(exception.m_dwDate, start);
    EXPECT_EQ(exception.m_dwNewStart, start);
    EXPECT_EQ(exception.m_dwNewEnd, end);
    EXPECT_EQ(exception.m_nStartHour, 11);
    EXPECT_EQ(exception.m_nStartMinute, 15);
    EXPECT_EQ(exception.m_nEndHour, 12);
    EXPECT_EQ(exception.m_nEndMinute, 45);
    EXPECT_FALSE(exception.m_bMoved);
    EXPECT_FALSE(exception.m_bSeveralDays);
    EXPECT_EQ(exception.m_nAllDay, -1);
    EXPECT_EQ(exception.m_nBusy, -1);
    EXPECT_EQ(exception.m_bstrSubject, nullptr);
    EXPECT_EQ(exception.m_bstrLocation, nullptr);
    EXPECT_FALSE(exception.m_bNotes);
    EXPECT_EQ(exception.m_wFlags, 0U);
}

TEST_F(RecurrenceExceptions, AnotherDayIsAMoveAndPutsTheModifiedDateBack)
{
    modifiedDate = minutes(2026, 1, 14);
    ASSERT_EQ(readOne(times(start + 2 * 1440, end + 2 * 1440, original).word(0).bytes), 0);
    const RECUREXCEPTION &exception = only();
    EXPECT_TRUE(exception.m_bMoved);
    EXPECT_EQ(exception.m_dwMovedTo, start + 2 * 1440);
    EXPECT_EQ(exception.m_dwMovedFrom, original);
    EXPECT_EQ(exception.m_dwDate, original);
    EXPECT_EQ(row.m_lstModified, (std::vector<DWORD>{original}));
    // The old day has its changed occurrence elsewhere; it is not a day without one.
    EXPECT_TRUE(deleted.empty());
}

TEST_F(RecurrenceExceptions, TheSameDayOfAnotherMonthIsAMove)
{
    ASSERT_EQ(readOne(times(minutes(2026, 2, 12, 9), minutes(2026, 2, 12, 10), original).word(0).bytes), 0);
    EXPECT_TRUE(only().m_bMoved);
}

TEST_F(RecurrenceExceptions, AnEndOnALaterDayCountsItsHoursOn)
{
    ASSERT_EQ(readOne(times(minutes(2026, 1, 12, 22), minutes(2026, 1, 13, 2, 30), original).word(0).bytes), 0);
    const RECUREXCEPTION *exception = &only();
    EXPECT_TRUE(exception->m_bSeveralDays);
    EXPECT_EQ(exception->m_nExtraDays, 1);
    EXPECT_EQ(exception->m_nEndHour, 26);
    EXPECT_EQ(exception->m_nEndMinute, 30);
    EXPECT_EQ(zb::test::describe(exception->m_stStart), "2026-01-12 22:00:00");
    // The length, 1 January 1601 04:30, is compared with the new start, so it counts as moved.
    EXPECT_TRUE(exception->m_bMoved);
    EXPECT_EQ(exception->m_dwMovedFrom, original);
    EXPECT_EQ(exception->m_dwMovedTo, minutes(2026, 1, 12, 22));

    ASSERT_EQ(readOne(times(minutes(2026, 1, 12, 22), minutes(2026, 1, 15, 8), original).word(0).bytes), 0);
    exception = &only();
    EXPECT_EQ(exception->m_nExtraDays, 3);
    EXPECT_EQ(exception->m_nEndHour, 80);
}

TEST_F(RecurrenceExceptions, AnEndOnAnEarlierDayAddsNoDays)
{
    ASSERT_EQ(readOne(times(minutes(2026, 1, 12, 22), minutes(2026, 1, 10, 8), original).word(0).bytes), 0);
    EXPECT_TRUE(only().m_bSeveralDays);
    EXPECT_EQ(only().m_nExtraDays, 0);
    EXPECT_EQ(only().m_nEndHour, 8);
}

TEST_F(RecurrenceExceptions, AnEndThousandsOfYearsLaterIsHeldAtTheLongestOccurrenceOfASeries)
{
    ASSERT_EQ(readOne(times(minutes(2026, 1, 12, 22), minutes(9000, 1, 15, 8), original).word(0).bytes), 0);
    EXPECT_EQ(only().m_nExtraDays, 2729);
    EXPECT_EQ(only().m_nEndHour, 2729 * 24 + 8);
    EXPECT_EQ(only().m_dwNewEnd, minutes(9000, 1, 15, 8));
}

TEST_F(RecurrenceExceptions, AllPartsInTheirOrder)
{
    const Bytes bytes = times(start, end, original)
                            .word(0x00BD)
                            .text(u"Other")
                            .dword(11)
                            .dword(22)
                            .text(u"Hall 2")
                            .word(3)
                            .word(0)
                            .word(1)
                            .word(0)
                            .bytes;
    ASSERT_EQ(readOne(bytes), 0);
    EXPECT_EQ(utf8(only().m_bstrSubject), "Other");
    EXPECT_EQ(utf8(only().m_bstrLocation), "Hall 2");
    EXPECT_EQ(only().m_nBusy, 3);
    EXPECT_EQ(only().m_nAllDay, 1);
    EXPECT_EQ(only().m_wFlags, 0xBDU);
}

TEST_F(RecurrenceExceptions, EachPartAlone)
{
    ASSERT_EQ(readOne(times(start, end, original).word(0x0010).text(u"Hall").bytes), 0);
    EXPECT_EQ(only().m_bstrSubject, nullptr);
    EXPECT_EQ(utf8(only().m_bstrLocation), "Hall");
    ASSERT_EQ(readOne(times(start, end, original).word(0x0080).word(2).word(0).bytes), 0);
    EXPECT_EQ(only().m_nAllDay, 0);
    ASSERT_EQ(readOne(times(start, end, original).word(0x0080).word(3).word(0).bytes), 0);
    EXPECT_EQ(only().m_nAllDay, -1);
    ASSERT_EQ(readOne(times(start, end, original).word(0x0088).dword(7).word(1).word(0).bytes), 0);
    EXPECT_EQ(only().m_nAllDay, 1);
    ASSERT_EQ(readOne(times(start, end, original).word(0x0084).dword(7).word(1).word(0).bytes), 0);
    EXPECT_EQ(only().m_nAllDay, 1);
    ASSERT_EQ(readOne(times(start, end, original).word(0x0001).text(u"").bytes), 0);
    ASSERT_NE(only().m_bstrSubject, nullptr);
    EXPECT_EQ(utf8(only().m_bstrSubject), "");
}

TEST_F(RecurrenceExceptions, ABusyStatusAboveFourStandsInTheNextWord)
{
    // Busy and all-day: the word behind the four bytes is read as the status, and again as all-day.
    ASSERT_EQ(readOne(times(start, end, original).word(0x00A0).word(5).word(0).word(2).word(0).bytes), 0);
    EXPECT_EQ(only().m_nBusy, 2);
    EXPECT_EQ(only().m_nAllDay, 0);
    ASSERT_EQ(readOne(times(start, end, original).word(0x0020).word(4).word(0).word(2).bytes), 0);
    EXPECT_EQ(only().m_nBusy, 4);
}

TEST_F(RecurrenceExceptions, NotesEndTheRecordAndBringTheNewDateBack)
{
    Blob blob;
    blob.deleted = {minutes(2026, 1, 12), minutes(2026, 1, 19), minutes(2026, 1, 26)};
    blob.modified = {minutes(2026, 1, 14), minutes(2026, 1, 19), minutes(2026, 1, 26)};
    // Moved, with notes of 6 bytes; then one with an empty tail; then a plain one that shows where the reader stood.
    blob.exceptions = times(start + 2 * 1440, end + 2 * 1440, original)
                          .word(0x0101)
                          .text(u"With notes")
                          .word(6)
                          .dword(0xAAAAAAAA)
                          .dword(0xBBBBBBBB)
                          .dword(start + 7 * 1440)
                          .dword(end + 7 * 1440)
                          .dword(original + 7 * 1440)
                          .word(0x0100)
                          .word(0)
                          .dword(start + 14 * 1440)
                          .dword(end + 14 * 1440)
                          .dword(original + 14 * 1440)
                          .word(0x0001)
                          .text(u"Last")
                          .bytes;
    ASSERT_EQ(read(blob), 0);
    ASSERT_EQ(row.m_lstExceptions.size(), 3U);
    const RECUREXCEPTION &moved = row.m_lstExceptions[0];
    EXPECT_TRUE(moved.m_bNotes);
    EXPECT_TRUE(moved.m_bMoved);
    EXPECT_EQ(moved.m_dwDate, start + 2 * 1440);
    EXPECT_EQ(moved.m_dwMovedFrom, original);
    EXPECT_EQ(utf8(moved.m_bstrSubject), "With notes");
    EXPECT_EQ(moved.m_wFlags, 0x0101U);
    EXPECT_TRUE(row.m_lstExceptions[1].m_bNotes);
    EXPECT_EQ(row.m_lstExceptions[1].m_dwNewStart, start + 7 * 1440);
    EXPECT_FALSE(row.m_lstExceptions[2].m_bNotes);
    EXPECT_EQ(row.m_lstExceptions[2].m_dwNewStart, start + 14 * 1440);
    EXPECT_EQ(utf8(row.m_lstExceptions[2].m_bstrSubject), "Last");
}

TEST_F(RecurrenceExceptions, ARecordFourBytesLaterIsFound)
{
    Bytes bytes = times(0, start, end).dword(original).word(0).bytes;
    ASSERT_EQ(readOne(bytes), 0);
    EXPECT_EQ(only().m_dwNewStart, start);
    EXPECT_EQ(only().m_dwNewEnd, end);
}

TEST_F(RecurrenceExceptions, ARecordFourBytesEarlierIsFound)
{
    Blob blob;
    blob.deleted = {minutes(2026, 1, 12), minutes(2026, 1, 19)};
    blob.modified = blob.deleted;
    // The first record's busy status takes 4 bytes, of which the second record already has the last two words.
    blob.exceptions = times(start, end, original).word(0x0020).dword(start + 7 * 1440).bytes;
    const Bytes rest = BlobWriter().dword(end + 7 * 1440).dword(original + 7 * 1440).word(0).word(0).bytes;
    blob.exceptions.insert(blob.exceptions.end(), rest.begin(), rest.end());
    read(blob);
    ASSERT_EQ(row.m_lstExceptions.size(), 2U);
    EXPECT_EQ(row.m_lstExceptions[1].m_dwNewStart, start + 7 * 1440);
    EXPECT_EQ(row.m_lstExceptions[1].m_dwNewEnd, end + 7 * 1440);
}

// --- Bad blobs ---------------------------------------------------------------------------------------------------

TEST_F(RecurrenceReader, CountsThatTheBlobCannotHoldMakeItNoPattern)
{
    Bytes bytes = Blob().bytes();
    constexpr std::size_t deletedCount = 38;
    bytes[deletedCount + 3] = 0xFF;
    EXPECT_EQ(read(bytes), 1);
    bytes[deletedCount + 3] = 0;
    bytes[deletedCount] = 200;
    EXPECT_EQ(read(bytes), 1);
}

TEST_F(RecurrenceReader, ACutBlobIsRefusedOrRead)
{
    Blob blob;
    blob.deleted = {minutes(2026, 1, 12)};
    blob.modified = {minutes(2026, 1, 12)};
    blob.exceptions = BlobWriter()
                          .dword(minutes(2026, 1, 12, 11))
                          .dword(minutes(2026, 1, 12, 12))
                          .dword(minutes(2026, 1, 12, 9))
                          .word(0x0011)
                          .text(u"Subject")
                          .text(u"Location")
                          .bytes;
    const Bytes whole = blob.bytes();
    reader.SetRange(variant(2026, 1, 1), variant(2026, 1, 31));
    // Offset of the version words' end: without them there is no pattern; later cuts lose only what stood there.
    const std::size_t versions = 38 + 4 + 4 + 4 + 4 + 16;
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        // A copy of just this size, so that a read behind it is found out.
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const int result = read(cut);
        if (size < versions - 2)
        {
            EXPECT_EQ(result, 1) << size;
        }
        else if (size >= versions)
        {
            EXPECT_NE(result, 1) << size;
        }
    }
}

TEST_F(RecurrenceReader, RandomDamageDoesNoHarm)
{
    std::mt19937 random(4711);
    Blob blob;
    blob.deleted = {minutes(2026, 1, 12), minutes(2026, 1, 19), minutes(2026, 1, 26)};
    blob.modified = {minutes(2026, 1, 12), minutes(2026, 1, 19)};
    blob.exceptions = BlobWriter()
                          .dword(minutes(2026, 1, 12, 11))
                          .dword(minutes(2026, 1, 13, 12))
                          .dword(minutes(2026, 1, 12, 9))
                          .word(0x01BD)
                          .text(u"Subject")
                          .dword(0)
                          .dword(0)
                          .text(u"Location")
                          .dword(2)
                          .dword(1)
                          .word(0)
                          .bytes;
    const Bytes whole = blob.bytes();
    for (int i = 0; i < 30'000; ++i)
    {
        Bytes damaged = whole;
        for (int hits = std::uniform_int_distribution<int>(1, 4)(random); hits > 0; --hits)
        {
            const auto place = std::uniform_int_distribution<std::size_t>(4, damaged.size() - 1)(random);
            damaged[place] = static_cast<BYTE>(random());
        }
        damaged.resize(std::uniform_int_distribution<std::size_t>(20, damaged.size())(random));
        const int result = read(damaged);
        EXPECT_GE(result, 0);
        EXPECT_LE(result, 2);
        EXPECT_LE(row.m_lstExceptions.size(), row.m_lstModified.size());
    }
}
} // namespace
