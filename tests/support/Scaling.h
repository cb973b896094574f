// The engine's scaling for the device that is open: what a process with that screen would work out at its start.
#pragma once

#include "framework/HIDPI.h"
#include "support/TestDevice.h"

namespace zb::test
{
class Scaling
{
  public:
    Scaling()
    {
        forgetScaling();
        HIDPI_InitScaling();
    }
    ~Scaling()
    {
        forgetScaling();
    }
    Scaling(const Scaling &) = delete;
    Scaling &operator=(const Scaling &) = delete;
};

inline DeviceOptions withDensity(int dotsPerInch, DeviceOptions options = {})
{
    options.screen.dotsPerInch = dotsPerInch;
    return options;
}
} // namespace zb::test
