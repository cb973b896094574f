// The first picture of a GIF file. Read here and by no library: decoders in use walk through all pictures of an
// animation, and stumble over damaged ones.
#pragma once

#include "platform/linux/surface.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace zb::internal
{
/// Where the first picture lies on its screen, and its parts in the file.
struct GifPicture
{
    std::int64_t screenWidth = 0;
    std::int64_t screenHeight = 0;
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool interlaced = false;
    int through = -1;                       ///< the index that lets through; -1: none
    std::size_t colors = 0;                 ///< how many the palette has
    const unsigned char *palette = nullptr; ///< red, green, blue each
    unsigned codeBits = 0;                  ///< of the first codes, without the two marks
    std::size_t codes = 0;                  ///< where the sub-blocks of codes begin in the file
};

/// Nothing for bytes that end before the picture does, or without a palette. Takes no memory.
std::optional<GifPicture> readGifPicture(const unsigned char *data, std::size_t size);
/// The picture on its screen, soft where it lets through or leaves the screen bare; null with last error 11 for codes
/// that are damaged or too few, 8 without memory. What lies outside the screen is cut off.
std::shared_ptr<Surface> decodeGif(const unsigned char *data, std::size_t size);
} // namespace zb::internal
