// Windows, their messages and timers, painting, pen and keys.
//
// A window belongs to the thread that made it; its procedure runs there alone. PostMessageW never blocks.
// SendMessageW on the owner's thread is a call; from another thread it waits until that thread dispatches it (in
// GetMessageW, PeekMessageW or a wait of its own SendMessageW), so two threads that send to each other don't lock.
// Handles are checked: messages to a window that is gone fail with last error 1400.
//
// Place: a window with WS_CHILD lies in its parent's client area and counts from that one's top left corner; all others
// lie on the screen. Every pixel of the screen belongs to one window at a time, the topmost shown one: a window never
// draws over its children or over what lies above it, whatever its styles say.
//
// Painting: what is invalid stands in the window's update region until BeginPaint or ValidateRect takes it out; WM_PAINT
// comes when no other message waits. What a window uncovers when it moves, shrinks, hides or goes is invalid in those
// below it; a window that moves is painted anew as a whole.
#pragma once

#include "platform/gdi.h"

struct HMENU__;
/// A menu (menu.h); checked at each use.
using HMENU = HMENU__ *;

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_ACTIVATE = 0x0006;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETREDRAW = 0x000B;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_SETTINGCHANGE = 0x001A;
inline constexpr UINT WM_CANCELMODE = 0x001F;
inline constexpr UINT WM_NEXTDLGCTL = 0x0028;
inline constexpr UINT WM_DRAWITEM = 0x002B;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_GETFONT = 0x0031;
inline constexpr UINT WM_WINDOWPOSCHANGED = 0x0047;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_NCPAINT = 0x0085;
inline constexpr UINT WM_GETDLGCODE = 0x0087;
inline constexpr UINT WM_NCLBUTTONDOWN = 0x00A1;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_SYSCOMMAND = 0x0112;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_HSCROLL = 0x0114;
inline constexpr UINT WM_VSCROLL = 0x0115;
inline constexpr UINT WM_INITMENUPOPUP = 0x0117;
inline constexpr UINT WM_CTLCOLOREDIT = 0x0133;
inline constexpr UINT WM_CTLCOLORLISTBOX = 0x0134;
inline constexpr UINT WM_CTLCOLORBTN = 0x0135;
inline constexpr UINT WM_CTLCOLORDLG = 0x0136;
inline constexpr UINT WM_CTLCOLORSTATIC = 0x0138;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr UINT WM_ENTERMENULOOP = 0x0211;
inline constexpr UINT WM_EXITMENULOOP = 0x0212;
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT WM_APP = 0x8000;

inline constexpr DWORD WS_OVERLAPPED = 0x00000000U;
inline constexpr DWORD WS_MAXIMIZEBOX = 0x00020000U;
inline constexpr DWORD WS_TABSTOP = 0x00010000U;
inline constexpr DWORD WS_GROUP = 0x00020000U;
inline constexpr DWORD WS_SYSMENU = 0x00080000U;
inline constexpr DWORD WS_HSCROLL = 0x00100000U;
inline constexpr DWORD WS_VSCROLL = 0x00200000U;
inline constexpr DWORD WS_DLGFRAME = 0x00400000U;
inline constexpr DWORD WS_BORDER = 0x00800000U;
inline constexpr DWORD WS_CAPTION = 0x00C00000U; ///< WS_BORDER and WS_DLGFRAME together
inline constexpr DWORD WS_CLIPCHILDREN = 0x02000000U;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000U;
inline constexpr DWORD WS_DISABLED = 0x08000000U;
inline constexpr DWORD WS_VISIBLE = 0x10000000U;
inline constexpr DWORD WS_CHILD = 0x40000000U;
inline constexpr DWORD WS_POPUP = 0x80000000U;
inline constexpr DWORD WS_EX_TOPMOST = 0x00000008U;
inline constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200U;
/// Of a child: keys of the dialog that it lies in go from control to control inside it, too.
inline constexpr DWORD WS_EX_CONTROLPARENT = 0x00010000U;
inline constexpr DWORD WS_EX_NOACTIVATE = 0x08000000U;

inline constexpr UINT CS_DBLCLKS = 0x0008;
/// As x, for a window of the screen: the whole screen. As a width or height: up to the edge.
inline constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000U);

