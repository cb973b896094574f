#include "dialogs/MRU.h"

#include "core/CRegistry.h"
#include "platform/text.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace
{
constexpr const WCHAR *menusKey = u"Software\\Kelvo\\Zembrik\\Menus";
constexpr UINT comboReset = 331;
constexpr UINT comboAdd = 323;
constexpr UINT listAdd = 384;

std::u16string PathOf(const WCHAR *name)
{
    return std::u16string(menusKey) + u"\\" + name + u"\\MRU";
}

std::u16string NameOf(DWORD number)
{
    std::array<WCHAR, 16> name{};
    wsprintfW(name.data(), u"%i", static_cast<int>(number));
    return name.data();
}

DWORD CountOf(const std::u16string &path)
{
    DWORD keys = 0;
    DWORD values = 0;
    return QueryKey(HKEY_CURRENT_USER, path.c_str(), &keys, &values) == 0 ? values : 0;
}

/// Nothing for a value that is not there or is no text.
std::optional<std::u16string> EntryOf(const std::u16string &path, DWORD number)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, 0, &key) != 0)
    {
        return std::nullopt;
    }
    const std::u16string name = NameOf(number);
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    LONG result = RegQueryValueExW(key, name.c_str(), nullptr, &type, nullptr, &bytes);
    std::u16string text(bytes / sizeof(WCHAR) + 1, 0);
    if (result == 0 && type == REG_SZ)
    {
        result = RegQueryValueExW(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE *>(text.data()), &bytes);
    }
    RegCloseKey(key);
    return result == 0 && type == REG_SZ ? std::optional<std::u16string>(text.c_str()) : std::nullopt;
}

/// Writes what could be read under the numbers from 1 and deletes the rest: numbers without a gap, since saving goes by
/// their count. In this order no text is ever missing, whenever it is cut short.
void Renumber(const std::u16string &path, const std::vector<std::u16string> &entries, DWORD count)
{
    DWORD number = 0;
    for (const std::u16string &entry : entries)
    {
        SetToRegistrySZ(HKEY_CURRENT_USER, path.c_str(), NameOf(++number).c_str(), entry.c_str());
    }
    while (number < count)
    {
        DeleteRegistryValue(HKEY_CURRENT_USER, path.c_str(), NameOf(++number).c_str());
    }
}

WCHAR *CopyOf(const std::u16string &text)
{
    auto *copy = static_cast<WCHAR *>(std::malloc((text.size() + 1) * sizeof(WCHAR)));
    if (copy != nullptr)
    {
        std::memcpy(copy, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
    }
    return copy;
}
} // namespace

void MRU(HWND dialog, const WCHAR *name, int control, bool combo)
{
    const HWND list = GetDlgItem(dialog, control);
    if (combo)
    {
        SendMessageW(list, comboReset, 0, 0);
    }
    const std::u16string path = PathOf(name);
    const DWORD count = CountOf(path);
    std::vector<std::u16string> entries;
    for (DWORD number = 1; number <= count; ++number)
    {
        if (auto entry = EntryOf(path, number))
        {
            entries.push_back(std::move(*entry));
        }
    }
    if (entries.size() < count)
    {
        Renumber(path, entries, count);
    }
    for (const std::u16string &entry : entries)
    {
        SendMessageW(list, combo ? comboAdd : listAdd, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    }
    if (!entries.empty())
    {
        ShowWindow(list, SW_SHOW);
    }
}

void MRUSave(const WCHAR *name, const WCHAR *text)
{
    if (text == nullptr || *text == 0)
    {
        return;
    }
    const std::u16string path = PathOf(name);
    const DWORD count = CountOf(path);
    for (DWORD number = 0; number <= count; ++number)
    {
        const auto entry = EntryOf(path, number);
        if (entry && lstrcmpW(entry->c_str(), text) == 0)
        {
            return;
        }
    }
    DWORD fresh = count + 1;
    while (EntryOf(path, fresh))
    {
        ++fresh; // somebody else's list has gaps
    }
    SetToRegistrySZ(HKEY_CURRENT_USER, path.c_str(), NameOf(fresh).c_str(), text);
}

void MRUStrings(const WCHAR *name, WCHAR ***strings, int *count)
{
    const std::u16string path = PathOf(name);
    const auto entry = CountOf(path) == 0 ? std::nullopt : EntryOf(path, 1);
    *strings = static_cast<WCHAR **>(std::malloc(sizeof(WCHAR *)));
    *count = 0;
    if (*strings != nullptr)
    {
        **strings = CopyOf(entry.value_or(u""));
        *count = entry ? 1 : 0;
    }
}

void CleanupMRUStrings(WCHAR ***strings, int count)
{
    if (strings == nullptr || *strings == nullptr)
    {
        return;
    }
    // An empty list holds its one empty text all the same.
    for (int n = 0; n < (count > 0 ? count : 1); ++n)
    {
        std::free((*strings)[n]);
    }
    std::free(*strings);
    *strings = nullptr;
}
