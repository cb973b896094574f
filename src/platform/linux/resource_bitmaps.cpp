// Resources by type and number out of modules, and bitmaps and icons made of them.
//
// A resource's handle is the address of a note of where it came from, kept for ever: it is looked up in the set of all
// of them before it is followed, and its bytes are asked of the module anew, so that neither a foreign handle nor a
// module that has gone is ever read.
#include "platform/resources.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/dialog_state.h"
#include "platform/linux/icons.h"
#include "platform/linux/pictures.h"
#include "platform/linux/resource_modules.h"

#include <memory>
#include <mutex>
#include <set>
#include <vector>

struct HRSRC__
{
    HINSTANCE module;
    UINT type;
    UINT id;
    int dotsPerInch;

    auto operator<=>(const HRSRC__ &) const = default;
};

using namespace zb::internal;

namespace
{
struct Bytes
{
    const unsigned char *data = nullptr;
    std::size_t size = 0;
};

class Resources
{
  public:
    HRSRC keep(const HRSRC__ &resource)
    {
        const std::lock_guard guard(m_lock);
        // Handles are never followed by callers, and nothing of a note ever changes.
        return const_cast<HRSRC>(&*m_all.insert(resource).first);
    }
    /// Null with last error 6 for what is no resource.
    const HRSRC__ *find(const void *handle)
    {
        const std::lock_guard guard(m_lock);
        for (const HRSRC__ &resource : m_all)
        {
            if (&resource == handle)
            {
                return &resource;
            }
        }
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    std::vector<HRSRC__> all()
    {
        const std::lock_guard guard(m_lock);
        return {m_all.begin(), m_all.end()};
    }

  private:
    std::mutex m_lock;
    std::set<HRSRC__> m_all;
};

/// Never destroyed: threads that outlive main may still ask.
Resources &resources()
{
    static auto *instance = new Resources;
    return *instance;
}

Bytes bytesOf(const HRSRC__ &resource)
{
    Bytes bytes;
    const ZbResourceBytes source = resourceBytesOf(resource.module);
    if (source == nullptr)
    {
        return bytes;
    }
    bytes.data =
        static_cast<const unsigned char *>(source(resource.type, resource.id, resource.dotsPerInch, &bytes.size));
    if (bytes.data == nullptr)
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return {};
    }
    return bytes;
}

Bytes bytesOf(HINSTANCE module, HRSRC resource)
{
    const HRSRC__ *found = resources().find(resource);
    if (found != nullptr && found->module != module)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        found = nullptr;
    }
    return found == nullptr ? Bytes{} : bytesOf(*found);
}

UINT numberOf(const WCHAR *name)
{
    return static_cast<UINT>(reinterpret_cast<UINT_PTR>(name));
}
} // namespace

std::size_t zb::internal::sizeOfLockedResource(const void *bytes)
{
    for (const HRSRC__ &resource : resources().all())
    {
        const Bytes found = bytesOf(resource);
        if (found.data == bytes)
        {
            return found.size;
        }
    }
    return 0;
}

HRSRC FindResourceW(HINSTANCE module, const WCHAR *name, const WCHAR *type)
{
    if (!IS_INTRESOURCE(type) || numberOf(type) < numberOf(RT_BITMAP) || numberOf(type) > numberOf(RT_DIALOG))
    {
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return nullptr;
    }
    if (!IS_INTRESOURCE(name))
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    const HRSRC__ resource{module, numberOf(type), numberOf(name), currentScreen().dotsPerInch};
    return bytesOf(resource).data == nullptr ? nullptr : resources().keep(resource);
}

DWORD SizeofResource(HINSTANCE module, HRSRC resource)
{
    return static_cast<DWORD>(bytesOf(module, resource).size);
}

HGLOBAL LoadResource(HINSTANCE module, HRSRC resource)
{
    return bytesOf(module, resource).data == nullptr ? nullptr : resource;
}

const void *LockResource(HGLOBAL resource)
{
    const HRSRC__ *found = resources().find(resource);
    return found == nullptr ? nullptr : bytesOf(*found).data;
}

