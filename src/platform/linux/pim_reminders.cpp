// Reminders of appointments and tasks, worked out from their records when their time comes.
//
// Nothing is stored beside an item while its reminder waits: what changes the record changes the reminder, whoever it
// is, and storing ten thousand items with reminders costs nothing. What is kept is the moment up to which reminders
// were looked through, and one notification for each that came due; its key (item, occurrence, minutes) never depends
// on clock or zone, so no occurrence is told twice.
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/notify_store.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item_fields.h"
#include "platform/linux/pim_series_days.h"
#include "platform/linux/pim_series_record.h"
#include "platform/linux/pim_wall_clock.h"
#include "platform/linux/store_fault.h"
#include "platform/locale.h"
#include "platform/notify.h"
#include "platform/pim.h"
#include "platform/resources.h"
#include "platform/text.h"

#include <stdexcept>

namespace zb
{
namespace
{
using namespace internal;

constexpr LONG usualMinutes = 15;
/// How far the first look of all goes back.
constexpr LONGLONG firstLook = ticksPerDay;
/// Days around a local day on which the occurrence of another zone may have its own.
constexpr int daysOfZones = 3;
/// Reminders that were told are kept so long behind their occurrence, for the sake of clocks that are set back.
constexpr LONGLONG keptFor = 400 * ticksPerDay;
constexpr UINT reminderText = 42351;

struct Reminder
{
    PimKind kind;
    CEOID item;
    std::int64_t occurrence; ///< which one of the item
    LONG minutes;
    LONGLONG due;   ///< UTC
    LONGLONG shown; ///< local start of the occurrence
    bool allDay;
    bool late; ///< its time was looked through already, but the item lies ahead
    std::optional<int> day{}; ///< of a series, in its own zone
};

/// The walk through both databases.
class ReminderWalk
{
  public:
    /// What was due up to `before` was looked through earlier, what was due up to `until` is let pass.
    ReminderWalk(LONGLONG before, LONGLONG until, LONGLONG now)
        : m_before(before), m_until(until), m_now(now), m_clock(WallClock::ofDevice())
    {
    }
    void run()
    {
        walk(PimKind::Appointment, {appointmentReminderSet, itemReminderMinutes, appointmentStart,
                                    appointmentDurationType, appointmentRecurringFlag});
        walk(PimKind::Task,
             {taskReminderSet, itemReminderMinutes, taskDueDate, taskCompleteFlag, taskNotification});
    }
    const std::vector<Reminder> &due() const
    {
        return m_due;
    }
    std::optional<LONGLONG> next() const
    {
        return m_next;
    }
    /// Whether something was let pass that a later look from `before` on would take up.
    bool hasPassed() const
    {
        return m_passed;
    }
    PimStore &store()
    {
        return m_store;
    }

  private:
    using Properties = std::array<CEPROPID, 5>;

    void walk(PimKind kind, Properties wanted);
    void lookAtAppointment(CEOID oid, const CEPROPVAL *values);
    void lookAtTask(CEOID oid, const CEPROPVAL *values);
    void lookAtSeries(CEOID oid, const SeriesRecord &series, LONG minutes);
    bool lookAtDay(CEOID oid, const SeriesRecord &series, int day, LONG minutes);
    /// True when it is still to come.
    bool consider(Reminder reminder, LONGLONG behind);

    LONGLONG m_before;
    LONGLONG m_until;
    LONGLONG m_now;
    bool m_passed = false;
    WallClock m_clock;
    PimStore m_store;
    std::vector<Reminder> m_due;
    std::optional<LONGLONG> m_next;
};

bool isThere(const CEPROPVAL &value)
{
    return (value.wFlags & CEDB_PROPNOTFOUND) == 0;
}

/// The block that records are read into.
class ReadBuffer
{
  public:
    ReadBuffer() = default;
    ~ReadBuffer()
    {
        LocalFree(m_block);
    }
    ReadBuffer(const ReadBuffer &) = delete;
    ReadBuffer &operator=(const ReadBuffer &) = delete;

