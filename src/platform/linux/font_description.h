// What of a LOGFONTW decides how glyphs look: two descriptions with equal keys share one face.
//
// Underline and strike-out are no part of it; they are lines that drawing adds.
#pragma once

#include "platform/gdi.h"

#include <functional>
#include <string>

namespace zb::internal
{
enum class Smoothing : std::uint8_t
{
    None,   ///< hard edges
    Grey,   ///< by how much of a pixel is covered
    Stripes ///< by how much of each of a pixel's red, green and blue stripe is covered
};

struct FontKey
{
    std::string family; ///< UTF-8, ASCII letters in lower case; empty: whichever is the default
    int height = 11;    ///< pixels, 1 to 2,048
    bool cell = true;   ///< the height is that of the cell, otherwise that of the characters
    int weight = 400;   ///< 400 for all that is not bold, otherwise 700 to 1,000
    bool italic = false;
    Smoothing smoothing = Smoothing::Grey;

    bool operator==(const FontKey &) const = default;
    bool isBold() const
    {
        return weight > 400;
    }
};

FontKey keyOf(const LOGFONTW &description);
} // namespace zb::internal

template <>
struct std::hash<zb::internal::FontKey>
{
    std::size_t operator()(const zb::internal::FontKey &key) const noexcept;
};
