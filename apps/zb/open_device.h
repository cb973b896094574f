// Opening the device that a command works on.
#pragma once

#include "common/open_device.h"

namespace zb::cli
{
using namespace zb::host;
} // namespace zb::cli
