#include "platform/linux/device_context.h"

#include "platform/device.h"
#include "platform/linux/device_state.h"

#include <limits>
#include <mutex>

namespace zb::internal
{
namespace
{
DeviceContext::State firstState()
{
    DeviceContext::State state;
    state.font = stockFont();
    state.bitmap = stockBitmap();
    state.pen = stockPen();
    state.brush = stockBrush();
    return state;
}

struct Screen
{
    std::mutex lock;
    std::shared_ptr<Surface> surface;
    std::uint64_t generation = 0;
};

/// Never destroyed: threads that outlive main may still ask for it.
Screen &screen()
{
    static auto *instance = new Screen;
    return *instance;
}
} // namespace

DeviceContext::DeviceContext()
    : HandleObject(HandleKind::DeviceContext), m_kind(Kind::Memory),
      m_own(Surface::create(1, 1, Surface::Kind::Monochrome)), m_system(Box{0, 0, 1, 1}), m_state(firstState())
{
    m_surface = m_own;
    refreshVisible();
}

DeviceContext::DeviceContext(std::shared_ptr<Surface> surface, POINT origin, Region system)
    : HandleObject(HandleKind::DeviceContext), m_kind(Kind::Screen), m_surface(std::move(surface)), m_origin(origin),
      m_system(std::move(system)), m_state(firstState())
{
    refreshVisible();
}

DeviceContext::~DeviceContext()
{
    m_state.bitmap->leave(*this);
}

bool DeviceContext::selectBitmap(std::shared_ptr<BitmapObject> bitmap)
{
    if (!isMemory() || !bitmap->enter(*this))
    {
        return false;
    }
    if (bitmap != m_state.bitmap)
    {
        m_state.bitmap->leave(*this);
        m_surface = bitmap->isStock() ? m_own : bitmap->surface();
        m_state.bitmap = std::move(bitmap);
        m_system = Region(m_surface->bounds());
        refreshVisible();
    }
    return true;
}

void DeviceContext::refreshVisible()
{
    m_visible = m_system;
    if (m_state.clip.has_value())
    {
        Region clip = *m_state.clip;
        pixman_region32_translate(clip.get(), m_origin.x, m_origin.y);
        m_visible.intersect(clip);
    }
}

Region &DeviceContext::ownClip()
{
    if (!m_state.clip.has_value())
    {
        // As far as the library's regions reach with any origin on top.
        constexpr int far = std::numeric_limits<int>::max() / 4;
        m_state.clip.emplace(Box{-far, -far, far, far});
    }
    return *m_state.clip;
}

void DeviceContext::intersectClip(const Region &region)
{
    ownClip().intersect(region);
    refreshVisible();
}

void DeviceContext::excludeClip(const Region &region)
{
    ownClip().subtract(region);
    refreshVisible();
}

int DeviceContext::save()
{
    m_saved.push_back(m_state);
    return static_cast<int>(m_saved.size());
}

bool DeviceContext::restore(int saved)
{
    const int count = static_cast<int>(m_saved.size());
    const int wanted = saved == -1 ? count : saved;
    if (wanted < 1 || wanted > count)
    {
        return false;
    }
    State state = std::move(m_saved[static_cast<std::size_t>(wanted) - 1]);
    m_saved.resize(static_cast<std::size_t>(wanted) - 1);
    if (isMemory())
    {
        // A bitmap that another context took meanwhile stays there.
        selectBitmap(std::move(state.bitmap));
    }
    state.bitmap = m_state.bitmap;
    m_state = std::move(state);
    refreshVisible();
    return true;
}

std::shared_ptr<DeviceContext> contextOf(HDC context)
{
    return findAs<DeviceContext>(context, HandleKind::DeviceContext);
}

std::shared_ptr<Surface> screenSurface()
{
    const std::lock_guard guard(screen().lock);
    const std::uint64_t generation = deviceGeneration();
    const ScreenOptions options = currentScreen();
    const bool fits = screen().surface != nullptr && screen().surface->width() == options.width &&
                      screen().surface->height() == options.height;
    if (!fits || screen().generation != generation)
    {
        screen().surface = Surface::create(options.width, options.height, Surface::Kind::Color);
        screen().generation = generation;
    }
    return screen().surface;
}
} // namespace zb::internal
