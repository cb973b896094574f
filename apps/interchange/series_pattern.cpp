#include "interchange/series_pattern.h"

#include "interchange/recurrence_rules.h"
#include "interchange/rule_days.h"
#include "platform/clock.h"

#include <algorithm>
#include <map>

namespace zb::interchange
{
namespace
{
/// Lists read the record of a series only when it begins behind 1899.
constexpr LONGLONG firstListedTicks = 109'207 * ticksPerDay;
/// Room for texts beside the pattern, in bytes of a record.
constexpr std::size_t largestPattern = 0x8000;
/// How many days in front of a range lists look for the beginning of a day's occurrence.
constexpr LONGLONG longestReach = 2;
constexpr DWORD everyDay = 127;

LONGLONG dayOf(LONGLONG ticks)
{
    return ticks - ticks % ticksPerDay;
}

LONGLONG dayNumber(LONGLONG ticks)
{
    return ticks / ticksPerDay;
}

DWORD minutesOf(LONGLONG ticks)
{
    return static_cast<DWORD>(ticks / ticksPerMinute);
}

int yearOf(LONGLONG ticks)
{
    return icalTimeOf(ticks).year;
}

/// Where occurrences lie in the device's days, counted from the day they have in the series' zone.
struct Reach
{
    LONGLONG first = 0;
    LONGLONG last = 0;
};

class Planner
{
  public:
    Planner(const SeriesCalendar &series, LONGLONG now) : m_series(series), m_now(now)
    {
    }

    std::optional<SeriesPlan> plan()
    {
        if (!hasOneRule() || !findFirstDay() || !makePattern() || !fits())
        {
            return std::nullopt;
        }
        lookUpDays();
        deleteDays();
        for (const ChangedDay &change : m_series.changes)
        {
            takeChange(change);
        }
        return encode() ? std::optional(std::move(m_plan)) : std::nullopt;
    }

    const std::string &reason() const
    {
        return m_reason;
    }

  private:
    bool refuse(std::string reason)
    {
        m_reason = std::move(reason);
        return false;
    }

    bool hasOneRule()
    {
        if (m_series.rules.size() != 1)
        {
            return refuse(m_series.rules.empty() ? "its days are listed one by one" : "it repeats by several rules");
        }
        if (!m_series.exceptionRules.empty())
        {
            return refuse("a rule takes days out of it");
        }
        const bool future = std::any_of(m_series.changes.begin(), m_series.changes.end(),
                                        [](const ChangedDay &change) { return change.future; });
        return !future || refuse("it changes for good from one of its days on");
    }

    /// The first day that the rule names and a record can begin with. The start of the event counts as its first day
    /// also where the rule does not name it.
    bool findFirstDay()
    {
        m_rule = m_series.rules.front();
        RuleDays days(m_rule, m_series.start);
        auto day = days.next();
        if (day && *day != m_series.start)
        {
            m_plan.singleDays.insert(m_series.start);
            if (m_rule.count == 1)
            {
                return refuse("its rule names no day");
            }
            m_rule.count -= m_rule.count > 0 ? 1 : 0;
        }
        while (day && *day < firstListedTicks && m_rule.count != 1)
        {
            m_rule.count -= m_rule.count > 0 ? 1 : 0;
            day = days.next();
        }
        m_first = day.value_or(0);
        return day.has_value() || refuse("its rule names no day");
    }

    bool makePattern()
    {
        if (minutesOf(dayOf(m_first)) >= endlessSeriesDate || yearOf(m_first) > 4000)
        {
            return refuse("it begins later than a series can");
        }
        PatternResult result = patternFromRule(m_rule, icalTimeOf(m_first));
        if (!result.pattern)
        {
            return refuse(std::move(result.reason));
        }
        m_pattern = std::move(*result.pattern);
        m_pattern.startMinute = minutesOf(m_first % ticksPerDay);
        m_pattern.endMinute = m_pattern.startMinute + static_cast<DWORD>(m_series.wallMinutes);
        // The rules of the year in which the series is looked at, as far as it lasts.
        const LONGLONG last = LONGLONG{m_pattern.lastDate} * ticksPerMinute;
        m_year = std::clamp(yearOf(m_now), yearOf(m_first), std::max(yearOf(m_first), yearOf(last)));
        return true;
    }

    /// Days of an occurrence in the device's zone, counted from `day` in the series' own.
    Reach reachOf(LONGLONG day, LONGLONG utc, LONGLONG minutes) const
    {
        const LONGLONG end = utc + std::max<LONGLONG>(minutes * ticksPerMinute - 1, 0);
        return {dayNumber(m_series.deviceWallOf(utc)) - dayNumber(day),
                dayNumber(m_series.deviceWallOf(end)) - dayNumber(day)};
    }

