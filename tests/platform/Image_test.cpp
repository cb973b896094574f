// Picture files into bitmaps, and bitmaps into PNG; what soft edges do in transfers.
#include "platform/image.h"
#include "platform/kernel.h"
#include "support/DeviceFiles.h"
#include "support/DrawingBoard.h"
#include "support/Picture.h"
#include "support/PictureFiles.h"
#include "support/TestDevice.h"

#include <functional>

namespace
{
namespace fs = std::filesystem;
using namespace zb::test;
using Pixels = std::vector<std::uint32_t>;

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

/// A decoded file, gone with the object.
class Decoded
{
  public:
    explicit Decoded(const Bytes &bytes, const zb::PictureLimits &limits = {}, int fitWidth = 0, int fitHeight = 0)
    {
        SetLastError(0);
        m_bitmap = zb::decodePicture(bytes.data(), bytes.size(), limits, fitWidth, fitHeight);
        m_error = GetLastError();
    }
    explicit Decoded(HBITMAP bitmap) : m_bitmap(bitmap), m_error(bitmap == nullptr ? GetLastError() : 0)
    {
    }
    ~Decoded()
    {
        if (m_bitmap != nullptr)
        {
            DeleteObject(m_bitmap);
        }
    }
    Decoded(const Decoded &) = delete;
    Decoded &operator=(const Decoded &) = delete;

    HBITMAP bitmap() const
    {
        return m_bitmap;
    }
    DWORD error() const
    {
        return m_error;
    }
    Picture picture() const
    {
        return pictureOf(m_bitmap);
    }
    /// Drawn over a ground with the key colour, at its own size.
    Pixels over(std::uint32_t ground) const
    {
        const Picture own = picture();
        DrawingBoard board(own.width, own.height, RGB(BYTE(ground >> 16U), BYTE(ground >> 8U), BYTE(ground)));
        EXPECT_TRUE(TransparentImage(board.context(), 0, 0, own.width, own.height, m_bitmap, 0, 0, own.width,
                                     own.height, RGB(0, 255, 0)));
        return board.pixels();
    }

