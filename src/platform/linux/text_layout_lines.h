// A text of several lines: marks taken out, cut where lines end, broken where words don't fit.
//
// Every step costs time by the length of the text alone, whatever it holds: a word of any length is walked through
// once.
//
// Threads: with the face's mutex held.
#pragma once

#include "platform/linux/text_layout.h"

#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
/// A text without its & marks, and the places of the characters that these underline, ascending.
struct MarkedText
{
    std::u16string text;
    std::vector<std::size_t> marks;
};
/// `marked` false: the text as it is.
MarkedText takeMarks(std::u16string_view text, bool marked);

/// A part of the text.
struct TextLine
{
    std::size_t first = 0;
    std::size_t count = 0;
    LONGLONG width = 0;
};

struct LineRules
{
    bool single = false; ///< line ends are characters like others
    bool wrap = false;   ///< break behind words that don't fit
    LONGLONG width = 0;  ///< for wrap
    int tabStop = 0;     ///< pixels between the stops; 0: tabs are blanks
};

/// Never empty: a text without characters is one empty line. A line end at the very end begins no further one.
std::vector<TextLine> linesOf(FontFace &face, std::u16string_view text, const LineRules &rules);

/// The pieces of one line between its tabs: calls `take(x, first, count)` for each with where it begins, in pixels from
/// the line's left end and characters from its first. Returns the line's width.
template <typename Take>
LONGLONG forEachPiece(FontFace &face, std::u16string_view line, int tabStop, Take take)
{
    LONGLONG x = 0;
    std::size_t first = 0;
    while (true)
    {
        const std::size_t tab = tabStop > 0 ? line.find(u'\t', first) : std::u16string_view::npos;
        const std::size_t end = tab == std::u16string_view::npos ? line.size() : tab;
        if (end > first)
        {
            take(x, first, end - first);
            x += widthOf(face, line.substr(first, end - first));
        }
        if (end == line.size())
        {
            return x;
        }
        x = (x / tabStop + 1) * tabStop;
        first = end + 1;
    }
}

/// How many leading characters of the line are at most this wide, never a part of a cluster.
std::size_t fittingPart(FontFace &face, std::u16string_view line, int tabStop, LONGLONG width);
} // namespace zb::internal
