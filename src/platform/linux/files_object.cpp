// Reading, writing and closing of open files.
#include "platform/linux/files_object.h"

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/file_steps.h"
#include "platform/linux/files_path.h"
#include "platform/linux/files_times.h"

#include <cerrno>
#include <limits>
#include <sys/stat.h>

namespace zb::internal
{
FileObject::FileObject(UniqueFd file, DWORD access)
    : HandleObject(HandleKind::File), m_file(std::move(file)), m_device(currentDevice()), m_access(access)
{
}

FileObject::FileObject(std::unique_ptr<NewFile> file, DWORD access, bool replace)
    : HandleObject(HandleKind::File), m_new(std::move(file)), m_device(currentDevice()), m_access(access),
      m_replace(replace)
{
}

bool FileObject::onClose()
{
    const std::unique_ptr<NewFile> finished = std::move(m_new);
    m_file = UniqueFd();
    if (finished == nullptr)
    {
        return true;
    }
    // A device that goes away closes files whose writers had not finished: the old ones stay.
    const auto device = m_device.lock();
    if (device == nullptr || device != currentDevice())
    {
        return failWith(ERROR_INVALID_HANDLE);
    }
    const int error = m_failure != 0 ? m_failure : finished->putInPlace(m_replace);
    return error == 0 || (error == EEXIST ? failWith(ERROR_FILE_EXISTS) : failFile(error));
}

bool FileObject::mayRead() const
{
    return (m_access & GENERIC_READ) != 0;
}

bool FileObject::mayWrite() const
{
    return (m_access & GENERIC_WRITE) != 0;
}

void FileObject::noteFailure(int error)
{
    m_failure = error;
}

std::shared_ptr<FileObject> fileOf(HANDLE handle)
{
    stoppingPoint();
    return findAs<FileObject>(handle, HandleKind::File);
}
} // namespace zb::internal

namespace
{
using zb::internal::failFile;
using zb::internal::failWith;
using zb::internal::fileOf;

constexpr DWORD errorNegativeSeek = 131;

DWORD failPosition(DWORD code)
{
    SetLastError(code);
    return INVALID_FILE_SIZE;
}

int whenceOf(DWORD from)
{
    switch (from)
    {
    case FILE_BEGIN:
        return SEEK_SET;
    case FILE_CURRENT:
        return SEEK_CUR;
    case FILE_END:
        return SEEK_END;
    default:
        return -1;
    }
}

/// Splits a 64-bit count; the low half may look like failure, which a last error of 0 then tells apart.
DWORD splitCount(LONGLONG count, DWORD *high)
{
    if (high == nullptr && count >= 0xFFFFFFFFLL)
    {
        return failPosition(ERROR_INVALID_PARAMETER);
    }
    if (high != nullptr)
    {
        *high = static_cast<DWORD>(static_cast<ULONGLONG>(count) >> 32U);
        SetLastError(ERROR_SUCCESS);
    }
    return static_cast<DWORD>(count);
}
} // namespace

BOOL ReadFile(HANDLE handle, void *buffer, DWORD bytes, DWORD *done, void * /*overlapped*/)
{
    DWORD ignored = 0;
    DWORD &count = done != nullptr ? *done : ignored;
    count = 0;
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    if (!file->mayRead() || (buffer == nullptr && bytes != 0))
    {
        return failWith(file->mayRead() ? ERROR_INVALID_PARAMETER : ERROR_ACCESS_DENIED);
    }
    while (count < bytes)
    {
        const ssize_t got = ::read(file->fd(), static_cast<char *>(buffer) + count, bytes - count);
        if (got == 0)
        {
            break;
        }
        if (got < 0 && errno != EINTR)
        {
            return failFile(errno);
        }
        count += got < 0 ? 0 : static_cast<DWORD>(got);
    }
    return TRUE;
}

BOOL WriteFile(HANDLE handle, const void *buffer, DWORD bytes, DWORD *done, void * /*overlapped*/)
{
    DWORD ignored = 0;
    DWORD &count = done != nullptr ? *done : ignored;
    count = 0;
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    if (!file->mayWrite() || (buffer == nullptr && bytes != 0))
    {
        return failWith(file->mayWrite() ? ERROR_INVALID_PARAMETER : ERROR_ACCESS_DENIED);
    }
    std::size_t written = 0;
    const int error = zb::internal::stepWrite(file->fd(), buffer, bytes, &written);
    count = static_cast<DWORD>(written);
    if (error != 0)
    {
        file->noteFailure(error);
        return failFile(error);
    }
    return TRUE;
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LONG *high, DWORD from)
{
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return INVALID_FILE_SIZE;
    }
    const int whence = whenceOf(from);
    if (whence < 0)
    {
        return failPosition(ERROR_INVALID_PARAMETER);
    }
    LONGLONG offset = distance;
    if (high != nullptr)
    {
        offset = static_cast<LONGLONG>((static_cast<ULONGLONG>(static_cast<DWORD>(*high)) << 32U) |
                                       static_cast<DWORD>(distance));
    }
    const off_t before = ::lseek(file->fd(), 0, SEEK_CUR);
    const off_t now = ::lseek(file->fd(), offset, whence);
    if (now < 0)
    {
        return failPosition(errno == EINVAL ? errorNegativeSeek : zb::internal::fileError(errno));
    }
    DWORD upper = 0;
    const DWORD lower = splitCount(now, high != nullptr ? &upper : nullptr);
    if (high != nullptr)
    {
        *high = static_cast<LONG>(upper);
    }
    else if (now >= 0xFFFFFFFFLL)
    {
        ::lseek(file->fd(), before, SEEK_SET);
    }
    return lower;
}

BOOL SetEndOfFile(HANDLE handle)
{
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    if (!file->mayWrite())
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    const int error = zb::internal::stepTruncate(file->fd(), ::lseek(file->fd(), 0, SEEK_CUR));
    if (error != 0)
    {
        file->noteFailure(error);
        return failFile(error);
    }
    return TRUE;
}

DWORD GetFileSize(HANDLE handle, DWORD *high)
{
    const auto file = fileOf(handle);
    struct stat status = {};
    if (file == nullptr)
    {
        return INVALID_FILE_SIZE;
    }
    return ::fstat(file->fd(), &status) == 0 ? splitCount(status.st_size, high)
                                             : failPosition(zb::internal::fileError(errno));
}

BOOL FlushFileBuffers(HANDLE handle)
{
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    if (!file->mayWrite())
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    const int error = zb::internal::stepSync(file->fd());
    if (error != 0)
    {
        file->noteFailure(error);
        return failFile(error);
    }
    return TRUE;
}

BOOL GetFileTime(HANDLE handle, FILETIME *created, FILETIME *accessed, FILETIME *written)
{
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    const auto times = zb::internal::timesOf(file->fd(), "");
    if (!times)
    {
        return failFile(errno);
    }
    const auto give = [](FILETIME *target, const FILETIME &time)
    {
        if (target != nullptr)
        {
            *target = time;
        }
    };
    give(created, times->created);
    give(accessed, times->accessed);
    give(written, times->written);
    return TRUE;
}

BOOL SetFileTime(HANDLE handle, const FILETIME * /*created*/, const FILETIME *accessed, const FILETIME *written)
{
    const auto file = fileOf(handle);
    if (file == nullptr)
    {
        return FALSE;
    }
    if (!file->mayWrite())
    {
        return failWith(ERROR_ACCESS_DENIED);
    }
    const timespec times[] = {zb::internal::hostTime(accessed), zb::internal::hostTime(written)};
    return ::futimens(file->fd(), times) == 0 || failFile(errno);
}
