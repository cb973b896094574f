// Fonts: heights, weights, slants, measures, which face a description gets, and what they share.
#include "platform/kernel.h"
#include "support/TextStage.h"

#include <fstream>

using namespace zb::test;

namespace
{
class FontMetrics : public TextTest
{
  protected:
    DrawingBoard board{40, 24};
    HDC context = board.context();

    TEXTMETRICW metrics(const LOGFONTW &description)
    {
        const SelectedFont font(context, description);
        return metricsOf(context);
    }
    int width(const LOGFONTW &description, std::u16string_view text)
    {
        const SelectedFont font(context, description);
        return zb::test::widthOf(context, text);
    }
    std::string drawn(const LOGFONTW &description, std::u16string_view text, int columns, int rows)
    {
        DrawingBoard small(columns, rows);
        const SelectedFont font(small.context(), description);
        SetBkMode(small.context(), TRANSPARENT);
        EXPECT_TRUE(textOut(small.context(), 0, 0, text));
        return small.picture();
    }
};

TEST_F(FontMetrics, aPositiveHeightIsThatOfTheCell)
{
    for (const LONG height : {1, 2, 5, 8, 10, 11, 12, 13, 17, 22, 31, 48, 100})
    {
        const TEXTMETRICW found = metrics(plainFont(height));
        EXPECT_EQ(found.tmHeight, height);
        EXPECT_EQ(found.tmAscent + found.tmDescent, height);
    }
    const TEXTMETRICW twenty = metrics(plainFont(20));
    EXPECT_EQ(twenty.tmAscent, 16);
    EXPECT_EQ(twenty.tmDescent, 4);
    EXPECT_EQ(twenty.tmInternalLeading, 0);
    EXPECT_EQ(twenty.tmExternalLeading, 0);
}

TEST_F(FontMetrics, aNegativeHeightIsThatOfTheCharacters)
{
    // A face whose cell is one and a half ems tells the two apart.
    device.options().fonts.files = {writeTestFace(faces.path(), {"Deep", false, false, testSansGlyphs(), 700})};
    device.reopen();
    const TEXTMETRICW cell = metrics(plainFont(30));
    EXPECT_EQ(cell.tmHeight, 30);
    EXPECT_EQ(cell.tmAscent, 16);
    EXPECT_EQ(cell.tmInternalLeading, 10);
    EXPECT_EQ(width(plainFont(30), u"a"), 10);
    const TEXTMETRICW em = metrics(plainFont(-30));
    EXPECT_EQ(em.tmHeight, 45);
    EXPECT_EQ(em.tmAscent, 24);
    EXPECT_EQ(em.tmInternalLeading, 15);
    EXPECT_EQ(width(plainFont(-30), u"a"), 15);
    // 31 pixels are 20.67 ems: 21 of them, and the cell is 31 all the same.
    EXPECT_EQ(metrics(plainFont(31)).tmHeight, 31);
    EXPECT_EQ(width(plainFont(31), u"W"), 21);
}

TEST_F(FontMetrics, aFaceThatIsBoldByNameAloneGetsItsInkInsideItsAdvance)
{
    // A stem of 100 thousandths of the em in an advance of 300 (the faces' writer adds 100 for bold): at 20 pixels two
    // columns from the third on.
    const std::vector<TestGlyphs> thin = {{U'l', U'l', 200, 500}};
    device.options().fonts.files = {writeTestFace(faces.path(), {"Thin", true, false, thin})};
    device.reopen();
    LOGFONTW bold = plainFont(20);
    bold.lfWeight = FW_BOLD;
    EXPECT_EQ(width(bold, u"ll"), 12);
    const std::string blank = "......\n";
    const auto rows = [](const std::string &row, int count)
    {
        std::string all;
        for (int n = 0; n < count; ++n)
        {
            all += row;
        }
        return all;
    };
    EXPECT_EQ(drawn(plainFont(20), u"l", 6, 17), rows(blank, 6) + rows("..##..\n", 10) + blank);
    EXPECT_EQ(drawn(bold, u"l", 6, 17), rows(blank, 6) + rows("..###.\n", 10) + blank);
}

TEST_F(FontMetrics, noHeightIsElevenPixels)
{
    EXPECT_EQ(metrics(plainFont(0)).tmHeight, 11);
}

TEST_F(FontMetrics, heightsBeyondAllScreensAreTheTallestThereIs)
{
    EXPECT_EQ(metrics(plainFont(2048)).tmHeight, 2048);
    EXPECT_EQ(metrics(plainFont(2049)).tmHeight, 2048);
    EXPECT_EQ(metrics(plainFont(INT_MAX)).tmHeight, 2048);
    EXPECT_EQ(metrics(plainFont(INT_MIN)).tmHeight, 2048);
}

TEST_F(FontMetrics, advancesAreWholePixelsRounded)
{
    // 500 units at 11 pixels are 5.5: up. 1,000 are 11. At 13: 6.5 and 13.
    EXPECT_EQ(width(plainFont(10), u"a"), 5);
    EXPECT_EQ(width(plainFont(10), u"W"), 10);
    EXPECT_EQ(width(plainFont(11), u"a"), 6);
    EXPECT_EQ(width(plainFont(11), u"aaaa"), 24);
    EXPECT_EQ(width(plainFont(11), u"W"), 11);
    EXPECT_EQ(width(plainFont(13), u"aW"), 20);
}

TEST_F(FontMetrics, theOtherMeasuresScaleWithTheEm)
{
    const TEXTMETRICW found = metrics(plainFont(20));
    EXPECT_EQ(found.tmAveCharWidth, 10);
    EXPECT_EQ(found.tmMaxCharWidth, 20);
    EXPECT_EQ(found.tmWeight, 400);
    EXPECT_EQ(found.tmOverhang, 0);
    EXPECT_EQ(found.tmDigitizedAspectX, 96);
    EXPECT_EQ(found.tmDigitizedAspectY, 96);
    EXPECT_EQ(found.tmFirstChar, 0x20);
    EXPECT_EQ(found.tmLastChar, 0xFFFF);
    EXPECT_EQ(found.tmBreakChar, 0x20);
    EXPECT_EQ(found.tmItalic, 0);
    EXPECT_EQ(found.tmUnderlined, 0);
    EXPECT_EQ(found.tmStruckOut, 0);
    EXPECT_EQ(found.tmCharSet, 0);
    EXPECT_EQ(found.tmPitchAndFamily, 0x27) << "widths differ, outlines, TrueType, without serifs";
}

TEST_F(FontMetrics, theStyleAskedForShows)
{
    LOGFONTW font = plainFont(20);
    font.lfItalic = 1;
    font.lfUnderline = 255;
    font.lfStrikeOut = 1;
    const TEXTMETRICW found = metrics(font);
    EXPECT_EQ(found.tmItalic, 1);
    EXPECT_EQ(found.tmUnderlined, 1);
    EXPECT_EQ(found.tmStruckOut, 1);
}

TEST_F(FontMetrics, weightsFrom550AreBold)
{
    LOGFONTW font = plainFont(20);
    for (const LONG weight : {0, 100, 400, 500, 549})
    {
        font.lfWeight = weight;
        EXPECT_EQ(metrics(font).tmWeight, 400) << weight;
        EXPECT_EQ(width(font, u"a"), 10) << weight;
    }
    for (const LONG weight : {550, 600, 700, 800, 900, 100'000})
    {
        font.lfWeight = weight;
        EXPECT_EQ(metrics(font).tmWeight, 700) << weight;
        EXPECT_EQ(width(font, u"a"), 12) << "the bold face's own advance of 600, weight " << weight;
    }
}

TEST_F(FontMetrics, aHeavierFaceThanBoldIsTakenWhereThereIsOne)
{
    // The family's second file says 700; asked for 800 the same one is nearest.
    LOGFONTW bold = plainFont(10);
    bold.lfWeight = 700;
    LOGFONTW heavy = bold;
    heavy.lfWeight = 800;
    EXPECT_EQ(drawn(bold, u"a", 8, 10), drawn(heavy, u"a", 8, 10));
}

TEST_F(FontMetrics, theBoldFaceIsTheFamilysOwn)
{
    LOGFONTW font = plainFont(10);
    font.lfWeight = FW_BOLD;
    EXPECT_EQ(drawn(font, u"a", 7, 10), ".......\n.......\n.......\n"
                                        ".####..\n.####..\n.####..\n.####..\n.####..\n"
                                        ".......\n.......\n");
}

TEST_F(FontMetrics, boldIsMadeWhereTheFamilyHasNone)
{
    // A pixel wider for each 24 pixels of em, at least one; nothing grows upward.
    LOGFONTW font = plainFont(10, u"Test Fallback");
    EXPECT_EQ(width(font, u"\u2600"), 10);
    EXPECT_EQ(width(font, u"\u0E01"), 5);
    font.lfWeight = FW_BOLD;
    EXPECT_EQ(width(font, u"\u2600"), 11);
    EXPECT_EQ(drawn(font, u"\u2600", 11, 10), "...........\n...........\n"
                                              ".#########.\n.#########.\n.#########.\n"
                                              ".#########.\n.#########.\n.#########.\n"
                                              "...........\n...........\n");
    font.lfHeight = 48;
    EXPECT_EQ(width(font, u"\u2600"), 50);
}

TEST_F(FontMetrics, aSlantIsMadeWhereTheFamilyHasNone)
{
    LOGFONTW font = plainFont(20);
    const std::string upright = drawn(font, u"W", 26, 20);
    font.lfItalic = 1;
    const std::string slanted = drawn(font, u"W", 26, 20);
    EXPECT_EQ(width(font, u"W"), 20) << "a slant moves no text";
    EXPECT_NE(slanted, upright);
    // 14 rows high with a lean of about one in five: the top row begins about 3 pixels further right than the foot.
    const auto begin = [&](int row) { return slanted.find('#', static_cast<std::size_t>(row) * 27) % 27; };
    EXPECT_EQ(begin(15), 2U);
    EXPECT_EQ(begin(2), 5U);
}

TEST_F(FontMetrics, anUnknownFamilyIsTheFirstFiles)
{
    LOGFONTW font = plainFont(10, u"No such face");
    EXPECT_EQ(width(font, u"a"), 5);
    font.lfWeight = FW_BOLD;
    EXPECT_EQ(width(font, u"a"), 6);
    EXPECT_EQ(metrics(plainFont(10, u"")).tmHeight, 10);
}

TEST_F(FontMetrics, familiesAreFoundWithoutRegardToCase)
{
    // Only the fallback face itself has its own .notdef at 600 for letters; through Test Sans a letter is 500.
    EXPECT_EQ(width(plainFont(10, u"TEST FALLBACK"), u"\u0627"), 4);
    EXPECT_EQ(width(plainFont(10, u"test sans"), u"W"), 10);
}

TEST_F(FontMetrics, aNameThatFillsItsFieldIsReadToItsEnd)
{
    LOGFONTW font = plainFont(10);
    std::fill(std::begin(font.lfFaceName), std::end(font.lfFaceName), u'x');
    EXPECT_EQ(metrics(font).tmHeight, 10);
    HFONT handle = CreateFontIndirectW(&font);
    LOGFONTW back{};
    EXPECT_EQ(GetObjectW(handle, sizeof(back), &back), static_cast<int>(sizeof(back)));
    EXPECT_EQ(back.lfFaceName[LF_FACESIZE - 1], 0);
    DeleteObject(handle);
}

TEST_F(FontMetrics, charactersOfOtherFacesStepInAtTheSameHeight)
{
    const LOGFONTW font = plainFont(10);
    EXPECT_EQ(width(font, u"\u2600"), 10);
    EXPECT_EQ(width(font, u"\u0E01"), 5);
    EXPECT_EQ(width(font, u"a\u2600a"), 20);
    EXPECT_EQ(metrics(font).tmHeight, 10) << "the line stays the main face's";
}

TEST_F(FontMetrics, whatNoFaceHasIsABox)
{
    // .notdef of the main face: advance 600, 800 high.
    EXPECT_EQ(width(plainFont(10), u"\u0905"), 6);
    EXPECT_EQ(drawn(plainFont(10), u"\u2602\u2A00", 16, 10).substr(0, 17), "...........####.\n")
        << "the box of the second is as high as the ascent";
}

TEST_F(FontMetrics, equalDescriptionsHaveHandlesOfTheirOwn)
{
    const LOGFONTW description = plainFont(10);
    HFONT one = CreateFontIndirectW(&description);
    HFONT other = CreateFontIndirectW(&description);
    EXPECT_NE(one, other);
    EXPECT_TRUE(DeleteObject(one));
    HGDIOBJ former = SelectObject(context, other);
    EXPECT_EQ(zb::test::widthOf(context, u"a"), 5);
    SelectObject(context, former);
    EXPECT_TRUE(DeleteObject(other));
}

TEST_F(FontMetrics, aFontDeletedWhileSelectedServesOn)
{
    const LOGFONTW description = plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HGDIOBJ former = SelectObject(context, font);
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_EQ(zb::test::widthOf(context, u"ab"), 10);
    EXPECT_EQ(metricsOf(context).tmHeight, 10);
    SelectObject(context, former);
}

TEST_F(FontMetrics, aNewContextHasTheSystemsFont)
{
    EXPECT_EQ(metricsOf(context).tmHeight, 12) << "12 pixels of em, which is the test face's whole cell";
}

TEST_F(FontMetrics, thousandsOfDescriptionsAndHandlesCome)
{
    for (LONG height = 1; height <= 400; ++height)
    {
        for (int copy = 0; copy < 5; ++copy)
        {
            const SelectedFont font(context, plainFont(height));
            ASSERT_EQ(metricsOf(context).tmHeight, height);
        }
    }
}

TEST_F(FontMetrics, unreadableArgumentsAreRefused)
{
    EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(GetTextMetricsW(context, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    TEXTMETRICW found{};
    EXPECT_FALSE(GetTextMetricsW(nullptr, &found));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST_F(FontMetrics, facesFollowTheDevice)
{
    const LOGFONTW description = plainFont(10);
    const SelectedFont font(context, description);
    EXPECT_EQ(zb::test::widthOf(context, u"W"), 10);
    const auto narrow = writeTestFace(faces.path(), {"Narrow", false, false, {{U'W', U'W', 300, 700}}});
    device.options().fonts.files = {narrow};
    device.reopen();
    EXPECT_EQ(zb::test::widthOf(context, u"W"), 3) << "the same handle, the other device's faces";
}

TEST(FontsOfADevice, filesThatAreNoFontsArePassedOver)
{
    TemporaryFolder folder;
    std::ofstream(folder.path() / "text.ttf") << "this is no font at all";
    std::ofstream(folder.path() / "empty.ttf").flush();
    std::string torn;
    const auto whole = makeTestFace({"Torn", false, false, testSansGlyphs()});
    torn.assign(whole.begin(), whole.begin() + 700);
    std::ofstream(folder.path() / "torn.ttf", std::ios::binary) << torn;
    zb::DeviceOptions options;
    options.fonts = testFonts(folder.path());
    options.fonts.files.insert(options.fonts.files.begin(),
                               {folder.path() / "text.ttf", folder.path() / "empty.ttf", folder.path() / "torn.ttf",
                                folder.path() / "missing.ttf", folder.path()});
    TestDevice device(options);
    DrawingBoard board(10, 10);
    const SelectedFont font(board.context(), plainFont(10));
    EXPECT_EQ(widthOf(board.context(), u"W"), 10);
}

TEST(FontsOfADevice, withoutAnyFaceTextStillHasMeasures)
{
    TemporaryFolder folder;
    zb::DeviceOptions options;
    options.fonts.files = {folder.path() / "missing.ttf"};
    TestDevice device(options);
    DrawingBoard board(40, 10);
    const SelectedFont font(board.context(), plainFont(10));
    EXPECT_EQ(metricsOf(board.context()).tmHeight, 10);
    EXPECT_EQ(widthOf(board.context(), u"abc"), 15) << "half an em each";
    SetBkMode(board.context(), TRANSPARENT);
    EXPECT_TRUE(textOut(board.context(), 0, 0, u"abc \u05D0\u0628"));
    EXPECT_EQ(inkOf(board).right, 0);
}

class HostFonts : public HostTextTest
{
};

TEST_F(HostFonts, tahomaAndBoldTahomaAreFoundOnAnyHost)
{
    TestDevice device;
    DrawingBoard board(10, 10);
    LOGFONTW font = plainFont(11, u"Tahoma");
    const SelectedFont regular(board.context(), font);
    EXPECT_EQ(metricsOf(board.context()).tmHeight, 11);
    const int plain = widthOf(board.context(), u"Appointments of the week");
    font.lfWeight = FW_BOLD;
    const SelectedFont bold(board.context(), font);
    EXPECT_EQ(metricsOf(board.context()).tmHeight, 11);
    EXPECT_GT(widthOf(board.context(), u"Appointments of the week"), plain);
    EXPECT_GT(plain, 24 * 3);
}

TEST_F(HostFonts, everyCellHeightIsExact)
{
    TestDevice device;
    DrawingBoard board(10, 10);
    for (LONG height = 1; height < 60; ++height)
    {
        const SelectedFont font(board.context(), plainFont(height, u"Tahoma"));
        EXPECT_EQ(metricsOf(board.context()).tmHeight, height);
    }
}
} // namespace
