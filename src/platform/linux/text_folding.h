// Takes single kinds of difference out of texts before they are compared.
#pragma once

#include "platform/types.h"

#include <string>
#include <string_view>

namespace zb::internal
{
/// The text without the differences that the NORM_ flags name: letter case, accents, kana type, width.
std::u16string foldedText(std::u16string_view text, DWORD flags);
} // namespace zb::internal
