// Pictures in another size onto a context: the common ground of StretchBlt, TransparentImage, icons and image lists.
#include "platform/linux/stretching.h"

#include "platform/linux/pictures.h"

namespace zb::internal
{
namespace
{
ScaledSide sideOf(int from, int fromLength, int toLength)
{
    const int length = std::abs(fromLength);
    return {near(from) - (fromLength < 0 ? length : 0), length, std::abs(toLength), (fromLength < 0) != (toLength < 0)};
}
} // namespace

bool isScalable(const Stretch &side)
{
    return side.width >= -longestSide && side.width <= longestSide && side.height >= -longestSide &&
           side.height <= longestSide;
}

Box boxOf(const Stretch &side)
{
    const int x = near(side.x);
    const int y = near(side.y);
    return orderedBox(x, y, x + side.width, y + side.height);
}

std::shared_ptr<Surface> copyOf(const Surface &surface, const Box &part)
{
    auto copy = Surface::create(part.width(), part.height(),
                                surface.isSoft()         ? Surface::Kind::Soft
                                : surface.isMonochrome() ? Surface::Kind::Monochrome
                                                         : Surface::Kind::Color);
    for (int y = 0; copy != nullptr && y < part.height(); ++y)
    {
        const std::uint32_t *row = surface.row(part.top + y);
        std::copy(row + part.left, row + part.right, copy->row(y));
    }
    return copy;
}

bool drawScaled(const DeviceContext &target, const Stretch &to, const Surface &source, const Stretch &from,
                const PixelReading &reading, const RowPainter &paint)
{
    const Box box = shifted(boxOf(to), target.origin().x, target.origin().y);
    const Box shown = box.intersected(target.visible().extents());
    const Box read = boxOf(from).intersected(source.bounds());
    if (shown.isEmpty() || read.isEmpty())
    {
        return true;
    }
    // Reading and writing one surface: what is read first must not have been written yet.
    std::shared_ptr<Surface> copy;
    Stretch part = from;
    if (&source == &target.surface())
    {
        copy = copyOf(source, read);
        if (copy == nullptr)
        {
            return false;
        }
        part.x = near(from.x) - read.left;
        part.y = near(from.y) - read.top;
    }
    ScaledPicture picture(copy != nullptr ? *copy : source, sideOf(part.x, part.width, to.width),
                          sideOf(part.y, part.height, to.height), reading, shifted(shown, -box.left, -box.top));
    for (int y = shown.top; y < shown.bottom; ++y)
    {
        const std::uint32_t *pixels = picture.row(y - box.top);
        for (const pixman_box32_t &each : target.visible().boxes())
        {
            const int left = std::max(shown.left, each.x1);
            const int right = std::min(shown.right, each.x2);
            if (y >= each.y1 && y < each.y2 && left < right)
            {
                paint(target.surface().row(y) + left, pixels + (left - shown.left), right - left);
            }
        }
    }
    return true;
}

std::uint32_t blended(const Surface &surface, std::uint32_t over, std::uint32_t under)
{
    const std::uint32_t opacity = over >> 24U;
    if (surface.isMonochrome())
    {
        return opacity >= 128 ? nearestOfTwo(over) : under;
    }
    if (opacity == 0xFF || opacity == 0)
    {
        return opacity == 0 ? under : over;
    }
    // On a soft surface what lies below counts by its own opacity, and the sum is less than all.
    const std::uint32_t below = surface.isSoft() ? ((under >> 24U) * (255 - opacity) + 127) / 255 : 255 - opacity;
    const std::uint32_t whole = opacity + below;
    const auto mixed = [&](unsigned shift)
    { return ((over >> shift & 0xFFU) * opacity + (under >> shift & 0xFFU) * below + whole / 2) / whole << shift; };
    return whole << 24U | mixed(16) | mixed(8) | mixed(0);
}

bool drawBlended(const DeviceContext &target, const Stretch &to, const Surface &source, const Stretch &from,
                 const PixelReading &reading)
{
    const Surface &surface = target.surface();
    return drawScaled(
        target, to, source, from, reading,
        [&surface, mono = surface.isMonochrome()](std::uint32_t *row, const std::uint32_t *pixels, int count)
        {
            for (int i = 0; i < count; ++i)
            {
                // Most pixels of a picture are there or not, and need no sum.
                const std::uint32_t opacity = pixels[i] >> 24U;
                if (opacity == 0xFF && !mono)
                {
                    row[i] = pixels[i];
                }
                else if (opacity != 0)
                {
                    row[i] = blended(surface, pixels[i], row[i]);
                }
            }
        });
}
} // namespace zb::internal
