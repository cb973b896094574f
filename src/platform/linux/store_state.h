// The open store: connections to read by, the one to write by, the transaction that runs on it, and who has which
// database open.
//
// Reading: ReadAccess takes a connection out of a small pool for the length of one look-up or batch, so no read
// transaction outlives a call. Writing: WriteAccess takes the writer, which is one connection under one mutex.
//
// Bulk writes: a thread between beginBulk and endBulk owns the writer; all its calls, reads too, go through it and see
// what it has written. The mutex is held for single calls only. Ownership is a token, so that the bulk of a thread that
// was terminated meanwhile can be rolled back and the writer taken over by the next one who wants it; the terminated
// thread never gets past its next call to notice.
//
// A failure in the midst of a write inside a bulk takes the whole bulk back at once, and its later writes and its
// commit fail with the same error: half a write is never committed.
#pragma once

#include "platform/linux/propdb_key.h"
#include "platform/linux/store.h"
#include "platform/linux/store_connection.h"
#include "platform/linux/store_notify.h"
#include "platform/linux/store_undo.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <unordered_map>

namespace zb::internal
{
/// What a walk has to know of its database, cheap enough to be read with every batch.
struct DatabaseState
{
    std::int64_t ordersVersion = 0;
    std::int64_t revision = 0; ///< changes with every write to the database
    std::int64_t records = 0;
};

/// What the running transaction has done and not yet put into the tables that count it.
struct PendingChanges
{
    struct Counts
    {
        std::int64_t records = 0;
        std::int64_t bytes = 0;
        std::int64_t writes = 0;
    };
    std::map<CEOID, Counts> counts;
    std::unordered_map<CEOID, std::shared_ptr<const SortOrders>> orders; ///< as read in this transaction
    ChangeList changes;
    Journal journal; ///< while a recording is on
    std::int64_t nextId = 0; ///< 0: not read yet
    std::int64_t nextChange = 0;
    bool idsTaken = false;

    bool empty() const
    {
        return counts.empty() && changes.empty() && !idsTaken;
    }
};

class Store
{
  public:
    Store(std::filesystem::path file, std::string fileLayer, std::unique_ptr<Connection> writer);
    ~Store();
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;

    /// Goes up with every write of this process and every transaction taken back; what was read before it is old.
    std::uint64_t writes() const
    {
        return m_writes.load(std::memory_order_acquire);
    }
    Notifier &notifier()
    {
        return m_notifier;
    }
    OpenDatabases &openDatabases()
    {
        return m_openDatabases;
    }
    void close();

    /// Makes the calling thread the owner of the writer and opens a transaction. False with the last error, the bulk
    /// then being one whose writes all fail.
    bool beginBulk();
    /// Ends the bulk of the calling thread; false with the last error when it was not committed though asked for.
    bool endBulk(bool commit);
    /// Whether the calling thread is in a bulk of this store.
    bool inBulk() const;

    /// From here on the writes of this process are recorded; false when they are already.
    bool startRecording(Recording recording);
    /// Writes the recording's row with the commit that comes, whatever that changes.
    void forceRecording();
    void describeRecording(const std::u16string &words);
    /// The id of the change, 0 when nothing was written for it.
    std::int64_t recordedChange();
    void stopRecording();

    /// A new connection set up as all are.
    std::unique_ptr<Connection> connect() const;

  private:
    friend class ReadAccess;
    friend class WriteAccess;

    std::unique_ptr<Connection> borrowReader();
    void giveBack(std::unique_ptr<Connection> reader);

    std::unique_lock<std::mutex> enterWriter();
    void beginTransaction();
    void rollBack() noexcept;
    void commitTransaction();
    void flush();
    void flushCounts();
    void loadCounters();
    void keepIds() noexcept;
    /// Takes the bulk back at once; its owner's later writes fail with this code.
    void loseBulk(DWORD code) noexcept;
    /// Why the writer failed last.
    DWORD writerError() const;

    std::filesystem::path m_file;
    std::string m_fileLayer;
    std::atomic<std::uint64_t> m_writes{1};
    std::atomic<bool> m_closed{false};

    std::mutex m_readersMutex;
    std::vector<std::unique_ptr<Connection>> m_readers;

    std::mutex m_writerMutex;
    std::condition_variable m_writerFree;
    std::unique_ptr<Connection> m_writer;
    std::uint64_t m_bulkToken = 0; ///< 0: no bulk
    DWORD m_bulkThread = 0;
    DWORD m_bulkError = 0;       ///< not 0: the bulk is lost, nothing of it remains
    std::int64_t m_idFloor = 1;  ///< ids below are used, whatever the store says
    std::int64_t m_savedIds = 1; ///< ids below are used, and the store says so
    PendingChanges m_pending;
    Recording m_recording;

    OpenDatabases m_openDatabases;
    Notifier m_notifier;
};

/// A connection to read by, for one look-up or batch.
class ReadAccess
{
  public:
    explicit ReadAccess(Store &store);
    ~ReadAccess();
    ReadAccess(const ReadAccess &) = delete;
    ReadAccess &operator=(const ReadAccess &) = delete;

    Connection &connection()
    {
        return *m_connection;
    }
    /// True when it reads what this thread's bulk has written.
    bool inBulk() const
    {
        return m_writerLock.owns_lock();
    }
    /// What this thread's bulk has added to a database and not yet written to its row.
    PendingChanges::Counts pending(CEOID database) const;

  private:
    Store &m_store;
    std::unique_ptr<Connection> m_reader;
    std::unique_lock<std::mutex> m_writerLock;
    Connection *m_connection;
};

/// The writer, for one call. What was changed without commit() is taken back.
class WriteAccess
{
  public:
    explicit WriteAccess(Store &store);
    ~WriteAccess();
    WriteAccess(const WriteAccess &) = delete;
    WriteAccess &operator=(const WriteAccess &) = delete;

    Connection &connection();
    /// To be called before the first change.
    void willChange()
    {
        m_changed = true;
    }
    CEOID newId();
    /// The sort orders of a database; throws StoreFault(2) when it is gone.
    std::shared_ptr<const SortOrders> orders(CEOID database);
    void forgetOrders(CEOID database);
    void count(CEOID database, std::int64_t records, std::int64_t bytes);
    /// Of a database that is deleted.
    void forgetDatabase(CEOID database);
    /// Writes what is counted so far into the databases' rows.
    void settleCounts();
    /// What a record was and is, for the recording of changes; null for no record.
    void journal(CEOID database, CEOID record, const RecordBytes *before, const RecordBytes *after);
    /// To be told to the windows of other handles than `source` once it is committed.
    void note(UINT message, CEOID database, CEOID object, const void *source);
    /// Outside a bulk the change is durable when this returns.
    void commit();

  private:
    Store &m_store;
    std::unique_lock<std::mutex> m_lock;
    bool m_bulk;
    bool m_changed = false;
    bool m_done = false;
};

/// The store of the open device; throws StoreFault(2) when none is open.
std::shared_ptr<Store> openedStore();
} // namespace zb::internal
