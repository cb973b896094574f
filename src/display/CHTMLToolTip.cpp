#include "display/CHTMLToolTip.h"

#include "display/GridRecords.h"
#include "framework/HIDPI.h"

#include <algorithm>

namespace
{
constexpr const WCHAR *tipClass = u"HTMLTOOLTIPCLASS";

/// Tips of the process; their class is there as long as one of them.
int tipCount = 0;
} // namespace

CHTMLToolTip::~CHTMLToolTip()
{
    if (m_hWnd != nullptr && IsWindow(m_hWnd) != FALSE)
    {
        DestroyWindow(m_hWnd);
    }
    if (m_bClassCounted && --tipCount == 0)
    {
        UnregisterClassW(tipClass, nullptr);
    }
}

bool CHTMLToolTip::Create(HWND hParent)
{
    if (!m_bClassCounted && tipCount++ == 0)
    {
        CeWnd::RegisterClassW(tipClass);
    }
    m_bClassCounted = true;
    return Create(tipClass, hParent, RECT{}, nullptr, WS_CHILD);
}

void CHTMLToolTip::ShowToolTip(POINT point, ToolTipCorner corner)
{
    m_ptAnchor = point;
    m_nCorner = corner;
    m_bWanted = true;
    Place();
    const UINT shown = m_bTextless ? 0U : SWP_SHOWWINDOW;
    SetWindowPos(m_hWnd, HWND_TOP, 0, 0, 0, 0, shown | SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void CHTMLToolTip::HideToolTip()
{
    m_bWanted = false;
    ShowWindow(m_hWnd, SW_HIDE);
}

/// With the room around it. Three quarters of the screen are wide enough for any tip.
SIZE CHTMLToolTip::MeasureText(bool bWide)
{
    constexpr double share = 0.75;
    RECT area = {0, 0, static_cast<LONG>(GetSystemMetrics(SM_CXSCREEN) * share), 0};
    const HDC hdc = GetDC(m_hWnd);
    MeasureHTML(hdc, &area, 0, &m_Parser);
    ReleaseDC(m_hWnd, hdc);
    InflateRect(&area, bWide ? 8 : 5, bWide ? 3 : 1);
    return {area.right - area.left, area.bottom - area.top};
}

/// At the anchor, moved into the parent. Of one that is larger than the parent the right and the bottom show, since the
/// edges are looked at in the order top, bottom, left, right.
void CHTMLToolTip::Place()
{
    const bool right = m_nCorner == ToolTipCorner::RightTop || m_nCorner == ToolTipCorner::RightBottom;
    const bool bottom = m_nCorner == ToolTipCorner::LeftBottom || m_nCorner == ToolTipCorner::RightBottom;
    RECT client{};
    GetClientRect(GetParent(m_hWnd), &client);
    const LONG top = std::max(m_ptAnchor.y - (bottom ? m_Size.cy : 0), client.top);
    const LONG left = std::max(m_ptAnchor.x - (right ? m_Size.cx : 0), client.left);
    MoveWindow(m_hWnd, std::min(left, client.right - m_Size.cx), std::min(top, client.bottom - m_Size.cy), m_Size.cx,
               m_Size.cy, TRUE);
}

void CHTMLToolTip::UpdateToolTip(const WCHAR *pszText, bool bWide)
{
    m_bTextless = pszText == nullptr;
    if (m_bTextless)
    {
        ShowWindow(m_hWnd, SW_HIDE);
        return;
    }
    m_Parser.SetHTML(pszText);
    m_Parser.ParseHTML(m_hWnd);
    m_Size = MeasureText(bWide);
    Place();
    InvalidateRect(m_hWnd, nullptr, FALSE);
    if (m_bWanted)
    {
        ShowWindow(m_hWnd, SW_SHOWNA);
    }
}

/// Pictures in the text are the parent's.
LRESULT CHTMLToolTip::OnNotify(WPARAM wParam, LPARAM lParam, bool &handled)
{
    handled = true;
    return SendMessageW(GetParent(m_hWnd), WM_NOTIFY, wParam, lParam);
}

LRESULT CHTMLToolTip::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true;
    return 1;
}

void CHTMLToolTip::OnPaint(bool &handled)
{
    handled = true;
    PAINTSTRUCT paint{};
    const HDC hdc = BeginPaint(m_hWnd, &paint);
    RECT area{};
    GetClientRect(m_hWnd, &area);
    // That of the body: the text has been measured, so no run of it is at hand.
    const HBRUSH brush = CreateSolidBrush(m_Parser.GetBackColor(true));
    const HPEN pen = CreatePen(PS_SOLID, g_HIDPI_BorderPixels, GetSysColor(COLOR_BTNSHADOW));
    const HGDIOBJ formerBrush = SelectObject(hdc, brush);
    const HGDIOBJ formerPen = SelectObject(hdc, pen);
    Rectangle(hdc, area.left, area.top, area.right, area.bottom);
    SelectObject(hdc, formerPen);
    SelectObject(hdc, formerBrush);
    DeleteObject(pen);
    DeleteObject(brush);
    InflateRect(&area, -5, -2);
    DrawHTML(hdc, &area, 0, &m_Parser, &m_HotSpots, 0);
    EndPaint(m_hWnd, &paint);
}

void CHTMLToolTip::OnLButtonDown(WPARAM, POINT point, bool &handled)
{
    handled = true;
    ClientToScreen(m_hWnd, &point);
    const HOTSPOT first = m_HotSpots.empty() ? HOTSPOT{} : m_HotSpots.front();
    tagNM_GRIDVIEW notify{};
    notify.hdr = {m_hWnd, 0, NM_HOTSPOT};
    notify.szTarget = first.szKey;
    notify.pt = point;
    notify.nRow = GRID_NONE;
    notify.nCol = GRID_NONE;
    SendMessageW(GetParent(m_hWnd), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
}

/// What the parent's pen began ends here too.
void CHTMLToolTip::OnLButtonUp(WPARAM uKeys, POINT point, bool &handled)
{
    handled = true;
    const HWND parent = GetParent(m_hWnd);
    MapWindowPoints(m_hWnd, parent, &point, 1);
    SendMessageW(parent, WM_LBUTTONUP, uKeys, MAKELONG(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}
