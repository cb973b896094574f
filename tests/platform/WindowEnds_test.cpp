// Windows, dialogs and menus that are ended from inside: by a dialog's procedure, a timer, a notification, a menu.
#include "platform/controls.h"
#include "platform/menu.h"
#include "support/DialogBytes.h"
#include "support/LoopScript.h"
#include "support/OpenHandles.h"
#include "support/ScreenOptions.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;
using zb::DIALOG_BUTTON;
using zb::DIALOG_EDIT;
using zb::DIALOG_STATIC;
using zb::internal::countHandles;
using zb::internal::HandleCount;

constexpr COLORREF white = RGB(255, 255, 255);

class WindowEnds : public ::testing::Test
{
  protected:
    TestDevice device{zb::test::withScreen(240, 320)};
};

/// A dialog that ends at one of its messages, whichever way it comes.
struct Fatal
{
    UINT message = 0;
    int left = 1; ///< at which of them
    bool ended = false;

    static LONG_PTR procedure(HWND dialog, UINT message, WPARAM, LPARAM)
    {
        Fatal &self = *current();
        if (message == self.message && !self.ended && --self.left == 0)
        {
            self.ended = true;
            DestroyWindow(dialog);
        }
        return message == WM_INITDIALOG ? 1 : 0;
    }
    static Fatal *&current()
    {
        static Fatal *fatal = nullptr;
        return fatal;
    }
};

DialogBytes someDialog()
{
    DialogBytes bytes(WS_POPUP | WS_VISIBLE | WS_CAPTION, 5, 5, 100, 60, u"Title");
    bytes.item(DIALOG_STATIC, 0, 0, 0, 40, 12, 10, u"&Label")
        .item(DIALOG_EDIT, WS_TABSTOP, 0, 14, 40, 12, 11, u"Text")
        .item(DIALOG_BUTTON, BS_DEFPUSHBUTTON | WS_TABSTOP, 0, 28, 40, 12, 12, u"&Push");
    return bytes;
}

/// What a user and a program can do to a dialog; it may be gone after each step.
void use(HWND dialog)
{
    const auto turn = [dialog]
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            if (IsDialogMessageW(dialog, &message) == FALSE)
            {
                DispatchMessageW(&message);
            }
        }
    };
    if (dialog == nullptr)
    {
        return; // a timer of none would be the thread's
    }
    turn();
    for (const int key : {VK_RETURN, VK_TAB, VK_DOWN, VK_ESCAPE})
    {
        zb::keyDown(key);
        zb::keyUp(key);
        turn();
    }
    SetTimer(dialog, 1, 1, nullptr);
    Sleep(2);
    turn();
    SetDlgItemTextW(dialog, 11, u"other");
    SendMessageW(dialog, WM_NOTIFY, 0, 0);
    SendMessageW(dialog, WM_NEXTDLGCTL, 0, 0);
    SetWindowTextW(dialog, u"other");
    MoveWindow(dialog, 20, 20, 150, 100, TRUE);
    EnableWindow(dialog, FALSE);
    EnableWindow(dialog, TRUE);
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    turn();
    DestroyWindow(dialog);
}

/// The first dialog of a process makes what all of them share.
void makeFirst(const DialogBytes &bytes)
{
    Fatal none{0, 0};
    Fatal::current() = &none;
    use(CreateDialogIndirectParamW(nullptr, bytes.data(), nullptr, Fatal::procedure, 0));
    settle();
}

constexpr UINT dialogMessages[] = {
    WM_SETFONT, WM_INITDIALOG, WM_WINDOWPOSCHANGED, WM_MOVE,         WM_SIZE,           WM_SHOWWINDOW, WM_ACTIVATE,
    WM_NCPAINT, WM_ERASEBKGND, WM_CTLCOLORDLG,      WM_CTLCOLOREDIT, WM_CTLCOLORSTATIC, WM_PAINT,      WM_COMMAND,
    WM_TIMER,   WM_NOTIFY,     WM_NEXTDLGCTL,       DM_GETDEFID,     WM_SETTEXT,        WM_ENABLE,     WM_CLOSE,
    WM_DESTROY, WM_NCDESTROY};
} // namespace

