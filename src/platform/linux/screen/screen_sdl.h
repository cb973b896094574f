// The screen's window by SDL.
#pragma once

#include "platform/linux/screen/screen_canvas.h"
#include "platform/linux/screen_backend.h"

#include <atomic>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace zb::internal
{
class SdlScreen final : public ScreenBackend
{
  public:
    SdlScreen(ScreenPlatform &platform, ScreenRequest request);
    ~SdlScreen() override;

    std::string awaitStart() override;
    void wake() override;

  private:
    // All below on the window's thread.
    void run();
    std::string open();
    void loop();
    void take(const SDL_Event &event);
    void takeWindow(const SDL_WindowEvent &event);
    void takeKey(const SDL_KeyboardEvent &event);
    void takeWheel(const SDL_MouseWheelEvent &event);
    void followWishes();
    void takeIcon(ScreenIcon icon);
    void followEditing(const ScreenWishes &wishes);
    void pen(PenAction action, int x, int y);
    void releaseAll();
    void measure();
    void present(bool all);
    void draw(SDL_Surface &surface, const ScreenPixels &pixels);

    ScreenPlatform &m_platform;
    ScreenRequest m_request;
    std::promise<std::string> m_started;
    std::mutex m_waking;
    Uint32 m_wakeEvent = 0; ///< 0 while there is no window to wake; under m_waking
    std::atomic<bool> m_ends{false};

    SDL_Window *m_window = nullptr;
    std::optional<ScreenCanvas> m_canvas;
    bool m_shown = false;
    bool m_penDown = false;
    int m_zoom = 1;         ///< pixels of the window for one of the screen, each way
    double m_density = 1.0; ///< pixels of the window for one of the desktop's units
    std::vector<int> m_keysDown;
    std::vector<Uint32> m_line;
    std::thread m_thread; ///< the last one: it uses all the others
};

/// Lets errors that the X server tells pass, which would otherwise end the program: they come behind the request that they
/// belong to, and the one to expect is about a window that is closed already. (To wake the thread SDL writes to the window
/// over a connection of its own, and that may come behind the window's end.) To be called before SDL starts, which goes
/// back to what it found before it closes its connections.
void passOverWindowErrors();
/// The VK_ number of a key; 0 for one that the screen does not know.
int keyNumber(const SDL_Keysym &key);
/// What the key types where no text is edited: a control character, or a plain one as on its cap; 0 for none.
char16_t keyCharacter(const SDL_Keysym &key, bool editing);
} // namespace zb::internal
