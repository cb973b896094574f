// Message queues, windows without a screen, timers: what loaders need to talk to a host.
//
// A window belongs to the thread that made it; its procedure runs there alone. PostMessageW never blocks.
// SendMessageW on the owner's thread is a call; from another thread it waits until that thread dispatches it (in
// GetMessageW, PeekMessageW or a wait of its own SendMessageW), so two threads that send to each other don't lock.
// Handles are checked: messages to a window that is gone fail with last error 1400.
#pragma once

#include "platform/types.h"

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT WM_APP = 0x8000;

/// Buttons of MessageBoxW, by the low 4 bits of its flags.
inline constexpr UINT MB_OK = 0;
inline constexpr UINT MB_OKCANCEL = 1;
inline constexpr UINT MB_ABORTRETRYIGNORE = 2;
inline constexpr UINT MB_YESNOCANCEL = 3;
inline constexpr UINT MB_YESNO = 4;
inline constexpr UINT MB_RETRYCANCEL = 5;
inline constexpr UINT MB_TYPEMASK = 15;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

struct MSG
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};

/// What the record of a WM_NOTIFY (its lParam) begins with.
struct NMHDR
{
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};

struct WNDCLASSW
{
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    void *hIcon;
    void *hCursor;
    void *hbrBackground;
    const WCHAR *lpszMenuName;
    const WCHAR *lpszClassName;
};

struct CREATESTRUCTW
{
    void *lpCreateParams;
    HINSTANCE hInstance;
    void *hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    const WCHAR *lpszName;
    const WCHAR *lpszClass;
    DWORD dwExStyle;
};

/// Names of classes know no case. 0 and last error 1410 when the class exists, 87 without a name or a procedure.
ZBPLATFORM_API ATOM RegisterClassW(const WNDCLASSW *windowClass);
/// False and last error 1411 when there is no such class, 1412 while it has windows. instance is not looked at.
ZBPLATFORM_API BOOL UnregisterClassW(const WCHAR *name, HINSTANCE instance);
/// Sends WM_NCCREATE and WM_CREATE (lParam a CREATESTRUCTW); null when the class is unknown (last error 1407), the
/// parent is gone (1400), windows would nest deeper than 100 levels (87) or the window refuses: WM_NCCREATE gives 0
/// (WM_NCDESTROY follows), WM_CREATE gives -1 (it is destroyed). className may be the class's atom. menu is the id of
/// a child.
ZBPLATFORM_API HWND CreateWindowExW(DWORD exStyle, const WCHAR *className, const WCHAR *text, DWORD style, int x, int y,
                                    int width, int height, HWND parent, void *menu, HINSTANCE instance,
                                    void *parameter);
/// On the owner's thread only (else false and last error 5). Children go first, through their own thread if that is
/// another; WM_DESTROY, then WM_NCDESTROY; queued messages to it are dropped and its timers stopped. The windows of a
/// thread that ends or is terminated go with it, without messages.
ZBPLATFORM_API BOOL DestroyWindow(HWND window);
ZBPLATFORM_API BOOL IsWindow(HWND window);
ZBPLATFORM_API HWND GetParent(HWND window);
ZBPLATFORM_API DWORD GetWindowThreadProcessId(HWND window, DWORD *process);
ZBPLATFORM_API LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ZBPLATFORM_API LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr int GWL_WNDPROC = -4;
inline constexpr int GWL_STYLE = -16;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr int GWL_USERDATA = -21;
inline constexpr int GWL_ID = -12;
/// Pointer-wide words of a window: those above, or byte offsets into its extra bytes (cbWndExtra). 0 on failure, with
/// last error 1413 for an index that is none.
ZBPLATFORM_API LONG_PTR GetWindowLongW(HWND window, int index);
ZBPLATFORM_API LONG_PTR SetWindowLongW(HWND window, int index, LONG_PTR value);

ZBPLATFORM_API BOOL SetWindowTextW(HWND window, const WCHAR *text);
ZBPLATFORM_API int GetWindowTextW(HWND window, WCHAR *buffer, int size);
ZBPLATFORM_API int GetWindowTextLengthW(HWND window);

// --- Messages ----------------------------------------------------------------------------------------------------

inline constexpr UINT PM_NOREMOVE = 0;
inline constexpr UINT PM_REMOVE = 1;

/// 0 and last error 1400 when the window is gone, also when it or its thread ends before the procedure has answered.
ZBPLATFORM_API LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// A null window posts to the calling thread. False and last error 298 when 10,000 messages wait already.
ZBPLATFORM_API BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// False and last error 1444 for a thread that does not exist.
ZBPLATFORM_API BOOL PostThreadMessageW(DWORD thread, UINT message, WPARAM wParam, LPARAM lParam);
ZBPLATFORM_API void PostQuitMessage(int exitCode);

/// Tells the user something and waits for a button; the low 4 bits of the flags choose the buttons (MB_OK ...). Null
/// texts are empty. Goes where the device's options say, since there are no dialogs yet. Any thread.
ZBPLATFORM_API int MessageBoxW(HWND owner, const WCHAR *text, const WCHAR *caption, UINT flags);
/// Dispatches what other threads sent, then takes a posted message, a quit, or a due timer, in that order. first and
/// last bound the message numbers, both 0 means all; a window takes its own messages and its children's. A quit passes
/// every bound. GetMessageW gives 0 for WM_QUIT, else 1; -1 for a window that is gone or another thread's.
ZBPLATFORM_API BOOL PeekMessageW(MSG *message, HWND window, UINT first, UINT last, UINT remove);
ZBPLATFORM_API BOOL GetMessageW(MSG *message, HWND window, UINT first, UINT last);
ZBPLATFORM_API BOOL TranslateMessage(const MSG *message);
/// Calls the window's procedure, or the timer's when lParam of a WM_TIMER holds one and the timer still is set.
ZBPLATFORM_API LRESULT DispatchMessageW(const MSG *message);

using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);
/// A timer of the window (id chosen by the caller, an equal one is set anew) or, with a null window, of the thread (id
/// chosen here; that of one of its timers sets it anew). WM_TIMER comes when no other message waits, never twice at
/// once for one timer. 0 on failure. Fewer than 1 ms are taken as 1.
ZBPLATFORM_API UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
ZBPLATFORM_API BOOL KillTimer(HWND window, UINT_PTR id);
