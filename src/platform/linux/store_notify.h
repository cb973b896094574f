// Who has which database open, and telling windows of changes.
//
// Changes of this process are posted when they are committed. Those of other processes are found in the table of
// changes, a ring of the latest ones that every transaction writes to, by a thread that runs only while a window waits
// for them. A reader that the ring has overtaken tells its windows that the whole database has changed.
#pragma once

#include "platform/linux/store_connection.h"
#include "platform/propdb.h"
#include "platform/user.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace zb::internal
{
class Store;

inline constexpr std::int64_t changeSlots = 256;
inline constexpr std::size_t changesPerTransaction = 64;

struct Change
{
    UINT message;
    CEOID database;
    CEOID object;
    const void *source; ///< the handle it was made by; null for none of this process
};

/// The changes of one transaction; above changesPerTransaction they become one DB_CEOID_CHANGED a database.
class ChangeList
{
  public:
    void add(const Change &change);
    bool empty() const
    {
        return m_changes.empty();
    }
    const std::vector<Change> &changes() const
    {
        return m_changes;
    }
    void clear();

  private:
    void fold();

    std::vector<Change> m_changes;
    bool m_folded = false;
};

/// Counts the handles of this process on each database. Threads: any.
class OpenDatabases
{
  public:
    void add(CEOID database);
    void remove(CEOID database);
    bool isOpen(CEOID database);

  private:
    std::mutex m_mutex;
    std::map<CEOID, int> m_handles;
};

/// Threads: any. Never called with a lock of the store held: posting may stop a thread for good.
class Notifier
{
  public:
    explicit Notifier(Store &store);
    ~Notifier();
    Notifier(const Notifier &) = delete;
    Notifier &operator=(const Notifier &) = delete;

    /// `nextChange` is the number that the next change of the store will get, as read before.
    void watch(const void *handle, CEOID database, HWND window, std::int64_t nextChange);
    void unwatch(const void *handle);
    void post(const std::vector<Change> &changes);
    void stop();

    /// Tells this process's entries in the table of changes from others'.
    std::int64_t writerId() const
    {
        return m_writerId;
    }

  private:
    struct Watch
    {
        const void *handle;
        CEOID database;
        HWND window;
    };

    void run();
    std::vector<Change> poll();
    std::vector<Change> readChanges();
    std::vector<Change> allChanged();

    Store &m_store;
    std::int64_t m_writerId;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Watch> m_watches;
    std::thread m_thread;
    // The thread's own; set before it starts.
    std::unique_ptr<Connection> m_connection;
    std::int64_t m_version = -1;
    std::int64_t m_next = 0;
    bool m_running = false;
    bool m_stop = false;
};
} // namespace zb::internal
