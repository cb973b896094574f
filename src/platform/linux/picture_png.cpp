// Surfaces as PNG files.
#include "platform/kernel.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/gdi_objects.h"
#include "platform/linux/pictures.h"

#include <SDL2/SDL_image.h>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zb::internal
{
namespace
{
using Bytes = std::vector<unsigned char>;

std::size_t SDLCALL append(SDL_RWops *stream, const void *data, std::size_t size, std::size_t count)
{
    auto *bytes = static_cast<Bytes *>(stream->hidden.unknown.data1);
    const auto *first = static_cast<const unsigned char *>(data);
    bytes->insert(bytes->end(), first, first + size * count);
    return count;
}

Sint64 SDLCALL tell(SDL_RWops *stream, Sint64 offset, int from)
{
    const auto size = static_cast<Sint64>(static_cast<Bytes *>(stream->hidden.unknown.data1)->size());
    return offset == 0 && from != RW_SEEK_SET ? size : -1;
}

int SDLCALL finish(SDL_RWops *stream)
{
    SDL_FreeRW(stream);
    return 0;
}

/// A stream that adds what is written to `bytes`.
SDL_RWops *streamInto(Bytes &bytes)
{
    SDL_RWops *stream = SDL_AllocRW();
    if (stream != nullptr)
    {
        stream->type = SDL_RWOPS_UNKNOWN;
        stream->hidden.unknown.data1 = &bytes;
        stream->write = append;
        stream->seek = tell;
        stream->close = finish;
    }
    return stream;
}

/// Opacity is written for soft surfaces alone.
SDL_Surface *pictureOf(const Surface &surface)
{
    const Uint32 format = surface.isSoft() ? SDL_PIXELFORMAT_ARGB8888 : SDL_PIXELFORMAT_RGB24;
    SDL_Surface *picture = SDL_CreateRGBSurfaceWithFormat(0, surface.width(), surface.height(), 0, format);
    for (int y = 0; picture != nullptr && y < surface.height(); ++y)
    {
        auto *to = static_cast<unsigned char *>(picture->pixels) + static_cast<std::ptrdiff_t>(y) * picture->pitch;
        SDL_ConvertPixels(surface.width(), 1, SDL_PIXELFORMAT_ARGB8888, surface.row(y), surface.stride() * 4, format,
                          to, picture->pitch);
    }
    return picture;
}
} // namespace

std::vector<unsigned char> encodePng(const Surface &surface)
{
    Bytes bytes;
    SDL_Surface *picture = pictureOf(surface);
    SDL_RWops *stream = picture == nullptr ? nullptr : streamInto(bytes);
    if (stream != nullptr && IMG_SavePNG_RW(picture, stream, 1) != 0)
    {
        bytes.clear();
    }
    SDL_FreeSurface(picture);
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
