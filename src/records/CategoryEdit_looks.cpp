// Colours and icons of single categories.
#include "records/CategoryEdit.h"

#include "core/CRegistry.h"
#include "platform/files.h"
#include "platform/text.h"
#include "records/CCategoryColor.h"
#include "records/CategoryIcon.h"

#include <array>

namespace
{
std::u16string iconFolder()
{
    std::array<WCHAR, MAX_PATH> folder{};
    CRegistry settings;
    const bool told = settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik") == 0 &&
                      settings.QueryValue(u"IconPath", folder.data(), static_cast<DWORD>(folder.size())) == 0;
    return told ? std::u16string(folder.data()) : std::u16string();
}

bool isFileName(const WCHAR *name)
{
    return name != nullptr && *name != 0 && wcspbrk(name, u"\\/") == nullptr;
}

/// Deletes a read-only file too.
void forceDelete(const std::u16string &path)
{
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path.c_str());
}
} // namespace

namespace zb
{
std::u16string categoryIconPath(const WCHAR *category)
{
    const std::u16string folder = iconFolder();
    return folder.empty() || !isFileName(category) ? std::u16string() : folder + u"\\" + category + u".bmp";
}

void copyCategoryIcon(const WCHAR *from, const WCHAR *to)
{
    const std::u16string source = categoryIconPath(from);
    const std::u16string target = categoryIconPath(to);
    if (!source.empty() && !target.empty() && _wcsicmp(source.c_str(), target.c_str()) != 0)
    {
        CopyFileW(source.c_str(), target.c_str(), FALSE);
    }
}

bool setCategoryIcon(const WCHAR *name, const WCHAR *file)
{
    const std::u16string target = categoryIconPath(name);
    if (target.empty())
    {
        return false;
    }
    if (file == nullptr || *file == 0)
    {
        forceDelete(target);
        return true;
    }
    const std::u16string source = iconFolder() + u"\\" + file;
    if (!isFileName(file) || GetFileAttributesW(source.c_str()) == INVALID_FILE_ATTRIBUTES)
    {
        return false;
    }
    if (_wcsicmp(source.c_str(), target.c_str()) == 0)
    {
        return true; // it has this icon already, which deleting first would lose
    }
    forceDelete(target);
    return CopyFileW(source.c_str(), target.c_str(), FALSE) != FALSE;
}

bool setCategoryColor(const WCHAR *name, COLORREF color)
{
    CRegistry settings;
    if (name == nullptr || *name == 0 || wcspbrk(name, u"=\r\n") != nullptr ||
        settings.OpenKey(HKEY_CURRENT_USER, CATEGORY_COLORS_KEY) != 0)
    {
        return false;
    }
    CCategoryColor::ClearInit();
    if (color != 0)
    {
        return settings.SetValue(name, color) == 0 && settings.FlushKey() == 0;
    }
    DWORD old = 0;
    const bool had = settings.QueryValue(name, &old) == 0;
    return !had || (settings.DeleteValue(name) == 0 && settings.FlushKey() == 0);
}

COLORREF categoryColor(const WCHAR *name)
{
    CRegistry settings;
    DWORD color = 0;
    const bool told = name != nullptr && *name != 0 && settings.OpenKey(HKEY_CURRENT_USER, CATEGORY_COLORS_KEY) == 0 &&
                      settings.QueryValue(name, &color) == 0;
    return told && color <= 0xFFFFFF ? color : 0;
}
} // namespace zb
