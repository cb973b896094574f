#include "platform/linux/glyph_cache.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr std::size_t blockBytes = 16384;
} // namespace

const GlyphBitmap *GlyphCache::find(Key key) const
{
    const auto found = m_index.find(key);
    return found == m_index.end() ? nullptr : found->second;
}

bool GlyphCache::isFull(std::size_t bytes) const
{
    return m_size != 0 && m_size + bytes + sizeof(GlyphBitmap) > limit;
}

const GlyphBitmap *GlyphCache::add(Key key, const GlyphPicture &picture)
{
    std::uint8_t *coverage = room(picture.coverage.size());
    std::copy(picture.coverage.begin(), picture.coverage.end(), coverage);
    m_bitmaps.push_back({picture.box, coverage});
    m_size += picture.coverage.size() + sizeof(GlyphBitmap);
    m_index[key] = &m_bitmaps.back();
    return &m_bitmaps.back();
}

void GlyphCache::clear()
{
    m_index.clear();
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
