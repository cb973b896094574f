// What a dialog knows beyond its window.
#pragma once

#include "platform/dialog.h"
#include "platform/dialog_template.h"

#include <functional>
#include <optional>

namespace zb::internal
{
/// Owned by the dialog's window, in a word behind those of dialog.h; the dialog's own thread alone.
struct DialogState
{
    HFONT font = nullptr;
    int unitWidth = 0;  ///< average character
    int unitHeight = 0; ///< of a line
    int defaultButton = 0;
    bool modal = false;
    bool ended = false;
    LONG_PTR result = 0;
};
/// Null for a window that is no dialog.
DialogState *dialogState(HWND dialog);
/// How many bytes stand at an address that LockResource gave; 0 for any other.
std::size_t sizeOfLockedResource(const void *bytes);
/// Nothing for bytes that are no template.
std::optional<DialogTemplate> dialogTemplateAt(const void *bytes);
/// The dialog, with WM_INITDIALOG behind it; shown when its style says so, or when it is modal. Null as CreateDialog...
HWND makeDialog(const DialogTemplate &shape, HINSTANCE instance, HWND parent, DLGPROC procedure, LPARAM parameter,
                bool modal);
/// Makes a dialog for the window of the screen that the parent lies in, and runs it until EndDialog, with that window
/// disabled. `takeFirst`, when there is one, looks at each message before the dialog does; true: it is dealt with.
LONG_PTR runModalDialog(HWND parent, const std::function<HWND(HWND owner)> &make,
                        const std::function<bool(MSG &)> &takeFirst = nullptr);
/// The class of windows that dialogs are of, and those of the standard controls; made at the first call.
void registerSystemClasses();
} // namespace zb::internal
