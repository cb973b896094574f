// The data folder: the base of all paths of the system's own files on the device.
//
// It is the text value Kelvo_Folder of Software\Kelvo\Zembrik below HKEY_CURRENT_USER, else the documents folder. Read
// once for each device that is opened, so a value written later counts from the next opening on. Threads: any.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// Reads it for the open device, unless that was done. Does nothing while no device is open.
ZBTOOLS_API void InitKelvoDirectory();

/// At most 260 characters, without "\" at the end. Reads it first if nobody did. The text stays where it is; another
/// device's takes its place there.
ZBTOOLS_API const WCHAR *GetKelvoDirectory();

namespace zb
{
/// Forgets it, so that whoever asks next reads it anew; what shutting the library down does.
ZBTOOLS_API void forgetKelvoDirectory();
} // namespace zb
