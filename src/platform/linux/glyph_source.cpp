#include "platform/linux/glyph_source.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include FT_LCD_FILTER_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H
#include FT_BITMAP_H

namespace zb::internal
{
namespace
{
/// A face at least this heavy is bold by itself.
constexpr int boldFace = 600;
/// Synthetic bold makes stems wider by one pixel for each of these (at least by one).
constexpr int boldPixelsPerEm = 24;
/// One in about five, in 16.16: the lean of most italics.
constexpr FT_Fixed lean = 0x0366A;
/// Some faces are bold by name and by the room of their letters, with the stems of a plain one: those get the ink that
/// they lack, inside that room. The stem of an 'l', in thousandths of the em, from which a face is bold to the eye; and
/// what is added.
constexpr int boldStem = 120;
constexpr int missingInk = 70;
/// Glyphs that reach further than this many ems are damage.
constexpr int farthestEms = 16;

/// Opening and closing faces of one library takes turns; the faces themselves are each used by one thread at a time.
struct Library
{
    std::mutex mutex;
    FT_Library handle = nullptr;
    Library()
    {
        if (FT_Init_FreeType(&handle) == 0)
        {
            FT_Library_SetLcdFilter(handle, FT_LCD_FILTER_DEFAULT);
        }
    }
};

/// Never destroyed: threads parked for good may outlive the end of main.
Library &library()
{
    static auto *instance = new Library;
    return *instance;
}

int roundedPixels(FT_Pos value)
{
    return static_cast<int>((value + 32) >> 6);
}

FT_Int32 targetOf(Smoothing smoothing)
{
    switch (smoothing)
    {
    case Smoothing::None:
        return FT_LOAD_TARGET_MONO;
    case Smoothing::Stripes:
        return FT_LOAD_TARGET_LCD | FT_LOAD_NO_BITMAP;
    default:
        return FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_BITMAP;
    }
}

/// Rows of FreeType's bitmap, whatever its kind, as bytes of coverage.
void copyRows(const FT_Bitmap &bitmap, std::vector<std::uint8_t> &coverage)
{
    coverage.resize(std::size_t{bitmap.width} * bitmap.rows);
    std::uint8_t *to = coverage.data();
    for (unsigned y = 0; y < bitmap.rows; ++y, to += bitmap.width)
    {
        const unsigned char *from = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
        if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO)
        {
            for (unsigned x = 0; x < bitmap.width; ++x)
            {
                to[x] = (from[x >> 3U] >> (7U - (x & 7U)) & 1U) != 0 ? 255 : 0;
            }
        }
        else
        {
            std::copy_n(from, bitmap.width, to);
        }
    }
}
} // namespace

std::unique_ptr<GlyphSource> GlyphSource::open(const FaceFile &file)
{
    Library &all = library();
    FT_Face face = nullptr;
    {
        const std::lock_guard guard(all.mutex);
        if (all.handle == nullptr || FT_New_Face(all.handle, file.path().c_str(), file.index(), &face) != 0)
        {
            return nullptr;
        }
    }
    std::unique_ptr<GlyphSource> source(new GlyphSource(face, file));
    return FT_IS_SCALABLE(face) ? std::move(source) : nullptr;
}

GlyphSource::GlyphSource(FT_Face face, const FaceFile &file)
    : m_face(face), m_path(file.path()), m_index(file.index()), m_faceBold(file.weight() >= boldFace),
      m_faceItalic(file.isItalic())
{
    m_symbols = face->charmap != nullptr && face->charmap->encoding == FT_ENCODING_MS_SYMBOL;
    readDesign();
}

GlyphSource::~GlyphSource()
{
    if (m_shaper != nullptr)
    {
        hb_font_destroy(m_shaper);
    }
    const std::lock_guard guard(library().mutex);
    FT_Done_Face(m_face);
}

bool GlyphSource::lacksInk()
{
    return m_faceBold && FT_Load_Char(m_face, 'l', FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) == 0 &&
           m_face->glyph->metrics.width > 0 &&
           m_face->glyph->metrics.width * 1000 < static_cast<FT_Pos>(boldStem) * m_design.unitsPerEm;
}

void GlyphSource::readDesign()
{
    m_design.unitsPerEm = std::max<int>(m_face->units_per_EM, 16);
    m_lacksInk = lacksInk();
    m_design.ascent = m_face->ascender;
    m_design.descent = -m_face->descender;
    m_design.averageWidth = m_face->max_advance_width / 2;
    m_design.widest = m_face->max_advance_width;
    m_design.underlineThickness = m_face->underline_thickness;
    m_design.underlineTop = -(m_face->underline_position + m_face->underline_thickness / 2);
    m_design.strikeOutTop = m_design.ascent * 3 / 8;
    m_design.strikeOutThickness = m_design.underlineThickness;
    m_design.fixedPitch = FT_IS_FIXED_WIDTH(m_face);
    if (const auto *os2 = static_cast<const TT_OS2 *>(FT_Get_Sfnt_Table(m_face, FT_SFNT_OS2)); os2 != nullptr)
    {
        const int line = m_face->ascender - m_face->descender;
        const int gap = m_face->height - line;
        if (os2->usWinAscent + os2->usWinDescent > 0)
        {
            m_design.ascent = os2->usWinAscent;
            m_design.descent = os2->usWinDescent;
        }
        m_design.externalLeading = std::max(0, gap - (m_design.ascent + m_design.descent - line));
        m_design.averageWidth = os2->xAvgCharWidth > 0 ? os2->xAvgCharWidth : m_design.averageWidth;
        m_design.strikeOutTop = os2->yStrikeoutPosition;
        m_design.strikeOutThickness = os2->yStrikeoutSize;
        m_design.firstCharacter = static_cast<WCHAR>(os2->usFirstCharIndex);
        m_design.lastCharacter = static_cast<WCHAR>(os2->usLastCharIndex);
        m_design.serifs = (os2->sFamilyClass >> 8) >= 1 && (os2->sFamilyClass >> 8) <= 5;
    }
    if (m_design.ascent + m_design.descent <= 0 || m_design.ascent < 0)
    {
        m_design.ascent = m_design.unitsPerEm * 4 / 5;
        m_design.descent = m_design.unitsPerEm - m_design.ascent;
    }
}

