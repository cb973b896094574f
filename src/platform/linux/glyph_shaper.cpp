// What shaping asks of a face: glyphs and advances are those that are drawn, everything else is the file's own.
#include "platform/linux/glyph_source.h"

#include <hb-ot.h>

namespace zb::internal
{
namespace
{
constexpr int unitsPerPixel = 64;

const GlyphSource &sourceOf(void *data)
{
    return *static_cast<const GlyphSource *>(data);
}

hb_bool_t nominalGlyph(hb_font_t *, void *data, hb_codepoint_t character, hb_codepoint_t *glyph, void *)
{
    *glyph = sourceOf(data).glyphOf(character);
    return *glyph != 0 ? 1 : 0;
}

hb_bool_t variationGlyph(hb_font_t *, void *data, hb_codepoint_t character, hb_codepoint_t variation,
                         hb_codepoint_t *glyph, void *)
{
    *glyph = sourceOf(data).glyphOf(character, variation);
    return *glyph != 0 ? 1 : 0;
}

hb_position_t advanceOf(hb_font_t *, void *data, hb_codepoint_t glyph, void *)
{
    return static_cast<GlyphSource *>(data)->advance(glyph) * unitsPerPixel;
}

hb_font_funcs_t *makeFunctions()
{
    hb_font_funcs_t *functions = hb_font_funcs_create();
    hb_font_funcs_set_nominal_glyph_func(functions, nominalGlyph, nullptr, nullptr);
    hb_font_funcs_set_variation_glyph_func(functions, variationGlyph, nullptr, nullptr);
    hb_font_funcs_set_glyph_h_advance_func(functions, advanceOf, nullptr, nullptr);
    hb_font_funcs_make_immutable(functions);
    return functions;
}
} // namespace

hb_font_t *GlyphSource::shaper()
{
    if (m_shaper == nullptr)
    {
        static hb_font_funcs_t *const functions = makeFunctions();
        hb_blob_t *blob = hb_blob_create_from_file(m_path.c_str());
        hb_face_t *face = hb_face_create(blob, static_cast<unsigned>(m_index) & 0xFFFFU);
        hb_font_t *whole = hb_font_create(face);
        const int scale = m_style.pixelsPerEm * unitsPerPixel;
        hb_font_set_scale(whole, scale, scale);
        hb_font_set_ppem(whole, static_cast<unsigned>(m_style.pixelsPerEm), static_cast<unsigned>(m_style.pixelsPerEm));
        hb_ot_font_set_funcs(whole);
        m_shaper = hb_font_create_sub_font(whole);
        hb_font_set_funcs(m_shaper, functions, this, nullptr);
        hb_font_destroy(whole);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }
    return m_shaper;
}
} // namespace zb::internal
