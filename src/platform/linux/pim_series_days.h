// The days that a pattern names, as plain days since 1601 in the zone of its record.
//
// What lists show of a pattern and what stands here agree, but for their known traits: on a day of the month that some
// months lack lists may show a day between the 28th and the pattern's (see isNear), and "every weekday" of the daily
// kind is Monday to Friday here, always.
#pragma once

#include "platform/pim_recurrence.h"
#include "platform/types.h"

#include <optional>

namespace zb::internal
{
class SeriesDays
{
  public:
    /// The pattern must outlive it, and be one that encodeRecurrence takes. First and last date bound the days; deleted
    /// and changed days count as days.
    explicit SeriesDays(const RecurrencePattern &pattern);

    /// The first day of the series that is `day` or later; nothing behind the last.
    std::optional<int> onOrAfter(int day) const;
    /// The last day before `day`; nothing in front of the first.
    std::optional<int> before(int day) const;
    bool contains(int day) const;
    /// A day that the pattern names, or one that lists may show in its place.
    bool isNear(int day) const;
    /// The nth day, from 1; nothing when there are fewer.
    std::optional<int> nth(DWORD n) const;
    /// Days between the closest two of the first fifty; nothing for a series of one day.
    std::optional<int> shortestGap() const;

  private:
    /// The first day of period `number` (days, weeks or months from that of the first date) from `from` on.
    std::optional<int> inPeriod(int number, int from) const;
    int periodOf(int day) const;
    std::optional<int> dayInMonth(int year, int month) const;
    int nthWeekday(int year, int month) const;

    const RecurrencePattern &m_pattern;
    int m_first;
    int m_last;
    int m_interval; ///< periods between those that count
    DWORD m_weekdays;
};
} // namespace zb::internal
