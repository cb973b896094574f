// Rectangles with rounded corners, ellipses and discs, with smooth edges.
//
// How much of a pixel is covered is counted exactly across and in 16 lines down, in whole numbers, and depends only on
// the pixel's distance from the shape's sides: every shape is its own mirror image, both ways.
#pragma once

#include "platform/linux/painting.h"

#include <optional>
#include <vector>

namespace zb::internal
{
struct RoundedBox
{
    Box box;
    int cornerWidth = 0; ///< of the ellipse of which each corner has a quarter; as wide as the box: an ellipse
    int cornerHeight = 0;
    bool smooth = true; ///< else each pixel that is covered by half or more is whole
};

/// All of it in one pixel.
void fillRounded(const DeviceContext &context, const RoundedBox &shape, std::uint32_t pixel);
/// Its border, `border` pixels wide and inside the box, and its body; either may be left out.
void drawRounded(const DeviceContext &context, const RoundedBox &shape, int border, std::optional<std::uint32_t> pen,
                 std::optional<std::uint32_t> brush);
} // namespace zb::internal
