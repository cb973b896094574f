// One run and one line by themselves, and plain text that ends in an ellipsis.
#include "display/Board.h"
#include "display/HTMLLine.h"

namespace
{
using namespace zb::test;

class HTMLLineTest : public DrawingTest
{
  protected:
    HTMLLineTest()
    {
        LOGFONTW description{};
        description.lfHeight = 10;
        m_font = CreateFontIndirectW(&description);
        SelectObject(board.context(), m_font);
        SetBkMode(board.context(), TRANSPARENT);
    }
    ~HTMLLineTest() override
    {
        DeleteObject(m_font);
    }
    /// "whole" or "part", the characters and the rectangle behind a run in `rect`.
    std::string run(const WCHAR *text, RECT rect, bool measureOnly = true)
    {
        int chars = 99;
        const bool whole = DrawTextRun(board.context(), text, &rect, measureOnly, &chars);
        return (whole ? "whole " : "part ") + std::to_string(chars) + ' ' + describe(rect);
    }
    /// Width, height and descent of the line that begins with the cursor's token.
    std::string line(const std::u16string &markup, LONG width, bool ignoreAlign = false, int start = 0)
    {
        parse(u"<FONT SIZE=-1>" + markup);
        SIZE size = {width, 0};
        int descent = 99;
        CalcHTMLLine(board.context(), &parser, start, &size, &descent, ignoreAlign);
        return std::to_string(size.cx) + ' ' + std::to_string(size.cy) + ' ' + std::to_string(descent);
    }

