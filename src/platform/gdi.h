// Drawing: device contexts, bitmaps, fonts, text, shapes and transfers, in whole pixels.
//
// A device context draws on one surface: the screen's (GetDC) or the bitmap selected into it (CreateCompatibleDC).
// Coordinates are pixels from the surface's top left corner. Rectangles hold their left and top edge, not their right
// and bottom one. What falls outside the surface or the clip is not drawn.
//
// Who owns what: the caller owns every object that a Create call gave and ends it with DeleteObject (DeleteDC for a
// context, DestroyIcon for an icon). An object that is selected into a context stays alive for that context when it is
// deleted, and is gone when the next one is selected. Stock objects are never deleted; deleting them succeeds.
//
// Threads: objects may be made, selected and ended on any thread; a context and its bitmap are drawn on by one thread
// at a time. Fonts of equal description share one face, its measures and its glyphs, although each has its own handle.
//
// Failure: null or false with last error 6 for a handle that is stale, foreign or of the wrong kind, 87 for an argument
// out of range, 8 when there is no memory (a surface is at most 32,767 pixels each way and 256 MiB). Nothing drawn on a
// failure.
#pragma once

#include "platform/types.h"

/// Red in the low byte, then green, then blue.
constexpr COLORREF RGB(BYTE red, BYTE green, BYTE blue)
{
    return static_cast<COLORREF>(red) | static_cast<COLORREF>(green) << 8U | static_cast<COLORREF>(blue) << 16U;
}
constexpr BYTE GetRValue(COLORREF color)
{
    return static_cast<BYTE>(color);
}
constexpr BYTE GetGValue(COLORREF color)
{
    return static_cast<BYTE>(color >> 8U);
}
constexpr BYTE GetBValue(COLORREF color)
{
    return static_cast<BYTE>(color >> 16U);
}
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFFU;
inline constexpr COLORREF CLR_NONE = 0xFFFFFFFFU;
inline constexpr COLORREF CLR_DEFAULT = 0xFF000000U;

// --- Device contexts ---------------------------------------------------------------------------------------------

/// Context of a window's client area (a null window: of the whole screen), to be given back with ReleaseDC. All
/// contexts of an open device's screen draw on one surface; when the device closes, those that are left keep the former
/// screen. A window's context counts from its client area and is clipped to what shows of it (user.h); that of a hidden
/// window measures, and draws nothing. Null with last error 1400 for a window that is gone.
ZBPLATFORM_API HDC GetDC(HWND window);
/// 1, or 0 with last error 6; a context of CreateCompatibleDC is none of these. Which window is named makes no
/// difference.
ZBPLATFORM_API int ReleaseDC(HWND window, HDC context);
/// A context in memory that draws on a bitmap of 1 by 1 pixel, black and white, until another is selected. The
/// argument says what it is like and may be null for the screen. Other contexts may select its bitmap once it ended.
ZBPLATFORM_API HDC CreateCompatibleDC(HDC like);
ZBPLATFORM_API BOOL DeleteDC(HDC context);
/// Selection, colours, modes, current position and clip as one step. SaveDC gives the number of states kept (1 for the
/// first); RestoreDC takes such a number, or -1 for the last, and drops the states saved since. A bitmap that another
/// context has selected meanwhile stays there; the present one is kept then.
ZBPLATFORM_API int SaveDC(HDC context);
ZBPLATFORM_API BOOL RestoreDC(HDC context, int saved);

inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;
/// The six indices above; 0 for any other. HORZRES and VERTRES are the screen's for every context.
ZBPLATFORM_API int GetDeviceCaps(HDC context, int index);

/// The object that was selected before in its place (font, bitmap, pen or brush); null when it can't be selected: a
/// bitmap into a context of a window, or one that is in another context already.
ZBPLATFORM_API HGDIOBJ SelectObject(HDC context, HGDIOBJ object);
inline constexpr UINT OBJ_PEN = 1;
inline constexpr UINT OBJ_BRUSH = 2;
inline constexpr UINT OBJ_FONT = 6;
inline constexpr UINT OBJ_BITMAP = 7;
ZBPLATFORM_API HGDIOBJ GetCurrentObject(HDC context, UINT kind);
ZBPLATFORM_API BOOL DeleteObject(HGDIOBJ object);

inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;
/// A black pen as thick as a border of the screen (SM_CXBORDER).
inline constexpr int BORDERX_PEN = 32;
inline constexpr int BORDERY_PEN = 33;
ZBPLATFORM_API HGDIOBJ GetStockObject(int which);

/// Fills the record of the object (LOGFONTW, BITMAP, LOGPEN or LOGBRUSH) when `size` is at least that record's, and
/// returns the record's size; with a null record only that; 0 on failure. Colours come plain, a pen's width of 0 as 1.
ZBPLATFORM_API int GetObjectW(HGDIOBJ object, int size, void *record);

inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;
/// The mode before; 0 and nothing changed for any other value.
ZBPLATFORM_API int SetBkMode(HDC context, int mode);
ZBPLATFORM_API int GetBkMode(HDC context);
/// The colour before, CLR_INVALID on failure. Colours with SYS_COLOR_INDEX_FLAG stand for GetSysColor of their low byte
/// and are kept as that; of others the top byte is dropped.
ZBPLATFORM_API COLORREF SetBkColor(HDC context, COLORREF color);
ZBPLATFORM_API COLORREF GetBkColor(HDC context);
ZBPLATFORM_API COLORREF SetTextColor(HDC context, COLORREF color);
ZBPLATFORM_API COLORREF GetTextColor(HDC context);

inline constexpr UINT TA_LEFT = 0;
inline constexpr UINT TA_RIGHT = 2;
inline constexpr UINT TA_CENTER = 6;
inline constexpr UINT TA_TOP = 0;
inline constexpr UINT TA_BOTTOM = 8;
inline constexpr UINT TA_BASELINE = 24;
inline constexpr UINT GDI_ERROR = 0xFFFFFFFFU;
/// Where the point of ExtTextOutW lies in the text; TA_LEFT | TA_TOP at first.
/// The alignment before; GDI_ERROR on failure.
ZBPLATFORM_API UINT SetTextAlign(HDC context, UINT align);

// --- System colours and measures ---------------------------------------------------------------------------------

inline constexpr DWORD SYS_COLOR_INDEX_FLAG = 0x40000000U;
inline constexpr int COLOR_SCROLLBAR = 0;
inline constexpr int COLOR_BACKGROUND = 1;
inline constexpr int COLOR_ACTIVECAPTION = 2;
inline constexpr int COLOR_INACTIVECAPTION = 3;
inline constexpr int COLOR_MENU = 4;
inline constexpr int COLOR_WINDOW = 5;
inline constexpr int COLOR_WINDOWFRAME = 6;
inline constexpr int COLOR_MENUTEXT = 7;
inline constexpr int COLOR_WINDOWTEXT = 8;
inline constexpr int COLOR_CAPTIONTEXT = 9;
inline constexpr int COLOR_ACTIVEBORDER = 10;
inline constexpr int COLOR_INACTIVEBORDER = 11;
inline constexpr int COLOR_APPWORKSPACE = 12;
inline constexpr int COLOR_HIGHLIGHT = 13;
inline constexpr int COLOR_HIGHLIGHTTEXT = 14;
inline constexpr int COLOR_BTNFACE = 15;
inline constexpr int COLOR_BTNSHADOW = 16;
inline constexpr int COLOR_GRAYTEXT = 17;
inline constexpr int COLOR_BTNTEXT = 18;
inline constexpr int COLOR_INACTIVECAPTIONTEXT = 19;
inline constexpr int COLOR_BTNHIGHLIGHT = 20;
inline constexpr int COLOR_3DDKSHADOW = 21;
inline constexpr int COLOR_3DLIGHT = 22;
inline constexpr int COLOR_INFOTEXT = 23;
inline constexpr int COLOR_INFOBK = 24;
inline constexpr int COLOR_STATIC = 25;
inline constexpr int COLOR_STATICTEXT = 26;
/// The index may carry SYS_COLOR_INDEX_FLAG. 0 for one that there is not.
ZBPLATFORM_API COLORREF GetSysColor(int index);
/// Owned by the system.
ZBPLATFORM_API HBRUSH GetSysColorBrush(int index);

