#include "picture_bytes.h"

#include <iterator>

#include <vector>

namespace
{
using Bytes = std::vector<unsigned char>;

void addLittle(Bytes &bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
    {
        bytes.push_back(static_cast<unsigned char>(value >> static_cast<unsigned>(8 * i)));
    }
}

struct Header
{
    std::uint32_t size = 40;
    int width = 0;
    int height = 0;
    std::uint32_t planes = 1;
    std::uint32_t bits = 32;
    std::uint32_t compression = 0;
    std::uint32_t density = 3780;
};

/// Pixels are 0xAARRGGBB, in the order of the rows.
Bytes bitmap(const Header &header, const std::vector<std::uint32_t> &pixels)
{
    Bytes bytes;
    addLittle(bytes, header.size, 4);
    addLittle(bytes, static_cast<std::uint32_t>(header.width), 4);
    addLittle(bytes, static_cast<std::uint32_t>(header.height), 4);
    addLittle(bytes, header.planes, 2);
    addLittle(bytes, header.bits, 2);
    addLittle(bytes, header.compression, 4);
    addLittle(bytes, 0, 4);
    addLittle(bytes, header.density, 4);
    addLittle(bytes, header.density, 4);
    addLittle(bytes, 0, 4);
    addLittle(bytes, 0, 4);
    for (const std::uint32_t pixel : pixels)
    {
        addLittle(bytes, pixel, 4);
    }
    return bytes;
}

const Bytes *bitmapOf(UINT id, int dotsPerInch)
{
    // 100: red, let through (top row), half blue, white; in two densities. 101: a strip of three, opaque.
    static const Bytes small = bitmap({40, 2, 2}, {0x800000FF, 0xFFFFFFFF, 0xFFFF0000, 0x0000FF00});
    static const Bytes large = bitmap({40, 1, 1, 1, 32, 0, 7559}, {0xFF123456});
    static const Bytes strip =
        bitmap({40, 6, 2}, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004, 0xFF000005, 0xFF000006, 0xFF00FF00,
                            0xFF000008, 0xFF000009, 0xFF00000A, 0xFF00FF00, 0xFF00000C});
    static const Bytes topFirst = bitmap({40, 1, -2}, {0xFF000001, 0xFF000002});
    // From 110 on: torn, another depth, packed, other planes, no width, no height, too wide, too high, the greatest
    // sizes, another header, and one that ends in its header.
    static const Bytes bad[] = {
        bitmap({40, 2, 2}, {1, 2, 3}),
        bitmap({40, 1, 1, 1, 24}, {1}),
        bitmap({40, 1, 1, 1, 32, 3}, {1}),
        bitmap({40, 1, 1, 2}, {1}),
        bitmap({40, 0, 1}, {1}),
        bitmap({40, 1, 0}, {1}),
        bitmap({40, 32768, 1}, std::vector<std::uint32_t>(32768, 1)),
        bitmap({40, 1, 32768}, std::vector<std::uint32_t>(32768, 1)),
        bitmap({40, 0x7FFFFFFF, -0x7FFFFFFF - 1}, {1}),
        bitmap({124, 1, 1}, {1}),
        Bytes(small.begin(), small.begin() + 39),
    };
    switch (id)
    {
    case 100:
        return dotsPerInch <= 96 ? &small : &large;
    case 101:
        return &strip;
    case 102:
        return &topFirst;
    default:
        return id >= 110 && id < 110 + std::size(bad) ? &bad[id - 110] : nullptr;
    }
}
} // namespace

const void *zb::test::pictureBytes(UINT type, UINT id, int dotsPerInch, std::size_t *size)
{
    static const Bytes menu = {'m', 'e', 'n', 'u'};
    const Bytes *found = type == 2 ? bitmapOf(id, dotsPerInch) : type == 4 && id == 7 ? &menu : nullptr;
    *size = found == nullptr ? 0 : found->size();
    return found == nullptr ? nullptr : found->data();
}
