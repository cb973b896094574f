#include "platform/linux/skipped_time.h"

#include "platform/screen.h"

#include <atomic>

namespace
{
std::atomic<zb::internal::Deadline> skipped{0};
} // namespace

zb::internal::Deadline zb::internal::skippedTime()
{
    return skipped.load(std::memory_order_relaxed);
}

void zb::skipTime(DWORD milliseconds)
{
    skipped.fetch_add(static_cast<internal::Deadline>(milliseconds) * 1'000'000, std::memory_order_relaxed);
}
