// Cells, requests, texts, deletion, floaters, images and the update lock of the grid.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using GridModel = GridTest;

TEST_F(GridModel, startsWithItsDefaults)
{
    TestGrid &made = make(false);
    EXPECT_FALSE(made.GetShowHLines());
    EXPECT_TRUE(made.GetShowVLines());
    EXPECT_TRUE(made.GetShowFixedHLines());
    EXPECT_TRUE(made.GetShowFixedVLines());
    EXPECT_EQ(made.GetKeysScrollMode(), 2);
    EXPECT_EQ(made.GetBarsScrollMode(), 0);
    EXPECT_TRUE(made.GetThumbTrack());
    EXPECT_TRUE(made.GetAllowAutoScroll());
    EXPECT_FALSE(made.GetRowHeightFixed());
    EXPECT_FALSE(made.GetRowSelect());
    EXPECT_FALSE(made.GetShowFocus());
    EXPECT_EQ(made.GetSelectionMode(), 0);
    EXPECT_EQ(made.GetDelayedScrolling(), 0U);
    EXPECT_EQ(made.GetMinRowHeight(), 15);
    EXPECT_EQ(made.GetScrollRegion(), 20);
    EXPECT_EQ(made.GetCol(), 0xFFFF);
    EXPECT_EQ(made.GetRow(), 0xFFFF);
    EXPECT_EQ(made.GetBackColor(), GetSysColor(COLOR_WINDOW));
    EXPECT_EQ(made.GetFixedBackColor(), GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(made.GetToolTipParent(), made.GetHwnd());
    bool vertical = false;
    bool horizontal = false;
    bool tip = true;
    made.GetShowScrollBars(vertical, horizontal, tip);
    EXPECT_TRUE(vertical && horizontal && !tip);
    bool text = false;
    bool strip = false;
    made.GetFloaterOptions(text, strip);
    EXPECT_TRUE(text && strip);
    EXPECT_EQ(GetWindowLongW(made, GWL_STYLE) & 0x52000000, 0x52000000);
    EXPECT_EQ(SendMessageW(made, WM_GETDLGCODE, 0, 0), 4);
    EXPECT_EQ(bar(SB_VERT).nMax, 0);
    EXPECT_EQ(bar(SB_HORZ).nMax, 0);
}

TEST_F(GridModel, sizesOfDefaultsFollowTheScreen)
{
    device.options().screen.dotsPerInch = 192;
    device.reopen();
    const Scaling doubled;
    ScreenWindow host(0, WS_POPUP | WS_VISIBLE, 0, 0, 200, 200);
    host.before = parent.before;
    TestGrid large(host.window, RECT{0, 0, 100, 100}, false);
    EXPECT_EQ(large.GetMinRowHeight(), 30);
    EXPECT_EQ(large.GetScrollRegion(), 40);
    large.SetDimensions(1, 1);
    EXPECT_TRUE(large.AddFloater(0, 0, 1, 1, 100, 0, 0, false));
    for (const int x : {13, 14})
    {
        USHORT col = 0;
        USHORT row = 0;
        POINT offset{};
        bool strip = false;
        EXPECT_EQ(large.GetFloaterFromPoint(x, 5, col, row, offset, strip), 1U);
        EXPECT_EQ(strip, x < 14) << "7 at 96 dots an inch";
    }
}

TEST_F(GridModel, itsClassIsThereWhileAGridIs)
{
    WNDCLASSW type{};
    EXPECT_EQ(GetClassInfoW(nullptr, u"HTMLGRIDCLASS", &type), FALSE);
    make(false);
    auto second = std::make_unique<TestGrid>(parent.window, RECT{0, 0, 10, 10}, true);
    grid.reset();
    EXPECT_NE(GetClassInfoW(nullptr, u"HTMLGRIDCLASS", &type), FALSE);
    second.reset();
    EXPECT_EQ(GetClassInfoW(nullptr, u"HTMLGRIDCLASS", &type), FALSE);
}

TEST_F(GridModel, withoutRowsOrColumnsItIsEmpty)
{
    TestGrid &made = makePlain(0, 5);
    EXPECT_EQ(made.GetRowCount(), 0);
    EXPECT_EQ(made.GetColCount(), 0);
    EXPECT_EQ(made.GetColWidth(0), 0);
    EXPECT_EQ(made.GetTotalHeight(), 0U);
    made.SetDimensions(4, 0);
    EXPECT_EQ(made.GetRowCount(), 0);
    made.SetCellText(0, 0, u"x");
    made.ScrollToBottom();
    made.MakeCellVisible(0, 0, false);
    EXPECT_FALSE(made.SetSelection(0, 0, 0, 0));
}

TEST_F(GridModel, fixedCountsAreHeldAtTheDimensions)
{
    TestGrid &made = makePlain(3, 4);
    made.SetFixedRowCount(10);
    EXPECT_EQ(made.GetFixedRowCount(), 3);
    made.SetFixedRowCount(1);
    made.SetFixedColCount(2);
    EXPECT_EQ(made.GetFixedColCount(), 2);
    EXPECT_EQ(made.GetRow(), 1);
    EXPECT_EQ(made.GetCol(), 2);
    USHORT left = 0;
    USHORT top = 0;
    USHORT right = 0;
    USHORT bottom = 0;
    made.GetSelection(left, top, right, bottom);
    EXPECT_EQ(left, 2);
    EXPECT_EQ(top, 1);
    EXPECT_EQ(right, 2);
    EXPECT_EQ(bottom, 1);
    made.SetFixedColCount(9);
    EXPECT_EQ(made.GetFixedColCount(), 4);
    EXPECT_EQ(made.GetCol(), 0xFFFF);
}

TEST_F(GridModel, aPlainGridHasAllItsCellsAndAsksForNone)
{
    TestGrid &made = makePlain(3, 2);
    settle();
    EXPECT_TRUE(asked.empty());
    for (USHORT row = 0; row < 3; ++row)
    {
        const tagCELLINFO *cell = made.FindCell(row, 1);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->dwData, 0U);
        EXPECT_EQ(cell->bFloatersValid, 0);
        EXPECT_EQ(cell->bSingleLine, 0);
        EXPECT_EQ(cell->nIndent, 0);
        EXPECT_TRUE(cell->rcMargins == RECT{});
    }
    EXPECT_EQ(made.FindCell(3, 0), nullptr);
    EXPECT_EQ(made.GetCell(3, 0), nullptr);
    EXPECT_EQ(made.GetCell(0, 2), nullptr);
}

