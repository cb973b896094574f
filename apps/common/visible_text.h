// Text of items made harmless before it is shown.
#pragma once

#include <string>
#include <string_view>

namespace zb::host
{
/// UTF-8 with control characters, line ends and direction marks turned into blanks.
std::string visibleText(std::u16string_view text);
} // namespace zb::host
