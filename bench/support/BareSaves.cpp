#include "support/BareSaves.h"

#include <sqlite3.h>
#include <stdexcept>

namespace zb::bench
{
BareSaves::BareSaves(const std::filesystem::path &file)
{
    require(sqlite3_open(file.c_str(), &m_connection) == SQLITE_OK);
    execute("PRAGMA journal_mode=WAL");
    execute("PRAGMA synchronous=FULL");
    execute("CREATE TABLE records(start INTEGER NOT NULL, id INTEGER NOT NULL, data BLOB NOT NULL,"
            " PRIMARY KEY(start, id)) WITHOUT ROWID");
    require(sqlite3_prepare_v2(m_connection, "INSERT INTO records VALUES(?1, ?2, ?3)", -1, &m_insert, nullptr) ==
            SQLITE_OK);
}

BareSaves::~BareSaves()
{
    sqlite3_finalize(m_insert);
    sqlite3_close(m_connection);
}

void BareSaves::require(bool good) const
{
    if (!good)
    {
        throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(m_connection));
    }
}

void BareSaves::execute(const char *sql)
{
    require(sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK);
}

void BareSaves::save(long long start, const std::string &bytes)
{
    sqlite3_bind_int64(m_insert, 1, start);
    sqlite3_bind_int64(m_insert, 2, ++m_id);
    sqlite3_bind_blob64(m_insert, 3, bytes.data(), bytes.size(), SQLITE_STATIC);
    require(sqlite3_step(m_insert) == SQLITE_DONE);
    sqlite3_reset(m_insert);
}
} // namespace zb::bench
