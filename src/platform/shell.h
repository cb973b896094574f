// What the device's shell does for programs: dialogs that fit its screen, folders by number, controls made ready.
#pragma once

#include "platform/user.h"

inline constexpr int CSIDL_PERSONAL = 5;
inline constexpr int CSIDL_WINDOWS = 0x24;
/// Device path, without a "\" at its end, of a folder that every device has, into room for MAX_PATH characters. False
/// with last error 87 for another number. There is nothing to make: all of them are there.
ZBPLATFORM_API BOOL SHGetSpecialFolderPath(HWND owner, WCHAR *path, int folder, BOOL create);

struct INITCOMMONCONTROLSEX
{
    DWORD dwSize; ///< 8
    DWORD dwICC;  ///< sets of control classes
};
/// Every class of control that the device has is known without it; programs ask for theirs all the same. False with
/// last error 87 for null or another size.
ZBPLATFORM_API BOOL InitCommonControlsEx(const INITCOMMONCONTROLSEX *controls);
/// The same for the controls of the shell.
ZBPLATFORM_API BOOL SHInitExtraControls();

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
