// zembrik without a window: what it shows, its menus and boxes by pen and by keys, and what it remembers.
#include "apps/ZembrikScreens.h"

namespace
{
using zb::test::count;
using zb::test::Picture;
using zb::test::ProgramResult;

constexpr std::uint32_t captionColor = 0x1F4E8C;
constexpr std::uint32_t idleCaptionColor = 0xC4CAD2;
constexpr std::uint32_t barColor = 0xECEEF0;
constexpr int captionHeight = 26; // at 96 dots an inch, as is the bar's

class ZembrikScreens : public zb::test::ZembrikTest
{
  protected:
    /// The picture at the end of the lines.
    Picture after(const std::string &lines, std::vector<std::string> words = {"--size", "240x320"}) const
    {
        const ProgramResult result = play(lines + "\nshot @/out.png\n", std::move(words));
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return drawn("out.png");
    }
};
} // namespace

TEST_F(ZembrikScreens, AViewIsDrawnIntoAFileBetweenTitleAndMenuBar)
{
    const ProgramResult result = run({"--headless", "--shot", file("one.png").string(), "--size", "240x320", "start"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out + result.err, "");
    const Picture picture = drawn("one.png");
    ASSERT_EQ(picture.width, 240);
    ASSERT_EQ(picture.height, 320);
    EXPECT_EQ(picture.at(0, 0), captionColor);
    EXPECT_EQ(picture.at(200, captionHeight - 1), captionColor) << "the frame's border lies outside of the screen";
    EXPECT_EQ(picture.at(120, captionHeight), 0xFFFFFFU);
    EXPECT_EQ(picture.at(1, 319), barColor);
    EXPECT_EQ(picture.at(239, 319), barColor);
    EXPECT_EQ(picture, after("")) << "the end of a script shows the same";
}

TEST_F(ZembrikScreens, SizeAndDensityAreThoseAskedFor)
{
    const Picture wide = after("", {"--size", "1280x800"});
    ASSERT_EQ(wide.width, 1280);
    ASSERT_EQ(wide.height, 800);
    EXPECT_EQ(wide.at(600, captionHeight), 0xFFFFFFU);
    const Picture dense = after("", {"--size", "480x640", "--dpi", "192"});
    EXPECT_EQ(dense.at(0, 2 * captionHeight - 1), captionColor);
    EXPECT_EQ(dense.at(300, 2 * captionHeight), 0xFFFFFFU);
    EXPECT_EQ(after("", {}).width, 480) << "without a size";
}

TEST_F(ZembrikScreens, MenusOpenByPenAndByKeysAndEscapeLeavesThem)
{
    const Picture plain = after("");
    const Picture right = after("key F2");
    EXPECT_NE(right, plain);
    EXPECT_EQ(right.at(239, 319), captionColor) << "the half is pressed";
    EXPECT_EQ(right, after("tap 180 310"));
    EXPECT_EQ(right, after("key F10"));
    EXPECT_EQ(after("key F2\nkey Escape"), plain);
    const Picture left = after("key F1");
    EXPECT_EQ(left.at(1, 319), captionColor);
    EXPECT_EQ(left, after("tap 60 310"));
    EXPECT_EQ(after("tap 60 310\ntap 120 60"), plain) << "a tap beside the menu does nothing else";
}

TEST_F(ZembrikScreens, BoxesTakeTheFrontAndGiveItBack)
{
    const Picture plain = after("");
    for (const char *letter : {"A", "H"})
    {
        const Picture box = after(std::string("key F2\nkey ") + letter);
        EXPECT_EQ(box.at(0, 0), idleCaptionColor) << letter;
        EXPECT_GT(count(box, captionColor, 0, captionHeight, 240, 290), 20 * 150) << letter << ": the box's own caption";
        for (const char *answer : {"Enter", "Escape", "Space"})
        {
            EXPECT_EQ(after(std::string("key F2\nkey ") + letter + "\nkey " + answer), plain) << letter << answer;
        }
    }
}

TEST_F(ZembrikScreens, TabMovesTheMarkOfTheFocus)
{
    const auto marked = [](const Picture &picture, int top, int bottom)
    { return count(picture, captionColor, 0, top, 3, bottom); };
    const Picture first = after("");
    EXPECT_EQ(marked(first, captionHeight, 100), 0);
    EXPECT_EQ(marked(first, 150, 290), 3 * 140);
    const Picture second = after("key Tab");
    EXPECT_EQ(marked(second, captionHeight, 100), 3 * (100 - captionHeight));
    EXPECT_EQ(marked(second, 150, 290), 0);
    EXPECT_EQ(after("key Tab\nkey Tab"), first);
    EXPECT_EQ(after("tap 100 60"), second);
}

TEST_F(ZembrikScreens, TheBarBetweenThePanesFollowsPenAndKeysAndIsRemembered)
{
    // The client area is 268 high; a third of it, and half of the bar to each side.
    const auto top = [](const Picture &picture)
    {
        int y = captionHeight;
        while (y < picture.height && picture.at(120, y) == 0xFFFFFF)
        {
            ++y;
        }
        return y;
    };
    const int before = top(after(""));
    EXPECT_NEAR(before, captionHeight + 268 / 3 - 3, 2);
    EXPECT_EQ(top(after("key Ctrl+Down")), before + 16);
    const Picture dragged = after("pen down 120 " + std::to_string(before + 19) + "\npen move 120 150\npen up 120 200");
    // The splitter: the pen in the client area, less half the bar and a pixel; the bar begins half its size before that.
    EXPECT_EQ(top(dragged), captionHeight + (200 - captionHeight - 3 - 1) - 3);
    EXPECT_EQ(top(after("")), top(dragged)) << "the next run begins there";
    EXPECT_EQ(after(""), after("")) << "and does not creep";
}

TEST_F(ZembrikScreens, PanesLieSideBySideOnAWideScreen)
{
    const Picture wide = after("", {"--size", "320x240"});
    EXPECT_EQ(count(wide, captionColor, 0, 60, 3, 200), 0) << "the pane with the focus is the right one";
    const int middle = 320 / 3;
    EXPECT_EQ(count(wide, captionColor, middle, 60, middle + 8, 200), 3 * 140);
}

TEST_F(ZembrikScreens, ATurnedOrResizedScreenLooksAsIfItHadBegunSo)
{
    const Picture upright = after("", {"--size", "240x320"});
    const Picture wide = after("", {"--size", "320x240"});
    EXPECT_EQ(after("rotate"), wide);
    EXPECT_EQ(after("rotate\nrotate"), upright);
    EXPECT_EQ(after("size 320x240\nsize 1000x500\nsize 240x320"), upright);
    EXPECT_EQ(after("key F2\nrotate"), wide) << "an open menu ends";
    EXPECT_EQ(after("key F2\nkey A\nrotate\nkey Enter"), wide) << "an open box stays, and can be left";
    EXPECT_EQ(after("key Tab\nrotate\nkey Tab\nkey Tab\nrotate"), after("key Tab")) << "the focus stays where it was";
}

TEST_F(ZembrikScreens, WhatItCountsIsReadAnewByItsCommand)
{
    const Picture none = after("");
    std::string tasks = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (int n = 0; n < 12; ++n) // two digits: the test's faces draw all digits alike
    {
        tasks += "BEGIN:VTODO\r\nUID:" + std::to_string(n) + "\r\nSUMMARY:Water the plants\r\nEND:VTODO\r\n";
    }
    const std::string calendar = zb::test::writeFile(file("tasks.ics"), tasks + "END:VCALENDAR\r\n");
    ASSERT_EQ(zb::test::runZb({"--device", device().string(), "import", calendar}).exitCode, 0);
    const Picture some = after("");
    EXPECT_NE(some, none);
    EXPECT_EQ(after("key F2\nkey R"), some);
}

TEST_F(ZembrikScreens, TheViewThatShowedIsKeptInTheSettings)
{
    ASSERT_EQ(play("key Ctrl+Q").exitCode, 0);
    EXPECT_NE(settings().find(std::string("s\0t\0a\0r\0t\0", 10)), std::string::npos);
}

TEST_F(ZembrikScreens, ItEndsByTheCloseButtonTheMenuAndTheKey)
{
    for (const char *lines : {"tap 228 13", "key F2\nkey X", "key Ctrl+Q", "quit"})
    {
        const ProgramResult result = play(std::string(lines) + "\nshot @/never.png\n");
        EXPECT_EQ(result.exitCode, 0) << lines << result.err;
        EXPECT_TRUE(drawn("never.png").pixels.empty()) << lines;
    }
}
