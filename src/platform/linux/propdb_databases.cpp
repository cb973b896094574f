// Databases as a whole: making, opening, deleting, telling about them and changing what they are.
#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/propdb_handle.h"
#include "platform/linux/store_fault.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
[[noreturn]] void refuse(DWORD code)
{
    throw StoreFault(code);
}

/// The name up to its terminator, which must stand within the first 33 characters.
std::u16string checkedName(const WCHAR *name)
{
    std::u16string checked;
    for (std::size_t at = 0; name != nullptr && at <= CEDB_MAXDBASENAMELEN; ++at)
    {
        if (name[at] == 0)
        {
            if (checked.empty() || !isWellFormed(checked))
            {
                break;
            }
            return checked;
        }
        checked.push_back(name[at]);
    }
    refuse(ERROR_INVALID_PARAMETER);
}

/// 0 when there is none of this name.
CEOID databaseNamed(Connection &connection, std::u16string_view name)
{
    const std::u16string key = foldCase(name);
    Statement found(connection, Query::DatabaseByName);
    found.bindText(1, key);
    return found.step() ? static_cast<CEOID>(found.integer(0)) : 0;
}

CEOID createDatabase(const WCHAR *name, DWORD type, std::span<const SORTORDERSPEC> orders)
{
    const std::u16string checked = checkedName(name);
    if (!areValidOrders(orders))
    {
        refuse(ERROR_INVALID_PARAMETER);
    }
    const std::shared_ptr<Store> store = openedStore();
    WriteAccess access(*store);
    if (databaseNamed(access.connection(), checked) != 0)
    {
        refuse(ERROR_ALREADY_EXISTS);
    }
    access.willChange();
    const CEOID oid = access.newId();
    const Bytes encoded = encodeOrders(orders);
    {
        Statement insert(access.connection(), Query::InsertDatabase);
        insert.bind(1, oid).bindText(2, checked).bindText(3, foldCase(checked)).bind(4, type);
        insert.bind(5, BytesView(encoded)).bind(6, currentTicks());
        insert.run();
    }
    access.note(DB_CEOID_CREATED, oid, oid, nullptr);
    access.commit();
    return oid;
}

HANDLE openDatabase(CEOID &oid, const WCHAR *name, CEPROPID sortProperty, DWORD flags, HWND notify)
{
    const std::shared_ptr<Store> store = openedStore();
    CEOID database = oid;
    std::int64_t nextChange = 0;
    if (database == 0 || notify != nullptr)
    {
        ReadAccess access(*store);
        if (database == 0)
        {
            database = databaseNamed(access.connection(), checkedName(name));
        }
        Statement counters(access.connection(), Query::ReadCounters);
        nextChange = counters.step() ? counters.integer(1) : 0;
    }
    if (database == 0)
    {
        refuse(ERROR_FILE_NOT_FOUND);
    }
    const auto handle = std::make_shared<DatabaseHandle>(store, database, sortProperty, flags);
    if (notify != nullptr)
    {
        store->notifier().watch(handle.get(), database, notify, nextChange);
    }
    const HANDLE value = insertHandle(handle);
    if (value == nullptr)
    {
        refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    oid = database;
    return value;
}

void deleteRows(WriteAccess &access, Query query, CEOID database)
{
    Statement rows(access.connection(), query);
    rows.bind(1, database).run();
}

void deleteDatabase(CEOID oid)
{
    const std::shared_ptr<Store> store = openedStore();
    WriteAccess access(*store);
    access.orders(oid);
    if (store->openDatabases().isOpen(oid))
    {
        refuse(ERROR_SHARING_VIOLATION);
    }
    access.willChange();
    deleteRows(access, Query::DeleteDatabaseRecords, oid);
    deleteRows(access, Query::DeleteDatabaseOrders, oid);
    deleteRows(access, Query::DeleteDatabase, oid);
    access.forgetDatabase(oid);
    access.note(DB_CEOID_DATABASE_DELETED, oid, oid, nullptr);
    access.commit();
}

template <typename Number>
Number held(std::int64_t value)
{
    return static_cast<Number>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<Number>::max()));
}

