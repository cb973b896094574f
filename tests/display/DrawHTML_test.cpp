// Where marked-up text stands, in exact pixels.
#include "display/Board.h"

namespace
{
using namespace zb::test;

constexpr RECT wide = {0, 0, 100, 100};

// --- Wrapping ----------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, aRunThatFitsStandsOnOneLine)
{
    EXPECT_EQ(paint(u"<A=k>abc", wide), Lines{"k 0,0 15,10"});
    EXPECT_EQ(measure(u"abc", wide), "0,0 15,10");
    EXPECT_EQ(paint(u"<A=k>abc", {0, 0, 15, 100}), Lines{"k 0,0 15,10"});
}

TEST_F(DrawingTest, aWordThatNoLineHoldsIsCutWhereItMust)
{
    EXPECT_EQ(paint(u"<A=k>abcdefghij", {0, 0, 22, 100}), (Lines{"k 0,0 20,10", "k 0,10 20,20", "k 0,20 10,30"}));
    EXPECT_EQ(measure(u"abcdefghij", {0, 0, 22, 100}), "0,0 20,30");
}

TEST_F(DrawingTest, linesEndBehindEachOfTheBreakCharacters)
{
    for (const WCHAR ch : std::u16string(u" :-;,"))
    {
        const std::u16string text = std::u16string(u"<A=k>aaa") + ch + u"bbb";
        EXPECT_EQ(paint(text, {0, 0, 22, 100}), (Lines{"k 0,0 20,10", "k 0,10 15,20"})) << utf8(text);
    }
    for (const WCHAR ch : std::u16string(u".!?/_+*=\u00A0"))
    {
        const std::u16string text = std::u16string(u"<A=k>aaa") + ch + u"bbbb";
        EXPECT_EQ(paint(text, {0, 0, 26, 100}).front(), "k 0,0 25,10") << utf8(text);
    }
}

TEST_F(DrawingTest, theBreakCharacterCountsInTheWidth)
{
    // "aaa" would fit, "aaa " does not: the word is cut, and the blank stands alone at the front of the next line.
    EXPECT_EQ(paint(u"<A=k>aaa bbb", {0, 0, 19, 100}), (Lines{"k 0,0 15,10", "k 0,10 5,20", "k 0,20 15,30"}));
}

TEST_F(DrawingTest, theLastBreakThatFitsCounts)
{
    EXPECT_EQ(paint(u"<A=k>a b c d", {0, 0, 29, 100}), (Lines{"k 0,0 20,10", "k 0,10 15,20"}));
    EXPECT_EQ(paint(u"<A=k>a b c d", {0, 0, 30, 100}), (Lines{"k 0,0 30,10", "k 0,10 5,20"}));
}

TEST_F(DrawingTest, runsOfOneLineFollowEachOther)
{
    EXPECT_EQ(paint(u"<A=1>ab<A=2>cd</A>ef<A=3>gh", wide), (Lines{"1 0,0 10,10", "2 10,0 20,10", "3 30,0 40,10"}));
}

TEST_F(DrawingTest, aRunGoesOnBehindAnotherAndWraps)
{
    EXPECT_EQ(paint(u"<A=1>aa <A=2>bb cc", {0, 0, 32, 100}), (Lines{"1 0,0 15,10", "2 15,0 30,10", "2 0,10 10,20"}));
}

TEST_F(DrawingTest, aRunWithoutRoomBehindAnotherBeginsOnTheNextLine)
{
    EXPECT_EQ(paint(u"<A=1>aaaa<A=2>bb", {0, 0, 22, 100}), (Lines{"1 0,0 20,10", "2 0,10 10,20"}));
}

TEST_F(DrawingTest, fontsOfOneLineShareTheirTop)
{
    EXPECT_EQ(paint(u"<A=1>ab<FONT SIZE=9><A=2>c", wide), (Lines{"1 0,0 10,20", "2 10,0 20,20"}));
    EXPECT_EQ(paint(u"<A=1>ab<B><A=2>c", wide), (Lines{"1 0,0 10,10", "2 10,0 16,10"}));
}

TEST_F(DrawingTest, aRunOfWhichNothingFitsIsGivenUpAfterTwoTries)
{
    // Letters of 5 pixels in 4; then those of 2.
    const std::u16string markup = u"<A=1>ab<FONT SIZE=-7><A=2>cd";
    EXPECT_EQ(paint(markup, {0, 0, 4, 100}), Lines{"2 0,10 4,20"});
    EXPECT_EQ(measure(markup, {0, 0, 4, 100}), "0,0 4,20");
}

TEST_F(DrawingTest, everyRunHasItsTwoTries)
{
    // The first takes a line and is given up on the second, which the next one tries as well, and then the third.
    EXPECT_EQ(paint(u"<A=1>a<A=2>b<FONT SIZE=-7><A=3>cd", {0, 0, 4, 100}), Lines{"3 0,20 4,30"});
}

TEST_F(DrawingTest, aRunThatGoesOnHasItsTriesAnew)
{
    // In a rectangle of 12: the wide letter has no room behind "a", but a line of its own.
    EXPECT_EQ(paint(u"<A=1>a<A=2>WbW", {0, 0, 12, 100}),
              (Lines{"1 0,0 5,10", "2 0,10 10,20", "2 0,20 5,30", "2 0,30 10,40"}));
}

TEST_F(DrawingTest, noWidthAtAllEndsWell)
{
    EXPECT_EQ(paint(u"<A=1>ab cd", {0, 0, 0, 100}), Lines{});
    EXPECT_EQ(paint(u"<A=1>ab cd", {20, 0, 10, 100}), Lines{});
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<IMG SRC=5>", {0, 0, 0, 100}), Lines{"5 0,10 10,20"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,10 10,20");
}

