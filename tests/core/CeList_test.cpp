// CeList: indices, the cursor, callbacks, blocks, sorting; and the lists built on it.
#include "core/CeActiveList.h"
#include "core/CePtrList.h"
#include "core/CeStrList.h"

#include "support/TestDevice.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
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
    EXPECT_EQ(list.SetSize(2147483647), 2) << "50 gigabytes";
    EXPECT_EQ(list.GetCount(), 3);
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

// --- Sorting -----------------------------------------------------------------------------------------------------

/// A key and who had it, so that equal keys can be told apart.
struct Row
{
    int key;
    char name;
};

struct Comparisons
{
    int count = 0;
};

int compareRows(const Row *a, const Row *b, DWORD_PTR user)
{
    if (user != 0)
    {
        ++reinterpret_cast<Comparisons *>(user)->count;
    }
    return a->key - b->key;
}

std::string sortedNames(const std::vector<Row> &rows, bool ascending)
{
    CeList<Row> list(1, nullptr, nullptr, compareRows);
    for (const Row &row : rows)
    {
        list.AddTail(row);
    }
    EXPECT_EQ(list.Sort(ascending), 0);
    EXPECT_EQ(list.GetIndex(), rows.empty() ? 0 : 1);
    std::string names;
    for (int i = 1; i <= list.GetCount(); ++i)
    {
        names += list.GetAt(i).name;
    }
    return names;
}

TEST(CeListSort, OneElementIsNotCompared)
{
    CeList<Row> list(1, nullptr, nullptr, compareRows);
    Comparisons comparisons;
    list.SetUser(reinterpret_cast<DWORD_PTR>(&comparisons));
    EXPECT_EQ(list.Sort(true), 0);
    list.AddTail({1, 'a'});
    EXPECT_EQ(list.Sort(true), 0);
    EXPECT_EQ(comparisons.count, 0);
    list.AddTail({2, 'b'});
    list.Sort(true);
    EXPECT_GT(comparisons.count, 0);
    EXPECT_EQ(list.GetIndex(), 1);
}

TEST(CeListSort, SortsBothWays)
{
    const std::vector<Row> rows{{3, 'c'}, {1, 'a'}, {4, 'd'}, {2, 'b'}};
    EXPECT_EQ(sortedNames(rows, true), "abcd");
    EXPECT_EQ(sortedNames(rows, false), "dcba");
    EXPECT_EQ(sortedNames({}, true), "");
}

TEST(CeListSort, EqualElementsAreLeftAsHoaresPartitionLeavesThem)
{
    // Three: pivot b; a and c change places; the pointers meet on b and step once.
    EXPECT_EQ(sortedNames({{2, 'a'}, {2, 'b'}, {2, 'c'}}, true), "cba");
    EXPECT_EQ(sortedNames({{2, 'a'}, {2, 'b'}, {2, 'c'}}, false), "cba");
    // Four: d c b a after the first pass; then each half is turned round.
    EXPECT_EQ(sortedNames({{2, 'a'}, {2, 'b'}, {2, 'c'}, {2, 'd'}}, true), "cdab");
    // Pivot b: it changes places with a; then the two 2s, a and c, change theirs.
    EXPECT_EQ(sortedNames({{2, 'a'}, {1, 'b'}, {2, 'c'}}, true), "bca");
}

/// The same rules by recursion, smaller side or not: the order of the sides changes nothing, since they don't touch.
template <class T, class Order>
void plainQuickSort(std::vector<T> &values, int low, int high, const Order &order)
{
    if (low >= high)
    {
        return;
    }
    const T pivot = values[static_cast<std::size_t>((low + high) / 2)];
    int left = low;
    int right = high;
    do
    {
        while (order(pivot, values[static_cast<std::size_t>(left)]) > 0)
        {
            ++left;
        }
        while (order(pivot, values[static_cast<std::size_t>(right)]) < 0)
        {
            --right;
        }
        if (left < right)
        {
            std::swap(values[static_cast<std::size_t>(left)], values[static_cast<std::size_t>(right)]);
            ++left;
            --right;
        }
        else if (left == right)
        {
            ++left;
            --right;
        }
    } while (left <= right);
    plainQuickSort(values, low, right, order);
    plainQuickSort(values, left, high, order);
}

TEST(CeListSort, PermutationIsThatOfThePlainRules)
{
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round)
    {
        std::vector<Row> rows(random() % 60);
        const int keys = 1 + static_cast<int>(random() % 12);
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            rows[i] = {static_cast<int>(random() % static_cast<unsigned>(keys)), static_cast<char>('!' + i)};
        }
        for (const bool ascending : {true, false})
        {
            std::vector<Row> expected = rows;
            plainQuickSort(expected, 0, static_cast<int>(expected.size()) - 1,
                           [ascending](const Row &a, const Row &b)
                           { return ascending ? a.key - b.key : b.key - a.key; });
            std::string names;
            for (const Row &row : expected)
            {
                names += row.name;
            }
            ASSERT_EQ(sortedNames(rows, ascending), names) << "round " << round;
        }
    }
}

