#include "interchange/contact_pictures.h"

#include "core/CRegistry.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "platform/undo.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestExtension = 5;
/// Bytes that the name of a file may have on the disk below.
constexpr std::size_t longestHostName = 240;
/// With its digits a third longer it still fits into what is read of one line.
constexpr DWORD largestPicture = 8 * 1024 * 1024;

std::u16string pictureFolder()
{
    return SettingsBaseFolder() + u"\\Kelvo\\ContactPics";
}

/// Names of the files with this name and any extension.
std::vector<std::u16string> filesOf(const std::u16string &fileAs)
{
    std::vector<std::u16string> names;
    if (!canNamePicture(fileAs))
    {
        return names;
    }
    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW((pictureFolder() + u"\\" + fileAs + u".*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
    {
        return names;
    }
    do
    {
        const std::u16string name = data.cFileName;
        const std::u16string stem = name.substr(0, name.rfind(u'.'));
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && _wcsicmp(stem.c_str(), fileAs.c_str()) == 0)
        {
            names.push_back(name);
        }
    } while (FindNextFileW(find, &data) != FALSE);
    FindClose(find);
    return names;
}

bool writeFile(const std::u16string &path, const std::string &bytes)
{
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    DWORD done = 0;
    const bool written = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) != FALSE &&
                         done == bytes.size();
    return CloseHandle(file) != FALSE && written;
}
} // namespace

bool canNamePicture(const std::u16string &fileAs)
{
    const bool fits = !fileAs.empty() && fileAs.size() + pictureFolder().size() + longestExtension < MAX_PATH &&
                      toUtf8(std::u16string_view(fileAs)).size() + longestExtension <= longestHostName;
    return fits && std::none_of(fileAs.begin(), fileAs.end(),
                                [](char16_t ch) {
                                    return ch < 0x20 ||
                                           std::u16string_view(u"\\/:*?\"<>|").find(ch) != std::u16string_view::npos;
                                });
}

bool hasPicture(const std::u16string &fileAs)
{
    return !filesOf(fileAs).empty();
}

std::string readPicture(const std::u16string &fileAs)
{
    for (const std::u16string &name : filesOf(fileAs))
    {
        const HANDLE file = CreateFileW((pictureFolder() + u"\\" + name).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
        {
            continue;
        }
        const DWORD size = GetFileSize(file, nullptr);
        std::string bytes(size <= largestPicture ? size : 0, '\0');
        DWORD done = 0;
        const bool read = size <= largestPicture && ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) != FALSE;
        CloseHandle(file);
        if (read && done == bytes.size())
        {
            return bytes;
        }
    }
    return {};
}

bool putPicture(const std::u16string &fileAs, const CardPicture &picture)
{
    const std::u16string name = fileAs + picture.extension;
    const std::vector<std::u16string> former = filesOf(fileAs);
    CreateDirectoryW((SettingsBaseFolder() + u"\\Kelvo").c_str(), nullptr);
    CreateDirectoryW(pictureFolder().c_str(), nullptr);
    watchFile(pictureFolder() + u"\\" + name);
    std::for_each(former.begin(), former.end(),
                  [](const std::u16string &each) { watchFile(pictureFolder() + u"\\" + each); });
    if (!canNamePicture(fileAs) || !writeFile(pictureFolder() + u"\\" + name, picture.bytes))
    {
        return false;
    }
    for (const std::u16string &each : former)
    {
        if (_wcsicmp(each.c_str(), name.c_str()) != 0)
        {
            DeleteFileW((pictureFolder() + u"\\" + each).c_str());
        }
    }
    return true;
}

void renamePicture(const std::u16string &from, const std::u16string &to)
{
    if (!canNamePicture(to) || hasPicture(to))
    {
        return;
    }
    for (const std::u16string &name : filesOf(from))
    {
        const std::u16string extension = name.substr(name.rfind(u'.'));
        const std::u16string former = pictureFolder() + u"\\" + name;
        const std::u16string named = pictureFolder() + u"\\" + to + extension;
        watchFile(former);
        watchFile(named);
        MoveFileW(former.c_str(), named.c_str());
    }
}
} // namespace zb::interchange
