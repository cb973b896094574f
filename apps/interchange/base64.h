// Bytes as base64 digits.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zb::interchange
{
std::string base64(std::string_view bytes);
/// Nothing for what is not whole groups of four digits.
std::optional<std::string> wholeBase64(std::string_view digits);
} // namespace zb::interchange
