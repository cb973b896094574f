#include "zembrik/hours_rows.h"

#include "common/days.h"

namespace zb::screens
{
namespace
{
bool standsOnTop(const AgendaRow &row)
{
    return row.kind != AgendaKind::Appointment || row.allDay || lengthOf(row) >= minutesOfDay;
}

HoursBlock blockOf(const AgendaRow &row, std::size_t place, int column)
{
    const int from = row.day == row.firstDay ? minutesOf(row.start) : 0;
    const int to = row.day == row.lastDay && minutesOf(row.end) != 0 ? minutesOf(row.end) : minutesOfDay;
    return {place, column, from, lengthOf(row) == 0 ? from : to};
}
} // namespace

int minutesOf(const SYSTEMTIME &time)
{
    return time.wHour * 60 + time.wMinute;
}

int lengthOf(const AgendaRow &row)
{
    return (host::dayOf(row.end) - host::dayOf(row.start)) * minutesOfDay + minutesOf(row.end) - minutesOf(row.start);
}

HoursRows hoursRows(const CalendarList &list, const DaySpan &days)
{
    HoursRows found;
    found.wholeDays.resize(static_cast<std::size_t>(days.last - days.first + 1));
    const AgendaRow *const begin = list.rows().data();
    for (int day = days.first; day <= days.last; ++day)
    {
        for (const AgendaRow &row : list.rowsOf(day))
        {
            if (standsOnTop(row))
            {
                found.wholeDays[static_cast<std::size_t>(day - days.first)].push_back(&row);
            }
            else
            {
                found.blocks.push_back(blockOf(row, static_cast<std::size_t>(&row - begin), day - days.first));
            }
        }
    }
    return found;
}
} // namespace zb::screens
