// Rows of a list view: what they hold, finding and sorting them.
#include "platform/linux/control_listview.h"
#include "platform/linux/merge_rows.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
NMLISTVIEW ListView::about(int row) const
{
    NMLISTVIEW record{};
    record.iItem = row;
    record.lParam = isRow(row) ? item(row).data : 0;
    return record;
}

void ListView::setCellText(Cell &cell, const WCHAR *text)
{
    cell.asks = text == LPSTR_TEXTCALLBACKW;
    cell.text = cell.asks || text == nullptr ? std::u16string() : std::u16string(text);
}

int ListView::placeFor(int wanted, std::u16string_view text)
{
    const DWORD order = style() & (LVS_SORTASCENDING | LVS_SORTDESCENDING);
    if (order == 0)
    {
        return std::clamp(wanted, 0, count());
    }
    int first = 0;
    int last = count();
    while (first < last)
    {
        const int middle = first + (last - first) / 2;
        const std::u16string other = textOf(middle, 0);
        const int comparison = compareTexts(other, text);
        const bool before = (order & LVS_SORTASCENDING) != 0 ? comparison <= 0 : comparison >= 0;
        (before ? first : last) = before ? middle + 1 : middle;
    }
    return first;
}

int ListView::insert(const LVITEMW &given)
{
    if (given.iSubItem != 0 || given.iItem < 0 || m_sorting)
    {
        return -1;
    }
    auto fresh = std::make_unique<Item>();
    fresh->cells.resize(1);
    Cell &label = fresh->cells[0];
    label.image = 0;
    if ((given.mask & LVIF_TEXT) != 0)
    {
        setCellText(label, given.pszText);
    }
    label.image = (given.mask & LVIF_IMAGE) != 0 ? given.iImage : label.image;
    fresh->data = (given.mask & LVIF_PARAM) != 0 ? given.lParam : 0;
    fresh->indent = (given.mask & LVIF_INDENT) != 0 ? std::max(given.iIndent, 0) : 0;
    fresh->state = hasCheckBoxes() ? INDEXTOSTATEIMAGEMASK(1) : 0;
    const bool sorts = !label.asks;
    const int row = sorts ? placeFor(given.iItem, label.text) : std::min(given.iItem, count());
    m_items.insert(m_items.begin() + row, std::move(fresh));
    m_focus += m_focus >= row ? 1 : 0;
    m_anchor += m_anchor >= row ? 1 : 0;
    m_edited += m_edited >= row ? 1 : 0;
    m_press.row += m_press.row >= row ? 1 : 0;
    arrangeRows();
    redrawFrom(row);
    if ((given.mask & LVIF_STATE) != 0)
    {
        const UINT mask = given.stateMask != 0 ? given.stateMask : ~0U;
        const UINT kept = mask & ~((given.state & LVIS_STATEIMAGEMASK) == 0 ? LVIS_STATEIMAGEMASK : 0U);
        setState(row, given.state, kept);
    }
    NMLISTVIEW record = about(row);
    notify(LVN_INSERTITEM, record.hdr);
    return row;
}

bool ListView::setItem(const LVITEMW &given)
{
    const int row = given.iItem;
    if (!isRow(row) || given.iSubItem < 0 || given.iSubItem > 0xFFFF)
    {
        return false;
    }
    if (given.iSubItem == 0 && (given.mask & LVIF_STATE) != 0 && !setState(row, given.state, given.stateMask))
    {
        return false;
    }
    if (!isRow(row))
    {
        return true;
    }
    Item &changed = item(row);
    const auto column = static_cast<std::size_t>(given.iSubItem);
    if (changed.cells.size() <= column)
    {
        changed.cells.resize(column + 1);
    }
    if ((given.mask & LVIF_TEXT) != 0)
    {
        setCellText(changed.cells[column], given.pszText);
    }
    if ((given.mask & LVIF_IMAGE) != 0)
    {
        changed.cells[column].image = given.iImage;
    }
    if (column == 0)
    {
        changed.data = (given.mask & LVIF_PARAM) != 0 ? given.lParam : changed.data;
        changed.indent = (given.mask & LVIF_INDENT) != 0 ? std::max(given.iIndent, 0) : changed.indent;
    }
    redraw(row);
    if (const UINT told = given.mask & (LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM | LVIF_INDENT); told != 0)
    {
        NMLISTVIEW record = about(row);
        record.iSubItem = given.iSubItem;
        record.uChanged = told;
        notify(LVN_ITEMCHANGED, record.hdr);
    }
    return true;
}

