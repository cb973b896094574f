// What zb says to the shell; docs/commands.md tells it.
#pragma once

#include "common/exit_code.h"

namespace zb::cli
{
using namespace zb::host;
} // namespace zb::cli