/// Buttons of MessageBoxW, by the low 4 bits of its flags.
inline constexpr UINT MB_OK = 0;
inline constexpr UINT MB_OKCANCEL = 1;
inline constexpr UINT MB_ABORTRETRYIGNORE = 2;
inline constexpr UINT MB_YESNOCANCEL = 3;
inline constexpr UINT MB_YESNO = 4;
inline constexpr UINT MB_RETRYCANCEL = 5;
inline constexpr UINT MB_TYPEMASK = 15;
/// Its picture, by the next 4 bits.
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONQUESTION = 0x20;
inline constexpr UINT MB_ICONWARNING = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_ICONMASK = 0xF0;
/// The button that Enter presses: the first unless one of these is given.
inline constexpr UINT MB_DEFBUTTON2 = 0x100;
inline constexpr UINT MB_DEFBUTTON3 = 0x200;
inline constexpr UINT MB_DEFMASK = 0xF00;
inline constexpr UINT MB_TOPMOST = 0x40000;

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
/// What the class was registered with; its name is the system's own. False and last error 1411 without such a class.
ZBPLATFORM_API BOOL GetClassInfoW(HINSTANCE instance, const WCHAR *name, WNDCLASSW *description);
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

// --- Place -------------------------------------------------------------------------------------------------------

/// On the screen, right and bottom outside.
ZBPLATFORM_API BOOL GetWindowRect(HWND window, RECT *rectangle);
/// From 0, 0: what frame, title and scroll bars leave.
ZBPLATFORM_API BOOL GetClientRect(HWND window, RECT *rectangle);
ZBPLATFORM_API BOOL ClientToScreen(HWND window, POINT *point);
ZBPLATFORM_API BOOL ScreenToClient(HWND window, POINT *point);
/// From one window's client area to another's; null is the screen. The shift in the two halves of the result.
ZBPLATFORM_API int MapWindowPoints(HWND from, HWND to, POINT *points, UINT count);
/// Grows a client rectangle to that of a window of these styles.
ZBPLATFORM_API BOOL AdjustWindowRectEx(RECT *rectangle, DWORD style, BOOL menu, DWORD exStyle);

struct WINDOWPOS
{
    HWND hwnd;
    HWND hwndInsertAfter;
    int x;
    int y;
    int cx;
    int cy;
    UINT flags;
};
inline constexpr UINT SWP_NOSIZE = 0x0001;
inline constexpr UINT SWP_NOMOVE = 0x0002;
inline constexpr UINT SWP_NOZORDER = 0x0004;
inline constexpr UINT SWP_NOREDRAW = 0x0008;
inline constexpr UINT SWP_NOACTIVATE = 0x0010;
inline constexpr UINT SWP_FRAMECHANGED = 0x0020;
inline constexpr UINT SWP_SHOWWINDOW = 0x0040;
inline constexpr UINT SWP_HIDEWINDOW = 0x0080;
inline HWND const HWND_TOP = nullptr;
inline HWND const HWND_BOTTOM = reinterpret_cast<HWND>(static_cast<LONG_PTR>(1));
inline HWND const HWND_TOPMOST = reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1));
inline HWND const HWND_NOTOPMOST = reinterpret_cast<HWND>(static_cast<LONG_PTR>(-2));
/// Changes place, order and visibility as one step, then sends WM_WINDOWPOSCHANGED, from which DefWindowProcW makes
/// WM_MOVE and WM_SIZE where those changed. A width or height below 0 counts as 0. A shown window of the screen becomes
/// the active one unless SWP_NOACTIVATE says no.
ZBPLATFORM_API BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
ZBPLATFORM_API BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);

struct HDWP__;
using HDWP = HDWP__ *;
/// Several changes that take effect together at EndDeferWindowPos. Null, and all of them dropped, when one names a
/// window that is gone.
ZBPLATFORM_API HDWP BeginDeferWindowPos(int count);
ZBPLATFORM_API HDWP DeferWindowPos(HDWP changes, HWND window, HWND after, int x, int y, int width, int height,
                                   UINT flags);
ZBPLATFORM_API BOOL EndDeferWindowPos(HDWP changes);

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOWNOACTIVATE = 4;
inline constexpr int SW_SHOW = 5;
inline constexpr int SW_SHOWNA = 8;
/// Whether it was shown before. WM_SHOWWINDOW comes first.
ZBPLATFORM_API BOOL ShowWindow(HWND window, int how);
/// Whether it and all that it lies in are shown.
ZBPLATFORM_API BOOL IsWindowVisible(HWND window);
/// Whether it was disabled before. WM_ENABLE when that changes; a window that is disabled loses the focus.
ZBPLATFORM_API BOOL EnableWindow(HWND window, BOOL enable);
ZBPLATFORM_API BOOL IsWindowEnabled(HWND window);

