#include "platform/linux/store_state.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/store_schema.h"

#include <sqlite3.h>

namespace zb::internal
{
namespace
{
constexpr std::size_t readersKept = 4;
constexpr auto ownerCheckInterval = std::chrono::milliseconds(50);
constexpr std::int64_t lastId = 0xFFFFFFFF;

/// Token of the bulk that the thread is in, 0 for none. Tokens are never used twice.
thread_local std::uint64_t t_bulkToken = 0;
std::atomic<std::uint64_t> lastToken{0};
} // namespace

Store::Store(std::filesystem::path file, std::string fileLayer, std::unique_ptr<Connection> writer)
    : m_file(std::move(file)), m_fileLayer(std::move(fileLayer)), m_writer(std::move(writer)), m_notifier(*this)
{
}

Store::~Store()
{
    close();
}

void Store::close()
{
    m_closed = true;
    m_notifier.stop();
    {
        const std::lock_guard guard(m_readersMutex);
        m_readers.clear();
    }
    const std::lock_guard guard(m_writerMutex);
    if (m_writer != nullptr && m_bulkToken != 0)
    {
        loseBulk(ERROR_INVALID_HANDLE);
    }
    m_writer = nullptr;
    m_writerFree.notify_all();
}

std::unique_ptr<Connection> Store::connect() const
{
    auto connection = std::make_unique<Connection>(m_file, m_fileLayer, false);
    configureConnection(*connection);
    connection->execute("PRAGMA query_only=1");
    return connection;
}

std::unique_ptr<Connection> Store::borrowReader()
{
    if (m_closed)
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
    {
        const std::lock_guard guard(m_readersMutex);
        if (!m_readers.empty())
        {
            std::unique_ptr<Connection> reader = std::move(m_readers.back());
            m_readers.pop_back();
            return reader;
        }
    }
    return connect();
}

void Store::giveBack(std::unique_ptr<Connection> reader)
{
    const std::lock_guard guard(m_readersMutex);
    if (!m_closed && m_readers.size() < readersKept)
    {
        m_readers.push_back(std::move(reader));
    }
}

bool Store::inBulk() const
{
    return t_bulkToken != 0;
}

/// Gives the writer's mutex when the calling thread may use the writer: no other thread's bulk is on.
std::unique_lock<std::mutex> Store::enterWriter()
{
    std::unique_lock lock(m_writerMutex);
    while (m_bulkToken != 0 && m_bulkToken != t_bulkToken)
    {
        if (isThreadTerminated(m_bulkThread))
        {
            // It is parked, or will be at its next call, since every call asks before it takes the mutex.
            loseBulk(ERROR_NOT_OWNER);
            m_bulkToken = 0;
            break;
        }
        m_writerFree.wait_for(lock, ownerCheckInterval);
        lock.unlock();
        stoppingPoint();
        lock.lock();
    }
    if (m_writer == nullptr)
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
    if (t_bulkToken != 0 && m_bulkToken != t_bulkToken)
    {
        throw StoreFault(ERROR_NOT_OWNER);
    }
    return lock;
}

void Store::beginTransaction()
{
    Statement(*m_writer, Query::Begin).run();
    m_pending = PendingChanges();
}

void Store::rollBack() noexcept
{
    // SQLite has rolled back by itself after some failures; asking again would be an error.
    if (m_writer != nullptr && sqlite3_get_autocommit(m_writer->raw()) == 0)
    {
        sqlite3_exec(m_writer->raw(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
    // Ids that were handed out are not used again, though what bore them is gone.
    m_idFloor = std::max(m_idFloor, m_pending.nextId);
    m_pending = PendingChanges();
    m_writes.fetch_add(1, std::memory_order_acq_rel);
}

void Store::loseBulk(DWORD code) noexcept
{
    m_bulkError = code;
    rollBack();
}

DWORD Store::writerError() const
{
    const int result = sqlite3_errcode(m_writer->raw());
    const bool failed = result != SQLITE_OK && result != SQLITE_ROW && result != SQLITE_DONE;
    return failed ? lastErrorOf(result, m_writer->raw()) : ERROR_WRITE_FAULT;
}

void Store::loadCounters()
{
    if (m_pending.nextId != 0)
    {
        return;
    }
    Statement counters(*m_writer, Query::ReadCounters);
    if (!counters.step())
    {
        throw StoreFault(ERROR_FILE_CORRUPT);
    }
    m_pending.nextId = std::max(counters.integer(0), m_idFloor);
    m_pending.nextChange = counters.integer(1);
}

void Store::flushCounts()
{
    const LONGLONG now = currentTicks();
    for (const auto &[database, counts] : m_pending.counts)
    {
        Statement update(*m_writer, Query::CountInDatabase);
        update.bind(1, database).bind(2, counts.records).bind(3, counts.bytes).bind(4, counts.writes).bind(5, now);
        update.run();
    }
    m_pending.counts.clear();
}

/// Puts counts, counters and the list of changes into their tables.
void Store::flush()
{
    flushCounts();
    loadCounters();
    for (const Change &change : m_pending.changes.changes())
    {
        const std::int64_t sequence = m_pending.nextChange++;
        Statement put(*m_writer, Query::PutChange);
        put.bind(1, sequence % changeSlots).bind(2, sequence).bind(3, change.database).bind(4, change.object);
        put.bind(5, change.message).bind(6, m_notifier.writerId());
        put.run();
    }
    Statement counters(*m_writer, Query::WriteCounters);
    counters.bind(1, m_pending.nextId).bind(2, m_pending.nextChange).run();
}

void Store::commitTransaction()
{
    if (!m_pending.empty())
    {
        flush();
    }
    std::int64_t change = 0;
    if (m_recording.on && (m_recording.force || !m_pending.journal.empty()))
    {
        change = writeJournal(*m_writer, m_recording, m_pending.journal, currentTicks());
    }
    Statement(*m_writer, Query::Commit).run();
    if (change != 0)
    {
        m_recording.change = change;
        m_recording.force = false;
        ++m_recording.part;
    }
    m_savedIds = std::max(m_savedIds, m_pending.nextId);
    m_writes.fetch_add(1, std::memory_order_acq_rel);
}

/// The ids that a bulk gave out before it was taken back stay used, for later processes too.
void Store::keepIds() noexcept
{
    try
    {
        if (m_writer != nullptr && m_idFloor > m_savedIds)
        {
            beginTransaction();
            loadCounters();
            m_pending.idsTaken = true;
            commitTransaction();
        }
    }
    catch (...)
    {
        // The next write of this process takes them along.
    }
    rollBack();
}

bool Store::startRecording(Recording recording)
{
    const std::unique_lock lock = enterWriter();
    if (m_recording.on)
    {
        return false;
    }
    m_recording = std::move(recording);
    m_recording.on = true;
    return true;
}

void Store::forceRecording()
{
    const std::unique_lock lock = enterWriter();
    m_recording.force = m_recording.on;
}

void Store::describeRecording(const std::u16string &words)
{
    const std::unique_lock lock = enterWriter();
    m_recording.words = words;
}

std::int64_t Store::recordedChange()
{
    const std::lock_guard guard(m_writerMutex);
    return m_recording.change;
}

void Store::stopRecording()
{
    const std::lock_guard guard(m_writerMutex);
    m_recording = Recording();
}

bool Store::beginBulk()
{
    try
    {
        const std::unique_lock lock = enterWriter();
        m_bulkError = 0;
        try
        {
            beginTransaction();
        }
        catch (...)
        {
            reportStoreFault();
            m_bulkError = GetLastError();
        }
        t_bulkToken = ++lastToken;
        m_bulkToken = t_bulkToken;
        m_bulkThread = GetCurrentThreadId();
        return m_bulkError == 0;
    }
    catch (...)
    {
        reportStoreFault();
        return false;
    }
}

bool Store::endBulk(bool commit)
{
    std::vector<Change> changes;
    DWORD error = 0;
    {
        const std::lock_guard guard(m_writerMutex);
        if (m_bulkToken != t_bulkToken)
        {
            t_bulkToken = 0;
            SetLastError(ERROR_NOT_OWNER);
            return false;
        }
        error = m_bulkError;
        try
        {
            if (commit && error == 0)
            {
                commitTransaction();
                changes = m_pending.changes.changes();
            }
        }
        catch (...)
        {
            reportStoreFault();
            error = GetLastError();
        }
        rollBack();
        keepIds();
        t_bulkToken = 0;
        m_bulkToken = 0;
    }
    m_writerFree.notify_all();
    m_notifier.post(changes);
    if (error != 0)
    {
        SetLastError(error);
    }
    return error == 0;
}

ReadAccess::ReadAccess(Store &store) : m_store(store), m_connection(nullptr)
{
    if (store.inBulk())
    {
        m_writerLock = store.enterWriter();
        m_connection = store.m_writer.get();
    }
    else
    {
        m_reader = store.borrowReader();
        m_connection = m_reader.get();
    }
}

ReadAccess::~ReadAccess()
{
    if (m_reader != nullptr)
    {
        m_store.giveBack(std::move(m_reader));
    }
}

PendingChanges::Counts ReadAccess::pending(CEOID database) const
{
    if (m_writerLock.owns_lock())
    {
        const auto found = m_store.m_pending.counts.find(database);
        if (found != m_store.m_pending.counts.end())
        {
            return found->second;
        }
    }
    return {};
}

WriteAccess::WriteAccess(Store &store) : m_store(store), m_lock(store.enterWriter()), m_bulk(store.inBulk())
{
    if (m_bulk && store.m_bulkError != 0)
    {
        throw StoreFault(store.m_bulkError);
    }
    if (!m_bulk)
    {
        store.beginTransaction();
    }
}

WriteAccess::~WriteAccess()
{
    if (m_done)
    {
        return;
    }
    if (!m_bulk)
    {
        m_store.rollBack();
    }
    else if (m_changed)
    {
        m_store.loseBulk(m_store.writerError());
    }
}

Connection &WriteAccess::connection()
{
    return *m_store.m_writer;
}

CEOID WriteAccess::newId()
{
    m_store.loadCounters();
    if (m_store.m_pending.nextId > lastId)
    {
        throw StoreFault(ERROR_DISK_FULL);
    }
    m_store.m_pending.idsTaken = true;
    return static_cast<CEOID>(m_store.m_pending.nextId++);
}

std::shared_ptr<const SortOrders> WriteAccess::orders(CEOID database)
{
    std::shared_ptr<const SortOrders> &known = m_store.m_pending.orders[database];
    if (known == nullptr)
    {
        Statement state(connection(), Query::DatabaseState);
        state.bind(1, database);
        if (!state.step())
        {
            throw StoreFault(ERROR_FILE_NOT_FOUND);
        }
        known = std::make_shared<const SortOrders>(decodeOrders(state.bytes(3)));
    }
    return known;
}

void WriteAccess::forgetOrders(CEOID database)
{
    m_store.m_pending.orders.erase(database);
}

void WriteAccess::count(CEOID database, std::int64_t records, std::int64_t bytes)
{
    PendingChanges::Counts &counts = m_store.m_pending.counts[database];
    counts.records += records;
    counts.bytes += bytes;
    ++counts.writes;
}

void WriteAccess::forgetDatabase(CEOID database)
{
    m_store.m_pending.counts.erase(database);
    m_store.m_pending.orders.erase(database);
}

void WriteAccess::settleCounts()
{
    m_store.flushCounts();
}

void WriteAccess::journal(CEOID database, CEOID record, const RecordBytes *before, const RecordBytes *after)
{
    if (m_store.m_recording.on)
    {
        m_store.m_pending.journal.note(database, record, before, after);
    }
}

void WriteAccess::note(UINT message, CEOID database, CEOID object, const void *source)
{
    m_store.m_pending.changes.add({message, database, object, source});
}

void WriteAccess::commit()
{
    if (m_bulk)
    {
        m_store.m_writes.fetch_add(1, std::memory_order_acq_rel);
        m_done = true;
        return;
    }
    m_store.commitTransaction();
    m_done = true;
    const std::vector<Change> changes = m_store.m_pending.changes.changes();
    m_store.m_pending = PendingChanges();
    m_lock.unlock();
    m_store.m_notifier.post(changes);
}

std::shared_ptr<Store> openedStore()
{
    const auto device = currentDevice();
    if (device == nullptr || device->store == nullptr)
    {
        throw StoreFault(ERROR_FILE_NOT_FOUND);
    }
    return device->store;
}
} // namespace zb::internal
