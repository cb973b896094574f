// The system's own resources: every text and picture that the engine asks for by number is there.
#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace
{
constexpr UINT textNumbers[] = {
    40016, 40018, 40019, 40020, 40021, 40022, 40023, 40024, 40025, 40026, 40027, 40028, 40029, 40030, 40031, 40082,
    40084, 40094, 40219, 40379, 40408, 40410, 40417, 40420, 40421, 40423, 40424, 40425, 40426, 40427, 40428, 40429,
    40431, 40432, 40433, 40434, 40435, 40436, 40437, 40438, 40439, 40440, 40442, 40443, 40444, 40445, 40450, 40451,
    40452, 40453, 40455, 40456, 40457, 40458, 40462, 40463, 40464, 40466, 40467, 40468, 40470, 40475, 41023, 41031,
    41032, 41033, 41064, 41065, 41081, 41083, 41084, 41085, 41086, 41087, 41088, 41089, 41090, 41091, 41094, 41096,
    41098, 41100, 41101, 41103, 41109, 41111, 41112, 42118, 42119, 42120, 42124, 42147, 42150, 42152, 42153, 42154,
    42155, 42157, 42158, 42171, 42177, 42201, 42225, 42227, 42248, 42304, 42306, 42307, 42308, 42310, 42311, 42312,
    42325, 42328, 42330, 42332, 42333, 42334, 42335, 42351, 42354, 42355, 42356, 42357, 42358, 42377, 42396, 42399,
    42405, 42408, 42409, 42426, 42430, 42431, 42432, 42433, 42434, 42435, 42436, 42437, 42438, 42439, 42442, 42443,
    42451, 42455, 42458, 42474, 42475, 42479, 42480, 42481, 42482, 42483, 42484, 42485, 42487, 42488, 42492, 42493,
    42494, 42495, 42496, 42497, 42498, 42499, 42616, 42618, 44020, 44025, 44026, 44027, 44032, 44033, 44034, 44037,
    44038, 44039, 44040, 44041, 44042, 44052, 44053, 44057, 44058, 44067, 44071, 44072, 44073, 44074, 44075, 44080,
    44082, 44097, 44099, 44108, 44111, 44114, 44116, 44124, 44172, 44173, 44174, 44175, 44176, 44177, 44178, 44179,
    44180, 44181, 44185, 44186, 44233, 44234, 44321, 44324, 44327, 44338, 44340, 44341, 44345, 44346, 44348, 44349,
    44355, 44356, 44357, 44358, 44359, 44360, 44361};

constexpr UINT pictureNumbers[] = {10,  207, 208, 211, 212, 213, 214, 232, 233, 237, 259, 260, 267, 276,
                                   293, 322, 328, 336, 500, 501, 502, 503, 504, 505, 506, 507, 508};

std::u16string textOf(UINT number)
{
    WCHAR buffer[512];
    return {buffer, static_cast<std::size_t>(LoadStringW(nullptr, number, buffer, 512))};
}

std::string narrow(const std::u16string &text)
{
    return {text.begin(), text.end()};
}

/// A 32-bit little-endian word of the bytes.
DWORD wordAt(const void *bytes, std::size_t offset)
{
    DWORD word = 0;
    std::memcpy(&word, static_cast<const BYTE *>(bytes) + offset, sizeof word);
    return word;
}

/// The system's module, kept: what it gives lies in it.
ZbResourceBytes resourceBytes()
{
    static const HMODULE module = LoadLibraryW(u"ZBResources.dll");
    return reinterpret_cast<ZbResourceBytes>(GetProcAddressW(module, u"zbResourceBytes"));
}

/// A bitmap of it for a screen of that density.
const void *pictureBytes(UINT number, int dotsPerInch, std::size_t *size)
{
    const ZbResourceBytes bytes = resourceBytes();
    return bytes == nullptr ? nullptr : bytes(2, number, dotsPerInch, size);
}
} // namespace

TEST(ResourceTexts, EveryNumberHasWordsThatFitTheEnginesBuffers)
{
    zb::test::TestDevice device;
    for (const UINT number : textNumbers)
    {
        const std::u16string text = textOf(number);
        EXPECT_FALSE(text.empty()) << number;
        EXPECT_LT(text.size(), 200U) << number;
        EXPECT_EQ(text.find(u'%'), std::u16string::npos) << number << ": the engine formats with its own patterns";
        EXPECT_EQ(text.find(u'<'), std::u16string::npos) << number << ": it would be markup";
    }
}

