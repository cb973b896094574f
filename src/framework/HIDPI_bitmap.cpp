// Pictures that were made for another density.
#include "framework/HIDPI.h"
#include "framework/MemoryBitmap.h"

#include "platform/resources.h"

#include <algorithm>
#include <cstdlib>

namespace
{
/// Of a bitmap resource, which begins with a header of 40 bytes.
constexpr DWORD headerSize = 40;
constexpr int xPelsPerMeterAt = 24;
constexpr int yPelsPerMeterAt = 28;
/// 96 dots an inch.
constexpr LONG leastPelsPerMeter = 3780;

LONG littleEndian(const BYTE *bytes)
{
    return static_cast<LONG>(static_cast<DWORD>(bytes[0]) | static_cast<DWORD>(bytes[1]) << 8U |
                             static_cast<DWORD>(bytes[2]) << 16U | static_cast<DWORD>(bytes[3]) << 24U);
}

/// A meter has 39.37 inches.
int dotsPerInch(LONG pelsPerMeter)
{
    return static_cast<int>((std::max(pelsPerMeter, leastPelsPerMeter) * 100LL + 1968) / 3937);
}

/// `other`, scaled by wanted / given and rounded. given is above 0; a wanted side below 0 is refused later.
LONGLONG inProportion(LONGLONG wanted, LONGLONG other, LONGLONG given)
{
    return (wanted * other + given / 2) / given;
}

bool isSide(LONGLONG pixels)
{
    return pixels > 0 && pixels <= 32767;
}

bool readBitmap(HBITMAP bitmap, BITMAP &record)
{
    return bitmap != nullptr && GetObjectW(bitmap, sizeof record, &record) == static_cast<int>(sizeof record);
}

struct Grid
{
    int width; ///< of one image
    int height;
    int cols;
    int rows;
};

/// A new bitmap with each image of the source in its place and new size; null on failure.
HBITMAP stretchGrid(HBITMAP source, const Grid &from, const Grid &to)
{
    zb::MemoryBitmap target(to.width * to.cols, to.height * to.rows);
    const zb::MemoryContext origin(source);
    bool done = target.isValid() && origin.isValid();
    for (int row = 0; done && row < to.rows; ++row)
    {
        for (int col = 0; done && col < to.cols; ++col)
        {
            done = StretchBlt(target.context(), col * to.width, row * to.height, to.width, to.height, origin.context(),
                              col * from.width, row * from.height, from.width, from.height, SRCCOPY) != FALSE;
        }
    }
    return done ? target.release() : nullptr;
}

/// Cuts the strip into a new list; null on failure.
HIMAGELIST listOfStrip(HBITMAP strip, const Grid &images, int grow, COLORREF mask)
{
    BITMAP record{};
    if (!readBitmap(strip, record))
    {
        return nullptr;
    }
    const UINT flags = (mask == CLR_NONE ? ILC_COLOR : ILC_MASK) | record.bmBitsPixel;
    const HIMAGELIST list = ImageList_Create(images.width, images.height, flags, images.cols, grow);
    if (list == nullptr)
    {
        return nullptr;
    }
    const int added = mask == CLR_NONE ? ImageList_Add(list, strip, nullptr) : ImageList_AddMasked(list, strip, mask);
    if (added < 0)
    {
        ImageList_Destroy(list);
        return nullptr;
    }
    return list;
}

/// The list of a bitmap of density x by y, which is not the screen's. Takes the bitmap over.
HIMAGELIST stretchedList(HBITMAP loaded, int x, int y, int cx, int grow, COLORREF mask)
{
    zb::OwnedBitmap bitmap(loaded);
    BITMAP record{};
    if (!readBitmap(bitmap.handle(), record))
    {
        return nullptr;
    }
    const LONGLONG screenX = g_HIDPI_LogPixelsX;
    const LONGLONG sourceWidth = (std::abs(static_cast<LONGLONG>(cx)) * x + screenX / 2) / screenX;
    const LONGLONG images = sourceWidth == 0 ? 0 : record.bmWidth / sourceWidth;
    const LONGLONG height = (static_cast<LONGLONG>(record.bmHeight) * g_HIDPI_LogPixelsY + y / 2) / y;
    if (!isSide(images * cx) || !isSide(height))
    {
        return nullptr;
    }
    const Grid grid{cx, static_cast<int>(height), static_cast<int>(images), 1};
    const bool whole = screenX % x == 0;
    const BOOL stretched = whole ? HIDPI_StretchBitmap(bitmap.address(), cx, grid.height, grid.cols, 1)
                                 : HIDPI_StretchBitmap(bitmap.address(), cx * grid.cols, grid.height, 1, 1);
    return stretched == FALSE ? nullptr : listOfStrip(bitmap.handle(), grid, grow, mask);
}
} // namespace

