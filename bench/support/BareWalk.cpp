#include "support/BareWalk.h"

#include "platform/clock.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <sqlite3.h>
#include <stdexcept>

namespace zb::bench
{
namespace
{
constexpr std::size_t bufferSize = 0x20000;

void require(bool good, sqlite3 *connection)
{
    if (!good)
    {
        throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(connection));
    }
}
} // namespace

BareWalk::BareWalk(const std::filesystem::path &file, const std::vector<Appointment> &appointments)
    : m_buffer(bufferSize)
{
    require(sqlite3_open(file.c_str(), &m_connection) == SQLITE_OK, m_connection);
    execute("PRAGMA journal_mode=WAL");
    execute("PRAGMA mmap_size=1073741824");
    execute("CREATE TABLE records(start INTEGER NOT NULL, id INTEGER NOT NULL, data BLOB NOT NULL,"
            " PRIMARY KEY(start, id)) WITHOUT ROWID");
    execute("BEGIN");
    fill(appointments);
    execute("COMMIT");
    execute("PRAGMA wal_checkpoint(TRUNCATE)");
    const char *walk = "SELECT id, data FROM records ORDER BY start, id";
    require(sqlite3_prepare_v2(m_connection, walk, -1, &m_walk, nullptr) == SQLITE_OK, m_connection);
}

BareWalk::~BareWalk()
{
    sqlite3_finalize(m_walk);
    sqlite3_close(m_connection);
}

void BareWalk::execute(const char *sql)
{
    require(sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK, m_connection);
}

void BareWalk::fill(const std::vector<Appointment> &appointments)
{
    sqlite3_stmt *insert = nullptr;
    const char *sql = "INSERT INTO records VALUES(?1, ?2, ?3)";
    require(sqlite3_prepare_v2(m_connection, sql, -1, &insert, nullptr) == SQLITE_OK, m_connection);
    sqlite3_int64 id = 0;
    for (const Appointment &appointment : appointments)
    {
        const std::string bytes = appointment.bytes();
        m_bytes += bytes.size();
        sqlite3_bind_int64(insert, 1, ticksOf(appointment.start));
        sqlite3_bind_int64(insert, 2, ++id);
        sqlite3_bind_blob(insert, 3, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
        require(sqlite3_step(insert) == SQLITE_DONE, m_connection);
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
}

std::size_t BareWalk::walk()
{
    std::size_t records = 0;
    while (sqlite3_step(m_walk) == SQLITE_ROW)
    {
        ::benchmark::DoNotOptimize(sqlite3_column_int64(m_walk, 0));
        const void *data = sqlite3_column_blob(m_walk, 1);
        std::memcpy(m_buffer.data(), data, static_cast<std::size_t>(sqlite3_column_bytes(m_walk, 1)));
        ::benchmark::ClobberMemory();
        ++records;
    }
    sqlite3_reset(m_walk);
    return records;
}
} // namespace zb::bench
