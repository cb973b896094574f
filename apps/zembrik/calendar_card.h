// What the card of a row of the calendar says.
#pragma once

#include "common/agenda_rows.h"

#include <string>
#include <vector>

namespace zb::screens
{
struct CardWords
{
    std::u16string title;
    std::u16string below;
    std::vector<std::u16string> values; ///< markup, see ItemCard
};

/// Reads what the row itself does not hold from the device. Threads: the main thread.
CardWords cardOf(const host::AgendaRow &row);
} // namespace zb::screens