TEST_F(GridModel, aRequestCarriesItsDefaultsAndTheRow)
{
    make(true);
    grid->BeginUpdate();
    grid->SetDimensions(4, 3);
    grid->SetFontQuality(ANTIALIASED_QUALITY);
    grid->SetRowUserID(2, 77);
    EXPECT_TRUE(asked.empty());
    onCell = [](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"text";
        request.bSingleLine = 1;
        request.dwData = 5;
        request.rcMargins = {1, 2, 3, 4};
        request.nIndent = 6;
    };
    const tagCELLINFO *cell = grid->GetCell(2, 1);
    ASSERT_EQ(asked.size(), 1U);
    const GRIDCELLREQUEST &request = asked[0];
    EXPECT_EQ(request.hdr.hwndFrom, grid->GetHwnd());
    EXPECT_EQ(request.hdr.idFrom, 0x20001U);
    EXPECT_EQ(request.hdr.code, 2021U);
    EXPECT_EQ(request.bSingleLine, 0U);
    EXPECT_EQ(request.dwData, 0U);
    EXPECT_EQ(request.dwRowUserID, 77U);
    EXPECT_EQ(request.nColWidth, 0xFFFF);
    EXPECT_EQ(request.nRowHeight, 0xFFFF);
    EXPECT_TRUE(request.rcMargins == RECT{});
    EXPECT_EQ(request.pszHTML, nullptr);
    EXPECT_EQ(request.nFontQuality, ANTIALIASED_QUALITY);
    EXPECT_EQ(request.nIndent, 0);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->bSingleLine, 1);
    EXPECT_EQ(grid->GetCellData(1, 2), 5U);
    EXPECT_TRUE((cell->rcMargins == RECT{1, 2, 3, 4}));
    EXPECT_EQ(cell->nIndent, 6);
    EXPECT_EQ(cell->bFloatersValid, 0);
    EXPECT_EQ(grid->GetCell(2, 1), cell);
    EXPECT_EQ(asked.size(), 1U) << "a cell is asked for once";
}

