// Edges, parts of controls, icons.
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "support/DrawingBoard.h"
#include "support/Picture.h"
#include "support/TestDevice.h"

#include <functional>

namespace
{
using namespace zb::test;
using Pixels = std::vector<std::uint32_t>;

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

std::uint32_t pixelOf(int index)
{
    const COLORREF color = GetSysColor(index);
    return static_cast<std::uint32_t>(GetRValue(color)) << 16U | static_cast<std::uint32_t>(GetGValue(color)) << 8U |
           GetBValue(color);
}

// --- Edges -----------------------------------------------------------------------------------------------------------

TEST(GdiEdges, EachLineIsLitFromTheTopLeft)
{
    struct Case
    {
        UINT edge;
        int lit;
        int shaded;
    };
    const Case cases[] = {{BDR_RAISEDOUTER, COLOR_3DLIGHT, COLOR_3DDKSHADOW},
                          {BDR_SUNKENOUTER, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT},
                          {EDGE_RAISED, COLOR_3DLIGHT, COLOR_3DDKSHADOW},
                          {EDGE_SUNKEN, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT}};
    for (const Case &each : cases)
    {
        DrawingBoard board(8, 8, RGB(1, 2, 3));
        RECT around{1, 1, 7, 7};
        EXPECT_TRUE(DrawEdge(board.context(), &around, each.edge, BF_RECT));
        EXPECT_EQ(board.at(1, 3), pixelOf(each.lit));
        EXPECT_EQ(board.at(3, 1), pixelOf(each.lit));
        EXPECT_EQ(board.at(6, 3), pixelOf(each.shaded));
        EXPECT_EQ(board.at(3, 6), pixelOf(each.shaded));
        EXPECT_EQ(board.at(6, 6), pixelOf(each.shaded));
        EXPECT_EQ(board.at(0, 0), 0x010203U);
        EXPECT_EQ(board.at(3, 3), 0x010203U);
        EXPECT_EQ(around.left, 1);
        EXPECT_EQ(around.bottom, 7);
    }
}

TEST(GdiEdges, TheSecondLineLiesInside)
{
    DrawingBoard board(8, 8, RGB(1, 2, 3));
    RECT all{0, 0, 8, 8};
    EXPECT_TRUE(DrawEdge(board.context(), &all, EDGE_RAISED, BF_RECT));
    EXPECT_EQ(board.at(1, 4), pixelOf(COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(board.at(6, 4), pixelOf(COLOR_BTNSHADOW));
    EXPECT_EQ(board.at(2, 4), 0x010203U);
    EXPECT_TRUE(DrawEdge(board.context(), &all, EDGE_SUNKEN, BF_RECT));
    EXPECT_EQ(board.at(1, 4), pixelOf(COLOR_3DDKSHADOW));
    EXPECT_EQ(board.at(6, 4), pixelOf(COLOR_3DLIGHT));
}

TEST(GdiEdges, OnlyTheSidesAskedForAreDrawn)
{
    const std::pair<UINT, POINT> sides[] = {
        {BF_LEFT, {0, 2}}, {BF_TOP, {2, 0}}, {BF_RIGHT, {4, 2}}, {BF_BOTTOM, {2, 4}}};
    for (const auto &[flag, place] : sides)
    {
        DrawingBoard board(5, 5, RGB(1, 2, 3));
        RECT all{0, 0, 5, 5};
        EXPECT_TRUE(DrawEdge(board.context(), &all, BDR_SUNKENOUTER, flag));
        for (const auto &[other, point] : sides)
        {
            EXPECT_EQ(board.at(point.x, point.y) != 0x010203, other == flag) << flag << " " << other;
        }
    }
}

TEST(GdiEdges, BadArgumentsAreRefused)
{
    DrawingBoard board(2, 2);
    RECT all{0, 0, 2, 2};
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawEdge(board.context(), nullptr, 5, 15)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawEdge(board.context(), &all, 16, 15)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawEdge(board.context(), &all, 5, 16)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawEdge(nullptr, &all, 5, 15)); }), ERROR_INVALID_HANDLE);
    RECT empty{1, 1, 1, 1};
    EXPECT_TRUE(DrawEdge(board.context(), &empty, EDGE_RAISED, BF_RECT));
    EXPECT_EQ(board.picture(), "..\n..\n");
}

