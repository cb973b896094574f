// The list view ("SysListView32"): rows with a picture, a check box and texts in columns.
//
// All views show rows; LVS_REPORT adds columns and, unless LVS_NOCOLUMNHEADER, a header above them whose parts are tapped
// (LVN_COLUMNCLICK) and whose edges are drawn to another width (a double tap on one fits it to its texts). Without a
// column a row has its first text alone, over the whole width. The parent hears what happens by WM_NOTIFY; records of
// the notifications are the control's, texts in them only valid until the parent answers. A parent may destroy the
// control in any of them.
//
// Items and columns count from 0; -1 or false answers what can't be done. Texts are copied and as long as they want to
// be. A host's image lists stay the host's. Insert at the ends takes no longer for many rows than for few.
//
// Pen: a tap chooses (one beside the rows gives up), one on the check box turns it; a second one within half a second
// activates; a tap on the label of a row that was chosen already edits it (LVS_EDITLABELS); a pen that is drawn away over
// the rows begins a drag (LVN_BEGINDRAG) or, when the parent does not take the pen, draws the choice along. Keys: arrows,
// Page Up and Down, Home, End, with Shift from the anchor, with Ctrl without choosing; Blank turns the check box, or
// chooses; Ctrl+A all; Enter activates; F2 edits; letters find.
#pragma once

#include "platform/image_list.h"
#include "platform/notifications.h"

inline constexpr const WCHAR *WC_LISTVIEWW = u"SysListView32";

// --- Styles -----------------------------------------------------------------------------------------------------------

inline constexpr DWORD LVS_ICON = 0x0000U;
inline constexpr DWORD LVS_REPORT = 0x0001U;
inline constexpr DWORD LVS_SMALLICON = 0x0002U;
inline constexpr DWORD LVS_LIST = 0x0003U;
inline constexpr DWORD LVS_TYPEMASK = 0x0003U;
inline constexpr DWORD LVS_SINGLESEL = 0x0004U;
inline constexpr DWORD LVS_SHOWSELALWAYS = 0x0008U; ///< what is chosen shows without the focus, too
inline constexpr DWORD LVS_SORTASCENDING = 0x0010U; ///< new rows stand in the order of their texts
inline constexpr DWORD LVS_SORTDESCENDING = 0x0020U;
inline constexpr DWORD LVS_SHAREIMAGELISTS = 0x0040U; ///< changes nothing: image lists are never destroyed by the control
inline constexpr DWORD LVS_EDITLABELS = 0x0200U;
inline constexpr DWORD LVS_NOSCROLL = 0x2000U; ///< no scroll bars; keys and messages scroll
inline constexpr DWORD LVS_NOCOLUMNHEADER = 0x4000U;
inline constexpr DWORD LVS_NOSORTHEADER = 0x8000U; ///< parts of the header can't be tapped
inline constexpr DWORD LVS_EX_GRIDLINES = 0x0001U;
inline constexpr DWORD LVS_EX_SUBITEMIMAGES = 0x0002U;
/// Each row has a check box: state image 1 clear, 2 set. All rows get a clear one with the style and lose it without.
inline constexpr DWORD LVS_EX_CHECKBOXES = 0x0004U;
inline constexpr DWORD LVS_EX_FULLROWSELECT = 0x0020U;
inline constexpr DWORD LVS_EX_ONECLICKACTIVATE = 0x0040U;

// --- Items ------------------------------------------------------------------------------------------------------------

inline constexpr UINT LVIF_TEXT = 0x0001;
inline constexpr UINT LVIF_IMAGE = 0x0002;
inline constexpr UINT LVIF_PARAM = 0x0004;
inline constexpr UINT LVIF_STATE = 0x0008;
inline constexpr UINT LVIF_INDENT = 0x0010;
inline constexpr UINT LVIF_NORECOMPUTE = 0x0800; ///< of LVM_GETITEMW: callback texts are not asked for
inline constexpr UINT LVIF_DI_SETITEM = 0x1000;  ///< answer to LVN_GETDISPINFOW: keep what was given
inline constexpr UINT LVIS_FOCUSED = 0x0001;     ///< where keys go on from; one row at most
inline constexpr UINT LVIS_SELECTED = 0x0002;
inline constexpr UINT LVIS_CUT = 0x0004;         ///< shown greyed
inline constexpr UINT LVIS_DROPHILITED = 0x0008; ///< shown as chosen while something is drawn over it
inline constexpr UINT LVIS_OVERLAYMASK = 0x0F00;
inline constexpr UINT LVIS_STATEIMAGEMASK = 0xF000;
constexpr UINT INDEXTOSTATEIMAGEMASK(UINT index)
{
    return index << 12U;
}

