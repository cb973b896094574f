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

// --- Edit ("EDIT"): text on one line or many --------------------------------------------------------------------------

inline constexpr DWORD ES_LEFT = 0x0000U;
inline constexpr DWORD ES_CENTER = 0x0001U;
inline constexpr DWORD ES_RIGHT = 0x0002U;
inline constexpr DWORD ES_MULTILINE = 0x0004U;
inline constexpr DWORD ES_UPPERCASE = 0x0008U;
inline constexpr DWORD ES_LOWERCASE = 0x0010U;
inline constexpr DWORD ES_AUTOVSCROLL = 0x0040U; ///< changes nothing: what doesn't fit is always scrolled to
inline constexpr DWORD ES_AUTOHSCROLL = 0x0080U; ///< of many lines: words that don't fit are not wrapped
inline constexpr DWORD ES_NOHIDESEL = 0x0100U;
inline constexpr DWORD ES_READONLY = 0x0800U;
inline constexpr DWORD ES_WANTRETURN = 0x1000U; ///< in a dialog Enter begins a line
inline constexpr DWORD ES_NUMBER = 0x2000U;     ///< takes digits alone from keys

// Places count 16-bit characters from 0. A place inside of what a reader takes for one character (a pair, a letter with
// its accents, a carriage return with its line feed) becomes its start where the caret is concerned.

/// First and last place of the selection; each of wParam and lParam may point to a DWORD for one. The result has both in
/// its halves, -1 when they don't fit.
inline constexpr UINT EM_GETSEL = 0x00B0;
/// From wParam (which stays when the user widens the selection) to lParam; -1 as lParam is the end, as wParam no
/// selection. Nothing is scrolled.
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_GETRECT = 0x00B2; ///< lParam a RECT: where the text lies in the client area
inline constexpr UINT EM_SCROLL = 0x00B5;  ///< wParam SB_LINEUP to SB_PAGEDOWN; lines scrolled in the low word, bit 16
inline constexpr UINT EM_LINESCROLL = 0x00B6; ///< lParam lines, wParam characters of average width
inline constexpr UINT EM_SCROLLCARET = 0x00B7;
inline constexpr UINT EM_GETMODIFY = 0x00B8; ///< whether the user has changed it
inline constexpr UINT EM_SETMODIFY = 0x00B9;
inline constexpr UINT EM_GETLINECOUNT = 0x00BA;
inline constexpr UINT EM_LINEINDEX = 0x00BB; ///< first place of a line, -1 for that of the caret; -1 for none
/// Of the line that holds the place, without its line end; -1 for the caret's lines without what is selected of them.
inline constexpr UINT EM_LINELENGTH = 0x00C1;
/// Puts the text lParam in place of the selection. It can be taken back when wParam is not 0. Also while read-only; cut
/// at the limit.
inline constexpr UINT EM_REPLACESEL = 0x00C2;
/// Line wParam into lParam, whose first WORD tells its size; no zero is added when it fills all. Characters copied.
inline constexpr UINT EM_GETLINE = 0x00C4;
/// So many characters may be entered by the user; 0 as many as there can be. 30,000 at first. WM_SETTEXT may set more.
inline constexpr UINT EM_LIMITTEXT = 0x00C5;
inline constexpr UINT EM_CANUNDO = 0x00C6;
/// Takes the last step back, then the one before it; Ctrl+Y brings them again.
inline constexpr UINT EM_UNDO = 0x00C7;
inline constexpr UINT EM_LINEFROMCHAR = 0x00C9; ///< the line of a place, -1 for the selection's first
inline constexpr UINT EM_EMPTYUNDOBUFFER = 0x00CD;
inline constexpr UINT EM_GETFIRSTVISIBLELINE = 0x00CE; ///< with one line: the first visible character
inline constexpr UINT EM_SETREADONLY = 0x00CF;
inline constexpr UINT EM_SETMARGINS = 0x00D3; ///< wParam EC_LEFTMARGIN, EC_RIGHTMARGIN or both, lParam pixels in its halves
inline constexpr UINT EM_GETMARGINS = 0x00D4;
inline constexpr UINT EM_GETLIMITTEXT = 0x00D5;
inline constexpr UINT EM_POSFROMCHAR = 0x00D6; ///< x and y of the place in the halves; -1 behind the end of the text
inline constexpr UINT EM_CHARFROMPOS = 0x00D7; ///< lParam x and y; the place in the low word, its line in the high one
inline constexpr WPARAM EC_LEFTMARGIN = 1;
inline constexpr WPARAM EC_RIGHTMARGIN = 2;
inline constexpr UINT WM_CUT = 0x0300;
inline constexpr UINT WM_COPY = 0x0301;
inline constexpr UINT WM_PASTE = 0x0302;
inline constexpr UINT WM_CLEAR = 0x0303;
inline constexpr UINT WM_UNDO = 0x0304;
inline constexpr WORD EN_SETFOCUS = 0x0100;
inline constexpr WORD EN_KILLFOCUS = 0x0200;
/// The text has changed, after EN_UPDATE, which comes before it shows. Not for WM_SETTEXT with many lines.
inline constexpr WORD EN_CHANGE = 0x0300;
inline constexpr WORD EN_UPDATE = 0x0400;
inline constexpr WORD EN_MAXTEXT = 0x0501; ///< not all that was entered had room below the limit
inline constexpr WORD EN_HSCROLL = 0x0601;
inline constexpr WORD EN_VSCROLL = 0x0602;

