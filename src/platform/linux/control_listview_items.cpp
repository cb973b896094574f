// Rows of a list view: what they hold, their states, finding and sorting them.
#include "platform/linux/control_listview.h"
#include "platform/linux/merge_rows.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT ownStates = LVIS_FOCUSED | LVIS_SELECTED;
} // namespace

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
        const int comparison = CompareStringW(LOCALE_USER_DEFAULT, 0x1, other.data(), static_cast<int>(other.size()),
                                              text.data(), static_cast<int>(text.size())) -
                               CSTR_EQUAL;
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
    const std::size_t copied = std::min(text.size(), static_cast<std::size_t>(wanted.cchTextMax) - 1);
    *std::copy_n(text.begin(), copied, wanted.pszText) = 0;
    return static_cast<LRESULT>(copied);
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

// --- States ------------------------------------------------------------------------------------------------------------

void ListView::apply(int row, UINT state)
{
    Item &changed = item(row);
    const UINT former = std::exchange(changed.state, state);
    m_chosen += static_cast<int>((state & LVIS_SELECTED) >> 1U) - static_cast<int>((former & LVIS_SELECTED) >> 1U);
    if (((state ^ former) & LVIS_FOCUSED) != 0)
    {
        m_focus = (state & LVIS_FOCUSED) != 0 ? row : -1;
    }
    redraw(row);
}

/// False when the parent forbids it or there is nobody left.
bool ListView::setState(int row, UINT state, UINT mask)
{
    if (!isRow(row))
    {
        return false;
    }
    const UINT former = item(row).state;
    const UINT fresh = (former & ~mask) | (state & mask);
    UINT changed = former ^ fresh;
    if (changed == 0)
    {
        return true;
    }
    changed |= (changed & LVIS_STATEIMAGEMASK) != 0 ? LVIS_STATEIMAGEMASK : 0;
    if ((changed & fresh & LVIS_SELECTED) != 0 && (style() & LVS_SINGLESEL) != 0)
    {
        // Before the focus goes: where that was, the other one mostly is.
        giveUpOthers(row);
    }
    if ((changed & fresh & LVIS_FOCUSED) != 0 && m_focus >= 0)
    {
        setState(m_focus, 0, LVIS_FOCUSED);
    }
    NMLISTVIEW record = about(row);
    record.uNewState = fresh & changed;
    record.uOldState = former & changed;
    record.uChanged = LVIF_STATE;
    if (!m_silent && notify(LVN_ITEMCHANGING, record.hdr) != 0)
    {
        return false;
    }
    if (!isRow(row))
    {
        return false;
    }
    apply(row, (item(row).state & ~changed) | (fresh & changed));
    if (!m_silent)
    {
        record = about(row);
        record.uNewState = fresh & changed;
        record.uOldState = former & changed;
        record.uChanged = LVIF_STATE;
        notify(LVN_ITEMCHANGED, record.hdr);
    }
    return !isGone();
}

bool ListView::setStateOfAll(UINT state, UINT mask)
{
    if ((state & mask & LVIS_SELECTED) != 0 && (style() & LVS_SINGLESEL) != 0)
    {
        return false;
    }
    const UINT most = mask & ~((state & LVIS_FOCUSED) != 0 ? LVIS_FOCUSED : 0U); // one row alone can have it
    for (int row = 0; row < count() && !isGone(); ++row)
    {
        setState(row, state, most);
    }
    return true;
}

void ListView::giveUpOthers(int row)
{
    // Mostly it is the one with the focus, or where a range begins; all are looked through only for more.
    for (const int likely : {m_focus, m_anchor})
    {
        if (likely != row && isRow(likely))
        {
            setState(likely, 0, LVIS_SELECTED);
        }
    }
    const auto others = [this, row]
    { return m_chosen - (isRow(row) && (item(row).state & LVIS_SELECTED) != 0 ? 1 : 0); };
    for (int one = 0; one < count() && others() > 0; ++one)
    {
        if (one != row)
        {
            setState(one, 0, LVIS_SELECTED);
        }
    }
}

void ListView::chooseOnly(int row)
{
    giveUpOthers(row);
    m_anchor = isRow(row) ? row : m_anchor;
    setState(row, ownStates, ownStates);
}

void ListView::chooseRange(int from, int to)
{
    const int first = std::min(from, to);
    const int last = std::max(from, to);
    for (int row = 0; row < count(); ++row)
    {
        setState(row, row >= first && row <= last ? LVIS_SELECTED : 0, LVIS_SELECTED);
    }
    setFocusRow(to);
}

void ListView::setFocusRow(int row)
{
    if (isRow(row))
    {
        setState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    }
}

// --- Finding and sorting -----------------------------------------------------------------------------------------------

int ListView::next(int from, UINT flags) const
{
    constexpr UINT states = LVNI_FOCUSED | LVNI_SELECTED | LVNI_CUT | LVNI_DROPHILITED;
    const UINT wanted = flags & states;
    const bool upwards = (flags & LVNI_ABOVE) != 0;
    if (from < -1 || from >= count())
    {
        return -1;
    }
    if ((wanted & LVNI_FOCUSED) != 0)
    {
        const bool lies = upwards ? m_focus < from : m_focus > from;
        return m_focus >= 0 && lies && (item(m_focus).state & wanted) == wanted ? m_focus : -1;
    }
    if ((wanted & LVNI_SELECTED) != 0 && m_chosen == 0)
    {
        return -1;
    }
    for (int row = from + (upwards ? -1 : 1); isRow(row); row += upwards ? -1 : 1)
    {
        if ((item(row).state & wanted) == wanted)
        {
            return row;
        }
    }
    return -1;
}

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
