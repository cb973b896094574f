// Takes a recurrence blob apart: pattern, lists of dates, range and times. See the header for the layout.
#include "calendar/CRecurrenceReader.h"

#include "core/DateConstants.h"
#include "core/ShowError.h"
#include "platform/clock.h"
#include "platform/device.h"
#include "platform/text.h"

#include <algorithm>
#include <atomic>

namespace
{
constexpr DWORD magic = 0x30043004;
constexpr DWORD version = 0x3005;
constexpr WORD daily = 0x200A;
constexpr WORD weekly = 0x200B;
constexpr WORD monthly = 0x200C;
constexpr WORD yearly = 0x200D;
constexpr DWORD patternOffset = 22;
/// Days around the range of a load in which a series may still matter: zones, and occurrences of several days.
constexpr double daysAround = 3.0;
constexpr DWORD minutesPerDay = 1440;

/// Bytes of pattern data; -1 for a pair that is no pattern.
int patternDataSize(WORD frequency, WORD type)
{
    const bool byDay = frequency == monthly || frequency == yearly;
    if (frequency == daily && type == 0)
    {
        return 0;
    }
    if (((frequency == daily || frequency == weekly) && type == 1) || (byDay && type == 2))
    {
        return 4;
    }
    return byDay && type == 3 ? 8 : -1;
}

LONGLONG ticksOfVariant(double date)
{
    SYSTEMTIME fields{};
    FILETIME moment{};
    if (!VariantTimeToSystemTime(date, &fields) || !SystemTimeToFileTime(&fields, &moment))
    {
        return 0;
    }
    return zb::ticksOf(moment);
}

double variantOfMinutes(DWORD minutes)
{
    SYSTEMTIME fields{};
    double date = noDate;
    const FILETIME moment = zb::fileTimeOf(minutes * zb::ticksPerMinute);
    FileTimeToSystemTime(&moment, &fields);
    SystemTimeToVariantTime(&fields, &date);
    return date;
}

void readNth(const zb::RecurrenceBlob &blob, RECURPATTERN &pattern)
{
    pattern.m_wNthMask = blob.word(patternOffset);
    pattern.m_wNth = blob.word(patternOffset + 4);
}

void readPatternData(const zb::RecurrenceBlob &blob, RECURPATTERN &pattern)
{
    const DWORD first = blob.dword(patternOffset);
    switch (pattern.m_wPatternType)
    {
    case 1:
        pattern.m_dwWeekDays = first;
        pattern.m_wNthMask = static_cast<WORD>(first);
        break;
    case 2:
        pattern.m_wDayOfMonth = static_cast<WORD>(first);
        pattern.m_dwYearDay = pattern.m_wFrequency == yearly ? first : 0;
        break;
    case 3:
        readNth(blob, pattern);
        break;
    default:
        break;
    }
}

void readPeriod(const zb::RecurrenceBlob &blob, RECURPATTERN &pattern)
{
    const WORD period = blob.word(14);
    if (pattern.m_wFrequency == daily)
    {
        pattern.m_nPeriodMinutes = pattern.m_wPatternType == 0 ? static_cast<LONG>(blob.dword(14)) : period;
    }
    else if (pattern.m_wFrequency == weekly)
    {
        pattern.m_nPeriodWeeks = period;
    }
    else
    {
        pattern.m_nPeriodMonths = period;
    }
}
/// Marks the process as reading a blob. A mark that a killed thread left is overwritten by the next reading.
class ReadInProgress
{
  public:
    explicit ReadInProgress(const CRecurrenceReader &reader)
    {
        const CRecurrenceReader *const other = current.exchange(&reader, std::memory_order_relaxed);
        const std::uint64_t device = zb::deviceGeneration();
        if (other != nullptr && toldFor.exchange(device, std::memory_order_relaxed) != device)
        {
            ShowError(u"Thread Collision", showErrorFlags);
        }
    }
    ReadInProgress(const ReadInProgress &) = delete;
    ReadInProgress &operator=(const ReadInProgress &) = delete;
    ~ReadInProgress()
    {
        current.store(nullptr, std::memory_order_relaxed);
    }

