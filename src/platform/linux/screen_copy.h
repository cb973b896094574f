// A copy of the screen's pixels for the desktop's window, which is drawn from it on its own thread: it never sees a
// picture half done.
//
// Threads: any.
#pragma once

#include "platform/linux/screen_backend.h"
#include "platform/linux/surface.h"

#include <mutex>
#include <vector>

namespace zb::internal
{
class ScreenCopy
{
  public:
    /// Takes over what differs inside the region, or everything when the size has changed; whether that was anything.
    bool take(const Surface &surface, const Region &region);
    /// As ScreenPlatform::lend.
    void lend(bool all, const std::function<void(const ScreenPixels &)> &use);

  private:
    bool takeBox(const Surface &surface, const Box &box);
    void grow(const Box &box);

    std::mutex m_lock;
    std::vector<std::uint32_t> m_pixels;
    int m_width = 0;
    int m_height = 0;
    Box m_changed; ///< since it was lent last
};
} // namespace zb::internal
