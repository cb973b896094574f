// Bit transfers: every operation, overlaps, black and white, stretching, key colours and soft edges.
#include "platform/gdi.h"
#include "platform/image.h"
#include "platform/kernel.h"
#include "support/DrawingBoard.h"

#include <functional>
#include <limits>

namespace
{
using namespace zb::test;
using Pixels = std::vector<std::uint32_t>;

constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF key = RGB(0, 255, 0);

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

COLORREF colorOf(std::uint32_t pixel)
{
    return RGB(static_cast<BYTE>(pixel >> 16U), static_cast<BYTE>(pixel >> 8U), static_cast<BYTE>(pixel));
}

/// A board with these pixels, row by row.
struct PixelBoard : DrawingBoard
{
    PixelBoard(int width, int height, const Pixels &pixels, bool mono = false)
        : DrawingBoard(width, height, white, mono)
    {
        for (int i = 0; i < width * height; ++i)
        {
            SetPixel(context(), i % width, i / width, colorOf(pixels.at(static_cast<std::size_t>(i))));
        }
    }
};

/// Pixels 1, 2, 3 ... as colours.
Pixels counted(int count)
{
    Pixels pixels;
    for (int i = 1; i <= count; ++i)
    {
        pixels.push_back(static_cast<std::uint32_t>(i));
    }
    return pixels;
}

// --- The operations ------------------------------------------------------------------------------------------------

struct OperationCase
{
    DWORD operation;
    std::uint32_t expected;
};

// Target 0x0F33AA, source 0x5555F0, brush 0x00FF77, bit by bit.
const OperationCase operationCases[] = {
    {SRCCOPY, 0x5555F0}, {SRCPAINT, 0x5F77FA},  {SRCAND, 0x0511A0},    {SRCINVERT, 0x5A665A}, {NOTSRCCOPY, 0xAAAA0F},
    {PATCOPY, 0x00FF77}, {PATINVERT, 0x0FCCDD}, {DSTINVERT, 0xF0CC55}, {BLACKNESS, 0x000000}, {WHITENESS, 0xFFFFFF},
};

TEST(GdiTransfers, EveryOperationDoesItsSum)
{
    for (const OperationCase &each : operationCases)
    {
        PixelBoard target(3, 1, {0x0F33AA, 0x0F33AA, 0x0F33AA});
        PixelBoard source(3, 1, {0x5555F0, 0x5555F0, 0x5555F0});
        HBRUSH brush = CreateSolidBrush(colorOf(0x00FF77));
        SelectObject(target.context(), brush);
        EXPECT_TRUE(BitBlt(target.context(), 1, 0, 1, 1, source.context(), 0, 0, each.operation));
        EXPECT_EQ(target.pixels(), (Pixels{0x0F33AA, each.expected, 0x0F33AA})) << std::hex << each.operation;
        EXPECT_TRUE(StretchBlt(target.context(), 2, 0, 1, 1, source.context(), 0, 0, 3, 1, each.operation));
        EXPECT_EQ(target.at(2, 0), each.expected) << std::hex << each.operation;
        DeleteObject(brush);
    }
}

TEST(GdiTransfers, OperationsWithoutSourceNeedNoContext)
{
    for (const OperationCase &each : operationCases)
    {
        PixelBoard target(1, 1, {0x0F33AA});
        HBRUSH brush = CreateSolidBrush(colorOf(0x00FF77));
        SelectObject(target.context(), brush);
        const bool needsSource = each.operation == SRCCOPY || each.operation == SRCPAINT || each.operation == SRCAND ||
                                 each.operation == SRCINVERT || each.operation == NOTSRCCOPY;
        SetLastError(0);
        EXPECT_EQ(BitBlt(target.context(), 0, 0, 1, 1, nullptr, 0, 0, each.operation) != FALSE, !needsSource);
        EXPECT_EQ(GetLastError(), needsSource ? ERROR_INVALID_HANDLE : 0U);
        EXPECT_EQ(target.at(0, 0), needsSource ? 0x0F33AAU : each.expected);
        PixelBoard other(1, 1, {0x0F33AA});
        SelectObject(other.context(), brush);
        SetLastError(0);
        EXPECT_EQ(PatBlt(other.context(), 0, 0, 1, 1, each.operation) != FALSE, !needsSource);
        EXPECT_EQ(GetLastError(), needsSource ? ERROR_INVALID_PARAMETER : 0U);
        EXPECT_EQ(other.at(0, 0), needsSource ? 0x0F33AAU : each.expected);
        DeleteObject(brush);
    }
}

TEST(GdiTransfers, UnknownOperationsAndHandlesAreRefused)
{
    DrawingBoard target(1, 1);
    DrawingBoard source(1, 1, 0);
    HBRUSH brush = CreateSolidBrush(0);
    HDC none = nullptr;
    for (const DWORD wrong : {DWORD{0}, DWORD{0x00CC0021}, DWORD{0x00BB0226}})
    {
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(BitBlt(target.context(), 0, 0, 1, 1, source.context(), 0, 0, wrong)); }),
                  ERROR_INVALID_PARAMETER);
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(PatBlt(target.context(), 0, 0, 1, 1, wrong)); }), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(BitBlt(none, 0, 0, 1, 1, source.context(), 0, 0, SRCCOPY)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(PatBlt(none, 0, 0, 1, 1, PATCOPY)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(StretchBlt(none, 0, 0, 2, 2, source.context(), 0, 0, 1, 1, SRCCOPY)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(StretchBlt(target.context(), 0, 0, 2, 2, none, 0, 0, 1, 1, SRCCOPY)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(TransparentImage(none, 0, 0, 1, 1, source.context(), 0, 0, 1, 1, 0)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(TransparentImage(target.context(), 0, 0, 1, 1, brush, 0, 0, 1, 1, 0)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(TransparentImage(target.context(), 0, 0, 1, 1, none, 0, 0, 1, 1, 0)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(target.picture(), ".\n");
    DeleteObject(brush);
}

TEST(GdiTransfers, ANullBrushPaintsNothing)
{
    PixelBoard target(1, 1, {0x123456});
    SelectObject(target.context(), GetStockObject(NULL_BRUSH));
    EXPECT_TRUE(PatBlt(target.context(), 0, 0, 1, 1, PATCOPY));
    EXPECT_TRUE(PatBlt(target.context(), 0, 0, 1, 1, PATINVERT));
    EXPECT_EQ(target.at(0, 0), 0x123456U);
}

// --- Where ---------------------------------------------------------------------------------------------------------

TEST(GdiTransfers, ARectangleMovesToItsPlace)
{
    PixelBoard source(3, 2, counted(6));
    PixelBoard target(3, 3, Pixels(9, 0));
    EXPECT_TRUE(BitBlt(target.context(), 1, 1, 2, 2, source.context(), 1, 0, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{0, 0, 0, 0, 2, 3, 0, 5, 6}));
}

TEST(GdiTransfers, WhatTheSourceLacksIsLeft)
{
    PixelBoard source(2, 2, counted(4));
    PixelBoard target(4, 4, Pixels(16, 9));
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 4, 4, source.context(), -1, -1, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{9, 9, 9, 9, 9, 1, 2, 9, 9, 3, 4, 9, 9, 9, 9, 9}));
    constexpr int far = std::numeric_limits<int>::max();
    EXPECT_TRUE(BitBlt(target.context(), -far, -far, far, far, source.context(), far, far, SRCCOPY));
    EXPECT_TRUE(BitBlt(target.context(), far, far, far, far, source.context(), -far, 0, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{9, 9, 9, 9, 9, 1, 2, 9, 9, 3, 4, 9, 9, 9, 9, 9}));
}

TEST(GdiTransfers, SidesBelowNothingReachBackwards)
{
    PixelBoard source(3, 1, counted(3));
    PixelBoard target(3, 1, Pixels(3, 0));
    EXPECT_TRUE(BitBlt(target.context(), 2, 1, -2, -1, source.context(), 3, 1, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{2, 3, 0}));
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 0, 1, source.context(), 0, 0, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{2, 3, 0}));
}

/// A transfer within one board, against one from a copy.
void expectOverlapLikeCopy(int dx, int dy, DWORD operation, bool clipped)
{
    constexpr int side = 7;
    PixelBoard board(side, side, counted(side * side));
    PixelBoard copy(side, side, counted(side * side));
    PixelBoard expected(side, side, counted(side * side));
    for (const PixelBoard *each : {&board, &expected})
    {
        if (clipped)
        {
            ExcludeClipRect(each->context(), 3, 2, 5, 4);
        }
    }
    EXPECT_TRUE(BitBlt(board.context(), 1 + dx, 1 + dy, 4, 4, board.context(), 1, 1, operation));
    EXPECT_TRUE(BitBlt(expected.context(), 1 + dx, 1 + dy, 4, 4, copy.context(), 1, 1, operation));
    EXPECT_EQ(board.pixels(), expected.pixels()) << dx << ", " << dy << (clipped ? " clipped" : "");
}

TEST(GdiTransfers, OverlapsAreRightInEveryDirection)
{
    for (int dy = -2; dy <= 2; ++dy)
    {
        for (int dx = -2; dx <= 2; ++dx)
        {
            for (const DWORD operation : {SRCCOPY, SRCINVERT, NOTSRCCOPY})
            {
                expectOverlapLikeCopy(dx, dy, operation, false);
                expectOverlapLikeCopy(dx, dy, operation, true);
            }
        }
    }
}

TEST(GdiTransfers, ClipsOfManyPartsAreKept)
{
    PixelBoard source(4, 3, counted(12));
    PixelBoard target(4, 3, Pixels(12, 0));
    ExcludeClipRect(target.context(), 1, 1, 3, 2);
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 4, 3, source.context(), 0, 0, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{1, 2, 3, 4, 5, 0, 0, 8, 9, 10, 11, 12}));
}

