// Colours by the names that calendar files give them.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string_view>

namespace zb::interchange
{
/// Of a name of CSS level 3 in any case ("turquoise") or "#40E0D0", low byte red; nothing for anything else. Black is
/// 0x010101, since 0 stands for no colour on the device.
std::optional<COLORREF> colorOf(std::string_view text);
} // namespace zb::interchange
