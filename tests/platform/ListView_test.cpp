// The list view: rows, states, columns, what the parent hears, keys, pen and labels.
#include "platform/controls.h"
#include "platform/list_view.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace
{
using zb::test::pair;
using zb::test::pressKey;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::typeText;

/// What was told, as far as tests look at it.
struct Heard
{
    int code;
    int row;
    UINT fresh = 0;
    UINT former = 0;
    bool operator==(const Heard &) const = default;
};

void PrintTo(const Heard &heard, std::ostream *out)
{
    *out << '{' << heard.code << ", " << heard.row << ", " << heard.fresh << ", " << heard.former << '}';
}

using All = std::vector<Heard>;
constexpr int changing = -100;
constexpr int changed = -101;
constexpr UINT both = LVIS_FOCUSED | LVIS_SELECTED;

/// A list at 10, 10 of 200 by 102; rows are 20 high, the header 22.
class ListViews : public zb::test::TextTest
{
  protected:
    ~ListViews() override
    {
        zb::keyUp(VK_SHIFT);
        zb::keyUp(VK_CONTROL);
        DeleteObject(font);
        parent.before = nullptr; // it outlives what hears
    }
    void make(DWORD style, std::initializer_list<const WCHAR *> rows = {})
    {
        parent.before = [this](UINT message, WPARAM, LPARAM lParam, LRESULT &result)
        { return message == WM_NOTIFY && hear(*reinterpret_cast<NMHDR *>(lParam), result); };
        list = CreateWindowExW(0, WC_LISTVIEWW, u"", style | WS_CHILD | WS_VISIBLE, 10, 10, 200, 102, parent.window,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(7)), nullptr, nullptr);
        SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        int number = 0;
        for (const WCHAR *row : rows)
        {
            EXPECT_EQ(insert(number, row), number);
            ++number;
        }
        SetFocus(list);
        settle();
        heard.clear();
    }
    bool hear(NMHDR &header, LRESULT &result)
    {
        if (header.hwndFrom != list || header.idFrom != 7)
        {
            return false;
        }
        const auto code = static_cast<int>(header.code);
        if (code == -12)
        {
            return false; // NM_CUSTOMDRAW comes with every paint
        }
        const bool display = header.code == LVN_GETDISPINFOW || header.code == LVN_BEGINLABELEDITW ||
                             header.code == LVN_ENDLABELEDITW;
        const auto &record = reinterpret_cast<NMLISTVIEW &>(header);
        if (display)
        {
            auto &shown = reinterpret_cast<NMLVDISPINFOW &>(header);
            heard.push_back({code, shown.item.iItem});
            edited = header.code == LVN_ENDLABELEDITW && shown.item.pszText != nullptr ? shown.item.pszText : u"";
        }
        else if (code <= -100 && code != -155)
        {
            heard.push_back({code, record.iItem, record.uNewState, record.uOldState});
        }
        else
        {
            const bool tap = code == -2 || code == -3;
            heard.push_back({code, tap ? record.iItem : -1});
        }
        return answer && answer(header, result);
    }
    LRESULT send(UINT message, LONG_PTR wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(list, message, static_cast<WPARAM>(wParam), lParam);
    }
    template <typename Record>
    LRESULT sendRecord(UINT message, LONG_PTR wParam, Record &record) const
    {
        return send(message, wParam, reinterpret_cast<LPARAM>(&record));
    }
    LRESULT insert(int row, const WCHAR *text, LPARAM data = 0) const
    {
        LVITEMW item{LVIF_TEXT | LVIF_PARAM, row, 0, 0, 0, const_cast<WCHAR *>(text), 0, 0, data, 0};
        return sendRecord(LVM_INSERTITEMW, 0, item);
    }
    LRESULT setText(int row, int column, const WCHAR *text) const
    {
        LVITEMW item{0, 0, column, 0, 0, const_cast<WCHAR *>(text), 0, 0, 0, 0};
        return sendRecord(LVM_SETITEMTEXTW, row, item);
    }
    std::u16string text(int row, int column = 0) const
    {
        WCHAR buffer[64] = {};
        LVITEMW item{0, 0, column, 0, 0, buffer, 64, 0, 0, 0};
        const LRESULT length = sendRecord(LVM_GETITEMTEXTW, row, item);
        EXPECT_EQ(length, static_cast<LRESULT>(std::u16string(buffer).size()));
        return buffer;
    }
    LRESULT setState(int row, UINT state, UINT mask) const
    {
        LVITEMW item{0, 0, 0, state, mask, nullptr, 0, 0, 0, 0};
        return sendRecord(LVM_SETITEMSTATE, row, item);
    }
    UINT state(int row) const
    {
        return static_cast<UINT>(send(LVM_GETITEMSTATE, row, 0xFFFF));
    }
    LRESULT column(int number, int width, const WCHAR *title = u"T", int format = 0) const
    {
        LVCOLUMNW given{LVCF_TEXT | LVCF_WIDTH | LVCF_FMT, format, width, const_cast<WCHAR *>(title), 0, 0, 0, 0};
        return sendRecord(LVM_INSERTCOLUMNW, number, given);
    }
    std::vector<int> chosen() const
    {
        std::vector<int> rows;
        for (LRESULT row = send(LVM_GETNEXTITEM, -1, LVNI_SELECTED); row >= 0;
             row = send(LVM_GETNEXTITEM, row, LVNI_SELECTED))
        {
            rows.push_back(static_cast<int>(row));
        }
        EXPECT_EQ(send(LVM_GETSELECTEDCOUNT), static_cast<LRESULT>(rows.size()));
        return rows;
    }
    int focused() const
    {
        return static_cast<int>(send(LVM_GETNEXTITEM, -1, LVNI_FOCUSED));
    }
    /// In client coordinates of the list.
    static void tap(int x, int y)
    {
        zb::test::tapAt(10 + x, 10 + y);
    }
    All takeHeard()
    {
        return std::exchange(heard, {});
    }
    /// Only these codes of what was heard.
    All takeHeard(std::initializer_list<int> codes)
    {
        All some;
        for (const Heard &one : std::exchange(heard, {}))
        {
            if (std::ranges::find(codes, one.code) != codes.end())
            {
                some.push_back(one);
            }
        }
        return some;
    }
    using Rows = std::vector<int>;

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND list = nullptr;
    All heard;
    std::u16string edited;
    std::function<bool(NMHDR &, LRESULT &)> answer;
};
} // namespace

