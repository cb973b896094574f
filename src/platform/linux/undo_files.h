// The files that belong to recorded changes: what they were, and how they come back.
//
// Files are no part of the store's transactions. So what is to become of them is entered into the store with the records
// that are taken back (table undo_files), and the entries go when the files are so. Of a process that is killed in
// between, the next one that opens the device, or records or takes back a change in it, does the rest: nobody who opens
// the device finds records of one state with files of the other.
//
//     undo_files(id, path, there, now, content)   what the file was (there 0 or 1, its fingerprint), and what it becomes
//                                                 (null: it goes)
#pragma once

#include "platform/linux/store_state.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
/// A file of the device as a change found it and left it.
struct WatchedFile
{
    std::u16string path;
    std::optional<Bytes> before; ///< none: there was no file
    bool afterKnown = false;
    bool isThere = false; ///< afterwards
    std::uint64_t after = 0;
    bool tooLarge = false; ///< what it was is not kept, so it will stay as it is; not written down
};

/// Nothing for a file that is not there, or can't be read.
std::optional<Bytes> contentOf(const std::u16string &path);
std::vector<WatchedFile> watchedFiles(const std::vector<std::u16string> &paths);
/// The file as it was before, with `now` as it is afterwards.
WatchedFile leftAs(WatchedFile file, const std::optional<Bytes> &now);

/// For each file: length and path (2 bytes each), flags (1), fingerprint (8), and length (4) and bytes before.
Bytes encodedFiles(const std::vector<WatchedFile> &files);
/// Throws StoreFault(ERROR_FILE_CORRUPT).
std::vector<WatchedFile> decodedFiles(BytesView bytes);

/// In the running transaction: each file, which is now as it was `before` its change, becomes what `wanted` tells.
struct FilePlan
{
    std::u16string path;
    std::optional<Bytes> now;
    std::optional<Bytes> wanted;
};
void enterPlans(WriteAccess &access, const std::vector<FilePlan> &plans);
/// Does what was entered, whoever entered it; the paths of files that somebody has changed since, or that can't be
/// written, and so stay as they are. Not in a bulk. Throws StoreFault.
std::vector<std::u16string> finishPlans(Store &store);
} // namespace zb::internal
