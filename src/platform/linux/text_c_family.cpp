// The C family for 16-bit text.
#include "platform/text.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace
{
using Traits = std::char_traits<WCHAR>;

int foldedDifference(WCHAR a, WCHAR b)
{
    return static_cast<int>(towlower(a)) - static_cast<int>(towlower(b));
}

int digitValue(WCHAR ch)
{
    if (ch >= u'0' && ch <= u'9')
    {
        return ch - u'0';
    }
    const WCHAR lower = ch >= u'A' && ch <= u'Z' ? static_cast<WCHAR>(ch + 32) : ch;
    return lower >= u'a' && lower <= u'z' ? lower - u'a' + 10 : std::numeric_limits<int>::max();
}

struct Scanned
{
    std::uint64_t magnitude = 0;
    bool negative = false;
    bool overflow = false;
};

/// Blanks, sign, an optional 0x, digits. *end is behind the last digit, or the start when there is none.
Scanned scanNumber(const WCHAR *text, const WCHAR **end, int radix)
{
    const WCHAR *at = text;
    while (iswctype(*at, C1_SPACE) != 0)
    {
        ++at;
    }
    Scanned result;
    result.negative = *at == u'-';
    at += *at == u'-' || *at == u'+' ? 1 : 0;
    const bool hexMark = at[0] == u'0' && (at[1] == u'x' || at[1] == u'X') && digitValue(at[2]) < 16;
    if (hexMark && (radix == 0 || radix == 16))
    {
        at += 2;
        radix = 16;
    }
    else if (radix == 0)
    {
        radix = *at == u'0' ? 8 : 10;
    }
    const WCHAR *first = at;
    for (; digitValue(*at) < radix; ++at)
    {
        result.magnitude = result.magnitude * static_cast<unsigned>(radix) + static_cast<unsigned>(digitValue(*at));
        if (result.magnitude > std::numeric_limits<std::uint32_t>::max())
        {
            result.overflow = true;
            result.magnitude = std::numeric_limits<std::uint32_t>::max();
        }
    }
    *end = at == first ? text : at;
    return result;
}

WCHAR *writeNumber(std::uint32_t magnitude, bool negative, WCHAR *buffer, int radix)
{
    WCHAR digits[33];
    int count = 0;
    do
    {
        const auto digit = static_cast<WCHAR>(magnitude % static_cast<unsigned>(radix));
        digits[count++] = static_cast<WCHAR>(digit < 10 ? u'0' + digit : u'a' + digit - 10);
        magnitude /= static_cast<unsigned>(radix);
    } while (magnitude != 0);
    WCHAR *at = buffer;
    if (negative)
    {
        *at++ = u'-';
    }
    while (count > 0)
    {
        *at++ = digits[--count];
    }
    *at = 0;
    return buffer;
}
} // namespace

std::size_t wcslen(const WCHAR *text)
{
    return Traits::length(text);
}

WCHAR *wcscpy(WCHAR *target, const WCHAR *source)
{
    Traits::copy(target, source, wcslen(source) + 1);
    return target;
}

WCHAR *wcsncpy(WCHAR *target, const WCHAR *source, std::size_t count)
{
    std::size_t at = 0;
    for (; at < count && source[at] != 0; ++at)
    {
        target[at] = source[at];
    }
    std::fill(target + at, target + std::max(at, count), WCHAR{0});
    return target;
}

WCHAR *wcscat(WCHAR *target, const WCHAR *source)
{
    wcscpy(target + wcslen(target), source);
    return target;
}

int wcscmp(const WCHAR *a, const WCHAR *b)
{
    while (*a != 0 && *a == *b)
    {
        ++a;
        ++b;
    }
    return static_cast<int>(*a) - static_cast<int>(*b);
}

int wcsncmp(const WCHAR *a, const WCHAR *b, std::size_t count)
{
    for (; count != 0; --count, ++a, ++b)
    {
        if (*a != *b || *a == 0)
        {
            return static_cast<int>(*a) - static_cast<int>(*b);
        }
    }
    return 0;
}

const WCHAR *wcschr(const WCHAR *text, WCHAR ch)
{
    for (; *text != ch; ++text)
    {
        if (*text == 0)
        {
            return nullptr;
        }
    }
    return text;
}

WCHAR *wcschr(WCHAR *text, WCHAR ch)
{
    return const_cast<WCHAR *>(wcschr(static_cast<const WCHAR *>(text), ch));
}

const WCHAR *wcsrchr(const WCHAR *text, WCHAR ch)
{
    const WCHAR *last = nullptr;
    for (;; ++text)
    {
        last = *text == ch ? text : last;
        if (*text == 0)
        {
            return last;
        }
    }
}

WCHAR *wcsrchr(WCHAR *text, WCHAR ch)
{
    return const_cast<WCHAR *>(wcsrchr(static_cast<const WCHAR *>(text), ch));
}

const WCHAR *wcsstr(const WCHAR *text, const WCHAR *sub)
{
    const std::size_t place = std::u16string_view(text).find(sub);
    return place == std::u16string_view::npos ? nullptr : text + place;
}

