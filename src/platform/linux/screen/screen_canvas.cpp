#include "platform/linux/screen/screen_canvas.h"

#include <string_view>

namespace zb::internal
{
namespace
{
constexpr Uint32 format = SDL_PIXELFORMAT_ARGB8888;
}

ScreenCanvas::ScreenCanvas(SDL_Window &window)
    : m_window(window), m_isDirect(std::string_view(SDL_GetCurrentVideoDriver()) == "x11")
{
    if (!m_isDirect)
    {
        m_renderer.reset(SDL_CreateRenderer(&window, -1, 0));
    }
}

SDL_Surface *ScreenCanvas::surface()
{
    if (m_isDirect)
    {
        return SDL_GetWindowSurface(&m_window);
    }
    int width = 0;
    int height = 0;
    if (m_renderer == nullptr || SDL_GetRendererOutputSize(m_renderer.get(), &width, &height) != 0)
    {
        return nullptr;
    }
    const bool fits = m_surface != nullptr && m_surface->w == width && m_surface->h == height;
    return fits || fitTexture(width, height) ? m_surface.get() : nullptr;
}

bool ScreenCanvas::fitTexture(int width, int height)
{
    m_surface.reset(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, format));
    m_texture.reset(SDL_CreateTexture(m_renderer.get(), format, SDL_TEXTUREACCESS_STREAMING, width, height));
    return m_surface != nullptr && m_texture != nullptr;
}

void ScreenCanvas::show(const SDL_Rect &part)
{
    if (m_isDirect)
    {
        SDL_UpdateWindowSurfaceRects(&m_window, &part, 1);
        return;
    }
    const auto *pixels = static_cast<const Uint8 *>(m_surface->pixels) +
                         static_cast<std::ptrdiff_t>(part.y) * m_surface->pitch + static_cast<std::ptrdiff_t>(part.x) * 4;
    SDL_UpdateTexture(m_texture.get(), &part, pixels, m_surface->pitch);
    SDL_RenderCopy(m_renderer.get(), m_texture.get(), nullptr, nullptr);
    SDL_RenderPresent(m_renderer.get());
}
} // namespace zb::internal
