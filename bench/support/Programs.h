// Programs run as children, for figures from the start of a process to its end.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zb::bench
{
std::filesystem::path ownPath();
/// What all children that ended have worked.
double childSeconds();
/// Runs a program to its end, its output going to `output`. Throws std::runtime_error when it fails.
void run(std::vector<std::string> arguments, const std::filesystem::path &output = "/dev/null");
} // namespace zb::bench