inline constexpr UINT GW_HWNDFIRST = 0;
inline constexpr UINT GW_HWNDLAST = 1;
inline constexpr UINT GW_HWNDNEXT = 2;
inline constexpr UINT GW_HWNDPREV = 3;
inline constexpr UINT GW_OWNER = 4;
inline constexpr UINT GW_CHILD = 5;
/// Siblings from the top of the order down: children in the order in which they were made, unless somebody changed it;
/// of windows of the screen the newest first.
ZBPLATFORM_API HWND GetWindow(HWND window, UINT which);
ZBPLATFORM_API HWND GetDlgItem(HWND parent, int id);
ZBPLATFORM_API int GetDlgCtrlID(HWND window);
ZBPLATFORM_API BOOL IsChild(HWND parent, HWND window);
/// The former parent. The window keeps its numbers, which now count from the new one; null puts it on the screen. Null
/// and last error 87 where the window would lie in itself, in one that goes, or deeper than 100 levels with what it
/// holds.
ZBPLATFORM_API HWND SetParent(HWND window, HWND parent);
ZBPLATFORM_API BOOL BringWindowToTop(HWND window);
/// The topmost shown window at a point of the screen, never a disabled child; null where there is only background.
ZBPLATFORM_API HWND WindowFromPoint(POINT point);
/// The topmost shown child of the parent there, the parent itself when there is none, null outside.
ZBPLATFORM_API HWND ChildWindowFromPoint(HWND parent, POINT point);

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
/// texts are empty. Goes where the device's options say: to their own function, else as a dialog of the calling thread
/// when somebody looks at the screen, else to standard error. In a dialog Escape is Cancel, or OK where that is all there
/// is; where neither is there it does nothing. Any thread.
ZBPLATFORM_API int MessageBoxW(HWND owner, const WCHAR *text, const WCHAR *caption, UINT flags);
/// Dispatches what other threads sent, then takes a posted message, a quit, or a due timer, in that order. first and
/// last bound the message numbers, both 0 means all; a window takes its own messages and its children's. A quit passes
/// every bound. GetMessageW gives 0 for WM_QUIT, else 1; -1 for a window that is gone or another thread's.
ZBPLATFORM_API BOOL PeekMessageW(MSG *message, HWND window, UINT first, UINT last, UINT remove);
ZBPLATFORM_API BOOL GetMessageW(MSG *message, HWND window, UINT first, UINT last);
ZBPLATFORM_API BOOL TranslateMessage(const MSG *message);
/// Calls the window's procedure, or the timer's when lParam of a WM_TIMER holds one and the timer still is set.
ZBPLATFORM_API LRESULT DispatchMessageW(const MSG *message);

// --- Painting ----------------------------------------------------------------------------------------------------

struct PAINTSTRUCT
{
    HDC hdc;
    BOOL fErase; ///< WM_ERASEBKGND was answered with 0
    RECT rcPaint;
};
/// Takes the update region out; the context draws on that region alone. Sends WM_NCPAINT and WM_ERASEBKGND where they
/// are due. Null on another thread than the window's.
ZBPLATFORM_API HDC BeginPaint(HWND window, PAINTSTRUCT *paint);
ZBPLATFORM_API BOOL EndPaint(HWND window, const PAINTSTRUCT *paint);
/// A null rectangle is the whole client area, a null window everything on the screen.
ZBPLATFORM_API BOOL InvalidateRect(HWND window, const RECT *rectangle, BOOL erase);
ZBPLATFORM_API BOOL ValidateRect(HWND window, const RECT *rectangle);
/// The box around what is invalid; false when nothing is.
ZBPLATFORM_API BOOL GetUpdateRect(HWND window, RECT *rectangle, BOOL erase);
/// Sends WM_PAINT now when something is invalid.
ZBPLATFORM_API BOOL UpdateWindow(HWND window);
/// A context for the whole window with its frame; ended by ReleaseDC.
ZBPLATFORM_API HDC GetWindowDC(HWND window);

// --- Scroll bars -------------------------------------------------------------------------------------------------

