#include "platform/linux/notify_store.h"

#include "platform/clock.h"
#include "platform/linux/device_state.h"
#include "platform/linux/store_fault.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <sqlite3.h>

namespace zb::internal
{
namespace
{
constexpr const char *tables = R"sql(
CREATE TABLE notifications(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  type INTEGER NOT NULL,
  start INTEGER NOT NULL,
  until INTEGER NOT NULL,
  program TEXT NOT NULL,
  arguments TEXT NOT NULL,
  has_user INTEGER NOT NULL,
  actions INTEGER NOT NULL,
  title TEXT NOT NULL,
  text TEXT NOT NULL,
  sound TEXT NOT NULL,
  state INTEGER NOT NULL DEFAULT 0,
  attempt TEXT NOT NULL DEFAULT '',
  boot TEXT NOT NULL DEFAULT '',
  item INTEGER,
  occurrence INTEGER,
  minutes INTEGER
) STRICT;
CREATE INDEX notifications_waiting ON notifications(start) WHERE state = 0;
CREATE UNIQUE INDEX notifications_of_items ON notifications(item, occurrence, minutes) WHERE item IS NOT NULL;
CREATE TABLE notification_state(
  id INTEGER PRIMARY KEY CHECK(id = 1),
  revision INTEGER NOT NULL,
  reminded_until INTEGER
) STRICT;
INSERT INTO notification_state VALUES(1, 0, NULL);
)sql";
} // namespace

NotificationStatement::NotificationStatement(Connection &connection, const char *sql) : m_connection(connection)
{
    check(sqlite3_prepare_v2(connection.raw(), sql, -1, &m_statement, nullptr));
}

NotificationStatement::~NotificationStatement()
{
    sqlite3_finalize(m_statement);
}

void NotificationStatement::check(int result) const
{
    if (result != SQLITE_OK)
    {
        m_connection.fail(result);
    }
}

NotificationStatement &NotificationStatement::bind(std::int64_t value)
{
    check(sqlite3_bind_int64(m_statement, ++m_bound, value));
    return *this;
}

NotificationStatement &NotificationStatement::bind(const std::u16string &text)
{
    return bind(toUtf8(text));
}

NotificationStatement &NotificationStatement::bind(const std::string &text)
{
    check(sqlite3_bind_text(m_statement, ++m_bound, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
    return *this;
}

bool NotificationStatement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
    {
        m_connection.fail(result);
    }
    return result == SQLITE_ROW;
}

std::int64_t NotificationStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

bool NotificationStatement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::u16string NotificationStatement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
    return bytes == nullptr ? std::u16string() : toUtf16(std::string_view(bytes, size));
}

bool hasNotifications(Connection &connection)
{
    return NotificationStatement(connection, "SELECT 1 FROM sqlite_master WHERE name = 'notification_state'").step();
}

void changeNotifications(Connection &connection)
{
    if (!hasNotifications(connection))
    {
        connection.execute(tables);
    }
    NotificationStatement(connection, "UPDATE notification_state SET revision = revision + 1").step();
}

std::int64_t changedRows(Connection &connection)
{
    return sqlite3_changes64(connection.raw());
}

std::int64_t lastRow(Connection &connection)
{
    return sqlite3_last_insert_rowid(connection.raw());
}

LONGLONG wallNow()
{
    const LONGLONG now = currentTicks();
    return now + zoneOffsetMinutes(currentZone(), fileTimeOf(now)).value_or(0) * ticksPerMinute;
}

void clearNotification(WriteAccess &access, DWORD number)
{
    if (number == 0 || !hasNotifications(access.connection()))
    {
        return;
    }
    access.willChange();
    changeNotifications(access.connection());
    NotificationStatement(access.connection(), "DELETE FROM notifications WHERE id = ? AND item IS NULL")
        .bind(number)
        .step();
}
} // namespace zb::internal
