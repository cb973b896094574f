// Numbers and orders of the grid's painting: which cells, where in them, and what changes meanwhile do.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using Numbers = std::vector<DWORD>;

const COLORREF red = RGB(255, 0, 0);
const COLORREF yellow = RGB(255, 255, 0);
const COLORREF white = RGB(255, 255, 255);

Numbers drawn;
std::vector<UINT> states;
std::function<void(DWORD)> onDraw;

int noteDrawn(tagDRAWITEMSTRUCT *item, tagCELLINFO *)
{
    drawn.push_back(item->CtlID);
    states.push_back(item->itemState);
    if (onDraw)
    {
        onDraw(item->CtlID);
    }
    return 0;
}

class GridCells : public GridTest
{
  protected:
    void TearDown() override
    {
        onDraw = nullptr;
        GridTest::TearDown();
    }
    /// From here on; row << 16 | column, fixed ones among them.
    void noteCells()
    {
        settle();
        grid->SetCellOwnerDrawProc(noteDrawn);
        grid->SetFixedCellOwnerDrawProc(noteDrawn);
        takeDrawn();
    }
    Numbers takeDrawn()
    {
        settle();
        return std::exchange(drawn, {});
    }
    /// Of what is not white in the grid's first 40 rows of pixels.
    std::string ink()
    {
        const Picture screen = shown();
        RECT box = {screen.width, 40, 0, 0};
        for (int y = 0; y < 40; ++y)
        {
            for (int x = 0; x < 100; ++x)
            {
                if (screen.at(x, y) != 0xFFFFFF)
                {
                    box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                           std::max(box.bottom, y + 1)};
                }
            }
        }
        return box.right == 0 ? "none" : describe(box);
    }
    bool isAsPaintedWhole()
    {
        const Picture before = shown();
        grid->Invalidate();
        return before == shown();
    }
    void addFloater(const std::u16string &text, USHORT length = 100, USHORT offset = 0)
    {
        floaterText = text;
        grid->AddFloater(0, 1, 5, 4, length, offset, RGB(255, 0, 255), false);
        settle();
    }
};

// --- Which cells are painted, and when ---------------------------------------------------------------------------

TEST_F(GridCells, fixedCellsComeBeforeTheOthers)
{
    makePlain(3, 3).SetFixedRowCount(1);
    grid->SetFixedColCount(1);
    noteCells();
    grid->Invalidate();
    EXPECT_EQ(takeDrawn(), (Numbers{0, 1, 2, 0x10000, 0x20000, 0x10001, 0x10002, 0x20001, 0x20002}));
}

TEST_F(GridCells, aScrollPaintsWhatWasCutAndWhatCame)
{
    makePlain(40, 2); // six rows of 15 and a part
    noteCells();
    grid->ScrollByRowDown(2, false);
    EXPECT_EQ(takeDrawn(), (Numbers{0x60000, 0x60001, 0x70000, 0x70001, 0x80000, 0x80001}));
    grid->ScrollByRowDown(20, false);
    EXPECT_EQ(takeDrawn().size(), 14U) << "more than a screen";
    InvalidateRect(*grid, nullptr, FALSE);
    EXPECT_TRUE(takeDrawn().empty()) << "that was a whole paint like any other";
    grid->ScrollToTop();
    grid->SetFixedColCount(1);
    takeDrawn();
    grid->ScrollByRowDown(1, false);
    EXPECT_EQ(takeDrawn(), (Numbers{0x60001, 0x70001, 0x60000, 0x70000})) << "fixed ones behind the others";
}

TEST_F(GridCells, acrossAScrollPaintsTheColumnsThatCame)
{
    makePlain(2, 12).SetFixedRowCount(1);
    for (USHORT col = 0; col < 12; ++col)
    {
        grid->SetColWidth(col, 40); // five show
    }
    noteCells();
    grid->ScrollByColRight(1);
    EXPECT_EQ(takeDrawn(), (Numbers{0x10005, 5}));
    grid->ScrollByColLeft(1);
    EXPECT_EQ(takeDrawn(), (Numbers{0x10000, 0}));
    grid->ScrollByColRight(6);
    EXPECT_EQ(takeDrawn().size(), 10U) << "more than a screen";
}

