// What texts measure: widths, what fits, extents, in scripts of every kind.
#include "platform/kernel.h"
#include "support/TextStage.h"

#include <numeric>

using namespace zb::test;

namespace
{
class TextExtent : public TextTest
{
  protected:
    DrawingBoard board{8, 8};
    HDC context = board.context();
    SelectedFont font{context, plainFont(10)};
};

TEST_F(TextExtent, aTextIsAsWideAsItsCharactersAndAsHighAsTheCell)
{
    const SIZE size = sizeOf(context, u"Wave m");
    EXPECT_EQ(size.cx, 10 + 5 + 5 + 5 + 5 + 10);
    EXPECT_EQ(size.cy, 10);
}

TEST_F(TextExtent, noTextIsNotWideAndStillHigh)
{
    SIZE size{-1, -1};
    EXPECT_TRUE(GetTextExtentPoint32W(context, nullptr, 0, &size));
    EXPECT_EQ(size.cx, 0);
    EXPECT_EQ(size.cy, 10);
    int fit = -1;
    EXPECT_TRUE(GetTextExtentExPointW(context, u"", 0, 100, &fit, nullptr, &size));
    EXPECT_EQ(fit, 0);
}

TEST_F(TextExtent, theGreatestNumberThatIsAtMostAsWideFits)
{
    EXPECT_EQ(fitOf(context, u"aWa", 0), 0);
    EXPECT_EQ(fitOf(context, u"aWa", 4), 0);
    EXPECT_EQ(fitOf(context, u"aWa", 5), 1);
    EXPECT_EQ(fitOf(context, u"aWa", 14), 1);
    EXPECT_EQ(fitOf(context, u"aWa", 15), 2);
    EXPECT_EQ(fitOf(context, u"aWa", 19), 2);
    EXPECT_EQ(fitOf(context, u"aWa", 20), 3);
    EXPECT_EQ(fitOf(context, u"aWa", INT_MAX), 3);
    EXPECT_EQ(fitOf(context, u"aWa", -1), 0);
    EXPECT_EQ(fitOf(context, u"aWa", INT_MIN), 0);
}

TEST_F(TextExtent, theSizeIsThatOfTheWholeTextWhateverFits)
{
    int fit = -1;
    SIZE size{};
    EXPECT_TRUE(GetTextExtentExPointW(context, u"aaaa", 4, 7, &fit, nullptr, &size));
    EXPECT_EQ(fit, 1);
    EXPECT_EQ(size.cx, 20);
}

TEST_F(TextExtent, extentsAreTheWidthsFromTheStartBehindEachCharacter)
{
    EXPECT_EQ(extentsOf(context, u"aWa "), (std::vector<int>{5, 15, 20, 25}));
}

TEST_F(TextExtent, extentsAreGivenForWhatFitsAlone)
{
    int extents[4] = {-7, -7, -7, -7};
    int fit = 0;
    SIZE size{};
    EXPECT_TRUE(GetTextExtentExPointW(context, u"aWaa", 4, 16, &fit, extents, &size));
    EXPECT_EQ(fit, 2);
    EXPECT_EQ(extents[0], 5);
    EXPECT_EQ(extents[1], 15);
    EXPECT_EQ(extents[2], -7);
    EXPECT_EQ(extents[3], -7);
}

TEST_F(TextExtent, withoutFitTheMaximumSaysNothing)
{
    int extents[3] = {};
    SIZE size{};
    EXPECT_TRUE(GetTextExtentExPointW(context, u"aaa", 3, 1, nullptr, extents, &size));
    EXPECT_EQ(extents[2], 15);
}

TEST_F(TextExtent, marksTakeNoRoomAndStayWithTheirLetter)
{
    // The face has no x with an acute, so the two stand for themselves.
    EXPECT_EQ(widthOf(context, u"x\u0301y"), 10);
    EXPECT_EQ(extentsOf(context, u"x\u0301y"), (std::vector<int>{5, 5, 10}));
    EXPECT_EQ(fitOf(context, u"x\u0301y", 5), 2);
    EXPECT_EQ(fitOf(context, u"x\u0301y", 4), 0);
    EXPECT_EQ(fitOf(context, u"x\u0301\u0302\u0303y", 9), 4);
}

TEST_F(TextExtent, aLetterAndItsMarkBecomeOneWhereTheFaceHasIt)
{
    EXPECT_EQ(widthOf(context, u"e\u0301"), 5);
    EXPECT_EQ(fitOf(context, u"ae\u0301b", 10), 3);
}

TEST_F(TextExtent, pairsAreOneCharacterAndAreNotCutInTwo)
{
    const std::u16string_view text = u"a\U0001F600b";
    EXPECT_EQ(widthOf(context, text), 20);
    EXPECT_EQ(extentsOf(context, text), (std::vector<int>{5, 15, 15, 20}));
    EXPECT_EQ(fitOf(context, text, 14), 1);
    EXPECT_EQ(fitOf(context, text, 15), 3);
}

TEST_F(TextExtent, halvesOfPairsMeasureLikeTheReplacementCharacter)
{
    // The faces lack U+FFFD, so it is the box of 6.
    const WCHAR high[] = {u'a', 0xD83D, u'b'};
    const WCHAR low[] = {0xDE00, u'b'};
    const WCHAR turned[] = {0xDE00, 0xD83D};
    EXPECT_EQ(widthOf(context, {high, 3}), 16);
    EXPECT_EQ(widthOf(context, {low, 2}), 11);
    EXPECT_EQ(widthOf(context, {turned, 2}), 12);
    EXPECT_EQ(fitOf(context, {high, 3}, 11), 2);
}

TEST_F(TextExtent, tabsAndLineFeedsAreBlanksAndOtherControlsNothing)
{
    EXPECT_EQ(widthOf(context, u"a\tb"), 15);
    EXPECT_EQ(widthOf(context, u"a\nb"), 15);
    EXPECT_EQ(widthOf(context, u"a\r\nb"), 15) << "a line end of two characters is one blank";
    EXPECT_EQ(widthOf(context, u"a\u2028b"), 15);
    EXPECT_EQ(widthOf(context, std::u16string_view(u"a\0b", 3)), 10);
    EXPECT_EQ(widthOf(context, u"a\u0007\u001Fb\u007F\u0090"), 10);
    EXPECT_EQ(extentsOf(context, u"a\u0007b"), (std::vector<int>{5, 5, 10}));
}

TEST_F(TextExtent, whatOnlyTellsAboutOthersTakesNoRoom)
{
    EXPECT_EQ(widthOf(context, u"a\u00ADb"), 10) << "soft hyphen";
    EXPECT_EQ(widthOf(context, u"a\u200Bb"), 10) << "blank without width";
    EXPECT_EQ(widthOf(context, u"a\u200Db"), 10) << "joiner";
    EXPECT_EQ(widthOf(context, u"a\u202Eb\u202C"), 10) << "directions";
    EXPECT_EQ(widthOf(context, u"\uFEFFab"), 10) << "byte order mark";
    EXPECT_EQ(widthOf(context, u"a\uFE0Fb"), 10) << "variation";
    EXPECT_EQ(widthOf(context, u"\u200D\u200D"), 0);
}

TEST_F(TextExtent, lettersAreAsWideInMixedTextAsAlone)
{
    const int alone = widthOf(context, u"AVAWA To fi ffl ");
    EXPECT_EQ(widthOf(context, u"AVAWA To fi ffl \u05D0"), alone + 5);
}

TEST_F(TextExtent, hebrewCountsInTheOrderOfTheText)
{
    EXPECT_EQ(extentsOf(context, u"a\u05D0\u05D1W"), (std::vector<int>{5, 10, 15, 25}));
    EXPECT_EQ(fitOf(context, u"\u05D0\u05D1\u05D2", 10), 2);
}

TEST_F(TextExtent, extentsNeverFall)
{
    const std::u16string_view text = u"abc \u05D0\u05D1 12 \u0628\u0627 x\u0301 \U0001F600 \u0E01\u0E49";
    const std::vector<int> extents = extentsOf(context, text);
    EXPECT_TRUE(std::is_sorted(extents.begin(), extents.end()));
    EXPECT_EQ(extents.back(), widthOf(context, text));
}

TEST_F(TextExtent, wideScriptsNeedNoShaping)
{
    EXPECT_EQ(widthOf(context, u"\u4E00\u4E01"), 20);
    EXPECT_EQ(widthOf(context, u"\u3042\u30A2"), 20);
}

TEST_F(TextExtent, unreadableArgumentsAreRefused)
{
    SIZE size{};
    EXPECT_FALSE(GetTextExtentPoint32W(context, u"a", 1, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(GetTextExtentPoint32W(context, nullptr, 1, &size));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(GetTextExtentPoint32W(context, u"a", -1, &size));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(GetTextExtentPoint32W(nullptr, u"a", 1, &size));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(TextExtent, aWordOfAnyLengthIsMeasured)
{
    const std::u16string plain(100'000, u'a');
    EXPECT_EQ(widthOf(context, plain), 500'000);
    EXPECT_EQ(fitOf(context, plain, 12'345), 2'469);
    const std::u16string hebrew(100'000, u'\u05D0');
    EXPECT_EQ(widthOf(context, hebrew), 500'000);
    EXPECT_EQ(fitOf(context, hebrew, 12'345), 2'469);
    const std::u16string arabic(100'000, u'\u0628');
    EXPECT_EQ(widthOf(context, arabic), 400'000);
}

TEST_F(TextExtent, tenThousandMarksOnOneLetterAreOneCluster)
{
    const std::u16string text = u"x" + std::u16string(10'000, u'\u0301') + u"y";
    EXPECT_EQ(widthOf(context, text), 10);
    EXPECT_EQ(fitOf(context, text, 9), 10'001);
    EXPECT_EQ(fitOf(context, text, 4), 0);
    EXPECT_EQ(widthOf(context, std::u16string(10'000, u'\u0301')), 0);
}

TEST_F(TextExtent, directionsNestedDeeplyAreBounded)
{
    std::u16string text;
    for (int depth = 0; depth < 5'000; ++depth)
    {
        text += depth % 2 == 0 ? u"\u202Ba" : u"\u202A\u05D0";
    }
    text += std::u16string(5'000, u'\u202C');
    EXPECT_EQ(widthOf(context, text), 25'000);
    std::u16string isolates;
    for (int n = 0; n < 5'000; ++n)
    {
        isolates += u"\u2067(\u05D0";
    }
    EXPECT_EQ(widthOf(context, isolates), 50'000);
}

class ShapedExtent : public HostTextTest
{
  protected:
    void SetUp() override
    {
        HostTextTest::SetUp();
        if (!IsSkipped())
        {
            device.emplace(dejaVuAlone());
            board.emplace(8, 8);
            font.emplace(board->context(), plainFont(-32, u"DejaVu Sans"));
        }
    }
    int width(std::u16string_view text) const
    {
        return widthOf(board->context(), text);
    }
    std::optional<TestDevice> device;
    std::optional<DrawingBoard> board;
    std::optional<SelectedFont> font;
};

TEST_F(ShapedExtent, arabicLettersJoin)
{
    const std::u16string_view word = u"\u0628\u064A\u062A";
    int sum = 0;
    for (const WCHAR letter : word)
    {
        sum += width({&letter, 1});
    }
    EXPECT_LT(width(word), sum) << "joined forms are narrower than isolated ones";
}

TEST_F(ShapedExtent, lamAndAlefAreOneCluster)
{
    const std::u16string_view text = u"\u0644\u0627";
    const std::vector<int> extents = extentsOf(board->context(), text);
    EXPECT_EQ(extents[0], extents[1]);
    EXPECT_EQ(fitOf(board->context(), text, extents[1] - 1), 0);
    EXPECT_EQ(fitOf(board->context(), text, extents[1]), 2);
}

TEST_F(ShapedExtent, whatFitsIsAtMostAsWideWhenMeasuredAlone)
{
    const std::u16string_view text = u"\u0627\u0644\u0633\u0644\u0627\u0645 \u0639\u0644\u064A\u0643\u0645 hello";
    for (int maximum = 0; maximum <= width(text); ++maximum)
    {
        const int fit = fitOf(board->context(), text, maximum);
        EXPECT_LE(width(text.substr(0, static_cast<std::size_t>(fit))), maximum) << maximum;
    }
    EXPECT_EQ(fitOf(board->context(), text, width(text)), static_cast<int>(text.size()));
}

TEST_F(ShapedExtent, thereIsNoKerningAndNoLigatureOfStyle)
{
    EXPECT_EQ(width(u"AV"), width(u"A") + width(u"V"));
    EXPECT_EQ(width(u"fi"), width(u"f") + width(u"i"));
    // The same beside a letter that is shaped.
    EXPECT_EQ(width(u"AVfi\u05D0"), width(u"A") + width(u"V") + width(u"f") + width(u"i") + width(u"\u05D0"));
    EXPECT_EQ(width(u"A\u0301V"), width(u"A") + width(u"V"));
}
} // namespace
