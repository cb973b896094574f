// Whether daylight time holds on a day of a zone, for very many days of few zones.
//
// Gives what IsInDST gives, which works both changes of the year out at each call; here the days that were asked for
// last are remembered, for one zone at a time.
//
// Threads: an object belongs to one thread at a time.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <array>

namespace zb
{
class ZBTOOLS_API DaylightDays
{
  public:
    /// isDst of IsInDST for the date's year, month and day.
    bool holds(const TIME_ZONE_INFORMATION &zone, const SYSTEMTIME &date);

  private:
    struct Day
    {
        std::uint32_t date = 0; ///< year, month and day in one number; 0 for none
        bool daylight = false;
    };

    bool isKnown(const TIME_ZONE_INFORMATION &zone) const;
    void begin(const TIME_ZONE_INFORMATION &zone);

    TIME_ZONE_INFORMATION m_zone{};
    int m_february = 0; ///< length of February that the days were worked out with, see ConvertToAbsolute
    std::array<Day, 128> m_days;
};
} // namespace zb
