// CeList: indices, the cursor, callbacks, blocks.
#include "core/CeList.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{
using Numbers = CeList<ULONG>;
using Values = std::vector<ULONG>;

Values valuesOf(Numbers &list)
{
    Values values;
    for (int i = 0; i < list.GetCount(); ++i)
    {
        values.push_back(list.GetAt(list.GetBase() + i));
    }
    return values;
}

void fill(Numbers &list, const Values &values)
{
    for (const ULONG value : values)
    {
        ASSERT_EQ(list.AddTail(value), 0);
    }
}

// --- Indices and the cursor --------------------------------------------------------------------------------------

class CeListBases : public ::testing::TestWithParam<int>
{
};

TEST_P(CeListBases, IndicesCountFromTheBase)
{
    const int base = GetParam();
    Numbers list(base);
    EXPECT_EQ(list.GetBase(), base);
    EXPECT_EQ(list.GetIndex(), base - 1) << "no cursor yet";
    fill(list, {10, 20, 30});
    EXPECT_EQ(list.GetAt(base), 10U);
    EXPECT_EQ(list.GetAt(base + 2), 30U);
    EXPECT_EQ(list.GetLastIndex(), base + 2);
    EXPECT_EQ(list.GetTail(), 30U);
    EXPECT_EQ(list.MoveTo(base - 1), 1);
    EXPECT_EQ(list.MoveTo(base + 3), 1);
    EXPECT_EQ(list.MoveTo(base + 1), 0);
    EXPECT_EQ(list.GetIndex(), base + 1);
}

INSTANTIATE_TEST_SUITE_P(Both, CeListBases, ::testing::Values(0, 1));

TEST(CeList, ErrorNumbersAreThoseThatHostsKnow)
{
    EXPECT_EQ(CELIST_OK, 0);
    EXPECT_EQ(CELIST_RANGE, 1);
    EXPECT_EQ(CELIST_MEMORY, 2);
    EXPECT_EQ(CELIST_LINKS, 3);
    EXPECT_EQ(CELIST_FILE, 4);
    EXPECT_EQ(CELIST_VERSION, 5);
    EXPECT_EQ(CELIST_READ, 0);
    EXPECT_EQ(CELIST_WRITE, 1);
}

TEST(CeList, ReadsThatMissGiveTheNullValueAndLeaveTheCursor)
{
    CeList<ULONG> list(1, nullptr, nullptr, nullptr, nullptr, 77);
    EXPECT_EQ(list.GetAt(1), 77U);
    EXPECT_EQ(list.GetTail(), 77U);
    fill(list, {10, 20, 30});
    list.MoveTo(2);
    for (const int miss : {0, -1, 4, 2147483647, -2147483647 - 1})
    {
        EXPECT_EQ(list.GetAt(miss), 77U);
        EXPECT_EQ(list.GetPtrAt(miss), nullptr);
        EXPECT_EQ(list.GetIndex(), 2);
    }
}

TEST(CeList, AddingMovesTheCursorToTheNewNode)
{
    Numbers list(1);
    list.AddTail(2);
    EXPECT_EQ(list.GetIndex(), 1);
    list.AddTail(3);
    EXPECT_EQ(list.GetIndex(), 2);
    list.AddHead(1);
    EXPECT_EQ(list.GetIndex(), 1);
    EXPECT_EQ(valuesOf(list), (Values{1, 2, 3}));
}

TEST(CeList, InsertAtGoesInFrontAndClampsBothEnds)
{
    Numbers list(1);
    fill(list, {10, 20, 30});
    EXPECT_EQ(list.InsertAt(2, 15), 0);
    EXPECT_EQ(list.GetIndex(), 2);
    EXPECT_EQ(list.InsertAt(1, 5), 0);
    EXPECT_EQ(list.GetIndex(), 1);
    EXPECT_EQ(list.InsertAt(-9, 4), 0);
    EXPECT_EQ(list.GetIndex(), 1);
    EXPECT_EQ(list.InsertAt(7, 40), 0);
    EXPECT_EQ(list.GetIndex(), 7);
    EXPECT_EQ(list.InsertAt(2147483647, 50), 0);
    EXPECT_EQ(list.GetIndex(), 8);
    EXPECT_EQ(list.InsertAt(8, 45), 0) << "in front of the last";
    EXPECT_EQ(valuesOf(list), (Values{4, 5, 10, 15, 20, 30, 40, 45, 50}));
}

