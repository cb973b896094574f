// What hosts ask of a window's scroll bars and tell them.
#include "platform/controls.h"
#include "platform/linux/scroll_bars.h"

namespace zb::internal
{
namespace
{
constexpr DWORD styleOf(int bar)
{
    return bar == SB_VERT ? WS_VSCROLL : WS_HSCROLL;
}

bool isBar(int bar)
{
    if (bar == SB_HORZ || bar == SB_VERT)
    {
        return true;
    }
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

/// Shows or hides a bar; whether that changed anything.
bool setShown(WindowObject &object, int bar, bool shown)
{
    const auto bit = static_cast<LONG_PTR>(styleOf(bar));
    const LONG_PTR former = shown ? object.style.fetch_or(bit) : object.style.fetch_and(~bit);
    return ((former & bit) != 0) != shown;
}

void refreshFrame(HWND window, bool sizeChanged)
{
    if (sizeChanged)
    {
        SetWindowPos(window, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
        return;
    }
    // The bar alone is drawn, at once: it follows the content that has just moved.
    SendMessageW(window, WM_NCPAINT, 1, 0);
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

int SetScrollInfo(HWND window, int bar, const SCROLLINFO *info, BOOL redraw)
{
    if (bar == SB_CTL)
    {
        return static_cast<int>(
            SendMessageW(window, SBM_SETSCROLLINFO, static_cast<WPARAM>(redraw), reinterpret_cast<LPARAM>(info)));
    }
    const auto object = findWindow(window);
    if (object == nullptr || info == nullptr || !isBar(bar))
    {
        return 0;
    }
    bool sizeChanged = false;
    int position = 0;
    {
        const std::lock_guard guard(treeLock());
        ScrollBar &one = object->bars[bar];
        takeOver(one, *info);
        position = one.position;
        if ((info->fMask & (SIF_RANGE | SIF_PAGE)) != 0)
        {
            const bool useful = canScroll(one);
            one.disabled = !useful && (info->fMask & SIF_DISABLENOSCROLL) != 0;
            sizeChanged = setShown(*object, bar, useful || one.disabled);
        }
    }
    if (redraw != FALSE || sizeChanged)
    {
        refreshFrame(window, sizeChanged);
    }
    return position;
}

BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO *info)
{
    if (bar == SB_CTL)
    {
        return static_cast<BOOL>(SendMessageW(window, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(info)));
    }
    const auto object = findWindow(window);
    if (object == nullptr || info == nullptr || !isBar(bar))
    {
        return FALSE;
    }
    const std::lock_guard guard(treeLock());
    readInto(object->bars[bar], *info);
    return TRUE;
}

BOOL ShowScrollBar(HWND window, int bar, BOOL show)
{
    if (bar == SB_CTL)
    {
        ShowWindow(window, show != FALSE ? SW_SHOW : SW_HIDE);
        return IsWindow(window);
    }
    const auto object = findWindow(window);
    if (object == nullptr || (bar != SB_BOTH && !isBar(bar)))
    {
        return FALSE;
    }
    bool changed = false;
    for (const int one : {SB_HORZ, SB_VERT})
    {
        if (bar == SB_BOTH || bar == one)
        {
            changed = setShown(*object, one, show != FALSE) || changed;
        }
    }
    if (changed)
    {
        refreshFrame(window, true);
    }
    return TRUE;
}
