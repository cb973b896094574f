// From a device path to a place on the host: an open folder and a name in it.
//
// A path is walked part by part with open folders, so that a folder renamed or linked elsewhere meanwhile can't lead
// the walk out of the device. A part is looked for as it is written first, then without regard to case; of several that
// differ in case alone the first in code order counts.
#pragma once

#include "platform/linux/unique_fd.h"
#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace zb::internal
{
struct FilePlace
{
    UniqueFd root;    ///< the device's `files`
    UniqueFd folder;  ///< readable; of the last part, or the root itself for "\"
    std::string name; ///< as the host has it, or the name for a new one; "." for "\"
    bool found = false;
    bool isRoot = false;
    /// A link that stays inside the device: what it leads to, open for its path alone. Else closed.
    UniqueFd linked;
    struct stat status = {}; ///< when found; of what a link leads to

    bool isFolder() const
    {
        return found && S_ISDIR(status.st_mode);
    }
    bool isFile() const
    {
        return found && S_ISREG(status.st_mode);
    }
    bool isReadOnly() const
    {
        return found && (status.st_mode & S_IWUSR) == 0;
    }
};

/// Nothing, with the last error set, for a path that is bad or whose folder is missing (3). A missing last part is no
/// failure: found is then false.
std::optional<FilePlace> findPlace(const WCHAR *path);

/// The last part of a path that findPlace has taken, as it is written there.
std::string lastPartOf(const WCHAR *path);

/// Parent of the last part as a place, and the last part as it is written (patterns of the find calls).
struct PatternPlace
{
    FilePlace folder;
    std::u16string pattern;
};
std::optional<PatternPlace> findPatternPlace(const WCHAR *path);

/// The folder itself, opened for listing; closed with errno set on failure.
UniqueFd openFolder(const FilePlace &place);

/// Looks at an entry of a folder as findPlace does at the last part; false for one that is gone or leads out.
bool lookAt(const UniqueFd &root, const UniqueFd &folder, const std::string &name, struct stat *status);

/// The device's error for an errno, and the same set as last error. Both calls give false to be returned.
DWORD fileError(int error);
bool failFile(int error);
bool failWith(DWORD code);

/// Case-folded equality of names.
bool sameName(std::u16string_view a, std::u16string_view b);
} // namespace zb::internal
