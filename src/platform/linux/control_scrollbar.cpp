// The scroll bar as a control of its own.
#include "platform/linux/control.h"
#include "platform/linux/scroll_bars.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR repeatTimer = 0xFFD4;

class ScrollBarControl final : public Control
{
  public:
    using Control::Control;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message)
        {
        case SBM_SETPOS:
        case SBM_GETPOS:
        case SBM_SETRANGE:
        case SBM_SETRANGEREDRAW:
        case SBM_GETRANGE:
        case SBM_ENABLE_ARROWS:
        case SBM_SETSCROLLINFO:
        case SBM_GETSCROLLINFO:
            return takeBar(message, wParam, lParam);
        case WM_PAINT:
            paint([this](HDC context) { draw(context); });
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            takePen(message, lParam);
            return 0;
        case WM_TIMER:
            repeat();
            return 0;
        case WM_KEYDOWN:
            takeKey(static_cast<int>(wParam));
            return 0;
        case WM_KEYUP:
            if (std::exchange(m_keyHeld, false))
            {
                send(SB_ENDSCROLL, 0);
            }
            return 0;
        default:
            return takeCommon(message, wParam, lParam);
        }
    }

  private:
    bool isVertical() const
    {
        return (style() & SBS_VERT) != 0;
    }
    bool isArrowOff(WORD code) const
    {
        return (code == SB_LINEUP && (m_arrowsOff & ESB_DISABLE_LTUP) != 0) ||
               (code == SB_LINEDOWN && (m_arrowsOff & ESB_DISABLE_RTDN) != 0);
    }
    BarLayout layout() const
    {
        const RECT all = client();
        return isVertical() ? layoutOf(shown(), all.bottom, all.right) : layoutOf(shown(), all.right, all.bottom);
    }
    /// While the thumb is held it stands under the pen, wherever the position is.
    ScrollBar shown() const
    {
        ScrollBar bar = m_bar;
        bar.position = m_tracked.value_or(bar.position);
        bar.disabled = bar.disabled || !isEnabled() || m_arrowsOff == ESB_DISABLE_BOTH;
        return bar;
    }

    LRESULT takeBar(UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message)
        {
        case SBM_SETPOS:
            return change({sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, numberOf(wParam), 0});
        case SBM_GETPOS:
            return m_bar.position;
        case SBM_SETRANGE:
        case SBM_SETRANGEREDRAW:
            return change({sizeof(SCROLLINFO), SIF_RANGE, numberOf(wParam), numberOf(lParam), 0, 0, 0});
        case SBM_GETRANGE:
            *reinterpret_cast<int *>(wParam) = m_bar.low;
            *reinterpret_cast<int *>(lParam) = m_bar.high;
            return 0;
        case SBM_ENABLE_ARROWS:
            m_arrowsOff = wParam & ESB_DISABLE_BOTH;
            refresh();
            return TRUE;
        case SBM_SETSCROLLINFO:
            if (lParam != 0)
            {
                change(*reinterpret_cast<const SCROLLINFO *>(lParam));
            }
            return m_bar.position;
        default:
            if (lParam != 0)
            {
                readInto(m_bar, *reinterpret_cast<SCROLLINFO *>(lParam));
            }
            return lParam != 0 ? TRUE : FALSE;
        }
    }

    /// The former position.
    LRESULT change(const SCROLLINFO &info)
    {
        const int former = m_bar.position;
        takeOver(m_bar, info);
        refresh();
        return former;
    }

    bool send(WORD code, int position) const
    {
        const HWND self = window();
        SendMessageW(parent(), isVertical() ? WM_VSCROLL : WM_HSCROLL, MAKELONG(code, static_cast<WORD>(position)),
                     reinterpret_cast<LPARAM>(self));
        return IsWindow(self) != FALSE;
    }

    // --- Keys and pen ------------------------------------------------------------------------------------------------

    void takeKey(int key)
    {
        constexpr std::pair<int, WORD> codes[] = {
            {VK_UP, SB_LINEUP},    {VK_LEFT, SB_LINEUP},   {VK_DOWN, SB_LINEDOWN}, {VK_RIGHT, SB_LINEDOWN},
            {VK_PRIOR, SB_PAGEUP}, {VK_NEXT, SB_PAGEDOWN}, {VK_HOME, SB_TOP},      {VK_END, SB_BOTTOM}};
        const auto *found = std::ranges::find(codes, key, &std::pair<int, WORD>::first);
        if (found != std::end(codes) && !shown().disabled && canScroll(m_bar) && !isArrowOff(found->second))
        {
            m_keyHeld = true;
            send(found->second, 0);
        }
    }

    int along(LPARAM place) const
    {
        const POINT point = penPlace(place);
        return isVertical() ? point.y : point.x;
    }

    void takePen(UINT message, LPARAM place)
    {
        switch (message)
        {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            press(along(place));
            break;
        case WM_MOUSEMOVE:
            m_offset = along(place);
            if (m_bar.pressed == SB_THUMBTRACK)
            {
                drag();
            }
            break;
        default:
            release();
            break;
        }
    }

    void press(int offset)
    {
        const HWND self = window();
        if ((style() & WS_TABSTOP) != 0)
        {
            SetFocus(self);
        }
        if (IsWindow(self) == FALSE)
        {
            return;
        }
        const BarLayout places = layout();
        const WORD code = codeAt(places, offset);
        if (shown().disabled || places.thumbLength == 0 || isArrowOff(code))
        {
            return;
        }
        m_offset = offset;
        m_held = offset - places.thumbStart;
        m_bar.pressed = code;
        SetCapture(self);
        refresh();
        if (code != SB_THUMBTRACK)
        {
            SetTimer(self, repeatTimer, firstScrollRepeat, nullptr);
            send(code, 0);
        }
    }

    /// An arrow repeats while the pen is on it, the track until the thumb has come under the pen.
    void repeat()
    {
        if (m_bar.pressed < 0)
        {
            KillTimer(window(), repeatTimer);
            return;
        }
        SetTimer(window(), repeatTimer, nextScrollRepeats, nullptr);
        if (codeAt(layout(), m_offset) == m_bar.pressed)
        {
            send(static_cast<WORD>(m_bar.pressed), 0);
        }
    }

    void drag()
    {
        const int position = positionAt(m_bar, layout(), m_offset - m_held);
        if (position != m_tracked.value_or(m_bar.position))
        {
            m_tracked = m_bar.track = position;
            refresh();
            send(SB_THUMBTRACK, position);
        }
    }

    void release()
    {
        const int pressed = std::exchange(m_bar.pressed, -1);
        if (pressed < 0)
        {
            return;
        }
        const auto tracked = std::exchange(m_tracked, std::nullopt);
        const HWND self = window();
        KillTimer(self, repeatTimer);
        if (GetCapture() == self)
        {
            ReleaseCapture();
        }
        refresh();
        if (!tracked.has_value() || send(SB_THUMBPOSITION, *tracked))
        {
            send(SB_ENDSCROLL, 0);
        }
    }

    void draw(HDC context) const
    {
        const RECT all = client();
        const ScrollBar bar = shown();
        paintBar(context, {all.left, all.top, all.right, all.bottom}, isVertical(), bar);
        const BarLayout places = layout();
        if (hasFocus() && places.thumbLength != 0 && !bar.disabled)
        {
            const int from = places.thumbStart;
            const int to = places.thumbStart + places.thumbLength;
            RECT thumb = isVertical() ? RECT{0, from, all.right, to} : RECT{from, 0, to, all.bottom};
            InflateRect(&thumb, -scaledPixels(3), -scaledPixels(3));
            DrawFocusRect(context, &thumb);
        }
    }

    ScrollBar m_bar{0, 100, 0, 0, 0, false, -1};
    WPARAM m_arrowsOff = ESB_ENABLE_BOTH;
    std::optional<int> m_tracked; ///< where the pen has the thumb
    int m_offset = 0;             ///< of the pen along the bar
    int m_held = 0;               ///< of the pen in the thumb
    bool m_keyHeld = false;
};
} // namespace

void registerScrollBar()
{
    registerControl<ScrollBarControl>(u"SCROLLBAR");
}
} // namespace zb::internal
