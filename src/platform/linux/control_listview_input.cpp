// Keys and pen in a list view, and the editing of labels.
#include "platform/linux/control_listview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT penTime = 80; // milliseconds

UINT keyFlags()
{
    return (isKeyHeld(VK_MENU) ? 1U : 0U) | (isKeyHeld(VK_CONTROL) ? 2U : 0U) | (isKeyHeld(VK_SHIFT) ? 4U : 0U);
}
} // namespace

// --- Keys ------------------------------------------------------------------------------------------------------------

void ListView::beginKeys()
{
    if (m_focus < 0 && count() > 0)
    {
        setFocusRow(0);
    }
}

void ListView::takeKey(int key)
{
    editNoMore();
    NMLVKEYDOWN record{};
    record.wVKey = static_cast<WORD>(key);
    notify(LVN_KEYDOWN, record.hdr);
    if (isGone())
    {
        return;
    }
    if (key == VK_RETURN)
    {
        notify(NM_RETURN);
        activate(m_focus);
        return;
    }
    if (count() == 0)
    {
        return;
    }
    if (const auto row = rowByKey(key, m_focus, pageRows(), count()); row.has_value())
    {
        // The first step of a list of which nothing is chosen chooses where the frame is.
        const bool isFirst = key == VK_DOWN && m_chosen == 0 && !isKeyHeld(VK_CONTROL);
        return moveTo(isFirst ? m_focus : *row);
    }
    const int step = scaledPixels(16);
    switch (key)
    {
    case VK_LEFT:
    case VK_RIGHT:
        scrollRightTo(static_cast<LONGLONG>(m_left) + (key == VK_LEFT ? -step : step));
        return;
    case VK_F2:
        editLabel(m_focus);
        return;
    case VK_SPACE:
        if (!m_typed.isTyping() && !turnCheck(m_focus) && isRow(m_focus))
        {
            const bool turns = isKeyHeld(VK_CONTROL) && (style() & LVS_SINGLESEL) == 0;
            turns ? static_cast<void>(setState(m_focus, ~item(m_focus).state, LVIS_SELECTED)) : chooseOnly(m_focus);
        }
        return;
    default:
        return;
    }
}

/// With Shift from the anchor up to the row, with Ctrl the frame alone, else the row alone.
void ListView::moveTo(int row)
{
    const int target = std::clamp(row, 0, count() - 1);
    const bool many = (style() & LVS_SINGLESEL) == 0;
    if (many && isKeyHeld(VK_SHIFT))
    {
        chooseTo(target, std::max(m_focus, 0));
    }
    else if (many && isKeyHeld(VK_CONTROL))
    {
        setFocusRow(target);
    }
    else
    {
        chooseOnly(target);
    }
    show(target, false);
}

/// From where ranges begin, which is the other row where nothing has been chosen yet.
void ListView::chooseTo(int row, int otherwise)
{
    m_anchor = isRow(m_anchor) ? m_anchor : otherwise;
    chooseRange(m_anchor, row);
}

void ListView::typed(WCHAR character)
{
    constexpr WCHAR controlA = 1;
    if (character == controlA && (style() & LVS_SINGLESEL) == 0)
    {
        setStateOfAll(LVIS_SELECTED, LVIS_SELECTED);
        return;
    }
    if (!m_typed.take(character) || count() == 0)
    {
        return;
    }
    const std::u16string text = m_typed.text();
    const LVFINDINFOW what{LVFI_STRING | LVFI_PARTIAL | LVFI_WRAP, text.c_str(), 0, {0, 0}, 0};
    const bool onward = m_typed.goesOn() && m_chosen > 0;
    const int before = m_focus > 0 ? m_focus - 1 : -1;
    const int found = find(onward ? m_focus : m_focus == 0 ? -1 : before, what);
    if (found >= 0)
    {
        chooseOnly(found);
        show(found, false);
    }
}

/// False for a row without a check box.
bool ListView::turnCheck(int row)
{
    if (!hasCheckBoxes() || !isRow(row))
    {
        return false;
    }
    const UINT now = (item(row).state & LVIS_STATEIMAGEMASK) >> 12U;
    setState(row, INDEXTOSTATEIMAGEMASK(now == 1 ? 2 : 1), LVIS_STATEIMAGEMASK);
    return true;
}

