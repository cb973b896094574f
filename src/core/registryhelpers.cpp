// The free helpers of the registry: each opens a key, makes one call and closes it again.
#include "core/CRegistry.h"

#include "platform/text.h"

namespace
{
constexpr DWORD keyNameLimit = 75;
constexpr DWORD textBytesLimit = 800;

/// Runs `use` on the opened key and closes it; the platform's code either way.
template <typename Use>
LONG withKey(HKEY root, const WCHAR *path, bool create, const Use &use)
{
    HKEY key = nullptr;
    const LONG opened = create ? RegCreateKeyExW(root, path, 0, nullptr, 0, 0, nullptr, &key, nullptr)
                               : RegOpenKeyExW(root, path, 0, 0, &key);
    if (opened != 0)
    {
        return opened;
    }
    const LONG result = use(key);
    RegCloseKey(key);
    return result;
}
} // namespace

LONG QueryKey(HKEY root, const WCHAR *path, DWORD *subKeys, DWORD *values)
{
    return withKey(root, path, false,
                   [&](HKEY key)
                   {
                       return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, subKeys, nullptr, nullptr, values,
                                               nullptr, nullptr, nullptr, nullptr);
                   });
}

LONG EnumRegistryKeysSZ(HKEY root, const WCHAR *path, WCHAR *buffer, DWORD index)
{
    return withKey(root, path, false,
                   [&](HKEY key)
                   {
                       DWORD size = keyNameLimit;
                       return RegEnumKeyExW(key, index, buffer, &size, nullptr, nullptr, nullptr, nullptr);
                   });
}

LONG DeleteRegistryValue(HKEY root, const WCHAR *path, const WCHAR *name)
{
    return withKey(root, path, false, [&](HKEY key) { return RegDeleteValueW(key, name); });
}

LONG SetToRegistry(HKEY root, const WCHAR *path, const WCHAR *name, DWORD value)
{
    return withKey(
        root, path, true,
        [&](HKEY key)
        { return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&value), sizeof(value)); });
}

LONG GetFromRegistry(HKEY root, const WCHAR *path, const WCHAR *name, DWORD *value)
{
    return withKey(root, path, false,
                   [&](HKEY key)
                   {
                       DWORD size = sizeof(*value);
                       return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE *>(value), &size);
                   });
}

LONG SetToRegistrySZ(HKEY root, const WCHAR *path, const WCHAR *name, const WCHAR *text)
{
    return withKey(root, path, true,
                   [&](HKEY key)
                   {
                       const auto bytes = static_cast<DWORD>((wcslen(text) + 1) * sizeof(WCHAR));
                       return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text), bytes);
                   });
}

LONG GetFromRegistrySZ(HKEY root, const WCHAR *path, const WCHAR *name, WCHAR *buffer)
{
    return withKey(root, path, false,
                   [&](HKEY key)
                   {
                       DWORD size = textBytesLimit;
                       return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE *>(buffer), &size);
                   });
}
