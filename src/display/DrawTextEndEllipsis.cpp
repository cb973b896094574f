#include "display/DrawHTML.h"
#include "display/HTMLLine.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{
using Text = std::u16string_view;
constexpr WCHAR ellipsis = u'\u2026';

bool isHighSurrogate(WCHAR ch)
{
    return ch >= 0xD800 && ch <= 0xDBFF;
}

/// Lowers `kept` to the end of a whole character.
std::size_t wholeCharacters(Text text, std::size_t kept)
{
    return kept > 0 && isHighSurrogate(text[kept - 1]) ? kept - 1 : kept;
}

std::u16string withEllipsis(Text text, std::size_t kept)
{
    return std::u16string(text.substr(0, kept)) + ellipsis;
}

/// The longest beginning with an ellipsis behind it that has the width, of one character at least. What was a character
/// of two units is never cut in half: when such a one stands first and not all of it can stay, the ellipsis is alone.
std::u16string shortened(HDC hdc, Text text, LONG width)
{
    SIZE size{};
    std::size_t kept = std::clamp<std::size_t>(zb::charactersToTry(hdc, text, width, size), 1, text.size() - 2);
    const std::size_t least =
        wholeCharacters(text, isHighSurrogate(text[0]) ? std::min<std::size_t>(2, text.size() - 2) : 1);
    const std::vector<int> ends = zb::endsOfBeginnings(hdc, text.substr(0, kept));
    for (;;)
    {
        kept = wholeCharacters(text, kept);
        if (kept <= least || zb::measuredText(hdc, withEllipsis(text, kept)).cx <= width)
        {
            return withEllipsis(text, std::max(kept, least));
        }
        // Characters that take no room leave beginnings of one width: none of them has to be tried again.
        while (kept > 1 && ends[kept - 2] == ends[kept - 1])
        {
            --kept;
        }
        --kept;
    }
}
} // namespace

int DrawTextEndEllipsis(HDC hdc, const WCHAR *text, RECT &rect, UINT format)
{
    const Text whole = text == nullptr ? Text() : Text(text);
    const LONG width = zb::widthOf(rect);
    if (whole.size() < 3 || zb::measuredText(hdc, whole).cx <= width)
    {
        return DrawTextW(hdc, whole.data(), static_cast<int>(whole.size()), &rect, format);
    }
    const std::u16string cut = shortened(hdc, whole, width);
    return DrawTextW(hdc, cut.data(), static_cast<int>(cut.size()), &rect, format);
}