struct LVITEMW
{
    UINT mask; ///< which of the following are read or set
    int iItem;
    int iSubItem; ///< the column; 0 is the item itself
    UINT state;
    UINT stateMask; ///< bits of state that count
    WCHAR *pszText;
    int cchTextMax; ///< of a text that is read: room with its zero
    int iImage;
    LPARAM lParam;
    int iIndent; ///< widths of a picture
};

struct LVFINDINFOW
{
    UINT flags;
    const WCHAR *psz;
    LPARAM lParam;
    POINT pt;
    UINT vkDirection;
};
inline constexpr UINT LVFI_PARAM = 0x0001; ///< by lParam alone
inline constexpr UINT LVFI_STRING = 0x0002;
inline constexpr UINT LVFI_PARTIAL = 0x0008; ///< by the beginning; letter case aside, like whole texts
inline constexpr UINT LVFI_WRAP = 0x0020;    ///< around at the end

inline constexpr UINT LVNI_ALL = 0x0000;
inline constexpr UINT LVNI_FOCUSED = 0x0001;
inline constexpr UINT LVNI_SELECTED = 0x0002;
inline constexpr UINT LVNI_CUT = 0x0004;
inline constexpr UINT LVNI_DROPHILITED = 0x0008;
inline constexpr UINT LVNI_ABOVE = 0x0100; ///< upwards
inline constexpr UINT LVNI_BELOW = 0x0200;

inline constexpr int LVIR_BOUNDS = 0;
inline constexpr int LVIR_ICON = 1;
inline constexpr int LVIR_LABEL = 2;
inline constexpr int LVIR_SELECTBOUNDS = 3;

inline constexpr UINT LVHT_NOWHERE = 0x0001;
inline constexpr UINT LVHT_ONITEMICON = 0x0002;
inline constexpr UINT LVHT_ONITEMLABEL = 0x0004;
inline constexpr UINT LVHT_ONITEMSTATEICON = 0x0008;
inline constexpr UINT LVHT_ONITEM = 0x000E;
inline constexpr UINT LVHT_ABOVE = 0x0008;
inline constexpr UINT LVHT_BELOW = 0x0010;
inline constexpr UINT LVHT_TORIGHT = 0x0020;
inline constexpr UINT LVHT_TOLEFT = 0x0040;
struct LVHITTESTINFO
{
    POINT pt; ///< client coordinates
    UINT flags;
    int iItem;
    int iSubItem; ///< set by LVM_SUBITEMHITTEST
};

// --- Columns ----------------------------------------------------------------------------------------------------------

inline constexpr UINT LVCF_FMT = 0x0001;
inline constexpr UINT LVCF_WIDTH = 0x0002;
inline constexpr UINT LVCF_TEXT = 0x0004;
inline constexpr UINT LVCF_SUBITEM = 0x0008;
inline constexpr int LVCFMT_LEFT = 0;
inline constexpr int LVCFMT_RIGHT = 1;
inline constexpr int LVCFMT_CENTER = 2;
inline constexpr int LVCFMT_JUSTIFYMASK = 3;
struct LVCOLUMNW
{
    UINT mask;
    int fmt;
    int cx; ///< pixels
    WCHAR *pszText;
    int cchTextMax;
    int iSubItem;
    int iImage;
    int iOrder;
};
inline constexpr int LVSCW_AUTOSIZE = -1;           ///< as wide as the widest text
inline constexpr int LVSCW_AUTOSIZE_USEHEADER = -2; ///< and as its title; the last column takes what is left

/// Of the header (LVM_GETHEADER), which belongs to the list view: only its marks and measures.
inline constexpr UINT HDM_GETITEMCOUNT = 0x1200;
inline constexpr UINT HDM_GETITEMRECT = 0x1207;
inline constexpr UINT HDM_GETITEMW = 0x120B;
inline constexpr UINT HDM_SETITEMW = 0x120C;
inline constexpr UINT HDI_WIDTH = 0x0001;
inline constexpr UINT HDI_FORMAT = 0x0004;
inline constexpr int HDF_SORTDOWN = 0x0200; ///< an arrow that tells the order of the rows
inline constexpr int HDF_SORTUP = 0x0400;
struct HDITEMW
{
    UINT mask;
    int cxy;
    WCHAR *pszText;
    HBITMAP hbm;
    int cchTextMax;
    int fmt;
    LPARAM lParam;
};

