#include "platform/linux/strokes.h"

#include "platform/linux/rounded.h"

#include <cmath>

namespace zb::internal
{
namespace
{
/// Points further out are moved here: products of two lengths stay inside 64 bits.
constexpr int farPoint = 1 << 24;

POINT limited(POINT point)
{
    return {std::clamp(point.x, -farPoint, farPoint), std::clamp(point.y, -farPoint, farPoint)};
}

constexpr std::int64_t dashOn = 6;
constexpr std::int64_t dashAll = 9;

/// The line of pixels from one point to another by whole steps along its longer direction; step i lies at the nearest
/// pixel across, so any part of it can be drawn without the rest.
class PixelLine
{
  public:
    PixelLine(POINT from, POINT to)
        : m_from(from), m_acrossFirst(std::abs(to.x - from.x) >= std::abs(to.y - from.y)),
          m_along(m_acrossFirst ? to.x - from.x : to.y - from.y), m_side(m_acrossFirst ? to.y - from.y : to.x - from.x)
    {
    }
    /// How many pixels, the last point left out.
    int steps() const
    {
        return std::abs(m_along);
    }
    /// Steps that may lie in the box, as a range.
    std::pair<int, int> stepsIn(const Box &box) const
    {
        const int start = m_acrossFirst ? m_from.x : m_from.y;
        const int low = m_acrossFirst ? box.left : box.top;
        const int high = m_acrossFirst ? box.right : box.bottom;
        const int first = m_along >= 0 ? low - start : start - high + 1;
        const int end = m_along >= 0 ? high - start : start - low + 1;
        return {std::max(first, 0), std::min(end, steps())};
    }
    /// Calls draw(x, y, step) for the steps of a range.
    template <typename Draw>
    void walk(std::pair<int, int> range, Draw draw) const
    {
        const std::int64_t unit = 2LL * steps();
        const std::int64_t slope = 2LL * std::abs(m_side);
        const int sideStep = m_side < 0 ? -1 : 1;
        const int alongStep = m_along < 0 ? -1 : 1;
        if (range.first >= range.second)
        {
            return;
        }
        const std::int64_t sum = range.first * slope + unit / 2;
        int side = static_cast<int>(sum / unit);
        std::int64_t rest = sum % unit;
        for (int i = range.first; i < range.second; ++i)
        {
            const int along = i * alongStep;
            const int across = side * sideStep;
            m_acrossFirst ? draw(m_from.x + along, m_from.y + across, i) : draw(m_from.x + across, m_from.y + along, i);
            rest += slope;
            if (rest >= unit)
            {
                rest -= unit;
                ++side;
            }
        }
    }