TEST_F(ListViews, TheNumbersThatHostsSend)
{
    const std::pair<UINT, UINT> numbers[] = {
        {LVM_GETITEMCOUNT, 0x1004},      {LVM_DELETEITEM, 0x1008},       {LVM_GETNEXTITEM, 0x100C},
        {LVM_HITTEST, 0x1012},           {LVM_ENSUREVISIBLE, 0x1013},    {LVM_SETITEMSTATE, 0x102B},
        {LVM_SORTITEMS, 0x1030},         {LVM_GETITEMW, 0x104B},         {LVM_SETITEMW, 0x104C},
        {LVM_INSERTITEMW, 0x104D},       {LVM_FINDITEMW, 0x1053},        {LVM_INSERTCOLUMNW, 0x1061},
        {LVM_GETITEMTEXTW, 0x1073},      {LVM_SETITEMTEXTW, 0x1074},     {LVM_EDITLABELW, 0x1076},
        {LVM_GETEDITCONTROL, 0x1018},    {LVM_SETIMAGELIST, 0x1003},     {LVM_GETITEMSTATE, 0x102C},
        {LVN_ITEMCHANGED, 0xFFFFFF9BU},  {LVN_COLUMNCLICK, 0xFFFFFF94U}, {LVN_BEGINDRAG, 0xFFFFFF93U},
        {LVN_ITEMACTIVATE, 0xFFFFFF8EU}, {LVN_KEYDOWN, 0xFFFFFF65U},     {LVN_GETDISPINFOW, 0xFFFFFF4FU},
        {LVN_ENDLABELEDITW, 0xFFFFFF50U}};
    for (const auto &[actual, expected] : numbers)
    {
        EXPECT_EQ(actual, expected);
    }
}

