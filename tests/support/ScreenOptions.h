// Devices for tests of what is on the screen.
#pragma once

#include "platform/device.h"

namespace zb::test
{
/// For a TestDevice: a screen of so many pixels, without a window.
inline DeviceOptions withScreen(int width, int height, int dotsPerInch = 96)
{
    DeviceOptions options;
    options.screen = {width, height, dotsPerInch};
    return options;
}
} // namespace zb::test
