// What a process has open, by kind: for tests that nothing is left behind.
#pragma once

#include "platform/types.h"

namespace zb::internal
{
struct HandleCount
{
    std::size_t windows = 0;
    std::size_t contexts = 0;
    std::size_t fonts = 0;
    std::size_t bitmaps = 0;
    std::size_t pens = 0;
    std::size_t brushes = 0;
    std::size_t menus = 0;
    std::size_t timers = 0; ///< of the calling thread and its windows
    bool operator==(const HandleCount &) const = default;
};
/// As of now; other threads may be at work.
ZBPLATFORM_API HandleCount countHandles();
} // namespace zb::internal