// --- Messages ---------------------------------------------------------------------------------------------------------

inline constexpr UINT LVM_FIRST = 0x1000;
inline constexpr UINT LVM_GETBKCOLOR = LVM_FIRST + 0;
inline constexpr UINT LVM_SETBKCOLOR = LVM_FIRST + 1; ///< lParam; CLR_NONE the system's
inline constexpr UINT LVM_GETIMAGELIST = LVM_FIRST + 2;
inline constexpr UINT LVM_SETIMAGELIST = LVM_FIRST + 3; ///< wParam LVSIL_..., lParam the list; the former one
inline constexpr WPARAM LVSIL_NORMAL = 0;
inline constexpr WPARAM LVSIL_SMALL = 1; ///< of the rows; LVSIL_NORMAL serves where there is none
inline constexpr WPARAM LVSIL_STATE = 2; ///< state image n is its picture n - 1, in place of check boxes
inline constexpr UINT LVM_GETITEMCOUNT = LVM_FIRST + 4;
inline constexpr UINT LVM_DELETEITEM = LVM_FIRST + 8;
inline constexpr UINT LVM_DELETEALLITEMS = LVM_FIRST + 9;
/// From item wParam (-1: from before the first) to the next that has all the states of lParam.
inline constexpr UINT LVM_GETNEXTITEM = LVM_FIRST + 12;
inline constexpr UINT LVM_GETITEMRECT = LVM_FIRST + 14; ///< lParam a RECT whose left side says which (LVIR_...)
inline constexpr UINT LVM_GETITEMPOSITION = LVM_FIRST + 16;
inline constexpr UINT LVM_HITTEST = LVM_FIRST + 18;
inline constexpr UINT LVM_ENSUREVISIBLE = LVM_FIRST + 19; ///< lParam true: a part is enough
inline constexpr UINT LVM_SCROLL = LVM_FIRST + 20;        ///< by pixels; rows are scrolled whole
inline constexpr UINT LVM_REDRAWITEMS = LVM_FIRST + 21;
inline constexpr UINT LVM_GETEDITCONTROL = LVM_FIRST + 24;
inline constexpr UINT LVM_DELETECOLUMN = LVM_FIRST + 28;
inline constexpr UINT LVM_GETCOLUMNWIDTH = LVM_FIRST + 29;
inline constexpr UINT LVM_SETCOLUMNWIDTH = LVM_FIRST + 30;
inline constexpr UINT LVM_GETHEADER = LVM_FIRST + 31;
/// An image list with the picture of what the row looks like, for ImageList_BeginDrag; the caller's.
inline constexpr UINT LVM_CREATEDRAGIMAGE = LVM_FIRST + 33;
inline constexpr UINT LVM_GETVIEWRECT = LVM_FIRST + 34;
inline constexpr UINT LVM_GETTEXTCOLOR = LVM_FIRST + 35;
inline constexpr UINT LVM_SETTEXTCOLOR = LVM_FIRST + 36;
inline constexpr UINT LVM_GETTEXTBKCOLOR = LVM_FIRST + 37;
inline constexpr UINT LVM_SETTEXTBKCOLOR = LVM_FIRST + 38;
inline constexpr UINT LVM_GETTOPINDEX = LVM_FIRST + 39;
inline constexpr UINT LVM_GETCOUNTPERPAGE = LVM_FIRST + 40;
inline constexpr UINT LVM_GETORIGIN = LVM_FIRST + 41;
inline constexpr UINT LVM_UPDATE = LVM_FIRST + 42;
inline constexpr UINT LVM_SETITEMSTATE = LVM_FIRST + 43; ///< wParam -1: of all items
inline constexpr UINT LVM_GETITEMSTATE = LVM_FIRST + 44;
inline constexpr UINT LVM_SETITEMCOUNT = LVM_FIRST + 47; ///< makes room
/// By a function of two lParams of items (below, at or above 0) and wParam. Equals keep their order. The function may
/// ask the control for anything; what would add or delete rows is refused meanwhile.
inline constexpr UINT LVM_SORTITEMS = LVM_FIRST + 48;
inline constexpr UINT LVM_GETSELECTEDCOUNT = LVM_FIRST + 50;
/// wParam the bits that count (0: all), lParam their values; the former styles.
inline constexpr UINT LVM_SETEXTENDEDLISTVIEWSTYLE = LVM_FIRST + 54;
inline constexpr UINT LVM_GETEXTENDEDLISTVIEWSTYLE = LVM_FIRST + 55;
inline constexpr UINT LVM_GETSUBITEMRECT = LVM_FIRST + 56; ///< lParam a RECT: left LVIR_..., top the column
inline constexpr UINT LVM_SUBITEMHITTEST = LVM_FIRST + 57;
inline constexpr UINT LVM_GETSELECTIONMARK = LVM_FIRST + 66; ///< where a range begins
inline constexpr UINT LVM_SETSELECTIONMARK = LVM_FIRST + 67;
inline constexpr UINT LVM_GETITEMW = LVM_FIRST + 75;
inline constexpr UINT LVM_SETITEMW = LVM_FIRST + 76;
inline constexpr UINT LVM_INSERTITEMW = LVM_FIRST + 77;
inline constexpr UINT LVM_SORTITEMSEX = LVM_FIRST + 81; ///< as LVM_SORTITEMS, by item numbers from before the sort
inline constexpr UINT LVM_FINDITEMW = LVM_FIRST + 83;   ///< behind item wParam, -1 from the first
inline constexpr UINT LVM_GETSTRINGWIDTHW = LVM_FIRST + 87;
inline constexpr UINT LVM_GETCOLUMNW = LVM_FIRST + 95;
inline constexpr UINT LVM_SETCOLUMNW = LVM_FIRST + 96;
inline constexpr UINT LVM_INSERTCOLUMNW = LVM_FIRST + 97;
inline constexpr UINT LVM_GETITEMTEXTW = LVM_FIRST + 115; ///< lParam an LVITEMW; characters copied
inline constexpr UINT LVM_SETITEMTEXTW = LVM_FIRST + 116;
inline constexpr UINT LVM_GETISEARCHSTRINGW = LVM_FIRST + 117; ///< what was typed a moment ago
inline constexpr UINT LVM_EDITLABELW = LVM_FIRST + 118;        ///< -1 ends it; the edit
using PFNLVCOMPARE = int (*)(LPARAM, LPARAM, LPARAM);

