// A 128-bit fingerprint of a text: tells items of a file apart in little memory. Stable for ever, since identities made
// from content are kept in stores; not meant to withstand anybody who wants two texts to agree.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zb::interchange
{
struct Fingerprint
{
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    friend bool operator==(const Fingerprint &, const Fingerprint &) = default;

    /// 32 hexadecimal digits.
    std::string hex() const
    {
        static constexpr std::string_view digits = "0123456789abcdef";
        std::string text;
        for (const std::uint64_t half : {high, low})
        {
            for (int shift = 60; shift >= 0; shift -= 4)
            {
                text.push_back(digits[half >> static_cast<unsigned>(shift) & 15U]);
            }
        }
        return text;
    }
};

constexpr Fingerprint fingerprint(std::string_view text)
{
    // Two independent multiplicative hashes, each stirred at the end.
    std::uint64_t high = 0xcbf29ce484222325U;
    std::uint64_t low = 0x9e3779b97f4a7c15U;
    for (const char ch : text)
    {
        const auto byte = static_cast<std::uint64_t>(static_cast<unsigned char>(ch));
        high = (high ^ byte) * 0x00000100000001b3U;
        low = (low + byte + 1) * 0xd6e8feb86659fd93U;
        low ^= low >> 32U;
    }
    high = (high ^ high >> 33U) * 0xff51afd7ed558ccdU;
    low = (low ^ low >> 33U) * 0xc4ceb9fe1a85ec53U;
    return {high ^ high >> 33U, low ^ low >> 33U};
}
} // namespace zb::interchange

template <>
struct std::hash<zb::interchange::Fingerprint>
{
    std::size_t operator()(const zb::interchange::Fingerprint &value) const noexcept
    {
        return static_cast<std::size_t>(value.high ^ value.low);
    }
};
