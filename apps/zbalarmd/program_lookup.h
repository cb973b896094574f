// Where a program of the device lies on the host.
#pragma once

#include <filesystem>
#include <string>

namespace zb::alarmd
{
/// The file to start for a program as the device names it: "ZBNotification.exe" is `zbnotification` in `beside`, else
/// that name in the device's Windows folder, with or without its ending; a name with "\" is a path of the device below
/// `files`. Names are matched without regard to case. Empty when there is no such file, when it may not be run, and
/// when it lies outside of the two folders.
std::filesystem::path findProgram(const std::string &name, const std::filesystem::path &beside,
                                  const std::filesystem::path &files);
} // namespace zb::alarmd
