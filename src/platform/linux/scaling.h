// A part of a surface in another size, row by row.
//
// Equal sizes copy, and whole multiples both ways repeat pixels, so that a picture with a key colour stays crisp when
// it grows; anything else averages over the area where it shrinks and interpolates where it grows. Pixels count by
// their opacity, so the colour of one that lets through never shows. All arithmetic is exact and in integers.
//
// Threads: one at a time.
#pragma once

#include "platform/linux/surface.h"

#include <optional>
#include <vector>

namespace zb::internal
{
/// How a row of source pixels becomes pixels with opacity, colours not multiplied by it.
struct PixelReading
{
    /// Pixels of this colour (0x00RRGGBB) have no opacity.
    std::optional<std::uint32_t> key;
    /// The surface's own opacity counts; else all pixels without the key colour are opaque.
    bool soft = false;
    /// Stand for black and white, when given.
    std::optional<std::uint32_t> inkForBlack;
    std::uint32_t paperForWhite = whitePixel;
    /// This colour becomes white and all else black, when given.
    std::optional<std::uint32_t> white;

    bool isPlain() const
    {
        return !key && !soft && !inkForBlack && !white;
    }
    void read(const std::uint32_t *from, int count, std::uint32_t *to) const;
};

/// A side of the source on a side of the target, which is `length` long, mirrored or not.
struct ScaledSide
{
    int sourceBegin = 0;
    int sourceLength = 0;
    int length = 0;
    bool mirrored = false;
};

class ScaledPicture
{
  public:
    /// Rows and columns of the target that will be asked for: `wanted`, inside (0, 0, across.length, down.length).
    /// What lies outside the source has no opacity.
    ScaledPicture(const Surface &source, const ScaledSide &across, const ScaledSide &down, const PixelReading &reading,
                  const Box &wanted);

    /// The pixels of a wanted row, from wanted.left to wanted.right; stands until the next call. Rows asked for in
    /// order, up or down, cost least.
    const std::uint32_t *row(int y);

  private:
    /// Which source pixels make up a target pixel.
    struct Mix
    {
        int first = 0;
        int count = 0;
        std::size_t weights = 0;
        std::uint32_t total = 0; ///< of the weights; 0: nothing of it lies inside the source
    };
    struct Mixes
    {
        std::vector<Mix> mixes; ///< for each wanted pixel
        std::vector<std::uint32_t> weights;
    };
    /// Sums of a source row over the mixes of a target row: opacity, and red, green, blue times opacity.
    struct Sums
    {
        std::uint32_t opacity;
        std::uint32_t red;
        std::uint32_t green;
        std::uint32_t blue;
    };
    struct WideSums
    {
        std::uint64_t opacity;
        std::uint64_t red;
        std::uint64_t green;
        std::uint64_t blue;
    };
    struct ScaledRow
    {
        int y = -1;
        std::vector<Sums> sums;
    };

    static Mixes mixesOf(const ScaledSide &side, int begin, int end, int bound);
    static void mixArea(Mixes &mixes, const ScaledSide &side, int index, int bound);
    static void mixNeighbours(Mixes &mixes, const ScaledSide &side, int index, int bound);
    static std::uint32_t pixelOf(const WideSums &sums, std::uint64_t weight);
    const std::vector<Sums> &sumsOfRow(int y);
    const std::uint32_t *repeatedRow(int y);
    const std::uint32_t *mixedRow(int y);
    int sourceOf(const ScaledSide &side, int index) const;

    const Surface &m_source;
    ScaledSide m_across;
    ScaledSide m_down;
    PixelReading m_reading;
    Box m_wanted;
    bool m_repeats;
    Mixes m_columns;
    Mixes m_rows;
    std::vector<std::uint32_t> m_read;
    std::vector<WideSums> m_wide;
    ScaledRow m_kept[2];
    std::size_t m_older = 0;
    std::vector<std::uint32_t> m_result;
};
} // namespace zb::internal
