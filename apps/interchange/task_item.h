// One to-do of a calendar file as the task that the device keeps.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/fingerprint.h"
#include "interchange/import_report.h"
#include "interchange/item_categories.h"
#include "interchange/zone_book.h"
#include "platform/pim.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
struct TaskReading
{
    std::optional<TaskItem> item;      ///< none: the to-do can't be kept
    std::string reason;                ///< why, as the end of a sentence
    std::size_t line = 0;              ///< where the reason stands
    std::vector<NamedLine> categories; ///< each once
    std::optional<NamedLine> parent;   ///< identity of the task that it lies under
    bool repeats = false;
    std::vector<Finding> findings;                                 ///< what was read otherwise than it was meant
    std::vector<std::string> lost;                                 ///< properties that no record holds, each once
    std::vector<std::pair<std::string, std::size_t>> unknownZones; ///< with their lines
};

/// Dates are days: a time of day is dropped, and a moment counts on the day that it falls on in the device's zone.
/// PRIORITY 1 to 4 is high, 6 to 9 low. Complete is what has the status COMPLETED, is done to 100 percent, or has a day
/// of completion and no status. A to-do without text and date is left out.
TaskReading readTask(const CalendarComponent &task, ZoneBook &zones);

/// What tells a to-do from everything else in one file.
Fingerprint taskKey(const CalendarComponent &task);
} // namespace zb::interchange
