// Modules that are loaded already, by name or by what lies in them.
//
// Handles come without a count of the caller's and stay good as long as the module is loaded. Threads: any.
#pragma once

#include "platform/types.h"

/// The module of that name if it is loaded; null gives the program itself. Null with last error 126 when it is not.
ZBPLATFORM_API HMODULE GetModuleHandleW(const WCHAR *name);

namespace zb
{
/// The loaded module that holds this address (of code or of a static); null for none.
ZBPLATFORM_API HMODULE moduleAt(const void *address);
} // namespace zb
