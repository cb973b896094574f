// Who has pen and keys: the active window, the focus, the capture. One for all threads, as there is one screen.
//
// Threads: any; messages that follow go to the windows' own threads, so no lock of the platform may be held.
#pragma once

#include "platform/user.h"

namespace zb::internal
{
/// Makes a window of the screen the active one, on top, with the focus that it had last; not a hidden, disabled or
/// shy one (WS_EX_NOACTIVATE).
void activate(HWND window);
/// Takes focus, capture and activity from the window and all in it; the next window of the screen becomes active.
void leaveInput(HWND window);
/// The window that lies on the screen itself and holds this one; null for one that is gone.
HWND screenWindowOf(HWND window);
/// What DefWindowProcW does with WM_ACTIVATE: the window takes the focus when it has been made active.
void focusOnActivation(HWND window, WPARAM wParam);
/// The windows that keys and pen go to, of any thread.
HWND focusedWindow();
HWND capturingWindow();
/// As it was fed, which messages may still have to tell.
bool isPenDown();
} // namespace zb::internal
