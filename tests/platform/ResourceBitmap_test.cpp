// Resources by type and number, and the bitmaps, icons and image lists made of them.
#include "platform/image.h"
#include "platform/image_list.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "support/DrawingBoard.h"
#include "support/Picture.h"
#include "support/TestDevice.h"

#include <cstring>
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

class ResourceBitmapTest : public DeviceTest
{
  protected:
    ResourceBitmapTest() : module(LoadLibraryW(u"ZBTestModule.dll"))
    {
        EXPECT_NE(module, nullptr);
    }
    ~ResourceBitmapTest() override
    {
        FreeLibrary(module);
    }
    void setDensity(int dotsPerInch)
    {
        device.options().screen.dotsPerInch = dotsPerInch;
        device.reopen();
    }
    Picture load(WORD id)
    {
        HBITMAP bitmap = LoadBitmapW(module, MAKEINTRESOURCEW(id));
        EXPECT_NE(bitmap, nullptr) << id;
        Picture picture = pictureOf(bitmap);
        DeleteObject(bitmap);
        return picture;
    }

    HMODULE module;
};

TEST_F(ResourceBitmapTest, NumbersStandInThePlaceOfNames)
{
    EXPECT_TRUE(IS_INTRESOURCE(MAKEINTRESOURCEW(65535)));
    EXPECT_TRUE(IS_INTRESOURCE(nullptr));
    EXPECT_FALSE(IS_INTRESOURCE(u"name"));
}

TEST_F(ResourceBitmapTest, BytesAreFoundByTypeAndNumber)
{
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(7), RT_MENU);
    ASSERT_NE(resource, nullptr);
    EXPECT_EQ(FindResourceW(module, MAKEINTRESOURCEW(7), RT_MENU), resource);
    EXPECT_EQ(SizeofResource(module, resource), 4U);
    const HGLOBAL loaded = LoadResource(module, resource);
    ASSERT_NE(loaded, nullptr);
    ASSERT_NE(LockResource(loaded), nullptr);
    EXPECT_EQ(std::memcmp(LockResource(loaded), "menu", 4), 0);
}

TEST_F(ResourceBitmapTest, WhatIsNotThereIsTold)
{
    const auto find = [&](const WCHAR *name, const WCHAR *type)
    { return errorOf([&] { EXPECT_EQ(FindResourceW(module, name, type), nullptr); }); };
    EXPECT_EQ(find(MAKEINTRESOURCEW(777), RT_DIALOG), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(find(MAKEINTRESOURCEW(8), RT_MENU), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(find(u"menu", RT_MENU), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(find(MAKEINTRESOURCEW(7), u"menu"), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_EQ(find(MAKEINTRESOURCEW(7), MAKEINTRESOURCEW(1)), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_EQ(find(MAKEINTRESOURCEW(7), MAKEINTRESOURCEW(6)), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_EQ(ERROR_RESOURCE_TYPE_NOT_FOUND, 1813U);
    EXPECT_EQ(ERROR_RESOURCE_NAME_NOT_FOUND, 1814U);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(LoadBitmapW(module, MAKEINTRESOURCEW(9)), nullptr); }),
              ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(LoadIconW(module, MAKEINTRESOURCEW(9)), nullptr); }),
              ERROR_RESOURCE_NAME_NOT_FOUND);
}

TEST_F(ResourceBitmapTest, ForeignHandlesAndModulesAreRefused)
{
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(7), RT_MENU);
    const auto foreign = reinterpret_cast<HRSRC>(&module);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SizeofResource(module, foreign), 0U); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SizeofResource(nullptr, resource), 0U); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(LoadResource(module, nullptr), nullptr); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(LockResource(foreign), nullptr); }), ERROR_INVALID_HANDLE);
    const auto stale = reinterpret_cast<HINSTANCE>(&module);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(FindResourceW(stale, MAKEINTRESOURCEW(7), RT_MENU), nullptr); }),
              ERROR_INVALID_HANDLE);
    FreeLibrary(module);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(LockResource(resource), nullptr); }), ERROR_INVALID_HANDLE);
    module = LoadLibraryW(u"ZBTestModule.dll");
}

TEST_F(ResourceBitmapTest, ANullInstanceIsTheApplicationsModule)
{
    zb::setApplicationResources(module);
    HBITMAP bitmap = LoadBitmapW(nullptr, MAKEINTRESOURCEW(100));
    EXPECT_EQ(pictureOf(bitmap).width, 2);
    DeleteObject(bitmap);
    zb::setApplicationResources(nullptr);
}

TEST_F(ResourceBitmapTest, RowsComeFromTheBottomUp)
{
    EXPECT_EQ(load(100), (Picture{2, 2, {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF}}));
    EXPECT_EQ(load(102), (Picture{1, 2, {1, 2}})) << "or from the top with a height below 0";
}

