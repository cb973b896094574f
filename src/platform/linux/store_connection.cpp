#include "platform/linux/store_connection.h"

#include "platform/kernel.h"
#include "platform/linux/store_fault.h"

#include <sqlite3.h>

namespace zb::internal
{
Connection::Connection(const std::filesystem::path &file, const std::string &fileLayer, bool create)
{
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (create ? SQLITE_OPEN_CREATE : 0);
    const int result =
        sqlite3_open_v2(file.c_str(), &m_connection, flags, fileLayer.empty() ? nullptr : fileLayer.c_str());
    if (result != SQLITE_OK)
    {
        const DWORD code = lastErrorOf(result, m_connection);
        sqlite3_close(m_connection);
        throw StoreFault(code);
    }
    sqlite3_extended_result_codes(m_connection, 1);
    // A store is data from outside: nothing in its schema may call functions with side effects.
    sqlite3_db_config(m_connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

Connection::~Connection()
{
    for (sqlite3_stmt *statement : m_prepared)
    {
        sqlite3_finalize(statement);
    }
    sqlite3_close(m_connection);
}

void Connection::fail(int result) const
{
    throw StoreFault(lastErrorOf(result, m_connection));
}

sqlite3_stmt *Connection::prepared(Query query)
{
    sqlite3_stmt *&statement = m_prepared[static_cast<std::size_t>(query)];
    if (statement == nullptr)
    {
        const int result =
            sqlite3_prepare_v3(m_connection, queryText(query), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        if (result != SQLITE_OK)
        {
            fail(result);
        }
    }
    return statement;
}

void Connection::execute(const char *sql)
{
    const int result = sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
    {
        fail(result);
    }
}

std::int64_t Connection::number(const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    int result = sqlite3_prepare_v2(m_connection, sql, -1, &statement, nullptr);
    std::int64_t value = 0;
    if (result == SQLITE_OK && sqlite3_step(statement) == SQLITE_ROW)
    {
        value = sqlite3_column_int64(statement, 0);
    }
    const int finalized = sqlite3_finalize(statement);
    if (result != SQLITE_OK || finalized != SQLITE_OK)
    {
        fail(result != SQLITE_OK ? result : finalized);
    }
    return value;
}

Statement::Statement(Connection &connection, Query query)
    : m_connection(connection), m_statement(connection.prepared(query))
{
}

Statement::~Statement()
{
    sqlite3_reset(m_statement);
}

Statement &Statement::bind(int place, std::int64_t value)
{
    sqlite3_bind_int64(m_statement, place, value);
    return *this;
}

Statement &Statement::bind(int place, BytesView bytes)
{
    // A null pointer would bind NULL, which is not the empty blob.
    static const BYTE none = 0;
    const int result =
        sqlite3_bind_blob64(m_statement, place, bytes.empty() ? &none : bytes.data(), bytes.size(), SQLITE_STATIC);
    if (result != SQLITE_OK)
    {
        m_connection.fail(result);
    }
    return *this;
}

Statement &Statement::bindText(int place, std::u16string_view text)
{
    const int result =
        sqlite3_bind_text16(m_statement, place, text.data(), static_cast<int>(text.size() * 2), SQLITE_TRANSIENT);
    if (result != SQLITE_OK)
    {
        m_connection.fail(result);
    }
    return *this;
}

Statement &Statement::bindNull(int place)
{
    sqlite3_bind_null(m_statement, place);
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
    {
        return true;
    }
    if (result != SQLITE_DONE)
    {
        m_connection.fail(result);
    }
    return false;
}

void Statement::run()
{
    while (step())
    {
    }
}

std::int64_t Statement::integer(int column)
{
    return sqlite3_column_int64(m_statement, column);
}

bool Statement::isNull(int column)
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

BytesView Statement::bytes(int column)
{
    const void *data = sqlite3_column_blob(m_statement, column);
    const int size = sqlite3_column_bytes(m_statement, column);
    if (data == nullptr && sqlite3_errcode(m_connection.raw()) == SQLITE_NOMEM)
    {
        throw StoreFault(ERROR_NOT_ENOUGH_MEMORY);
    }
    return {static_cast<const BYTE *>(data), static_cast<std::size_t>(size)};
}

std::u16string Statement::text(int column)
{
    const void *data = sqlite3_column_text16(m_statement, column);
    const int size = sqlite3_column_bytes16(m_statement, column);
    return data == nullptr ? std::u16string()
                           : std::u16string(static_cast<const char16_t *>(data), static_cast<std::size_t>(size) / 2);
}
} // namespace zb::internal