TEST_F(GridCells, pagesAndASecondJumpToTheEndPaintAll)
{
    makePlain(40, 1);
    noteCells();
    grid->ScrollByPageDown();
    EXPECT_EQ(takeDrawn().size(), 7U);
    grid->ScrollToBottom();
    takeDrawn();
    grid->ScrollToBottom();
    EXPECT_EQ(takeDrawn().size(), 6U);
    EXPECT_EQ(grid->GetTopRow(), 34);
    grid->ScrollByRowDown(2, true);
    EXPECT_EQ(takeDrawn().size(), 4U) << "past the largest";
}

TEST_F(GridCells, aPartOfTheAreaWaitsForItsPaintAndTheWholeDoesNot)
{
    makePlain(5, 1);
    noteCells();
    const RECT part = {0, 0, 10, 10};
    grid->Invalidate(&part);
    EXPECT_TRUE(drawn.empty());
    EXPECT_EQ(takeDrawn().size(), 5U);
    grid->Invalidate();
    EXPECT_EQ(drawn.size(), 5U);
    takeDrawn();
    grid->BeginUpdate();
    grid->Invalidate();
    EXPECT_TRUE(takeDrawn().empty());
    grid->EndUpdate();
    EXPECT_EQ(takeDrawn().size(), 5U);
    RECT client{};
    GetClientRect(*grid, &client);
    SendMessageW(*grid, WM_SIZE, 0, MAKELONG(client.right, client.bottom));
    EXPECT_TRUE(takeDrawn().empty()) << "the size that it has";
    bool handled = false;
    grid->OnEraseBkgnd(nullptr, handled);
    EXPECT_TRUE(handled);
}

TEST_F(GridCells, onlyAGridThatIsShownAgainWhereItWasIsPaintedAnew)
{
    makePlain(5, 1);
    noteCells();
    constexpr UINT all = SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE;
    for (const UINT flags : {all & ~SWP_SHOWWINDOW, all & ~SWP_NOMOVE, all & ~SWP_NOSIZE, all, all | SWP_NOZORDER})
    {
        WINDOWPOS place = {*grid, nullptr, 0, 0, 200, 100, flags};
        SendMessageW(*grid, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&place));
        InvalidateRect(*grid, nullptr, FALSE);
        EXPECT_EQ(takeDrawn().size(), (flags & all) == all ? 5U : 0U) << flags;
    }
}

TEST_F(GridCells, aStreamThatPassesFixedCellsDoesNotShowInThem)
{
    makePlain(4, 2).SetFixedRowCount(1);
    grid->SetSelectionMode(1);
    noteCells();
    grid->SetSelection(0, 2, 1, 3); // down from there, and the other column from its top
    ASSERT_TRUE(grid->IsCellSelected(0, 1));
    states.clear();
    grid->Invalidate();
    EXPECT_EQ(states, (std::vector<UINT>{0, 0, 0, 1, 1, 1, 1, 1}));
    EXPECT_EQ(screenPixel(150, 7), white);
}

// --- Texts and floaters in their cells ---------------------------------------------------------------------------

