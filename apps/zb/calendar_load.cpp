#include "zb/calendar_load.h"

#include "calendar/CCalendarThread.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "platform/pim.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "tasks/DATATASKS.h"
#include "zb/days.h"
#include "zb/loader_window.h"
#include "zb/task_list_load.h"

#include <algorithm>
#include <stdexcept>

namespace zb::cli
{
namespace
{
constexpr int daysOfYear = 366;

SYSTEMTIME timeOf(double date)
{
    SYSTEMTIME time{};
    VariantTimeToSystemTime(date, &time);
    return time;
}

bool isMidnight(const SYSTEMTIME &time)
{
    return time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0;
}

std::u16string textOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

/// The end by the clock on the wall. Rows have the start with the length on top, which is an hour off where daylight
/// time changes in between; a series counts by the wall's clock anyway.
SYSTEMTIME endOf(const DATACALENDAR &row, const SYSTEMTIME &start, const std::string &zone)
{
    const std::optional<FILETIME> from =
        row.m_bAllDay != 0 || row.m_bRecurring != 0 ? std::nullopt : zoneLocalToUtc(zone, start);
    if (!from)
    {
        return timeOf(row.m_dtEnd);
    }
    const LONGLONG utc = ticksOf(*from) + row.m_nDuration * ticksPerMinute;
    const std::optional<int> offset = zoneOffsetMinutes(zone, fileTimeOf(utc));
    const FILETIME local = fileTimeOf(utc + offset.value_or(0) * ticksPerMinute);
    SYSTEMTIME end{};
    return offset && FileTimeToSystemTime(&local, &end) != FALSE ? end : timeOf(row.m_dtEnd);
}

std::optional<SYSTEMTIME> dateOrNone(double date)
{
    return date == noDate ? std::nullopt : std::optional(timeOf(date));
}

AgendaRow commonOf(const DATACALENDAR &row)
{
    AgendaRow copy;
    copy.id = row.m_oid;
    copy.day = row.m_nDay;
    copy.categories = categoryNames(row.m_pszCategories);
    copy.color = categoriesColor(row.m_pszCategories);
    return copy;
}

AgendaRow taskOf(const DATACALENDAR &row)
{
    const DATATASKS &task = *row.m_pTask;
    AgendaRow copy = commonOf(row);
    copy.kind = AgendaKind::Task;
    copy.firstDay = row.m_nDay;
    copy.lastDay = row.m_nDay;
    copy.subject = textOf(task.m_pszSubject);
    copy.due = dateOrNone(task.m_dtDue);
    copy.begun = dateOrNone(task.m_dtStart);
    copy.completed = dateOrNone(task.m_dtCompleted);
    copy.isComplete = task.m_bComplete != 0;
    copy.isOverdue = task.m_bOverdue;
    copy.importance = task.m_nImportance;
    copy.priority = textOf(task.m_szPriorityLetter) + textOf(task.m_szPriorityNumber);
    copy.isPrivate = task.m_nSensitivity != 0;
    copy.reminder = task.m_bReminder != 0;
    copy.recurring = task.m_bRecurring != 0;
    copy.hasNotes = task.m_bHasNotes != 0;
    return copy;
}

AgendaKind kindOf(const DATACALENDAR &row)
{
    if (!row.m_bContact)
    {
        return AgendaKind::Appointment;
    }
    return textOf(row.m_pszCategories) == u"~Birthday" ? AgendaKind::Birthday : AgendaKind::Anniversary;
}

AgendaRow rowOf(const DATACALENDAR &row, const std::string &zone)
{
    AgendaRow copy = commonOf(row);
    copy.kind = kindOf(row);
    // Through fields, which are rounded to the second: sums of days and minutes miss whole days by a hair.
    copy.start = timeOf(row.m_dtStart);
    copy.end = endOf(row, copy.start, zone);
    copy.firstDay = dayOf(copy.start);
    copy.lastDay = dayOf(copy.end);
    copy.allDay = row.m_bAllDay != 0;
    // An end at midnight belongs to the day before.
    if (!copy.allDay && copy.lastDay > copy.firstDay && isMidnight(copy.end))
    {
        --copy.lastDay;
    }
    copy.busyStatus = row.m_nBusyStatus;
    copy.isPrivate = row.m_bPrivate != 0;
    copy.reminder = row.m_bReminder != 0;
    copy.recurring = row.m_bRecurring != 0;
    copy.hasNotes = row.m_bHasNotes != 0;
    copy.subject = textOf(row.m_bstrSubject);
    copy.location = textOf(row.m_bstrLocation);
    return copy;
}

/// The list's settings with the choice on top; the store stays as it is.
CalendarSettings settingsFor(const CalendarChoice &choice)
{
    CalendarSettings settings = CalendarSettings::read(CCalendarThread::DEFAULT_SETTINGS_KEY);
    // An agenda is the list of the range, whatever a screen showed last.
    settings.CAV_FilterAppointments = CalendarFilter::Range;
    settings.CAV_StatusFilter = choice.status.value_or(settings.CAV_StatusFilter);
    settings.AV_ShowTasks = choice.tasks.value_or(settings.AV_ShowTasks != 0) ? 1 : 0;
    settings.WV_ShowTasks = settings.DV_ShowTasks = settings.MV_ShowTasks = settings.MVD_ShowTasks = 0;
    // Contacts' rows have no categories, and the loader does not ask: who wants a category wants none of them.
    const bool wantsCategory = choice.categories.isMade() && choice.categories.mode() == categoriesShow;
    settings.ReadBirthdays = choice.birthdays.value_or(settings.ReadBirthdays != 0 && !wantsCategory) ? 1 : 0;
    if (choice.categories.isMade())
    {
        settings.bHideCategories = static_cast<DWORD>(choice.categories.mode());
        settings.CategoryANDOR = choice.categories.all ? 1 : 0;
        settings.m_bIncludeNoCat = 0;
    }
    return settings;
}

/// A task that is overdue and due on the first day of a past range has two rows on it, one behind the other.
bool isThereAlready(const std::vector<AgendaRow> &rows, const AgendaRow &row)
{
    return row.kind == AgendaKind::Task && !rows.empty() && rows.back().kind == AgendaKind::Task &&
           rows.back().id == row.id && rows.back().day == row.day;
}

/// Local day of the start of the first record that has one, walking by `seekOn` from `id`.
std::optional<int> dayOfStart(CeDb &database, CEOID id, CEOID (CeDb::*seekOn)(DWORD *))
{
    CeDbRecord record;
    for (; id != 0; id = (database.*seekOn)(nullptr))
    {
        FILETIME start{};
        SYSTEMTIME fields{};
        if (database.ReadRec(record, 1, &appointmentStart) && record.GetIndexVal(0, start) &&
            FileTimeToSystemTime(&start, &fields) != FALSE)
        {
            fields.wYear = std::min<WORD>(fields.wYear, 9999);
            return dayOf(fields);
        }
    }
    return std::nullopt;
}
} // namespace

void visitCalendar(int firstDay, int lastDay, const CalendarChoice &choice,
                   const std::function<void(const DATACALENDAR &)> &take)
{
    LoaderWindow window;
    CCalendarThread loader;
    const SYSTEMTIME first = dateOf(firstDay);
    const SYSTEMTIME last = dateOf(lastDay);
    loader.m_hWndHost = window.handle();
    loader.m_ownSettings = settingsFor(choice);
    CCategoryFilterInfo *restriction = nullptr;
    loader.GetCategoryRestrict(restriction);
    selectCategories(choice.categories, *restriction);
    loader.SetCategoryRestrict(false);
    // Headers of days are this program's own; without them a long range costs nothing.
    loader.SetNoHeaderDates(true);
    loader.SetRestrict(&first, &last);
    if (loader.Start() == FALSE || !window.awaitList())
    {
        throw std::runtime_error("the calendar could not be loaded");
    }
    loader.Stop(FALSE);
    loader.SortDataList(true);
    CePtrList<DATACALENDAR *> &list = loader.GetList();
    for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
    {
        take(*list.GetAt(n));
    }
}

std::vector<AgendaRow> loadAgenda(int firstDay, int lastDay, const CalendarChoice &choice)
{
    std::vector<AgendaRow> rows;
    const std::string zone = deviceZoneName();
    visitCalendar(firstDay, lastDay, choice,
                  [&](const DATACALENDAR &row)
                  {
                      // Birthdays come for the whole years of the range, and long events from their first day on.
                      if (row.m_nDay < firstDay || row.m_nDay > lastDay)
                      {
                          return;
                      }
                      AgendaRow copy = row.m_pTask != nullptr ? taskOf(row) : rowOf(row, zone);
                      // The hour that a row's end is off can take it over midnight.
                      if (copy.day <= std::max(copy.firstDay, copy.lastDay) && !isThereAlready(rows, copy))
                      {
                          rows.push_back(std::move(copy));
                      }
                  });
    return rows;
}

std::optional<DayRange> daysWithAppointments()
{
    CeDb database;
    if (!database.Open(appointmentsDatabase, appointmentStart, 0, nullptr))
    {
        return std::nullopt;
    }
    const std::optional<int> first = dayOfStart(database, database.SeekFirst(), &CeDb::SeekNext);
    const std::optional<int> last = dayOfStart(database, database.SeekLast(), &CeDb::SeekPrev);
    if (!first || !last)
    {
        return std::nullopt;
    }
    // A day more on each side for the zone; a year for series that begin last.
    return DayRange{std::clamp(*first - 1, firstListedDay, lastListedDay),
                    std::clamp(*last + daysOfYear, firstListedDay, lastListedDay)};
}
} // namespace zb::cli
