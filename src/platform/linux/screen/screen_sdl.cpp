// libZBScreen: the screen's window by SDL, on a thread of its own.
//
// On the X Window System the window's picture is a plain surface that the desktop takes over as it is: no graphics card
// has to be woken for a few rows of text, which would cost more than the whole start of the program.
#include "platform/linux/screen/screen_sdl.h"

#include "platform/linux/session_bus.h"
#include "platform/user.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace zb::internal
{
namespace
{
constexpr int smallestSide = 160;
constexpr Uint32 ground = 0xFF3C4A5C; // what no pixel of the screen covers yet while the window grows
constexpr int plainDensity = 96;

void setHints()
{
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // Ctrl+C in the terminal ends the program
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_APP_NAME, "Zembrik");
}
} // namespace

SdlScreen::SdlScreen(ScreenPlatform &platform, ScreenRequest request)
    : m_platform(platform), m_request(std::move(request)), m_thread([this] { run(); })
{
}

SdlScreen::~SdlScreen()
{
    m_ends.store(true);
    wake();
    m_thread.join();
}

std::string SdlScreen::awaitStart()
{
    return m_started.get_future().get();
}

void SdlScreen::wake()
{
    const std::lock_guard guard(m_waking);
    if (m_wakeEvent != 0)
    {
        SDL_Event event{};
        event.type = m_wakeEvent;
        SDL_PushEvent(&event);
    }
}

void SdlScreen::run()
{
    SDL_SetMainReady();
    setHints();
    const std::string fault = open();
    const bool isOpen = fault.empty();
    m_started.set_value(fault);
    if (isOpen)
    {
        loop();
        const std::lock_guard guard(m_waking);
        m_wakeEvent = 0;
    }
    m_canvas.reset();
    SDL_DestroyWindow(m_window);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_ClearHints();
    SDL_TLSCleanup(); // what SDL keeps for this thread
}