TEST_F(GridCells, aTextStandsInsideItsMargins)
{
    struct Case
    {
        RECT margins;
        USHORT width;
        bool single;
        const char *ink;
    };
    const char *line = "1,3 44,8"; // nine letters and blanks of 5, the first two lines of which would be 20 wide
    const char *wrapped = "1,3 19,18";
    const Case cases[] = {{{0, 0, 0, 0}, 100, false, line},      {{10, 4, 0, 0}, 100, false, "11,7 54,12"},
                          {{0, 0, 55, 0}, 100, false, line},     {{0, 0, 56, 0}, 100, false, wrapped},
                          {{0, 0, 0, 0}, 44, false, wrapped},    {{0, 0, -10, 0}, 34, false, line},
                          {{0, 0, -10, 0}, 33, false, wrapped},  {{0, 0, 56, 0}, 100, true, line},
                          {{0, 0, 0, 23}, 100, false, line},     {{0, 0, 0, 24}, 100, false, "none"}};
    makePlain(1, 1, 100, 60).SetShowVLines(false);
    grid->SetRowHeight(0, 31);
    for (const Case &one : cases)
    {
        grid->SetColWidth(0, one.width);
        grid->SetCellSingleLine(0, 0, one.single);
        grid->SetCellText(0, 0, u"<FONT SIZE=-1>aaaa aaaa", one.margins);
        EXPECT_EQ(ink(), one.ink) << describe(one.margins) << ' ' << one.width;
    }
}

TEST_F(GridCells, aTextIsMeasuredBetweenItsMargins)
{
    makePlain(1, 1).SetColWidth(0, 40);
    const auto height = [this](const RECT &margins)
    {
        grid->SetCellText(0, 0, u"<FONT SIZE=-1>aaaa aaaa", margins); // 45 wide
        return grid->GetRowHeight(0, false);
    };
    EXPECT_EQ(height({0, 0, 0, 0}), 21);
    EXPECT_EQ(height({0, 0, -4, 0}), 21);
    EXPECT_EQ(height({0, 0, -5, 0}), 15);
    EXPECT_EQ(height({1, 0, -5, 0}), 21);
}

TEST_F(GridCells, fixedCellsHaveLinesOfTheirOwn)
{
    makePlain(2, 2, 100, 60).SetFixedRowCount(1);
    grid->SetLinesColor(red);
    const POINT places[] = {{49, 7}, {20, 14}, {49, 22}, {20, 29}}; // of a fixed cell, then of the one below
    const auto lines = [&]
    {
        std::string marks;
        for (const POINT &place : places)
        {
            marks += screenPixel(place.x, place.y) == red ? 'x' : '.';
        }
        return marks;
    };
    EXPECT_EQ(lines(), "xxx.");
    grid->SetShowFixedVLines(false);
    EXPECT_EQ(lines(), ".xx.");
    grid->SetShowHLines(true);
    EXPECT_EQ(lines(), ".xxx");
    grid->SetShowFixedHLines(false);
    EXPECT_EQ(lines(), "..xx");
    grid->SetShowVLines(false);
    EXPECT_EQ(lines(), "...x");
}

TEST_F(GridCells, aFixedCellHasItsBodyColourFromTheFirstPaintOn)
{
    makePlain(2, 1).SetRowHeightFixed(true);
    grid->SetFixedRowCount(1);
    grid->SetCellText(0, 0, u"<BODY=#00FF00><FONT BGCOLOR=#FF00FF>a");
    EXPECT_EQ(screenPixel(100, 7), RGB(0, 255, 0));
}

TEST_F(GridCells, stripsAreCutToWholePixels)
{
    makePlain(6, 1, 100, 120);
    addFloater(u"<BODY=#FFFF00>", 31, 33); // of 60: 18.6 and 19.8
    const COLORREF strip = RGB(255, 0, 255);
    EXPECT_EQ(screenPixel(3, 15 + 18), yellow);
    EXPECT_EQ(screenPixel(3, 15 + 19), strip);
    EXPECT_EQ(screenPixel(3, 15 + 35), strip) << "a pixel shorter than its length";
    EXPECT_EQ(screenPixel(3, 15 + 36), yellow);
}