  private:
    HBITMAP m_bitmap = nullptr;
    DWORD m_error = 0;
};

const Pixels six{0x000000, 0xFFFFFF, 0x123456, 0xFF0000, 0x00FF00, 0x0000FF};
const std::vector<std::uint32_t> fourColors{0x000000, 0xFF0000, 0x0000FF, 0x00FF00};

Bytes smallGif()
{
    return gifFile(3, 2, fourColors, {{3, 2, {0, 1, 2, 2, 1, 0}, -1}});
}

// --- What files hold -------------------------------------------------------------------------------------------------

TEST(Images, EveryKindGivesItsPixels)
{
    EXPECT_EQ(Decoded(bmpFile(3, 2, six)).picture(), (Picture{3, 2, six}));
    EXPECT_EQ(Decoded(bmpFile(3, 2, six, true)).picture(), (Picture{3, 2, six}));
    EXPECT_EQ(Decoded(pngFile(3, 2, six, false)).picture(), (Picture{3, 2, six}));
    EXPECT_EQ(Decoded(smallGif()).picture(),
              (Picture{3, 2, {0x000000, 0xFF0000, 0x0000FF, 0x0000FF, 0xFF0000, 0x000000}}));
    EXPECT_EQ(Decoded(greyJpegFile()).picture(), (Picture{8, 8, Pixels(64, 0xC0C0C0)}));
}

TEST(Images, OfAnAnimationTheFirstPictureCounts)
{
    const Bytes file = gifFile(2, 1, fourColors, {{2, 1, {1, 1}, -1}, {2, 1, {2, 2}, -1}});
    EXPECT_EQ(Decoded(file).picture(), (Picture{2, 1, {0xFF0000, 0xFF0000}}));
}

TEST(Images, WhatLetsThroughBecomesTheKeyColour)
{
    const Bytes gif = gifFile(4, 1, fourColors, {{4, 1, {0, 1, 2, 3}, 1}});
    const Decoded fromGif(gif);
    EXPECT_EQ(fromGif.picture().pixels, (Pixels{0x000000, 0x00FF00, 0x0000FF, 0x00FE00}))
        << "a green that was there is a shade darker";
    EXPECT_EQ(fromGif.over(0x777777), (Pixels{0x000000, 0x777777, 0x0000FF, 0x00FE00}));
    const Decoded fromPng(pngFile(3, 1, {0xFF112233, 0x00445566, 0xFF00FF00}, true));
    EXPECT_EQ(fromPng.picture().pixels, (Pixels{0x112233, 0x00FF00, 0x00FE00}));
    EXPECT_EQ(fromPng.over(0x777777), (Pixels{0x112233, 0x777777, 0x00FE00}));
    const Decoded fromPalette(pngPaletteFile(3, 1, {2, 1, 0}, {0x010203, 0x040506, 0x070809}, {0xFF, 0x00}));
    EXPECT_EQ(fromPalette.picture().pixels, (Pixels{0x070809, 0x00FF00, 0x010203}));
}

TEST(Images, WithoutSuchPixelsEveryColourStays)
{
    EXPECT_EQ(Decoded(pngFile(2, 1, {0xFF00FF00, 0xFF000001}, true)).picture().pixels, (Pixels{0x00FF00, 0x000001}));
}

TEST(Images, SoftEdgesBlend)
{
    const Decoded soft(pngFile(4, 1, {0x80FF0000, 0x01FFFFFF, 0xFEFFFFFF, 0x40000000}, true));
    EXPECT_EQ(soft.picture().pixels, (Pixels{0xFF0000, 0xFFFFFF, 0xFFFFFF, 0x000000}));
    // (255 * 128 + 0 * 127) / 255 = 128; 1 / 255 and 254 / 255 of white; 191 / 255 of the ground.
    EXPECT_EQ(soft.over(0x000000), (Pixels{0x800000, 0x010101, 0xFEFEFE, 0x000000}));
    EXPECT_EQ(soft.over(0xFFFFFF), (Pixels{0xFF7F7F, 0xFFFFFF, 0xFFFFFF, 0xBFBFBF}));
}

TEST(Images, LongCodesOfAnAnimationAreRead)
{
    // Codes by hand, after a clear (4): 1, 6 (1 1, being made), 7 (1 1 1), then 4 bits long: 0, end (5); a palette
    // of 4.
    Bytes file = gifFile(7, 1, fourColors, {});
    file.pop_back();
    for (const int byte : {0x2C, 0, 0, 0, 0, 7, 0, 1, 0, 0, 2, 3, 0x8C, 0x0F, 0x05, 0, 0x3B})
    {
        file.push_back(static_cast<unsigned char>(byte));
    }
    const std::uint32_t red = 0xFF0000;
    EXPECT_EQ(Decoded(file).picture(), (Picture{7, 1, {red, red, red, red, red, red, 0}}));
}

TEST(Images, InterlacedRowsComeInTheirOrder)
{
    // Ten rows of one pixel: the file has them as 0, 8, 4, 2, 6, 1, 3, 5, 7, 9.
    Bytes file = gifFile(1, 10, fourColors, {{1, 10, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1}, -1}});
    const std::size_t flags = 13 + 12 + 8 + 9;
    ASSERT_EQ(file[flags], 0);
    file[flags] = 0x40;
    Pixels expected;
    for (const std::size_t index : {0, 1, 3, 2, 2, 3, 0, 0, 1, 1})
    {
        expected.push_back(fourColors[index]);
    }
    EXPECT_EQ(Decoded(file).picture().pixels, expected);
}

TEST(Images, WhatAnAnimationLeavesBareLetsThrough)
{
    Bytes file = gifFile(3, 2, fourColors, {{1, 1, {1}, -1}});
    file[13 + 12 + 8 + 1] = 1; // one from the left
    EXPECT_EQ(Decoded(file).picture(), (Picture{3, 2, {0x00FF00, 0xFF0000, 0x00FF00, 0x00FF00, 0x00FF00, 0x00FF00}}));
}

TEST(Images, LaterPicturesOfAnAnimationAreNeverRead)
{
    const Bytes one = gifFile(2, 1, fourColors, {{2, 1, {1, 2}, -1}});
    Bytes file(one.begin(), one.end() - 1);
    // A second picture of 65,535 by 65,535 pixels, and no end.
    for (const int byte : {0x2C, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 2, 1, 0x44, 0})
    {
        file.push_back(static_cast<unsigned char>(byte));
    }
    EXPECT_EQ(Decoded(file).picture(), (Picture{2, 1, {0xFF0000, 0x0000FF}}));
}

