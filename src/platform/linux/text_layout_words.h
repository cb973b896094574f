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
    /// How wide its first one, two, ... characters are by themselves; -1 or not there: not asked for yet.
    std::vector<int> partWidths;
};

/// Threads: one at a time.
class WordCache
{
  public:
    /// Null when it isn't there. What is found or added stays where it is until the next trim.
    ShapedWord *find(std::u16string_view word, const WordStyle &style);
    const ShapedWord &add(std::u16string_view word, const WordStyle &style, ShapedWord shaped);
    /// When there are too many, forgets those that were not looked for since the last time that there were.
    void trim();

    /// Looked for since then.
    static constexpr std::size_t mostCharacters = 32768;
    /// Longer ones are not kept.
    static constexpr std::size_t longestWord = 64;

  private:
    void makeKey(std::u16string_view word, const WordStyle &style);

    /// By the style in two characters, then the word.
    using Words = std::unordered_map<std::u16string, ShapedWord>;

    Words m_words; ///< looked for lately
    Words m_former;
    std::u16string m_key;         ///< made anew for each look-up, without memory
    std::size_t m_characters = 0; ///< of the words looked for lately
};
} // namespace zb::internal
