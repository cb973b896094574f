// Marked-up text as it shows, in a known face at three densities. Look at the pictures after a change that is meant:
// ZB_UPDATE_PICTURES=1 writes them anew.
#include "display/Board.h"

namespace
{
using namespace zb::test;

const std::filesystem::path facesFolder = "/usr/share/fonts/truetype/dejavu";

zb::DeviceOptions pictureOptions(int dotsPerInch)
{
    zb::DeviceOptions options = withDensity(dotsPerInch);
    options.fonts.files = {facesFolder / "DejaVuSans.ttf", facesFolder / "DejaVuSans-Bold.ttf"};
    return options;
}

struct Row
{
    const WCHAR *markup;
    USHORT indent = 0;
    DWORD flags = 0;
};

/// What lists and panes show: titles, dates at the right, keys, wrapped notes, pictures, colours, other scripts.
const Row rows[] = {
    {u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=1><B>Team meeting</B> in room <I>4 b</I><P ALIGN=RIGHT>10:30</P>"},
    {u"<BODY BGCOLOR=#FFFFC0><FONT SIZE=1><IMG SRC=5 SIZE=16> <A=1><U>Anna M\u00FCller</U></A>, "
     u"<FONT COLOR=#0000C0>+49 30 1234567</FONT><BR><FONT SIZE=-1>Wrapped: words that are many more than one line of "
     u"this row can hold, so that they go on below.",
     12},
    {u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=1><S>Buy milk</S><BR><P ALIGN=CENTER>centred<BR>and <Q>heavy</Q></P>"},
    {u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=1 COLOR=#FFFFFF BGCOLOR=#C00000> overdue </FONT><FONT SIZE=1>"
     u"<BODY BGCOLOR=#FFFFFF> two <IMG SRC=6> of <IMG SRC=6>"},
    {u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=1 COLOR=#008000 BGCOLOR=#FFFF00>A selected row<P ALIGN=RIGHT>12 Mar", 0,
     DRAWHTML_SELECTED},
    {u"<BODY BGCOLOR=#FFFFFF><FONT SIZE=1>\u0421\u0440\u0435\u0434\u0430, \u05E9\u05DC\u05D5\u05DD, "
     u"\u03B1\u03B2\u03B3<FONT SIZE=7>big"},
};

/// Draws all rows below each other and tells whether each took the height that was measured.
Picture drawRows(int dotsPerInch)
{
    const TestDevice device(pictureOptions(dotsPerInch));
    const Scaling scaling;
    PictureWindow window;
    window.addBitmap(u"5", 32, 32, RGB(200, 80, 0));
    window.addBitmap(u"6", HIDPI_SCALEX(8), HIDPI_SCALEY(8), RGB(0, 120, 200));
    const int width = HIDPI_SCALEX(200);
    const int height = HIDPI_SCALEY(dotsPerInch == 131 ? 130 : 170);
    const Board board(width, height);
    LONG top = 0;
    for (const Row &row : rows)
    {
        CHTMLParser parser;
        parser.SetHTML(row.markup);
        parser.ParseHTML(window.handle());
        RECT area = {HIDPI_SCALEX(3), top + 2, width - HIDPI_SCALEX(3), top + 2};
        MeasureHTML(board.context(), &area, row.indent, &parser);
        const RECT cell = {0, top, width, area.bottom + 2};
        const bool selected = (row.flags & DRAWHTML_SELECTED) != 0;
        const HBRUSH brush = CreateSolidBrush(selected ? GetSysColor(COLOR_HIGHLIGHT) : parser.GetBackColor(true));
        FillRect(board.context(), &cell, brush);
        DeleteObject(brush);
        area = {HIDPI_SCALEX(3), top + 2, width - HIDPI_SCALEX(3), area.bottom};
        DrawHTML(board.context(), &area, row.indent, &parser, nullptr, row.flags);
        const RECT line = {0, cell.bottom, width, cell.bottom + 1};
        FillRect(board.context(), &line, GetStockObject(LTGRAY_BRUSH));
        top = line.bottom;
    }
    return board.picture();
}

class MarkupPictures : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(facesFolder))
        {
            GTEST_SKIP() << "no DejaVu Sans here";
        }
    }
};

TEST_F(MarkupPictures, at96Dots)
{
    EXPECT_TRUE(matchesPicture(drawRows(96), "markup-96"));
}

TEST_F(MarkupPictures, at131Dots)
{
    EXPECT_TRUE(matchesPicture(drawRows(131), "markup-131"));
}

TEST_F(MarkupPictures, at192Dots)
{
    EXPECT_TRUE(matchesPicture(drawRows(192), "markup-192"));
}
} // namespace
