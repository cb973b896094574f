// What the runner of notifications asks: whose time has come, and who runs it.
#include "platform/clock.h"
#include "platform/linux/device_state.h"
#include "platform/linux/notify_store.h"
#include "platform/linux/store_fault.h"
#include "platform/locale.h"
#include "platform/notify.h"
#include "platform/pim.h"
#include "platform/text.h"

#include <stdexcept>

namespace zb
{
namespace
{
using namespace internal;

constexpr const char *columns = "SELECT id, program, arguments, actions, title, text, sound, start FROM notifications";
/// Parameter 1 is now; a period that is over counts no more, nor does a reminder whose item has gone since it was made.
constexpr const char *waiting = " WHERE state = 0 AND (type <> 3 OR until >= ?1)"
                                " AND (item IS NULL OR EXISTS (SELECT 1 FROM records WHERE oid = item))";

/// Runs the body; a refusal of the store becomes a sentence.
template <typename Body>
auto told(Body &&body)
{
    try
    {
        return body();
    }
    catch (const StoreFault &fault)
    {
        throw std::runtime_error("The notifications can't be read or written (error " + std::to_string(fault.code()) +
                                 ").");
    }
}

Alarm alarmAt(const NotificationStatement &row)
{
    Alarm alarm;
    alarm.number = static_cast<DWORD>(row.integer(0));
    alarm.program = row.text(1);
    alarm.arguments = row.text(2);
    alarm.actions = static_cast<DWORD>(row.integer(3));
    alarm.title = row.text(4);
    alarm.text = row.text(5);
    alarm.sound = row.text(6);
    alarm.time = row.integer(7);
    return alarm;
}

/// Runs a statement that changes rows and says whether there were any. The tables are there: an alarm was read.
template <typename Bind>
bool change(const char *sql, const Bind &bind)
{
    const std::shared_ptr<Store> store = openedStore();
    WriteAccess access(*store);
    if (!hasNotifications(access.connection()))
    {
        return false;
    }
    access.willChange();
    NotificationStatement update(access.connection(), sql);
    bind(update);
    update.step();
    const bool changed = changedRows(access.connection()) != 0;
    access.commit();
    return changed;
}

std::int64_t revisionOf(Connection &connection, const WCHAR *database)
{
    NotificationStatement select(connection, "SELECT revision FROM databases WHERE name = ?");
    return select.bind(std::u16string(database)).step() ? select.integer(0) : 0;
}

/// The moment at which the local clock shows this time, behind now.
LONGLONG momentOf(LONGLONG wall, LONGLONG now)
{
    const FILETIME time = fileTimeOf(wall);
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    const auto utc = zoneLocalToUtc(currentZone(), fields);
    // Of an hour that stands twice the first may be over.
    return utc && ticksOf(*utc) > now ? ticksOf(*utc) : now + (wall - wallNow());
}
} // namespace

AlarmState alarmState()
{
    return told(
        []
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            AlarmState state;
            if (hasNotifications(access.connection()))
            {
                NotificationStatement select(access.connection(), "SELECT revision FROM notification_state");
                state.notifications = select.step() ? select.integer(0) : 0;
            }
            state.appointments = revisionOf(access.connection(), appointmentsDatabase);
            state.tasks = revisionOf(access.connection(), tasksDatabase);
            return state;
        });
}

std::vector<Alarm> dueAlarms()
{
    return told(
        []
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            std::vector<Alarm> due;
            if (!hasNotifications(access.connection()))
            {
                return due;
            }
            const std::string sql = std::string(columns) + waiting + " AND start <= ?1 ORDER BY start, id";
            NotificationStatement select(access.connection(), sql.c_str());
            select.bind(wallNow());
            while (select.step())
            {
                due.push_back(alarmAt(select));
            }
            return due;
        });
}

std::optional<LONGLONG> nextAlarm()
{
    return told(
        []() -> std::optional<LONGLONG>
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            if (!hasNotifications(access.connection()))
            {
                return std::nullopt;
            }
            const std::string sql = std::string(columns) + waiting + " AND start > ?1 ORDER BY start LIMIT 1";
            NotificationStatement select(access.connection(), sql.c_str());
            const LONGLONG now = currentTicks();
            return select.bind(wallNow()).step() ? std::optional(momentOf(select.integer(7), now)) : std::nullopt;
        });
}

std::optional<Alarm> alarmOf(DWORD number)
{
    return told(
        [number]() -> std::optional<Alarm>
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            if (!hasNotifications(access.connection()))
            {
                return std::nullopt;
            }
            const std::string sql = std::string(columns) + " WHERE id = ?";
            NotificationStatement select(access.connection(), sql.c_str());
            return select.bind(number).step() ? std::optional(alarmAt(select)) : std::nullopt;
        });
}

bool beginAlarm(const Alarm &alarm, const std::string &attempt, const std::string &boot)
{
    return told(
        [&]
        {
            return change("UPDATE notifications SET state = 1, attempt = ?, boot = ?"
                          " WHERE id = ? AND state = 0 AND start = ?",
                          [&](NotificationStatement &update)
                          { update.bind(attempt).bind(boot).bind(alarm.number).bind(alarm.time); });
        });
}

bool isBegun(DWORD number, const std::string &attempt)
{
    return told(
        [&]
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            return hasNotifications(access.connection()) &&
                   NotificationStatement(access.connection(),
                                         "SELECT 1 FROM notifications WHERE id = ? AND state = 1 AND attempt = ?")
                       .bind(number)
                       .bind(attempt)
                       .step();
        });
}

void finishAlarm(DWORD number, const std::string &attempt)
{
    told(
        [&]
        {
            return change("UPDATE notifications SET state = 2 WHERE id = ? AND state = 1 AND attempt = ?",
                          [&](NotificationStatement &update) { update.bind(number).bind(attempt); });
        });
}

void forgetBrokenAttempts(const std::string &boot)
{
    told(
        [&]
        {
            return change("UPDATE notifications SET state = 0 WHERE state = 1 AND boot <> ?",
                          [&](NotificationStatement &update) { update.bind(boot); });
        });
}
} // namespace zb
