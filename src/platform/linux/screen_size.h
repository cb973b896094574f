// The size of the screen while a device is open.
#pragma once

namespace zb::internal
{
/// From here on currentScreen() tells this size, until the device is closed. The windows are not touched.
void changeScreenSize(int width, int height);
} // namespace zb::internal
