// Brings the events of an iCalendar file into the appointments of the open device, and its to-dos into the tasks.
//
// One file is one transaction: all of it is taken, or nothing. Importing a file again changes nothing; an event that
// has changed since replaces what the device has of it.
#pragma once

#include "interchange/import_report.h"
#include "interchange/text_source.h"

#include <filesystem>
#include <functional>

namespace zb::interchange
{
struct ImportOptions
{
    bool dryRun = false; ///< find out all, write nothing
    /// Told now and then how much of the work is done, from 0 to 1.
    std::function<void(double)> progress;
};

/// The report tells a file that could not be taken; StoreError is thrown when the device fails, nothing of this file is
/// then written. Wants a device open.
ImportReport importCalendar(const std::filesystem::path &file, const ImportOptions &options);
/// The same from bytes, `name` stands for the file in the report.
ImportReport importCalendar(ByteSource &bytes, const std::string &name, const ImportOptions &options);
} // namespace zb::interchange
