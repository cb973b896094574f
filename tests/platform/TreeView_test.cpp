// The tree view: items, opening, choosing, what the parent hears, keys, pen and labels.
#include "platform/controls.h"
#include "platform/tree_view.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>
#include <utility>

namespace
{
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::typeText;

constexpr DWORD full = TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT;
constexpr int changing = -450;
constexpr int changed = -451;
constexpr int expanding = -454;
constexpr int expanded = -455;

/// A tree at 10, 10 of 200 by 100; rows are 20 high and each level is 20 further in. Items are known by their first
/// letter: what is heard is a text of codes and letters.
class TreeViews : public zb::test::TextTest
{
  protected:
    ~TreeViews() override
    {
        DeleteObject(font);
        parent.before = nullptr; // it outlives what hears
    }
    void make(DWORD style)
    {
        parent.before = [this](UINT message, WPARAM, LPARAM lParam, LRESULT &result)
        { return message == WM_NOTIFY && hear(*reinterpret_cast<NMHDR *>(lParam), result); };
        tree = CreateWindowExW(0, WC_TREEVIEWW, u"", style | WS_CHILD | WS_VISIBLE, 10, 10, 200, 100, parent.window,
                               nullptr, nullptr, nullptr);
        SendMessageW(tree, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    /// a, with b (holding c and d) and e below it, then f. Nothing is open, nothing chosen.
    void makeFull(DWORD style = full)
    {
        make(style);
        a = insert(TVI_ROOT, u"apple");
        b = insert(a, u"bread");
        c = insert(b, u"corn");
        d = insert(b, u"dill");
        e = insert(a, u"egg");
        f = insert(TVI_ROOT, u"fig");
        heard.clear();
    }
    void focus()
    {
        SetFocus(tree);
        settle();
        heard.clear();
    }
    bool hear(NMHDR &header, LRESULT &result)
    {
        if (header.hwndFrom != tree)
        {
            return false;
        }
        const auto &record = reinterpret_cast<NMTREEVIEWW &>(header);
        switch (static_cast<int>(header.code))
        {
        case changing:
            heard += "?" + name(record.itemOld.hItem) + name(record.itemNew.hItem) + std::to_string(record.action);
            break;
        case changed:
            heard += "!" + name(record.itemOld.hItem) + name(record.itemNew.hItem) + std::to_string(record.action);
            break;
        case expanding:
            heard += (record.action == TVE_EXPAND ? "(" : "[") + name(record.itemNew.hItem);
            break;
        case expanded:
            heard += name(record.itemNew.hItem) + (record.action == TVE_EXPAND ? ")" : "]");
            break;
        case -458:
            heard += "x" + std::to_string(record.itemOld.lParam);
            break;
        case -456:
            heard += "drag" + name(record.itemNew.hItem);
            break;
        case -459:
        case -460:
        {
            const auto &item = reinterpret_cast<NMTVDISPINFOW &>(header).item;
            edited = item.pszText == nullptr ? u"(none)" : item.pszText;
            heard += header.code == TVN_BEGINLABELEDITW ? "<" : ">";
            break;
        }
        case -2:
            heard += "tap";
            break;
        case -3:
            heard += "twice";
            break;
        case -4:
            heard += "enter";
            break;
        default:
            break;
        }
        return answer && answer(header, result);
    }
    std::string name(HTREEITEM item) const
    {
        WCHAR buffer[32] = {};
        TVITEMW asked{TVIF_TEXT, item, 0, 0, buffer, 32, 0, 0, 0, 0};
        return item == nullptr || sendRecord(TVM_GETITEMW, 0, asked) == 0
                   ? "-"
                   : std::string(1, static_cast<char>(buffer[0]));
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(tree, message, wParam, lParam);
    }
    LRESULT sendItem(UINT message, WPARAM wParam, HTREEITEM item) const
    {
        return send(message, wParam, reinterpret_cast<LPARAM>(item));
    }
    template <typename Record>
    LRESULT sendRecord(UINT message, WPARAM wParam, Record &record) const
    {
        return send(message, wParam, reinterpret_cast<LPARAM>(&record));
    }
    HTREEITEM insert(HTREEITEM above, const WCHAR *text, HTREEITEM after = TVI_LAST, int children = 0) const
    {
        TVINSERTSTRUCTW given{};
        given.hParent = above;
        given.hInsertAfter = after;
        given.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
        given.item.pszText = const_cast<WCHAR *>(text);
        given.item.lParam = text == LPSTR_TEXTCALLBACKW ? 7 : text[0];
        given.item.cChildren = children;
        return reinterpret_cast<HTREEITEM>(sendRecord(TVM_INSERTITEMW, 0, given));
    }
    HTREEITEM next(WPARAM which, HTREEITEM item = nullptr) const
    {
        return reinterpret_cast<HTREEITEM>(sendItem(TVM_GETNEXTITEM, which, item));
    }
    std::string chosen() const
    {
        return name(next(TVGN_CARET));
    }
    /// The open rows from the top.
    std::string rows() const
    {
        std::string all;
        for (HTREEITEM item = next(TVGN_ROOT); item != nullptr; item = next(TVGN_NEXTVISIBLE, item))
        {
            all += name(item);
        }
        return all;
    }
    UINT state(HTREEITEM item) const
    {
        return static_cast<UINT>(send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), 0xFFFF));
    }
    static void keys(std::initializer_list<int> all)
    {
        for (const int key : all)
        {
            zb::test::pressKey(key);
        }
    }
    /// In client coordinates of the tree.
    static void tap(int x, int y)
    {
        zb::test::tapAt(10 + x, 10 + y);
    }
    std::string takeHeard()
    {
        return std::exchange(heard, {});
    }

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND tree = nullptr;
    HTREEITEM a = nullptr;
    HTREEITEM b = nullptr;
    HTREEITEM c = nullptr;
    HTREEITEM d = nullptr;
    HTREEITEM e = nullptr;
    HTREEITEM f = nullptr;
    std::string heard;
    std::u16string edited;
    std::function<bool(NMHDR &, LRESULT &)> answer;
};
} // namespace

