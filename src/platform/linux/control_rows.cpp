// Rows of a list view or tree view: scrolling, keys and pen on their way to them, and what is drawn alike.
#include "platform/linux/control_rows.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR editTimer = 0xFFD4;
constexpr UINT editTime = 500; // milliseconds: as long a tap may still become the first of two
} // namespace

LRESULT RowView::takeRows(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_SIZE:
        arrange();
        refresh();
        return 0;
    case WM_SETREDRAW:
    {
        const LRESULT result = takeCommon(message, wParam, lParam);
        refresh();
        return result;
    }
    case WM_COMMAND:
        m_edit.takeCommand(wParam, lParam);
        return 0;
    case WM_VSCROLL:
    case WM_HSCROLL:
    case WM_MOUSEWHEEL:
        return takeScrolling(message, wParam, lParam);
    default:
        return takeInput(message, wParam, lParam);
    }
}

LRESULT RowView::takeInput(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_CHAR:
        typed(static_cast<WCHAR>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
        penDown(penPlace(lParam));
        return 0;
    case WM_LBUTTONDBLCLK:
        doubleTap(penPlace(lParam));
        return 0;
    case WM_MOUSEMOVE:
        penMoved(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        penUp(penPlace(lParam));
        return 0;
    case WM_CAPTURECHANGED:
        releasePen();
        return 0;
    case WM_TIMER:
        if (wParam == editTimer)
        {
            editNoMore();
            editCurrentLabel();
        }
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        takeFocus(message == WM_SETFOCUS);
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

void RowView::takeFocus(bool gained)
{
    if (gained)
    {
        beginKeys();
        refresh();
    }
    else
    {
        editNoMore();
        refresh();
        releasePen();
    }
    notify(gained ? NM_SETFOCUS : NM_KILLFOCUS);
}

void RowView::editSoon()
{
    SetTimer(window(), editTimer, editTime, nullptr);
}

void RowView::editNoMore()
{
    KillTimer(window(), editTimer);
}

bool RowView::isFar(POINT one, POINT other)
{
    const int near = scaledPixels(5);
    return std::abs(one.x - other.x) > near || std::abs(one.y - other.y) > near;
}

// --- Scrolling -------------------------------------------------------------------------------------------------------

LRESULT RowView::takeScrolling(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_MOUSEWHEEL)
    {
        if (highestTop() == 0)
        {
            return takeCommon(message, wParam, lParam);
        }
        scrollTo(m_top + wheelRows(wParam));
    }
    else if (message == WM_VSCROLL)
    {
        scrollTo(scrollTarget(SB_VERT, wParam, {m_top, 1, pageRows(), highestTop()}));
    }
    else
    {
        scrollRightTo(scrollTarget(SB_HORZ, wParam, {m_left, scaledPixels(16), client().right, rowsWidth()}));
    }
    return 0;
}

RECT RowView::rowsArea() const
{
    RECT area = client();
    area.top = std::min<LONG>(headerHeight(), area.bottom);
    return area;
}

int RowView::pageRows() const
{
    const RECT area = rowsArea();
    return std::max<int>((area.bottom - area.top) / m_rowHeight, 1);
}

int RowView::highestTop()
{
    return std::max(rowCount() - pageRows(), 0);
}

void RowView::scrollTo(LONGLONG top)
{
    const int fresh = static_cast<int>(std::clamp<LONGLONG>(top, 0, highestTop()));
    if (fresh != m_top)
    {
        m_edit.end(true);
        m_top = fresh;
        arrange();
        refresh();
    }
}

bool RowView::scrollRightTo(LONGLONG left)
{
    const LONGLONG most = std::max<LONGLONG>(rowsWidth() - client().right, 0);
    const int fresh = static_cast<int>(std::clamp<LONGLONG>(left, 0, most));
    if (fresh == m_left)
    {
        return false;
    }
    m_edit.end(true);
    m_left = fresh;
    arrange();
    refresh();
    return true;
}

void RowView::scrollToShow(int row)
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

void RowView::arrange()
{
    if (m_arranging || isGone())
    {
        return;
    }
    m_arranging = true;
    aboutToArrange();
    const int count = rowCount();
    const int wanted = rowsWidth();
    if (mayScroll())
    {
        placeBars(count, wanted);
    }
    m_top = std::clamp(m_top, 0, highestTop());
    m_left = std::clamp(m_left, 0, std::max(wanted - static_cast<int>(client().right), 0));
    arranged();
    m_arranging = false;
}

/// Which bars there are is worked out from the whole area: one bar may need the other, and neither may stay because the
/// other was there.
void RowView::placeBars(int count, int wanted)
{
    const int barWidth = GetSystemMetrics(SM_CXVSCROLL);
    const int barHeight = GetSystemMetrics(SM_CYHSCROLL);
    const RECT now = client();
    const int fullWidth = static_cast<int>(now.right) + ((style() & WS_VSCROLL) != 0 ? barWidth : 0);
    const int fullHeight = static_cast<int>(now.bottom) + ((style() & WS_HSCROLL) != 0 ? barHeight : 0);
    const int header = headerHeight();
    const auto rowsIn = [&](int height) { return std::max((height - header) / m_rowHeight, 1); };
    bool vertical = count > rowsIn(fullHeight);
    const bool horizontal = wanted > fullWidth - (vertical ? barWidth : 0);
    vertical = vertical || (horizontal && count > rowsIn(fullHeight - barHeight));
    const int width = std::max(fullWidth - (vertical ? barWidth : 0), 1);
    const int page = rowsIn(fullHeight - (horizontal ? barHeight : 0));
    m_top = std::clamp(m_top, 0, std::max(count - page, 0));
    m_left = std::clamp(m_left, 0, std::max(wanted - width, 0));
    setBar(SB_VERT, {std::max(count - 1, 0), vertical ? page : count + 1, m_top});
    setBar(SB_HORZ, {std::max(wanted - 1, 0), horizontal ? width : wanted + 1, m_left});
}

/// A bar is told of changes alone: each telling draws it, and paints come by here.
void RowView::setBar(int bar, const Bar &wanted)
{
    const bool isShown = (style() & (bar == SB_VERT ? WS_VSCROLL : WS_HSCROLL)) != 0;
    const bool isNews = std::exchange(m_bars[bar], wanted) != wanted;
    if (isNews || isShown != (wanted.page <= wanted.most))
    {
        const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, wanted.most,
                              static_cast<UINT>(wanted.page), wanted.position, 0};
        SetScrollInfo(window(), bar, &info, TRUE);
    }
}

// --- Looks -----------------------------------------------------------------------------------------------------------

void RowView::fill(HDC context, const RECT &box, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(context, &box, brush);
    DeleteObject(brush);
}

void RowView::drawState(HDC context, HIMAGELIST images, UINT state, const RECT &place) const
{
    if (state == 0)
    {
        return;
    }
    const int width = place.right - place.left;
    if (images != nullptr)
    {
        const SIZE size = imageSizeOf(images);
        ImageList_Draw(images, static_cast<int>(state) - 1, context, place.left + (width - size.cx) / 2,
                       place.top + (m_rowHeight - size.cy) / 2, ILD_TRANSPARENT);
        return;
    }
    const int side = scaledPixels(13);
    const int x = place.left + (width - side) / 2;
    const int y = place.top + (m_rowHeight - side) / 2;
    RECT check{x, y, x + side, y + side};
    DrawFrameControl(context, &check, DFC_BUTTON,
                     DFCS_BUTTONCHECK | (state == 2 ? DFCS_CHECKED : 0) | (isEnabled() ? 0 : DFCS_INACTIVE));
}
} // namespace zb::internal
