// Double taps, and editing a cell in place.
#include "display/GridStage.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/shell.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;
using Codes = std::vector<int>;

class GridEdit : public FourColumnTest
{
  protected:
    TestGrid &prepare(USHORT rows = 6)
    {
        answers[2034] = 1;
        return four(rows);
    }
    /// Null when there is none.
    HWND edit()
    {
        return GetWindow(*grid, GW_CHILD);
    }
    std::u16string text()
    {
        WCHAR buffer[2000];
        const int length = GetWindowTextW(edit(), buffer, 2000);
        return {buffer, static_cast<std::size_t>(length)};
    }
};

TEST_F(GridEdit, twoTapsOnACellInTimeEditIt)
{
    prepare();
    tap(at(1, 2));
    EXPECT_TRUE(takeLog().empty());
    tap(at(1, 2));
    EXPECT_EQ(takeLog(), (Log{"2034 1,2 -2"}));
    EXPECT_NE(edit(), nullptr);
    EXPECT_EQ(GetFocus(), edit());
    EXPECT_EQ(GetCapture(), edit());
    EXPECT_TRUE(isInputPanelWanted());
    EXPECT_EQ(notified, (Codes{2047, -114, 2047})) << "the second tap ends in the box";
}

TEST_F(GridEdit, whatIsNoDoubleTapEditsNothing)
{
    prepare();
    tap(at(1, 2));
    tap(at(2, 2)); // another cell
    EXPECT_TRUE(takeLog().empty());
    tick(84);
    tap(at(2, 2));
    tick(84); // too late
    tap(at(2, 2));
    EXPECT_TRUE(takeLog().empty());
    tick(84);
    grid->SetRowSelect(true); // more than a column
    for (int i = 0; i < 2; ++i)
    {
        tap(at(1, 4));
    }
    EXPECT_TRUE(takeLog().empty());
    grid->SetRowSelect(false);
    grid->SetSelectionMode(3);
    tick(84);
    for (int i = 0; i < 2; ++i)
    {
        tap(at(0, 0));
    }
    EXPECT_EQ(edit(), nullptr);
}

TEST_F(GridEdit, aDoubleTapIsTwoOnOneCellAndThatIsSelected)
{
    struct Case
    {
        const char *what;
        std::vector<POINT> taps;
        Log asked;
    };
    const Case cases[] = {
        {"two", {at(3, 2), at(3, 2)}, {"2034 3,2 -2"}},
        {"the second of two begins no other", {at(3, 2), at(2, 2), at(2, 2)}, {}},
        {"the third does", {at(3, 2), at(2, 2), at(2, 2), at(2, 2)}, {"2034 2,2 -2"}},
        {"a header", {at(1, 0), at(1, 0)}, {}},
        {"two cells of a selection", {at(1, 2), at(1, 3)}, {}},
        {"one cell of a selection", {at(1, 3), at(1, 3)}, {"2034 1,1 -2"}},
    };
    for (const Case &one : cases)
    {
        prepare().SetFixedRowCount(1);
        grid->SetMultiSelect(true, false);
        grid->SetSelection(1, 1, 1, 4);
        answers.clear();
        for (const POINT &point : one.taps)
        {
            tap(point);
        }
        EXPECT_EQ(takeLog(), one.asked) << one.what;
        tick(84);
        EXPECT_EQ(KillTimer(*grid, 84), FALSE) << "it ends itself";
    }
}

TEST_F(GridEdit, aParentThatRefusesEndsIt)
{
    prepare();
    answers.clear();
    tap(at(1, 2));
    tap(at(1, 2));
    EXPECT_EQ(takeLog(), (Log{"2034 1,2 -2"}));
    EXPECT_EQ(edit(), nullptr);
    EXPECT_EQ(notified.back(), -114);
}

