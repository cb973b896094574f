// The settings object: keys and values in the place it was given.
#include "core/CRegistry.h"

#include "core/CRegistry_file.h"
#include "core/KelvoDirectory.h"
#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <mutex>

CePtrList<CRegistry::INIFile *> CRegistry::INIFileCache(0, CEOWN_DELETE, nullptr);

namespace
{
constexpr LONG invalidArgument = static_cast<LONG>(0x80070057U);
constexpr DWORD registryTextLimit = 200;

std::mutex &cacheMutex()
{
    static std::mutex mutex;
    return mutex;
}

/// Every failure is negative; the registry's own codes are positive.
LONG negated(LONG code)
{
    return code > 0 ? -code : code;
}

/// The device's registry is asked a second time before an error is passed on.
template <typename Call>
LONG twice(const Call &call)
{
    const LONG first = call();
    return first == 0 ? 0 : negated(call());
}

std::u16string nameOf(const WCHAR *name)
{
    return name == nullptr || *name == 0 ? std::u16string(u"@") : std::u16string(name);
}

std::u16string filledPath(const WCHAR *path)
{
    std::u16string text = path;
    const std::size_t place = text.find(u"%s");
    if (place != std::u16string::npos)
    {
        text.replace(place, 2, SettingsBaseFolder());
    }
    return text;
}

CRegistry::INIFile *findCached(const std::u16string &path)
{
    for (int index = 0; index < CRegistry::INIFileCache.GetCount(); ++index)
    {
        CRegistry::INIFile *file = CRegistry::INIFileCache.GetAt(index);
        if (_wcsicmp(file->path().c_str(), path.c_str()) == 0)
        {
            return file;
        }
    }
    return nullptr;
}

CRegistry::INIFile *cachedFile(const std::u16string &path)
{
    const std::lock_guard guard(cacheMutex());
    CRegistry::INIFile *file = findCached(path);
    if (file == nullptr)
    {
        file = new CRegistry::INIFile(path); // owned by the cache for as long as the process lives
        CRegistry::INIFileCache.AddTail(file);
    }
    return file;
}

LONG copyOut(const std::u16string &text, WCHAR *buffer, DWORD size)
{
    const std::size_t length = size == 0 ? text.size() : std::min<std::size_t>(text.size(), size - 1);
    std::copy_n(text.begin(), length, buffer);
    buffer[length] = 0;
    return 0;
}

LONG nameAt(const std::vector<std::u16string> &names, DWORD index, WCHAR *buffer, DWORD size)
{
    return index < names.size() ? copyOut(names[index], buffer, size) : CRegistry::Failed;
}
} // namespace

std::u16string SettingsBaseFolder()
{
    return GetKelvoDirectory();
}

CRegistry::CRegistry() : CRegistry(RegistryTypeFile, nullptr, 1)
{
}

CRegistry::CRegistry(_REGISTRY_TYPE type) : CRegistry(type, nullptr, 1)
{
}

CRegistry::CRegistry(const WCHAR *path) : CRegistry(RegistryTypeFile, path, 1)
{
}

CRegistry::CRegistry(_REGISTRY_TYPE type, const WCHAR *path) : CRegistry(type, path, 1)
{
}

CRegistry::CRegistry(_REGISTRY_TYPE type, const WCHAR *path, int cached)
{
    SetRegistryType(type, path == nullptr ? DefaultFile : path, cached);
}

CRegistry::~CRegistry()
{
    CloseKey();
    ReleaseFile();
}

void CRegistry::ReleaseFile()
{
    if (m_file == nullptr)
    {
        return;
    }
    // Counted down first: of two threads that let go at once, one sees that it is the last and saves.
    const int left = m_cached ? m_file->detach() : 0;
    if (left == 0)
    {
        SaveINIFile(0);
    }
    m_own.reset();
    m_file = nullptr;
    m_cached = false;
}

LONG CRegistry::SetRegistryType(_REGISTRY_TYPE type, const WCHAR *path, int cached)
{
    CloseKey();
    ReleaseFile();
    m_type = type;
    if (type == RegistryTypeRegistry)
    {
        return 0;
    }
    if (path == nullptr)
    {
        return invalidArgument;
    }
    const std::u16string full = filledPath(path);
    if (cached == 1)
    {
        m_file = cachedFile(full);
    }
    else
    {
        // A file that others share already is shared here as well, so that nobody works on an older text.
        const std::lock_guard guard(cacheMutex());
        m_file = findCached(full);
    }
    if (m_file != nullptr)
    {
        m_cached = true;
        m_file->attach();
        return 0;
    }
    m_own = std::make_unique<INIFile>(full);
    m_file = m_own.get();
    m_file->read();
    return 0;
}