BOOL HIDPI_GetBitmapLogPixels(HINSTANCE hInstance, const WCHAR *name, int *x, int *y)
{
    const HRSRC resource = FindResourceW(hInstance, name, RT_BITMAP);
    if (resource == nullptr || SizeofResource(hInstance, resource) < headerSize)
    {
        return FALSE;
    }
    const auto *header = static_cast<const BYTE *>(LockResource(LoadResource(hInstance, resource)));
    if (header == nullptr)
    {
        return FALSE;
    }
    *x = dotsPerInch(littleEndian(header + xPelsPerMeterAt));
    *y = dotsPerInch(littleEndian(header + yPelsPerMeterAt));
    return TRUE;
}

BOOL HIDPI_StretchBitmap(HBITMAP *hBitmap, int cx, int cy, int cols, int rows)
{
    BITMAP record{};
    if (hBitmap == nullptr || (cx == 0 && cy == 0) || cols <= 0 || rows <= 0 || !readBitmap(*hBitmap, record))
    {
        return FALSE;
    }
    const Grid from{record.bmWidth / cols, record.bmHeight / rows, cols, rows};
    if (from.width == cx && from.height == cy)
    {
        return TRUE;
    }
    if (from.width == 0 || from.height == 0)
    {
        return FALSE;
    }
    const LONGLONG width = cx == 0 ? inProportion(cy, from.width, from.height) : cx;
    const LONGLONG height = cy == 0 ? inProportion(cx, from.height, from.width) : cy;
    if (!isSide(width) || !isSide(height) || !isSide(width * cols) || !isSide(height * rows))
    {
        return FALSE;
    }
    const Grid to{static_cast<int>(width), static_cast<int>(height), cols, rows};
    const HBITMAP stretched = stretchGrid(*hBitmap, from, to);
    if (stretched == nullptr)
    {
        return FALSE;
    }
    DeleteObject(*hBitmap);
    *hBitmap = stretched;
    return TRUE;
}

BOOL HIDPI_StretchIcon(HICON *hIcon, int cx, int cy)
{
    if (hIcon == nullptr)
    {
        return FALSE;
    }
    const zb::MemoryBitmap image(cx, cy);
    const zb::MemoryBitmap mask(CreateBitmap(cx, cy, 1, 1, nullptr));
    if (DrawIconEx(image.context(), 0, 0, *hIcon, cx, cy, 0, nullptr, DI_IMAGE) == FALSE ||
        DrawIconEx(mask.context(), 0, 0, *hIcon, cx, cy, 0, nullptr, DI_MASK) == FALSE)
    {
        return FALSE;
    }
    const ICONINFO description{TRUE, 0, 0, mask.bitmap(), image.bitmap()};
    const HICON stretched = CreateIconIndirect(&description);
    if (stretched == nullptr)
    {
        return FALSE;
    }
    DestroyIcon(*hIcon);
    *hIcon = stretched;
    return TRUE;
}

HIMAGELIST HIDPI_ImageList_LoadImage(HINSTANCE hInstance, const WCHAR *name, int cx, int grow, COLORREF mask, UINT type,
                                     UINT flags)
{
    if (type != IMAGE_BITMAP || cx == 0 || g_HIDPI_LogPixelsX == 0)
    {
        return ImageList_LoadImage(hInstance, name, cx, grow, mask, type, flags);
    }
    int x = 0;
    int y = 0;
    const HBITMAP bitmap =
        HIDPI_GetBitmapLogPixels(hInstance, name, &x, &y) != FALSE ? LoadBitmapW(hInstance, name) : nullptr;
    if (bitmap == nullptr)
    {
        return nullptr;
    }
    if (x == g_HIDPI_LogPixelsX)
    {
        DeleteObject(bitmap);
        return ImageList_LoadImage(hInstance, name, cx, grow, mask, type, flags);
    }
    return stretchedList(bitmap, x, y, cx, grow, mask);
}
