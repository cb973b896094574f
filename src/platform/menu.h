// Menus: lists of entries with numbers, shown as pop-ups or as the bar of a window.
//
// A menu belongs to who made it until it is put into another one as a pop-up; that one then ends it with itself. The
// entries of a menu are counted from 0; an entry is named by its id, which is looked for in the menu and then in the
// menus in it, or with MF_BYPOSITION by its position. A word of an entry underlines the letter behind "&" ("&&" is a
// plain one); what follows a tab stands at the right.
//
// Threads: any; a menu is shown on the calling thread. Failure is false, null or -1, with last error 1401 for a handle
// that is no menu, 1456 for an entry that there is not, 87 for a menu put into itself.
#pragma once

#include "platform/user.h"

inline constexpr UINT MF_STRING = 0x0000;
inline constexpr UINT MF_ENABLED = 0x0000;
inline constexpr UINT MF_UNCHECKED = 0x0000;
inline constexpr UINT MF_BYCOMMAND = 0x0000;
inline constexpr UINT MF_GRAYED = 0x0001; ///< can't be chosen
inline constexpr UINT MF_CHECKED = 0x0008;
inline constexpr UINT MF_POPUP = 0x0010; ///< the id is a menu
inline constexpr UINT MF_MENUBREAK = 0x0040; ///< begins another column, where the screen has room for all
inline constexpr UINT MF_SEPARATOR = 0x0800;
inline constexpr UINT MF_BYPOSITION = 0x0400;

ZBPLATFORM_API HMENU CreateMenu();
ZBPLATFORM_API HMENU CreatePopupMenu();
/// With all menus in it.
ZBPLATFORM_API BOOL DestroyMenu(HMENU menu);
/// A null text is an empty one.
ZBPLATFORM_API BOOL AppendMenuW(HMENU menu, UINT flags, UINT_PTR id, const WCHAR *text);
/// In front of the entry; behind the last one when there is no such entry, or for position -1.
ZBPLATFORM_API BOOL InsertMenuW(HMENU menu, UINT before, UINT flags, UINT_PTR id, const WCHAR *text);
/// RemoveMenu leaves a pop-up to the caller, DeleteMenu ends it, too.
ZBPLATFORM_API BOOL RemoveMenu(HMENU menu, UINT entry, UINT flags);
ZBPLATFORM_API BOOL DeleteMenu(HMENU menu, UINT entry, UINT flags);
/// The former state: MF_CHECKED or 0; 0xFFFFFFFF without such an entry.
ZBPLATFORM_API DWORD CheckMenuItem(HMENU menu, UINT entry, UINT flags);
/// A dot for the chosen entry, and nothing for all others from first to last (ids or positions) of the same menu.
ZBPLATFORM_API BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT chosen, UINT flags);
/// The former state: MF_GRAYED or 0; -1 without such an entry.
ZBPLATFORM_API BOOL EnableMenuItem(HMENU menu, UINT entry, UINT flags);
/// The pop-up of the entry at the position.
ZBPLATFORM_API HMENU GetSubMenu(HMENU menu, int position);
ZBPLATFORM_API int GetMenuItemCount(HMENU menu);

inline constexpr UINT MIIM_STATE = 0x0001;
inline constexpr UINT MIIM_ID = 0x0002;
inline constexpr UINT MIIM_SUBMENU = 0x0004;
inline constexpr UINT MIIM_TYPE = 0x0010;
inline constexpr UINT MIIM_DATA = 0x0020;
inline constexpr UINT MFT_STRING = 0x0000;
inline constexpr UINT MFT_MENUBREAK = 0x0040;
inline constexpr UINT MFT_RADIOCHECK = 0x0200; ///< a dot in the place of the hook
inline constexpr UINT MFT_SEPARATOR = 0x0800;
inline constexpr UINT MFS_GRAYED = 0x0001;
inline constexpr UINT MFS_CHECKED = 0x0008;
struct MENUITEMINFOW
{
    UINT cbSize;
    UINT fMask; ///< which of the following are read or set
    UINT fType;
    UINT fState;
    UINT wID;
    HMENU hSubMenu;
    HBITMAP hbmpChecked;   ///< not looked at
    HBITMAP hbmpUnchecked; ///< not looked at
    UINT_PTR dwItemData;
    WCHAR *dwTypeData; ///< with MIIM_TYPE, the text
    UINT cch;          ///< of a text that is read: room with the zero before, characters after
};
/// With a null dwTypeData cch alone is set. Refused (87) with another cbSize.
ZBPLATFORM_API BOOL GetMenuItemInfoW(HMENU menu, UINT entry, BOOL byPosition, MENUITEMINFOW *info);
/// A pop-up that is taken out by another one, or by null, is ended.
ZBPLATFORM_API BOOL SetMenuItemInfoW(HMENU menu, UINT entry, BOOL byPosition, const MENUITEMINFOW *info);

/// A menu of a module's resources (see menu_template.h); the caller's. Null with the last errors of FindResourceW, 11
/// when it is damaged.
ZBPLATFORM_API HMENU LoadMenuW(HINSTANCE instance, const WCHAR *name);

inline constexpr UINT TPM_LEFTALIGN = 0x0000;
inline constexpr UINT TPM_CENTERALIGN = 0x0004;
inline constexpr UINT TPM_RIGHTALIGN = 0x0008;
inline constexpr UINT TPM_TOPALIGN = 0x0000;
inline constexpr UINT TPM_VCENTERALIGN = 0x0010;
inline constexpr UINT TPM_BOTTOMALIGN = 0x0020;
inline constexpr UINT TPM_VERTICAL = 0x0040; ///< stays out of the rectangle above or below rather than beside it
inline constexpr UINT TPM_NONOTIFY = 0x0080; ///< the owner is told nothing
inline constexpr UINT TPM_RETURNCMD = 0x0100;
struct TPMPARAMS
{
    UINT cbSize;
    RECT rcExclude; ///< on the screen
};
/// Shows the menu at a point of the screen, whole inside the screen, until an entry is chosen or the user leaves it: by
/// Escape, or a tap beside it (which does nothing else). The owner is told by WM_ENTERMENULOOP, WM_INITMENUPOPUP for
/// each menu before it appears (wParam the menu, lParam its position in the one that it stands in; it may be changed
/// then) and WM_EXITMENULOOP. With TPM_RETURNCMD the result is the id chosen, 0 for none, and nothing else happens; else
/// WM_COMMAND with the id is posted to the owner, and the result tells that the menu was shown. False with last error
/// 1400 without an owner, 1401 without a menu. A menu without entries shows nothing and gives 0.
ZBPLATFORM_API BOOL TrackPopupMenuEx(HMENU menu, UINT flags, int x, int y, HWND owner, const TPMPARAMS *parameters);

namespace zb
{
/// The bar at the bottom of a window of the screen: the first two entries of the menu, left and right, a pop-up opening
/// above its half, any other sending WM_COMMAND with its id (code 0, lParam 0). It takes SM_CYMENU pixels off the
/// client area. VK_F1 and VK_F2 press the halves while the window is the active one. The menu stays the caller's; null
/// takes the bar away. Call it again after a change of the menu. False for a child window or one that is gone.
ZBPLATFORM_API bool setMenuBar(HWND window, HMENU menu);
ZBPLATFORM_API HMENU menuBarOf(HWND window);
} // namespace zb