TEST_F(ResourceBitmapTest, TheDensityIsThatOfTheScreen)
{
    setDensity(97);
    EXPECT_EQ(load(100), (Picture{1, 1, {0x123456}}));
    const HRSRC large = FindResourceW(module, MAKEINTRESOURCEW(100), RT_BITMAP);
    BITMAPINFOHEADER header{};
    std::memcpy(&header, LockResource(LoadResource(module, large)), sizeof header);
    EXPECT_EQ(header.biXPelsPerMeter, 7559);
    EXPECT_EQ(sizeof header, 40U);
    setDensity(96);
    EXPECT_EQ(load(100).width, 2);
    EXPECT_EQ(SizeofResource(module, large), 44U) << "a handle stays what it was";
}

TEST_F(ResourceBitmapTest, SoftPicturesAreBlended)
{
    HBITMAP bitmap = LoadBitmapW(module, MAKEINTRESOURCEW(100));
    DrawingBoard board(2, 2, RGB(0, 0, 0));
    EXPECT_TRUE(TransparentImage(board.context(), 0, 0, 2, 2, bitmap, 0, 0, 2, 2, RGB(0, 255, 0)));
    EXPECT_EQ(board.pixels(), (Pixels{0xFF0000, 0x000000, 0x000080, 0xFFFFFF}));
    DeleteObject(bitmap);
    HICON icon = LoadIconW(module, MAKEINTRESOURCEW(100));
    DrawingBoard other(2, 2, RGB(0, 0, 0));
    EXPECT_TRUE(DrawIconEx(other.context(), 0, 0, icon, 0, 0, 0, nullptr, DI_NORMAL));
    EXPECT_EQ(other.pixels(), board.pixels());
    EXPECT_TRUE(DestroyIcon(icon));
}

TEST_F(ResourceBitmapTest, OpaqueOnesKeepEveryColour)
{
    const Picture strip = load(101);
    EXPECT_EQ(strip, (Picture{6, 2, {0x00FF00, 8, 9, 10, 0x00FF00, 12, 1, 2, 3, 4, 5, 6}}));
}

TEST_F(ResourceBitmapTest, DamagedOnesAreRefused)
{
    for (WORD id = 110; id <= 120; ++id)
    {
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(LoadBitmapW(module, MAKEINTRESOURCEW(id)), nullptr); }), ERROR_BAD_FORMAT)
            << id;
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(LoadIconW(module, MAKEINTRESOURCEW(id)), nullptr); }), ERROR_BAD_FORMAT)
            << id;
    }
}

// --- Image lists of resources
// ------------------------------------------------------------------------------------------

class ResourceListTest : public ResourceBitmapTest
{
  protected:
    HIMAGELIST make(WORD id, int width, COLORREF key, UINT type = IMAGE_BITMAP)
    {
        return ImageList_LoadImage(module, MAKEINTRESOURCEW(id), width, 1, key, type, 0);
    }
    /// The picture of an index over a ground of 0x777777.
    static Pixels draw(HIMAGELIST list, int index)
    {
        int width = 0;
        int height = 0;
        EXPECT_TRUE(ImageList_GetIconSize(list, &width, &height));
        DrawingBoard board(width, height, RGB(0x77, 0x77, 0x77));
        EXPECT_TRUE(ImageList_Draw(list, index, board.context(), 0, 0, ILD_NORMAL));
        return board.pixels();
    }
};

TEST_F(ResourceListTest, AStripIsCutIntoPictures)
{
    HIMAGELIST list = make(101, 3, RGB(0, 255, 0));
    EXPECT_EQ(ImageList_GetImageCount(list), 2);
    EXPECT_EQ(draw(list, 0), (Pixels{0x777777, 8, 9, 1, 2, 3}));
    EXPECT_EQ(draw(list, 1), (Pixels{10, 0x777777, 12, 4, 5, 6}));
    EXPECT_TRUE(ImageList_Destroy(list));
    list = make(101, 0, CLR_NONE);
    EXPECT_EQ(ImageList_GetImageCount(list), 3) << "without a width they are as wide as high";
    EXPECT_EQ(draw(list, 2), (Pixels{0x00FE00, 12, 5, 6}));
    EXPECT_TRUE(ImageList_Destroy(list));
    list = make(101, 6, CLR_DEFAULT);
    EXPECT_EQ(draw(list, 0)[0], 0x777777U) << "the colour of the top left pixel";
    EXPECT_TRUE(ImageList_Destroy(list));
}

TEST_F(ResourceListTest, SoftPicturesStaySoft)
{
    HIMAGELIST list = make(100, 2, RGB(0, 255, 0));
    EXPECT_EQ(draw(list, 0), (Pixels{0xFF0000, 0x777777, 0x3B3BBB, 0xFFFFFF}));
    EXPECT_TRUE(ImageList_Destroy(list));
}

TEST_F(ResourceListTest, FailuresAreTold)
{
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(9, 2, CLR_NONE), nullptr); }), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(110, 2, CLR_NONE), nullptr); }), ERROR_BAD_FORMAT);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(101, 2, CLR_NONE, IMAGE_ICON), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(101, -1, CLR_NONE), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(make(101, 7, CLR_NONE), nullptr); }), ERROR_INVALID_PARAMETER);
}
} // namespace
