#include "platform/linux/device_folder.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <strings.h>
#include <system_error>
#include <unistd.h>

namespace zb::internal
{
namespace
{
namespace fs = std::filesystem;

constexpr std::string_view storeName = "store.db";
constexpr std::array<const char *, 4> treeFolders = {"My Documents", "Windows", "Temp", "Storage Card"};

[[noreturn]] void refuse(DeviceFault fault, const std::string &before, const fs::path &root, const std::string &after)
{
    throw DeviceError(fault, before + root.string() + after);
}

[[noreturn]] void refuseSystem(const fs::path &folder, int error)
{
    switch (error)
    {
    case EACCES:
    case EPERM:
    case EROFS:
        refuse(DeviceFault::ReadOnly, "The folder ", folder, " can't be read or written.");
    case ENOSPC:
    case EDQUOT:
        refuse(DeviceFault::DiskFull, "The disk is full: ", folder, " could not be made.");
    case ENOTDIR:
    case EEXIST:
        refuse(DeviceFault::NotADevice, "", folder, " can't be a device: a file stands in its way.");
    default:
        refuse(DeviceFault::Other, "The folder ", folder,
               " could not be opened: " + std::generic_category().message(error) + ".");
    }
}

/// The store and what its library keeps beside it.
bool isStoreFile(const std::string &name)
{
    return name.rfind(storeName, 0) == 0;
}

struct Contents
{
    bool store = false;
    bool others = false;
};

Contents contentsOf(const fs::path &root)
{
    Contents found;
    std::error_code error;
    fs::directory_iterator entries(root, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error))
    {
        const std::string name = entries->path().filename().string();
        found.store = found.store || name == storeName;
        found.others = found.others || !isStoreFile(name);
    }
    if (error)
    {
        refuseSystem(root, error.value());
    }
    return found;
}

bool hasEntry(const fs::path &folder, const char *name)
{
    std::error_code error;
    for (fs::directory_iterator entries(folder, error); !error && entries != fs::directory_iterator();
         entries.increment(error))
    {
        if (strcasecmp(entries->path().filename().c_str(), name) == 0)
        {
            return true;
        }
    }
    return false;
}

void makeFolder(const fs::path &folder)
{
    std::error_code error;
    fs::create_directory(folder, error);
    if (error)
    {
        refuseSystem(folder, error.value());
    }
}
} // namespace

fs::path absoluteRoot(const fs::path &root)
{
    fs::path result = fs::absolute(root).lexically_normal();
    // "folder/" and "folder" are the same device.
    return result.has_filename() ? result : result.parent_path();
}

DeviceFolder::DeviceFolder(const fs::path &root, bool create) : m_root(root)
{
    inspect(create);
    try
    {
        make();
    }
    catch (...)
    {
        removeEmpty();
        throw;
    }
}

DeviceFolder::~DeviceFolder()
{
    if (!m_kept)
    {
        removeEmpty();
    }
}

void DeviceFolder::removeEmpty()
{
    for (auto folder = m_made.rbegin(); folder != m_made.rend(); ++folder)
    {
        rmdir(folder->c_str());
    }
}

void DeviceFolder::inspect(bool create)
{
    std::error_code error;
    const fs::file_status status = fs::status(m_root, error);
    if (status.type() == fs::file_type::not_found)
    {
        if (!create)
        {
            refuse(DeviceFault::NotFound, "There is no device in ", m_root, ".");
        }
        return;
    }
    if (status.type() == fs::file_type::none || status.type() == fs::file_type::unknown)
    {
        refuseSystem(m_root, error.value());
    }
    if (status.type() != fs::file_type::directory)
    {
        refuse(DeviceFault::NotADevice, "", m_root, " is no folder, so it can't be a device.");
    }
    const Contents found = contentsOf(m_root);
    if (!found.store && found.others)
    {
        refuse(DeviceFault::NotADevice, "The folder ", m_root, " holds other things and no device.");
    }
    if (!found.store && !create)
    {
        refuse(DeviceFault::NotFound, "There is no device in ", m_root, ".");
    }
    if (access(m_root.c_str(), R_OK | W_OK | X_OK) != 0)
    {
        refuseSystem(m_root, errno);
    }
}

void DeviceFolder::make()
{
    std::vector<fs::path> missing;
    std::error_code error;
    for (fs::path folder = m_root; !folder.empty() && !fs::exists(folder, error); folder = folder.parent_path())
    {
        missing.push_back(folder);
    }
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder)
    {
        makeFolder(*folder);
        m_made.push_back(*folder);
    }
}

void DeviceFolder::completeTree(const fs::path &files)
{
    makeFolder(files);
    for (const char *name : treeFolders)
    {
        if (!hasEntry(files, name))
        {
            makeFolder(files / name);
        }
    }
}

void DeviceFolder::keep()
{
    m_kept = true;
}
} // namespace zb::internal
