// How a list view looks.
#include "platform/linux/control_listview.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// A colour a little on the way from one to the other.
COLORREF between(COLORREF one, COLORREF other, int percent)
{
    const auto mix = [percent](int a, int b) { return static_cast<BYTE>(a + (b - a) * percent / 100); };
    return RGB(mix(GetRValue(one), GetRValue(other)), mix(GetGValue(one), GetGValue(other)),
               mix(GetBValue(one), GetBValue(other)));
}
} // namespace

void ListView::draw(HDC context)
{
    const RECT all = client();
    const COLORREF ground = m_ground == CLR_NONE ? GetSysColor(isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE) : m_ground;
    fill(context, all, ground);
    SelectObject(context, font());
    SetBkMode(context, TRANSPARENT);
    NMLVCUSTOMDRAW record{};
    record.nmcd.dwDrawStage = CDDS_PREPAINT;
    record.nmcd.hdc = context;
    record.nmcd.rc = all;
    const LRESULT answer = notify(NM_CUSTOMDRAW, record.nmcd.hdr);
    if ((answer & CDRF_SKIPDEFAULT) != 0)
    {
        return;
    }
    IntersectClipRect(context, 0, rowsArea().top, all.right, all.bottom);
    const int last = m_top + pageRows() + 1;
    for (int row = m_top; row < last && isRow(row) && !isGone(); ++row)
    {
        drawRow(context, row, (answer & CDRF_NOTIFYITEMDRAW) != 0);
    }
    if ((m_extended & LVS_EX_GRIDLINES) != 0 && hasColumns())
    {
        const COLORREF line = GetSysColor(COLOR_SCROLLBAR);
        for (int column = 1; column <= columnCount(); ++column)
        {
            const LONG x = columnLeft(column) - 1;
            fill(context, {x, rowsArea().top, x + scaledPixels(1), all.bottom}, line);
        }
        for (LONG y = rowsArea().top + m_rowHeight; y < all.bottom; y += m_rowHeight)
        {
            fill(context, {0, y - scaledPixels(1), all.right, y}, line);
        }
    }
}

COLORREF ListView::inkOf(int row) const
{
    if (!isEnabled() || (item(row).state & LVIS_CUT) != 0)
    {
        return GetSysColor(COLOR_GRAYTEXT);
    }
    return m_ink == CLR_NONE ? GetSysColor(COLOR_WINDOWTEXT) : m_ink;
}

