// The messages of a window as virtual operations, one for each that the engine cares about.
//
// ProcessMessage sets `handled` to false and calls the operation of the message (OnMessage for those without one of
// their own); an operation that deals with it sets `handled`. A message that nobody handled goes to Default(). The
// operations of a class stand in the order in which hosts that were built against it expect them.
//
// A point comes as two values of 16 bits that are not sign-extended: one above 32,767 is a coordinate below 0. Kept:
// the grid tests for just that.
//
// Threads: the window's own. While an operation runs, the message that it stands for is in m_uMsg, m_wParam, m_lParam.
#pragma once

#include "core/api.h"
#include "platform/user.h"

class ZBTOOLS_API CeMsgWnd
{
  public:
    CeMsgWnd();
    CeMsgWnd(const CeMsgWnd &) = delete;
    CeMsgWnd &operator=(const CeMsgWnd &) = delete;
    virtual ~CeMsgWnd();

    /// What the window did before anybody took its messages: its former procedure, or DefWindowProcW.
    virtual LRESULT Default();
    /// Calls the operation of a message. 0, or the result of OnCommand, OnNotify, OnEraseBkgnd or OnMessage.
    virtual LRESULT ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled);

    virtual void OnChar(UINT nChar, UINT nRepeat, UINT nFlags, bool &handled);
    virtual void OnClose(bool &handled);
    virtual LRESULT OnCreate(const CREATESTRUCTW *pCreate, bool &handled);
    virtual LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled);
    virtual LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled);
    virtual void OnDestroy(bool &handled);
    virtual void OnEnable(bool bEnable, bool &handled);
    virtual LRESULT OnEraseBkgnd(HDC hdc, bool &handled);
    virtual void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags, bool &handled);
    virtual void OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags, bool &handled);
    virtual void OnLButtonDblClk(WPARAM uKeys, POINT point, bool &handled);
    virtual void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled);
    virtual void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled);
    virtual void OnMouseMove(WPARAM uKeys, POINT point, bool &handled);
    virtual void OnMove(int x, int y, bool &handled);
    virtual void OnPaint(bool &handled);
    virtual void OnShowWindow(bool bShow, LPARAM nStatus, bool &handled);
    /// Calls OnOrientationChange when the screen lies otherwise than it did for this window before.
    virtual void OnSize(UINT nType, int cx, int cy, bool &handled);
    virtual void OnTimer(UINT_PTR nId, bool &handled);
    virtual void OnSettingChange(UINT uFlags, LPARAM lParam, bool &handled);
    virtual void OnOrientationChange(UINT nType, int cx, int cy, bool &handled);
    virtual LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled);
    /// Before the first message, and after WM_DESTROY, when the object has nothing more to do with the window.
    virtual void OnFirstMessage(HWND hWnd);
    virtual void OnFinalMessage(HWND hWnd);

  protected:
    friend class CeWnd;
    friend class CeBaseDialog;

    WNDPROC m_pfnSuper = nullptr;
    HWND m_hMsgWnd = nullptr;
    UINT m_uMsg = 0;
    WPARAM m_wParam = 0;
    LPARAM m_lParam = 0;

  private:
    LRESULT ProcessInput(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled);
    LRESULT ProcessWindow(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled);

    int m_nOrientation;
};
