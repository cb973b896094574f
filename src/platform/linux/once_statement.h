// A statement for one run: for what is asked or written once a command, so that nothing has to be kept.
#pragma once

#include "platform/linux/propdb_record.h"

#include <sqlite3.h>
#include <string>

namespace zb::internal
{
/// What is bound has to stay until the last step. Failures throw StoreFault.
class OnceStatement
{
  public:
    OnceStatement(Connection &connection, const char *sql) : m_connection(connection)
    {
        const int result = sqlite3_prepare_v2(connection.raw(), sql, -1, &m_statement, nullptr);
        if (result != SQLITE_OK)
        {
            connection.fail(result);
        }
    }
    ~OnceStatement()
    {
        sqlite3_finalize(m_statement);
    }
    OnceStatement(const OnceStatement &) = delete;
    OnceStatement &operator=(const OnceStatement &) = delete;

    OnceStatement &bind(int place, std::int64_t value)
    {
        sqlite3_bind_int64(m_statement, place, value);
        return *this;
    }
    OnceStatement &bind(int place, BytesView bytes)
    {
        sqlite3_bind_blob64(m_statement, place, bytes.empty() ? reinterpret_cast<const BYTE *>("") : bytes.data(),
                            bytes.size(), SQLITE_STATIC);
        return *this;
    }
    OnceStatement &bind(int place, const std::u16string &text)
    {
        sqlite3_bind_text16(m_statement, place, text.data(), static_cast<int>(text.size() * sizeof(char16_t)),
                            SQLITE_STATIC);
        return *this;
    }
    bool step()
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
        {
            m_connection.fail(result);
        }
        return result == SQLITE_ROW;
    }
    bool isNull(int column)
    {
        return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
    }
    std::int64_t number(int column)
    {
        return sqlite3_column_int64(m_statement, column);
    }
    Bytes bytes(int column)
    {
        const auto *const data = static_cast<const BYTE *>(sqlite3_column_blob(m_statement, column));
        return data == nullptr ? Bytes() : Bytes(data, data + sqlite3_column_bytes(m_statement, column));
    }
    std::u16string text(int column)
    {
        const auto *const data = static_cast<const char16_t *>(sqlite3_column_text16(m_statement, column));
        const int size = sqlite3_column_bytes16(m_statement, column);
        return data == nullptr ? std::u16string() : std::u16string(data, static_cast<std::size_t>(size) / 2);
    }

  private:
    Connection &m_connection;
    sqlite3_stmt *m_statement = nullptr;
};
} // namespace zb::internal