TEST_F(GridModel, anAnswerMayGiveSizes)
{
    onCell = [](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"text";
        request.nColWidth = HIWORD(request.hdr.idFrom) == 0 && LOWORD(request.hdr.idFrom) == 0 ? 60 : 0xFFFF;
        request.nRowHeight = HIWORD(request.hdr.idFrom) == 1 ? 33 : 0xFFFF;
    };
    TestGrid &made = makeOnDemand(2, 2);
    EXPECT_EQ(made.GetRowHeight(1, false), 33);
    EXPECT_EQ(made.GetRowHeight(0, false), 15);
    made.RecalcGrid();
    EXPECT_EQ(made.GetColWidth(0), 60);
    EXPECT_EQ(made.GetColWidth(1), 140);
}

TEST_F(GridModel, onDemandOnlyWhatShowsIsAskedForAndOnce)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"text"; };
    TestGrid &made = makeOnDemand(50000, 1);
    settle();
    EXPECT_EQ(made.GetRowCount(), 50000);
    // 100 pixels of rows of 15: six whole ones and a part.
    EXPECT_EQ(asked.size(), 7U);
    EXPECT_EQ(made.GetTotalHeight(), 750000U);
    made.Invalidate();
    settle();
    EXPECT_EQ(asked.size(), 7U);
    made.UpdateCellText(0, 3);
    EXPECT_EQ(asked.size(), 8U);
    EXPECT_EQ(asked.back().hdr.idFrom, 0x30000U);
    made.UpdateCellText(0, 50000);
    EXPECT_EQ(asked.size(), 8U);
}

TEST_F(GridModel, updateCellTextDoesNothingInAPlainGrid)
{
    TestGrid &made = makePlain(2, 2);
    const tagCELLINFO *cell = made.FindCell(1, 1);
    made.UpdateCellText(1, 1);
    EXPECT_EQ(made.FindCell(1, 1), cell);
    EXPECT_TRUE(asked.empty());
}

TEST_F(GridModel, aCellThatNobodyHasCountsWithTheLeastHeight)
{
    TestGrid &made = makeOnDemand(3, 1);
    EXPECT_EQ(made.GetRowHeight(1, true), 15);
    EXPECT_EQ(made.FindCell(1, 0), nullptr);
    EXPECT_EQ(made.GetCellData(0, 1), 0U);
    made.SetCellText(0, 1, u"made here");
    EXPECT_NE(made.FindCell(1, 0), nullptr);
}

TEST_F(GridModel, aRowIsAsHighAsItsTallestCellAndNeverBelowTheLeast)
{
    TestGrid &made = makePlain(3, 2);
    made.SetCellText(0, 0, u"<FONT SIZE=-1>a<BR>b<BR>c");
    made.SetCellText(1, 0, u"<FONT SIZE=-1>a<BR>b");
    made.SetCellText(0, 1, u"<FONT SIZE=-1>a");
    EXPECT_EQ(made.GetRowHeight(0, false), 31); // three lines of 10 and a pixel
    EXPECT_EQ(made.GetRowHeight(1, false), 15);
    made.SetCellText(0, 1, u"<FONT SIZE=-1>a<BR>b", RECT{1, 4, 1, 6});
    EXPECT_EQ(made.GetRowHeight(1, false), 31); // 4 + 21 + 6
    made.SetRowHeight(1, 18);
    EXPECT_EQ(made.GetRowHeight(1, false), 18);
    made.SetRowHeight(1, 0xFFFF);
    EXPECT_EQ(made.GetRowHeight(1, false), 31);
    EXPECT_EQ(made.GetTotalHeight(), 77U);
    made.SetRowHeightFixed(true);
    EXPECT_EQ(made.GetTotalHeight(), 45U);
    made.SetMinRowHeight(20);
    EXPECT_EQ(made.GetTotalHeight(), 60U);
    EXPECT_EQ(made.GetScrollRegion(), 20);
}

TEST_F(GridModel, aSingleLineDoesNotWrap)
{
    TestGrid &made = makePlain(1, 1, 60, 100);
    made.SetCellText(0, 0, u"<FONT SIZE=-1>aaaaaa aaaaaa aaaaaa");
    EXPECT_EQ(made.GetRowHeight(0, false), 31);
    made.SetCellSingleLine(0, 0, true);
    EXPECT_EQ(made.GetRowHeight(0, false), 15);
}

