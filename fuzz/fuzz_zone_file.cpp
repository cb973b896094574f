// Zone files: any bytes are refused, or give periods that never run backward and local times that come back.
#include "platform/linux/zone_history.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace
{
void require(bool holds)
{
    if (!holds)
    {
        std::abort();
    }
}

void checkMoment(const zb::internal::ZoneHistory &zone, std::int64_t moment)
{
    const zb::internal::ZonePeriod period = zone.periodAt(moment);
    require(period.start <= moment && moment < period.end);
    const std::int64_t local = moment + period.offset;
    const std::int64_t back = zone.fromLocal(local);
    require(back <= moment && back + zone.periodAt(back).offset == local);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto zone = zb::internal::ZoneHistory::read(std::string_view(reinterpret_cast<const char *>(data), size));
    if (!zone)
    {
        return 0;
    }
    constexpr std::int64_t month = 2'629'746;
    for (std::int64_t moment = -1'000'000'000; moment < 5'000'000'000; moment += 29 * month)
    {
        checkMoment(*zone, moment);
    }
    for (const int year : {1601, 1970, 2026, 2037, 2038, 30827})
    {
        for (const auto &change : zone->changesOf(year))
        {
            require(change.before.end == change.time && change.after.offset != change.before.offset);
        }
    }
    return 0;
}
