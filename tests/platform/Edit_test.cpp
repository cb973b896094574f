// The edit control: every message, what the parent hears and in which order, keys and pen. In the test face at 10
// pixels a small letter is 5 wide and a line 10 high.
#include "platform/clipboard.h"
#include "platform/controls.h"
#include "support/DialogBytes.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>

namespace
{
using zb::test::pressKey;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::typeText;

constexpr int margin = 3;

class Edits : public zb::test::TextTest
{
  protected:
    Edits()
    {
        parent.clear();
    }
    ~Edits() override
    {
        for (const int key : {VK_SHIFT, VK_CONTROL})
        {
            zb::keyUp(key);
        }
        zb::setClipboardHooks({});
        DeleteObject(font);
    }
    HWND make(DWORD style, const WCHAR *text = u"", int width = 100, int height = 20)
    {
        edit = CreateWindowExW(0, u"EDIT", text, style | WS_CHILD | WS_VISIBLE, 10, 10, width, height, parent.window,
                               reinterpret_cast<void *>(static_cast<LONG_PTR>(5)), nullptr, nullptr);
        SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        settle();
        parent.clear();
        return edit;
    }
    /// With the focus, and so many lines of five characters high.
    HWND makeLines(const WCHAR *text, DWORD style = 0, int characters = 10, int lines = 4)
    {
        make(ES_MULTILINE | style, text, characters * 5 + 2 * margin, lines * 10 + 1);
        focus();
        return edit;
    }
    void focus()
    {
        SetFocus(edit);
        settle();
        parent.clear();
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(edit, message, wParam, lParam);
    }
    std::u16string text() const
    {
        std::u16string all(static_cast<std::size_t>(GetWindowTextLengthW(edit)) + 1, u'\0');
        all.resize(static_cast<std::size_t>(GetWindowTextW(edit, all.data(), static_cast<int>(all.size()))));
        return all;
    }
    void select(int from, int to) const
    {
        send(EM_SETSEL, static_cast<WPARAM>(from), to);
    }
    std::pair<int, int> selection() const
    {
        DWORD first = 0;
        DWORD last = 0;
        send(EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&last));
        return {static_cast<int>(first), static_cast<int>(last)};
    }
    /// At a place of the edit's client area.
    void pen(void (*what)(int, int), int x, int y) const
    {
        POINT point{x, y};
        ClientToScreen(edit, &point);
        what(point.x, point.y);
        settle();
    }
    std::vector<int> codes()
    {
        return parent.takeCodes(5, edit);
    }
    using Codes = std::vector<int>;
    using Range = std::pair<int, int>;

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND edit = nullptr;
};
} // namespace

TEST_F(Edits, TypedTextIsTold)
{
    make(ES_AUTOHSCROLL);
    SetFocus(edit);
    EXPECT_EQ(codes(), Codes{EN_SETFOCUS});
    EXPECT_EQ(send(EM_GETMODIFY), 0);
    zb::typeCharacter(u'a');
    settle();
    EXPECT_EQ(codes(), (Codes{EN_UPDATE, EN_CHANGE}));
    EXPECT_EQ(text(), u"a");
    EXPECT_EQ(send(EM_GETMODIFY), 1);
    send(EM_SETMODIFY, 0);
    EXPECT_EQ(send(EM_GETMODIFY), 0);
    SetFocus(parent.window);
    EXPECT_EQ(codes(), Codes{EN_KILLFOCUS});
}

TEST_F(Edits, TheTextAsAWhole)
{
    make(0, u"first");
    EXPECT_EQ(text(), u"first");
    SetWindowTextW(edit, u"second");
    EXPECT_EQ(codes(), (Codes{EN_UPDATE, EN_CHANGE}));
    EXPECT_EQ(send(WM_GETTEXTLENGTH), 6);
    WCHAR some[4];
    EXPECT_EQ(send(WM_GETTEXT, 4, reinterpret_cast<LPARAM>(some)), 3);
    EXPECT_EQ(std::u16string(some), u"sec");
    EXPECT_EQ(selection(), Range(0, 0));
    EXPECT_EQ(send(EM_CANUNDO), 0);
    DestroyWindow(edit);
    make(ES_MULTILINE, u"x");
    SetWindowTextW(edit, u"lines");
    EXPECT_EQ(codes(), Codes{}) << "of many lines it is not told";
}

