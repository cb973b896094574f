// Plain text of markup, entities, and colours as text.
#include "display/HTMLText.h"

#include "platform/text.h"
#include "support/TestDevice.h"

#include <cstdlib>

namespace
{
using zb::test::utf16;
using zb::test::utf8;

std::string plain(const std::u16string &markup)
{
    WCHAR *text = HTMLToText(markup.c_str());
    const std::string result = utf8(text);
    std::free(text);
    return result;
}

TEST(HTMLToText, tagsGo)
{
    EXPECT_EQ(plain(u"<B>x</B> y<Z z>w"), "x yw");
    EXPECT_EQ(plain(u""), "");
    EXPECT_EQ(plain(u"<B>"), "");
    EXPECT_EQ(plain(u"a>b"), "a>b");
}

TEST(HTMLToText, aLineBreakLeavesNothing)
{
    EXPECT_EQ(plain(u"one<BR>two"), "onetwo");
}

TEST(HTMLToText, aTagEndsAtTheNextClosingBracket)
{
    EXPECT_EQ(plain(u"a<b<c>d"), "ad");
    EXPECT_EQ(plain(u"a<b\">\">c"), "a\">c");
    EXPECT_EQ(plain(u"a<b"), "a");
    EXPECT_EQ(plain(u"a<"), "a");
    EXPECT_EQ(plain(u"<>a"), "a");
}

TEST(HTMLToText, aKnownEntityTakesTheCharacterBehindItAlong)
{
    EXPECT_EQ(plain(u"<B>R&amp;D</B>"), "R&");
    EXPECT_EQ(plain(u"&lt; b"), "<b");
    EXPECT_EQ(plain(u"&lt;"), "<");
    EXPECT_EQ(plain(u"&lt;&gt;x"), "<gt;x");
    EXPECT_EQ(plain(u"&lt; &gt; x"), "<>x");
    EXPECT_EQ(plain(u"&lt;<B>x"), "<B>x");
    EXPECT_EQ(plain(u"a&nbsp;"), utf8(u"a\u00A0"));
    EXPECT_EQ(plain(u"&#233;xy"), utf8(u"\u00E9y"));
}

TEST(HTMLToText, anUnknownEntityStays)
{
    EXPECT_EQ(plain(u"a&b"), "a&b");
    EXPECT_EQ(plain(u"a&b;c"), "a&b;c");
    EXPECT_EQ(plain(u"a&"), "a&");
    EXPECT_EQ(plain(u"&;"), "&;");
    EXPECT_EQ(plain(u"&am<B>p;x"), "&amp;x");
    EXPECT_EQ(plain(u"&&lt;x"), "&<");
}

TEST(HTMLToText, blanksAndLineEndsEndAName)
{
    EXPECT_EQ(plain(u"&l t;x"), "&l t;x");
    EXPECT_EQ(plain(u"&lt ;x"), "&lt ;x");
    EXPECT_EQ(plain(u"&lt\r;x"), "&lt\r;x");
    EXPECT_EQ(plain(u"&lt\n;x"), "&lt\n;x");
}

TEST(HTMLToText, longNamesAreNone)
{
    const std::u16string name(300, u'a');
    EXPECT_EQ(plain(u"&" + name + u";x"), "&" + utf8(name) + ";x");
}

TEST(HTMLToText, aNullTextIsEmpty)
{
    WCHAR *text = HTMLToText(nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text[0], u'\0');
    std::free(text);
}

TEST(HTMLToText, hostileTextsTakeOnePass)
{
    const std::u16string ampersands(1'000'000, u'&');
    EXPECT_EQ(plain(ampersands).size(), 1'000'000U);
    EXPECT_EQ(plain(std::u16string(1'000'000, u'<')), "");
    std::u16string entities;
    for (int i = 0; i < 100'000; ++i)
    {
        entities += u"&lt;-";
    }
    EXPECT_EQ(plain(entities), std::string(100'000, '<'));
}

/// All names in the order of the language's table, from "quot" on.
const std::vector<std::string> &entityNames()
{
    static const std::vector<std::string> names = {
        "quot",   "amp",    "lt",     "gt",     "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",
        "brvbar", "sect",   "uml",    "copy",   "ordf",   "laquo",  "not",    "shy",    "reg",    "macr",
        "deg",    "plusmn", "sup2",   "sup3",   "acute",  "micro",  "para",   "middot", "cedil",  "sup1",
        "ordm",   "raquo",  "frac14", "frac12", "frac34", "iquest", "Agrave", "Aacute", "Acirc",  "Atilde",
        "Auml",   "Aring",  "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",  "Euml",   "Igrave", "Iacute",
        "Icirc",  "Iuml",   "ETH",    "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde", "Ouml",   "times",
        "Oslash", "Ugrave", "Uacute", "Ucirc",  "Uuml",   "Yacute", "THORN",  "szlig",  "agrave", "aacute",
        "acirc",  "atilde", "auml",   "aring",  "aelig",  "ccedil", "egrave", "eacute", "ecirc",  "euml",
        "igrave", "iacute", "icirc",  "iuml",   "eth",    "ntilde", "ograve", "oacute", "ocirc",  "otilde",
        "ouml",   "divide", "oslash", "ugrave", "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml"};
    return names;
}

int codeAt(std::size_t row)
{
    static const int marks[] = {34, 38, 60, 62};
    return row < 4 ? marks[row] : 160 + static_cast<int>(row) - 4;
}

/// The table walked from its beginning, each row by its name and by its number.
int slowEntity(const std::u16string &name)
{
    for (std::size_t row = 0; row < entityNames().size(); ++row)
    {
        if (_wcsicmp(name.c_str(), utf16("&" + entityNames()[row] + ";").c_str()) == 0 ||
            _wcsicmp(name.c_str(), utf16("&#" + std::to_string(codeAt(row)) + ";").c_str()) == 0)
        {
            return codeAt(row);
        }
    }
    return 0;
}

TEST(HTMLEntities, everyNameAndNumber)
{
    ASSERT_EQ(entityNames().size(), 100U);
    for (std::size_t row = 0; row < 100; ++row)
    {
        const std::string name = entityNames()[row];
        // The small letters' names from agrave (row 68) on are hidden by those of the capitals 32 before, except the
        // three that have no capital.
        const bool hidden = row >= 68 && name != "divide" && name != "yuml";
        EXPECT_EQ(GetHTMLEntity(utf16("&" + name + ";").c_str()), codeAt(row) - (hidden ? 32 : 0)) << name;
        EXPECT_EQ(GetHTMLEntity(utf16("&#" + std::to_string(codeAt(row)) + ";").c_str()), codeAt(row)) << name;
    }
}

TEST(HTMLEntities, capitalsComeFirst)
{
    EXPECT_EQ(GetHTMLEntity(u"&eacute;"), 201);
    EXPECT_EQ(GetHTMLEntity(u"&Eacute;"), 201);
    EXPECT_EQ(GetHTMLEntity(u"&EACUTE;"), 201);
    EXPECT_EQ(GetHTMLEntity(u"&#233;"), 233);
    EXPECT_EQ(GetHTMLEntity(u"&szlig;"), 223);
    EXPECT_EQ(GetHTMLEntity(u"&divide;"), 247);
    EXPECT_EQ(GetHTMLEntity(u"&YUML;"), 255);
}

TEST(HTMLEntities, whatIsNone)
{
    for (const WCHAR *name : {u"",       u"&",      u";",     u"&;",        u"amp",   u"&amp",   u"amp;",   u"&amp;;",
                              u"&amp;x", u" &amp;", u"&#;",   u"&#0233;",   u"&#39;", u"&#159;", u"&#256;", u"&#1000;",
                              u"&#-1;",  u"&#x22;", u"&#2a;", u"&frac134;", u"&a;",   u"&zzzz;"})
    {
        EXPECT_EQ(GetHTMLEntity(name), 0) << utf8(name);
    }
    EXPECT_EQ(GetHTMLEntity(nullptr), 0);
}

TEST(HTMLEntities, asTheTableWalkedRowByRow)
{
    std::mt19937 random(8101);
    const std::u16string letters = u"aeiltdmpuorAEIguvc1234&#;n\u0130\u017F\u212A";
    for (int round = 0; round < 20'000; ++round)
    {
        std::u16string name = utf16("&" + entityNames()[random() % 100] + ";");
        if (round % 5 == 0)
        {
            name = u"&#" + utf16(std::to_string(random() % 300)) + u";";
        }
        for (std::size_t change = random() % 3; change > 0; --change)
        {
            name[random() % name.size()] = letters[random() % letters.size()];
        }
        ASSERT_EQ(GetHTMLEntity(name.c_str()), slowEntity(name)) << utf8(name);
    }
}

constexpr COLORREF untouched = 0x12345678;

COLORREF colorOf(const WCHAR *text)
{
    COLORREF color = untouched;
    EXPECT_TRUE(HTMLToColorRef(text, &color)) << utf8(text);
    return color;
}

TEST(HTMLToColorRef, readsRedFirst)
{
    EXPECT_EQ(colorOf(u"#FF0000"), 0x0000FFU);
    EXPECT_EQ(colorOf(u"112233"), 0x332211U);
    EXPECT_EQ(colorOf(u"#abCDef"), 0xEFCDABU);
    EXPECT_EQ(colorOf(u"###00FF00"), 0x00FF00U);
}

TEST(HTMLToColorRef, shortTextsCountFromTheRight)
{
    EXPECT_EQ(colorOf(u"FF"), 0xFF0000U);
    EXPECT_EQ(colorOf(u"0"), 0U);
    EXPECT_EQ(colorOf(u"1234"), 0x341200U);
}

TEST(HTMLToColorRef, ofSevenDigitsTheLastSixCount)
{
    EXPECT_EQ(colorOf(u"F112233"), 0x332211U);
}

TEST(HTMLToColorRef, refusesWhatIsNoColorAndWritesNothing)
{
    for (const WCHAR *text : {u"", u"#", u"FFFFFFFF", u"00000000", u"#g", u"12345g", u" 12", u"12 ", u"1#2", u"+12",
                              u"-1", u"0x12", u"red", u"\uFF11"})
    {
        COLORREF color = untouched;
        EXPECT_FALSE(HTMLToColorRef(text, &color)) << utf8(text);
        EXPECT_EQ(color, untouched) << utf8(text);
    }
    COLORREF color = untouched;
    EXPECT_FALSE(HTMLToColorRef(nullptr, &color));
}

TEST(ColorRefToHTML, writesRedFirst)
{
    WCHAR text[9] = u"xxxxxxxx";
    EXPECT_EQ(ColorRefToHTML(0x00030AFF, text, 8), 7);
    EXPECT_EQ(utf8(text), "#FF0A03");
    EXPECT_EQ(text[8], u'\0');
}

TEST(ColorRefToHTML, tellsTheRoomThatItTakes)
{
    WCHAR text[9] = u"xxxxxxxx";
    EXPECT_EQ(ColorRefToHTML(0, nullptr, 100), 8);
    EXPECT_EQ(ColorRefToHTML(0, text, 7), 8);
    EXPECT_EQ(utf8(text), "xxxxxxxx");
}

TEST(ColorRefToHTML, isReadBack)
{
    std::mt19937 random(8102);
    for (int round = 0; round < 1'000; ++round)
    {
        const COLORREF color = static_cast<COLORREF>(random() & 0xFFFFFFU);
        WCHAR text[8];
        ASSERT_EQ(ColorRefToHTML(color, text, 8), 7);
        ASSERT_EQ(colorOf(text), color);
    }
}
} // namespace
