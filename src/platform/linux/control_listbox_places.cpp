// Where the rows of a list box lie, scrolling, and how it looks.
#include "platform/linux/control_listbox.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr LRESULT failed = -1;

void drawFocus(HDC context, RECT box)
{
    InflateRect(&box, -scaledPixels(1), -scaledPixels(1));
    DrawFocusRect(context, &box);
}
} // namespace

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
        const POINT point = penPlace(lParam);
        const RECT all = client();
        const int found = m_top + std::max<int>(point.y, 0) / m_rowHeight;
        const int nearest = std::clamp(found, 0, std::max(count() - 1, 0));
        const bool isBeside = PtInRect(&all, point) == FALSE || !isRow(found);
        return static_cast<LRESULT>(MAKELONG(static_cast<WORD>(nearest), static_cast<WORD>(isBeside ? 1 : 0)));
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
        scrollTo(m_top + wheelRows(wParam));
        return 0;
    case WM_VSCROLL:
        scrollTo(scrollTarget(SB_VERT, wParam, {m_top, 1, pageRows(), highestTop()}));
        return 0;
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
} // namespace zb::internal