TEST_F(Edits, SelectionByMessages)
{
    make(0, u"abcdef");
    select(1, 4);
    EXPECT_EQ(selection(), Range(1, 4));
    EXPECT_EQ(send(EM_GETSEL), MAKELONG(1, 4));
    select(0, -1);
    EXPECT_EQ(selection(), Range(0, 6));
    select(2, 100);
    EXPECT_EQ(selection(), Range(2, 6));
    select(-1, 0);
    EXPECT_EQ(selection(), Range(6, 6));
    select(5, 2);
    EXPECT_EQ(selection(), Range(2, 5));
    focus();
    pressKey(VK_LEFT, {VK_SHIFT});
    EXPECT_EQ(selection(), Range(1, 5)) << "the end given first stays";
    SetWindowTextW(edit, u"e\u0301x");
    select(1, 3);
    EXPECT_EQ(selection(), Range(0, 3)) << "never half a character";
    const std::u16string large(70000, u'x');
    SetWindowTextW(edit, large.c_str());
    select(0, -1);
    EXPECT_EQ(send(EM_GETSEL), -1);
    EXPECT_EQ(selection(), Range(0, 70000));
}

TEST_F(Edits, ReplacingTheSelection)
{
    make(ES_READONLY, u"abcdef");
    select(1, 3);
    send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(u"XYZ"));
    EXPECT_EQ(text(), u"aXYZdef") << "also while read-only";
    EXPECT_EQ(codes(), (Codes{EN_UPDATE, EN_CHANGE}));
    EXPECT_EQ(selection(), Range(4, 4));
    EXPECT_EQ(send(EM_CANUNDO), 1);
    send(EM_SETREADONLY, FALSE);
    EXPECT_EQ(send(EM_UNDO), 1);
    EXPECT_EQ(text(), u"abcdef");
    send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(u"Q"));
    EXPECT_EQ(text(), u"aQdef");
    EXPECT_EQ(send(EM_CANUNDO), 0) << "not to be taken back";
}

TEST_F(Edits, TheLimitHoldsForTheUserAlone)
{
    make(0);
    EXPECT_EQ(send(EM_GETLIMITTEXT), 30000);
    send(EM_LIMITTEXT, 3);
    EXPECT_EQ(send(EM_GETLIMITTEXT), 3);
    focus();
    typeText(u"abc");
    codes();
    typeText(u"d");
    EXPECT_EQ(codes(), Codes{EN_MAXTEXT});
    EXPECT_EQ(text(), u"abc");
    select(0, 2);
    send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(u"XYZ"));
    EXPECT_EQ(codes(), (Codes{EN_MAXTEXT, EN_UPDATE, EN_CHANGE}));
    EXPECT_EQ(text(), u"XYc");
    SetWindowTextW(edit, u"longer");
    EXPECT_EQ(text(), u"longer");
    send(EM_LIMITTEXT, 0);
    EXPECT_EQ(send(EM_GETLIMITTEXT), 0x7FFFFFFE);
    send(EM_LIMITTEXT, 7);
    typeText(u"\U0001F600");
    EXPECT_EQ(text(), u"longer") << "half a character doesn't come in";
}