// --- Black and white -------------------------------------------------------------------------------------------------

TEST(GdiTransfers, BlackAndWhiteTakesTheTargetsColours)
{
    PixelBoard source(2, 1, {0x000000, 0xFFFFFF}, true);
    PixelBoard target(4, 1, Pixels(4, 9));
    SetTextColor(target.context(), colorOf(0x112233));
    SetBkColor(target.context(), colorOf(0x445566));
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 2, 1, source.context(), 0, 0, SRCCOPY));
    EXPECT_TRUE(StretchBlt(target.context(), 2, 0, 2, 1, source.context(), 1, 0, 1, 1, SRCCOPY));
    EXPECT_EQ(target.pixels(), (Pixels{0x112233, 0x445566, 0x445566, 0x445566}));
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 2, 1, source.context(), 0, 0, SRCINVERT));
    EXPECT_EQ(target.pixels(), (Pixels{0, 0, 0x445566, 0x445566}));
}

TEST(GdiTransfers, BlackAndWhiteIsWhiteWhereTheSourceHasItsBackground)
{
    PixelBoard source(3, 1, {0x00FF00, 0xFFFFFF, 0x00FF01});
    PixelBoard target(3, 1, Pixels(3, 0), true);
    SetBkColor(source.context(), key);
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 3, 1, source.context(), 0, 0, SRCCOPY));
    EXPECT_EQ(target.picture(), ".##\n");
    SetBkColor(source.context(), white);
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 3, 1, source.context(), 0, 0, NOTSRCCOPY));
    EXPECT_EQ(target.picture(), ".#.\n");
}

