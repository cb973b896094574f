// The ground that all drawing stands on: boxes of a context cut to what can be drawn on.
#pragma once

#include "platform/linux/device_context.h"

#include <algorithm>

namespace zb::internal
{
/// Coordinates further out than this are taken for it, so that sums with origins and widths stay inside an int. No
/// surface reaches there.
inline constexpr int farOut = 1 << 28;

constexpr int near(int coordinate)
{
    return std::clamp(coordinate, -farOut, farOut);
}
/// As given: empty when its sides are out of order.
constexpr Box boxOf(const RECT &rectangle)
{
    return {near(rectangle.left), near(rectangle.top), near(rectangle.right), near(rectangle.bottom)};
}
/// Sides put in order.
constexpr Box orderedBox(int left, int top, int right, int bottom)
{
    return {near(std::min(left, right)), near(std::min(top, bottom)), near(std::max(left, right)),
            near(std::max(top, bottom))};
}
constexpr Box shifted(const Box &box, int x, int y)
{
    return {box.left + x, box.top + y, box.right + x, box.bottom + y};
}

/// Calls draw(Box) for each part of the box (in the context's coordinates) that can be drawn on; the parts are in the
/// surface's coordinates, not empty, and don't overlap.
template <typename Draw>
void forVisible(const DeviceContext &context, const Box &box, Draw draw)
{
    const Box moved = shifted(box, context.origin().x, context.origin().y);
    const Box cut = moved.intersected(context.visible().extents());
    if (cut.isEmpty())
    {
        return;
    }
    for (const pixman_box32_t &each : context.visible().boxes())
    {
        const Box part = cut.intersected({each.x1, each.y1, each.x2, each.y2});
        if (!part.isEmpty())
        {
            draw(part);
        }
    }
}

/// Calls draw(std::uint32_t *row, int left, int right) for the visible parts of each row.
template <typename Draw>
void forVisibleRows(const DeviceContext &context, const Box &box, Draw draw)
{
    forVisible(context, box,
               [&](const Box &part)
               {
                   for (int y = part.top; y < part.bottom; ++y)
                   {
                       draw(context.surface().row(y), part.left, part.right);
                   }
               });
}

/// Sets the pixels of a box; the pixel is fitted to the surface here.
inline void fillBox(const DeviceContext &context, const Box &box, std::uint32_t pixel)
{
    const std::uint32_t fitted = context.surface().fit(pixel);
    forVisibleRows(context, box,
                   [fitted](std::uint32_t *row, int left, int right) { std::fill(row + left, row + right, fitted); });
}
} // namespace zb::internal
