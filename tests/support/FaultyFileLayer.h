// A SQLite file layer that fails on demand: full disks, failed reads and syncs, files that may only be read, locks held
// by others, cuts of power that take back what was never synced.
//
//     FaultyFileLayer layer;                        // registered under layer.name() as long as it lives
//     DeviceOptions options;
//     options.storeFileLayer = layer.name();
//     TestDevice device(options);
//     layer.failWrites(3, SQLITE_FULL);             // three more succeed
//
// Threads: the settings may be changed while others use the layer.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace zb::test
{
class FaultyFileLayer
{
  public:
    FaultyFileLayer();
    ~FaultyFileLayer();
    FaultyFileLayer(const FaultyFileLayer &) = delete;
    FaultyFileLayer &operator=(const FaultyFileLayer &) = delete;

    const std::string &name() const
    {
        return m_name;
    }

    /// After `allowed` more of them every one fails with this SQLite result; a failing write still writes its first
    /// half when `torn`.
    void failWrites(int allowed, int result, bool torn = false);
    void failSyncs(int allowed, int result);
    void failReads(int allowed, int result);
    /// No more faults of the kinds above. Writes since power was cut stay lost.
    void heal();

    /// Files open for reading only.
    void setReadOnly(bool readOnly)
    {
        m_readOnly = readOnly;
    }
    /// All locks are another's; waiting for them takes no time.
    void setBusy(bool busy)
    {
        m_busy = busy;
    }
    /// Syncs succeed without doing anything: for tests of many writes that are not about durability.
    void setQuick(bool quick)
    {
        m_quick = quick;
    }

    /// Files opened from here on may be mapped into memory; what is read that way passes the layer by.
    void setMapped(bool mapped)
    {
        m_mapped = mapped;
    }

    /// Remembers what every write replaces until it is synced.
    void watchSyncs();
    /// From here on nothing reaches the disk.
    void cutPower();
    /// Once the store is closed: puts the files back to what was synced, and lets writes through again.
    void restorePower();

    /// Writes, truncations and syncs asked for so far.
    int writes() const
    {
        return m_writes;
    }
    int syncs() const
    {
        return m_syncs;
    }

    // What the layer's functions ask; not for tests.
    int beforeWrite(bool *torn);
    int beforeSync();
    int beforeRead();
    bool isBusy() const
    {
        return m_busy;
    }
    bool isReadOnly() const
    {
        return m_readOnly;
    }
    bool isQuick() const
    {
        return m_quick;
    }
    bool isMapped() const
    {
        return m_mapped;
    }
    void remember(const std::string &path, sqlite3_file *file, std::int64_t offset, std::int64_t size);
    void forget(const std::string &path);
    sqlite3_vfs *parent() const
    {
        return m_parent;
    }

  private:
    struct Fault
    {
        std::atomic<int> allowed{-1}; ///< -1: none
        std::atomic<int> result{0};
        int take();
    };
    struct Replaced
    {
        std::int64_t fileSize;
        std::int64_t offset;
        std::vector<char> bytes;
    };

    std::string m_name;
    sqlite3_vfs *m_parent;
    sqlite3_vfs m_layer{};
    Fault m_writeFault;
    Fault m_syncFault;
    Fault m_readFault;
    std::atomic<bool> m_torn{false};
    std::atomic<bool> m_readOnly{false};
    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_quick{false};
    std::atomic<bool> m_mapped{false};
    std::atomic<bool> m_watching{false};
    std::atomic<bool> m_cut{false};
    std::atomic<int> m_writes{0};
    std::atomic<int> m_syncs{0};
    std::mutex m_mutex;
    std::map<std::string, std::vector<Replaced>> m_replaced;
};
} // namespace zb::test
