// Faults under the device's files, for tests: a hook that is asked before each step by which a file comes to the disk.
//
// The hook may let the step pass, let a part of a write pass, fail it, or kill the process. Files are written by these
// steps in this order: Write (any number), Sync, Rename, SyncFolder; a file changed in place has Write, Truncate and
// Sync alone.
//
// Threads: the hook is called from whatever thread writes; it is set while no other thread writes.
#pragma once

#include "platform/types.h"

#include <functional>

namespace zb
{
enum class FileStep
{
    Create,     ///< of the temporary
    Write,      ///< `bytes` at once
    Truncate,   ///< to a length
    Sync,       ///< of the file
    Rename,     ///< of the temporary over the file
    SyncFolder, ///< of the folder, after the rename
};

struct FileFault
{
    /// 0, or the errno with which the step fails.
    int error = 0;
    /// Write: how many bytes reach the file before that; the rest of a write without error follows as a new step.
    std::size_t passes = static_cast<std::size_t>(-1);
};

using FileFaultHook = std::function<FileFault(FileStep step, std::size_t bytes)>;

/// An empty hook takes the faults off.
ZBPLATFORM_API void setFileFaults(FileFaultHook hook);
} // namespace zb
