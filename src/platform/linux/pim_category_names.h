// Names of categories against the bits of items. Reads the device's categories at each call.
#pragma once

#include "platform/types.h"

#include <string>
#include <vector>

namespace zb::internal
{
/// The names of the bits, ", " between them, in order of their ids. Bits that no active category has are left out.
std::u16string categoryNamesOf(const std::vector<BYTE> &bits);
/// The bits of names with commas between; names are compared in the words of the locale's order, without the blanks
/// around them, and those that no category has are left out. Bits in `before` that have no name stay.
std::vector<BYTE> categoryBitsOf(const std::u16string &names, const std::vector<BYTE> &before);
} // namespace zb::internal
