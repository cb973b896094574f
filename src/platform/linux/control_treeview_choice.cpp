// Which item of a tree view is chosen, and which ones are open.
#include "platform/linux/control_treeview.h"

#include <utility>

namespace zb::internal
{
bool TreeView::choose(HTREEITEM item, UINT how)
{
    if (item != nullptr && find(item) == nullptr)
    {
        return false;
    }
    if (item == m_chosen)
    {
        return true;
    }
    NMTREEVIEWW record{};
    record.action = how;
    record.itemOld = about(m_chosen);
    record.itemNew = about(item);
    if (notify(TVN_SELCHANGINGW, record.hdr) != 0 || isGone() || (item != nullptr && find(item) == nullptr))
    {
        return false;
    }
    const HTREEITEM former = std::exchange(m_chosen, item);
    redraw(former);
    if (item != nullptr)
    {
        openAbove(item);
        show(item);
        redraw(item);
    }
    record.itemOld = about(former);
    record.itemNew = about(item);
    notify(TVN_SELCHANGEDW, record.hdr);
    return true;
}

bool TreeView::expand(HTREEITEM item, WPARAM how, By by)
{
    const Node *node = find(item);
    if (node == nullptr)
    {
        return false;
    }
    const bool isOpen = (node->state & TVIS_EXPANDED) != 0;
    const WPARAM step = how & TVE_TOGGLE;
    const bool opens = step == TVE_EXPAND || (step == TVE_TOGGLE && !isOpen);
    if (step == 0)
    {
        return false;
    }
    const bool done = opens != isOpen && setOpen(item, opens, by);
    if (!opens && (how & TVE_COLLAPSERESET) != 0)
    {
        if (Node *reset = find(item); reset != nullptr)
        {
            eraseBelow(*reset, false);
            reset = find(item);
            if (reset != nullptr)
            {
                reset->state &= ~(TVIS_EXPANDED | TVIS_EXPANDEDONCE);
            }
        }
    }
    return done;
}

bool TreeView::setOpen(HTREEITEM item, bool open, By by)
{
    if (open && !hasChildren(item))
    {
        return false;
    }
    const Node *before = find(item);
    if (before == nullptr)
    {
        return false;
    }
    const bool tells = by == By::User || (open && (before->state & TVIS_EXPANDEDONCE) == 0);
    NMTREEVIEWW record{};
    record.action = static_cast<UINT>(open ? TVE_EXPAND : TVE_COLLAPSE);
    record.itemNew = about(item);
    if (tells && notify(TVN_ITEMEXPANDINGW, record.hdr) != 0)
    {
        return false;
    }
    Node *node = find(item);
    if (node == nullptr || isGone())
    {
        return false;
    }
    // Whether there really is something below has only been settled now.
    node->state = open && !node->children.empty() ? node->state | TVIS_EXPANDED | TVIS_EXPANDEDONCE
                                                  : node->state & ~TVIS_EXPANDED;
    if (open && (style() & TVS_SINGLEEXPAND) != 0)
    {
        for (Node *sibling : node->parent->children)
        {
            sibling->state &= sibling == node ? ~0U : ~TVIS_EXPANDED;
        }
    }
    changed();
    if (const Node *chosen = find(m_chosen); !open && chosen != nullptr && isBelow(*chosen, *node))
    {
        choose(item, TVC_UNKNOWN);
    }
    if (tells && find(item) != nullptr)
    {
        record.itemNew = about(item);
        notify(TVN_ITEMEXPANDEDW, record.hdr);
    }
    return true;
}

void TreeView::openAbove(HTREEITEM item)
{
    std::vector<HTREEITEM> above;
    for (const Node *node = find(item); node != nullptr && node->parent != &m_root && node->parent != nullptr;
         node = node->parent)
    {
        above.push_back(node->parent->handle);
    }
    for (auto one = above.rbegin(); one != above.rend(); ++one)
    {
        expand(*one, TVE_EXPAND, By::Message);
    }
}

void TreeView::openAllBelow(HTREEITEM item)
{
    std::vector<HTREEITEM> open{item};
    while (!open.empty() && !isGone())
    {
        const HTREEITEM one = open.back();
        open.pop_back();
        expand(one, TVE_EXPAND, By::User);
        if (const Node *node = find(one); node != nullptr)
        {
            for (const Node *child : node->children)
            {
                open.push_back(child->handle);
            }
        }
    }
}
} // namespace zb::internal
