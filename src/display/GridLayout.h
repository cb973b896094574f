// The grid's geometry in numbers alone: shares of widths, limits of scrolling, what of a run of sizes shows.
//
// Rows and columns follow the same rules, so all of it is told for lines: a line is a row with its height or a column
// with its width. The fixed lines stand first and always show; the others scroll.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <functional>
#include <utility>
#include <vector>

namespace zb
{
using GridSizes = std::vector<USHORT>;

/// Sum of the sizes in [from, to), which may pass the end.
ZBTOOLS_API LONGLONG sumOfLines(const GridSizes &sizes, std::size_t from, std::size_t to);

/// From the near edge of one line to that of another, below 0 when that comes before.
ZBTOOLS_API LONGLONG distanceOfLines(const GridSizes &sizes, std::size_t from, std::size_t to);

/// The asked widths, where 0xFFFF shares what the others leave of `width`: evenly, the first ones a pixel more for the
/// remainder. Of 241 with 100 asked, three free columns get 47 each; of 242 they get 48, 47, 47.
ZBTOOLS_API GridSizes sharedWidths(const GridSizes &asked, LONG width);

/// The largest line that may stand first behind the fixed ones: the first from which all that follow fit into
/// `available`. That is the last line where that alone is taller, and 0 where all fit.
ZBTOOLS_API USHORT largestFirstLine(const GridSizes &sizes, USHORT fixedCount, LONG available);

/// What of the lines shows.
struct ZBTOOLS_API GridView
{
    USHORT first = 0;
    USHORT last = 0;
    /// The last one is cut by the edge.
    bool partial = false;
    /// Far edge of each line that shows, ascending, with the line. Lines without a size add nothing.
    std::vector<std::pair<LONG, USHORT>> edges;

    /// The line at a distance from the near edge; one that lies on an edge belongs to the line that ends there. 0xFFFF
    /// past the last one.
    USHORT lineAt(LONG distance) const;
};

/// Whether what both views show only moved: the fixed lines not at all, the others by `distance`.
ZBTOOLS_API bool movedBy(const GridView &before, const GridView &after, USHORT fixedCount, LONGLONG distance);

/// Walks the fixed lines, then those from `first` on, up to `length` pixels. sizeOf may find out sizes on the way.
ZBTOOLS_API GridView viewOfLines(USHORT count, USHORT fixedCount, USHORT first, LONG length,
                                 const std::function<USHORT(USHORT)> &sizeOf);
} // namespace zb
