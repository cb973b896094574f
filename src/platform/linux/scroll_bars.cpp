// Scroll bars and the frame around a window: where their parts lie, and how a bar looks.
#include "platform/linux/scroll_bars.h"

#include "platform/controls.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// What can be scrolled: from low to this.
int highest(const ScrollBar &bar)
{
    return std::max(bar.low, bar.high - std::max(bar.page - 1, 0));
}

LONGLONG scaled(LONGLONG value, LONGLONG by, LONGLONG of)
{
    return of == 0 ? 0 : (value * by + of / 2) / of;
}
} // namespace

WORD codeAt(const BarLayout &layout, int offset)
{
    if (offset < layout.arrow)
    {
        return SB_LINEUP;
    }
    if (offset >= layout.length - layout.arrow)
    {
        return SB_LINEDOWN;
    }
    if (offset < layout.thumbStart)
    {
        return SB_PAGEUP;
    }
    return offset >= layout.thumbStart + layout.thumbLength ? SB_PAGEDOWN : SB_THUMBTRACK;
}

BarLayout layoutOf(const ScrollBar &bar, int length, int breadth)
{
    BarLayout layout;
    layout.length = length;
    layout.arrow = std::min(breadth, length / 2);
    const int track = length - 2 * layout.arrow;
    const LONGLONG range = static_cast<LONGLONG>(bar.high) - bar.low + 1;
    if (track <= 0 || highest(bar) <= bar.low)
    {
        return layout;
    }
    // Never so small that a finger can't hold it, never longer than the track.
    const auto wanted = bar.page > 0 ? static_cast<int>(scaled(track, bar.page, range)) : breadth;
    layout.thumbLength = std::min(std::max(wanted, breadth), track);
    const LONGLONG room = track - layout.thumbLength;
    layout.thumbStart =
        layout.arrow + static_cast<int>(scaled(room, static_cast<LONGLONG>(bar.position) - bar.low,
                                               static_cast<LONGLONG>(highest(bar)) - bar.low));
    return layout;
}

int positionAt(const ScrollBar &bar, const BarLayout &layout, int thumbStart)
{
    const int room = layout.length - 2 * layout.arrow - layout.thumbLength;
    const int offset = std::clamp(thumbStart - layout.arrow, 0, std::max(room, 0));
    return bar.low +
           static_cast<int>(scaled(offset, static_cast<LONGLONG>(highest(bar)) - bar.low, std::max(room, 1)));
}

void takeOver(ScrollBar &bar, const SCROLLINFO &info)
{
    if ((info.fMask & SIF_RANGE) != 0)
    {
        bar.low = info.nMin;
        bar.high = std::max(info.nMin, info.nMax);
    }
    if ((info.fMask & SIF_PAGE) != 0)
    {
        bar.page = static_cast<int>(std::min<UINT>(info.nPage, 0x7FFFFFFF));
    }
    bar.page = static_cast<int>(
        std::clamp<LONGLONG>(bar.page, 0, static_cast<LONGLONG>(bar.high) - bar.low + 1));
    if ((info.fMask & SIF_POS) != 0)
    {
        bar.position = info.nPos;
    }
    bar.position = std::clamp(bar.position, bar.low, highest(bar));
}

void readInto(const ScrollBar &bar, SCROLLINFO &info)
{
    if ((info.fMask & SIF_RANGE) != 0)
    {
        info.nMin = bar.low;
        info.nMax = bar.high;
    }
    if ((info.fMask & SIF_PAGE) != 0)
    {
        info.nPage = static_cast<UINT>(bar.page);
    }
    if ((info.fMask & SIF_POS) != 0)
    {
        info.nPos = bar.position;
    }
    if ((info.fMask & SIF_TRACKPOS) != 0)
    {
        info.nTrackPos = bar.track;
    }
}

bool canScroll(const ScrollBar &bar)
{
    return highest(bar) > bar.low;
}

