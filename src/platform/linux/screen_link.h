// What the platform tells the desktop's window of the screen. All of it does nothing, and costs next to nothing, while
// there is no such window.
#pragma once

#include "platform/linux/surface.h"

namespace zb::internal
{
/// Somebody has finished drawing inside the region of a surface; only the screen's own counts. On the drawing thread.
void screenDrawn(const Surface &surface, const Region &region);
/// What lies over the screen (a picture that is dragged) has changed.
void screenOverlaid();
/// The screen has another size.
void screenResized(int width, int height);
/// Another window has the focus.
void focusMoved();
} // namespace zb::internal
