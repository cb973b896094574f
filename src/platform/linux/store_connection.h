// One connection to the store and its prepared statements; a statement is prepared when it is first asked for and kept.
//
// Threads: one at a time; who hands connections round sees to that. Failures throw StoreFault.
#pragma once

#include "platform/types.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace zb::internal
{
using BytesView = std::span<const BYTE>;

/// Everything the store ever asks of SQLite after opening; the texts stand in store_queries.cpp.
enum class Query : std::uint8_t
{
    Begin,
    Commit,
    Rollback,
    DataVersion,
    ReadCounters,
    WriteCounters,
    DatabaseState,
    DatabaseRow,
    DatabaseByName,
    DatabaseAfter,
    InsertDatabase,
    CountInDatabase,
    ChangeDatabase,
    DeleteDatabase,
    DeleteDatabaseRecords,
    DeleteDatabaseOrders,
    RecordById,
    RecordHome,
    RecordDataById,
    RecordsAfter,
    InsertRecord,
    UpdateRecord,
    MoveRecord,
    DeleteRecord,
    InsertOrder,
    DeleteOrder,
    // The walks stand in groups of eight, the clustered order first: see walkQuery().
    FirstOnEqual,
    FirstOnBeyond,
    FirstBackEqual,
    FirstBackBeyond,
    FirstSkipOn,
    FirstSkipBack,
    FirstCountEqual,
    FirstCountBelow,
    OtherOnEqual,
    OtherOnBeyond,
    OtherBackEqual,
    OtherBackBeyond,
    OtherSkipOn,
    OtherSkipBack,
    OtherCountEqual,
    OtherCountBelow,
    PutChange,
    ChangesSince,
    Count_
};

const char *queryText(Query query);

class Connection
{
  public:
    /// Opens an existing file (or, with `create`, makes it) through the named file layer; empty is the default one.
    Connection(const std::filesystem::path &file, const std::string &fileLayer, bool create);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    sqlite3 *raw() const
    {
        return m_connection;
    }
    sqlite3_stmt *prepared(Query query);
    /// Statements without results.
    void execute(const char *sql);
    /// The first column of the first row, as a number.
    std::int64_t number(const char *sql);
    [[noreturn]] void fail(int result) const;

  private:
    sqlite3 *m_connection = nullptr;
    std::array<sqlite3_stmt *, static_cast<std::size_t>(Query::Count_)> m_prepared{};
};

/// One run of a prepared statement, from binding to reset. Bytes bound are not copied: they outlive the run.
class Statement
{
  public:
    Statement(Connection &connection, Query query);
    ~Statement();
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    Statement &bind(int place, std::int64_t value);
    Statement &bind(int place, BytesView bytes);
    Statement &bindText(int place, std::u16string_view text);
    Statement &bindNull(int place);
    /// True at a row, false at the end.
    bool step();
    /// Runs a statement to its end.
    void run();

    std::int64_t integer(int column);
    bool isNull(int column);
    /// Valid until the next step.
    BytesView bytes(int column);
    std::u16string text(int column);

  private:
    Connection &m_connection;
    sqlite3_stmt *m_statement;
};
} // namespace zb::internal
