// Pictures of another density, and outlines of thick pens.
#include "framework/MemoryBitmap.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "support/Picture.h"
#include "support/Scaling.h"

namespace
{
using namespace zb::test;

class PicturesTest : public ::testing::Test
{
  protected:
    explicit PicturesTest(int dotsPerInch = 96)
        : device(withDensity(dotsPerInch)), module(LoadLibraryW(u"ZBTestModule"))
    {
    }
    ~PicturesTest() override
    {
        FreeLibrary(module);
    }
    /// "x by y", or "none".
    std::string density(WORD number) const
    {
        int x = -1;
        int y = -1;
        const BOOL found = HIDPI_GetBitmapLogPixels(module, MAKEINTRESOURCEW(number), &x, &y);
        const std::string text = std::to_string(x) + " by " + std::to_string(y);
        return found != FALSE ? text : text == "-1 by -1" ? "none" : "written";
    }
    static std::string sizeOf(HBITMAP bitmap)
    {
        BITMAP record{};
        return GetObjectW(bitmap, sizeof record, &record) == 0
                   ? "none"
                   : std::to_string(record.bmWidth) + " by " + std::to_string(record.bmHeight);
    }
    /// A strip of three squares of the module: red, blue, white, each 16 by 16.
    HBITMAP threeSquares() const
    {
        return LoadBitmapW(module, MAKEINTRESOURCEW(1));
    }
    /// The list's pictures: number and size, and the colours of their middles.
    std::string listOf(WORD number, int cx, COLORREF mask = CLR_NONE) const
    {
        const HIMAGELIST list =
            HIDPI_ImageList_LoadImage(module, MAKEINTRESOURCEW(number), cx, 0, mask, IMAGE_BITMAP, 0);
        if (list == nullptr)
        {
            return "none";
        }
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(list, &width, &height);
        std::string text = std::to_string(width) + " by " + std::to_string(height) + ":";
        for (int i = 0; i < ImageList_GetImageCount(list); ++i)
        {
            const zb::MemoryBitmap target(width, height);
            ImageList_Draw(list, i, target.context(), 0, 0, ILD_TRANSPARENT);
            char color[16];
            std::snprintf(color, sizeof color, " %06X", pictureOf(target.bitmap()).at(width / 2, height / 2));
            text += color;
        }
        ImageList_Destroy(list);
        return text;
    }

