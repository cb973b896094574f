// How a handle's position moves: within the batch where that tells, else by one walk in the store.
#include "platform/linux/propdb_handle.h"

#include "platform/kernel.h"
#include "platform/linux/store_fault.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr std::int64_t batchMilliseconds = 100;
constexpr std::size_t largestBatch = 512;
constexpr std::size_t batchGrowth = 8;
/// A batch that fits the processor's cache beside what its reader works on.
constexpr std::size_t batchBytes = 128 * 1024;

/// No key begins with this byte, so the point lies behind all records; the empty key lies in front of all.
constexpr BYTE behindAllKeys = 0xFF;
constexpr std::int64_t beforeAllIds = -1;

std::int64_t coarseMilliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

bool equal(BytesView a, BytesView b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}
} // namespace

DatabaseHandle::DatabaseHandle(std::shared_ptr<Store> store, CEOID database, CEPROPID sortProperty, DWORD flags)
    : HandleObject(HandleKind::Database), m_store(std::move(store)), m_database(database), m_sortProperty(sortProperty),
      m_flags(flags)
{
    // Counted before it is looked for: who deletes the database meanwhile either sees the handle or is seen by it.
    m_mark.emplace(m_store->openDatabases(), database);
    seekBeginning(0);
}

DatabaseHandle::~DatabaseHandle()
{
    m_store->notifier().unwatch(this);
}

bool DatabaseHandle::onClose()
{
    m_store->notifier().unwatch(this);
    m_mark.reset();
    return true;
}

bool DatabaseHandle::isFresh() const
{
    return m_row >= 0 && m_writes == m_store->writes() && coarseMilliseconds() - m_readAt < batchMilliseconds;
}

void DatabaseHandle::checkState(Statement &state, ReadAccess &access)
{
    state.bind(1, m_database);
    if (!state.step())
    {
        throw StoreFault(ERROR_FILE_NOT_FOUND);
    }
    if (state.integer(0) != m_ordersVersion)
    {
        takeOrders(access.connection(), state.bytes(3));
        m_ordersVersion = state.integer(0);
    }
    const PendingChanges::Counts pending = access.pending(m_database);
    m_records = state.integer(2) + pending.records;
    // Inside a bulk the revision is not final, and may come again after it was taken back: named by the count of
    // writes, which never repeats.
    const std::int64_t revision =
        access.inBulk() ? -2 - static_cast<std::int64_t>(m_store->writes()) : state.integer(1);
    if (revision != m_revision)
    {
        m_revision = revision;
        m_index = -1;
    }
}

void DatabaseHandle::takeOrders(Connection &connection, BytesView orders)
{
    m_orders = decodeOrders(orders);
    const auto found = std::find_if(m_orders.begin(), m_orders.end(),
                                    [this](const SORTORDERSPEC &order) { return order.propid == m_sortProperty; });
    if (m_sortProperty != 0 && found == m_orders.end())
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    m_order = m_sortProperty == 0 ? 0 : static_cast<std::size_t>(found - m_orders.begin());
    // The old key means nothing in the new order.
    if (m_place == Place::On && !lookUp(connection, m_oid, true))
    {
        standNowhere(Place::BehindLast);
    }
    keepPosition();
}

void DatabaseHandle::keepPosition()
{
    if (m_row >= 0)
    {
        const BatchRow &row = m_rows[static_cast<std::size_t>(m_row)];
        const BytesView key = rowKey(row);
        m_key.assign(key.begin(), key.end());
        m_oid = row.oid;
        m_row = -1;
    }
}

CEOID DatabaseHandle::standOn(std::size_t row, std::int64_t index)
{
    m_place = Place::On;
    m_row = static_cast<std::ptrdiff_t>(row);
    m_index = index;
    m_displaced = false;
    return m_rows[row].oid;
}

CEOID DatabaseHandle::standNowhere(Place place)
{
    m_place = place;
    m_row = -1;
    m_index = -1;
    return 0;
}

