// Recordings of changes, and taking them back.
#include "platform/undo.h"

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/propdb_change.h"
#include "platform/linux/store_fault.h"
#include "platform/propdb.h"

#include <optional>

namespace zb
{
namespace
{
using internal::Bytes;
using internal::BytesView;

constexpr std::size_t largestFile = 16 * 1024 * 1024;
constexpr BYTE wasThereFlag = 1;
constexpr BYTE isThereFlag = 2;
constexpr BYTE afterKnownFlag = 4;

/// A file of the device as a change found it and left it.
struct WatchedFile
{
    std::u16string path;
    std::optional<Bytes> before; ///< none: there was no file
    bool afterKnown = false;
    bool isThere = false;
    std::uint64_t after = 0;
};

std::uint64_t fingerprintOf(const Bytes &bytes)
{
    return internal::fingerprintOf(bytes, {});
}

/// Nothing for a file that is not there, or can't be read.
std::optional<Bytes> contentOf(const std::u16string &path)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return std::nullopt;
    }
    const DWORD size = GetFileSize(file, nullptr);
    Bytes bytes(size <= largestFile ? size : 0);
    DWORD done = 0;
    const bool read = size <= largestFile && ReadFile(file, bytes.data(), size, &done, nullptr) != FALSE;
    CloseHandle(file);
    return read && done == size ? std::optional(std::move(bytes)) : std::nullopt;
}

