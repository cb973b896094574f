// UTF-8 at the edge, 16 bits inside.
#include "platform/text.h"

#include <unicode/ustring.h>

namespace zb
{
namespace
{
constexpr UChar32 replacement = 0xFFFD;
}

std::u16string toUtf16(std::string_view utf8)
{
    std::u16string text(utf8.size(), u'\0'); // never more units than bytes
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(text.data(), static_cast<int32_t>(text.size()), &length, utf8.data(),
                         static_cast<int32_t>(utf8.size()), replacement, nullptr, &status);
    text.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return text;
}

std::string toUtf8(std::u16string_view utf16)
{
    std::string text(utf16.size() * 3, '\0'); // three bytes a unit at most; a pair takes four
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(text.data(), static_cast<int32_t>(text.size()), &length, utf16.data(),
                       static_cast<int32_t>(utf16.size()), replacement, nullptr, &status);
    text.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return text;
}

std::string toUtf8(const WCHAR *text)
{
    return text == nullptr ? std::string() : toUtf8(std::u16string_view(text));
}
} // namespace zb
