// Property sheets: pages made when they are shown, what they are told and how they answer, OK and Cancel, keys, pen.
#include "platform/controls.h"
#include "platform/property_sheet.h"
#include "platform/tab_control.h"
#include "support/DialogBytes.h"
#include "support/LoopScript.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

/// Three pages, "A" to "C", each with two edits (ids 10 and 11). What they hear is written down as "A+" (shown), "A-"
/// (left), "A!" (applied), "A?" (cancelled?), "A0" (reset), "Ai" (made), "Aq" (asked as siblings), "Ac" (a command).
class PropertySheets : public ::testing::Test
{
  protected:
    struct Page
    {
        PropertySheets *test = nullptr;
        std::string name;
        std::map<UINT, LONG_PTR> answers; ///< by code or message; 0 without
        HWND window = nullptr;
        DialogBytes bytes{WS_POPUP | WS_CAPTION | WS_VISIBLE, 0, 0, 100, 60};
    };

    PropertySheets()
    {
        for (int i = 0; i < 3; ++i)
        {
            Page &page = pages[static_cast<std::size_t>(i)];
            page.test = this;
            page.name = std::string(1, static_cast<char>('A' + i));
            page.bytes = DialogBytes(WS_POPUP | WS_CAPTION | WS_VISIBLE, 0, 0, 100, 60, utf16("Page " + page.name));
            page.bytes.item(zb::DIALOG_EDIT, WS_TABSTOP | WS_BORDER, 4, 4, 60, 12, 10)
                .item(zb::DIALOG_EDIT, WS_TABSTOP | WS_BORDER, 4, 20, 60, 12, 11);
        }
    }

    static LONG_PTR procedure(HWND window, UINT message, WPARAM, LPARAM lParam)
    {
        if (message == WM_INITDIALOG)
        {
            auto *page = reinterpret_cast<Page *>(reinterpret_cast<const PROPSHEETPAGEW *>(lParam)->lParam);
            SetWindowLongW(window, DWL_USER, reinterpret_cast<LONG_PTR>(page));
            page->window = window;
            page->test->sheet = GetParent(window);
            page->test->log += page->name + "i ";
            if (page->answers[message] != 0)
            {
                EXPECT_EQ(
                    SendMessageW(page->test->sheet, PSM_SETCURSEL, static_cast<WPARAM>(page->answers[message]), 0),
                    FALSE);
            }
            return 1;
        }
        auto *page = reinterpret_cast<Page *>(GetWindowLongW(window, DWL_USER));
        if (page == nullptr)
        {
            return 0;
        }
        if (message == WM_NOTIFY)
        {
            const auto &told = *reinterpret_cast<const PSHNOTIFY *>(lParam);
            static const std::map<UINT, std::string> marks = {{PSN_SETACTIVE, "+"},
                                                              {PSN_KILLACTIVE, "-"},
                                                              {PSN_APPLY, "!"},
                                                              {PSN_QUERYCANCEL, "?"},
                                                              {PSN_RESET, "0"}};
            EXPECT_EQ(told.hdr.hwndFrom, page->test->sheet);
            page->test->log += page->name + marks.at(told.hdr.code) + " ";
            SetWindowLongW(window, DWL_MSGRESULT, page->answers[told.hdr.code]);
            return 1;
        }
        if (message == PSM_QUERYSIBLINGS)
        {
            page->test->log += page->name + "q ";
            SetWindowLongW(window, DWL_MSGRESULT, page->answers[message]);
            return 1;
        }
        if (message == WM_COMMAND && lParam == 0)
        {
            page->test->log += page->name + "c ";
        }
        return 0;
    }

    /// Runs the sheet with these steps; a sheet that goes on behind them is cancelled.
    LONG_PTR run(std::vector<LoopScript::Step> steps, UINT start = 0)
    {
        std::array<PROPSHEETPAGEW, 3> records{};
        for (std::size_t i = 0; i < 3; ++i)
        {
            records[i].dwSize = sizeof(PROPSHEETPAGEW);
            records[i].dwFlags = PSP_DLGINDIRECT | flags;
            records[i].pResource = pages[i].bytes.data();
            records[i].pfnDlgProc = procedure;
            records[i].lParam = reinterpret_cast<LPARAM>(&pages[i]);
        }
        PROPSHEETHEADERW header{};
        header.dwSize = sizeof header;
        header.dwFlags = PSH_PROPSHEETPAGE;
        header.hwndParent = owner.window;
        header.pszCaption = u"Sheet";
        header.nPages = 3;
        header.nStartPage = start;
        header.ppsp = records.data();
        const LoopScript script(std::move(steps));
        const LONG_PTR result = PropertySheetW(&header);
        EXPECT_TRUE(script.isDone());
        return result;
    }
    /// A step that looks at what has been heard since the last one.
    LoopScript::Step expectHeard(std::string expected)
    {
        return [this, expected] { EXPECT_EQ(std::exchange(log, {}), expected); };
    }
    LoopScript::Step then(std::function<void()> step)
    {
        return step;
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(sheet, message, wParam, lParam);
    }
    HWND current() const
    {
        return reinterpret_cast<HWND>(send(PSM_GETCURRENTPAGEHWND));
    }
    HWND tabs() const
    {
        return reinterpret_cast<HWND>(send(PSM_GETTABCONTROL));
    }

