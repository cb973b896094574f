// The steps by which files come to the disk, each behind the fault hook. All return 0 or an errno.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

namespace zb::internal
{
/// Asked before the temporary of a new file is made.
int stepCreate();
/// All of the bytes at the file's position; *done gets what was written in any case.
int stepWrite(int file, const void *bytes, std::size_t count, std::size_t *done);
int stepTruncate(int file, off_t length);
int stepSync(int file);
/// Within one folder. Without `replace` a name that is there fails with EEXIST.
int stepRename(int folder, const std::string &from, const std::string &to, bool replace);
int stepSyncFolder(int folder);

/// renameat that never replaces; on file systems that can't say so, by a second link.
int renameNew(int fromFolder, const std::string &from, int toFolder, const std::string &to);
} // namespace zb::internal
