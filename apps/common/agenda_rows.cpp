#include "common/agenda_rows.h"

#include "calendar/DATACALENDAR.h"
#include "common/category_words.h"
#include "common/days.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/pim.h"
#include "tasks/DATATASKS.h"

#include <algorithm>

namespace zb::host
{
namespace
{
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

/// A task that is overdue and due on the first day of a past range has two rows on it, one behind the other.
bool isThereAlready(const std::vector<AgendaRow> &rows, const AgendaRow &row)
{
    return row.kind == AgendaKind::Task && !rows.empty() && rows.back().kind == AgendaKind::Task &&
           rows.back().id == row.id && rows.back().day == row.day;
}
} // namespace

void addAgendaRow(std::vector<AgendaRow> &rows, const DATACALENDAR &row, const std::string &zone)
{
    AgendaRow copy = row.m_pTask != nullptr ? taskOf(row) : rowOf(row, zone);
    // The hour that a row's end is off can take it over midnight.
    if (copy.day <= std::max(copy.firstDay, copy.lastDay) && !isThereAlready(rows, copy))
    {
        rows.push_back(std::move(copy));
    }
}
} // namespace zb::host
