// Asking where windows lie and how they stand to each other.
#include "platform/linux/windows_place.h"

#include <algorithm>

using namespace zb::internal;

namespace
{
RECT rectOf(const Box &box)
{
    return {box.left, box.top, box.right, box.bottom};
}

bool has(HWND window, DWORD style)
{
    const auto object = findWindow(window);
    return object != nullptr && (object->style.load() & static_cast<LONG_PTR>(style)) != 0;
}

/// The corner of a window's client area on the screen; null is the screen's own. False for a window that is gone.
bool cornerOf(HWND window, POINT &corner)
{
    corner = {0, 0};
    if (window == nullptr)
    {
        return true;
    }
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return false;
    }
    const std::lock_guard guard(treeLock());
    const Box client = clientBox(*object);
    corner = {client.left, client.top};
    return true;
}

HWND neighbour(const std::vector<HWND> &siblings, HWND window, UINT which)
{
    if (siblings.empty())
    {
        return nullptr;
    }
    const auto found = std::ranges::find(siblings, window);
    switch (which)
    {
    case GW_HWNDFIRST:
        return siblings.front();
    case GW_HWNDLAST:
        return siblings.back();
    case GW_HWNDNEXT:
        return found == siblings.end() || found + 1 == siblings.end() ? nullptr : *(found + 1);
    default:
        return found == siblings.end() || found == siblings.begin() ? nullptr : *(found - 1);
    }
}

/// Those that lie in their parent, not those that it owns.
std::vector<HWND> childrenIn(const WindowObject &object)
{
    std::vector<HWND> inside;
    std::ranges::copy_if(object.children, std::back_inserter(inside),
                         [](HWND child)
                         {
                             const auto below = peekWindow(child);
                             return below != nullptr && below->isChild;
                         });
    return inside;
}

std::vector<HWND> siblingsIn(const WindowObject &object)
{
    if (!object.isChild)
    {
        return screenWindows();
    }
    const auto parent = peekWindow(object.parent);
    return parent == nullptr ? std::vector<HWND>() : childrenIn(*parent);
}
} // namespace

BOOL GetWindowRect(HWND window, RECT *rectangle)
{
    const auto object = findWindow(window);
    if (object == nullptr || rectangle == nullptr)
    {
        return FALSE;
    }
    const std::lock_guard guard(treeLock());
    *rectangle = rectOf(windowBox(*object));
    return TRUE;
}

BOOL GetClientRect(HWND window, RECT *rectangle)
{
    const auto object = findWindow(window);
    if (object == nullptr || rectangle == nullptr)
    {
        return FALSE;
    }
    const std::lock_guard guard(treeLock());
    const Box client = clientBox(*object);
    *rectangle = {0, 0, client.width(), client.height()};
    return TRUE;
}

int MapWindowPoints(HWND from, HWND to, POINT *points, UINT count)
{
    POINT source{};
    POINT target{};
    if ((points == nullptr && count != 0) || !cornerOf(from, source) || !cornerOf(to, target))
    {
        return 0;
    }
    const int x = source.x - target.x;
    const int y = source.y - target.y;
    for (UINT i = 0; i < count; ++i)
    {
        points[i].x += x;
        points[i].y += y;
    }
    return static_cast<int>(MAKELONG(static_cast<WORD>(x), static_cast<WORD>(y)));
}

BOOL ClientToScreen(HWND window, POINT *point)
{
    POINT corner{};
    if (point == nullptr || window == nullptr || !cornerOf(window, corner))
    {
        return FALSE;
    }
    *point = {point->x + corner.x, point->y + corner.y};
    return TRUE;
}

BOOL ScreenToClient(HWND window, POINT *point)
{
    POINT corner{};
    if (point == nullptr || window == nullptr || !cornerOf(window, corner))
    {
        return FALSE;
    }
    *point = {point->x - corner.x, point->y - corner.y};
    return TRUE;
}

BOOL AdjustWindowRectEx(RECT *rectangle, DWORD style, BOOL, DWORD exStyle)
{
    if (rectangle == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const Insets frame = frameOf(style & ~(WS_VSCROLL | WS_HSCROLL), exStyle);
    *rectangle = {rectangle->left - frame.left, rectangle->top - frame.top, rectangle->right + frame.right,
                  rectangle->bottom + frame.bottom};
    return TRUE;
}

BOOL IsWindowVisible(HWND window)
{
    HWND one = window;
    while (one != nullptr)
    {
        const auto object = findWindow(one);
        if (object == nullptr || (object->style.load() & static_cast<LONG_PTR>(WS_VISIBLE)) == 0)
        {
            return FALSE;
        }
        const std::lock_guard guard(treeLock());
        one = object->isChild ? object->parent : nullptr;
    }
    return window != nullptr ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND window)
{
    return findWindow(window) != nullptr && !has(window, WS_DISABLED) ? TRUE : FALSE;
}

HWND GetWindow(HWND window, UINT which)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(treeLock());
    if (which == GW_OWNER)
    {
        return object->isChild ? nullptr : object->parent;
    }
    if (which == GW_CHILD)
    {
        const std::vector<HWND> inside = childrenIn(*object);
        return inside.empty() ? nullptr : inside.front();
    }
    if (which > GW_CHILD)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return neighbour(siblingsIn(*object), window, which);
}

HWND GetDlgItem(HWND parent, int id)
{
    const auto object = findWindow(parent);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(treeLock());
    const std::vector<HWND> inside = childrenIn(*object);
    const auto found = std::ranges::find_if(inside,
                                            [id](HWND child)
                                            {
                                                const auto below = peekWindow(child);
                                                return below != nullptr && static_cast<int>(below->id.load()) == id;
                                            });
    if (found == inside.end())
    {
        constexpr DWORD errorControlNotFound = 1421;
        SetLastError(errorControlNotFound);
        return nullptr;
    }
    return *found;
}

int GetDlgCtrlID(HWND window)
{
    const auto object = findWindow(window);
    return object == nullptr ? 0 : static_cast<int>(object->id.load());
}

BOOL IsChild(HWND parent, HWND window)
{
    HWND one = window;
    while (one != nullptr)
    {
        const auto object = peekWindow(one);
        if (object == nullptr)
        {
            return FALSE;
        }
        const std::lock_guard guard(treeLock());
        one = object->isChild ? object->parent : nullptr;
        if (one != nullptr && one == parent)
        {
            return TRUE;
        }
    }
    return FALSE;
}

HWND WindowFromPoint(POINT point)
{
    const std::lock_guard guard(treeLock());
    return windowAt(point.x, point.y).handle;
}

HWND ChildWindowFromPoint(HWND parent, POINT point)
{
    const auto object = findWindow(parent);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(treeLock());
    const Box client = clientBox(*object);
    if (point.x < 0 || point.y < 0 || point.x >= client.width() || point.y >= client.height())
    {
        return nullptr;
    }
    for (const HWND child : childrenIn(*object))
    {
        const auto below = peekWindow(child);
        if (isShownItself(*below) && point.x >= below->place.left && point.x < below->place.right &&
            point.y >= below->place.top && point.y < below->place.bottom)
        {
            return child;
        }
    }
    return parent;
}
