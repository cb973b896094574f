#include "framework/CeBaseWnd.h"

#include <algorithm>

CeBaseWnd::~CeBaseWnd() = default;

bool CeBaseWnd::ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT uFlags)
{
    return ModifyStyleAt(GWL_STYLE, dwRemove, dwAdd, uFlags);
}

bool CeBaseWnd::ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT uFlags)
{
    return ModifyStyleAt(GWL_EXSTYLE, dwRemove, dwAdd, uFlags);
}

bool CeBaseWnd::ModifyStyleAt(int index, DWORD dwRemove, DWORD dwAdd, UINT uFlags)
{
    const auto former = static_cast<DWORD>(GetWindowLongW(m_hWnd, index));
    const DWORD fresh = (former & ~dwRemove) | dwAdd;
    if (former == fresh)
    {
        return false;
    }
    SetWindowLongW(m_hWnd, index, static_cast<LONG_PTR>(fresh));
    if (uFlags != 0)
    {
        SetWindowPos(m_hWnd, nullptr, 0, 0, 0, 0,
                     SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | uFlags);
    }
    return true;
}

bool CeBaseWnd::GetScrollRange(int nBar, int *pnMin, int *pnMax) const
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE, 0, 0, 0, 0, 0};
    const bool found = GetScrollInfo(m_hWnd, nBar, &info) != FALSE;
    *pnMin = info.nMin;
    *pnMax = info.nMax;
    return found;
}

int CeBaseWnd::GetScrollPos(int nBar) const
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, 0, 0};
    return GetScrollInfo(m_hWnd, nBar, &info) != FALSE ? info.nPos : 0;
}

void CeBaseWnd::ShowScrollBar(int nBar, bool bShow)
{
    ::ShowScrollBar(m_hWnd, nBar, bShow ? TRUE : FALSE);
}

int CeBaseWnd::GetScrollLimit(int nBar) const
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE, 0, 0, 0, 0, 0};
    if (GetScrollInfo(m_hWnd, nBar, &info) == FALSE)
    {
        return 0;
    }
    const int page = info.nPage > 0 ? static_cast<int>(info.nPage) - 1 : 0;
    return std::max(info.nMin, info.nMax - page);
}

CeString CeBaseWnd::CopyWindowText() const
{
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(m_hWnd)) + 1, u'\0');
    GetWindowTextW(m_hWnd, text.data(), static_cast<int>(text.size()));
    return CeString(text.c_str());
}

void CeBaseWnd::CenterWindow(HWND hWndCenter)
{
    const bool child = (GetWindowLongW(m_hWnd, GWL_STYLE) & static_cast<LONG_PTR>(WS_CHILD)) != 0;
    if (hWndCenter == nullptr)
    {
        hWndCenter = child ? GetParent(m_hWnd) : GetWindow(m_hWnd, GW_OWNER);
    }
    RECT bounds{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    RECT around = bounds;
    if (hWndCenter != nullptr)
    {
        GetWindowRect(hWndCenter, &around);
    }
    if (child)
    {
        GetClientRect(GetParent(m_hWnd), &bounds);
        MapWindowPoints(nullptr, GetParent(m_hWnd), reinterpret_cast<POINT *>(&around), 2);
    }
    RECT own{};
    GetWindowRect(m_hWnd, &own);
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;
    // The top left corner wins when the window is larger than what bounds it.
    const int left =
        std::max<int>(bounds.left, std::min<int>((around.left + around.right - width) / 2, bounds.right - width));
    const int top =
        std::max<int>(bounds.top, std::min<int>((around.top + around.bottom - height) / 2, bounds.bottom - height));
    SetWindowPos(m_hWnd, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool CeBaseWnd::SHSipPreference(SIPSTATE state)
{
    return ::SHSipPreference(m_hWnd, state) != FALSE;
}

bool CeBaseWnd::SHDoneButton(DWORD dwState)
{
    return ::SHDoneButton(m_hWnd, dwState) != FALSE;
}

bool CeBaseWnd::SHSetNavBarText(const WCHAR *pszText)
{
    return ::SHSetNavBarText(m_hWnd, pszText) != FALSE;
}

bool CeBaseWnd::SHFullScreen(DWORD dwState)
{
    return ::SHFullScreen(m_hWnd, dwState) != FALSE;
}
