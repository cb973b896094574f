// Text that needs shaping, cut into runs of one direction, one script and one face.
#pragma once

#include "platform/linux/font_face.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unicode/uscript.h>
#include <vector>

namespace zb::internal
{
struct TextRun
{
    int first = 0;
    int count = 0;
    std::uint8_t level = 0; ///< odd: from right to left
    std::uint8_t script = USCRIPT_COMMON;
    unsigned source = 0;
    bool simple = false; ///< of simple characters alone
};

/// The text as it is drawn, character for character: see drawnCharacter.
void drawnText(std::u16string_view text, std::u16string &drawn);

/// How the words of an even text are shaped, all of them: blanks aside, its letters are of one script, one direction
/// and one face, and its characters are drawn as they are. So each word of it is what it would be alone, and which way
/// its characters go is known without asking: the blanks at its ends go with the line, those between its words with
/// these.
std::optional<WordStyle> evenStyle(FontFace &face, std::u16string_view text);

/// Room for the runs of one text after the other.
struct TextRuns
{
    std::vector<std::uint8_t> levels; ///< of each character
    std::vector<TextRun> runs;
    std::optional<WordStyle> even; ///< of the text last cut
};

/// The runs of a drawn text in its own order. Never empty for text that isn't.
const std::vector<TextRun> &runsOf(FontFace &face, std::u16string_view drawn, TextRuns &room);
} // namespace zb::internal
