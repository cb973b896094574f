// Where windows lie and what of them shows.
//
// Everything here is called under treeLock() unless told otherwise, and changes no window but through what is told.
// Boxes and regions are in pixels of the screen unless told otherwise.
#pragma once

#include "platform/linux/windows_table.h"

#include <utility>

namespace zb::internal
{
/// Window and object travel together: the object alone does not know its handle.
struct PlacedWindow
{
    HWND handle = nullptr;
    std::shared_ptr<WindowObject> object;

    explicit operator bool() const
    {
        return object != nullptr;
    }
};

/// What the frame takes off each side.
struct Insets
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
Insets frameOf(DWORD style, DWORD exStyle);
/// The same of a window as it is, with its menu bar.
Insets frameOf(const WindowObject &object);

/// Windows of the screen, the topmost first.
std::vector<HWND> &screenWindows();
/// The list that the window stands in among its siblings.
std::vector<HWND> *siblingsOf(const WindowObject &object);
bool isShownItself(const WindowObject &object);
bool isShown(const WindowObject &object);

Box windowBox(const WindowObject &object);
Box clientBox(const WindowObject &object);
/// The whole window with its frame, without what lies above it or out of its parents.
Region shownRegion(HWND window, const WindowObject &object);
/// The same of its client area, and without its children.
Region shownClient(HWND window, const WindowObject &object);

PlacedWindow placed(HWND window);
/// The topmost shown window at the point, below `top`, or of all when that is null.
PlacedWindow windowAt(int x, int y);

/// Windows that have become invalid under the lock and are told after it.
class Repaints
{
  public:
    /// Adds to what is invalid of a window: client coordinates.
    void invalidate(HWND window, const std::shared_ptr<WindowObject> &object, const Region &what, bool erase);
    /// The window with its frame and all that lies in it.
    void invalidateAll(HWND window, const std::shared_ptr<WindowObject> &object);
    /// What lies below a region of the screen that has come free; the bare screen there is painted at once.
    void expose(Region region);
    /// Without the lock: lets the windows' threads know, and who shows the screen.
    void tell();

  private:
    void exposeWithin(HWND window, const std::shared_ptr<WindowObject> &object, const Region &region);

    std::vector<PlacedWindow> m_windows;
    Region m_bare; ///< what was painted of the bare screen
};
} // namespace zb::internal
