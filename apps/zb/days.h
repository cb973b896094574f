// Days as arguments name them.
#pragma once

#include "common/days.h"

namespace zb::cli
{
using namespace zb::host;
} // namespace zb::cli
