// How a tree view looks.
#include "platform/linux/control_treeview.h"

#include <algorithm>

namespace zb::internal
{
void TreeView::draw(HDC context)
{
    const RECT all = client();
    const COLORREF system = GetSysColor(isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE);
    fill(context, all, m_ground == CLR_NONE ? system : m_ground);
    SetBkMode(context, TRANSPARENT);
    const int last = m_top + pageRows() + 1;
    for (int row = m_top; row < last && !isGone(); ++row)
    {
        drawRow(context, rowAt(row));
    }
}

void TreeView::drawRow(HDC context, HTREEITEM item)
{
    const Node *node = find(item);
    if (node == nullptr)
    {
        return;
    }
    const RECT box = rowBox(node->row);
    if ((style() & TVS_HASLINES) != 0)
    {
        drawLines(context, *node, box);
    }
    if ((style() & TVS_HASBUTTONS) != 0 && buttonColumns(*node) > 0 && hasChildren(item))
    {
        node = find(item);
        if (node != nullptr)
        {
            drawButton(context, *node, box);
        }
    }
    drawLabel(context, item, box);
}

/// Down from what holds the row, past it when others follow, and out to it; the same for all that hold it further up.
void TreeView::drawLines(HDC context, const Node &node, const RECT &box) const
{
    const int columns = buttonColumns(node);
    if (columns == 0)
    {
        return;
    }
    const int indent = this->indent();
    const int thick = scaledPixels(1);
    const COLORREF color = GetSysColor(COLOR_BTNSHADOW);
    int x = partsOf(node).button + indent / 2;
    const LONG middle = (box.top + box.bottom) / 2;
    const bool isFirst = node.parent == &m_root && siblingOf(node, -1) == nullptr;
    const bool isLast = siblingOf(node, 1) == nullptr;
    fill(context, {x, isFirst ? middle : box.top, x + thick, isLast ? middle + thick : box.bottom}, color);
    fill(context, {x, middle, x + indent / 2 - scaledPixels(1), middle + thick}, color);
    const Node *above = node.parent;
    for (int column = columns - 1; column > 0 && above != &m_root; --column, above = above->parent)
    {
        x -= indent;
        if (x + thick > 0 && siblingOf(*above, 1) != nullptr)
        {
            fill(context, {x, box.top, x + thick, box.bottom}, color);
        }
    }
}

void TreeView::drawButton(HDC context, const Node &node, const RECT &box) const
{
    const int side = scaledPixels(11) | 1;
    const int thick = scaledPixels(1);
    const LONG left = partsOf(node).button + indent() / 2 - side / 2;
    const LONG top = (box.top + box.bottom) / 2 - side / 2;
    const RECT frame{left, top, left + side, top + side};
    fill(context, frame, GetSysColor(isEnabled() ? COLOR_3DDKSHADOW : COLOR_INACTIVEBORDER));
    RECT inside = frame;
    InflateRect(&inside, -thick, -thick);
    fill(context, inside, GetSysColor(isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE));
    const COLORREF ink = GetSysColor(isEnabled() ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT);
    const LONG arm = scaledPixels(2);
    const LONG x = left + side / 2;
    const LONG y = top + side / 2;
    const LONG half = thick / 2;
    fill(context, {frame.left + arm + thick, y - half, frame.right - arm - thick, y - half + thick}, ink);
    if ((node.state & TVIS_EXPANDED) == 0 || node.children.empty())
    {
        fill(context, {x - half, frame.top + arm + thick, x - half + thick, frame.bottom - arm - thick}, ink);
    }
}

void TreeView::drawLabel(HDC context, HTREEITEM item, const RECT &box)
{
    const std::u16string text = textOf(item);
    const int image = imageOf(item, item == m_chosen);
    const Node *node = find(item);
    if (node == nullptr)
    {
        return;
    }
    const Parts parts = partsOf(*node);
    const bool full = (style() & TVS_FULLROWSELECT) != 0;
    const bool focused = hasFocus() || m_edit.isShown();
    const bool dropped = item == m_dropped;
    const bool chosen = dropped || (item == m_chosen && (focused || (style() & TVS_SHOWSELALWAYS) != 0));
    const bool strong = isEnabled() && (focused || dropped);
    RECT mark{full ? 0 : parts.label, box.top, full ? box.right : parts.end, box.bottom};
    const bool quiet = !isEnabled() || (node->state & TVIS_CUT) != 0;
    COLORREF ink = quiet ? GetSysColor(COLOR_GRAYTEXT) : m_ink == CLR_NONE ? GetSysColor(COLOR_WINDOWTEXT) : m_ink;
    if (chosen)
    {
        mark.left = full ? std::max<LONG>(parts.state, 0) : mark.left;
        fill(context, mark, GetSysColor(strong ? COLOR_HIGHLIGHT : COLOR_APPWORKSPACE));
        ink = strong ? GetSysColor(COLOR_HIGHLIGHTTEXT) : ink;
    }
    drawState(context, m_states, stateImageOf(node->state), {parts.state, box.top, parts.image, box.bottom});
    if (const SIZE size = imageSizeOf(m_images); image >= 0 && size.cx > 0)
    {
        ImageList_Draw(m_images, image, context, parts.image, box.top + (m_rowHeight - size.cy) / 2, ILD_TRANSPARENT);
    }
    if (!(m_edit.isShown() && item == m_edited))
    {
        SelectObject(context, fontOf(*node));
        SetTextColor(context, ink);
        const int gap = scaledPixels(4);
        RECT inside{parts.label + gap, box.top, parts.end + gap, box.bottom};
        DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &inside,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    }
    if (hasFocus() && item == m_chosen)
    {
        SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
        DrawFocusRect(context, &mark);
    }
}
} // namespace zb::internal
