#include "platform/linux/locale_pictures.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr WCHAR quote = u'\'';

/// Reads quoted text from behind its opening quote; two quotes are one. A text without end goes to the picture's end.
std::u16string quotedText(std::u16string_view picture, std::size_t &at)
{
    std::u16string text;
    while (at < picture.size())
    {
        if (picture[at] != quote)
        {
            text += picture[at++];
            continue;
        }
        ++at;
        if (at >= picture.size() || picture[at] != quote)
        {
            break;
        }
        text += quote;
        ++at;
    }
    return text;
}

std::size_t runLength(std::u16string_view text, std::size_t at)
{
    const std::size_t end = text.find_first_not_of(text[at], at);
    return (end == std::u16string_view::npos ? text.size() : end) - at;
}

void addText(std::vector<PicturePart> &parts, std::u16string_view text)
{
    if (text.empty())
    {
        return;
    }
    if (parts.empty() || parts.back().letter != 0)
    {
        parts.emplace_back();
    }
    parts.back().text += text;
}

constexpr bool isPatternLetter(WCHAR ch)
{
    return (ch >= u'a' && ch <= u'z') || (ch >= u'A' && ch <= u'Z');
}

/// The device's letters for a run of an ICU letter; empty for a field that it does not have.
std::u16string fieldFor(WCHAR letter, std::size_t count)
{
    switch (letter)
    {
    case u'y':
    case u'u':
        return count == 2 ? u"yy" : u"yyyy";
    case u'M':
    case u'L':
        return std::u16string(std::min<std::size_t>(count, 4), u'M');
    case u'd':
    case u'm':
    case u's':
    case u'h':
    case u'H':
        return std::u16string(std::min<std::size_t>(count, 2), letter);
    case u'K':
        return std::u16string(std::min<std::size_t>(count, 2), u'h');
    case u'k':
        return std::u16string(std::min<std::size_t>(count, 2), u'H');
    case u'E':
    case u'c':
        return count == 4 ? u"dddd" : u"ddd";
    case u'G':
        return u"gg";
    case u'a':
    case u'b':
    case u'B':
        return u"tt";
    default:
        return {};
    }
}

constexpr bool isOddBlank(WCHAR ch)
{
    return ch == 0x00A0 || ch == 0x202F || ch == 0x2009;
}

/// Marks that keep numbers in order amid text from right to left; no part of what separates them.
constexpr bool isDirectionMark(WCHAR ch)
{
    return ch == 0x200E || ch == 0x200F || ch == 0x061C;
}

/// Text as a picture holds it: quoted where it has letters or quotes.
std::u16string literal(std::u16string_view text)
{
    const bool needsQuotes =
        std::any_of(text.begin(), text.end(), [](WCHAR ch) { return isPatternLetter(ch) || ch == quote; });
    std::u16string result(needsQuotes ? u"'" : u"");
    for (const WCHAR ch : text)
    {
        result.append(ch == quote ? 2 : 1, isOddBlank(ch) ? u' ' : ch);
    }
    return needsQuotes ? result + quote : result;
}
} // namespace

std::vector<PicturePart> partsOf(std::u16string_view picture, std::u16string_view letters)
{
    std::vector<PicturePart> parts;
    for (std::size_t at = 0; at < picture.size();)
    {
        const WCHAR ch = picture[at];
        if (ch == quote)
        {
            addText(parts, quotedText(picture, ++at));
        }
        else if (letters.find(ch) != std::u16string_view::npos)
        {
            const std::size_t count = runLength(picture, at);
            parts.push_back({ch, static_cast<int>(std::min<std::size_t>(count, 100)), {}});
            at += count;
        }
        else
        {
            addText(parts, picture.substr(at++, 1));
        }
    }
    return parts;
}

std::u16string pictureOf(std::u16string_view icuPattern)
{
    std::u16string picture;
    for (std::size_t at = 0; at < icuPattern.size();)
    {
        const WCHAR ch = icuPattern[at];
        if (ch == quote)
        {
            const bool lone = at + 1 < icuPattern.size() && icuPattern[at + 1] == quote;
            at += lone ? 2 : 1;
            picture += literal(lone ? std::u16string(u"'") : quotedText(icuPattern, at));
        }
        else if (isPatternLetter(ch))
        {
            const std::size_t count = runLength(icuPattern, at);
            picture += fieldFor(ch, count);
            at += count;
        }
        else
        {
            picture += literal(icuPattern.substr(at++, 1));
        }
    }
    return picture;
}

std::u16string separatorOf(std::u16string_view picture, std::u16string_view letters)
{
    const std::vector<PicturePart> parts = partsOf(picture, letters);
    for (std::size_t i = 1; i + 1 < parts.size(); ++i)
    {
        // A mark of the half of the day in front of the hours is no field of the time's own.
        if (parts[i].letter == 0 && parts[i - 1].letter != 0 && parts[i - 1].letter != u't')
        {
            std::u16string separator = parts[i].text;
            std::erase_if(separator, isDirectionMark);
            return separator;
        }
    }
    return {};
}
} // namespace zb::internal
