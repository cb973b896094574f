// Sizes of the screen as command line and scripts write them.
#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace zb::screens
{
inline constexpr int smallestSide = 160;
inline constexpr int largestSide = 8192;

/// Width and height of "480x640"; nothing for anything else or a side out of bounds.
std::optional<std::pair<int, int>> screenSizeOf(std::string_view text);
} // namespace zb::screens