TEST(ResourceTexts, WordsWithANarrowPlaceAreShortEnough)
{
    zb::test::TestDevice device;
    EXPECT_LE(textOf(44038).size(), 15U); // the unit of an age
    EXPECT_LE(textOf(42358).size(), 24U); // the label of the none nodes
    for (const UINT number : {42152U, 42153U, 42154U, 42155U})
    {
        EXPECT_LE(textOf(number).size(), 45U) << number;
    }
    for (UINT number = 44355; number <= 44361; ++number)
    {
        EXPECT_EQ(textOf(number).size(), 1U) << number;
    }
}

TEST(ResourceTexts, SomeWordsAsTheyStand)
{
    zb::test::TestDevice device;
    EXPECT_EQ(narrow(textOf(42358)), "None");
    EXPECT_EQ(narrow(textOf(42474)), "days");
    EXPECT_EQ(narrow(textOf(44355)), "S"); // Sunday comes first
    EXPECT_EQ(narrow(textOf(44356)), "M");
    EXPECT_EQ(narrow(textOf(42356)), "Tentative");
}

TEST(ResourceTexts, ANumberWithoutWordsIsAnError)
{
    zb::test::TestDevice device;
    WCHAR buffer[8] = u"before";
    SetLastError(0);
    EXPECT_EQ(LoadStringW(nullptr, 1, buffer, 8), 0);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(GetLastError(), 1814U);
}

TEST(ResourcePictures, EveryNumberIsThereAtEveryDensity)
{
    const zb::test::TestDevice device;
    const struct
    {
        int screen;
        int density; // of the picture that fits
        DWORD side;
    } cases[] = {{96, 96, 16}, {97, 144, 24}, {131, 144, 24}, {144, 144, 24}, {192, 192, 32}, {288, 288, 48},
                 {400, 288, 48}, {72, 96, 16}};
    for (const auto &one : cases)
    {
        for (const UINT number : pictureNumbers)
        {
            std::size_t size = 0;
            const void *bytes = pictureBytes(number, one.screen, &size);
            ASSERT_NE(bytes, nullptr) << number << " at " << one.screen;
            ASSERT_EQ(size, 40 + one.side * one.side * 4) << number << " at " << one.screen;
            EXPECT_EQ(wordAt(bytes, 0), 40U);
            EXPECT_EQ(wordAt(bytes, 4), one.side);
            EXPECT_EQ(wordAt(bytes, 8), one.side);
            EXPECT_EQ(wordAt(bytes, 12), 1U | 32U << 16U);
            EXPECT_EQ(wordAt(bytes, 16), 0U);
            // The density comes back by the rule that turns dots a metre into dots an inch.
            EXPECT_EQ((wordAt(bytes, 24) * 100 + 1968) / 3937, static_cast<DWORD>(one.density));
            EXPECT_EQ(wordAt(bytes, 28), wordAt(bytes, 24));
        }
    }
}

TEST(ResourcePictures, PixelsThatLetThroughArePureGreenAndSomethingIsDrawn)
{
    const zb::test::TestDevice device;
    for (const UINT number : pictureNumbers)
    {
        std::size_t size = 0;
        const void *bytes = pictureBytes(number, 96, &size);
        ASSERT_NE(bytes, nullptr) << number;
        int solid = 0;
        int clear = 0;
        for (std::size_t offset = 40; offset < size; offset += 4)
        {
            const DWORD pixel = wordAt(bytes, offset);
            solid += pixel >> 24U == 0xFF ? 1 : 0;
            if (pixel >> 24U == 0)
            {
                ++clear;
                EXPECT_EQ(pixel, 0x0000FF00U) << number;
            }
        }
        EXPECT_GT(solid, 5) << number;
        EXPECT_GT(clear, 5) << number;
    }
}

TEST(ResourcePictures, RowsRunFromTheBottomUp)
{
    zb::test::TestDevice device;
    std::size_t size = 0;
    const void *bytes = pictureBytes(503, 96, &size); // a triangle that points down: wide at its top
    ASSERT_NE(bytes, nullptr);
    const auto drawnIn = [bytes](DWORD row)
    {
        int drawn = 0;
        for (DWORD column = 0; column < 16; ++column)
        {
            drawn += wordAt(bytes, 40 + (row * 16 + column) * 4) >> 24U != 0 ? 1 : 0;
        }
        return drawn;
    };
    EXPECT_GT(drawnIn(9), drawnIn(5));
    EXPECT_EQ(drawnIn(0), 0);
}

TEST(ResourcePictures, ANumberWithoutAPictureAndOtherKindsAreErrors)
{
    const zb::test::TestDevice device;
    std::size_t size = 7;
    EXPECT_EQ(pictureBytes(9999, 96, &size), nullptr);
    EXPECT_EQ(size, 0U);
    const ZbResourceBytes bytes = resourceBytes();
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(bytes(77, 213, 96, nullptr), nullptr);
}
