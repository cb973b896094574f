// Lines, rectangles, curves and polygons with pens and brushes.
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "support/DrawingBoard.h"
#include "support/Picture.h"

#include <functional>
#include <limits>

namespace
{
using namespace zb::test;

constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr int far = std::numeric_limits<int>::max();

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

/// A board with a black pen of a width and a red brush (or none of them).
class Sheet : public DrawingBoard
{
  public:
    Sheet(int width, int height, int penWidth = 1, bool brush = true, int style = PS_SOLID, bool mono = false)
        : DrawingBoard(width, height, white, mono), m_pen(CreatePen(style, penWidth, black)),
          m_brush(CreateSolidBrush(red))
    {
        SelectObject(context(), m_pen);
        SelectObject(context(), brush ? m_brush : GetStockObject(NULL_BRUSH));
    }
    ~Sheet()
    {
        DeleteObject(m_pen);
        DeleteObject(m_brush);
    }
    Sheet(const Sheet &) = delete;
    Sheet &operator=(const Sheet &) = delete;

    bool line(const std::vector<POINT> &points) const
    {
        return Polyline(context(), points.data(), static_cast<int>(points.size())) != FALSE;
    }
    bool polygon(const std::vector<POINT> &points) const
    {
        return Polygon(context(), points.data(), static_cast<int>(points.size())) != FALSE;
    }

