// One runner a device.
#pragma once

#include <filesystem>

namespace zb::alarmd
{
/// Holds the file zbalarmd.lock in the device's folder for as long as it lives; the system lets go of it when the
/// process ends, however it does.
class DeviceLock
{
  public:
    /// Waits a moment for a runner that is just ending. Throws std::runtime_error when the file can't be made.
    explicit DeviceLock(const std::filesystem::path &device);
    ~DeviceLock();
    DeviceLock(const DeviceLock &) = delete;
    DeviceLock &operator=(const DeviceLock &) = delete;

    /// False while another process has it.
    bool isHeld() const
    {
        return m_held;
    }

  private:
    int m_file;
    bool m_held = false;
};
} // namespace zb::alarmd
