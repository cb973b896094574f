// Which characters are laid out one behind the other, and which ones ask for more.
#pragma once

namespace zb::internal
{
/// True for what stands alone, from left to right, with one glyph of its own: no marks, joiners, directions, no script
/// whose letters change with their neighbours.
bool isSimpleCharacter(char32_t character);

/// What is drawn in a character's place: a blank for tabs and line ends, the replacement character for half a pair, and
/// the character itself for all else.
char32_t drawnCharacter(char32_t character);

/// True for what is drawn as nothing and takes no room: controls and what only tells about other characters.
bool isInvisible(char32_t character);
} // namespace zb::internal
