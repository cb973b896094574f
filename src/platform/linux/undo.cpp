// Recordings of changes, and taking them back.
#include "platform/undo.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/linux/propdb_change.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/undo_files.h"
#include "platform/propdb.h"

#include <mutex>
#include <optional>
#include <unordered_set>

namespace zb
{
namespace
{
using internal::Bytes;

using internal::WatchedFile;

RecordedChange toldOf(const internal::ChangeRow &row)
{
    RecordedChange change;
    change.id = row.id;
    change.words = row.words;
    change.made = fileTimeOf(row.made);
    change.whole = row.whole;
    change.records = static_cast<std::uint64_t>(row.records);
    for (const WatchedFile &file : internal::decodedFiles(row.files))
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
    std::unordered_set<std::u16string> known; ///< paths of the files
    std::size_t bytesKept = 0;

    /// The one that is on; files join it.
    inline static std::mutex currentMutex;
    inline static State *current = nullptr;

    State(std::shared_ptr<internal::Store> opened, internal::Recording recording, std::vector<WatchedFile> watched)
        : store(std::move(opened)), files(std::move(watched)), words(recording.words)
    {
        for (const WatchedFile &file : files)
        {
            known.insert(file.path);
        }
        recording.files = internal::encodedFiles(files);
        if (!store->startRecording(std::move(recording)))
        {
            store = nullptr;
            return;
        }
        const std::lock_guard guard(currentMutex);
        current = this;
    }
    ~State()
    {
        if (store != nullptr)
        {
            {
                const std::lock_guard guard(currentMutex);
                current = nullptr;
            }
            end();
            store->stopRecording();
        }
    }
    void watch(const std::u16string &path)
    {
        if (!known.insert(path).second)
        {
            return;
        }
        WatchedFile file{path, internal::contentOf(path)};
        const std::size_t size = file.before ? file.before->size() : 0;
        file.tooLarge = bytesKept + size > recordedFileBytesKept;
        if (file.tooLarge)
        {
            file.before.reset();
        }
        else
        {
            bytesKept += size;
        }
        files.push_back(std::move(file));
    }
    State(const State &) = delete;
    State &operator=(const State &) = delete;

    /// Only files that did change belong to it.
    std::vector<WatchedFile> changedFiles() const
    {
        std::vector<WatchedFile> changed;
        for (WatchedFile file : files)
        {
            if (file.tooLarge)
            {
                changed.push_back(std::move(file));
                continue;
            }
            const std::optional<Bytes> now = internal::contentOf(file.path);
            if (now != file.before)
            {
                changed.push_back(internal::leftAs(std::move(file), now));
            }
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
                internal::endChange(access.connection(), change, words, internal::encodedFiles(changed), !changed.empty());
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
        const std::shared_ptr<internal::Store> store = internal::openedStore();
        internal::finishPlans(*store);
        internal::Recording recording;
        recording.words = words;
        m_state = std::make_unique<State>(store, std::move(recording), internal::watchedFiles(files));
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

void watchFile(const std::u16string &path)
{
    const std::lock_guard guard(ChangeRecording::State::currentMutex);
    if (ChangeRecording::State::current != nullptr)
    {
        ChangeRecording::State::current->watch(path);
    }
}

bool ChangeRecording::announce()
{
    return m_state != nullptr && m_state->store != nullptr && m_state->announce();
}

namespace
{
/// A recording of one transaction, without files of its own to watch.
class StepRecording
{
  public:
    StepRecording(std::shared_ptr<internal::Store> store, internal::Recording recording)
        : m_store(std::move(store)), m_on(m_store->startRecording(std::move(recording)))
    {
    }
    ~StepRecording()
    {
        m_on ? m_store->stopRecording() : void();
    }
    StepRecording(const StepRecording &) = delete;
    StepRecording &operator=(const StepRecording &) = delete;

    bool isOn() const
    {
        return m_on;
    }

  private:
    std::shared_ptr<internal::Store> m_store;
    bool m_on;
};

/// One change taken back, or made again, which is the same the other way round. Its records, what it leaves to be taken
/// back in turn, and what becomes of its files are one transaction.
class UndoStep
{
  public:
    explicit UndoStep(bool redo) : m_redo(redo)
    {
    }
    UndoResult &result()
    {
        return m_result;
    }
    void run()
    {
        const std::shared_ptr<internal::Store> store = internal::openedStore();
        internal::finishPlans(*store);
        const std::optional<internal::ChangeRow> row = nextRow(*store);
        if (!row)
        {
            return;
        }
        m_result.change = toldOf(*row);
        if (!planFiles(internal::decodedFiles(row->files)))
        {
            return;
        }
        m_result.outcome = UndoOutcome::Failed;
        const StepRecording recording(store, otherWay());
        if (!recording.isOn() || !takeBack(*store))
        {
            return;
        }
        m_result.outcome = UndoOutcome::Done;
        for (std::u16string &file : internal::finishPlans(*store))
        {
            m_result.filesLeft.push_back(std::move(file));
        }
    }

  private:
    std::optional<internal::ChangeRow> nextRow(internal::Store &store) const
    {
        internal::ReadAccess access(store);
        std::vector<internal::ChangeRow> rows = internal::changeRows(access.connection(), m_redo);
        return rows.empty() ? std::nullopt : std::optional(std::move(rows.front()));
    }

    /// False when one is not as the change left it.
    bool planFiles(const std::vector<WatchedFile> &files)
    {
        std::size_t bytesLeft = recordedFileBytesKept;
        for (const WatchedFile &file : files)
        {
            std::optional<Bytes> now = internal::contentOf(file.path);
            const WatchedFile found = internal::leftAs({file.path, {}}, now);
            if (now == file.before)
            {
                continue;
            }
            // What can't be kept for making the change again stays, too.
            const std::size_t size = now ? now->size() : 0;
            if (!file.afterKnown || size > bytesLeft)
            {
                m_result.filesLeft.push_back(file.path);
                continue;
            }
            bytesLeft -= size;
            if (found.isThere != file.isThere || found.after != file.after)
            {
                m_result.outcome = UndoOutcome::Conflict;
                m_result.file = file.path;
                return false;
            }
            m_plans.push_back({file.path, std::move(now), file.before});
        }
        return true;
    }

    internal::Recording otherWay() const
    {
        std::vector<WatchedFile> files;
        for (const internal::FilePlan &plan : m_plans)
        {
            files.push_back(internal::leftAs({plan.path, plan.now}, plan.wanted));
        }
        internal::Recording recording;
        recording.undone = !m_redo;
        recording.keepsUndone = true;
        recording.force = !files.empty();
        recording.whole = true;
        recording.words = m_result.change.words;
        recording.files = internal::encodedFiles(files);
        return recording;
    }

    bool takeBack(internal::Store &store)
    {
        BulkWrite bulk;
        const std::optional<internal::ChangeRow> row = nextRow(store);
        if (!row || row->id != m_result.change.id)
        {
            SetLastError(ERROR_NOT_OWNER); // another process was quicker
            return false;
        }
        if (!takeBackRecords(store))
        {
            return false;
        }
        {
            internal::WriteAccess access(store);
            access.willChange();
            internal::dropChange(access.connection(), m_result.change.id);
            internal::enterPlans(access, m_plans);
            access.commit();
        }
        return bulk.commit();
    }

    bool takeBackRecords(internal::Store &store)
    {
        std::vector<Bytes> parts;
        {
            internal::ReadAccess access(store);
            parts = internal::partsOf(access.connection(), m_result.change.id);
        }
        for (const Bytes &part : parts)
        {
            std::vector<internal::JournalEntry> entries = internal::Journal::decoded(part);
            for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
            {
                if (!internal::takeBack(store, *entry))
                {
                    m_result.outcome = UndoOutcome::Conflict;
                    m_result.record = entry->record;
                    return false;
                }
            }
        }
        return true;
    }

    bool m_redo;
    UndoResult m_result;
    std::vector<internal::FilePlan> m_plans;
};

UndoResult step(bool redo)
{
    UndoStep step(redo);
    try
    {
        step.run();
    }
    catch (...)
    {
        internal::reportStoreFault();
        step.result().outcome = UndoOutcome::Failed;
    }
    return step.result();
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
