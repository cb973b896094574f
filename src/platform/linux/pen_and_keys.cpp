// Pen and keys on their way from the screen to the windows.
#include "platform/clock.h"
#include "platform/linux/drag_image.h"
#include "platform/linux/input_state.h"
#include "platform/linux/menu_state.h"
#include "platform/linux/scroll_bars.h"
#include "platform/linux/windows_place.h"
#include "platform/screen.h"

#include <cstdlib>

using namespace zb::internal;

namespace
{
constexpr DWORD doubleTapTime = 500; // milliseconds

struct PenState
{
    std::mutex lock;
    POINT place{0, 0};
    bool isDown = false;
    HWND downIn = nullptr; ///< where it went down last
    HWND lastTapped = nullptr;
    POINT lastTap{0, 0};
    DWORD lastTapTime = 0;
};

PenState &pen()
{
    static auto *instance = new PenState;
    return *instance;
}

/// The keys as they were fed. A state is never changed, so that input can keep the one before it.
struct KeyBoard
{
    std::mutex lock; ///< held while input is entered: who asks sees a change of keys and its message, or neither
    std::shared_ptr<const HeldKeys> held = std::make_shared<HeldKeys>();
};

KeyBoard &keyBoard()
{
    static auto *instance = new KeyBoard;
    return *instance;
}

std::size_t indexOf(int key)
{
    return static_cast<unsigned>(key) % HeldKeys().size();
}

/// With the board's lock held. Null and windows that are gone get nothing.
void enter(HWND window, UINT message, WPARAM wParam, LPARAM lParam, const std::shared_ptr<const HeldKeys> &before)
{
    if (const auto object = window == nullptr ? nullptr : peekWindow(window))
    {
        object->owner()->queue().postInput(window, message, wParam, lParam, before);
    }
}

void postInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    KeyBoard &board = keyBoard();
    const std::lock_guard guard(board.lock);
    enter(window, message, wParam, lParam, board.held);
}

/// Gives the key another state and tells the window; the lParam stands for a key that was in the other state before.
void postKey(HWND window, int key, bool down)
{
    constexpr LPARAM wasDown = 1 << 30;
    constexpr auto released = static_cast<LPARAM>(0xC0000001U);
    KeyBoard &board = keyBoard();
    const std::lock_guard guard(board.lock);
    const auto before = board.held;
    auto next = std::make_shared<HeldKeys>(*before);
    next->set(indexOf(key), down);
    board.held = std::move(next);
    const bool repeated = down && before->test(indexOf(key));
    enter(window, down ? WM_KEYDOWN : WM_KEYUP, static_cast<WPARAM>(key),
          down ? 1 | (repeated ? wasDown : 0) : released, before);
}

bool isKeyDown(int key)
{
    KeyBoard &board = keyBoard();
    const std::lock_guard guard(board.lock);
    return board.held->test(indexOf(key));
}

WPARAM heldKeys(bool penIsDown)
{
    return (penIsDown ? MK_LBUTTON : 0) | (isKeyDown(VK_SHIFT) ? MK_SHIFT : 0) |
           (isKeyDown(VK_CONTROL) ? MK_CONTROL : 0);
}

LPARAM packed(POINT point)
{
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

/// Where the pen's message goes: to who has captured it, else to what lies there. A window that is disabled as a whole
/// takes none.
HWND penTarget(POINT point)
{
    if (const HWND capture = capturingWindow())
    {
        return capture;
    }
    const HWND window = WindowFromPoint(point);
    if (window == nullptr)
    {
        // Over the bare screen the pen still ends what it began: its window may not have come to capture it yet.
        PenState &state = pen();
        const std::lock_guard guard(state.lock);
        return state.downIn;
    }
    return IsWindowEnabled(screenWindowOf(window)) != FALSE && IsWindowEnabled(window) != FALSE
               ? window
               : nullptr;
}

void noteDown(HWND window)
{
    PenState &state = pen();
    const std::lock_guard guard(state.lock);
    state.downIn = window;
}

void postPen(HWND window, UINT message, POINT point, bool penIsDown)
{
    ScreenToClient(window, &point);
    postInput(window, message, heldKeys(penIsDown), packed(point));
}

/// Whether this tap follows another one closely enough, in time and place, to make a double one of them.
bool isDoubleTap(HWND window, POINT point)
{
    PenState &state = pen();
    const DWORD now = GetTickCount();
    const std::lock_guard guard(state.lock);
    const bool isDouble = state.lastTapped == window && now - state.lastTapTime <= doubleTapTime &&
                          std::abs(state.lastTap.x - point.x) <= GetSystemMetrics(SM_CXDOUBLECLK) / 2 &&
                          std::abs(state.lastTap.y - point.y) <= GetSystemMetrics(SM_CYDOUBLECLK) / 2;
    // A third tap begins anew.
    state.lastTapped = isDouble ? nullptr : window;
    state.lastTap = point;
    state.lastTapTime = now;
    return isDouble;
}

bool isInClient(HWND window, POINT point)
{
    RECT client{};
    GetClientRect(window, &client);
    ScreenToClient(window, &point);
    return PtInRect(&client, point) != FALSE;
}

UINT tapMessage(HWND window, POINT point)
{
    const auto object = peekWindow(window);
    const bool takesDouble = object != nullptr && (object->type()->description.style & CS_DBLCLKS) != 0;
    return isDoubleTap(window, point) && takesDouble ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN;
}

void notePen(POINT point, bool isDown)
{
    PenState &state = pen();
    const std::lock_guard guard(state.lock);
    state.place = point;
    state.isDown = isDown;
}
} // namespace

