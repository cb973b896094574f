// What holds for any markup in any rectangle: what is measured is what is painted; and hostile markup ends.
#include "display/Board.h"
#include "support/Repeated.h"

namespace
{
using namespace zb::test;

std::u16string pick(std::mt19937 &random, const std::vector<std::u16string> &pieces)
{
    return pieces[random() % pieces.size()];
}

std::u16string randomWords(std::mt19937 &random)
{
    const std::u16string letters = u"aaabcdWm   -,;:";
    std::u16string text;
    for (std::size_t count = random() % 14 + 1; count > 0; --count)
    {
        text += letters[random() % letters.size()];
    }
    return text;
}

/// Runs with keys, in several fonts, with alignments that change at line breaks alone.
std::u16string randomParagraphs(std::mt19937 &random)
{
    std::u16string markup;
    for (std::size_t lines = random() % 4 + 1; lines > 0; --lines)
    {
        markup += pick(random, {u"<P ALIGN=LEFT>", u"<P ALIGN=CENTER>", u"<P ALIGN=RIGHT>"});
        for (std::size_t runs = random() % 4; runs > 0; --runs)
        {
            markup += pick(random, {u"<B>", u"</B>", u"<FONT SIZE=-1>", u"<FONT SIZE=4>", u"<FONT SIZE=9>"});
            markup += u"<A=k>" + randomWords(random);
        }
        markup += lines > 1 ? u"<BR>" : u"";
    }
    return markup;
}

/// Everything, in any order.
std::u16string randomMarkup(std::mt19937 &random)
{
    std::u16string markup;
    for (std::size_t count = random() % 12; count > 0; --count)
    {
        markup += pick(random, {u"<BR>", u"<B>", u"</B>", u"<P ALIGN=RIGHT>", u"<P ALIGN=CENTER>", u"</P>", u"<A=k>",
                                u"</A>", u"<FONT SIZE=-3>", u"<FONT SIZE=9 BGCOLOR=#00FFFF>", u"<BODY BGCOLOR=#FFFF00>",
                                u"<IMG SRC=small>", u"<IMG SRC=large>", u"<IMG SRC=large SIZE=9>", u"<IMG SRC=none>"});
        markup += random() % 3 == 0 ? u"" : randomWords(random);
    }
    return markup;
}

class AnyMarkup : public DrawingTest
{
  protected:
    AnyMarkup()
    {
        window.addBitmap(u"small", 7, 5);
        window.addBitmap(u"large", 26, 31);
    }
    HotSpotArray draw(RECT &rect, USHORT indent, DWORD flags)
    {
        HotSpotArray spots;
        DrawHTML(board.context(), &rect, indent, &parser, &spots, flags);
        return spots;
    }
};

TEST_F(AnyMarkup, theMeasuredSizeOfParagraphsIsWhatTheirRunsTake)
{
    std::mt19937 random(8202);
    for (int round = 0; round < 4'000; ++round)
    {
        const std::u16string markup = randomParagraphs(random);
        const RECT rect = {3, 5, static_cast<LONG>(30 + random() % 200), 2'000};
        parse(markup);
        RECT measured = rect;
        draw(measured, 0, DT_CALCRECT);
        RECT painted = rect;
        RECT taken = {rect.left, rect.top, rect.left, rect.top};
        for (const HOTSPOT &spot : draw(painted, 0, 0))
        {
            taken.right = std::max(taken.right, rect.left + spot.rcArea.right);
            taken.bottom = std::max(taken.bottom, rect.top + spot.rcArea.bottom);
        }
        ASSERT_EQ(describe(measured), describe(taken)) << utf8(markup) << " in " << describe(rect);
    }
}

TEST_F(AnyMarkup, textIsPaintedWhereItWasMeasured)
{
    std::mt19937 random(8203);
    for (int round = 0; round < 3'000; ++round)
    {
        const std::u16string markup = randomMarkup(random);
        const LONG width = static_cast<LONG>(random() % 150);
        const RECT rect = {0, 0, random() % 5 == 0 ? 32000 + width : width, 2'000};
        const auto indent = static_cast<USHORT>(random() % 3 * 4);
        parse(markup);
        RECT measured = rect;
        const auto measuredSpots = draw(measured, indent, DT_CALCRECT);
        board.clear();
        RECT painted = rect;
        const auto paintedSpots = draw(painted, indent, 0);
        const std::string where = utf8(markup) + " in " + std::to_string(rect.right);
        // Text lies where it was measured; pictures are hot spots only when they are painted.
        Lines text = describe(paintedSpots);
        std::erase_if(text, [](const std::string &line) { return line.front() != 'k'; });
        ASSERT_EQ(text, describe(measuredSpots)) << where;
    }
}

TEST_F(AnyMarkup, inkStaysInsideTheMeasuredBox)
{
    std::mt19937 random(8204);
    for (int round = 0; round < 400; ++round)
    {
        const std::u16string markup = randomParagraphs(random);
        parse(markup);
        RECT measured = {10, 10, static_cast<LONG>(40 + random() % 200), 190};
        RECT painted = measured;
        draw(measured, 0, DT_CALCRECT);
        board.clear();
        draw(painted, 0, 0);
        const RECT box = {measured.left, measured.top, measured.right, measured.bottom};
        const Picture picture = board.picture();
        for (int y = 0; y < picture.height; ++y)
        {
            for (int x = 0; x < picture.width; ++x)
            {
                const bool inside = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
                ASSERT_TRUE(inside || picture.at(x, y) == 0xFFFFFF) << utf8(markup) << " at " << x << ',' << y;
            }
        }
    }
}

TEST_F(AnyMarkup, paintingTwiceGivesTheSamePixels)
{
    std::mt19937 random(8205);
    for (int round = 0; round < 100; ++round)
    {
        parse(randomMarkup(random));
        const RECT rect = {0, 0, static_cast<LONG>(random() % 300), 200};
        RECT first = rect;
        board.clear();
        draw(first, 3, 0);
        const Picture picture = board.picture();
        RECT second = rect;
        board.clear();
        draw(second, 3, 0);
        ASSERT_TRUE(board.picture() == picture);
    }
}

TEST_F(AnyMarkup, hostileMarkupIsDrawnInOnePass)
{
    const std::vector<std::u16string> texts = {
        std::u16string(200'000, u'x'),
        std::u16string(200'000, u','),
        std::u16string(200'000, u'\u0301'),
        repeated(u"a\u0301\u0302", 50'000),
        repeated(u"<P ALIGN=LEFT>a<P ALIGN=RIGHT>b", 5'000),
        repeated(u"<B>a</B>b", 5'000),
        repeated(u"<IMG SRC=large>", 1'000),
        repeated(u"<IMG SRC=large>a", 5'000),
        repeated(u"<BR>", 20'000),
        u"<FONT SIZE=2147483647>ab cd",
        u"<FONT SIZE=-2147483648>ab cd",
        repeated(u"<FONT SIZE=30000>a<BR>", 2'000),
    };
    for (const std::u16string &text : texts)
    {
        for (const LONG width : {0, 3, 60, 32060})
        {
            parse(text);
            RECT rect = {0, 0, width, 200};
            draw(rect, 5, DT_CALCRECT);
            rect = {0, 0, width, 200};
            draw(rect, 5, 0);
            ASSERT_NE(parser.EndOfTokens(), FALSE);
        }
    }
}

TEST_F(AnyMarkup, rectanglesAnywhere)
{
    constexpr LONG least = std::numeric_limits<LONG>::min();
    constexpr LONG most = std::numeric_limits<LONG>::max();
    for (const LONG left : {least, 0, most})
    {
        for (const LONG right : {least, 0, most})
        {
            for (const DWORD flags : {0U, static_cast<DWORD>(DT_CALCRECT)})
            {
                parse(u"<A=k>ab cd<BR><IMG SRC=large>e<P ALIGN=RIGHT>f<P ALIGN=CENTER>gh");
                RECT rect = {left, right, right, left};
                draw(rect, 0xFFFF, flags);
                ASSERT_NE(parser.EndOfTokens(), FALSE);
                rect = {left, left, right, right};
                MeasureHTML(board.context(), &rect, 0xFFFF, &parser);
            }
        }
    }
}
} // namespace
