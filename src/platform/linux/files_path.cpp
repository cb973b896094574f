#include "platform/linux/files_path.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/folder_listing.h"
#include "platform/text.h"

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <vector>

namespace zb::internal
{
namespace
{
constexpr DWORD errorTooManyFiles = 4;
constexpr DWORD errorNotSameDevice = 17;
constexpr DWORD errorGeneralFailure = 31;
/// Longer paths are refused: no call of the device takes them.
constexpr std::size_t longestPath = 4096;

using Parts = std::vector<std::u16string>;

bool isGoodCharacter(WCHAR ch)
{
    return ch >= 0x20 && ch != u'/';
}

/// Half a surrogate pair has no name on the host.
bool isWellFormed(std::u16string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if ((text[i] & 0xFC00U) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00U) == 0xDC00)
        {
            ++i;
        }
        else if ((text[i] & 0xF800U) == 0xD800)
        {
            return false;
        }
    }
    return true;
}

/// Parts between the backslashes; empty ones and "." say nothing.
std::optional<Parts> partsOf(const WCHAR *path)
{
    if (path == nullptr || path[0] == 0)
    {
        return std::nullopt;
    }
    const std::u16string_view text(path);
    if (text.size() > longestPath || !isWellFormed(text))
    {
        return std::nullopt;
    }
    Parts parts;
    std::u16string part;
    const auto finish = [&]
    {
        if (!part.empty() && part != u".")
        {
            parts.push_back(part);
        }
        part.clear();
    };
    for (const WCHAR ch : text)
    {
        if (ch != u'\\' && !isGoodCharacter(ch))
        {
            return std::nullopt;
        }
        ch == u'\\' ? finish() : part.push_back(ch);
    }
    finish();
    for (const std::u16string &each : parts)
    {
        const std::string name = toUtf8(each);
        if (each == u".." || name.size() > NAME_MAX || isTemporaryName(name))
        {
            return std::nullopt;
        }
    }
    return parts;
}

std::string pathOf(const UniqueFd &fd)
{
    std::array<char, PATH_MAX> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(fd.get());
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    return length <= 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(length));
}

/// Asked of what is open already, so that nothing can change between the question and the use.
bool isInside(const UniqueFd &root, const UniqueFd &target)
{
    const std::string outer = pathOf(root) + "/";
    return outer.size() > 1 && pathOf(target).compare(0, outer.size(), outer) == 0;
}

