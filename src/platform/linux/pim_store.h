// Records of the item databases for item objects: read whole, written, deleted.
//
// The databases are opened when they are first needed and stay open while the same device does. One thread at a time.
#pragma once

#include "platform/automation.h"
#include "platform/pim.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
enum class PimKind
{
    Appointment = 1,
    Contact = 2,
    Task = 3
};

/// One record's properties, in memory of its own; empty until one was read.
class StoredItem
{
  public:
    StoredItem() = default;
    ~StoredItem();
    StoredItem(const StoredItem &) = delete;
    StoredItem &operator=(const StoredItem &) = delete;

    const CEPROPVAL *values() const
    {
        return reinterpret_cast<const CEPROPVAL *>(m_block);
    }
    WORD count() const
    {
        return m_count;
    }
    const CEPROPVAL *find(CEPROPID id) const;
    bool has(CEPROPID id) const
    {
        return find(id) != nullptr;
    }
    std::u16string text(CEPROPID id) const;
    std::vector<BYTE> blob(CEPROPID id) const;
    LONG number(CEPROPID id, LONG otherwise) const;
    SHORT shortNumber(CEPROPID id, SHORT otherwise) const;
    std::optional<LONGLONG> ticks(CEPROPID id) const;

  private:
    friend class PimStore;
    BYTE *m_block = nullptr;
    DWORD m_size = 0;
    WORD m_count = 0;
};

/// Clears the alarm that a task's record names, if any; one that is gone already is no error.
void clearNotificationOf(const StoredItem &task);

/// The error of the last call, as a result; E_FAIL when none was told.
HRESULT lastResult();

class PimStore
{
  public:
    PimStore() = default;
    ~PimStore();
    PimStore(const PimStore &) = delete;
    PimStore &operator=(const PimStore &) = delete;

    /// Which database the record is of; nothing when it is none of the three, or no record.
    static std::optional<PimKind> kindOf(CEOID oid);
    static const WCHAR *databaseName(PimKind kind);

    HRESULT open(PimKind kind);
    /// HRESULT_FROM_WIN32(2) for a record that is not there. Inside a BulkWrite the record as it is now; outside, too.
    HRESULT read(PimKind kind, CEOID oid, StoredItem &item);
    /// Adds (oid 0) or changes; *oid gets the id.
    HRESULT write(PimKind kind, const RecordProperties &properties, CEOID &oid);
    HRESULT remove(PimKind kind, CEOID oid);
    HRESULT all(PimKind kind, std::vector<CEOID> &oids);

  private:
    HANDLE handle(PimKind kind);
    void close();

    std::array<HANDLE, 4> m_handles{};
    std::uint64_t m_device = 0;
};
} // namespace zb::internal
