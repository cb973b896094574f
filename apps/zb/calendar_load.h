// What the calendar loader gives for a range of days (appointments, birthdays, tasks), for a program without a screen.
#pragma once

#include "common/agenda_rows.h"
#include "platform/types.h"
#include "zb/category_choice.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class DATACALENDAR;

namespace zb::cli
{
/// What to show where the settings of the device don't decide it.
struct CalendarChoice
{
    CategoryChoice categories;
    std::optional<DWORD> status; ///< value of CAV_StatusFilter
    std::optional<bool> tasks;
    std::optional<bool> birthdays;
};

/// Runs the loader over the days from first to last and hands its rows to `take`, in the order in which they show. The
/// loader works on its own thread; this one waits and dispatches its messages. Throws std::runtime_error when the load
/// does not come to its end, BadUsage for a category that is none.
void visitCalendar(int firstDay, int lastDay, const CalendarChoice &choice,
                   const std::function<void(const DATACALENDAR &)> &take);

/// Rows from the first day to the last, itself included, in the order in which they show: by day, whole days first,
/// then by start, then the tasks.
std::vector<host::AgendaRow> loadAgenda(int firstDay, int lastDay, const CalendarChoice &choice);

struct DayRange
{
    int first;
    int last;
};
/// From the day of the earliest appointment to a year behind the latest start; nothing for a device without any.
std::optional<DayRange> daysWithAppointments();
} // namespace zb::cli
