// Which windows want to be painted, and contexts for them.
#pragma once

#include "platform/linux/windows_place.h"

namespace zb::internal
{
/// Whether something of a shown window is invalid. Takes treeLock().
bool needsPaint(HWND window);
/// Fills what the context may draw on with the class's brush; false without one.
bool eraseBackground(HWND window, HDC context);
} // namespace zb::internal
