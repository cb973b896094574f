// Filled and inverted rectangles, single pixels, bitmaps and their records, black and white, the clip.
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "support/DrawingBoard.h"

#include <functional>
#include <limits>

namespace
{
using namespace zb::test;

constexpr COLORREF white = RGB(255, 255, 255);
constexpr int furthest = std::numeric_limits<int>::max();
constexpr int nearest = std::numeric_limits<int>::min();

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

void fill(HDC context, const RECT &rectangle, COLORREF color)
{
    HBRUSH brush = CreateSolidBrush(color);
    EXPECT_TRUE(FillRect(context, &rectangle, brush));
    DeleteObject(brush);
}

TEST(GdiFills, ARectangleHoldsItsLeftAndTopEdgeAlone)
{
    DrawingBoard board(5, 4);
    fill(board.context(), {1, 1, 4, 3}, 0);
    EXPECT_EQ(board.picture(), ".....\n"
                               ".###.\n"
                               ".###.\n"
                               ".....\n");
}

TEST(GdiFills, ColoursHaveRedInTheLowByte)
{
    DrawingBoard board(1, 1);
    fill(board.context(), {0, 0, 1, 1}, RGB(0x12, 0x34, 0x56));
    EXPECT_EQ(board.at(0, 0), 0x123456U);
    EXPECT_EQ(GetPixel(board.context(), 0, 0), 0x563412U);
    EXPECT_EQ(GetRValue(0x563412), 0x12);
    EXPECT_EQ(GetGValue(0x563412), 0x34);
    EXPECT_EQ(GetBValue(0x563412), 0x56);
}

TEST(GdiFills, WhatFallsOutsideIsNotDrawn)
{
    DrawingBoard board(3, 2);
    fill(board.context(), {-5, -5, 1, 1}, 0);
    fill(board.context(), {2, 1, furthest, furthest}, RGB(255, 0, 0));
    fill(board.context(), {nearest, 1, 1, 2}, RGB(0, 0, 255));
    EXPECT_EQ(board.picture(), "#..\n"
                               "b.r\n");
    board.clear(white);
    fill(board.context(), {nearest, nearest, furthest, furthest}, 0);
    EXPECT_EQ(board.picture(), "###\n###\n");
}

TEST(GdiFills, RectanglesOutOfOrderAreEmpty)
{
    DrawingBoard board(3, 1);
    const RECT turned{2, 0, 1, 1};
    fill(board.context(), turned, 0);
    EXPECT_TRUE(InvertRect(board.context(), &turned));
    EXPECT_TRUE(DrawFocusRect(board.context(), &turned));
    EXPECT_EQ(board.picture(), "...\n");
}

TEST(GdiFills, ANullBrushDrawsNothing)
{
    DrawingBoard board(2, 1);
    const RECT all{0, 0, 2, 1};
    EXPECT_TRUE(FillRect(board.context(), &all, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))));
    EXPECT_EQ(board.picture(), "..\n");
}

TEST(GdiFills, BadArgumentsDrawNothing)
{
    DrawingBoard board(2, 1);
    const RECT all{0, 0, 2, 1};
    HBRUSH brush = CreateSolidBrush(0);
    HPEN pen = CreatePen(PS_SOLID, 1, 0);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(FillRect(board.context(), nullptr, brush)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(FillRect(board.context(), &all, pen)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(FillRect(board.context(), &all, nullptr)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(InvertRect(board.context(), nullptr)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawFocusRect(board.context(), nullptr)); }), ERROR_INVALID_PARAMETER);
    DeleteObject(brush);
    DeleteObject(pen);
    EXPECT_EQ(board.picture(), "..\n");
}

TEST(GdiFills, InvertedTwiceIsAsBefore)
{
    DrawingBoard board(3, 1, RGB(0x10, 0x20, 0xF0));
    const RECT part{1, 0, 3, 1};
    EXPECT_TRUE(InvertRect(board.context(), &part));
    EXPECT_EQ(board.pixels(), (std::vector<std::uint32_t>{0x1020F0, 0xEFDF0F, 0xEFDF0F}));
    EXPECT_TRUE(InvertRect(board.context(), &part));
    EXPECT_EQ(board.pixels(), (std::vector<std::uint32_t>{0x1020F0, 0x1020F0, 0x1020F0}));
}

TEST(GdiFills, AFocusRectangleIsDottedAndGoesWhenItIsDrawnAgain)
{
    DrawingBoard board(7, 5);
    const RECT around{1, 0, 6, 5};
    EXPECT_TRUE(DrawFocusRect(board.context(), &around));
    EXPECT_EQ(board.picture(), "..#.#..\n"
                               ".#...#.\n"
                               ".......\n"
                               ".#...#.\n"
                               "..#.#..\n");
    EXPECT_TRUE(DrawFocusRect(board.context(), &around));
    EXPECT_EQ(board.picture(), DrawingBoard(7, 5).picture());
}

