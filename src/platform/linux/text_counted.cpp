// Counted texts: the length in bytes stands in the 32-bit word in front of the first character.
#include "platform/kernel.h"
#include "platform/text.h"

#include <cstdlib>
#include <cstring>

namespace
{
/// Room in front of the text. The length needs four bytes; eight keep the text as aligned as malloc made the block.
constexpr std::size_t headBytes = 8;

std::uint32_t *lengthOf(WCHAR *text)
{
    return reinterpret_cast<std::uint32_t *>(text) - 1;
}

/// One empty text for all: the engine's own way of freeing leaves empty texts alone, so they must not cost memory.
struct EmptyText
{
    std::uint32_t m_length = 0;
    WCHAR m_text[2] = {0, 0};
};
constinit EmptyText emptyText;
} // namespace

BSTR SysAllocStringLen(const WCHAR *text, UINT length)
{
    zb::stoppingPoint();
    if (length == 0)
    {
        return emptyText.m_text;
    }
    const std::size_t bytes = static_cast<std::size_t>(length) * sizeof(WCHAR);
    if (bytes > 0x7FFFFFF0U)
    {
        return nullptr;
    }
    auto *block = static_cast<char *>(std::malloc(headBytes + bytes + sizeof(WCHAR)));
    if (block == nullptr)
    {
        return nullptr;
    }
    auto *result = reinterpret_cast<WCHAR *>(block + headBytes);
    *lengthOf(result) = static_cast<std::uint32_t>(bytes);
    if (text != nullptr)
    {
        std::memcpy(result, text, bytes);
    }
    else
    {
        std::memset(result, 0, bytes);
    }
    result[length] = 0;
    return result;
}

BSTR SysAllocString(const WCHAR *text)
{
    return text == nullptr ? nullptr : SysAllocStringLen(text, static_cast<UINT>(wcslen(text)));
}

void SysFreeString(BSTR text)
{
    if (text != nullptr && text != emptyText.m_text)
    {
        std::free(reinterpret_cast<char *>(text) - headBytes);
    }
}

UINT SysStringLen(const WCHAR *text)
{
    return text == nullptr ? 0 : *(reinterpret_cast<const std::uint32_t *>(text) - 1) / sizeof(WCHAR);
}
