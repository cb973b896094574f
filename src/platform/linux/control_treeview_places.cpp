// Rows of a tree view, where their parts lie, scrolling, and how it looks.
#include "platform/linux/control_treeview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
int gap()
{
    return scaledPixels(4);
}

/// What a button or a line of one level takes; a finger must meet it.
int leastIndent()
{
    return scaledPixels(20);
}

void fill(HDC context, const RECT &box, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(context, &box, brush);
    DeleteObject(brush);
}
} // namespace

TreeView::TreeView(HWND window) : NotifyingControl(window)
{
}

TreeView::~TreeView()
{
    if (m_bold != nullptr)
    {
        DeleteObject(m_bold);
    }
}

// --- Rows --------------------------------------------------------------------------------------------------------------

/// Rows have come, gone or moved: they are counted again when somebody needs them, at the latest by the next paint.
void TreeView::changed()
{
    m_rowsDue = true;
    if (!isGone())
    {
        refresh();
    }
}

const std::vector<TreeView::Node *> &TreeView::rows()
{
    if (!m_rowsDue)
    {
        return m_rows;
    }
    for (const auto &[handle, node] : m_nodes)
    {
        node->row = -1;
    }
    m_rows.clear();
    std::vector<Node *> open(m_root.children.rbegin(), m_root.children.rend());
    while (!open.empty())
    {
        Node *node = open.back();
        open.pop_back();
        node->row = static_cast<int>(m_rows.size());
        m_rows.push_back(node);
        if ((node->state & TVIS_EXPANDED) != 0)
        {
            open.insert(open.end(), node->children.rbegin(), node->children.rend());
        }
    }
    m_rowsDue = false;
    return m_rows;
}

int TreeView::rowOf(HTREEITEM item)
{
    rows();
    const Node *node = find(item);
    return node == nullptr ? -1 : node->row;
}

HTREEITEM TreeView::rowAt(int row)
{
    return row >= 0 && row < rowCount() ? rows()[static_cast<std::size_t>(row)]->handle : nullptr;
}

void TreeView::measure()
{
    if (m_bold != nullptr)
    {
        DeleteObject(std::exchange(m_bold, nullptr));
    }
    LOGFONTW description{};
    GetObjectW(font(), sizeof description, &description);
    description.lfWeight = FW_BOLD;
    m_bold = CreateFontIndirectW(&description);
    int width = 0;
    int height = 0;
    if (m_images != nullptr)
    {
        ImageList_GetIconSize(m_images, &width, &height);
    }
    m_rowHeight = m_ownHeight > 0 ? m_ownHeight : std::max(rowHeightOf(font()), height + 2 * scaledPixels(1));
    for (const auto &[handle, node] : m_nodes)
    {
        node->width = -1;
    }
    arrange();
    refresh();
}

HFONT TreeView::fontOf(const Node &node) const
{
    return (node.state & TVIS_BOLD) != 0 && m_bold != nullptr ? m_bold : font();
}

int TreeView::pageRows() const
{
    return std::max<int>(client().bottom / m_rowHeight, 1);
}

int TreeView::highestTop()
{
    return std::max(rowCount() - pageRows(), 0);
}

int TreeView::textWidth(const Node &node, std::u16string_view text) const
{
    const HDC context = CreateCompatibleDC(nullptr);
    SelectObject(context, fontOf(node));
    SIZE size{};
    GetTextExtentPoint32W(context, text.data(), static_cast<int>(text.size()), &size);
    DeleteDC(context);
    return size.cx;
}

/// Widths are measured when a row first shows, so that a long tree opens at once; the bar below grows with them.
void TreeView::measureShown()
{
    for (int row = m_top; row <= m_top + pageRows() && row < rowCount(); ++row)
    {
        const HTREEITEM item = rowAt(row);
        if (const Node *node = find(item); node != nullptr && (node->width < 0 || node->asks))
        {
            const std::u16string text = textOf(item);
            if (Node *again = find(item); again != nullptr)
            {
                again->width = textWidth(*again, text);
            }
        }
    }
}

int TreeView::widest()
{
    int widest = 0;
    for (const Node *node : rows())
    {
        widest = node->width < 0 ? widest : std::max(widest, partsOf(*node).end + m_left);
    }
    return widest;
}

/// A bar is told of changes alone: each telling draws it, and every paint comes by here.
void TreeView::setBar(int bar, const Bar &wanted)
{
    if (std::exchange(m_bars[bar], wanted) != wanted)
    {
        const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, wanted.most,
                              static_cast<UINT>(wanted.page), wanted.position, 0};
        SetScrollInfo(window(), bar, &info, TRUE);
    }
}

