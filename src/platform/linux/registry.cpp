// The registry's calls: keys as handles, over the tables of registry_store.h.
#include "platform/registry.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/linux/handles.h"
#include "platform/linux/registry_store.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace
{
using zb::internal::HandleKind;
using zb::internal::RegistryFailure;
using zb::internal::RegistryStore;
using zb::internal::RegistryValue;

constexpr DWORD_PTR firstRoot = 0x80000000U;
constexpr DWORD_PTR lastRoot = 0x80000003U;

class OpenKey final : public zb::internal::HandleObject
{
  public:
    explicit OpenKey(std::int64_t id) : HandleObject(HandleKind::RegistryKey), m_id(id)
    {
    }
    std::int64_t id() const
    {
        return m_id;
    }

  private:
    std::int64_t m_id;
};

bool isRoot(HKEY key)
{
    const auto value = reinterpret_cast<DWORD_PTR>(key);
    return value >= firstRoot && value <= lastRoot;
}

std::u16string_view textOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string_view() : std::u16string_view(text, wcslen(text));
}

/// Runs `use(store, id of the key)` and turns what goes wrong into a code.
template <typename Use>
LONG onKey(HKEY key, const Use &use)
{
    zb::stoppingPoint();
    try
    {
        const auto store = RegistryStore::current();
        if (store == nullptr)
        {
            return ERROR_BADKEY;
        }
        if (isRoot(key))
        {
            return use(*store, static_cast<std::int64_t>(reinterpret_cast<DWORD_PTR>(key) - firstRoot + 1));
        }
        const DWORD lastError = GetLastError();
        const auto open = zb::internal::findAs<OpenKey>(reinterpret_cast<HANDLE>(key), HandleKind::RegistryKey);
        SetLastError(lastError);
        // A key that was deleted while it was open is bad from then on.
        return open == nullptr || !store->exists(open->id()) ? ERROR_BADKEY : use(*store, open->id());
    }
    catch (const RegistryFailure &failure)
    {
        return failure.code;
    }
    catch (const std::bad_alloc &)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LONG handOut(std::int64_t id, HKEY *key)
{
    HANDLE handle = zb::internal::insertHandle(std::make_shared<OpenKey>(id));
    *key = reinterpret_cast<HKEY>(handle);
    return handle == nullptr ? ERROR_NOT_ENOUGH_MEMORY : 0;
}

LONG copyData(const RegistryValue &value, DWORD *type, BYTE *data, DWORD *size)
{
    if (type != nullptr)
    {
        *type = value.type;
    }
    const DWORD room = size == nullptr ? 0 : *size;
    const auto needed = static_cast<DWORD>(value.data.size());
    if (size != nullptr)
    {
        *size = needed;
    }
    if (data == nullptr)
    {
        return 0;
    }
    if (size == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (room < needed)
    {
        return ERROR_MORE_DATA;
    }
    std::copy(value.data.begin(), value.data.end(), data);
    return 0;
}

LONG copyName(const std::u16string &text, WCHAR *name, DWORD *size)
{
    if (name == nullptr || size == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (*size <= text.size())
    {
        return ERROR_MORE_DATA;
    }
    std::copy(text.begin(), text.end(), name);
    name[text.size()] = 0;
    *size = static_cast<DWORD>(text.size());
    return 0;
}

template <typename T>
void put(T *target, T value)
{
    if (target != nullptr)
    {
        *target = value;
    }
}

void putLongest(DWORD *target, std::size_t length)
{
    if (target != nullptr)
    {
        *target = std::max(*target, static_cast<DWORD>(length));
    }
}
} // namespace

LONG RegCreateKeyExW(HKEY root, const WCHAR *path, DWORD, const WCHAR *, DWORD, DWORD, const void *, HKEY *key,
                     DWORD *disposition)
{
    if (key == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return onKey(root,
                 [&](RegistryStore &store, std::int64_t id)
                 {
                     bool made = false;
                     const std::int64_t found = store.findOrMake(id, textOf(path), &made);
                     put<DWORD>(disposition, made ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
                     return handOut(found, key);
                 });
}

LONG RegOpenKeyExW(HKEY root, const WCHAR *path, DWORD, DWORD, HKEY *key)
{
    if (key == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return onKey(root,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 {
                     const auto found = store.find(id, textOf(path));
                     return found ? handOut(*found, key) : static_cast<LONG>(ERROR_FILE_NOT_FOUND);
                 });
}

LONG RegCloseKey(HKEY key)
{
    if (isRoot(key))
    {
        return 0;
    }
    const DWORD lastError = GetLastError();
    const bool closed = zb::internal::removeHandle(reinterpret_cast<HANDLE>(key), HandleKind::RegistryKey) != nullptr;
    SetLastError(lastError);
    return closed ? 0 : ERROR_BADKEY;
}

LONG RegQueryValueExW(HKEY key, const WCHAR *name, DWORD *, DWORD *type, BYTE *data, DWORD *size)
{
    return onKey(key,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 {
                     const auto value = store.value(id, textOf(name));
                     return value ? copyData(*value, type, data, size) : static_cast<LONG>(ERROR_FILE_NOT_FOUND);
                 });
}

LONG RegSetValueExW(HKEY key, const WCHAR *name, DWORD, DWORD type, const BYTE *data, DWORD size)
{
    if (data == nullptr && size != 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return onKey(key,
                 [&](RegistryStore &store, std::int64_t id)
                 {
                     store.setValue(id, {std::u16string(textOf(name)), type, std::vector<BYTE>(data, data + size)});
                     return 0;
                 });
}

LONG RegDeleteValueW(HKEY key, const WCHAR *name)
{
    return onKey(key,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 { return store.removeValue(id, textOf(name)) ? 0 : static_cast<LONG>(ERROR_FILE_NOT_FOUND); });
}

LONG RegDeleteKeyW(HKEY root, const WCHAR *path)
{
    return onKey(root,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 { return store.removeTree(id, textOf(path)) ? 0 : static_cast<LONG>(ERROR_FILE_NOT_FOUND); });
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR *name, DWORD *nameSize, DWORD *, WCHAR *, DWORD *classSize,
                   FILETIME *lastWrite)
{
    return onKey(key,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 {
                     const auto names = store.childNames(id);
                     if (index >= names.size())
                     {
                         return ERROR_NO_MORE_ITEMS;
                     }
                     put<DWORD>(classSize, 0);
                     const auto child = store.find(id, names[index]);
                     put(lastWrite, zb::fileTimeOf(child ? store.written(*child) : 0));
                     return copyName(names[index], name, nameSize);
                 });
}

LONG RegEnumValueW(HKEY key, DWORD index, WCHAR *name, DWORD *nameSize, DWORD *, DWORD *type, BYTE *data,
                   DWORD *dataSize)
{
    return onKey(key,
                 [&](RegistryStore &store, std::int64_t id) -> LONG
                 {
                     const auto values = store.values(id);
                     if (index >= values.size())
                     {
                         return ERROR_NO_MORE_ITEMS;
                     }
                     const LONG named = copyName(values[index].name, name, nameSize);
                     return named != 0 ? named : copyData(values[index], type, data, dataSize);
                 });
}

LONG RegQueryInfoKeyW(HKEY key, WCHAR *keyClass, DWORD *classSize, DWORD *, DWORD *subKeys, DWORD *longestSubKey,
                      DWORD *longestClass, DWORD *values, DWORD *longestValueName, DWORD *longestValue, DWORD *security,
                      FILETIME *lastWrite)
{
    return onKey(
        key,
        [&](RegistryStore &store, std::int64_t id) -> LONG
        {
            const auto children = store.childNames(id);
            const auto held = store.values(id);
            put<WCHAR>(keyClass, 0);
            for (DWORD *target : {classSize, longestSubKey, longestClass, longestValueName, longestValue, security})
            {
                put<DWORD>(target, 0);
            }
            put(subKeys, static_cast<DWORD>(children.size()));
            put(values, static_cast<DWORD>(held.size()));
            for (const std::u16string &name : children)
            {
                putLongest(longestSubKey, name.size());
            }
            for (const RegistryValue &value : held)
            {
                putLongest(longestValueName, value.name.size());
                putLongest(longestValue, value.data.size());
            }
            put(lastWrite, zb::fileTimeOf(store.written(id)));
            return 0;
        });
}

LONG RegFlushKey(HKEY key)
{
    // Every write is durable when its call returns.
    return onKey(key, [](RegistryStore &, std::int64_t) { return 0; });
}
