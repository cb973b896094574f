#include "support/PangoCell.h"

#include <pango/pangocairo.h>

namespace zb::bench
{
struct PangoCell::State
{
    cairo_surface_t *surface = nullptr;
    cairo_t *context = nullptr;
    PangoFontDescription *font = nullptr;
    int width = 0;
};

PangoCell::PangoCell(int width, int height, const std::string &family, int pixelsPerEm)
    : m_state(std::make_unique<State>())
{
    m_state->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    m_state->context = cairo_create(m_state->surface);
    m_state->font = pango_font_description_from_string(family.c_str());
    pango_font_description_set_absolute_size(m_state->font, pixelsPerEm * PANGO_SCALE);
    m_state->width = width;
}

PangoCell::~PangoCell()
{
    pango_font_description_free(m_state->font);
    cairo_destroy(m_state->context);
    cairo_surface_destroy(m_state->surface);
}

int PangoCell::cell(const std::string &text)
{
    PangoLayout *layout = pango_cairo_create_layout(m_state->context);
    pango_layout_set_font_description(layout, m_state->font);
    pango_layout_set_width(layout, m_state->width * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    cairo_move_to(m_state->context, 0, 0);
    pango_cairo_show_layout(m_state->context, layout);
    g_object_unref(layout);
    return height;
}
} // namespace zb::bench
