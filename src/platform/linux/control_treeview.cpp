// The tree view's messages.
#include "platform/linux/control_treeview.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zb::internal
{
namespace
{
HTREEITEM itemOf(LPARAM value)
{
    return reinterpret_cast<HTREEITEM>(value);
}
} // namespace

LRESULT TreeView::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    return takeItems(message, wParam, lParam);
}

LRESULT TreeView::takeItems(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case TVM_INSERTITEMW:
        return lParam == 0 ? 0 : reinterpret_cast<LRESULT>(insert(recordOf<TVINSERTSTRUCTW>(lParam)));
    case TVM_DELETEITEM:
        return erase(itemOf(lParam)) ? 1 : 0;
    case TVM_SETITEMW:
        return lParam != 0 && setItem(recordOf<TVITEMW>(lParam)) ? 1 : 0;
    case TVM_GETITEMW:
        return lParam != 0 && getItem(recordOf<TVITEMW>(lParam)) ? 1 : 0;
    case TVM_GETITEMSTATE:
        return static_cast<LRESULT>(about(itemOf(static_cast<LPARAM>(wParam))).state & static_cast<UINT>(lParam));
    case TVM_GETCOUNT:
        return static_cast<LRESULT>(m_nodes.size());
    case TVM_EXPAND:
        return expand(itemOf(lParam), wParam, By::Message) ? 1 : 0;
    case TVM_SELECTITEM:
        return selectItem(wParam, itemOf(lParam));
    case TVM_GETNEXTITEM:
    {
        const Node *next = nextTo(wParam, itemOf(lParam));
        return next == nullptr ? 0 : reinterpret_cast<LRESULT>(next->handle);
    }
    case TVM_SORTCHILDREN:
        return sortByText(itemOf(lParam)) ? 1 : 0;
    case TVM_SORTCHILDRENCB:
        return lParam != 0 && sortBy(recordOf<TVSORTCB>(lParam)) ? 1 : 0;
    case TVM_EDITLABELW:
        return reinterpret_cast<LRESULT>(editLabel(itemOf(lParam)));
    case TVM_GETEDITCONTROL:
        return reinterpret_cast<LRESULT>(m_edit.window());
    case TVM_ENDEDITLABELNOW:
    {
        const bool open = m_edit.window() != nullptr;
        m_edit.end(wParam == 0);
        return open ? 1 : 0;
    }
    case labelEditEnded:
        labelEdited(wParam != 0);
        return 0;
    default:
        return takePlaces(message, wParam, lParam);
    }
}

LRESULT TreeView::selectItem(WPARAM which, HTREEITEM item)
{
    if (item != nullptr && find(item) == nullptr)
    {
        return 0;
    }
    switch (which & 0xFU)
    {
    case TVGN_CARET:
        return choose(item, TVC_UNKNOWN) ? 1 : 0;
    case TVGN_DROPHILITE:
        redraw(std::exchange(m_dropped, item));
        redraw(item);
        return 1;
    case TVGN_FIRSTVISIBLE:
        if (item == nullptr)
        {
            return 0;
        }
        openAbove(item);
        scrollTo(rowOf(item));
        return 1;
    default:
        return 0;
    }
}

LRESULT TreeView::takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case TVM_GETITEMRECT:
        return lParam == 0 ? 0 : itemRect(wParam != 0, reinterpret_cast<RECT *>(lParam));
    case TVM_HITTEST:
        return lParam == 0 ? 0 : reinterpret_cast<LRESULT>(hitTest(recordOf<TVHITTESTINFO>(lParam)));
    case TVM_ENSUREVISIBLE:
        openAbove(itemOf(lParam));
        return show(itemOf(lParam)) ? 1 : 0;
    case TVM_GETVISIBLECOUNT:
        return pageRows();
    case TVM_GETITEMHEIGHT:
        return m_rowHeight;
    case TVM_SETITEMHEIGHT:
    {
        const int former = m_rowHeight;
        const int asked = static_cast<int>(static_cast<DWORD>(wParam));
        m_ownHeight = asked < 1 ? 0 : std::min(asked, 0x7FFF);
        measure();
        return former;
    }
    case TVM_GETINDENT:
        return indent();
    case TVM_SETINDENT:
        m_indent = std::clamp(static_cast<int>(static_cast<DWORD>(wParam)), 0, 0x7FF);
        arrange();
        refresh();
        return 0;
    default:
        return takeLooks(message, wParam, lParam);
    }
}

/// The record that is filled begins with the item, over more than one of its fields.
LRESULT TreeView::itemRect(bool textOnly, RECT *box)
{
    HTREEITEM item = nullptr;
    std::memcpy(&item, box, sizeof item);
    const int row = rowOf(item);
    if (row < 0)
    {
        return 0;
    }
    measureShown();
    const std::u16string text = textOf(item);
    Node *node = find(item);
    if (node == nullptr)
    {
        return 0;
    }
    node->width = textWidth(*node, text);
    *box = rowBox(row);
    if (textOnly)
    {
        const Parts parts = partsOf(*node);
        box->left = parts.label;
        box->right = parts.end;
    }
    return 1;
}

LRESULT TreeView::takeLooks(UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto orSystem = [](COLORREF color, int index)
    { return static_cast<LRESULT>(color == CLR_NONE ? GetSysColor(index) : color); };
    switch (message)
    {
    case TVM_GETIMAGELIST:
        return reinterpret_cast<LRESULT>(wParam == TVSIL_STATE ? m_states : m_images);
    case TVM_SETIMAGELIST:
    {
        HIMAGELIST &list = wParam == TVSIL_STATE ? m_states : m_images;
        const HIMAGELIST former = std::exchange(list, reinterpret_cast<HIMAGELIST>(lParam));
        measure();
        return reinterpret_cast<LRESULT>(former);
    }
    case TVM_GETBKCOLOR:
        return orSystem(m_ground, COLOR_WINDOW);
    case TVM_GETTEXTCOLOR:
        return orSystem(m_ink, COLOR_WINDOWTEXT);
    case TVM_SETBKCOLOR:
    case TVM_SETTEXTCOLOR:
    {
        const bool ground = message == TVM_SETBKCOLOR;
        const COLORREF former = std::exchange(ground ? m_ground : m_ink, static_cast<COLORREF>(lParam));
        refresh();
        return orSystem(former, ground ? COLOR_WINDOW : COLOR_WINDOWTEXT);
    }
    default:
        return takeWindow(message, wParam, lParam);
    }
}

LRESULT TreeView::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        measure();
        return 0;
    case WM_DESTROY:
        m_edit.drop();
        m_sorting = false;
        erase(nullptr);
        return 0;
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        measure();
        return 0;
    case WM_PAINT:
        arrange();
        paint([this](HDC context) { draw(context); });
        return 0;
    default:
        return takeRows(message, wParam, lParam);
    }
}

void registerTreeView()
{
    registerControl<TreeView>(WC_TREEVIEWW);
}
} // namespace zb::internal