inline constexpr int SM_CXSCREEN = 0;
inline constexpr int SM_CYSCREEN = 1;
inline constexpr int SM_CXVSCROLL = 2;
inline constexpr int SM_CYHSCROLL = 3;
inline constexpr int SM_CYCAPTION = 4;
inline constexpr int SM_CXBORDER = 5;
inline constexpr int SM_CYBORDER = 6;
inline constexpr int SM_CXDLGFRAME = 7;
inline constexpr int SM_CYDLGFRAME = 8;
inline constexpr int SM_CXICON = 11;
inline constexpr int SM_CYICON = 12;
inline constexpr int SM_CYMENU = 15;
inline constexpr int SM_CYVSCROLL = 20;
inline constexpr int SM_CXHSCROLL = 21;
inline constexpr int SM_CXDOUBLECLK = 36;
inline constexpr int SM_CYDOUBLECLK = 37;
inline constexpr int SM_CXEDGE = 45;
inline constexpr int SM_CYEDGE = 46;
inline constexpr int SM_CXSMICON = 49;
inline constexpr int SM_CYSMICON = 50;
/// In pixels of the device's screen: those of 96 dpi scaled to its density (a border is 1 there, an icon 32, a small
/// icon 16, a scroll bar 13). 0 for an index that there is not.
ZBPLATFORM_API int GetSystemMetrics(int index);

// --- Fonts and text ----------------------------------------------------------------------------------------------

inline constexpr int LF_FACESIZE = 32;
inline constexpr LONG FW_NORMAL = 400;
inline constexpr LONG FW_BOLD = 700;
inline constexpr BYTE DEFAULT_QUALITY = 0;
inline constexpr BYTE DRAFT_QUALITY = 1;
inline constexpr BYTE NONANTIALIASED_QUALITY = 3;
inline constexpr BYTE ANTIALIASED_QUALITY = 4;
inline constexpr BYTE CLEARTYPE_QUALITY = 5;
inline constexpr BYTE CLEARTYPE_COMPAT_QUALITY = 6;

struct LOGFONTW
{
    LONG lfHeight; ///< above 0: height of the cell (ascent + descent); below: of the em; 0: cell of 11; at most 2,048
    LONG lfWidth;  ///< not looked at
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight; ///< from 550 on the bold face (a heavier one where there is one), else the regular one
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality; ///< NONANTIALIASED_QUALITY has hard edges, 5 and 6 use the stripes of the screen, others grey
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
};

struct TEXTMETRICW
{
    LONG tmHeight; ///< tmAscent + tmDescent
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    WCHAR tmFirstChar;
    WCHAR tmLastChar;
    WCHAR tmDefaultChar;
    WCHAR tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};

/// A face is found at first use, not here, so this is cheap. Never null for a readable record: an unknown face takes
/// the nearest one that there is; bold and italic are made where the family has none (bold wider by a pixel for each 24
/// of the em). A character that the face lacks comes from another one at the same height, and is a box where none has
/// it; ascent, descent and height stay the face's. Underline and strike-out are at least a pixel thick.
ZBPLATFORM_API HFONT CreateFontIndirectW(const LOGFONTW *description);
ZBPLATFORM_API BOOL GetTextMetricsW(HDC context, TEXTMETRICW *metrics);
/// The text's measure in the selected font: the sum of the advances (whole pixels, without kerning), and tmHeight. With
/// `fit`, the greatest number of leading characters whose width is at most `maximum`, never half a surrogate pair or half
/// of what the script joins into one cluster. With `extents`, for each character (up to the number that fits, if that is
/// asked for) the width from the start behind it; all characters of a cluster have that behind the cluster. They never
/// fall, in right-to-left text as well, which counts in the order of reading. The size is that of the whole text,
/// whatever fits. Example: in a font whose 'a' is 5 wide and whose 'W' is 10, "aWa" with maximum 16 gives fit 2, extents
/// 5 and 15, width 20.
/// What is measured is what is painted. Tabs, line feeds and the like are as wide as a blank, other controls and format
/// characters nothing; half a pair is the replacement character.
ZBPLATFORM_API BOOL GetTextExtentExPointW(HDC context, const WCHAR *text, int length, int maximum, int *fit,
                                          int *extents, SIZE *size);
