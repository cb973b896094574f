#include "framework/CeGetAppWindow.h"

HWND CeGetAppWindow()
{
    HWND window = GetActiveWindow();
    for (HWND above = window; above != nullptr; above = GetParent(above))
    {
        window = above;
    }
    return window;
}
