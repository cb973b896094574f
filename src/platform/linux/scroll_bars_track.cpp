// The pen on a scroll bar of a window's frame, from down to up.
#include "platform/controls.h"
#include "platform/linux/message_values.h"
#include "platform/linux/scroll_bars.h"

namespace zb::internal
{
namespace
{
constexpr UINT_PTR repeatTimer = 0xFFE1;

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

void trackBar(HWND window, bool vertical, POINT point)
{
    Tracking(window, vertical, point).run();
}
} // namespace zb::internal
