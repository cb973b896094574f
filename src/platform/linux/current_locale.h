// Which locale an LCID stands for, and a thread's memory of what was derived from it.
#pragma once

#include "platform/linux/device_state.h"
#include "platform/types.h"

#include <string>

namespace zb::internal
{
/// True for the LCIDs that mean the device's own locale: none, 1024 and 2048.
constexpr bool isDeviceLocale(LCID locale)
{
    return locale == 0 || locale == 1024 || locale == 2048;
}

/// ICU's name of the locale, for example "de_DE"; an LCID that nobody knows stands for the device's.
std::string icuLocaleName(LCID locale);

/// What belongs to the device's locale, remembered for the calling thread until another device is opened, so that a
/// call per record costs no lock. `Thing` lives for ever. Not remembered while no device is open, since the
/// environment may change then.
template <typename Thing>
class DeviceLocaleMemory
{
  public:
    template <typename Find>
    const Thing &get(LCID locale, Find find)
    {
        const std::uint64_t generation = deviceGeneration();
        if (!isDeviceLocale(locale) || generation == 0)
        {
            return find(icuLocaleName(locale));
        }
        if (m_thing == nullptr || m_generation != generation)
        {
            m_thing = &find(icuLocaleName(locale));
            m_generation = generation;
        }
        return *m_thing;
    }

  private:
    const Thing *m_thing = nullptr;
    std::uint64_t m_generation = 0;
};
} // namespace zb::internal
