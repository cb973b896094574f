// Brings a file into the open device, whatever it is: calendars and cards are told apart by what they begin with, not
// by their name.
#pragma once

#include "interchange/calendar_import.h"

#include <filesystem>

namespace zb::interchange
{
/// importCalendar or importContacts; "-" is standard input. A file that is neither has the fault NotCalendar.
ImportReport importFile(const std::filesystem::path &file, const ImportOptions &options);
} // namespace zb::interchange
