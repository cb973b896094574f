// Where a caret may stand in a text: between what a reader takes for characters, and at words.
//
// Each costs time by the surroundings of the place alone, whatever the length of the text.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <string_view>

namespace zb::internal
{
/// The place behind the character that begins at or around `at`; the length at the end. A carriage return with its line
/// feed is one.
ZBPLATFORM_API std::size_t nextCharacter(std::u16string_view text, std::size_t at);
/// The place before the character that ends at or around `at`.
ZBPLATFORM_API std::size_t previousCharacter(std::u16string_view text, std::size_t at);
/// `at` itself when a caret may stand there, else the place before.
ZBPLATFORM_API std::size_t characterStart(std::u16string_view text, std::size_t at);
/// The start of the next word, line or run of signs.
ZBPLATFORM_API std::size_t nextWord(std::u16string_view text, std::size_t at);
/// The start of the one at or before `at`.
ZBPLATFORM_API std::size_t previousWord(std::u16string_view text, std::size_t at);

struct TextRange
{
    std::size_t first;
    std::size_t last;
    bool operator==(const TextRange &) const = default;
};
/// The word, sign or run of blanks that the place touches; nothing of a line end.
ZBPLATFORM_API TextRange wordAround(std::u16string_view text, std::size_t at);
} // namespace zb::internal