TEST_F(Edits, KeysMoveByCharactersWordsAndLines)
{
    makeLines(u"one two\r\nthree\r\n\r\nfour", 0, 20, 4);
    const auto at = [this](int place) { return selection() == Range(place, place); };
    pressKey(VK_RIGHT);
    EXPECT_TRUE(at(1));
    pressKey(VK_RIGHT, {VK_CONTROL});
    EXPECT_TRUE(at(4));
    pressKey(VK_END);
    EXPECT_TRUE(at(7));
    pressKey(VK_RIGHT);
    EXPECT_TRUE(at(9)) << "over both characters of the line end";
    pressKey(VK_LEFT);
    EXPECT_TRUE(at(7));
    pressKey(VK_DOWN);
    EXPECT_TRUE(at(14)) << "the line is shorter";
    pressKey(VK_DOWN);
    EXPECT_TRUE(at(16));
    pressKey(VK_UP);
    pressKey(VK_UP);
    EXPECT_TRUE(at(7)) << "the goal stays";
    pressKey(VK_LEFT, {VK_CONTROL});
    EXPECT_TRUE(at(4));
    pressKey(VK_HOME);
    EXPECT_TRUE(at(0));
    pressKey(VK_END, {VK_CONTROL});
    EXPECT_TRUE(at(22));
    pressKey(VK_HOME, {VK_CONTROL});
    EXPECT_TRUE(at(0));
    pressKey(VK_NEXT);
    EXPECT_TRUE(at(18)) << "a page is one line less than can be seen";
    pressKey(VK_PRIOR);
    EXPECT_TRUE(at(0));
}

TEST_F(Edits, ShiftSelectsAndAMoveEndsTheSelectionAtItsSide)
{
    makeLines(u"one two\r\nthree", 0, 20);
    pressKey(VK_RIGHT, {VK_SHIFT});
    pressKey(VK_RIGHT, {VK_SHIFT, VK_CONTROL});
    EXPECT_EQ(selection(), Range(0, 4));
    pressKey(VK_DOWN, {VK_SHIFT});
    EXPECT_EQ(selection(), Range(0, 13));
    pressKey(VK_LEFT);
    EXPECT_EQ(selection(), Range(0, 0));
    pressKey(VK_END, {VK_SHIFT, VK_CONTROL});
    EXPECT_EQ(selection(), Range(0, 14));
    pressKey(VK_RIGHT);
    EXPECT_EQ(selection(), Range(14, 14));
}

TEST_F(Edits, OnOneLineUpAndDownMoveByCharacters)
{
    make(0, u"abc");
    focus();
    pressKey(VK_DOWN);
    EXPECT_EQ(selection(), Range(1, 1));
    pressKey(VK_UP);
    EXPECT_EQ(selection(), Range(0, 0));
    pressKey(VK_NEXT);
    EXPECT_EQ(selection(), Range(0, 0));
}

TEST_F(Edits, TheEndOfABrokenLineStaysOnIt)
{
    makeLines(u"aaaa bbbb cccc", 0, 10); // "aaaa bbbb " and "cccc"
    EXPECT_EQ(send(EM_GETLINECOUNT), 2);
    pressKey(VK_END);
    EXPECT_EQ(selection(), Range(10, 10));
    EXPECT_EQ(send(EM_LINEINDEX, static_cast<WPARAM>(-1)), 0) << "the caret is on the first line";
    pressKey(VK_DOWN);
    EXPECT_EQ(selection(), Range(14, 14));
    pressKey(VK_HOME);
    EXPECT_EQ(selection(), Range(10, 10));
    EXPECT_EQ(send(EM_LINEINDEX, static_cast<WPARAM>(-1)), 10);
}

TEST_F(Edits, ErasingByKeys)
{
    make(0, u"one two e\u0301x");
    focus();
    pressKey(VK_DELETE);
    EXPECT_EQ(text(), u"ne two e\u0301x");
    pressKey(VK_DELETE, {VK_CONTROL});
    EXPECT_EQ(text(), u"two e\u0301x");
    pressKey(VK_END);
    pressKey(VK_BACK);
    pressKey(VK_BACK);
    EXPECT_EQ(text(), u"two ") << "a letter goes with its accent";
    pressKey(VK_BACK, {VK_CONTROL});
    EXPECT_EQ(text(), u"");
    codes();
    pressKey(VK_BACK);
    pressKey(VK_DELETE);
    EXPECT_EQ(codes(), Codes{}) << "there was nothing";
    SetWindowTextW(edit, u"abcd");
    select(1, 3);
    pressKey(VK_DELETE);
    EXPECT_EQ(text(), u"ad");
}

