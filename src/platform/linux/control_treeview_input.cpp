// Keys and pen in a tree view, and the editing of labels.
#include "platform/linux/control_treeview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
// --- Keys ------------------------------------------------------------------------------------------------------------

void TreeView::beginKeys()
{
    if (m_chosen == nullptr && rowCount() > 0)
    {
        choose(rowAt(0), TVC_UNKNOWN);
    }
}

void TreeView::moveTo(int row)
{
    if (rowCount() > 0)
    {
        choose(rowAt(std::clamp(row, 0, rowCount() - 1)), TVC_BYKEYBOARD);
    }
}

void TreeView::takeKey(int key)
{
    editNoMore();
    NMTVKEYDOWN record{};
    record.wVKey = static_cast<WORD>(key);
    notify(TVN_KEYDOWN, record.hdr);
    if (isGone())
    {
        return;
    }
    if (const auto row = rowByKey(key, rowOf(m_chosen), pageRows(), rowCount()); row.has_value())
    {
        return moveTo(*row);
    }
    const Node *chosen = find(m_chosen);
    const bool isOpen = chosen != nullptr && (chosen->state & TVIS_EXPANDED) != 0 && !chosen->children.empty();
    switch (key)
    {
    case VK_LEFT:
    case VK_BACK:
        if (key == VK_LEFT && isOpen)
        {
            expand(m_chosen, TVE_COLLAPSE, By::User);
        }
        else if (chosen != nullptr && chosen->parent != &m_root)
        {
            choose(chosen->parent->handle, TVC_BYKEYBOARD);
        }
        return;
    case VK_RIGHT:
        if (isOpen)
        {
            choose(chosen->children.front()->handle, TVC_BYKEYBOARD);
        }
        else
        {
            expand(m_chosen, TVE_EXPAND, By::User);
        }
        return;
    case VK_ADD:
    case VK_SUBTRACT:
    case VK_MULTIPLY:
        takeSign(key);
        return;
    case VK_SPACE:
        if (!m_typed.isTyping())
        {
            turnCheck(m_chosen);
        }
        return;
    case VK_RETURN:
        notify(NM_RETURN);
        return;
    case VK_F2:
        editLabel(m_chosen);
        return;
    default:
        return;
    }
}

/// In the middle of a name the signs are letters of it.
bool TreeView::takeSign(int sign)
{
    if (m_typed.isTyping() || m_chosen == nullptr)
    {
        return false;
    }
    if (sign == VK_MULTIPLY)
    {
        openAllBelow(m_chosen);
    }
    else
    {
        expand(m_chosen, sign == VK_ADD ? TVE_EXPAND : TVE_COLLAPSE, By::User);
    }
    return true;
}

void TreeView::typed(WCHAR character)
{
    const int sign = character == u'+' ? VK_ADD : character == u'-' ? VK_SUBTRACT : character == u'*' ? VK_MULTIPLY : 0;
    if ((sign == 0 || !takeSign(sign)) && m_typed.take(character))
    {
        findTyped();
    }
}

/// Among the open rows, from the chosen one on and around.
void TreeView::findTyped()
{
    const std::u16string beginning = m_typed.text();
    const int count = rowCount();
    const int first = std::max(rowOf(m_chosen), 0) + (m_typed.goesOn() ? 1 : 0);
    for (int step = 0; step < count && count == rowCount(); ++step)
    {
        const HTREEITEM item = rowAt((first + step) % count);
        if (beginsWith(textOf(item), beginning))
        {
            choose(item, TVC_BYKEYBOARD);
            return;
        }
    }
}

void TreeView::turnCheck(HTREEITEM item)
{
    Node *node = find(item);
    if (node != nullptr && hasCheckBoxes() && (node->state & TVIS_STATEIMAGEMASK) != 0)
    {
        const UINT state = (node->state & TVIS_STATEIMAGEMASK) == 0x1000U ? 0x2000U : 0x1000U;
        node->state = (node->state & ~TVIS_STATEIMAGEMASK) | state;
        redraw(item);
    }
}

// --- Pen -------------------------------------------------------------------------------------------------------------

