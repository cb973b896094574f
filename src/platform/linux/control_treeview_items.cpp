// Items of a tree view: the tree, their texts, erasing and sorting them.
#include "platform/linux/control_treeview.h"
#include "platform/linux/merge_rows.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
TreeView::Node *TreeView::find(HTREEITEM item) const
{
    const auto found = m_nodes.find(item);
    return found == m_nodes.end() ? nullptr : found->second.get();
}

TreeView::Node *TreeView::parentFor(HTREEITEM item)
{
    return item == nullptr || item == TVI_ROOT ? &m_root : find(item);
}

void TreeView::number(Node &parent)
{
    for (std::size_t place = 0; place < parent.children.size() && !parent.isNumbered; ++place)
    {
        parent.children[place]->place = place;
    }
    parent.isNumbered = true;
}

TreeView::Node *TreeView::siblingOf(const Node &node, int step)
{
    number(*node.parent);
    const auto &siblings = node.parent->children;
    const auto place = static_cast<LONGLONG>(node.place) + step;
    return place >= 0 && place < static_cast<LONGLONG>(siblings.size()) ? siblings[static_cast<std::size_t>(place)]
                                                                       : nullptr;
}

bool TreeView::isBelow(const Node &node, const Node &top)
{
    const Node *one = node.parent;
    while (one != nullptr && one != &top)
    {
        one = one->parent;
    }
    return one == &top;
}

TreeView::Node *TreeView::nextTo(WPARAM which, HTREEITEM item)
{
    const auto firstOf = [](const Node *node)
    { return node == nullptr || node->children.empty() ? nullptr : node->children.front(); };
    switch (which)
    {
    case TVGN_ROOT:
        return firstOf(&m_root);
    case TVGN_CHILD:
        return firstOf(parentFor(item));
    case TVGN_CARET:
        return find(m_chosen);
    case TVGN_DROPHILITE:
        return find(m_dropped);
    case TVGN_FIRSTVISIBLE:
        return find(rowAt(m_top));
    case TVGN_LASTVISIBLE:
        return find(rowAt(rowCount() - 1));
    default:
        break;
    }
    const Node *node = find(item);
    if (node == nullptr)
    {
        return nullptr;
    }
    switch (which)
    {
    case TVGN_NEXT:
        return siblingOf(*node, 1);
    case TVGN_PREVIOUS:
        return siblingOf(*node, -1);
    case TVGN_PARENT:
        return node->parent == &m_root ? nullptr : node->parent;
    case TVGN_NEXTVISIBLE:
    case TVGN_PREVIOUSVISIBLE:
    {
        const int row = rowOf(item);
        return row < 0 ? nullptr : find(rowAt(row + (which == TVGN_NEXTVISIBLE ? 1 : -1)));
    }
    default:
        return nullptr;
    }
}

// --- Items -----------------------------------------------------------------------------------------------------------

std::size_t TreeView::placeFor(Node &parent, HTREEITEM after, const std::u16string &text)
{
    auto &siblings = parent.children;
    if (after == TVI_FIRST)
    {
        return 0;
    }
    if (after == TVI_SORT)
    {
        const auto place = std::partition_point(siblings.begin(), siblings.end(), [&](const Node *other)
                                                { return compareTexts(other->text, text) <= 0; });
        return static_cast<std::size_t>(place - siblings.begin());
    }
    const Node *before = find(after);
    if (before == nullptr || before->parent != &parent || before == siblings.back())
    {
        return siblings.size();
    }
    number(parent);
    return before->place + 1;
}

HTREEITEM TreeView::insert(const TVINSERTSTRUCTW &given)
{
    Node *parent = parentFor(given.hParent);
    if (parent == nullptr || m_sorting)
    {
        return nullptr;
    }
    auto made = std::make_unique<Node>();
    Node &fresh = *made;
    fresh.handle = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(++m_lastHandle));
    fresh.parent = parent;
    fresh.level = parent->level + 1;
    fresh.state = hasCheckBoxes() ? 0x1000U : 0U;
    apply(fresh, given.item);
    const std::size_t place = placeFor(*parent, given.hInsertAfter, fresh.text);
    parent->isNumbered = parent->isNumbered && place == parent->children.size();
    fresh.place = place;
    parent->children.insert(parent->children.begin() + static_cast<std::ptrdiff_t>(place), &fresh);
    m_nodes.emplace(fresh.handle, std::move(made));
    if (const bool shows = parent == &m_root || (parent->state & TVIS_EXPANDED) != 0; shows)
    {
        changed();
    }
    else
    {
        redraw(parent->handle); // it may have got a button
    }
    return fresh.handle;
}

