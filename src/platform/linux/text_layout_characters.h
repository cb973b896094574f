// Which characters are laid out one behind the other, and which ones ask for more.
#pragma once

#include <cstdint>

namespace zb::internal
{
/// What layout asks about a character, whatever the face.
struct CharacterTraits
{
    /// Stands alone, from left to right, with one glyph of its own: no mark, joiner or direction, no script whose
    /// letters change with their neighbours.
    bool simple : 1;
    /// Drawn as nothing and without room: controls and what only tells about other characters.
    bool invisible : 1;
    /// Goes with the character before it: marks, joiners, variation selectors, shades of pictures.
    bool continues : 1;
    /// May turn the order of a line: right-to-left letters, their numbers, the characters that give directions.
    bool turns : 1;
    /// A letter from right to left.
    bool backward : 1;
    /// Goes the way of the character before it.
    bool clings : 1;
    /// The library's number of its script.
    std::uint8_t script;
};
CharacterTraits traitsOf(char32_t character);

/// What is drawn in a character's place: a blank for tabs and line ends, the replacement character for half a pair, and
/// the character itself for all else.
char32_t drawnCharacter(char32_t character);
} // namespace zb::internal