CEOID DatabaseHandle::seekId(CEOID oid)
{
    keepPosition();
    const std::uint64_t writes = m_store->writes();
    ReadAccess access(*m_store);
    Statement state(access.connection(), Query::DatabaseState);
    checkState(state, access);
    if (!lookUp(access.connection(), oid, true))
    {
        return standNowhere(Place::BehindLast);
    }
    m_writes = writes;
    m_batch = batchGrowth;
    return standOn(0, -1);
}

CEOID DatabaseHandle::seekBeginning(std::uint64_t records)
{
    return fetch({From::Beginning, true, records});
}

CEOID DatabaseHandle::seekEnd(std::uint64_t records)
{
    return fetch({From::End, false, records});
}

CEOID DatabaseHandle::seekCurrent(std::int64_t records)
{
    if (records == 0)
    {
        BytesView data;
        return currentRecord(data);
    }
    CEOID found = 0;
    if (stepInBatch(records, &found))
    {
        return found;
    }
    const bool forward = records > 0;
    if (m_place == (forward ? Place::BehindLast : Place::BeforeFirst))
    {
        return 0;
    }
    const std::uint64_t distance = static_cast<std::uint64_t>(forward ? records : -records);
    Target target{From::Position, forward, distance - 1};
    if (distance == 1)
    {
        // Walking: the further it goes, the further it is read ahead.
        const bool stale = m_row >= 0 && m_writes != m_store->writes();
        target.wanted = stale || forward != m_forward ? 1 : m_batch;
        m_batch = std::min(target.wanted * batchGrowth, largestBatch);
    }
    return fetch(target);
}

CEOID DatabaseHandle::seekSmaller(const CEPROPVAL &value)
{
    if (fetch({From::Value, false, 0, 1, &value}) == 0)
    {
        standNowhere(Place::BehindLast);
        return 0;
    }
    return m_rows[0].oid;
}

CEOID DatabaseHandle::seekGreater(const CEPROPVAL &value)
{
    return fetch({From::Value, true, 0, 1, &value});
}

CEOID DatabaseHandle::seekEqual(const CEPROPVAL &value)
{
    const CEOID found = fetch({From::Value, true, 0, 1, &value});
    if (found != 0 && !equal(rowKey(m_rows[0]), m_targetKey))
    {
        return standNowhere(Place::BehindLast);
    }
    return found;
}

CEOID DatabaseHandle::seekNextEqual(const CEPROPVAL &value)
{
    keyOfValue(value);
    const CEOID found = seekCurrent(1);
    if (found != 0 && !equal(rowKey(m_rows[static_cast<std::size_t>(m_row)]), keyOfValue(value)))
    {
        return standNowhere(Place::BehindLast);
    }
    return found;
}

Bytes DatabaseHandle::keyOfValue(const CEPROPVAL &value) const
{
    const std::optional<ValueView> view = valueOf(value);
    if (m_sortProperty == 0 || value.propid != m_sortProperty || !view)
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    return sortKey(m_orders[m_order], view);
}

bool DatabaseHandle::stepInBatch(std::int64_t records, CEOID *found)
{
    if (!isFresh())
    {
        return false;
    }
    const std::ptrdiff_t row = m_forward ? m_row + records : m_row - records;
    if (row >= 0 && row < static_cast<std::ptrdiff_t>(m_rows.size()))
    {
        *found = standOn(static_cast<std::size_t>(row), m_index < 0 ? -1 : m_index + records);
        return true;
    }
    if (row > 0 && m_ended)
    {
        *found = standNowhere(m_forward ? Place::BehindLast : Place::BeforeFirst);
        return true;
    }
    return false;
}

CEOID DatabaseHandle::fetch(Target target)
{
    keepPosition();
    const std::uint64_t writes = m_store->writes();
    ReadAccess access(*m_store);
    Statement state(access.connection(), Query::DatabaseState);
    checkState(state, access);
    Point point{};
    std::int64_t index = -1;
    const Place beyond = target.from == From::Position && !target.forward ? Place::BeforeFirst : Place::BehindLast;
    if (!resolve(target, point, index) || (target.skip != 0 && !skipRecords(access.connection(), target, point)))
    {
        return standNowhere(beyond);
    }
    collect(access.connection(), target, point);
    m_writes = writes;
    m_batch = target.from == From::Position ? m_batch : batchGrowth;
    return m_rows.empty() ? standNowhere(beyond) : standOn(0, index);
}

