#include "display/GridLayout.h"

#include <algorithm>

namespace zb
{
namespace
{
constexpr USHORT shared = 0xFFFF;
}

LONGLONG sumOfLines(const GridSizes &sizes, std::size_t from, std::size_t to)
{
    LONGLONG sum = 0;
    for (std::size_t line = from; line < std::min(to, sizes.size()); ++line)
    {
        sum += sizes[line];
    }
    return sum;
}

LONGLONG distanceOfLines(const GridSizes &sizes, std::size_t from, std::size_t to)
{
    return from <= to ? sumOfLines(sizes, from, to) : -sumOfLines(sizes, to, from);
}

GridSizes sharedWidths(const GridSizes &asked, LONG width)
{
    LONGLONG taken = 0;
    LONGLONG free = 0;
    for (const USHORT one : asked)
    {
        taken += one == shared ? 0 : one;
        free += one == shared ? 1 : 0;
    }
    const LONGLONG left = std::clamp<LONGLONG>(width - taken, 0, shared - 1);
    LONGLONG larger = free == 0 ? 0 : left % free;
    GridSizes widths = asked;
    for (USHORT &one : widths)
    {
        if (one == shared)
        {
            one = static_cast<USHORT>(left / free + (larger > 0 ? 1 : 0));
            --larger;
        }
    }
    return widths;
}

USHORT largestFirstLine(const GridSizes &sizes, USHORT fixedCount, LONG available)
{
    if (sizes.size() <= fixedCount)
    {
        return fixedCount;
    }
    if (sizes.back() > available)
    {
        return static_cast<USHORT>(sizes.size() - 1);
    }
    LONGLONG sum = 0;
    for (std::size_t line = sizes.size(); line-- > fixedCount;)
    {
        sum += sizes[line];
        if (sum >= available)
        {
            return static_cast<USHORT>(line + (sum > available ? 1 : 0));
        }
    }
    return 0;
}

USHORT GridView::lineAt(LONG distance) const
{
    const auto found = std::lower_bound(edges.begin(), edges.end(), distance,
                                        [](const auto &edge, LONG wanted) { return edge.first < wanted; });
    return found == edges.end() ? shared : found->second;
}

bool movedBy(const GridView &before, const GridView &after, USHORT fixedCount, LONGLONG distance)
{
    auto former = before.edges.begin();
    for (const auto &[edge, line] : after.edges)
    {
        while (former != before.edges.end() && former->second < line)
        {
            ++former;
        }
        if (former == before.edges.end())
        {
            return true;
        }
        if (former->second == line && edge != former->first + (line < fixedCount ? 0 : distance))
        {
            return false;
        }
    }
    return true;
}

GridView viewOfLines(USHORT count, USHORT fixedCount, USHORT first, LONG length,
                     const std::function<USHORT(USHORT)> &sizeOf)
{
    GridView view;
    first = std::max(first, fixedCount);
    view.first = first;
    view.last = first;
    LONG edge = 0;
    for (LONG line = fixedCount > 0 ? 0 : first; line < count; line = line + 1 == fixedCount ? first : line + 1)
    {
        if (edge >= length)
        {
            return view;
        }
        const USHORT size = sizeOf(static_cast<USHORT>(line));
        edge += size;
        if (size > 0)
        {
            view.edges.emplace_back(edge, static_cast<USHORT>(line));
        }
        view.last = static_cast<USHORT>(line);
        view.partial = edge > length;
    }
    return view;
}
} // namespace zb
