#include "platform/linux/beside.h"

#include <dlfcn.h>
#include <filesystem>

namespace zb::internal
{
void *openBeside(const char *file)
{
    Dl_info info{};
    static const char here = 0;
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr)
    {
        return nullptr;
    }
    const std::filesystem::path folder = std::filesystem::path(info.dli_fname).parent_path();
    return dlopen((folder / file).c_str(), RTLD_NOW | RTLD_LOCAL);
}
} // namespace zb::internal