// --- Line breaks -------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, aLineBreakEndsTheLine)
{
    EXPECT_EQ(paint(u"<A=1>a<BR><A=2>bcd", wide), (Lines{"1 0,0 5,10", "2 0,10 15,20"}));
    EXPECT_EQ(measure(u"ab<BR>c", wide), "0,0 10,20");
}

TEST_F(DrawingTest, anEmptyLineHasNoHeight)
{
    EXPECT_EQ(paint(u"a<BR><BR><A=1>b", wide), Lines{"1 0,10 5,20"});
    EXPECT_EQ(paint(u"a<BR> <BR><A=1>b", wide), Lines{"1 0,20 5,30"});
    EXPECT_EQ(paint(u"<BR><A=1>b", wide), Lines{"1 0,0 5,10"});
    EXPECT_EQ(measure(u"a<BR>", wide), "0,0 5,10");
}

TEST_F(DrawingTest, eachLineHasItsOwnHeight)
{
    EXPECT_EQ(paint(u"<A=1>a<BR><FONT SIZE=9><A=2>b<BR><FONT SIZE=-1><A=3>c", wide),
              (Lines{"1 0,0 5,10", "2 0,10 10,30", "3 0,30 5,40"}));
}

TEST_F(DrawingTest, wrappedRestsAreMeasuredFromWhereTheyBegin)
{
    // The wide font stands on the first line alone.
    EXPECT_EQ(paint(u"<FONT SIZE=9><A=1>aa<FONT SIZE=-1><A=2>bb cc dd", {0, 0, 35, 100}),
              (Lines{"1 0,0 20,20", "2 20,0 35,20", "2 0,20 25,30"}));
}

// --- Indent ------------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, linesBehindTheFirstAreIndented)
{
    const RECT narrow = {0, 0, 40, 100};
    EXPECT_EQ(paint(u"<A=1>aaa bbb ccc", narrow, 10), (Lines{"1 0,0 40,10", "1 10,10 25,20"}));
    EXPECT_EQ(paint(u"<A=1>a<BR>b", wide, 10), (Lines{"1 0,0 5,10", "1 10,10 15,20"}));
}

TEST_F(DrawingTest, theIndentNarrowsTheLine)
{
    EXPECT_EQ(paint(u"<A=1>aaa bbb ccc", {0, 0, 25, 100}, 10),
              (Lines{"1 0,0 20,10", "1 10,10 25,20", "1 10,20 15,30", "1 10,30 25,40"}));
}

TEST_F(DrawingTest, theFirstLineIsNeverIndented)
{
    EXPECT_EQ(paint(u"<A=1>a<BR>b", {5, 7, 100, 100}, 10), (Lines{"1 0,0 5,10", "1 10,10 15,20"}));
}

TEST_F(DrawingTest, aLineAtTheVeryTopIsNotIndented)
{
    EXPECT_EQ(paint(u"<A=1>a<BR>b<BR>c", {0, -10, 100, 100}, 10),
              (Lines{"1 0,0 5,10", "1 0,10 5,20", "1 10,20 15,30"}));
}

TEST_F(DrawingTest, linesAboveTheTopAreIndented)
{
    EXPECT_EQ(paint(u"<A=1>a<BR>b<BR>c", {0, -15, 100, 100}, 10),
              (Lines{"1 0,0 5,10", "1 10,10 15,20", "1 10,20 15,30"}));
}

TEST_F(DrawingTest, rightAlignedLinesHaveNoIndent)
{
    EXPECT_EQ(paint(u"<P ALIGN=RIGHT><A=1>a<BR>b", wide, 10), (Lines{"1 95,0 100,10", "1 95,10 100,20"}));
}

