// Parents that use the grid while it asks them for something.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
const std::u16string threeLines = u"<FONT SIZE=-1><BODY=#00FF00>a<BR>b<BR>c"; // 31 high

class GridReentry : public GridTest
{
  protected:
    static USHORT rowOf(const GRIDCELLREQUEST &request)
    {
        return HIWORD(request.hdr.idFrom);
    }
    /// Before the usual answer to a message.
    void before(UINT wanted, const std::function<void()> &work)
    {
        parent.before = [wanted, work, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam,
                                                               LRESULT &result)
        {
            if (message == wanted)
            {
                work();
            }
            return others(message, wParam, lParam, result);
        };
    }
    /// Row 0 has three lines, two rows of 15 follow.
    void expectTheTallRow(const std::string &how)
    {
        USHORT col = 0;
        USHORT row = 0;
        EXPECT_EQ(grid->GetRowHeight(0, false), 31) << how;
        EXPECT_EQ(rectOf(0, 2), "0,46 200,61") << how;
        EXPECT_TRUE(grid->GetCellFromPoint(10, 40, col, row)) << how;
        EXPECT_EQ(row, 1) << how;
        EXPECT_EQ(screenPixel(100, 28), RGB(0, 255, 0)) << how;
        EXPECT_EQ(screenPixel(100, 38), RGB(255, 255, 0)) << how;
        EXPECT_EQ(screenPixel(100, 53), RGB(255, 0, 255)) << how;
    }
    void answerWithColours()
    {
        onCell = [this](GRIDCELLREQUEST &request)
        {
            static const WCHAR *const texts[] = {u"<BODY=#0000FF>", u"<BODY=#FFFF00>", u"<BODY=#FF00FF>"};
            request.pszHTML = texts[rowOf(request)];
            if (rowOf(request) == 2 && inRequest)
            {
                inRequest();
            }
        };
    }
    std::function<void()> inRequest;
};

TEST_F(GridReentry, otherCellsMayBeSetWhileOneIsAskedFor)
{
    for (const bool inUpdate : {false, true})
    {
        answerWithColours();
        inRequest = [&]
        {
            inUpdate ? grid->BeginUpdate() : void();
            grid->SetCellText(0, 0, threeLines.c_str());
            inUpdate ? grid->EndUpdate() : void();
        };
        asked.clear();
        makeOnDemand(3, 1);
        settle();
        expectTheTallRow(inUpdate ? "in an update" : "plain");
        EXPECT_EQ(asked.size(), 3U) << "each once";
    }
}

TEST_F(GridReentry, cellsMayBeSetWhileTheGridPaints)
{
    // A cell that nobody has is asked for by the layout and again by the paint.
    int times = 0;
    onCell = [&](GRIDCELLREQUEST &request)
    {
        static const WCHAR *const texts[] = {u"<BODY=#0000FF>", u"<BODY=#FFFF00>", u"<BODY=#FF00FF>", nullptr};
        request.pszHTML = texts[rowOf(request)];
        if (rowOf(request) == 3 && ++times == 2)
        {
            grid->SetCellText(0, 0, threeLines.c_str());
            grid->SetSelection(0, 3, 0, 3);
        }
    };
    makeOnDemand(4, 1);
    settle();
    EXPECT_GE(times, 2);
    expectTheTallRow("painting");
    EXPECT_EQ(screenPixel(100, 68), GetSysColor(COLOR_HIGHLIGHT));
}

TEST_F(GridReentry, aCellThatIsAskedForIsNotAskedForAgain)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        const USHORT row = rowOf(request);
        EXPECT_EQ(grid->GetCell(row, 0), nullptr);
        EXPECT_FALSE(grid->AddFloater(0, row, 1, 1, 0, 0, 0, false));
        EXPECT_EQ(grid->GetRowHeight(row, true), 15);
        grid->UpdateCellText(0, row);
        request.pszHTML = u"a";
    };
    makeOnDemand(3, 1);
    settle();
    EXPECT_EQ(asked.size(), 3U);
    EXPECT_NE(grid->FindCell(2, 0), nullptr);
}

TEST_F(GridReentry, theAnswerTakesThePlaceOfATextThatWasSetMeanwhileButKeepsItsFloaters)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        if (rowOf(request) == 1)
        {
            grid->SetCellText(0, 1, u"first");
            grid->SetCellData(0, 1, 1);
            EXPECT_TRUE(grid->AddFloater(0, 1, 7, 2, 0, 0, 0, false));
            request.dwData = 2;
        }
        request.pszHTML = u"second";
    };
    makeOnDemand(3, 1);
    settle();
    EXPECT_EQ(grid->GetCellData(0, 1), 2U);
    EXPECT_EQ(grid->FindCell(2, 0)->Floaters.at(7)->pOwner, grid->FindCell(1, 0));
    grid->DeleteFloater(0, 2, 7);
    EXPECT_EQ(grid->FloaterCount(0, 1), 0);
}

