// Lays marked-up text out in a rectangle, and paints it or only measures it: one path does both, so what is measured is
// what is painted.
//
// Threads: on the thread that owns the surface; a parser is drawn by one thread at a time, since its cursor moves.
// Errors: none. A picture that can't be had takes no place.
#pragma once

#include "core/api.h"
#include "display/CHTMLParser.h"

#include <vector>

/// A place where a tap hits something.
struct HOTSPOT
{
    /// In pixels from the left top of the rectangle that was given to DrawHTML.
    RECT rcArea;
    /// Key of the run (`<A=key>`), or the source of a picture; zeros behind it.
    WCHAR szKey[260];
};
using HotSpotArray = std::vector<HOTSPOT>;

/// Text in the colour of selected rows, without backgrounds of its own.
inline constexpr DWORD DRAWHTML_SELECTED = 0x0001;
/// A right edge beyond this asks for lines that do not wrap: it is taken off the edge again, in the caller's rectangle.
inline constexpr LONG noWrapWidth = 32000;

/// Paints the tokens, or with DT_CALCRECT in the flags measures them: the rectangle's right and bottom are then those
/// of the content. indent moves to the right, unless it stands at y 0: what is left-aligned on lines other than the
/// first; centred lines that a run begins by wrapping; and on any line, the first one too, a run that changes the
/// alignment to left or centre there, or a picture that changes it to left.
/// hotSpots may be null; else it is emptied and gets a spot for each run with a key on each line, and for each picture
/// that is painted. The parser's cursor and bookmark are used; the cursor ends behind the last token.
ZBTOOLS_API void DrawHTML(HDC hdc, RECT *rect, USHORT indent, CHTMLParser *parser, HotSpotArray *hotSpots, DWORD flags);

/// The rectangle that the tokens take inside rect, with a pixel more at the right and the bottom.
ZBTOOLS_API void MeasureHTML(HDC hdc, RECT *rect, USHORT indent, CHTMLParser *parser);

/// DrawTextW of plain text; text that is wider than the rectangle is cut and ends in U+2026, with one character in
/// front of it at least. Returns what DrawTextW returned.
ZBTOOLS_API int DrawTextEndEllipsis(HDC hdc, const WCHAR *text, RECT &rect, UINT format);
