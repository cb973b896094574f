// Slots of floaters against the rule told in one go: blocks by chains of overlaps, lowest free slot first.
#include "display/GridSlots.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
class Column
{
  public:
    explicit Column(USHORT rows) : m_cells(rows)
    {
    }
    tagFLOATERINFO &add(DWORD id, USHORT first, USHORT rows)
    {
        auto &floater = *m_floaters.emplace_back(std::make_unique<tagFLOATERINFO>());
        floater.dwID = id;
        floater.nRows = rows;
        floater.pOwner = &m_cells[first];
        for (std::size_t row = first; row < std::min<std::size_t>(first + rows, m_cells.size()); ++row)
        {
            m_cells[row].Floaters[id] = &floater;
        }
        return floater;
    }
    zb::GridColumnCells cells()
    {
        return [this](USHORT row) { return row < m_cells.size() ? &m_cells[row] : nullptr; };
    }
    void assignAll()
    {
        for (std::size_t row = 0; row < m_cells.size(); ++row)
        {
            if (m_cells[row].bFloatersValid == 0)
            {
                zb::assignFloaterSlots(cells(), static_cast<USHORT>(row), static_cast<USHORT>(m_cells.size()));
            }
        }
    }
    tagCELLINFO &cell(std::size_t row)
    {
        return m_cells[row];
    }

  private:
    std::vector<tagCELLINFO> m_cells;
    std::vector<std::unique_ptr<tagFLOATERINFO>> m_floaters;
};

struct Span
{
    DWORD id;
    int first;
    int last;
    int slot = -1;
    int slots = 0;
};

bool meet(const Span &a, const Span &b)
{
    return a.first <= b.last && b.first <= a.last;
}

/// Blocks by joining until nothing changes, then slots row by row.
void solve(std::vector<Span> &spans, int rows)
{
    std::vector<std::size_t> block(spans.size());
    for (std::size_t i = 0; i < block.size(); ++i)
    {
        block[i] = i;
    }
    for (bool changed = true; changed;)
    {
        changed = false;
        for (std::size_t i = 0; i < spans.size(); ++i)
        {
            for (std::size_t j = 0; j < spans.size(); ++j)
            {
                if (meet(spans[i], spans[j]) && block[i] < block[j])
                {
                    block[j] = block[i];
                    changed = true;
                }
            }
        }
    }
    const auto inRow = [&](int row)
    {
        std::vector<std::size_t> found;
        for (std::size_t i = 0; i < spans.size(); ++i)
        {
            if (spans[i].first <= row && row <= spans[i].last)
            {
                found.push_back(i);
            }
        }
        return found;
    };
    for (int row = 0; row < rows; ++row)
    {
        for (const std::size_t i : inRow(row))
        {
            for (std::size_t j = 0; j < spans.size(); ++j)
            {
                spans[j].slots = block[j] == block[i] ? std::max(spans[j].slots, static_cast<int>(inRow(row).size()))
                                                      : spans[j].slots;
            }
        }
    }
    for (int row = 0; row < rows; ++row)
    {
        for (const std::size_t i : inRow(row)) // spans are in the order of their ids
        {
            for (int slot = 0; spans[i].first == row && spans[i].slot < 0; ++slot)
            {
                bool free = true;
                for (const std::size_t j : inRow(row))
                {
                    free = free && spans[j].slot != slot;
                }
                spans[i].slot = free ? slot : -1;
            }
        }
    }
}
} // namespace

TEST(GridSlots, aSlotIsTakenAgainOnceItsFloaterHasEnded)
{
    Column column(8);
    const auto &first = column.add(1, 1, 3);
    const auto &second = column.add(2, 2, 3);
    const auto &third = column.add(3, 4, 2);
    zb::GridRowSpan block{};
    for (USHORT row = 1; row <= 5; ++row)
    {
        EXPECT_EQ(zb::floaterBlockBounds(column.cells(), row, 8, block), 2) << row;
        EXPECT_EQ(block.first, 1) << row;
        EXPECT_EQ(block.last, 5) << row;
    }
    zb::assignFloaterSlots(column.cells(), 3, 8);
    EXPECT_EQ(first.nSlot, 0);
    EXPECT_EQ(second.nSlot, 1);
    EXPECT_EQ(third.nSlot, 0);
    for (const auto *floater : {&first, &second, &third})
    {
        EXPECT_EQ(floater->nSlots, 2);
        EXPECT_EQ(floater->nSlotWidth, 1);
    }
    EXPECT_EQ(column.cell(0).bFloatersValid, 0);
    EXPECT_EQ(column.cell(1).bFloatersValid, 1);
    EXPECT_EQ(column.cell(5).bFloatersValid, 1);
    EXPECT_EQ(column.cell(6).bFloatersValid, 0);
}

TEST(GridSlots, separateFloatersEachHaveTheWholeColumn)
{
    Column column(8);
    const auto &upper = column.add(9, 0, 2);
    const auto &lower = column.add(4, 2, 3);
    column.assignAll();
    EXPECT_EQ(upper.nSlots, 1);
    EXPECT_EQ(upper.nSlot, 0);
    EXPECT_EQ(lower.nSlots, 1);
    EXPECT_EQ(lower.nSlot, 0);
}

TEST(GridSlots, aRowWithoutFloatersIsABlockOfNone)
{
    Column column(3);
    column.add(1, 0, 1);
    zb::GridRowSpan block{};
    EXPECT_EQ(zb::floaterBlockBounds(column.cells(), 2, 3, block), 0);
    EXPECT_EQ(block.first, 2);
    EXPECT_EQ(block.last, 2);
}

TEST(GridSlots, boundsEndWithTheGrid)
{
    Column column(5);
    const auto &floater = column.add(1, 3, 40);
    const auto bounds = zb::floaterBounds(column.cells(), 4, floater, 5);
    EXPECT_EQ(bounds.first, 3);
    EXPECT_EQ(bounds.last, 4);
}

TEST(GridSlots, randomFloatersFollowTheModel)
{
    constexpr int rows = 24;
    for (unsigned seed = 0; seed < 2000; ++seed)
    {
        std::mt19937 random(seed);
        const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
        Column column(rows);
        std::vector<Span> spans;
        std::vector<tagFLOATERINFO *> floaters;
        const int count = upTo(12);
        for (int id = 1; id <= count; ++id)
        {
            const int first = upTo(rows - 1);
            const int length = 1 + upTo(6);
            spans.push_back({static_cast<DWORD>(id), first, std::min(first + length, rows) - 1});
            floaters.push_back(
                &column.add(static_cast<DWORD>(id), static_cast<USHORT>(first), static_cast<USHORT>(length)));
        }
        solve(spans, rows);
        column.assignAll();
        for (std::size_t i = 0; i < spans.size(); ++i)
        {
            ASSERT_EQ(floaters[i]->nSlot, spans[i].slot) << "seed " << seed << " floater " << i + 1;
            ASSERT_EQ(floaters[i]->nSlots, spans[i].slots) << "seed " << seed << " floater " << i + 1;
            ASSERT_EQ(floaters[i]->nSlotWidth, 1);
        }
    }
}
