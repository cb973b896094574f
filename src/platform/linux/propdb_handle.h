// An open database: one position in one of its sort orders, and the records read ahead of it.
//
// The position is a point in the order: a key and an id, or in front of all, or behind all. A step goes to the next
// record beyond that point, so a record that is deleted under the position leaves it in the gap, and one whose key is
// changed leaves it where the record stood (the record itself can still be read there).
//
// Walking reads ahead in batches that grow from 1 record; they are copied out, so that no read transaction stays open
// between calls. Invariants:
// - m_row >= 0: the position is that of m_rows[m_row]; else m_key and m_oid hold it when m_place is On.
// - m_rows are neighbours in the order, ascending when m_forward; m_ended: nothing lies beyond the last of them.
// - A batch counts while nothing was written in this process and it is young, so that other processes' writes are seen
//   soon; the row under the position outlives that only as the source of its key.
//
// Threads: one at a time.
#pragma once

#include "platform/linux/handles.h"
#include "platform/linux/propdb_key.h"
#include "platform/linux/store_state.h"

namespace zb::internal
{
/// A row of a batch; the offsets lead into the batch's bytes.
struct BatchRow
{
    CEOID oid;
    std::uint32_t key;
    std::uint32_t keySize;
    std::uint32_t data;
    std::uint32_t dataSize;
};

class DatabaseHandle final : public HandleObject
{
  public:
    /// Throws StoreFault when there is no such database (2) or sort order (87).
    DatabaseHandle(std::shared_ptr<Store> store, CEOID database, CEPROPID sortProperty, DWORD flags);
    ~DatabaseHandle() override;
    bool onClose() override;

    Store &store() const
    {
        return *m_store;
    }
    CEOID database() const
    {
        return m_database;
    }
    bool movesOn() const
    {
        return (m_flags & CEDB_AUTOINCREMENT) != 0;
    }

    // Seeks: each gives the id of the record at the new position, 0 for none.
    CEOID seekId(CEOID oid);
    CEOID seekBeginning(std::uint64_t records);
    CEOID seekEnd(std::uint64_t records);
    CEOID seekCurrent(std::int64_t records);
    /// Throws StoreFault(87) when the value is not one of the open order's property.
    CEOID seekSmaller(const CEPROPVAL &value);
    CEOID seekEqual(const CEPROPVAL &value);
    CEOID seekGreater(const CEPROPVAL &value);
    CEOID seekNextEqual(const CEPROPVAL &value);
    /// Number of records before the position; counts only what is not known.
    DWORD index();

    /// The record at the position: its id and first blob, valid until the next call. Id 0 when there is none.
    CEOID currentRecord(BytesView &data);
    /// The same record with both blobs, from one look-up.
    CEOID wholeRecord(BytesView &data, BytesView &rest);
    /// Where each property asked for stood in the last record read.
    std::vector<std::uint16_t> &places()
    {
        return m_places;
    }

  private:
    enum class Place : std::uint8_t
    {
        BeforeFirst,
        On,
        BehindLast
    };
    enum class From : std::uint8_t
    {
        Beginning,
        End,
        Position,
        Value
    };
    /// What a fetch is to find: the record `skip` records beyond the first one from there.
    struct Target
    {
        From from;
        bool forward;
        std::uint64_t skip = 0;
        std::size_t wanted = 1;
        const CEPROPVAL *value = nullptr;
    };
    /// A point in the order; walks begin with the first row beyond it.
    struct Point
    {
        BytesView key;
        std::int64_t oid;
    };
    /// Keeps the database counted as open in this process.
    class OpenMark
    {
      public:
        OpenMark(OpenDatabases &databases, CEOID database) : m_databases(databases), m_database(database)
        {
            databases.add(database);
        }
        ~OpenMark()
        {
            m_databases.remove(m_database);
        }
        OpenMark(const OpenMark &) = delete;
        OpenMark &operator=(const OpenMark &) = delete;

      private:
        OpenDatabases &m_databases;
        CEOID m_database;
    };

    bool isFresh() const;
    /// Reads what the database is like now; `state` keeps the read transaction open.
    void checkState(Statement &state, ReadAccess &access);
    void takeOrders(Connection &connection, BytesView orders);
    BytesView rowKey(const BatchRow &row) const
    {
        return {m_bytes.data() + row.key, row.keySize};
    }
    /// Moves the position's key out of the batch before that goes.
    void keepPosition();
    CEOID standOn(std::size_t row, std::int64_t index);
    CEOID standNowhere(Place place);

    /// True when the batch could tell; *found then is the record.
    bool stepInBatch(std::int64_t records, CEOID *found);
    CEOID fetch(Target target);
    /// The point to walk from; *index gets the index of the record to be found, where known. False: there is none.
    bool resolve(Target &target, Point &point, std::int64_t &index);
    bool skipRecords(Connection &connection, const Target &target, Point &point);
    void collect(Connection &connection, const Target &target, const Point &point);
    bool collectFrom(Statement &rows, std::size_t wanted);
    bool lookUp(Connection &connection, CEOID oid, bool moveThere);
    void startBatch();
    void addRow(CEOID oid, BytesView key, BytesView data);
    Statement &bindPoint(Statement &statement, const Point &point) const;
    Query walkQuery(Query first) const;
    Bytes keyOfValue(const CEPROPVAL &value) const;
    std::int64_t countBefore(Connection &connection, const Point &point);

    std::shared_ptr<Store> m_store;
    CEOID m_database;
    CEPROPID m_sortProperty;
    DWORD m_flags;
    std::optional<OpenMark> m_mark;

    SortOrders m_orders;
    std::int64_t m_ordersVersion = 0;
    std::size_t m_order = 0; ///< which of them the handle walks
    std::int64_t m_revision = -1;
    std::int64_t m_records = 0;

    Place m_place = Place::BehindLast;
    Bytes m_key;
    Bytes m_targetKey; ///< of the value or record that a fetch goes to
    CEOID m_oid = 0;
    bool m_displaced = false;  ///< the record was found elsewhere; m_targetKey is where
    std::int64_t m_index = -1; ///< records before the position at m_revision; -1 not known

    Bytes m_bytes;
    std::vector<BatchRow> m_rows;
    std::ptrdiff_t m_row = -1;
    bool m_forward = true;
    bool m_ended = false;
    std::uint64_t m_writes = 0;
    std::int64_t m_readAt = 0;
    std::size_t m_batch = 1;

    Bytes m_wholeData;
    Bytes m_wholeRest;
    std::vector<std::uint16_t> m_places;
};

/// The handle's object, or null with last error 6.
inline std::shared_ptr<DatabaseHandle> databaseOf(HANDLE handle)
{
    return findAs<DatabaseHandle>(handle, HandleKind::Database);
}
} // namespace zb::internal
