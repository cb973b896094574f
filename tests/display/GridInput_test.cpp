// Orders and numbers of the grid's input that stand for themselves, sizes on a finer screen, and parents that end the
// grid whenever they hear of it.
#include "display/GridStage.h"
#include "platform/image_list.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;
using Codes = std::vector<int>;

class GridInput : public FourColumnTest
{
  protected:
    /// Looks at what the parent hears before it answers.
    void watch(const std::function<void(UINT, WPARAM, LPARAM)> &look)
    {
        parent.before = [look, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            look(message, wParam, lParam);
            return others(message, wParam, lParam, result);
        };
    }
};

// --- Orders ------------------------------------------------------------------------------------------------------

TEST_F(GridInput, whatIsToldOnTheWayDownHasItsPlaceItsFloaterAndItsKey)
{
    four();
    MoveWindow(*grid, 20, 30, 200, 100, TRUE);
    floaterText = u"<FONT SIZE=-1><A=key>hot</A>";
    grid->AddFloater(1, 1, 7, 3, 100, 0, RGB(0, 0, 255), false);
    settle();
    testHotSpots = true;
    std::vector<std::string> told;
    watch(
        [&told](UINT message, WPARAM, LPARAM lParam)
        {
            if (message == WM_NOTIFY)
            {
                const auto &record = *reinterpret_cast<tagNM_GRIDVIEW *>(lParam);
                std::string line;
                for (const auto number : {static_cast<long>(record.hdr.code), static_cast<long>(record.nCol),
                                          static_cast<long>(record.nRow), static_cast<long>(record.dwCookie),
                                          static_cast<long>(record.pt.x), static_cast<long>(record.pt.y)})
                {
                    line += std::to_string(number) + ' ';
                }
                told.push_back(line + (record.szTarget == nullptr ? "" : utf8(record.szTarget)));
            }
        });
    draw({{20 + 45 + 7 + 5, 30 + 15 + 6}}, false);
    EXPECT_EQ(told, (Log{"2047 1 1 7 77 51 ", "2046 1 1 7 77 51 key"}));
}

TEST_F(GridInput, hotSpotsAndClicksGoToTheGridFirst)
{
    class Kind : public TestGrid
    {
      public:
        using TestGrid::TestGrid;
        void OnClick(tagNM_GRIDVIEW *notify, bool &) override
        {
            heard.push_back(static_cast<int>(notify->hdr.code));
        }
        LRESULT OnHotspotNotify(tagNM_GRIDVIEW *notify, bool &handled) override
        {
            heard.push_back(-static_cast<int>(notify->hdr.code));
            return passesOn ? TestGrid::OnHotspotNotify(notify, handled) : 0;
        }
        Codes heard;
        bool passesOn = false;
    };
    auto owned = std::make_unique<Kind>(parent.window, RECT{0, 0, 100, 60}, false);
    Kind &kind = *owned;
    grid = std::move(owned);
    kind.SetDimensions(2, 1);
    kind.SetCellText(0, 0, u"<FONT SIZE=-1><A=key>hot</A>");
    settle();
    testHotSpots = true;
    draw({{3, 5}});
    EXPECT_EQ(kind.heard, (Codes{-2046, -2, -1125}));
    EXPECT_EQ(notified, (Codes{2047}));
    kind.heard.clear();
    kind.passesOn = true;
    tick(84);
    draw({{3, 5}});
    EXPECT_EQ(kind.heard, (Codes{-2046, 2046, -2, -1125, 1125})) << "each is a click too, behind the parent";
    EXPECT_EQ(notified, (Codes{2047, 2047, 2046, 1125}));
}

TEST_F(GridInput, aSelectionShowsWhileThePenIsDown)
{
    four();
    draw({at(1, 2)}, false);
    EXPECT_EQ(screenPixel(at(1, 2).x, at(1, 2).y), GetSysColor(COLOR_HIGHLIGHT));
}

TEST_F(GridInput, whatShiftHasTakenIsNeitherSweptNorDragged)
{
    four().SetMultiSelect(true, false);
    keyDown(VK_SHIFT);
    for (const bool drags : {false, true})
    {
        grid->SetDragAllowed(drags);
        tick(84);
        draw({at(1, drags ? 3 : 1), at(3, drags ? 3 : 4)});
    }
    keyUp(VK_SHIFT);
    settle();
    EXPECT_EQ(selection(), "1,1 1,3");
    EXPECT_EQ(notified, (Codes{2047, 2047}));
    EXPECT_TRUE(takeLog().empty());
}

