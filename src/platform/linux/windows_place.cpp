#include "platform/linux/windows_place.h"

#include "platform/linux/device_context.h"
#include "platform/linux/device_state.h"
#include "platform/linux/screen_link.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Below the lock of the tree, like the windows it lists.
std::vector<HWND> theScreenWindows;

Box shifted(const Box &box, int x, int y)
{
    return {box.left + x, box.top + y, box.right + x, box.bottom + y};
}

void shift(Region &region, int x, int y)
{
    pixman_region32_translate(region.get(), x, y);
}

void unite(Region &region, const Region &other)
{
    pixman_region32_union(region.get(), region.get(), other.get());
}

/// What bounds a window from outside: its parent's client area, or the screen.
Box surroundings(const WindowObject &object)
{
    if (object.isChild)
    {
        if (const auto parent = peekWindow(object.parent))
        {
            return clientBox(*parent);
        }
    }
    const auto screen = currentScreen();
    return {0, 0, screen.width, screen.height};
}

void subtractShown(Region &region, HWND window)
{
    const auto object = peekWindow(window);
    if (object != nullptr && isShownItself(*object))
    {
        region.subtract(Region(windowBox(*object)));
    }
}

/// Takes away what lies above the window among its siblings.
void subtractSiblings(Region &region, HWND window, const WindowObject &object)
{
    const std::vector<HWND> *siblings = siblingsOf(object);
    if (siblings == nullptr)
    {
        return;
    }
    for (const HWND sibling : *siblings)
    {
        if (sibling == window)
        {
            break;
        }
        const auto other = peekWindow(sibling);
        if (other != nullptr && other->isChild == object.isChild)
        {
            subtractShown(region, sibling);
        }
    }
}

/// Under the lock, since a window of another thread may come to lie there right after.
void paintBare(Region region)
{
    const auto screen = region.isEmpty() ? nullptr : screenSurface();
    if (screen == nullptr)
    {
        return;
    }
    const std::uint32_t color = pixelOfColor(GetSysColor(COLOR_BACKGROUND));
    region.intersect(Region(screen->bounds()));
    for (const pixman_box32_t &box : region.boxes())
    {
        for (int y = box.y1; y < box.y2; ++y)
        {
            std::fill(screen->row(y) + box.x1, screen->row(y) + box.x2, color);
        }
    }
}

PlacedWindow childAt(const PlacedWindow &window, int x, int y)
{
    for (const HWND child : window.object->children)
    {
        const PlacedWindow below = placed(child);
        if (!below || !below.object->isChild || !isShownItself(*below.object) ||
            (below.object->style.load() & static_cast<LONG_PTR>(WS_DISABLED)) != 0)
        {
            continue;
        }
        const Box box = windowBox(*below.object).intersected(clientBox(*window.object));
        if (x >= box.left && x < box.right && y >= box.top && y < box.bottom)
        {
            return childAt(below, x, y);
        }
    }
    return window;
}
} // namespace

Insets frameOf(DWORD style, DWORD exStyle)
{
    Insets insets;
    int side = (exStyle & WS_EX_CLIENTEDGE) != 0 ? GetSystemMetrics(SM_CXEDGE) : 0;
    if ((style & WS_CAPTION) != 0)
    {
        side += (style & WS_DLGFRAME) != 0 && (style & WS_BORDER) == 0 ? GetSystemMetrics(SM_CXDLGFRAME)
                                                                       : GetSystemMetrics(SM_CXBORDER);
    }
    insets = {side, side, side, side};
    if ((style & WS_CAPTION) == WS_CAPTION)
    {
        insets.top += GetSystemMetrics(SM_CYCAPTION);
    }
    if ((style & WS_VSCROLL) != 0)
    {
        insets.right += GetSystemMetrics(SM_CXVSCROLL);
    }
    if ((style & WS_HSCROLL) != 0)
    {
        insets.bottom += GetSystemMetrics(SM_CYHSCROLL);
    }
    return insets;
}

std::vector<HWND> &screenWindows()
{
    return theScreenWindows;
}

std::vector<HWND> *siblingsOf(const WindowObject &object)
{
    if (!object.isChild)
    {
        return &theScreenWindows;
    }
    // The list is the parent's, which lives as long as its children do; the lock keeps it from going meanwhile.
    const auto parent = peekWindow(object.parent);
    return parent == nullptr ? nullptr : &parent->children;
}

bool isShownItself(const WindowObject &object)
{
    return (object.style.load(std::memory_order_relaxed) & static_cast<LONG_PTR>(WS_VISIBLE)) != 0 &&
           !object.place.isEmpty();
}

bool isShown(const WindowObject &object)
{
    if (!isShownItself(object))
    {
        return false;
    }
    if (!object.isChild)
    {
        return true;
    }
    const auto parent = peekWindow(object.parent);
    return parent != nullptr && isShown(*parent);
}

Box windowBox(const WindowObject &object)
{
    const auto parent = object.isChild ? peekWindow(object.parent) : nullptr;
    if (parent == nullptr)
    {
        return object.place;
    }
    const Box outer = clientBox(*parent);
    return shifted(object.place, outer.left, outer.top);
}

