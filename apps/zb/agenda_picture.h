// The agenda as a picture.
#pragma once

#include "zb/calendar_load.h"
#include "zb/commands.h"

namespace zb::cli
{
/// Writes the rows of the range as PNG and returns the exit code.
int drawAgenda(const std::vector<host::AgendaRow> &rows, const DayRange &range, const PictureArguments &picture);
} // namespace zb::cli
