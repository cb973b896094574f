// Texts that needed shaping, with what came of it: a text is measured, often more than once, before it is painted.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
/// A glyph of a cluster; its place counts from the cluster's pen, downward.
struct LayoutGlyph
{
    int x = 0;
    std::int16_t y = 0;
    std::uint16_t glyph = 0;
    std::uint8_t source = 0;
};

/// Characters that the script joins into one, or one alone.
struct LayoutCluster
{
    int first = 0; ///< character in the text
    int count = 0; ///< characters, at least 1
    int advance = 0;
    std::uint32_t glyphs = 0; ///< index of the first glyph
    std::uint32_t glyphCount = 0;
};

/// What decides, beside its characters, how a word is shaped.
struct WordStyle
{
    std::uint8_t source = 0;
    std::uint8_t script = 0;
    bool backward = false;
    bool operator==(const WordStyle &other) const = default;
};

struct TextLayout
{
    std::vector<LayoutGlyph> glyphs;
    std::vector<LayoutCluster> clusters; ///< as they stand from left to right
    /// For each character the width of the text up to and with its cluster, in the order of the text.
    std::vector<int> extents;
    int width = 0;
    /// Set when all words are shaped alike and in one direction: see evenStyle.
    std::optional<WordStyle> even;
};

/// The layouts used last. Threads: one at a time.
class TextLayoutCache
{
  public:
    /// Null when it isn't there.
    std::shared_ptr<const TextLayout> find(std::u16string_view text);
    void add(std::u16string_view text, std::shared_ptr<TextLayout> layout);
    /// An empty layout, made of one that was dropped if there is one, since its memory is much of what a layout costs.
    std::shared_ptr<TextLayout> spare();
    /// For spare(), unless somebody still holds it.
    void giveBack(std::shared_ptr<TextLayout> layout);

    /// A text with what came of it.
    struct Entry
    {
        std::u16string text;
        std::shared_ptr<TextLayout> layout;
    };
    /// Calls `wanted` with the entries used last until it returns true; null when it never does. What is found stays
    /// until the next call that isn't const.
    template <typename Wanted>
    const Entry *lookBack(Wanted wanted) const
    {
        int left = mostLookedAt;
        for (auto at = m_entries.begin(); at != m_entries.end() && left > 0; ++at, --left)
        {
            if (wanted(*at))
            {
                return &*at;
            }
        }
        return nullptr;
    }
    std::size_t size() const
    {
        return m_entries.size();
    }

    /// Longer texts are shaped each time.
    static constexpr std::size_t longestText = 8192;
    /// Characters of all texts together.
    static constexpr std::size_t mostCharacters = 8192;
    /// Of the layouts that were used last.
    static constexpr int mostLookedAt = 4;

  private:
    using Entries = std::list<Entry>;

    void dropLast();

    using Index = std::unordered_map<std::u16string_view, Entries::iterator>;

    Entries m_entries; ///< used last first
    Entries m_dropped; ///< for new ones to take over
    Index m_index;     ///< the keys are the entries' own texts
    std::vector<Index::node_type> m_droppedNodes;
    std::vector<std::shared_ptr<TextLayout>> m_spares;
    std::size_t m_characters = 0;
};
} // namespace zb::internal
