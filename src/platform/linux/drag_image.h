// The picture that is dragged over the screen.
#pragma once

#include "platform/image_list.h"

namespace zb::internal
{
/// A list of one picture of another, which shares it; the caller's. Fails as image_list.h tells.
HIMAGELIST listOfOne(HIMAGELIST list, int index);
/// Draws the dragged picture, where one is shown, on a copy of the screen: whoever brings the screen to somebody's eyes
/// does so last, and never on the screen's own surface. Any thread.
void drawDragged(HDC screenCopy);
/// Whether drawDragged would draw.
bool isDragShown();
} // namespace zb::internal
