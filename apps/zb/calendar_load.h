// Appointments of a range of days as the calendar loader gives them, for a program without a screen.
#pragma once

#include "platform/types.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class DATACALENDAR;

namespace zb::cli
{
/// One appointment on one day; one that lasts over several days has a row on each.
struct AgendaRow
{
    CEOID id = 0;
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
    bool isBirthday = false; ///< comes from a contact, `id` is the contact's
    std::u16string subject;
    std::u16string location;
};

/// Runs the loader over the days from first to last and hands its rows to `take`, in the order in which they show. The
/// loader works on its own thread; this one waits and dispatches its messages. Throws std::runtime_error when the load
/// does not come to its end.
void visitAppointments(int firstDay, int lastDay, const std::function<void(const DATACALENDAR &)> &take);

/// Rows from the first day to the last, itself included, in the order in which they show: by day, whole days first,
/// then by start.
std::vector<AgendaRow> loadAppointments(int firstDay, int lastDay);

struct DayRange
{
    int first;
    int last;
};
/// From the day of the earliest appointment to a year behind the latest start; nothing for a device without any.
std::optional<DayRange> daysWithAppointments();
} // namespace zb::cli
