// The parser as its callers use it: cursor, bookmark, fonts, pictures, plain text, its lock.
#include "display/Markup.h"
#include "support/PlatformThread.h"
#include "support/Repeated.h"

#include <chrono>
#include <mutex>

namespace
{
using namespace zb::test;

class CHTMLParserTest : public DeviceTest
{
  protected:
    void parse(const WCHAR *markup, HWND window = nullptr)
    {
        ASSERT_TRUE(parser.SetHTML(markup));
        ASSERT_EQ(parser.ParseHTML(window), 1);
    }
    LOGFONTW currentFont()
    {
        return describeFont(parser.GetCurrFont());
    }

    Scaling scaling;
    CHTMLParser parser;
};

TEST_F(CHTMLParserTest, anEmptyStringHasNoTokens)
{
    parse(u"");
    EXPECT_FALSE(parser.FirstToken());
    EXPECT_NE(parser.EndOfTokens(), FALSE);
    EXPECT_EQ(parser.GetBackColor(true), 0xFFFFFFU);
}

TEST_F(CHTMLParserTest, parsesNothingWithoutAText)
{
    EXPECT_FALSE(parser.SetHTML(nullptr));
    EXPECT_EQ(parser.ParseHTML(nullptr), 1);
    EXPECT_NE(parser.EndOfTokens(), FALSE);
}

TEST_F(CHTMLParserTest, aNullTextLeavesTheFormerOne)
{
    parser.SetHTML(u"a");
    EXPECT_FALSE(parser.SetHTML(nullptr));
    parser.ParseHTML(nullptr);
    EXPECT_EQ(utf8(parser.GetCurrToken()), "a");
}

TEST_F(CHTMLParserTest, theTextIsReadWhileItIsParsedAlone)
{
    std::u16string markup = u"<A=key>one";
    parse(markup.c_str());
    std::fill(markup.begin(), markup.end(), u'x');
    EXPECT_EQ(utf8(parser.GetCurrToken()), "one");
    EXPECT_EQ(utf8(parser.GetCurrHREF()), "key");
}

TEST_F(CHTMLParserTest, theTextIsReadAsItIsWhenItIsParsed)
{
    std::u16string markup = u"one";
    parser.SetHTML(markup.c_str());
    markup[0] = u'O';
    parser.ParseHTML(nullptr);
    EXPECT_EQ(utf8(parser.GetCurrToken()), "One");
}

TEST_F(CHTMLParserTest, theCursorBeginsOnTheFirstTokenAndStepsPastTheLast)
{
    parse(u"a<BR>b");
    EXPECT_EQ(parser.GetCurrTokenType(), TOKEN_TEXT);
    EXPECT_NE(parser.IsTokenVisibleText(), FALSE);
    parser.NextToken();
    EXPECT_EQ(parser.GetCurrTokenType(), TOKEN_TAG);
    EXPECT_EQ(parser.IsTokenVisibleText(), FALSE);
    parser.NextToken();
    EXPECT_EQ(parser.EndOfTokens(), FALSE);
    parser.NextToken();
    EXPECT_NE(parser.EndOfTokens(), FALSE);
    parser.NextToken();
    EXPECT_NE(parser.EndOfTokens(), FALSE);
    EXPECT_TRUE(parser.FirstToken());
    EXPECT_EQ(utf8(parser.GetCurrToken()), "a");
}

TEST_F(CHTMLParserTest, pastTheEndThereIsNothing)
{
    parse(u"<BODY BGCOLOR=#010203><A=k><P ALIGN=RIGHT><EDITABLE><FONT COLOR=#112233>a");
    parser.NextToken();
    int length = 7;
    EXPECT_EQ(utf8(parser.GetCurrToken(&length)), "");
    EXPECT_EQ(length, 0);
    length = 7;
    EXPECT_EQ(utf8(parser.GetCurrHREF(&length)), "");
    EXPECT_EQ(length, 0);
    EXPECT_EQ(parser.GetCurrFont(), nullptr);
    EXPECT_EQ(parser.GetForeColor(), 0U);
    EXPECT_EQ(parser.GetBackColor(false), 0x030201U);
    EXPECT_EQ(parser.GetCurrTextAlign(), 0x810U);
    EXPECT_FALSE(parser.GetCurrentTokenEditable());
    UINT height = 7;
    EXPECT_EQ(parser.GetCurrTokenBitmap(&height), nullptr);
    EXPECT_EQ(height, 0U);
}

TEST_F(CHTMLParserTest, tellsLengths)
{
    parse(u"<A=four>text");
    int length = 0;
    parser.GetCurrToken(&length);
    EXPECT_EQ(length, 4);
    parser.GetCurrHREF(&length);
    EXPECT_EQ(length, 4);
}

TEST_F(CHTMLParserTest, backgroundsOfRunAndBody)
{
    parse(u"<BODY BGCOLOR=#010203><FONT BGCOLOR=#040506>a");
    EXPECT_EQ(parser.GetBackColor(true), 0x030201U);
    EXPECT_EQ(parser.GetBackColor(false), 0x060504U);
}

TEST_F(CHTMLParserTest, aParseBeginsAnew)
{
    parse(u"<BODY BGCOLOR=#010203><A=k><P ALIGN=RIGHT><EDITABLE><FONT SIZE=5 NAME=X COLOR=#112233><B>a<P ALIGN=?>");
    parse(u"b<P ALIGN=?>c");
    EXPECT_EQ(dumpTokens(parser), (std::vector<std::string>{"text \"b\"", "text \"c\""}));
}

TEST_F(CHTMLParserTest, theFontOfPlainText)
{
    parse(u"a");
    const LOGFONTW font = currentFont();
    EXPECT_EQ(font.lfHeight, 11);
    EXPECT_EQ(font.lfWidth, 0);
    EXPECT_EQ(font.lfEscapement, 0);
    EXPECT_EQ(font.lfOrientation, 0);
    EXPECT_EQ(font.lfWeight, 400);
    EXPECT_EQ(font.lfItalic, 0);
    EXPECT_EQ(font.lfUnderline, 0);
    EXPECT_EQ(font.lfStrikeOut, 0);
    EXPECT_EQ(font.lfCharSet, 255);
    EXPECT_EQ(font.lfOutPrecision, 0);
    EXPECT_EQ(font.lfClipPrecision, 0);
    EXPECT_EQ(font.lfQuality, 0);
    EXPECT_EQ(font.lfPitchAndFamily, 0);
    EXPECT_EQ(utf8(font.lfFaceName), "Tahoma");
}

TEST_F(CHTMLParserTest, everyRunHasAFontOfItsOwnWhichGoesWithIt)
{
    parse(u"a<BR>b<IMG SRC=1>");
    const HFONT first = parser.GetCurrFont();
    parser.NextToken();
    EXPECT_EQ(parser.GetCurrFont(), nullptr);
    parser.NextToken();
    const HFONT second = parser.GetCurrFont();
    parser.NextToken();
    EXPECT_EQ(parser.GetCurrFont(), nullptr);
    EXPECT_NE(first, second);
    LOGFONTW record{};
    EXPECT_NE(GetObjectW(first, sizeof record, &record), 0);
    parser.DeleteAllTokens();
    EXPECT_EQ(GetObjectW(first, sizeof record, &record), 0);
    EXPECT_EQ(GetObjectW(second, sizeof record, &record), 0);
}

TEST_F(CHTMLParserTest, aParseEndsTheFormerFonts)
{
    parse(u"a");
    const HFONT font = parser.GetCurrFont();
    parse(u"b");
    LOGFONTW record{};
    EXPECT_EQ(GetObjectW(font, sizeof record, &record), 0);
}

TEST_F(CHTMLParserTest, fontsGoWithTheParser)
{
    HFONT font = nullptr;
    {
        CHTMLParser shortLived;
        shortLived.SetHTML(u"a");
        shortLived.ParseHTML(nullptr);
        font = shortLived.GetCurrFont();
    }
    LOGFONTW record{};
    EXPECT_EQ(GetObjectW(font, sizeof record, &record), 0);
}

TEST_F(CHTMLParserTest, theFontQualityIsThatOfEveryReset)
{
    parser.SetFontQuality(CLEARTYPE_QUALITY);
    parse(u"a<FONT SIZE=3>b</FONT>c");
    for (; parser.EndOfTokens() == FALSE; parser.NextToken())
    {
        EXPECT_EQ(currentFont().lfQuality, CLEARTYPE_QUALITY);
    }
    parser.SetFontQuality(NONANTIALIASED_QUALITY);
    parse(u"a");
    EXPECT_EQ(currentFont().lfQuality, NONANTIALIASED_QUALITY);
}

TEST_F(CHTMLParserTest, aFontQualityThatComesDuringTheParseCountsAtOnce)
{
    PictureWindow window;
    window.onRequest = [this] { parser.SetFontQuality(NONANTIALIASED_QUALITY); };
    parser.SetFontQuality(CLEARTYPE_QUALITY);
    parse(u"a<IMG SRC=1>b", window.handle());
    EXPECT_EQ(currentFont().lfQuality, CLEARTYPE_QUALITY);
    parser.NextToken();
    parser.NextToken();
    EXPECT_EQ(utf8(parser.GetCurrToken()), "b");
    EXPECT_EQ(currentFont().lfQuality, NONANTIALIASED_QUALITY);
}

/// Kept: only sizes that are asked for follow a scale that changes later.
TEST_F(CHTMLParserTest, theHeightOfPlainTextIsTakenOnce)
{
    parse(u"a");
    g_HIDPI_ZBFontScale = 3;
    parse(u"a<FONT SIZE=0>b</FONT>c");
    EXPECT_EQ(currentFont().lfHeight, 11);
    parser.NextToken();
    EXPECT_EQ(currentFont().lfHeight, 33);
    parser.NextToken();
    EXPECT_EQ(currentFont().lfHeight, 11);
}

// --- Bookmark ----------------------------------------------------------------------------------------------------

TEST_F(CHTMLParserTest, aBookmarkBringsTheCursorBack)
{
    parse(u"a<BR>b<BR>c");
    parser.NextToken();
    parser.NextToken();
    parser.SetBookmark();
    parser.NextToken();
    parser.NextToken();
    parser.GotoBookmark();
    EXPECT_EQ(utf8(parser.GetCurrToken()), "b");
    parser.FirstToken();
    parser.GotoBookmark();
    EXPECT_EQ(utf8(parser.GetCurrToken()), "b");
}

TEST_F(CHTMLParserTest, theSecondBookmarkTakesThePlaceOfTheFirst)
{
    parse(u"a<BR>b");
    parser.SetBookmark();
    parser.NextToken();
    parser.SetBookmark();
    parser.NextToken();
    parser.GotoBookmark();
    EXPECT_EQ(parser.GetCurrTokenType(), TOKEN_TAG);
}

TEST_F(CHTMLParserTest, withoutABookmarkTheCursorStays)
{
    parse(u"a<BR>b");
    parser.NextToken();
    parser.GotoBookmark();
    EXPECT_EQ(parser.GetCurrTokenType(), TOKEN_TAG);
}

TEST_F(CHTMLParserTest, tokensTakeTheBookmarkAlong)
{
    parse(u"a<BR>b");
    parser.NextToken();
    parser.SetBookmark();
    parse(u"c<BR>d");
    parser.GotoBookmark();
    EXPECT_EQ(utf8(parser.GetCurrToken()), "c");
    parser.SetBookmark();
    parser.NextToken();
    parser.DeleteAllTokens();
    parser.GotoBookmark();
    EXPECT_FALSE(parser.FirstToken());
}

TEST_F(CHTMLParserTest, aBookmarkHoldsTheColorOfTheBody)
{
    parse(u"<BODY BGCOLOR=#010203>a");
    parser.SetBookmark();
    parser.GotoBookmark();
    EXPECT_EQ(parser.GetBackColor(true), 0x030201U);
}

// --- Plain text --------------------------------------------------------------------------------------------------

TEST_F(CHTMLParserTest, plainTextIsThatOfEditableRuns)
{
    parse(u"x<EDITABLE>one<BR><B>two</EDITABLE>y<EDITABLE>!");
    WCHAR buffer[32] = u"former text";
    const HFONT font = parser.GetPlainText(buffer, 31);
    EXPECT_EQ(utf8(buffer), "onetwo!");
    EXPECT_EQ(describeFont(font).lfWeight, 700);
}

TEST_F(CHTMLParserTest, plainTextWithoutEditableRuns)
{
    parse(u"x");
    WCHAR buffer[32] = u"former text";
    EXPECT_EQ(parser.GetPlainText(buffer, 31), nullptr);
    EXPECT_EQ(utf8(buffer), "");
}

TEST_F(CHTMLParserTest, plainTextIsCutAtTheLimit)
{
    parse(u"<EDITABLE>one<B>two<I>three");
    WCHAR buffer[32];
    std::fill_n(buffer, 32, u'#');
    const HFONT font = parser.GetPlainText(buffer, 5);
    EXPECT_EQ(utf8(buffer), "onetw");
    EXPECT_EQ(buffer[6], u'#');
    EXPECT_EQ(describeFont(font).lfWeight, 700);
    EXPECT_EQ(describeFont(font).lfItalic, 0);
}

TEST_F(CHTMLParserTest, plainTextStopsWhenTheLimitIsReached)
{
    parse(u"<EDITABLE>one<B>two");
    WCHAR buffer[32];
    const HFONT font = parser.GetPlainText(buffer, 3);
    EXPECT_EQ(utf8(buffer), "one");
    EXPECT_EQ(describeFont(font).lfWeight, 400);
    EXPECT_EQ(parser.GetPlainText(buffer, 0), nullptr);
    EXPECT_EQ(utf8(buffer), "");
}

TEST_F(CHTMLParserTest, plainTextBeginsWithTheFirstTokenWhereverTheCursorIs)
{
    parse(u"<EDITABLE>one<B>two");
    parser.NextToken();
    WCHAR buffer[32];
    parser.GetPlainText(buffer, 31);
    EXPECT_EQ(utf8(buffer), "onetwo");
}

// --- Pictures ----------------------------------------------------------------------------------------------------

TEST_F(CHTMLParserTest, aWindowIsAskedForPictures)
{
    PictureWindow window;
    const HBITMAP bitmap = window.addBitmap(u"17", 4, 4);
    parse(u"<IMG SRC=17 SIZE=9><IMG SRC=\"no.bmp\">", window.handle());
    const std::vector<PictureWindow::Request> expected = {{u"17", 2, window.handle(), 1126, 0},
                                                          {u"no.bmp", 6, window.handle(), 1126, 0}};
    EXPECT_EQ(window.requests(), expected);
    UINT height = 0;
    EXPECT_EQ(parser.GetCurrTokenBitmap(&height), bitmap);
    EXPECT_EQ(height, 9U);
    parser.NextToken();
    EXPECT_EQ(parser.GetCurrTokenBitmap(&height), nullptr);
    EXPECT_EQ(height, 0U);
}

TEST_F(CHTMLParserTest, bitmapsStayTheWindows)
{
    PictureWindow window;
    const HBITMAP bitmap = window.addBitmap(u"17", 4, 4);
    parse(u"<IMG SRC=17>", window.handle());
    parser.DeleteAllTokens();
    BITMAP record{};
    EXPECT_NE(GetObjectW(bitmap, sizeof record, &record), 0);
}

TEST_F(CHTMLParserTest, aWindowThatIsGoneIsNotAsked)
{
    HWND gone = nullptr;
    {
        const PictureWindow window;
        gone = window.handle();
    }
    parse(u"<IMG SRC=17>", gone);
    EXPECT_EQ(dumpTokens(parser), std::vector<std::string>{"image \"17\" length 10"});
}

TEST_F(CHTMLParserTest, sourcesOf260CharactersAreNotAskedFor)
{
    PictureWindow window;
    const std::u16string longest(259, u'p');
    window.addBitmap(longest, 4, 4);
    window.addBitmap(longest + u'p', 4, 4);
    const std::u16string markup = u"<IMG SRC=" + longest + u"><IMG SRC=" + longest + u"p>";
    parse(markup.c_str(), window.handle());
    EXPECT_EQ(window.requests().size(), 1U);
    EXPECT_EQ(dumpTokens(parser), (std::vector<std::string>{"image \"" + utf8(longest) + "\" length 267 bitmap",
                                                            "image \"IMG SRC=" + utf8(longest) + "p\" length 268"}));
}

TEST_F(CHTMLParserTest, keyEditableAndColorsAreThoseOfTextAlone)
{
    parse(u"<A=k><EDITABLE><FONT COLOR=#112233 BGCOLOR=#445566>a<IMG SRC=5><BR>");
    EXPECT_EQ(utf8(parser.GetCurrHREF()), "k");
    EXPECT_TRUE(parser.GetCurrentTokenEditable());
    EXPECT_EQ(parser.GetForeColor(), RGB(0x11, 0x22, 0x33));
    EXPECT_EQ(parser.GetBackColor(false), RGB(0x44, 0x55, 0x66));
    for (const TOKENTYPE type : {TOKEN_IMAGE, TOKEN_TAG})
    {
        parser.NextToken();
        ASSERT_EQ(parser.GetCurrTokenType(), type);
        EXPECT_EQ(utf8(parser.GetCurrHREF()), "") << type;
        EXPECT_FALSE(parser.GetCurrentTokenEditable()) << type;
        EXPECT_EQ(parser.GetForeColor(), 0U) << type;
        EXPECT_EQ(parser.GetBackColor(false), 0U) << type;
        EXPECT_EQ(parser.GetCurrFont(), nullptr) << type;
    }
}

TEST_F(CHTMLParserTest, aVeryLongTagHasItsEffect)
{
    EXPECT_EQ(dumpMarkup(u"<FONT" + std::u16string(6000, u' ') + u"SIZE=2 BGCOLOR=#112233>x"),
              std::vector<std::string>{"text \"x\" height 13 back #112233"});
}

TEST_F(CHTMLParserTest, aWindowMayParseOnTheSameThreadMeanwhile)
{
    PictureWindow window;
    CHTMLParser inner;
    window.onRequest = [&]
    {
        inner.SetHTML(u"<B>inner");
        inner.ParseHTML(nullptr);
    };
    parse(u"<I>a<IMG SRC=17><U>b", window.handle());
    EXPECT_EQ(dumpTokens(inner), std::vector<std::string>{"text \"inner\" weight 700"});
    EXPECT_EQ(dumpTokens(parser),
              (std::vector<std::string>{"text \"a\" italic", "image \"17\" length 10", "text \"b\" italic underline"}));
}

// --- The lock ----------------------------------------------------------------------------------------------------

TEST(CHTMLParserLock, aThreadThatMeetsAParseShowsAnErrorAndEnds)
{
    struct Shown
    {
        std::u16string text;
        UINT flags;
    };
    std::mutex mutex;
    std::vector<Shown> shown;
    zb::DeviceOptions options;
    options.messageBox = [&](std::u16string_view text, std::u16string_view, UINT flags)
    {
        const std::lock_guard guard(mutex);
        shown.push_back({std::u16string(text), flags});
        return IDOK;
    };
    const TestDevice device(options);
    const Scaling scaling;
    PictureWindow window;
    CHTMLParser parser;
    bool returned = false;
    DWORD exitCode = 99;
    window.onRequest = [&]
    {
        PlatformThread other(
            [&]() -> DWORD
            {
                CHTMLParser late;
                late.SetHTML(u"x");
                late.ParseHTML(nullptr);
                returned = true;
                return 7;
            });
        WaitForSingleObject(other.handle(), patience);
        GetExitCodeThread(other.handle(), &exitCode);
    };
    parser.SetHTML(u"<IMG SRC=1>");
    parser.ParseHTML(window.handle());
    EXPECT_FALSE(returned);
    EXPECT_EQ(exitCode, 0U);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(utf8(shown[0].text), "ParseHTML error. Contact support@zembrik.example.");
    EXPECT_EQ(shown[0].flags, 0x40010U);
}

TEST(CHTMLParserLock, theLockIsFreeBehindAParse)
{
    const TestDevice device;
    const Scaling scaling;
    CHTMLParser first;
    first.SetHTML(u"a");
    first.ParseHTML(nullptr);
    int result = 0;
    {
        const PlatformThread other(
            [&]
            {
                CHTMLParser later;
                later.SetHTML(u"b");
                result = later.ParseHTML(nullptr);
            });
    }
    EXPECT_EQ(result, 1);
}

// --- Any text ----------------------------------------------------------------------------------------------------

/// Texts that would take hours if anything were read again and again.
TEST_F(CHTMLParserTest, hostileTextsAreReadInOnePass)
{
    const std::vector<std::u16string> texts = {
        std::u16string(1'000'000, u'<'),
        std::u16string(1'000'000, u'>'),
        std::u16string(1'000'000, u'"'),
        repeated(u"<\"", 500'000),
        repeated(u"<B", 100'000),
        repeated(u"<FONT NAME=\"", 100'000),
        repeated(u"<A=x", 100'000),
        repeated(u"<P ALIGN=?>", 20'000),
        repeated(u"<IMG SRC=5>", 20'000),
        repeated(u"<Z>", 20'000),
        u"<" + std::u16string(1'000'000, u'x'),
        u"<FONT SIZE=" + std::u16string(1'000'000, u'9') + u">x",
        u"<FONT SIZE=" + std::u16string(1'000'000, u' ') + u"9>x",
        u"<A=" + std::u16string(1'000'000, u'k') + u">x",
        u"<IMG SRC=" + std::u16string(1'000'000, u'k') + u">",
        u"<BODY" + std::u16string(1'000'000, u'F') + u">x",
    };
    for (const std::u16string &text : texts)
    {
        parser.SetHTML(text.c_str());
        ASSERT_EQ(parser.ParseHTML(nullptr), 1);
    }
    parse(texts[4].c_str());
    // Every second "<" goes with the tag in front of it: "<B<" and then the text "B".
    EXPECT_EQ(utf8(parser.GetCurrToken()), "B");
}
} // namespace
