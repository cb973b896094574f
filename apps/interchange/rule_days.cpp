#include "interchange/rule_days.h"

#include "platform/clock.h"

#include <string>

namespace zb::interchange
{
namespace
{
constexpr int mostSteps = 300'000;
constexpr std::size_t longestRule = 4096;

bool isByMinute(const icalrecurrencetype &rule)
{
    return rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
}

bool isLimited(const icalrecurrencetype &rule)
{
    constexpr short none = ICAL_RECURRENCE_ARRAY_MAX;
    return rule.by_second[0] != none || rule.by_minute[0] != none || rule.by_hour[0] != none ||
           rule.by_day[0] != none || rule.by_month_day[0] != none || rule.by_year_day[0] != none ||
           rule.by_week_no[0] != none || rule.by_month[0] != none || rule.by_set_pos[0] != none;
}

void setUntil(icalrecurrencetype &rule, const std::function<LONGLONG(LONGLONG)> &toWall)
{
    if (icaltime_is_null_time(rule.until) != 0)
    {
        return;
    }
    const bool isUtc = icaltime_is_utc(rule.until) != 0;
    const bool isDate = rule.until.is_date != 0;
    LONGLONG wall = wallOf(rule.until);
    if (isDate)
    {
        wall += ticksPerDay - ticksPerSecond;
    }
    else if (isUtc)
    {
        wall = toWall(wall);
    }
    rule.until = icalTimeOf(wall);
}
} // namespace

icaltimetype icalTimeOf(LONGLONG wall)
{
    const FILETIME time = fileTimeOf(wall);
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    icaltimetype result = icaltime_null_time();
    result.year = fields.wYear;
    result.month = fields.wMonth;
    result.day = fields.wDay;
    result.hour = fields.wHour;
    result.minute = fields.wMinute;
    result.second = fields.wSecond;
    return result;
}

LONGLONG wallOf(const icaltimetype &time)
{
    SYSTEMTIME fields{};
    fields.wYear = static_cast<WORD>(time.year);
    fields.wMonth = static_cast<WORD>(time.month);
    fields.wDay = static_cast<WORD>(time.day);
    fields.wHour = static_cast<WORD>(time.hour);
    fields.wMinute = static_cast<WORD>(time.minute);
    fields.wSecond = static_cast<WORD>(time.second);
    FILETIME wall{};
    return SystemTimeToFileTime(&fields, &wall) != FALSE ? ticksOf(wall) : -1;
}

std::optional<icalrecurrencetype> parseRule(std::string_view text, const std::function<LONGLONG(LONGLONG)> &toWall)
{
    const std::size_t from = text.find_first_not_of(" \t");
    if (from == std::string_view::npos || text.size() > longestRule)
    {
        return std::nullopt;
    }
    const std::string rule(text.substr(from, text.find_last_not_of(" \t;") + 1 - from));
    icalrecurrencetype parsed = icalrecurrencetype_from_string(rule.c_str());
    if (parsed.freq == ICAL_NO_RECURRENCE || parsed.interval < 1 || parsed.count < 0 || parsed.rscale != nullptr ||
        (isByMinute(parsed) && isLimited(parsed)))
    {
        return std::nullopt;
    }
    if (icaltime_is_null_time(parsed.until) == 0 && wallOf(parsed.until) < 0)
    {
        return std::nullopt;
    }
    setUntil(parsed, toWall);
    return parsed;
}

bool isWithinDay(const icalrecurrencetype &rule)
{
    return isByMinute(rule) || rule.freq == ICAL_HOURLY_RECURRENCE;
}

RuleDays::RuleDays(const icalrecurrencetype &rule, LONGLONG wallStart)
    : m_iterator(icalrecur_iterator_new(rule, icalTimeOf(wallStart)), icalrecur_iterator_free), m_counts(rule.count > 0)
{
}

void RuleDays::skipTo(LONGLONG wall)
{
    if (m_iterator && !m_counts)
    {
        icalrecur_iterator_set_start(m_iterator.get(), icalTimeOf(wall));
    }
}

std::optional<LONGLONG> RuleDays::next()
{
    if (!m_iterator || m_steps >= mostSteps)
    {
        m_gaveUp = true;
        return std::nullopt;
    }
    ++m_steps;
    const icaltimetype next = icalrecur_iterator_next(m_iterator.get());
    const LONGLONG wall = icaltime_is_null_time(next) != 0 ? -1 : wallOf(next);
    return wall >= 0 ? std::optional(wall) : std::nullopt;
}
} // namespace zb::interchange
