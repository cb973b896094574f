// The list view's messages.
#include "platform/linux/control_listview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr LRESULT failed = -1;

COLORREF orSystem(COLORREF color, int index)
{
    return color == CLR_NONE ? GetSysColor(index) : color;
}
} // namespace

LRESULT ListView::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    return takeItems(message, wParam, lParam);
}

LRESULT ListView::takeItems(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LVM_GETITEMCOUNT:
        return count();
    case LVM_SETITEMCOUNT:
        return 1;
    case LVM_INSERTITEMW:
        return lParam == 0 ? failed : insert(recordOf<LVITEMW>(lParam));
    case LVM_SETITEMW:
        return lParam != 0 && setItem(recordOf<LVITEMW>(lParam)) ? 1 : 0;
    case LVM_GETITEMW:
        return lParam != 0 && getItem(recordOf<LVITEMW>(lParam)) ? 1 : 0;
    case LVM_GETITEMTEXTW:
        return lParam == 0 ? 0 : copyText(row, recordOf<LVITEMW>(lParam));
    case LVM_SETITEMTEXTW:
    {
        if (lParam == 0)
        {
            return 0;
        }
        LVITEMW given = recordOf<LVITEMW>(lParam);
        given.mask = LVIF_TEXT;
        given.iItem = row;
        return setItem(given) ? 1 : 0;
    }
    case LVM_DELETEITEM:
        return erase(row) ? 1 : 0;
    case LVM_DELETEALLITEMS:
        return eraseAll() ? 1 : 0;
    case LVM_FINDITEMW:
        return lParam == 0 ? failed : find(row, recordOf<LVFINDINFOW>(lParam));
    case LVM_SORTITEMS:
    case LVM_SORTITEMSEX:
    {
        const auto compare = reinterpret_cast<PFNLVCOMPARE>(lParam);
        return sort(compare, static_cast<LPARAM>(wParam), message == LVM_SORTITEMSEX) ? 1 : 0;
    }
    default:
        return takeStates(message, wParam, lParam);
    }
}

LRESULT ListView::takeStates(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LVM_SETITEMSTATE:
    {
        if (lParam == 0)
        {
            return 0;
        }
        const LVITEMW given = recordOf<LVITEMW>(lParam);
        return (row == -1 ? setStateOfAll(given.state, given.stateMask) : setState(row, given.state, given.stateMask))
                   ? 1
                   : 0;
    }
    case LVM_GETITEMSTATE:
        return isRow(row) ? static_cast<LRESULT>(item(row).state & static_cast<UINT>(lParam)) : 0;
    case LVM_GETNEXTITEM:
        return next(row, static_cast<UINT>(lParam));
    case LVM_GETSELECTEDCOUNT:
        return m_chosen;
    case LVM_GETSELECTIONMARK:
        return m_anchor;
    case LVM_SETSELECTIONMARK:
        return std::exchange(m_anchor, isRow(static_cast<int>(lParam)) ? static_cast<int>(lParam) : -1);
    case LVM_EDITLABELW:
        return reinterpret_cast<LRESULT>(editLabel(row));
    case LVM_GETEDITCONTROL:
        return reinterpret_cast<LRESULT>(m_edit.window());
    case labelEditEnded:
        labelEdited(wParam != 0);
        return 0;
    case LVM_GETISEARCHSTRINGW:
    {
        const std::u16string typed = m_typed.isTyping() ? m_typed.text() : std::u16string();
        if (lParam != 0)
        {
            *std::copy(typed.begin(), typed.end(), reinterpret_cast<WCHAR *>(lParam)) = 0;
        }
        return static_cast<LRESULT>(typed.size());
    }
    default:
        return takeColumns(message, wParam, lParam);
    }
}

LRESULT ListView::takeColumns(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int column = numberOf(wParam);
    switch (message)
    {
    case LVM_INSERTCOLUMNW:
        return lParam == 0 ? failed : insertColumn(column, recordOf<LVCOLUMNW>(lParam));
    case LVM_SETCOLUMNW:
        return lParam != 0 && setColumn(column, recordOf<LVCOLUMNW>(lParam)) ? 1 : 0;
    case LVM_GETCOLUMNW:
        return lParam != 0 && getColumn(column, recordOf<LVCOLUMNW>(lParam)) ? 1 : 0;
    case LVM_DELETECOLUMN:
        return eraseColumn(column) ? 1 : 0;
    case LVM_GETCOLUMNWIDTH:
        return isColumn(column) ? m_columns[static_cast<std::size_t>(column)].width : 0;
    case LVM_SETCOLUMNWIDTH:
    {
        const int width = static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam)));
        if (!isColumn(column) || width < LVSCW_AUTOSIZE_USEHEADER)
        {
            return 0;
        }
        width < 0 ? fitColumn(column, width == LVSCW_AUTOSIZE_USEHEADER) : setColumnWidth(column, width);
        return 1;
    }
    case LVM_GETHEADER:
        return reinterpret_cast<LRESULT>(m_header);
    default:
        return takePlaces(message, wParam, lParam);
    }
}

