// Reads recurrence blobs back into patterns; the layout stands in platform/pim_recurrence.h. The calendar's own reader
// takes what it can of a damaged blob; here, where the result is written back, a blob must be whole.
#include "platform/pim_recurrence.h"

#include <algorithm>
#include <array>

namespace zb
{
namespace
{
constexpr DWORD magic = 0x30043004;
constexpr DWORD formatVersion = 0x3005;
constexpr DWORD minutesPerDay = 1440;
/// 1700-01-01. Some writers leave 4 bytes too many or too few in front of an exception; dates before this give it away.
constexpr DWORD earliestException = 36159U * minutesPerDay;

/// A cursor that remembers having left the bytes.
class ByteReader
{
  public:
    ByteReader(const BYTE *bytes, std::size_t size) : m_bytes(bytes), m_size(size)
    {
    }
    bool good() const
    {
        return m_good;
    }
    std::size_t at() const
    {
        return m_at;
    }
    void fail()
    {
        m_good = false;
    }
    void moveTo(std::size_t at)
    {
        m_at = at;
    }
    std::size_t rest() const
    {
        return m_at <= m_size ? m_size - m_at : 0;
    }
    WORD word()
    {
        if (rest() < 2)
        {
            m_good = false;
            return 0;
        }
        const auto value = static_cast<WORD>(m_bytes[m_at] | (m_bytes[m_at + 1] << 8U));
        m_at += 2;
        return value;
    }
    DWORD dword()
    {
        const DWORD low = word();
        return low | (static_cast<DWORD>(word()) << 16U);
    }
    DWORD dwordAt(std::size_t at) const
    {
        ByteReader other(m_bytes, m_size);
        other.moveTo(at);
        return other.dword();
    }
    std::vector<DWORD> dates()
    {
        const DWORD count = dword();
        if (count > rest() / 4)
        {
            m_good = false;
            return {};
        }
        std::vector<DWORD> values(count);
        std::generate(values.begin(), values.end(), [this] { return dword(); });
        return values;
    }
    std::u16string text()
    {
        word();
        const std::size_t length = word();
        if (length > rest() / 2)
        {
            m_good = false;
            return {};
        }
        std::u16string value(length, u'\0');
        std::generate(value.begin(), value.end(), [this] { return static_cast<WCHAR>(word()); });
        return value;
    }
    std::vector<BYTE> bytes(std::size_t count)
    {
        if (count > rest())
        {
            m_good = false;
            return {};
        }
        const BYTE *const from = m_bytes + m_at;
        m_at += count;
        return {from, from + count};
    }

