// Painting one line of text on a context, as both text calls do it.
#pragma once

#include "platform/linux/device_context.h"
#include "platform/linux/glyph_painter.h"
#include "platform/linux/text_layout.h"

#include <string_view>

namespace zb::internal
{
/// The whole coordinate range, for no limit.
inline constexpr Box everywhere{-(1 << 30), -(1 << 30), 1 << 30, 1 << 30};

class TextPainter
{
  public:
    /// Draws with the context's font and colours, inside its clip and `limit` (in the context's coordinates). Holds the
    /// face's mutex as long as it lives.
    TextPainter(DeviceContext &context, const Box &limit);
    TextPainter(const TextPainter &) = delete;
    TextPainter &operator=(const TextPainter &) = delete;

    FontFace &face() const
    {
        return *m_face;
    }
    const ClipBoxes &clip() const
    {
        return m_clip;
    }
    /// Fills with the background colour; the context's coordinates.
    void fillBack(const Box &box) const;
    /// The text with its left end at x and the cell's top at `top`; the lines of the font and, in mode OPAQUE, its
    /// background as well. advances may be null, else they are one for each character.
    void draw(LONGLONG x, LONGLONG top, std::u16string_view text, const int *advances = nullptr) const;
    /// A line below each of these characters (ascending) of the text drawn at x, top.
    void underline(LONGLONG x, LONGLONG top, std::u16string_view text,
                   const std::vector<std::size_t> &characters) const;
    /// The text's width with or without advances of the caller's own.
    LONGLONG width(std::u16string_view text, const int *advances) const;

  private:
    void drawSimple(LONGLONG x, LONGLONG baseline, std::u16string_view text, const int *advances) const;
    void drawLayout(LONGLONG x, LONGLONG baseline, const TextLayout &layout, const int *advances) const;
    void drawRule(LONGLONG x, LONGLONG right, LONGLONG top, int thickness) const;

    DeviceContext &m_context;
    std::shared_ptr<FontFace> m_face;
    std::unique_lock<std::mutex> m_lock;
    ClipBoxes m_clip;
    GlyphPainter m_painter;
};
} // namespace zb::internal
