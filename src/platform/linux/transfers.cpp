// Bit transfers: the raster operations, at the same size and stretched, and pictures with a key colour.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/pictures.h"
#include "platform/linux/stretching.h"

#include <array>
#include <cstring>

using namespace zb::internal;

namespace
{
/// Works on a run of target pixels; the source's may be null for an operation that reads none.
using RowOperation = void (*)(std::uint32_t *target, const std::uint32_t *source, int count, std::uint32_t brush);

/// From a function of target, source and brush to one over a run; what comes out is opaque.
template <typename Mix>
constexpr RowOperation overRow(Mix)
{
    return [](std::uint32_t *target, const std::uint32_t *source, int count, std::uint32_t brush)
    {
        for (int i = 0; i < count; ++i)
        {
            target[i] = Mix{}(target[i], source == nullptr ? 0 : source[i], brush) | opaqueBits;
        }
    };
}

using Pixel = std::uint32_t;

struct Operation
{
    DWORD code;
    bool readsSource;
    bool readsBrush;
    RowOperation run;
};

constexpr std::array<Operation, 10> operations = {{
    {SRCCOPY, true, false, overRow([](Pixel, Pixel source, Pixel) { return source; })},
    {SRCPAINT, true, false, overRow([](Pixel target, Pixel source, Pixel) { return target | source; })},
    {SRCAND, true, false, overRow([](Pixel target, Pixel source, Pixel) { return target & source; })},
    {SRCINVERT, true, false, overRow([](Pixel target, Pixel source, Pixel) { return target ^ source; })},
    {NOTSRCCOPY, true, false, overRow([](Pixel, Pixel source, Pixel) { return ~source; })},
    {PATCOPY, false, true, overRow([](Pixel, Pixel, Pixel brush) { return brush; })},
    {PATINVERT, false, true, overRow([](Pixel target, Pixel, Pixel brush) { return target ^ brush; })},
    {DSTINVERT, false, false, overRow([](Pixel target, Pixel, Pixel) { return ~target; })},
    {BLACKNESS, false, false, overRow([](Pixel, Pixel, Pixel) { return blackPixel; })},
    {WHITENESS, false, false, overRow([](Pixel, Pixel, Pixel) { return whitePixel; })},
}};

const Operation *operationOf(DWORD code)
{
    for (const Operation &operation : operations)
    {
        if (operation.code == code)
        {
            return &operation;
        }
    }
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

/// What of a rectangle needs no source.
void runWithoutSource(const DeviceContext &target, const Box &box, const Operation &operation)
{
    const BrushObject &brush = *target.state().brush;
    if (operation.readsBrush && brush.isNull())
    {
        return;
    }
    const std::uint32_t pixel = target.surface().fit(brush.pixel());
    forVisibleRows(target, box,
                   [&](std::uint32_t *row, int left, int right)
                   { operation.run(row + left, nullptr, right - left, pixel); });
}

/// Between black and white and colours the contexts' own colours stand in: a black and white source is drawn in the
/// target's text and background colour, and a black and white target is white where the source has its background.
PixelReading readingOf(const DeviceContext &target, const DeviceContext &source)
{
    PixelReading reading;
    if (source.surface().isMonochrome() && !target.surface().isMonochrome())
    {
        reading.inkForBlack = pixelOfColor(target.state().textColor);
        reading.paperForWhite = pixelOfColor(target.state().backColor);
    }
    else if (target.surface().isMonochrome() && !source.surface().isMonochrome())
    {
        reading.white = pixelOfColor(source.state().backColor) & colorBits;
    }
    return reading;
}

/// A transfer at the same size: `box` on the target's surface takes what lies `dx`, `dy` further on the source's.
struct Move
{
    const DeviceContext &target;
    const Surface &source;
    Box box;
    int dx;
    int dy;
};

/// Plain copies within one box move whole runs, in the order that leaves nothing overwritten before it is read.
void moveRuns(const Move &move, const Box &part)
{
    Surface &surface = move.target.surface();
    const std::size_t bytes = static_cast<std::size_t>(part.width()) * sizeof(Pixel);
    for (int i = 0; i < part.height(); ++i)
    {
        const int y = move.dy >= 0 ? part.top + i : part.bottom - 1 - i;
        std::memmove(surface.row(y) + part.left, move.source.row(y + move.dy) + part.left + move.dx, bytes);
    }
}

void runParts(const Move &move, const Operation &operation, const PixelReading &reading)
{
    std::vector<Pixel> read(reading.isPlain() ? 0 : static_cast<std::size_t>(move.source.width()));
    forVisible(move.target, shifted(move.box, -move.target.origin().x, -move.target.origin().y),
               [&](const Box &part)
               {
                   for (int y = part.top; y < part.bottom; ++y)
                   {
                       const Pixel *from = move.source.row(y + move.dy) + part.left + move.dx;
                       if (!reading.isPlain())
                       {
                           reading.read(from, part.width(), read.data());
                           from = read.data();
                       }
                       operation.run(move.target.surface().row(y) + part.left, from, part.width(), 0);
                   }
               });
}

bool runMove(const Move &move, const Operation &operation, const PixelReading &reading)
{
    const Surface &surface = move.target.surface();
    const bool copies = operation.code == SRCCOPY && reading.isPlain() && (!surface.isSoft() || move.source.isSoft());
    const Region &visible = move.target.visible();
    const Box shown = move.box.intersected(visible.extents());
    if (shown.isEmpty())
    {
        return true;
    }
    const bool own = &surface == &move.source;
    if (copies && (!own || visible.boxes().size() == 1))
    {
        forVisible(move.target, shifted(move.box, -move.target.origin().x, -move.target.origin().y),
                   [&](const Box &part) { moveRuns(move, part); });
        return true;
    }
    if (!own)
    {
        runParts(move, operation, reading);
        return true;
    }
    // Of one surface, in parts or with sums: from a copy, so that nothing is read that was just written.
    const Box from = shifted(shown, move.dx, move.dy);
    const auto copy = copyOf(move.source, from);
    if (copy == nullptr)
    {
        return false;
    }
    runParts({move.target, *copy, shown, move.dx - from.left, move.dy - from.top}, operation, reading);
    return true;
}

/// Cuts the rectangle to what the source has, and moves it.
bool transfer(const DeviceContext &target, const Box &box, const DeviceContext &source, int sourceX, int sourceY,
              const Operation &operation)
{
    const Box moved = shifted(box, target.origin().x, target.origin().y);
    const int dx = near(sourceX) + source.origin().x - moved.left;
    const int dy = near(sourceY) + source.origin().y - moved.top;
    const Box cut = moved.intersected(shifted(source.surface().bounds(), -dx, -dy));
    return cut.isEmpty() || runMove({target, source.surface(), cut, dx, dy}, operation, readingOf(target, source));
}

/// The scaled pixels of a soft source have an opacity in between at its edges; on a surface without opacity each is
/// either there or of the key colour, so that a later step can still tell.
void hardenEdges(const Pixel *pixels, int count, Pixel *to)
{
    for (int i = 0; i < count; ++i)
    {
        to[i] = pixels[i] >> 24U >= 128 ? pixels[i] : keyPixel;
    }
}

bool stretch(const DeviceContext &target, const Stretch &to, const DeviceContext &source, const Stretch &from,
             const Operation &operation)
{
    const bool repeats = to.width % from.width == 0 && to.height % from.height == 0;
    PixelReading reading = readingOf(target, source);
    const bool soft = source.surface().isSoft() && reading.isPlain();
    const bool keepsSoftness = soft && target.surface().isSoft() && operation.code == SRCCOPY;
    reading.soft = keepsSoftness || (soft && !repeats);
    std::vector<Pixel> buffer;
    const Surface &surface = target.surface();
    return drawScaled(target, to, source.surface(), from, reading,
                      [&](Pixel *row, const Pixel *pixels, int count)
                      {
                          buffer.resize(static_cast<std::size_t>(count));
                          if (keepsSoftness)
                          {
                              std::transform(pixels, pixels + count, row, softPixel);
                              return;
                          }
                          if (reading.soft)
                          {
                              hardenEdges(pixels, count, buffer.data());
                              operation.run(row, buffer.data(), count, 0);
                              return;
                          }
                          for (int i = 0; i < count; ++i)
                          {
                              if (pixels[i] >> 24U != 0)
                              {
                                  const Pixel fitted = surface.fit(pixels[i]);
                                  operation.run(row + i, &fitted, 1, 0);
                              }
                          }
                      });
}
} // namespace

BOOL PatBlt(HDC target, int x, int y, int width, int height, DWORD operation)
{
    const auto found = contextOf(target);
    const Operation *wanted = found == nullptr ? nullptr : operationOf(operation);
    if (wanted == nullptr)
    {
        return FALSE;
    }
    if (wanted->readsSource)
    {
        return refuse();
    }
    runWithoutSource(*found, orderedBox(near(x), near(y), near(x) + near(width), near(y) + near(height)), *wanted);
    return TRUE;
}

BOOL BitBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX, int sourceY, DWORD operation)
{
    const auto found = contextOf(target);
    const Operation *wanted = found == nullptr ? nullptr : operationOf(operation);
    if (wanted == nullptr)
    {
        return FALSE;
    }
    const Box box = orderedBox(near(x), near(y), near(x) + near(width), near(y) + near(height));
    if (!wanted->readsSource)
    {
        runWithoutSource(*found, box, *wanted);
        return TRUE;
    }
    const auto from = contextOf(source);
    if (from == nullptr)
    {
        return FALSE;
    }
    const int left = near(sourceX) + std::min(near(width), 0);
    const int top = near(sourceY) + std::min(near(height), 0);
    return transfer(*found, box, *from, left, top, *wanted) ? TRUE : FALSE;
}