TEST_F(GridModel, formsOfSetCellTextDifferInMarginsAndQuality)
{
    TestGrid &made = makePlain(1, 1);
    const auto quality = [&]
    {
        tagCELLINFO *cell = made.FindCell(0, 0);
        cell->FirstToken();
        return describeFont(cell->GetCurrFont()).lfQuality;
    };
    made.SetFontQuality(NONANTIALIASED_QUALITY);
    made.SetCellText(0, 0, u"a", ANTIALIASED_QUALITY, RECT{1, 2, 3, 4});
    EXPECT_EQ(quality(), ANTIALIASED_QUALITY);
    EXPECT_TRUE((made.FindCell(0, 0)->rcMargins == RECT{1, 2, 3, 4}));
    made.SetCellText(0, 0, u"a", BYTE{ANTIALIASED_QUALITY});
    EXPECT_EQ(quality(), ANTIALIASED_QUALITY);
    EXPECT_TRUE(made.FindCell(0, 0)->rcMargins == RECT{});
    made.SetCellText(0, 0, u"a", RECT{5, 6, 7, 8});
    EXPECT_EQ(quality(), NONANTIALIASED_QUALITY);
    EXPECT_TRUE((made.FindCell(0, 0)->rcMargins == RECT{5, 6, 7, 8}));
    made.SetCellText(0, 0, u"a");
    EXPECT_TRUE(made.FindCell(0, 0)->rcMargins == RECT{});
    made.SetCellText(0, 0, nullptr, RECT{1, 1, 1, 1});
    EXPECT_TRUE(made.FindCell(0, 0)->rcMargins == RECT{});
    made.SetCellText(1, 0, u"out of range");
    made.SetCellText(0, 1, u"out of range");
}

// --- Deletion ----------------------------------------------------------------------------------------------------

TEST_F(GridModel, deletedRowsAreCutToWhatIsLeft)
{
    TestGrid &made = makePlain(5, 2);
    for (USHORT row = 0; row < 5; ++row)
    {
        made.SetCellData(1, row, row + 100U);
    }
    made.DeleteRows(2, 100);
    EXPECT_EQ(made.GetRowCount(), 2);
    EXPECT_EQ(made.GetCellData(1, 0), 100U);
    EXPECT_EQ(made.GetCellData(1, 1), 101U);
    EXPECT_EQ(made.FindCell(2, 0), nullptr);
    made.DeleteRows(2, 1);
    made.DeleteRows(0, 0);
    EXPECT_EQ(made.GetRowCount(), 2);
}

TEST_F(GridModel, rowsAndColumnsBehindDeletedOnesMoveUp)
{
    TestGrid &made = makePlain(6, 5);
    for (USHORT row = 0; row < 6; ++row)
    {
        made.SetRowHeight(row, static_cast<USHORT>(20 + row));
        for (USHORT col = 0; col < 5; ++col)
        {
            made.SetCellData(col, row, row * 10U + col);
        }
    }
    made.SetSelection(4, 5, 4, 5);
    made.DeleteRows(1, 2);
    made.DeleteCols(0, 2);
    ASSERT_EQ(made.GetRowCount(), 4);
    ASSERT_EQ(made.GetColCount(), 3);
    const USHORT rows[] = {0, 3, 4, 5};
    for (USHORT row = 0; row < 4; ++row)
    {
        EXPECT_EQ(made.GetRowHeight(row, false), 20 + rows[row]);
        for (USHORT col = 0; col < 3; ++col)
        {
            EXPECT_EQ(made.GetCellData(col, row), rows[row] * 10U + col + 2);
        }
    }
    EXPECT_EQ(made.GetRow(), 3);
    EXPECT_EQ(made.GetCol(), 2);
    made.DeleteRows(0, 4);
    EXPECT_EQ(made.GetRowCount(), 0);
    EXPECT_EQ(made.GetRow(), 0xFFFF);
}