/// A text of the parent's is asked for in the moment that it is needed.
std::u16string ListView::textOf(int row, int column)
{
    const auto at = static_cast<std::size_t>(column);
    if (!isRow(row) || item(row).cells.size() <= at)
    {
        return {};
    }
    if (!item(row).cells[at].asks)
    {
        return item(row).cells[at].text;
    }
    WCHAR buffer[512] = {};
    NMLVDISPINFOW record{};
    record.item = {LVIF_TEXT, row, column, 0, 0, buffer, static_cast<int>(std::size(buffer)), 0, item(row).data, 0};
    notify(LVN_GETDISPINFOW, record.hdr);
    buffer[std::size(buffer) - 1] = 0;
    const std::u16string text = record.item.pszText == nullptr ? u"" : record.item.pszText;
    if ((record.item.mask & LVIF_DI_SETITEM) != 0 && isRow(row) && item(row).cells.size() > at)
    {
        item(row).cells[at].text = text;
        item(row).cells[at].asks = false;
    }
    return text;
}

int ListView::imageOf(int row, int column)
{
    const auto at = static_cast<std::size_t>(column);
    if (!isRow(row) || item(row).cells.size() <= at)
    {
        return I_IMAGENONE;
    }
    if (item(row).cells[at].image != I_IMAGECALLBACK)
    {
        return item(row).cells[at].image;
    }
    NMLVDISPINFOW record{};
    record.item.mask = LVIF_IMAGE;
    record.item.iItem = row;
    record.item.iSubItem = column;
    record.item.iImage = I_IMAGENONE;
    record.item.lParam = item(row).data;
    notify(LVN_GETDISPINFOW, record.hdr);
    if ((record.item.mask & LVIF_DI_SETITEM) != 0 && isRow(row) && item(row).cells.size() > at)
    {
        item(row).cells[at].image = record.item.iImage;
    }
    return record.item.iImage;
}

LRESULT ListView::copyText(int row, LVITEMW &wanted)
{
    if (!isRow(row) || wanted.iSubItem < 0 || wanted.pszText == nullptr || wanted.cchTextMax < 1)
    {
        return 0;
    }
    const std::u16string text = textOf(row, wanted.iSubItem);
    return static_cast<LRESULT>(putText(text, wanted.pszText, static_cast<std::size_t>(wanted.cchTextMax)));
}

bool ListView::getItem(LVITEMW &wanted)
{
    const int row = wanted.iItem;
    if (!isRow(row) || wanted.iSubItem < 0)
    {
        return false;
    }
    if ((wanted.mask & LVIF_TEXT) != 0)
    {
        const auto at = static_cast<std::size_t>(wanted.iSubItem);
        const bool asks = item(row).cells.size() > at && item(row).cells[at].asks;
        if (asks && (wanted.mask & LVIF_NORECOMPUTE) != 0)
        {
            wanted.pszText = LPSTR_TEXTCALLBACKW;
        }
        else
        {
            copyText(row, wanted);
        }
    }
    if ((wanted.mask & LVIF_IMAGE) != 0)
    {
        wanted.iImage = imageOf(row, wanted.iSubItem);
    }
    if (!isRow(row))
    {
        return false;
    }
    wanted.lParam = (wanted.mask & LVIF_PARAM) != 0 ? item(row).data : wanted.lParam;
    wanted.iIndent = (wanted.mask & LVIF_INDENT) != 0 ? item(row).indent : wanted.iIndent;
    if ((wanted.mask & LVIF_STATE) != 0)
    {
        wanted.state = wanted.iSubItem == 0 ? item(row).state & wanted.stateMask : 0;
    }
    return true;
}

