// A set of pixels made of rectangles, in the coordinates of a surface.
#pragma once

#include "platform/types.h"

#include <pixman.h>
#include <span>
#include <utility>

namespace zb::internal
{
/// A rectangle whose sides may lie anywhere, made safe: sides in order, or empty.
struct Box
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool isEmpty() const
    {
        return left >= right || top >= bottom;
    }
    int width() const
    {
        return right - left;
    }
    int height() const
    {
        return bottom - top;
    }
    Box intersected(const Box &other) const
    {
        return {left > other.left ? left : other.left, top > other.top ? top : other.top,
                right < other.right ? right : other.right, bottom < other.bottom ? bottom : other.bottom};
    }
};

/// Copying a region of one rectangle takes no memory. Threads: one at a time.
class Region
{
  public:
    Region()
    {
        pixman_region32_init(&m_region);
    }
    explicit Region(const Box &box)
    {
        if (box.isEmpty())
        {
            pixman_region32_init(&m_region);
            return;
        }
        pixman_box32_t one{box.left, box.top, box.right, box.bottom};
        pixman_region32_init_with_extents(&m_region, &one);
    }
    Region(const Region &other) : Region()
    {
        pixman_region32_copy(&m_region, const_cast<pixman_region32_t *>(&other.m_region));
    }
    Region(Region &&other) noexcept : Region()
    {
        std::swap(m_region, other.m_region);
    }
    Region &operator=(const Region &other)
    {
        if (this != &other)
        {
            pixman_region32_copy(&m_region, const_cast<pixman_region32_t *>(&other.m_region));
        }
        return *this;
    }
    Region &operator=(Region &&other) noexcept
    {
        std::swap(m_region, other.m_region);
        return *this;
    }
    ~Region()
    {
        pixman_region32_fini(&m_region);
    }

    /// The library's own form, for its compositing calls; it never changes it there.
    pixman_region32_t *get() const
    {
        return const_cast<pixman_region32_t *>(&m_region);
    }
    bool isEmpty() const
    {
        return m_region.extents.x1 >= m_region.extents.x2;
    }
    /// The smallest box around all; empty for an empty region.
    Box extents() const
    {
        return {m_region.extents.x1, m_region.extents.y1, m_region.extents.x2, m_region.extents.y2};
    }
    /// In bands from top to bottom, each from left to right; none overlaps another.
    std::span<const pixman_box32_t> boxes() const
    {
        int count = 0;
        const pixman_box32_t *first = pixman_region32_rectangles(get(), &count);
        return {first, static_cast<std::size_t>(count)};
    }
    bool contains(int x, int y) const
    {
        return pixman_region32_contains_point(get(), x, y, nullptr) != 0;
    }
    void intersect(const Region &other)
    {
        pixman_region32_intersect(&m_region, &m_region, other.get());
    }
    void subtract(const Region &other)
    {
        pixman_region32_subtract(&m_region, &m_region, other.get());
    }

  private:
    pixman_region32_t m_region;
};
} // namespace zb::internal
