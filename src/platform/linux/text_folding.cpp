#include "platform/linux/text_folding.h"

#include "platform/text.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr bool isWidthForm(WCHAR ch)
{
    return ch >= 0xFF00 && ch <= 0xFFEF;
}

std::u16string normalized(std::u16string_view text, const UNormalizer2 *form)
{
    UErrorCode status = U_ZERO_ERROR;
    std::u16string result(text.size() * 4 + 16, u'\0');
    int length = unorm2_normalize(form, text.data(), static_cast<int>(text.size()), result.data(),
                                  static_cast<int>(result.size()), &status);
    if (status == U_BUFFER_OVERFLOW_ERROR)
    {
        status = U_ZERO_ERROR;
        result.resize(static_cast<std::size_t>(length));
        length = unorm2_normalize(form, text.data(), static_cast<int>(text.size()), result.data(), length, &status);
    }
    if (U_FAILURE(status))
    {
        return std::u16string(text);
    }
    result.resize(static_cast<std::size_t>(length));
    return result;
}

/// Full and half width forms as the common ones. Runs are normalized together, since a half width voicing mark joins
/// the kana in front of it.
std::u16string withoutWidth(std::u16string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *form = unorm2_getNFKCInstance(&status);
    std::u16string result;
    for (std::size_t i = 0; i < text.size();)
    {
        if (!isWidthForm(text[i]))
        {
            result += text[i] == 0x3000 ? u' ' : text[i];
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < text.size() && isWidthForm(text[i]))
        {
            ++i;
        }
        result += normalized(text.substr(start, i - start), form);
    }
    return result;
}

void dropKanaType(std::u16string &text)
{
    constexpr WCHAR distance = 0x60;
    for (WCHAR &ch : text)
    {
        const bool katakana = (ch >= 0x30A1 && ch <= 0x30F6) || ch == 0x30FD || ch == 0x30FE;
        ch = katakana ? static_cast<WCHAR>(ch - distance) : ch;
    }
}

std::u16string withoutAccents(std::u16string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    std::u16string parts = normalized(text, unorm2_getNFDInstance(&status));
    std::u16string result;
    for (int i = 0; i < static_cast<int>(parts.size());)
    {
        const int start = i;
        UChar32 code = 0;
        U16_NEXT(parts.data(), i, static_cast<int>(parts.size()), code);
        if (u_charType(code) != U_NON_SPACING_MARK)
        {
            result.append(parts, static_cast<std::size_t>(start), static_cast<std::size_t>(i - start));
        }
    }
    return result;
}

std::u16string withoutCase(std::u16string_view text)
{
    std::u16string result;
    for (int i = 0; i < static_cast<int>(text.size());)
    {
        UChar32 code = 0;
        U16_NEXT(text.data(), i, static_cast<int>(text.size()), code);
        const UChar32 folded = u_foldCase(code, U_FOLD_CASE_DEFAULT);
        UChar units[2];
        int length = 0;
        U16_APPEND_UNSAFE(units, length, folded);
        result.append(units, static_cast<std::size_t>(length));
    }
    return result;
}
} // namespace

std::u16string foldedText(std::u16string_view text, DWORD flags)
{
    std::u16string result(text);
    if ((flags & NORM_IGNOREWIDTH) != 0)
    {
        result = withoutWidth(result);
    }
    if ((flags & NORM_IGNORENONSPACE) != 0)
    {
        result = withoutAccents(result);
    }
    if ((flags & NORM_IGNOREKANATYPE) != 0)
    {
        dropKanaType(result);
    }
    if ((flags & NORM_IGNORECASE) != 0)
    {
        result = withoutCase(result);
    }
    return result;
}
} // namespace zb::internal