TEST_F(TreeViews, TheNumbersThatHostsSend)
{
    const std::pair<UINT, UINT> numbers[] = {
        {TVM_DELETEITEM, 0x1101},        {TVM_EXPAND, 0x1102},          {TVM_GETITEMRECT, 0x1104},
        {TVM_GETCOUNT, 0x1105},          {TVM_SETIMAGELIST, 0x1109},    {TVM_GETNEXTITEM, 0x110A},
        {TVM_SELECTITEM, 0x110B},        {TVM_GETEDITCONTROL, 0x110F},  {TVM_HITTEST, 0x1111},
        {TVM_SORTCHILDREN, 0x1113},      {TVM_ENSUREVISIBLE, 0x1114},   {TVM_SORTCHILDRENCB, 0x1115},
        {TVM_ENDEDITLABELNOW, 0x1116},   {TVM_INSERTITEMW, 0x1132},     {TVM_GETITEMW, 0x113E},
        {TVM_SETITEMW, 0x113F},          {TVM_EDITLABELW, 0x1141},      {TVN_SELCHANGEDW, 0xFFFFFE3DU},
        {TVN_ITEMEXPANDEDW, 0xFFFFFE39U}, {TVN_ENDLABELEDITW, 0xFFFFFE34U}, {TVN_KEYDOWN, 0xFFFFFE64U}};
    for (const auto &[actual, expected] : numbers)
    {
        EXPECT_EQ(actual, expected);
    }
}

TEST_F(TreeViews, ItemsAndTheirRelations)
{
    makeFull();
    EXPECT_EQ(send(TVM_GETCOUNT), 6);
    EXPECT_EQ(next(TVGN_ROOT), a);
    EXPECT_EQ(next(TVGN_CHILD, TVI_ROOT), a);
    EXPECT_EQ(next(TVGN_CHILD, a), b);
    EXPECT_EQ(next(TVGN_NEXT, b), e);
    EXPECT_EQ(next(TVGN_NEXT, e), nullptr);
    EXPECT_EQ(next(TVGN_PREVIOUS, e), b);
    EXPECT_EQ(next(TVGN_PARENT, c), b);
    EXPECT_EQ(next(TVGN_PARENT, a), nullptr);
    EXPECT_EQ(next(TVGN_CARET), nullptr);
    EXPECT_EQ(next(TVGN_NEXTVISIBLE, c), nullptr) << "in no open row";
    EXPECT_EQ(next(TVGN_LASTVISIBLE), f);
    const HTREEITEM g = insert(a, u"grape", TVI_FIRST);
    const HTREEITEM h = insert(a, u"honey", g);
    EXPECT_EQ(next(TVGN_CHILD, a), g);
    EXPECT_EQ(next(TVGN_NEXT, g), h);
    EXPECT_EQ(next(TVGN_NEXT, h), b);
    EXPECT_EQ(insert(reinterpret_cast<HTREEITEM>(&a), u"x"), nullptr) << "a parent that is none";
    TVITEMW item{TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE, a, 0, 0, nullptr, 0, 9, 9, 9, 9};
    EXPECT_EQ(sendRecord(TVM_GETITEMW, 0, item), 1);
    EXPECT_EQ(item.lParam, u'a');
    EXPECT_EQ(item.cChildren, 1);
    EXPECT_EQ(item.iImage, 0);
    WCHAR three[3] = {};
    TVITEMW cut{TVIF_TEXT, b, 0, 0, three, 3, 0, 0, 0, 0};
    EXPECT_EQ(sendRecord(TVM_GETITEMW, 0, cut), 1);
    EXPECT_EQ(std::u16string(three), u"br");
    item.hItem = reinterpret_cast<HTREEITEM>(&a);
    EXPECT_EQ(sendRecord(TVM_SETITEMW, 0, item), 0);
}

