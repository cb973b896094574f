// DrawTextW: lines, breaks, places, marks, tabs, ellipses.
#include "platform/kernel.h"
#include "support/TextStage.h"

using namespace zb::test;

namespace
{
constexpr UINT plain = DT_NOPREFIX;

class DrawText : public TextTest
{
  protected:
    DrawingBoard board{100, 60};
    HDC context = board.context();
    SelectedFont font{context, plainFont(10)};

    void SetUp() override
    {
        SetBkMode(context, TRANSPARENT);
    }
    int draw(std::u16string_view text, RECT box, UINT format)
    {
        board.clear(RGB(255, 255, 255));
        return DrawTextW(context, text.data(), static_cast<int>(text.size()), &box, format);
    }
    /// What DT_CALCRECT makes of the rectangle, and that its result is the height.
    RECT calculated(std::u16string_view text, RECT box, UINT format)
    {
        const int height = DrawTextW(context, text.data(), static_cast<int>(text.size()), &box, format | DT_CALCRECT);
        EXPECT_EQ(height, box.bottom - box.top);
        return box;
    }
    SIZE needed(std::u16string_view text, int width, UINT format)
    {
        const RECT box = calculated(text, {0, 0, width, 0}, format);
        return {box.right, box.bottom};
    }
    void expectInk(LONG left, LONG top, LONG right, LONG bottom) const
    {
        const RECT ink = inkOf(board);
        EXPECT_EQ(ink.left, left);
        EXPECT_EQ(ink.top, top);
        EXPECT_EQ(ink.right, right);
        EXPECT_EQ(ink.bottom, bottom);
    }
    /// For each row of text of 10 pixels, the columns from the first ink to behind the last.
    std::vector<std::pair<int, int>> rows() const
    {
        std::vector<std::pair<int, int>> found;
        const auto pixels = board.pixels();
        for (int row = 0; row * 10 < board.height(); ++row)
        {
            int first = -1;
            int last = -1;
            for (int x = 0; x < board.width(); ++x)
            {
                for (int y = row * 10; y < row * 10 + 10; ++y)
                {
                    if (pixels[static_cast<std::size_t>(y * board.width() + x)] != 0xFFFFFF)
                    {
                        first = first < 0 ? x : first;
                        last = x + 1;
                    }
                }
            }
            if (first >= 0)
            {
                found.emplace_back(first, last);
            }
        }
        return found;
    }
};

using Rows = std::vector<std::pair<int, int>>;

TEST_F(DrawText, aLineStandsAtTheTopLeft)
{
    EXPECT_EQ(draw(u"aa", {5, 7, 95, 55}, plain), 10);
    expectInk(6, 10, 14, 15);
}

TEST_F(DrawText, aLengthBelowZeroReachesToTheZero)
{
    RECT box{0, 0, 100, 60};
    EXPECT_EQ(DrawTextW(context, u"aa\0bb", -1, &box, plain | DT_CALCRECT), 10);
    EXPECT_EQ(box.right, 10);
}

TEST_F(DrawText, linesEndAtLineFeeds)
{
    EXPECT_EQ(draw(u"a\naa\r\naaa\raaaa", {0, 0, 100, 60}, plain), 40);
    EXPECT_EQ(rows(), (Rows{{1, 4}, {1, 9}, {1, 14}, {1, 19}}));
    EXPECT_EQ(needed(u"a\naa", 100, plain).cy, 20);
    EXPECT_EQ(needed(u"a\naa\n", 100, plain).cy, 20) << "an end at the very end begins no line";
    EXPECT_EQ(needed(u"a\n\na", 100, plain).cy, 30);
    EXPECT_EQ(needed(u"\na", 100, plain).cy, 20);
}

TEST_F(DrawText, aSingleLineHasNoEnds)
{
    const SIZE size = needed(u"a\na", 100, plain | DT_SINGLELINE);
    EXPECT_EQ(size.cy, 10);
    EXPECT_EQ(size.cx, 15);
}

TEST_F(DrawText, calculatingSetsRightAndBottomAlone)
{
    const RECT box = calculated(u"aaaa\nW", {3, 4, 90, 50}, plain);
    EXPECT_EQ(box.left, 3);
    EXPECT_EQ(box.top, 4);
    EXPECT_EQ(box.right, 23);
    EXPECT_EQ(box.bottom, 24);
    EXPECT_EQ(inkOf(board).right, 0);
}

TEST_F(DrawText, noTextIsOneEmptyLine)
{
    EXPECT_EQ(needed(u"", 100, plain).cx, 0);
    EXPECT_EQ(needed(u"", 100, plain).cy, 10);
    EXPECT_EQ(needed(u"", 100, plain | DT_SINGLELINE).cy, 10);
}

TEST_F(DrawText, centreAndRightGoByEachLine)
{
    draw(u"aa\naaaa", {10, 0, 91, 60}, plain | DT_CENTER);
    EXPECT_EQ(rows(), (Rows{{46, 54}, {41, 59}})) << "(81 - 10) / 2 and (81 - 20) / 2, whole pixels";
    draw(u"aa\naaaa", {10, 0, 90, 60}, plain | DT_RIGHT);
    EXPECT_EQ(rows(), (Rows{{81, 89}, {71, 89}}));
}

TEST_F(DrawText, aLineTooWideForTheCentreStandsOutOnBothSides)
{
    draw(u"aaaa", {40, 0, 50, 10}, plain | DT_CENTER | DT_NOCLIP);
    expectInk(36, 3, 54, 8);
}

TEST_F(DrawText, aSingleLineMayStandInTheMiddleOrAtTheFoot)
{
    EXPECT_EQ(draw(u"a", {0, 5, 100, 50}, plain | DT_SINGLELINE | DT_VCENTER), 17 + 10);
    expectInk(1, 5 + 17 + 3, 4, 5 + 17 + 8);
    EXPECT_EQ(draw(u"a", {0, 5, 100, 50}, plain | DT_SINGLELINE | DT_BOTTOM), 45);
    expectInk(1, 43, 4, 48);
    EXPECT_EQ(draw(u"a", {0, 5, 100, 50}, plain | DT_VCENTER), 10) << "only a single line";
    expectInk(1, 8, 4, 13);
    EXPECT_EQ(draw(u"a", {0, 5, 100, 50}, plain | DT_BOTTOM), 10);
    expectInk(1, 8, 4, 13);
    EXPECT_EQ(calculated(u"a", {0, 5, 100, 50}, plain | DT_SINGLELINE | DT_VCENTER).bottom, 15);
}

TEST_F(DrawText, wordsThatDoNotFitGoToTheNextLine)
{
    // Words of 15 pixels and blanks of 5 in 36: two words are 35.
    EXPECT_EQ(draw(u"aaa aaa aaa aaa aaa", {0, 0, 36, 60}, plain | DT_WORDBREAK), 30);
    EXPECT_EQ(rows(), (Rows{{1, 34}, {1, 34}, {1, 14}}));
    EXPECT_EQ(draw(u"aaa aaa aaa", {0, 0, 34, 60}, plain | DT_WORDBREAK), 30);
    EXPECT_EQ(draw(u"aaa aaa aaa", {0, 0, 35, 60}, plain | DT_WORDBREAK), 20) << "just fits";
}

TEST_F(DrawText, blanksAtABreakBelongToNoLine)
{
    EXPECT_EQ(draw(u"aaa     aaa", {0, 0, 30, 60}, plain | DT_WORDBREAK), 20);
    EXPECT_EQ(rows(), (Rows{{1, 14}, {1, 14}}));
    EXPECT_EQ(needed(u"aaa     aaa", 30, plain | DT_WORDBREAK).cx, 15);
    draw(u"aaa   aaa", {0, 0, 30, 60}, plain | DT_WORDBREAK | DT_RIGHT);
    EXPECT_EQ(rows(), (Rows{{16, 29}, {16, 29}}));
}

TEST_F(DrawText, aWordWiderThanTheRectangleHasALineOfItsOwn)
{
    EXPECT_EQ(needed(u"aa aaaaaaaaaa aa", 30, plain | DT_WORDBREAK).cy, 30);
    EXPECT_EQ(needed(u"aa aaaaaaaaaa aa", 30, plain | DT_WORDBREAK).cx, 50) << "the rectangle grows to it";
    EXPECT_EQ(needed(u"aaaaaaaaaa", 30, plain | DT_WORDBREAK).cy, 10);
    EXPECT_EQ(needed(u"aaaaaaaaaa aa", 0, plain | DT_WORDBREAK).cy, 20);
}

TEST_F(DrawText, lineFeedsBreakToo)
{
    EXPECT_EQ(draw(u"aaa\naaa aaa", {0, 0, 20, 60}, plain | DT_WORDBREAK), 30);
    EXPECT_EQ(needed(u"aaa aaa", 20, plain | DT_WORDBREAK | DT_SINGLELINE).cy, 10);
}

TEST_F(DrawText, ideographsBreakBetweenEachOtherButNotBeforeAFullStop)
{
    EXPECT_EQ(needed(u"\u4E00\u4E01\u4E02\u4E03", 25, plain | DT_WORDBREAK).cy, 20);
    // U+3002 is a box of 6 here; with its letter it goes down.
    const SIZE size = needed(u"\u4E00\u4E01\u3002", 25, plain | DT_WORDBREAK);
    EXPECT_EQ(size.cy, 20);
    EXPECT_EQ(size.cx, 16);
}

TEST_F(DrawText, ampersandsUnderlineWhatFollows)
{
    EXPECT_EQ(draw(u"a&ba", {0, 0, 100, 60}, 0), 10);
    expectInk(1, 3, 14, 10);
    const std::string picture = board.picture();
    EXPECT_EQ(picture.substr(9 * 101, 12), ".....#####..") << "the underline of b's own width";
    EXPECT_EQ(needed(u"a&ba", 100, 0).cx, 15);
}

TEST_F(DrawText, twoAmpersandsAreOneAndOneAtTheEndIsNone)
{
    EXPECT_EQ(needed(u"a&&a", 100, 0).cx, 15);
    draw(u"a&&a", {0, 0, 100, 60}, 0);
    EXPECT_EQ(inkOf(board).bottom, 8) << "no underline";
    EXPECT_EQ(needed(u"aa&", 100, 0).cx, 10);
    EXPECT_EQ(needed(u"&", 100, 0).cx, 0);
}

TEST_F(DrawText, withoutPrefixesAmpersandsAreLetters)
{
    EXPECT_EQ(needed(u"a&ba", 100, DT_NOPREFIX).cx, 20);
    draw(u"a&ba", {0, 0, 100, 60}, DT_NOPREFIX);
    EXPECT_EQ(inkOf(board).bottom, 8);
}

TEST_F(DrawText, anUnderlineFollowsItsCharacterToOtherLinesAndPlaces)
{
    draw(u"aaa &baa", {0, 0, 20, 60}, DT_WORDBREAK | DT_RIGHT);
    EXPECT_EQ(board.picture().substr(19 * 101, 25), ".....#####...............");
    // In text from right to left it lies where the letter does: the first letter is the rightmost.
    draw(u"&\u05D0\u05D1\u05D2", {0, 0, 100, 60}, 0);
    EXPECT_EQ(board.picture().substr(9 * 101, 20), "..........#####.....");
}

TEST_F(DrawText, tabsReachToEveryEighthAverageCharacter)
{
    // The average is 5 pixels, so stops are 40 apart.
    draw(u"a\ta", {0, 0, 100, 60}, plain | DT_EXPANDTABS);
    EXPECT_EQ(board.picture().substr(3 * 101, 46), ".###.....................................###..");
    EXPECT_EQ(needed(u"a\ta", 100, plain | DT_EXPANDTABS).cx, 45);
    EXPECT_EQ(needed(u"aaaaaaaa\ta", 100, plain | DT_EXPANDTABS).cx, 85) << "at a stop the tab goes to the next";
    EXPECT_EQ(needed(u"\t\ta", 100, plain | DT_EXPANDTABS).cx, 85);
    EXPECT_EQ(needed(u"a\ta", 100, plain).cx, 15) << "a blank when they aren't expanded";
    EXPECT_EQ(needed(u"a\taa aa", 55, plain | DT_EXPANDTABS | DT_WORDBREAK).cx, 50);
    EXPECT_EQ(needed(u"a\taa aa", 55, plain | DT_EXPANDTABS | DT_WORDBREAK).cy, 20);
}

TEST_F(DrawText, aLineTooLongEndsInAnEllipsis)
{
    // The ellipsis is 5 wide; in 23 pixels three letters stand before it.
    draw(u"aaaaaa", {0, 0, 23, 60}, plain | DT_SINGLELINE | DT_END_ELLIPSIS);
    EXPECT_EQ(board.picture().substr(7 * 101, 25), ".###..###..###..###......");
    EXPECT_EQ(board.picture().substr(1 * 101, 25), "................###......") << "700 high, the letters 500";
    EXPECT_EQ(needed(u"aaaaaa", 23, plain | DT_SINGLELINE | DT_END_ELLIPSIS).cx, 20);
    draw(u"aaaa", {0, 0, 20, 60}, plain | DT_SINGLELINE | DT_END_ELLIPSIS);
    EXPECT_EQ(inkOf(board).top, 3) << "what fits has none";
}

TEST_F(DrawText, anEllipsisNeverCutsAPairOrACluster)
{
    // Three letters would be 15 and the ellipsis 5: the pair of 10 at the third place has no room in 24.
    EXPECT_EQ(needed(u"aa\U0001F600aa", 24, plain | DT_SINGLELINE | DT_END_ELLIPSIS).cx, 15);
    EXPECT_EQ(needed(u"aa\U0001F600aa", 25, plain | DT_SINGLELINE | DT_END_ELLIPSIS).cx, 25);
}

TEST_F(DrawText, theLastLineThatShowsTellsOfThoseThatDoNot)
{
    draw(u"aaa aaa aaa", {0, 0, 30, 20}, plain | DT_WORDBREAK | DT_END_ELLIPSIS);
    EXPECT_EQ(rows(), (Rows{{1, 14}, {1, 19}}));
    draw(u"aaa aaa aaa", {0, 0, 30, 30}, plain | DT_WORDBREAK | DT_END_ELLIPSIS);
    EXPECT_EQ(rows(), (Rows{{1, 14}, {1, 14}, {1, 14}}));
}

TEST_F(DrawText, theTextIsNeverChanged)
{
    std::u16string text = u"a&aaaaaaaaaaaa";
    const std::u16string before = text;
    draw(text, {0, 0, 23, 60}, DT_SINGLELINE | DT_END_ELLIPSIS);
    EXPECT_EQ(text, before);
}

TEST_F(DrawText, nothingIsDrawnOutsideTheRectangleUnlessAskedFor)
{
    draw(u"WWW", {10, 4, 25, 8}, plain);
    expectInk(11, 5, 25, 8);
    draw(u"WWW", {10, 4, 25, 8}, plain | DT_NOCLIP);
    expectInk(11, 5, 39, 12);
}

TEST_F(DrawText, theBackgroundIsFilledInModeOpaque)
{
    SetBkMode(context, OPAQUE);
    SetBkColor(context, RGB(0, 255, 0));
    draw(u"aa", {5, 5, 95, 55}, plain);
    expectInk(5, 5, 15, 15);
}

TEST_F(DrawText, theTextAlignmentOfTheContextSaysNothing)
{
    SetTextAlign(context, TA_RIGHT | TA_BOTTOM);
    draw(u"aa", {50, 20, 95, 55}, plain);
    expectInk(51, 23, 59, 28);
}

TEST_F(DrawText, internalMeasuringIsAcceptedAndChangesNothing)
{
    EXPECT_EQ(needed(u"aaa", 100, plain | DT_INTERNAL).cx, 15);
}

TEST_F(DrawText, unreadableArgumentsAreRefused)
{
    RECT box{0, 0, 10, 10};
    EXPECT_EQ(DrawTextW(context, u"a", 1, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(DrawTextW(context, nullptr, 1, &box, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(DrawTextW(context, nullptr, -1, &box, 0), 0);
    EXPECT_EQ(DrawTextW(context, u"a", -2, &box, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(DrawTextW(nullptr, u"a", 1, &box, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(DrawText, textsOfAnySizeTakeTimeByTheirLength)
{
    constexpr UINT all = DT_WORDBREAK | DT_EXPANDTABS | DT_END_ELLIPSIS;
    EXPECT_EQ(needed(std::u16string(100'000, u'a'), 90, plain | DT_WORDBREAK).cy, 10);
    EXPECT_EQ(needed(std::u16string(100'000, u'\u05D0'), 90, plain | DT_WORDBREAK).cx, 500'000);
    std::u16string words;
    std::u16string lines;
    std::u16string marks;
    std::u16string tabs;
    for (int n = 0; n < 50'000; ++n)
    {
        words += u"a ";
        lines += u"a\n";
        marks += u"&a";
        tabs += u"\t ";
    }
    // Nine words of 5 with their blanks are 85 in 90.
    EXPECT_EQ(needed(words, 90, plain | DT_WORDBREAK).cy, (50'000 + 8) / 9 * 10);
    EXPECT_EQ(needed(lines, 90, plain).cy, 500'000);
    EXPECT_EQ(draw(marks, {0, 0, 100, 60}, all), 10);
    EXPECT_GT(draw(tabs, {0, 0, 100, 60}, all), 0);
    EXPECT_EQ(draw(lines, {0, -250'000, 100, 60}, plain), 500'000);
}

TEST_F(DrawText, rectanglesOfAnyKindAreSafe)
{
    for (const RECT box : {RECT{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, RECT{INT_MAX, INT_MAX, INT_MIN, INT_MIN},
                           RECT{0, 0, 0, 0}, RECT{50, 50, 10, 10}})
    {
        for (const UINT format : {0U, DT_CENTER | DT_SINGLELINE | DT_VCENTER, DT_RIGHT | DT_SINGLELINE | DT_BOTTOM,
                                  DT_WORDBREAK | DT_END_ELLIPSIS, DT_CALCRECT | DT_WORDBREAK, 0xFFFFFFFFU})
        {
            RECT copy = box;
            DrawTextW(context, u"some &text \u05D0\nand\tmore", -1, &copy, format);
        }
    }
}

TEST_F(DrawText, calculatedIsWhatIsPainted)
{
    std::mt19937 random(7);
    const std::u16string letters = u"abW m\u05D0\u4E00\u0627 \n";
    DrawingBoard wide(400, 400);
    const SelectedFont selected(wide.context(), plainFont(10));
    SetBkMode(wide.context(), OPAQUE);
    SetBkColor(wide.context(), RGB(0, 255, 0));
    for (int round = 0; round < 300; ++round)
    {
        std::u16string text = u"a";
        for (auto length = random() % 40; length > 0; --length)
        {
            text += letters[random() % letters.size()];
        }
        const LONG width = static_cast<LONG>(10 + random() % 120);
        RECT box{0, 0, width, 0};
        const auto length = static_cast<int>(text.size());
        DrawTextW(wide.context(), text.data(), length, &box, plain | DT_WORDBREAK | DT_CALCRECT);
        wide.clear(RGB(255, 255, 255));
        RECT target{0, 0, width, 400};
        DrawTextW(wide.context(), text.data(), length, &target, plain | DT_WORDBREAK | DT_NOCLIP);
        const RECT ink = inkOf(wide);
        ASSERT_EQ(ink.right, box.right) << utf8(text) << " in " << width;
        ASSERT_LE(ink.bottom, box.bottom);
        ASSERT_GT(ink.bottom, 0);
    }
}
} // namespace