    Reach reachOfSeries() const
    {
        const LONGLONG own = (m_pattern.startMinute + std::max<LONGLONG>(m_series.wallMinutes - 1, 0)) / 1440;
        Reach reach{0, own};
        if (m_series.isInDeviceZone())
        {
            return reach;
        }
        icaltimetype newYear = icalTimeOf(m_first);
        newYear.year = m_year;
        newYear.month = newYear.day = 1;
        LONGLONG wall = wallOf(newYear);
        for (int week = 0; week < 53; ++week, wall += 7 * ticksPerDay)
        {
            const Reach here = reachOf(wall, m_series.utcOf(wall), m_series.wallMinutes);
            reach.first = std::min(reach.first, here.first);
            reach.last = std::max(reach.last, here.last);
        }
        return reach;
    }

    /// Whether lists find every occurrence that shows on a day of theirs. They look for occurrences from some days in
    /// front of a range on, by the kind of the pattern, and for none behind it.
    bool fits()
    {
        const Reach reach = reachOfSeries();
        if (reach.first < 0)
        {
            return refuse(
                "its zone is so far ahead that it falls on the day before here, where lists don't look for it");
        }
        if (reach.last > longestReach)
        {
            return refuse("each time lasts longer than lists look back for");
        }
        if (m_pattern.type == RecurrenceType::EveryNDays && reach.last >= m_pattern.interval)
        {
            if (m_pattern.interval != 1)
            {
                return refuse("it begins again before it ends");
            }
            // "Every day" finds nothing that began the day before, "weekly on all seven days" does.
            m_pattern.frequency = RecurrenceFrequency::Weekly;
            m_pattern.type = RecurrenceType::Weekdays;
            m_pattern.weekdays = everyDay;
        }
        m_reach = longestReach;
        if (m_pattern.type == RecurrenceType::EveryNDays)
        {
            m_reach = std::min<LONGLONG>(longestReach, LONGLONG{m_pattern.interval} - 1);
        }
        if (m_pattern.type == RecurrenceType::NthWeekday)
        {
            const LONGLONG minutes = m_series.allDay() ? m_series.wallMinutes : m_series.item.durationMinutes;
            m_reach = std::min(longestReach, minutes / 1440);
        }
        return reach.last <= m_reach || refuse("it lasts into the day behind a weekday that is counted in its month");
    }

    /// Which of the days that are deleted, changed or listed the rule names.
    void lookUpDays()
    {
        std::set<LONGLONG> wanted;
        for (const LONGLONG day : m_series.deletedDays)
        {
            wanted.insert(dayNumber(day));
        }
        for (const LONGLONG moment : m_series.deletedMoments)
        {
            wanted.insert(dayNumber(m_series.wallOfUtc(moment)));
        }
        for (const ChangedDay &change : m_series.changes)
        {
            wanted.insert(dayNumber(std::max<LONGLONG>(change.original, 0)));
        }
        for (const ListedDay &day : m_series.listed)
        {
            wanted.insert(dayNumber(day.wall));
        }
        RuleDays days(m_rule, m_first);
        while (!wanted.empty())
        {
            const auto day = days.next();
            if (!day || dayNumber(*day) > *wanted.rbegin())
            {
                break;
            }
            if (wanted.count(dayNumber(*day)) != 0)
            {
                m_plan.ruleDays.insert(dayOf(*day));
            }
        }
    }

    LONGLONG occurrenceOn(LONGLONG day) const
    {
        return day + m_first % ticksPerDay;
    }

    void deleteDays()
    {
        for (const LONGLONG day : m_plan.ruleDays)
        {
            if (m_series.isDeleted(occurrenceOn(day)))
            {
                m_deleted.insert(day);
            }
        }
    }

    void takeChange(const ChangedDay &change)
    {
        const LONGLONG day = change.original < 0 ? -1 : dayOf(change.original);
        const bool isRuleDay = m_plan.ruleDays.count(day) != 0;
        const bool isSingleDay = m_plan.singleDays.count(change.original) != 0;
        if (!isRuleDay || isSingleDay)
        {
            m_plan.singleDays.erase(change.original);
            if (change.cancelled)
            {
                m_plan.covered.push_back(&change);
                m_plan.cancelledDays += isSingleDay ? 1 : 0;
            }
            else
            {
                m_plan.ownRecords.push_back(&change);
            }
            return;
        }
        m_deleted.insert(day);
        m_exceptions.erase(day); // the last of several counts
        if (change.cancelled)
        {
            ++m_plan.cancelledDays;
            m_plan.covered.push_back(&change);
        }
        else if (auto exception = exceptionOf(change, day))
        {
            ++m_plan.changedDays;
            m_exceptions.emplace(day, std::move(*exception));
            m_plan.covered.push_back(&change);
        }
        else
        {
            m_plan.ownRecords.push_back(&change);
        }
    }