TEST(CeList, RemoveAtLeavesTheCursorOnTheNextElement)
{
    Numbers list(1);
    fill(list, {10, 20, 30, 40});
    EXPECT_EQ(list.RemoveAt(2), 0);
    EXPECT_EQ(list.GetIndex(), 2);
    EXPECT_EQ(list.GetAt(2), 30U) << "the same index gives the next element";
    EXPECT_EQ(list.RemoveAt(3), 0);
    EXPECT_EQ(list.GetIndex(), 2) << "behind the last, the one before";
    EXPECT_EQ(list.RemoveAt(3), 1);
    EXPECT_EQ(list.RemoveAt(0), 1);
    EXPECT_EQ(list.GetIndex(), 2);
    EXPECT_EQ(list.RemoveAt(1), 0);
    EXPECT_EQ(list.GetIndex(), 1);
    EXPECT_EQ(list.RemoveAt(1), 0);
    EXPECT_EQ(list.GetIndex(), 0) << "nothing left";
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.RemoveAt(1), 1);
    list.AddTail(5);
    EXPECT_EQ(list.GetAt(1), 5U);
}

TEST(CeList, SetAtReplacesAndAppendsOnePastTheLast)
{
    Numbers list(0);
    EXPECT_EQ(list.SetAt(0, 1), 0);
    EXPECT_EQ(list.SetAt(1, 2), 0);
    EXPECT_EQ(list.SetAt(0, 9), 0);
    EXPECT_EQ(list.GetIndex(), 0);
    EXPECT_EQ(list.SetAt(3, 5), 1);
    EXPECT_EQ(list.SetAt(-1, 5), 1);
    EXPECT_EQ(valuesOf(list), (Values{9, 2}));
}

TEST(CeList, EveryPositionIsReachedFromEveryOther)
{
    Numbers list(0);
    for (ULONG i = 0; i < 23; ++i)
    {
        list.AddTail(i);
    }
    for (int from = 0; from < 23; ++from)
    {
        for (int to = 0; to < 23; ++to)
        {
            ASSERT_EQ(list.MoveTo(from), 0);
            ASSERT_EQ(list.GetAt(to), static_cast<ULONG>(to));
            ASSERT_EQ(list.GetIndex(), to);
        }
    }
}

TEST(CeList, WalksByIndexTakeOneStepAnElement)
{
    // With a search from an end for each index these walks would take ten thousand million steps.
    constexpr int count = 200000;
    Numbers list(1);
    list.SetSize(count);
    for (int i = 1; i <= count; ++i)
    {
        list.SetAt(i, static_cast<ULONG>(i));
    }
    ULONGLONG sum = 0;
    for (int i = 1; i <= count; ++i)
    {
        sum += list.GetAt(i);
    }
    for (int i = count; i >= 1; --i)
    {
        sum -= list.GetAt(i);
    }
    EXPECT_EQ(sum, 0U);
    list.MoveTo(count / 2);
    for (int i = 0; i < count / 4; ++i)
    {
        ASSERT_EQ(list.RemoveAt(count / 2), 0);
        ASSERT_EQ(list.GetAt(count / 2), static_cast<ULONG>(count / 2 + i + 1));
    }
}

/// Moves from `cursor` to `target` in a list of 11 whose link from one node to its neighbour is cut, and mends it
/// again. 3 tells that the walk came by there, 0 that it took another way.
int moveAcrossCut(int cursor, int target, int from, int to)
{
    CeList<void *> list(1);
    list.SetSize(11);
    list.MoveTo(from);
    char *node = reinterpret_cast<char *>(list.GetPtrAt(from)) - 2 * sizeof(void *);
    char *link = node + (to > from ? sizeof(void *) : 0);
    void *const nothing = nullptr;
    void *kept = nullptr;
    EXPECT_EQ(list.MoveTo(cursor), 0);
    std::memcpy(&kept, link, sizeof(kept));
    std::memcpy(link, &nothing, sizeof(nothing));
    const int error = list.MoveTo(target);
    EXPECT_EQ(list.GetIndex(), error == 0 ? target : cursor) << "a walk that fails leaves the cursor";
    std::memcpy(link, &kept, sizeof(kept));
    return error;
}

