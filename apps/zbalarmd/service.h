// The service itself: notifications of one device, until it is told to end.
#pragma once

#include "platform/device.h"
#include "platform/notify.h"
#include "zbalarmd/alarm_runner.h"
#include "zbalarmd/waker.h"

#include <functional>
#include <memory>
#include <optional>

namespace zb::alarmd
{
class Service
{
  public:
    /// `open` opens the device, or gives null when that fails.
    Service(AlarmRunner::Places places, std::function<std::unique_ptr<Device>()> open);

    /// Runs what is due now and returns. Throws std::runtime_error.
    void runOnce();
    /// Returns when a signal or the end of the device's folder ends it; false when the device can't be opened any more.
    bool run();
    /// Sleeps as Waker::wait does.
    using Wait = std::function<Woken(std::optional<LONGLONG> until)>;
    /// The same with another way of sleeping: tests have clocks of their own.
    bool run(const Wait &wait);

  private:
    std::optional<LONGLONG> work(bool quiet);
    std::optional<LONGLONG> workOrRetry(bool quiet);
    bool isAsSeen() const;
    bool reopen();

    AlarmRunner m_runner;
    std::filesystem::path m_folder;
    std::function<std::unique_ptr<Device>()> m_open;
    std::unique_ptr<Device> m_device;
    AlarmState m_seen;
    std::optional<LONGLONG> m_nextReminder;
    bool m_failed = false; ///< the last work, so that it is told once
};
} // namespace zb::alarmd
