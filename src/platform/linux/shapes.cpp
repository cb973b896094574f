// Shapes with the selected pen and brush.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/rounded.h"
#include "platform/linux/strokes.h"

using namespace zb::internal;

namespace
{
BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

/// The outline of a rectangular shape is centred on its edge pixels; of an even width the odd pixel lies outside.
Box outlined(const Box &box, const PenObject &pen)
{
    const int out = pen.isNull() ? 0 : pen.width() / 2;
    return {box.left - out, box.top - out, box.right + out, box.bottom + out};
}

/// Of a shape with curves, whose measures are counted in parts of a pixel: nearer than others.
Box curvedBox(int left, int top, int right, int bottom)
{
    static constexpr int far = 1 << 20;
    const auto limited = [](int coordinate) { return std::clamp(coordinate, -far, far); };
    return orderedBox(limited(left), limited(top), limited(right), limited(bottom));
}

std::optional<std::uint32_t> penPixel(const DeviceContext &context)
{
    const PenObject &pen = *context.state().pen;
    return pen.isNull() ? std::nullopt : std::optional(pen.pixel());
}

std::optional<std::uint32_t> brushPixel(const DeviceContext &context)
{
    const BrushObject &brush = *context.state().brush;
    return brush.isNull() ? std::nullopt : std::optional(brush.pixel());
}

void drawFrame(const DeviceContext &context, const Box &box, int width, std::uint32_t pixel)
{
    const Box inner{box.left + width, box.top + width, box.right - width, box.bottom - width};
    if (inner.isEmpty())
    {
        fillBox(context, box, pixel);
        return;
    }
    fillBox(context, {box.left, box.top, box.right, inner.top}, pixel);
    fillBox(context, {box.left, inner.top, inner.left, inner.bottom}, pixel);
    fillBox(context, {inner.right, inner.top, box.right, inner.bottom}, pixel);
    fillBox(context, {box.left, inner.bottom, box.right, box.bottom}, pixel);
}

void drawDashedFrame(const DeviceContext &context, const Box &box)
{
    const POINT corners[] = {{box.left, box.top},
                             {box.right - 1, box.top},
                             {box.right - 1, box.bottom - 1},
                             {box.left, box.bottom - 1},
                             {box.left, box.top}};
    drawSegments(context, *context.state().pen, corners);
}

void drawRoundedShape(const DeviceContext &context, const Box &box, int cornerWidth, int cornerHeight)
{
    const PenObject &pen = *context.state().pen;
    const Box outer = outlined(box, pen);
    const int more = outer.width() - box.width();
    const bool square = cornerWidth == 0 || cornerHeight == 0;
    const RoundedBox shape{outer, square ? 0 : cornerWidth + more, square ? 0 : cornerHeight + more, true};
    zb::internal::drawRounded(context, shape, pen.width(), penPixel(context), brushPixel(context));
}
} // namespace

BOOL Rectangle(HDC context, int left, int top, int right, int bottom)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    const Box box = orderedBox(left, top, right, bottom);
    if (box.isEmpty())
    {
        return TRUE;
    }
    const PenObject &pen = *found->state().pen;
    const Box outer = outlined(box, pen);
    const int width = pen.isNull() ? 0 : pen.width();
    if (const auto brush = brushPixel(*found))
    {
        fillBox(*found, {outer.left + width, outer.top + width, outer.right - width, outer.bottom - width}, *brush);
    }
    if (pen.isDashed())
    {
        drawDashedFrame(*found, box);
    }
    else if (!pen.isNull())
    {
        drawFrame(*found, outer, width, pen.pixel());
    }
    return TRUE;
}

BOOL RoundRect(HDC context, int left, int top, int right, int bottom, int width, int height)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    const Box box = curvedBox(left, top, right, bottom);
    if (!box.isEmpty())
    {
        drawRoundedShape(*found, box, std::min(std::abs(near(width)), box.width()),
                         std::min(std::abs(near(height)), box.height()));
    }
    return TRUE;
}

BOOL Ellipse(HDC context, int left, int top, int right, int bottom)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    const Box box = curvedBox(left, top, right, bottom);
    if (!box.isEmpty())
    {
        drawRoundedShape(*found, box, box.width(), box.height());
    }
    return TRUE;
}

BOOL Polyline(HDC context, const POINT *points, int count)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (points == nullptr || count < 2)
    {
        return refuse();
    }
    drawSegments(*found, *found->state().pen, {points, static_cast<std::size_t>(count)});
    return TRUE;
}

BOOL Polygon(HDC context, const POINT *points, int count)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (points == nullptr || count < 2)
    {
        return refuse();
    }
    const std::span<const POINT> corners(points, static_cast<std::size_t>(count));
    if (const auto brush = brushPixel(*found))
    {
        std::vector<FinePoint> outline;
        outline.reserve(corners.size());
        std::transform(corners.begin(), corners.end(), std::back_inserter(outline), fineOf);
        fillPolygon(*found, outline, *brush);
    }
    std::vector<POINT> closed(corners.begin(), corners.end());
    closed.push_back(corners.front());
    drawSegments(*found, *found->state().pen, closed);
    return TRUE;
}

BOOL MoveToEx(HDC context, int x, int y, POINT *before)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    POINT &position = found->changeable().position;
    if (before != nullptr)
    {
        *before = position;
    }
    position = {x, y};
    return TRUE;
}

BOOL LineTo(HDC context, int x, int y)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    DashPhase phase;
    POINT &position = found->changeable().position;
    drawSegment(*found, *found->state().pen, position, {x, y}, phase);
    position = {x, y};
    return TRUE;
}
