// Dialogs: windows made from templates, with controls, that answer keys as dialogs do.
//
// A dialog belongs to the thread that makes it. Its places are in dialog units: a quarter of the average character's
// width and an eighth of the height of its font. The template's bytes are read as dialog_template.h tells; those of a
// resource within their size, others must be well-formed.
#pragma once

#include "platform/user.h"

/// Nonzero: the message is dealt with; its result, where it matters, stands in DWL_MSGRESULT. To WM_INITDIALOG nonzero
/// means that the focus is to be set to the first control.
using DLGPROC = LONG_PTR (*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr DWORD DS_ABSALIGN = 0x0001U;
inline constexpr DWORD DS_SETFONT = 0x0040U;
inline constexpr DWORD DS_CENTER = 0x0800U;
/// Words of a dialog.
inline constexpr int DWL_MSGRESULT = 0;
inline constexpr int DWL_DLGPROC = static_cast<int>(sizeof(LONG_PTR));
inline constexpr int DWL_USER = static_cast<int>(2 * sizeof(LONG_PTR));

/// Makes the dialog and its controls, then sends WM_INITDIALOG (wParam the control that would get the focus, lParam the
/// parameter). Null when the template is not valid, a control can't be made (last error 1407 for a class that there is
/// not, or a dialog's own that is not driven by DefDlgProcW), or the dialog has ended itself meanwhile.
ZBPLATFORM_API HWND CreateDialogIndirectParamW(HINSTANCE instance, const void *bytes, HWND parent, DLGPROC procedure,
                                               LPARAM parameter);
/// The same, with the parent disabled, until EndDialog. The result that was given there; -1 when it can't be made.
ZBPLATFORM_API LONG_PTR DialogBoxIndirectParamW(HINSTANCE instance, const void *bytes, HWND parent, DLGPROC procedure,
                                                LPARAM parameter);
/// Ends a modal dialog as soon as its message is dealt with; hides any other.
ZBPLATFORM_API BOOL EndDialog(HWND dialog, LONG_PTR result);
/// Tab, arrows, Enter, Escape and mnemonics of a dialog; true when the message was one of those, or dispatched.
ZBPLATFORM_API BOOL IsDialogMessageW(HWND dialog, MSG *message);
/// From dialog units to pixels.
ZBPLATFORM_API BOOL MapDialogRect(HWND dialog, RECT *rectangle);
/// Of the system's font: average width in the low word, height in the high one.
ZBPLATFORM_API LONG GetDialogBaseUnits();
/// The next shown, enabled control with WS_TABSTOP, or before; around at the ends. Null: from the first.
ZBPLATFORM_API HWND GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous);
/// The next shown, enabled control of the same group, which begins at one with WS_GROUP.
ZBPLATFORM_API HWND GetNextDlgGroupItem(HWND dialog, HWND control, BOOL previous);

ZBPLATFORM_API LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
ZBPLATFORM_API BOOL SetDlgItemTextW(HWND dialog, int id, const WCHAR *text);
ZBPLATFORM_API UINT GetDlgItemTextW(HWND dialog, int id, WCHAR *buffer, int size);
ZBPLATFORM_API BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
/// 0, and *translated false, for text that is no number.
ZBPLATFORM_API UINT GetDlgItemInt(HWND dialog, int id, BOOL *translated, BOOL isSigned);
ZBPLATFORM_API BOOL CheckDlgButton(HWND dialog, int id, UINT state);
ZBPLATFORM_API UINT IsDlgButtonChecked(HWND dialog, int id);
/// Checks one of the buttons from first to last and takes the check off the others.
ZBPLATFORM_API BOOL CheckRadioButton(HWND dialog, int first, int last, int chosen);
ZBPLATFORM_API LRESULT DefDlgProcW(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT DM_GETDEFID = WM_USER;
inline constexpr UINT DM_SETDEFID = WM_USER + 1;
inline constexpr WORD DC_HASDEFID = 0x534B;
/// Answers to WM_GETDLGCODE: what a control wants for itself, and what it is.
inline constexpr LRESULT DLGC_WANTARROWS = 0x0001;
inline constexpr LRESULT DLGC_WANTTAB = 0x0002;
inline constexpr LRESULT DLGC_WANTALLKEYS = 0x0004;
inline constexpr LRESULT DLGC_HASSETSEL = 0x0008;
inline constexpr LRESULT DLGC_DEFPUSHBUTTON = 0x0010;
inline constexpr LRESULT DLGC_UNDEFPUSHBUTTON = 0x0020;
inline constexpr LRESULT DLGC_RADIOBUTTON = 0x0040;
inline constexpr LRESULT DLGC_WANTCHARS = 0x0080;
inline constexpr LRESULT DLGC_STATIC = 0x0100;
inline constexpr LRESULT DLGC_BUTTON = 0x2000;
