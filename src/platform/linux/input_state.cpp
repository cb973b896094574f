#include "platform/linux/input_state.h"

#include "platform/linux/screen_link.h"
#include "platform/linux/windows_place.h"

namespace zb::internal
{
namespace
{
struct Input
{
    std::mutex lock; ///< never held over a message
    HWND active = nullptr;
    HWND focus = nullptr;
    HWND capture = nullptr;
};

Input &input()
{
    static auto *instance = new Input;
    return *instance;
}

HWND exchangeUnderLock(HWND Input::*which, HWND fresh)
{
    Input &state = input();
    const std::lock_guard guard(state.lock);
    return std::exchange(state.*which, fresh);
}

HWND readUnderLock(HWND Input::*which)
{
    Input &state = input();
    const std::lock_guard guard(state.lock);
    return state.*which;
}

bool hasStyle(const WindowObject &object, DWORD style)
{
    return (object.style.load(std::memory_order_relaxed) & static_cast<LONG_PTR>(style)) != 0;
}

bool canActivate(HWND window)
{
    const auto object = peekWindow(window);
    return object != nullptr && !object->isChild && hasStyle(*object, WS_VISIBLE) && !hasStyle(*object, WS_DISABLED) &&
           (object->exStyle.load() & static_cast<LONG_PTR>(WS_EX_NOACTIVATE)) == 0;
}

/// Itself or something that it lies in is hidden or disabled.
bool canFocus(HWND window)
{
    while (window != nullptr)
    {
        const auto object = peekWindow(window);
        if (object == nullptr || hasStyle(*object, WS_DISABLED))
        {
            return false;
        }
        const std::lock_guard guard(treeLock());
        window = object->isChild ? object->parent : nullptr;
    }
    return true;
}

/// The window itself or what lies in it. What it owns stands on the screen by itself: a dialog keeps the focus while
/// its owner is disabled or hidden.
bool liesIn(HWND window, HWND outer)
{
    while (window != nullptr && window != outer)
    {
        const auto object = peekWindow(window);
        if (object == nullptr)
        {
            return false;
        }
        const std::lock_guard guard(treeLock());
        window = object->isChild ? object->parent : nullptr;
    }
    return window != nullptr;
}

void rememberFocus(HWND window)
{
    if (const auto top = peekWindow(screenWindowOf(window)))
    {
        top->lastFocus.store(window);
    }
}

/// The owner of a window that goes, else the topmost that can be active.
HWND nextActive(HWND leaving)
{
    std::vector<HWND> candidates;
    {
        const auto object = peekWindow(leaving);
        const std::lock_guard guard(treeLock());
        if (object != nullptr && object->parent != nullptr)
        {
            candidates.push_back(object->parent);
        }
        candidates.insert(candidates.end(), screenWindows().begin(), screenWindows().end());
    }
    for (const HWND candidate : candidates)
    {
        const HWND top = screenWindowOf(candidate);
        if (top != leaving && canActivate(top))
        {
            return top;
        }
    }
    return nullptr;
}

HWND moveFocus(HWND window)
{
    const HWND former = exchangeUnderLock(&Input::focus, window);
    if (former == window)
    {
        return former;
    }
    if (former != nullptr && peekWindow(former) != nullptr)
    {
        SendMessageW(former, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    }
    // Whoever lost it may have sent it elsewhere.
    if (window != nullptr && readUnderLock(&Input::focus) == window)
    {
        rememberFocus(window);
        SendMessageW(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(former), 0);
    }
    focusMoved();
    return former;
}
} // namespace

HWND screenWindowOf(HWND window)
{
    while (window != nullptr)
    {
        const auto object = peekWindow(window);
        if (object == nullptr)
        {
            return nullptr;
        }
        const std::lock_guard guard(treeLock());
        if (!object->isChild || object->parent == nullptr)
        {
            return window;
        }
        window = object->parent;
    }
    return nullptr;
}

void activate(HWND window)
{
    if (!canActivate(window))
    {
        return;
    }
    const HWND former = exchangeUnderLock(&Input::active, window);
    if (former == window)
    {
        return;
    }
    if (former != nullptr && peekWindow(former) != nullptr)
    {
        SendMessageW(former, WM_ACTIVATE, 0, reinterpret_cast<LPARAM>(window));
    }
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SendMessageW(window, WM_ACTIVATE, 1, reinterpret_cast<LPARAM>(former));
}

void focusOnActivation(HWND window, WPARAM wParam)
{
    if (LOWORD(wParam) == 0)
    {
        return;
    }
    const auto object = peekWindow(window);
    const HWND last = object == nullptr ? nullptr : object->lastFocus.load();
    const bool usable = last != nullptr && isWithin(last, window) && canFocus(last);
    moveFocus(usable ? last : window);
}

void leaveInput(HWND window)
{
    const HWND capture = readUnderLock(&Input::capture);
    if (capture != nullptr && liesIn(capture, window))
    {
        ReleaseCapture();
    }
    const bool active = readUnderLock(&Input::active) == window;
    const HWND focus = readUnderLock(&Input::focus);
    if (focus != nullptr && liesIn(focus, window))
    {
        moveFocus(nullptr);
    }
    if (active)
    {
        const HWND next = nextActive(window);
        if (next != nullptr)
        {
            activate(next);
        }
        else
        {
            exchangeUnderLock(&Input::active, nullptr);
        }
    }
}

HWND focusedWindow()
{
    const HWND focus = readUnderLock(&Input::focus);
    return focus != nullptr && peekWindow(focus) != nullptr ? focus : readUnderLock(&Input::active);
}

HWND capturingWindow()
{
    const HWND capture = readUnderLock(&Input::capture);
    return capture != nullptr && peekWindow(capture) != nullptr ? capture : nullptr;
}
} // namespace zb::internal

using namespace zb::internal;

namespace
{
/// The window when it is the calling thread's.
HWND ownOnly(HWND window)
{
    const auto object = window == nullptr ? nullptr : peekWindow(window);
    return object != nullptr && object->isOwn() ? window : nullptr;
}
} // namespace

HWND SetFocus(HWND window)
{
    if (window == nullptr)
    {
        return ownOnly(moveFocus(nullptr));
    }
    if (findWindow(window) == nullptr || !canFocus(window))
    {
        return nullptr;
    }
    const HWND top = screenWindowOf(window);
    if (const auto object = peekWindow(top))
    {
        object->lastFocus.store(window);
    }
    const HWND former = focusedWindow();
    activate(top);
    moveFocus(window);
    return ownOnly(former);
}

HWND GetFocus()
{
    return ownOnly(readUnderLock(&Input::focus));
}

HWND SetCapture(HWND window)
{
    if (findWindow(window) == nullptr)
    {
        return nullptr;
    }
    const HWND former = exchangeUnderLock(&Input::capture, window);
    if (former != nullptr && former != window && peekWindow(former) != nullptr)
    {
        SendMessageW(former, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(window));
    }
    return ownOnly(former);
}

BOOL ReleaseCapture()
{
    const HWND former = exchangeUnderLock(&Input::capture, nullptr);
    if (former != nullptr && peekWindow(former) != nullptr)
    {
        SendMessageW(former, WM_CAPTURECHANGED, 0, 0);
    }
    return TRUE;
}

HWND GetCapture()
{
    return ownOnly(readUnderLock(&Input::capture));
}

HWND GetForegroundWindow()
{
    const HWND active = readUnderLock(&Input::active);
    return active != nullptr && peekWindow(active) != nullptr ? active : nullptr;
}

HWND GetActiveWindow()
{
    return ownOnly(readUnderLock(&Input::active));
}

BOOL SetForegroundWindow(HWND window)
{
    const HWND top = screenWindowOf(window);
    if (!canActivate(top))
    {
        return FALSE;
    }
    activate(top);
    return TRUE;
}
