// List boxes: their rows, and what is chosen of them.
#include "platform/linux/control_listbox.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr LRESULT failed = -1;

const WCHAR *textAt(LPARAM value)
{
    const auto *text = reinterpret_cast<const WCHAR *>(value);
    return text == nullptr ? u"" : text;
}
} // namespace

LRESULT ListBox::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case LB_ADDSTRING:
    case LB_INSERTSTRING:
    case LB_DELETESTRING:
    case LB_RESETCONTENT:
    case LB_GETCOUNT:
    case LB_GETTEXT:
    case LB_GETTEXTLEN:
    case LB_GETITEMDATA:
    case LB_SETITEMDATA:
    case LB_FINDSTRING:
    case LB_FINDSTRINGEXACT:
    case LB_INITSTORAGE:
        return takeItems(message, wParam, lParam);
    case LB_SETCURSEL:
    case LB_GETCURSEL:
    case LB_SETSEL:
    case LB_GETSEL:
    case LB_SELECTSTRING:
    case LB_SELITEMRANGE:
    case LB_SELITEMRANGEEX:
    case LB_GETSELCOUNT:
    case LB_GETSELITEMS:
    case LB_SETCARETINDEX:
    case LB_GETCARETINDEX:
    case LB_SETANCHORINDEX:
    case LB_GETANCHORINDEX:
        return takeSelection(message, wParam, lParam);
    default:
        return takePlaces(message, wParam, lParam);
    }
}

LRESULT ListBox::takeItems(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LB_ADDSTRING:
        return insert((style() & LBS_SORT) != 0 ? placeFor(textAt(lParam)) : count(), textAt(lParam));
    case LB_INSERTSTRING:
        return row > count() ? failed : insert(row < 0 ? count() : row, textAt(lParam));
    case LB_DELETESTRING:
        return isRow(row) ? erase(row) : failed;
    case LB_RESETCONTENT:
        reset();
        return 0;
    case LB_GETCOUNT:
        return count();
    case LB_GETTEXT:
        if (!isRow(row))
        {
            return failed;
        }
        *std::copy(item(row).text.begin(), item(row).text.end(), reinterpret_cast<WCHAR *>(lParam)) = 0;
        return static_cast<LRESULT>(item(row).text.size());
    case LB_GETTEXTLEN:
        return isRow(row) ? static_cast<LRESULT>(item(row).text.size()) : failed;
    case LB_GETITEMDATA:
        return isRow(row) ? item(row).data : failed;
    case LB_SETITEMDATA:
        if (!isRow(row))
        {
            return failed;
        }
        item(row).data = lParam;
        return 0;
    case LB_INITSTORAGE:
        m_items.reserve(std::min<std::size_t>(m_items.size() + static_cast<DWORD>(wParam), 1U << 20U));
        return static_cast<LRESULT>(m_items.capacity());
    default:
        return find(row, textAt(lParam), message == LB_FINDSTRINGEXACT);
    }
}

int ListBox::placeFor(std::u16string_view text) const
{
    const auto place = std::upper_bound(m_items.begin(), m_items.end(), text,
                                        [](std::u16string_view one, const Item &other)
                                        { return compareTexts(one, other.text) < 0; });
    return static_cast<int>(place - m_items.begin());
}

int ListBox::insert(int row, const WCHAR *text)
{
    m_items.insert(m_items.begin() + row, Item{text, 0, false});
    m_current += m_current >= row ? 1 : 0;
    m_caret += m_caret >= row && count() > 1 ? 1 : 0;
    m_caret = std::min(m_caret, count() - 1);
    updateBar();
    refresh();
    return row;
}

int ListBox::erase(LONGLONG row)
{
    m_items.erase(m_items.begin() + row);
    m_current = m_current == row ? -1 : m_current - (m_current > row ? 1 : 0);
    m_caret = std::clamp(m_caret - (m_caret > row ? 1 : 0), 0, std::max(count() - 1, 0));
    m_anchor = std::clamp(m_anchor, 0, std::max(count() - 1, 0));
    m_top = std::min(m_top, highestTop());
    updateBar();
    refresh();
    return count();
}

