// CreateFileW: which of the two ways to open (in place, or new and put in place at the end) a call means.
#include "platform/files.h"

#include "platform/kernel.h"
#include "platform/linux/files_object.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_times.h"

#include <cerrno>
#include <fcntl.h>

namespace
{
using zb::internal::FileObject;
using zb::internal::FilePlace;
using zb::internal::NewFile;
using zb::internal::UniqueFd;

HANDLE fail(DWORD code)
{
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}

HANDLE handleFor(std::shared_ptr<FileObject> file, DWORD success)
{
    HANDLE handle = zb::internal::insertHandle(std::move(file));
    if (handle == nullptr)
    {
        return INVALID_HANDLE_VALUE;
    }
    SetLastError(success);
    return handle;
}

int hostAccess(DWORD access)
{
    if ((access & GENERIC_WRITE) == 0)
    {
        return O_RDONLY;
    }
    return (access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY;
}

HANDLE openInPlace(const FilePlace &place, DWORD access, DWORD success)
{
    if (!place.isFile() || (place.isReadOnly() && (access & GENERIC_WRITE) != 0))
    {
        return fail(ERROR_ACCESS_DENIED);
    }
    const int flags = hostAccess(access) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    UniqueFd file;
    if (place.linked)
    {
        // What was found to lie inside the device is opened, not what the link may point at by now.
        file = UniqueFd(::open(("/proc/self/fd/" + std::to_string(place.linked.get())).c_str(), flags));
    }
    else
    {
        file = UniqueFd(::openat(place.folder.get(), place.name.c_str(), flags | O_NOFOLLOW));
    }
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0)
    {
        return fail(zb::internal::fileError(errno));
    }
    if (!S_ISREG(status.st_mode))
    {
        return fail(ERROR_ACCESS_DENIED);
    }
    return handleFor(std::make_shared<FileObject>(std::move(file), access), success);
}

/// `attributes` of nothing keep those of the file that is replaced.
HANDLE openNew(const FilePlace &place, DWORD access, bool replace, std::optional<DWORD> attributes, DWORD success)
{
    if (place.found && (!place.isFile() || place.isReadOnly()))
    {
        return fail(ERROR_ACCESS_DENIED);
    }
    auto file = std::make_unique<NewFile>(place.folder, place.name);
    struct stat status = {};
    int error = file->error();
    if (error == 0 && ::fstat(file->fd(), &status) != 0)
    {
        error = errno;
    }
    if (error == 0)
    {
        // What replaces a file that only its owner may read must be no more open, from its first byte on.
        const mode_t mode = place.found ? place.status.st_mode : status.st_mode;
        const DWORD wanted = attributes ? *attributes : zb::internal::attributesOf(place.status);
        error = ::fchmod(file->fd(), zb::internal::modeFor(mode, wanted)) == 0 ? 0 : errno;
    }
    if (error != 0)
    {
        return fail(zb::internal::fileError(error));
    }
    return handleFor(std::make_shared<FileObject>(std::move(file), access, replace), success);
}

HANDLE openBy(DWORD disposition, const FilePlace &place, DWORD access, DWORD attributes)
{
    switch (disposition)
    {
    case CREATE_NEW:
        return place.found ? fail(ERROR_FILE_EXISTS) : openNew(place, access, false, attributes, ERROR_SUCCESS);
    case CREATE_ALWAYS:
        return openNew(place, access, true, attributes, place.found ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    case OPEN_EXISTING:
        return place.found ? openInPlace(place, access, ERROR_SUCCESS) : fail(ERROR_FILE_NOT_FOUND);
    case OPEN_ALWAYS:
        return place.found ? openInPlace(place, access, ERROR_ALREADY_EXISTS)
                           : openNew(place, access, true, attributes, ERROR_SUCCESS);
    case TRUNCATE_EXISTING:
        return place.found ? openNew(place, access, true, std::nullopt, ERROR_SUCCESS) : fail(ERROR_FILE_NOT_FOUND);
    default:
        return fail(ERROR_INVALID_PARAMETER);
    }
}
} // namespace

HANDLE CreateFileW(const WCHAR *path, DWORD access, DWORD /*share*/, const void * /*security*/, DWORD disposition,
                   DWORD attributes, HANDLE /*templateFile*/)
{
    zb::stoppingPoint();
    const auto place = zb::internal::findPlace(path);
    if (!place)
    {
        return INVALID_HANDLE_VALUE;
    }
    return place->isFolder() ? fail(ERROR_ACCESS_DENIED) : openBy(disposition, *place, access, attributes);
}
