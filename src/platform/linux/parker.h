// Where one thread sleeps: a token in a futex word. unpark() leaves the token, park() waits for it and takes it.
//
// A token left while nobody sleeps is kept for the next park(), so no wake-up is lost; a park() may therefore return
// without cause, and its caller looks at its conditions again. Threads: park() by the owner alone, unpark() by any.
#pragma once

#include "platform/types.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zb::internal
{
/// A moment of the monotonic clock in nanoseconds.
using Deadline = std::int64_t;
inline constexpr Deadline never = INT64_MAX;

inline Deadline monotonicNow()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<Deadline>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

inline Deadline deadlineIn(DWORD milliseconds)
{
    return milliseconds == INFINITE ? never : monotonicNow() + static_cast<Deadline>(milliseconds) * 1'000'000;
}

class Parker
{
  public:
    void unpark()
    {
        if (m_word.exchange(token, std::memory_order_acq_rel) == sleeping)
        {
            futex(FUTEX_WAKE_PRIVATE, 1, nullptr);
        }
    }

    /// Returns with the token taken, at the deadline, or now and then for nothing.
    void park(Deadline deadline)
    {
        std::uint32_t expected = empty;
        if (m_word.compare_exchange_strong(expected, sleeping, std::memory_order_acquire))
        {
            timespec moment{};
            moment.tv_sec = static_cast<time_t>(deadline / 1'000'000'000);
            moment.tv_nsec = static_cast<long>(deadline % 1'000'000'000);
            futex(FUTEX_WAIT_BITSET_PRIVATE, sleeping, deadline == never ? nullptr : &moment);
        }
        m_word.exchange(empty, std::memory_order_acquire);
    }

  private:
    static constexpr std::uint32_t empty = 0;
    static constexpr std::uint32_t token = 1;
    static constexpr std::uint32_t sleeping = 2;

    void futex(int operation, std::uint32_t value, const timespec *moment)
    {
        const int kept = errno;
        syscall(SYS_futex, &m_word, operation, value, moment, nullptr, FUTEX_BITSET_MATCH_ANY);
        errno = kept;
    }

    std::atomic<std::uint32_t> m_word{empty};
};
} // namespace zb::internal
