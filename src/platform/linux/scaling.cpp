#include "platform/linux/scaling.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr std::uint32_t red(std::uint32_t pixel)
{
    return pixel >> 16U & 0xFFU;
}
constexpr std::uint32_t green(std::uint32_t pixel)
{
    return pixel >> 8U & 0xFFU;
}
constexpr std::uint32_t blue(std::uint32_t pixel)
{
    return pixel & 0xFFU;
}

std::uint32_t inked(std::uint32_t pixel, std::uint32_t ink, std::uint32_t paper)
{
    return blue(pixel) == 0 ? ink : paper;
}
} // namespace

void PixelReading::read(const std::uint32_t *from, int count, std::uint32_t *to) const
{
    for (int i = 0; i < count; ++i)
    {
        const std::uint32_t color = from[i] & colorBits;
        std::uint32_t pixel = soft ? from[i] : color | opaqueBits;
        if (key.has_value() && color == *key)
        {
            pixel = color;
        }
        else if (inkForBlack.has_value())
        {
            pixel = inked(color, *inkForBlack, paperForWhite) | opaqueBits;
        }
        else if (white.has_value())
        {
            pixel = color == *white ? whitePixel : blackPixel;
        }
        to[i] = pixel;
    }
}

namespace
{
bool repeatsPixels(const ScaledSide &side)
{
    return side.length % side.sourceLength == 0;
}
} // namespace

ScaledPicture::ScaledPicture(const Surface &source, const ScaledSide &across, const ScaledSide &down,
                             const PixelReading &reading, const Box &wanted)
    : m_source(source), m_across(across), m_down(down), m_reading(reading), m_wanted(wanted),
      m_repeats(repeatsPixels(across) && repeatsPixels(down)), m_read(static_cast<std::size_t>(source.width())),
      m_result(static_cast<std::size_t>(wanted.width()))
{
    if (!m_repeats)
    {
        m_columns = mixesOf(across, wanted.left, wanted.right, source.width());
        m_rows = mixesOf(down, wanted.top, wanted.bottom, source.height());
        m_wide.resize(m_result.size());
    }
}

int ScaledPicture::sourceOf(const ScaledSide &side, int index) const
{
    const int at = side.mirrored ? side.length - 1 - index : index;
    return side.sourceBegin + at / (side.length / side.sourceLength);
}

const std::uint32_t *ScaledPicture::row(int y)
{
    return m_repeats ? repeatedRow(y) : mixedRow(y);
}

const std::uint32_t *ScaledPicture::repeatedRow(int y)
{
    const int line = sourceOf(m_down, y);
    if (line < 0 || line >= m_source.height())
    {
        std::fill(m_result.begin(), m_result.end(), 0U);
        return m_result.data();
    }
    const int one = sourceOf(m_across, m_wanted.left);
    const int other = sourceOf(m_across, m_wanted.right - 1);
    const int begin = std::max(std::min(one, other), 0);
    const int end = std::min(std::max(one, other) + 1, m_source.width());
    if (begin < end)
    {
        m_reading.read(m_source.row(line) + begin, end - begin, m_read.data() + begin);
    }
    for (int x = m_wanted.left; x < m_wanted.right; ++x)
    {
        const int column = sourceOf(m_across, x);
        const bool inside = column >= begin && column < end;
        m_result[static_cast<std::size_t>(x - m_wanted.left)] = inside ? m_read[static_cast<std::size_t>(column)] : 0U;
    }
    return m_result.data();
}

ScaledPicture::Mixes ScaledPicture::mixesOf(const ScaledSide &side, int begin, int end, int bound)
{
    Mixes mixes;
    mixes.mixes.reserve(static_cast<std::size_t>(end - begin));
    for (int i = begin; i < end; ++i)
    {
        const int index = side.mirrored ? side.length - 1 - i : i;
        side.length < side.sourceLength ? mixArea(mixes, side, index, bound) : mixNeighbours(mixes, side, index, bound);
    }
    return mixes;
}

/// Counted in parts of which a target pixel has sourceLength and a source pixel `length`.
void ScaledPicture::mixArea(Mixes &mixes, const ScaledSide &side, int index, int bound)
{
    const std::int64_t size = side.length;
    const std::int64_t from = static_cast<std::int64_t>(index) * side.sourceLength;
    const std::int64_t to = from + side.sourceLength;
    Mix mix;
    mix.weights = mixes.weights.size();
    for (std::int64_t j = from / size; j * size < to; ++j)
    {
        const std::int64_t place = side.sourceBegin + j;
        if (place >= 0 && place < bound)
        {
            const auto weight = static_cast<std::uint32_t>(std::min(to, (j + 1) * size) - std::max(from, j * size));
            mix.first = mix.count == 0 ? static_cast<int>(place) : mix.first;
            ++mix.count;
            mix.total += weight;
            mixes.weights.push_back(weight);
        }
    }
    mixes.mixes.push_back(mix);
}

