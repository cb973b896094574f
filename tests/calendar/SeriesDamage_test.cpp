// Damaged, foreign and hostile series in a whole load: each record has a bounded number of rows, good records beside it
// keep theirs, and a stop is heard.
#include "calendar/CalendarTest.h"
#include "platform/pim_recurrence.h"

#include <map>
#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr DWORD day = 1440;
/// 2026-03-02, a Monday, in days since 1601: 425 years of 365 days, 103 leap days, January, February and a day.
constexpr DWORD monday = 425 * 365 + 103 + 31 + 28 + 1;

RecurrencePattern seriesOf(RecurrenceFrequency frequency, RecurrenceType type)
{
    RecurrencePattern made;
    made.frequency = frequency;
    made.type = type;
    made.interval = frequency == RecurrenceFrequency::Yearly ? 12 : 1;
    made.weekdays = 2;
    made.dayOfMonth = 2;
    made.month = 3;
    made.firstDate = monday * day;
    made.lastDate = endlessSeriesDate;
    made.startMinute = 540;
    made.endMinute = 600;
    return made;
}

/// The seven kinds, without changes and with them.
std::vector<Bytes> goodBlobs()
{
    using F = RecurrenceFrequency;
    using T = RecurrenceType;
    std::vector<Bytes> blobs;
    for (const auto &[frequency, type] : {std::pair{F::Daily, T::EveryNDays},
                                          {F::Daily, T::Weekdays},
                                          {F::Weekly, T::Weekdays},
                                          {F::Monthly, T::DayOfMonth},
                                          {F::Monthly, T::NthWeekday},
                                          {F::Yearly, T::DayOfMonth},
                                          {F::Yearly, T::NthWeekday}})
    {
        RecurrencePattern made = seriesOf(frequency, type);
        blobs.push_back(encodeRecurrence(made).value());
        made.deleted = {(monday + 7) * day};
        RecurrenceException change;
        change.originalStart = monday * day + 540;
        change.newStart = (monday + 1) * day + 1320;
        change.newEnd = (monday + 2) * day + 60;
        change.subject = u"Changed";
        change.location = u"Hall";
        change.busy = 2;
        change.allDay = false;
        change.notesChanged = true;
        made.exceptions = {change};
        blobs.push_back(encodeRecurrence(made).value());
    }
    return blobs;
}

class SeriesDamage : public CalendarTest
{
  protected:
    CEOID addBlob(const Bytes &blob, const char16_t *subject = u"Damaged")
    {
        AppointmentRecord record = timed(subject, makeFileTime(2026, 3, 2, 9), 60);
        record.recurrence = blob;
        record.attendees = Bytes(8);
        return add(record);
    }

    /// The most rows that a record has in March and April, and the sum of all.
    std::pair<int, int> mostAndSum(CalendarFilter filter)
    {
        loader().setFilter(filter);
        loader().setRange(2026, 3, 1, daysShown);
        loader().load();
        std::map<CEOID, int> counts;
        int most = 0;
        const std::vector<const DATACALENDAR *> shown = rows();
        for (const DATACALENDAR *row : shown)
        {
            EXPECT_TRUE(row->m_bComplete);
            EXPECT_LE(row->m_nDay, 401768);
            most = std::max(most, ++counts[row->m_oid]);
        }
        return {most, static_cast<int>(shown.size())};
    }

    /// Date headers left out.
    std::vector<const DATACALENDAR *> rows()
    {
        std::vector<const DATACALENDAR *> all;
        for (int i = loader().GetList().GetBase(); i <= loader().GetList().GetLastIndex(); ++i)
        {
            const DATACALENDAR *row = loader().GetList().GetAt(i);
            if (row->m_oid != 0)
            {
                all.push_back(row);
            }
        }
        return all;
    }

    static constexpr int daysShown = 61;
    /// One a day, and what began up to a week in front.
    static constexpr int mostOccurrences = daysShown + 7;
};

