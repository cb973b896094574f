// zb shot and zb agenda -o: pictures of marked-up text and of the calendar.
#include "apps/ZbFixture.h"
#include "support/Picture.h"

#include <fstream>

namespace
{
using Words = std::vector<std::string>;
using zb::test::loadPng;
using zb::test::Picture;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;

class ZbShot : public ::testing::Test
{
  protected:
    std::filesystem::path file(const std::string &name = "out.png") const
    {
        return m_folder.path() / name;
    }
    ProgramResult zb(Words words) const
    {
        words.insert(words.begin(), {"--device", (m_folder.path() / "device").string()});
        ProgramOptions options;
        options.environment["ZB_NOW"] = "2026-11-20T09:00Z";
        options.environment["LC_ALL"] = "en_GB.UTF-8";
        return zb::test::runZb(words, options);
    }
    ProgramResult shot(const std::string &markup, Words more = {}) const
    {
        Words words = {"shot", "--markup", markup, "-o", file().string(), "--width", "100", "--dpi", "96"};
        words.insert(words.end(), more.begin(), more.end());
        return zb(words);
    }
    Picture drawn(const std::string &name = "out.png") const
    {
        return loadPng(file(name)).value_or(Picture{});
    }
    void importText(const std::string &events) const
    {
        std::ofstream(file("in.ics")) << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" << events << "END:VCALENDAR\r\n";
        ASSERT_EQ(zb({"import", file("in.ics").string()}).exitCode, 0);
    }
    static bool holds(const Picture &picture, std::uint32_t color)
    {
        return std::find(picture.pixels.begin(), picture.pixels.end(), color) != picture.pixels.end();
    }

  private:
    zb::test::TemporaryFolder m_folder;
};

constexpr const char *meeting = "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20261120T100000Z\r\nDTEND:20261120T110000Z\r\n"
                                "SUMMARY:Meeting <B>plan\r\nLOCATION:Room 1\r\nCATEGORIES:Work\r\nEND:VEVENT\r\n";
} // namespace

TEST_F(ZbShot, APictureOfTheSystemStandsOnTheBackgroundOfTheText)
{
    ASSERT_EQ(shot("<BODY BGCOLOR=#FF0000><IMG SRC=260>").exitCode, 0);
    const Picture picture = drawn();
    ASSERT_EQ(picture.width, 100);
    EXPECT_EQ(picture.height, 17) << "the picture's 16 and the pixel that measuring adds";
    EXPECT_EQ(picture.at(0, 0), 0xFF0000U);
    EXPECT_EQ(picture.at(99, 16), 0xFF0000U);
    EXPECT_EQ(picture.at(8 + 11, 11), 0xFFFFFFU) << "a white box behind a margin of 8";
}

TEST_F(ZbShot, DensityScalesTextAndPictures)
{
    ASSERT_EQ(shot("<BODY BGCOLOR=#FF0000><IMG SRC=260>", {"--dpi", "192"}).exitCode, 2) << "given twice";
    ASSERT_EQ(zb({"shot", "--markup", "<BODY BGCOLOR=#FF0000><IMG SRC=260>", "-o", file().string(), "--width", "100",
                  "--dpi", "192"})
                  .exitCode,
              0);
    EXPECT_EQ(drawn().height, 33);
}

TEST_F(ZbShot, AFileOfTheHostIsShownAndAMissingOneTakesNoPlace)
{
    Picture small{10, 6, std::vector<std::uint32_t>(60, 0x123456)};
    ASSERT_TRUE(zb::test::savePng(small, file("small.png")));
    ASSERT_EQ(shot("<BODY BGCOLOR=#FFFFFF><IMG SRC=\"" + file("small.png").string() + "\">").exitCode, 0);
    EXPECT_EQ(drawn().height, 7);
    EXPECT_EQ(drawn().at(8, 0), 0x123456U);
    ASSERT_EQ(shot("<BODY BGCOLOR=#FFFFFF><IMG SRC=nowhere.png><IMG SRC=99999><IMG SRC=4711>").exitCode, 0);
    EXPECT_EQ(drawn().height, 1);
}