FrameLayout layoutOf(const WindowObject &object)
{
    const auto style = static_cast<DWORD>(object.style.load());
    const Box outer = windowBox(object);
    const Insets all = frameOf(object);
    FrameLayout layout;
    layout.whole = {0, 0, outer.width(), outer.height()};
    layout.border = all.left;
    const bool vertical = (style & WS_VSCROLL) != 0;
    const bool horizontal = (style & WS_HSCROLL) != 0;
    const Box client{all.left, all.top, layout.whole.right - all.right, layout.whole.bottom - all.bottom};
    if ((style & WS_CAPTION) == WS_CAPTION)
    {
        layout.caption = {all.left, all.left, layout.whole.right - all.left, all.top};
        if ((style & WS_SYSMENU) != 0)
        {
            layout.closeButton = layout.caption;
            layout.closeButton.left = layout.caption.right - layout.caption.height();
        }
    }
    const int menuHeight = object.menuBar != nullptr ? GetSystemMetrics(SM_CYMENU) : 0;
    const int lowest = layout.whole.bottom - all.left - menuHeight;
    if (menuHeight != 0)
    {
        layout.menuBar = {all.left, lowest, layout.whole.right - all.left, lowest + menuHeight};
    }
    if (vertical)
    {
        layout.verticalBar = {client.right, client.top, layout.whole.right - all.left, client.bottom};
    }
    if (horizontal)
    {
        layout.horizontalBar = {client.left, client.bottom, client.right, lowest};
    }
    if (vertical && horizontal)
    {
        layout.corner = {client.right, client.bottom, layout.whole.right - all.left, lowest};
    }
    return layout;
}

FramePart framePartAt(HWND window, POINT point)
{
    const auto object = peekWindow(window);
    if (object == nullptr)
    {
        return FramePart::Nowhere;
    }
    const std::lock_guard guard(treeLock());
    const Box outer = windowBox(*object);
    const FrameLayout layout = layoutOf(*object);
    const int x = point.x - outer.left;
    const int y = point.y - outer.top;
    const auto holds = [x, y](const Box &box)
    { return x >= box.left && x < box.right && y >= box.top && y < box.bottom; };
    const Box client = clientBox(*object);
    if (point.x >= client.left && point.x < client.right && point.y >= client.top && point.y < client.bottom)
    {
        return FramePart::Client;
    }
    const std::pair<const Box &, FramePart> parts[] = {{layout.closeButton, FramePart::CloseButton},
                                                       {layout.caption, FramePart::Caption},
                                                       {layout.verticalBar, FramePart::VerticalBar},
                                                       {layout.horizontalBar, FramePart::HorizontalBar},
                                                       {layout.menuBar, FramePart::MenuBar},
                                                       {layout.whole, FramePart::Border}};
    for (const auto &[box, part] : parts)
    {
        if (holds(box))
        {
            return part;
        }
    }
    return FramePart::Nowhere;
}

void paintBar(HDC context, const Box &box, bool vertical, const ScrollBar &bar)
{
    const BarLayout layout =
        vertical ? layoutOf(bar, box.height(), box.width()) : layoutOf(bar, box.width(), box.height());
    const auto part = [&](int from, int to)
    {
        return vertical ? RECT{box.left, box.top + from, box.right, box.top + to}
                        : RECT{box.left + from, box.top, box.left + to, box.bottom};
    };
    const bool dead = bar.disabled || layout.thumbLength == 0;
    const RECT track = part(layout.arrow, layout.length - layout.arrow);
    FillRect(context, &track, GetSysColorBrush(COLOR_SCROLLBAR));
    RECT first = part(0, layout.arrow);
    RECT last = part(layout.length - layout.arrow, layout.length);
    const UINT state = dead ? DFCS_INACTIVE : 0;
    const auto pressed = [&bar](WORD code) { return bar.pressed == code ? DFCS_PUSHED : 0U; };
    DrawFrameControl(context, &first, DFC_SCROLL,
                     (vertical ? DFCS_SCROLLUP : DFCS_SCROLLLEFT) | state | pressed(SB_LINEUP));
    DrawFrameControl(context, &last, DFC_SCROLL,
                     (vertical ? DFCS_SCROLLDOWN : DFCS_SCROLLRIGHT) | state | pressed(SB_LINEDOWN));
    if (!dead)
    {
        RECT thumb = part(layout.thumbStart, layout.thumbStart + layout.thumbLength);
        DrawFrameControl(context, &thumb, DFC_BUTTON, DFCS_BUTTONPUSH | pressed(SB_THUMBTRACK));
    }
}
} // namespace zb::internal
