// Texts and colours of items as markup.
#pragma once

#include "platform/types.h"

#include <string>
#include <string_view>

namespace zb::host
{
/// Text of a user's as markup: nothing in it is taken for a tag.
std::u16string plainMarkup(std::u16string_view text);
/// Null is an empty text.
std::u16string plainMarkup(const WCHAR *text);
/// "#RRGGBB".
std::u16string colorMarkup(COLORREF color);
} // namespace zb::host
