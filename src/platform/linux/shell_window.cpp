// What the shell does around a window: its input panel, the button that closes it, its title.
#include "platform/kernel.h"
#include "platform/shell.h"

#include <atomic>

namespace
{
std::atomic<bool> inputPanelWanted{false};

bool refuse(DWORD error)
{
    SetLastError(error);
    return false;
}

bool isLive(HWND window)
{
    return IsWindow(window) != FALSE || refuse(ERROR_INVALID_WINDOW_HANDLE);
}
} // namespace

bool zb::isInputPanelWanted()
{
    return inputPanelWanted;
}

BOOL SHSipPreference(HWND window, SIPSTATE state)
{
    if (!isLive(window))
    {
        return FALSE;
    }
    switch (state)
    {
    case SIP_UP:
        inputPanelWanted = true;
        return TRUE;
    case SIP_DOWN:
    case SIP_FORCEDOWN:
        inputPanelWanted = false;
        return TRUE;
    case SIP_UNCHANGED:
        return TRUE;
    default:
        return refuse(ERROR_INVALID_PARAMETER);
    }
}

BOOL SHDoneButton(HWND window, DWORD state)
{
    if (!isLive(window))
    {
        return FALSE;
    }
    if (state != SHDB_SHOW && state != SHDB_HIDE)
    {
        return refuse(ERROR_INVALID_PARAMETER);
    }
    const LONG_PTR former = GetWindowLongW(window, GWL_STYLE);
    constexpr auto titled = static_cast<LONG_PTR>(WS_CAPTION);
    if ((former & titled) != titled)
    {
        return TRUE;
    }
    constexpr auto button = static_cast<LONG_PTR>(WS_SYSMENU);
    SetWindowLongW(window, GWL_STYLE, state == SHDB_SHOW ? former | button : former & ~button);
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    return TRUE;
}

BOOL SHSetNavBarText(HWND window, const WCHAR *text)
{
    return isLive(window) ? SetWindowTextW(window, text == nullptr ? u"" : text) : FALSE;
}

BOOL SHFullScreen(HWND window, DWORD state)
{
    constexpr DWORD all = SHFS_SHOWTASKBAR | SHFS_HIDETASKBAR | SHFS_SHOWSIPBUTTON | SHFS_HIDESIPBUTTON |
                          SHFS_SHOWSTARTICON | SHFS_HIDESTARTICON;
    if (!isLive(window))
    {
        return FALSE;
    }
    return state != 0 && (state & ~all) == 0 ? TRUE : refuse(ERROR_INVALID_PARAMETER);
}
