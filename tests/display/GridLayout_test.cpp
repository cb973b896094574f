// The grid's geometry in numbers.
#include "display/GridLayout.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace
{
using zb::GridSizes;

/// The view of lines by filling a strip of pixels, one entry each.
zb::GridView viewByPixels(const GridSizes &sizes, USHORT fixedCount, USHORT first, LONG length)
{
    zb::GridView view;
    view.first = first;
    view.last = first;
    std::vector<USHORT> order;
    for (USHORT line = 0; line < sizes.size(); ++line)
    {
        if (line < fixedCount || line >= first)
        {
            order.push_back(line);
        }
    }
    LONG from = 0;
    for (const USHORT line : order)
    {
        if (from < length)
        {
            view.last = line;
            view.partial = from + sizes[line] > length;
            if (sizes[line] > 0)
            {
                view.edges.emplace_back(from + sizes[line], line);
            }
        }
        from += sizes[line];
    }
    return view;
}
} // namespace

TEST(GridLayout, freeColumnsShareWhatIsLeft)
{
    EXPECT_EQ(zb::sharedWidths({100, 0xFFFF, 0xFFFF, 0xFFFF}, 241), (GridSizes{100, 47, 47, 47}));
    EXPECT_EQ(zb::sharedWidths({100, 0xFFFF, 0xFFFF, 0xFFFF}, 242), (GridSizes{100, 48, 47, 47}));
    EXPECT_EQ(zb::sharedWidths({0xFFFF, 100, 0xFFFF, 0xFFFF}, 243), (GridSizes{48, 100, 48, 47}));
    EXPECT_EQ(zb::sharedWidths({30, 40}, 200), (GridSizes{30, 40}));
    EXPECT_EQ(zb::sharedWidths({300, 0xFFFF}, 200), (GridSizes{300, 0}));
    EXPECT_EQ(zb::sharedWidths({}, 200), GridSizes{});
}

TEST(GridLayout, sharesAddUpToTheWidth)
{
    for (unsigned seed = 0; seed < 500; ++seed)
    {
        std::mt19937 random(seed);
        GridSizes asked(1 + random() % 12);
        LONG taken = 0;
        for (USHORT &one : asked)
        {
            one = random() % 2 == 0 ? static_cast<USHORT>(random() % 30) : USHORT{0xFFFF};
            taken += one == 0xFFFF ? 0 : one;
        }
        const LONG width = taken + static_cast<LONG>(random() % 300);
        const GridSizes widths = zb::sharedWidths(asked, width);
        const bool shares = std::count(asked.begin(), asked.end(), 0xFFFF) > 0;
        EXPECT_EQ(std::accumulate(widths.begin(), widths.end(), 0), shares ? width : taken) << seed;
    }
}

TEST(GridLayout, theLargestFirstLineShowsTheEnd)
{
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10, 10}, 0, 40), 0);   // all fit exactly
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10, 10}, 0, 100), 0);  // the walk runs out
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10, 10}, 0, 20), 2);   // the sum is reached
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10, 10}, 0, 25), 2);   // the sum is passed: one further
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10, 90}, 0, 40), 3);   // taller than the area
    EXPECT_EQ(zb::largestFirstLine({90}, 0, 40), 0);
    EXPECT_EQ(zb::largestFirstLine({10, 10, 90}, 1, 40), 2);
    EXPECT_EQ(zb::largestFirstLine({10, 10, 10}, 1, 40), 0); // all fit behind the fixed one
    EXPECT_EQ(zb::largestFirstLine({10, 10}, 2, 40), 2); // nothing scrolls: the first free line
    EXPECT_EQ(zb::largestFirstLine({}, 0, 40), 0);
}

TEST(GridLayout, anEdgeBelongsToTheLineThatEndsThere)
{
    const GridSizes sizes = {15, 15, 20};
    const auto view = zb::viewOfLines(3, 0, 0, 100, [&](USHORT line) { return sizes[line]; });
    EXPECT_EQ(view.lineAt(0), 0);
    EXPECT_EQ(view.lineAt(15), 0);
    EXPECT_EQ(view.lineAt(16), 1);
    EXPECT_EQ(view.lineAt(30), 1);
    EXPECT_EQ(view.lineAt(50), 2);
    EXPECT_EQ(view.lineAt(51), 0xFFFF);
}

TEST(GridLayout, viewsThatOnlyMovedDidNothingElse)
{
    GridSizes sizes = {10, 20, 20, 20, 20, 20};
    const auto view = [&](USHORT first)
    { return zb::viewOfLines(6, 1, first, 60, [&](USHORT line) { return sizes[line]; }); };
    const zb::GridView before = view(1);
    EXPECT_EQ(zb::distanceOfLines(sizes, 3, 1), -40);
    EXPECT_EQ(zb::distanceOfLines(sizes, 1, 3), 40);
    EXPECT_TRUE(zb::movedBy(before, view(2), 1, -20));
    EXPECT_TRUE(zb::movedBy(view(3), before, 1, 40));
    EXPECT_FALSE(zb::movedBy(before, view(2), 1, -19));
    EXPECT_TRUE(zb::movedBy({}, before, 1, 5)) << "nothing is in both";
    sizes[2] = 25;
    EXPECT_FALSE(zb::movedBy(before, view(2), 1, -20)) << "a line has grown";
    sizes = {12, 20, 20, 20, 20, 20};
    EXPECT_FALSE(zb::movedBy(before, view(2), 1, -20)) << "a fixed one, too";
}

TEST(GridLayout, whatShowsIsThatOfTheModel)
{
    for (unsigned seed = 0; seed < 3000; ++seed)
    {
        std::mt19937 random(seed);
        GridSizes sizes(1 + random() % 20);
        for (USHORT &size : sizes)
        {
            size = static_cast<USHORT>(random() % 40);
        }
        const auto count = static_cast<USHORT>(sizes.size());
        const auto fixed = static_cast<USHORT>(random() % 3 % count);
        const auto first = static_cast<USHORT>(fixed + random() % static_cast<unsigned>(count - fixed));
        const auto length = static_cast<LONG>(1 + random() % 150);
        const auto view = zb::viewOfLines(count, fixed, first, length, [&](USHORT line) { return sizes[line]; });
        const auto model = viewByPixels(sizes, fixed, first, length);
        ASSERT_EQ(view.last, model.last) << seed;
        ASSERT_EQ(view.partial, model.partial) << seed;
        ASSERT_EQ(view.edges, model.edges) << seed;
    }
}