    TestDevice device;
    Scaling scaling;
    HMODULE module;
};

class PicturesAt192 : public PicturesTest
{
  protected:
    PicturesAt192() : PicturesTest(192)
    {
    }
};

class PicturesAt131 : public PicturesTest
{
  protected:
    PicturesAt131() : PicturesTest(131)
    {
    }
};

class PicturesAt288 : public PicturesTest
{
  protected:
    PicturesAt288() : PicturesTest(288)
    {
    }
};

class PicturesAt144 : public PicturesTest
{
  protected:
    PicturesAt144() : PicturesTest(144)
    {
    }
};

// --- Densities ---------------------------------------------------------------------------------------------------

TEST_F(PicturesTest, densitiesOfBitmaps)
{
    EXPECT_EQ(density(1), "96 by 96");
    EXPECT_EQ(density(2), "192 by 192");
    EXPECT_EQ(density(4), "288 by 192");
}

TEST_F(PicturesTest, noDensityCountsAs96)
{
    EXPECT_EQ(density(3), "96 by 96");
    EXPECT_EQ(density(5), "96 by 96");
}

TEST_F(PicturesTest, withoutTheResourceThereIsNoDensity)
{
    EXPECT_EQ(density(99), "none");
}

// --- Bitmaps -----------------------------------------------------------------------------------------------------

TEST_F(PicturesTest, aBitmapOfTheRightSizeIsKept)
{
    HBITMAP bitmap = threeSquares();
    const HBITMAP former = bitmap;
    EXPECT_NE(HIDPI_StretchBitmap(&bitmap, 16, 16, 3, 1), FALSE);
    EXPECT_EQ(bitmap, former);
    EXPECT_EQ(sizeOf(bitmap), "48 by 16");
    DeleteObject(bitmap);
}

TEST_F(PicturesTest, imagesAreStretchedEachByItself)
{
    HBITMAP bitmap = threeSquares();
    const HBITMAP former = bitmap;
    ASSERT_NE(HIDPI_StretchBitmap(&bitmap, 24, 8, 3, 1), FALSE);
    EXPECT_NE(bitmap, former);
    EXPECT_EQ(sizeOf(former), "none");
    ASSERT_EQ(sizeOf(bitmap), "72 by 8");
    const Picture picture = pictureOf(bitmap);
    for (int y = 0; y < 8; ++y)
    {
        for (int x = 0; x < 72; ++x)
        {
            ASSERT_EQ(picture.at(x, y), x < 24 ? 0xFF0000U : x < 48 ? 0x0000FFU : 0xFFFFFFU) << x << ',' << y;
        }
    }
    DeleteObject(bitmap);
}

TEST_F(PicturesTest, gridsHaveRowsToo)
{
    // Four rows of three images, each 16 by 4.
    HBITMAP bitmap = threeSquares();
    ASSERT_NE(HIDPI_StretchBitmap(&bitmap, 8, 6, 3, 4), FALSE);
    EXPECT_EQ(sizeOf(bitmap), "24 by 24");
    const Picture picture = pictureOf(bitmap);
    EXPECT_EQ(picture.at(7, 23), 0xFF0000U);
    EXPECT_EQ(picture.at(8, 0), 0x0000FFU);
    DeleteObject(bitmap);
}

TEST_F(PicturesTest, aSizeThatIsLeftOutKeepsTheShape)
{
    const auto stretched = [&](int cx, int cy, int cols)
    {
        HBITMAP bitmap = threeSquares();
        EXPECT_NE(HIDPI_StretchBitmap(&bitmap, cx, cy, cols, 1), FALSE);
        const std::string size = sizeOf(bitmap);
        DeleteObject(bitmap);
        return size;
    };
    EXPECT_EQ(stretched(0, 24, 3), "72 by 24");
    EXPECT_EQ(stretched(20, 0, 3), "60 by 20");
    EXPECT_EQ(stretched(0, 5, 1), "15 by 5");  // (5 * 48 + 8) / 16 = 15.5
    EXPECT_EQ(stretched(10, 0, 1), "10 by 3"); // (10 * 16 + 24) / 48 = 3.8
    EXPECT_EQ(stretched(11, 0, 1), "11 by 4"); // (11 * 16 + 24) / 48 = 4.2
}

TEST_F(PicturesTest, whatCannotBeStretchedStays)
{
    HBITMAP none = nullptr;
    EXPECT_EQ(HIDPI_StretchBitmap(&none, 16, 16, 1, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(nullptr, 16, 16, 1, 1), FALSE);
    HBITMAP bitmap = threeSquares();
    const HBITMAP former = bitmap;
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 0, 0, 3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 8, 8, 0, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 8, 8, 3, 0), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 8, 8, 49, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 8, 8, -3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 30'000, 8, 3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, -16, 16, 3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, -16, 0, 3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 0, -16, 3, 1), FALSE);
    EXPECT_EQ(HIDPI_StretchBitmap(&bitmap, 32'768, 8, 1, 1), FALSE);
    EXPECT_EQ(bitmap, former);
    EXPECT_EQ(sizeOf(bitmap), "48 by 16");
    HFONT font = GetStockObject(SYSTEM_FONT);
    EXPECT_EQ(HIDPI_StretchBitmap(&font, 8, 8, 1, 1), FALSE);
    DeleteObject(bitmap);
}

// --- Icons -------------------------------------------------------------------------------------------------------

TEST_F(PicturesTest, iconsAreStretchedWithTheirMask)
{
    // A white icon of 8 by 8 whose right half lets through.
    const std::vector<DWORD> white(64, 0x00FFFFFF);
    const zb::OwnedBitmap color(CreateBitmap(8, 8, 1, 32, white.data()));
    std::vector<DWORD> half(64, 0);
    for (std::size_t i = 0; i < half.size(); ++i)
    {
        half[i] = i % 8 < 4 ? 0 : 0x00FFFFFF;
    }
    const zb::OwnedBitmap mask(CreateBitmap(8, 8, 1, 32, half.data()));
    const ICONINFO description{TRUE, 0, 0, mask.handle(), color.handle()};
    HICON icon = CreateIconIndirect(&description);
    ASSERT_NE(icon, nullptr);
    const HICON former = icon;
    ASSERT_NE(HIDPI_StretchIcon(&icon, 16, 24), FALSE);
    EXPECT_NE(icon, former);
    EXPECT_EQ(DestroyIcon(former), FALSE);
    const zb::MemoryBitmap target(40, 40);
    EXPECT_NE(DrawIconEx(target.context(), 0, 0, icon, 0, 0, 0, nullptr, DI_NORMAL), FALSE);
    const Picture picture = pictureOf(target.bitmap());
    EXPECT_EQ(picture.at(0, 0), 0xFFFFFFU);
    EXPECT_EQ(picture.at(7, 23), 0xFFFFFFU);
    EXPECT_EQ(picture.at(8, 0), 0x000000U);
    EXPECT_EQ(picture.at(7, 24), 0x000000U);
    DestroyIcon(icon);
}

TEST_F(PicturesTest, noIconIsNotStretched)
{
    HICON none = nullptr;
    EXPECT_EQ(HIDPI_StretchIcon(&none, 16, 16), FALSE);
    EXPECT_EQ(HIDPI_StretchIcon(nullptr, 16, 16), FALSE);
}

TEST_F(PicturesTest, iconsOfImpossibleSizesStay)
{
    const HICON former = LoadIconW(module, MAKEINTRESOURCEW(1));
    HICON icon = former;
    EXPECT_EQ(HIDPI_StretchIcon(&icon, -16, 16), FALSE);
    EXPECT_EQ(HIDPI_StretchIcon(&icon, 16, -16), FALSE);
    EXPECT_EQ(HIDPI_StretchIcon(&icon, 32'768, 16), FALSE);
    EXPECT_EQ(icon, former);
    EXPECT_NE(DestroyIcon(icon), FALSE);
}

// --- Image lists -------------------------------------------------------------------------------------------------

TEST_F(PicturesTest, aBitmapOfTwiceTheDensityShrinksByHalf)
{
    EXPECT_EQ(listOf(2, 16), "16 by 16: FF0000 0000FF FFFFFF");
}

TEST_F(PicturesTest, aBitmapOfTheScreensDensityIsLoadedAsItIs)
{
    EXPECT_EQ(listOf(1, 16), "16 by 16: FF0000 0000FF FFFFFF");
    EXPECT_EQ(listOf(1, 8), "8 by 16: FF0000 FF0000 0000FF 0000FF FFFFFF FFFFFF");
}

TEST_F(PicturesTest, densitiesAcrossAndDownCountByThemselves)
{
    // 288 by 192 dots: images of 48 pixels become 16 wide and 24 high.
    EXPECT_EQ(listOf(4, 16), "16 by 24: FF0000 0000FF");
}

TEST_F(PicturesAt192, aBitmapOfHalfTheDensityGrowsImageByImage)
{
    EXPECT_EQ(listOf(1, 32), "32 by 32: FF0000 0000FF FFFFFF");
    EXPECT_EQ(listOf(3, 32), "32 by 32: FF0000 0000FF");
}

TEST_F(PicturesAt144, otherDensitiesAreStretchedAsOneStrip)
{
    EXPECT_EQ(listOf(1, 24), "24 by 24: FF0000 0000FF FFFFFF");
    EXPECT_EQ(listOf(2, 24), "24 by 24: FF0000 0000FF FFFFFF");
}

TEST_F(PicturesAt144, oneStripHasSoftSeams)
{
    const HIMAGELIST list = HIDPI_ImageList_LoadImage(module, MAKEINTRESOURCEW(1), 24, 0, CLR_NONE, IMAGE_BITMAP, 0);
    const zb::MemoryBitmap target(24, 24);
    ImageList_Draw(list, 0, target.context(), 0, 0, ILD_NORMAL);
    EXPECT_EQ(pictureOf(target.bitmap()).at(20, 12), 0xFF0000U);
    EXPECT_NE(pictureOf(target.bitmap()).at(23, 12), 0xFF0000U);
    ImageList_Destroy(list);
}

/// Images of 16 pixels that become 25: no whole multiple, so every seam inside one strip would be soft.
TEST_F(PicturesAt192, imageByImageHasSharpSeams)
{
    const HIMAGELIST list = HIDPI_ImageList_LoadImage(module, MAKEINTRESOURCEW(1), 25, 0, CLR_NONE, IMAGE_BITMAP, 0);
    const zb::MemoryBitmap target(25, 32);
    ImageList_Draw(list, 0, target.context(), 0, 0, ILD_NORMAL);
    EXPECT_EQ(pictureOf(target.bitmap()).at(24, 12), 0xFF0000U);
    ImageList_Draw(list, 1, target.context(), 0, 0, ILD_NORMAL);
    EXPECT_EQ(pictureOf(target.bitmap()).at(0, 12), 0x0000FFU);
    EXPECT_EQ(pictureOf(target.bitmap()).at(24, 12), 0x0000FFU);
    ImageList_Destroy(list);
}

TEST_F(PicturesAt131, heightsOfImagesAreRounded)
{
    // (16 * 131 + 48) / 96 = 22.3; without the 48 it would be 21.8.
    EXPECT_EQ(listOf(1, 22), "22 by 22: FF0000 0000FF FFFFFF");
}

TEST_F(PicturesAt288, theDensityAcrossAloneDecidesWhatIsLoadedAsItIs)
{
    // 288 by 192 dots: stretched, images would be 72 high.
    EXPECT_EQ(listOf(4, 48), "48 by 48: FF0000 0000FF");
}

TEST_F(PicturesAt144, widthsOfImagesAreRounded)
{
    // 25 * 96 / 144 = 16.7, so two images of 17 in the 48 pixels.
    EXPECT_EQ(listOf(1, 25), "25 by 24: FF0000 FFFFFF");
}

TEST_F(PicturesTest, theMaskLetsThrough)
{
    EXPECT_EQ(listOf(2, 16, RGB(0, 0, 255)), "16 by 16: FF0000 000000 FFFFFF");
}

TEST_F(PicturesTest, listsThatCannotBeMade)
{
    EXPECT_EQ(listOf(99, 16), "none");
    EXPECT_EQ(listOf(6, 5), "none"); // half of 8 pixels is less than one image of 5
    EXPECT_EQ(listOf(7, 4), "none");
    EXPECT_EQ(listOf(2, -16), "none");
    EXPECT_EQ(listOf(2, 11'000), "none"); // three images would be wider than any bitmap
    EXPECT_EQ(HIDPI_ImageList_LoadImage(module, MAKEINTRESOURCEW(2), 16, -1, CLR_NONE, IMAGE_BITMAP, 0), nullptr);
}

TEST_F(PicturesTest, otherCallsAreHandedOn)
{
    // Without a width: as wide as high, unstretched.
    EXPECT_EQ(listOf(2, 0), "32 by 32: FF0000 0000FF FFFFFF");
    EXPECT_EQ(HIDPI_ImageList_LoadImage(module, MAKEINTRESOURCEW(2), 16, 0, CLR_NONE, IMAGE_ICON, 0), nullptr);
}

// --- Outlines ----------------------------------------------------------------------------------------------------

class OutlineTest : public ::testing::Test
{
  protected:
    explicit OutlineTest(int dotsPerInch = 96) : device(withDensity(dotsPerInch))
    {
        clear();
    }
    ~OutlineTest() override
    {
        SelectObject(target.context(), GetStockObject(BLACK_PEN));
        DeleteObject(m_pen);
    }
    void clear()
    {
        const RECT all = {0, 0, 30, 30};
        FillRect(target.context(), &all, GetStockObject(WHITE_BRUSH));
        SelectObject(target.context(), GetStockObject(NULL_BRUSH));
    }
    void select(int width)
    {
        const HPEN former = m_pen;
        m_pen = CreatePen(PS_SOLID, width, RGB(255, 0, 0));
        SelectObject(target.context(), m_pen);
        DeleteObject(former);
    }
    /// The smallest rectangle around what was drawn.
    std::string box()
    {
        const Picture picture = pictureOf(target.bitmap());
        int left = 30;
        int top = 30;
        int right = 0;
        int bottom = 0;
        for (int y = 0; y < 30; ++y)
        {
            for (int x = 0; x < 30; ++x)
            {
                if (picture.at(x, y) != 0xFFFFFF)
                {
                    left = std::min(left, x);
                    top = std::min(top, y);
                    right = std::max(right, x + 1);
                    bottom = std::max(bottom, y + 1);
                }
            }
        }
        clear();
        return std::to_string(left) + ',' + std::to_string(top) + ' ' + std::to_string(right) + ',' +
               std::to_string(bottom);
    }
    std::string lines(std::vector<POINT> points, UINT flags)
    {
        EXPECT_NE(HIDPI_Polyline(target.context(), points.data(), static_cast<int>(points.size()), flags), FALSE);
        return box();
    }

    TestDevice device;
    Scaling scaling;
    zb::MemoryBitmap target{30, 30};

  private:
    HPEN m_pen = nullptr;
};

/// Borders have two pixels there.
class OutlineAt192 : public OutlineTest
{
  protected:
    OutlineAt192() : OutlineTest(192)
    {
    }
    /// The colours of a column, one letter a pixel.
    std::string column(int x)
    {
        const Picture picture = pictureOf(target.bitmap());
        std::string text;
        for (int y = 0; y < 30; ++y)
        {
            const std::uint32_t color = picture.at(x, y);
            text += color == 0 ? 'b' : color == 0xFFFFFF ? '.' : '?';
        }
        clear();
        return text;
    }
};

TEST_F(OutlineTest, rectanglesOfAnyPenStayInside)
{
    for (const int width : {1, 2, 3, 4, 5})
    {
        select(width);
        EXPECT_NE(HIDPI_Rectangle(target.context(), 5, 6, 25, 20), FALSE);
        EXPECT_EQ(box(), "5,6 25,20") << width;
    }
}

TEST_F(OutlineTest, theRectangleOfBordersTakesTheirPenAndGivesItBack)
{
    select(5);
    const HGDIOBJ pen = GetCurrentObject(target.context(), OBJ_PEN);
    EXPECT_NE(HIDPI_BorderRectangle(target.context(), 5, 6, 25, 20), FALSE);
    EXPECT_EQ(pictureOf(target.bitmap()).at(5, 6), 0x000000U);
    EXPECT_EQ(pictureOf(target.bitmap()).at(6, 7), 0xFFFFFFU);
    EXPECT_EQ(box(), "5,6 25,20");
    EXPECT_EQ(GetCurrentObject(target.context(), OBJ_PEN), pen);
}

TEST_F(OutlineTest, withoutASideLinesAreDrawnAsTheyAre)
{
    select(4);
    std::vector<POINT> points = {{5, 10}, {20, 10}, {20, 25}};
    Polyline(target.context(), points.data(), 3);
    const std::string plain = box();
    EXPECT_EQ(lines(points, 0), plain);
    EXPECT_EQ(lines(points, 0x0F), plain);
    EXPECT_EQ(lines(points, 0x100), plain);
}

/// A line of 4 pixels lies on its points from 2 before them to 1 behind.
TEST_F(OutlineTest, verticalLinesLieOnOneSide)
{
    select(4);
    const std::vector<POINT> points = {{12, 8}, {12, 20}};
    const auto shifted = [&](int by)
    {
        const std::vector<POINT> moved = {{12 + by, 8}, {12 + by, 20}};
        return lines(moved, 0);
    };
    EXPECT_EQ(lines(points, HIDPI_VERTICAL_LEFT), shifted(-1));
    EXPECT_EQ(lines(points, HIDPI_VERTICAL_RIGHT), shifted(2));
    EXPECT_EQ(lines(points, HIDPI_HORIZONTAL_UP), shifted(0));
    EXPECT_EQ(lines(points, HIDPI_HORIZONTAL_DOWN), shifted(0));
}

TEST_F(OutlineTest, horizontalLinesLieOnOneSide)
{
    select(5);
    const std::vector<POINT> points = {{8, 12}, {20, 12}};
    const auto shifted = [&](int by)
    {
        const std::vector<POINT> moved = {{8, 12 + by}, {20, 12 + by}};
        return lines(moved, 0);
    };
    EXPECT_EQ(lines(points, HIDPI_HORIZONTAL_UP), shifted(-2));
    EXPECT_EQ(lines(points, HIDPI_HORIZONTAL_DOWN), shifted(2));
    EXPECT_EQ(lines(points, HIDPI_VERTICAL_LEFT), shifted(0));
    EXPECT_EQ(lines(points, HIDPI_VERTICAL_RIGHT), shifted(0));
}

TEST_F(OutlineTest, aLineAcrossBothCountsAsVerticalUnlessItIsFlatter)
{
    select(3);
    EXPECT_EQ(lines({{8, 8}, {18, 18}}, HIDPI_VERTICAL_RIGHT), lines({{9, 8}, {19, 18}}, 0));
    EXPECT_EQ(lines({{8, 8}, {19, 18}}, HIDPI_VERTICAL_RIGHT), lines({{8, 8}, {19, 18}}, 0));
    EXPECT_EQ(lines({{19, 18}, {8, 8}}, HIDPI_HORIZONTAL_DOWN), lines({{19, 19}, {8, 9}}, 0));
}

TEST_F(OutlineTest, eachSegmentGoesByItself)
{
    select(4);
    // Down the one, right the other.
    const std::string corner = lines({{5, 10}, {20, 10}, {20, 25}}, HIDPI_VERTICAL_RIGHT | HIDPI_HORIZONTAL_DOWN);
    const POINT down[] = {{5, 12}, {20, 12}};
    const POINT right[] = {{22, 10}, {22, 25}};
    Polyline(target.context(), down, 2);
    Polyline(target.context(), right, 2);
    EXPECT_EQ(corner, box());
}

TEST_F(OutlineTest, linesOfBordersTakeTheirPen)
{
    select(5);
    const HGDIOBJ pen = GetCurrentObject(target.context(), OBJ_PEN);
    const POINT points[] = {{5, 10}, {20, 10}};
    EXPECT_NE(HIDPI_BorderPolyline(target.context(), points, 2, HIDPI_HORIZONTAL_DOWN), FALSE);
    EXPECT_EQ(pictureOf(target.bitmap()).at(10, 10), 0x000000U);
    EXPECT_EQ(box(), "5,10 20,11");
    EXPECT_EQ(GetCurrentObject(target.context(), OBJ_PEN), pen);
}

TEST_F(OutlineAt192, theRectangleOfBordersStaysInside)
{
    select(5);
    EXPECT_NE(HIDPI_BorderRectangle(target.context(), 5, 6, 25, 20), FALSE);
    const Picture picture = pictureOf(target.bitmap());
    EXPECT_EQ(picture.at(5, 6), 0x000000U);
    EXPECT_EQ(picture.at(6, 7), 0x000000U);
    EXPECT_EQ(picture.at(7, 8), 0xFFFFFFU);
    EXPECT_EQ(picture.at(22, 17), 0xFFFFFFU);
    EXPECT_EQ(picture.at(23, 18), 0x000000U);
    EXPECT_EQ(box(), "5,6 25,20");
}

/// A line of 2 pixels lies on its points and the pixels before them.
TEST_F(OutlineAt192, linesOfBordersLieOnOneSide)
{
    select(5);
    const POINT points[] = {{5, 10}, {20, 10}};
    const auto rows = [&](UINT flags)
    {
        EXPECT_NE(HIDPI_BorderPolyline(target.context(), points, 2, flags), FALSE);
        return column(12);
    };
    EXPECT_EQ(rows(0), std::string(9, '.') + "bb" + std::string(19, '.'));
    EXPECT_EQ(rows(HIDPI_HORIZONTAL_UP), std::string(9, '.') + "bb" + std::string(19, '.'));
    EXPECT_EQ(rows(HIDPI_HORIZONTAL_DOWN), std::string(10, '.') + "bb" + std::string(18, '.'));
}

TEST_F(OutlineTest, aFailureIsTold)
{
    const POINT points[] = {{5, 10}, {20, 10}};
    EXPECT_EQ(HIDPI_Polyline(nullptr, points, 2, 0), FALSE);
    EXPECT_EQ(HIDPI_Polyline(nullptr, points, 2, HIDPI_VERTICAL_LEFT), FALSE);
    EXPECT_EQ(HIDPI_BorderPolyline(nullptr, points, 2, 0), FALSE);
    EXPECT_EQ(HIDPI_Rectangle(nullptr, 1, 2, 3, 4), FALSE);
    EXPECT_EQ(HIDPI_BorderRectangle(nullptr, 1, 2, 3, 4), FALSE);
}
} // namespace
