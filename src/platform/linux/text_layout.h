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
/// Always made now. A text that won't come again (a piece of a word that was tried) need not leave its words behind.
enum class WordUse
{
    Keep,
    Once
};
TextLayout shapeText(FontFace &face, std::u16string_view text, WordUse use = WordUse::Keep);

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
