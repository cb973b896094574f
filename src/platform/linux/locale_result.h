// How the locale calls hand out text.
#pragma once

#include "platform/kernel.h"
#include "platform/types.h"

#include <algorithm>
#include <string_view>

namespace zb::internal
{
/// Writes text and terminator and returns the characters written, or those needed with size 0; 0 with last error 122
/// when it does not fit, with last error 87 for a size or buffer that can't be.
inline int deliverText(std::u16string_view text, WCHAR *buffer, int size)
{
    const int needed = static_cast<int>(text.size()) + 1;
    if (size == 0)
    {
        return needed;
    }
    if (size < 0 || buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (size < needed)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = 0;
    return needed;
}
} // namespace zb::internal
