#include "platform/linux/picture_header.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zb::internal
{
namespace
{
/// Reads forward inside its bytes; once it was asked for more than there is, it gives zeros and isGood() is false.
class Reader
{
  public:
    Reader(const unsigned char *data, std::size_t size) : m_data(data), m_size(size)
    {
    }
    bool isGood() const
    {
        return m_good;
    }
    std::size_t left() const
    {
        return m_size - m_at;
    }
    void skip(std::size_t count)
    {
        m_good = m_good && count <= left();
        m_at = m_good ? m_at + count : m_size;
    }
    std::uint32_t byte()
    {
        if (left() == 0)
        {
            m_good = false;
            return 0;
        }
        return m_data[m_at++];
    }
    std::uint32_t little(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
        {
            value |= byte() << static_cast<unsigned>(8 * i);
        }
        return value;
    }
    std::uint32_t big(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
        {
            value = value << 8U | byte();
        }
        return value;
    }
    /// What comes next; null when so much is not left.
    const unsigned char *peek(std::size_t count) const
    {
        return m_good && count <= left() ? m_data + m_at : nullptr;
    }
    /// Moves to behind the next byte of this value; not good when there is none.
    void skipBehind(unsigned char value)
    {
        const void *found = left() == 0 ? nullptr : std::memchr(m_data + m_at, value, left());
        if (found == nullptr)
        {
            m_good = false;
            m_at = m_size;
            return;
        }
        m_at = static_cast<std::size_t>(static_cast<const unsigned char *>(found) - m_data) + 1;
    }

  private:
    const unsigned char *m_data;
    std::size_t m_size;
    std::size_t m_at = 0;
    bool m_good = true;
};

bool startsWith(const unsigned char *data, std::size_t size, const void *mark, std::size_t length)
{
    return size >= length && std::memcmp(data, mark, length) == 0;
}

/// File header: 2 mark, 4 size, 4 unused, 4 offset of the pixels. Then 4 header size (12: sides of 2 bytes; else of 4),
/// width, height (below 0 when the top row comes first).
std::optional<PictureHeader> readBmp(Reader reader)
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

/// Sub-blocks: a length byte and so many bytes, up to a length of 0.
void skipSubBlocks(Reader &reader)
{
    while (reader.isGood())
    {
        const std::uint32_t length = reader.byte();
        if (length == 0)
        {
            return;
        }
        reader.skip(length);
    }
}

/// A colour table of 2 to 256 entries of 3 bytes, when the flags tell of one.
void skipColors(Reader &reader, std::uint32_t flags)
{
    if ((flags & 0x80U) != 0)
    {
        reader.skip(std::size_t{3} << ((flags & 7U) + 1));
    }
}

/// Screen: 6 mark, 2 width, 2 height, 1 flags, 2 more; colour table; then blocks up to the first picture (0x2C: 2 left,
/// 2 top, 2 width, 2 height, 1 flags, colour table, 1 code size, sub-blocks). Extensions are 0x21, 1 kind, sub-blocks.
std::optional<PictureHeader> readGif(Reader reader)
{
    reader.skip(6);
    PictureHeader header{PictureKind::Gif, reader.little(2), reader.little(2)};
    const std::uint32_t flags = reader.byte();
    reader.skip(2);
    skipColors(reader, flags);
    std::uint32_t block = reader.byte();
    for (; reader.isGood() && block == 0x21; block = reader.byte())
    {
        reader.skip(1);
        skipSubBlocks(reader);
    }
    if (block != 0x2C)
    {
        return std::nullopt;
    }
    reader.skip(4);
    // The picture may be larger than the screen that it is for.
    header.width = std::max<std::int64_t>(header.width, reader.little(2));
    header.height = std::max<std::int64_t>(header.height, reader.little(2));
    skipColors(reader, reader.byte());
    reader.skip(1);
    skipSubBlocks(reader);
    return reader.isGood() ? std::optional(header) : std::nullopt;
}

bool isFrameHeader(std::uint32_t marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// The next marker of a JPEG file: bytes of 0xFF, then one that is neither that nor 0 nor a restart.
std::uint32_t nextMarker(Reader &reader)
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
std::optional<PictureHeader> readJpeg(Reader reader)
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
std::optional<std::uint32_t> wholeChunk(Reader reader)
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
std::optional<PictureHeader> readPng(Reader reader)
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
    const Reader reader(data, size);
    if (startsWith(data, size, "BM", 2))
    {
        return readBmp(reader);
    }
    if (startsWith(data, size, "GIF87a", 6) || startsWith(data, size, "GIF89a", 6))
    {
        return readGif(reader);
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
