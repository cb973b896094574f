// A device context: a surface, where on it the context lies, what of it shows, and what is selected.
//
// Coordinates that callers give count from the context's origin; the surface's own are those plus origin(). visible()
// is in the surface's own.
//
// Threads: one at a time, as gdi.h says.
#pragma once

#include "platform/linux/font_object.h"
#include "platform/linux/gdi_objects.h"
#include "platform/linux/region.h"
#include "platform/linux/surface.h"

#include <memory>
#include <optional>
#include <vector>

namespace zb::internal
{
class DeviceContext final : public HandleObject
{
  public:
    enum class Kind
    {
        Memory, ///< draws on the selected bitmap
        Screen, ///< draws on the screen, or on a window's part of it
    };

    /// A context in memory, on a black and white surface of 1 by 1.
    DeviceContext();
    /// A context of the screen that may draw on `system` of it and counts from `origin`.
    DeviceContext(std::shared_ptr<Surface> surface, POINT origin, Region system);
    ~DeviceContext() override;

    bool isMemory() const
    {
        return m_kind == Kind::Memory;
    }
    /// For reading and drawing: from here on the context counts as one that may have drawn.
    Surface &surface() const
    {
        m_touched = true;
        return *m_surface;
    }
    /// Whether surface() was asked for.
    bool isTouched() const
    {
        return m_touched;
    }
    /// What of the surface the context may draw on, its clip aside.
    const Region &system() const
    {
        return m_system;
    }
    POINT origin() const
    {
        return m_origin;
    }
    /// What can be drawn on, in the surface's coordinates.
    const Region &visible() const
    {
        return m_visible;
    }

    /// All that SaveDC keeps. The colours are plain ones.
    struct State
    {
        std::shared_ptr<FontObject> font;
        std::shared_ptr<BitmapObject> bitmap;
        std::shared_ptr<PenObject> pen;
        std::shared_ptr<BrushObject> brush;
        COLORREF textColor = 0x000000;
        COLORREF backColor = 0xFFFFFF;
        int backMode = OPAQUE;
        UINT textAlign = TA_LEFT | TA_TOP;
        POINT position{0, 0};
        /// What the caller has clipped to, in the context's coordinates; none: everything.
        std::optional<Region> clip;
    };
    const State &state() const
    {
        return m_state;
    }
    /// For all but bitmap and clip, which have calls of their own.
    State &changeable()
    {
        return m_state;
    }

    /// False when it can't be selected here.
    bool selectBitmap(std::shared_ptr<BitmapObject> bitmap);
    /// When the context's handle ends: others may select its bitmap from now on, whoever still holds the context.
    void releaseBitmap()
    {
        m_state.bitmap->leave(*this);
    }
    void intersectClip(const Region &region);
    void excludeClip(const Region &region);

    /// The number of states kept, the new one included.
    int save();
    /// False when there is no such state.
    bool restore(int saved);

  private:
    void refreshVisible();
    Region &ownClip();

    Kind m_kind;
    mutable bool m_touched = false;
    std::shared_ptr<Surface> m_surface;
    std::shared_ptr<Surface> m_own; ///< a memory context's surface while the stock bitmap is selected
    POINT m_origin{0, 0};
    Region m_system;
    Region m_visible;
    State m_state;
    std::vector<State> m_saved;
};

/// Null with last error 6.
std::shared_ptr<DeviceContext> contextOf(HDC context);
/// The screen of the open device (or of the defaults while none is open): one surface for all its contexts. Null
/// without memory for it.
std::shared_ptr<Surface> screenSurface();
} // namespace zb::internal
