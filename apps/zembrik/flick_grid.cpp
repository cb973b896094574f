#include "zembrik/flick_grid.h"

#include "framework/HIDPI.h"
#include "platform/clock.h"

#include <algorithm>
#include <cstdlib>

namespace zb::screens
{
namespace
{
constexpr int threshold = 12; // at 96 dots an inch
constexpr int sideStroke = 48;
constexpr int hurry = 24; // pixels in a tenth of a second
constexpr UINT_PTR glideTimer = 0x464C;
constexpr UINT glideStep = 40; // milliseconds
constexpr int wheelStep = 120;
constexpr UINT wheelRows = 3;
constexpr POINT nowhere = {32000, 32000}; // past the last cell
} // namespace

WCHAR *handedOut(const std::u16string &words)
{
    auto *copy = static_cast<WCHAR *>(std::malloc((words.size() + 1) * sizeof(WCHAR)));
    std::copy_n(words.c_str(), copy == nullptr ? 0 : words.size() + 1, copy);
    return copy;
}

void FlickGrid::begin(POINT point)
{
    m_stroke = Stroke::Undecided;
    m_from = point;
    m_lastY = point.y;
    m_lastTick = GetTickCount();
    m_rest = 0;
    m_speed = 0;
}

void FlickGrid::stop()
{
    KillTimer(m_hWnd, glideTimer);
    m_stroke = Stroke::None;
}

void FlickGrid::OnLButtonDown(WPARAM uKeys, POINT point, bool &handled)
{
    stop();
    begin(point);
    USHORT col = 0;
    USHORT row = 0;
    POINT offset{};
    bool strip = false;
    if (GetFloaterFromPoint(point, col, row, offset, strip) != 0 && strip)
    {
        m_stroke = Stroke::Others;
    }
    CHTMLGrid::OnLButtonDown(uKeys, point, handled);
}

/// By whole rows; false at the end.
bool FlickGrid::scrollBy(LONG pixels)
{
    m_rest += pixels;
    const USHORT before = GetTopRow();
    USHORT top = before;
    while (m_rest < 0 && top + 1 < GetRowCount() && -m_rest >= GetRowHeight(top, false))
    {
        m_rest += GetRowHeight(top++, false);
    }
    while (m_rest > 0 && top > GetFixedRowCount() && m_rest >= GetRowHeight(static_cast<USHORT>(top - 1), false))
    {
        m_rest -= GetRowHeight(--top, false);
    }
    if (top == before)
    {
        return true;
    }
    MakeRowTopMost(top, false);
    return GetTopRow() == top;
}

void FlickGrid::OnMouseMove(WPARAM uKeys, POINT point, bool &handled)
{
    if (m_stroke == Stroke::Undecided)
    {
        const LONG across = std::labs(point.x - m_from.x);
        const LONG along = std::labs(point.y - m_from.y);
        if (along > HIDPI_SCALEY(threshold) || across > HIDPI_SCALEX(threshold))
        {
            m_stroke = along >= across ? Stroke::Rows : m_leaf ? Stroke::Side : Stroke::Others;
            if (m_stroke != Stroke::Others)
            {
                // The grid hears no more of this stroke: it is no tap.
                CHTMLGrid::OnLButtonUp(0, nowhere, handled);
                SetCapture(m_hWnd);
            }
        }
    }
    handled = true;
    if (m_stroke == Stroke::Rows)
    {
        const DWORD now = GetTickCount();
        const LONG moved = point.y - m_lastY;
        const auto passed = static_cast<LONG>(std::clamp<DWORD>(now - m_lastTick, 10, 1000));
        m_speed = moved * 100 / passed;
        m_lastY = point.y;
        m_lastTick = now;
        scrollBy(moved);
    }
    else if (m_stroke == Stroke::None || m_stroke == Stroke::Others)
    {
        CHTMLGrid::OnMouseMove(uKeys, point, handled);
    }
}

void FlickGrid::OnLButtonUp(WPARAM uKeys, POINT point, bool &handled)
{
    const Stroke stroke = std::exchange(m_stroke, Stroke::None);
    if (stroke != Stroke::Rows && stroke != Stroke::Side)
    {
        CHTMLGrid::OnLButtonUp(uKeys, point, handled);
        return;
    }
    handled = true;
    ReleaseCapture();
    if (stroke == Stroke::Rows && std::labs(m_speed) > HIDPI_SCALEY(hurry))
    {
        SetTimer(m_hWnd, glideTimer, glideStep, nullptr);
    }
    const LONG across = point.x - m_from.x;
    if (stroke == Stroke::Side && m_leaf && std::labs(across) > HIDPI_SCALEX(sideStroke))
    {
        m_leaf(across < 0 ? 1 : -1);
    }
}

void FlickGrid::glide()
{
    m_speed = m_speed * 85 / 100;
    const LONG step = m_speed * static_cast<LONG>(glideStep) / 100;
    if (step == 0 || !scrollBy(step))
    {
        stop();
    }
}

void FlickGrid::OnTimer(UINT_PTR nId, bool &handled)
{
    if (nId == glideTimer)
    {
        handled = true;
        glide();
        return;
    }
    CHTMLGrid::OnTimer(nId, handled);
}

LRESULT FlickGrid::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == WM_MOUSEWHEEL)
    {
        handled = true;
        const int steps = static_cast<SHORT>(HIWORD(wParam)) / wheelStep;
        const auto rows = static_cast<USHORT>(std::abs(steps) * static_cast<int>(wheelRows));
        steps > 0 ? ScrollByRowUp(rows) : ScrollByRowDown(rows, false);
        return 0;
    }
    return CHTMLGrid::OnMessage(uMsg, wParam, lParam, handled);
}
} // namespace zb::screens