TEST_F(DrawingTest, centredLinesAreIndentedWhereARunWrapsAlone)
{
    EXPECT_EQ(paint(u"<P ALIGN=CENTER><A=1>a<BR>b", wide, 10), (Lines{"1 47,0 52,10", "1 47,10 52,20"}));
    // Lines of 20 and 15 pixels in 31; the second is moved by the indent, and loses its last letter by that.
    EXPECT_EQ(paint(u"<P ALIGN=CENTER><A=1>aaa bbb", {0, 0, 31, 100}, 10),
              (Lines{"1 5,0 25,10", "1 18,10 28,20", "1 23,20 28,30"}));
}

// --- Alignment ---------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, alignmentsOfAWholeLine)
{
    EXPECT_EQ(paint(u"<A=1>abc", wide), Lines{"1 0,0 15,10"});
    EXPECT_EQ(paint(u"<P ALIGN=CENTER><A=1>abc", wide), Lines{"1 42,0 57,10"});
    EXPECT_EQ(paint(u"<P ALIGN=RIGHT><A=1>abc", wide), Lines{"1 85,0 100,10"});
}

TEST_F(DrawingTest, rightAlignedTextStandsAtTheEndOfALine)
{
    EXPECT_EQ(paint(u"<BODY BGCOLOR=#FFFFFF><A=1>x<P ALIGN=RIGHT><A=2>y", wide),
              (Lines{"1 0,0 5,10", "2 95,0 100,10"}));
    EXPECT_EQ(measure(u"<BODY BGCOLOR=#FFFFFF>x<P ALIGN=RIGHT>y", wide), "0,0 100,10");
}

TEST_F(DrawingTest, rightAlignedTextWithoutRoomGoesOneLineDown)
{
    const std::u16string nineteen(19, u'x');
    EXPECT_EQ(paint(u"<A=1>" + nineteen + u"<P ALIGN=RIGHT><A=2>y", wide), (Lines{"1 0,0 95,10", "2 95,0 100,10"}));
    EXPECT_EQ(paint(u"<A=1>x" + nineteen + u"<P ALIGN=RIGHT><A=2>y", wide), (Lines{"1 0,0 100,10", "2 95,10 100,20"}));
    EXPECT_EQ(measure(u"x" + nineteen + u"<P ALIGN=RIGHT>y", wide), "0,0 100,20");
}

TEST_F(DrawingTest, rightAlignedTextStaysOnTheLineThatDoesNotWrap)
{
    const std::u16string twenty(20, u'x');
    EXPECT_EQ(paint(u"<A=1>" + twenty + u"<P ALIGN=RIGHT><A=2>y", {0, 0, 32100, 100}),
              (Lines{"1 0,0 100,10", "2 95,0 100,10"}));
}

TEST_F(DrawingTest, aLineThatChangesItsAlignmentIsMeasuredInParts)
{
    // Behind a line break each part is placed by its own width; the first line is placed by all of it.
    EXPECT_EQ(paint(u"<P ALIGN=CENTER><A=1>bb<P ALIGN=LEFT><A=2>ccc", wide), (Lines{"1 37,0 47,10", "2 0,0 15,10"}));
    EXPECT_EQ(paint(u"a<BR><P ALIGN=CENTER><A=1>bb<P ALIGN=LEFT><A=2>ccc", wide),
              (Lines{"1 45,10 55,20", "2 0,10 15,20"}));
}

TEST_F(DrawingTest, aPartInTheMiddleOfALineIsPlacedByItsOwnWidth)
{
    EXPECT_EQ(paint(u"<A=1>x<P ALIGN=CENTER><A=2>bb<P ALIGN=LEFT><A=3>ccc", wide),
              (Lines{"1 0,0 5,10", "2 45,0 55,10", "3 0,0 15,10"}));
}

TEST_F(DrawingTest, aLineThatARunBeginsByWrappingIsPlacedByAllOfIt)
{
    EXPECT_EQ(paint(u"<P ALIGN=CENTER><A=1>aaa bb<P ALIGN=LEFT><A=2>c", {0, 0, 22, 100}),
              (Lines{"1 1,0 21,10", "1 3,10 13,20", "2 0,10 5,20"}));
}

TEST_F(DrawingTest, centredTextInsideALineIsIndented)
{
    EXPECT_EQ(paint(u"<A=1>a<P ALIGN=CENTER><A=2>b", wide, 10), (Lines{"1 0,0 5,10", "2 47,0 52,10"}));
    EXPECT_EQ(paint(u"z<BR><A=1>a<P ALIGN=CENTER><A=2>b", wide, 10), (Lines{"1 10,10 15,20", "2 57,10 62,20"}));
}

TEST_F(DrawingTest, leftAlignedTextInsideALineGoesBackToItsIndent)
{
    EXPECT_EQ(paint(u"z<BR><P ALIGN=RIGHT><A=1>a<P ALIGN=LEFT><A=2>b", wide, 10),
              (Lines{"1 95,10 100,20", "2 10,10 15,20"}));
}

