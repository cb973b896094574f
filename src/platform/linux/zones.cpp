// Zone records, offsets and local times by zone name, and the device's own zone.
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/linux/civil_date.h"
#include "platform/linux/device_state.h"
#include "platform/linux/zone_store.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb
{
namespace
{
using namespace internal;

constexpr LONGLONG secondsFrom1601To1970 = LONGLONG{daysFrom1601To1970} * secondsPerDay;

std::int64_t momentOf(const FILETIME &time)
{
    return ticksOf(time) / ticksPerSecond - secondsFrom1601To1970;
}

/// Whole minutes, to the nearest: before standard times there were offsets with seconds.
int minutesOf(int seconds)
{
    return (seconds >= 0 ? seconds + 30 : seconds - 30) / 60;
}

void putName(WCHAR (&target)[32], std::string_view name)
{
    const std::u16string wide = toUtf16(name);
    const std::size_t length = std::min(wide.size(), std::size(target) - 1);
    std::copy_n(wide.begin(), length, target);
    target[length] = 0;
}

/// The yearly rule that gives a change at the same moment by the same wall clock, if that clock shows the very day
/// which the rule names.
const ChangeRule *ruleOf(const ZoneHistory &zone, const ZoneChange &change, int year)
{
    const ZoneRule *rule = zone.yearlyRule();
    if (rule == nullptr)
    {
        return nullptr;
    }
    const bool toDaylight = change.time == rule->daylightBegins(year);
    const ChangeRule &which = toDaylight ? rule->toDaylight : rule->toStandard;
    const bool sameMoment = toDaylight || change.time == rule->standardBegins(year);
    const bool onItsDay =
        which.kind == ChangeRule::Kind::WeekOfMonth && which.secondOfDay >= 0 && which.secondOfDay < secondsPerDay;
    const bool sameWall = which.localTime(year) == change.time + change.before.offset;
    return sameMoment && onItsDay && sameWall ? &which : nullptr;
}

/// The change as week and weekday of its month, by the wall clock before it. The week is that of the zone's lasting
/// rule where this gives the change; otherwise the last of the month goes as 5, since rules mean that more often than
/// "the fourth".
SYSTEMTIME relativeDate(const ZoneHistory &zone, const ZoneChange &change, int year)
{
    const LONGLONG local = change.time + change.before.offset + secondsFrom1601To1970;
    FILETIME moment = fileTimeOf(local * ticksPerSecond);
    SYSTEMTIME date{};
    FileTimeToSystemTime(&moment, &date);
    const ChangeRule *rule = ruleOf(zone, change, year);
    const bool last = date.wDay + 7 > daysInMonth(date.wYear, date.wMonth);
    const int week = rule != nullptr ? rule->week : last ? 5 : (date.wDay - 1) / 7 + 1;
    date.wDay = static_cast<WORD>(week);
    date.wYear = 0;
    return date;
}

/// Whether two changes lead away from an offset and back, in different months, as a record can tell.
bool isPair(const std::vector<ZoneChange> &changes)
{
    if (changes.size() != 2)
    {
        return false;
    }
    const auto monthOf = [](const ZoneChange &change)
    {
        const LONGLONG days = (change.time + change.before.offset + secondsFrom1601To1970) / secondsPerDay;
        return civilDate(static_cast<int>(days)).month;
    };
    return changes[0].before.offset == changes[1].after.offset && monthOf(changes[0]) != monthOf(changes[1]);
}

TIME_ZONE_INFORMATION recordOfOffset(const ZonePeriod &period)
{
    TIME_ZONE_INFORMATION record{};
    record.Bias = -minutesOf(period.offset);
    putName(record.StandardName, period.name);
    putName(record.DaylightName, period.name);
    return record;
}

/// Daylight time is the one with the greater offset, whatever tzdata calls it: Ireland's winter time is "daylight
/// time" of minus one hour there.
TIME_ZONE_INFORMATION recordOfPair(const ZoneHistory &zone, const std::vector<ZoneChange> &changes, int year)
{
    const bool daylightFirst = changes[0].after.offset > changes[0].before.offset;
    const ZoneChange &toDaylight = changes[daylightFirst ? 0 : 1];
    const ZoneChange &toStandard = changes[daylightFirst ? 1 : 0];
    TIME_ZONE_INFORMATION record = recordOfOffset(toStandard.after);
    record.DaylightBias = -minutesOf(toDaylight.after.offset) - record.Bias;
    putName(record.DaylightName, toDaylight.after.name);
    record.DaylightDate = relativeDate(zone, toDaylight, year);
    record.StandardDate = relativeDate(zone, toStandard, year);
    return record;
}

/// The latest standard time of the year; the latest time at all when tzdata calls none standard.
ZonePeriod standardPeriod(const ZoneHistory &zone, int year)
{
    const auto startOf = [](int ofYear)
    { return static_cast<std::int64_t>(dayNumber(ofYear, 1, 1) - daysFrom1601To1970) * secondsPerDay; };
    ZonePeriod period = zone.periodAt(startOf(year));
    ZonePeriod best = period;
    while (period.end < startOf(year + 1) - period.offset)
    {
        period = zone.periodAt(period.end);
        if (!period.daylight || best.daylight)
        {
            best = period;
        }
    }
    return best;
}

TIME_ZONE_INFORMATION recordOf(const ZoneHistory &zone, int year)
{
    const std::vector<ZoneChange> changes = zone.changesOf(year);
    return isPair(changes) ? recordOfPair(zone, changes, year) : recordOfOffset(standardPeriod(zone, year));
}

constexpr bool isYear(int year)
{
    return year >= 1601 && year <= 30827;
}
} // namespace

std::optional<TIME_ZONE_INFORMATION> zoneRecord(std::string_view name, int year)
{
    const ZoneHistory *zone = findZone(name);
    return zone != nullptr && isYear(year) ? std::optional(recordOf(*zone, year)) : std::nullopt;
}

std::optional<int> zoneOffsetMinutes(std::string_view name, const FILETIME &utc)
{
    const ZoneHistory *zone = findZone(name);
    return zone != nullptr && ticksOf(utc) >= 0 ? std::optional(minutesOf(zone->periodAt(momentOf(utc)).offset))
                                                : std::nullopt;
}

std::optional<FILETIME> zoneLocalToUtc(std::string_view name, const SYSTEMTIME &local)
{
    const ZoneHistory *zone = findZone(name);
    FILETIME wall{};
    if (zone == nullptr || !SystemTimeToFileTime(&local, &wall))
    {
        return std::nullopt;
    }
    const LONGLONG ticks = ticksOf(wall);
    const LONGLONG seconds = zone->fromLocal(momentOf(wall)) + secondsFrom1601To1970;
    const LONGLONG utc = seconds * ticksPerSecond + ticks % ticksPerSecond;
    return utc >= 0 ? std::optional(fileTimeOf(utc)) : std::nullopt;
}

std::string deviceZoneName()
{
    return currentZone();
}
} // namespace zb

