// The reader of recurrence patterns that are written back: what encodeRecurrence says comes out again, and bytes that
// are no whole pattern are refused.
#include "platform/pim_recurrence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace
{
using namespace zb;

constexpr DWORD day = 1440;
/// 2026-03-02.
constexpr DWORD start = 155288;

class PatternMaker
{
  public:
    explicit PatternMaker(std::uint32_t seed) : m_random(seed)
    {
    }
    DWORD number(DWORD low, DWORD high)
    {
        return std::uniform_int_distribution<DWORD>(low, high)(m_random);
    }
    bool now()
    {
        return number(0, 1) == 0;
    }

    RecurrencePattern pattern()
    {
        using F = RecurrenceFrequency;
        using T = RecurrenceType;
        static constexpr std::pair<F, T> kinds[] = {{F::Daily, T::EveryNDays},   {F::Weekly, T::Weekdays},
                                                    {F::Monthly, T::DayOfMonth}, {F::Monthly, T::NthWeekday},
                                                    {F::Yearly, T::DayOfMonth},  {F::Yearly, T::NthWeekday}};
        RecurrencePattern made;
        std::tie(made.frequency, made.type) = kinds[number(0, 5)];
        made.interval = made.frequency == F::Yearly ? 12 : number(1, 65535);
        made.weekdays = made.type == T::Weekdays || made.type == T::NthWeekday ? number(1, 127) : 0;
        made.instance = made.type == T::NthWeekday ? number(1, 5) : 1;
        made.dayOfMonth = made.type == T::DayOfMonth ? number(1, 31) : 1;
        made.month = made.frequency == F::Yearly ? number(1, 12) : 1;
        made.firstDayOfWeek = number(0, 6);
        made.firstDate = (start + number(0, 100)) * day;
        made.end = static_cast<RecurrenceEnd>(number(0, 2));
        made.occurrences = made.end == RecurrenceEnd::AfterCount ? number(1, 9999) : 0;
        made.lastDate = made.end == RecurrenceEnd::Never ? endlessSeriesDate : made.firstDate + number(0, 5000) * day;
        made.startMinute = number(0, 1439);
        made.endMinute = made.startMinute + number(0, 4000);
        addChanges(made);
        return made;
    }

  private:
    std::u16string text()
    {
        std::u16string made(number(0, 30), u' ');
        std::generate(made.begin(), made.end(), [this] { return static_cast<WCHAR>(number(1, 0xFFFF)); });
        return made;
    }

    void addChanges(RecurrencePattern &made)
    {
        const DWORD count = number(0, 12);
        for (DWORD n = 0; n < count; ++n)
        {
            const DWORD date = start + 10 * n;
            if (now())
            {
                made.deleted.push_back(date * day);
                continue;
            }
            RecurrenceException change;
            change.originalStart = date * day + made.startMinute;
            change.newStart = change.originalStart + number(0, 3000);
            change.newEnd = change.newStart + number(0, 3000);
            change.subject = now() ? std::optional(text()) : std::nullopt;
            change.location = now() ? std::optional(text()) : std::nullopt;
            change.busy = now() ? std::optional(static_cast<WORD>(number(0, 4))) : std::nullopt;
            change.allDay = now() ? std::optional(now()) : std::nullopt;
            change.part8 = now() ? std::optional(number(0, 0xFFFFFFFFU)) : std::nullopt;
            change.part4 = now() ? std::optional(number(0, 0xFFFFFFFFU)) : std::nullopt;
            change.notesChanged = now();
            change.notesTail.resize(change.notesChanged && now() ? number(3, 40) : 0, 0x5A);
            made.exceptions.push_back(std::move(change));
        }
    }

    std::mt19937 m_random;
};

TEST(RecurrenceDecode, randomPatternsComeOutAsTheyWentIn)
{
    PatternMaker maker(20261121);
    for (int round = 0; round < 5000; ++round)
    {
        const RecurrencePattern made = maker.pattern();
        const auto blob = encodeRecurrence(made);
        ASSERT_TRUE(blob);
        const auto read = decodeRecurrence(blob->data(), blob->size());
        ASSERT_TRUE(read) << round;
        ASSERT_EQ(*read, made) << round;
    }
}

TEST(RecurrenceDecode, cutBlobsAreRefusedUnlessOnlyTheirPaddingIsGone)
{
    PatternMaker maker(1);
    for (int round = 0; round < 50; ++round)
    {
        const RecurrencePattern made = maker.pattern();
        const std::vector<BYTE> blob = encodeRecurrence(made).value();
        for (std::size_t size = 0; size < blob.size(); ++size)
        {
            const std::vector<BYTE> cut(blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size));
            const auto read = decodeRecurrence(cut.data(), cut.size());
            if (size + 8 < blob.size())
            {
                ASSERT_FALSE(read) << size << " of " << blob.size();
            }
            else
            {
                ASSERT_EQ(read, made);
            }
        }
    }
}

TEST(RecurrenceDecode, bytesThatAreNoPatternAreRefused)
{
    RecurrencePattern pattern;
    pattern.firstDate = start * day;
    pattern.lastDate = endlessSeriesDate;
    const std::vector<BYTE> good = encodeRecurrence(pattern).value();
    ASSERT_TRUE(decodeRecurrence(good.data(), good.size()));
    EXPECT_FALSE(decodeRecurrence(nullptr, 0));
    EXPECT_FALSE(decodeRecurrence(nullptr, 100));
    struct Row
    {
        std::size_t at;
        BYTE value;
        const char *what;
    };
    for (const Row &row : {Row{0, 5, "magic"}, Row{4, 0x09, "frequency"}, Row{4, 0x0B, "weekly by number of days"},
                           Row{6, 4, "type"}, Row{14, 0, "half a day"}, Row{34, 0xFF, "too many deleted dates"},
                           Row{38, 0xFF, "too many modified dates"}, Row{50, 6, "version"}, Row{54, 6, "version"}})
    {
        std::vector<BYTE> bad = good;
        bad[row.at] = row.value;
        if (row.at == 14)
        {
            bad[15] = 2; // 512 minutes
        }
        EXPECT_FALSE(decodeRecurrence(bad.data(), bad.size())) << row.what;
    }
}

TEST(RecurrenceDecode, damagedBlobsAreReadOrRefusedAndWhatIsReadCanBeReadAgain)
{
    PatternMaker maker(7);
    for (int round = 0; round < 20'000; ++round)
    {
        std::vector<BYTE> blob = encodeRecurrence(maker.pattern()).value();
        for (DWORD n = maker.number(1, 6); n > 0; --n)
        {
            blob[maker.number(0, static_cast<DWORD>(blob.size()) - 1)] = static_cast<BYTE>(maker.number(0, 255));
        }
        const auto read = decodeRecurrence(blob.data(), blob.size());
        const auto written = read ? encodeRecurrence(*read) : std::nullopt;
        if (written)
        {
            ASSERT_TRUE(decodeRecurrence(written->data(), written->size())) << round;
        }
    }
}
} // namespace