void ListView::activate(int row)
{
    if (isRow(row))
    {
        tellTap(LVN_ITEMACTIVATE, m_press.at, row, 0);
    }
}

LRESULT ListView::tellTap(UINT code, POINT point, int row, int column)
{
    NMITEMACTIVATE record{};
    record.iItem = isRow(row) ? row : -1;
    record.iSubItem = column;
    record.ptAction = point;
    record.lParam = isRow(row) ? item(row).data : 0;
    record.uKeyFlags = keyFlags();
    return notify(code, record.hdr);
}

// --- Pen -------------------------------------------------------------------------------------------------------------

void ListView::penDown(POINT point)
{
    editNoMore();
    const bool hadFocus = hasFocus();
    SetFocus(window());
    if (isGone())
    {
        return;
    }
    LVHITTESTINFO hit{point, 0, -1, 0};
    hitTest(hit);
    m_press = {};
    m_press.held = true;
    m_press.row = hit.iItem;
    m_press.column = hit.iSubItem;
    m_press.at = m_press.now = point;
    SetCapture(window());
    // Without full rows the other columns are beside the item.
    const bool onItem = hit.iItem >= 0 && (hasFullRows() || point.x < cellBox(hit.iItem, 0).right);
    if ((hit.flags & LVHT_ONITEMSTATEICON) != 0 && hit.iItem >= 0 && hasCheckBoxes())
    {
        m_press.row = hit.iItem;
        m_press.lateChoice = false;
        m_press.dragged = false;
        setFocusRow(hit.iItem);
        turnCheck(hit.iItem);
    }
    else if (onItem)
    {
        m_press.chosen = hadFocus && (hit.flags & LVHT_ONITEMLABEL) != 0 && hit.iSubItem == subItemOf(0) &&
                         m_focus == hit.iItem && m_chosen == 1 && (item(hit.iItem).state & LVIS_SELECTED) != 0;
        chooseByPen(hit.iItem);
    }
    else
    {
        m_press.row = -1;
        if (!isKeyHeld(VK_CONTROL) && !isKeyHeld(VK_SHIFT))
        {
            giveUpOthers(-1);
        }
    }
}

void ListView::chooseByPen(int row)
{
    const bool many = (style() & LVS_SINGLESEL) == 0;
    if (many && isKeyHeld(VK_CONTROL))
    {
        m_anchor = row;
        setFocusRow(row);
        setState(row, ~item(row).state, LVIS_SELECTED);
    }
    else if (many && isKeyHeld(VK_SHIFT))
    {
        chooseTo(row, std::max(m_focus, 0));
    }
    else if (many && m_chosen > 1 && (item(row).state & LVIS_SELECTED) != 0)
    {
        // All of them may be about to be dragged.
        setFocusRow(row);
        m_press.lateChoice = true;
    }
    else
    {
        chooseOnly(row);
    }
    show(row, true);
}

void ListView::penMoved(POINT point)
{
    if (!m_press.held)
    {
        return;
    }
    m_press.now = point;
    if (!m_press.dragged && isFar(point, m_press.at))
    {
        m_press.dragged = true;
        if (m_press.row >= 0)
        {
            NMLISTVIEW record = about(m_press.row);
            record.ptAction = m_press.at;
            notify(LVN_BEGINDRAG, record.hdr);
            m_press.follows = m_press.held && GetCapture() == window() && !m_press.lateChoice;
        }
    }
    if (m_press.follows)
    {
        followPen();
    }
}

/// A pen that nobody else has taken draws the choice along; beyond the edges the rows scroll under it.
void ListView::followPen()
{
    if (!m_press.held || !m_press.follows || count() == 0)
    {
        KillTimer(window(), penTimer);
        return;
    }
    const RECT area = rowsArea();
    const LONG y = m_press.now.y;
    const bool outside = y < area.top || y >= area.bottom;
    outside ? static_cast<void>(SetTimer(window(), penTimer, penTime, nullptr))
            : static_cast<void>(KillTimer(window(), penTimer));
    const int below = static_cast<int>(std::min(y, area.bottom) - area.top) / m_rowHeight;
    const int row = y < area.top ? m_top - 1 : m_top + below;
    const int target = std::clamp(row, 0, count() - 1);
    if (target == m_focus)
    {
        return;
    }
    if ((style() & LVS_SINGLESEL) != 0)
    {
        chooseOnly(target);
    }
    else
    {
        chooseTo(target, m_press.row);
    }
    show(target, false);
}

