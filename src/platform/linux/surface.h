// Pixels to draw on: those of the screen or of a bitmap.
//
// A pixel is 0xXXRRGGBB. Whatever draws writes 0xFF in the top byte; only on a soft surface does that byte say anything
// (the pixel's opacity; the colour is not multiplied by it), on others it is not looked at. A monochrome surface holds
// black and white alone: whatever draws passes its colours through fit() first.
//
// Threads: one at a time.
#pragma once

#include "platform/linux/region.h"

#include <cstdint>
#include <memory>
#include <pixman.h>

namespace zb::internal
{
inline constexpr std::uint32_t opaqueBits = 0xFF000000U;
inline constexpr std::uint32_t colorBits = 0x00FFFFFFU;
inline constexpr std::uint32_t whitePixel = 0xFFFFFFFFU;
inline constexpr std::uint32_t blackPixel = opaqueBits;
inline constexpr int longestSide = 32767;

/// Red and blue change places.
constexpr std::uint32_t pixelOfColor(COLORREF color)
{
    return opaqueBits | (color & 0xFFU) << 16U | (color & 0xFF00U) | (color >> 16U & 0xFFU);
}
constexpr COLORREF colorOfPixel(std::uint32_t pixel)
{
    return (pixel & 0xFFU) << 16U | (pixel & 0xFF00U) | (pixel >> 16U & 0xFFU);
}
/// Black or white, whichever is nearer.
constexpr std::uint32_t nearestOfTwo(std::uint32_t pixel)
{
    const std::uint32_t sum = (pixel & 0xFFU) + (pixel >> 8U & 0xFFU) + (pixel >> 16U & 0xFFU);
    return sum * 2 > 3 * 255 ? whitePixel : blackPixel;
}

class Surface
{
  public:
    enum class Kind
    {
        Color,
        Soft,
        Monochrome
    };

    /// Black. Null with last error 87 for a side below 1 or above 32,767, 8 above 256 MiB or without memory.
    static std::shared_ptr<Surface> create(int width, int height, Kind kind);
    ~Surface();
    Surface(const Surface &) = delete;
    Surface &operator=(const Surface &) = delete;

    int width() const
    {
        return m_width;
    }
    int height() const
    {
        return m_height;
    }
    Box bounds() const
    {
        return {0, 0, m_width, m_height};
    }
    bool isSoft() const
    {
        return m_kind == Kind::Soft;
    }
    bool isMonochrome() const
    {
        return m_kind == Kind::Monochrome;
    }
    /// Pixels from one row to the next.
    int stride() const
    {
        return m_stride;
    }
    std::uint32_t *row(int y)
    {
        return m_pixels + static_cast<std::ptrdiff_t>(y) * m_stride;
    }
    const std::uint32_t *row(int y) const
    {
        return m_pixels + static_cast<std::ptrdiff_t>(y) * m_stride;
    }
    /// The pixel as this surface can hold it.
    std::uint32_t fit(std::uint32_t pixel) const
    {
        return isMonochrome() ? nearestOfTwo(pixel) : pixel | opaqueBits;
    }
    /// For compositing: x8r8g8b8, or a8r8g8b8 when soft. Whoever gives it a clip, transformation or filter takes that
    /// away again.
    pixman_image_t *image() const
    {
        return m_image;
    }

  private:
    Surface(pixman_image_t *image, int width, int height, Kind kind);

    pixman_image_t *m_image;
    std::uint32_t *m_pixels;
    int m_width;
    int m_height;
    int m_stride;
    Kind m_kind;
};
} // namespace zb::internal
