#include "common/texts.h"

#include "platform/resources.h"

#include <string_view>

namespace zb::host
{
std::u16string text(UINT number)
{
    const WCHAR *words = nullptr;
    const int length = LoadStringW(nullptr, number, reinterpret_cast<WCHAR *>(&words), 0);
    return length > 0 ? std::u16string(words, static_cast<std::size_t>(length)) : std::u16string();
}

/// In one walk, so that what looks like a place inside a value stays what it is.
std::u16string text(UINT number, std::initializer_list<std::u16string> values)
{
    const std::u16string words = text(number);
    std::u16string filled;
    for (std::size_t n = 0; n < words.size(); ++n)
    {
        const std::size_t place = words[n] == u'%' && n + 1 < words.size() ? std::size_t{words[n + 1]} - u'1' : values.size();
        filled += place < values.size() ? values.begin()[place] : std::u16string(1, words[n]);
        n += place < values.size() ? 1 : 0;
    }
    return filled;
}
} // namespace zb::host
