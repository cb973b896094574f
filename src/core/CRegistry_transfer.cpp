// Section names and roots, and copies from one store of settings to another.
#include "core/CRegistry.h"
#include "core/CRegistry_file.h"

#include "platform/text.h"

#include <array>
#include <utility>

namespace
{
struct Root
{
    HKEY key;
    const WCHAR *name;
};

const std::array<Root, 4> &roots()
{
    static const std::array<Root, 4> all = {{{HKEY_CURRENT_USER, u"HKEY_CURRENT_USER"},
                                             {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE"},
                                             {HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT"},
                                             {HKEY_USERS, u"HKEY_USERS"}}};
    return all;
}

std::u16string replacedIn(std::u16string text, const std::u16string &find, const std::u16string &replace)
{
    for (std::size_t at = find.empty() ? std::u16string::npos : text.find(find); at != std::u16string::npos;
         at = text.find(find, at + replace.size()))
    {
        text.replace(at, find.size(), replace);
    }
    return text;
}

void copyValue(const CRegistry &from, CRegistry &to, const std::u16string &name)
{
    DWORD type = 0;
    if (from.QueryValueType(name.c_str(), &type) != 0)
    {
        return;
    }
    if (type == REG_DWORD)
    {
        DWORD value = 0;
        if (from.QueryValue(name.c_str(), &value) == 0)
        {
            to.SetValue(name.c_str(), value);
        }
        return;
    }
    std::vector<WCHAR> text(0x8000);
    if (from.QueryValue(name.c_str(), text.data(), static_cast<DWORD>(text.size())) == 0)
    {
        to.SetValue(name.c_str(), text.data());
    }
}

void copyOpenKey(const CRegistry &from, CRegistry &to)
{
    for (const std::u16string &name : from.ValueNames())
    {
        copyValue(from, to, name);
    }
}

/// Copies a key and all below it, each opened in both places under the same path.
void copyTree(_REGISTRY_TYPE type, HKEY root, const std::u16string &path, CRegistry &to)
{
    CRegistry from(type);
    if (!from.Exists(root, path.c_str()) || from.OpenKey(root, path.c_str()) != 0 ||
        to.OpenKey(root, path.c_str()) != 0)
    {
        return;
    }
    copyOpenKey(from, to);
    for (const std::u16string &child : from.SubKeyNames())
    {
        copyTree(type, root, path + u"\\" + child, to);
    }
}

void copyInto(_REGISTRY_TYPE type, HKEY root, const WCHAR *path, const WCHAR *file, CRegistry *other)
{
    if (path == nullptr || (other == nullptr && file == nullptr))
    {
        return;
    }
    if (other != nullptr)
    {
        copyTree(type, root, path, *other);
        return;
    }
    CRegistry target(RegistryTypeFile, file, 0);
    copyTree(type, root, path, target);
}
} // namespace

const WCHAR *CRegistry::GetKeySection(HKEY root, const WCHAR *path)
{
    static thread_local std::u16string section;
    const WCHAR *name = roots().front().name;
    for (const Root &candidate : roots())
    {
        name = candidate.key == root ? candidate.name : name;
    }
    section.assign(name).append(u"\\").append(path == nullptr ? u"" : path);
    return section.c_str();
}

void CRegistry::GetSectionKey(const WCHAR *section, HKEY &root, const WCHAR *&path)
{
    root = HKEY_CURRENT_USER;
    path = nullptr;
    for (const Root &candidate : roots())
    {
        const std::size_t length = wcslen(candidate.name);
        if (section != nullptr && wcsncmp(section, candidate.name, length) == 0 && section[length] == u'\\')
        {
            root = candidate.key;
            path = section + length + 1;
            return;
        }
    }
}

LONG CRegistry::ExportRegistry(HKEY root, const WCHAR *path, const WCHAR *file, CRegistry *other)
{
    copyInto(RegistryTypeRegistry, root, path, file, other);
    return Failed;
}

LONG CRegistry::ExportINIFile(HKEY root, const WCHAR *path, const WCHAR *file, CRegistry *other)
{
    copyInto(RegistryTypeFile, root, path, file, other);
    return Failed;
}

LONG CRegistry::ImportINIFile(const WCHAR *file)
{
    if (file != nullptr)
    {
        CRegistry target(RegistryTypeRegistry);
        target.AppendINIFile(file, nullptr, nullptr);
    }
    return Failed;
}

LONG CRegistry::AppendINIFile(const WCHAR *file, const WCHAR *find, const WCHAR *replace)
{
    if (file == nullptr)
    {
        return Failed;
    }
    CRegistry source(RegistryTypeFile, file, 0);
    for (const std::u16string &name : source.GetINIFile()->sectionNames())
    {
        HKEY root = nullptr;
        const WCHAR *path = nullptr;
        GetSectionKey(name.c_str(), root, path);
        if (path == nullptr || source.OpenKey(root, path) != 0)
        {
            continue;
        }
        const bool renames = find != nullptr && replace != nullptr;
        const std::u16string target = renames ? replacedIn(path, find, replace) : std::u16string(path);
        if (OpenKey(root, target.c_str()) == 0)
        {
            copyOpenKey(source, *this);
        }
    }
    return Failed;
}
