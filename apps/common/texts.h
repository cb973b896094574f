// Words of libZBResources. A device must be open.
#pragma once

#include "platform/types.h"

#include <initializer_list>
#include <string>

namespace zb::host
{
/// The text of that number; empty without one.
std::u16string text(UINT number);
/// The same with values in the places of "%1", "%2" and so on.
std::u16string text(UINT number, std::initializer_list<std::u16string> values);
} // namespace zb::host
