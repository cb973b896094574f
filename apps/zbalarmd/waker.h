// Sleeping until something is to be done: a moment has come, the clock or zone was changed, the store was written to,
// or a signal came. Nothing is polled.
#pragma once

#include "platform/types.h"

#include <filesystem>
#include <optional>

namespace zb::alarmd
{
struct Woken
{
    bool time = false;  ///< the moment has come, or the clock was set
    bool zone = false;  ///< the host's zone may be another
    bool store = false; ///< somebody wrote to the store
    bool again = false; ///< SIGHUP: open everything anew
    bool end = false;   ///< SIGTERM, SIGINT, or the device's folder is gone
};

class Waker
{
  public:
    /// Takes the four signals for itself. Throws std::runtime_error when the system refuses.
    explicit Waker(const std::filesystem::path &device);
    ~Waker();
    Waker(const Waker &) = delete;
    Waker &operator=(const Waker &) = delete;

    /// `until` in UTC ticks; nothing waits for the rest alone. What happened before the call counts.
    Woken wait(std::optional<LONGLONG> until);

  private:
    void arm(std::optional<LONGLONG> until);
    void readChanges(Woken &woken);
    void readSignals(Woken &woken);
    void readTimer(Woken &woken);
    /// True when there was something within that time; -1 waits for it.
    bool sleep(Woken &woken, int milliseconds);

    int m_timer = -1;
    int m_changes = -1;
    int m_signals = -1;
    int m_deviceWatch = -1;
    int m_hostWatch = -1;
};
} // namespace zb::alarmd
