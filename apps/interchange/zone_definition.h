// A zone by the rules that a calendar file itself gives (VTIMEZONE).
#pragma once

#include "interchange/zone_book.h"

#include <memory>
#include <string>

namespace zb::interchange
{
/// Null for a component without rules, or one that cannot be parsed.
std::shared_ptr<CalendarZone> zoneFromDefinition(const std::string &component);
} // namespace zb::interchange
