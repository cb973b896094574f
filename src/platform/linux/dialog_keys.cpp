// Keys of a dialog: from control to control, the default button, Escape, mnemonics.
#include "platform/linux/dialog_state.h"
#include "platform/text.h"

#include <algorithm>
#include <vector>

namespace
{
bool hasStyle(HWND control, DWORD style)
{
    return (GetWindowLongW(control, GWL_STYLE) & static_cast<LONG_PTR>(style)) != 0;
}

/// By its own style: the dialog itself may not be shown yet.
bool canTake(HWND control)
{
    return hasStyle(control, WS_VISIBLE) && !hasStyle(control, WS_DISABLED);
}

bool holdsControls(HWND window)
{
    return (GetWindowLongW(window, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_CONTROLPARENT)) != 0;
}

void addControls(HWND dialog, std::vector<HWND> &all)
{
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT))
    {
        if (!holdsControls(control))
        {
            all.push_back(control);
        }
        else if (canTake(control))
        {
            addControls(control, all);
        }
    }
}

/// Those of a child that holds controls itself stand in its place.
std::vector<HWND> controlsOf(HWND dialog)
{
    std::vector<HWND> all;
    addControls(dialog, all);
    return all;
}

/// The control of the dialog that holds the window.
HWND controlWith(HWND dialog, HWND window)
{
    while (window != nullptr && GetParent(window) != dialog && !holdsControls(GetParent(window)))
    {
        window = GetParent(window);
    }
    return window;
}

LRESULT codeOf(HWND control, MSG *message)
{
    return SendMessageW(control, WM_GETDLGCODE, message == nullptr ? 0 : message->wParam,
                        reinterpret_cast<LPARAM>(message));
}

/// Walks from the control to the next of the list that fits, around at the ends; null when none does.
template <typename Fits>
HWND nextOf(const std::vector<HWND> &all, HWND from, bool previous, Fits fits)
{
    if (all.empty())
    {
        return nullptr;
    }
    const auto count = static_cast<std::ptrdiff_t>(all.size());
    const auto found = std::ranges::find(all, from);
    std::ptrdiff_t at = found != all.end() ? found - all.begin() : (previous ? count : -1);
    for (std::ptrdiff_t step = 0; step < count; ++step)
    {
        at = (at + (previous ? -1 : 1) + count) % count;
        if (fits(all[static_cast<std::size_t>(at)]))
        {
            return all[static_cast<std::size_t>(at)];
        }
    }
    return nullptr;
}

/// The controls from the one with WS_GROUP at or before this one to the one before the next with it.
std::vector<HWND> groupOf(HWND dialog, HWND control)
{
    const std::vector<HWND> all = controlsOf(dialog);
    const auto found = std::ranges::find(all, control);
    if (found == all.end())
    {
        return {};
    }
    auto first = found;
    while (first != all.begin() && !hasStyle(*first, WS_GROUP))
    {
        --first;
    }
    const auto last = std::find_if(found + 1, all.end(), [](HWND one) { return hasStyle(one, WS_GROUP); });
    return {first, last};
}

void command(HWND dialog, int id)
{
    const HWND control = GetDlgItem(dialog, id);
    if (control == nullptr || IsWindowEnabled(control) != FALSE)
    {
        SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(control));
    }
}

void press(HWND control)
{
    constexpr UINT click = 0x00F5; // BM_CLICK
    SendMessageW(control, click, 0, 0);
}

