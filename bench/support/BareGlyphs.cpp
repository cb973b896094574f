#include "support/BareGlyphs.h"

#include <algorithm>
#include <array>
#include <ft2build.h>
#include <hb-ft.h>
#include <hb.h>
#include <stdexcept>
#include <unordered_map>
#include FT_FREETYPE_H

namespace zb::bench
{
namespace
{
struct Glyph
{
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int advance = 0;
    std::vector<std::uint8_t> coverage;
};

void blend(Canvas &canvas, const Glyph &glyph, int x, int baseline)
{
    const int left = std::max(0, x + glyph.left);
    const int right = std::min(canvas.width, x + glyph.left + glyph.width);
    const int top = std::max(0, baseline - glyph.top);
    const int bottom = std::min(canvas.height, baseline - glyph.top + glyph.height);
    for (int y = top; y < bottom; ++y)
    {
        const std::uint8_t *from = glyph.coverage.data() + (y - baseline + glyph.top) * glyph.width - x - glyph.left;
        std::uint32_t *to = canvas.pixels.data() + static_cast<std::ptrdiff_t>(y) * canvas.width;
        for (int column = left; column < right; ++column)
        {
            if (const std::uint32_t covered = from[column]; covered != 0)
            {
                const std::uint32_t rest = 256 - (covered + (covered >> 7U));
                const std::uint32_t under = to[column];
                to[column] =
                    ((under & 0xFF00FFU) * rest >> 8U & 0xFF00FFU) | ((under & 0xFF00U) * rest >> 8U & 0xFF00U);
            }
        }
    }
}
} // namespace

struct BareGlyphs::State
{
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    hb_font_t *font = nullptr;
    hb_buffer_t *buffer = hb_buffer_create();
    int ascent = 0;
    int lineHeight = 0;
    std::array<const Glyph *, 256> letters{};
    std::unordered_map<unsigned, Glyph> glyphs;

    const Glyph &glyph(unsigned index)
    {
        const auto found = glyphs.find(index);
        if (found != glyphs.end())
        {
            return found->second;
        }
        FT_Load_Glyph(face, index, FT_LOAD_TARGET_NORMAL | FT_LOAD_NO_BITMAP);
        Glyph made;
        made.advance = static_cast<int>((face->glyph->advance.x + 32) >> 6);
        FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
        const FT_Bitmap &bitmap = face->glyph->bitmap;
        made.left = face->glyph->bitmap_left;
        made.top = face->glyph->bitmap_top;
        made.width = static_cast<int>(bitmap.width);
        made.height = static_cast<int>(bitmap.rows);
        for (unsigned y = 0; y < bitmap.rows; ++y)
        {
            const unsigned char *row = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
            made.coverage.insert(made.coverage.end(), row, row + bitmap.width);
        }
        return glyphs.emplace(index, std::move(made)).first->second;
    }
    const Glyph &letter(char16_t character)
    {
        const Glyph *&known = letters[character & 0xFFU];
        if (known == nullptr)
        {
            known = &glyph(FT_Get_Char_Index(face, character));
        }
        return *known;
    }
};

BareGlyphs::BareGlyphs(const std::filesystem::path &file, int pixelsPerEm) : m_state(std::make_unique<State>())
{
    State &state = *m_state;
    if (FT_Init_FreeType(&state.library) != 0 || FT_New_Face(state.library, file.c_str(), 0, &state.face) != 0)
    {
        throw std::runtime_error("can't read " + file.string());
    }
    FT_Set_Pixel_Sizes(state.face, 0, static_cast<FT_UInt>(pixelsPerEm));
    state.ascent = static_cast<int>(state.face->size->metrics.ascender >> 6);
    state.lineHeight = static_cast<int>(state.face->size->metrics.height >> 6);
    state.font = hb_ft_font_create_referenced(state.face);
}

BareGlyphs::~BareGlyphs()
{
    hb_font_destroy(m_state->font);
    hb_buffer_destroy(m_state->buffer);
    FT_Done_Face(m_state->face);
    FT_Done_FreeType(m_state->library);
}

void BareGlyphs::cell(Canvas &canvas, std::u16string_view text)
{
    State &state = *m_state;
    int width = 0;
    std::size_t end = text.size();
    std::size_t blank = 0;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        width += state.letter(text[at]).advance;
        blank = text[at] == u' ' ? at + 1 : blank;
        if (width > canvas.width)
        {
            end = blank != 0 ? blank : at;
            break;
        }
    }
    int x = 0;
    int baseline = state.ascent;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        if (at == end)
        {
            x = 0;
            baseline += state.lineHeight;
        }
        const Glyph &glyph = state.letter(text[at]);
        blend(canvas, glyph, x, baseline);
        x += glyph.advance;
    }
}

void BareGlyphs::shapedCell(Canvas &canvas, std::u16string_view text)
{
    State &state = *m_state;
    hb_buffer_clear_contents(state.buffer);
    hb_buffer_add_utf16(state.buffer, reinterpret_cast<const std::uint16_t *>(text.data()),
                        static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
    hb_buffer_set_direction(state.buffer, HB_DIRECTION_RTL);
    hb_buffer_set_script(state.buffer, HB_SCRIPT_ARABIC);
    hb_shape(state.font, state.buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(state.buffer, &count);
    const hb_glyph_position_t *places = hb_buffer_get_glyph_positions(state.buffer, &count);
    // In the order of reading, which is from the last glyph to the first.
    int width = 0;
    unsigned end = 0;
    unsigned blank = 0;
    for (unsigned n = count; n-- > 0;)
    {
        width += (places[n].x_advance + 32) >> 6;
        blank = text[infos[n].cluster] == u' ' ? n : blank;
        if (width > canvas.width)
        {
            end = blank;
            break;
        }
    }
    int baseline = state.ascent;
    const auto draw = [&](unsigned first, unsigned last)
    {
        int x = 0;
        for (unsigned n = first; n < last; ++n)
        {
            blend(canvas, state.glyph(infos[n].codepoint), x + ((places[n].x_offset + 32) >> 6),
                  baseline - ((places[n].y_offset + 32) >> 6));
            x += (places[n].x_advance + 32) >> 6;
        }
        baseline += state.lineHeight;
    };
    draw(end, count);
    draw(0, end);
}
} // namespace zb::bench
