// The other peer of a calendar load: the same events in a MemoryCalendar of KCalendarCore, walked by its
// OccurrenceIterator. Only where that library is installed.
#pragma once

#include "support/MixedCalendar.h"

#include <memory>

namespace zb::bench
{
class KCalendarMonth
{
  public:
    explicit KCalendarMonth(const MixedCalendar &calendar);
    ~KCalendarMonth();
    KCalendarMonth(const KCalendarMonth &) = delete;
    KCalendarMonth &operator=(const KCalendarMonth &) = delete;

    /// What shows on the days from `from` to `to`, in order.
    std::vector<DayEntry> load(int from, int to) const;

  private:
    struct Held;
    std::unique_ptr<Held> m_held;
};
} // namespace zb::bench