LRESULT ListView::takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LVM_GETITEMRECT:
    {
        auto *box = reinterpret_cast<RECT *>(lParam);
        return box != nullptr && rectOf(row, 0, box->left, *box) ? 1 : 0;
    }
    case LVM_GETSUBITEMRECT:
    {
        auto *box = reinterpret_cast<RECT *>(lParam);
        return box != nullptr && rectOf(row, box->top, box->left, *box) ? 1 : 0;
    }
    case LVM_GETITEMPOSITION:
    {
        RECT box{};
        if (lParam == 0 || !rectOf(row, 0, LVIR_ICON, box))
        {
            return 0;
        }
        recordOf<POINT>(lParam) = {box.left, box.top};
        return 1;
    }
    case LVM_HITTEST:
    case LVM_SUBITEMHITTEST:
        return lParam == 0 ? failed : hitTest(recordOf<LVHITTESTINFO>(lParam));
    case LVM_ENSUREVISIBLE:
        return show(row, lParam != 0) ? 1 : 0;
    case LVM_SCROLL:
        scrollRightTo(static_cast<LONGLONG>(m_left) + row);
        scrollTo(m_top + static_cast<LONGLONG>(static_cast<int>(lParam)) / m_rowHeight);
        return 1;
    case LVM_REDRAWITEMS:
    case LVM_UPDATE:
        refresh();
        return 1;
    case LVM_GETTOPINDEX:
        return m_top;
    case LVM_GETCOUNTPERPAGE:
        return pageRows();
    case LVM_GETORIGIN:
        recordOf<POINT>(lParam) = {m_left, m_top * m_rowHeight};
        return 1;
    case LVM_GETVIEWRECT:
        recordOf<RECT>(lParam) = {rowBox(0).left, rowBox(0).top, rowBox(0).right, rowBox(count()).top};
        return 1;
    default:
        return takeLooks(message, wParam, lParam);
    }
}

LRESULT ListView::takeLooks(UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto color = static_cast<COLORREF>(lParam);
    switch (message)
    {
    case LVM_GETIMAGELIST:
        return wParam < std::size(m_images) ? reinterpret_cast<LRESULT>(m_images[wParam]) : 0;
    case LVM_SETIMAGELIST:
    {
        if (wParam >= std::size(m_images))
        {
            return 0;
        }
        const HIMAGELIST former = std::exchange(m_images[wParam], reinterpret_cast<HIMAGELIST>(lParam));
        measure();
        return reinterpret_cast<LRESULT>(former);
    }
    case LVM_GETBKCOLOR:
        return static_cast<LRESULT>(orSystem(m_ground, COLOR_WINDOW));
    case LVM_GETTEXTCOLOR:
        return static_cast<LRESULT>(orSystem(m_ink, COLOR_WINDOWTEXT));
    case LVM_GETTEXTBKCOLOR:
        return static_cast<LRESULT>(m_textGround);
    case LVM_SETBKCOLOR:
    case LVM_SETTEXTCOLOR:
    case LVM_SETTEXTBKCOLOR:
        (message == LVM_SETBKCOLOR ? m_ground : message == LVM_SETTEXTCOLOR ? m_ink : m_textGround) = color;
        refresh();
        return 1;
    case LVM_GETEXTENDEDLISTVIEWSTYLE:
        return static_cast<LRESULT>(m_extended);
    case LVM_SETEXTENDEDLISTVIEWSTYLE:
    {
        const DWORD former = m_extended;
        takeExtended(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
        return static_cast<LRESULT>(former);
    }
    case LVM_GETSTRINGWIDTHW:
        return lParam == 0 ? 0 : textWidth(reinterpret_cast<const WCHAR *>(lParam));
    case LVM_CREATEDRAGIMAGE:
        return reinterpret_cast<LRESULT>(makeDragImage(numberOf(wParam), reinterpret_cast<POINT *>(lParam)));
    default:
        return takeWindow(message, wParam, lParam);
    }
}

void ListView::takeExtended(DWORD mask, DWORD styles)
{
    const DWORD former = std::exchange(m_extended, mask == 0 ? styles : (m_extended & ~mask) | (styles & mask));
    if (((former ^ m_extended) & LVS_EX_CHECKBOXES) != 0)
    {
        for (const auto &one : m_items)
        {
            one->state = (one->state & ~LVIS_STATEIMAGEMASK) | (hasCheckBoxes() ? INDEXTOSTATEIMAGEMASK(1) : 0U);
        }
    }
    refresh();
}

void ListView::create()
{
    m_header = CreateWindowExW(0, u"ListViewHeader", u"", WS_CHILD, 0, 0, 0, 0, window(), nullptr, nullptr, this);
    measure();
}

LRESULT ListView::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        create();
        return 0;
    case WM_DESTROY:
        m_edit.drop();
        eraseAll();
        return 0;
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        measure();
        InvalidateRect(m_header, nullptr, FALSE);
        return 0;
    case WM_ENABLE:
        InvalidateRect(m_header, nullptr, FALSE);
        return takeCommon(message, wParam, lParam);
    case WM_PAINT:
        if (m_barDue)
        {
            arrange();
        }
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_TIMER:
        if (wParam == penTimer)
        {
            followPen();
            return 0;
        }
        [[fallthrough]];
    default:
        return takeRows(message, wParam, lParam);
    }
}

void registerListView()
{
    registerControl<ListHeader>(u"ListViewHeader");
    registerControl<ListView>(u"SysListView32");
}
} // namespace zb::internal
