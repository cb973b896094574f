// A pen that is held where it came down, which stands for the second button of a mouse.
#pragma once

#include "platform/user.h"

inline constexpr DWORD SHRG_RETURNCMD = 1;
/// What SHRecognizeGesture gives for a pen that was held; windows tell it on by WM_NOTIFY with this code.
inline constexpr UINT GN_CONTEXTMENU = 1000;

struct SHRGINFO
{
    DWORD cbSize;
    HWND hwndClient;
    POINT ptDown;  ///< in the window's client area
    DWORD dwFlags; ///< SHRG_RETURNCMD
};

/// With WM_NOTIFY and GN_CONTEXTMENU.
struct NMRGINFO
{
    NMHDR hdr;
    POINT ptAction; ///< on the screen
    DWORD_PTR dwItemSpec;
};

/// To be called while the pen is down: waits until it goes up or moves away (0), or has been held for 0.7 seconds
/// (GN_CONTEXTMENU); from 0.2 seconds on, dots grow round it into a circle. Messages wait meanwhile, those of the pen
/// as well. Only the window's thread may call it; else, for a record of another size, a window that is gone or a pen
/// that is not down, 0 at once.
ZBPLATFORM_API DWORD SHRecognizeGesture(SHRGINFO *info);
