// The pictures as compile_pictures writes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zb::resources
{
/// A drawing at one density; its bytes are laid out as platform/resources.h tells for a bitmap (little-endian words).
struct Picture
{
    std::uint32_t number;
    int dotsPerInch;
    const std::uint32_t *words;
    std::size_t size; ///< bytes
};

extern const Picture *const pictures; ///< by rising number, then rising density
extern const std::size_t pictureCount;
} // namespace zb::resources
