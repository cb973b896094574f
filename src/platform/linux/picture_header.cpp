#include "platform/linux/picture_header.h"

#include "platform/linux/picture_gif.h"
#include "platform/linux/picture_reader.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zb::internal
{
namespace
{
bool startsWith(const unsigned char *data, std::size_t size, const void *mark, std::size_t length)
{
    return size >= length && std::memcmp(data, mark, length) == 0;
}

/// File header: 2 mark, 4 size, 4 unused, 4 offset of the pixels. Then 4 header size (12: sides of 2 bytes; else of 4),
/// width, height (below 0 when the top row comes first).
std::optional<PictureHeader> readBmp(ByteReader reader)
{
    reader.skip(14);
    const std::uint32_t headerSize = reader.little(4);
    std::int64_t width = 0;
    std::int64_t height = 0;
    if (headerSize == 12)
    {
        width = reader.little(2);
        height = reader.little(2);
    }
    else
    {
        width = static_cast<std::int32_t>(reader.little(4));
        height = static_cast<std::int32_t>(reader.little(4));
        height = height < 0 ? -height : height;
    }
    return reader.isGood() ? std::optional(PictureHeader{PictureKind::Bmp, width, height}) : std::nullopt;
}

/// The picture may be larger than the screen that it is for.
std::optional<PictureHeader> readGif(const unsigned char *data, std::size_t size)
{
    const auto picture = readGifPicture(data, size);
    if (!picture.has_value())
    {
        return std::nullopt;
    }
    return PictureHeader{PictureKind::Gif, std::max(picture->screenWidth, picture->width),
                         std::max(picture->screenHeight, picture->height)};
}

bool isFrameHeader(std::uint32_t marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// The next marker of a JPEG file: bytes of 0xFF, then one that is neither that nor 0 nor a restart.
std::uint32_t nextMarker(ByteReader &reader)
{
    while (reader.isGood())
    {
        reader.skipBehind(0xFF);
        std::uint32_t marker = reader.byte();
        while (reader.isGood() && marker == 0xFF)
        {
            marker = reader.byte();
        }
        if (marker != 0 && (marker < 0xD0 || marker > 0xD7))
        {
            return marker;
        }
    }
    return 0;
}

/// Segments: marker, 2 length (big-endian, itself included). The frame header holds 1 depth, 2 height, 2 width. The
/// picture is whole when an end marker comes behind a scan.
std::optional<PictureHeader> readJpeg(ByteReader reader)
{
    std::optional<PictureHeader> header;
    bool scanned = false;
    reader.skip(2);
    for (std::uint32_t marker = nextMarker(reader); reader.isGood(); marker = nextMarker(reader))
    {
        if (marker == 0xD9)
        {
            return scanned ? header : std::nullopt;
        }
        if (marker == 0x01 || marker == 0xD8)
        {
            continue;
        }
        const std::uint32_t length = reader.big(2);
        if (length < 2 || (isFrameHeader(marker) && length < 7))
        {
            return std::nullopt;
        }
        std::size_t rest = length - 2;
        if (isFrameHeader(marker))
        {
            reader.skip(1);
            const std::uint32_t height = reader.big(2);
            const std::uint32_t width = reader.big(2);
            rest -= 5;
            header = header.has_value() ? std::nullopt : std::optional(PictureHeader{PictureKind::Jpeg, width, height});
            if (!header.has_value())
            {
                return std::nullopt;
            }
        }
        scanned = scanned || marker == 0xDA;
        reader.skip(rest);
    }
    return std::nullopt;
}

constexpr std::array<std::uint32_t, 256> sumTable()
{
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i)
    {
        std::uint32_t sum = i;
        for (int bit = 0; bit < 8; ++bit)
        {
            sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xEDB88320U : sum >> 1U;
        }
        table[i] = sum;
    }
    return table;
}

/// The check sum of a chunk's name and data.
std::uint32_t chunkSum(const unsigned char *data, std::size_t size)
{
    static constexpr auto table = sumTable();
    std::uint32_t sum = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < size; ++i)
    {
        sum = table[(sum ^ data[i]) & 0xFFU] ^ sum >> 8U;
    }
    return ~sum;
}

/// Size of the chunk that comes next, when all of it is there and its sum is right. The decoder would find a wrong one
/// too, but write about it to standard error.
std::optional<std::uint32_t> wholeChunk(ByteReader reader)
{
    const std::uint32_t size = reader.big(4);
    const unsigned char *named = size > 0x7FFFFFFFU ? nullptr : reader.peek(std::size_t{size} + 8);
    if (named == nullptr)
    {
        return std::nullopt;
    }
    reader.skip(std::size_t{size} + 4);
    return reader.big(4) == chunkSum(named, std::size_t{size} + 4) ? std::optional(size) : std::nullopt;
}

/// 8 mark, then chunks of 4 length, 4 name, data, 4 sum, all big-endian; the first is IHDR with 4 width, 4 height, the
/// last is IEND.
std::optional<PictureHeader> readPng(ByteReader reader)
{
    constexpr std::uint32_t first = 0x49484452;
    constexpr std::uint32_t last = 0x49454E44;
    reader.skip(8);
    std::optional<PictureHeader> header;
    for (auto size = wholeChunk(reader); size.has_value(); size = wholeChunk(reader))
    {
        reader.skip(4);
        const std::uint32_t name = reader.big(4);
        if (!header.has_value())
        {
            if (name != first || *size != 13)
            {
                return std::nullopt;
            }
            header = PictureHeader{PictureKind::Png, reader.big(4), reader.big(4)};
            *size -= 8;
        }
        reader.skip(*size + 4);
        if (name == last)
        {
            return header;
        }
    }
    return std::nullopt;
}

std::optional<PictureHeader> readAny(const unsigned char *data, std::size_t size)
{
    const ByteReader reader(data, size);
    if (startsWith(data, size, "BM", 2))
    {
        return readBmp(reader);
    }
    if (startsWith(data, size, "GIF87a", 6) || startsWith(data, size, "GIF89a", 6))
    {
        return readGif(data, size);
    }
    if (startsWith(data, size, "\xFF\xD8\xFF", 3))
    {
        return readJpeg(reader);
    }
    if (startsWith(data, size, "\x89PNG\r\n\x1A\n", 8))
    {
        return readPng(reader);
    }
    return std::nullopt;
}
} // namespace

std::optional<PictureHeader> readPictureHeader(const unsigned char *data, std::size_t size)
{
    const auto header = data == nullptr ? std::nullopt : readAny(data, size);
    return header.has_value() && header->width > 0 && header->height > 0 ? header : std::nullopt;
}
} // namespace zb::internal
