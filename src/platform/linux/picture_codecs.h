// The library that decodes and writes picture files, loaded when the first picture is: what it stands on would double
// the start of programs that never show one.
//
// libZBPictures exports the three calls below with C linkage under the names given. Threads: one at a time
// (pictureCodecs() gives the lock).
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

namespace zb::internal
{
/// Rows of pixels from the top, each 0xAARRGGBB, the colours not multiplied by the opacity.
struct CodecPicture
{
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0; ///< bytes
    const void *pixels = nullptr;
    void *owner = nullptr; ///< to be released
};

/// "zbDecodePicture": of a whole file of that kind ("BMP", "JPG", "PNG"); false when it can't be decoded. A key colour
/// of the file's own has become opacity 0.
using DecodePicture = bool (*)(const char *kind, const void *data, std::size_t size, CodecPicture *picture);
/// "zbReleasePicture".
using ReleasePicture = void (*)(void *owner);
/// "zbEncodePng": hands the file's bytes to `take` in parts; with opacity only when `soft` is set.
using EncodePng = bool (*)(const CodecPicture *picture, bool soft,
                           void (*take)(void *user, const void *bytes, std::size_t size), void *user);

struct PictureCodecs
{
    DecodePicture decode;
    ReleasePicture release;
    EncodePng encode;
    std::mutex lock; ///< held over each call
};
/// Null with last error 126 when the library is not beside this one.
PictureCodecs *pictureCodecs();
} // namespace zb::internal
