// Rows of a tree view, where their parts lie, and scrolling.
#include "platform/linux/control_treeview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
TreeView::~TreeView()
{
    if (m_bold != nullptr)
    {
        DeleteObject(m_bold);
    }
}

// --- Rows ------------------------------------------------------------------------------------------------------------

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
    const int height = imageSizeOf(m_images).cy;
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

int TreeView::textWidth(const Node &node, std::u16string_view text) const
{
    return static_cast<int>(TextMeasure(fontOf(node)).sizeOf(text).cx);
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

int TreeView::rowsWidth()
{
    const Measures all = measures();
    int widest = 0;
    for (const Node *node : rows())
    {
        widest = node->width < 0 ? widest : std::max(widest, partsOf(*node, all).end + m_left);
    }
    return widest;
}

// --- Places ----------------------------------------------------------------------------------------------------------

int TreeView::rootColumns() const
{
    const DWORD now = style();
    return (now & TVS_LINESATROOT) != 0 && (now & (TVS_HASLINES | TVS_HASBUTTONS)) != 0 ? 1 : 0;
}

int TreeView::indent() const
{
    return std::max(m_indent, scaledPixels(20));
}

TreeView::Measures TreeView::measures() const
{
    const int width = imageSizeOf(m_images).cx;
    return {rootColumns(), indent(), std::clamp(m_rowHeight, scaledPixels(20), scaledPixels(24)),
            width > 0 ? width + scaledPixels(2) : 0, scaledPixels(4)};
}

TreeView::Parts TreeView::partsOf(const Node &node, const Measures &all) const
{
    Parts parts;
    parts.state = (node.level + all.root) * all.indent - m_left;
    parts.button = parts.state - all.indent;
    parts.image = parts.state + ((node.state & TVIS_STATEIMAGEMASK) != 0 ? all.state : 0);
    parts.label = parts.image + all.image;
    parts.end = parts.label + std::max(node.width, 0) + 2 * all.gap;
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
    scrollToShow(row);
    arrange();
    if (const Node *node = find(item); node != nullptr)
    {
        const Parts parts = partsOf(*node);
        const int right = static_cast<int>(client().right);
        if (parts.state < 0 || parts.label + scaledPixels(40) > right)
        {
            scrollRightTo(static_cast<LONGLONG>(m_left) +
                          (parts.state < 0 ? parts.state - indent() : std::min(parts.end - right, parts.state)));
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
} // namespace zb::internal
