// List boxes: their rows, what is chosen of them, and how they look.
#include "platform/linux/control_listbox.h"
#include "platform/text.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr LRESULT failed = -1;
constexpr DWORD withoutCase = 0x1; // of CompareStringW

int compare(std::u16string_view a, std::u16string_view b)
{
    return CompareStringW(LOCALE_USER_DEFAULT, withoutCase, a.data(), static_cast<int>(a.size()), b.data(),
                          static_cast<int>(b.size())) -
           CSTR_EQUAL;
}

void drawFocus(HDC context, RECT box)
{
    InflateRect(&box, -scaledPixels(1), -scaledPixels(1));
    DrawFocusRect(context, &box);
}

/// A row or place of a message: 32 bits with a sign.
int numberOf(WPARAM value)
{
    return static_cast<int>(static_cast<DWORD>(value));
}

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
                                        { return compare(one, other.text) < 0; });
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
        if (whole ? compare(other, text) == 0 : other.size() >= text.size() && compare(other.substr(0, text.size()), text) == 0)
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
        return hasMany() ? selectOne(numberOf(static_cast<WPARAM>(lParam)), wParam != 0) : failed;
    case LB_GETSEL:
        return !isRow(row) ? failed : hasMany() ? item(row).selected : row == m_current;
    case LB_SELITEMRANGE:
        return selectRange(LOWORD(static_cast<DWORD_PTR>(lParam)), HIWORD(static_cast<DWORD_PTR>(lParam)), wParam != 0);
    case LB_SELITEMRANGEEX:
    {
        const int last = numberOf(static_cast<WPARAM>(lParam));
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

LRESULT ListBox::takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int row = numberOf(wParam);
    switch (message)
    {
    case LB_GETTOPINDEX:
        return m_top;
    case LB_SETTOPINDEX:
        if (!isRow(row))
        {
            return failed;
        }
        scrollTo(row);
        return 0;
    case LB_GETITEMRECT:
        if (!isRow(row))
        {
            return failed;
        }
        *reinterpret_cast<RECT *>(lParam) = rowBox(row);
        return 1;
    case LB_GETITEMHEIGHT:
        return m_rowHeight;
    case LB_SETITEMHEIGHT:
    {
        const int height = LOWORD(static_cast<DWORD_PTR>(lParam));
        if (height == 0 || height > 255)
        {
            return failed;
        }
        m_rowHeight = height;
        m_ownHeight = true;
        updateBar();
        refresh();
        return 0;
    }
    case LB_ITEMFROMPOINT:
    {
        const POINT point = pointOf(lParam);
        const RECT all = client();
        const int found = m_top + std::max<int>(point.y, 0) / m_rowHeight;
        const int nearest = std::clamp(found, 0, std::max(count() - 1, 0));
        return static_cast<LRESULT>(
            MAKELONG(static_cast<WORD>(nearest), static_cast<WORD>(PtInRect(&all, point) != FALSE && isRow(found) ? 0 : 1)));
    }
    default:
        return takeWindow(message, wParam, lParam);
    }
}

LRESULT ListBox::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        measure();
        return 0;
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        measure();
        return 0;
    case WM_SIZE:
        scrollTo(m_top);
        updateBar();
        refresh();
        return 0;
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_CHAR:
        typed(static_cast<WCHAR>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        takePen(message, lParam);
        return 0;
    case WM_TIMER:
        followPen();
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        refresh();
        if (message == WM_KILLFOCUS)
        {
            releasePen();
        }
        tellIfAsked(message == WM_SETFOCUS ? LBN_SETFOCUS : LBN_KILLFOCUS);
        return 0;
    case WM_MOUSEWHEEL:
        if (highestTop() == 0)
        {
            return takeCommon(message, wParam, lParam);
        }
        scrollTo(m_top - 3 * (static_cast<SHORT>(HIWORD(wParam)) / 120));
        return 0;
    case WM_VSCROLL:
    {
        SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
        GetScrollInfo(window(), SB_VERT, &info);
        const WORD code = LOWORD(wParam);
        const int held = (info.nTrackPos & 0xFFFF) == HIWORD(wParam) ? info.nTrackPos : HIWORD(wParam);
        const LONGLONG targets[] = {m_top - 1LL, m_top + 1LL, m_top - pageRows(), m_top + pageRows(),
                                    held,        held,        0,                  highestTop()};
        if (code < std::size(targets))
        {
            scrollTo(targets[code]);
        }
        return 0;
    }
    default:
        return takeCommon(message, wParam, lParam);
    }
}