std::u16string CRegistry::INIFileName() const
{
    return m_file == nullptr ? std::u16string() : m_file->path();
}

bool CRegistry::INIFileInCache(const WCHAR *path)
{
    const std::u16string full = path == nullptr ? filledPath(DefaultFile) : filledPath(path);
    const std::lock_guard guard(cacheMutex());
    return findCached(full) != nullptr;
}

// --- Keys --------------------------------------------------------------------------------------------------------

LONG CRegistry::OpenRegistryKey(HKEY root, const WCHAR *path, DWORD *disposition)
{
    return twice([&] { return RegCreateKeyExW(root, path, 0, nullptr, 0, 0, nullptr, &m_key, disposition); });
}

LONG CRegistry::OpenKey(HKEY root, const WCHAR *path, DWORD *disposition)
{
    CloseKey();
    if (m_type == RegistryTypeRegistry)
    {
        const LONG result = OpenRegistryKey(root, path, disposition);
        m_open = result == 0;
        return result;
    }
    if (m_file == nullptr)
    {
        return Failed;
    }
    const std::u16string section = GetKeySection(root, path);
    if (!INIFile::canHold(section))
    {
        return Failed;
    }
    m_section = section;
    const bool made = m_file->openSection(m_section);
    if (disposition != nullptr)
    {
        *disposition = made ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    m_open = true;
    return 0;
}

bool CRegistry::Exists(HKEY root, const WCHAR *path) const
{
    if (m_type == RegistryTypeFile)
    {
        return m_file != nullptr && m_file->hasSection(GetKeySection(root, path));
    }
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path, 0, 0, &key) != 0)
    {
        return false;
    }
    RegCloseKey(key);
    return true;
}

LONG CRegistry::CloseKey()
{
    LONG result = 0;
    if (m_key != nullptr)
    {
        result = negated(RegCloseKey(m_key));
        m_key = nullptr;
    }
    m_section.clear();
    m_open = false;
    return result;
}

LONG CRegistry::DeleteKey(HKEY root, const WCHAR *path)
{
    if (m_type == RegistryTypeRegistry)
    {
        return twice([&] { return RegDeleteKeyW(root, path); });
    }
    if (m_file == nullptr)
    {
        return Failed;
    }
    m_file->deleteSection(GetKeySection(root, path));
    return 0;
}

LONG CRegistry::FlushKey()
{
    return m_type == RegistryTypeRegistry ? negated(RegFlushKey(m_key)) : SaveINIFile(1);
}

LONG CRegistry::SaveINIFile(int force)
{
    if (m_file == nullptr)
    {
        return Failed;
    }
    if (force == 0 && (!m_file->dirty() || m_file->references() > 1))
    {
        return 0;
    }
    return m_file->save() ? 0 : Failed;
}

// --- Values ------------------------------------------------------------------------------------------------------

LONG CRegistry::QueryNumber(const WCHAR *name, DWORD &value) const
{
    if (!m_open)
    {
        return Failed;
    }
    if (m_type == RegistryTypeFile)
    {
        return m_file != nullptr && m_file->number(m_section, nameOf(name), value) ? 0 : Failed;
    }
    DWORD type = 0;
    DWORD read = 0;
    DWORD size = sizeof(read);
    const LONG result = twice(
        [&]
        {
            size = sizeof(read);
            return RegQueryValueExW(m_key, name, nullptr, &type, reinterpret_cast<BYTE *>(&read), &size);
        });
    if (result != 0 || type != REG_DWORD || size != sizeof(read))
    {
        return result != 0 ? result : Failed;
    }
    value = read;
    return 0;
}

LONG CRegistry::QueryValue(const WCHAR *name, LONG *value) const
{
    DWORD read = 0;
    const LONG result = QueryNumber(name, read);
    if (result == 0)
    {
        *value = static_cast<LONG>(read);
    }
    return result;
}

LONG CRegistry::QueryValue(const WCHAR *name, DWORD *value) const
{
    return QueryNumber(name, *value);
}

