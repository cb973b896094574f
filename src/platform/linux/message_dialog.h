// Messages as dialogs on the screen.
#pragma once

#include "platform/user.h"

#include <string_view>

namespace zb::internal
{
/// Runs the dialog and gives the button; 0 when it can't be made.
int runMessageDialog(HWND owner, std::u16string_view text, std::u16string_view caption, UINT flags);
} // namespace zb::internal