TEST_F(GridCells, aFloatersBodyHasItsOutlineAndTheColourOfItsText)
{
    makePlain(6, 1, 100, 120).SetLinesColor(red);
    grid->SetShowVLines(false);
    addFloater(u"<BODY=#FFFF00>");
    EXPECT_EQ(screenPixel(50, 15), white);
    EXPECT_EQ(screenPixel(50, 16), red);
    EXPECT_EQ(screenPixel(50, 17), yellow);
    EXPECT_EQ(screenPixel(7, 40), red) << "behind the strip";
    EXPECT_EQ(screenPixel(97, 40), yellow);
    EXPECT_EQ(screenPixel(98, 40), red);
    EXPECT_EQ(screenPixel(99, 40), white);
    grid->SetFloaterOptions(true, false);
    EXPECT_EQ(screenPixel(1, 40), red) << "without one";
    EXPECT_EQ(screenPixel(2, 40), yellow);
    grid->SetFloaterOptions(true, true);
    addFloater(u"<BODY=#FFFF00><FONT BGCOLOR=#00FF00>a");
    EXPECT_EQ(screenPixel(50, 60), RGB(0, 255, 0));
    grid->SetColWidth(0, 9);
    EXPECT_EQ(screenPixel(7, 60), red);
    grid->SetColWidth(0, 7);
    EXPECT_EQ(screenPixel(3, 16), RGB(0, 255, 0)) << "no body where the strip would fill it";
}

TEST_F(GridCells, atTwiceTheDensityAStripIsTwiceAsWide)
{
    device.options().screen.dotsPerInch = 192;
    device.reopen();
    const Scaling doubled;
    ScreenWindow host(0, WS_POPUP | WS_VISIBLE, 0, 0, 200, 240);
    host.before = parent.before;
    grid = std::make_unique<TestGrid>(host.window, RECT{0, 0, 200, 200}, false);
    grid->SetDimensions(6, 1);
    addFloater(u"a"); // from 30 on
    const COLORREF strip = RGB(255, 0, 255);
    EXPECT_EQ(screenPixel(13, 60), strip);
    EXPECT_NE(screenPixel(14, 60), strip);
    grid->SetColWidth(0, 19); // 14 and 4 are not enough
    EXPECT_EQ(screenPixel(1, 60), strip);
    grid->SetColWidth(0, 18);
    EXPECT_NE(screenPixel(1, 60), strip);
}

TEST_F(GridCells, aFloaterBeingMovedHasTheColourOfTheSelection)
{
    const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
    makePlain(8, 1, 100, 120);
    answers[GRID_CANMOVEFLOATER] = 3;
    const auto differing = [&](int y)
    {
        int count = 0;
        for (int x = 12; x < 92; ++x)
        {
            count += screenPixel(x, y) != highlight ? 1 : 0;
        }
        return count;
    };
    for (const bool text : {true, false})
    {
        grid->SetFloaterOptions(text, true);
        addFloater(u"<BODY=#FFFF00>");
        EXPECT_EQ(differing(15 + 3), text ? 80 : 0);
        draw({{3, 20}, {3, 35}}, false); // by its strip, a row down
        EXPECT_EQ(differing(30 + 10), 0);
        EXPECT_EQ(differing(30 + 3) > 0, !text) << "the frame of the focus where there is no text";
        penUp(3, 35);
        settle();
        grid->DeleteFloater(0, 2, 5);
    }
}

TEST_F(GridCells, aFloaterIsPaintedByTheFirstOfItsCellsInAPaint)
{
    makePlain(40, 1);
    addFloater(u"<FONT SIZE=-1><A=key>a</A>"); // whose spots go to the cell that paints it
    const auto paintedBy = [this](USHORT row)
    {
        const std::unique_ptr<WCHAR[]> key(grid->GetCellHotSpot(0, row, 0));
        return key != nullptr;
    };
    EXPECT_TRUE(paintedBy(1));
    EXPECT_FALSE(paintedBy(2));
    grid->SetTopRow(2);
    EXPECT_TRUE(paintedBy(2));
    EXPECT_FALSE(paintedBy(3));
    grid->SetSelection(0, 3, 0, 3); // a paint of that row alone
    EXPECT_TRUE(paintedBy(3));
    EXPECT_FALSE(paintedBy(4));
}