  private:
    static inline std::atomic<const CRecurrenceReader *> current{nullptr};
    static inline std::atomic<std::uint64_t> toldFor{0};
};
} // namespace

namespace zb
{
bool RecurrenceBlob::dwords(LONGLONG offset, DWORD count, std::vector<DWORD> &out) const
{
    if (offset > m_size || count > (m_size - offset) / 4)
    {
        return false;
    }
    out.resize(count);
    for (DWORD i = 0; i < count; ++i)
    {
        out[i] = dword(offset + LONGLONG{i} * 4);
    }
    return true;
}

BSTR RecurrenceBlob::text(LONGLONG offset, WORD length) const
{
    const LONGLONG rest = std::max<LONGLONG>(0, (m_size - offset) / 2);
    const auto characters = static_cast<UINT>(std::min<LONGLONG>(length, rest));
    const BSTR text = SysAllocStringLen(nullptr, characters);
    for (UINT i = 0; text != nullptr && i < characters; ++i)
    {
        text[i] = word(offset + LONGLONG{i} * 2);
    }
    return text;
}
} // namespace zb

void CRecurrenceReader::SetRange(double start, double end)
{
    m_rangeStart = ticksOfVariant(start - daysAround);
    m_rangeEnd = ticksOfVariant(end + daysAround);
}

bool CRecurrenceReader::isInRange(DWORD firstDate, DWORD lastDate) const
{
    return lastDate * zb::ticksPerMinute >= m_rangeStart && firstDate * zb::ticksPerMinute <= m_rangeEnd;
}

int CRecurrenceReader::Read(const BYTE *bytes, DWORD size, CEOID, DATACALENDARDB &row, std::vector<DWORD> &deletedDates,
                            bool)
{
    const ReadInProgress mark(*this);
    if (bytes == nullptr || size == 0)
    {
        return FAILURE;
    }
    const zb::RecurrenceBlob blob(bytes, size);
    Reading reading;
    if (!readPattern(blob, reading))
    {
        return FAILURE;
    }
    const int dataSize = patternDataSize(reading.pattern.m_wFrequency, reading.pattern.m_wPatternType);
    const DWORD endOffset = patternOffset + static_cast<DWORD>(dataSize);
    if (!readLists(blob, endOffset + 12, reading) || !readEnd(blob, endOffset, reading))
    {
        return FAILURE;
    }
    setTimes(reading);
    deletedDates = withoutOccurrence(reading);
    row.m_dtStart = variantOfMinutes(reading.firstDate);
    row.m_dtEnd = reading.lastDate;
    static_cast<RECURPATTERN &>(row) = std::move(reading.pattern);
    return reading.status;
}

bool CRecurrenceReader::readPattern(const zb::RecurrenceBlob &blob, Reading &reading)
{
    RECURPATTERN &pattern = reading.pattern;
    pattern.m_wFrequency = blob.word(4);
    pattern.m_wPatternType = blob.word(6);
    if (blob.dword(0) != magic || patternDataSize(pattern.m_wFrequency, pattern.m_wPatternType) < 0)
    {
        return false;
    }
    const bool widePeriod = pattern.m_wFrequency == daily && pattern.m_wPatternType == 0;
    if (blob.word(8) != 0 || blob.dword(18) != 0 || (!widePeriod && blob.word(16) != 0))
    {
        reading.status = DOUBTS;
    }
    pattern.m_dwFirstDate = pattern.m_wFrequency == yearly ? blob.dword(10) : 0;
    readPeriod(blob, pattern);
    readPatternData(blob, pattern);
    return true;
}

