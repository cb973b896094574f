#include "support/PictureFiles.h"

#include <algorithm>
#include <utility>

namespace zb::test
{
namespace
{
void add(Bytes &bytes, const Bytes &more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void addText(Bytes &bytes, const std::string &text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void addLittle(Bytes &bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
    {
        bytes.push_back(static_cast<unsigned char>(value >> static_cast<unsigned>(8 * i)));
    }
}

void addBig(Bytes &bytes, std::uint32_t value, int count)
{
    for (int i = count - 1; i >= 0; --i)
    {
        bytes.push_back(static_cast<unsigned char>(value >> static_cast<unsigned>(8 * i)));
    }
}

void addColor(Bytes &bytes, std::uint32_t color)
{
    addBig(bytes, color & 0xFFFFFFU, 3);
}

std::uint32_t sumOf(const Bytes &bytes)
{
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const unsigned char byte : bytes)
    {
        sum ^= byte;
        for (int i = 0; i < 8; ++i)
        {
            sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xEDB88320U : sum >> 1U;
        }
    }
    return ~sum;
}

void addChunk(Bytes &file, const std::string &name, const Bytes &data)
{
    Bytes named(name.begin(), name.end());
    add(named, data);
    addBig(file, static_cast<std::uint32_t>(data.size()), 4);
    add(file, named);
    addBig(file, sumOf(named), 4);
}

/// Stored blocks of at most 65,535 bytes, without compression.
Bytes deflated(const Bytes &data)
{
    Bytes result{0x78, 0x01};
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const unsigned char byte : data)
    {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    for (std::size_t at = 0; at < data.size(); at += 65535)
    {
        const std::size_t count = std::min<std::size_t>(65535, data.size() - at);
        result.push_back(at + count == data.size() ? 1 : 0);
        addLittle(result, static_cast<std::uint32_t>(count), 2);
        addLittle(result, ~static_cast<std::uint32_t>(count), 2);
        result.insert(result.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
                      data.begin() + static_cast<std::ptrdiff_t>(at + count));
    }
    addBig(result, b << 16U | a, 4);
    return result;
}

Bytes pngHead(std::uint32_t width, std::uint32_t height, unsigned char kind)
{
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes head;
    addBig(head, width, 4);
    addBig(head, height, 4);
    add(head, {8, kind, 0, 0, 0});
    addChunk(file, "IHDR", head);
    return file;
}

void addCode(Bytes &bytes, unsigned &bits, unsigned code)
{
    for (unsigned i = 0; i < 3; ++i, ++bits)
    {
        if (bits % 8 == 0)
        {
            bytes.push_back(0);
        }
        bytes.back() = static_cast<unsigned char>(bytes.back() | ((code >> i & 1U) << bits % 8));
    }
}

/// Codes of 3 bits; the table is cleared after every second pixel, before codes would grow longer.
Bytes gifCodes(const std::vector<unsigned char> &pixels)
{
    constexpr unsigned clear = 4;
    constexpr unsigned end = 5;
    Bytes codes;
    unsigned bits = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
    {
        if (i % 2 == 0)
        {
            addCode(codes, bits, clear);
        }
        addCode(codes, bits, pixels[i]);
    }
    addCode(codes, bits, end);
    return codes;
}
} // namespace

Bytes bmpFile(int width, int height, const std::vector<std::uint32_t> &pixels, bool topFirst)
{
    const std::size_t row = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    Bytes file;
    addText(file, "BM");
    addLittle(file, static_cast<std::uint32_t>(54 + row * static_cast<std::size_t>(height)), 4);
    addLittle(file, 0, 4);
    addLittle(file, 54, 4);
    addLittle(file, 40, 4);
    addLittle(file, static_cast<std::uint32_t>(width), 4);
    addLittle(file, static_cast<std::uint32_t>(topFirst ? -height : height), 4);
    addLittle(file, 1, 2);
    addLittle(file, 24, 2);
    for (int i = 0; i < 6; ++i)
    {
        addLittle(file, 0, 4);
    }
    for (int y = 0; y < height; ++y)
    {
        const int line = topFirst ? y : height - 1 - y;
        const std::size_t begin = file.size();
        for (int x = 0; x < width; ++x)
        {
            addLittle(file, pixels.at(static_cast<std::size_t>(line * width + x)), 3);
        }
        file.resize(begin + row);
    }
    return file;
}

Bytes pngFile(int width, int height, const std::vector<std::uint32_t> &pixels, bool opacity)
{
    Bytes file = pngHead(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), opacity ? 6 : 2);
    Bytes rows;
    for (int i = 0; i < width * height; ++i)
    {
        if (i % width == 0)
        {
            rows.push_back(0);
        }
        const std::uint32_t pixel = pixels.at(static_cast<std::size_t>(i));
        addColor(rows, pixel);
        if (opacity)
        {
            rows.push_back(static_cast<unsigned char>(pixel >> 24U));
        }
    }
    addChunk(file, "IDAT", deflated(rows));
    addChunk(file, "IEND", {});
    return file;
}

Bytes pngHeader(std::uint32_t width, std::uint32_t height)
{
    Bytes file = pngHead(width, height, 2);
    addChunk(file, "IDAT", deflated({0}));
    addChunk(file, "IEND", {});
    return file;
}

Bytes pngPaletteFile(int width, int height, const std::vector<unsigned char> &pixels,
                     const std::vector<std::uint32_t> &palette, const std::vector<unsigned char> &opacities)
{
    Bytes file = pngHead(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), 3);
    Bytes colors;
    for (const std::uint32_t color : palette)
    {
        addColor(colors, color);
    }
    addChunk(file, "PLTE", colors);
    addChunk(file, "tRNS", opacities);
    Bytes rows;
    for (int i = 0; i < width * height; ++i)
    {
        if (i % width == 0)
        {
            rows.push_back(0);
        }
        rows.push_back(pixels.at(static_cast<std::size_t>(i)));
    }
    addChunk(file, "IDAT", deflated(rows));
    addChunk(file, "IEND", {});
    return file;
}

