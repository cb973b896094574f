// Picture files: BMP, GIF, JPEG and PNG into bitmaps, and bitmaps into PNG.
//
// A file is taken by what it holds, not by its name. One that is damaged, of another kind, larger than 64 MiB or more
// than 8,192 pixels wide or high gives null with last error 11 (and that of CreateFileW when it can't be opened: 2 when
// there is no such file, 3 no such folder); no memory is taken for its pixels before its size is known. One that ends
// early is damaged, even where its beginning could be shown. Of an animation the first picture counts. Pixels that let
// through become the key colour 0x00FF00, which TransparentImage leaves out; soft edges stay soft as told there. In a
// picture with such pixels no other has the key colour: those that had it are a shade darker, 0x00FE00.
//
// Threads: any.
#pragma once

#include "platform/gdi.h"

#include <cstdint>
#include <filesystem>
#include <vector>

/// Reads a picture file by its device path; the caller owns the bitmap.
ZBPLATFORM_API HBITMAP SHLoadDIBitmap(const WCHAR *path);

namespace zb
{
struct PictureLimits
{
    int width = 8192;
    int height = 8192;
    std::uint64_t bytes = 64ULL << 20U;
};

/// As SHLoadDIBitmap, under limits of the caller's; a picture above `fitWidth` or `fitHeight` (0: no such limit) is
/// made smaller, its shape kept.
ZBPLATFORM_API HBITMAP loadPicture(const WCHAR *path, const PictureLimits &limits, int fitWidth, int fitHeight);
/// The same from memory.
ZBPLATFORM_API HBITMAP decodePicture(const void *data, std::size_t size, const PictureLimits &limits, int fitWidth,
                                     int fitHeight);
/// Writes the bitmap as PNG to a file of the host system, whole or not at all, over one that is there; false with last
/// error set (3 without the folder, 5, 112). Softness is written as the file's opacity.
ZBPLATFORM_API bool writePng(HBITMAP bitmap, const std::filesystem::path &file);
/// The bitmap's pixels, row by row from the top, each 0x00RRGGBB (for tests and for what shows the screen). Empty for
/// a handle that is no bitmap.
ZBPLATFORM_API std::vector<std::uint32_t> pixelsOf(HBITMAP bitmap);
} // namespace zb
