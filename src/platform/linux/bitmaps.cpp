// Making bitmaps, and looking at their pixels.
#include "platform/gdi.h"

#include "platform/image.h"
#include "platform/kernel.h"
#include "platform/linux/device_context.h"

#include <cstring>

using namespace zb::internal;

namespace
{
HBITMAP refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

std::shared_ptr<Surface> surfaceFor(int width, int height, Surface::Kind kind)
{
    // A side of nothing gives the least bitmap there is.
    return width == 0 || height == 0 ? Surface::create(1, 1, Surface::Kind::Monochrome)
                                     : Surface::create(width, height, kind);
}

HBITMAP insertBitmap(std::shared_ptr<Surface> surface)
{
    return surface == nullptr ? nullptr : insertObject(std::make_shared<BitmapObject>(std::move(surface)));
}

/// Eight pixels a byte, the leftmost in the highest bit; 1 is white. Rows end on whole words of 16 bits.
void readBits(Surface &surface, const unsigned char *bits)
{
    const std::size_t rowBytes = (static_cast<std::size_t>(surface.width()) + 15) / 16 * 2;
    for (int y = 0; y < surface.height(); ++y, bits += rowBytes)
    {
        for (int x = 0; x < surface.width(); ++x)
        {
            const bool white = (bits[x / 8] >> (7 - x % 8) & 1) != 0;
            surface.row(y)[x] = white ? whitePixel : blackPixel;
        }
    }
}

/// Four bytes a pixel: blue, green, red, and one that says nothing.
void readPixels(Surface &surface, const unsigned char *bits)
{
    for (int y = 0; y < surface.height(); ++y)
    {
        for (int x = 0; x < surface.width(); ++x, bits += 4)
        {
            surface.row(y)[x] = opaqueBits | static_cast<std::uint32_t>(bits[2]) << 16U |
                                static_cast<std::uint32_t>(bits[1]) << 8U | bits[0];
        }
    }
}
} // namespace

HBITMAP CreateCompatibleBitmap(HDC context, int width, int height)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return nullptr;
    }
    if (width < 0 || height < 0)
    {
        return refuse();
    }
    const bool mono = found->surface().isMonochrome();
    return insertBitmap(surfaceFor(width, height, mono ? Surface::Kind::Monochrome : Surface::Kind::Color));
}

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void *bits)
{
    const bool readable = bits == nullptr || bitsPerPixel == 1 || bitsPerPixel == 32;
    if (width < 0 || height < 0 || planes != 1 || bitsPerPixel == 0 || bitsPerPixel > 32 || !readable)
    {
        return refuse();
    }
    const bool mono = bitsPerPixel == 1;
    auto surface = surfaceFor(width, height, mono ? Surface::Kind::Monochrome : Surface::Kind::Color);
    if (surface != nullptr && bits != nullptr && width != 0 && height != 0)
    {
        const auto *bytes = static_cast<const unsigned char *>(bits);
        mono ? readBits(*surface, bytes) : readPixels(*surface, bytes);
    }
    return insertBitmap(std::move(surface));
}

std::vector<std::uint32_t> zb::pixelsOf(HBITMAP bitmap)
{
    std::vector<std::uint32_t> pixels;
    if (const auto found = bitmapOf(bitmap))
    {
        const Surface &surface = *found->surface();
        pixels.reserve(static_cast<std::size_t>(surface.width()) * static_cast<std::size_t>(surface.height()));
        for (int y = 0; y < surface.height(); ++y)
        {
            for (int x = 0; x < surface.width(); ++x)
            {
                pixels.push_back(surface.row(y)[x] & colorBits);
            }
        }
    }
    return pixels;
}
