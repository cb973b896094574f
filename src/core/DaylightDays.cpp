#include "core/DaylightDays.h"

#include "core/LocalTimeConverter.h"
#include "core/datetools.h"

namespace zb
{
namespace
{
bool isSameChange(const SYSTEMTIME &a, const SYSTEMTIME &b)
{
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDayOfWeek == b.wDayOfWeek && a.wDay == b.wDay &&
           a.wHour == b.wHour && a.wMinute == b.wMinute && a.wSecond == b.wSecond && a.wMilliseconds == b.wMilliseconds;
}
} // namespace

/// Biases say nothing about a day; the changes do.
bool DaylightDays::isKnown(const TIME_ZONE_INFORMATION &zone) const
{
    return m_february == februaryOfChanges() && isSameChange(zone.DaylightDate, m_zone.DaylightDate) &&
           isSameChange(zone.StandardDate, m_zone.StandardDate);
}

void DaylightDays::begin(const TIME_ZONE_INFORMATION &zone)
{
    m_zone = zone;
    m_february = februaryOfChanges();
    m_days.fill(Day{});
}

bool DaylightDays::holds(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date)
{
    if (!isKnown(zone))
    {
        begin(zone);
    }
    // Unique for every date that fields can say: 16 bits of year, months and days that exist below 16 and 32.
    if (date.wMonth == 0 || date.wMonth > 12 || date.wDay > 31)
    {
        return IsInDST(date.wYear, date.wMonth, date.wDay, &zone) != 0;
    }
    const std::uint32_t key = (std::uint32_t{date.wYear} << 9U) | (std::uint32_t{date.wMonth} << 5U) | date.wDay;
    Day &day = m_days[key % m_days.size()];
    if (day.date != key)
    {
        // A leap year among them lengthens February; the days worked out before it are then worked out again.
        day = {key, IsInDST(date.wYear, date.wMonth, date.wDay, &zone) != 0};
    }
    return day.daylight;
}
} // namespace zb
