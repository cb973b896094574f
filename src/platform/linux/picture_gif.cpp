#include "platform/linux/picture_gif.h"

#include "platform/kernel.h"
#include "platform/linux/picture_reader.h"
#include "platform/linux/pictures.h"

#include <algorithm>
#include <vector>

namespace zb::internal
{
namespace
{
/// Sub-blocks: a length byte and so many bytes, up to a length of 0.
void skipSubBlocks(ByteReader &reader)
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
void readColors(ByteReader &reader, std::uint32_t flags, GifPicture &picture)
{
    if ((flags & 0x80U) != 0)
    {
        picture.colors = std::size_t{2} << (flags & 7U);
        picture.palette = reader.peek(picture.colors * 3);
        reader.skip(picture.colors * 3);
    }
}

/// 1 kind, sub-blocks. Kind 0xF9 says in its first block: 1 flags (bit 0: an index lets through), 2 time, 1 index.
void readExtension(ByteReader &reader, GifPicture &picture)
{
    constexpr std::uint32_t control = 0xF9;
    const unsigned char *block = reader.peek(6);
    if (reader.byte() == control && block != nullptr && block[1] >= 4)
    {
        picture.through = (block[2] & 1U) != 0 ? block[5] : -1;
    }
    skipSubBlocks(reader);
}
} // namespace

/// Screen: 6 mark, 2 width, 2 height, 1 flags, 2 more; colour table; then blocks up to the first picture (0x2C: 2 left,
/// 2 top, 2 width, 2 height, 1 flags, colour table, 1 code size, sub-blocks). Extensions begin with 0x21.
std::optional<GifPicture> readGifPicture(const unsigned char *data, std::size_t size)
{
    ByteReader reader(data, size);
    GifPicture picture;
    reader.skip(6);
    picture.screenWidth = reader.little(2);
    picture.screenHeight = reader.little(2);
    const std::uint32_t flags = reader.byte();
    reader.skip(2);
    readColors(reader, flags, picture);
    std::uint32_t block = reader.byte();
    for (; reader.isGood() && block == 0x21; block = reader.byte())
    {
        readExtension(reader, picture);
    }
    if (block != 0x2C)
    {
        return std::nullopt;
    }
    picture.left = reader.little(2);
    picture.top = reader.little(2);
    picture.width = reader.little(2);
    picture.height = reader.little(2);
    const std::uint32_t own = reader.byte();
    picture.interlaced = (own & 0x40U) != 0;
    readColors(reader, own, picture);
    picture.codeBits = reader.byte();
    picture.codes = reader.at();
    skipSubBlocks(reader);
    const bool whole = reader.isGood() && picture.palette != nullptr && picture.width > 0 && picture.height > 0;
    return whole && picture.codeBits >= 1 && picture.codeBits <= 8 ? std::optional(picture) : std::nullopt;
}

namespace
{
/// The codes of a picture, each of so many bits, the lowest first, out of sub-blocks.
class Codes
{
  public:
    Codes(const unsigned char *data, std::size_t size) : m_reader(data, size)
    {
    }
    /// Nothing behind the last one.
    std::optional<unsigned> next(unsigned bits)
    {
        while (m_count < bits)
        {
            if (m_left == 0)
            {
                m_left = m_reader.byte();
            }
            if (m_left == 0)
            {
                return std::nullopt;
            }
            m_held |= m_reader.byte() << m_count;
            m_count += 8;
            --m_left;
        }
        const unsigned code = m_held & ((1U << bits) - 1);
        m_held >>= bits;
        m_count -= bits;
        return code;
    }

  private:
    ByteReader m_reader;
    std::uint32_t m_left = 0; ///< bytes of the sub-block
    std::uint32_t m_held = 0;
    unsigned m_count = 0; ///< bits held
};

/// Codes into indices: each code stands for a string of indices, that of an earlier code and one more.
class Strings
{
  public:
    explicit Strings(unsigned bits) : m_first(bits), m_clear(1U << bits)
    {
        for (unsigned i = 0; i < m_clear; ++i)
        {
            m_last[i] = static_cast<unsigned char>(i);
        }
        reset();
    }
    /// Appends what the codes stand for until there are `wanted` indices; false when they end before or are damaged.
    bool read(Codes &codes, std::size_t wanted, std::vector<unsigned char> &indices)
    {
        while (indices.size() < wanted)
        {
            const auto code = codes.next(m_bits);
            if (!code.has_value() || *code == m_clear + 1)
            {
                return false;
            }
            if (*code == m_clear)
            {
                reset();
            }
            else if (!take(*code, indices))
            {
                return false;
            }
        }
        return true;
    }

