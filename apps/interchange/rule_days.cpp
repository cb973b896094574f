#include "interchange/rule_days.h"

#include "platform/clock.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace zb::interchange
{
namespace
{
constexpr int mostSteps = 300'000;
constexpr std::size_t longestRule = 4096;

constexpr short noPart = ICAL_RECURRENCE_ARRAY_MAX;
constexpr int hoursPerDay = 24;

bool isByMinute(const icalrecurrencetype &rule)
{
    return rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
}

bool isLimited(const icalrecurrencetype &rule)
{
    return rule.by_second[0] != noPart || rule.by_minute[0] != noPart || rule.by_hour[0] != noPart ||
           rule.by_day[0] != noPart || rule.by_month_day[0] != noPart || rule.by_year_day[0] != noPart ||
           rule.by_week_no[0] != noPart || rule.by_month[0] != noPart || rule.by_set_pos[0] != noPart;
}

/// Whether the rule goes by another calendar. Told from its text: parsing it would hand out memory of the parser's.
bool namesCalendar(std::string rule)
{
    std::transform(rule.begin(), rule.end(), rule.begin(),
                   [](char ch) { return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch; });
    return rule.find("RSCALE") != std::string::npos;
}

/// A rule that only names some hours is followed day by day, since hour by hour one that names none of them would keep
/// its reader busy for half a minute. False where that is not the same.
bool countDays(icalrecurrencetype &rule)
{
    if (rule.freq != ICAL_HOURLY_RECURRENCE || !isLimited(rule))
    {
        return true;
    }
    if (rule.interval != 1 || rule.by_set_pos[0] != noPart)
    {
        return false;
    }
    rule.freq = ICAL_DAILY_RECURRENCE;
    for (int hour = 0; rule.by_hour[0] == noPart && hour < hoursPerDay; ++hour)
    {
        rule.by_hour[hoursPerDay - 1 - hour] = static_cast<short>(hoursPerDay - 1 - hour);
    }
    return true;
}

/// Whether a month can hold one of the rule's days; years of months without one are slow to pass.
bool namesSomeDay(const icalrecurrencetype &rule)
{
    constexpr int daysOfMonth[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    constexpr int mostWeekdays = 5;
    const bool inMonths = rule.freq == ICAL_MONTHLY_RECURRENCE || rule.by_month[0] != noPart;
    for (const short *day = rule.by_day; inMonths && *day != noPart; ++day)
    {
        if (std::abs(icalrecurrencetype_day_position(*day)) > mostWeekdays)
        {
            return false;
        }
    }
    bool found = rule.by_month[0] == noPart || rule.by_month_day[0] == noPart;
    for (const short *month = rule.by_month; *month != noPart && !found; ++month)
    {
        for (const short *day = rule.by_month_day; *day != noPart && !found; ++day)
        {
            found = *month >= 1 && *month <= 12 && std::abs(*day) <= daysOfMonth[*month - 1];
        }
    }
    return found;
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
    if (namesCalendar(rule))
    {
        return std::nullopt;
    }
    icalrecurrencetype parsed = icalrecurrencetype_from_string(rule.c_str());
    if (parsed.freq == ICAL_NO_RECURRENCE || parsed.interval < 1 || parsed.count < 0 ||
        (isByMinute(parsed) && isLimited(parsed)) || !namesSomeDay(parsed) || !countDays(parsed))
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
        m_gaveUp = m_iterator != nullptr;
        return std::nullopt;
    }
    ++m_steps;
    const icaltimetype next = icalrecur_iterator_next(m_iterator.get());
    const LONGLONG wall = icaltime_is_null_time(next) != 0 ? -1 : wallOf(next);
    return wall >= 0 ? std::optional(wall) : std::nullopt;
}
} // namespace zb::interchange