Insets frameOf(const WindowObject &object)
{
    Insets frame = frameOf(static_cast<DWORD>(object.style.load(std::memory_order_relaxed)),
                           static_cast<DWORD>(object.exStyle.load(std::memory_order_relaxed)));
    frame.bottom += object.menuBar != nullptr ? GetSystemMetrics(SM_CYMENU) : 0;
    return frame;
}

Box clientBox(const WindowObject &object)
{
    const Box box = windowBox(object);
    const Insets frame = frameOf(object);
    Box client{box.left + frame.left, box.top + frame.top, box.right - frame.right, box.bottom - frame.bottom};
    // A window smaller than its frame has no client area, at a place inside it.
    client.left = std::min(client.left, box.right);
    client.top = std::min(client.top, box.bottom);
    client.right = std::max(client.right, client.left);
    client.bottom = std::max(client.bottom, client.top);
    return client;
}

Region shownRegion(HWND window, const WindowObject &object)
{
    if (!isShown(object))
    {
        return Region();
    }
    Region region(windowBox(object).intersected(surroundings(object)));
    subtractSiblings(region, window, object);
    HWND above = object.isChild ? object.parent : nullptr;
    while (above != nullptr && !region.isEmpty())
    {
        const auto parent = peekWindow(above);
        if (parent == nullptr)
        {
            break;
        }
        region.intersect(Region(windowBox(*parent).intersected(surroundings(*parent))));
        subtractSiblings(region, above, *parent);
        above = parent->isChild ? parent->parent : nullptr;
    }
    return region;
}

Region shownClient(HWND window, const WindowObject &object)
{
    Region region = shownRegion(window, object);
    region.intersect(Region(clientBox(object)));
    for (const HWND child : object.children)
    {
        const auto below = peekWindow(child);
        if (below != nullptr && below->isChild)
        {
            subtractShown(region, child);
        }
    }
    return region;
}

PlacedWindow placed(HWND window)
{
    return {window, peekWindow(window)};
}

PlacedWindow windowAt(int x, int y)
{
    for (const HWND window : theScreenWindows)
    {
        const PlacedWindow found = placed(window);
        if (!found || !isShownItself(*found.object))
        {
            continue;
        }
        const Box box = windowBox(*found.object);
        if (x >= box.left && x < box.right && y >= box.top && y < box.bottom)
        {
            return childAt(found, x, y);
        }
    }
    return {};
}

void Repaints::invalidate(HWND window, const std::shared_ptr<WindowObject> &object, const Region &what, bool erase)
{
    const Box client = clientBox(*object);
    Region inside = what;
    inside.intersect(Region(Box{0, 0, client.width(), client.height()}));
    if (inside.isEmpty() || object->destroying)
    {
        return;
    }
    unite(object->update, inside);
    object->erase = object->erase || erase;
    m_windows.push_back({window, object});
}

void Repaints::invalidateAll(HWND window, const std::shared_ptr<WindowObject> &object)
{
    if (!isShownItself(*object))
    {
        return;
    }
    object->frameDirty = true;
    const Box client = clientBox(*object);
    const Region all(Box{0, 0, client.width(), client.height()});
    invalidate(window, object, all, true);
    if (all.isEmpty())
    {
        m_windows.push_back({window, object}); // its frame alone
    }
    for (const HWND child : object->children)
    {
        const auto below = peekWindow(child);
        if (below != nullptr && below->isChild)
        {
            invalidateAll(child, below);
        }
    }
}

void Repaints::exposeWithin(HWND window, const std::shared_ptr<WindowObject> &object, const Region &region)
{
    Region part = region;
    part.intersect(Region(windowBox(*object)));
    if (part.isEmpty())
    {
        return;
    }
    const Box client = clientBox(*object);
    Region frame = part;
    frame.subtract(Region(client));
    if (!frame.isEmpty())
    {
        object->frameDirty = true;
        m_windows.push_back({window, object});
    }
    part.intersect(Region(client));
    for (const HWND child : object->children)
    {
        const auto below = peekWindow(child);
        if (below != nullptr && below->isChild && isShownItself(*below))
        {
            exposeWithin(child, below, part);
            part.subtract(Region(windowBox(*below)));
        }
    }
    shift(part, -client.left, -client.top);
    invalidate(window, object, part, true);
}

void Repaints::expose(Region region)
{
    for (const HWND window : theScreenWindows)
    {
        const auto object = peekWindow(window);
        if (object != nullptr && isShownItself(*object))
        {
            exposeWithin(window, object, region);
            region.subtract(Region(windowBox(*object)));
        }
    }
    paintBare(region);
    unite(m_bare, region);
}

void Repaints::tell()
{
    if (!m_bare.isEmpty())
    {
        if (const auto screen = screenSurface())
        {
            m_bare.intersect(Region(screen->bounds()));
            screenDrawn(*screen, m_bare);
        }
    }
    for (const PlacedWindow &window : m_windows)
    {
        window.object->owner()->queue().wantPaint(window.handle);
    }
    m_windows.clear();
}
} // namespace zb::internal