TEST_F(TreeViews, SortedPlacesAndSorting)
{
    make(full);
    for (const WCHAR *text : {u"b", u"C", u"a", u"B2"})
    {
        insert(TVI_ROOT, text, TVI_SORT);
    }
    EXPECT_EQ(rows(), "abBC");
    insert(TVI_ROOT, u"aa", TVI_LAST);
    EXPECT_EQ(rows(), "abBCa");
    EXPECT_EQ(sendItem(TVM_SORTCHILDREN, 0, TVI_ROOT), 1);
    EXPECT_EQ(rows(), "aabBC");
    static HWND sorted;
    sorted = tree;
    TVSORTCB order{nullptr,
                   [](LPARAM one, LPARAM other, LPARAM sign)
                   {
                       EXPECT_EQ(SendMessageW(sorted, TVM_DELETEITEM, 0, 0), 0) << "nothing goes meanwhile";
                       return static_cast<int>((one - other) * sign);
                   },
                   -1};
    EXPECT_EQ(sendRecord(TVM_SORTCHILDRENCB, 0, order), 1);
    EXPECT_EQ(rows(), "baaCB") << "from small letters to capitals";
    EXPECT_EQ(name(next(TVGN_PREVIOUS, next(TVGN_LASTVISIBLE))), "C");
}

TEST_F(TreeViews, OpeningByMessages)
{
    makeFull();
    EXPECT_EQ(rows(), "af");
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_EXPAND, a), 1);
    EXPECT_EQ(takeHeard(), "(aa)");
    EXPECT_EQ(rows(), "abef");
    EXPECT_EQ(state(a), TVIS_EXPANDED | TVIS_EXPANDEDONCE);
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_EXPAND, a), 0) << "is open";
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_COLLAPSE, a), 1);
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_TOGGLE, a), 1);
    EXPECT_EQ(takeHeard(), "") << "only the first time";
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_EXPAND, f), 0) << "nothing to open";
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == TVN_ITEMEXPANDINGW; };
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_EXPAND, b), 0) << "forbidden";
    EXPECT_EQ(rows(), "abef");
    answer = nullptr;
    takeHeard();
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_COLLAPSE | TVE_COLLAPSERESET, a), 1);
    EXPECT_EQ(takeHeard(), "x99x100x98x101") << "what is below goes, from the inside out";
    EXPECT_EQ(send(TVM_GETCOUNT), 2);
    EXPECT_EQ(state(a), 0U);
}

TEST_F(TreeViews, ItemsThatAreFilledWhenTheyOpen)
{
    make(full);
    a = insert(TVI_ROOT, u"a", TVI_LAST, 1);
    answer = [this](NMHDR &header, LRESULT &)
    {
        if (header.code == TVN_ITEMEXPANDINGW)
        {
            insert(a, u"b");
        }
        return false;
    };
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_EXPAND, a), 1);
    EXPECT_EQ(rows(), "ab");
    // Texts and children of the parent's.
    answer = [](NMHDR &header, LRESULT &)
    {
        if (header.code == TVN_GETDISPINFOW)
        {
            auto &item = reinterpret_cast<NMTVDISPINFOW &>(header).item;
            static WCHAR text[] = u"zebra";
            EXPECT_EQ(item.lParam, 7);
            item.pszText = text;
            item.cChildren = 1;
        }
        return false;
    };
    const HTREEITEM z = insert(TVI_ROOT, LPSTR_TEXTCALLBACKW, TVI_LAST, I_CHILDRENCALLBACK);
    EXPECT_EQ(name(z), "z");
    TVITEMW item{TVIF_CHILDREN, z, 0, 0, nullptr, 0, 0, 0, 0, 0};
    EXPECT_EQ(sendRecord(TVM_GETITEMW, 0, item), 1);
    EXPECT_EQ(item.cChildren, 1);
}

