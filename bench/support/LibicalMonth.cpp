#include "support/LibicalMonth.h"

#include <algorithm>

namespace zb::bench
{
namespace
{
constexpr int minutesPerDay = 1440;
} // namespace

LibicalMonth::Rule ruleOf(const Series &series, std::size_t event)
{
    LibicalMonth::Rule made;
    made.event = event;
    made.rule = icalrecurrencetype_from_string(series.rule.c_str());
    made.start = series.icalStart();
    made.skippedDays = series.deletedDays;
    made.changed = series.changed;
    if (series.changed)
    {
        made.skippedDays.push_back(series.changed->originalDay);
        std::sort(made.skippedDays.begin(), made.skippedDays.end());
    }
    return made;
}

LibicalMonth::LibicalMonth(const MixedCalendar &calendar)
{
    m_events.reserve(calendar.events.size());
    for (const MixedEvent &event : calendar.events)
    {
        m_events.push_back({event.startMinute, event.durationMinutes, -1});
        if (event.series)
        {
            m_events.back().series = static_cast<int>(m_rules.size());
            m_rules.push_back(ruleOf(*event.series, m_events.size() - 1));
        }
    }
}

icalrecur_iterator *iteratorNear(const icalrecurrencetype &rule, const icaltimetype &start, int from, int to)
{
    icaltimetype near = icalTimeOfMinute(LONGLONG{from} * minutesPerDay);
    icaltimetype end = icalTimeOfMinute(LONGLONG{to} * minutesPerDay + minutesPerDay - 1);
    near.is_date = end.is_date = start.is_date;
    const bool over = !icaltime_is_null_time(rule.until) && icaltime_compare(rule.until, near) < 0;
    if (over || icaltime_compare(start, end) > 0)
    {
        return nullptr;
    }
    icalrecur_iterator *const iterator = icalrecur_iterator_new(rule, start);
    if (iterator != nullptr && rule.count == 0 && icaltime_compare(start, near) < 0)
    {
        near.hour = start.hour;
        near.minute = start.minute;
        icalrecur_iterator_set_start(iterator, near);
    }
    return iterator;
}

void LibicalMonth::expand(std::vector<DayEntry> &entries, const Rule &series, LONGLONG durationMinutes, int from,
                          int to)
{
    if (icalrecur_iterator *const iterator = iteratorNear(series.rule, series.start, from, to); iterator != nullptr)
    {
        for (icaltimetype next = icalrecur_iterator_next(iterator); !icaltime_is_null_time(next);
             next = icalrecur_iterator_next(iterator))
        {
            const LONGLONG minute = minuteOfIcalTime(next);
            const int day = static_cast<int>(minute / minutesPerDay);
            if (day > to)
            {
                break;
            }
            if (!std::binary_search(series.skippedDays.begin(), series.skippedDays.end(), day))
            {
                addDays(entries, from, to, minute, minute + durationMinutes, series.event);
            }
        }
        icalrecur_iterator_free(iterator);
    }
    if (series.changed)
    {
        const LONGLONG minute = series.changed->startMinute;
        addDays(entries, from, to, minute, minute + series.changed->durationMinutes, series.event);
    }
}

std::vector<DayEntry> LibicalMonth::load(int from, int to) const
{
    std::vector<DayEntry> entries;
    for (std::size_t n = 0; n < m_events.size(); ++n)
    {
        const Event &event = m_events[n];
        if (event.series >= 0)
        {
            expand(entries, m_rules[static_cast<std::size_t>(event.series)], event.durationMinutes, from, to);
        }
        else
        {
            addDays(entries, from, to, event.startMinute, event.startMinute + event.durationMinutes, n);
        }
    }
    sortEntries(entries);
    return entries;
}
} // namespace zb::bench
