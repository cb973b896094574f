// libZBPictures: picture files by SDL_image.
#include "platform/linux/picture_codecs.h"

#include <SDL2/SDL_image.h>
#include <memory>

using zb::internal::CodecPicture;

namespace
{
struct FreeSurface
{
    void operator()(SDL_Surface *surface) const
    {
        SDL_FreeSurface(surface);
    }
};
using SurfacePointer = std::unique_ptr<SDL_Surface, FreeSurface>;

/// Where the bytes of a file that is being written go.
struct Sink
{
    void (*take)(void *user, const void *bytes, std::size_t size);
    void *user;
    Sint64 size = 0;
};

std::size_t SDLCALL append(SDL_RWops *stream, const void *data, std::size_t size, std::size_t count)
{
    auto *sink = static_cast<Sink *>(stream->hidden.unknown.data1);
    sink->take(sink->user, data, size * count);
    sink->size += static_cast<Sint64>(size * count);
    return count;
}

Sint64 SDLCALL tell(SDL_RWops *stream, Sint64 offset, int from)
{
    return offset == 0 && from != RW_SEEK_SET ? static_cast<Sink *>(stream->hidden.unknown.data1)->size : -1;
}

int SDLCALL finish(SDL_RWops *stream)
{
    SDL_FreeRW(stream);
    return 0;
}

SDL_RWops *streamInto(Sink &sink)
{
    SDL_RWops *stream = SDL_AllocRW();
    if (stream != nullptr)
    {
        stream->type = SDL_RWOPS_UNKNOWN;
        stream->hidden.unknown.data1 = &sink;
        stream->write = append;
        stream->seek = tell;
        stream->close = finish;
    }
    return stream;
}

SurfacePointer surfaceOf(const CodecPicture &picture, bool soft)
{
    const Uint32 format = soft ? SDL_PIXELFORMAT_ARGB8888 : SDL_PIXELFORMAT_RGB24;
    SurfacePointer surface(SDL_CreateRGBSurfaceWithFormat(0, picture.width, picture.height, 0, format));
    if (surface != nullptr)
    {
        SDL_ConvertPixels(picture.width, picture.height, SDL_PIXELFORMAT_ARGB8888, picture.pixels,
                          static_cast<int>(picture.stride), format, surface->pixels, surface->pitch);
    }
    return surface;
}
} // namespace

extern "C" __attribute__((visibility("default"))) bool zbDecodePicture(const char *kind, const void *data,
                                                                       std::size_t size, CodecPicture *picture);
extern "C" __attribute__((visibility("default"))) void zbReleasePicture(void *owner);
extern "C" __attribute__((visibility("default"))) bool
zbEncodePng(const CodecPicture *picture, bool soft, void (*take)(void *user, const void *bytes, std::size_t size),
            void *user);

bool zbDecodePicture(const char *kind, const void *data, std::size_t size, CodecPicture *picture)
{
    SDL_RWops *source = SDL_RWFromConstMem(data, static_cast<int>(size));
    const SurfacePointer read(source == nullptr ? nullptr : IMG_LoadTyped_RW(source, 1, kind));
    SDL_Surface *plain =
        read == nullptr ? nullptr : SDL_ConvertSurfaceFormat(read.get(), SDL_PIXELFORMAT_ARGB8888, 0);
    if (plain == nullptr)
    {
        return false;
    }
    *picture = {plain->w, plain->h, plain->pitch, plain->pixels, plain};
    return true;
}

void zbReleasePicture(void *owner)
{
    SDL_FreeSurface(static_cast<SDL_Surface *>(owner));
}

bool zbEncodePng(const CodecPicture *picture, bool soft, void (*take)(void *user, const void *bytes, std::size_t size),
                 void *user)
{
    Sink sink{take, user};
    const SurfacePointer surface = surfaceOf(*picture, soft);
    SDL_RWops *stream = surface == nullptr ? nullptr : streamInto(sink);
    return stream != nullptr && IMG_SavePNG_RW(surface.get(), stream, 1) == 0;
}