// --- Parts of controls
// -------------------------------------------------------------------------------------------------

struct Part
{
    UINT type;
    UINT part;
};

const Part allParts[] = {{DFC_CAPTION, DFCS_CAPTIONCLOSE}, {DFC_SCROLL, DFCS_SCROLLUP},
                         {DFC_SCROLL, DFCS_SCROLLDOWN},    {DFC_SCROLL, DFCS_SCROLLLEFT},
                         {DFC_SCROLL, DFCS_SCROLLRIGHT},   {DFC_SCROLL, DFCS_SCROLLCOMBOBOX},
                         {DFC_BUTTON, DFCS_BUTTONCHECK},   {DFC_BUTTON, DFCS_BUTTONRADIO},
                         {DFC_BUTTON, DFCS_BUTTON3STATE},  {DFC_BUTTON, DFCS_BUTTONPUSH}};

const UINT allStates[] = {0, DFCS_PUSHED, DFCS_CHECKED, DFCS_INACTIVE, DFCS_INACTIVE | DFCS_CHECKED};

/// All parts beside each other, one row for each state.
void drawAll(const DrawingBoard &board, int side)
{
    int y = 0;
    for (const UINT state : allStates)
    {
        int x = 0;
        for (const Part &part : allParts)
        {
            RECT place{x + 1, y + 1, x + side - 1, y + side - 1};
            EXPECT_TRUE(DrawFrameControl(board.context(), &place, part.type, part.part | state));
            x += side;
        }
        y += side;
    }
}

class GdiControlsTest : public DeviceTest
{
};

TEST_F(GdiControlsTest, LookAsTheyShould)
{
    DrawingBoard small(10 * 15, 5 * 15);
    drawAll(small, 15);
    EXPECT_TRUE(matchesPicture(small.bitmap(), "gdi-controls-96"));
    device.options().screen.dotsPerInch = 192;
    device.reopen();
    DrawingBoard large(10 * 28, 5 * 28);
    drawAll(large, 28);
    EXPECT_TRUE(matchesPicture(large.bitmap(), "gdi-controls-192"));
}

TEST_F(GdiControlsTest, StayInTheirRectangle)
{
    for (const Part &part : allParts)
    {
        for (const UINT state : allStates)
        {
            for (int side = 0; side < 9; ++side)
            {
                DrawingBoard board(11, 11, RGB(255, 0, 0));
                RECT place{2, 1, 2 + side, 1 + side};
                EXPECT_TRUE(DrawFrameControl(board.context(), &place, part.type, part.part | state));
                for (int i = 0; i < 121; ++i)
                {
                    const int x = i % 11;
                    const int y = i / 11;
                    const bool inside = x >= 2 && x < 2 + side && y >= 1 && y < 1 + side;
                    ASSERT_TRUE(inside || board.at(x, y) == 0xFF0000) << part.type << " " << part.part << " " << side;
                }
            }
        }
    }
}

TEST_F(GdiControlsTest, EveryStateLooksDifferent)
{
    for (const Part &part : {Part{DFC_BUTTON, DFCS_BUTTONCHECK}, Part{DFC_BUTTON, DFCS_BUTTONRADIO},
                             Part{DFC_BUTTON, DFCS_BUTTON3STATE}, Part{DFC_BUTTON, DFCS_BUTTONPUSH}})
    {
        std::set<Pixels> looks;
        for (const UINT state : {UINT{0}, DFCS_PUSHED, DFCS_CHECKED, DFCS_INACTIVE})
        {
            DrawingBoard board(13, 13);
            RECT all{0, 0, 13, 13};
            DrawFrameControl(board.context(), &all, part.type, part.part | state);
            looks.insert(board.pixels());
        }
        EXPECT_EQ(looks.size(), 4U) << part.part;
    }
    for (const Part &part : allParts)
    {
        std::set<Pixels> looks;
        for (const UINT state : {UINT{0}, DFCS_PUSHED, DFCS_INACTIVE})
        {
            DrawingBoard board(13, 13);
            RECT all{0, 0, 13, 13};
            DrawFrameControl(board.context(), &all, part.type, part.part | state);
            looks.insert(board.pixels());
        }
        EXPECT_EQ(looks.size(), 3U) << part.type << " " << part.part;
    }
}