// --- List box ("LISTBOX"): rows of text to choose from ------------------------------------------------------------------

inline constexpr DWORD LBS_NOTIFY = 0x0001U; ///< tells its parent anything at all
inline constexpr DWORD LBS_SORT = 0x0002U;   ///< LB_ADDSTRING puts rows in the order of the locale, letter case aside
inline constexpr DWORD LBS_MULTIPLESEL = 0x0008U; ///< each tap chooses or gives up a row
inline constexpr DWORD LBS_HASSTRINGS = 0x0040U;
inline constexpr DWORD LBS_NOINTEGRALHEIGHT = 0x0100U; ///< changes nothing: the list keeps the size that it is given
inline constexpr DWORD LBS_EXTENDEDSEL = 0x0800U;      ///< a tap chooses one row, Shift up to one, Ctrl one more
inline constexpr DWORD LBS_DISABLENOSCROLL = 0x1000U;

// Rows count from 0; -1 (LB_ERR) answers what can't be done. Messages are silent: only keys and pen are told.
inline constexpr LRESULT LB_ERR = -1;
inline constexpr UINT LB_ADDSTRING = 0x0180;    ///< lParam the text; the row's number
inline constexpr UINT LB_INSERTSTRING = 0x0181; ///< before row wParam, -1 at the end, never sorted
inline constexpr UINT LB_DELETESTRING = 0x0182; ///< how many are left
inline constexpr UINT LB_SELITEMRANGEEX = 0x0183; ///< from row wParam to lParam; the other way round it gives them up
inline constexpr UINT LB_RESETCONTENT = 0x0184;
inline constexpr UINT LB_SETSEL = 0x0185;    ///< of many choices: wParam whether, lParam the row, -1 all
inline constexpr UINT LB_SETCURSEL = 0x0186; ///< of one choice: the row, shown; -1 none, which answers -1
inline constexpr UINT LB_GETSEL = 0x0187;
inline constexpr UINT LB_GETCURSEL = 0x0188; ///< the chosen row; of many choices the one with the frame
inline constexpr UINT LB_GETTEXT = 0x0189;   ///< into lParam, which has room for LB_GETTEXTLEN and a zero
inline constexpr UINT LB_GETTEXTLEN = 0x018A;
inline constexpr UINT LB_GETCOUNT = 0x018B;
inline constexpr UINT LB_SELECTSTRING = 0x018C; ///< as LB_FINDSTRING, and chooses the row
inline constexpr UINT LB_GETTOPINDEX = 0x018E;
/// The next row behind wParam, around at the end (-1 from the first), that begins with the text; letter case aside.
inline constexpr UINT LB_FINDSTRING = 0x018F;
inline constexpr UINT LB_GETSELCOUNT = 0x0190;
inline constexpr UINT LB_GETSELITEMS = 0x0191; ///< up to wParam row numbers (int) into lParam; how many
inline constexpr UINT LB_SETTOPINDEX = 0x0197;
inline constexpr UINT LB_GETITEMRECT = 0x0198;
inline constexpr UINT LB_GETITEMDATA = 0x0199; ///< pointer-wide, 0 at first
inline constexpr UINT LB_SETITEMDATA = 0x019A;
inline constexpr UINT LB_SELITEMRANGE = 0x019B; ///< wParam whether, first and last row in the halves of lParam
inline constexpr UINT LB_SETANCHORINDEX = 0x019C;
inline constexpr UINT LB_GETANCHORINDEX = 0x019D;
inline constexpr UINT LB_SETCARETINDEX = 0x019E;
inline constexpr UINT LB_GETCARETINDEX = 0x019F;
inline constexpr UINT LB_SETITEMHEIGHT = 0x01A0; ///< of all rows, lParam 1 to 255 pixels
inline constexpr UINT LB_GETITEMHEIGHT = 0x01A1;
inline constexpr UINT LB_FINDSTRINGEXACT = 0x01A2; ///< as LB_FINDSTRING, by the whole text
inline constexpr UINT LB_INITSTORAGE = 0x01A8;
inline constexpr UINT LB_ITEMFROMPOINT = 0x01A9; ///< the nearest row in the low word, 1 in the high one outside
inline constexpr WORD LBN_SELCHANGE = 1;
inline constexpr WORD LBN_DBLCLK = 2;
inline constexpr WORD LBN_SETFOCUS = 4;
inline constexpr WORD LBN_KILLFOCUS = 5;

