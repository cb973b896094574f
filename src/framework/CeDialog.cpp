#include "framework/CeDialog.h"

#include "framework/CeChildMgr.h"

#include <algorithm>

namespace
{
/// Where a scroll of this kind leads from the bar's present position.
int TargetOf(UINT nCode, int nPos, const SCROLLINFO &info)
{
    constexpr int line = 10;
    const int page = std::max(static_cast<int>(info.nPage) - line, line);
    switch (nCode)
    {
    case SB_LINEUP:
        return info.nPos - line;
    case SB_LINEDOWN:
        return info.nPos + line;
    case SB_PAGEUP:
        return info.nPos - page;
    case SB_PAGEDOWN:
        return info.nPos + page;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK:
        return nPos;
    case SB_TOP:
        return info.nMin;
    case SB_BOTTOM:
        return info.nMax;
    default:
        return info.nPos;
    }
}
} // namespace

CeDialog::CeDialog(UINT nSHInitFlags) : CeBaseDialog(nSHInitFlags)
{
}

CeDialog::~CeDialog() = default;

void CeDialog::SetDefaultSize(int cx, int cy)
{
    m_nDefaultWidth = cx;
    m_nDefaultHeight = cy;
}

LRESULT CeDialog::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    m_content = {client.right, client.bottom};
    m_offset = {0, 0}; // of the dialog that this object was before
    const HWND hDlg = m_hWnd;
    if (m_nSHInitFlags == 0)
    {
        SetDefaultWidthHeight();
    }
    if (!IsObjectOf(this, hDlg))
    {
        return 0; // its new size has ended it
    }
    // Centring goes by the size that the dialog has then.
    return CeBaseDialog::OnInitDialog(hFocus, lParam);
}

void CeDialog::SetDefaultWidthHeight()
{
    if (m_nDefaultWidth == 0 && m_nDefaultHeight == 0)
    {
        return;
    }
    RECT window{};
    GetWindowRect(m_hWnd, &window);
    const int width =
        m_nDefaultWidth != 0 ? m_nDefaultWidth : window.right - window.left + GetSystemMetrics(SM_CXVSCROLL);
    const int height =
        m_nDefaultHeight != 0 ? m_nDefaultHeight : window.bottom - window.top + GetSystemMetrics(SM_CYHSCROLL);
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CeDialog::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    switch (uMsg)
    {
    case WM_HSCROLL:
        OnHScroll(LOWORD(wParam), HIWORD(wParam), handled);
        return 0;
    case WM_VSCROLL:
        OnVScroll(LOWORD(wParam), HIWORD(wParam), handled);
        return 0;
    default:
        return CeBaseDialog::OnMessage(uMsg, wParam, lParam, handled);
    }
}

void CeDialog::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeBaseDialog::OnSize(nType, cx, cy, handled);
    if (m_content.cx == 0 || m_content.cy == 0)
    {
        return;
    }
    const HWND hDlg = m_hWnd;
    UpdateBar(SB_HORZ, m_content.cx, cx);
    if (IsObjectOf(this, hDlg))
    {
        UpdateBar(SB_VERT, m_content.cy, cy);
    }
}

void CeDialog::UpdateBar(int nBar, int nContent, int nPage)
{
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE, 0, nContent - 1, static_cast<UINT>(nPage), 0, 0};
    const HWND hDlg = m_hWnd;
    const int position = SetScrollInfo(hDlg, nBar, &info, TRUE);
    if (!IsObjectOf(this, hDlg))
    {
        return;
    }
    // More room may have brought the content back.
    const int former = nBar == SB_HORZ ? m_offset.x : m_offset.y;
    if (position != former)
    {
        Scroll(nBar, SB_THUMBPOSITION, position);
    }
}

void CeDialog::OnHScroll(UINT nCode, int nPos, bool &handled)
{
    handled = true;
    Scroll(SB_HORZ, nCode, nPos);
}

void CeDialog::OnVScroll(UINT nCode, int nPos, bool &handled)
{
    handled = true;
    Scroll(SB_VERT, nCode, nPos);
}

void CeDialog::Scroll(int nBar, UINT nCode, int nPos)
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    GetScrollInfo(m_hWnd, nBar, &info);
    info.fMask = SIF_POS;
    info.nPos = TargetOf(nCode, nPos, info);
    const HWND hDlg = m_hWnd;
    const int position = SetScrollInfo(hDlg, nBar, &info, TRUE);
    if (!IsObjectOf(this, hDlg))
    {
        return;
    }
    LONG &offset = nBar == SB_HORZ ? m_offset.x : m_offset.y;
    const int shift = offset - position;
    offset = position;
    MoveChildren(nBar == SB_HORZ ? shift : 0, nBar == SB_VERT ? shift : 0);
}

void CeDialog::MoveChildren(int dx, int dy)
{
    if (dx == 0 && dy == 0)
    {
        return;
    }
    CeChildMgr::OffsetChildren(m_hWnd, {dx, dy});
}