TEST_F(ZbShot, WordsWrapAtTheWidth)
{
    ASSERT_EQ(shot("<BODY BGCOLOR=#FFFFFF>word").exitCode, 0);
    const int line = drawn().height;
    EXPECT_GE(line, 11);
    ASSERT_EQ(shot("<BODY BGCOLOR=#FFFFFF>word word word word word word").exitCode, 0);
    EXPECT_GT(drawn().height, line + 10);
}

TEST_F(ZbShot, WrongUsageIsRefused)
{
    EXPECT_EQ(zb({"shot", "--markup", "x"}).exitCode, 2) << "without a file";
    EXPECT_EQ(zb({"shot", "-o", file().string()}).exitCode, 2) << "without a text";
    for (const char *width : {"39", "8193", "-1", "wide"})
    {
        EXPECT_EQ(zb({"shot", "--markup", "x", "-o", file().string(), "--width", width}).exitCode, 2) << width;
    }
    for (const char *density : {"71", "601"})
    {
        EXPECT_EQ(zb({"shot", "--markup", "x", "-o", file().string(), "--dpi", density}).exitCode, 2) << density;
    }
    EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(ZbShot, APlaceThatCantBeWrittenIsToldAndLeavesNothing)
{
    const ProgramResult result =
        zb({"shot", "--markup", "x", "-o", (file("no") / "such" / "folder.png").string()});
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_NE(result.err.find("can't be written"), std::string::npos);
}

TEST_F(ZbShot, ATextTooHighForAPictureIsRefused)
{
    std::string markup = "<BODY BGCOLOR=#FFFFFF>";
    for (int line = 0; line < 4000; ++line)
    {
        markup += "x<BR>";
    }
    const ProgramResult result = shot(markup);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_NE(result.err.find("too high"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(ZbShot, TheAgendaIsDrawnWithTheColoursOfItsCategories)
{
    importText(meeting);
    ASSERT_EQ(zb({"categories", "color", "Work", "#12ab34"}).exitCode, 0);
    ASSERT_EQ(zb({"agenda", "-o", file().string()}).exitCode, 0);
    const Picture picture = drawn();
    EXPECT_EQ(picture.width, 480);
    EXPECT_TRUE(holds(picture, 0x12AB34)) << "the strip";
    EXPECT_TRUE(holds(picture, 0x2F5D96)) << "today's header";
    EXPECT_TRUE(holds(picture, 0xFFFFFF));
    ASSERT_EQ(zb({"agenda", "--from", "2026-11-21", "-o", file().string(), "--width", "300", "--dpi", "96"}).exitCode, 0);
    EXPECT_EQ(drawn().width, 300);
    EXPECT_FALSE(holds(drawn(), 0x2F5D96));
    EXPECT_GT(drawn().height, 40) << "it says that there is nothing";
}

TEST_F(ZbShot, ASubjectIsNeverTakenForMarkup)
{
    importText(meeting);
    ASSERT_EQ(zb({"agenda", "-o", file().string()}).exitCode, 0);
    const Picture told = drawn();
    importText("BEGIN:VEVENT\r\nUID:1\r\nSEQUENCE:2\r\nDTSTART:20261120T100000Z\r\nDTEND:20261120T110000Z\r\n"
               "SUMMARY:Meeting <BR><BR><BR>plan\r\nLOCATION:Room 1\r\nCATEGORIES:Work\r\nEND:VEVENT\r\n");
    ASSERT_EQ(zb({"agenda", "-o", file().string()}).exitCode, 0);
    EXPECT_EQ(drawn().height, told.height) << "line breaks would have made it higher";
}

TEST_F(ZbShot, APictureAndJsonExcludeEachOther)
{
    importText(meeting);
    EXPECT_EQ(zb({"agenda", "--json", "-o", file().string()}).exitCode, 2);
    EXPECT_EQ(zb({"agenda", "--width", "300"}).exitCode, 2) << "a width of nothing";
}
