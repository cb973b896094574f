// Physical lines to content lines: line ends, folds, encodings, limits.
#include "interchange/content_lines.h"
#include "interchange/text_charsets.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;

struct Lines
{
    std::vector<std::string> texts;
    std::vector<std::size_t> numbers;
    std::vector<bool> cut;
    EncodingNotes notes;
};

Lines linesOf(std::string_view bytes, std::size_t limit = ContentLines::defaultLimit)
{
    const auto source = openMemory(bytes);
    TextSource text(*source);
    ContentLines lines(text, limit);
    Lines found;
    ContentLine line;
    while (lines.next(line))
    {
        found.texts.push_back(line.text);
        found.numbers.push_back(line.line);
        found.cut.push_back(line.cut);
    }
    found.notes = lines.notes();
    return found;
}

using Texts = std::vector<std::string>;
using Numbers = std::vector<std::size_t>;

std::string utf16Of(std::u16string_view text, bool bigEndian)
{
    std::string bytes;
    for (const char16_t unit : text)
    {
        const char high = static_cast<char>(unit >> 8U);
        const char low = static_cast<char>(unit & 0xFFU);
        bytes += bigEndian ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

TEST(ContentLines, AllThreeLineEndsGiveTheSameLines)
{
    for (const char *const text : {"A:1\nB:2\nC:3\n", "A:1\r\nB:2\r\nC:3\r\n", "A:1\rB:2\rC:3\r", "A:1\nB:2\nC:3"})
    {
        const Lines lines = linesOf(text);
        EXPECT_EQ(lines.texts, (Texts{"A:1", "B:2", "C:3"})) << text;
        EXPECT_EQ(lines.numbers, (Numbers{1, 2, 3})) << text;
    }
}

TEST(ContentLines, LineFeedsMayFollowOnCarriageReturnsInAnyMix)
{
    EXPECT_EQ(linesOf("A:1\r\nB:2\nC:3\r\n").texts, (Texts{"A:1", "B:2", "C:3"}));
    EXPECT_EQ(linesOf("A:1\nB:2\r\n\r\nC:3\r\r\n").texts, (Texts{"A:1", "B:2", "C:3"}));
    EXPECT_EQ(linesOf("A:1\r\r\nB:2\r\r\n").texts, (Texts{"A:1", "B:2"}));
}

TEST(ContentLines, ALoneCarriageReturnInALineIsABlank)
{
    EXPECT_EQ(linesOf("A:1\nB:2\rmore\n").texts, (Texts{"A:1", "B:2 more"}));
}

TEST(ContentLines, FoldsAreUndoneAndTakeOneBlankOnly)
{
    const Lines lines = linesOf("A:one\r\n  two\r\n\tthree\r\nB:4\r\n");
    EXPECT_EQ(lines.texts, (Texts{"A:one twothree", "B:4"}));
    EXPECT_EQ(lines.numbers, (Numbers{1, 4}));
}

TEST(ContentLines, AFoldInsideACharacterKeepsIt)
{
    EXPECT_EQ(linesOf("A:Stra\xC3\r\n \x9F"
                      "e\r\n")
                  .texts,
              (Texts{"A:Straße"}));
}

TEST(ContentLines, BlankLinesArePassedOverButCounted)
{
    const Lines lines = linesOf("\n\nA:1\n   \n\n\nB:2\n");
    EXPECT_EQ(lines.texts.front(), "A:1" + std::string("  "));
    EXPECT_EQ(lines.numbers, (Numbers{3, 7}));
}

TEST(ContentLines, AnEmptyFileHasNoLines)
{
    EXPECT_TRUE(linesOf("").texts.empty());
    EXPECT_TRUE(linesOf("\r\n\r\n").texts.empty());
    EXPECT_TRUE(linesOf("\xEF\xBB\xBF").texts.empty());
}

TEST(ContentLines, ZerosAreDroppedAndNoted)
{
    const Lines lines = linesOf(std::string_view("A:1\nB:\0x\0y\nC:\0\n", 15));
    EXPECT_EQ(lines.texts, (Texts{"A:1", "B:xy", "C:"}));
    EXPECT_EQ(lines.notes.zeroLines, 2U);
    EXPECT_EQ(lines.notes.zeroFirst, 2U);
}

TEST(ContentLines, ALineThatIsNoUtf8IsWindows1252)
{
    const Lines lines = linesOf("A:gr\xC3\xBCn\nB:caf\xE9 5\x80 \x93x\x94\nC:\xC3\n");
    EXPECT_EQ(lines.texts, (Texts{"A:grün", "B:café 5€ “x”", "C:Ã"}));
    EXPECT_EQ(lines.notes.windows1252Lines, 2U);
    EXPECT_EQ(lines.notes.windows1252First, 2U);
}

TEST(ContentLines, MarksAndUtf16OfBothOrdersAreRead)
{
    const std::u16string text = u"A:grün\r\nB:\U0001F388漢\r\n";
    const Texts expected{"A:grün", "B:🎈漢"};
    EXPECT_EQ(linesOf("\xEF\xBB\xBF"
                      "A:grün\r\nB:🎈漢\r\n")
                  .texts,
              expected);
    for (const bool big : {false, true})
    {
        EXPECT_EQ(linesOf(utf16Of(u"\uFEFF" + text, big)).texts, expected);
        EXPECT_EQ(linesOf(utf16Of(text, big)).texts, expected);
    }
}

TEST(ContentLines, BrokenUtf16GivesReplacementCharacters)
{
    const std::u16string lone{u'\uFEFF', u'A', u':', char16_t(0xD83D), u'x', char16_t(0xDC00), u'\n'};
    EXPECT_EQ(linesOf(utf16Of(lone, false)).texts, (Texts{"A:\uFFFDx\uFFFD"}));
    EXPECT_EQ(linesOf(utf16Of(u"\uFEFFA:x", false) + "y").texts, (Texts{"A:x\uFFFD"}));
    EXPECT_EQ(linesOf(utf16Of(lone.substr(0, 4), true)).texts, (Texts{"A:\uFFFD"}));
}

TEST(ContentLines, PiecesOfAFileJoinAnywhere)
{
    // The middle of each of these lies on the edge of a piece for one of the paddings.
    constexpr std::size_t piece = 64 * 1024;
    const std::string tail = "\r\nB:Stra\xC3\x9F"
                             "e\r\n  x\r\n\ty\r\nC:1\r\n";
    for (std::size_t padding = piece - tail.size() - 4; padding <= piece + 1; ++padding)
    {
        const std::string first = "A:" + std::string(padding - 2, 'a');
        const Lines lines = linesOf(first + tail);
        ASSERT_EQ(lines.texts, (Texts{first, "B:Straße xy", "C:1"})) << padding;
        ASSERT_EQ(lines.numbers, (Numbers{1, 2, 5})) << padding;
    }
}

TEST(ContentLines, PiecesOfUtf16JoinInsideAPair)
{
    for (std::size_t padding = 32 * 1024 - 6; padding <= 32 * 1024 + 2; ++padding)
    {
        const std::u16string first = u"A:" + std::u16string(padding - 2, u'a');
        const Lines lines = linesOf(utf16Of(u"\uFEFF" + first + u"\U0001F388\nB:1\n", true));
        ASSERT_EQ(lines.texts, (Texts{"A:" + std::string(padding - 2, 'a') + "🎈", "B:1"})) << padding;
    }
}

TEST(ContentLines, ALongLineIsCutAtTheLimit)
{
    const Lines lines = linesOf("A:" + std::string(1'000'000, 'x') + "\nB:1\n", 1000);
    ASSERT_EQ(lines.texts.size(), 2U);
    EXPECT_EQ(lines.texts[0], "A:" + std::string(998, 'x'));
    EXPECT_EQ(lines.cut, (std::vector<bool>{true, false}));
    EXPECT_EQ(lines.texts[1], "B:1");
}

TEST(ContentLines, ACutNeverHalvesACharacter)
{
    std::string text = "A:";
    for (int n = 0; n < 1000; ++n)
    {
        text += "ß漢🎈";
    }
    for (std::size_t limit = 100; limit < 110; ++limit)
    {
        const Lines lines = linesOf(text, limit);
        ASSERT_TRUE(isUtf8(lines.texts[0])) << limit;
        ASSERT_GT(lines.texts[0].size(), limit - 4);
        ASSERT_EQ(text.compare(0, lines.texts[0].size(), lines.texts[0]), 0);
        ASSERT_EQ(lines.notes.windows1252Lines, 0U);
    }
}

TEST(ContentLines, RewindingReadsTheSameAgain)
{
    const auto source = openMemory("A:\xE9\nB:2\n");
    TextSource text(*source);
    ContentLines lines(text);
    ContentLine line;
    for (int pass = 0; pass < 2; ++pass)
    {
        ASSERT_TRUE(lines.next(line));
        EXPECT_EQ(line.text, "A:é");
        EXPECT_EQ(line.line, 1U);
        ASSERT_TRUE(lines.next(line));
        EXPECT_FALSE(lines.next(line));
        EXPECT_EQ(lines.notes().windows1252Lines, 1U);
        lines.rewind();
    }
}

TEST(Utf8, OnlyWellFormedTextPasses)
{
    for (const char *const good : {"", "a", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEF\xBF\xBF",
                                   "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
    {
        EXPECT_TRUE(isUtf8(good)) << good;
    }
    for (const char *const bad :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2x", "\xE0\x9F\xBF", "\xE0\xA0", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xE2\x82x"})
    {
        EXPECT_FALSE(isUtf8(bad)) << bad;
    }
}
} // namespace