    TestDevice device;
    ScreenWindow owner{RGB(250, 250, 250), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    std::array<Page, 3> pages;
    std::string log;
    HWND sheet = nullptr;
    DWORD flags = 0;
};
} // namespace

TEST_F(PropertySheets, TheNumbersThatHostsSend)
{
    EXPECT_EQ(PSM_QUERYSIBLINGS, 1132U);
    EXPECT_EQ(PSM_SETCURSEL, 1125U);
    EXPECT_EQ(PSM_CHANGED, 1128U);
    EXPECT_EQ(static_cast<int>(PSN_APPLY), -202);
}

TEST_F(PropertySheets, PagesAreMadeWhenTheyAreShownFirst)
{
    EXPECT_EQ(run({expectHeard("Bi B+ "),
                   then(
                       [this]
                       {
                           EXPECT_EQ(current(), pages[1].window);
                           EXPECT_EQ(send(PSM_INDEXTOHWND, 0), 0);
                           EXPECT_EQ(send(PSM_HWNDTOINDEX, reinterpret_cast<WPARAM>(pages[1].window)), 1);
                           EXPECT_FALSE(IsWindowEnabled(owner.window));
                           RECT place{};
                           GetWindowRect(sheet, &place);
                           EXPECT_TRUE(is(place, 0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)));
                           EXPECT_EQ(GetFocus(), GetDlgItem(pages[1].window, 10));
                           EXPECT_EQ(send(PSM_SETCURSEL, 2), TRUE);
                       }),
                   expectHeard("B- Ci C+ "),
                   then(
                       [this]
                       {
                           EXPECT_FALSE(IsWindowVisible(pages[1].window));
                           EXPECT_EQ(SendMessageW(tabs(), TCM_GETCURSEL, 0, 0), 2);
                           SetFocus(GetDlgItem(pages[2].window, 11));
                           send(PSM_SETCURSEL, 1);
                       }),
                   expectHeard("C- B+ "), then([this] { EXPECT_EQ(send(PSM_SETCURSEL, 2), TRUE); }),
                   then([this] { EXPECT_EQ(GetFocus(), GetDlgItem(pages[2].window, 11)) << "where it was"; }),
                   expectHeard("B- C+ "), key(VK_ESCAPE)},
                  1),
              0);
    EXPECT_EQ(log, "C? B0 C0 ");
    EXPECT_TRUE(IsWindowEnabled(owner.window));
    EXPECT_FALSE(IsWindow(sheet));
}

TEST_F(PropertySheets, OkAppliesThePagesThatWereShown)
{
    EXPECT_EQ(run({then([this] { send(PSM_SETCURSEL, 1); }), expectHeard("Ai A+ A- Bi B+ "), key(VK_RETURN)}), 1);
    EXPECT_EQ(log, "B- A! B! ");
    log.clear();
    EXPECT_EQ(run({expectHeard("Ai A+ "), key(VK_F1)}), 1) << "the left half of the menu bar";
    EXPECT_EQ(run({key(VK_F2)}), 0) << "the right one";
    EXPECT_EQ(run({then([this] { send(PSM_PRESSBUTTON, PSBTN_OK); })}), 1);
}