// --- Refused files ---------------------------------------------------------------------------------------------------

TEST(Images, ATornFileIsRefusedWhereverItEnds)
{
    for (const Bytes &whole : {bmpFile(3, 2, six), pngFile(3, 2, six, false), greyJpegFile(),
                               gifFile(3, 2, fourColors, {{3, 2, {0, 1, 2, 2, 1, 0}, -1}})})
    {
        // The trailing mark of an animation is not needed for its first picture.
        const std::size_t last = whole[0] == 'G' ? whole.size() - 1 : whole.size();
        for (std::size_t size = 0; size < last; ++size)
        {
            const Decoded torn(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
            ASSERT_EQ(torn.bitmap(), nullptr) << whole[0] << whole[1] << " after " << size;
            ASSERT_EQ(torn.error(), ERROR_BAD_FORMAT) << whole[0] << whole[1] << " after " << size;
        }
    }
}

TEST(Images, ADamagedChunkIsFoundByItsSum)
{
    const Bytes whole = pngFile(3, 2, six, false);
    for (std::size_t i = 8; i < whole.size(); ++i)
    {
        Bytes damaged = whole;
        damaged[i] ^= 0x10;
        ASSERT_EQ(Decoded(damaged).error(), ERROR_BAD_FORMAT) << i;
    }
}

TEST(Images, DamagedFilesDoNoHarm)
{
    std::mt19937 random(7);
    for (const Bytes &whole : {bmpFile(3, 2, six), pngFile(3, 2, six, true), greyJpegFile(), smallGif(),
                               pngPaletteFile(2, 1, {1, 0}, {1, 2}, {0})})
    {
        for (int round = 0; round < 3000; ++round)
        {
            Bytes damaged = whole;
            for (unsigned i = 0; i <= round % 3U; ++i)
            {
                damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
            }
            const Decoded decoded(damaged, {64, 64, 4096});
            ASSERT_TRUE(decoded.bitmap() != nullptr || decoded.error() == ERROR_BAD_FORMAT);
            if (decoded.bitmap() != nullptr)
            {
                ASSERT_LE(decoded.picture().width, 64);
                ASSERT_LE(decoded.picture().height, 64);
            }
        }
    }
}

TEST(Images, FilesThatOnceBroughtADecoderDownDoNoHarm)
{
    int count = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(ZB_SOURCE_DIR) / "tests/data/damaged-pictures"))
    {
        const std::string bytes = hostBytes(entry.path());
        const Decoded decoded(Bytes(bytes.begin(), bytes.end()), {512, 512, 1U << 20U});
        EXPECT_TRUE(decoded.bitmap() != nullptr || decoded.error() == ERROR_BAD_FORMAT) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 2);
}

TEST(Images, OtherFilesAreRefused)
{
    const std::string texts[] = {"", "B", "Hello", "GIF90a", "\x89PNG\r\n\x1A\r", "\xFF\xD8\xFF", "<svg/>", "BM"};
    for (const std::string &text : texts)
    {
        EXPECT_EQ(Decoded(Bytes(text.begin(), text.end())).error(), ERROR_BAD_FORMAT) << text;
    }
    EXPECT_EQ(errorOf([] { EXPECT_EQ(zb::decodePicture(nullptr, 0, {}, 0, 0), nullptr); }), ERROR_BAD_FORMAT);
}

/// The file with another size in its header; `at` is where the number of `count` bytes stands.
Bytes withNumber(Bytes file, std::size_t at, int count, bool big, std::uint32_t value)
{
    for (int i = 0; i < count; ++i)
    {
        const int place = big ? count - 1 - i : i;
        file[at + static_cast<std::size_t>(place)] = static_cast<unsigned char>(value >> static_cast<unsigned>(8 * i));
    }
    return file;
}

