#include "platform/linux/glyph_painter.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
namespace
{
constexpr std::uint32_t redBlue = 0x00FF00FFU;
constexpr std::uint32_t green = 0x0000FF00U;
constexpr unsigned full = 255;
/// A pixel of two colours takes that of the text from here on.
constexpr unsigned half = 128;

/// 0 to 255 spread over 0 to 256, so that a shift divides.
constexpr std::uint32_t weightOf(std::uint32_t coverage)
{
    return coverage + (coverage >> 7U);
}

constexpr std::uint32_t mixed(std::uint32_t under, std::uint32_t over, std::uint32_t coverage)
{
    const std::uint32_t weight = weightOf(coverage);
    const std::uint32_t rest = 256 - weight;
    const std::uint32_t both = ((under & redBlue) * rest + (over & redBlue) * weight) >> 8U & redBlue;
    const std::uint32_t middle = ((under & green) * rest + (over & green) * weight) >> 8U & green;
    return opaqueBits | both | middle;
}

/// Sixteen bytes, and eight numbers of two bytes, on which the processor calculates at once.
using Bytes = std::uint8_t __attribute__((vector_size(16)));
using Words = std::uint16_t __attribute__((vector_size(16)));
using Pixels = std::uint32_t __attribute__((vector_size(16)));

/// The lower and the upper eight bytes as numbers. Written as interleaving, which every processor has an order for.
Words lowWords(Bytes bytes)
{
    return reinterpret_cast<Words>(
        __builtin_shufflevector(bytes, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

Words highWords(Bytes bytes)
{
    return reinterpret_cast<Words>(
        __builtin_shufflevector(bytes, Bytes{}, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31));
}

/// The colour twice.
Words twoPixels(std::uint32_t pixel)
{
    return lowWords(reinterpret_cast<Bytes>(Pixels{pixel, pixel, 0, 0}));
}

/// Each of four numbers four times, once for each byte of its pixel.
Bytes spread(std::uint32_t covered)
{
    const auto four = reinterpret_cast<Bytes>(Pixels{covered, 0, 0, 0});
    const auto pairs = reinterpret_cast<Words>(
        __builtin_shufflevector(four, four, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    return reinterpret_cast<Bytes>(__builtin_shufflevector(pairs, pairs, 0, 8, 1, 9, 2, 10, 3, 11));
}

Words mixedWords(Words under, Words over, Words coverage)
{
    const Words weight = coverage + (coverage >> 7);
    return (under * (256 - weight) + over * weight) >> 8;
}

/// mixed() for four pixels, by the same arithmetic. The bytes of `covered` are in memory order.
void mixFour(std::uint32_t *pixels, Words over, std::uint32_t covered)
{
    Bytes under;
    std::memcpy(&under, pixels, sizeof(under));
    const Bytes coverage = spread(covered);
    const auto low = reinterpret_cast<Bytes>(mixedWords(lowWords(under), over, lowWords(coverage)));
    const auto high = reinterpret_cast<Bytes>(mixedWords(highWords(under), over, highWords(coverage)));
    const auto packed = reinterpret_cast<Pixels>(
        __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30));
    const Pixels result = packed | opaqueBits;
    std::memcpy(pixels, &result, sizeof(result));
}

/// Each stripe by itself.
constexpr std::uint32_t mixedStripes(std::uint32_t under, std::uint32_t over, const std::uint8_t *coverage)
{
    std::uint32_t pixel = opaqueBits;
    for (unsigned stripe = 0; stripe < 3; ++stripe)
    {
        const unsigned shift = 16 - 8 * stripe;
        const std::uint32_t weight = weightOf(coverage[stripe]);
        const std::uint32_t one = ((under >> shift & full) * (256 - weight) + (over >> shift & full) * weight) >> 8U;
        pixel |= one << shift;
    }
    return pixel;
}

/// Over a pixel that is itself partly transparent: both share the result by what each is seen of.
std::uint32_t mixedSoft(std::uint32_t under, std::uint32_t over, std::uint32_t coverage)
{
    const std::uint32_t opacity = under >> 24U;
    const std::uint32_t seen = opacity * (full - coverage);
    const std::uint32_t total = coverage * full + seen;
    std::uint32_t pixel = ((total + full / 2) / full) << 24U;
    for (unsigned shift = 0; shift < 24; shift += 8)
    {
        const std::uint32_t sum = (over >> shift & full) * coverage * full + (under >> shift & full) * seen;
        pixel |= ((sum + total / 2) / total) << shift;
    }
    return pixel;
}

unsigned meanOf(const std::uint8_t *stripes)
{
    return (stripes[0] + stripes[1] + stripes[2]) / 3U;
}

constexpr LONGLONG farthest = 1 << 30;
} // namespace

Box safeBox(LONGLONG left, LONGLONG top, LONGLONG right, LONGLONG bottom)
{
    const auto side = [](LONGLONG value) { return static_cast<int>(std::clamp(value, -farthest, farthest)); };
    return {side(left), side(top), side(right), side(bottom)};
}

ClipBoxes::ClipBoxes(const Region &region, const Box &limit) : m_bounds(region.extents().intersected(limit))
{
    const auto boxes = region.boxes();
    if (m_bounds.isEmpty() || boxes.size() == 1)
    {
        return;
    }
    for (const pixman_box32_t &box : boxes)
    {
        const Box part = Box{box.x1, box.y1, box.x2, box.y2}.intersected(m_bounds);
        if (!part.isEmpty())
        {
            m_boxes.push_back(part);
        }
    }
    if (m_boxes.empty())
    {
        m_bounds = {};
    }
}

GlyphPainter::GlyphPainter(Surface &surface, const ClipBoxes &clip, Smoothing smoothing, std::uint32_t pixel)
    : m_surface(surface), m_clip(clip), m_stripes(smoothing == Smoothing::Stripes),
      m_plain(!m_stripes && !surface.isSoft() && !surface.isMonochrome()), m_pixel(pixel)
{
}

void GlyphPainter::fill(const Box &box) const
{
    m_clip.forEach(box,
                   [&](const Box &part)
                   {
                       for (int y = part.top; y < part.bottom && part.left < part.right; ++y)
                       {
                           std::fill_n(m_surface.row(y) + part.left, part.width(), m_pixel);
                       }
                   });
}

void GlyphPainter::paintVisible(const GlyphBitmap &bitmap, int left, int top) const
{
    if (m_plain && m_clip.holds({left, top, left + bitmap.pitch, top + bitmap.box.height}))
    {
        paintWhole(bitmap, left, top);
        return;
    }
    m_clip.forEach({left, top, left + bitmap.box.width, top + bitmap.box.height},
                   [&](const Box &part) { paintPart(bitmap, left, top, part); });
}

/// The whole picture, its padding included, four pixels at a time: the pixels below the padding are written as they
/// were.
void GlyphPainter::paintWhole(const GlyphBitmap &bitmap, int left, int top) const
{
    const Words over = twoPixels(m_pixel);
    const int pitch = bitmap.pitch;
    const int stride = m_surface.stride();
    const std::uint8_t *coverage = bitmap.coverage;
    std::uint32_t *to = m_surface.row(top) + left;
    for (int row = bitmap.box.height; row > 0; --row, to += stride, coverage += pitch)
    {
        for (int x = 0; x < pitch; x += 4)
        {
            std::uint32_t covered = 0;
            std::memcpy(&covered, coverage + x, sizeof(covered));
            if (covered != 0)
            {
                mixFour(to + x, over, covered);
            }
        }
    }
}

void GlyphPainter::paintPart(const GlyphBitmap &bitmap, int left, int top, const Box &part) const
{
    const int perPixel = m_stripes ? 3 : 1;
    const int pitch = bitmap.pitch;
    const std::uint8_t *coverage = bitmap.coverage + static_cast<std::ptrdiff_t>(part.top - top) * pitch +
                                   static_cast<std::ptrdiff_t>(part.left - left) * perPixel;
    std::uint32_t *to = m_surface.row(part.top) + part.left;
    // `blend` gets a pixel and the coverage of it; each kind of surface has a loop of its own.
    const auto rows = [&](auto blend)
    {
        for (int y = part.top; y < part.bottom; ++y, to += m_surface.stride(), coverage += pitch)
        {
            const std::uint8_t *from = coverage;
            for (int x = 0; x < part.width(); ++x, from += perPixel)
            {
                blend(to[x], from);
            }
        }
    };
    const std::uint32_t color = m_pixel;
    const auto mean = [stripes = m_stripes](const std::uint8_t *from) { return stripes ? meanOf(from) : *from; };
    if (m_surface.isMonochrome())
    {
        rows([&](std::uint32_t &pixel, const std::uint8_t *from) { pixel = mean(from) >= half ? color : pixel; });
    }
    else if (m_surface.isSoft())
    {
        rows([&](std::uint32_t &pixel, const std::uint8_t *from)
             { pixel = mean(from) == 0 ? pixel : mixedSoft(pixel, color, mean(from)); });
    }
    else if (m_stripes)
    {
        rows([color](std::uint32_t &pixel, const std::uint8_t *from)
             { pixel = (from[0] | from[1] | from[2]) == 0 ? pixel : mixedStripes(pixel, color, from); });
    }
    else
    {
        for (int y = part.top; y < part.bottom; ++y, to += m_surface.stride(), coverage += pitch)
        {
            for (int x = 0; x < part.width(); ++x)
            {
                const unsigned covered = coverage[x];
                if (covered != 0)
                {
                    to[x] = covered == full ? color : mixed(to[x], color, covered);
                }
            }
        }
    }
}
} // namespace zb::internal
