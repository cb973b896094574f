// A desktop of its own for a test: Xvfb without a window manager, its pixels, and what mouse and keys do there.
#pragma once

#include "support/Picture.h"
#include "support/TestDevice.h"

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace zb::test
{
/// 800 by 700 pixels. isRunning() is false where Xvfb can't be started.
class Desktop
{
  public:
    Desktop();
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    bool isRunning() const
    {
        return !m_display.empty();
    }
    /// For DISPLAY.
    const std::string &display() const
    {
        return m_display;
    }
    /// A part of what the desktop shows now.
    Picture shot(int left, int top, int width, int height) const;
    /// Runs xdotool with these words; whether it went well.
    bool act(const std::vector<std::string> &words) const;
    /// What a window's close button does, to every window there; false when there is none.
    bool closeWindows() const;
    /// The picture of the window that shows, as it lies in its property: width, height, 0xAARRGGBB of each pixel.
    std::vector<std::uint32_t> icon() const;
    /// The desktop's clipboard.
    std::string clipboard() const;
    void setClipboard(const std::string &text) const;

  private:
    TemporaryFolder m_folder;
    pid_t m_server = -1;
    std::string m_display;
};

/// Asks until the condition holds; false when it does not within a minute.
bool eventually(const std::function<bool()> &condition);
} // namespace zb::test
