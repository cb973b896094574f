// The tree view ("SysTreeView32"): rows that hold other rows, opened and closed by their buttons.
//
// Items are named by handles, which are checked: one that is gone is refused. The parent hears what happens by WM_NOTIFY;
// records of the notifications are the control's, texts in them only valid until the parent answers. A parent may destroy
// the control in any of them. Texts are copied and as long as they want to be; image lists stay the host's.
//
// Pen: a tap on a row chooses it, one on its button opens or closes it, one on its check box turns that; a second one
// within half a second opens or closes; a tap on the label of the chosen row edits it (TVS_EDITLABELS); a pen that is drawn
// away begins a drag. Keys: arrows, Page Up and Down, Home, End; Left closes or goes up, Right opens or goes down; +, - and
// * open, close and open all below; Backspace goes up; Blank turns the check box; F2 edits; letters find.
#pragma once

#include "platform/image_list.h"
#include "platform/notifications.h"

inline constexpr const WCHAR *WC_TREEVIEWW = u"SysTreeView32";

struct TREEITEM__;
using HTREEITEM = TREEITEM__ *;

// Signs of a number pad, which open and close.
inline constexpr int VK_MULTIPLY = 0x6A;
inline constexpr int VK_ADD = 0x6B;
inline constexpr int VK_SUBTRACT = 0x6D;

// --- Styles -----------------------------------------------------------------------------------------------------------

inline constexpr DWORD TVS_HASBUTTONS = 0x0001U;
inline constexpr DWORD TVS_HASLINES = 0x0002U;
inline constexpr DWORD TVS_LINESATROOT = 0x0004U; ///< buttons and lines of the first level, too
inline constexpr DWORD TVS_EDITLABELS = 0x0008U;
inline constexpr DWORD TVS_DISABLEDRAGDROP = 0x0010U;
inline constexpr DWORD TVS_SHOWSELALWAYS = 0x0020U;
/// Each item has a check box: state image 1 clear, 2 set. To be there before the items are.
inline constexpr DWORD TVS_CHECKBOXES = 0x0100U;
inline constexpr DWORD TVS_SINGLEEXPAND = 0x0400U; ///< opening an item closes the others beside it
inline constexpr DWORD TVS_FULLROWSELECT = 0x1000U;
inline constexpr DWORD TVS_NOSCROLL = 0x2000U; ///< no scroll bars; keys and messages scroll

// --- Items ------------------------------------------------------------------------------------------------------------

/// Parents and places that are no items.
inline HTREEITEM const TVI_ROOT = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0x10000));
inline HTREEITEM const TVI_FIRST = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0x0FFFF));
inline HTREEITEM const TVI_LAST = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0x0FFFE));
inline HTREEITEM const TVI_SORT = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0x0FFFD));

inline constexpr UINT TVIF_TEXT = 0x0001;
inline constexpr UINT TVIF_IMAGE = 0x0002;
inline constexpr UINT TVIF_PARAM = 0x0004;
inline constexpr UINT TVIF_STATE = 0x0008;
inline constexpr UINT TVIF_HANDLE = 0x0010;
inline constexpr UINT TVIF_SELECTEDIMAGE = 0x0020;
inline constexpr UINT TVIF_CHILDREN = 0x0040;
inline constexpr UINT TVIF_DI_SETITEM = 0x1000; ///< answer to TVN_GETDISPINFOW: keep what was given
inline constexpr UINT TVIS_SELECTED = 0x0002;
inline constexpr UINT TVIS_CUT = 0x0004;
inline constexpr UINT TVIS_DROPHILITED = 0x0008;
inline constexpr UINT TVIS_BOLD = 0x0010;
inline constexpr UINT TVIS_EXPANDED = 0x0020;
inline constexpr UINT TVIS_EXPANDEDONCE = 0x0040;
inline constexpr UINT TVIS_STATEIMAGEMASK = 0xF000;
inline constexpr int I_CHILDRENCALLBACK = -1; ///< as cChildren: the parent knows whether there are any

