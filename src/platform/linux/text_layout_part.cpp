// The layout of a part of a text out of that of the whole: a line that was broken off, and what is left behind it.
//
// In an even text a word between blanks is what it would be alone, and only the blanks at the ends of the part may
// stand elsewhere than in the whole: they go with the line, from left to right.
#include "platform/linux/text_layout.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Sums of widths that reach here may have been cut off.
constexpr int widestSummed = 1 << 30;

bool isCutAtBlanks(std::u16string_view whole, std::size_t first, std::size_t end)
{
    const auto parts = [&](std::size_t at)
    { return at == 0 || at == whole.size() || whole[at - 1] == u' ' || whole[at] == u' '; };
    return parts(first) && parts(end);
}

class PartTaker
{
  public:
    PartTaker(FontFace &face, const TextLayout &from, TextLayout &part) : m_face(face), m_from(from), m_part(part)
    {
    }

    /// The blanks [first, begin) and [end, behind), with the words between.
    void take(std::size_t first, std::size_t begin, std::size_t end, std::size_t behind)
    {
        m_first = static_cast<int>(first);
        addBlanks(first, begin);
        addWords(static_cast<int>(begin), static_cast<int>(end));
        addBlanks(end, behind);
        const int before = first == 0 ? 0 : m_from.extents[first - 1];
        m_part.extents.resize(behind - first);
        std::transform(m_from.extents.begin() + static_cast<std::ptrdiff_t>(first),
                       m_from.extents.begin() + static_cast<std::ptrdiff_t>(behind), m_part.extents.begin(),
                       [before](int extent) { return extent - before; });
        m_part.width = m_part.extents.back();
        m_part.even = m_from.even;
    }

  private:
    void addBlanks(std::size_t from, std::size_t to)
    {
        const CharacterGlyph &blank = m_face.character(u' ');
        for (std::size_t at = from; at < to; ++at)
        {
            m_part.clusters.push_back({static_cast<int>(at) - m_first, 1, blank.advance,
                                       static_cast<std::uint32_t>(m_part.glyphs.size()), 1});
            m_part.glyphs.push_back({0, 0, blank.glyph, blank.source});
        }
    }

    /// The clusters of the words stand side by side in the whole, in either direction, and so do their glyphs.
    void addWords(int begin, int end)
    {
        const auto inside = [&](const LayoutCluster &cluster) { return cluster.first >= begin && cluster.first < end; };
        const auto from = std::find_if(m_from.clusters.begin(), m_from.clusters.end(), inside);
        const auto to = std::find_if_not(from, m_from.clusters.end(), inside);
        if (from == to)
        {
            return;
        }
        const std::uint32_t glyphs = from->glyphs;
        const auto base = static_cast<std::uint32_t>(m_part.glyphs.size());
        for (auto at = from; at != to; ++at)
        {
            m_part.clusters.push_back(
                {at->first - m_first, at->count, at->advance, at->glyphs - glyphs + base, at->glyphCount});
        }
        const LayoutCluster &last = *(to - 1);
        m_part.glyphs.insert(m_part.glyphs.end(), m_from.glyphs.begin() + static_cast<std::ptrdiff_t>(glyphs),
                             m_from.glyphs.begin() + static_cast<std::ptrdiff_t>(last.glyphs + last.glyphCount));
    }

    FontFace &m_face;
    const TextLayout &m_from;
    TextLayout &m_part;
    int m_first = 0;
};
} // namespace

bool takePart(FontFace &face, std::u16string_view whole, const TextLayout &from, std::size_t first, std::size_t count,
              TextLayout &part)
{
    const std::size_t behind = first + count;
    if (!from.even || count == 0 || from.width >= widestSummed || face.character(u' ').glyph == 0 ||
        !isCutAtBlanks(whole, first, behind))
    {
        return false;
    }
    const std::u16string_view text = whole.substr(first, count);
    const std::size_t begin = text.find_first_not_of(u' ');
    if (begin == std::u16string_view::npos)
    {
        return false;
    }
    PartTaker(face, from, part).take(first, first + begin, first + text.find_last_not_of(u' ') + 1, behind);
    return true;
}
} // namespace zb::internal
