// Property sheets: dialogs on pages of one window, with a tab for each page.
//
// A sheet is modal and fills the screen: its title, the pages, their tabs at the bottom, and the menu bar with OK and
// Cancel. A page is a dialog made of a template when it is shown first, as a child of the sheet (GetParent of the
// page); the template's own frame and title count for nothing but the words of the tab.
//
// Pages are told by WM_NOTIFY with a PSHNOTIFY and answer by DWL_MSGRESULT. Only pages that have been shown hear
// anything.
//   going to another page   PSN_KILLACTIVE to the shown one (true: it stays), then PSN_SETACTIVE to the next (0 shows
//   it,
//                           -1 the one behind it, or before when going back; any other number the page of that
//                           template)
//   OK                      PSN_KILLACTIVE to the shown page, PSN_APPLY to all in their order. PSNRET_INVALID brings
//   that
//                           page back and keeps the sheet, PSNRET_INVALID_NOCHANGEPAGE keeps it as it is
//   Cancel                  PSN_QUERYCANCEL to the shown page (true: the sheet stays), then PSN_RESET to all
// OK is the left half of the menu bar, VK_F1, or Enter where no control wants it; Cancel the right half, VK_F2 or
// Escape. Ctrl with Tab or a page key goes to the next page, with Shift too to the one before. Commands of a menu that
// takes the place of the sheet's (zb::setMenuBar) go to the shown page, but for IDOK and IDCANCEL.
//
// Threads: the calling one. The texts and templates that a page's record points to must live as long as the sheet.
#pragma once

#include "platform/dialog.h"

struct HPROPSHEETPAGE__;
/// A page that was made by CreatePropertySheetPageW.
using HPROPSHEETPAGE = HPROPSHEETPAGE__ *;

struct PROPSHEETPAGEW;
inline constexpr UINT PSPCB_ADDREF = 0;
inline constexpr UINT PSPCB_RELEASE = 1; ///< the sheet has done with the page
inline constexpr UINT PSPCB_CREATE = 2;  ///< about to be made; 0 refuses it
using LPFNPSPCALLBACKW = UINT (*)(HWND, UINT, PROPSHEETPAGEW *);

inline constexpr DWORD PSP_DEFAULT = 0x0000U;
inline constexpr DWORD PSP_DLGINDIRECT = 0x0001U; ///< pResource holds the template's bytes
inline constexpr DWORD PSP_USETITLE = 0x0008U;    ///< pszTitle instead of the template's title
inline constexpr DWORD PSP_USECALLBACK = 0x0080U;
inline constexpr DWORD PSP_PREMATURE = 0x0400U; ///< made with the sheet
struct PROPSHEETPAGEW
{
    DWORD dwSize;
    DWORD dwFlags;
    HINSTANCE hInstance;
    union
    {
        const WCHAR *pszTemplate; ///< its name or number in the resources
        const void *pResource;
    };
    const WCHAR *pszTitle;
    DLGPROC pfnDlgProc; ///< lParam of its WM_INITDIALOG is the sheet's copy of this record
    LPARAM lParam;
    LPFNPSPCALLBACKW pfnCallback;
};

inline constexpr UINT PSCB_INITIALIZED = 1; ///< the sheet stands, no page yet
using PFNPROPSHEETCALLBACK = int (*)(HWND, UINT, LPARAM);

inline constexpr DWORD PSH_DEFAULT = 0x0000U;
inline constexpr DWORD PSH_PROPSHEETPAGE = 0x0008U; ///< ppsp instead of phpage
inline constexpr DWORD PSH_USECALLBACK = 0x0100U;
struct PROPSHEETHEADERW
{
    DWORD dwSize;
    DWORD dwFlags;
    HWND hwndParent;
    HINSTANCE hInstance;
    const WCHAR *pszCaption;
    UINT nPages;
    UINT nStartPage; ///< beyond the last one: the first
    union
    {
        const PROPSHEETPAGEW *ppsp;
        HPROPSHEETPAGE *phpage; ///< the sheet's from now on
    };
    PFNPROPSHEETCALLBACK pfnCallback;
};

inline constexpr UINT PSN_SETACTIVE = static_cast<UINT>(-200);
inline constexpr UINT PSN_KILLACTIVE = static_cast<UINT>(-201);
inline constexpr UINT PSN_APPLY = static_cast<UINT>(-202);
inline constexpr UINT PSN_RESET = static_cast<UINT>(-203);
inline constexpr UINT PSN_QUERYCANCEL = static_cast<UINT>(-209);
inline constexpr LONG PSNRET_NOERROR = 0;
inline constexpr LONG PSNRET_INVALID = 1;
inline constexpr LONG PSNRET_INVALID_NOCHANGEPAGE = 2;
struct PSHNOTIFY
{
    NMHDR hdr;
    LPARAM lParam; ///< of PSN_APPLY true when the sheet closes with it
};

// Messages to the sheet.
inline constexpr UINT PSM_SETCURSEL =
    WM_USER + 101; ///< lParam a page's handle, or 0 and wParam its index; whether it shows
inline constexpr UINT PSM_REMOVEPAGE = WM_USER + 102; ///< likewise
inline constexpr UINT PSM_ADDPAGE = WM_USER + 103;    ///< lParam a page's handle
inline constexpr UINT PSM_CHANGED = WM_USER + 104;    ///< wParam the page's window
/// Goes as it is to all pages that have been shown, until one answers with something else than 0; that answer.
inline constexpr UINT PSM_QUERYSIBLINGS = WM_USER + 108;
inline constexpr UINT PSM_UNCHANGED = WM_USER + 109;
/// Applies all pages as OK does, without closing; whether none refused. OK itself sends it, too: whoever stands before
/// the sheet's procedure can do its own part behind that of the pages, and keep the sheet by answering 0.
inline constexpr UINT PSM_APPLY = WM_USER + 110;
inline constexpr UINT PSM_PRESSBUTTON = WM_USER + 113;
inline constexpr UINT PSM_SETCURSELID = WM_USER + 114; ///< lParam the number of the page's template
inline constexpr UINT PSM_GETTABCONTROL = WM_USER + 116;
inline constexpr UINT PSM_GETCURRENTPAGEHWND = WM_USER + 118;
inline constexpr UINT PSM_SETTITLEW = WM_USER + 120; ///< lParam the text
inline constexpr UINT PSM_HWNDTOINDEX = WM_USER + 129;
inline constexpr UINT PSM_INDEXTOHWND = WM_USER + 130; ///< null for a page that was not shown yet
inline constexpr WPARAM PSBTN_OK = 3;
inline constexpr WPARAM PSBTN_APPLYNOW = 4;
inline constexpr WPARAM PSBTN_CANCEL = 5;

/// Null without a record, or with another size.
ZBPLATFORM_API HPROPSHEETPAGE CreatePropertySheetPageW(const PROPSHEETPAGEW *page);
/// Only of a page that went into no sheet.
ZBPLATFORM_API BOOL DestroyPropertySheetPage(HPROPSHEETPAGE page);
/// 1 when it ended with OK, 0 when cancelled, -1 when no page could be made (last errors of the dialog calls; 87 for a
/// record without pages or of another size).
ZBPLATFORM_API LONG_PTR PropertySheetW(const PROPSHEETHEADERW *header);