TEST(Images, SizesAreLookedAtBeforeAnythingIsDecoded)
{
    const Bytes bmp = bmpFile(3, 2, six);
    const Bytes jpeg = greyJpegFile();
    const std::size_t frame = 2 + 69 + 5; // behind the marks of begin, steps and frame, its length and depth
    for (const std::uint32_t wrong : {0U, 8193U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    {
        EXPECT_EQ(Decoded(withNumber(bmp, 18, 4, false, wrong)).error(), ERROR_BAD_FORMAT) << wrong;
        EXPECT_EQ(Decoded(pngHeader(wrong, 2)).error(), ERROR_BAD_FORMAT) << wrong;
        EXPECT_EQ(Decoded(pngHeader(3, wrong)).error(), ERROR_BAD_FORMAT) << wrong;
    }
    for (const std::uint32_t wrong : {0U, 8193U, 0x7FFFFFFFU, 0x80000000U})
    {
        EXPECT_EQ(Decoded(withNumber(bmp, 22, 4, false, wrong)).error(), ERROR_BAD_FORMAT) << wrong;
    }
    ASSERT_EQ(jpeg[frame + 1], 8);
    for (const std::uint32_t wrong : {0U, 8193U, 65535U})
    {
        EXPECT_EQ(Decoded(withNumber(jpeg, frame, 2, true, wrong)).error(), ERROR_BAD_FORMAT) << wrong;
        EXPECT_EQ(Decoded(withNumber(jpeg, frame + 2, 2, true, wrong)).error(), ERROR_BAD_FORMAT) << wrong;
        EXPECT_EQ(Decoded(withNumber(smallGif(), 6, 2, false, wrong == 0 ? 8193 : wrong)).error(), ERROR_BAD_FORMAT);
        EXPECT_EQ(Decoded(withNumber(smallGif(), 8, 2, false, wrong == 0 ? 8193 : wrong)).error(), ERROR_BAD_FORMAT);
    }
    // The first picture of an animation may be larger than its screen.
    const std::size_t place = 13 + 12 + 8 + 1 + 4;
    ASSERT_EQ(smallGif()[place], 3);
    EXPECT_EQ(Decoded(withNumber(smallGif(), place, 2, false, 8193)).error(), ERROR_BAD_FORMAT);
}

TEST(Images, LimitsAreInclusive)
{
    const Bytes png = pngFile(3, 2, six, false);
    EXPECT_NE(Decoded(png, {3, 2, png.size()}).bitmap(), nullptr);
    EXPECT_EQ(Decoded(png, {2, 2, png.size()}).error(), ERROR_BAD_FORMAT);
    EXPECT_EQ(Decoded(png, {3, 1, png.size()}).error(), ERROR_BAD_FORMAT);
    EXPECT_EQ(Decoded(png, {3, 2, png.size() - 1}).error(), ERROR_BAD_FORMAT);
    const zb::PictureLimits limits;
    EXPECT_EQ(limits.width, 8192);
    EXPECT_EQ(limits.height, 8192);
    EXPECT_EQ(limits.bytes, 67108864U);
    EXPECT_NE(Decoded(pngFile(8192, 1, Pixels(8192, 1), false)).bitmap(), nullptr);
}

// --- Made smaller ----------------------------------------------------------------------------------------------------

TEST(Images, LargeOnesAreMadeSmallerInTheirShape)
{
    struct Case
    {
        int width;
        int height;
        int fitWidth;
        int fitHeight;
        int expectedWidth;
        int expectedHeight;
    };
    const Case cases[] = {{40, 20, 0, 0, 40, 20},   {40, 20, 40, 20, 40, 20},  {40, 20, 20, 0, 20, 10},
                          {40, 20, 0, 5, 10, 5},    {40, 20, 20, 20, 20, 10},  {20, 40, 20, 20, 10, 20},
                          {40, 20, 10, 4, 8, 4},    {40, 20, 99, 10, 20, 10},  {40, 1, 4, 4, 4, 1},
                          {30, 20, 16, 16, 16, 11}, {40, 20, 100, 100, 40, 20}};
    for (const Case &each : cases)
    {
        const auto count = static_cast<std::size_t>(each.width * each.height);
        const Picture result =
            Decoded(pngFile(each.width, each.height, Pixels(count, 0x204060), false), {}, each.fitWidth, each.fitHeight)
                .picture();
        EXPECT_EQ(result.width, each.expectedWidth)
            << each.width << " into " << each.fitWidth << ", " << each.fitHeight;
        EXPECT_EQ(result.height, each.expectedHeight) << each.height;
        EXPECT_EQ(result.pixels, Pixels(result.pixels.size(), 0x204060));
    }
}

TEST(Images, MadeSmallerTheKeyDoesNotBleed)
{
    const Decoded half(pngFile(2, 1, {0xFFFF0000, 0x00000000}, true), {}, 1, 1);
    EXPECT_EQ(half.picture().pixels, Pixels{0xFF0000});
    EXPECT_EQ(half.over(0x0000FF), Pixels{0x80007F});
    EXPECT_EQ(Decoded(pngFile(2, 1, {0x00FF0000, 0x00000000}, true), {}, 1, 1).picture().pixels, Pixels{0x00FF00});
}

// --- Files of the device ---------------------------------------------------------------------------------------------

class ImageFilesTest : public DeviceTest
{
  protected:
    static void put(const WCHAR *path, const Bytes &bytes)
    {
        ASSERT_TRUE(putFile(path, std::string(bytes.begin(), bytes.end())));
    }
};

TEST_F(ImageFilesTest, AreTakenByWhatTheyHold)
{
    put(u"\\My Documents\\really.bmp", pngFile(3, 2, six, false));
    put(u"\\picture", bmpFile(3, 2, six));
    EXPECT_EQ(Decoded(SHLoadDIBitmap(u"\\My Documents\\really.bmp")).picture(), (Picture{3, 2, six}));
    EXPECT_EQ(Decoded(SHLoadDIBitmap(u"\\PICTURE")).picture(), (Picture{3, 2, six}));
    EXPECT_EQ(Decoded(zb::loadPicture(u"\\picture", {}, 1, 0)).picture().width, 1);
}

TEST_F(ImageFilesTest, FailuresAreTold)
{
    put(u"\\text.png", {'H', 'i'});
    put(u"\\empty.png", {});
    put(u"\\good.png", pngFile(3, 2, six, false));
    EXPECT_EQ(errorOf([] { EXPECT_EQ(SHLoadDIBitmap(u"\\none.png"), nullptr); }), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(SHLoadDIBitmap(u"\\no\\none.png"), nullptr); }), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(SHLoadDIBitmap(u"\\text.png"), nullptr); }), ERROR_BAD_FORMAT);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(SHLoadDIBitmap(u"\\empty.png"), nullptr); }), ERROR_BAD_FORMAT);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(SHLoadDIBitmap(nullptr), nullptr); }), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(zb::loadPicture(u"\\good.png", {3, 2, 20}, 0, 0), nullptr); }), ERROR_BAD_FORMAT);
}

