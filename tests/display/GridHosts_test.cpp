// What programs that use the grid were built on: its numbers, records, orders and defaults, and what calls leave alone.
#include "display/GridStage.h"
#include "support/OperationSlots.h"

#include <algorithm>
#include <cstddef>

namespace zb::test
{
namespace
{
template <typename Record, typename... Fields>
bool standInOrder(const Record &record, Fields Record::*...fields)
{
    const void *places[] = {&(record.*fields)...};
    return std::is_sorted(std::begin(places), std::end(places));
}

TEST(GridRecords, numbersAreThoseThatHostsKnow)
{
    const std::pair<UINT, UINT> numbers[] = {
        {GRID_GETCELL, 2021},        {GRID_GETSELECTIONTIP, 2022}, {GRID_GETSCROLLTIP, 2023},
        {GRID_GETFLOATERTIP, 2024},  {GRID_CANMOVEFLOATER, 2025},  {GRID_GETFLOATERTEXT, 2026},
        {GRID_FLOATERMOVED, 2027},   {GRID_QUERYDROP, 2028},       {GRID_CANDROP, 2029},
        {GRID_DROP, 2030},           {GRID_CANDRAG, 2031},         {GRID_GETDRAGTIP, 2032},
        {GRID_GETDRAGIMAGES, 2033},  {GRID_CANEDIT, 2034},         {GRID_EDITED, 2035},
        {GRID_SCROLLED, 2044},       {GRID_CELLMOVED, 2045},       {GRID_SKIPHOLD, 0xFFFFFFCE},
        {NM_HOTSPOT, 1125},          {NM_INLINE_IMAGE, 1126},      {NM_HOTSPOTDOWN, 2046},
        {NM_TESTHOTSPOT, 2047},      {NM_CONTEXTMENU, 1000},       {NM_GRIDCONTEXTMENU, 1131},
        {WM_NOTIFY, 78},             {COLOR_WINDOW, 5},            {COLOR_WINDOWFRAME, 6},
        {COLOR_HIGHLIGHT, 13},       {COLOR_BTNFACE, 15},          {GRID_NONE, 0xFFFF}};
    for (const auto &[number, known] : numbers)
    {
        EXPECT_EQ(number, known);
    }
}

TEST(GridRecords, fieldsStandInTheOrderAndSizeThatHostsKnow)
{
    using Request = GRIDCELLREQUEST;
    using View = tagNM_GRIDVIEW;
    using Drag = tagGRIDDRAG;
    using Cell = tagCELLINFO;
    using Floater = tagFLOATERINFO;
    EXPECT_TRUE(standInOrder(Request{}, &Request::hdr, &Request::bSingleLine, &Request::dwData, &Request::dwRowUserID,
                             &Request::nColWidth, &Request::nRowHeight, &Request::rcMargins, &Request::pszHTML,
                             &Request::nFontQuality, &Request::nIndent));
    EXPECT_TRUE(standInOrder(View{}, &View::hdr, &View::szTarget, &View::szData, &View::dwCookie, &View::pt,
                             &View::nRow, &View::nCol));
    EXPECT_TRUE(standInOrder(Drag{}, &Drag::hdr, &Drag::nRow, &Drag::nCol, &Drag::nRows, &Drag::nCols, &Drag::pt,
                             &Drag::rcClient));
    EXPECT_TRUE(standInOrder(Cell{}, &Cell::dwData, &Cell::bFloatersValid, &Cell::bSingleLine, &Cell::rcMargins,
                             &Cell::nIndent, &Cell::HotSpots, &Cell::Floaters));
    EXPECT_TRUE(standInOrder(Floater{}, &Floater::pOwner, &Floater::bLocked, &Floater::nRows, &Floater::nStripLength,
                             &Floater::nStripOffset, &Floater::crStrip, &Floater::dwID, &Floater::nSlots,
                             &Floater::nSlotWidth, &Floater::nSlot, &Floater::Parser));
    // A record of a parser is the beginning of one of a grid.
    EXPECT_EQ(offsetof(View, szTarget), offsetof(NM_HTMLVIEW, szTarget));
    EXPECT_EQ(offsetof(View, szData), offsetof(NM_HTMLVIEW, szData));
    EXPECT_EQ(offsetof(View, dwCookie), offsetof(NM_HTMLVIEW, dwCookie));
    static_assert(sizeof(Request::bSingleLine) == 4 && sizeof(Request::dwRowUserID) == 4);
    static_assert(sizeof(Request::nColWidth) == 2 && sizeof(Request::nRowHeight) == 2);
    static_assert(sizeof(Request::nFontQuality) == 2 && sizeof(Request::nIndent) == 2 && sizeof(Cell::nIndent) == 2);
    static_assert(sizeof(Drag::nRow) == 2 && sizeof(Drag::nCols) == 2 && sizeof(View::nRow) == 4);
    static_assert(sizeof(Floater::nRows) == 2 && sizeof(Floater::nStripOffset) == 2 && sizeof(Floater::nSlot) == 1);
}

#if defined(__x86_64__)
TEST(GridRecords, operationsStandInTheOrderThatHostsKnow)
{
    const std::ptrdiff_t slots[] = {
        slotOf(&CHTMLGrid::OnCellDraw),
        slotOf(&CHTMLGrid::OnFixedCellDraw),
        slotOf(&CHTMLGrid::OnCellFloatersDraw),
        slotOf(&CHTMLGrid::OnSetFocus),
        slotOf(&CHTMLGrid::OnKillFocus),
        slotOf(&CHTMLGrid::OnHScroll),
        slotOf(static_cast<LRESULT (CHTMLGrid::*)(NMHDR *, bool &)>(&CHTMLGrid::OnNotify)),
        slotOf(&CHTMLGrid::OnVScroll),
        slotOf(&CHTMLGrid::OnClick),
        slotOf(&CHTMLGrid::OnContextMenuNotify),
        slotOf(&CHTMLGrid::OnHotspotNotify),
        slotOf(&CHTMLGrid::OnInlineImageNotify),
        slotOf(&CHTMLGrid::OnDragQuery),
        slotOf(&CHTMLGrid::OnDragOver),
        slotOf(&CHTMLGrid::OnDragStart),
        slotOf(&CHTMLGrid::OnProcessEditMessage)};
    std::ptrdiff_t expected = 0;
    for (const std::ptrdiff_t slot : slots)
    {
        EXPECT_EQ(slot, ++expected);
    }
}
#endif

/// Remembers the style that it was made with and when drawing was turned off and on.
class WatchedGrid : public TestGrid
{
  public:
    void OnFirstMessage(HWND window) override
    {
        style = GetWindowLongW(window, GWL_STYLE);
    }
    LRESULT ProcessMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        if (message == WM_SETREDRAW)
        {
            redraws += wParam == 0 ? '0' : '1';
        }
        return TestGrid::ProcessMessage(message, wParam, lParam, handled);
    }
    LONG_PTR style = 0;
    std::string redraws;
};

using GridHosts = GridTest;

// --- The window and its updates ----------------------------------------------------------------------------------

TEST_F(GridHosts, updatesTurnDrawingOffOnceAndPaintOnce)
{
    static int drawn;
    auto watched = std::make_unique<WatchedGrid>();
    WatchedGrid &made = *watched;
    grid = std::move(watched);
    ASSERT_TRUE(made.InitWindow(parent.window, RECT{0, 0, 200, 100}, false));
    EXPECT_EQ(made.style & 0xFFFFFFFF, 0x42300000) << "all but that it shows, which comes when it is made";
    EXPECT_EQ(GetWindowLongW(made, GWL_STYLE) & 0x10000000, 0x10000000);
    const HWND window = made;
    EXPECT_FALSE(made.InitWindow(parent.window, RECT{0, 0, 50, 50}, true)) << "one window is all";
    EXPECT_EQ(made.GetHwnd(), window);
    made.SetDimensions(3, 2);
    settle();
    made.SetCellOwnerDrawProc(
        [](tagDRAWITEMSTRUCT *, tagCELLINFO *)
        {
            ++drawn;
            return 0;
        });
    drawn = 0;
    made.redraws.clear();
    made.BeginUpdate();
    made.BeginUpdate();
    for (USHORT row = 0; row < 3; ++row)
    {
        made.SetCellText(0, row, u"a");
        made.SetCellText(1, row, u"b");
    }
    made.EndUpdate();
    EXPECT_EQ(made.redraws, "0");
    settle();
    EXPECT_EQ(drawn, 0);
    made.EndUpdate();
    EXPECT_EQ(made.redraws, "01");
    EXPECT_EQ(drawn, 6);
    made.EndUpdate();
    EXPECT_EQ(made.redraws, "01") << "one too many";
    made.BeginUpdate();
    made.EndUpdate();
    EXPECT_EQ(made.redraws, "0101");
    EXPECT_EQ(drawn, 6) << "nothing was to be done";
}

TEST_F(GridHosts, anUpdateEndsWithThePaintOfAChangedCellOfFixedHeight)
{
    TestGrid &made = makePlain(2, 1);
    made.SetRowHeightFixed(true);
    settle();
    made.BeginUpdate();
    made.SetCellText(0, 1, u"<BODY=#00FF00>");
    made.EndUpdate();
    EXPECT_EQ(screenPixel(50, 22), RGB(0, 255, 0));
}

TEST_F(GridHosts, anUpdateEndsWithSizesThenTheScrollThenTheBars)
{
    TestGrid &made = makePlain(40, 1);
    made.BeginUpdate();
    made.ScrollByRowDown(12, false);
    made.SetRowHeight(0, 45);
    EXPECT_EQ(bar(SB_VERT).nMax, 600);
    made.EndUpdate();
    EXPECT_EQ(made.GetTopRow(), 12);
    EXPECT_EQ(bar(SB_VERT).nMax, 45 + 39 * 15);
    EXPECT_EQ(bar(SB_VERT).nPos, 45 + 11 * 15);
    EXPECT_EQ(rectOf(0, 12).substr(0, 3), "0,0") << "and with what shows";
}

// --- Dimensions --------------------------------------------------------------------------------------------------

TEST_F(GridHosts, newDimensionsForgetAllOfTheOld)
{
    TestGrid &made = makePlain(40, 3);
    made.SetFixedRowCount(1);
    made.SetFixedColCount(1);
    made.SetRowHeight(1, 50);
    made.SetColWidth(0, 90);
    made.SetSelection(2, 5, 2, 5);
    made.AddFloater(0, 0, 7, 3, 0, 0, 0, false);
    made.AddFloater(0, 1, 8, 3, 0, 0, 0, false);
    made.ScrollToBottom();
    made.SetDimensions(3, 2);
    EXPECT_EQ(made.GetFixedRowCount() + made.GetFixedColCount() + made.GetTopRow() + made.GetLeftCol(), 0);
    EXPECT_EQ(current(), "none");
    EXPECT_EQ(selection(), "none");
    EXPECT_EQ(made.GetRowHeight(1, false), 15);
    EXPECT_EQ(made.GetColWidth(0), 100);
    EXPECT_EQ(floatersByRow(), "000");
    makePlain(40, 3).SetDimensions(0, 5);
    EXPECT_EQ(grid->GetRowCount() + grid->GetColCount() + grid->GetColWidth(0) + grid->GetRowHeight(0, false), 0);
    EXPECT_EQ(grid->GetTotalHeight(), 0U);
    EXPECT_EQ(bar(SB_VERT).nMax, 0);
    EXPECT_EQ(bar(SB_VERT).nPage, 0U);
}

TEST_F(GridHosts, aGridThatHasLostItsLastRowOrColumnStartsAnewToo)
{
    for (const bool rows : {true, false})
    {
        TestGrid &made = makePlain(3, 2);
        made.SetFixedColCount(1);
        made.SetFixedRowCount(1);
        rows ? made.DeleteRows(0, 3) : made.DeleteCols(0, 2);
        made.SetDimensions(0, 5);
        EXPECT_EQ(made.GetRowCount() + made.GetColCount() + made.GetColWidth(0), 0) << rows;
        made.SetDimensions(4, 1);
        EXPECT_EQ(made.GetFixedColCount() + made.GetFixedRowCount(), 0) << rows;
        EXPECT_EQ(current(), "none");
    }
}

TEST_F(GridHosts, userIdsStartAtZeroAgain)
{
    make(true).BeginUpdate();
    grid->SetDimensions(3, 1);
    grid->SetRowUserID(1, 9);
    grid->SetDimensions(3, 1);
    grid->GetCell(1, 0);
    EXPECT_EQ(asked.back().dwRowUserID, 0U);
}

TEST_F(GridHosts, deletingNothingLeavesAnEditAlone)
{
    TestGrid &made = makePlain(4, 3);
    answers[2034] = 1;
    made.SetSelection(0, 1, 0, 1);
    made.EnableCellEdit(0, 1);
    takeLog();
    made.DeleteRows(4, 1);
    made.DeleteRows(0, 0);
    made.DeleteCols(3, 1);
    made.DeleteCols(0, 0);
    EXPECT_TRUE(takeLog().empty());
    made.DeleteCols(1, 100);
    EXPECT_EQ(made.GetColCount(), 1) << "what is left of 100";
    EXPECT_EQ(takeLog().size(), 1U);
}

TEST_F(GridHosts, aViewOfTheBeginningStaysOneWhenFixedLinesGo)
{
    TestGrid &made = makePlain(40, 12);
    made.BeginUpdate();
    for (USHORT col = 0; col < 12; ++col)
    {
        made.SetColWidth(col, 40);
    }
    made.EndUpdate();
    made.SetFixedRowCount(2);
    made.SetFixedColCount(3);
    EXPECT_EQ(made.GetTopRow(), 2);
    EXPECT_EQ(made.GetLeftCol(), 3);
    made.SetFixedRowCount(0);
    made.SetFixedColCount(1);
    EXPECT_EQ(made.GetTopRow(), 0);
    EXPECT_EQ(made.GetLeftCol(), 1);
    made.SetTopRow(7);
    made.SetRowSelect(true);
    made.SetFixedRowCount(1);
    EXPECT_EQ(made.GetTopRow(), 7) << "another view too";
    EXPECT_EQ(current(), "1,1");
    EXPECT_EQ(selection(), "1,1 11,1") << "of whole rows";
}

TEST_F(GridHosts, deletedColumnsTakeTheirWidthsFloatersAndFixedOnesAlong)
{
    TestGrid &made = makePlain(4, 6);
    for (USHORT col = 0; col < 6; ++col)
    {
        made.SetColWidth(col, static_cast<USHORT>(20 + col));
        made.AddFloater(col, 1, col + 1U, 2, 0, 0, 0, false);
    }
    made.SetFixedColCount(2);
    made.DeleteCols(1, 2);
    EXPECT_EQ(made.GetFixedColCount(), 1);
    const USHORT left[] = {0, 3, 4, 5};
    for (USHORT col = 0; col < 4; ++col)
    {
        EXPECT_EQ(made.GetColWidth(col), 20 + left[col]);
        EXPECT_EQ(made.FloaterCount(col, 1) + made.FloaterCount(col, 2), 2);
        EXPECT_EQ(made.FindCell(2, col)->Floaters.at(left[col] + 1U)->pOwner, made.FindCell(1, col));
    }
    made.SetFixedColCount(2);
    made.DeleteCols(0, 2); // the second round compares 1 with the 1 that is left
    EXPECT_EQ(made.GetFixedColCount(), 1);
}

TEST_F(GridHosts, aViewOfWhatIsDeletedGoesBackToTheLastThatFills)
{
    TestGrid &made = makePlain(40, 12);
    made.BeginUpdate();
    for (USHORT col = 0; col < 12; ++col)
    {
        made.SetColWidth(col, 40);
    }
    made.EndUpdate();
    made.SetSelection(11, 39, 11, 39);
    made.ScrollToBottom();
    made.ScrollToRight();
    made.DeleteRows(10, 30);
    // As many rows of 15 as show whole above the bar below.
    const int room = 100 - GetSystemMetrics(SM_CYHSCROLL);
    EXPECT_EQ(made.GetTopRow(), 10 - room / 15);
    EXPECT_EQ(made.GetBottomRow(), 9);
    EXPECT_EQ(bar(SB_VERT).nMax, 150);
    EXPECT_EQ(current(), "11,9");
    EXPECT_EQ(selection(), "11,9 11,9");
    made.DeleteCols(6, 6);
    EXPECT_EQ(made.GetLeftCol(), 6 - (200 - GetSystemMetrics(SM_CXVSCROLL)) / 40);
    EXPECT_EQ(bar(SB_HORZ).nMax, 240);
    EXPECT_EQ(current(), "5,9");
    EXPECT_EQ(selection(), "5,9 5,9");
}

// --- Settings ----------------------------------------------------------------------------------------------------

TEST_F(GridHosts, eachSettingIsItsOwn)
{
    struct Setting
    {
        void (CHTMLGrid::*set)(bool);
        bool (CHTMLGrid::*get)() const;
    };
    const Setting settings[] = {{&CHTMLGrid::SetShowHLines, &CHTMLGrid::GetShowHLines},
                                {&CHTMLGrid::SetShowVLines, &CHTMLGrid::GetShowVLines},
                                {&CHTMLGrid::SetShowFixedHLines, &CHTMLGrid::GetShowFixedHLines},
                                {&CHTMLGrid::SetShowFixedVLines, &CHTMLGrid::GetShowFixedVLines},
                                {&CHTMLGrid::SetRowHeightFixed, &CHTMLGrid::GetRowHeightFixed},
                                {&CHTMLGrid::SetThumbTrack, &CHTMLGrid::GetThumbTrack},
                                {&CHTMLGrid::SetRowSelect, &CHTMLGrid::GetRowSelect},
                                {&CHTMLGrid::SetShowFocus, &CHTMLGrid::GetShowFocus},
                                {&CHTMLGrid::SetAllowAutoScroll, &CHTMLGrid::GetAllowAutoScroll},
                                {&CHTMLGrid::SetDragAllowed, &CHTMLGrid::GetDragAllowed}};
    TestGrid &made = makePlain(2, 2);
    const auto all = [&]
    {
        std::string values;
        for (const Setting &one : settings)
        {
            values += (made.*one.get)() ? '1' : '0';
        }
        return values;
    };
    EXPECT_EQ(all(), "0111010010");
    for (std::size_t i = 0; i < std::size(settings); ++i)
    {
        const Setting &one = settings[i];
        std::string expected = all();
        const bool now = expected[i] == '0';
        expected[i] = now ? '1' : '0';
        (made.*one.set)(now);
        EXPECT_EQ(all(), expected);
    }
    made.SetBackColor(RGB(1, 2, 3));
    EXPECT_EQ(made.GetBackColor(), RGB(1, 2, 3));
    made.SetToolTipParent(parent.window);
    EXPECT_EQ(made.GetToolTipParent(), parent.window);
    made.SetToolTipParent(nullptr);
    EXPECT_EQ(made.GetToolTipParent(), made.GetHwnd());
    made.SetFloaterOptions(false, true);
    bool text = true;
    bool strip = false;
    made.GetFloaterOptions(text, strip);
    EXPECT_TRUE(!text && strip);
}

// --- Cells -------------------------------------------------------------------------------------------------------

TEST_F(GridHosts, aTextLeavesTheRestOfItsCellAlone)
{
    TestGrid &made = makePlain(2, 1);
    made.SetCellData(0, 1, 5);
    made.SetCellSingleLine(0, 1, true);
    made.AddFloater(0, 1, 3, 1, 0, 0, 0, false);
    made.SetCellText(0, 1, u"text");
    EXPECT_EQ(made.GetCellData(0, 1), 5U);
    EXPECT_EQ(made.FindCell(1, 0)->bSingleLine, 1);
    EXPECT_EQ(floatersByRow(), "01");
    made.SetCellText(0, 0, u"another");
    EXPECT_EQ(made.GetCellData(0, 0), 0U);
}

TEST_F(GridHosts, whatIsNotThereIsNeitherMadeNorAskedForBySettings)
{
    make(true).BeginUpdate();
    grid->SetDimensions(2, 1);
    grid->SetCellData(0, 1, 5);
    grid->SetCellSingleLine(0, 1, true);
    EXPECT_EQ(grid->FindCell(1, 0), nullptr);
    EXPECT_TRUE(asked.empty());
    grid->SetCellData(5, 5, 1);
    grid->SetCellSingleLine(5, 5, true);
    grid->SetRowUserID(5, 1);
    grid->SetRowHeight(5, 40);
    grid->SetColWidth(5, 40);
    grid->DeleteFloater(5, 5, 1);
    EXPECT_EQ(grid->GetCellData(5, 5), 0U);
    EXPECT_EQ(grid->GetRowHeight(2, true), 0);
    EXPECT_EQ(grid->GetColWidth(1), 0);
    EXPECT_EQ(grid->FloaterCount(5, 5), 0);
    EXPECT_FALSE(grid->CellHasFloaters(0, 5));
    EXPECT_TRUE(asked.empty());
}

TEST_F(GridHosts, anAnswersQualityIsTheCells)
{
    onCell = [](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"text";
        request.nFontQuality = NONANTIALIASED_QUALITY;
    };
    tagCELLINFO *cell = makeOnDemand(1, 1).GetCell(0, 0);
    ASSERT_TRUE(cell != nullptr && cell->FirstToken());
    EXPECT_EQ(describeFont(cell->GetCurrFont()).lfQuality, NONANTIALIASED_QUALITY);
    grid->SetFontQuality(ANTIALIASED_QUALITY);
    EXPECT_EQ(describeFont(cell->GetCurrFont()).lfQuality, NONANTIALIASED_QUALITY) << "for later ones alone";
}

TEST_F(GridHosts, marginsOfAnySizeAreHeldAtSomeThatCanBeReckonedWith)
{
    constexpr LONG largest = 0x7FFFFFFF;
    TestGrid &made = makePlain(2, 1);
    made.SetCellText(0, 0, u"<FONT SIZE=-1>a", RECT{0, 0, 0, largest});
    made.SetCellText(0, 1, u"<FONT SIZE=-1>a", RECT{-largest, -largest, -largest - 1, -largest});
    EXPECT_EQ(made.GetRowHeight(0, false), 32000 + 11);
    EXPECT_EQ(made.GetRowHeight(1, false), 15);
    settle();
}

// --- Pictures ----------------------------------------------------------------------------------------------------

TEST_F(GridHosts, filesHaveANameAPointAndThreeLettersBelowTheRoot)
{
    TestGrid &made = makePlain(1, 1);
    const auto folder = device.files() / "Pictures" / std::string(200, 'd');
    std::filesystem::create_directories(folder);
    made.SetResourcesRootPath((u"\\Pictures\\" + std::u16string(200, u'd')).c_str());
    const std::string longest = std::string(48 - 4, 'n') + ".bmp"; // 211 in front of it make 259
    const std::vector<std::string> names = {".bmp", "x.bmp", "ab.jpeg", longest, 'n' + longest, "baaaaapa.bmp",
                                            "caaaaapq.bmp", "caaaaapa.bmp", "oqxzabcd.bmp"};
    for (const std::string &name : names)
    {
        ASSERT_TRUE(savePng({1, 1, {0xFF0000}}, folder / name));
    }
    const auto ask = [&](const std::string &name)
    {
        const std::u16string source(name.begin(), name.end());
        made.SetCellText(0, 0, (u"<IMG SRC=" + source + u">").c_str());
        tagCELLINFO &cell = *made.FindCell(0, 0);
        cell.FirstToken();
        return cell.GetCurrTokenBitmap(nullptr);
    };
    EXPECT_EQ(ask(".bmp"), nullptr);
    EXPECT_NE(ask("x.bmp"), nullptr);
    EXPECT_EQ(ask("ab.jpeg"), nullptr);
    EXPECT_NE(ask(longest), nullptr);
    EXPECT_EQ(ask('n' + longest), nullptr);
    // What b and c differ in comes back 24 bits lower, where a and q differ.
    const HBITMAP first = ask("baaaaapa.bmp");
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(ask("caaaaapq.bmp"), first);
    EXPECT_NE(ask("caaaaapa.bmp"), first);
    EXPECT_NE(ask("oqxzabcd.bmp"), nullptr);
    EXPECT_EQ(made.AddBitmapToCache(18880), nullptr) << "its hash is that number; files have keys of their own";
    EXPECT_EQ(ask("later.bmp"), nullptr);
    ASSERT_TRUE(savePng({1, 1, {0xFF0000}}, folder / "later.bmp"));
    EXPECT_NE(ask("later.bmp"), nullptr) << "what could not be loaded was not kept";
    EXPECT_EQ(made.AddBitmapToCache(nullptr, 5), nullptr);
    EXPECT_EQ(made.AddBitmapToCache(u"x.bmp", -1), nullptr);
    made.SetResourcesRootPath(std::u16string(259, u'd').c_str());
    EXPECT_EQ(ask("x.bmp"), nullptr) << "of 259 characters, which is taken, and behind which no name has room";
}

TEST_F(GridHosts, picturesGoWithTheCacheAndTheGrid)
{
    std::filesystem::create_directories(device.files() / "Pictures");
    ASSERT_TRUE(savePng({1, 1, {0xFF0000}}, device.files() / "Pictures" / "x.bmp"));
    makePlain(1, 1).SetResourcesRootPath(u"\\Pictures");
    const auto isThere = [](HBITMAP bitmap)
    {
        BITMAP record{};
        return GetObjectW(bitmap, sizeof record, &record) != 0;
    };
    const HBITMAP first = grid->AddBitmapToCache(u"x.bmp", 5);
    EXPECT_TRUE(isThere(first));
    grid->ClearBitmapCache();
    EXPECT_FALSE(isThere(first));
    const HBITMAP second = grid->AddBitmapToCache(u"x.bmp", 5);
    EXPECT_TRUE(isThere(second));
    grid.reset();
    EXPECT_FALSE(isThere(second));
}
} // namespace
} // namespace zb::test