TEST(CeList, AWalkStartsAtTheNearestOfHeadCursorAndTail)
{
    EXPECT_EQ(moveAcrossCut(3, 6, 4, 5), 3) << "forwards from the cursor";
    EXPECT_EQ(moveAcrossCut(3, 7, 4, 5), 3) << "as far from the tail: still from the cursor";
    EXPECT_EQ(moveAcrossCut(3, 8, 4, 5), 0);
    EXPECT_EQ(moveAcrossCut(3, 8, 10, 9), 3) << "back from the tail";
    EXPECT_EQ(moveAcrossCut(9, 4, 2, 3), 3) << "forwards from the head";
    EXPECT_EQ(moveAcrossCut(9, 4, 7, 6), 0);
    EXPECT_EQ(moveAcrossCut(8, 4, 2, 3), 0) << "as far from the head: from the cursor";
    EXPECT_EQ(moveAcrossCut(8, 4, 6, 5), 3);
    EXPECT_EQ(moveAcrossCut(9, 5, 7, 6), 3) << "back from the cursor";
    EXPECT_EQ(moveAcrossCut(2, 1, 2, 1), 0) << "the head is taken at once";
    EXPECT_EQ(moveAcrossCut(9, 11, 9, 10), 0) << "and the tail";
    EXPECT_EQ(moveAcrossCut(10, 11, 10, 11), 3) << "but a neighbour first";
}

TEST(CeList, FindGivesTheFirstThatComparesEqual)
{
    Numbers list(1);
    fill(list, {5, 7, 7});
    EXPECT_EQ(list.Find(7), 2);
    EXPECT_EQ(list.GetIndex(), 2);
    EXPECT_EQ(list.Find(8), 0);
    EXPECT_EQ(list.GetIndex(), 2);
}

TEST(CeList, NodesOfAPointerAreThreeWords)
{
    // What malloc hands out for a node: two links and the value, nothing else.
    CeList<void *> list;
    list.AddTail(nullptr);
    const auto *value = reinterpret_cast<char *>(list.GetPtrAt(0));
    const char *links[2];
    std::memcpy(links, value - 2 * sizeof(void *), sizeof(links));
    EXPECT_EQ(links[0], nullptr);
    EXPECT_EQ(links[1], nullptr);
}

// --- Callbacks ---------------------------------------------------------------------------------------------------

/// What the callbacks were called with, in order.
std::vector<std::string> *calls = nullptr;

void noteConstruct(ULONG &dest, const ULONG &source, DWORD_PTR user)
{
    calls->push_back("construct " + std::to_string(source) + " user " + std::to_string(user));
    dest = source;
}

void noteDestroy(ULONG &element, DWORD_PTR user)
{
    calls->push_back("destroy " + std::to_string(element) + " user " + std::to_string(user));
}

class CeListCallbacks : public ::testing::Test
{
  protected:
    using Calls = std::vector<std::string>;
    void SetUp() override
    {
        calls = &m_calls;
        m_list.SetUser(3);
    }
    Calls took()
    {
        return std::exchange(m_calls, {});
    }
    Calls m_calls;
    Numbers m_list{1, noteConstruct, noteDestroy, nullptr, nullptr, 0};
};

TEST_F(CeListCallbacks, GetTheUserValueLast)
{
    m_list.AddTail(1);
    m_list.AddHead(2);
    m_list.InsertAt(2, 3);
    EXPECT_EQ(took(), (Calls{"construct 1 user 3", "construct 2 user 3", "construct 3 user 3"}));
    m_list.RemoveAt(2);
    EXPECT_EQ(took(), Calls{"destroy 3 user 3"});
}

TEST_F(CeListCallbacks, SetAtDestroysThenConstructs)
{
    m_list.AddTail(1);
    took();
    m_list.SetAt(1, 2);
    EXPECT_EQ(took(), (Calls{"destroy 1 user 3", "construct 2 user 3"}));
    m_list.SetAt(9, 5);
    EXPECT_EQ(took(), Calls());
}

TEST_F(CeListCallbacks, RemoveAllGoesFromTheHeadAndKeepsTheConfiguration)
{
    m_list.AddTail(1);
    m_list.AddTail(2);
    m_list.AddTail(3);
    took();
    m_list.RemoveAll();
    EXPECT_EQ(took(), (Calls{"destroy 1 user 3", "destroy 2 user 3", "destroy 3 user 3"}));
    EXPECT_EQ(m_list.GetCount(), 0);
    EXPECT_EQ(m_list.GetUser(), 3U);
    EXPECT_EQ(m_list.GetBase(), 1);
    m_list.AddTail(4);
    EXPECT_EQ(took(), Calls{"construct 4 user 3"});
}

TEST_F(CeListCallbacks, SetSizeConstructsNullsAndRemovesFromTheTail)
{
    m_list.SetSize(2);
    EXPECT_EQ(took(), (Calls{"construct 0 user 3", "construct 0 user 3"}));
    m_list.SetAt(1, 5);
    m_list.SetAt(2, 6);
    took();
    m_list.SetSize(0);
    EXPECT_EQ(took(), (Calls{"destroy 6 user 3", "destroy 5 user 3"}));
    m_list.SetSize(7);
    EXPECT_EQ(took().size(), 7U);
}