TEST_F(GridModel, fixedRowsThatGoLowerTheirCountRoundByRound)
{
    TestGrid &made = makePlain(6, 1);
    made.SetFixedRowCount(2);
    made.DeleteRows(1, 1);
    EXPECT_EQ(made.GetFixedRowCount(), 1);
    made.DeleteRows(1, 1);
    EXPECT_EQ(made.GetFixedRowCount(), 1);
    made.SetFixedRowCount(2);
    made.DeleteRows(0, 2); // the second round compares 1 with the 1 that is left
    EXPECT_EQ(made.GetFixedRowCount(), 1);
}

TEST_F(GridModel, userIdsFollowTheirRows)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
    make(true);
    grid->BeginUpdate();
    grid->SetDimensions(4, 1);
    for (USHORT row = 0; row < 4; ++row)
    {
        grid->SetRowUserID(row, row + 10U);
    }
    grid->DeleteRows(1, 1);
    grid->GetCell(1, 0);
    EXPECT_EQ(asked.back().dwRowUserID, 12U);
}

// --- Updates -----------------------------------------------------------------------------------------------------

TEST_F(GridModel, anUpdatePutsLayoutOff)
{
    TestGrid &made = makePlain(2, 1);
    made.BeginUpdate();
    made.BeginUpdate();
    made.SetCellText(0, 0, u"<FONT SIZE=-1>a<BR>b<BR>c");
    EXPECT_EQ(made.GetRowHeight(0, false), 15);
    made.EndUpdate();
    EXPECT_EQ(made.GetRowHeight(0, false), 15);
    made.EndUpdate();
    EXPECT_EQ(made.GetRowHeight(0, false), 31);
    made.EndUpdate(); // one too many
    made.BeginUpdate();
    made.SetCellText(0, 1, u"<FONT SIZE=-1>a<BR>b");
    EXPECT_EQ(made.GetRowHeight(1, false), 15);
    made.EndUpdate();
    EXPECT_EQ(made.GetRowHeight(1, false), 21);
}

TEST_F(GridModel, aScrollInsideAnUpdateWaitsForItsEnd)
{
    TestGrid &made = makePlain(40, 1);
    made.BeginUpdate();
    made.ScrollByRowDown(12, false);
    EXPECT_EQ(made.GetTopRow(), 0);
    made.EndUpdate();
    EXPECT_EQ(made.GetTopRow(), 12);
    made.BeginUpdate();
    made.ScrollToBottom();
    made.EndUpdate();
    // Six rows of 15 fit into 100 pixels; the sum passes them at the seventh.
    EXPECT_EQ(made.GetTopRow(), 34);
}

// --- Floaters ----------------------------------------------------------------------------------------------------

TEST_F(GridModel, aFloaterIsInTheCellsOfItsRows)
{
    TestGrid &made = makePlain(8, 2);
    EXPECT_TRUE(made.AddFloater(1, 2, 42, 3, 50, 25, RGB(1, 2, 3), true));
    EXPECT_EQ(askedFloaters, std::vector<DWORD>{42});
    for (USHORT row = 0; row < 8; ++row)
    {
        EXPECT_EQ(made.CellHasFloaters(1, row), row >= 2 && row <= 4) << row;
        EXPECT_EQ(made.FloaterCount(0, row), 0);
    }
    const tagFLOATERINFO *floater = made.FindCell(4, 1)->Floaters.at(42);
    EXPECT_EQ(floater->pOwner, made.FindCell(2, 1));
    EXPECT_EQ(floater->bLocked, 1);
    EXPECT_EQ(floater->nRows, 3);
    EXPECT_EQ(floater->nStripLength, 50);
    EXPECT_EQ(floater->nStripOffset, 25);
    EXPECT_EQ(floater->crStrip, RGB(1, 2, 3));
    EXPECT_EQ(floater->dwID, 42U);
    made.DeleteFloater(1, 4, 42);
    EXPECT_FALSE(made.CellHasFloaters(1, 2));
    EXPECT_FALSE(made.CellHasFloaters(1, 3));
}

TEST_F(GridModel, withoutATextThereIsNoFloater)
{
    TestGrid &made = makePlain(3, 1);
    floaterHasText = false;
    EXPECT_FALSE(made.AddFloater(0, 0, 1, 2, 0, 0, 0, false));
    EXPECT_FALSE(made.CellHasFloaters(0, 0));
    EXPECT_FALSE(made.AddFloater(0, 3, 1, 2, 0, 0, 0, false));
    EXPECT_EQ(askedFloaters.size(), 1U);
}

