// Dialogs whose places change with the shape of the screen.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// Puts the dialog's controls where a second template of the same items says, with the titles and pictures that it
/// names; what is selected in lists stays. The picture that a control showed before is deleted, whoever made it; the
/// new one belongs to the control and goes with it (STM_OWNED), so nobody else has anything to free. On the dialog's
/// thread. 0 when the template can't be had or is damaged, and then nothing has moved; else 1, or, when two or more of
/// its items have the id 0xFFFF (only the first of which a dialog can find), whether one of those got a text.
ZBTOOLS_API int RelayoutDialog(HINSTANCE hInstance, HWND hDlg, const WCHAR *name);
