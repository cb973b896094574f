// The tab control ("SysTabControl32"): a row of tabs at the edge of an area that shows what belongs to the chosen one.
//
// The control draws the area and the tabs; what lies in the area is its host's, who shows and hides it when told of a
// change by WM_NOTIFY. Tabs are as wide as their words and pictures; where they do not fit they first give up their
// room to spare, then two arrows scroll them. Keys: left and right, Home and End choose; a tap chooses, too.
//
// Tabs count from 0; -1 (or false) answers what can't be done. Messages are silent but for TCM_SETCURFOCUS.
#pragma once

#include "platform/image_list.h"
#include "platform/user.h"

inline constexpr const WCHAR *WC_TABCONTROLW = u"SysTabControl32";

inline constexpr DWORD TCS_BOTTOM = 0x0002U;            ///< the tabs stand below the area
inline constexpr DWORD TCS_FIXEDWIDTH = 0x0400U;        ///< all tabs as wide as TCM_SETITEMSIZE says, or as the widest
inline constexpr DWORD TCS_FOCUSONBUTTONDOWN = 0x1000U; ///< a tap on a tab brings the focus
inline constexpr DWORD TCS_FOCUSNEVER = 0x8000U;

inline constexpr UINT TCIF_TEXT = 0x0001;
inline constexpr UINT TCIF_IMAGE = 0x0002;
inline constexpr UINT TCIF_PARAM = 0x0008;
struct TCITEMW
{
    UINT mask; ///< which of the following are read or set
    DWORD dwState;
    DWORD dwStateMask;
    WCHAR *pszText;
    int cchTextMax; ///< of a text that is read: room with its zero
    int iImage;     ///< -1 for none
    LPARAM lParam;
};
struct TCHITTESTINFO
{
    POINT pt;
    UINT flags;
};
inline constexpr UINT TCHT_NOWHERE = 1;
inline constexpr UINT TCHT_ONITEMICON = 2;
inline constexpr UINT TCHT_ONITEMLABEL = 4;
inline constexpr UINT TCHT_ONITEM = 6;

inline constexpr UINT TCM_FIRST = 0x1300;
inline constexpr UINT TCM_GETIMAGELIST = TCM_FIRST + 2;
inline constexpr UINT TCM_SETIMAGELIST = TCM_FIRST + 3; ///< the former one; both stay the caller's
inline constexpr UINT TCM_GETITEMCOUNT = TCM_FIRST + 4;
/// A tab that is deleted leaves none chosen when it was; the host chooses another.
inline constexpr UINT TCM_DELETEITEM = TCM_FIRST + 8;
inline constexpr UINT TCM_DELETEALLITEMS = TCM_FIRST + 9;
inline constexpr UINT TCM_GETITEMRECT = TCM_FIRST + 10;
inline constexpr UINT TCM_GETCURSEL = TCM_FIRST + 11;
inline constexpr UINT TCM_SETCURSEL = TCM_FIRST + 12; ///< the former one
inline constexpr UINT TCM_HITTEST = TCM_FIRST + 13;   ///< lParam a TCHITTESTINFO; -1 beside all tabs
/// wParam true: grows an area to the control around it; false: from the control's rectangle to its area.
inline constexpr UINT TCM_ADJUSTRECT = TCM_FIRST + 40;
inline constexpr UINT TCM_SETITEMSIZE = TCM_FIRST + 41; ///< width and height in the halves of lParam; the former ones
inline constexpr UINT TCM_SETPADDING = TCM_FIRST + 43;  ///< pixels beside and above what a tab shows
inline constexpr UINT TCM_GETROWCOUNT = TCM_FIRST + 44; ///< 1, or 0 without tabs
inline constexpr UINT TCM_GETCURFOCUS = TCM_FIRST + 47;
inline constexpr UINT TCM_SETCURFOCUS = TCM_FIRST + 48; ///< as if the user chose it
inline constexpr UINT TCM_GETITEMW = TCM_FIRST + 60;
inline constexpr UINT TCM_SETITEMW = TCM_FIRST + 61;
inline constexpr UINT TCM_INSERTITEMW =
    TCM_FIRST + 62; ///< before tab wParam, behind the last one for more; the first is chosen

inline constexpr UINT TCN_KEYDOWN = static_cast<UINT>(-550); ///< lParam an NMTCKEYDOWN
inline constexpr UINT TCN_SELCHANGE = static_cast<UINT>(-551);
/// Before the change, still about the former tab; true keeps it.
inline constexpr UINT TCN_SELCHANGING = static_cast<UINT>(-552);
struct NMTCKEYDOWN
{
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};