TEST_F(Edits, AKeyAndItsCharacterCountOnce)
{
    makeLines(u"abc");
    pressKey(VK_END);
    zb::keyDown(VK_BACK);
    zb::typeCharacter(8);
    settle();
    EXPECT_EQ(text(), u"ab");
    zb::keyDown(VK_BACK); // held
    zb::typeCharacter(8);
    zb::keyUp(VK_BACK);
    settle();
    EXPECT_EQ(text(), u"a");
    zb::keyDown(VK_RETURN);
    zb::typeCharacter(u'\r');
    zb::keyUp(VK_RETURN);
    settle();
    EXPECT_EQ(text(), u"a\r\n");
    zb::typeCharacter(8); // of an input panel, without a key
    zb::typeCharacter(8);
    settle();
    EXPECT_EQ(text(), u"");
}

TEST_F(Edits, CutCopyPasteAndTakingBack)
{
    make(0, u"abcdef");
    focus();
    select(1, 3);
    pressKey('C', {VK_CONTROL});
    EXPECT_EQ(zb::clipboardText(), u"bc");
    pressKey('X', {VK_CONTROL});
    EXPECT_EQ(text(), u"adef");
    pressKey(VK_END);
    pressKey('V', {VK_CONTROL});
    EXPECT_EQ(text(), u"adefbc");
    pressKey('Z', {VK_CONTROL});
    EXPECT_EQ(text(), u"adef");
    pressKey('Z', {VK_CONTROL});
    EXPECT_EQ(text(), u"abcdef");
    EXPECT_EQ(selection(), Range(1, 3));
    pressKey('Y', {VK_CONTROL});
    EXPECT_EQ(text(), u"adef");
    pressKey('A', {VK_CONTROL});
    EXPECT_EQ(selection(), Range(0, 4));
    codes();
    send(WM_COPY);
    EXPECT_EQ(codes(), Codes{});
    EXPECT_EQ(zb::clipboardText(), u"adef");
    send(WM_CUT);
    EXPECT_EQ(codes(), (Codes{EN_UPDATE, EN_CHANGE}));
    send(WM_PASTE);
    send(WM_PASTE);
    EXPECT_EQ(text(), u"adefadef");
    select(0, 4);
    send(WM_CLEAR);
    EXPECT_EQ(text(), u"adef");
    send(WM_UNDO);
    EXPECT_EQ(text(), u"adefadef");
    send(EM_EMPTYUNDOBUFFER);
    EXPECT_EQ(send(EM_CANUNDO), 0);
    select(0, 1);
    zb::setClipboardText(u"kept");
    select(1, 1);
    send(WM_COPY);
    EXPECT_EQ(zb::clipboardText(), u"kept") << "nothing was selected";
}

TEST_F(Edits, CharactersOfControlKeysWorkAsTheKeys)
{
    make(0, u"ab");
    focus();
    typeText(u"\x01\x03");
    EXPECT_EQ(zb::clipboardText(), u"ab");
    typeText(u"\x18");
    EXPECT_EQ(text(), u"");
    typeText(u"\x16\x16");
    EXPECT_EQ(text(), u"abab");
    typeText(u"\x1A");
    EXPECT_EQ(text(), u"ab");
    typeText(u"\x19");
    EXPECT_EQ(text(), u"abab");
    typeText(u"\x1B\t\r\n");
    EXPECT_EQ(text(), u"abab") << "nothing else of these is text on one line";
}

TEST_F(Edits, AHostsClipboardIsTheOneThatCounts)
{
    std::u16string outside = u"from outside";
    zb::setClipboardHooks({[&outside] { return std::optional(outside); },
                           [&outside](std::u16string_view text) { outside = text; }});
    make(0);
    send(WM_PASTE);
    EXPECT_EQ(text(), u"from outside");
    select(0, 4);
    send(WM_COPY);
    EXPECT_EQ(outside, u"from");
    zb::setClipboardHooks({[] { return std::optional<std::u16string>(); }, {}});
    EXPECT_EQ(zb::clipboardText(), u"from") << "a host without text leaves ours";
}