// --- Notifications ----------------------------------------------------------------------------------------------------

/// Before states or what an item shows change; true keeps them.
inline constexpr UINT LVN_ITEMCHANGING = static_cast<UINT>(-100);
inline constexpr UINT LVN_ITEMCHANGED = static_cast<UINT>(-101);
inline constexpr UINT LVN_INSERTITEM = static_cast<UINT>(-102);
inline constexpr UINT LVN_DELETEITEM = static_cast<UINT>(-103);
inline constexpr UINT LVN_DELETEALLITEMS = static_cast<UINT>(-104); ///< true: no LVN_DELETEITEM for each
inline constexpr UINT LVN_COLUMNCLICK = static_cast<UINT>(-108);    ///< iSubItem the column, iItem -1
inline constexpr UINT LVN_BEGINDRAG = static_cast<UINT>(-109);
inline constexpr UINT LVN_ITEMACTIVATE = static_cast<UINT>(-114);
inline constexpr UINT LVN_KEYDOWN = static_cast<UINT>(-155);
inline constexpr UINT LVN_BEGINLABELEDITW = static_cast<UINT>(-175); ///< true forbids it
/// pszText is null when it was given up; true takes the text over.
inline constexpr UINT LVN_ENDLABELEDITW = static_cast<UINT>(-176);
inline constexpr UINT LVN_GETDISPINFOW = static_cast<UINT>(-177);

/// Record of all but those below. uNewState and uOldState hold the bits that change.
struct NMLISTVIEW
{
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged; ///< LVIF_...
    POINT ptAction;
    LPARAM lParam;
};
/// Of NM_CLICK, NM_DBLCLK and LVN_ITEMACTIVATE; iItem is -1 beside all rows.
struct NMITEMACTIVATE
{
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
    UINT uKeyFlags; ///< 1 with Alt, 2 Ctrl, 4 Shift
};
/// Of LVN_GETDISPINFOW, and of the two about labels. To give a text, copy it into pszText (cchTextMax characters of
/// room) or let pszText point to one that lives on.
struct NMLVDISPINFOW
{
    NMHDR hdr;
    LVITEMW item;
};
struct NMLVKEYDOWN
{
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};
/// Of NM_CUSTOMDRAW: the colours may be changed for the item (column) that is about to be drawn.
struct NMLVCUSTOMDRAW
{
    NMCUSTOMDRAW nmcd;
    COLORREF clrText;
    COLORREF clrTextBk;
    int iSubItem;
};
