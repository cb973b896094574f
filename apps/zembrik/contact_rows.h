// What the rows and the card of a contact say. Threads: the main thread.
#pragma once

#include "contacts/DATACONTACTS.h"
#include "zembrik/item_card.h"

#include <optional>

namespace zb::screens
{
ListRow contactRow(const DATACONTACTS &contact, bool tree);

/// What a contact holds, with title and company below the name; nothing when it is gone.
std::optional<CardWords> contactCard(CEOID id);
} // namespace zb::screens
