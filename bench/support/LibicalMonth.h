// The peer of a calendar load: the events already in memory as libical takes them, rules parsed, times on the wall
// clock, and each series expanded by libical's iterator, which is put near the range instead of being walked there.
#pragma once

#include "support/MixedCalendar.h"

namespace zb::bench
{
class LibicalMonth
{
  public:
    explicit LibicalMonth(const MixedCalendar &calendar);

    /// An event, in whatever order the source has them.
    struct Event
    {
        LONGLONG startMinute = 0;
        LONGLONG durationMinutes = 0;
        int series = -1; ///< index, -1 for a single one
    };
    struct Rule
    {
        std::size_t event = 0;
        icalrecurrencetype rule{};
        icaltimetype start{};
        std::vector<int> skippedDays; ///< deleted and changed ones, in rising order
        std::optional<ChangedOccurrence> changed;
    };

    /// What shows on the days from `from` to `to`, in order.
    std::vector<DayEntry> load(int from, int to) const;

    /// Adds the entries of one series that is `durationMinutes` long.
    static void expand(std::vector<DayEntry> &entries, const Rule &series, LONGLONG durationMinutes, int from, int to);

  private:
    std::vector<Event> m_events;
    std::vector<Rule> m_rules;
};

/// A series as the iterator takes it.
LibicalMonth::Rule ruleOf(const Series &series, std::size_t event);

/// An iterator that is at the first occurrence of `from` or a few in front of it; null for a series that is over by
/// then or begins behind `to`. To be freed by icalrecur_iterator_free.
icalrecur_iterator *iteratorNear(const icalrecurrencetype &rule, const icaltimetype &start, int from, int to);
} // namespace zb::bench
