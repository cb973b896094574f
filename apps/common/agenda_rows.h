// One row of a calendar list as hosts show it, taken out of what the loader gives.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <vector>

class DATACALENDAR;

namespace zb::host
{
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

/// Puts a row of the loader, no header of a day, at the end; leaves out what would stand there twice. `zone` is
/// deviceZoneName().
void addAgendaRow(std::vector<AgendaRow> &rows, const DATACALENDAR &row, const std::string &zone);
} // namespace zb::host
