// What stands behind a window's handle.
//
// The tree of parents and children is under one lock for all windows; text and extra bytes are under the window's own;
// the words that procedures read at every message are atomic. Neither lock is held over a procedure, and neither is
// taken while waiting for another lock of the platform but a queue's.
#pragma once

#include "platform/linux/handles.h"
#include "platform/linux/region.h"
#include "platform/linux/thread_state.h"
#include "platform/user.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zb::internal
{
/// As deep as windows may be nested: destroying goes down the tree by recursion.
inline constexpr int deepestLevel = 100;

/// A registered class. Kept by its windows, so that they outlive its registration.
struct WindowClass
{
    std::u16string name;
    WNDCLASSW description{};
    ATOM atom = 0;
    std::atomic<int> windows{0};
};

/// A scroll bar: one of a window's own, or a control.
struct ScrollBar
{
    int low = 0;
    int high = 0;
    int page = 0;
    int position = 0;
    int track = 0; ///< where the pen holds the thumb
    bool disabled = false;
    int pressed = -1; ///< the arrow, track or thumb under the pen, by its SB_ code
};

class WindowObject final : public HandleObject
{
  public:
    WindowObject(std::shared_ptr<WindowClass> type, std::shared_ptr<ThreadState> owner);
    ~WindowObject() override;

    const std::shared_ptr<ThreadState> &owner() const
    {
        return m_owner;
    }
    bool isOwn() const
    {
        return m_owner.get() == thisThread.state;
    }
    const std::shared_ptr<WindowClass> &type() const
    {
        return m_type;
    }

    std::atomic<WNDPROC> procedure{nullptr};
    std::atomic<LONG_PTR> userData{0};
    std::atomic<LONG_PTR> style{0};
    std::atomic<LONG_PTR> exStyle{0};
    std::atomic<LONG_PTR> id{0};
    std::atomic<HWND> lastFocus{nullptr}; ///< of a window of the screen: what in it had the focus last

    /// False when the bytes lie outside the window's extra bytes.
    bool readExtra(int offset, LONG_PTR &value) const;
    bool writeExtra(int offset, LONG_PTR value, LONG_PTR &former);
    std::u16string text() const;
    void setText(const WCHAR *text);

    // Under treeLock()
    bool destroying = false;
    int level = 0; ///< parents above it
    HWND parent = nullptr; ///< of a window of the screen: its owner
    std::vector<HWND> children; ///< and windows owned, the topmost first
    std::atomic<bool> isChild{false}; ///< lies in its parent; also asked without the lock
    Box place; ///< with its frame, in its parent's client area or on the screen
    Region update; ///< what is invalid of the client area, in its own coordinates
    bool erase = false; ///< the background is to be erased before the next paint
    bool frameDirty = false; ///< the frame is to be drawn before it
    bool redraw = true; ///< WM_SETREDRAW
    ScrollBar bars[2]; ///< SB_HORZ, SB_VERT
    HMENU menuBar = nullptr;
    int pressedHalf = -1; ///< of the menu bar: what shows as pressed

  private:
    const std::shared_ptr<WindowClass> m_type;
    const std::shared_ptr<ThreadState> m_owner;
    mutable std::mutex m_lock;
    std::u16string m_text;
    std::vector<unsigned char> m_extra;
};

std::mutex &treeLock();
/// Null for a window that is gone; the last error stays.
std::shared_ptr<WindowObject> peekWindow(HWND window);
/// Under treeLock(). A thread that is terminated in the midst of its steps still takes them to the next stop, when its
/// windows are out of the table already: what is not in it must not enter the tree, which nobody would clear of it.
bool isInTable(HWND window);
/// Null with last error 1400 for a window that is gone.
std::shared_ptr<WindowObject> findWindow(HWND window);
/// The window itself or one below it.
bool isWithin(HWND window, HWND ancestor);
/// Puts the window below a parent; false when that one is gone or going.
bool adopt(const std::shared_ptr<WindowObject> &parent, HWND parentHandle, HWND child, WindowObject &object);
/// Takes the window out of table, tree and queue; no message is sent.
void removeWindow(HWND window);
/// The same for a window whose queue is closed already.
void removeWindowOfEndedThread(HWND window);
/// Sends WM_DESTROY and WM_NCDESTROY to children and window, then removes it. On the owner's thread.
void destroyOwnWindow(HWND window);
/// As above, through the owner's thread when that is another.
void destroyAnyWindow(HWND window);
/// Calls the window's procedure on this thread; 0 with last error 1400 for a window that is gone.
LRESULT callWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// Runs the procedures for all that other threads have sent to this one.
void dispatchSentMessages(ThreadState &thread);

/// The registered class of a name or of an atom that stands in its place; null when there is none.
std::shared_ptr<WindowClass> findWindowClass(const WCHAR *name);
} // namespace zb::internal
