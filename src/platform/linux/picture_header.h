// What a picture file says of itself before its pixels are read: kind, size, and whether all of it is there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zb::internal
{
enum class PictureKind
{
    Bmp,
    Gif,
    Jpeg,
    Png
};

struct PictureHeader
{
    PictureKind kind = PictureKind::Bmp;
    /// Pixels, at least 1: the largest that decoding will take memory for.
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// Nothing for bytes that are no picture of these kinds, or that end before the (first) picture does. Looks at each
/// byte at most once and takes no memory.
std::optional<PictureHeader> readPictureHeader(const unsigned char *data, std::size_t size);
} // namespace zb::internal