TEST_F(ListViews, RowsComeAndGo)
{
    make(LVS_REPORT, {u"a", u"b"});
    EXPECT_EQ(insert(1, u"c", 33), 1);
    EXPECT_EQ(takeHeard(), (All{{-102, 1}}));
    EXPECT_EQ(insert(99, u"d"), 3) << "behind the last one";
    EXPECT_EQ(insert(-1, u"e"), -1);
    EXPECT_EQ(send(LVM_GETITEMCOUNT), 4);
    EXPECT_EQ(text(1), u"c");
    EXPECT_EQ(setText(1, 2, u"third column"), 1);
    EXPECT_EQ(text(1, 2), u"third column");
    EXPECT_EQ(text(1, 1), u"");
    EXPECT_EQ(setText(4, 0, u"x"), 0);
    LVITEMW item{LVIF_PARAM | LVIF_IMAGE | LVIF_INDENT, 1, 0, 0, 0, nullptr, 0, 9, 0, 9};
    EXPECT_EQ(sendRecord(LVM_GETITEMW, 0, item), 1);
    EXPECT_EQ(item.lParam, 33);
    EXPECT_EQ(item.iImage, 0);
    EXPECT_EQ(item.iIndent, 0);
    WCHAR three[3] = {};
    LVITEMW cut{LVIF_TEXT, 1, 2, 0, 0, three, 3, 0, 0, 0};
    EXPECT_EQ(sendRecord(LVM_GETITEMW, 0, cut), 1);
    EXPECT_EQ(std::u16string(three), u"th") << "as much as there is room for, and a zero";
    heard.clear();
    EXPECT_EQ(send(LVM_DELETEITEM, 0), 1);
    EXPECT_EQ(takeHeard({-103}), (All{{-103, 0}}));
    EXPECT_EQ(text(0), u"c");
    EXPECT_EQ(send(LVM_DELETEITEM, 3), 0);
    EXPECT_EQ(send(LVM_DELETEALLITEMS), 1);
    EXPECT_EQ(takeHeard(), (All{{-104, -1}, {-103, 0}, {-103, 1}, {-103, 2}}));
    EXPECT_EQ(send(LVM_GETITEMCOUNT), 0);
}

TEST_F(ListViews, DeletingAllCanBeToldOnce)
{
    make(LVS_REPORT, {u"a", u"b"});
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == LVN_DELETEALLITEMS; };
    DestroyWindow(list);
    EXPECT_EQ(takeHeard({-103, -104}), (All{{-104, -1}})) << "also when the control goes";
}

TEST_F(ListViews, SortedRowsStandInTheOrderOfTheLocale)
{
    make(LVS_LIST | LVS_SORTASCENDING);
    EXPECT_EQ(insert(0, u"b"), 0);
    EXPECT_EQ(insert(0, u"C"), 1);
    EXPECT_EQ(insert(9, u"a"), 0);
    DestroyWindow(list);
    make(LVS_LIST | LVS_SORTDESCENDING);
    EXPECT_EQ(insert(0, u"b"), 0);
    EXPECT_EQ(insert(0, u"C"), 0);
    EXPECT_EQ(insert(0, u"a"), 2);
}

TEST_F(ListViews, ChangesOfStatesAreAskedForAndTold)
{
    make(LVS_REPORT, {u"a", u"b"});
    EXPECT_EQ(setState(1, both, both), 1);
    EXPECT_EQ(takeHeard(), (All{{changing, 0, 0, 1}, {changed, 0, 0, 1}, {changing, 1, 3, 0}, {changed, 1, 3, 0}}))
        << "the focus leaves the row that had it";
    EXPECT_EQ(setState(1, both, both), 1);
    EXPECT_EQ(takeHeard(), All{}) << "nothing has changed";
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == LVN_ITEMCHANGING; };
    EXPECT_EQ(setState(1, 0, LVIS_SELECTED), 0);
    EXPECT_EQ(takeHeard(), (All{{changing, 1, 0, 2}}));
    EXPECT_EQ(state(1), both) << "forbidden";
    answer = nullptr;
    EXPECT_EQ(setState(-1, LVIS_SELECTED, LVIS_SELECTED), 1);
    EXPECT_EQ(chosen(), (Rows{0, 1}));
    setText(0, 0, u"x");
    EXPECT_EQ(takeHeard({changed}).back(), (Heard{changed, 0, 0, 0}));
}