TEST_F(Edits, PastedLinesBecomeOneWhereThereIsOne)
{
    zb::setClipboardText(u"a\r\nb\nc\rd");
    make(0);
    send(WM_PASTE);
    EXPECT_EQ(text(), u"a b c d");
    DestroyWindow(edit);
    make(ES_MULTILINE);
    send(WM_PASTE);
    EXPECT_EQ(text(), u"a\r\nb\nc\rd");
}

TEST_F(Edits, ReadOnlyTextCanBeCopiedAndNotChanged)
{
    make(ES_READONLY, u"abc");
    focus();
    pressKey('A', {VK_CONTROL});
    pressKey('X', {VK_CONTROL});
    EXPECT_EQ(zb::clipboardText(), u"abc");
    typeText(u"x");
    pressKey(VK_BACK);
    pressKey(VK_DELETE);
    pressKey('V', {VK_CONTROL});
    send(WM_CLEAR);
    pressKey('Z', {VK_CONTROL});
    EXPECT_EQ(text(), u"abc");
    EXPECT_EQ(codes(), Codes{});
    send(EM_SETREADONLY, FALSE);
    EXPECT_EQ(GetWindowLongW(edit, GWL_STYLE) & static_cast<LONG_PTR>(ES_READONLY), 0);
    typeText(u"x");
    EXPECT_EQ(text(), u"x");
}

TEST_F(Edits, StylesThatChangeWhatIsTyped)
{
    make(ES_NUMBER);
    focus();
    typeText(u"1a-2");
    EXPECT_EQ(text(), u"12");
    zb::setClipboardText(u"3,4");
    send(WM_PASTE);
    EXPECT_EQ(text(), u"1234");
    DestroyWindow(edit);
    make(ES_UPPERCASE);
    focus();
    typeText(u"a\u00E4");
    EXPECT_EQ(text(), u"A\u00C4");
    DestroyWindow(edit);
    make(ES_LOWERCASE);
    focus();
    typeText(u"AB");
    EXPECT_EQ(text(), u"ab");
}

TEST_F(Edits, LinesByMessages)
{
    makeLines(u"ab\r\ncdef\r\n\r\ng", 0, 20);
    EXPECT_EQ(send(EM_GETLINECOUNT), 4);
    const LRESULT starts[] = {0, 4, 10, 12, -1};
    for (WPARAM line = 0; line < 5; ++line)
    {
        EXPECT_EQ(send(EM_LINEINDEX, line), starts[line]);
    }
    EXPECT_EQ(send(EM_LINELENGTH, 0), 2);
    EXPECT_EQ(send(EM_LINELENGTH, 5), 4);
    EXPECT_EQ(send(EM_LINELENGTH, 10), 0);
    EXPECT_EQ(send(EM_LINELENGTH, 99), 0);
    select(5, 6);
    EXPECT_EQ(send(EM_LINELENGTH, static_cast<WPARAM>(-1)), 3) << "of \"cdef\" without \"d\"";
    EXPECT_EQ(send(EM_LINEFROMCHAR, 3), 0);
    EXPECT_EQ(send(EM_LINEFROMCHAR, 4), 1);
    EXPECT_EQ(send(EM_LINEFROMCHAR, 999), 3);
    EXPECT_EQ(send(EM_LINEFROMCHAR, static_cast<WPARAM>(-1)), 1);
    WCHAR line[8] = {3, u'#', u'#', u'#', u'#'};
    EXPECT_EQ(send(EM_GETLINE, 1, reinterpret_cast<LPARAM>(line)), 3);
    EXPECT_EQ(std::u16string(line, 4), u"cde#") << "no zero when it is full";
    line[0] = 8;
    EXPECT_EQ(send(EM_GETLINE, 1, reinterpret_cast<LPARAM>(line)), 4);
    EXPECT_EQ(std::u16string(line), u"cdef");
    EXPECT_EQ(send(EM_GETLINE, 4, reinterpret_cast<LPARAM>(line)), 0);
}

