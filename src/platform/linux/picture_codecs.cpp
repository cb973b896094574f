#include "platform/linux/picture_codecs.h"

#include "platform/kernel.h"
#include "platform/linux/beside.h"

#include <dlfcn.h>

namespace zb::internal
{
namespace
{
/// Loaded once and kept.
PictureCodecs *load()
{
    void *library = openBeside("libZBPictures.so");
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
