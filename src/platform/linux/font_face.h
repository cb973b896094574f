// A face at a size, as all fonts of equal description share it: its measures, its characters (those it lacks taken from
// the faces that step in), its glyphs' pictures and the texts that were shaped with it last.
//
// Threads: any thread may hold one; all but key() and measures() are called with mutex() locked, for the length of one
// text.
#pragma once

#include "platform/linux/font_description.h"
#include "platform/linux/glyph_cache.h"
#include "platform/linux/glyph_source.h"
#include "platform/linux/text_layout_cache.h"
#include "platform/linux/text_layout_characters.h"
#include "platform/linux/text_layout_words.h"

#include <array>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
/// Pixels; the lines' tops count from the top of the cell.
struct FontMeasures
{
    int height = 0; ///< ascent + descent
    int ascent = 0;
    int descent = 0;
    int internalLeading = 0;
    int externalLeading = 0;
    int averageWidth = 0;
    int widest = 0;
    int underlineTop = 0;
    int underlineThickness = 1;
    int strikeOutTop = 0;
    int strikeOutThickness = 1;
    int weight = 400;
    WCHAR firstCharacter = 0x20;
    WCHAR lastCharacter = 0xFFFC;
    bool fixedPitch = false;
    bool serifs = false;
};

/// What a character becomes where no shaping is asked for.
struct CharacterGlyph
{
    /// Null until it is first drawn, and again when the cache was emptied.
    const GlyphBitmap *bitmap = nullptr;
    std::uint16_t glyph = 0;
    std::int16_t advance = 0;
    std::uint8_t source = 0;
    bool known : 1 = false;
    bool blank : 1 = false; ///< nothing to draw
    CharacterTraits traits{};
};

class FontFace
{
  public:
    FontFace(FontKey key, std::shared_ptr<const FaceFiles> files);
    FontFace(const FontFace &) = delete;
    FontFace &operator=(const FontFace &) = delete;

    std::mutex &mutex()
    {
        return m_mutex;
    }
    const FontKey &key() const
    {
        return m_key;
    }
    const FontMeasures &measures() const
    {
        return m_measures;
    }

    /// By 16-bit character; half a pair stands for a replacement character and asks for shaping.
    CharacterGlyph &character(WCHAR unit)
    {
        Page *page = m_pages[unit >> 8U].get();
        if (page != nullptr)
        {
            CharacterGlyph &known = (*page)[unit & 0xFFU];
            if (known.known)
            {
                return known;
            }
        }
        return learn(unit);
    }
    /// Any character, for shaping.
    const CharacterGlyph &anyCharacter(char32_t character)
    {
        return character < 0x10000 ? this->character(static_cast<WCHAR>(character)) : beyond(character);
    }
    /// The character's picture; null when it is blank. Valid until the next call.
    const GlyphBitmap *bitmapOf(CharacterGlyph &character)
    {
        return character.bitmap != nullptr || character.blank ? character.bitmap : renderCharacter(character);
    }
    const GlyphBitmap *bitmapOf(unsigned source, unsigned glyph);

    /// The first source (main face first) that has all of these; none: that of the first character alone.
    unsigned sourceFor(std::u32string_view characters);
    /// Null when its file can't be read.
    GlyphSource *source(unsigned index);
    TextLayoutCache &layouts()
    {
        return m_layouts;
    }
    WordCache &words()
    {
        return m_words;
    }
    /// What the kept pictures take, in bytes.
    std::size_t cachedBytes() const
    {
        return m_cache.size();
    }

  private:
    using Page = std::array<CharacterGlyph, 256>;
    struct Slot
    {
        std::shared_ptr<const FaceFile> file;
        std::unique_ptr<GlyphSource> source;
        bool tried = false;
    };

    void openMain();
    void measure();
    CharacterGlyph &learn(WCHAR unit);
    CharacterGlyph make(char32_t character);
    const CharacterGlyph &beyond(char32_t character);
    const GlyphBitmap *renderCharacter(CharacterGlyph &character);
    void forgetPictures();
    bool has(unsigned index, char32_t character) const;

    FontKey m_key;
    std::mutex m_mutex;
    FontMeasures m_measures;
    int m_pixelsPerEm = 10;
    std::vector<Slot> m_slots;
    std::array<std::unique_ptr<Page>, 256> m_pages;
    std::unordered_map<char32_t, CharacterGlyph> m_beyond; ///< characters above 16 bits
    GlyphCache m_cache;
    TextLayoutCache m_layouts;
    WordCache m_words;
};
} // namespace zb::internal
