// Keys and pen in a list box.
#include "platform/linux/control_listbox.h"
#include "platform/linux/row_keys.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR penTimer = 0xFFD3;
constexpr UINT penTime = 80; // milliseconds
} // namespace

void ListBox::tellIfAsked(WORD code) const
{
    if ((style() & LBS_NOTIFY) != 0)
    {
        tell(code);
    }
}

void ListBox::tellChange()
{
    refresh();
    tellIfAsked(LBN_SELCHANGE);
}

void ListBox::takeKey(int key)
{
    if (count() == 0)
    {
        return;
    }
    if (key == VK_SPACE)
    {
        takeSpace();
        return;
    }
    const int along = key == VK_LEFT ? VK_UP : key == VK_RIGHT ? VK_DOWN : key;
    if (const auto row = rowByKey(along, m_caret, pageRows(), count()); row.has_value())
    {
        // The first step of a list of which nothing is chosen goes to the row with the frame.
        const bool isFirst = along == VK_DOWN && !hasMany() && m_current < 0;
        moveTo(isFirst ? m_caret : std::clamp(*row, 0, count() - 1), isKeyHeld(VK_SHIFT), isKeyHeld(VK_CONTROL));
    }
}

void ListBox::takeSpace()
{
    if (hasMany())
    {
        item(m_caret).selected = !item(m_caret).selected;
        m_anchor = m_caret;
        tellChange();
    }
    else if (m_current != m_caret)
    {
        chooseAndTell(m_caret);
    }
}

void ListBox::chooseAndTell(int row)
{
    const bool changed = row != m_current;
    setCurrent(row);
    if (changed)
    {
        tellChange();
    }
}

/// Of many choices, keys move the frame alone; of extended ones they choose the row, or from the anchor to it.
void ListBox::moveTo(int row, bool extend, bool keep)
{
    if (!hasMany())
    {
        chooseAndTell(row);
        return;
    }
    m_caret = row;
    show(row);
    refresh();
    if (!isExtended() || (keep && !extend))
    {
        return;
    }
    if (!extend)
    {
        m_anchor = row;
    }
    for (int one = 0; one < count(); ++one)
    {
        item(one).selected = one >= std::min(m_anchor, row) && one <= std::max(m_anchor, row);
    }
    tellChange();
}

void ListBox::followAgain(bool again) const
{
    if (again)
    {
        SetTimer(window(), penTimer, penTime, nullptr);
    }
    else
    {
        KillTimer(window(), penTimer);
    }
}

void ListBox::typed(WCHAR character)
{
    if (count() == 0 || (character == u' ' && hasMany()) || !m_typed.take(character))
    {
        return;
    }
    const int from = hasMany() || m_current >= 0 ? m_caret : -1;
    const int found = find(m_typed.goesOn() ? from : from - 1, m_typed.text(), false);
    if (found >= 0)
    {
        moveTo(found, false, false);
    }
}

void ListBox::takePen(UINT message, LPARAM place)
{
    m_pen = penPlace(place);
    switch (message)
    {
    case WM_LBUTTONDOWN:
    {
        const HWND self = window();
        SetFocus(self);
        const auto row = IsWindow(self) != FALSE ? rowAt(m_pen) : std::nullopt;
        if (row.has_value() && isRow(*row))
        {
            SetCapture(self);
            m_held = true;
            chooseByPen(*row);
        }
        break;
    }
    case WM_LBUTTONDBLCLK:
        if (const auto row = rowAt(m_pen); row.has_value() && isRow(*row))
        {
            tellIfAsked(LBN_DBLCLK);
        }
        break;
    case WM_MOUSEMOVE:
        if (m_held)
        {
            followPen();
        }
        break;
    default:
        releasePen();
        break;
    }
}

void ListBox::chooseByPen(int row)
{
    if (!hasMany())
    {
        chooseAndTell(row);
        return;
    }
    if (!isExtended() || isKeyHeld(VK_CONTROL))
    {
        m_caret = m_anchor = row;
        item(row).selected = !item(row).selected;
        tellChange();
        return;
    }
    moveTo(row, isKeyHeld(VK_SHIFT), false);
}

/// A pen that is held drags what is chosen along; beyond the edges the rows scroll under it.
void ListBox::followPen()
{
    if (!m_held || count() == 0)
    {
        KillTimer(window(), penTimer);
        return;
    }
    const RECT all = client();
    const bool outside = m_pen.y < 0 || m_pen.y >= all.bottom;
    const int row = m_pen.y < 0 ? m_top - 1 : m_top + static_cast<int>(std::min(m_pen.y, all.bottom)) / m_rowHeight;
    const int target = std::clamp(row, 0, count() - 1);
    followAgain(outside);
    if (!hasMany() ? target != m_current : isExtended() && target != m_caret)
    {
        moveTo(target, hasMany(), false);
    }
}

void ListBox::releasePen()
{
    KillTimer(window(), penTimer);
    if (std::exchange(m_held, false) && GetCapture() == window())
    {
        ReleaseCapture();
    }
}
} // namespace zb::internal
