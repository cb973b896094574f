// The globals of the screen's density.
#include "framework/HIDPI.h"

LONG g_HIDPI_LogPixelsX = 0;
LONG g_HIDPI_LogPixelsY = 0;
LONG g_HIDPI_IconPixels = 0;
LONG g_HIDPI_IconPixels_Special = 0;
LONG g_HIDPI_BorderPixels = 0;
LONG g_HIDPI_ZBFontScale = 0;

namespace
{
unsigned generation = 0;
}

void HIDPI_InitScaling()
{
    if (g_HIDPI_LogPixelsX != 0)
    {
        return;
    }
    const HDC screen = GetDC(nullptr);
    g_HIDPI_LogPixelsX = GetDeviceCaps(screen, LOGPIXELSX);
    g_HIDPI_LogPixelsY = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    g_HIDPI_IconPixels = GetSystemMetrics(SM_CXSMICON);
    g_HIDPI_IconPixels_Special = g_HIDPI_IconPixels;
    g_HIDPI_BorderPixels = GetSystemMetrics(SM_CXBORDER);
    g_HIDPI_ZBFontScale = g_HIDPI_LogPixelsY / 96;
}

namespace zb
{
void forgetScaling()
{
    ++generation;
    g_HIDPI_LogPixelsX = 0;
    g_HIDPI_LogPixelsY = 0;
    g_HIDPI_IconPixels = 0;
    g_HIDPI_IconPixels_Special = 0;
    g_HIDPI_BorderPixels = 0;
    g_HIDPI_ZBFontScale = 0;
}

unsigned scalingGeneration()
{
    return generation;
}
} // namespace zb
