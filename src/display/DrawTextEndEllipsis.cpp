#include "display/DrawHTML.h"
#include "display/HTMLLine.h"

#include <algorithm>
#include <string>

namespace
{
using Text = std::u16string_view;
constexpr WCHAR ellipsis = u'\u2026';

bool isHighSurrogate(WCHAR ch)
{
    return ch >= 0xD800 && ch <= 0xDBFF;
}

/// The longest beginning with an ellipsis behind it that has the width, of one character at least. What was a character
/// of two units is never cut in half.
std::u16string shortened(HDC hdc, Text text, LONG width)
{
    SIZE size{};
    std::size_t kept = std::clamp<std::size_t>(zb::charactersToTry(hdc, text, width, size), 1, text.size() - 2);
    std::u16string result(text.substr(0, kept));
    result += ellipsis;
    while (kept > 1 && (isHighSurrogate(text[kept - 1]) || zb::measuredText(hdc, result).cx > width))
    {
        --kept;
        result.resize(kept);
        result += ellipsis;
    }
    return result;
}
} // namespace

int DrawTextEndEllipsis(HDC hdc, const WCHAR *text, RECT &rect, UINT format)
{
    const Text whole = text == nullptr ? Text() : Text(text);
    const LONG width = rect.right - rect.left;
    if (whole.size() < 3 || zb::measuredText(hdc, whole).cx <= width)
    {
        return DrawTextW(hdc, whole.data(), static_cast<int>(whole.size()), &rect, format);
    }
    const std::u16string cut = shortened(hdc, whole, width);
    return DrawTextW(hdc, cut.data(), static_cast<int>(cut.size()), &rect, format);
}