    /// Whether an exception can say all that the changed day says; what the event leaves out stays as in the series.
    bool saysNoMore(const ChangedDay &change) const
    {
        const CalendarComponent &event = *change.event;
        const AppointmentItem &own = m_series.item;
        return (!event.has(EventField::Class) || change.item.isPrivate == own.isPrivate) &&
               (!change.item.reminder || (own.reminder && change.item.reminderMinutes == own.reminderMinutes)) &&
               (!event.has(EventField::Description) || change.item.notes == own.notes);
    }

    std::optional<RecurrenceException> exceptionOf(const ChangedDay &change, LONGLONG day) const
    {
        const AppointmentItem &item = change.item;
        const LONGLONG utc = ticksOf(item.start);
        const LONGLONG minutes = item.allDay ? LONGLONG{item.days} * 1440 - 1 : item.durationMinutes;
        const LONGLONG start = item.allDay ? utc : m_series.wallOfUtc(utc);
        const LONGLONG end =
            item.allDay ? start + minutes * ticksPerMinute : m_series.wallOfUtc(utc + minutes * ticksPerMinute);
        if (!saysNoMore(change) || start < firstListedTicks || end < start || yearOf(end) > 4000 ||
            (m_series.allDay() && !item.allDay && !change.event->parameter(EventField::Start, "TZID").empty()))
        {
            return std::nullopt;
        }
        const Reach reach =
            item.allDay ? Reach{0, dayNumber(end) - dayNumber(start)} : reachOf(dayOf(start), utc, minutes);
        const LONGLONG moved = dayNumber(start) - dayNumber(day);
        if (reach.first < 0 || reach.last > longestReach || (moved == 0 && reach.last > m_reach) ||
            (moved != 0 && !canMove(moved, start, dayNumber(end) != dayNumber(start), reach.last)))
        {
            return std::nullopt;
        }
        RecurrenceException exception;
        exception.newStart = minutesOf(start);
        exception.newEnd = minutesOf(end);
        exception.originalStart = minutesOf(occurrenceOn(day));
        takeDifferences(change, exception);
        return exception;
    }

    /// Lists look for the original day from one period in front of a range on; a change that would carry the new day
    /// further, or back, would be lost.
    bool canMove(LONGLONG days, LONGLONG start, bool overMidnight, LONGLONG reach) const
    {
        LONGLONG most = 0;
        if (m_pattern.frequency == RecurrenceFrequency::Weekly)
        {
            most = 7 * LONGLONG{m_pattern.interval};
        }
        else if (m_pattern.type == RecurrenceType::DayOfMonth)
        {
            most = 27;
        }
        const bool inSeries = dayNumber(start) <= dayNumber(LONGLONG{m_pattern.lastDate} * ticksPerMinute) + 1;
        return days > 0 && days + reach <= most && days < 28 && inSeries && !overMidnight;
    }

    void takeDifferences(const ChangedDay &change, RecurrenceException &exception) const
    {
        const AppointmentItem &own = m_series.item;
        const AppointmentItem &item = change.item;
        if (change.event->has(EventField::Summary) && item.subject != own.subject)
        {
            exception.subject = item.subject;
        }
        if (change.event->has(EventField::Location) && item.location != own.location)
        {
            exception.location = item.location;
        }
        if (item.busy != own.busy)
        {
            exception.busy = static_cast<WORD>(item.busy);
        }
        if (item.allDay != own.allDay)
        {
            exception.allDay = item.allDay;
        }
    }

    bool encode()
    {
        for (const LONGLONG day : m_deleted)
        {
            m_pattern.deleted.push_back(minutesOf(day));
        }
        for (auto &[day, exception] : m_exceptions)
        {
            m_pattern.exceptions.push_back(std::move(exception));
        }
        auto bytes = encodeRecurrence(m_pattern);
        if (!bytes)
        {
            return refuse("it repeats after more time than a record can say");
        }
        if (bytes->size() > largestPattern)
        {
            return refuse("more of its days are changed than a record holds");
        }
        m_plan.item = m_series.item;
        m_plan.item.recurrence = std::move(*bytes);
        m_plan.item.start = fileTimeOf(m_series.utcOf(m_first));
        if (!m_series.isInDeviceZone())
        {
            m_plan.item.zone = encodeZone(m_series.zone().record(m_year));
        }
        return true;
    }

    const SeriesCalendar &m_series;
    LONGLONG m_now;
    icalrecurrencetype m_rule{};
    LONGLONG m_first = 0;
    RecurrencePattern m_pattern;
    int m_year = 0;
    LONGLONG m_reach = 0; ///< days behind its own up to which an occurrence is found
    std::set<LONGLONG> m_deleted;
    std::map<LONGLONG, RecurrenceException> m_exceptions;
    SeriesPlan m_plan;
    std::string m_reason;
};
} // namespace

std::optional<SeriesPlan> planSeries(const SeriesCalendar &series, LONGLONG now, std::string &reason)
{
    Planner planner(series, now);
    auto plan = planner.plan();
    reason = planner.reason();
    return plan;
}
} // namespace zb::interchange