/// Scroll bars and what is scrolled; worked out from the whole area, so that neither bar stays for the other's sake.
void TreeView::arrange()
{
    if (m_arranging || isGone())
    {
        return;
    }
    m_arranging = true;
    measureShown();
    const int count = rowCount();
    const int wanted = widest();
    if ((style() & TVS_NOSCROLL) == 0)
    {
        const int barWidth = GetSystemMetrics(SM_CXVSCROLL);
        const int barHeight = GetSystemMetrics(SM_CYHSCROLL);
        const RECT now = client();
        const int fullWidth = static_cast<int>(now.right) + ((style() & WS_VSCROLL) != 0 ? barWidth : 0);
        const int fullHeight = static_cast<int>(now.bottom) + ((style() & WS_HSCROLL) != 0 ? barHeight : 0);
        const auto rowsFit = [&](int height) { return count <= std::max(height / m_rowHeight, 1); };
        bool vertical = !rowsFit(fullHeight);
        const bool horizontal = wanted > fullWidth - (vertical ? barWidth : 0);
        vertical = vertical || (horizontal && !rowsFit(fullHeight - barHeight));
        const int width = std::max(fullWidth - (vertical ? barWidth : 0), 1);
        const int page = std::max((fullHeight - (horizontal ? barHeight : 0)) / m_rowHeight, 1);
        m_top = std::clamp(m_top, 0, std::max(count - page, 0));
        m_left = std::clamp(m_left, 0, std::max(wanted - width, 0));
        setBar(SB_VERT, {std::max(count - 1, 0), vertical ? page : count + 1, m_top});
        setBar(SB_HORZ, {std::max(wanted - 1, 0), horizontal ? width : wanted + 1, m_left});
    }
    m_top = std::clamp(m_top, 0, highestTop());
    m_left = std::clamp(m_left, 0, std::max(wanted - static_cast<int>(client().right), 0));
    m_arranging = false;
}

// --- Places ------------------------------------------------------------------------------------------------------------

int TreeView::buttonColumns(const Node &node) const
{
    const bool atRoot = (style() & TVS_LINESATROOT) != 0 && (style() & (TVS_HASLINES | TVS_HASBUTTONS)) != 0;
    return node.level + (atRoot ? 1 : 0);
}

int TreeView::rowLeft(const Node &node) const
{
    return buttonColumns(node) * std::max(m_indent, leastIndent()) - m_left;
}

TreeView::Parts TreeView::partsOf(const Node &node) const
{
    int width = 0;
    int height = 0;
    if (m_images != nullptr)
    {
        ImageList_GetIconSize(m_images, &width, &height);
    }
    Parts parts;
    parts.state = rowLeft(node);
    parts.button = parts.state - std::max(m_indent, leastIndent());
    const bool hasState = (node.state & TVIS_STATEIMAGEMASK) != 0;
    parts.image = parts.state + (hasState ? std::min(std::max(m_rowHeight, scaledPixels(20)), scaledPixels(24)) : 0);
    parts.label = parts.image + (width > 0 ? width + scaledPixels(2) : 0);
    parts.end = parts.label + std::max(node.width, 0) + 2 * gap();
    return parts;
}

RECT TreeView::rowBox(int row) const
{
    const LONG top = (row - m_top) * m_rowHeight;
    return {0, top, client().right, top + m_rowHeight};
}

HTREEITEM TreeView::hitTest(TVHITTESTINFO &hit)
{
    const RECT all = client();
    hit.hItem = nullptr;
    hit.flags = (hit.pt.x < 0 ? TVHT_TOLEFT : 0) | (hit.pt.x >= all.right ? TVHT_TORIGHT : 0) |
                (hit.pt.y < 0 ? TVHT_ABOVE : 0) | (hit.pt.y >= all.bottom ? TVHT_BELOW : 0);
    if (hit.flags != 0)
    {
        return nullptr;
    }
    hit.flags = TVHT_NOWHERE;
    measureShown();
    const HTREEITEM item = rowAt(m_top + static_cast<int>(hit.pt.y) / m_rowHeight);
    const Node *node = find(item);
    if (node == nullptr)
    {
        return nullptr;
    }
    const Parts parts = partsOf(*node);
    const bool atButton = (style() & TVS_HASBUTTONS) != 0 && buttonColumns(*node) > 0 && hit.pt.x >= parts.button &&
                          hit.pt.x < parts.state;
    hit.hItem = item;
    hit.flags = hit.pt.x >= parts.end     ? TVHT_ONITEMRIGHT
                : hit.pt.x >= parts.label ? TVHT_ONITEMLABEL
                : hit.pt.x >= parts.image ? TVHT_ONITEMICON
                : hit.pt.x >= parts.state ? TVHT_ONITEMSTATEICON
                                          : TVHT_ONITEMINDENT;
    if (atButton && hasChildren(item))
    {
        hit.flags = TVHT_ONITEMBUTTON;
    }
    return item;
}

void TreeView::scrollTo(LONGLONG top)
{
    const int fresh = static_cast<int>(std::clamp<LONGLONG>(top, 0, highestTop()));
    if (fresh != m_top)
    {
        m_edit.end(true);
        m_top = fresh;
        arrange();
        refresh();
    }
}

