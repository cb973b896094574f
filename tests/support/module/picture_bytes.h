// Good and bad bitmaps for the tests of loading them, and a menu of four letters.
#pragma once

#include "platform/types.h"

namespace zb::test
{
/// The bytes of a resource, or null. Bitmaps have the numbers from 100 on, the menu 7.
const void *pictureBytes(UINT type, UINT id, int dotsPerInch, std::size_t *size);
} // namespace zb::test
