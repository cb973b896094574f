// Moves an appointment, or one day of a series, to another start.
#pragma once

#include "common/agenda_rows.h"

namespace zb::screens
{
/// The length stays. S_OK, or what the object model says. `minutes` counts from the midnight that begins `day`.
/// Threads: the main thread.
HRESULT moveAppointment(const host::AgendaRow &row, int day, int minutes);
/// Number of the text for a result that is none of success.
UINT notMovedText(HRESULT result);
} // namespace zb::screens
