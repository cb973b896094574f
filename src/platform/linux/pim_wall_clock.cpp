#include "platform/linux/pim_wall_clock.h"

#include "platform/clock.h"
#include "platform/linux/civil_date.h"
#include "platform/locale.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr std::size_t zoneBytes = 48;

LONGLONG minutes(LONG count)
{
    return LONGLONG{count} * ticksPerMinute;
}

CivilDate dateOf(LONGLONG ticks)
{
    // Ticks are below 0 for local times in front of 1601 at most by a bias.
    return civilDate(static_cast<int>((ticks < 0 ? ticks - ticksPerDay + 1 : ticks) / ticksPerDay));
}

/// Midnight of the day on which a change happens in a year.
LONGLONG dayOfChange(int year, const SYSTEMTIME &change)
{
    if (change.wYear != 0)
    {
        return dayNumber(change.wYear, change.wMonth, change.wDay) * ticksPerDay;
    }
    const int first = dayNumber(year, change.wMonth, 1);
    int day = (change.wDayOfWeek - weekdayOf(first) + 7) % 7 + 7 * change.wDay - 6;
    day -= day > daysInMonth(year, change.wMonth) ? 7 : 0;
    return (first + day - 1) * ticksPerDay;
}

LONGLONG momentOfChange(int year, const SYSTEMTIME &change)
{
    return dayOfChange(year, change) + change.wHour * ticksPerHour + change.wMinute * ticksPerMinute +
           change.wSecond * ticksPerSecond;
}

/// Whether a local time lies at or behind a change of its year.
bool reached(LONGLONG wall, const SYSTEMTIME &change)
{
    const CivilDate date = dateOf(wall);
    return date.month != change.wMonth ? date.month > change.wMonth : wall >= momentOfChange(date.year, change);
}

bool isMonth(const SYSTEMTIME &change)
{
    return change.wMonth >= 1 && change.wMonth <= 12;
}

WORD wordAt(const BYTE *bytes, std::size_t at)
{
    return static_cast<WORD>(bytes[at] | (bytes[at + 1] << 8U));
}

LONG longAt(const BYTE *bytes, std::size_t at)
{
    return static_cast<LONG>(wordAt(bytes, at) | (static_cast<DWORD>(wordAt(bytes, at + 2)) << 16U));
}

SYSTEMTIME timeAt(const BYTE *bytes, std::size_t at)
{
    return {wordAt(bytes, at),     wordAt(bytes, at + 2),  wordAt(bytes, at + 4),  wordAt(bytes, at + 6),
            wordAt(bytes, at + 8), wordAt(bytes, at + 10), wordAt(bytes, at + 12), wordAt(bytes, at + 14)};
}

bool isSame(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDayOfWeek == b.wDayOfWeek && a.wDay == b.wDay &&
           a.wHour == b.wHour && a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}
} // namespace

WallClock::WallClock(const TIME_ZONE_INFORMATION &zone) : m_zone(zone)
{
    if (!isMonth(m_zone.StandardDate) || !isMonth(m_zone.DaylightDate))
    {
        m_zone.StandardDate.wMonth = 0;
    }
}

WallClock WallClock::ofDevice()
{
    TIME_ZONE_INFORMATION zone{};
    GetTimeZoneInformation(&zone);
    return WallClock(zone);
}

bool WallClock::hasChanges() const
{
    return m_zone.StandardDate.wMonth != 0;
}

/// `plain` is the local time without the offset of either half of the year.
bool WallClock::isDaylight(LONGLONG plain) const
{
    const LONGLONG daylight = plain - minutes(m_zone.DaylightBias);
    const WORD standardMonth = m_zone.StandardDate.wMonth;
    const WORD daylightMonth = m_zone.DaylightDate.wMonth;
    if (standardMonth > daylightMonth)
    {
        return dateOf(daylight).month >= dateOf(plain).month && reached(plain, m_zone.DaylightDate) &&
               !reached(daylight, m_zone.StandardDate);
    }
    return standardMonth < daylightMonth &&
           (!reached(daylight, m_zone.StandardDate) || reached(plain, m_zone.DaylightDate));
}

LONGLONG WallClock::wallOf(LONGLONG utc) const
{
    const LONGLONG plain = utc - minutes(m_zone.Bias);
    if (!hasChanges())
    {
        return plain;
    }
    return plain - minutes(isDaylight(plain) ? m_zone.DaylightBias : m_zone.StandardBias);
}

LONGLONG WallClock::utcOf(LONGLONG wall) const
{
    const LONGLONG plain = wall + minutes(m_zone.Bias);
    if (!hasChanges())
    {
        return plain;
    }
    const LONGLONG byDaylight = plain + minutes(m_zone.DaylightBias);
    return wallOf(byDaylight) == wall ? byDaylight : plain + minutes(m_zone.StandardBias);
}

bool WallClock::isDaylightDay(LONGLONG wall) const
{
    const int year = dateOf(wall).year;
    const LONGLONG day = wall - wall % ticksPerDay;
    const LONGLONG toDaylight = dayOfChange(year, m_zone.DaylightDate);
    const LONGLONG toStandard = dayOfChange(year, m_zone.StandardDate);
    if (day == toDaylight || day == toStandard)
    {
        return day == toDaylight;
    }
    return toDaylight < toStandard ? day > toDaylight && day < toStandard : day < toStandard || day > toDaylight;
}

LONGLONG WallClock::utcOfOccurrence(LONGLONG wall) const
{
    const bool daylight = hasChanges() && isDaylightDay(wall);
    return wall + minutes(m_zone.Bias) + minutes(daylight ? m_zone.DaylightBias : m_zone.StandardBias);
}

LONGLONG WallClock::occurrenceOf(LONGLONG utc) const
{
    const LONGLONG plain = utc - minutes(m_zone.Bias);
    if (!hasChanges())
    {
        return plain - minutes(m_zone.StandardBias);
    }
    for (const LONG bias : {m_zone.DaylightBias, m_zone.StandardBias})
    {
        if (utcOfOccurrence(plain - minutes(bias)) == utc)
        {
            return plain - minutes(bias);
        }
    }
    return wallOf(utc);
}

bool WallClock::operator==(const WallClock &other) const
{
    if (m_zone.Bias != other.m_zone.Bias || hasChanges() != other.hasChanges())
    {
        return false;
    }
    return !hasChanges() ||
           (m_zone.StandardBias == other.m_zone.StandardBias && m_zone.DaylightBias == other.m_zone.DaylightBias &&
            isSame(m_zone.StandardDate, other.m_zone.StandardDate) &&
            isSame(m_zone.DaylightDate, other.m_zone.DaylightDate));
}

std::optional<TIME_ZONE_INFORMATION> decodeZone(const BYTE *bytes, std::size_t size)
{
    if (bytes == nullptr || size == 0)
    {
        return std::nullopt;
    }
    BYTE whole[zoneBytes] = {};
    std::copy_n(bytes, std::min(size, zoneBytes), whole);
    bytes = whole;
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = longAt(bytes, 0);
    zone.StandardBias = longAt(bytes, 4);
    zone.DaylightBias = longAt(bytes, 8);
    zone.StandardDate = timeAt(bytes, 14);
    zone.DaylightDate = timeAt(bytes, 32);
    return zone;
}
} // namespace zb::internal
