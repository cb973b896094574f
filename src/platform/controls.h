// The standard controls: their classes, styles, messages and notifications.
//
// A control is a child window of one of these classes; it tells its parent what happens to it by WM_COMMAND (low word
// its id, high word the code, lParam its handle) or WM_NOTIFY. All follow WM_SETFONT, WM_ENABLE and the focus, and can be
// used with pen or keys alone. Before a control draws itself it asks its parent by WM_CTLCOLOR... (wParam the context,
// lParam the control) for its colours and the brush of its background; 0 leaves the system's.
#pragma once

#include "platform/user.h"

// --- Static ("STATIC"): a text or a picture ------------------------------------------------------------------------

inline constexpr DWORD SS_LEFT = 0x0000U;
inline constexpr DWORD SS_CENTER = 0x0001U;
inline constexpr DWORD SS_RIGHT = 0x0002U;
inline constexpr DWORD SS_ICON = 0x0003U;
inline constexpr DWORD SS_LEFTNOWORDWRAP = 0x000CU;
inline constexpr DWORD SS_BITMAP = 0x000EU;
inline constexpr DWORD SS_TYPEMASK = 0x001FU;
inline constexpr DWORD SS_NOPREFIX = 0x0080U;
inline constexpr DWORD SS_NOTIFY = 0x0100U;
inline constexpr DWORD SS_CENTERIMAGE = 0x0200U;
/// Shows another picture and gives back the former, which is the caller's from then on. wParam is the kind
/// (IMAGE_BITMAP or IMAGE_ICON of image_list.h); the picture stays the caller's unless STM_OWNED is added. A title
/// "#number" names a picture of the resources, which is the control's.
inline constexpr UINT STM_SETIMAGE = 0x0172;
/// Hands the picture over: the control deletes it when it goes itself.
inline constexpr WPARAM STM_OWNED = 0x0100;
inline constexpr UINT STM_GETIMAGE = 0x0173;
inline constexpr WORD STN_CLICKED = 0;

// --- Button ("BUTTON") ---------------------------------------------------------------------------------------------

inline constexpr DWORD BS_PUSHBUTTON = 0x0000U;
inline constexpr DWORD BS_DEFPUSHBUTTON = 0x0001U;
inline constexpr DWORD BS_CHECKBOX = 0x0002U;
inline constexpr DWORD BS_AUTOCHECKBOX = 0x0003U;
inline constexpr DWORD BS_RADIOBUTTON = 0x0004U;
inline constexpr DWORD BS_3STATE = 0x0005U;
inline constexpr DWORD BS_AUTO3STATE = 0x0006U;
inline constexpr DWORD BS_GROUPBOX = 0x0007U;
inline constexpr DWORD BS_AUTORADIOBUTTON = 0x0009U;
inline constexpr DWORD BS_OWNERDRAW = 0x000BU;
inline constexpr DWORD BS_TYPEMASK = 0x000FU;
inline constexpr DWORD BS_MULTILINE = 0x2000U;
inline constexpr DWORD BS_NOTIFY = 0x4000U; ///< tells of the focus, too
inline constexpr UINT BM_GETCHECK = 0x00F0; ///< 0 not, 1 checked, 2 in between
inline constexpr UINT BM_SETCHECK = 0x00F1;
inline constexpr UINT BM_GETSTATE = 0x00F2; ///< the check, 4 while pressed, 8 with the focus
inline constexpr UINT BM_SETSTATE = 0x00F3; ///< pressed or not
inline constexpr UINT BM_SETSTYLE = 0x00F4;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr UINT BST_CHECKED = 1;
inline constexpr UINT BST_INDETERMINATE = 2;
inline constexpr UINT BST_PUSHED = 4;
inline constexpr UINT BST_FOCUS = 8;
inline constexpr WORD BN_CLICKED = 0;
inline constexpr WORD BN_SETFOCUS = 6;
inline constexpr WORD BN_KILLFOCUS = 7;

/// What the parent draws, with WM_DRAWITEM (wParam the id): a button with BS_OWNERDRAW.
struct DRAWITEMSTRUCT
{
    UINT CtlType; ///< 4 for a button
    UINT CtlID;
    UINT itemID;
    UINT itemAction; ///< 1 all of it, 2 the pressing changed, 4 the focus changed
    UINT itemState;  ///< 1 pressed, 4 disabled, 16 with the focus
    HWND hwndItem;
    HDC hDC;
    RECT rcItem;
    ULONG itemData;
};
inline constexpr UINT ODT_BUTTON = 4;
inline constexpr UINT ODA_DRAWENTIRE = 1;
inline constexpr UINT ODA_SELECT = 2;
inline constexpr UINT ODA_FOCUS = 4;
inline constexpr UINT ODS_SELECTED = 0x0001;
inline constexpr UINT ODS_DISABLED = 0x0004;
inline constexpr UINT ODS_FOCUS = 0x0010;
