// The calls that make and end device contexts, select into them, and set how they draw.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/device_context.h"
#include "platform/linux/device_state.h"
#include "platform/linux/screen_link.h"

#include <utility>

using namespace zb::internal;

namespace
{
HDC insertContext(std::shared_ptr<DeviceContext> context)
{
    return static_cast<HDC>(insertHandle(std::move(context)));
}

bool refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

/// Ends a context of this kind only: the two calls that end contexts don't stand in for each other.
bool endContext(HDC context, bool memory)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return false;
    }
    if (found->isMemory() != memory)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    if (removeHandle(context, HandleKind::DeviceContext) == nullptr)
    {
        return false;
    }
    if (!memory && found->isTouched())
    {
        screenDrawn(found->surface(), found->system());
    }
    found->releaseBitmap();
    return true;
}
} // namespace

int ReleaseDC(HWND, HDC context)
{
    return endContext(context, false) ? 1 : 0;
}

HDC CreateCompatibleDC(HDC like)
{
    if (like != nullptr && contextOf(like) == nullptr)
    {
        return nullptr;
    }
    return insertContext(std::make_shared<DeviceContext>());
}

BOOL DeleteDC(HDC context)
{
    return endContext(context, true) ? TRUE : FALSE;
}

int SaveDC(HDC context)
{
    const auto found = contextOf(context);
    return found == nullptr ? 0 : found->save();
}

BOOL RestoreDC(HDC context, int saved)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    return found->restore(saved) || refuse() ? TRUE : FALSE;
}

int GetDeviceCaps(HDC context, int index)
{
    if (contextOf(context) == nullptr)
    {
        return 0;
    }
    const zb::ScreenOptions screen = currentScreen();
    switch (index)
    {
    case HORZRES:
        return screen.width;
    case VERTRES:
        return screen.height;
    case BITSPIXEL:
        return 32;
    case PLANES:
        return 1;
    case LOGPIXELSX:
    case LOGPIXELSY:
        return screen.dotsPerInch;
    default:
        return 0;
    }
}

namespace
{
/// Puts the object in the place of the one that is selected, which is returned.
template <typename T>
HGDIOBJ replace(std::shared_ptr<T> &place, std::shared_ptr<HandleObject> object)
{
    HGDIOBJ former = place->handle();
    place = std::static_pointer_cast<T>(std::move(object));
    return former;
}

HGDIOBJ replaceBitmap(DeviceContext &context, std::shared_ptr<HandleObject> object)
{
    HGDIOBJ former = context.state().bitmap->handle();
    if (!context.selectBitmap(std::static_pointer_cast<BitmapObject>(std::move(object))))
    {
        refuse();
        return nullptr;
    }
    return former;
}
} // namespace

HGDIOBJ SelectObject(HDC context, HGDIOBJ object)
{
    const auto found = contextOf(context);
    auto selected = found == nullptr ? nullptr : findHandle(object);
    if (selected == nullptr)
    {
        return nullptr;
    }
    DeviceContext::State &state = found->changeable();
    switch (selected->kind())
    {
    case HandleKind::Font:
        return replace(state.font, std::move(selected));
    case HandleKind::Bitmap:
        return replaceBitmap(*found, std::move(selected));
    case HandleKind::Pen:
        return replace(state.pen, std::move(selected));
    case HandleKind::Brush:
        return replace(state.brush, std::move(selected));
    default:
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
}

HGDIOBJ GetCurrentObject(HDC context, UINT kind)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return nullptr;
    }
    const DeviceContext::State &state = found->state();
    switch (kind)
    {
    case OBJ_PEN:
        return state.pen->handle();
    case OBJ_BRUSH:
        return state.brush->handle();
    case OBJ_FONT:
        return state.font->handle();
    case OBJ_BITMAP:
        return state.bitmap->handle();
    default:
        refuse();
        return nullptr;
    }
}

int SetBkMode(HDC context, int mode)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return 0;
    }
    if (mode != TRANSPARENT && mode != OPAQUE)
    {
        refuse();
        return 0;
    }
    return std::exchange(found->changeable().backMode, mode);
}

int GetBkMode(HDC context)
{
    const auto found = contextOf(context);
    return found == nullptr ? 0 : found->state().backMode;
}

COLORREF SetBkColor(HDC context, COLORREF color)
{
    const auto found = contextOf(context);
    return found == nullptr ? CLR_INVALID : std::exchange(found->changeable().backColor, plainColor(color));
}

COLORREF GetBkColor(HDC context)
{
    const auto found = contextOf(context);
    return found == nullptr ? CLR_INVALID : found->state().backColor;
}

COLORREF SetTextColor(HDC context, COLORREF color)
{
    const auto found = contextOf(context);
    return found == nullptr ? CLR_INVALID : std::exchange(found->changeable().textColor, plainColor(color));
}

COLORREF GetTextColor(HDC context)
{
    const auto found = contextOf(context);
    return found == nullptr ? CLR_INVALID : found->state().textColor;
}

UINT SetTextAlign(HDC context, UINT align)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return GDI_ERROR;
    }
    constexpr UINT known = TA_RIGHT | TA_CENTER | TA_BOTTOM | TA_BASELINE;
    if ((align & ~known) != 0)
    {
        refuse();
        return GDI_ERROR;
    }
    return std::exchange(found->changeable().textAlign, align);
}
