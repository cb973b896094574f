// What the imports of calendars and of cards have in common around their work: the report of a file that could not be
// taken, and the remarks on how its bytes were read.
#pragma once

#include "interchange/content_lines.h"
#include "interchange/import_report.h"

#include <cstddef>
#include <functional>
#include <string>

namespace zb::interchange
{
/// Runs `import` on a new report of the file `name`. Where it ends in a CalendarFileError the report holds that failure
/// alone; all else goes through to the caller.
ImportReport reportOf(const std::string &name, const std::function<void(ImportReport &)> &import);

/// One remark, at the first line, on what is the matter with `count` lines; nothing for none. `many` follows the count.
void tellAlike(ImportReport &report, std::size_t count, std::size_t first, const std::string &one,
               const std::string &many);
/// Bytes that were not what they had to be.
void tellEncoding(ImportReport &report, const EncodingNotes &notes);
/// Lines outside of everything that is read.
void tellStrayLines(ImportReport &report, std::size_t count, std::size_t first);
} // namespace zb::interchange