TEST_F(GdiControlsTest, UnknownPartsAreRefused)
{
    DrawingBoard board(4, 4);
    RECT all{0, 0, 4, 4};
    for (const Part &part : {Part{0, 0}, Part{2, 0}, Part{5, 0}, Part{DFC_CAPTION, 1}, Part{DFC_SCROLL, 4},
                             Part{DFC_SCROLL, 6}, Part{DFC_BUTTON, 1}, Part{DFC_BUTTON, 32}})
    {
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawFrameControl(board.context(), &all, part.type, part.part)); }),
                  ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawFrameControl(board.context(), nullptr, DFC_BUTTON, 0)); }),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DrawFrameControl(nullptr, &all, DFC_BUTTON, 0)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(board.picture(), "....\n....\n....\n....\n");
}

// --- Icons -----------------------------------------------------------------------------------------------------------

/// A bitmap with these pixels; of the caller.
HBITMAP bitmapOf(int width, int height, const Pixels &pixels)
{
    return CreateBitmap(width, height, 1, 32, pixels.data());
}

class GdiIconTest : public testing::Test
{
  protected:
    /// Red, green, blue and white; the mask lets the second and the fourth through.
    GdiIconTest()
    {
        const unsigned char bits[] = {0x40, 0, 0x40, 0};
        m_color = bitmapOf(2, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
        m_mask = CreateBitmap(2, 2, 1, 1, bits);
        const ICONINFO description{TRUE, 0, 0, m_mask, m_color};
        icon = CreateIconIndirect(&description);
        EXPECT_NE(icon, nullptr);
        EXPECT_TRUE(DeleteObject(m_color));
        EXPECT_TRUE(DeleteObject(m_mask));
    }
    ~GdiIconTest() override
    {
        DestroyIcon(icon);
    }
    Pixels draw(int width, int height, UINT flags, HBRUSH flicker = nullptr)
    {
        DrawingBoard board(4, 4, RGB(9, 9, 9));
        EXPECT_TRUE(DrawIconEx(board.context(), 1, 1, icon, width, height, 0, flicker, flags));
        return board.pixels();
    }

    HICON icon = nullptr;

  private:
    HBITMAP m_color;
    HBITMAP m_mask;
};

Pixels framed(const Pixels &inner)
{
    const std::uint32_t ground = 0x090909;
    return {ground, ground,   ground,   ground, ground, inner[0], inner[1], ground,
            ground, inner[2], inner[3], ground, ground, ground,   ground,   ground};
}

TEST_F(GdiIconTest, IsDrawnWhereItsMaskIsBlack)
{
    EXPECT_EQ(draw(0, 0, DI_NORMAL), framed({0xFF0000, 0x090909, 0x0000FF, 0x090909}));
    EXPECT_EQ(draw(2, 2, DI_NORMAL), framed({0xFF0000, 0x090909, 0x0000FF, 0x090909}));
}

TEST_F(GdiIconTest, ItsHalvesCanBeDrawnAlone)
{
    EXPECT_EQ(draw(0, 0, DI_IMAGE), framed({0xFF0000, 0x000000, 0x0000FF, 0x000000}));
    EXPECT_EQ(draw(0, 0, DI_MASK), framed({0x000000, 0xFFFFFF, 0x000000, 0xFFFFFF}));
}

TEST_F(GdiIconTest, IsDrawnOverAGivenGround)
{
    HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    EXPECT_EQ(draw(0, 0, DI_NORMAL, brush), framed({0xFF0000, 0x010203, 0x0000FF, 0x010203}));
    DeleteObject(brush);
}

TEST_F(GdiIconTest, IsScaledWithoutWhatLetsThrough)
{
    DrawingBoard board(4, 4, RGB(9, 9, 9));
    EXPECT_TRUE(DrawIconEx(board.context(), 0, 0, icon, 4, 4, 0, nullptr, DI_NORMAL));
    const Pixels row{0xFF0000, 0xFF0000, 0x090909, 0x090909};
    const Pixels actual = board.pixels();
    EXPECT_EQ(Pixels(actual.begin(), actual.begin() + 4), row);
    EXPECT_EQ(draw(1, 1, DI_NORMAL)[5] & 0x00FF00U, 0x000400U) << "half of 9 is left, and no green came in";
}

TEST_F(GdiIconTest, ComesBackFromItsHalves)
{
    // As hosts make one icon of another: image and mask drawn on bitmaps, and an icon made of these.
    DrawingBoard image(2, 2, 0);
    DrawingBoard mask(2, 2, 0, true);
    EXPECT_TRUE(DrawIconEx(image.context(), 0, 0, icon, 2, 2, 0, nullptr, DI_IMAGE));
    EXPECT_TRUE(DrawIconEx(mask.context(), 0, 0, icon, 2, 2, 0, nullptr, DI_MASK));
    const ICONINFO description{TRUE, 0, 0, mask.bitmap(), image.bitmap()};
    HICON again = CreateIconIndirect(&description);
    DrawingBoard one(2, 2, RGB(7, 7, 7));
    DrawingBoard other(2, 2, RGB(7, 7, 7));
    DrawIconEx(one.context(), 0, 0, icon, 0, 0, 0, nullptr, DI_NORMAL);
    DrawIconEx(other.context(), 0, 0, again, 0, 0, 0, nullptr, DI_NORMAL);
    EXPECT_EQ(one.pixels(), other.pixels());
    EXPECT_TRUE(DestroyIcon(again));
}

TEST_F(GdiIconTest, WithoutAMaskAllOfItIsThere)
{
    HBITMAP color = bitmapOf(1, 1, {0x00FF00});
    const ICONINFO description{TRUE, 0, 0, nullptr, color};
    HICON whole = CreateIconIndirect(&description);
    DrawingBoard board(1, 1);
    EXPECT_TRUE(DrawIconEx(board.context(), 0, 0, whole, 0, 0, 0, nullptr, DI_NORMAL));
    EXPECT_EQ(board.at(0, 0), 0x00FE00U) << "a shade beside the colour that stands for what lets through";
    DestroyIcon(whole);
    DeleteObject(color);
}

TEST_F(GdiIconTest, BadArgumentsAreRefused)
{
    DrawingBoard board(2, 2);
    HBITMAP large = bitmapOf(2, 1, {1, 2});
    HBITMAP small = bitmapOf(1, 1, {1});
    const auto make = [](HBITMAP mask, HBITMAP color)
    {
        const ICONINFO description{TRUE, 0, 0, mask, color};
        return CreateIconIndirect(&description);
    };
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateIconIndirect(nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(small, large), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(small, nullptr), nullptr); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(icon, large), nullptr); }), ERROR_INVALID_HANDLE);
    const auto draw = [&](HDC context, HICON which, int width, HBRUSH brush, UINT flags)
    { return DrawIconEx(context, 0, 0, which, width, 1, 0, brush, flags) != FALSE; };
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(nullptr, icon, 1, nullptr, DI_NORMAL)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), large, 1, nullptr, DI_NORMAL)); }),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), icon, 1, large, DI_NORMAL)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), icon, -1, nullptr, DI_NORMAL)); }),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), icon, 32768, nullptr, DI_NORMAL)); }),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), icon, 1, nullptr, 0)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(draw(board.context(), icon, 1, nullptr, 4)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DeleteObject(icon)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(CloseHandle(icon)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DestroyIcon(large)); }), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DestroyIcon(icon)); }), ERROR_INVALID_HANDLE);
    DeleteObject(large);
    DeleteObject(small);
    EXPECT_EQ(board.picture(), "..\n..\n");
}
} // namespace
