#include "zb/json.h"

#include "platform/text.h"

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

Json dateJson(const std::optional<SYSTEMTIME> &date)
{
    return date ? Json(isoDate(*date)) : Json();
}

Json namesJson(const std::vector<std::u16string> &names)
{
    Json list = Json::array();
    for (const std::u16string &name : names)
    {
        list.push_back(toUtf8(std::u16string_view(name)));
    }
    return list;
}

const char *importanceWord(LONG importance)
{
    return importance >= 2 ? "high" : importance <= 0 ? "low" : "normal";
}
} // namespace zb::cli
