#include "platform/linux/text_draw.h"

#include <algorithm>
#include <numeric>

namespace zb::internal
{
namespace
{
Box moved(const Box &box, POINT by)
{
    return safeBox(LONGLONG{box.left} + by.x, LONGLONG{box.top} + by.y, LONGLONG{box.right} + by.x,
                   LONGLONG{box.bottom} + by.y);
}

/// The advance of a cluster by the caller's numbers for its characters.
LONGLONG advanceOf(const LayoutCluster &cluster, const int *advances)
{
    return advances == nullptr
               ? cluster.advance
               : std::accumulate(advances + cluster.first, advances + cluster.first + cluster.count, LONGLONG{0});
}

/// Calls `take(first, count, left, right)` for each cluster of the text from left to right.
template <typename Take>
void forEachCluster(FontFace &face, std::u16string_view text, Take take)
{
    LONGLONG pen = 0;
    if (simplePrefix(face, text) == text.size())
    {
        for (std::size_t at = 0; at < text.size(); ++at)
        {
            const int advance = face.character(text[at]).advance;
            take(at, std::size_t{1}, pen, pen + advance);
            pen += advance;
        }
        return;
    }
    const auto layout = layoutOf(face, text);
    for (const LayoutCluster &cluster : layout->clusters)
    {
        take(static_cast<std::size_t>(cluster.first), static_cast<std::size_t>(cluster.count), pen,
             pen + cluster.advance);
        pen += cluster.advance;
    }
}
} // namespace

TextPainter::TextPainter(DeviceContext &context, const Box &limit)
    : m_context(context), m_face(context.state().font->face()), m_lock(m_face->mutex()),
      m_clip(context.visible(), moved(limit, context.origin())),
      m_painter(context.surface(), m_clip, m_face->key().smoothing,
                context.surface().fit(pixelOfColor(context.state().textColor)))
{
}

void TextPainter::fillBack(const Box &box) const
{
    const std::uint32_t back = m_context.surface().fit(pixelOfColor(m_context.state().backColor));
    GlyphPainter(m_context.surface(), m_clip, Smoothing::None, back).fill(moved(box, m_context.origin()));
}

LONGLONG TextPainter::width(std::u16string_view text, const int *advances) const
{
    return advances == nullptr ? widthOf(*m_face, text)
                               : std::accumulate(advances, advances + text.size(), LONGLONG{0});
}

void TextPainter::draw(LONGLONG x, LONGLONG top, std::u16string_view text, const int *advances) const
{
    if (m_clip.isEmpty() || text.empty())
    {
        return;
    }
    const FontMeasures &measures = m_face->measures();
    const LOGFONTW &font = m_context.state().font->description();
    const bool opaque = m_context.state().backMode == OPAQUE;
    const bool ruled = font.lfUnderline != 0 || font.lfStrikeOut != 0;
    const LONGLONG right = opaque || ruled ? x + width(text, advances) : x;
    if (opaque)
    {
        fillBack(safeBox(x, top, right, top + measures.height));
    }
    const POINT origin = m_context.origin();
    const LONGLONG baseline = top + measures.ascent + origin.y;
    if (simplePrefix(*m_face, text) == text.size())
    {
        drawSimple(x + origin.x, baseline, text, advances);
    }
    else
    {
        drawLayout(x + origin.x, baseline, *layoutOf(*m_face, text), advances);
    }
    if (font.lfUnderline != 0)
    {
        drawRule(x, right, top + measures.underlineTop, measures.underlineThickness);
    }
    if (font.lfStrikeOut != 0)
    {
        drawRule(x, right, top + measures.strikeOutTop, measures.strikeOutThickness);
    }
}

void TextPainter::drawSimple(LONGLONG x, LONGLONG baseline, std::u16string_view text, const int *advances) const
{
    for (const WCHAR unit : text)
    {
        CharacterGlyph &character = m_face->character(unit);
        if (const GlyphBitmap *bitmap = m_face->bitmapOf(character); bitmap != nullptr)
        {
            m_painter.paint(*bitmap, x, baseline);
        }
        x += advances != nullptr ? *advances++ : character.advance;
    }
}

void TextPainter::drawLayout(LONGLONG x, LONGLONG baseline, const TextLayout &layout, const int *advances) const
{
    for (const LayoutCluster &cluster : layout.clusters)
    {
        for (std::uint32_t n = cluster.glyphs; n < cluster.glyphs + cluster.glyphCount; ++n)
        {
            const LayoutGlyph &glyph = layout.glyphs[n];
            if (const GlyphBitmap *bitmap = m_face->bitmapOf(glyph.source, glyph.glyph); bitmap != nullptr)
            {
                m_painter.paint(*bitmap, x + glyph.x, baseline + glyph.y);
            }
        }
        x += advanceOf(cluster, advances);
    }
}

void TextPainter::drawRule(LONGLONG x, LONGLONG right, LONGLONG top, int thickness) const
{
    const POINT origin = m_context.origin();
    m_painter.fill(safeBox(x + origin.x, top + origin.y, right + origin.x, top + origin.y + thickness));
}

void TextPainter::underline(LONGLONG x, LONGLONG top, std::u16string_view text,
                            const std::vector<std::size_t> &characters) const
{
    const FontMeasures &measures = m_face->measures();
    forEachCluster(*m_face, text,
                   [&](std::size_t first, std::size_t count, LONGLONG left, LONGLONG right)
                   {
                       const auto next = std::lower_bound(characters.begin(), characters.end(), first);
                       if (next != characters.end() && *next < first + count)
                       {
                           drawRule(x + left, x + right, top + measures.underlineTop, measures.underlineThickness);
                       }
                   });
}
} // namespace zb::internal