TEST_F(Edits, PlacesOfCharacters)
{
    makeLines(u"abc\r\nW", 0, 20);
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(margin, 1));
    EXPECT_EQ(send(EM_POSFROMCHAR, 2), MAKELONG(margin + 10, 1));
    EXPECT_EQ(send(EM_POSFROMCHAR, 5), MAKELONG(margin, 11));
    EXPECT_EQ(send(EM_POSFROMCHAR, 6), MAKELONG(margin + 10, 11)) << "behind the last character";
    EXPECT_EQ(send(EM_POSFROMCHAR, 7), -1);
    EXPECT_EQ(send(EM_CHARFROMPOS, 0, MAKELONG(margin + 7, 5)), MAKELONG(1, 0));
    EXPECT_EQ(send(EM_CHARFROMPOS, 0, MAKELONG(margin + 8, 5)), MAKELONG(2, 0)) << "the nearer edge";
    EXPECT_EQ(send(EM_CHARFROMPOS, 0, MAKELONG(90, 15)), MAKELONG(6, 1));
    EXPECT_EQ(send(EM_CHARFROMPOS, 0, MAKELONG(90, 35)), MAKELONG(6, 1)) << "below the text its last line";
    RECT box{};
    send(EM_GETRECT, 0, reinterpret_cast<LPARAM>(&box));
    EXPECT_EQ(box.left, margin);
    EXPECT_EQ(box.top, 1);
    EXPECT_EQ(box.right, 103);
    EXPECT_EQ(box.bottom, 41);
}

TEST_F(Edits, MarginsAndAlignment)
{
    make(0, u"ab", 100, 20);
    EXPECT_EQ(send(EM_GETMARGINS), MAKELONG(3, 3));
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(3, 5)) << "one line stands in the middle";
    send(EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELONG(7, 9));
    EXPECT_EQ(send(EM_GETMARGINS), MAKELONG(7, 9));
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(7, 5));
    send(EM_SETMARGINS, EC_LEFTMARGIN, MAKELONG(0xFFFF, 0));
    EXPECT_EQ(send(EM_GETMARGINS), MAKELONG(3, 9));
    DestroyWindow(edit);
    make(ES_RIGHT, u"ab", 100, 20);
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(87, 5));
    DestroyWindow(edit);
    make(ES_CENTER, u"ab", 100, 20);
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(45, 5));
}

TEST_F(Edits, LongLinesScrollWithTheCaret)
{
    make(0, u"", 56, 20); // ten characters
    focus();
    typeText(u"abcdefghijklmnop");
    const auto end = static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(send(EM_POSFROMCHAR, 16))));
    EXPECT_GT(end, 30);
    EXPECT_LE(end, 53) << "the caret is seen";
    EXPECT_GT(send(EM_GETFIRSTVISIBLELINE), 0);
    pressKey(VK_HOME);
    EXPECT_EQ(send(EM_POSFROMCHAR, 0), MAKELONG(3, 5));
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 0);
}

TEST_F(Edits, ManyLinesScroll)
{
    makeLines(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9", 0, 10, 4);
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 0);
    EXPECT_EQ(send(EM_SCROLL, SB_LINEDOWN), MAKELONG(1, 1));
    EXPECT_EQ(codes(), Codes{EN_VSCROLL});
    EXPECT_EQ(send(EM_SCROLL, SB_PAGEDOWN), MAKELONG(4, 1));
    EXPECT_EQ(send(EM_SCROLL, SB_PAGEDOWN), MAKELONG(1, 1)) << "the last line is the lowest";
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 6);
    EXPECT_EQ(send(EM_SCROLL, SB_PAGEUP), MAKELONG(static_cast<WORD>(-4), 1));
    EXPECT_EQ(send(EM_SCROLL, SB_LINEUP), MAKELONG(static_cast<WORD>(-1), 1));
    EXPECT_EQ(send(EM_SCROLL, SB_THUMBTRACK), 0);
    EXPECT_EQ(send(EM_LINESCROLL, 0, 3), 1);
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 4);
    send(EM_SCROLLCARET);
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 0);
    pressKey(VK_END, {VK_CONTROL});
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 6);
    POINT point{20, 20};
    ClientToScreen(edit, &point);
    zb::penMove(point.x, point.y);
    zb::turnWheel(1);
    settle();
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 3);
}