TEST_F(GridInput, aSweepThatEndsOnAHotSpotFollowsNothing)
{
    four().SetMultiSelect(true, true);
    grid->SetCellText(1, 4, u"<FONT SIZE=-1><A=key>hot</A>");
    settle();
    draw({at(1, 2), {45 + 5, 60 + 5}});
    EXPECT_EQ(notified, (Codes{2047, -13}));
    grid->SetSelectionMode(3);
    takeLog();
    draw({at(1, 2), at(2, 3), {45 + 5, 60 + 5}});
    EXPECT_EQ(notified, (Codes{2047, -13, 2047, -13}));
    EXPECT_TRUE(takeLog().empty()) << "nothing is selected, so nothing has a tip";
}

TEST_F(GridInput, aSweepOutOfASelectionGoesOnFromItsAnchor)
{
    four().SetMultiSelect(true, true);
    texts[2022] = u"<FONT SIZE=-1>two";
    draw({at(1, 1)});
    grid->SetSelection(1, 1, 2, 3);
    draw({at(2, 2), at(3, 4)}, false);
    EXPECT_EQ(selection(), "1,1 3,4");
    RECT tip{};
    GetWindowRect(GetWindow(*grid, GW_CHILD), &tip);
    EXPECT_EQ(tip.right, at(1, 1).x) << "of the tap that began it";
    EXPECT_EQ(tip.bottom, at(1, 1).y);
}

TEST_F(GridInput, theHeightThatMakesASweepOfADragIsThatOfTheLeastRow)
{
    four().SetMultiSelect(true, false);
    grid->SetDragAllowed(true);
    grid->SetMinRowHeight(22);
    for (const int along : {22, 23})
    {
        tick(84);
        draw({{60, 40}, {55, 40 + along}});
        EXPECT_EQ(notified.back(), along > 22 ? -13 : -114);
    }
}

TEST_F(GridInput, movesAtAnEdgeDontPutTheScrollingOff)
{
    four(40).SetMultiSelect(true, false);
    draw({at(1, 2), at(1, 3), {60, 92}}, false);
    skipTime(200);
    settle();
    EXPECT_EQ(grid->GetTopRow(), 0);
    penMove(60, 93);
    settle();
    skipTime(150);
    settle();
    EXPECT_EQ(grid->GetTopRow(), 1);
}

TEST_F(GridInput, anEmptySelectionKeepsItsColumns)
{
    four(40).SetSelection(1, 2, 2, 3);
    const auto columns = [this]
    {
        USHORT left = 0;
        USHORT top = 0;
        USHORT right = 0;
        USHORT bottom = 0;
        grid->GetSelection(left, top, right, bottom);
        EXPECT_EQ(top, 0xFFFF);
        EXPECT_EQ(bottom, 0xFFFF);
        return std::to_string(left) + ' ' + std::to_string(right);
    };
    grid->EmptySelection();
    EXPECT_EQ(columns(), "2 2") << "the current one";
    grid->SetFixedColCount(1);
    grid->SetRowSelect(true);
    grid->SetSelection(2, 2, 2, 2);
    grid->SetRow(30);
    EXPECT_EQ(columns(), "1 3") << "all that are free";
    EXPECT_TRUE(grid->IsCellVisible(2, 30, false));
    for (USHORT col = 0; col < 4; ++col)
    {
        grid->SetColWidth(col, 90);
    }
    grid->SetSelection(1, 30, 1, 30);
    grid->SetCol(3);
    EXPECT_EQ(columns(), "1 3");
    RECT cell{};
    ASSERT_TRUE(grid->GetCellRect(3, 30, cell));
    EXPECT_LE(cell.right, 200);
}

// --- Parents that end the grid -----------------------------------------------------------------------------------