/// A text of LPSTR_TEXTCALLBACKW and a picture of I_IMAGECALLBACK are asked for each time.
struct TVITEMW
{
    UINT mask; ///< which of the following are read or set
    HTREEITEM hItem;
    UINT state;
    UINT stateMask; ///< bits of state that count
    WCHAR *pszText;
    int cchTextMax; ///< of a text that is read: room with its zero
    int iImage;
    int iSelectedImage;
    int cChildren; ///< 1: shown with a button though no item is below it yet
    LPARAM lParam;
};
struct TVINSERTSTRUCTW
{
    HTREEITEM hParent;      ///< TVI_ROOT or null for the first level
    HTREEITEM hInsertAfter; ///< a sibling or TVI_FIRST, TVI_LAST, TVI_SORT
    TVITEMW item;
};
struct TVHITTESTINFO
{
    POINT pt; ///< client coordinates
    UINT flags;
    HTREEITEM hItem;
};
inline constexpr UINT TVHT_NOWHERE = 0x0001;
inline constexpr UINT TVHT_ONITEMICON = 0x0002;
inline constexpr UINT TVHT_ONITEMLABEL = 0x0004;
inline constexpr UINT TVHT_ONITEMINDENT = 0x0008;
inline constexpr UINT TVHT_ONITEMBUTTON = 0x0010;
inline constexpr UINT TVHT_ONITEMRIGHT = 0x0020;
inline constexpr UINT TVHT_ONITEMSTATEICON = 0x0040;
inline constexpr UINT TVHT_ONITEM = 0x0046;
inline constexpr UINT TVHT_ABOVE = 0x0100;
inline constexpr UINT TVHT_BELOW = 0x0200;
inline constexpr UINT TVHT_TORIGHT = 0x0400;
inline constexpr UINT TVHT_TOLEFT = 0x0800;

/// Below, at or above 0 for two lParams of items, and the record's own.
using PFNTVCOMPARE = int (*)(LPARAM, LPARAM, LPARAM);
struct TVSORTCB
{
    HTREEITEM hParent;
    PFNTVCOMPARE lpfnCompare;
    LPARAM lParam;
};

// --- Messages: 0, -1 or null answers what can't be done -----------------------------------------------------------------

