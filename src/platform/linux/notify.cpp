// The calls that set, read and clear notifications.
#include "platform/notify.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/linux/notify_store.h"
#include "platform/linux/store_fault.h"
#include "platform/text.h"

#include <cstring>

namespace
{
using namespace zb::internal;
using zb::ticksOf;

/// What the trigger's structure takes where pointers have 32 bits; programs of such machines name it so.
constexpr DWORD narrowTriggerSize = 52;

std::u16string textOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

struct Row
{
    DWORD type = 0;
    LONGLONG start = 0;
    LONGLONG until = 0;
    std::u16string program;
    std::u16string arguments;
    bool hasUser = false;
    zb::Alarm user; ///< actions and texts
    bool signalled = false;
};

LONGLONG ticksOfTime(const SYSTEMTIME &time)
{
    FILETIME ticks{};
    if (SystemTimeToFileTime(&time, &ticks) == FALSE)
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    return ticksOf(ticks);
}

SYSTEMTIME timeOfTicks(LONGLONG ticks)
{
    const FILETIME time = zb::fileTimeOf(ticks);
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    return fields;
}

Row rowOf(const CE_NOTIFICATION_TRIGGER *trigger, const CE_USER_NOTIFICATION *user)
{
    const bool known = trigger != nullptr &&
                       (trigger->dwSize == sizeof(CE_NOTIFICATION_TRIGGER) || trigger->dwSize == narrowTriggerSize) &&
                       trigger->dwType >= CNT_TIME && trigger->dwType <= CNT_CLASSICTIME;
    if (!known)
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    Row row;
    row.type = trigger->dwType;
    row.start = ticksOfTime(trigger->stStartTime);
    row.until = row.type == CNT_PERIOD ? ticksOfTime(trigger->stEndTime) : row.start;
    row.program = textOf(trigger->lpszApplication);
    row.arguments = textOf(trigger->lpszArguments);
    row.hasUser = user != nullptr;
    if (user != nullptr)
    {
        row.user.actions = user->ActionFlags;
        row.user.title = textOf(user->pwszDialogTitle);
        row.user.text = textOf(user->pwszDialogText);
        row.user.sound = textOf(user->pwszSound);
    }
    if (row.until < row.start || (row.program.empty() && !row.user.isTold()))
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
    return row;
}

NotificationStatement &bindRow(NotificationStatement &statement, const Row &row)
{
    return statement.bind(row.type)
        .bind(row.start)
        .bind(row.until)
        .bind(row.program)
        .bind(row.arguments)
        .bind(row.hasUser ? 1 : 0)
        .bind(row.user.actions)
        .bind(row.user.title)
        .bind(row.user.text)
        .bind(row.user.sound);
}

DWORD addRow(Connection &connection, const Row &row)
{
    NotificationStatement insert(connection,
                                 "INSERT INTO notifications(type, start, until, program, arguments, has_user, actions,"
                                 " title, text, sound) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    bindRow(insert, row).step();
    return static_cast<DWORD>(lastRow(connection));
}

void changeRow(Connection &connection, DWORD number, const Row &row)
{
    NotificationStatement update(connection,
                                 "UPDATE notifications SET state = CASE WHEN start = ?2 THEN state ELSE 0 END,"
                                 " type = ?1, start = ?2, until = ?3, program = ?4, arguments = ?5, has_user = ?6,"
                                 " actions = ?7, title = ?8, text = ?9, sound = ?10 WHERE id = ?11 AND item IS NULL");
    bindRow(update, row).bind(number).step();
    if (changedRows(connection) == 0)
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
}

DWORD setNotification(DWORD number, const Row &row)
{
    const std::shared_ptr<Store> store = openedStore();
    WriteAccess access(*store);
    // A handle that names nothing must not cost a bulk of the caller's its work.
    if (number != 0 && (!hasNotifications(access.connection()) ||
                        !NotificationStatement(access.connection(),
                                               "SELECT 1 FROM notifications WHERE id = ? AND item IS NULL")
                             .bind(number)
                             .step()))
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
    access.willChange();
    changeNotifications(access.connection());
    if (number == 0)
    {
        number = addRow(access.connection(), row);
    }
    else
    {
        changeRow(access.connection(), number, row);
    }
    access.commit();
    return number;
}

Row readRow(DWORD number)
{
    const std::shared_ptr<Store> store = openedStore();
    ReadAccess access(*store);
    if (!hasNotifications(access.connection()))
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
    NotificationStatement select(access.connection(),
                                 "SELECT type, start, until, program, arguments, has_user, actions, title, text, sound,"
                                 " state FROM notifications WHERE id = ? AND item IS NULL");
    if (!select.bind(number).step())
    {
        throw StoreFault(ERROR_INVALID_HANDLE);
    }
    Row row;
    row.type = static_cast<DWORD>(select.integer(0));
    row.start = select.integer(1);
    row.until = select.integer(2);
    row.program = select.text(3);
    row.arguments = select.text(4);
    row.hasUser = select.integer(5) != 0;
    row.user.actions = static_cast<DWORD>(select.integer(6));
    row.user.title = select.text(7);
    row.user.text = select.text(8);
    row.user.sound = select.text(9);
    row.signalled = select.integer(10) != 0;
    return row;
}

/// A record and its texts, one behind the other in a buffer.
class RecordWriter
{
  public:
    RecordWriter(BYTE *buffer, std::size_t at) : m_buffer(buffer), m_at(at)
    {
    }
    WCHAR *add(const std::u16string &text)
    {
        auto *const place = reinterpret_cast<WCHAR *>(m_buffer + m_at);
        std::memcpy(place, text.c_str(), bytesOf(text));
        m_at += bytesOf(text);
        return place;
    }
    static std::size_t bytesOf(const std::u16string &text)
    {
        return (text.size() + 1) * sizeof(WCHAR);
    }

  private:
    BYTE *m_buffer;
    std::size_t m_at;
};

constexpr std::size_t fixedBytes =
    sizeof(CE_NOTIFICATION_INFO_HEADER) + sizeof(CE_NOTIFICATION_TRIGGER) + sizeof(CE_USER_NOTIFICATION);

std::size_t bytesOf(const Row &row)
{
    std::size_t bytes = fixedBytes;
    for (const std::u16string *text : {&row.program, &row.arguments, &row.user.title, &row.user.text, &row.user.sound})
    {
        bytes += RecordWriter::bytesOf(*text);
    }
    return bytes;
}

/// The buffer may lie anywhere, so the records are put together beside it.
void writeRecord(const Row &row, HANDLE handle, BYTE *buffer)
{
    RecordWriter texts(buffer, fixedBytes);
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = row.type;
    trigger.lpszApplication = texts.add(row.program);
    trigger.lpszArguments = texts.add(row.arguments);
    trigger.stStartTime = timeOfTicks(row.start);
    trigger.stEndTime = timeOfTicks(row.until);
    CE_USER_NOTIFICATION user{};
    user.ActionFlags = row.user.actions;
    user.pwszDialogTitle = texts.add(row.user.title);
    user.pwszDialogText = texts.add(row.user.text);
    user.pwszSound = texts.add(row.user.sound);
    user.nMaxSound = static_cast<DWORD>(row.user.sound.size() + 1);
    BYTE *const triggerPlace = buffer + sizeof(CE_NOTIFICATION_INFO_HEADER);
    BYTE *const userPlace = triggerPlace + sizeof trigger;
    CE_NOTIFICATION_INFO_HEADER header{};
    header.hNotification = handle;
    header.dwStatus = row.signalled ? CNS_SIGNALLED : CNS_WAITING;
    header.pcent = reinterpret_cast<CE_NOTIFICATION_TRIGGER *>(triggerPlace);
    header.pceun = row.hasUser ? reinterpret_cast<CE_USER_NOTIFICATION *>(userPlace) : nullptr;
    std::memcpy(buffer, &header, sizeof header);
    std::memcpy(triggerPlace, &trigger, sizeof trigger);
    std::memcpy(userPlace, &user, sizeof user);
}
} // namespace

HANDLE CeSetUserNotificationEx(HANDLE notification, const CE_NOTIFICATION_TRIGGER *trigger,
                               const CE_USER_NOTIFICATION *user)
{
    zb::stoppingPoint();
    return storeCall<HANDLE>(nullptr,
                             [&] {
                                 return zb::notificationHandle(
                                     setNotification(zb::notificationNumber(notification), rowOf(trigger, user)));
                             });
}

HANDLE CeSetUserNotification(HANDLE notification, const WCHAR *application, const SYSTEMTIME *time,
                             const CE_USER_NOTIFICATION *user)
{
    if (time == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::u16string program = textOf(application);
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = CNT_CLASSICTIME;
    trigger.lpszApplication = program.data();
    trigger.stStartTime = *time;
    return CeSetUserNotificationEx(notification, &trigger, user);
}

BOOL CeGetUserNotification(HANDLE notification, DWORD size, DWORD *needed, BYTE *buffer)
{
    zb::stoppingPoint();
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               const Row row = readRow(zb::notificationNumber(notification));
                               const std::size_t bytes = bytesOf(row);
                               if (needed != nullptr)
                               {
                                   *needed = static_cast<DWORD>(bytes);
                               }
                               if (buffer == nullptr)
                               {
                                   return TRUE;
                               }
                               if (size < bytes)
                               {
                                   throw StoreFault(ERROR_INSUFFICIENT_BUFFER);
                               }
                               writeRecord(row, notification, buffer);
                               return TRUE;
                           });
}

