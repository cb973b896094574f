// Image lists made of bitmaps and icons.
#include "platform/image_list.h"
#include "platform/kernel.h"
#include "support/DrawingBoard.h"

#include <functional>

namespace
{
using namespace zb::test;
using Pixels = std::vector<std::uint32_t>;

constexpr std::uint32_t ground = 0x777777;

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

/// A list of pictures of 2 by 1, and bitmaps that go with the object.
class ImageListTest : public testing::Test
{
  protected:
    ~ImageListTest() override
    {
        for (HBITMAP bitmap : m_bitmaps)
        {
            DeleteObject(bitmap);
        }
        if (list != nullptr)
        {
            EXPECT_TRUE(ImageList_Destroy(list));
        }
    }
    HBITMAP bitmap(int width, int height, const Pixels &pixels)
    {
        m_bitmaps.push_back(CreateBitmap(width, height, 1, 32, pixels.data()));
        return m_bitmaps.back();
    }
    HBITMAP mask(int width, int height, const std::vector<unsigned char> &bits)
    {
        m_bitmaps.push_back(CreateBitmap(width, height, 1, 1, bits.data()));
        return m_bitmaps.back();
    }
    Pixels draw(int index, UINT style = ILD_NORMAL)
    {
        DrawingBoard board(4, 1, RGB(0x77, 0x77, 0x77));
        EXPECT_TRUE(ImageList_Draw(list, index, board.context(), 1, 0, style));
        EXPECT_EQ(board.at(0, 0), ground);
        EXPECT_EQ(board.at(3, 0), ground);
        return {board.at(1, 0), board.at(2, 0)};
    }

    HIMAGELIST list = ImageList_Create(2, 1, ILC_COLOR32 | ILC_MASK, 0, 0);

  private:
    std::vector<HBITMAP> m_bitmaps;
};

TEST_F(ImageListTest, HasItsSizeAndNoPicturesAtFirst)
{
    int width = 0;
    int height = 0;
    EXPECT_TRUE(ImageList_GetIconSize(list, &width, &height));
    EXPECT_EQ(width, 2);
    EXPECT_EQ(height, 1);
    EXPECT_EQ(ImageList_GetImageCount(list), 0);
}

TEST_F(ImageListTest, BitmapsAreCutAndCopied)
{
    HBITMAP strip = bitmap(5, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    EXPECT_EQ(ImageList_Add(list, strip, nullptr), 0);
    EXPECT_EQ(ImageList_Add(list, strip, nullptr), 2);
    EXPECT_EQ(ImageList_GetImageCount(list), 4);
    HDC context = CreateCompatibleDC(nullptr);
    HGDIOBJ former = SelectObject(context, strip);
    PatBlt(context, 0, 0, 5, 2, WHITENESS);
    SelectObject(context, former);
    DeleteDC(context);
    EXPECT_EQ(draw(0), (Pixels{1, 2}));
    EXPECT_EQ(draw(1), (Pixels{3, 4}));
    EXPECT_EQ(draw(3, ILD_TRANSPARENT), (Pixels{3, 4}));
}

TEST_F(ImageListTest, MasksLetThroughWhereTheyAreWhite)
{
    EXPECT_EQ(ImageList_Add(list, bitmap(4, 1, {1, 2, 3, 4}), mask(4, 1, {0x60, 0})), 0);
    EXPECT_EQ(draw(0), (Pixels{1, ground}));
    EXPECT_EQ(draw(1), (Pixels{ground, 4}));
}

TEST_F(ImageListTest, KeyColoursLetThrough)
{
    EXPECT_EQ(ImageList_AddMasked(list, bitmap(2, 1, {0x0000FF, 0x112233}), RGB(0, 0, 255)), 0);
    EXPECT_EQ(ImageList_AddMasked(list, bitmap(2, 1, {0x0000FF, 0x112233}), CLR_NONE), 1);
    EXPECT_EQ(ImageList_AddMasked(list, bitmap(2, 1, {0x112233, 0x0000FF}), CLR_DEFAULT), 2);
    EXPECT_EQ(draw(0), (Pixels{ground, 0x112233}));
    EXPECT_EQ(draw(1), (Pixels{0x0000FF, 0x112233}));
    EXPECT_EQ(draw(2), (Pixels{ground, 0x0000FF}));
}

TEST_F(ImageListTest, WithoutMasksEverythingIsThere)
{
    HIMAGELIST masked = std::exchange(list, ImageList_Create(2, 1, ILC_COLORDDB, 3, 3));
    ImageList_AddMasked(list, bitmap(2, 1, {0x0000FF, 0x112233}), RGB(0, 0, 255));
    ImageList_Add(list, bitmap(2, 1, {1, 2}), mask(2, 1, {0xC0, 0}));
    EXPECT_EQ(draw(0), (Pixels{0x0000FF, 0x112233}));
    EXPECT_EQ(draw(1), (Pixels{1, 2}));
    EXPECT_TRUE(ImageList_Destroy(masked));
}

TEST_F(ImageListTest, IconsTakeThePlaceOfPicturesOrAreAdded)
{
    const ICONINFO description{TRUE, 0, 0, mask(4, 2, {0x30, 0, 0x30, 0}),
                               bitmap(4, 2, {10, 10, 20, 20, 10, 10, 20, 20})};
    HICON icon = CreateIconIndirect(&description);
    ImageList_Add(list, bitmap(4, 1, {1, 2, 3, 4}), nullptr);
    EXPECT_EQ(ImageList_ReplaceIcon(list, 0, icon), 0);
    EXPECT_EQ(ImageList_ReplaceIcon(list, -1, icon), 2);
    EXPECT_EQ(ImageList_GetImageCount(list), 3);
    EXPECT_EQ(draw(0), (Pixels{10, ground})) << "in the list's size";
    EXPECT_EQ(draw(1), (Pixels{3, 4}));
    EXPECT_EQ(draw(2), (Pixels{10, ground}));
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_ReplaceIcon(list, 3, icon), -1); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_ReplaceIcon(list, -2, icon), -1); }), ERROR_INVALID_PARAMETER);
    DestroyIcon(icon);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_ReplaceIcon(list, 0, icon), -1); }), ERROR_INVALID_HANDLE);
}