TEST_F(GridReentry, aSmallerGridWhileItAsksIsSurvived)
{
    // Parents must not; a mistake of theirs is no reason to fall.
    bool once = true;
    onCell = [&](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        if (rowOf(request) == 4 && std::exchange(once, false))
        {
            grid->SetDimensions(2, 1);
        }
    };
    makeOnDemand(50, 2);
    settle();
    EXPECT_EQ(grid->GetRowCount(), 2);
    EXPECT_EQ(grid->FindCell(4, 0), nullptr);
    EXPECT_EQ(grid->GetTotalHeight(), 30U);
}

TEST_F(GridReentry, aWindowThatEndsWhileItAsksLeavesItsObjectUsable)
{
    // By the layout, and by the paint, which asks again for what nobody has.
    for (const int last : {1, 2})
    {
        int times = 0;
        onCell = [&](GRIDCELLREQUEST &request)
        {
            request.pszHTML = rowOf(request) == 2 ? nullptr : u"a";
            times += rowOf(request) == 2 ? 1 : 0;
            if (times == last)
            {
                DestroyWindow(*grid);
            }
        };
        makeOnDemand(5, 1);
        settle();
        EXPECT_EQ(grid->GetHwnd(), nullptr) << last;
        onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
        grid->SetDimensions(3, 1);
        grid->SetCellText(0, 0, u"<BODY=#00FF00>");
        EXPECT_TRUE(grid->AddFloater(0, 1, 7, 2, 0, 0, 0, false));
        ASSERT_TRUE(grid->InitWindow(parent.window, RECT{0, 0, 200, 100}, true));
        settle();
        EXPECT_EQ(grid->GetRowCount(), 3);
        EXPECT_EQ(grid->FloaterCount(0, 2), 1);
        EXPECT_EQ(screenPixel(100, 7), RGB(0, 255, 0)) << last;
    }
}

// --- Floaters ----------------------------------------------------------------------------------------------------

TEST_F(GridReentry, cellsOfANewFloaterMayBeRenewedWhileItsTextIsAskedFor)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
    makeOnDemand(5, 1);
    before(2026, [this] { grid->UpdateCellText(0, 1); });
    EXPECT_TRUE(grid->AddFloater(0, 1, 7, 2, 0, 0, 0, false));
    EXPECT_EQ(grid->FindCell(2, 0)->Floaters.at(7)->pOwner, grid->FindCell(1, 0));
    before(2026, [this] { grid->SetDimensions(1, 1); });
    EXPECT_FALSE(grid->AddFloater(0, 1, 8, 2, 0, 0, 0, false));
    EXPECT_EQ(grid->FloaterCount(0, 0), 0);
}

TEST_F(GridReentry, cellsOfAFloaterMayBeRenewedWhileFurtherOnesAreAskedFor)
{
    onCell = [this](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        if (rowOf(request) > 6 && LOWORD(request.hdr.idFrom) == 0) // those that don't show at first
        {
            grid->UpdateCellText(0, 5);
        }
    };
    makeOnDemand(40, 2);
    EXPECT_TRUE(grid->AddFloater(0, 5, 7, 6, 0, 0, 0, false));
    EXPECT_EQ(grid->FindCell(10, 0)->Floaters.at(7)->pOwner, grid->FindCell(5, 0));
    onCell = [&](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        grid->DeleteFloater(0, 6, 7);
    };
    EXPECT_FALSE(grid->MoveFloater(0, 6, 0, 20, 7));
    EXPECT_EQ(grid->FloaterCount(0, 20), 0);
    EXPECT_EQ(grid->FloaterCount(0, 5), 0);
}

TEST_F(GridReentry, aFloaterMayGoWhileItIsPainted)
{
    // To paint it the grid has to know how high its rows are, also by their other cells.
    onCell = [this](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        if (rowOf(request) > 6 && LOWORD(request.hdr.idFrom) == 1)
        {
            grid->UpdateCellText(0, 5);
        }
    };
    makeOnDemand(40, 2);
    EXPECT_TRUE(grid->AddFloater(0, 4, 8, 2, 0, 0, 0, false));
    EXPECT_TRUE(grid->AddFloater(0, 5, 7, 6, 0, 0, 0, false));
    settle();
    EXPECT_EQ(grid->FloaterCount(0, 5), 1) << "that from above";
    EXPECT_EQ(grid->FloaterCount(0, 6), 0);
}

TEST_F(GridReentry, aFloaterFromAboveMayGoWhileACellIsRenewed)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = u"a"; };
    makeOnDemand(5, 1);
    EXPECT_TRUE(grid->AddFloater(0, 1, 7, 3, 0, 0, 0, false));
    EXPECT_TRUE(grid->AddFloater(0, 1, 8, 3, 0, 0, 0, false));
    onCell = [&](GRIDCELLREQUEST &request)
    {
        request.pszHTML = u"a";
        grid->DeleteFloater(0, 1, 7);
    };
    grid->UpdateCellText(0, 2);
    for (USHORT row = 1; row <= 3; ++row)
    {
        EXPECT_EQ(grid->FloaterCount(0, row), 1) << row;
        EXPECT_TRUE(grid->FindCell(row, 0)->Floaters.contains(8)) << row;
    }
    settle();
}
} // namespace
} // namespace zb::test
