#include "platform/linux/zone_history.h"

#include "platform/linux/civil_date.h"

#include <algorithm>
#include <array>

namespace zb::internal
{
namespace
{
/// The device's years; moments beyond are taken for these ends, so that arithmetic stays in range.
constexpr int firstYear = 2;
constexpr int lastYear = 32'000;
/// No offset moves a moment further than this.
constexpr std::int64_t widestOffset = 8 * secondsPerDay;

constexpr std::int64_t startOfYear(int year)
{
    return static_cast<std::int64_t>(dayNumber(year, 1, 1) - daysFrom1601To1970) * secondsPerDay;
}

std::int64_t heldInRange(std::int64_t moment)
{
    return std::clamp(moment, startOfYear(firstYear), startOfYear(lastYear));
}

int yearOf(std::int64_t moment)
{
    const std::int64_t held = heldInRange(moment) - startOfYear(firstYear);
    return civilDate(static_cast<int>(held / secondsPerDay) + dayNumber(firstYear, 1, 1)).year;
}
} // namespace

ZoneHistory::ZoneHistory()
{
    m_file.kinds.push_back({0, false, "UTC"});
}

ZoneHistory::ZoneHistory(ZoneFile file) : m_file(std::move(file)), m_rule(parseZoneRule(m_file.rule))
{
}

std::optional<ZoneHistory> ZoneHistory::read(std::string_view bytes)
{
    std::optional<ZoneFile> file = parseZoneFile(bytes);
    return file ? std::optional(ZoneHistory(*std::move(file))) : std::nullopt;
}

ZonePeriod ZoneHistory::listedPeriod(std::size_t changesPassed) const
{
    const auto &changes = m_file.changes;
    ZonePeriod period;
    std::size_t kind = 0;
    if (changesPassed != 0)
    {
        period.start = changes[changesPassed - 1].time;
        kind = changes[changesPassed - 1].kind;
    }
    if (changesPassed < changes.size())
    {
        period.end = changes[changesPassed].time;
    }
    period.offset = m_file.kinds[kind].offset;
    period.daylight = m_file.kinds[kind].daylight;
    period.name = m_file.kinds[kind].name;
    return period;
}

ZonePeriod ZoneHistory::ruledPeriod(std::int64_t moment) const
{
    struct Change
    {
        std::int64_t time;
        bool daylight;
    };
    const int year = yearOf(moment);
    // A year on either side, since changes may lie days outside of the year that they are counted from. The change to
    // daylight time stands behind one to standard time at the same moment: so daylight time that never ends is told.
    std::array<Change, 6> changes{};
    for (int i = 0; i < 3; ++i)
    {
        changes[static_cast<std::size_t>(2 * i)] = {m_rule->standardBegins(year - 1 + i), false};
        changes[static_cast<std::size_t>(2 * i + 1)] = {m_rule->daylightBegins(year - 1 + i), true};
    }
    std::stable_sort(changes.begin(), changes.end(), [](const Change &a, const Change &b) { return a.time < b.time; });
    const auto next = std::upper_bound(changes.begin(), changes.end(), moment,
                                       [](std::int64_t time, const Change &change) { return time < change.time; });
    const bool daylight = next != changes.begin() && std::prev(next)->daylight;
    const ZoneRule::Time &time = daylight ? m_rule->daylight : m_rule->standard;
    ZonePeriod period;
    period.start = next == changes.begin() ? period.start : std::prev(next)->time;
    period.end = next == changes.end() ? period.end : next->time;
    period.offset = time.offset;
    period.daylight = daylight;
    period.name = time.name;
    return period;
}

ZonePeriod ZoneHistory::periodAt(std::int64_t moment) const
{
    const auto &changes = m_file.changes;
    const auto next =
        std::upper_bound(changes.begin(), changes.end(), moment,
                         [](std::int64_t time, const ZoneFile::Change &change) { return time < change.time; });
    if (next != changes.end() || !m_rule)
    {
        return listedPeriod(static_cast<std::size_t>(next - changes.begin()));
    }
    ZonePeriod period;
    if (m_rule->changes)
    {
        period = ruledPeriod(moment);
    }
    else
    {
        period.offset = m_rule->standard.offset;
        period.name = m_rule->standard.name;
    }
    period.start = changes.empty() ? period.start : std::max(period.start, changes.back().time);
    return period;
}

std::int64_t ZoneHistory::fromLocal(std::int64_t local) const
{
    const std::int64_t held = heldInRange(local);
    std::optional<std::int64_t> skipped;
    ZonePeriod period = periodAt(held - widestOffset);
    int before = period.offset;
    while (period.start <= held + widestOffset)
    {
        const std::int64_t moment = held - period.offset;
        if (moment >= period.start && moment < period.end)
        {
            return moment;
        }
        // Skipped by this change, though one soon after may still lead back to it.
        if (moment < period.start && !skipped)
        {
            skipped = held - before;
        }
        if (period.end == std::numeric_limits<std::int64_t>::max())
        {
            break;
        }
        before = period.offset;
        period = periodAt(period.end);
    }
    return skipped.value_or(held - before);
}

std::vector<ZoneChange> ZoneHistory::changesOf(int year) const
{
    std::vector<ZoneChange> changes;
    const std::int64_t first = startOfYear(std::clamp(year, firstYear, lastYear - 1));
    const std::int64_t behind = startOfYear(std::clamp(year, firstYear, lastYear - 1) + 1);
    ZonePeriod period = periodAt(first - widestOffset);
    while (period.end < behind + widestOffset)
    {
        const ZonePeriod next = periodAt(period.end);
        const std::int64_t local = period.end + period.offset;
        if (next.offset != period.offset && local >= first && local < behind)
        {
            changes.push_back({period.end, period, next});
        }
        period = next;
    }
    return changes;
}
} // namespace zb::internal