ZBPLATFORM_API BOOL GetTextExtentPoint32W(HDC context, const WCHAR *text, int length, SIZE *size);
inline constexpr UINT ETO_OPAQUE = 2;
inline constexpr UINT ETO_CLIPPED = 4;
/// One line, from left to right as a whole, whatever its scripts; of more than 8,192 characters the first ones are drawn.
/// ETO_OPAQUE fills the rectangle with the background colour first, also without text; ETO_CLIPPED draws nothing outside
/// it; both say nothing without a rectangle. In mode OPAQUE the text's own box (its width by tmHeight) is filled as well.
/// `advances`, if given, are used in place of the font's, one for each character; a cluster has the sum of its own.
ZBPLATFORM_API BOOL ExtTextOutW(HDC context, int x, int y, UINT options, const RECT *rectangle, const WCHAR *text,
                                UINT length, const int *advances);

inline constexpr UINT DT_TOP = 0x0000;
inline constexpr UINT DT_LEFT = 0x0000;
inline constexpr UINT DT_CENTER = 0x0001;
inline constexpr UINT DT_RIGHT = 0x0002;
inline constexpr UINT DT_VCENTER = 0x0004;
inline constexpr UINT DT_BOTTOM = 0x0008;
inline constexpr UINT DT_WORDBREAK = 0x0010;
inline constexpr UINT DT_SINGLELINE = 0x0020;
inline constexpr UINT DT_EXPANDTABS = 0x0040;
inline constexpr UINT DT_NOCLIP = 0x0100;
inline constexpr UINT DT_CALCRECT = 0x0400;
inline constexpr UINT DT_NOPREFIX = 0x0800;
inline constexpr UINT DT_INTERNAL = 0x1000; ///< changes nothing
inline constexpr UINT DT_END_ELLIPSIS = 0x8000;
/// Text in a rectangle by the format; length -1 is up to the zero. Lines end at line feeds, carriage returns or both
/// together, and with DT_WORDBREAK where words don't fit: behind blanks, which then belong to no line, and between
/// ideographs. A word wider than the rectangle has a line of its own and is not cut. A line end at the very end begins no
/// line; no text is one empty line. With DT_SINGLELINE nothing ends a line; DT_VCENTER and DT_BOTTOM need it. Without
/// DT_NOPREFIX an & underlines what follows and && is one. DT_EXPANDTABS has a tab stop every 8 average characters,
/// otherwise a tab is a blank. DT_END_ELLIPSIS ends lines that are too wide, and the last one that shows of more, with an
/// ellipsis. DT_CALCRECT draws nothing and sets the rectangle's right and bottom to what the text takes. Returns the
/// height that the text takes (for DT_VCENTER and DT_BOTTOM the distance from the rectangle's top to its end); 0 on
/// failure. The text is never changed, and the context's text alignment says nothing here.
ZBPLATFORM_API int DrawTextW(HDC context, const WCHAR *text, int length, RECT *rectangle, UINT format);

// --- Pens, brushes, shapes ---------------------------------------------------------------------------------------