ListView::Look ListView::lookOf(int row) const
{
    const UINT state = item(row).state;
    const bool focused = hasFocus() || m_edit.isShown();
    const bool dropped = (state & LVIS_DROPHILITED) != 0;
    const bool chosen = dropped || ((state & LVIS_SELECTED) != 0 && (focused || (style() & LVS_SHOWSELALWAYS) != 0));
    Look look{inkOf(row), m_textGround, chosen};
    if (chosen && isEnabled())
    {
        const bool strong = focused || dropped;
        look.ground = GetSysColor(strong ? COLOR_HIGHLIGHT : COLOR_APPWORKSPACE);
        look.ink = GetSysColor(strong ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
    }
    else if (chosen)
    {
        look.ground = GetSysColor(COLOR_APPWORKSPACE);
    }
    return look;
}

void ListView::drawRow(HDC context, int row, bool asks)
{
    const Look look = lookOf(row);
    NMLVCUSTOMDRAW record{};
    LRESULT answer = CDRF_DODEFAULT;
    const UINT state = item(row).state;
    record.nmcd.hdc = context;
    record.nmcd.rc = rowBox(row);
    record.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
    record.nmcd.lItemlParam = item(row).data;
    record.nmcd.uItemState = ((state & LVIS_SELECTED) != 0 ? CDIS_SELECTED : 0) |
                             (row == m_focus && hasFocus() ? CDIS_FOCUS : 0) | (isEnabled() ? 0 : CDIS_DISABLED);
    record.clrText = look.ink;
    record.clrTextBk = look.ground;
    if (asks)
    {
        record.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
        answer = notify(NM_CUSTOMDRAW, record.nmcd.hdr);
    }
    if ((answer & CDRF_SKIPDEFAULT) == 0 && isRow(row))
    {
        // What is chosen keeps its own colours, or nobody could see that it is.
        const Look asked = look.chosen ? look : Look{record.clrText, record.clrTextBk, false};
        drawCells(context, row, asked, answer, record);
    }
    if ((answer & CDRF_NOTIFYPOSTPAINT) != 0)
    {
        record.nmcd.dwDrawStage = CDDS_ITEMPOSTPAINT;
        notify(NM_CUSTOMDRAW, record.nmcd.hdr);
    }
    SelectObject(context, font());
}

void ListView::drawCells(HDC context, int row, const Look &look, LRESULT answer, NMLVCUSTOMDRAW &record)
{
    RECT chosen = hasFullRows() ? rowBox(row) : textBox(row);
    if (look.ground != CLR_NONE)
    {
        fill(context, chosen, look.ground);
    }
    const RECT all = client();
    for (int column = 0; column < columnCount() && isRow(row); ++column)
    {
        const RECT cell = cellBox(row, column);
        if (cell.right <= 0 || cell.left >= all.right)
        {
            continue;
        }
        // Only the label is marked without full rows: the other columns keep the colours of the rest.
        const bool isMarked = column == 0 || hasFullRows();
        Look own = isMarked ? look : Look{inkOf(row), m_textGround, false};
        if ((answer & CDRF_NOTIFYSUBITEMDRAW) != 0)
        {
            record.nmcd.dwDrawStage = CDDS_ITEMPREPAINT | CDDS_SUBITEM;
            record.iSubItem = subItemOf(column);
            record.nmcd.rc = cell;
            record.clrText = look.ink;
            record.clrTextBk = look.ground;
            const LRESULT said = notify(NM_CUSTOMDRAW, record.nmcd.hdr);
            if ((said & CDRF_SKIPDEFAULT) != 0 || !isRow(row))
            {
                continue;
            }
            if (!own.chosen)
            {
                own = {record.clrText, record.clrTextBk, false};
                own.ground != look.ground ? fill(context, cell, own.ground) : static_cast<void>(0);
            }
        }
        drawCell(context, row, column, own);
    }
    if (hasFocus() && row == m_focus && isRow(row))
    {
        chosen.left = std::max<LONG>(chosen.left, 0);
        chosen.right = std::min(chosen.right, all.right);
        SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
        DrawFocusRect(context, &chosen);
    }
}

void ListView::drawCell(HDC context, int row, int column, const Look &look)
{
    const int subItem = subItemOf(column);
    RECT box = cellBox(row, column);
    const int saved = SaveDC(context);
    IntersectClipRect(context, box.left, box.top, box.right, box.bottom);
    if (column == 0)
    {
        const Parts parts = partsOf(row);
        drawState(context, m_images[LVSIL_STATE], stateImageOf(item(row).state),
                  {box.left + parts.state, box.top, box.left + parts.image, box.bottom});
    }
    const int image = column == 0 || (m_extended & LVS_EX_SUBITEMIMAGES) != 0 ? imageOf(row, subItem) : I_IMAGENONE;
    const SIZE size = imageSizeOf(rowImages());
    const int imageLeft = box.left + (column == 0 ? partsOf(row).image : scaledPixels(2));
    if (image >= 0 && size.cx > 0)
    {
        ImageList_Draw(rowImages(), image, context, imageLeft, box.top + (m_rowHeight - size.cy) / 2, ILD_TRANSPARENT);
        box.left = column == 0 ? box.left : imageLeft + size.cx;
    }
    box.left = column == 0 ? labelBox(row).left : box.left;
    InflateRect(&box, -scaledPixels(4), 0);
    const int format = hasColumns() && column > 0 ? m_columns[static_cast<std::size_t>(column)].format : LVCFMT_LEFT;
    const UINT align = format == LVCFMT_RIGHT ? DT_RIGHT : format == LVCFMT_CENTER ? DT_CENTER : DT_LEFT;
    if (box.right > box.left && !(m_edit.isShown() && row == m_edited && column == 0))
    {
        const std::u16string text = textOf(row, subItem);
        SetTextColor(context, look.ink);
        DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &box,
                  align | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    RestoreDC(context, saved);
}

/// The row as a card with an edge, so that it can be read over whatever it is drawn.
HIMAGELIST ListView::makeDragImage(int row, POINT *corner)
{
    if (!isRow(row))
    {
        return nullptr;
    }
    const RECT label = textBox(row);
    const RECT cell = cellBox(row, 0);
    const int left = static_cast<int>(cell.left) + partsOf(row).image;
    const int width = std::max(static_cast<int>(label.right) - left, 1);
    const HDC context = CreateCompatibleDC(nullptr);
    const HDC screen = GetDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, m_rowHeight);
    ReleaseDC(nullptr, screen);
    const HGDIOBJ former = SelectObject(context, bitmap);
    RECT card{0, 0, width, m_rowHeight};
    FillRect(context, &card, GetSysColorBrush(COLOR_WINDOWFRAME));
    InflateRect(&card, -scaledPixels(1), -scaledPixels(1));
    fill(context, card, between(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_HIGHLIGHT), 15));
    if (const SIZE size = imageSizeOf(rowImages()); size.cx > 0)
    {
        ImageList_Draw(rowImages(), imageOf(row, 0), context, 0, (m_rowHeight - size.cy) / 2, ILD_TRANSPARENT);
    }
    SelectObject(context, font());
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
    RECT text{label.left - left + scaledPixels(4), 0, width - scaledPixels(4), m_rowHeight};
    const std::u16string shown = textOf(row, subItemOf(0));
    DrawTextW(context, shown.c_str(), static_cast<int>(shown.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(context, former);
    DeleteDC(context);
    const HIMAGELIST list = ImageList_Create(width, m_rowHeight, ILC_COLOR32, 1, 0);
    ImageList_Add(list, bitmap, nullptr);
    DeleteObject(bitmap);
    if (corner != nullptr)
    {
        *corner = {left, label.top};
    }
    return list;
}
} // namespace zb::internal
