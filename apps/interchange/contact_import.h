// Brings the cards of a vCard file into the contacts of the open device.
//
// One file is one transaction: all of it is taken, or nothing; pictures, which are files, are written when it is
// through, and once more by the next import where a kill came between. Importing a file again changes nothing.
#pragma once

#include "interchange/calendar_import.h"
#include "interchange/import_report.h"
#include "interchange/text_source.h"

#include <string>

namespace zb::interchange
{
/// The report tells a file that could not be taken; StoreError is thrown when the device fails, nothing of this file is
/// then written. Wants a device open.
ImportReport importContacts(ByteSource &bytes, const std::string &name, const ImportOptions &options);
} // namespace zb::interchange
