// What DefWindowProcW does for the frame of a window.
#pragma once

#include "platform/user.h"

namespace zb::internal
{
/// Draws border, title and scroll bars.
void paintFrame(HWND window);
/// The pen goes down on the frame (WM_NCLBUTTONDOWN): scrolls, moves or closes the window.
void penOnFrame(HWND window, WPARAM part, LPARAM where);
} // namespace zb::internal
