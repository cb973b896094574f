// Files by their handle: lines in both encodings, folders on the way.
#include "core/CeFile.h"
#include "platform/kernel.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
using zb::test::putFile;
using zb::test::utf8;

constexpr const WCHAR *path = u"\\My Documents\\lines.txt";
const std::string crlfWide("\r\0\n\0", 4);

class CeFileTest : public zb::test::DeviceTest
{
  protected:
    static std::string wide(std::u16string_view text)
    {
        std::string bytes;
        for (const char16_t unit : text)
        {
            bytes += static_cast<char>(unit & 0xFF);
            bytes += static_cast<char>(unit >> 8);
        }
        return bytes;
    }
    std::string onDisk() const
    {
        std::ifstream stream(device.files() / "My Documents/lines.txt", std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static std::string line(CeFile &file, int max = 100)
    {
        WCHAR buffer[101];
        std::fill(std::begin(buffer), std::end(buffer), u'#');
        const int length = file.ReadLine(buffer, max);
        EXPECT_EQ(length, static_cast<int>(std::u16string(buffer).size()));
        return utf8(buffer);
    }
};

TEST_F(CeFileTest, LinesEndAtACarriageReturnAndALineFeedBehindItIsPassedOver)
{
    ASSERT_TRUE(putFile(path, "one\r\ntwo\rthree\nstill three\r\nK\xE4se\r\n"));
    CeFile file;
    ASSERT_TRUE(file.Open(path, GENERIC_READ));
    EXPECT_EQ(file.OpenFlags(), GENERIC_READ);
    EXPECT_EQ(line(file), "one");
    EXPECT_EQ(line(file), "two");
    EXPECT_EQ(line(file), "three\nstill three");
    EXPECT_EQ(line(file), "Käse") << "by the device's code page";
    EXPECT_EQ(line(file), "") << "the end";
    EXPECT_EQ(line(file), "one") << "and the next call starts again";
}

TEST_F(CeFileTest, ALastLineWithoutAnEndIsALine)
{
    ASSERT_TRUE(putFile(path, "one\r\nlast"));
    CeFile file;
    ASSERT_TRUE(file.Open(path));
    EXPECT_EQ(line(file), "one");
    EXPECT_EQ(line(file), "last");
    EXPECT_EQ(line(file), "");
    EXPECT_EQ(line(file), "one");
}

TEST_F(CeFileTest, TheRoomLimitsTheCopyAndTheRestOfTheLineIsPassedOver)
{
    ASSERT_TRUE(putFile(path, "abcdef\r\nxy\r\n"));
    CeFile file;
    ASSERT_TRUE(file.Open(path));
    EXPECT_EQ(line(file, 4), "abc");
    EXPECT_EQ(line(file, 3), "xy");
    EXPECT_EQ(line(file), "");
    WCHAR nothing = u'#';
    EXPECT_EQ(file.ReadLine(&nothing, 0), 0);
    EXPECT_EQ(nothing, u'#');
    EXPECT_EQ(file.ReadLine(nullptr, 10), 0);
}

TEST_F(CeFileTest, AFlaggedFileIsReadAsWideText)
{
    ASSERT_TRUE(putFile(path, wide(u"\u03b1\u03b2\r\n\u4e2d\r") + "x"));
    CeFile file;
    ASSERT_TRUE(file.Open(path));
    EXPECT_FALSE(file.IsUnicode());
    file.SetUnicode(true);
    EXPECT_EQ(line(file), "αβ");
    EXPECT_EQ(line(file), "中");
    EXPECT_EQ(line(file), "") << "half a character is none";
    ASSERT_TRUE(putFile(path, "\xFF\xFE" + wide(u"marked\r\n")));
    ASSERT_TRUE(file.Open(path));
    EXPECT_FALSE(file.IsUnicode()) << "each file anew";
    WCHAR buffer[20] = {};
    EXPECT_EQ(file.ReadULine(buffer, 20), 6);
    EXPECT_EQ(std::u16string(buffer), u"marked");
    EXPECT_TRUE(file.IsUnicode());
}

TEST_F(CeFileTest, WritesLinesInEitherEncoding)
{
    CeFile file;
    ASSERT_TRUE(file.Create(path));
    EXPECT_TRUE(file.WriteLine(u"Käse \u4e2d", true));
    EXPECT_FALSE(file.IsUnicode());
    EXPECT_TRUE(file.WriteLine(u"", true));
    EXPECT_FALSE(file.WriteLine(nullptr, true));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(onDisk(), "K\xE4se ?\r\n\r\n");
    ASSERT_TRUE(file.Create(path)) << "empties it";
    EXPECT_TRUE(file.WriteLine(u"ä\u4e2d", false));
    EXPECT_TRUE(file.IsUnicode());
    EXPECT_EQ(line(file), "ä中") << "what was written is read";
    EXPECT_TRUE(file.WriteLine(u"b", false));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(onDisk(), wide(u"ä\u4e2d\r\nb\r\n"));
    EXPECT_FALSE(file.Close());
}

TEST_F(CeFileTest, ReadsWritesAndKnowsItsSizeAndEnd)
{
    ASSERT_TRUE(putFile(path, "abc"));
    CeFile file;
    ASSERT_TRUE(file.Open(path));
    EXPECT_EQ(file.Size(), 3U);
    char bytes[8] = {};
    EXPECT_TRUE(file.Read(bytes, 2));
    EXPECT_EQ(file.BytesRead(), 2U);
    EXPECT_TRUE(file.Read(bytes, 8));
    EXPECT_EQ(file.BytesRead(), 1U);
    EXPECT_EQ(file.SetPositionEnd(), 3U);
    EXPECT_TRUE(file.Write("de", 2));
    EXPECT_EQ(file.Size(), 5U);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(onDisk(), "abcde");
    EXPECT_EQ(file.OpenFlags(), 0U);
}

TEST_F(CeFileTest, WhatIsNotThereOrNotOpenFailsInPeace)
{
    CeFile file;
    EXPECT_FALSE(file.Open(u"\\My Documents\\none.txt"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(line(file), "");
    EXPECT_FALSE(file.WriteLine(u"x", true));
    EXPECT_EQ(file.Size(), INVALID_FILE_SIZE);
    EXPECT_FALSE(CeFile::Exists(u"\\My Documents\\none.txt"));
    EXPECT_TRUE(CeFile::Exists(u"\\My Documents"));
}

TEST_F(CeFileTest, TheFolderOfAPathIsMadeWithAllThatLeadToIt)
{
    EXPECT_TRUE(CeFile::CreatePath(u"\\My Documents\\A\\B b\\c.txt"));
    EXPECT_TRUE(std::filesystem::is_directory(device.files() / "My Documents/A/B b"));
    EXPECT_FALSE(CeFile::Exists(u"\\My Documents\\A\\B b\\c.txt"));
    EXPECT_TRUE(CeFile::CreatePath(u"\\My Documents\\A\\B b\\c.txt")) << "there already";
    EXPECT_TRUE(CeFile::CreatePath(u"\\x.txt"));
    EXPECT_TRUE(CeFile::CreatePath(u"x.txt"));
    EXPECT_FALSE(CeFile::CreatePath(nullptr));
    ASSERT_TRUE(putFile(u"\\My Documents\\file", "x"));
    EXPECT_FALSE(CeFile::CreatePath(u"\\My Documents\\file\\d.txt")) << "a file is in the way";
}

/// Any bytes give lines that together are the text without its line ends, and the end is always reached.
TEST_F(CeFileTest, AnyBytesAreReadToTheirEnd)
{
    std::minstd_rand random(7);
    for (int round = 0; round < 60; ++round)
    {
        std::string bytes;
        for (int i = 0; i < round; ++i)
        {
            bytes += "ab\r\n"[random() % 4];
        }
        ASSERT_TRUE(putFile(path, bytes));
        CeFile file;
        ASSERT_TRUE(file.Open(path));
        // The same by hand: cut at each \r, a \n behind it belongs to it.
        std::vector<std::string> expected(1);
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            if (bytes[i] != '\r')
            {
                expected.back() += bytes[i];
                continue;
            }
            i += i + 1 < bytes.size() && bytes[i + 1] == '\n' ? 1 : 0;
            expected.emplace_back();
        }
        for (const std::string &each : expected)
        {
            ASSERT_EQ(line(file), each) << "round " << round;
        }
        ASSERT_EQ(line(file), expected.back().empty() ? expected.front() : "");
    }
}
} // namespace
