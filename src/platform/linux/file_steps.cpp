#include "platform/linux/file_steps.h"

#include "platform/linux/file_faults.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zb
{
namespace
{
std::atomic<bool> faultsSet{false};

FileFaultHook &faultHook()
{
    static auto *hook = new FileFaultHook;
    return *hook;
}

FileFault faultFor(FileStep step, std::size_t bytes = 0)
{
    return faultsSet.load(std::memory_order_acquire) ? faultHook()(step, bytes) : FileFault{};
}

int resultOf(int returned)
{
    return returned == 0 ? 0 : errno;
}
} // namespace

void setFileFaults(FileFaultHook hook)
{
    faultsSet.store(false, std::memory_order_release);
    faultHook() = std::move(hook);
    faultsSet.store(static_cast<bool>(faultHook()), std::memory_order_release);
}

namespace internal
{
int stepCreate()
{
    return faultFor(FileStep::Create).error;
}

int stepWrite(int file, const void *bytes, std::size_t count, std::size_t *done)
{
    *done = 0;
    while (*done < count)
    {
        const FileFault fault = faultFor(FileStep::Write, count - *done);
        const std::size_t now = std::min(count - *done, fault.passes);
        const ssize_t written = now == 0 ? 0 : ::write(file, static_cast<const char *>(bytes) + *done, now);
        if (written < 0 && errno != EINTR)
        {
            return errno;
        }
        *done += written < 0 ? 0 : static_cast<std::size_t>(written);
        if (fault.error != 0)
        {
            return fault.error;
        }
    }
    return 0;
}

int stepTruncate(int file, off_t length)
{
    const FileFault fault = faultFor(FileStep::Truncate);
    return fault.error != 0 ? fault.error : resultOf(::ftruncate(file, length));
}

int stepSync(int file)
{
    const FileFault fault = faultFor(FileStep::Sync);
    return fault.error != 0 ? fault.error : resultOf(::fsync(file));
}

int renameNew(int fromFolder, const std::string &from, int toFolder, const std::string &to)
{
    if (::renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0)
    {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS)
    {
        return errno;
    }
    if (::linkat(fromFolder, from.c_str(), toFolder, to.c_str(), 0) != 0)
    {
        return errno;
    }
    return resultOf(::unlinkat(fromFolder, from.c_str(), 0));
}

int stepRename(int folder, const std::string &from, const std::string &to, bool replace)
{
    const FileFault fault = faultFor(FileStep::Rename);
    if (fault.error != 0)
    {
        return fault.error;
    }
    return replace ? resultOf(::renameat(folder, from.c_str(), folder, to.c_str()))
                   : renameNew(folder, from, folder, to);
}

int stepSyncFolder(int folder)
{
    const FileFault fault = faultFor(FileStep::SyncFolder);
    return fault.error != 0 ? fault.error : resultOf(::fsync(folder));
}
} // namespace internal
} // namespace zb