  private:
    HPEN m_pen;
    HBRUSH m_brush;
};

// --- Lines -----------------------------------------------------------------------------------------------------------

TEST(GdiLines, TheLastPointIsLeftOut)
{
    Sheet sheet(6, 4);
    EXPECT_TRUE(sheet.line({{1, 1}, {4, 1}}));
    EXPECT_EQ(sheet.picture(), "......\n.###..\n......\n......\n");
    EXPECT_TRUE(sheet.line({{4, 3}, {4, 1}}));
    EXPECT_EQ(sheet.picture(), "......\n.###..\n....#.\n....#.\n");
    EXPECT_TRUE(sheet.line({{5, 0}, {2, 0}}));
    EXPECT_EQ(sheet.picture(), "...###\n.###..\n....#.\n....#.\n");
    EXPECT_TRUE(sheet.line({{0, 3}, {0, 3}}));
    EXPECT_EQ(sheet.at(0, 3), 0xFFFFFFU) << "a line to its own start has no pixel";
}

TEST(GdiLines, APolylineGoesThroughItsCorners)
{
    Sheet sheet(5, 5);
    EXPECT_TRUE(sheet.line({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}));
    EXPECT_EQ(sheet.picture(), "#####\n#...#\n#...#\n#...#\n#####\n");
}

TEST(GdiLines, SlantedLinesTakeTheNearestPixel)
{
    Sheet sheet(7, 4);
    EXPECT_TRUE(sheet.line({{0, 0}, {6, 3}}));
    // Heights 0, 0.5, 1, 1.5, 2, 2.5: halves go on.
    EXPECT_EQ(sheet.picture(), "#......\n.##....\n...##..\n.....#.\n");
    sheet.clear(white);
    EXPECT_TRUE(sheet.line({{6, 0}, {0, 3}}));
    EXPECT_EQ(sheet.picture(), "......#\n....##.\n..##...\n.#.....\n");
    Sheet upright(3, 6);
    EXPECT_TRUE(upright.line({{0, 5}, {2, 0}}));
    // Widths 0, 0.4, 0.8, 1.2, 1.6 going up.
    EXPECT_EQ(upright.picture(), "...\n..#\n.#.\n.#.\n#..\n#..\n");
    Sheet diagonal(4, 4);
    EXPECT_TRUE(diagonal.line({{3, 3}, {-1, -1}}));
    EXPECT_EQ(diagonal.picture(), "#...\n.#..\n..#.\n...#\n");
}

TEST(GdiLines, PartsOfALineAreThoseOfTheWholeLine)
{
    for (const POINT &end : {POINT{30, 7}, POINT{-20, 33}, POINT{3, -40}, POINT{-31, -8}})
    {
        for (const int style : {PS_SOLID, PS_DASH})
        {
            Sheet whole(24, 24, 1, false, style);
            whole.line({{12, 11}, end});
            Sheet parts(24, 24, 1, false, style);
            for (int y = 0; y < 24; y += 5)
            {
                for (int x = 0; x < 24; x += 7)
                {
                    SaveDC(parts.context());
                    IntersectClipRect(parts.context(), x, y, x + 7, y + 5);
                    parts.line({{12, 11}, end});
                    RestoreDC(parts.context(), -1);
                }
            }
            EXPECT_EQ(parts.picture(), whole.picture()) << end.x << ", " << end.y;
        }
    }
}

TEST(GdiLines, EndlessLinesCostNoTime)
{
    for (const int width : {1, 2, 5})
    {
        for (const int style : {PS_SOLID, PS_DASH})
        {
            Sheet sheet(5, 5, width, true, style);
            EXPECT_TRUE(sheet.line({{-far, -far}, {far, far}, {-far, far}, {far, 2}, {-far, 2}, {2, far}, {2, -far}}));
            EXPECT_EQ(sheet.at(2, 2), 0U) << width << " " << style;
        }
    }
}

TEST(GdiLines, ThickLinesLieBeforeAndBehind)
{
    // Two pixels: one before the line. It reaches as far behind its ends.
    Sheet two(7, 5, 2);
    EXPECT_TRUE(two.line({{2, 2}, {4, 2}}));
    EXPECT_EQ(two.picture(), ".......\n.####..\n.####..\n.......\n.......\n");
    Sheet three(7, 6, 3);
    EXPECT_TRUE(three.line({{3, 4}, {3, 2}}));
    EXPECT_EQ(three.picture(), ".......\n..###..\n..###..\n..###..\n..###..\n..###..\n");
}

TEST(GdiLines, ThickSlantedLinesAreAsWideAsThePen)
{
    Sheet sheet(60, 60, 8);
    EXPECT_TRUE(sheet.line({{15, 15}, {45, 45}}));
    int across = 0;
    for (int x = 0; x < 60; ++x)
    {
        across += sheet.at(x, 30) == 0 ? 1 : 0;
    }
    EXPECT_NEAR(across, 8 * 1.4142, 1.0);
    EXPECT_EQ(sheet.at(10, 10), 0xFFFFFFU);
    EXPECT_EQ(sheet.at(13, 13), 0U);
    EXPECT_EQ(sheet.at(46, 46), 0U);
    EXPECT_EQ(sheet.at(49, 49), 0xFFFFFFU);
}

TEST(GdiLines, DashesGoOnAroundCorners)
{
    Sheet sheet(14, 3, 1, true, PS_DASH);
    EXPECT_TRUE(sheet.line({{0, 0}, {13, 0}, {13, 2}}));
    EXPECT_EQ(sheet.picture(), "######...#####\n"
                               ".............#\n"
                               "..............\n")
        << "6 drawn, 3 left out; the two pixels down are the fifth and sixth of the second dash";
    EXPECT_TRUE(sheet.line({{5, 2}, {14, 2}}));
    EXPECT_EQ(sheet.picture().substr(30), ".....######...\n") << "each call begins anew";
}

TEST(GdiLines, DashesOfAThickPenAreLonger)
{
    Sheet sheet(40, 2, 2, true, PS_DASH);
    EXPECT_TRUE(sheet.line({{0, 1}, {40, 1}}));
    std::string row;
    for (int i = 0; i < 40; ++i)
    {
        row += i % 18 < 12 ? '#' : '.';
    }
    EXPECT_EQ(sheet.picture(), row + "\n" + row + "\n");
}

TEST(GdiLines, ANullPenDrawsNothing)
{
    Sheet sheet(4, 4);
    SelectObject(sheet.context(), GetStockObject(NULL_PEN));
    EXPECT_TRUE(sheet.line({{0, 0}, {3, 3}}));
    EXPECT_TRUE(LineTo(sheet.context(), 3, 0));
    EXPECT_EQ(sheet.picture(), "....\n....\n....\n....\n");
}

TEST(GdiLines, LineToGoesOnFromTheCurrentPosition)
{
    Sheet sheet(4, 3);
    POINT before{9, 9};
    EXPECT_TRUE(MoveToEx(sheet.context(), 1, 1, &before));
    EXPECT_EQ(before.x, 0);
    EXPECT_EQ(before.y, 0);
    EXPECT_TRUE(LineTo(sheet.context(), 3, 1));
    EXPECT_TRUE(LineTo(sheet.context(), 3, 3));
    EXPECT_EQ(sheet.picture(), "....\n.###\n...#\n");
    EXPECT_TRUE(sheet.line({{0, 0}, {1, 0}}));
    EXPECT_TRUE(MoveToEx(sheet.context(), 0, 0, &before));
    EXPECT_EQ(before.x, 3);
    EXPECT_EQ(before.y, 3);
    EXPECT_TRUE(MoveToEx(sheet.context(), 2, 2, nullptr));
    SaveDC(sheet.context());
    MoveToEx(sheet.context(), 0, 0, nullptr);
    RestoreDC(sheet.context(), -1);
    MoveToEx(sheet.context(), 0, 0, &before);
    EXPECT_EQ(before.x, 2);
}

// --- Rectangles ------------------------------------------------------------------------------------------------------

TEST(GdiRectangle, HasOutlineAndBodyWithoutRightAndBottomEdge)
{
    Sheet sheet(6, 5);
    EXPECT_TRUE(Rectangle(sheet.context(), 1, 1, 5, 4));
    EXPECT_EQ(sheet.picture(), "......\n.####.\n.#rr#.\n.####.\n......\n");
    sheet.clear(white);
    EXPECT_TRUE(Rectangle(sheet.context(), 5, 4, 1, 1)) << "sides in any order";
    EXPECT_EQ(sheet.picture(), "......\n.####.\n.#rr#.\n.####.\n......\n");
}

TEST(GdiRectangle, ThickOutlinesAreCentredOnTheEdgePixels)
{
    Sheet three(9, 9, 3);
    EXPECT_TRUE(Rectangle(three.context(), 1, 1, 8, 8));
    EXPECT_EQ(three.picture(), "#########\n#########\n#########\n###rrr###\n###rrr###\n###rrr###\n"
                               "#########\n#########\n#########\n");
    // Of two pixels the odd one lies outside, so sides moved in by half the width keep it inside.
    Sheet two(10, 6, 2);
    EXPECT_TRUE(Rectangle(two.context(), 1, 1, 9, 5));
    EXPECT_EQ(two.picture(), "##########\n##########\n##rrrrrr##\n##rrrrrr##\n##########\n##########\n");
}

TEST(GdiRectangle, NothingIsLeftOutOfSmallOnes)
{
    Sheet sheet(5, 1);
    EXPECT_TRUE(Rectangle(sheet.context(), 0, 0, 1, 1));
    EXPECT_TRUE(Rectangle(sheet.context(), 2, 0, 4, 1));
    EXPECT_TRUE(Rectangle(sheet.context(), 4, 0, 4, 1));
    EXPECT_EQ(sheet.picture(), "#.##.\n");
}

TEST(GdiRectangle, PenAndBrushMayBeMissing)
{
    Sheet sheet(5, 5, 1, false);
    EXPECT_TRUE(Rectangle(sheet.context(), 0, 0, 5, 5));
    EXPECT_EQ(sheet.picture(), "#####\n#...#\n#...#\n#...#\n#####\n");
    Sheet body(4, 3);
    SelectObject(body.context(), GetStockObject(NULL_PEN));
    EXPECT_TRUE(Rectangle(body.context(), 1, 1, 4, 3));
    EXPECT_EQ(body.picture(), "....\n.rrr\n.rrr\n");
}

TEST(GdiRectangle, DashesRunAroundFromTheTopLeft)
{
    Sheet sheet(8, 4, 1, false, PS_DASH);
    EXPECT_TRUE(Rectangle(sheet.context(), 0, 0, 8, 4));
    // Pixels 0 to 19 clockwise; those with a rest of 6, 7 or 8 by 9 are left out.
    EXPECT_EQ(sheet.picture(), "######..\n#.......\n#......#\n...#####\n");
}

TEST(GdiRectangle, FarSidesCostNoTime)
{
    Sheet sheet(3, 3, 1);
    EXPECT_TRUE(Rectangle(sheet.context(), -far, -far, far, far));
    EXPECT_EQ(sheet.picture(), "rrr\nrrr\nrrr\n");
    EXPECT_TRUE(Ellipse(sheet.context(), -far, -far, far, far));
    EXPECT_TRUE(RoundRect(sheet.context(), -far, -far, far, far, far, far));
    EXPECT_EQ(sheet.picture(), "rrr\nrrr\nrrr\n");
}

// --- Curves ----------------------------------------------------------------------------------------------------------

bool isMirrored(const DrawingBoard &board)
{
    const auto pixels = board.pixels();
    const int width = board.width();
    const int height = board.height();
    const auto at = [&](int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; };
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            if (at(x, y) != at(width - 1 - x, y) || at(x, y) != at(x, height - 1 - y))
            {
                return false;
            }
        }
    }
    return true;
}

