// Changes of the device that can be taken back, and made again.
//
// While a recording is on, every transaction of this process that changes records also writes, in the same transaction,
// what these records were before and a fingerprint of what they are now. So a kill leaves a change with its record, or
// neither. Of a record that a change adds nothing more is kept than its id and fingerprint: a long import stays cheap.
//
// Taking a change back puts the records that it changed into their former state, under their ids, where they still are
// as the change left them. Where one was changed since by somebody who did not record it, nothing is taken back: no work
// is ever overwritten. What was taken back can be made again until the next new change. The identity for files that an
// export gives a record (itemInterchangeId, written without a recording) counts as no change: it stays whatever is taken
// back.
//
// Files that belong to a change (settings) are named when its recording begins, or before they are changed (pictures).
// They are compared at its end, and come back where they still are as they were then; of a change that was interrupted
// they stay as they are.
//
// The last 100 changes are kept, fewer where they are very large (64 MiB in all; the newest always). They lie in the
// tables undo_changes and undo_parts of the store, made by the first recording; see docs/formats/store.md.
//
// Threads: one recording at a time in a process; it takes the writes of all threads.
#pragma once

#include "platform/types.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zb
{
inline constexpr std::size_t recordedChangesKept = 100;

/// Bytes of the files of a change that are kept; what goes beyond stays as it is when the change is taken back.
inline constexpr std::size_t recordedFileBytesKept = 16 * 1024 * 1024;

/// The file joins the change that this process records, as it is now. Nothing happens while none is recorded, or when the
/// file belongs to it already.
ZBPLATFORM_API void watchFile(const std::u16string &path);

class ZBPLATFORM_API ChangeRecording
{
  public:
    /// `words` tell people what changes; `files` are paths of the device, small files that are read now. Wants a device
    /// open; without one, and while another recording is on, nothing is recorded.
    explicit ChangeRecording(const std::u16string &words, const std::vector<std::u16string> &files = {});
    /// Ends it. What could not be recorded of the files (a full disk) is told when the change is taken back.
    ~ChangeRecording();
    ChangeRecording(const ChangeRecording &) = delete;
    ChangeRecording &operator=(const ChangeRecording &) = delete;

    /// Other words, as long as it lasts.
    void describe(const std::u16string &words);
    /// Writes the record down before anything changes: for changes of files alone. False with the last error when the
    /// store could not take it.
    bool announce();

  private:
    struct State;
    std::unique_ptr<State> m_state;
    friend void watchFile(const std::u16string &path);
};

struct RecordedChange
{
    std::int64_t id = 0; ///< rises with time
    std::u16string words;
    FILETIME made{}; ///< UTC
    bool whole = true; ///< false for a change that was interrupted
    std::uint64_t records = 0;
    std::vector<std::u16string> files; ///< that changed with it
};

/// The newest first: those that can be taken back, or those that were and can be made again. Empty also when the store
/// can't be read.
ZBPLATFORM_API std::vector<RecordedChange> recordedChanges(bool undone);

enum class UndoOutcome
{
    Done,
    Nothing,  ///< there is no such change
    Conflict, ///< `record` or `file` was changed since; nothing was done
    Failed    ///< last error; nothing was done
};

struct UndoResult
{
    UndoOutcome outcome = UndoOutcome::Nothing;
    RecordedChange change;
    CEOID record = 0;
    std::u16string file;
    std::vector<std::u16string> filesLeft; ///< could not be brought back, the rest was
};

/// Takes the newest change back, or makes the one again that was taken back last; in one transaction. Of a process that is
/// killed in it, either nothing was done or all of it, the change's files included, for everybody who opens the device
/// from then on.
ZBPLATFORM_API UndoResult undoLastChange();
ZBPLATFORM_API UndoResult redoLastChange();
} // namespace zb