// --- Combo box ("COMBOBOX"): one row of a list that drops down, or a text that may be one of them -------------------------

inline constexpr DWORD CBS_SIMPLE = 0x0001U;       ///< an edit with its list below it, always shown
inline constexpr DWORD CBS_DROPDOWN = 0x0002U;     ///< an edit with a list that drops down
inline constexpr DWORD CBS_DROPDOWNLIST = 0x0003U; ///< the chosen row in place of the edit
inline constexpr DWORD CBS_TYPEMASK = 0x0003U;
inline constexpr DWORD CBS_AUTOHSCROLL = 0x0040U; ///< changes nothing: a text that doesn't fit is always scrolled
inline constexpr DWORD CBS_SORT = 0x0100U;        ///< as LBS_SORT
inline constexpr DWORD CBS_HASSTRINGS = 0x0200U;
inline constexpr DWORD CBS_NOINTEGRALHEIGHT = 0x0400U; ///< the list is as high as was asked for, not cut to whole rows
inline constexpr DWORD CBS_DISABLENOSCROLL = 0x0800U;
inline constexpr DWORD CBS_UPPERCASE = 0x2000U;
inline constexpr DWORD CBS_LOWERCASE = 0x4000U;

// The height that a combo box with a list that drops down is given counts for both: its own is that of its field, the
// rest is what the list may take (at least three rows of it, up to the edge of the screen; it opens upwards where there
// is more room). Rows count from 0; -1 (CB_ERR) answers what can't be done. Messages are silent but for
// CB_SHOWDROPDOWN; WM_SETTEXT fails where there is no edit.
//
// Keys: up and down, page and end keys go from row to row; F4 or Alt with up or down opens and closes, and so does
// Space where there is no edit. With the extended interface Down opens instead, and F4 does nothing. In the open list
// Enter chooses, Escape brings back what was there before, letters go to rows; leaving by Tab keeps the row that keys
// have come to. A tap beside the open list closes it and does nothing else.
inline constexpr LRESULT CB_ERR = -1;
inline constexpr LRESULT CB_OKAY = 0;
inline constexpr UINT CB_GETEDITSEL = 0x0140; ///< as EM_GETSEL
inline constexpr UINT CB_LIMITTEXT = 0x0141;  ///< as EM_LIMITTEXT
inline constexpr UINT CB_SETEDITSEL = 0x0142; ///< first and last place in the halves of lParam; -1 as in EM_SETSEL
inline constexpr UINT CB_ADDSTRING = 0x0143;
inline constexpr UINT CB_DELETESTRING = 0x0144;
inline constexpr UINT CB_GETCOUNT = 0x0146;
inline constexpr UINT CB_GETCURSEL = 0x0147; ///< -1, too, when the text was typed and is none of the rows
inline constexpr UINT CB_GETLBTEXT = 0x0148;
inline constexpr UINT CB_GETLBTEXTLEN = 0x0149;
inline constexpr UINT CB_INSERTSTRING = 0x014A;
inline constexpr UINT CB_RESETCONTENT = 0x014B; ///< empties the edit, too
inline constexpr UINT CB_FINDSTRING = 0x014C;
inline constexpr UINT CB_SELECTSTRING = 0x014D;
inline constexpr UINT CB_SETCURSEL = 0x014E; ///< -1 empties the edit
inline constexpr UINT CB_SHOWDROPDOWN = 0x014F; ///< wParam whether
inline constexpr UINT CB_GETITEMDATA = 0x0150;
inline constexpr UINT CB_SETITEMDATA = 0x0151;
inline constexpr UINT CB_GETDROPPEDCONTROLRECT = 0x0152; ///< lParam a RECT: field and open list together, on the screen
inline constexpr UINT CB_SETITEMHEIGHT = 0x0153; ///< of the field's inside (wParam -1) or of all rows (0); 1 to 255 pixels
inline constexpr UINT CB_GETITEMHEIGHT = 0x0154;
inline constexpr UINT CB_SETEXTENDEDUI = 0x0155;
inline constexpr UINT CB_GETEXTENDEDUI = 0x0156;
inline constexpr UINT CB_GETDROPPEDSTATE = 0x0157;
inline constexpr UINT CB_FINDSTRINGEXACT = 0x0158;
inline constexpr UINT CB_GETTOPINDEX = 0x015B;
inline constexpr UINT CB_SETTOPINDEX = 0x015C;
inline constexpr UINT CB_GETDROPPEDWIDTH = 0x015F; ///< of the list; never less than that of the field
inline constexpr UINT CB_SETDROPPEDWIDTH = 0x0160;
inline constexpr UINT CB_INITSTORAGE = 0x0161;
inline constexpr WORD CBN_SELCHANGE = 1; ///< by keys or pen: of an open list always when a row was chosen, even the same
inline constexpr WORD CBN_DBLCLK = 2;    ///< CBS_SIMPLE alone
inline constexpr WORD CBN_SETFOCUS = 3;
inline constexpr WORD CBN_KILLFOCUS = 4;
inline constexpr WORD CBN_EDITCHANGE = 5; ///< the user has changed the text, after CBN_EDITUPDATE, which comes before it shows
inline constexpr WORD CBN_EDITUPDATE = 6;
inline constexpr WORD CBN_DROPDOWN = 7; ///< about to open: the time to fill it
inline constexpr WORD CBN_CLOSEUP = 8;
/// A row of the open list was chosen (then CBN_CLOSEUP and CBN_SELCHANGE follow), or it was left.
inline constexpr WORD CBN_SELENDOK = 9;
inline constexpr WORD CBN_SELENDCANCEL = 10;