inline constexpr UINT TV_FIRST = 0x1100;
inline constexpr UINT TVM_DELETEITEM = TV_FIRST + 1; ///< lParam with all below it; TVI_ROOT or null: everything
/// wParam TVE_..., lParam the item. Told to the parent the first time only; what the user opens and closes always.
inline constexpr UINT TVM_EXPAND = TV_FIRST + 2;
inline constexpr WPARAM TVE_COLLAPSE = 1;
inline constexpr WPARAM TVE_EXPAND = 2;
inline constexpr WPARAM TVE_TOGGLE = 3;
inline constexpr WPARAM TVE_COLLAPSERESET = 0x8000; ///< with TVE_COLLAPSE: deletes what is below
/// lParam a RECT that begins with the item; wParam true: of its text alone. False for one that is in no open row.
inline constexpr UINT TVM_GETITEMRECT = TV_FIRST + 4;
inline constexpr UINT TVM_GETCOUNT = TV_FIRST + 5;
inline constexpr UINT TVM_GETINDENT = TV_FIRST + 6;
inline constexpr UINT TVM_SETINDENT = TV_FIRST + 7; ///< wParam pixels; never less than a button needs
inline constexpr UINT TVM_GETIMAGELIST = TV_FIRST + 8;
inline constexpr UINT TVM_SETIMAGELIST = TV_FIRST + 9; ///< wParam TVSIL_..., lParam the list; the former one
inline constexpr WPARAM TVSIL_NORMAL = 0;
inline constexpr WPARAM TVSIL_STATE = 2; ///< state image n is its picture n - 1, in place of check boxes
inline constexpr UINT TVM_GETNEXTITEM = TV_FIRST + 10; ///< wParam TVGN_..., lParam the item
inline constexpr WPARAM TVGN_ROOT = 0;
inline constexpr WPARAM TVGN_NEXT = 1;
inline constexpr WPARAM TVGN_PREVIOUS = 2;
inline constexpr WPARAM TVGN_PARENT = 3;
inline constexpr WPARAM TVGN_CHILD = 4;
inline constexpr WPARAM TVGN_FIRSTVISIBLE = 5;    ///< the topmost that shows
inline constexpr WPARAM TVGN_NEXTVISIBLE = 6;     ///< the next row, out of sight or not
inline constexpr WPARAM TVGN_PREVIOUSVISIBLE = 7;
inline constexpr WPARAM TVGN_DROPHILITE = 8;
inline constexpr WPARAM TVGN_CARET = 9; ///< the chosen one
inline constexpr WPARAM TVGN_LASTVISIBLE = 10;
/// wParam TVGN_CARET (told to the parent; opens what it lies in), TVGN_DROPHILITE or TVGN_FIRSTVISIBLE; null for none.
inline constexpr UINT TVM_SELECTITEM = TV_FIRST + 11;
inline constexpr UINT TVM_GETEDITCONTROL = TV_FIRST + 15;
inline constexpr UINT TVM_GETVISIBLECOUNT = TV_FIRST + 16; ///< rows that fit
inline constexpr UINT TVM_HITTEST = TV_FIRST + 17;
inline constexpr UINT TVM_SORTCHILDREN = TV_FIRST + 19; ///< lParam the parent; by the texts, letter case aside
/// Opens what it lies in and scrolls; true when the tree was scrolled.
inline constexpr UINT TVM_ENSUREVISIBLE = TV_FIRST + 20;
inline constexpr UINT TVM_SORTCHILDRENCB = TV_FIRST + 21;   ///< lParam a TVSORTCB; equals keep their order
inline constexpr UINT TVM_ENDEDITLABELNOW = TV_FIRST + 22;  ///< wParam true gives up
inline constexpr UINT TVM_SETITEMHEIGHT = TV_FIRST + 27;    ///< wParam pixels, -1 the font's; the former one
inline constexpr UINT TVM_GETITEMHEIGHT = TV_FIRST + 28;
inline constexpr UINT TVM_SETBKCOLOR = TV_FIRST + 29; ///< lParam; CLR_NONE the system's
inline constexpr UINT TVM_SETTEXTCOLOR = TV_FIRST + 30;
inline constexpr UINT TVM_GETBKCOLOR = TV_FIRST + 31;
inline constexpr UINT TVM_GETTEXTCOLOR = TV_FIRST + 32;
inline constexpr UINT TVM_GETITEMSTATE = TV_FIRST + 39; ///< wParam the item, lParam the bits
inline constexpr UINT TVM_INSERTITEMW = TV_FIRST + 50;
inline constexpr UINT TVM_GETITEMW = TV_FIRST + 62;
inline constexpr UINT TVM_SETITEMW = TV_FIRST + 63;
inline constexpr UINT TVM_EDITLABELW = TV_FIRST + 65; ///< lParam the item; the edit

// --- Notifications ----------------------------------------------------------------------------------------------------

inline constexpr UINT TVN_KEYDOWN = static_cast<UINT>(-412);
inline constexpr UINT TVN_SELCHANGINGW = static_cast<UINT>(-450); ///< true keeps the former one
inline constexpr UINT TVN_SELCHANGEDW = static_cast<UINT>(-451);
inline constexpr UINT TVN_GETDISPINFOW = static_cast<UINT>(-452);
inline constexpr UINT TVN_ITEMEXPANDINGW = static_cast<UINT>(-454); ///< true forbids it
inline constexpr UINT TVN_ITEMEXPANDEDW = static_cast<UINT>(-455);
inline constexpr UINT TVN_BEGINDRAGW = static_cast<UINT>(-456);
inline constexpr UINT TVN_DELETEITEMW = static_cast<UINT>(-458);     ///< itemOld; those below come first
inline constexpr UINT TVN_BEGINLABELEDITW = static_cast<UINT>(-459); ///< true forbids it
/// pszText is null when it was given up; true takes the text over.
inline constexpr UINT TVN_ENDLABELEDITW = static_cast<UINT>(-460);
inline constexpr UINT TVC_UNKNOWN = 0;
inline constexpr UINT TVC_BYMOUSE = 1;
inline constexpr UINT TVC_BYKEYBOARD = 2;

struct NMTREEVIEWW
{
    NMHDR hdr;
    UINT action; ///< TVC_... of a choice, TVE_... of opening and closing
    TVITEMW itemOld;
    TVITEMW itemNew;
    POINT ptDrag;
};
struct NMTVDISPINFOW
{
    NMHDR hdr;
    TVITEMW item;
};
struct NMTVKEYDOWN
{
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};
