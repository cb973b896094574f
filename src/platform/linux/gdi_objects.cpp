// Pens, brushes and bitmaps as objects; the stock of them that the system keeps.
#include "platform/linux/gdi_objects.h"

#include "platform/kernel.h"
#include "platform/linux/font_object.h"

#include <array>
#include <cstring>
#include <mutex>

namespace zb::internal
{
COLORREF plainColor(COLORREF color)
{
    constexpr COLORREF kind = 0xFF000000U;
    return (color & kind) == SYS_COLOR_INDEX_FLAG ? GetSysColor(static_cast<int>(color & 0xFFU)) : color & ~kind;
}

PenObject::PenObject(UINT style, int width, COLORREF color)
    : GdiObject(HandleKind::Pen), m_style(style), m_width(width == 0 ? 1 : width),
      m_pixel(pixelOfColor(plainColor(color)))
{
}

LOGPEN PenObject::description() const
{
    return {m_style, {m_width, 0}, colorOfPixel(m_pixel)};
}

BrushObject::BrushObject(UINT style, COLORREF color)
    : GdiObject(HandleKind::Brush), m_style(style), m_pixel(pixelOfColor(plainColor(color)))
{
}

LOGBRUSH BrushObject::description() const
{
    return {m_style, colorOfPixel(m_pixel), 0};
}

BitmapObject::BitmapObject(std::shared_ptr<Surface> surface)
    : GdiObject(HandleKind::Bitmap), m_surface(std::move(surface))
{
}

BITMAP BitmapObject::description() const
{
    const bool mono = m_surface->isMonochrome();
    // Rows of the device's bitmaps end on whole words.
    const LONG bytes = mono ? (m_surface->width() + 15) / 16 * 2 : m_surface->width() * 4;
    return {0, m_surface->width(), m_surface->height(), bytes, 1, static_cast<WORD>(mono ? 1 : 32), nullptr};
}

bool BitmapObject::enter(DeviceContext &context)
{
    DeviceContext *nobody = nullptr;
    return isStock() || m_context.compare_exchange_strong(nobody, &context) || nobody == &context;
}

void BitmapObject::leave(DeviceContext &context)
{
    DeviceContext *holder = &context;
    m_context.compare_exchange_strong(holder, nullptr);
}

HGDIOBJ insertObject(const std::shared_ptr<GdiObject> &object, bool stock)
{
    HGDIOBJ handle = insertHandle(object);
    object->setHandle(handle, stock);
    return handle;
}

std::shared_ptr<BitmapObject> bitmapOf(HBITMAP bitmap)
{
    return findAs<BitmapObject>(bitmap, HandleKind::Bitmap);
}

std::shared_ptr<BrushObject> brushOf(HBRUSH brush)
{
    return findAs<BrushObject>(brush, HandleKind::Brush);
}

namespace
{
template <typename T>
std::shared_ptr<T> inStock(std::shared_ptr<T> object)
{
    insertObject(object, true);
    return object;
}

struct Stock
{
    std::array<std::shared_ptr<BrushObject>, 6> brushes;
    std::array<std::shared_ptr<PenObject>, 3> pens;
    std::shared_ptr<BitmapObject> bitmap;
    std::mutex lock;
    std::shared_ptr<PenObject> borderPen; ///< under the lock; of the screen that was looked at last
};

/// Never destroyed: contexts of threads that outlive main refer to it.
Stock &stock()
{
    static auto *all = []
    {
        auto *made = new Stock;
        constexpr std::array<COLORREF, 5> greys = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
        for (std::size_t i = 0; i < greys.size(); ++i)
        {
            made->brushes[i] = inStock(std::make_shared<BrushObject>(BS_SOLID, greys[i]));
        }
        made->brushes[5] = inStock(std::make_shared<BrushObject>(BS_NULL, 0));
        made->pens[0] = inStock(std::make_shared<PenObject>(PS_SOLID, 1, 0xFFFFFF));
        made->pens[1] = inStock(std::make_shared<PenObject>(PS_SOLID, 1, 0x000000));
        made->pens[2] = inStock(std::make_shared<PenObject>(PS_NULL, 1, 0));
        made->bitmap = inStock(std::make_shared<BitmapObject>(Surface::create(1, 1, Surface::Kind::Monochrome)));
        return made;
    }();
    return *all;
}

/// Another object once the screen's border is another; the former stays for those who hold its handle.
HGDIOBJ borderPen()
{
    const int width = GetSystemMetrics(SM_CXBORDER);
    const std::lock_guard guard(stock().lock);
    std::shared_ptr<PenObject> &pen = stock().borderPen;
    if (pen == nullptr || pen->width() != width)
    {
        pen = inStock(std::make_shared<PenObject>(PS_SOLID, width, 0));
    }
    return pen->handle();
}
} // namespace

const std::shared_ptr<PenObject> &stockPen()
{
    return stock().pens[1];
}

const std::shared_ptr<BrushObject> &stockBrush()
{
    return stock().brushes[0];
}

const std::shared_ptr<BitmapObject> &stockBitmap()
{
    return stock().bitmap;
}
} // namespace zb::internal

