#include "common/markup_text.h"

#include "display/HTMLText.h"

#include <array>

namespace zb::host
{
std::u16string plainMarkup(std::u16string_view text)
{
    std::u16string markup;
    for (const WCHAR ch : text)
    {
        // The language has no way to write the sign itself; this is the one that the system's own panes show for it.
        markup += ch == u'<' ? u'«' : ch < u' ' ? u' ' : ch;
    }
    return markup;
}

std::u16string plainMarkup(const WCHAR *text)
{
    return plainMarkup(text == nullptr ? std::u16string_view() : std::u16string_view(text));
}

std::u16string colorMarkup(COLORREF color)
{
    std::array<WCHAR, 16> text{};
    ColorRefToHTML(color, text.data(), static_cast<int>(text.size()));
    return text.data();
}
} // namespace zb::host