TEST_F(PropertySheets, APageMayRefuse)
{
    pages[0].answers[PSN_KILLACTIVE] = TRUE;
    pages[1].answers[PSN_APPLY] = PSNRET_INVALID;
    EXPECT_EQ(run({then([this] { EXPECT_EQ(send(PSM_SETCURSEL, 1), FALSE); }),
                   expectHeard("Ai A+ A- "),
                   then([this] { SendMessageW(tabs(), TCM_SETCURFOCUS, 1, 0); }),
                   expectHeard("A- "),
                   then([this] { EXPECT_EQ(SendMessageW(tabs(), TCM_GETCURSEL, 0, 0), 0); }),
                   key(VK_RETURN),
                   expectHeard("A- "),
                   then(
                       [this]
                       {
                           pages[0].answers.clear();
                           send(PSM_SETCURSEL, 1);
                           send(PSM_SETCURSEL, 0);
                           log.clear();
                       }),
                   key(VK_RETURN),
                   expectHeard("A- A! B! B+ "),
                   then([this] { EXPECT_EQ(current(), pages[1].window); }),
                   then([this] { pages[1].answers[PSN_APPLY] = PSNRET_INVALID_NOCHANGEPAGE; }),
                   then([this] { send(PSM_SETCURSEL, 0); }),
                   expectHeard("B- A+ "),
                   key(VK_RETURN),
                   expectHeard("A- A! B! A+ "),
                   then([this] { pages[0].answers[PSN_QUERYCANCEL] = TRUE; }),
                   key(VK_ESCAPE),
                   expectHeard("A? "),
                   then([this] { pages[0].answers.clear(); }),
                   key(VK_ESCAPE)}),
              0);
    EXPECT_EQ(log, "A? A0 B0 ");
}