TEST_F(ListViews, OneChoiceGivesUpTheOther)
{
    make(LVS_REPORT | LVS_SINGLESEL, {u"a", u"b", u"c"});
    setState(0, LVIS_SELECTED, LVIS_SELECTED);
    setState(2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(chosen(), Rows{2});
    EXPECT_EQ(setState(-1, LVIS_SELECTED, LVIS_SELECTED), 0) << "not all";
    send(LVM_DELETEITEM, 0);
    EXPECT_EQ(chosen(), Rows{1}) << "the same row, under its new number";
}

TEST_F(ListViews, CheckBoxes)
{
    make(LVS_REPORT | LVS_SINGLESEL, {u"a", u"b"});
    EXPECT_EQ(state(0) & LVIS_STATEIMAGEMASK, 0U);
    EXPECT_EQ(send(LVM_SETEXTENDEDLISTVIEWSTYLE, 4, 4), 0);
    EXPECT_EQ(state(0) & LVIS_STATEIMAGEMASK, 0x1000U);
    EXPECT_EQ(takeHeard(), All{});
    tap(10, 30); // on the box of the second row
    EXPECT_EQ(takeHeard({changed, -2}),
              (All{{changed, 0, 0, 1}, {changed, 1, 1, 0}, {changed, 1, 0x2000, 0x1000}, {-2, 1}}));
    EXPECT_EQ(chosen(), Rows{}) << "the box alone";
    pressKey(VK_SPACE);
    EXPECT_EQ(takeHeard({changed}), (All{{changed, 1, 0x1000, 0x2000}}));
    EXPECT_EQ(insert(2, u"c"), 2);
    EXPECT_EQ(state(2) & LVIS_STATEIMAGEMASK, 0x1000U);
    EXPECT_EQ(send(LVM_SETEXTENDEDLISTVIEWSTYLE, 4, 0), 4);
    EXPECT_EQ(state(1) & LVIS_STATEIMAGEMASK, 0U);
}

TEST_F(ListViews, TextsAndPicturesOfTheParent)
{
    make(LVS_REPORT);
    WCHAR kept[] = u"own memory";
    bool keeps = false;
    answer = [&](NMHDR &header, LRESULT &)
    {
        if (header.code == LVN_GETDISPINFOW)
        {
            auto &item = reinterpret_cast<NMLVDISPINFOW &>(header).item;
            EXPECT_EQ(item.lParam, 5);
            item.iImage = 4;
            item.pszText = kept;
            item.mask |= keeps ? LVIF_DI_SETITEM : 0;
        }
        return false;
    };
    LVITEMW item{LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM, 0, 0, 0, 0, LPSTR_TEXTCALLBACKW, 0, I_IMAGECALLBACK, 5, 0};
    sendRecord(LVM_INSERTITEMW, 0, item);
    EXPECT_EQ(text(0), u"own memory");
    LVITEMW asked{LVIF_TEXT | LVIF_NORECOMPUTE, 0, 0, 0, 0, nullptr, 0, 0, 0, 0};
    EXPECT_EQ(sendRecord(LVM_GETITEMW, 0, asked), 1);
    EXPECT_EQ(asked.pszText, LPSTR_TEXTCALLBACKW);
    asked.mask = LVIF_IMAGE;
    EXPECT_EQ(sendRecord(LVM_GETITEMW, 0, asked), 1);
    EXPECT_EQ(asked.iImage, 4);
    keeps = true;
    text(0);
    heard.clear();
    EXPECT_EQ(text(0), u"own memory");
    EXPECT_EQ(takeHeard({-177}), All{}) << "kept, so not asked for again";
}

TEST_F(ListViews, FindingAndTheNextOnes)
{
    make(LVS_REPORT, {u"alpha", u"beta", u"Alps"});
    const auto find = [this](UINT flags, const WCHAR *what, int behind, LPARAM data = 0)
    {
        LVFINDINFOW info{flags, what, data, {0, 0}, 0};
        return sendRecord(LVM_FINDITEMW, behind, info);
    };
    EXPECT_EQ(find(LVFI_PARTIAL, u"AL", -1), 0);
    EXPECT_EQ(find(LVFI_PARTIAL, u"al", 0), 2);
    EXPECT_EQ(find(LVFI_PARTIAL, u"al", 2), -1);
    EXPECT_EQ(find(LVFI_PARTIAL | LVFI_WRAP, u"al", 2), 0);
    EXPECT_EQ(find(LVFI_STRING, u"alp", -1), -1);
    EXPECT_EQ(find(LVFI_STRING, u"ALPS", -1), 2);
    insert(3, u"d", 77);
    EXPECT_EQ(find(LVFI_PARAM, nullptr, -1, 77), 3);
    setState(0, LVIS_SELECTED, LVIS_SELECTED);
    setState(2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(send(LVM_GETNEXTITEM, -1, LVNI_ALL), 0);
    EXPECT_EQ(send(LVM_GETNEXTITEM, 0, LVNI_SELECTED), 2);
    EXPECT_EQ(send(LVM_GETNEXTITEM, 2, LVNI_SELECTED | LVNI_ABOVE), 0);
    EXPECT_EQ(send(LVM_GETNEXTITEM, 2, LVNI_SELECTED), -1);
}

TEST_F(ListViews, SortingKeepsEqualsAndStates)
{
    make(LVS_REPORT);
    for (int i = 0; i < 6; ++i)
    {
        const WCHAR name[] = {static_cast<WCHAR>(u'a' + i), 0};
        insert(i, name, (5 - i) / 2);
    }
    setState(5, both, both);
    const PFNLVCOMPARE byData = [](LPARAM one, LPARAM other, LPARAM sign)
    { return static_cast<int>((one - other) * sign); };
    EXPECT_EQ(send(LVM_SORTITEMS, 1, reinterpret_cast<LPARAM>(byData)), 1);
    std::u16string order;
    for (int i = 0; i < 6; ++i)
    {
        order += text(i);
    }
    EXPECT_EQ(order, u"efcdab");
    EXPECT_EQ(chosen(), Rows{1});
    EXPECT_EQ(focused(), 1);
    // By numbers, from the control itself; rows can't go meanwhile.
    static HWND sorted;
    sorted = list;
    const PFNLVCOMPARE byNumber = [](LPARAM one, LPARAM other, LPARAM)
    {
        EXPECT_EQ(SendMessageW(sorted, LVM_DELETEITEM, 0, 0), 0);
        return static_cast<int>(other - one);
    };
    EXPECT_EQ(send(LVM_SORTITEMSEX, 0, reinterpret_cast<LPARAM>(byNumber)), 1);
    EXPECT_EQ(text(0), u"b");
    EXPECT_EQ(focused(), 4);
    const PFNLVCOMPARE nonsense = [](LPARAM, LPARAM, LPARAM) { return 1; };
    EXPECT_EQ(send(LVM_SORTITEMS, 0, reinterpret_cast<LPARAM>(nonsense)), 1);
    EXPECT_EQ(send(LVM_GETITEMCOUNT), 6);
}

TEST_F(ListViews, ColumnsAndTheirHeader)
{
    make(LVS_REPORT, {u"aaaa", u"b"});
    EXPECT_EQ(column(0, 60, u"One", LVCFMT_RIGHT), 0);
    EXPECT_EQ(column(9, 50, u"Two", LVCFMT_RIGHT), 1);
    EXPECT_EQ(send(LVM_GETCOLUMNWIDTH, 1), 50);
    WCHAR title[16] = {};
    LVCOLUMNW wanted{LVCF_TEXT | LVCF_FMT | LVCF_SUBITEM | LVCF_WIDTH, 9, 0, title, 16, 9, 0, 0};
    EXPECT_EQ(sendRecord(LVM_GETCOLUMNW, 1, wanted), 1);
    EXPECT_EQ(std::u16string(title), u"Two");
    EXPECT_EQ(wanted.fmt, LVCFMT_RIGHT);
    EXPECT_EQ(wanted.iSubItem, 1);
    EXPECT_EQ(wanted.cx, 50);
    sendRecord(LVM_GETCOLUMNW, 0, wanted);
    EXPECT_EQ(wanted.fmt, LVCFMT_LEFT) << "the item itself always begins at the left";
    const auto header = reinterpret_cast<HWND>(send(LVM_GETHEADER));
    EXPECT_EQ(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0), 2);
    RECT box{};
    GetClientRect(header, &box);
    EXPECT_TRUE(zb::test::is(box, 0, 0, 200, 22));
    heard.clear();
    tap(80, 10);
    EXPECT_EQ(takeHeard({-108}), (All{{-108, -1}}));
    zb::penDown(10 + 61, 20); // the first column's edge
    settle();
    zb::penMove(10 + 91, 20);
    zb::penUp(10 + 91, 20);
    settle();
    EXPECT_EQ(send(LVM_GETCOLUMNWIDTH, 0), 90);
    EXPECT_EQ(takeHeard({-108}), All{});
    EXPECT_EQ(send(LVM_SETCOLUMNWIDTH, 0, pair(LVSCW_AUTOSIZE, 0)), 1);
    EXPECT_EQ(send(LVM_GETCOLUMNWIDTH, 0), 4 * 5 + 8) << "four letters of 5, 4 beside them on each side";
    EXPECT_EQ(send(LVM_SETCOLUMNWIDTH, 1, pair(LVSCW_AUTOSIZE_USEHEADER, 0)), 1);
    EXPECT_EQ(send(LVM_GETCOLUMNWIDTH, 1), 200 - 28) << "the last one takes what is left";
    EXPECT_EQ(send(LVM_DELETECOLUMN, 0), 1);
    EXPECT_EQ(send(LVM_DELETECOLUMN, 5), 0);
    EXPECT_EQ(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0), 1);
}

