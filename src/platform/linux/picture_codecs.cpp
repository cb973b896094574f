#include "platform/linux/picture_codecs.h"

#include "platform/kernel.h"

#include <dlfcn.h>
#include <filesystem>

namespace zb::internal
{
namespace
{
void *openBeside()
{
    Dl_info info{};
    static const char here = 0;
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr)
    {
        return nullptr;
    }
    const std::filesystem::path folder = std::filesystem::path(info.dli_fname).parent_path();
    return dlopen((folder / "libZBPictures.so").c_str(), RTLD_NOW | RTLD_LOCAL);
}

/// Loaded once and kept.
PictureCodecs *load()
{
    void *library = openBeside();
    if (library == nullptr)
    {
        return nullptr;
    }
    auto *codecs = new PictureCodecs{reinterpret_cast<DecodePicture>(dlsym(library, "zbDecodePicture")),
                                     reinterpret_cast<ReleasePicture>(dlsym(library, "zbReleasePicture")),
                                     reinterpret_cast<EncodePng>(dlsym(library, "zbEncodePng")),
                                     {}};
    return codecs->decode != nullptr && codecs->release != nullptr && codecs->encode != nullptr ? codecs : nullptr;
}
} // namespace

PictureCodecs *pictureCodecs()
{
    static PictureCodecs *const codecs = load();
    if (codecs == nullptr)
    {
        constexpr DWORD errorModuleNotFound = 126;
        SetLastError(errorModuleNotFound);
    }
    return codecs;
}
} // namespace zb::internal