TEST_F(GridModel, aFloaterMayPassTheLastRow)
{
    TestGrid &made = makePlain(3, 1);
    EXPECT_TRUE(made.AddFloater(0, 2, 1, 20, 100, 0, 0, false));
    EXPECT_TRUE(made.CellHasFloaters(0, 2));
    EXPECT_EQ(made.FindCell(2, 0)->Floaters.at(1)->nRows, 20);
}

TEST_F(GridModel, aFloaterGoesWithTheRowInWhichItBegins)
{
    TestGrid &made = makePlain(8, 1);
    made.AddFloater(0, 2, 5, 3, 0, 0, 0, false);
    made.AddFloater(0, 1, 6, 4, 0, 0, 0, false);
    made.DeleteRows(2, 1);
    for (USHORT row = 1; row <= 3; ++row)
    {
        EXPECT_EQ(made.FloaterCount(0, row), 1) << row;
        EXPECT_TRUE(made.FindCell(row, 0)->Floaters.contains(6));
    }
    EXPECT_EQ(made.FindCell(1, 0)->Floaters.at(6)->nRows, 3);
    EXPECT_EQ(made.FloaterCount(0, 4), 0);
    made.DeleteRows(0, 2);
    EXPECT_EQ(made.FloaterCount(0, 0), 0);
}

TEST_F(GridModel, anIdThatIsThereIsReplaced)
{
    TestGrid &made = makePlain(8, 1);
    made.AddFloater(0, 1, 5, 3, 0, 0, 0, false);
    made.AddFloater(0, 2, 5, 2, 0, 0, 0, false);
    EXPECT_FALSE(made.CellHasFloaters(0, 1));
    EXPECT_EQ(made.FindCell(3, 0)->Floaters.at(5)->pOwner, made.FindCell(2, 0));
}

TEST_F(GridModel, aMovedFloaterBelongsToItsNewCell)
{
    TestGrid &made = makePlain(8, 2);
    made.AddFloater(0, 1, 5, 3, 0, 0, 0, false);
    EXPECT_TRUE(made.MoveFloater(0, 2, 1, 4, 5));
    EXPECT_FALSE(made.CellHasFloaters(0, 1));
    EXPECT_FALSE(made.CellHasFloaters(0, 3));
    EXPECT_TRUE(made.CellHasFloaters(1, 6));
    EXPECT_EQ(made.FindCell(6, 1)->Floaters.at(5)->pOwner, made.FindCell(4, 1));
    EXPECT_FALSE(made.MoveFloater(0, 2, 1, 4, 5));
    made.DeleteFloater(1, 5, 5);
    EXPECT_FALSE(made.CellHasFloaters(1, 4));
}

TEST_F(GridModel, aFloaterUnderAPointTellsItsPlace)
{
    TestGrid &made = makePlain(6, 2); // columns of 100, rows of 15
    made.AddFloater(1, 1, 8, 3, 0, 0, 0, false);
    made.AddFloater(1, 2, 9, 2, 0, 0, 0, false);
    USHORT col = 0;
    USHORT row = 0;
    POINT offset{};
    bool strip = false;
    EXPECT_EQ(made.GetFloaterFromPoint(104, 40, col, row, offset, strip), 8U);
    EXPECT_EQ(col, 1);
    EXPECT_EQ(row, 2);
    EXPECT_EQ(offset.x, 4);
    EXPECT_EQ(offset.y, 25);
    EXPECT_TRUE(strip);
    EXPECT_EQ(made.GetFloaterFromPoint(POINT{107, 40}, col, row, offset, strip), 8U);
    EXPECT_FALSE(strip); // the strip is 7 wide
    EXPECT_EQ(made.GetFloaterFromPoint(150, 40, col, row, offset, strip), 9U);
    EXPECT_EQ(offset.x, 0);
    EXPECT_EQ(offset.y, 10);
    EXPECT_EQ(made.GetFloaterFromPoint(50, 40, col, row, offset, strip), 0U);
    EXPECT_EQ(made.GetFloaterFromPoint(150, 20, col, row, offset, strip), 0U);
    EXPECT_EQ(made.GetFloaterFromPoint(150, 95, col, row, offset, strip), 0U);
    EXPECT_EQ(row, 0xFFFF);
    made.SetFloaterOptions(true, false);
    EXPECT_EQ(made.GetFloaterFromPoint(140, 40, col, row, offset, strip), 8U);
    EXPECT_TRUE(strip);
}

