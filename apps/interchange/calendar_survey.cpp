#include "interchange/calendar_survey.h"

#include "interchange/event_item.h"
#include "interchange/task_item.h"

#include <algorithm>
#include <tuple>

namespace zb::interchange
{
namespace
{
/// The digits of a number or time stamp as one number: "20261121T093000Z" is 20261121093000.
std::uint64_t digitsOf(std::string_view text)
{
    constexpr std::size_t most = 18;
    std::uint64_t value = 0;
    std::size_t count = 0;
    for (const char ch : text)
    {
        if (ch >= '0' && ch <= '9' && count < most)
        {
            value = value * 10 + static_cast<std::uint64_t>(ch - '0');
            ++count;
        }
    }
    return value;
}

Fingerprint keyOf(const CalendarComponent &component)
{
    return component.kind == ComponentKind::Task ? taskKey(component) : eventKey(component);
}
} // namespace

CalendarSurvey::Version CalendarSurvey::versionOf(const CalendarComponent &event)
{
    const EventField stamp = event.has(EventField::LastModified) ? EventField::LastModified : EventField::Stamp;
    return {digitsOf(event.rawValue(EventField::Sequence)), digitsOf(event.rawValue(stamp)), event.line};
}

CalendarSurvey::CalendarSurvey(CalendarReader &reader, ZoneBook &zones)
{
    CalendarComponent component;
    while (reader.next(component))
    {
        if (component.kind == ComponentKind::Zone && !component.unended && !component.oversized)
        {
            zones.define(component.zoneId, component.text);
        }
        const bool isEvent = component.kind == ComponentKind::Event; // to-dos have versions and no series
        if ((!isEvent && component.kind != ComponentKind::Task) || component.unended)
        {
            continue;
        }
        if (isEvent && component.has(EventField::RecurrenceId))
        {
            ++m_series[seriesKey(component)].changes;
        }
        else if (isEvent && component.repeats())
        {
            m_series[seriesKey(component)].repeats = true;
        }
        const Version version = versionOf(component);
        const auto [found, added] = m_versions.emplace(keyOf(component), version);
        Version &best = found->second;
        if (!added &&
            std::tie(version.sequence, version.stamp, version.line) >= std::tie(best.sequence, best.stamp, best.line))
        {
            best = version;
        }
    }
    reader.rewind();
}

std::size_t CalendarSurvey::lineThatCounts(const CalendarComponent &event) const
{
    const auto found = m_versions.find(keyOf(event));
    return found == m_versions.end() ? event.line : found->second.line;
}

std::optional<std::size_t> CalendarSurvey::changesOfSeries(const CalendarComponent &event) const
{
    if (!event.has(EventField::Uid))
    {
        return event.repeats() ? std::optional<std::size_t>(0) : std::nullopt;
    }
    const auto found = m_series.find(seriesKey(event));
    return found != m_series.end() && found->second.repeats ? std::optional(found->second.changes) : std::nullopt;
}

bool CalendarSurvey::hasChangedFirstDay(const CalendarComponent &series) const
{
    return series.has(EventField::Start) && !series.has(EventField::RecurrenceId) &&
           m_versions.count(changedDayKey(series)) != 0;
}
} // namespace zb::interchange
