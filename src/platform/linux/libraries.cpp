// Loading libraries by the device's names.
//
// A module handle is what the host's loader gives; a table of those that are open, with a count for each, keeps stale
// and foreign ones from reaching the loader.
#include "platform/kernel.h"
#include "platform/linux/files_path.h"
#include "platform/linux/thread_state.h"
#include "platform/modules.h"
#include "platform/text.h"

#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>
#include <unordered_map>

namespace zb::internal
{
namespace
{
namespace fs = std::filesystem;

class Modules
{
  public:
    void add(void *module)
    {
        const std::lock_guard guard(m_lock);
        ++m_counts[module];
    }
    bool contains(void *module)
    {
        const std::lock_guard guard(m_lock);
        return m_counts.contains(module);
    }
    bool remove(void *module)
    {
        const std::lock_guard guard(m_lock);
        const auto found = m_counts.find(module);
        if (found == m_counts.end())
        {
            return false;
        }
        if (--found->second == 0)
        {
            m_counts.erase(found);
        }
        return true;
    }

  private:
    std::mutex m_lock;
    std::unordered_map<void *, unsigned> m_counts;
};

Modules &modules()
{
    static auto *instance = new Modules;
    return *instance;
}

bool endsWith(std::u16string_view name, std::u16string_view ending)
{
    return name.size() > ending.size() && sameName(name.substr(name.size() - ending.size()), ending);
}

/// "X.dll" and "X" become libX.so; a name that is a library of this system stays.
std::u16string hostName(std::u16string_view name)
{
    if (endsWith(name, u".so"))
    {
        return std::u16string(name);
    }
    if (endsWith(name, u".dll"))
    {
        name.remove_suffix(4);
    }
    return u"lib" + std::u16string(name) + u".so";
}

fs::path programFolder()
{
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

fs::path ownFolder()
{
    Dl_info info{};
    static const char here = 0;
    return dladdr(&here, &info) != 0 && info.dli_fname != nullptr ? fs::path(info.dli_fname).parent_path() : fs::path();
}

/// The file of that name in a folder of the host, by exact name or else without regard to case; empty when none.
fs::path findIn(const fs::path &folder, const std::u16string &name)
{
    std::error_code error;
    if (folder.empty())
    {
        return {};
    }
    fs::path exact = folder / toUtf8(name);
    if (fs::exists(exact, error))
    {
        return exact;
    }
    fs::path best;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        const fs::path &path = entry->path();
        if (sameName(toUtf16(path.filename().native()), name) && (best.empty() || path < best))
        {
            best = path;
        }
    }
    return best;
}

/// The host's path of a file of the device; empty when there is none.
fs::path findOnDevice(const std::u16string &path)
{
    const auto place = findPlace(path.c_str());
    if (!place.has_value() || !place->isFile())
    {
        return {};
    }
    // The loader tells libraries apart by their paths, so it gets the folder's own and not the open folder's number.
    const int file = place->folder.get();
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    return error ? fs::path() : folder / place->name;
}

void *openLibrary(const fs::path &file)
{
    if (file.empty())
    {
        return nullptr;
    }
    void *module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
    {
        const char *reason = dlerror();
        OutputDebugStringW(toUtf16(reason == nullptr ? "library not loaded" : reason).c_str());
        OutputDebugStringW(u"\r\n");
    }
    return module;
}

void *openByPath(std::u16string_view path)
{
    const std::size_t name = path.find_last_of(u'\\') + 1;
    return openLibrary(findOnDevice(std::u16string(path.substr(0, name)) + hostName(path.substr(name))));
}

void *openByName(std::u16string_view name)
{
    const std::u16string file = hostName(name);
    void *module = openLibrary(findIn(programFolder(), file));
    if (module == nullptr)
    {
        module = openLibrary(findOnDevice(u"\\Windows\\" + file));
    }
    return module != nullptr ? module : openLibrary(findIn(ownFolder(), file));
}

void *open(std::u16string_view name)
{
    if (name.empty() || name.back() == u'\\' || name.find(u'/') != name.npos)
    {
        return nullptr;
    }
    return name.find(u'\\') != name.npos ? openByPath(name) : openByName(name);
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

HMODULE LoadLibraryW(const WCHAR *name)
{
    stopHere();
    void *module = nullptr;
    if (name != nullptr)
    {
        // A library's own initialisation may call the platform, under the loader's lock.
        const Shield shield;
        module = zb::internal::open(name);
    }
    stopHere();
    if (module == nullptr)
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    modules().add(module);
    return static_cast<HMODULE>(module);
}

namespace
{
/// What the host's loader holds under this name already (null: the program), as a handle of ours that stays good.
HMODULE loadedModule(const char *name)
{
    const Shield shield;
    void *module = dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (module != nullptr && modules().contains(module))
    {
        dlclose(module);
    }
    else if (module != nullptr)
    {
        modules().add(module);
    }
    return static_cast<HMODULE>(module);
}
} // namespace

HMODULE GetModuleHandleW(const WCHAR *name)
{
    stopHere();
    const HMODULE module = loadedModule(name == nullptr ? nullptr : zb::toUtf8(hostName(name)).c_str());
    if (module == nullptr)
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
    }
    return module;
}

HMODULE zb::moduleAt(const void *address)
{
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr)
    {
        return nullptr;
    }
    // The program has no name that the loader would know it by.
    const HMODULE module = loadedModule(info.dli_fname);
    return module != nullptr ? module : loadedModule(nullptr);
}

BOOL FreeLibrary(HMODULE module)
{
    stopHere();
    if (!modules().remove(module))
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    const Shield shield;
    return dlclose(module) == 0 ? TRUE : FALSE;
}

void *GetProcAddressW(HMODULE module, const WCHAR *name)
{
    if (!modules().contains(module))
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    void *symbol = name == nullptr ? nullptr : dlsym(module, zb::toUtf8(name).c_str());
    if (symbol == nullptr)
    {
        SetLastError(ERROR_PROC_NOT_FOUND);
    }
    return symbol;
}
