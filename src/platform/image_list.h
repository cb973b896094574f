// Image lists: a strip of pictures of one size in one object.
//
// The caller owns a list until ImageList_Destroy. Bitmaps that are added are copied; soft edges stay soft. Threads: one
// at a time; drags: any. False, -1 or null with last error 6 for a list that is none, 87 for an index or size out of range.
#pragma once

#include "platform/gdi.h"

inline constexpr UINT ILC_COLOR = 0x0000;
inline constexpr UINT ILC_MASK = 0x0001;
inline constexpr UINT ILC_COLORDDB = 0x00FE;
inline constexpr UINT ILC_COLOR32 = 0x0020;
inline constexpr UINT ILD_NORMAL = 0;
inline constexpr UINT ILD_TRANSPARENT = 1;
inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT IMAGE_ICON = 1;

/// Masks and key colours count in a list with ILC_MASK alone. `initial` and `grow` only have to be 0 or more: a list
/// grows as it needs.
ZBPLATFORM_API HIMAGELIST ImageList_Create(int width, int height, UINT flags, int initial, int grow);
ZBPLATFORM_API BOOL ImageList_Destroy(HIMAGELIST list);
/// Cuts the bitmap into pictures of the list's width; what is left over on the right and below is not looked at, and
/// one that is too small for a single picture is refused (87), as is a smaller mask. The index of the first, -1 on
/// failure; all are added or none. The mask (white lets through) may be null.
ZBPLATFORM_API int ImageList_Add(HIMAGELIST list, HBITMAP bitmap, HBITMAP mask);
/// The same; pixels of the key colour let through (CLR_NONE: none; CLR_DEFAULT: that of the top left pixel).
ZBPLATFORM_API int ImageList_AddMasked(HIMAGELIST list, HBITMAP bitmap, COLORREF key);
/// Puts the icon, in the list's size, in the place of a picture, or with index -1 behind the last; gives its index.
ZBPLATFORM_API int ImageList_ReplaceIcon(HIMAGELIST list, int index, HICON icon);
/// With index -1 all of them.
ZBPLATFORM_API BOOL ImageList_Remove(HIMAGELIST list, int index);
ZBPLATFORM_API int ImageList_GetImageCount(HIMAGELIST list);
ZBPLATFORM_API BOOL ImageList_GetIconSize(HIMAGELIST list, int *width, int *height);
/// Both styles draw what is there and leave what lets through.
ZBPLATFORM_API BOOL ImageList_Draw(HIMAGELIST list, int index, HDC context, int x, int y, UINT style);
/// A bitmap resource (type IMAGE_BITMAP) as a list of pictures `width` wide (0: as wide as high), with the key colour
/// as with ImageList_AddMasked. Null with the last errors of LoadBitmapW without the resource, 87 for another type;
/// `flags` are not looked at.
ZBPLATFORM_API HIMAGELIST ImageList_LoadImage(HINSTANCE module, const WCHAR *name, int width, int grow, COLORREF key,
                                              UINT type, UINT flags);

// --- Drags: a picture over the screen -----------------------------------------------------------------------------------
//
// One picture at a time lies over everything that windows show, in a layer of its own: windows draw below it as if it
// were not there, it leaves no traces, and captureScreen has both. Its place counts from the corner of the window that
// the drag has entered, else from the screen's.

/// Takes a copy of the picture; the hot spot is the point of it that follows the pen. Not shown before it is told where
/// (ImageList_DragEnter) or that it is to be shown. False while another drag goes on.
ZBPLATFORM_API BOOL ImageList_BeginDrag(HIMAGELIST list, int index, int hotSpotX, int hotSpotY);
/// Ends it and takes the picture away; nothing without a drag.
ZBPLATFORM_API void ImageList_EndDrag();
/// Shows it at a point that counts from the window's corner (null: the screen's), from now on. False without a drag, or
/// with last error 1400 for a window that is gone.
ZBPLATFORM_API BOOL ImageList_DragEnter(HWND window, int x, int y);
/// Hides it, and counts from the screen again.
ZBPLATFORM_API BOOL ImageList_DragLeave(HWND window);
ZBPLATFORM_API BOOL ImageList_DragMove(int x, int y);
ZBPLATFORM_API BOOL ImageList_DragShowNolock(BOOL show);
/// The list of the one picture that is dragged, the drag's own, ended with it; null without a drag. Both points are left
/// as they are when there is none, and may be null.
ZBPLATFORM_API HIMAGELIST ImageList_GetDragImage(POINT *place, POINT *hotSpot);
