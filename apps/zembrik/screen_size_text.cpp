#include "zembrik/screen_size_text.h"

#include <charconv>

namespace zb::screens
{
namespace
{
std::optional<int> sideOf(std::string_view text)
{
    int value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = fault == std::errc() && end == text.data() + text.size();
    return whole && value >= smallestSide && value <= largestSide ? std::optional(value) : std::nullopt;
}
} // namespace

std::optional<std::pair<int, int>> screenSizeOf(std::string_view text)
{
    const std::size_t sign = text.find('x');
    if (sign == std::string_view::npos)
    {
        return std::nullopt;
    }
    const auto width = sideOf(text.substr(0, sign));
    const auto height = sideOf(text.substr(sign + 1));
    return width && height ? std::optional(std::pair(*width, *height)) : std::nullopt;
}
} // namespace zb::screens
