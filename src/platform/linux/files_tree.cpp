// Deleting, moving, copying, folders and attributes.
#include "platform/files.h"

#include "platform/kernel.h"
#include "platform/linux/file_steps.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/files_times.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>

namespace
{
using zb::internal::failFile;
using zb::internal::failWith;
using zb::internal::FilePlace;
using zb::internal::findPlace;
using zb::internal::NewFile;
using zb::internal::UniqueFd;

constexpr DWORD errorNotAFolder = 267;

bool isSameEntry(const FilePlace &a, const FilePlace &b)
{
    return a.found && b.found && a.status.st_dev == b.status.st_dev && a.status.st_ino == b.status.st_ino;
}

/// The very same name in the same folder (two names of one file are two files to MoveFileW).
bool isSameName(const FilePlace &a, const FilePlace &b)
{
    struct stat first = {};
    struct stat second = {};
    return isSameEntry(a, b) && a.name == b.name && ::fstat(a.folder.get(), &first) == 0 &&
           ::fstat(b.folder.get(), &second) == 0 && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

UniqueFd openForReading(const FilePlace &place)
{
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    return UniqueFd(place.linked ? ::open(("/proc/self/fd/" + std::to_string(place.linked.get())).c_str(), flags)
                                 : ::openat(place.folder.get(), place.name.c_str(), flags | O_NOFOLLOW));
}

/// 0 or an errno.
int copyBytes(int from, int to)
{
    const auto buffer = std::make_unique<std::array<char, 256UL * 1024>>();
    for (;;)
    {
        zb::stoppingPoint();
        const ssize_t got = ::read(from, buffer->data(), buffer->size());
        if (got < 0 && errno == EINTR)
        {
            continue;
        }
        if (got <= 0)
        {
            return got < 0 ? errno : 0;
        }
        std::size_t done = 0;
        const int error = zb::internal::stepWrite(to, buffer->data(), static_cast<std::size_t>(got), &done);
        if (error != 0)
        {
            return error;
        }
    }
}

/// Bytes, attributes and the time of writing of a file into a new one; 0 or an errno.
int copyFile(const FilePlace &from, const FilePlace &to, bool replace)
{
    const UniqueFd source = openForReading(from);
    if (!source)
    {
        return errno;
    }
    NewFile target(to.folder, to.name);
    if (target.error() != 0)
    {
        return target.error();
    }
    int error = ::fchmod(target.fd(), from.status.st_mode & 07777U) == 0 ? copyBytes(source.get(), target.fd()) : errno;
    const timespec times[] = {{0, UTIME_NOW}, from.status.st_mtim};
    if (error == 0 && ::futimens(target.fd(), times) != 0)
    {
        error = errno;
    }
    return error != 0 ? error : target.putInPlace(replace);
}

bool removeEntry(const FilePlace &place, int flags)
{
    return ::unlinkat(place.folder.get(), place.name.c_str(), flags) == 0 || failFile(errno);
}

/// To a folder on another file system (a card): copied, and only then deleted.
bool moveAcross(const FilePlace &from, const FilePlace &to)
{
    if (!from.isFile())
    {
        return failFile(EXDEV);
    }
    const int error = copyFile(from, to, false);
    return error == 0 ? removeEntry(from, 0) : failFile(error);
}

/// `renames`: the file is given its own name in another case, so that the name is no obstacle to itself.
int renameEntry(const FilePlace &from, const FilePlace &to, bool renames)
{
    if (!renames)
    {
        return zb::internal::renameNew(from.folder.get(), from.name, to.folder.get(), to.name);
    }
    return ::renameat(from.folder.get(), from.name.c_str(), to.folder.get(), to.name.c_str()) == 0 ? 0 : errno;
}

bool moveEntry(const FilePlace &from, const FilePlace &to, bool renames)
{
    const int error = renameEntry(from, to, renames);
    if (error == EXDEV)
    {
        return moveAcross(from, to);
    }
    if (error != 0)
    {
        return failFile(error);
    }
    const int synced = zb::internal::stepSyncFolder(to.folder.get());
    zb::internal::stepSyncFolder(from.folder.get());
    return synced == 0 || failFile(synced);
}
} // namespace

BOOL DeleteFileW(const WCHAR *path)
{
    zb::stoppingPoint();
    const auto place = findPlace(path);
    if (!place)
    {
        return FALSE;
    }
    if (!place->found)
    {
        return failWith(ERROR_FILE_NOT_FOUND);
    }
    return place->isFolder() || place->isReadOnly() ? failWith(ERROR_ACCESS_DENIED) : removeEntry(*place, 0);
}

BOOL MoveFileW(const WCHAR *from, const WCHAR *to)
{
    zb::stoppingPoint();
    const auto source = findPlace(from);
    if (!source)
    {
        return FALSE;
    }
    if (!source->found)
    {
        return failWith(ERROR_FILE_NOT_FOUND);
    }
    auto target = findPlace(to);
    if (!target)
    {
        return FALSE;
    }
    if (source->isRoot || target->isRoot)
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    const bool renames = isSameName(*source, *target);
    if (target->found && !renames)
    {
        return failWith(ERROR_ALREADY_EXISTS);
    }
    if (renames)
    {
        target->name = zb::internal::lastPartOf(to);
    }
    return moveEntry(*source, *target, renames);
}

BOOL CopyFileW(const WCHAR *from, const WCHAR *to, BOOL failIfExists)
{
    zb::stoppingPoint();
    const auto source = findPlace(from);
    if (!source)
    {
        return FALSE;
    }
    if (!source->isFile())
    {
        return failWith(source->found ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
    }
    const auto target = findPlace(to);
    if (!target)
    {
        return FALSE;
    }
    if (target->found && failIfExists != FALSE)
    {
        return failWith(ERROR_FILE_EXISTS);
    }
    if (isSameEntry(*source, *target))
    {
        return failWith(ERROR_SHARING_VIOLATION);
    }
    if (target->found && (!target->isFile() || target->isReadOnly()))
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    const int error = copyFile(*source, *target, failIfExists == FALSE);
    return error == 0 || (error == EEXIST ? failWith(ERROR_FILE_EXISTS) : failFile(error));
}

BOOL CreateDirectoryW(const WCHAR *path, const void * /*security*/)
{
    zb::stoppingPoint();
    const auto place = findPlace(path);
    if (!place)
    {
        return FALSE;
    }
    if (place->found)
    {
        return failWith(ERROR_ALREADY_EXISTS);
    }
    if (::mkdirat(place->folder.get(), place->name.c_str(), 0777) != 0)
    {
        return failFile(errno);
    }
    const int error = zb::internal::stepSyncFolder(place->folder.get());
    return error == 0 || failFile(error);
}

BOOL RemoveDirectoryW(const WCHAR *path)
{
    zb::stoppingPoint();
    const auto place = findPlace(path);
    if (!place)
    {
        return FALSE;
    }
    if (!place->found)
    {
        return failWith(ERROR_FILE_NOT_FOUND);
    }
    if (!place->isFolder())
    {
        return failWith(errorNotAFolder);
    }
    if (place->isRoot || place->isReadOnly() || place->linked)
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    // A folder that only holds what killed writers left is empty to its user.
    zb::internal::removeAbandoned(zb::internal::openFolder(*place));
    return removeEntry(*place, AT_REMOVEDIR);
}

DWORD GetFileAttributesW(const WCHAR *path)
{
    zb::stoppingPoint();
    const auto place = findPlace(path);
    if (!place || !place->found)
    {
        if (place)
        {
            SetLastError(ERROR_FILE_NOT_FOUND);
        }
        return INVALID_FILE_ATTRIBUTES;
    }
    return zb::internal::attributesOf(place->status);
}

BOOL SetFileAttributesW(const WCHAR *path, DWORD attributes)
{
    zb::stoppingPoint();
    const auto place = findPlace(path);
    if (!place)
    {
        return FALSE;
    }
    if (!place->found)
    {
        return failWith(ERROR_FILE_NOT_FOUND);
    }
    const UniqueFd entry = place->isFolder() ? zb::internal::openFolder(*place) : openForReading(*place);
    const mode_t mode = zb::internal::modeFor(place->status.st_mode, attributes);
    return (entry && ::fchmod(entry.get(), mode) == 0) || failFile(errno);
}
