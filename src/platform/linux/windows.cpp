// Windows: making, destroying, their words and their texts.
#include "platform/linux/input_state.h"
#include "platform/linux/menu_state.h"
#include "platform/linux/windows_change.h"
#include "platform/linux/windows_frame.h"
#include "platform/linux/windows_paint.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace zb::internal
{
namespace
{
constexpr DWORD errorCannotFindClass = 1407;
constexpr DWORD errorInvalidIndex = 1413;

/// Removes a window, without messages, when its procedure throws.
class RemovalOnUnwind
{
  public:
    explicit RemovalOnUnwind(HWND window) : m_window(window)
    {
    }
    ~RemovalOnUnwind()
    {
        if (m_window != nullptr)
        {
            removeWindow(m_window);
        }
    }
    RemovalOnUnwind(const RemovalOnUnwind &) = delete;
    RemovalOnUnwind &operator=(const RemovalOnUnwind &) = delete;
    void dismiss()
    {
        m_window = nullptr;
    }

  private:
    HWND m_window;
};

HWND refuse(DWORD error)
{
    SetLastError(error);
    return nullptr;
}

/// Puts the new window into table, queue and tree; null with last error when it can't be.
HWND enter(const std::shared_ptr<WindowObject> &object, HWND parent)
{
    const auto above = parent == nullptr ? nullptr : findWindow(parent);
    if (parent != nullptr && above == nullptr)
    {
        return nullptr;
    }
    const auto window = static_cast<HWND>(insertHandle(object));
    if (window == nullptr)
    {
        return nullptr;
    }
    object->type()->windows.fetch_add(1, std::memory_order_relaxed);
    if (!object->owner()->queue().addWindow(window))
    {
        // The thread was terminated in these very steps; its next one is its last.
        removeWindowOfEndedThread(window);
        return nullptr;
    }
    if (above != nullptr && !adopt(above, parent, window, *object))
    {
        removeWindow(window);
        return refuse(ERROR_INVALID_PARAMETER);
    }
    return window;
}

/// WM_NCCREATE and WM_CREATE; null when the window refuses or has destroyed itself in them.
HWND introduce(HWND window, CREATESTRUCTW &creation)
{
    RemovalOnUnwind removal(window);
    const auto lParam = reinterpret_cast<LPARAM>(&creation);
    if (callWindow(window, WM_NCCREATE, 0, lParam) == 0)
    {
        callWindow(window, WM_NCDESTROY, 0, 0);
        return nullptr;
    }
    const LRESULT answer = callWindow(window, WM_CREATE, 0, lParam);
    removal.dismiss();
    if (answer == -1)
    {
        destroyOwnWindow(window);
        return nullptr;
    }
    return IsWindow(window) != FALSE ? window : nullptr;
}

std::vector<HWND> childrenOf(WindowObject &object)
{
    const std::lock_guard guard(treeLock());
    return object.children;
}

/// False when somebody is at it already.
bool beginDestroying(WindowObject &object)
{
    const std::lock_guard guard(treeLock());
    return !std::exchange(object.destroying, true);
}

std::atomic<LONG_PTR> *wordOf(WindowObject &object, int index)
{
    switch (index)
    {
    case GWL_USERDATA:
        return &object.userData;
    case GWL_STYLE:
        return &object.style;
    case GWL_EXSTYLE:
        return &object.exStyle;
    case GWL_ID:
        return &object.id;
    default:
        return nullptr;
    }
}

/// It leaves the screen before its procedure hears of its end.
void hideForGood(HWND window, WindowObject &object)
{
    leaveInput(window);
    Repaints repaints;
    {
        const std::lock_guard guard(treeLock());
        Region shown = shownRegion(window, object);
        object.style.fetch_and(~static_cast<LONG_PTR>(WS_VISIBLE));
        repaints.expose(std::move(shown));
    }
    repaints.tell();
}

/// Where a new window lies: CW_USEDEFAULT of a window of the screen is all of it.
Box placeOf(bool isChild, int x, int y, int width, int height)
{
    if (x == CW_USEDEFAULT)
    {
        x = 0;
        y = 0;
    }
    const int left = isChild ? 0 : GetSystemMetrics(SM_CXSCREEN) - x;
    const int below = isChild ? 0 : GetSystemMetrics(SM_CYSCREEN) - y;
    width = width == CW_USEDEFAULT ? left : width;
    height = height == CW_USEDEFAULT ? below : height;
    return {x, y, x + std::clamp(width, 0, 32767), y + std::clamp(height, 0, 32767)};
}

/// A window that has a place is told of it, and shown when it is made so.
void presentNew(HWND window, const WindowObject &object, DWORD style)
{
    WINDOWPOS place{window, nullptr, 0, 0, 0, 0, 0};
    bool hasPlace = false;
    {
        const std::lock_guard guard(treeLock());
        hasPlace = !object.place.isEmpty();
    }
    if (hasPlace)
    {
        tellPlaceChanged(window, place);
    }
    if ((style & WS_VISIBLE) != 0 && IsWindow(window) != FALSE)
    {
        ShowWindow(window, SW_SHOW);
    }
}

LRESULT copyText(const std::u16string &text, WPARAM size, WCHAR *buffer)
{
    if (size == 0 || buffer == nullptr)
    {
        return 0;
    }
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length * sizeof(WCHAR));
    buffer[length] = 0;
    return static_cast<LRESULT>(length);
}

LRESULT paintNothing(HWND window)
{
    PAINTSTRUCT paint{};
    BeginPaint(window, &paint);
    EndPaint(window, &paint);
    return 0;
}

LRESULT setRedraw(HWND window, bool redraw)
{
    if (const auto object = findWindow(window))
    {
        const std::lock_guard guard(treeLock());
        object->redraw = redraw;
    }
    return 0;
}

LRESULT defaultText(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return 0;
    }
    switch (message)
    {
    case WM_SETTEXT:
        object->setText(reinterpret_cast<const WCHAR *>(lParam));
        if ((object->style.load() & static_cast<LONG_PTR>(WS_CAPTION)) == static_cast<LONG_PTR>(WS_CAPTION))
        {
            paintFrame(window);
        }
        return TRUE;
    case WM_GETTEXT:
        return copyText(object->text(), wParam, reinterpret_cast<WCHAR *>(lParam));
    default:
        return static_cast<LRESULT>(object->text().size());
    }
}
} // namespace

