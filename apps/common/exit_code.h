// What the hosts say to the shell. Scripts rely on these numbers; docs/commands.md and docs/zembrik.md tell them.
#pragma once

namespace zb::host
{
enum ExitCode : int
{
    exitOk = 0,
    exitIncomplete = 1, ///< done, but something of the input could not be taken
    exitUsage = 2,      ///< unknown command or option, a bad value
    exitDevice = 3,     ///< the device can't be opened, read or written
    exitInput = 4,      ///< an input file is unreadable or not what it should be
    exitOutput = 5      ///< the output could not be written
};
} // namespace zb::host
