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

/// The input panel: the keys that a screen without a keyboard offers.
enum SIPSTATE
{
    SIP_UP = 0,
    SIP_DOWN = 1,
    SIP_FORCEDOWN = 2, ///< also where a window below still wants it
    SIP_UNCHANGED = 3
};
/// What a window wants of the input panel from now on. The device has none of its own; a host that can offer one (the
/// keyboard of a touch screen) asks zb::isInputPanelWanted(). False with last error 1400 for a window that is gone, 87
/// for another state.
ZBPLATFORM_API BOOL SHSipPreference(HWND window, SIPSTATE state);

inline constexpr DWORD SHDB_SHOW = 0x0001;
inline constexpr DWORD SHDB_HIDE = 0x0002;
/// Shows or hides the button that closes a window, in its title; a window without a title has no place for it. Errors
/// as above.
ZBPLATFORM_API BOOL SHDoneButton(HWND window, DWORD state);
/// The title that stands for a window; there is no bar above the windows, so it is the window's own. Null is an empty
/// one. Error 1400 as above.
ZBPLATFORM_API BOOL SHSetNavBarText(HWND window, const WCHAR *text);

inline constexpr DWORD SHFS_SHOWTASKBAR = 0x0001;
inline constexpr DWORD SHFS_HIDETASKBAR = 0x0002;
inline constexpr DWORD SHFS_SHOWSIPBUTTON = 0x0004;
inline constexpr DWORD SHFS_HIDESIPBUTTON = 0x0008;
inline constexpr DWORD SHFS_SHOWSTARTICON = 0x0010;
inline constexpr DWORD SHFS_HIDESTARTICON = 0x0020;
/// Takes parts of the shell off the screen, or brings them back, while a window is the active one. Nothing of the shell
/// covers the screen here, so all of it is free already. Errors as above: 87 for no part or an unknown one.
ZBPLATFORM_API BOOL SHFullScreen(HWND window, DWORD state);

namespace zb
{
/// Whether the last SHSipPreference of this process asked for the input panel. Any thread.
ZBPLATFORM_API bool isInputPanelWanted();
} // namespace zb
