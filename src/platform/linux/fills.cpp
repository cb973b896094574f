// Filling and inverting rectangles, and single pixels.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/painting.h"

using namespace zb::internal;

namespace
{
bool refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}
} // namespace

BOOL FillRect(HDC context, const RECT *rectangle, HBRUSH brush)
{
    const auto found = contextOf(context);
    const auto body = found == nullptr ? nullptr : brushOf(brush);
    if (body == nullptr || (rectangle == nullptr && !refuse()))
    {
        return FALSE;
    }
    if (!body->isNull())
    {
        fillBox(*found, boxOf(*rectangle), body->pixel());
    }
    return TRUE;
}

BOOL InvertRect(HDC context, const RECT *rectangle)
{
    const auto found = contextOf(context);
    if (found == nullptr || (rectangle == nullptr && !refuse()))
    {
        return FALSE;
    }
    forVisibleRows(*found, boxOf(*rectangle),
                   [](std::uint32_t *row, int left, int right)
                   {
                       std::transform(row + left, row + right, row + left,
                                      [](std::uint32_t pixel) { return (pixel ^ colorBits) | opaqueBits; });
                   });
    return TRUE;
}

BOOL DrawFocusRect(HDC context, const RECT *rectangle)
{
    const auto found = contextOf(context);
    if (found == nullptr || (rectangle == nullptr && !refuse()))
    {
        return FALSE;
    }
    const Box box = boxOf(*rectangle);
    if (box.isEmpty())
    {
        return TRUE;
    }
    // Every other pixel all around, by the sum of its coordinates: the dots meet at the corners whatever the size.
    const auto invertDots = [&](const Box &side)
    {
        forVisible(*found, side,
                   [&](const Box &part)
                   {
                       for (int y = part.top; y < part.bottom; ++y)
                       {
                           const int parity = y - found->origin().y - found->origin().x;
                           std::uint32_t *row = found->surface().row(y);
                           for (int x = part.left + ((part.left + parity) & 1); x < part.right; x += 2)
                           {
                               row[x] = (row[x] ^ colorBits) | opaqueBits;
                           }
                       }
                   });
    };
    invertDots({box.left, box.top, box.right, box.top + 1});
    if (box.height() > 1)
    {
        invertDots({box.left, box.bottom - 1, box.right, box.bottom});
    }
    const Box between{box.left, box.top + 1, box.right, box.bottom - 1};
    invertDots({between.left, between.top, between.left + 1, between.bottom});
    if (box.width() > 1)
    {
        invertDots({between.right - 1, between.top, between.right, between.bottom});
    }
    return TRUE;
}

namespace
{
/// Where a point of the context lies on its surface; null outside what can be drawn on.
std::uint32_t *pixelAt(const DeviceContext &context, int x, int y)
{
    const int column = near(x) + context.origin().x;
    const int line = near(y) + context.origin().y;
    return context.visible().contains(column, line) ? context.surface().row(line) + column : nullptr;
}
} // namespace

COLORREF SetPixel(HDC context, int x, int y, COLORREF color)
{
    const auto found = contextOf(context);
    std::uint32_t *pixel = found == nullptr ? nullptr : pixelAt(*found, x, y);
    if (pixel == nullptr)
    {
        return CLR_INVALID;
    }
    *pixel = found->surface().fit(pixelOfColor(plainColor(color)));
    return colorOfPixel(*pixel);
}

COLORREF GetPixel(HDC context, int x, int y)
{
    const auto found = contextOf(context);
    const std::uint32_t *pixel = found == nullptr ? nullptr : pixelAt(*found, x, y);
    return pixel == nullptr ? CLR_INVALID : colorOfPixel(*pixel);
}
