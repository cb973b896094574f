// Times and attributes of host files in the device's form.
#pragma once

#include "platform/types.h"

#include <ctime>
#include <optional>
#include <sys/stat.h>

namespace zb::internal
{
struct FileTimes
{
    FILETIME created; ///< where the file system doesn't keep it: of the last change
    FILETIME accessed;
    FILETIME written;
};

/// Times of an entry of a folder (links are followed), or with an empty name of the open file itself; nothing with
/// errno set on failure.
std::optional<FileTimes> timesOf(int folder, const char *name);

/// For futimens; null leaves that time as it is.
timespec hostTime(const FILETIME *time);

/// Attributes by mode: read-only is a file or folder that its owner may not write. Hidden is the sticky bit, which has
/// no other use for files and none that matters for folders of one user, is kept by every file system with modes, and
/// comes with the status that is read anyway.
DWORD attributesOf(const struct stat &status);

/// The mode with read-only and hidden as told; other attributes have no form on the host.
mode_t modeFor(mode_t mode, DWORD attributes);
} // namespace zb::internal