void TreeView::penDown(POINT point)
{
    editNoMore();
    const bool hadFocus = hasFocus();
    SetFocus(window());
    if (isGone())
    {
        return;
    }
    TVHITTESTINFO hit{point, 0, nullptr};
    hitTest(hit);
    m_press = {};
    m_press.held = true;
    m_press.at = point;
    SetCapture(window());
    if (hit.flags == TVHT_ONITEMBUTTON)
    {
        expand(hit.hItem, TVE_TOGGLE, By::User);
        return;
    }
    if (hit.hItem == nullptr)
    {
        return;
    }
    m_press.item = hit.hItem;
    if (hit.flags == TVHT_ONITEMSTATEICON && hasCheckBoxes())
    {
        turnCheck(hit.hItem);
        return;
    }
    // A tap anywhere in a row is meant for it.
    m_press.edits = hadFocus && hit.flags == TVHT_ONITEMLABEL && m_chosen == hit.hItem;
    choose(hit.hItem, TVC_BYMOUSE);
}

void TreeView::penMoved(POINT point)
{
    if (!m_press.held || m_press.dragged || !isFar(point, m_press.at))
    {
        return;
    }
    m_press.dragged = true;
    if (m_press.item != nullptr && find(m_press.item) != nullptr && (style() & TVS_DISABLEDRAGDROP) == 0)
    {
        NMTREEVIEWW record{};
        record.itemNew = about(m_press.item);
        record.ptDrag = m_press.at;
        notify(TVN_BEGINDRAGW, record.hdr);
    }
}

void TreeView::penUp(POINT)
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
    const bool stops = notify(NM_CLICK) != 0;
    if (!stops && press.edits && press.item == m_chosen && (style() & TVS_EDITLABELS) != 0 && !isGone())
    {
        editSoon();
    }
}

void TreeView::doubleTap(POINT point)
{
    editNoMore();
    TVHITTESTINFO hit{point, 0, nullptr};
    hitTest(hit);
    if (hit.flags == TVHT_ONITEMBUTTON)
    {
        expand(hit.hItem, TVE_TOGGLE, By::User); // two quick taps turn it twice
        return;
    }
    if (hit.flags == TVHT_ONITEMSTATEICON && hasCheckBoxes())
    {
        turnCheck(hit.hItem);
        return;
    }
    const bool stops = notify(NM_DBLCLK) != 0;
    if (!stops && find(hit.hItem) != nullptr && !isGone())
    {
        expand(hit.hItem, TVE_TOGGLE, By::User);
    }
}

void TreeView::releasePen()
{
    if (std::exchange(m_press.held, false) && GetCapture() == window())
    {
        ReleaseCapture();
    }
}

// --- Labels ----------------------------------------------------------------------------------------------------------

HWND TreeView::editLabel(HTREEITEM item)
{
    editNoMore();
    m_edit.end(false);
    if (find(item) == nullptr || (style() & TVS_EDITLABELS) == 0 || isGone())
    {
        return nullptr;
    }
    openAbove(item);
    show(item);
    std::u16string text = textOf(item);
    m_edited = item;
    const HWND edit = m_edit.make(window(), text, font());
    NMTVDISPINFOW record{};
    record.item = about(item);
    record.item.mask |= TVIF_TEXT;
    record.item.pszText = text.data();
    const bool forbidden = notify(TVN_BEGINLABELEDITW, record.hdr) != 0;
    const int row = rowOf(item);
    if (forbidden || row < 0 || isGone() || m_edit.window() != edit)
    {
        m_edit.drop();
        m_edited = nullptr;
        return nullptr;
    }
    const Parts parts = partsOf(*find(item));
    const RECT all = client();
    RECT label = rowBox(row);
    label.left = parts.label;
    label.right = parts.end;
    m_edit.show(label, {std::clamp<LONG>(parts.label, 0, std::max<LONG>(all.right - scaledPixels(64), 0)), 0, all.right,
                        all.bottom});
    redraw(item);
    return m_edit.window();
}

void TreeView::labelEdited(bool keep)
{
    const HTREEITEM item = std::exchange(m_edited, nullptr);
    if (find(item) == nullptr)
    {
        return;
    }
    redraw(item);
    std::u16string text = m_edit.text();
    NMTVDISPINFOW record{};
    record.item = about(item);
    record.item.mask |= keep ? TVIF_TEXT : 0;
    record.item.pszText = keep ? text.data() : nullptr;
    record.item.cchTextMax = static_cast<int>(text.size()) + 1;
    const LRESULT answer = notify(TVN_ENDLABELEDITW, record.hdr);
    Node *node = find(item);
    if (keep && answer != 0 && node != nullptr && !isGone())
    {
        // A text of the parent's stays the parent's, who has just been told it.
        if (!node->asks)
        {
            node->text = text;
        }
        node->width = -1;
        changed();
    }
}
} // namespace zb::internal