namespace
{
constexpr std::size_t headerBytes = 40;

std::uint32_t littleAt(const unsigned char *data, int bytes)
{
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i)
    {
        value = value << 8U | data[i];
    }
    return value;
}

struct Rows
{
    int width;
    int height;
    bool topFirst;
    const unsigned char *pixels; ///< 4 bytes each: blue, green, red, opacity

    /// By its place from the top.
    const unsigned char *row(int y) const
    {
        const auto place = static_cast<std::size_t>(topFirst ? y : height - 1 - y);
        return pixels + place * static_cast<std::size_t>(width) * 4;
    }
};

/// Header, as BITMAPINFOHEADER: 0 its size, 4 width, 8 height, 12 planes, 14 bits a pixel, 16 compression; rows at 40.
std::optional<Rows> rowsOf(const Bytes &bytes)
{
    const unsigned char *data = bytes.data;
    if (bytes.size < headerBytes || littleAt(data, 4) != headerBytes || littleAt(data + 12, 2) != 1 ||
        littleAt(data + 14, 2) != 32 || littleAt(data + 16, 4) != 0)
    {
        return std::nullopt;
    }
    const auto width = static_cast<std::int32_t>(littleAt(data + 4, 4));
    const auto height = static_cast<std::int32_t>(littleAt(data + 8, 4));
    const std::int64_t rows = height < 0 ? -static_cast<std::int64_t>(height) : height;
    if (width < 1 || rows < 1 || width > longestSide || rows > longestSide ||
        bytes.size - headerBytes < static_cast<std::size_t>(width) * static_cast<std::size_t>(rows) * 4)
    {
        return std::nullopt;
    }
    return Rows{width, static_cast<int>(rows), height < 0, data + headerBytes};
}

bool isOpaque(const Rows &rows)
{
    const std::size_t count = static_cast<std::size_t>(rows.width) * static_cast<std::size_t>(rows.height);
    for (std::size_t i = 0; i < count; ++i)
    {
        if (rows.pixels[i * 4 + 3] != 0xFF)
        {
            return false;
        }
    }
    return true;
}

std::shared_ptr<Surface> surfaceOf(const Rows &rows)
{
    const bool opaque = isOpaque(rows);
    auto surface = Surface::create(rows.width, rows.height, opaque ? Surface::Kind::Color : Surface::Kind::Soft);
    for (int y = 0; surface != nullptr && y < rows.height; ++y)
    {
        const unsigned char *from = rows.row(y);
        std::uint32_t *to = surface->row(y);
        for (int x = 0; x < rows.width; ++x, from += 4)
        {
            to[x] = opaque ? littleAt(from, 4) : softPixel(littleAt(from, 4));
        }
    }
    return surface;
}

std::shared_ptr<Surface> loadSurface(HINSTANCE module, const WCHAR *name)
{
    const HRSRC resource = FindResourceW(module, name, RT_BITMAP);
    const Bytes bytes = resource == nullptr ? Bytes{} : bytesOf(module, resource);
    if (bytes.data == nullptr)
    {
        return nullptr;
    }
    const auto rows = rowsOf(bytes);
    if (!rows.has_value())
    {
        SetLastError(ERROR_BAD_FORMAT);
        return nullptr;
    }
    return surfaceOf(*rows);
}
} // namespace

HBITMAP LoadBitmapW(HINSTANCE module, const WCHAR *name)
{
    auto surface = loadSurface(module, name);
    return surface == nullptr ? nullptr : insertObject(std::make_shared<BitmapObject>(std::move(surface)));
}

HICON LoadIconW(HINSTANCE module, const WCHAR *name)
{
    const auto surface = loadSurface(module, name);
    auto picture = surface == nullptr ? nullptr : softCopy(*surface, surface->bounds(), nullptr, std::nullopt);
    return picture == nullptr ? nullptr : insertHandle(std::make_shared<IconObject>(std::move(picture)));
}
