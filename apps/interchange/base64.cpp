#include "interchange/base64.h"

#include <cstdint>

namespace zb::interchange
{
namespace
{
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
} // namespace

std::string base64(std::string_view bytes)
{
    std::string digits;
    digits.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3)
    {
        std::uint32_t group = 0;
        for (std::size_t n = 0; n < 3; ++n)
        {
            group = group << 8U | (at + n < bytes.size() ? static_cast<unsigned char>(bytes[at + n]) : 0U);
        }
        for (std::size_t n = 0; n < 4; ++n)
        {
            const bool there = at + n <= bytes.size();
            digits.push_back(there ? alphabet[group >> (18U - 6U * n) & 63U] : '=');
        }
    }
    return digits;
}

std::optional<std::string> wholeBase64(std::string_view digits)
{
    std::string bytes;
    if (digits.size() % 4 != 0)
    {
        return std::nullopt;
    }
    bytes.reserve(digits.size() / 4 * 3);
    for (std::size_t at = 0; at < digits.size(); at += 4)
    {
        std::uint32_t group = 0;
        std::size_t padding = 0;
        for (std::size_t n = 0; n < 4; ++n)
        {
            const char ch = digits[at + n];
            const bool pads = ch == '=' && at + 4 == digits.size() && n >= 2;
            const std::size_t value = pads ? 0 : alphabet.find(ch);
            if (value == std::string_view::npos || (!pads && padding != 0))
            {
                return std::nullopt;
            }
            padding += pads ? 1 : 0;
            group = group << 6U | static_cast<std::uint32_t>(value);
        }
        for (std::size_t n = 0; n + padding < 3; ++n)
        {
            bytes.push_back(static_cast<char>(group >> (16U - 8U * n)));
        }
    }
    return bytes;
}
} // namespace zb::interchange
