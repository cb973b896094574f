// What is drawn on to fill the window, and how it gets there.
#pragma once

#include <SDL2/SDL.h>

#include <memory>

namespace zb::internal
{
/// The window's pixels. On the X Window System the desktop takes them over as they are; elsewhere they go through a texture,
/// which alone has all pixels of a desktop whose units are larger. To be used on the window's thread, and to end before
/// the window.
class ScreenCanvas
{
  public:
    /// Asks SDL for what it needs; surface() tells whether it was there.
    explicit ScreenCanvas(SDL_Window &window);

    /// As large as the window is now, with what it had lost after a change of size; null with SDL_GetError(). Valid until
    /// the next call.
    SDL_Surface *surface();
    /// Brings this part of the surface to the window.
    void show(const SDL_Rect &part);

  private:
    bool fitTexture(int width, int height);

    struct Free
    {
        void operator()(SDL_Renderer *renderer) const
        {
            SDL_DestroyRenderer(renderer);
        }
        void operator()(SDL_Texture *texture) const
        {
            SDL_DestroyTexture(texture);
        }
        void operator()(SDL_Surface *surface) const
        {
            SDL_FreeSurface(surface);
        }
    };

    SDL_Window &m_window;
    bool m_isDirect;
    std::unique_ptr<SDL_Renderer, Free> m_renderer;
    std::unique_ptr<SDL_Texture, Free> m_texture;
    std::unique_ptr<SDL_Surface, Free> m_surface;
};
} // namespace zb::internal
