#include "platform/linux/store_schema.h"

#include <sqlite3.h>

namespace zb::internal
{
namespace
{
constexpr int busyMilliseconds = 10'000;

/// Asks again every millisecond. The longer and longer pauses that SQLite makes by itself would leave a process that saves
/// now and then behind one that saves all the time.
int waitForOthers(void *layer, int times)
{
    auto *const files = static_cast<sqlite3_vfs *>(layer);
    files->xSleep(files, 1000);
    return times < busyMilliseconds ? 1 : 0;
}

void waitWhenBusy(Connection &connection)
{
    sqlite3_vfs *files = nullptr;
    sqlite3_file_control(connection.raw(), "main", SQLITE_FCNTL_VFS_POINTER, &files);
    if (files == nullptr)
    {
        sqlite3_busy_timeout(connection.raw(), busyMilliseconds);
        return;
    }
    sqlite3_busy_handler(connection.raw(), waitForOthers, files);
}

constexpr const char *schemaSql = R"sql(
CREATE TABLE meta(
  id INTEGER PRIMARY KEY CHECK(id = 1),
  next_id INTEGER NOT NULL,
  next_change INTEGER NOT NULL
) STRICT;
INSERT INTO meta VALUES(1, 1, 0);

CREATE TABLE databases(
  oid INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  name_key TEXT NOT NULL UNIQUE,
  type INTEGER NOT NULL,
  orders BLOB NOT NULL,
  orders_version INTEGER NOT NULL,
  revision INTEGER NOT NULL,
  records INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  modified INTEGER NOT NULL
) STRICT;

CREATE TABLE records(
  db INTEGER NOT NULL,
  k BLOB NOT NULL,
  oid INTEGER NOT NULL,
  data BLOB NOT NULL,
  rest BLOB,
  PRIMARY KEY(db, k, oid)
) STRICT, WITHOUT ROWID;
CREATE UNIQUE INDEX records_by_oid ON records(oid);

CREATE TABLE orders(
  db INTEGER NOT NULL,
  n INTEGER NOT NULL,
  k BLOB NOT NULL,
  oid INTEGER NOT NULL,
  PRIMARY KEY(db, n, k, oid)
) STRICT, WITHOUT ROWID;

CREATE TABLE changes(
  slot INTEGER PRIMARY KEY,
  seq INTEGER NOT NULL,
  db INTEGER NOT NULL,
  oid INTEGER NOT NULL,
  kind INTEGER NOT NULL,
  writer INTEGER NOT NULL
) STRICT;
)sql";

struct Migration
{
    std::int64_t from;
    const char *sql; ///< brings a store of version `from` to the next one
};

/// Version 1 is the first, so nothing leads to it yet. An entry for each version that was ever released.
constexpr std::array<Migration, 0> migrations = {};

std::string pragma(const char *name, std::int64_t value)
{
    return std::string("PRAGMA ") + name + "=" + std::to_string(value);
}
} // namespace

void configureConnection(Connection &connection)
{
    waitWhenBusy(connection);
    connection.execute("PRAGMA journal_mode=WAL");
    connection.execute("PRAGMA synchronous=FULL");
    connection.execute("PRAGMA mmap_size=1073741824");
    connection.execute("PRAGMA temp_store=MEMORY");
    // Kibibytes at most. An import of ten thousand items stays in it; what does not fit is written out and read back
    // page by page while the transaction grows, which costs more than all the rest. Reading goes by the memory map.
    connection.execute("PRAGMA cache_size=-65536");
    // A page whose cells don't fit is told as damage when it is read, not met later.
    connection.execute("PRAGMA cell_size_check=1");
    connection.execute("PRAGMA wal_autocheckpoint=512");
    connection.execute("PRAGMA journal_size_limit=8388608");
}

void makeSchema(Connection &connection)
{
    sqlite3_busy_timeout(connection.raw(), busyMilliseconds);
    connection.execute(pragma("page_size", storePageSize).c_str());
    connection.execute("PRAGMA synchronous=FULL");
    connection.execute("PRAGMA journal_mode=DELETE");
    connection.execute("BEGIN IMMEDIATE");
    connection.execute(pragma("application_id", storeApplicationId).c_str());
    connection.execute(pragma("user_version", storeSchemaVersion).c_str());
    connection.execute(schemaSql);
    connection.execute("COMMIT");
    connection.execute("PRAGMA journal_mode=WAL");
}

void migrateSchema(Connection &connection, std::int64_t from)
{
    connection.execute("BEGIN IMMEDIATE");
    // Another process may have done it while this one waited.
    std::int64_t version = connection.number("PRAGMA user_version");
    for (const Migration &migration : migrations)
    {
        if (migration.from == version && version >= from)
        {
            connection.execute(migration.sql);
            ++version;
        }
    }
    connection.execute(pragma("user_version", version).c_str());
    connection.execute("COMMIT");
}

bool hasSchema(Connection &connection)
{
    const std::int64_t tables = connection.number("SELECT count(*) FROM sqlite_schema WHERE (type='table' AND name IN"
                                                  " ('meta', 'databases', 'records', 'orders', 'changes'))"
                                                  " OR (type='index' AND name='records_by_oid')");
    return tables == 6 && connection.number("SELECT count(*) FROM meta WHERE id=1 AND next_id>0 AND next_change>=0"
                                            " AND next_id>(SELECT coalesce(max(oid), 0) FROM databases)"
                                            " AND next_id>(SELECT coalesce(max(oid), 0) FROM records)") == 1;
}
} // namespace zb::internal