TEST_F(Edits, TheScrollBarFollowsTheText)
{
    makeLines(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9", WS_VSCROLL, 10, 4);
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(GetScrollInfo(edit, SB_VERT, &info));
    EXPECT_EQ(info.nMax, 9);
    EXPECT_EQ(info.nPage, 4U);
    EXPECT_EQ(info.nPos, 0);
    pressKey(VK_END, {VK_CONTROL});
    GetScrollInfo(edit, SB_VERT, &info);
    EXPECT_EQ(info.nPos, 6);
    send(WM_VSCROLL, SB_TOP);
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 0);
    send(WM_VSCROLL, MAKELONG(SB_THUMBPOSITION, 2));
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 2);
    SetWindowTextW(edit, u"short");
    EXPECT_NE(GetWindowLongW(edit, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL), 0)
        << "the width of lines doesn't depend on their number";
}

TEST_F(Edits, ThePenPlacesTheCaretAndSelects)
{
    make(0, u"abc defgh", 100, 20);
    pen(zb::penDown, margin + 11, 10);
    EXPECT_EQ(GetFocus(), edit);
    EXPECT_EQ(selection(), Range(2, 2));
    pen(zb::penMove, margin + 26, 10);
    EXPECT_EQ(selection(), Range(2, 5));
    pen(zb::penMove, margin + 1, 10);
    EXPECT_EQ(selection(), Range(0, 2));
    pen(zb::penUp, margin + 1, 10);
    EXPECT_EQ(GetCapture(), nullptr);
    pen(zb::penMove, margin + 40, 10);
    EXPECT_EQ(selection(), Range(0, 2)) << "the pen is up";
}

TEST_F(Edits, ADoubleTapSelectsAWord)
{
    make(0, u"abc defgh", 100, 20);
    pen(zb::penDown, margin + 30, 10);
    pen(zb::penUp, margin + 30, 10);
    pen(zb::penDown, margin + 30, 10);
    EXPECT_EQ(selection(), Range(4, 9));
    pen(zb::penUp, margin + 30, 10);
    EXPECT_EQ(selection(), Range(4, 9));
}

TEST_F(Edits, APenHeldBelowScrollsOn)
{
    makeLines(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9", 0, 10, 4);
    pen(zb::penDown, margin, 5);
    pen(zb::penMove, margin + 10, 60);
    const LRESULT first = send(EM_GETFIRSTVISIBLELINE);
    EXPECT_GT(first, 0);
    for (int step = 0; step < 100 && send(EM_GETFIRSTVISIBLELINE) < 6; ++step)
    {
        Sleep(20);
        settle();
    }
    EXPECT_EQ(send(EM_GETFIRSTVISIBLELINE), 6);
    EXPECT_EQ(selection(), Range(0, 19));
    pen(zb::penUp, margin + 10, 60);
}

TEST_F(Edits, AHostThatHoldsThePenKeepsIt)
{
    make(0, u"abc", 100, 20);
    SetFocus(edit);
    SetCapture(edit);
    pen(zb::penDown, margin + 1, 10);
    pen(zb::penUp, margin + 1, 10);
    EXPECT_EQ(GetCapture(), edit);
    ReleaseCapture();
}

TEST_F(Edits, WhatAnEditTellsItsDialog)
{
    make(0);
    EXPECT_EQ(send(WM_GETDLGCODE), DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_HASSETSEL);
    DestroyWindow(edit);
    make(ES_MULTILINE | ES_WANTRETURN);
    EXPECT_EQ(send(WM_GETDLGCODE), DLGC_WANTCHARS | DLGC_WANTARROWS);
    MSG message{edit, WM_KEYDOWN, VK_RETURN, 0, 0, {}};
    EXPECT_NE(send(WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&message)) & DLGC_WANTALLKEYS, 0);
    message.wParam = VK_ESCAPE;
    EXPECT_EQ(send(WM_GETDLGCODE, VK_ESCAPE, reinterpret_cast<LPARAM>(&message)) & DLGC_WANTALLKEYS, 0);
    DestroyWindow(edit);
    make(ES_MULTILINE);
    message.wParam = VK_RETURN;
    EXPECT_EQ(send(WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&message)) & DLGC_WANTALLKEYS, 0);
}