TEST(GdiTransfers, BlackAndWhiteToItselfStaysAsItIs)
{
    PixelBoard source(2, 1, {0x000000, 0xFFFFFF}, true);
    DrawingBoard target(2, 1, white, true);
    SetTextColor(target.context(), white);
    SetBkColor(target.context(), 0);
    EXPECT_TRUE(BitBlt(target.context(), 0, 0, 2, 1, source.context(), 0, 0, SRCCOPY));
    EXPECT_EQ(target.picture(), "#.\n");
}

TEST(GdiTransfers, TheMaskTrickDrawsAPictureWithoutItsBackground)
{
    // As hosts did it by hand: a mask of the background, the ground blacked by it, the picture added.
    PixelBoard picture(3, 1, {0x00FF00, 0x123456, 0x00FF00});
    DrawingBoard mask(3, 1, 0, true);
    PixelBoard target(3, 1, Pixels(3, 0xABCDEF));
    SetBkColor(picture.context(), key);
    BitBlt(mask.context(), 0, 0, 3, 1, picture.context(), 0, 0, SRCCOPY);
    EXPECT_EQ(mask.picture(), ".#.\n");
    BitBlt(target.context(), 0, 0, 3, 1, picture.context(), 0, 0, SRCINVERT);
    BitBlt(target.context(), 0, 0, 3, 1, mask.context(), 0, 0, SRCAND);
    BitBlt(target.context(), 0, 0, 3, 1, picture.context(), 0, 0, SRCINVERT);
    EXPECT_EQ(target.pixels(), (Pixels{0xABCDEF, 0x123456, 0xABCDEF}));
}