TEST(GdiFills, TheDotsOfAFocusRectangleDoNotDependOnTheClip)
{
    DrawingBoard whole(7, 5);
    const RECT around{0, 0, 7, 5};
    DrawFocusRect(whole.context(), &around);
    DrawingBoard parts(7, 5);
    for (const RECT &part : {RECT{0, 0, 3, 5}, RECT{3, 0, 7, 2}, RECT{3, 2, 7, 5}})
    {
        SaveDC(parts.context());
        IntersectClipRect(parts.context(), part.left, part.top, part.right, part.bottom);
        DrawFocusRect(parts.context(), &around);
        RestoreDC(parts.context(), -1);
    }
    EXPECT_EQ(parts.picture(), whole.picture());
}

TEST(GdiFills, ThinFocusRectanglesInvertEachDotOnce)
{
    DrawingBoard board(5, 3);
    const RECT level{0, 1, 5, 2};
    DrawFocusRect(board.context(), &level);
    EXPECT_EQ(board.picture(), ".....\n.#.#.\n.....\n");
    board.clear(white);
    const RECT upright{2, 0, 3, 3};
    DrawFocusRect(board.context(), &upright);
    EXPECT_EQ(board.picture(), "..#..\n.....\n..#..\n") << "dots lie where the sum of the coordinates is even";
}

TEST(GdiFills, SinglePixelsTellTheirColour)
{
    DrawingBoard board(2, 2);
    EXPECT_EQ(SetPixel(board.context(), 1, 0, RGB(9, 8, 7)), RGB(9, 8, 7));
    EXPECT_EQ(GetPixel(board.context(), 1, 0), RGB(9, 8, 7));
    EXPECT_EQ(GetPixel(board.context(), 0, 0), white);
    for (const POINT &outside : {POINT{-1, 0}, POINT{2, 0}, POINT{0, 2}, POINT{furthest, nearest}})
    {
        EXPECT_EQ(SetPixel(board.context(), outside.x, outside.y, 0), CLR_INVALID);
        EXPECT_EQ(GetPixel(board.context(), outside.x, outside.y), CLR_INVALID);
    }
    IntersectClipRect(board.context(), 0, 0, 1, 2);
    EXPECT_EQ(GetPixel(board.context(), 1, 0), CLR_INVALID);
    EXPECT_EQ(SetPixel(board.context(), 0, 1, SYS_COLOR_INDEX_FLAG | COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHT));
}

// --- Bitmaps ---------------------------------------------------------------------------------------------------------

BITMAP recordOf(HBITMAP bitmap)
{
    BITMAP record{};
    EXPECT_EQ(GetObjectW(bitmap, sizeof record, &record), static_cast<int>(sizeof record));
    return record;
}

TEST(GdiBitmaps, TellTheirMeasures)
{
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 17, 3);
    BITMAP record = recordOf(bitmap);
    EXPECT_EQ(record.bmType, 0);
    EXPECT_EQ(record.bmWidth, 17);
    EXPECT_EQ(record.bmHeight, 3);
    EXPECT_EQ(record.bmWidthBytes, 68);
    EXPECT_EQ(record.bmPlanes, 1);
    EXPECT_EQ(record.bmBitsPixel, 32);
    EXPECT_EQ(record.bmBits, nullptr);
    EXPECT_EQ(zb::pixelsOf(bitmap), std::vector<std::uint32_t>(17 * 3, 0));
    DeleteObject(bitmap);
    bitmap = CreateBitmap(17, 3, 1, 1, nullptr);
    record = recordOf(bitmap);
    EXPECT_EQ(record.bmWidthBytes, 4);
    EXPECT_EQ(record.bmBitsPixel, 1);
    DeleteObject(bitmap);
    ReleaseDC(nullptr, screen);
}

TEST(GdiBitmaps, AreLikeTheSurfaceOfTheContext)
{
    HDC memory = CreateCompatibleDC(nullptr);
    HBITMAP mono = CreateCompatibleBitmap(memory, 4, 4);
    EXPECT_EQ(recordOf(mono).bmBitsPixel, 1);
    DrawingBoard board(2, 2);
    HBITMAP color = CreateCompatibleBitmap(board.context(), 4, 4);
    EXPECT_EQ(recordOf(color).bmBitsPixel, 32);
    DeleteObject(mono);
    DeleteObject(color);
    DeleteDC(memory);
}

