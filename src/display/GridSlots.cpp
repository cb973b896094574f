#include "display/GridSlots.h"

#include <algorithm>
#include <set>

namespace zb
{
namespace
{
/// What a floater's byte can count.
constexpr std::size_t mostSlots = 255;

void dropEnded(std::vector<tagFLOATERINFO *> &table, const tagCELLINFO &cell)
{
    for (tagFLOATERINFO *&entry : table)
    {
        const auto found = entry == nullptr ? cell.Floaters.end() : cell.Floaters.find(entry->dwID);
        if (found == cell.Floaters.end() || found->second != entry)
        {
            entry = nullptr;
        }
    }
}

void placeNew(std::vector<tagFLOATERINFO *> &table, const tagCELLINFO &cell)
{
    for (const auto &[id, floater] : cell.Floaters)
    {
        if (floater->pOwner != &cell)
        {
            continue;
        }
        // One of the first n is free: only the other n - 1 floaters of the cell stand in the table.
        const auto end = table.begin() + static_cast<std::ptrdiff_t>(std::min(cell.Floaters.size(), table.size()));
        auto free = std::find(table.begin(), end, nullptr);
        free = free == end ? table.end() - 1 : free;
        *free = floater;
        floater->nSlots = static_cast<BYTE>(table.size());
        floater->nSlotWidth = 1;
        floater->nSlot = static_cast<BYTE>(free - table.begin());
    }
}
} // namespace

GridRowSpan floaterBounds(const GridColumnCells &cells, USHORT row, const tagFLOATERINFO &floater, USHORT rowCount)
{
    USHORT first = row;
    while (first > 0 && cells(first) != floater.pOwner)
    {
        --first;
    }
    const int last = std::min<int>(first + std::max<int>(floater.nRows, 1), rowCount) - 1;
    return {first, static_cast<USHORT>(std::max<int>(last, first))};
}

USHORT floaterBlockBounds(const GridColumnCells &cells, USHORT row, USHORT rowCount, GridRowSpan &bounds)
{
    bounds = {row, row};
    std::set<const tagFLOATERINFO *> seen;
    std::size_t most = 0;
    const auto look = [&](int at)
    {
        const tagCELLINFO *cell = cells(static_cast<USHORT>(at));
        if (cell == nullptr)
        {
            return;
        }
        most = std::max(most, cell->Floaters.size());
        for (const auto &[id, floater] : cell->Floaters)
        {
            if (seen.insert(floater).second)
            {
                const GridRowSpan rows = floaterBounds(cells, static_cast<USHORT>(at), *floater, rowCount);
                bounds.first = std::min(bounds.first, rows.first);
                bounds.last = std::max(bounds.last, rows.last);
            }
        }
    };
    look(row);
    // Each row once, outwards; looking at one may move either end.
    for (int above = row, below = row; above > bounds.first || below < bounds.last;)
    {
        if (above > bounds.first)
        {
            look(--above);
        }
        if (below < bounds.last)
        {
            look(++below);
        }
    }
    return static_cast<USHORT>(most);
}

void assignFloaterSlots(const GridColumnCells &cells, USHORT row, USHORT rowCount)
{
    GridRowSpan bounds{};
    const std::size_t slots = std::min<std::size_t>(floaterBlockBounds(cells, row, rowCount, bounds), mostSlots);
    std::vector<tagFLOATERINFO *> table(slots);
    for (int at = bounds.first; at <= bounds.last; ++at)
    {
        tagCELLINFO *cell = cells(static_cast<USHORT>(at));
        if (cell == nullptr)
        {
            continue;
        }
        dropEnded(table, *cell);
        placeNew(table, *cell);
        cell->bFloatersValid = 1;
    }
}
} // namespace zb