    const CEPROPVAL *read(HANDLE database, const CEPROPID *wanted, WORD count)
    {
        WORD found = count;
        const CEOID oid = CeReadRecordProps(database, CEDB_ALLOWREALLOC, &found, wanted, &m_block, &m_size);
        return oid == 0 ? nullptr : reinterpret_cast<const CEPROPVAL *>(m_block);
    }

  private:
    BYTE *m_block = nullptr;
    DWORD m_size = 0;
};

/// An open database that closes itself.
class OpenDatabase
{
  public:
    explicit OpenDatabase(PimKind kind)
    {
        CEOID oid = 0;
        m_handle = CeOpenDatabase(&oid, PimStore::databaseName(kind), 0, 0, nullptr);
        if (m_handle == INVALID_HANDLE_VALUE)
        {
            throw StoreFault(GetLastError());
        }
    }
    ~OpenDatabase()
    {
        CloseHandle(m_handle);
    }
    OpenDatabase(const OpenDatabase &) = delete;
    OpenDatabase &operator=(const OpenDatabase &) = delete;
    HANDLE handle() const
    {
        return m_handle;
    }

  private:
    HANDLE m_handle;
};

void ReminderWalk::walk(PimKind kind, Properties wanted)
{
    const OpenDatabase database(kind);
    ReadBuffer buffer;
    for (CEOID oid = CeSeekDatabase(database.handle(), CEDB_SEEK_BEGINNING, 0, nullptr); oid != 0;
         oid = CeSeekDatabase(database.handle(), CEDB_SEEK_CURRENT, 1, nullptr))
    {
        // A record that can't be read reminds of nothing.
        const CEPROPVAL *const values = buffer.read(database.handle(), wanted.data(), static_cast<WORD>(wanted.size()));
        if (values == nullptr || !isThere(values[0]) || values[0].val.iVal == 0)
        {
            continue;
        }
        if (kind == PimKind::Appointment)
        {
            lookAtAppointment(oid, values);
        }
        else
        {
            lookAtTask(oid, values);
        }
    }
}

bool ReminderWalk::consider(Reminder reminder, LONGLONG behind)
{
    if (reminder.due > m_now)
    {
        m_next = std::min(m_next.value_or(reminder.due), reminder.due);
        return true;
    }
    reminder.late = reminder.due <= m_until;
    if (!reminder.late || behind > m_now)
    {
        m_due.push_back(reminder);
    }
    else if (reminder.due > m_before)
    {
        m_passed = true;
    }
    return false;
}

void ReminderWalk::lookAtAppointment(CEOID oid, const CEPROPVAL *values)
{
    const LONG minutes =
        isThere(values[1]) ? std::clamp<LONG>(values[1].val.lVal, 0, PIM_LONGEST_REMINDER) : usualMinutes;
    if (isThere(values[4]) && values[4].val.iVal != 0)
    {
        StoredItem record;
        if (FAILED(m_store.read(PimKind::Appointment, oid, record)))
        {
            return;
        }
        if (const std::optional<SeriesRecord> series = SeriesRecord::of(record))
        {
            lookAtSeries(oid, *series, minutes);
            return;
        }
    }
    if (!isThere(values[2]))
    {
        return;
    }
    const LONGLONG stored = ticksOf(values[2].val.filetime);
    const bool allDay = isThere(values[3]) && values[3].val.lVal == durationTypeAllDay;
    const LONGLONG start = allDay ? m_clock.utcOf(stored) : stored;
    consider({PimKind::Appointment, oid, stored, minutes, start - minutes * ticksPerMinute,
              allDay ? stored : m_clock.wallOf(stored), allDay, false},
             start);
}

/// An alarm behind the midnight of the due date has minutes below 0.
void ReminderWalk::lookAtTask(CEOID oid, const CEPROPVAL *values)
{
    const bool complete = isThere(values[3]) && values[3].val.iVal != 0;
    const bool ownNotification = isThere(values[4]) && values[4].val.lVal != 0;
    const bool told = isThere(values[1]) && values[1].val.lVal != 0;
    if (complete || ownNotification || !told || !isThere(values[2]))
    {
        return;
    }
    const LONGLONG day = ticksOf(values[2].val.filetime);
    const LONGLONG due = m_clock.utcOf(day - values[1].val.lVal * ticksPerMinute);
    consider({PimKind::Task, oid, day, values[1].val.lVal, due, day, true, false}, m_clock.utcOf(day + ticksPerDay));
}

/// True when the reminder of that day is still to come.
bool ReminderWalk::lookAtDay(CEOID oid, const SeriesRecord &series, int day, LONG minutes)
{
    const AppointmentTimes times = series.valuesOf(day).times;
    const LONGLONG wall = times.firstMoment();
    const LONGLONG start = times.allDay ? m_clock.utcOf(wall) : m_clock.utcOfOccurrence(wall);
    // The day in the series' own zone, and where on it: so a day that moves is another occurrence.
    std::int64_t occurrence = ticksOfDay(day) + series.pattern().startMinute * ticksPerMinute;
    for (const RecurrenceException &each : series.pattern().exceptions)
    {
        if (static_cast<int>(each.originalStart / minutesOfDay) == day)
        {
            occurrence = each.newStart * ticksPerMinute;
        }
    }
    return consider({PimKind::Appointment, oid, occurrence, minutes, start - minutes * ticksPerMinute, wall,
                     times.allDay, false, day},
                    start);
}

void ReminderWalk::lookAtSeries(CEOID oid, const SeriesRecord &series, LONG minutes)
{
    std::vector<int> changed;
    for (const RecurrenceException &each : series.pattern().exceptions)
    {
        changed.push_back(static_cast<int>(each.originalStart / minutesOfDay));
    }
    std::sort(changed.begin(), changed.end());
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    for (const int day : changed)
    {
        lookAtDay(oid, series, day, minutes);
    }
    // Late ones count when their day lies ahead, so the days begin where either could.
    const LONGLONG from = std::min(m_until + minutes * ticksPerMinute, m_now);
    const SeriesDays days(series.pattern());
    int first = dayOfTicks(m_clock.wallOf(std::max<LONGLONG>(from, daysOfZones * ticksPerDay))) - daysOfZones;
    while (const std::optional<int> day = days.onOrAfter(first))
    {
        const bool plain = !std::binary_search(changed.begin(), changed.end(), *day) && series.has(*day);
        if (plain && lookAtDay(oid, series, *day, minutes))
        {
            break;
        }
        first = *day + 1;
    }
}

std::u16string shown(const Reminder &reminder)
{
    const FILETIME time = fileTimeOf(reminder.shown);
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    std::array<WCHAR, 128> text{};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &fields, nullptr, text.data(), static_cast<int>(text.size()));
    std::u16string result = text.data();
    if (!reminder.allDay)
    {
        GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &fields, nullptr, text.data(),
                       static_cast<int>(text.size()));
        result += u' ';
        result += text.data();
    }
    return result;
}

