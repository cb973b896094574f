#include "platform/shell.h"

#include "platform/kernel.h"
#include "platform/text.h"

BOOL SHInitDialog(SHINITDLGINFO *info)
{
    if (info == nullptr || info->dwMask != SHIDIM_FLAGS)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (IsWindow(info->hDlg) == FALSE)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if ((info->dwFlags & SHIDIF_DONEBUTTON) != 0)
    {
        const LONG_PTR style = GetWindowLongW(info->hDlg, GWL_STYLE);
        if ((style & static_cast<LONG_PTR>(WS_CAPTION)) == static_cast<LONG_PTR>(WS_CAPTION))
        {
            SetWindowLongW(info->hDlg, GWL_STYLE, style | static_cast<LONG_PTR>(WS_SYSMENU));
        }
    }
    if ((info->dwFlags & (SHIDIF_SIZEDLG | SHIDIF_SIZEDLGFULLSCREEN)) != 0)
    {
        SetWindowPos(info->hDlg, nullptr, 0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return TRUE;
}

BOOL SHGetSpecialFolderPath(HWND, WCHAR *path, int folder, BOOL)
{
    const WCHAR *found = folder == CSIDL_PERSONAL  ? u"\\My Documents"
                         : folder == CSIDL_WINDOWS ? u"\\Windows"
                                                   : nullptr;
    if (path == nullptr || found == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    wcscpy(path, found);
    return TRUE;
}

BOOL InitCommonControlsEx(const INITCOMMONCONTROLSEX *controls)
{
    if (controls == nullptr || controls->dwSize != sizeof(INITCOMMONCONTROLSEX))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return TRUE;
}

BOOL SHInitExtraControls()
{
    return TRUE;
}
