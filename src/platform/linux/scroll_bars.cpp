#include "platform/linux/scroll_bars.h"

#include "platform/controls.h"
#include "platform/linux/message_values.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR repeatTimer = 0xFFE1;

/// What can be scrolled: from low to this.
int highest(const ScrollBar &bar)
{
    return std::max(bar.low, bar.high - std::max(bar.page - 1, 0));
}

LONGLONG scaled(LONGLONG value, LONGLONG by, LONGLONG of)
{
    return of == 0 ? 0 : (value * by + of / 2) / of;
}

/// The pen on a bar from down to up.
class Tracking
{
  public:
    Tracking(HWND window, bool vertical, POINT point) : m_window(window), m_vertical(vertical)
    {
        if (!measure() || m_bar.disabled || m_layout.thumbLength == 0)
        {
            return;
        }
        m_offset = along(point);
        m_code = codeAt(m_layout, m_offset);
        m_held = m_offset - m_layout.thumbStart;
        m_active = true;
    }

    void run()
    {
        if (!m_active)
        {
            return;
        }
        SetCapture(m_window);
        showPressed(m_code);
        if (m_code != SB_THUMBTRACK)
        {
            send(m_code, 0);
            SetTimer(m_window, repeatTimer, firstScrollRepeat, nullptr);
        }
        MSG message{};
        while (IsWindow(m_window) != FALSE && GetCapture() == m_window && GetMessageW(&message, nullptr, 0, 0) > 0)
        {
            if (message.hwnd != m_window || !take(message))
            {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            else if (message.message == WM_LBUTTONUP)
            {
                break;
            }
        }
        if (message.message == WM_QUIT)
        {
            PostQuitMessage(static_cast<int>(message.wParam));
        }
        finish();
    }

  private:
    bool measure()
    {
        const auto object = peekWindow(m_window);
        if (object == nullptr)
        {
            return false;
        }
        const std::lock_guard guard(treeLock());
        const Box whole = windowBox(*object);
        const FrameLayout frame = layoutOf(*object);
        const Box &bar = m_vertical ? frame.verticalBar : frame.horizontalBar;
        m_start = m_vertical ? whole.top + bar.top : whole.left + bar.left;
        m_bar = object->bars[m_vertical ? SB_VERT : SB_HORZ];
        m_layout = m_vertical ? layoutOf(m_bar, bar.height(), bar.width()) : layoutOf(m_bar, bar.width(), bar.height());
        return !bar.isEmpty();
    }

    int along(POINT point) const
    {
        return (m_vertical ? point.y : point.x) - m_start;
    }

    /// False for a message that is not part of the tracking.
    bool take(const MSG &message)
    {
        if (message.message == WM_TIMER && message.wParam == repeatTimer)
        {
            repeat();
            return true;
        }
        if (message.message == WM_MOUSEMOVE || message.message == WM_LBUTTONUP)
        {
            POINT point = penPlace(message.lParam);
            ClientToScreen(m_window, &point);
            m_offset = along(point);
            if (m_code == SB_THUMBTRACK)
            {
                drag();
            }
            return true;
        }
        return false;
    }

    void repeat()
    {
        SetTimer(m_window, repeatTimer, nextScrollRepeats, nullptr);
        // A page scroll stops when the thumb has come under the pen.
        if (measure() && codeAt(m_layout, m_offset) == m_code)
        {
            send(m_code, 0);
        }
    }

    void drag()
    {
        const int position = positionAt(m_bar, m_layout, m_offset - m_held);
        if (position == m_lastTracked.value_or(m_bar.position))
        {
            return;
        }
        m_lastTracked = position;
        if (const auto object = peekWindow(m_window))
        {
            const std::lock_guard guard(treeLock());
            object->bars[m_vertical ? SB_VERT : SB_HORZ].track = position;
        }
        send(SB_THUMBTRACK, position);
    }

    void finish()
    {
        if (IsWindow(m_window) == FALSE)
        {
            return;
        }
        KillTimer(m_window, repeatTimer);
        showPressed(-1);
        if (GetCapture() == m_window)
        {
            ReleaseCapture();
        }
        if (m_code == SB_THUMBTRACK && m_lastTracked.has_value())
        {
            send(SB_THUMBPOSITION, *m_lastTracked);
        }
        send(SB_ENDSCROLL, 0);
    }

    void showPressed(int code) const
    {
        if (const auto object = peekWindow(m_window))
        {
            {
                const std::lock_guard guard(treeLock());
                object->bars[m_vertical ? SB_VERT : SB_HORZ].pressed = code;
            }
            SendMessageW(m_window, WM_NCPAINT, 1, 0);
        }
    }

    void send(WORD code, int position) const
    {
        SendMessageW(m_window, m_vertical ? WM_VSCROLL : WM_HSCROLL, MAKELONG(code, static_cast<WORD>(position)), 0);
    }

    HWND m_window;
    bool m_vertical;
    bool m_active = false;
    ScrollBar m_bar;
    BarLayout m_layout;
    int m_start = 0;
    int m_offset = 0;
    int m_held = 0;
    WORD m_code = SB_ENDSCROLL;
    std::optional<int> m_lastTracked;
};
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

void trackBar(HWND window, bool vertical, POINT point)
{
    Tracking(window, vertical, point).run();
}

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
