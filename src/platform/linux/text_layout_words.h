// Words that were shaped: a language has few of them, and lists show the same ones all day.
//
// What shaping makes of a word is the same whatever stands beyond the blanks around it, so a text is put together of
// its words, and each is shaped once.
#pragma once

#include "platform/linux/text_layout_cache.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
/// A run of text by itself; its clusters count their characters and glyphs from the first of it.
struct ShapedWord
{
    std::vector<LayoutGlyph> glyphs;
    std::vector<LayoutCluster> clusters; ///< as they stand from left to right
};

/// What decides, beside its characters, how a word is shaped.
struct WordStyle
{
    std::uint8_t source = 0;
    std::uint8_t script = 0;
    bool backward = false;
};

/// Threads: one at a time.
class WordCache
{
  public:
    /// Null when it isn't there. What is found or added stays where it is until the next trim.
    const ShapedWord *find(std::u16string_view word, const WordStyle &style);
    const ShapedWord &add(std::u16string_view word, const WordStyle &style, ShapedWord shaped);
    /// Forgets all when there are too many.
    void trim();

    static constexpr std::size_t mostCharacters = 65536;
    /// Longer ones are not kept.
    static constexpr std::size_t longestWord = 64;

  private:
    void makeKey(std::u16string_view word, const WordStyle &style);

    std::unordered_map<std::u16string, ShapedWord> m_words; ///< by the style in two characters, then the word
    std::u16string m_key;                                   ///< made anew for each look-up, without memory
    std::size_t m_characters = 0;
};
} // namespace zb::internal
