// The year in which the devices' records keep a day of every year.
#pragma once

#include "platform/types.h"

namespace zb::host
{
/// Records hold whole dates alone. In a leap year of the far future the day of a year without year keeps its place in
/// lists, and they show no age.
inline constexpr WORD yearOfNoYear = 2996;
} // namespace zb::host
