// Which cells floaters are in and how they share a column, as cells, rows and other floaters come and go.
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using GridFloaters = GridTest;

TEST_F(GridFloaters, floatersShareTheirColumnByTheirBlock)
{
    makePlain(9, 1, 101, 140); // a column of 101, rows of 15
    for (const auto &[row, id, rows] : {std::tuple<USHORT, DWORD, USHORT>{1, 1, 3}, {2, 2, 3}, {4, 3, 2}, {0, 20, 1},
                                        {8, 11, 1}, {8, 12, 1}, {8, 13, 1}})
    {
        EXPECT_TRUE(grid->AddFloater(0, row, id, rows, 0, 0, 0, false));
    }
    struct Case
    {
        int x, row;
        DWORD id;
    };
    const Case cases[] = {
        {100, 0, 20},                                              // alone, so all of the width
        {10, 1, 1},  {60, 1, 0},  {49, 3, 1},  {50, 3, 2},         // halves of 50
        {99, 3, 2},  {100, 3, 0}, {60, 4, 2},
        {10, 4, 3},  {10, 5, 3},  {60, 5, 0},                      // the third where the first has ended
        {32, 8, 11}, {33, 8, 12}, {65, 8, 12}, {66, 8, 13},        // thirds of 33
        {98, 8, 13}, {99, 8, 0}};
    for (const Case &one : cases)
    {
        EXPECT_EQ(floaterAt(one.x, one.row * 15 + 7), one.id) << one.x << ' ' << one.row;
    }
}

TEST_F(GridFloaters, floatersThatStayShareAnewWhenOthersComeAndGo)
{
    makePlain(6, 2); // columns of 100, rows of 15
    grid->AddFloater(0, 1, 1, 3, 0, 0, 0, false);
    grid->AddFloater(0, 2, 2, 3, 0, 0, 0, false);
    grid->AddFloater(1, 2, 3, 1, 0, 0, 0, false);
    settle();
    const auto inThirdRow = [this]
    {
        std::string ids;
        for (const int x : {20, 70, 120, 170})
        {
            ids += std::to_string(floaterAt(x, 37));
        }
        return ids;
    };
    EXPECT_EQ(inThirdRow(), "1233");
    grid->MoveFloater(0, 3, 1, 1, 2);
    EXPECT_EQ(inThirdRow(), "1123");
    grid->DeleteFloater(1, 2, 2);
    EXPECT_EQ(inThirdRow(), "1133");
    grid->AddFloater(1, 0, 4, 6, 0, 0, 0, false);
    EXPECT_EQ(inThirdRow(), "1143");
    grid->DeleteRows(0, 1);
    EXPECT_EQ(floaterAt(170, 22), 3U) << "that began in the deleted row has gone";
}

TEST_F(GridFloaters, aNewFloaterAsksForItsFirstCellThenItsTextThenItsOtherCells)
{
    makeOnDemand(40, 1);
    std::string order;
    parent.before = [&order, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        if (message == GRID_GETCELL)
        {
            auto &request = *reinterpret_cast<GRIDCELLREQUEST *>(lParam);
            order += std::to_string(HIWORD(request.hdr.idFrom)) + ' ';
            request.pszHTML = u"a";
        }
        order += message == GRID_GETFLOATERTEXT ? "text " : "";
        return others(message, wParam, lParam, result);
    };
    grid->BeginUpdate();
    EXPECT_TRUE(grid->AddFloater(0, 20, 7, 3, 0, 0, 0, false));
    EXPECT_EQ(order, "20 text 21 22 ");
    EXPECT_TRUE(grid->MoveFloater(0, 21, 0, 30, 7));
    EXPECT_EQ(order, "20 text 21 22 30 31 32 ");
    parent.before = nullptr;
}

TEST_F(GridFloaters, rowsThatNobodyHasAreLeftOutOfAFloater)
{
    onCell = [](GRIDCELLREQUEST &request) { request.pszHTML = HIWORD(request.hdr.idFrom) == 2 ? nullptr : u"a"; };
    TestGrid &made = makeOnDemand(7, 1);
    EXPECT_FALSE(made.AddFloater(0, 2, 4, 2, 0, 0, 0, false));
    EXPECT_TRUE(askedFloaters.empty()) << "no cell, no question";
    EXPECT_TRUE(made.AddFloater(0, 1, 5, 4, 0, 0, 0, false));
    EXPECT_EQ(floatersByRow(), "0101100");
    made.DeleteRows(2, 1);
    EXPECT_EQ(floatersByRow(), "011100");
    EXPECT_EQ(made.FindCell(1, 0)->Floaters.at(5)->nRows, 3);
    made.DeleteRows(0, 2);
    EXPECT_EQ(floatersByRow(), "0000");
    EXPECT_TRUE(made.AddFloater(0, 1, 6, 0, 0, 0, 0, false));
    EXPECT_EQ(floatersByRow(), "0100") << "a row is the least";
    made.DeleteFloater(0, 1, 6);
    EXPECT_EQ(floatersByRow(), "0000");
}

TEST_F(GridFloaters, oneIdInAColumnsRowsIsOneFloater)
{
    makePlain(6, 1).AddFloater(0, 3, 5, 2, 0, 0, 0, false);
    EXPECT_TRUE(grid->AddFloater(0, 1, 5, 3, 0, 0, 0, false));
    EXPECT_EQ(floatersByRow(), "011100");
    EXPECT_TRUE(grid->AddFloater(0, 5, 5, 1, 0, 0, 0, false));
    EXPECT_EQ(floatersByRow(), "011101") << "out of each other's way";
    EXPECT_TRUE(grid->MoveFloater(0, 5, 0, 2, 5));
    EXPECT_EQ(floatersByRow(), "001000");
}

TEST_F(GridFloaters, aCellThatIsGoneStillHasItsPlaceUnderFloatersFromAbove)
{
    bool has = true;
    onCell = [&](GRIDCELLREQUEST &request) { request.pszHTML = has ? u"a" : nullptr; };
    TestGrid &made = makeOnDemand(4, 1);
    made.AddFloater(0, 0, 1, 3, 0, 0, 0, false);
    made.BeginUpdate();
    has = false;
    asked.clear();
    made.UpdateCellText(0, 1);
    EXPECT_EQ(asked.size(), 1U) << "asked for once";
    EXPECT_EQ(floatersByRow(), "1010");
    has = true;
    made.EndUpdate();
    EXPECT_EQ(made.FindCell(2, 0)->Floaters.at(1)->pOwner, made.FindCell(0, 0));
}
} // namespace
} // namespace zb::test