inline constexpr int PS_SOLID = 0;
inline constexpr int PS_DASH = 1;
inline constexpr int PS_NULL = 5;
struct LOGPEN
{
    UINT lopnStyle;
    POINT lopnWidth; ///< x is the width, 0 counts as 1
    COLORREF lopnColor;
};
inline constexpr UINT BS_SOLID = 0;
inline constexpr UINT BS_NULL = 1;
struct LOGBRUSH
{
    UINT lbStyle;
    COLORREF lbColor;
    LONG_PTR lbHatch;
};
/// 87 for another style or a width below 0 or above 32,767. A width of 0 is 1. A dashed pen draws 6 pixels and leaves 3
/// out, times its width; slanted lines and curves it draws solid when it is wider than 1.
ZBPLATFORM_API HPEN CreatePen(int style, int width, COLORREF color);
ZBPLATFORM_API HPEN CreatePenIndirect(const LOGPEN *description);
ZBPLATFORM_API HBRUSH CreateSolidBrush(COLORREF color);

/// A rectangle whose sides are out of order is empty for this and the two that invert; the shapes put them in order.
/// Null brushes and pens draw nothing. Curves have smooth edges, the same ones everywhere; on black and white hard
/// ones.
ZBPLATFORM_API BOOL FillRect(HDC context, const RECT *rectangle, HBRUSH brush);
/// Outline with the pen, centred on the edge pixels (left, top, right - 1 and bottom - 1; of an even width the odd
/// pixel lies outside), body with the brush inside it. So an outline of a pen w pixels wide stays inside a rectangle
/// whose sides were first moved in by w / 2: with w = 2, (1, 1, 9, 9) covers 0 to 9. Without a pen the body is the
/// whole rectangle.
ZBPLATFORM_API BOOL Rectangle(HDC context, int left, int top, int right, int bottom);
/// The same with corners that are quarters of an ellipse of that width and height, and with the ellipse that touches
/// all four sides. Their outlines are never dashed.
ZBPLATFORM_API BOOL RoundRect(HDC context, int left, int top, int right, int bottom, int width, int height);
ZBPLATFORM_API BOOL Ellipse(HDC context, int left, int top, int right, int bottom);
/// With the pen; the last point itself is not drawn by a pen of width 1. A wider one covers width / 2 pixels before the
/// line and the rest from it on, and reaches as far behind its ends. 87 for fewer than 2 points.
ZBPLATFORM_API BOOL Polyline(HDC context, const POINT *points, int count);
/// Outline and body, closed; where it crosses itself every other part is inside.
ZBPLATFORM_API BOOL Polygon(HDC context, const POINT *points, int count);
ZBPLATFORM_API BOOL MoveToEx(HDC context, int x, int y, POINT *before);
/// From the current position, which moves there.
ZBPLATFORM_API BOOL LineTo(HDC context, int x, int y);
/// Both give the colour that stands there afterwards; CLR_INVALID outside the clip.
ZBPLATFORM_API COLORREF SetPixel(HDC context, int x, int y, COLORREF color);
ZBPLATFORM_API COLORREF GetPixel(HDC context, int x, int y);
/// Inverts a dotted outline: drawn twice, it is gone.
ZBPLATFORM_API BOOL DrawFocusRect(HDC context, const RECT *rectangle);
/// Inverts the colours.
ZBPLATFORM_API BOOL InvertRect(HDC context, const RECT *rectangle);

inline constexpr UINT BDR_RAISEDOUTER = 1;
inline constexpr UINT BDR_SUNKENOUTER = 2;
inline constexpr UINT EDGE_RAISED = 5;
inline constexpr UINT EDGE_SUNKEN = 10;
inline constexpr UINT BF_LEFT = 1;
inline constexpr UINT BF_TOP = 2;
inline constexpr UINT BF_RIGHT = 4;
inline constexpr UINT BF_BOTTOM = 8;
inline constexpr UINT BF_RECT = 15;
/// Lines as thick as a border along the sides of `flags`, inside the rectangle; of the two lines of EDGE_RAISED and
/// EDGE_SUNKEN the second lies inside the first. The rectangle is not changed.
ZBPLATFORM_API BOOL DrawEdge(HDC context, RECT *rectangle, UINT edge, UINT flags);