TEST_F(Edits, ThePairOfATypedFaceComesInAsOne)
{
    make(0);
    focus();
    typeText(u"\U0001F600");
    EXPECT_EQ(text(), u"\U0001F600");
    EXPECT_EQ(codes(), (Codes{EN_UPDATE, EN_CHANGE}));
    pressKey(VK_BACK);
    EXPECT_EQ(text(), u"");
}

TEST_F(Edits, AParentMayEndItInAnyNotification)
{
    for (const WORD code : {EN_SETFOCUS, EN_UPDATE, EN_CHANGE, EN_MAXTEXT, EN_KILLFOCUS, EN_VSCROLL})
    {
        makeLines(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9");
        SetFocus(parent.window);
        send(EM_LIMITTEXT, 20);
        parent.before = [this, code](UINT message, WPARAM wParam, LPARAM, LRESULT &)
        {
            if (message == WM_COMMAND && HIWORD(wParam) == code)
            {
                DestroyWindow(edit);
            }
            return false;
        };
        SetFocus(edit);
        typeText(u"ab");
        send(EM_SCROLL, SB_LINEDOWN);
        SetFocus(parent.window);
        EXPECT_FALSE(IsWindow(edit)) << code;
        parent.before = nullptr;
    }
}

TEST_F(Edits, AMillionCharactersCanBeEdited)
{
    std::u16string large;
    while (large.size() < 1000000)
    {
        large += u"some words of a long note ";
    }
    makeLines(u"", WS_VSCROLL, 20, 4);
    send(EM_LIMITTEXT, 0);
    SetWindowTextW(edit, large.c_str());
    select(500000, 500000);
    send(EM_SCROLLCARET);
    for (int i = 0; i < 100; ++i)
    {
        typeText(u"x");
    }
    EXPECT_EQ(send(WM_GETTEXTLENGTH), static_cast<LRESULT>(large.size()) + 100);
    const LRESULT lines = send(EM_GETLINECOUNT);
    const std::u16string now = text();
    SetWindowTextW(edit, now.c_str());
    EXPECT_EQ(send(EM_GETLINECOUNT), lines) << "the same lines as laid out anew";
}

TEST_F(Edits, ComingToAnEditByTabSelectsItsText)
{
    zb::test::DialogHost host;
    zb::test::DialogBytes bytes(WS_POPUP | WS_VISIBLE, 0, 0, 100, 60);
    bytes.item(u"EDIT", WS_TABSTOP, 0, 0, 50, 12, 1, u"first").item(u"EDIT", WS_TABSTOP, 0, 20, 50, 12, 2, u"second");
    const HWND dialog = CreateDialogIndirectParamW(nullptr, bytes.data(), nullptr, zb::test::DialogHost::procedure,
                                                   reinterpret_cast<LPARAM>(&host));
    ASSERT_NE(dialog, nullptr);
    zb::keyDown(VK_TAB);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        if (IsDialogMessageW(dialog, &message) == FALSE)
        {
            DispatchMessageW(&message);
        }
    }
    edit = GetDlgItem(dialog, 2);
    EXPECT_EQ(GetFocus(), edit);
    EXPECT_EQ(selection(), Range(0, 6));
    zb::keyUp(VK_TAB);
    DestroyWindow(dialog);
}