TEST(GdiCurves, AreTheirOwnMirrorImages)
{
    for (int width = 1; width <= 23; ++width)
    {
        for (int height = 1; height <= 19; height += 3)
        {
            for (const int pen : {1, 2, 3})
            {
                Sheet sheet(width + 6, height + 6, pen);
                EXPECT_TRUE(Ellipse(sheet.context(), 3, 3, 3 + width, 3 + height));
                EXPECT_TRUE(isMirrored(sheet)) << width << " by " << height << ", pen " << pen;
                sheet.clear(white);
                EXPECT_TRUE(RoundRect(sheet.context(), 3, 3, 3 + width, 3 + height, 7, 5));
                EXPECT_TRUE(isMirrored(sheet)) << width << " by " << height << ", pen " << pen;
            }
        }
    }
}

TEST(GdiCurves, AnEllipseCoversItsArea)
{
    for (const auto &[width, height] : {std::pair{20, 20}, std::pair{41, 17}, std::pair{9, 30}, std::pair{101, 100}})
    {
        DrawingBoard board(width, height, black);
        SelectObject(board.context(), GetStockObject(NULL_PEN));
        SelectObject(board.context(), GetStockObject(WHITE_BRUSH));
        EXPECT_TRUE(Ellipse(board.context(), 0, 0, width, height));
        double sum = 0;
        for (const std::uint32_t pixel : board.pixels())
        {
            sum += (pixel & 0xFFU) / 255.0;
        }
        const double area = 3.14159265 * width * height / 4;
        EXPECT_NEAR(sum, area, area * 0.005) << width << " by " << height;
    }
}