/// What leads to each message, by the pen or by a call.
class GridEnds : public GridInput
{
  protected:
    void sweep()
    {
        grid->SetMultiSelect(true, true);
        draw({at(2, 1), at(2, 3), at(3, 4)});
    }
    void scrollingSweep()
    {
        four(40).SetMultiSelect(true, true);
        draw({at(1, 1), {at(1, 1).x + 15, at(1, 1).y}, {60, 92}}, false);
        ending = 2022;
        SendMessageW(*grid, WM_TIMER, 77, 0);
    }
    void dragThumb()
    {
        grid->SetShowScrollBars(true, true, true);
        SendMessageW(*grid, WM_VSCROLL, SB_THUMBPOSITION, 0);
    }
    void moveFloater()
    {
        draw({{45 + 3, 22}, {90 + 3, 37}, {90 + 3, 52}});
    }
    void cancelledFloater()
    {
        draw({{45 + 3, 22}, {90 + 3, 37}}, false);
        SendMessageW(*grid, WM_LBUTTONDOWN, MK_LBUTTON, pair(3, 3));
    }
    void drag()
    {
        grid->SetDragAllowed(true);
        draw({at(2, 5), {at(2, 5).x + 11, at(2, 5).y}, {60, 60}, {61, 60}});
    }
    void edit()
    {
        draw({at(3, 2)});
        draw({at(3, 2)});
    }
    void beginEdit()
    {
        grid->SetSelection(3, 2, 3, 2);
        grid->EnableCellEdit(3, 2);
        ASSERT_NE(GetWindow(*grid, GW_CHILD), nullptr);
    }
    struct Case
    {
        UINT message;
        std::function<void()> act;
    };
    std::vector<Case> cases()
    {
        return {
            {GRID_SKIPHOLD, [this] { draw({at(3, 3)}); }},
            {2022, [this] { sweep(); }},
            {0, [this] { scrollingSweep(); }},
            {2023, [this] { dragThumb(); }},
            {2024, [this] { moveFloater(); }},
            {2025, [this] { moveFloater(); }},
            {2026, [this] { moveFloater(); }},
            {2027, [this] { moveFloater(); }},
            {2027, [this] { cancelledFloater(); }},
            {2026, [this] { cancelledFloater(); }},
            {2029, [this] { drag(); }},
            {2030, [this] { drag(); }},
            {2031, [this] { drag(); }},
            {2032, [this] { drag(); }},
            {2033, [this] { drag(); }},
            {2034, [this] { edit(); }},
            {2035,
             [this]
             {
                 beginEdit();
                 grid->SetSelection(0, 0, 0, 0);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 grid->DeleteRows(0, 1);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 grid->DeleteCols(0, 1);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 grid->SetDimensions(2, 2);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 grid->EnableCellEdit(0, 0);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 press(VK_DOWN);
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 draw({at(0, 4)});
             }},
            {2035,
             [this]
             {
                 beginEdit();
                 SetFocus(parent.window);
             }},
            {2045, [this] { press(VK_DOWN); }},
        };
    }
    /// In a grid with a floater whose parent agrees to everything, and does `then` behind the answer.
    void actWith(const Case &one, const std::function<void()> &then)
    {
        const auto usual = parent.before;
        four().AddFloater(1, 1, 7, 3, 100, 0, RGB(0, 0, 255), false);
        settle();
        answers = {{2025, 3}, {2029, 1}, {2031, 1}, {2034, 1}};
        texts[2022] = texts[2024] = texts[2032] = u"tip";
        ending = one.message;
        parent.before = [&](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            const bool known = usual(message, wParam, lParam, result);
            if (message == ending && message != 0)
            {
                then();
            }
            return known;
        };
        one.act();
        parent.before = usual;
    }
    UINT ending = 0;
};

TEST_F(GridEnds, whicheverQuestionTheParentEndsItIn)
{
    for (const Case &one : cases())
    {
        actWith(one, [this] { grid.reset(); });
        EXPECT_EQ(grid, nullptr) << static_cast<int>(one.message);
        EXPECT_EQ(GetCapture(), nullptr) << static_cast<int>(one.message);
        penUp(0, 0);
        settle();
    }
}

TEST_F(GridEnds, rowsAndColumnsMayGoInAnyQuestion)
{
    const std::function<void()> changes[] = {[this] { grid->SetDimensions(1, 1); },
                                             [this]
                                             {
                                                 grid->DeleteRows(1, 40);
                                                 grid->DeleteCols(1, 3);
                                             }};
    for (const auto &change : changes)
    {
        for (const Case &one : cases())
        {
            if (one.message == 2035)
            {
                continue; // the acts behind it change the grid themselves
            }
            bool changed = false;
            actWith(one,
                    [&]
                    {
                        if (!std::exchange(changed, true))
                        {
                            change();
                        }
                    });
            EXPECT_TRUE(changed) << static_cast<int>(one.message);
            penUp(0, 0);
            settle();
            EXPECT_EQ(grid->GetRowCount(), 1);
            EXPECT_EQ(grid->GetColCount(), 1);
            EXPECT_TRUE(selection() == "none" || selection() == "0,0 0,0") << selection();
            tick(84);
            EXPECT_EQ(GetCapture(), nullptr) << static_cast<int>(one.message);
            notified.clear();
            draw({at(0, 0)});
            EXPECT_EQ(current(), "0,0") << static_cast<int>(one.message);
            EXPECT_EQ(notified.back(), -114) << static_cast<int>(one.message);
        }
    }
}

