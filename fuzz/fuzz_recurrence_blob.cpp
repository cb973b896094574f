// Any bytes as the recurrence blob of an appointment: read or refused, never followed outside; and what was read is
// walked over several ranges, in which the dates rise and end.
#include "calendar/CRecurrenceReader.h"
#include "calendar/RecurrenceWalk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace
{
/// Days of each range; the last one covers all sorts of leap years.
constexpr std::array<int, 3> lengths{0, 41, 3000};
/// Days that a walk may name in front of its range: one period of the longest kind at most comes before it.
constexpr int mostInFront = 64;

/// Ends the program where a series names a date twice, goes back, or names one that does not exist.
class RisingDates final : public zb::RecurrenceVisitor
{
  public:
    void occurrence(const zb::CalendarDay &date, double x) override
    {
        if (!date.exists() || (m_count > 0 && x <= m_last))
        {
            std::abort();
        }
        m_last = x;
        ++m_count;
    }
    int count() const
    {
        return m_count;
    }

  private:
    double m_last = 0.0;
    int m_count = 0;
};

void walk(const DATACALENDARDB &row, int from, int days)
{
    const zb::RecurrenceRange range{zb::CalendarDay::fromVariantDay(from), static_cast<double>(from),
                                    static_cast<double>(from + days)};
    RisingDates dates;
    double workingDay = 0.0;
    zb::RecurrenceWalk walk(row, range, dates, row.m_dtStart, row.m_dtEnd, row.m_nDuration, workingDay);
    const bool byDay = row.m_wPatternType == 2;
    switch (row.m_wFrequency)
    {
    case 0x200A:
        row.m_wPatternType == 0 ? walk.daily() : walk.everyWeekday();
        break;
    case 0x200B:
        walk.weekly();
        break;
    case 0x200C:
        byDay ? walk.monthlyByDay() : walk.monthlyByWeekday();
        break;
    default:
        byDay ? walk.yearlyByDay() : walk.yearlyByWeekday();
        break;
    }
    if (dates.count() > days + 1 + mostInFront)
    {
        std::abort();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    CRecurrenceReader reader;
    DATACALENDARDB row;
    std::vector<DWORD> deleted;
    const int result = reader.Read(data, static_cast<DWORD>(size), 1, row, deleted, false);
    const bool known = row.m_wFrequency >= 0x200A && row.m_wFrequency <= 0x200D;
    const bool bounded = row.m_lstExceptions.size() <= row.m_lstModified.size() && deleted.size() <= size / 4;
    if ((result == CRecurrenceReader::FAILURE) == known || !bounded)
    {
        std::abort();
    }
    if (result == CRecurrenceReader::FAILURE)
    {
        return 0;
    }
    constexpr int march2026 = 46082;
    for (const int days : lengths)
    {
        // Every weekday can begin the range; the first date of the series lies in front of it, in it and behind it.
        walk(row, march2026 + static_cast<int>(size % 7), days);
        walk(row, static_cast<int>(row.m_dtStart) - 20 + static_cast<int>(size % 7), days);
        walk(row, static_cast<int>(row.m_dtStart) + 400 + static_cast<int>(size % 7), days);
    }
    return 0;
}
