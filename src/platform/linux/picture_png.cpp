// Surfaces as PNG files.
#include "platform/kernel.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/gdi_objects.h"
#include "platform/linux/picture_codecs.h"
#include "platform/linux/pictures.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zb::internal
{
namespace
{
using Bytes = std::vector<unsigned char>;

void append(void *user, const void *data, std::size_t size)
{
    const auto *first = static_cast<const unsigned char *>(data);
    static_cast<Bytes *>(user)->insert(static_cast<Bytes *>(user)->end(), first, first + size);
}
} // namespace

std::vector<unsigned char> encodePng(const Surface &surface)
{
    Bytes bytes;
    PictureCodecs *codecs = pictureCodecs();
    if (codecs == nullptr)
    {
        return bytes;
    }
    const CodecPicture picture{surface.width(), surface.height(), surface.stride() * std::ptrdiff_t{4}, surface.row(0),
                               nullptr};
    const std::lock_guard guard(codecs->lock);
    if (!codecs->encode(&picture, surface.isSoft(), append, &bytes))
    {
        bytes.clear();
    }
    return bytes;
}

namespace
{
bool writeWhole(int file, const Bytes &bytes)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t count = ::write(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR)
        {
            return failFile(errno);
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return true;
}

bool writeFile(const std::filesystem::path &file, const Bytes &bytes)
{
    const std::filesystem::path name = file.filename();
    const std::filesystem::path parent = file.parent_path();
    if (name.empty() || name == "." || name == "..")
    {
        return failWith(ERROR_PATH_NOT_FOUND);
    }
    const UniqueFd folder(::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
    {
        return failWith(errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : fileError(errno));
    }
    NewFile made(folder, name.string());
    if (made.error() != 0)
    {
        return failFile(made.error());
    }
    if (!writeWhole(made.fd(), bytes))
    {
        return false;
    }
    const int error = made.putInPlace(true);
    return error == 0 || failFile(error);
}
} // namespace
} // namespace zb::internal

bool zb::writePng(HBITMAP bitmap, const std::filesystem::path &file)
{
    const auto found = internal::bitmapOf(bitmap);
    if (found == nullptr)
    {
        return false;
    }
    const auto bytes = internal::encodePng(*found->surface());
    if (bytes.empty())
    {
        return internal::failWith(ERROR_NOT_ENOUGH_MEMORY);
    }
    return internal::writeFile(file, bytes);
}
