// What benchmarks run on: a device in a temporary folder, and a window that waits for a loader's list.
#pragma once

#include "platform/device.h"
#include "platform/user.h"

#include <filesystem>
#include <memory>

namespace zb::bench
{
/// What all threads of the process have worked so far: the load runs on the loader's, and the host's only waits.
double processSeconds();

/// A device in Berlin, with its words in English unless the options say otherwise; gone with the object.
class DeviceStage
{
  public:
    /// Throws std::runtime_error when there is no temporary folder.
    explicit DeviceStage(DeviceOptions options = {});
    ~DeviceStage();
    DeviceStage(const DeviceStage &) = delete;
    DeviceStage &operator=(const DeviceStage &) = delete;

    /// As a later process finds it.
    void reopen();
    /// The folder that goes with the object, with the device in it.
    const std::filesystem::path &folder() const
    {
        return m_folder;
    }
    std::filesystem::path device() const
    {
        return m_folder / "device";
    }

  private:
    std::filesystem::path m_folder;
    DeviceOptions m_options;
    std::unique_ptr<zb::Device> m_device;
};

/// Options of a device in another zone.
DeviceOptions inZone(const char *zone);

class ListHost
{
  public:
    ListHost();
    ~ListHost();
    ListHost(const ListHost &) = delete;
    ListHost &operator=(const ListHost &) = delete;

    HWND handle() const
    {
        return m_window;
    }
    /// Rows of the list that was waited for.
    LPARAM waitForList();

  private:
    HWND m_window;
};
} // namespace zb::bench