TEST_F(ListViews, PlacesOfRowsAndScrolling)
{
    make(LVS_REPORT, {u"aa", u"b", u"c", u"d", u"e", u"f"});
    column(0, 100);
    column(1, 60);
    RECT box{LVIR_BOUNDS, 0, 0, 0};
    EXPECT_EQ(sendRecord(LVM_GETITEMRECT, 1, box), 1);
    EXPECT_TRUE(zb::test::is(box, 0, 42, 160, 62));
    box = {LVIR_LABEL, 0, 0, 0};
    sendRecord(LVM_GETITEMRECT, 0, box);
    EXPECT_TRUE(zb::test::is(box, 0, 22, 100, 42));
    box = {LVIR_BOUNDS, 1, 0, 0};
    EXPECT_EQ(sendRecord(LVM_GETSUBITEMRECT, 0, box), 1);
    EXPECT_TRUE(zb::test::is(box, 100, 22, 160, 42));
    EXPECT_EQ(sendRecord(LVM_GETITEMRECT, 6, box), 0);
    EXPECT_EQ(send(LVM_GETCOUNTPERPAGE), 4);
    LVHITTESTINFO hit{{120, 45}, 0, 0, 0};
    EXPECT_EQ(sendRecord(LVM_SUBITEMHITTEST, 0, hit), 1);
    EXPECT_EQ(hit.iSubItem, 1);
    EXPECT_EQ(hit.flags, LVHT_ONITEMLABEL);
    const std::pair<POINT, UINT> beside[] = {{{170, 45}, LVHT_NOWHERE},
                                             {{5, 10}, LVHT_NOWHERE},
                                             {{-1, 45}, LVHT_TOLEFT},
                                             {{5, 200}, LVHT_BELOW},
                                             {{5, -1}, LVHT_ABOVE}};
    for (const auto &[point, flags] : beside)
    {
        hit.pt = point;
        EXPECT_EQ(sendRecord(LVM_HITTEST, 0, hit), -1);
        EXPECT_EQ(hit.flags, flags);
    }
    EXPECT_EQ(send(LVM_ENSUREVISIBLE, 5, 0), 1);
    EXPECT_EQ(send(LVM_GETTOPINDEX), 2);
    EXPECT_EQ(send(LVM_SCROLL, 0, -20), 1);
    EXPECT_EQ(send(LVM_GETTOPINDEX), 1);
    send(WM_VSCROLL, SB_TOP);
    EXPECT_EQ(send(LVM_GETTOPINDEX), 0);
    send(LVM_SETCOLUMNWIDTH, 1, 200);
    EXPECT_NE(GetWindowLongW(list, GWL_STYLE) & WS_HSCROLL, 0);
    send(LVM_SCROLL, 30, 0);
    box = {LVIR_BOUNDS, 0, 0, 0};
    sendRecord(LVM_GETITEMRECT, 0, box);
    EXPECT_TRUE(zb::test::is(box, -30, 22, 270, 42));
    send(LVM_SETCOLUMNWIDTH, 1, 60);
    EXPECT_EQ(GetWindowLongW(list, GWL_STYLE) & WS_HSCROLL, 0);
    for (int i = 0; i < 2; ++i)
    {
        send(LVM_DELETEITEM, 0);
    }
    EXPECT_EQ(GetWindowLongW(list, GWL_STYLE) & WS_VSCROLL, 0) << "four rows fit";
}

