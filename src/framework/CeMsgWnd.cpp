#include "framework/CeMsgWnd.h"

#include "platform/screen.h"

namespace
{
/// Not sign-extended: see the header.
POINT PointOf(LPARAM lParam)
{
    const auto packed = static_cast<DWORD_PTR>(lParam);
    return {LOWORD(packed), HIWORD(packed)};
}

UINT Low(LPARAM lParam)
{
    return LOWORD(static_cast<DWORD_PTR>(lParam));
}

UINT High(LPARAM lParam)
{
    return HIWORD(static_cast<DWORD_PTR>(lParam));
}
} // namespace

CeMsgWnd::CeMsgWnd() : m_nOrientation(zb::screenOrientation())
{
}

CeMsgWnd::~CeMsgWnd() = default;

LRESULT CeMsgWnd::Default()
{
    return CallWindowProcW(m_pfnSuper != nullptr ? m_pfnSuper : DefWindowProcW, m_hMsgWnd, m_uMsg, m_wParam, m_lParam);
}

LRESULT CeMsgWnd::ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    handled = false;
    switch (uMsg)
    {
    case WM_CHAR:
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_LBUTTONDBLCLK:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_MOUSEMOVE:
    case WM_TIMER:
        return ProcessInput(uMsg, wParam, lParam, handled);
    case WM_COMMAND:
        return OnCommand(wParam, lParam, handled);
    case WM_NOTIFY:
        return OnNotify(wParam, lParam, handled);
    case WM_ERASEBKGND:
        return OnEraseBkgnd(reinterpret_cast<HDC>(wParam), handled);
    default:
        return ProcessWindow(uMsg, wParam, lParam, handled);
    }
}

LRESULT CeMsgWnd::ProcessInput(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    const auto key = static_cast<UINT>(wParam);
    switch (uMsg)
    {
    case WM_CHAR:
        OnChar(key, Low(lParam), High(lParam), handled);
        break;
    case WM_KEYDOWN:
        OnKeyDown(key, Low(lParam), High(lParam), handled);
        break;
    case WM_KEYUP:
        OnKeyUp(key, Low(lParam), High(lParam), handled);
        break;
    case WM_LBUTTONDBLCLK:
        OnLButtonDblClk(wParam, PointOf(lParam), handled);
        break;
    case WM_LBUTTONDOWN:
        OnLButtonDown(wParam, PointOf(lParam), handled);
        break;
    case WM_LBUTTONUP:
        OnLButtonUp(wParam, PointOf(lParam), handled);
        break;
    case WM_MOUSEMOVE:
        OnMouseMove(wParam, PointOf(lParam), handled);
        break;
    default:
        OnTimer(wParam, handled);
        break;
    }
    return 0;
}

LRESULT CeMsgWnd::ProcessWindow(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    switch (uMsg)
    {
    case WM_CREATE:
        OnCreate(reinterpret_cast<const CREATESTRUCTW *>(lParam), handled);
        break;
    case WM_CLOSE:
        OnClose(handled);
        break;
    case WM_DESTROY:
        OnDestroy(handled);
        break;
    case WM_ENABLE:
        OnEnable(wParam != 0, handled);
        break;
    case WM_MOVE:
        OnMove(static_cast<SHORT>(Low(lParam)), static_cast<SHORT>(High(lParam)), handled);
        break;
    case WM_PAINT:
        OnPaint(handled);
        break;
    case WM_SHOWWINDOW:
        OnShowWindow(wParam != 0, lParam, handled);
        break;
    case WM_SIZE:
        OnSize(static_cast<UINT>(wParam), static_cast<int>(Low(lParam)), static_cast<int>(High(lParam)), handled);
        break;
    case WM_SETTINGCHANGE:
        OnSettingChange(LOWORD(wParam), lParam, handled);
        break;
    default:
        return OnMessage(uMsg, wParam, lParam, handled);
    }
    return 0;
}

void CeMsgWnd::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    const int orientation = zb::screenOrientation();
    if (orientation != m_nOrientation)
    {
        m_nOrientation = orientation;
        OnOrientationChange(nType, cx, cy, handled);
    }
}

void CeMsgWnd::OnChar(UINT, UINT, UINT, bool &)
{
}
void CeMsgWnd::OnClose(bool &)
{
}
LRESULT CeMsgWnd::OnCreate(const CREATESTRUCTW *, bool &)
{
    return 0;
}
LRESULT CeMsgWnd::OnCommand(WPARAM, LPARAM, bool &)
{
    return 0;
}
LRESULT CeMsgWnd::OnNotify(WPARAM, LPARAM, bool &)
{
    return 0;
}
void CeMsgWnd::OnDestroy(bool &)
{
}
void CeMsgWnd::OnEnable(bool, bool &)
{
}
LRESULT CeMsgWnd::OnEraseBkgnd(HDC, bool &)
{
    return 0;
}
void CeMsgWnd::OnKeyDown(UINT, UINT, UINT, bool &)
{
}
void CeMsgWnd::OnKeyUp(UINT, UINT, UINT, bool &)
{
}
void CeMsgWnd::OnLButtonDblClk(WPARAM, POINT, bool &)
{
}
void CeMsgWnd::OnLButtonDown(WPARAM, POINT, bool &)
{
}
void CeMsgWnd::OnLButtonUp(WPARAM, POINT, bool &)
{
}
void CeMsgWnd::OnMouseMove(WPARAM, POINT, bool &)
{
}
void CeMsgWnd::OnMove(int, int, bool &)
{
}
void CeMsgWnd::OnPaint(bool &)
{
}
void CeMsgWnd::OnShowWindow(bool, LPARAM, bool &)
{
}
void CeMsgWnd::OnTimer(UINT_PTR, bool &)
{
}
void CeMsgWnd::OnSettingChange(UINT, LPARAM, bool &)
{
}
void CeMsgWnd::OnOrientationChange(UINT, int, int, bool &)
{
}
LRESULT CeMsgWnd::OnMessage(UINT, WPARAM, LPARAM, bool &)
{
    return 0;
}
void CeMsgWnd::OnFirstMessage(HWND)
{
}
void CeMsgWnd::OnFinalMessage(HWND)
{
}
