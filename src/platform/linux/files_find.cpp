// Finding files by pattern: the folder is listed once, at FindFirstFileW, and each entry looked at when its turn comes.
#include "platform/files.h"

#include "platform/kernel.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/files_times.h"
#include "platform/linux/folder_listing.h"
#include "platform/linux/handles.h"
#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

namespace
{
using zb::internal::HandleKind;
using zb::internal::UniqueFd;

struct Entry
{
    std::u16string name; ///< as the device shows it
    std::string hostName;
};

class FindObject final : public zb::internal::HandleObject
{
  public:
    FindObject(UniqueFd root, UniqueFd folder, std::vector<Entry> entries)
        : HandleObject(HandleKind::FindFile), m_root(std::move(root)), m_folder(std::move(folder)),
          m_entries(std::move(entries))
    {
    }

    /// The next entry that is still there; false at the end.
    bool next(WIN32_FIND_DATAW *data);

  private:
    UniqueFd m_root;
    UniqueFd m_folder;
    std::vector<Entry> m_entries;
    std::size_t m_next = 0;
};

void describe(const Entry &entry, const struct stat &status, const zb::internal::FileTimes &times,
              WIN32_FIND_DATAW *data)
{
    *data = WIN32_FIND_DATAW{};
    data->dwFileAttributes = zb::internal::attributesOf(status);
    data->ftCreationTime = times.created;
    data->ftLastAccessTime = times.accessed;
    data->ftLastWriteTime = times.written;
    const ULONGLONG size = S_ISREG(status.st_mode) ? static_cast<ULONGLONG>(status.st_size) : 0;
    data->nFileSizeHigh = static_cast<DWORD>(size >> 32U);
    data->nFileSizeLow = static_cast<DWORD>(size);
    std::copy(entry.name.begin(), entry.name.end(), data->cFileName);
}

bool FindObject::next(WIN32_FIND_DATAW *data)
{
    while (m_next < m_entries.size())
    {
        const Entry &entry = m_entries[m_next++];
        struct stat status = {};
        if (!zb::internal::lookAt(m_root, m_folder, entry.hostName, &status) ||
            (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)))
        {
            continue;
        }
        if (const auto times = zb::internal::timesOf(m_folder.get(), entry.hostName.c_str()))
        {
            describe(entry, status, *times, data);
            return true;
        }
    }
    return false;
}

/// '*' stands for any characters, '?' for one. Linear in the name but for going back to the last '*'.
bool matches(std::u16string_view name, std::u16string_view pattern)
{
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t resume = 0;
    while (n < name.size())
    {
        if (p < pattern.size() && pattern[p] == u'*')
        {
            star = p++;
            resume = n;
        }
        else if (p < pattern.size() &&
                 (pattern[p] == u'?' || zb::internal::sameName(pattern.substr(p, 1), name.substr(n, 1))))
        {
            ++p;
            ++n;
        }
        else if (star != std::u16string_view::npos)
        {
            p = star + 1;
            n = ++resume;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', p) == std::u16string_view::npos;
}

/// Names that a device path can't say are not shown.
bool canBeShown(const std::u16string &name)
{
    return name.size() < MAX_PATH && name.find(u'\\') == std::u16string::npos && name != u"." && name != u"..";
}

std::vector<Entry> listing(const UniqueFd &folder, const std::u16string &pattern)
{
    std::vector<Entry> found;
    zb::internal::FolderListing entries(folder);
    const bool all = pattern == u"*" || pattern == u"*.*";
    while (const dirent *entry = entries.next())
    {
        if (zb::internal::isTemporaryName(entry->d_name))
        {
            zb::internal::removeIfAbandoned(folder, entry->d_name);
            continue;
        }
        std::u16string name = zb::toUtf16(entry->d_name);
        if (canBeShown(name) && (all || matches(name, pattern)))
        {
            found.push_back({std::move(name), entry->d_name});
        }
    }
    std::sort(found.begin(), found.end(),
              [](const Entry &a, const Entry &b)
              {
                  const int order = _wcsicmp(a.name.c_str(), b.name.c_str());
                  return order != 0 ? order < 0 : a.hostName < b.hostName;
              });
    return found;
}

HANDLE fail(DWORD code)
{
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}
} // namespace

HANDLE FindFirstFileW(const WCHAR *pattern, WIN32_FIND_DATAW *data)
{
    zb::stoppingPoint();
    auto place = data == nullptr ? std::nullopt : zb::internal::findPatternPlace(pattern);
    if (!place)
    {
        return data == nullptr ? fail(ERROR_INVALID_PARAMETER) : INVALID_HANDLE_VALUE;
    }
    UniqueFd folder = zb::internal::openFolder(place->folder);
    if (!folder)
    {
        return fail(zb::internal::fileError(errno));
    }
    std::vector<Entry> entries = listing(folder, place->pattern);
    auto find = std::make_shared<FindObject>(std::move(place->folder.root), std::move(folder), std::move(entries));
    if (!find->next(data))
    {
        return fail(ERROR_FILE_NOT_FOUND);
    }
    HANDLE handle = zb::internal::insertHandle(std::move(find));
    return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
}

BOOL FindNextFileW(HANDLE handle, WIN32_FIND_DATAW *data)
{
    zb::stoppingPoint();
    const auto find = zb::internal::findAs<FindObject>(handle, HandleKind::FindFile);
    if (find == nullptr)
    {
        return FALSE;
    }
    if (data == nullptr)
    {
        return zb::internal::failWith(ERROR_INVALID_PARAMETER);
    }
    return find->next(data) || zb::internal::failWith(ERROR_NO_MORE_FILES);
}

BOOL FindClose(HANDLE handle)
{
    return zb::internal::removeHandle(handle, HandleKind::FindFile) != nullptr;
}