TEST_F(DrawingTest, alignmentInsideTheFirstLineIsIndentedBelowTheVeryTop)
{
    const RECT low = {0, 5, 100, 100};
    const std::u16string center = u"<A=1>a<P ALIGN=CENTER><A=2>b";
    EXPECT_EQ(paint(center, low, 10), (Lines{"1 0,0 5,10", "2 57,0 62,10"}));
    EXPECT_EQ(paint(center, wide, 10), (Lines{"1 0,0 5,10", "2 47,0 52,10"}));
    // The first line is placed by all of it: 10 pixels at the right.
    const std::u16string left = u"<P ALIGN=RIGHT><A=1>a<P ALIGN=LEFT><A=2>b";
    EXPECT_EQ(paint(left, low, 10), (Lines{"1 90,0 95,10", "2 10,0 15,10"}));
    EXPECT_EQ(paint(left, wide, 10), (Lines{"1 90,0 95,10", "2 0,0 5,10"}));
}

TEST_F(DrawingTest, theLineIsAsHighAsItsLastAlignedPart)
{
    EXPECT_EQ(paint(u"<FONT SIZE=9><A=1>a<FONT SIZE=-1><P ALIGN=RIGHT><A=2>b<BR><A=3>c", wide),
              (Lines{"1 0,0 10,20", "2 95,0 100,10", "3 95,10 100,20"}));
}

// --- No wrapping -------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, aRightEdgeBeyond32000AsksForLinesThatDoNotWrap)
{
    const std::u16string sixty(60, u'x');
    EXPECT_EQ(measure(sixty, {0, 0, 32100, 0}), "0,0 300,10");
    EXPECT_EQ(measure(sixty, {10, 5, 32110, 0}), "10,5 310,15");
    EXPECT_EQ(measure(sixty, {0, 0, 32000, 0}), "0,0 300,10");
    EXPECT_EQ(measure(u"aa bb", {0, 0, 32005, 0}), "0,0 25,10");
    EXPECT_EQ(paint(u"<A=1>aa bb", {0, 0, 32005, 100}), Lines{"1 0,0 25,10"});
}

TEST_F(DrawingTest, theEdgeIsWrittenBackWithoutThe32000)
{
    parse(u"<FONT SIZE=-1>aa bb");
    RECT rect = {0, 0, 32005, 100};
    DrawHTML(board.context(), &rect, 0, &parser, nullptr, 0);
    EXPECT_EQ(describe(rect), "0,0 5,100");
    rect = {0, 0, 32000, 100};
    DrawHTML(board.context(), &rect, 0, &parser, nullptr, 0);
    EXPECT_EQ(describe(rect), "0,0 32000,100");
}

TEST_F(DrawingTest, aLineOf32000PixelsWrapsAfterAll)
{
    const std::u16string text(6401, u'x'); // 32,005 pixels
    EXPECT_EQ(measure(text, {0, 0, 64000, 0}), "0,0 32000,20");
}

/// Runs that do not wrap end at x 32,000 wherever the rectangle begins, but the line is measured from its left.
TEST_F(DrawingTest, noRunGoesBeyondX32000)
{
    const std::u16string text(6399, u'x'); // 31,995 pixels
    EXPECT_EQ(paint(u"<A=1>" + text, {10, 0, 64010, 100}), (Lines{"1 0,0 31990,10", "1 0,10 5,20"}));
    EXPECT_EQ(paint(u"<A=1>" + text, {5, 0, 64005, 100}), Lines{"1 0,0 31995,10"});
}

// --- Pictures ----------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, aPictureIsScaledAndCentredInItsLine)
{
    window.addBitmap(u"5", 32, 32, RGB(0, 0, 255));
    EXPECT_EQ(paint(u"<FONT SIZE=9>a<IMG SRC=5 SIZE=16>", wide), Lines{"5 10,0 26,20"});
    EXPECT_EQ(board.boxOf(0x0000FF), "10,2 26,18");
}

TEST_F(DrawingTest, aPictureIsNeverEnlarged)
{
    window.addBitmap(u"5", 6, 8);
    EXPECT_EQ(paint(u"<IMG SRC=5 SIZE=9>", wide), Lines{"5 0,0 6,8"});
    EXPECT_EQ(paint(u"<IMG SRC=5 SIZE=8>", wide), Lines{"5 0,0 6,8"});
    EXPECT_EQ(paint(u"<IMG SRC=5 SIZE=-1>", wide), Lines{"5 0,0 6,8"});
    EXPECT_EQ(paint(u"<IMG SRC=5 SIZE=7>", wide), Lines{"5 0,0 5,7"}); // 7 / 8 * 6 = 5.25
    EXPECT_EQ(paint(u"<IMG SRC=5>", wide), Lines{"5 0,0 6,8"});
}

