// Local times of one zone record, as lists show them: the way there and back.
//
// Lists bring UTC into local time by the zone's two yearly changes, whatever year it is; what is stored must therefore
// be what these rules lead back from, not what the zone's history says. All times are ticks since 1601.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zb::internal
{
class WallClock
{
  public:
    explicit WallClock(const TIME_ZONE_INFORMATION &zone);
    /// The device's zone with the rules that hold now.
    static WallClock ofDevice();

    LONGLONG wallOf(LONGLONG utc) const;
    /// The moment that shows as this local time: the first of two, and of a time that a change skips the moment by the
    /// offset in front of it (so it shows an hour later).
    LONGLONG utcOf(LONGLONG wall) const;

    /// The same for times of a series, where lists judge daylight time by the whole day: the day of a change still has
    /// the old offset in autumn, and the new one in spring, from midnight on.
    LONGLONG utcOfOccurrence(LONGLONG wall) const;
    LONGLONG occurrenceOf(LONGLONG utc) const;

    bool operator==(const WallClock &other) const;

  private:
    bool hasChanges() const;
    bool isDaylight(LONGLONG plain) const;
    bool isDaylightDay(LONGLONG wall) const;

    TIME_ZONE_INFORMATION m_zone;
};

/// The zone of a record from its 48 bytes, those that are missing being 0; nothing without bytes. Names stay empty.
std::optional<TIME_ZONE_INFORMATION> decodeZone(const BYTE *bytes, std::size_t size);
} // namespace zb::internal
