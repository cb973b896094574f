// One zone's local time for very many moments, at a few nanoseconds each.
//
// Gives exactly what CeSystemTimeToTzSpecificLocalTime gives, in ticks: the changes of the year that was asked for last
// are kept, so that a walk through records in order of time works them out once a year instead of once a record. Near
// the turn of a year, and for moments that no calendar can show, it asks the plain conversion itself.
//
// Threads: an object belongs to one thread at a time. Copies are independent.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <array>

namespace zb
{
class ZBTOOLS_API LocalTimeConverter
{
  public:
    LocalTimeConverter() = default;
    explicit LocalTimeConverter(const TIME_ZONE_INFORMATION &zone);

    /// Local ticks for a moment in UTC ticks, whole milliseconds (the rest is cut off, as fields do). isDst is set to
    /// whether daylight time holds. False, and untouched targets, for a moment beyond the calendar.
    bool toLocal(LONGLONG utc, LONGLONG &local, bool &isDst);

  private:
    /// A year in local ticks: its ends, its months, and from when each change counts as reached inside it.
    struct Year
    {
        LONGLONG begin = 0;
        LONGLONG end = 0;
        std::array<LONGLONG, 13> months{};
        LONGLONG daylightFrom = 0;
        LONGLONG standardFrom = 0;
        int february = 0;
    };

    void learnYear(LONGLONG local);
    LONGLONG reachedFrom(int year, const SYSTEMTIME &transition) const;
    bool inYear(LONGLONG local) const;
    bool isDaylight(LONGLONG plain, LONGLONG daylight) const;
    bool sameMonthOrLater(LONGLONG daylight, LONGLONG plain) const;
    bool convertPlainly(LONGLONG utc, LONGLONG &local, bool &isDst) const;

    TIME_ZONE_INFORMATION m_zone{};
    LONGLONG m_bias = 0;
    LONGLONG m_daylightBias = 0;
    LONGLONG m_standardBias = 0;
    Year m_year;
};

/// Days that February has for the changes of zones in this process; see ConvertToAbsolute.
ZBTOOLS_API int februaryOfChanges();
/// The moment of a zone's change in a year, in local ticks; 0 for one that doesn't exist.
ZBTOOLS_API LONGLONG ticksOfChange(int year, const SYSTEMTIME &transition);
} // namespace zb