TEST_F(ImageListTest, PicturesAreRemovedOneByOneOrAll)
{
    ImageList_Add(list, bitmap(6, 1, {1, 2, 3, 4, 5, 6}), nullptr);
    EXPECT_TRUE(ImageList_Remove(list, 1));
    EXPECT_EQ(ImageList_GetImageCount(list), 2);
    EXPECT_EQ(draw(1), (Pixels{5, 6}));
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_Remove(list, 2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_Remove(list, -2)); }), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(ImageList_Remove(list, -1));
    EXPECT_EQ(ImageList_GetImageCount(list), 0);
}

TEST_F(ImageListTest, BadArgumentsAreRefused)
{
    const int wrongSizes[][4] = {{0, 1, 0, 0},     {1, 0, 0, 0},  {-1, 1, 0, 0}, {32768, 1, 0, 0},
                                 {1, 32768, 0, 0}, {1, 1, -1, 0}, {1, 1, 0, -1}};
    for (const auto &size : wrongSizes)
    {
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_Create(size[0], size[1], 0, size[2], size[3]), nullptr); }),
                  ERROR_INVALID_PARAMETER);
    }
    DrawingBoard board(2, 1);
    HBITMAP good = bitmap(2, 1, {1, 2});
    HBITMAP narrow = bitmap(1, 1, {1});
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_Add(list, narrow, nullptr), -1); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_Add(list, good, narrow), -1); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_Add(list, nullptr, nullptr), -1); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_Add(list, good, list), -1); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ImageList_AddMasked(list, list, 0), -1); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(ImageList_GetImageCount(list), 0);
    EXPECT_EQ(ImageList_Add(list, good, nullptr), 0);
    for (const int index : {-1, 1})
    {
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_Draw(list, index, board.context(), 0, 0, ILD_NORMAL)); }),
                  ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_Draw(list, 0, board.context(), 0, 0, 2)); }),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_Draw(list, 0, nullptr, 0, 0, 0)); }), ERROR_INVALID_HANDLE);
    int width = 0;
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(ImageList_GetIconSize(list, &width, nullptr)); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(board.picture(), "..\n");
}

TEST_F(ImageListTest, AListThatIsNoneIsRefusedByEveryCall)
{
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(CloseHandle(list)); }), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(ImageList_Destroy(list));
    HIMAGELIST gone = std::exchange(list, nullptr);
    HBITMAP good = bitmap(2, 1, {1, 2});
    int width = 0;
    const std::function<bool()> calls[] = {
        [&] { return ImageList_Destroy(gone) == FALSE; },
        [&] { return ImageList_Add(gone, good, nullptr) == -1; },
        [&] { return ImageList_AddMasked(gone, good, 0) == -1; },
        [&] { return ImageList_ReplaceIcon(gone, -1, nullptr) == -1; },
        [&] { return ImageList_Remove(gone, -1) == FALSE; },
        [&] { return ImageList_GetImageCount(gone) == -1; },
        [&] { return ImageList_GetIconSize(gone, &width, &width) == FALSE; },
        [&] { return ImageList_Draw(gone, 0, nullptr, 0, 0, 0) == FALSE; },
    };
    for (const auto &call : calls)
    {
        EXPECT_EQ(errorOf([&] { EXPECT_TRUE(call()); }), ERROR_INVALID_HANDLE);
    }
}
} // namespace
