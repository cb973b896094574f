// Local time for many moments; see the header for what is promised.
#include "core/LocalTimeConverter.h"

#include "core/datetools.h"
#include "platform/clock.h"

#include <algorithm>
#include <limits>

namespace zb
{
namespace
{
constexpr LONGLONG ticksPerMillisecond = ticksPerSecond / 1000;
/// Moments between these (years 1602 and 9999) can be moved by any bias below without leaving the calendar.
constexpr LONGLONG safeBegin = 365 * ticksPerDay;
constexpr LONGLONG safeEnd = 3'067'000LL * ticksPerDay;
/// Biases up to this many minutes are worked with here; a wilder zone record goes the plain way.
constexpr LONG safeBias = 7 * 1440;

LONGLONG startOfMonth(int year, int month)
{
    const SYSTEMTIME first{
        static_cast<WORD>(month > 12 ? year + 1 : year), static_cast<WORD>(month > 12 ? 1 : month), 0, 1, 0, 0, 0, 0};
    FILETIME moment{};
    SystemTimeToFileTime(&first, &moment);
    return ticksOf(moment);
}

bool isTame(LONG bias)
{
    return bias >= -safeBias && bias <= safeBias;
}
} // namespace

LocalTimeConverter::LocalTimeConverter(const TIME_ZONE_INFORMATION &zone)
    : m_zone(zone), m_bias(zone.Bias * ticksPerMinute), m_daylightBias(zone.DaylightBias * ticksPerMinute),
      m_standardBias(zone.StandardBias * ticksPerMinute)
{
}

bool LocalTimeConverter::toLocal(LONGLONG utc, LONGLONG &local, bool &isDst)
{
    if (utc < safeBegin || utc >= safeEnd || !isTame(m_zone.Bias))
    {
        return convertPlainly(utc, local, isDst);
    }
    const LONGLONG plain = utc - utc % ticksPerMillisecond - m_bias;
    if (m_zone.StandardDate.wMonth == 0)
    {
        local = plain;
        isDst = false;
        return true;
    }
    if (!inYear(plain) || m_year.february != februaryOfChanges())
    {
        learnYear(plain);
    }
    const LONGLONG daylight = plain - m_daylightBias;
    if (!inYear(daylight) || !isTame(m_zone.DaylightBias) || !isTame(m_zone.StandardBias))
    {
        return convertPlainly(utc, local, isDst);
    }
    isDst = isDaylight(plain, daylight);
    local = isDst ? daylight : plain - m_standardBias;
    return true;
}

bool LocalTimeConverter::inYear(LONGLONG local) const
{
    return local >= m_year.begin && local < m_year.end;
}

/// Both changes of a year are one comparison each: a month before that of the change hasn't reached it, a later one
/// has, and in its own month the moment decides. So the change counts from its moment, held inside its month.
LONGLONG LocalTimeConverter::reachedFrom(int year, const SYSTEMTIME &transition) const
{
    if (transition.wMonth == 0)
    {
        return std::numeric_limits<LONGLONG>::min();
    }
    if (transition.wMonth > 12)
    {
        return std::numeric_limits<LONGLONG>::max();
    }
    return std::clamp(ticksOfChange(year, transition), m_year.months[transition.wMonth - 1U],
                      m_year.months[transition.wMonth]);
}

void LocalTimeConverter::learnYear(LONGLONG local)
{
    SYSTEMTIME fields{};
    const FILETIME moment = fileTimeOf(local);
    FileTimeToSystemTime(&moment, &fields);
    for (int month = 1; month <= 13; ++month)
    {
        m_year.months[static_cast<std::size_t>(month - 1)] = startOfMonth(fields.wYear, month);
    }
    m_year.begin = m_year.months.front();
    m_year.end = m_year.months.back();
    // A leap year lengthens February for good. That has to have happened before its length is noted, and a length
    // that another thread changes from here on shows at the next moment, which then learns the year again.
    ticksOfChange(fields.wYear, m_zone.DaylightDate);
    m_year.february = februaryOfChanges();
    m_year.daylightFrom = reachedFrom(fields.wYear, m_zone.DaylightDate);
    m_year.standardFrom = reachedFrom(fields.wYear, m_zone.StandardDate);
}

bool LocalTimeConverter::sameMonthOrLater(LONGLONG daylight, LONGLONG plain) const
{
    if (daylight >= plain)
    {
        return true;
    }
    return std::none_of(m_year.months.begin(), m_year.months.end(),
                        [=](LONGLONG start) { return start > daylight && start <= plain; });
}

bool LocalTimeConverter::isDaylight(LONGLONG plain, LONGLONG daylight) const
{
    if (m_zone.StandardDate.wMonth > m_zone.DaylightDate.wMonth)
    {
        return plain >= m_year.daylightFrom && daylight < m_year.standardFrom && sameMonthOrLater(daylight, plain);
    }
    if (m_zone.StandardDate.wMonth < m_zone.DaylightDate.wMonth)
    {
        return daylight < m_year.standardFrom || plain >= m_year.daylightFrom;
    }
    return false;
}

bool LocalTimeConverter::convertPlainly(LONGLONG utc, LONGLONG &local, bool &isDst) const
{
    SYSTEMTIME fields{};
    SYSTEMTIME converted{};
    int daylightHolds = 0;
    const FILETIME moment = fileTimeOf(utc);
    if (!FileTimeToSystemTime(&moment, &fields))
    {
        return false;
    }
    CeSystemTimeToTzSpecificLocalTime(&m_zone, &fields, &converted, &daylightHolds);
    FILETIME result{};
    if (!SystemTimeToFileTime(&converted, &result))
    {
        return false;
    }
    local = ticksOf(result);
    isDst = daylightHolds != 0;
    return true;
}
} // namespace zb
