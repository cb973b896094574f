#include "interchange/series_unroll.h"

#include "interchange/event_series.h"
#include "interchange/rule_days.h"
#include "platform/clock.h"

#include <iterator>

namespace zb::interchange
{
namespace
{
class Unroller
{
  public:
    Unroller(const SeriesCalendar &series, LONGLONG now) : m_series(series), m_today(now - now % ticksPerDay)
    {
        m_result.from = m_today - unrolledDaysBefore * ticksPerDay;
        m_result.to = m_today + unrolledDaysAfter * ticksPerDay;
    }

    UnrolledDays run()
    {
        for (const icalrecurrencetype &rule : m_series.exceptionRules)
        {
            follow(rule, [this](LONGLONG day) { m_excluded.insert(day); });
        }
        for (const icalrecurrencetype &rule : m_series.rules)
        {
            follow(rule, [this](LONGLONG day) { add(day, -1); });
        }
        for (const ListedDay &day : m_series.listed)
        {
            add(day.wall, day.minutes);
        }
        add(m_series.start, -1);
        limit();
        return std::move(m_result);
    }

  private:
    template <typename Take>
    void follow(icalrecurrencetype rule, const Take &take)
    {
        RuleDays days(rule, m_series.start);
        // Days of the past are of little use to who gets a thousand hours.
        const LONGLONG from = isWithinDay(rule) ? m_today : m_result.from;
        if (from > m_series.start && isWithinDay(rule))
        {
            days.skipTo(from);
        }
        auto day = days.next();
        // A start that the rule does not name counts as one of its days.
        LONGLONG left = rule.count > 0 ? rule.count - (day && *day == m_series.start ? 0 : 1) : -1;
        std::size_t ahead = 0;
        for (; day && left != 0; day = days.next(), --left)
        {
            if (*day >= m_result.to || ahead > mostUnrolled)
            {
                m_result.whole = false;
                return;
            }
            ahead += *day >= m_today ? 1 : 0;
            if (*day >= from)
            {
                take(*day);
            }
            else
            {
                m_result.whole = m_result.whole && *day == m_series.start;
            }
        }
        m_result.whole = m_result.whole && !days.gaveUp();
    }

    void add(LONGLONG day, LONG minutes)
    {
        if (m_excluded.count(day) == 0 && !m_series.isDeleted(day))
        {
            m_result.days.emplace(day, minutes);
        }
    }

    /// The start itself stays.
    void limit()
    {
        auto &days = m_result.days;
        auto ahead = static_cast<std::size_t>(std::distance(days.lower_bound(m_today), days.end()));
        while (days.size() > mostUnrolled)
        {
            m_result.whole = false;
            auto gone = std::prev(days.end());
            if (ahead <= mostUnrolled / 2)
            {
                gone = days.begin()->first == m_series.start ? std::next(days.begin()) : days.begin();
            }
            else
            {
                --ahead;
            }
            days.erase(gone);
        }
    }

    const SeriesCalendar &m_series;
    LONGLONG m_today;
    std::set<LONGLONG> m_excluded;
    UnrolledDays m_result;
};
} // namespace

UnrolledDays unrolledDays(const SeriesCalendar &series, LONGLONG now)
{
    return Unroller(series, now).run();
}

std::string dateText(LONGLONG ticks)
{
    const std::string text = utcText(ticks);
    return text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6, 2);
}
} // namespace zb::interchange
