// Pictures dragged over the screen.
#include "platform/image_list.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

constexpr std::uint32_t ground = 0x102030;
constexpr std::uint32_t blue = 0x0000F0;
constexpr std::uint32_t red = 0xF00000;

/// A list of two pictures of 4 by 2: a blue one, and a red one of which the left half lets through.
class ImageListDrags : public ::testing::Test
{
  protected:
    ImageListDrags()
    {
        const std::vector<std::uint32_t> pixels = {blue, blue, blue, blue, 0xFF00FF, 0xFF00FF, red, red,
                                                   blue, blue, blue, blue, 0xFF00FF, 0xFF00FF, red, red};
        const HBITMAP bitmap = CreateBitmap(8, 2, 1, 32, pixels.data());
        ImageList_AddMasked(list, bitmap, RGB(255, 0, 255));
        DeleteObject(bitmap);
        settle();
    }
    ~ImageListDrags() override
    {
        ImageList_EndDrag();
        ImageList_Destroy(list);
    }
    static Picture shown()
    {
        const HBITMAP screen = zb::captureScreen();
        Picture picture = pictureOf(screen);
        DeleteObject(screen);
        return picture;
    }
    /// Only the picture's own pixels differ from the screen without it.
    static void expectAt(int x, int y, std::uint32_t color, int firstColumn = 0)
    {
        const Picture picture = shown();
        int found = 0;
        for (int row = 0; row < picture.height; ++row)
        {
            for (int column = 0; column < picture.width; ++column)
            {
                const bool inside = column >= x + firstColumn && column < x + 4 && row >= y && row < y + 2;
                found += picture.at(column, row) == color ? 1 : 0;
                if (inside)
                {
                    EXPECT_EQ(picture.at(column, row), color) << column << ", " << row;
                }
            }
        }
        EXPECT_EQ(found, (4 - firstColumn) * 2);
    }
    static bool isClean()
    {
        const Picture picture = shown();
        return std::ranges::find(picture.pixels, blue) == picture.pixels.end() &&
               std::ranges::find(picture.pixels, red) == picture.pixels.end();
    }

    TestDevice device;
    ScreenWindow window{RGB(0x10, 0x20, 0x30), WS_POPUP | WS_VISIBLE, 0, 0, 200, 200};
    ScreenWindow child{RGB(0x50, 0x60, 0x70), WS_CHILD | WS_VISIBLE, 40, 30, 50, 50, window.window};
    HIMAGELIST list = ImageList_Create(4, 2, ILC_COLOR32 | ILC_MASK, 2, 0);
};
} // namespace

TEST_F(ImageListDrags, FollowsThePenAndLeavesNothing)
{
    EXPECT_TRUE(ImageList_BeginDrag(list, 0, 1, 1));
    EXPECT_TRUE(isClean()) << "not before it is told where";
    EXPECT_TRUE(ImageList_DragShowNolock(TRUE));
    EXPECT_TRUE(ImageList_DragMove(20, 10));
    expectAt(19, 9, blue);
    EXPECT_TRUE(ImageList_DragMove(38, 31)); // half over another window
    expectAt(37, 30, blue);
    EXPECT_TRUE(ImageList_DragShowNolock(FALSE));
    EXPECT_TRUE(isClean());
    EXPECT_TRUE(ImageList_DragShowNolock(TRUE));
    expectAt(37, 30, blue);
    ImageList_EndDrag();
    EXPECT_TRUE(isClean());
    EXPECT_EQ(shown().at(37, 30), ground);
}

TEST_F(ImageListDrags, WindowsThatRepaintBelowStayRight)
{
    ImageList_BeginDrag(list, 0, 0, 0);
    ImageList_DragEnter(nullptr, 50, 40);
    InvalidateRect(child.window, nullptr, TRUE);
    settle();
    expectAt(50, 40, blue);
    MoveWindow(child.window, 45, 35, 50, 50, TRUE);
    settle();
    expectAt(50, 40, blue);
    EXPECT_EQ(screenPixel(50, 40), RGB(0x50, 0x60, 0x70)) << "the screen itself knows nothing of it";
    ImageList_EndDrag();
    EXPECT_TRUE(isClean());
}

TEST_F(ImageListDrags, WhatLetsThroughShowsWhatIsBelow)
{
    ImageList_BeginDrag(list, 1, 0, 0);
    ImageList_DragEnter(nullptr, 10, 10);
    expectAt(10, 10, red, 2);
    EXPECT_EQ(shown().at(10, 10), ground);
}

TEST_F(ImageListDrags, PlacesCountFromTheWindowThatWasEntered)
{
    ImageList_BeginDrag(list, 0, 2, 1);
    EXPECT_TRUE(ImageList_DragEnter(child.window, 5, 6));
    expectAt(40 + 5 - 2, 30 + 6 - 1, blue);
    ImageList_DragMove(0, 0);
    expectAt(38, 29, blue);
    EXPECT_TRUE(ImageList_DragLeave(child.window));
    EXPECT_TRUE(isClean());
    ImageList_DragShowNolock(TRUE);
    ImageList_DragMove(10, 10);
    expectAt(8, 9, blue);
    EXPECT_FALSE(ImageList_DragEnter(reinterpret_cast<HWND>(list), 0, 0));
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST_F(ImageListDrags, ItsPictureOutlivesTheList)
{
    EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
    ImageList_BeginDrag(list, 0, 2, 1);
    ImageList_Remove(list, -1);
    ImageList_DragEnter(nullptr, 30, 20);
    expectAt(28, 19, blue);
    POINT place{0, 0};
    POINT hotSpot{0, 0};
    const HIMAGELIST dragged = ImageList_GetDragImage(&place, &hotSpot);
    EXPECT_EQ(ImageList_GetImageCount(dragged), 1);
    EXPECT_EQ(place.x, 30);
    EXPECT_EQ(place.y, 20);
    EXPECT_EQ(hotSpot.x, 2);
    EXPECT_EQ(hotSpot.y, 1);
    ImageList_EndDrag();
    EXPECT_EQ(ImageList_GetImageCount(dragged), -1);
}

TEST_F(ImageListDrags, OneAtATimeAndOnlyOfRealPictures)
{
    EXPECT_FALSE(ImageList_DragMove(1, 1));
    EXPECT_FALSE(ImageList_DragShowNolock(TRUE));
    EXPECT_FALSE(ImageList_DragEnter(nullptr, 1, 1));
    EXPECT_FALSE(ImageList_DragLeave(nullptr));
    ImageList_EndDrag();
    EXPECT_FALSE(ImageList_BeginDrag(list, 2, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(ImageList_BeginDrag(nullptr, 0, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(ImageList_BeginDrag(list, 0, 0, 0));
    EXPECT_FALSE(ImageList_BeginDrag(list, 1, 0, 0));
}
