#include "platform/linux/pim_store.h"

#include "platform/clock.h"
#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/linux/pim_item_fields.h"
#include "platform/notify.h"
#include "platform/text.h"

namespace zb::internal
{
namespace
{
constexpr HRESULT notFound = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
constexpr std::array kinds = {PimKind::Appointment, PimKind::Contact, PimKind::Task};
} // namespace

HRESULT lastResult()
{
    const DWORD code = GetLastError();
    return code == 0 ? E_FAIL : HRESULT_FROM_WIN32(code);
}

const CEPROPVAL *StoredItem::find(CEPROPID id) const
{
    const auto *const values = reinterpret_cast<const CEPROPVAL *>(m_block);
    for (WORD i = 0; i < m_count; ++i)
    {
        if (values[i].propid == id && (values[i].wFlags & CEDB_PROPNOTFOUND) == 0)
        {
            return values + i;
        }
    }
    return nullptr;
}

std::u16string StoredItem::text(CEPROPID id) const
{
    const CEPROPVAL *const value = find(id);
    return value == nullptr || value->val.lpwstr == nullptr ? std::u16string() : value->val.lpwstr;
}

std::vector<BYTE> StoredItem::blob(CEPROPID id) const
{
    const CEPROPVAL *const value = find(id);
    return value == nullptr ? std::vector<BYTE>()
                            : std::vector<BYTE>(value->val.blob.lpb, value->val.blob.lpb + value->val.blob.dwCount);
}

LONG StoredItem::number(CEPROPID id, LONG otherwise) const
{
    const CEPROPVAL *const value = find(id);
    return value == nullptr ? otherwise : value->val.lVal;
}

SHORT StoredItem::shortNumber(CEPROPID id, SHORT otherwise) const
{
    const CEPROPVAL *const value = find(id);
    return value == nullptr ? otherwise : value->val.iVal;
}

std::optional<LONGLONG> StoredItem::ticks(CEPROPID id) const
{
    const CEPROPVAL *const value = find(id);
    return value == nullptr ? std::nullopt : std::optional(ticksOf(value->val.filetime));
}

StoredItem::~StoredItem()
{
    LocalFree(m_block);
}

PimStore::~PimStore()
{
    close();
}

void PimStore::close()
{
    for (HANDLE &each : m_handles)
    {
        if (each != nullptr)
        {
            CloseHandle(each);
            each = nullptr;
        }
    }
}

const WCHAR *PimStore::databaseName(PimKind kind)
{
    switch (kind)
    {
    case PimKind::Appointment:
        return appointmentsDatabase;
    case PimKind::Contact:
        return contactsDatabase;
    default:
        return tasksDatabase;
    }
}

std::optional<PimKind> PimStore::kindOf(CEOID oid)
{
    CEOIDINFO record{};
    CEOIDINFO database{};
    if (CeOidGetInfo(oid, &record) == FALSE || record.wObjType != OBJTYPE_RECORD ||
        CeOidGetInfo(record.infRecord.oidParent, &database) == FALSE || database.wObjType != OBJTYPE_DATABASE)
    {
        return std::nullopt;
    }
    for (const PimKind kind : kinds)
    {
        if (_wcsicmp(database.infDatabase.szDbaseName, databaseName(kind)) == 0)
        {
            return kind;
        }
    }
    return std::nullopt;
}

/// Null, with the last error, when it does not open.
HANDLE PimStore::handle(PimKind kind)
{
    const std::uint64_t device = deviceGeneration();
    if (device != m_device)
    {
        close(); // stale by now: closing them is refused, and harmless
        m_device = device;
    }
    HANDLE &handle = m_handles[static_cast<std::size_t>(kind)];
    if (handle == nullptr)
    {
        CEOID oid = 0;
        const HANDLE opened = CeOpenDatabase(&oid, databaseName(kind), 0, 0, nullptr);
        handle = opened == INVALID_HANDLE_VALUE ? nullptr : opened;
    }
    return handle;
}

HRESULT PimStore::open(PimKind kind)
{
    return handle(kind) != nullptr ? S_OK : lastResult();
}

HRESULT PimStore::read(PimKind kind, CEOID oid, StoredItem &item)
{
    const HANDLE database = handle(kind);
    if (database == nullptr)
    {
        return lastResult();
    }
    item.m_count = 0;
    WORD count = 0;
    if (CeSeekDatabase(database, CEDB_SEEK_CEOID, oid, nullptr) != oid ||
        CeReadRecordProps(database, CEDB_ALLOWREALLOC, &count, nullptr, &item.m_block, &item.m_size) != oid)
    {
        return GetLastError() == ERROR_SEEK ? notFound : lastResult();
    }
    item.m_count = count;
    return S_OK;
}

HRESULT PimStore::write(PimKind kind, const RecordProperties &properties, CEOID &oid)
{
    const HANDLE database = handle(kind);
    if (database == nullptr)
    {
        return lastResult();
    }
    const CEOID written = CeWriteRecordProps(database, oid, properties.count(), properties.values());
    if (written == 0)
    {
        return lastResult();
    }
    oid = written;
    return S_OK;
}

HRESULT PimStore::remove(PimKind kind, CEOID oid)
{
    const HANDLE database = handle(kind);
    if (database == nullptr)
    {
        return lastResult();
    }
    if (kind != PimKind::Task)
    {
        return CeDeleteRecord(database, oid) != FALSE ? S_OK : lastResult();
    }
    // The alarm of a task goes with it.
    BulkWrite bulk;
    StoredItem item;
    const HRESULT found = read(kind, oid, item);
    const HRESULT result = CeDeleteRecord(database, oid) != FALSE ? S_OK : lastResult();
    if (SUCCEEDED(result) && SUCCEEDED(found))
    {
        clearNotificationOf(item);
    }
    return bulk.commit() || FAILED(result) ? result : lastResult();
}

void clearNotificationOf(const StoredItem &task)
{
    if (const LONG number = task.number(taskNotification, 0); number != 0)
    {
        CeClearUserNotification(notificationHandle(static_cast<DWORD>(number)));
    }
}

HRESULT PimStore::all(PimKind kind, std::vector<CEOID> &oids)
{
    const HANDLE database = handle(kind);
    if (database == nullptr)
    {
        return lastResult();
    }
    for (CEOID oid = CeSeekDatabase(database, CEDB_SEEK_BEGINNING, 0, nullptr); oid != 0;
         oid = CeSeekDatabase(database, CEDB_SEEK_CURRENT, 1, nullptr))
    {
        oids.push_back(oid);
    }
    return S_OK;
}
} // namespace zb::internal