TEST_F(SeriesDamage, blobsCutAtEveryLengthHaveBoundedRows)
{
    int added = 0;
    BulkWrite bulk;
    for (const Bytes &whole : goodBlobs())
    {
        for (std::size_t size = 1; size <= whole.size(); ++size, ++added)
        {
            ASSERT_NE(addBlob(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), 0U);
        }
    }
    ASSERT_TRUE(bulk.commit());
    for (const CalendarFilter filter : {CalendarFilter::RangeWithoutDays, CalendarFilter::Range})
    {
        const auto [most, sum] = mostAndSum(filter);
        EXPECT_LE(most, mostOccurrences);
        // What can't be read is a single appointment of the range, and what can has a row too.
        EXPECT_GE(sum, added);
    }
}

TEST_F(SeriesDamage, anyByteReplacedLeavesRowsBounded)
{
    std::mt19937 random(31337);
    BulkWrite bulk;
    for (const Bytes &whole : goodBlobs())
    {
        for (std::size_t place = 0; place < whole.size(); ++place)
        {
            for (const unsigned value : {0U, 0xFFU, static_cast<unsigned>(random() & 0xFFU)})
            {
                Bytes damaged = whole;
                damaged[place] = static_cast<BYTE>(value);
                ASSERT_NE(addBlob(damaged), 0U);
            }
        }
    }
    ASSERT_TRUE(bulk.commit());
    EXPECT_LE(mostAndSum(CalendarFilter::RangeWithoutDays).first, mostOccurrences);
    // With a row for each day an occurrence reaches to the end of the range at most.
    EXPECT_LE(mostAndSum(CalendarFilter::Range).first, mostOccurrences * mostOccurrences);
}

TEST_F(SeriesDamage, foreignBlobsAreSingleAppointments)
{
    std::mt19937 random(99);
    std::vector<CEOID> ids;
    for (std::size_t size = 1; size < 200; size += 3)
    {
        Bytes blob(size);
        for (BYTE &byte : blob)
        {
            byte = static_cast<BYTE>(random());
        }
        ids.push_back(addBlob(blob));
    }
    ids.push_back(addBlob({0x04, 0x30, 0x04, 0x30}));
    ids.push_back(addBlob(Bytes(100, 0)));
    ids.push_back(addBlob(Bytes(100, 0xFF)));
    const auto [most, sum] = mostAndSum(CalendarFilter::RangeWithoutDays);
    EXPECT_EQ(most, 1);
    EXPECT_EQ(sum, static_cast<int>(ids.size()));
    EXPECT_EQ(loader().rows().back(), "2026-03-02 | 2026-03-02 09:00 - 2026-03-02 10:00 | Damaged");
}

TEST_F(SeriesDamage, aPeriodOfNothingOrBelowADayShowsTheFirstDateAlone)
{
    for (Bytes blob : goodBlobs())
    {
        const bool byNumber = blob[4] == 0x0A && blob[6] == 0;
        // "Every weekday" and yearly series don't go by their period.
        const bool ignored = (blob[4] == 0x0A && !byNumber) || blob[4] == 0x0D;
        if (ignored)
        {
            continue;
        }
        blob[14] = blob[15] = blob[16] = blob[17] = 0;
        addBlob(blob);
        if (byNumber)
        {
            blob[14] = 0x9F; // 1,439 minutes
            blob[15] = 0x05;
            addBlob(blob);
        }
    }
    const auto [most, sum] = mostAndSum(CalendarFilter::RangeWithoutDays);
    EXPECT_EQ(most, 1);
    EXPECT_EQ(sum, 10);
}

/// A daily series, each occurrence of which was made to last for thousands of years.
Bytes hugeDurations()
{
    RecurrencePattern made = seriesOf(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays);
    for (DWORD date = monday; date < monday + 5; ++date)
    {
        RecurrenceException change;
        change.originalStart = date * day + 540;
        change.newStart = change.originalStart;
        change.newEnd = 0xFFFFFFF0;
        made.exceptions.push_back(change);
    }
    made.lastDate = (monday + 4) * day;
    return encodeRecurrence(made).value();
}

