// Making, running and ending dialogs.
#include "platform/dialog_template.h"
#include "platform/linux/device_state.h"
#include "platform/linux/dialog_state.h"
#include "platform/linux/windows_table.h"

#include <algorithm>
#include <limits>

namespace zb::internal
{
namespace
{
constexpr int stateWord = static_cast<int>(3 * sizeof(LONG_PTR));
constexpr const WCHAR *dialogClass = u"#32770";
/// Of a template that is no resource: its writer vouches for it, and none is longer.
constexpr std::size_t longestTemplate = 0xFFFF;
constexpr int systemFontHeight = 13;
constexpr DWORD errorCannotFindClass = 1407;

HFONT fontOf(const DialogTemplate &shape)
{
    LOGFONTW description{};
    const int dotsPerInch = currentScreen().dotsPerInch;
    description.lfHeight = shape.fontPoints != 0 ? -(shape.fontPoints * dotsPerInch + 36) / 72
                                                 : (systemFontHeight * dotsPerInch + 48) / 96;
    description.lfWeight = FW_NORMAL;
    const std::u16string face = shape.fontFace.empty() ? u"Tahoma" : shape.fontFace;
    std::copy_n(face.begin(), std::min<std::size_t>(face.size(), LF_FACESIZE - 1), description.lfFaceName);
    return CreateFontIndirectW(&description);
}

void measureUnits(DialogState &state)
{
    const HDC context = CreateCompatibleDC(nullptr);
    const HGDIOBJ former = SelectObject(context, state.font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    SelectObject(context, former);
    DeleteDC(context);
    state.unitWidth = std::max<int>(metrics.tmAveCharWidth, 1);
    state.unitHeight = std::max<int>(metrics.tmHeight, 1);
}

int scaled(int value, int unit, int parts)
{
    const int half = value < 0 ? -parts / 2 : parts / 2;
    return (value * unit + half) / parts;
}

RECT inPixels(const DialogState &state, const RECT &units)
{
    return {scaled(units.left, state.unitWidth, 4), scaled(units.top, state.unitHeight, 8),
            scaled(units.right, state.unitWidth, 4), scaled(units.bottom, state.unitHeight, 8)};
}

RECT inPixels(const DialogState &state, const DialogPlace &place)
{
    return inPixels(state, RECT{place.x, place.y, place.x + place.width, place.y + place.height});
}

const WCHAR *classOfNumber(WORD number)
{
    switch (number)
    {
    case DIALOG_BUTTON:
        return u"BUTTON";
    case DIALOG_EDIT:
        return u"EDIT";
    case DIALOG_STATIC:
        return u"STATIC";
    case DIALOG_LISTBOX:
        return u"LISTBOX";
    case DIALOG_SCROLLBAR:
        return u"SCROLLBAR";
    case DIALOG_COMBOBOX:
        return u"COMBOBOX";
    default:
        return u"";
    }
}

const WCHAR *classOf(const DialogItem &item)
{
    if (const WORD *number = std::get_if<WORD>(&item.className))
    {
        return classOfNumber(*number);
    }
    const auto *name = std::get_if<std::u16string>(&item.className);
    return name == nullptr ? u"" : name->c_str();
}

/// A number in a title is a resource's: controls take it as "#number".
std::u16string titleOf(const DialogName &title)
{
    if (const WORD *number = std::get_if<WORD>(&title))
    {
        std::u16string text = u"#";
        for (const char digit : std::to_string(*number))
        {
            text += static_cast<WCHAR>(digit);
        }
        return text;
    }
    const auto *text = std::get_if<std::u16string>(&title);
    return text == nullptr ? std::u16string() : *text;
}

bool makeItem(HWND dialog, const DialogState &state, const DialogItem &item, HINSTANCE instance)
{
    const RECT place = inPixels(state, item.place);
    const HWND control =
        CreateWindowExW(item.extendedStyle, classOf(item), titleOf(item.title).c_str(), item.style | WS_CHILD,
                        place.left, place.top, place.right - place.left, place.bottom - place.top, dialog,
                        reinterpret_cast<void *>(static_cast<LONG_PTR>(item.id)), instance, nullptr);
    if (control == nullptr)
    {
        return false;
    }
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(state.font), FALSE);
    const LRESULT code = SendMessageW(control, WM_GETDLGCODE, 0, 0);
    // What controls send while they are made may have ended the dialog.
    DialogState *kept = dialogState(dialog);
    if (kept != nullptr && (code & DLGC_DEFPUSHBUTTON) != 0)
    {
        kept->defaultButton = item.id;
    }
    return kept != nullptr;
}

/// From the template's place to the screen's, by its styles.
RECT placeOnScreen(const DialogTemplate &shape, const DialogState &state, HWND parent)
{
    RECT client = inPixels(state, shape.place);
    RECT place = client;
    AdjustWindowRectEx(&place, shape.style, FALSE, shape.extendedStyle);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    POINT corner{client.left, client.top};
    if ((shape.style & DS_CENTER) != 0)
    {
        corner = {(GetSystemMetrics(SM_CXSCREEN) - width) / 2, (GetSystemMetrics(SM_CYSCREEN) - height) / 2};
    }
    else if ((shape.style & (DS_ABSALIGN | WS_CHILD)) == 0 && parent != nullptr)
    {
        ClientToScreen(parent, &corner);
    }
    return {corner.x, corner.y, corner.x + width, corner.y + height};
}

HWND makeWindow(const DialogTemplate &shape, DialogState &state, HWND parent, HINSTANCE instance)
{
    const RECT place = placeOnScreen(shape, state, parent);
    const auto *named = std::get_if<std::u16string>(&shape.className);
    const auto *title = std::get_if<std::u16string>(&shape.title);
    return CreateWindowExW(shape.extendedStyle, named != nullptr ? named->c_str() : dialogClass,
                           title != nullptr ? title->c_str() : u"", shape.style & ~WS_VISIBLE, place.left, place.top,
                           place.right - place.left, place.bottom - place.top, parent, nullptr, instance, nullptr);
}

/// The dialog as WM_INITDIALOG finds it: made, with its controls, not shown yet.
HWND assemble(const DialogTemplate &shape, HWND parent, DLGPROC procedure, HINSTANCE instance, bool modal)
{
    auto state = std::make_unique<DialogState>();
    state->font = fontOf(shape);
    state->modal = modal;
    measureUnits(*state);
    const HWND dialog = makeWindow(shape, *state, parent, instance);
    if (dialog == nullptr)
    {
        DeleteObject(state->font);
        return nullptr;
    }
    const DialogState measures = *state; // the state itself goes with the dialog, at any message
    SetWindowLongW(dialog, stateWord, reinterpret_cast<LONG_PTR>(state.get()));
    if (dialogState(dialog) != state.get())
    {
        // Its class is none of dialogs: nothing would ever come to the procedure.
        DeleteObject(state->font);
        DestroyWindow(dialog);
        SetLastError(errorCannotFindClass);
        return nullptr;
    }
    state.release();
    SetWindowLongW(dialog, DWL_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
    SendMessageW(dialog, WM_SETFONT, reinterpret_cast<WPARAM>(measures.font), FALSE);
    const bool all = std::ranges::all_of(shape.items, [&](const DialogItem &item)
                                         { return makeItem(dialog, measures, item, instance); });
    if (!all)
    {
        const DWORD error = GetLastError();
        DestroyWindow(dialog);
        SetLastError(error);
        return nullptr;
    }
    return dialog;
}

/// The window of the screen that a modal dialog stands before.
HWND ownerOf(HWND parent)
{
    while (parent != nullptr && (GetWindowLongW(parent, GWL_STYLE) & static_cast<LONG_PTR>(WS_CHILD)) != 0 &&
           GetParent(parent) != nullptr)
    {
        parent = GetParent(parent);
    }
    return parent;
}

bool isRunning(HWND dialog)
{
    const DialogState *state = dialogState(dialog);
    return state != nullptr && !state->ended;
}

void runModal(HWND dialog, const std::function<bool(MSG &)> &takeFirst)
{
    MSG message{};
    while (isRunning(dialog))
    {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
        {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if ((takeFirst == nullptr || !takeFirst(message)) && IsDialogMessageW(dialog, &message) == FALSE)
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

void releaseState(HWND dialog)
{
    const std::unique_ptr<DialogState> state(dialogState(dialog));
    if (state != nullptr)
    {
        SetWindowLongW(dialog, stateWord, 0);
        DeleteObject(state->font);
    }
}

LRESULT dialogDefault(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    DialogState *state = dialogState(dialog);
    switch (message)
    {
    case WM_GETFONT:
        return state == nullptr ? 0 : reinterpret_cast<LRESULT>(state->font);
    case DM_GETDEFID:
        return state == nullptr || state->defaultButton == 0
                   ? 0
                   : static_cast<LRESULT>(MAKELONG(static_cast<WORD>(state->defaultButton), DC_HASDEFID));
    case DM_SETDEFID:
        if (state != nullptr)
        {
            state->defaultButton = static_cast<int>(wParam);
        }
        return TRUE;
    case WM_NEXTDLGCTL:
        if (const HWND next = LOWORD(static_cast<DWORD_PTR>(lParam)) != 0
                                  ? reinterpret_cast<HWND>(wParam)
                                  : GetNextDlgTabItem(dialog, GetFocus(), wParam != 0 ? TRUE : FALSE))
        {
            SetFocus(next);
        }
        return 0;
    case WM_CLOSE:
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        return 0;
    case WM_ERASEBKGND:
    {
        RECT client{};
        GetClientRect(dialog, &client);
        const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(dialog, WM_CTLCOLORDLG, wParam,
                                                                 reinterpret_cast<LPARAM>(dialog)));
        FillRect(reinterpret_cast<HDC>(wParam), &client, brush != nullptr ? brush : GetSysColorBrush(COLOR_WINDOW));
        return 1;
    }
    case WM_NCDESTROY:
        releaseState(dialog);
        return 0;
    default:
        return DefWindowProcW(dialog, message, wParam, lParam);
    }
}

/// These messages answer with the procedure's own result, not with DWL_MSGRESULT.
bool answersDirectly(UINT message)
{
    return message == WM_INITDIALOG || (message >= WM_CTLCOLOREDIT - 1 && message <= WM_CTLCOLORSTATIC);
}
} // namespace

DialogState *dialogState(HWND dialog)
{
    const auto object = peekWindow(dialog);
    LONG_PTR word = 0;
    return object != nullptr && object->type()->description.cbWndExtra >= stateWord + static_cast<int>(sizeof word) &&
                   object->type()->description.lpfnWndProc == DefDlgProcW && object->readExtra(stateWord, word)
               ? reinterpret_cast<DialogState *>(word)
               : nullptr;
}

std::optional<DialogTemplate> dialogTemplateAt(const void *bytes)
{
    const std::size_t known = sizeOfLockedResource(bytes);
    return bytes == nullptr
               ? std::nullopt
               : readDialogTemplate(static_cast<const BYTE *>(bytes), known != 0 ? known : longestTemplate);
}

HWND makeDialog(const DialogTemplate &shape, HINSTANCE instance, HWND parent, DLGPROC procedure, LPARAM parameter,
                bool modal)
{
    registerSystemClasses();
    const HWND dialog = assemble(shape, parent, procedure, instance, modal);
    if (dialog == nullptr)
    {
        return nullptr;
    }
    const HWND first = GetNextDlgTabItem(dialog, nullptr, FALSE);
    const bool wantsFocus =
        SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter) != 0;
    if (IsWindow(dialog) == FALSE)
    {
        return nullptr;
    }
    if (wantsFocus && first != nullptr && IsWindow(first) != FALSE)
    {
        SetFocus(first);
    }
    const DialogState *state = dialogState(dialog);
    if (((shape.style & WS_VISIBLE) != 0 || modal) && state != nullptr && !state->ended)
    {
        ShowWindow(dialog, SW_SHOW);
    }
    return IsWindow(dialog) != FALSE ? dialog : nullptr;
}

LONG_PTR runModalDialog(HWND parent, const std::function<HWND(HWND owner)> &make,
                        const std::function<bool(MSG &)> &takeFirst)
{
    const HWND owner = ownerOf(parent);
    const bool wasEnabled = owner != nullptr && IsWindowEnabled(owner) != FALSE;
    const HWND dialog = make(owner);
    if (dialog == nullptr)
    {
        return -1;
    }
    if (wasEnabled)
    {
        EnableWindow(owner, FALSE);
    }
    runModal(dialog, takeFirst);
    if (wasEnabled)
    {
        // Before the dialog goes, so that its owner can become the active window.
        EnableWindow(owner, TRUE);
    }
    const DialogState *state = dialogState(dialog);
    const LONG_PTR result = state == nullptr ? -1 : state->result;
    if (IsWindow(dialog) != FALSE)
    {
        DestroyWindow(dialog);
    }
    return result;
}

void registerDialogClass()
{
    WNDCLASSW type{};
    type.style = CS_DBLCLKS;
    type.lpfnWndProc = DefDlgProcW;
    type.cbWndExtra = stateWord + static_cast<int>(sizeof(LONG_PTR));
    type.lpszClassName = dialogClass;
    RegisterClassW(&type);
}
} // namespace zb::internal

using namespace zb;
using namespace zb::internal;

LRESULT DefDlgProcW(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongW(dialog, DWL_DLGPROC));
    if (procedure == nullptr)
    {
        return dialogDefault(dialog, message, wParam, lParam);
    }
    SetWindowLongW(dialog, DWL_MSGRESULT, 0);
    const LONG_PTR handled = procedure(dialog, message, wParam, lParam);
    if (answersDirectly(message))
    {
        return handled;
    }
    if (handled != 0 && message != WM_NCDESTROY)
    {
        return IsWindow(dialog) != FALSE ? GetWindowLongW(dialog, DWL_MSGRESULT) : 0;
    }
    return dialogDefault(dialog, message, wParam, lParam);
}

namespace
{
HWND makeOf(HINSTANCE instance, const void *bytes, HWND parent, DLGPROC procedure, LPARAM parameter, bool modal)
{
    const std::optional<DialogTemplate> shape = dialogTemplateAt(bytes);
    if (!shape.has_value() || procedure == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return makeDialog(*shape, instance, parent, procedure, parameter, modal);
}
} // namespace

HWND CreateDialogIndirectParamW(HINSTANCE instance, const void *bytes, HWND parent, DLGPROC procedure, LPARAM parameter)
{
    return makeOf(instance, bytes, parent, procedure, parameter, false);
}

LONG_PTR DialogBoxIndirectParamW(HINSTANCE instance, const void *bytes, HWND parent, DLGPROC procedure,
                                 LPARAM parameter)
{
    return runModalDialog(parent,
                          [&](HWND owner) { return makeOf(instance, bytes, owner, procedure, parameter, true); });
}

BOOL EndDialog(HWND dialog, LONG_PTR result)
{
    DialogState *state = dialogState(dialog);
    if (state == nullptr)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    state->ended = true;
    state->result = result;
    if (!state->modal)
    {
        ShowWindow(dialog, SW_HIDE);
    }
    PostMessageW(dialog, WM_NULL, 0, 0); // its loop looks
    return TRUE;
}

BOOL MapDialogRect(HWND dialog, RECT *rectangle)
{
    const DialogState *state = dialogState(dialog);
    if (state == nullptr || rectangle == nullptr)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    *rectangle = inPixels(*state, *rectangle);
    return TRUE;
}

LONG GetDialogBaseUnits()
{
    DialogState state;
    state.font = fontOf({});
    measureUnits(state);
    DeleteObject(state.font);
    return static_cast<LONG>(MAKELONG(static_cast<WORD>(state.unitWidth), static_cast<WORD>(state.unitHeight)));
}