void fillInfo(CEDBASEINFO &info, Statement &row, const PendingChanges::Counts &pending)
{
    info.dwFlags = CEDB_VALIDNAME | CEDB_VALIDTYPE | CEDB_VALIDSORTSPEC | CEDB_VALIDMODTIME;
    const std::u16string name = row.text(1);
    std::copy_n(name.data(), std::min(name.size(), CEDB_MAXDBASENAMELEN), info.szDbaseName);
    info.dwDbaseType = static_cast<DWORD>(row.integer(2));
    const SortOrders orders = decodeOrders(row.bytes(3));
    info.wNumSortOrder = static_cast<WORD>(orders.size());
    std::copy(orders.begin(), orders.end(), info.rgSortSpecs);
    info.wNumRecords = held<WORD>(row.integer(5) + pending.records);
    info.dwNumRecords = held<DWORD>(row.integer(5) + pending.records);
    info.dwSize = held<DWORD>(row.integer(6) + pending.bytes);
    // Inside a bulk the time of the last change is now.
    const auto modified = static_cast<std::uint64_t>(pending.writes == 0 ? row.integer(7) : currentTicks());
    info.ftLastModified = {static_cast<DWORD>(modified), static_cast<DWORD>(modified >> 32U)};
}

bool objectInfo(CEOID oid, CEOIDINFO &info)
{
    const std::shared_ptr<Store> store = openedStore();
    ReadAccess access(*store);
    Statement database(access.connection(), Query::DatabaseRow);
    database.bind(1, oid);
    if (database.step())
    {
        fillInfo(info.infDatabase, database, access.pending(oid));
        info.wObjType = OBJTYPE_DATABASE;
        return true;
    }
    Statement record(access.connection(), Query::RecordHome);
    record.bind(1, oid);
    if (!record.step())
    {
        return false;
    }
    info.infRecord.oidParent = static_cast<CEOID>(record.integer(0));
    info.wObjType = OBJTYPE_RECORD;
    return true;
}

/// The fields of a database that a caller wants changed.
struct DatabaseChange
{
    std::optional<std::u16string> name;
    std::optional<DWORD> type;
    std::optional<SortOrders> orders;
    std::optional<std::int64_t> modified;
};

DatabaseChange changeOf(const CEDBASEINFO &info)
{
    constexpr DWORD known = CEDB_VALIDNAME | CEDB_VALIDTYPE | CEDB_VALIDSORTSPEC | CEDB_VALIDMODTIME;
    if ((info.dwFlags & ~known) != 0)
    {
        refuse(ERROR_INVALID_PARAMETER);
    }
    DatabaseChange change;
    if ((info.dwFlags & CEDB_VALIDNAME) != 0)
    {
        change.name = checkedName(info.szDbaseName);
    }
    if ((info.dwFlags & CEDB_VALIDTYPE) != 0)
    {
        change.type = info.dwDbaseType;
    }
    if ((info.dwFlags & CEDB_VALIDSORTSPEC) != 0)
    {
        if (info.wNumSortOrder > CEDB_MAXSORTORDER || !areValidOrders({info.rgSortSpecs, info.wNumSortOrder}))
        {
            refuse(ERROR_INVALID_PARAMETER);
        }
        change.orders = SortOrders(info.rgSortSpecs, info.rgSortSpecs + info.wNumSortOrder);
    }
    if ((info.dwFlags & CEDB_VALIDMODTIME) != 0)
    {
        change.modified = static_cast<std::int64_t>(
            static_cast<std::uint64_t>(info.ftLastModified.dwHighDateTime) << 32U | info.ftLastModified.dwLowDateTime);
    }
    return change;
}

/// Up to 1,024 ids of the database's records behind `last`, which moves on; `more` tells whether to ask again.
std::vector<CEOID> nextRecords(WriteAccess &access, CEOID database, std::int64_t &last, bool &more)
{
    std::vector<CEOID> found;
    Statement ids(access.connection(), Query::RecordsAfter);
    ids.bind(1, last);
    more = false;
    while (ids.step())
    {
        more = true;
        last = ids.integer(0);
        if (ids.integer(1) == database)
        {
            found.push_back(static_cast<CEOID>(last));
        }
    }
    return found;
}

void reorderRecord(WriteAccess &access, CEOID database, CEOID oid, const SortOrders &orders)
{
    Bytes oldKey;
    std::vector<Bytes> keys;
    {
        Statement record(access.connection(), Query::RecordById);
        record.bind(1, oid);
        if (!record.step())
        {
            refuse(ERROR_FILE_CORRUPT);
        }
        const BytesView stored = record.bytes(1);
        oldKey.assign(stored.begin(), stored.end());
        const RecordView view(record.bytes(2), record.bytes(3));
        for (std::size_t n = 0; n == 0 || n < orders.size(); ++n)
        {
            keys.push_back(sortKeyOf(orders, n, view));
        }
    }
    if (keys[0] != oldKey)
    {
        Statement move(access.connection(), Query::MoveRecord);
        move.bind(1, database).bind(2, BytesView(oldKey)).bind(3, oid).bind(4, BytesView(keys[0]));
        move.run();
    }
    for (std::size_t n = 1; n < keys.size(); ++n)
    {
        Statement insert(access.connection(), Query::InsertOrder);
        insert.bind(1, database).bind(2, static_cast<std::int64_t>(n)).bind(3, BytesView(keys[n])).bind(4, oid);
        insert.run();
    }
}