// --- Another size ----------------------------------------------------------------------------------------------------

Pixels stretched(const PixelBoard &source, int width, int height, int sourceX, int sourceY, int sourceWidth,
                 int sourceHeight, int x = 0, int y = 0)
{
    const int outWidth = std::abs(width);
    const int outHeight = std::abs(height);
    PixelBoard target(outWidth, outHeight, Pixels(static_cast<std::size_t>(outWidth * outHeight), 0x777777));
    EXPECT_TRUE(StretchBlt(target.context(), x, y, width, height, source.context(), sourceX, sourceY, sourceWidth,
                           sourceHeight, SRCCOPY));
    return target.pixels();
}

TEST(GdiStretch, WholeMultiplesRepeatPixels)
{
    const PixelBoard source(2, 2, counted(4));
    EXPECT_EQ(stretched(source, 4, 6, 0, 0, 2, 2),
              (Pixels{1, 1, 2, 2, 1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4, 3, 3, 4, 4}));
    EXPECT_EQ(stretched(source, 3, 1, 1, 1, 1, 1), (Pixels{4, 4, 4}));
}

TEST(GdiStretch, ShrinkingAveragesOverTheArea)
{
    // Two thirds: each target pixel takes a whole source pixel and half of the next.
    const PixelBoard source(3, 1, {0x000000, 0x0000F0, 0x00003C});
    EXPECT_EQ(stretched(source, 2, 1, 0, 0, 3, 1), (Pixels{0x000050, 0x000078}));
    const PixelBoard square(2, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    EXPECT_EQ(stretched(square, 1, 1, 0, 0, 2, 2), (Pixels{0x808080})) << "510 / 4 is 127.5 and rounds up";
}

TEST(GdiStretch, GrowingInterpolatesBetweenTheMiddles)
{
    // Middles of three pixels over two lie at 1/6 (the first alone), 1/2 (both) and 5/6 of the way.
    const PixelBoard source(2, 1, {0x000000, 0x0000C8});
    EXPECT_EQ(stretched(source, 3, 1, 0, 0, 2, 1), (Pixels{0x000000, 0x000064, 0x0000C8}));
    // Five over two: at -0.3, 0.1, 0.5, 0.9, 1.3 between the middles.
    EXPECT_EQ(stretched(source, 5, 1, 0, 0, 2, 1), (Pixels{0, 20, 100, 180, 200}));
}

TEST(GdiStretch, EveryMixOfSizesAgreesWithAnAverageByFractions)
{
    // Independent calculation: shares by areas of rectangles in floating point, for many small sizes.
    const int width = 5;
    const int height = 4;
    std::mt19937 random(1);
    Pixels pixels;
    for (int i = 0; i < width * height; ++i)
    {
        pixels.push_back(random() & 0xFFFFFFU);
    }
    const PixelBoard source(width, height, pixels);
    const auto share = [](int index, int size, int from, int sourceSize)
    {
        if (size < sourceSize)
        {
            const double scale = static_cast<double>(sourceSize) / size;
            return std::max(0.0, std::min((index + 1) * scale, from + 1.0) - std::max(index * scale, double(from))) /
                   scale;
        }
        const double at = std::clamp((index + 0.5) * sourceSize / size - 0.5, 0.0, sourceSize - 1.0);
        return std::max(0.0, 1.0 - std::abs(at - from));
    };
    for (int w = 1; w <= 9; ++w)
    {
        for (int h = 1; h <= 7; ++h)
        {
            if (w % width == 0 && h % height == 0)
            {
                continue;
            }
            const Pixels result = stretched(source, w, h, 0, 0, width, height);
            for (int i = 0; i < w * h; ++i)
            {
                for (const unsigned shift : {0U, 8U, 16U})
                {
                    double sum = 0;
                    for (int j = 0; j < width * height; ++j)
                    {
                        sum += share(i % w, w, j % width, width) * share(i / w, h, j / width, height) *
                               (pixels[static_cast<std::size_t>(j)] >> shift & 0xFFU);
                    }
                    const double actual = result[static_cast<std::size_t>(i)] >> shift & 0xFFU;
                    ASSERT_NEAR(actual, sum, 0.5001) << w << " by " << h << " at " << i;
                }
            }
        }
    }
}

TEST(GdiStretch, SidesBelowNothingMirror)
{
    const PixelBoard source(3, 2, counted(6));
    EXPECT_EQ(stretched(source, -3, 2, 0, 0, 3, 2, 3, 0), (Pixels{3, 2, 1, 6, 5, 4}));
    EXPECT_EQ(stretched(source, 3, 2, 3, 0, -3, 2), (Pixels{3, 2, 1, 6, 5, 4}));
    EXPECT_EQ(stretched(source, 3, -2, 0, 0, 3, 2, 0, 2), (Pixels{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(stretched(source, -3, -2, 3, 2, -3, -2, 3, 2), counted(6));
    EXPECT_EQ(stretched(source, -6, 2, 0, 0, 3, 2, 6, 0), (Pixels{3, 3, 2, 2, 1, 1, 6, 6, 5, 5, 4, 4}));
    const PixelBoard line(3, 1, {0x000000, 0x0000F0, 0x00003C});
    EXPECT_EQ(stretched(line, -2, 1, 0, 0, 3, 1, 2, 0), (Pixels{0x000078, 0x000050}));
}

TEST(GdiStretch, OnlyThePartThatIsAskedForMixes)
{
    // The neighbours of the part must not bleed into it.
    const PixelBoard source(4, 1, {0xFFFFFF, 0x000010, 0x000010, 0xFFFFFF});
    EXPECT_EQ(stretched(source, 3, 1, 1, 0, 2, 1), (Pixels{0x10, 0x10, 0x10}));
    EXPECT_EQ(stretched(source, 5, 1, 1, 0, 2, 1), (Pixels{0x10, 0x10, 0x10, 0x10, 0x10}));
}

TEST(GdiStretch, WhatTheSourceLacksIsLeft)
{
    const PixelBoard source(2, 1, counted(2));
    EXPECT_EQ(stretched(source, 6, 1, -1, 0, 3, 1), (Pixels{0x777777, 0x777777, 1, 1, 2, 2}));
    const Pixels shrunk = stretched(source, 2, 1, 0, 0, 5, 1);
    EXPECT_EQ(shrunk.at(1), 0x777777U) << "nothing of the source lies there";
}

TEST(GdiStretch, AClipCutsWithoutChangingPixels)
{
    const PixelBoard source(5, 5, counted(25));
    PixelBoard whole(8, 8, Pixels(64, 0));
    StretchBlt(whole.context(), 0, 0, 8, 8, source.context(), 0, 0, 5, 5, SRCCOPY);
    PixelBoard parts(8, 8, Pixels(64, 0));
    ExcludeClipRect(parts.context(), 2, 3, 5, 6);
    StretchBlt(parts.context(), 0, 0, 8, 8, source.context(), 0, 0, 5, 5, SRCCOPY);
    for (int y = 0; y < 8; ++y)
    {
        for (int x = 0; x < 8; ++x)
        {
            const bool excluded = x >= 2 && x < 5 && y >= 3 && y < 6;
            EXPECT_EQ(parts.at(x, y), excluded ? 0 : whole.at(x, y)) << x << ", " << y;
        }
    }
}

TEST(GdiStretch, OneSurfaceIsReadBeforeItIsWritten)
{
    const Pixels pixels = counted(16);
    PixelBoard board(4, 4, pixels);
    const PixelBoard copy(4, 4, pixels);
    PixelBoard expected(4, 4, pixels);
    EXPECT_TRUE(StretchBlt(board.context(), 1, 1, 3, 3, board.context(), 0, 0, 4, 4, SRCCOPY));
    EXPECT_TRUE(StretchBlt(expected.context(), 1, 1, 3, 3, copy.context(), 0, 0, 4, 4, SRCCOPY));
    EXPECT_EQ(board.pixels(), expected.pixels());
    EXPECT_TRUE(StretchBlt(board.context(), 4, 0, -4, 4, board.context(), 0, 0, 4, 4, SRCCOPY));
    EXPECT_EQ(board.at(0, 0), expected.at(3, 0));
    EXPECT_EQ(board.at(3, 3), expected.at(0, 3));
}

TEST(GdiStretch, LengthsHaveLimits)
{
    const PixelBoard source(2, 2, counted(4));
    DrawingBoard target(2, 2);
    const auto stretch = [&](int width, int height, int sourceWidth, int sourceHeight)
    {
        return StretchBlt(target.context(), 0, 0, width, height, source.context(), 0, 0, sourceWidth, sourceHeight,
                          SRCCOPY) != FALSE;
    };
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(1, 1, 0, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(1, 1, 2, 0)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(32768, 1, 2, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(1, -32768, 2, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(1, 1, 32768, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(stretch(std::numeric_limits<int>::min(), 1, 2, 2)); }),
              ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(stretch(0, 1, 2, 2));
    EXPECT_TRUE(stretch(1, 0, 2, 2));
    EXPECT_EQ(target.picture(), "..\n..\n");
    EXPECT_TRUE(stretch(32767, 32767, 2, 2));
    EXPECT_EQ(target.pixels(), (Pixels{1, 1, 1, 1}));
    EXPECT_TRUE(stretch(32767, 32766, 1, 4)) << "the greatest sums";
}

// --- Key colours -----------------------------------------------------------------------------------------------------

TEST(GdiTransparent, PixelsOfTheKeyColourAreLeftOut)
{
    const PixelBoard source(3, 1, {0x00FF00, 0x112233, 0x01FF00});
    PixelBoard target(3, 1, Pixels(3, 9));
    EXPECT_TRUE(TransparentImage(target.context(), 0, 0, 3, 1, source.context(), 0, 0, 3, 1, key));
    EXPECT_EQ(target.pixels(), (Pixels{9, 0x112233, 0x01FF00}));
    PixelBoard other(3, 1, Pixels(3, 9));
    EXPECT_TRUE(TransparentImage(other.context(), 0, 0, 3, 1, source.bitmap(), 0, 0, 3, 1, key));
    EXPECT_EQ(other.pixels(), target.pixels());
    EXPECT_TRUE(TransparentImage(other.context(), 0, 0, 3, 1, source.bitmap(), 0, 0, 3, 1, CLR_NONE));
    EXPECT_EQ(other.pixels(), source.pixels());
}

TEST(GdiTransparent, WholeMultiplesStayCrisp)
{
    const PixelBoard source(2, 1, {0x00FF00, 0x112233});
    PixelBoard target(4, 2, Pixels(8, 9));
    EXPECT_TRUE(TransparentImage(target.context(), 0, 0, 4, 2, source.bitmap(), 0, 0, 2, 1, key));
    EXPECT_EQ(target.pixels(), (Pixels{9, 9, 0x112233, 0x112233, 9, 9, 0x112233, 0x112233}));
}

TEST(GdiTransparent, TheKeyNeverBleedsIntoScaledPictures)
{
    // A red disc of sorts on the key, drawn on black in many sizes: no pixel may have any green.
    Pixels pixels(64, 0x00FF00);
    for (const std::size_t place : {9, 10, 11, 17, 18, 19, 20, 26, 27, 28, 36, 45, 46, 54})
    {
        pixels[place] = 0xFF0000;
    }
    const PixelBoard source(8, 8, pixels);
    for (int size = 1; size <= 20; ++size)
    {
        DrawingBoard target(size, size, 0);
        EXPECT_TRUE(TransparentImage(target.context(), 0, 0, size, size, source.bitmap(), 0, 0, 8, 8, key));
        for (const std::uint32_t pixel : target.pixels())
        {
            EXPECT_EQ(pixel & 0x00FFFFU, 0U) << "size " << size;
        }
    }
}

TEST(GdiTransparent, ScaledEdgesAreBlendedByWhatIsCovered)
{
    const PixelBoard source(2, 1, {0xFF0000, 0x00FF00});
    PixelBoard target(1, 1, {0x0000FF});
    EXPECT_TRUE(TransparentImage(target.context(), 0, 0, 1, 1, source.bitmap(), 0, 0, 2, 1, key));
    // Half covered: opacity 128 of 255.
    EXPECT_EQ(target.at(0, 0), 0x80007FU);
}

TEST(GdiTransparent, OneSurfaceIsReadBeforeItIsWritten)
{
    PixelBoard board(3, 1, {1, 2, 0x00FF00});
    EXPECT_TRUE(TransparentImage(board.context(), 1, 0, 2, 1, board.context(), 0, 0, 2, 1, key));
    EXPECT_EQ(board.pixels(), (Pixels{1, 1, 2}));
}

TEST(GdiTransparent, BlackAndWhiteTargetsTakeWhatIsMoreThanHalfThere)
{
    const PixelBoard source(4, 1, {0x00FF00, 0x000000, 0x00FF00, 0x00FF00});
    DrawingBoard target(4, 1, white, true);
    EXPECT_TRUE(TransparentImage(target.context(), 0, 0, 4, 1, source.bitmap(), 0, 0, 4, 1, key));
    EXPECT_EQ(target.picture(), ".#..\n");
    target.clear(white);
    EXPECT_TRUE(TransparentImage(target.context(), 0, 0, 2, 1, source.bitmap(), 0, 0, 4, 1, key));
    EXPECT_EQ(target.picture(), "#...\n") << "half there";
    const PixelBoard mono(2, 1, {0x000000, 0xFFFFFF}, true);
    PixelBoard colored(2, 1, Pixels(2, 9));
    SetTextColor(colored.context(), RGB(1, 1, 1));
    EXPECT_TRUE(TransparentImage(colored.context(), 0, 0, 2, 1, mono.bitmap(), 0, 0, 2, 1, white));
    EXPECT_EQ(colored.pixels(), (Pixels{0, 9}));
}

TEST(GdiTransparent, LengthsHaveLimits)
{
    const PixelBoard source(2, 2, counted(4));
    PixelBoard target(2, 2, Pixels(4, 9));
    const auto draw = [&](int width, int sourceWidth)
    { return TransparentImage(target.context(), 0, 0, width, 2, source.bitmap(), 0, 0, sourceWidth, 2, key) != FALSE; };
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(2, 0)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(32768, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(draw(0, 2));
    EXPECT_EQ(target.pixels(), Pixels(4, 9));
}
} // namespace
