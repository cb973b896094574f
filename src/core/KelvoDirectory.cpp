#include "core/KelvoDirectory.h"

#include "core/CRegistry.h"
#include "platform/device.h"
#include "platform/shell.h"
#include "platform/text.h"

#include <array>
#include <mutex>

namespace
{
struct DataFolder
{
    std::mutex mutex;
    std::uint64_t readFor = 0; ///< the opening of a device that it was read for; 0: none
    std::array<WCHAR, MAX_PATH + 1> path{};
};

/// Never destroyed: threads ask until the process is gone.
DataFolder &dataFolder()
{
    static auto *const folder = new DataFolder;
    return *folder;
}

/// A registry's text may be longer than any path; then it names no folder.
bool readFromRegistry(WCHAR *path)
{
    std::array<WCHAR, 401> text{};
    const bool told =
        GetFromRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", text.data()) == 0;
    if (!told || text[0] == 0 || wcslen(text.data()) > MAX_PATH)
    {
        return false;
    }
    wcscpy(path, text.data());
    return true;
}
} // namespace

void InitKelvoDirectory()
{
    DataFolder &folder = dataFolder();
    const std::uint64_t device = zb::deviceGeneration();
    const std::lock_guard guard(folder.mutex);
    if (device == 0 || folder.readFor == device)
    {
        return;
    }
    if (!readFromRegistry(folder.path.data()))
    {
        SHGetSpecialFolderPath(nullptr, folder.path.data(), CSIDL_PERSONAL, FALSE);
    }
    folder.readFor = device;
}

const WCHAR *GetKelvoDirectory()
{
    InitKelvoDirectory();
    return dataFolder().path.data();
}

void zb::forgetKelvoDirectory()
{
    DataFolder &folder = dataFolder();
    const std::lock_guard guard(folder.mutex);
    folder.readFor = 0;
}