/// Enter: the button with the focus, else the default one, else IDOK.
void confirm(HWND dialog, HWND focus)
{
    const LRESULT code = focus == nullptr ? 0 : codeOf(focus, nullptr);
    if ((code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0)
    {
        press(focus);
        return;
    }
    const auto chosen = static_cast<DWORD_PTR>(SendMessageW(dialog, DM_GETDEFID, 0, 0));
    command(dialog, HIWORD(chosen) == DC_HASDEFID ? LOWORD(chosen) : IDOK);
}

/// A radio button that the arrows reach is chosen by that.
void moveInGroup(HWND dialog, HWND focus, bool previous)
{
    const HWND next = GetNextDlgGroupItem(dialog, focus, previous ? TRUE : FALSE);
    if (next == nullptr || next == focus)
    {
        return;
    }
    SetFocus(next);
    if ((codeOf(next, nullptr) & DLGC_RADIOBUTTON) != 0)
    {
        press(next);
    }
}

/// The character behind the first single & of a title; 0 without one.
WCHAR mnemonicOf(HWND control)
{
    WCHAR title[256];
    const int length = GetWindowTextW(control, title, 256);
    for (int i = 0; i + 1 < length; ++i)
    {
        if (title[i] == u'&')
        {
            ++i;
            if (title[i] != u'&')
            {
                return towupper(title[i]);
            }
        }
    }
    return 0;
}

bool takeMnemonic(HWND dialog, WCHAR character)
{
    const WCHAR wanted = towupper(character);
    for (const HWND control : controlsOf(dialog))
    {
        if (!canTake(control) || mnemonicOf(control) != wanted)
        {
            continue;
        }
        const LRESULT code = codeOf(control, nullptr);
        if ((code & DLGC_STATIC) != 0)
        {
            const HWND next = GetNextDlgTabItem(dialog, control, FALSE);
            SetFocus(next);
            return next != nullptr;
        }
        if ((code & DLGC_BUTTON) != 0)
        {
            SetFocus(control);
            press(control);
        }
        else
        {
            SetFocus(control);
        }
        return true;
    }
    return false;
}

/// What is typed next takes the place of the text that one comes to.
void focusAndSelect(HWND control)
{
    constexpr UINT select = 0x00B1; // EM_SETSEL
    SetFocus(control);
    if (control != nullptr && (codeOf(control, nullptr) & DLGC_HASSETSEL) != 0)
    {
        SendMessageW(control, select, 0, -1);
    }
}

bool takeKey(HWND dialog, MSG &message)
{
    const HWND focus = controlWith(dialog, message.hwnd);
    const LRESULT wants = codeOf(message.hwnd, &message);
    if ((wants & DLGC_WANTALLKEYS) != 0)
    {
        return false;
    }
    switch (message.wParam)
    {
    case VK_TAB:
        if ((wants & DLGC_WANTTAB) != 0)
        {
            return false;
        }
        focusAndSelect(GetNextDlgTabItem(dialog, focus, (GetKeyState(VK_SHIFT) & 0x8000) != 0 ? TRUE : FALSE));
        return true;
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        if ((wants & DLGC_WANTARROWS) != 0)
        {
            return false;
        }
        moveInGroup(dialog, focus, message.wParam == VK_LEFT || message.wParam == VK_UP);
        return true;
    case VK_RETURN:
        confirm(dialog, focus);
        return true;
    case VK_ESCAPE:
        command(dialog, IDCANCEL);
        return true;
    default:
        return false;
    }
}

/// Characters of keys that the dialog takes for itself; the others go to the control.
bool takeCharacter(HWND dialog, MSG &message)
{
    const LRESULT wants = codeOf(message.hwnd, &message);
    const auto character = static_cast<WCHAR>(message.wParam);
    if ((wants & DLGC_WANTALLKEYS) != 0)
    {
        return false;
    }
    if (character == u'\t')
    {
        return (wants & DLGC_WANTTAB) == 0;
    }
    if (character == u'\r' || character == 0x1B)
    {
        return true;
    }
    return (wants & DLGC_WANTCHARS) == 0 && character > u' ' && takeMnemonic(dialog, character);
}
} // namespace

HWND GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous)
{
    return nextOf(controlsOf(dialog), controlWith(dialog, control), previous != FALSE,
                  [](HWND one) { return canTake(one) && hasStyle(one, WS_TABSTOP); });
}

HWND GetNextDlgGroupItem(HWND dialog, HWND control, BOOL previous)
{
    const HWND inDialog = controlWith(dialog, control);
    const HWND found = nextOf(groupOf(dialog, inDialog), inDialog, previous != FALSE, canTake);
    return found != nullptr ? found : control;
}

BOOL IsDialogMessageW(HWND dialog, MSG *message)
{
    if (message == nullptr || IsWindow(dialog) == FALSE ||
        (message->hwnd != dialog && IsChild(dialog, message->hwnd) == FALSE))
    {
        return FALSE;
    }
    const bool taken = (message->message == WM_KEYDOWN && takeKey(dialog, *message)) ||
                       (message->message == WM_CHAR && takeCharacter(dialog, *message));
    if (!taken)
    {
        TranslateMessage(message);
        DispatchMessageW(message);
    }
    return TRUE;
}