void ListView::penUp(POINT point)
{
    if (!m_press.held)
    {
        return;
    }
    const Press press = m_press;
    releasePen();
    if (press.dragged || isGone())
    {
        return;
    }
    if (press.lateChoice && isRow(press.row))
    {
        chooseOnly(press.row);
    }
    tellTap(NM_CLICK, point, press.row, press.column);
    if (isGone() || !isRow(press.row))
    {
        return;
    }
    if ((m_extended & LVS_EX_ONECLICKACTIVATE) != 0)
    {
        activate(press.row);
    }
    else if (press.chosen && (style() & LVS_EDITLABELS) != 0)
    {
        editSoon();
    }
}

void ListView::doubleTap(POINT point)
{
    editNoMore();
    LVHITTESTINFO hit{point, 0, -1, 0};
    hitTest(hit);
    if ((hit.flags & LVHT_ONITEMSTATEICON) != 0 && hit.iItem >= 0 && hasCheckBoxes())
    {
        turnCheck(hit.iItem); // two quick taps turn it twice
        return;
    }
    const bool onItem = hit.iItem >= 0 && (hasFullRows() || point.x < cellBox(hit.iItem, 0).right);
    tellTap(NM_DBLCLK, point, onItem ? hit.iItem : -1, hit.iSubItem);
    if (onItem && !isGone() && (m_extended & LVS_EX_ONECLICKACTIVATE) == 0)
    {
        m_press.at = point;
        activate(hit.iItem);
    }
}

void ListView::releasePen()
{
    KillTimer(window(), penTimer);
    if (std::exchange(m_press.held, false) && GetCapture() == window())
    {
        ReleaseCapture();
    }
}

// --- Labels ----------------------------------------------------------------------------------------------------------

HWND ListView::editLabel(int row)
{
    editNoMore();
    m_edit.end(false);
    if (!isRow(row) || (style() & LVS_EDITLABELS) == 0 || isGone())
    {
        return nullptr;
    }
    show(row, false);
    std::u16string text = textOf(row, 0);
    m_edited = row;
    const HWND edit = m_edit.make(window(), text, font());
    NMLVDISPINFOW record{};
    record.item.mask = LVIF_TEXT | LVIF_PARAM;
    record.item.iItem = row;
    record.item.pszText = text.data();
    record.item.lParam = item(row).data;
    if (notify(LVN_BEGINLABELEDITW, record.hdr) != 0 || !isRow(m_edited) || isGone() || m_edit.window() != edit)
    {
        m_edit.drop();
        m_edited = -1;
        return nullptr;
    }
    RECT label = labelBox(m_edited);
    const RECT all = client();
    const RECT within{std::max<LONG>(label.left, 0), 0, all.right, all.bottom};
    m_edit.show(label, within);
    redraw(m_edited);
    return m_edit.window();
}

void ListView::labelEdited(bool keep)
{
    const int row = std::exchange(m_edited, -1);
    if (!isRow(row))
    {
        return;
    }
    redraw(row);
    std::u16string text = m_edit.text();
    NMLVDISPINFOW record{};
    record.item.mask = keep ? LVIF_TEXT | LVIF_PARAM : LVIF_PARAM;
    record.item.iItem = row;
    record.item.pszText = keep ? text.data() : nullptr;
    record.item.cchTextMax = static_cast<int>(text.size()) + 1;
    record.item.lParam = item(row).data;
    const LRESULT answer = notify(LVN_ENDLABELEDITW, record.hdr);
    if (keep && answer != 0 && isRow(row) && !isGone())
    {
        // A text of the parent's stays the parent's, who has just been told it.
        if (!item(row).cells[0].asks)
        {
            item(row).cells[0].text = text;
        }
        redraw(row);
    }
}
} // namespace zb::internal