TEST_F(TreeViews, ChoosingAsksTellsAndOpens)
{
    makeFull();
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_CARET, c), 1);
    EXPECT_EQ(takeHeard(), "?-c0(aa)(bb)!-c0");
    EXPECT_EQ(rows(), "abcdef");
    EXPECT_EQ(state(c), TVIS_SELECTED);
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_CARET, c), 1);
    EXPECT_EQ(takeHeard(), "") << "nothing has changed";
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == TVN_SELCHANGINGW; };
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_CARET, f), 0);
    EXPECT_EQ(takeHeard(), "?cf0");
    answer = nullptr;
    EXPECT_EQ(chosen(), "c");
    EXPECT_EQ(sendItem(TVM_EXPAND, TVE_COLLAPSE, a), 1);
    EXPECT_EQ(takeHeard(), "?ca0!ca0") << "what is closed over takes the choice";
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_CARET, nullptr), 1);
    EXPECT_EQ(chosen(), "-");
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_DROPHILITE, f), 1);
    EXPECT_EQ(next(TVGN_DROPHILITE), f);
    EXPECT_EQ(state(f), TVIS_DROPHILITED);
}

TEST_F(TreeViews, DeletingGoesFromTheInsideOut)
{
    makeFull();
    sendItem(TVM_SELECTITEM, TVGN_CARET, d);
    takeHeard();
    EXPECT_EQ(sendItem(TVM_DELETEITEM, 0, b), 1);
    EXPECT_EQ(takeHeard(), "?de0!de0x99x100x98") << "the choice goes to the next beside it first";
    EXPECT_EQ(sendItem(TVM_DELETEITEM, 0, b), 0) << "gone already";
    EXPECT_EQ(name(c), "-");
    EXPECT_EQ(rows(), "aef");
    EXPECT_EQ(sendItem(TVM_DELETEITEM, 0, TVI_ROOT), 1);
    EXPECT_EQ(takeHeard(), "x101x97x102");
    EXPECT_EQ(send(TVM_GETCOUNT), 0);
    EXPECT_EQ(chosen(), "-");
    insert(TVI_ROOT, u"g");
    DestroyWindow(tree);
    EXPECT_EQ(takeHeard(), "x103") << "also when the control goes";
}

TEST_F(TreeViews, Keys)
{
    makeFull();
    focus();
    EXPECT_EQ(chosen(), "a") << "where keys begin";
    keys({VK_RIGHT});
    EXPECT_EQ(takeHeard(), "(aa)");
    keys({VK_RIGHT});
    EXPECT_EQ(takeHeard(), "?ab2!ab2");
    keys({VK_DOWN, VK_DOWN, VK_DOWN});
    EXPECT_EQ(chosen(), "f");
    keys({VK_HOME});
    takeHeard();
    typeText(u"*");
    EXPECT_EQ(takeHeard(), "(bb)") << "only what was not open yet";
    EXPECT_EQ(rows(), "abcdef");
    keys({VK_END, VK_UP, VK_UP, VK_LEFT});
    EXPECT_EQ(chosen(), "b");
    keys({VK_LEFT});
    EXPECT_EQ(rows(), "abef");
    typeText(u"+");
    EXPECT_EQ(rows(), "abcdef");
    typeText(u"-");
    EXPECT_EQ(rows(), "abef");
    keys({VK_ADD});
    EXPECT_EQ(rows(), "abcdef");
    keys({VK_BACK});
    EXPECT_EQ(chosen(), "a");
    keys({VK_NEXT});
    EXPECT_EQ(chosen(), "e") << "five rows of 20 fit, and one stays in sight";
    takeHeard();
    keys({VK_RETURN});
    EXPECT_EQ(takeHeard(), "enter");
    typeText(u"c");
    EXPECT_EQ(chosen(), "c") << "around at the end";
    typeText(u"-"); // a letter of the name that is being typed
    EXPECT_EQ(chosen(), "c");
}