bool ListView::erase(int row)
{
    if (!isRow(row) || m_sorting)
    {
        return false;
    }
    if (m_edited == row)
    {
        m_edit.end(false);
    }
    NMLISTVIEW record = about(row);
    notify(LVN_DELETEITEM, record.hdr);
    if (!isRow(row))
    {
        return false;
    }
    const bool hadFocus = m_focus == row;
    m_chosen -= (item(row).state & LVIS_SELECTED) != 0 ? 1 : 0;
    m_items.erase(m_items.begin() + row);
    for (int *number : {&m_focus, &m_anchor, &m_edited, &m_press.row})
    {
        *number = *number == row ? -1 : *number - (*number > row ? 1 : 0);
    }
    arrangeRows();
    redrawFrom(row);
    if (hadFocus && count() > 0)
    {
        setState(std::min(row, count() - 1), LVIS_FOCUSED, LVIS_FOCUSED); // so that keys go on from there
    }
    return true;
}

bool ListView::eraseAll()
{
    if (m_sorting)
    {
        return false;
    }
    m_edit.end(false);
    NMLISTVIEW record{};
    record.iItem = -1;
    if (notify(LVN_DELETEALLITEMS, record.hdr) == 0)
    {
        for (int row = 0; row < count(); ++row)
        {
            record = about(row);
            notify(LVN_DELETEITEM, record.hdr);
        }
    }
    m_items.clear();
    m_focus = m_anchor = m_edited = m_press.row = -1;
    m_chosen = 0;
    m_top = 0;
    if (!isGone())
    {
        arrange();
        refresh();
    }
    return true;
}

// --- Finding and sorting ---------------------------------------------------------------------------------------------

int ListView::find(int behind, const LVFINDINFOW &what)
{
    const bool byData = (what.flags & LVFI_PARAM) != 0;
    const bool byText = (what.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0 && what.psz != nullptr;
    const int rows = count();
    if (!byData && !byText)
    {
        return -1;
    }
    const int start = isRow(behind) ? behind + 1 : 0;
    const int steps = (what.flags & LVFI_WRAP) != 0 ? rows : rows - start;
    for (int step = 0; step < steps && count() == rows; ++step)
    {
        const int row = (start + step) % rows;
        if (byData)
        {
            if (item(row).data == what.lParam)
            {
                return row;
            }
            continue;
        }
        const std::u16string text = textOf(row, 0);
        if ((what.flags & LVFI_PARTIAL) != 0 ? beginsWith(text, what.psz) : isSameText(text, what.psz))
        {
            return row;
        }
    }
    return -1;
}

bool ListView::sort(PFNLVCOMPARE compare, LPARAM user, bool byNumber)
{
    if (compare == nullptr || m_sorting)
    {
        return false;
    }
    m_edit.end(false);
    std::vector<int> order(m_items.size());
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        order[i] = static_cast<int>(i);
    }
    m_sorting = true;
    mergeRows(order,
              [&](int one, int other)
              {
                  return byNumber ? compare(one, other, user) : compare(item(one).data, item(other).data, user);
              });
    m_sorting = false;
    std::deque<std::unique_ptr<Item>> sorted;
    int focus = -1;
    int anchor = -1;
    for (const int row : order)
    {
        focus = row == m_focus ? static_cast<int>(sorted.size()) : focus;
        anchor = row == m_anchor ? static_cast<int>(sorted.size()) : anchor;
        sorted.push_back(std::move(m_items[static_cast<std::size_t>(row)]));
    }
    m_items = std::move(sorted);
    m_focus = focus;
    m_anchor = anchor;
    refresh();
    return true;
}
} // namespace zb::internal
