// What the handles of pens, brushes and bitmaps stand for, and the base of all drawing objects. Fonts: font_object.h.
//
// Threads: pens, brushes and fonts never change, so any number of threads may use one at a time; a bitmap's pixels
// belong to the thread that draws on the context it is in.
#pragma once

#include "platform/gdi.h"
#include "platform/linux/handles.h"
#include "platform/linux/surface.h"

#include <atomic>
#include <memory>

namespace zb::internal
{
class DeviceContext;

/// Knows its own handle, which SelectObject gives back.
class GdiObject : public HandleObject
{
  public:
    using HandleObject::HandleObject;

    HGDIOBJ handle() const
    {
        return m_handle;
    }
    /// The system's own: DeleteObject leaves it.
    bool isStock() const
    {
        return m_stock;
    }
    /// Before anybody else knows the object.
    void setHandle(HGDIOBJ handle, bool stock)
    {
        m_handle = handle;
        m_stock = stock;
    }

  private:
    HGDIOBJ m_handle = nullptr;
    bool m_stock = false;
};

class PenObject final : public GdiObject
{
  public:
    PenObject(UINT style, int width, COLORREF color);
    LOGPEN description() const;
    bool isNull() const
    {
        return m_style == static_cast<UINT>(PS_NULL);
    }
    bool isDashed() const
    {
        return m_style == static_cast<UINT>(PS_DASH);
    }
    /// At least 1.
    int width() const
    {
        return m_width;
    }
    std::uint32_t pixel() const
    {
        return m_pixel;
    }

  private:
    UINT m_style;
    int m_width;
    std::uint32_t m_pixel;
};

class BrushObject final : public GdiObject
{
  public:
    BrushObject(UINT style, COLORREF color);
    LOGBRUSH description() const;
    bool isNull() const
    {
        return m_style == BS_NULL;
    }
    std::uint32_t pixel() const
    {
        return m_pixel;
    }

  private:
    UINT m_style;
    std::uint32_t m_pixel;
};

class BitmapObject final : public GdiObject
{
  public:
    explicit BitmapObject(std::shared_ptr<Surface> surface);
    BITMAP description() const;
    const std::shared_ptr<Surface> &surface() const
    {
        return m_surface;
    }
    /// Claims the bitmap for a context; false while another has it. The stock bitmap is free for all.
    bool enter(DeviceContext &context);
    void leave(DeviceContext &context);

  private:
    std::shared_ptr<Surface> m_surface;
    std::atomic<DeviceContext *> m_context{nullptr};
};

/// The colour itself in place of the index of a system colour; without its top byte.
COLORREF plainColor(COLORREF color);

/// Puts the object into the table and tells it its handle; null with last error 8 when the table is full.
HGDIOBJ insertObject(const std::shared_ptr<GdiObject> &object, bool stock = false);
/// Null with last error 6.
std::shared_ptr<BitmapObject> bitmapOf(HBITMAP bitmap);
std::shared_ptr<BrushObject> brushOf(HBRUSH brush);
/// What a new context has selected; made once and kept.
const std::shared_ptr<PenObject> &stockPen();
const std::shared_ptr<BrushObject> &stockBrush();
const std::shared_ptr<BitmapObject> &stockBitmap();
} // namespace zb::internal
