// Opening the device that a host works on.
#pragma once

#include "platform/device.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zb::host
{
enum class Missing
{
    Make,  ///< a folder without a device becomes one
    Refuse ///< it is an error
};

/// Null when it does not open; the reason is printed, and the program ends with exitDevice.
std::unique_ptr<Device> openDevice(const std::filesystem::path &root, Missing missing,
                                   const ScreenOptions &screen = {}, const FontOptions &fonts = {});
} // namespace zb::host
