// What a host tells its user on standard error.
#pragma once

#include <string_view>

namespace zb::host
{
/// The text behind the program's name, as in "zb: text", on a line of its own.
void complain(std::string_view text);
} // namespace zb::host
