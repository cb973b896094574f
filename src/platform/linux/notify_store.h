// The tables of notifications in the store; docs/formats/store.md tells them.
//
// They are made by the first write. Everything here runs on a connection of the store, so that notifications that are
// set inside a bulk come and go with it. Failures throw StoreFault.
#pragma once

#include "platform/linux/store_state.h"

#include <string>

struct sqlite3_stmt;

namespace zb::internal
{
enum class NotificationState
{
    Waiting = 0,
    Begun = 1,
    Finished = 2
};

/// One statement from its text to its end.
class NotificationStatement
{
  public:
    NotificationStatement(Connection &connection, const char *sql);
    ~NotificationStatement();
    NotificationStatement(const NotificationStatement &) = delete;
    NotificationStatement &operator=(const NotificationStatement &) = delete;

    /// To the parameters in their order.
    NotificationStatement &bind(std::int64_t value);
    NotificationStatement &bind(const std::u16string &text);
    NotificationStatement &bind(const std::string &text);
    /// True at a row.
    bool step();
    std::int64_t integer(int column) const;
    bool isNull(int column) const;
    std::u16string text(int column) const;

  private:
    void check(int result) const;

    Connection &m_connection;
    sqlite3_stmt *m_statement = nullptr;
    int m_bound = 0;
};

bool hasNotifications(Connection &connection);
/// Makes the tables when they are missing, and counts the change that comes next. Behind WriteAccess::willChange.
void changeNotifications(Connection &connection);
/// Rows that the last statement has changed.
std::int64_t changedRows(Connection &connection);
std::int64_t lastRow(Connection &connection);

/// Now in the device's zone, in ticks.
LONGLONG wallNow();

/// Clears a notification inside the running transaction; nothing when there is none.
void clearNotification(WriteAccess &access, DWORD number);
} // namespace zb::internal
