#include "interchange/text_charsets.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zb::interchange
{
namespace
{
/// The second byte of a sequence has narrower bounds after some leads (no overlong forms, no surrogates, no more than
/// U+10FFFF).
bool isSecondByte(unsigned char lead, unsigned char byte)
{
    const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return byte >= low && byte <= high;
}

struct CharsetName
{
    std::string_view name; ///< lower case, letters and digits alone
    UINT codePage;
};

constexpr std::array charsetNames = {
    CharsetName{"utf8", CP_UTF8},    CharsetName{"usascii", 20127},   CharsetName{"ascii", 20127},
    CharsetName{"latin1", 28591},    CharsetName{"latin2", 28592},    CharsetName{"latin9", 28605},
    CharsetName{"iso885915", 28605}, CharsetName{"iso885913", 28603}, CharsetName{"koi8r", 20866},
    CharsetName{"koi8u", 21866},     CharsetName{"shiftjis", 932},    CharsetName{"sjis", 932},
    CharsetName{"xsjis", 932},       CharsetName{"windows31j", 932},  CharsetName{"eucjp", 51932},
    CharsetName{"iso2022jp", 50220}, CharsetName{"gb2312", 936},      CharsetName{"gbk", 936},
    CharsetName{"gb18030", 54936},   CharsetName{"big5", 950},        CharsetName{"euckr", 51949},
    CharsetName{"ksc56011987", 949}, CharsetName{"iso2022kr", 50225}, CharsetName{"tis620", 874},
    CharsetName{"macintosh", 10000}, CharsetName{"utf7", 65000},
};

/// Digits behind a prefix, 0 for anything else.
UINT numberBehind(std::string_view text, std::string_view prefix)
{
    UINT number = 0;
    if (text.size() <= prefix.size() || text.size() > prefix.size() + 5 || text.substr(0, prefix.size()) != prefix)
    {
        return 0;
    }
    for (const char ch : text.substr(prefix.size()))
    {
        if (ch < '0' || ch > '9')
        {
            return 0;
        }
        number = number * 10 + static_cast<UINT>(ch - '0');
    }
    return number;
}
} // namespace

std::size_t utf8Length(unsigned char lead)
{
    if (lead < 0x80)
    {
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0)
    {
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0)
    {
        return 3;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool isAscii(std::string_view text)
{
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, 8);
        if ((word & 0x8080808080808080U) != 0)
        {
            return false;
        }
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

bool isUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();)
    {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = utf8Length(lead);
        if (length == 0 || length > text.size() - at)
        {
            return false;
        }
        for (std::size_t n = 1; n < length; ++n)
        {
            const auto byte = static_cast<unsigned char>(text[at + n]);
            if (n == 1 ? !isSecondByte(lead, byte) : (byte & 0xC0U) != 0x80U)
            {
                return false;
            }
        }
        at += length;
    }
    return true;
}

std::optional<UINT> codePageOf(std::string_view charset)
{
    std::string name;
    for (const char ch : charset)
    {
        const bool upper = ch >= 'A' && ch <= 'Z';
        if (upper || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9'))
        {
            name.push_back(upper ? static_cast<char>(ch - 'A' + 'a') : ch);
        }
    }
    const auto *const found =
        std::find_if(charsetNames.begin(), charsetNames.end(), [&](const auto &each) { return each.name == name; });
    if (found != charsetNames.end())
    {
        return found->codePage;
    }
    for (const std::string_view prefix : {"windows", "cp"})
    {
        const UINT number = numberBehind(name, prefix);
        if ((number >= 1250 && number <= 1258) || number == 874 || number == 932 || number == 936 || number == 949 ||
            number == 950)
        {
            return number;
        }
    }
    const UINT part = numberBehind(name, "iso8859");
    return part >= 1 && part <= 9 ? std::optional<UINT>(28590 + part) : std::nullopt;
}

DecodedText fromCodePage(std::string_view bytes, UINT codePage)
{
    constexpr DWORD refuseIllFormed = 8;
    const int size = static_cast<int>(bytes.size());
    const auto convert = [&](DWORD flags, std::u16string &wide)
    {
        const int count =
            MultiByteToWideChar(codePage, flags, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
        wide.resize(static_cast<std::size_t>(std::max(count, 0)));
        return count > 0;
    };
    DecodedText decoded;
    if (bytes.empty())
    {
        return decoded;
    }
    // No set here has more characters than bytes.
    std::u16string wide(bytes.size() + 1, u'\0');
    decoded.whole = convert(refuseIllFormed, wide);
    if (!decoded.whole)
    {
        wide.assign(2 * bytes.size() + 1, u'\0');
        convert(0, wide);
    }
    decoded.text = toUtf8(std::u16string_view(wide));
    return decoded;
}
} // namespace zb::interchange
