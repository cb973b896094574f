// Local time of one zone through all times: the listed changes of its file, and its rule behind the last of them.
//
// Moments are seconds since 1970. Never changed once made, so any number of threads may ask.
#pragma once

#include "platform/linux/zone_file.h"
#include "platform/linux/zone_rule.h"
#include "platform/types.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace zb::internal
{
/// A stretch of time with one offset.
struct ZonePeriod
{
    std::int64_t start = std::numeric_limits<std::int64_t>::min();
    std::int64_t end = std::numeric_limits<std::int64_t>::max(); ///< the first moment behind it
    int offset = 0;                                              ///< seconds to add to UTC
    bool daylight = false;                                       ///< as tzdata calls it
    std::string_view name;                                       ///< lives as long as the history
};

/// A moment at which the offset of a zone changes.
struct ZoneChange
{
    std::int64_t time = 0;
    ZonePeriod before;
    ZonePeriod after;
};

class ZBPLATFORM_API ZoneHistory
{
  public:
    /// UTC.
    ZoneHistory();
    /// Nothing for bytes that are no zone file.
    static std::optional<ZoneHistory> read(std::string_view bytes);

    ZonePeriod periodAt(std::int64_t moment) const;

    /// The moment of a wall clock time (given as if it were UTC). One that was skipped counts with the offset before
    /// the change, one that stood twice is the first.
    std::int64_t fromLocal(std::int64_t local) const;

    /// Changes of the offset whose wall clock time, read before the change, lies in a year.
    std::vector<ZoneChange> changesOf(int year) const;

    /// The rule behind the last listed change, if there is one with yearly changes.
    const ZoneRule *yearlyRule() const
    {
        return m_rule && m_rule->changes ? &*m_rule : nullptr;
    }

  private:
    explicit ZoneHistory(ZoneFile file);
    ZonePeriod listedPeriod(std::size_t changesPassed) const;
    ZonePeriod ruledPeriod(std::int64_t moment) const;

    ZoneFile m_file;
    std::optional<ZoneRule> m_rule;
};
} // namespace zb::internal
