// Picture files of the device as bitmaps.
#include "platform/image.h"

#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/gdi_objects.h"
#include "platform/linux/pictures.h"

#include <optional>

using namespace zb::internal;

namespace
{
/// Closes it at the end.
class OpenFile
{
  public:
    explicit OpenFile(const WCHAR *path)
        : m_file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }
    ~OpenFile()
    {
        if (isOpen())
        {
            CloseHandle(m_file);
        }
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    bool isOpen() const
    {
        return m_file != INVALID_HANDLE_VALUE;
    }
    HANDLE get() const
    {
        return m_file;
    }

  private:
    HANDLE m_file;
};

/// The whole file; nothing, with last error set, when it can't be read or is above the limit.
std::optional<std::vector<unsigned char>> bytesOf(const WCHAR *path, std::uint64_t limit)
{
    const OpenFile file(path);
    if (!file.isOpen())
    {
        return std::nullopt;
    }
    DWORD high = 0;
    const DWORD size = GetFileSize(file.get(), &high);
    if (high != 0 || size > limit)
    {
        SetLastError(ERROR_BAD_FORMAT);
        return std::nullopt;
    }
    std::vector<unsigned char> bytes(size);
    DWORD done = 0;
    if (ReadFile(file.get(), bytes.data(), size, &done, nullptr) == FALSE)
    {
        return std::nullopt;
    }
    bytes.resize(done);
    return bytes;
}
} // namespace

HBITMAP SHLoadDIBitmap(const WCHAR *path)
{
    return zb::loadPicture(path, zb::PictureLimits{}, 0, 0);
}

HBITMAP zb::loadPicture(const WCHAR *path, const PictureLimits &limits, int fitWidth, int fitHeight)
{
    const auto bytes = bytesOf(path, limits.bytes);
    return bytes.has_value() ? decodePicture(bytes->data(), bytes->size(), limits, fitWidth, fitHeight) : nullptr;
}

HBITMAP zb::decodePicture(const void *data, std::size_t size, const PictureLimits &limits, int fitWidth, int fitHeight)
{
    auto surface = decodeSurface(static_cast<const unsigned char *>(data), size, limits);
    surface = surface == nullptr ? nullptr : fitSurface(std::move(surface), fitWidth, fitHeight);
    return surface == nullptr ? nullptr : insertObject(std::make_shared<BitmapObject>(std::move(surface)));
}
