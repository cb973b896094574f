// Text that needs shaping, cut into runs of one direction, one script and one face.
#pragma once

#include "platform/linux/font_face.h"

#include <cstdint>
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

/// Room for the runs of one text after the other.
struct TextRuns
{
    std::vector<std::uint8_t> levels; ///< of each character
    std::vector<TextRun> runs;
};

/// The runs of a drawn text in its own order. Never empty for text that isn't.
const std::vector<TextRun> &runsOf(FontFace &face, std::u16string_view drawn, TextRuns &room);
} // namespace zb::internal
