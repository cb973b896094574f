// Picture files made byte by byte, without the decoders that are tested with them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zb::test
{
using Bytes = std::vector<unsigned char>;

/// 24 bits a pixel, 0x00RRGGBB; rows from the bottom up, or from the top with topFirst.
Bytes bmpFile(int width, int height, const std::vector<std::uint32_t> &pixels, bool topFirst = false);
/// 8 bits each of red, green, blue and, with opacity, of that: 0xAARRGGBB.
Bytes pngFile(int width, int height, const std::vector<std::uint32_t> &pixels, bool opacity);
/// A PNG file without pixels, for sizes that it may claim.
Bytes pngHeader(std::uint32_t width, std::uint32_t height);
/// PNG with a palette (0x00RRGGBB) and the opacity of its first colours; one byte of pixels each.
Bytes pngPaletteFile(int width, int height, const std::vector<unsigned char> &pixels,
                     const std::vector<std::uint32_t> &palette, const std::vector<unsigned char> &opacities);
/// One picture of an animation: indices 0 to 3 into the palette; `through` is an index that lets through, or -1.
struct GifPicture
{
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
    int through = -1;
};
/// A palette of four colours, 0x00RRGGBB.
Bytes gifFile(int width, int height, const std::vector<std::uint32_t> &palette,
              const std::vector<GifPicture> &pictures);
/// A grey picture of 8 by 8 pixels, all 0xC0C0C0.
Bytes greyJpegFile();
} // namespace zb::test
