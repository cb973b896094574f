// Random series through the writer of recurrence blobs and the loader's reader: what went in comes out.
#include "calendar/CRecurrenceReader.h"

#include "platform/pim_recurrence.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <set>

namespace
{
using namespace zb;
using zb::test::utf8;

constexpr DWORD day = 1440;
/// 2026-02-01 in days since 1601: 425 years of 365 days, 103 leap days (106 fourth years less 1700, 1800 and 1900), and
/// January.
constexpr DWORD february2026 = 425 * 365 + 103 + 31;
/// Days from 1601-01-01 to 1899-12-30: 298 years, of which 72 are leap years, and 363 days of 1899.
constexpr double zeroOfVariants = 298 * 365 + 72 + 363;

class SeriesMaker
{
  public:
    explicit SeriesMaker(std::uint32_t seed) : m_random(seed)
    {
    }

    RecurrencePattern pattern()
    {
        using F = RecurrenceFrequency;
        using T = RecurrenceType;
        static constexpr std::pair<F, T> kinds[] = {{F::Daily, T::EveryNDays},   {F::Daily, T::Weekdays},
                                                    {F::Weekly, T::Weekdays},    {F::Monthly, T::DayOfMonth},
                                                    {F::Monthly, T::NthWeekday}, {F::Yearly, T::DayOfMonth},
                                                    {F::Yearly, T::NthWeekday}};
        RecurrencePattern made;
        std::tie(made.frequency, made.type) = kinds[number(0, 6)];
        made.interval = number(0, 9) == 0 ? number(1, 65535) : number(1, 12);
        made.weekdays = number(1, 127);
        made.dayOfMonth = number(1, 31);
        made.instance = number(1, 5);
        made.month = number(1, 12);
        made.end = static_cast<RecurrenceEnd>(number(0, 2));
        made.occurrences = number(0, 1'000'000);
        made.firstDayOfWeek = number(0, 6);
        made.firstDate = (february2026 + number(0, 3)) * day;
        made.lastDate = number(0, 1) == 0 ? endlessSeriesDate : made.firstDate + number(0, 5000) * day;
        made.startMinute = number(0, 1439);
        made.endMinute = made.startMinute + number(0, 4000);
        addChanges(made);
        return made;
    }

  private:
    DWORD number(DWORD low, DWORD high)
    {
        return std::uniform_int_distribution<DWORD>(low, high)(m_random);
    }
    bool now()
    {
        return number(0, 1) == 0;
    }

    std::u16string text()
    {
        std::u16string made(number(0, 40), u' ');
        for (char16_t &unit : made)
        {
            unit = static_cast<char16_t>(now() ? number(32, 126) : number(0xA1, 0xD7FF));
        }
        return made;
    }

    void addChanges(RecurrencePattern &made)
    {
        if (number(0, 3) == 0)
        {
            return;
        }
        // February to October, so that a moved one stays in the year: the reader tells days and months apart alone.
        for (DWORD date = february2026; date < february2026 + 240; date += number(1, 60))
        {
            if (number(0, 2) == 0)
            {
                made.deleted.push_back(date * day);
            }
            else
            {
                made.exceptions.push_back(change(date, made));
            }
        }
        std::shuffle(made.exceptions.begin(), made.exceptions.end(), m_random);
    }

