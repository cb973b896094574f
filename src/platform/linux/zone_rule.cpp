#include "platform/linux/zone_rule.h"

#include "platform/linux/civil_date.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr bool isDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

constexpr bool isLetter(char ch)
{
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}

/// Reads a rule from its start to its end. Every step fails for good: once it has, all that follow do.
class RuleReader
{
  public:
    explicit RuleReader(std::string_view text) : m_rest(text)
    {
    }

    std::optional<ZoneRule> read()
    {
        ZoneRule rule;
        rule.standard.name = name();
        rule.standard.offset = -hoursMinutesSeconds();
        if (m_valid && !m_rest.empty())
        {
            rule.changes = true;
            rule.daylight.name = name();
            const bool told = !m_rest.empty() && m_rest.front() != ',';
            rule.daylight.offset = told ? -hoursMinutesSeconds() : rule.standard.offset + 3600;
            rule.toDaylight = change();
            rule.toStandard = change();
        }
        return m_valid && m_rest.empty() ? std::optional(rule) : std::nullopt;
    }

  private:
    bool take(char ch)
    {
        const bool found = !m_rest.empty() && m_rest.front() == ch;
        m_rest.remove_prefix(found ? 1 : 0);
        return found;
    }

    void require(bool holds)
    {
        m_valid = m_valid && holds;
    }

    int number(int least, int most)
    {
        require(!m_rest.empty() && isDigit(m_rest.front()));
        int value = 0;
        while (!m_rest.empty() && isDigit(m_rest.front()))
        {
            value = std::min(value * 10 + (m_rest.front() - '0'), 100'000);
            m_rest.remove_prefix(1);
        }
        require(value >= least && value <= most);
        return value;
    }

    /// Letters, or anything but '>' in angle brackets; at least three characters.
    std::string name()
    {
        const bool bracketed = take('<');
        const auto isEnd = [&](char ch) { return bracketed ? ch == '>' : !isLetter(ch); };
        const auto end = std::find_if(m_rest.begin(), m_rest.end(), isEnd);
        const auto length = static_cast<std::size_t>(end - m_rest.begin());
        std::string result(m_rest.substr(0, length));
        m_rest.remove_prefix(length);
        require(length >= 3 && (!bracketed || take('>')));
        return result;
    }

    /// [+-]hh[:mm[:ss]]; hours up to a week, since changes may lie days away from the day that they are counted from.
    int hoursMinutesSeconds()
    {
        const bool negative = take('-');
        if (!negative)
        {
            take('+');
        }
        int seconds = number(0, 167) * 3600;
        if (take(':'))
        {
            seconds += number(0, 59) * 60;
            seconds += take(':') ? number(0, 59) : 0;
        }
        return negative ? -seconds : seconds;
    }

    ChangeRule change()
    {
        ChangeRule rule;
        require(take(','));
        if (take('M'))
        {
            rule.kind = ChangeRule::Kind::WeekOfMonth;
            rule.month = number(1, 12);
            require(take('.'));
            rule.week = number(1, 5);
            require(take('.'));
            rule.weekday = number(0, 6);
        }
        else if (take('J'))
        {
            rule.kind = ChangeRule::Kind::DayWithoutLeap;
            rule.day = number(1, 365);
        }
        else
        {
            rule.day = number(0, 365);
        }
        if (take('/'))
        {
            rule.secondOfDay = hoursMinutesSeconds();
        }
        return rule;
    }

    std::string_view m_rest;
    bool m_valid = true;
};

/// Days since 1601 of the day that the rule names.
int dayOf(const ChangeRule &rule, int year)
{
    switch (rule.kind)
    {
    case ChangeRule::Kind::WeekOfMonth:
    {
        const int first = dayNumber(year, rule.month, 1);
        const int day = (rule.weekday - weekdayOf(first) + 7) % 7 + 7 * (rule.week - 1);
        return first + (day < daysInMonth(year, rule.month) ? day : day - 7);
    }
    case ChangeRule::Kind::DayWithoutLeap:
    {
        constexpr int lastBeforeLeapDay = 59;
        const bool behindLeapDay = isLeapYear(year) && rule.day > lastBeforeLeapDay;
        return dayNumber(year, 1, 1) + rule.day - (behindLeapDay ? 0 : 1);
    }
    default:
        return dayNumber(year, 1, 1) + rule.day;
    }
}
} // namespace

std::int64_t ChangeRule::localTime(int year) const
{
    return static_cast<std::int64_t>(dayOf(*this, year) - daysFrom1601To1970) * secondsPerDay + secondOfDay;
}

std::optional<ZoneRule> parseZoneRule(std::string_view text)
{
    return RuleReader(text).read();
}
} // namespace zb::internal
