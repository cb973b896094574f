// Zones as programs show them to their users, "(UTC+01:00) Amsterdam, Berlin, Bern, Rome", which careless writers put
// into files in place of a name.
#pragma once

#include <string>
#include <string_view>

namespace zb::interchange
{
/// The tzdata name; empty for a text that is none of these. The first known place of the list counts, an offset in
/// front alone names no zone.
std::string zoneOfShownName(std::string_view shown);
} // namespace zb::interchange