TEST_F(ListViews, KeysChoose)
{
    make(LVS_REPORT, {u"a", u"b", u"c", u"d", u"e", u"f", u"g"});
    EXPECT_EQ(focused(), 0);
    pressKey(VK_DOWN);
    EXPECT_EQ(chosen(), Rows{0}) << "the first step chooses the first";
    pressKey(VK_DOWN);
    EXPECT_EQ(chosen(), Rows{1});
    pressKey(VK_DOWN, {VK_SHIFT});
    EXPECT_EQ(chosen(), (Rows{1, 2}));
    pressKey(VK_END, {VK_CONTROL});
    EXPECT_EQ(chosen(), (Rows{1, 2}));
    EXPECT_EQ(focused(), 6);
    EXPECT_EQ(send(LVM_GETTOPINDEX), 2) << "five rows of 20";
    pressKey(VK_SPACE, {VK_CONTROL});
    EXPECT_EQ(chosen(), (Rows{1, 2, 6}));
    pressKey(VK_PRIOR);
    EXPECT_EQ(chosen(), Rows{2});
    pressKey(VK_HOME);
    EXPECT_EQ(chosen(), Rows{0});
    typeText(u"\x01");
    EXPECT_EQ(chosen().size(), 7U);
    heard.clear();
    pressKey(VK_RETURN);
    EXPECT_EQ(takeHeard(), (All{{-155, -1}, {-4, -1}, {-114, 0}}));
}

