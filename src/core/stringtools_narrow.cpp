// Free tools for narrow text.
#include "core/stringtools.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace
{
char upper(char ch)
{
    return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 0x20) : ch;
}

char *newText(std::string_view text)
{
    auto *made = static_cast<char *>(std::malloc(text.size() + 1));
    if (made != nullptr)
    {
        std::copy(text.begin(), text.end(), made);
        made[text.size()] = 0;
    }
    return made;
}
} // namespace

int IndexOfA(const char *text, const char *sub, int start)
{
    if (text == nullptr || sub == nullptr || *sub == 0)
    {
        return -1;
    }
    const std::string_view whole(text);
    const std::string_view part(sub);
    if (start < 0 || static_cast<std::size_t>(start) >= whole.size())
    {
        return -1;
    }
    const auto same = [](char a, char b) { return upper(a) == upper(b); };
    const auto place = std::search(whole.begin() + start, whole.end(), part.begin(), part.end(), same);
    return place != whole.end() ? static_cast<int>(place - whole.begin()) : -1;
}

const char *GetDelimeterPtrA(const char *text, int n, char delimiter)
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

char *SubStrA(const char *text, int n, char delimiter)
{
    if (text == nullptr || n < 1)
    {
        return nullptr;
    }
    const char *before = n > 1 ? GetDelimeterPtrA(text, n - 1, delimiter) : nullptr;
    if (n > 1 && before == nullptr)
    {
        return nullptr;
    }
    const std::string_view rest(before != nullptr ? before + 1 : text);
    return newText(rest.substr(0, rest.find(delimiter)));
}