/// In single precision 13 / 22 * 22 is a little less than 13, and 3 / 37 * 37 a little less than 3.
TEST_F(DrawingTest, widthsOfScaledPicturesAreCountedInSinglePrecision)
{
    window.addBitmap(u"5", 22, 22);
    window.addBitmap(u"6", 37, 37);
    EXPECT_EQ(paint(u"<IMG SRC=5 SIZE=13>", wide), Lines{"5 0,0 12,13"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,0 12,13");
    EXPECT_EQ(paint(u"<IMG SRC=6 SIZE=3>", wide), Lines{"6 0,0 2,3"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,0 2,3");
}

TEST_F(DrawingTest, theDescentBeforeAPictureCounts)
{
    window.addBitmap(u"5", 20, 20);
    // A font of 15 pixels has a descent of 3.
    EXPECT_EQ(measure(u"<FONT SIZE=4>W<IMG SRC=5>", wide), "0,0 35,23");
    EXPECT_EQ(measure(u"<IMG SRC=5><FONT SIZE=4>W", wide), "0,0 35,20");
}

TEST_F(DrawingTest, aPictureWithoutRoomGoesToTheNextLine)
{
    window.addBitmap(u"5", 10, 10);
    // The first line has been measured with the picture: a descent of 2 and its 10 pixels.
    EXPECT_EQ(paint(u"<A=1>aaaa<IMG SRC=5>", {0, 0, 25, 100}), (Lines{"1 0,0 20,12", "5 0,12 10,22"}));
    EXPECT_EQ(measure(u"aaaa<IMG SRC=5>", {0, 0, 25, 100}), "0,0 25,22");
    EXPECT_EQ(paint(u"<A=1>aaaa<IMG SRC=5>", {0, 0, 30, 100}), (Lines{"1 0,0 20,12", "5 20,0 30,12"}));
}

TEST_F(DrawingTest, aPictureOnANewLineIsIndentedAsTheLineIs)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"aaaa<IMG SRC=5>", {0, 0, 25, 100}, 6), Lines{"5 6,12 16,22"});
    EXPECT_EQ(paint(u"<P ALIGN=CENTER>aaaa<IMG SRC=5>", {0, 0, 25, 100}, 6), Lines{"5 7,12 17,22"});
    EXPECT_EQ(paint(u"<P ALIGN=RIGHT>aaaa<IMG SRC=5>", {0, 0, 25, 100}, 6), Lines{"5 15,12 25,22"});
}

TEST_F(DrawingTest, aPictureWiderThanTheLineEndsTheLineOnce)
{
    window.addBitmap(u"5", 30, 10);
    EXPECT_EQ(paint(u"<IMG SRC=5>", {0, 0, 20, 100}), Lines{"5 0,10 30,20"});
    EXPECT_EQ(measure(u"<IMG SRC=5>", {0, 0, 20, 100}), "0,0 30,20");
}

TEST_F(DrawingTest, picturesDoNotWrapWhereLinesDoNot)
{
    window.addBitmap(u"5", 30, 10);
    EXPECT_EQ(paint(u"aa<IMG SRC=5>", {0, 0, 32020, 100}), Lines{"5 10,0 40,12"});
}

TEST_F(DrawingTest, picturesThatCannotBeHadTakeNoPlace)
{
    window.addBitmap(u"thin", 1, 20);
    window.addBitmap(u"flat", 20, 1);
    window.addBitmap(u"least", 2, 2);
    DeleteObject(window.addBitmap(u"gone", 20, 20));
    for (const WCHAR *source : {u"none", u"thin", u"flat", u"gone"})
    {
        EXPECT_EQ(paint(std::u16string(u"<A=1>a<IMG SRC=") + source + u"><A=2>b", wide),
                  (Lines{"1 0,0 5,10", "2 5,0 10,10"}))
            << utf8(source);
    }
    EXPECT_EQ(paint(u"<A=1>a<IMG SRC=least><A=2>b", wide), (Lines{"1 0,0 5,10", "least 5,0 7,10", "2 7,0 12,10"}));
}

TEST_F(DrawingTest, picturesFollowTheAlignment)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<A=1>a<P ALIGN=RIGHT><IMG SRC=5>", wide), (Lines{"1 0,0 5,12", "5 90,0 100,10"}));
    EXPECT_EQ(paint(u"z<BR><A=1>a<P ALIGN=CENTER><IMG SRC=5>", wide, 8), (Lines{"1 8,10 13,20", "5 45,10 55,20"}));
}

