// What zb says to the shell. Scripts rely on these numbers; docs/commands.md tells them.
#pragma once

namespace zb::cli
{
enum ExitCode : int
{
    exitOk = 0,
    exitIncomplete = 1, ///< done, but something of the input could not be taken
    exitUsage = 2,      ///< unknown command or option, a bad value
    exitDevice = 3,     ///< the device can't be opened, read or written
    exitInput = 4,      ///< an input file is unreadable or no calendar
    exitOutput = 5      ///< the output could not be written
};
} // namespace zb::cli