void GlyphSource::setStyle(const Style &style)
{
    m_style = style;
    m_boldExtra =
        style.bold && !m_faceBold ? std::max(1, (style.pixelsPerEm + boldPixelsPerEm / 2) / boldPixelsPerEm) : 0;
    m_inkExtra = style.bold && m_lacksInk ? std::max(1, (style.pixelsPerEm * missingInk + 500) / 1000) : 0;
    m_slanted = style.italic && !m_faceItalic;
    FT_Set_Pixel_Sizes(m_face, 0, static_cast<FT_UInt>(style.pixelsPerEm));
}

unsigned GlyphSource::glyphOf(char32_t character) const
{
    const unsigned glyph = FT_Get_Char_Index(m_face, character);
    // Faces of symbols have their pictures in a private range above the letters that stand for them.
    return glyph == 0 && m_symbols && character < 0x100 ? FT_Get_Char_Index(m_face, 0xF000U + character) : glyph;
}

unsigned GlyphSource::glyphOf(char32_t character, char32_t variation) const
{
    return FT_Face_GetCharVariantIndex(m_face, character, variation);
}

bool GlyphSource::loadOutline(unsigned glyph, FT_Int32 target)
{
    // What the face brings as ready bitmaps can be neither slanted nor made heavier evenly.
    const bool restyled = m_boldExtra != 0 || m_inkExtra != 0 || m_slanted;
    const FT_Int32 flags = target | (restyled ? FT_LOAD_NO_BITMAP : 0);
    return FT_Load_Glyph(m_face, glyph, flags) == 0;
}

int GlyphSource::advance(unsigned glyph)
{
    if (m_advances.empty())
    {
        m_advances.assign(static_cast<std::size_t>(std::clamp<FT_Long>(m_face->num_glyphs, 1, 0x10000)), -1);
    }
    if (glyph >= m_advances.size())
    {
        return 0;
    }
    if (m_advances[glyph] < 0)
    {
        m_advances[glyph] = static_cast<std::int16_t>(std::min(measureAdvance(glyph), 0x7FFF));
    }
    return m_advances[glyph];
}

int GlyphSource::measureAdvance(unsigned glyph)
{
    // Stripes keep the widths of grey, so that switching them on moves no text.
    const FT_Int32 target =
        m_style.smoothing == Smoothing::None ? targetOf(Smoothing::None) : targetOf(Smoothing::Grey);
    if (!loadOutline(glyph, target))
    {
        return 0;
    }
    const int width = roundedPixels(m_face->glyph->advance.x);
    return width > 0 ? std::min(width + m_boldExtra, farthestEms * m_style.pixelsPerEm) : 0;
}

void GlyphSource::restyleOutline()
{
    FT_Outline &outline = m_face->glyph->outline;
    if (m_boldExtra != 0)
    {
        FT_Outline_EmboldenXY(&outline, static_cast<FT_Pos>(m_boldExtra) * 64, 0);
    }
    if (m_inkExtra != 0)
    {
        // Widened to the right, and moved back by whole pixels so that hinted edges stay sharp.
        FT_Outline_EmboldenXY(&outline, static_cast<FT_Pos>(m_inkExtra) * 64, 0);
        FT_Outline_Translate(&outline, -static_cast<FT_Pos>(m_inkExtra / 2) * 64, 0);
    }
    if (m_slanted)
    {
        FT_Matrix matrix{0x10000, lean, 0, 0x10000};
        FT_Outline_Transform(&outline, &matrix);
    }
}

bool GlyphSource::isTooLarge() const
{
    FT_BBox box{};
    FT_Outline_Get_CBox(&m_face->glyph->outline, &box);
    const FT_Pos far = static_cast<FT_Pos>(farthestEms) * 64 * m_style.pixelsPerEm;
    return box.xMin < -far || box.yMin < -far || box.xMax > far || box.yMax > far;
}

GlyphPicture GlyphSource::render(unsigned glyph)
{
    GlyphPicture picture;
    if (!loadOutline(glyph, targetOf(m_style.smoothing)))
    {
        return picture;
    }
    FT_GlyphSlot slot = m_face->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE)
    {
        restyleOutline();
        const FT_Render_Mode mode = m_style.smoothing == Smoothing::None      ? FT_RENDER_MODE_MONO
                                    : m_style.smoothing == Smoothing::Stripes ? FT_RENDER_MODE_LCD
                                                                              : FT_RENDER_MODE_NORMAL;
        if (isTooLarge() || FT_Render_Glyph(slot, mode) != 0)
        {
            return picture;
        }
    }
    const FT_Bitmap &bitmap = slot->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_MONO && bitmap.pixel_mode != FT_PIXEL_MODE_GRAY &&
        bitmap.pixel_mode != FT_PIXEL_MODE_LCD)
    {
        return picture;
    }
    copyRows(bitmap, picture.coverage);
    const int perPixel = m_style.smoothing == Smoothing::Stripes ? 3 : 1;
    picture.box = {slot->bitmap_left, slot->bitmap_top, static_cast<int>(bitmap.width) / perPixel,
                   static_cast<int>(bitmap.rows)};
    return picture;
}
} // namespace zb::internal
