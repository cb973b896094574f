// Scaling to the density of the screen: sizes, pictures and outlines.
//
// The engine counts in pixels of a screen with 96 dots an inch and asks HIDPI_SCALEX and HIDPI_SCALEY what they are on
// this one. The calls below do the same for what no factor helps with: ready-made pictures, and pens that have become
// so thick that half of them would lie outside of what they surround.
//
// Who owns what: a call that takes the address of a bitmap or icon puts another in its place and ends the former one;
// on failure the former one stays. Image lists are the caller's (ImageList_Destroy).
// Threads: HIDPI_InitScaling once, before others read the globals; the rest as the drawing calls that they make.
#pragma once

#include "core/api.h"
#include "platform/gdi.h"
#include "platform/image_list.h"

/// Dots an inch of the screen, across and down. 0 until HIDPI_InitScaling.
extern ZBTOOLS_API LONG g_HIDPI_LogPixelsX;
extern ZBTOOLS_API LONG g_HIDPI_LogPixelsY;
/// Side of a small icon in pixels; the second one is for hosts that want another size for some of theirs.
extern ZBTOOLS_API LONG g_HIDPI_IconPixels;
extern ZBTOOLS_API LONG g_HIDPI_IconPixels_Special;
/// Width of a window's border in pixels.
extern ZBTOOLS_API LONG g_HIDPI_BorderPixels;
/// What sizes of fonts in marked-up text are multiplied by: whole times 96 dots, so 1 at 131 and 2 at 192 dpi.
extern ZBTOOLS_API LONG g_HIDPI_ZBFontScale;

/// Pixels at 96 dpi in pixels of the screen: 15 is 20 at 131 dpi, as (15 * 131 + 48) / 96 = 2013 / 96. Truncated toward
/// 0, so a length below 0 is rounded the other way.
inline int HIDPI_SCALEX(int n)
{
    return static_cast<int>((static_cast<LONGLONG>(n) * g_HIDPI_LogPixelsX + 48) / 96);
}
inline int HIDPI_SCALEY(int n)
{
    return static_cast<int>((static_cast<LONGLONG>(n) * g_HIDPI_LogPixelsY + 48) / 96);
}

/// Fills the globals from the screen of the open device; only the first call in a process does anything. To be made
/// before any grid or parser.
ZBTOOLS_API void HIDPI_InitScaling();

/// Density of a bitmap resource in dots an inch; one that says none, or less, counts as 96. False, and nothing written,
/// without the resource.
ZBTOOLS_API BOOL HIDPI_GetBitmapLogPixels(HINSTANCE hInstance, const WCHAR *name, int *x, int *y);

/// Stretches a grid of cols by rows images, each to cx by cy pixels; one of the two may be 0 and then keeps the images'
/// shape. True and the same handle when they have that size already. Neither an image nor the whole grid may be longer
/// than 32,767 pixels on a side; that is refused, as is a side below 0: pictures are never mirrored.
ZBTOOLS_API BOOL HIDPI_StretchBitmap(HBITMAP *hBitmap, int cx, int cy, int cols, int rows);
ZBTOOLS_API BOOL HIDPI_StretchIcon(HICON *hIcon, int cx, int cy);

/// As ImageList_LoadImage, with cx in pixels of the screen: a bitmap of another density is stretched first. Null where
/// the stretched strip would be longer than 32,767 pixels on a side, or has no whole image in it.
ZBTOOLS_API HIMAGELIST HIDPI_ImageList_LoadImage(HINSTANCE hInstance, const WCHAR *name, int cx, int grow,
                                                 COLORREF mask, UINT type, UINT flags);

/// Rectangle with an outline that stays inside: of the selected pen, and of the pen of window borders.
ZBTOOLS_API BOOL HIDPI_Rectangle(HDC hdc, int left, int top, int right, int bottom);
ZBTOOLS_API BOOL HIDPI_BorderRectangle(HDC hdc, int left, int top, int right, int bottom);

/// To which side of its points a thick line lies. Without any of them it is centred, as Polyline draws it.
inline constexpr UINT HIDPI_VERTICAL_RIGHT = 16;
inline constexpr UINT HIDPI_VERTICAL_LEFT = 32;
inline constexpr UINT HIDPI_HORIZONTAL_DOWN = 64;
inline constexpr UINT HIDPI_HORIZONTAL_UP = 128;
inline constexpr UINT HIDPI_SIDES = 0xF0;
/// Lines through the points: with the selected pen, and with that of window borders. False as soon as one fails.
ZBTOOLS_API BOOL HIDPI_Polyline(HDC hdc, const POINT *points, int count, UINT flags);
ZBTOOLS_API BOOL HIDPI_BorderPolyline(HDC hdc, const POINT *points, int count, UINT flags);

namespace zb
{
/// Puts the globals back to before the first HIDPI_InitScaling, for a process that goes on with a device of another
/// screen. Nobody else may be drawing or parsing.
ZBTOOLS_API void forgetScaling();
/// How often that was done: who keeps something worked out from the globals compares.
ZBTOOLS_API unsigned scalingGeneration();
} // namespace zb