  private:
    const BYTE *m_bytes;
    std::size_t m_size;
    std::size_t m_at = 0;
    bool m_good = true;
};

bool isFrequency(WORD value)
{
    return value >= static_cast<WORD>(RecurrenceFrequency::Daily) &&
           value <= static_cast<WORD>(RecurrenceFrequency::Yearly);
}

bool belongTogether(RecurrenceFrequency frequency, RecurrenceType type)
{
    switch (type)
    {
    case RecurrenceType::EveryNDays:
        return frequency == RecurrenceFrequency::Daily;
    case RecurrenceType::Weekdays:
        return frequency == RecurrenceFrequency::Daily || frequency == RecurrenceFrequency::Weekly;
    case RecurrenceType::DayOfMonth:
    case RecurrenceType::NthWeekday:
        return frequency == RecurrenceFrequency::Monthly || frequency == RecurrenceFrequency::Yearly;
    }
    return false;
}

/// Month of a yearly pattern by the minutes from the start of the year, with the room that lists give.
DWORD monthOfFirstDate(DWORD minutes)
{
    static constexpr std::array<DWORD, 11> ends = {40'000,  80'000,  120'000, 170'000, 210'000, 250'000,
                                                   295'000, 340'000, 385'000, 430'000, 475'000};
    return static_cast<DWORD>(std::upper_bound(ends.begin(), ends.end(), minutes) - ends.begin()) + 1;
}

bool readDays(ByteReader &in, RecurrencePattern &pattern)
{
    if (pattern.type == RecurrenceType::Weekdays || pattern.type == RecurrenceType::NthWeekday)
    {
        pattern.weekdays = in.dword();
    }
    if (pattern.type == RecurrenceType::NthWeekday)
    {
        pattern.instance = in.dword();
    }
    if (pattern.type == RecurrenceType::DayOfMonth)
    {
        pattern.dayOfMonth = in.dword();
    }
    return in.good();
}

bool readRule(ByteReader &in, RecurrencePattern &pattern)
{
    if (in.dword() != magic)
    {
        return false;
    }
    const WORD frequency = in.word();
    const WORD type = in.word();
    pattern.frequency = static_cast<RecurrenceFrequency>(frequency);
    pattern.type = static_cast<RecurrenceType>(type);
    if (!isFrequency(frequency) || type > 3 || !belongTogether(pattern.frequency, pattern.type))
    {
        return false;
    }
    in.word();
    const DWORD firstDate = in.dword();
    const DWORD period = in.dword();
    in.dword();
    const bool yearly = pattern.frequency == RecurrenceFrequency::Yearly;
    pattern.month = yearly ? monthOfFirstDate(firstDate) : 1;
    if (pattern.type == RecurrenceType::EveryNDays)
    {
        pattern.interval = period / minutesPerDay;
    }
    else
    {
        const DWORD unread = yearly ? 12 : 1; // nobody looks at these
        const bool counts = !yearly && pattern.frequency != RecurrenceFrequency::Daily;
        pattern.interval = counts ? period & 0xFFFFU : std::max(period & 0xFFFFU, unread);
    }
    return pattern.interval > 0 && readDays(in, pattern);
}

void readParts(ByteReader &in, WORD flags, RecurrenceException &exception)
{
    if ((flags & 0x0001U) != 0)
    {
        exception.subject = in.text();
    }
    if ((flags & 0x0008U) != 0)
    {
        exception.part8 = in.dword();
    }
    if ((flags & 0x0004U) != 0)
    {
        exception.part4 = in.dword();
    }
    if ((flags & 0x0010U) != 0)
    {
        exception.location = in.text();
    }
    if ((flags & 0x0020U) != 0)
    {
        const auto status = static_cast<WORD>(in.dword());
        exception.busy = status <= 4 ? status : static_cast<WORD>(in.dwordAt(in.at()));
    }
    if ((flags & 0x0080U) != 0)
    {
        const auto value = static_cast<WORD>(in.dword());
        exception.allDay = value == 1 || value == 2 ? std::optional(value == 1) : std::nullopt;
    }
}

RecurrenceException readException(ByteReader &in)
{
    if (in.dwordAt(in.at()) < earliestException)
    {
        in.moveTo(in.at() + 4);
    }
    else if (in.dwordAt(in.at() + 8) < earliestException)
    {
        in.moveTo(in.at() - 4);
    }
    RecurrenceException exception;
    exception.newStart = in.dword();
    exception.newEnd = in.dword();
    exception.originalStart = in.dword();
    if (exception.newStart < earliestException || exception.originalStart < earliestException)
    {
        in.fail(); // written again, it would be taken for one that is out of place
    }
    const WORD flags = in.word();
    exception.notesChanged = flags > 0xFF;
    readParts(in, static_cast<WORD>(exception.notesChanged ? flags - 0x100 : flags), exception);
    if (exception.notesChanged)
    {
        const std::size_t length = in.word();
        exception.notesTail = length == 0 ? std::vector<BYTE>() : in.bytes(length + 2);
    }
    return exception;
}

void takeDeleted(RecurrencePattern &pattern, const std::vector<DWORD> &listed)
{
    for (const DWORD date : listed)
    {
        const DWORD day = date / minutesPerDay;
        const bool changed =
            std::any_of(pattern.exceptions.begin(), pattern.exceptions.end(),
                        [=](const RecurrenceException &each) { return each.originalStart / minutesPerDay == day; });
        if (!changed)
        {
            pattern.deleted.push_back(day * minutesPerDay);
        }
    }
    std::sort(pattern.deleted.begin(), pattern.deleted.end());
    pattern.deleted.erase(std::unique(pattern.deleted.begin(), pattern.deleted.end()), pattern.deleted.end());
}

RecurrenceEnd endOf(const RecurrencePattern &pattern, WORD kind)
{
    if (pattern.lastDate >= endlessSeriesDate)
    {
        return RecurrenceEnd::Never;
    }
    return kind == static_cast<WORD>(RecurrenceEnd::AfterCount) && pattern.occurrences > 0 ? RecurrenceEnd::AfterCount
                                                                                           : RecurrenceEnd::OnDate;
}
} // namespace

std::optional<RecurrencePattern> decodeRecurrence(const BYTE *bytes, std::size_t size)
{
    ByteReader in(bytes, bytes == nullptr ? 0 : size);
    RecurrencePattern pattern;
    if (!readRule(in, pattern))
    {
        return std::nullopt;
    }
    const WORD endKind = in.word();
    in.word();
    pattern.occurrences = in.dword();
    pattern.firstDayOfWeek = in.dword();
    const std::vector<DWORD> deleted = in.dates();
    const std::size_t changed = in.dates().size();
    pattern.firstDate = in.dword();
    pattern.lastDate = in.dword();
    if (in.dword() != formatVersion || in.dword() != formatVersion)
    {
        return std::nullopt;
    }
    pattern.end = endOf(pattern, endKind);
    pattern.startMinute = in.dword();
    pattern.endMinute = in.dword();
    in.word();
    for (std::size_t i = 0; i < changed && in.good(); ++i)
    {
        pattern.exceptions.push_back(readException(in));
    }
    if (!in.good())
    {
        return std::nullopt;
    }
    std::stable_sort(pattern.exceptions.begin(), pattern.exceptions.end(),
                     [](const auto &a, const auto &b) { return a.originalStart < b.originalStart; });
    takeDeleted(pattern, deleted);
    return pattern;
}
} // namespace zb
