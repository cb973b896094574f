// Where a virtual operation stands in the table of its class: hosts that were built against it count on that.
#pragma once

#include <cstddef>
#include <cstring>

#if defined(__x86_64__)
namespace zb::test
{
/// Counted from 1 behind the destructor, which takes two places.
template <typename Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    std::ptrdiff_t parts[2];
    static_assert(sizeof parts == sizeof operation);
    std::memcpy(parts, &operation, sizeof parts);
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void *)) - 1;
}
} // namespace zb::test
#endif
