// A window that is an object: its messages come to the virtual operations of CeMsgWnd.
//
// Create makes a window of any class: one that was registered here, a plain one, or a standard control, whose own
// procedure then stands behind Default(). Subclass puts the object before the procedure of a window that is there
// already. The object must outlive its window, or Unsubclass or DestroyWindow comes first; OnFinalMessage is the last
// thing that an object hears, so it may delete itself there.
//
// What an operation throws never reaches the window manager: it is told to the user and the program is asked to end.
// What fails while that is told is not told as well.
// Threads: the window's own.
#pragma once

#include "framework/CeBaseWnd.h"
#include "framework/CeMsgWnd.h"

class ZBTOOLS_API CeWnd : public CeBaseWnd, public CeMsgWnd
{
  public:
    CeWnd() = default;
    ~CeWnd() override;

    /// False when the window can't be made. An empty or null class is a plain one.
    bool Create(const WCHAR *pszClass, const WCHAR *pszText, DWORD dwStyle, DWORD dwExStyle, int x, int y, int cx, int cy,
                HWND hParent, void *hMenu = nullptr, HINSTANCE hInstance = nullptr);
    bool Create(const WCHAR *pszClass, HWND hParent, const RECT &rect, const WCHAR *pszText = nullptr,
                DWORD dwStyle = WS_CHILD | WS_VISIBLE, DWORD dwExStyle = 0, UINT nId = 0, HINSTANCE hInstance = nullptr);
    /// A plain window.
    bool Create(HWND hParent, const RECT &rect, DWORD dwStyle = WS_CHILD | WS_VISIBLE, UINT nId = 0);

    /// False for a window that is gone or has an object already.
    bool Subclass(HWND hWnd);
    /// Puts the former procedure back and gives the window that the object let go.
    HWND Unsubclass();

    /// Registers a class for objects of this kind; one of the same name is given up first, so a later call wins. The
    /// brush of the background is white without one, the instance the program's.
    static bool RegisterClassW(const WCHAR *pszName, UINT uStyle = 0, int cbClsExtra = 0, int cbWndExtra = 0,
                               void *hIcon = nullptr, void *hCursor = nullptr, void *hBrush = nullptr,
                               const WCHAR *pszMenu = nullptr, HINSTANCE hInstance = nullptr);
    /// "CeWnd:GENERIC", the class of plain windows; registered once.
    static bool CreateGenericWndClass(HINSTANCE hInstance = nullptr);
    /// Copies a class under "CeWnd:" and its name, with the objects' procedure. `former` gets the class's own; a class
    /// that there is not is no error here (the window's making fails). `registered` is true when the copy was made now.
    static bool RegisterWndSuperclass(const WCHAR *pszClass, WNDPROC *former, bool *registered,
                                      HINSTANCE hInstance = nullptr);
    /// Whether windows of the class are driven by objects.
    static bool IsCeWndProc(const WCHAR *pszClass, HINSTANCE hInstance = nullptr);

  protected:
    /// Whether the window still sends its messages to the object, which may be gone: nothing of it is looked at.
    static bool IsObjectOf(const CeWnd *object, HWND hWnd);

  private:
    static LRESULT StartWndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    static LRESULT WndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT Dispatch(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    void SetMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    void Release(HWND hWnd);

    LONG_PTR m_nFormerWord = 0; ///< the user word of a window that was there before
};
