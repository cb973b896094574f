// What the pen carries over the grid of hours.
#include "framework/HIDPI.h"
#include "zembrik/hours_grid.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
constexpr UINT_PTR edgeTimer = 0x4843;
constexpr UINT edgeStep = 150; // milliseconds
// At 96 dots an inch.
constexpr int chipStrip = 10; // what a finger hits of it
constexpr int leastWords = 46;
constexpr int threshold = 6;
constexpr int edge = 12;
} // namespace

/// The strip at the left is what things are pulled by; where there is no room for one, all of them.
std::optional<HoursGrid::Load> HoursGrid::loadAt(POINT point)
{
    USHORT col = 0;
    USHORT row = 0;
    POINT offset{};
    bool strip = false;
    if (const DWORD floater = GetFloaterFromPoint(point, col, row, offset, strip); floater != 0)
    {
        return strip ? m_carrier.floater(floater) : std::nullopt;
    }
    RECT cell{};
    if (!GetCellFromPoint(point, col, row) || row != m_wholeDayRow || col == 0 || !GetCellRect(col, row, cell))
    {
        return std::nullopt;
    }
    const bool narrow = cell.right - cell.left < HIDPI_SCALEX(leastWords);
    const std::size_t place = wholeDayAt(point.y - cell.top);
    const std::size_t count = m_sources.wholeDays(col - 1).size();
    const bool hit = place < shownOf(count) && (narrow || point.x - cell.left < HIDPI_SCALEX(chipStrip));
    return hit ? m_carrier.wholeDay(col - 1, place) : std::nullopt;
}

/// The slot, or day, at a point, which may lie outside of the grid.
int HoursGrid::unitAt(POINT point, bool wholeDay) const
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    USHORT col = 0;
    USHORT row = 0;
    GetCellFromPoint(static_cast<int>(std::clamp<LONG>(point.x, 0, client.right - 1)),
                     static_cast<int>(std::clamp<LONG>(point.y, 0, client.bottom - 1)), col, row);
    const int column = std::clamp(col == GRID_NONE ? columns() : static_cast<int>(col), 1, columns()) - 1;
    const int last = GetRowCount() - 1;
    const int slot = std::clamp(row == GRID_NONE ? last : static_cast<int>(row), firstSlot(), last) - firstSlot();
    return wholeDay ? column : column * slotsOfDay + slot;
}

bool HoursGrid::covers(bool wholeDay, int slot) const
{
    return m_carrying && m_carrying->moved && (m_carrying->load.floater == 0) == wholeDay &&
           slot >= m_carrying->target && slot < m_carrying->target + m_carrying->load.count;
}

/// It begins at a slot that shows; a whole day may have begun before.
void HoursGrid::carryTo(POINT point)
{
    const bool wholeDay = m_carrying->load.floater == 0;
    m_carrying->last = point;
    const int wanted = m_carrying->load.first + unitAt(point, wholeDay) - m_carrying->grabbed;
    const int column = wholeDay ? 0 : unitAt(point, true) * slotsOfDay;
    const int target = wholeDay ? wanted : std::clamp(wanted, column, column + slotsOfDay - 1);
    if (m_carrying->moved && target == m_carrying->target)
    {
        return;
    }
    m_carrying->target = target;
    m_carrying->moved = true;
    if (m_tip.GetHwnd() == nullptr)
    {
        m_tip.Create(m_hWnd);
    }
    m_tip.ShowToolTip(point, ToolTipCorner::RightBottom);
    m_tip.UpdateToolTip(m_carrier.tip(m_carrying->load, target).c_str(), false);
    Invalidate();
}

void HoursGrid::letGo()
{
    if (m_carrying)
    {
        m_carrying.reset();
        KillTimer(m_hWnd, edgeTimer);
        ReleaseCapture();
        if (m_tip.GetHwnd() != nullptr)
        {
            m_tip.HideToolTip();
        }
        Invalidate();
    }
}

void HoursGrid::scrollAtEdges()
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    RECT top{};
    GetCellRect(0, GetTopRow(), top);
    const POINT pen = m_carrying->last;
    const USHORT before = GetTopRow();
    if (pen.y < top.top + HIDPI_SCALEY(edge))
    {
        ScrollByRowUp(1);
    }
    else if (pen.y > client.bottom - HIDPI_SCALEY(edge))
    {
        ScrollByRowDown(1, false);
    }
    if (GetTopRow() != before)
    {
        carryTo(pen);
    }
}

// --- Messages

void HoursGrid::OnLButtonDown(WPARAM uKeys, POINT point, bool &handled)
{
    letGo();
    stop();
    const std::optional<Load> load = loadAt(point);
    if (!load)
    {
        FlickGrid::OnLButtonDown(uKeys, point, handled);
        return;
    }
    handled = true;
    m_carrying = Carrying{*load, unitAt(point, load->floater == 0), load->first, point, point};
    SetCapture(m_hWnd);
}

void HoursGrid::OnMouseMove(WPARAM uKeys, POINT point, bool &handled)
{
    if (!m_carrying)
    {
        FlickGrid::OnMouseMove(uKeys, point, handled);
        return;
    }
    handled = true;
    point = {static_cast<SHORT>(point.x), static_cast<SHORT>(point.y)}; // outside of the window they come without sign
    const POINT from = m_carrying->from;
    const bool far = std::abs(point.x - from.x) > HIDPI_SCALEX(threshold) ||
                     std::abs(point.y - from.y) > HIDPI_SCALEY(threshold);
    if (far && !m_carrying->moved && m_carrying->load.floater != 0)
    {
        SetTimer(m_hWnd, edgeTimer, edgeStep, nullptr);
    }
    if (far || m_carrying->moved)
    {
        carryTo(point);
    }
}

/// A pen that did not move has tapped.
void HoursGrid::OnLButtonUp(WPARAM uKeys, POINT point, bool &handled)
{
    if (!m_carrying)
    {
        FlickGrid::OnLButtonUp(uKeys, point, handled);
        return;
    }
    handled = true;
    const Carrying carried = *m_carrying;
    letGo();
    if (!carried.moved)
    {
        FlickGrid::OnLButtonDown(uKeys, carried.from, handled);
        FlickGrid::OnLButtonUp(uKeys, carried.from, handled);
    }
    else if (carried.target != carried.load.first)
    {
        m_carrier.dropped(carried.load, carried.target);
    }
}

void HoursGrid::OnTimer(UINT_PTR nId, bool &handled)
{
    if (nId != edgeTimer)
    {
        FlickGrid::OnTimer(nId, handled);
        return;
    }
    handled = true;
    if (m_carrying)
    {
        scrollAtEdges();
    }
}

LRESULT HoursGrid::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    const bool taken = uMsg == WM_CAPTURECHANGED && reinterpret_cast<HWND>(lParam) != m_hWnd;
    if (uMsg == WM_CANCELMODE || taken)
    {
        letGo();
    }
    return FlickGrid::OnMessage(uMsg, wParam, lParam, handled);
}
} // namespace zb::screens
