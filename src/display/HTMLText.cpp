#include "display/HTMLText.h"

#include "display/HTMLEntities.h"
#include "platform/gdi.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace
{
using Text = std::u16string_view;

/// An entity that begins with the "&" at the front of text: its length with the semicolon, and its code; 0 and 0 for
/// none. Looks no further than the longest name.
struct Entity
{
    std::size_t length = 0;
    int code = 0;
};

Entity entityAt(Text text)
{
    const std::size_t end = text.substr(0, zb::longestEntity).find_first_of(u"; \r\n");
    if (end == Text::npos || text[end] != u';')
    {
        return {};
    }
    const int code = zb::entityCode(text.substr(0, end + 1));
    return code == 0 ? Entity{} : Entity{end + 1, code};
}

int hexDigit(WCHAR ch)
{
    if (ch >= u'0' && ch <= u'9')
    {
        return ch - u'0';
    }
    const int letter = ch | 0x20;
    return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10 : -1;
}
} // namespace

WCHAR *HTMLToText(const WCHAR *text)
{
    const Text source = text == nullptr ? Text() : Text(text);
    // Decoding only ever shortens.
    auto *plain = static_cast<WCHAR *>(std::malloc((source.size() + 1) * sizeof(WCHAR)));
    if (plain == nullptr)
    {
        return nullptr;
    }
    WCHAR *to = plain;
    for (std::size_t at = 0; at < source.size(); ++at)
    {
        if (source[at] == u'<')
        {
            at = std::min(source.find(u'>', at), source.size());
            continue;
        }
        const Entity entity = source[at] == u'&' ? entityAt(source.substr(at)) : Entity{};
        *to++ = entity.code == 0 ? source[at] : static_cast<WCHAR>(entity.code);
        // With the loop's own step this passes over the character behind the semicolon too. Kept.
        at += entity.length;
    }
    *to = 0;
    return plain;
}

int GetHTMLEntity(const WCHAR *name)
{
    return name == nullptr ? 0 : zb::entityCode(name);
}

bool HTMLToColorRef(const WCHAR *text, COLORREF *out)
{
    Text digits = text == nullptr ? Text() : Text(text);
    digits.remove_prefix(std::min(digits.find_first_not_of(u'#'), digits.size()));
    if (digits.empty() || digits.size() > 7)
    {
        return false;
    }
    DWORD number = 0;
    for (const WCHAR ch : digits)
    {
        const int value = hexDigit(ch);
        if (value < 0)
        {
            return false;
        }
        number = number << 4U | static_cast<DWORD>(value);
    }
    *out = RGB(static_cast<BYTE>(number >> 16U), static_cast<BYTE>(number >> 8U), static_cast<BYTE>(number));
    return true;
}

int ColorRefToHTML(COLORREF color, WCHAR *buffer, int maxChars)
{
    if (buffer == nullptr || maxChars < 8)
    {
        return 8;
    }
    WCHAR *to = buffer;
    *to++ = u'#';
    for (const BYTE part : {GetRValue(color), GetGValue(color), GetBValue(color)})
    {
        *to++ = u"0123456789ABCDEF"[part >> 4U];
        *to++ = u"0123456789ABCDEF"[part & 15U];
    }
    *to = 0;
    return 7;
}