void ListBox::reset()
{
    m_items.clear();
    m_current = -1;
    m_caret = m_anchor = m_top = 0;
    m_typed.clear();
    updateBar();
    refresh();
}

/// From the row behind one on, around at the end.
int ListBox::find(int behind, std::u16string_view text, bool whole) const
{
    const int start = isRow(behind) ? behind + 1 : 0;
    for (int step = 0; step < count(); ++step)
    {
        const int row = (start + step) % count();
        const std::u16string_view other = item(row).text;
        if (whole ? isSameText(other, text) : beginsWith(other, text))
        {
            return row;
        }
    }
    return -1;
}

LRESULT ListBox::takeSelection(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LB_SETCURSEL:
        if (hasMany() || row >= count())
        {
            return failed;
        }
        setCurrent(row);
        return row < 0 ? failed : row;
    case LB_GETCURSEL:
        return hasMany() ? (count() == 0 ? failed : m_caret) : m_current;
    case LB_SELECTSTRING:
    {
        const int found = find(row, textAt(lParam), false);
        if (found >= 0)
        {
            hasMany() ? static_cast<void>(selectOne(found, true)) : setCurrent(found);
        }
        return found;
    }
    case LB_SETSEL:
        return hasMany() ? selectOne(numberOf(lParam), wParam != 0) : failed;
    case LB_GETSEL:
        return !isRow(row) ? failed : hasMany() ? item(row).selected : row == m_current;
    case LB_SELITEMRANGE:
        return selectRange(LOWORD(static_cast<DWORD_PTR>(lParam)), HIWORD(static_cast<DWORD_PTR>(lParam)), wParam != 0);
    case LB_SELITEMRANGEEX:
    {
        const int last = numberOf(lParam);
        return selectRange(std::min(row, last), std::max(row, last), row <= last);
    }
    case LB_GETSELCOUNT:
        return hasMany() ? copySelected(count(), nullptr) : failed;
    case LB_GETSELITEMS:
        return hasMany() ? copySelected(row, reinterpret_cast<int *>(lParam)) : failed;
    case LB_SETCARETINDEX:
        if (!isRow(row))
        {
            return failed;
        }
        m_caret = row;
        show(row);
        refresh();
        return 0;
    case LB_GETCARETINDEX:
        return m_caret;
    case LB_SETANCHORINDEX:
        m_anchor = isRow(row) ? row : m_anchor;
        return isRow(row) ? 0 : failed;
    default:
        return m_anchor;
    }
}

void ListBox::setCurrent(LONGLONG row)
{
    m_current = isRow(row) ? static_cast<int>(row) : -1;
    if (m_current >= 0)
    {
        m_caret = m_anchor = m_current;
        show(m_current);
    }
    refresh();
}

void ListBox::chooseOnly(int row)
{
    for (Item &one : m_items)
    {
        one.selected = false;
    }
    if (hasMany() && isRow(row))
    {
        item(row).selected = true;
    }
    setCurrent(row);
}

LRESULT ListBox::selectOne(LONGLONG row, bool selected)
{
    if (row == -1)
    {
        return count() == 0 ? 0 : selectRange(0, count() - 1, selected);
    }
    if (!isRow(row))
    {
        return failed;
    }
    item(row).selected = selected;
    m_caret = static_cast<int>(row);
    show(m_caret);
    refresh();
    return 0;
}

LRESULT ListBox::selectRange(LONGLONG first, LONGLONG last, bool selected)
{
    if (!hasMany())
    {
        return failed;
    }
    for (LONGLONG row = std::max<LONGLONG>(first, 0); row <= last && row < count(); ++row)
    {
        item(row).selected = selected;
    }
    refresh();
    return 0;
}

LRESULT ListBox::copySelected(int most, int *rows) const
{
    int found = 0;
    for (int row = 0; row < count() && found < most; ++row)
    {
        if (item(row).selected)
        {
            if (rows != nullptr)
            {
                rows[found] = row;
            }
            ++found;
        }
    }
    return found;
}

void registerListBox()
{
    registerControl<ListBox>(u"LISTBOX");
}
} // namespace zb::internal