TEST_F(GridCells, aFloaterThatBeginsAboveTheViewGoesOnAsItWas)
{
    makePlain(40, 1).SetRowHeight(4, 4); // its last row: what is left of it there is a pixel high
    addFloater(u"<FONT SIZE=-1>a<BR>b<BR>c<BR>d<BR>e<BR>f");
    const Picture above = shown();
    for (const int rows : {2, 4})
    {
        grid->SetTopRow(static_cast<USHORT>(rows));
        grid->Invalidate();
        const Picture below = shown();
        for (int y = 0; y < 60 + 4 - rows * 15; ++y)
        {
            for (int x = 0; x < 180; ++x)
            {
                ASSERT_EQ(below.at(x, y), above.at(x, y + rows * 15)) << rows << ": " << x << ' ' << y;
            }
        }
    }
}

// --- Changes while others are asked ------------------------------------------------------------------------------

TEST_F(GridCells, aParentMayFillARowWhenItIsAskedForItsFirstCell)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        const USHORT row = HIWORD(request.hdr.idFrom);
        ASSERT_EQ(LOWORD(request.hdr.idFrom), 0);
        grid->SetCellText(1, row, u"<FONT SIZE=-1>a<BR>b<BR>c"); // 31 high
        grid->SetCellText(2, row, u"<BODY=#00FF00>");
        request.pszHTML = u"<FONT SIZE=-1>a";
    };
    makeOnDemand(100, 3);
    settle();
    EXPECT_EQ(asked.size(), 4U);
    EXPECT_EQ(grid->GetRowHeight(0, false), 31);
    EXPECT_EQ(screenPixel(170, 3 * 31 + 3), RGB(0, 255, 0));
    EXPECT_TRUE(isAsPaintedWhole());
    grid->SetFixedRowCount(1); // the grid is not locked by any of that
    EXPECT_EQ(grid->GetTopRow(), 1);
}

TEST_F(GridCells, aParentThatChangesCellsWhileItLeavesOneOutIsNotAskedForEver)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        if (LOWORD(request.hdr.idFrom) == 0)
        {
            grid->SetCellText(1, HIWORD(request.hdr.idFrom), u"<BODY=#00FF00>");
        }
    };
    makeOnDemand(3, 2);
    settle();
    EXPECT_EQ(screenPixel(150, 20), RGB(0, 255, 0));
    EXPECT_LT(asked.size(), 500U);
    onCell = nullptr;
    grid->Invalidate();
    asked.clear();
    settle();
    EXPECT_LT(asked.size(), 10U) << "and it is over with the reason";
    EXPECT_TRUE(isAsPaintedWhole());
}

TEST_F(GridCells, anOwnerMayChangeACellThatIsPaintedAlready)
{
    makePlain(5, 1);
    noteCells();
    bool changed = false;
    onDraw = [&](DWORD cell)
    {
        if (cell == 0x30000 && !std::exchange(changed, true))
        {
            grid->SetCellText(0, 0, u"<BODY=#00FF00><FONT SIZE=-1>a<BR>b<BR>c");
        }
    };
    grid->Invalidate();
    settle();
    EXPECT_EQ(screenPixel(100, 25), RGB(0, 255, 0));
    EXPECT_TRUE(isAsPaintedWhole());
}

TEST_F(GridCells, aCellThatNobodyHasIsAskedForOnceAPaint)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = request.hdr.idFrom == 0 ? u"a" : nullptr; };
    makeOnDemand(3, 1).AddFloater(0, 0, 1, 1, 0, 0, 0, false);
    settle();
    asked.clear();
    grid->Invalidate();
    EXPECT_EQ(asked.size(), 2U);
}
} // namespace
} // namespace zb::test
