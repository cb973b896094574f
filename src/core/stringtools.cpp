// Free tools for wide text.
#include "core/stringtools.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace
{
using View = std::u16string_view;

View viewOf(const WCHAR *text)
{
    return text != nullptr ? View(text) : View();
}

WCHAR *newText(View text)
{
    auto *made = static_cast<WCHAR *>(std::malloc((text.size() + 1) * sizeof(WCHAR)));
    if (made != nullptr)
    {
        std::copy(text.begin(), text.end(), made);
        made[text.size()] = 0;
    }
    return made;
}

/// Letters of ASCII are folded here, without a call: they are most of what is searched.
WCHAR upper(WCHAR ch)
{
    if (ch < 0x80)
    {
        return ch >= u'a' && ch <= u'z' ? static_cast<WCHAR>(ch - 0x20) : ch;
    }
    return towupper(ch);
}

/// Place of sub at or behind `from`; npos when there is none. Nothing is copied: searches run over every record.
std::size_t findIn(View text, View sub, std::size_t from, bool caseSensitive)
{
    if (caseSensitive)
    {
        return text.find(sub, from);
    }
    const auto same = [](WCHAR a, WCHAR b) { return a == b || upper(a) == upper(b); };
    const auto place =
        std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), sub.begin(), sub.end(), same);
    return place != text.end() ? static_cast<std::size_t>(place - text.begin()) : View::npos;
}

bool isInside(View text, int start)
{
    return start >= 0 && static_cast<std::size_t>(start) < text.size();
}

View midOf(View text, int start, int length)
{
    if (!isInside(text, start))
    {
        return {};
    }
    return text.substr(static_cast<std::size_t>(start), length < 0 ? View::npos : static_cast<std::size_t>(length));
}

bool isSpace(WCHAR ch)
{
    return iswctype(ch, C1_SPACE) != 0;
}

View leftTrimmed(View text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    return text.substr(static_cast<std::size_t>(first - text.begin()));
}

View rightTrimmed(View text)
{
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isSpace);
    return text.substr(0, static_cast<std::size_t>(text.rend() - last));
}

std::u16string replaced(View text, View find, View replacement, std::size_t start, bool caseSensitive)
{
    std::u16string result;
    std::size_t done = 0;
    for (std::size_t at = findIn(text, find, start, caseSensitive); at != View::npos;
         at = findIn(text, find, done, caseSensitive))
    {
        result.append(text.substr(done, at - done)).append(replacement);
        done = at + find.size();
    }
    return result.append(text.substr(done));
}
} // namespace

const WCHAR *wcsistr(const WCHAR *text, const WCHAR *sub)
{
    const View whole = viewOf(text);
    const View part = viewOf(sub);
    if (whole.empty() || part.empty())
    {
        return nullptr;
    }
    const std::size_t at = findIn(whole, part, 0, false);
    return at != View::npos ? text + at : nullptr;
}

WCHAR *wcsistr(WCHAR *text, const WCHAR *sub)
{
    return const_cast<WCHAR *>(wcsistr(static_cast<const WCHAR *>(text), sub));
}

WCHAR *MidStr(const WCHAR *text, int start, int length)
{
    return newText(midOf(viewOf(text), start, length));
}

WCHAR *MidStr(WCHAR *buffer, const WCHAR *text, int start, int length)
{
    const View part = midOf(viewOf(text), start, length);
    // The part may lie in the buffer itself.
    if (!part.empty())
    {
        std::memmove(buffer, part.data(), part.size() * sizeof(WCHAR));
    }
    buffer[part.size()] = 0;
    return buffer;
}

WCHAR *LeftStr(const WCHAR *text, int count)
{
    return newText(midOf(viewOf(text), 0, count));
}

WCHAR *RightStr(const WCHAR *text, int count)
{
    const View whole = viewOf(text);
    const bool all = count < 0 || static_cast<std::size_t>(count) > whole.size();
    return newText(all ? whole : whole.substr(whole.size() - static_cast<std::size_t>(count)));
}

