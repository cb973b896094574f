// The named characters of marked-up text.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <string_view>

namespace zb
{
/// Characters of the longest entity, "&" and ";" included.
inline constexpr std::size_t longestEntity = 8;

/// As GetHTMLEntity.
int entityCode(std::u16string_view name);
} // namespace zb
