// The host from its arguments to its end: device, frame, script, message loop.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zb::screens
{
struct HostArguments
{
    std::filesystem::path device; ///< empty: the default
    std::string view;             ///< empty: the one that showed last
    bool headless = false;
    std::filesystem::path shot;   ///< empty: none
    std::filesystem::path script; ///< empty: none; "-" is standard input
    std::vector<std::filesystem::path> fonts;
    bool sized = false; ///< width and height were asked for; else a window takes the size that it had last
    int width = 480;
    int height = 640;
    int dotsPerInch = 96;
};

/// The program's exit code; what went wrong is printed.
int runHost(const HostArguments &arguments);
} // namespace zb::screens