TEST_F(CeListCallbacks, SortConstructsAndDestroysNothing)
{
    m_list.AddTail(2);
    m_list.AddTail(1);
    took();
    m_list.Sort(true);
    EXPECT_EQ(took(), Calls());
    EXPECT_EQ(valuesOf(m_list), (Values{1, 2}));
}

TEST(CeList, DefaultCompareIsUnsigned)
{
    CeList<LONG> list(0);
    list.AddTail(-1);
    list.AddTail(1);
    list.Sort(true);
    EXPECT_EQ(list.GetAt(0), 1);
    EXPECT_EQ(list.GetAt(1), -1) << "0xFFFFFFFF is the larger";
}

// --- Size --------------------------------------------------------------------------------------------------------

TEST(CeListSize, GrowsWithNullsAndShrinksFromTheTail)
{
    CeList<ULONG> list(1, nullptr, nullptr, nullptr, nullptr, 7);
    EXPECT_EQ(list.SetSize(-1), 1);
    EXPECT_EQ(list.SetSize(5), 0);
    EXPECT_EQ(valuesOf(list), Values(5, 7));
    EXPECT_EQ(list.SetSize(11), 0);
    EXPECT_EQ(valuesOf(list), Values(11, 7));
    list.MoveTo(4);
    EXPECT_EQ(list.SetSize(11), 0);
    EXPECT_EQ(list.GetIndex(), 4) << "the right size already";
    EXPECT_EQ(list.SetSize(3), 0);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetIndex(), 3);
}

TEST(CeListSize, BothWaysOfGrowingLeaveTheCursorOnTheLast)
{
    Numbers small(1);
    small.SetSize(5);
    EXPECT_EQ(small.GetIndex(), 5);
    Numbers large(1);
    large.SetSize(6);
    EXPECT_EQ(large.GetIndex(), 6);
}

/// Whether the last `count` nodes of a list stand side by side. malloc rounds a node of three words up, so nodes of
/// their own never do.
bool inOnePiece(CeList<void *> &list, int count)
{
    for (int i = list.GetLastIndex() - count + 1; i < list.GetLastIndex(); ++i)
    {
        const auto *here = reinterpret_cast<char *>(list.GetPtrAt(i));
        const auto *next = reinterpret_cast<char *>(list.GetPtrAt(i + 1));
        if (next - here != 3 * sizeof(void *))
        {
            return false;
        }
    }
    return true;
}

TEST(CeListSize, GrowsBySixOrMoreInOnePiece)
{
    CeList<void *> list(1);
    list.SetSize(5);
    EXPECT_FALSE(inOnePiece(list, 5));
    list.SetSize(11);
    EXPECT_TRUE(inOnePiece(list, 6));
    list.SetSize(16);
    EXPECT_FALSE(inOnePiece(list, 5)) << "what counts is the growth, not the size";
}

TEST(CeListSize, BlocksSurviveInsertionsAndRemovalsAnywhere)
{
    // Nodes of blocks and nodes of their own side by side, in every order; the sanitizers see a wrong release.
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round)
    {
        Numbers list(1);
        for (int step = 0; step < 40; ++step)
        {
            const int count = list.GetCount();
            const int index = std::uniform_int_distribution<int>(0, count + 1)(random);
            switch (random() % 4)
            {
            case 0:
                list.SetSize(count + 6 + static_cast<int>(random() % 5));
                break;
            case 1:
                list.InsertAt(index, 1);
                break;
            default:
                list.RemoveAt(index);
                list.RemoveAt(index);
            }
        }
        while (list.GetCount() > 0)
        {
            ASSERT_EQ(list.RemoveAt(1 + static_cast<int>(random() % static_cast<unsigned>(list.GetCount()))), 0);
        }
    }
}

TEST(CeNodeBlocks, KnowsItsOwnNodesByAddress)
{
    CeNodeBlocks blocks;
    auto *first = static_cast<char *>(blocks.Allocate(2, 24));
    auto *second = static_cast<char *>(blocks.Allocate(1, 24));
    int foreign = 0;
    EXPECT_FALSE(blocks.Return(&foreign));
    EXPECT_TRUE(blocks.Return(second));
    EXPECT_FALSE(blocks.IsEmpty());
    EXPECT_TRUE(blocks.Return(first + 24));
    EXPECT_TRUE(blocks.Return(first));
    EXPECT_TRUE(blocks.IsEmpty());
    EXPECT_EQ(blocks.Allocate(static_cast<std::size_t>(-1), 24), nullptr);
    EXPECT_EQ(blocks.Allocate(0, 24), nullptr);
}

} // namespace