TEST_F(TreeViews, ThePen)
{
    makeFull();
    focus();
    tap(10, 10); // the button, left of the label that begins at 20
    EXPECT_EQ(takeHeard(), "(aa)tap");
    tap(60, 30);
    EXPECT_EQ(takeHeard(), "?ab1!ab1tap");
    tap(60, 30);
    EXPECT_EQ(takeHeard(), "twice(bb)") << "two taps open";
    tap(150, 50);
    EXPECT_EQ(chosen(), "c") << "a tap anywhere in a row is meant for it";
    takeHeard();
    tap(50, 95);
    EXPECT_EQ(chosen(), "e");
    takeHeard();
    zb::penDown(10 + 60, 10 + 30);
    settle();
    zb::penMove(10 + 63, 10 + 32);
    settle();
    EXPECT_EQ(takeHeard(), "?eb1!eb1");
    zb::penMove(10 + 60, 10 + 60);
    settle();
    EXPECT_EQ(takeHeard(), "dragb");
    zb::penUp(10 + 60, 10 + 60);
    settle();
    EXPECT_EQ(takeHeard(), "") << "that was no tap";
}

TEST_F(TreeViews, CheckBoxes)
{
    makeFull(full | TVS_CHECKBOXES);
    focus();
    EXPECT_EQ(state(a) & TVIS_STATEIMAGEMASK, 0x1000U);
    tap(30, 10);
    EXPECT_EQ(state(a) & TVIS_STATEIMAGEMASK, 0x2000U);
    EXPECT_EQ(takeHeard(), "tap");
    typeText(u" ");
    keys({VK_SPACE});
    EXPECT_EQ(state(a) & TVIS_STATEIMAGEMASK, 0x1000U);
    TVITEMW set{TVIF_STATE, f, 0x2000, TVIS_STATEIMAGEMASK, nullptr, 0, 0, 0, 0, 0};
    EXPECT_EQ(sendRecord(TVM_SETITEMW, 0, set), 1);
    EXPECT_EQ(state(f) & TVIS_STATEIMAGEMASK, 0x2000U);
}

TEST_F(TreeViews, OneOpenBesideTheOthers)
{
    makeFull(full | TVS_SINGLEEXPAND);
    insert(f, u"g");
    sendItem(TVM_EXPAND, TVE_EXPAND, a);
    sendItem(TVM_EXPAND, TVE_EXPAND, f);
    EXPECT_EQ(rows(), "afg");
}

TEST_F(TreeViews, PlacesAndScrolling)
{
    makeFull();
    sendItem(TVM_EXPAND, TVE_EXPAND, a);
    sendItem(TVM_EXPAND, TVE_EXPAND, b);
    settle();
    EXPECT_EQ(send(TVM_GETITEMHEIGHT), 20);
    EXPECT_EQ(send(TVM_GETVISIBLECOUNT), 5);
    union
    {
        RECT box;
        HTREEITEM item;
    } asked{};
    asked.item = b;
    EXPECT_EQ(sendRecord(TVM_GETITEMRECT, TRUE, asked), 1);
    EXPECT_TRUE(zb::test::is(asked.box, 40, 20, 40 + 25 + 8, 40)) << "five letters of 5, 4 on each side";
    asked.item = b;
    EXPECT_EQ(sendRecord(TVM_GETITEMRECT, FALSE, asked), 1);
    EXPECT_EQ(asked.box.left, 0);
    const std::pair<POINT, UINT> points[] = {{{45, 25}, TVHT_ONITEMLABEL}, {{25, 25}, TVHT_ONITEMBUTTON},
                                             {{5, 25}, TVHT_ONITEMINDENT}, {{150, 25}, TVHT_ONITEMRIGHT},
                                             {{45, 45}, TVHT_ONITEMINDENT}, {{-1, 25}, TVHT_TOLEFT},
                                             {{5, -1}, TVHT_ABOVE},         {{5, 100}, TVHT_BELOW}};
    for (const auto &[point, flags] : points)
    {
        TVHITTESTINFO hit{point, 0, nullptr};
        sendRecord(TVM_HITTEST, 0, hit);
        EXPECT_EQ(hit.flags, flags) << point.x << ", " << point.y;
    }
    EXPECT_EQ(sendItem(TVM_ENSUREVISIBLE, 0, f), 1);
    EXPECT_EQ(next(TVGN_FIRSTVISIBLE), b);
    EXPECT_EQ(sendItem(TVM_ENSUREVISIBLE, 0, f), 0) << "nothing to scroll";
    asked.item = a;
    EXPECT_EQ(sendRecord(TVM_GETITEMRECT, FALSE, asked), 1);
    EXPECT_EQ(asked.box.top, -20);
    sendItem(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, a);
    EXPECT_EQ(next(TVGN_FIRSTVISIBLE), a);
    settle();
    EXPECT_NE(GetWindowLongW(tree, GWL_STYLE) & WS_VSCROLL, 0);
    sendItem(TVM_EXPAND, TVE_COLLAPSE, b);
    settle();
    EXPECT_EQ(GetWindowLongW(tree, GWL_STYLE) & WS_VSCROLL, 0);
    insert(TVI_ROOT, u"one that is far too long for two hundred pixels", TVI_FIRST);
    settle();
    EXPECT_NE(GetWindowLongW(tree, GWL_STYLE) & WS_HSCROLL, 0);
    EXPECT_EQ(send(TVM_SETITEMHEIGHT, 30), 20);
    EXPECT_EQ(send(TVM_GETITEMHEIGHT), 30);
}

