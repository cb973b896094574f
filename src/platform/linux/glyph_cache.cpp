#include "platform/linux/glyph_cache.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr std::size_t blockBytes = 16384;
/// Rows are drawn by so many pixels at a time.
constexpr std::size_t rowUnit = 4;
} // namespace

bool GlyphCache::isFull(std::size_t bytes) const
{
    return m_size != 0 && m_size + bytes + sizeof(GlyphBitmap) > limit;
}

const GlyphBitmap *GlyphCache::add(Key key, const GlyphPicture &picture)
{
    const auto rows = static_cast<std::size_t>(picture.box.height);
    const std::size_t width = rows == 0 ? 0 : picture.coverage.size() / rows;
    const std::size_t pitch = (width + rowUnit - 1) / rowUnit * rowUnit;
    std::uint8_t *coverage = room(pitch * rows);
    for (std::size_t row = 0; row < rows; ++row)
    {
        std::uint8_t *to = std::copy_n(picture.coverage.data() + row * width, width, coverage + row * pitch);
        std::fill_n(to, pitch - width, std::uint8_t{0});
    }
    m_bitmaps.push_back({picture.box, static_cast<int>(pitch), coverage});
    m_size += pitch * rows + sizeof(GlyphBitmap);
    const std::size_t page = key >> pageBits;
    if (page >= m_pages.size())
    {
        m_pages.resize(page + 1);
    }
    if (m_pages[page] == nullptr)
    {
        m_pages[page] = std::make_unique<Page>();
    }
    return (*m_pages[page])[key & (pageSize - 1)] = &m_bitmaps.back();
}

void GlyphCache::clear()
{
    m_pages.clear();
    m_bitmaps.clear();
    m_blocks.clear();
    m_free = nullptr;
    m_freeBytes = 0;
    m_size = 0;
}

std::uint8_t *GlyphCache::room(std::size_t bytes)
{
    if (bytes > blockBytes / 4)
    {
        // A block of its own leaves the begun one to the small glyphs.
        return m_blocks.emplace_back(std::make_unique<std::uint8_t[]>(bytes)).get();
    }
    if (bytes > m_freeBytes)
    {
        m_free = m_blocks.emplace_back(std::make_unique<std::uint8_t[]>(blockBytes)).get();
        m_freeBytes = blockBytes;
    }
    std::uint8_t *place = m_free;
    m_free += bytes;
    m_freeBytes -= bytes;
    return place;
}
} // namespace zb::internal