TEST_F(ListViews, TypedLettersGoToRows)
{
    make(LVS_REPORT, {u"apple", u"banana", u"blueberry", u"cherry"});
    typeText(u"b");
    EXPECT_EQ(chosen(), Rows{1});
    typeText(u"b");
    EXPECT_EQ(chosen(), Rows{2}) << "the same letter goes on";
    WCHAR typed[16] = {};
    EXPECT_EQ(send(LVM_GETISEARCHSTRINGW, 0, reinterpret_cast<LPARAM>(typed)), 1);
    EXPECT_EQ(std::u16string(typed), u"b");
    zb::skipTime(1100);
    typeText(u"bA");
    EXPECT_EQ(chosen(), Rows{1});
    zb::skipTime(1100);
    typeText(u"a");
    EXPECT_EQ(chosen(), Rows{0}) << "around at the end";
}

TEST_F(ListViews, ThePenChoosesAndActivates)
{
    make(LVS_REPORT, {u"a", u"b", u"c"});
    tap(20, 25);
    EXPECT_EQ(chosen(), Rows{1});
    EXPECT_EQ(takeHeard({-2, -3, -114, -109}), (All{{-2, 1}}));
    tap(20, 25);
    EXPECT_EQ(takeHeard({-2, -3, -114, -109}), (All{{-3, 1}, {-114, 1}}));
    zb::keyDown(VK_CONTROL);
    tap(20, 45);
    zb::keyUp(VK_CONTROL);
    EXPECT_EQ(chosen(), (Rows{1, 2}));
    tap(20, 45);
    tap(20, 90);
    EXPECT_EQ(chosen(), Rows{}) << "a tap beside the rows gives up";
    EXPECT_EQ(takeHeard({-2}).back(), (Heard{-2, -1}));
    send(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_ONECLICKACTIVATE, LVS_EX_ONECLICKACTIVATE);
    tap(20, 5);
    EXPECT_EQ(takeHeard({-2, -114}), (All{{-2, 0}, {-114, 0}}));
}

TEST_F(ListViews, APenThatIsDrawnAwayDragsOrChooses)
{
    make(LVS_REPORT, {u"a", u"b", u"c", u"d"});
    zb::penDown(30, 15);
    settle();
    zb::penMove(33, 17);
    settle();
    EXPECT_EQ(takeHeard({-109}), All{}) << "not yet far enough";
    zb::penMove(30, 55);
    settle();
    EXPECT_EQ(takeHeard({-109}), (All{{-109, 0}}));
    EXPECT_EQ(chosen(), (Rows{0, 1, 2})) << "nobody took the pen";
    zb::penUp(30, 55);
    settle();
    EXPECT_EQ(takeHeard({-2}), All{}) << "that was no tap";
    answer = [this](NMHDR &header, LRESULT &)
    {
        if (header.code == LVN_BEGINDRAG)
        {
            SetCapture(parent.window);
        }
        return false;
    };
    zb::penDown(30, 75);
    settle();
    zb::penMove(30, 30);
    settle();
    EXPECT_EQ(chosen(), Rows{3});
    EXPECT_EQ(GetCapture(), parent.window);
    ReleaseCapture();
    zb::penUp(30, 30);
    settle();
}