bool DatabaseHandle::resolve(Target &target, Point &point, std::int64_t &index)
{
    const Point first{BytesView(), beforeAllIds};
    const Point last{BytesView(&behindAllKeys, 1), beforeAllIds};
    const auto skip = static_cast<std::int64_t>(target.skip);
    switch (target.from)
    {
    case From::Beginning:
    case From::End:
        if (skip >= m_records)
        {
            return false;
        }
        index = target.from == From::Beginning ? skip : m_records - 1 - skip;
        // From whichever end is nearer.
        target.forward = index < m_records - 1 - index || (index == m_records - 1 - index && target.forward);
        target.skip = static_cast<std::uint64_t>(target.forward ? index : m_records - 1 - index);
        point = target.forward ? first : last;
        return true;
    case From::Value:
        m_targetKey = keyOfValue(*target.value);
        point = {m_targetKey, beforeAllIds};
        return true;
    default:
        break;
    }
    if (m_place == Place::On)
    {
        point = {m_key, m_oid};
        index = m_index < 0 ? -1 : (target.forward ? m_index + skip + 1 : m_index - skip - 1);
        return true;
    }
    point = m_place == Place::BeforeFirst ? first : last;
    index = target.forward ? skip : m_records - 1 - skip;
    return true;
}

Query DatabaseHandle::walkQuery(Query first) const
{
    const auto others = static_cast<std::uint8_t>(Query::OtherOnEqual) - static_cast<std::uint8_t>(Query::FirstOnEqual);
    return m_order == 0 ? first : static_cast<Query>(static_cast<std::uint8_t>(first) + others);
}

Statement &DatabaseHandle::bindPoint(Statement &statement, const Point &point) const
{
    statement.bind(1, m_database).bind(2, point.key);
    if (m_order != 0)
    {
        statement.bind(4, static_cast<std::int64_t>(m_order));
    }
    return statement;
}

bool DatabaseHandle::skipRecords(Connection &connection, const Target &target, Point &point)
{
    Statement rows(connection, walkQuery(target.forward ? Query::FirstSkipOn : Query::FirstSkipBack));
    bindPoint(rows, point).bind(3, point.oid).bind(5, static_cast<std::int64_t>(target.skip));
    if (!rows.step())
    {
        return false;
    }
    const BytesView key = rows.bytes(0);
    m_targetKey.assign(key.begin(), key.end());
    // The walk leaves its own point out, so it begins one id beside the record.
    point = {m_targetKey, rows.integer(1) + (target.forward ? -1 : 1)};
    return true;
}

void DatabaseHandle::startBatch()
{
    m_bytes.clear();
    m_rows.clear();
    m_readAt = coarseMilliseconds();
}

void DatabaseHandle::addRow(CEOID oid, BytesView key, BytesView data)
{
    const std::size_t at = m_bytes.size();
    m_bytes.insert(m_bytes.end(), key.begin(), key.end());
    m_bytes.insert(m_bytes.end(), data.begin(), data.end());
    m_rows.push_back({oid, static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(key.size()),
                      static_cast<std::uint32_t>(at + key.size()), static_cast<std::uint32_t>(data.size())});
}

/// True when there may be more.
bool DatabaseHandle::collectFrom(Statement &rows, std::size_t wanted)
{
    while (m_rows.size() < wanted && m_bytes.size() < batchBytes)
    {
        if (!rows.step())
        {
            return false;
        }
        addRow(static_cast<CEOID>(rows.integer(1)), rows.bytes(0), rows.bytes(2));
    }
    return true;
}

void DatabaseHandle::collect(Connection &connection, const Target &target, const Point &point)
{
    startBatch();
    m_forward = target.forward;
    if (target.forward || point.oid > beforeAllIds)
    {
        Statement rows(connection, walkQuery(target.forward ? Query::FirstOnEqual : Query::FirstBackEqual));
        bindPoint(rows, point).bind(3, point.oid);
        if (collectFrom(rows, target.wanted))
        {
            m_ended = false;
            return;
        }
    }
    Statement rows(connection, walkQuery(target.forward ? Query::FirstOnBeyond : Query::FirstBackBeyond));
    m_ended = !collectFrom(bindPoint(rows, point), target.wanted);
}

