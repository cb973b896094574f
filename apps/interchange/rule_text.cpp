#include "interchange/rule_text.h"

#include <array>

namespace zb::interchange
{
namespace
{
constexpr std::array<const char *, 7> dayNames = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr DWORD lastInstance = 5;
constexpr DWORD mondayToFriday = 62;
/// Every month has it.
constexpr DWORD surestDay = 28;

std::string weekdays(DWORD mask, const std::string &number)
{
    std::string list;
    for (std::size_t day = 0; day < dayNames.size(); ++day)
    {
        if ((mask >> day & 1U) != 0)
        {
            list += (list.empty() ? "" : ",") + number + dayNames[day];
        }
    }
    return list;
}

std::string interval(DWORD count)
{
    return count > 1 ? ";INTERVAL=" + std::to_string(count) : "";
}

std::string monthDay(DWORD day)
{
    if (day <= surestDay)
    {
        return ";BYMONTHDAY=" + std::to_string(day);
    }
    std::string list = ";BYMONTHDAY=" + std::to_string(surestDay);
    for (DWORD each = surestDay + 1; each <= day; ++each)
    {
        list += "," + std::to_string(each);
    }
    return list + ";BYSETPOS=-1";
}

std::string nthDay(const RecurrencePattern &pattern)
{
    const DWORD mask = pattern.weekdays;
    const std::string number = pattern.instance >= lastInstance ? "-1" : std::to_string(pattern.instance);
    const bool single = (mask & (mask - 1)) == 0;
    return single ? ";BYDAY=" + weekdays(mask, number) : ";BYDAY=" + weekdays(mask, "") + ";BYSETPOS=" + number;
}

std::string dayInMonth(const RecurrencePattern &pattern)
{
    return pattern.type == RecurrenceType::NthWeekday ? nthDay(pattern) : monthDay(pattern.dayOfMonth);
}

std::string days(const RecurrencePattern &pattern)
{
    switch (pattern.frequency)
    {
    case RecurrenceFrequency::Daily:
        return pattern.type == RecurrenceType::Weekdays ? "FREQ=WEEKLY;BYDAY=" + weekdays(mondayToFriday, "")
                                                        : "FREQ=DAILY" + interval(pattern.interval);
    case RecurrenceFrequency::Weekly:
        return "FREQ=WEEKLY" + interval(pattern.interval) + (pattern.interval > 1 ? ";WKST=SU" : "") +
               ";BYDAY=" + weekdays(pattern.weekdays, "");
    case RecurrenceFrequency::Monthly:
        return "FREQ=MONTHLY" + interval(pattern.interval) + dayInMonth(pattern);
    default:
        return "FREQ=YEARLY;BYMONTH=" + std::to_string(pattern.month) + dayInMonth(pattern);
    }
}
} // namespace

std::string ruleText(const RecurrencePattern &pattern, const std::string &until)
{
    const std::string rule = days(pattern);
    if (pattern.end == RecurrenceEnd::AfterCount && pattern.occurrences > 0)
    {
        return rule + ";COUNT=" + std::to_string(pattern.occurrences);
    }
    return pattern.lastDate >= endlessSeriesDate ? rule : rule + ";UNTIL=" + until;
}
} // namespace zb::interchange