// --- Places and looks ----------------------------------------------------------------------------------------------

void ListBox::measure()
{
    if (!m_ownHeight)
    {
        m_rowHeight = rowHeightOf(font());
    }
    scrollTo(m_top);
    updateBar();
    refresh();
}

int ListBox::pageRows() const
{
    return std::max<int>(client().bottom / m_rowHeight, 1);
}

int ListBox::highestTop() const
{
    return std::max(count() - pageRows(), 0);
}

RECT ListBox::rowBox(int row) const
{
    const LONG top = (row - m_top) * m_rowHeight;
    return {0, top, client().right, top + m_rowHeight};
}

std::optional<int> ListBox::rowAt(POINT point) const
{
    const RECT all = client();
    const bool inside = PtInRect(&all, point) != FALSE;
    return inside ? std::optional(m_top + static_cast<int>(point.y) / m_rowHeight) : std::nullopt;
}

POINT ListBox::pointOf(LPARAM place)
{
    return {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(place))),
            static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(place)))};
}

void ListBox::scrollTo(LONGLONG top)
{
    const int fresh = static_cast<int>(std::clamp<LONGLONG>(top, 0, highestTop()));
    if (fresh != m_top)
    {
        m_top = fresh;
        updateBar();
        refresh();
    }
}

void ListBox::show(int row)
{
    if (row < m_top)
    {
        scrollTo(row);
    }
    else if (row >= m_top + pageRows())
    {
        scrollTo(row - pageRows() + 1);
    }
}

void ListBox::updateBar()
{
    // A list without the style has none; once it is there, it comes and goes with the rows.
    if ((style() & WS_VSCROLL) != 0)
    {
        m_hasBar = true;
    }
    if (!m_hasBar)
    {
        return;
    }
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, std::max(count() - 1, 0),
                    static_cast<UINT>(pageRows()), m_top, 0};
    info.fMask |= (style() & LBS_DISABLENOSCROLL) != 0 ? SIF_DISABLENOSCROLL : 0;
    SetScrollInfo(window(), SB_VERT, &info, TRUE);
}

void ListBox::draw(HDC context)
{
    prepare(context, WM_CTLCOLORLISTBOX, COLOR_WINDOW);
    const COLORREF ink = GetTextColor(context);
    const int last = std::min(count(), m_top + pageRows() + 1);
    for (int row = m_top; row < last; ++row)
    {
        RECT box = rowBox(row);
        const bool chosen = hasMany() ? item(row).selected : row == m_current;
        if (chosen)
        {
            FillRect(context, &box, GetSysColorBrush(isEnabled() ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
        }
        SetTextColor(context, chosen && isEnabled() ? GetSysColor(COLOR_HIGHLIGHTTEXT) : ink);
        RECT text = box;
        InflateRect(&text, -scaledPixels(3), 0); // as in fields above it
        const std::u16string &shown = item(row).text;
        DrawTextW(context, shown.c_str(), static_cast<int>(shown.size()), &text,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
        if (hasFocus() && row == m_caret)
        {
            drawFocus(context, box);
        }
    }
    if (hasFocus() && m_items.empty())
    {
        drawFocus(context, rowBox(0)); // where the keys are must be seen of an empty list, too
    }
}

void registerListBox()
{
    registerControl<ListBox>(u"LISTBOX");
}
} // namespace zb::internal
