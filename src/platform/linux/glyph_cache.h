// Rendered glyphs, kept packed in blocks up to a limit.
//
// Threads: one at a time. Reaching the limit empties the cache whole, since texts change from one screen to the next
// and single glyphs can't be given back from a block.
#pragma once

#include "platform/linux/glyph_bitmap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace zb::internal
{
class GlyphCache
{
  public:
    using Key = std::uint32_t;
    static Key keyOf(unsigned source, unsigned glyph)
    {
        return source << 16U | glyph;
    }

    /// Null when it isn't there.
    const GlyphBitmap *find(Key key) const
    {
        const std::size_t page = key >> pageBits;
        const bool there = page < m_pages.size() && m_pages[page] != nullptr;
        return there ? (*m_pages[page])[key & (pageSize - 1)] : nullptr;
    }
    /// Valid until the next add or clear.
    const GlyphBitmap *add(Key key, const GlyphPicture &picture);
    /// True when a picture of this size would need the cache emptied first.
    bool isFull(std::size_t bytes) const;
    void clear();
    /// What the pictures take.
    std::size_t size() const
    {
        return m_size;
    }

    static constexpr std::size_t limit = std::size_t{2} << 20U;

  private:
    std::uint8_t *room(std::size_t bytes);

    /// Looked up once for each glyph that is drawn, so without hashing.
    static constexpr unsigned pageBits = 8;
    static constexpr std::size_t pageSize = std::size_t{1} << pageBits;
    using Page = std::array<const GlyphBitmap *, pageSize>;
    std::vector<std::unique_ptr<Page>> m_pages; ///< by the upper bits of the key
    std::deque<GlyphBitmap> m_bitmaps;
    std::vector<std::unique_ptr<std::uint8_t[]>> m_blocks;
    std::uint8_t *m_free = nullptr;
    std::size_t m_freeBytes = 0;
    std::size_t m_size = 0;
};
} // namespace zb::internal
