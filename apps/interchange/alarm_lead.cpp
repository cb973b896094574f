#include "interchange/alarm_lead.h"

#include "interchange/calendar_text.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/pim_objects.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
constexpr LONGLONG secondsPerMinute = 60;
constexpr LONGLONG secondsPerDay = 86'400;
/// Longer spans than any record tells are cut anyway.
constexpr LONGLONG mostSeconds = 100 * 366 * secondsPerDay;

std::string upper(std::string_view text)
{
    std::string copy(text);
    std::transform(copy.begin(), copy.end(), copy.begin(),
                   [](unsigned char each) { return static_cast<char>(std::toupper(each)); });
    return copy;
}

/// UTC; of an all-day event the first midnight of the device's zone.
LONGLONG startOf(const EventTimes &times)
{
    SYSTEMTIME fields{};
    if (!times.allDay || FileTimeToSystemTime(&times.start, &fields) == FALSE)
    {
        return ticksOf(times.start);
    }
    const auto midnight = zoneLocalToUtc(deviceZoneName(), fields);
    return ticksOf(midnight.value_or(times.start));
}

LONGLONG lengthOf(const EventTimes &times)
{
    return times.allDay ? times.days * secondsPerDay : times.minutes * secondsPerMinute;
}

/// "20260302T093000Z".
std::optional<LONGLONG> momentOf(const std::string &text)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int read = 0;
    const bool whole = std::sscanf(text.c_str(), "%4d%2d%2dT%2d%2d%2dZ%n", &year, &month, &day, &hour, &minute, &second,
                                   &read) == 6 &&
                       static_cast<std::size_t>(read) == text.size();
    SYSTEMTIME fields{};
    fields.wYear = static_cast<WORD>(year);
    fields.wMonth = static_cast<WORD>(month);
    fields.wDay = static_cast<WORD>(day);
    fields.wHour = static_cast<WORD>(hour);
    fields.wMinute = static_cast<WORD>(minute);
    fields.wSecond = static_cast<WORD>(second);
    FILETIME moment{};
    return whole && SystemTimeToFileTime(&fields, &moment) != FALSE ? std::optional(ticksOf(moment)) : std::nullopt;
}

/// Seconds behind what it is counted from, below 0 for those in front.
std::optional<LONGLONG> spanOf(const std::string &text)
{
    const icaldurationtype span = icaldurationtype_from_string(text.c_str());
    if (icaldurationtype_is_bad_duration(span) != 0)
    {
        return std::nullopt;
    }
    const LONGLONG seconds = (static_cast<LONGLONG>(span.weeks) * 7 + span.days) * secondsPerDay +
                             (static_cast<LONGLONG>(span.hours) * 60 + span.minutes) * secondsPerMinute + span.seconds;
    return std::clamp(span.is_neg != 0 ? -seconds : seconds, -mostSeconds, mostSeconds);
}

/// Whole minutes, rounded up.
LONG minutesOf(LONGLONG seconds)
{
    const LONGLONG minutes = seconds / secondsPerMinute + (seconds % secondsPerMinute > 0 ? 1 : 0);
    return static_cast<LONG>(std::clamp<LONGLONG>(minutes, -PIM_LONGEST_REMINDER, PIM_LONGEST_REMINDER));
}

/// The trigger of the alarm; nothing without one.
std::optional<std::string> triggerOf(const CalendarComponent &component)
{
    std::string text = upper(trimmed(component.alarmTrigger));
    return component.hasAlarm && !text.empty() ? std::optional(std::move(text)) : std::nullopt;
}

bool isMoment(const std::string &trigger)
{
    return std::isdigit(static_cast<unsigned char>(trigger.front())) != 0;
}

bool countsFromEnd(const CalendarComponent &component)
{
    return upper(component.alarmParameters).find("RELATED=END") != std::string::npos;
}
} // namespace

std::optional<LONG> alarmLead(const CalendarComponent &event, const EventTimes &times)
{
    const std::optional<std::string> trigger = triggerOf(event);
    std::optional<LONGLONG> lead;
    if (trigger && isMoment(*trigger))
    {
        const std::optional<LONGLONG> moment = momentOf(*trigger);
        lead = moment ? std::optional((startOf(times) - *moment) / ticksPerSecond) : std::nullopt;
    }
    else if (trigger)
    {
        const std::optional<LONGLONG> span = spanOf(*trigger);
        lead = span ? std::optional(-*span - (countsFromEnd(event) ? lengthOf(times) : 0)) : std::nullopt;
    }
    return lead ? std::optional(std::max(minutesOf(*lead), LONG{0})) : std::nullopt;
}

std::optional<LONG> alarmLead(const CalendarComponent &task, std::optional<LONGLONG> start, LONGLONG due)
{
    const std::optional<std::string> trigger = triggerOf(task);
    std::optional<LONGLONG> alarm;
    if (trigger && isMoment(*trigger))
    {
        alarm = momentOf(*trigger);
        alarm = alarm ? std::optional(*alarm + zoneOffsetMinutes(deviceZoneName(), fileTimeOf(*alarm)).value_or(0) *
                                                   ticksPerMinute)
                      : std::nullopt;
    }
    else if (trigger)
    {
        const std::optional<LONGLONG> span = spanOf(*trigger);
        const LONGLONG from = start && !countsFromEnd(task) ? *start : due;
        alarm = span ? std::optional(from + *span * ticksPerSecond) : std::nullopt;
    }
    if (!alarm)
    {
        return std::nullopt;
    }
    const LONG minutes = minutesOf((due - due % ticksPerDay - *alarm) / ticksPerSecond);
    return minutes == 0 ? 1 : minutes;
}
} // namespace zb::interchange