  private:
    static constexpr unsigned none = 4096;

    void reset()
    {
        m_next = m_clear + 2;
        m_bits = m_first + 1;
        m_former = none;
    }
    bool take(unsigned code, std::vector<unsigned char> &indices)
    {
        const bool fresh = code == m_next && m_former != none;
        if (code > m_next || (code == m_next && !fresh) || (m_former == none && code >= m_clear))
        {
            return false;
        }
        const std::size_t begin = indices.size();
        for (unsigned at = fresh ? m_former : code;; at = m_before[at])
        {
            indices.push_back(m_last[at]);
            if (at < m_clear)
            {
                break;
            }
        }
        std::reverse(indices.begin() + static_cast<std::ptrdiff_t>(begin), indices.end());
        const unsigned char lead = indices[begin];
        if (fresh)
        {
            indices.push_back(lead);
        }
        add(lead);
        m_former = code;
        return true;
    }
    /// The string of the former code and the first index of this one's.
    void add(unsigned char lead)
    {
        if (m_former == none || m_next >= none)
        {
            return;
        }
        m_before[m_next] = static_cast<std::uint16_t>(m_former);
        m_last[m_next] = lead;
        ++m_next;
        m_bits += m_next == 1U << m_bits && m_bits < 12 ? 1 : 0;
    }

    unsigned m_first;
    unsigned m_clear;
    unsigned m_next = 0;
    unsigned m_bits = 0;
    unsigned m_former = none;
    std::array<std::uint16_t, none> m_before{};
    std::array<unsigned char, none> m_last{};
};

/// Which row of the picture comes at a place in the file: all of them in order, or every eighth from 0, every eighth
/// from 4, every fourth from 2 and every second from 1.
std::vector<std::int64_t> rowOrder(const GifPicture &picture)
{
    std::vector<std::int64_t> rows;
    const std::int64_t starts[] = {0, 4, 2, 1};
    const std::int64_t steps[] = {8, 8, 4, 2};
    for (int pass = 0; pass < (picture.interlaced ? 4 : 1); ++pass)
    {
        for (std::int64_t y = starts[pass]; y < picture.height; y += picture.interlaced ? steps[pass] : 1)
        {
            rows.push_back(y);
        }
    }
    return rows;
}

std::uint32_t pixelOf(const GifPicture &picture, unsigned char index)
{
    if (index == picture.through)
    {
        return 0;
    }
    const unsigned char *color = index < picture.colors ? picture.palette + std::size_t{index} * 3 : nullptr;
    return color == nullptr ? blackPixel
                            : opaqueBits | static_cast<std::uint32_t>(color[0]) << 16U |
                                  static_cast<std::uint32_t>(color[1]) << 8U | color[2];
}

void putRows(const GifPicture &picture, const std::vector<unsigned char> &indices, Surface &surface)
{
    const std::vector<std::int64_t> rows = rowOrder(picture);
    const auto width = static_cast<std::size_t>(picture.width);
    const std::int64_t count = std::min<std::int64_t>(picture.width, surface.width() - picture.left);
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const std::int64_t y = picture.top + rows[i];
        for (std::int64_t x = 0; y < surface.height() && x < count; ++x)
        {
            surface.row(static_cast<int>(y))[picture.left + x] =
                pixelOf(picture, indices[i * width + static_cast<std::size_t>(x)]);
        }
    }
}
} // namespace

std::shared_ptr<Surface> decodeGif(const unsigned char *data, std::size_t size)
{
    const auto picture = readGifPicture(data, size);
    std::vector<unsigned char> indices;
    const std::size_t wanted =
        picture.has_value() ? static_cast<std::size_t>(picture->width) * static_cast<std::size_t>(picture->height) : 0;
    bool read = false;
    if (picture.has_value())
    {
        Codes codes(data + picture->codes, size - picture->codes);
        read = Strings(picture->codeBits).read(codes, wanted, indices);
    }
    if (!read)
    {
        SetLastError(ERROR_BAD_FORMAT);
        return nullptr;
    }
    const auto width = static_cast<int>(std::max(picture->screenWidth, picture->width));
    const auto height = static_cast<int>(std::max(picture->screenHeight, picture->height));
    auto surface = Surface::create(width, height, Surface::Kind::Soft);
    if (surface != nullptr)
    {
        putRows(*picture, indices, *surface);
    }
    return surface;
}
} // namespace zb::internal