WCHAR *wcsstr(WCHAR *text, const WCHAR *sub)
{
    return const_cast<WCHAR *>(wcsstr(static_cast<const WCHAR *>(text), sub));
}

const WCHAR *wcspbrk(const WCHAR *text, const WCHAR *set)
{
    const std::size_t place = std::u16string_view(text).find_first_of(set);
    return place == std::u16string_view::npos ? nullptr : text + place;
}

std::size_t wcsspn(const WCHAR *text, const WCHAR *set)
{
    const std::u16string_view view(text);
    return std::min(view.find_first_not_of(set), view.size());
}

int _wcsicmp(const WCHAR *a, const WCHAR *b)
{
    while (*a != 0 && foldedDifference(*a, *b) == 0)
    {
        ++a;
        ++b;
    }
    return foldedDifference(*a, *b);
}

int _wcsnicmp(const WCHAR *a, const WCHAR *b, std::size_t count)
{
    for (; count != 0; --count, ++a, ++b)
    {
        const int difference = foldedDifference(*a, *b);
        if (difference != 0 || *a == 0)
        {
            return difference;
        }
    }
    return 0;
}

WCHAR *_wcsdup(const WCHAR *text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    auto *copy = static_cast<WCHAR *>(std::malloc((wcslen(text) + 1) * sizeof(WCHAR)));
    return copy == nullptr ? nullptr : wcscpy(copy, text);
}

WCHAR towupper(WCHAR ch)
{
    if (ch < 0x80)
    {
        return ch >= u'a' && ch <= u'z' ? static_cast<WCHAR>(ch - 32) : ch;
    }
    const UChar32 upper = u_toupper(ch);
    return upper <= 0xFFFF ? static_cast<WCHAR>(upper) : ch;
}

WCHAR towlower(WCHAR ch)
{
    if (ch < 0x80)
    {
        return ch >= u'A' && ch <= u'Z' ? static_cast<WCHAR>(ch + 32) : ch;
    }
    const UChar32 lower = u_tolower(ch);
    return lower <= 0xFFFF ? static_cast<WCHAR>(lower) : ch;
}

WCHAR *_wcsupr(WCHAR *text)
{
    for (WCHAR *at = text; *at != 0; ++at)
    {
        *at = towupper(*at);
    }
    return text;
}

WCHAR *_wcslwr(WCHAR *text)
{
    for (WCHAR *at = text; *at != 0; ++at)
    {
        *at = towlower(*at);
    }
    return text;
}

WCHAR *_wcsrev(WCHAR *text)
{
    std::reverse(text, text + wcslen(text));
    return text;
}

LONG wcstol(const WCHAR *text, WCHAR **end, int radix)
{
    const WCHAR *behind = nullptr;
    const Scanned number = scanNumber(text, &behind, radix);
    if (end != nullptr)
    {
        *end = const_cast<WCHAR *>(behind);
    }
    const std::uint64_t most = number.negative ? 0x80000000U : 0x7FFFFFFFU;
    const auto magnitude = static_cast<std::int64_t>(std::min(number.magnitude, most));
    return static_cast<LONG>(number.negative ? -magnitude : magnitude);
}

ULONG wcstoul(const WCHAR *text, WCHAR **end, int radix)
{
    const WCHAR *behind = nullptr;
    const Scanned number = scanNumber(text, &behind, radix);
    if (end != nullptr)
    {
        *end = const_cast<WCHAR *>(behind);
    }
    const auto magnitude = static_cast<ULONG>(number.magnitude);
    return number.negative && !number.overflow ? 0U - magnitude : magnitude;
}

LONG _wtol(const WCHAR *text)
{
    return wcstol(text, nullptr, 10);
}

WCHAR *_ltow(LONG value, WCHAR *buffer, int radix)
{
    // Only decimal numbers have a sign; in other radixes the bits are written.
    const bool negative = radix == 10 && value < 0;
    const auto bits = static_cast<std::uint32_t>(value);
    return writeNumber(negative ? 0U - bits : bits, negative, buffer, radix);
}

WCHAR *_ultow(ULONG value, WCHAR *buffer, int radix)
{
    return writeNumber(value, false, buffer, radix);
}

int iswctype(WCHAR ch, unsigned mask)
{
    const auto has = [&](unsigned bit, bool is) { return (mask & bit) != 0 && is; };
    return has(C1_UPPER, u_isupper(ch) != 0) || has(C1_LOWER, u_islower(ch) != 0) ||
           has(C1_DIGIT, u_isdigit(ch) != 0) || has(C1_SPACE, (ch >= 9 && ch <= 13) || u_isUWhiteSpace(ch) != 0) ||
           has(C1_PUNCT, u_ispunct(ch) != 0) || has(C1_CNTRL, u_iscntrl(ch) != 0) ||
           has(C1_BLANK, u_isblank(ch) != 0) || has(C1_XDIGIT, ch < 0x80 && digitValue(ch) < 16) ||
           has(C1_ALPHA, u_isalpha(ch) != 0);
}
