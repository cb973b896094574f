// What a dialog knows beyond its window.
#pragma once

#include "platform/dialog.h"

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
/// The class of windows that dialogs are of, and those of the standard controls; made at the first call.
void registerSystemClasses();
} // namespace zb::internal