TEST_F(GridEdit, aDoubleTapOnAHotSpotAsksOnce)
{
    prepare().SetCellText(1, 2, u"<FONT SIZE=-1><A=key>hot</A>");
    settle();
    testHotSpots = true;
    answers.clear();
    const POINT spot = {45 + 3, 30 + 5};
    tap(spot);
    tap(spot);
    EXPECT_EQ(takeLog(), (Log{"2034 1,2 -2"}));
}

TEST_F(GridEdit, theBoxLiesOverTheCellAndHoldsItsEditableText)
{
    prepare().SetCellText(1, 2, u"<FONT SIZE=-1>no <EDITABLE>yes</EDITABLE>");
    settle();
    grid->SetSelection(1, 2, 1, 2);
    grid->EnableCellEdit(1, 2);
    RECT place{};
    GetWindowRect(edit(), &place);
    // The row is on top; a pixel right and up, 2 higher than the row, 3 narrower than the column.
    EXPECT_EQ(describe(place), "46,-1 88,16");
    EXPECT_EQ(GetWindowLongW(edit(), GWL_STYLE) & 0xFFFFFFFF, 0x50800080);
    EXPECT_EQ(text(), u"yes");
    const auto font = reinterpret_cast<HFONT>(SendMessageW(edit(), WM_GETFONT, 0, 0));
    EXPECT_EQ(describeFont(font).lfHeight, 10);
    const auto selected = static_cast<DWORD>(SendMessageW(edit(), EM_GETSEL, 0, 0));
    EXPECT_EQ(LOWORD(selected), 0);
    EXPECT_EQ(HIWORD(selected), 3);
    const DWORD began = GetTickCount();
    SendMessageW(edit(), WM_CANCELMODE, 0, 0);
    EXPECT_GE(GetTickCount() - began, 50U) << "the time of the input panel";
}

TEST_F(GridEdit, theBoxIsAsLargeAsTheSelection)
{
    prepare();
    grid->SetSelection(1, 1, 2, 3);
    grid->EnableCellEdit(1, 1);
    RECT place{};
    GetWindowRect(edit(), &place);
    EXPECT_EQ(describe(place), "46,-1 133,46");
    SendMessageW(edit(), WM_CANCELMODE, 0, 0);
    grid->SetRowHeight(5, 11);
    grid->SetSelection(0, 5, 0, 5);
    grid->EnableCellEdit(0, 5);
    GetWindowRect(edit(), &place);
    EXPECT_EQ(place.bottom - place.top, 16) << "13 are too low";
    SendMessageW(edit(), WM_CANCELMODE, 0, 0);
    grid->SetRowHeight(5, 12);
    grid->SetSelection(0, 5, 0, 5);
    grid->EnableCellEdit(0, 5);
    GetWindowRect(edit(), &place);
    EXPECT_EQ(place.bottom - place.top, 14);
}

TEST_F(GridEdit, theFirstSelectedRowComesOnTopAndTheBoxOverItsCell)
{
    prepare(40);
    grid->SetSelection(1, 4, 1, 6);
    grid->EnableCellEdit(1, 5);
    EXPECT_EQ(grid->GetTopRow(), 4);
    RECT place{};
    GetWindowRect(edit(), &place);
    EXPECT_EQ(describe(place), "46,14 88,61");
    SendMessageW(edit(), WM_CANCELMODE, 0, 0);
    for (USHORT col = 0; col < 4; ++col)
    {
        grid->SetColWidth(col, 90); // two show
    }
    grid->SetSelection(3, 4, 3, 4);
    grid->SetLeftCol(0);
    grid->EnableCellEdit(3, 4);
    GetWindowRect(edit(), &place);
    EXPECT_EQ(place.left, 91) << "its column comes into view, too";
}

TEST_F(GridEdit, theTextIsCutAt1023Characters)
{
    prepare();
    const std::u16string text1100(1100, u'x');
    grid->SetCellText(0, 0, (u"<FONT SIZE=-1><EDITABLE>" + text1100).c_str());
    grid->SetSelection(0, 0, 0, 0);
    grid->EnableCellEdit(0, 0);
    EXPECT_EQ(text(), text1100.substr(0, 1023));
}

