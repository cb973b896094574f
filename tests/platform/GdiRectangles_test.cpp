// Arithmetic of rectangles.
#include "platform/gdi.h"
#include "platform/kernel.h"

#include <functional>
#include <limits>

#include <gtest/gtest.h>

namespace
{
DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

bool same(const RECT &one, const RECT &other)
{
    return one.left == other.left && one.top == other.top && one.right == other.right && one.bottom == other.bottom;
}

TEST(Rectangles, AreSetCopiedAndCompared)
{
    RECT one{9, 9, 9, 9};
    EXPECT_TRUE(SetRect(&one, 1, 2, 3, 4));
    EXPECT_TRUE(same(one, {1, 2, 3, 4}));
    RECT other{};
    EXPECT_TRUE(CopyRect(&other, &one));
    EXPECT_TRUE(EqualRect(&one, &other));
    for (int i = 0; i < 4; ++i)
    {
        RECT changed = one;
        (&changed.left)[i] += 1;
        EXPECT_FALSE(EqualRect(&one, &changed)) << i;
    }
    EXPECT_TRUE(SetRectEmpty(&one));
    EXPECT_TRUE(same(one, {0, 0, 0, 0}));
}

TEST(Rectangles, AreEmptyWithoutWidthOrHeight)
{
    const std::pair<RECT, bool> cases[] = {{{0, 0, 1, 1}, false}, {{0, 0, 0, 1}, true}, {{0, 0, 1, 0}, true},
                                           {{2, 0, 1, 1}, true},  {{0, 2, 1, 1}, true}, {{-5, -5, -4, -4}, false}};
    for (const auto &[rectangle, empty] : cases)
    {
        EXPECT_EQ(IsRectEmpty(&rectangle) != FALSE, empty);
    }
    EXPECT_TRUE(IsRectEmpty(nullptr));
}

TEST(Rectangles, MoveAndGrow)
{
    RECT one{1, 2, 3, 4};
    EXPECT_TRUE(OffsetRect(&one, 10, -20));
    EXPECT_TRUE(same(one, {11, -18, 13, -16}));
    EXPECT_TRUE(InflateRect(&one, 2, 3));
    EXPECT_TRUE(same(one, {9, -21, 15, -13}));
    EXPECT_TRUE(InflateRect(&one, -4, -4));
    EXPECT_TRUE(same(one, {13, -17, 11, -17}));
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    RECT edge{most, least, most, least};
    EXPECT_TRUE(OffsetRect(&edge, 1, -1));
    EXPECT_TRUE(same(edge, {least, most, least, most}));
    EXPECT_TRUE(InflateRect(&edge, 1, -1));
    EXPECT_TRUE(same(edge, {most, least, least + 1, most - 1}));
}

TEST(Rectangles, HaveACommonPartOrNone)
{
    RECT result{};
    const RECT one{0, 0, 10, 10};
    const RECT other{5, -5, 20, 5};
    EXPECT_TRUE(IntersectRect(&result, &one, &other));
    EXPECT_TRUE(same(result, {5, 0, 10, 5}));
    const RECT beside{10, 0, 20, 10};
    EXPECT_FALSE(IntersectRect(&result, &one, &beside));
    EXPECT_TRUE(same(result, {0, 0, 0, 0}));
}

TEST(Rectangles, UniteAroundBothUnlessOneIsEmpty)
{
    RECT result{};
    const RECT one{0, 0, 2, 2};
    const RECT other{5, -5, 6, 1};
    const RECT empty{50, 50, 50, 60};
    EXPECT_TRUE(UnionRect(&result, &one, &other));
    EXPECT_TRUE(same(result, {0, -5, 6, 2}));
    EXPECT_TRUE(UnionRect(&result, &one, &empty));
    EXPECT_TRUE(same(result, one));
    EXPECT_TRUE(UnionRect(&result, &empty, &other));
    EXPECT_TRUE(same(result, other));
    EXPECT_FALSE(UnionRect(&result, &empty, &empty));
    EXPECT_TRUE(same(result, {0, 0, 0, 0}));
    result = one;
    EXPECT_TRUE(UnionRect(&result, &result, &other)) << "the result may be one of the two";
    EXPECT_TRUE(same(result, {0, -5, 6, 2}));
}

TEST(Rectangles, LoseWhatReachesFromSideToSide)
{
    const RECT from{0, 0, 10, 10};
    const std::pair<RECT, RECT> cases[] = {{{-1, -1, 4, 11}, {4, 0, 10, 10}}, {{6, 0, 10, 10}, {0, 0, 6, 10}},
                                           {{0, 0, 10, 3}, {0, 3, 10, 10}},   {{-9, 8, 99, 99}, {0, 0, 10, 8}},
                                           {{4, 0, 6, 10}, {0, 0, 10, 10}},   {{0, 4, 10, 6}, {0, 0, 10, 10}},
                                           {{0, 0, 4, 9}, {0, 0, 10, 10}},    {{20, 20, 30, 30}, {0, 0, 10, 10}}};
    for (const auto &[what, rest] : cases)
    {
        RECT result{};
        EXPECT_TRUE(SubtractRect(&result, &from, &what));
        EXPECT_TRUE(same(result, rest)) << what.left << " " << what.top;
    }
    RECT result{1, 1, 1, 1};
    const RECT all{-1, -1, 11, 11};
    EXPECT_FALSE(SubtractRect(&result, &from, &all));
    EXPECT_TRUE(same(result, {0, 0, 0, 0}));
}

TEST(Rectangles, HoldPointsUpToRightAndBottom)
{
    const RECT one{1, 1, 3, 3};
    EXPECT_TRUE(PtInRect(&one, {1, 1}));
    EXPECT_TRUE(PtInRect(&one, {2, 2}));
    EXPECT_FALSE(PtInRect(&one, {3, 2}));
    EXPECT_FALSE(PtInRect(&one, {2, 3}));
    EXPECT_FALSE(PtInRect(&one, {0, 1}));
    EXPECT_FALSE(PtInRect(&one, {1, 0}));
    EXPECT_FALSE(PtInRect(nullptr, {1, 0}));
}

TEST(Rectangles, NullPointersAreRefused)
{
    RECT one{};
    const std::function<BOOL()> calls[] = {
        [&] { return SetRect(nullptr, 1, 2, 3, 4); },
        [&] { return SetRectEmpty(nullptr); },
        [&] { return CopyRect(nullptr, &one); },
        [&] { return CopyRect(&one, nullptr); },
        [&] { return EqualRect(nullptr, &one); },
        [&] { return EqualRect(&one, nullptr); },
        [&] { return OffsetRect(nullptr, 1, 1); },
        [&] { return InflateRect(nullptr, 1, 1); },
        [&] { return IntersectRect(nullptr, &one, &one); },
        [&] { return IntersectRect(&one, nullptr, &one); },
        [&] { return UnionRect(&one, &one, nullptr); },
        [&] { return SubtractRect(&one, nullptr, &one); },
    };
    for (const auto &call : calls)
    {
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(call()); }), ERROR_INVALID_PARAMETER);
    }
}
} // namespace
