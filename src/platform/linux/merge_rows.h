// Sorting by an order of somebody else's.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zb::internal
{
/// Merges in rounds; equals keep their order. A foreign order may contradict itself: this gives some order then and
/// ends. compare gives below 0, 0 or above 0.
template <typename Row, typename Compare>
void mergeRows(std::vector<Row> &rows, Compare compare)
{
    std::vector<Row> merged(rows.size());
    for (std::size_t width = 1; width < rows.size(); width *= 2)
    {
        for (std::size_t first = 0; first < rows.size(); first += 2 * width)
        {
            std::size_t one = first;
            const std::size_t middle = std::min(first + width, rows.size());
            std::size_t other = middle;
            const std::size_t last = std::min(first + 2 * width, rows.size());
            for (std::size_t to = first; to < last; ++to)
            {
                const bool takesOther = other < last && (one == middle || compare(rows[one], rows[other]) > 0);
                merged[to] = rows[takesOther ? other++ : one++];
            }
        }
        rows.swap(merged);
    }
}
} // namespace zb::internal