void TreeView::apply(Node &node, const TVITEMW &given)
{
    if ((given.mask & TVIF_TEXT) != 0)
    {
        node.asks = given.pszText == LPSTR_TEXTCALLBACKW;
        node.text = node.asks || given.pszText == nullptr ? u"" : given.pszText;
        node.width = -1;
    }
    node.image = (given.mask & TVIF_IMAGE) != 0 ? given.iImage : node.image;
    node.selectedImage = (given.mask & TVIF_SELECTEDIMAGE) != 0 ? given.iSelectedImage : node.selectedImage;
    node.data = (given.mask & TVIF_PARAM) != 0 ? given.lParam : node.data;
    node.childrenHint = (given.mask & TVIF_CHILDREN) != 0 ? given.cChildren : node.childrenHint;
    if ((given.mask & TVIF_STATE) != 0)
    {
        // Which one is chosen is not for an item to say.
        const UINT bits = given.stateMask & ~TVIS_SELECTED;
        node.state = (node.state & ~bits) | (given.state & bits);
        node.width = (bits & TVIS_BOLD) != 0 ? -1 : node.width;
    }
}

bool TreeView::setItem(const TVITEMW &given)
{
    Node *node = find(given.hItem);
    if (node == nullptr)
    {
        return false;
    }
    const UINT former = node->state;
    apply(*node, given);
    if (((former ^ node->state) & TVIS_EXPANDED) != 0)
    {
        changed();
    }
    redraw(given.hItem);
    return true;
}

std::u16string TreeView::textOf(HTREEITEM item)
{
    const Node *node = find(item);
    if (node == nullptr || !node->asks)
    {
        return node == nullptr ? std::u16string() : node->text;
    }
    WCHAR buffer[512] = {};
    NMTVDISPINFOW record{};
    record.item = about(item);
    record.item.mask = TVIF_TEXT;
    record.item.pszText = buffer;
    record.item.cchTextMax = static_cast<int>(std::size(buffer));
    notify(TVN_GETDISPINFOW, record.hdr);
    buffer[std::size(buffer) - 1] = 0;
    const std::u16string text = record.item.pszText == nullptr ? u"" : record.item.pszText;
    if (Node *again = find(item); again != nullptr && (record.item.mask & TVIF_DI_SETITEM) != 0)
    {
        again->text = text;
        again->asks = false;
    }
    return text;
}

int TreeView::imageOf(HTREEITEM item, bool selected)
{
    const Node *node = find(item);
    const int image = node == nullptr ? I_IMAGENONE : selected ? node->selectedImage : node->image;
    if (image != I_IMAGECALLBACK)
    {
        return image;
    }
    NMTVDISPINFOW record{};
    record.item = about(item);
    record.item.mask = selected ? TVIF_SELECTEDIMAGE : TVIF_IMAGE;
    record.item.iImage = record.item.iSelectedImage = I_IMAGENONE;
    notify(TVN_GETDISPINFOW, record.hdr);
    return selected ? record.item.iSelectedImage : record.item.iImage;
}

bool TreeView::hasChildren(HTREEITEM item)
{
    const Node *node = find(item);
    if (node == nullptr || !node->children.empty() || node->childrenHint != I_CHILDRENCALLBACK)
    {
        return node != nullptr && (!node->children.empty() || node->childrenHint > 0);
    }
    NMTVDISPINFOW record{};
    record.item = about(item);
    record.item.mask = TVIF_CHILDREN;
    record.item.cChildren = 0;
    notify(TVN_GETDISPINFOW, record.hdr);
    return record.item.cChildren > 0;
}

bool TreeView::getItem(TVITEMW &wanted)
{
    const HTREEITEM item = wanted.hItem;
    if (find(item) == nullptr)
    {
        return false;
    }
    if ((wanted.mask & TVIF_TEXT) != 0 && wanted.pszText != nullptr && wanted.cchTextMax > 0)
    {
        putText(textOf(item), wanted.pszText, static_cast<std::size_t>(wanted.cchTextMax));
    }
    wanted.iImage = (wanted.mask & TVIF_IMAGE) != 0 ? imageOf(item, false) : wanted.iImage;
    wanted.iSelectedImage = (wanted.mask & TVIF_SELECTEDIMAGE) != 0 ? imageOf(item, true) : wanted.iSelectedImage;
    wanted.cChildren = (wanted.mask & TVIF_CHILDREN) != 0 ? (hasChildren(item) ? 1 : 0) : wanted.cChildren;
    const Node *node = find(item);
    if (node == nullptr)
    {
        return false;
    }
    wanted.lParam = (wanted.mask & TVIF_PARAM) != 0 ? node->data : wanted.lParam;
    wanted.state = (wanted.mask & TVIF_STATE) != 0 ? about(item).state : wanted.state;
    return true;
}

