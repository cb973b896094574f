// The header of a list view: titles to tap, edges to draw.
#include "platform/linux/control_listview.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zb::internal
{
void ListView::headerTapped(int column)
{
    const ControlAtWork work(*this);
    if (!hasFocus())
    {
        SetFocus(window());
    }
    NMLISTVIEW record = about(-1);
    record.iSubItem = column;
    notify(LVN_COLUMNCLICK, record.hdr);
}

LRESULT ListHeader::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        m_list = static_cast<ListView *>(reinterpret_cast<CREATESTRUCTW *>(lParam)->lpCreateParams);
        return m_list == nullptr ? -1 : 0;
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_LBUTTONDOWN:
        penDown(penPlace(lParam));
        return 0;
    case WM_LBUTTONDBLCLK:
        if (const Hit hit = hitTest(penPlace(lParam)); hit.edge)
        {
            m_list->fitColumn(hit.column, true);
            return 0;
        }
        penDown(penPlace(lParam));
        return 0;
    case WM_MOUSEMOVE:
        penMoved(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        penUp(penPlace(lParam));
        return 0;
    case WM_CAPTURECHANGED:
        release();
        return 0;
    case HDM_GETITEMCOUNT:
        return static_cast<LRESULT>(m_list->columns().size());
    case HDM_GETITEMRECT:
    {
        const bool isPart = wParam < m_list->columns().size() && lParam != 0;
        if (isPart)
        {
            *reinterpret_cast<RECT *>(lParam) = partBox(static_cast<int>(wParam));
        }
        return isPart ? 1 : 0;
    }
    case HDM_GETITEMW:
    case HDM_SETITEMW:
        return wParam < m_list->columns().size() && lParam != 0
                   ? takeItem(message, wParam, *reinterpret_cast<HDITEMW *>(lParam))
                   : 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

LRESULT ListHeader::takeItem(UINT message, WPARAM wParam, HDITEMW &item)
{
    ListView::Column &column = m_list->columns()[wParam];
    if (message == HDM_GETITEMW)
    {
        item.fmt = (item.mask & HDI_FORMAT) != 0 ? column.format | column.order : item.fmt;
        item.cxy = (item.mask & HDI_WIDTH) != 0 ? column.width : item.cxy;
        return 1;
    }
    if ((item.mask & HDI_FORMAT) != 0)
    {
        column.order = item.fmt & (HDF_SORTDOWN | HDF_SORTUP);
        refresh();
    }
    if ((item.mask & HDI_WIDTH) != 0)
    {
        m_list->setColumnWidth(static_cast<int>(wParam), item.cxy);
    }
    return 1;
}

RECT ListHeader::partBox(int column) const
{
    RECT box = client();
    box.left = -m_list->scrolledRight();
    for (int one = 0; one < column; ++one)
    {
        box.left += m_list->columns()[static_cast<std::size_t>(one)].width;
    }
    box.right = box.left + m_list->columns()[static_cast<std::size_t>(column)].width;
    return box;
}

ListHeader::Hit ListHeader::hitTest(POINT point) const
{
    const int reach = scaledPixels(5);
    const int count = static_cast<int>(m_list->columns().size());
    for (int column = count - 1; column >= 0; --column)
    {
        const RECT box = partBox(column);
        // Of edges that lie together the last one is held, so that a column of no width can be drawn out again.
        if (point.x >= box.right - reach && point.x <= box.right + reach)
        {
            return {column, true};
        }
    }
    for (int column = 0; column < count; ++column)
    {
        const RECT box = partBox(column);
        if (point.x >= box.left && point.x < box.right)
        {
            return {column, false};
        }
    }
    return {};
}

void ListHeader::penDown(POINT point)
{
    m_hit = hitTest(point);
    if (m_hit.column < 0 || (!m_hit.edge && !m_list->takesHeaderTaps()))
    {
        m_hit = {};
        return;
    }
    m_grip = m_hit.edge ? static_cast<int>(partBox(m_hit.column).right - point.x) : 0;
    m_inside = !m_hit.edge;
    SetCapture(window());
    refresh();
}

void ListHeader::penMoved(POINT point)
{
    if (m_hit.column < 0 || m_hit.column >= static_cast<int>(m_list->columns().size()))
    {
        return;
    }
    const RECT box = partBox(m_hit.column);
    if (m_hit.edge)
    {
        m_list->setColumnWidth(m_hit.column, std::max<int>(point.x + m_grip - box.left, scaledPixels(12)));
        return;
    }
    const bool inside = PtInRect(&box, point) != FALSE;
    if (std::exchange(m_inside, inside) != inside)
    {
        refresh();
    }
}

void ListHeader::penUp(POINT)
{
    const Hit hit = m_hit;
    const bool tapped = hit.column >= 0 && !hit.edge && m_inside;
    release();
    if (tapped)
    {
        m_list->headerTapped(hit.column);
    }
}

void ListHeader::release()
{
    const bool held = std::exchange(m_hit, Hit{}).column >= 0;
    m_inside = false;
    if (held)
    {
        refresh();
        if (GetCapture() == window())
        {
            ReleaseCapture();
        }
    }
}

void ListHeader::draw(HDC context) const
{
    const RECT all = client();
    FillRect(context, &all, GetSysColorBrush(COLOR_BTNFACE));
    SelectObject(context, m_list->rowFont());
    SetBkMode(context, TRANSPARENT);
    for (int column = 0; column < static_cast<int>(m_list->columns().size()); ++column)
    {
        drawPart(context, column);
    }
    const RECT line{0, all.bottom - scaledPixels(1), all.right, all.bottom};
    FillRect(context, &line, GetSysColorBrush(COLOR_WINDOWFRAME));
}

void ListHeader::drawPart(HDC context, int column) const
{
    const ListView::Column &part = m_list->columns()[static_cast<std::size_t>(column)];
    RECT box = partBox(column);
    if (box.right <= box.left || box.right < 0 || box.left > client().right)
    {
        return;
    }
    if (m_inside && m_hit.column == column)
    {
        FillRect(context, &box, GetSysColorBrush(COLOR_APPWORKSPACE));
    }
    const RECT edge{box.right - scaledPixels(1), box.top + scaledPixels(4), box.right, box.bottom - scaledPixels(4)};
    FillRect(context, &edge, GetSysColorBrush(COLOR_BTNSHADOW));
    InflateRect(&box, -scaledPixels(4), 0);
    const int arrow = part.order != 0 ? scaledPixels(10) : 0;
    if (arrow != 0 && box.right - box.left > arrow)
    {
        const LONG x = box.right - arrow;
        const LONG middle = (box.top + box.bottom) / 2;
        const LONG tall = arrow / 2;
        const bool up = part.order == HDF_SORTUP;
        const LONG base = up ? middle + tall / 2 : middle - tall / 2;
        const std::array<POINT, 3> corners{
            {{x, base}, {x + arrow - arrow % 2, base}, {x + arrow / 2, up ? base - tall : base + tall}}};
        const HGDIOBJ pen = SelectObject(context, GetStockObject(NULL_PEN));
        const HGDIOBJ brush = SelectObject(context, GetSysColorBrush(COLOR_3DDKSHADOW));
        Polygon(context, corners.data(), 3);
        SelectObject(context, brush);
        SelectObject(context, pen);
        box.right -= arrow + scaledPixels(3);
    }
    SetTextColor(
        context,
        GetSysColor(m_list->takesHeaderTaps() || IsWindowEnabled(parent()) != FALSE ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    const UINT align = part.format == LVCFMT_RIGHT ? DT_RIGHT : part.format == LVCFMT_CENTER ? DT_CENTER : DT_LEFT;
    DrawTextW(context, part.title.c_str(), static_cast<int>(part.title.size()), &box,
              align | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}
} // namespace zb::internal