TEST_F(GridEdit, theRowComesOnTop)
{
    prepare(40);
    grid->SetSelection(1, 4, 1, 4);
    grid->EnableCellEdit(1, 4);
    EXPECT_EQ(grid->GetTopRow(), 4);
    RECT place{};
    GetWindowRect(edit(), &place);
    EXPECT_EQ(place.top, -1);
    grid->SetSelection(1, 39, 1, 39);
    grid->EnableCellEdit(1, 39);
    EXPECT_EQ(grid->GetTopRow(), 39) << "out of the way of an input panel";
}

TEST_F(GridEdit, aCellThatNobodyHasIsNotEdited)
{
    makeOnDemand(5, 2);
    answers[2034] = 1;
    grid->SetSelection(0, 1, 0, 1);
    grid->EnableCellEdit(0, 1);
    EXPECT_EQ(edit(), nullptr);
    EXPECT_FALSE(isInputPanelWanted());
    EXPECT_EQ(grid->GetTopRow(), 0);
}

TEST_F(GridEdit, eachEndTellsTheText)
{
    enum End
    {
        Enter,
        Focus,
        Cancel,
        TapBeside,
        Selection,
        Dimensions
    };
    for (const End end : {Enter, Focus, Cancel, TapBeside, Selection, Dimensions})
    {
        prepare();
        ScreenWindow other(0, WS_CHILD | WS_VISIBLE, 0, 200, 50, 20, parent.window);
        SetFocus(other.window);
        tap(at(1, 2));
        tap(at(1, 2));
        ASSERT_NE(edit(), nullptr);
        for (const WCHAR letter : {u'n', u'e', u'w'})
        {
            typeCharacter(letter);
        }
        settle();
        log.clear();
        notified.clear();
        switch (end)
        {
        case Enter:
            keyDown(VK_RETURN);
            keyUp(VK_RETURN);
            settle();
            EXPECT_EQ(GetFocus(), other.window) << "it goes back";
            break;
        case Focus:
            SetFocus(other.window);
            break;
        case Cancel:
            SendMessageW(edit(), WM_CANCELMODE, 0, 0);
            break;
        case TapBeside:
            tap(at(3, 4));
            break;
        case Selection:
            grid->SetSelection(0, 0, 0, 0);
            break;
        case Dimensions:
            grid->SetDimensions(2, 2);
            break;
        }
        EXPECT_EQ(takeLog(), (Log{"2035 1,2 3"})) << end;
        EXPECT_EQ(editedText, u"new");
        EXPECT_EQ(edit(), nullptr);
        EXPECT_EQ(GetCapture(), nullptr);
        EXPECT_FALSE(isInputPanelWanted());
        EXPECT_EQ(grid->GetTopRow(), 0) << "the rows that went up are back";
        EXPECT_TRUE(notified.empty()) << "what ends it does nothing else";
    }
}

TEST_F(GridEdit, deletedRowsAndColumnsEndItFirst)
{
    for (const bool rows : {true, false})
    {
        prepare();
        grid->SetSelection(1, 3, 1, 3);
        grid->EnableCellEdit(1, 3);
        ASSERT_NE(edit(), nullptr);
        typeCharacter(u'x');
        settle();
        takeLog();
        rows ? grid->DeleteRows(0, 1) : grid->DeleteCols(0, 1);
        EXPECT_EQ(takeLog(), (Log{"2035 1,3 1"})) << "of the cell as the parent knows it";
        EXPECT_EQ(edit(), nullptr);
    }
}