// --- Scroll bar ("SCROLLBAR") ---------------------------------------------------------------------------------------

inline constexpr DWORD SBS_HORZ = 0x0000U;
inline constexpr DWORD SBS_VERT = 0x0001U;

// It tells its parent by WM_HSCROLL or WM_VSCROLL (lParam its handle) what is wanted: taps on arrows and track, which
// repeat while the pen is held, the thumb being drawn (SB_THUMBTRACK, then SB_THUMBPOSITION), keys; each time
// SB_ENDSCROLL comes last. The position changes only when the parent sets it, by SetScrollInfo with SB_CTL or these.
// One with nothing to scroll stays and looks disabled.
inline constexpr UINT SBM_SETPOS = 0x00E0; ///< wParam the position, lParam whether to draw; the former one
inline constexpr UINT SBM_GETPOS = 0x00E1;
inline constexpr UINT SBM_SETRANGE = 0x00E2; ///< wParam lowest, lParam highest; the former position
inline constexpr UINT SBM_GETRANGE = 0x00E3; ///< wParam and lParam each point to an int
inline constexpr UINT SBM_ENABLE_ARROWS = 0x00E4; ///< wParam ESB_...: an arrow that is off does nothing
inline constexpr UINT SBM_SETRANGEREDRAW = 0x00E6;
inline constexpr UINT SBM_SETSCROLLINFO = 0x00E9; ///< wParam whether to draw, lParam a SCROLLINFO; the position afterwards
inline constexpr UINT SBM_GETSCROLLINFO = 0x00EA;
inline constexpr WPARAM ESB_ENABLE_BOTH = 0;
inline constexpr WPARAM ESB_DISABLE_LTUP = 1;
inline constexpr WPARAM ESB_DISABLE_RTDN = 2;
inline constexpr WPARAM ESB_DISABLE_BOTH = 3;
