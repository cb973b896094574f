// The two sides of the screen's window: the platform, and the library that shows the window on a desktop.
//
// libZBScreen is loaded when a window is opened: what it stands on would double the start of programs that never show
// one. It exports "zbOpenScreen", an OpenScreenBackend. The window has a thread of its own, which sleeps until the
// desktop or the platform has something for it. No call of one side waits for the other's thread but where told.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
enum class PenAction
{
    Down,
    Move,
    Up
};

struct ScreenRequest
{
    std::string title;
    int width;       ///< pixels of the screen
    int height;
    int dotsPerInch; ///< that the screen is drawn for
};

/// A picture, 0xAARRGGBB with colours that are whole whatever the opacity, row by row from the top.
struct ScreenIcon
{
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

/// What the platform wants of the window.
struct ScreenWishes
{
    bool shown = false;
    std::string title;
    std::optional<ScreenIcon> icon; ///< to be taken for the window's
    int width = 0;           ///< of the screen, when the window is to take this size; else 0
    int height = 0;
    bool editing = false;    ///< what has the focus takes text
    int editLeft = 0;        ///< where that lies on the screen
    int editTop = 0;
    int editWidth = 0;
    int editHeight = 0;
    std::optional<std::string> clipboard; ///< to be put into the desktop's clipboard
    bool asksForClipboard = false;        ///< ScreenPlatform::clipboard() is waited for
};

/// The screen's pixels, 0xXXRRGGBB, and which of them have changed.
struct ScreenPixels
{
    const std::uint32_t *pixels;
    int width; ///< and stride
    int height;
    int left;
    int top;
    int right;
    int bottom;
};

/// The platform as the window's thread sees it.
class ScreenPlatform
{
  public:
    ScreenPlatform() = default;
    ScreenPlatform(const ScreenPlatform &) = delete;
    ScreenPlatform &operator=(const ScreenPlatform &) = delete;

    virtual void pen(PenAction action, int x, int y) = 0;
    virtual void wheel(int steps, int x, int y) = 0;
    /// A key of the VK_ numbers with what it types, 0 for nothing.
    virtual void key(int number, bool down, char16_t character) = 0;
    virtual void text(std::string utf8) = 0;
    /// The window has room for this many pixels.
    virtual void resized(int width, int height) = 0;
    virtual void closed() = 0;
    virtual void clipboard(std::optional<std::string> utf8) = 0;
    virtual ScreenWishes takeWishes() = 0;
    /// Lends the pixels for the length of the call: what has changed since the last one, or all. Not called when that
    /// is nothing.
    virtual void lend(bool all, const std::function<void(const ScreenPixels &)> &use) = 0;

  protected:
    ~ScreenPlatform() = default;
};

/// The window as the platform sees it. Destroying it closes the window and waits for its thread.
class ScreenBackend
{
  public:
    ScreenBackend() = default;
    virtual ~ScreenBackend() = default;
    ScreenBackend(const ScreenBackend &) = delete;
    ScreenBackend &operator=(const ScreenBackend &) = delete;

    /// Waits until there is a window; the reason when there can't be one, else empty.
    virtual std::string awaitStart() = 0;
    /// There are wishes or changed pixels. Any thread.
    virtual void wake() = 0;
};

/// The caller's. Starts the window's thread and comes back at once.
using OpenScreenBackend = ScreenBackend *(*)(ScreenPlatform &platform, const ScreenRequest &request);
} // namespace zb::internal
