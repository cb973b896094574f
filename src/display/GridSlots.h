// How floaters that overlap share the width of their column.
//
// Floaters that meet in a row, or do so through others, are a block. All of a block have slots of one width: as many as
// the fullest row has floaters. A floater takes the lowest slot that is free in its first row and keeps it, so one that
// begins where another has ended stands in its place.
//
// Example: floaters over rows 1 to 3, 2 to 4 and 4 to 5 are one block of 2 slots; they stand in 0, 1 and 0.
#pragma once

#include "display/GridRecords.h"

#include <functional>

namespace zb
{
/// The cell of a row of the column, null where there is none.
using GridColumnCells = std::function<tagCELLINFO *(USHORT row)>;

struct GridRowSpan
{
    USHORT first;
    USHORT last; ///< inclusive
};

/// Rows that a floater in the cell of `row` covers, at most up to the last of `rowCount`.
ZBTOOLS_API GridRowSpan floaterBounds(const GridColumnCells &cells, USHORT row, const tagFLOATERINFO &floater,
                                      USHORT rowCount);
/// Rows of the block that the cell of `row` belongs to, and the greatest number of floaters in one of its cells: 0 when
/// the cell has none.
ZBTOOLS_API USHORT floaterBlockBounds(const GridColumnCells &cells, USHORT row, USHORT rowCount, GridRowSpan &bounds);
/// Gives all floaters of that block their slots and marks its cells as valid.
ZBTOOLS_API void assignFloaterSlots(const GridColumnCells &cells, USHORT row, USHORT rowCount);
} // namespace zb