LONG CRegistry::QueryValue(const WCHAR *name, WCHAR *buffer, DWORD size) const
{
    if (!m_open)
    {
        return Failed;
    }
    if (m_type == RegistryTypeFile)
    {
        INIValue found;
        const bool isText = m_file != nullptr && m_file->value(m_section, nameOf(name), found) && found.type == REG_SZ;
        return isText ? copyOut(found.text, buffer, size) : Failed;
    }
    std::vector<WCHAR> text(size == 0 ? registryTextLimit : size);
    DWORD type = 0;
    const LONG result = twice(
        [&]
        {
            auto bytes = static_cast<DWORD>(text.size() * sizeof(WCHAR));
            return RegQueryValueExW(m_key, name, nullptr, &type, reinterpret_cast<BYTE *>(text.data()), &bytes);
        });
    if (result != 0 || type != REG_SZ)
    {
        return result != 0 ? result : Failed;
    }
    text.back() = 0;
    return copyOut(text.data(), buffer, static_cast<DWORD>(text.size()));
}

LONG CRegistry::QueryValueType(const WCHAR *name, DWORD *type) const
{
    if (!m_open)
    {
        return Failed;
    }
    if (m_type == RegistryTypeRegistry)
    {
        return twice([&] { return RegQueryValueExW(m_key, name, nullptr, type, nullptr, nullptr); });
    }
    INIValue found;
    if (m_file == nullptr || !m_file->value(m_section, nameOf(name), found))
    {
        return Failed;
    }
    *type = found.type;
    return 0;
}

LONG CRegistry::SetValue(const WCHAR *name, DWORD value)
{
    if (m_type == RegistryTypeRegistry)
    {
        return twice(
            [&] {
                return RegSetValueExW(m_key, name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(&value), sizeof(value));
            });
    }
    INIValue stored;
    stored.name = nameOf(name);
    stored.type = REG_DWORD;
    stored.number = value;
    return m_open && m_file != nullptr && m_file->setValue(m_section, std::move(stored)) ? 0 : Failed;
}

LONG CRegistry::SetValue(const WCHAR *name, const WCHAR *value)
{
    const std::u16string text = value == nullptr ? u"" : value;
    if (m_type == RegistryTypeRegistry)
    {
        const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
        return twice(
            [&]
            { return RegSetValueExW(m_key, name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()), bytes); });
    }
    INIValue stored;
    stored.name = nameOf(name);
    stored.text = text;
    return m_open && m_file != nullptr && m_file->setValue(m_section, std::move(stored)) ? 0 : Failed;
}

LONG CRegistry::DeleteValue(const WCHAR *name)
{
    if (m_type == RegistryTypeRegistry)
    {
        return twice([&] { return RegDeleteValueW(m_key, name); });
    }
    return m_open && m_file != nullptr && m_file->deleteValue(m_section, nameOf(name)) ? 0 : Failed;
}

// --- Names -------------------------------------------------------------------------------------------------------

std::vector<std::u16string> CRegistry::ValueNames() const
{
    std::vector<std::u16string> names;
    if (m_type == RegistryTypeFile)
    {
        return m_file == nullptr ? names : m_file->valueNames(m_section);
    }
    WCHAR name[MAX_PATH];
    DWORD size = MAX_PATH;
    for (DWORD index = 0; RegEnumValueW(m_key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == 0; ++index)
    {
        names.emplace_back(name, size);
        size = MAX_PATH;
    }
    return names;
}

std::vector<std::u16string> CRegistry::SubKeyNames() const
{
    std::vector<std::u16string> names;
    if (m_type == RegistryTypeFile)
    {
        return m_file == nullptr ? names : m_file->childNames(m_section);
    }
    WCHAR name[MAX_PATH];
    DWORD size = MAX_PATH;
    for (DWORD index = 0; RegEnumKeyExW(m_key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == 0; ++index)
    {
        names.emplace_back(name, size);
        size = MAX_PATH;
    }
    return names;
}

DWORD CRegistry::ValueCount() const
{
    return static_cast<DWORD>(ValueNames().size());
}

DWORD CRegistry::SubKeyCount() const
{
    return static_cast<DWORD>(SubKeyNames().size());
}

LONG CRegistry::ValueName(DWORD index, WCHAR *buffer, DWORD size) const
{
    return nameAt(ValueNames(), index, buffer, size);
}

LONG CRegistry::SubKeyName(DWORD index, WCHAR *buffer, DWORD size) const
{
    return nameAt(SubKeyNames(), index, buffer, size);
}