  private:
    HFONT m_font;
};

TEST_F(HTMLLineTest, aRunThatFits)
{
    EXPECT_EQ(run(u"abc", {10, 20, 25, 21}), "whole -1 10,20 25,30");
    EXPECT_EQ(run(u"abc", {10, 20, 99, 90}), "whole -1 10,20 25,30");
    EXPECT_EQ(run(u"", {10, 20, 10, 20}), "whole -1 10,20 10,30");
}

TEST_F(HTMLLineTest, aRunThatFitsInPart)
{
    EXPECT_EQ(run(u"ab cd ef", {10, 20, 49, 21}), "part 6 10,20 40,30");
    EXPECT_EQ(run(u"ab cd ef", {10, 20, 39, 21}), "part 3 10,20 25,30");
    EXPECT_EQ(run(u"ab cd ef", {10, 20, 24, 21}), "part 2 10,20 20,30");
    EXPECT_EQ(run(u"ab cd ef", {10, 20, 15, 21}), "part 1 10,20 15,30");
}

TEST_F(HTMLLineTest, aRunOfWhichNothingFits)
{
    EXPECT_EQ(run(u"abc", {10, 20, 14, 21}), "part 0 10,20 10,30");
    EXPECT_EQ(run(u"abc", {10, 20, 10, 21}), "part 0 10,20 10,30");
    EXPECT_EQ(run(u"abc", {10, 20, 9, 21}), "part 0 10,20 9,21");
}

TEST_F(HTMLLineTest, aRunIsPaintedAsFarAsItGoes)
{
    run(u"abc def", {10, 20, 30, 21}, true);
    EXPECT_EQ(board.inkBox(), "none");
    run(u"abc def", {10, 20, 30, 21}, false);
    EXPECT_EQ(board.inkBox(), "11,23 24,28");
}

TEST_F(HTMLLineTest, theClipNeverCutsTheRun)
{
    // The rectangle is 1 pixel high.
    run(u"gA", {10, 20, 40, 21}, false);
    EXPECT_EQ(board.inkBox(), "11,21 19,30");
}

/// The rule as it reads: back from the end, break by break, each beginning measured by itself.
int slowChars(HDC hdc, const std::u16string &text, int width)
{
    const auto widthOf = [&](int count)
    {
        SIZE size{};
        GetTextExtentExPointW(hdc, text.data(), count, 0, nullptr, nullptr, &size);
        return size.cx;
    };
    int k = static_cast<int>(text.size());
    if (widthOf(k) <= width)
    {
        return -1;
    }
    do
    {
        while (k > 0 &&
               std::u16string_view(u" :-;,").find(text[static_cast<std::size_t>(k) - 1]) == std::u16string_view::npos)
        {
            --k;
        }
        if (k == 0)
        {
            SIZE size{};
            GetTextExtentExPointW(hdc, text.data(), static_cast<int>(text.size()), width, &k, nullptr, &size);
        }
        if (widthOf(k) <= width)
        {
            return k;
        }
        --k;
    } while (k >= 1);
    return 0;
}

TEST_F(HTMLLineTest, asManyCharactersAsTheRuleSays)
{
    std::mt19937 random(8200);
    const std::u16string letters = u"aaabWm   :-;,\u05D0\u05D1\u0301\u4E00\u0627\u0628";
    for (int round = 0; round < 1'000; ++round)
    {
        std::u16string text;
        for (std::size_t count = random() % (round % 10 == 0 ? 700 : 40); count > 0; --count)
        {
            text += letters[random() % letters.size()];
        }
        const int width = static_cast<int>(random() % 300);
        RECT rect = {0, 0, width, 0};
        int chars = 99;
        DrawTextRun(board.context(), text.c_str(), &rect, true, &chars);
        ASSERT_EQ(chars, slowChars(board.context(), text, width)) << utf8(text) << " in " << width;
    }
}

TEST_F(HTMLLineTest, breaksWithoutEndTakeOnePass)
{
    EXPECT_EQ(run(std::u16string(300'000, u',').c_str(), {0, 0, 52, 0}), "part 10 0,0 50,10");
    EXPECT_EQ(run(std::u16string(300'000, u'x').c_str(), {0, 0, 52, 0}), "part 10 0,0 50,10");
}

// --- Lines -------------------------------------------------------------------------------------------------------

TEST_F(HTMLLineTest, aLineEndsAtItsBreak)
{
    EXPECT_EQ(line(u"ab<FONT SIZE=9>c<BR>dddddd", 100), "20 20 4");
    EXPECT_EQ(parser.GetCurrTokenType(), TOKEN_TAG);
    EXPECT_EQ(line(u"<FONT SIZE=9>a<FONT SIZE=-1>b", 100), "15 20 4");
    EXPECT_EQ(line(u"<BR>ab", 100), "0 0 0");
    EXPECT_EQ(line(u"", 100), "0 0 0");
}

TEST_F(HTMLLineTest, aLineEndsInTheRunThatDoesNotFit)
{
    EXPECT_EQ(line(u"ab cd<FONT SIZE=9>e", 22), "15 10 2");
    EXPECT_EQ(utf8(parser.GetCurrToken()), "ab cd");
}

TEST_F(HTMLLineTest, aLineOfWidthNoneHas32768Pixels)
{
    EXPECT_EQ(line(std::u16string(6553, u'x'), 0), "32765 10 2");
    EXPECT_EQ(line(std::u16string(6554, u'x'), 0), "32765 10 2");
}

TEST_F(HTMLLineTest, aLineBeginsInsideItsFirstRunAlone)
{
    EXPECT_EQ(line(u"abcd<B>ef", 100, false, 3), "17 10 2"); // "d" and 6 pixels each for "ef"
    EXPECT_EQ(line(u"abcd", 100, false, 4), "0 10 2");
    EXPECT_EQ(line(u"abcd", 100, false, 9), "0 10 2");
}

TEST_F(HTMLLineTest, aChangeOfAlignmentEndsTheMeasure)
{
    const std::u16string markup = u"ab<P ALIGN=RIGHT>cd";
    EXPECT_EQ(line(markup, 100, false), "10 10 2");
    EXPECT_EQ(line(markup, 100, true), "20 10 2");
    // Back to the first alignment: the change stays.
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT>cd</P>ef", 100, false), "10 10 2");
}

TEST_F(HTMLLineTest, behindAChangeHigherFontsGiveTheDescent)
{
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT><FONT SIZE=9>cd", 100, false), "10 10 4");
    EXPECT_EQ(line(u"<FONT SIZE=9>ab<P ALIGN=RIGHT><FONT SIZE=-1>cd", 100, false), "20 20 4");
    // Not the lowest: the last one that is higher than the line.
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT><FONT SIZE=19>c<FONT SIZE=4>d", 100, false), "10 10 3");
}

TEST_F(HTMLLineTest, picturesBehindAChangeDoNotCount)
{
    window.addBitmap(u"5", 30, 40);
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT><IMG SRC=5>", 100, false), "10 10 2");
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT><IMG SRC=5>", 100, true), "40 42 2");
    // A picture makes the change, too.
    EXPECT_EQ(line(u"ab<P ALIGN=RIGHT><IMG SRC=5></P>cd", 100, false), "10 10 2");
}

TEST_F(HTMLLineTest, picturesOfALine)
{
    window.addBitmap(u"5", 30, 40);
    EXPECT_EQ(line(u"<IMG SRC=5>ab", 100), "40 40 2");
    EXPECT_EQ(line(u"ab<IMG SRC=5>", 100), "40 42 2");
    EXPECT_EQ(line(u"<IMG SRC=6>ab", 100), "10 10 2");
    // Pictures never end a line by themselves.
    EXPECT_EQ(line(u"<IMG SRC=5><IMG SRC=5><IMG SRC=5>", 50), "90 40 0");
    EXPECT_EQ(line(u"<IMG SRC=5><IMG SRC=5>ab<BR>", 50), "60 40 2");
}

TEST_F(HTMLLineTest, withoutADescentTheRestOfTheLineIsLeftOut)
{
    parse(u"<FONT SIZE=-1>ab<P ALIGN=RIGHT>cd<BR>");
    SIZE size = {100, 0};
    CalcHTMLLine(board.context(), &parser, 0, &size, nullptr, false);
    EXPECT_EQ(size.cx, 10);
    EXPECT_EQ(size.cy, 10);
}

// --- Ellipsis ----------------------------------------------------------------------------------------------------

class EllipsisTest : public HTMLLineTest
{
  protected:
    /// The width that the text takes in a rectangle of this width, measured.
    int widthIn(const WCHAR *text, int width)
    {
        RECT rect = {10, 20, 10 + width, 40};
        EXPECT_EQ(DrawTextEndEllipsis(board.context(), text, rect, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT), 10);
        return rect.right - rect.left;
    }
};

TEST_F(EllipsisTest, textThatFitsStays)
{
    EXPECT_EQ(widthIn(u"abcdef", 30), 30);
    EXPECT_EQ(widthIn(u"abcdef", 100), 30);
}

TEST_F(EllipsisTest, textThatDoesNotFitLosesTwoCharactersAndMore)
{
    EXPECT_EQ(widthIn(u"abcdef", 29), 25); // "abcd" and the ellipsis
    EXPECT_EQ(widthIn(u"abcdef", 25), 25);
    EXPECT_EQ(widthIn(u"abcdef", 24), 20);
    EXPECT_EQ(widthIn(u"abcdef", 15), 15);
}

TEST_F(EllipsisTest, oneCharacterStaysAtLeast)
{
    EXPECT_EQ(widthIn(u"abcdef", 10), 10);
    EXPECT_EQ(widthIn(u"abcdef", 9), 10);
    EXPECT_EQ(widthIn(u"abcdef", 0), 10);
    EXPECT_EQ(widthIn(u"abc", 0), 10);
    EXPECT_EQ(widthIn(u"ab", 0), 10);
    EXPECT_EQ(widthIn(u"a", 0), 5);
}

TEST_F(EllipsisTest, theEllipsisIsWhatStandsThere)
{
    // 'a' is 5 high, the ellipsis as high as a capital.
    RECT rect = {0, 0, 14, 20};
    DrawTextEndEllipsis(board.context(), u"aaa", rect, DT_SINGLELINE | DT_NOPREFIX);
    EXPECT_EQ(board.inkBox(), "1,1 9,8");
    board.clear();
    rect = {0, 0, 15, 20};
    DrawTextEndEllipsis(board.context(), u"aaa", rect, DT_SINGLELINE | DT_NOPREFIX);
    EXPECT_EQ(board.inkBox(), "1,3 14,8");
}

TEST_F(EllipsisTest, theTextItselfStaysAsItIs)
{
    const std::u16string text = u"abcdef";
    widthIn(text.c_str(), 20);
    EXPECT_EQ(utf8(text), "abcdef");
}

TEST_F(EllipsisTest, charactersOfTwoUnitsAreNotCutInHalf)
{
    // Four faces of 10 pixels each: in 36 there are three and the ellipsis, in 34 two.
    EXPECT_EQ(widthIn(u"\U0001F600\U0001F600\U0001F600\U0001F600", 36), 35);
    EXPECT_EQ(widthIn(u"\U0001F600\U0001F600\U0001F600\U0001F600", 34), 25);
}

TEST_F(EllipsisTest, asShortenedStepByStep)
{
    std::mt19937 random(8201);
    const std::u16string letters = u"aabWm  \u05D0\u05D1\u4E00,";
    for (int round = 0; round < 2'000; ++round)
    {
        std::u16string text;
        for (std::size_t count = random() % 40; count > 0; --count)
        {
            text += letters[random() % letters.size()];
        }
        const int width = static_cast<int>(random() % 250);
        const auto widthOf = [&](const std::u16string &part)
        {
            SIZE size{};
            GetTextExtentExPointW(board.context(), part.data(), static_cast<int>(part.size()), 0, nullptr, nullptr,
                                  &size);
            return size.cx;
        };
        std::u16string expected = text;
        while (widthOf(expected) > width && expected.size() >= 3)
        {
            expected[expected.size() - 2] = u'\u2026';
            expected.pop_back();
        }
        RECT rect = {0, 0, width, 20};
        DrawTextEndEllipsis(board.context(), text.c_str(), rect, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
        ASSERT_EQ(rect.right, widthOf(expected)) << utf8(text) << " in " << width;
    }
}

TEST_F(EllipsisTest, veryLongTextTakesOnePass)
{
    EXPECT_EQ(widthIn(std::u16string(200'000, u'x').c_str(), 52), 50);
}
} // namespace