TEST_F(SeriesDamage, hugeDurationsHaveBoundedRowsInEveryList)
{
    addBlob(hugeDurations());
    RecurrencePattern longest = seriesOf(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays);
    longest.endMinute = 0xFFFFFFFF;
    longest.lastDate = longest.firstDate;
    addBlob(encodeRecurrence(longest).value());
    EXPECT_EQ(mostAndSum(CalendarFilter::RangeWithoutDays).first, 5);
    EXPECT_LE(mostAndSum(CalendarFilter::Range).first, 5 * daysShown);
    // Other lists go on behind the range, for as long as an end hour of 16 bits can say: some seven years.
    EXPECT_LE(mostAndSum(CalendarFilter::WithAttendees).first, 5 * 2732);
}

TEST_F(SeriesDamage, hugeCountsOfDatesAreRefused)
{
    for (Bytes blob : goodBlobs())
    {
        const std::size_t dataSize = blob[6] == 3 ? 8 : blob[6] == 0 ? 0 : 4;
        for (const DWORD count : {0xFFFFU, 0x7FFFFFFFU, 0xFFFFFFFFU, 0x40000001U})
        {
            for (unsigned i = 0; i < 4; ++i)
            {
                blob[34 + dataSize + i] = static_cast<BYTE>(count >> (8 * i));
            }
            addBlob(blob);
        }
    }
    const auto [most, sum] = mostAndSum(CalendarFilter::RangeWithoutDays);
    EXPECT_EQ(most, 1);
    EXPECT_EQ(sum, 14 * 4);
}

TEST_F(SeriesDamage, aStopIsHeardAmongHostileSeries)
{
    for (int i = 0; i < 60; ++i)
    {
        addBlob(hugeDurations());
    }
    loader().setFilter(CalendarFilter::RangeWithoutDays);
    loader().setRange(2026, 3, 1, daysShown);
    CeManualEvent stop;
    stop.Set();
    loader().CalendarThreadProc(&stop, 0);
    // Looked at once in twenty records, each with its five occurrences.
    EXPECT_EQ(loader().rowCount(), 20 * 5);
}

TEST_F(SeriesDamage, aGoodRecordBesideDamagedOnesKeepsItsRows)
{
    for (Bytes blob : goodBlobs())
    {
        blob.resize(blob.size() / 2);
        addBlob(blob);
        addBlob(goodBlobs().front(), u"Good");
    }
    mostAndSum(CalendarFilter::RangeWithoutDays);
    int good = 0;
    for (const DATACALENDAR *row : rows())
    {
        good += utf8(row->m_bstrSubject) == "Good" ? 1 : 0;
    }
    // Every day from 2 March to 30 April.
    EXPECT_EQ(good, 14 * 60);
}

TEST_F(SeriesDamage, aLaterRangeShownBeforeHidesNoWorkingDays)
{
    add(
        []
        {
            AppointmentRecord record = timed(u"Working", makeFileTime(2026, 1, 1, 9), 60);
            RecurrencePattern made = seriesOf(RecurrenceFrequency::Daily, RecurrenceType::Weekdays);
            made.weekdays = 62;
            record.recurrence = encodeRecurrence(made).value();
            return record;
        }());
    addBlob(encodeRecurrence(seriesOf(RecurrenceFrequency::Weekly, RecurrenceType::Weekdays)).value(), u"Weekly");
    loader().setFilter(CalendarFilter::RangeWithoutDays);
    loader().setRange(2026, 6, 1, 5);
    loader().load();
    EXPECT_EQ(loader().rowCount(), 6);
    // Back to the week from Monday 9 March.
    loader().setRange(2026, 3, 9, 5);
    loader().load();
    EXPECT_EQ(loader().rowCount(), 6);
}
} // namespace
