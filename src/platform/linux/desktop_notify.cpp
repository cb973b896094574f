#include "platform/linux/desktop_notify.h"

#include "platform/notify.h"
#include "platform/text.h"

#include <dlfcn.h>
#include <filesystem>

namespace
{
zb::internal::TellDesktop load()
{
    Dl_info info{};
    static const char here = 0;
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr)
    {
        return nullptr;
    }
    const std::filesystem::path folder = std::filesystem::path(info.dli_fname).parent_path();
    void *const library = dlopen((folder / "libZBDesktop.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    return library == nullptr ? nullptr
                              : reinterpret_cast<zb::internal::TellDesktop>(dlsym(library, "zbTellDesktop"));
}
} // namespace

bool zb::tellDesktop(const Alarm &alarm)
{
    static const internal::TellDesktop tell = load();
    return tell != nullptr &&
           tell(toUtf8(alarm.title).c_str(), toUtf8(alarm.text).c_str(), (alarm.actions & PUN_SOUND) != 0);
}
