#include "common/visible_text.h"

#include "platform/text.h"

#include <algorithm>

namespace zb::host
{
namespace
{
/// Marks that change the direction of what follows, or hide: a subject must not reorder the line it stands on.
bool isUnseen(char16_t ch)
{
    return ch < 0x20 || (ch >= 0x7F && ch < 0xA0) || ch == 0x2028 || ch == 0x2029 || (ch >= 0x202A && ch <= 0x202E) ||
           (ch >= 0x2066 && ch <= 0x2069) || ch == 0xFEFF;
}
} // namespace

std::string visibleText(std::u16string_view text)
{
    std::u16string visible(text);
    std::replace_if(visible.begin(), visible.end(), isUnseen, u' ');
    return toUtf8(std::u16string_view(visible));
}
} // namespace zb::host