/// The pivot is a copy, so it is the argument that lies outside the values.
int comparePivotFirst(const int *a, const int *b, DWORD_PTR user)
{
    auto &pivots = *reinterpret_cast<std::vector<int> *>(user);
    if (pivots.empty() || pivots.back() != *a)
    {
        pivots.push_back(*a);
    }
    return *a - *b;
}

TEST(CeListSort, PivotIsTheMiddleValueAndComesFirst)
{
    CeList<int> list(1, nullptr, nullptr, comparePivotFirst);
    for (const int value : {5, 1, 4, 2, 3})
    {
        list.AddTail(value);
    }
    std::vector<int> pivots;
    list.SetUser(reinterpret_cast<DWORD_PTR>(&pivots));
    list.Sort(true);
    ASSERT_FALSE(pivots.empty());
    EXPECT_EQ(pivots.front(), 4) << "position (0 + 4) / 2 + 1 = 3";
}

TEST(CeListSort, LargeListsOfAnyShapeTakeFewComparisons)
{
    constexpr int count = 100000;
    const std::map<std::string, std::function<int(int)>> shapes{
        {"rising", [](int i) { return i; }},
        {"falling", [](int i) { return count - i; }},
        {"equal", [](int) { return 1; }},
        {"few keys", [](int i) { return i * 7919 % 5; }},
        {"mixed", [](int i) { return static_cast<int>((static_cast<LONGLONG>(i) * 7919) % 100003); }},
    };
    for (const auto &[name, key] : shapes)
    {
        CeList<Row> list(1, nullptr, nullptr, compareRows);
        Comparisons comparisons;
        list.SetUser(reinterpret_cast<DWORD_PTR>(&comparisons));
        list.SetSize(count);
        for (int i = 1; i <= count; ++i)
        {
            list.SetAt(i, {key(i), 'x'});
        }
        list.Sort(true);
        for (int i = 2; i <= count; ++i)
        {
            ASSERT_LE(list.GetAt(i - 1).key, list.GetAt(i).key) << name;
        }
        EXPECT_LT(comparisons.count, 60 * count) << name;
    }
}

TEST(CeListSort, ComparatorsThatContradictThemselvesEndToo)
{
    std::mt19937 random(5);
    static std::mt19937 *source = nullptr;
    source = &random;
    const CeList<int>::CompareCallback absurd[] = {
        [](const int *, const int *, DWORD_PTR) { return 1; },
        [](const int *, const int *, DWORD_PTR) { return -1; },
        [](const int *, const int *, DWORD_PTR) { return static_cast<int>((*source)() % 3) - 1; },
        [](const int *, const int *, DWORD_PTR) { return -2147483647 - 1; },
    };
    for (const auto compare : absurd)
    {
        for (int size = 2; size < 200; size += 13)
        {
            CeList<int> list(0, nullptr, nullptr, compare);
            int sum = 0;
            for (int i = 0; i < size; ++i)
            {
                list.AddTail(i);
                sum += i;
            }
            EXPECT_EQ(list.Sort(size % 2 == 0), 0);
            for (int i = 0; i < size; ++i)
            {
                sum -= list.GetAt(i);
            }
            EXPECT_EQ(sum, 0) << "every value is still there";
        }
    }
}

// --- Pointer lists -----------------------------------------------------------------------------------------------

struct Counted
{
    static inline int s_destroyed = 0;
    static inline int s_released = 0;
    ~Counted()
    {
        ++s_destroyed;
    }
    void Release()
    {
        ++s_released;
    }
};

TEST(CePtrList, PublishesNothingAtFirst)
{
    CePtrList<Counted *> list;
    EXPECT_EQ(list.m_nPublished, 0);
    EXPECT_EQ(list.GetAt(0), nullptr);
    EXPECT_EQ(list.GetBase(), 0);
}

TEST(CePtrList, Ownership1Deletes)
{
    Counted::s_destroyed = 0;
    {
        CePtrList<Counted *> list(1, 1);
        list.AddTail(new Counted);
        list.AddTail(new Counted);
        list.AddTail(nullptr);
        list.RemoveAt(1);
        EXPECT_EQ(Counted::s_destroyed, 1);
    }
    EXPECT_EQ(Counted::s_destroyed, 2);
}

TEST(CePtrList, Ownership2And3FreeTheirMemory)
{
    CePtrList<char *> byFree(0, 2);
    byFree.AddTail(static_cast<char *>(std::malloc(10)));
    byFree.AddTail(nullptr);
    CePtrList<char *> byLocalFree(0, 3);
    byLocalFree.AddTail(static_cast<char *>(LocalAlloc(LMEM_FIXED, 10)));
    byLocalFree.AddTail(nullptr);
}

