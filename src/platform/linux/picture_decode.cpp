// Decoding (by a library that is loaded late, but for GIF), and only what picture_header.h found whole and within the
// limits.
#include "platform/kernel.h"
#include "platform/linux/picture_codecs.h"
#include "platform/linux/picture_gif.h"
#include "platform/linux/picture_header.h"
#include "platform/linux/pictures.h"
#include "platform/linux/scaling.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
namespace
{
const char *nameOf(PictureKind kind)
{
    switch (kind)
    {
    case PictureKind::Bmp:
        return "BMP";
    case PictureKind::Gif:
        break;
    case PictureKind::Jpeg:
        return "JPG";
    case PictureKind::Png:
        return "PNG";
    }
    return "";
}

/// Rows of pixels, colours not multiplied by the opacity in the top byte.
struct Rows
{
    int width;
    int height;
    std::ptrdiff_t stride; ///< bytes
    const void *pixels;

    const std::uint32_t *row(int y) const
    {
        return reinterpret_cast<const std::uint32_t *>(static_cast<const unsigned char *>(pixels) + y * stride);
    }
};

bool isOpaque(const Rows &rows)
{
    for (int y = 0; y < rows.height; ++y)
    {
        const std::uint32_t *row = rows.row(y);
        if (!std::all_of(row, row + rows.width, [](std::uint32_t pixel) { return pixel >> 24U == 0xFF; }))
        {
            return false;
        }
    }
    return true;
}

/// Soft only where something lets through.
std::shared_ptr<Surface> surfaceOf(const Rows &rows)
{
    const bool opaque = isOpaque(rows);
    auto surface = Surface::create(rows.width, rows.height, opaque ? Surface::Kind::Color : Surface::Kind::Soft);
    for (int y = 0; surface != nullptr && y < rows.height; ++y)
    {
        const std::uint32_t *row = rows.row(y);
        opaque ? std::copy(row, row + rows.width, surface->row(y))
               : std::transform(row, row + rows.width, surface->row(y), softPixel);
    }
    return surface;
}

std::shared_ptr<Surface> refuse()
{
    SetLastError(ERROR_BAD_FORMAT);
    return nullptr;
}

std::shared_ptr<Surface> decodeByLibrary(const unsigned char *data, std::size_t size, PictureKind kind)
{
    PictureCodecs *codecs = pictureCodecs();
    if (codecs == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(codecs->lock);
    CodecPicture picture;
    if (!codecs->decode(nameOf(kind), data, size, &picture))
    {
        return refuse();
    }
    const std::unique_ptr<void, ReleasePicture> owner(picture.owner, codecs->release);
    return picture.width < 1 || picture.height < 1
               ? refuse()
               : surfaceOf({picture.width, picture.height, picture.stride, picture.pixels});
}
} // namespace

std::shared_ptr<Surface> decodeSurface(const unsigned char *data, std::size_t size, const PictureLimits &limits)
{
    constexpr std::size_t most = 0x7FFFFFFF;
    const auto header = size > limits.bytes || size > most ? std::nullopt : readPictureHeader(data, size);
    if (!header.has_value() || header->width > limits.width || header->height > limits.height)
    {
        return refuse();
    }
    if (header->kind == PictureKind::Gif)
    {
        const auto soft = decodeGif(data, size);
        return soft == nullptr
                   ? nullptr
                   : surfaceOf({soft->width(), soft->height(), soft->stride() * std::ptrdiff_t{4}, soft->row(0)});
    }
    return decodeByLibrary(data, size, header->kind);
}

namespace
{
/// `length` of a side in the measure that makes `whole` into `limit`; at least 1.
int proportion(int length, int limit, int whole)
{
    return std::max(1, static_cast<int>((static_cast<std::int64_t>(length) * limit + whole / 2) / whole));
}
} // namespace

std::shared_ptr<Surface> fitSurface(std::shared_ptr<Surface> surface, int width, int height)
{
    const int ownWidth = surface->width();
    const int ownHeight = surface->height();
    const bool tooWide = width > 0 && ownWidth > width;
    const bool tooHigh = height > 0 && ownHeight > height;
    if (!tooWide && !tooHigh)
    {
        return surface;
    }
    const bool byWidth = tooWide && (!tooHigh || static_cast<std::int64_t>(ownWidth) * height >=
                                                     static_cast<std::int64_t>(ownHeight) * width);
    const int newWidth = byWidth ? width : proportion(ownWidth, height, ownHeight);
    const int newHeight = byWidth ? proportion(ownHeight, width, ownWidth) : height;
    auto made = Surface::create(newWidth, newHeight, surface->isSoft() ? Surface::Kind::Soft : Surface::Kind::Color);
    if (made == nullptr)
    {
        return nullptr;
    }
    PixelReading reading;
    reading.soft = surface->isSoft();
    ScaledPicture scaled(*surface, {0, ownWidth, newWidth, false}, {0, ownHeight, newHeight, false}, reading,
                         made->bounds());
    for (int y = 0; y < newHeight; ++y)
    {
        const std::uint32_t *row = scaled.row(y);
        made->isSoft() ? std::transform(row, row + newWidth, made->row(y), softPixel)
                       : std::copy(row, row + newWidth, made->row(y));
    }
    return made;
}
} // namespace zb::internal
