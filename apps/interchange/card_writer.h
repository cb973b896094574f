// Contacts of the device as cards: vCard 3.0, which most programs read.
//
// What the format has no word for stands in the words that other programs know; a line beside them keeps what reading
// the card would not give back (exact_record.h).
#pragma once

#include "interchange/record_view.h"

#include <string>

namespace zb::interchange
{
struct ExportedContact
{
    RecordView record;
    std::u16string categories; ///< names, ", " between
    std::string picture;       ///< bytes of its file; empty without one
};

/// BEGIN:VCARD to END:VCARD; `now` (UTC) is the time at which it was written.
std::string contactCard(const ExportedContact &contact, LONGLONG now);
} // namespace zb::interchange
