// Names by which other programs know items again.
#pragma once

#include "platform/types.h"

#include <string>

namespace zb
{
/// "zb-" and 32 random hexadecimal digits: no other device gives the same. Any thread.
ZBPLATFORM_API std::u16string newItemIdentity();
} // namespace zb