TEST_F(ImageFilesTest, ThePictureFileIsNotHeldOpen)
{
    put(u"\\good.png", pngFile(3, 2, six, false));
    const Decoded picture(SHLoadDIBitmap(u"\\good.png"));
    EXPECT_TRUE(DeleteFileW(u"\\good.png"));
    EXPECT_EQ(picture.picture().pixels, six);
}

// --- Writing
// -----------------------------------------------------------------------------------------------------------

TEST(ImageWriting, FilesComeBackAsTheyWere)
{
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "a.png";
    DrawingBoard board(3, 2);
    for (int i = 0; i < 6; ++i)
    {
        const std::uint32_t pixel = six[static_cast<std::size_t>(i)];
        SetPixel(board.context(), i % 3, i / 3, RGB(BYTE(pixel >> 16U), BYTE(pixel >> 8U), BYTE(pixel)));
    }
    EXPECT_TRUE(zb::writePng(board.bitmap(), file));
    EXPECT_EQ(loadPng(file), (Picture{3, 2, six}));
    EXPECT_EQ(hostNames(folder.path()), std::vector<std::string>{"a.png"});
    DrawingBoard mono(9, 1, RGB(255, 255, 255), true);
    EXPECT_TRUE(zb::writePng(mono.bitmap(), file)) << "over the one that is there";
    EXPECT_EQ(loadPng(file), (Picture{9, 1, Pixels(9, 0xFFFFFF)}));
}

TEST(ImageWriting, SoftnessIsKept)
{
    const TemporaryFolder folder;
    const Decoded soft(pngFile(3, 1, {0x80FF0000, 0x00000000, 0xFF010203}, true));
    ASSERT_TRUE(zb::writePng(soft.bitmap(), folder.path() / "a.png"));
    const std::string bytes = hostBytes(folder.path() / "a.png");
    const Decoded again(Bytes(bytes.begin(), bytes.end()));
    EXPECT_EQ(again.picture(), soft.picture());
    EXPECT_EQ(again.over(0x0000FF), soft.over(0x0000FF));
}