/// What the user is told; a private item keeps its texts to itself.
void takeTexts(PimStore &store, const Reminder &reminder, Alarm &alarm)
{
    std::array<WCHAR, 128> word{};
    LoadStringW(nullptr, reminderText, word.data(), static_cast<int>(word.size()));
    alarm.title = word.data();
    alarm.text = shown(reminder);
    StoredItem record;
    if (FAILED(store.read(reminder.kind, reminder.item, record)) || record.shortNumber(itemSensitivity, 0) != 0)
    {
        return;
    }
    std::u16string subject = record.text(itemSubject);
    std::u16string location = reminder.kind == PimKind::Appointment ? record.text(appointmentLocation) : u"";
    if (const std::optional<SeriesRecord> series =
            reminder.day ? SeriesRecord::of(record) : std::optional<SeriesRecord>())
    {
        const AppointmentValues values = series->valuesOf(*reminder.day);
        subject = values.subject;
        location = values.location;
    }
    alarm.title = subject.empty() ? alarm.title : subject;
    alarm.text += location.empty() ? u"" : u", " + location;
}

/// A reminder whose notification is to be made.
struct Told
{
    Reminder reminder;
    Alarm alarm;
};

bool isNew(Connection &connection, const Reminder &reminder)
{
    // Of one that was let pass, any that was told of this occurrence counts, whatever its minutes.
    NotificationStatement select(connection, "SELECT 1 FROM notifications WHERE item = ? AND occurrence = ?"
                                             " AND (minutes = ? OR ?) LIMIT 1");
    return !select.bind(reminder.item)
                .bind(reminder.occurrence)
                .bind(reminder.minutes)
                .bind(reminder.late ? 1 : 0)
                .step();
}