BOOL CeClearUserNotification(HANDLE notification)
{
    zb::stoppingPoint();
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               const DWORD number = zb::notificationNumber(notification);
                               readRow(number);
                               const std::shared_ptr<Store> store = openedStore();
                               WriteAccess access(*store);
                               clearNotification(access, number);
                               access.commit();
                               return TRUE;
                           });
}

BOOL CeGetUserNotificationHandles(HANDLE *handles, DWORD count, DWORD *needed)
{
    zb::stoppingPoint();
    return storeCall<BOOL>(
        FALSE,
        [&]
        {
            const std::shared_ptr<Store> store = openedStore();
            ReadAccess access(*store);
            DWORD found = 0;
            if (hasNotifications(access.connection()))
            {
                NotificationStatement select(access.connection(),
                                             "SELECT id FROM notifications WHERE item IS NULL ORDER BY id");
                for (; select.step(); ++found)
                {
                    if (handles != nullptr && found < count)
                    {
                        handles[found] = zb::notificationHandle(static_cast<DWORD>(select.integer(0)));
                    }
                }
            }
            if (needed != nullptr)
            {
                *needed = found;
            }
            if (handles != nullptr && found > count)
            {
                throw StoreFault(ERROR_INSUFFICIENT_BUFFER);
            }
            return TRUE;
        });
}

BOOL CeRunAppAtTime(const WCHAR *application, const SYSTEMTIME *time)
{
    zb::stoppingPoint();
    // The words that a program gets which was started for its time, and by which the entry is known.
    constexpr const WCHAR *words = u"AppRunAtTime";
    return storeCall<BOOL>(FALSE,
                           [&]
                           {
                               const std::u16string program = textOf(application);
                               Row row;
                               row.type = CNT_TIME;
                               row.start = row.until = time == nullptr ? 0 : ticksOfTime(*time);
                               row.program = program;
                               row.arguments = words;
                               if (program.empty())
                               {
                                   throw StoreFault(ERROR_INVALID_PARAMETER);
                               }
                               const std::shared_ptr<Store> store = openedStore();
                               WriteAccess access(*store);
                               access.willChange();
                               changeNotifications(access.connection());
                               NotificationStatement(access.connection(),
                                                     "DELETE FROM notifications WHERE item IS NULL AND program = ? AND"
                                                     " arguments = ?")
                                   .bind(program)
                                   .bind(std::u16string(words))
                                   .step();
                               if (time != nullptr)
                               {
                                   addRow(access.connection(), row);
                               }
                               access.commit();
                               return TRUE;
                           });
}
