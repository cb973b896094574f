#include "dialogs/MRU.h"

#include "core/CRegistry.h"
#include "platform/text.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

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

std::optional<std::u16string> EntryOf(const std::u16string &path, DWORD number)
{
    CRegistry registry(RegistryTypeRegistry);
    std::array<WCHAR, 4096> text{};
    const bool read = registry.OpenKey(HKEY_CURRENT_USER, path.c_str()) == 0 &&
                      registry.QueryValue(NameOf(number).c_str(), text.data(),
                                          static_cast<DWORD>(text.size() * sizeof(WCHAR))) == 0;
    return read ? std::optional<std::u16string>(text.data()) : std::nullopt;
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
    for (DWORD number = 1; number <= count; ++number)
    {
        if (const auto entry = EntryOf(path, number))
        {
            SendMessageW(list, combo ? comboAdd : listAdd, 0, reinterpret_cast<LPARAM>(entry->c_str()));
        }
        else
        {
            DeleteRegistryValue(HKEY_CURRENT_USER, path.c_str(), NameOf(number).c_str());
        }
    }
    if (count != 0)
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
    SetToRegistrySZ(HKEY_CURRENT_USER, path.c_str(), NameOf(count + 1).c_str(), text);
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
