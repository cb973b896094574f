// The root of all window objects: a window's handle and short forms of the calls that change it.
//
// The object does not own the window; CeWnd and the dialogs say when one goes with the other. Threads: the window's.
#pragma once

#include "core/CeString.h"
#include "core/api.h"
#include "platform/shell.h"

class ZBTOOLS_API CeBaseWnd
{
  public:
    CeBaseWnd() = default;
    explicit CeBaseWnd(HWND hWnd) : m_hWnd(hWnd)
    {
    }
    virtual ~CeBaseWnd();
    CeBaseWnd(const CeBaseWnd &) = delete;
    CeBaseWnd &operator=(const CeBaseWnd &) = delete;

    operator HWND() const
    {
        return m_hWnd;
    }
    HWND GetHwnd() const
    {
        return m_hWnd;
    }

    /// Takes bits away, then sets others; with flags, SetWindowPos follows with them (and without move, size, order and
    /// activation). False when nothing changed.
    bool ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT uFlags = 0);
    bool ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT uFlags = 0);

    /// False for a window without such a bar.
    bool GetScrollRange(int nBar, int *pnMin, int *pnMax) const;
    int GetScrollPos(int nBar) const;
    void ShowScrollBar(int nBar, bool bShow = true);
    /// The greatest position that the bar can take.
    int GetScrollLimit(int nBar) const;

    /// The window's title, of any length.
    CeString CopyWindowText() const;
    /// Over the middle of another window (of its owner or parent without one), and wholly on the screen.
    void CenterWindow(HWND hWndCenter = nullptr);

    // The shell's calls of these names (platform/shell.h) for this window.
    bool SHSipPreference(SIPSTATE state);
    bool SHDoneButton(DWORD dwState);
    bool SHSetNavBarText(const WCHAR *pszText);
    bool SHFullScreen(DWORD dwState);

    HWND m_hWnd = nullptr;

  private:
    bool ModifyStyleAt(int index, DWORD dwRemove, DWORD dwAdd, UINT uFlags);
};
