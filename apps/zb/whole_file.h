// Files of the host that are there whole or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zb::cli
{
/// Writes beside the file, syncs, and puts it in its place; whatever fails, a file of that name stays as it was. Returns
/// why it failed, empty when all went well.
std::string writeWhole(const std::filesystem::path &file, std::string_view bytes);
} // namespace zb::cli