DWORD GetTimeZoneInformation(TIME_ZONE_INFORMATION *zone)
{
    using namespace zb;
    if (zone == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0xFFFFFFFFU;
    }
    const ZoneHistory &history = deviceZone();
    SYSTEMTIME today{};
    GetLocalTime(&today);
    const ZonePeriod now = history.periodAt(momentOf(fileTimeOf(currentTicks())));
    *zone = recordOf(history, today.wYear);
    if (zone->StandardDate.wMonth == 0)
    {
        // In a year without a pair of changes the clock of today counts, or appointments of today would be off.
        *zone = recordOfOffset(now);
        return TIME_ZONE_ID_UNKNOWN;
    }
    return minutesOf(now.offset) == -zone->Bias ? TIME_ZONE_ID_STANDARD : TIME_ZONE_ID_DAYLIGHT;
}

namespace
{
/// Moves a time by the offset that holds now. False for results outside of what a FILETIME counts.
BOOL moveByOffsetOfNow(const FILETIME *from, FILETIME *to, int direction)
{
    using namespace zb;
    if (from == nullptr || to == nullptr || ticksOf(*from) < 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const int minutes = minutesOf(deviceZone().periodAt(momentOf(fileTimeOf(currentTicks()))).offset);
    LONGLONG ticks = 0;
    if (__builtin_add_overflow(ticksOf(*from), direction * minutes * ticksPerMinute, &ticks) || ticks < 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *to = fileTimeOf(ticks);
    return TRUE;
}
} // namespace

void GetLocalTime(SYSTEMTIME *time)
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    FileTimeToLocalFileTime(&now, &now);
    FileTimeToSystemTime(&now, time);
}

BOOL FileTimeToLocalFileTime(const FILETIME *utc, FILETIME *local)
{
    return moveByOffsetOfNow(utc, local, 1);
}

BOOL LocalFileTimeToFileTime(const FILETIME *local, FILETIME *utc)
{
    return moveByOffsetOfNow(local, utc, -1);
}
