// Character sets by the names that files give them, and their texts as UTF-8.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zb::interchange
{
/// True for well-formed UTF-8.
bool isUtf8(std::string_view text);
/// Bytes of the character that begins so; 0 for a byte that begins none.
std::size_t utf8Length(unsigned char lead);
bool isAscii(std::string_view text);

/// The device's number of a character set ("ISO-8859-1", "shift_jis", in any case, quoted or not); nothing for one that
/// nobody knows.
std::optional<UINT> codePageOf(std::string_view charset);

struct DecodedText
{
    std::string text;  ///< UTF-8
    bool whole = true; ///< false: some bytes are no text of the set and became U+FFFD
};

DecodedText fromCodePage(std::string_view bytes, UINT codePage);
/// Text that says nothing of its set: UTF-8 if it can be, else Windows-1252.
inline constexpr UINT windows1252 = 1252;
} // namespace zb::interchange