/// The two source pixels whose centres lie on either side of the target's; at the ends the last one alone. Counted in
/// parts of which a source pixel has twice the length.
void ScaledPicture::mixNeighbours(Mixes &mixes, const ScaledSide &side, int index, int bound)
{
    const std::int64_t unit = 2LL * side.length;
    const std::int64_t at = (2LL * index + 1) * side.sourceLength - side.length;
    const std::int64_t low = std::max<std::int64_t>(0, -static_cast<std::int64_t>(side.sourceBegin));
    const std::int64_t high =
        std::min<std::int64_t>(side.sourceLength, static_cast<std::int64_t>(bound) - side.sourceBegin) - 1;
    const std::int64_t left = at >= 0 ? at / unit : -1;
    const std::int64_t part = at - left * unit;
    Mix mix;
    mix.weights = mixes.weights.size();
    const std::int64_t nearest =
        std::clamp<std::int64_t>(part * 2 < unit ? left : left + 1, 0, std::int64_t{side.sourceLength} - 1);
    if (nearest >= low && nearest <= high)
    {
        const std::int64_t one = std::clamp(left, low, high);
        const std::int64_t other = std::clamp(left + 1, low, high);
        mix.first = static_cast<int>(side.sourceBegin + one);
        mix.count = one == other ? 1 : 2;
        mix.total = static_cast<std::uint32_t>(unit);
        mixes.weights.push_back(static_cast<std::uint32_t>(one == other ? unit : unit - part));
        if (one != other)
        {
            mixes.weights.push_back(static_cast<std::uint32_t>(part));
        }
    }
    mixes.mixes.push_back(mix);
}

const std::vector<ScaledPicture::Sums> &ScaledPicture::sumsOfRow(int y)
{
    for (std::size_t i = 0; i < 2; ++i)
    {
        if (m_kept[i].y == y)
        {
            m_older = 1 - i;
            return m_kept[i].sums;
        }
    }
    ScaledRow &row = m_kept[m_older];
    m_older = 1 - m_older;
    row.y = y;
    row.sums.resize(m_result.size());
    m_reading.read(m_source.row(y), m_source.width(), m_read.data());
    for (std::size_t x = 0; x < row.sums.size(); ++x)
    {
        const Mix &mix = m_columns.mixes[x];
        Sums sums{};
        for (int i = 0; i < mix.count; ++i)
        {
            const std::uint32_t pixel = m_read[static_cast<std::size_t>(mix.first + i)];
            const std::uint32_t weight = m_columns.weights[mix.weights + static_cast<std::size_t>(i)] * (pixel >> 24U);
            sums.opacity += weight;
            sums.red += weight * red(pixel);
            sums.green += weight * green(pixel);
            sums.blue += weight * blue(pixel);
        }
        row.sums[x] = sums;
    }
    return row.sums;
}

std::uint32_t ScaledPicture::pixelOf(const WideSums &sums, std::uint64_t weight)
{
    if (weight == 0)
    {
        return 0;
    }
    const std::uint64_t opacity = (sums.opacity + weight / 2) / weight;
    if (opacity == 0)
    {
        return 0;
    }
    const std::uint64_t half = sums.opacity / 2;
    const auto part = [&](std::uint64_t sum) { return static_cast<std::uint32_t>((sum + half) / sums.opacity); };
    return static_cast<std::uint32_t>(opacity) << 24U | part(sums.red) << 16U | part(sums.green) << 8U |
           part(sums.blue);
}

const std::uint32_t *ScaledPicture::mixedRow(int y)
{
    const Mix &down = m_rows.mixes[static_cast<std::size_t>(y - m_wanted.top)];
    std::fill(m_wide.begin(), m_wide.end(), WideSums{});
    for (int i = 0; i < down.count; ++i)
    {
        const std::vector<Sums> &sums = sumsOfRow(down.first + i);
        const std::uint64_t weight = m_rows.weights[down.weights + static_cast<std::size_t>(i)];
        for (std::size_t x = 0; x < sums.size(); ++x)
        {
            m_wide[x].opacity += weight * sums[x].opacity;
            m_wide[x].red += weight * sums[x].red;
            m_wide[x].green += weight * sums[x].green;
            m_wide[x].blue += weight * sums[x].blue;
        }
    }
    for (std::size_t x = 0; x < m_result.size(); ++x)
    {
        m_result[x] = pixelOf(m_wide[x], static_cast<std::uint64_t>(m_columns.mixes[x].total) * down.total);
    }
    return m_result.data();
}
} // namespace zb::internal
