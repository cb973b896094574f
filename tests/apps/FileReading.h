// What the tests of file readers share: the error that reading ends with, and files damaged at random.
#pragma once

#include "interchange/calendar_file_error.h"

#include <optional>
#include <random>
#include <string>

namespace zb::test
{
/// Nothing when `read` ends well.
template <typename Read>
std::optional<interchange::CalendarFileError> errorOf(Read read)
{
    try
    {
        read();
        return std::nullopt;
    }
    catch (const interchange::CalendarFileError &error)
    {
        return error;
    }
}

/// The text with some characters changed, left out, said twice or put between.
inline std::string damaged(std::string text, std::mt19937 &random)
{
    for (unsigned hits = random() % 8 + 1; hits > 0 && !text.empty(); --hits)
    {
        const std::size_t at = random() % text.size();
        switch (random() % 4)
        {
        case 0:
            text[at] = static_cast<char>(random());
            break;
        case 1:
            text.erase(at, random() % 20);
            break;
        case 2:
            text.insert(at, text.substr(random() % text.size(), random() % 40));
            break;
        default:
            text.insert(at, 1, ":;\"\r\n \0\xFF"[random() % 8]);
            break;
        }
    }
    return text;
}
} // namespace zb::test
