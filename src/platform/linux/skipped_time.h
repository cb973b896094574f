// Time that was let go by without waiting (skipTime): what timers and ticks are ahead of the monotonic clock.
#pragma once

#include "platform/linux/parker.h"

namespace zb::internal
{
Deadline skippedTime();
/// What timers go by.
inline Deadline timerNow()
{
    return monotonicNow() + skippedTime();
}
} // namespace zb::internal
