// What the card of a row of the calendar says.
#pragma once

#include "common/agenda_rows.h"
#include "zembrik/item_card.h"

#include <optional>

namespace zb::screens
{
/// Reads what the row itself does not hold from the device; nothing when that is gone. Threads: the main thread.
std::optional<CardWords> cardOf(const host::AgendaRow &row);
/// "2 days before", in the largest unit that tells it whole.
std::u16string reminderWords(LONG minutes);
} // namespace zb::screens
