// Rendered glyphs, kept packed in blocks up to a limit.
//
// Threads: one at a time. Reaching the limit empties the cache whole, since texts change from one screen to the next
// and single glyphs can't be given back from a block.
#pragma once

#include "platform/linux/glyph_bitmap.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
class GlyphCache
{
  public:
    using Key = std::uint32_t;
    static Key keyOf(unsigned source, unsigned glyph)
    {
        return source << 24U | glyph;
    }

    /// Null when it isn't there.
    const GlyphBitmap *find(Key key) const;
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

    std::unordered_map<Key, const GlyphBitmap *> m_index;
    std::deque<GlyphBitmap> m_bitmaps;
    std::vector<std::unique_ptr<std::uint8_t[]>> m_blocks;
    std::uint8_t *m_free = nullptr;
    std::size_t m_freeBytes = 0;
    std::size_t m_size = 0;
};
} // namespace zb::internal