void destroyOwnWindow(HWND window)
{
    const auto object = findWindow(window);
    if (object == nullptr || !beginDestroying(*object))
    {
        return;
    }
    const RemovalOnUnwind removal(window);
    hideForGood(window, *object);
    for (HWND child : childrenOf(*object))
    {
        destroyAnyWindow(child);
    }
    callWindow(window, WM_DESTROY, 0, 0);
    callWindow(window, WM_NCDESTROY, 0, 0);
}
} // namespace zb::internal

using namespace zb::internal;

HWND CreateWindowExW(DWORD exStyle, const WCHAR *className, const WCHAR *text, DWORD style, int x, int y, int width,
                     int height, HWND parent, void *menu, HINSTANCE instance, void *parameter)
{
    stopHere();
    auto type = findWindowClass(className);
    if (type == nullptr)
    {
        return refuse(errorCannotFindClass);
    }
    const auto object = std::make_shared<WindowObject>(std::move(type), currentThread().shared_from_this());
    object->isChild = (style & WS_CHILD) != 0 && parent != nullptr;
    object->style = static_cast<LONG_PTR>(style & ~WS_VISIBLE);
    object->exStyle = static_cast<LONG_PTR>(exStyle);
    object->id = reinterpret_cast<LONG_PTR>(menu);
    object->setText(text);
    const HWND window = enter(object, parent);
    if (window == nullptr)
    {
        return nullptr;
    }
    placeNew(window, *object, placeOf(object->isChild, x, y, width, height));
    CREATESTRUCTW creation{parameter, instance,  menu,   parent, height, width, y, x, static_cast<LONG>(style),
                           text,      className, exStyle};
    if (introduce(window, creation) == nullptr)
    {
        return nullptr;
    }
    presentNew(window, *object, style);
    return IsWindow(window) != FALSE ? window : nullptr;
}