void TreeView::scrollRightTo(LONGLONG left)
{
    const LONGLONG most = std::max<LONGLONG>(widest() - client().right, 0);
    const int fresh = static_cast<int>(std::clamp<LONGLONG>(left, 0, most));
    if (fresh != m_left)
    {
        m_edit.end(true);
        m_left = fresh;
        arrange();
        refresh();
    }
}

/// Scrolls to an item of an open row; sideways only when its label would begin out of sight.
bool TreeView::show(HTREEITEM item)
{
    const int row = rowOf(item);
    if (row < 0)
    {
        return false;
    }
    const int top = m_top;
    const int left = m_left;
    if (row < m_top)
    {
        scrollTo(row);
    }
    else if (row >= m_top + pageRows())
    {
        scrollTo(row - pageRows() + 1);
    }
    arrange();
    if (const Node *node = find(item); node != nullptr)
    {
        const Parts parts = partsOf(*node);
        const int right = static_cast<int>(client().right);
        if (parts.state < 0 || parts.label + scaledPixels(40) > right)
        {
            const int before = std::max(m_indent, leastIndent());
            scrollRightTo(parts.state < 0 ? static_cast<LONGLONG>(m_left) + parts.state - before
                                          : static_cast<LONGLONG>(m_left) + std::min(parts.end - right, parts.state));
        }
    }
    return top != m_top || left != m_left;
}

void TreeView::redraw(HTREEITEM item)
{
    const Node *node = find(item);
    if (node == nullptr || isGone())
    {
        return;
    }
    if (m_rowsDue)
    {
        refresh();
        return;
    }
    if (node->row >= m_top && node->row <= m_top + pageRows())
    {
        const RECT box = rowBox(node->row);
        InvalidateRect(window(), &box, FALSE);
    }
}

// --- Looks -------------------------------------------------------------------------------------------------------------

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
    const int indent = std::max(m_indent, leastIndent());
    const int thick = scaledPixels(1);
    const COLORREF color = GetSysColor(COLOR_BTNSHADOW);
    int x = rowLeft(node) - indent + indent / 2;
    const LONG middle = (box.top + box.bottom) / 2;
    const Node *one = &node;
    for (int column = buttonColumns(node); column > 0 && one->parent != nullptr; --column, one = one->parent, x -= indent)
    {
        const bool follows = siblingOf(*one, 1) != nullptr;
        if (x + thick <= 0 && one != &node)
        {
            continue;
        }
        if (one == &node)
        {
            const bool isFirst = node.parent == &m_root && siblingOf(node, -1) == nullptr;
            fill(context, {x, isFirst ? middle : box.top, x + thick, follows ? box.bottom : middle + thick}, color);
            fill(context, {x, middle, x + indent / 2 - scaledPixels(1), middle + thick}, color);
        }
        else if (follows)
        {
            fill(context, {x, box.top, x + thick, box.bottom}, color);
        }
    }
}

void TreeView::drawButton(HDC context, const Node &node, const RECT &box) const
{
    const int indent = std::max(m_indent, leastIndent());
    const int side = scaledPixels(11) | 1;
    const int thick = scaledPixels(1);
    const LONG left = partsOf(node).button + indent / 2 - side / 2;
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

void TreeView::drawState(HDC context, const Node &node, const RECT &box) const
{
    const int state = static_cast<int>((node.state & TVIS_STATEIMAGEMASK) >> 12U);
    if (state == 0)
    {
        return;
    }
    const Parts parts = partsOf(node);
    const int place = parts.image - parts.state;
    if (m_states != nullptr)
    {
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(m_states, &width, &height);
        ImageList_Draw(m_states, state - 1, context, parts.state + (place - width) / 2,
                       box.top + (m_rowHeight - height) / 2, ILD_TRANSPARENT);
        return;
    }
    const int side = scaledPixels(13);
    const int x = parts.state + (place - side) / 2;
    const int y = static_cast<int>(box.top) + (m_rowHeight - side) / 2;
    RECT check{x, y, x + side, y + side};
    DrawFrameControl(context, &check, DFC_BUTTON,
                     DFCS_BUTTONCHECK | (state == 2 ? DFCS_CHECKED : 0) | (isEnabled() ? 0 : DFCS_INACTIVE));
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
    drawState(context, *node, box);
    int width = 0;
    int height = 0;
    if (m_images != nullptr && image >= 0 && ImageList_GetIconSize(m_images, &width, &height) != FALSE)
    {
        ImageList_Draw(m_images, image, context, parts.image, box.top + (m_rowHeight - height) / 2, ILD_TRANSPARENT);
    }
    if (!(m_edit.isShown() && item == m_edited))
    {
        SelectObject(context, fontOf(*node));
        SetTextColor(context, ink);
        RECT inside{parts.label + gap(), box.top, parts.end + gap(), box.bottom};
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
