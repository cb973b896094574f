#include "zembrik/leaf_bar.h"

#include "common/markup_text.h"
#include "framework/HIDPI.h"
#include "framework/MemoryBitmap.h"
#include "zembrik/paint.h"

namespace zb::screens
{
namespace
{
// At 96 dots an inch.
constexpr int barHeight = 24;
constexpr int arrowRoom = 36;
constexpr int arrowHeight = 10;

/// Points to the left (-1) or to the right.
void drawArrow(HDC hdc, POINT middle, int direction)
{
    const int half = HIDPI_SCALEY(arrowHeight) / 2;
    for (int n = 0; n <= half; ++n)
    {
        const LONG x = middle.x + direction * (half / 2 - n);
        fillBox(hdc, {x, middle.y - n, x + 1, middle.y + n + 1}, todayColor);
    }
}
} // namespace

bool LeafBar::createIn(HWND parent, Leaf leaf)
{
    m_leaf = std::move(leaf);
    return Create(parent, {0, 0, 0, 0});
}

void LeafBar::setWords(std::u16string words)
{
    if (m_words != words)
    {
        m_words = std::move(words);
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

int LeafBar::height()
{
    return HIDPI_SCALEY(barHeight);
}

void LeafBar::draw(HDC hdc, const RECT &client) const
{
    fillBox(hdc, client, RGB(255, 255, 255));
    fillBox(hdc, {0, client.bottom - g_HIDPI_BorderPixels, client.right, client.bottom}, ruleColor);
    const LONG room = HIDPI_SCALEX(arrowRoom);
    const LONG middle = client.bottom / 2;
    drawArrow(hdc, {room / 2, middle}, -1);
    drawArrow(hdc, {client.right - room / 2, middle}, 1);
    const int height = lineHeight(hdc, 2);
    const RECT words{room, (client.bottom - height) / 2, client.right - room, client.bottom};
    drawMarkup(hdc, words,
               u"<BODY BGCOLOR=#FFFFFF><P ALIGN=CENTER><FONT SIZE=2 COLOR=#16202B><B>" + host::plainMarkup(m_words));
}

LRESULT LeafBar::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true; // painting covers all
    return 1;
}

void LeafBar::OnPaint(bool &handled)
{
    handled = true;
    PAINTSTRUCT paint{};
    const HDC hdc = BeginPaint(m_hWnd, &paint);
    RECT client{};
    GetClientRect(m_hWnd, &client);
    if (client.right > 0 && client.bottom > 0)
    {
        const OwnedBitmap bitmap(CreateCompatibleBitmap(hdc, client.right, client.bottom));
        const MemoryContext memory(bitmap.handle());
        draw(memory.context(), client);
        BitBlt(hdc, 0, 0, client.right, client.bottom, memory.context(), 0, 0, SRCCOPY);
    }
    EndPaint(m_hWnd, &paint);
}

void LeafBar::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeWnd::OnSize(nType, cx, cy, handled);
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void LeafBar::OnLButtonUp(WPARAM, POINT point, bool &handled)
{
    handled = true;
    RECT client{};
    GetClientRect(m_hWnd, &client);
    const int room = HIDPI_SCALEX(arrowRoom);
    m_leaf(point.x < room ? -1 : point.x >= client.right - room ? 1 : 0);
}
} // namespace zb::screens
