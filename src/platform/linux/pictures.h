// Picture files as surfaces, and surfaces as PNG.
#pragma once

#include "platform/image.h"
#include "platform/linux/surface.h"

#include <memory>
#include <vector>

namespace zb::internal
{
/// The colour of pixels that let through.
inline constexpr std::uint32_t keyPixel = 0x0000FF00U;

/// Pixels with opacity as a soft surface keeps them: none of it has the key colour, and nothing else has.
constexpr std::uint32_t softPixel(std::uint32_t pixel)
{
    if (pixel >> 24U == 0)
    {
        return keyPixel;
    }
    return (pixel & colorBits) == keyPixel ? pixel - 0x100U : pixel;
}

/// Null with last error 11 for bytes that are no whole picture within the limits, 8 without memory.
std::shared_ptr<Surface> decodeSurface(const unsigned char *data, std::size_t size, const PictureLimits &limits);
/// Made smaller, its shape kept, where it is above a limit (0: none).
std::shared_ptr<Surface> fitSurface(std::shared_ptr<Surface> surface, int width, int height);
/// The bytes of a PNG file; empty on failure.
std::vector<unsigned char> encodePng(const Surface &surface);
} // namespace zb::internal
