// Long texts for readers of any text.
#pragma once

#include <string>

namespace zb::test
{
inline std::u16string repeated(const std::u16string &part, int count)
{
    std::u16string text;
    for (int i = 0; i < count; ++i)
    {
        text += part;
    }
    return text;
}
} // namespace zb::test