TEST_F(DrawingTest, aPictureAtTheRightWithoutRoomGoesOneLineDown)
{
    window.addBitmap(u"5", 10, 10);
    const std::u16string nineteen(19, u'x');
    const std::u16string picture = u"<P ALIGN=RIGHT><IMG SRC=5>";
    EXPECT_EQ(paint(u"<A=1>" + nineteen.substr(1) + picture, wide), (Lines{"1 0,0 90,12", "5 90,0 100,10"}));
    // Behind text the line has been measured with the picture: a descent of 2 and its 10 pixels.
    EXPECT_EQ(paint(u"<A=1>" + nineteen + picture, wide), (Lines{"1 0,0 95,12", "5 90,10 100,20"}));
    EXPECT_EQ(board.boxOf(0x0000FF), "90,10 100,20");
    EXPECT_EQ(measure(nineteen + picture, wide), "0,0 100,20");
    EXPECT_EQ(paint(u"<A=1>" + nineteen + picture, {0, 0, 32100, 100}), (Lines{"1 0,0 95,12", "5 90,0 100,10"}));
}

TEST_F(DrawingTest, aPictureThatDoesNotFitTheRectangleIsNotPaintedAndKeepsItsPlace)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<IMG SRC=5><A=1>a", {0, 0, 100, 10}), (Lines{"5 0,0 10,10", "1 10,0 15,10"}));
    EXPECT_EQ(paint(u"<IMG SRC=5><A=1>a", {0, 0, 100, 9}), Lines{"1 10,0 15,10"});
    EXPECT_EQ(board.boxOf(0x0000FF), "none");
    // The picture would fit, its line does not.
    EXPECT_EQ(paint(u"<FONT SIZE=9><IMG SRC=5><A=1>a", {0, 0, 100, 19}), Lines{"1 10,0 20,20"});
    EXPECT_EQ(board.boxOf(0x0000FF), "none");
}

TEST_F(DrawingTest, aPictureThatBeginsAboveTheTopIsNotPainted)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<IMG SRC=5>", {0, -1, 100, 100}), Lines{});
    EXPECT_EQ(board.boxOf(0x0000FF), "none");
}

/// Kept.
TEST_F(DrawingTest, thePlaceOfAPictureHas16Bits)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<IMG SRC=5>", {0, 65'536, 100, 65'600}), Lines{"5 0,0 10,10"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,0 10,10");
    EXPECT_EQ(paint(u"<IMG SRC=5>", {0, 65'543, 100, 65'600}), Lines{"5 0,0 10,10"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,7 10,17");
}

TEST_F(DrawingTest, thePlaceOfAPictureIsCutTowardZero)
{
    window.addBitmap(u"5", 32, 32);
    // A line of 21 pixels from -3 on: 2.5 - 3 is nearly 0.
    EXPECT_EQ(paint(u"<FONT SIZE=10><IMG SRC=5 SIZE=16>a", {0, -3, 100, 100}), Lines{"5 0,0 16,21"});
    EXPECT_EQ(board.boxOf(0x0000FF), "0,0 16,16");
}

TEST_F(DrawingTest, theKeyColorOfPicturesLetsThrough)
{
    window.addBitmap(u"5", 10, 10, RGB(0, 255, 0));
    EXPECT_EQ(paint(u"<IMG SRC=5>", wide), Lines{"5 0,0 10,10"});
    EXPECT_EQ(board.inkBox(), "none");
}

TEST_F(DrawingTest, picturesAreHotSpotsOfTheirSourceAlone)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<A=key><IMG SRC=5></A>", wide), Lines{"5 0,0 10,10"});
}

TEST_F(DrawingTest, aPictureOfAnEmptySourceIsAHotSpotToo)
{
    window.addBitmap(u"", 10, 10);
    EXPECT_EQ(paint(u"<IMG SRC=>", wide), Lines{" 0,0 10,10"});
}

// --- Hot spots ---------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, hotSpotsLieInTheRectangle)
{
    EXPECT_EQ(paint(u"x<A=1>abc", {30, 40, 100, 100}), Lines{"1 5,0 20,10"});
}

TEST_F(DrawingTest, formerHotSpotsGo)
{
    parse(u"<FONT SIZE=-1><A=1>a");
    HotSpotArray spots(3);
    RECT rect = wide;
    DrawHTML(board.context(), &rect, 0, &parser, &spots, 0);
    EXPECT_EQ(describe(spots), Lines{"1 0,0 5,10"});
    parse(u"");
    DrawHTML(board.context(), &rect, 0, &parser, &spots, 0);
    EXPECT_TRUE(spots.empty());
}

TEST_F(DrawingTest, theKeyOfAHotSpotHasZerosBehindIt)
{
    parse(u"<FONT SIZE=-1><A=12>a");
    HotSpotArray spots;
    RECT rect = wide;
    DrawHTML(board.context(), &rect, 0, &parser, &spots, 0);
    ASSERT_EQ(spots.size(), 1U);
    EXPECT_TRUE(std::all_of(spots[0].szKey + 2, std::end(spots[0].szKey), [](WCHAR ch) { return ch == 0; }));
    EXPECT_EQ(std::size(spots[0].szKey), 260U);
}