/// The host's name for a part, or nothing when the folder has no such entry.
std::optional<std::string> entryNamed(const UniqueFd &folder, const std::u16string &part)
{
    struct stat status = {};
    std::string exact = toUtf8(part);
    if (::fstatat(folder.get(), exact.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
    {
        return exact;
    }
    FolderListing entries(folder);
    std::optional<std::string> best;
    while (const dirent *entry = entries.next())
    {
        const std::string name = entry->d_name;
        if ((!best || name < *best) && sameName(toUtf16(name), part))
        {
            best = name;
        }
    }
    return best;
}

/// Fills found, status and linked for the name that stands in the place. False for a link that leads out or nowhere.
bool lookAtLast(FilePlace &place)
{
    if (::fstatat(place.folder.get(), place.name.c_str(), &place.status, AT_SYMLINK_NOFOLLOW) != 0)
    {
        return true;
    }
    if (S_ISLNK(place.status.st_mode))
    {
        place.linked = UniqueFd(::openat(place.folder.get(), place.name.c_str(), O_PATH | O_CLOEXEC));
        if (!place.linked || !isInside(place.root, place.linked) || ::fstat(place.linked.get(), &place.status) != 0)
        {
            return false;
        }
    }
    place.found = true;
    return true;
}

bool stepInto(FilePlace &place, const std::u16string &part)
{
    const auto name = entryNamed(place.folder, part);
    if (!name)
    {
        return false;
    }
    place.name = *name;
    place.found = false;
    place.linked = UniqueFd();
    if (!lookAtLast(place) || !place.isFolder())
    {
        return false;
    }
    UniqueFd next = openFolder(place);
    if (!next)
    {
        return false;
    }
    place.folder = std::move(next);
    return true;
}

std::optional<FilePlace> placeOfRoot()
{
    const auto device = currentDevice();
    FilePlace place;
    if (device != nullptr)
    {
        place.root = UniqueFd(::open(device->files.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        place.folder = UniqueFd(::fcntl(place.root.get(), F_DUPFD_CLOEXEC, 0));
    }
    if (!place.folder || ::fstat(place.folder.get(), &place.status) != 0)
    {
        return std::nullopt;
    }
    place.name.assign(1, '.');
    place.found = place.isRoot = true;
    return place;
}

/// The place of the last of `count` parts.
std::optional<FilePlace> placeOf(const Parts &parts, std::size_t count)
{
    std::optional<FilePlace> place = placeOfRoot();
    if (!place || count == 0)
    {
        return place;
    }
    for (std::size_t i = 0; i + 1 < count; ++i)
    {
        if (!stepInto(*place, parts[i]))
        {
            return std::nullopt;
        }
    }
    place->isRoot = place->found = false;
    place->linked = UniqueFd();
    place->name = entryNamed(place->folder, parts[count - 1]).value_or(toUtf8(parts[count - 1]));
    return lookAtLast(*place) ? std::move(place) : std::nullopt;
}
} // namespace

std::optional<FilePlace> findPlace(const WCHAR *path)
{
    const auto parts = partsOf(path);
    auto place = parts ? placeOf(*parts, parts->size()) : std::nullopt;
    const bool isPattern = parts && !parts->empty() && parts->back().find_first_of(u"*?") != std::u16string::npos;
    if (!place || isPattern)
    {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    return place;
}

std::string lastPartOf(const WCHAR *path)
{
    const auto parts = partsOf(path);
    return parts && !parts->empty() ? toUtf8(parts->back()) : std::string();
}

std::optional<PatternPlace> findPatternPlace(const WCHAR *path)
{
    const auto parts = partsOf(path);
    if (!parts || parts->empty())
    {
        SetLastError(parts ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    auto folder = placeOf(*parts, parts->size() - 1);
    if (!folder || !folder->isFolder())
    {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return std::nullopt;
    }
    return PatternPlace{std::move(*folder), parts->back()};
}

UniqueFd openFolder(const FilePlace &place)
{
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    return UniqueFd(place.linked ? ::openat(place.linked.get(), ".", flags)
                                 : ::openat(place.folder.get(), place.name.c_str(), flags | O_NOFOLLOW));
}

bool lookAt(const UniqueFd &root, const UniqueFd &folder, const std::string &name, struct stat *status)
{
    if (::fstatat(folder.get(), name.c_str(), status, AT_SYMLINK_NOFOLLOW) != 0)
    {
        return false;
    }
    if (!S_ISLNK(status->st_mode))
    {
        return true;
    }
    const UniqueFd target(::openat(folder.get(), name.c_str(), O_PATH | O_CLOEXEC));
    return target && isInside(root, target) && ::fstat(target.get(), status) == 0;
}

DWORD fileError(int error)
{
    switch (error)
    {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ENAMETOOLONG:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case ELOOP:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case EMFILE:
    case ENFILE:
        return errorTooManyFiles;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EXDEV:
        return errorNotSameDevice;
    case EIO:
        return ERROR_WRITE_FAULT;
    case EBUSY:
    case ETXTBSY:
        return ERROR_SHARING_VIOLATION;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    default:
        return errorGeneralFailure;
    }
}

bool failWith(DWORD code)
{
    SetLastError(code);
    return false;
}

bool failFile(int error)
{
    return failWith(fileError(error));
}

bool sameName(std::u16string_view a, std::u16string_view b)
{
    return a.size() == b.size() && _wcsnicmp(a.data(), b.data(), a.size()) == 0;
}
} // namespace zb::internal
