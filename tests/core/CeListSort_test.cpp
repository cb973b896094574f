// The sort of a list: order, permutation of equal elements, cost, comparators that lie.
#include "core/CeList.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{
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
} // namespace
