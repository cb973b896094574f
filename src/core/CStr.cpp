// The counted string.
#include "core/CStr.h"

#include "platform/text.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace
{
/// Count and terminator; lives as long as the library, so strings of any lifetime may point at it.
struct NullCounted
{
    ULONG m_nCount = 0;
    WCHAR m_text[2] = {0, 0};
};
constinit NullCounted s_null;

constexpr std::size_t COUNT_BYTES = sizeof(ULONG);

char *blockOf(WCHAR *text)
{
    return reinterpret_cast<char *>(text) - COUNT_BYTES;
}

std::size_t blockBytes(std::size_t length)
{
    return (length + 3) * sizeof(WCHAR);
}

/// Writes count and terminator into a block; the characters start behind the count.
WCHAR *finish(char *block, std::size_t length)
{
    const auto count = static_cast<ULONG>(length);
    std::memcpy(block, &count, COUNT_BYTES);
    auto *text = reinterpret_cast<WCHAR *>(block + COUNT_BYTES);
    text[length] = 0;
    return text;
}

int lengthOf(const WCHAR *text)
{
    return text != nullptr ? static_cast<int>(wcslen(text)) : 0;
}
} // namespace

WCHAR *AllocCSTR(const WCHAR *text)
{
    return AllocCSTRLen(text, lengthOf(text));
}

WCHAR *AllocCSTRLen(const WCHAR *text, int length)
{
    const auto count = static_cast<std::size_t>(length > 0 ? length : 0);
    auto *block = static_cast<char *>(std::malloc(blockBytes(count)));
    if (block == nullptr)
    {
        return nullptr;
    }
    if (text != nullptr && count != 0)
    {
        std::memcpy(block + COUNT_BYTES, text, count * sizeof(WCHAR));
    }
    else
    {
        std::memset(block + COUNT_BYTES, 0, count * sizeof(WCHAR));
    }
    return finish(block, count);
}

int ReAllocCSTR(WCHAR *&target, const WCHAR *text)
{
    return ReAllocCSTRLen(target, text, lengthOf(text));
}

int ReAllocCSTRLen(WCHAR *&target, const WCHAR *text, int length)
{
    WCHAR *made = AllocCSTRLen(text, length);
    if (made == nullptr)
    {
        return 0;
    }
    FreeCSTR(std::exchange(target, made));
    return 1;
}

int ExtendCSTR(WCHAR *&target, const WCHAR *text)
{
    return ExtendCSTRLen(target, text, lengthOf(text));
}

int ExtendCSTRLen(WCHAR *&target, const WCHAR *text, int length)
{
    const auto oldLength = static_cast<std::size_t>(CSTRLen(target));
    if (target == nullptr || text == nullptr || length <= 0 ||
        oldLength + static_cast<std::size_t>(length) > std::numeric_limits<int>::max())
    {
        return 0;
    }
    if (target == CStr::Null)
    {
        return ReAllocCSTRLen(target, text, length);
    }
    // realloc moves the text away from under an argument that is part of it.
    const bool inside = text >= target && text <= target + oldLength;
    const std::ptrdiff_t offset = inside ? text - target : 0;
    const std::size_t newLength = oldLength + static_cast<std::size_t>(length);
    auto *block = static_cast<char *>(std::realloc(blockOf(target), blockBytes(newLength)));
    if (block == nullptr)
    {
        return 0;
    }
    auto *moved = reinterpret_cast<WCHAR *>(block + COUNT_BYTES);
    std::memmove(moved + oldLength, inside ? moved + offset : text, static_cast<std::size_t>(length) * sizeof(WCHAR));
    target = finish(block, newLength);
    return 1;
}

void FreeCSTR(WCHAR *text)
{
    if (text != nullptr && text != CStr::Null)
    {
        std::free(blockOf(text));
    }
}

int CSTRLen(const WCHAR *text)
{
    if (text == nullptr)
    {
        return 0;
    }
    ULONG count = 0;
    std::memcpy(&count, reinterpret_cast<const char *>(text) - COUNT_BYTES, COUNT_BYTES);
    return static_cast<int>(count);
}

WCHAR *const CStr::Null = s_null.m_text;

CStr::CStr(const WCHAR *text)
{
    *this = text;
}

CStr::CStr(const WCHAR *text, int length)
{
    if (length > 0)
    {
        ReAllocCSTRLen(m_psz, text, length);
    }
}

CStr::CStr(const CStr &other) : CStr(other.m_psz, other.GetLength())
{
}

CStr::CStr(CStr &&other) noexcept : m_psz(std::exchange(other.m_psz, Null))
{
}

CStr::~CStr()
{
    FreeCSTR(m_psz);
}

CStr &CStr::operator=(const CStr &other)
{
    CStr copy(other);
    std::swap(m_psz, copy.m_psz);
    return *this;
}

CStr &CStr::operator=(CStr &&other) noexcept
{
    std::swap(m_psz, other.m_psz);
    return *this;
}

CStr &CStr::operator=(const WCHAR *text)
{
    CStr copy(text, lengthOf(text));
    std::swap(m_psz, copy.m_psz);
    return *this;
}

CStr &CStr::operator+=(const WCHAR *text)
{
    ExtendCSTR(m_psz, text);
    return *this;
}

void CStr::Empty()
{
    FreeCSTR(std::exchange(m_psz, Null));
}