TEST_F(GridEdit, aTapInTheBoxAndOtherKeysAreTheBoxes)
{
    prepare().SetCellText(1, 2, u"<FONT SIZE=-1><EDITABLE>abcd");
    tap(at(1, 2));
    tap(at(1, 2));
    log.clear();
    tap(at(1, 0)); // where the box is now
    keyDown(VK_RIGHT);
    keyUp(VK_RIGHT);
    keyDown(VK_ESCAPE);
    keyUp(VK_ESCAPE);
    settle();
    ASSERT_NE(edit(), nullptr);
    EXPECT_TRUE(takeLog().empty());
    EXPECT_EQ(GetCapture(), edit());
    tap(at(1, 4));
    EXPECT_EQ(edit(), nullptr);
}

TEST_F(GridEdit, theGridTakesTheFocusFromABoxWithATap)
{
    prepare();
    tap(at(1, 2));
    tap(at(1, 2));
    ReleaseCapture();
    EXPECT_FALSE(grid->GetShowFocus());
    tap(at(2, 3));
    EXPECT_EQ(edit(), nullptr);
    EXPECT_EQ(GetFocus(), grid->GetHwnd());
    EXPECT_EQ(current(), "2,5") << "what the user saw there, with row 2 on top";
}

TEST_F(GridEdit, aParentMayUseTheGridWhenItIsToldTheText)
{
    prepare();
    onAsked = [this](UINT message)
    {
        if (message == 2035)
        {
            grid->SetDimensions(3, 2);
            grid->SetCellText(0, 0, editedText.c_str());
            grid->SetSelection(1, 1, 1, 1);
        }
    };
    tap(at(1, 2));
    tap(at(1, 2));
    grid->SetSelection(0, 0, 0, 0);
    EXPECT_EQ(selection(), "0,0 0,0");
    EXPECT_EQ(grid->GetRowCount(), 3);
}

TEST_F(GridEdit, aParentMayBeginTheNextEditWhenOneEnds)
{
    for (const bool another : {false, true})
    {
        prepare();
        grid->SetSelection(1, 4, 1, 4);
        grid->EnableCellEdit(1, 4);
        bool begun = false;
        onAsked = [&](UINT message)
        {
            if (message == 2035 && !std::exchange(begun, true))
            {
                grid->SetSelection(1, 5, 1, 5);
                grid->EnableCellEdit(1, 5);
            }
        };
        if (another)
        {
            grid->EnableCellEdit(0, 0);
        }
        else
        {
            SendMessageW(edit(), WM_CANCELMODE, 0, 0);
        }
        ASSERT_NE(edit(), nullptr);
        EXPECT_EQ(GetWindow(edit(), GW_HWNDNEXT), nullptr) << "one";
        EXPECT_EQ(grid->GetTopRow(), 5);
        EXPECT_EQ(GetFocus(), edit());
        EXPECT_TRUE(isInputPanelWanted());
        EXPECT_EQ(takeLog().back(), "2034 1,5 -2") << "of no other cell was asked then";
        SendMessageW(edit(), WM_CANCELMODE, 0, 0);
        EXPECT_EQ(takeLog(), (Log{"2035 1,5 0"}));
        EXPECT_EQ(grid->GetTopRow(), 0);
    }
}

TEST_F(GridEdit, aGridThatGoesWhileACellIsEditedTellsItsText)
{
    prepare();
    tap(at(1, 2));
    tap(at(1, 2));
    typeCharacter(u'x');
    settle();
    log.clear();
    onAsked = [](UINT) {};
    grid.reset();
    EXPECT_EQ(takeLog(), (Log{"2035 1,2 1"}));
}

TEST_F(GridEdit, aDoubleTapBehindAnEndedEditIsOneAnew)
{
    prepare();
    tap(at(1, 2));
    tap(at(1, 2));
    keyDown(VK_RETURN);
    keyUp(VK_RETURN);
    settle();
    log.clear();
    tick(84);
    tap(at(1, 2));
    EXPECT_TRUE(takeLog().empty());
    tap(at(1, 2));
    EXPECT_EQ(takeLog(), (Log{"2034 1,2 -2"}));
}
} // namespace
} // namespace zb::test
