// The folder of a device while it is being opened: what it is, and what opening makes in it.
#pragma once

#include "platform/device.h"

#include <filesystem>
#include <vector>

namespace zb::internal
{
/// The path with links left alone but no "." or ".." in it, whatever the working folder becomes later.
std::filesystem::path absoluteRoot(const std::filesystem::path &root);

/// Looks at the folder at once and throws DeviceError for one that can't become or be a device, with nothing changed.
/// Makes the folder with its parents when it is missing and `create` is set. Unless keep() is called, folders made
/// here that are still empty go again. A store that was begun stays: another process may be at work on it by then.
class DeviceFolder
{
  public:
    DeviceFolder(const std::filesystem::path &root, bool create);
    ~DeviceFolder();
    DeviceFolder(const DeviceFolder &) = delete;
    DeviceFolder &operator=(const DeviceFolder &) = delete;

    /// Makes those folders of the file tree that are missing.
    void completeTree(const std::filesystem::path &files);
    void keep();

  private:
    void inspect(bool create);
    void make();
    void removeEmpty();

    std::filesystem::path m_root;
    std::vector<std::filesystem::path> m_made; ///< parents first
    bool m_kept = false;
};
} // namespace zb::internal
