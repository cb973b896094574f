// Start-up and shut-down of the whole library.
//
// Hosts call InitZBTools once a device is open, before anything else of the library but the settings store. Several may
// do so in one process, the entry points for other processes among them; there is no counting: the second start does
// nothing, and the first shut-down ends all.
// Threads: the host's thread, while no loader runs.
#pragma once

#include "core/api.h"
#include "platform/types.h"

class COutlook;

/// Starts the library with an object that it owns from now on, or with one of its own for null. When it is started
/// already nothing happens, and `outlook` stays the caller's. A missing ZBResources is told in a message; the start goes
/// on, and texts are then empty.
ZBTOOLS_API void InitZBTools(COutlook *outlook);

/// Ends it: the Outlook object goes, whoever made it, and so do the rest of what start-up made. Nothing when it is not
/// started.
ZBTOOLS_API void UnInitZBTools();

/// What the library does when it is loaded (reason 1): keeps its instance and looks for the data folder. Other reasons
/// do nothing. Always 1.
ZBTOOLS_API int ZBToolsEntry(HINSTANCE instance, DWORD reason, void *reserved);
