// What the device's shell does for programs: dialogs that fit its screen.
#pragma once

#include "platform/user.h"

inline constexpr DWORD SHIDIM_FLAGS = 0x0001;
inline constexpr DWORD SHIDIF_DONEBUTTON = 0x0001; ///< dialogs close by their title's button
inline constexpr DWORD SHIDIF_SIZEDLG = 0x0002;
inline constexpr DWORD SHIDIF_SIZEDLGFULLSCREEN = 0x0004;
inline constexpr DWORD SHIDIF_SIPDOWN = 0x0008; ///< puts an input panel away; there is none to put away
struct SHINITDLGINFO
{
    DWORD dwMask; ///< SHIDIM_FLAGS
    HWND hDlg;
    DWORD dwFlags;
};
/// Gives a dialog that is just being made its place on the screen: all of it with either of the two sizes. False with
/// last error 1400 for a window that is gone, 87 for another mask.
ZBPLATFORM_API BOOL SHInitDialog(SHINITDLGINFO *info);
