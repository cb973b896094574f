#include "platform/linux/screen_copy.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
void ScreenCopy::grow(const Box &box)
{
    m_changed = m_changed.isEmpty() ? box
                                    : Box{std::min(m_changed.left, box.left), std::min(m_changed.top, box.top),
                                          std::max(m_changed.right, box.right), std::max(m_changed.bottom, box.bottom)};
}

bool ScreenCopy::takeBox(const Surface &surface, const Box &box)
{
    const auto bytes = static_cast<std::size_t>(box.width()) * sizeof(std::uint32_t);
    int first = box.bottom;
    int last = box.top;
    for (int y = box.top; y < box.bottom; ++y)
    {
        const std::uint32_t *from = surface.row(y) + box.left;
        std::uint32_t *to = m_pixels.data() + static_cast<std::ptrdiff_t>(y) * m_width + box.left;
        if (std::memcmp(from, to, bytes) != 0)
        {
            std::memcpy(to, from, bytes);
            first = std::min(first, y);
            last = y + 1;
        }
    }
    if (first < last)
    {
        grow({box.left, first, box.right, last});
    }
    return first < last;
}

bool ScreenCopy::take(const Surface &surface, const Region &region)
{
    const std::lock_guard guard(m_lock);
    if (m_width != surface.width() || m_height != surface.height())
    {
        m_width = surface.width();
        m_height = surface.height();
        m_pixels.assign(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height), 0);
        m_changed = {};
        takeBox(surface, surface.bounds());
        grow(surface.bounds());
        return true;
    }
    bool changed = false;
    for (const pixman_box32_t &each : region.boxes())
    {
        const Box box = Box{each.x1, each.y1, each.x2, each.y2}.intersected(surface.bounds());
        changed = (!box.isEmpty() && takeBox(surface, box)) || changed;
    }
    return changed;
}

void ScreenCopy::lend(bool all, const std::function<void(const ScreenPixels &)> &use)
{
    const std::lock_guard guard(m_lock);
    const Box box = all ? Box{0, 0, m_width, m_height} : m_changed;
    m_changed = {};
    if (!box.isEmpty())
    {
        use({m_pixels.data(), m_width, m_height, box.left, box.top, box.right, box.bottom});
    }
}
} // namespace zb::internal
