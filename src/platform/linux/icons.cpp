#include "platform/linux/icons.h"

#include "platform/kernel.h"
#include "platform/linux/pictures.h"

#include <algorithm>

namespace zb::internal
{
std::shared_ptr<Surface> softCopy(const Surface &bitmap, const Box &part, const Surface *mask,
                                  std::optional<std::uint32_t> key)
{
    auto copy = Surface::create(part.width(), part.height(), Surface::Kind::Soft);
    PixelReading reading;
    reading.soft = bitmap.isSoft();
    reading.key = key;
    for (int y = 0; copy != nullptr && y < part.height(); ++y)
    {
        std::uint32_t *row = copy->row(y);
        reading.read(bitmap.row(part.top + y) + part.left, part.width(), row);
        for (int x = 0; x < part.width(); ++x)
        {
            const bool masked = mask != nullptr && nearestOfTwo(mask->row(part.top + y)[part.left + x]) == whitePixel;
            row[x] = softPixel(masked ? 0 : row[x]);
        }
    }
    return copy;
}

std::shared_ptr<IconObject> iconOf(HICON icon)
{
    return findAs<IconObject>(icon, HandleKind::Icon);
}
} // namespace zb::internal

using namespace zb::internal;

namespace
{
bool refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

/// The icon's picture as it is, with black where it lets through, or its mask alone.
void drawHalf(const DeviceContext &context, const Stretch &to, const Surface &picture, bool mask)
{
    PixelReading reading;
    reading.soft = true;
    const Surface &surface = context.surface();
    drawScaled(context, to, picture, {0, 0, picture.width(), picture.height()}, reading,
               [&](std::uint32_t *row, const std::uint32_t *pixels, int count)
               {
                   for (int i = 0; i < count; ++i)
                   {
                       const bool there = pixels[i] >> 24U >= 128;
                       const std::uint32_t shown = there ? pixels[i] : blackPixel;
                       row[i] = surface.fit(mask ? (there ? blackPixel : whitePixel) : shown);
                   }
               });
}
} // namespace

HICON CreateIconIndirect(const ICONINFO *description)
{
    if (description == nullptr)
    {
        refuse();
        return nullptr;
    }
    const auto color = bitmapOf(description->hbmColor);
    const auto mask = description->hbmMask == nullptr ? nullptr : bitmapOf(description->hbmMask);
    if (color == nullptr || (description->hbmMask != nullptr && mask == nullptr))
    {
        return nullptr;
    }
    const Surface &picture = *color->surface();
    if (mask != nullptr && (mask->surface()->width() < picture.width() || mask->surface()->height() < picture.height()))
    {
        refuse();
        return nullptr;
    }
    auto copy = softCopy(picture, picture.bounds(), mask == nullptr ? nullptr : mask->surface().get(), std::nullopt);
    return copy == nullptr ? nullptr : insertHandle(std::make_shared<IconObject>(std::move(copy)));
}

BOOL DestroyIcon(HICON icon)
{
    return removeHandle(icon, HandleKind::Icon) != nullptr ? TRUE : FALSE;
}

BOOL DrawIconEx(HDC context, int x, int y, HICON icon, int width, int height, UINT, HBRUSH flicker, UINT flags)
{
    const auto found = contextOf(context);
    const auto drawn = found == nullptr ? nullptr : iconOf(icon);
    const auto ground = flicker == nullptr || drawn == nullptr ? nullptr : brushOf(flicker);
    if (drawn == nullptr || (flicker != nullptr && ground == nullptr))
    {
        return FALSE;
    }
    const Surface &picture = drawn->picture();
    const Stretch to{x, y, width == 0 ? picture.width() : width, height == 0 ? picture.height() : height};
    if (width < 0 || height < 0 || !isScalable(to) || flags < DI_MASK || flags > DI_NORMAL)
    {
        return refuse() ? TRUE : FALSE;
    }
    if (ground != nullptr && !ground->isNull())
    {
        fillBox(*found, boxOf(to), ground->pixel());
    }
    if (flags != DI_NORMAL)
    {
        drawHalf(*found, to, picture, flags == DI_MASK);
        return TRUE;
    }
    PixelReading reading;
    reading.soft = true;
    return drawBlended(*found, to, picture, {0, 0, picture.width(), picture.height()}, reading) ? TRUE : FALSE;
}