TEST(CePtrList, Ownership4CallsReleaseAndNothingElse)
{
    Counted::s_released = Counted::s_destroyed = 0;
    Counted object;
    {
        CePtrList<Counted *> list(0, 4);
        list.AddTail(&object);
        list.AddTail(nullptr);
    }
    EXPECT_EQ(Counted::s_released, 1);
    EXPECT_EQ(Counted::s_destroyed, 0);
}

TEST(CePtrList, Ownership5FreesBstrsUnlessTheFirstByteIs0)
{
    BSTR odd = SysAllocString(u"\u3000x");
    WCHAR nothing[] = u"";
    {
        CePtrList<WCHAR *> list(0, 5);
        list.AddTail(SysAllocString(u"abc"));
        list.AddTail(odd);
        list.AddTail(nothing);
        list.AddTail(nullptr);
    }
    EXPECT_EQ(SysStringLen(odd), 2U);
    SysFreeString(odd);
}

TEST(CePtrList, AnyOtherOwnershipReleasesNothing)
{
    Counted::s_released = Counted::s_destroyed = 0;
    Counted object;
    for (const int ownership : {0, 6, 7, -1})
    {
        CePtrList<Counted *> list(0, ownership);
        list.AddTail(&object);
    }
    EXPECT_EQ(Counted::s_released, 0);
    EXPECT_EQ(Counted::s_destroyed, 0);
}

TEST(CePtrList, DefaultCompareIsByAddress)
{
    Counted objects[2];
    CePtrList<Counted *> list(0, 6, nullptr);
    list.AddTail(&objects[1]);
    list.AddTail(&objects[0]);
    list.Sort(true);
    EXPECT_EQ(list.GetAt(0), &objects[0]);
    EXPECT_EQ(list.Find(&objects[1]), 1);
}

TEST(CeActiveList, DisplayCountIsTheHostsToSet)
{
    CeActiveList<Counted *> list(1, 1);
    EXPECT_EQ(list.GetDisplayCount(), 0);
    list.AddTail(new Counted);
    EXPECT_EQ(list.GetDisplayCount(), 0);
    list.SetDisplayCount(1);
    EXPECT_EQ(list.GetDisplayCount(), 1);
    list.SetDisplayCount(-3);
    EXPECT_EQ(list.GetDisplayCount(), 0);
}

// --- String lists ------------------------------------------------------------------------------------------------

std::string textsOf(CeStrList<> &list)
{
    std::string texts;
    for (int i = 0; i < list.GetCount(); ++i)
    {
        texts += (i > 0 ? "," : "") + zb::test::utf8(list.GetAt(list.GetBase() + i));
    }
    return texts;
}

class CeStrListTest : public zb::test::DeviceTest
{
};

TEST_F(CeStrListTest, CopiesWhatItIsGiven)
{
    for (const int ownership : {2, 3, 5})
    {
        CeStrList<> list(1, ownership);
        WCHAR buffer[] = u"abc";
        EXPECT_EQ(list.AddString(buffer), 0);
        buffer[0] = u'x';
        EXPECT_EQ(list.AddString(u"d"), 0);
        EXPECT_EQ(textsOf(list), "abc,d");
    }
    CeStrList<> borrowed(0, 6);
    WCHAR own[] = u"abc";
    borrowed.AddString(own);
    EXPECT_EQ(borrowed.GetAt(0), own);
    CeStrList<> list;
    list.AddString(nullptr);
    EXPECT_EQ(textsOf(list), "");
    EXPECT_EQ(list.GetCount(), 1);
}

TEST_F(CeStrListTest, ComparesAsItsCodeSays)
{
    const auto sorted = [](int compare)
    {
        CeStrList<> list(0, 2, compare);
        for (const WCHAR *text : {u"b", u"a", u"B", u"A"})
        {
            list.AddString(text);
        }
        list.Sort(true);
        return textsOf(list);
    };
    EXPECT_EQ(sorted(1), "A,B,a,b");
    EXPECT_EQ(sorted(4), "a,A,b,B");
    CeStrList<> insensitive(0, 2, 3);
    insensitive.AddString(u"Work");
    EXPECT_EQ(insensitive.FindString(u"wORK"), 0);
    CeStrList<> folded(0, 2, 2);
    folded.AddString(u"Work");
    EXPECT_EQ(folded.FindString(u"wORK"), 0);
    CeStrList<> sensitive(0, 2, 4);
    sensitive.AddString(u"Work");
    EXPECT_EQ(sensitive.FindString(u"wORK"), -1);
    EXPECT_EQ(sensitive.FindString(u"Work"), 0);
}
} // namespace
