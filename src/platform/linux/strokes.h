// Lines and bodies with pens and brushes, in a context's coordinates.
//
// A point of whole pixels names the middle of its pixel. A pen of width 1 draws the line of pixels from one point up to
// the next, that one left out. A wider one covers, across the line, width / 2 pixels before the point (rounded down)
// and the rest from it on; segments along an axis end square, half the width behind their points, slanted ones round.
#pragma once

#include "platform/linux/painting.h"

#include <span>
#include <vector>

namespace zb::internal
{
/// Where a dashed pen is in its pattern: 6 pixels drawn and 3 left out, times its width.
struct DashPhase
{
    std::int64_t at = 0;
};

/// One segment.
void drawSegment(const DeviceContext &context, const PenObject &pen, POINT from, POINT to, DashPhase &phase);
/// A segment from each point to the next.
void drawSegments(const DeviceContext &context, const PenObject &pen, std::span<const POINT> points);

/// A point in sixteenths of a pixel; the middle of a pixel at 8.
struct FinePoint
{
    std::int64_t x = 0;
    std::int64_t y = 0;
};
/// All pixels whose middle lies inside (by the even-odd rule; of two bodies that share an edge one has it).
void fillPolygon(const DeviceContext &context, std::span<const FinePoint> points, std::uint32_t pixel);
/// Of a point in whole pixels; such as lie beyond any surface are moved nearer.
FinePoint fineOf(POINT point);
} // namespace zb::internal