TEST_F(ListViews, LabelsAreEditedByKeys)
{
    make(LVS_REPORT | LVS_EDITLABELS, {u"a", u"b"});
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == LVN_ENDLABELEDITW; };
    pressKey(VK_DOWN);
    heard.clear();
    pressKey(VK_F2);
    EXPECT_EQ(takeHeard({-175}), (All{{-175, 0}}));
    const auto edit = reinterpret_cast<HWND>(send(LVM_GETEDITCONTROL));
    EXPECT_EQ(GetFocus(), edit);
    typeText(u"new");
    pressKey(VK_RETURN);
    EXPECT_EQ(takeHeard({-176}), (All{{-176, 0}}));
    EXPECT_EQ(text(0), u"new");
    EXPECT_EQ(IsWindow(edit), FALSE);
    EXPECT_EQ(GetFocus(), list);
    pressKey(VK_F2);
    typeText(u"other");
    pressKey(VK_ESCAPE);
    EXPECT_EQ(text(0), u"new");
    EXPECT_EQ(edited, u"");
    answer = [](NMHDR &header, LRESULT &result) { return result = 0, header.code == LVN_ENDLABELEDITW; };
    pressKey(VK_F2);
    typeText(u"refused");
    SetFocus(parent.window);
    settle();
    EXPECT_EQ(edited, u"refused") << "leaving it is like Enter";
    EXPECT_EQ(text(0), u"new") << "but the parent did not take it";
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == LVN_BEGINLABELEDITW; };
    EXPECT_EQ(send(LVM_EDITLABELW, 1), 0);
    EXPECT_EQ(send(LVM_GETEDITCONTROL), 0);
}

TEST_F(ListViews, ATapOnTheChosenLabelEditsIt)
{
    make(LVS_REPORT | LVS_EDITLABELS, {u"a", u"b"});
    tap(10, 25);
    zb::skipTime(550);
    settle();
    EXPECT_EQ(send(LVM_GETEDITCONTROL), 0) << "the tap that chooses does not edit";
    tap(10, 25);
    EXPECT_EQ(send(LVM_GETEDITCONTROL), 0) << "another one may follow";
    zb::skipTime(550);
    settle();
    EXPECT_NE(send(LVM_GETEDITCONTROL), 0);
    typeText(u"kept");
    DestroyWindow(list);
    EXPECT_EQ(takeHeard({-176}), (All{{-176, 1}}));
    EXPECT_EQ(edited, u"kept") << "nothing that was typed is lost";
}

TEST_F(ListViews, AParentMayDestroyItInAnyNotification)
{
    for (const UINT code : {LVN_ITEMCHANGING, LVN_ITEMCHANGED, NM_CLICK, LVN_BEGINDRAG, LVN_GETDISPINFOW, LVN_KEYDOWN,
                            LVN_DELETEITEM, LVN_COLUMNCLICK, LVN_ENDLABELEDITW})
    {
        answer = nullptr;
        make(LVS_REPORT | LVS_EDITLABELS, {u"a", u"b"});
        column(0, 100);
        LVITEMW item{LVIF_TEXT, 2, 0, 0, 0, LPSTR_TEXTCALLBACKW, 0, 0, 0, 0};
        sendRecord(LVM_INSERTITEMW, 0, item);
        const HWND gone = list;
        answer = [this, code](NMHDR &header, LRESULT &)
        {
            if (header.code == code && IsWindow(list) != FALSE)
            {
                answer = nullptr;
                DestroyWindow(list);
            }
            return false;
        };
        settle();
        pressKey(VK_DOWN);
        tap(20, 10);
        tap(20, 50);
        zb::penDown(30, 40);
        settle();
        zb::penMove(30, 70);
        settle();
        zb::penUp(30, 70);
        settle();
        send(LVM_EDITLABELW, 0);
        pressKey(VK_RETURN);
        send(LVM_DELETEITEM, 0);
        EXPECT_EQ(IsWindow(gone), FALSE) << static_cast<int>(code);
    }
}

TEST_F(ListViews, TwentyThousandRows)
{
    make(LVS_REPORT | LVS_SINGLESEL);
    column(0, 150);
    constexpr int many = 20000;
    for (int i = 0; i < many; ++i)
    {
        insert(i % 2 == 0 ? 0 : many, u"row", i);
    }
    EXPECT_EQ(send(LVM_GETITEMCOUNT), many);
    for (int i = 0; i < 500; ++i)
    {
        setState(i * 40, both, both);
        send(LVM_ENSUREVISIBLE, i * 40, 0);
    }
    EXPECT_EQ(chosen(), Rows{499 * 40});
    EXPECT_EQ(send(LVM_GETTOPINDEX), 499 * 40 - 3);
    pressKey(VK_END);
    EXPECT_EQ(send(LVM_GETTOPINDEX), many - 4);
}