inline constexpr UINT DFC_CAPTION = 1;
inline constexpr UINT DFC_SCROLL = 3;
inline constexpr UINT DFC_BUTTON = 4;
inline constexpr UINT DFCS_CAPTIONCLOSE = 0;
inline constexpr UINT DFCS_SCROLLUP = 0;
inline constexpr UINT DFCS_SCROLLDOWN = 1;
inline constexpr UINT DFCS_SCROLLLEFT = 2;
inline constexpr UINT DFCS_SCROLLRIGHT = 3;
inline constexpr UINT DFCS_SCROLLCOMBOBOX = 5;
inline constexpr UINT DFCS_BUTTONCHECK = 0;
inline constexpr UINT DFCS_BUTTONRADIO = 4;
inline constexpr UINT DFCS_BUTTON3STATE = 8;
inline constexpr UINT DFCS_BUTTONPUSH = 16;
inline constexpr UINT DFCS_INACTIVE = 0x0100;
inline constexpr UINT DFCS_PUSHED = 0x0200;
inline constexpr UINT DFCS_CHECKED = 0x0400;
/// Draws a part of a control in the system's look, as large as the rectangle (signs, boxes and circles: as the largest
/// square in its middle). 87 for a part that there is not. The rectangle is not changed.
ZBPLATFORM_API BOOL DrawFrameControl(HDC context, RECT *rectangle, UINT type, UINT state);

// --- Clip --------------------------------------------------------------------------------------------------------

inline constexpr int ERRORREGION = 0;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;
/// The smallest rectangle around what can be drawn on; one of the four values above.
ZBPLATFORM_API int GetClipBox(HDC context, RECT *box);
ZBPLATFORM_API int IntersectClipRect(HDC context, int left, int top, int right, int bottom);
ZBPLATFORM_API int ExcludeClipRect(HDC context, int left, int top, int right, int bottom);
ZBPLATFORM_API BOOL RectVisible(HDC context, const RECT *rectangle);

// --- Bitmaps and transfers ---------------------------------------------------------------------------------------

struct BITMAP
{
    LONG bmType; ///< 0
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;      ///< 1
    WORD bmBitsPixel;   ///< 32, or 1 for black and white
    const void *bmBits; ///< null: the pixels are the system's
};

/// What a bitmap in a file or resource begins with; read and written field by field, little-endian, 40 bytes.
struct BITMAPINFOHEADER
{
    DWORD biSize;
    LONG biWidth;
    LONG biHeight; ///< below 0: the first row is the top one
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

/// Like the context's own surface: of a memory context with its first bitmap that is one in black and white. Black at
/// first. Null (87) for a side below 0; a side of 0 gives a bitmap of 1 by 1, black and white.
ZBPLATFORM_API HBITMAP CreateCompatibleBitmap(HDC context, int width, int height);
/// Black and white with one plane and 1 bit, otherwise like the screen. bits, if given, are rows of whole words, the
/// top one first: only for 1 and 32 bits a pixel (blue, green, red, unused). 87 for other than 1 plane or 1 to 32 bits.
/// Black and white holds, of whatever is drawn on it, the nearer of the two; in memory it takes 32 bits a pixel too.
ZBPLATFORM_API HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void *bits);

inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr DWORD SRCPAINT = 0x00EE0086;
inline constexpr DWORD SRCAND = 0x008800C6;
inline constexpr DWORD SRCINVERT = 0x00660046;
inline constexpr DWORD NOTSRCCOPY = 0x00330008;
inline constexpr DWORD PATCOPY = 0x00F00021;
inline constexpr DWORD PATINVERT = 0x005A0049;
inline constexpr DWORD DSTINVERT = 0x00550009;
inline constexpr DWORD BLACKNESS = 0x00000042;
inline constexpr DWORD WHITENESS = 0x00FF0062;
/// Source and target may overlap and may be one surface. The source context may be null for the last five. 87 for any
/// other operation. What lies outside the source's surface is not drawn; with a side below 0 the rectangle, here and
/// there, reaches to the left or upwards. A black and white source is drawn in the target's text colour (its black) and
/// background colour (its white); a black and white target becomes white where the source has the source context's
/// background colour, else black.
ZBPLATFORM_API BOOL BitBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                           DWORD operation);
/// As BitBlt, to another size; mirrored where one of two lengths is below 0. Equal sizes and whole multiples (both
/// ways) repeat pixels exactly, so pictures with a key colour stay crisp; else it averages where it shrinks and
/// interpolates where it grows. Of a picture with soft edges the colours are kept apart from what lets through, which
/// stays of the key colour 0x00FF00. 87 for lengths of the source of 0, and for any above 32,767.
ZBPLATFORM_API BOOL StretchBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
                               int sourceWidth, int sourceHeight, DWORD operation);
