// Where keys lead among rows that stand below each other.
#pragma once

#include "platform/user.h"

#include <optional>

namespace zb::internal
{
/// By an arrow, a page key, Home or End, perhaps beyond the ends; nothing for other keys. A page keeps one row in sight.
inline std::optional<int> rowByKey(int key, int from, int pageRows, int count)
{
    const int page = pageRows > 1 ? pageRows - 1 : 1;
    switch (key)
    {
    case VK_UP:
        return from - 1;
    case VK_DOWN:
        return from + 1;
    case VK_PRIOR:
        return from - page;
    case VK_NEXT:
        return from + page;
    case VK_HOME:
        return 0;
    case VK_END:
        return count - 1;
    default:
        return std::nullopt;
    }
}
} // namespace zb::internal