TEST_F(DrawingTest, theLongestSourceOfAPictureIsItsKeyAsAWhole)
{
    const std::u16string longest = u"a" + std::u16string(257, u'p') + u"z";
    window.addBitmap(longest, 10, 10);
    parse(u"<IMG SRC=" + longest + u">");
    HotSpotArray spots;
    RECT rect = wide;
    DrawHTML(board.context(), &rect, 0, &parser, &spots, 0);
    ASSERT_EQ(spots.size(), 1U);
    EXPECT_EQ(spots[0].szKey[259], 0);
    EXPECT_EQ(utf8(spots[0].szKey), utf8(longest));
}

TEST_F(DrawingTest, measuringFindsTheHotSpotsOfTextToo)
{
    window.addBitmap(u"5", 10, 10);
    EXPECT_EQ(paint(u"<A=1>a<IMG SRC=5>", wide, 0, DT_CALCRECT), Lines{"1 0,0 5,12"});
}

// --- Painting ----------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, measuringPaintsNothing)
{
    window.addBitmap(u"5", 10, 10);
    paint(u"abc<IMG SRC=5>", wide, 0, DT_CALCRECT);
    EXPECT_EQ(board.inkBox(), "none");
}

TEST_F(DrawingTest, paintingLeavesTheRectangle)
{
    parse(u"<FONT SIZE=-1>a<BR>b");
    RECT rect = {3, 4, 100, 90};
    DrawHTML(board.context(), &rect, 0, &parser, nullptr, 0);
    EXPECT_EQ(describe(rect), "3,4 100,90");
    EXPECT_NE(parser.EndOfTokens(), FALSE);
}

TEST_F(DrawingTest, textStandsWhereItsHotSpotIs)
{
    EXPECT_EQ(paint(u"x<BR>x<A=1><FONT SIZE=-1 COLOR=#102030 BGCOLOR=#102030>abc", {7, 9, 100, 100}),
              Lines{"1 5,10 20,20"});
    EXPECT_EQ(board.boxOf(0x102030), "12,19 27,29");
}

TEST_F(DrawingTest, colorsOfTextAndBackground)
{
    paint(u"<FONT SIZE=-1 COLOR=#FF0000 BGCOLOR=#0000FF>b", wide);
    EXPECT_EQ(board.boxOf(0x0000FF), "0,0 5,10");
    EXPECT_EQ(board.boxOf(0xFF0000), "1,3 4,8");
}

TEST_F(DrawingTest, theBodysOwnBackgroundIsNotPainted)
{
    paint(u"<BODY BGCOLOR=#00FFFF><FONT SIZE=-1>b", wide);
    EXPECT_EQ(board.inkBox(), "1,3 4,8");
}

TEST_F(DrawingTest, theBodyThatStandsInTheEndCounts)
{
    paint(u"<FONT SIZE=-1 BGCOLOR=#00FFFF>b<BODY BGCOLOR=#00FFFF>", wide);
    EXPECT_EQ(board.boxOf(0x00FFFF), "none");
}

/// Kept.
TEST_F(DrawingTest, aPlainRunBehindAColoredOneIsPaintedOnItsColor)
{
    paint(u"a<FONT SIZE=-1 BGCOLOR=#00FFFF>b<FONT SIZE=-1>cd", wide);
    EXPECT_EQ(board.boxOf(0x00FFFF), "5,0 20,10");
    paint(u"a<FONT SIZE=-1 BGCOLOR=#00FFFF>b<FONT SIZE=-1>c<BR>d", wide);
    EXPECT_EQ(board.boxOf(0x00FFFF), "0,0 15,20");
    paint(u"ab", wide);
    EXPECT_EQ(board.boxOf(0x00FFFF), "none");
}

TEST_F(DrawingTest, aBackgroundNextToTheBodysEndsAColoredOne)
{
    paint(u"a<FONT SIZE=-1 BGCOLOR=#00FFFF>b<FONT SIZE=-1 BGCOLOR=#FFFFFE>cd", wide);
    EXPECT_EQ(board.boxOf(0x00FFFF), "5,0 10,10");
    EXPECT_EQ(board.boxOf(0xFFFFFE), "10,0 20,10");
}

TEST_F(DrawingTest, selectedTextHasTheHighlightsColorAndNoBackground)
{
    paint(u"<FONT SIZE=-1 COLOR=#FF0000 BGCOLOR=#00FFFF>b", wide, 0, DRAWHTML_SELECTED);
    const COLORREF color = GetSysColor(COLOR_HIGHLIGHTTEXT);
    EXPECT_EQ(board.boxOf(0x00FFFF), "none");
    EXPECT_EQ(board.boxOf(0xFF0000), "none");
    EXPECT_EQ(GetTextColor(board.context()), color);
    EXPECT_EQ(GetBkMode(board.context()), TRANSPARENT);
}

TEST_F(DrawingTest, textBeginsTransparent)
{
    SetBkMode(board.context(), OPAQUE);
    SetBkColor(board.context(), RGB(255, 0, 0));
    paint(u"b", wide);
    EXPECT_EQ(board.boxOf(0xFF0000), "none");
}