TEST(GdiCurves, EachPixelIsCoveredAsFinelyAsItIsCounted)
{
    // Against 64 by 64 points in each pixel of a circle.
    constexpr int side = 11;
    DrawingBoard board(side, side, black);
    SelectObject(board.context(), GetStockObject(NULL_PEN));
    SelectObject(board.context(), GetStockObject(WHITE_BRUSH));
    EXPECT_TRUE(Ellipse(board.context(), 0, 0, side, side));
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            int inside = 0;
            for (int i = 0; i < 64 * 64; ++i)
            {
                const double dx = x + (i % 64 + 0.5) / 64 - side / 2.0;
                const double dy = y + (i / 64 + 0.5) / 64 - side / 2.0;
                inside += dx * dx + dy * dy <= side * side / 4.0 ? 1 : 0;
            }
            EXPECT_NEAR(board.at(x, y) & 0xFFU, inside * 255.0 / 4096, 4.0) << x << ", " << y;
        }
    }
}

TEST(GdiCurves, RoundedCornersLeaveTheSidesStraight)
{
    Sheet sheet(20, 12);
    EXPECT_TRUE(RoundRect(sheet.context(), 0, 0, 20, 12, 8, 8));
    for (int x = 4; x < 16; ++x)
    {
        EXPECT_EQ(sheet.at(x, 0), 0U) << x;
        EXPECT_EQ(sheet.at(x, 11), 0U) << x;
        EXPECT_EQ(sheet.at(x, 1), 0xFF0000U) << x;
    }
    for (int y = 4; y < 8; ++y)
    {
        EXPECT_EQ(sheet.at(0, y), 0U) << y;
        EXPECT_EQ(sheet.at(1, y), 0xFF0000U) << y;
    }
    EXPECT_EQ(sheet.at(0, 0), 0xFFFFFFU);
    EXPECT_EQ(sheet.at(19, 11), 0xFFFFFFU);
}

TEST(GdiCurves, WithoutACornerTheyAreRectangles)
{
    for (const auto &[width, height] : {std::pair{0, 0}, std::pair{0, 5}, std::pair{5, 0}})
    {
        for (const int pen : {1, 2, 3})
        {
            Sheet round(12, 10, pen);
            EXPECT_TRUE(RoundRect(round.context(), 2, 2, 10, 8, width, height));
            Sheet square(12, 10, pen);
            EXPECT_TRUE(Rectangle(square.context(), 2, 2, 10, 8));
            EXPECT_EQ(round.picture(), square.picture()) << width << ", " << height << ", pen " << pen;
        }
    }
}

TEST(GdiCurves, CornersLargerThanTheRectangleMakeAnEllipse)
{
    Sheet round(14, 9);
    EXPECT_TRUE(RoundRect(round.context(), 1, 1, 13, 8, 99, -99));
    Sheet ellipse(14, 9);
    EXPECT_TRUE(Ellipse(ellipse.context(), 13, 8, 1, 1));
    EXPECT_EQ(round.pixels(), ellipse.pixels());
}

TEST(GdiCurves, AreHardOnBlackAndWhite)
{
    Sheet sheet(8, 8, 1, false, PS_SOLID, true);
    EXPECT_TRUE(Ellipse(sheet.context(), 0, 0, 8, 8));
    EXPECT_TRUE(isMirrored(sheet));
    EXPECT_EQ(sheet.picture().find('?'), std::string::npos);
    EXPECT_EQ(sheet.at(0, 4), 0U);
    EXPECT_EQ(sheet.at(4, 0), 0U);
    EXPECT_EQ(sheet.at(0, 0), 0xFFFFFFU);
    EXPECT_EQ(sheet.at(4, 4), 0xFFFFFFU);
}

