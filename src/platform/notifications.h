// What several controls tell their parents by WM_NOTIFY (wParam the control's id, lParam a record that begins with an
// NMHDR), whatever else they have to say.
#pragma once

#include "platform/user.h"

inline constexpr UINT NM_CLICK = static_cast<UINT>(-2);  ///< a tap that has ended
inline constexpr UINT NM_DBLCLK = static_cast<UINT>(-3); ///< the second of two taps
inline constexpr UINT NM_RETURN = static_cast<UINT>(-4); ///< the Enter key
inline constexpr UINT NM_SETFOCUS = static_cast<UINT>(-7);
inline constexpr UINT NM_KILLFOCUS = static_cast<UINT>(-8);
inline constexpr UINT NM_CUSTOMDRAW = static_cast<UINT>(-12);

/// Before the control draws something, with NM_CUSTOMDRAW: the answer says what is to happen, and whether to be asked
/// about the next smaller thing.
struct NMCUSTOMDRAW
{
    NMHDR hdr;
    DWORD dwDrawStage; ///< CDDS_...
    HDC hdc;
    RECT rc;
    DWORD_PTR dwItemSpec; ///< which item
    UINT uItemState;      ///< CDIS_...
    LPARAM lItemlParam;
};
inline constexpr DWORD CDDS_PREPAINT = 0x00001;
inline constexpr DWORD CDDS_POSTPAINT = 0x00002;
inline constexpr DWORD CDDS_ITEM = 0x10000;
inline constexpr DWORD CDDS_ITEMPREPAINT = 0x10001;
inline constexpr DWORD CDDS_ITEMPOSTPAINT = 0x10002;
inline constexpr DWORD CDDS_SUBITEM = 0x20000; ///< added for a single column
inline constexpr LRESULT CDRF_DODEFAULT = 0x00;
inline constexpr LRESULT CDRF_NEWFONT = 0x02; ///< another font is selected into the context
inline constexpr LRESULT CDRF_SKIPDEFAULT = 0x04;
inline constexpr LRESULT CDRF_NOTIFYPOSTPAINT = 0x10;
inline constexpr LRESULT CDRF_NOTIFYITEMDRAW = 0x20;
inline constexpr LRESULT CDRF_NOTIFYSUBITEMDRAW = 0x20;
inline constexpr UINT CDIS_SELECTED = 0x01;
inline constexpr UINT CDIS_DISABLED = 0x04;
inline constexpr UINT CDIS_FOCUS = 0x10;

// Texts and pictures that the parent knows: list view and tree view ask for them each time, by their ..._GETDISPINFOW.
inline WCHAR *const LPSTR_TEXTCALLBACKW = reinterpret_cast<WCHAR *>(static_cast<LONG_PTR>(-1));
inline constexpr int I_IMAGECALLBACK = -1;
inline constexpr int I_IMAGENONE = -2;
