// Painting of windows: what is invalid, and contexts that draw on what shows.
#include "platform/linux/windows_paint.h"

#include "platform/linux/device_context.h"

namespace zb::internal
{
namespace
{
RECT rectOf(const Box &box)
{
    return {box.left, box.top, box.right, box.bottom};
}

/// A context that may draw on a region of the screen and counts from the window's client area (or, with its frame,
/// from its own corner).
HDC contextOn(Region region, POINT origin)
{
    auto surface = screenSurface();
    if (surface == nullptr)
    {
        return nullptr;
    }
    region.intersect(Region(surface->bounds()));
    return static_cast<HDC>(
        insertHandle(std::make_shared<DeviceContext>(std::move(surface), origin, std::move(region))));
}

/// The region and origin of a window's client area; nothing shows of one that is gone or not to be redrawn.
struct Canvas
{
    Region region;
    POINT origin{0, 0};
};

Canvas clientCanvas(HWND window, const WindowObject &object)
{
    const Box client = clientBox(object);
    return {object.redraw ? shownClient(window, object) : Region(), {client.left, client.top}};
}

/// What BeginPaint finds and takes out.
struct Due
{
    Canvas canvas;
    Region update; ///< client coordinates
    bool erase = false;
    bool frame = false;
};

Due takeDue(HWND window, WindowObject &object)
{
    const std::lock_guard guard(treeLock());
    Due due;
    due.canvas = clientCanvas(window, object);
    std::swap(due.update, object.update);
    due.erase = std::exchange(object.erase, false);
    due.frame = std::exchange(object.frameDirty, false);
    return due;
}

Region inScreen(Region region, POINT origin)
{
    pixman_region32_translate(region.get(), origin.x, origin.y);
    return region;
}

Region regionOf(const RECT *rectangle)
{
    return rectangle == nullptr
               ? Region(Box{0, 0, longestSide, longestSide})
               : Region(Box{rectangle->left, rectangle->top, rectangle->right, rectangle->bottom});
}
} // namespace

bool needsPaint(HWND window)
{
    const auto object = peekWindow(window);
    if (object == nullptr)
    {
        return false;
    }
    const std::lock_guard guard(treeLock());
    return (!object->update.isEmpty() || object->frameDirty) && isShown(*object);
}

bool eraseBackground(HWND window, HDC context)
{
    const auto object = peekWindow(window);
    if (object == nullptr)
    {
        return false;
    }
    void *background = object->type()->description.hbrBackground;
    const auto number = reinterpret_cast<std::uintptr_t>(background);
    if (number == 0)
    {
        return false;
    }
    RECT box{};
    GetClipBox(context, &box);
    // A small number stands for a colour of the system, counted from 1.
    FillRect(context, &box, number < 0x100 ? GetSysColorBrush(static_cast<int>(number) - 1) : background);
    return true;
}
} // namespace zb::internal

using namespace zb::internal;

HDC GetDC(HWND window)
{
    if (window == nullptr)
    {
        const auto surface = screenSurface();
        return surface == nullptr ? nullptr : contextOn(Region(surface->bounds()), {0, 0});
    }
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return nullptr;
    }
    Canvas canvas;
    {
        const std::lock_guard guard(treeLock());
        canvas = clientCanvas(window, *object);
    }
    return contextOn(std::move(canvas.region), canvas.origin);
}

HDC GetWindowDC(HWND window)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return nullptr;
    }
    Region region;
    Box box;
    {
        const std::lock_guard guard(treeLock());
        box = windowBox(*object);
        Region children = shownRegion(window, *object);
        children.intersect(Region(clientBox(*object)));
        children.subtract(shownClient(window, *object));
        region = object->redraw ? shownRegion(window, *object) : Region();
        region.subtract(children);
    }
    return contextOn(std::move(region), {box.left, box.top});
}

HDC BeginPaint(HWND window, PAINTSTRUCT *paint)
{
    const auto object = findWindow(window);
    if (object == nullptr || paint == nullptr)
    {
        return nullptr;
    }
    if (!object->isOwn())
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    *paint = {};
    Due due = takeDue(window, *object);
    if (due.frame)
    {
        SendMessageW(window, WM_NCPAINT, 1, 0);
    }
    paint->rcPaint = rectOf(due.update.extents());
    Region region = std::move(due.canvas.region);
    region.intersect(inScreen(std::move(due.update), due.canvas.origin));
    paint->hdc = contextOn(std::move(region), due.canvas.origin);
    if (due.erase && paint->hdc != nullptr)
    {
        paint->fErase =
            SendMessageW(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0) == 0 ? TRUE : FALSE;
    }
    return paint->hdc;
}

BOOL EndPaint(HWND window, const PAINTSTRUCT *paint)
{
    return paint != nullptr && ReleaseDC(window, paint->hdc) != 0 ? TRUE : FALSE;
}

BOOL InvalidateRect(HWND window, const RECT *rectangle, BOOL erase)
{
    Repaints repaints;
    if (window == nullptr)
    {
        const std::lock_guard guard(treeLock());
        const auto surface = screenSurface();
        repaints.expose(surface == nullptr ? Region() : Region(surface->bounds()));
    }
    else
    {
        const auto object = findWindow(window);
        if (object == nullptr)
        {
            return FALSE;
        }
        const std::lock_guard guard(treeLock());
        repaints.invalidate(window, object, regionOf(rectangle), erase != FALSE);
    }
    repaints.tell();
    return TRUE;
}

BOOL ValidateRect(HWND window, const RECT *rectangle)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return FALSE;
    }
    const std::lock_guard guard(treeLock());
    object->update.subtract(regionOf(rectangle));
    if (object->update.isEmpty())
    {
        object->erase = false;
    }
    return TRUE;
}

BOOL GetUpdateRect(HWND window, RECT *rectangle, BOOL erase)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return FALSE;
    }
    Box box;
    bool due = false;
    Canvas canvas;
    {
        const std::lock_guard guard(treeLock());
        box = object->update.extents();
        due = erase != FALSE && std::exchange(object->erase, false);
        canvas = clientCanvas(window, *object);
        canvas.region.intersect(inScreen(object->update, canvas.origin));
    }
    if (due)
    {
        const HDC context = contextOn(std::move(canvas.region), canvas.origin);
        SendMessageW(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(context), 0);
        ReleaseDC(window, context);
    }
    if (rectangle != nullptr)
    {
        *rectangle = box.isEmpty() ? RECT{0, 0, 0, 0} : rectOf(box);
    }
    return box.isEmpty() ? FALSE : TRUE;
}

BOOL UpdateWindow(HWND window)
{
    if (findWindow(window) == nullptr)
    {
        return FALSE;
    }
    if (needsPaint(window))
    {
        SendMessageW(window, WM_PAINT, 0, 0);
    }
    return TRUE;
}
