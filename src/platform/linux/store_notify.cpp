#include "platform/linux/store_notify.h"

#include "platform/linux/store_fault.h"
#include "platform/linux/store_state.h"

#include <algorithm>
#include <random>

namespace zb::internal
{
namespace
{
constexpr auto pollInterval = std::chrono::milliseconds(200);

std::int64_t randomId()
{
    std::random_device source;
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(source()) << 31U) ^ source());
}
} // namespace

void ChangeList::add(const Change &change)
{
    if (!m_folded && m_changes.size() < changesPerTransaction)
    {
        m_changes.push_back(change);
        return;
    }
    if (!m_folded)
    {
        fold();
    }
    // A database that is deleted is told as such, whatever else happened to it.
    const UINT message = change.message == DB_CEOID_DATABASE_DELETED ? change.message : DB_CEOID_CHANGED;
    for (Change &known : m_changes)
    {
        if (known.database == change.database)
        {
            known.message = message == DB_CEOID_DATABASE_DELETED ? message : known.message;
            known.source = known.source == change.source ? known.source : nullptr;
            return;
        }
    }
    m_changes.push_back({message, change.database, change.database, change.source});
}

void ChangeList::fold()
{
    const std::vector<Change> single = std::move(m_changes);
    m_changes.clear();
    m_folded = true;
    for (const Change &change : single)
    {
        add(change);
    }
}

void ChangeList::clear()
{
    m_changes.clear();
    m_folded = false;
}

void OpenDatabases::add(CEOID database)
{
    const std::lock_guard guard(m_mutex);
    ++m_handles[database];
}

void OpenDatabases::remove(CEOID database)
{
    const std::lock_guard guard(m_mutex);
    const auto found = m_handles.find(database);
    if (found != m_handles.end() && --found->second == 0)
    {
        m_handles.erase(found);
    }
}

bool OpenDatabases::isOpen(CEOID database)
{
    const std::lock_guard guard(m_mutex);
    return m_handles.count(database) != 0;
}

Notifier::Notifier(Store &store) : m_store(store), m_writerId(randomId())
{
}

Notifier::~Notifier()
{
    stop();
}

void Notifier::watch(const void *handle, CEOID database, HWND window, std::int64_t nextChange)
{
    const std::lock_guard guard(m_mutex);
    m_watches.push_back({handle, database, window});
    if (!m_running && !m_stop)
    {
        // A thread that ran out of watches has left its loop for good by the time m_running is false.
        if (m_thread.joinable())
        {
            m_thread.join();
        }
        m_running = true;
        m_version = -1;
        m_next = nextChange;
        m_thread = std::thread([this] { run(); });
    }
}

void Notifier::unwatch(const void *handle)
{
    const std::lock_guard guard(m_mutex);
    std::erase_if(m_watches, [handle](const Watch &watch) { return watch.handle == handle; });
    m_wake.notify_all();
}

void Notifier::post(const std::vector<Change> &changes)
{
    std::vector<std::pair<HWND, Change>> due;
    {
        const std::lock_guard guard(m_mutex);
        for (const Change &change : changes)
        {
            for (const Watch &watch : m_watches)
            {
                if (watch.database == change.database && watch.handle != change.source)
                {
                    due.emplace_back(watch.window, change);
                }
            }
        }
    }
    for (const auto &[window, change] : due)
    {
        PostMessageW(window, change.message, change.object, static_cast<LPARAM>(change.database));
    }
}

void Notifier::stop()
{
    std::thread thread;
    {
        const std::lock_guard guard(m_mutex);
        m_stop = true;
        m_watches.clear();
        thread = std::move(m_thread);
    }
    m_wake.notify_all();
    if (thread.joinable())
    {
        thread.join();
    }
}

std::vector<Change> Notifier::allChanged()
{
    std::vector<Change> changes;
    const std::lock_guard guard(m_mutex);
    std::set<CEOID> databases;
    for (const Watch &watch : m_watches)
    {
        if (databases.insert(watch.database).second)
        {
            changes.push_back({DB_CEOID_CHANGED, watch.database, watch.database, nullptr});
        }
    }
    return changes;
}

std::vector<Change> Notifier::readChanges()
{
    std::vector<Change> changes;
    Statement entries(*m_connection, Query::ChangesSince);
    entries.bind(1, m_next);
    bool missed = false;
    while (entries.step())
    {
        const std::int64_t sequence = entries.integer(0);
        missed = missed || sequence != m_next;
        m_next = sequence + 1;
        if (entries.integer(4) != m_writerId)
        {
            changes.push_back({static_cast<UINT>(entries.integer(3)), static_cast<CEOID>(entries.integer(1)),
                               static_cast<CEOID>(entries.integer(2)), nullptr});
        }
    }
    return missed ? allChanged() : changes;
}

std::vector<Change> Notifier::poll()
{
    try
    {
        if (m_connection == nullptr)
        {
            m_connection = m_store.connect();
        }
        Statement statement(*m_connection, Query::DataVersion);
        const std::int64_t version = statement.step() ? statement.integer(0) : 0;
        if (version == m_version)
        {
            return {};
        }
        std::vector<Change> changes = readChanges();
        m_version = version;
        return changes;
    }
    catch (const StoreFault &)
    {
        // A store that can't be read now is tried again at the next turn; nothing is lost but time.
        return {};
    }
}

void Notifier::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_stop && !m_watches.empty())
    {
        lock.unlock();
        post(poll());
        lock.lock();
        if (!m_stop && !m_watches.empty())
        {
            m_wake.wait_for(lock, pollInterval);
        }
    }
    m_connection = nullptr;
    m_running = false;
}
} // namespace zb::internal
