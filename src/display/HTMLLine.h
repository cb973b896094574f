// One line of marked-up text: how far it goes, how high it is, and painting one run of it. Inside the renderer alone.
#pragma once

#include "core/api.h"
#include "display/CHTMLParser.h"

#include <string_view>
#include <vector>

/// Fits as much of the text as the width of rect allows and paints it at rect's left top unless measureOnly. True when
/// all of it went out; chars is then -1. Else chars is how many characters did: up to the last one of " :-;," that has
/// room, or, without such a break, as many as fit. rect's right and bottom become those of what went out; when the
/// width is below 0 rect stays and chars is 0.
ZBTOOLS_API bool DrawTextRun(HDC hdc, const WCHAR *text, RECT *rect, bool measureOnly, int *chars);

/// Measures from the cursor to the end of the line, and moves the cursor there. start is how many characters of the
/// first run stand on lines before. size->cx is the width that there is, 0 for 32,768, and gets that of the line;
/// size->cy its height. descent is that of the line's lowest font. Where the alignment changes, the rest of the line
/// counts for the descent alone, unless ignoreAlign is set; a null descent leaves that rest out.
ZBTOOLS_API void CalcHTMLLine(HDC hdc, CHTMLParser *parser, int start, SIZE *size, int *descent, bool ignoreAlign);

namespace zb
{
/// Of a rectangle whose sides may lie anywhere.
LONG widthOf(const RECT &rect);

SIZE measuredText(HDC hdc, std::u16string_view text);

/// The width of each beginning of the text, by its number of characters less one.
std::vector<int> endsOfBeginnings(HDC hdc, std::u16string_view text);

/// No beginning of the text that is longer than this has that width; all of it for a text that may fit. Measures little
/// more of a long text than a line can hold; size is the measure of what it looked at, of all where that is the result.
std::size_t charactersToTry(HDC hdc, std::u16string_view text, LONG width, SIZE &size);

/// A picture as it is placed.
struct ImagePlace
{
    HBITMAP bitmap;
    int width; ///< as painted
    int height;
    int bitmapWidth; ///< as it is
    int bitmapHeight;
};

/// The current token's; false when it has none of at least 2 by 2 pixels. A SIZE below the bitmap's height shrinks it.
bool currentImage(CHTMLParser &parser, ImagePlace &place);

/// How far the current token's text, behind its first `start` characters, goes in that width. May select its font.
RunFit fitCurrentRun(HDC hdc, CHTMLParser &parser, int start, LONG width);

/// Sets rect to what fits, from its left top on, and paints that there; a width below 0 changes nothing.
void placeRun(HDC hdc, const RunFit &fit, RECT &rect, bool measureOnly);
} // namespace zb