BOOL DestroyWindow(HWND window)
{
    stopHere();
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return FALSE;
    }
    if (!object->isOwn())
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    destroyOwnWindow(window);
    return TRUE;
}

BOOL IsWindow(HWND window)
{
    return findWindow(window) != nullptr ? TRUE : FALSE;
}

HWND GetParent(HWND window)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(treeLock());
    return object->parent;
}

DWORD GetWindowThreadProcessId(HWND window, DWORD *process)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return 0;
    }
    if (process != nullptr)
    {
        *process = static_cast<DWORD>(getpid());
    }
    return object->owner()->id();
}

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_NCCREATE:
        return TRUE;
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
        return defaultText(window, message, wParam, lParam);
    case WM_CLOSE:
        DestroyWindow(window);
        return 0;
    case WM_PAINT:
        return paintNothing(window);
    case WM_ERASEBKGND:
        return eraseBackground(window, reinterpret_cast<HDC>(wParam)) ? 1 : 0;
    case WM_NCPAINT:
        paintFrame(window);
        return 0;
    case WM_NCLBUTTONDOWN:
        penOnFrame(window, wParam, lParam);
        return 0;
    case WM_SYSCOMMAND:
        if (wParam == pressMenuBarCommand)
        {
            pressMenuBar(window, static_cast<int>(lParam));
        }
        return 0;
    case WM_WINDOWPOSCHANGED:
        return tellPlaceChanged(window, *reinterpret_cast<const WINDOWPOS *>(lParam));
    case WM_ACTIVATE:
        focusOnActivation(window, wParam);
        paintFrame(window);
        return 0;
    case WM_SETREDRAW:
        return setRedraw(window, wParam != 0);
    case WM_MOUSEWHEEL:
        // Up to who scrolls.
        return (GetWindowLongW(window, GWL_STYLE) & static_cast<LONG_PTR>(WS_CHILD)) != 0
                   ? SendMessageW(GetParent(window), message, wParam, lParam)
                   : 0;
    default:
        return 0;
    }
}

LONG_PTR GetWindowLongW(HWND window, int index)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return 0;
    }
    if (index == GWL_WNDPROC)
    {
        return reinterpret_cast<LONG_PTR>(object->procedure.load(std::memory_order_acquire));
    }
    if (const auto *word = wordOf(*object, index))
    {
        return word->load(std::memory_order_acquire);
    }
    LONG_PTR value = 0;
    if (!object->readExtra(index, value))
    {
        SetLastError(errorInvalidIndex);
    }
    return value;
}

LONG_PTR SetWindowLongW(HWND window, int index, LONG_PTR value)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return 0;
    }
    if (index == GWL_WNDPROC)
    {
        return reinterpret_cast<LONG_PTR>(object->procedure.exchange(reinterpret_cast<WNDPROC>(value)));
    }
    if (auto *word = wordOf(*object, index))
    {
        return word->exchange(value);
    }
    LONG_PTR former = 0;
    if (!object->writeExtra(index, value, former))
    {
        SetLastError(errorInvalidIndex);
    }
    return former;
}

BOOL SetWindowTextW(HWND window, const WCHAR *text)
{
    return static_cast<BOOL>(SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextW(HWND window, WCHAR *buffer, int size)
{
    if (buffer == nullptr || size <= 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    *buffer = 0;
    return static_cast<int>(
        SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(buffer)));
}

int GetWindowTextLengthW(HWND window)
{
    return static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
}