TEST_F(DrawingTest, theFormerFontIsSelectedAgain)
{
    const HGDIOBJ former = GetCurrentObject(board.context(), OBJ_FONT);
    paint(u"b<B>c", wide);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_FONT), former);
    measure(u"b", wide);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_FONT), former);
}

TEST_F(DrawingTest, aLineWhoseBaselineLiesBelowTheFootIsNotPainted)
{
    const std::u16string markup = u"<A=1>A<BR><FONT SIZE=-1 COLOR=#FF0000>B";
    // The second line's baseline is 8 below its top at 10.
    EXPECT_EQ(paint(markup, {0, 0, 100, 18}), (Lines{"1 0,0 5,10", "1 0,10 5,20"}));
    EXPECT_EQ(board.boxOf(0xFF0000), "1,11 4,18");
    EXPECT_EQ(paint(markup, {0, 0, 100, 17}), (Lines{"1 0,0 5,10", "1 0,10 5,20"}));
    EXPECT_EQ(board.boxOf(0xFF0000), "none");
}

TEST_F(DrawingTest, theLowestFontsDescentCounts)
{
    // Beside a font of 20 pixels with a descent of 4 the line's baseline is taken for 16.
    const std::u16string markup = u"<FONT SIZE=-1 COLOR=#FF0000>b<FONT SIZE=9 COLOR=#00FF00>c";
    paint(markup, {0, 0, 100, 16});
    EXPECT_EQ(board.boxOf(0xFF0000), "1,3 4,8");
    paint(markup, {0, 0, 100, 15});
    EXPECT_EQ(board.inkBox(), "none");
}

TEST_F(DrawingTest, anAlignedPartHasTheDescentOfItsLine)
{
    // The line's descent is 4; the part at the right is 10 high, so its baseline is taken for 6.
    const std::u16string markup = u"<FONT SIZE=9>a<FONT SIZE=-1 COLOR=#FF0000><P ALIGN=RIGHT>b";
    paint(markup, {0, 0, 100, 6});
    EXPECT_EQ(board.inkBox(), "96,3 99,8");
    paint(markup, {0, 0, 100, 5});
    EXPECT_EQ(board.inkBox(), "none");
}

TEST_F(DrawingTest, linesAboveTheTopAreNotPainted)
{
    // Baselines at -12 and -2, then at 8.
    paint(u"<FONT SIZE=-1 COLOR=#FF0000>b<BR>b<BR>b", {0, -20, 100, 100});
    EXPECT_EQ(board.boxOf(0xFF0000), "1,3 4,8");
}

// --- Measuring ---------------------------------------------------------------------------------------------------

TEST_F(DrawingTest, noTokensHaveNoSize)
{
    EXPECT_EQ(measure(u"", {5, 6, 100, 100}), "5,6 5,6");
    RECT rect = {5, 6, 100, 100};
    MeasureHTML(board.context(), &rect, 0, &parser);
    EXPECT_EQ(describe(rect), "5,6 6,7");
}

TEST_F(DrawingTest, measureHTMLAddsAPixelEachWay)
{
    parse(u"<FONT SIZE=-1>ab<BR>c");
    RECT rect = {5, 6, 100, 7};
    MeasureHTML(board.context(), &rect, 0, &parser);
    EXPECT_EQ(describe(rect), "5,6 16,27");
    rect = {5, 6, 100, 7};
    MeasureHTML(board.context(), &rect, 20, &parser);
    EXPECT_EQ(describe(rect), "5,6 31,27");
    rect = {0, 0, 32003, 0};
    MeasureHTML(board.context(), &rect, 0, &parser);
    EXPECT_EQ(describe(rect), "0,0 6,21"); // a line that ends at a break counts for no more than the rectangle has
}

TEST_F(DrawingTest, theWidestLineCounts)
{
    EXPECT_EQ(measure(u"a<BR>bcd<BR>ef", wide), "0,0 15,30");
    EXPECT_EQ(measure(u"a<BR>b", wide, 20), "0,0 25,20");
    EXPECT_EQ(measure(u"<P ALIGN=CENTER>ab", wide), "0,0 55,10");
}

TEST_F(DrawingTest, fontsOfTwiceTheDensityTakeTwiceTheRoom)
{
    device.options().screen.dotsPerInch = 192;
    device.reopen();
    zb::forgetScaling();
    HIDPI_InitScaling();
    const Board twice(400, 200);
    CHTMLParser scaled;
    scaled.SetHTML(u"<FONT SIZE=-1>abc");
    scaled.ParseHTML(nullptr);
    RECT rect = wide;
    DrawHTML(twice.context(), &rect, 0, &scaled, nullptr, DT_CALCRECT);
    EXPECT_EQ(describe(rect), "0,0 30,20");
}
} // namespace
