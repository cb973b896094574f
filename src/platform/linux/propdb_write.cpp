// CeWriteRecordProps and CeDeleteRecord.
#include "platform/kernel.h"
#include "platform/linux/propdb_change.h"
#include "platform/linux/propdb_handle.h"
#include "platform/linux/store_fault.h"
#include "platform/pim.h"

#include <cstring>
#include <optional>

namespace zb::internal
{
namespace
{
/// A stored record, copied out of the store.
struct StoredRecord
{
    Bytes key;
    RecordBytes bytes;
    RecordView view() const
    {
        return RecordView(bytes.data, bytes.rest);
    }
};

Bytes copyOf(BytesView bytes)
{
    return {bytes.begin(), bytes.end()};
}

StoredRecord loadRecord(WriteAccess &access, CEOID database, CEOID oid)
{
    Statement record(access.connection(), Query::RecordById);
    record.bind(1, oid);
    if (!record.step() || record.integer(0) != database)
    {
        throw StoreFault(ERROR_FILE_NOT_FOUND);
    }
    return {copyOf(record.bytes(1)), {copyOf(record.bytes(2)), copyOf(record.bytes(3))}};
}

void bindRest(Statement &statement, int place, const Bytes &rest)
{
    if (rest.empty())
    {
        statement.bindNull(place);
    }
    else
    {
        statement.bind(place, BytesView(rest));
    }
}

void runOrder(WriteAccess &access, Query query, CEOID database, std::size_t n, const Bytes &key, CEOID oid)
{
    Statement order(access.connection(), query);
    order.bind(1, database).bind(2, static_cast<std::int64_t>(n)).bind(3, BytesView(key)).bind(4, oid);
    order.run();
}

void addRecord(WriteAccess &access, CEOID database, CEOID oid, const RecordBytes &bytes)
{
    const auto orders = access.orders(database);
    const RecordView view(bytes.data, bytes.rest);
    access.willChange();
    const Bytes key = sortKeyOf(*orders, 0, view);
    {
        Statement insert(access.connection(), Query::InsertRecord);
        insert.bind(1, database).bind(2, BytesView(key)).bind(3, oid).bind(4, BytesView(bytes.data));
        bindRest(insert, 5, bytes.rest);
        insert.run();
    }
    for (std::size_t n = 1; n < orders->size(); ++n)
    {
        runOrder(access, Query::InsertOrder, database, n, sortKeyOf(*orders, n, view), oid);
    }
    access.count(database, 1, static_cast<std::int64_t>(bytes.size()));
    access.journal(database, oid, nullptr, &bytes);
}

void moveRecord(WriteAccess &access, CEOID database, CEOID oid, const Bytes &from, const Bytes &to)
{
    Statement move(access.connection(), Query::MoveRecord);
    move.bind(1, database).bind(2, BytesView(from)).bind(3, oid).bind(4, BytesView(to));
    move.run();
}

void changeRecord(WriteAccess &access, CEOID database, CEOID oid, const StoredRecord &old, const RecordBytes &bytes)
{
    const auto orders = access.orders(database);
    const RecordView before = old.view();
    const RecordView after(bytes.data, bytes.rest);
    access.willChange();
    const Bytes key = sortKeyOf(*orders, 0, after);
    if (key != old.key)
    {
        moveRecord(access, database, oid, old.key, key);
    }
    {
        Statement update(access.connection(), Query::UpdateRecord);
        update.bind(1, database).bind(2, BytesView(key)).bind(3, oid).bind(4, BytesView(bytes.data));
        bindRest(update, 5, bytes.rest);
        update.run();
    }
    for (std::size_t n = 1; n < orders->size(); ++n)
    {
        const Bytes oldKey = sortKeyOf(*orders, n, before);
        const Bytes newKey = sortKeyOf(*orders, n, after);
        if (oldKey != newKey)
        {
            runOrder(access, Query::DeleteOrder, database, n, oldKey, oid);
            runOrder(access, Query::InsertOrder, database, n, newKey, oid);
        }
    }
    access.count(database, 0, static_cast<std::int64_t>(bytes.size()) - static_cast<std::int64_t>(old.bytes.size()));
    access.journal(database, oid, &old.bytes, &bytes);
}

void removeRecord(WriteAccess &access, CEOID database, CEOID oid, const StoredRecord &old)
{
    const auto orders = access.orders(database);
    const RecordView view = old.view();
    access.willChange();
    {
        Statement remove(access.connection(), Query::DeleteRecord);
        remove.bind(1, database).bind(2, BytesView(old.key)).bind(3, oid);
        remove.run();
    }
    for (std::size_t n = 1; n < orders->size(); ++n)
    {
        runOrder(access, Query::DeleteOrder, database, n, sortKeyOf(*orders, n, view), oid);
    }
    access.count(database, -1, -static_cast<std::int64_t>(old.bytes.size()));
    access.journal(database, oid, &old.bytes, nullptr);
}

CEOID writeRecord(DatabaseHandle &handle, CEOID oid, std::span<const CEPROPVAL> properties)
{
    const CEOID database = handle.database();
    if (oid == 0)
    {
        // Put together before the writer is taken: the longer part of the work needs no lock.
        const RecordBytes bytes = mergeRecord(nullptr, properties);
        WriteAccess access(handle.store());
        access.orders(database); // before an id is taken
        access.willChange();
        oid = access.newId();
        addRecord(access, database, oid, bytes);
        access.note(DB_CEOID_CREATED, database, oid, &handle);
        access.commit();
        return oid;
    }
    WriteAccess access(handle.store());
    access.orders(database);
    const StoredRecord old = loadRecord(access, database, oid);
    const RecordView before = old.view();
    changeRecord(access, database, oid, old, mergeRecord(&before, properties));
    access.note(DB_CEOID_CHANGED, database, oid, &handle);
    access.commit();
    return oid;
}

void deleteRecord(DatabaseHandle &handle, CEOID oid)
{
    const CEOID database = handle.database();
    WriteAccess access(handle.store());
    access.orders(database);
    removeRecord(access, database, oid, loadRecord(access, database, oid));
    access.note(DB_CEOID_RECORD_DELETED, database, oid, &handle);
    access.commit();
}

/// As it is in the store, if it is there.
std::optional<StoredRecord> recordThere(WriteAccess &access, const JournalEntry &entry)
{
    Statement record(access.connection(), Query::RecordById);
    record.bind(1, entry.record);
    if (!record.step() || record.integer(0) != entry.database)
    {
        return std::nullopt;
    }
    return StoredRecord{copyOf(record.bytes(1)), {copyOf(record.bytes(2)), copyOf(record.bytes(3))}};
}

/// The name that an item has in calendar files and cards; empty for none.
std::u16string identityOf(const RecordBytes &bytes)
{
    const auto value = RecordView(bytes.data, bytes.rest).find(itemInterchangeId);
    if (!value)
    {
        return {};
    }
    std::u16string identity(value->bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(identity.data(), value->bytes.data(), identity.size() * sizeof(char16_t));
    return identity;
}

/// An empty one takes it away.
RecordBytes withIdentity(const RecordBytes &bytes, std::u16string identity)
{
    CEPROPVAL value{};
    value.propid = itemInterchangeId;
    value.wFlags = identity.empty() ? CEDB_PROPDELETE : 0;
    value.val.lpwstr = identity.data();
    const RecordView view(bytes.data, bytes.rest);
    return mergeRecord(&view, {&value, 1});
}

/// What the record has to become; nothing when it is not as the entry left it. An identity that it was given since, by
/// an export, is no change of anybody's: it stays, else the file's item would come in once more.
std::optional<RecordBytes> formerState(const std::optional<StoredRecord> &now, const JournalEntry &entry)
{
    RecordBytes former{entry.data, entry.rest};
    if (now.has_value() != entry.isThere)
    {
        return std::nullopt;
    }
    if (!now || fingerprintOf(now->bytes.data, now->bytes.rest) == entry.after)
    {
        return former;
    }
    const std::u16string given = identityOf(now->bytes);
    const RecordBytes without = withIdentity(now->bytes, u"");
    if (given.empty() || fingerprintOf(without.data, without.rest) != entry.after)
    {
        return std::nullopt;
    }
    return entry.wasThere && identityOf(former).empty() ? withIdentity(former, given) : former;
}
} // namespace

bool takeBack(Store &store, const JournalEntry &entry)
{
    WriteAccess access(store);
    const std::optional<StoredRecord> now = recordThere(access, entry);
    const std::optional<RecordBytes> former = formerState(now, entry);
    if (!former)
    {
        return false;
    }
    UINT message = DB_CEOID_CHANGED;
    if (!entry.wasThere)
    {
        message = DB_CEOID_RECORD_DELETED;
        now ? removeRecord(access, entry.database, entry.record, *now) : void();
    }
    else if (now)
    {
        changeRecord(access, entry.database, entry.record, *now, *former);
    }
    else
    {
        message = DB_CEOID_CREATED;
        addRecord(access, entry.database, entry.record, *former);
    }
    access.note(message, entry.database, entry.record, nullptr);
    access.commit();
    return true;
}
} // namespace zb::internal

using namespace zb::internal;

CEOID CeWriteRecordProps(HANDLE database, CEOID oid, WORD count, const CEPROPVAL *properties)
{
    zb::stoppingPoint();
    const std::shared_ptr<DatabaseHandle> handle = databaseOf(database);
    if (handle == nullptr)
    {
        return 0;
    }
    if (count != 0 && properties == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return storeCall<CEOID>(0, [&] { return writeRecord(*handle, oid, {properties, count}); });
}

BOOL CeDeleteRecord(HANDLE database, CEOID oid)
{
    zb::stoppingPoint();
    const std::shared_ptr<DatabaseHandle> handle = databaseOf(database);
    if (handle == nullptr)
    {
        return FALSE;
    }
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               deleteRecord(*handle, oid);
                               return TRUE;
                           });
}
