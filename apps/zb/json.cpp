#include "zb/json.h"

#include <cstdio>

namespace zb::cli
{
std::string text(const Json &value)
{
    return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

std::string isoDate(const SYSTEMTIME &date)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%04u-%02u-%02u", unsigned{date.wYear}, unsigned{date.wMonth},
                  unsigned{date.wDay});
    return buffer;
}

std::string isoTime(const SYSTEMTIME &time, bool utc)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "T%02u:%02u:%02u", unsigned{time.wHour}, unsigned{time.wMinute},
                  unsigned{time.wSecond});
    return isoDate(time) + buffer + (utc ? "Z" : "");
}
} // namespace zb::cli
