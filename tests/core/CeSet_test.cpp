// The hashed set and the truth value.
#include "core/CBool.h"
#include "core/CeSet.h"

#include "platform/types.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace
{
TEST(CeSet, HoldsEachKeyOnce)
{
    CeSet<HWND> set;
    auto *window = reinterpret_cast<HWND>(0x1230);
    EXPECT_FALSE(set.Contains(window));
    EXPECT_TRUE(set.Add(window));
    EXPECT_FALSE(set.Add(window));
    EXPECT_TRUE(set.Contains(window));
    EXPECT_EQ(set.GetCount(), 1);
    EXPECT_FALSE(set.Remove(reinterpret_cast<HWND>(0x1240)));
    EXPECT_TRUE(set.Remove(window));
    EXPECT_FALSE(set.Remove(window));
    EXPECT_TRUE(set.IsEmpty());
    EXPECT_FALSE(set.Contains(window));
}

TEST(CeSet, SizesAreThoseOfTheTable)
{
    EXPECT_EQ((CeSet<HWND>::BUCKETS), 17U);
    EXPECT_EQ((CeSet<HWND>::NODES_PER_BLOCK), 10);
}

TEST(CeSet, KeysOfOneBucketAreKeptApart)
{
    CeSet<ULONG> set;
    // (key >> 4) % 17 is 3 for all of these.
    for (ULONG i = 0; i < 25; ++i)
    {
        EXPECT_TRUE(set.Add((3 + 17 * i) << 4U));
    }
    EXPECT_EQ(set.GetCount(), 25);
    EXPECT_TRUE(set.Remove((3 + 17 * 12) << 4U));
    EXPECT_FALSE(set.Contains((3 + 17 * 12) << 4U));
    EXPECT_TRUE(set.Contains((3 + 17 * 24) << 4U));
    EXPECT_TRUE(set.Contains(3 << 4U));
}

TEST(CeSet, AgreesWithAPlainSet)
{
    std::mt19937 random(2);
    CeSet<ULONG> set;
    std::set<ULONG> plain;
    for (int i = 0; i < 20000; ++i)
    {
        const ULONG key = random() % 400;
        switch (random() % 8)
        {
        case 0:
        case 1:
        case 2:
            ASSERT_EQ(set.Add(key), plain.insert(key).second);
            break;
        case 3:
        case 4:
        case 5:
            ASSERT_EQ(set.Remove(key), plain.erase(key) != 0);
            break;
        case 6:
            ASSERT_EQ(set.Contains(key), plain.count(key) != 0);
            break;
        default:
            if (random() % 100 == 0)
            {
                set.RemoveAll();
                plain.clear();
            }
        }
        ASSERT_EQ(set.GetCount(), static_cast<int>(plain.size()));
    }
    std::set<ULONG> visited;
    set.ForEach([&visited](ULONG key) { EXPECT_TRUE(visited.insert(key).second); });
    EXPECT_EQ(visited, plain);
}

TEST(CBool, IsFalseUntilSet)
{
    CBool flag;
    EXPECT_FALSE(flag);
    flag = true;
    EXPECT_TRUE(flag);
    EXPECT_EQ(sizeof(CBool), sizeof(int));
}
} // namespace
