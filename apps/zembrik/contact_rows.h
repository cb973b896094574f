// What the rows and the card of a contact say. Threads: the main thread.
#pragma once

#include "contacts/DATACONTACTS.h"
#include "zembrik/list_pane.h"

#include <optional>
#include <vector>

namespace zb::screens
{
ListRow contactRow(const DATACONTACTS &contact, bool tree);

struct ContactDetails
{
    std::u16string name;
    std::u16string below; ///< title and company
    std::vector<std::u16string> values;
};
/// What a contact holds, as rows of its card; nothing when it is gone.
std::optional<ContactDetails> contactDetails(CEOID id);
} // namespace zb::screens