  private:
    POINT m_from;
    bool m_acrossFirst;
    int m_along;
    int m_side;
};

void drawThinSlanted(const DeviceContext &context, const PenObject &pen, POINT from, POINT to, std::int64_t phase)
{
    const std::uint32_t pixel = context.surface().fit(pen.pixel());
    const POINT origin = context.origin();
    const PixelLine line({from.x + origin.x, from.y + origin.y}, {to.x + origin.x, to.y + origin.y});
    for (const pixman_box32_t &each : context.visible().boxes())
    {
        const Box box{each.x1, each.y1, each.x2, each.y2};
        line.walk(line.stepsIn(box),
                  [&](int x, int y, int step)
                  {
                      const bool inside = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
                      if (inside && (!pen.isDashed() || (phase + step) % dashAll < dashOn))
                      {
                          context.surface().row(y)[x] = pixel;
                      }
                  });
    }
}

/// What a pen covers on a segment along an axis, without and with the half widths at its ends.
Box straightBox(int width, POINT from, POINT to)
{
    const int before = width / 2;
    const int after = width - before;
    return {std::min(from.x, to.x) - before, std::min(from.y, to.y) - before, std::max(from.x, to.x) + after,
            std::max(from.y, to.y) + after};
}

Box thinBox(POINT from, POINT to)
{
    const int stepX = to.x > from.x ? 1 : to.x < from.x ? -1 : 0;
    const int stepY = to.y > from.y ? 1 : to.y < from.y ? -1 : 0;
    const POINT last{to.x - stepX, to.y - stepY};
    return {std::min(from.x, last.x), std::min(from.y, last.y), std::max(from.x, last.x) + 1,
            std::max(from.y, last.y) + 1};
}

void drawSlanted(const DeviceContext &context, const PenObject &pen, POINT from, POINT to)
{
    const int width = pen.width();
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double half = 8.0 * width / std::sqrt(dx * dx + dy * dy);
    const auto offX = static_cast<std::int64_t>(std::llround(-dy * half));
    const auto offY = static_cast<std::int64_t>(std::llround(dx * half));
    // The middle of an even number of pixels lies between two of them.
    const std::int64_t shift = width % 2 == 0 ? -8 : 0;
    const FinePoint a{fineOf(from).x + shift, fineOf(from).y + shift};
    const FinePoint b{fineOf(to).x + shift, fineOf(to).y + shift};
    const FinePoint corners[] = {
        {a.x + offX, a.y + offY}, {b.x + offX, b.y + offY}, {b.x - offX, b.y - offY}, {a.x - offX, a.y - offY}};
    fillPolygon(context, corners, pen.pixel());
    for (const POINT end : {from, to})
    {
        fillRounded(context, {straightBox(width, end, end), width, width, false}, pen.pixel());
    }
}

/// The dashes of a straight line between two points on one axis, each as a segment of its own.
void drawDashes(const DeviceContext &context, const PenObject &pen, POINT from, POINT to, std::int64_t phase)
{
    const PixelLine line(from, to);
    const POINT origin = context.origin();
    const Box reach = shifted(context.visible().extents(), -origin.x, -origin.y);
    const int width = pen.width();
    const int before = width / 2;
    const bool level = from.y == to.y;
    line.walk(line.stepsIn({reach.left - width, reach.top - width, reach.right + width, reach.bottom + width}),
              [&](int x, int y, int step)
              {
                  if ((phase + step) / width % dashAll < dashOn)
                  {
                      const Box box = level ? Box{x, y - before, x + 1, y - before + width}
                                            : Box{x - before, y, x - before + width, y + 1};
                      fillBox(context, box, pen.pixel());
                  }
              });
}
} // namespace

FinePoint fineOf(POINT point)
{
    const POINT near = limited(point);
    return {16LL * near.x + 8, 16LL * near.y + 8};
}

void drawSegment(const DeviceContext &context, const PenObject &pen, POINT begin, POINT end, DashPhase &phase)
{
    const POINT from = limited(begin);
    const POINT to = limited(end);
    const std::int64_t at = phase.at;
    phase.at += std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    const bool thin = pen.width() == 1;
    const bool straight = from.x == to.x || from.y == to.y;
    if (pen.isNull() || (thin && from.x == to.x && from.y == to.y))
    {
        return;
    }
    if (straight && pen.isDashed())
    {
        drawDashes(context, pen, from, to, at);
    }
    else if (straight)
    {
        fillBox(context, thin ? thinBox(from, to) : straightBox(pen.width(), from, to), pen.pixel());
    }
    else if (thin)
    {
        drawThinSlanted(context, pen, from, to, at);
    }
    else
    {
        drawSlanted(context, pen, from, to);
    }
}

void drawSegments(const DeviceContext &context, const PenObject &pen, std::span<const POINT> points)
{
    DashPhase phase;
    for (std::size_t i = 1; i < points.size(); ++i)
    {
        drawSegment(context, pen, points[i - 1], points[i], phase);
    }
}

namespace
{
/// The first pixel whose middle lies at or behind a place, in sixteenths.
std::int64_t pixelFrom(std::int64_t place)
{
    const std::int64_t up = place - 8 + 15;
    return up >= 0 ? up / 16 : -((-up + 15) / 16);
}

/// Rounded up, for a divisor above 0.
std::int64_t ceilDivide(std::int64_t value, std::int64_t by)
{
    return value >= 0 ? (value + by - 1) / by : -(-value / by);
}

/// For each row of a box, where the outline crosses the middle of the row.
class Crossings
{
  public:
    explicit Crossings(const Box &box) : m_box(box), m_rows(static_cast<std::size_t>(box.height()))
    {
    }
    void add(FinePoint from, FinePoint to)
    {
        if (from.y > to.y)
        {
            std::swap(from, to);
        }
        const std::int64_t first = std::max<std::int64_t>(pixelFrom(from.y), m_box.top);
        const std::int64_t end = std::min<std::int64_t>(pixelFrom(to.y), m_box.bottom);
        for (std::int64_t y = first; y < end; ++y)
        {
            const std::int64_t down = 16 * y + 8 - from.y;
            const std::int64_t x = from.x + ceilDivide(down * (to.x - from.x), to.y - from.y);
            m_rows[static_cast<std::size_t>(y - m_box.top)].push_back(pixelFrom(x));
        }
    }
    /// Calls draw(Box) for each run inside.
    template <typename Draw>
    void forRuns(Draw draw)
    {
        int y = m_box.top;
        for (std::vector<std::int64_t> &row : m_rows)
        {
            std::sort(row.begin(), row.end());
            for (std::size_t i = 0; i + 1 < row.size(); i += 2)
            {
                const std::int64_t left = std::max<std::int64_t>(row[i], m_box.left);
                const std::int64_t right = std::min<std::int64_t>(row[i + 1], m_box.right);
                if (left < right)
                {
                    draw(Box{static_cast<int>(left), y, static_cast<int>(right), y + 1});
                }
            }
            ++y;
        }
    }

  private:
    Box m_box;
    std::vector<std::vector<std::int64_t>> m_rows;
};
} // namespace

void fillPolygon(const DeviceContext &context, std::span<const FinePoint> points, std::uint32_t pixel)
{
    const Box reach = shifted(context.visible().extents(), -context.origin().x, -context.origin().y);
    if (reach.isEmpty() || points.empty())
    {
        return;
    }
    Crossings crossings(reach);
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        crossings.add(points[i], points[i + 1 == points.size() ? 0 : i + 1]);
    }
    crossings.forRuns([&](const Box &run) { fillBox(context, run, pixel); });
}
} // namespace zb::internal