Bytes gifFile(int width, int height, const std::vector<std::uint32_t> &palette, const std::vector<GifPicture> &pictures)
{
    Bytes file;
    addText(file, "GIF89a");
    addLittle(file, static_cast<std::uint32_t>(width), 2);
    addLittle(file, static_cast<std::uint32_t>(height), 2);
    add(file, {0x91, 0, 0});
    for (std::size_t i = 0; i < 4; ++i)
    {
        addColor(file, palette.at(i));
    }
    for (const GifPicture &picture : pictures)
    {
        const bool through = picture.through >= 0;
        add(file, {0x21, 0xF9, 4, static_cast<unsigned char>(through ? 1 : 0), 10, 0,
                   static_cast<unsigned char>(through ? picture.through : 0), 0});
        add(file, {0x2C, 0, 0, 0, 0});
        addLittle(file, static_cast<std::uint32_t>(picture.width), 2);
        addLittle(file, static_cast<std::uint32_t>(picture.height), 2);
        add(file, {0, 2});
        const Bytes codes = gifCodes(picture.pixels);
        for (std::size_t at = 0; at < codes.size(); at += 255)
        {
            const std::size_t count = std::min<std::size_t>(255, codes.size() - at);
            file.push_back(static_cast<unsigned char>(count));
            file.insert(file.end(), codes.begin() + static_cast<std::ptrdiff_t>(at),
                        codes.begin() + static_cast<std::ptrdiff_t>(at + count));
        }
        file.push_back(0);
    }
    file.push_back(0x3B);
    return file;
}

Bytes greyJpegFile()
{
    Bytes file{0xFF, 0xD8};
    // Steps of 8 throughout, so a mean of 64 steps above the middle of 128 is 192.
    add(file, {0xFF, 0xDB, 0, 67, 0});
    file.insert(file.end(), 64, 8);
    add(file, {0xFF, 0xC0, 0, 11, 8, 0, 8, 0, 8, 1, 1, 0x11, 0});
    // Means: the one code 0 stands for a number of 7 bits. The rest: the one code 0 stands for the end.
    for (const auto &[table, symbol] : {std::pair{0x00, 7}, std::pair{0x10, 0}})
    {
        add(file, {0xFF, 0xC4, 0, 20, static_cast<unsigned char>(table), 1});
        file.insert(file.end(), 15, 0);
        file.push_back(static_cast<unsigned char>(symbol));
    }
    add(file, {0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0});
    // 0, then 64 in 7 bits, then 0, filled up with ones.
    add(file, {0x40, 0x7F, 0xFF, 0xD9});
    return file;
}
} // namespace zb::test
