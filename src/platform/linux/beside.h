// Libraries of the platform that are loaded when they are needed.
#pragma once

namespace zb::internal
{
/// Opens a library that lies beside this one; null when it is not there. Never closed.
void *openBeside(const char *file);
} // namespace zb::internal
