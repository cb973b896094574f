// What making and default handling of windows share with changing their place.
#pragma once

#include "platform/linux/windows_place.h"

namespace zb::internal
{
/// Gives a window that is just being made its place and, on the screen, its turn in the order: the top.
void placeNew(HWND window, WindowObject &object, const Box &place);
/// Sends WM_MOVE and WM_SIZE for what has changed, and returns 0.
LRESULT tellPlaceChanged(HWND window, const WINDOWPOS &changed);
} // namespace zb::internal
