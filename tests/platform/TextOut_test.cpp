// ExtTextOutW: where the pixels of a text come to lie.
#include "platform/kernel.h"
#include "support/TextStage.h"

using namespace zb::test;

namespace
{
class TextOut : public TextTest
{
  protected:
    /// The text on a board of its own with the font, transparent, black on white.
    static std::string drawn(std::u16string_view text, int columns, int rows = 10, int x = 0, int y = 0,
                             const LOGFONTW &description = plainFont(10))
    {
        DrawingBoard board(columns, rows);
        const SelectedFont font(board.context(), description);
        SetBkMode(board.context(), TRANSPARENT);
        EXPECT_TRUE(textOut(board.context(), x, y, text));
        return board.picture();
    }
};

TEST_F(TextOut, aTextLiesByItsTopLeftCorner)
{
    EXPECT_EQ(drawn(u"ab", 12), "............\n............\n............\n"
                                ".###..###...\n.###..###...\n.###..###...\n.###..###...\n.###..###...\n"
                                "............\n............\n");
    EXPECT_EQ(drawn(u"W", 12, 13, 1, 2), "............\n............\n............\n"
                                         "..########..\n..########..\n..########..\n..########..\n"
                                         "..########..\n..########..\n..########..\n"
                                         "............\n............\n............\n");
}

TEST_F(TextOut, descendersReachBelowTheBaseline)
{
    EXPECT_EQ(drawn(u"g", 5), ".....\n.....\n.....\n.###.\n.###.\n.###.\n.###.\n.###.\n.###.\n.###.\n");
}

TEST_F(TextOut, theColourIsTheTexts)
{
    DrawingBoard board(5, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetTextColor(board.context(), RGB(255, 0, 0));
    SetBkMode(board.context(), TRANSPARENT);
    textOut(board.context(), 0, 0, u"a");
    EXPECT_EQ(board.at(1, 3), 0xFF0000U);
    EXPECT_EQ(board.at(0, 3), 0xFFFFFFU);
}

TEST_F(TextOut, inModeOpaqueTheTextsOwnBoxIsFilled)
{
    DrawingBoard board(12, 12);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(0, 255, 0));
    textOut(board.context(), 1, 1, u"a ");
    std::string expected = "............\n";
    for (int row = 0; row < 10; ++row)
    {
        expected += row >= 3 && row < 8 ? ".g###gggggg.\n" : ".gggggggggg.\n";
    }
    EXPECT_EQ(board.picture(), expected + "............\n");
}

TEST_F(TextOut, theRectangleIsFilledFirstWhenAskedFor)
{
    DrawingBoard board(8, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    SetBkColor(board.context(), RGB(0, 0, 255));
    const RECT box{2, 4, 6, 6};
    textOut(board.context(), 0, 0, u"a", ETO_OPAQUE, &box);
    EXPECT_EQ(board.picture(), "........\n........\n........\n.###....\n.###bb..\n.###bb..\n.###....\n.###....\n"
                               "........\n........\n");
    // Without text it fills all the same.
    board.clear(RGB(255, 255, 255));
    EXPECT_TRUE(ExtTextOutW(board.context(), 0, 0, ETO_OPAQUE, &box, nullptr, 0, nullptr));
    EXPECT_EQ(inkOf(board).left, 2);
    EXPECT_EQ(inkOf(board).top, 4);
    EXPECT_EQ(inkOf(board).right, 6);
    EXPECT_EQ(inkOf(board).bottom, 6);
}

TEST_F(TextOut, aClippedTextStaysInsideItsRectangle)
{
    DrawingBoard board(12, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkColor(board.context(), RGB(0, 255, 0));
    const RECT box{2, 4, 7, 6};
    textOut(board.context(), 0, 0, u"ab", ETO_CLIPPED, &box);
    EXPECT_EQ(board.picture(), "............\n............\n............\n............\n"
                               "..##gg#.....\n..##gg#.....\n"
                               "............\n............\n............\n............\n");
    board.clear(RGB(255, 255, 255));
    const RECT inverted{7, 6, 2, 4};
    EXPECT_TRUE(textOut(board.context(), 0, 0, u"ab", ETO_CLIPPED | ETO_OPAQUE, &inverted));
    EXPECT_EQ(inkOf(board).right, 0) << "a rectangle with nothing inside";
}

TEST_F(TextOut, optionsWithoutARectangleAreNone)
{
    DrawingBoard board(6, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    EXPECT_TRUE(textOut(board.context(), 0, 0, u"a", ETO_CLIPPED | ETO_OPAQUE));
    EXPECT_EQ(inkOf(board).right, 4);
}

TEST_F(TextOut, theContextsClipOfManyRectanglesIsKept)
{
    DrawingBoard board(20, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    IntersectClipRect(board.context(), 0, 2, 18, 7);
    ExcludeClipRect(board.context(), 2, 4, 8, 5);
    ExcludeClipRect(board.context(), 12, 0, 13, 10);
    textOut(board.context(), 0, 0, u"WW");
    EXPECT_EQ(board.picture(), "....................\n....................\n"
                               ".########..#.#####..\n.########..#.#####..\n"
                               ".#......#..#.#####..\n"
                               ".########..#.#####..\n.########..#.#####..\n"
                               "....................\n....................\n....................\n");
}

TEST_F(TextOut, aRectangleAndTheContextsClipBothHold)
{
    DrawingBoard board(10, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    ExcludeClipRect(board.context(), 3, 0, 5, 10);
    const RECT box{0, 2, 7, 4};
    textOut(board.context(), 0, 0, u"W", ETO_CLIPPED, &box);
    EXPECT_EQ(board.picture(), "..........\n..........\n.##..##...\n.##..##...\n"
                               "..........\n..........\n..........\n..........\n..........\n..........\n");
}

struct Alignment
{
    UINT align;
    int left;
    int top;
};

class TextAlignment : public TextOut, public ::testing::WithParamInterface<Alignment>
{
};

TEST_P(TextAlignment, placesTheBoxByThePoint)
{
    DrawingBoard board(60, 60);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(0, 255, 0));
    SetTextAlign(board.context(), GetParam().align);
    textOut(board.context(), 30, 30, u"aWa");
    const RECT box = inkOf(board);
    EXPECT_EQ(box.left, GetParam().left);
    EXPECT_EQ(box.top, GetParam().top);
    EXPECT_EQ(box.right, GetParam().left + 20);
    EXPECT_EQ(box.bottom, GetParam().top + 10);
}

INSTANTIATE_TEST_SUITE_P(
    All, TextAlignment,
    ::testing::Values(Alignment{TA_LEFT | TA_TOP, 30, 30}, Alignment{TA_RIGHT | TA_TOP, 10, 30},
                      Alignment{TA_CENTER | TA_TOP, 20, 30}, Alignment{TA_LEFT | TA_BOTTOM, 30, 20},
                      Alignment{TA_RIGHT | TA_BOTTOM, 10, 20}, Alignment{TA_CENTER | TA_BOTTOM, 20, 20},
                      Alignment{TA_LEFT | TA_BASELINE, 30, 22}, Alignment{TA_RIGHT | TA_BASELINE, 10, 22},
                      Alignment{TA_CENTER | TA_BASELINE, 20, 22}));

TEST_F(TextOut, advancesOfTheCallersPlaceEachCharacter)
{
    DrawingBoard board(24, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    const int advances[] = {10, 7, 5};
    textOut(board.context(), 0, 0, u"aaa", 0, nullptr, advances);
    EXPECT_EQ(board.picture().substr(3 * 25, 25), ".###.......###....###...\n");
    // They are the width too, of the box and for alignment.
    board.clear(RGB(255, 255, 255));
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(0, 255, 0));
    SetTextAlign(board.context(), TA_RIGHT);
    textOut(board.context(), 24, 0, u"aaa", 0, nullptr, advances);
    EXPECT_EQ(inkOf(board).left, 2);
    EXPECT_EQ(inkOf(board).right, 24);
}

TEST_F(TextOut, advancesOfAClusterAreThoseOfItsCharacters)
{
    DrawingBoard board(24, 10);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    const int advances[] = {6, 4, 5};
    textOut(board.context(), 0, 0, u"x\u0301a", 0, nullptr, advances);
    EXPECT_EQ(board.picture().substr(3 * 25, 25), ".###.......###..........\n");
}

TEST_F(TextOut, rightToLeftRunsTurnAround)
{
    // Alef is 300 high, bet 400, gimel 500: in the order of reading they stand from right to left.
    EXPECT_EQ(drawn(u"\u05D0\u05D1\u05D2", 15), "...............\n...............\n...............\n"
                                                ".###...........\n.###..###......\n.###..###..###.\n"
                                                ".###..###..###.\n.###..###..###.\n"
                                                "...............\n...............\n");
}

TEST_F(TextOut, theLineItselfGoesLeftToRight)
{
    // Letters of both kinds: the Hebrew part turns in its place, the full stop at the end stays on the right.
    const std::string mixed = drawn(u"g\u05D0\u05D2.", 20);
    EXPECT_EQ(mixed.substr(4 * 21, 21), ".###..###.......###.\n") << "g, gimel, alef (lower), full stop";
    EXPECT_EQ(mixed.substr(8 * 21, 21), ".###................\n") << "only g reaches below";
}

TEST_F(TextOut, numbersInsideHebrewReadLeftToRight)
{
    const std::string text = drawn(u"\u05D0 1\u05D2", 20);
    EXPECT_EQ(text.substr(4 * 21, 21), ".###..###...........\n") << "gimel, the digit, blank, alef";
    EXPECT_EQ(text.substr(3 * 21, 21), ".###..###...........\n");
    EXPECT_EQ(text.substr(1 * 21, 21), "......###...........\n") << "the digit is 700 high and second from the left";
    EXPECT_EQ(text.substr(6 * 21, 21), ".###..###.......###.\n");
}

TEST_F(TextOut, underlineAndStrikeOutAreWholePixelsUnderTheWholeText)
{
    LOGFONTW font = plainFont(10);
    font.lfUnderline = 1;
    EXPECT_EQ(drawn(u"a ", 12, 10, 1, 0, font), "............\n............\n............\n"
                                                "..###.......\n..###.......\n..###.......\n..###.......\n..###.......\n"
                                                "............\n.##########.\n");
    font.lfUnderline = 0;
    font.lfStrikeOut = 1;
    EXPECT_EQ(drawn(u"a ", 12, 10, 1, 0, font), "............\n............\n............\n"
                                                "..###.......\n..###.......\n.##########.\n..###.......\n..###.......\n"
                                                "............\n............\n");
}

TEST_F(TextOut, theLinesOfAFontGrowWithIt)
{
    LOGFONTW font = plainFont(30);
    font.lfUnderline = 1;
    DrawingBoard board(15, 30);
    const SelectedFont selected(board.context(), font);
    SetBkMode(board.context(), TRANSPARENT);
    textOut(board.context(), 0, 0, u" ");
    EXPECT_EQ(inkOf(board).top, 27);
    EXPECT_EQ(inkOf(board).bottom, 30);
    EXPECT_EQ(inkOf(board).right, 15);
}

TEST_F(TextOut, theUnderlineStaysInsideTheCell)
{
    for (LONG height = 2; height < 40; ++height)
    {
        LOGFONTW font = plainFont(height);
        font.lfUnderline = 1;
        DrawingBoard board(4, 60);
        const SelectedFont selected(board.context(), font);
        SetBkMode(board.context(), TRANSPARENT);
        textOut(board.context(), 0, 0, u" ");
        EXPECT_GT(inkOf(board).bottom, 0) << height;
        EXPECT_LE(inkOf(board).bottom, height) << height;
    }
}

TEST_F(TextOut, greyEdgesBlendByWhatIsCovered)
{
    LOGFONTW font = plainFont(15); // the box is 1.5 to 6 pixels wide and 7.5 high
    font.lfQuality = ANTIALIASED_QUALITY;
    DrawingBoard board(8, 15);
    const SelectedFont selected(board.context(), font);
    SetBkMode(board.context(), TRANSPARENT);
    textOut(board.context(), 0, 0, u"a");
    EXPECT_EQ(board.at(0, 8), 0xFFFFFFU);
    EXPECT_EQ(board.at(3, 8), 0x000000U);
    const std::uint32_t left = board.at(1, 8) & 0xFFU;
    EXPECT_NEAR(static_cast<double>(left), 127.5, 2) << "half of the column is covered";
    const std::uint32_t corner = board.at(1, 4) & 0xFFU;
    EXPECT_NEAR(static_cast<double>(corner), 255 * 0.75, 2) << "a quarter of the pixel";
    // The same on another ground, by the same shares, in each colour.
    board.clear(RGB(0, 0, 200));
    SetTextColor(board.context(), RGB(100, 200, 0));
    textOut(board.context(), 0, 0, u"a");
    const std::uint32_t mixed = board.at(1, 8);
    EXPECT_NEAR(static_cast<double>(mixed >> 16U), 50, 2);
    EXPECT_NEAR(static_cast<double>(mixed >> 8U & 0xFFU), 100, 2);
    EXPECT_NEAR(static_cast<double>(mixed & 0xFFU), 100, 2);
    EXPECT_EQ(board.at(3, 8), 0x64C800U);
}

TEST_F(TextOut, qualitiesChooseTheEdges)
{
    for (const BYTE quality : {DEFAULT_QUALITY, DRAFT_QUALITY, ANTIALIASED_QUALITY, CLEARTYPE_QUALITY,
                               CLEARTYPE_COMPAT_QUALITY, NONANTIALIASED_QUALITY})
    {
        LOGFONTW font = plainFont(15);
        font.lfQuality = quality;
        DrawingBoard board(10, 15);
        const SelectedFont selected(board.context(), font);
        SetBkMode(board.context(), TRANSPARENT);
        textOut(board.context(), 1, 0, u"a");
        int soft = 0;
        int colored = 0;
        for (const std::uint32_t pixel : board.pixels())
        {
            soft += pixel != 0 && pixel != 0xFFFFFF ? 1 : 0;
            colored += (pixel >> 16U) != (pixel & 0xFFU) ? 1 : 0;
        }
        const bool stripes = quality == CLEARTYPE_QUALITY || quality == CLEARTYPE_COMPAT_QUALITY;
        EXPECT_EQ(soft > 0, quality != NONANTIALIASED_QUALITY) << int{quality};
        EXPECT_EQ(colored > 0, stripes) << int{quality};
        EXPECT_EQ(widthOf(board.context(), u"a"), 8) << "quality moves no text";
    }
}

TEST_F(TextOut, stripesOfOneEdgeRiseFromLeftToRight)
{
    LOGFONTW font = plainFont(20); // the box begins at 2 whole pixels
    font.lfQuality = CLEARTYPE_QUALITY;
    DrawingBoard board(14, 20);
    const SelectedFont selected(board.context(), font);
    SetBkMode(board.context(), TRANSPARENT);
    textOut(board.context(), 0, 0, u"a");
    const std::uint32_t inside = board.at(5, 10);
    EXPECT_EQ(inside, 0x000000U);
    EXPECT_EQ(board.at(0, 10), 0xFFFFFFU);
    // Left of the edge blue is nearest to it, so it is the darkest; right of the box red is.
    const std::uint32_t before = board.at(1, 10);
    EXPECT_GE(before >> 16U & 0xFFU, before & 0xFFU);
    const std::uint32_t behind = board.at(8, 10);
    EXPECT_LE(behind >> 16U & 0xFFU, behind & 0xFFU);
}

TEST_F(TextOut, onBlackAndWhiteEveryPixelIsOneOrTheOther)
{
    DrawingBoard board(10, 15, RGB(255, 255, 255), true);
    LOGFONTW font = plainFont(15);
    font.lfQuality = ANTIALIASED_QUALITY;
    const SelectedFont selected(board.context(), font);
    SetBkMode(board.context(), TRANSPARENT);
    SetTextColor(board.context(), RGB(10, 20, 30));
    textOut(board.context(), 0, 0, u"a");
    for (const std::uint32_t pixel : board.pixels())
    {
        EXPECT_TRUE(pixel == 0 || pixel == 0xFFFFFF);
    }
    EXPECT_EQ(board.at(3, 8), 0x000000U);
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(20, 20, 20));
    SetTextColor(board.context(), RGB(250, 250, 250));
    textOut(board.context(), 0, 0, u"a");
    EXPECT_EQ(board.at(0, 0), 0x000000U);
    EXPECT_EQ(board.at(3, 8), 0xFFFFFFU);
}

TEST_F(TextOut, measuredIsWhatIsPainted)
{
    // Letters of which every one fills from a tenth of an em to a tenth before its end: the ink tells where the last
    // one ends.
    std::mt19937 random(20261121);
    const std::u16string letters = u"abcdefgWm\u05D0\u05D1\u0416\u4E00\u0627\u0E01\u2600";
    DrawingBoard board(400, 12);
    const SelectedFont font(board.context(), plainFont(10));
    SetBkMode(board.context(), TRANSPARENT);
    for (int round = 0; round < 2'000; ++round)
    {
        std::u16string text;
        for (auto length = 1 + random() % 30; length > 0; --length)
        {
            text += letters[random() % letters.size()];
        }
        board.clear(RGB(255, 255, 255));
        textOut(board.context(), 10, 1, text);
        const RECT ink = inkOf(board);
        ASSERT_EQ(ink.left, 11) << utf8(text);
        ASSERT_EQ(ink.right, 10 + widthOf(board.context(), text) - 1) << utf8(text);
    }
}

TEST_F(TextOut, aTextDrawnTwiceIsTheSamePixels)
{
    for (const std::u16string_view text : {u"plain text", u"mixed \u05D0\u05D1 \u0628\u064A\u062A x\u0301"})
    {
        EXPECT_EQ(drawn(text, 120), drawn(text, 120));
    }
}

TEST_F(TextOut, partsOfATextAreTheSamePixelsAsTheWhole)
{
    for (const BYTE quality : {ANTIALIASED_QUALITY, CLEARTYPE_QUALITY, NONANTIALIASED_QUALITY})
    {
        LOGFONTW description = plainFont(17);
        description.lfQuality = quality;
        description.lfItalic = 1;
        const std::u16string_view text = u"aWg \u05D0\u05D1 \u4E00m";
        DrawingBoard whole(120, 20, RGB(10, 200, 30));
        const SelectedFont font(whole.context(), description);
        SetBkMode(whole.context(), TRANSPARENT);
        SetTextColor(whole.context(), RGB(250, 20, 90));
        textOut(whole.context(), 3, 1, text);
        for (const LONG step : {1, 3, 5, 17})
        {
            DrawingBoard parts(120, 20, RGB(10, 200, 30));
            const SelectedFont same(parts.context(), description);
            SetBkMode(parts.context(), TRANSPARENT);
            SetTextColor(parts.context(), RGB(250, 20, 90));
            for (LONG left = 0; left < 120; left += step)
            {
                for (LONG top = 0; top < 20; top += 7)
                {
                    const RECT part{left, top, left + step, top + 7};
                    textOut(parts.context(), 3, 1, text, ETO_CLIPPED, &part);
                }
            }
            EXPECT_TRUE(parts.pixels() == whole.pixels()) << int{quality} << " in steps of " << step;
        }
    }
}

TEST_F(TextOut, theSurfacesEdgesCutGlyphs)
{
    // Every place around each edge: what shows is what a larger board shows there.
    LOGFONTW description = plainFont(15);
    description.lfQuality = ANTIALIASED_QUALITY;
    DrawingBoard large(60, 60);
    const SelectedFont font(large.context(), description);
    DrawingBoard small(20, 20);
    const SelectedFont same(small.context(), description);
    SetBkMode(large.context(), TRANSPARENT);
    SetBkMode(small.context(), TRANSPARENT);
    for (int x = -16; x <= 20; ++x)
    {
        for (const int y : {-15, -9, -3, 0, 6, 12, 19})
        {
            large.clear(RGB(255, 255, 255));
            small.clear(RGB(255, 255, 255));
            textOut(large.context(), 20 + x, 20 + y, u"gW");
            textOut(small.context(), x, y, u"gW");
            const auto pixels = small.pixels();
            const auto expected = large.pixels();
            for (std::size_t row = 0; row < 20; ++row)
            {
                ASSERT_TRUE(std::equal(pixels.begin() + static_cast<std::ptrdiff_t>(row * 20),
                                       pixels.begin() + static_cast<std::ptrdiff_t>(row * 20 + 20),
                                       expected.begin() + static_cast<std::ptrdiff_t>((row + 20) * 60 + 20)))
                    << x << ", " << y;
            }
        }
    }
}

TEST_F(TextOut, atMostThisManyCharactersAreDrawn)
{
    DrawingBoard board(8'400, 3);
    const SelectedFont font(board.context(), plainFont(2)); // one pixel each
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(0, 255, 0));
    textOut(board.context(), 0, 0, std::u16string(9'000, u' '));
    EXPECT_EQ(inkOf(board).right, 8'192);
    board.clear(RGB(255, 255, 255));
    // A pair that would be cut in two is left out whole.
    textOut(board.context(), 0, 0, std::u16string(8'191, u' ') + u"\U0001F600");
    EXPECT_EQ(inkOf(board).right, 8'191);
}

TEST_F(TextOut, coordinatesFarOutsideAreSafe)
{
    DrawingBoard board(20, 10);
    const SelectedFont font(board.context(), plainFont(10));
    for (const int x : {INT_MIN, -100'000, 100'000, INT_MAX})
    {
        for (const int y : {INT_MIN, 0, INT_MAX})
        {
            const RECT box{x, y, INT_MAX, INT_MAX};
            EXPECT_TRUE(textOut(board.context(), x, y, u"abc\u05D0"));
            EXPECT_TRUE(textOut(board.context(), x, y, u"abc", ETO_CLIPPED, &box));
        }
    }
    EXPECT_EQ(inkOf(board).right, 0);
    const int advances[] = {INT_MAX, INT_MIN, INT_MAX};
    EXPECT_TRUE(textOut(board.context(), 0, 0, u"aaa", 0, nullptr, advances));
}

TEST_F(TextOut, unreadableArgumentsAreRefused)
{
    DrawingBoard board(4, 4);
    EXPECT_FALSE(ExtTextOutW(board.context(), 0, 0, 0, nullptr, nullptr, 1, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(ExtTextOutW(nullptr, 0, 0, 0, nullptr, u"a", 1, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(TextOut, moreGlyphsThanAreKeptAtOnceAreDrawnAll)
{
    // 256 pictures of about 80,000 pixels each are ten times what a face keeps.
    DrawingBoard board(330, 330);
    const SelectedFont font(board.context(), plainFont(320));
    SetBkMode(board.context(), TRANSPARENT);
    for (int round = 0; round < 2; ++round)
    {
        for (WCHAR character = 0x4E00; character < 0x4E60; ++character)
        {
            board.clear(RGB(255, 255, 255));
            textOut(board.context(), 0, 0, {&character, 1});
            const RECT ink = inkOf(board);
            ASSERT_EQ(ink.left, 32);
            ASSERT_EQ(ink.right, 288);
            ASSERT_EQ(ink.top, 32);
            ASSERT_EQ(ink.bottom, 256);
        }
    }
}

TEST_F(TextOut, hostileTextsAreDrawn)
{
    DrawingBoard board(60, 20);
    const SelectedFont font(board.context(), plainFont(10));
    std::u16string halves;
    for (int n = 0; n < 8'000; ++n)
    {
        halves += static_cast<WCHAR>(0xD800 + n % 0x800);
    }
    EXPECT_TRUE(textOut(board.context(), 0, 0, halves));
    EXPECT_TRUE(textOut(board.context(), 0, 0, u"x" + std::u16string(8'000, u'\u0301')));
    EXPECT_TRUE(textOut(board.context(), 0, 0, std::u16string(8'000, u'\u202E') + u"a"));
    std::u16string all;
    for (unsigned unit = 0; unit < 0x10000; ++unit)
    {
        all += static_cast<WCHAR>(unit);
    }
    for (std::size_t at = 0; at < all.size(); at += 4'096)
    {
        EXPECT_TRUE(textOut(board.context(), 0, 0, std::u16string_view(all).substr(at, 4'096)));
    }
}

class ShapedTextOut : public HostTextTest
{
};

TEST_F(ShapedTextOut, arabicIsPaintedJoinedAndInsideItsMeasure)
{
    TestDevice device(dejaVuAlone());
    DrawingBoard board(300, 60);
    const SelectedFont font(board.context(), plainFont(-32, u"DejaVu Sans"));
    SetBkMode(board.context(), TRANSPARENT);
    // Two letters of one tooth each: joined they have ink in every column between them.
    const std::u16string_view word = u"\u0628\u0628";
    textOut(board.context(), 20, 0, word);
    const RECT ink = inkOf(board);
    const std::vector<std::uint32_t> pixels = board.pixels();
    for (LONG x = ink.left; x < ink.right; ++x)
    {
        bool any = false;
        for (int y = 0; y < board.height(); ++y)
        {
            any = any || pixels[static_cast<std::size_t>(y * board.width() + x)] != 0xFFFFFF;
        }
        EXPECT_TRUE(any) << "a gap at " << x;
    }
    EXPECT_GE(ink.left, 18);
    EXPECT_LE(ink.right, 20 + widthOf(board.context(), word) + 2);
}

TEST_F(ShapedTextOut, whatWasShapedBeforeChangesNothing)
{
    // The same texts in another order, on faces that have seen nothing yet.
    std::mt19937 random(11);
    const std::u16string letters = u"ab \u0628\u062A\u0644\u0627\u064E \u05D0\u05B8 \u0301(\u0661 1-";
    std::vector<std::u16string> texts(150);
    for (std::u16string &text : texts)
    {
        for (auto length = 1 + random() % 24; length > 0; --length)
        {
            text += letters[random() % letters.size()];
        }
    }
    TestDevice device(dejaVuAlone());
    const auto picture = [](const std::u16string &text)
    {
        DrawingBoard board(400, 30);
        const SelectedFont font(board.context(), plainFont(-16, u"DejaVu Sans"));
        SetBkMode(board.context(), TRANSPARENT);
        textOut(board.context(), 4, 4, text);
        return std::pair(board.pixels(), extentsOf(board.context(), text));
    };
    std::vector<std::pair<std::vector<std::uint32_t>, std::vector<int>>> first;
    for (const std::u16string &text : texts)
    {
        first.push_back(picture(text));
    }
    for (std::size_t n = texts.size(); n-- > 0;)
    {
        if (n % 10 == 0)
        {
            device.options().fonts.files.emplace_back(); // another list of files is another set of faces
            device.reopen();
        }
        EXPECT_TRUE(picture(texts[n]) == first[n]) << utf8(texts[n]);
    }
}

TEST_F(ShapedTextOut, marksAreSetOnTheirLetters)
{
    TestDevice device(dejaVuAlone());
    DrawingBoard board(80, 60);
    const SelectedFont font(board.context(), plainFont(-32, u"DejaVu Sans"));
    SetBkMode(board.context(), TRANSPARENT);
    textOut(board.context(), 20, 0, u"x");
    const RECT bare = inkOf(board);
    textOut(board.context(), 20, 0, u"x\u0301");
    const RECT marked = inkOf(board);
    EXPECT_LT(marked.top, bare.top);
    EXPECT_EQ(marked.bottom, bare.bottom);
    EXPECT_GE(marked.left, bare.left);
    EXPECT_LE(marked.right, bare.right);
}
} // namespace