ZBPLATFORM_API BOOL PatBlt(HDC target, int x, int y, int width, int height, DWORD operation);
/// Stretches a part of the source (a context or a bitmap) over the target, scaled and mirrored as with StretchBlt, and
/// leaves out the pixels of the key colour (CLR_NONE: of no colour), of which nothing gets into those beside them.
/// Pictures of ours that have soft edges (see resources.h) are blended by their softness as well. Black and white
/// sources stay black and white. Limits as with StretchBlt.
ZBPLATFORM_API BOOL TransparentImage(HDC target, int x, int y, int width, int height, HANDLE source, int sourceX,
                                     int sourceY, int sourceWidth, int sourceHeight, COLORREF key);

// --- Icons -------------------------------------------------------------------------------------------------------

struct ICONINFO
{
    BOOL fIcon;
    DWORD xHotspot;
    DWORD yHotspot;
    HBITMAP hbmMask; ///< white where the icon lets through
    HBITMAP hbmColor;
};
inline constexpr UINT DI_MASK = 1;
inline constexpr UINT DI_IMAGE = 2;
inline constexpr UINT DI_NORMAL = 3;
/// Copies both bitmaps, which stay the caller's. The mask may be null (all of the icon is there, but for the softness
/// of the colour bitmap) and must not be smaller than the colour bitmap (87).
ZBPLATFORM_API HICON CreateIconIndirect(const ICONINFO *description);
ZBPLATFORM_API BOOL DestroyIcon(HICON icon);
/// A width or height of 0 is the icon's own. DI_NORMAL blends the icon over what is there, or over `flicker` where that
/// is given; DI_IMAGE draws its colours, black where it lets through; DI_MASK white where it lets through, else black.
ZBPLATFORM_API BOOL DrawIconEx(HDC context, int x, int y, HICON icon, int width, int height, UINT step, HBRUSH flicker,
                               UINT flags);

// --- Rectangles --------------------------------------------------------------------------------------------------

/// 87 for a null pointer. Sums wrap.
ZBPLATFORM_API BOOL SetRect(RECT *rectangle, int left, int top, int right, int bottom);
ZBPLATFORM_API BOOL SetRectEmpty(RECT *rectangle);
ZBPLATFORM_API BOOL CopyRect(RECT *to, const RECT *from);
/// A null rectangle is empty, and no point is in it.
ZBPLATFORM_API BOOL IsRectEmpty(const RECT *rectangle);
ZBPLATFORM_API BOOL EqualRect(const RECT *one, const RECT *other);
ZBPLATFORM_API BOOL OffsetRect(RECT *rectangle, int x, int y);
ZBPLATFORM_API BOOL InflateRect(RECT *rectangle, int x, int y);
/// Set to the empty rectangle 0, 0, 0, 0 and false when there is none.
ZBPLATFORM_API BOOL IntersectRect(RECT *result, const RECT *one, const RECT *other);
ZBPLATFORM_API BOOL UnionRect(RECT *result, const RECT *one, const RECT *other);
/// Cuts `what` off only where a rectangle is left: where it covers one side from end to end.
ZBPLATFORM_API BOOL SubtractRect(RECT *result, const RECT *from, const RECT *what);
ZBPLATFORM_API BOOL PtInRect(const RECT *rectangle, POINT point);
