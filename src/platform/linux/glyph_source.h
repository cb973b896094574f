// One face of a file at one size: which glyph a character has, how wide it is, what it looks like.
//
// Threads: one at a time; whoever owns the source holds a lock. Glyph 0 is the box that stands for what is missing.
#pragma once

#include "platform/linux/font_catalog.h"
#include "platform/linux/glyph_bitmap.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <hb.h>
#include <memory>
#include <vector>

namespace zb::internal
{
class GlyphSource
{
  public:
    struct Style
    {
        int pixelsPerEm = 10;
        Smoothing smoothing = Smoothing::Grey;
        bool bold = false; ///< made heavier when the face itself isn't bold
        bool italic = false;
    };
    /// What a face says of itself, in units of the em.
    struct Design
    {
        int unitsPerEm = 1000;
        int ascent = 800;
        int descent = 200; ///< below the baseline, above 0
        int externalLeading = 0;
        int averageWidth = 500;
        int widest = 1000;
        int underlineTop = 100; ///< below the baseline
        int underlineThickness = 50;
        int strikeOutTop = 300; ///< above it
        int strikeOutThickness = 50;
        WCHAR firstCharacter = 0;
        WCHAR lastCharacter = 0;
        bool fixedPitch = false;
        bool serifs = false;
        bool outlines = true;
    };

    /// Null when the file can't be read. The size is set by setStyle.
    static std::unique_ptr<GlyphSource> open(const FaceFile &file);
    ~GlyphSource();
    GlyphSource(const GlyphSource &) = delete;
    GlyphSource &operator=(const GlyphSource &) = delete;

    const Design &design() const
    {
        return m_design;
    }
    void setStyle(const Style &style);
    /// Pixels by which synthetic bold makes each glyph wider; 0 for a face that is bold or needn't be.
    int boldExtra() const
    {
        return m_boldExtra;
    }

    /// 0 when the face lacks the character.
    unsigned glyphOf(char32_t character) const;
    unsigned glyphOf(char32_t character, char32_t variation) const;
    /// Whole pixels, at least 0. Remembered, since a face works each one out by drawing the glyph.
    int advance(unsigned glyph);
    /// The picture, its place counted from the pen on the baseline. Empty for a blank or unreadable glyph.
    GlyphPicture render(unsigned glyph);
    /// For shaping, at 64 units a pixel; null when there is no memory. Lives as long as the source.
    hb_font_t *shaper();

  private:
    GlyphSource(FT_Face face, const FaceFile &file);
    void readDesign();
    bool lacksInk();
    bool loadOutline(unsigned glyph, FT_Int32 target);
    int measureAdvance(unsigned glyph);
    void restyleOutline();
    bool isTooLarge() const;

    FT_Face m_face;
    std::string m_path;
    int m_index;
    bool m_faceBold;
    bool m_lacksInk = false; ///< bold by name, plain to the eye
    bool m_faceItalic;
    bool m_symbols = false;
    Design m_design;
    Style m_style;
    int m_boldExtra = 0;
    int m_inkExtra = 0; ///< pixels, inside the advance
    bool m_slanted = false;
    std::vector<std::int16_t> m_advances; ///< by glyph; below 0: not measured yet
    hb_font_t *m_shaper = nullptr;
};
} // namespace zb::internal