TEST_F(TreeViews, LabelsAreEdited)
{
    makeFull(full | TVS_EDITLABELS);
    focus();
    answer = [](NMHDR &header, LRESULT &result) { return result = 1, header.code == TVN_ENDLABELEDITW; };
    keys({VK_F2});
    const auto edit = reinterpret_cast<HWND>(send(TVM_GETEDITCONTROL));
    EXPECT_EQ(GetFocus(), edit);
    typeText(u"pear");
    keys({VK_RETURN});
    EXPECT_EQ(takeHeard(), "<>");
    EXPECT_EQ(name(a), "p");
    EXPECT_EQ(GetFocus(), tree);
    EXPECT_NE(sendItem(TVM_EDITLABELW, 0, a), 0);
    typeText(u"x");
    EXPECT_EQ(send(TVM_ENDEDITLABELNOW, TRUE), 1);
    EXPECT_EQ(edited, u"(none)");
    EXPECT_EQ(name(a), "p");
    EXPECT_EQ(send(TVM_ENDEDITLABELNOW, TRUE), 0);
    tap(30, 10);
    zb::skipTime(550);
    settle();
    EXPECT_NE(send(TVM_GETEDITCONTROL), 0) << "a tap on the label of the chosen one";
    answer = nullptr;
    typeText(u"refused");
    keys({VK_RETURN});
    EXPECT_EQ(edited, u"refused");
    EXPECT_EQ(name(a), "p");
}

TEST_F(TreeViews, AParentMayDestroyItInAnyNotification)
{
    for (const int code : {changing, changed, expanding, expanded, -458, -459, -460, -2, -3, -456, -412})
    {
        answer = nullptr;
        makeFull(full | TVS_EDITLABELS);
        const HWND gone = tree;
        focus();
        answer = [this, code](NMHDR &header, LRESULT &)
        {
            if (static_cast<int>(header.code) == code && IsWindow(tree) != FALSE)
            {
                answer = nullptr;
                DestroyWindow(tree);
            }
            return false;
        };
        keys({VK_RIGHT, VK_DOWN, VK_F2, VK_RETURN});
        tap(60, 30);
        tap(60, 30);
        zb::penDown(40, 20);
        settle();
        zb::penMove(40, 60);
        settle();
        zb::penUp(40, 60);
        settle();
        sendItem(TVM_DELETEITEM, 0, TVI_ROOT);
        EXPECT_EQ(IsWindow(gone), FALSE) << code;
    }
}

TEST_F(TreeViews, DeepAndLongTrees)
{
    make(full);
    HTREEITEM above = TVI_ROOT;
    for (int i = 0; i < 2000; ++i)
    {
        above = insert(above, u"d");
    }
    EXPECT_EQ(sendItem(TVM_SELECTITEM, TVGN_CARET, next(TVGN_ROOT)), 1);
    for (int i = 0; i < 20000; ++i)
    {
        insert(TVI_ROOT, u"l", i % 2 == 0 ? TVI_FIRST : TVI_LAST);
    }
    EXPECT_EQ(send(TVM_GETCOUNT), 22000);
    focus();
    keys({VK_END, VK_HOME, VK_NEXT});
    EXPECT_EQ(next(TVGN_FIRSTVISIBLE), next(TVGN_ROOT));
    EXPECT_EQ(sendItem(TVM_DELETEITEM, 0, TVI_ROOT), 1);
    EXPECT_EQ(send(TVM_GETCOUNT), 0);
}
