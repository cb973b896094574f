// The zones of the system's tzdata by name, each read once.
#pragma once

#include "platform/linux/zone_history.h"

#include <string_view>

namespace zb::internal
{
/// Null for a name that tzdata does not have: "Europe/Berlin" is looked for below $TZDIR, else /usr/share/zoneinfo, and
/// nowhere else. "UTC" is known without tzdata too. What is returned lives as long as the process.
const ZoneHistory *findZone(std::string_view name);

/// The device's zone; UTC when tzdata lacks it.
const ZoneHistory &deviceZone();
} // namespace zb::internal