std::vector<Told> newReminders(Store &store, ReminderWalk &walk)
{
    std::vector<Told> told;
    {
        ReadAccess access(store);
        const bool any = hasNotifications(access.connection());
        for (const Reminder &reminder : walk.due())
        {
            if (!any || isNew(access.connection(), reminder))
            {
                told.push_back({reminder, {}});
            }
        }
    }
    for (Told &each : told)
    {
        takeTexts(walk.store(), each.reminder, each.alarm);
    }
    return told;
}

/// Its time is not behind now on the local clock, whatever that was set to since.
void addReminder(Connection &connection, const Told &told, LONGLONG now)
{
    const LONGLONG due = WallClock::ofDevice().wallOf(told.reminder.due);
    NotificationStatement insert(connection,
                                 "INSERT OR IGNORE INTO notifications(type, start, until, program, arguments, has_user,"
                                 " actions, title, text, sound, item, occurrence, minutes)"
                                 " VALUES(2, ?, ?, '', '', 1, ?, ?, ?, '', ?, ?, ?)");
    insert.bind(std::min(due, now))
        .bind(std::max(told.reminder.shown, now))
        .bind(PUN_LED | PUN_DIALOG | PUN_SOUND)
        .bind(told.alarm.title)
        .bind(told.alarm.text)
        .bind(told.reminder.item)
        .bind(told.reminder.occurrence)
        .bind(told.reminder.minutes);
    insert.step();
}

std::optional<LONGLONG> readUntil(Store &store)
{
    ReadAccess access(store);
    if (!hasNotifications(access.connection()))
    {
        return std::nullopt;
    }
    NotificationStatement select(access.connection(), "SELECT reminded_until FROM notification_state");
    return select.step() && !select.isNull(0) ? std::optional(select.integer(0)) : std::nullopt;
}

/// One transaction: what was due is there and counts as looked through, or neither.
void keep(Store &store, const std::vector<Told> &due, LONGLONG now)
{
    WriteAccess access(store);
    access.willChange();
    Connection &connection = access.connection();
    changeNotifications(connection);
    const LONGLONG wall = wallNow();
    for (const Told &each : due)
    {
        addReminder(connection, each, wall);
    }
    NotificationStatement(connection, "UPDATE notification_state SET reminded_until = ?").bind(now).step();
    NotificationStatement(connection, "DELETE FROM notifications WHERE item IS NOT NULL AND state <> 0 AND until < ?")
        .bind(wall - keptFor)
        .step();
    access.commit();
}
} // namespace

std::optional<LONGLONG> collectReminders(bool wasQuiet)
{
    try
    {
        const std::shared_ptr<Store> store = openedStore();
        const LONGLONG now = currentTicks();
        const std::optional<LONGLONG> before = readUntil(*store);
        // A clock that was set back has all its reminders ahead; those that were told are known by their keys.
        const LONGLONG from = std::min(before.value_or(now - firstLook), now);
        ReminderWalk walk(from, wasQuiet ? now : from, now);
        walk.run();
        const bool stale = walk.hasPassed() || !before || *before > now || now - *before > ticksPerMinute;
        const std::vector<Told> due = newReminders(*store, walk);
        if (!due.empty() || stale)
        {
            keep(*store, due, now);
        }
        return walk.next();
    }
    catch (const StoreFault &fault)
    {
        throw std::runtime_error("The reminders can't be read or kept (error " + std::to_string(fault.code()) + ").");
    }
}
} // namespace zb