inline constexpr int SB_HORZ = 0;
inline constexpr int SB_VERT = 1;
inline constexpr int SB_CTL = 2; ///< the window is itself a scroll bar (controls.h)
inline constexpr int SB_BOTH = 3;
inline constexpr WORD SB_LINEUP = 0;
inline constexpr WORD SB_LINEDOWN = 1;
inline constexpr WORD SB_PAGEUP = 2;
inline constexpr WORD SB_PAGEDOWN = 3;
inline constexpr WORD SB_THUMBPOSITION = 4;
inline constexpr WORD SB_THUMBTRACK = 5;
inline constexpr WORD SB_TOP = 6;
inline constexpr WORD SB_BOTTOM = 7;
inline constexpr WORD SB_ENDSCROLL = 8;
inline constexpr UINT SIF_RANGE = 1;
inline constexpr UINT SIF_PAGE = 2;
inline constexpr UINT SIF_POS = 4;
inline constexpr UINT SIF_DISABLENOSCROLL = 8;
inline constexpr UINT SIF_TRACKPOS = 16;
inline constexpr UINT SIF_ALL = 23;
struct SCROLLINFO
{
    UINT cbSize;
    UINT fMask;
    int nMin;
    int nMax;
    UINT nPage;
    int nPos;
    int nTrackPos;
};
/// The position afterwards, held between nMin and nMax - page + 1. A bar with nothing to scroll is hidden, or disabled
/// with SIF_DISABLENOSCROLL; the client area changes with it.
ZBPLATFORM_API int SetScrollInfo(HWND window, int bar, const SCROLLINFO *info, BOOL redraw);
ZBPLATFORM_API BOOL GetScrollInfo(HWND window, int bar, SCROLLINFO *info);
ZBPLATFORM_API BOOL ShowScrollBar(HWND window, int bar, BOOL show);

// --- Focus, pen, keys --------------------------------------------------------------------------------------------

/// The former one, of the calling thread. WM_KILLFOCUS goes to that, WM_SETFOCUS to the new one (wParam the other). Null
/// takes it from all. Disabled and hidden windows refuse.
ZBPLATFORM_API HWND SetFocus(HWND window);
ZBPLATFORM_API HWND GetFocus();
ZBPLATFORM_API HWND SetCapture(HWND window);
/// WM_CAPTURECHANGED goes to the window that loses it, lParam the new one.
ZBPLATFORM_API BOOL ReleaseCapture();
ZBPLATFORM_API HWND GetCapture();
/// The shown window of the screen that has pen and keys, of any thread.
ZBPLATFORM_API HWND GetForegroundWindow();
ZBPLATFORM_API HWND GetActiveWindow();
ZBPLATFORM_API BOOL SetForegroundWindow(HWND window);

inline constexpr int VK_LBUTTON = 0x01;
inline constexpr int VK_BACK = 0x08;
inline constexpr int VK_TAB = 0x09;
inline constexpr int VK_RETURN = 0x0D;
inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_MENU = 0x12;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_SPACE = 0x20;
inline constexpr int VK_PRIOR = 0x21;
inline constexpr int VK_NEXT = 0x22;
inline constexpr int VK_END = 0x23;
inline constexpr int VK_HOME = 0x24;
inline constexpr int VK_LEFT = 0x25;
inline constexpr int VK_UP = 0x26;
inline constexpr int VK_RIGHT = 0x27;
inline constexpr int VK_DOWN = 0x28;
inline constexpr int VK_DELETE = 0x2E;
inline constexpr int VK_F1 = 0x70;
inline constexpr int VK_F2 = 0x71;
inline constexpr int VK_F4 = 0x73;
inline constexpr int VK_F10 = 0x79;
inline constexpr int VK_F23 = 0x86;
/// The high bit is set while the key is down, as of the calling thread: input that still waits for it has not happened.
ZBPLATFORM_API SHORT GetKeyState(int key);
/// Where the pen is, or was last, on the screen.
ZBPLATFORM_API BOOL GetCursorPos(POINT *point);
inline constexpr WPARAM MK_LBUTTON = 0x0001;
inline constexpr WPARAM MK_SHIFT = 0x0004;
inline constexpr WPARAM MK_CONTROL = 0x0008;

// --- Timers ------------------------------------------------------------------------------------------------------

using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);
/// A timer of the window (id chosen by the caller, an equal one is set anew) or, with a null window, of the thread (id
/// chosen here; that of one of its timers sets it anew). WM_TIMER comes when no other message waits, never twice at
/// once for one timer. 0 on failure. Fewer than 1 ms are taken as 1.
ZBPLATFORM_API UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
ZBPLATFORM_API BOOL KillTimer(HWND window, UINT_PTR id);
