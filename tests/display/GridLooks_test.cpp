// Drawing hooks, pictures by number, copies of cells, and whole pictures of grids.
#include "display/GridStage.h"
#include "platform/image_list.h"
#include "platform/resources.h"

namespace zb::test
{
namespace
{
int drawAnswer = 0;
std::vector<tagDRAWITEMSTRUCT> drawn;
int backgrounds = 0;

int drawCell(tagDRAWITEMSTRUCT *item, tagCELLINFO *)
{
    drawn.push_back(*item);
    const RECT corner = {item->rcItem.left, item->rcItem.top, item->rcItem.left + 4, item->rcItem.top + 4};
    const HBRUSH brush = CreateSolidBrush(RGB(0, 0, 255));
    FillRect(item->hDC, &corner, brush);
    DeleteObject(brush);
    return drawAnswer;
}

void drawBackground(HDC hdc)
{
    ++backgrounds;
    const RECT all = {0, 0, 240, 320};
    const HBRUSH brush = CreateSolidBrush(RGB(0, 255, 255));
    FillRect(hdc, &all, brush);
    DeleteObject(brush);
}

class GridLooks : public GridTest
{
};

TEST_F(GridLooks, anOwnerDrawsAllTheBackgroundOrNothing)
{
    TestGrid &made = makePlain(2, 2, 100, 60); // cells of 50 by 15
    made.SetShowHLines(true);
    made.SetLinesColor(RGB(255, 0, 0));
    made.SetCellText(0, 0, u"<BODY=#00FF00>");
    made.SetCellData(0, 0, 44);
    made.SetSelection(1, 1, 1, 1);
    made.SetCellOwnerDrawProc(drawCell);
    struct Case
    {
        int answer;
        COLORREF corner, inside, line;
    };
    const COLORREF white = RGB(255, 255, 255);
    const Case cases[] = {{0, RGB(0, 255, 0), RGB(0, 255, 0), RGB(255, 0, 0)}, // as usual, over what was drawn
                          {1, RGB(0, 0, 255), white, white},                   // all is done
                          {2, RGB(0, 0, 255), white, RGB(255, 0, 0)},          // the fill alone is left out
                          {-3, RGB(0, 0, 255), white, RGB(255, 0, 0)}};
    for (const Case &one : cases)
    {
        drawAnswer = one.answer;
        drawn.clear();
        made.Invalidate();
        EXPECT_EQ(screenPixel(1, 1), one.corner) << one.answer;
        EXPECT_EQ(screenPixel(20, 7), one.inside) << one.answer;
        EXPECT_EQ(screenPixel(49, 7), one.line) << one.answer;
    }
    ASSERT_EQ(drawn.size(), 4U);
    EXPECT_EQ(drawn[0].CtlType, 0U);
    EXPECT_EQ(drawn[0].CtlID, 0U);
    EXPECT_EQ(drawn[0].itemID, 0U);
    EXPECT_EQ(drawn[0].itemAction, 0U);
    EXPECT_EQ(drawn[0].itemState, 0U);
    EXPECT_EQ(drawn[0].hwndItem, made.GetHwnd());
    EXPECT_EQ(drawn[0].itemData, 44U);
    EXPECT_EQ(drawn[3].CtlID, 0x10001U);
    EXPECT_EQ(drawn[3].itemState, 1U);
    EXPECT_EQ(describe(drawn[3].rcItem), "50,15 100,30");
}

TEST_F(GridLooks, fixedCellsHaveAnOwnerOfTheirOwnAndAreNeverSelected)
{
    TestGrid &made = makePlain(2, 2, 100, 60);
    made.SetFixedRowCount(1);
    drawAnswer = 1;
    EXPECT_EQ(made.SetFixedCellOwnerDrawProc(drawCell), nullptr);
    drawn.clear();
    made.Invalidate();
    ASSERT_EQ(drawn.size(), 2U);
    EXPECT_EQ(drawn[1].CtlID, 1U);
    EXPECT_EQ(drawn[1].itemState, 0U);
    EXPECT_EQ(made.SetFixedCellOwnerDrawProc(nullptr), &drawCell);
}

TEST_F(GridLooks, aBackgroundShowsThroughTheCells)
{
    TestGrid &made = makePlain(2, 2, 100, 60);
    made.SetCellText(0, 0, u"<BODY=#00FF00>");
    made.SetBackgroundDrawProc(drawBackground);
    made.SetSelection(1, 1, 1, 1);
    made.Invalidate();
    EXPECT_EQ(screenPixel(20, 7), RGB(0, 255, 255));
    EXPECT_EQ(screenPixel(70, 22), RGB(0, 255, 255)) << "the selection does not fill either";
    EXPECT_EQ(screenPixel(20, 50), RGB(0, 255, 255));
    const int before = backgrounds;
    InvalidateRect(made, nullptr, FALSE);
    settle();
    EXPECT_EQ(backgrounds, before + 1) << "nothing is kept between paints";
    made.SetBackgroundDrawProc(nullptr);
    made.Invalidate();
    EXPECT_EQ(screenPixel(20, 7), RGB(0, 255, 0));
    InvalidateRect(made, nullptr, FALSE);
    settle();
    EXPECT_EQ(backgrounds, before + 1);
}

TEST_F(GridLooks, aCellsBitmapIsWhatTheScreenShowsThere)
{
    TestGrid &made = makePlain(20, 2, 100, 60);
    made.SetCellText(1, 1, u"<FONT SIZE=-1><BODY=#00FF00>abc");
    settle();
    RECT place{};
    ASSERT_TRUE(made.GetCellRect(1, 1, place));
    const OwnedBitmap copy(made.GetCellBitmap(1, 1));
    const Picture cell = pictureOf(copy.handle());
    const Picture screen = shown();
    ASSERT_EQ(cell.width, place.right - place.left);
    ASSERT_EQ(cell.height, 15);
    for (int y = 0; y < cell.height; ++y)
    {
        for (int x = 0; x < cell.width; ++x)
        {
            ASSERT_EQ(cell.at(x, y), screen.at(x + place.left, y + place.top)) << x << ' ' << y;
        }
    }
    EXPECT_EQ(made.GetCellBitmap(1, 15), nullptr) << "not on the screen";
    EXPECT_EQ(made.GetCellBitmap(5, 1), nullptr);
}

TEST_F(GridLooks, numbersAreBitmapsOfTheResources)
{
    TestGrid &made = makePlain(1, 1);
    const HINSTANCE module = LoadLibraryW(u"ZBResources.dll");
    ASSERT_NE(module, nullptr);
    made.SetResourcesInstance(module);
    EXPECT_EQ(made.GetResourcesInstance(), module);
    USHORT known = 0;
    for (USHORT id = 1; id < 2000 && known == 0; ++id)
    {
        const OwnedBitmap found(LoadBitmapW(module, MAKEINTRESOURCEW(id)));
        known = found.handle() == nullptr ? 0 : id;
    }
    ASSERT_NE(known, 0);
    const HBITMAP first = made.AddBitmapToCache(known);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(made.AddBitmapToCache(known), first) << "loaded once";
    const OwnedBitmap direct(LoadBitmapW(module, MAKEINTRESOURCEW(known)));
    EXPECT_EQ(pictureOf(first), pictureOf(direct.handle()));
    const std::string digits = std::to_string(known);
    // Only the low 16 bits of a number count.
    for (const std::string &source : {digits, std::to_string(known + 65536)})
    {
        const std::u16string wide(source.begin(), source.end());
        NM_HTMLVIEW record{};
        record.hdr = {made, wide.size(), NM_INLINE_IMAGE};
        record.szTarget = wide.c_str();
        EXPECT_NE(SendMessageW(made, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&record)), 0) << source;
        EXPECT_EQ(record.dwCookie, reinterpret_cast<DWORD_PTR>(first));
    }
    made.SetCellText(0, 0, (u"<IMG SRC=" + std::u16string(digits.begin(), digits.end()) + u">").c_str());
    BITMAP size{};
    GetObjectW(first, sizeof size, &size);
    EXPECT_GE(made.GetRowHeight(0, false), size.bmHeight);
    EXPECT_EQ(made.AddBitmapToCache(65000), nullptr) << "there is none";
}

// --- Whole pictures ----------------------------------------------------------------------------------------------

/// A list with a header, a day with floaters, and a tip of a sweep, as an eye knows them.
class GridPictures : public GridTest
{
  protected:
    testing::AssertionResult matches(const std::string &name)
    {
        settle();
        const Picture screen = shown();
        Picture cut{200, 120, {}};
        for (int y = 0; y < cut.height; ++y)
        {
            for (int x = 0; x < cut.width; ++x)
            {
                cut.pixels.push_back(screen.at(x, y));
            }
        }
        return matchesPicture(cut, name);
    }
    void fill(const std::vector<std::vector<const WCHAR *>> &rows)
    {
        for (std::size_t row = 0; row < rows.size(); ++row)
        {
            for (std::size_t col = 0; col < rows[row].size(); ++col)
            {
                const std::u16string markup = std::u16string(u"<BODY=#FFFFFF>") + rows[row][col];
                grid->SetCellText(static_cast<USHORT>(col), static_cast<USHORT>(row), markup.c_str(), RECT{2, 1, 2, 1});
            }
        }
    }
};

TEST_F(GridPictures, aListWithAHeaderAndASelectedRow)
{
    TestGrid &made = makePlain(12, 3, 200, 120);
    made.BeginUpdate();
    made.SetFixedRowCount(1);
    made.SetRowSelect(true);
    made.SetShowHLines(true);
    made.SetLinesColor(RGB(200, 200, 200));
    made.SetColWidth(0, 40);
    fill({{u"<BODY=#D0D8E8><B>when", u"<BODY=#D0D8E8><B>what", u"<BODY=#D0D8E8><P ALIGN=RIGHT><B>how long"},
          {u"09:00", u"A talk with words that wrap to lines", u"<P ALIGN=RIGHT>30"},
          {u"10:30", u"<A=1>A link</A>", u"<P ALIGN=RIGHT>90"},
          {u"<FONT COLOR=#C00000>12:00", u"<B>Lunch</B>", u"<P ALIGN=RIGHT>60"},
          {u"14:15", u"Something", u""}});
    made.EndUpdate();
    made.SetSelection(0, 2, 2, 2);
    EXPECT_TRUE(matches("grid-list"));
}

TEST_F(GridPictures, aDayWithFloaters)
{
    TestGrid &made = makePlain(8, 2, 200, 120);
    made.BeginUpdate();
    made.SetFixedColCount(1);
    made.SetColWidth(0, 30);
    made.SetLinesColor(RGB(128, 128, 128));
    made.SetShowHLines(true);
    fill({{u"8"}, {u"9"}, {u"10"}, {u"11"}, {u"12"}, {u"13"}, {u"14"}, {u"15"}});
    floaterText = u"<FONT SIZE=-1><BODY=#FFFFC0>One of three rows";
    made.AddFloater(1, 1, 1, 3, 66, 0, RGB(0, 0, 200), false);
    floaterText = u"<FONT SIZE=-1><BODY=#C0FFC0>Two";
    made.AddFloater(1, 2, 2, 3, 100, 0, RGB(200, 0, 0), false);
    floaterText = u"<FONT SIZE=-1>Three, alone";
    made.AddFloater(1, 6, 3, 2, 50, 25, RGB(0, 160, 0), false);
    made.EndUpdate();
    EXPECT_TRUE(matches("grid-day"));
}

TEST_F(GridPictures, aSweepWithItsTip)
{
    TestGrid &made = makePlain(8, 4, 200, 120);
    made.SetMultiSelect(true, true);
    made.SetSelectionMode(2);
    texts[2022] = u"<BODY=#FFFFE0><B>3 hours</B> and a bit";
    draw({{125, 52}, {80, 68}, {60, 82}}, false);
    EXPECT_TRUE(matches("grid-sweep"));
}

TEST_F(GridPictures, aCellBeingEdited)
{
    TestGrid &made = makePlain(6, 2, 200, 120);
    fill({{u"one", u"two"}, {u"three", u"<EDITABLE>four"}});
    answers[2034] = 1;
    made.SetSelection(1, 1, 1, 1);
    made.EnableCellEdit(1, 1);
    EXPECT_TRUE(matches("grid-edit"));
}
} // namespace
} // namespace zb::test
