// The wait for a pen that is held, with the dots that tell of it.
//
// The pen's own messages stay in the queue for whoever comes after; all others are dispatched meanwhile, since what
// feeds the pen may itself come by them.
#include "platform/gesture.h"
#include "platform/kernel.h"
#include "platform/linux/input_state.h"

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace zb::internal;

namespace
{
constexpr UINT_PTR gestureTimer = 0x7FFFFF01;
constexpr UINT beforeDots = 200; // milliseconds
constexpr UINT betweenDots = 62;
constexpr int dotCount = 8;
constexpr DWORD idleTime = 5;

/// On the screen, round the pen; what lies below comes back when it goes.
class Dots
{
  public:
    explicit Dots(POINT center) : m_screen(GetDC(nullptr)), m_below(CreateCompatibleDC(m_screen))
    {
        const int density = std::max(GetDeviceCaps(m_screen, LOGPIXELSX), 96);
        m_dot = 2 * density / 96;
        m_radius = 18 * density / 96;
        m_center = center;
        m_side = 2 * (m_radius + m_dot) + 1;
        m_bitmap = CreateCompatibleBitmap(m_screen, m_side, m_side);
        m_former = SelectObject(m_below, m_bitmap);
        BitBlt(m_below, 0, 0, m_side, m_side, m_screen, left(), top(), SRCCOPY);
    }
    ~Dots()
    {
        BitBlt(m_screen, left(), top(), m_side, m_side, m_below, 0, 0, SRCCOPY);
        SelectObject(m_below, m_former);
        DeleteObject(m_bitmap);
        DeleteDC(m_below);
        ReleaseDC(nullptr, m_screen);
    }
    Dots(const Dots &) = delete;
    Dots &operator=(const Dots &) = delete;

    /// The next one on the circle, from the top on to the right. True when it is closed.
    bool add()
    {
        // Of a circle of 1,000.
        constexpr std::array<POINT, dotCount> places = {POINT{0, -1000}, {707, -707}, {1000, 0},  {707, 707},
                                                        {0, 1000},       {-707, 707}, {-1000, 0}, {-707, -707}};
        const POINT at = {m_center.x + places[m_count].x * m_radius / 1000,
                          m_center.y + places[m_count].y * m_radius / 1000};
        const HBRUSH brush = CreateSolidBrush(GetSysColor(COLOR_HIGHLIGHT));
        const HGDIOBJ formerBrush = SelectObject(m_screen, brush);
        const HGDIOBJ formerPen = SelectObject(m_screen, GetStockObject(NULL_PEN));
        Ellipse(m_screen, at.x - m_dot, at.y - m_dot, at.x + m_dot + 1, at.y + m_dot + 1);
        SelectObject(m_screen, formerPen);
        SelectObject(m_screen, formerBrush);
        DeleteObject(brush);
        return ++m_count == dotCount;
    }

  private:
    int left() const
    {
        return m_center.x - m_radius - m_dot;
    }
    int top() const
    {
        return m_center.y - m_radius - m_dot;
    }

    HDC m_screen;
    HDC m_below;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_former = nullptr;
    POINT m_center{};
    int m_dot = 0;
    int m_radius = 0;
    int m_side = 0;
    std::size_t m_count = 0;
};

/// Up, or so far away that it means something else.
bool hasLeft(POINT down)
{
    POINT now{};
    GetCursorPos(&now);
    return !isPenDown() || std::abs(now.x - down.x) > GetSystemMetrics(SM_CXDOUBLECLK) / 2 ||
           std::abs(now.y - down.y) > GetSystemMetrics(SM_CYDOUBLECLK) / 2;
}

/// Dispatches what waits, up to the next tick of the window's timer. False when there is none before the pen has left.
bool waitForTick(HWND window, POINT down)
{
    MSG message{};
    while (IsWindow(window) != FALSE && !hasLeft(down))
    {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) == FALSE)
        {
            Sleep(idleTime);
            continue;
        }
        const bool isPen = message.message >= WM_MOUSEMOVE && message.message <= WM_LBUTTONDBLCLK;
        if (message.message == WM_QUIT || (isPen && message.message != WM_MOUSEMOVE))
        {
            return false;
        }
        PeekMessageW(&message, nullptr, message.message, message.message, PM_REMOVE);
        if (message.message == WM_TIMER && message.hwnd == window && message.wParam == gestureTimer)
        {
            return true;
        }
        if (!isPen)
        {
            DispatchMessageW(&message);
        }
    }
    return false;
}

bool isHeld(HWND window, POINT down)
{
    if (!waitForTick(window, down))
    {
        return false;
    }
    SetTimer(window, gestureTimer, betweenDots, nullptr);
    Dots dots(down);
    while (!dots.add())
    {
        if (!waitForTick(window, down))
        {
            return false;
        }
    }
    return waitForTick(window, down);
}
} // namespace

DWORD SHRecognizeGesture(SHRGINFO *info)
{
    DWORD process = 0;
    if (info == nullptr || info->cbSize != sizeof *info || IsWindow(info->hwndClient) == FALSE || !isPenDown() ||
        GetWindowThreadProcessId(info->hwndClient, &process) != GetCurrentThreadId())
    {
        return 0;
    }
    POINT down = info->ptDown;
    ClientToScreen(info->hwndClient, &down);
    SetTimer(info->hwndClient, gestureTimer, beforeDots, nullptr);
    const bool held = isHeld(info->hwndClient, down);
    KillTimer(info->hwndClient, gestureTimer);
    return held ? GN_CONTEXTMENU : 0;
}