TVITEMW TreeView::about(HTREEITEM item) const
{
    TVITEMW told{};
    if (const Node *node = find(item); node != nullptr)
    {
        told.mask = TVIF_HANDLE | TVIF_PARAM | TVIF_STATE;
        told.hItem = item;
        told.state = node->state | (item == m_chosen ? TVIS_SELECTED : 0) | (item == m_dropped ? TVIS_DROPHILITED : 0);
        told.stateMask = ~0U;
        told.lParam = node->data;
    }
    return told;
}

// --- Erasing ---------------------------------------------------------------------------------------------------------

bool TreeView::erase(HTREEITEM item)
{
    if (m_sorting)
    {
        return false;
    }
    m_edit.end(false);
    if (item == nullptr || item == TVI_ROOT)
    {
        m_chosen = m_dropped = nullptr;
        eraseBelow(m_root, false);
        return true;
    }
    Node *node = find(item);
    if (node == nullptr)
    {
        return false;
    }
    chooseBeforeErasing(*node);
    if (node = find(item); node != nullptr)
    {
        eraseBelow(*node, true);
    }
    return true;
}

/// What was chosen below goes over to what stays: the next beside it, the one before, or what held it.
void TreeView::chooseBeforeErasing(const Node &gone)
{
    const Node *chosen = find(m_chosen);
    if (chosen == nullptr || (chosen != &gone && !isBelow(*chosen, gone)))
    {
        return;
    }
    const Node *next = siblingOf(gone, 1);
    next = next != nullptr ? next : siblingOf(gone, -1);
    next = next != nullptr ? next : gone.parent == &m_root ? nullptr : gone.parent;
    const HTREEITEM wanted = next == nullptr ? nullptr : next->handle;
    if (!choose(wanted, TVC_UNKNOWN))
    {
        m_chosen = nullptr;
    }
}

void TreeView::eraseBelow(Node &top, bool itself)
{
    // Without recursion: a tree may be as deep as it has items.
    std::vector<HTREEITEM> doomed;
    std::vector<Node *> open{&top};
    while (!open.empty())
    {
        Node *node = open.back();
        open.pop_back();
        if (node != &top || itself)
        {
            doomed.push_back(node->handle);
        }
        open.insert(open.end(), node->children.begin(), node->children.end());
    }
    for (auto item = doomed.rbegin(); item != doomed.rend(); ++item)
    {
        NMTREEVIEWW record{};
        record.itemOld = about(*item);
        notify(TVN_DELETEITEMW, record.hdr);
    }
    // Each parent once, however many of its children go.
    std::vector<Node *> parents;
    for (auto item = doomed.rbegin(); item != doomed.rend(); ++item)
    {
        Node *node = find(*item);
        // The parent may have put new ones below meanwhile, which then keep what holds them.
        if (node != nullptr && std::all_of(node->children.begin(), node->children.end(),
                                           [](const Node *child) { return child->isGone; }))
        {
            node->isGone = true;
            if (parents.empty() || parents.back() != node->parent)
            {
                parents.push_back(node->parent);
            }
        }
    }
    for (Node *parent : parents)
    {
        std::erase_if(parent->children, [](const Node *child) { return child->isGone; });
        parent->isNumbered = false;
    }
    for (const HTREEITEM item : doomed)
    {
        if (const Node *node = find(item); node != nullptr && node->isGone)
        {
            m_nodes.erase(item);
        }
    }
    m_dropped = find(m_dropped) == nullptr ? nullptr : m_dropped;
    m_rowsDue = true;
    if (!isGone())
    {
        changed();
    }
}

// --- Sorting ---------------------------------------------------------------------------------------------------------

bool TreeView::sortByText(HTREEITEM parent)
{
    const Node *top = parentFor(parent);
    if (top == nullptr || m_sorting)
    {
        return false;
    }
    std::unordered_map<const Node *, std::u16string> texts;
    const std::vector<Node *> children = top->children;
    m_sorting = true; // texts of the parent's are asked for
    for (const Node *child : children)
    {
        texts[child] = textOf(child->handle);
    }
    m_sorting = false;
    Node *again = parentFor(parent);
    if (again == nullptr)
    {
        return false;
    }
    mergeRows(again->children,
              [&](const Node *one, const Node *other) { return compareTexts(texts[one], texts[other]); });
    again->isNumbered = false;
    changed();
    return true;
}

bool TreeView::sortBy(const TVSORTCB &order)
{
    Node *top = parentFor(order.hParent);
    if (top == nullptr || order.lpfnCompare == nullptr || m_sorting)
    {
        return false;
    }
    std::vector<Node *> sorted = top->children;
    m_sorting = true; // so that nothing comes or goes meanwhile
    mergeRows(sorted, [&](const Node *one, const Node *other)
              { return order.lpfnCompare(one->data, other->data, order.lParam); });
    m_sorting = false;
    top->children = std::move(sorted);
    top->isNumbered = false;
    changed();
    return true;
}
} // namespace zb::internal