/// By id, because moving a record in the clustered order does not change its place among the ids.
void rebuildOrders(WriteAccess &access, CEOID database, const SortOrders &orders)
{
    deleteRows(access, Query::DeleteDatabaseOrders, database);
    std::int64_t last = 0;
    bool more = true;
    while (more)
    {
        for (const CEOID oid : nextRecords(access, database, last, more))
        {
            reorderRecord(access, database, oid, orders);
        }
    }
}

void changeRow(WriteAccess &access, CEOID oid, const DatabaseChange &change)
{
    const Bytes orders = change.orders ? encodeOrders(*change.orders) : Bytes();
    Statement update(access.connection(), Query::ChangeDatabase);
    update.bind(1, oid).bindNull(2).bindNull(3).bindNull(4).bindNull(5);
    if (change.name)
    {
        update.bindText(2, *change.name).bindText(3, foldCase(*change.name));
    }
    if (change.type)
    {
        update.bind(4, *change.type);
    }
    if (change.orders)
    {
        update.bind(5, BytesView(orders));
    }
    update.bind(6, change.modified ? *change.modified : currentTicks());
    update.run();
}

void changeDatabase(CEOID oid, const CEDBASEINFO &info)
{
    const DatabaseChange change = changeOf(info);
    const std::shared_ptr<Store> store = openedStore();
    WriteAccess access(*store);
    access.orders(oid);
    if (change.name)
    {
        const CEOID holder = databaseNamed(access.connection(), *change.name);
        if (holder != 0 && holder != oid)
        {
            refuse(ERROR_ALREADY_EXISTS);
        }
    }
    if (info.dwFlags == 0)
    {
        return;
    }
    access.willChange();
    // What this bulk has counted goes in first: its time of change must not come after the one set here.
    access.settleCounts();
    if (change.orders)
    {
        rebuildOrders(access, oid, *change.orders);
        access.forgetOrders(oid);
    }
    changeRow(access, oid, change);
    access.note(DB_CEOID_CHANGED, oid, oid, nullptr);
    access.commit();
}

bool isSystemVolume(const CEGUID *volume)
{
    return volume != nullptr && (volume->Data1 | volume->Data2 | volume->Data3 | volume->Data4) == 0;
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

CEOID CeCreateDatabase(const WCHAR *name, DWORD type, WORD sortCount, const SORTORDERSPEC *sorts)
{
    zb::stoppingPoint();
    if (sortCount != 0 && sorts == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return storeCall<CEOID>(0, [&] { return createDatabase(name, type, {sorts, sortCount}); });
}

HANDLE CeOpenDatabase(CEOID *oid, const WCHAR *name, CEPROPID sortProperty, DWORD flags, HWND notify)
{
    zb::stoppingPoint();
    if (oid == nullptr || (flags & ~CEDB_AUTOINCREMENT) != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    return storeCall(INVALID_HANDLE_VALUE, [&] { return openDatabase(*oid, name, sortProperty, flags, notify); });
}

BOOL CeDeleteDatabase(CEOID oid)
{
    zb::stoppingPoint();
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               deleteDatabase(oid);
                               return TRUE;
                           });
}

BOOL CeOidGetInfo(CEOID oid, CEOIDINFO *info)
{
    zb::stoppingPoint();
    if (info == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *info = CEOIDINFO{};
    return storeCall<BOOL>(FALSE,
                           [&]() -> BOOL
                           {
                               if (objectInfo(oid, *info))
                               {
                                   return TRUE;
                               }
                               SetLastError(ERROR_FILE_NOT_FOUND);
                               return FALSE;
                           });
}

BOOL CeSetDatabaseInfoEx(const CEGUID *volume, CEOID oid, const CEDBASEINFO *info)
{
    zb::stoppingPoint();
    if (!isSystemVolume(volume) || info == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               changeDatabase(oid, *info);
                               return TRUE;
                           });
}
