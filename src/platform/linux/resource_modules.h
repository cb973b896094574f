// The modules that resources come from, and what they export.
#pragma once

#include "platform/kernel.h"
#include "platform/resources.h"

namespace zb::internal
{
/// The module's export of bytes; a null instance stands for the application's own module. Null, with last error 6 for a
/// module that is not loaded, else 1813, without it.
ZbResourceBytes resourceBytesOf(HINSTANCE instance);
} // namespace zb::internal