    RecurrenceException change(DWORD date, const RecurrencePattern &series)
    {
        RecurrenceException made;
        made.originalStart = date * day + series.startMinute;
        const DWORD moved = now() ? date : date + number(0, 80);
        made.newStart = moved * day + number(0, 1439);
        made.newEnd = made.newStart + (number(0, 3) == 0 ? number(0, 38'000) : number(0, 300));
        made.subject = now() ? std::optional(text()) : std::nullopt;
        made.location = now() ? std::optional(text()) : std::nullopt;
        made.busy = now() ? std::optional(static_cast<WORD>(number(0, 4))) : std::nullopt;
        made.allDay = now() ? std::optional(now()) : std::nullopt;
        made.notesChanged = now();
        return made;
    }

    std::mt19937 m_random;
};

void expectPattern(const DATACALENDARDB &row, const RecurrencePattern &made)
{
    using T = RecurrenceType;
    static constexpr DWORD monthBegins[] = {0,       44'640,  84'960,  129'600, 172'800, 217'440,
                                            260'640, 305'280, 349'920, 393'120, 437'760, 480'960};
    const bool yearly = made.frequency == RecurrenceFrequency::Yearly;
    const bool monthly = made.frequency == RecurrenceFrequency::Monthly;
    const bool byMask = made.type == T::Weekdays;
    const auto interval = static_cast<LONG>(made.interval);
    EXPECT_EQ(row.m_wFrequency, static_cast<WORD>(made.frequency));
    EXPECT_EQ(row.m_wPatternType, static_cast<WORD>(made.type));
    if (made.type == T::EveryNDays)
    {
        EXPECT_EQ(row.m_nPeriodMinutes, interval * 1440);
    }
    EXPECT_EQ(row.m_nPeriodWeeks, made.frequency == RecurrenceFrequency::Weekly ? interval : 0);
    EXPECT_EQ(row.m_nPeriodMonths, monthly || yearly ? interval : 0);
    EXPECT_EQ(row.m_dwWeekDays, byMask ? made.weekdays : 0);
    EXPECT_EQ(row.m_wNthMask, byMask || made.type == T::NthWeekday ? made.weekdays : 0);
    EXPECT_EQ(row.m_wNth, made.type == T::NthWeekday ? made.instance : 0);
    EXPECT_EQ(row.m_wDayOfMonth, made.type == T::DayOfMonth ? made.dayOfMonth : 0);
    EXPECT_EQ(row.m_dwYearDay, yearly && made.type == T::DayOfMonth ? made.dayOfMonth : 0);
    EXPECT_EQ(row.m_dwFirstDate, yearly ? monthBegins[made.month - 1] : 0);
    EXPECT_EQ(row.m_nOccurrences, static_cast<LONG>(made.occurrences));
    EXPECT_EQ(row.m_wStartHour * 60 + row.m_wStartMinute, static_cast<int>(made.startMinute));
    EXPECT_EQ(row.m_wEndHour * 60 + row.m_wEndMinute, static_cast<int>(made.endMinute));
    EXPECT_LT(row.m_wStartMinute, 60);
    EXPECT_LT(row.m_wEndMinute, 60);
    EXPECT_EQ(row.m_dtStart, made.firstDate / day - zeroOfVariants);
    EXPECT_EQ(row.m_dtEnd, made.lastDate);
}

std::optional<std::string> asText(const std::optional<std::u16string> &text)
{
    return text ? std::optional(utf8(text->c_str())) : std::nullopt;
}

std::optional<std::string> asText(BSTR text)
{
    return text != nullptr ? std::optional(utf8(text)) : std::nullopt;
}

void expectParts(const RECUREXCEPTION &read, const RecurrenceException &made)
{
    EXPECT_EQ(asText(read.m_bstrSubject), asText(made.subject));
    EXPECT_EQ(asText(read.m_bstrLocation), asText(made.location));
    EXPECT_EQ(read.m_nBusy, made.busy ? *made.busy : -1);
    EXPECT_EQ(read.m_nAllDay, made.allDay ? (*made.allDay ? 1 : 0) : -1);
    EXPECT_EQ(read.m_bNotes, made.notesChanged);
    const unsigned flags = (made.subject ? 1U : 0U) + (made.location ? 16U : 0U) + (made.busy ? 32U : 0U) +
                           (made.allDay ? 128U : 0U) + (made.notesChanged ? 256U : 0U);
    EXPECT_EQ(read.m_wFlags, flags);
}

void expectException(const RECUREXCEPTION &read, const RecurrenceException &made)
{
    const int days = static_cast<int>(made.newEnd / day) - static_cast<int>(made.newStart / day);
    // Days alone tell a longer one: from the 3rd to the 3rd of the next month would be none, and isn't made here.
    const bool several = days != 0;
    const bool moved = several || made.newStart / day != made.originalStart / day;
    EXPECT_EQ(read.m_dwNewStart, made.newStart);
    EXPECT_EQ(read.m_dwNewEnd, made.newEnd);
    EXPECT_EQ(read.m_nStartHour * 60 + read.m_nStartMinute, static_cast<int>(made.newStart % day));
    EXPECT_EQ(read.m_nEndHour * 60 + read.m_nEndMinute, static_cast<int>(made.newEnd % day) + days * 1440);
    EXPECT_EQ(read.m_bSeveralDays, several);
    EXPECT_EQ(read.m_nExtraDays, days);
    EXPECT_EQ(read.m_bMoved, moved);
    EXPECT_EQ(read.m_dwMovedTo, moved ? made.newStart : 0);
    EXPECT_EQ(read.m_dwMovedFrom, moved ? made.originalStart : 0);
    EXPECT_EQ(read.m_dwDate, moved && !made.notesChanged ? made.originalStart : made.newStart);
    expectParts(read, made);
}

std::multiset<DWORD> daysOf(const std::vector<DWORD> &dates)
{
    std::multiset<DWORD> days;
    for (const DWORD date : dates)
    {
        days.insert(date / day);
    }
    return days;
}

TEST(RecurrenceRoundTrip, RandomSeriesComeOutAsTheyWentIn)
{
    SeriesMaker maker(90210);
    int withExceptions = 0;
    for (int round = 0; round < 3'000; ++round)
    {
        SCOPED_TRACE(round);
        RecurrencePattern made = maker.pattern();
        const auto blob = encodeRecurrence(made);
        ASSERT_TRUE(blob);
        CRecurrenceReader reader;
        DATACALENDARDB row;
        std::vector<DWORD> deleted;
        const int result = reader.Read(blob->data(), static_cast<DWORD>(blob->size()), 1, row, deleted, false);
        // Deleted days that no change stands for are told as doubts, since the lists then differ in length.
        EXPECT_EQ(result, made.deleted.empty() ? CRecurrenceReader::SUCCESS : CRecurrenceReader::DOUBTS);
        expectPattern(row, made);
        EXPECT_EQ(daysOf(deleted), daysOf(made.deleted));
        // In the order of the days that they take the place of; put back to those days in the list.
        std::sort(made.exceptions.begin(), made.exceptions.end(),
                  [](const auto &a, const auto &b) { return a.originalStart < b.originalStart; });
        ASSERT_EQ(row.m_lstExceptions.size(), made.exceptions.size());
        std::multiset<DWORD> originals;
        for (std::size_t i = 0; i < made.exceptions.size(); ++i)
        {
            expectException(row.m_lstExceptions[i], made.exceptions[i]);
            originals.insert(made.exceptions[i].originalStart / day);
            ++withExceptions;
        }
        EXPECT_EQ(daysOf(row.m_lstModified), originals);
        if (HasFailure())
        {
            break;
        }
    }
    EXPECT_GT(withExceptions, 3'000);
}
} // namespace
