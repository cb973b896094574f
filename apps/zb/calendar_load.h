// What the calendar loader gives for a range of days (appointments, birthdays, tasks), for a program without a screen.
#pragma once

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

enum class AgendaKind
{
    Appointment,
    Birthday, ///< of a contact
    Anniversary,
    Task
};

/// One appointment or task on one day; one that lasts over several days has a row on each.
struct AgendaRow
{
    AgendaKind kind = AgendaKind::Appointment;
    CEOID id = 0; ///< of the contact in a birthday
    int day = 0;      ///< that this row is for
    int firstDay = 0; ///< of the whole appointment
    int lastDay = 0;
    SYSTEMTIME start{}; ///< device-local, of the whole appointment
    SYSTEMTIME end{};
    bool allDay = false;
    int busyStatus = 0; ///< 0 free, 1 tentative, 2 busy, 3 out of office
    bool isPrivate = false;
    bool reminder = false;
    bool recurring = false;
    bool hasNotes = false;
    std::u16string subject;
    std::u16string location;
    std::vector<std::u16string> categories;
    std::optional<COLORREF> color; ///< of its categories, low byte red

    // Of a task.
    std::optional<SYSTEMTIME> due;
    std::optional<SYSTEMTIME> begun;
    std::optional<SYSTEMTIME> completed;
    bool isComplete = false;
    bool isOverdue = false;
    int importance = 1; ///< 0 low, 1 normal, 2 high
    std::u16string priority; ///< "A1"; empty without
};

/// Runs the loader over the days from first to last and hands its rows to `take`, in the order in which they show. The
/// loader works on its own thread; this one waits and dispatches its messages. Throws std::runtime_error when the load
/// does not come to its end, BadUsage for a category that is none.
void visitCalendar(int firstDay, int lastDay, const CalendarChoice &choice,
                   const std::function<void(const DATACALENDAR &)> &take);

/// Rows from the first day to the last, itself included, in the order in which they show: by day, whole days first,
/// then by start, then the tasks.
std::vector<AgendaRow> loadAgenda(int firstDay, int lastDay, const CalendarChoice &choice);

struct DayRange
{
    int first;
    int last;
};
/// From the day of the earliest appointment to a year behind the latest start; nothing for a device without any.
std::optional<DayRange> daysWithAppointments();
} // namespace zb::cli