WCHAR *ReplaceChar(WCHAR *text, WCHAR from, WCHAR to)
{
    if (text != nullptr)
    {
        std::replace(text, text + wcslen(text), from, to);
    }
    return text;
}

WCHAR *ReplaceStr(const WCHAR *text, const WCHAR *find, const WCHAR *replacement, int start, bool caseSensitive)
{
    const View whole = viewOf(text);
    const View part = viewOf(find);
    if (part.empty() || !isInside(whole, start))
    {
        return newText(whole);
    }
    try
    {
        return newText(replaced(whole, part, viewOf(replacement), static_cast<std::size_t>(start), caseSensitive));
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
}

// --- White space -------------------------------------------------------------------------------------------------

WCHAR *LTrimStr(const WCHAR *text)
{
    return text != nullptr ? newText(leftTrimmed(text)) : nullptr;
}

WCHAR *RTrimStr(const WCHAR *text)
{
    return text != nullptr ? newText(rightTrimmed(text)) : nullptr;
}

WCHAR *TrimStr(const WCHAR *text)
{
    return text != nullptr ? newText(leftTrimmed(rightTrimmed(text))) : nullptr;
}

WCHAR *RTrimStrInPlace(WCHAR *text)
{
    if (text != nullptr)
    {
        std::size_t length = wcslen(text);
        while (length > 0 && (text[length - 1] == u'\r' || text[length - 1] == u'\n' || isSpace(text[length - 1])))
        {
            --length;
        }
        text[length] = 0;
    }
    return text;
}

// --- Finding -----------------------------------------------------------------------------------------------------

int IndexOf(const WCHAR *text, WCHAR ch, int start)
{
    const View whole = viewOf(text);
    if (!isInside(whole, start) || ch == 0)
    {
        return -1;
    }
    const std::size_t at = whole.find(ch, static_cast<std::size_t>(start));
    return at != View::npos ? static_cast<int>(at) : -1;
}

int IndexOf(const WCHAR *text, const WCHAR *sub, int start, bool caseSensitive)
{
    const View whole = viewOf(text);
    const View part = viewOf(sub);
    if (part.empty() || !isInside(whole, start))
    {
        return -1;
    }
    const std::size_t at = findIn(whole, part, static_cast<std::size_t>(start), caseSensitive);
    return at != View::npos ? static_cast<int>(at) : -1;
}

// --- Fields ------------------------------------------------------------------------------------------------------

const WCHAR *GetDelimeterPtr(const WCHAR *text, int n, WCHAR delimiter)
{
    for (; text != nullptr && n >= 1 && *text != 0; ++text)
    {
        if (*text == delimiter && --n == 0)
        {
            return text;
        }
    }
    return nullptr;
}

int SubStrCount(const WCHAR *text, WCHAR delimiter)
{
    const View whole = viewOf(text);
    return text != nullptr ? static_cast<int>(std::count(whole.begin(), whole.end(), delimiter)) + 1 : 0;
}

WCHAR *SubStr(const WCHAR *text, int n, WCHAR delimiter)
{
    if (text == nullptr || n < 1)
    {
        return nullptr;
    }
    const WCHAR *before = n > 1 ? GetDelimeterPtr(text, n - 1, delimiter) : nullptr;
    if (n > 1 && before == nullptr)
    {
        return nullptr;
    }
    const View rest = before != nullptr ? View(before + 1) : View(text);
    return newText(rest.substr(0, rest.find(delimiter)));
}

WCHAR *JustFileName(const WCHAR *path)
{
    const View whole = viewOf(path);
    const std::size_t last = whole.rfind(u'\\');
    return newText(last != View::npos ? whole.substr(last + 1) : whole);
}

WCHAR *JustPath(const WCHAR *path)
{
    if (path == nullptr)
    {
        return newText({});
    }
    const View whole = viewOf(path);
    const std::size_t last = whole.rfind(u'\\');
    return newText(last != View::npos ? whole.substr(0, last + 1) : View(u"\\"));
}