bool putContent(const std::u16string &path, const std::optional<Bytes> &content)
{
    if (!content)
    {
        return DeleteFileW(path.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND;
    }
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    DWORD done = 0;
    const auto size = static_cast<DWORD>(content->size());
    const bool written = WriteFile(file, content->data(), size, &done, nullptr) != FALSE && done == size;
    return CloseHandle(file) != FALSE && written;
}

void put(Bytes &bytes, std::uint64_t value, std::size_t size)
{
    for (std::size_t n = 0; n < size; ++n)
    {
        bytes.push_back(static_cast<BYTE>(value >> 8U * n));
    }
}

/// For each file: length and path (2 bytes each), flags (1), fingerprint (8), and length (4) and bytes before.
Bytes encoded(const std::vector<WatchedFile> &files)
{
    Bytes bytes;
    for (const WatchedFile &file : files)
    {
        put(bytes, file.path.size(), 2);
        for (const char16_t ch : file.path)
        {
            put(bytes, ch, 2);
        }
        bytes.push_back(static_cast<BYTE>((file.before ? wasThereFlag : 0) | (file.isThere ? isThereFlag : 0) |
                                          (file.afterKnown ? afterKnownFlag : 0)));
        put(bytes, file.after, 8);
        if (file.before)
        {
            put(bytes, file.before->size(), 4);
            bytes.insert(bytes.end(), file.before->begin(), file.before->end());
        }
    }
    return bytes;
}

std::uint64_t take(BytesView &bytes, std::size_t size)
{
    if (size > bytes.size())
    {
        throw internal::StoreFault(ERROR_FILE_CORRUPT);
    }
    std::uint64_t value = 0;
    for (std::size_t n = size; n > 0; --n)
    {
        value = value << 8U | bytes[n - 1];
    }
    bytes = bytes.subspan(size);
    return value;
}

std::vector<WatchedFile> decoded(BytesView bytes)
{
    std::vector<WatchedFile> files;
    while (!bytes.empty())
    {
        WatchedFile file;
        for (std::uint64_t length = take(bytes, 2); length > 0; --length)
        {
            file.path.push_back(static_cast<char16_t>(take(bytes, 2)));
        }
        const std::uint64_t flags = take(bytes, 1);
        file.isThere = (flags & isThereFlag) != 0;
        file.afterKnown = (flags & afterKnownFlag) != 0;
        file.after = take(bytes, 8);
        if ((flags & wasThereFlag) != 0)
        {
            const auto size = static_cast<std::size_t>(take(bytes, 4));
            if (size > bytes.size())
            {
                throw internal::StoreFault(ERROR_FILE_CORRUPT);
            }
            file.before.emplace(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
            bytes = bytes.subspan(size);
        }
        files.push_back(std::move(file));
    }
    return files;
}

std::vector<WatchedFile> watched(const std::vector<std::u16string> &paths)
{
    std::vector<WatchedFile> files;
    for (const std::u16string &path : paths)
    {
        files.push_back({path, contentOf(path)});
    }
    return files;
}

RecordedChange toldOf(const internal::ChangeRow &row)
{
    RecordedChange change;
    change.id = row.id;
    change.words = row.words;
    change.made = fileTimeOf(row.made);
    change.whole = row.whole;
    change.records = static_cast<std::uint64_t>(row.records);
    for (const WatchedFile &file : decoded(row.files))
    {
        change.files.push_back(file.path);
    }
    return change;
}
} // namespace

struct ChangeRecording::State
{
    std::shared_ptr<internal::Store> store;
    std::vector<WatchedFile> files;
    std::u16string words;

    State(std::shared_ptr<internal::Store> opened, internal::Recording recording, std::vector<WatchedFile> known)
        : store(std::move(opened)), files(std::move(known)), words(recording.words)
    {
        recording.files = encoded(files);
        if (!store->startRecording(std::move(recording)))
        {
            store = nullptr;
        }
    }
    ~State()
    {
        if (store != nullptr)
        {
            end();
            store->stopRecording();
        }
    }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    /// Only files that did change belong to it.
    std::vector<WatchedFile> changedFiles() const
    {
        std::vector<WatchedFile> changed;
        for (WatchedFile file : files)
        {
            const std::optional<Bytes> now = contentOf(file.path);
            if (now == file.before)
            {
                continue;
            }
            file.afterKnown = true;
            file.isThere = now.has_value();
            file.after = now ? fingerprintOf(*now) : 0;
            changed.push_back(std::move(file));
        }
        return changed;
    }
    void end() noexcept
    {
        try
        {
            const std::vector<WatchedFile> changed = changedFiles();
            if (store->recordedChange() == 0 && !changed.empty())
            {
                announce();
            }
            const std::int64_t change = store->recordedChange();
            if (change != 0)
            {
                internal::WriteAccess access(*store);
                access.willChange();
                internal::endChange(access.connection(), change, words, encoded(changed), !changed.empty());
                access.commit();
            }
        }
        catch (...)
        {
            // The change then counts as interrupted.
            internal::reportStoreFault();
        }
    }
    bool announce() const
    {
        store->forceRecording();
        BulkWrite bulk;
        return bulk.commit();
    }
};

ChangeRecording::ChangeRecording(const std::u16string &words, const std::vector<std::u16string> &files)
{
    try
    {
        internal::Recording recording;
        recording.words = words;
        m_state = std::make_unique<State>(internal::openedStore(), std::move(recording), watched(files));
    }
    catch (...)
    {
        internal::reportStoreFault();
    }
}

ChangeRecording::~ChangeRecording() = default;

void ChangeRecording::describe(const std::u16string &words)
{
    if (m_state != nullptr && m_state->store != nullptr)
    {
        m_state->store->describeRecording(words);
        m_state->words = words;
    }
}

bool ChangeRecording::announce()
{
    return m_state != nullptr && m_state->store != nullptr && m_state->announce();
}

/// One change taken back, or made again, which is the same the other way round.
struct UndoStep
{
    bool redo;
    UndoResult result{};

    void run()
    {
        const std::shared_ptr<internal::Store> store = internal::openedStore();
        std::vector<WatchedFile> files;
        std::unique_ptr<ChangeRecording::State> recording;
        {
            internal::ReadAccess access(*store);
            const std::vector<internal::ChangeRow> rows = internal::changeRows(access.connection(), redo);
            if (rows.empty())
            {
                return;
            }
            result.change = toldOf(rows.front());
            files = decoded(rows.front().files);
        }
        if (!areAsLeft(files))
        {
            return;
        }
        internal::Recording other;
        other.undone = !redo;
        other.keepsUndone = true;
        other.force = true;
        other.words = result.change.words;
        recording = std::make_unique<ChangeRecording::State>(store, std::move(other), watched(result.change.files));
        if (recording->store == nullptr || !takeBackRecords(*store))
        {
            return;
        }
        result.outcome = UndoOutcome::Done;
        bringBack(files);
    }

  private:
    bool areAsLeft(const std::vector<WatchedFile> &files)
    {
        for (const WatchedFile &file : files)
        {
            const std::optional<Bytes> now = contentOf(file.path);
            const bool asLeft = now.has_value() == file.isThere && (!now || fingerprintOf(*now) == file.after);
            if (now != file.before && file.afterKnown && !asLeft)
            {
                result.outcome = UndoOutcome::Conflict;
                result.file = file.path;
                return false;
            }
        }
        return true;
    }

    bool takeBackRecords(internal::Store &store)
    {
        result.outcome = UndoOutcome::Failed;
        BulkWrite bulk;
        std::vector<Bytes> parts;
        {
            internal::ReadAccess access(store);
            const std::vector<internal::ChangeRow> rows = internal::changeRows(access.connection(), redo);
            if (rows.empty() || rows.front().id != result.change.id)
            {
                SetLastError(ERROR_NOT_OWNER); // another process was quicker
                return false;
            }
            parts = internal::partsOf(access.connection(), result.change.id);
        }
        for (const Bytes &part : parts)
        {
            std::vector<internal::JournalEntry> entries = internal::Journal::decoded(part);
            for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
            {
                if (!internal::takeBack(store, *entry))
                {
                    result.outcome = UndoOutcome::Conflict;
                    result.record = entry->record;
                    return false;
                }
            }
        }
        {
            internal::WriteAccess access(store);
            access.willChange();
            internal::dropChange(access.connection(), result.change.id);
            access.commit();
        }
        return bulk.commit();
    }

    void bringBack(const std::vector<WatchedFile> &files)
    {
        for (const WatchedFile &file : files)
        {
            if (contentOf(file.path) != file.before && (!file.afterKnown || !putContent(file.path, file.before)))
            {
                result.filesLeft.push_back(file.path);
            }
        }
    }
};

namespace
{
UndoResult step(bool redo)
{
    UndoStep step{redo};
    try
    {
        step.run();
    }
    catch (...)
    {
        internal::reportStoreFault();
        step.result.outcome = UndoOutcome::Failed;
    }
    return step.result;
}
} // namespace

std::vector<RecordedChange> recordedChanges(bool undone)
{
    std::vector<RecordedChange> changes;
    try
    {
        internal::ReadAccess access(*internal::openedStore());
        for (const internal::ChangeRow &row : internal::changeRows(access.connection(), undone))
        {
            changes.push_back(toldOf(row));
        }
    }
    catch (...)
    {
        internal::reportStoreFault();
        changes.clear();
    }
    return changes;
}

UndoResult undoLastChange()
{
    return step(false);
}

UndoResult redoLastChange()
{
    return step(true);
}
} // namespace zb
