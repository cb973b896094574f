// Pixels of one surface onto a context, as they are or in another size.
#pragma once

#include "platform/linux/painting.h"
#include "platform/linux/scaling.h"

#include <functional>
#include <memory>

namespace zb::internal
{
/// Sides as calls give them: below 0 they reach to the left of their point, or upwards, and mirror.
struct Stretch
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// Whether scaling takes its lengths: up to 32,767 either way.
bool isScalable(const Stretch &side);
/// The rectangle that it covers.
Box boxOf(const Stretch &side);

/// Gets a run of target pixels and those of the picture for them.
using RowPainter = std::function<void(std::uint32_t *, const std::uint32_t *, int)>;
/// Calls `paint` for all visible parts of the target. Neither stretch may have a length of 0. The source may be the
/// target's own surface. False with last error 8 without memory for a copy of it.
bool drawScaled(const DeviceContext &target, const Stretch &to, const Surface &source, const Stretch &from,
                const PixelReading &reading, const RowPainter &paint);

/// Blends the part of the source over the target by its opacity, otherwise as drawScaled.
bool drawBlended(const DeviceContext &target, const Stretch &to, const Surface &source, const Stretch &from,
                 const PixelReading &reading);

/// One pixel over another by the upper one's opacity, as the surface can hold it.
std::uint32_t blended(const Surface &surface, std::uint32_t over, std::uint32_t under);

/// A surface that holds the part of another that lies in the box.
std::shared_ptr<Surface> copyOf(const Surface &surface, const Box &part);
} // namespace zb::internal