bool zb::internal::isPenDown()
{
    PenState &state = pen();
    const std::lock_guard guard(state.lock);
    return state.isDown;
}

void zb::penDown(int x, int y)
{
    const POINT point{x, y};
    notePen(point, true);
    noteDown(nullptr);
    const HWND window = penTarget(point);
    if (window == nullptr)
    {
        return;
    }
    noteDown(window);
    activate(screenWindowOf(window));
    if (capturingWindow() == nullptr && !isInClient(window, point))
    {
        PostMessageW(window, WM_NCLBUTTONDOWN, static_cast<WPARAM>(framePartAt(window, point)), packed(point));
        return;
    }
    postPen(window, tapMessage(window, point), point, true);
}

void zb::penMove(int x, int y)
{
    const POINT point{x, y};
    bool isDown = false;
    {
        PenState &state = pen();
        const std::lock_guard guard(state.lock);
        state.place = point;
        isDown = state.isDown;
    }
    if (const HWND window = penTarget(point))
    {
        postPen(window, WM_MOUSEMOVE, point, isDown);
    }
}

void zb::penUp(int x, int y)
{
    const POINT point{x, y};
    notePen(point, false);
    if (const HWND window = penTarget(point))
    {
        postPen(window, WM_LBUTTONUP, point, false);
    }
    noteDown(nullptr);
}

void zb::turnWheelAt(int steps, int x, int y)
{
    {
        PenState &state = pen();
        const std::lock_guard guard(state.lock);
        state.place = {x, y};
    }
    turnWheel(steps);
}

void zb::turnWheel(int steps)
{
    constexpr int stepSize = 120;
    POINT point{};
    GetCursorPos(&point);
    if (const HWND window = penTarget(point))
    {
        const auto turned = static_cast<WORD>(steps * stepSize);
        postInput(window, WM_MOUSEWHEEL, MAKELONG(static_cast<WORD>(heldKeys(false)), turned), packed(point));
    }
}

void zb::keyDown(int key)
{
    const HWND active = key == VK_F1 || key == VK_F2 ? GetForegroundWindow() : nullptr;
    if (active != nullptr && IsWindowEnabled(active) != FALSE && menuBarOf(active) != nullptr)
    {
        postKey(nullptr, key, true);
        PostMessageW(active, WM_SYSCOMMAND, pressMenuBarCommand, key - VK_F1);
        return;
    }
    postKey(focusedWindow(), key, true);
}

void zb::keyUp(int key)
{
    postKey(focusedWindow(), key, false);
}

void zb::typeCharacter(WCHAR character)
{
    postInput(focusedWindow(), WM_CHAR, character, 1);
}

/// What waits for the thread has not happened yet for it: keys that were let go since would else have been up already
/// when it takes what was typed with them.
SHORT GetKeyState(int key)
{
    KeyBoard &board = keyBoard();
    const std::lock_guard guard(board.lock);
    const auto before = currentThread().queue().keysBeforeInput();
    const HeldKeys &held = before == nullptr ? *board.held : *before;
    return key >= 0 && held.test(indexOf(key)) ? static_cast<SHORT>(0x8000) : SHORT{0};
}

BOOL GetCursorPos(POINT *point)
{
    if (point == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    PenState &state = pen();
    const std::lock_guard guard(state.lock);
    *point = state.place;
    return TRUE;
}

int zb::screenOrientation()
{
    return GetSystemMetrics(SM_CXSCREEN) > GetSystemMetrics(SM_CYSCREEN) ? 1 : 0;
}

HBITMAP zb::captureScreen()
{
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP copy = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ former = SelectObject(memory, copy);
    BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
    internal::drawDragged(memory);
    SelectObject(memory, former);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return copy;
}
