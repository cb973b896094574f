#include "platform/linux/files_times.h"

#include "platform/clock.h"
#include "platform/files.h"

#include <fcntl.h>

namespace zb::internal
{
namespace
{
constexpr LONGLONG secondsFrom1601To1970 = 11'644'473'600;

FILETIME deviceTime(const statx_timestamp &time)
{
    return fileTimeOf((time.tv_sec + secondsFrom1601To1970) * ticksPerSecond + time.tv_nsec / 100);
}
} // namespace

std::optional<FileTimes> timesOf(int folder, const char *name)
{
    struct statx status = {};
    if (::statx(folder, name, name[0] == 0 ? AT_EMPTY_PATH : 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
    {
        return std::nullopt;
    }
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    return FileTimes{deviceTime(hasBirth ? status.stx_btime : status.stx_mtime), deviceTime(status.stx_atime),
                     deviceTime(status.stx_mtime)};
}

timespec hostTime(const FILETIME *time)
{
    if (time == nullptr)
    {
        return {0, UTIME_OMIT};
    }
    const LONGLONG ticks = ticksOf(*time);
    return {ticks / ticksPerSecond - secondsFrom1601To1970, ticks % ticksPerSecond * 100};
}

DWORD attributesOf(const struct stat &status)
{
    DWORD attributes = 0;
    attributes |= S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    attributes |= (status.st_mode & S_IWUSR) == 0 ? FILE_ATTRIBUTE_READONLY : 0;
    attributes |= (status.st_mode & S_ISVTX) != 0 ? FILE_ATTRIBUTE_HIDDEN : 0;
    return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

mode_t modeFor(mode_t mode, DWORD attributes)
{
    constexpr mode_t allWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    mode &= 07777U & ~static_cast<mode_t>(S_ISVTX);
    mode |= (attributes & FILE_ATTRIBUTE_HIDDEN) != 0 ? S_ISVTX : 0;
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0)
    {
        return mode & ~allWrite;
    }
    // Writing comes back for the owner alone: who else had it before is not known any more.
    return mode | S_IWUSR;
}
} // namespace zb::internal
