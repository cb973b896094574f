// Texts of modules: the symbol zbResourceString of a library, asked for a number in the device's language.
#include "platform/resources.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/resource_modules.h"

#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <mutex>
#include <string>

namespace
{
namespace fs = std::filesystem;

constexpr const char *systemModule = "libZBResources.so";

std::atomic<HINSTANCE> applicationModule{nullptr};

/// The folder of the library that this code is in.
fs::path ownFolder()
{
    Dl_info info{};
    static const char here = 0;
    return dladdr(&here, &info) != 0 && info.dli_fname != nullptr ? fs::path(info.dli_fname).parent_path() : fs::path();
}

fs::path programFolder()
{
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

/// Loaded once and kept: texts in place point into it.
void *systemResources()
{
    static void *const module = []
    {
        for (const fs::path &folder : {programFolder(), ownFolder()})
        {
            if (folder.empty())
            {
                continue;
            }
            if (void *found = dlopen((folder / systemModule).c_str(), RTLD_NOW | RTLD_LOCAL))
            {
                return found;
            }
        }
        return static_cast<void *>(nullptr);
    }();
    return module;
}

ZbResourceString textsOf(HINSTANCE instance)
{
    const HINSTANCE module = instance != nullptr ? instance : applicationModule.load();
    if (module == nullptr)
    {
        // Its answer is asked for with every text that screens show, so the symbol is looked up once.
        static const auto own = []
        {
            void *found = systemResources();
            return reinterpret_cast<ZbResourceString>(found == nullptr ? nullptr : dlsym(found, "zbResourceString"));
        }();
        return own;
    }
    return reinterpret_cast<ZbResourceString>(GetProcAddressW(module, u"zbResourceString"));
}

int fail()
{
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
}
} // namespace

ZbResourceBytes zb::internal::resourceBytesOf(HINSTANCE instance)
{
    const HINSTANCE module = instance != nullptr ? instance : applicationModule.load();
    void *found = nullptr;
    if (module != nullptr)
    {
        found = GetProcAddressW(module, u"zbResourceBytes");
    }
    else if (void *own = systemResources())
    {
        found = dlsym(own, "zbResourceBytes");
    }
    if (found == nullptr && (module == nullptr || GetLastError() != ERROR_INVALID_HANDLE))
    {
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
    return reinterpret_cast<ZbResourceBytes>(found);
}

int LoadStringW(HINSTANCE instance, UINT id, WCHAR *buffer, int size)
{
    const ZbResourceString resources = buffer == nullptr || size < 0 ? nullptr : textsOf(instance);
    std::size_t length = 0;
    const std::string locale = zb::internal::currentLocale();
    const WCHAR *text = resources == nullptr ? nullptr : resources(id, locale.c_str(), &length);
    if (text == nullptr)
    {
        if (buffer != nullptr && size > 0)
        {
            buffer[0] = 0;
        }
        return fail();
    }
    if (size == 0)
    {
        std::memcpy(buffer, &text, sizeof text);
        return static_cast<int>(length);
    }
    const std::size_t copied = std::min(length, static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text, copied * sizeof(WCHAR));
    buffer[copied] = 0;
    return static_cast<int>(copied);
}

void zb::setApplicationResources(HINSTANCE module)
{
    applicationModule.store(module);
}