TEST(ImageWriting, FailuresLeaveWhatWasThere)
{
    const TemporaryFolder folder;
    DrawingBoard board(1, 1);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(zb::writePng(nullptr, folder.path() / "a.png")); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(zb::writePng(board.bitmap(), folder.path() / "no" / "a.png")); }),
              ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(zb::writePng(board.bitmap(), "")); }), ERROR_PATH_NOT_FOUND);
    fs::create_directory(folder.path() / "a.png");
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(zb::writePng(board.bitmap(), folder.path() / "a.png")); }),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(hostNames(folder.path()), std::vector<std::string>{"a.png"});
}

// --- Soft pictures in transfers
// ----------------------------------------------------------------------------------------

/// A context with a bitmap in it.
class Selected
{
  public:
    explicit Selected(HBITMAP bitmap)
        : m_context(CreateCompatibleDC(nullptr)), m_former(SelectObject(m_context, bitmap))
    {
        EXPECT_NE(m_former, nullptr);
    }
    ~Selected()
    {
        SelectObject(m_context, m_former);
        DeleteDC(m_context);
    }
    Selected(const Selected &) = delete;
    Selected &operator=(const Selected &) = delete;
    HDC context() const
    {
        return m_context;
    }

  private:
    HDC m_context;
    HGDIOBJ m_former;
};

TEST(SoftPictures, AreCopiedAsTheyAreAtTheirOwnSize)
{
    const Decoded soft(pngFile(3, 1, {0x80FF0000, 0x00000000, 0xFF010203}, true));
    const Selected source(soft.bitmap());
    DrawingBoard board(6, 1);
    EXPECT_TRUE(BitBlt(board.context(), 0, 0, 3, 1, source.context(), 0, 0, SRCCOPY));
    EXPECT_TRUE(StretchBlt(board.context(), 6, 0, -3, 1, source.context(), 0, 0, 3, 1, SRCCOPY));
    EXPECT_EQ(board.pixels(), (Pixels{0xFF0000, 0x00FF00, 0x010203, 0x010203, 0x00FF00, 0xFF0000}));
}

TEST(SoftPictures, StretchedTheyKeepTheirColoursAndTheKey)
{
    // Two thirds: the first is red throughout, the second a third of red (opacity 85) and gone.
    const Decoded soft(pngFile(3, 1, {0xFFFF0000, 0xFFFF0000, 0x00000000}, true));
    const Selected source(soft.bitmap());
    DrawingBoard board(2, 1);
    EXPECT_TRUE(StretchBlt(board.context(), 0, 0, 2, 1, source.context(), 0, 0, 3, 1, SRCCOPY));
    EXPECT_EQ(board.pixels(), (Pixels{0xFF0000, 0x00FF00}));
}

TEST(SoftPictures, AreBlendedInEverySize)
{
    const Decoded soft(pngFile(2, 1, {0x80FF0000, 0x00000000}, true));
    DrawingBoard board(4, 1, RGB(0, 0, 0));
    EXPECT_TRUE(TransparentImage(board.context(), 0, 0, 4, 1, soft.bitmap(), 0, 0, 2, 1, RGB(0, 255, 0)));
    EXPECT_EQ(board.pixels(), (Pixels{0x800000, 0x800000, 0, 0}));
    board.clear(RGB(0, 0, 0));
    EXPECT_TRUE(TransparentImage(board.context(), 0, 0, 1, 1, soft.bitmap(), 0, 0, 2, 1, RGB(0, 255, 0)));
    EXPECT_EQ(board.at(0, 0), 0x400000U);
}

TEST(SoftPictures, WhatIsDrawnOnThemIsThere)
{
    const Decoded soft(pngFile(3, 1, {0x00000000, 0x00000000, 0x80FF0000}, true));
    {
        const Selected target(soft.bitmap());
        EXPECT_EQ(SetPixel(target.context(), 0, 0, RGB(1, 2, 3)), RGB(1, 2, 3));
        const Decoded other(pngFile(1, 1, {0x80FF0000}, true));
        EXPECT_TRUE(TransparentImage(target.context(), 1, 0, 1, 1, other.bitmap(), 0, 0, 1, 1, RGB(0, 255, 0)));
    }
    EXPECT_EQ(soft.over(0x0000FF), (Pixels{0x010203, 0x80007F, 0x80007F}))
        << "drawn over nothing a half there stays half there";
}
} // namespace