TEST(GdiBitmaps, ASideOfNothingGivesTheLeastBitmap)
{
    DrawingBoard board(2, 2);
    for (HBITMAP bitmap : {CreateCompatibleBitmap(board.context(), 0, 9), CreateCompatibleBitmap(board.context(), 9, 0),
                           CreateBitmap(0, 0, 1, 32, nullptr)})
    {
        EXPECT_EQ(recordOf(bitmap).bmWidth, 1);
        EXPECT_EQ(recordOf(bitmap).bmHeight, 1);
        EXPECT_EQ(recordOf(bitmap).bmBitsPixel, 1);
        DeleteObject(bitmap);
    }
}

TEST(GdiBitmaps, LimitsAreKept)
{
    DrawingBoard board(1, 1);
    const auto make = [&](int width, int height)
    {
        HBITMAP bitmap = CreateCompatibleBitmap(board.context(), width, height);
        EXPECT_EQ(bitmap != nullptr, GetLastError() == 0) << width << " by " << height;
        if (bitmap != nullptr)
        {
            DeleteObject(bitmap);
        }
    };
    EXPECT_EQ(errorOf([&] { make(32767, 1); }), 0U);
    EXPECT_EQ(errorOf([&] { make(1, 32767); }), 0U);
    EXPECT_EQ(errorOf([&] { make(32768, 1); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { make(1, 32768); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { make(-1, 1); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { make(1, -1); }), ERROR_INVALID_PARAMETER);
    // 8,192 by 8,192 pixels of 4 bytes are 256 MiB.
    EXPECT_EQ(errorOf([&] { make(8192, 8193); }), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(errorOf([&] { make(32767, 32767); }), ERROR_NOT_ENOUGH_MEMORY);
}

TEST(GdiBitmaps, RowsOfBitsBeginAtWholeWords)
{
    // 17 pixels take two words of 16 bits; the leftmost is the highest bit of the first byte.
    const unsigned char bits[] = {0x80, 0x01, 0x80, 0x00, 0x40, 0x02, 0x00, 0xFF};
    HBITMAP bitmap = CreateBitmap(17, 2, 1, 1, bits);
    std::vector<std::uint32_t> expected(34, 0);
    for (const std::size_t place : {0, 15, 16, 17 + 1, 17 + 14})
    {
        expected[place] = 0xFFFFFF;
    }
    EXPECT_EQ(zb::pixelsOf(bitmap), expected);
    DeleteObject(bitmap);
}

TEST(GdiBitmaps, RowsOfPixelsAreBlueGreenRed)
{
    const unsigned char bits[] = {1, 2, 3, 99, 4, 5, 6, 0};
    HBITMAP bitmap = CreateBitmap(1, 2, 1, 32, bits);
    EXPECT_EQ(zb::pixelsOf(bitmap), (std::vector<std::uint32_t>{0x030201, 0x060504}));
    DeleteObject(bitmap);
    EXPECT_TRUE(zb::pixelsOf(bitmap).empty());
}

TEST(GdiBitmaps, OtherDepthsAreLikeTheScreenAndTakeNoBits)
{
    HBITMAP bitmap = CreateBitmap(2, 2, 1, 16, nullptr);
    EXPECT_EQ(recordOf(bitmap).bmBitsPixel, 32);
    DeleteObject(bitmap);
    const unsigned char bits[64] = {};
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateBitmap(2, 2, 1, 16, bits), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateBitmap(2, 2, 3, 1, nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateBitmap(2, 2, 1, 0, nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateBitmap(2, 2, 1, 33, nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateBitmap(-2, 2, 1, 1, nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
}

TEST(GdiBlackAndWhite, HoldsTheNearerOfTheTwo)
{
    DrawingBoard board(1, 1, white, true);
    const std::pair<COLORREF, COLORREF> cases[] = {
        {RGB(255, 0, 0), 0},   {RGB(255, 255, 0), white}, {RGB(127, 128, 127), 0}, {RGB(128, 128, 127), white},
        {RGB(255, 127, 0), 0}, {RGB(255, 128, 0), white}, {RGB(1, 1, 1), 0},       {RGB(254, 254, 254), white},
    };
    for (const auto &[drawn, held] : cases)
    {
        EXPECT_EQ(SetPixel(board.context(), 0, 0, drawn), held) << std::hex << drawn;
        fill(board.context(), {0, 0, 1, 1}, white - held);
        fill(board.context(), {0, 0, 1, 1}, drawn);
        EXPECT_EQ(GetPixel(board.context(), 0, 0), held) << std::hex << drawn;
    }
}

// --- Clip ------------------------------------------------------------------------------------------------------------

class GdiClipTest : public testing::Test
{
  protected:
    RECT box(int expected)
    {
        RECT result{77, 77, 77, 77};
        EXPECT_EQ(GetClipBox(board.context(), &result), expected);
        return result;
    }
    static std::string text(const RECT &rectangle)
    {
        return std::to_string(rectangle.left) + " " + std::to_string(rectangle.top) + " " +
               std::to_string(rectangle.right) + " " + std::to_string(rectangle.bottom);
    }

    DrawingBoard board{6, 4};
};

TEST_F(GdiClipTest, IsAllOfTheSurfaceAtFirst)
{
    EXPECT_EQ(text(box(SIMPLEREGION)), "0 0 6 4");
}

TEST_F(GdiClipTest, IntersectionsShrinkItUntilNothingIsLeft)
{
    EXPECT_EQ(IntersectClipRect(board.context(), 1, 1, 99, 3), SIMPLEREGION);
    EXPECT_EQ(text(box(SIMPLEREGION)), "1 1 6 3");
    fill(board.context(), {0, 0, 6, 4}, 0);
    EXPECT_EQ(board.picture(), "......\n.#####\n.#####\n......\n");
    EXPECT_EQ(IntersectClipRect(board.context(), 0, 0, 1, 4), NULLREGION);
    EXPECT_EQ(text(box(NULLREGION)), "0 0 0 0");
    EXPECT_EQ(IntersectClipRect(board.context(), 0, 0, 6, 4), NULLREGION);
}

TEST_F(GdiClipTest, SidesMayComeInAnyOrder)
{
    EXPECT_EQ(IntersectClipRect(board.context(), 5, 3, 1, 1), SIMPLEREGION);
    EXPECT_EQ(text(box(SIMPLEREGION)), "1 1 5 3");
}

TEST_F(GdiClipTest, WhatIsExcludedStays)
{
    EXPECT_EQ(ExcludeClipRect(board.context(), 2, 1, 4, 3), COMPLEXREGION);
    EXPECT_EQ(text(box(COMPLEXREGION)), "0 0 6 4");
    fill(board.context(), {0, 0, 6, 4}, 0);
    EXPECT_EQ(board.picture(), "######\n##..##\n##..##\n######\n");
    const RECT all{1, 0, 5, 3};
    InvertRect(board.context(), &all);
    EXPECT_EQ(board.picture(), "#....#\n#....#\n#....#\n######\n");
    EXPECT_EQ(ExcludeClipRect(board.context(), 0, 0, 6, 4), NULLREGION);
}

TEST_F(GdiClipTest, ExcludingASideLeavesARectangle)
{
    EXPECT_EQ(ExcludeClipRect(board.context(), 0, 0, 2, 4), SIMPLEREGION);
    EXPECT_EQ(text(box(SIMPLEREGION)), "2 0 6 4");
    EXPECT_EQ(ExcludeClipRect(board.context(), 9, 9, 12, 12), SIMPLEREGION);
}

TEST_F(GdiClipTest, ARectangleIsVisibleWhenAnyOfItIs)
{
    ExcludeClipRect(board.context(), 2, 1, 4, 3);
    const auto visible = [&](const RECT &rectangle) { return RectVisible(board.context(), &rectangle) != FALSE; };
    EXPECT_TRUE(visible({0, 0, 1, 1}));
    EXPECT_TRUE(visible({2, 1, 5, 2}));
    EXPECT_FALSE(visible({2, 1, 4, 3}));
    EXPECT_FALSE(visible({6, 0, 7, 4}));
    EXPECT_FALSE(visible({-3, -3, 0, 0}));
    EXPECT_FALSE(visible({1, 1, 1, 1}));
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(RectVisible(board.context(), nullptr)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(GetClipBox(board.context(), nullptr), ERRORREGION); }), ERROR_INVALID_PARAMETER);
}

TEST_F(GdiClipTest, StaysWhenAnotherBitmapIsSelected)
{
    IntersectClipRect(board.context(), 1, 1, 5, 3);
    HBITMAP larger = CreateBitmap(9, 9, 1, 32, nullptr);
    SelectObject(board.context(), larger);
    EXPECT_EQ(text(box(SIMPLEREGION)), "1 1 5 3");
    HBITMAP smaller = CreateBitmap(2, 9, 1, 32, nullptr);
    SelectObject(board.context(), smaller);
    EXPECT_EQ(text(box(SIMPLEREGION)), "1 1 2 3");
    SelectObject(board.context(), board.bitmap());
    EXPECT_EQ(text(box(SIMPLEREGION)), "1 1 5 3");
    DeleteObject(larger);
    DeleteObject(smaller);
}

TEST_F(GdiClipTest, FarRectanglesAreTakenAsTheyAre)
{
    EXPECT_EQ(IntersectClipRect(board.context(), nearest, nearest, furthest, furthest), SIMPLEREGION);
    EXPECT_EQ(text(box(SIMPLEREGION)), "0 0 6 4");
    EXPECT_EQ(ExcludeClipRect(board.context(), nearest, 2, furthest, furthest), SIMPLEREGION);
    EXPECT_EQ(text(box(SIMPLEREGION)), "0 0 6 2");
}
} // namespace
