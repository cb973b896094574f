// The tab control: where its tabs lie, and how they look.
#include "platform/linux/control_tab.h"

#include <algorithm>

namespace zb::internal
{
int TabControl::widthOf(int index, int padding) const
{
    int content = tab(index).content;
    if ((style() & TCS_FIXEDWIDTH) != 0)
    {
        for (const Tab &one : m_tabs)
        {
            content = std::max(content, one.content);
        }
        return m_width != 0 ? m_width : content + 2 * padding;
    }
    return std::max(content + 2 * padding, scaledPixels(28));
}

int TabControl::total(int padding) const
{
    int sum = 0;
    for (int index = 0; index < count(); ++index)
    {
        sum += widthOf(index, padding);
    }
    return sum;
}

void TabControl::measureAll()
{
    const HDC context = CreateCompatibleDC(nullptr);
    const HGDIOBJ former = SelectObject(context, font());
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    m_lineHeight = metrics.tmHeight;
    const int imageWidth = imageSizeOf(m_images).cx;
    for (Tab &one : m_tabs)
    {
        RECT box{};
        DrawTextW(context, one.text.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
        one.content =
            box.right + (one.image >= 0 && m_images != nullptr ? imageWidth + (one.text.empty() ? 0 : gap()) : 0);
    }
    SelectObject(context, former);
    DeleteDC(context);
    arrange();
}

void TabControl::arrange()
{
    const int wanted = m_padding.has_value() ? m_padding->x : scaledPixels(9);
    const int least = std::min(wanted, scaledPixels(5));
    const int width = client().right;
    m_shownPadding = wanted;
    while (m_shownPadding > least && total(m_shownPadding) > width)
    {
        --m_shownPadding;
    }
    m_scrolls = total(m_shownPadding) > width;
    m_first = std::clamp(m_first, 0, lastFirst());
    show(m_current);
    refresh();
}

int TabControl::lastFirst() const
{
    if (!m_scrolls)
    {
        return 0;
    }
    int index = std::max(count() - 1, 0);
    for (int width = count() == 0 ? 0 : widthOf(index); index > 0; --index)
    {
        width += widthOf(index - 1);
        if (width > room())
        {
            break;
        }
    }
    return index;
}

void TabControl::show(int index)
{
    if (!isTab(index))
    {
        return;
    }
    m_first = std::min(m_first, index);
    while (m_first < index && boxOf(index).right > room())
    {
        ++m_first;
    }
}

int TabControl::stripHeight() const
{
    if (m_height != 0)
    {
        return m_height;
    }
    const int padding = m_padding.has_value() ? m_padding->y : scaledPixels(4);
    return std::max(m_lineHeight + 2 * padding + GetSystemMetrics(SM_CYBORDER), scaledPixels(24));
}

RECT TabControl::strip() const
{
    const RECT all = client();
    const int height = std::min<int>(stripHeight(), all.bottom);
    return isBelow() ? RECT{0, all.bottom - height, all.right, all.bottom} : RECT{0, 0, all.right, height};
}

RECT TabControl::boxOf(int index) const
{
    const RECT line = strip();
    int left = 0;
    for (int one = std::min(index, m_first); one < std::max(index, m_first); ++one)
    {
        left += (index < m_first ? -1 : 1) * widthOf(one);
    }
    return {left, line.top, left + widthOf(index), line.bottom};
}

RECT TabControl::arrowBox(int step) const
{
    const RECT line = strip();
    const LONG left = line.right - (step < 0 ? 2 : 1) * arrowWidth();
    return {left, line.top, left + arrowWidth(), line.bottom};
}

int TabControl::tabAt(POINT point) const
{
    for (int index = m_first; index < count() && point.x < room(); ++index)
    {
        const RECT box = boxOf(index);
        if (PtInRect(&box, point) != FALSE)
        {
            return index;
        }
    }
    return -1;
}

LRESULT TabControl::hitTest(TCHITTESTINFO &info) const
{
    const int index = tabAt(info.pt);
    const bool hasImage = index >= 0 && m_images != nullptr && tab(index).image >= 0;
    const bool onImage = hasImage && info.pt.x < contentLeft(index) + imageSizeOf(m_images).cx;
    info.flags = index < 0 ? TCHT_NOWHERE : onImage ? TCHT_ONITEMICON : TCHT_ONITEMLABEL;
    return index;
}

void TabControl::adjust(bool grow, RECT &box) const
{
    const int height = (grow ? 1 : -1) * stripHeight();
    if (isBelow())
    {
        box.bottom += height;
    }
    else
    {
        box.top -= height;
    }
}

int TabControl::contentLeft(int index) const
{
    const RECT box = boxOf(index);
    return box.left + (box.right - box.left - tab(index).content) / 2;
}

void TabControl::draw(HDC context) const
{
    prepare(context, WM_CTLCOLORSTATIC, COLOR_WINDOW);
    const int line = GetSystemMetrics(SM_CYBORDER);
    const RECT row = strip();
    fill(context, row, COLOR_BTNFACE);
    const RECT edge = isBelow() ? RECT{row.left, row.top, row.right, row.top + line}
                                : RECT{row.left, row.bottom - line, row.right, row.bottom};
    fill(context, edge, COLOR_WINDOWFRAME);
    for (int index = m_first; index < count(); ++index)
    {
        if (boxOf(index).left < room())
        {
            drawTab(context, index);
        }
    }
    if (m_scrolls)
    {
        drawArrow(context, -1, m_first > 0);
        drawArrow(context, 1, m_first < lastFirst());
    }
}

void TabControl::drawArrow(HDC context, int step, bool useful) const
{
    RECT box = arrowBox(step);
    DrawFrameControl(context, &box, DFC_SCROLL,
                     (step < 0 ? DFCS_SCROLLLEFT : DFCS_SCROLLRIGHT) | (m_pressed == step ? DFCS_PUSHED : 0) |
                         (useful && isEnabled() ? 0 : DFCS_INACTIVE));
}

void TabControl::drawTab(HDC context, int index) const
{
    const int line = GetSystemMetrics(SM_CXBORDER);
    const RECT box = boxOf(index);
    const bool chosen = index == m_current;
    RECT inside = box;
    (isBelow() ? inside.top : inside.bottom) += isBelow() ? line : -line;
    if (chosen)
    {
        fill(context, box, COLOR_WINDOW);
        const int mark = scaledPixels(2);
        RECT outer = box;
        (isBelow() ? outer.top : outer.bottom) = isBelow() ? box.bottom - mark : box.top + mark;
        fill(context, outer, isEnabled() ? COLOR_HIGHLIGHT : COLOR_GRAYTEXT);
        inside = box;
    }
    const int sides = chosen ? COLOR_WINDOWFRAME : COLOR_INACTIVEBORDER;
    if (chosen && index > m_first)
    {
        fill(context, {box.left - line, box.top, box.left, box.bottom}, sides);
    }
    // The line between two belongs to the one before it; beside the chosen one it has the colour of its frame.
    fill(context, {inside.right - line, inside.top, inside.right, inside.bottom}, sides);
    drawContent(context, index, box);
    if (chosen && hasFocus())
    {
        RECT focus = box;
        focus.right -= line;
        InflateRect(&focus, -scaledPixels(3), -scaledPixels(4));
        DrawFocusRect(context, &focus);
    }
}

void TabControl::drawContent(HDC context, int index, const RECT &box) const
{
    int left = contentLeft(index);
    if (m_images != nullptr && tab(index).image >= 0)
    {
        const SIZE size = imageSizeOf(m_images);
        ImageList_Draw(m_images, tab(index).image, context, left, box.top + (box.bottom - box.top - size.cy) / 2,
                       ILD_NORMAL);
        left += size.cx + gap();
    }
    SetTextColor(context, GetSysColor(!isEnabled()         ? COLOR_GRAYTEXT
                                      : index == m_current ? COLOR_WINDOWTEXT
                                                           : COLOR_BTNTEXT));
    RECT words{left, box.top, box.right, box.bottom};
    DrawTextW(context, tab(index).text.c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER);
}
} // namespace zb::internal