TEST_F(GridEnds, aTapCountsFromTheCellThatItFindsOnceItHasTheFocus)
{
    ScreenWindow other(0, WS_CHILD | WS_VISIBLE, 0, 200, 50, 20, parent.window);
    four().SetShowFocus(true);
    draw({at(1, 1)});
    SetFocus(other.window);
    other.before = [this](UINT message, WPARAM, LPARAM, LRESULT &)
    {
        if (message == WM_KILLFOCUS)
        {
            grid->SetSelection(2, 2, 2, 2);
        }
        return false;
    };
    draw({at(1, 1)});
    EXPECT_EQ(current(), "1,1");
    EXPECT_TRUE(takeLog().empty()) << "no double tap";
}

TEST_F(GridEnds, whoeverLosesOrGetsTheFocusMayEndIt)
{
    ScreenWindow other(0, WS_CHILD | WS_VISIBLE, 0, 200, 50, 20, parent.window);
    const auto endsAt = [&](UINT heard)
    {
        four();
        answers[2034] = 1;
        grid->SetSelection(3, 2, 3, 2);
        other.before = nullptr;
        SetFocus(other.window);
        log.clear();
        other.before = [this, heard](UINT message, WPARAM, LPARAM, LRESULT &)
        {
            if (message == heard)
            {
                grid.reset();
            }
            return false;
        };
    };
    endsAt(WM_KILLFOCUS);
    grid->SetShowFocus(true);
    draw({at(1, 1)});
    EXPECT_EQ(grid, nullptr);
    endsAt(WM_KILLFOCUS);
    grid->EnableCellEdit(3, 2);
    EXPECT_EQ(grid, nullptr);
    endsAt(WM_SETFOCUS);
    grid->EnableCellEdit(3, 2);
    SendMessageW(GetWindow(*grid, GW_CHILD), WM_CANCELMODE, 0, 0); // it gets the focus back
    EXPECT_EQ(grid, nullptr);
    EXPECT_EQ(takeLog(), (Log{"2034 3,2 -2", "2035 3,2 0"})) << "told all the same";
}

// --- A finer screen ----------------------------------------------------------------------------------------------

/// 192 dots an inch: rows of 30.
class GridInputDoubled : public GridTest
{
  protected:
    GridInputDoubled() : GridTest(192)
    {
        makePlain(6, 2, 200, 200);
        settle();
    }
};

TEST_F(GridInputDoubled, distancesOfSweepsAndDragsFollowIt)
{
    struct Case
    {
        bool drags;
        int x, y;
        bool begins;
    };
    grid->SetMultiSelect(true, false);
    answers[2031] = 1;
    for (const Case &one : {Case{false, 24, 0, false}, Case{false, 25, 0, true}, Case{false, 0, 24, false},
                            Case{false, 0, 25, true}, Case{true, 20, 0, false}, Case{true, 21, 0, true}})
    {
        grid->SetDragAllowed(one.drags);
        tick(84);
        log.clear();
        draw({{60, 100}, {60 + one.x, 100 + one.y}});
        EXPECT_EQ(one.drags ? !log.empty() : notified.back() == -13, one.begins) << one.x << ' ' << one.y;
    }
}

TEST_F(GridInputDoubled, tipsAndPicturesOfDragsFollowIt)
{
    grid->SetDragAllowed(true);
    answers[2031] = answers[2029] = 1;
    const HIMAGELIST list = ImageList_Create(20, 12, ILC_COLOR, 1, 1);
    ASSERT_EQ(ImageList_Add(list, reinterpret_cast<HBITMAP>(MemoryBitmap(20, 12).bitmap()), nullptr), 0);
    answers[2033] = reinterpret_cast<LRESULT>(list);
    draw({{60, 100}, {81, 100}}, false);
    POINT hotSpot{};
    ASSERT_NE(ImageList_GetDragImage(nullptr, &hotSpot), nullptr);
    EXPECT_EQ(hotSpot.x, 4);
    const HWND tip = GetWindow(*grid, GW_CHILD);
    RECT place{};
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.left, 10);
    EXPECT_EQ(place.top, 10);
    texts[2032] = u"there";
    penMove(90, 100);
    settle();
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.right, 200);
    EXPECT_EQ(place.top, 10);
    penUp(90, 100);
    settle();
}

TEST_F(GridInputDoubled, boxesOverCellsFollowIt)
{
    answers[2034] = 1;
    struct Case
    {
        USHORT row;
        int height;
    };
    for (const Case &one : {Case{30, 34}, Case{24, 28}, Case{23, 32}})
    {
        grid->SetRowHeight(0, one.row);
        grid->SetSelection(0, 0, 0, 0);
        grid->EnableCellEdit(0, 0);
        RECT box{};
        GetWindowRect(GetWindow(*grid, GW_CHILD), &box);
        EXPECT_EQ(describe(box), "1,-1 95," + std::to_string(one.height - 1)); // 6 narrower than 100
    }
}
} // namespace
} // namespace zb::test