std::string SdlScreen::open()
{
    passOverWindowErrors();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
    {
        return SDL_GetError();
    }
    // Where there is no desktop SDL takes what shows nothing to anybody, unless that was asked for by name.
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    if ((driver == "offscreen" || driver == "dummy") && std::getenv("SDL_VIDEODRIVER") == nullptr)
    {
        return "neither DISPLAY nor WAYLAND_DISPLAY leads to one";
    }
    if (driver == "x11")
    {
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    }
    SDL_StopTextInput();
    m_window = SDL_CreateWindow(m_request.title.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, m_request.width,
                                m_request.height, SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (m_window == nullptr)
    {
        return SDL_GetError();
    }
    SDL_SetWindowMinimumSize(m_window, smallestSide, smallestSide);
    measure();
    const auto units = [this](int pixels) { return static_cast<int>(std::lround(pixels * m_zoom / m_density)); };
    if (units(m_request.width) != m_request.width)
    {
        SDL_SetWindowSize(m_window, units(m_request.width), units(m_request.height));
    }
    m_canvas.emplace(*m_window);
    if (m_canvas->surface() == nullptr)
    {
        return SDL_GetError();
    }
    const std::lock_guard guard(m_waking);
    m_wakeEvent = SDL_RegisterEvents(1);
    return {};
}

/// A screen that is drawn for plain density shows enlarged, by whole pixels, where the desktop's are finer.
void SdlScreen::measure()
{
    int units = 0;
    int pixels = 0;
    SDL_GetWindowSize(m_window, &units, nullptr);
    SDL_GetWindowSizeInPixels(m_window, &pixels, nullptr);
    m_density = units > 0 && pixels > 0 ? static_cast<double>(pixels) / units : 1.0;
    m_zoom = std::max(static_cast<int>(std::lround(m_density * plainDensity / m_request.dotsPerInch)), 1);
}

void SdlScreen::loop()
{
    followWishes(); // those from before there was anything to wake
    SDL_Event event{};
    while (!m_ends.load() && SDL_WaitEvent(&event) != 0)
    {
        take(event);
    }
}

void SdlScreen::take(const SDL_Event &event)
{
    switch (event.type)
    {
    case SDL_WINDOWEVENT:
        return takeWindow(event.window);
    case SDL_MOUSEBUTTONDOWN:
        return event.button.button == SDL_BUTTON_LEFT ? pen(PenAction::Down, event.button.x, event.button.y) : void();
    case SDL_MOUSEBUTTONUP:
        return event.button.button == SDL_BUTTON_LEFT ? pen(PenAction::Up, event.button.x, event.button.y) : void();
    case SDL_MOUSEMOTION:
        // A pen is only felt where it touches.
        return m_penDown ? pen(PenAction::Move, event.motion.x, event.motion.y) : void();
    case SDL_MOUSEWHEEL:
        return takeWheel(event.wheel);
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        return takeKey(event.key);
    case SDL_TEXTINPUT:
        return m_platform.text(event.text.text);
    case SDL_QUIT:
        return m_platform.closed();
    default:
        // The only kind of event that was registered.
        if (event.type >= SDL_USEREVENT)
        {
            followWishes();
            present(false);
        }
    }
}

void SdlScreen::takeWindow(const SDL_WindowEvent &event)
{
    switch (event.event)
    {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
    {
        measure();
        int width = 0;
        int height = 0;
        SDL_GetWindowSizeInPixels(m_window, &width, &height);
        m_platform.resized(std::max(width / m_zoom, 1), std::max(height / m_zoom, 1));
        present(true);
        break;
    }
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_EXPOSED:
        present(true);
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        releaseAll();
        break;
    default:
        break;
    }
}

void SdlScreen::pen(PenAction action, int x, int y)
{
    m_penDown = action == PenAction::Down || (action == PenAction::Move && m_penDown);
    const auto pixels = [this](int units) { return static_cast<int>(std::floor(units * m_density / m_zoom)); };
    m_platform.pen(action, pixels(x), pixels(y));
}

void SdlScreen::takeWheel(const SDL_MouseWheelEvent &event)
{
    const int steps = event.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.y : event.y;
    if (steps != 0)
    {
        m_platform.wheel(steps, static_cast<int>(event.mouseX * m_density / m_zoom),
                         static_cast<int>(event.mouseY * m_density / m_zoom));
    }
}

void SdlScreen::takeKey(const SDL_KeyboardEvent &event)
{
    const int number = keyNumber(event.keysym);
    const bool down = event.state == SDL_PRESSED;
    const char16_t character = down ? keyCharacter(event.keysym, SDL_IsTextInputActive() == SDL_TRUE) : u'\0';
    if (number == 0 && character == 0)
    {
        return;
    }
    std::erase(m_keysDown, number);
    if (down)
    {
        m_keysDown.push_back(number);
    }
    m_platform.key(number, down, character);
}

/// Where keys go up nobody tells us any more.
void SdlScreen::releaseAll()
{
    for (const int key : m_keysDown)
    {
        m_platform.key(key, false, 0);
    }
    m_keysDown.clear();
    if (m_penDown)
    {
        int x = 0;
        int y = 0;
        SDL_GetMouseState(&x, &y);
        pen(PenAction::Up, x, y);
    }
}

void SdlScreen::followWishes()
{
    const ScreenWishes wishes = m_platform.takeWishes();
    if (wishes.title != m_request.title)
    {
        m_request.title = wishes.title;
        SDL_SetWindowTitle(m_window, m_request.title.c_str());
    }
    if (wishes.icon.has_value())
    {
        takeIcon(*wishes.icon);
    }
    if (wishes.width > 0)
    {
        SDL_SetWindowSize(m_window, static_cast<int>(std::lround(wishes.width * m_zoom / m_density)),
                          static_cast<int>(std::lround(wishes.height * m_zoom / m_density)));
    }
    followEditing(wishes);
    if (wishes.clipboard.has_value())
    {
        SDL_SetClipboardText(wishes.clipboard->c_str());
    }
    if (wishes.asksForClipboard)
    {
        char *text = SDL_HasClipboardText() == SDL_TRUE ? SDL_GetClipboardText() : nullptr;
        m_platform.clipboard(text == nullptr ? std::nullopt : std::optional<std::string>(text));
        SDL_free(text);
    }
    if (wishes.shown && !m_shown)
    {
        m_shown = true;
        SDL_ShowWindow(m_window);
    }
}

void SdlScreen::takeIcon(ScreenIcon icon)
{
    SDL_Surface *const surface = SDL_CreateRGBSurfaceWithFormatFrom(icon.pixels.data(), icon.width, icon.height, 32,
                                                                    icon.width * 4, SDL_PIXELFORMAT_ARGB8888);
    SDL_SetWindowIcon(m_window, surface);
    SDL_FreeSurface(surface);
}

void SdlScreen::followEditing(const ScreenWishes &wishes)
{
    if (wishes.editing)
    {
        const double factor = m_zoom / m_density;
        const SDL_Rect place{static_cast<int>(wishes.editLeft * factor), static_cast<int>(wishes.editTop * factor),
                             static_cast<int>(wishes.editWidth * factor), static_cast<int>(wishes.editHeight * factor)};
        SDL_SetTextInputRect(&place);
    }
    const bool active = SDL_IsTextInputActive() == SDL_TRUE;
    if (wishes.editing && !active)
    {
        SDL_StartTextInput();
    }
    else if (!wishes.editing && active)
    {
        SDL_StopTextInput();
    }
}

void SdlScreen::present(bool all)
{
    if (!m_shown)
    {
        return;
    }
    SDL_Rect changed{0, 0, 0, 0};
    m_platform.lend(all,
                    [&](const ScreenPixels &pixels)
                    {
                        SDL_Surface *const surface = m_canvas->surface();
                        if (surface == nullptr)
                        {
                            return;
                        }
                        if (all)
                        {
                            SDL_FillRect(surface, nullptr, SDL_MapRGB(surface->format, ground >> 16U & 0xFFU, ground >> 8U & 0xFFU, ground & 0xFFU));
                        }
                        draw(*surface, pixels);
                        const SDL_Rect part{pixels.left * m_zoom, pixels.top * m_zoom, (pixels.right - pixels.left) * m_zoom,
                                            (pixels.bottom - pixels.top) * m_zoom};
                        const SDL_Rect whole{0, 0, surface->w, surface->h};
                        SDL_IntersectRect(&part, &whole, &changed);
                        changed = all ? whole : changed;
                    });
    if (changed.w > 0 && changed.h > 0)
    {
        m_canvas->show(changed);
    }
}

void SdlScreen::draw(SDL_Surface &surface, const ScreenPixels &pixels)
{
    const int right = std::min(pixels.right, surface.w / m_zoom);
    const int bottom = std::min(pixels.bottom, surface.h / m_zoom);
    const int columns = (right - pixels.left) * m_zoom;
    if (columns <= 0)
    {
        return;
    }
    m_line.resize(static_cast<std::size_t>(columns));
    for (int y = pixels.top; y < bottom; ++y)
    {
        const std::uint32_t *from = pixels.pixels + static_cast<std::ptrdiff_t>(y) * pixels.width + pixels.left;
        for (int x = 0; x < columns; ++x)
        {
            m_line[static_cast<std::size_t>(x)] = from[x / m_zoom];
        }
        for (int line = 0; line < m_zoom; ++line)
        {
            auto *to = static_cast<Uint8 *>(surface.pixels) + static_cast<std::ptrdiff_t>(y * m_zoom + line) * surface.pitch +
                       static_cast<std::ptrdiff_t>(pixels.left * m_zoom) * surface.format->BytesPerPixel;
            SDL_ConvertPixels(columns, 1, SDL_PIXELFORMAT_RGB888, m_line.data(), columns * 4, surface.format->format, to,
                              surface.pitch);
        }
    }
}
} // namespace zb::internal

extern "C" __attribute__((visibility("default"))) zb::internal::ScreenBackend *
zbOpenScreen(zb::internal::ScreenPlatform &platform, const zb::internal::ScreenRequest &request);

zb::internal::ScreenBackend *zbOpenScreen(zb::internal::ScreenPlatform &platform,
                                          const zb::internal::ScreenRequest &request)
{
    if (!zb::internal::hasSessionBus())
    {
        // SDL asks the bus about the desktop's looks, and a screen needs none of that.
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    }
    return new zb::internal::SdlScreen(platform, request);
}
