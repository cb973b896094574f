// Where the characters of one line of text lie. Measuring and drawing both go by what this gives, so what was measured
// is what is painted.
//
// Text whose characters all stand for themselves is laid out by the widths of its characters alone, without shaping and
// without memory; all other text is ordered by direction, cut into runs of one script and one face, and shaped.
// Line feeds and other controls begin no line here: see drawnCharacter. The base direction is left to right.
//
// Threads: with the face's mutex held.
#pragma once

#include "platform/linux/font_face.h"
#include "platform/linux/text_layout_cache.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace zb::internal
{
/// How many leading characters need no shaping.
std::size_t simplePrefix(FontFace &face, std::u16string_view text);

/// The layout of a text that needs shaping, from the face's cache or made now.
std::shared_ptr<const TextLayout> layoutOf(FontFace &face, std::u16string_view text);
/// Always made now, into an empty layout. A text that won't come again (a piece of a word that was tried) need not
/// leave its words behind.
enum class WordUse
{
    Keep,
    Once
};
void shapeText(FontFace &face, std::u16string_view text, TextLayout &layout, WordUse use = WordUse::Keep);
/// Makes the layout of a part of an even text out of that of the whole. Returns false, and makes nothing, when the part
/// is not [first, first + count) cut at blanks, or the text not even.
bool takePart(FontFace &face, std::u16string_view whole, const TextLayout &from, std::size_t first, std::size_t count,
              TextLayout &part);

/// The width of the text.
int widthOf(FontFace &face, std::u16string_view text);

/// What GetTextExtentExPointW gives. With `maximum` below 0 all characters fit. extents may be null; else it has room
/// for the whole text and gets a value for each character that fits.
struct TextMeasure
{
    int width = 0;
    int fit = 0;
};
TextMeasure measureText(FontFace &face, std::u16string_view text, LONGLONG maximum, int *extents);
} // namespace zb::internal
