// Notifications: a program to start, or something to tell the user, at a moment of the device's local time.
//
// They are kept in the device's store, so they survive every end of a process, and changes are seen by all of them. The
// program zbalarmd waits for their time and runs each once; what came due while it was not there is caught up. Times
// are those of the wall clock: after a change of zone an alarm at five still is at five.
//
// A notification that was run stays, as signalled, until it is cleared, so that its owner can set it anew by its handle.
// Handles are numbers of 32 bits, never 0 and never given out twice on a device; they may be kept in files.
//
// Reminders of items need no notification of their own: whatever stores an appointment with a reminder has set it. See
// collectReminders below.
//
// Threads: any. A change is durable when its call returns; inside a BulkWrite, with its commit.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <vector>

inline constexpr DWORD CNT_EVENT = 1; ///< refused: there are no such events
inline constexpr DWORD CNT_TIME = 2;
inline constexpr DWORD CNT_PERIOD = 3; ///< not run any more once its end has passed
inline constexpr DWORD CNT_CLASSICTIME = 4;

inline constexpr DWORD PUN_LED = 1;
inline constexpr DWORD PUN_VIBRATE = 2;
inline constexpr DWORD PUN_DIALOG = 4;
inline constexpr DWORD PUN_SOUND = 8;
inline constexpr DWORD PUN_REPEAT = 16;
inline constexpr DWORD PUN_PRIVATE = 32;

inline constexpr DWORD CNS_WAITING = 0;
inline constexpr DWORD CNS_SIGNALLED = 1;

struct CE_NOTIFICATION_TRIGGER
{
    DWORD dwSize; ///< of this structure
    DWORD dwType;
    DWORD dwEvent; ///< not looked at
    WCHAR *lpszApplication;
    WCHAR *lpszArguments; ///< may be null
    SYSTEMTIME stStartTime;
    SYSTEMTIME stEndTime; ///< counts for CNT_PERIOD alone
};

/// With any of LED, vibration, dialog and sound the user is told and the program is only named; without them the
/// program is started.
struct CE_USER_NOTIFICATION
{
    DWORD ActionFlags;
    WCHAR *pwszDialogTitle; ///< texts may be null
    WCHAR *pwszDialogText;
    WCHAR *pwszSound;
    DWORD nMaxSound; ///< room for pwszSound; not looked at
    DWORD dwReserved;
};

struct CE_NOTIFICATION_INFO_HEADER
{
    HANDLE hNotification;
    DWORD dwStatus;
    CE_NOTIFICATION_TRIGGER *pcent; ///< these and their texts lie behind the header in the same buffer
    CE_USER_NOTIFICATION *pceun;    ///< null for a notification set without one
};

/// Sets a new notification, for a handle of 0, or changes one, and returns its handle. A time that has passed already is
/// due at once; one that was run is set anew only by another time. Null on failure, with last error 87 (no trigger,
/// another size or kind, a time that is no date, an end before the start, nothing to start and nobody to tell) or 6 (no
/// such notification).
ZBPLATFORM_API HANDLE CeSetUserNotificationEx(HANDLE notification, const CE_NOTIFICATION_TRIGGER *trigger,
                                              const CE_USER_NOTIFICATION *user);
/// The same with kind CNT_CLASSICTIME.
ZBPLATFORM_API HANDLE CeSetUserNotification(HANDLE notification, const WCHAR *application, const SYSTEMTIME *time,
                                            const CE_USER_NOTIFICATION *user);
/// Writes the record, with what it points to, into the buffer. *needed (may be null) gets the bytes that takes; with a
/// null buffer nothing else happens. False with last error 122 for too small a buffer, 6 for no such notification.
ZBPLATFORM_API BOOL CeGetUserNotification(HANDLE notification, DWORD size, DWORD *needed, BYTE *buffer);
ZBPLATFORM_API BOOL CeClearUserNotification(HANDLE notification);
/// All of them in order of their making, signalled ones too. *needed gets their number; null `handles` only asks. False
/// with last error 122 when there are more than `count`; the first ones are then there.
ZBPLATFORM_API BOOL CeGetUserNotificationHandles(HANDLE *handles, DWORD count, DWORD *needed);
/// Starts the program at that time, in place of any other time that was told for it by this call; null time takes that
/// back.
ZBPLATFORM_API BOOL CeRunAppAtTime(const WCHAR *application, const SYSTEMTIME *time);

namespace zb
{
/// Handles as the numbers that items keep.
inline DWORD notificationNumber(HANDLE notification)
{
    return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(notification));
}
inline HANDLE notificationHandle(DWORD number)
{
    return reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(number));
}

// --- For whoever runs them ---------------------------------------------------------------------------------------
// All of these throw std::runtime_error, with an English sentence, when the store can't be read or written.

/// What to do when a notification's time has come.
struct Alarm
{
    DWORD number = 0;
    std::u16string program; ///< to be started, when nobody is to be told
    std::u16string arguments;
    DWORD actions = 0; ///< PUN_ flags
    std::u16string title;
    std::u16string text;
    std::u16string sound;
    LONGLONG time = 0; ///< local ticks

    bool isTold() const
    {
        return (actions & (PUN_LED | PUN_VIBRATE | PUN_DIALOG | PUN_SOUND)) != 0;
    }
};

/// Something that changes whenever notifications or items that may have reminders do, by whatever process.
struct AlarmState
{
    std::int64_t notifications = 0;
    std::int64_t appointments = 0;
    std::int64_t tasks = 0;
    bool operator==(const AlarmState &) const = default;
};
ZBPLATFORM_API AlarmState alarmState();

/// Makes notifications of the reminders that have come due since the last call, each once, whatever happens to the
/// clock, the zone or the item's other fields; and returns when (UTC ticks) the next one will. What is counted:
/// appointments with their reminder set, each occurrence of a series by itself; open tasks with a due date, their
/// reminder set and its minutes told, which have no notification of their own. `wasQuiet`: nothing had been due up to
/// this moment as the caller knew the items before; what was stored with a reminder that had passed is then let pass,
/// unless the item itself still lies ahead. The first call of all looks back a day.
/// Costs a walk through both databases.
ZBPLATFORM_API std::optional<LONGLONG> collectReminders(bool wasQuiet);

/// Those whose time has come and that were not begun, the earliest first.
ZBPLATFORM_API std::vector<Alarm> dueAlarms();
/// When (UTC ticks) the next one behind those comes due.
ZBPLATFORM_API std::optional<LONGLONG> nextAlarm();
ZBPLATFORM_API std::optional<Alarm> alarmOf(DWORD number);

/// Takes a due one for oneself: of two runners one gets true. `attempt` is a word of the caller's that names this
/// attempt; `boot` names the start of the machine in which it is made.
ZBPLATFORM_API bool beginAlarm(const Alarm &alarm, const std::string &attempt, const std::string &boot);
/// Whether it is begun by that attempt and not finished.
ZBPLATFORM_API bool isBegun(DWORD number, const std::string &attempt);
ZBPLATFORM_API void finishAlarm(DWORD number, const std::string &attempt);
/// Takes back what was begun and never finished before the machine was started last: the machine went down between.
ZBPLATFORM_API void forgetBrokenAttempts(const std::string &boot);

/// Shows it on the desktop of the user's session; false where there is no session or nobody there shows notifications.
/// The library behind it is loaded with the first call.
ZBPLATFORM_API bool tellDesktop(const Alarm &alarm);
} // namespace zb