/// Makes the record a batch of one: at its own place in the order, or for reading alone at the position's.
bool DatabaseHandle::lookUp(Connection &connection, CEOID oid, bool moveThere)
{
    Statement record(connection, Query::RecordById);
    record.bind(1, oid);
    if (!record.step() || record.integer(0) != m_database)
    {
        return false;
    }
    const BytesView data = record.bytes(2);
    if (m_order == 0)
    {
        const BytesView stored = record.bytes(1);
        m_targetKey.assign(stored.begin(), stored.end());
    }
    else
    {
        m_targetKey = sortKeyOf(m_orders, m_order, RecordView(data, record.bytes(3)));
    }
    startBatch();
    m_forward = true;
    m_ended = false;
    addRow(oid, moveThere ? m_targetKey : m_key, data);
    m_place = Place::On;
    m_row = 0;
    m_displaced = !moveThere && m_targetKey != m_key;
    return true;
}

CEOID DatabaseHandle::currentRecord(BytesView &data)
{
    if (!isFresh())
    {
        if (m_place != Place::On)
        {
            return 0;
        }
        keepPosition();
        const std::uint64_t writes = m_store->writes();
        ReadAccess access(*m_store);
        Statement state(access.connection(), Query::DatabaseState);
        checkState(state, access);
        keepPosition();
        if (m_place != Place::On || !lookUp(access.connection(), m_oid, false))
        {
            return 0;
        }
        m_writes = writes;
    }
    const BatchRow &row = m_rows[static_cast<std::size_t>(m_row)];
    data = {m_bytes.data() + row.data, row.dataSize};
    return row.oid;
}

CEOID DatabaseHandle::wholeRecord(BytesView &data, BytesView &rest)
{
    const CEOID oid = m_row >= 0 ? m_rows[static_cast<std::size_t>(m_row)].oid : m_oid;
    ReadAccess access(*m_store);
    Statement record(access.connection(), Query::RecordById);
    record.bind(1, oid);
    if (m_place != Place::On || !record.step() || record.integer(0) != m_database)
    {
        return 0;
    }
    const BytesView storedData = record.bytes(2);
    m_wholeData.assign(storedData.begin(), storedData.end());
    const BytesView storedRest = record.bytes(3);
    m_wholeRest.assign(storedRest.begin(), storedRest.end());
    data = m_wholeData;
    rest = m_wholeRest;
    return oid;
}

std::int64_t DatabaseHandle::countBefore(Connection &connection, const Point &point)
{
    std::int64_t count = 0;
    {
        Statement equals(connection, walkQuery(Query::FirstCountEqual));
        bindPoint(equals, point).bind(3, point.oid);
        count += equals.step() ? equals.integer(0) : 0;
    }
    Statement below(connection, walkQuery(Query::FirstCountBelow));
    bindPoint(below, point);
    return count + (below.step() ? below.integer(0) : 0);
}

DWORD DatabaseHandle::index()
{
    const bool fresh = isFresh();
    if (m_index >= 0 && fresh)
    {
        return static_cast<DWORD>(m_index);
    }
    if (m_place != Place::On)
    {
        return 0;
    }
    const std::ptrdiff_t row = m_row;
    keepPosition();
    ReadAccess access(*m_store);
    Statement state(access.connection(), Query::DatabaseState);
    const std::int64_t ordersVersion = m_ordersVersion;
    checkState(state, access);
    keepPosition();
    if (m_index < 0)
    {
        const BytesView key = m_displaced ? m_targetKey : m_key;
        m_index = countBefore(access.connection(), {key, m_oid});
    }
    m_row = fresh && ordersVersion == m_ordersVersion ? row : -1;
    // A record that has left its place says nothing about its old neighbours.
    return static_cast<DWORD>(m_displaced ? std::exchange(m_index, -1) : m_index);
}
} // namespace zb::internal
