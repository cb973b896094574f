// Pictures of glyphs: as rendered, and as kept.
#pragma once

#include <cstdint>
#include <vector>

namespace zb::internal
{
/// Where a picture lies: `left` from the pen, `top` rows above the baseline (the top row's upper edge).
struct GlyphBox
{
    int left = 0;
    int top = 0;
    int width = 0;  ///< pixels
    int height = 0; ///< rows
};

/// A picture just rendered.
struct GlyphPicture
{
    GlyphBox box;
    /// Row by row without gaps: how much of a pixel is covered, 0 to 255; with stripes three of them for each pixel.
    std::vector<std::uint8_t> coverage;
};

/// A kept picture; the coverage belongs to the cache that gave it.
struct GlyphBitmap
{
    GlyphBox box;
    int pitch = 0; ///< bytes from one row to the next: a multiple of 4, what is behind the row's pixels 0
    const std::uint8_t *coverage = nullptr;
};
} // namespace zb::internal
