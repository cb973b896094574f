// Puts glyphs and their lines onto a surface: blends a colour over the pixels by what a glyph covers of them, inside
// the clip.
//
// Coordinates are the surface's; those that lie far outside are safe.
#pragma once

#include "platform/linux/font_description.h"
#include "platform/linux/glyph_bitmap.h"
#include "platform/linux/surface.h"

#include <vector>

namespace zb::internal
{
/// Where drawing may happen: the rectangles of a region inside one more rectangle.
class ClipBoxes
{
  public:
    ClipBoxes(const Region &region, const Box &limit);

    bool isEmpty() const
    {
        return m_bounds.isEmpty();
    }
    const Box &bounds() const
    {
        return m_bounds;
    }
    /// True when the box lies inside and nothing in it is left out. A quick test: may be false for one that does.
    bool holds(const Box &box) const
    {
        return m_boxes.empty() && box.left >= m_bounds.left && box.right <= m_bounds.right && box.top >= m_bounds.top &&
               box.bottom <= m_bounds.bottom;
    }
    /// Calls `draw` with each part of the box that may be drawn on.
    template <typename Draw>
    void forEach(const Box &box, Draw draw) const
    {
        if (m_boxes.empty())
        {
            draw(box.intersected(m_bounds));
            return;
        }
        for (const Box &one : m_boxes)
        {
            const Box part = box.intersected(one);
            if (!part.isEmpty())
            {
                draw(part);
            }
        }
    }

  private:
    Box m_bounds;
    std::vector<Box> m_boxes; ///< empty when the bounds are all
};

class GlyphPainter
{
  public:
    /// The colour is a pixel that fits the surface.
    GlyphPainter(Surface &surface, const ClipBoxes &clip, Smoothing smoothing, std::uint32_t pixel);

    /// The pen stands at x on the baseline y.
    void paint(const GlyphBitmap &bitmap, LONGLONG x, LONGLONG y) const
    {
        const LONGLONG left = x + bitmap.box.left;
        const LONGLONG top = y - bitmap.box.top;
        const Box &bounds = m_clip.bounds();
        if (left < bounds.right && left + bitmap.box.width > bounds.left && top < bounds.bottom &&
            top + bitmap.box.height > bounds.top)
        {
            paintVisible(bitmap, static_cast<int>(left), static_cast<int>(top));
        }
    }
    void fill(const Box &box) const;

  private:
    void paintVisible(const GlyphBitmap &bitmap, int left, int top) const;
    void paintWhole(const GlyphBitmap &bitmap, int left, int top) const;
    void paintPart(const GlyphBitmap &bitmap, int left, int top, const Box &part) const;

    Surface &m_surface;
    const ClipBoxes &m_clip;
    bool m_stripes;
    bool m_plain; ///< one colour by coverage alone: neither stripes nor a surface that asks for more
    std::uint32_t m_pixel;
};

/// A rectangle whose sides lie anywhere, brought into the range of a Box.
Box safeBox(LONGLONG left, LONGLONG top, LONGLONG right, LONGLONG bottom);
} // namespace zb::internal