TEST_F(GridModel, aCellAskedForAnewKeepsTheFloatersFromAbove)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
    TestGrid &made = makeOnDemand(6, 1);
    made.AddFloater(0, 0, 1, 4, 0, 0, 0, false);
    made.AddFloater(0, 2, 2, 2, 0, 0, 0, false);
    made.UpdateCellText(0, 2);
    EXPECT_EQ(made.FloaterCount(0, 2), 1);
    EXPECT_EQ(made.FloaterCount(0, 3), 1);
    EXPECT_TRUE(made.FindCell(2, 0)->Floaters.contains(1));
}

// --- Images ------------------------------------------------------------------------------------------------------

TEST_F(GridModel, sourcesAreFilesOrNumbers)
{
    TestGrid &made = makePlain(1, 1);
    const auto ask = [&](const std::u16string &source)
    {
        NM_HTMLVIEW record{};
        record.hdr = {made, source.size(), NM_INLINE_IMAGE};
        record.szTarget = source.c_str();
        const LRESULT answer = SendMessageW(made, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&record));
        EXPECT_EQ(answer != 0, record.dwCookie != 0);
        return record.dwCookie;
    };
    std::filesystem::create_directories(device.files() / "Pictures");
    const Picture picture = {2, 1, {0xFF0000, 0x0000FF}};
    ASSERT_TRUE(savePng(picture, device.files() / "Pictures" / "abc.bmp"));
    ASSERT_TRUE(savePng(picture, device.files() / "Pictures" / "a.b"));
    EXPECT_EQ(ask(u"abc.bmp"), 0U);
    made.SetResourcesRootPath(u"\\Pictures");
    const DWORD_PTR bitmap = ask(u"abc.bmp");
    EXPECT_NE(bitmap, 0U);
    EXPECT_EQ(ask(u"abc.bmp"), bitmap) << "loaded once";
    EXPECT_EQ(pictureOf(reinterpret_cast<HBITMAP>(bitmap)), picture);
    EXPECT_EQ(ask(u"a.b"), 0U) << "too short for a file's name";
    EXPECT_EQ(ask(u"missing.png"), 0U);
    EXPECT_EQ(ask(u"0"), 0U);
    made.SetResourcesRootPath(std::u16string(260, u'x').c_str());
    EXPECT_EQ(ask(u"abc.bmp"), bitmap) << "a path that is too long is ignored";
    made.ClearBitmapCache();
    EXPECT_NE(ask(u"abc.bmp"), 0U);
}

TEST_F(GridModel, settingsThatHaveNoEffectOrAlwaysOne)
{
    TestGrid &made = makePlain(1, 1);
    made.SetFixedBackColor(RGB(9, 9, 9));
    EXPECT_EQ(made.GetFixedBackColor(), GetSysColor(COLOR_BTNFACE));
    made.SetBorder(false);
    EXPECT_NE(GetWindowLongW(made, GWL_STYLE) & 0x800000, 0);
    made.SetKeysScrollMode(3);
    EXPECT_EQ(made.GetKeysScrollMode(), 2);
    made.SetBarsScrollMode(3);
    EXPECT_EQ(made.GetBarsScrollMode(), 0);
    made.SetSelectionMode(4);
    EXPECT_EQ(made.GetSelectionMode(), 0);
}

TEST_F(GridModel, hotSpotsOfACellGiveTheirKeys)
{
    TestGrid &made = makePlain(1, 1);
    made.SetCellText(0, 0, u"<FONT SIZE=-1><A=one>aa</A> <A=two>bb</A>");
    settle();
    const std::unique_ptr<WCHAR[]> second(made.GetCellHotSpot(0, 0, 1));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(std::u16string(second.get()), u"two");
    EXPECT_EQ(made.GetCellHotSpot(0, 0, 2), nullptr);
    EXPECT_EQ(made.GetCellHotSpot(1, 0, 0), nullptr);
}
} // namespace
} // namespace zb::test