TEST_F(WindowEnds, ADialogMayEndInAnyMessageOfItsProcedure)
{
    const DialogBytes bytes = someDialog();
    ScreenWindow owner(white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
    makeFirst(bytes);
    const HandleCount before = countHandles();
    for (const UINT message : dialogMessages)
    {
        for (int time = 1; time <= 3; ++time)
        {
            Fatal fatal{message, time};
            Fatal::current() = &fatal;
            const HWND dialog = CreateDialogIndirectParamW(nullptr, bytes.data(), owner.window, Fatal::procedure, 0);
            if (dialog != nullptr)
            {
                EXPECT_TRUE(IsWindow(dialog)) << message;
                use(dialog);
                EXPECT_FALSE(IsWindow(dialog)) << message;
            }
            EXPECT_TRUE(fatal.ended || time > 1) << message << " never came";
            settle();
            EXPECT_EQ(countHandles(), before) << message;
        }
    }
}

TEST_F(WindowEnds, AModalDialogThatEndsInItsProcedureFreesItsOwner)
{
    const DialogBytes bytes = someDialog();
    ScreenWindow owner(white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
    makeFirst(bytes);
    const HandleCount before = countHandles();
    for (const UINT message : dialogMessages)
    {
        Fatal fatal{message};
        Fatal::current() = &fatal;
        {
            const LoopScript script({[&] { use(GetForegroundWindow()); }});
            EXPECT_EQ(DialogBoxIndirectParamW(nullptr, bytes.data(), owner.window, Fatal::procedure, 0), -1) << message;
        }
        EXPECT_TRUE(fatal.ended) << message;
        EXPECT_TRUE(IsWindowEnabled(owner.window)) << message;
        settle();
        EXPECT_EQ(countHandles(), before) << message;
    }
}

TEST_F(WindowEnds, AModalDialogGoesWithItsOwner)
{
    const DialogBytes bytes = someDialog();
    ScreenWindow owner(white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
    Fatal fatal;
    Fatal::current() = &fatal;
    const LoopScript script({[&] { DestroyWindow(owner.window); }});
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, bytes.data(), owner.window, Fatal::procedure, 0), -1);
    EXPECT_TRUE(script.isDone());
}

TEST_F(WindowEnds, ADialogOfAClassThatIsNoneOfDialogsIsRefused)
{
    ScreenWindow owner(white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
    const HandleCount before = countHandles();
    // Title and class of a template follow its places: no menu, the class "ScreenWindow", no title.
    std::vector<WORD> words{0, 0x8000, 0, 0, 0, 0, 0, 50, 50, 0};
    for (const WCHAR ch : std::u16string_view(u"STATIC"))
    {
        words.push_back(ch);
    }
    words.insert(words.end(), {0, 0});
    SetLastError(0);
    EXPECT_EQ(CreateDialogIndirectParamW(nullptr, words.data(), nullptr, Fatal::procedure, 0), nullptr);
    EXPECT_EQ(GetLastError(), 1407U);
    EXPECT_EQ(countHandles(), before);
}

TEST_F(WindowEnds, AMenusOwnerMayEndInAnyMessageOfTheMenu)
{
    for (const UINT message : {WM_ENTERMENULOOP, WM_INITMENUPOPUP, WM_EXITMENULOOP, WM_COMMAND, WM_TIMER, WM_PAINT})
    {
        for (const bool alsoMenu : {false, true})
        {
            const HandleCount before = countHandles();
            {
                const HMENU menu = CreatePopupMenu();
                const HMENU more = CreatePopupMenu();
                AppendMenuW(more, MF_STRING, 21, u"First");
                AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(more), u"&More");
                AppendMenuW(menu, MF_STRING, 13, u"Close");
                ScreenWindow owner(white, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
                settle();
                owner.clear();
                // The second pop-up, so that one is open already.
                int left = message == WM_INITMENUPOPUP ? 2 : 1;
                owner.before = [&](UINT told, WPARAM, LPARAM, LRESULT &)
                {
                    if (told == message && --left == 0)
                    {
                        if (alsoMenu)
                        {
                            DestroyMenu(menu);
                        }
                        DestroyWindow(owner.window);
                    }
                    return false;
                };
                SetTimer(owner.window, 1, 60, nullptr);
                LoopScript script({key(VK_DOWN), key(VK_RETURN), key(VK_RETURN), [] {}});
                TrackPopupMenuEx(menu, 0, 10, 10, owner.window, nullptr);
                InvalidateRect(owner.window, nullptr, TRUE);
                settle();
                Sleep(message == WM_TIMER ? 60 : 0);
                settle();
                EXPECT_FALSE(IsWindow(owner.window)) << message;
                EXPECT_EQ(GetCapture(), nullptr) << message;
                DestroyMenu(menu);
            }
            EXPECT_EQ(countHandles(), before) << message;
        }
    }
}

namespace
{
/// For timers whose procedures know only their window.
std::function<void(HWND, UINT_PTR)> atTick;

void tick(HWND window, UINT, UINT_PTR id, DWORD)
{
    atTick(window, id);
}

void runTimers()
{
    Sleep(5);
    settle();
    Sleep(5);
    settle();
}
} // namespace

TEST_F(WindowEnds, ATimerMayEndItsWindowItselfAndOtherTimers)
{
    const HandleCount before = countHandles();
    ScreenWindow window(white, WS_POPUP, 0, 0, 10, 10);
    int ticks = 0;
    atTick = [&](HWND owner, UINT_PTR)
    {
        ++ticks;
        DestroyWindow(owner);
    };
    SetTimer(window.window, 1, 1, tick);
    SetTimer(window.window, 2, 1, tick);
    runTimers();
    EXPECT_EQ(ticks, 1) << "the other one went with the window";
    EXPECT_FALSE(IsWindow(window.window));

    ScreenWindow second(white, WS_POPUP, 0, 0, 10, 10);
    ticks = 0;
    atTick = [&](HWND owner, UINT_PTR id)
    {
        ++ticks;
        KillTimer(owner, id);
        KillTimer(owner, 3 - id);
        SetTimer(nullptr, 0, 1,
                 [](HWND, UINT, UINT_PTR thread, DWORD)
                 {
                     KillTimer(nullptr, thread);
                     atTick(nullptr, 0);
                 });
        atTick = [&](HWND, UINT_PTR) { ++ticks; };
    };
    SetTimer(second.window, 1, 1, tick);
    SetTimer(second.window, 2, 1, tick);
    runTimers();
    EXPECT_EQ(ticks, 2) << "one of the two, and the thread's";
    DestroyWindow(second.window);
    EXPECT_EQ(countHandles(), before);
    atTick = nullptr;
}

TEST_F(WindowEnds, ANotificationMayEndWhoSentItAndItsParent)
{
    for (const bool alsoParent : {false, true})
    {
        for (const UINT kind : {WM_COMMAND, WM_NOTIFY, WM_DRAWITEM, WM_CTLCOLOREDIT})
        {
            const HandleCount before = countHandles();
            ScreenWindow parent(white, WS_POPUP | WS_VISIBLE, 0, 0, 200, 200);
            ScreenWindow child(white, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, parent.window);
            settle();
            bool wentOn = false;
            parent.before = [&](UINT message, WPARAM, LPARAM, LRESULT &)
            {
                if (message == kind)
                {
                    DestroyWindow(alsoParent ? parent.window : child.window);
                }
                return message == kind;
            };
            child.before = [&](UINT message, WPARAM, LPARAM, LRESULT &)
            {
                if (message == WM_USER)
                {
                    SendMessageW(parent.window, kind, 0, 0);
                    wentOn = true;
                }
                return message == WM_USER;
            };
            SendMessageW(child.window, WM_USER, 0, 0);
            EXPECT_TRUE(wentOn);
            EXPECT_FALSE(IsWindow(child.window));
            EXPECT_EQ(IsWindow(parent.window) == FALSE, alsoParent);
            DestroyWindow(parent.window);
            EXPECT_EQ(countHandles(), before);
        }
    }
}

TEST_F(WindowEnds, AControlMayEndInWhatItTellsItsParent)
{
    struct Case
    {
        const WCHAR *type;
        DWORD style;
        WORD code;
        std::function<void(HWND)> act;
    };
    const Case cases[] = {
        {u"BUTTON", BS_PUSHBUTTON, BN_CLICKED, [](HWND control) { SendMessageW(control, BM_CLICK, 0, 0); }},
        {u"BUTTON", BS_AUTOCHECKBOX, BN_CLICKED, [](HWND control) { SendMessageW(control, BM_CLICK, 0, 0); }},
        {u"BUTTON", BS_PUSHBUTTON, BN_CLICKED,
         [](HWND)
         {
             zb::penDown(20, 20);
             zb::penUp(20, 20);
             settle();
         }},
        {u"EDIT", 0, EN_SETFOCUS, [](HWND control) { SetFocus(control); }},
        {u"EDIT", 0, EN_CHANGE, [](HWND control) { SetWindowTextW(control, u"text"); }},
        {u"EDIT", 0, EN_UPDATE, [](HWND control) { SendMessageW(control, WM_CHAR, u'x', 1); }},
        {u"EDIT", 0, EN_CHANGE, [](HWND control) { SendMessageW(control, WM_CHAR, u'x', 1); }},
        {u"LISTBOX", LBS_NOTIFY, LBN_SELCHANGE,
         [](HWND control)
         {
             SendMessageW(control, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"one"));
             SendMessageW(control, WM_KEYDOWN, VK_DOWN, 1);
         }}};
    for (const Case &one : cases)
    {
        ScreenWindow parent(white, WS_POPUP | WS_VISIBLE, 0, 0, 200, 200);
        const HWND control = CreateWindowExW(0, one.type, u"", WS_CHILD | WS_VISIBLE | one.style, 0, 0, 60, 40,
                                             parent.window, reinterpret_cast<void *>(9), nullptr, nullptr);
        settle();
        parent.before = [&](UINT message, WPARAM wParam, LPARAM, LRESULT &)
        {
            if (message == WM_COMMAND && HIWORD(wParam) == one.code)
            {
                DestroyWindow(control);
            }
            return false;
        };
        one.act(control);
        EXPECT_FALSE(IsWindow(control)) << utf8(one.type) << " " << one.code;
        EXPECT_TRUE(IsWindow(parent.window));
        settle();
    }
}
