// The debug log: a text file that collects what went wrong where nobody was watching.
//
// Threads: any; lines of two threads never mix. Errors are swallowed: a log that can't be written must not add to the
// trouble it reports.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// Device path of the log that the engine itself writes.
inline constexpr const WCHAR *DEBUG_LOG_PATH = u"\\My Documents\\ZembrikDebugLog.txt";

/// Appends `line` and a carriage return and line feed to the device file `file`, in the device's code page. The first
/// call in a process writes a banner line to DEBUG_LOG_PATH and to the debug output before that. Null arguments do
/// nothing.
ZBTOOLS_API void DisplayMemory(const WCHAR *file, const WCHAR *line);