TEST(GdiCurves, EmptyOnesDrawNothing)
{
    Sheet sheet(3, 3, 3);
    EXPECT_TRUE(Ellipse(sheet.context(), 1, 1, 1, 3));
    EXPECT_TRUE(RoundRect(sheet.context(), 1, 1, 3, 1, 1, 1));
    EXPECT_EQ(sheet.picture(), "...\n...\n...\n");
}

TEST(GdiCurves, LookAsTheyShould)
{
    Sheet sheet(120, 60, 1);
    RoundRect(sheet.context(), 4, 4, 36, 26, 10, 10);
    Ellipse(sheet.context(), 42, 4, 74, 26);
    HPEN thick = CreatePen(PS_SOLID, 3, RGB(0x1F, 0x4E, 0x8C));
    SelectObject(sheet.context(), thick);
    RoundRect(sheet.context(), 82, 4, 114, 26, 12, 12);
    Ellipse(sheet.context(), 6, 32, 30, 56);
    sheet.line({{40, 54}, {60, 34}, {80, 54}, {112, 40}});
    EXPECT_TRUE(matchesPicture(sheet.bitmap(), "gdi-curves"));
    DeleteObject(thick);
}

// --- Polygons --------------------------------------------------------------------------------------------------------

TEST(GdiPolygon, IsClosedAndFilled)
{
    Sheet sheet(7, 7);
    EXPECT_TRUE(sheet.polygon({{1, 1}, {5, 1}, {5, 5}, {1, 5}}));
    EXPECT_EQ(sheet.picture(), ".......\n.#####.\n.#rrr#.\n.#rrr#.\n.#rrr#.\n.#####.\n.......\n");
}

TEST(GdiPolygon, WithoutAPenSharedEdgesAreDrawnOnce)
{
    // Four triangles of a square: every pixel belongs to one of them.
    Sheet sheet(9, 9);
    SelectObject(sheet.context(), GetStockObject(NULL_PEN));
    const POINT corners[] = {{0, 0}, {9, 0}, {9, 9}, {0, 9}};
    std::vector<int> times(81, 0);
    for (int i = 0; i < 4; ++i)
    {
        sheet.clear(white);
        sheet.polygon({corners[i], corners[(i + 1) % 4], {4, 3}});
        const auto pixels = sheet.pixels();
        for (std::size_t j = 0; j < pixels.size(); ++j)
        {
            times[j] += pixels[j] == 0xFF0000 ? 1 : 0;
        }
    }
    EXPECT_EQ(times, std::vector<int>(81, 1));
}

TEST(GdiPolygon, CrossedPartsAreInsideEveryOtherTime)
{
    Sheet sheet(12, 12);
    SelectObject(sheet.context(), GetStockObject(NULL_PEN));
    // One square inside another in one line: the inner one is a hole.
    EXPECT_TRUE(sheet.polygon({{1, 1}, {11, 1}, {11, 11}, {1, 11}, {1, 1}, {4, 4}, {8, 4}, {8, 8}, {4, 8}, {4, 4}}));
    EXPECT_EQ(sheet.at(2, 6), 0xFF0000U);
    EXPECT_EQ(sheet.at(6, 6), 0xFFFFFFU);
    EXPECT_EQ(sheet.at(9, 6), 0xFF0000U);
    EXPECT_EQ(sheet.at(0, 0), 0xFFFFFFU);
}

TEST(GdiPolygon, FarCornersCostNoTime)
{
    Sheet sheet(4, 4);
    EXPECT_TRUE(sheet.polygon({{-far, -far}, {far, -far}, {far, far}, {-far, far}}));
    EXPECT_EQ(sheet.picture(), "rrrr\nrrrr\nrrrr\nrrrr\n");
}

TEST(GdiShapes, ArgumentsAreChecked)
{
    Sheet sheet(2, 2);
    const POINT point{0, 0};
    HDC none = nullptr;
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polyline(sheet.context(), &point, 1)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polyline(sheet.context(), nullptr, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polygon(sheet.context(), &point, 1)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polygon(sheet.context(), nullptr, 3)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polyline(none, &point, 2)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Polygon(none, &point, 3)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Rectangle(none, 0, 0, 1, 1)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(RoundRect(none, 0, 0, 1, 1, 1, 1)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(Ellipse(none, 0, 0, 1, 1)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(MoveToEx(none, 0, 0, nullptr)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(LineTo(none, 0, 0)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(sheet.picture(), "..\n..\n");
}
} // namespace