/// The lists of dates, the range, the times and the exceptions. False when the series lies out of range, or when a
/// count is more than the blob can hold.
bool CRecurrenceReader::readLists(const zb::RecurrenceBlob &blob, DWORD countOffset, Reading &reading) const
{
    LONGLONG offset = countOffset;
    const DWORD deletedCount = blob.dword(offset);
    if (deletedCount == 0)
    {
        // No occurrence was deleted, so none was changed either: the count of modified dates is taken for 0.
        return readRangeAndTimes(blob, countOffset + 8, reading);
    }
    offset += 4;
    if (!blob.dwords(offset, deletedCount, reading.deleted))
    {
        return false;
    }
    offset += LONGLONG{deletedCount} * 4;
    const DWORD modifiedCount = blob.dword(offset);
    offset += 4;
    std::vector<DWORD> &modified = reading.pattern.m_lstModified;
    if (!blob.dwords(offset, modifiedCount, modified))
    {
        return false;
    }
    offset += LONGLONG{modifiedCount} * 4;
    if (!readRangeAndTimes(blob, static_cast<DWORD>(offset), reading))
    {
        return false;
    }
    // Behind the two dates: two version words, two times, the count of exceptions.
    offset += 26;
    for (DWORD i = 0; i < modifiedCount && offset < blob.size(); ++i)
    {
        reading.pattern.m_lstExceptions.push_back(zb::readException(blob, offset, modified));
    }
    return true;
}

bool CRecurrenceReader::readRangeAndTimes(const zb::RecurrenceBlob &blob, DWORD offset, Reading &reading) const
{
    reading.firstDate = blob.dword(offset);
    reading.lastDate = blob.dword(offset + 4);
    reading.startMinute = blob.dword(offset + 16);
    reading.endMinute = blob.dword(offset + 20);
    return isInRange(reading.firstDate, reading.lastDate);
}

/// What stands behind the pattern data, checked from one end to the other. False without the version words.
bool CRecurrenceReader::readEnd(const zb::RecurrenceBlob &blob, DWORD endOffset, Reading &reading)
{
    const WORD deletedCount = blob.word(endOffset + 12);
    const LONGLONG modifiedOffset = LONGLONG{endOffset} + 16 + LONGLONG{deletedCount} * 4;
    const WORD modifiedCount = blob.word(modifiedOffset);
    const LONGLONG dates = modifiedOffset + 4 + LONGLONG{modifiedCount} * 4;
    const WORD exceptionCount = blob.word(dates + 24);
    reading.pattern.m_nOccurrences = static_cast<LONG>(blob.dword(endOffset + 4));
    if (blob.dword(dates + 8) != version || blob.dword(dates + 12) != version)
    {
        return false;
    }
    const bool countsDiffer = deletedCount != modifiedCount || modifiedCount != exceptionCount;
    const bool cutShort = deletedCount == 0 && modifiedCount == 0 && exceptionCount == 0 && dates + 28 > blob.size();
    if (blob.word(endOffset + 2) != 0 || countsDiffer || cutShort)
    {
        reading.status = DOUBTS;
    }
    return true;
}

void CRecurrenceReader::setTimes(Reading &reading)
{
    RECURPATTERN &pattern = reading.pattern;
    pattern.m_wStartHour = static_cast<WORD>(reading.startMinute / 60);
    pattern.m_wStartMinute = static_cast<WORD>(reading.startMinute % 60);
    pattern.m_wEndHour = static_cast<WORD>(reading.endMinute / 60);
    pattern.m_wEndMinute = static_cast<WORD>(reading.endMinute % 60);
}

/// The deleted dates, less those that a changed occurrence stands for, day by day.
std::vector<DWORD> CRecurrenceReader::withoutOccurrence(const Reading &reading)
{
    std::vector<DWORD> changedDays = reading.pattern.m_lstModified;
    for (DWORD &date : changedDays)
    {
        date /= minutesPerDay;
    }
    std::sort(changedDays.begin(), changedDays.end());
    std::vector<DWORD> dates;
    for (const DWORD date : reading.deleted)
    {
        if (!std::binary_search(changedDays.begin(), changedDays.end(), date / minutesPerDay))
        {
            dates.push_back(date);
        }
    }
    return dates;
}