using namespace zb::internal;

HGDIOBJ GetStockObject(int which)
{
    if (which >= WHITE_BRUSH && which <= NULL_BRUSH)
    {
        return stock().brushes[static_cast<std::size_t>(which)]->handle();
    }
    if (which >= WHITE_PEN && which <= NULL_PEN)
    {
        return stock().pens[static_cast<std::size_t>(which - WHITE_PEN)]->handle();
    }
    if (which == BORDERX_PEN || which == BORDERY_PEN)
    {
        return borderPen();
    }
    if (which == SYSTEM_FONT)
    {
        return stockFont()->handle();
    }
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

HPEN CreatePen(int style, int width, COLORREF color)
{
    const bool known = style == PS_SOLID || style == PS_DASH || style == PS_NULL;
    if (!known || width < 0 || width > longestSide)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return insertObject(std::make_shared<PenObject>(static_cast<UINT>(style), width, color));
}

HPEN CreatePenIndirect(const LOGPEN *description)
{
    if (description == nullptr || description->lopnStyle > static_cast<UINT>(PS_NULL))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return CreatePen(static_cast<int>(description->lopnStyle), description->lopnWidth.x, description->lopnColor);
}

HBRUSH CreateSolidBrush(COLORREF color)
{
    return insertObject(std::make_shared<BrushObject>(BS_SOLID, color));
}

BOOL DeleteObject(HGDIOBJ object)
{
    const auto found = findHandle(object);
    if (found == nullptr)
    {
        return FALSE;
    }
    switch (found->kind())
    {
    case HandleKind::Font:
    case HandleKind::Bitmap:
    case HandleKind::Pen:
    case HandleKind::Brush:
        break;
    default:
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (static_cast<const GdiObject &>(*found).isStock())
    {
        return TRUE;
    }
    return removeHandle(object, found->kind()) != nullptr ? TRUE : FALSE;
}

namespace
{
/// The record's size, or 0 when there is too little room for it.
template <typename Record>
int give(const Record &record, int size, void *target)
{
    constexpr int own = sizeof(Record);
    if (target == nullptr)
    {
        return own;
    }
    if (size < own)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::memcpy(target, &record, sizeof record);
    return own;
}
} // namespace

int GetObjectW(HGDIOBJ object, int size, void *record)
{
    const auto found = findHandle(object);
    if (found == nullptr)
    {
        return 0;
    }
    switch (found->kind())
    {
    case HandleKind::Font:
        return give(static_cast<const FontObject &>(*found).description(), size, record);
    case HandleKind::Bitmap:
        return give(static_cast<const BitmapObject &>(*found).description(), size, record);
    case HandleKind::Pen:
        return give(static_cast<const PenObject &>(*found).description(), size, record);
    case HandleKind::Brush:
        return give(static_cast<const BrushObject &>(*found).description(), size, record);
    default:
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
}
