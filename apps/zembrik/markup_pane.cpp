#include "zembrik/markup_pane.h"

#include "display/DrawHTML.h"
#include "framework/HIDPI.h"

#include <map>

namespace zb::screens
{
namespace
{
constexpr int margin = 8;    // at 96 dots an inch
constexpr int focusMark = 3; // width of the stripe at the left
constexpr int lineStep = 16;
constexpr int widest = 300;   // of a line: what stands at its right end still belongs to what stands at its left
constexpr int tallest = 32000;
constexpr int wheelStep = 120;

void parse(CHTMLParser &parser, const std::u16string &markup)
{
    parser.SetFontQuality(ANTIALIASED_QUALITY);
    parser.SetHTML(markup.c_str());
    parser.ParseHTML(nullptr);
}

int lineWidth(int paneWidth)
{
    return std::clamp(paneWidth - 2 * HIDPI_SCALEX(margin), 1, HIDPI_SCALEX(widest));
}

SCROLLINFO barOf(HWND window, UINT mask)
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = mask;
    GetScrollInfo(window, SB_VERT, &info);
    return info;
}
} // namespace

bool MarkupPane::createIn(HWND parent)
{
    return Create(nullptr, nullptr, WS_CHILD | WS_VISIBLE | WS_VSCROLL, 0, 0, 0, 0, 0, parent);
}

void MarkupPane::setMarkup(std::u16string markup)
{
    if (m_markup != markup)
    {
        m_markup = std::move(markup);
        fitBar();
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

int MarkupPane::contentHeight(int width) const
{
    CHTMLParser parser;
    parse(parser, m_markup);
    const HDC hdc = GetDC(m_hWnd);
    RECT box{0, 0, lineWidth(width), tallest};
    MeasureHTML(hdc, &box, 0, &parser);
    ReleaseDC(m_hWnd, hdc);
    return box.bottom + 2 * HIDPI_SCALEY(margin);
}

/// The bar takes its width off the text, which may then be higher: asked twice, it settles.
void MarkupPane::fitBar()
{
    if (m_fitting)
    {
        return;
    }
    m_fitting = true;
    for (int n = 0; n < 2; ++n)
    {
        RECT client{};
        GetClientRect(m_hWnd, &client);
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_RANGE | SIF_PAGE;
        info.nMax = std::max(contentHeight(client.right) - 1, 0);
        info.nPage = static_cast<UINT>(client.bottom);
        SetScrollInfo(m_hWnd, SB_VERT, &info, TRUE);
    }
    m_fitting = false;
}

void MarkupPane::scrollTo(int position)
{
    const int former = barOf(m_hWnd, SIF_POS).nPos;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    info.nPos = position;
    if (SetScrollInfo(m_hWnd, SB_VERT, &info, TRUE) != former)
    {
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

void MarkupPane::scrollBy(WORD command, int thumb)
{
    const SCROLLINFO info = barOf(m_hWnd, SIF_ALL);
    const int page = std::max(static_cast<int>(info.nPage) - HIDPI_SCALEY(lineStep), 1);
    switch (command)
    {
    case SB_LINEUP:
        return scrollTo(info.nPos - HIDPI_SCALEY(lineStep));
    case SB_LINEDOWN:
        return scrollTo(info.nPos + HIDPI_SCALEY(lineStep));
    case SB_PAGEUP:
        return scrollTo(info.nPos - page);
    case SB_PAGEDOWN:
        return scrollTo(info.nPos + page);
    case SB_TOP:
        return scrollTo(info.nMin);
    case SB_BOTTOM:
        return scrollTo(info.nMax);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        return scrollTo(thumb);
    default:
        return;
    }
}

void MarkupPane::draw(HDC hdc, const RECT &client) const
{
    FillRect(hdc, &client, GetSysColorBrush(COLOR_WINDOW));
    CHTMLParser parser;
    parse(parser, m_markup);
    const int side = HIDPI_SCALEX(margin);
    const int top = HIDPI_SCALEY(margin) - barOf(m_hWnd, SIF_POS).nPos;
    RECT box{side, top, side + lineWidth(client.right), top + tallest};
    DrawHTML(hdc, &box, 0, &parser, nullptr, 0);
    if (GetFocus() == m_hWnd)
    {
        const RECT mark{0, 0, HIDPI_SCALEX(focusMark), client.bottom};
        FillRect(hdc, &mark, GetSysColorBrush(COLOR_HIGHLIGHT));
    }
}

LRESULT MarkupPane::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true; // painting covers all
    return 1;
}

/// By way of a bitmap: ground and text appear in one.
void MarkupPane::OnPaint(bool &handled)
{
    handled = true;
    PAINTSTRUCT paint{};
    const HDC hdc = BeginPaint(m_hWnd, &paint);
    RECT client{};
    GetClientRect(m_hWnd, &client);
    const HDC memory = CreateCompatibleDC(hdc);
    const HBITMAP bitmap = CreateCompatibleBitmap(hdc, std::max<int>(client.right, 1), std::max<int>(client.bottom, 1));
    const HGDIOBJ former = SelectObject(memory, bitmap);
    draw(memory, client);
    BitBlt(hdc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, former);
    DeleteObject(bitmap);
    DeleteDC(memory);
    EndPaint(m_hWnd, &paint);
}

void MarkupPane::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeWnd::OnSize(nType, cx, cy, handled);
    if (cx > 0 && cy > 0)
    {
        fitBar();
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

void MarkupPane::OnLButtonDown(WPARAM, POINT, bool &handled)
{
    handled = true;
    SetFocus(m_hWnd);
}

void MarkupPane::OnKeyDown(UINT nKey, UINT, UINT, bool &handled)
{
    static const std::map<UINT, WORD> steps = {{VK_UP, SB_LINEUP},     {VK_DOWN, SB_LINEDOWN},  {VK_PRIOR, SB_PAGEUP},
                                               {VK_NEXT, SB_PAGEDOWN}, {VK_SPACE, SB_PAGEDOWN}, {VK_HOME, SB_TOP},
                                               {VK_END, SB_BOTTOM}};
    if (const auto step = steps.find(nKey); step != steps.end())
    {
        handled = true;
        scrollBy(step->second, 0);
    }
}

LRESULT MarkupPane::OnMessage(UINT uMsg, WPARAM wParam, LPARAM, bool &handled)
{
    switch (uMsg)
    {
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        InvalidateRect(m_hWnd, nullptr, FALSE);
        break;
    case WM_VSCROLL:
        handled = true;
        scrollBy(LOWORD(wParam), static_cast<SHORT>(HIWORD(wParam)));
        break;
    case WM_MOUSEWHEEL:
        handled = true;
        scrollTo(barOf(m_hWnd, SIF_POS).nPos -
                 3 * HIDPI_SCALEY(lineStep) * static_cast<SHORT>(HIWORD(wParam)) / wheelStep);
        break;
    default:
        break;
    }
    return 0;
}
} // namespace zb::screens