TEST_F(PropertySheets, APageMaySendOn)
{
    pages[1].answers[PSN_SETACTIVE] = -1;
    EXPECT_EQ(run({then([this] { send(PSM_SETCURSEL, 1); }), expectHeard("Ai A+ A- Bi B+ Ci C+ "),
                   then([this] { send(PSM_SETCURSEL, 1); }), expectHeard("C- B+ A+ "), key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, APageThatIsBeingMadeCannotSendOn)
{
    pages[1].answers[WM_INITDIALOG] = 2;
    EXPECT_EQ(run({then([this] { EXPECT_EQ(send(PSM_SETCURSEL, 1), TRUE); }), expectHeard("Ai A+ A- Bi B+ "),
                   key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, MessagesToAllPages)
{
    EXPECT_EQ(run({then([this] { send(PSM_SETCURSEL, 2); }), expectHeard("Ai A+ A- Ci C+ "),
                   then([this] { EXPECT_EQ(send(PSM_QUERYSIBLINGS, 1, 2), 0); }), expectHeard("Aq Cq "),
                   then(
                       [this]
                       {
                           pages[0].answers[PSM_QUERYSIBLINGS] = 7;
                           EXPECT_EQ(send(PSM_QUERYSIBLINGS, 1, 2), 7);
                       }),
                   expectHeard("Aq "), then([this] { EXPECT_EQ(send(PSM_APPLY), TRUE); }), expectHeard("C- A! C! C+ "),
                   then(
                       [this]
                       {
                           SendMessageW(sheet, WM_COMMAND, 4711, 0);
                           send(PSM_SETTITLEW, 0, reinterpret_cast<LPARAM>(u"Other"));
                           WCHAR title[20];
                           GetWindowTextW(sheet, title, 20);
                           EXPECT_EQ(std::u16string(title), u"Other");
                       }),
                   expectHeard("Cc "), key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, PagesComeAndGo)
{
    EXPECT_EQ(run({then(
                       [this]
                       {
                           send(PSM_REMOVEPAGE, 0);
                           EXPECT_EQ(SendMessageW(tabs(), TCM_GETITEMCOUNT, 0, 0), 2);
                           EXPECT_EQ(current(), pages[1].window);
                           PROPSHEETPAGEW record{};
                           record.dwSize = sizeof record;
                           record.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
                           record.pResource = pages[0].bytes.data();
                           record.pszTitle = u"Added";
                           record.pfnDlgProc = procedure;
                           record.lParam = reinterpret_cast<LPARAM>(&pages[0]);
                           const HPROPSHEETPAGE page = CreatePropertySheetPageW(&record);
                           EXPECT_EQ(send(PSM_ADDPAGE, 0, reinterpret_cast<LPARAM>(page)), TRUE);
                           EXPECT_EQ(send(PSM_SETCURSEL, 0, reinterpret_cast<LPARAM>(page)), TRUE);
                           EXPECT_EQ(SendMessageW(tabs(), TCM_GETCURSEL, 0, 0), 2);
                           EXPECT_FALSE(DestroyPropertySheetPage(page)) << "the sheet's now";
                       }),
                   key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, KeysGoThroughPageAndTabs)
{
    const auto hasFocus = [this](std::size_t page, int id) {
        return then([this, page, id]
                    { EXPECT_EQ(GetFocus(), GetDlgItem(pages[page].window, id)) << page << ", " << id; });
    };
    EXPECT_EQ(run({hasFocus(0, 10), key(VK_TAB), hasFocus(0, 11), key(VK_TAB),
                   then([this] { EXPECT_EQ(GetFocus(), tabs()); }), key(VK_RIGHT), expectHeard("Ai A+ A- Bi B+ "),
                   then([this] { EXPECT_EQ(GetFocus(), tabs()) << "goes on there"; }), key(VK_TAB), hasFocus(1, 10),
                   [] { zb::keyDown(VK_CONTROL); }, key(VK_TAB), hasFocus(2, 10), key(VK_NEXT), hasFocus(0, 10),
                   key(VK_PRIOR), hasFocus(2, 10), [] { zb::keyUp(VK_CONTROL); }, key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, ATapOnATabGoesThere)
{
    EXPECT_EQ(run({then(
                       [this]
                       {
                           RECT box{};
                           SendMessageW(tabs(), TCM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&box));
                           POINT point{box.left + 5, box.top + 5};
                           ClientToScreen(tabs(), &point);
                           RECT whole{};
                           GetWindowRect(sheet, &whole);
                           EXPECT_EQ(point.y + 19, whole.bottom - GetSystemMetrics(SM_CYMENU) - 1) << "at the bottom";
                           tap(point.x, point.y)();
                       }),
                   expectHeard("Ai A+ A- Bi B+ "), key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, APageThatIsTooHighScrolls)
{
    pages[0].bytes.item(zb::DIALOG_EDIT, WS_TABSTOP, 4, 400, 60, 12, 12);
    EXPECT_EQ(run({then(
                       [this]
                       {
                           SCROLLINFO info{sizeof(SCROLLINFO), SIF_ALL, 0, 0, 0, 0, 0};
                           GetScrollInfo(pages[0].window, SB_VERT, &info);
                           EXPECT_EQ(info.nPos, 0);
                           EXPECT_GT(info.nMax, static_cast<int>(info.nPage));
                       }),
                   key(VK_TAB), key(VK_TAB), [] {},
                   then(
                       [this]
                       {
                           RECT page{};
                           RECT control{};
                           GetWindowRect(pages[0].window, &page);
                           GetWindowRect(GetDlgItem(pages[0].window, 12), &control);
                           EXPECT_LE(control.bottom, page.bottom) << "keys bring it into view";
                       }),
                   key(VK_TAB), key(VK_TAB), [] {},
                   then(
                       [this]
                       {
                           RECT page{};
                           RECT control{};
                           GetWindowRect(pages[0].window, &page);
                           GetWindowRect(GetDlgItem(pages[0].window, 10), &control);
                           EXPECT_GE(control.top, page.top);
                           EXPECT_EQ(GetWindowLongW(pages[0].window, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL),
                                     static_cast<LONG_PTR>(WS_VSCROLL));
                           send(PSM_SETCURSEL, 1);
                           EXPECT_EQ(GetWindowLongW(pages[1].window, GWL_STYLE) & static_cast<LONG_PTR>(WS_VSCROLL), 0);
                       }),
                   key(VK_ESCAPE)}),
              0);
}

TEST_F(PropertySheets, WhatCannotBeMade)
{
    PROPSHEETHEADERW header{};
    EXPECT_EQ(PropertySheetW(nullptr), -1);
    EXPECT_EQ(PropertySheetW(&header), -1) << "no size";
    header.dwSize = sizeof header;
    EXPECT_EQ(PropertySheetW(&header), -1) << "no pages";
    EXPECT_EQ(CreatePropertySheetPageW(nullptr), nullptr);
    EXPECT_FALSE(DestroyPropertySheetPage(reinterpret_cast<HPROPSHEETPAGE>(static_cast<LONG_PTR>(12))));
    PROPSHEETPAGEW record{};
    record.dwSize = sizeof record;
    record.pszTemplate = reinterpret_cast<const WCHAR *>(static_cast<LONG_PTR>(64999));
    record.pfnDlgProc = procedure;
    header.dwFlags = PSH_PROPSHEETPAGE;
    header.nPages = 1;
    header.ppsp = &record;
    header.hwndParent = owner.window;
    EXPECT_EQ(PropertySheetW(&header), -1) << "no such template";
    EXPECT_TRUE(IsWindowEnabled(owner.window));
}