BOOL StretchBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX, int sourceY, int sourceWidth,
                int sourceHeight, DWORD operation)
{
    if (width == sourceWidth && height == sourceHeight)
    {
        return BitBlt(target, x, y, width, height, source, sourceX, sourceY, operation);
    }
    const auto found = contextOf(target);
    const Operation *wanted = found == nullptr ? nullptr : operationOf(operation);
    if (wanted == nullptr)
    {
        return FALSE;
    }
    if (!wanted->readsSource)
    {
        return PatBlt(target, x, y, width, height, operation);
    }
    const auto from = contextOf(source);
    if (from == nullptr)
    {
        return FALSE;
    }
    const Stretch to{x, y, width, height};
    const Stretch part{near(sourceX) + from->origin().x, near(sourceY) + from->origin().y, sourceWidth, sourceHeight};
    if (!isScalable(to) || !isScalable(part) || sourceWidth == 0 || sourceHeight == 0)
    {
        return refuse();
    }
    return width == 0 || height == 0 || stretch(*found, to, *from, part, *wanted) ? TRUE : FALSE;
}

namespace
{
/// A picture to draw: a context's surface or a bitmap's.
struct PictureSource
{
    std::shared_ptr<HandleObject> keeper;
    const Surface *surface = nullptr;
    POINT origin{0, 0};
};

PictureSource pictureSourceOf(HANDLE handle)
{
    auto found = findHandle(handle);
    if (found == nullptr)
    {
        return {};
    }
    if (found->kind() == HandleKind::DeviceContext)
    {
        const auto &context = static_cast<const DeviceContext &>(*found);
        return {found, &context.surface(), context.origin()};
    }
    if (found->kind() == HandleKind::Bitmap)
    {
        const auto &bitmap = static_cast<const BitmapObject &>(*found);
        return {found, bitmap.surface().get(), {0, 0}};
    }
    SetLastError(ERROR_INVALID_HANDLE);
    return {};
}
} // namespace

BOOL TransparentImage(HDC target, int x, int y, int width, int height, HANDLE source, int sourceX, int sourceY,
                      int sourceWidth, int sourceHeight, COLORREF key)
{
    const auto found = contextOf(target);
    const PictureSource picture = found == nullptr ? PictureSource{} : pictureSourceOf(source);
    if (picture.surface == nullptr)
    {
        return FALSE;
    }
    const Stretch to{x, y, width, height};
    const Stretch from{near(sourceX) + picture.origin.x, near(sourceY) + picture.origin.y, sourceWidth, sourceHeight};
    if (!isScalable(to) || !isScalable(from) || sourceWidth == 0 || sourceHeight == 0)
    {
        return refuse();
    }
    PixelReading reading;
    reading.soft = picture.surface->isSoft();
    if (key != CLR_NONE)
    {
        reading.key = pixelOfColor(plainColor(key)) & colorBits;
    }
    return width == 0 || height == 0 || drawBlended(*found, to, *picture.surface, from, reading) ? TRUE : FALSE;
}
