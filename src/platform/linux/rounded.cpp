#include "platform/linux/rounded.h"

#include <cmath>

namespace zb::internal
{
namespace
{
constexpr int lines = 16;
constexpr int unit = 256;
/// Of a pixel that is wholly covered.
constexpr int whole = lines * unit;

/// Coverage of a row of a shape, pixel by pixel.
class Coverage
{
  public:
    explicit Coverage(const RoundedBox &shape)
        : m_shape(shape), m_width(std::clamp(shape.cornerWidth, 0, shape.box.width())),
          m_height(std::clamp(shape.cornerHeight, 0, shape.box.height()))
    {
    }

    /// For the row at y; rows outside the box are covered by nothing.
    void setRow(int y)
    {
        const Box &box = m_shape.box;
        m_inside = !box.isEmpty() && y >= box.top && y < box.bottom;
        m_edge = 0;
        if (!m_inside)
        {
            return;
        }
        const int distance = std::min(y - box.top, box.bottom - 1 - y);
        for (int i = 0; i < lines; ++i)
        {
            m_insets[i] = insetAt(distance, i);
            m_edge = std::max(m_edge, m_insets[i]);
        }
    }
    int at(int x) const
    {
        const Box &box = m_shape.box;
        if (!m_inside || x < box.left || x >= box.right)
        {
            return 0;
        }
        const int distance = std::min(x - box.left, box.right - 1 - x);
        if (distance * unit >= m_edge)
        {
            return whole;
        }
        int sum = 0;
        for (const int inset : m_insets)
        {
            sum += covered(distance, inset);
        }
        return m_shape.smooth ? sum : sum * 2 >= whole ? whole : 0;
    }

  private:
    /// How far from its sides the shape begins on a line of a row, in parts of a pixel.
    int insetAt(int distance, int line) const
    {
        // In parts of which a pixel has 32: the line's middle, and half the corner's height.
        const int down = distance * 2 * lines + 2 * line + 1;
        const int radius = m_height * lines;
        const int from = radius - std::min(down, 2 * m_shape.box.height() * lines - down);
        if (from <= 0)
        {
            return 0;
        }
        const double part = static_cast<double>(from) / radius;
        return static_cast<int>(std::lround((1.0 - std::sqrt(1.0 - part * part)) * m_width * unit / 2));
    }
    /// Of a pixel so far from the nearer side, on a line that begins `inset` from both.
    int covered(int distance, int inset) const
    {
        const int far = m_shape.box.width() * unit - inset;
        const int begin = std::max(distance * unit, inset);
        const int end = std::min((distance + 1) * unit, far);
        return std::max(end - begin, 0);
    }

    RoundedBox m_shape;
    int m_width;
    int m_height;
    bool m_inside = false;
    int m_insets[lines] = {};
    int m_edge = 0;
};

std::uint32_t channel(std::uint32_t pixel, unsigned shift)
{
    return pixel >> shift & 0xFFU;
}

/// Three colours by their shares of a pixel.
class Mixer
{
  public:
    Mixer(const Surface &surface, std::uint32_t pen, std::uint32_t brush)
        : m_mono(surface.isMonochrome()), m_pen(surface.fit(pen)), m_brush(surface.fit(brush))
    {
    }
    std::uint32_t mix(std::uint32_t ground, int pen, int brush) const
    {
        const int rest = whole - pen - brush;
        if (m_mono)
        {
            return rest * 2 > whole ? ground : pen >= brush ? m_pen : m_brush;
        }
        const auto share = [&](unsigned shift)
        {
            const std::uint32_t sum = channel(m_pen, shift) * static_cast<std::uint32_t>(pen) +
                                      channel(m_brush, shift) * static_cast<std::uint32_t>(brush) +
                                      channel(ground, shift) * static_cast<std::uint32_t>(rest);
            return (sum + whole / 2) / whole << shift;
        };
        return opaqueBits | share(16) | share(8) | share(0);
    }
    std::uint32_t brush() const
    {
        return m_brush;
    }

  private:
    bool m_mono;
    std::uint32_t m_pen;
    std::uint32_t m_brush;
};

struct Shares
{
    bool pen;
    bool brush;
};

void drawPart(const DeviceContext &context, const Box &part, Coverage &outer, Coverage &inner, const Mixer &mixer,
              const Shares &shares)
{
    for (int y = part.top; y < part.bottom; ++y)
    {
        outer.setRow(y - context.origin().y);
        inner.setRow(y - context.origin().y);
        std::uint32_t *row = context.surface().row(y);
        for (int x = part.left; x < part.right; ++x)
        {
            const int all = outer.at(x - context.origin().x);
            const int body = std::min(all, inner.at(x - context.origin().x));
            const int pen = shares.pen ? all - body : 0;
            const int brush = shares.brush ? body : 0;
            if (brush == whole)
            {
                row[x] = mixer.brush();
            }
            else if (pen + brush != 0)
            {
                row[x] = mixer.mix(row[x], pen, brush);
            }
        }
    }
}
} // namespace

void drawRounded(const DeviceContext &context, const RoundedBox &shape, int border, std::optional<std::uint32_t> pen,
                 std::optional<std::uint32_t> brush)
{
    const int inset = pen.has_value() ? border : 0;
    RoundedBox body = shape;
    body.box = {shape.box.left + inset, shape.box.top + inset, shape.box.right - inset, shape.box.bottom - inset};
    body.cornerWidth = std::max(shape.cornerWidth - 2 * inset, 0);
    body.cornerHeight = std::max(shape.cornerHeight - 2 * inset, 0);
    Coverage outer(shape);
    Coverage inner(body);
    const Mixer mixer(context.surface(), pen.value_or(0), brush.value_or(0));
    forVisible(context, shape.box,
               [&](const Box &part) {
                   drawPart(context, part, outer, inner, mixer, {pen.has_value(), brush.has_value()});
               });
}

void fillRounded(const DeviceContext &context, const RoundedBox &shape, std::uint32_t pixel)
{
    drawRounded(context, shape, 0, std::nullopt, pixel);
}
} // namespace zb::internal
